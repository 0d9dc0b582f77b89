// Regions carried from one coordinate reference to another.
#include <algorithm>
#include <cmath>
#include <limits>

#include "core/numbers.h"
#include "regions/descriptors.h"
#include "regions/flat_builder.h"
#include "vision/oval_path.h"

namespace zel {
namespace {

constexpr double RADIANS_A_DEGREE = 0.017453293;

// From one place and angle, in degrees, to another.
struct Placing {
  int32_t oldX, oldY;
  float oldAngle;
  int32_t newX, newY;
  float newAngle;

  double Angle() const {
    return (static_cast<double>(oldAngle) - static_cast<double>(newAngle)) * RADIANS_A_DEGREE;
  }
};

// A rotation around the old origin, which goes to the new one.
class Motion {
 public:
  explicit Motion(const Placing& placing)
      : placing_(placing), cosine_(std::cos(placing.Angle())), sine_(std::sin(placing.Angle())) {}

  PointInt operator()(PointInt point) const {
    const auto u = static_cast<double>(int64_t{point.x} - placing_.oldX);
    const auto v = static_cast<double>(int64_t{point.y} - placing_.oldY);
    return {SumWrapped(CutLow<int32_t>(u * cosine_ + v * sine_), placing_.newX),
            SumWrapped(CutLow<int32_t>(v * cosine_ - u * sine_), placing_.newY)};
  }

 private:
  Placing placing_;
  double cosine_, sine_;
};

// The least and the largest coordinates.
struct Extent {
  KernelRect rect;

  void Take(PointInt point) {
    rect.left = std::min(rect.left, point.x);
    rect.top = std::min(rect.top, point.y);
    rect.right = std::max(rect.right, point.x);
    rect.bottom = std::max(rect.bottom, point.y);
  }
  void Raise() {
    rect.right = SumWrapped(rect.right, 1);
    rect.bottom = SumWrapped(rect.bottom, 1);
  }
};

// ---- shifted

// Pair by pair, the rectangle among them. A negative x is taken for a marker.
void PairsShift(int32_t* values, uint32_t count, PointInt way) {
  for (uint32_t i = 0; i + 1 < count; i += 2) {
    if (values[i] < 0) continue;
    values[i] = SumWrapped(values[i], way.x);
    values[i + 1] = SumWrapped(values[i + 1], way.y);
  }
}

// ---- turned

class TurnedRegion {
 public:
  TurnedRegion(Handle vector, const Motion& motion, bool isSquare)
      : pairs_(vector, std::numeric_limits<int64_t>::max() / 4),
        motion_(motion),
        isSquare_(isSquare) {}

  Status Append(const FlatContour& contour);
  Status Finish() { return pairs_.Finish(extent_.rect); }

 private:
  Status AppendPoint(PointInt turned);
  Status AppendPoints(const FlatContour& contour);
  Status AppendRect(const FlatContour& contour);
  Status AppendOval(const FlatContour& contour);
  Status AppendBoxOf(const FlatContour& contour, const OvalPath& path);

  FlatBuilder pairs_;
  Motion motion_;
  bool isSquare_;  // of the region's rectangle
  Extent extent_{{32767, 322767, 0, 0}};
};

Status TurnedRegion::Append(const FlatContour& contour) {
  if (!IsRoiMarker(contour.marker) || contour.type < ROI_WHOLE || contour.type > ROI_FREELINE) {
    return STATUS_BAD_ROI;
  }
  const bool hasCorners = contour.PointCount() == 2;
  if (contour.type == ROI_RECT && hasCorners) return AppendRect(contour);
  if (contour.type == ROI_OVAL && hasCorners) return AppendOval(contour);
  return AppendPoints(contour);
}

Status TurnedRegion::AppendPoint(PointInt turned) {
  extent_.Take(turned);
  return pairs_.Append(turned.x, turned.y);
}

Status TurnedRegion::AppendPoints(const FlatContour& contour) {
  Status status = pairs_.Append(contour.marker, contour.type);
  for (int64_t i = 0; i < contour.PointCount() && status == STATUS_OK; i++) {
    status = AppendPoint(motion_(contour.Point(i)));
  }
  return status;
}

// Its four corners, and the first once more.
Status TurnedRegion::AppendRect(const FlatContour& contour) {
  const PointInt a = contour.Point(0);
  const PointInt b = contour.Point(1);
  Status status = pairs_.Append(contour.marker, ROI_POLYGON);
  for (const PointInt corner : {a, PointInt{b.x, a.y}, b, PointInt{a.x, b.y}, a}) {
    if (status == STATUS_OK) status = AppendPoint(motion_(corner));
  }
  return status;
}

Status TurnedRegion::AppendOval(const FlatContour& contour) {
  const PointInt a = contour.Point(0);
  const PointInt b = contour.Point(1);
  PixelBox box{a.x, a.y, int64_t{b.x} - 1, int64_t{b.y} - 1};
  if (box.Width() < 1 || box.Height() < 1) box = {a.x, a.y, a.x, a.y};
  OvalPath path;
  Status status = path.Make(box);
  if (status != STATUS_OK) return status;
  if (isSquare_) {
    status = AppendBoxOf(contour, path);
  } else {
    status = pairs_.Append(contour.marker, ROI_POLYGON);
    for (int64_t i = 0; i < path.count() && status == STATUS_OK; i++) {
      status = AppendPoint(motion_(path[i]));
    }
  }
  extent_.Raise();
  return status;
}

// The oval in the rectangle around a turned outline.
Status TurnedRegion::AppendBoxOf(const FlatContour& contour, const OvalPath& path) {
  const PointInt first = motion_(path[0]);
  Extent around{{first.x, first.y, first.x, first.y}};
  for (int64_t i = 0; i < path.count(); i++) {
    const PointInt turned = motion_(path[i]);
    around.Take(turned);
    extent_.Take(turned);
  }
  around.Raise();
  Status status = pairs_.Append(contour.marker, ROI_OVAL);
  if (status == STATUS_OK) status = pairs_.Append(around.rect.left, around.rect.top);
  if (status == STATUS_OK) status = pairs_.Append(around.rect.right, around.rect.bottom);
  return status;
}

// ---- both

Status RoiTurn(Handle vector, const Placing& placing, Handle turned) {
  const auto* values = VectorData<int32_t>(vector);
  const bool isSquare = int64_t{values[2]} - values[0] == int64_t{values[3]} - values[1];
  TurnedRegion region(turned, Motion(placing), isSquare);
  FlatContours contours(vector);
  for (FlatContour contour{}; contours.Next(&contour);) {
    const Status status = region.Append(contour);
    if (status != STATUS_OK) return status;
  }
  return contours.IsBroken() ? STATUS_BAD_ROI : region.Finish();
}

Status TransformRoi(const RoiDescriptor* roi, const Placing& placing, RoiDescriptor** result) {
  if (!result) return STATUS_NULL_POINTER;
  ScopedVector given;
  ScopedVector turned;
  Status status = given.Create();
  if (status == STATUS_OK) status = turned.Create();
  if (status == STATUS_OK) status = RoiToVector(roi, given.handle());
  uint32_t count = 0;
  if (status == STATUS_OK) status = VectorCount(given.handle(), &count);
  if (status != STATUS_OK) return status;
  if (count < ROI_LEAST_INTEGERS) return STATUS_BAD_ROI;
  if (placing.Angle() == 0.0) {
    PairsShift(VectorData<int32_t>(given.handle()), count,
               {DifferenceWrapped(placing.newX, placing.oldX),
                DifferenceWrapped(placing.newY, placing.oldY)});
    return RoiReplaceFromVector(given.handle(), result);
  }
  status = RoiTurn(given.handle(), placing, turned.handle());
  return status != STATUS_OK ? status : RoiReplaceFromVector(turned.handle(), result);
}

}  // namespace
}  // namespace zel

int32_t ZEL_TransformROI(const RoiDescriptor* roi, int32_t oldX, int32_t oldY, float oldAngle,
                         int32_t newX, int32_t newY, float newAngle, RoiDescriptor** result) {
  return ZEL_ProcessError(
      "ZEL_TransformROI",
      zel::TransformRoi(roi, {oldX, oldY, oldAngle, newX, newY, newAngle}, result));
}
