// Rows of pixels copied from one view to another.
#pragma once

#include <cstring>

#include "core/numbers.h"
#include "core/views.h"

namespace zel {

// All rows of views of one size. Short ones of whole blocks go in blocks: a call for each would
// cost more than its bytes. The views are copies, as the compiler takes bytes that are written for
// any others.
ZEL_INLINE void RowsCopy(PixelView from, PixelView to) {
  constexpr int64_t blockBytes = 64;
  constexpr int64_t longRow = 1024;
  const int64_t bytes = to.RowBytes();
  const int64_t inBlocks = bytes < longRow && bytes % blockBytes == 0 ? bytes : 0;
  for (int64_t y = 0; y < to.height; y++) {
    const auto* source = from.Row<uint8_t>(y);
    auto* result = to.Row<uint8_t>(y);
    for (int64_t i = 0; i < inBlocks; i += blockBytes) {
      std::memcpy(result + i, source + i, blockBytes);
    }
    if (inBlocks < bytes) std::memcpy(result, source, static_cast<size_t>(bytes));
  }
}

}  // namespace zel
