#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>

#include "harness/test_image.h"
#include "platform/processor.h"
#include "point/operator_test.h"

namespace {

using test::Border;
using test::ODD_SIZES;
using test::PixelDifference;
using test::TestImage;

TestImage MaskOf(int32_t width, int32_t height, int32_t border, uint64_t seed) {
  TestImage mask(IMAGE_U8, width, height, border, seed);
  test::SprinkleZeros(mask, seed);
  return mask;
}

TestImage Masked(const TestImage& source, const TestImage& mask) {
  const ImageInfo info = source.Info();
  const ImageInfo over = mask.Info();
  TestImage result(info.type, info.width, info.height);
  for (int32_t y = 0; y < info.height; y++) {
    for (int32_t x = 0; x < info.width; x++) {
      const int32_t maskX = x - over.offsetX;
      const int32_t maskY = y - over.offsetY;
      const bool covered = maskX >= 0 && maskY >= 0 && maskX < over.width && maskY < over.height;
      const bool selected = covered && mask.Get<uint8_t>(maskX, maskY) != 0;
      const auto bytes = static_cast<size_t>(info.pixelBytes);
      uint8_t* to = result.At<uint8_t>(x, y);
      if (selected) {
        std::memcpy(to, source.At<uint8_t>(x, y), bytes);
      } else {
        std::memset(to, 0, bytes);
      }
    }
  }
  return result;
}

bool IsAllZero(const std::vector<uint8_t>& bytes) {
  return std::all_of(bytes.begin(), bytes.end(), [](uint8_t byte) { return byte == 0; });
}

TEST(Mask, SelectsPixelsOfAllTypesAndSizesAndClearsTheBorder) {
  for (int32_t type = IMAGE_U8; type <= IMAGE_RGB; type++) {
    uint64_t seed = 1;
    for (const auto& [width, height] : ODD_SIZES) {
      if (width == 0 || width > 200) continue;
      const TestImage source(type, width, height, Border(seed), seed);
      const TestImage mask = MaskOf(width, height, Border(seed + 1), seed + 1);
      seed++;
      const TestImage expected = Masked(source, mask);
      for (const int32_t mmx : {0, 1}) {
        zel::MmxForce(mmx);
        TestImage destination(type, 2, 2, Border(seed + 2), seed + 2);
        ASSERT_EQ(ZEL_Mask(source, mask, destination), 0);
        ASSERT_EQ(PixelDifference(destination, expected), "") << type;
        ASSERT_TRUE(IsAllZero(destination.Surroundings()));
      }
    }
  }
}

TEST(Mask, CoversTheImageAtItsOffset) {
  for (const auto& [x, y] : {std::pair{3, 2}, {-4, -1}, {15, 6}, {-7, 3}, {5, -5}, {19, 7}}) {
    for (const int32_t type : {IMAGE_U8, IMAGE_COMPLEX}) {
      const TestImage source(type, 20, 8, 2, 3);
      const TestImage mask = MaskOf(12, 6, 1, 4);
      ZEL_SetImageOffset(mask, x, y);
      ZEL_SetImageOffset(source, 11, 12);
      TestImage destination(type, 20, 8, 3, 5);
      ASSERT_EQ(ZEL_Mask(source, mask, destination), 0);
      EXPECT_EQ(PixelDifference(destination, Masked(source, mask)), "") << x << ' ' << y;
      EXPECT_EQ(destination.Info().offsetX, 11);
    }
  }
}

TEST(Mask, OutsideTheImageLeavesTheDestinationAsItWas) {
  const TestImage source(IMAGE_U8, 20, 8, 2, 3);
  ZEL_SetImageCalibration(source, 9, 2.0f, 2.0f);
  const TestImage mask = MaskOf(12, 6, 1, 4);
  for (const auto& [x, y] : {std::pair{20, 0},
                             {0, 8},
                             {-12, 0},
                             {0, -6},
                             {INT32_MAX, INT32_MAX},
                             {INT32_MIN, INT32_MIN}}) {
    ZEL_SetImageOffset(mask, x, y);
    TestImage destination(IMAGE_U8, 5, 5, 3, 5);
    const auto before = destination.Block();
    ASSERT_EQ(ZEL_Mask(source, mask, destination), 0);
    EXPECT_EQ(destination.Block(), before);
    EXPECT_EQ(destination.Info().unit, 0);
    const auto sourceBefore = source.Block();
    ASSERT_EQ(ZEL_Mask(source, mask, 0), 0);
    EXPECT_EQ(source.Block(), sourceBefore);
    const auto maskBefore = mask.Block();
    ASSERT_EQ(ZEL_Mask(source, mask, mask), 0);
    EXPECT_EQ(mask.Block(), maskBefore);
  }
}

TEST(Mask, ReplacesTheSource) {
  for (const bool byReference : {false, true}) {
    const TestImage source(IMAGE_I16, 21, 5, 2, 3);
    ZEL_SetImageCalibration(source, 9, 2.0f, 2.0f);
    const TestImage mask = MaskOf(12, 6, 1, 4);
    ZEL_SetImageOffset(mask, 2, -2);
    const TestImage expected = Masked(source, mask);
    ASSERT_EQ(ZEL_Mask(source, mask, byReference ? ImageRef{source} : 0), 0);
    EXPECT_EQ(PixelDifference(source, expected), "");
    EXPECT_EQ(source.Info().unit, 9);
    EXPECT_EQ(source.Info().border, 2);
  }
}

TEST(Mask, ReplacesTheMask) {
  const TestImage source(IMAGE_U8, 21, 5, 2, 3);
  const TestImage mask = MaskOf(12, 6, 1, 4);
  ZEL_SetImageOffset(mask, 2, -2);
  const TestImage expected = Masked(source, mask);
  ASSERT_EQ(ZEL_Mask(source, mask, mask), 0);
  EXPECT_EQ(PixelDifference(mask, expected), "");
  EXPECT_EQ(mask.Info().border, 1);
  EXPECT_EQ(mask.Info().offsetX, 0);  // the source's
}

TEST(Mask, WithoutAMaskPixelsAreCopiedAndNothingElse) {
  const TestImage source(IMAGE_SGL, 21, 5, 2, 3);
  ZEL_SetImageCalibration(source, 9, 2.0f, 2.0f);
  for (const bool sourceAsMask : {false, true}) {
    TestImage destination(IMAGE_SGL, 5, 5, 1, 8);
    ASSERT_EQ(ZEL_Mask(source, sourceAsMask ? ImageRef{source} : 0, destination), 0);
    EXPECT_EQ(PixelDifference(destination, source), "");
    EXPECT_EQ(destination.Info().unit, 0);
    const auto before = source.Block();
    ASSERT_EQ(ZEL_Mask(source, sourceAsMask ? ImageRef{source} : 0, 0), 0);
    EXPECT_EQ(source.Block(), before);
  }
}

TEST(Mask, WrongImagesGiveTheirNumbersAndChangeNothing) {
  const TestImage bytes(IMAGE_U8, 10, 10, 1, 2);
  const TestImage words(IMAGE_I16, 10, 10, 1, 3);
  const TestImage opaque(IMAGE_OPAQUE, 0, 0);
  const TestImage empty(IMAGE_U8, 0, 0, 2);
  const auto before = bytes.Block();
  EXPECT_EQ(ZEL_Mask(0, bytes, bytes), -200);
  EXPECT_EQ(ZEL_Mask(99, bytes, bytes), -200);
  EXPECT_EQ(ZEL_Mask(opaque, bytes, bytes), -301);
  EXPECT_EQ(ZEL_Mask(bytes, 99, 0), -200);
  EXPECT_EQ(ZEL_Mask(bytes, words, 0), -301);
  EXPECT_EQ(ZEL_Mask(bytes, bytes, 99), -200);
  EXPECT_EQ(ZEL_Mask(bytes, bytes, words), -304);
  EXPECT_EQ(ZEL_Mask(bytes, words, words), -304);
  EXPECT_EQ(ZEL_Mask(bytes, empty, 0), 0);
  EXPECT_EQ(bytes.Block(), before);
  EXPECT_EQ(ZEL_Mask(empty, bytes, 0), 0);
  char name[256];
  ZEL_Mask(0, 0, 0);
  ZEL_GetLastError(name);
  EXPECT_STREQ(name, "ZEL_Mask");
}

}  // namespace
