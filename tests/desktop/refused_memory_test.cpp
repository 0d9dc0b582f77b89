// A program whose machine refuses memory to what lies beneath windows and the clipboard goes on.
#include <cstdlib>
#include <new>

#include "platform/memory_desktop.h"
#include "platform/x11_state.h"
#include "x_server.h"

namespace {

constexpr int64_t NONE = -1;
int64_t requestsLeft = NONE;  // until all are refused

void* Take(size_t bytes) {
  if (requestsLeft == 0) return nullptr;
  if (requestsLeft > 0) requestsLeft--;
  return std::malloc(bytes == 0 ? 1 : bytes);
}

}  // namespace

// The compiler may not see through them: it would miss the pair of what it inlines.
__attribute__((noinline)) void* operator new(size_t bytes) {
  if (void* block = Take(bytes)) return block;
  throw std::bad_alloc();
}
__attribute__((noinline)) void* operator new(size_t bytes, const std::nothrow_t&) noexcept {
  return Take(bytes);
}
__attribute__((noinline)) void operator delete(void* block) noexcept {
  std::free(block);
}
__attribute__((noinline)) void operator delete(void* block, size_t) noexcept {
  std::free(block);
}

namespace {

using test::TestImage;

// Each of these opens the desktop where none is open.
void Show(const TestImage& image) {
  ZEL_WindDraw(image, 3, "a title that is longer than what a text holds in itself", 1);
  int32_t lines = 0;
  ZEL_DrawText(image, image, 0, 0, 0, "x", 20, 0, 0, "a family of fonts that nobody has installed",
               &lines);
  ZEL_WindClose(3, 0);
}
void Copy(const TestImage& image) {
  ZEL_ImageToClipboard(image, nullptr);
}
void Paste(const TestImage& image) {
  int32_t available = 0;
  ZEL_ClipboardToImage(image, nullptr, &available);
}

// With every request refused in its turn, and all that follow it.
void ExpectToGoOn(void (*use)(const TestImage&)) {
  constexpr int64_t MOST = 3000;
  for (int64_t request = 0; request < MOST; request++) {
    const TestImage image(IMAGE_U8, 20, 10);
    requestsLeft = request;
    use(image);
    const bool wasRefused = requestsLeft == 0;
    requestsLeft = NONE;
    ZEL_CloseSys();
    ASSERT_TRUE(!zel::x11 || zel::x11->panels.empty()) << "request " << request;
    if (!wasRefused) {
      EXPECT_GT(request, 0) << "nothing was asked for";
      return;
    }
  }
  FAIL() << "there is no end of requests";
}

class RefusedMemory : public testing::Test {
 protected:
  RefusedMemory() { zel::DesktopUse(nullptr); }
  ~RefusedMemory() override {
    server_.Kill();  // with it goes the connection that a copied picture keeps
    ZEL_CloseSys();
    EXPECT_EQ(zel::x11, nullptr);
    zel::DesktopUse(&zel::MEMORY_DESKTOP);
    zel::MemoryDesktopReset();
  }
  test::XServer server_;
};

TEST_F(RefusedMemory, EndsNoProgramWithWindowsOrClipboard) {
  ASSERT_TRUE(server_.IsThere());
  for (const auto use : {&Show, &Copy, &Paste}) ExpectToGoOn(use);
  // And windows come up as before.
  const TestImage image(IMAGE_U8, 100, 100);
  ASSERT_EQ(ZEL_WindDraw(image, 0, "shown", 1), 0);
  const test::XClient client;
  EXPECT_TRUE(test::Eventually([&] { return client.Window("shown") != 0; }));
}

}  // namespace
