// For row sources only: sums of neighbouring numbers, as many at each place as a window is wide.
#pragma once

#include <cstdint>
#include <utility>

#include "core/numbers.h"

namespace zel::ZEL_LEVEL {
namespace {

// sums[x] is the sum of `columns` neighbouring column sums from x on. They are put together from
// sums of 1, 2, 4 and so on columns. `memory`: of three times as many sums as there are column
// sums, of which there are width + columns - 1.
template <class Sum>
ZEL_INLINE const Sum* WindowSums(const Sum* columnSums, Sum* memory, int64_t columns,
                                 int64_t width) {
  const int64_t count = width + columns - 1;
  Sum* __restrict sums = memory;
  const Sum* spans = columnSums;
  Sum* spare = memory + count;
  Sum* otherSpare = spare + count;
  int64_t done = 0;
  for (int64_t length = 1;; length *= 2) {
    if ((columns & length) != 0) {
      const Sum* from = spans + done;
      if (done == 0) {
        for (int64_t x = 0; x < width; x++) sums[x] = from[x];
      } else {
        for (int64_t x = 0; x < width; x++) sums[x] = static_cast<Sum>(sums[x] + from[x]);
      }
      done += length;
    }
    if (done == columns) return sums;
    Sum* __restrict doubled = spare;
    const int64_t last = count - 2 * length;
    for (int64_t x = 0; x <= last; x++) doubled[x] = static_cast<Sum>(spans[x] + spans[x + length]);
    spans = doubled;
    std::swap(spare, otherSpare);
  }
}

}  // namespace
}  // namespace zel::ZEL_LEVEL
