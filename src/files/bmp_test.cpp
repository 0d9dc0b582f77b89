#include <gtest/gtest.h>

#include "harness/file_bytes.h"
#include "harness/memory_files.h"
#include "harness/test_image.h"

namespace {

using test::Bytes;
using test::MemoryFiles;
using test::TestImage;

int32_t Read(const TestImage& image) {
  return ZEL_ReadFile(image, "f", 0, nullptr, nullptr);
}

int32_t Write(const TestImage& image, const std::vector<RGBValue>& table = {}) {
  return ZEL_WriteFile(image, "f", 3, table.empty() ? nullptr : table.data(),
                       static_cast<int32_t>(table.size()));
}

size_t Stride(int32_t rowBytes) {
  return static_cast<size_t>((rowBytes + 3) / 4 * 4);
}

TEST(Bmp, GrayFilesReadFromTheBottomUp) {
  for (const bool rowsAtOnce : {true, false}) {
    MemoryFiles files(rowsAtOnce);
    for (const auto& [width, height] : test::ODD_SIZES) {
      const size_t stride = Stride(width);
      const Bytes rows = test::RandomBytes(stride * static_cast<size_t>(height), 4);
      files.Put("f", test::BmpFile({.width = width, .height = height, .rows = rows}));
      const TestImage image(IMAGE_U8, width + width % 2, height, 3);
      const Bytes around = image.Surroundings();
      ASSERT_EQ(Read(image), 0);
      ASSERT_EQ(image.width(), width + width % 2);
      EXPECT_EQ(image.Surroundings(), around);
      for (int32_t y = 0; y < height; y++) {
        const uint8_t* row = rows.data() + stride * static_cast<size_t>(height - 1 - y);
        for (int32_t x = 0; x < image.width(); x++) {
          ASSERT_EQ(image.Get<uint8_t>(x, y), x < width ? row[x] : 0) << x << ' ' << y;
        }
      }
    }
  }
}

TEST(Bmp, ColourFilesHaveBlueFirst) {
  MemoryFiles files;
  for (const auto& [width, height] : test::ODD_SIZES) {
    const size_t stride = Stride(3 * width);
    const Bytes rows = test::RandomBytes(stride * static_cast<size_t>(height), 4);
    files.Put("f", test::BmpFile({.width = width, .height = height, .bits = 24, .rows = rows}));
    const TestImage colour(IMAGE_RGB, 2, 2, 2);
    const TestImage gray(IMAGE_U8, 2, 2, 0);
    ASSERT_EQ(Read(colour), 0);
    ASSERT_EQ(Read(gray), 0);
    for (int32_t y = 0; y < height; y++) {
      const uint8_t* row = rows.data() + stride * static_cast<size_t>(height - 1 - y);
      for (int32_t x = 0; x < width; x++) {
        const uint8_t* sample = row + 3 * x;
        const uint32_t pixel = uint32_t{sample[2]} << 16 | uint32_t{sample[1]} << 8 | sample[0];
        ASSERT_EQ(colour.Get<uint32_t>(x, y), pixel);
        ASSERT_EQ(gray.Get<uint8_t>(x, y), (sample[0] + sample[1] + sample[2]) / 3);
      }
    }
  }
}

TEST(Bmp, RowsLongerThanAnyBufferAreRead) {
  MemoryFiles files;
  const int32_t width = 70001;
  const size_t stride = Stride(3 * width);
  const Bytes rows = test::RandomBytes(stride * 3, 4);
  files.Put("f", test::BmpFile({.width = width, .height = 3, .bits = 24, .rows = rows}));
  const TestImage image(IMAGE_RGB, 2, 2);
  ASSERT_EQ(Read(image), 0);
  for (int32_t y = 0; y < 3; y++) {
    for (int32_t x = 0; x < width; x++) {
      const uint8_t* sample = rows.data() + stride * static_cast<size_t>(2 - y) + 3 * x;
      ASSERT_EQ(std::memcmp(image.At<uint8_t>(x, y), sample, 3), 0);
    }
  }
}

TEST(Bmp, FourBitRowsLeaveOutTheLastPixelOfAnOddWidth) {
  MemoryFiles files;
  for (const int32_t width : {1, 2, 7, 8, 9, 16, 17}) {
    const size_t stride = Stride(width / 2);
    const Bytes rows = test::RandomBytes(stride * 3, 8);
    files.Put("f", test::BmpFile({.width = width, .height = 3, .bits = 4, .rows = rows}));
    const int32_t even = width + width % 2;
    const TestImage image(IMAGE_U8, even, 3, 1);
    const TestImage before(IMAGE_U8, even, 3, 1);
    ASSERT_EQ(Read(image), 0);
    for (int32_t y = 0; y < 3; y++) {
      const uint8_t* row = rows.data() + stride * static_cast<size_t>(2 - y);
      for (int32_t x = 0; x < even; x++) {
        const int32_t expected = x >= width           ? 0
                                 : x >= width / 2 * 2 ? before.Get<uint8_t>(x, y)
                                 : x % 2 == 0         ? row[x / 2] >> 4
                                                      : row[x / 2] & 15;
        ASSERT_EQ(image.Get<uint8_t>(x, y), expected) << width << ": " << x << ' ' << y;
      }
    }
  }
}

TEST(Bmp, AFileCutShortKeepsTheMissingRows) {
  MemoryFiles files;
  // Two whole rows of 9 pixels, stride 12; the third lacks its last byte.
  for (const int32_t bits : {8, 24}) {
    const int32_t rowBytes = 9 * bits / 8;
    const size_t stride = Stride(rowBytes);
    const Bytes rows = test::RandomBytes(2 * stride + static_cast<size_t>(rowBytes) - 1, 3);
    files.Put("f",
              test::BmpFile(
                  {.width = 9, .height = 5, .bits = static_cast<uint32_t>(bits), .rows = rows}));
    const TestImage image(IMAGE_U8, 10, 5, 1);
    const TestImage before(IMAGE_U8, 10, 5, 1);
    ASSERT_EQ(Read(image), 0);
    for (int32_t y = 0; y < 3; y++) {
      for (int32_t x = 0; x < 9; x++) {
        EXPECT_EQ(image.Get<uint8_t>(x, y), before.Get<uint8_t>(x, y));
      }
      EXPECT_EQ(image.Get<uint8_t>(9, y), 0);
    }
    const uint8_t* last = rows.data() + stride;
    const int32_t expected = bits == 8 ? last[0] : (last[0] + last[1] + last[2]) / 3;
    EXPECT_EQ(image.Get<uint8_t>(0, 3), expected);
  }
}

TEST(Bmp, TheLastRowNeedsNoPadding) {
  MemoryFiles files;
  const Bytes rows = test::RandomBytes(8 + 5, 3);
  files.Put("f", test::BmpFile({.width = 5, .height = 2, .rows = rows}));
  const TestImage image(IMAGE_U8, 6, 2);
  ASSERT_EQ(Read(image), 0);
  EXPECT_EQ(image.Get<uint8_t>(4, 0), rows[12]);
}

TEST(Bmp, DataOffsets) {
  MemoryFiles files;
  const TestImage image(IMAGE_U8, 8, 6);
  const Bytes rows = test::RandomBytes(48, 3);
  for (const int64_t offset : {int64_t{100000}, int64_t{0x7FFFFFFF}, int64_t{54 + 48}}) {
    files.Put("f", test::BmpFile({.dataOffset = offset, .rows = rows}));
    const Bytes before = image.Pixels();
    EXPECT_EQ(Read(image), 0) << "what lies behind the end is missing and no failure";
    EXPECT_EQ(image.Pixels(), before);
  }
  files.Put("f", test::BmpFile({.dataOffset = 0xFFFFFFF0, .rows = rows}));
  EXPECT_EQ(Read(image), -511);
  files.Put("f", test::BmpFile({.dataOffset = 0, .rows = rows}));
  EXPECT_EQ(Read(image), 0);
  EXPECT_EQ(image.Get<uint8_t>(0, 5), 'B') << "the rows begin at the header";
}

TEST(Bmp, SizesThatAreNegativeOrHaveNoEvenOneAboveAre500) {
  MemoryFiles files;
  const TestImage image(IMAGE_U8, 8, 6);
  for (const auto& [width, height] :
       {std::pair{8, -6}, {-8, 6}, {-1, 6}, {INT32_MAX, 6}, {8, INT32_MIN}}) {
    files.Put("f", test::BmpFile({.width = width, .height = height, .rows = Bytes(48)}));
    EXPECT_EQ(Read(image), -500);
  }
}

TEST(Bmp, AWidthOrHeightOfZeroGivesAnEmptyImage) {
  MemoryFiles files;
  for (const auto& [width, height] : {std::pair{0, 6}, {8, 0}, {0, 0}, {0, INT32_MAX}}) {
    for (const uint32_t bits : {4u, 8u, 24u}) {
      const TestImage image(IMAGE_U8, 8, 6);
      files.Put("f",
                test::BmpFile({.width = width, .height = height, .bits = bits, .rows = Bytes(48)}));
      EXPECT_EQ(Read(image), 0);
      EXPECT_EQ(image.width(), 0);
    }
  }
}

TEST(Bmp, OtherDepthsAre500) {
  MemoryFiles files;
  const TestImage image(IMAGE_U8, 8, 6);
  for (const uint32_t bits : {0u, 1u, 2u, 16u, 32u, 0xFFFFu}) {
    files.Put("f", test::BmpFile({.bits = bits, .rows = Bytes(500)}));
    EXPECT_EQ(Read(image), -500) << bits;
  }
}

TEST(Bmp, TheTableIsFoundBackwardsFromThePixels) {
  MemoryFiles files;
  const TestImage image(IMAGE_U8, 8, 6);
  std::vector<RGBValue> table(256);
  int32_t count = 0;
  const Bytes colours = test::RandomBytes(1024, 5);
  // 100 bytes between the header and the table.
  Bytes behind(100, 0xEE);
  behind.insert(behind.end(), colours.begin(), colours.end());
  files.Put("f", test::BmpFile({.colours = behind, .rows = Bytes(48)}));
  ASSERT_EQ(ZEL_ReadFile(image, "f", 1, table.data(), &count), 0);
  EXPECT_EQ(count, 256);
  for (size_t i = 0; i < 256; i++) {
    EXPECT_EQ(table[i], test::LittleNumber(colours, 4 * i, 3));
  }

  files.Put("f", test::BmpFile({.dataOffset = 1023, .colours = behind, .rows = Bytes(48)}));
  EXPECT_EQ(ZEL_ReadFile(image, "f", 1, table.data(), &count), -500) << "before the file";
  EXPECT_EQ(ZEL_ReadFile(image, "f", 0, table.data(), &count), 0) << "nobody asks for it";
  FileInfo info{};
  EXPECT_EQ(ZEL_PtkFileInfo("f", &info), 0);
  EXPECT_EQ(info.fileType, 3);
  files.Put("f", test::BmpFile({.dataOffset = 4000, .colours = behind, .rows = Bytes(48)}));
  EXPECT_EQ(ZEL_ReadFile(image, "f", 1, table.data(), &count), -500) << "behind the file";
  files.Put("f", test::BmpFile({.bits = 24, .rows = Bytes(144)}));
  EXPECT_EQ(ZEL_ReadFile(image, "f", 1, table.data(), &count), 0);
  EXPECT_EQ(count, 0);
}

TEST(Bmp, GrayImagesAreWrittenWithoutRowPadding) {
  for (const bool rowsAtOnce : {true, false}) {
    MemoryFiles files(rowsAtOnce);
    for (const auto& [width, height] : test::ODD_SIZES) {
      const TestImage image(IMAGE_U8, width, height, 1);
      const std::vector<RGBValue> table = {0xFF102030, 0x00405060};
      ASSERT_EQ(Write(image, table), 0);
      const Bytes& file = files.Get("f");
      const size_t pixels = static_cast<size_t>(width) * static_cast<size_t>(height);
      const size_t data = (pixels + 3) / 4 * 4;
      test::FileBytes expected;
      expected.Text("BM").Little(1078 + data, 4).Zeros(4).Little(1078, 4).Little(40, 4);
      expected.Little(static_cast<uint32_t>(width), 4).Little(static_cast<uint32_t>(height), 4);
      expected.Little(1, 2).Little(8, 2).Zeros(4).Little(data, 4).Zeros(8);
      expected.Little(256, 4).Little(256, 4);
      expected.Little(0x102030, 4).Little(0x405060, 4);
      for (uint32_t i = 2; i < 256; i++) expected.Little(i * 0x010101, 4);
      for (int32_t y = height - 1; y >= 0; y--) {
        for (int32_t x = 0; x < width; x++) expected.Little(image.Get<uint8_t>(x, y), 1);
      }
      EXPECT_EQ(file, Bytes(expected.ZerosUpTo(1078 + data))) << width << " x " << height;
    }
  }
}

TEST(Bmp, ColourImagesAreWrittenWithZeroRowPadding) {
  MemoryFiles files;
  for (const auto& [width, height] : test::ODD_SIZES) {
    const TestImage image(IMAGE_RGB, width, height, 1);
    ASSERT_EQ(Write(image), 0);
    const Bytes& file = files.Get("f");
    const size_t stride = Stride(3 * width);
    const size_t data = stride * static_cast<size_t>(height);
    test::FileBytes expected;
    expected.Text("BM").Little(54 + data, 4).Zeros(4).Little(54, 4).Little(40, 4);
    expected.Little(static_cast<uint32_t>(width), 4).Little(static_cast<uint32_t>(height), 4);
    expected.Little(1, 2).Little(24, 2).Zeros(4).Little(data, 4).Zeros(16);
    for (int32_t y = height - 1; y >= 0; y--) {
      for (int32_t x = 0; x < width; x++) expected.Little(image.Get<uint32_t>(x, y) & 0xFFFFFF, 3);
      expected.Zeros(stride - 3 * static_cast<size_t>(width));
    }
    EXPECT_EQ(file, Bytes(expected)) << width << " x " << height;
  }
}

TEST(Bmp, ColourRowsLongerThanAnyBufferAreWritten) {
  MemoryFiles files;
  const TestImage written(IMAGE_RGB, 70002, 3, 0);
  ASSERT_EQ(Write(written), 0);
  const TestImage read(IMAGE_RGB, 2, 2);
  ASSERT_EQ(Read(read), 0);
  for (int32_t y = 0; y < 3; y++) {
    for (int32_t x = 0; x < 70002; x++) {
      ASSERT_EQ(read.Get<uint32_t>(x, y), written.Get<uint32_t>(x, y) & 0xFFFFFF);
    }
  }
}

TEST(Bmp, GrayWidthsThatAreMultiplesOf4ComeBackAndOthersDoNot) {
  MemoryFiles files;
  const TestImage four(IMAGE_U8, 8, 5);
  ASSERT_EQ(Write(four), 0);
  const TestImage back(IMAGE_U8, 2, 2);
  ASSERT_EQ(Read(back), 0);
  EXPECT_EQ(test::PixelDifference(back, four), "");
  const TestImage six(IMAGE_U8, 6, 5);
  ASSERT_EQ(Write(six), 0);
  ASSERT_EQ(Read(back), 0);
  EXPECT_NE(test::PixelDifference(back, six), "");
}

TEST(Bmp, CountsOfColoursAreLimited) {
  MemoryFiles files;
  const TestImage image(IMAGE_U8, 4, 4);
  std::vector<RGBValue> table(256, 0x123456);
  const auto entry = [&](size_t i) { return test::LittleNumber(files.Get("f"), 54 + 4 * i, 4); };
  ASSERT_EQ(ZEL_WriteFile(image, "f", 3, table.data(), 100000), 0);
  EXPECT_EQ(entry(255), 0x123456u);
  ASSERT_EQ(ZEL_WriteFile(image, "f", 3, table.data(), -1), 0);
  EXPECT_EQ(entry(0), 0u);
  EXPECT_EQ(entry(200), 200u * 0x010101);
  ASSERT_EQ(ZEL_WriteFile(image, "f", 3, nullptr, 256), 0);
  EXPECT_EQ(entry(200), 200u * 0x010101);
}

TEST(Bmp, OtherTypesAre500AndLeaveAnExistingFileAlone) {
  MemoryFiles files;
  files.Put("f", {1, 2, 3});
  for (const int32_t type : {IMAGE_I16, IMAGE_SGL, IMAGE_COMPLEX}) {
    const TestImage image(type, 4, 4);
    EXPECT_EQ(Write(image), -500);
    EXPECT_EQ(files.Get("f"), Bytes({1, 2, 3}));
  }
}

}  // namespace
