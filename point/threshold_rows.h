// Row loops of the thresholds, one table of them for each processor level.
#pragma once

#include "core/processor.h"
#include "point/lookup.h"

namespace zel {

// Pixels from low to high inclusive take the value, or keep their own; all others become 0.
template <class T>
struct ThresholdRange {
  T low, high;  // low above high: no pixel
  T value;
  bool keep;
};

// All loops take every pixel of the operation: masks are not looked at.
struct ThresholdRows {
  void (*rangeU8)(const LookupOperation& operation, const ThresholdRange<uint8_t>& range);
  void (*rangeI16)(const LookupOperation& operation, const ThresholdRange<int16_t>& range);
  void (*rangeSgl)(const LookupOperation& operation, const ThresholdRange<float>& range);
  // A pixel in several ranges goes by the last of them.
  void (*rangesI16)(const LookupOperation& operation, const ThresholdRange<int16_t>* ranges,
                    int32_t count);
  // A pixel in several classes goes by the first of them that makes it other than 0.
  void (*classesSgl)(const LookupOperation& operation, const ThresholdClass* classes,
                     int32_t count);
};

ZEL_ROW_TABLE(ThresholdRows, thresholdRows)

}  // namespace zel
