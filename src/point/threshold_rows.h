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
};
ZEL_ROW_TABLE(ThresholdRows, thresholdRows)

}  // namespace zel
