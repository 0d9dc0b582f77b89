// Row routines of the colour threshold.
#pragma once

#include "engine/levels.h"
#include "engine/point.h"

namespace zel {

// The bytes from low to low + span, or all others.
struct ByteRange {
  uint8_t low, span;
  bool isOutside;
};

// Pixels whose three components all lie in their ranges take the value, all others 0.
struct ColourRanges {
  ByteRange ranges[3];  // red, green, blue; the whole one of a component that doesn't count
  uint8_t value;
};

struct ColourThresholdRows {
  PointRoutine<ColourRanges> rgb;  // no range may be one outside
  // Results whose component lies outside its range become 0.
  void (*restrict)(const uint8_t* component, const ByteRange& range, uint8_t* result,
                   int64_t count);
};
ZEL_ROW_TABLE(ColourThresholdRows, colourThresholdRows)

}  // namespace zel
