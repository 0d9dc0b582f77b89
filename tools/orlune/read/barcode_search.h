// Bar codes found and read in a picture: where bars are, which way they run, and what most readings
// of them agree on.
#pragma once

#include <array>
#include <optional>
#include <string>

#include "orlune/inspect/regions.h"
#include "orlune/read/barcode_kinds.h"
#include "orlune/shared/pictures.h"

namespace front {

struct BarcodeSettings {
  BarcodeKind kind = BarcodeKind::Code128;
  bool validate = false;          // the kinds that leave it open are checked
  std::optional<Region> region;   // none: the whole picture
  std::optional<int> firstDigit;  // of an EAN-13; none: the one whose bars fit best
  bool swapBytes = false;
};

struct BarcodeReading {
  std::string text;
  Region place;                         // of the bars, in the picture or in the picture turned
  double angle = 0.0;                   // degrees by which it was turned
  std::array<PointFloat, 4> corners{};  // of the place, in the picture
  bool backward = false;                // the code runs from right to left
  int readings = 0;                     // that gave this text
  int attempts = 0;                     // lines or rectangles tried
};

// Looks for one code in an 8-bit picture. None where no text is read often enough. Throws
// LibraryFailure, and std::invalid_argument for a region outside the picture.
std::optional<BarcodeReading> FindBarcode(const Image& gray, const BarcodeSettings& settings);

}  // namespace front
