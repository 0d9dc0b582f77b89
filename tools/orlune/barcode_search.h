// Bar codes found and read in a picture: where bars are, which way they run, and what most readings
// of them agree on.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "orlune/pictures.h"
#include "orlune/regions.h"

namespace front {

enum class BarcodeKind { Codabar, Interleaved, Msi, Code39, Code93, Code128, Ean8, Ean13, UpcA };

// Every kind with its name on the command line.
struct BarcodeKindRow {
  BarcodeKind kind;
  std::string_view name;
};
const std::vector<BarcodeKindRow>& AllBarcodeKinds();
std::string_view NameOf(BarcodeKind kind);

struct BarcodeSettings {
  BarcodeKind kind = BarcodeKind::Code128;
  bool validate = false;          // the kinds that leave it open are checked
  std::optional<Region> region;   // none: the whole picture
  std::optional<int> firstDigit;  // of an EAN-13; none: the one whose bars fit best
  bool swapBytes = false;
};

struct BarcodeReading {
  std::string text;
  Region place;           // of the bars, in the picture or in the picture turned
  double angle = 0.0;     // degrees by which it was turned
  bool backward = false;  // the code runs from right to left
  int readings = 0;       // that gave this text
  int attempts = 0;
};

// Looks for one code in an 8-bit picture. None where no text is read often enough. Throws
// LibraryFailure, and std::invalid_argument for a region outside the picture.
std::optional<BarcodeReading> FindBarcode(const Image& gray, const BarcodeSettings& settings);

}  // namespace front
