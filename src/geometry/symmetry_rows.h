// Row routines of mirrored and transposed images.
#pragma once

#include <cstdint>

#include "core/pixel_types.h"
#include "engine/levels.h"

namespace zel {

// The pixels of a row in reverse order.
using ReverseRow = void (*)(const void* from, void* to, int32_t count);

// A block of pixels whose rows become columns: pixel (x, y) of `from` goes to (y, x) of `to`. Rows
// may follow each other upward.
struct TransposeBlock {
  const uint8_t* from;
  int64_t fromPitch;
  uint8_t* to;
  int64_t toPitch;
  int64_t width, height;  // of `from`
};
using TransposeRoutine = void (*)(const TransposeBlock& block);

struct SymmetryRows {
  ByPixelBytes<ReverseRow> reverse;
  ByPixelBytes<TransposeRoutine> transpose;
  // The same, past the caches: in whole lines, which are not read before they are written.
  ByPixelBytes<TransposeRoutine> transposeStreaming;
};
ZEL_ROW_TABLE(SymmetryRows, symmetryRows)

}  // namespace zel
