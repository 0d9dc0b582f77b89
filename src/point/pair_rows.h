// For row sources only: the routines of one rule for all pairs of scalar types.
#pragma once

#include "point/operator_rules.h"

namespace zel::ZEL_LEVEL {
namespace {

// The result has the first operand's type; the second is widened to it.
template <class First, class Second, class Rule>
void Images(const PointViews& views, const OperatorConstant&) {
  CombineSamePlace<First, Second, First>(
      views, [](First a, Second b) { return Rule()(a, static_cast<First>(b)); });
}

template <class Rule>
constexpr PairRoutines IMAGES = {
    .u8 = &Images<uint8_t, uint8_t, Rule>,
    .i16U8 = &Images<int16_t, uint8_t, Rule>,
    .i16 = &Images<int16_t, int16_t, Rule>,
    .sglU8 = &Images<float, uint8_t, Rule>,
    .sglI16 = &Images<float, int16_t, Rule>,
    .sgl = &Images<float, float, Rule>,
};

// With OperatorConstant::real in place of the second operand.
template <class Rule>
void FloatConstant(const PointViews& views, const OperatorConstant& given) {
  const float constant = given.real;
  MapSamePlace<float, float>(views, [=](float a) { return Rule()(a, constant); });
}

}  // namespace
}  // namespace zel::ZEL_LEVEL
