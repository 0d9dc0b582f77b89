// Lookups by the user's tables, against a reference that goes pixel by pixel.
#include "point/lookup_test.h"

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "harness/caller_arrays.h"
#include "tests/support/refused_memory.h"

namespace {

using test::Random;
using test::Selects;
using test::TestImage;

// entries: as signed 16-bit numbers.
TestImage Expected(const TestImage& source, const TestImage* mask,
                   const std::vector<int16_t>& entries) {
  const int32_t type = source.Info().type;
  TestImage expected(type, source.width(), source.height());
  for (int32_t y = 0; y < source.height(); y++) {
    const test::Row to(expected, type, y);
    for (int32_t x = 0; x < source.width(); x++) {
      auto value = static_cast<int32_t>(PixelOf(source, x, y));
      const auto index = static_cast<size_t>(value < 0 ? value + 65536 : value);
      if (Selects(mask, x, y) && index < entries.size()) {
        value = entries[index];
        if (type == IMAGE_U8) value = value < 0 ? 0 : value > 255 ? 255 : value;
      }
      to.Set(x, value);
    }
  }
  return expected;
}

std::vector<int16_t> RandomTable(size_t count, uint64_t seed) {
  Random random(seed);
  std::vector<int16_t> entries(count);
  for (int16_t& entry : entries) entry = static_cast<int16_t>(random.Between(-40, 300));
  return entries;
}

TEST(LookupPixels, MapsEveryPixelThroughTheTable) {
  for (const int32_t type : {IMAGE_U8, IMAGE_I16}) {
    for (const size_t count : {size_t{0}, size_t{10}, size_t{255}, size_t{256}, size_t{300},
                               size_t{40000}, size_t{65536}, size_t{70000}}) {
      const std::vector<int16_t> entries = RandomTable(count, count + 1);
      for (const auto& [width, height] : test::ODD_SIZES) {
        const TestImage source(type, width, height, 2, 3);
        const TestImage expected = Expected(source, nullptr, entries);
        const TestImage destination(type, 3, 1, 1);
        ASSERT_EQ(ZEL_UserLookup(source, 0, destination, ARRAY_I16, entries.data(),
                                 static_cast<int32_t>(count)),
                  0);
        ASSERT_EQ(PixelDifference(destination, expected), "") << count << " entries";
        const std::vector<uint8_t> around = source.Surroundings();
        ASSERT_EQ(ZEL_UserLookup(source, source, 0, ARRAY_I16, entries.data(),
                                 static_cast<int32_t>(count)),
                  0);
        ASSERT_EQ(PixelDifference(source, expected), "");
        ASSERT_EQ(source.Surroundings(), around);
      }
    }
  }
}

TEST(LookupPixels, EveryLevelFindsItsEntry) {
  const TestImage all(IMAGE_U8, 256, 2, 0);
  for (int32_t x = 0; x < 256; x++) {
    all.Set(x, 0, static_cast<uint8_t>(x));
    all.Set(x, 1, static_cast<uint8_t>(255 - x));
  }
  for (uint64_t seed = 1; seed < 30; seed++) {
    const std::vector<int16_t> entries = RandomTable(256, seed);
    const TestImage destination(IMAGE_U8, 1, 1);
    ASSERT_EQ(ZEL_UserLookup(all, 0, destination, ARRAY_I16, entries.data(), 256), 0);
    ASSERT_EQ(PixelDifference(destination, Expected(all, nullptr, entries)), "");
  }
}

// Tables that keep one range take another way.
TEST(LookupPixels, TablesOfOneRangeMapLikeOthers) {
  const TestImage all(IMAGE_U8, 256, 1, 0);
  for (int32_t x = 0; x < 256; x++) all.Set(x, 0, static_cast<uint8_t>(x));
  std::vector<std::vector<int16_t>> tables;
  for (const auto& [low, high] : std::vector<std::pair<int32_t, int32_t>>{
           {0, 255}, {0, 0}, {255, 255}, {10, 20}, {0, 100}, {1, 255}, {128, 127}}) {
    for (const int32_t kind : {0, 1, 2, 3}) {
      std::vector<int16_t> entries(256, 0);
      for (int32_t level = low; level <= high; level++) {
        entries[static_cast<size_t>(level)] = static_cast<int16_t>(kind == 0   ? level
                                                                   : kind == 1 ? 77
                                                                   : kind == 2 ? level + 1
                                                                               : (level & 1) * 9);
      }
      tables.push_back(entries);
      entries[200] = 3;
      tables.push_back(entries);
    }
  }
  for (const std::vector<int16_t>& entries : tables) {
    const TestImage destination(IMAGE_U8, 1, 1);
    ASSERT_EQ(ZEL_UserLookup(all, 0, destination, ARRAY_I16, entries.data(), 256), 0);
    ASSERT_EQ(PixelDifference(destination, Expected(all, nullptr, entries)), "");
  }
}

TEST(LookupPixels, MaskedOutPixelsKeepTheSourcesValue) {
  const std::vector<int16_t> entries = RandomTable(65536, 4);
  for (const int32_t type : {IMAGE_U8, IMAGE_I16}) {
    for (const auto& [width, height] : test::ODD_SIZES) {
      for (const auto& [offsetX, offsetY] : std::vector<std::pair<int32_t, int32_t>>{
               {0, 0}, {3, 1}, {-5, -1}, {1000, 0}, {INT32_MIN, 0}, {INT32_MAX, INT32_MAX}}) {
        const TestImage mask = test::SparseMask(width + 2, 3, offsetX, offsetY, 31);
        const TestImage source(type, width, height, 2, 3);
        const TestImage expected = Expected(source, &mask, entries);
        const TestImage destination(type, 5, 5, 1);
        ASSERT_EQ(ZEL_UserLookup(source, mask, destination, ARRAY_I16, entries.data(), 65536), 0);
        ASSERT_EQ(PixelDifference(destination, expected), "")
            << "type " << type << " offset " << offsetX << ' ' << offsetY;
        const std::vector<uint8_t> around = source.Surroundings();
        const std::vector<uint8_t> maskBefore = mask.Block();
        ASSERT_EQ(ZEL_UserLookup(source, mask, source, ARRAY_I16, entries.data(), 65536), 0);
        ASSERT_EQ(PixelDifference(source, expected), "");
        ASSERT_EQ(source.Surroundings(), around);
        ASSERT_EQ(mask.Block(), maskBefore);
      }
    }
  }
}

TEST(LookupPixels, TheMaskMayBeTheDestination) {
  const std::vector<int16_t> entries = RandomTable(256, 4);
  for (const int32_t offset : {0, 2, -3, 5000}) {
    const TestImage source(IMAGE_U8, 70, 5, 1, 6);
    ZEL_SetImageCalibration(source, 1, 2.0f, 3.0f);
    ZEL_SetImageOffset(source, 17, 18);
    const TestImage mask = test::SparseMask(66, 4, offset, 1, 31);
    const TestImage expected = Expected(source, &mask, entries);
    ASSERT_EQ(ZEL_UserLookup(source, mask, mask, ARRAY_I16, entries.data(), 256), 0);
    EXPECT_EQ(PixelDifference(mask, expected), "");
    // An empty overlap ends the call before the information is copied.
    EXPECT_EQ(mask.Info().xStep, offset == 5000 ? 1.0f : 2.0f);
    EXPECT_EQ(mask.Info().offsetX, offset == 5000 ? 5000 : 17);
    EXPECT_EQ(mask.Info().border, 1);
  }
}

TEST(Lookup, AnEmptyOverlapLeavesACopyWithoutTheSourcesInformation) {
  const TestImage source(IMAGE_I16, 9, 4, 1);
  ZEL_SetImageCalibration(source, 1, 2.0f, 3.0f);
  const TestImage mask(IMAGE_U8, 3, 3);
  ZEL_SetImageOffset(mask, 9, 0);
  const TestImage destination(IMAGE_I16, 2, 2, 2);
  ASSERT_EQ(ZEL_UserLookup(source, mask, destination, ARRAY_I16, nullptr, 0), 0);
  EXPECT_EQ(PixelDifference(destination, source), "");
  EXPECT_EQ(destination.Info().xStep, 1.0f);
}

TEST(Lookup, TablesOfAllArrayTypesBecomeSigned16BitEntries) {
  const TestImage source(IMAGE_U8, 4, 1);
  for (int32_t x = 0; x < 4; x++) source.Set(x, 0, static_cast<uint8_t>(x));
  const auto mapped = [&](int32_t type, const void* array) {
    const TestImage destination(IMAGE_U8, 1, 1);
    EXPECT_EQ(ZEL_UserLookup(source, 0, destination, type, array, 3), 0);
    return destination.Pixels();
  };
  const uint16_t words[] = {40000, 300, 7};
  EXPECT_EQ(mapped(ARRAY_U16, words), (std::vector<uint8_t>{0, 255, 7, 3}));
  const double doubles[] = {70000.0, -1.5, 7.9};
  EXPECT_EQ(mapped(ARRAY_DBL, doubles), (std::vector<uint8_t>{255, 0, 7, 3}));
  const int8_t bytes[] = {-1, 127, 0};
  EXPECT_EQ(mapped(ARRAY_I8, bytes), (std::vector<uint8_t>{0, 127, 0, 3}));
  const float floats[] = {NAN, 1e20f, 255.5f};
  EXPECT_EQ(mapped(ARRAY_SGL, floats), (std::vector<uint8_t>{0, 0, 255, 3}));
  const uint32_t longs[] = {0x10005, 65535, 256};
  EXPECT_EQ(mapped(ARRAY_U32, longs), (std::vector<uint8_t>{5, 0, 255, 3}));
  for (const int32_t unknown : {5, -1, 9}) {
    EXPECT_EQ(mapped(unknown, longs), (std::vector<uint8_t>{0, 0, 0, 3}));
  }
}

TEST(Lookup, SixteenBitEntriesAreNotLimited) {
  const TestImage image(IMAGE_I16, 3, 1);
  image.Set<int16_t>(0, 0, 0);
  image.Set<int16_t>(1, 0, 1);
  image.Set<int16_t>(2, 0, -1);
  std::vector<int32_t> entries(65536, 5);
  entries[0] = -300;
  entries[1] = 65535;
  entries[65535] = 70000;
  ASSERT_EQ(ZEL_UserLookup(image, 0, 0, ARRAY_I32, entries.data(), 65536), 0);
  EXPECT_EQ(image.Get<int16_t>(0, 0), -300);
  EXPECT_EQ(image.Get<int16_t>(1, 0), -1);
  EXPECT_EQ(image.Get<int16_t>(2, 0), 4464);
}

TEST(Lookup, EntriesBeyondTheLevelsAreNotRead) {
  for (const int32_t type : {IMAGE_U8, IMAGE_I16, IMAGE_SGL}) {
    const size_t levels = type == IMAGE_U8 ? 256 : type == IMAGE_I16 ? 65536 : 0;
    const TestImage image(type, 33, 3);
    for (int32_t arrayType = ARRAY_I8; arrayType <= ARRAY_U8; arrayType++) {
      test::CallerArrays arrays;
      const void* table =
          arrays.Make(test::LayoutOf(arrayType, levels), test::ArrayPlace::BeforeGuardPage);
      const int32_t expected = type == IMAGE_SGL ? -301 : 0;
      ASSERT_EQ(ZEL_UserLookup(image, 0, 0, arrayType, table, 70000), expected) << arrayType;
    }
  }
}

TEST(Lookup, FailuresLeaveTheImagesAlone) {
  const TestImage bytes(IMAGE_U8, 8, 4);
  const TestImage words(IMAGE_I16, 3, 3);
  const TestImage floats(IMAGE_SGL, 3, 3);
  const std::vector<uint8_t> bytesBefore = bytes.Block();
  const std::vector<uint8_t> wordsBefore = words.Block();
  const uint8_t table[] = {1};
  EXPECT_EQ(ZEL_UserLookup(0, 0, bytes, ARRAY_U8, table, 1), -200);
  EXPECT_EQ(ZEL_UserLookup(99999, 0, bytes, ARRAY_U8, table, 1), -200);
  EXPECT_EQ(ZEL_UserLookup(bytes, 0, 99999, ARRAY_U8, table, 1), -200);
  EXPECT_EQ(ZEL_UserLookup(bytes, 99999, words, ARRAY_U8, table, 1), -304);
  EXPECT_EQ(ZEL_UserLookup(bytes, 99999, 0, ARRAY_U8, table, 1), -200);
  EXPECT_EQ(ZEL_UserLookup(floats, 99999, 99999, ARRAY_U8, table, 1), -301);
  EXPECT_EQ(ZEL_UserLookup(bytes, words, 0, ARRAY_U8, table, 1), -301);
  EXPECT_EQ(ZEL_UserLookup(words, floats, 0, ARRAY_U8, table, 1), -301);
  const TestImage otherWords(IMAGE_I16, 2, 2);
  const std::vector<uint8_t> otherBefore = otherWords.Block();
  EXPECT_EQ(ZEL_UserLookup(words, otherWords, otherWords, ARRAY_U8, table, 1), -301);
  EXPECT_EQ(otherWords.Block(), otherBefore);
  char name[256];
  EXPECT_EQ(ZEL_UserLookup(bytes, 0, 0, ARRAY_U8, nullptr, 1), -3009);
  EXPECT_EQ(ZEL_GetLastError(name), -3009);
  EXPECT_STREQ(name, "ZEL_UserLookup");
  EXPECT_EQ(bytes.Block(), bytesBefore);
  EXPECT_EQ(words.Block(), wordsBefore);
}

TEST(Lookup, EveryRefusedAllocationIsToldAndKeepsTheImages) {
  const std::vector<int32_t> entries(300, 7);
  const TestImage source(IMAGE_U8, 30, 4, 1);
  const TestImage original = test::SparseMask(40, 9, 1, 1, 31);
  const TestImage expected = Expected(source, &original, std::vector<int16_t>(256, 7));
  const std::vector<uint8_t> before = source.Block();
  TestImage mask;
  test::RefuseEachAllocation([&] { mask = test::SparseMask(40, 9, 1, 1, 31); },
                             [&] {
                               const int32_t result = ZEL_UserLookup(source, mask, mask, ARRAY_I32,
                                                                     entries.data(), 300);
                               EXPECT_EQ(source.Block(), before);
                               if (result == 0) {
                                 EXPECT_EQ(PixelDifference(mask, expected), "");
                               } else {
                                 EXPECT_EQ(mask.Block(), original.Block());
                               }
                               return result;
                             });
}

}  // namespace
