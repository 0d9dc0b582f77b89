#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <string>
#include <vector>

#include "filters/filter_test.h"
#include "platform/processor.h"

namespace {

using test::CloneOf;
using test::ODD_SIZES;
using test::PixelDifference;
using test::PixelOf;
using test::Random;
using test::SparseMask;
using test::TestImage;

constexpr float NAN_VALUE = std::numeric_limits<float>::quiet_NaN();
constexpr float INFINITE = std::numeric_limits<float>::infinity();
constexpr int32_t SCALAR_TYPES[] = {IMAGE_U8, IMAGE_I16, IMAGE_SGL};

// A matrix with its own coefficients, which the record of a call is made of.
struct Matrix {
  int32_t width, height;
  std::vector<float> coefficients;
  float divider = 1;

  float At(int32_t i, int32_t j) const {
    return coefficients.at(static_cast<size_t>(j) * static_cast<size_t>(width) +
                           static_cast<size_t>(i));
  }
  ConvolutionMatrix Record() { return {width, height, coefficients.data(), divider}; }
  int32_t Border() const { return (std::max(width, height) - 1) / 2; }
};

Matrix RandomMatrix(int32_t width, int32_t height, int32_t low, int32_t high, float divider,
                    uint64_t seed) {
  Random random(seed);
  Matrix matrix{width, height, {}, divider};
  for (int32_t i = 0; i < width * height; i++) {
    matrix.coefficients.push_back(static_cast<float>(random.Between(low, high)));
  }
  return matrix;
}

Matrix AllOf(int32_t width, int32_t height, float coefficient, float divider) {
  return {width, height,
          std::vector<float>(static_cast<size_t>(width) * static_cast<size_t>(height), coefficient),
          divider};
}

// The pixels of an image and, by the fill, those around it. The image is not smaller than what is
// looked at beyond its edges.
class Surrounded {
 public:
  Surrounded(const TestImage& image, int32_t fill)
      : type_(image.Info().type), fill_(fill), width_(image.width()), height_(image.height()) {
    for (int32_t y = 0; y < height_; y++) {
      for (int32_t x = 0; x < width_; x++) pixels_.push_back(PixelOf(image, x, y));
    }
  }
  int32_t type() const { return type_; }
  int32_t width() const { return width_; }
  double operator()(int32_t x, int32_t y) const {
    const int32_t column = Inside(x, width_);
    const int32_t row = Inside(y, height_);
    if (column < 0 || row < 0) return 0;
    return pixels_.at(static_cast<size_t>(row) * static_cast<size_t>(width_) +
                      static_cast<size_t>(column));
  }

 private:
  int32_t Inside(int32_t at, int32_t size) const {
    if (at >= 0 && at < size) return at;
    if (fill_ == BORDER_FILL_MIRROR) return at < 0 ? -1 - at : 2 * size - 1 - at;
    if (fill_ == BORDER_FILL_REPLICATE) return at < 0 ? 0 : size - 1;
    return -1;
  }

  int32_t type_, fill_, width_, height_;
  std::vector<double> pixels_;
};

bool IsFractional(const Matrix& matrix) {
  return std::any_of(matrix.coefficients.begin(), matrix.coefficients.end(), [](float c) {
    return !(c >= -2147483648.0f && c < 2147483648.0f) || c != std::trunc(c);
  });
}

float DividerOf(const Matrix& matrix) {
  if (matrix.divider != 0) return matrix.divider;
  double sum = 0;
  for (const float c : matrix.coefficients) sum += static_cast<double>(c);
  return static_cast<float>(sum) == 0 ? 1.0f : static_cast<float>(sum);
}

double Cut(double value, int32_t type) {
  const double low = type == IMAGE_U8 ? 0 : -32768;
  const double high = type == IMAGE_U8 ? 255 : 32767;
  return std::isnan(value) ? 0 : std::trunc(std::clamp(value, low, high));
}

bool HasGroups(const Matrix& matrix) {
  const bool fits = std::all_of(matrix.coefficients.begin(), matrix.coefficients.end(),
                                [](float c) { return c >= -128 && c <= 127; });
  return fits && DividerOf(matrix) == 1.0f && zel::MmxAvailable() != 0;
}

// As it is stated, from any source of pixels.
template <class Pixels>
double Convolved(const Matrix& matrix, const Pixels& pixels, int32_t x, int32_t y, bool grouped) {
  const double divider = static_cast<double>(DividerOf(matrix));
  const int32_t left = x - (matrix.width - 1) / 2;
  const int32_t top = y - (matrix.height - 1) / 2;
  const bool real = pixels.type() == IMAGE_SGL || IsFractional(matrix);
  double sum = 0;
  int64_t whole = 0;
  for (int32_t j = 0; j < matrix.height; j++) {
    for (int32_t i = 0; i < matrix.width; i++) {
      const double pixel = pixels(left + i, top + j);
      sum += pixel * static_cast<double>(matrix.At(i, j));
      if (!real) whole += static_cast<int64_t>(pixel) * static_cast<int64_t>(matrix.At(i, j));
    }
  }
  if (real) {
    const double quotient = static_cast<double>(static_cast<float>(sum)) / divider;
    return pixels.type() == IMAGE_SGL ? quotient : Cut(quotient, pixels.type());
  }
  const auto low = static_cast<uint64_t>(whole);
  if (grouped) return Cut(static_cast<int16_t>(static_cast<uint16_t>(low)), IMAGE_U8);
  return Cut(static_cast<int32_t>(static_cast<uint32_t>(low)) / divider, pixels.type());
}

auto Call(const Matrix& matrix, int32_t fill) {
  return [=](ImageRef source, ImageRef mask, ImageRef destination) {
    Matrix own = matrix;
    ConvolutionMatrix record = own.Record();
    return ZEL_Convolute(source, mask, destination, &record, fill);
  };
}

std::string NameOf(const TestImage& source, const Matrix& matrix, int32_t fill) {
  std::string name = std::to_string(matrix.width) + " x " + std::to_string(matrix.height) + " / " +
                     std::to_string(matrix.divider) + " on type " +
                     std::to_string(source.Info().type) + ", " + std::to_string(source.width()) +
                     " x " + std::to_string(source.height()) + ", fill " + std::to_string(fill);
  return name;
}

// Into another image and without a mask, so that there may be groups.
void ExpectConvolved(const TestImage& source, const Matrix& matrix, int32_t fill) {
  SCOPED_TRACE(NameOf(source, matrix, fill));
  const Surrounded pixels(source, fill);
  const int32_t width = source.width();
  TestImage expected(source.Info().type, width, source.height());
  const bool hasGroups = source.Info().type == IMAGE_U8 && width > 3 && HasGroups(matrix);
  for (int32_t y = 0; y < source.height(); y++) {
    for (int32_t x = 0; x < width; x++) {
      const bool grouped = hasGroups && x < width / 4 * 4;
      test::SetPixel(expected, x, y, Convolved(matrix, pixels, x, y, grouped));
    }
  }
  TestImage destination(source.Info().type, 3, 2, 2, 8);
  ASSERT_EQ(Call(matrix, fill)(source, 0, destination), 0);
  ASSERT_EQ(PixelDifference(destination, expected), "");
}

// In every relation of the images. No sum may be beyond 16 bits where the divider is 1.
void ExpectConvolvedAnywhere(const TestImage& source, const Matrix& matrix, int32_t fill) {
  SCOPED_TRACE(NameOf(source, matrix, fill));
  const Surrounded pixels(source, fill);
  test::ExpectFiltered(source, Call(matrix, fill),
                       [&](const test::Mirrored&, int32_t x, int32_t y) {
                         return Convolved(matrix, pixels, x, y, false);
                       });
}

TEST(Convolute, OfAllTypesAndSizes) {
  uint64_t seed = 1;
  for (const int32_t type : SCALAR_TYPES) {
    for (const auto& [width, height] : ODD_SIZES) {
      const int32_t border = 1 + static_cast<int32_t>(seed % 3);
      const TestImage source(type, width, height, border, ++seed);
      if (std::min(width, height) < border && width != 0) continue;
      ExpectConvolvedAnywhere(source, RandomMatrix(3, 3, -9, 9, 1, seed), BORDER_FILL_MIRROR);
      ExpectConvolvedAnywhere(source, RandomMatrix(3, 3, -9, 9, 3, seed), BORDER_FILL_ZERO);
      if (HasFatalFailure()) return;
    }
  }
}

constexpr std::pair<int32_t, int32_t> SHAPES[] = {
    {1, 3},  {3, 1},  {1, 4},  {4, 1}, {2, 2}, {2, 3},   {3, 2},  {3, 3},
    {4, 4},  {5, 5},  {6, 6},  {7, 7}, {7, 2}, {2, 7},   {8, 3},  {9, 9},
    {1, 11}, {12, 1}, {10, 7}, {5, 1}, {1, 5}, {15, 15}, {17, 16}};

TEST(Convolute, ByMatricesOfAllShapesAndDividers) {
  uint64_t seed = 100;
  for (const int32_t type : SCALAR_TYPES) {
    for (const auto& [width, height] : SHAPES) {
      for (const float divider : {1.0f, 0.0f, 2.0f, 9.0f, 7.3f, -5.0f}) {
        Matrix matrix = RandomMatrix(width, height, -7, 9, divider, ++seed);
        const TestImage source(type, 77, 23, matrix.Border(), seed);
        for (const int32_t fill : {0, 1, 2}) {
          ExpectConvolved(source, matrix, fill);
          if (HasFatalFailure()) return;
        }
      }
    }
  }
}

TEST(Convolute, WithEveryRelationOfImagesAndMasks) {
  uint64_t seed = 300;
  for (const int32_t type : SCALAR_TYPES) {
    for (const auto& [width, height] : SHAPES) {
      const Matrix matrix = RandomMatrix(width, height, -2, 3, 6, ++seed);
      const TestImage source(type, 41, 19, matrix.Border() + static_cast<int32_t>(seed % 2), seed);
      ExpectConvolvedAnywhere(source, matrix, static_cast<int32_t>(seed % 3));
      if (HasFatalFailure()) return;
    }
  }
}

TEST(Convolute, FillsTheBorderAsItIsTold) {
  const Matrix matrix = RandomMatrix(5, 5, -9, 9, 1, 3);
  for (const int32_t type : SCALAR_TYPES) {
    for (const int32_t fill : {BORDER_FILL_MIRROR, BORDER_FILL_REPLICATE, BORDER_FILL_ZERO}) {
      const TestImage source(type, 21, 9, 3, 4);
      const TestImage filled = CloneOf(source);
      ASSERT_EQ(fill == BORDER_FILL_MIRROR      ? zel::BorderMirror(filled)
                : fill == BORDER_FILL_REPLICATE ? zel::BorderReplicate(filled)
                                                : zel::BorderZero(filled),
                0);
      ExpectConvolved(source, matrix, fill);
      EXPECT_EQ(source.Block(), filled.Block());
    }
    for (const int32_t other : {3, -1, INT32_MIN, INT32_MAX}) {
      const TestImage source(type, 21, 9, 2, 4);
      TestImage first(type, 1, 1);
      TestImage second(type, 1, 1);
      ASSERT_EQ(Call(matrix, BORDER_FILL_ZERO)(source, 0, first), 0);
      ASSERT_EQ(Call(matrix, other)(source, 0, second), 0);
      EXPECT_EQ(first.Pixels(), second.Pixels());
    }
  }
}

TEST(Convolute, ReadsTheBorderOfAnImageThatIsSmallerThanIt) {
  const Matrix matrix = RandomMatrix(7, 7, -2, 3, 6, 3);
  for (const int32_t type : SCALAR_TYPES) {
    for (const auto& [width, height] : {std::pair{1, 1}, {2, 9}, {9, 2}, {2, 2}, {1, 30}}) {
      const TestImage source(type, width, height, 3, 4);
      test::ExpectFiltered(source, Call(matrix, BORDER_FILL_MIRROR),
                           [&](const test::Mirrored& pixels, int32_t x, int32_t y) {
                             return Convolved(matrix, pixels, x, y, false);
                           });
      if (HasFatalFailure()) return;
    }
  }
}

TEST(Convolute, TakesWhatAnEvenSideNeedsBeyondTheBorder) {
  // Only the lower right coefficient counts: it lies a pixel beyond a border of 1.
  Matrix matrix = AllOf(4, 4, 0, 1);
  matrix.coefficients.back() = 1;
  for (const int32_t type : SCALAR_TYPES) {
    for (const int32_t fill : {0, 1, 2}) {
      for (const int32_t border : {1, 2, 5}) {
        ExpectConvolved(TestImage(type, 9, 6, border, 4), matrix, fill);
      }
    }
  }
}

TEST(Convolute, NeedsTheBorderOfItsLargerSide) {
  const TestImage source(IMAGE_U8, 9, 9, 2, 3);
  TestImage destination(IMAGE_U8, 1, 1);
  const auto call = [&](int32_t width, int32_t height) {
    return Call(AllOf(width, height, 1, 1), 0)(source, 0, destination);
  };
  EXPECT_EQ(call(5, 1), 0);
  EXPECT_EQ(call(1, 5), 0);
  EXPECT_EQ(call(6, 6), 0);
  EXPECT_EQ(call(7, 1), -309);
  EXPECT_EQ(call(1, 7), -309);
  float one = 1;
  ConvolutionMatrix huge{INT32_MAX, INT32_MAX, &one, 1};
  EXPECT_EQ(ZEL_Convolute(source, 0, destination, &huge, 0), -309);
}

TEST(Convolute, OfFewerThanThreeCoefficientsCopies) {
  for (const int32_t type : SCALAR_TYPES) {
    for (const auto& [width, height] :
         {std::pair{1, 2}, {2, 1}, {1, 1}, {0, 5}, {5, 0}, {-3, -3}, {INT32_MIN, INT32_MIN}}) {
      float coefficients[2] = {7, 9};
      ConvolutionMatrix record{width, height, coefficients, 0};
      const TestImage source(type, 9, 5, 2, 3);
      TestImage destination(type, 1, 1);
      ASSERT_EQ(ZEL_Convolute(source, 0, destination, &record, 0), 0);
      EXPECT_EQ(PixelDifference(destination, source), "");
      record.coefficients = nullptr;
      const TestImage before = CloneOf(source);
      ASSERT_EQ(ZEL_Convolute(source, 0, 0, &record, 0), 0);
      EXPECT_EQ(PixelDifference(source, before), "");
      EXPECT_EQ(record.divider, 0.0f);
    }
  }
  const TestImage bare(IMAGE_U8, 9, 5, 0, 3);
  ConvolutionMatrix record{1, 2, nullptr, 0};
  EXPECT_EQ(ZEL_Convolute(bare, 0, 0, &record, 0), 0);
}

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
    const TestImage source(IMAGE_U8, length, std::max(columns / 2, 1), columns / 2, 3);
    for (int32_t x = 0; x < length; x++) {
      const auto pixel = static_cast<uint8_t>((x + columns - 1) / columns);
      for (int32_t y = 0; y < source.height(); y++) source.Set(x, y, pixel);
    }
    const auto sum = static_cast<float>(columns);
    for (const float divider :
         {sum, sum - 1, static_cast<float>(random.Between(2, 300)), random.Float(1, 90), sum / 2}) {
      TestImage destination(IMAGE_U8, 1, 1);
      Matrix matrix = AllOf(columns, 1, 1, divider);
      ConvolutionMatrix record = matrix.Record();
      ASSERT_EQ(ZEL_Convolute(source, 0, destination, &record, BORDER_FILL_REPLICATE), 0);
      const Surrounded pixels(source, BORDER_FILL_REPLICATE);
      int32_t windowSum = 0;
      for (int32_t i = 0; i < columns; i++) {
        windowSum += static_cast<int32_t>(pixels(i - (columns - 1) / 2, 0));
      }
      for (int32_t x = 0; x < length; x++) {
        const double quotient = windowSum / static_cast<double>(divider);
        ASSERT_EQ(destination.Get<uint8_t>(x, 0), Cut(quotient, IMAGE_U8))
            << windowSum << " / " << divider;
        windowSum +=
            static_cast<int32_t>(pixels(x + columns / 2 + 1, 0) - pixels(x - (columns - 1) / 2, 0));
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

// Products of columns and rows, and such with another centre: they are computed in two steps where
// that is faster.
TEST(Convolute, ByProductsOfColumnsAndRows) {
  uint64_t seed = 1300;
  Random random(7);
  for (const int32_t type : SCALAR_TYPES) {
    for (const auto& [width, height] : {std::pair{3, 3},
                                        {5, 5},
                                        {7, 7},
                                        {9, 9},
                                        {5, 7},
                                        {7, 5},
                                        {4, 6},
                                        {15, 15},
                                        {13, 3},
                                        {3, 13}}) {
      for (int32_t kind = 0; kind < 12; kind++) {
        const int32_t limit = kind % 3 == 0 ? 1 : kind % 3 == 1 ? 3 : 11;
        std::vector<int32_t> across, down;
        for (int32_t i = 0; i < width; i++)
          across.push_back(random.Between(kind < 6 ? 1 : -limit, limit));
        for (int32_t j = 0; j < height; j++)
          down.push_back(random.Between(kind < 6 ? 1 : -limit, limit));
        Matrix matrix{
            width, height, {}, kind % 2 == 0 ? 1.0f : static_cast<float>(random.Between(-9, 90))};
        for (int32_t j = 0; j < height; j++) {
          for (int32_t i = 0; i < width; i++) {
            matrix.coefficients.push_back(
                static_cast<float>(down[static_cast<size_t>(j)] * across[static_cast<size_t>(i)]));
          }
        }
        if (kind >= 9) {
          const int32_t centre = (height - 1) / 2 * width + (width - 1) / 2;
          matrix.coefficients[static_cast<size_t>(centre)] =
              static_cast<float>(random.Between(-100, 100));
        }
        for (const int32_t columns : {20, 64, 65, 130, 199}) {
          const TestImage source(type, columns, 21, matrix.Border(), ++seed);
          ExpectConvolved(source, matrix, static_cast<int32_t>(seed % 3));
          if (HasFatalFailure()) return;
        }
      }
    }
  }
}

TEST(Convolute, ByTheStandardMatrices) {
  for (int32_t family = 0; family < 4; family++) {
    for (const int32_t size : {3, 5, 7}) {
      const ConvolutionMatrix* last = ZEL_GetConvolutionMatrix(family, size, INT32_MAX);
      for (int32_t index = 0;; index++) {
        const ConvolutionMatrix* standard = ZEL_GetConvolutionMatrix(family, size, index);
        const Matrix matrix{standard->width, standard->height,
                            std::vector<float>(standard->coefficients,
                                               standard->coefficients +
                                                   ptrdiff_t{standard->width} * standard->height),
                            standard->divider};
        for (const int32_t type : SCALAR_TYPES) {
          ExpectConvolved(TestImage(type, 135, 12, 3, 6), matrix, 0);
          ExpectConvolvedAnywhere(TestImage(type, 71, 12, 3, 7), matrix, 1);
          if (HasFatalFailure()) return;
        }
        if (standard == last) break;
      }
    }
  }
}

TEST(Convolute, IsTheSameForAnyWorkers) {
  for (const Matrix& matrix : {RandomMatrix(3, 3, -2, 3, 4, 1), RandomMatrix(7, 7, -2, 3, 9, 2),
                               AllOf(5, 5, 1, 25), RandomMatrix(4, 4, -2, 3, 4, 2)}) {
    for (const int32_t type : SCALAR_TYPES) {
      const TestImage source(type, 640, 480, 3, 3);
      const TestImage mask = SparseMask(500, 300, 100, -20, 7);
      for (const ImageRef over : {ImageRef{0}, ImageRef{mask}}) {
        std::vector<uint8_t> first;
        for (const int32_t workers : {1, 2, 3, 8}) {
          const test::Workers forced(workers);
          TestImage destination(type, 1, 1);
          ASSERT_EQ(Call(matrix, 0)(source, over, destination), 0);
          if (first.empty()) first = destination.Pixels();
          ASSERT_EQ(destination.Pixels(), first) << workers << " workers, type " << type;
        }
      }
    }
  }
}

TEST(Convolute, RefusesWhatItCannotTake) {
  test::ExpectRefusals(Call(AllOf(3, 3, 1, 9), 0));
  const TestImage source(IMAGE_U8, 9, 5, 1, 4);
  const auto before = source.Block();
  EXPECT_EQ(ZEL_Convolute(source, 0, 0, nullptr, 0), -3009);
  EXPECT_EQ(ZEL_Convolute(0, 0, 0, nullptr, 0), -3009);
  ConvolutionMatrix record{3, 1, nullptr, 1};
  EXPECT_EQ(ZEL_Convolute(test::UNKNOWN_IMAGE, 0, 0, &record, 0), -3009);
  EXPECT_EQ(source.Block(), before);
}

TEST(Convolute, StaysWholeWhenMemoryIsRefused) {
  for (const int32_t type : SCALAR_TYPES) {
    test::ExpectMemoryRefusals(type, Call(AllOf(3, 3, 1, 9), 0));
    test::ExpectMemoryRefusals(type, Call(AllOf(7, 7, 1, 49), 0));
    test::ExpectMemoryRefusals(type, Call(RandomMatrix(17, 17, 1, 9, 3, 4), 0));
  }
}

TEST(Convolute, TakesCalibrationAndOffset) {
  const TestImage source(IMAGE_U8, 9, 5, 1, 4);
  ASSERT_EQ(ZEL_SetImageCalibration(source, 3, 0.5f, 0.25f), 0);
  ASSERT_EQ(ZEL_SetImageOffset(source, 7, -4), 0);
  TestImage destination(IMAGE_U8, 1, 1);
  ASSERT_EQ(Call(AllOf(3, 3, 1, 9), 0)(source, 0, destination), 0);
  const ImageInfo info = destination.Info();
  EXPECT_EQ(info.unit, 3);
  EXPECT_EQ(info.xStep, 0.5f);
  EXPECT_EQ(info.offsetX, 7);
  EXPECT_EQ(info.offsetY, -4);
}

}  // namespace
