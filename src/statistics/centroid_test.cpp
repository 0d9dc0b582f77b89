#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "harness/test_image.h"

namespace {

using test::TestImage;

struct Centre {
  float x, y;
};

// Pixel after pixel over the part of the image that the mask covers.
Centre Reference(const TestImage& image, const TestImage* mask) {
  const ImageInfo info = image.Info();
  int32_t left = 0;
  int32_t top = 0;
  int32_t right = info.width;
  int32_t bottom = info.height;
  if (mask) {
    const ImageInfo placed = mask->Info();
    left = std::max(left, placed.offsetX);
    top = std::max(top, placed.offsetY);
    right = std::min(right, placed.offsetX + placed.width);
    bottom = std::min(bottom, placed.offsetY + placed.height);
  }
  double sum = 0;
  double sumX = 0;
  double sumY = 0;
  for (int32_t y = top; y < bottom; y++) {
    for (int32_t x = left; x < right; x++) {
      if (mask && mask->Get<uint8_t>(x - mask->Info().offsetX, y - mask->Info().offsetY) == 0) {
        continue;
      }
      const double value = info.type == IMAGE_U8    ? image.Get<uint8_t>(x, y)
                           : info.type == IMAGE_I16 ? image.Get<int16_t>(x, y)
                                                    : static_cast<double>(image.Get<float>(x, y));
      sum += value;
      sumX += (x - left) * value;
      sumY += (y - top) * value;
    }
  }
  return {static_cast<float>(sumX / sum), static_cast<float>(sumY / sum)};
}

void ExpectSame(const Centre& actual, const Centre& expected) {
  EXPECT_TRUE(actual.x == expected.x || (std::isnan(actual.x) && std::isnan(expected.x)))
      << actual.x << " instead of " << expected.x;
  EXPECT_TRUE(actual.y == expected.y || (std::isnan(actual.y) && std::isnan(expected.y)))
      << actual.y << " instead of " << expected.y;
}

TEST(CentroidPixels, FollowsTheRuleForAllTypesSizesAndMasks) {
  for (const int32_t type : {IMAGE_U8, IMAGE_I16, IMAGE_SGL}) {
    for (const auto& [width, height] : test::ODD_SIZES) {
      for (const uint64_t seed : {1u, 2u}) {
        const TestImage image(type, width, height, 2, seed);
        const TestImage mask(IMAGE_U8, width, height + 2, 1, seed);
        for (int32_t x = 0; x < width; x += 3) mask.Set<uint8_t>(x, height / 2, 0);
        ASSERT_EQ(ZEL_SetImageOffset(mask, seed == 1 ? -1 : 1, -1), 0);
        for (const TestImage* placed : {static_cast<const TestImage*>(nullptr), &mask}) {
          Centre centre{};
          const ImageRef maskRef = placed ? static_cast<ImageRef>(mask) : 0;
          ASSERT_EQ(ZEL_Centroid(image, maskRef, &centre.x, &centre.y), 0);
          SCOPED_TRACE(testing::Message() << "type " << type << " " << width << " x " << height);
          ExpectSame(centre, Reference(image, placed));
        }
      }
    }
  }
}

TEST(CentroidPixels, ExtremeWordsInLongRowsAreSummedExactly) {
  const TestImage image(IMAGE_I16, 5000, 3);
  for (int32_t y = 0; y < 3; y++) {
    for (int32_t x = 0; x < 5000; x++) image.Set<int16_t>(x, y, INT16_MIN);
  }
  image.Set<int16_t>(4999, 2, INT16_MAX);
  Centre centre{};
  ASSERT_EQ(ZEL_Centroid(image, 0, &centre.x, &centre.y), 0);
  ExpectSame(centre, Reference(image, nullptr));
}

TEST(Centroid, SumsBeyondExactIntegersAreRoundedInOrder) {
  const TestImage image(IMAGE_I16, 1100000, 1, 0, 3);
  Centre centre{};
  ASSERT_EQ(ZEL_Centroid(image, 0, &centre.x, &centre.y), 0);
  ExpectSame(centre, Reference(image, nullptr));
}

TEST(Centroid, IsMeasuredFromTheCornerOfTheMaskedPart) {
  const TestImage image(IMAGE_U8, 40, 50);
  ASSERT_EQ(ZEL_ClearPixels(image), 0);
  image.Set<uint8_t>(15, 27, 9);
  TestImage mask(IMAGE_U8, 20, 20);
  for (int32_t y = 0; y < 20; y++) {
    for (int32_t x = 0; x < 20; x++) mask.Set<uint8_t>(x, y, 1);
  }
  ASSERT_EQ(ZEL_SetImageOffset(mask, 10, 20), 0);
  Centre centre{};
  ASSERT_EQ(ZEL_Centroid(image, mask, &centre.x, &centre.y), 0);
  EXPECT_EQ(centre.x, 5.0f);
  EXPECT_EQ(centre.y, 7.0f);
  ASSERT_EQ(ZEL_Centroid(image, image, &centre.x, &centre.y), 0);
  EXPECT_EQ(centre.x, 15.0f);
}

TEST(Centroid, WithoutEnergyThereIsNone) {
  const TestImage black(IMAGE_U8, 8, 8);
  ASSERT_EQ(ZEL_ClearPixels(black), 0);
  const TestImage colour(IMAGE_RGB, 8, 8);
  const TestImage empty(IMAGE_SGL, 0, 0);
  const TestImage poisoned(IMAGE_SGL, 8, 8);
  poisoned.Set<float>(3, 3, std::numeric_limits<float>::quiet_NaN());
  for (const TestImage* image : {&black, &colour, &empty, &poisoned}) {
    Centre centre{1, 1};
    EXPECT_EQ(ZEL_Centroid(*image, 0, &centre.x, &centre.y), 0);
    EXPECT_TRUE(std::isnan(centre.x));
    EXPECT_TRUE(std::isnan(centre.y));
  }
}

TEST(Centroid, WrongArgumentsLeaveTheOutputsAlone) {
  const TestImage image(IMAGE_U8, 8, 8);
  const TestImage words(IMAGE_I16, 8, 8);
  Centre centre{7, 7};
  EXPECT_EQ(ZEL_Centroid(999, 998, &centre.x, &centre.y), -200);
  EXPECT_EQ(ZEL_Centroid(image, 999, &centre.x, &centre.y), -200);
  EXPECT_EQ(ZEL_Centroid(image, words, &centre.x, &centre.y), -301);
  EXPECT_EQ(ZEL_Centroid(image, 0, nullptr, &centre.y), -3009);
  EXPECT_EQ(ZEL_Centroid(999, 0, &centre.x, nullptr), -3009);
  EXPECT_EQ(centre.x, 7.0f);
  EXPECT_EQ(centre.y, 7.0f);
}

}  // namespace
