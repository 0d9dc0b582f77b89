// Panels and records of windows, from opening to closing.
#include "display/panels.h"

#include <algorithm>

#include "core/images.h"
#include "core/numbers.h"
#include "display/painting.h"
#include "display/tools.h"
#include "display/tools_window.h"
#include "display/window_events.h"

namespace zel {

DisplayState display;

namespace {

constexpr int32_t LEAST_CANVAS = 64;
constexpr int32_t WHITE = 0xFFFFFF;

constexpr DisplayState BLANK{};

// Never the same, also when the library was closed in between.
uint32_t lastOpening = 0;

enum StyleBit : int32_t {
  STYLE_FLAG_615 = 2,
  STYLE_FLAGS_571_581 = 4,
  STYLE_FLAG_601 = 8,
  STYLE_FLAG_580 = 16,
  STYLE_FLAG_599 = 32,
};
constexpr int32_t IMAGE_STYLE =
    STYLE_FLAGS_571_581 | STYLE_FLAG_601 | STYLE_FLAG_580 | STYLE_FLAG_599;
constexpr int32_t PANEL_STYLE = STYLE_FLAGS_571_581 | STYLE_FLAG_601 | STYLE_FLAG_615;

struct Opening {
  const char* title;
  DesktopRect rect;
};

Opening OpeningOf(int32_t window) {
  switch (KindOf(window)) {
    case WINDOW_IMAGE:
      return {"Image", {40, 20, 256, 256}};
    case WINDOW_TOOLS:
      return {"Tools", {40, 280, 28, 53}};
    default:
      return {"User", {40, 280, 28, 28}};
  }
}

int32_t StyleFor(int32_t window, int32_t style) {
  if (KindOf(window) == WINDOW_TOOLS) return PANEL_STYLE;
  if (style != STYLE_DEFAULT) return style;
  return KindOf(window) == WINDOW_IMAGE ? IMAGE_STYLE : PANEL_STYLE;
}

DesktopPen PenOf(uint32_t background, int16_t mode) {
  DesktopPen pen;
  pen.background = background;
  pen.mode = mode;
  return pen;
}

// Two rows that take turns.
DesktopPen PenOf(int16_t mode, uint8_t even, uint8_t odd) {
  DesktopPen pen = PenOf(0, mode);
  for (size_t row = 0; row < 8; row++) pen.pattern[row] = row % 2 == 0 ? even : odd;
  return pen;
}

void PensMake(DisplayPens* pens) {
  pens->pointRubber = PenOf(0, PEN_INVERT);
  pens->pointFinal = PenOf(0x666666, PEN_COPY);
  pens->shapeRubber = PenOf(PEN_INVERT, 0xCC, 0x33);
  pens->shapeFinal = PenOf(PEN_COPY, 0xCC, 0x33);
  pens->custom = PenOf(PEN_COPY, 0xCC, 0x33);
  pens->margin = PenOf(PEN_COPY, 0xAA, 0x55);
}

void FlagsSet(int32_t window, int32_t panel, int32_t style) {
  const Desktop& desktop = DesktopInUse();
  const auto set = [&](int32_t flag, int32_t bit) {
    desktop.panelSet(panel, flag, (style & bit) != 0 ? 1 : 0);
  };
  set(PANEL_FLAG_571, STYLE_FLAGS_571_581);
  set(PANEL_FLAG_581, STYLE_FLAGS_571_581);
  set(PANEL_FLAG_601, STYLE_FLAG_601);
  set(PANEL_FLAG_580, STYLE_FLAG_580);
  set(PANEL_FLAG_599, STYLE_FLAG_599);
  set(PANEL_FLAG_615, STYLE_FLAG_615);
  const bool isImage = KindOf(window) == WINDOW_IMAGE;
  if (!isImage && (style & STYLE_FLAG_615) == 0) desktop.panelSet(panel, PANEL_FLAG_616, 1);
  desktop.panelSet(panel, PANEL_FLAG_600, isImage ? 1 : 0);
}

Status PanelOpen(int32_t window, const char* title, const DesktopRect& rect, int32_t style) {
  const Desktop& desktop = DesktopInUse();
  PanelBinding& binding = display.bindings[window];
  const int32_t panel = desktop.panelCreate(binding.parent, title, rect);
  if (panel < 0) return STATUS_NO_WINDOW;
  const int32_t canvas = desktop.canvasCreate(panel);
  if (canvas < 0) {
    desktop.panelDiscard(panel);
    return STATUS_NO_WINDOW;
  }
  binding.panel = panel;
  binding.canvas = canvas;
  FlagsSet(window, panel, style);
  if (KindOf(window) != WINDOW_IMAGE) {
    desktop.panelSet(panel, PANEL_BACKGROUND, WHITE);
    desktop.canvasSet(panel, canvas, CANVAS_BACKGROUND, WHITE);
  }
  desktop.canvasSet(panel, canvas, CANVAS_WIDTH, rect.width);
  desktop.canvasSet(panel, canvas, CANVAS_HEIGHT, rect.height);
  desktop.canvasSet(panel, canvas, CANVAS_DRAW_POLICY, 1);
  desktop.setSink(panel, canvas, window, &DesktopEventTake);
  RecordOf(window).opening = ++lastOpening;
  return STATUS_OK;
}

void PanelClose(int32_t window) {
  const Desktop& desktop = DesktopInUse();
  PanelBinding& binding = display.bindings[window];
  desktop.panelSet(binding.panel, PANEL_VISIBLE, 0);
  desktop.canvasDiscard(binding.panel, binding.canvas);
  desktop.panelDiscard(binding.panel);
  binding.panel = 0;
  binding.canvas = 0;
}

void VectorRelease(Handle* vector) {
  if (*vector != 0) VectorFree(*vector);
  *vector = 0;
}

void ImageRelease(ImageRef* image) {
  if (*image != 0) ImageDestroy(*image);  // the caller can have disposed of it by its number
  *image = 0;
}

void RecordRelease(WindowRecord* record) {
  ImageRelease(&record->shadow);
  ImageRelease(&record->ownImage);
  VectorRelease(&record->roiContour);
  VectorRelease(&record->buttons);
}

// Parents, and what runs outside, stay.
Status DisplayShutdown(int32_t) {
  int32_t parents[WINDOW_COUNT];
  for (int32_t window = 0; window < WINDOW_COUNT; window++) {
    if (RecordOf(window).isOpen) PanelClose(window);
    RecordRelease(&RecordOf(window));
    parents[window] = display.bindings[window].parent;
  }
  VectorRelease(&display.brush);
  ToolsWindowForget();
  const bool isPumping = display.isPumping;
  display = BLANK;
  display.isPumping = isPumping;
  for (int32_t window = 0; window < WINDOW_COUNT; window++) {
    display.bindings[window].parent = parents[window];
  }
  return STATUS_OK;
}

int64_t RoundedTo(int64_t size, int64_t zoom) {
  return size / zoom * zoom;
}

}  // namespace

Status DisplayEnsure() {
  if (display.isInitialised) return display.ready;
  Status status = TablesEnsure();
  if (status == STATUS_OK) status = CloseHookSet(&DisplayShutdown, 0);
  if (status != STATUS_OK) return status;
  PensMake(&display.pens);
  for (int32_t window = 0; window < WINDOW_COUNT; window++) {
    RecordOf(window) = {};
    RecordReset(window);
  }
  display.lastActiveWindow = -1;
  const FontStyle style{10, false, false, false, false};
  const bool hasFont = DesktopInUse().metaFont(DISPLAY_FONT, DESKTOP_BASE_FONT, style) >= 0;
  display.ready = hasFont ? STATUS_OK : STATUS_DISPLAY_UNUSABLE;
  display.isInitialised = true;
  return display.ready;
}

bool IsWindowImage(ImageRef image) {
  return std::any_of(display.windows, display.windows + WINDOW_COUNT,
                     [image](const WindowRecord& record) {
                       return image != 0 && (image == record.shadow || image == record.ownImage);
                     });
}

void RecordReset(int32_t window) {
  const WindowRecord former = RecordOf(window);
  WindowRecord& record = RecordOf(window);
  record = {};
  record.lastEvent = former.lastEvent;
  record.eventTime = former.eventTime;
  record.previousEventTime = former.previousEventTime;
  std::copy_n(former.eventParam, 4, record.eventParam);
  record.opening = former.opening;
  record.zoomX = record.zoomY = 1;
  record.zoomFactorX = record.zoomFactorY = 1;
  record.gridX = record.gridY = 1;
  record.activeTool = ToolAtReset();
}

Status OwnImageResize(int32_t window, int32_t width, int32_t height) {
  WindowRecord& record = RecordOf(window);
  Image* image = nullptr;
  const bool isThere =
      ImageLookup(record.ownImage, &image) == STATUS_OK && image->type == IMAGE_RGB;
  if (!isThere) {
    Image like{};
    like.type = IMAGE_RGB;
    like.xStep = like.yStep = 1;
    record.ownImage = 0;
    const Status status = ImageCreateLike(&record.ownImage, like);
    if (status != STATUS_OK) return status;
  }
  const Status status = ImageSetSize(record.ownImage, width, height);
  if (status != STATUS_OK) return status;
  constexpr uint32_t white = 0xFFFFFF;
  return ImageFillAll(record.ownImage, &white);
}

Status WindowOpen(int32_t window, int32_t style) {
  const Opening opening = OpeningOf(window);
  WindowRecord& record = RecordOf(window);
  const int32_t kind = KindOf(window);
  if (kind != WINDOW_IMAGE) {
    const Status status = OwnImageResize(window, opening.rect.width, opening.rect.height);
    record.image = record.ownImage;
    if (status != STATUS_OK) {
      RecordRelease(&record);
      record.image = 0;
      return STATUS_NO_WINDOW;
    }
  }
  const Status status = PanelOpen(window, opening.title, opening.rect, StyleFor(window, style));
  if (status != STATUS_OK) {
    RecordRelease(&record);
    record.image = 0;
    return status;
  }
  record.isOpen = true;
  record.imageType = kind == WINDOW_IMAGE ? IMAGE_U8 : IMAGE_RGB;
  record.imageWidth = record.panelWidth = opening.rect.width;
  record.imageHeight = record.panelHeight = opening.rect.height;
  for (uint32_t i = 0; i < PALETTE_ENTRIES; i++) record.palette[i] = i * 0x010101;
  display.isDirty[window] = false;
  return STATUS_OK;
}

Status WindowRestyle(int32_t window, int32_t style) {
  if (!RecordOf(window).isOpen) return WindowOpen(window, style);
  const Desktop& desktop = DesktopInUse();
  const int32_t panel = display.bindings[window].panel;
  const DesktopRect rect{desktop.panelGet(panel, PANEL_TOP), desktop.panelGet(panel, PANEL_LEFT),
                         desktop.panelGet(panel, PANEL_HEIGHT),
                         desktop.panelGet(panel, PANEL_WIDTH)};
  const int32_t isVisible = desktop.panelGet(panel, PANEL_VISIBLE);
  const PanelBinding former = display.bindings[window];
  // The new panel comes first: where there is none the window keeps the one that it has.
  const Status status = PanelOpen(window, desktop.panelTitle(panel), rect, StyleFor(window, style));
  if (status != STATUS_OK) return status;
  const PanelBinding made = display.bindings[window];
  display.bindings[window] = former;
  PanelClose(window);
  display.bindings[window] = made;
  desktop.panelSet(made.panel, PANEL_VISIBLE, isVisible);
  WindowMarkDirty(window);
  return STATUS_OK;
}

void WindowClose(int32_t window) {
  if (!RecordOf(window).isOpen) return;
  if (KindOf(window) != WINDOW_TOOLS) EventRecord(window, EVENT_CLOSED);
  PanelClose(window);
  RecordRelease(&RecordOf(window));
  display.isDirty[window] = false;
  if (KindOf(window) == WINDOW_TOOLS) ToolsWindowForget();
  RecordReset(window);
}

void PanelResize(int32_t window, int32_t width, int32_t height) {
  constexpr int32_t most = INT32_MAX - SCROLL_BAR_SIZE;  // with scroll bars, or without
  width = std::min(width, most);
  height = std::min(height, most);
  const Desktop& desktop = DesktopInUse();
  const PanelBinding& binding = display.bindings[window];
  WindowRecord& record = RecordOf(window);
  record.panelWidth = width;
  record.panelHeight = height;
  desktop.panelSet(binding.panel, PANEL_WIDTH, width);
  desktop.panelSet(binding.panel, PANEL_HEIGHT, height);
  desktop.canvasSet(binding.panel, binding.canvas, CANVAS_WIDTH, width);
  desktop.canvasSet(binding.panel, binding.canvas, CANVAS_HEIGHT, height);
  WindowMarkDirty(window);
}

void CanvasResize(int32_t window, int64_t width, int64_t height) {
  const WindowRecord& record = RecordOf(window);
  const int32_t bar = record.hasScrollBars ? SCROLL_BAR_SIZE : 0;
  const bool isImage = KindOf(window) == WINDOW_IMAGE;
  const auto panelSize = [&](int64_t size, int32_t zoom) {
    size = std::clamp<int64_t>(size, LEAST_CANVAS, INT32_MAX - SCROLL_BAR_SIZE);
    if (isImage) size = RoundedTo(size, zoom);
    return SumSaturated(static_cast<int32_t>(size), bar);
  };
  PanelResize(window, panelSize(width, record.zoomX), panelSize(height, record.zoomY));
}

}  // namespace zel
