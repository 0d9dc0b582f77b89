#include "core/handles.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "core/heap.h"
#include "core/poison.h"
#include "core/tables.h"
#include "orlune_ptk.h"

namespace {

using namespace zel;

class Handles : public testing::Test {
 protected:
  void SetUp() override { ASSERT_EQ(TablesEnsure(), 0); }
};

TEST(HandlesBeforeTheTables, NewGivesNoneAndVectorNewReportsNoMemory) {
  EXPECT_EQ(HandleNew(8), 0);
  Handle vector = 77;
  EXPECT_EQ(VectorNew(&vector), 101);
  int32_t value = 0;
  EXPECT_EQ(HandleWrap(&value, 4, 1, 0, 0), 0);
}

TEST_F(Handles, TablesStartWithTwoRowsAndGrowByTwo) {
  EXPECT_EQ(coreTables.handleCapacity, 2u);
  EXPECT_EQ(coreTables.imageCapacity, 2u);
  EXPECT_EQ(coreTables.handleRows, 1u);
  const Handle first = HandleNew(0);
  EXPECT_EQ(first, 1);
  EXPECT_EQ(coreTables.handleCapacity, 4u);  // one free row is on hand again
  EXPECT_EQ(HandleNew(0), 2);
  EXPECT_EQ(HandleNew(0), 3);
  EXPECT_EQ(coreTables.handleCapacity, 6u);
  EXPECT_EQ(HandleFree(2), 0);
  EXPECT_EQ(HandleNew(0), 2);  // the first free row
}

TEST_F(Handles, AnEmptyHandleIsOwnedAndTakesABlockLater) {
  const Handle handle = HandleNew(0);
  void* data = &data;
  EXPECT_EQ(HandleData(handle, &data), 0);
  EXPECT_EQ(data, nullptr);
  EXPECT_EQ(HandleRow(handle)->kind, HANDLE_OWNED);
  EXPECT_EQ(HandleRow(handle)->elementSize, 1u);
  EXPECT_EQ(HandleResize(handle, 12), 0);
  EXPECT_NE(VectorData<char>(handle), nullptr);
  EXPECT_EQ(HandleByteSize(handle), 12u);
}

TEST_F(Handles, ResizeToNothingReleasesTheBlock) {
  const Handle handle = HandleNew(100);
  const int64_t blocks = HeapHooksGet()->liveBlocks;
  EXPECT_EQ(HandleResize(handle, 0), 0);
  EXPECT_EQ(HeapHooksGet()->liveBlocks, blocks - 1);
  EXPECT_EQ(VectorData<char>(handle), nullptr);
  uint32_t count = 9;
  EXPECT_EQ(VectorCount(handle, &count), 0);
  EXPECT_EQ(count, 0u);
}

TEST_F(Handles, ResizeKeepsContentsAndClearsWhatItAdds) {
  const Handle handle = HandleNew(4);
  std::memcpy(VectorData<char>(handle), "abcd", 4);
  ASSERT_EQ(HandleResize(handle, 5000), 0);
  const char* data = VectorData<char>(handle);
  EXPECT_EQ(std::string(data, 4), "abcd");
  for (int i = 4; i < 5000; i++) ASSERT_EQ(data[i], 0);
  ASSERT_EQ(HandleResize(handle, 2), 0);
  EXPECT_EQ(std::string(VectorData<char>(handle), 2), "ab");
}

TEST_F(Handles, CountsThatWrapAreNoMemory) {
  const Handle vector = HandleNew(0);
  constexpr uint64_t half = uint64_t{1} << 32;
  EXPECT_EQ(VectorResize2D(vector, 1, half, half), STATUS_MEMORY_FULL);
  EXPECT_EQ(VectorResize2D(vector, 1u << 31, half, 2), STATUS_MEMORY_FULL);
  EXPECT_EQ(VectorResize2D(vector, 0, half, half), STATUS_OK);  // of nothing
  EXPECT_EQ(HandleByteSize(vector), 0u);
  EXPECT_EQ(HandleNew(0x80000000u), 0);
  int32_t value = 0;
  EXPECT_EQ(HandleWrap(&value, 1u << 31, 2, 0, 0), 0);
  const Handle empty = HandleWrap(nullptr, 4, 3, 0, 1);
  EXPECT_EQ(HandleRow(empty)->blockBytes, 0u);
  EXPECT_EQ(HandleUnwrap(empty), STATUS_OK);
}

TEST_F(Handles, HooksWithoutMemoryAreNotSetAndFreedRowsServeAgain) {
  const CloseHook first = [](int32_t) -> Status { return 1; };
  const CloseHook second = [](int32_t) -> Status { return 2; };
  HeapHooksGet()->blockBudget = 1;
  EXPECT_EQ(CloseHookSet(first, 0), STATUS_MEMORY_FULL);
  HeapHooksGet()->blockBudget = 0;
  EXPECT_EQ(CloseHookSet(first, 0), STATUS_OK);
  EXPECT_EQ(CloseHookRun(first), 1);
  const uint64_t requests = HeapHooksGet()->requests;
  EXPECT_EQ(CloseHookSet(second, 0), STATUS_OK);  // in the row of the first
  EXPECT_EQ(HeapHooksGet()->requests, requests);
  EXPECT_EQ(CloseHookRun(second), 2);
  EXPECT_EQ(CloseHookRun(nullptr), STATUS_HOOK_UNKNOWN);
}

TEST_F(Handles, ResizeBeyondTheLimitIsNoMemoryAndLeavesTheHandle) {
  const Handle handle = HandleNew(4);
  HeapHooksGet()->largestRequest = 0;
  EXPECT_EQ(HandleResize(handle, 0x80000000u), 101);
  EXPECT_EQ(VectorResize(handle, 8, 0x10000000u), 101);
  EXPECT_EQ(VectorResize(handle, 0xFFFFFFFFu, 0xFFFFFFFFFFFFFFFFu), 101);
  EXPECT_EQ(VectorResize2D(handle, 4, 0xFFFFFFFFu, 0xFFFFFFFFu), 101);
  EXPECT_EQ(VectorResize2D(handle, 1, 0x10000u, 0x8000u), 101);
  EXPECT_EQ(HeapHooksGet()->largestRequest, 0u);  // refused without asking the heap
  EXPECT_EQ(HandleByteSize(handle), 4u);
}

TEST_F(Handles, ARefusedResizeLeavesTheRowUntouched) {
  const Handle handle = HandleNew(4);
  VectorResize(handle, 2, 2);
  HeapHooksGet()->blockBudget = 10;
  EXPECT_EQ(VectorResize(handle, 4, 100), 101);
  HeapHooksGet()->blockBudget = 0;
  uint32_t count = 0;
  EXPECT_EQ(VectorCount(handle, &count), 0);
  EXPECT_EQ(count, 2u);
  EXPECT_EQ(HandleRow(handle)->elementSize, 2u);
}

TEST_F(Handles, ShrinkingNeverFails) {
  const Handle handle = HandleNew(4000);
  HeapHooksGet()->blockBudget = 1;
  EXPECT_EQ(HandleResize(handle, 10), 0);
  EXPECT_EQ(HandleByteSize(handle), 10u);
  HeapHooksGet()->blockBudget = 0;
  EXPECT_EQ(HandleResize(handle, 5000), 0);
  EXPECT_EQ(VectorData<char>(handle)[4999], 0);
}

TEST_F(Handles, AColumnCountLeftBehindDoesNotCountForTheBlock) {
  const Handle handle = HandleNew(0);
  ASSERT_EQ(VectorResize2D(handle, 2, 5, 4), 0);
  ASSERT_EQ(HandleResize(handle, 10), 0);  // count2 stays 4
  EXPECT_EQ(HandleByteSize(handle), 40u);
  ASSERT_EQ(HandleResize(handle, 40), 0);
  std::memset(VectorData<char>(handle), 1, 40);
  ASSERT_EQ(HandleResize(handle, 60), 0);
  EXPECT_EQ(VectorData<char>(handle)[39], 1);
  EXPECT_EQ(VectorData<char>(handle)[40], 0);
}

TEST_F(Handles, AForeignBlockTakesItsCapacityAndNotAByteMore) {
  int16_t block[6] = {};
  const Handle handle = HandleWrap(block, 2, 6, 0, 0);
  ASSERT_NE(handle, 0);
  EXPECT_EQ(HandleResize(handle, 12), 0);
  EXPECT_EQ(HandleResize(handle, 13), 102);
  EXPECT_EQ(HandleResize(handle, 0), 0);
  EXPECT_EQ(VectorData<int16_t>(handle), block);
  EXPECT_EQ(HandleFree(handle), 100);
  EXPECT_EQ(HandleRow(handle)->kind, HANDLE_FOREIGN);
  EXPECT_EQ(HandleUnwrap(handle), 0);
  EXPECT_EQ(HandleUnwrap(handle), 102);
}

TEST_F(Handles, ATwoDimensionalWrapHasTheCapacityOfBothCounts) {
  int32_t block[6] = {};
  const Handle handle = HandleWrap(block, 4, 2, 3, 0);
  uint32_t rows = 0;
  uint32_t columns = 0;
  EXPECT_EQ(VectorDims(handle, &rows, &columns), 0);
  EXPECT_EQ(rows, 2u);
  EXPECT_EQ(columns, 3u);
  EXPECT_EQ(HandleByteSize(handle), 24u);
  EXPECT_EQ(HandleResize(handle, 25), 102);
  HandleUnwrap(handle);
}

TEST_F(Handles, AGrowableWrapTakesTheBlockOver) {
  void* block = ZEL_malloc(4);
  const Handle handle = HandleWrap(block, 1, 4, 0, 1);
  EXPECT_EQ(VectorResize(handle, 4, 1000), 0);
  void* moved = VectorData<void>(handle);
  EXPECT_EQ(HandleUnwrap(handle), 0);
  ZEL_free(moved);
}

TEST_F(Handles, BadHandlesAreToldApart) {
  void* data = nullptr;
  uint32_t count = 0;
  for (const Handle bad : {0, -1, 1, 2, 1000000, INT32_MAX, INT32_MIN}) {
    EXPECT_EQ(HandleResize(bad, 1), 900);
    EXPECT_EQ(HandleByteSize(bad), 900u);
    EXPECT_EQ(HandleData(bad, &data), 1001);
    EXPECT_EQ(VectorCount(bad, &count), 1001);
    EXPECT_EQ(VectorDims(bad, &count, &count), 1001);
    EXPECT_EQ(HandleUnwrap(bad), 102);
  }
  EXPECT_EQ(HandleFree(0), 900);
  EXPECT_EQ(HandleFree(1000000), 900);
  EXPECT_EQ(HandleFree(1), 100);  // in the table, but free
}

TEST_F(Handles, BlocksOfImagesAreNotUnwrapped) {
  ImageRef image = 0;
  ASSERT_EQ(ZEL_Create(&image, IMAGE_U8, 1), 0);
  int found = 0;
  for (Handle handle = 1; handle < static_cast<Handle>(coreTables.handleCapacity); handle++) {
    if (HandleRow(handle)->kind < HANDLE_IMAGE_RECORD) continue;
    found++;
    EXPECT_EQ(HandleRow(handle)->ownerImage, image);
    EXPECT_EQ(HandleUnwrap(handle), 102);
  }
  EXPECT_EQ(found, 2);
  ZEL_Dispose(image);
}

TEST_F(Handles, AFailedGrowthOfTheTablesIsRetried) {
  HeapHooks* hooks = HeapHooksGet();
  const Handle first = HandleNew(0);
  const uint32_t capacity = coreTables.handleCapacity;
  hooks->failAt = hooks->requests + 1;
  hooks->failAllAfter = true;
  std::vector<Handle> made;
  for (int i = 0; i < 10; i++) made.push_back(HandleNew(0));
  EXPECT_EQ(coreTables.handleCapacity, capacity);  // no search runs past the rows there are
  EXPECT_EQ(made[9], 0);
  EXPECT_EQ(TablesEnsure(), 101);
  hooks->failAt = 0;
  EXPECT_EQ(TablesEnsure(), 0);
  EXPECT_NE(HandleNew(0), 0);
  EXPECT_NE(first, 0);
}

TEST_F(Handles, TextGoesAmongAllThreeForms) {
  const auto address = [](const void* pointer) { return reinterpret_cast<uintptr_t>(pointer); };
  char terminated[600] = {};
  uint8_t counted[300];
  EXPECT_EQ(TextConvert(0, address("hello"), 0, address(terminated)), 5);
  EXPECT_STREQ(terminated, "hello");
  EXPECT_EQ(TextConvert(0, address("hello"), 1, address(counted)), 5);
  EXPECT_EQ(counted[0], 5);
  EXPECT_EQ(std::memcmp(counted + 1, "hello", 5), 0);
  Handle vector = 0;
  ASSERT_EQ(VectorNew(&vector), 0);
  EXPECT_EQ(TextConvert(1, address(counted), 2, static_cast<uintptr_t>(vector)), 5);
  uint32_t count = 0;
  VectorCount(vector, &count);
  EXPECT_EQ(count, 5u);
  EXPECT_EQ(TextConvert(2, static_cast<uintptr_t>(vector), 0, address(terminated)), 5);
  EXPECT_STREQ(terminated, "hello");
  EXPECT_EQ(TextConvert(2, static_cast<uintptr_t>(vector), 1, address(counted)), 5);

  const std::string longer(300, 'x');
  EXPECT_EQ(TextConvert(0, address(longer.c_str()), 1, address(counted)), 255);
  EXPECT_EQ(counted[0], 255);
  EXPECT_EQ(TextConvert(0, address(""), 2, static_cast<uintptr_t>(vector)), 0);
  EXPECT_EQ(VectorData<char>(vector), nullptr);
  EXPECT_EQ(TextConvert(2, 12345, 0, address(terminated)), 0);  // no such vector: empty text
  EXPECT_STREQ(terminated, "");
  EXPECT_EQ(TextConvert(3, address("a"), 0, address(terminated)), 0);
  EXPECT_EQ(TextConvert(0, address("a"), 3, address(terminated)), 0);
  HeapHooksGet()->blockBudget = 1;
  EXPECT_EQ(TextConvert(0, address("hello"), 2, static_cast<uintptr_t>(vector)), 0);
}

int32_t hookValue = 0;
int32_t hookRuns = 0;

Status CountingHook(int32_t value) {
  hookValue = value;
  hookRuns++;
  return value;
}

Status ReturningHook(int32_t value) {
  CloseHookSet(&ReturningHook, value + 1);
  return 0;
}

TEST_F(Handles, AHookRegisteredTwiceRunsOnceWithTheLatestValue) {
  hookRuns = 0;
  EXPECT_EQ(CloseHookSet(&CountingHook, 5), 0);
  EXPECT_EQ(CloseHookSet(&CountingHook, 7), 0);
  EXPECT_EQ(CloseHookRun(&CountingHook), 7);
  EXPECT_EQ(hookValue, 7);
  EXPECT_EQ(CloseHookRun(&CountingHook), 103);
  EXPECT_EQ(CloseHookRun(nullptr), 103);
  EXPECT_EQ(hookRuns, 1);
}

TEST_F(Handles, ShutdownRunsHooksAndTheirResultsDoNotCount) {
  hookRuns = 0;
  CloseHookSet(&ReturningHook, 1);
  CloseHookSet(&CountingHook, 9);
  EXPECT_EQ(CoreShutdown(), 0);
  EXPECT_EQ(hookRuns, 1);
  EXPECT_EQ(CloseHookRun(&CountingHook), 103);
  EXPECT_EQ(HeapHooksGet()->liveBlocks, 0);
}

TEST_F(Handles, ShutdownFreesHandlesLeftBehind) {
  HandleNew(100);
  HandleNew(0);
  EXPECT_EQ(CoreShutdown(), 0);
  EXPECT_EQ(HeapHooksGet()->liveBlocks, 0);
  EXPECT_EQ(coreTables.handleRows, 1u);
  EXPECT_EQ(HandleNew(1), 0);  // no tables again
}

TEST_F(Handles, PlainBlocksAndBytes) {
  void* block = &block;
  EXPECT_EQ(MemAlloc(&block, 0), 0);
  EXPECT_EQ(MemAlloc(&block, 10), 0);
  MemFill(block, 0xA5, 10);
  EXPECT_EQ(static_cast<uint8_t*>(block)[9], 0xA5);
  std::memcpy(block, "0123456789", 10);
  MemCopy(block, static_cast<char*>(block) + 3, 7);  // overlapping: source comes first
  EXPECT_EQ(std::string(static_cast<char*>(block), 10), "0120123456");
  MemFree(block);
  HeapHooksGet()->blockBudget = 5;
  EXPECT_EQ(MemAlloc(&block, 6), 101);
}

TEST(Heap, ExportsBehaveAsTheCHeap) {
  auto* block = static_cast<uint8_t*>(ZEL_calloc(5, 3));
  ASSERT_NE(block, nullptr);
  for (int i = 0; i < 15; i++) EXPECT_EQ(block[i], 0);
  block[14] = 9;
  block = static_cast<uint8_t*>(ZEL_realloc(block, 4000));
  EXPECT_EQ(block[14], 9);
  ZEL_free(block);
  ZEL_free(nullptr);
  ZEL_free(ZEL_realloc(nullptr, 3));
  ZEL_free(ZEL_malloc(0));
}

// What lies in front of a block is the heap's own.
TEST(Heap, BlocksHaveEndsThatTheAddressSanitizerWatches) {
#if defined(ZEL_ADDRESS_SANITIZER)
  auto* block = static_cast<volatile uint8_t*>(ZEL_calloc(5, 3));
  EXPECT_DEATH(static_cast<void>(block[-1]), "AddressSanitizer");
  EXPECT_DEATH(static_cast<void>(block[15]), "AddressSanitizer");
  ZEL_free(const_cast<uint8_t*>(block));
#else
  GTEST_SKIP() << "a build for the address sanitizer shows it";
#endif
}

TEST(Heap, ACountTimesASizeDoesNotWrap) {
  HeapHooksGet()->blockBudget = 1 << 20;  // refused by its true size, 16 GB
  EXPECT_EQ(ZEL_calloc(0x80000001u, 8), nullptr);
}

TEST(Heap, HooksFailOneOrAllThatFollow) {
  HeapHooks* hooks = HeapHooksGet();
  hooks->failAt = 2;
  void* first = ZEL_malloc(1);
  EXPECT_EQ(ZEL_malloc(1), nullptr);
  void* third = ZEL_malloc(1);
  EXPECT_NE(third, nullptr);
  hooks->failAt = 4;
  hooks->failAllAfter = true;
  EXPECT_EQ(ZEL_realloc(first, 100), nullptr);
  EXPECT_EQ(ZEL_malloc(1), nullptr);
  EXPECT_EQ(hooks->refusals, 3u);
  EXPECT_EQ(hooks->liveBlocks, 2);
  ZEL_free(first);
  ZEL_free(third);
}

TEST(Heap, BudgetsCountWhatIsLiveAndWhatAResizeGivesBack) {
  HeapHooks* hooks = HeapHooksGet();
  void* block = ZEL_malloc(600);
  hooks->liveBudget = static_cast<uint64_t>(hooks->liveBytes) + 100;
  EXPECT_EQ(ZEL_malloc(101), nullptr);
  EXPECT_EQ(ZEL_realloc(block, 701), nullptr);
  block = ZEL_realloc(block, 700);
  ASSERT_NE(block, nullptr);
  EXPECT_EQ(ZEL_realloc(block, 0), nullptr);  // released
  hooks->liveBudget = 0;
  EXPECT_EQ(hooks->refusals, 2u);
}

TEST(Heap, WorkArraysRefuseSizesBeyondTheLimit) {
  WorkArray<uint64_t> array;
  EXPECT_FALSE(array.Allocate(0xFFFFFFFFFFFFFFFFu));
  EXPECT_FALSE(array.Allocate(0x10000000u));
  EXPECT_TRUE(array.AllocateZeroed(3));
  EXPECT_EQ(array[2], 0u);
  array[2] = 5;
  EXPECT_TRUE(array.Resize(100));
  EXPECT_EQ(array[2], 5u);
}

}  // namespace
