// Windows under a window manager, which frames, moves, minimises and closes them at its own pace.
#include <fcntl.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <filesystem>

#include "x_server.h"

namespace {

using test::Answer;
using test::Eventually;
using test::TestImage;
using namespace std::chrono_literals;

constexpr uint32_t FROM_A_PERSON = 2;  // the source of a wish, as window managers know it
// For so long what happens to a window that was just placed counts as the window manager's doing.
constexpr auto PLACING_TIME = 350ms;

class WindowManager {
 public:
  WindowManager() {
    std::string pattern = std::filesystem::temp_directory_path() / "orlune_manager_XXXXXX";
    home_ = mkdtemp(pattern.data());
    process_ = fork();
    if (process_ != 0) return;
    setenv("HOME", home_.c_str(), 1);
    setenv("XDG_CACHE_HOME", home_.c_str(), 1);
    const int nothing = open("/dev/null", O_WRONLY);
    dup2(nothing, STDOUT_FILENO);
    dup2(nothing, STDERR_FILENO);
    execlp("openbox", "openbox", "--sm-disable", static_cast<char*>(nullptr));
    _exit(1);
  }
  // Whether it frames windows by now: it announces itself before it does. The first start with a
  // new home takes long.
  static bool Manages() {
    const test::XClient client;
    const xcb_window_t window = xcb_generate_id(client.link());
    xcb_create_window(client.link(), XCB_COPY_FROM_PARENT, window, client.root(), 0, 0, 10, 10, 0,
                      XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, 0, nullptr);
    xcb_map_window(client.link(), window);
    const auto isFramed = [&] {
      const std::vector<xcb_window_t> outside = client.Windows();
      return std::find(outside.begin(), outside.end(), window) == outside.end();
    };
    for (int i = 0; i < 6; i++) {
      if (Eventually(isFramed, test::Meanwhile::NOTHING)) return true;
    }
    return false;
  }
  WindowManager(const WindowManager&) = delete;
  WindowManager& operator=(const WindowManager&) = delete;
  ~WindowManager() {
    kill(process_, SIGTERM);
    waitpid(process_, nullptr, 0);
    std::filesystem::remove_all(home_);
  }

 private:
  std::string home_;
  pid_t process_ = 0;
};

class ManagedWindows : public test::Screen {
 protected:
  static void SetUpTestSuite() {
    Screen::SetUpTestSuite();
    manager_ = std::make_unique<WindowManager>();
    ASSERT_TRUE(manager_->Manages());
  }
  static void TearDownTestSuite() {
    manager_.reset();
    Screen::TearDownTestSuite();
  }
  // The manager puts a window that has gone back onto the screen, by a number that a window of the
  // next test may have by then: before it takes the frame away.
  ~ManagedWindows() override {
    ZEL_CloseSys();
    EXPECT_TRUE(Eventually(
        [this] {
          const std::vector<xcb_window_t> there = client_.Windows();
          return std::find_first_of(frames_.begin(), frames_.end(), there.begin(), there.end()) ==
                 frames_.end();
        },
        test::Meanwhile::NOTHING));
  }
  std::string Root(const char* property) const { return client_.Text(client_.root(), property); }
  xcb_window_t ActiveWindow() const {
    const std::string value = Root("_NET_ACTIVE_WINDOW");
    xcb_window_t active = 0;
    if (value.size() == sizeof active) std::memcpy(&active, value.data(), sizeof active);
    return active;
  }
  // The frame around a window.
  xcb_window_t FrameOf(xcb_window_t window) const {
    const Answer<xcb_query_tree_reply_t> reply(
        xcb_query_tree_reply(client_.link(), xcb_query_tree(client_.link(), window), nullptr));
    return reply ? reply->parent : xcb_window_t{0};
  }
  // Shows an image in a window of its size, which is active then.
  xcb_window_t Show(const TestImage& image, int32_t window, const char* title) {
    EXPECT_EQ(ZEL_WindDraw(image, window, title, 1), 0);
    xcb_window_t found = 0;
    EXPECT_TRUE(Eventually([&] { return (found = client_.Window(title)) != 0; }));
    EXPECT_TRUE(Eventually([&] { return ActiveWindow() == found; }));
    AwaitedEvent(window, WEVENT_ACTIVATE);
    frames_.push_back(FrameOf(found));
    EXPECT_NE(frames_.back(), client_.root());
    return found;
  }
  // A wish concerning a window, of which the window manager hears.
  void Wish(xcb_window_t window, const char* type, const std::vector<uint32_t>& data) const {
    xcb_client_message_event_t message{};
    message.response_type = XCB_CLIENT_MESSAGE;
    message.format = 32;
    message.window = window;
    message.type = client_.Atom(type);
    std::copy(data.begin(), data.end(), message.data.data32);
    char sent[32] = {};
    std::memcpy(sent, &message, sizeof message);
    constexpr uint32_t hearers =
        XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY | XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT;
    xcb_send_event(client_.link(), 0, client_.root(), hearers, sent);
    client_.Sync();
  }
  void Minimise(xcb_window_t window) const {
    constexpr uint32_t iconic = 3;
    Wish(window, "WM_CHANGE_STATE", {iconic});
  }
  void Restore(xcb_window_t window) const { Wish(window, "_NET_ACTIVE_WINDOW", {FROM_A_PERSON}); }
  void MoveAndResize(xcb_window_t window, const std::vector<int32_t>& place) const {
    constexpr uint32_t staticGravity = 10;
    constexpr uint32_t all = 0xF << 8;
    std::vector<uint32_t> data{staticGravity | all | FROM_A_PERSON << 12};
    for (const int32_t value : place) data.push_back(static_cast<uint32_t>(value));
    Wish(window, "_NET_MOVERESIZE_WINDOW", data);
  }
  std::vector<uint32_t> PixelsOf(const TestImage& image) const {
    std::vector<uint32_t> pixels;
    for (const uint8_t level : image.Pixels()) pixels.push_back(level * 0x010101U);
    return pixels;
  }

  std::vector<xcb_window_t> frames_;
  inline static std::unique_ptr<WindowManager> manager_;
};

TEST_F(ManagedWindows, AreWhereTheyWerePutInsideTheirFrames) {
  const TestImage image(IMAGE_U8, 100, 64);
  const xcb_window_t window = Show(image, 0, "placed");
  EXPECT_EQ(client_.Place(window), (std::vector<int32_t>{20, 40, 100, 64}));
  ASSERT_EQ(ZEL_SetWindow2DAttributes(0, WATTR2_POSITION, 300, 200), 0);
  ASSERT_EQ(ZEL_SetWindow2DAttributes(0, WATTR2_SIZE, 150, 120), 0);
  EXPECT_TRUE(Eventually([&] {
    return client_.Place(window) == std::vector<int32_t>{200, 300, 120, 150};
  }));
  EXPECT_EQ(EventOf(0).type, WEVENT_NONE) << "what a program does itself is no event";
}

TEST_F(ManagedWindows, TellWhatAPersonMovesAndResizes) {
  const TestImage image(IMAGE_U8, 100, 64);
  const xcb_window_t window = Show(image, 0, "moved");
  std::this_thread::sleep_for(PLACING_TIME);
  MoveAndResize(window, {333, 222, 100, 64});
  WindowEvent event = AwaitedEvent(0, WEVENT_MOVE);
  EXPECT_EQ(event.integers[0], 333);
  EXPECT_EQ(event.integers[1], 222);
  MoveAndResize(window, {333, 222, 300, 200});
  event = AwaitedEvent(0, WEVENT_SIZE);
  EXPECT_EQ(event.integers[0], 300);
  EXPECT_EQ(event.integers[1], 200);
  EXPECT_EQ(client_.Place(window), (std::vector<int32_t>{333, 222, 300, 200}));
}

TEST_F(ManagedWindows, CloseByTheirFrame) {
  const TestImage image(IMAGE_U8, 100, 64);
  const xcb_window_t window = Show(image, 3, "closed");
  Wish(window, "_NET_CLOSE_WINDOW", {XCB_CURRENT_TIME, FROM_A_PERSON});
  EXPECT_TRUE(Eventually([&] { return client_.Window("closed") == 0; }));
  EXPECT_EQ(EventOf(3).type, WEVENT_CLOSE);
}

TEST_F(ManagedWindows, BecomeActiveByThePersonAndTheProgram) {
  const TestImage image(IMAGE_U8, 100, 64);
  const xcb_window_t first = Show(image, 0, "first");
  const xcb_window_t second = Show(image, 1, "second");
  int32_t number = 0;
  ASSERT_EQ(ZEL_DisplayManager(&number, 30, nullptr, 0, nullptr, 0), 0);
  EXPECT_TRUE(Eventually([&] { return ActiveWindow() == first; }));
  for (int i = 0; i < 5; i++) EXPECT_EQ(EventOf(0).type, WEVENT_NONE);
  Restore(second);
  AwaitedEvent(1, WEVENT_ACTIVATE);
  int32_t visibility = 0;
  number = 1;
  ASSERT_EQ(ZEL_DisplayManager(&number, -4, nullptr, 0, &visibility, 1), 0);
  EXPECT_EQ(visibility, 2);
}

TEST_F(ManagedWindows, StayMinimisedWhenTheyAreDrawn) {
  const TestImage image(IMAGE_U8, 100, 64);
  const TestImage next(IMAGE_U8, 100, 64, 0, 7);
  const xcb_window_t window = Show(image, 0, "live");
  ASSERT_NE(image.Pixels(), next.Pixels());
  Minimise(window);
  ASSERT_TRUE(Eventually([&] { return client_.Window("live") == 0; }));
  ASSERT_EQ(ZEL_WindDraw(next, 0, nullptr, 0), 0);
  client_.Sync();
  // A window that came back would do so before another one that is asked for later.
  Show(image, 1, "other");
  EXPECT_EQ(client_.Window("live"), 0U);
  Restore(window);
  ASSERT_TRUE(Eventually([&] { return client_.Window("live") == window; }));
  EXPECT_TRUE(Eventually([&] { return client_.Pixels(window) == PixelsOf(next); }));
}

TEST_F(ManagedWindows, StayPaintedWhileTheProgramIsBusy) {
  const TestImage image(IMAGE_U8, 200, 150);
  const xcb_window_t window = Show(image, 0, "busy");
  const TestImage gray(IMAGE_U8, 300, 300);
  ASSERT_EQ(ZEL_FillImage(gray, 0, 0x4D, 0, 0, 0), 0);
  const xcb_window_t cover = Show(gray, 1, "cover");
  const std::vector<uint32_t> covered(200 * 150, 0x4D4D4D);
  // From here on no call of the library helps for as long as something is computed.
  const auto eventually = [](const std::function<bool()>& holds) {
    return Eventually(holds, test::Meanwhile::NOTHING);
  };
  for (int i = 0; i < 3; i++) {
    Restore(cover);
    EXPECT_TRUE(eventually([&] { return ActiveWindow() == cover; }));
    EXPECT_TRUE(eventually([&] { return client_.ScreenAt(window) == covered; }));
    Minimise(window);
    EXPECT_TRUE(eventually([&] { return client_.Window("busy") == 0; }));
    Restore(window);
    EXPECT_TRUE(eventually([&] { return client_.Window("busy") == window; }));
    EXPECT_TRUE(eventually([&] { return client_.Pixels(window) == PixelsOf(image); }));
    MoveAndResize(window, {-90 * i, 60 + 40 * i, 200, 150});
    MoveAndResize(window, {60 + 10 * i, 60, 200, 150});
    EXPECT_TRUE(eventually([&] { return client_.Place(window)[0] == 60 + 10 * i; }));
    EXPECT_TRUE(eventually([&] { return client_.Pixels(window) == PixelsOf(image); }));
  }
}

TEST_F(ManagedWindows, OfTwiceTheSizeTellPlacesInTheirOwnPixels) {
  ZEL_CloseSys();  // the scale is asked for when the desktop is opened
  client_.SetText(client_.root(), "RESOURCE_MANAGER", "Xcursor.size:\t48\nXft.dpi:\t192\n");
  const TestImage image(IMAGE_U8, 100, 80);
  const xcb_window_t window = Show(image, 0, "large");
  EXPECT_EQ(client_.Place(window), (std::vector<int32_t>{40, 80, 200, 160}));
  std::this_thread::sleep_for(PLACING_TIME);
  MoveAndResize(window, {301, 211, 333, 251});
  // Both happen at once: the move is the later event.
  WindowEvent event = AwaitedEvent(0, WEVENT_MOVE);
  EXPECT_EQ(event.integers[0], 150);
  EXPECT_EQ(event.integers[1], 105);
  int32_t height = 0;
  int32_t width = 0;
  ASSERT_EQ(ZEL_GetWindow2DAttributes(0, WATTR2_SIZE, &height, &width), 0);
  EXPECT_EQ(width, 166);
  EXPECT_EQ(height, 125);
  EXPECT_EQ(client_.Place(window), (std::vector<int32_t>{301, 211, 332, 250})) << "whole pixels";
  ASSERT_EQ(ZEL_SetActiveTool(WTOOL_RECT), 0);
  ASSERT_EQ(ZEL_SetWindow2DAttributes(0, WATTR2_SIZE, 80, 100), 0);
  ASSERT_EQ(ZEL_SetWindow2DAttributes(0, WATTR2_POSITION, 100, 100), 0);
  EXPECT_TRUE(Eventually([&] {
    return client_.Place(window) == std::vector<int32_t>{200, 200, 200, 160};
  }));
  person_.Move(window, 21, 31);
  person_.Press();
  person_.Move(window, 100, 90);
  person_.Move(window, 161, 121);
  person_.Release();
  event = AwaitedEvent(0, WEVENT_DRAW);
  EXPECT_EQ((std::vector<int32_t>(event.integers, event.integers + 4)),
            (std::vector<int32_t>{10, 15, 80, 60}));
  client_.SetText(client_.root(), "RESOURCE_MANAGER", "");
}

}  // namespace
