// Many rounds of the same work, good calls and failing ones, leave the process as large as it was.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>

#include "core/heap.h"
#include "harness/checks.h"
#include "harness/memory_files.h"
#include "harness/test_image.h"
#include "tests/support/process.h"

namespace {

constexpr int64_t GROWTH_ALLOWED = 1 << 20;

// ORLUNE_SOAK_ROUNDS asks for more. A sanitizer takes long.
int64_t Rounds() {
  const char* wanted = std::getenv("ORLUNE_SOAK_ROUNDS");
  return wanted                    ? std::max<int64_t>(std::atoll(wanted), 50)
         : test::MemoryIsWatched() ? 4000
                                   : 100000;
}

// Creates, reads, thresholds, labels, measures and disposes; then calls that fail.
void Round(ParticleReport** reports) {
  ImageRef image = 0;
  ImageRef labels = 0;
  int32_t count = 0;
  ASSERT_EQ(ZEL_Create(&image, IMAGE_U8, 2), 0);
  ASSERT_EQ(ZEL_Create(&labels, IMAGE_I16, 2), 0);
  ASSERT_EQ(ZEL_ReadFile(image, "picture", 0, nullptr, nullptr), 0);
  ASSERT_EQ(ZEL_Threshold(image, 0, 128, 255, 1, 1), 0);
  ASSERT_EQ(ZEL_Label(image, labels, 1, &count), 0);
  ASSERT_EQ(ZEL_Particle(image, 1, reports, &count), 0);
  ASSERT_EQ(ZEL_Cast(image, IMAGE_SGL), 0);
  ASSERT_EQ(ZEL_ReadFile(image, "missing", 0, nullptr, nullptr), -510);
  ASSERT_EQ(ZEL_SetImageSize(image, INT32_MAX, INT32_MAX), -101);
  ASSERT_EQ(ZEL_Add(image, labels, 12345678, 0), -200);
  ASSERT_EQ(ZEL_Dispose(image), 0);
  ASSERT_EQ(ZEL_Dispose(image), -200);
  ASSERT_EQ(ZEL_Dispose(labels), 0);
}

TEST(Soak, RoundsOfReadingAndMeasuringKeepMemoryFlat) {
  test::MemoryFiles files;
  {
    const test::TestImage picture(IMAGE_U8, 24, 18, 0, 3);
    ASSERT_EQ(ZEL_WriteFile(picture, "picture", 1, nullptr, 0), 0);
  }
  ParticleReport* reports = nullptr;
  const int64_t rounds = Rounds();
  for (int64_t i = 0; i < rounds / 50; i++) Round(&reports);

  const int64_t blocks = zel::HeapHooksGet()->liveBlocks;
  const int64_t bytes = zel::HeapHooksGet()->liveBytes;
  const int64_t resident = test::ResidentBytes();
  for (int64_t i = 0; i < rounds && !HasFatalFailure(); i++) Round(&reports);
  EXPECT_EQ(zel::HeapHooksGet()->liveBlocks, blocks);
  EXPECT_EQ(zel::HeapHooksGet()->liveBytes, bytes);
  if (!test::MemoryIsWatched()) {  // a sanitizer keeps what is freed in quarantine
    EXPECT_LE(test::ResidentBytes() - resident, GROWTH_ALLOWED);
  }
  EXPECT_EQ(files.OpenFiles(), 0);
  ZEL_free(reports);
}

}  // namespace
