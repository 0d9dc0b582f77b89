// A program lives on when its display server dies, and a child leaves its parent's server alone.
#include <sys/wait.h>
#include <unistd.h>

#include "platform/memory_desktop.h"
#include "platform/x11_state.h"
#include "x_server.h"

namespace {

using test::Eventually;
using test::TestImage;

class OwnServer : public testing::Test {
 protected:
  OwnServer() { zel::DesktopUse(nullptr); }
  ~OwnServer() override {
    ZEL_CloseSys();
    zel::DesktopUse(&zel::MEMORY_DESKTOP);
    zel::MemoryDesktopReset();
  }
  static int32_t Available() {
    const TestImage image(IMAGE_U8, 1, 1);
    int32_t available = -1;
    EXPECT_EQ(ZEL_ClipboardToImage(image, nullptr, &available), 0);
    return available;
  }
  test::XServer server_;
};

TEST_F(OwnServer, ThatDiesTakesTheWindowsAndNoMore) {
  const TestImage image(IMAGE_U8, 100, 100);
  ASSERT_EQ(ZEL_WindDraw(image, 0, "a", 1), 0);
  ASSERT_EQ(ZEL_WindDraw(image, 1, "b", 1), 0);
  ASSERT_EQ(ZEL_ImageToClipboard(image, nullptr), 0);
  server_.Kill();
  // The first words to a server that has gone would end the program, were their signal not held
  // back.
  ZEL_WindDraw(image, 0, "c", 0);
  WindowEvent event{};
  EXPECT_TRUE(Eventually([&] {
    ZEL_GetLastWEvent(1, &event);
    return event.type == WEVENT_CLOSE;
  }));
  EXPECT_EQ(ZEL_WindDraw(image, 2, "d", 0), ZEL_ERR_NO_WINDOW);
  EXPECT_EQ(Available(), 1) << "what was copied stays with the program";
  ZEL_CloseSys();
}

TEST_F(OwnServer, ThatDiesBeforeAWordIsSaidGivesWindowsInMemoryOnceTheLibraryIsClosed) {
  {
    const TestImage image(IMAGE_U8, 100, 100);
    ASSERT_EQ(ZEL_WindDraw(image, 0, "a", 1), 0);
    ASSERT_EQ(ZEL_ImageToClipboard(image, nullptr), 0);
    server_.Kill();
    ZEL_WindClose(0, 0);
  }
  ZEL_CloseSys();
  EXPECT_EQ(&zel::DesktopInUse(), &zel::MEMORY_DESKTOP);
  const TestImage image(IMAGE_U8, 100, 100);
  EXPECT_EQ(ZEL_WindDraw(image, 0, "a", 1), 0);
  EXPECT_EQ(Available(), 1);
}

TEST_F(OwnServer, ThatDiesWhileAPictureIsCopiedLeavesItWithTheProgram) {
  const TestImage image(IMAGE_U8, 9, 9);
  ASSERT_EQ(ZEL_WindDraw(image, 0, "a", 1), 0);
  server_.Stop();
  std::thread end([this] {
    std::this_thread::sleep_for(std::chrono::milliseconds(100));
    server_.Kill();
  });
  EXPECT_EQ(ZEL_ImageToClipboard(image, nullptr), 0);
  end.join();
  EXPECT_EQ(Available(), 1);
}

TEST_F(OwnServer, ThatHasDiedTakesNoRequests) {
  const TestImage image(IMAGE_U8, 9, 9);
  ASSERT_EQ(ZEL_WindDraw(image, 0, "a", 1), 0);
  const zel::X11Connection& at = zel::x11->connection;
  EXPECT_GT(at.RequestBytes(), 60000U);
  server_.Kill();
  const zel::WithoutPipeSignal held;
  EXPECT_FALSE(at.Property(at.screen->root, XCB_ATOM_RESOURCE_MANAGER, false, 4));
  EXPECT_EQ(at.RequestBytes(), 0U);
}

TEST_F(OwnServer, IsNotTouchedByAChild) {
  const TestImage image(IMAGE_U8, 100, 100);
  ASSERT_EQ(ZEL_WindDraw(image, 0, "parent", 1), 0);
  const test::XClient client;
  ASSERT_TRUE(Eventually([&] { return client.Window("parent") != 0; }));
  const pid_t child = fork();
  if (child == 0) {
    // The windows are the parent's; those of the child are closed, and no new ones are had.
    WindowEvent event{};
    ZEL_GetLastWEvent(0, &event);
    const bool isClosed = event.type == WEVENT_CLOSE;
    const bool isRefused = ZEL_WindDraw(image, 0, "child", 1) == ZEL_ERR_NO_WINDOW;
    ZEL_CloseSys();
    _exit((isClosed ? 0 : 1) + (isRefused ? 0 : 2));
  }
  int status = -1;
  ASSERT_EQ(waitpid(child, &status, 0), child);
  EXPECT_EQ(WEXITSTATUS(status), 0) << "1: its window is still open; 2: it has got another one";
  client.Sync();
  EXPECT_NE(client.Window("parent"), 0U);
  EXPECT_EQ(client.Window("child"), 0U);
  EXPECT_EQ(ZEL_WindDraw(image, 0, "still", 1), 0);
  EXPECT_TRUE(Eventually([&] { return client.Window("still") != 0; }));
}

TEST(NoServer, MeansWindowsInMemory) {
  for (const char* display : {"", ":987", "nonsense", "a:b:c"}) {
    setenv("DISPLAY", display, 1);
    zel::DesktopUse(nullptr);
    EXPECT_EQ(&zel::DesktopInUse(), &zel::MEMORY_DESKTOP) << display;
  }
  unsetenv("DISPLAY");
  zel::DesktopUse(&zel::MEMORY_DESKTOP);
}

}  // namespace
