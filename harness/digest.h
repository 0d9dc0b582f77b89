// A number that stands for results, to compare processors, builds, processor levels and numbers of
// workers with.
#pragma once

#include <cstddef>
#include <cstdint>

#include "orlune_ptk.h"

namespace test {

class Digest {
 public:
  void Add(const void* data, size_t bytes);
  // What is made of words of 4 bytes is taken for floats. All NaN count as one: their bits are not
  // promised.
  template <class T>
  void Add(const T& value) {
    if constexpr (alignof(T) == alignof(float)) {
      AddFloats(&value, sizeof(value) / sizeof(float));
    } else {
      Add(&value, sizeof(value));
    }
  }
  void Add(double value);
  // Type, sizes, steps and pixels.
  void AddImage(ImageRef image);
  // All images that there are.
  void AddImages();

  uint64_t value() const { return value_; }

 private:
  void AddFloats(const void* floats, size_t count);

  uint64_t value_ = 0xCBF29CE484222325u;
};

}  // namespace test
