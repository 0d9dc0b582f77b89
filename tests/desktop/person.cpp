#include <xcb/xtest.h>

#include "x_server.h"

namespace test {

void Person::Do(uint8_t type, uint8_t detail, int16_t x, int16_t y) const {
  xcb_test_fake_input(client_.link(), type, detail, XCB_CURRENT_TIME, client_.root(), x, y, 0);
  client_.Sync();
}

void Person::Move(xcb_window_t window, int32_t x, int32_t y) const {
  const std::vector<int32_t> place = client_.Place(window);
  ASSERT_FALSE(place.empty());
  Do(XCB_MOTION_NOTIFY, 0, static_cast<int16_t>(place[0] + x), static_cast<int16_t>(place[1] + y));
}

void Person::Press(uint8_t button) const {
  Do(XCB_BUTTON_PRESS, button, 0, 0);
}

void Person::Release(uint8_t button) const {
  Do(XCB_BUTTON_RELEASE, button, 0, 0);
}

void Person::Click(uint8_t button) const {
  Press(button);
  Release(button);
}

uint8_t Person::CodeOf(uint32_t key) const {
  const xcb_setup_t* setup = xcb_get_setup(client_.link());
  const auto count = static_cast<uint8_t>(setup->max_keycode - setup->min_keycode + 1);
  const Answer<xcb_get_keyboard_mapping_reply_t> reply(xcb_get_keyboard_mapping_reply(
      client_.link(), xcb_get_keyboard_mapping(client_.link(), setup->min_keycode, count),
      nullptr));
  const xcb_keysym_t* keys = xcb_get_keyboard_mapping_keysyms(reply.get());
  for (int code = 0; code < count; code++) {
    if (keys[code * reply->keysyms_per_keycode] != key) continue;
    return static_cast<uint8_t>(setup->min_keycode + code);
  }
  ADD_FAILURE() << "there is no key " << key;
  return 0;
}

void Person::KeyDown(uint32_t key) const {
  Do(XCB_KEY_PRESS, CodeOf(key), 0, 0);
}

void Person::KeyUp(uint32_t key) const {
  Do(XCB_KEY_RELEASE, CodeOf(key), 0, 0);
}

void Person::Type(uint32_t key) const {
  KeyDown(key);
  KeyUp(key);
}

}  // namespace test
