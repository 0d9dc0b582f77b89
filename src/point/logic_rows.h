// The row routines of bitwise operators and of masking.
#pragma once

#include "engine/levels.h"
#include "point/plane.h"

namespace zel {

enum LogicOperation : int32_t {
  LOGIC_AND = 0,
  LOGIC_NOT_AND = 1,
  LOGIC_OR = 2,
  LOGIC_NOT_OR = 3,
  LOGIC_XOR = 4,
  LOGIC_NOT_XOR = 5,
  LOGIC_DIFF = 6,  // first and not second
  LOGIC_COUNT = 7,
};

// Routines by the size of a pixel.
enum PixelWidth : int32_t { PIXEL_1, PIXEL_2, PIXEL_4, PIXEL_8, PIXEL_WIDTHS };

struct LogicRows {
  PlaneRoutine images[LOGIC_COUNT];  // bytes, whatever the pixel type
  // by PlaneBits
  PlaneRoutine keepAndFlip[PIXEL_8];
  // flip where the pixel is 0, else 0
  PlaneRoutine constantIfZero[PIXEL_8];
  // the pixel where the second operand, of bytes, is not 0, else 0
  PlaneRoutine mask[PIXEL_WIDTHS];
};
ZEL_ROW_TABLE(LogicRows, logicRows)

}  // namespace zel
