#include "core/processor.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <string>

namespace {

using namespace zel;

TEST(Processor, TheFlagCanBeForcedAndAskedAgain) {
  const uint32_t told = MmxAvailable();
#if defined(__x86_64__)
  EXPECT_EQ(told, 1u);
#endif
  MmxForce(0);
  EXPECT_EQ(MmxAvailable(), 0u);
  MmxForce(1);
  EXPECT_EQ(MmxAvailable(), 1u);
  MmxForce(-1);
  EXPECT_EQ(MmxAvailable(), told);
}

TEST(Processor, ALevelThatIsThereCanBeForced) {
  EXPECT_TRUE(ProcessorLevelForce(ProcessorLevel::Baseline));
  EXPECT_EQ(ProcessorLevelInUse(), ProcessorLevel::Baseline);
  EXPECT_TRUE(ProcessorLevelForce(ProcessorLevel::Unknown));
  EXPECT_NE(ProcessorLevelInUse(), ProcessorLevel::Unknown);
}

TEST(Processor, TheEnvironmentNamesALowerLevel) {
  const char* former = std::getenv("ORLUNE_PTK_LEVEL");
  const std::string kept = former ? former : "";
  setenv("ORLUNE_PTK_LEVEL", "baseline", 1);
  EXPECT_EQ(ProcessorLevelDetect(), ProcessorLevel::Baseline);
  setenv("ORLUNE_PTK_LEVEL", "nonsense", 1);
  const ProcessorLevel best = ProcessorLevelDetect();
  unsetenv("ORLUNE_PTK_LEVEL");
  EXPECT_EQ(ProcessorLevelDetect(), best);
  if (former) setenv("ORLUNE_PTK_LEVEL", kept.c_str(), 1);
}

}  // namespace
