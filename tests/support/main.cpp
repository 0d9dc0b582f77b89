// Runs the tests, and holds each one to leaving the library's world as it should be: consistent,
// without images, handles or heap blocks left over.
#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "core/heap.h"
#include "core/world.h"
#include "engine/levels.h"
#include "orlune_ptk.h"
#include "platform/memory_desktop.h"
#include "platform/processor.h"

namespace {

constexpr int SKIPPED = 77;  // what ctest takes for a test that was not run

class WorldGuard : public testing::EmptyTestEventListener {
  void OnTestStart(const testing::TestInfo&) override {
    ZEL_SetErrorMode(1);
    *zel::HeapHooksGet() = {};
  }

  void OnTestEnd(const testing::TestInfo&) override {
    if (const char* fault = zel::WorldFault()) ADD_FAILURE() << "the world is broken: " << fault;
    int32_t images = 0;
    ZEL_GetImageReference(0, nullptr, &images);
    EXPECT_EQ(images, 0) << "images left behind";
    ZEL_CloseSys();
    EXPECT_EQ(zel::HeapHooksGet()->liveBlocks, 0) << "heap blocks left behind";
    zel::MmxForce(-1);
    zel::LevelForce(zel::LEVEL_UNKNOWN);
  }
};

}  // namespace

int main(int argc, char** argv) {
  testing::InitGoogleTest(&argc, argv);
  // Tests of a processor level that is not in use would show nothing.
  const char* wanted = std::getenv("ORLUNE_PTK_LEVEL");
  if (wanted && std::strcmp(wanted, zel::LevelName(zel::LevelInUse())) != 0) {
    std::printf("this processor has no level %s\n", wanted);
    return SKIPPED;
  }
  // Windows in memory, also where there is a screen. Tests of the screen's own ask for it.
  zel::DesktopUse(&zel::MEMORY_DESKTOP);
  testing::UnitTest::GetInstance()->listeners().Append(new WorldGuard);
  return RUN_ALL_TESTS();
}
