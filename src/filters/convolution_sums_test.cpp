// What becomes of the sums of a convolution: dividing, cutting, wrapping, limiting.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

#include "filters/convolution_test.h"

namespace {

using test::PixelOf;
using test::Random;
using test::SCALAR_TYPES;
using test::TestImage;
using namespace test::convolution;

constexpr float NAN_VALUE = std::numeric_limits<float>::quiet_NaN();
constexpr float INFINITE = std::numeric_limits<float>::infinity();

TEST(Convolute, SettlesTheDivider) {
  const TestImage source(IMAGE_U8, 9, 9, 1, 3);
  TestImage destination(IMAGE_U8, 1, 1);
  const auto settled = [&](Matrix matrix) {
    ConvolutionMatrix record = matrix.Record();
    EXPECT_EQ(ZEL_Convolute(source, 0, destination, &record, 0), 0);
    return record.divider;
  };
  EXPECT_EQ(settled(AllOf(3, 3, 1, 0)), 9.0f);
  EXPECT_EQ(settled(AllOf(3, 3, 1, -0.0f)), 9.0f);
  EXPECT_EQ(settled(AllOf(3, 3, 0, 0)), 1.0f);
  EXPECT_EQ(settled({3, 1, {-1, 0, 1}, 0}), 1.0f);
  EXPECT_EQ(settled({3, 1, {-1, 0.5f, 0}, 0}), -0.5f);
  EXPECT_EQ(settled(AllOf(3, 3, 1, 4.25f)), 4.25f);
  // In 64 bits: the 1 is not lost.
  EXPECT_EQ(settled({3, 1, {1e9f, 1, -1e9f}, 0}), 1.0f);
  EXPECT_EQ(settled({3, 1, {16777216, 2, 1}, 0}), 16777220.0f);

  Matrix failing = AllOf(5, 5, 1, 0);
  ConvolutionMatrix record = failing.Record();
  EXPECT_EQ(ZEL_Convolute(source, 0, destination, &record, 0), -309);
  EXPECT_EQ(record.divider, 0.0f);
}

TEST(Convolute, DividesBySumsOfNine) {
  const TestImage source(IMAGE_U8, 70, 20, 1, 3);
  ExpectConvolved(source, AllOf(3, 3, 1, 0), 0);
  ExpectConvolved(source, AllOf(3, 3, 1, 9), 0);
}

TEST(Convolute, ByEveryDivider) {
  uint64_t seed = 500;
  std::vector<float> dividers = {0.5f,  0.1f,       1e-3f,    1e-30f,    1e-45f,    2.5f,
                                 1e9f,  1e38f,      INFINITE, NAN_VALUE, -INFINITE, -1.0f,
                                 -0.5f, 65535.0f,   65536.0f, 32767.0f,  32768.0f,  0.99999994f,
                                 8.1f,  1.0000001f, 140.0f,   49.0f,     255.0f,    256.0f};
  for (int32_t d = 2; d < 300; d += d < 70 ? 1 : 13) dividers.push_back(static_cast<float>(d));
  Random random(9);
  for (int32_t i = 0; i < 60; i++) dividers.push_back(random.Float(-300.0f, 300.0f));
  for (const float divider : dividers) {
    for (const int32_t type : SCALAR_TYPES) {
      const TestImage source(type, 133, 9, 3, ++seed);
      ExpectConvolved(source, RandomMatrix(3, 3, -9, 9, divider, seed), 0);
      ExpectConvolved(source, RandomMatrix(5, 3, 0, 9, divider, seed), 0);
      ExpectConvolved(source, AllOf(7, 7, 2, divider), 0);
      if (HasFatalFailure()) return;
    }
  }
}

// Along a ramp that rises by one a window, the sum of a row's pixels rises by one a pixel: it takes
// every value.
TEST(Convolute, DividesEverySumExactly) {
  Random random(12);
  for (int32_t columns = 3; columns <= 130; columns += columns < 30 ? 1 : 7) {
    const int32_t length = 255 * columns;
    const auto ramp = [&](int32_t x) {
      return (std::clamp(x, 0, length - 1) + columns - 1) / columns;
    };
    const TestImage source(IMAGE_U8, length, 1, columns / 2, 3);
    for (int32_t x = 0; x < length; x++) source.Set(x, 0, static_cast<uint8_t>(ramp(x)));
    const auto sum = static_cast<float>(columns);
    for (const float divider :
         {sum, sum - 1, static_cast<float>(random.Between(2, 300)), random.Float(1, 90), sum / 2}) {
      TestImage destination(IMAGE_U8, 1, 1);
      Matrix matrix = AllOf(columns, 1, 1, divider);
      ConvolutionMatrix record = matrix.Record();
      ASSERT_EQ(ZEL_Convolute(source, 0, destination, &record, BORDER_FILL_REPLICATE), 0);
      const std::vector<uint8_t> results = destination.Pixels();
      int32_t windowSum = 0;
      for (int32_t i = 0; i < columns; i++) windowSum += ramp(i - (columns - 1) / 2);
      for (int32_t x = 0; x < length; x++) {
        const double quotient = windowSum / static_cast<double>(divider);
        ASSERT_EQ(results.at(static_cast<size_t>(x)), Cut(quotient, IMAGE_U8))
            << windowSum << " / " << divider;
        windowSum += ramp(x + columns / 2 + 1) - ramp(x - (columns - 1) / 2);
      }
    }
  }
}

// A matrix of one coefficient that is not 0, in a window whose other pixels don't count, times a
// pixel gives every product; dividers around the products are the hard ones.
TEST(Convolute, CutsQuotientsAtWholeNumbers) {
  const TestImage source(IMAGE_U8, 256, 1, 1, 1);
  for (int32_t x = 0; x < 256; x++) source.Set(x, 0, static_cast<uint8_t>(x));
  for (int32_t coefficient = 1; coefficient <= 127; coefficient += 3) {
    for (float divider = 1.5f; divider < 400; divider *= 1.37f) {
      ExpectConvolved(source, {3, 1, {0, static_cast<float>(coefficient), 0}, divider}, 0);
      ExpectConvolved(source, {3, 1, {0, static_cast<float>(coefficient), 0}, std::floor(divider)},
                      0);
      if (HasFatalFailure()) return;
    }
  }
}

TEST(Convolute, WrapsSumsOfGroupedColumnsOnly) {
  const Matrix ones = AllOf(15, 15, 1, 1);
  const TestImage source(IMAGE_U8, 23, 20, 7, 1);
  for (int32_t y = 0; y < 20; y++) {
    for (int32_t x = 0; x < 23; x++) source.Set<uint8_t>(x, y, 255);
  }
  TestImage destination(IMAGE_U8, 1, 1);
  for (const float divider : {1.0f, 0.0f}) {
    Matrix matrix = ones;
    matrix.divider = divider;
    if (divider == 0.0f) {
      // Sum 0, and the same sums but for one pixel of the window.
      matrix.coefficients[0] = -112;
      matrix.coefficients[1] = -111;
    }
    ExpectConvolved(source, matrix, BORDER_FILL_MIRROR);
  }
  ASSERT_EQ(Call(ones, 0)(source, 0, destination), 0);
  EXPECT_EQ(destination.Get<uint8_t>(0, 0), 0);
  EXPECT_EQ(destination.Get<uint8_t>(19, 19), 0);
  EXPECT_EQ(destination.Get<uint8_t>(20, 0), 255);
  EXPECT_EQ(destination.Get<uint8_t>(22, 19), 255);

  // Under a mask there are no groups.
  const TestImage mask(IMAGE_U8, 23, 20, 0, 1);
  for (int32_t y = 0; y < 20; y++) {
    for (int32_t x = 0; x < 23; x++) mask.Set<uint8_t>(x, y, 1);
  }
  ASSERT_EQ(Call(ones, 0)(source, mask, destination), 0);
  EXPECT_EQ(destination.Get<uint8_t>(0, 0), 255);
}

TEST(Convolute, WrapsAtEveryWidthAndShape) {
  uint64_t seed = 700;
  for (const bool present : {true, false}) {
    zel::MmxForce(present ? 1 : 0);
    for (const auto& [width, height] : SHAPES) {
      for (const int32_t columns : {1, 2, 3, 4, 5, 6, 7, 11, 63, 64, 65, 66, 67, 130, 131, 260}) {
        const Matrix wide = RandomMatrix(width, height, -128, 127, 1, ++seed);
        const int32_t rows = std::max(wide.Border() + 1, 5);
        if (columns < wide.Border() + 1) continue;
        const TestImage source(IMAGE_U8, columns, rows, wide.Border(), seed);
        ExpectConvolved(source, wide, 0);
        ExpectConvolved(source, RandomMatrix(width, height, 90, 127, 1, seed), 0);
        ExpectConvolved(source, RandomMatrix(width, height, -128, -90, 1, seed), 0);
        ExpectConvolved(source, AllOf(width, height, 127, 1), 0);
        ExpectConvolved(source, AllOf(width, height, 100, 3), 0);
        if (HasFatalFailure()) break;
      }
    }
  }
  zel::MmxForce(-1);
}

TEST(Convolute, KeepsLargeCoefficients) {
  uint64_t seed = 900;
  for (const int32_t type : SCALAR_TYPES) {
    for (const auto& [low, high] : {std::pair{-129, 128},
                                    {-300, 300},
                                    {-40000, 40000},
                                    {-2000000, 2000000},
                                    {-1000000000, 1000000000},
                                    {32767, 32768},
                                    {-32769, -32767},
                                    {127, 128},
                                    {-129, -128}}) {
      for (const float divider : {1.0f, 0.0f, 3.0f, 70000.0f, -1e6f}) {
        for (const int32_t side : {3, 5}) {
          const TestImage source(type, 77, 5, 2, ++seed);
          ExpectConvolved(source, RandomMatrix(side, side, low, high, divider, seed), 0);
          if (HasFatalFailure()) return;
        }
      }
    }
  }
}

TEST(Convolute, WrapsSumsAt32Bits) {
  const TestImage source(IMAGE_I16, 40, 3, 1, 1);
  for (int32_t y = 0; y < 3; y++) {
    for (int32_t x = 0; x < 40; x++) source.Set<int16_t>(x, y, INT16_MIN);
  }
  ExpectConvolved(source, AllOf(3, 3, -32768, 1), 0);
  ExpectConvolved(source, AllOf(3, 3, -32768, 1e5f), 0);
  ExpectConvolved(source, {3, 1, {-32768, -32768, 0}, 1e5f}, 0);
  ExpectConvolved(source, {3, 1, {-2147483648.0f, 2147483520.0f, 0}, 1e5f}, 0);
}

TEST(Convolute, LimitsResults) {
  const TestImage words(IMAGE_I16, 5, 1, 1, 1);
  for (int32_t x = 0; x < 5; x++) words.Set<int16_t>(x, 0, -32767);
  TestImage destination(IMAGE_I16, 1, 1);
  const Matrix same{3, 1, {0, 1, 0}, 1};
  ASSERT_EQ(Call(same, 0)(words, 0, destination), 0);
  EXPECT_EQ(destination.Get<int16_t>(2, 0), -32767);
  const Matrix twice{3, 1, {0, 2, 0}, 1};
  ASSERT_EQ(Call(twice, 0)(words, 0, destination), 0);
  EXPECT_EQ(destination.Get<int16_t>(2, 0), -32768);
  const Matrix turned{3, 1, {0, -2, 0}, 1};
  ASSERT_EQ(Call(turned, 0)(words, 0, destination), 0);
  EXPECT_EQ(destination.Get<int16_t>(2, 0), 32767);
}

TEST(Convolute, ByFractionsTakesTheFloatPass) {
  uint64_t seed = 1100;
  Random random(4);
  for (const int32_t type : SCALAR_TYPES) {
    for (const auto& [width, height] : SHAPES) {
      for (const float divider : {1.0f, 0.0f, 3.7f, -2.0f, INFINITE, NAN_VALUE}) {
        Matrix matrix{width, height, {}, divider};
        for (int32_t i = 0; i < width * height; i++) {
          matrix.coefficients.push_back(random.Float(-1, 1));
        }
        const TestImage source(type, 67, 18, matrix.Border(), ++seed);
        ExpectConvolved(source, matrix, static_cast<int32_t>(seed % 3));
        if (HasFatalFailure()) return;
      }
    }
    Matrix half{3, 3, {0, 0, 0, 0, 0.5f, 0, 0, 0, 0}, 1};
    const TestImage source(type, 67, 18, 1, ++seed);
    ExpectConvolvedAnywhere(source, half, 0);
    // Coefficients that are no 32-bit integers count as fractions.
    for (const float odd : {NAN_VALUE, INFINITE, -INFINITE, 2147483648.0f, 1e20f, -1e38f}) {
      half.coefficients[1] = odd;
      ExpectConvolved(source, half, 0);
      if (HasFatalFailure()) return;
    }
  }
}

TEST(Convolute, ByFractionsOfAllWidthsAroundBlocksOfColumns) {
  uint64_t seed = 1400;
  Random random(5);
  for (const int32_t type : SCALAR_TYPES) {
    for (const int32_t width : {31, 32, 33, 63, 64, 65, 255, 256, 257, 287, 288, 289, 520}) {
      Matrix matrix{5, 3, {}, width % 2 == 0 ? 1.0f : 3.5f};
      for (int32_t i = 0; i < 15; i++) matrix.coefficients.push_back(random.Float(-1, 1));
      ExpectConvolved(TestImage(type, width, 7, 2, ++seed), matrix, 1);
      if (HasFatalFailure()) return;
    }
  }
}

TEST(Convolute, CutsFractionsAtWholeNumbers) {
  for (const int32_t type : {IMAGE_U8, IMAGE_I16}) {
    const TestImage source(type, 256, 1, 1, 1);
    for (int32_t x = 0; x < 256; x++) test::SetPixel(source, x, 0, x);
    Random random(4);
    for (int32_t i = 0; i < 2000; i++) {
      // Quotients of the pixels by a divider that some of them are multiples of, or nearly so.
      const float divider = static_cast<float>(random.Between(1, 4000)) / 16.0f;
      const float near = std::nextafter(divider, i % 2 == 0 ? 1e9f : 0.0f);
      const auto times = static_cast<float>(random.Between(1, 300));
      ExpectConvolved(source, {3, 1, {0, divider, 0.0f}, near}, 0);
      ExpectConvolved(source, {3, 1, {0, divider * times, 0.5f}, near}, 0);
      ExpectConvolved(source, {3, 1, {0, times, 0.0f}, near}, 0);
      if (HasFatalFailure()) return;
    }
  }
}

TEST(Convolute, OfFloatsIsNotLimited) {
  const TestImage source(IMAGE_SGL, 40, 9, 2, 6);
  source.Set(3, 3, INFINITE);
  source.Set(9, 3, NAN_VALUE);
  source.Set(15, 6, -INFINITE);
  source.Set(20, 2, 1e38f);
  source.Set(25, 2, 1e-45f);
  source.Set(30, 2, -0.0f);
  source.Set(35, 2, 3e38f);
  for (const float divider : {1.0f, 3.0f, 1e-30f, 1e30f, -7.0f}) {
    ExpectConvolved(source, RandomMatrix(3, 3, -9, 9, divider, 5), 0);
    ExpectConvolved(source, RandomMatrix(5, 5, -1, 1, divider, 6), 0);  // times 0 is not left out
    if (HasFatalFailure()) return;
  }
}

TEST(Convolute, RoundsTheSumsOfFloatsOnce) {
  const TestImage source(IMAGE_SGL, 80, 3, 1, 6);
  Random random(8);
  for (int32_t y = 0; y < 3; y++) {
    for (int32_t x = 0; x < 80; x++) {
      source.Set(x, y, std::ldexp(random.Float(-1, 1), random.Between(-140, 120)));
    }
  }
  for (int32_t i = 0; i < 200; i++) {
    const float divider = std::ldexp(random.Float(1, 2), random.Between(-120, 120));
    Matrix matrix{3, 1, {}, divider};
    for (int32_t c = 0; c < 3; c++) {
      matrix.coefficients.push_back(std::ldexp(random.Float(-1, 1), random.Between(-30, 30)));
    }
    ExpectConvolved(source, matrix, 0);
    if (HasFatalFailure()) return;
  }
}

}  // namespace
