// Colours through tables, against the stated conversions.
#include <gtest/gtest.h>

#include <vector>

#include "colour/colour_test.h"
#include "tests/support/walks.h"

namespace {

using test::Color;
using test::ColorImage;
using test::TestImage;

using Entries = std::vector<int16_t>;

Entries RandomTable(uint64_t seed) {
  test::Random random(seed);
  Entries entries(256);
  for (int16_t& entry : entries) entry = static_cast<int16_t>(random.Between(-300, 700));
  return entries;
}

struct Tables {
  const Entries* of[3];
  const int16_t* operator[](size_t p) const { return of[p] ? of[p]->data() : nullptr; }
};

TestImage Expected(const TestImage& source, const TestImage* mask, int32_t mode,
                   const Tables& tables) {
  TestImage expected = test::CloneOf(source);
  for (int32_t y = 0; y < source.height(); y++) {
    for (int32_t x = 0; x < source.width(); x++) {
      if (!test::Selects(mask, x, y)) continue;
      const auto pixel = source.Get<RGBValue>(x, y);
      Color color = test::StatedComponents(pixel, mode);
      for (size_t p = 0; p < 3; p++) {
        if (tables.of[p]) color[p] = (*tables.of[p])[static_cast<size_t>(color[p])] & 255;
      }
      expected.Set(x, y, test::StatedPixel(color, mode, pixel));
    }
  }
  return expected;
}

int32_t Lookup(ImageRef source, ImageRef mask, ImageRef destination, int32_t mode,
               const Tables& tables) {
  return ZEL_ColorUserLookup(source, mask, destination, mode, ARRAY_I16, tables[0], tables[1],
                             tables[2]);
}

TEST(ColorLookup, MapsTheComponentsOfEveryPixel) {
  const Entries first = RandomTable(1), second = RandomTable(2), third = RandomTable(3);
  for (const int32_t workers : {1, 3}) {
    const test::Workers some(workers);
    for (const auto& [width, height] : test::ODD_SIZES) {
      const TestImage source = ColorImage(width, height, 2, 7);
      for (const int32_t mode : {MODE_RGB, MODE_HSL, MODE_HSV}) {
        for (int32_t given = 1; given < 8; given++) {
          const Tables tables{{(given & 1) != 0 ? &first : nullptr,
                               (given & 2) != 0 ? &second : nullptr,
                               (given & 4) != 0 ? &third : nullptr}};
          const TestImage expected = Expected(source, nullptr, mode, tables);
          const TestImage destination(IMAGE_RGB, 2, 1, 1);
          ASSERT_EQ(Lookup(source, 0, destination, mode, tables), 0);
          ASSERT_EQ(PixelDifference(destination, expected), "") << "mode " << mode;
          const TestImage copy = test::CloneOf(source);
          ASSERT_EQ(Lookup(copy, 0, given % 2 == 0 ? 0 : ImageRef{copy}, mode, tables), 0);
          ASSERT_EQ(PixelDifference(copy, expected), "") << "in place, mode " << mode;
          ASSERT_EQ(copy.Surroundings(), source.Surroundings());
        }
      }
    }
  }
}

TEST(ColorLookup, MaskedOutPixelsKeepTheSourcesValue) {
  const Entries first = RandomTable(1), third = RandomTable(3);
  const Tables tables{{&first, nullptr, &third}};
  for (const auto& [width, height] : test::ODD_SIZES) {
    const TestImage source = ColorImage(width, height, 2, 7);
    for (const auto& [x, y] : std::vector<std::pair<int32_t, int32_t>>{
             {0, 0}, {3, 1}, {-5, -1}, {1000, 0}, {INT32_MIN, 0}}) {
      const TestImage mask = test::SparseMask(width + 2, 3, x, y, 31);
      for (const int32_t mode : {MODE_RGB, MODE_HSL, MODE_HSV}) {
        const TestImage expected = Expected(source, &mask, mode, tables);
        const TestImage destination(IMAGE_RGB, 5, 5, 1);
        ASSERT_EQ(Lookup(source, mask, destination, mode, tables), 0);
        ASSERT_EQ(PixelDifference(destination, expected), "");
        const TestImage copy = test::CloneOf(source);
        ASSERT_EQ(Lookup(copy, mask, 0, mode, tables), 0);
        ASSERT_EQ(PixelDifference(copy, expected), "");
        ASSERT_EQ(copy.Surroundings(), source.Surroundings());
      }
    }
  }
}

TEST(ColorLookup, WithoutTablesTheImageIsCopiedAndNothingMore) {
  const TestImage source = ColorImage(33, 5, 2, 7);
  ZEL_SetImageCalibration(source, 7, 2.0f, 3.0f);
  const Tables none{};
  for (const int32_t mode : std::vector<int32_t>{MODE_RGB, MODE_HSL, MODE_HSV, 3}) {
    const TestImage destination(IMAGE_RGB, 3, 3, 1);
    EXPECT_EQ(Lookup(source, 0, destination, mode, none), 0);
    EXPECT_EQ(PixelDifference(destination, source), "");
    EXPECT_EQ(destination.Info().unit, 7);
    const TestImage copy = test::CloneOf(source);
    EXPECT_EQ(Lookup(copy, 0, 0, mode, none), 0);
    EXPECT_EQ(copy.Block(), source.Block());
  }
}

TEST(ColorLookup, TablesOfAnUnknownTypeMapNothing) {
  const TestImage source = ColorImage(33, 5, 2, 7);
  for (const int32_t type : {5, 9, -1}) {
    const TestImage destination(IMAGE_RGB, 33, 5);
    const uint8_t table[256] = {};
    EXPECT_EQ(ZEL_ColorUserLookup(source, 0, destination, MODE_RGB, type, table, table, table), 0);
    EXPECT_EQ(PixelDifference(destination, source), "");
  }
  // In a hue mode the pixels have still gone through bytes.
  const uint8_t table[256] = {};
  const TestImage destination(IMAGE_RGB, 33, 5);
  EXPECT_EQ(ZEL_ColorUserLookup(source, 0, destination, MODE_HSL, 5, table, nullptr, nullptr), 0);
  EXPECT_EQ(PixelDifference(destination, Expected(source, nullptr, MODE_HSL, {})), "");
}

TEST(ColorLookup, EntriesAreTruncatedAndTheirLowBytesCount) {
  const TestImage source = ColorImage(9, 5, 0, 7);
  std::vector<double> table(256, 300.9);
  const TestImage destination(IMAGE_RGB, 1, 1);
  EXPECT_EQ(ZEL_ColorUserLookup(source, 0, destination, MODE_RGB, ARRAY_DBL, nullptr, table.data(),
                                nullptr),
            0);
  EXPECT_EQ(destination.Get<RGBValue>(4, 4), (source.Get<RGBValue>(4, 4) & 0xFFFF00FF) | 44u << 8);
}

TEST(ColorLookup, UnknownModesMapNothing) {
  const Entries table = RandomTable(1);
  const TestImage source = ColorImage(9, 5, 0, 7);
  const TestImage mask = test::SparseMask(9, 5, 0, 0, 3);
  const TestImage destination(IMAGE_RGB, 2, 2);
  EXPECT_EQ(Lookup(source, 0, destination, 3, {{&table, nullptr, nullptr}}), 0);
  EXPECT_EQ(destination.width(), 9);
  EXPECT_EQ(Lookup(source, mask, destination, -1, {{&table, nullptr, nullptr}}), 0);
  EXPECT_EQ(PixelDifference(destination, source), "");
}

TEST(ColorLookup, NeedsItsTypes) {
  const Entries table = RandomTable(1);
  const Tables tables{{&table, nullptr, nullptr}};
  const TestImage source = ColorImage(9, 5, 0, 7);
  const TestImage destination(IMAGE_RGB, 2, 2);
  const TestImage gray(IMAGE_U8, 9, 5);
  const TestImage words(IMAGE_I16, 9, 5);
  EXPECT_EQ(Lookup(99999, 0, destination, 0, tables), ZEL_ERR_BAD_IMAGE);
  EXPECT_EQ(Lookup(gray, 0, destination, 0, tables), ZEL_ERR_BAD_TYPE);
  EXPECT_EQ(Lookup(source, 0, 99999, 0, tables), ZEL_ERR_BAD_IMAGE);
  EXPECT_EQ(Lookup(source, 99999, gray, 0, tables), ZEL_ERR_BAD_TYPE);
  EXPECT_EQ(Lookup(source, 99999, destination, 0, tables), ZEL_ERR_BAD_IMAGE);
  EXPECT_EQ(Lookup(source, words, destination, 0, tables), ZEL_ERR_BAD_TYPE);
  EXPECT_EQ(Lookup(source, source, destination, 0, tables), ZEL_ERR_BAD_TYPE);
  EXPECT_EQ(Lookup(source, destination, destination, 0, tables), ZEL_ERR_BAD_TYPE);
  EXPECT_EQ(destination.width(), 2);
}

}  // namespace
