// Panels and canvases in memory, and what a person does to them by a script.
#include "platform/memory_desktop.h"

#include <deque>
#include <map>
#include <string>
#include <utility>

#include "platform/built_in_face.h"
#include "platform/byte_block.h"
#include "platform/canvases.h"
#include "platform/refused_memory.h"

namespace zel {
namespace {

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
  std::deque<Sink> sinks;
  std::deque<Deed> script;
  PointerState lastPointer{0, 0, false, false};
  int32_t pumps = 0;  // that run now, one inside the other
  int32_t activePanel = 0;
  bool isClockStopped = false;
  uint32_t ticks = 0;
  int32_t beeps = 0;
  ByteBlock clipboard;
};

State state;

template <class T>
T* Find(std::map<int32_t, T>* all, int32_t number) {
  const auto found = all->find(number);
  return found == all->end() ? nullptr : &found->second;
}

int32_t PanelCreate(int32_t, const char* title, const DesktopRect& rect) {
  if (DesktopFaultsGet()->noPanels) return -1;
  Panel panel;
  panel.title = title;
  panel.attributes = {{PANEL_LEFT, rect.left},
                      {PANEL_TOP, rect.top},
                      {PANEL_WIDTH, rect.width},
                      {PANEL_HEIGHT, rect.height}};
  const int32_t number = DesktopNumberNext();
  state.panels.emplace(number, std::move(panel));
  return number;
}

void PanelDiscard(int32_t panel) {
  state.panels.erase(panel);
  std::erase_if(state.sinks, [panel](const Sink& sink) { return sink.panel == panel; });
  if (state.activePanel == panel) state.activePanel = 0;
}

int32_t CanvasCreate(int32_t panel) {
  return Find(&state.panels, panel) ? CanvasNew(panel) : -1;
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

void Batch(int32_t) {}

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
  return state.isClockStopped ? state.ticks : MachineTicks();
}

int32_t MetaFont(const char* name, const char*, const FontStyle& style) {
  if (DesktopFaultsGet()->noFonts) return -1;
  CanvasFont(name, style, BUILT_IN_FACE);
  return 0;
}

ClipboardState ClipboardRead(ClipboardBitmap* bitmap) {
  if (DesktopFaultsGet()->noClipboard) return ClipboardState::CLOSED;
  if (state.clipboard.size() == 0) return ClipboardState::EMPTY;
  *bitmap = {state.clipboard.data(), state.clipboard.size()};
  return ClipboardState::FILLED;
}

bool ClipboardWrite(const ClipboardBitmap& bitmap) {
  if (DesktopFaultsGet()->noClipboard) return true;
  ByteBlock bytes;
  if (!bytes.Append(bitmap.bytes, bitmap.size)) return false;
  state.clipboard = std::move(bytes);
  return true;
}

}  // namespace

constinit const Desktop MEMORY_DESKTOP{
    .panelCreate = GUARDED<&PanelCreate, -1>,
    .panelDiscard = GUARDED<&PanelDiscard>,
    .canvasCreate = GUARDED<&CanvasCreate, -1>,
    .canvasDiscard = GUARDED<&CanvasForget>,
    .panelSet = GUARDED<&PanelSet>,
    .panelGet = GUARDED<&PanelGet>,
    .panelSetTitle = GUARDED<&PanelSetTitle>,
    .panelTitle = GUARDED<&PanelTitle>,
    .panelMove = GUARDED<&PanelMove>,
    .setSink = GUARDED<&SetSink>,
    .activate = GUARDED<&Activate>,
    .active = GUARDED<&Active>,
    .canvasSet = GUARDED<&CanvasSet>,
    .canvasPen = GUARDED<&CanvasPen>,
    .penDefaults = GUARDED<&CanvasPenDefaults>,
    .penMove = GUARDED<&CanvasPenMove>,
    .lineTo = GUARDED<&CanvasLineTo>,
    .rect = GUARDED<&CanvasRect>,
    .oval = GUARDED<&CanvasOval>,
    .invert = GUARDED<&CanvasInvert>,
    .text = GUARDED<&CanvasText>,
    .clip = GUARDED<&CanvasClip>,
    .setClip = GUARDED<&CanvasSetClip>,
    .beginBatch = GUARDED<&Batch>,
    .endBatch = GUARDED<&Batch>,
    .bitmapCreate = GUARDED<&BitmapNew, -1>,
    .bitmapDiscard = GUARDED<&BitmapForget>,
    .blit = GUARDED<&CanvasBlit>,
    .pump = GUARDED<&Pump>,
    .idle = GUARDED<&Idle>,
    .pointer = GUARDED<&Pointer>,
    .screen = GUARDED<&Screen>,
    .beep = GUARDED<&Beep>,
    .ticks = GUARDED<&Ticks>,
    .metaFont = GUARDED<&MetaFont, -1>,
    .clipboardRead = GUARDED<&ClipboardRead>,
    .clipboardWrite = GUARDED<&ClipboardWrite>,
};

void MemoryDesktopReset() {
  state = {};
  CanvasesForget();
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
