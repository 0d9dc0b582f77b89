// Which bytes form a character.
#include "platform/utf8.h"

#include <cstdint>

#include "platform/characters.h"

namespace zel {

std::string Utf8Of(std::string_view text) {
  std::string result;
  while (!text.empty()) {
    std::string_view rest = text;
    const char32_t character = CharacterNext(&rest);
    const size_t count = text.size() - rest.size();
    if (count == 1 && character >= 0x80) {
      result.push_back(static_cast<char>(0xC0 | character >> 6));
      result.push_back(static_cast<char>(0x80 | (character & 0x3F)));
    } else {
      result.append(text.substr(0, count));
    }
    text = rest;
  }
  return result;
}

}  // namespace zel
