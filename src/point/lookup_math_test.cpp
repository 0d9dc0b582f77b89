// Lookups by mathematical laws, against the laws in 80-bit floats pixel by pixel.
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <optional>
#include <vector>

#include "core/heap.h"
#include "point/lookup_test.h"

namespace {

using test::PixelOf;
using test::Random;
using test::Selects;
using test::TestImage;

using Wide = long double;

Wide Law(int32_t number, Wide d, Wide r, Wide o, Wide x) {
  const Wide k = logl(10.0L) * 0.01L;
  switch (std::clamp(number, 0, 6)) {
    case 0:
      return d * o / r;
    case 1:
      return logl(d) * o / logl(r);
    case 2:
      return (expl(k * d) - expl(k)) * o / (expl(k * r) - expl(k));
    case 3:
      return (d * o / r) * (d * o / r) / o;
    case 4:
      return sqrtl(d) * o / sqrtl(r);
    case 5:
      return (powl(d, x) - 1.0L) * o / (powl(r, x) - 1.0L);
    default:
      return (powl(d, 1.0L / x) - 1.0L) * o / (powl(r, 1.0L / x) - 1.0L);
  }
}

// Truncated; 0 where there is no such integer.
int64_t Truncated(float value) {
  if (!(std::fabs(value) < 9.2e18f)) return 0;
  return static_cast<int64_t>(value);
}

struct Arguments {
  int32_t operation;
  float x, rangeMin, rangeMax;
};

TestImage Expected(const TestImage& source, const TestImage* mask, const Arguments& given) {
  const ImageInfo info = source.Info();
  const auto [lo, hi, rangeMin, rangeMax] =
      test::StretchOf(source, mask, given.rangeMin, given.rangeMax);
  const Wide r = static_cast<Wide>(rangeMax) - static_cast<Wide>(rangeMin);
  const Wide o = static_cast<Wide>(hi) - static_cast<Wide>(lo);
  const int32_t law = std::clamp(given.operation, 0, 6);
  const bool startsAtOne = law == 1 || law == 2 || law == 5 || law == 6;

  TestImage expected(info.type, info.width, info.height);
  for (int32_t y = 0; y < info.height; y++) {
    for (int32_t x = 0; x < info.width; x++) {
      const double pixel = PixelOf(source, x, y);
      const bool selected = Selects(mask, x, y);
      if (info.type == IMAGE_SGL) {
        auto result = static_cast<float>(pixel);
        if (selected) {
          if (pixel <= static_cast<double>(rangeMin)) {
            result = 0.0f;
          } else if (pixel > static_cast<double>(rangeMax)) {
            result = hi;
          } else {
            const Wide d = static_cast<Wide>(pixel) - static_cast<Wide>(rangeMin);
            result = static_cast<float>(Law(law, d, r, o, static_cast<Wide>(given.x)) +
                                        static_cast<Wide>(lo));
            if (!(result >= lo)) {
              result = lo;
            } else if (!(result <= hi)) {
              result = hi;
            }
          }
        }
        expected.Set(x, y, result);
        continue;
      }
      auto result = static_cast<int64_t>(pixel);
      if (selected) {
        const double start =
            std::clamp(std::trunc(static_cast<double>(rangeMin)), -2147483648.0, 2147483647.0);
        const auto d = static_cast<int64_t>(pixel - start);
        if (d < 0) {
          result = 0;
        } else if (r < 0 || d > static_cast<int64_t>(r)) {
          result = static_cast<int64_t>(hi);
        } else if (d == 0 && startsAtOne) {
          result = 0;
        } else {
          result = Truncated(
              static_cast<float>(Law(law, static_cast<Wide>(d), r, o, static_cast<Wide>(given.x))));
        }
      }
      if (info.type == IMAGE_U8) {
        expected.Set(x, y, static_cast<uint8_t>(result & 255));
      } else {
        expected.Set(x, y, static_cast<int16_t>(static_cast<uint16_t>(result & 65535)));
      }
    }
  }
  return expected;
}

void Check(const TestImage& source, const TestImage* mask, const Arguments& given) {
  const TestImage destination(source.Info().type, 2, 2, 1);
  const TestImage expected = Expected(source, mask, given);
  ASSERT_EQ(ZEL_MathLookup(source, mask ? ImageRef{*mask} : 0, destination, given.operation,
                           given.x, given.rangeMin, given.rangeMax),
            0);
  ASSERT_EQ(PixelDifference(destination, expected), "")
      << "law " << given.operation << " x " << given.x << " from " << given.rangeMin << " to "
      << given.rangeMax << " type " << source.Info().type;
}

TestImage AllLevels() {
  TestImage image(IMAGE_U8, 256, 1);
  for (int32_t x = 0; x < 256; x++) image.Set(x, 0, static_cast<uint8_t>(x));
  return image;
}

TEST(MathLookup, EveryLevelOfEveryLawOverRandomRanges) {
  const TestImage all = AllLevels();
  Random random(3);
  for (int32_t operation = -1; operation <= 7; operation++) {
    for (int32_t round = 0; round < 60; round++) {
      const float low = random.Float(-40.0f, 200.0f);
      const float x = random.Float(-3.0f, 5.0f);
      Check(all, nullptr, {operation, x, low, low + random.Float(-10.0f, 260.0f)});
    }
    for (int32_t r = 0; r <= 255; r++) Check(all, nullptr, {operation, 3.0f, 0.0f, float(r)});
    for (int32_t r = 0; r <= 255; r += 5) Check(all, nullptr, {operation, 2.0f, float(r), 255.0f});
  }
}

TEST(MathLookup, OddRangesAndExponentsAreNoFailure) {
  const TestImage all = AllLevels();
  TestImage words(IMAGE_I16, 40, 3, 1, 4);
  TestImage floats(IMAGE_SGL, 40, 3, 1, 4);
  const float odd[] = {0.0f,  -0.0f,  1.0f, 2.0f, -1.0f,    1e-30f,    1e30f,
                       1e38f, -1e38f, 0.5f, NAN,  INFINITY, -INFINITY, 300.0f};
  for (int32_t operation = 0; operation < 7; operation++) {
    for (const float low : odd) {
      for (const float high : odd) {
        for (const float x : {0.0f, 1.0f, -2.0f, 1e30f, NAN, INFINITY}) {
          if (operation < 5 && x != 0.0f) continue;
          Check(all, nullptr, {operation, x, low, high});
          Check(words, nullptr, {operation, x, low, high});
          Check(floats, nullptr, {operation, x, low, high});
        }
      }
    }
  }
}

TEST(MathLookup, SixteenBitImagesStretchBetweenTheirExtremes) {
  Random random(8);
  for (int32_t operation = 0; operation < 7; operation++) {
    for (int32_t round = 0; round < 12; round++) {
      const TestImage image(IMAGE_I16, 61, 5, 1, static_cast<uint64_t>(round));
      const int32_t spread = round % 3 == 0 ? 1 : round % 3 == 1 ? 40 : 3000;
      for (int32_t y = 0; y < 5; y++) {
        for (int32_t x = 0; x < 61; x++) {
          image.Set(x, y, static_cast<int16_t>(image.Get<int16_t>(x, y) / spread));
        }
      }
      const float low = random.Float(-20000.0f, 20000.0f) / static_cast<float>(spread);
      Check(image, nullptr, {operation, random.Float(0.1f, 4.0f), 0.0f, 0.0f});
      Check(image, nullptr, {operation, random.Float(0.1f, 4.0f), low, low + 1000.0f});
    }
  }
}

TEST(MathLookup, ManyPixelsOfFewLevelsTakeTheWholeTable) {
  const TestImage image(IMAGE_I16, 200, 20, 0, 2);
  for (int32_t y = 0; y < 20; y++) {
    for (int32_t x = 0; x < 200; x++) {
      image.Set(x, y, static_cast<int16_t>(image.Get<int16_t>(x, y) / 100));
    }
  }
  for (int32_t operation = 0; operation < 7; operation++) {
    Check(image, nullptr, {operation, 1.7f, 0.0f, 0.0f});
    Check(image, nullptr, {operation, 0.3f, -100.0f, 200.0f});
  }
}

TEST(MathLookup, FloatImagesGetTheLawToTheLastBit) {
  Random random(5);
  for (int32_t operation = 0; operation < 7; operation++) {
    for (int32_t round = 0; round < 30; round++) {
      const TestImage image(IMAGE_SGL, 200, 11, 1, static_cast<uint64_t>(round + 1));
      const float scale = round % 3 == 0 ? 1.0f : round % 3 == 1 ? 1e-3f : 700.0f;
      for (int32_t y = 0; y < 11; y++) {
        for (int32_t x = 0; x < 200; x++) image.Set(x, y, image.Get<float>(x, y) * scale);
      }
      image.Set(3, 3, NAN);
      if (round > 20) image.Set(5, 5, INFINITY);
      if (round > 25) image.Set(6, 6, -INFINITY);
      const float x = round % 2 == 0 ? static_cast<float>(round / 2) : random.Float(-2.0f, 5.0f);
      const float low = random.Float(-450.0f, 100.0f) * scale;
      Check(image, nullptr, {operation, x, 0.0f, 0.0f});
      Check(image, nullptr, {operation, x, low, low + random.Float(0.0f, 500.0f) * scale});
    }
  }
}

TEST(MathLookup, NearTheStartOfALawDifferencesCancelAndStayExact) {
  const TestImage image(IMAGE_SGL, 64, 2);
  for (int32_t x = 0; x < 64; x++) {
    image.Set(x, 0, 1.0f + std::ldexp(1.0f, -x / 3));
    image.Set(x, 1, std::nextafter(1.0f, static_cast<float>(x)) - std::ldexp(1.0f, -x));
  }
  image.Set(0, 0, 0.0f);
  image.Set(1, 0, 200.0f);
  for (int32_t operation = 0; operation < 7; operation++) {
    for (const float x : {0.5f, 1.0f, 2.0f, 3.0f}) {
      Check(image, nullptr, {operation, x, 0.0f, 0.0f});
      Check(image, nullptr, {operation, x, 0.0f, 1.0f});
      Check(image, nullptr, {operation, x, 0.0f, 1.0000001f});
    }
  }
}

TEST(MathLookup, PixelsFarBelowTheOthersLeaveTheseTheirDigits) {
  const TestImage image(IMAGE_SGL, 3, 1);
  image.Set(0, 0, -1e12f);
  image.Set(1, 0, 0.5f);
  image.Set(2, 0, 1.1f);
  for (int32_t operation = 0; operation < 7; operation++) {
    Check(image, nullptr, {operation, 2.0f, 0.0f, 0.0f});
  }
  const TestImage result(IMAGE_SGL, 3, 1);
  ASSERT_EQ(ZEL_MathLookup(image, 0, result, MATH_SQRT, 0.0f, 0.0f, 0.0f), 0);
  EXPECT_NEAR(result.Get<float>(1, 0), 0.8, 1e-6);
  EXPECT_EQ(result.Get<float>(2, 0), 1.1f);
}

// Powers that 80 bits round to 1, or nearly, and those beyond all that 80 bits hold.
TEST(MathLookup, PowersNearOneAndBeyondAllBoundsStayExact) {
  Random random(11);
  const float ranges[][2] = {{0, 1}, {-300, 600}, {0, 1e-3f}, {1e6f, 2e6f}, {0, 3e38f}, {-1, 0}};
  for (const auto& [low, high] : ranges) {
    TestImage image(IMAGE_SGL, 64, 3);
    for (int32_t y = 0; y < 3; y++) {
      for (int32_t x = 0; x < 64; x++) image.Set(x, y, random.Float(low, high));
    }
    image.Set(0, 0, low);
    image.Set(1, 0, high);
    image.Set(2, 0, low + 1.0f);
    image.Set(3, 0, NAN);
    for (int32_t halvings = 0; halvings < 149; halvings += 3) {
      for (const float sign : {1.0f, -1.0f}) {
        const float x = sign * std::ldexp(1.0f, -halvings);
        Check(image, nullptr, {MATH_POWERX, x, 0.0f, 0.0f});
        Check(image, nullptr, {MATH_POWER1X, x, 0.0f, 0.0f});
      }
    }
    Check(image, nullptr, {MATH_POWERX, 0.0f, 0.0f, 0.0f});
    Check(image, nullptr, {MATH_POWER1X, 0.0f, 0.0f, 0.0f});
  }
}

double SecondsOf(const TestImage& image, int32_t operation, float x) {
  double least = 1e9;
  for (int round = 0; round < 5; round++) {
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(ZEL_MathLookup(image, 0, image, operation, x, 0.0f, 0.0f), 0);
    const std::chrono::duration<double> took = std::chrono::steady_clock::now() - start;
    least = std::min(least, took.count());
  }
  return least;
}

// They took 30 and 120 times as long.
TEST(MathLookup, PowersNearOneAndBeyondAllBoundsAreNoSlowCorner) {
  const auto image = [] { return TestImage(IMAGE_SGL, 200, 200, 0, 5); };
  const double usual = SecondsOf(image(), MATH_POWERX, 0.5f);
  for (const float x : {1e-6f, 1e-30f, 0.0f}) {
    EXPECT_LT(SecondsOf(image(), MATH_POWERX, x), 10 * usual) << x;
    EXPECT_LT(SecondsOf(image(), MATH_POWER1X, x), 10 * usual) << x;
  }
}

TEST(MathLookup, ExtremesAndPixelsGoByTheMask) {
  for (const int32_t type : {IMAGE_U8, IMAGE_I16, IMAGE_SGL}) {
    for (const int32_t offset : {0, 4, -6, 900}) {
      const TestImage mask = test::SparseMask(50, 6, offset, 1, 31);
      for (int32_t operation = 0; operation < 7; operation++) {
        const TestImage source(type, 44, 5, 2, 9);
        Check(source, &mask, {operation, 2.0f, 0.0f, 0.0f});
        const TestImage expected = Expected(source, &mask, {operation, 2.0f, 0.0f, 90.0f});
        const std::vector<uint8_t> around = source.Surroundings();
        ASSERT_EQ(ZEL_MathLookup(source, mask, 0, operation, 2.0f, 0.0f, 90.0f), 0);
        ASSERT_EQ(PixelDifference(source, expected), "");
        ASSERT_EQ(source.Surroundings(), around);
      }
    }
  }
}

TEST(MathLookup, AMaskThatSelectsNothingLeavesACopyWithTheInformation) {
  for (const int32_t type : {IMAGE_U8, IMAGE_I16, IMAGE_SGL}) {
    const TestImage source(type, 12, 3, 0, 9);
    ZEL_SetImageCalibration(source, 3, 5.0f, 6.0f);
    const TestImage mask(IMAGE_U8, 12, 3);
    for (int32_t i = 0; i < 36; i++) mask.Set<uint8_t>(i % 12, i / 12, 0);
    const TestImage destination(type, 1, 1);
    ASSERT_EQ(ZEL_MathLookup(source, mask, destination, MATH_LOG, 0.0f, 0.0f, 0.0f), 0);
    EXPECT_EQ(PixelDifference(destination, source), "");
    EXPECT_EQ(destination.Info().xStep, 5.0f);
  }
}

TEST(MathLookup, EmptyImagesSucceed) {
  for (const int32_t type : {IMAGE_U8, IMAGE_I16, IMAGE_SGL}) {
    const TestImage source(type, 0, 0, 2);
    ZEL_SetImageCalibration(source, 3, 5.0f, 6.0f);
    const TestImage destination(type, 4, 4);
    ASSERT_EQ(ZEL_MathLookup(source, 0, destination, MATH_EXP, 0.0f, 0.0f, 0.0f), 0);
    EXPECT_EQ(destination.width(), 0);
    EXPECT_EQ(destination.Info().xStep, 5.0f);
  }
}

TEST(MathLookup, FailuresLeaveTheImagesAlone) {
  const TestImage bytes(IMAGE_U8, 8, 4);
  const TestImage floats(IMAGE_SGL, 3, 3);
  const TestImage colour(IMAGE_RGB, 3, 3);
  const std::vector<uint8_t> before = floats.Block();
  EXPECT_EQ(ZEL_MathLookup(0, 0, 0, 0, 0.0f, 0.0f, 0.0f), -200);
  EXPECT_EQ(ZEL_MathLookup(bytes, 0, 99999, 0, 0.0f, 0.0f, 0.0f), -200);
  EXPECT_EQ(ZEL_MathLookup(bytes, 99999, 0, 0, 0.0f, 0.0f, 0.0f), -200);
  EXPECT_EQ(ZEL_MathLookup(colour, 0, 0, 0, 0.0f, 0.0f, 0.0f), -301);
  EXPECT_EQ(ZEL_MathLookup(bytes, floats, 0, 0, 0.0f, 0.0f, 0.0f), -301);
  EXPECT_EQ(ZEL_MathLookup(bytes, 0, floats, 0, 0.0f, 0.0f, 0.0f), -304);
  char name[256];
  ZEL_GetLastError(name);
  EXPECT_STREQ(name, "ZEL_MathLookup");
  EXPECT_EQ(floats.Block(), before);
}

TEST(MathLookup, NoMemoryForTheTableGives101) {
  const TestImage image(IMAGE_I16, 13, 3, 1);
  const std::vector<uint8_t> before = image.Block();
  zel::HeapHooks* hooks = zel::HeapHooksGet();
  hooks->requests = 0;
  hooks->failAt = 1;
  EXPECT_EQ(ZEL_MathLookup(image, 0, 0, MATH_SQRT, 0.0f, 0.0f, 0.0f), -101);
  hooks->failAt = 0;
  EXPECT_EQ(image.Block(), before);
}

}  // namespace
