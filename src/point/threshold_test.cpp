// Thresholds with given ranges, against references that go pixel by pixel.
#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "core/heap.h"
#include "point/operator_test.h"

namespace {

using test::Random;
using test::TestImage;

// A limit or value as an image of the type takes it.
double Settled(int32_t type, float value) {
  const auto wide = static_cast<double>(value);
  return type == IMAGE_SGL ? wide : test::CutLimitedOf(type, wide);
}

double ThresholdOf(int32_t type, double pixel, float low, float high, float value, bool keep) {
  const bool inside = pixel >= Settled(type, low) && pixel <= Settled(type, high);
  if (!inside) return 0.0;
  return keep ? pixel : Settled(type, value);
}

double ClassesOf(int32_t type, double pixel, const std::vector<ThresholdClass>& classes) {
  double result = 0.0;
  for (const ThresholdClass& given : classes) {
    if (type == IMAGE_SGL && result != 0.0) break;  // NaN differs from 0 as well
    if (pixel < Settled(type, given.rangeMin) || pixel > Settled(type, given.rangeMax)) continue;
    if (std::isnan(pixel) || std::isnan(Settled(type, given.rangeMin)) ||
        std::isnan(Settled(type, given.rangeMax))) {
      continue;
    }
    result = given.useNew != 0 ? Settled(type, given.newValue) : pixel;
  }
  return result;
}

struct Limits {
  float low, high, value;
};

const std::vector<Limits> LIMITS = {
    {10.0f, 20.0f, 1.0f},
    {0.0f, 255.0f, 255.0f},
    {-5.0f, 5.0f, -7.9f},
    {-5.0f, -3.0f, 9.0f},
    {300.0f, 400.0f, 300.0f},
    {10.9f, 200.9f, 77.7f},
    {200.0f, 100.0f, 5.0f},
    {-40000.0f, 40000.0f, 40000.0f},
    {-32768.0f, -1.0f, -32768.0f},
    {NAN, 50.0f, NAN},
    {20.0f, NAN, 3.0f},
    {-INFINITY, INFINITY, INFINITY},
    {128.0f, 128.0f, 0.0f},
    {-0.5f, 0.5f, 1e10f},
};

TEST(ThresholdPixels, ThresholdKeepsOneRangeAndClearsTheRest) {
  for (const int32_t type : {IMAGE_U8, IMAGE_I16, IMAGE_SGL}) {
    for (const auto& [width, height] : test::ODD_SIZES) {
      for (const Limits& limits : LIMITS) {
        for (const int16_t useNew : {int16_t{0}, int16_t{1}}) {
          const TestImage source(type, width, height, 3, 5);
          const TestImage expected = test::Mapped(source, type, [&](double pixel, int32_t) {
            return ThresholdOf(type, pixel, limits.low, limits.high, limits.value, useNew == 0);
          });
          const TestImage destination(type, 4, 5, 2, 8);
          ASSERT_EQ(
              ZEL_Threshold(source, destination, limits.low, limits.high, limits.value, useNew), 0);
          ASSERT_EQ(PixelDifference(destination, expected), "")
              << "type " << type << " from " << limits.low << " to " << limits.high;

          const std::vector<uint8_t> around = source.Surroundings();
          ASSERT_EQ(ZEL_Threshold(source, 0, limits.low, limits.high, limits.value, useNew), 0);
          ASSERT_EQ(PixelDifference(source, expected), "");
          ASSERT_EQ(source.Surroundings(), around);
        }
      }
    }
  }
}

TEST(ThresholdPixels, MultiThresholdGoesByTheLastClassOnIntegersAndByTheFirstOnFloats) {
  for (const int32_t type : {IMAGE_U8, IMAGE_I16, IMAGE_SGL}) {
    for (const int32_t count : {1, 2, 5, 16, 17, 40}) {
      for (const auto& [width, height] : test::ODD_SIZES) {
        Random random(static_cast<uint64_t>(count * 1000 + width));
        std::vector<ThresholdClass> classes;
        for (int32_t c = 0; c < count; c++) {
          const bool wide = type == IMAGE_I16;
          const float low = random.Float(wide ? -33000.0f : -300.0f, wide ? 33000.0f : 300.0f);
          const float extent = random.Float(wide ? -500.0f : -20.0f, wide ? 9000.0f : 150.0f);
          const float value = random.Between(0, 3) == 0 ? 0.0f : random.Float(-300.0f, 300.0f);
          classes.push_back({low, low + extent, value, static_cast<uint16_t>(random.Next() & 1)});
        }
        if (count == 5) classes[2] = {NAN, 100.0f, 50.0f, 1};
        const TestImage source(type, width, height, 1, 9);
        const TestImage expected = test::Mapped(
            source, type, [&](double pixel, int32_t) { return ClassesOf(type, pixel, classes); });
        const TestImage destination(type, 2, 2, 0);
        ASSERT_EQ(ZEL_MultiThreshold(source, destination, count, classes.data()), 0);
        ASSERT_EQ(PixelDifference(destination, expected), "") << "type " << type;

        const std::vector<uint8_t> around = source.Surroundings();
        ASSERT_EQ(ZEL_MultiThreshold(source, source, count, classes.data()), 0);
        ASSERT_EQ(PixelDifference(source, expected), "") << "type " << type;
        ASSERT_EQ(source.Surroundings(), around);
      }
    }
  }
}

TEST(ThresholdPixels, FloatClassesGoOnPastAZeroAndStopAtNaN) {
  const TestImage image(IMAGE_SGL, 5, 1);
  const float pixels[] = {1.0f, 2.0f, 3.0f, NAN, 4.0f};
  for (int32_t x = 0; x < 5; x++) image.Set(x, 0, pixels[x]);
  const std::vector<ThresholdClass> classes = {
      {0.0f, 1.5f, 0.0f, 1},  // zero: later classes go on
      {0.0f, 2.5f, 7.0f, 1},  // ends the search for 1 and 2
      {0.0f, 3.5f, NAN, 1},   // ends the search for 3
      {0.0f, 9.0f, 5.0f, 0x100}, {4.0f, 4.0f, -0.0f, 1},
  };
  ASSERT_EQ(ZEL_MultiThreshold(image, 0, 3, classes.data()), 0);
  EXPECT_EQ(image.Get<float>(0, 0), 7.0f);
  EXPECT_EQ(image.Get<float>(1, 0), 7.0f);
  EXPECT_TRUE(std::isnan(image.Get<float>(2, 0)));
  EXPECT_EQ(image.Get<float>(3, 0), 0.0f);
  EXPECT_EQ(image.Get<float>(4, 0), 0.0f);

  image.Set(4, 0, 4.0f);
  ASSERT_EQ(ZEL_MultiThreshold(image, 0, 1, &classes[4]), 0);
  EXPECT_EQ(image.Get<float>(4, 0), 0.0f);
  EXPECT_TRUE(std::signbit(image.Get<float>(4, 0))) << "a class may give a negative zero";
}

TEST(Threshold, LimitsBelongToTheRange) {
  const TestImage image(IMAGE_U8, 4, 1);
  const uint8_t pixels[] = {5, 10, 20, 21};
  for (int32_t x = 0; x < 4; x++) image.Set(x, 0, pixels[x]);
  ASSERT_EQ(ZEL_Threshold(image, 0, 10.0f, 20.0f, 1.0f, 1), 0);
  EXPECT_EQ(image.Pixels(), (std::vector<uint8_t>{0, 1, 1, 0}));
}

TEST(Threshold, FractionsAreTruncatedForIntegersAndKeptForFloats) {
  const TestImage bytes(IMAGE_U8, 2, 1);
  bytes.Set<uint8_t>(0, 0, 10);
  bytes.Set<uint8_t>(1, 0, 21);
  ASSERT_EQ(ZEL_Threshold(bytes, 0, 10.9f, 20.9f, 0.0f, 0), 0);
  EXPECT_EQ(bytes.Pixels(), (std::vector<uint8_t>{10, 0}));

  const TestImage floats(IMAGE_SGL, 2, 1);
  floats.Set(0, 0, 10.0f);
  floats.Set(1, 0, 20.5f);
  ASSERT_EQ(ZEL_Threshold(floats, 0, 10.9f, 20.9f, 0.0f, 0), 0);
  EXPECT_EQ(floats.Get<float>(0, 0), 0.0f);
  EXPECT_EQ(floats.Get<float>(1, 0), 20.5f);
}

TEST(Threshold, DestinationTakesSizeAndCalibrationButKeepsItsBorder) {
  const TestImage source(IMAGE_I16, 9, 5, 2);
  ZEL_SetImageCalibration(source, 4, 0.5f, 0.25f);
  ZEL_SetImageOffset(source, -3, 8);
  const TestImage destination(IMAGE_I16, 2, 2, 3);
  ASSERT_EQ(ZEL_Threshold(source, destination, 0.0f, 100.0f, 1.0f, 1), 0);
  const ImageInfo info = destination.Info();
  EXPECT_EQ(info.width, 9);
  EXPECT_EQ(info.height, 5);
  EXPECT_EQ(info.border, 3);
  EXPECT_EQ(info.unit, 4);
  EXPECT_EQ(info.xStep, 0.5f);
  EXPECT_EQ(info.offsetY, 8);
}

TEST(Threshold, DestinationOfTheSameSizeKeepsItsSurroundings) {
  const TestImage source(IMAGE_U8, 21, 6, 2);
  const TestImage destination(IMAGE_U8, 21, 6, 2, 44);
  const std::vector<uint8_t> around = destination.Surroundings();
  ASSERT_EQ(ZEL_Threshold(source, destination, 50.0f, 150.0f, 255.0f, 1), 0);
  EXPECT_EQ(destination.Surroundings(), around);
}

TEST(Threshold, FailuresLeaveTheImagesAlone) {
  const TestImage bytes(IMAGE_U8, 8, 4);
  const TestImage words(IMAGE_I16, 3, 3);
  const std::vector<uint8_t> before = words.Block();
  const ThresholdClass all = {0.0f, 255.0f, 1.0f, 1};
  EXPECT_EQ(ZEL_Threshold(bytes, words, 0.0f, 9.0f, 1.0f, 1), -304);
  EXPECT_EQ(ZEL_MultiThreshold(bytes, words, 1, &all), -304);
  EXPECT_EQ(ZEL_MultiThreshold(bytes, words, 0, &all), -304);
  EXPECT_EQ(words.Block(), before);
  EXPECT_EQ(words.width(), 3);
  for (const ImageRef unknown : {ImageRef{0}, ImageRef{99999}, ImageRef{0xFFFFFFFF}}) {
    EXPECT_EQ(ZEL_Threshold(unknown, bytes, 0.0f, 9.0f, 1.0f, 1), -200);
    EXPECT_EQ(ZEL_MultiThreshold(unknown, bytes, 1, &all), -200);
    if (unknown == 0) continue;
    EXPECT_EQ(ZEL_Threshold(bytes, unknown, 0.0f, 9.0f, 1.0f, 1), -200);
    EXPECT_EQ(ZEL_MultiThreshold(bytes, unknown, 1, &all), -200);
  }
  for (const int32_t type : {IMAGE_COMPLEX, IMAGE_RGB, IMAGE_OPAQUE}) {
    ImageRef other = 0;
    ASSERT_EQ(ZEL_Create(&other, static_cast<int16_t>(type), 0), 0);
    EXPECT_EQ(ZEL_Threshold(other, 99999, 0.0f, 9.0f, 1.0f, 1), -301);
    EXPECT_EQ(ZEL_MultiThreshold(other, 99999, 0, nullptr), -301);
    EXPECT_EQ(ZEL_Threshold(bytes, other, 0.0f, 9.0f, 1.0f, 1), -304);
    ZEL_Dispose(other);
  }
  char name[256];
  EXPECT_EQ(ZEL_MultiThreshold(bytes, 0, 1, nullptr), -3009);
  EXPECT_EQ(ZEL_GetLastError(name), -3009);
  EXPECT_STREQ(name, "ZEL_MultiThreshold");
}

TEST(Threshold, MultiThresholdWithoutClassesCopiesTheSource) {
  const TestImage source(IMAGE_I16, 13, 3, 1);
  ZEL_SetImageCalibration(source, 2, 3.0f, 4.0f);
  const std::vector<uint8_t> before = source.Block();
  for (const int32_t count : {0, -1, INT32_MIN}) {
    const TestImage destination(IMAGE_I16, 1, 1, 2);
    ASSERT_EQ(ZEL_MultiThreshold(source, destination, count, nullptr), 0);
    EXPECT_EQ(PixelDifference(destination, source), "");
    EXPECT_EQ(destination.Info().xStep, 3.0f);
    ASSERT_EQ(ZEL_MultiThreshold(source, 0, count, nullptr), 0);
    EXPECT_EQ(source.Block(), before);
  }
}

TEST(Threshold, NoMemoryForTheTableOfManyClassesGives101) {
  const TestImage image(IMAGE_I16, 13, 3, 1);
  const std::vector<uint8_t> before = image.Block();
  const std::vector<ThresholdClass> classes(40, ThresholdClass{0.0f, 10.0f, 3.0f, 1});
  zel::HeapHooks* hooks = zel::HeapHooksGet();
  hooks->requests = 0;
  hooks->failAt = 1;
  EXPECT_EQ(ZEL_MultiThreshold(image, 0, 40, classes.data()), -101);
  EXPECT_EQ(image.Block(), before);
  hooks->failAt = 0;
  EXPECT_EQ(ZEL_MultiThreshold(image, 0, 40, classes.data()), 0);
}

}  // namespace
