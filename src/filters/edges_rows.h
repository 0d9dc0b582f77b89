// The row routines of edge operators.
#pragma once

#include <cstdint>

#include "engine/levels.h"
#include "engine/window.h"

namespace zel {

// A result below a limit becomes 0.
struct EdgeRule {
  uint8_t byteLimit;  // U8: the limit where it lies within the range of results,
  uint8_t byteKept;   // and 0 where it lies above, so that nothing is kept; else 255
  int32_t limit;      // I16
  double realLimit;   // SGL
};

// All of them look at the rows above and below a pixel and at the columns beside it.
struct EdgeRows {
  WindowRows<EdgeRule> differentiation, gradient, prewitt, roberts, sigma, sobel;
  // SGL where the limit is not above 0: the same results, computed in floats.
  struct {
    WindowRow<EdgeRule> differentiation, gradient, roberts;
  } singles;
};
ZEL_ROW_TABLE(EdgeRows, edgeRows)

}  // namespace zel
