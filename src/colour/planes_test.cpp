// Planes out of colour images and back, against the stated conversions.
#include <gtest/gtest.h>

#include <vector>

#include "colour/colour_test.h"
#include "tests/support/refused_memory.h"
#include "tests/support/walks.h"

namespace {

using test::Color;
using test::ColorImage;
using test::TestImage;

constexpr int32_t ALL_MODES[] = {MODE_RGB, MODE_HSL, MODE_HSV};

// All 2^24 colours, 2^16 at a time.
TEST(ColorPlanes, EveryColourGivesTheStatedComponents) {
  const TestImage colors(IMAGE_RGB, 256, 256);
  const TestImage planes[3] = {TestImage(IMAGE_U8, 256, 256), TestImage(IMAGE_U8, 256, 256),
                               TestImage(IMAGE_U8, 256, 256)};
  for (const int32_t mode : {MODE_HSL, MODE_HSV}) {
    for (uint32_t red = 0; red < 256; red++) {
      for (int32_t green = 0; green < 256; green++) {
        auto* row = colors.At<RGBValue>(0, green);
        for (uint32_t blue = 0; blue < 256; blue++) {
          row[blue] = red << 16 | static_cast<uint32_t>(green) << 8 | blue | blue << 24;
        }
      }
      ASSERT_EQ(ZEL_ExtractColorPlanes(colors, planes[0], planes[1], planes[2], mode), 0);
      for (int32_t green = 0; green < 256; green++) {
        const uint8_t* rows[3] = {planes[0].At<uint8_t>(0, green), planes[1].At<uint8_t>(0, green),
                                  planes[2].At<uint8_t>(0, green)};
        for (int32_t blue = 0; blue < 256; blue++) {
          const Color stated = test::NarrowedColor(test::StatedForward({red, green, blue}, mode));
          const bool same = rows[0][blue] == stated[0] && rows[1][blue] == stated[1] &&
                            rows[2][blue] == stated[2];
          ASSERT_TRUE(same) << "mode " << mode << ", colour " << red << ' ' << green << ' ' << blue;
        }
      }
    }
  }
}

// Every hue with every third saturation and third component, the ends among them.
TEST(ColorPlanes, ComponentsGiveTheStatedColours) {
  constexpr int32_t steps = 86;
  const TestImage planes[3] = {TestImage(IMAGE_U8, steps, steps), TestImage(IMAGE_U8, steps, steps),
                               TestImage(IMAGE_U8, steps, steps)};
  const TestImage colors(IMAGE_RGB, 1, 1);
  for (int32_t y = 0; y < steps; y++) {
    for (int32_t x = 0; x < steps; x++) {
      planes[1].Set(x, y, static_cast<uint8_t>(3 * y));
      planes[2].Set(x, y, static_cast<uint8_t>(3 * x));
    }
  }
  for (const int32_t mode : {MODE_HSL, MODE_HSV}) {
    for (int32_t hue = 0; hue < 256; hue++) {
      for (int32_t y = 0; y < steps; y++) {
        for (int32_t x = 0; x < steps; x++) planes[0].Set(x, y, static_cast<uint8_t>(hue));
      }
      ASSERT_EQ(ZEL_ReplaceColorPlanes(0, colors, planes[0], planes[1], planes[2], mode), 0);
      for (int32_t y = 0; y < steps; y++) {
        const auto* row = colors.At<RGBValue>(0, y);
        for (int32_t x = 0; x < steps; x++) {
          ASSERT_EQ(row[x], test::StatedPixel({hue, 3 * y, 3 * x}, mode))
              << "mode " << mode << ", components " << hue << ' ' << 3 * y << ' ' << 3 * x;
        }
      }
    }
  }
}

// A grid of colours, of which the others are kept: they pass in 16 bits, and a saturation of 65536
// among them does not become 0.
TEST(ColorPlanes, ComponentsThatAreKeptPassInSixteenBits) {
  constexpr int32_t steps = 52;
  const TestImage source(IMAGE_RGB, steps * steps, steps);
  for (int32_t y = 0; y < steps; y++) {
    for (int32_t x = 0; x < steps * steps; x++) {
      source.Set(x, y,
                 static_cast<RGBValue>(5 * y * 65536 + x / steps * 5 * 256 + x % steps * 5) |
                     static_cast<RGBValue>(x) << 24);
    }
  }
  const TestImage plane(IMAGE_U8, steps * steps, steps, 0, 3);
  const TestImage second(IMAGE_U8, steps * steps, steps, 0, 4);
  const TestImage destination(IMAGE_RGB, 1, 1);
  for (const int32_t mode : ALL_MODES) {
    for (int32_t mask = 1; mask < 7; mask++) {
      ImageRef given[3] = {};
      bool isFirst = true;
      const TestImage* images[3] = {};
      for (size_t p = 0; p < 3; p++) {
        if ((mask >> p & 1) == 0) continue;
        images[p] = isFirst ? &plane : &second;
        given[p] = *images[p];
        isFirst = false;
      }
      ASSERT_EQ(ZEL_ReplaceColorPlanes(source, destination, given[0], given[1], given[2], mode), 0);
      for (int32_t y = 0; y < steps; y++) {
        for (int32_t x = 0; x < steps * steps; x++) {
          const auto pixel = source.Get<RGBValue>(x, y);
          const Color rgb = test::ChannelsOfPixel(pixel);
          Color color = mode == MODE_RGB ? rgb : test::StatedForward(rgb, mode);
          for (size_t p = 0; p < 3; p++) {
            if (images[p]) color[p] = images[p]->Get<uint8_t>(x, y) * (mode == MODE_RGB ? 1 : 257);
          }
          if (mode != MODE_RGB) color = test::StatedBackward(color, mode);
          ASSERT_EQ(destination.Get<RGBValue>(x, y), test::PixelOfChannels(color, pixel))
              << "mode " << mode << ", planes " << mask << ", pixel " << std::hex << pixel;
        }
      }
    }
  }
}

TEST(ColorPlanes, OddSizesBordersAndSomePlanesOnly) {
  for (const int32_t workers : {1, 3}) {
    const test::Workers some(workers);
    for (const auto& [width, height] : test::ODD_SIZES) {
      const TestImage source = ColorImage(width, height, 3, 9);
      const std::vector<uint8_t> before = source.Block();
      for (const int32_t mode : ALL_MODES) {
        for (int32_t mask = 0; mask < 8; mask++) {
          const TestImage planes[3] = {TestImage(IMAGE_U8, width, height, 2),
                                       TestImage(IMAGE_U8, 3, 1, 0), TestImage(IMAGE_U8, 0, 0, 1)};
          const std::vector<uint8_t> around = planes[0].Surroundings();
          const auto given = [&](size_t p) -> ImageRef {
            return (mask >> p & 1) != 0 ? ImageRef{planes[p]} : ImageRef{0};
          };
          ASSERT_EQ(ZEL_ExtractColorPlanes(source, given(0), given(1), given(2), mode), 0);
          ASSERT_EQ(planes[0].Surroundings(), around);
          for (size_t p = 0; p < 3; p++) {
            if (given(p) == 0) continue;
            ASSERT_EQ(planes[p].width(), width);
            ASSERT_EQ(planes[p].height(), height);
            for (int32_t y = 0; y < height; y++) {
              for (int32_t x = 0; x < width; x++) {
                ASSERT_EQ(planes[p].Get<uint8_t>(x, y),
                          test::StatedComponents(source.Get<RGBValue>(x, y), mode)[p]);
              }
            }
          }
        }
      }
      ASSERT_EQ(source.Block(), before);
    }
  }
}

TEST(ColorPlanes, ReplaceInPlaceAndElsewhere) {
  for (const auto& [width, height] : test::ODD_SIZES) {
    const TestImage source = ColorImage(width, height, 1, 4);
    const TestImage plane(IMAGE_U8, width, height, 0, 6);
    const std::vector<uint8_t> around = source.Surroundings();
    for (const int32_t mode : ALL_MODES) {
      const TestImage elsewhere(IMAGE_RGB, 2, 2, 2);
      ASSERT_EQ(ZEL_ReplaceColorPlanes(source, elsewhere, 0, plane, 0, mode), 0);
      const TestImage copy = test::CloneOf(source);
      ASSERT_EQ(ZEL_ReplaceColorPlanes(copy, 0, 0, plane, 0, mode), 0);
      ASSERT_EQ(PixelDifference(copy, elsewhere), "");
      ASSERT_EQ(copy.Surroundings(), around);
      const TestImage other = test::CloneOf(source);
      ASSERT_EQ(ZEL_ReplaceColorPlanes(0, other, 0, plane, 0, mode), 0);
      ASSERT_EQ(PixelDifference(other, elsewhere), "");
      const TestImage same = test::CloneOf(source);
      ASSERT_EQ(ZEL_ReplaceColorPlanes(same, same, 0, plane, 0, mode), 0);
      ASSERT_EQ(PixelDifference(same, elsewhere), "");
      // All three: the old pixels play no part, nor their fourth bytes. One image may be several.
      ASSERT_EQ(ZEL_ReplaceColorPlanes(same, 0, plane, plane, plane, mode), 0);
      for (int32_t y = 0; y < height; y++) {
        for (int32_t x = 0; x < width; x++) {
          const int64_t level = plane.Get<uint8_t>(x, y);
          ASSERT_EQ(same.Get<RGBValue>(x, y), test::StatedPixel({level, level, level}, mode));
        }
      }
    }
  }
}

TEST(ColorPlanes, ExtractionTakesCalibrationAndNeedsItsTypes) {
  const TestImage source = ColorImage(9, 5, 0, 1);
  ZEL_SetImageCalibration(source, 7, 2.0f, 3.0f);
  const TestImage plane(IMAGE_U8, 2, 2);
  const TestImage words(IMAGE_I16, 2, 2);
  EXPECT_EQ(ZEL_ExtractColorPlanes(source, 0, 0, 0, 0), 0);
  EXPECT_EQ(ZEL_ExtractColorPlanes(plane, 0, 0, 0, 0), ZEL_ERR_BAD_TYPE);
  EXPECT_EQ(ZEL_ExtractColorPlanes(99999, 0, 0, 0, 0), ZEL_ERR_BAD_IMAGE);
  EXPECT_EQ(ZEL_ExtractColorPlanes(source, 99999, plane, 0, 0), ZEL_ERR_BAD_IMAGE);
  EXPECT_EQ(plane.Info().unit, 0);
  EXPECT_EQ(ZEL_ExtractColorPlanes(source, plane, words, 0, 0), ZEL_ERR_BAD_TYPE);
  EXPECT_EQ(plane.Info().unit, 7);
  EXPECT_EQ(plane.width(), 9);
  EXPECT_EQ(words.Info().unit, 7);
  EXPECT_EQ(words.width(), 2);
  EXPECT_EQ(ZEL_ExtractColorPlanes(source, source, 0, 0, 0), ZEL_ERR_BAD_TYPE);
}

TEST(ColorPlanes, OneImageAsTwoPlanesGives313) {
  const TestImage source = ColorImage(9, 5, 0, 1);
  const TestImage a(IMAGE_U8, 2, 2);
  const TestImage b(IMAGE_U8, 2, 2);
  for (const auto& [first, second, third] : std::vector<std::array<ImageRef, 3>>{
           {a, a, 0}, {a, a, b}, {b, a, a}, {0, a, a}, {a, b, a}, {a, 0, a}, {a, a, a}}) {
    EXPECT_EQ(ZEL_ExtractColorPlanes(source, first, second, third, 0), ZEL_ERR_SAME_IMAGE);
  }
  EXPECT_EQ(a.width(), 9);  // resized by then
}

TEST(ColorPlanes, ExtractionInAnUnknownModeIsHsvButForTheFirstPlaneAlone) {
  const TestImage source = ColorImage(9, 5, 0, 1);
  const TestImage hue(IMAGE_U8, 9, 5, 0, 3);
  const TestImage value(IMAGE_U8, 9, 5, 0, 4);
  const std::vector<uint8_t> before = hue.Block();
  EXPECT_EQ(ZEL_ExtractColorPlanes(source, hue, 0, 0, 3), 0);
  EXPECT_EQ(hue.Block(), before);
  EXPECT_EQ(ZEL_ExtractColorPlanes(source, hue, 0, value, -1), 0);
  for (int32_t x = 0; x < 9; x++) {
    const Color stated = test::StatedComponents(source.Get<RGBValue>(x, 2), MODE_HSV);
    EXPECT_EQ(hue.Get<uint8_t>(x, 2), stated[0]);
    EXPECT_EQ(value.Get<uint8_t>(x, 2), stated[2]);
  }
}

TEST(ColorPlanes, ReplaceWithoutPlanesLooksAtNothing) {
  EXPECT_EQ(ZEL_ReplaceColorPlanes(0, 0, 0, 0, 0, 0), 0);
  EXPECT_EQ(ZEL_ReplaceColorPlanes(99999, 88888, 0, 0, 0, 0), 0);
}

TEST(ColorPlanes, ReplaceFailsInItsOrder) {
  const TestImage source = ColorImage(9, 5, 0, 1);
  ZEL_SetImageCalibration(source, 7, 2.0f, 3.0f);
  const TestImage destination = ColorImage(4, 4, 0, 2);
  const TestImage plane(IMAGE_U8, 9, 5);
  const TestImage small(IMAGE_U8, 8, 5);
  const TestImage words(IMAGE_I16, 9, 5);
  const std::vector<uint8_t> before = destination.Block();
  EXPECT_EQ(ZEL_ReplaceColorPlanes(0, 0, plane, 0, 0, 0), ZEL_ERR_BAD_IMAGE);
  char name[ERROR_PROCEDURE_BYTES] = "";
  ZEL_GetLastError(name);
  EXPECT_STREQ(name, "ZEL_ReplaceColorPlane");
  EXPECT_EQ(ZEL_ReplaceColorPlanes(99999, destination, plane, plane, plane, 0), ZEL_ERR_BAD_IMAGE);
  EXPECT_EQ(destination.Info().unit, 0);
  EXPECT_EQ(ZEL_ReplaceColorPlanes(source, destination, words, small, plane, 0),
            ZEL_ERR_SIZE_DIFFERS);
  EXPECT_EQ(destination.Info().unit, 7);  // taken by then
  const TestImage low(IMAGE_U8, 9, 4);
  for (const TestImage* other : {&small, &low}) {
    EXPECT_EQ(ZEL_ReplaceColorPlanes(source, destination, plane, *other, plane, 0),
              ZEL_ERR_SIZE_DIFFERS);
    EXPECT_EQ(ZEL_ReplaceColorPlanes(source, destination, plane, plane, *other, 0),
              ZEL_ERR_SIZE_DIFFERS);
    EXPECT_EQ(ZEL_ReplaceColorPlanes(source, destination, plane, *other, 0, 0),
              ZEL_ERR_SIZE_DIFFERS);
  }
  EXPECT_EQ(ZEL_ReplaceColorPlanes(source, destination, plane, words, plane, 0), ZEL_ERR_BAD_TYPE);
  EXPECT_EQ(ZEL_ReplaceColorPlanes(0, plane, plane, plane, plane, 0), ZEL_ERR_BAD_TYPE);
  EXPECT_EQ(ZEL_ReplaceColorPlanes(plane, destination, plane, 0, 0, 0), ZEL_ERR_BAD_TYPE);
  EXPECT_EQ(ZEL_ReplaceColorPlanes(source, destination, words, small, 0, 0), ZEL_ERR_BAD_TYPE);
  EXPECT_EQ(ZEL_ReplaceColorPlanes(source, destination, small, words, 0, 0), ZEL_ERR_SIZE_DIFFERS);
  EXPECT_EQ(ZEL_ReplaceColorPlanes(source, plane, plane, 0, 0, 0), ZEL_ERR_BAD_TYPE);
  EXPECT_EQ(ZEL_ReplaceColorPlanes(source, destination, plane, 99999, 0, 0), ZEL_ERR_BAD_IMAGE);
  EXPECT_EQ(destination.Block(), before);
}

// With all planes the source's type and size do not matter.
TEST(ColorPlanes, ThreePlanesNeedNoSource) {
  const TestImage gray(IMAGE_U8, 2, 2);
  const TestImage destination = ColorImage(4, 4, 0, 2);
  const TestImage plane(IMAGE_U8, 9, 5);
  EXPECT_EQ(ZEL_ReplaceColorPlanes(gray, destination, plane, plane, plane, MODE_RGB), 0);
  EXPECT_EQ(destination.width(), 9);
  EXPECT_EQ(destination.Get<RGBValue>(3, 3), plane.Get<uint8_t>(3, 3) * 0x010101u);
}

TEST(ColorPlanes, ReplaceInAnUnknownModeWritesNoPixel) {
  const TestImage source = ColorImage(9, 5, 0, 1);
  const TestImage plane(IMAGE_U8, 9, 5);
  const std::vector<uint8_t> before = source.Block();
  for (const int32_t mode : {3, -1, INT32_MAX}) {
    EXPECT_EQ(ZEL_ReplaceColorPlanes(source, 0, plane, 0, 0, mode), 0);
    EXPECT_EQ(ZEL_ReplaceColorPlanes(source, 0, plane, plane, plane, mode), 0);
  }
  EXPECT_EQ(source.Block(), before);
}

TEST(ColorPlanes, WithoutMemoryFailCleanly) {
  const TestImage source = ColorImage(60, 50, 0, 1);
  TestImage planes[3];
  const auto prepare = [&] {
    for (TestImage& plane : planes) plane = TestImage(IMAGE_U8, 1, 1);
  };
  test::RefuseEachAllocation(prepare, [&] {
    return ZEL_ExtractColorPlanes(source, planes[0], planes[1], planes[2], MODE_HSL);
  });
}

}  // namespace
