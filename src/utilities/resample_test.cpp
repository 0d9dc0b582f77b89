#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <vector>

#include "core/heap.h"
#include "core/images.h"
#include "engine/bands.h"
#include "harness/test_image.h"
#include "tests/support/refused_memory.h"

namespace {

using test::PixelDifference;
using test::TestImage;

constexpr ImageRef UNKNOWN_IMAGE = 0x7FFFFFFF;
constexpr int32_t TYPES[] = {IMAGE_U8, IMAGE_I16, IMAGE_SGL, IMAGE_RGB};
constexpr int32_t METHODS[] = {RESAMPLE_NEAREST, RESAMPLE_BILINEAR, RESAMPLE_QUADRATIC,
                               RESAMPLE_SPLINE};
constexpr int32_t WHOLE = WHOLE_IMAGE_EXTENT;

struct Request {
  int32_t top, left, height, width;
  int32_t newWidth, newHeight;
  int32_t method;
};

int32_t Call(ImageRef source, ImageRef destination, const Request& r) {
  return ZEL_Resample(source, destination, r.top, r.left, r.height, r.width, r.newWidth,
                      r.newHeight, r.method);
}

// ---- the rules as they are stated, pixel by pixel

int32_t Channels(int32_t type) {
  return type == IMAGE_RGB ? 4 : 1;
}

double Number(const TestImage& image, int32_t x, int32_t y, int32_t channel) {
  if (image.Info().type == IMAGE_RGB) return image.At<uint8_t>(x, y)[channel];
  return PixelOf(image, x, y);
}

void SetNumber(const TestImage& image, int32_t x, int32_t y, int32_t channel, double value) {
  const auto low = [&] { return static_cast<uint64_t>(static_cast<int64_t>(value)); };
  switch (image.Info().type) {
    case IMAGE_I16:
      return image.Set(x, y, static_cast<int16_t>(low()));
    case IMAGE_SGL:
      return image.Set(x, y, static_cast<float>(value));
    default:
      image.At<uint8_t>(x, y)[channel] = static_cast<uint8_t>(low());
  }
}

// A pixel of the image or its border; of the image's edge beyond that.
int32_t ReadAt(int64_t pixel, int32_t size, int32_t border) {
  return static_cast<int32_t>(pixel >= int64_t{size} + border ? size - 1 : pixel);
}

double Joined(const double* f, double t, int32_t method) {
  if (method == RESAMPLE_BILINEAR) return f[0] + t * (f[1] - f[0]);
  const double d1 = f[1] - f[0];
  const double d2 = (f[2] - f[1]) - d1;
  double sum = f[0] + t * d1;
  sum += t * (t - 1) * 0.5 * d2;
  return sum;
}

std::vector<double> Spline(const std::vector<double>& y, int32_t results) {
  const auto n = y.size();
  std::vector<double> second(n, 0.0);
  std::vector<double> u(n, 0.0);
  for (size_t i = 1; i + 1 < n; i++) {
    const double p = 0.5 * second[i - 1] + 2.0;
    second[i] = -0.5 / p;
    u[i] = (3.0 * ((y[i + 1] - y[i]) - (y[i] - y[i - 1])) - 0.5 * u[i - 1]) / p;
  }
  second[n - 1] = 0.0;
  for (size_t k = n - 1; k-- > 0;) second[k] = second[k] * second[k + 1] + u[k];

  std::vector<double> values;
  const double step = (static_cast<double>(n) - 1.0) / results;
  for (int32_t i = 0; i < results; i++) {
    if (n == 1) {
      values.push_back(y[0]);
      continue;
    }
    const double position = i * step;
    const auto at = static_cast<size_t>(position);
    const double a = static_cast<double>(at + 1) - position;
    const double b = 1.0 - a;
    values.push_back(a * y[at] + b * y[at + 1] +
                     ((a * a * a - a) * second[at] + (b * b * b - b) * second[at + 1]) / 6.0);
  }
  return values;
}

// The rectangle within the image.
struct Part {
  int32_t left, top, width, height;
};

Part PartOf(const TestImage& image, const Request& r) {
  const int64_t w = image.width();
  const int64_t h = image.height();
  const int64_t left = std::clamp<int64_t>(r.left, 0, w);
  const int64_t top = std::clamp<int64_t>(r.top, 0, h);
  const int64_t right = std::min(int64_t{r.left} + r.width, w);
  const int64_t bottom = std::min(int64_t{r.top} + r.height, h);
  return {static_cast<int32_t>(left), static_cast<int32_t>(top),
          static_cast<int32_t>(std::max<int64_t>(right - left, 0)),
          static_cast<int32_t>(std::max<int64_t>(bottom - top, 0))};
}

void SplineInto(const TestImage& source, const Part& part, const Request& r, int32_t channel,
                const TestImage& result) {
  std::vector<std::vector<double>> rows;
  for (int32_t y = 0; y < part.height; y++) {
    std::vector<double> row;
    for (int32_t x = 0; x < part.width; x++) {
      row.push_back(Number(source, part.left + x, part.top + y, channel));
    }
    rows.push_back(r.newWidth == part.width ? row : Spline(row, r.newWidth));
  }
  for (int32_t x = 0; x < r.newWidth; x++) {
    std::vector<double> column;
    for (const auto& row : rows) column.push_back(row[static_cast<size_t>(x)]);
    if (r.newHeight != part.height) column = Spline(column, r.newHeight);
    for (int32_t y = 0; y < r.newHeight; y++) {
      SetNumber(result, x, y, channel, column[static_cast<size_t>(y)]);
    }
  }
}

void JoinInto(const TestImage& source, const Part& part, const Request& r, int32_t channel,
              const TestImage& result) {
  const ImageInfo info = source.Info();
  const double stepX = (part.width - 1.0) / r.newWidth;
  const double stepY = (part.height - 1.0) / r.newHeight;
  const bool joinsX = r.newWidth != part.width;
  const bool joinsY = r.newHeight != part.height;
  for (int32_t j = 0; j < r.newHeight; j++) {
    const double y = joinsY ? part.top + j * stepY : part.top + j;
    for (int32_t i = 0; i < r.newWidth; i++) {
      const double x = joinsX ? part.left + i * stepX : part.left + i;
      double rows[3];
      for (int32_t k = 0; k < 3; k++) {
        const int32_t row = ReadAt(static_cast<int64_t>(y) + k, info.height, info.border);
        double f[3];
        for (int32_t l = 0; l < 3; l++) {
          f[l] = Number(source, ReadAt(static_cast<int64_t>(x) + l, info.width, info.border), row,
                        channel);
        }
        rows[k] = joinsX ? Joined(f, x - std::trunc(x), r.method) : f[0];
      }
      SetNumber(result, i, j, channel,
                joinsY ? Joined(rows, y - std::trunc(y), r.method) : rows[0]);
    }
  }
}

void PickInto(const TestImage& source, const Part& part, const Request& r,
              const TestImage& result) {
  const double stepX = (part.width - 1.0) / r.newWidth;
  const double stepY = (part.height - 1.0) / r.newHeight;
  const auto bytes = static_cast<size_t>(source.Info().pixelBytes);
  for (int32_t j = 0; j < r.newHeight; j++) {
    const double y = r.newHeight == part.height ? part.top + j : part.top + j * stepY;
    for (int32_t i = 0; i < r.newWidth; i++) {
      const double x = r.newWidth == part.width ? part.left + i : part.left + i * stepX;
      std::memcpy(result.At<uint8_t>(0, j) + static_cast<size_t>(i) * bytes,
                  source.At<uint8_t>(0, static_cast<int32_t>(y)) + static_cast<size_t>(x) * bytes,
                  bytes);
    }
  }
}

TestImage Resampled(const TestImage& source, const Request& r) {
  const Part part = PartOf(source, r);
  const bool isEmpty = part.width < 1 || part.height < 1 || r.newWidth < 1 || r.newHeight < 1;
  const ImageInfo info = source.Info();
  TestImage result(info.type, isEmpty ? 0 : r.newWidth, isEmpty ? 0 : r.newHeight);
  if (isEmpty) return result;
  if (r.method == RESAMPLE_NEAREST) {
    PickInto(source, part, r, result);
    return result;
  }
  for (int32_t channel = 0; channel < Channels(info.type); channel++) {
    if (r.method == RESAMPLE_SPLINE) {
      SplineInto(source, part, r, channel, result);
    } else {
      JoinInto(source, part, r, channel, result);
    }
  }
  return result;
}

// ---- the calls

void ExpectResampled(const TestImage& source, const Request& r) {
  const TestImage expected = Resampled(source, r);
  const ImageInfo info = source.Info();
  const TestImage destination(info.type, expected.width(), expected.height(), 3, 8);
  const auto around = destination.Surroundings();
  ASSERT_EQ(Call(source, destination, r), 0);
  ASSERT_EQ(PixelDifference(destination, expected), "");
  EXPECT_EQ(destination.Surroundings(), around);
  for (const bool byReference : {false, true}) {
    const TestImage from(info.type, 0, 0);
    ASSERT_EQ(ZEL_Copy(source, from), 0);
    ASSERT_EQ(Call(from, byReference ? ImageRef{from} : 0, r), 0);
    ASSERT_EQ(PixelDifference(from, expected), "");
    EXPECT_EQ(from.Info().border, info.border);
  }
}

struct Size {
  int32_t width, height;
};

TEST(Resample, GivesTheStatedNumbersForAllTypesMethodsAndSizes) {
  uint64_t seed = 1;
  for (const int32_t type : TYPES) {
    for (const Size& from : {Size{1, 1}, {2, 1}, {1, 4}, {3, 5}, {17, 9}, {33, 8}, {70, 20}}) {
      for (const Size& to :
           {Size{1, 1}, {2, 3}, {5, 2}, {16, 9}, {17, 31}, {33, 4}, {65, 33}, {140, 40}}) {
        if (from.width == to.width && from.height == to.height) continue;
        for (const int32_t method : METHODS) {
          seed++;
          const TestImage source(type, from.width, from.height, static_cast<int32_t>(seed % 3),
                                 seed);
          SCOPED_TRACE("type " + std::to_string(type) + ", method " + std::to_string(method) +
                       ", " + std::to_string(from.width) + " x " + std::to_string(from.height) +
                       " to " + std::to_string(to.width) + " x " + std::to_string(to.height));
          ExpectResampled(source, {0, 0, WHOLE, WHOLE, to.width, to.height, method});
          if (HasFatalFailure()) return;
        }
      }
    }
  }
}

TEST(Resample, OfWideImagesGoesInTiles) {
  for (const int32_t type : TYPES) {
    const TestImage source(type, 1501, 5, 1, 3);
    for (const int32_t method : METHODS) {
      for (const int32_t width : {700, 1023, 1024, 1025, 2551}) {
        ExpectResampled(source, {0, 0, WHOLE, WHOLE, width, 7, method});
        ExpectResampled(source, {1, 1, 3, WHOLE, width, 3, method});
        if (HasFatalFailure()) return;
      }
    }
  }
}

// Of random pixels, but constant ones on the left; those of colours all have the same fourth byte.
TestImage PartlyConstant(int32_t type, const Size& size, int32_t border) {
  TestImage image(type, size.width, size.height, border, 7);
  for (int32_t y = 0; y < size.height; y++) {
    for (int32_t x = 0; x < size.width / 3; x++) {
      for (int32_t channel = 0; channel < Channels(type); channel++) {
        SetNumber(image, x, y, channel, 77);
      }
    }
    for (int32_t x = 0; type == IMAGE_RGB && x < size.width; x++) SetNumber(image, x, y, 3, 200);
  }
  return image;
}

TEST(Resample, BilinearOfRowsThatAreNeededOnce) {
  for (const int32_t type : TYPES) {
    for (const int32_t border : {0, 1}) {
      const TestImage source = PartlyConstant(type, {151, 40}, border);
      for (const int32_t width : {7, 8, 9, 15, 16, 17, 31, 50, 75, 76, 151, 200}) {
        ExpectResampled(source, {0, 0, WHOLE, WHOLE, width, 19, RESAMPLE_BILINEAR});
        ExpectResampled(source, {3, 5, 30, 110, width, 11, RESAMPLE_BILINEAR});
        if (HasFatalFailure()) return;
      }
    }
  }
}

TEST(Resample, BilinearByStepsThatMeetWholeNumbers) {
  for (const int32_t type : TYPES) {
    for (const auto& [from, to] : {std::pair{Size{61, 41}, Size{20, 16}},
                                   {{121, 51}, {48, 20}},
                                   {{64, 64}, {108, 108}},
                                   {{33, 17}, {64, 40}}}) {
      ExpectResampled(PartlyConstant(type, from, 1),
                      {0, 0, WHOLE, WHOLE, to.width, to.height, RESAMPLE_BILINEAR});
      if (HasFatalFailure()) return;
    }
  }
}

TEST(Resample, LimitsTheRectangleToTheImage) {
  for (const int32_t method : METHODS) {
    const TestImage source(IMAGE_U8, 20, 11, 2, 3);
    for (const int32_t first : {-5, 0, 4, 18, 19, 20, 25, INT32_MIN, INT32_MAX}) {
      for (const int32_t size : {-6, 0, 1, 3, 7, INT32_MAX, INT32_MIN}) {
        ExpectResampled(source, {0, first, WHOLE, size, 23, 8, method});
        ExpectResampled(source, {first, 3, size, 5, 4, 13, method});
        if (HasFatalFailure()) return;
      }
    }
  }
}

TEST(Resample, ReadsTheBorderBehindTheLastPixels) {
  for (const int32_t type : TYPES) {
    for (const int32_t border : {0, 1, 2}) {
      const TestImage source(type, 4, 4, border, 3);
      for (const int32_t method : METHODS) {
        for (const auto& [width, height] : {std::pair{5, 5}, {4, 3}, {3, 4}}) {
          // The last column and row only, and some before.
          ExpectResampled(source, {3, 3, 1, 1, width, height, method});
          ExpectResampled(source, {2, 2, 2, 2, width, height, method});
          if (HasFatalFailure()) return;
        }
      }
    }
  }
}

TEST(Resample, ToTheSameSizeIsACopyOfTheWholeImage) {
  for (const int32_t type : {IMAGE_U8, IMAGE_COMPLEX, IMAGE_RGB}) {
    for (const int32_t method : METHODS) {
      const TestImage source(type, 13, 7, 3, 5);
      const TestImage destination(IMAGE_I16, 4, 4, 0, 6);
      ASSERT_EQ(Call(source, destination, {0, 0, WHOLE, WHOLE, 13, 7, method}), 0);
      EXPECT_EQ(destination.Block(), source.Block());
      EXPECT_EQ(destination.Info().border, 3);
      // Also where a part has the size already.
      const TestImage other(type, 4, 4, 0, 6);
      ASSERT_EQ(Call(source, other, {2, 1, 4, 5, 5, 4, method}), 0);
      EXPECT_EQ(other.Block(), source.Block());
      const auto before = source.Block();
      EXPECT_EQ(Call(source, 0, {2, 1, 4, 5, 5, 4, method}), 0);
      EXPECT_EQ(Call(source, source, {0, 0, WHOLE, WHOLE, 13, 7, method}), 0);
      EXPECT_EQ(source.Block(), before);
      EXPECT_EQ(Call(source, UNKNOWN_IMAGE, {2, 1, 4, 5, 5, 4, method}), -200);
    }
  }
}

TEST(Resample, ToNothingOrOfNothingIsEmpty) {
  for (const int32_t method : METHODS) {
    for (const Request& r : {Request{0, 0, WHOLE, WHOLE, 0, 5, 0},
                             {0, 0, WHOLE, WHOLE, 5, -7, 0},
                             {0, 0, WHOLE, WHOLE, INT32_MIN, INT32_MAX, 0},
                             {3, 3, 0, 5, 0, 0, 0},
                             {3, 3, 0, 5, 5, 0, 0},
                             {3, 50, 4, 5, 8, 8, 0}}) {
      Request request = r;
      request.method = method;
      ExpectResampled(TestImage(IMAGE_U8, 13, 7, 1, 5), request);
    }
    ExpectResampled(TestImage(IMAGE_U8, 0, 0, 1, 5), {0, 0, WHOLE, WHOLE, 4, 4, method});
  }
}

TEST(Resample, TakesMethodsBeyondTheLastForTheNearestToThem) {
  const TestImage source(IMAGE_U8, 13, 7, 1, 5);
  for (const auto& [method, meant] : {std::pair<int32_t, int32_t>{-1, RESAMPLE_NEAREST},
                                      {INT32_MIN, RESAMPLE_NEAREST},
                                      {4, RESAMPLE_SPLINE},
                                      {INT32_MAX, RESAMPLE_SPLINE}}) {
    const TestImage expected = Resampled(source, {0, 0, WHOLE, WHOLE, 20, 5, meant});
    const TestImage destination(IMAGE_U8, 0, 0);
    ASSERT_EQ(Call(source, destination, {0, 0, WHOLE, WHOLE, 20, 5, method}), 0);
    EXPECT_EQ(PixelDifference(destination, expected), "");
  }
}

// Numbers that come out whole, or would but for their rounding: flat and striped images, and steps
// that are thirds, tenths and the like.
TEST(Resample, CutsNumbersNextToWholeOnesAsTheyAreRounded) {
  struct Step {
    Size from, to;
  };
  const auto check = [](int32_t type, int32_t pattern, const Step& step) {
    const auto& [width, height] = step.from;
    const TestImage source(type, width, height, 1, 3);
    for (int32_t y = -1; y <= height; y++) {
      for (int32_t x = -1; x <= width; x++) {
        const int32_t value = pattern == 0   ? 77
                              : pattern == 1 ? (x & 1) * 255
                              : pattern == 2 ? (y & 1) * 255
                              : pattern == 3 ? x * 255 / width
                              : pattern == 4 ? ((x ^ y) & 1) * 240
                                             : ((x / 3 + y / 5) & 1) * 255;
        for (int32_t k = 0; k < Channels(type); k++) SetNumber(source, x, y, k, value);
      }
    }
    for (const int32_t method : METHODS) {
      ExpectResampled(source, {0, 0, WHOLE, WHOLE, step.to.width, step.to.height, method});
    }
  };
  for (const int32_t type : {IMAGE_U8, IMAGE_RGB, IMAGE_I16}) {
    for (const auto& [pixels, results] : {std::pair{4, 9},
                                          {11, 100},
                                          {31, 10},
                                          {97, 48},
                                          {129, 64},
                                          {65, 128},
                                          {193, 96},
                                          {61, 60}}) {
      for (int32_t pattern = 0; pattern < 6; pattern++) {
        check(type, pattern, {{pixels, 9}, {results, 7}});
        check(type, pattern, {{9, pixels}, {7, results}});
        if (HasFatalFailure()) return;
      }
    }
  }
}

TEST(Resample, OfLargerImagesGivesTheStatedNumbers) {
  const TestImage source(IMAGE_U8, 300, 90, 1, 5);
  for (const int32_t method : METHODS) {
    for (const Size& to : {Size{150, 45}, {510, 153}, {100, 150}}) {
      ExpectResampled(source, {0, 0, WHOLE, WHOLE, to.width, to.height, method});
    }
  }
}

// So many bytes that they are stored past the caches.
TEST(Resample, ToManyMegabytesGivesTheStatedNumbers) {
  constexpr std::pair<int32_t, int32_t> cases[] = {{IMAGE_RGB, RESAMPLE_NEAREST},
                                                   {IMAGE_SGL, RESAMPLE_BILINEAR}};
  for (const auto& [type, method] : cases) {
    const TestImage source(type, 71, 40, 1, 5);
    const Request r{0, 0, WHOLE, WHOLE, 1029, 1023, method};
    const TestImage destination(type, 1029, 1023, 3, 8);
    const auto around = destination.Surroundings();
    ASSERT_EQ(Call(source, destination, r), 0);
    ASSERT_EQ(PixelDifference(destination, Resampled(source, r)), "");
    EXPECT_EQ(destination.Surroundings(), around);
  }
}

TEST(Resample, KeepsTheLowBitsOfCurvesThatSwingOut) {
  const TestImage source(IMAGE_U8, 12, 1, 0, 5);
  for (int32_t x = 0; x < 12; x++) source.Set<uint8_t>(x, 0, x / 3 % 2 == 0 ? 255 : 0);
  const Request r{0, 0, WHOLE, WHOLE, 60, 1, RESAMPLE_SPLINE};
  const std::vector<double> curve = Spline({255, 255, 255, 0, 0, 0, 255, 255, 255, 0, 0, 0}, 60);
  EXPECT_GT(*std::max_element(curve.begin(), curve.end()), 256);
  EXPECT_LT(*std::min_element(curve.begin(), curve.end()), -1);
  ExpectResampled(source, r);
}

TEST(Resample, OfFloatsKeepsWhatIsNoNumber) {
  constexpr float INFINITE = std::numeric_limits<float>::infinity();
  constexpr float NOT_A_NUMBER = std::numeric_limits<float>::quiet_NaN();
  const TestImage source(IMAGE_SGL, 30, 12, 1, 3);
  test::Random random(4);
  for (int32_t i = 0; i < 12; i++) {
    constexpr float odd[] = {NOT_A_NUMBER, INFINITE, -INFINITE, 3e38f, -3e38f, 1e-40f, -0.0f};
    source.Set(random.Between(0, 29), random.Between(0, 11), odd[i % 7]);
  }
  for (const int32_t method : METHODS) {
    for (const Size& to : {Size{51, 20}, {30, 20}, {51, 12}, {15, 6}}) {
      ExpectResampled(source, {0, 0, WHOLE, WHOLE, to.width, to.height, method});
    }
  }
}

TEST(Resample, IsTheSameForAnyNumberOfWorkers) {
  for (const int32_t type : TYPES) {
    const TestImage source(type, 120, 40, 1, 3);
    for (const int32_t method : METHODS) {
      for (const int32_t workers : {1, 2, 3, 8}) {
        zel::BandsForce(workers, 1);
        ExpectResampled(source, {3, 5, WHOLE, WHOLE, 181, 63, method});
        ExpectResampled(source, {3, 5, WHOLE, 90, 90, 63, method});
      }
    }
  }
  zel::BandsForce(0, 0);
}

TEST(Resample, RefusesInTheOrderOfTheOperands) {
  const TestImage bytes(IMAGE_U8, 9, 5, 1, 4);
  const TestImage words(IMAGE_I16, 9, 5, 1, 4);
  const TestImage complex(IMAGE_COMPLEX, 9, 5, 1, 4);
  const TestImage opaque(IMAGE_OPAQUE, 0, 0, 0, 4);
  const auto before = bytes.Block();
  for (const int32_t method : METHODS) {
    const Request r{0, 0, WHOLE, WHOLE, 4, 4, method};
    EXPECT_EQ(Call(0, bytes, r), -200);
    EXPECT_EQ(Call(UNKNOWN_IMAGE, bytes, r), -200);
    EXPECT_EQ(Call(complex, UNKNOWN_IMAGE, r), -301);
    EXPECT_EQ(Call(opaque, UNKNOWN_IMAGE, r), -301);
    EXPECT_EQ(Call(words, UNKNOWN_IMAGE, r), -200);
    EXPECT_EQ(Call(words, bytes, r), -304);
  }
  EXPECT_EQ(bytes.Block(), before);
}

TEST(Resample, RefusesSizesBeyondAllImages) {
  const TestImage source(IMAGE_U8, 9, 5, 1, 4);
  const TestImage destination(IMAGE_U8, 4, 4, 1, 5);
  const auto before = destination.Block();
  const auto sourceBefore = source.Block();
  for (const int32_t method : METHODS) {
    for (const Size& to : {Size{INT32_MAX, INT32_MAX}, {INT32_MAX, 1}, {65536, 65536}}) {
      const Request r{0, 0, WHOLE, WHOLE, to.width, to.height, method};
      EXPECT_EQ(Call(source, destination, r), -101);
      EXPECT_EQ(Call(source, 0, r), -101);
    }
  }
  EXPECT_EQ(destination.Block(), before);
  EXPECT_EQ(source.Block(), sourceBefore);
}

TEST(Resample, BearsRefusedMemory) {
  TestImage source;
  TestImage destination;
  const auto prepare = [&] {
    source = TestImage(IMAGE_U8, 40, 30, 8, 3);
    destination = TestImage(IMAGE_U8, 0, 0, 0, 3);
  };
  for (const int32_t method : METHODS) {
    for (const bool inPlace : {false, true}) {
      test::RefuseEachAllocation(prepare, [&] {
        return Call(source, inPlace ? 0 : ImageRef{destination},
                    {0, 0, WHOLE, WHOLE, 21, 33, method});
      });
    }
  }
}

TEST(Resample, PassesOnCalibrationAndOffset) {
  const TestImage source(IMAGE_U8, 20, 9, 2, 3);
  ZEL_SetImageCalibration(source, 4, 0.5f, 0.25f);
  ZEL_SetImageOffset(source, -3, 6);
  const TestImage destination(IMAGE_U8, 1, 1, 3, 5);
  ASSERT_EQ(Call(source, destination, {0, 0, WHOLE, WHOLE, 10, 9, RESAMPLE_BILINEAR}), 0);
  EXPECT_EQ(destination.Info().unit, 4);
  EXPECT_EQ(destination.Info().xStep, 0.5f);
  EXPECT_EQ(destination.Info().offsetX, -3);
}

}  // namespace
