// Canvases, their pens, and bitmaps.
#include "platform/canvases.h"

#include <time.h>

#include <cstddef>
#include <map>
#include <new>

#include "platform/memory_desktop.h"

namespace zel {
namespace {

constexpr size_t TEXTS_KEPT = 4096;

struct Font {
  FontStyle style;
  const TextRasteriser* letters;
};

struct State {
  std::map<int32_t, Canvas> canvases;
  std::map<int32_t, DesktopBitmap> bitmaps;
  std::map<std::string, Font> fonts;
  DesktopFaults faults;
};

// Never destroyed: what closes the desktop at the program's end may run after destructors.
alignas(State) std::byte stateRoom[sizeof(State)];
State& state = *new (stateRoom) State;
int32_t lastNumber = 0;

// The picture to draw into, or null where drawing is dropped.
MemoryPicture* PictureOf(int32_t canvas) {
  Canvas* found = CanvasOf(canvas);
  if (!found) return nullptr;
  if (found->picture.IsDrawn()) return &found->picture;
  int64_t area = found->picture.Area();
  if (area > state.faults.mostPixels) return nullptr;
  for (const auto& [number, other] : state.canvases) {
    if (other.picture.IsDrawn()) area += other.picture.Area();
  }
  const bool isTooMuch = area > int64_t{MEMORY_CANVAS_LIMIT} * MEMORY_CANVAS_LIMIT;
  return !isTooMuch && found->picture.Begin() ? &found->picture : nullptr;
}

}  // namespace

DesktopFaults* DesktopFaultsGet() {
  return &state.faults;
}

int32_t DesktopNumberNext() {
  return ++lastNumber;
}

int32_t CanvasNew(int32_t panel) {
  if (state.faults.noCanvases) return -1;
  const int32_t canvas = DesktopNumberNext();
  state.canvases[canvas].panel = panel;
  return canvas;
}

void CanvasForget(int32_t, int32_t canvas) {
  state.canvases.erase(canvas);
}

void CanvasesForget() {
  state = {};
}

Canvas* CanvasOf(int32_t canvas) {
  const auto found = state.canvases.find(canvas);
  return found == state.canvases.end() ? nullptr : &found->second;
}

Canvas* CanvasOnPanel(int32_t panel) {
  return CanvasOf(CanvasNumberOn(panel));
}

int32_t CanvasNumberOn(int32_t panel) {
  for (const auto& [number, canvas] : state.canvases) {
    if (canvas.panel == panel) return number;
  }
  return 0;
}

void CanvasSet(int32_t, int32_t canvas, int32_t attribute, int32_t value) {
  Canvas* found = CanvasOf(canvas);
  if (!found) return;
  MemoryPicture& picture = found->picture;
  if (attribute == CANVAS_WIDTH) picture.Resize(value, picture.Height());
  if (attribute == CANVAS_HEIGHT) picture.Resize(picture.Width(), value);
  if (attribute == CANVAS_BACKGROUND) picture.SetBackground(static_cast<uint32_t>(value));
}

void CanvasPen(int32_t canvas, const DesktopPen& pen) {
  if (Canvas* found = CanvasOf(canvas)) found->picture.pen = pen;
}

void CanvasPenDefaults(int32_t canvas) {
  CanvasPen(canvas, {});
}

void CanvasPenMove(int32_t canvas, int32_t x, int32_t y) {
  Canvas* found = CanvasOf(canvas);
  if (!found) return;
  found->penX = x;
  found->penY = y;
}

void CanvasLineTo(int32_t canvas, int32_t x, int32_t y) {
  Canvas* found = CanvasOf(canvas);
  if (!found) return;
  if (MemoryPicture* picture = PictureOf(canvas)) picture->Line(found->penX, found->penY, x, y);
  CanvasPenMove(canvas, x, y);
}

void CanvasRect(int32_t canvas, const DesktopRect& rect, ShapeFill fill) {
  if (MemoryPicture* picture = PictureOf(canvas)) picture->Rect(rect, fill);
}

void CanvasOval(int32_t canvas, const DesktopRect& rect, ShapeFill fill) {
  if (MemoryPicture* picture = PictureOf(canvas)) picture->Oval(rect, fill);
}

void CanvasInvert(int32_t canvas, const DesktopRect& rect) {
  if (MemoryPicture* picture = PictureOf(canvas)) picture->Invert(rect);
}

void CanvasFont(const char* name, const FontStyle& style, const TextRasteriser& letters) {
  state.fonts[name] = {style, &letters};
}

void CanvasText(int32_t canvas, const char* text, const char* font, const DesktopRect& rect,
                TextAlignment alignment) {
  Canvas* found = CanvasOf(canvas);
  if (!found) return;
  found->texts.append(text).append("\n");
  if (found->texts.size() > TEXTS_KEPT) found->texts.erase(0, found->texts.size() - TEXTS_KEPT);
  const auto known = state.fonts.find(font);
  if (known == state.fonts.end()) return;
  const auto& [style, letters] = known->second;
  if (MemoryPicture* picture = PictureOf(canvas)) {
    picture->Text(text, style, rect, alignment, *letters);
  }
}

DesktopRect CanvasClip(int32_t canvas) {
  const Canvas* found = CanvasOf(canvas);
  return found ? found->picture.clip : DesktopRect{};
}

void CanvasSetClip(int32_t canvas, const DesktopRect& rect) {
  if (Canvas* found = CanvasOf(canvas)) found->picture.clip = rect;
}

int32_t BitmapNew(const DesktopBitmap& bitmap) {
  if (state.faults.noBitmaps) return -1;
  const int32_t number = DesktopNumberNext();
  state.bitmaps.emplace(number, bitmap);
  return number;
}

void BitmapForget(int32_t bitmap) {
  state.bitmaps.erase(bitmap);
}

void CanvasBlit(int32_t canvas, int32_t bitmap, const DesktopRect& source, const DesktopRect& to) {
  const auto from = state.bitmaps.find(bitmap);
  if (from == state.bitmaps.end() || to.width < 1 || to.height < 1) return;
  if (MemoryPicture* picture = PictureOf(canvas)) picture->Blit(from->second, source, to);
}

uint32_t MachineTicks() {
  timespec now{};
  clock_gettime(CLOCK_MONOTONIC, &now);
  return static_cast<uint32_t>(now.tv_sec * 1000 + now.tv_nsec / 1000000);
}

}  // namespace zel
