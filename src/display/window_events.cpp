// What people do to windows, and how callers learn of it.
#include "display/window_events.h"

#include <algorithm>

#include "core/numbers.h"
#include "display/measures.h"
#include "display/painting.h"
#include "display/panels.h"
#include "display/scroll_bars.h"
#include "display/tool_tracking.h"
#include "display/tools_window.h"
#include "display/user_windows.h"
#include "display/view.h"
#include "display/window_regions.h"

namespace zel {
namespace {

constexpr int32_t LEAST_IMAGE_PANEL = 64;
constexpr int32_t LEAST_PANEL = 28;
constexpr int32_t KEY_ERASE = 8;
constexpr int32_t KEY_ERASE_TOO = 512;

// ---- from the desktop

void PressTake(const DesktopEvent& event) {
  if (display.isInLoop) {
    if (display.waitingPresses < MOST_WAITING) display.presses[display.waitingPresses++] = event;
    return;
  }
  switch (KindOf(event.window)) {
    case WINDOW_IMAGE:
      ToolTrack(event.window, event);
      return;
    case WINDOW_TOOLS:
      ToolsWindowPress(event.x, event.y);
      return;
    default:
      ButtonPress(event.window, event.x, event.y);
  }
}

void KeyTake(const DesktopEvent& event) {
  const int32_t key = event.key == KEY_ERASE_TOO ? KEY_ERASE : event.key;
  display.key = {event.window, 1, key, event.modifiers, DesktopInUse().ticks()};
  if (key == KEY_ERASE && KindOf(event.window) == WINDOW_IMAGE) RegionErase(event.window);
}

void FocusTake(int32_t window, bool isGot) {
  if (isGot) {
    display.lastActiveWindow = window;
    EventRecord(window, EVENT_ACTIVATED);
  }
  if (RecordOf(window).hasScrollBars) ScrollBarsPaint(window);
}

void SizeTake(const DesktopEvent& event) {
  const bool isImage = KindOf(event.window) == WINDOW_IMAGE;
  const int32_t least = isImage ? LEAST_IMAGE_PANEL : LEAST_PANEL;
  PanelResize(event.window, std::max(event.width, least), std::max(event.height, least));
  if (!isImage) return;
  const WindowRecord& record = RecordOf(event.window);
  EventRecord(event.window, EVENT_RESIZED, record.panelWidth, record.panelHeight);
}

void PointerTake(const DesktopEvent& event) {
  WindowRecord& record = RecordOf(event.window);
  ViewCompute(&record);
  const PointInt at = CanvasToImage(record, event.x, event.y);
  display.mouseWindow = event.window;
  display.mouseX = at.x;
  display.mouseY = at.y;
  if (KindOf(event.window) == WINDOW_IMAGE) CoordinatesShow(event.window, at, nullptr);
}

void WindowServe(const DesktopEvent& event) {
  switch (event.kind) {
    case DesktopEventKind::LEFT_PRESS:
    case DesktopEventKind::RIGHT_PRESS:
    case DesktopEventKind::LEFT_DOUBLE_PRESS:
      return PressTake(event);
    case DesktopEventKind::KEY_PRESS:
      return KeyTake(event);
    case DesktopEventKind::GOT_FOCUS:
      return FocusTake(event.window, true);
    case DesktopEventKind::LOST_FOCUS:
      return FocusTake(event.window, false);
    case DesktopEventKind::CLOSE:
      return WindowClose(event.window);
    case DesktopEventKind::PANEL_SIZE:
      return SizeTake(event);
    case DesktopEventKind::PANEL_MOVE:
      return EventRecord(event.window, EVENT_MOVED, event.left, event.top);
    case DesktopEventKind::POINTER_MOVE:
      return PointerTake(event);
  }
}

// Gives the pending event to the window's callback; without one it stays.
void CallbackServe(int32_t window) {
  const PanelBinding& binding = display.bindings[window];
  if (!binding.callback) return;
  const EventRead read = EventPending(RecordOf(window));
  if (read.type == WEVENT_NONE) return;
  RecordOf(window).lastEvent = EVENT_NONE;
  WindowEvent event{};
  event.window = window;
  event.type = read.type;
  event.tool = read.tool;
  std::copy_n(read.integers, 4, event.integers);
  std::copy_n(read.floats, 4, event.floats);
  binding.callback(&event, binding.callbackData);
}

// ---- to callers

int32_t TypeOf(int32_t code) {
  constexpr int32_t types[] = {WEVENT_NONE, WEVENT_CLICK, WEVENT_DRAW,     WEVENT_DRAW,
                               WEVENT_DRAW, WEVENT_DRAW,  WEVENT_DRAW,     WEVENT_DRAW,
                               WEVENT_DRAW, WEVENT_CLICK, WEVENT_SCROLL,   WEVENT_MOVE,
                               WEVENT_SIZE, WEVENT_CLOSE, WEVENT_ACTIVATE, WEVENT_BUTTON};
  return code >= EVENT_NONE && code <= EVENT_BUTTON ? types[code] : int32_t{WEVENT_NONE};
}

template <class... Numbers>
void Integers(EventRead* read, Numbers... numbers) {
  int32_t* to = read->integers;
  ((*to++ = numbers), ...);
}
template <class... Numbers>
void Floats(EventRead* read, Numbers... numbers) {
  float* to = read->floats;
  ((*to++ = static_cast<float>(numbers)), ...);
}

// What a shape's event tells besides the click's ticks and pixel.
void ShapeRead(const WindowRecord& record, int32_t shape, EventRead* read) {
  const PointInt from = record.toolStart;
  const PointInt to = record.toolEnd;
  if (shape == TOOL_POINT) Integers(read, from.x, from.y);
  if (shape == TOOL_LINE) {
    const LineMeasures line = MeasuresOf(from, to);
    Integers(read, from.x, from.y, to.x, to.y);
    Floats(read, line.dx, line.dy, line.angle, line.length);
  }
  if (shape == TOOL_RECT || shape == TOOL_OVAL) {
    const KernelRect box = OrderedCorners(from, to);
    Integers(read, box.left, box.top, box.right, box.bottom);
    Floats(read, double(box.right) - box.left, double(box.bottom) - box.top);
  }
  if (IsMultiPoint(shape)) {
    const KernelRect box = BoundsOf(ContourOf(record));
    Integers(read, ToolToPublic(shape));
    Floats(read, box.left, box.top, box.right, box.bottom);
  }
}

bool IsIn(int32_t type, const int32_t* types, int64_t count) {
  return type != WEVENT_NONE && std::find(types, types + count, type) != types + count;
}

bool HasEventIn(int32_t window, const int32_t* types, int64_t count) {
  const WindowRecord& record = RecordOf(window);
  return record.isOpen && IsIn(TypeOf(record.lastEvent), types, count);
}

}  // namespace

void DesktopEventTake(const DesktopEvent& event) {
  if (!IsWindow(event.window) || !RecordOf(event.window).isOpen) return;
  WindowServe(event);
  CallbackServe(event.window);
}

void EventRecord(int32_t window, int32_t code, int32_t first, int32_t second, int32_t third,
                 int32_t fourth) {
  WindowRecord& record = RecordOf(window);
  record.lastEvent = code;
  record.previousEventTime = record.eventTime;
  record.eventTime = DesktopInUse().ticks();
  record.eventParam[0] = first;
  record.eventParam[1] = second;
  record.eventParam[2] = third;
  record.eventParam[3] = fourth;
}

EventRead EventPending(const WindowRecord& record) {
  EventRead read{};
  const int32_t code = record.lastEvent;
  read.type = TypeOf(code);
  if (code > EVENT_ZOOMED) {
    std::copy_n(record.eventParam, 4, read.integers);
    return read;
  }
  read.tool = ToolToPublic(code);
  if (code == EVENT_ZOOMED) {
    std::copy_n(record.eventParam, 4, read.integers);
    Floats(&read, record.zoomX, record.zoomY);
    return read;
  }
  ShapeRead(record, code, &read);
  if (code == TOOL_POINT) {
    read.integers[2] = static_cast<int32_t>(record.eventTime - record.previousEventTime);
    const PixelValues pixel = PixelOf(record, record.toolStart);
    std::copy_n(pixel.values, pixel.count, read.floats);
  }
  return read;
}

int32_t EventNewest(const int32_t* types, int64_t count) {
  int32_t newest = -1;
  for (int32_t window = 0; window < WINDOW_COUNT; window++) {
    if (!HasEventIn(window, types, count)) continue;
    const bool isNewer = newest < 0 || RecordOf(window).eventTime > RecordOf(newest).eventTime;
    if (isNewer) newest = window;
  }
  return newest;
}

void EventsForget(const int32_t* types, int64_t count) {
  for (int32_t window = 0; window < WINDOW_COUNT; window++) {
    if (HasEventIn(window, types, count)) RecordOf(window).lastEvent = EVENT_NONE;
  }
}

int32_t ShapeNumbers(const WindowRecord& record, int32_t (&numbers)[SHAPE_NUMBERS]) {
  EventRead read{};
  ShapeRead(record, record.roiKind, &read);
  const auto put = [&](int32_t integers, int32_t floats) {
    std::copy_n(read.integers, integers, numbers);
    for (int32_t i = 0; i < floats; i++) numbers[integers + i] = CutLow<int32_t>(read.floats[i]);
    return integers + floats;
  };
  switch (record.roiKind) {
    case TOOL_NONE:
      return 0;
    case TOOL_POINT:
      return put(2, 0);
    case TOOL_LINE:
      return put(4, 4);
    case TOOL_RECT:
    case TOOL_OVAL:
      return put(4, 2);
    default:
      return put(1, 4);
  }
}

void EventsPump() {
  if (!display.isPumping) {
    display.isPumping = true;
    DesktopInUse().pump();
    display.isPumping = false;
  }
  RepaintRun();
}

}  // namespace zel
