// The row routines of bitwise operators and of masking.
#pragma once

#include <bit>

#include "engine/levels.h"
#include "engine/point.h"

namespace zel {

// Every bitwise operation with a constant: (pixel and keep) xor flip.
struct BitConstant {
  uint32_t keep;
  uint32_t flip;
};

// Routines by the size of a pixel.
enum PixelWidth : int32_t { PIXEL_1, PIXEL_2, PIXEL_4, PIXEL_8, PIXEL_WIDTHS };
inline PixelWidth PixelWidthOf(const PixelView& view) {
  return static_cast<PixelWidth>(std::countr_zero(static_cast<uint32_t>(view.pixelBytes)));
}

struct LogicRows {
  // Two images as bytes, whatever the pixel type.
  PointRoutine<NoRule> bitAnd, notAnd, bitOr, notOr, bitXor, notXor, difference;
  PointRoutine<BitConstant> keepAndFlip[PIXEL_8];
  // The pixel where the second operand, of bytes, is not 0, else 0.
  PointRoutine<NoRule> mask[PIXEL_WIDTHS];
};
ZEL_ROW_TABLE(LogicRows, logicRows)

}  // namespace zel
