#include "engine/levels.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <map>
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
  const std::map<std::string, int32_t> bytes = {{"v3", 32}, {"v4", 64}};
  for (int32_t level = 0; level < LEVEL_COUNT; level++) {
    if (!LevelForce(level)) continue;
    const auto wide = bytes.find(levelProbe().name);
    if (wide != bytes.end()) {
      EXPECT_EQ(levelProbe().vectorBytes, wide->second) << wide->first;
    } else {
      EXPECT_LE(levelProbe().vectorBytes, 16) << levelProbe().name;
    }
  }
}

TEST(Levels, OneThatIsThereCanBeForced) {
  for (const Level level : {LEVEL_plain, LevelChoose()}) {
    EXPECT_TRUE(LevelForce(level));
    EXPECT_EQ(LevelInUse(), level);
  }
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
