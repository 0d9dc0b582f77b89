// The library's readers of bar codes, called by kind.
#pragma once

#include <optional>
#include <string>

#include "orlune/read/barcode_kinds.h"
#include "orlune/shared/pictures.h"

namespace front {

// The part of an upright picture that its bars fill; both ends included.
struct Bars {
  int32_t left, top, right, bottom;
};

struct BarcodeCall {
  BarcodeKind kind;
  bool validate = false;
  bool backward = false;
  int firstDigit = 0;  // of an EAN-13
};

// What the reader gives for a part of an 8-bit picture; nothing where it refuses. Throws
// LibraryFailure where there is no memory.
std::optional<std::string> ReadBars(const Image& gray, const Bars& area, const BarcodeCall& call);

// The same for bars of these widths in modules, drawn.
std::optional<std::string> ReadWidths(const std::string& widths, const BarcodeCall& call);

}  // namespace front
