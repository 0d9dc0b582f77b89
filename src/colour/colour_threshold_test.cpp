// Colour thresholds, against tables of 256 entries as they are stated.
#include <gtest/gtest.h>

#include <vector>

#include "colour/colour_test.h"
#include "tests/support/walks.h"

namespace {

using test::Color;
using test::ColorImage;
using test::TestImage;

struct Ends {
  int32_t low, high;
};
struct Ranges {
  Ends ends[3];
};

int32_t Threshold(const TestImage& source, ImageRef destination, int32_t mode, int32_t value,
                  const Ranges& r) {
  return ZEL_ColorThreshold(source, destination, mode, value, r.ends[0].low, r.ends[0].high,
                            r.ends[1].low, r.ends[1].high, r.ends[2].low, r.ends[2].high);
}

int32_t ByteOf(int32_t end) {
  return end >= 255 ? 255 : end <= 0 ? 0 : end;
}

std::vector<uint8_t> TableOf(const Ends& ends, bool isHue, int32_t value) {
  const int32_t low = ByteOf(ends.low);
  const int32_t high = ByteOf(ends.high);
  std::vector<uint8_t> table(256);
  for (int32_t level = 0; level < 256; level++) {
    const bool within =
        isHue && high < low ? level < high || level > low : level >= low && level <= high;
    table[static_cast<size_t>(level)] = static_cast<uint8_t>(within ? ByteOf(value) : 0);
  }
  return table;
}

TestImage Expected(const TestImage& source, int32_t mode, int32_t value, const Ranges& ranges) {
  TestImage expected(IMAGE_U8, source.width(), source.height());
  std::vector<uint8_t> tables[3];
  bool active[3];
  for (size_t p = 0; p < 3; p++) {
    active[p] = ranges.ends[p].low > 0 || ranges.ends[p].high < 255;
    tables[p] = TableOf(ranges.ends[p], p == 0 && mode != MODE_RGB, value);
  }
  for (int32_t y = 0; y < source.height(); y++) {
    for (int32_t x = 0; x < source.width(); x++) {
      const Color color = test::StatedComponents(source.Get<RGBValue>(x, y), mode);
      uint8_t result = 255;
      for (size_t p = 0; p < 3; p++) {
        if (active[p]) result &= tables[p][static_cast<size_t>(color[p])];
      }
      expected.Set(x, y, result);
    }
  }
  return expected;
}

TEST(ColorThreshold, MarksWhatLiesInAllRanges) {
  for (const int32_t workers : {1, 3}) {
    const test::Workers some(workers);
    for (const auto& [width, height] : test::ODD_SIZES) {
      const TestImage source = ColorImage(width, height, 1, 5);
      for (const int32_t mode : {MODE_RGB, MODE_HSL, MODE_HSV}) {
        for (const Ranges& ranges : std::vector<Ranges>{{{{20, 200}, {30, 220}, {40, 250}}},
                                                        {{{0, 255}, {100, 255}, {0, 255}}},
                                                        {{{240, 15}, {0, 255}, {0, 255}}},
                                                        {{{0, 255}, {240, 15}, {0, 255}}},
                                                        {{{0, 255}, {0, 255}, {-5, 254}}},
                                                        {{{85, 85}, {255, 255}, {0, 200}}},
                                                        {{{300, 260}, {0, 255}, {0, 255}}},
                                                        {{{255, 0}, {1, 999}, {0, 255}}},
                                                        {{{10, -7}, {0, 255}, {1, 255}}}}) {
          for (const int32_t value : {255, 1, 0, 170, -3, 1000}) {
            const TestImage destination(IMAGE_U8, width, height, 2);
            const std::vector<uint8_t> around = destination.Surroundings();
            ASSERT_EQ(Threshold(source, destination, mode, value, ranges), 0);
            ASSERT_EQ(PixelDifference(destination, Expected(source, mode, value, ranges)), "")
                << "mode " << mode << ", value " << value << ", first " << ranges.ends[0].low;
            ASSERT_EQ(destination.Surroundings(), around);
          }
        }
      }
    }
  }
}

// The circle of hues is open at both ends then.
TEST(ColorThreshold, HuesFromAHighLowToALowHighAreThoseOutsideBoth) {
  const TestImage source(IMAGE_RGB, 4096, 1);
  test::Random random(3);
  for (int32_t x = 0; x < 4096; x++) source.Set<RGBValue>(x, 0, random.Next());
  const TestImage hues(IMAGE_U8, 1, 1);
  ASSERT_EQ(ZEL_ExtractColorPlanes(source, hues, 0, 0, MODE_HSV), 0);
  const TestImage marked(IMAGE_U8, 1, 1);
  ASSERT_EQ(Threshold(source, marked, MODE_HSV, 255, {{{240, 15}, {0, 255}, {0, 255}}}), 0);
  for (int32_t x = 0; x < 4096; x++) {
    const auto hue = hues.Get<uint8_t>(x, 0);
    ASSERT_EQ(marked.Get<uint8_t>(x, 0), hue <= 14 || hue >= 241 ? 255 : 0) << int{hue};
  }
}

TEST(ColorThreshold, WholeRangesAndUnknownModesWriteNoPixel) {
  const TestImage source = ColorImage(9, 5, 0, 5);
  ZEL_SetImageCalibration(source, 7, 2.0f, 3.0f);
  const TestImage destination(IMAGE_U8, 9, 5, 1);
  const std::vector<uint8_t> before = destination.Block();
  for (const int32_t mode : std::vector<int32_t>{MODE_RGB, MODE_HSL, MODE_HSV, 3, -1}) {
    EXPECT_EQ(Threshold(source, destination, mode, 9, {{{0, 255}, {-9, 300}, {0, 255}}}), 0);
  }
  EXPECT_EQ(Threshold(source, destination, 3, 9, {{{10, 20}, {0, 255}, {0, 255}}}), 0);
  EXPECT_EQ(destination.Block(), before);
  EXPECT_EQ(destination.Info().unit, 7);
  const TestImage small(IMAGE_U8, 2, 2);
  EXPECT_EQ(Threshold(source, small, 3, 9, {{{10, 20}, {0, 255}, {0, 255}}}), 0);
  EXPECT_EQ(small.width(), 9);
}

TEST(ColorThreshold, NeedsItsTypes) {
  const TestImage source = ColorImage(9, 5, 0, 5);
  const TestImage gray(IMAGE_U8, 2, 2);
  const Ranges ranges{{{10, 20}, {0, 255}, {0, 255}}};
  EXPECT_EQ(Threshold(gray, gray, 0, 9, ranges), ZEL_ERR_BAD_TYPE);
  EXPECT_EQ(Threshold(source, source, 0, 9, ranges), ZEL_ERR_BAD_TYPE);
  EXPECT_EQ(Threshold(source, 0, 0, 9, ranges), ZEL_ERR_BAD_IMAGE);
  EXPECT_EQ(Threshold(source, 99999, 0, 9, ranges), ZEL_ERR_BAD_IMAGE);
  EXPECT_EQ(ZEL_ColorThreshold(99999, gray, 0, 9, 1, 2, 3, 4, 5, 6), ZEL_ERR_BAD_IMAGE);
  EXPECT_EQ(gray.width(), 2);
}

}  // namespace
