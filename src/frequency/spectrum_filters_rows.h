// Row routines that weight frequencies.
#pragma once

#include <cstdint>

#include "engine/levels.h"

namespace zel {

// A row of a spectrum and what all of its weights have in common.
struct WeightedRow {
  const float* from;
  float* to;      // may be `from`
  int64_t width;  // pixels
  float factor;
};
using WeightRow = void (*)(const WeightedRow& row);

// Pixels of one float and of two.
struct WeightRoutines {
  WeightRow one, two;
};

struct SpectrumFilterRows {
  // A weight is the factor times a distance: from the middle column, or from the nearest side.
  WeightRoutines fromMiddle, fromSides;
};
ZEL_ROW_TABLE(SpectrumFilterRows, spectrumFilterRows)

}  // namespace zel
