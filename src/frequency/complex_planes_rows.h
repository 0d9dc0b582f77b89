// Row routines that take planes out of complex pixels and put them back.
#pragma once

#include "engine/levels.h"
#include "engine/point.h"
#include "orlune_ptk/frequency.h"

namespace zel {

constexpr int32_t COMPLEX_PLANES = 4;
constexpr int32_t COMPLEX_PARTS = 2;
constexpr int32_t PLANE_TYPES = 4;  // the scalar image types and IMAGE_COMPLEX

struct ComplexPlaneRows {
  // By ComplexPlane and by the type of the result.
  PointRoutine<NoRule> extract[COMPLEX_PLANES][PLANE_TYPES];
  // By the part that is replaced and by the type of the first operand.
  PointRoutine<NoRule> replace[COMPLEX_PARTS][PLANE_TYPES];
};
ZEL_ROW_TABLE(ComplexPlaneRows, complexPlaneRows)

}  // namespace zel
