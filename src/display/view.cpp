// The view of a window, one axis at a time.
#include "display/view.h"

#include <algorithm>

#include "core/numbers.h"

namespace zel {
namespace {

constexpr int32_t LARGEST_ZOOM = 32;
constexpr int32_t SMALLEST_ZOOM = -16;

// Canvas pixels a factor makes of a distance, and the other way: rounded to a float, then cut.
int32_t Zoomed(int64_t distance, float factor) {
  return CutLow<int32_t>(static_cast<float>(distance) * factor);
}
int32_t Unzoomed(int64_t distance, float factor) {
  return CutLow<int32_t>(static_cast<float>(distance) / factor);
}

struct Axis {
  int64_t canvas;  // pixels of the canvas without scroll bar
  int64_t image;   // pixels of the image
  int64_t origin;
  int64_t zoom;  // canvas pixels an image pixel takes; below 0 it is the other way round; never 0
  float factor;
  bool keepsToZoom;  // an offset on the canvas is a multiple of the zoom
};

struct AxisView {
  int32_t first, end;              // of the image
  int32_t canvasFirst, canvasEnd;  // of the canvas
  int32_t clipEnd;
};

// Image pixels that fill the canvas.
int64_t PixelsToFill(const Axis& axis) {
  const int64_t pixels = Unzoomed(axis.canvas, axis.factor);
  const bool isShort = static_cast<float>(pixels) * axis.factor < static_cast<float>(axis.canvas);
  return isShort ? pixels + 1 : pixels;
}

int64_t OffsetOf(const Axis& axis) {
  if (axis.zoom < 0) return (axis.image / axis.zoom + axis.canvas) / 2;
  const int64_t offset = (axis.canvas - axis.image * axis.zoom) / 2;
  return axis.keepsToZoom ? offset / axis.zoom * axis.zoom : offset;
}

bool Fits(const Axis& axis) {
  const int64_t extent = axis.zoom < 0 ? -(axis.image / axis.zoom) : axis.image * axis.zoom;
  return extent <= axis.canvas;
}

// From the origin where enough of the image follows it; else the image's last pixels.
void PlacePart(const Axis& axis, int64_t* first, int64_t* end) {
  const int64_t pixels = PixelsToFill(axis);
  const bool reaches = axis.zoom < 0 ? (axis.origin - axis.image) / axis.zoom > axis.canvas
                                     : (axis.image - axis.origin) * axis.zoom > axis.canvas;
  *first = axis.origin;
  *end = axis.zoom < 0 ? axis.origin - axis.canvas * axis.zoom : axis.origin + pixels;
  if (reaches && *end <= axis.image) return;
  *end = axis.image;
  *first = axis.image - pixels;
}

AxisView ViewOfAxis(const Axis& axis) {
  int64_t first = 0;
  int64_t end = axis.image;
  const bool fits = Fits(axis);
  if (!fits) PlacePart(axis, &first, &end);
  const auto canvasFirst = static_cast<int32_t>(fits ? OffsetOf(axis) : 0);
  const int32_t canvasEnd = SumWrapped(canvasFirst, Zoomed(end - first, axis.factor));
  const bool isCut = canvasEnd > axis.canvas;
  return {static_cast<int32_t>(first), static_cast<int32_t>(end), canvasFirst, canvasEnd,
          isCut ? SumWrapped(canvasFirst, static_cast<int32_t>(axis.canvas)) : canvasEnd};
}

}  // namespace

View ViewCompute(WindowRecord* record) {
  const int32_t bar = record->hasScrollBars ? SCROLL_BAR_SIZE : 0;
  const auto canvas = [bar](int32_t panel) { return std::max(panel - bar, 0); };
  const AxisView x = ViewOfAxis({canvas(record->panelWidth), record->imageWidth, record->originX,
                                 record->zoomX, record->zoomFactorX, false});
  const AxisView y = ViewOfAxis({canvas(record->panelHeight), record->imageHeight, record->originY,
                                 record->zoomY, record->zoomFactorY, true});
  record->canvasRect = {x.canvasFirst, y.canvasFirst, x.canvasEnd, y.canvasEnd};
  return {{x.first, y.first, x.end, y.end},
          record->canvasRect,
          {x.canvasFirst, y.canvasFirst, x.clipEnd, y.clipEnd}};
}

PointInt CanvasToImage(const WindowRecord& record, int32_t x, int32_t y) {
  const KernelRect& canvas = record.canvasRect;
  return {SumWrapped(record.originX, Unzoomed(int64_t{x} - canvas.left, record.zoomFactorX)),
          SumWrapped(record.originY, Unzoomed(int64_t{y} - canvas.top, record.zoomFactorY))};
}

CanvasPoint ImageToCanvas(const WindowRecord& record, int32_t x, int32_t y) {
  const KernelRect& canvas = record.canvasRect;
  return {SumWrapped(canvas.left, Zoomed(int64_t{x} - record.originX, record.zoomFactorX)),
          SumWrapped(canvas.top, Zoomed(int64_t{y} - record.originY, record.zoomFactorY))};
}

PointInt CentreOf(WindowRecord* record) {
  const View view = ViewCompute(record);
  return {SumWrapped(record->originX, (view.image.right - view.image.left) / 2),
          SumWrapped(record->originY, (view.image.bottom - view.image.top) / 2)};
}

bool ZoomSet(int32_t zoom, int32_t* held, float* factor) {
  if (zoom < SMALLEST_ZOOM || zoom > LARGEST_ZOOM || zoom == 0 || zoom == *held) return false;
  *held = zoom;
  *factor = zoom >= 1 ? static_cast<float>(zoom) : 1.0F / static_cast<float>(-zoom);
  return true;
}

bool CentreOn(WindowRecord* record, int32_t x, int32_t y) {
  const View view = ViewCompute(record);
  const int32_t left =
      std::clamp(x, 0, record->imageWidth) - (view.image.right - view.image.left) / 2;
  const int32_t top =
      std::clamp(y, 0, record->imageHeight) - (view.image.bottom - view.image.top) / 2;
  const PointInt origin{std::max(left, 0), std::max(top, 0)};
  if (origin.x == record->originX && origin.y == record->originY) return false;
  record->originX = origin.x;
  record->originY = origin.y;
  return true;
}

}  // namespace zel
