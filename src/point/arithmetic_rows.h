// The row routines of arithmetic, by operation and by the types of the operands.
#pragma once

#include "engine/levels.h"
#include "point/operator_rules.h"

namespace zel {

// Factors of these sizes saturate every integer pixel but 0, so that larger ones need not be taken:
// in a product, and in a product that is divided by another pixel.
constexpr double SCALE_LIMIT = 65535.0;
constexpr double FACTOR_LIMIT_U8 = 65535.0;
constexpr double FACTOR_LIMIT_I16 = 1073741824.0;

struct ArithmeticRows {
  PairRoutines add, subtract, multiply, divide, modulo;
  // With OperatorConstant::factor (integers: finite, within its limit), except I16 by U8, which
  // takes value.
  PairRoutines mulDiv;

  // Constants arrive prepared, by integer type:
  // the pixel limited to low..high, plus value; the low bits of the sum are the result
  OperatorRoutine addConstant[INTEGER_TYPES];
  // the pixel x factor (within SCALE_LIMIT), truncated and saturated
  OperatorRoutine scale[INTEGER_TYPES];
  // the remainder of a division by value, from 1 to 32769, with the sign of the pixel
  OperatorRoutine moduloConstant[INTEGER_TYPES];
  // U8: the pixel x value, at most 255
  OperatorRoutine multiplyByte;

  // floats, with OperatorConstant::real
  OperatorRoutine addFloat, subtractFloat, multiplyFloat, divideFloat, moduloFloat;
};
ZEL_ROW_TABLE(ArithmeticRows, arithmeticRows)

}  // namespace zel
