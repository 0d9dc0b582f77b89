#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <limits>
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
  int32_t LastOrder() const { return width * height - 1; }
};

// As it is stated: each pixel goes in behind all others and moves down past those that are larger.
std::vector<double> Inserted(const std::vector<double>& pixels) {
  std::vector<double> sorted;
  for (const double pixel : pixels) {
    size_t at = sorted.size();
    sorted.push_back(pixel);
    for (; at > 0 && sorted[at - 1] > pixel; at--) sorted[at] = sorted[at - 1];
    sorted[at] = pixel;
  }
  return sorted;
}

double Ranked(Window window, int32_t order, const Mirrored& pixels, int32_t x, int32_t y) {
  if (window.width < 1 || window.height < 1) return pixels(x, y);
  std::vector<double> all;
  for (int32_t j = 0; j < window.height; j++) {
    for (int32_t i = 0; i < window.width; i++) {
      all.push_back(pixels(x - (window.width - 1) / 2 + i, y - (window.height - 1) / 2 + j));
    }
  }
  const auto place = static_cast<size_t>(std::clamp(order, 0, window.LastOrder()));
  const bool isSmall = all.size() <= 100;
  const bool hasNan = std::any_of(all.begin(), all.end(), [](double v) { return std::isnan(v); });
  if (isSmall || hasNan) return Inserted(all)[place];
  std::stable_sort(all.begin(), all.end());  // what insertion gives without NaN, only sooner
  return all[place];
}

auto Call(Window window, int32_t order) {
  return [=](ImageRef source, ImageRef mask, ImageRef destination) {
    return ZEL_NthOrder(source, mask, destination, window.width, window.height, order);
  };
}

auto Rule(Window window, int32_t order) {
  return [=](const Mirrored& pixels, int32_t x, int32_t y) {
    return Ranked(window, order, pixels, x, y);
  };
}

std::string NameOf(const TestImage& source, Window window, int32_t order) {
  return "rank " + std::to_string(order) + " of " + std::to_string(window.width) + " x " +
         std::to_string(window.height) + " on type " + std::to_string(source.Info().type) + ", " +
         std::to_string(source.width()) + " x " + std::to_string(source.height());
}

void ExpectRanked(const TestImage& source, Window window, int32_t order) {
  SCOPED_TRACE(NameOf(source, window, order));
  test::ExpectFiltered(source, Call(window, order), Rule(window, order));
}

// The bits as well: NaN and the signs of zeros.
void ExpectRankedBits(const TestImage& source, Window window, int32_t order) {
  SCOPED_TRACE(NameOf(source, window, order));
  const Mirrored pixels(source);
  TestImage destination(IMAGE_SGL, 1, 1);
  ASSERT_EQ(Call(window, order)(source, 0, destination), 0);
  for (int32_t y = 0; y < source.height(); y++) {
    for (int32_t x = 0; x < source.width(); x++) {
      const auto expected = static_cast<float>(Ranked(window, order, pixels, x, y));
      ASSERT_EQ(std::bit_cast<uint32_t>(destination.Get<float>(x, y)),
                std::bit_cast<uint32_t>(expected))
          << "at " << x << ", " << y << ": " << expected;
    }
  }
}

int32_t BorderOf(Window window) {
  return std::max(window.width, window.height) / 2;
}

TEST(NthOrder, GivesEveryRankOfSmallWindows) {
  for (const int32_t type : SCALAR_TYPES) {
    for (const Window window : {Window{1, 2}, {2, 1}, {2, 2}, {3, 1}, {1, 3}, {3, 2}, {3, 3}}) {
      for (int32_t order = -1; order <= window.LastOrder() + 1; order++) {
        ExpectRanked(TestImage(type, 37, 9, BorderOf(window), 6), window, order);
        if (HasFatalFailure()) return;
      }
    }
  }
}

TEST(NthOrder, OfAllTypesAndSizes) {
  uint64_t seed = 1;
  for (const int32_t type : SCALAR_TYPES) {
    for (const auto& [width, height] : ODD_SIZES) {
      const int32_t border = 3 + static_cast<int32_t>(seed % 3);
      const TestImage source(type, width, height, border, ++seed);
      ExpectRanked(source, {3, 3}, 4);
      ExpectRanked(source, {5, 5}, 12);
      ExpectRanked(source, {4, 6}, 7);
      if (HasFatalFailure()) return;
    }
  }
}

// Widths around the vectors and strips that are computed at once.
TEST(NthOrder, OfWidthsAroundVectors) {
  for (const int32_t type : SCALAR_TYPES) {
    for (const int32_t width :
         {1, 7, 8, 9, 15, 16, 17, 31, 32, 33, 63, 64, 65, 127, 128, 129, 255, 257, 320}) {
      const TestImage source(type, width, 5, 3, static_cast<uint64_t>(width));
      ExpectRanked(source, {3, 3}, 4);
      ExpectRanked(source, {7, 7}, 24);
      ExpectRanked(source, {6, 3}, 8);
      if (HasFatalFailure()) return;
    }
  }
}

TEST(NthOrder, OfHeightsAroundGroupsOfRows) {
  for (const int32_t type : SCALAR_TYPES) {
    for (int32_t height = 1; height <= 20; height++) {
      const TestImage source(type, 20, height, 4, static_cast<uint64_t>(height));
      ExpectRanked(source, {3, 7}, 9);
      ExpectRanked(source, {3, 8}, 12);
      if (HasFatalFailure()) return;
    }
  }
}

// Each way of computing has its own windows: networks, histograms, tiles.
TEST(NthOrder, OfWindowsOfAllKinds) {
  for (const int32_t type : SCALAR_TYPES) {
    for (const Window window : {Window{4, 4},
                                {5, 5},
                                {7, 3},
                                {3, 8},
                                {9, 1},
                                {1, 16},
                                {7, 7},
                                {9, 9},
                                {11, 10},
                                {15, 15},
                                {17, 2},
                                {2, 33},
                                {24, 23},
                                {41, 1},
                                {1, 41},
                                {31, 31}}) {
      const TestImage source(type, 29, 11, BorderOf(window), 6);
      const int32_t last = window.LastOrder();
      for (const int32_t order : {0, 1, last / 3, (last + 1) / 2, last - 2, last}) {
        ExpectRanked(source, window, order);
        if (HasFatalFailure()) return;
      }
    }
  }
}

// Few values, many of them equal, and the ends of the range.
TEST(NthOrder, OfImagesWithFewValues) {
  for (const int32_t type : SCALAR_TYPES) {
    const TestImage source(type, 150, 40, 16, 6);
    test::Random random(5);
    for (int32_t y = 0; y < 40; y++) {
      for (int32_t x = 0; x < 150; x++) {
        const int32_t low = type == IMAGE_U8 ? 0 : -32768;
        const int32_t high = type == IMAGE_U8 ? 255 : 32767;
        const int32_t some = x / 20 + y / 10;
        test::SetPixel(source, x, y, random.Next() % 3 ? some : random.Next() % 2 ? low : high);
      }
    }
    ExpectRanked(source, {3, 3}, 4);
    ExpectRanked(source, {9, 8}, 30);
    ExpectRanked(source, {33, 32}, 500);
  }
}

TEST(NthOrder, OfTheMedianAndTheLargest) {
  const TestImage source(IMAGE_U8, 3, 3, 1, 3);
  for (int32_t i = 0; i < 9; i++) source.Set(i % 3, i / 3, static_cast<uint8_t>(10 * i));
  TestImage destination(IMAGE_U8, 1, 1);
  ASSERT_EQ(ZEL_NthOrder(source, 0, destination, 3, 3, 4), 0);
  EXPECT_EQ(destination.Get<uint8_t>(1, 1), 40);
  for (const int32_t order : {8, 9, INT32_MAX}) {
    ASSERT_EQ(ZEL_NthOrder(source, 0, destination, 3, 3, order), 0);
    EXPECT_EQ(destination.Get<uint8_t>(1, 1), 80);
  }
  for (const int32_t order : {0, -1, INT32_MIN}) {
    ASSERT_EQ(ZEL_NthOrder(source, 0, destination, 3, 3, order), 0);
    EXPECT_EQ(destination.Get<uint8_t>(1, 1), 0);
  }
}

TEST(NthOrder, WithoutAWindowCopiesTheSource) {
  for (const int32_t type : SCALAR_TYPES) {
    for (const Window window : {Window{1, 1}, {0, 0}, {-5, 1}, {-3, -3}, {INT32_MIN, INT32_MIN}}) {
      for (const int32_t border : {0, 2}) {
        ExpectRanked(TestImage(type, 37, 9, border, 6), window.width == 1 ? window : Window{0, 0},
                     0);
        const TestImage source(type, 37, 9, border, 6);
        TestImage destination(type, 1, 1);
        ASSERT_EQ(Call(window, 3)(source, 0, destination), 0);
        ASSERT_EQ(PixelDifference(destination, source), "");
      }
    }
  }
}

TEST(NthOrder, NeedsTheBorderOfItsLargerSide) {
  test::ExpectTheBorderOfTheLargerSide([](int32_t width, int32_t height) {
    return Call({width, height}, 2);
  });
}

// Counts beyond 16 bits, and windows on both sides of that.
TEST(NthOrder, OfHugeWindows) {
  for (const int32_t type : SCALAR_TYPES) {
    for (const Window window : {Window{255, 257}, {256, 256}, {257, 256}, {300, 299}}) {
      const TestImage source(type, 20, 3, 150, 3);
      const Mirrored mirrored(source);
      for (const int32_t order : {0, 100, window.LastOrder() / 2, window.LastOrder()}) {
        TestImage destination(type, 1, 1);
        ASSERT_EQ(Call(window, order)(source, 0, destination), 0);
        for (const auto& [x, y] : {std::pair{0, 0}, {1, 2}, {10, 1}, {19, 2}}) {
          std::vector<double> pixels;
          for (int32_t j = 0; j < window.height; j++) {
            for (int32_t i = 0; i < window.width; i++) {
              pixels.push_back(
                  mirrored(x - (window.width - 1) / 2 + i, y - (window.height - 1) / 2 + j));
            }
          }
          std::nth_element(pixels.begin(), pixels.begin() + order, pixels.end());
          ASSERT_EQ(PixelOf(destination, x, y), pixels[static_cast<size_t>(order)])
              << NameOf(source, window, order) << " at " << x;
        }
      }
    }
  }
}

// Zeros of both signs and numbers around them; NaN in some windows and in none.
TestImage OddFloats(int32_t width, int32_t height, int32_t border, int32_t nanOneIn) {
  const TestImage image(IMAGE_SGL, width, height, border, 3);
  test::Random random(4);
  for (int32_t y = 0; y < height; y++) {
    for (int32_t x = 0; x < width; x++) {
      constexpr float some[] = {0.0f,    -0.0f, 0.0f,     -0.0f,     1e-45f,
                                -1e-45f, 2.0f,  INFINITY, -INFINITY, -3e38f};
      image.Set(x, y, some[random.Next() % std::size(some)]);
      if (nanOneIn > 0 && random.Next() % static_cast<uint32_t>(nanOneIn) == 0) {
        const uint32_t payload = static_cast<uint32_t>(random.Next() % 1000 + 1);
        image.Set(x, y,
                  std::bit_cast<float>((random.Next() % 2 ? 0x7FC00000 : 0xFFC00000) | payload));
      }
    }
  }
  return CloneOf(image);
}

TEST(NthOrder, OfFloatsThatAreNoNumbers) {
  for (const int32_t nanOneIn : {0, 2, 10, 300}) {
    for (const Window window : {Window{3, 3}, {2, 2}, {5, 5}, {7, 7}, {4, 9}, {1, 12}, {25, 20}}) {
      const TestImage source =
          OddFloats(window.width < 20 ? 83 : 40, 7, BorderOf(window), nanOneIn);
      const int32_t last = window.LastOrder();
      for (const int32_t order : {0, last / 3, (last + 1) / 2, last}) {
        ExpectRankedBits(source, window, order);
        if (HasFatalFailure()) return;
      }
    }
  }
}

// A single one, wherever it stands, is seen in each window that it is in.
TEST(NthOrder, OfASingleFloatThatIsNoNumberAmongNumbers) {
  for (const float odd : {std::numeric_limits<float>::quiet_NaN(), -0.0f}) {
    for (const Window window : {Window{2, 2}, {2, 4}, {3, 3}, {3, 4}, {4, 5}, {5, 5}, {3, 8}}) {
      for (int32_t place = 0; place < 90; place += 4) {
        const TestImage source(IMAGE_SGL, 9, 10, BorderOf(window), 3);
        for (int32_t i = 0; i < 90; i++) {
          const auto number = static_cast<float>(odd == 0.0f ? (i * 7) % 3 - 1 : (i * 37) % 90);
          source.Set(i % 9, i / 9, i == place ? odd : number);
        }
        for (const int32_t order : {0, window.LastOrder() / 2}) {
          ExpectRankedBits(source, window, order);
          if (HasFatalFailure()) return;
        }
      }
    }
  }
}

TEST(NthOrder, OfZerosOfOneSign) {
  for (const float zero : {0.0f, -0.0f}) {
    const TestImage source(IMAGE_SGL, 83, 13, 3, 3);
    test::Random random(4);
    for (int32_t y = 0; y < 13; y++) {
      for (int32_t x = 0; x < 83; x++) {
        source.Set(x, y, random.Next() % 2 ? zero : random.Float(-1, 1));
      }
    }
    ExpectRankedBits(source, {3, 3}, 4);
    ExpectRankedBits(source, {6, 5}, 11);
  }
}

TEST(NthOrder, MendsFloatsUnderAMask) {
  const Window window{3, 3};
  const TestImage source = OddFloats(83, 13, 1, 20);
  const TestImage mask = test::SparseMask(50, 20, 7, -2, 5);
  const Mirrored pixels(source);
  TestImage destination(IMAGE_SGL, 1, 1);
  ASSERT_EQ(Call(window, 4)(source, mask, destination), 0);
  for (int32_t y = 0; y < 13; y++) {
    for (int32_t x = 0; x < 83; x++) {
      const double expected =
          test::Selects(&mask, x, y) ? Ranked(window, 4, pixels, x, y) : pixels(x, y);
      ASSERT_EQ(std::bit_cast<uint32_t>(destination.Get<float>(x, y)),
                std::bit_cast<uint32_t>(static_cast<float>(expected)));
    }
  }
}

TEST(NthOrder, IsTheSameForAnyNumberOfWorkers) {
  test::ExpectTheSameForAnyWorkers(Call({3, 3}, 4), Rule({3, 3}, 4));
  test::ExpectTheSameForAnyWorkers(Call({2, 3}, 1), Rule({2, 3}, 1));
}

// Wide and high enough for several strips, tiles and bands.
TEST(NthOrder, OfLargeWindowsIsTheSameForAnyNumberOfWorkers) {
  const Window window{33, 31};
  const int32_t order = 500;
  for (const int32_t type : SCALAR_TYPES) {
    const TestImage source(type, 640, 480, 16, 3);
    TestImage first(type, 1, 1);
    {
      const Workers one(1);
      ASSERT_EQ(Call(window, order)(source, 0, first), 0);
    }
    for (const int32_t workers : {2, 3, 8}) {
      const Workers forced(workers);
      TestImage destination(type, 1, 1);
      ASSERT_EQ(Call(window, order)(source, 0, destination), 0);
      ASSERT_EQ(destination.Pixels(), first.Pixels()) << workers << " workers, type " << type;
    }
    const Mirrored pixels(source);
    test::Random random(7);
    for (int32_t i = 0; i < 100; i++) {
      const int32_t x = random.Between(0, 639);
      const int32_t y = random.Between(0, 479);
      ASSERT_EQ(PixelOf(first, x, y), Ranked(window, order, pixels, x, y)) << x << ", " << y;
    }
  }
}

TEST(NthOrder, OfImagesSmallerThanTheirBorder) {
  for (const int32_t type : SCALAR_TYPES) {
    for (const auto& [width, height] : {std::pair{1, 1}, {2, 2}, {3, 1}, {1, 9}, {20, 3}}) {
      ExpectRanked(TestImage(type, width, height, 5, 3), {5, 7}, 17);
      ExpectRanked(TestImage(type, width, height, 15, 3), {31, 30}, 400);
      if (HasFatalFailure()) return;
    }
  }
}

TEST(NthOrder, ReadsTheMirroredBorder) {
  const TestImage source(IMAGE_U8, 3, 2, 1, 3);
  const uint8_t pixels[] = {10, 20, 30, 40, 50, 60};
  for (int32_t i = 0; i < 6; i++) source.Set(i % 3, i / 3, pixels[i]);
  TestImage destination(IMAGE_U8, 1, 1);
  ASSERT_EQ(ZEL_NthOrder(source, 0, destination, 3, 3, 4), 0);
  // 10 10 20, 10 10 20, 40 40 50
  EXPECT_EQ(destination.Get<uint8_t>(0, 0), 20);
}

TEST(NthOrder, ReportsItsFailuresAsKORNthOrder) {
  TestImage destination(IMAGE_U8, 1, 1);
  EXPECT_EQ(ZEL_NthOrder(test::UNKNOWN_IMAGE, 0, destination, 3, 3, 4), -200);
  char procedure[ERROR_PROCEDURE_BYTES];
  EXPECT_EQ(ZEL_GetLastError(procedure), -200);
  EXPECT_STREQ(procedure, "KORNthOrder");
}

TEST(NthOrder, RefusesInTheOrderOfTheOperands) {
  test::ExpectRefusals(Call({3, 3}, 4));
}

TEST(NthOrder, BearsRefusedMemory) {
  for (const int32_t workers : {1, 3}) {
    const Workers forced(workers);
    for (const int32_t type : SCALAR_TYPES) {
      for (const Window window : {Window{3, 3}, {5, 4}, {15, 16}}) {
        test::ExpectMemoryRefusals(type, Call(window, window.LastOrder() / 2));
      }
    }
    test::ExpectMemoryRefusals(IMAGE_U8, Call({1, 1}, 0));
  }
}

}  // namespace
