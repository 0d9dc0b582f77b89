// The origin and the angle of a part, from points on it.
#include <cmath>

#include "core/numbers.h"
#include "core/status.h"
#include "orlune_ptk.h"

namespace zel {
namespace {

constexpr double DEGREES_A_RADIAN = 57.29577867;

// As 32-bit integers wrap.
int32_t ProductWrapped(int32_t a, int32_t b) {
  return static_cast<int32_t>(static_cast<uint32_t>(a) * static_cast<uint32_t>(b));
}

struct CoordinateSystem {
  PointInt origin;
  float degrees, radians;
};

// Where the perpendicular from a point meets the line through `from` in direction (dx, dy), which
// is not (0, 0).
PointInt FootOf(PointInt point, PointInt from, int32_t dx, int32_t dy) {
  __extension__ using Wide = __int128;
  const int32_t s = SumWrapped(ProductWrapped(point.x, dx), ProductWrapped(point.y, dy));
  const int32_t c = DifferenceWrapped(ProductWrapped(dx, from.y), ProductWrapped(dy, from.x));
  const Wide n = Wide{dx} * dx + Wide{dy} * dy;
  const auto product = [](int32_t a, int32_t b) {
    return static_cast<double>(a) * static_cast<double>(b);
  };
  const auto x = CutLow<int64_t>(product(s, dx) - product(c, dy));
  const auto y = CutLow<int64_t>(product(dx, c) + product(s, dy));
  return {static_cast<int32_t>(x / n), static_cast<int32_t>(y / n)};
}

Status CoordinateReference(const PointInt* points, int32_t count, CoordinateSystem* system) {
  if (count < 2) return STATUS_TOO_FEW_POINTS;
  const int32_t dx = DifferenceWrapped(points[1].x, points[0].x);
  const int32_t dy = DifferenceWrapped(points[1].y, points[0].y);
  CoordinateSystem found{points[0], 90.0f, 1.5707964f};
  if (dx != 0) {
    const double angle = std::atan(static_cast<double>(dy) / dx);
    found.degrees = static_cast<float>(angle * DEGREES_A_RADIAN);
    found.radians = static_cast<float>(angle);
  }
  if (count > 2) {
    if (dx == 0 && dy == 0) return STATUS_DIVIDED_BY_ZERO;
    found.origin = FootOf(points[2], points[0], dx, dy);
  }
  *system = found;
  return STATUS_OK;
}

}  // namespace
}  // namespace zel

int32_t ZEL_CoordinateReference(const PointInt* points, int32_t count, PointInt* origin,
                                float* angleDegrees, float* angleRadians) {
  const bool isMissing = (!points && count > 0) || !origin || !angleDegrees || !angleRadians;
  zel::CoordinateSystem system{};
  const zel::Status status =
      isMissing ? zel::STATUS_NULL_POINTER : zel::CoordinateReference(points, count, &system);
  if (status == zel::STATUS_OK) {
    *origin = system.origin;
    *angleDegrees = system.degrees;
    *angleRadians = system.radians;
  }
  return ZEL_ProcessError("ZEL_CoordinateReference", status);
}
