// Row routines of the Fourier transform. Several signals, rows or columns of an image, are
// transformed side by side: they are gathered so that the same element of each of them lies
// together, in the order of reversed bits, transformed, and scattered again.
#pragma once

#include <cstdint>

#include "core/views.h"
#include "engine/levels.h"

namespace zel {

// Signals side by side: as many complex numbers as a cache line holds.
constexpr int32_t FOURIER_SIGNALS = 8;

// The same element of each signal.
struct FourierElements {
  float real[FOURIER_SIGNALS];
  float imaginary[FOURIER_SIGNALS];
};
static_assert(sizeof(FourierElements) == 64);

// A factor of the butterflies: numbers of 32 bits, widened.
struct Twiddle {
  double real, imaginary;
};

// Signals side by side, and as many more groups of them as are gathered together.
struct FourierSignals {
  FourierElements* elements;  // on a boundary of cache lines
  int64_t length;             // of each signal: a power of 2, at least 16
  int64_t groups;
  int64_t groupStride;      // elements from one group to the next
  const Twiddle* twiddles;  // length / 2
};

// Pixels of FOURIER_SIGNALS rows, or of that many columns for each group. What is gathered is
// multiplied by a scale.
struct FourierPixels {
  uint8_t* origin;  // the first pixel of the first one
  int64_t pitch;    // bytes from one row to the next
  float scale;
};

using FourierCopy = void (*)(const FourierPixels& pixels, const FourierSignals& signals);

// By image type: the scalar ones and IMAGE_COMPLEX.
struct FourierCopies {
  FourierCopy u8, i16, sgl, complex;
};

struct FourierRows {
  FourierCopies gatherRows;  // of one group; the scale counts for complex pixels only
  FourierCopy scatterRows;   // of one group, as complex pixels
  FourierCopy gatherColumns;
  FourierCopies scatterColumns;  // magnitudes, but complex pixels as they are

  void (*transform)(const FourierSignals& signals);  // all groups
};
ZEL_ROW_TABLE(FourierRows, fourierRows)

}  // namespace zel
