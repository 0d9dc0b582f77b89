// Row routines of rotation.
#pragma once

#include <cstdint>

#include "engine/levels.h"

namespace zel {

// Positions in the source count 1024 to a pixel.
constexpr int32_t POSITION_BITS = 10;
constexpr int32_t POSITION_ONE = 1 << POSITION_BITS;

struct RotateRule {
  const uint8_t* origin;
  int64_t pitch;
  int32_t width, height;
  uint32_t stepX, stepY;  // of the position, from one result to the next
  uint32_t outside;       // the pixel that is no pixel of the source
};

// Results from a position on, which is kept modulo 2^32 and read as signed.
using RotateRow = void (*)(const RotateRule& rule, uint32_t x, uint32_t y, void* to, int32_t count);

struct RotateRoutines {
  RotateRow anywhere;
  RotateRow inside;  // where no result lies outside, and all pixels that are read are the image's:
  int32_t reach;     // the one at the floor of the position, so many to its right, one row below
};

// For the pixel types.
struct RotateMethod {
  RotateRoutines u8, i16, sgl, rgb;
};

struct RotateRows {
  RotateMethod nearest, bilinear;
};
ZEL_ROW_TABLE(RotateRows, rotateRows)

}  // namespace zel
