// Events taken from the server, kept, and handed out.
#include "platform/x11_events.h"

#include <poll.h>

#include <algorithm>
#include <cstdlib>

#include "platform/canvases.h"
#include "platform/x11_keys.h"
#include "platform/x11_panels.h"
#include "platform/x11_pictures.h"

namespace zel {
namespace {

constexpr uint32_t DOUBLE_CLICK_TIME = 400;  // milliseconds
constexpr int32_t DOUBLE_CLICK_WAY = 4;      // pixels
// A window manager may put a window elsewhere than where it was asked to be; for so many
// milliseconds that is its doing, not a person's.
constexpr uint32_t PLACING_TIME = 300;
// A busy one answers wishes so many milliseconds later.
constexpr uint32_t ANSWER_TIME = 3000;
// A program that is busy for long needs no more of the pointer's way than this.
constexpr size_t MOST_DEEDS = 4096;
// Types of events have their highest bit set where another program sent them.
constexpr uint8_t EVENT_TYPE = 0x7F;

DesktopEvent* Put(int32_t panel, DesktopEventKind kind) {
  X11Deed& deed = x11->deeds.emplace_back();
  deed.panel = panel;
  deed.event.kind = kind;
  return &deed.event;
}

bool IsLast(int32_t panel, DesktopEventKind kind, bool isSample) {
  if (x11->deeds.empty()) return false;
  const X11Deed& last = x11->deeds.back();
  return last.panel == panel && last.isSample == isSample && last.event.kind == kind;
}

// Of events that say how something is now, the last one tells all. Nothing else may lie between.
DesktopEvent* PutLatest(int32_t panel, DesktopEventKind kind) {
  return IsLast(panel, kind, false) ? &x11->deeds.back().event : Put(panel, kind);
}

void PutAt(DesktopEvent* event, int32_t panel, int32_t x, int32_t y, uint16_t state) {
  event->canvas = CanvasNumberOn(panel);
  event->x = x11->connection.ToCanvas(x);
  event->y = x11->connection.ToCanvas(y);
  event->modifiers = X11ModifiersOf(state);
}

// ---- the pointer

void SamplePut(int32_t panel, int32_t x, int32_t y, uint16_t state, bool leftDown) {
  constexpr auto kind = DesktopEventKind::POINTER_MOVE;
  const bool isReplaced = leftDown && x11->deeds.size() >= MOST_DEEDS && IsLast(panel, kind, true);
  X11Deed& deed = isReplaced ? x11->deeds.back() : x11->deeds.emplace_back();
  deed.panel = panel;
  deed.isSample = true;
  deed.event.kind = kind;
  PutAt(&deed.event, panel, x, y, state);
  deed.sample = {deed.event.x, deed.event.y, leftDown, true};
}

bool IsSecondClick(const X11Click& last, const xcb_button_press_event_t& press) {
  return last.button == press.detail && press.time - last.time < DOUBLE_CLICK_TIME &&
         std::abs(press.event_x - last.x) <= DOUBLE_CLICK_WAY &&
         std::abs(press.event_y - last.y) <= DOUBLE_CLICK_WAY;
}

void ButtonTake(const xcb_button_press_event_t& press) {
  x11->time = press.time;
  int32_t number = 0;
  X11Panel* panel = X11PanelOfWindow(press.event, &number);
  const bool isLeft = press.detail == XCB_BUTTON_INDEX_1;
  const bool isRight = press.detail == XCB_BUTTON_INDEX_3;
  if (!panel || (!isLeft && !isRight)) return;  // the wheel is made of buttons too
  const bool isSecond = isLeft && IsSecondClick(panel->lastClick, press);
  // A third one begins anew.
  panel->lastClick = {press.time, isSecond ? 0 : press.detail, press.event_x, press.event_y};
  auto kind = isLeft ? DesktopEventKind::LEFT_PRESS : DesktopEventKind::RIGHT_PRESS;
  if (isSecond) kind = DesktopEventKind::LEFT_DOUBLE_PRESS;
  PutAt(Put(number, kind), number, press.event_x, press.event_y, press.state);
}

void ReleaseTake(const xcb_button_release_event_t& release) {
  x11->time = release.time;
  int32_t number = 0;
  const bool isLeft = release.detail == XCB_BUTTON_INDEX_1;
  if (!isLeft || !X11PanelOfWindow(release.event, &number)) return;
  SamplePut(number, release.event_x, release.event_y, release.state, false);
}

void MotionTake(const xcb_motion_notify_event_t& motion) {
  x11->time = motion.time;
  int32_t number = 0;
  if (!X11PanelOfWindow(motion.event, &number)) return;
  if ((motion.state & XCB_BUTTON_MASK_1) != 0) {
    SamplePut(number, motion.event_x, motion.event_y, motion.state, true);
  } else {
    PutAt(PutLatest(number, DesktopEventKind::POINTER_MOVE), number, motion.event_x, motion.event_y,
          motion.state);
  }
}

// ---- keys and focus

void KeyTake(const xcb_key_press_event_t& press) {
  x11->time = press.time;
  int32_t number = 0;
  if (!X11PanelOfWindow(press.event, &number)) return;
  const int32_t key = X11KeyOf(x11->connection, press.detail, press.state);
  if (key == 0) return;
  DesktopEvent* event = Put(number, DesktopEventKind::KEY_PRESS);
  event->key = key;
  event->modifiers = X11ModifiersOf(press.state);
}

// What the program made active itself is active in the record already, so that its echo is no news.
void FocusTake(const xcb_focus_in_event_t& focus, uint32_t sequence, bool isGot) {
  const bool isGrab = focus.mode == XCB_NOTIFY_MODE_GRAB || focus.mode == XCB_NOTIFY_MODE_UNGRAB;
  const bool isOfPointer = focus.detail >= XCB_NOTIFY_DETAIL_POINTER;
  int32_t number = 0;
  if (IsOutdated(sequence, x11->activatedAt, &x11->isActivating)) return;
  if (isGrab || isOfPointer) return;
  if (!X11PanelOfWindow(focus.event, &number)) return;
  if (isGot == (x11->active == number)) return;
  x11->active = isGot ? number : 0;
  Put(number, isGot ? DesktopEventKind::GOT_FOCUS : DesktopEventKind::LOST_FOCUS);
}

// ---- places

bool IsBeingPlaced(const X11Panel& panel) {
  return MachineTicks() - panel.placedTicks < PLACING_TIME;
}

// Whether the program asked for such a place not long ago.
template <class Rule>
bool WasWished(const X11Panel& panel, Rule isSuch) {
  const uint32_t count = std::min(panel.wishCount, X11_WISHES);
  const uint32_t now = MachineTicks();
  return std::any_of(panel.wishes, panel.wishes + count, [&](const X11Wish& wish) {
    return now - wish.ticks < ANSWER_TIME && isSuch(wish.place);
  });
}

// A window manager answers in its own time, also before the window has its frame: what it says of
// the wish before the last one cannot be told from what a person does, but by what comes next.
void SizeTake(int32_t number, X11Panel* panel, int32_t width, int32_t height) {
  const auto isIt = [=](const X11Place& place) {
    return width == place.width && height == place.height;
  };
  const bool isAsked = isIt(panel->place);
  const bool isDoubtful = !isAsked && (IsBeingPlaced(*panel) || WasWished(*panel, isIt));
  panel->size = {isDoubtful, width, height};
  if (isAsked || isDoubtful) return;
  panel->place.width = width;
  panel->place.height = height;
  DesktopEvent* event = PutLatest(number, DesktopEventKind::PANEL_SIZE);
  event->width = panel->attributes[PANEL_WIDTH] = x11->connection.ToCanvas(width);
  event->height = panel->attributes[PANEL_HEIGHT] = x11->connection.ToCanvas(height);
}

void MoveTake(int32_t number, X11Panel* panel, int32_t left, int32_t top) {
  const auto isIt = [=](const X11Place& place) { return left == place.left && top == place.top; };
  const bool isAsked = isIt(panel->place);
  const bool isDoubtful = !isAsked && WasWished(*panel, isIt);
  panel->position = {isDoubtful, left, top};
  if (isAsked || isDoubtful) return;
  panel->place.left = left;
  panel->place.top = top;
  int32_t& toldLeft = panel->attributes[PANEL_LEFT];
  int32_t& toldTop = panel->attributes[PANEL_TOP];
  const X11Connection& at = x11->connection;
  // A window manager that placed it elsewhere at first may give in.
  if (at.ToCanvas(left) == toldLeft && at.ToCanvas(top) == toldTop) return;
  if (IsBeingPlaced(*panel) && (panel->isFramed || X11HasManager())) return;
  DesktopEvent* event = PutLatest(number, DesktopEventKind::PANEL_MOVE);
  event->left = toldLeft = at.ToCanvas(left);
  event->top = toldTop = at.ToCanvas(top);
}

// A window that is moved and resized in one, as by its upper left corner, is not told its place on
// the screen: the server is asked for it.
void CornerTake(int32_t number, X11Panel* panel) {
  const X11Connection& at = x11->connection;
  const auto asked = at.x->translateCoordinates(at.link, panel->window, at.screen->root, 0, 0);
  const Reply<xcb_translate_coordinates_reply_t> corner(
      at.x->translateCoordinatesReply(at.link, asked, nullptr));
  if (corner) MoveTake(number, panel, corner->dst_x, corner->dst_y);
}

// The server tells a place in the frame, a window manager one on the screen. What is older than
// what the program asked for last would undo that.
void ConfigureTake(const xcb_configure_notify_event_t& event, uint32_t sequence, bool isSent) {
  int32_t number = 0;
  X11Panel* panel = X11PanelOfWindow(event.window, &number);
  if (!panel || IsOutdated(sequence, panel->placedAt, &panel->isPlacing)) return;
  const bool isFramesPlace = panel->isFramed && !isSent;
  const bool isResized = event.width != panel->place.width || event.height != panel->place.height;
  SizeTake(number, panel, event.width, event.height);
  if (!isFramesPlace) {
    MoveTake(number, panel, event.x, event.y);
  } else if (isResized) {
    CornerTake(number, panel);
  }
}

// What nothing came after is no longer doubtful once the time for answers is over.
void DoubtfulTake() {
  for (auto& [number, panel] : x11->panels) {
    if (panel.size.isOne) SizeTake(number, &panel, panel.size.x, panel.size.y);
    if (panel.position.isOne) MoveTake(number, &panel, panel.position.x, panel.position.y);
  }
}

void ReparentTake(const xcb_reparent_notify_event_t& event) {
  int32_t number = 0;
  X11Panel* panel = X11PanelOfWindow(event.window, &number);
  if (panel) panel->isFramed = event.parent != x11->connection.screen->root;
}

// ---- from window managers

void MessageTake(const xcb_client_message_event_t& message) {
  const X11Connection& at = x11->connection;
  int32_t number = 0;
  if (message.type != at.atoms[ATOM_WM_PROTOCOLS] || message.format != 32) return;
  if (!X11PanelOfWindow(message.window, &number)) return;
  const xcb_atom_t protocol = message.data.data32[0];
  if (protocol == at.atoms[ATOM_WM_DELETE_WINDOW]) Put(number, DesktopEventKind::CLOSE);
  if (protocol != at.atoms[ATOM_NET_WM_PING]) return;
  xcb_client_message_event_t answer = message;
  answer.window = at.screen->root;
  constexpr uint32_t receivers =
      XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY | XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT;
  at.x->sendEvent(at.link, 0, at.screen->root, receivers, reinterpret_cast<const char*>(&answer));
}

void DestroyTake(xcb_window_t window) {
  int32_t number = 0;
  X11Panel* panel = X11PanelOfWindow(window, &number);
  if (panel) {
    // The picture, unlike the window, is still there.
    if (panel->picture != 0) x11->connection.x->freePixmap(x11->connection.link, panel->picture);
    X11PanelLose(number, panel);
  }
  X11TransfersForget(window);
}

// ---- all of them

template <class T>
const T& As(const xcb_generic_event_t& event) {
  return *reinterpret_cast<const T*>(&event);
}

// What the server answers a request with that came too late, for a window that has gone, is an
// event of type 0; nothing is to be done.
void EventTake(const xcb_generic_event_t& event) {
  const uint32_t sequence = event.full_sequence;
  const bool isSent = (event.response_type & ~EVENT_TYPE) != 0;
  switch (event.response_type & EVENT_TYPE) {
    case XCB_BUTTON_PRESS:
      return ButtonTake(As<xcb_button_press_event_t>(event));
    case XCB_BUTTON_RELEASE:
      return ReleaseTake(As<xcb_button_release_event_t>(event));
    case XCB_MOTION_NOTIFY:
      return MotionTake(As<xcb_motion_notify_event_t>(event));
    case XCB_KEY_PRESS:
      return KeyTake(As<xcb_key_press_event_t>(event));
    case XCB_FOCUS_IN:
      return FocusTake(As<xcb_focus_in_event_t>(event), sequence, true);
    case XCB_FOCUS_OUT:
      return FocusTake(As<xcb_focus_in_event_t>(event), sequence, false);
    case XCB_CONFIGURE_NOTIFY:
      return ConfigureTake(As<xcb_configure_notify_event_t>(event), sequence, isSent);
    case XCB_REPARENT_NOTIFY:
      return ReparentTake(As<xcb_reparent_notify_event_t>(event));
    case XCB_DESTROY_NOTIFY:
      return DestroyTake(As<xcb_destroy_notify_event_t>(event).window);
    case XCB_CLIENT_MESSAGE:
      return MessageTake(As<xcb_client_message_event_t>(event));
    case XCB_MAPPING_NOTIFY:
      return x11->connection.KeysRead();
    default:
      return X11SelectionTake(event);
  }
}

bool TakeWith(decltype(&xcb_poll_for_event) next) {
  bool isAny = false;
  while (x11->connection.link) {
    const Reply<xcb_generic_event_t> event(next(x11->connection.link));
    if (!event) break;
    EventTake(*event);
    isAny = true;
  }
  return isAny;
}

void HandOut(const X11Deed& deed) {
  const X11Panel* panel = X11PanelOf(deed.panel);
  if (!panel || !panel->sink) return;
  DesktopEvent event = deed.event;
  event.window = panel->number;
  panel->sink(event);
}

bool IsSampleNext(int32_t panel) {
  return !x11->deeds.empty() && x11->deeds.front().isSample && x11->deeds.front().panel == panel;
}

PointerState TakeSample() {
  const PointerState sample = x11->deeds.front().sample;
  x11->deeds.pop_front();
  return sample;
}

}  // namespace

void X11EventsTake(const X11Session& session) {
  if (!session) return;
  const X11Connection& at = x11->connection;
  at.x->flush(at.link);
  TakeWith(at.x->pollForEvent);
}

void X11Wait(const X11Session& session, int32_t milliseconds) {
  if (!session) return;
  const X11Connection& at = x11->connection;
  at.x->flush(at.link);
  // Those that came with an answer lie in the client library, where no poll sees them.
  if (TakeWith(at.x->pollForQueuedEvent)) return;
  pollfd input{at.x->fileDescriptor(at.link), POLLIN, 0};
  if (milliseconds > 0) poll(&input, 1, milliseconds);
}

void X11Pump() {
  {
    const X11Session session;
    X11EventsTake(session);
    DoubtfulTake();
  }
  x11->pumps++;
  while (!x11->deeds.empty()) {
    // A loop that runs inside a sink looks at the pointer at its own pace, and at each place where
    // it was.
    const bool isSample = x11->deeds.front().isSample;
    if (isSample && x11->pumps > 1) break;
    const X11Deed deed = x11->deeds.front();
    x11->deeds.pop_front();
    if (!isSample || deed.sample.leftDown) HandOut(deed);
  }
  x11->pumps--;
  const X11Session session;
  X11Present(session);
  X11TransfersExpire(session);
}

void X11Idle(int32_t milliseconds) {
  const X11Session session;
  X11Present(session);
  if (x11->deeds.empty()) X11Wait(session, milliseconds);
}

PointerState X11Pointer(int32_t number, int32_t) {
  if (IsSampleNext(number)) return TakeSample();
  const X11Session session;
  const X11Panel* panel = X11PanelOf(number);
  if (!session || !panel) return {0, 0, false, false};
  const X11Connection& at = x11->connection;
  const Reply<xcb_query_pointer_reply_t> reply(
      at.x->queryPointerReply(at.link, at.x->queryPointer(at.link, panel->window), nullptr));
  // What happened on the way to where it is now has come with the answer.
  TakeWith(at.x->pollForQueuedEvent);
  if (IsSampleNext(number)) return TakeSample();
  if (!reply) return {0, 0, false, false};
  return {x11->connection.ToCanvas(reply->win_x), x11->connection.ToCanvas(reply->win_y),
          (reply->mask & XCB_BUTTON_MASK_1) != 0, true};
}

}  // namespace zel
