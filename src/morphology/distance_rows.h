// The row routines of distance maps.
#pragma once

#include <cstdint>

#include "engine/levels.h"

namespace zel {

struct DistanceRows {
  // Steps to the background: columns in the low byte, rows in the high one. The pixels from start
  // to end, without that, take one step more than their neighbour has, where that is nearer.
  void (*improveFromRow)(uint16_t* row, const uint16_t* from, int32_t start, int32_t end);
  void (*improveFromLeft)(uint16_t* row, int32_t start, int32_t end);
  void (*improveFromRight)(uint16_t* row, int32_t start, int32_t end);
  // Their lengths, cut toward zero; the low 8 bits.
  void (*lengths)(uint8_t* to, const uint16_t* steps, int32_t start, int32_t end);

  // 255 for the pixels of the middle one of five rows that nothing around them, up to two columns
  // away, is greater than; else 0. For the columns from 2 to width - 2, with `width` bytes of
  // memory.
  void (*maxima)(const uint8_t* const* rows, uint8_t* to, int32_t width, uint8_t* memory);
};
ZEL_ROW_TABLE(DistanceRows, distanceRows)

}  // namespace zel
