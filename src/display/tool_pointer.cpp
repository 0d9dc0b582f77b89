// The pointer in coordinates of the image.
#include "display/tool_pointer.h"

#include <algorithm>

#include "core/numbers.h"
#include "display/painting.h"

namespace zel {
namespace {

constexpr float SCROLL_STEP = 32;  // canvas pixels

int32_t Snapped(int32_t position, int32_t from, int32_t grid, float factor) {
  const int32_t step = std::max(CutLow<int32_t>(static_cast<float>(grid) * factor), 1);
  return position - (position - from) % step;
}

int32_t ScrollStep(int32_t position, int32_t canvas, float factor) {
  const int32_t step = std::max(CutLow<int32_t>(SCROLL_STEP / factor), 1);
  if (position < 0) return -step;
  return position >= canvas ? step : 0;
}

// The origin that a pointer outside the canvas scrolls to.
PointInt OriginFor(const WindowRecord& record, const PointerState& pointer) {
  const int32_t bar = record.hasScrollBars ? SCROLL_BAR_SIZE : 0;
  WindowRecord moved = record;
  const auto scrolled = [](int32_t origin, int32_t step) {
    return std::max(SumSaturated(origin, step), 0);
  };
  moved.originX =
      scrolled(record.originX, ScrollStep(pointer.x, record.panelWidth - bar, record.zoomFactorX));
  moved.originY =
      scrolled(record.originY, ScrollStep(pointer.y, record.panelHeight - bar, record.zoomFactorY));
  const View view = ViewCompute(&moved);
  return {view.image.left, view.image.top};
}

}  // namespace

PointInt SnappedPoint(const WindowRecord& record, int32_t x, int32_t y) {
  const KernelRect& canvas = record.canvasRect;
  return CanvasToImage(record, Snapped(x, canvas.left, record.gridX, record.zoomFactorX),
                       Snapped(y, canvas.top, record.gridY, record.zoomFactorY));
}

bool WouldScroll(int32_t window, const PointerState& pointer) {
  const WindowRecord& record = RecordOf(window);
  const PointInt origin = OriginFor(record, pointer);
  return origin.x != record.originX || origin.y != record.originY;
}

PointInt FollowedPoint(int32_t window, const PointerState& pointer, bool withRegion,
                       bool* scrolled) {
  WindowRecord& record = RecordOf(window);
  *scrolled = WouldScroll(window, pointer);
  if (*scrolled) {
    const PointInt origin = OriginFor(record, pointer);
    record.originX = origin.x;
    record.originY = origin.y;
    WindowRepaint(window, {.keepShadow = true, .scrollBars = true, .region = withRegion});
  }
  const View view = ViewCompute(&record);
  const auto within = [](int32_t at, int32_t from, int32_t end) {
    return std::clamp(at, from, std::max(end - 1, from));
  };
  return SnappedPoint(record, within(pointer.x, view.clip.left, view.clip.right),
                      within(pointer.y, view.clip.top, view.clip.bottom));
}

}  // namespace zel
