// Kinds of bar codes, and the bars that a text has in them.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace front {

enum class BarcodeKind { Codabar, Interleaved, Msi, Code39, Code93, Code128, Ean8, Ean13, UpcA };

// Every kind with its name on the command line.
struct BarcodeKindRow {
  BarcodeKind kind;
  std::string_view name;
};
const std::vector<BarcodeKindRow>& AllBarcodeKinds();
std::string_view NameOf(BarcodeKind kind);

// Widths of bars and spaces in modules, from the first bar to the last one, of the kinds whose
// texts do not tell which way they were read, or whether they were a code at all; empty for the
// others.
std::string WidthsOf(BarcodeKind kind, const std::string& text);

}  // namespace front
