#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <string>
#include <vector>

#include "filters/filter_test.h"

namespace {

using test::Mirrored;
using test::ODD_SIZES;
using test::PixelDifference;
using test::TestImage;
using test::Workers;

constexpr auto NAN_VALUE = static_cast<double>(NAN);
constexpr auto INFINITE = static_cast<double>(INFINITY);

double Larger(double a, double b) {
  return b > a ? b : a;
}

// The operators as they are stated. All numbers of integer images are exact in 64-bit floats.
double Operator(int32_t method, const Mirrored& pixel, int32_t x, int32_t y) {
  const double nw = pixel(x - 1, y - 1);
  const double n = pixel(x, y - 1);
  const double ne = pixel(x + 1, y - 1);
  const double w = pixel(x - 1, y);
  const double c = pixel(x, y);
  const double e = pixel(x + 1, y);
  const double sw = pixel(x - 1, y + 1);
  const double s = pixel(x, y + 1);
  const double se = pixel(x + 1, y + 1);
  switch (method) {
    case EDGE_DIFFERENTIATION:
      return Larger(Larger(std::abs(nw - c), std::abs(n - c)), std::abs(w - c));
    case EDGE_GRADIENT:
      return Larger(std::abs(nw - w), std::abs(n - c));
    case EDGE_PREWITT:
      return Larger(std::abs((ne + e + se) - (nw + w + sw)),
                    std::abs((sw + s + se) - (nw + n + ne))) /
             3.0;
    case EDGE_ROBERTS:
      return Larger(std::abs(nw - c), std::abs(w - n));
    case EDGE_SIGMA: {
      double sum = 0;
      for (const double neighbour : {nw, n, ne, w, e, sw, s, se}) sum += std::abs(c - neighbour);
      return sum / 8.0;
    }
    default:
      return Larger(std::abs((ne + 2 * e + se) - (nw + 2 * w + sw)),
                    std::abs((nw + 2 * n + ne) - (sw + 2 * s + se))) *
             0.25;
  }
}

double ThresholdOf(int32_t type, double threshold) {
  if (type == IMAGE_SGL) return threshold;
  if (std::isnan(threshold)) return 0;
  return std::trunc(std::fmin(std::fmax(threshold, INT32_MIN), INT32_MAX));
}

double Edge(int32_t method, double threshold, const Mirrored& pixels, int32_t x, int32_t y) {
  const int32_t type = pixels.type();
  double result = Operator(method, pixels, x, y);
  if (type != IMAGE_SGL) result = std::trunc(result);
  const bool isBelow = result < ThresholdOf(type, threshold);
  return isBelow && method != EDGE_SIGMA ? 0 : result;
}

auto Call(int32_t method, double threshold) {
  return [=](ImageRef source, ImageRef mask, ImageRef destination) {
    return ZEL_GrayEdge(source, mask, destination, method, static_cast<float>(threshold));
  };
}

auto Rule(int32_t method, double threshold) {
  return [=](const Mirrored& pixels, int32_t x, int32_t y) {
    return Edge(method, threshold, pixels, x, y);
  };
}

constexpr int32_t METHODS[] = {EDGE_DIFFERENTIATION, EDGE_GRADIENT, EDGE_PREWITT,
                               EDGE_ROBERTS,         EDGE_SIGMA,    EDGE_SOBEL};

void ExpectEdges(const TestImage& source, int32_t method, double threshold) {
  test::ExpectFiltered(source, Call(method, threshold), Rule(method, threshold));
}

TEST(GrayEdge, GivesTheOperatorsOnAllTypesAndSizes) {
  for (const int32_t method : METHODS) {
    uint64_t seed = 1;
    for (const int32_t type : {IMAGE_U8, IMAGE_I16, IMAGE_SGL}) {
      for (const auto& [width, height] : ODD_SIZES) {
        const int32_t border = 1 + static_cast<int32_t>(seed % 3);
        const double threshold = type == IMAGE_I16 ? 30000.0 : 60.5;
        const TestImage source(type, width, height, border, ++seed);
        SCOPED_TRACE(std::to_string(method) + " on type " + std::to_string(type) + ", " +
                     std::to_string(width) + " x " + std::to_string(height));
        ExpectEdges(source, method, threshold);
        if (HasFatalFailure()) return;
      }
    }
  }
}

TEST(GrayEdge, IsTheSameForAnyNumberOfWorkers) {
  test::ExpectTheSameForAnyWorkers(Call(EDGE_PREWITT, 10), Rule(EDGE_PREWITT, 10));
}

TEST(GrayEdge, ComparesWithEveryThreshold) {
  for (const int32_t method : METHODS) {
    for (const int32_t type : {IMAGE_U8, IMAGE_I16, IMAGE_SGL}) {
      for (const double threshold :
           {0.0,     1.0,   20.0,  20.9,      21.0,     -5.0,     127.0,   128.0,
            254.0,   255.0, 255.9, 256.0,     257.0,    1000.0,   32768.0, 65535.0,
            65536.0, 1e10,  -1e10, NAN_VALUE, INFINITE, -INFINITE}) {
        SCOPED_TRACE(threshold);
        ExpectEdges(TestImage(type, 40, 9, 1, 11), method, threshold);
        if (HasFatalFailure()) return;
      }
    }
  }
}

TEST(GrayEdge, KeepsEveryResultWithAThresholdOfZero) {
  for (const int32_t method : METHODS) {
    for (const double threshold : {0.0, -100.0}) {
      test::ExpectFiltered(TestImage(IMAGE_U8, 40, 30, 1, 3), Call(method, threshold),
                           [=](const Mirrored& pixels, int32_t x, int32_t y) {
                             return std::trunc(Operator(method, pixels, x, y));
                           });
    }
  }
}

TEST(GrayEdge, ClearsAllOfAByteImageWithAThresholdAbove255) {
  for (const int32_t method : METHODS) {
    TestImage source(IMAGE_U8, 40, 30, 1, 3);
    ASSERT_EQ(ZEL_GrayEdge(source, 0, 0, method, 256.0f), 0);
    const auto pixels = source.Pixels();
    const bool isClear = std::count(pixels.begin(), pixels.end(), 0) == 40 * 30;
    EXPECT_EQ(isClear, method != EDGE_SIGMA);
  }
}

TEST(GrayEdge, OfSigmaIgnoresTheThreshold) {
  for (const int32_t type : {IMAGE_U8, IMAGE_I16, IMAGE_SGL}) {
    test::ExpectFiltered(TestImage(type, 40, 30, 1, 3), Call(EDGE_SIGMA, 1e6),
                         [=](const Mirrored& pixels, int32_t x, int32_t y) {
                           const double mean = Operator(EDGE_SIGMA, pixels, x, y);
                           return type == IMAGE_SGL ? mean : std::trunc(mean);
                         });
  }
}

TEST(GrayEdge, TakesAnyOtherMethodForSobel) {
  const TestImage source(IMAGE_U8, 40, 30, 1, 3);
  for (const int32_t method : {5, 6, -1, 100, INT32_MIN, INT32_MAX}) {
    ExpectEdges(source, method, 5);
  }
}

TEST(GrayEdge, ReadsTheMirroredBorder) {
  const TestImage source(IMAGE_U8, 5, 4, 1, 3);
  TestImage destination(IMAGE_U8, 1, 1);
  ASSERT_EQ(ZEL_GrayEdge(source, 0, destination, EDGE_ROBERTS, 0.0f), 0);
  const auto pixel = [&](int32_t x, int32_t y) { return int32_t{source.Get<uint8_t>(x, y)}; };
  // Left of column 0 lies column 0 again, and above row 0 row 0.
  EXPECT_EQ(destination.Get<uint8_t>(0, 0), 0);
  EXPECT_EQ(destination.Get<uint8_t>(3, 0), std::abs(pixel(2, 0) - pixel(3, 0)));
  EXPECT_EQ(destination.Get<uint8_t>(0, 2), std::abs(pixel(0, 1) - pixel(0, 2)));
  EXPECT_EQ(source.Get<uint8_t>(5, 4), source.Get<uint8_t>(4, 3));
}

TEST(GrayEdge, KeepsTheLowBitsOfWords) {
  const TestImage source(IMAGE_I16, 20, 3, 1, 3);
  for (int32_t y = 0; y < 3; y++) {
    for (int32_t x = 0; x < 20; x++) {
      source.Set<int16_t>(x, y, x < 10 ? INT16_MIN : INT16_MAX);
    }
  }
  for (const int32_t method : METHODS) ExpectEdges(source, method, 65535.0);
  TestImage destination(IMAGE_I16, 1, 1);
  ASSERT_EQ(ZEL_GrayEdge(source, 0, destination, EDGE_SOBEL, 65535.0f), 0);
  EXPECT_EQ(destination.Get<int16_t>(10, 1), -1);
  EXPECT_EQ(destination.Get<int16_t>(5, 1), 0);
}

// Windows of their own whose rows differ by every number there is.
TEST(GrayEdge, DividesEverySumOfPrewittExactly) {
  for (const int32_t type : {IMAGE_U8, IMAGE_I16}) {
    const int32_t least = type == IMAGE_U8 ? 0 : INT16_MIN;
    const int32_t sums = 3 * (type == IMAGE_U8 ? 255 : 65535) + 1;
    const TestImage source(type, 3 * sums, 3, 1, 3);
    for (int32_t sum = 0; sum < sums; sum++) {
      for (int32_t i = 0; i < 3; i++) {
        test::SetPixel(source, 3 * sum + i, 0, least);
        test::SetPixel(source, 3 * sum + i, 1, least);
        test::SetPixel(source, 3 * sum + i, 2, least + (sum + i) / 3);
      }
    }
    TestImage destination(type, 1, 1);
    ASSERT_EQ(ZEL_GrayEdge(source, 0, destination, EDGE_PREWITT, 0.0f), 0);
    int32_t wrong = 0;
    for (int32_t sum = 2; sum < sums; sum++) {
      const int32_t x = 3 * sum + 1;
      wrong += type == IMAGE_U8 ? destination.Get<uint8_t>(x, 1) != sum / 3
                                : destination.Get<int16_t>(x, 1) != static_cast<int16_t>(sum / 3);
    }
    EXPECT_EQ(wrong, 0);
  }
}

TEST(GrayEdge, OfFloatsKeepsWhatIsNoNumber) {
  const TestImage source(IMAGE_SGL, 70, 12, 1, 3);
  test::Random random(4);
  for (int32_t i = 0; i < 60; i++) {
    constexpr float odd[] = {NAN, INFINITY, -INFINITY, 3e38f, -3e38f, 1e-40f, -0.0f, 16777216.0f};
    source.Set(random.Between(0, 69), random.Between(0, 11), odd[i % 8]);
  }
  for (const int32_t method : METHODS) {
    for (const double threshold : {0.0, 100.0, NAN_VALUE}) ExpectEdges(source, method, threshold);
  }
}

// Sums in another order would be rounded otherwise.
TEST(GrayEdge, OfFloatsSumsInTheStatedOrder) {
  const TestImage source(IMAGE_SGL, 70, 12, 1, 3);
  test::Random random(4);
  for (int32_t y = 0; y < 12; y++) {
    for (int32_t x = 0; x < 70; x++) {
      source.Set(x, y, std::ldexp(random.Float(-1, 1), random.Between(-40, 40)));
    }
  }
  for (const int32_t method : METHODS) ExpectEdges(source, method, 0.0);
}

TEST(GrayEdge, OfImagesSmallerThanTheirBorder) {
  for (const int32_t type : {IMAGE_U8, IMAGE_I16, IMAGE_SGL}) {
    for (const auto& [width, height] : {std::pair{1, 1}, {2, 2}, {3, 1}, {1, 9}, {20, 3}}) {
      ExpectEdges(TestImage(type, width, height, 5, 3), EDGE_SOBEL, 0);
    }
  }
}

TEST(GrayEdge, RefusesInTheOrderOfTheOperands) {
  test::ExpectRefusals(Call(EDGE_SOBEL, 0));
}

TEST(GrayEdge, BearsRefusedMemory) {
  for (const int32_t workers : {1, 3}) {
    const Workers forced(workers);
    test::ExpectMemoryRefusals(IMAGE_U8, Call(EDGE_SOBEL, 0));
  }
}

TEST(GrayEdge, PassesOnCalibrationAndOffsetAndWritesNoBorder) {
  const TestImage source(IMAGE_U8, 20, 9, 2, 3);
  ZEL_SetImageCalibration(source, 4, 0.5f, 0.25f);
  ZEL_SetImageOffset(source, -3, 6);
  const TestImage destination(IMAGE_U8, 20, 9, 3, 5);
  const auto before = destination.Surroundings();
  ASSERT_EQ(ZEL_GrayEdge(source, 0, destination, EDGE_SOBEL, 0.0f), 0);
  EXPECT_EQ(destination.Surroundings(), before);
  const ImageInfo info = destination.Info();
  EXPECT_EQ(info.unit, 4);
  EXPECT_EQ(info.xStep, 0.5f);
  EXPECT_EQ(info.offsetX, -3);
  EXPECT_EQ(info.offsetY, 6);
}

}  // namespace
