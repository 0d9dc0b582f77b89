// Row routines that map pixels to the 256 levels of a palette.
#pragma once

#include <cstdint>

#include "engine/levels.h"

namespace zel {

// pixel * slope + offset, in doubles, of which the low 8 bits are shown: the largest pixel often
// lands on 254.
struct LevelLine {
  float slope = 1;
  float offset = 0;

  double At(double pixel) const { return pixel * double{slope} + double{offset}; }
};

// Pixels that the line takes to what 32-bit integers hold, and NaN, which is shown as 0.
using LevelsRow = void (*)(const void* pixels, const LevelLine& line, int32_t width, uint8_t* to);

struct ShadowRows {
  LevelsRow ofWords, ofFloats;
};
ZEL_ROW_TABLE(ShadowRows, shadowRows)

}  // namespace zel
