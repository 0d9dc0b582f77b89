#include "vision/window_sum.h"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <limits>
#include <vector>

#include "harness/test_image.h"

namespace {

float Fresh(const std::vector<float>& signal, size_t first, size_t width) {
  double sum = 0;
  for (size_t i = 0; i < width; i++) sum += static_cast<double>(signal[first + i]);
  return static_cast<float>(sum);
}

void ExpectFreshSums(const std::vector<float>& signal, size_t width, const char* what) {
  const zel::WindowSumRule rule(signal.data(), static_cast<int64_t>(signal.size()),
                                static_cast<int64_t>(width));
  zel::WindowSum sum(rule, signal.data());
  for (size_t first = 0;; first++) {
    const float expected = Fresh(signal, first, width);
    if (std::isnan(expected)) {
      ASSERT_TRUE(std::isnan(sum.Value())) << what << " at " << first << " of width " << width;
    } else {
      ASSERT_EQ(sum.Value(), expected) << what << " at " << first << " of width " << width;
    }
    if (first + width == signal.size()) break;
    sum.Slide();
  }
}

const std::vector<size_t> WIDTHS = {1, 2, 7, 63, 64, 65, 200, 1000};

TEST(WindowSum, OfWholeNumbersIsThatOfFreshSums) {
  test::Random random(1);
  std::vector<float> signal(1200);
  for (float& value : signal) value = static_cast<float>(random.Between(-32768, 32767));
  for (const size_t width : WIDTHS) ExpectFreshSums(signal, width, "words");
  for (float& value : signal) value = 255.0f;
  for (const size_t width : WIDTHS) ExpectFreshSums(signal, width, "flat");
  for (float& value : signal) value = 0.0f;
  for (const size_t width : WIDTHS) ExpectFreshSums(signal, width, "zeros");
}

TEST(WindowSum, OfAnyFloatsIsThatOfFreshSums) {
  test::Random random(2);
  std::vector<float> signal(1200);
  for (const int32_t spread : {1, 10, 40, 100, 250}) {
    for (float& value : signal) {
      value = std::ldexp(random.Float(-1.0f, 1.0f), random.Between(-spread / 2, spread / 2));
    }
    for (const size_t width : WIDTHS) ExpectFreshSums(signal, width, "spread floats");
  }
  for (float& value : signal) value = std::bit_cast<float>(random.Next() & 0xFF7FFFFFu);
  for (const size_t width : WIDTHS) ExpectFreshSums(signal, width, "any finite floats");
  for (float& value : signal) value = std::bit_cast<float>(random.Next() & 0x80FFFFFFu);
  for (const size_t width : WIDTHS) ExpectFreshSums(signal, width, "smallest floats");
}

// Sums that lie right between two floats, moved off by parts that doubles round away or do not.
TEST(WindowSum, OnTheEdgeOfRoundingIsThatOfFreshSums) {
  test::Random random(3);
  for (const int32_t depth : {30, 50, 52, 53, 54, 60, 90}) {
    std::vector<float> signal(800);
    for (float& value : signal) {
      switch (random.Between(0, 3)) {
        case 0:
          value = 16777216.0f;
          break;
        case 1:
          value = 1.0f;
          break;
        case 2:
          value = std::ldexp(1.0f, 24 - depth);
          break;
        default:
          value = -std::ldexp(1.0f, 24 - depth);
      }
    }
    for (const size_t width : WIDTHS) {
      if (width < signal.size()) ExpectFreshSums(signal, width, "edges of rounding");
    }
  }
}

TEST(WindowSum, PassesInfinitiesAndNaNOnAsLongAsTheyAreInTheWindow) {
  test::Random random(4);
  std::vector<float> signal(900);
  for (float& value : signal) value = random.Float(-5.0f, 5.0f);
  signal[300] = std::numeric_limits<float>::infinity();
  signal[420] = -std::numeric_limits<float>::infinity();
  signal[700] = NAN;
  for (const size_t width : {2u, 64u, 65u, 150u}) ExpectFreshSums(signal, width, "not finite");
}

}  // namespace
