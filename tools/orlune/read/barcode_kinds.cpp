// Kinds of bar codes, and the bars of those whose bars are looked at.
#include "orlune/read/barcode_kinds.h"

#include <algorithm>
#include <array>

namespace front {

const std::vector<BarcodeKindRow>& AllBarcodeKinds() {
  static const std::vector<BarcodeKindRow> kinds = {
      {BarcodeKind::Codabar, "codabar"}, {BarcodeKind::Interleaved, "interleaved"},
      {BarcodeKind::Msi, "msi"},         {BarcodeKind::Code39, "code39"},
      {BarcodeKind::Code93, "code93"},   {BarcodeKind::Code128, "code128"},
      {BarcodeKind::Ean8, "ean8"},       {BarcodeKind::Ean13, "ean13"},
      {BarcodeKind::UpcA, "upca"},
  };
  return kinds;
}

std::string_view NameOf(BarcodeKind kind) {
  return AllBarcodeKinds()[static_cast<size_t>(kind)].name;
}

std::string WidthsOf(BarcodeKind kind, const std::string& text) {
  static const std::array<std::string, 10> SETS = {"3211", "2221", "2122", "1411", "1132",
                                                   "1231", "1114", "1312", "1213", "3112"};
  static const std::array<std::string, 10> PARITIES = {"000000", "001011", "001101", "001110",
                                                       "010011", "011001", "011100", "010101",
                                                       "010110", "011010"};
  static const std::array<std::string, 10> PAIRS = {"00110", "10001", "01001", "11000", "00101",
                                                    "10100", "01100", "00011", "10010", "01010"};
  const auto digit = [&](size_t i) { return static_cast<size_t>(text[i] - '0'); };
  std::string widths;
  if (kind == BarcodeKind::Ean8 || kind == BarcodeKind::Ean13 || kind == BarcodeKind::UpcA) {
    const size_t first = kind == BarcodeKind::Ean13 ? 1 : 0;
    const size_t half = (text.size() - first) / 2;
    const std::string parity = first == 1 ? PARITIES[digit(0)] : std::string(half, '0');
    widths = "111";
    for (size_t i = 0; i < 2 * half; ++i) {
      std::string symbol = SETS[digit(first + i)];
      if (i < half && parity[i] == '1') std::reverse(symbol.begin(), symbol.end());
      if (i == half) widths += "11111";
      widths += symbol;
    }
    widths += "111";
  } else if (kind == BarcodeKind::Interleaved) {
    widths = "1111";
    for (size_t i = 0; i + 1 < text.size(); i += 2) {
      for (size_t k = 0; k < 5; ++k) {
        widths += PAIRS[digit(i)][k] == '1' ? '3' : '1';
        widths += PAIRS[digit(i + 1)][k] == '1' ? '3' : '1';
      }
    }
    widths += "311";
  } else if (kind == BarcodeKind::Msi) {
    widths = "21";
    for (const char c : text) {
      for (int bit = 8; bit > 0; bit /= 2) widths += ((c - '0') & bit) != 0 ? "21" : "12";
    }
    widths += "121";
  }
  return widths;
}

}  // namespace front
