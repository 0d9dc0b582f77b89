// What the tests of convolution share: matrices, and sums as they are stated.
#pragma once

#include <algorithm>
#include <cmath>
#include <string>
#include <vector>

#include "filters/filter_test.h"
#include "platform/processor.h"

namespace test::convolution {

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

inline Matrix RandomMatrix(int32_t width, int32_t height, int32_t low, int32_t high, float divider,
                           uint64_t seed) {
  Random random(seed);
  Matrix matrix{width, height, {}, divider};
  for (int32_t i = 0; i < width * height; i++) {
    matrix.coefficients.push_back(static_cast<float>(random.Between(low, high)));
  }
  return matrix;
}

inline Matrix AllOf(int32_t width, int32_t height, float coefficient, float divider) {
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

inline bool IsFractional(const Matrix& matrix) {
  return std::any_of(matrix.coefficients.begin(), matrix.coefficients.end(), [](float c) {
    return !(c >= -2147483648.0f && c < 2147483648.0f) || c != std::trunc(c);
  });
}

inline float DividerOf(const Matrix& matrix) {
  if (matrix.divider != 0) return matrix.divider;
  double sum = 0;
  for (const float c : matrix.coefficients) sum += static_cast<double>(c);
  return static_cast<float>(sum) == 0 ? 1.0f : static_cast<float>(sum);
}

inline double Cut(double value, int32_t type) {
  const double low = type == IMAGE_U8 ? 0 : -32768;
  const double high = type == IMAGE_U8 ? 255 : 32767;
  return std::isnan(value) ? 0 : std::trunc(std::clamp(value, low, high));
}

inline bool HasGroups(const Matrix& matrix) {
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

inline auto Call(const Matrix& matrix, int32_t fill) {
  return [=](ImageRef source, ImageRef mask, ImageRef destination) {
    Matrix own = matrix;
    ConvolutionMatrix record = own.Record();
    return ZEL_Convolute(source, mask, destination, &record, fill);
  };
}

inline std::string NameOf(const TestImage& source, const Matrix& matrix, int32_t fill) {
  std::string name = std::to_string(matrix.width) + " x " + std::to_string(matrix.height) + " / " +
                     std::to_string(matrix.divider) + " on type " +
                     std::to_string(source.Info().type) + ", " + std::to_string(source.width()) +
                     " x " + std::to_string(source.height()) + ", fill " + std::to_string(fill);
  return name;
}

// Into another image and without a mask, so that there may be groups.
inline void ExpectConvolved(const TestImage& source, const Matrix& matrix, int32_t fill) {
  SCOPED_TRACE(NameOf(source, matrix, fill));
  const Surrounded pixels(source, fill);
  const int32_t width = source.width();
  TestImage expected(source.Info().type, width, source.height());
  const bool hasGroups = source.Info().type == IMAGE_U8 && width > 3 && HasGroups(matrix);
  for (int32_t y = 0; y < source.height(); y++) {
    for (int32_t x = 0; x < width; x++) {
      const bool grouped = hasGroups && x < width / 4 * 4;
      SetPixel(expected, x, y, Convolved(matrix, pixels, x, y, grouped));
    }
  }
  TestImage destination(source.Info().type, 3, 2, 2, 8);
  ASSERT_EQ(Call(matrix, fill)(source, 0, destination), 0);
  ASSERT_EQ(PixelDifference(destination, expected), "");
}

// In every relation of the images. No sum may be beyond 16 bits where the divider is 1.
inline void ExpectConvolvedAnywhere(const TestImage& source, const Matrix& matrix, int32_t fill) {
  SCOPED_TRACE(NameOf(source, matrix, fill));
  const Surrounded pixels(source, fill);
  ExpectFiltered(source, Call(matrix, fill), [&](const Mirrored&, int32_t x, int32_t y) {
    return Convolved(matrix, pixels, x, y, false);
  });
}

constexpr std::pair<int32_t, int32_t> SHAPES[] = {
    {1, 3},  {3, 1},  {1, 4},  {4, 1}, {2, 2}, {2, 3},   {3, 2},  {3, 3},
    {4, 4},  {5, 5},  {6, 6},  {7, 7}, {7, 2}, {2, 7},   {8, 3},  {9, 9},
    {1, 11}, {12, 1}, {10, 7}, {5, 1}, {1, 5}, {15, 15}, {17, 16}};

}  // namespace test::convolution
