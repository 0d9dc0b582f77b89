// The row routines of conditional smoothing: a pixel that stands out from its neighbours takes
// their mean, all others stay.
#pragma once

#include <cstdint>

#include "engine/levels.h"
#include "engine/window.h"

namespace zel {

// Bits of each half of the tolerance, whose products with a mean fit 32 bits.
constexpr int32_t TOLERANCE_HALF_BITS = 12;

// A pixel c with a mean m of its neighbours is replaced where 100 |m - c| > tolerance x m. A mean
// of 0 counts as 1 there, and one below 0 replaces nothing.
struct SmoothingRule {
  int32_t columns, rows;  // of the window
  int64_t neighbours;
  double tolerance;  // percent

  // Sums of 16 bits: m is 2 x (sum x reciprocal >> 16) x power >> 16. Distances are compared with
  // (m x share >> 16), plus m where `wholes` has all bits set and not none.
  uint16_t reciprocal, power;
  uint16_t share, wholes;

  // Sums of 32 bits: 100 times the distance is compared with
  // (m x toleranceHigh + (m x toleranceLow >> TOLERANCE_HALF_BITS)) >> toleranceShift.
  int32_t toleranceHigh, toleranceLow, toleranceShift;
};

// A mean of integers from the sums of the window's columns. They are kept from row to row: what is
// left to do for a pixel grows with the logarithm of the window's width.
struct SlidingMean {
  int64_t sumBytes;
  void (*add)(const void* row, void* columnSums, int64_t count);
  void (*slide)(const void* entering, const void* leaving, void* columnSums, int64_t count);
  // `memory`: of three times as many sums as there are column sums.
  void (*row)(const void* columnSums, void* memory, const void* centre, void* to, int64_t width,
              const SmoothingRule& rule);
};

struct SmoothingRows {
  SlidingMean u8Words;          // in 16 bits: few neighbours, tolerance up to 100
  SlidingMean u8, i16;          // in 32 bits: tolerance up to 100
  SlidingMean u8Long, i16Long;  // in 64 bits: everything
  WindowRow<SmoothingRule> sgl;
};
ZEL_ROW_TABLE(SmoothingRows, smoothingRows)

}  // namespace zel
