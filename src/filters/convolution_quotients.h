// Quotients of the sums of convolution as pixels, for its row routines.
#pragma once

#include <cstdint>

#include "engine/vectors.h"

namespace zel::ZEL_LEVEL {
namespace {

template <class Pixel>
constexpr double LOWEST = 0.0;
template <>
constexpr double LOWEST<int16_t> = INT16_MIN;
template <class Pixel>
constexpr double HIGHEST = UINT8_MAX;
template <>
constexpr double HIGHEST<int16_t> = INT16_MAX;

template <class Pixel, class Number>
ZEL_INLINE int32_t LimitedQuotient(Number quotient) {
  constexpr auto lowest = static_cast<Number>(LOWEST<Pixel>);
  constexpr auto highest = static_cast<Number>(HIGHEST<Pixel>);
  const Number upper = quotient < highest ? quotient : highest;
  return static_cast<int32_t>(upper > lowest ? upper : lowest);
}

template <class Pixel>
ZEL_INLINE Pixel Quotient(double sum, double reciprocal) {
  return static_cast<Pixel>(LimitedQuotient<Pixel>(sum * reciprocal));
}

}  // namespace
}  // namespace zel::ZEL_LEVEL
