// Histograms of colour images, against counting pixel by pixel.
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <vector>

#include "colour/colour_test.h"
#include "tests/support/refused_memory.h"
#include "tests/support/walks.h"

namespace {

using test::Color;
using test::ColorImage;
using test::TestImage;

struct Counted {
  std::vector<uint32_t> histograms[3];
  ColorHistogramReport reports[3];
};

// One counter more than there are classes, which must stay.
Counted Count(const TestImage& image, ImageRef mask, int32_t classes, int32_t mode) {
  Counted counted{};
  const auto held = static_cast<size_t>(classes < 1 ? 1 : classes > 256 ? 256 : classes);
  for (auto& histogram : counted.histograms) histogram.assign(held + 1, 77);
  EXPECT_EQ(ZEL_ColorHistogram(image, mask, classes, mode, counted.histograms[0].data(),
                               counted.histograms[1].data(), counted.histograms[2].data(),
                               &counted.reports[0], &counted.reports[1], &counted.reports[2]),
            0);
  return counted;
}

Counted Expected(const TestImage& image, const TestImage* mask, int32_t classes, int32_t mode) {
  std::vector<uint32_t> levels[3];
  uint32_t total = 0;
  for (auto& plane : levels) plane.assign(256, 0);
  for (int32_t y = 0; y < image.height(); y++) {
    for (int32_t x = 0; x < image.width(); x++) {
      if (!test::Selects(mask, x, y)) continue;
      total++;
      const Color color = test::StatedComponents(image.Get<RGBValue>(x, y), mode);
      for (size_t p = 0; p < 3; p++) levels[p][static_cast<size_t>(color[p])]++;
    }
  }
  Counted expected{};
  const int32_t used = classes < 1 ? 1 : classes > 256 ? 256 : classes;
  for (size_t p = 0; p < 3; p++) {
    expected.histograms[p].assign(static_cast<size_t>(used) + 1, 0);
    expected.histograms[p].back() = 77;
    if (total == 0) continue;
    ColorHistogramReport& report = expected.reports[p];
    report.width = 256.0f / static_cast<float>(used);
    report.area = static_cast<int32_t>(total);
    report.min = 1000;
    float sum = 0;
    float squares = 0;
    for (int32_t level = 0; level < 256; level++) {
      const uint32_t count = levels[p][static_cast<size_t>(level)];
      int32_t place = static_cast<int32_t>(static_cast<float>(level) / report.width);
      if (place > used - 1) place = used - 1;
      expected.histograms[p][static_cast<size_t>(place)] += count;
      sum = static_cast<float>(static_cast<double>(sum) + double{1} * level * count);
      squares =
          static_cast<float>(static_cast<double>(squares) + double{1} * level * level * count);
      if (count == 0) continue;
      if (report.min > 255) report.min = static_cast<float>(level);
      report.max = static_cast<float>(level);
    }
    report.mean = static_cast<float>(static_cast<double>(sum) / total);
    const auto mean = static_cast<double>(report.mean);
    const double variance = static_cast<double>(squares) / total - mean * mean;
    report.stdDev = variance < 0 ? 0.0f : static_cast<float>(std::sqrt(variance));
  }
  return expected;
}

void ExpectSame(const Counted& actual, const Counted& expected) {
  for (size_t p = 0; p < 3; p++) {
    ASSERT_EQ(actual.histograms[p], expected.histograms[p]) << "plane " << p;
    const ColorHistogramReport& a = actual.reports[p];
    const ColorHistogramReport& b = expected.reports[p];
    ASSERT_EQ(std::memcmp(&a, &b, sizeof a), 0)
        << "plane " << p << ": " << a.min << ' ' << a.max << ' ' << a.start << ' ' << a.width << ' '
        << a.mean << ' ' << a.stdDev << ' ' << a.area << "; expected " << b.min << ' ' << b.max
        << ' ' << b.start << ' ' << b.width << ' ' << b.mean << ' ' << b.stdDev << ' ' << b.area;
  }
}

TEST(ColorHistogram, CountsEveryPixel) {
  for (const int32_t workers : {1, 3}) {
    const test::Workers some(workers);
    for (const auto& [width, height] : test::ODD_SIZES) {
      const TestImage image = ColorImage(width, height, 2, 7);
      const std::vector<uint8_t> before = image.Block();
      for (const int32_t mode : {MODE_RGB, MODE_HSL, MODE_HSV}) {
        for (const int32_t classes : {256, 1, 14, 100, 255, 0, -5, 1000}) {
          ExpectSame(Count(image, 0, classes, mode), Expected(image, nullptr, classes, mode));
        }
      }
      ASSERT_EQ(image.Block(), before);
    }
  }
}

TEST(ColorHistogram, CountsPixelsUnderAMask) {
  for (const auto& [width, height] : test::ODD_SIZES) {
    const TestImage image = ColorImage(width, height, 2, 7);
    for (const auto& [x, y] : std::vector<std::pair<int32_t, int32_t>>{
             {0, 0}, {3, 1}, {-5, -1}, {1000, 0}, {INT32_MIN, 0}}) {
      const TestImage mask = test::SparseMask(width + 2, 3, x, y, 31);
      ExpectSame(Count(image, mask, 256, MODE_HSL), Expected(image, &mask, 256, MODE_HSL));
      ExpectSame(Count(image, mask, 20, MODE_RGB), Expected(image, &mask, 20, MODE_RGB));
    }
  }
}

// The classes of 32-bit quotients: the first that differs from whole numbers.
TEST(ColorHistogram, Level128OfFourteenClassesIsInTheSixth) {
  const TestImage image(IMAGE_RGB, 1, 1);
  image.Set<RGBValue>(0, 0, 0x808080);
  const Counted counted = Count(image, 0, 14, MODE_RGB);
  EXPECT_EQ(counted.histograms[0][6], 1u);
  EXPECT_EQ(counted.histograms[0][7], 0u);
}

TEST(ColorHistogram, MasksThatSelectNothingGiveZeros) {
  const TestImage image = ColorImage(9, 5, 2, 7);
  const TestImage zeros(IMAGE_U8, 9, 5);
  ZEL_ClearPixels(zeros);
  const TestImage words(IMAGE_I16, 9, 5);
  Counted none{};
  for (auto& histogram : none.histograms) histogram.assign(257, 0);
  for (auto& histogram : none.histograms) histogram.back() = 77;
  for (const ImageRef mask : {ImageRef{zeros}, ImageRef{words}, ImageRef{image}}) {
    ExpectSame(Count(image, mask, 256, MODE_HSV), none);
  }
  ExpectSame(Count(TestImage(IMAGE_RGB, 0, 0), 0, 256, MODE_RGB), none);
}

TEST(ColorHistogram, UnknownModesCountPixelsOnly) {
  const TestImage image = ColorImage(9, 5, 2, 7);
  for (const int32_t mode : {3, -1}) {
    const Counted counted = Count(image, 0, 8, mode);
    for (size_t p = 0; p < 3; p++) {
      for (size_t c = 0; c < 8; c++) EXPECT_EQ(counted.histograms[p][c], 0u);
      const ColorHistogramReport& report = counted.reports[p];
      EXPECT_EQ(report.area, 45);
      EXPECT_EQ(report.width, 32.0f);
      EXPECT_EQ(report.min, 0.0f);
      EXPECT_EQ(report.max, 0.0f);
      EXPECT_EQ(report.mean, 0.0f);
      EXPECT_EQ(report.stdDev, 0.0f);
    }
  }
}

TEST(ColorHistogram, ResultsThatAreNotWantedMayBeNull) {
  const TestImage image = ColorImage(9, 5, 2, 7);
  EXPECT_EQ(ZEL_ColorHistogram(image, 0, 256, MODE_HSL, nullptr, nullptr, nullptr, nullptr, nullptr,
                               nullptr),
            0);
  ColorHistogramReport report{};
  EXPECT_EQ(ZEL_ColorHistogram(image, 0, 256, MODE_HSL, nullptr, nullptr, nullptr, nullptr, &report,
                               nullptr),
            0);
  EXPECT_EQ(report.mean, Expected(image, nullptr, 256, MODE_HSL).reports[1].mean);
}

TEST(ColorHistogram, FailuresLeaveTheResults) {
  const TestImage image = ColorImage(9, 5, 2, 7);
  const TestImage gray(IMAGE_U8, 9, 5);
  uint32_t counts[256] = {9};
  ColorHistogramReport report{};
  report.min = 5;
  const auto call = [&](ImageRef of, ImageRef mask) {
    return ZEL_ColorHistogram(of, mask, 256, 0, counts, counts, counts, &report, &report, &report);
  };
  EXPECT_EQ(call(99999, 0), ZEL_ERR_BAD_IMAGE);
  EXPECT_EQ(call(gray, 0), ZEL_ERR_BAD_TYPE);
  EXPECT_EQ(call(image, 99999), ZEL_ERR_BAD_IMAGE);
  EXPECT_EQ(counts[0], 9u);
  EXPECT_EQ(report.min, 5.0f);
}

}  // namespace
