// Every operation on a file, and every allocation, fails in turn during every kind of read and
// write.
#include <gtest/gtest.h>

#include <functional>

#include "core/heap.h"
#include "harness/file_bytes.h"
#include "harness/memory_files.h"
#include "harness/test_image.h"
#include "harness/tiff_file.h"

namespace {

using test::Bytes;
using test::FaultKind;
using test::FileFault;
using test::FileOperation;
using test::MemoryFiles;
using test::TestImage;

using Statuses = std::vector<int32_t>;

// Runs a call with each operation of a sort failing in turn, and gives the statuses without
// repetitions.
Statuses StatusesUnder(MemoryFiles* files, FileOperation operation, FaultKind kind, bool fromThenOn,
                       const std::function<int32_t()>& call) {
  const int64_t blocks = zel::HeapHooksGet()->liveBlocks;
  Statuses statuses;
  for (int64_t at = 1;; at++) {
    files->Inject({operation, kind, at, fromThenOn});
    const int32_t status = -call();
    const bool reached = files->Count(operation) >= at;
    files->NoFault();
    EXPECT_EQ(files->OpenFiles(), 0);
    EXPECT_EQ(zel::HeapHooksGet()->liveBlocks, blocks);
    if (!reached) break;
    if (statuses.empty() || statuses.back() != status) statuses.push_back(status);
  }
  return statuses;
}

struct ReadCase {
  std::string name;
  Bytes file;
  Statuses seeks;    // a failing seek, from the first one on
  Statuses reads;    // a failing read
  Statuses shorts;   // a read that lacks its last byte
  Statuses nothing;  // a read without any byte
};

std::vector<Bytes> Halves(const Bytes& data) {
  const auto middle = data.begin() + static_cast<int64_t>(data.size() / 2);
  // A byte between the strips, so that they are read one by one.
  Bytes first(data.begin(), middle);
  first.push_back(0xEE);
  return {first, Bytes(middle, data.end())};
}

std::vector<ReadCase> ReadCases() {
  std::vector<ReadCase> cases;
  const Statuses native = {500, 511};
  for (uint32_t code = 1; code <= 6; code++) {
    constexpr size_t bytes[] = {0, 1, 4, 6, 2, 8, 4};
    cases.push_back({"native " + std::to_string(code),
                     test::NativeFile(8, 6, code, test::RandomBytes(48 * bytes[code], 1)),
                     native,
                     native,
                     {0, 500, 0},
                     {509, 500, 0}});
  }
  for (const uint32_t bits : {4u, 8u, 24u}) {
    const int32_t width = bits == 8 ? 8 : 9;
    const size_t stride = bits == 24 ? 28 : bits == 8 ? 8 : 4;
    const size_t colours = bits == 4 ? 64 : bits == 8 ? 1024 : 0;
    cases.push_back({"bmp " + std::to_string(bits),
                     test::BmpFile({.width = width,
                                    .height = 6,
                                    .bits = bits,
                                    .colours = test::RandomBytes(colours, 2),
                                    .rows = test::RandomBytes(stride * 6, 3)}),
                     native,
                     native,
                     {0, 500, 0},
                     {509, 500, 0}});
  }
  const Bytes gray = test::RandomBytes(48, 4);
  const Bytes colour = test::RandomBytes(144, 5);
  const Statuses oneStrip = {500, 514, 511};
  const Statuses oneStripShort = {0, 500, 514, 0};
  const Statuses oneStripNothing = {509, 500, 514, 0};
  cases.push_back({"tiff gray", test::TiffOf(8, 6, {8}, {gray}, 6).Build(), oneStrip, oneStrip,
                   oneStripShort, oneStripNothing});
  cases.push_back({"tiff 16", test::TiffOf(8, 3, {16}, {gray}, 3, false).Build(), oneStrip,
                   oneStrip, oneStripShort, oneStripNothing});
  cases.push_back({"tiff bilevel", test::TiffOf(8, 32, {1}, {test::Cut(gray, 32)}, 32).Build(),
                   oneStrip, oneStrip, oneStripShort, oneStripNothing});
  // A seek to a value behind the directory is passed on as it is, as the strip arrays and the three
  // numbers of bits are here; the arrays are read again between the strips.
  cases.push_back({"tiff strips",
                   test::TiffOf(8, 6, {8}, Halves(gray), 3).Build(),
                   {500, 514, 507, 514, 511},
                   oneStrip,
                   oneStripShort,
                   oneStripNothing});
  cases.push_back({"tiff colour",
                   test::TiffOf(8, 6, {8, 8, 8}, {colour}, 6).Build(),
                   {500, 514, 507, 511},
                   oneStrip,
                   oneStripShort,
                   oneStripNothing});
  cases.push_back({"tiff palette",
                   test::TiffOf(8, 6, {8}, {gray}, 6)
                       .Set(320, test::TIFF_SHORT, std::vector<uint32_t>(768, 0x1234))
                       .Build(),
                   {500, 514, 507, 514, 511},
                   oneStrip,
                   oneStripShort,
                   oneStripNothing});
  return cases;
}

int32_t ReadFrom(const TestImage& image) {
  return ZEL_ReadFile(image, "f", 1, nullptr, nullptr);
}

class IoFaults : public testing::TestWithParam<bool> {
 protected:
  MemoryFiles files_{GetParam()};
};

TEST_P(IoFaults, OfAReadGiveTheStatedNumbersAndLeaveNothingBehind) {
  for (const ReadCase& test : ReadCases()) {
    files_.Put("f", test.file);
    for (const int32_t type : {IMAGE_U8, IMAGE_I16, IMAGE_SGL, IMAGE_COMPLEX, IMAGE_RGB}) {
      SCOPED_TRACE(test.name + " into type " + std::to_string(type));
      const TestImage image(type, 8, 6, 2);
      const auto read = [&] { return ReadFrom(image); };
      ASSERT_EQ(read(), 0);
      const Bytes pixels = image.Pixels();
      for (const bool fromThenOn : {false, true}) {
        const auto under = [&](FileOperation operation, FaultKind kind) {
          return StatusesUnder(&files_, operation, kind, fromThenOn, read);
        };
        EXPECT_EQ(under(FileOperation::Size, FaultKind::Fails), Statuses{510});
        EXPECT_EQ(under(FileOperation::Open, FaultKind::Fails), Statuses{503});
        EXPECT_EQ(under(FileOperation::Seek, FaultKind::Fails), test.seeks);
        EXPECT_EQ(under(FileOperation::Read, FaultKind::Fails), test.reads);
        EXPECT_EQ(under(FileOperation::Close, FaultKind::Fails), Statuses{0});
        // Recognition makes do with a signature that lacks a byte; what follows does not.
        Statuses shorts = test.shorts;
        if (fromThenOn) shorts.erase(shorts.begin());
        EXPECT_EQ(under(FileOperation::Read, FaultKind::OneByteShort), shorts);
        EXPECT_EQ(under(FileOperation::Read, FaultKind::MovesNothing), test.nothing);
      }
      ASSERT_EQ(read(), 0);
      EXPECT_EQ(image.Pixels(), pixels) << "the file reads as before";
    }
  }
}

TEST_P(IoFaults, OfTheInformationAreAnswers) {
  for (const ReadCase& test : ReadCases()) {
    files_.Put("f", test.file);
    for (const FileOperation operation :
         {FileOperation::Size, FileOperation::Open, FileOperation::Seek, FileOperation::Read}) {
      const auto ask = [&] {
        FileInfo info{-1, 77, -1, -1, -1};
        EXPECT_EQ(ZEL_PtkFileInfo("f", &info), 0);
        EXPECT_EQ(info.fileType, 0);
        EXPECT_EQ(info.bitsPerPixel, 77);
        EXPECT_EQ(info.width, 0);
        return 0;
      };
      for (int64_t at = 1;; at++) {
        files_.Inject({operation, FaultKind::Fails, at, false});
        FileInfo info{};
        ZEL_PtkFileInfo("f", &info);
        if (files_.Count(operation) < at) break;
        files_.Inject({operation, FaultKind::Fails, at, true});
        ask();
        EXPECT_EQ(files_.OpenFiles(), 0);
      }
      files_.NoFault();
    }
  }
}

TEST_P(IoFaults, OfAWriteGiveTheStatedNumbersAndLeaveNothingBehind) {
  struct WriteCase {
    int32_t type, format;
    Statuses seeks, writes;
  };
  const std::vector<WriteCase> cases = {
      {IMAGE_U8, 1, {500, 512}, {500, 512}},
      {IMAGE_I16, 1, {500, 512}, {500, 512}},
      {IMAGE_SGL, 1, {500, 512}, {500, 512}},
      {IMAGE_COMPLEX, 1, {500, 512}, {500, 512}},
      {IMAGE_RGB, 1, {500, 512}, {500, 512}},
      {IMAGE_U8, 2, {500, 511}, {500, 512}},
      {IMAGE_I16, 2, {500, 511}, {500, 512}},
      {IMAGE_RGB, 2, {500, 511}, {500, 512}},
      {IMAGE_U8, 3, {500, 512}, {500, 512}},
      // A row that could not be written is not reported by this one.
      {IMAGE_RGB, 3, {500, 512}, {500, 0}},
  };
  for (const WriteCase& test : cases) {
    for (const auto& [width, height] : {std::pair{7, 5}, {8, 5}, {301, 260}}) {
      SCOPED_TRACE("type " + std::to_string(test.type) + " in format " +
                   std::to_string(test.format) + " of width " + std::to_string(width));
      const auto write = [&, w = width, h = height] {
        const TestImage image(test.type, w, h, 0);
        const TestImage before(test.type, w, h, 0);
        const int32_t status = ZEL_WriteFile(image, "f", test.format, nullptr, 0);
        const bool amongPixels = status == -511 || status == -512;
        const bool spared = test.type == IMAGE_RGB && test.format == 3;
        if (amongPixels && !spared) {
          // Rows are left moved together.
          const Bytes rows = before.Pixels();
          EXPECT_EQ(std::memcmp(image.At<uint8_t>(0, 0), rows.data(), rows.size()), 0);
        } else {
          EXPECT_EQ(image.Block(), before.Block());
        }
        return status;
      };
      ASSERT_EQ(write(), 0);
      for (const bool fromThenOn : {false, true}) {
        const auto under = [&](FileOperation operation, FaultKind kind) {
          return StatusesUnder(&files_, operation, kind, fromThenOn, write);
        };
        EXPECT_EQ(under(FileOperation::Open, FaultKind::Fails), Statuses{503});
        EXPECT_EQ(under(FileOperation::Seek, FaultKind::Fails), test.seeks);
        if (width > 100 && !GetParam()) continue;  // a fault for every row takes long
        EXPECT_EQ(under(FileOperation::Write, FaultKind::Fails), test.writes);
        EXPECT_EQ(under(FileOperation::Write, FaultKind::OneByteShort), test.writes);
        EXPECT_EQ(under(FileOperation::Write, FaultKind::MovesNothing), test.writes);
      }
    }
  }
}

// Networks and quotas refuse on closing what they took before.
TEST_P(IoFaults, OfClosingAreThoseOfTheWriteAndLeaveTheImage) {
  int written = 0;
  for (const int32_t type : {IMAGE_U8, IMAGE_I16, IMAGE_SGL, IMAGE_COMPLEX, IMAGE_RGB}) {
    for (const int32_t format : {FILE_FORMAT_NATIVE, FILE_FORMAT_TIFF, FILE_FORMAT_BMP}) {
      SCOPED_TRACE("type " + std::to_string(type) + " in format " + std::to_string(format));
      const TestImage image(type, 7, 5, 1);
      if (ZEL_WriteFile(image, "f", format, nullptr, 0) != 0) continue;  // not written in it
      written++;
      const Bytes block = image.Block();
      const Bytes file = files_.Get("f");
      files_.Put("f", {});
      files_.Inject({FileOperation::Close, FaultKind::Fails, 1, false});
      EXPECT_EQ(ZEL_WriteFile(image, "f", format, nullptr, 0), ZEL_ERR_FILE_WRITE);
      files_.NoFault();
      EXPECT_EQ(files_.OpenFiles(), 0);
      EXPECT_EQ(image.Block(), block);
      EXPECT_EQ(files_.Get("f"), file);
    }
  }
  EXPECT_EQ(written, 5 + 3 + 2) << "types in the native format, TIFF and BMP";
}

// Every allocation of a call fails in turn, alone and with all that follow.
void ExpectMemoryFullOrSuccess(const std::function<void()>& prepare,
                               const std::function<int32_t()>& call) {
  zel::HeapHooks* hooks = zel::HeapHooksGet();
  const int64_t blocks = hooks->liveBlocks;
  for (const bool allAfter : {false, true}) {
    for (uint64_t at = 1;; at++) {
      prepare();
      hooks->requests = 0;
      hooks->failAt = at;
      hooks->failAllAfter = allAfter;
      const int32_t status = call();
      const bool reached = hooks->requests >= at;
      hooks->failAt = 0;
      EXPECT_EQ(hooks->liveBlocks, blocks);
      EXPECT_EQ(status, reached ? -101 : 0);
      if (!reached) break;
    }
  }
  EXPECT_EQ(call(), 0);
}

TEST_P(IoFaults, WantOfMemoryIs101AndTheSameCallSucceedsAfterwards) {
  for (const ReadCase& test : ReadCases()) {
    files_.Put("f", test.file);
    for (const int32_t type : {IMAGE_U8, IMAGE_I16, IMAGE_SGL, IMAGE_COMPLEX, IMAGE_RGB}) {
      SCOPED_TRACE(test.name + " into type " + std::to_string(type));
      const TestImage image(type, 2, 2, 1);
      ExpectMemoryFullOrSuccess([&] { ZEL_SetImageSize(image, 2, 2); },
                                [&] { return ReadFrom(image); });
      EXPECT_EQ(files_.OpenFiles(), 0);
    }
  }
  for (const int32_t type : {IMAGE_U8, IMAGE_I16, IMAGE_RGB}) {
    for (const int32_t format : {1, 2, 3}) {
      if (type == IMAGE_I16 && format == 3) continue;
      const TestImage image(type, 7, 5, 1);
      const Bytes before = image.Block();
      ExpectMemoryFullOrSuccess([] {},
                                [&] { return ZEL_WriteFile(image, "out", format, nullptr, 0); });
      EXPECT_EQ(image.Block(), before);
      EXPECT_EQ(files_.OpenFiles(), 0);
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Rows, IoFaults, testing::Values(true, false),
                         [](const auto& about) { return about.param ? "AtOnce" : "OneByOne"; });

}  // namespace
