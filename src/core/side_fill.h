// The few pixels beside a row, filled with one value.
#pragma once

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <iterator>
#include <type_traits>

namespace zel {

constexpr int32_t SIDE_STORE_BYTES = 8;

// In stores of so many bytes where there are as many; the last one may cover some again. A Count of
// std::integral_constant leaves no loop.
template <class T, class Count>
void SideFill(T* to, Count columns, T value) {
  using Group = T[SIDE_STORE_BYTES / sizeof(T)];
  constexpr auto lanes = static_cast<int64_t>(std::extent_v<Group>);
  if (columns < lanes) {
    for (int64_t k = 0; k < columns; k++) to[k] = value;
    return;
  }
  Group group;
  std::fill(std::begin(group), std::end(group), value);
  for (int64_t k = 0; k + lanes < columns; k += lanes) std::memcpy(to + k, group, sizeof group);
  std::memcpy(to + columns - lanes, group, sizeof group);
}

}  // namespace zel
