// Row routines of mirrored and transposed images.
#include "geometry/symmetry_rows.h"

#include "core/numbers.h"

namespace zel::ZEL_LEVEL {
namespace {

template <class T>
void Reverse(const void* source, void* destination, int32_t count) {
  const T* from = static_cast<const T*>(source);
  T* __restrict to = static_cast<T*>(destination);
  const int64_t last = int64_t{count} - 1;
  for (int64_t x = 0; x <= last; x++) to[x] = from[last - x];
}

template <class T>
void TransposePixels(const TransposeBlock& block) {
  for (int64_t x = 0; x < block.width; x++) {
    T* to = reinterpret_cast<T*>(block.to + x * block.toPitch);
    for (int64_t y = 0; y < block.height; y++) {
      to[y] = reinterpret_cast<const T*>(block.from + y * block.fromPitch)[x];
    }
  }
}

}  // namespace

extern const SymmetryRows symmetryRows = {
    .reverse = {.one = &Reverse<uint8_t>,
                .two = &Reverse<uint16_t>,
                .four = &Reverse<uint32_t>,
                .eight = &Reverse<uint64_t>},
    .transpose = {.one = &TransposePixels<uint8_t>,
                  .two = &TransposePixels<uint16_t>,
                  .four = &TransposePixels<uint32_t>,
                  .eight = &TransposePixels<uint64_t>},
};

}  // namespace zel::ZEL_LEVEL
