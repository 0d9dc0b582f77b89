// The row routines of seed fills.
#pragma once

#include <cstdint>

#include "engine/levels.h"

namespace zel {

// Values from low to high, both included.
struct ValueRange {
  float low, high;          // SGL
  int32_t lowest, highest;  // U8 and I16, within the type's limits
};

struct MagicWandRows {
  // 1 for each pixel of a row in the range, 0 for the others.
  void (*inRangeU8)(const void* row, int32_t width, const ValueRange& range, uint8_t* flags);
  void (*inRangeI16)(const void* row, int32_t width, const ValueRange& range, uint8_t* flags);
  void (*inRangeSgl)(const void* row, int32_t width, const ValueRange& range, uint8_t* flags);
};
ZEL_ROW_TABLE(MagicWandRows, magicWandRows)

}  // namespace zel
