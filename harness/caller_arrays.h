// Arrays that a wild caller brings, each of exactly the bytes that it is to hold, at places where
// an access beyond it shows.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace test {

struct ArrayLayout {
  size_t bytes;
  size_t alignment;
};

template <class T>
ArrayLayout LayoutOf(size_t count) {
  return {count * sizeof(T), alignof(T)};
}

// Of elements of an ArrayType. An unknown one has none: such an array may not be touched.
ArrayLayout LayoutOf(int32_t arrayType, size_t count);

enum class ArrayPlace {
  Heap,             // where a sanitizer watches both ends
  BeforeGuardPage,  // ends where a page begins that nobody may touch, sanitizer or not
  Misaligned,       // on the heap, aligned as the elements need it and no better
};

class CallerArrays {
 public:
  CallerArrays() = default;
  CallerArrays(const CallerArrays&) = delete;
  CallerArrays& operator=(const CallerArrays&) = delete;
  ~CallerArrays() { Clear(); }

  // Full of bytes 0xA5. Never null, also when there is nothing to hold. Lives until Clear.
  uint8_t* Make(const ArrayLayout& layout, ArrayPlace place);
  void Clear();

 private:
  struct Mapping {
    void* start;
    size_t bytes;
  };
  uint8_t* MakeBeforeGuardPage(size_t bytes);

  std::vector<uint8_t*> blocks_;
  std::vector<Mapping> mappings_;
};

}  // namespace test
