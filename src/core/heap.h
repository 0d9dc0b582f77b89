// The one heap. Every block of the library and every block that a caller releases with ZEL_free
// comes from here, so that tests can refuse, cap and count allocations in one place.
#pragma once

#include <cstddef>
#include <cstdint>
#include <utility>

namespace zel {

// No single block is larger than this: sizes that callers see are 32-bit signed numbers.
constexpr uint64_t HEAP_BLOCK_LIMIT = 0x7FFFFFFF;

// Each answers nullptr when the heap is exhausted or a test hook refuses.
void* HeapAllocate(size_t size);
void* HeapAllocateZeroed(size_t size);
void* HeapResize(void* block, size_t size);
void HeapFree(void* block);
// The bytes that a block was asked for with. 0 for null.
size_t HeapSize(void* block);

// What tests and fuzzers steer and read. A count of 0 or a budget of 0 sets no limit.
struct HeapHooks {
  uint64_t failAt = 0;        // refuse the allocation that brings `requests` to this number
  bool failAllAfter = false;  // ... and every later one
  uint64_t blockBudget = 0;   // refuse a block of more bytes
  uint64_t liveBudget = 0;    // refuse when the live bytes would pass this
  uint64_t requests = 0;      // allocations and resizes asked for so far
  uint64_t refusals = 0;      // ... and refused, by a hook or by the system
  int64_t liveBlocks = 0;     // blocks not yet freed
  int64_t liveBytes = 0;
  int64_t peakBytes = 0;        // the most live bytes since a test last set it
  uint64_t largestRequest = 0;  // the largest single size asked for since a test last set it
};
HeapHooks* HeapHooksGet();

// Work memory of one call: an array that is given back at the end of the scope.
template <class T>
class WorkArray {
 public:
  WorkArray() = default;
  WorkArray(const WorkArray&) = delete;
  WorkArray& operator=(const WorkArray&) = delete;
  ~WorkArray() { HeapFree(data_); }

  // Contents are undefined. False when there is no memory for `count` elements.
  [[nodiscard]] bool Allocate(uint64_t count) { return Take(count, &HeapAllocate); }
  [[nodiscard]] bool AllocateZeroed(uint64_t count) { return Take(count, &HeapAllocateZeroed); }

  // Keeps the contents up to the smaller size; on failure the old block stays.
  [[nodiscard]] bool Resize(uint64_t count) {
    if (count > HEAP_BLOCK_LIMIT / sizeof(T)) return false;
    void* block = HeapResize(data_, static_cast<size_t>(count ? count : 1) * sizeof(T));
    if (!block) return false;
    data_ = static_cast<T*>(block);
    return true;
  }

  // Leaves the block to the caller, who gives it back.
  T* Release() { return std::exchange(data_, nullptr); }

  T* data() { return data_; }
  const T* data() const { return data_; }
  T& operator[](size_t index) { return data_[index]; }
  const T& operator[](size_t index) const { return data_[index]; }

 private:
  bool Take(uint64_t count, void* (*allocate)(size_t)) {
    HeapFree(std::exchange(data_, nullptr));
    if (count > HEAP_BLOCK_LIMIT / sizeof(T)) return false;
    data_ = static_cast<T*>(allocate(static_cast<size_t>(count ? count : 1) * sizeof(T)));
    return data_ != nullptr;
  }

  T* data_ = nullptr;
};

}  // namespace zel
