// Equalisation, against a reference that walks levels and pixels by the rule.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <vector>

#include "point/lookup_test.h"
#include "statistics/histogram_test.h"
#include "tests/support/refused_memory.h"

namespace {

using test::PixelOf;
using test::Random;
using test::Selects;
using test::TestImage;

using Histogram = test::CountedHistogram;

Histogram HistogramOf(const TestImage& image, const TestImage* mask) {
  return test::HistogramByRule(image, mask, 256, 0.0f, 0.0f);
}

size_t ClassOf(const Histogram& histogram, double value) {
  const double position = (value - static_cast<double>(histogram.report.start)) /
                          static_cast<double>(histogram.report.interval);
  const auto last = static_cast<double>(histogram.counters.size() - 1);
  if (std::isnan(position) || position < 0) return 0;
  return static_cast<size_t>(std::floor(std::min(position, last)));
}

TestImage Expected(const TestImage& source, const TestImage* mask, const Histogram& histogram,
                   float rangeMin, float rangeMax) {
  const ImageInfo info = source.Info();
  const test::Stretch stretch = test::StretchOf(source, mask, rangeMin, rangeMax);
  rangeMin = stretch.rangeMin;
  rangeMax = stretch.rangeMax;
  const auto low = static_cast<double>(stretch.low);
  const auto high = static_cast<double>(stretch.high);
  const auto limited = [&](double value) {
    if (std::isnan(value)) return low;
    return value < low ? low : value > high ? high : value;
  };

  const size_t b0 = ClassOf(histogram, static_cast<double>(rangeMin));
  const size_t b1 = ClassOf(histogram, static_cast<double>(rangeMax));
  double total = 0.0;
  for (size_t b = b0; b <= b1; b++) total += histogram.counters[b];
  const double scale = (high - low) / (total - histogram.counters[b0]);
  const double offset = -(histogram.counters[b0] * scale);

  // Levels from -32768 on for integers, classes for floats.
  std::vector<double> levels(65536 + 32768, 0.0);
  std::vector<double> classes(histogram.counters.size(), 0.0);
  if (info.type == IMAGE_SGL) {
    double c = 0.0;
    for (size_t b = b0; b <= b1; b++) {
      c += histogram.counters[b];
      classes[b] = static_cast<double>(static_cast<float>(limited((c * scale + offset) + low)));
    }
  } else if (static_cast<double>(rangeMin) < 70000.0) {
    double c = 0.0;
    double former = 0.0;
    int64_t formerClass = -1;
    for (auto v = static_cast<int32_t>(rangeMin); v <= static_cast<double>(rangeMax); v++) {
      const size_t b = ClassOf(histogram, v);
      if (static_cast<int64_t>(b) != formerClass) {
        c += histogram.counters[b];
        former = std::trunc(limited(((c * scale + offset) + low) + 0.5));
        formerClass = static_cast<int64_t>(b);
      }
      levels[static_cast<size_t>(v + 32768)] = former;
    }
  }

  TestImage expected(info.type, info.width, info.height);
  for (int32_t y = 0; y < info.height; y++) {
    const test::Row to(expected, info.type, y);
    for (int32_t x = 0; x < info.width; x++) {
      double value = PixelOf(source, x, y);
      if (Selects(mask, x, y)) {
        if (info.type == IMAGE_SGL) {
          const bool inside =
              value >= static_cast<double>(rangeMin) && value <= static_cast<double>(rangeMax);
          value = inside ? classes[ClassOf(histogram, value)] : 0.0;
        } else {
          value = levels[static_cast<size_t>(value + 32768)];
        }
      }
      to.Set(x, value);
    }
  }
  return expected;
}

TEST(EqualizePixels, SpreadsTheLevelsByTheHistogram) {
  const std::vector<std::pair<float, float>> ranges = {
      {0.0f, 0.0f},         {10.5f, 200.9f}, {-100.0f, 50.0f}, {100.0f, 20.0f},
      {5000.0f, 6000.0f},   {NAN, 100.0f},   {20.0f, NAN},     {-INFINITY, INFINITY},
      {INFINITY, INFINITY}, {0.0f, 30.0f}};
  for (const int32_t type : {IMAGE_U8, IMAGE_I16, IMAGE_SGL}) {
    for (const auto& [width, height] : test::ODD_SIZES) {
      for (const auto& [rangeMin, rangeMax] : ranges) {
        const TestImage source(type, width, height, 2, 5);
        const Histogram histogram = HistogramOf(source, nullptr);
        const TestImage expected = Expected(source, nullptr, histogram, rangeMin, rangeMax);
        const TestImage destination(type, 3, 3, 1);
        ASSERT_EQ(ZEL_Equalize(source, 0, destination, nullptr, 0, nullptr, rangeMin, rangeMax), 0);
        ASSERT_EQ(PixelDifference(destination, expected), "")
            << "type " << type << " from " << rangeMin << " to " << rangeMax;
        const std::vector<uint8_t> around = source.Surroundings();
        ASSERT_EQ(
            ZEL_Equalize(source, source, 0, nullptr, 7, &histogram.report, rangeMin, rangeMax), 0)
            << "a report alone is not used";
        ASSERT_EQ(PixelDifference(source, expected), "");
        ASSERT_EQ(source.Surroundings(), around);
      }
    }
  }
}

TEST(EqualizePixels, HistogramAndExtremesGoByTheMask) {
  for (const int32_t type : {IMAGE_U8, IMAGE_I16, IMAGE_SGL}) {
    for (const int32_t offset : {0, 4, -6, 900}) {
      const TestImage mask = test::SparseMask(50, 6, offset, 1, 31);
      const TestImage source(type, 44, 5, 2, 9);
      const Histogram histogram = HistogramOf(source, &mask);
      const TestImage expected = Expected(source, &mask, histogram, 0.0f, 0.0f);
      const TestImage destination(type, 3, 3, 1);
      ASSERT_EQ(ZEL_Equalize(source, mask, destination, nullptr, 0, nullptr, 0.0f, 0.0f), 0);
      ASSERT_EQ(PixelDifference(destination, expected), "") << "type " << type;
      if (type == IMAGE_U8) {
        ASSERT_EQ(ZEL_Equalize(source, mask, mask, nullptr, 0, nullptr, 0.0f, 0.0f), 0);
        ASSERT_EQ(PixelDifference(mask, expected), "");
      }
    }
  }
}

TEST(EqualizePixels, TakesAGivenHistogramOfAnyShape) {
  Random random(6);
  for (const int32_t type : {IMAGE_U8, IMAGE_I16, IMAGE_SGL}) {
    for (int32_t round = 0; round < 60; round++) {
      const TestImage source(type, 37, 4, 1, static_cast<uint64_t>(round + 1));
      Histogram histogram{std::vector<uint32_t>(static_cast<size_t>(random.Between(1, 400))), {}};
      for (uint32_t& count : histogram.counters) {
        count = (random.Next() & 1) != 0 ? random.Next() >> (random.Next() & 31) : 0;
      }
      histogram.report.start = random.Float(-300.0f, 300.0f);
      histogram.report.interval = random.Float(-1.0f, 4.0f);
      if (round == 1) histogram.report.interval = 0.0f;
      if (round == 2) histogram.report.interval = NAN;
      if (round == 3) histogram.report.interval = 1e38f;
      if (round == 4) histogram.report.start = INFINITY;
      if (round == 5) histogram.report.start = NAN;
      if (round == 6) histogram.report.interval = 1e-38f;
      const float rangeMin = round % 2 == 0 ? 0.0f : random.Float(-100.0f, 200.0f);
      const float rangeMax = round % 2 == 0 ? 0.0f : random.Float(0.0f, 300.0f);
      const TestImage expected = Expected(source, nullptr, histogram, rangeMin, rangeMax);
      const std::vector<uint32_t> before = histogram.counters;
      ASSERT_EQ(ZEL_Equalize(source, 0, 0, histogram.counters.data(),
                             static_cast<int32_t>(histogram.counters.size()), &histogram.report,
                             rangeMin, rangeMax),
                0);
      ASSERT_EQ(PixelDifference(source, expected), "") << "type " << type << " round " << round;
      ASSERT_EQ(histogram.counters, before);
    }
  }
}

TEST(Equalize, FloatsKeepInvalidPixelsOut) {
  const TestImage image(IMAGE_SGL, 5, 1);
  const float pixels[] = {1.0f, NAN, 2.0f, 3.0f, 3.0f};
  for (int32_t x = 0; x < 5; x++) image.Set(x, 0, pixels[x]);
  const Histogram histogram = HistogramOf(image, nullptr);
  const TestImage expected = Expected(image, nullptr, histogram, 0.0f, 0.0f);
  ASSERT_EQ(ZEL_Equalize(image, 0, 0, nullptr, 0, nullptr, 0.0f, 0.0f), 0);
  EXPECT_EQ(PixelDifference(image, expected), "");
  EXPECT_EQ(image.Get<float>(1, 0), 0.0f);
}

TEST(Equalize, ImagesOfOneLevel) {
  const auto equalized = [](uint8_t level) {
    const TestImage image(IMAGE_U8, 9, 2);
    for (int32_t i = 0; i < 18; i++) image.Set(i % 9, i / 9, level);
    EXPECT_EQ(ZEL_Equalize(image, 0, 0, nullptr, 0, nullptr, 0.0f, 0.0f), 0);
    return image.Get<uint8_t>(4, 1);
  };
  EXPECT_EQ(equalized(0), 0);
  EXPECT_EQ(equalized(1), 255);
  EXPECT_EQ(equalized(200), 255);

  const TestImage words(IMAGE_I16, 3, 1);
  for (int32_t x = 0; x < 3; x++) words.Set<int16_t>(x, 0, -5);
  ASSERT_EQ(ZEL_Equalize(words, 0, 0, nullptr, 0, nullptr, 0.0f, 0.0f), 0);
  EXPECT_EQ(words.Get<int16_t>(1, 0), -5);
  const TestImage floats(IMAGE_SGL, 3, 1);
  for (int32_t x = 0; x < 3; x++) floats.Set(x, 0, 7.25f);
  ASSERT_EQ(ZEL_Equalize(floats, 0, 0, nullptr, 0, nullptr, 0.0f, 0.0f), 0);
  EXPECT_EQ(floats.Get<float>(1, 0), 7.25f);
}

TEST(Equalize, EmptyImagesAndMasksThatSelectNothingSucceed) {
  for (const int32_t type : {IMAGE_U8, IMAGE_I16, IMAGE_SGL}) {
    const TestImage empty(type, 0, 0, 2);
    const TestImage destination(type, 4, 4);
    ASSERT_EQ(ZEL_Equalize(empty, 0, destination, nullptr, 0, nullptr, 0.0f, 0.0f), 0);
    EXPECT_EQ(destination.width(), 0);
    const TestImage source(type, 12, 3, 0, 9);
    ZEL_SetImageCalibration(source, 3, 5.0f, 6.0f);
    const TestImage mask(IMAGE_U8, 12, 3);
    for (int32_t i = 0; i < 36; i++) mask.Set<uint8_t>(i % 12, i / 12, 0);
    ASSERT_EQ(ZEL_Equalize(source, mask, destination, nullptr, 0, nullptr, 0.0f, 0.0f), 0);
    EXPECT_EQ(PixelDifference(destination, source), "");
    EXPECT_EQ(destination.Info().xStep, 5.0f);
  }
}

TEST(Equalize, FailuresLeaveTheImagesAlone) {
  const TestImage bytes(IMAGE_U8, 8, 4);
  const TestImage floats(IMAGE_SGL, 3, 3);
  const TestImage colour(IMAGE_RGB, 3, 3);
  const std::vector<uint8_t> bytesBefore = bytes.Block();
  const std::vector<uint8_t> floatsBefore = floats.Block();
  const uint32_t counts[1] = {3};
  const HistogramReport report{};
  const auto equalize = [&](ImageRef source, ImageRef mask, ImageRef destination) {
    const int32_t own = ZEL_Equalize(source, mask, destination, nullptr, 0, nullptr, 0.0f, 0.0f);
    EXPECT_EQ(ZEL_Equalize(source, mask, destination, counts, 1, &report, 0.0f, 0.0f), own);
    return own;
  };
  EXPECT_EQ(equalize(0, 0, 0), -200);
  EXPECT_EQ(equalize(99999, 0, 0), -200);
  EXPECT_EQ(equalize(bytes, 0, 99999), -200);
  EXPECT_EQ(equalize(bytes, 99999, 0), -200);
  EXPECT_EQ(equalize(colour, 0, 0), -301);
  EXPECT_EQ(equalize(bytes, floats, 0), -301);
  EXPECT_EQ(equalize(bytes, 0, floats), -304);
  for (const int32_t count : {0, -1, INT32_MIN}) {
    EXPECT_EQ(ZEL_Equalize(bytes, 0, 0, counts, count, &report, 0.0f, 0.0f), -102);
  }
  char name[256];
  EXPECT_EQ(ZEL_GetLastError(name), -102);
  EXPECT_STREQ(name, "ZEL_Equalize");
  EXPECT_EQ(bytes.Block(), bytesBefore);
  EXPECT_EQ(floats.Block(), floatsBefore);
}

TEST(Equalize, EveryRefusedAllocationIsToldOrMakesNoDifference) {
  for (const int32_t type : {IMAGE_U8, IMAGE_I16, IMAGE_SGL}) {
    const TestImage source(type, 30, 4, 1);
    const std::vector<uint8_t> before = source.Block();
    const TestImage expected = Expected(source, nullptr, HistogramOf(source, nullptr), 0.0f, 0.0f);
    TestImage destination;
    test::RefuseEachAllocation(
        [&] { destination = TestImage(type, 1, 1); },
        [&] {
          const int32_t result =
              ZEL_Equalize(source, 0, destination, nullptr, 0, nullptr, 0.0f, 0.0f);
          EXPECT_EQ(source.Block(), before);
          EXPECT_TRUE(result != 0 || PixelDifference(destination, expected).empty());
          return result;
        });
  }
}

}  // namespace
