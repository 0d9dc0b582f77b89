// Runs the tests, and holds each one to leaving the library's world as it should be: consistent,
// without images, handles or heap blocks left over.
#include <gtest/gtest.h>

#include "core/heap.h"
#include "core/processor.h"
#include "core/world.h"
#include "orlune_ptk.h"

namespace {

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
    zel::ProcessorLevelForce(zel::ProcessorLevel::Unknown);
  }
};

}  // namespace

int main(int argc, char** argv) {
  testing::InitGoogleTest(&argc, argv);
  testing::UnitTest::GetInstance()->listeners().Append(new WorldGuard);
  return RUN_ALL_TESTS();
}
