// Readers of bar codes side by side: the library in a given region, the front in the whole picture,
// and other programs where they are installed.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "scorecard/codes.h"

namespace scorecard {

struct Reader {
  std::string name;
  std::function<bool(front::BarcodeKind kind)> reads;
  // Texts as the library gives them; a check is asked for where the kind leaves it open.
  std::function<std::optional<std::string>(const Sight& sight, const Code& code, bool validate)>
      read;
};

std::vector<Reader> AllReaders();

// ZBar, where it is installed. Its header cannot stand beside another one's names.
std::optional<std::string> ReadByZbar(const Sight& sight, const Code& code, bool validate);

// What of a text all readers give: Code 39 without its asterisks.
std::string Common(front::BarcodeKind kind, std::string text);

}  // namespace scorecard
