#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <string>
#include <vector>

#include "filters/filter_test.h"

namespace {

using test::Mirrored;
using test::ODD_SIZES;
using test::PixelDifference;
using test::PixelOf;
using test::SCALAR_TYPES;
using test::TestImage;
using test::Workers;

struct Window {
  int32_t width, height;
};

// As it is stated: the limit by the number's bits, then without its sign.
double ToleranceOf(float tolerance) {
  const bool isAbove = std::bit_cast<int32_t>(tolerance) > std::bit_cast<int32_t>(100.0f);
  return std::fabs(static_cast<double>(isAbove ? 100.0f : tolerance));
}

double Smoothed(Window window, float tolerance, const Mirrored& pixels, int32_t x, int32_t y) {
  const int32_t width = std::max(window.width, 1);
  const int32_t height = std::max(window.height, 1);
  const double c = pixels(x, y);
  if (width == 1 && height == 1) return c;
  double sum = 0;
  int64_t members = 0;
  for (int32_t j = (1 - height) / 2; j <= (height | 1) / 2; j++) {
    for (int32_t i = (1 - width) / 2; i <= (width | 1) / 2; i++) {
      if (i == 0 && j == 0) continue;
      sum += pixels(x + i, y + j);
      members++;
    }
  }
  EXPECT_EQ(members, int64_t{width} * height - 1);
  double m = sum / static_cast<double>(members);
  if (pixels.type() != IMAGE_SGL) m = std::trunc(m);
  double d = std::fabs((m - c) * 100.0);
  if (m != 0) d = d / m;
  return d > ToleranceOf(tolerance) ? m : c;
}

auto Call(Window window, float tolerance) {
  return [=](ImageRef source, ImageRef mask, ImageRef destination) {
    return ZEL_LowPass(source, mask, destination, window.width, window.height, tolerance);
  };
}

auto Rule(Window window, float tolerance) {
  return [=](const Mirrored& pixels, int32_t x, int32_t y) {
    return Smoothed(window, tolerance, pixels, x, y);
  };
}

void ExpectSmoothed(const TestImage& source, Window window, float tolerance) {
  SCOPED_TRACE(std::to_string(window.width) + " x " + std::to_string(window.height) + ", " +
               std::to_string(tolerance) + " on type " + std::to_string(source.Info().type) + ", " +
               std::to_string(source.width()) + " x " + std::to_string(source.height()));
  test::ExpectFiltered(source, Call(window, tolerance), Rule(window, tolerance));
}

TEST(LowPass, GivesMeansOnAllTypesAndSizes) {
  uint64_t seed = 1;
  for (const int32_t type : SCALAR_TYPES) {
    for (const auto& [width, height] : ODD_SIZES) {
      const int32_t border = 1 + static_cast<int32_t>(seed % 3);
      const TestImage source(type, width, height, border, ++seed);
      ExpectSmoothed(source, {3, 3}, 40.0f);
      if (HasFatalFailure()) return;
    }
  }
}

TEST(LowPass, OfWindowsOfAllKinds) {
  for (const int32_t type : SCALAR_TYPES) {
    for (const Window window : {Window{1, 2},
                                {2, 1},
                                {1, 3},
                                {3, 1},
                                {2, 2},
                                {2, 3},
                                {4, 4},
                                {5, 5},
                                {7, 3},
                                {3, 8},
                                {9, 1},
                                {1, 16},
                                {11, 11},
                                {12, 11},
                                {13, 10},
                                {16, 16},
                                {17, 2}}) {
      const int32_t border = std::max(window.width, window.height) / 2;
      ExpectSmoothed(TestImage(type, 37, 19, border, 6), window, 30.0f);
      if (HasFatalFailure()) return;
    }
  }
}

TEST(LowPass, WithoutAWindowCopiesTheSource) {
  for (const int32_t type : SCALAR_TYPES) {
    for (const Window window : {Window{1, 1}, {0, 0}, {-5, 1}, {INT32_MIN, INT32_MIN}}) {
      for (const int32_t border : {0, 2}) {
        ExpectSmoothed(TestImage(type, 37, 9, border, 6), window, 0.0f);
        if (HasFatalFailure()) return;
      }
    }
  }
}

TEST(LowPass, NeedsTheBorderOfItsLargerSide) {
  test::ExpectTheBorderOfTheLargerSide([](int32_t width, int32_t height) {
    return Call({width, height}, 10.0f);
  });
}

TEST(LowPass, TakesEveryTolerance) {
  for (const int32_t type : SCALAR_TYPES) {
    for (const Window window : {Window{3, 3}, {12, 13}}) {
      for (const float tolerance :
           {0.0f,   -0.0f,   1.0f,   33.3f,  50.0f,   99.99f,   100.0f,
            100.1f, 1000.0f, -20.0f, -99.0f, -100.0f, -150.5f,  -500.0f,
            -1e30f, 1e-30f,  1e-45f, NAN,    -NAN,    INFINITY, -INFINITY}) {
        ExpectSmoothed(TestImage(type, 29, 7, 6, 6), window, tolerance);
        if (HasFatalFailure()) return;
      }
    }
  }
}

TEST(LowPass, ReplacesEveryPixelThatDiffersWithAToleranceOfZero) {
  const TestImage source(IMAGE_U8, 3, 3, 1, 3);
  for (int32_t y = 0; y < 3; y++) {
    for (int32_t x = 0; x < 3; x++) source.Set<uint8_t>(x, y, 200);
  }
  source.Set<uint8_t>(1, 1, 199);
  TestImage destination(IMAGE_U8, 1, 1);
  ASSERT_EQ(ZEL_LowPass(source, 0, destination, 3, 3, 0.0f), 0);
  EXPECT_EQ(destination.Get<uint8_t>(1, 1), 200);
  ASSERT_EQ(ZEL_LowPass(source, 0, destination, 3, 3, 1.0f), 0);
  EXPECT_EQ(destination.Get<uint8_t>(1, 1), 199);
}

// Each pixel in the middle of a block of 3 x 3 is another pair of pixel and mean.
TEST(LowPass, DecidesForEveryByteAndMean) {
  const TestImage source(IMAGE_U8, 3 * 256, 3 * 256, 1, 3);
  for (int32_t y = 0; y < 3 * 256; y++) {
    for (int32_t x = 0; x < 3 * 256; x++) {
      const bool isCentre = x % 3 == 1 && y % 3 == 1;
      source.Set(x, y, static_cast<uint8_t>(isCentre ? x / 3 : y / 3));
    }
  }
  test::Random random(5);
  for (int32_t i = 0; i < 40; i++) {
    // Tolerances that distances reach exactly, and any others.
    const int32_t of = random.Between(1, 255);
    const float exact = static_cast<float>(100.0 * random.Between(0, of) / of);
    const float tolerance = i % 2 == 0 ? exact : random.Float(0.0f, 101.0f);
    TestImage destination(IMAGE_U8, 1, 1);
    ASSERT_EQ(ZEL_LowPass(source, 0, destination, 3, 3, tolerance), 0);
    for (int32_t m = 0; m < 256; m++) {
      for (int32_t c = 0; c < 256; c++) {
        const double d = std::fabs((m - c) * 100.0) / (m == 0 ? 1 : m);
        ASSERT_EQ(destination.Get<uint8_t>(3 * c + 1, 3 * m + 1),
                  d > ToleranceOf(tolerance) ? m : c)
            << tolerance;
      }
    }
  }
}

// Along a ramp that rises by one a window, the sum rises by one a pixel: it takes every value.
TEST(LowPass, DividesEverySumExactly) {
  for (int32_t width = 2; width <= 140; width++) {
    const int32_t length = 255 * width;
    // In an image with fewer rows than border, filling narrow borders reaches the pixels.
    const TestImage source(IMAGE_U8, length, width < 8 ? 3 : 1, width / 2, 3);
    std::vector<int64_t> sums{0};  // of the pixels before each column
    for (int32_t x = 0; x < length; x++) {
      const int32_t pixel = (x + width - 1) / width;
      source.Set(x, 0, static_cast<uint8_t>(pixel));
      sums.push_back(sums.back() + pixel);
    }
    TestImage destination(IMAGE_U8, 1, 1);
    ASSERT_EQ(ZEL_LowPass(source, 0, destination, width, 1, 0.0f), 0);
    const uint8_t* results = destination.At<uint8_t>(0, 0);
    const uint8_t* pixels = source.At<uint8_t>(0, 0);
    int32_t wrong = 0;
    for (int32_t x = width; x < length - width; x++) {
      const auto first = static_cast<size_t>(x - (width - 1) / 2);
      const int64_t sum = sums[first + static_cast<size_t>(width)] - sums[first] - pixels[x];
      wrong += results[x] != sum / (width - 1);
    }
    EXPECT_EQ(wrong, 0) << width;
  }
}

TEST(LowPass, OfWordsNearTheirLimits) {
  for (const int32_t seed : {1, 2}) {
    const TestImage source(IMAGE_I16, 40, 12, 6, 3);
    test::Random random(static_cast<uint64_t>(seed));
    for (int32_t y = 0; y < 12; y++) {
      for (int32_t x = 0; x < 40; x++) {
        const int32_t noise = random.Between(0, 3);
        const bool isHigh = seed == 1 ? x < 20 : random.Next() % 2 == 0;
        source.Set(x, y, static_cast<int16_t>(isHigh ? INT16_MAX - noise : INT16_MIN + noise));
      }
    }
    for (const float tolerance : {0.0f, 0.001f, 50.0f, 100.0f, -300.0f}) {
      ExpectSmoothed(source, {3, 3}, tolerance);
      ExpectSmoothed(source, {13, 12}, tolerance);
    }
  }
}

// Sums beyond 32 bits, and as large as fit.
TEST(LowPass, OfHugeWindows) {
  for (const int32_t type : {IMAGE_U8, IMAGE_I16}) {
    for (const Window window : {Window{255, 257}, {256, 256}, {257, 256}, {300, 299}}) {
      const TestImage source(type, 300, 3, 150, 3);
      for (int32_t y = 0; y < 3; y++) {
        for (int32_t x = 0; x < 300; x++) {
          test::SetPixel(source, x, y, type == IMAGE_U8 ? 255 - x / 290 : -32768 + x / 290);
        }
      }
      const Mirrored mirrored(source);
      TestImage destination(type, 1, 1);
      ASSERT_EQ(ZEL_LowPass(source, 0, destination, window.width, window.height, 0.1f), 0);
      for (const auto& [x, y] : {std::pair{0, 0}, {1, 2}, {150, 1}, {289, 1}, {290, 1}, {299, 2}}) {
        EXPECT_EQ(PixelOf(destination, x, y), Smoothed(window, 0.1f, mirrored, x, y)) << x;
      }
    }
  }
}

TEST(LowPass, OfFloatsSumsInTheOrderOfTheWindow) {
  const TestImage source(IMAGE_SGL, 300, 12, 2, 3);
  test::Random random(4);
  for (int32_t y = 0; y < 12; y++) {
    for (int32_t x = 0; x < 300; x++) {
      source.Set(x, y, std::ldexp(random.Float(-1, 1), random.Between(-40, 40)));
    }
  }
  for (const float tolerance : {0.0f, 50.0f, -1000.0f}) {
    ExpectSmoothed(source, {3, 3}, tolerance);
    ExpectSmoothed(source, {5, 4}, tolerance);
  }
}

TEST(LowPass, OfFloatsThatAreNoNumbers) {
  const TestImage source(IMAGE_SGL, 70, 12, 1, 3);
  test::Random random(4);
  for (int32_t i = 0; i < 60; i++) {
    constexpr float odd[] = {NAN, INFINITY, -INFINITY, 3e38f, -3e38f, 1e-40f, -0.0f, 0.0f};
    source.Set(random.Between(0, 69), random.Between(0, 11), odd[i % 8]);
  }
  for (const float tolerance : {0.0f, 50.0f, -1000.0f}) ExpectSmoothed(source, {3, 3}, tolerance);
}

TEST(LowPass, IsTheSameForAnyNumberOfWorkers) {
  test::ExpectTheSameForAnyWorkers(Call({3, 3}, 20.0f), Rule({3, 3}, 20.0f));
  test::ExpectTheSameForAnyWorkers(Call({5, 7}, 20.0f), Rule({5, 7}, 20.0f));
}

TEST(LowPass, ReadsTheMirroredBorder) {
  const TestImage source(IMAGE_U8, 5, 3, 2, 3);
  const uint8_t pixels[] = {10, 50, 90, 200, 240};
  for (int32_t i = 0; i < 15; i++) source.Set(i % 5, i / 5, pixels[i % 5]);
  TestImage destination(IMAGE_U8, 1, 1);
  ASSERT_EQ(ZEL_LowPass(source, 0, destination, 5, 1, 0.0f), 0);
  EXPECT_EQ(destination.Get<uint8_t>(0, 0), (50 + 10 + 50 + 90) / 4);
  EXPECT_EQ(destination.Get<uint8_t>(4, 2), (90 + 200 + 240 + 200) / 4);
}

TEST(LowPass, OfImagesSmallerThanTheirBorder) {
  for (const int32_t type : SCALAR_TYPES) {
    for (const auto& [width, height] : {std::pair{1, 1}, {2, 2}, {3, 1}, {1, 9}, {20, 3}}) {
      ExpectSmoothed(TestImage(type, width, height, 5, 3), {5, 7}, 10.0f);
    }
  }
}

TEST(LowPass, RefusesInTheOrderOfTheOperands) {
  test::ExpectRefusals(Call({3, 3}, 10.0f));
}

TEST(LowPass, BearsRefusedMemory) {
  for (const int32_t workers : {1, 3}) {
    const Workers forced(workers);
    for (const int32_t type : SCALAR_TYPES) {
      test::ExpectMemoryRefusals(type, Call({3, 3}, 10.0f));
    }
    test::ExpectMemoryRefusals(IMAGE_U8, Call({1, 1}, 10.0f));
  }
}

}  // namespace
