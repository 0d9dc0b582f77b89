// The pixels on an oval's outline, in their order around it.
#pragma once

#include <cstdint>

#include "core/heap.h"
#include "core/status.h"
#include "orlune_ptk.h"
#include "utilities/ovals.h"

namespace zel {

// Outlines of more pixels are refused.
constexpr int64_t OVAL_PATH_LIMIT = 1 << 24;

// Each pixel once, clockwise from the leftmost one of the top row. A box less than 2 pixels wide or
// high has all its pixels. The box has a pixel at least.
class OvalPath {
 public:
  // STATUS_MEMORY_FULL, also beyond the limit.
  Status Make(const PixelBox& box);

  int64_t count() const { return count_; }
  PointInt operator[](int64_t index) const { return points_[static_cast<size_t>(index)]; }

 private:
  void AddRising(const Columns& columns, int64_t y);
  void AddFalling(const Columns& columns, int64_t y);
  void Add(int64_t x, int64_t y);

  WorkArray<PointInt> points_;
  int64_t count_ = 0;
};

}  // namespace zel
