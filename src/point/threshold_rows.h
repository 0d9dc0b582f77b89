// The row routines of the thresholds.
#pragma once

#include "engine/levels.h"
#include "engine/point.h"
#include "orlune_ptk.h"

namespace zel {

// Pixels from low to high inclusive take the value, or keep their own; all others become 0.
template <class T>
struct ThresholdRange {
  T low, high;  // low above high: no pixel
  T value;
  bool keep;
};

// For each level from `low` to `high` as a split of a histogram: the means of the levels below it
// and of the others, and the sums of all distances to these. There is no mean below `low`.
struct SplitDeviations {
  int32_t low, high;
  const uint32_t* counts;  // LEVELS_U8, as all arrays
  const double* meansBelow;
  const double* meansFrom;
  double* sumsBelow;
  double* sumsFrom;
};

// A pixel in several ranges goes by the last of them.
struct WordRanges {
  const ThresholdRange<int16_t>* ranges;
  int32_t count;
};

// A pixel in several ranges goes by the first of them that makes it other than 0.
struct FloatRanges {
  const ThresholdClass* ranges;
  int32_t count;
};

struct ThresholdRows {
  PointRoutine<ThresholdRange<uint8_t>> rangeU8;
  PointRoutine<ThresholdRange<int16_t>> rangeI16;
  PointRoutine<ThresholdRange<float>> rangeSgl;
  PointRoutine<WordRanges> rangesI16;
  PointRoutine<FloatRanges> rangesSgl;
  void (*deviations)(const SplitDeviations& splits);
};
ZEL_ROW_TABLE(ThresholdRows, thresholdRows)

}  // namespace zel
