#include "engine/levels.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <string>

#include "engine/level_probe_rows.h"

namespace {

using namespace zel;

TEST(Levels, EachRunsItsOwnTable) {
  int32_t former = 0;
  for (int32_t level = 0; level < LEVEL_COUNT; level++) {
    if (!LevelForce(level)) continue;
    EXPECT_STREQ(levelProbe().name, LevelName(static_cast<Level>(level)));
    EXPECT_GE(levelProbe().vectorBytes, former) << levelProbe().name;
    former = levelProbe().vectorBytes;
  }
}

TEST(Levels, WiderLevelsHaveWiderVectors) {
#if defined(__x86_64__)
  EXPECT_EQ(v3::levelProbe.vectorBytes, 32);
  EXPECT_EQ(v4::levelProbe.vectorBytes, 64);
#endif
  EXPECT_LE(plain::levelProbe.vectorBytes, 16);
}

TEST(Levels, OneThatIsThereCanBeForced) {
  EXPECT_TRUE(LevelForce(LEVEL_plain));
  EXPECT_EQ(LevelInUse(), LEVEL_plain);
  EXPECT_TRUE(LevelForce(LEVEL_UNKNOWN));
  EXPECT_NE(levelProbe().name, nullptr);
}

TEST(Levels, TheEnvironmentNamesALowerOne) {
  const char* former = std::getenv("ORLUNE_PTK_LEVEL");
  const std::string kept = former ? former : "";
  setenv("ORLUNE_PTK_LEVEL", "plain", 1);
  EXPECT_EQ(LevelChoose(), LEVEL_plain);
  setenv("ORLUNE_PTK_LEVEL", "nonsense", 1);
  const Level best = LevelChoose();
  unsetenv("ORLUNE_PTK_LEVEL");
  EXPECT_EQ(LevelChoose(), best);
  if (former) setenv("ORLUNE_PTK_LEVEL", kept.c_str(), 1);
}

}  // namespace
