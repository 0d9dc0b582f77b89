// Bits of a row, one a pixel, put into bytes.
#pragma once

#include <cstdint>

#include "engine/levels.h"

namespace zel {

// Bits beyond the row may be set: they don't count.
struct BitRows {
  // Where a bit is set: the value, or one more up to 255. Other pixels are left as they are.
  void (*store)(uint8_t* to, const uint64_t* bits, int32_t width, uint8_t value);
  void (*count)(uint8_t* to, const uint64_t* bits, int32_t width);
};
ZEL_ROW_TABLE(BitRows, bitRows)

}  // namespace zel
