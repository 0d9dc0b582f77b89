// A shape from its first press to the region that it becomes.
#include "display/shape_drawing.h"

#include <algorithm>
#include <cstdlib>

#include "core/heap.h"
#include "core/numbers.h"
#include "display/painting.h"
#include "display/pointer_loop.h"
#include "display/tool_pointer.h"
#include "display/tools_window.h"
#include "display/window_regions.h"

namespace zel {
namespace {

constexpr int64_t MOST_POINTS = 8192;

bool IsDragged(int32_t tool) {
  return tool <= TOOL_OVAL;
}
bool IsByHand(int32_t tool) {
  return tool == TOOL_FREEHAND || tool == TOOL_FREELINE;
}
bool IsClosed(int32_t tool) {
  return tool == TOOL_POLYGON || tool == TOOL_FREEHAND;
}

// Image pixels within which a press closes a shape.
int64_t ClosingDistance(int32_t zoom) {
  if (zoom < 2) return 4 * std::abs(int64_t{zoom});
  return zoom <= 4 ? 8 / zoom : 1;
}

PointInt Constrained(int32_t tool, PointInt start, PointInt at) {
  const int64_t dx = int64_t{at.x} - start.x;
  const int64_t dy = int64_t{at.y} - start.y;
  if (tool == TOOL_LINE) {
    return std::abs(dx) >= std::abs(dy) ? PointInt{at.x, start.y} : PointInt{start.x, at.y};
  }
  if (tool != TOOL_RECT && tool != TOOL_OVAL) return at;
  const int64_t side = std::min(std::abs(dx), std::abs(dy));
  return {static_cast<int32_t>(start.x + (dx < 0 ? -side : side)),
          static_cast<int32_t>(start.y + (dy < 0 ? -side : side))};
}

// A shape while it is drawn. What is seen of it is inverted, so that drawing it again takes it
// away: segments that stand once, and what follows the pointer at every move.
class Drawing {
 public:
  Drawing(int32_t window, PointInt start, bool isShift)
      : window_(window),
        tool_(RecordOf(window).activeTool),
        isShift_(isShift),
        start_(start),
        at_(start) {}

  bool Prepare() {
    if (!IsDragged(tool_) && !points_.Allocate(MOST_POINTS + 1)) return false;
    if (!IsDragged(tool_)) Append(start_);
    return true;
  }

  // Goes on until the shape ends. False when it was cut off.
  bool Run(bool withRegion) {
    PointerLoop loop(window_);
    InvertMoving();
    while (loop.Next()) {
      if (!IsDragged(tool_) && !IsByHand(tool_) && TakePresses(&loop)) return true;
      Follow(loop.pointer(), withRegion);
      const bool endsAtRelease = IsDragged(tool_) || IsByHand(tool_);
      if (endsAtRelease && !loop.pointer().leftDown) return true;
    }
    return false;
  }

  // A shape of which nothing is to be seen.
  bool IsNothing() const {
    const bool hasExtent = tool_ == TOOL_LINE || tool_ == TOOL_RECT || tool_ == TOOL_OVAL;
    return hasExtent && start_.x == at_.x && start_.y == at_.y;
  }

  // What was drawn. It lives as long as the drawing.
  Shape Finish() {
    if (IsDragged(tool_)) {
      ends_[0] = tool_ == TOOL_POINT ? at_ : start_;
      ends_[1] = at_;
      return {tool_, ends_, tool_ == TOOL_POINT ? 1 : 2};
    }
    if (count_ < 3) return {TOOL_POINT, points_.data(), 1};
    if (IsClosed(tool_)) Append(points_[0]);
    return {tool_, points_.data(), count_};
  }

 private:
  void Append(PointInt point) { points_[static_cast<size_t>(count_++)] = point; }
  PointInt Last() const { return points_[static_cast<size_t>(count_ - 1)]; }
  void Invert(const Shape& shape) const {
    WindowRecord& record = RecordOf(window_);
    const bool isPoint = shape.tool == TOOL_POINT;
    const CanvasPainter painter(window_,
                                isPoint ? display.pens.pointRubber : display.pens.shapeRubber,
                                ViewCompute(&record).clip);
    ShapePaint(painter, record, shape);
  }
  void InvertMoving() const {
    if (IsByHand(tool_)) return;
    const PointInt from = IsDragged(tool_) ? start_ : Last();
    const PointInt ends[] = {tool_ == TOOL_POINT ? at_ : from, at_};
    Invert({IsDragged(tool_) ? tool_ : int32_t{TOOL_LINE}, ends, 2});
  }
  void InvertStanding() const {
    if (count_ > 1) Invert({TOOL_POLYLINE, points_.data(), count_});
  }

  void Add(PointInt point) {
    if (count_ == MOST_POINTS) return;
    const PointInt ends[] = {Last(), point};
    Append(point);
    Invert({TOOL_LINE, ends, 2});
  }

  bool IsAtFirst(PointInt point) const {
    const WindowRecord& record = RecordOf(window_);
    return std::abs(int64_t{point.x} - start_.x) < ClosingDistance(record.zoomX) &&
           std::abs(int64_t{point.y} - start_.y) < ClosingDistance(record.zoomY);
  }

  // Each press is a corner. True when one ends the shape.
  bool TakePresses(PointerLoop* loop) {
    for (DesktopEvent press; loop->TakePress(&press);) {
      if (press.kind == DesktopEventKind::LEFT_DOUBLE_PRESS) return true;
      bool scrolled = false;
      const PointInt point = FollowedPoint(window_, {press.x, press.y, true}, false, &scrolled);
      if (IsAtFirst(point)) return true;
      if (scrolled) {
        InvertStanding();
      } else {
        InvertMoving();
      }
      Add(point);
      at_ = point;
      InvertMoving();
    }
    return false;
  }

  void Follow(const PointerState& pointer, bool withRegion) {
    bool scrolled = false;
    PointInt at = FollowedPoint(window_, pointer, withRegion, &scrolled);
    if (isShift_) at = Constrained(tool_, start_, at);
    const bool moved = at.x != at_.x || at.y != at_.y;
    if (!moved && !scrolled) return;
    if (scrolled) {
      InvertStanding();
    } else {
      InvertMoving();
    }
    at_ = at;
    if (IsByHand(tool_) && moved) Add(at);
    InvertMoving();
    const PointInt ends[] = {start_, at_};
    const Shape shown{tool_, ends, 2};
    CoordinatesShow(window_, at_, &shown);
  }

  int32_t window_;
  int32_t tool_;
  bool isShift_;
  PointInt start_, at_;
  PointInt ends_[2] = {};
  WorkArray<PointInt> points_;
  int64_t count_ = 0;
};

// The region with a shape beside those that it has: one contour of all.
Status ShapeAdd(WindowRecord* record, const Shape& shape) {
  if (IsMultiPoint(record->roiKind)) return ShapeAppend(record->roiContour, shape);
  Handle contour = 0;
  Status status = VectorNew(&contour);
  if (status != STATUS_OK) return status;
  const PointInt ends[] = {record->toolStart, record->toolEnd};
  const Shape held{record->roiKind, ends, record->roiKind == TOOL_POINT ? 1 : 2};
  status = ShapeAppend(contour, held);
  if (status == STATUS_OK) status = ShapeAppend(contour, shape);
  if (status != STATUS_OK) {
    VectorFree(contour);
    return status;
  }
  ContourReplace(record, contour);
  return STATUS_OK;
}

Status ShapeTake(WindowRecord* record, const Shape& shape, bool isAdded) {
  if (isAdded) {
    const Status status = ShapeAdd(record, shape);
    if (status != STATUS_OK) return status;
    record->roiKind = TOOL_FREEHAND;
  } else {
    ContourReplace(record, 0);
    record->roiKind = shape.tool;
    if (IsMultiPoint(shape.tool)) {
      Status status = VectorNew(&record->roiContour);
      if (status == STATUS_OK) status = ShapeAppend(record->roiContour, shape);
      if (status != STATUS_OK) return status;
    }
  }
  record->toolStart = shape.points[0];
  record->toolEnd = shape.points[shape.count - 1];
  return STATUS_OK;
}

}  // namespace

void ShapeDraw(int32_t window, PointInt start, bool isShift) {
  WindowRecord& record = RecordOf(window);
  const int32_t formerKind = record.roiKind;
  const bool isAdded = isShift && formerKind != TOOL_NONE;
  Drawing drawing(window, start, isShift);
  if (!drawing.Prepare()) {
    RegionErase(window);
    return;
  }
  record.lastEvent = EVENT_NONE;
  if (!isAdded) record.roiKind = TOOL_NONE;
  WindowRepaint(window, {.keepShadow = true, .scrollBars = true, .region = isAdded});

  const uint32_t opening = record.opening;
  display.isTracking = true;
  const bool ended = drawing.Run(isAdded);
  display.isTracking = false;
  if (!record.isOpen || record.opening != opening) return;
  WindowMarkDirty(window);
  if (!ended) {
    RegionErase(window);
    return;
  }
  // A caller can have changed the region meanwhile; what was there is brought back only where
  // nothing else is.
  if (drawing.IsNothing()) {
    if (record.roiKind == TOOL_NONE) record.roiKind = formerKind;
    record.lastEvent = EVENT_NONE;
    return;
  }
  const Status status =
      ShapeTake(&record, drawing.Finish(), isAdded && record.roiKind != TOOL_NONE);
  if (status != STATUS_OK) {
    RegionErase(window);
    return;
  }
  EventRecord(window, record.roiKind);
}

}  // namespace zel
