#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

#include "harness/test_image.h"
#include "orlune_ptk.h"

namespace {

using test::TestImage;

// ---- coordinate references

struct Reference {
  PointInt origin{7, 7};
  float degrees = 7;
  float radians = 7;
};

int32_t CoordinateReference(const std::vector<PointInt>& points, Reference* reference) {
  return ZEL_CoordinateReference(points.data(), static_cast<int32_t>(points.size()),
                                 &reference->origin, &reference->degrees, &reference->radians);
}

TEST(CoordinateReference, TwoPointsGiveTheFirstAndTheAngle) {
  for (const auto& [points, degrees, radians] :
       {std::tuple<std::vector<PointInt>, float, float>{{{3, 4}, {13, 4}}, 0.0f, 0.0f},
        {{{3, 4}, {13, 14}}, 45.0f, 0.785398163f},
        {{{3, 4}, {-7, 14}}, -45.0f, -0.785398163f},
        {{{3, 4}, {3, 14}}, 90.0f, 1.5707964f},
        {{{3, 4}, {3, -14}}, 90.0f, 1.5707964f},
        {{{3, 4}, {3, 4}}, 90.0f, 1.5707964f}}) {
    Reference reference;
    ASSERT_EQ(CoordinateReference(points, &reference), 0);
    EXPECT_EQ(reference.origin.x, 3);
    EXPECT_EQ(reference.origin.y, 4);
    EXPECT_NEAR(reference.degrees, degrees, 1e-5);
    EXPECT_FLOAT_EQ(reference.radians, radians);
  }
}

TEST(CoordinateReference, AnglesAreRoundedOnce) {
  Reference reference;
  ASSERT_EQ(CoordinateReference({{0, 0}, {7, 3}}, &reference), 0);
  EXPECT_EQ(reference.radians, static_cast<float>(std::atan(3.0 / 7.0)));
  EXPECT_EQ(reference.degrees, static_cast<float>(std::atan(3.0 / 7.0) * 57.29577867));
}

TEST(CoordinateReference, ThirdPointMovesTheOriginToItsFoot) {
  test::Random random(3);
  for (int32_t i = 0; i < 2000; i++) {
    const auto point = [&] {
      return PointInt{random.Between(-300, 300), random.Between(-300, 300)};
    };
    const PointInt a = point();
    const PointInt b = point();
    const PointInt c = point();
    if (a.x == b.x && a.y == b.y) continue;
    const double dx = b.x - a.x;
    const double dy = b.y - a.y;
    const double along = ((c.x - a.x) * dx + (c.y - a.y) * dy) / (dx * dx + dy * dy);
    Reference reference;
    ASSERT_EQ(CoordinateReference({a, b, c, {9, 9}}, &reference), 0);
    // Cut toward zero, from numbers that are whole products.
    EXPECT_EQ(
        reference.origin.x,
        static_cast<int32_t>(std::trunc(a.x + along * dx + (a.x + along * dx < 0 ? -1e-9 : 1e-9))));
    EXPECT_EQ(
        reference.origin.y,
        static_cast<int32_t>(std::trunc(a.y + along * dy + (a.y + along * dy < 0 ? -1e-9 : 1e-9))));
  }
}

TEST(CoordinateReference, TakesPointsAnywhere) {
  Reference reference;
  const PointInt low{INT32_MIN, INT32_MIN};
  const PointInt high{INT32_MAX, INT32_MAX};
  EXPECT_EQ(CoordinateReference({low, high, low}, &reference), 0);
  EXPECT_EQ(CoordinateReference({{0, 0}, low, high}, &reference), 0);
  EXPECT_EQ(CoordinateReference({{0, 0}, low, low}, &reference), 0);
  EXPECT_EQ(CoordinateReference({high, {0, 0}, {INT32_MIN, 5}}, &reference), 0);
}

TEST(CoordinateReference, RefusesTooFewPointsAndEqualOnes) {
  Reference reference;
  const std::vector<PointInt> points{{3, 4}, {3, 4}, {5, 5}};
  EXPECT_EQ(CoordinateReference({{3, 4}}, &reference), -752);
  EXPECT_EQ(ZEL_CoordinateReference(nullptr, -5, &reference.origin, &reference.degrees,
                                    &reference.radians),
            -752);
  EXPECT_EQ(CoordinateReference(points, &reference), -3006);
  EXPECT_EQ(ZEL_CoordinateReference(nullptr, 2, &reference.origin, &reference.degrees,
                                    &reference.radians),
            -3009);
  EXPECT_EQ(
      ZEL_CoordinateReference(points.data(), 1, nullptr, &reference.degrees, &reference.radians),
      -3009);
  EXPECT_EQ(
      ZEL_CoordinateReference(points.data(), 2, &reference.origin, nullptr, &reference.radians),
      -3009);
  EXPECT_EQ(
      ZEL_CoordinateReference(points.data(), 2, &reference.origin, &reference.degrees, nullptr),
      -3009);
  EXPECT_EQ(reference.origin.x, 7);
  EXPECT_EQ(reference.degrees, 7);
}

// ---- rotation

struct Circle {
  PointFloat test, reference;
  int32_t radius, precision;
};

struct Turn {
  double radians, degrees;
};

float PixelAt(const TestImage& image, float x, float y) {
  const auto column = std::clamp(static_cast<int32_t>(x), 0, image.width() - 1);
  const auto row = std::clamp(static_cast<int32_t>(y), 0, image.height() - 1);
  return static_cast<float>(test::PixelOf(image, column, row));
}

// The stated sums, one shift after the other.
Turn ReferenceTurn(const TestImage& reference, const TestImage& test, const Circle& circle) {
  const auto n = static_cast<size_t>(360 / circle.precision + 1);
  std::vector<float> a(n);
  std::vector<float> b(n);
  for (size_t i = 0; i < n; i++) {
    const double angle = static_cast<double>(i) * (6.28318548 / static_cast<double>(n));
    const auto x = static_cast<float>(std::cos(angle) * circle.radius +
                                      static_cast<double>(circle.reference.x));
    const auto y = static_cast<float>(std::sin(angle) * circle.radius +
                                      static_cast<double>(circle.reference.y));
    a[i] = PixelAt(reference, x, y);
    b[i] = PixelAt(test, x + (circle.test.x - circle.reference.x),
                   y + (circle.test.y - circle.reference.y));
  }
  const float lowA = *std::min_element(a.begin(), a.end());
  const float lowB = *std::min_element(b.begin(), b.end());
  size_t best = 0;
  double largest = 0;
  for (size_t k = 0; k < n; k++) {
    double sum = 0;
    for (size_t j = 0; j < n; j++) {
      sum += static_cast<double>(a[(j + k) % n] - lowA) * static_cast<double>(b[j] - lowB);
    }
    if (k == 0 || sum > largest) {
      best = k;
      largest = sum;
    }
  }
  const double part = static_cast<double>(best) / static_cast<double>(n);
  return {part * 6.28318548, 360.0 * static_cast<double>(best) / static_cast<double>(n)};
}

int32_t DetectRotation(ImageRef reference, ImageRef test, const Circle& circle, Turn* turn) {
  return ZEL_DetectRotation(reference, test, circle.test, circle.reference, circle.radius,
                            circle.precision, &turn->radians, &turn->degrees);
}

TEST(DetectRotation, FollowsTheStatedSums) {
  test::Random random(4);
  for (const int32_t type : {IMAGE_U8, IMAGE_I16, IMAGE_SGL}) {
    for (int32_t i = 0; i < 20; i++) {
      const TestImage reference(type, 90, 70, 1, random.Next());
      const TestImage other(random.Between(0, 2), 80, 80, 0, random.Next());
      reference.FillRandom(random.Next());
      other.FillRandom(random.Next());
      const Circle circle{{random.Float(30, 50), random.Float(30, 50)},
                          {random.Float(30, 60), random.Float(30, 40)},
                          random.Between(0, 30),
                          random.Between(1, i % 2 == 0 ? 3 : 400)};
      Turn turn{};
      ASSERT_EQ(DetectRotation(reference, other, circle, &turn), 0);
      const Turn expected = ReferenceTurn(reference, other, circle);
      EXPECT_EQ(turn.degrees, expected.degrees);
      EXPECT_EQ(turn.radians, expected.radians);
    }
  }
}

TEST(DetectRotation, FindsATurnedPart) {
  // Three blades of different width around the centre, turned by a known angle.
  const auto scene = [](const TestImage& image, float cx, float cy, double turned) {
    for (int32_t y = 0; y < image.height(); y++) {
      for (int32_t x = 0; x < image.width(); x++) {
        double angle =
            std::atan2(y + 0.5 - static_cast<double>(cy), x + 0.5 - static_cast<double>(cx)) * 180 /
                3.14159265 -
            turned;
        angle = std::fmod(angle + 720, 360);
        const bool isBlade =
            angle < 20 || (angle > 100 && angle < 150) || (angle > 200 && angle < 205);
        image.Set<uint8_t>(x, y, isBlade ? 230 : 40);
      }
    }
  };
  const TestImage reference(IMAGE_U8, 200, 200);
  const TestImage other(IMAGE_U8, 220, 210);
  scene(reference, 100, 100, 0);
  for (const double angle : {0.0, 15.0, 90.0, 200.0, 340.0}) {
    scene(other, 110, 105, angle);
    Turn turn{};
    ASSERT_EQ(DetectRotation(reference, other, {{110, 105}, {100, 100}, 70, 1}, &turn), 0);
    EXPECT_NEAR(std::fmod(turn.degrees + angle + 5, 360) - 5, 0, 2.0) << turn.degrees;
    EXPECT_NEAR(turn.radians, turn.degrees * 6.28318548 / 360, 1e-12);
  }
}

TEST(DetectRotation, PrecisionOf360TakesTwoSamples) {
  const TestImage reference(IMAGE_U8, 21, 21);
  ASSERT_EQ(ZEL_DrawRect(reference, 0, 0, 0, 21, 21, DRAW_PAINT, 10), 0);
  reference.Set<uint8_t>(15, 10, 90);
  const TestImage turned(IMAGE_U8, 21, 21);
  ASSERT_EQ(ZEL_DrawRect(turned, 0, 0, 0, 21, 21, DRAW_PAINT, 10), 0);
  for (int32_t y = 9; y < 12; y++) turned.Set<uint8_t>(5, y, 90);
  Turn turn{};
  ASSERT_EQ(DetectRotation(reference, turned, {{10.5f, 10.5f}, {10.5f, 10.5f}, 5, 360}, &turn), 0);
  EXPECT_EQ(turn.degrees, 180.0);
  ASSERT_EQ(DetectRotation(reference, turned, {{10.5f, 10.5f}, {10.5f, 10.5f}, 5, 361}, &turn), 0);
  EXPECT_EQ(turn.degrees, 0.0);
}

TEST(DetectRotation, EqualCorrelationsGiveTheFirst) {
  const TestImage flat(IMAGE_U8, 21, 21);
  ASSERT_EQ(ZEL_DrawRect(flat, 0, 0, 0, 21, 21, DRAW_PAINT, 10), 0);
  Turn turn{7, 7};
  ASSERT_EQ(DetectRotation(flat, flat, {{10, 10}, {10, 10}, 5, 1}, &turn), 0);
  EXPECT_EQ(turn.degrees, 0.0);
}

TEST(DetectRotation, RefusesCirclesThatDoNotFit) {
  constexpr float nan = std::numeric_limits<float>::quiet_NaN();
  const TestImage image(IMAGE_U8, 20, 20, 0, 3);
  const TestImage large(IMAGE_U8, 40, 40, 0, 3);
  const TestImage empty(IMAGE_U8, 0, 0);
  const TestImage colour(IMAGE_RGB, 20, 20);
  Turn turn{7, 7};
  const auto rotation = [&](ImageRef a, ImageRef b, const Circle& circle) {
    return DetectRotation(a, b, circle, &turn);
  };
  EXPECT_EQ(rotation(image, large, {{30, 30}, {10.5f, 10}, 10, 1}), -2314);
  EXPECT_EQ(rotation(image, large, {{30, 30}, {10, 9.5f}, 10, 1}), -2314);
  EXPECT_EQ(rotation(large, image, {{10, 10.5f}, {20, 20}, 10, 1}), -2314);
  EXPECT_EQ(rotation(image, large, {{30, nan}, {10, 10}, 5, 1}), -2314);
  EXPECT_EQ(rotation(image, large, {{30, 30}, {nan, 10}, 5, 0}), -2314);
  EXPECT_EQ(rotation(image, large, {{30, 30}, {10, 10}, INT32_MAX, 1}), -2314);
  EXPECT_EQ(rotation(empty, image, {{10, 10}, {0, 0}, 0, 1}), -2314);
  EXPECT_EQ(rotation(image, empty, {{0, 0}, {10, 10}, INT32_MIN, 1}), -2314);
  EXPECT_EQ(rotation(image, large, {{30, 30}, {10, 10}, 10, 0}), -503);
  EXPECT_EQ(rotation(image, large, {{30, 30}, {10, 10}, 10, INT32_MIN}), -503);
  EXPECT_EQ(rotation(colour, image, {{10, 10}, {10, 10}, 50, 0}), -301);
  EXPECT_EQ(rotation(image, colour, {{10, 10}, {10, 10}, 50, 0}), -301);
  EXPECT_EQ(rotation(12345, colour, {{10, 10}, {10, 10}, 5, 1}), -200);
  EXPECT_EQ(rotation(image, 12345, {{10, 10}, {10, 10}, 5, 1}), -200);
  EXPECT_EQ(ZEL_DetectRotation(12345, image, {10, 10}, {10, 10}, 5, 1, nullptr, &turn.degrees),
            -3009);
  EXPECT_EQ(ZEL_DetectRotation(12345, image, {10, 10}, {10, 10}, 5, 1, &turn.radians, nullptr),
            -3009);
  EXPECT_EQ(turn.degrees, 7);
  EXPECT_EQ(turn.radians, 7);
}

TEST(DetectRotation, TakesCirclesOnTheSidesAndNegativeRadii) {
  const TestImage image(IMAGE_U8, 20, 20, 0, 3);
  Turn turn{};
  EXPECT_EQ(DetectRotation(image, image, {{10, 10}, {10, 10}, 10, 1}, &turn), 0);
  EXPECT_EQ(DetectRotation(image, image, {{10, 10}, {10, 10}, INT32_MIN, 1}, &turn), 0);
  EXPECT_EQ(DetectRotation(image, image, {{2e9f, -2e9f}, {10, 10}, INT32_MIN, 1}, &turn), 0);
}

}  // namespace
