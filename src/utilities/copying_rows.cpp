// Row routines of copies that repeat pixels or leave some out.
#include "utilities/copying_rows.h"

#include <cstdint>

#include "core/numbers.h"

namespace zel::ZEL_LEVEL {
namespace {

// A factor that is known when the loop is compiled makes it one of shuffles.
template <class T, int32_t times>
ZEL_INLINE void RepeatKnown(const T* from, T* __restrict to, int64_t count) {
  for (int64_t x = 0; x < count; x++) {
    for (int64_t k = 0; k < times; k++) to[x * times + k] = from[x];
  }
}

template <class T>
void Repeat(const void* source, void* destination, int32_t count, int32_t times) {
  const T* from = static_cast<const T*>(source);
  T* to = static_cast<T*>(destination);
  switch (times) {
    case 2:
      return RepeatKnown<T, 2>(from, to, count);
    case 3:
      return RepeatKnown<T, 3>(from, to, count);
    case 4:
      return RepeatKnown<T, 4>(from, to, count);
    default:
      for (int64_t x = 0; x < count; x++) {
        const T pixel = from[x];
        for (int64_t k = 0; k < times; k++) to[k] = pixel;
        to += times;
      }
  }
}

template <class T, int64_t stride>
ZEL_INLINE void SkipKnown(const T* from, T* __restrict to, int64_t count) {
  for (int64_t i = 0; i < count; i++) to[i] = from[i * stride];
}

template <class T>
void Skip(const void* source, void* destination, int32_t count, int32_t stride) {
  const T* from = static_cast<const T*>(source);
  T* __restrict to = static_cast<T*>(destination);
  switch (stride) {
    case 2:
      return SkipKnown<T, 2>(from, to, count);
    case 3:
      return SkipKnown<T, 3>(from, to, count);
    case 4:
      return SkipKnown<T, 4>(from, to, count);
    default:
      for (int64_t i = 0; i < count; i++) to[i] = from[i * stride];
  }
}

}  // namespace

extern const CopyingRows copyingRows = {
    .repeat = {.one = &Repeat<uint8_t>,
               .two = &Repeat<uint16_t>,
               .four = &Repeat<uint32_t>,
               .eight = &Repeat<uint64_t>},
    .skip = {.one = &Skip<uint8_t>,
             .two = &Skip<uint16_t>,
             .four = &Skip<uint32_t>,
             .eight = &Skip<uint64_t>},
};

}  // namespace zel::ZEL_LEVEL
