// Routines of cubic splines: several lines of numbers side by side.
#pragma once

#include <cstdint>

#include "engine/levels.h"
#include "utilities/resample_rows.h"

namespace zel {

constexpr int32_t SPLINE_LANES = 8;

// What the sweeps divide by and multiply with at a sample: the same for all lines.
struct SplinePivot {
  double divisor, factor;
};

// Lines side by side: sample i of line k is samples[i * pitch + k].
struct SplineLines {
  const double* samples;
  int64_t pitch;
  int32_t count;  // of samples, at least 1
};

struct SplineRows {
  // The second derivatives at all samples, SPLINE_LANES in a row.
  void (*sweep)(const SplineLines& lines, const SplinePivot* pivots, double* seconds);
  // The values at so many positions, each a step behind the one before.
  void (*evaluate)(const SplineLines& lines, const double* seconds, double step, double* to,
                   int32_t results);
  // A line of numbers, each `stride` behind the one before, to one lane.
  ByNumber<void (*)(const void* from, int32_t stride, double* lane, int32_t count)> load;
};
ZEL_ROW_TABLE(SplineRows, splineRows)

}  // namespace zel
