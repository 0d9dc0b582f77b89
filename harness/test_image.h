// Images for tests: owned, filled by seed, read pixel by pixel, and compared.
#pragma once

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "orlune_ptk.h"

namespace test {

// A small generator of repeatable random numbers.
class Random {
 public:
  explicit Random(uint64_t seed) : state_(seed * 0x9E3779B97F4A7C15u + 0x1234567) {}
  uint32_t Next() {
    state_ ^= state_ << 13;
    state_ ^= state_ >> 7;
    state_ ^= state_ << 17;
    return static_cast<uint32_t>(state_ >> 16);
  }
  int32_t Between(int32_t low, int32_t high) {
    return low + static_cast<int32_t>(Next() % (static_cast<uint32_t>(high - low) + 1));
  }
  float Float(float low, float high) {
    return low + (high - low) * (static_cast<float>(Next() & 0xFFFFFF) / 16777215.0f);
  }

 private:
  uint64_t state_;
};

// Owns a reference. New pixels, border and padding hold a pattern of the seed, so that a write
// outside the image shows.
class TestImage {
 public:
  TestImage() = default;
  TestImage(int32_t type, int32_t width, int32_t height, int32_t border = 0, uint64_t seed = 1);
  TestImage(TestImage&& other) noexcept : reference_(std::exchange(other.reference_, 0)) {}
  TestImage& operator=(TestImage&& other) noexcept {
    std::swap(reference_, other.reference_);
    return *this;
  }
  ~TestImage();

  // From rows of text: '.' is 0, any other character the value.
  static TestImage FromRows(const std::vector<std::string>& rows, int32_t border = 2,
                            uint8_t value = 255);

  operator ImageRef() const { return reference_; }  // NOLINT: an image is its reference in calls
  ImageInfo Info() const;
  int32_t width() const { return Info().width; }
  int32_t height() const { return Info().height; }

  // The address of a pixel of the image or its border.
  template <class T>
  T* At(int32_t x, int32_t y) const {
    return static_cast<T*>(Address(x, y));
  }
  template <class T>
  T Get(int32_t x, int32_t y) const {
    return *At<T>(x, y);
  }
  template <class T>
  void Set(int32_t x, int32_t y, T value) const {
    *At<T>(x, y) = value;
  }

  // Every byte of the block by the seed: floats are made finite and of moderate size.
  void FillRandom(uint64_t seed) const;
  // The rows without border and padding, byte after byte.
  std::vector<uint8_t> Pixels() const;
  // The whole block, border and padding included.
  std::vector<uint8_t> Block() const;
  // The block with the image's own pixels set to 0: what a function that writes pixels only may
  // not change.
  std::vector<uint8_t> Surroundings() const;

 private:
  void* Address(int32_t x, int32_t y) const;
  uint8_t* BlockStart() const;

  ImageRef reference_ = 0;
};

// The pixel of a U8, I16 or SGL image as a number.
double PixelOf(const TestImage& image, int32_t x, int32_t y);

// Whether a mask at its offset selects the pixel of the image that it lies on; null selects all.
bool Selects(const TestImage* mask, int32_t x, int32_t y);

// Empty when the pixels are the same; else the first difference as text. Floats are compared by
// their bits, but any NaN equals any NaN.
std::string PixelDifference(const TestImage& actual, const TestImage& expected);

// Widths and heights around the groups of the row routines.
inline const std::vector<std::pair<int32_t, int32_t>> ODD_SIZES = {
    {0, 0},  {1, 1},  {2, 3},  {7, 2},  {8, 3},  {9, 2},  {15, 2},  {16, 3},  {17, 2},
    {31, 2}, {32, 3}, {33, 2}, {63, 2}, {64, 2}, {65, 3}, {129, 2}, {640, 4},
};

}  // namespace test
