// Spectra with their quadrants exchanged, truncated and attenuated, from the stated rules.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <functional>
#include <limits>
#include <vector>

#include "frequency/frequency_test.h"
#include "tests/support/refused_memory.h"
#include "tests/support/walks.h"

namespace {

using test::SameBits;
using test::SpectrumImage;
using test::TestImage;

constexpr int32_t SPECTRUM_TYPES[] = {IMAGE_SGL, IMAGE_COMPLEX};

float PartAt(const TestImage& image, int32_t x, int32_t y, int32_t part) {
  return image.At<float>(x, y)[part];
}

using Stated = std::function<float(const TestImage& source, int32_t x, int32_t y, int32_t part)>;
using Call = std::function<int32_t(ImageRef source, ImageRef destination)>;

void ExpectResult(const TestImage& result, const TestImage& source, const Stated& stated) {
  const ImageInfo info = source.Info();
  ASSERT_EQ(result.width(), info.width);
  ASSERT_EQ(result.height(), info.height);
  for (int32_t y = 0; y < info.height; y++) {
    for (int32_t x = 0; x < info.width; x++) {
      for (int32_t part = 0; part < (info.type == IMAGE_SGL ? 1 : 2); part++) {
        ASSERT_TRUE(SameBits(PartAt(result, x, y, part), stated(source, x, y, part)))
            << info.width << " x " << info.height << " at " << x << ", " << y << ": "
            << PartAt(result, x, y, part) << " and " << stated(source, x, y, part);
      }
    }
  }
}

// In place, beside the source, and on several workers.
void ExpectStated(const TestImage& source, const Call& call, const Stated& stated) {
  const int32_t type = source.Info().type;
  const TestImage result(type, 2, 3, 1);
  ASSERT_EQ(call(source, result), 0);
  ExpectResult(result, source, stated);
  const TestImage inPlace = test::CloneOf(source);
  const auto surroundings = inPlace.Surroundings();
  ASSERT_EQ(call(inPlace, source.width() % 2 == 0 ? 0 : ImageRef{inPlace}), 0);
  ExpectResult(inPlace, source, stated);
  EXPECT_EQ(test::SurroundingsDifference(surroundings, inPlace), "");
  const test::Workers workers(3);
  const TestImage shared(type, 2, 3);
  ASSERT_EQ(call(source, shared), 0);
  EXPECT_EQ(test::PixelDifference(shared, result), "");
}

const std::vector<std::pair<int32_t, int32_t>> SIZES = {
    {0, 0},  {1, 1},   {1, 7},   {7, 1},   {2, 2},   {3, 5},   {4, 9},
    {16, 6}, {17, 17}, {33, 10}, {10, 33}, {64, 20}, {65, 21}, {200, 31}};

void ExpectStatedForAll(const Call& call, const Stated& stated) {
  for (const auto& [width, height] : SIZES) {
    for (const int32_t type : SPECTRUM_TYPES) {
      ExpectStated(SpectrumImage(type, width, height, 2, 3), call, stated);
    }
  }
}

// ---- quadrants

TEST(ComplexFlipFrequency, ExchangesQuadrants) {
  ExpectStatedForAll(ZEL_ComplexFlipFrequency,
                     [](const TestImage& source, int32_t x, int32_t y, int32_t part) {
                       const int32_t w2 = source.width() / 2;
                       const int32_t h2 = source.height() / 2;
                       if (x < 2 * w2 && y < 2 * h2) {
                         x = (x + w2) % (2 * w2);
                         y = (y + h2) % (2 * h2);
                       }
                       return PartAt(source, x, y, part);
                     });
}

TEST(ComplexFlipFrequency, TwiceGivesTheSpectrumBack) {
  for (const auto& [width, height] : SIZES) {
    const TestImage source = SpectrumImage(IMAGE_COMPLEX, width, height, 1, 4);
    const TestImage once(IMAGE_COMPLEX, 1, 1);
    const TestImage twice(IMAGE_COMPLEX, 1, 1);
    ASSERT_EQ(ZEL_ComplexFlipFrequency(source, once), 0);
    ASSERT_EQ(ZEL_ComplexFlipFrequency(once, twice), 0);
    EXPECT_EQ(test::PixelDifference(twice, source), "");
  }
}

// ---- truncation

// The rows and columns that are cleared, as sentences say it, in a picture of their own.
std::vector<std::vector<bool>> StatedCleared(int32_t width, int32_t height, bool low, float given) {
  std::vector<std::vector<bool>> cleared(static_cast<size_t>(height),
                                         std::vector<bool>(static_cast<size_t>(width)));
  const double percent =
      std::isnan(given) ? 0.0 : std::clamp(static_cast<double>(given), 0.0, 100.0);
  const auto a = static_cast<int32_t>(width * percent * 0.005);
  const auto b = static_cast<int32_t>(height * percent * 0.005);
  const auto clear = [&](int32_t y, int32_t first, int32_t last) {
    if (y < 0 || y >= height) return;
    for (int32_t x = std::max(first, 0); x <= std::min(last, width - 1); x++) {
      cleared[static_cast<size_t>(y)][static_cast<size_t>(x)] = true;
    }
  };
  const auto reach = [&](int32_t y) {
    const double square = static_cast<double>(a) * a;
    const double ratio = static_cast<double>(y) * y / (static_cast<double>(b) * b);
    return static_cast<int32_t>(std::sqrt(square * (1 - ratio)));
  };
  if (low) {
    for (int32_t y = 0; y < b; y++) {
      clear(y, reach(y), width - reach(y) - 1);
      clear(height - 1 - y, reach(y), width - reach(y) - 1);
    }
    for (int32_t y = b; y <= height - b - 1; y++) clear(y, 0, width - 1);
  } else if (b > 0) {
    for (int32_t y = 0; y <= b; y++) {
      for (const int32_t row : {y, height - 1 - y}) {
        clear(row, 0, reach(y));
        clear(row, width - reach(y) - 1, width - 1);
      }
    }
  }
  return cleared;
}

TEST(ComplexTruncate, ClearsTheCornersOrAllElse) {
  constexpr float nan = std::numeric_limits<float>::quiet_NaN();
  for (const int16_t mode : {int16_t{0}, int16_t{1}, int16_t{-3}}) {
    for (const float percent :
         {0.0f, 1.0f, 12.5f, 33.0f, 50.0f, 70.0f, 99.9f, 100.0f, 150.0f, -5.0f, nan}) {
      for (const auto& [width, height] : SIZES) {
        const auto cleared = StatedCleared(width, height, mode == 0, percent);
        for (const int32_t type : SPECTRUM_TYPES) {
          ExpectStated(
              SpectrumImage(type, width, height, 2, 5),
              [&](ImageRef source, ImageRef destination) {
                return ZEL_ComplexTruncate(source, destination, mode, percent);
              },
              [&](const TestImage& source, int32_t x, int32_t y, int32_t part) {
                return cleared[static_cast<size_t>(y)][static_cast<size_t>(x)]
                           ? 0.0f
                           : PartAt(source, x, y, part);
              });
        }
      }
    }
  }
}

int32_t CountOfZeros(const TestImage& image) {
  int32_t zeros = 0;
  for (int32_t y = 0; y < image.height(); y++) {
    for (int32_t x = 0; x < image.width(); x++) zeros += image.Get<float>(x, y) == 0 ? 1 : 0;
  }
  return zeros;
}

TEST(ComplexTruncate, OfNothingClearsEverythingOrNothing) {
  const TestImage ones(IMAGE_SGL, 20, 30);
  ZEL_FillImage(ones, 0, 1, 0, 0, 0);
  const TestImage result(IMAGE_SGL, 1, 1);
  ASSERT_EQ(ZEL_ComplexTruncate(ones, result, FREQUENCY_KEEP_LOW, 0), 0);
  EXPECT_EQ(CountOfZeros(result), 600);
  ASSERT_EQ(ZEL_ComplexTruncate(ones, result, FREQUENCY_KEEP_HIGH, 0), 0);
  EXPECT_EQ(CountOfZeros(result), 0);
}

// Half axes of 17: at 8 lines from the edge exact arithmetic would reach a column further.
TEST(ComplexTruncate, ReachesAsFarAsTheRoundedRoot) {
  const TestImage ones(IMAGE_SGL, 34, 34);
  ZEL_FillImage(ones, 0, 1, 0, 0, 0);
  ASSERT_EQ(ZEL_ComplexTruncate(ones, 0, FREQUENCY_KEEP_LOW, 100), 0);
  EXPECT_EQ(ones.Get<float>(13, 8), 1.0f);
  EXPECT_EQ(ones.Get<float>(14, 8), 0.0f);
}

// ---- attenuation

TEST(ComplexAttenuate, WeighsByTheDistanceFromTheMiddleOrFromTheEdges) {
  for (const int16_t mode : {int16_t{0}, int16_t{1}, int16_t{300}}) {
    ExpectStatedForAll(
        [mode](ImageRef source, ImageRef destination) {
          return ZEL_ComplexAttenuate(source, destination, mode);
        },
        [mode](const TestImage& source, int32_t x, int32_t y, int32_t part) {
          const int32_t width = source.width();
          const int32_t height = source.height();
          const int32_t w2 = width / 2;
          const int32_t h2 = height / 2;
          const float value = PartAt(source, x, y, part);
          const auto scale = static_cast<float>(h2 * w2);
          if (scale == 0.0f) return value;
          const int32_t dy = mode == 0 ? std::abs(y - h2) : y < h2 ? y : height - y - 1;
          const int32_t dx = mode == 0 ? std::abs(x - w2) : x < w2 ? x : width - x - 1;
          const auto factor =
              static_cast<float>(static_cast<double>(dy) / static_cast<double>(scale));
          const auto weight = static_cast<float>(static_cast<double>(factor) * dx);
          return static_cast<float>(static_cast<double>(value) * static_cast<double>(weight));
        });
  }
}

TEST(ComplexAttenuate, KeepsTheFirstCornerAndClearsTheMiddle) {
  const TestImage ones(IMAGE_SGL, 32, 16);
  ZEL_FillImage(ones, 0, 1, 0, 0, 0);
  const TestImage result(IMAGE_SGL, 1, 1);
  ASSERT_EQ(ZEL_ComplexAttenuate(ones, result, FREQUENCY_KEEP_LOW), 0);
  EXPECT_EQ(result.Get<float>(0, 0), 1.0f);
  EXPECT_EQ(result.Get<float>(16, 8), 0.0f);
  EXPECT_LT(result.Get<float>(31, 15), 1.0f);
  ASSERT_EQ(ZEL_ComplexAttenuate(ones, result, FREQUENCY_KEEP_HIGH), 0);
  EXPECT_EQ(result.Get<float>(0, 0), 0.0f);
  EXPECT_EQ(result.Get<float>(31, 15), 0.0f);
}

// ---- the calls

const std::vector<Call> CALLS = {ZEL_ComplexFlipFrequency,
                                 [](ImageRef source, ImageRef destination) {
                                   return ZEL_ComplexTruncate(source, destination, 0, 50);
                                 },
                                 [](ImageRef source, ImageRef destination) {
                                   return ZEL_ComplexAttenuate(source, destination, 1);
                                 }};

TEST(SpectrumFilters, RefuseOtherTypes) {
  for (const Call& call : CALLS) {
    const TestImage complex(IMAGE_COMPLEX, 4, 3);
    ZEL_SetImageCalibration(complex, 5, 1, 1);
    const TestImage floats(IMAGE_SGL, 2, 2);
    const TestImage bytes(IMAGE_U8, 2, 2);
    EXPECT_EQ(call(test::NO_IMAGE, complex), -200);
    EXPECT_EQ(call(bytes, test::NO_IMAGE), -301);
    EXPECT_EQ(call(complex, test::NO_IMAGE), -200);
    EXPECT_EQ(call(complex, floats), -304);
    EXPECT_EQ(floats.width(), 0);
    EXPECT_EQ(floats.Info().unit, 5);
    const TestImage again(IMAGE_SGL, 2, 2);
    EXPECT_EQ(call(again, complex), -304);
    EXPECT_EQ(complex.width(), 0);
  }
}

TEST(SpectrumFilters, TakeTheCalibrationAndTellRefusedMemory) {
  for (const Call& call : CALLS) {
    const TestImage source = SpectrumImage(IMAGE_COMPLEX, 20, 10, 1, 6);
    ZEL_SetImageCalibration(source, 5, 1, 1);
    const TestImage result(IMAGE_COMPLEX, 1, 1);
    test::RefuseEachAllocation([&result] { ZEL_SetImageSize(result, 1, 1); },
                               [&] { return call(source, result); });
    EXPECT_EQ(result.Info().unit, 5);
  }
}

}  // namespace
