// Events of windows: from the desktop to the records, and from there to callers.
#pragma once

#include <cstdint>

#include "display/window_records.h"

namespace zel {

// The sink of every panel.
void DesktopEventTake(const DesktopEvent& event);

// A window's pending event in the form that callers get.
struct EventRead {
  int32_t type;  // WindowEventType, WEVENT_NONE without an event
  int32_t tool;  // WindowTool
  int32_t integers[4];
  float floats[4];
};
EventRead EventPending(const WindowRecord& record);

// The window with the newest of the pending events of the types in the list; -1 without one.
int32_t EventNewest(const int32_t* types, int64_t count);
// Forgets the pending events of these types.
void EventsForget(const int32_t* types, int64_t count);

// The numbers of the region's shape, floats cut: what its event would tell. Returns their count.
constexpr int32_t SHAPE_NUMBERS = 8;
int32_t ShapeNumbers(const WindowRecord& record, int32_t (&numbers)[SHAPE_NUMBERS]);

// Hands out what the desktop has for the windows, where that is not being done already, and paints
// what is to be painted.
void EventsPump();

}  // namespace zel
