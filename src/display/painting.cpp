// The image on its canvas, and the queue of windows to be painted.
#include "display/painting.h"

#include <algorithm>

#include "core/images.h"
#include "display/scroll_bars.h"
#include "display/shadow.h"
#include "display/tools_window.h"

namespace zel {
namespace {

constexpr uint32_t BLACK = 0;

// ---- the pixels to show

bool IsShownItself(int32_t type) {
  return type == IMAGE_U8 || type == IMAGE_RGB;
}

// Null for an image that cannot be shown: unknown, without pixels, or of a type that has none.
const Image* ImageOf(const WindowRecord& record) {
  Image* image = nullptr;
  if (ImageLookup(record.image, &image) != STATUS_OK) return nullptr;
  const bool hasType = image->type >= IMAGE_U8 && image->type <= IMAGE_RGB;
  return hasType && image->width > 0 && image->height > 0 ? image : nullptr;
}

void ShadowDispose(WindowRecord* record) {
  if (record->shadow != 0) ImageDestroy(record->shadow);
  record->shadow = 0;
}

// Null where there is no memory for it. The image's record can move meanwhile.
const Image* ShadowMake(WindowRecord* record) {
  Image* shadow = nullptr;
  if (ImageLookup(record->shadow, &shadow) != STATUS_OK || shadow->type != IMAGE_U8) {
    Image like{};
    like.type = IMAGE_U8;
    record->shadow = 0;
    if (ImageCreateLike(&record->shadow, like) != STATUS_OK) {
      record->shadow = 0;
      return nullptr;
    }
  }
  const Image* image = ImageOf(*record);
  if (!image || ImageSetSize(record->shadow, image->width, image->height) != STATUS_OK) {
    return nullptr;
  }
  ImageLookup(record->shadow, &shadow);
  ShadowConvert(ViewOf(*ImageOf(*record)), ViewOf(*shadow));
  return shadow;
}

const Image* PixelsToShow(WindowRecord* record, bool keepShadow) {
  const Image* image = ImageOf(*record);
  if (IsShownItself(image->type)) {
    if (!keepShadow && image->type == IMAGE_U8) ShadowDispose(record);
    return image;
  }
  if (!keepShadow) return ShadowMake(record);
  Image* shadow = nullptr;
  return ImageLookup(record->shadow, &shadow) == STATUS_OK && shadow->type == IMAGE_U8 ? shadow
                                                                                       : nullptr;
}

// ---- from pixels to the canvas

// The part of the view that the pixels really have.
KernelRect PartOf(const PixelView& pixels, const KernelRect& wanted) {
  return {std::clamp(wanted.left, 0, pixels.width), std::clamp(wanted.top, 0, pixels.height),
          std::clamp(wanted.right, 0, pixels.width), std::clamp(wanted.bottom, 0, pixels.height)};
}

void BlitBitmap(int32_t window, const DesktopBitmap& bitmap, const KernelRect& source,
                const KernelRect& canvas) {
  const Desktop& desktop = DesktopInUse();
  const int32_t made = desktop.bitmapCreate(bitmap);
  if (made < 0) return;
  desktop.blit(display.bindings[window].canvas, made, ToDesktop(source), ToDesktop(canvas));
  desktop.bitmapDiscard(made);
}

void BlitPixels(int32_t window, const PixelView& pixels, const View& view) {
  const KernelRect part = PartOf(pixels, view.image);
  if (part.right <= part.left || part.bottom <= part.top) return;
  const bool isColour = pixels.type == IMAGE_RGB;
  const DesktopBitmap bitmap{.rows = pixels.origin,
                             .pitch = pixels.pitch,
                             .depth = isColour ? 32 : 8,
                             .width = pixels.width,
                             .height = pixels.height,
                             .colours = isColour ? nullptr : RecordOf(window).palette};
  BlitBitmap(window, bitmap, part, view.canvas);
}

// ---- around the image

KernelRect CanvasOf(const WindowRecord& record) {
  const int32_t bar = record.hasScrollBars ? SCROLL_BAR_SIZE : 0;
  return {0, 0, std::max(record.panelWidth - bar, 0), std::max(record.panelHeight - bar, 0)};
}

// Hatched bands where the image does not reach, and a black line at its edge.
void MarginPaint(int32_t window, const View& view) {
  const KernelRect canvas = CanvasOf(RecordOf(window));
  const KernelRect& image = view.canvas;
  const KernelRect frame{image.left - 1, image.top - 1, image.right, image.bottom};
  const CanvasPainter margin(window, display.pens.margin, canvas);
  if (image.left > 0) {
    margin.Rect({0, 0, image.left, canvas.bottom}, ShapeFill::FILL);
    margin.Rect({image.right, 0, canvas.right, canvas.bottom}, ShapeFill::FILL);
  }
  if (image.top > 0) {
    margin.Rect({0, 0, canvas.right, image.top}, ShapeFill::FILL);
    margin.Rect({0, image.bottom, canvas.right, canvas.bottom}, ShapeFill::FILL);
  }
  const CanvasPainter lines(window, PenOfColour(BLACK), canvas);
  if (image.left > 0) {
    lines.Line({frame.left, frame.top}, {frame.left, frame.bottom});
    lines.Line({frame.right, frame.top}, {frame.right, frame.bottom});
  }
  if (image.top > 0) {
    lines.Line({frame.left, frame.top}, {frame.right, frame.top});
    lines.Line({frame.left, frame.bottom}, {frame.right, frame.bottom});
  }
}

void PaintParts(int32_t window) {
  switch (KindOf(window)) {
    case WINDOW_IMAGE:
      WindowRepaint(window, {.keepShadow = false, .scrollBars = true, .region = true});
      return;
    case WINDOW_TOOLS:
      WindowRepaint(window, {.keepShadow = true, .scrollBars = true, .region = false});
      ToolsWindowPaint();
      return;
    default:
      WindowRepaint(window, {.keepShadow = true, .scrollBars = true, .region = false});
  }
}

void Paint(int32_t window) {
  const int32_t canvas = display.bindings[window].canvas;
  DesktopInUse().beginBatch(canvas);
  PaintParts(window);
  DesktopInUse().endBatch(canvas);
}

}  // namespace

DesktopRect ToDesktop(const KernelRect& rect) {
  const auto [left, right] = std::minmax(rect.left, rect.right);
  const auto [top, bottom] = std::minmax(rect.top, rect.bottom);
  const auto extent = [](int32_t from, int32_t to) {
    return static_cast<int32_t>(std::min<int64_t>(int64_t{to} - from, INT32_MAX));
  };
  return {top, left, extent(top, bottom), extent(left, right)};
}

DesktopPen PenOfColour(uint32_t colour) {
  DesktopPen pen;
  pen.foreground = colour;
  return pen;
}

CanvasPainter::CanvasPainter(int32_t window, const DesktopPen& pen, const KernelRect& clip)
    : canvas_(display.bindings[window].canvas), formerClip_(DesktopInUse().clip(canvas_)) {
  DesktopInUse().setClip(canvas_, ToDesktop(clip));
  DesktopInUse().canvasPen(canvas_, pen);
}

CanvasPainter::~CanvasPainter() {
  DesktopInUse().penDefaults(canvas_);
  DesktopInUse().setClip(canvas_, formerClip_);
}

void CanvasPainter::Line(CanvasPoint from, CanvasPoint to) const {
  DesktopInUse().penMove(canvas_, from.x, from.y);
  DesktopInUse().lineTo(canvas_, to.x, to.y);
}

void CanvasPainter::Rect(const KernelRect& rect, ShapeFill fill) const {
  DesktopInUse().rect(canvas_, ToDesktop(rect), fill);
}

void CanvasPainter::Oval(const KernelRect& rect, ShapeFill fill) const {
  DesktopInUse().oval(canvas_, ToDesktop(rect), fill);
}

void CanvasPainter::Text(const char* text, const KernelRect& rect, TextAlignment alignment) const {
  DesktopInUse().text(canvas_, text, DISPLAY_FONT, ToDesktop(rect), alignment);
}

void WindowMarkDirty(int32_t window) {
  if (RecordOf(window).isOpen) display.isDirty[window] = true;
}

void RepaintRun() {
  for (int32_t window = WINDOW_COUNT - 1; window >= 0; window--) {
    if (!display.isDirty[window]) continue;
    display.isDirty[window] = false;
    if (RecordOf(window).isOpen) Paint(window);
  }
}

void WindowRepaint(int32_t window, const RepaintParts& parts) {
  const Desktop& desktop = DesktopInUse();
  WindowRecord& record = RecordOf(window);
  const int32_t canvas = display.bindings[window].canvas;
  desktop.beginBatch(canvas);
  const Image* image = ImageOf(record);
  if (!image) {
    const KernelRect all{0, 0, record.panelWidth, record.panelHeight};
    CanvasPainter(window, display.pens.margin, all).Rect(all, ShapeFill::FILL);
    desktop.endBatch(canvas);
    return;
  }
  record.imageWidth = image->width;
  record.imageHeight = image->height;
  record.imageType = image->type;
  const View view = ViewCompute(&record);
  record.originX = view.image.left;
  record.originY = view.image.top;
  const Image* shown = PixelsToShow(&record, parts.keepShadow);
  MarginPaint(window, view);
  if (shown) {
    desktop.setClip(canvas, ToDesktop(CanvasOf(record)));
    BlitPixels(window, ViewOf(*shown), view);
    desktop.setClip(canvas, {0, 0, record.panelHeight, record.panelWidth});
  }
  if (parts.region) RegionPaint(window);
  if (parts.scrollBars && record.hasScrollBars) ScrollBarsPaint(window);
  desktop.endBatch(canvas);
}

}  // namespace zel
