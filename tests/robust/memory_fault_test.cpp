// Every allocation of a whole session fails once, alone and with all that follow in its step: the
// step reports no memory, nothing is lost or leaked or changed but what the header tells, and the
// same call succeeds afterwards. And what a call needs does not grow with the processors.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "core/heap.h"
#include "core/world.h"
#include "engine/bands.h"
#include "harness/call_model.h"
#include "harness/calls/calls.h"
#include "harness/memory_files.h"
#include "harness/session/whole_session.h"
#include "harness/test_image.h"

namespace {

using test::Session;
using test::Step;
using test::Steps;
using test::WholeSession;

// What each step leaves behind in a session without faults.
std::vector<uint64_t> Digests() {
  test::MemoryFiles files;
  std::vector<uint64_t> digests;
  WholeSession session;
  for (size_t i = 0; i < Steps().size(); i++) {
    session.outputs = {};
    EXPECT_EQ(Steps()[i].run(session), 0) << Steps()[i].name << ", step " << i;
    digests.push_back(session.Digest());
  }
  ZEL_CloseSys();
  return digests;
}

// The numbers that a call may answer when memory fails; a window that needs some is not made then.
bool IsMemoryFailure(int32_t result) {
  return result == -101 || result == -102 || result == -601;
}

// What a step left otherwise than it may when its call failed, or null. Steps don't tell which
// images their call names, so that all may be those.
const char* FaultOfFailure(test::CallModel* model, const Session& session, const Step& step,
                           int32_t result) {
  for (const ImageRef image :
       {session.u8, session.other, session.mask, session.i16, session.sgl, session.complex,
        session.rgb, session.target, session.target16, session.targetFloat}) {
    model->Names(image, 0);
  }
  return model->Fault(true, test::LeftoversOf(test::CallNamed(step.name), result));
}

// Runs the session with its k-th allocation failing. True when there is no k-th one any more.
bool RunWithFault(uint64_t k, bool all, const std::vector<uint64_t>& digests) {
  zel::HeapHooks* hooks = zel::HeapHooksGet();
  test::MemoryFiles files;
  bool reachedEnd = true;
  {
    WholeSession session;
    *hooks = {};
    hooks->failAt = k;
    hooks->failAllAfter = all;
    test::CallModel model;
    for (size_t i = 0; i < Steps().size(); i++) {
      const Step& step = Steps()[i];
      session.outputs = {};
      model.Begin();
      const int32_t result = step.run(session);
      if (hooks->refusals != 0) {
        reachedEnd = false;
        hooks->failAt = 0;
        hooks->refusals = 0;
        const char* fault = zel::WorldFault();
        if (!fault && result != 0) fault = FaultOfFailure(&model, session, step, result);
        if (fault) {
          ADD_FAILURE() << fault << ": " << step.name << ", step " << i << ", allocation " << k;
        }
        // A call may do without a spare row of a table, or a block that it only asked for in
        // advance; what it answers then is right.
        EXPECT_TRUE(result == 0 || IsMemoryFailure(result))
            << step.name << ", step " << i << ", allocation " << k << ": " << result;
        // A file that there is no memory to look at is one that the information call doesn't know.
        const bool unknownFile = std::string(step.name) == "ZEL_PtkFileInfo";
        if (result != 0 || unknownFile) {
          session.outputs = {};
          EXPECT_EQ(step.run(session), 0)
              << step.name << " again, step " << i << ", allocation " << k;
        }
      } else {
        EXPECT_EQ(result, 0) << step.name << ", step " << i << ", allocation " << k;
      }
      EXPECT_EQ(session.Digest(), digests[i])
          << step.name << ", step " << i << ", allocation " << k;
      if (testing::Test::HasFailure()) break;
    }
  }
  ZEL_CloseSys();
  EXPECT_EQ(hooks->liveBlocks, 0) << "allocation " << k;
  EXPECT_EQ(files.OpenFiles(), 0) << "allocation " << k;
  return reachedEnd;
}

TEST(MemoryFaults, EveryAllocationFailingAloneIsSurvived) {
  const std::vector<uint64_t> digests = Digests();
  uint64_t k = 1;
  while (!HasFailure() && !RunWithFault(k, false, digests)) k++;
  RecordProperty("allocations", static_cast<int>(k));
  EXPECT_GT(k, Steps().size());
}

TEST(MemoryFaults, EveryAllocationFailingWithAllThatFollowIsSurvived) {
  const std::vector<uint64_t> digests = Digests();
  uint64_t k = 1;
  while (!HasFailure() && !RunWithFault(k, true, digests)) k++;
  EXPECT_GT(k, Steps().size());
}

TEST(MemoryFaults, SmallImagesNeedNoMoreMemoryOnManyProcessors) {
  const test::TestImage colours(IMAGE_RGB, 20, 10);
  const test::TestImage bytes(IMAGE_U8, 64, 32);
  const test::TestImage spectrum(IMAGE_COMPLEX, 64, 32);
  const test::TestImage larger(IMAGE_U8, 150, 70);
  zel::BandsForce(256, 0);
  zel::HeapHooksGet()->blockBudget = 150 * 1000;
  uint32_t counts[8];
  EXPECT_EQ(ZEL_ColorHistogram(colours, 0, 8, MODE_RGB, counts, counts, counts, nullptr, nullptr,
                               nullptr),
            0);
  EXPECT_EQ(ZEL_FFT(bytes, spectrum), 0);
  EXPECT_EQ(ZEL_Resample(bytes, larger, 0, 0, 32, 64, 150, 70, RESAMPLE_SPLINE), 0);
  zel::HeapHooksGet()->blockBudget = 0;
  zel::BandsForce(0, 0);
}

}  // namespace
