// The flat form of a region as it grows.
#pragma once

#include <cstdint>

#include "core/handles.h"
#include "core/rectangles.h"

namespace zel {

// Pairs of integers in a vector: two for the rectangle, and one for each marker with its type and
// for each point.
class FlatBuilder {
 public:
  static constexpr int64_t RECT_PAIRS = 2;

  // Pairs over the limit, at least that of the rectangle, are dropped.
  FlatBuilder(Handle vector, int64_t limit) : vector_(vector), limit_(limit) {}

  bool IsFull() const { return count_ == limit_; }
  int64_t count() const { return count_; }
  PointInt operator[](int64_t place) const { return pairs_[place]; }
  // One that is not kept is overwritten by the next. STATUS_MEMORY_FULL.
  Status Append(int32_t first, int32_t second, bool isKept = true) {
    if (IsFull()) return STATUS_OK;
    if (count_ == capacity_) {
      const Status status = Grow();
      if (status != STATUS_OK) return status;
    }
    pairs_[count_] = {first, second};
    count_ += isKept ? 1 : 0;
    return STATUS_OK;
  }
  // Puts the rectangle in front and gives the vector its size. STATUS_MEMORY_FULL.
  Status Finish(const KernelRect& rect);

 private:
  Status Grow();
  Status Resize(int64_t pairs);

  Handle vector_;
  int64_t limit_;
  PointInt* pairs_ = nullptr;
  int64_t count_ = RECT_PAIRS;
  int64_t capacity_ = RECT_PAIRS;
};

}  // namespace zel
