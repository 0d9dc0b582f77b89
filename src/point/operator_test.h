// What the tests of the operators share: expected images made pixel by pixel from a rule.
#pragma once

#include <cmath>
#include <cstdint>
#include <numeric>
#include <string>
#include <vector>

#include "harness/test_image.h"

namespace test {

// Reads and writes the pixels of one row as numbers that hold all of them.
class Row {
 public:
  Row(const TestImage& image, int32_t type, int32_t y)
      : type_(type), pixels_(image.At<uint8_t>(0, y)) {}
  double operator[](int32_t x) const {
    switch (type_) {
      case IMAGE_U8:
        return static_cast<double>(pixels_[x]);
      case IMAGE_I16:
        return static_cast<double>(reinterpret_cast<const int16_t*>(pixels_)[x]);
      default:
        return static_cast<double>(reinterpret_cast<const float*>(pixels_)[x]);
    }
  }
  void Set(int32_t x, double value) const {
    switch (type_) {
      case IMAGE_U8:
        pixels_[x] = static_cast<uint8_t>(value);
        break;
      case IMAGE_I16:
        reinterpret_cast<int16_t*>(pixels_)[x] = static_cast<int16_t>(value);
        break;
      default:
        reinterpret_cast<float*>(pixels_)[x] = static_cast<float>(value);
        break;
    }
  }

 private:
  int32_t type_;
  uint8_t* pixels_;
};

// Rules give values that fit the result's type.
template <class Rule>
TestImage Combined(const TestImage& first, const TestImage& second, int32_t type, Rule rule) {
  const ImageInfo info = first.Info();
  const int32_t type2 = second.Info().type;
  TestImage result(type, info.width, info.height);
  for (int32_t y = 0; y < info.height; y++) {
    const Row a(first, info.type, y);
    const Row b(second, type2, y);
    const Row to(result, type, y);
    for (int32_t x = 0; x < info.width; x++) to.Set(x, rule(a[x], b[x]));
  }
  return result;
}

template <class Rule>
TestImage Mapped(const TestImage& first, int32_t type, Rule rule) {
  const ImageInfo info = first.Info();
  TestImage result(type, info.width, info.height);
  for (int32_t y = 0; y < info.height; y++) {
    const Row a(first, info.type, y);
    const Row to(result, type, y);
    for (int32_t x = 0; x < info.width; x++) to.Set(x, rule(a[x], x));
  }
  return result;
}

// The same as PixelDifference, quicker where there is none.
inline std::string Difference(const TestImage& actual, const TestImage& expected) {
  return actual.Info().type == expected.Info().type && actual.Pixels() == expected.Pixels()
             ? ""
             : PixelDifference(actual, expected);
}

// Limited to the type's range, then truncated; NaN is 0.
inline double CutLimitedOf(int32_t type, double value) {
  const double low = type == IMAGE_U8 ? 0 : -32768;
  const double high = type == IMAGE_U8 ? 255 : 32767;
  if (std::isnan(value)) return 0;
  return std::trunc(std::fmin(std::fmax(value, low), high));
}

// A constant as an integer.
inline int64_t CutInt(float constant) {
  if (std::isnan(constant)) return 0;
  const double value = static_cast<double>(constant);
  return static_cast<int64_t>(std::fmin(std::fmax(value, -2147483648.0), 2147483647.0));
}

inline int32_t Border(uint64_t seed) {
  constexpr int32_t borders[] = {0, 3, 1, 8};
  return borders[seed % 4];
}
inline int32_t Border(int32_t seed) {
  return Border(static_cast<uint64_t>(seed));
}

// Every fifth pixel or so, and the first one.
inline void SprinkleZeros(const TestImage& image, uint64_t seed) {
  Random random(seed);
  const ImageInfo info = image.Info();
  for (int32_t y = 0; y < info.height; y++) {
    const Row row(image, info.type, y);
    for (int32_t x = 0; x < info.width; x++) {
      if (random.Next() % 5 == 0 || x + y == 0) row.Set(x, 0.0);
    }
  }
}

// Rows in which each value meets each other one.
template <class T>
struct Pairs {
  Pairs(int32_t type, const std::vector<T>& values)
      : first(type, Length(values), 1), second(type, Length(values), 1) {
    const auto count = static_cast<int32_t>(values.size());
    for (int32_t i = 0; i < count * count; i++) {
      first.Set<T>(i, 0, values[static_cast<size_t>(i / count)]);
      second.Set<T>(i, 0, values[static_cast<size_t>(i % count)]);
    }
  }
  TestImage first;
  TestImage second;

 private:
  static int32_t Length(const std::vector<T>& values) {
    return static_cast<int32_t>(values.size() * values.size());
  }
};

inline Pairs<uint8_t> PairsOfBytes() {
  std::vector<uint8_t> bytes(256);
  std::iota(bytes.begin(), bytes.end(), uint8_t{0});
  return {IMAGE_U8, bytes};
}

inline TestImage EveryWord() {
  TestImage words(IMAGE_I16, 256, 256);
  for (int32_t i = 0; i < 65536; i++) {
    words.Set<int16_t>(i % 256, i / 256, static_cast<int16_t>(i - 32768));
  }
  return words;
}

// Two images of one type, the same ones for the same width.
struct Operands {
  Operands(int32_t type, int32_t width)
      : first(type, width, 3, Border(width), 21), second(type, width, 3, Border(width + 1), 22) {
    SprinkleZeros(second, 23);
  }
  TestImage first;
  TestImage second;
};

}  // namespace test
