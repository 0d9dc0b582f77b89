// Equalisation of colour images, against its steps.
#include <gtest/gtest.h>

#include "colour/colour_test.h"
#include "core/heap.h"
#include "tests/support/walks.h"

namespace {

using test::ColorImage;
using test::TestImage;

// A dark picture.
TestImage DarkImage() {
  TestImage image = ColorImage(41, 23, 1, 5);
  for (int32_t y = 0; y < 23; y++) {
    for (int32_t x = 0; x < 41; x++) {
      image.Set(x, y, image.Get<RGBValue>(x, y) >> 2 & 0xFF3F3F3F);
    }
  }
  return image;
}

// A plane of the source equalised.
TestImage EqualizedPlane(const TestImage& source, int32_t number, int32_t mode) {
  TestImage plane(IMAGE_U8, 1, 1);
  EXPECT_EQ(ZEL_ExtractColorPlanes(source, number == 1 ? ImageRef{plane} : 0u,
                                   number == 2 ? ImageRef{plane} : 0u,
                                   number == 3 ? ImageRef{plane} : 0u, mode),
            0);
  EXPECT_EQ(ZEL_Equalize(plane, 0, 0, nullptr, 0, nullptr, 0, 255), 0);
  return plane;
}

TEST(ColorEqualize, InPlaceEqualizesAllThreePlanes) {
  const TestImage source = DarkImage();
  const TestImage red = EqualizedPlane(source, 1, MODE_RGB);
  const TestImage green = EqualizedPlane(source, 2, MODE_RGB);
  const TestImage blue = EqualizedPlane(source, 3, MODE_RGB);
  for (const bool named : {false, true}) {
    const TestImage image = test::CloneOf(source);
    EXPECT_EQ(ZEL_ColorEqualize(image, named ? ImageRef{image} : 0u, 7), 0);
    for (int32_t y = 0; y < 23; y++) {
      for (int32_t x = 0; x < 41; x++) {
        ASSERT_EQ(image.Get<RGBValue>(x, y),
                  test::PixelOfChannels(
                      {red.Get<uint8_t>(x, y), green.Get<uint8_t>(x, y), blue.Get<uint8_t>(x, y)},
                      source.Get<RGBValue>(x, y)));
      }
    }
  }
}

TEST(ColorEqualize, InAnotherDestinationOnlyBlueIsEqualized) {
  const TestImage source = DarkImage();
  const TestImage before = test::CloneOf(source);
  const TestImage blue = EqualizedPlane(source, 3, MODE_RGB);
  const TestImage destination(IMAGE_RGB, 2, 2);
  EXPECT_EQ(ZEL_ColorEqualize(source, destination, 1), 0);
  for (int32_t y = 0; y < 23; y++) {
    for (int32_t x = 0; x < 41; x++) {
      ASSERT_EQ(destination.Get<RGBValue>(x, y),
                (source.Get<RGBValue>(x, y) & 0xFFFFFF00) | blue.Get<uint8_t>(x, y));
    }
  }
  EXPECT_EQ(source.Block(), before.Block());
}

TEST(ColorEqualize, LightnessAlone) {
  const TestImage source = DarkImage();
  const TestImage lightness = EqualizedPlane(source, 3, MODE_HSL);
  const TestImage expected(IMAGE_RGB, 1, 1);
  ASSERT_EQ(ZEL_ReplaceColorPlanes(source, expected, 0, 0, lightness, MODE_HSL), 0);
  const TestImage destination(IMAGE_RGB, 2, 2);
  EXPECT_EQ(ZEL_ColorEqualize(source, destination, 0), 0);
  EXPECT_EQ(PixelDifference(destination, expected), "");
  EXPECT_EQ(ZEL_ColorEqualize(source, 0, 0), 0);
  EXPECT_EQ(PixelDifference(source, expected), "");
}

// The result is 0 whatever happens.
TEST(ColorEqualize, FailuresAreToldUnderTheNameOfTheStep) {
  const TestImage source = DarkImage();
  const TestImage gray(IMAGE_U8, 9, 5);
  const auto failure = [](const char* expected) {
    char name[ERROR_PROCEDURE_BYTES] = "";
    const int32_t number = ZEL_GetLastError(name);
    EXPECT_STREQ(name, expected);
    return number;
  };
  EXPECT_EQ(ZEL_ColorEqualize(99999, 0, 1), 0);
  EXPECT_EQ(failure("ZEL_ExtractColorPlanes"), ZEL_ERR_BAD_IMAGE);
  EXPECT_EQ(ZEL_ColorEqualize(gray, 0, 0), 0);
  EXPECT_EQ(failure("ZEL_ExtractColorPlanes"), ZEL_ERR_BAD_TYPE);
  EXPECT_EQ(ZEL_ColorEqualize(source, gray, 0), 0);
  EXPECT_EQ(failure("ZEL_ReplaceColorPlane"), ZEL_ERR_BAD_TYPE);
  EXPECT_EQ(ZEL_ColorEqualize(source, 99999, 1), 0);
  EXPECT_EQ(failure("ZEL_ReplaceColorPlane"), ZEL_ERR_BAD_IMAGE);
}

}  // namespace
