// Memory cut at cache lines.
#pragma once

#include <cstdint>

#include "core/numbers.h"

namespace zel {

constexpr int64_t CACHE_LINE = 64;

// As many bytes as whole cache lines take.
ZEL_INLINE constexpr int64_t OnCacheLines(int64_t bytes) {
  return (bytes + CACHE_LINE - 1) / CACHE_LINE * CACHE_LINE;
}

// From an address to the first boundary of a cache line there or behind it.
ZEL_INLINE int64_t BytesToCacheLine(const void* address) {
  constexpr auto line = static_cast<uintptr_t>(CACHE_LINE);
  return static_cast<int64_t>(-reinterpret_cast<uintptr_t>(address) % line);
}

}  // namespace zel
