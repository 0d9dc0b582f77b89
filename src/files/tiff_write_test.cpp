#include <gtest/gtest.h>

#include "files/dispatch.h"
#include "harness/file_bytes.h"
#include "harness/memory_files.h"
#include "harness/test_image.h"

namespace {

using test::Bytes;
using test::FileBytes;
using test::MemoryFiles;
using test::TestImage;

constexpr int64_t SHORT = 3;
constexpr int64_t LONG = 4;

int32_t Write(const TestImage& image, const std::vector<RGBValue>& table = {}) {
  return ZEL_WriteFile(image, "f", 2, table.empty() ? nullptr : table.data(),
                       static_cast<int32_t>(table.size()));
}

struct Entry {
  uint64_t tag, type, count, value;
};

Bytes HeaderOf(const std::vector<Entry>& entries, bool little = true) {
  FileBytes file;
  file.Text(little ? "II" : "MM").Number(little, 42, 2).Number(little, 8, 4);
  file.Number(little, entries.size(), 2);
  for (const Entry& entry : entries) {
    file.Number(little, entry.tag, 2).Number(little, entry.type, 2).Number(little, entry.count, 4);
    if (entry.type == SHORT && entry.count == 1) {
      file.Number(little, entry.value, 2).Zeros(2);
    } else {
      file.Number(little, entry.value, 4);
    }
  }
  return file.Zeros(4);
}

TEST(TiffWrite, GrayImagesHaveAPaletteAndOneStrip) {
  for (const bool rowsAtOnce : {true, false}) {
    MemoryFiles files(rowsAtOnce);
    const TestImage image(IMAGE_U8, 7, 5, 3);
    ASSERT_EQ(Write(image, {0xFF102030, 0x00405060}), 0);
    FileBytes expected;
    expected.Append(HeaderOf({{254, LONG, 1, 0},
                              {256, SHORT, 1, 7},
                              {257, SHORT, 1, 5},
                              {258, SHORT, 1, 8},
                              {259, SHORT, 1, 1},
                              {262, SHORT, 1, 3},
                              {273, LONG, 1, 1682},
                              {277, SHORT, 1, 1},
                              {278, LONG, 1, 5},
                              {279, LONG, 1, 35},
                              {320, SHORT, 768, 146}}));
    ASSERT_EQ(expected.Size(), 146u);
    const uint32_t firstColours[3][2] = {{0x10, 0x40}, {0x20, 0x50}, {0x30, 0x60}};
    for (const auto& colour : firstColours) {
      for (uint32_t i = 0; i < 256; i++) expected.Little((i < 2 ? colour[i] : i) * 257, 2);
    }
    expected.Append(image.Pixels());
    EXPECT_EQ(files.Get("f"), Bytes(expected));
  }
}

TEST(TiffWrite, SixteenBitImagesAreBigEndianUnderALittleEndianMark) {
  MemoryFiles files;
  const TestImage image(IMAGE_I16, 7, 5, 3);
  ASSERT_EQ(Write(image), 0);
  FileBytes expected;
  expected.Append(HeaderOf({{254, LONG, 1, 0},
                            {256, SHORT, 1, 7},
                            {257, SHORT, 1, 5},
                            {258, SHORT, 1, 16},
                            {259, SHORT, 1, 1},
                            {262, SHORT, 1, 1},
                            {273, LONG, 1, 148},
                            {277, SHORT, 1, 1},
                            {278, LONG, 1, 5},
                            {279, LONG, 1, 70},
                            {284, SHORT, 1, 1}}));
  expected.Little(16, 2);
  for (int32_t y = 0; y < 5; y++) {
    for (int32_t x = 0; x < 7; x++) expected.Big(image.Get<uint16_t>(x, y), 2);
  }
  EXPECT_EQ(files.Get("f"), Bytes(expected));
}

TEST(TiffWrite, ColourImagesAreRedGreenBlue) {
  MemoryFiles files;
  const TestImage image(IMAGE_RGB, 7, 5, 3);
  ASSERT_EQ(Write(image), 0);
  FileBytes expected;
  expected.Append(HeaderOf({{254, LONG, 1, 0},
                            {256, SHORT, 1, 7},
                            {257, SHORT, 1, 5},
                            {258, SHORT, 3, 146},
                            {259, SHORT, 1, 1},
                            {262, SHORT, 1, 2},
                            {273, LONG, 1, 152},
                            {277, SHORT, 1, 3},
                            {278, LONG, 1, 5},
                            {279, LONG, 1, 105},
                            {284, SHORT, 1, 1}}));
  expected.Little(8, 2).Little(8, 2).Little(8, 2);
  for (int32_t y = 0; y < 5; y++) {
    for (int32_t x = 0; x < 7; x++) expected.Big(image.Get<uint32_t>(x, y) & 0xFFFFFF, 3);
  }
  EXPECT_EQ(files.Get("f"), Bytes(expected));
}

TEST(TiffWrite, EveryTypeThatIsTakenComesBack) {
  MemoryFiles files;
  for (const int32_t type : {IMAGE_U8, IMAGE_I16, IMAGE_RGB}) {
    for (const auto& [width, height] : test::ODD_SIZES) {
      if (width == 0) continue;
      const TestImage written(type, width, height, 1);
      ASSERT_EQ(Write(written), 0);
      const TestImage read(type, 2, 2, 3);
      ASSERT_EQ(ZEL_ReadFile(read, "f", 0, nullptr, nullptr), 0);
      ASSERT_EQ(read.width(), width + width % 2);
      for (int32_t y = 0; y < height; y++) {
        for (int32_t x = 0; x < width; x++) {
          if (type == IMAGE_U8) {
            ASSERT_EQ(read.Get<uint8_t>(x, y), written.Get<uint8_t>(x, y));
          } else if (type == IMAGE_I16) {
            ASSERT_EQ(read.Get<int16_t>(x, y), written.Get<int16_t>(x, y));
          } else {
            ASSERT_EQ(read.Get<uint32_t>(x, y), written.Get<uint32_t>(x, y) & 0xFFFFFF);
          }
        }
      }
    }
  }
}

TEST(TiffWrite, FloatAndComplexImagesAre500AndLeaveAnEmptyFile) {
  MemoryFiles files;
  for (const int32_t type : {IMAGE_SGL, IMAGE_COMPLEX}) {
    files.Put("f", {1, 2, 3});
    const TestImage image(type, 4, 4);
    EXPECT_EQ(Write(image), -500);
    EXPECT_TRUE(files.Has("f"));
    EXPECT_EQ(files.Get("f"), Bytes());
  }
}

TEST(TiffWrite, SizesThatDoNotFitAre500AndLeaveAnExistingFileAlone) {
  MemoryFiles files;
  files.Put("f", {1, 2, 3});
  for (const auto& [width, height] : {std::pair{65536, 1}, {1, 65536}, {0, 0}}) {
    const TestImage image(IMAGE_U8, width, height);
    EXPECT_EQ(Write(image), -500);
    EXPECT_EQ(files.Get("f"), Bytes({1, 2, 3}));
  }
  const TestImage largest(IMAGE_U8, 65535, 1);
  EXPECT_EQ(Write(largest), 0);
}

TEST(TiffWrite, TheTableComesBackAsItIsForAllCounts) {
  MemoryFiles files;
  const TestImage image(IMAGE_U8, 4, 4);
  for (const int32_t count : {-5, 0, 1, 255, 256, 1000}) {
    std::vector<RGBValue> table(256);
    for (uint32_t i = 0; i < 256; i++) table[i] = i * 0x01020408 ^ 0x123456;
    ASSERT_EQ(ZEL_WriteFile(image, "f", 2, table.data(), count), 0);
    std::vector<RGBValue> read(256);
    ASSERT_EQ(ZEL_ReadFile(image, "f", 1, read.data(), nullptr), 0);
    for (uint32_t i = 0; i < 256; i++) {
      const bool given = static_cast<int32_t>(i) < count;
      EXPECT_EQ(read[i], given ? table[i] & 0xFFFFFF : i * 0x010101);
    }
  }
}

zel::Status WriteWith(ImageRef image, int32_t rowsPerStrip, bool littleEndian) {
  const zel::WriteOptions options{rowsPerStrip, littleEndian ? 1 : 0};
  return zel::FileWriteKernel(image, "f", {.format = zel::FORMAT_TIFF, .options = &options});
}

TEST(TiffWrite, OptionsGiveSeveralStripsAndTheOtherByteOrder) {
  MemoryFiles files;
  for (const int32_t type : {IMAGE_U8, IMAGE_I16, IMAGE_RGB}) {
    for (const int32_t rows : {-3, 1, 2, 3, 5, 100}) {
      for (const bool little : {true, false}) {
        const TestImage written(type, 6, 5, 2);
        ASSERT_EQ(WriteWith(written, rows, little), 0);
        const char mark = little || type != IMAGE_U8 ? 'I' : 'M';
        EXPECT_EQ(files.Get("f")[0], mark);
        const TestImage read(type, 6, 5, 1);
        ASSERT_EQ(ZEL_ReadFile(read, "f", 0, nullptr, nullptr), 0);
        if (type == IMAGE_RGB) {
          for (int32_t k = 0; k < 30; k++) written.At<uint8_t>(k % 6, k / 6)[3] = 0;
        }
        EXPECT_EQ(test::PixelDifference(read, written), "") << type << ' ' << rows;
      }
    }
  }
}

TEST(TiffWrite, ArraysOfSeveralStripsFollowThePalette) {
  MemoryFiles files;
  const TestImage image(IMAGE_U8, 4, 5, 0);
  ASSERT_EQ(WriteWith(image, 2, false), 0);
  const Bytes& file = files.Get("f");
  const auto field = [&](size_t entry) { return test::BigNumber(file, 10 + 12 * entry + 8, 4); };
  const size_t countsAt = 146 + 1536;
  const size_t offsetsAt = countsAt + 12;
  EXPECT_EQ(field(6), offsetsAt);
  EXPECT_EQ(field(9), countsAt);
  for (size_t i = 0; i < 3; i++) {
    EXPECT_EQ(test::BigNumber(file, countsAt + 4 * i, 4), i < 2 ? 8u : 4u);
    EXPECT_EQ(test::BigNumber(file, offsetsAt + 4 * i, 4), offsetsAt + 12 + 8 * i);
  }
  EXPECT_EQ(file.size(), offsetsAt + 12 + 20);
}

}  // namespace
