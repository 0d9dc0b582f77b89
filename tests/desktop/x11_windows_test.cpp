// Windows as they are on the screen, and what people do to them.
#include <malloc.h>

#include <array>

#include "core/heap.h"
#include "platform/x11_state.h"
#include "x_server.h"
#if defined(__SANITIZE_ADDRESS__)
#include <sanitizer/allocator_interface.h>
#endif

namespace {

using test::Eventually;
using test::TestImage;
using zel::DesktopEventKind;
using Palette = std::array<RGBValue, 256>;

constexpr uint32_t SHIFT_KEY = 0xFFE1;

std::vector<zel::DesktopEvent> events;

// Bytes of the C library's heap, or of that which a sanitizer has in its place.
size_t MemoryInUse() {
#if defined(__SANITIZE_ADDRESS__)
  return __sanitizer_get_current_allocated_bytes();
#else
  return mallinfo2().uordblks;
#endif
}

std::vector<int32_t> Ask(int32_t window, int32_t command, std::vector<int32_t> output) {
  EXPECT_EQ(ZEL_DisplayManager(&window, command, nullptr, 0, output.data(),
                               static_cast<int32_t>(output.size())),
            0);
  return output;
}

class Windows : public test::Screen {
 protected:
  // Shows an image in a window of its size, and finds that.
  xcb_window_t Show(const TestImage& image, int32_t window, const char* title) const {
    EXPECT_EQ(ZEL_WindDraw(image, window, title, 1), 0);
    Settle();
    const xcb_window_t found = client_.Window(title);
    EXPECT_NE(found, 0U);
    return found;
  }
  // The pixels that the mapping of a U8 image gives, at a zoom above 0 or below.
  static std::vector<uint32_t> Mapped(const TestImage& image, const Palette& palette,
                                      int32_t zoom) {
    const auto canvas = [zoom](int32_t side) { return zoom > 0 ? side * zoom : side / -zoom; };
    const auto from = [zoom](int32_t at) { return zoom > 0 ? at / zoom : at * -zoom; };
    std::vector<uint32_t> pixels;
    for (int32_t y = 0; y < canvas(image.height()); y++) {
      for (int32_t x = 0; x < canvas(image.width()); x++) {
        pixels.push_back(palette[image.Get<uint8_t>(from(x), from(y))] & 0xFFFFFF);
      }
    }
    return pixels;
  }
};

TEST_F(Windows, ShowImagesByZoomAndPalette) {
  const TestImage image(IMAGE_U8, 144, 128, 2);
  Palette palette;
  for (uint32_t i = 0; i < 256; i++) palette[i] = i << 16 | (255 - i) << 8 | (i * 7 & 255);
  int32_t number = 0;
  for (const int32_t zoom : {1, 2, 3, -2}) {
    const std::string title = "zoom " + std::to_string(zoom);
    EXPECT_EQ(ZEL_SetWindow2DAttributes(number, WATTR2_ZOOM, zoom, zoom), 0);
    EXPECT_EQ(ZEL_WSetPalette(number, -1, palette.data()), 0);
    const xcb_window_t window = Show(image, number, title.c_str());
    const std::vector<uint32_t> expected = Mapped(image, palette, zoom);
    EXPECT_TRUE(client_.Pixels(window) == expected) << title;
    number++;
  }
}

TEST_F(Windows, ShowColoursAndRanges) {
  const TestImage colours(IMAGE_RGB, 80, 70);
  colours.FillRandom(8);
  const std::vector<uint32_t> shown = client_.Pixels(Show(colours, 0, "colours"));
  ASSERT_EQ(shown.size(), 80U * 70);
  for (int32_t i = 0; i < 80 * 70; i++) {
    ASSERT_EQ(shown[static_cast<size_t>(i)], colours.Get<RGBValue>(i % 80, i / 80) & 0xFFFFFF) << i;
  }
  const TestImage ramp(IMAGE_SGL, 128, 64);
  for (int32_t i = 0; i < 128 * 64; i++) ramp.Set<float>(i % 128, i / 128, i % 128 < 64 ? 0 : 510);
  const std::vector<uint32_t> levels = client_.Pixels(Show(ramp, 1, "range"));
  ASSERT_EQ(levels.size(), 128U * 64);
  EXPECT_EQ(levels[0], 0U);
  EXPECT_EQ(levels[100], 0xFFFFFFU);
}

TEST_F(Windows, StayPaintedWhileTheProgramIsBusy) {
  const TestImage image(IMAGE_U8, 100, 90);
  const xcb_window_t window = Show(image, 0, "covered");
  const std::vector<uint32_t> before = client_.Pixels(window);
  const std::vector<int32_t> place = client_.Place(window);
  const xcb_window_t cover = xcb_generate_id(client_.link());
  const uint32_t values[] = {0x123456, 1};
  xcb_create_window(client_.link(), XCB_COPY_FROM_PARENT, cover, client_.root(),
                    static_cast<int16_t>(place[0]), static_cast<int16_t>(place[1]), 200, 200, 0,
                    XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT,
                    XCB_CW_BACK_PIXEL | XCB_CW_OVERRIDE_REDIRECT, values);
  xcb_map_window(client_.link(), cover);
  client_.Sync();
  EXPECT_TRUE(client_.ScreenAt(window) == std::vector<uint32_t>(before.size(), values[0]));
  xcb_destroy_window(client_.link(), cover);
  client_.Sync();
  // No call of the library comes in between.
  EXPECT_TRUE(client_.ScreenAt(window) == before);
}

TEST_F(Windows, HaveTitlesOfAnyText) {
  const TestImage image(IMAGE_U8, 64, 64);
  ASSERT_EQ(ZEL_WindDraw(image, 0, "\xC3\xA9 and \xE9 and \xF0\x9F\x98", 1), 0);
  EXPECT_TRUE(Eventually(
      [&] { return client_.Window("\xC3\xA9 and \xC3\xA9 and \xC3\xB0\xC2\x9F\xC2\x98") != 0; }));
}

TEST_F(Windows, AreWhereTheyWerePutAndHiddenWhenAsked) {
  const TestImage image(IMAGE_U8, 64, 64);
  const xcb_window_t window = Show(image, 0, "placed");
  EXPECT_EQ(client_.Place(window), (std::vector<int32_t>{20, 40, 64, 64}));
  ASSERT_EQ(ZEL_SetWindow2DAttributes(0, WATTR2_POSITION, 300, 200), 0);
  ASSERT_EQ(ZEL_SetWindow2DAttributes(0, WATTR2_SIZE, 150, 120), 0);
  EXPECT_TRUE(Eventually([&] {
    return client_.Place(window) == std::vector<int32_t>{200, 300, 120, 150};
  }));
  EXPECT_EQ(EventOf(0).type, WEVENT_NONE) << "what a program does itself is no event";
  ASSERT_EQ(ZEL_SetWindowAttribute(0, WATTR_VISIBLE, 0), 0);
  EXPECT_TRUE(Eventually([&] { return client_.Window("placed") == 0; }));
}

TEST_F(Windows, TellWhatAPersonMovesAndResizes) {
  const TestImage image(IMAGE_U8, 64, 64);
  const xcb_window_t window = Show(image, 0, "moved");
  client_.Configure(window, XCB_CONFIG_WINDOW_X | XCB_CONFIG_WINDOW_Y, {333, 222});
  WindowEvent event = AwaitedEvent(0, WEVENT_MOVE);
  EXPECT_EQ(event.integers[0], 333);
  EXPECT_EQ(event.integers[1], 222);
  client_.Configure(window, XCB_CONFIG_WINDOW_WIDTH | XCB_CONFIG_WINDOW_HEIGHT, {300, 200});
  event = AwaitedEvent(0, WEVENT_SIZE);
  EXPECT_EQ(event.integers[0], 300);
  EXPECT_EQ(event.integers[1], 200);
  client_.Configure(window, XCB_CONFIG_WINDOW_WIDTH | XCB_CONFIG_WINDOW_HEIGHT, {10, 100});
  event = AwaitedEvent(0, WEVENT_SIZE);
  EXPECT_EQ(event.integers[0], 64) << "no smaller";
  EXPECT_TRUE(Eventually([&] {
    return client_.Place(window) == std::vector<int32_t>{333, 222, 64, 100};
  }));
}

// The server's answers to former wishes come while new ones are on their way.
TEST_F(Windows, KeepTheLastOfManySizes) {
  const TestImage image(IMAGE_U8, 64, 64);
  const xcb_window_t window = Show(image, 0, "sizes");
  for (int32_t i = 0; i < 200; i++) {
    ASSERT_EQ(ZEL_SetWindow2DAttributes(0, WATTR2_SIZE, 64 + i, 364 - i), 0);
    ASSERT_EQ(ZEL_SetWindow2DAttributes(0, WATTR2_POSITION, i, 2 * i), 0);
  }
  const std::vector<int32_t> last{398, 199, 165, 263};
  EXPECT_TRUE(Eventually([&] { return client_.Place(window) == last; }));
  for (int i = 0; i < 5; i++) EXPECT_EQ(EventOf(0).type, WEVENT_NONE);
  EXPECT_EQ(client_.Place(window), last);
}

// The panel of the one window that there is, made older.
zel::X11Panel* PanelOf(uint32_t age) {
  zel::X11Panel& panel = zel::x11->panels.begin()->second;
  panel.placedTicks -= age;
  for (zel::X11Wish& wish : panel.wishes) wish.ticks -= age;
  return &panel;
}

// A window manager that has much to do answers one wish after the other when the last one is long
// made, and leaves a window that it puts elsewhere at first where it was asked to be.
TEST_F(Windows, TakeLateAnswersForNoPersonsDoing) {
  const TestImage image(IMAGE_U8, 64, 64);
  const xcb_window_t window = Show(image, 0, "late");
  const auto place = [&](const std::vector<uint32_t>& at) {
    constexpr uint16_t all = XCB_CONFIG_WINDOW_X | XCB_CONFIG_WINDOW_Y | XCB_CONFIG_WINDOW_WIDTH |
                             XCB_CONFIG_WINDOW_HEIGHT;
    client_.Configure(window, all, at);
    Settle();
  };
  for (const int32_t side : {100, 150, 200}) {
    ASSERT_EQ(ZEL_SetWindow2DAttributes(0, WATTR2_SIZE, side, side), 0);
    ASSERT_EQ(ZEL_SetWindow2DAttributes(0, WATTR2_POSITION, side, 2 * side), 0);
  }
  Settle();
  PanelOf(1000);
  for (const uint32_t side : {100U, 150U, 200U}) place({2 * side, side, side, side});
  EXPECT_EQ(EventOf(0).type, WEVENT_NONE);
  EXPECT_EQ(client_.Place(window), (std::vector<int32_t>{400, 200, 200, 200}));
  // Where it stays at a former one it was a person after all.
  place({300, 150, 150, 150});
  EXPECT_EQ(EventOf(0).type, WEVENT_NONE);
  PanelOf(3000);
  const WindowEvent event = AwaitedEvent(0, WEVENT_MOVE);
  EXPECT_EQ(event.integers[0], 300);
  EXPECT_EQ(event.integers[1], 150);
  EXPECT_EQ(Ask(0, -3, {0, 0, 0})[0], 150);
  // Where it was asked to be, though it had been put elsewhere at first.
  PanelOf(0)->place.left = 7;
  client_.Configure(window, XCB_CONFIG_WINDOW_WIDTH, {170});
  EXPECT_EQ(AwaitedEvent(0, WEVENT_SIZE).integers[0], 170);
}

TEST_F(Windows, CloseWhenAPersonAsks) {
  const TestImage image(IMAGE_U8, 64, 64);
  const xcb_window_t window = Show(image, 3, "closed");
  client_.AskToClose(window);
  EXPECT_TRUE(Eventually([&] { return client_.Window("closed") == 0; }));
  EXPECT_EQ(EventOf(3).type, WEVENT_CLOSE);
}

TEST_F(Windows, LetToolsDraw) {
  const TestImage image(IMAGE_U8, 200, 150);
  const xcb_window_t window = Show(image, 0, "tools");
  ASSERT_EQ(ZEL_SetActiveTool(WTOOL_LINE), 0);
  person_.Move(window, 20, 30);
  person_.Press();
  person_.Move(window, 60, 50);
  person_.Move(window, 120, 90);
  person_.Release();
  person_.Move(window, 5, 5);  // what comes after the release is no part of it
  WindowEvent event = AwaitedEvent(0, WEVENT_DRAW);
  EXPECT_EQ(event.tool, WTOOL_LINE);
  EXPECT_EQ((std::vector<int32_t>(event.integers, event.integers + 4)),
            (std::vector<int32_t>{20, 30, 120, 90}));

  ASSERT_EQ(ZEL_SetActiveTool(WTOOL_RECT), 0);
  person_.Move(window, 150, 140);
  person_.Press();
  person_.Move(window, 10, 100);
  person_.Release();
  event = AwaitedEvent(0, WEVENT_DRAW);
  EXPECT_EQ((std::vector<int32_t>(event.integers, event.integers + 4)),
            (std::vector<int32_t>{10, 100, 150, 140}));
}

TEST_F(Windows, TellKeysAndWhereThePointerIs) {
  const TestImage image(IMAGE_U8, 100, 100);
  const xcb_window_t window = Show(image, 2, "keys");
  person_.Move(window, 40, 60);
  EXPECT_TRUE(Eventually([] { return Ask(0, -98, {0, 0, 0}) == std::vector<int32_t>{2, 40, 60}; }));
  const auto typed = [this](uint32_t key, int32_t expected, int32_t modifiers) {
    person_.Type(key);
    std::vector<int32_t> told;
    EXPECT_TRUE(Eventually([&] { return (told = Ask(2, -36, {0, 0, 0, 0, 0}))[1] == 1; }));
    EXPECT_EQ(told[0], 2);
    EXPECT_EQ(told[2], expected);
    EXPECT_EQ(told[3], modifiers);
  };
  typed('a', 'a', 0);
  typed(0xFF0D, 13, 0);
  typed(0xFFBE, 0xFFBE, 0);
  person_.KeyDown(SHIFT_KEY);
  typed('b', 'B', zel::MODIFIER_SHIFT);
  person_.KeyUp(SHIFT_KEY);
}

// A panel whose events are kept.
class HeardPanel {
 public:
  explicit HeardPanel(const char* title)
      : desktop_(zel::DesktopInUse()),
        panel_(desktop_.panelCreate(0, title, {100, 100, 80, 90})),
        canvas_(desktop_.canvasCreate(panel_)) {
    events.clear();
    desktop_.setSink(panel_, canvas_, 17, [](const zel::DesktopEvent& event) {
      if (event.kind != DesktopEventKind::POINTER_MOVE) events.push_back(event);
    });
    desktop_.panelSet(panel_, zel::PANEL_VISIBLE, 1);
  }
  HeardPanel(const HeardPanel&) = delete;
  HeardPanel& operator=(const HeardPanel&) = delete;
  ~HeardPanel() {
    desktop_.canvasDiscard(panel_, canvas_);
    desktop_.panelDiscard(panel_);
  }
  int32_t panel() const { return panel_; }
  int32_t canvas() const { return canvas_; }
  static std::vector<DesktopEventKind> Kinds() {
    std::vector<DesktopEventKind> kinds;
    for (const auto& event : events) kinds.push_back(event.kind);
    return kinds;
  }

 private:
  const zel::Desktop& desktop_;
  int32_t panel_, canvas_;
};

TEST_F(Windows, TellClicksAndIgnoreTheWheel) {
  const HeardPanel panel("clicks");
  xcb_window_t window = 0;
  ASSERT_TRUE(Eventually([&] { return (window = client_.Window("clicks")) != 0; }));
  person_.Move(window, 7, 8);
  person_.Click(4);
  person_.Click(1);
  person_.Click(3);
  EXPECT_TRUE(Eventually([] { return events.size() >= 2; }));
  zel::DesktopInUse().pump();
  EXPECT_EQ(HeardPanel::Kinds(),
            (std::vector{DesktopEventKind::LEFT_PRESS, DesktopEventKind::RIGHT_PRESS}));
  for (const auto& event : events) {
    EXPECT_EQ(event.window, 17);
    EXPECT_EQ(event.canvas, panel.canvas());
    EXPECT_EQ(event.x, 7);
    EXPECT_EQ(event.y, 8);
  }
}

// Two presses of the left button are one double click by the server's times, which are the test's
// own here.
TEST_F(Windows, TellDoubleClicksByTheServersTime) {
  const HeardPanel panel("double clicks");
  xcb_window_t window = 0;
  ASSERT_TRUE(Eventually([&] { return (window = client_.Window("double clicks")) != 0; }));
  const auto press = [&](xcb_timestamp_t time, uint8_t button, int16_t x) {
    xcb_button_press_event_t event{};
    event.response_type = XCB_BUTTON_PRESS;
    event.event = window;
    event.time = time;
    event.detail = button;
    event.event_x = x;
    client_.Send(window, event);
  };
  constexpr auto single = DesktopEventKind::LEFT_PRESS;
  constexpr auto second = DesktopEventKind::LEFT_DOUBLE_PRESS;
  press(1000, 1, 7);
  press(1399, 1, 11);
  press(1400, 1, 11);  // a third one begins anew
  press(1800, 1, 11);  // too late
  press(1900, 1, 16);  // too far
  press(2000, 3, 16);
  press(2100, 1, 16);  // another button came between
  EXPECT_TRUE(Eventually([] { return events.size() >= 7; }));
  EXPECT_EQ(HeardPanel::Kinds(), (std::vector{single, second, single, single, single,
                                              DesktopEventKind::RIGHT_PRESS, single}));
}

TEST_F(Windows, AreClosedWhenAnotherProgramDestroysThem) {
  const HeardPanel panel("destroyed");
  xcb_window_t window = 0;
  ASSERT_TRUE(Eventually([&] { return (window = client_.Window("destroyed")) != 0; }));
  xcb_destroy_window(client_.link(), window);
  client_.Sync();
  EXPECT_TRUE(Eventually([] { return !events.empty(); }));
  EXPECT_EQ(HeardPanel::Kinds(), std::vector{DesktopEventKind::CLOSE});
  EXPECT_EQ(zel::DesktopInUse().panelGet(panel.panel(), zel::PANEL_VISIBLE), 0);
}

TEST_F(Windows, BecomeActiveWithoutAWindowManager) {
  const TestImage image(IMAGE_U8, 64, 64);
  Show(image, 0, "first");
  const xcb_window_t second = Show(image, 1, "second");
  int32_t number = 1;
  ASSERT_EQ(ZEL_DisplayManager(&number, 30, nullptr, 0, nullptr, 0), 0);
  EXPECT_EQ(Ask(1, -4, {0})[0], 2);
  EXPECT_TRUE(Eventually([&] {
    const test::Answer<xcb_get_input_focus_reply_t> focus(
        xcb_get_input_focus_reply(client_.link(), xcb_get_input_focus(client_.link()), nullptr));
    return focus->focus == second;
  }));
  EXPECT_EQ(EventOf(1).type, WEVENT_NONE);
  xcb_set_input_focus(client_.link(), XCB_INPUT_FOCUS_PARENT, client_.Window("first"),
                      XCB_CURRENT_TIME);
  client_.Sync();
  AwaitedEvent(0, WEVENT_ACTIVATE);
  EXPECT_EQ(Ask(1, -4, {0})[0], 1);
}

TEST_F(Windows, AreAsManyTimesLargerAsTheScale) {
  ZEL_CloseSys();  // the scale is asked for when the desktop is opened
  setenv("ORLUNE_PTK_SCALE", "2", 1);
  const TestImage image(IMAGE_U8, 70, 64);
  const xcb_window_t window = Show(image, 0, "scaled");
  EXPECT_EQ(client_.Place(window), (std::vector<int32_t>{40, 80, 140, 128}));
  Palette gray;
  for (uint32_t i = 0; i < 256; i++) gray[i] = i * 0x010101;
  EXPECT_TRUE(client_.Pixels(window) == Mapped(image, gray, 2));
  EXPECT_EQ(Ask(0, -39, {0, 0, 0, 0})[0], 640);
  ASSERT_EQ(ZEL_SetActiveTool(WTOOL_POINT), 0);
  person_.Move(window, 41, 61);
  person_.Click();
  const WindowEvent event = AwaitedEvent(0, WEVENT_CLICK);
  EXPECT_EQ(event.integers[0], 20);
  EXPECT_EQ(event.integers[1], 30);
  // A size in between is a person's own choice.
  client_.Configure(window, XCB_CONFIG_WINDOW_WIDTH | XCB_CONFIG_WINDOW_HEIGHT, {301, 201});
  const WindowEvent resized = AwaitedEvent(0, WEVENT_SIZE);
  EXPECT_EQ(resized.integers[0], 150);
  EXPECT_EQ(resized.integers[1], 100);
  EXPECT_EQ(client_.Place(window), (std::vector<int32_t>{40, 80, 301, 201}));
  unsetenv("ORLUNE_PTK_SCALE");
}

TEST_F(Windows, TakeTheirScaleFromTheEnvironmentBeforeTheDesktop) {
  ZEL_CloseSys();
  client_.SetText(client_.root(), "RESOURCE_MANAGER", "Xft.dpi:\t192\n");
  EXPECT_EQ(Ask(0, -39, {0, 0, 0, 0})[0], 640);
  ZEL_CloseSys();
  setenv("GDK_SCALE", "4", 1);
  EXPECT_EQ(Ask(0, -39, {0, 0, 0, 0})[0], 320);
  ZEL_CloseSys();
  setenv("ORLUNE_PTK_SCALE", "1", 1);
  EXPECT_EQ(Ask(0, -39, {0, 0, 0, 0})[0], 1280);
  unsetenv("ORLUNE_PTK_SCALE");
  unsetenv("GDK_SCALE");
  client_.SetText(client_.root(), "RESOURCE_MANAGER", "");
}

TEST_F(Windows, LeaveNothingBehind) {
  const TestImage image(IMAGE_U8, 64, 64);
  const auto openAndClose = [&] {
    ZEL_WindDraw(image, 0, "again", 0);
    ZEL_WindClose(0, 0);
  };
  for (int i = 0; i < 20; i++) openAndClose();
  Settle();
  const size_t windows = client_.Windows().size();
  const int64_t held = zel::HeapHooksGet()->liveBytes;
  const size_t memory = MemoryInUse();
  for (int i = 0; i < 1000; i++) openAndClose();
  Settle();
  EXPECT_EQ(client_.Windows().size(), windows);
  EXPECT_TRUE(zel::x11->panels.empty());
  EXPECT_TRUE(zel::x11->deeds.empty());
  EXPECT_EQ(zel::HeapHooksGet()->liveBytes, held);
  EXPECT_LT(MemoryInUse(), memory + 20000);
}

}  // namespace
