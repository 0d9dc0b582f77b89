// What the statistics of pixels are computed from.
#pragma once

#include <cstdint>

#include "core/numbers.h"

namespace zel {

constexpr float EXTREME_NONE = 1e38f;  // where running extremes start, and its negative

// Sums in 64-bit floats in the order of the pixels. Those of whole numbers are exact up to this
// one, in whatever order.
constexpr double EXACT_SUM_LIMIT = 9007199254740992.0;  // 2^53

struct PixelSums {
  double sum = 0;
  double squares = 0;
  int64_t count = 0;
  float min = EXTREME_NONE;
  float max = -EXTREME_NONE;

  // For callers that summed whole numbers in another order.
  bool SquaresAreExact() const { return squares <= EXACT_SUM_LIMIT; }
};

// The next pixel in order. NaN is no extreme.
ZEL_INLINE void PixelSumsAdd(PixelSums* sums, float pixel) {
  const double value = static_cast<double>(pixel);
  sums->sum += value;
  sums->squares += value * value;
  sums->count++;
  if (pixel < sums->min) sums->min = pixel;
  if (pixel > sums->max) sums->max = pixel;
}

// The standard deviation after a mean as reports hold it. That mean is rounded, so that the
// difference behind the root can fall below 0: then it counts as 0.
double DeviationOf(double squares, double count, float mean);

}  // namespace zel
