// What a press does in an image window.
#include "display/tool_tracking.h"

#include <algorithm>

#include "core/numbers.h"
#include "display/measures.h"
#include "display/painting.h"
#include "display/panels.h"
#include "display/pointer_loop.h"
#include "display/scroll_bars.h"
#include "display/shape_drawing.h"
#include "display/tool_pointer.h"
#include "display/tools_window.h"
#include "display/window_regions.h"

namespace zel {
namespace {

// ---- the zoom tool

int32_t ZoomedIn(int32_t zoom) {
  if (zoom == -1) zoom = 1;
  if (zoom == -2) return 1;
  return zoom < 1 ? zoom / 2 : std::min(2 * zoom, 32);
}

int32_t ZoomedOut(int32_t zoom) {
  if (zoom == 1) return -2;
  return zoom > 1 ? zoom / 2 : std::max(2 * zoom, -16);
}

void ZoomStep(int32_t window, PointInt click, bool isOut) {
  WindowRecord& record = RecordOf(window);
  const auto next = [isOut](int32_t zoom) { return isOut ? ZoomedOut(zoom) : ZoomedIn(zoom); };
  const bool changedX = ZoomSet(next(record.zoomX), &record.zoomX, &record.zoomFactorX);
  const bool changedY = ZoomSet(next(record.zoomY), &record.zoomY, &record.zoomFactorY);
  if (!changedX && !changedY) return;
  const int32_t bar = record.hasScrollBars ? SCROLL_BAR_SIZE : 0;
  CanvasResize(window, int64_t{record.panelWidth} - bar, int64_t{record.panelHeight} - bar);
  CentreOn(&record, click.x, click.y);
  const PointInt centre = CentreOf(&record);
  EventRecord(window, EVENT_ZOOMED, click.x, click.y, centre.x, centre.y);
}

// ---- the region moved

void RegionShift(WindowRecord* record, PointInt by) {
  const auto shift = [by](PointInt* point) {
    *point = {SumWrapped(point->x, by.x), SumWrapped(point->y, by.y)};
  };
  shift(&record->toolStart);
  shift(&record->toolEnd);
  if (!IsMultiPoint(record->roiKind)) return;
  const ContourPairs contour = ContourOf(*record);
  auto* pairs = VectorData<PointInt>(record->roiContour);
  for (int64_t i = 0; i < contour.count; i++) {
    if (!IsMarkerPair(pairs[i])) shift(&pairs[i]);
  }
}

// Draws the rectangle that is moved, and once more to take it away.
void RectInvert(int32_t window, const KernelRect& rect, PointInt by) {
  WindowRecord& record = RecordOf(window);
  const PointInt corners[] = {{SumWrapped(rect.left, by.x), SumWrapped(rect.top, by.y)},
                              {SumWrapped(rect.right, by.x), SumWrapped(rect.bottom, by.y)}};
  const CanvasPainter painter(window, display.pens.shapeRubber, ViewCompute(&record).clip);
  ShapePaint(painter, record, {TOOL_RECT, corners, 2});
}

void RegionMove(int32_t window, PointInt start) {
  WindowRecord& record = RecordOf(window);
  const KernelRect bounds = RegionBounds(record);
  const bool isInside = start.x >= bounds.left && start.x < bounds.right && start.y >= bounds.top &&
                        start.y < bounds.bottom;
  if (!isInside) {
    DesktopInUse().beep();
    return;
  }
  PointInt by{0, 0};
  RectInvert(window, bounds, by);
  PointerLoop loop(window);
  bool isHeld = true;
  while (isHeld && loop.Next()) {
    isHeld = loop.pointer().leftDown;
    bool scrolled = false;
    const PointInt at = FollowedPoint(window, loop.pointer(), true, &scrolled);
    if (!scrolled) RectInvert(window, bounds, by);
    by = {SumWrapped(at.x, -start.x), SumWrapped(at.y, -start.y)};
    RectInvert(window, bounds, by);
  }
  if (loop.WasCut()) {
    WindowMarkDirty(window);
    return;
  }
  // A caller can have changed the region meanwhile.
  if (record.roiKind != TOOL_NONE) {
    RegionShift(&record, by);
    EventRecord(window, record.roiKind);
  }
  WindowMarkDirty(window);
}

bool IsOnImage(const WindowRecord& record, const DesktopEvent& press) {
  const KernelRect& canvas = record.canvasRect;
  return press.x >= canvas.left && press.x < canvas.right && press.y >= canvas.top &&
         press.y < canvas.bottom;
}

}  // namespace

void ToolTrack(int32_t window, const DesktopEvent& press) {
  if (ScrollTrack(window, press.x, press.y)) return;
  WindowRecord& record = RecordOf(window);
  ViewCompute(&record);
  if (!IsOnImage(record, press)) return;
  const PointInt start = SnappedPoint(record, press.x, press.y);
  const bool isShift = (press.modifiers & MODIFIER_SHIFT) != 0;
  const bool hasRegion = record.roiKind != TOOL_NONE;
  if ((press.modifiers & MODIFIER_CONTROL) != 0 && hasRegion) {
    RegionMove(window, start);
  } else if (record.activeTool == TOOL_ZOOM) {
    ZoomStep(window, start, isShift);
  } else if (record.activeTool > TOOL_NONE) {
    ShapeDraw(window, start, isShift);
  }
}

}  // namespace zel
