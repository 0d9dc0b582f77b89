// Row routines of copies that repeat pixels or leave some out.
#pragma once

#include "core/pixel_types.h"
#include "engine/levels.h"

namespace zel {

// Each of `count` pixels `times` times.
using RepeatRow = void (*)(const void* from, void* to, int32_t count, int32_t times);
// `count` pixels, of which each is `stride` behind the one before.
using SkipRow = void (*)(const void* from, void* to, int32_t count, int32_t stride);

struct CopyingRows {
  ByPixelBytes<RepeatRow> repeat;
  ByPixelBytes<SkipRow> skip;
};
ZEL_ROW_TABLE(CopyingRows, copyingRows)

}  // namespace zel
