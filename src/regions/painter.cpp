// Points, lines, rectangles, ovals, chains and polygons, painted by one value.
#include "regions/painter.h"

#include <algorithm>
#include <cstring>

#include "core/numbers.h"
#include "utilities/lines.h"

namespace zel {
namespace {

// Contours of one and of two points, in integers.
constexpr int64_t POINT_LENGTH = 4;
constexpr int64_t CORNERS_LENGTH = 6;

bool IsPolygon(int32_t type) {
  return type == ROI_POLYGON || type == ROI_FREEHAND;
}

PointInt ShiftedInto(const Painter::Frame& frame, PointInt point) {
  return {DifferenceWrapped(point.x, frame.left), DifferenceWrapped(point.y, frame.top)};
}

// The points of a polygon as it is painted: rows have 16 bits.
class Vertices {
 public:
  Vertices(const FlatContour& contour, const Painter::Frame& frame)
      : contour_(contour), frame_(frame) {}

  int64_t count() const { return contour_.PointCount(); }
  PointInt operator[](int64_t index) const {
    const PointInt point = ShiftedInto(frame_, contour_.Point(index));
    return {point.x, Clamped(point.y, INT16_MIN, INT16_MAX)};
  }
  PointInt Last() const { return (*this)[count() - 1]; }

 private:
  const FlatContour& contour_;
  const Painter::Frame& frame_;
};

// The sign of the last step in y on the way round to the first point; 0 where all points are on one
// row.
int32_t DirectionBefore(const Vertices& vertices) {
  int32_t after = vertices[0].y;
  for (int64_t i = vertices.count() - 1; i > 0; i--) {
    const int32_t y = vertices[i].y;
    if (y != after) return y < after ? 1 : -1;
    after = y;
  }
  return 0;
}

}  // namespace

int64_t LargestPolygon(Handle vector) {
  int64_t points = 0;
  FlatContours contours(vector);
  for (FlatContour contour{}; contours.Next(&contour);) {
    if (IsPolygon(contour.type)) points = std::max(points, contour.PointCount());
  }
  return points;
}

bool Painter::Paint(const FlatContour& contour, uint8_t value) {
  value_ = value;
  switch (contour.type) {
    case ROI_WHOLE:
      PaintAll();
      return false;
    case ROI_POINT:
      if (contour.length == POINT_LENGTH) PaintPoint(Shifted(contour.Point(0)));
      break;
    case ROI_LINE:
      if (contour.length == CORNERS_LENGTH) {
        clipped_ = !PaintLine(Shifted(contour.Point(0)), Shifted(contour.Point(1)));
      }
      break;
    case ROI_RECT:
      if (contour.length == CORNERS_LENGTH) PaintBox(BoxOf(contour));
      break;
    case ROI_OVAL:
      if (contour.length == CORNERS_LENGTH) PaintOval(BoxOf(contour));
      break;
    case ROI_POLYGON:
    case ROI_FREEHAND:
      if (contour.length >= CORNERS_LENGTH) PaintPolygon(contour);
      break;
    case ROI_POLYLINE:
    case ROI_FREELINE:
      if (contour.length >= CORNERS_LENGTH) PaintChain(contour);
      break;
    default:
      break;
  }
  return true;
}

PointInt Painter::Shifted(PointInt point) const {
  return ShiftedInto(frame_, point);
}

// The corners in order, the lower right one past the last pixel.
PixelBox Painter::BoxOf(const FlatContour& contour) const {
  const PointInt a = Shifted(contour.Point(0));
  const PointInt b = Shifted(contour.Point(1));
  return {std::min(a.x, b.x), std::min(a.y, b.y), int64_t{std::max(a.x, b.x)} - 1,
          int64_t{std::max(a.y, b.y)} - 1};
}

bool Painter::Holds(PointInt point) const {
  return point.x >= 0 && point.x < frame_.width && point.y >= 0 && point.y < frame_.height;
}

bool Painter::Stores(PointInt point) const {
  return point.x >= 0 && point.x < view_.width && point.y >= 0 && point.y < view_.height;
}

void Painter::PaintSpan(int64_t y, int64_t first, int64_t last) {
  first = std::max<int64_t>(first, 0);
  last = std::min<int64_t>(last, view_.width - 1);
  if (first > last) return;
  std::memset(view_.At<uint8_t>(first, y), value_, static_cast<size_t>(last - first) + 1);
}

void Painter::PaintAll() {
  PaintBox({0, 0, frame_.width - 1, frame_.height - 1});
}

void Painter::PaintPoint(PointInt point) {
  clipped_ = !Holds(point);
  if (Stores(point)) *view_.At<uint8_t>(point.x, point.y) = value_;
}

// Whether all of it lies in the frame.
bool Painter::PaintLine(PointInt from, PointInt to) {
  KernelLine line{from.x, from.y, to.x, to.y};
  if (Stores(from) && Stores(to)) {
    PaintStored(line);
    return true;
  }
  if (!LineClipToSize(frame_.width, frame_.height, &line)) return false;
  if (Stores({line.startX, line.startY}) && Stores({line.endX, line.endY})) {
    PaintStored(line);
  } else {
    PaintVisible(line);
  }
  return Holds(from) && Holds(to);
}

// A line of which all pixels are stored.
void Painter::PaintStored(const KernelLine& line) {
  LinePixels<uint8_t> pixels(view_, line);
  const uint8_t value = value_;
  for (int64_t left = pixels.count(); left > 0; left--) *pixels.Take() = value;
}

// A line in the frame. What is not stored is passed over along its longer axis, so that time hangs
// on the view.
void Painter::PaintVisible(const KernelLine& line) {
  LineSteps steps(line);
  const bool isFlat = steps.points() - 1 == std::abs(int64_t{line.endX} - line.startX);
  const int64_t start = isFlat ? line.startX : line.startY;
  const int64_t end = isFlat ? line.endX : line.endY;
  const int64_t beyond = isFlat ? view_.width : view_.height;  // the first column or row not stored
  const int64_t skipped = start < beyond ? 0 : end < start ? start - beyond + 1 : steps.points();
  const int64_t last = end < beyond ? steps.points() - 1 : beyond - 1 - start;
  if (skipped > last) return;

  const LinePoint way = steps.Skip(skipped);
  PointInt at{line.startX + way.x, line.startY + way.y};
  for (int64_t i = skipped;; i++) {
    if (Stores(at)) *view_.At<uint8_t>(at.x, at.y) = value_;
    if (i == last) break;
    const LinePoint step = steps.Next();
    at = {at.x + step.x, at.y + step.y};
  }
}

void Painter::PaintBox(const PixelBox& box) {
  clipped_ =
      box.IsOutside(frame_.width, frame_.height) || !box.IsInside(frame_.width, frame_.height);
  const int64_t top = std::max<int64_t>(box.top, 0);
  const int64_t bottom = std::min<int64_t>(box.bottom, view_.height - 1);
  for (int64_t y = top; y <= bottom; y++) PaintSpan(y, box.left, box.right);
}

void Painter::PaintOval(const PixelBox& box) {
  if (box.Width() < 2 || box.Height() < 2 || box.IsOutside(frame_.width, frame_.height)) {
    return PaintBox(box);
  }
  const OvalCoverage coverage = OvalCoverageOf(box, frame_.width, frame_.height);
  if (coverage == OvalCoverage::ALL_OF_IMAGE) return PaintBox(box);
  clipped_ = !box.IsInside(frame_.width, frame_.height);
  if (coverage == OvalCoverage::NOTHING) return;
  const Oval oval(box);
  const int64_t top = std::max<int64_t>(box.top, 0);
  const int64_t bottom = std::min<int64_t>(box.bottom, view_.height - 1);
  for (int64_t y = top; y <= bottom; y++) {
    const int64_t first = oval.First(y);
    PaintSpan(y, first, oval.Mirrored(first));
  }
}

void Painter::PaintChain(const FlatContour& contour) {
  clipped_ = false;
  for (int64_t i = 1; i < contour.PointCount(); i++) {
    if (!PaintLine(Shifted(contour.Point(i - 1)), Shifted(contour.Point(i)))) clipped_ = true;
  }
}

void Painter::PaintPolygon(const FlatContour& contour) {
  clipped_ = false;
  for (int64_t i = 0; i < contour.PointCount(); i++) {
    if (!Holds(Shifted(contour.Point(i)))) clipped_ = true;
  }
  const Vertices vertices(contour, frame_);
  const int32_t direction = DirectionBefore(vertices);
  if (direction != 0 && vertices.count() > 2) {
    fill_->Begin(view_, frame_.height, direction);
    for (int64_t i = 1; i < vertices.count(); i++) fill_->AddEdge(vertices[i - 1], vertices[i]);
    fill_->AddEdge(vertices.Last(), vertices[0]);
    fill_->Paint(value_);
  }
  PaintLine(vertices[0], vertices.Last());
  // Where a vertex follows itself, the line before has ended in it.
  PointInt from = vertices[0];
  for (int64_t i = 1; i < vertices.count(); i++) {
    const PointInt to = vertices[i];
    if (from.x != to.x || from.y != to.y) PaintLine(from, to);
    from = to;
  }
}

}  // namespace zel
