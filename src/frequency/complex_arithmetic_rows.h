// The row routines of complex arithmetic.
#pragma once

#include "engine/levels.h"
#include "engine/point.h"

namespace zel {

// Routines by the type of the second operand.
struct ComplexPairRoutines {
  PointRoutine<NoRule> u8, i16, sgl, complex;
  PointRoutine<NoRule> For(int32_t type) const;
};

struct ComplexConstant {
  float real, imaginary;
  float square;  // of its magnitude
};

struct ComplexArithmeticRows {
  ComplexPairRoutines add, subtract, multiply, divide;
  PointRoutine<ComplexConstant> addConstant, multiplyConstant, divideConstant;
  PointRoutine<NoRule> conjugate;
};
ZEL_ROW_TABLE(ComplexArithmeticRows, complexArithmeticRows)

}  // namespace zel
