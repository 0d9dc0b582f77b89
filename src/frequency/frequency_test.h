// What tests of the frequency domain share: numbers at the ends of their range, images of them, and
// pixels compared.
#pragma once

#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <string>

#include "harness/test_image.h"
#include "orlune_ptk.h"

namespace test {

inline ComplexValue ComplexAt(const TestImage& image, int32_t x, int32_t y) {
  return image.Get<ComplexValue>(x, y);
}

// The pixel of a scalar image, or the real part of a complex one, as a float.
inline float NumberAt(const TestImage& image, int32_t x, int32_t y) {
  if (image.Info().type == IMAGE_COMPLEX) return ComplexAt(image, x, y).real;
  return static_cast<float>(PixelOf(image, x, y));
}

inline bool SameBits(float a, float b) {
  uint32_t bits[2];
  std::memcpy(&bits[0], &a, sizeof a);
  std::memcpy(&bits[1], &b, sizeof b);
  return bits[0] == bits[1] || (std::isnan(a) && std::isnan(b));
}
inline bool SameBits(const ComplexValue& a, const ComplexValue& b) {
  return SameBits(a.real, b.real) && SameBits(a.imaginary, b.imaginary);
}

// Zeros, infinities, NaN, the smallest and the largest numbers.
inline float ExtremeFloat(Random* random) {
  using Limits = std::numeric_limits<float>;
  constexpr float values[] = {0.0f,
                              -0.0f,
                              1.0f,
                              -1.0f,
                              255.9f,
                              -32769.5f,
                              1e10f,
                              3e-11f,
                              -2e-20f,
                              Limits::denorm_min(),
                              -Limits::denorm_min(),
                              Limits::min(),
                              Limits::max(),
                              -Limits::max(),
                              Limits::infinity(),
                              -Limits::infinity(),
                              Limits::quiet_NaN()};
  return values[random->Next() % (sizeof values / sizeof *values)];
}

// Random pixels; of the floats every fourth is an extreme one, or none.
inline TestImage SpectrumImage(int32_t type, int32_t width, int32_t height, int32_t border,
                               uint64_t seed, bool withExtremes = true) {
  TestImage image(type, width, height, border, seed);
  if (type != IMAGE_SGL && type != IMAGE_COMPLEX) return image;
  Random random(seed + 9);
  const int32_t parts = type == IMAGE_SGL ? 1 : 2;
  for (int32_t y = 0; y < height; y++) {
    auto* row = static_cast<float*>(static_cast<void*>(image.At<uint8_t>(0, y)));
    for (int32_t i = 0; i < parts * width; i++) {
      row[i] = random.Float(-300.0f, 300.0f);
      if (withExtremes && random.Next() % 4 == 0) row[i] = ExtremeFloat(&random);
    }
  }
  return image;
}

// The whole block, to be compared with what a call has made of it.
inline std::string SurroundingsDifference(const std::vector<uint8_t>& before,
                                          const TestImage& image) {
  return before == image.Surroundings() ? "" : "the border or the padding was written";
}

constexpr int32_t FREQUENCY_TYPES[] = {IMAGE_U8, IMAGE_I16, IMAGE_SGL, IMAGE_COMPLEX};
constexpr ImageRef NO_IMAGE = 0x7FFFFFF0;  // names none

}  // namespace test
