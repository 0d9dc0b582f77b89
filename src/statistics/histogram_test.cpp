#include "statistics/histogram.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <optional>
#include <vector>

#include "statistics/histogram_test.h"
#include "statistics/min_max.h"
#include "tests/support/walks.h"

namespace {

using test::SparseMask;
using test::TestImage;

constexpr uint32_t UNTOUCHED = 0xABCDABCD;

void ExpectSameReport(const HistogramReport& actual, const HistogramReport& expected) {
  const auto expectSame = [](float a, float b, const char* field) {
    uint32_t bitsA = 0;
    uint32_t bitsB = 0;
    std::memcpy(&bitsA, &a, 4);
    std::memcpy(&bitsB, &b, 4);
    EXPECT_TRUE(bitsA == bitsB || (std::isnan(a) && std::isnan(b)))
        << field << " is " << a << " instead of " << b;
  };
  expectSame(actual.min, expected.min, "min");
  expectSame(actual.max, expected.max, "max");
  expectSame(actual.start, expected.start, "start");
  expectSame(actual.interval, expected.interval, "interval");
  expectSame(actual.mean, expected.mean, "mean");
  expectSame(actual.stdDev, expected.stdDev, "stdDev");
  EXPECT_EQ(actual.nbPixels, expected.nbPixels);
}

void Check(const TestImage& image, const TestImage* mask, int32_t nbClasses, float min, float max) {
  const test::CountedHistogram expected = test::HistogramByRule(image, mask, nbClasses, min, max);
  std::vector<uint32_t> counters(5000, UNTOUCHED);
  HistogramReport report{};
  const ImageRef maskRef = mask ? static_cast<ImageRef>(*mask) : 0;
  ASSERT_EQ(ZEL_Histogram(image, maskRef, nbClasses, min, max, counters.data(), &report), 0);
  for (size_t i = 0; i < expected.counters.size(); i++) {
    ASSERT_EQ(counters[i], expected.counters[i]) << "class " << i << " of " << nbClasses;
  }
  EXPECT_EQ(counters[expected.counters.size()], UNTOUCHED);
  ExpectSameReport(report, expected.report);

  HistogramReport again{};
  ASSERT_EQ(ZEL_Histogram(image, maskRef, nbClasses, min, max, nullptr, &again), 0);
  ExpectSameReport(again, expected.report);
  std::vector<uint32_t> unreported(counters.size(), UNTOUCHED);
  ASSERT_EQ(ZEL_Histogram(image, maskRef, nbClasses, min, max, unreported.data(), nullptr), 0);
  EXPECT_EQ(unreported, counters);
}

TEST(HistogramPixels, FollowsTheRuleForAllTypesSizesAndMasks) {
  struct Case {
    int32_t classes;
    float min, max;
  };
  const Case cases[] = {{256, 0, 0},         {256, 0, 255}, {10, 0, 0},         {1, 0, 0},
                        {64, 20, 200},       {300, 0, 255}, {4096, -100, 100},  {5000, 0, 0},
                        {7, -3.9f, 70.9f},   {5, 50, 20},   {3, 1e20f, -1e20f}, {9, -1e20f, 1e20f},
                        {256, -30000, 30000}};
  for (const int32_t type : {IMAGE_U8, IMAGE_I16, IMAGE_SGL}) {
    for (const auto& [width, height] : test::ODD_SIZES) {
      const TestImage image(type, width, height, 2, 11);
      const TestImage inside = SparseMask(width, height, 0, 0, 5);
      const TestImage shifted = SparseMask(width + 3, height + 1, -2, 1, 6);
      for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message()
                     << "type " << type << ", " << width << " x " << height << ", " << c.classes
                     << " classes " << c.min << ".." << c.max);
        Check(image, nullptr, c.classes, c.min, c.max);
        Check(image, &inside, c.classes, c.min, c.max);
        Check(image, &shifted, c.classes, c.min, c.max);
        if (testing::Test::HasFailure()) return;
      }
    }
  }
}

TEST(HistogramPixels, CountsLevelsOfLongRowsOfOneValue) {
  for (const uint8_t value : {uint8_t{0}, uint8_t{7}, uint8_t{255}}) {
    const TestImage image(IMAGE_U8, 3001, 5);
    for (int32_t y = 0; y < 5; y++) std::memset(image.At<uint8_t>(0, y), value, 3001);
    Check(image, nullptr, 256, 0, 0);
  }
}

TEST(HistogramPixels, EveryWordFollowsTheRuleInAnyRange) {
  const TestImage image(IMAGE_I16, 512, 128);
  for (int32_t i = 0; i < 65536; i++) {
    image.Set<int16_t>(i % 512, i / 512, static_cast<int16_t>(i - 32768));
  }
  struct Case {
    int32_t classes;
    float min, max;
  };
  // Where there are twice as many classes as words, all words lie at exact halves.
  const Case cases[] = {{2, -32768, 32767},     {3, -32768, 32767},   {256, -32768, 32767},
                        {4095, -32768, 32767},  {1024, -100, 411},    {4096, 32000, 32767},
                        {1000, -32768, -32700}, {777, -12345, 23456}, {4096, 5, 5}};
  for (const Case& c : cases) {
    SCOPED_TRACE(testing::Message() << c.classes << " classes " << c.min << ".." << c.max);
    Check(image, nullptr, c.classes, c.min, c.max);
  }
}

TEST(HistogramPixels, SquaresBeyondExactIntegersAreRoundedInOrder) {
  const TestImage image(IMAGE_I16, 40000, 240);
  for (int32_t y = 0; y < 240; y++) {
    auto* row = image.At<int16_t>(0, y);
    for (int32_t x = 0; x < 40000; x++) row[x] = static_cast<int16_t>(-32767 + (x * 7 + y) % 64);
  }
  Check(image, nullptr, 100, -40000, 100);
}

TEST(Histogram, RangeOfZeroAndZeroIsTheWholeByteRange) {
  TestImage image(IMAGE_U8, 3, 1);
  image.Set<uint8_t>(0, 0, 0);
  image.Set<uint8_t>(1, 0, 4);
  image.Set<uint8_t>(2, 0, 255);
  HistogramReport report{};
  uint32_t counters[256];
  ASSERT_EQ(ZEL_Histogram(image, 0, 256, 0, 0, counters, &report), 0);
  EXPECT_EQ(report.nbPixels, 3u);
  EXPECT_EQ(counters[0] + counters[4] + counters[255], 3u);

  ASSERT_EQ(ZEL_Histogram(image, 0, 256, 5, 0, counters, &report), 0);
  EXPECT_EQ(report.nbPixels, 1u);
  EXPECT_EQ(report.start, 5.0f);
  EXPECT_EQ(report.interval, 251.0f / 256.0f);
}

TEST(Histogram, RangeFromFiveToZeroOnWordsIsEmpty) {
  const TestImage image(IMAGE_I16, 20, 4);
  std::vector<uint32_t> counters(16, UNTOUCHED);
  HistogramReport report{1, 1, 1, 1, 1, 1, 1};
  ASSERT_EQ(ZEL_Histogram(image, 0, 16, 5, 0, counters.data(), &report), 0);
  EXPECT_EQ(counters, std::vector<uint32_t>(16, 0));
  ExpectSameReport(report, {});
}

TEST(Histogram, ThreeHundredClassesOfBytesAreTwoHundredFiftySix) {
  const TestImage image(IMAGE_U8, 50, 4);
  std::vector<uint32_t> counters(300, UNTOUCHED);
  HistogramReport report{};
  ASSERT_EQ(ZEL_Histogram(image, 0, 300, 0, 255, counters.data(), &report), 0);
  EXPECT_EQ(report.interval, 1.0f);
  uint32_t total = 0;
  for (size_t i = 0; i < 256; i++) total += counters[i];
  EXPECT_EQ(total, 200u);
  for (size_t i = 256; i < 300; i++) EXPECT_EQ(counters[i], UNTOUCHED);
}

TEST(Histogram, OneClassTakesEveryPixelAndIsEndlesslyWide) {
  const TestImage image(IMAGE_SGL, 30, 3);
  uint32_t counter = 0;
  HistogramReport report{};
  ASSERT_EQ(ZEL_Histogram(image, 0, 1, 0, 0, &counter, &report), 0);
  EXPECT_EQ(counter, 90u);
  EXPECT_EQ(report.interval, 1e38f);
}

TEST(Histogram, PositionOfExactlyAHalfLiesInTheLowerClass) {
  // Four classes over 0..7: scale 0.5, offset -0.25, so value 1.5 is at 0.5 and 3.5 at 1.5.
  const TestImage image(IMAGE_SGL, 4, 1);
  const float values[] = {0.0f, 1.5f, 3.5f, 7.0f};
  for (int32_t x = 0; x < 4; x++) image.Set<float>(x, 0, values[x]);
  uint32_t counters[4];
  ASSERT_EQ(ZEL_Histogram(image, 0, 4, 0, 7, counters, nullptr), 0);
  EXPECT_EQ(counters[0], 2u);
  EXPECT_EQ(counters[1], 1u);
  EXPECT_EQ(counters[2], 0u);
  EXPECT_EQ(counters[3], 1u);
}

TEST(Histogram, NanAndInfinitePixelsCountOnlyWhereTheRangeHoldsThem) {
  const TestImage image(IMAGE_SGL, 9, 2);
  for (int32_t x = 0; x < 9; x++) {
    image.Set<float>(x, 0, NAN);
    image.Set<float>(x, 1, static_cast<float>(x));
  }
  image.Set<float>(3, 1, INFINITY);
  image.Set<float>(4, 1, -INFINITY);
  image.Set<float>(5, 1, 3e38f);
  for (const auto& [min, max] : {std::pair{0.0f, 0.0f},
                                 {-0.0f, 0.0f},
                                 {0.0f, 7.0f},
                                 {-INFINITY, INFINITY},
                                 {0.0f, INFINITY},
                                 {NAN, 7.0f},
                                 {0.0f, NAN},
                                 {2e38f, 3.3e38f}}) {
    Check(image, nullptr, 5, min, max);
  }
}

TEST(Histogram, ExtremesOfZeroKeepTheSignOfTheFirstZero) {
  const TestImage image(IMAGE_SGL, 40, 3);
  for (const bool negativeFirst : {false, true}) {
    for (int32_t y = 0; y < 3; y++) {
      for (int32_t x = 0; x < 40; x++) image.Set<float>(x, y, (x & 1) != 0 ? 0.0f : -0.0f);
    }
    image.Set<float>(0, 0, 5.0f);
    image.Set<float>(1, 0, negativeFirst ? -0.0f : 0.0f);
    image.Set<float>(2, 0, negativeFirst ? 0.0f : -0.0f);
    Check(image, nullptr, 4, -1, 6);
    image.Set<float>(0, 0, -5.0f);
    Check(image, nullptr, 4, -6, 6);
  }
}

TEST(Histogram, NothingCountedGivesAReportOfZeros) {
  const TestImage image(IMAGE_U8, 8, 8);
  const TestImage farAway = SparseMask(4, 4, 100, 100, 1);
  Check(image, &farAway, 256, 0, 0);
  Check(image, &farAway, 10, 0, 0);
  const TestImage words(IMAGE_I16, 8, 8);
  Check(words, &farAway, 10, 0, 0);
  const TestImage empty(IMAGE_SGL, 0, 0);
  Check(empty, nullptr, 10, 0, 0);
}

TEST(Histogram, MaskThatIsTheImageIsNoMask) {
  const TestImage image(IMAGE_I16, 20, 4);
  HistogramReport report{};
  ASSERT_EQ(ZEL_Histogram(image, image, 8, 0, 0, nullptr, &report), 0);
  EXPECT_EQ(report.nbPixels, 80u);
}

TEST(Histogram, CallersArrayOfNoClassIsTooSmall) {
  const TestImage image(IMAGE_U8, 4, 4);
  uint32_t counter = UNTOUCHED;
  HistogramReport report{9, 9, 9, 9, 9, 9, 9};
  EXPECT_EQ(ZEL_Histogram(image, 0, 0, 0, 0, &counter, &report), -102);
  EXPECT_EQ(ZEL_Histogram(image, 0, INT32_MIN, 0, 0, &counter, &report), -102);
  EXPECT_EQ(counter, UNTOUCHED);
  EXPECT_EQ(report.nbPixels, 9u);
  EXPECT_EQ(ZEL_Histogram(image, 0, 0, 0, 0, nullptr, &report), 0);
  EXPECT_EQ(report.nbPixels, 16u);
  std::vector<uint32_t> most(4096);
  EXPECT_EQ(ZEL_Histogram(image, 0, INT32_MAX, 0, 0, most.data(), &report), 0);
}

TEST(Histogram, WrongImagesAndMasksAreRefusedInOrder) {
  const TestImage image(IMAGE_U8, 4, 4);
  const TestImage colour(IMAGE_RGB, 4, 4);
  uint32_t counter = UNTOUCHED;
  EXPECT_EQ(ZEL_Histogram(999, 998, 0, 0, 0, &counter, nullptr), -200);
  EXPECT_EQ(ZEL_Histogram(0, 0, 1, 0, 0, &counter, nullptr), -200);
  EXPECT_EQ(ZEL_Histogram(colour, 999, 0, 0, 0, &counter, nullptr), -200);
  EXPECT_EQ(ZEL_Histogram(image, colour, 0, 0, 0, &counter, nullptr), -301);
  EXPECT_EQ(ZEL_Histogram(colour, 0, 0, 0, 0, &counter, nullptr), -301);
  EXPECT_EQ(counter, UNTOUCHED);
  char name[256];
  ZEL_GetLastError(name);
  EXPECT_STREQ(name, "ZEL_Histogram");
}

TEST(HistogramPixels, MinMaxFollowsTheRuleForAllTypesSizesAndMasks) {
  for (const int32_t type : {IMAGE_U8, IMAGE_I16, IMAGE_SGL}) {
    for (const auto& [width, height] : test::ODD_SIZES) {
      for (uint64_t seed = 1; seed < 6; seed++) {
        const TestImage image(type, width, height, 1, seed);
        const TestImage mask = SparseMask(width, height, 1, -1, seed);
        for (const TestImage* placed : {static_cast<const TestImage*>(nullptr), &mask}) {
          double low = type == IMAGE_U8 ? 255 : type == IMAGE_I16 ? 2147483648.0 : 1e38;
          double high = type == IMAGE_U8 ? 0 : -low;
          for (const double value : test::SelectedValues(image, placed)) {
            if (value < low) low = value;
            if (value > high) high = value;
          }
          zel::Region region{};
          const ImageRef placedMask = placed ? static_cast<ImageRef>(mask) : 0;
          ASSERT_EQ(zel::RegionOf(image, placedMask, &region), 0);
          float min = NAN;
          float max = NAN;
          ASSERT_EQ(zel::ImageMinMax(region, &min, &max), 0);
          ASSERT_EQ(min, static_cast<float>(low)) << width << " x " << height << " type " << type;
          ASSERT_EQ(max, static_cast<float>(high)) << width << " x " << height << " type " << type;
        }
      }
    }
  }
}

TEST(HistogramPixels, FloatsOfWideRowsFollowTheRuleInAnyRange) {
  test::Random random(5);
  for (const int32_t width : {256, 300, 1025, 2200}) {
    const TestImage image(IMAGE_SGL, width, 9, 1, static_cast<uint64_t>(width));
    const TestImage mask = SparseMask(width + 9, 9, -4, 1, 8);
    for (int32_t y = 0; y < 9; y++) {
      for (int32_t x = 0; x < width; x += 7) {
        image.Set<float>(x, y,
                         random.Float(-1.0f, 1.0f) * std::ldexp(1.0f, random.Between(-30, 5)));
      }
    }
    for (const auto& [min, max] : {std::pair{0.0f, 0.0f}, {-50.0f, 70.5f}, {-0.5f, 0.5f}}) {
      for (const int32_t classes : {1, 2, 3, 100, 256, 4096}) {
        Check(image, nullptr, classes, min, max);
        Check(image, &mask, classes, min, max);
      }
    }
  }
}

TEST(MinMax, LeavesNanOut) {
  const TestImage image(IMAGE_SGL, 70, 2);
  for (int32_t y = 0; y < 2; y++) {
    for (int32_t x = 0; x < 70; x++) image.Set<float>(x, y, NAN);
  }
  zel::Region region{};
  ASSERT_EQ(zel::RegionOf(image, 0, &region), 0);
  float min = 0;
  float max = 0;
  EXPECT_EQ(zel::ImageMinMax(region, &min, &max), 0);
  EXPECT_EQ(min, 1e38f);
  EXPECT_EQ(max, -1e38f);
  image.Set<float>(33, 1, 3.5f);
  image.Set<float>(69, 1, -2.0f);
  EXPECT_EQ(zel::ImageMinMax(region, &min, &max), 0);
  EXPECT_EQ(min, -2.0f);
  EXPECT_EQ(max, 3.5f);
}

TEST(MinMax, RefusesOtherTypes) {
  for (const int32_t type : {IMAGE_COMPLEX, IMAGE_RGB}) {
    const TestImage image(type, 4, 4);
    zel::Region region{};
    ASSERT_EQ(zel::RegionOf(image, 0, &region), 0);
    float min = 7;
    float max = 7;
    EXPECT_EQ(zel::ImageMinMax(region, &min, &max), 302);
    EXPECT_EQ(min, 7.0f);
  }
}

}  // namespace
