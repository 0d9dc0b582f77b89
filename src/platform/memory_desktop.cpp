// Panels and canvases in memory, and what a person does to them by a script.
#include "platform/memory_desktop.h"

#include <time.h>

#include <deque>
#include <map>
#include <string>

#include "platform/memory_picture.h"

namespace zel {
namespace {

constexpr size_t TEXTS_KEPT = 4096;

struct Canvas {
  MemoryPicture picture;
  int32_t penX = 0, penY = 0;
  std::string texts;
};

struct Panel {
  std::string title;
  std::map<int32_t, int32_t> attributes;
};

struct Sink {
  int32_t panel, window;
  DesktopSink function;
};

// An event, or a sample of the pointer.
struct Deed {
  bool isSample;
  DesktopEvent event;
  PointerState sample;
};

struct State {
  std::map<int32_t, Panel> panels;
  std::map<int32_t, Canvas> canvases;
  std::map<int32_t, DesktopBitmap> bitmaps;
  std::deque<Sink> sinks;
  std::deque<Deed> script;
  PointerState lastPointer{0, 0, false, false};
  int32_t pumps = 0;  // that run now, one inside the other
  int32_t activePanel = 0;
  bool isClockStopped = false;
  uint32_t ticks = 0;
  int32_t beeps = 0;
  MemoryDesktopFaults faults;
};

State state;
int32_t lastNumber = 0;

template <class T>
T* Find(std::map<int32_t, T>* all, int32_t number) {
  const auto found = all->find(number);
  return found == all->end() ? nullptr : &found->second;
}

Canvas* CanvasOf(int32_t canvas) {
  return Find(&state.canvases, canvas);
}

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

int32_t PanelCreate(int32_t, const char* title, const DesktopRect& rect) {
  if (state.faults.noPanels) return -1;
  Panel panel;
  panel.title = title;
  panel.attributes = {{PANEL_LEFT, rect.left},
                      {PANEL_TOP, rect.top},
                      {PANEL_WIDTH, rect.width},
                      {PANEL_HEIGHT, rect.height}};
  state.panels.emplace(++lastNumber, std::move(panel));
  return lastNumber;
}

void PanelDiscard(int32_t panel) {
  state.panels.erase(panel);
  std::erase_if(state.sinks, [panel](const Sink& sink) { return sink.panel == panel; });
  if (state.activePanel == panel) state.activePanel = 0;
}

int32_t CanvasCreate(int32_t panel) {
  if (state.faults.noCanvases || !Find(&state.panels, panel)) return -1;
  state.canvases[++lastNumber];
  return lastNumber;
}

void CanvasDiscard(int32_t, int32_t canvas) {
  state.canvases.erase(canvas);
}

void PanelSet(int32_t panel, int32_t attribute, int32_t value) {
  Panel* found = Find(&state.panels, panel);
  if (!found) return;
  found->attributes[attribute] = value;
  const bool isHidden = attribute == PANEL_VISIBLE && value == 0;
  if (isHidden && state.activePanel == panel) state.activePanel = 0;
}

int32_t PanelGet(int32_t panel, int32_t attribute) {
  Panel* found = Find(&state.panels, panel);
  const int32_t* value = found ? Find(&found->attributes, attribute) : nullptr;
  return value ? *value : 0;
}

void PanelSetTitle(int32_t panel, const char* title) {
  if (Panel* found = Find(&state.panels, panel)) found->title = title;
}

const char* PanelTitle(int32_t panel) {
  const Panel* found = Find(&state.panels, panel);
  return found ? found->title.c_str() : "";
}

void PanelMove(int32_t panel, int32_t top, int32_t left) {
  PanelSet(panel, PANEL_TOP, top);
  PanelSet(panel, PANEL_LEFT, left);
}

void SetSink(int32_t panel, int32_t, int32_t window, DesktopSink sink) {
  state.sinks.push_back({panel, window, sink});
}

void Activate(int32_t panel) {
  if (Find(&state.panels, panel)) state.activePanel = panel;
}

int32_t Active() {
  return state.activePanel;
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

void PenDefaults(int32_t canvas) {
  CanvasPen(canvas, {});
}

void PenMove(int32_t canvas, int32_t x, int32_t y) {
  Canvas* found = CanvasOf(canvas);
  if (!found) return;
  found->penX = x;
  found->penY = y;
}

void LineTo(int32_t canvas, int32_t x, int32_t y) {
  Canvas* found = CanvasOf(canvas);
  if (!found) return;
  if (MemoryPicture* picture = PictureOf(canvas)) picture->Line(found->penX, found->penY, x, y);
  PenMove(canvas, x, y);
}

void Rect(int32_t canvas, const DesktopRect& rect, ShapeFill fill) {
  if (MemoryPicture* picture = PictureOf(canvas)) picture->Rect(rect, fill);
}

void Oval(int32_t canvas, const DesktopRect& rect, ShapeFill fill) {
  if (MemoryPicture* picture = PictureOf(canvas)) picture->Oval(rect, fill);
}

void Invert(int32_t canvas, const DesktopRect& rect) {
  if (MemoryPicture* picture = PictureOf(canvas)) picture->Invert(rect);
}

void Text(int32_t canvas, const char* text, const char*, const DesktopRect&, TextAlignment) {
  Canvas* found = CanvasOf(canvas);
  if (!found) return;
  found->texts.append(text).append("\n");
  if (found->texts.size() > TEXTS_KEPT) found->texts.erase(0, found->texts.size() - TEXTS_KEPT);
}

DesktopRect Clip(int32_t canvas) {
  const Canvas* found = CanvasOf(canvas);
  return found ? found->picture.clip : DesktopRect{};
}

void SetClip(int32_t canvas, const DesktopRect& rect) {
  if (Canvas* found = CanvasOf(canvas)) found->picture.clip = rect;
}

void Batch(int32_t) {}

int32_t BitmapCreate(const DesktopBitmap& bitmap) {
  if (state.faults.noBitmaps) return -1;
  state.bitmaps.emplace(++lastNumber, bitmap);
  return lastNumber;
}

void BitmapDiscard(int32_t bitmap) {
  state.bitmaps.erase(bitmap);
}

void Blit(int32_t canvas, int32_t bitmap, const DesktopRect& source, const DesktopRect& to) {
  const DesktopBitmap* from = Find(&state.bitmaps, bitmap);
  if (!from || to.width < 1 || to.height < 1) return;
  if (MemoryPicture* picture = PictureOf(canvas)) picture->Blit(*from, source, to);
}

void HandOut(const DesktopEvent& event) {
  for (const Sink& sink : state.sinks) {
    if (sink.window != event.window) continue;
    sink.function(event);
    return;  // the list may be another one now
  }
}

void Pump() {
  state.pumps++;
  while (!state.script.empty()) {
    const Deed deed = state.script.front();
    if (deed.isSample && state.pumps > 1) break;
    state.script.pop_front();
    if (!deed.isSample) HandOut(deed.event);
  }
  state.pumps--;
}

void Idle(int32_t) {}

PointerState Pointer(int32_t, int32_t) {
  const bool isSample = !state.script.empty() && state.script.front().isSample;
  if (isSample) {
    state.lastPointer = state.script.front().sample;
    state.script.pop_front();
  } else {
    state.lastPointer.leftDown = false;
    state.lastPointer.isFollowed = false;
  }
  return state.lastPointer;
}

void Screen(int32_t* width, int32_t* height) {
  *width = MEMORY_SCREEN_WIDTH;
  *height = MEMORY_SCREEN_HEIGHT;
}

void Beep() {
  state.beeps++;
}

uint32_t Ticks() {
  if (state.isClockStopped) return state.ticks;
  timespec now{};
  clock_gettime(CLOCK_MONOTONIC, &now);
  return static_cast<uint32_t>(now.tv_sec * 1000 + now.tv_nsec / 1000000);
}

int32_t MetaFont(const char*, const char*, const FontStyle&) {
  return state.faults.noFonts ? -1 : 0;
}

}  // namespace

constinit const Desktop MEMORY_DESKTOP{
    .panelCreate = &PanelCreate,
    .panelDiscard = &PanelDiscard,
    .canvasCreate = &CanvasCreate,
    .canvasDiscard = &CanvasDiscard,
    .panelSet = &PanelSet,
    .panelGet = &PanelGet,
    .panelSetTitle = &PanelSetTitle,
    .panelTitle = &PanelTitle,
    .panelMove = &PanelMove,
    .setSink = &SetSink,
    .activate = &Activate,
    .active = &Active,
    .canvasSet = &CanvasSet,
    .canvasPen = &CanvasPen,
    .penDefaults = &PenDefaults,
    .penMove = &PenMove,
    .lineTo = &LineTo,
    .rect = &Rect,
    .oval = &Oval,
    .invert = &Invert,
    .text = &Text,
    .clip = &Clip,
    .setClip = &SetClip,
    .beginBatch = &Batch,
    .endBatch = &Batch,
    .bitmapCreate = &BitmapCreate,
    .bitmapDiscard = &BitmapDiscard,
    .blit = &Blit,
    .pump = &Pump,
    .idle = &Idle,
    .pointer = &Pointer,
    .screen = &Screen,
    .beep = &Beep,
    .ticks = &Ticks,
    .metaFont = &MetaFont,
};

void MemoryDesktopReset() {
  state = {};
}

void MemoryDesktopPost(const DesktopEvent& event) {
  state.script.push_back({false, event, {}});
}

void MemoryDesktopPointer(int32_t x, int32_t y, bool leftDown) {
  state.script.push_back({true, {}, {x, y, leftDown, true}});
}

void MemoryDesktopTicks(uint32_t ticks) {
  state.isClockStopped = true;
  state.ticks = ticks;
}

MemoryDesktopFaults* MemoryDesktopFaultsGet() {
  return &state.faults;
}

uint32_t MemoryDesktopPixel(int32_t canvas, int32_t x, int32_t y) {
  const Canvas* found = CanvasOf(canvas);
  return found ? found->picture.Pixel(x, y) : UINT32_MAX;
}

const char* MemoryDesktopTexts(int32_t canvas) {
  const Canvas* found = CanvasOf(canvas);
  return found ? found->texts.c_str() : "";
}

int32_t MemoryDesktopBeeps() {
  return state.beeps;
}

int32_t MemoryDesktopPanels() {
  return static_cast<int32_t>(state.panels.size());
}

}  // namespace zel
