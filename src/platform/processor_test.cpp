#include "platform/processor.h"

#include <gtest/gtest.h>

namespace {

using namespace zel;

TEST(Processor, TheFlagCanBeForcedAndAskedAgain) {
  const uint32_t told = MmxAvailable();
  EXPECT_EQ(told, 1u);
  MmxForce(0);
  EXPECT_EQ(MmxAvailable(), 0u);
  MmxForce(1);
  EXPECT_EQ(MmxAvailable(), 1u);
  MmxForce(-1);
  EXPECT_EQ(MmxAvailable(), told);
}

TEST(Processor, TheLastLevelCacheHasASensibleSize) {
  EXPECT_GE(LastLevelCacheBytes(), 1 << 16);
}

TEST(Processor, AHigherLevelHasTheLowerOnes) {
  const ProcessorFeatures features = ProcessorFeaturesAsk();
  EXPECT_TRUE(features.plain);
  EXPECT_LE(features.v4, features.v3);
  EXPECT_LE(features.v3, features.baseline);
}

}  // namespace
