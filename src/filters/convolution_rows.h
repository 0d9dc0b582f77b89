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
  double real;
};

// Two neighbouring coefficients of a row, with the first one's place. Bytes (U8) or words (I16) of
// the weights, the first one lowest, and once more where there is room.
struct ConvolutionTerm {
  int32_t row;
  int32_t column;
  uint32_t weights;
  bool isLast;  // of those whose sums, of bytes, are sure to fit 16 bits
};

struct ConvolutionRule {
  int32_t columns, rows;  // of the window

  const ConvolutionTap* taps;  // all of them for sums of floats, else those that are not 0
  int32_t tapCount;

  // The same for whole coefficients that fit bytes or words with a sign, in pairs of which none can
  // have a sum beyond 16 bits; else there are none.
  const ConvolutionTerm* terms;
  int32_t termCount;

  // U8: the sums of so many columns from the left are cut to 16 bits.
  int32_t wrappedColumns;

  float divider;
  // Of the divider, and a little more: the product with it, cut toward zero, is the quotient.
  double reciprocal;
  // U8, where sums fit 16 bits: (sum x multiplier >> 16) >> shift is the quotient of a sum that is
  // not negative.
  uint16_t multiplier, shift;
};

// A matrix that is the product of a column and a row of coefficients, but for its centre: rows are
// summed up once, for all windows that they lie in, in 16 bits that wrap around.
constexpr int32_t CONVOLUTION_MOST_FACTOR_ROWS = 32;
struct ConvolutionFactors {
  ConvolutionRule across;  // the row, as a matrix of its own, for all columns
  int16_t down[CONVOLUTION_MOST_FACTOR_ROWS];
  int32_t rows;
  int16_t centre;  // what the matrix's centre has besides
};

// Bytes that the sums of a row take.
constexpr int64_t ConvolutionSumsBytes(int64_t width) {
  constexpr int64_t mostColumnsOfGroup = 64;
  return (width / mostColumnsOfGroup + 1) * mostColumnsOfGroup * 2;
}
using ConvolutionAcross = void (*)(const void* row, uint8_t* sums, int32_t width,
                                   const ConvolutionFactors& factors);
// A row of results, all in 16 bits, from the sums of the window's rows. `rule` is that of the whole
// matrix.
using ConvolutionDown = void (*)(const uint8_t* const* sums, const void* centre, void* to,
                                 const ConvolutionFactors& factors, const ConvolutionRule& rule);

struct ConvolutionRows {
  // U8, sums of 16 bits: limited, or divided by the multiplier where they have a sign or not.
  WindowRow<ConvolutionRule> wrapped, dividedSigned, dividedUnsigned;
  // The same by factors.
  ConvolutionAcross across;
  ConvolutionDown wrappedDown, dividedSignedDown, dividedUnsignedDown;
  WindowRows<ConvolutionRule> whole;  // sums of 32 bits; none for SGL
};
ZEL_ROW_TABLE(ConvolutionRows, convolutionRows)

// ---- sums of floats

constexpr int32_t CONVOLUTION_ROWS_AT_ONCE = 4;

// The columns of a block of results, and the 64-bit floats that the pixels of a row below it
// become: those of all rows that it is made of lie in the nearest cache.
constexpr int64_t CONVOLUTION_BLOCK = 256;
constexpr int64_t ConvolutionBlockPitch(const ConvolutionRule& rule) {
  constexpr int64_t lineNumbers = 8;
  return (CONVOLUTION_BLOCK + rule.columns - 1 + lineNumbers - 1) / lineNumbers * lineNumbers;
}
constexpr int64_t ConvolutionBlockNumbers(const ConvolutionRule& rule) {
  return (int64_t{rule.rows} + CONVOLUTION_ROWS_AT_ONCE - 1) * ConvolutionBlockPitch(rule);
}

// Rows of results. rows[j] begins with the first column of the first window, in the j-th row that
// the window of the first row of results covers; the row below has that window's rows one later.
// `numbers` has room for ConvolutionBlockNumbers.
using ConvolutionRealRow = void (*)(const void* const* rows, void* const* to, int32_t width,
                                    const ConvolutionRule& rule, double* numbers);
struct ConvolutionRealRows {
  ConvolutionRealRow one, atOnce;  // one row of results, and CONVOLUTION_ROWS_AT_ONCE
};
struct ConvolutionRealTypes {
  ConvolutionRealRows u8, i16, sgl;

  const ConvolutionRealRows& For(int32_t type) const {
    return type == IMAGE_U8 ? u8 : type == IMAGE_I16 ? i16 : sgl;
  }
};
ZEL_ROW_TABLE(ConvolutionRealTypes, convolutionRealRows)

}  // namespace zel
