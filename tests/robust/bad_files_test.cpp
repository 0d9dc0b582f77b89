// Each file of a table of broken, wild and odd ones, and random changes to good ones, is read into
// every type of image under a heap budget, and may touch nothing but the image's own pixels.
#include "harness/bad_files.h"

#include <gtest/gtest.h>
#include <malloc.h>

#include <chrono>

#include "core/heap.h"
#include "core/images.h"
#include "harness/call_model.h"
#include "harness/calls/calls.h"
#include "harness/checks.h"
#include "harness/memory_files.h"
#include "harness/test_image.h"

namespace {

using bad_files::AllCases;
using bad_files::ANY_STATUS;
using bad_files::BmpSized;
using bad_files::Case;
using bad_files::GoodFiles;
using test::Bytes;
using test::MemoryFiles;
using test::TestImage;

constexpr uint64_t BLOCK_BUDGET = 12 << 20;  // images beyond it are refused: 101

// Of the processor, for one file.
double SecondsAllowed() {
  return test::MemoryIsWatched() ? 10 : 1;
}

// What a read may take beside what it is given: the image, a copy of the file, 16 of its rows and
// 64 KiB.
int64_t AllowanceFor(const Case& test, const TestImage& image) {
  FileInfo info{};
  ZEL_PtkFileInfo("f", &info);
  const int64_t rowBytes = (int64_t{info.width} * info.bitsPerPixel + 7) / 8;
  return image.Info().totalBytes + static_cast<int64_t>(test.file.size()) + 16 * rowBytes + 65536;
}

struct Outcome {
  int32_t status;
  Bytes pixels;
  std::vector<RGBValue> table;
};

// Reads the file into an image of its size, of bytes of 0xA5 all over.
Outcome ReadOnce(const Case& test, int32_t type, int32_t border, MemoryFiles* files) {
  FileInfo info{};
  ZEL_PtkFileInfo("f", &info);
  TestImage image(type, 2, 2, border);
  const bool small = info.fileType != 0 && int64_t{info.width} * info.height < 100000;
  // Where the size is known beforehand, the read resizes nothing and must leave all else alone.
  if (small) {
    EXPECT_EQ(ZEL_SetImageSize(image, info.width + info.width % 2, info.height), 0);
  }
  zel::Image* record = nullptr;
  zel::ImageLookup(image, &record);
  zel::MemFill(zel::VectorData<void>(record->pixels), 0xA5, zel::HandleByteSize(record->pixels));
  const Bytes around = small ? image.Surroundings() : Bytes();

  zel::HeapHooks* hooks = zel::HeapHooksGet();
  hooks->blockBudget = BLOCK_BUDGET;
  hooks->peakBytes = hooks->liveBytes;
  const int64_t before = hooks->liveBytes;
  const int64_t blocks = hooks->liveBlocks;
  Outcome outcome;
  outcome.table.assign(256, 0xA5A5A5A5);
  int32_t count = -1;
  test::CallModel model;
  model.Begin();
  model.Names(image, test::CALIBRATION | test::SIZE | test::PIXELS);
  const auto start = std::chrono::steady_clock::now();
  outcome.status = -ZEL_ReadFile(image, "f", test.wantsTable ? 1 : 0, outcome.table.data(), &count);
  const std::chrono::duration<double> took = std::chrono::steady_clock::now() - start;
  const test::Changes leftovers =
      test::LeftoversOf(test::CallNamed("ZEL_ReadFile"), -outcome.status);
  EXPECT_STREQ(model.Fault(outcome.status != 0, leftovers), nullptr);
  EXPECT_LT(took.count(), SecondsAllowed());
  EXPECT_LE(hooks->peakBytes - before, AllowanceFor(test, image));
  EXPECT_EQ(hooks->liveBlocks, blocks);
  hooks->blockBudget = 0;
  EXPECT_EQ(files->OpenFiles(), 0);
  if (outcome.status != 0) {
    EXPECT_EQ(count, 256);
  }

  // A 0 x 0 image has no surroundings of the former size.
  if (small && info.width > 0 && info.height > 0) {
    EXPECT_EQ(image.Surroundings(), around);
  }
  outcome.pixels = image.Pixels();
  return outcome;
}

// Twice, with the heap's fresh memory filled in two ways: what comes out must not tell the
// difference.
void ExpectSafeRead(const Case& test, int32_t type, int32_t border, MemoryFiles* files) {
  SCOPED_TRACE(test.name + " into type " + std::to_string(type) + " with border " +
               std::to_string(border));
  mallopt(M_PERTURB, 0x11);
  const Outcome first = ReadOnce(test, type, border, files);
  mallopt(M_PERTURB, 0xEE);
  const Outcome second = ReadOnce(test, type, border, files);
  mallopt(M_PERTURB, 0);
  if (test.status != ANY_STATUS) {
    EXPECT_EQ(first.status, test.status);
  }
  EXPECT_EQ(first.status, second.status);
  EXPECT_TRUE(first.pixels == second.pixels);
  EXPECT_TRUE(first.table == second.table);
}

void ExpectSafeEverywhere(const Case& test, MemoryFiles* files) {
  files->Put("f", test.file);
  FileInfo info{-1, 77, -1, -1, -1};
  EXPECT_EQ(ZEL_PtkFileInfo("f", &info), 0);
  if (test.info.isPromised) {
    EXPECT_EQ(info.fileType, test.info.type) << test.name;
    EXPECT_EQ(info.bitsPerPixel, test.info.type == 0 ? 77 : test.info.bits) << test.name;
    EXPECT_EQ(info.planes, test.info.planes) << test.name;
    EXPECT_EQ(info.width, test.info.width) << test.name;
    EXPECT_EQ(info.height, test.info.height) << test.name;
  }
  for (const int32_t type : {IMAGE_U8, IMAGE_I16, IMAGE_SGL, IMAGE_COMPLEX, IMAGE_RGB}) {
    for (const int32_t border : {0, 3}) ExpectSafeRead(test, type, border, files);
  }
}

TEST(BadFiles, EveryFileOfTheTableGivesItsStatusAndTouchesNothingElse) {
  MemoryFiles files;
  const std::vector<Case> cases = AllCases();
  EXPECT_GT(cases.size(), 400u);
  for (const Case& test : cases) ExpectSafeEverywhere(test, &files);
}

// One to four random changes, most of them where the structure is.
Bytes Mutated(Bytes file, test::Random* random) {
  const auto below = [&](size_t limit) {
    return static_cast<size_t>(random->Between(0, static_cast<int32_t>(limit) - 1));
  };
  for (size_t change = 1 + below(4); change > 0 && !file.empty(); change--) {
    const size_t head = std::min<size_t>(file.size(), 170);
    const size_t at = below(5) > 0 ? below(head) : below(file.size());
    switch (below(6)) {
      case 0:
        file[at] = static_cast<uint8_t>(file[at] ^ 1 << below(8));
        break;
      case 1:
        file[at] = static_cast<uint8_t>(random->Next());
        break;
      case 2: {
        constexpr uint32_t edges[] = {0,          1,          2,          255,        256,
                                      65535,      65536,      0x7FFFFFFF, 0x80000000, 0xFFFFFFFF,
                                      0x40000001, 0xFFFFFFF0, 3,          8,          0x00010000};
        const uint32_t value = edges[below(std::size(edges))];
        const Bytes number = test::FileBytes().Number(below(2) == 0, value, below(2) == 0 ? 4 : 2);
        for (size_t i = 0; i < number.size() && at + i < file.size(); i++) file[at + i] = number[i];
        break;
      }
      case 3:
        file.resize(at + 1);
        break;
      case 4:
        file.insert(file.begin() + static_cast<int64_t>(at), file.begin(),
                    file.begin() + static_cast<int64_t>(std::min<size_t>(at, 9)));
        break;
      default:
        file.erase(file.begin() + static_cast<int64_t>(at));
        break;
    }
  }
  return file;
}

TEST(BadFiles, RandomChangesToGoodFilesAreHarmless) {
  MemoryFiles files;
  const std::vector<Bytes> seeds = GoodFiles();
  test::Random random(20);
  for (int i = 0; i < 2000; i++) {
    Case test{"change " + std::to_string(i),
              Mutated(seeds[static_cast<size_t>(i) % seeds.size()], &random), ANY_STATUS,
              bad_files::NO_PROMISE, i % 2 == 0};
    // Otherwise nearly all bitmaps would stop at their size field.
    if (test.file.size() > 6 && test.file[0] == 'B' && i % 4 != 0) test.file = BmpSized(test.file);
    files.Put("f", test.file);
    const int32_t type = i / 2 % 5;
    ExpectSafeRead(test, type, i % 3, &files);
  }
}

}  // namespace
