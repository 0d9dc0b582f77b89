// An X server of the test's own, what its screen shows, and a person in front of it.
#pragma once

#include <gtest/gtest.h>
#include <sys/types.h>
#include <xcb/xcb.h>

#include <chrono>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "harness/test_image.h"
#include "orlune_ptk.h"
#include "platform/desktop.h"

namespace test {

struct Freed {
  void operator()(void* block) const { std::free(block); }
};
template <class T>
using Answer = std::unique_ptr<T, Freed>;

// Starts on a free display and is the one in DISPLAY for as long as it lives.
class XServer {
 public:
  XServer();
  XServer(const XServer&) = delete;
  XServer& operator=(const XServer&) = delete;
  ~XServer();
  bool IsThere() const { return process_ > 0; }
  void Kill();
  // It answers nothing from now on.
  void Stop() const;

 private:
  pid_t process_ = 0;
};

// A connection beside the library's own.
class XClient {
 public:
  XClient();
  XClient(const XClient&) = delete;
  XClient& operator=(const XClient&) = delete;
  ~XClient() { xcb_disconnect(link_); }

  xcb_connection_t* link() const { return link_; }
  xcb_window_t root() const { return root_; }
  xcb_atom_t Atom(const std::string& name) const;
  std::string Text(xcb_window_t window, const std::string& property) const;

  void SetText(xcb_window_t window, const std::string& property, const std::string& text) const;

  // On the screen itself, or in another one.
  std::vector<xcb_window_t> Windows() const { return WindowsIn(root_); }
  std::vector<xcb_window_t> WindowsIn(xcb_window_t window) const;
  // The shown window of a title, in a frame or without, or 0.
  xcb_window_t Window(const std::string& title) const;
  // Left and top on the screen, width, height.
  std::vector<int32_t> Place(xcb_window_t window) const;
  // 0x00RRGGBB, row after row; empty where the window cannot be looked at.
  std::vector<uint32_t> Pixels(xcb_window_t window) const;
  // What the screen shows at a window's place, whichever windows lie there.
  std::vector<uint32_t> ScreenAt(xcb_window_t window) const;

  // What a window manager says, and does on a person's behalf.
  void AskToClose(xcb_window_t window) const;
  void Configure(xcb_window_t window, uint16_t mask, const std::vector<uint32_t>& values) const;
  void Sync() const;
  // Sends an event to a window's program.
  template <class Event>
  void Send(xcb_window_t window, const Event& event) const {
    char sent[32] = {};  // the least of an event
    static_assert(sizeof event <= sizeof sent);
    std::memcpy(sent, &event, sizeof event);
    xcb_send_event(link_, 0, window, 0, sent);
    xcb_flush(link_);
  }

 private:
  // At left, top, width and height in a window.
  std::vector<uint32_t> PixelsAt(xcb_window_t window, const std::vector<int32_t>& place) const;
  bool IsShown(xcb_window_t window) const;

  xcb_connection_t* link_;
  xcb_window_t root_ = 0;
};

// A person at the mouse and the keyboard.
class Person {
 public:
  explicit Person(const XClient& client) : client_(client) {}
  void Move(xcb_window_t window, int32_t x, int32_t y) const;
  void Press(uint8_t button = 1) const;
  void Release(uint8_t button = 1) const;
  void Click(uint8_t button = 1) const;
  // A character as it stands on the keys, or a number of the X keyboard.
  void KeyDown(uint32_t key) const;
  void KeyUp(uint32_t key) const;
  void Type(uint32_t key) const;

 private:
  void Do(uint8_t type, uint8_t detail, int16_t x, int16_t y) const;
  uint8_t CodeOf(uint32_t key) const;
  const XClient& client_;
};

// What the program does while it waits: lets events in, or makes no call of the library.
enum class Meanwhile { EVENTS, NOTHING };
// Waits until something holds. False when it does not in ten seconds.
bool Eventually(const std::function<bool()>& holds, Meanwhile meanwhile = Meanwhile::EVENTS);

// Windows of the library on a server that all tests of a kind share.
class Screen : public testing::Test {
 protected:
  static void SetUpTestSuite() { server_ = std::make_unique<XServer>(); }
  static void TearDownTestSuite();
  Screen();
  ~Screen() override;

  // Returns once the server has done all that the library asked of it, and the library has taken
  // what came of that. What another connection is answered says nothing of this one.
  static void Settle();
  static WindowEvent EventOf(int32_t window);
  // Lets events in until the window has one of this type.
  static WindowEvent AwaitedEvent(int32_t window, int32_t type);

  inline static std::unique_ptr<XServer> server_;
  XClient client_;
  Person person_{client_};
};

}  // namespace test
