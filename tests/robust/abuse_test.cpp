// Wild calls of every export: unknown and disposed references, wrong types, one image in several
// places, extreme numbers, NaN, NULL. The same rows drive the fuzz targets.
#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <string>
#include <vector>

#include "harness/calls/calls.h"
#include "harness/checks.h"
#include "harness/memory_files.h"
#include "harness/test_image.h"

namespace {

// One sequence of calls from a seed; it stops the program where the world breaks.
void RunSeed(uint64_t seed) {
  test::Random random(seed);
  std::vector<uint8_t> bytes(600);
  for (uint8_t& byte : bytes) byte = static_cast<uint8_t>(random.Next());
  test::SetBudget(seed % 16 == 0);
  test::Input input(bytes.data(), bytes.size());
  test::MemoryFiles files;
  {
    test::Playground play(&input);
    test::RunCalls(&play, 24);
  }
  test::CheckEnd(files);
}

TEST(Abuse, RandomSequencesOfCallsLeaveTheWorldWhole) {
  for (uint64_t seed = 1; seed <= 3000; seed++) RunSeed(seed);
}

TEST(Abuse, EveryRowIsSeenToSucceedAndToFail) {
  const std::vector<test::ApiCall>& calls = test::ApiCalls();
  std::vector<int> succeeded(calls.size());
  std::vector<int> failed(calls.size());
  for (size_t row = 0; row < calls.size(); row++) {
    for (uint64_t seed = 1; seed <= 400; seed++) {
      if (succeeded[row] != 0 && failed[row] != 0) break;
      // By the code, so that rows that come later change nothing for the others.
      test::Random random(seed * 1000 + calls[row].code);
      std::vector<uint8_t> bytes(400);
      for (uint8_t& byte : bytes) byte = static_cast<uint8_t>(random.Next());
      test::Input input(bytes.data(), bytes.size());
      test::MemoryFiles files;
      files.Put("a", {'O', 'R', 'L', 'N', 0, 1, 0, 1, 0, 8, 0, 1, 0, 2});
      test::Playground play(&input);
      ZEL_WriteFile(*play.Slot(), "b", 1, nullptr, 0);
      const int32_t result = calls[row].run(play);
      (result == 0 ? succeeded : failed)[row]++;
    }
  }
  // These answer 0 always, or numbers that are no status, or fail for want of memory or a desktop
  // alone, of which there is enough here.
  const std::vector<std::string> neverFail = {"ZEL_malloc",
                                              "ZEL_calloc",
                                              "ZEL_realloc",
                                              "ZEL_free",
                                              "ZEL_InitSys",
                                              "ZEL_CloseSys",
                                              "ZEL_GetImageReference",
                                              "ZEL_SetErrorMode",
                                              "ZEL_GetLastError",
                                              "ZEL_Get_MO_STD3X3Ptr",
                                              "ZEL_Get_MO_STD5X5Ptr",
                                              "ZEL_Get_MO_STD7X7Ptr",
                                              "ZEL_FreeROI",
                                              "ZEL_ColorConversion",
                                              "ZEL_ColorEqualize",
                                              "ZEL_GetCpxConstant1Ptr",
                                              "ZEL_GetWindowIDs",
                                              "ZEL_SetWParent",
                                              "ZEL_Get_WT_STDLIST",
                                              "ZEL_RemoveWCallback",
                                              "ZEL_SetActiveTool",
                                              "ZEL_WindToolsClose",
                                              "ZEL_WindToolsSetup"};
  const std::vector<std::string> neverSucceed = {"ZEL_GetErrorMode"};
  const auto isIn = [](const std::vector<std::string>& names, const char* name) {
    return std::find(names.begin(), names.end(), name) != names.end();
  };
  for (size_t row = 0; row < calls.size(); row++) {
    const char* name = calls[row].name;
    if (!isIn(neverSucceed, name)) {
      EXPECT_GT(succeeded[row], 0) << name;
    }
    if (!isIn(neverFail, name)) {
      EXPECT_GT(failed[row], 0) << name;
    }
  }
}

}  // namespace
