#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <optional>

#include "geometry/geometry_test.h"

namespace {

using test::PixelDifference;
using test::TestImage;

// ---- the drawing as it is stated, bar by bar

struct View {
  int32_t reduction = 1, maxHeight = 64, direction = 0;
  std::optional<View3DOptions> options = std::nullopt;
};

int32_t Call(ImageRef source, ImageRef dest, const View& view) {
  return ZEL_3DView(source, dest, view.reduction, view.maxHeight, view.direction,
                    view.options ? &*view.options : nullptr);
}

float LimitedAngle(float angle) {
  int32_t bits;
  std::memcpy(&bits, &angle, sizeof bits);
  if (bits < 0x41700000) return 15.0f;
  return bits > 0x42340000 ? 45.0f : angle;
}

int64_t EvenUp(int64_t number) {
  return (number + 1) / 2 * 2;
}

// The number of a spectrum that is shown at a place: top left and bottom right change places, and
// so do top right and bottom left; what an odd size has beyond four equal quadrants stays.
const float* ExchangedAt(const TestImage& source, int32_t x, int32_t y) {
  const ImageInfo info = source.Info();
  const int32_t w2 = info.width >> 1, h2 = info.height >> 1;
  if (x < w2 && y < h2) return source.At<float>(0, y + h2) + 2 * int64_t{x + w2};
  if (x < 2 * w2 && y < h2) return source.At<float>(0, y + h2) + 2 * int64_t{x - w2};
  if (x < w2 && y < 2 * h2) return source.At<float>(0, y - h2) + 2 * int64_t{x + w2};
  if (x < 2 * w2 && y < 2 * h2) return source.At<float>(0, y - h2) + 2 * int64_t{x - w2};
  return source.At<float>(0, y) + 2 * int64_t{x};
}

int32_t Length(const TestImage& source, int32_t x, int32_t y, int32_t plane, int32_t s) {
  const ImageInfo info = source.Info();
  if (info.type == IMAGE_U8) return source.Get<uint8_t>(x, y) * 256 / s;
  const float* number = ExchangedAt(source, x, y);
  const double re = static_cast<double>(number[0]);
  const double im = static_cast<double>(number[1]);
  int32_t e = 0;
  while (std::ldexp(1.0, e) <= (info.width + info.height) / 32) e++;
  const double q = std::ldexp(1.0, 2 * e + 1);
  double length = 0;
  if (plane == 0) length = re / (q * s) * 256;
  if (plane == 1) length = im / (q * s) * 256;
  if (plane == 2) length = std::sqrt(re * re + im * im) / (q * s) * 256;
  if (plane == 3) {
    const double phase = std::fabs(re) < 1 ? 90 : std::atan(im / re) * 180 / M_PI;
    length = phase / s * 256;
  }
  if (std::isnan(length)) return 0;
  const double limit = 65280 / s;
  return static_cast<int32_t>(std::trunc(std::fmin(std::fmax(length, -limit), limit)));
}

TestImage Drawn(const TestImage& source, const View& view) {
  const ImageInfo info = source.Info();
  const View3DOptions options = view.options.value_or(View3DOptions{30, 30, 20, 85, 2});
  const int32_t reduction =
      std::max(1, std::min({view.reduction, info.width / 8, info.height / 8}));
  const int32_t maxHeight = std::min(std::max(view.maxHeight, 2), 256);
  const int32_t direction = std::min(std::max(view.direction, 0), 3);
  const int32_t border = std::min(std::max(options.border, 0), 64);
  const int32_t plane = std::min(std::max(options.plane, 0), 3);
  const double a = static_cast<double>(LimitedAngle(options.alpha)) * 0.017453292;
  const double b = static_cast<double>(LimitedAngle(options.beta)) * 0.017453292;
  float w = static_cast<float>(info.width) / static_cast<float>(reduction);
  float h = static_cast<float>(info.height) / static_cast<float>(reduction);
  if (direction % 2 == 1) std::swap(w, h);
  const double ow = std::cos(a) * static_cast<double>(w) + std::cos(b) * static_cast<double>(h);
  const double oh = std::sin(a) * static_cast<double>(w) + std::sin(b) * static_cast<double>(h);
  const int64_t width = EvenUp(2 * border + static_cast<int64_t>(ow));
  int64_t height = EvenUp(maxHeight + static_cast<int64_t>(oh)) + 2 * border;
  if (info.type == IMAGE_COMPLEX && plane != 2) height += maxHeight;

  TestImage result(IMAGE_U8, static_cast<int32_t>(width), static_cast<int32_t>(height));
  for (int32_t y = 0; y < height; y++) {
    for (int32_t x = 0; x < width; x++) {
      result.Set(x, y, static_cast<uint8_t>(std::min(std::max(options.background, 0), 255)));
    }
  }
  const int32_t s = 0x10000 / maxHeight;
  const int32_t nx = (info.width + reduction - 1) / reduction;
  const int32_t ny = (info.height + reduction - 1) / reduction;
  const int32_t ni = direction % 2 == 0 ? nx : ny;
  const int32_t nj = direction % 2 == 0 ? ny : nx;
  for (int32_t j = nj - 1; j >= 0; j--) {
    for (int32_t i = 0; i < ni; i++) {
      int32_t x = i;
      int32_t y = ny - 1 - j;
      if (direction == 1) x = j, y = i;
      if (direction == 2) x = nx - 1 - i, y = j;
      if (direction == 3) x = nx - 1 - j, y = ny - 1 - i;
      const auto column = static_cast<int32_t>(border + i * std::cos(a) + j * std::cos(b));
      const auto row = static_cast<int32_t>(border + maxHeight - 1 + i * std::sin(a) +
                                            (nj - 1 - j) * std::sin(b));
      const int32_t length = Length(source, x * reduction, y * reduction, plane, s);
      for (int32_t k = 0; k <= std::abs(length); k++) {
        const int32_t at = length < 0 ? row + k : row - k;
        if (column < 0 || column >= width || at < 0 || at >= height) continue;
        result.Set(column, at, static_cast<uint8_t>((k * s) / 256));
      }
    }
  }
  return result;
}

void ExpectDrawn(const TestImage& source, const View& view) {
  const TestImage expected = Drawn(source, view);
  const TestImage dest(IMAGE_U8, expected.width(), expected.height(), 2, 5);
  const auto around = dest.Surroundings();
  const auto before = source.Block();
  ASSERT_EQ(Call(source, dest, view), 0);
  ASSERT_EQ(PixelDifference(dest, expected), "");
  EXPECT_EQ(dest.Surroundings(), around);
  EXPECT_EQ(source.Block(), before);
  if (source.Info().type != IMAGE_U8) return;
  for (const bool byReference : {false, true}) {
    const TestImage from = test::CloneOf(source);
    ASSERT_EQ(Call(from, byReference ? ImageRef{from} : 0, view), 0);
    ASSERT_EQ(PixelDifference(from, expected), "");
  }
}

// Random numbers of a size that bars show.
TestImage Spectrum(int32_t width, int32_t height, float size, uint64_t seed) {
  TestImage image(IMAGE_COMPLEX, width, height, 1, seed);
  test::Random random(seed);
  for (int32_t y = 0; y < height; y++) {
    float* row = image.At<float>(0, y);
    for (int32_t x = 0; x < 2 * width; x++) row[x] = random.Float(-size, size);
  }
  return image;
}

TEST(Relief, DrawsBarsOnTheGridFromAllDirections) {
  for (const int32_t direction : {0, 1, 2, 3}) {
    for (const auto& [width, height] : {std::pair{1, 1}, {5, 3}, {40, 23}, {64, 64}, {17, 90}}) {
      for (const int32_t reduction : {1, 2, 3}) {
        for (const int32_t maxHeight : {2, 3, 50, 255, 256}) {
          SCOPED_TRACE(std::to_string(direction) + ": " + std::to_string(width) + " x " +
                       std::to_string(height) + ", " + std::to_string(reduction) + ", " +
                       std::to_string(maxHeight));
          ExpectDrawn(TestImage(IMAGE_U8, width, height, 1, 3), {reduction, maxHeight, direction});
          if (HasFatalFailure()) return;
        }
      }
    }
  }
}

TEST(Relief, DrawsAllPlanesOfComplexImages) {
  for (const int32_t plane : {0, 1, 2, 3}) {
    for (const auto& [width, height] : {std::pair{1, 1}, {8, 8}, {33, 20}, {64, 31}, {200, 3}}) {
      for (const float size : {0.5f, 3.0f, 2000.0f, 1e6f}) {
        for (const int32_t direction : {0, 1, 2, 3}) {
          ExpectDrawn(Spectrum(width, height, size, 7),
                      {1, 40, direction, View3DOptions{20, 40, 5, 9, plane}});
          if (HasFatalFailure()) return;
        }
      }
    }
  }
}

TEST(Relief, BearsNumbersThatAreNone) {
  constexpr float INFINITE = std::numeric_limits<float>::infinity();
  const TestImage source = Spectrum(16, 16, 100, 3);
  float* row = source.At<float>(0, 2);
  row[0] = INFINITE;
  row[3] = -INFINITE;
  row[4] = row[5] = INFINITE;
  row[6] = std::numeric_limits<float>::quiet_NaN();
  row[9] = std::numeric_limits<float>::quiet_NaN();
  row[10] = row[11] = 3e38f;
  for (const int32_t plane : {0, 1, 2, 3}) {
    ExpectDrawn(source, {1, 100, 0, View3DOptions{30, 30, 5, 9, plane}});
  }
}

TEST(Relief, LimitsAllNumbers) {
  const float nan = std::numeric_limits<float>::quiet_NaN();
  const TestImage source(IMAGE_U8, 64, 64, 1, 3);
  for (const int32_t reduction : {-5, 0, 8, 9, 1000, INT32_MIN, INT32_MAX}) {
    ExpectDrawn(source, {reduction, 64, 0});
  }
  for (const int32_t height : {-5, 0, 1, 257, INT32_MIN, INT32_MAX}) {
    ExpectDrawn(source, {4, height, 1});
  }
  for (const int32_t direction : {-1, 4, INT32_MIN, INT32_MAX}) {
    ExpectDrawn(source, {4, 64, direction});
  }
  for (const float angle : {-30.0f, 0.0f, -0.0f, 14.9f, 15.0f, 45.0f, 45.1f, 1e30f, nan, -nan}) {
    ExpectDrawn(source, {4, 64, 2, View3DOptions{angle, 20, 5, 6, 2}});
    ExpectDrawn(source, {4, 64, 2, View3DOptions{20, angle, 5, 6, 2}});
  }
  for (const int32_t number : {-1, 0, 64, 65, 255, 256, INT32_MIN, INT32_MAX}) {
    ExpectDrawn(source, {4, 64, 2, View3DOptions{20, 20, number, number, 2}});
    ExpectDrawn(Spectrum(8, 8, 100, 3), {1, 64, 2, View3DOptions{20, 20, 3, 4, number}});
  }
}

TEST(Relief, TakesAReductionOfAnEighthAtMost) {
  const TestImage source(IMAGE_U8, 64, 64, 1, 3);
  const TestImage wild(IMAGE_U8, 0, 0);
  const TestImage eighth(IMAGE_U8, 0, 0);
  ASSERT_EQ(Call(source, wild, {1000, 64, 0}), 0);
  ASSERT_EQ(Call(source, eighth, {8, 64, 0}), 0);
  EXPECT_EQ(PixelDifference(wild, eighth), "");
}

TEST(Relief, OfNothingIsEmpty) {
  const TestImage dest(IMAGE_U8, 4, 4);
  ASSERT_EQ(Call(TestImage(IMAGE_U8, 0, 0, 1), dest, {}), 0);
  EXPECT_EQ(dest.width(), 0);
}

TEST(Relief, PassesOnCalibrationAndOffset) {
  const TestImage source = Spectrum(8, 8, 100, 3);
  ZEL_SetImageCalibration(source, 3, 0.5f, 0.25f);
  ZEL_SetImageOffset(source, -4, 7);
  const TestImage dest(IMAGE_U8, 4, 4);
  ASSERT_EQ(Call(source, dest, {}), 0);
  EXPECT_EQ(dest.Info().unit, 3);
  EXPECT_EQ(dest.Info().yStep, 0.25f);
  EXPECT_EQ(dest.Info().offsetX, -4);
}

TEST(Relief, RefusesByWhereTheDrawingGoes) {
  const TestImage bytes(IMAGE_U8, 9, 9, 1, 4);
  const TestImage words(IMAGE_I16, 9, 9, 1, 4);
  const TestImage complex(IMAGE_COMPLEX, 9, 9, 1, 4);
  const auto before = bytes.Block();
  EXPECT_EQ(Call(0, bytes, {}), -200);
  EXPECT_EQ(Call(test::UNKNOWN_IMAGE, 0, {}), -200);
  EXPECT_EQ(Call(bytes, test::UNKNOWN_IMAGE, {}), -200);
  for (const TestImage* source : {&words, &complex}) {
    EXPECT_EQ(Call(*source, 0, {}), -202);
    EXPECT_EQ(Call(*source, *source, {}), -304);
  }
  EXPECT_EQ(Call(words, bytes, {}), -301);
  EXPECT_EQ(Call(bytes, words, {}), -301);
  EXPECT_EQ(Call(complex, words, {}), -301);
  EXPECT_EQ(bytes.Block(), before);
}

TEST(Relief, BearsRefusedMemory) {
  TestImage source;
  TestImage dest;
  const auto prepare = [&] {
    source = TestImage(IMAGE_U8, 40, 40, 8, 3);
    dest = TestImage(IMAGE_U8, 0, 0, 0, 3);
  };
  for (const bool inPlace : {false, true}) {
    test::RefuseEachAllocation(prepare,
                               [&] { return Call(source, inPlace ? 0 : ImageRef{dest}, {}); });
  }
}

}  // namespace
