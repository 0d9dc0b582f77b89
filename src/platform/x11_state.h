// What the X desktop knows: its panels, and what people did that is still to be handed out.
#pragma once

#include <cstdint>
#include <deque>
#include <map>
#include <string>

#include "platform/desktop.h"
#include "platform/x11_connection.h"
#include "platform/x11_selection.h"

namespace zel {

constexpr uint32_t X11_WISHES = 32;
constexpr int32_t X11_MOST_SIDE = 32767;  // of windows and pictures, in pixels of the server

// In pixels of the server. Place and size are those of the inside of the window.
struct X11Place {
  int32_t left, top, width, height;
};

// A place that the program asked for, and when.
struct X11Wish {
  X11Place place{};
  uint32_t ticks = 0;
};

// A position, or a size, that may be a late answer to a former wish, or all that the window manager
// grants: what comes next tells.
struct X11Doubt {
  bool isOne = false;
  int32_t x = 0, y = 0;
};

struct X11Click {
  xcb_timestamp_t time = 0;
  int32_t button = 0, x = 0, y = 0;
};

struct X11Panel {
  xcb_window_t window = 0;   // 0 once the server is lost
  xcb_pixmap_t picture = 0;  // what the server paints the window with
  int32_t pictureWidth = 0, pictureHeight = 0;
  std::string title;
  std::map<int32_t, int32_t> attributes;  // PanelAttribute, as the program or a person set them
  X11Place place{};                       // as last asked for, or told by the server
  bool isPlacing = false;                 // the server has not answered yet
  uint32_t placedAt = 0;                  // the number of the request that asked for it
  uint32_t placedTicks = 0;
  bool isFramed = false;       // by a window manager
  X11Wish wishes[X11_WISHES];  // the last ones, in a ring
  uint32_t wishCount = 0;
  X11Doubt position, size;
  X11Click lastClick;
  int32_t number = 0;  // that came with the sink
  DesktopSink sink = nullptr;
};

// Something that happened to a panel: an event, or where the pointer was while the left button was
// down, and when it was released.
struct X11Deed {
  int32_t panel = 0;
  bool isSample = false;
  PointerState sample{};
  DesktopEvent event;
};

struct X11State {
  X11Connection connection;
  std::map<int32_t, X11Panel> panels;
  std::deque<X11Deed> deeds;
  int32_t pumps = 0;  // that run now, one inside the other
  int32_t active = 0;
  bool isActivating = false;  // the server has not answered yet
  uint32_t activatedAt = 0;   // the number of the request that last made a panel active
  xcb_timestamp_t time = XCB_CURRENT_TIME;  // of the last event that tells one
  X11Selection selection;
};

// The one state. Null while the desktop is not open.
extern X11State* x11;

X11Panel* X11PanelOf(int32_t panel);
X11Panel* X11PanelOfWindow(xcb_window_t window, int32_t* panel);

// Its window has gone: it is shown no longer, and said to be closed.
void X11PanelLose(int32_t number, X11Panel* panel);

// A turn at the server that also sees to what goes with it when it is lost: the windows, each of
// which is said to be closed.
class X11Session {
 public:
  X11Session();
  explicit operator bool() const { return turn_.IsAlive(); }

 private:
  X11Turn turn_;
};

// Whether a request or event is older than another one; numbers wrap around.
inline bool IsOlder(uint32_t number, uint32_t than) {
  return static_cast<int32_t>(number - than) < 0;
}

// Whether an event was on its way already when the program asked for something that it would undo.
// Once a younger one has come no older one follows.
inline bool IsOutdated(uint32_t event, uint32_t request, bool* isAwaited) {
  if (*isAwaited) *isAwaited = IsOlder(event, request);
  return *isAwaited;
}

}  // namespace zel
