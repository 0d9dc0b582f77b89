#include "x_server.h"

#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstring>

#include "platform/memory_desktop.h"
#include "platform/x11_state.h"

namespace test {

using namespace std::chrono_literals;

XServer::XServer() {
  int ends[2];
  if (pipe(ends) != 0) return;
  process_ = fork();
  if (process_ == 0) {
    dup2(ends[1], 3);
    if (!std::freopen("/dev/null", "w", stderr)) _exit(1);
    execlp("Xvfb", "Xvfb", "-displayfd", "3", "-screen", "0", "1280x1024x24", "-nolisten", "tcp",
           "-noreset", static_cast<char*>(nullptr));
    _exit(1);
  }
  close(ends[1]);
  std::string number;
  for (char digit = 0; read(ends[0], &digit, 1) == 1 && digit != '\n';) number.push_back(digit);
  close(ends[0]);
  if (number.empty()) {
    Kill();
  } else {
    setenv("DISPLAY", (":" + number).c_str(), 1);
  }
}

XServer::~XServer() {
  Kill();
  unsetenv("DISPLAY");
}

void XServer::Kill() {
  if (process_ <= 0) return;
  kill(process_, SIGKILL);
  waitpid(process_, nullptr, 0);
  process_ = 0;
}

void XServer::Stop() const {
  if (process_ > 0) kill(process_, SIGSTOP);
}

XClient::XClient() : link_(xcb_connect(nullptr, nullptr)) {
  if (xcb_connection_has_error(link_) == 0) {
    root_ = xcb_setup_roots_iterator(xcb_get_setup(link_)).data->root;
  }
}

xcb_atom_t XClient::Atom(const std::string& name) const {
  const Answer<xcb_intern_atom_reply_t> reply(xcb_intern_atom_reply(
      link_, xcb_intern_atom(link_, 0, static_cast<uint16_t>(name.size()), name.data()), nullptr));
  return reply ? reply->atom : xcb_atom_t{0};
}

std::string XClient::Text(xcb_window_t window, const std::string& property) const {
  const Answer<xcb_get_property_reply_t> reply(xcb_get_property_reply(
      link_, xcb_get_property(link_, 0, window, Atom(property), XCB_GET_PROPERTY_TYPE_ANY, 0, 1000),
      nullptr));
  if (!reply) return {};
  return {static_cast<const char*>(xcb_get_property_value(reply.get())),
          static_cast<size_t>(xcb_get_property_value_length(reply.get()))};
}

void XClient::SetText(xcb_window_t window, const std::string& property,
                      const std::string& text) const {
  xcb_change_property(link_, XCB_PROP_MODE_REPLACE, window, Atom(property), XCB_ATOM_STRING, 8,
                      static_cast<uint32_t>(text.size()), text.data());
  Sync();
}

std::vector<xcb_window_t> XClient::WindowsIn(xcb_window_t window) const {
  const Answer<xcb_query_tree_reply_t> reply(
      xcb_query_tree_reply(link_, xcb_query_tree(link_, window), nullptr));
  if (!reply) return {};
  const xcb_window_t* all = xcb_query_tree_children(reply.get());
  return {all, all + xcb_query_tree_children_length(reply.get())};
}

bool XClient::IsShown(xcb_window_t window) const {
  const Answer<xcb_get_window_attributes_reply_t> state(
      xcb_get_window_attributes_reply(link_, xcb_get_window_attributes(link_, window), nullptr));
  return state && state->map_state == XCB_MAP_STATE_VIEWABLE;
}

xcb_window_t XClient::Window(const std::string& title) const {
  std::vector<xcb_window_t> windows = Windows();
  for (size_t i = 0; i < windows.size(); i++) {
    const xcb_window_t window = windows[i];
    if (IsShown(window) && Text(window, "_NET_WM_NAME") == title) return window;
    const std::vector<xcb_window_t> inside = WindowsIn(window);
    windows.insert(windows.end(), inside.begin(), inside.end());
  }
  return 0;
}

std::vector<int32_t> XClient::Place(xcb_window_t window) const {
  const auto geometry = xcb_get_geometry(link_, window);
  const auto corner = xcb_translate_coordinates(link_, window, root_, 0, 0);
  const Answer<xcb_get_geometry_reply_t> size(xcb_get_geometry_reply(link_, geometry, nullptr));
  const Answer<xcb_translate_coordinates_reply_t> at(
      xcb_translate_coordinates_reply(link_, corner, nullptr));
  if (!size || !at) return {};
  return {at->dst_x, at->dst_y, size->width, size->height};
}

std::vector<uint32_t> XClient::Pixels(xcb_window_t window) const {
  std::vector<int32_t> place = Place(window);
  if (!place.empty()) place[0] = place[1] = 0;
  return PixelsAt(window, place);
}

std::vector<uint32_t> XClient::ScreenAt(xcb_window_t window) const {
  return PixelsAt(root_, Place(window));
}

std::vector<uint32_t> XClient::PixelsAt(xcb_window_t window,
                                        const std::vector<int32_t>& place) const {
  if (place.empty()) return {};
  const auto left = static_cast<int16_t>(place[0]);
  const auto top = static_cast<int16_t>(place[1]);
  const auto width = static_cast<uint16_t>(place[2]);
  const auto height = static_cast<uint16_t>(place[3]);
  const Answer<xcb_get_image_reply_t> reply(xcb_get_image_reply(
      link_,
      xcb_get_image(link_, XCB_IMAGE_FORMAT_Z_PIXMAP, window, left, top, width, height, UINT32_MAX),
      nullptr));
  if (!reply) return {};
  std::vector<uint32_t> pixels(size_t{width} * height);
  std::memcpy(pixels.data(), xcb_get_image_data(reply.get()), pixels.size() * 4);
  for (uint32_t& pixel : pixels) pixel &= 0xFFFFFF;
  return pixels;
}

void XClient::AskToClose(xcb_window_t window) const {
  xcb_client_message_event_t message{};
  message.response_type = XCB_CLIENT_MESSAGE;
  message.format = 32;
  message.window = window;
  message.type = Atom("WM_PROTOCOLS");
  message.data.data32[0] = Atom("WM_DELETE_WINDOW");
  Send(window, message);
  Sync();
}

void XClient::Configure(xcb_window_t window, uint16_t mask,
                        const std::vector<uint32_t>& values) const {
  xcb_configure_window(link_, window, mask, values.data());
  Sync();
}

void XClient::Sync() const {
  const Answer<xcb_get_input_focus_reply_t> reply(
      xcb_get_input_focus_reply(link_, xcb_get_input_focus(link_), nullptr));
}

bool Eventually(const std::function<bool()>& holds, Meanwhile meanwhile) {
  const auto end = std::chrono::steady_clock::now() + 10s;
  while (std::chrono::steady_clock::now() < end) {
    if (holds()) return true;
    if (meanwhile == Meanwhile::EVENTS) zel::DesktopInUse().pump();
    std::this_thread::sleep_for(1ms);
  }
  return holds();
}

// The library keeps its connection for as long as it offers a picture: with the server that goes,
// so that the next tests find none.
void Screen::TearDownTestSuite() {
  server_.reset();
  zel::DesktopUse(nullptr);
  ZEL_CloseSys();
  zel::DesktopUse(&zel::MEMORY_DESKTOP);
  zel::MemoryDesktopReset();
  EXPECT_EQ(zel::x11, nullptr);
}

Screen::Screen() {
  EXPECT_TRUE(server_->IsThere());
  zel::DesktopUse(nullptr);
  EXPECT_NE(&zel::DesktopInUse(), &zel::MEMORY_DESKTOP);
}

Screen::~Screen() {
  ZEL_CloseSys();
  zel::DesktopUse(&zel::MEMORY_DESKTOP);
}

void Screen::Settle() {
  xcb_connection_t* link = zel::x11 ? zel::x11->connection.link : nullptr;
  if (!link) {
    ADD_FAILURE() << "the library has lost the server";
    return;
  }
  const Answer<xcb_get_input_focus_reply_t> reply(
      xcb_get_input_focus_reply(link, xcb_get_input_focus(link), nullptr));
  EXPECT_TRUE(reply);
  zel::DesktopInUse().pump();
}

WindowEvent Screen::EventOf(int32_t window) {
  WindowEvent event{};
  EXPECT_GE(ZEL_GetLastWEvent(window, &event), 0);
  return event;
}

WindowEvent Screen::AwaitedEvent(int32_t window, int32_t type) {
  WindowEvent event{};
  EXPECT_TRUE(Eventually([&] {
    event = EventOf(window);
    return event.type == type;
  })) << "no event of type "
      << type;
  return event;
}

}  // namespace test
