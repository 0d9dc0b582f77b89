// Row routines of resampling: along rows first, then down columns.
#include "utilities/resample_rows.h"

#include "core/numbers.h"
#include "engine/vectors.h"

namespace zel::ZEL_LEVEL {
namespace {

// ---- bytes at rising indexes, a vector of them at a time

#if defined(ZEL_WIDE_VECTORS)

constexpr int32_t LANES = VECTOR_BYTES / 4;
using FewBytes = uint8_t __attribute__((vector_size(LANES)));

#if defined(ZEL_LEVEL_v4)

// Out of the 64 bytes from the first one on.
constexpr int32_t BYTES_SPANNED = 64;
constexpr int32_t BYTES_BEHIND = 0;

struct ByteWindow {
  __m512i bytes;
  Ints first;

  // Nothing is read beyond the readable bytes.
  ZEL_INLINE ByteWindow(const uint8_t* from, int32_t readable, const int32_t* index) {
    const auto left = static_cast<uint32_t>(readable - index[0]);
    const uint64_t kept = left >= 64 ? ~uint64_t{0} : (uint64_t{1} << left) - 1;
    bytes = _mm512_maskz_loadu_epi8(kept, from + index[0]);
    first = Ints{} + index[0];
  }
  ZEL_INLINE Ints At(const int32_t* index) const {
    constexpr __mmask64 lowBytes = 0x1111111111111111;
    const Ints places = Load<Ints>(index) - first;
    return (Ints)_mm512_maskz_permutexvar_epi8(lowBytes, (__m512i)places, bytes);
  }
};

#else

constexpr int32_t BYTES_SPANNED = INT32_MAX;
constexpr int32_t BYTES_BEHIND = 3;

struct ByteWindow {
  const uint8_t* from;

  ZEL_INLINE ByteWindow(const uint8_t* row, int32_t, const int32_t*) : from(row) {}
  ZEL_INLINE Ints At(const int32_t* index) const {
    return GatherInts(from, Load<Ints>(index)) & 0xFF;
  }
};

#endif

// How many results can be taken by windows: whole vectors, of which the last byte that is taken is
// at last[i].
ZEL_INLINE int32_t WindowsCount(const int32_t* index, const int32_t* last, int32_t readable,
                                int32_t count) {
  int32_t taken = 0;
  while (taken + LANES <= count && last[taken + LANES - 1] + BYTES_BEHIND < readable &&
         last[taken + LANES - 1] - index[taken] < BYTES_SPANNED) {
    taken += LANES;
  }
  return taken;
}

#endif

// ---- nearest

template <class T>
void Pick(const void* source, int32_t, const int32_t* index, void* destination, int32_t count) {
  const T* from = static_cast<const T*>(source);
  T* __restrict to = static_cast<T*>(destination);
  for (int32_t i = 0; i < count; i++) to[i] = from[index[i]];
}

#if defined(ZEL_WIDE_VECTORS)
void PickBytes(const void* source, int32_t readable, const int32_t* index, void* destination,
               int32_t count) {
  const auto* from = static_cast<const uint8_t*>(source);
  auto* to = static_cast<uint8_t*>(destination);
  const int32_t taken = WindowsCount(index, index, readable, count);
  for (int32_t i = 0; i < taken; i += LANES) {
    const Ints bytes = ByteWindow(from, readable, index + i).At(index + i);
    Store(to + i, __builtin_convertvector(bytes, FewBytes));
  }
  Pick<uint8_t>(from, readable, index + taken, to + taken, count - taken);
}
#else
constexpr PickRow PickBytes = &Pick<uint8_t>;
#endif

// ---- joined numbers

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
void Along(const void* source, const TileColumns& columns, double* destination) {
  const T* from = static_cast<const T*>(source);
  const int32_t* first = columns.index[0];
  const int32_t* second = columns.index[1];
  const int32_t* third = columns.index[2];
  const double* share = columns.share;
  double* __restrict to = destination;
  const int32_t count = columns.count;
  for (int32_t i = columns.estimated; i < count; i++) {
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

// ---- estimated bytes

#if defined(ZEL_WIDE_VECTORS)

// What is estimated lies from 0 to 255. The share is rounded to within 2^-25, which a difference of
// 255 makes 2^-17; the product and the sum are rounded to within 2^-17 each: below 3 * 2^-17 along
// a row. Down the rows the weights keep that, and the rounded difference, share, product and sum
// add 2^-17 each: below 2^-14. The stated numbers are rounded to far less.
constexpr float DOUBT = 1.0f / 8192;
// Added and taken away, it rounds numbers below 2^22 to whole ones.
constexpr float WHOLE_NUMBERS = 8388608.0f;

int32_t EstimateCount(const TileColumns& columns) {
  return WindowsCount(columns.index[0], columns.index[1], columns.readable, columns.count);
}

ZEL_INLINE Floats Between(Floats f0, Floats f1, Floats t) {
  return f0 + t * (f1 - f0);
}

void EstimateAlong(const uint8_t* from, const TileColumns& columns, float* to) {
  const int32_t readable = columns.readable;
  const int32_t count = columns.estimated;
  for (int32_t i = 0; i < count; i += LANES) {
    const ByteWindow window(from, readable, columns.index[0] + i);
    const Floats f0 = __builtin_convertvector(window.At(columns.index[0] + i), Floats);
    const Floats f1 = __builtin_convertvector(window.At(columns.index[1] + i), Floats);
    Store(to + i, Between(f0, f1, Load<Floats>(columns.shareEstimate + i)));
  }
}

// Whether the four pixels of a result differ: where they are equal, the estimate is exact.
ZEL_INLINE Ints Differ(const EstimatedRows& rows, const TileColumns& columns, int32_t i) {
  const int32_t* first = columns.index[0] + i;
  const int32_t* second = columns.index[1] + i;
  const ByteWindow top(rows.from[0], columns.readable, first);
  const ByteWindow bottom(rows.from[1], columns.readable, first);
  const Ints corner = top.At(first);
  return (corner ^ top.At(second)) | (corner ^ bottom.At(first)) | (corner ^ bottom.At(second));
}

ZEL_INLINE double StatedAlong(const uint8_t* from, const TileColumns& columns, int32_t i) {
  return Between(static_cast<double>(from[columns.index[0][i]]),
                 static_cast<double>(from[columns.index[1][i]]), columns.share[i]);
}

[[gnu::noinline]] void StatedBytes(const EstimatedRows& rows, const TileColumns& columns,
                                   int32_t begin, uint8_t* to) {
  for (int32_t i = begin; i < begin + LANES; i++) {
    const double stated = Between(StatedAlong(rows.from[0], columns, i),
                                  StatedAlong(rows.from[1], columns, i), rows.share);
    to[i] = NumberOf<uint8_t>(stated);
  }
}

void EstimateDown(const EstimatedRows& of, const TileColumns& columns, uint8_t* to) {
  const EstimatedRows rows = of;
  const Floats share = Floats{} + static_cast<float>(rows.share);
  const int32_t count = columns.estimated;
  for (int32_t i = 0; i < count; i += LANES) {
    const Floats value =
        Between(Load<Floats>(rows.joined[0] + i), Load<Floats>(rows.joined[1] + i), share);
    Store(to + i, __builtin_convertvector(Truncate(value), FewBytes));
    const Floats off = value - ((value + WHOLE_NUMBERS) - WHOLE_NUMBERS);
    const Ints doubtful = (Ints)((off < DOUBT) & (off > -DOUBT));
    if (AnySet(doubtful) && AnySet(doubtful & Differ(rows, columns, i))) {
      StatedBytes(rows, columns, i, to);
    }
  }
}

constexpr EstimateRows ESTIMATE = {
    .count = &EstimateCount, .along = &EstimateAlong, .down = &EstimateDown};

#else

// The compiler's code for the stated numbers is all there is.
constexpr EstimateRows ESTIMATE = {
    .count = [](const TileColumns&) { return 0; },
    .along = [](const uint8_t*, const TileColumns&, float*) {},
    .down = [](const EstimatedRows&, const TileColumns&, uint8_t*) {}};

#endif

}  // namespace

extern const ResampleRows resampleRows = {
    .pick = {.one = PickBytes,
             .two = &Pick<uint16_t>,
             .four = &Pick<uint32_t>,
             .eight = &Pick<uint64_t>},
    .widen = {.u8 = &Widen<uint8_t>, .i16 = &Widen<int16_t>, .sgl = &Widen<float>},
    .along = {.u8 = ALONG<uint8_t>, .i16 = ALONG<int16_t>, .sgl = ALONG<float>},
    .down = {.u8 = DOWN<uint8_t>, .i16 = DOWN<int16_t>, .sgl = DOWN<float>},
    .estimate = ESTIMATE,
};

}  // namespace zel::ZEL_LEVEL
