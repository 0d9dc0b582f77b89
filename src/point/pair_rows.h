// For row sources only: the routines of one rule for all pairs of scalar types.
#pragma once

#include "point/plane.h"

namespace zel::ZEL_LEVEL {
namespace {

// The result has the first operand's type; the second is widened to it.
template <class First, class Second, class Rule>
void Images(const Plane& plane) {
  ForPixelPairs<First, Second, First>(
      plane, [](First a, Second b) { return Rule()(a, static_cast<First>(b)); });
}

template <class Rule>
constexpr PairRoutines IMAGES = {{
    &Images<uint8_t, uint8_t, Rule>,
    &Images<int16_t, uint8_t, Rule>,
    &Images<int16_t, int16_t, Rule>,
    &Images<float, uint8_t, Rule>,
    &Images<float, int16_t, Rule>,
    &Images<float, float, Rule>,
}};

// With PlaneConstant::real in place of the second operand.
template <class Rule>
void FloatConstant(const Plane& plane) {
  const float constant = plane.constant.real;
  ForPixels<float, float>(plane, [=](float a) { return Rule()(a, constant); });
}

}  // namespace
}  // namespace zel::ZEL_LEVEL
