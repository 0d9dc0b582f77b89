// The constants and the row routines of the operators.
#pragma once

#include "core/pixel_types.h"
#include "engine/point.h"

namespace zel {

// A constant in the forms that rules take.
struct OperatorConstant {
  int32_t value;  // integers; also the value that stands in for a second operand
  int32_t low;    // a range of first operands
  int32_t high;
  int32_t odd;    // 0 or 1: added before a pixel is halved
  float real;     // for float pixels
  double factor;  // for products that are truncated
};

using OperatorRoutine = PointRoutine<OperatorConstant>;

constexpr int32_t INTEGER_TYPES = 2;
constexpr int32_t SCALAR_TYPES = 3;

// A routine for each pair of scalar types in which the second is not above the first.
struct PairRoutines {
  OperatorRoutine u8, i16U8, i16, sglU8, sglI16, sgl;

  OperatorRoutine For(const PointViews& views) const {
    const int32_t second = views.second.type;
    switch (views.first.type) {
      case IMAGE_U8:
        return u8;
      case IMAGE_I16:
        return second == IMAGE_U8 ? i16U8 : i16;
      default:
        return second == IMAGE_U8 ? sglU8 : second == IMAGE_I16 ? sglI16 : sgl;
    }
  }
};

}  // namespace zel
