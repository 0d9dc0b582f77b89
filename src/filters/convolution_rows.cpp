// Row routines of convolution: for a block of columns, first the sums of all windows, coefficient
// after coefficient, then their quotients.
#include "filters/convolution_rows.h"

#include <cstdint>

#include "core/numbers.h"

namespace zel::ZEL_LEVEL {
namespace {

constexpr int64_t BLOCK = 256;

// Integer sums wrap around.
template <class Pixel, class Sum>
ZEL_INLINE void WholeSums(const void* const* rows, int64_t first, int64_t count,
                          const ConvolutionRule& rule, Sum* __restrict sums) {
  for (int64_t x = 0; x < count; x++) sums[x] = 0;
  for (int32_t i = 0; i < rule.tapCount; i++) {
    const ConvolutionTap& tap = rule.taps[i];
    const Pixel* pixels = static_cast<const Pixel*>(rows[tap.row]) + first + tap.column;
    const auto coefficient = static_cast<Sum>(tap.whole);
    for (int64_t x = 0; x < count; x++) {
      sums[x] = static_cast<Sum>(sums[x] + coefficient * static_cast<Sum>(pixels[x]));
    }
  }
}

// Products of two 32-bit floats are exact; sums are rounded, so their order is kept.
template <class Pixel>
ZEL_INLINE void RealSums(const void* const* rows, int64_t first, int64_t count,
                         const ConvolutionRule& rule, double* __restrict sums) {
  for (int64_t x = 0; x < count; x++) sums[x] = 0.0;
  for (int32_t i = 0; i < rule.tapCount; i++) {
    const ConvolutionTap& tap = rule.taps[i];
    const Pixel* pixels = static_cast<const Pixel*>(rows[tap.row]) + first + tap.column;
    const auto coefficient = static_cast<double>(tap.real);
    for (int64_t x = 0; x < count; x++) sums[x] += coefficient * static_cast<double>(pixels[x]);
  }
}

template <class Pixel>
constexpr double LOWEST = 0.0;
template <>
constexpr double LOWEST<int16_t> = INT16_MIN;
template <class Pixel>
constexpr double HIGHEST = UINT8_MAX;
template <>
constexpr double HIGHEST<int16_t> = INT16_MAX;

template <class Pixel>
ZEL_INLINE Pixel Quotient(double sum, double reciprocal) {
  const double quotient = sum * reciprocal;
  const double upper = quotient < HIGHEST<Pixel> ? quotient : HIGHEST<Pixel>;
  return static_cast<Pixel>(static_cast<int32_t>(upper > LOWEST<Pixel> ? upper : LOWEST<Pixel>));
}

template <class Pixel>
void WholeColumns(const void* const* rows, void* to, int64_t begin, int64_t end,
                  const ConvolutionRule& rule) {
  uint32_t sums[BLOCK];
  const double reciprocal = rule.reciprocal;
  for (int64_t first = begin; first < end; first += BLOCK) {
    const int64_t count = end - first < BLOCK ? end - first : BLOCK;
    WholeSums<Pixel>(rows, first, count, rule, sums);
    Pixel* __restrict results = static_cast<Pixel*>(to) + first;
    for (int64_t x = 0; x < count; x++) {
      results[x] = Quotient<Pixel>(static_cast<int32_t>(sums[x]), reciprocal);
    }
  }
}

template <class Pixel>
void WholeRow(const void* const* rows, void* to, int32_t width, const ConvolutionRule& rule) {
  WholeColumns<Pixel>(rows, to, 0, width, rule);
}

void WrappedColumns(const void* const* rows, void* to, int64_t end, const ConvolutionRule& rule) {
  uint16_t sums[BLOCK];
  for (int64_t first = 0; first < end; first += BLOCK) {
    const int64_t count = end - first < BLOCK ? end - first : BLOCK;
    WholeSums<uint8_t>(rows, first, count, rule, sums);
    uint8_t* __restrict results = static_cast<uint8_t*>(to) + first;
    for (int64_t x = 0; x < count; x++) {
      const auto sum = static_cast<int16_t>(sums[x]);
      const int16_t upper = sum < UINT8_MAX ? sum : int16_t{UINT8_MAX};
      results[x] = static_cast<uint8_t>(upper > 0 ? upper : 0);
    }
  }
}

void WrappedRow(const void* const* rows, void* to, int32_t width, const ConvolutionRule& rule) {
  WrappedColumns(rows, to, rule.wrappedColumns, rule);
  WholeColumns<uint8_t>(rows, to, rule.wrappedColumns, width, rule);
}

// Of a sum that is no number, 0.
template <class Pixel>
ZEL_INLINE Pixel QuotientOrZero(double sum, double reciprocal) {
  const double quotient = sum * reciprocal;
  return Quotient<Pixel>(quotient == quotient ? quotient : 0.0, 1.0);
}

template <class Pixel>
void RealRow(const void* const* rows, void* to, int32_t width, const ConvolutionRule& rule) {
  double sums[BLOCK];
  const double reciprocal = rule.reciprocal;
  for (int64_t first = 0; first < width; first += BLOCK) {
    const int64_t count = width - first < BLOCK ? width - first : BLOCK;
    RealSums<Pixel>(rows, first, count, rule, sums);
    Pixel* __restrict results = static_cast<Pixel*>(to) + first;
    for (int64_t x = 0; x < count; x++) {
      const auto sum = static_cast<double>(static_cast<float>(sums[x]));
      results[x] = QuotientOrZero<Pixel>(sum, reciprocal);
    }
  }
}

// The 64-bit quotient of two 32-bit floats, rounded to 32 bits, is their 32-bit quotient: as it is
// no closer to the middle between two of these than 2^-49 of its size, or lies there, rounding to
// 53 bits before doesn't carry it across.
void FloatRow(const void* const* rows, void* to, int32_t width, const ConvolutionRule& rule) {
  double sums[BLOCK];
  const float divider = rule.divider;
  for (int64_t first = 0; first < width; first += BLOCK) {
    const int64_t count = width - first < BLOCK ? width - first : BLOCK;
    RealSums<float>(rows, first, count, rule, sums);
    float* __restrict results = static_cast<float*>(to) + first;
    for (int64_t x = 0; x < count; x++) results[x] = static_cast<float>(sums[x]) / divider;
  }
}

}  // namespace

extern const ConvolutionRows convolutionRows = {
    .u8Wrapped = &WrappedRow,
    .whole = {.u8 = &WholeRow<uint8_t>, .i16 = &WholeRow<int16_t>, .sgl = nullptr},
    .real = {.u8 = &RealRow<uint8_t>, .i16 = &RealRow<int16_t>, .sgl = &FloatRow},
};

}  // namespace zel::ZEL_LEVEL
