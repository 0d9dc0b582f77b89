// Meters calibrated: the base of the needle, and the arc that its tip goes along.
#include "dials/meter_arc.h"

#include <algorithm>
#include <cmath>

#include "core/handles.h"
#include "core/rectangles.h"
#include "dials/meter_angle.h"
#include "platform/message_box.h"

namespace zel {
namespace {

float Square(float value) {
  return value * value;
}

float SquaredDistance(PointFloat a, PointFloat b) {
  return Square(a.x - b.x) + Square(a.y - b.y);
}

// How far a point is off the circle, in squared pixels.
float Deviation(PointFloat point, PointFloat centre, float squaredRadius) {
  return std::fabs(SquaredDistance(point, centre) - squaredRadius);
}

PointFloat NextOnCircle(PointFloat point, PointFloat centre, float squaredRadius) {
  const PointFloat below{point.x, point.y + 1.0f};
  const PointFloat left{point.x - 1.0f, point.y};
  const PointFloat both{point.x - 1.0f, point.y + 1.0f};
  const float belowOff = Deviation(below, centre, squaredRadius);
  const float leftOff = Deviation(left, centre, squaredRadius);
  const float bothOff = Deviation(both, centre, squaredRadius);
  if (bothOff < std::min(leftOff, belowOff)) return both;
  return leftOff <= belowOff ? left : below;
}

bool IsServed(PointFloat point) {
  constexpr float limit = METER_COORDINATE_LIMIT;
  return std::fabs(point.x) <= limit && std::fabs(point.y) <= limit;
}

}  // namespace

Status MeterCircle::Append(PointFloat point) {
  if (steps_ == capacity_) {
    const int64_t capacity = std::max<int64_t>(256, 2 * capacity_);
    if (!quarter_.Resize(static_cast<uint64_t>(capacity))) return STATUS_MEMORY_FULL;
    capacity_ = capacity;
  }
  quarter_[static_cast<size_t>(steps_++)] = point;
  return STATUS_OK;
}

Status MeterCircle::Walk(PointFloat centre, float radius) {
  centre_ = centre;
  steps_ = 0;
  const float squaredRadius = Square(radius);
  PointFloat point{centre.x + radius, centre.y};
  while (point.x > centre.x) {
    const Status status = Append(point);
    if (status != STATUS_OK) return status;
    point = NextOnCircle(point, centre, squaredRadius);
  }
  return steps_ > 0 ? STATUS_OK : STATUS_TOO_FEW_POINTS;
}

PointFloat MeterCircle::operator[](int64_t index) const {
  const int64_t half = 2 * steps_ - 1;
  const bool isLeft = index >= half;
  if (isLeft) index = 2 * half - 1 - index;
  const bool isAbove = index < steps_;
  PointFloat point =
      quarter_[static_cast<size_t>(isAbove ? steps_ - 1 - index : index - steps_ + 1)];
  if (isAbove) point.y = 2.0f * centre_.y - point.y;
  if (isLeft) point.x = 2.0f * centre_.x - point.x;
  return point;
}

namespace {

int64_t NearestOn(const MeterCircle& circle, PointFloat point) {
  int64_t nearest = 0;
  float least = SquaredDistance(circle[0], point);
  for (int64_t i = 1; i < circle.count(); i++) {
    const float distance = SquaredDistance(circle[i], point);
    if (distance < least) {
      least = distance;
      nearest = i;
    }
  }
  return nearest;
}

// A run of points of a circle, which goes on at its first point after the last.
struct CircleRun {
  const MeterCircle& circle;
  int64_t first;

  PointFloat operator[](int64_t index) const {
    const int64_t place = first + index;
    return circle[place < circle.count() ? place : place - circle.count()];
  }
};

// How many points of the run, its first one among them, have an angle from it up to a limit.
Status CountUpTo(float limit, const CircleRun& run, PointFloat centre, int64_t* count) {
  *count = 0;
  for (; *count < run.circle.count(); ++*count) {
    float angle = 0.0f;
    const Status status = AngleAround(run[0], run[*count], centre, CALIBRATING_TURN, &angle);
    if (status != STATUS_OK) return status;
    if (angle > limit) break;
  }
  return STATUS_OK;
}

}  // namespace

Status ArcBetween(PointFloat centre, PointFloat start, PointFloat end, PointFloat** arc,
                  int32_t* count) {
  if (!IsServed(centre) || !IsServed(start) || !IsServed(end)) return STATUS_INVALID_PARAMETER;
  float limit = 0.0f;
  Status status = AngleAround(start, end, centre, CALIBRATING_TURN, &limit);
  if (status != STATUS_OK) return status;

  const double dx = static_cast<double>(start.x) - static_cast<double>(centre.x);
  const double dy = static_cast<double>(start.y) - static_cast<double>(centre.y);
  MeterCircle circle;
  status = circle.Walk(centre, static_cast<float>(std::sqrt(dx * dx + dy * dy)));
  if (status != STATUS_OK) return status;
  const CircleRun run{circle, NearestOn(circle, start)};
  int64_t points = 0;
  status = CountUpTo(limit, run, centre, &points);
  if (status != STATUS_OK) return status;

  ScopedWrap block;
  status = block.Create(*arc, sizeof(PointFloat), 0, 0, 1);
  if (status == STATUS_OK) {
    status = VectorResize(block.handle(), sizeof(PointFloat), static_cast<uint64_t>(points));
  }
  if (status != STATUS_OK) return status;
  *arc = static_cast<PointFloat*>(block.Release());
  for (int64_t i = 0; i < points; i++) (*arc)[i] = run[i];
  *count = static_cast<int32_t>(points);
  return STATUS_OK;
}

namespace {

// The line a x + b y = c.
struct LineCoefficients {
  float a, b, c;
};

Status LineEquation(const KernelLine& line, LineCoefficients* equation) {
  const int64_t a = int64_t{line.endY} - line.startY;
  const int64_t b = int64_t{line.startX} - line.endX;
  if (a == 0 && b == 0) return STATUS_TOO_FEW_POINTS;
  equation->a = static_cast<float>(a);
  equation->b = static_cast<float>(b);
  equation->c = static_cast<float>(static_cast<double>(equation->a) * line.startX +
                                   static_cast<double>(equation->b) * line.startY);
  return STATUS_OK;
}

// Where two lines cross, by Cramer's rule. STATUS_NO_SOLUTION for parallel ones.
Status LinesCross(const LineCoefficients& first, const LineCoefficients& second,
                  PointFloat* crossing) {
  const double a0 = static_cast<double>(first.a);
  const double b0 = static_cast<double>(first.b);
  const double c0 = static_cast<double>(first.c);
  const double a1 = static_cast<double>(second.a);
  const double b1 = static_cast<double>(second.b);
  const double c1 = static_cast<double>(second.c);
  const double determinant = a0 * b1 - b0 * a1;
  if (determinant == 0.0) return STATUS_NO_SOLUTION;
  *crossing = {static_cast<float>((c0 * b1 - c1 * b0) / determinant),
               static_cast<float>((a0 * c1 - c0 * a1) / determinant)};
  return STATUS_OK;
}

// The first two points of a contour.
bool LineOf(const RoiContour* contour, KernelLine* line) {
  if (!contour || contour->pointCount < 2) return false;
  const PointInt* points = contour->points;
  *line = {points[0].x, points[0].y, points[1].x, points[1].y};
  return true;
}

Status CalibrateMeter(const RoiDescriptor* roi, PointFloat* base, PointFloat** arc,
                      int32_t* count) {
  KernelLine first{};
  KernelLine second{};
  if (roi->contourCount != 2 || !LineOf(roi->contours[0], &first) ||
      !LineOf(roi->contours[1], &second) || roi->contours[0]->contourType != ROI_LINE) {
    return STATUS_BAD_ROI;
  }
  LineCoefficients equations[2];
  PointFloat crossing{};
  Status status = LineEquation(first, &equations[0]);
  if (status == STATUS_OK) status = LineEquation(second, &equations[1]);
  if (status == STATUS_OK) status = LinesCross(equations[0], equations[1], &crossing);
  if (status == STATUS_OK) {
    const auto startOf = [](const KernelLine& line) {
      return PointFloat{static_cast<float>(line.startX), static_cast<float>(line.startY)};
    };
    status = ArcBetween(crossing, startOf(first), startOf(second), arc, count);
  }
  if (status == STATUS_OK) *base = crossing;
  return status;
}

}  // namespace
}  // namespace zel

int32_t ZEL_CalibrateMeter(const RoiDescriptor* roi, PointFloat* base, PointFloat** arc,
                           int32_t* count) {
  zel::Status status = zel::STATUS_NO_OUTPUT;
  if (!roi) {
    zel::MessageBoxInUse().show("ZEL_CalibrateMeter", "ROI not provided");
    status = zel::STATUS_BAD_ROI;
  } else if (base && arc && count) {
    status = zel::CalibrateMeter(roi, base, arc, count);
  }
  return ZEL_ProcessError("ZEL_CalibrateMeter", status);
}

int32_t ZEL_CalibrateMeter2(float baseX, float baseY, float startX, float startY, float endX,
                            float endY, PointFloat** arc, int32_t* count) {
  zel::Status status = zel::STATUS_NO_OUTPUT;
  if (arc && count) {
    status = zel::ArcBetween({baseX, baseY}, {startX, startY}, {endX, endY}, arc, count);
  }
  return ZEL_ProcessError("ZEL_CalibrateMeter2", status);
}
