// Row routines of resampling: along rows first, then down columns.
#include "utilities/resample_rows.h"

#include "core/numbers.h"

namespace zel::ZEL_LEVEL {
namespace {

template <class T>
void Pick(const void* source, const int32_t* index, void* destination, int32_t count) {
  const T* from = static_cast<const T*>(source);
  T* __restrict to = static_cast<T*>(destination);
  for (int32_t i = 0; i < count; i++) to[i] = from[index[i]];
}

template <class T>
void Widen(const void* source, double* __restrict to, int32_t count) {
  const T* from = static_cast<const T*>(source);
  for (int32_t i = 0; i < count; i++) to[i] = static_cast<double>(from[i]);
}

// Numbers between samples, as 64-bit floats in this order of operations.
ZEL_INLINE double Between(double f0, double f1, double t) {
  return f0 + t * (f1 - f0);
}
ZEL_INLINE double Between(double f0, double f1, double f2, double t) {
  const double d1 = f1 - f0;
  const double d2 = (f2 - f1) - d1;
  return f0 + t * d1 + t * (t - 1.0) * 0.5 * d2;
}

template <class T, int32_t samples>
void Along(const void* source, const TileColumns& columns, double* destination, int32_t count) {
  const T* from = static_cast<const T*>(source);
  const int32_t* first = columns.index[0];
  const int32_t* second = columns.index[1];
  const int32_t* third = columns.index[2];
  const double* share = columns.share;
  double* __restrict to = destination;
  for (int32_t i = 0; i < count; i++) {
    const auto f0 = static_cast<double>(from[first[i]]);
    if constexpr (samples == 1) {
      to[i] = f0;
    } else if constexpr (samples == 2) {
      to[i] = Between(f0, static_cast<double>(from[second[i]]), share[i]);
    } else {
      to[i] = Between(f0, static_cast<double>(from[second[i]]), static_cast<double>(from[third[i]]),
                      share[i]);
    }
  }
}

template <class T>
ZEL_INLINE T NumberOf(double value) {
  if constexpr (sizeof(T) == sizeof(float)) {
    return static_cast<float>(value);
  } else {
    // Integer pixels are joined to numbers far below 2^31: the low bits of a whole number.
    return static_cast<T>(static_cast<int32_t>(value));
  }
}

template <class T, int32_t samples>
void Down(const double* const* rows, double share, void* destination, int32_t count) {
  const double* f0 = rows[0];
  const double* f1 = rows[1];
  const double* f2 = rows[2];
  T* __restrict to = static_cast<T*>(destination);
  for (int32_t i = 0; i < count; i++) {
    if constexpr (samples == 1) {
      to[i] = NumberOf<T>(f0[i]);
    } else if constexpr (samples == 2) {
      to[i] = NumberOf<T>(Between(f0[i], f1[i], share));
    } else {
      to[i] = NumberOf<T>(Between(f0[i], f1[i], f2[i], share));
    }
  }
}

template <class T>
constexpr BySamples<AlongRow> ALONG = {
    .one = &Along<T, 1>, .two = &Along<T, 2>, .three = &Along<T, 3>};
template <class T>
constexpr BySamples<DownRows> DOWN = {.one = &Down<T, 1>, .two = &Down<T, 2>, .three = &Down<T, 3>};

}  // namespace

extern const ResampleRows resampleRows = {
    .pick = {.one = &Pick<uint8_t>,
             .two = &Pick<uint16_t>,
             .four = &Pick<uint32_t>,
             .eight = &Pick<uint64_t>},
    .widen = {.u8 = &Widen<uint8_t>, .i16 = &Widen<int16_t>, .sgl = &Widen<float>},
    .along = {.u8 = ALONG<uint8_t>, .i16 = ALONG<int16_t>, .sgl = ALONG<float>},
    .down = {.u8 = DOWN<uint8_t>, .i16 = DOWN<int16_t>, .sgl = DOWN<float>},
};

}  // namespace zel::ZEL_LEVEL
