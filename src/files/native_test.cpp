#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "harness/file_bytes.h"
#include "harness/memory_files.h"
#include "harness/test_image.h"

namespace {

using test::Bytes;
using test::MemoryFiles;
using test::TestImage;

constexpr int32_t TYPES[] = {IMAGE_U8, IMAGE_I16, IMAGE_SGL, IMAGE_COMPLEX, IMAGE_RGB};
constexpr uint64_t TYPE_CODES[] = {1, 4, 6, 5, 2};
constexpr uint64_t BITS[] = {8, 16, 32, 64, 32};
constexpr uint64_t PLANES[] = {1, 1, 1, 2, 3};

int32_t Read(const TestImage& image) {
  return ZEL_ReadFile(image, "f", 0, nullptr, nullptr);
}

int32_t Write(const TestImage& image) {
  return ZEL_WriteFile(image, "f", 1, nullptr, 0);
}

TEST(Native, EveryTypeComesBackAsItWas) {
  for (const bool rowsAtOnce : {true, false}) {
    MemoryFiles files(rowsAtOnce);
    for (const int32_t type : TYPES) {
      for (const auto& [width, height] : test::ODD_SIZES) {
        if (width % 2 != 0) continue;
        for (const int32_t border : {0, 3}) {
          const TestImage written(type, width, height, border);
          ZEL_SetImageCalibration(written, 5, 0.125f, 0.125f);
          ASSERT_EQ(Write(written), 0);
          const TestImage read(type, 3, 3, 1);
          ASSERT_EQ(Read(read), 0);
          EXPECT_EQ(test::PixelDifference(read, written), "");
          EXPECT_EQ(read.Info().unit, 5);
          EXPECT_EQ(read.Info().xStep, 0.125f);
          EXPECT_EQ(read.Info().yStep, 0.125f);
        }
      }
    }
  }
}

TEST(Native, TheHeaderIsBigEndianAndTheDataInTheMachinesOrder) {
  MemoryFiles files;
  for (const int32_t type : TYPES) {
    const TestImage image(type, 5, 3, 2);
    ZEL_SetImageCalibration(image, -2, 2.5f, 7.0f);
    ASSERT_EQ(Write(image), 0);
    const Bytes& file = files.Get("f");
    const auto index = static_cast<size_t>(type);
    EXPECT_EQ(std::string(file.begin(), file.begin() + 4), "ORLN");
    EXPECT_EQ(test::BigNumber(file, 4, 2), 1u);
    EXPECT_EQ(test::BigNumber(file, 6, 2), TYPE_CODES[index]);
    EXPECT_EQ(test::BigNumber(file, 8, 2), BITS[index]);
    EXPECT_EQ(test::BigNumber(file, 10, 2), PLANES[index]);
    EXPECT_EQ(test::BigNumber(file, 12, 2), 2u);
    EXPECT_EQ(test::BigNumber(file, 14, 2), 0u);
    EXPECT_EQ(test::BigNumber(file, 16, 2), 5u);
    EXPECT_EQ(test::BigNumber(file, 18, 2), 3u);
    EXPECT_EQ(test::BigNumber(file, 20, 4), 0x40200000u) << "2.5: of two ratios the first one";
    EXPECT_EQ(test::BigNumber(file, 24, 4), 0xFFFE0000u);
    for (size_t at = 28; at < 512; at++) ASSERT_EQ(file[at], 0);

    Bytes data = image.Pixels();
    if (type == IMAGE_RGB) {
      for (size_t at = 0; at < data.size(); at += 4) {
        std::swap(data[at], data[at + 3]);
        std::swap(data[at + 1], data[at + 2]);
      }
    }
    EXPECT_EQ(Bytes(file.begin() + 512, file.end()), data);
  }
}

TEST(Native, ADifferentRatioInYIsLost) {
  MemoryFiles files;
  const TestImage image(IMAGE_U8, 4, 4);
  ZEL_SetImageCalibration(image, 1, 2.0f, 3.0f);
  ASSERT_EQ(Write(image), 0);
  ASSERT_EQ(Read(image), 0);
  EXPECT_EQ(image.Info().xStep, 2.0f);
  EXPECT_EQ(image.Info().yStep, 2.0f);
}

TEST(Native, ANanRatioIsStoredAsItIs) {
  MemoryFiles files;
  const TestImage image(IMAGE_U8, 4, 4);
  files.Put("f", test::NativeFile(2, 2, 1, Bytes(4), std::numeric_limits<float>::quiet_NaN()));
  ASSERT_EQ(Read(image), 0);
  EXPECT_TRUE(std::isnan(image.Info().xStep));
  EXPECT_TRUE(std::isnan(image.Info().yStep));
}

TEST(Native, OtherVersionsAndTypeCodesAre500) {
  MemoryFiles files;
  const TestImage image(IMAGE_U8, 4, 4);
  for (const uint32_t version : {0u, 2u, 0x100u, 0xFFFFu}) {
    files.Put("f", test::NativeFile(2, 2, 1, Bytes(4), 1.0f, 3, version));
    EXPECT_EQ(Read(image), -500);
  }
  for (const uint32_t typeCode : {0u, 7u, 0x100u, 0xFFFFu}) {
    files.Put("f", test::NativeFile(2, 2, typeCode, Bytes(4)));
    EXPECT_EQ(Read(image), -500);
  }
  files.Put("f", test::Cut(test::NativeFile(2, 2, 1, Bytes(4)), 511));
  EXPECT_EQ(Read(image), -500);
}

TEST(Native, AnOddWidthIsRoundedUpAndItsLastColumnIsZero) {
  MemoryFiles files;
  for (const int32_t type : TYPES) {
    const TestImage written(type, 5, 3, 1);
    ASSERT_EQ(Write(written), 0);
    const TestImage read(type, 6, 3, 2, 99);
    const Bytes around = read.Surroundings();
    ASSERT_EQ(Read(read), 0);
    const ImageInfo info = read.Info();
    EXPECT_EQ(info.width, 6);
    EXPECT_EQ(read.Surroundings(), around);
    const auto pixel = static_cast<size_t>(info.pixelBytes);
    for (int32_t y = 0; y < 3; y++) {
      EXPECT_EQ(std::memcmp(read.At<uint8_t>(0, y), written.At<uint8_t>(0, y), 5 * pixel), 0);
      EXPECT_EQ(Bytes(read.At<uint8_t>(5, y), read.At<uint8_t>(5, y) + pixel), Bytes(pixel, 0));
    }
    FileInfo fileInfo{};
    ZEL_PtkFileInfo("f", &fileInfo);
    EXPECT_EQ(fileInfo.width, 5);
  }
}

TEST(Native, PixelsThatTheFileDoesNotHoldKeepTheirValues) {
  MemoryFiles files;
  const TestImage image(IMAGE_SGL, 4, 4, 2);
  const TestImage before(IMAGE_SGL, 4, 4, 2);
  // Five pixels and three bytes of a sixth.
  const Bytes data = test::RandomBytes(23, 5);
  files.Put("f", test::NativeFile(4, 4, 6, data));
  ASSERT_EQ(Read(image), 0);
  for (int32_t i = 0; i < 16; i++) {
    const auto at = static_cast<size_t>(4 * i);
    const auto* pixel = image.At<uint8_t>(i % 4, i / 4);
    const uint8_t* expected = i < 5 ? data.data() + at : before.At<uint8_t>(i % 4, i / 4);
    EXPECT_EQ(std::memcmp(pixel, expected, 4), 0) << i;
  }
}

TEST(Native, BytesBehindTheLastRowAreDropped) {
  MemoryFiles files;
  const TestImage image(IMAGE_RGB, 4, 4, 3);
  const Bytes around = image.Surroundings();
  files.Put("f", test::NativeFile(4, 4, 2, Bytes(64 + 999, 0x5A)));
  ASSERT_EQ(Read(image), 0);
  EXPECT_EQ(image.Surroundings(), around);
  EXPECT_EQ(image.Pixels(), Bytes(64, 0x5A));
}

TEST(Native, AWidthOrHeightOfZeroGivesAnEmptyImage) {
  MemoryFiles files;
  for (const auto& [width, height] : {std::pair{0u, 6u}, {8u, 0u}, {0u, 0u}}) {
    const TestImage image(IMAGE_U8, 4, 4, 2);
    files.Put("f", test::NativeFile(width, height, 6, Bytes(100)));
    EXPECT_EQ(Read(image), 0);
    EXPECT_EQ(image.width(), 0);
    EXPECT_EQ(image.height(), 0);
  }
}

TEST(Native, AnEmptyImageIsAHeaderAlone) {
  MemoryFiles files;
  const TestImage image(IMAGE_I16, 0, 0);
  ASSERT_EQ(Write(image), 0);
  EXPECT_EQ(files.Get("f").size(), 512u);
}

TEST(Native, SizesAbove65535AreCutWithAllPixelsFollowing) {
  MemoryFiles files;
  const TestImage image(IMAGE_U8, 65540, 2);
  ASSERT_EQ(Write(image), 0);
  const Bytes& file = files.Get("f");
  EXPECT_EQ(file.size(), 512u + 2 * 65540);
  EXPECT_EQ(test::BigNumber(file, 16, 2), 4u);
  EXPECT_EQ(test::BigNumber(file, 18, 2), 2u);
}

TEST(Native, TheReaderLooksAtNeitherBitsNorPlanesNorReservedBytes) {
  MemoryFiles files;
  const Bytes data = test::RandomBytes(16, 3);
  Bytes file = test::NativeFile(4, 4, 1, data);
  for (size_t at = 8; at < 16; at++) file[at] = 0xEE;
  for (size_t at = 28; at < 512; at++) file[at] = 0xEE;
  files.Put("f", file);
  const TestImage image(IMAGE_U8, 4, 4);
  ASSERT_EQ(Read(image), 0);
  EXPECT_EQ(image.Pixels(), data);
}

TEST(Native, ComplexPixelsOfThreeByteParts) {
  MemoryFiles files;
  // 1 - 2i, 8388607 - 8388608i
  files.Put("f",
            test::NativeFile(2, 1, 3, {1, 0, 0, 0xFE, 0xFF, 0xFF, 0xFF, 0xFF, 0x7F, 0, 0, 0x80}));
  const TestImage complex(IMAGE_COMPLEX, 2, 1);
  ASSERT_EQ(Read(complex), 0);
  EXPECT_EQ(complex.At<float>(0, 0)[0], 1.0f);
  EXPECT_EQ(complex.At<float>(0, 0)[1], -2.0f);
  EXPECT_EQ(complex.At<float>(1, 0)[0], 8388607.0f);
  EXPECT_EQ(complex.At<float>(1, 0)[1], -8388608.0f);
  const TestImage magnitude(IMAGE_SGL, 2, 1);
  ASSERT_EQ(Read(magnitude), 0);
  EXPECT_EQ(magnitude.Get<float>(0, 0), static_cast<float>(std::sqrt(5.0)));
}

}  // namespace
