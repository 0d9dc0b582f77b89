// The row routines of convolution: sums of a window's pixels, each times a coefficient, and their
// quotients.
#pragma once

#include <cstdint>

#include "engine/levels.h"
#include "engine/window.h"

namespace zel {

// A coefficient and where its pixel lies.
struct ConvolutionTap {
  int32_t row;     // of the window
  int32_t column;  // counted from the result's
  int32_t whole;   // the coefficient as an integer; not set where one is fractional
  float real;
};

struct ConvolutionRule {
  const ConvolutionTap* taps;
  int32_t tapCount;

  // U8: the sums of so many columns from the left are cut to 16 bits.
  int32_t wrappedColumns;

  float divider;
  // Of the divider, and a little more: the product with it, cut toward zero, is the quotient.
  double reciprocal;
};

struct ConvolutionRows {
  WindowRow<ConvolutionRule> u8Wrapped;  // whole coefficients, a divider of 1
  WindowRows<ConvolutionRule> whole;     // sums of 32 bits; none for SGL
  WindowRows<ConvolutionRule> real;      // sums of floats
};
ZEL_ROW_TABLE(ConvolutionRows, convolutionRows)

}  // namespace zel
