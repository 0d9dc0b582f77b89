#include "statistics/line_profile.h"

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "harness/test_image.h"

namespace {

using test::TestImage;

// Statistics by the stated roundings over samples that ZEL_GetLine gives.
LineProfileReport Reference(const TestImage& image, const std::vector<float>& samples) {
  LineProfileReport report{};
  report.nbPixels = static_cast<int32_t>(samples.size());
  report.min = 1e38f;
  report.max = -1e38f;
  uint32_t whole = 0;
  volatile float sum = 0;
  volatile float squares = 0;
  for (const float sample : samples) {
    const double value = static_cast<double>(sample);
    if (image.Info().type == IMAGE_U8) whole += static_cast<uint32_t>(sample);
    sum = static_cast<float>(static_cast<double>(sum) + value);
    squares = static_cast<float>(static_cast<double>(squares) + value * value);
    if (sample < report.min) report.min = sample;
    if (sample > report.max) report.max = sample;
  }
  const auto count = static_cast<float>(samples.size());
  volatile float mean =
      (image.Info().type == IMAGE_U8 ? static_cast<float>(whole) : static_cast<float>(sum)) / count;
  volatile float mean2 = mean * mean;
  volatile float quotient = squares / count;
  volatile float variance = quotient - mean2;
  report.mean = mean;
  report.stdDev = variance < 0 ? 0.0f : std::sqrt(static_cast<float>(variance));
  return report;
}

TEST(LineProfile, SamplesAndStatisticsFollowTheRule) {
  test::Random random(4);
  for (const int32_t type : {IMAGE_U8, IMAGE_I16, IMAGE_SGL}) {
    const TestImage image(type, 2000, 40, 2, 8);
    for (int32_t i = 0; i < 200; i++) {
      const int32_t x0 = random.Between(-100, 2100);
      const int32_t y0 = random.Between(-10, 50);
      const int32_t x1 = random.Between(-100, 2100);
      const int32_t y1 = random.Between(-10, 50);
      std::vector<float> line(3000);
      int32_t count = -1;
      ASSERT_EQ(ZEL_GetLine(image, x0, y0, x1, y1, ARRAY_SGL, line.data(), &count), 0);
      line.resize(static_cast<size_t>(count));

      std::vector<float> profile(3000, -9999.0f);
      int32_t samples = -1;
      LineProfileReport report{};
      ASSERT_EQ(
          ZEL_LineProfile(image, x0, y0, x1, y1, ARRAY_SGL, profile.data(), &samples, &report), 0);
      ASSERT_EQ(samples, count);
      EXPECT_EQ(profile[line.size()], -9999.0f);
      profile.resize(line.size());
      EXPECT_EQ(profile, line);
      ASSERT_EQ(report.nbPixels, count);
      if (count == 0) continue;
      const LineProfileReport expected = Reference(image, line);
      EXPECT_EQ(report.min, expected.min);
      EXPECT_EQ(report.max, expected.max);
      EXPECT_EQ(report.mean, expected.mean);
      EXPECT_EQ(report.stdDev, expected.stdDev);
      float first = 0;
      float last = 0;
      ZEL_GetPixelValue(image, report.startX, report.startY, &first);
      ZEL_GetPixelValue(image, report.endX, report.endY, &last);
      EXPECT_EQ(line.front(), first);
      EXPECT_EQ(line.back(), last);
      EXPECT_EQ(
          std::max(std::abs(report.endX - report.startX), std::abs(report.endY - report.startY)) +
              1,
          count);
    }
  }
}

TEST(LineProfile, LineOfOnePointHasOneSample) {
  const TestImage image(IMAGE_I16, 10, 10);
  image.Set<int16_t>(4, 5, -77);
  int32_t samples = 0;
  int32_t profile[2] = {1, 1};
  LineProfileReport report{};
  ASSERT_EQ(ZEL_LineProfile(image, 4, 5, 4, 5, ARRAY_I32, profile, &samples, &report), 0);
  EXPECT_EQ(samples, 1);
  EXPECT_EQ(profile[0], -77);
  EXPECT_EQ(profile[1], 1);
  EXPECT_EQ(report.mean, -77.0f);
  EXPECT_EQ(report.stdDev, 0.0f);
  EXPECT_EQ(report.startX, 4);
  EXPECT_EQ(report.endY, 5);
}

TEST(LineProfile, LineOutsideAnyImageGivesZeros) {
  const TestImage empty(IMAGE_U8, 0, 0, 3);
  for (const int32_t type : {IMAGE_U8, IMAGE_RGB, IMAGE_COMPLEX}) {
    const TestImage image(type, 10, 10);
    for (const ImageRef reference : {static_cast<ImageRef>(image), static_cast<ImageRef>(empty)}) {
      int32_t samples = 7;
      float profile[1] = {7};
      LineProfileReport report{1, 1, 1, 1, 1, 1, 1, 1, 1};
      ASSERT_EQ(ZEL_LineProfile(reference, -1, -1, -9, 9, ARRAY_SGL, profile, &samples, &report),
                0);
      EXPECT_EQ(samples, 0);
      EXPECT_EQ(profile[0], 7.0f);
      EXPECT_EQ(report.nbPixels, 0);
      EXPECT_EQ(report.startX, 0);
      EXPECT_EQ(report.endY, 0);
      EXPECT_EQ(report.min, 0.0f);
      EXPECT_EQ(report.stdDev, 0.0f);
    }
  }
}

TEST(LineProfile, ConstantLineHasNoDeviation) {
  const TestImage image(IMAGE_U8, 640, 1);
  for (int32_t x = 0; x < 640; x++) image.Set<uint8_t>(x, 0, 255);
  LineProfileReport report{};
  ASSERT_EQ(ZEL_LineProfile(image, 0, 0, 639, 0, ARRAY_SGL, nullptr, nullptr, &report), 0);
  EXPECT_EQ(report.stdDev, 0.0f);
  EXPECT_EQ(report.mean, 255.0f);
}

TEST(LineProfile, UnknownArrayTypeConvertsNothing) {
  const TestImage image(IMAGE_U8, 10, 10);
  int32_t samples = 0;
  float profile[10] = {7};
  ASSERT_EQ(ZEL_LineProfile(image, 0, 0, 9, 0, 5, profile, &samples, nullptr), 0);
  EXPECT_EQ(samples, 10);
  EXPECT_EQ(profile[0], 7.0f);
}

TEST(LineProfile, WrongImagesLeaveTheOutputsAlone) {
  const TestImage colour(IMAGE_RGB, 10, 10);
  int32_t samples = 7;
  float profile[10] = {7};
  LineProfileReport report{};
  report.nbPixels = 7;
  EXPECT_EQ(ZEL_LineProfile(999, 0, 0, 9, 0, ARRAY_SGL, profile, &samples, &report), -200);
  EXPECT_EQ(ZEL_LineProfile(colour, 0, 0, 9, 0, ARRAY_SGL, profile, &samples, &report), -301);
  EXPECT_EQ(samples, 7);
  EXPECT_EQ(report.nbPixels, 7);
  EXPECT_EQ(profile[0], 7.0f);
}

TEST(LineProfile, KernelSizesTheProfileBeforeItRefusesAType) {
  const TestImage colour(IMAGE_RGB, 10, 10);
  zel::ScopedVector vector;
  ASSERT_EQ(vector.Create(), 0);
  zel::LineProfileResult result{vector.handle(), {}};
  const zel::KernelRect line{0, 0, 9, 0};
  EXPECT_EQ(zel::LineProfileKernel(colour, &line, &result), 301);
  uint32_t count = 0;
  ASSERT_EQ(zel::VectorCount(vector.handle(), &count), 0);
  EXPECT_EQ(count, 10u);
}

}  // namespace
