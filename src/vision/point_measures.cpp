// Measures of points: a circle through them, angles between them, distances from one to the next.
#include <algorithm>
#include <cmath>

#include "core/numbers.h"
#include "core/status.h"
#include "vision/point_distance.h"
#include "vision/result_table.h"

namespace zel {
namespace {

constexpr double DEGREES = 57.29577867;

constexpr int32_t LEAST_CIRCLE_POINTS = 3;

struct Circle {
  PointFloat centre;
  double diameter, area, perimeter;
};

// The points' mean, in doubles.
struct Mean {
  double x, y;
};

Mean MeanOf(const PointFloat* points, int32_t count) {
  Mean sum{};
  for (int32_t i = 0; i < count; i++) {
    sum.x += static_cast<double>(points[i].x);
    sum.y += static_cast<double>(points[i].y);
  }
  return {sum.x / count, sum.y / count};
}

// Least squares by linear equations. The centred coordinates are rounded to floats, and so is the
// centre before the radius is measured from it. Kept.
Status CircleFit(const PointFloat* points, int32_t count, Circle* circle) {
  const Mean mean = MeanOf(points, count);
  double a = 0.0, b = 0.0, c = 0.0, r1 = 0.0, r2 = 0.0;
  for (int32_t i = 0; i < count; i++) {
    const auto x = static_cast<double>(points[i].x);
    const auto y = static_cast<double>(points[i].y);
    const auto dx = static_cast<double>(static_cast<float>(x - mean.x));
    const auto dy = static_cast<double>(static_cast<float>(y - mean.y));
    const double square = x * x + y * y;
    a += x * dx;
    b += x * dy;
    c += y * dy;
    r1 += dx * square;
    r2 += dy * square;
  }
  r1 *= 0.5;
  r2 *= 0.5;
  const double determinant = a * c - b * b;
  if (determinant == 0.0) return STATUS_NO_SOLUTION;
  circle->centre = {static_cast<float>((r1 * c - r2 * b) / determinant),
                    static_cast<float>((a * r2 - r1 * b) / determinant)};

  double squares = 0.0;
  for (int32_t i = 0; i < count; i++) {
    const double dx = static_cast<double>(points[i].x) - static_cast<double>(circle->centre.x);
    const double dy = static_cast<double>(points[i].y) - static_cast<double>(circle->centre.y);
    squares += dx * dx + dy * dy;
  }
  const double radius = std::sqrt(squares / count);
  circle->diameter = 2.0 * radius;
  circle->perimeter = circle->diameter * PI;
  circle->area = radius * radius * PI;
  return STATUS_OK;
}

Status CircleGet(const PointFloat* points, int32_t count, PointFloat* centre, double* diameter,
                 double* area, double* perimeter) {
  if ((!points && count > 0) || !centre || !diameter || !area || !perimeter) {
    return STATUS_NULL_POINTER;
  }
  if (count < LEAST_CIRCLE_POINTS) return STATUS_INVALID_PARAMETER;
  Circle circle{};
  const Status status = CircleFit(points, count, &circle);
  if (status != STATUS_OK) return status;
  *centre = circle.centre;
  *diameter = circle.diameter;
  *area = circle.area;
  *perimeter = circle.perimeter;
  return STATUS_OK;
}

// In floats, as all of the angle.
PointFloat VectorFrom(const PointFloat& from, const PointFloat& to) {
  return {to.x - from.x, to.y - from.y};
}

// Radians between two vectors; NaN where one has no length.
float AngleBetween(const PointFloat& u, const PointFloat& v) {
  const float dot = u.x * v.x + u.y * v.y;
  const float squareU = u.x * u.x + u.y * u.y;
  const float squareV = v.x * v.x + v.y * v.y;
  const float cosine = std::clamp(dot / std::sqrt(squareU * squareV), -1.0f, 1.0f);
  return static_cast<float>(std::acos(static_cast<double>(cosine)));
}

// The angles of a list of points, by mode.
class AngleList {
 public:
  AngleList(const PointFloat* points, int32_t count, const PointFloat& origin, uint16_t mode)
      : points_(points), pointCount_(count), origin_(origin), mode_(mode) {}

  bool IsTooShort() const { return pointCount_ < (mode_ == ANGLES_FROM_ORIGIN ? 2 : 3); }
  // Of a mode that is none: as many as of ANGLES_BETWEEN_LINES, which are not computed.
  bool IsComputed() const { return mode_ <= ANGLES_FROM_ORIGIN; }
  int32_t count() const {
    if (mode_ == ANGLES_FROM_ORIGIN) return pointCount_ - 1;
    return pointCount_ == 3 ? 1 : pointCount_ / 4;
  }
  float Radians(int32_t index) const {
    const PointFloat* p = points_;
    if (mode_ == ANGLES_FROM_ORIGIN) {
      return AngleBetween(VectorFrom(origin_, p[index]), VectorFrom(origin_, p[index + 1]));
    }
    if (pointCount_ == 3) return AngleBetween(VectorFrom(p[1], p[0]), VectorFrom(p[1], p[2]));
    p += int64_t{index} * 4;
    return AngleBetween(VectorFrom(p[0], p[1]), VectorFrom(p[2], p[3]));
  }

 private:
  const PointFloat* points_;
  int32_t pointCount_;
  PointFloat origin_;
  uint16_t mode_;
};

// What a caller's former table holds, as far as it fits, and 0 behind it.
void TableKeep(float* former, int64_t count, float* table) {
  const auto held = static_cast<int64_t>(HeapSize(former) / sizeof(float));
  const int64_t kept = std::min(held, count);
  std::copy_n(former, kept, table);
  std::fill_n(table + kept, count - kept, 0.0f);
}

Status AnglesGet(const AngleList& angles, float** radians, float** degrees, int32_t* angleCount) {
  if (angles.IsTooShort()) return STATUS_TOO_FEW_POINTS;
  const int32_t count = angles.count();
  WorkArray<float> inRadians;
  WorkArray<float> inDegrees;
  if (!TableMake(&inRadians, count) || !TableMake(&inDegrees, count)) return STATUS_MEMORY_FULL;
  if (angles.IsComputed()) {
    for (int32_t i = 0; i < count; i++) {
      const float angle = angles.Radians(i);
      inRadians.data()[i] = angle;
      inDegrees.data()[i] = static_cast<float>(static_cast<double>(angle) * DEGREES);
    }
  } else {
    TableKeep(*radians, count, inRadians.data());
    TableKeep(*degrees, count, inDegrees.data());
  }
  TableHandOver(&inRadians, radians);
  TableHandOver(&inDegrees, degrees);
  CountTell(count, angleCount);
  return STATUS_OK;
}

Status DistancesGet(const PointFloat* points, int32_t count, float** distances,
                    int32_t* distanceCount) {
  if ((!points && count > 0) || !distances) return STATUS_NULL_POINTER;
  if (count < 2) return STATUS_TOO_FEW_POINTS;
  WorkArray<float> table;
  if (!TableMake(&table, count - 1)) return STATUS_MEMORY_FULL;
  for (int32_t i = 0; i + 1 < count; i++) table.data()[i] = DistanceOf(points[i], points[i + 1]);
  TableHandOver(&table, distances);
  CountTell(count - 1, distanceCount);
  return STATUS_OK;
}

}  // namespace
}  // namespace zel

int32_t ZEL_GetCircle(const PointFloat* points, int32_t count, PointFloat* centre, double* diameter,
                      double* area, double* perimeter) {
  return ZEL_ProcessError("ZEL_GetCircle",
                          zel::CircleGet(points, count, centre, diameter, area, perimeter));
}

int32_t ZEL_GetAngles(const PointFloat* points, int32_t count, PointFloat origin, int32_t mode,
                      float** radians, float** degrees, int32_t* angleCount) {
  zel::Status status = zel::STATUS_NULL_POINTER;
  if ((points || count <= 0) && radians && degrees) {
    const zel::AngleList angles(points, count, origin, static_cast<uint16_t>(mode));
    status = zel::AnglesGet(angles, radians, degrees, angleCount);
  }
  return ZEL_ProcessError("ZEL_GetAngles", status);
}

int32_t ZEL_PointDistances(const PointFloat* points, int32_t count, float** distances,
                           int32_t* distanceCount) {
  return ZEL_ProcessError("ZEL_PointDistances",
                          zel::DistancesGet(points, count, distances, distanceCount));
}
