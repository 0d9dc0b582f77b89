// The row routines of arithmetic, by operation and by the types of the operands.
#pragma once

#include "engine/levels.h"
#include "point/plane.h"

namespace zel {

enum ArithmeticOperation : int32_t {
  ARITHMETIC_ADD = 0,
  ARITHMETIC_SUBTRACT = 1,
  ARITHMETIC_MULTIPLY = 2,
  ARITHMETIC_DIVIDE = 3,
  ARITHMETIC_MODULO = 4,
  ARITHMETIC_MULDIV = 5,
  ARITHMETIC_COUNT = 6,
};

// Factors of these sizes saturate every integer pixel but 0, so that larger ones need not be taken:
// in a product, and in a product that is divided by another pixel.
constexpr double SCALE_LIMIT = 65535.0;
constexpr double FACTOR_LIMIT_U8 = 65535.0;
constexpr double FACTOR_LIMIT_I16 = 1073741824.0;

struct ArithmeticRows {
  // With PlaneConstant::factor in ARITHMETIC_MULDIV (integers: finite, within its limit), except
  // I16 by U8, which takes value.
  PairRoutines images[ARITHMETIC_COUNT];
  // Constants arrive prepared:
  // integers: the pixel limited to low..high, plus value; the low bits of the sum are the result
  PlaneRoutine addConstant[2];
  // integers: the pixel x factor (within SCALE_LIMIT), cut and saturated
  PlaneRoutine scale[2];
  // integers: the remainder of a division by value, from 1 to 32769, with the sign of the pixel
  PlaneRoutine moduloConstant[2];
  // U8: the pixel x value, at most 255
  PlaneRoutine multiplyByte;
  // floats, by ArithmeticOperation
  PlaneRoutine floatConstant[ARITHMETIC_MULDIV];
};
ZEL_ROW_TABLE(ArithmeticRows, arithmeticRows)

}  // namespace zel
