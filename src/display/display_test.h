// What tests of windows share: a desktop in memory, and what a person does on it.
#pragma once

#include <gtest/gtest.h>

#include <vector>

#include "display/window_records.h"
#include "harness/test_image.h"
#include "platform/memory_desktop.h"

namespace test {

using zel::DesktopEventKind;

class Display : public testing::Test {
 protected:
  Display() {
    zel::MemoryDesktopReset();
    zel::MemoryDesktopTicks(1000);
  }
  ~Display() override {
    ZEL_CloseSys();
    EXPECT_EQ(zel::MemoryDesktopPanels(), 0) << "panels left behind";
    zel::MemoryDesktopReset();
  }

  // The answer of a command: as many numbers as it filled.
  static std::vector<int32_t> Ask(int32_t window, int32_t command,
                                  const std::vector<int32_t>& input = {}) {
    constexpr int32_t room = 600;
    constexpr int32_t unset = 0x5A5A5A5A;
    std::vector<int32_t> output(room, unset);
    EXPECT_EQ(ZEL_DisplayManager(&window, command, input.data(), static_cast<int32_t>(input.size()),
                                 output.data(), room),
              0);
    while (!output.empty() && output.back() == unset) output.pop_back();
    return output;
  }
  static void Do(int32_t window, int32_t command, const std::vector<int32_t>& input = {}) {
    EXPECT_EQ(ZEL_DisplayManager(&window, command, input.data(), static_cast<int32_t>(input.size()),
                                 nullptr, 0),
              0);
  }
  static int32_t Attribute(int32_t window, int32_t attribute) {
    int32_t value = -12345;
    EXPECT_EQ(ZEL_GetWindowAttribute(window, attribute, &value), 0) << attribute;
    return value;
  }
  static uint32_t Pixel(int32_t window, int32_t x, int32_t y) {
    int32_t canvas = 0;
    ZEL_GetWindowIDs(window, nullptr, &canvas);
    return zel::MemoryDesktopPixel(canvas, x, y);
  }

  static void Post(int32_t window, DesktopEventKind kind, int32_t x = 0, int32_t y = 0,
                   int32_t modifiers = 0) {
    zel::DesktopEvent event;
    event.kind = kind;
    event.window = window;
    event.x = x;
    event.y = y;
    event.modifiers = modifiers;
    zel::MemoryDesktopPost(event);
  }
  // A press, the way of the pointer with the button down, and the release at its end.
  static void Drag(int32_t window, const std::vector<std::pair<int32_t, int32_t>>& way,
                   int32_t modifiers = 0) {
    Post(window, DesktopEventKind::LEFT_PRESS, way[0].first, way[0].second, modifiers);
    for (const auto& [x, y] : way) zel::MemoryDesktopPointer(x, y, true);
    zel::MemoryDesktopPointer(way.back().first, way.back().second, false);
  }
  static WindowEvent EventOf(int32_t window) {
    WindowEvent event{};
    EXPECT_GE(ZEL_GetLastWEvent(window, &event), 0);
    return event;
  }
};

}  // namespace test
