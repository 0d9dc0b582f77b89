// Bytes inside a block of the heap that nobody may touch, made known to the address sanitizer,
// which by itself watches the ends of blocks only. Without it these do nothing.
#pragma once

#include <cstddef>

#if defined(__SANITIZE_ADDRESS__)
#define ZEL_ADDRESS_SANITIZER 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define ZEL_ADDRESS_SANITIZER 1
#endif
#endif
#if defined(ZEL_ADDRESS_SANITIZER)
#include <sanitizer/asan_interface.h>
#endif

namespace zel {

#if defined(ZEL_ADDRESS_SANITIZER)
inline void MemoryForbid(const void* start, size_t bytes) {
  __asan_poison_memory_region(start, bytes);
}
inline void MemoryAllow(const void* start, size_t bytes) {
  __asan_unpoison_memory_region(start, bytes);
}
#else
inline void MemoryForbid(const void*, size_t) {}
inline void MemoryAllow(const void*, size_t) {}
#endif

}  // namespace zel
