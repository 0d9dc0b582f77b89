#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <functional>
#include <vector>

#include "core/heap.h"
#include "harness/test_image.h"

namespace {

using test::TestImage;

struct Sums {
  double sum = 0;
  double squares = 0;
  int64_t count = 0;
  double min = static_cast<double>(1e38f);
  double max = -static_cast<double>(1e38f);
};

struct Expected {
  QuantifyReport global{};
  std::vector<QuantifyReport> regions;
};

QuantifyReport ReportOf(const Sums& sums, const ImageInfo& info) {
  const auto count = static_cast<double>(sums.count);
  QuantifyReport report{};
  report.mean = static_cast<float>(sums.sum / count);
  const double mean = static_cast<double>(report.mean);
  const double variance = sums.squares / count - mean * mean;
  report.stdDev = variance < 0 ? 0.0f : static_cast<float>(std::sqrt(variance));
  report.min = static_cast<float>(sums.min);
  report.max = static_cast<float>(sums.max);
  report.area =
      static_cast<float>(count * static_cast<double>(info.xStep) * static_cast<double>(info.yStep));
  report.nbPixels = static_cast<int32_t>(sums.count);
  report.percent =
      static_cast<float>(count / (static_cast<double>(info.width) * info.height) * 100.0);
  return report;
}

double ValueOf(const void* row, int32_t type, int32_t x) {
  if (type == IMAGE_U8) return static_cast<const uint8_t*>(row)[x];
  if (type == IMAGE_I16) return static_cast<const int16_t*>(row)[x];
  return static_cast<double>(static_cast<const float*>(row)[x]);
}

// Pixel after pixel from the stated rule. Label 0 stands for the image without a mask.
Expected Reference(const TestImage& image, const TestImage* mask) {
  const ImageInfo info = image.Info();
  const ImageInfo placed = mask ? mask->Info() : ImageInfo{};
  std::vector<Sums> labels(256);
  for (int32_t y = 0; y < info.height; y++) {
    const int32_t maskY = y - placed.offsetY;
    if (mask && (maskY < 0 || maskY >= placed.height)) continue;
    const auto* row = image.At<uint8_t>(0, y);
    const auto* maskRow = mask ? mask->At<uint8_t>(0, maskY) : nullptr;
    for (int32_t x = 0; x < info.width; x++) {
      const int32_t maskX = x - placed.offsetX;
      if (mask && (maskX < 0 || maskX >= placed.width || maskRow[maskX] == 0)) continue;
      Sums& sums = labels[mask ? maskRow[maskX] : 0];
      const double value = ValueOf(row, info.type, x);
      sums.sum += value;
      sums.squares += value * value;
      sums.count++;
      if (value < sums.min) sums.min = value;
      if (value > sums.max) sums.max = value;
    }
  }
  Expected expected;
  Sums global;
  for (size_t label = 0; label < 256; label++) {
    const Sums& sums = labels[label];
    if (sums.count == 0) continue;
    if (label > 0) {
      expected.regions.resize(label);
      expected.regions.back() = ReportOf(sums, info);
    }
    global.sum += sums.sum;
    global.squares += sums.squares;
    global.count += sums.count;
    global.min = std::fmin(global.min, sums.min);
    global.max = std::fmax(global.max, sums.max);
  }
  expected.global = ReportOf(global, info);
  return expected;
}

void ExpectSame(const QuantifyReport& actual, const QuantifyReport& expected, const char* which) {
  const auto same = [](float a, float b) { return a == b || (std::isnan(a) && std::isnan(b)); };
  EXPECT_TRUE(same(actual.mean, expected.mean)) << which << actual.mean << " " << expected.mean;
  EXPECT_TRUE(same(actual.stdDev, expected.stdDev))
      << which << actual.stdDev << " " << expected.stdDev;
  EXPECT_EQ(actual.min, expected.min) << which;
  EXPECT_EQ(actual.max, expected.max) << which;
  EXPECT_TRUE(same(actual.area, expected.area)) << which;
  EXPECT_EQ(actual.nbPixels, expected.nbPixels) << which;
  EXPECT_TRUE(same(actual.percent, expected.percent)) << which;
}

void Check(const TestImage& image, const TestImage* mask) {
  const Expected expected = Reference(image, mask);
  QuantifyReport global{};
  QuantifyReport* regions = nullptr;
  int32_t count = -1;
  ASSERT_EQ(ZEL_Quantify(image, mask ? static_cast<ImageRef>(*mask) : 0, &global, &regions, &count),
            0);
  ExpectSame(global, expected.global, "global ");
  ASSERT_EQ(count, static_cast<int32_t>(expected.regions.size()));
  for (size_t i = 0; i < expected.regions.size(); i++) {
    ExpectSame(regions[i], expected.regions[i], "region ");
  }
  EXPECT_EQ(regions == nullptr, count == 0);
  ZEL_free(regions);
}

TEST(QuantifyPixels, FollowsTheRuleForAllTypesSizesAndLabels) {
  for (const int32_t type : {IMAGE_U8, IMAGE_I16, IMAGE_SGL}) {
    for (const auto& [width, height] : test::ODD_SIZES) {
      const TestImage image(type, width, height, 2, 5);
      ASSERT_EQ(ZEL_SetImageCalibration(image, 1, 0.3f, 1.7f), 0);
      const TestImage noise(IMAGE_U8, width + 2, height, 1, 6);
      ASSERT_EQ(ZEL_SetImageOffset(noise, -1, 0), 0);
      const TestImage bands(IMAGE_U8, width, height, 0, 6);
      for (int32_t y = 0; y < height; y++) {
        for (int32_t x = 0; x < width; x++) {
          bands.Set<uint8_t>(x, y, static_cast<uint8_t>((x / 37 + y) % 4));
        }
      }
      SCOPED_TRACE(testing::Message() << "type " << type << " " << width << " x " << height);
      Check(image, nullptr);
      Check(image, &noise);
      Check(image, &bands);
      if (testing::Test::HasFailure()) return;
    }
  }
}

TEST(QuantifyPixels, SquaresBeyondExactIntegersAreRoundedInOrder) {
  const TestImage image(IMAGE_I16, 40000, 240);
  for (int32_t y = 0; y < 240; y++) {
    auto* row = image.At<int16_t>(0, y);
    for (int32_t x = 0; x < 40000; x++) row[x] = static_cast<int16_t>(-32767 + (x * 7 + y) % 64);
  }
  Check(image, nullptr);
  const TestImage labels(IMAGE_U8, 40000, 240);
  for (int32_t y = 0; y < 240; y++) std::memset(labels.At<uint8_t>(0, y), y < 3 ? 2 : 5, 40000);
  Check(image, &labels);
}

// Images whose sums are rounded in ways that depend on the order of the pixels.
TEST(QuantifyPixels, FloatSumsAreThoseOfOnePixelAfterTheOther) {
  test::Random random(12);
  const auto power = [&](int32_t low, int32_t high) {
    return std::ldexp(1.0f, random.Between(low, high));
  };
  const std::vector<std::function<float()>> kinds = {
      [&] { return random.Float(0.0f, 256.0f); },
      [&] { return static_cast<float>(random.Between(0, 51200)) / 200.0f; },
      [&] { return random.Float(-1.0f, 1.0f); },
      [&] { return random.Float(0.0f, 1.0f) * power(-60, 20); },
      [&] { return random.Float(-3.0f, -2.0f) * power(-40, 0); },
      // Terms half way between two multiples of the sum's last place.
      [&] { return random.Between(0, 9) == 0 ? power(-50, -20) : 1024.0f; },
      [&] { return random.Between(0, 1) == 0 ? power(-149, -100) : random.Float(0.0f, 1e-30f); },
      [&] { return random.Float(-1.0f, 1.0f) * power(0, 125); },
      [&] { return random.Between(0, 5000) == 0 ? -1e30f : 1.5f; },
      [&] { return random.Between(0, 3) == 0 ? -0.0f : 0.0f; },
      [&] { return random.Between(0, 40000) == 0 ? std::nanf("") : 7.25f; },
  };
  for (size_t kind = 0; kind < kinds.size(); kind++) {
    for (const auto& [width, height] : {std::pair{1000, 40}, {256, 100}, {64, 64}, {321, 21}}) {
      const TestImage image(IMAGE_SGL, width, height);
      for (int32_t y = 0; y < height; y++) {
        auto* row = image.At<float>(0, y);
        for (int32_t x = 0; x < width; x++) row[x] = kinds[kind]();
      }
      SCOPED_TRACE(testing::Message() << "kind " << kind << " " << width << " x " << height);
      Check(image, nullptr);
      HistogramReport report{};
      QuantifyReport global{};
      ASSERT_EQ(ZEL_Quantify(image, 0, &global, nullptr, nullptr), 0);
      ASSERT_EQ(ZEL_Histogram(image, 0, 256, -3e38f, 3e38f, nullptr, &report), 0);
      if (std::isnan(global.mean)) continue;  // NaN is not counted there
      EXPECT_EQ(report.mean, global.mean);
      EXPECT_EQ(report.stdDev, global.stdDev);
    }
  }
}

TEST(Quantify, LabelWithoutPixelsHasARecordOfZeros) {
  const TestImage image(IMAGE_U8, 10, 3);
  const TestImage mask(IMAGE_U8, 10, 3);
  for (int32_t x = 0; x < 10; x++) {
    mask.Set<uint8_t>(x, 0, 1);
    mask.Set<uint8_t>(x, 1, 0);
    mask.Set<uint8_t>(x, 2, 3);
  }
  Check(image, &mask);
  auto* regions = static_cast<QuantifyReport*>(ZEL_malloc(4));
  int32_t count = 0;
  ASSERT_EQ(ZEL_Quantify(image, mask, nullptr, &regions, &count), 0);
  ASSERT_EQ(count, 3);
  const QuantifyReport zeros{};
  EXPECT_EQ(std::memcmp(&regions[1], &zeros, sizeof(zeros)), 0);
  EXPECT_EQ(regions[0].percent, static_cast<float>(10.0 / 30.0 * 100.0));
  ZEL_free(regions);
}

TEST(Quantify, MaskWithoutLabelsGivesNoRecordsAndReleasesTheBlock) {
  const TestImage image(IMAGE_U8, 10, 3);
  const TestImage mask(IMAGE_U8, 10, 3);
  ASSERT_EQ(ZEL_ClearPixels(mask), 0);
  auto* regions = static_cast<QuantifyReport*>(ZEL_malloc(1000));
  int32_t count = 7;
  QuantifyReport global{};
  ASSERT_EQ(ZEL_Quantify(image, mask, &global, &regions, &count), 0);
  EXPECT_EQ(count, 0);
  EXPECT_EQ(regions, nullptr);
  EXPECT_TRUE(std::isnan(global.mean));
}

TEST(Quantify, EmptyIntersectionHasNoMeanAndNoExtremes) {
  const TestImage image(IMAGE_I16, 10, 3);
  const TestImage mask(IMAGE_U8, 10, 3);
  ASSERT_EQ(ZEL_SetImageOffset(mask, 10, 0), 0);
  QuantifyReport global{};
  ASSERT_EQ(ZEL_Quantify(image, mask, &global, nullptr, nullptr), 0);
  EXPECT_TRUE(std::isnan(global.mean));
  EXPECT_TRUE(std::isnan(global.stdDev));
  EXPECT_EQ(global.min, 1e38f);
  EXPECT_EQ(global.max, -1e38f);
  EXPECT_EQ(global.area, 0.0f);
  EXPECT_EQ(global.nbPixels, 0);
  EXPECT_EQ(global.percent, 0.0f);
  const TestImage empty(IMAGE_U8, 0, 0);
  ASSERT_EQ(ZEL_Quantify(empty, 0, &global, nullptr, nullptr), 0);
  EXPECT_TRUE(std::isnan(global.percent));
}

TEST(Quantify, PixelsOfOtherTypesAreCountedOnly) {
  const TestImage colour(IMAGE_RGB, 10, 3);
  const TestImage mask(IMAGE_U8, 10, 3);
  QuantifyReport global{};
  int32_t count = 7;
  ASSERT_EQ(ZEL_Quantify(colour, 0, &global, nullptr, &count), 0);
  EXPECT_EQ(count, 0);
  EXPECT_EQ(global.nbPixels, 30);
  EXPECT_EQ(global.mean, 0.0f);
  EXPECT_EQ(global.stdDev, 0.0f);
  EXPECT_EQ(global.min, 1e38f);
  EXPECT_EQ(global.percent, 100.0f);
  ASSERT_EQ(ZEL_Quantify(colour, mask, &global, nullptr, &count), 0);
  EXPECT_EQ(count, 0);
  EXPECT_EQ(global.nbPixels, 0);
  EXPECT_TRUE(std::isnan(global.mean));
}

TEST(Quantify, MaskThatIsTheImageIsNoMask) {
  const TestImage image(IMAGE_U8, 10, 3);
  QuantifyReport global{};
  int32_t count = 7;
  ASSERT_EQ(ZEL_Quantify(image, image, &global, nullptr, &count), 0);
  EXPECT_EQ(global.nbPixels, 30);
  EXPECT_EQ(count, 0);
}

TEST(Quantify, ConstantImageHasNoDeviation) {
  const TestImage image(IMAGE_I16, 3, 1);
  for (int32_t x = 0; x < 3; x++) image.Set<int16_t>(x, 0, x == 2 ? 30001 : 30000);
  QuantifyReport global{};
  ASSERT_EQ(ZEL_Quantify(image, 0, &global, nullptr, nullptr), 0);
  EXPECT_FALSE(std::isnan(global.stdDev));
  Check(image, nullptr);
}

TEST(Quantify, FailureLeavesTheBlockAndCountsNothing) {
  const TestImage image(IMAGE_U8, 10, 3);
  const TestImage words(IMAGE_I16, 10, 3);
  auto* block = static_cast<QuantifyReport*>(ZEL_malloc(1000));
  QuantifyReport* regions = block;
  QuantifyReport global{};
  global.nbPixels = 77;
  for (const auto& [reference, mask, failure] :
       {std::tuple<ImageRef, ImageRef, int32_t>{999, 0, -200},
        {image, 999, -200},
        {image, words, -301},
        {999, words, -200}}) {
    int32_t count = 7;
    EXPECT_EQ(ZEL_Quantify(reference, mask, &global, &regions, &count), failure);
    EXPECT_EQ(count, 0);
    EXPECT_EQ(regions, block);
    EXPECT_EQ(global.nbPixels, 77);
  }
  ZEL_free(regions);
}

TEST(Quantify, WithoutMemoryForTheRecordsTheBlockStays) {
  const TestImage image(IMAGE_U8, 10, 3);
  const TestImage mask(IMAGE_U8, 10, 3);
  QuantifyReport* regions = nullptr;
  int32_t count = 7;
  ASSERT_EQ(ZEL_Quantify(image, mask, nullptr, nullptr, &count), 0);  // the tables have room
  zel::HeapHooks* hooks = zel::HeapHooksGet();
  hooks->failAt = hooks->requests + 1;
  hooks->failAllAfter = true;
  EXPECT_EQ(ZEL_Quantify(image, mask, nullptr, &regions, &count), -101);
  hooks->failAt = 0;
  hooks->failAllAfter = false;
  EXPECT_EQ(regions, nullptr);
  EXPECT_EQ(count, 0);
}

}  // namespace
