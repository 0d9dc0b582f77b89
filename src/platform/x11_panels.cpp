// Windows made, placed, shown and closed.
#include "platform/x11_panels.h"

#include <unistd.h>

#include <algorithm>
#include <cstring>
#include <new>
#include <utility>

#include "platform/canvases.h"
#include "platform/utf8.h"
#include "platform/x11_pictures.h"

namespace zel {
namespace {

constexpr uint32_t WHITE = 0xFFFFFF;
constexpr char CLASS[] = "orlune_ptk\0Orlune_ptk";

// The parts of WM_SIZE_HINTS that are used, in the order of that property.
enum SizeHint : uint32_t {
  HINT_USER_POSITION = 1 << 0,
  HINT_PROGRAM_POSITION = 1 << 2,
  HINT_PROGRAM_SIZE = 1 << 3,
  HINT_LEAST_SIZE = 1 << 4,
  HINT_MOST_SIZE = 1 << 5,
  HINT_STEPS = 1 << 6,
  HINT_BASE_SIZE = 1 << 8,
  HINT_GRAVITY = 1 << 9,
};
constexpr size_t HINT_WORDS = 18;

template <class T, size_t count>
void PropertySet(xcb_window_t window, xcb_atom_t property, xcb_atom_t type,
                 const T (&values)[count]) {
  const X11Connection& at = x11->connection;
  at.x->changeProperty(at.link, XCB_PROP_MODE_REPLACE, window, property, type, 8 * sizeof(T), count,
                       values);
}

void TextSet(xcb_window_t window, xcb_atom_t property, xcb_atom_t type, const std::string& text) {
  const X11Connection& at = x11->connection;
  at.x->changeProperty(at.link, XCB_PROP_MODE_REPLACE, window, property, type, 8,
                       static_cast<uint32_t>(text.size()), text.data());
}

X11Place PlaceOf(const X11Panel& panel) {
  const int64_t scale = x11->connection.scale;
  const auto value = [&](int32_t attribute, int64_t low, int64_t high) {
    const auto found = panel.attributes.find(attribute);
    const int64_t wanted = found == panel.attributes.end() ? 0 : found->second;
    return static_cast<int32_t>(std::clamp(wanted * scale, low, high));
  };
  return {value(PANEL_LEFT, INT16_MIN, INT16_MAX), value(PANEL_TOP, INT16_MIN, INT16_MAX),
          value(PANEL_WIDTH, 1, X11_MOST_SIDE), value(PANEL_HEIGHT, 1, X11_MOST_SIDE)};
}

// The place is that of the inside, whatever frame a window manager puts around. A panel that has
// the flag 580 at 0 keeps its size; others change theirs by whole pixels of the canvas.
void HintsSet(const X11Panel& panel) {
  uint32_t hints[HINT_WORDS] = {};
  hints[0] = HINT_USER_POSITION | HINT_PROGRAM_POSITION | HINT_PROGRAM_SIZE | HINT_GRAVITY;
  const auto flag = panel.attributes.find(PANEL_FLAG_580);
  const bool isFixed = flag != panel.attributes.end() && flag->second == 0;
  const int32_t scale = x11->connection.scale;
  if (isFixed) hints[0] |= HINT_LEAST_SIZE | HINT_MOST_SIZE;
  if (scale > 1) hints[0] |= HINT_STEPS | HINT_BASE_SIZE;
  const X11Place& place = panel.place;
  const auto put = [&hints](size_t word, int32_t value) {
    hints[word] = static_cast<uint32_t>(value);
  };
  put(1, place.left);
  put(2, place.top);
  put(3, place.width);
  put(4, place.height);
  put(5, place.width);  // the least size, then the most
  put(6, place.height);
  put(7, place.width);
  put(8, place.height);
  put(9, scale);
  put(10, scale);
  hints[17] = XCB_GRAVITY_STATIC;
  PropertySet(panel.window, XCB_ATOM_WM_NORMAL_HINTS, XCB_ATOM_WM_SIZE_HINTS, hints);
}

void TitleSet(const X11Panel& panel) {
  const X11Connection& at = x11->connection;
  const std::string title = Utf8Of(panel.title);
  TextSet(panel.window, at.atoms[ATOM_NET_WM_NAME], at.atoms[ATOM_UTF8_STRING], title);
  TextSet(panel.window, XCB_ATOM_WM_NAME, at.atoms[ATOM_UTF8_STRING], title);
}

xcb_window_t WindowMake(const X11Place& place) {
  const X11Connection& at = x11->connection;
  constexpr uint32_t events = XCB_EVENT_MASK_BUTTON_PRESS | XCB_EVENT_MASK_BUTTON_RELEASE |
                              XCB_EVENT_MASK_POINTER_MOTION | XCB_EVENT_MASK_KEY_PRESS |
                              XCB_EVENT_MASK_FOCUS_CHANGE | XCB_EVENT_MASK_STRUCTURE_NOTIFY;
  constexpr uint32_t mask = XCB_CW_BACK_PIXEL | XCB_CW_BORDER_PIXEL | XCB_CW_BIT_GRAVITY |
                            XCB_CW_EVENT_MASK | XCB_CW_COLORMAP;
  const uint32_t values[] = {WHITE, 0, XCB_GRAVITY_NORTH_WEST, events, at.colormap};
  const xcb_window_t window = at.x->generateId(at.link);
  at.x->createWindow(at.link, at.depth, window, at.screen->root, static_cast<int16_t>(place.left),
                     static_cast<int16_t>(place.top), static_cast<uint16_t>(place.width),
                     static_cast<uint16_t>(place.height), 0, XCB_WINDOW_CLASS_INPUT_OUTPUT,
                     at.visual, mask, values);
  return window;
}

// What window managers want to know of a window.
void WindowDescribe(const X11Panel& panel, int32_t parent) {
  const X11Connection& at = x11->connection;
  const xcb_atom_t protocols[] = {at.atoms[ATOM_WM_DELETE_WINDOW], at.atoms[ATOM_NET_WM_PING]};
  PropertySet(panel.window, at.atoms[ATOM_WM_PROTOCOLS], XCB_ATOM_ATOM, protocols);
  PropertySet(panel.window, XCB_ATOM_WM_CLASS, XCB_ATOM_STRING, CLASS);
  const uint32_t process[] = {static_cast<uint32_t>(at.process)};
  PropertySet(panel.window, at.atoms[ATOM_NET_WM_PID], XCB_ATOM_CARDINAL, process);
  if (const X11Panel* above = X11PanelOf(parent)) {
    const xcb_window_t windows[] = {above->window};
    PropertySet(panel.window, XCB_ATOM_WM_TRANSIENT_FOR, XCB_ATOM_WINDOW, windows);
  }
  TitleSet(panel);
  HintsSet(panel);
}

void WishKeep(X11Panel* panel) {
  panel->placedTicks = MachineTicks();
  panel->wishes[panel->wishCount++ % X11_WISHES] = {panel->place, panel->placedTicks};
}

// Asks for the place that the attributes tell, in so far as it is another one in the canvas'
// pixels: what a person chose in between is left.
void PlaceAsk(X11Panel* panel) {
  const X11Session session;
  if (!session) return;
  const X11Connection& at = x11->connection;
  const X11Place former = panel->place;
  const auto kept = [&at](int32_t wanted, int32_t was) {
    return at.ToCanvas(wanted) == at.ToCanvas(was) ? was : wanted;
  };
  X11Place wanted = PlaceOf(*panel);
  wanted = {kept(wanted.left, former.left), kept(wanted.top, former.top),
            kept(wanted.width, former.width), kept(wanted.height, former.height)};
  uint32_t mask = 0;
  uint32_t values[4];
  size_t count = 0;
  const auto ask = [&](uint32_t bit, int32_t value, int32_t was) {
    if (value == was) return;
    mask |= bit;
    values[count++] = static_cast<uint32_t>(value);
  };
  ask(XCB_CONFIG_WINDOW_X, wanted.left, former.left);
  ask(XCB_CONFIG_WINDOW_Y, wanted.top, former.top);
  ask(XCB_CONFIG_WINDOW_WIDTH, wanted.width, former.width);
  ask(XCB_CONFIG_WINDOW_HEIGHT, wanted.height, former.height);
  if (mask == 0) return;
  panel->place = wanted;
  HintsSet(*panel);
  panel->placedAt =
      at.x->configureWindow(at.link, panel->window, static_cast<uint16_t>(mask), values).sequence;
  panel->isPlacing = true;
  WishKeep(panel);
  at.x->flush(at.link);
}

void VisibleSet(int32_t number, X11Panel* panel, bool isVisible) {
  const X11Session session;
  if (!session) return;
  const X11Connection& at = x11->connection;
  if (isVisible) {
    X11PanelPresent(session, number);
    panel->placedTicks = MachineTicks();
    at.x->mapWindow(at.link, panel->window);
  } else {
    at.x->unmapWindow(at.link, panel->window);
    if (x11->active == number) x11->active = 0;
  }
  at.x->flush(at.link);
}

void PanelMake(X11Panel* panel, int32_t parent, const char* title, const DesktopRect& rect) {
  panel->title = title;
  panel->attributes = {{PANEL_VISIBLE, 0},
                       {PANEL_LEFT, rect.left},
                       {PANEL_TOP, rect.top},
                       {PANEL_WIDTH, rect.width},
                       {PANEL_HEIGHT, rect.height}};
  panel->place = PlaceOf(*panel);
  WishKeep(panel);
  panel->window = WindowMake(panel->place);
  WindowDescribe(*panel, parent);
}

}  // namespace

bool X11HasManager() {
  const X11Connection& at = x11->connection;
  const xcb_atom_t property = at.atoms[ATOM_NET_SUPPORTING_WM_CHECK];
  const auto windowIn = [&](xcb_window_t window) -> xcb_window_t {
    const auto reply = at.Property(window, property, false, 4);
    const bool isOne = reply && reply->format == 32 && at.x->propertyValueLength(reply.get()) == 4;
    xcb_window_t named = 0;
    if (isOne) std::memcpy(&named, at.x->propertyValue(reply.get()), 4);
    return named;
  };
  const xcb_window_t manager = windowIn(at.screen->root);
  return manager != 0 && windowIn(manager) == manager;
}

int32_t X11PanelCreate(int32_t parent, const char* title, const DesktopRect& rect) {
  const X11Session session;
  if (!session) return -1;
  const int32_t number = DesktopNumberNext();
  try {
    PanelMake(&x11->panels[number], parent, title, rect);
  } catch (const std::bad_alloc&) {
    X11PanelDiscard(number);  // what there is of it
    return -1;
  }
  return number;
}

void X11PanelDiscard(int32_t number) {
  const X11Session session;
  const X11Panel* panel = X11PanelOf(number);
  if (!panel) return;
  if (session && panel->window != 0) {
    const X11Connection& at = x11->connection;
    if (panel->picture != 0) at.x->freePixmap(at.link, panel->picture);
    at.x->destroyWindow(at.link, panel->window);
    at.x->flush(at.link);
  }
  if (x11->active == number) x11->active = 0;
  x11->panels.erase(number);
  std::erase_if(x11->deeds, [number](const X11Deed& deed) { return deed.panel == number; });
}

int32_t X11CanvasCreate(int32_t panel) {
  return X11PanelOf(panel) ? CanvasNew(panel) : -1;
}

void X11PanelSet(int32_t number, int32_t attribute, int32_t value) {
  X11Panel* panel = X11PanelOf(number);
  if (!panel) return;
  const int32_t former = std::exchange(panel->attributes[attribute], value);
  switch (attribute) {
    case PANEL_VISIBLE:
      // A window that is shown already, and minimised by a person, stays so.
      if ((value != 0) != (former != 0)) VisibleSet(number, panel, value != 0);
      return;
    case PANEL_LEFT:
    case PANEL_TOP:
    case PANEL_WIDTH:
    case PANEL_HEIGHT:
      PlaceAsk(panel);
      return;
    case PANEL_FLAG_580:
      if (const X11Session session; session) HintsSet(*panel);
      return;
    default:  // nothing that a window has
      return;
  }
}

int32_t X11PanelGet(int32_t number, int32_t attribute) {
  const X11Panel* panel = X11PanelOf(number);
  if (!panel) return 0;
  const auto found = panel->attributes.find(attribute);
  return found == panel->attributes.end() ? 0 : found->second;
}

void X11PanelSetTitle(int32_t number, const char* title) {
  X11Panel* panel = X11PanelOf(number);
  if (!panel) return;
  panel->title = title;
  const X11Session session;
  if (!session) return;
  TitleSet(*panel);
  x11->connection.x->flush(x11->connection.link);
}

const char* X11PanelTitle(int32_t number) {
  const X11Panel* panel = X11PanelOf(number);
  return panel ? panel->title.c_str() : "";
}

void X11PanelMove(int32_t number, int32_t top, int32_t left) {
  X11Panel* panel = X11PanelOf(number);
  if (!panel) return;
  panel->attributes[PANEL_TOP] = top;
  panel->attributes[PANEL_LEFT] = left;
  PlaceAsk(panel);
}

void X11SetSink(int32_t number, int32_t, int32_t window, DesktopSink sink) {
  X11Panel* panel = X11PanelOf(number);
  if (!panel) return;
  panel->number = window;
  panel->sink = sink;
}

void X11Activate(int32_t number) {
  const X11Panel* panel = X11PanelOf(number);
  const X11Session session;
  if (!panel || !session) return;
  x11->active = number;
  if (X11PanelGet(number, PANEL_VISIBLE) == 0) return;
  x11->isActivating = true;
  const X11Connection& at = x11->connection;
  if (!X11HasManager()) {
    x11->activatedAt =
        at.x->setInputFocus(at.link, XCB_INPUT_FOCUS_PARENT, panel->window, XCB_CURRENT_TIME)
            .sequence;
    at.x->flush(at.link);
    return;
  }
  xcb_client_message_event_t wish{};
  wish.response_type = XCB_CLIENT_MESSAGE;
  wish.format = 32;
  wish.window = panel->window;
  wish.type = at.atoms[ATOM_NET_ACTIVE_WINDOW];
  wish.data.data32[0] = 1;  // from an application
  wish.data.data32[1] = x11->time;
  char sent[32] = {};
  std::memcpy(sent, &wish, sizeof wish);
  x11->activatedAt =
      at.x->sendEvent(at.link, 0, at.screen->root,
                      XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY | XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT,
                      sent)
          .sequence;
  at.x->flush(at.link);
}

int32_t X11Active() {
  return x11->active;
}

}  // namespace zel
