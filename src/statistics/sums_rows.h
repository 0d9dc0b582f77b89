// Row routines that sum up pixels.
#pragma once

#include "engine/levels.h"
#include "statistics/pixel_sums.h"

namespace zel {

// Adds `count` pixels that lie side by side. Those of integer types are summed in any order: the
// caller asks SquaresAreExact in the end.
using AddRow = void (*)(const void* pixels, int32_t count, PixelSums* sums);

// Sums of weighted pixels: x and y count from the corner of the region.
struct MomentSums {
  double sum = 0;
  double x = 0;  // sum of x * pixel
  double y = 0;
};

// Adds a row of integer pixels, in any order, for sums that stay exact. A null mask selects all.
using MomentRow = void (*)(const void* row, const uint8_t* mask, int32_t width, int32_t y,
                           MomentSums* sums);

// Widens running extremes by a row of pixels; those where a mask is 0 are left out.
using ExtremesRow = void (*)(const void* row, const uint8_t* mask, int32_t width, float* min,
                             float* max);

struct SumsRows {
  ExtremesRow extremes[3];  // U8, I16, SGL
  AddRow add[3];            // U8, I16, SGL
  MomentRow moments[2];     // U8, I16
};
ZEL_ROW_TABLE(SumsRows, sumsRows)

}  // namespace zel
