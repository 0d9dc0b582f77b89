// Row routines of resampling: along rows first, then down columns.
#include "utilities/resample_rows.h"

#include "core/numbers.h"
#include "engine/vectors.h"

namespace zel::ZEL_LEVEL {
namespace {

// ---- bytes at rising indexes, a vector of them at a time

#if defined(ZEL_WIDE_VECTORS)

constexpr int32_t LANES = VECTOR_BYTES / 4;

// Bytes are set into this float: 2^23 and the byte.
constexpr int32_t FLOAT_BITS = 0x4B000000;
constexpr float FLOAT_OFFSET = 8388608.0f;

#if defined(ZEL_LEVEL_v4)

// Out of 64 bytes.
constexpr int32_t WINDOW_BYTES = 64;

ZEL_INLINE Ints BytesAt(const uint8_t* from, Ints places) {
  constexpr __mmask64 lowBytes = 0x1111111111111111;
  return (Ints)_mm512_mask_permutexvar_epi8(_mm512_set1_epi32(FLOAT_BITS), lowBytes, Of(places),
                                            Load<__m512i>(from));
}

// So that nothing is read beyond the readable bytes.
ZEL_INLINE int32_t WindowStart(int32_t first, int32_t readable) {
  return first < readable - WINDOW_BYTES ? first : readable - WINDOW_BYTES;
}
ZEL_INLINE bool WindowHolds(int32_t first, int32_t last, int32_t readable) {
  return last < readable && last - first < WINDOW_BYTES && readable >= WINDOW_BYTES;
}

#else

// By gathers, which read four bytes at each place.
ZEL_INLINE Ints BytesAt(const uint8_t* from, Ints places) {
  return (GatherInts(from, places) & 0xFF) | FLOAT_BITS;
}
ZEL_INLINE int32_t WindowStart(int32_t, int32_t) {
  return 0;
}
ZEL_INLINE bool WindowHolds(int32_t, int32_t last, int32_t readable) {
  return last + 3 < readable;
}

#endif

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
  int32_t i = 0;
  for (; i + LANES <= count && WindowHolds(index[i], index[i + LANES - 1], readable); i += LANES) {
    const int32_t start = WindowStart(index[i], readable);
    StoreBytes<0>(to + i, BytesAt(from + start, Load<Ints>(index + i) - start));
  }
  Pick<uint8_t>(from, readable, index + i, to + i, count - i);
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

// What is estimated lies from 0 to 255. A share is rounded to within 2^-25, which a difference of
// 255 makes 2^-17, and the sum to within 2^-17: 2^-16 along a row. Down the rows the weights keep
// that, and the rounded difference, share and sum add 2^-17 each: below 2^-14. The stated numbers
// are rounded to far less. So the estimate in 65536ths, cut, is less than 5 off, and in doubt where
// it is within 8 of a whole number.
constexpr int32_t ONE = 65536;  // in the third byte stands the whole number
constexpr int32_t NEAR_WHOLE = 8;
constexpr int32_t FAR_FROM_WHOLE = ONE - 2 * NEAR_WHOLE;  // the bits of which some are set then

void EstimatePrepare(TileColumns* columns) {
  const int32_t readable = columns->readable;
  const int32_t* first = columns->index[0];
  const int32_t* second = columns->index[1];
  int32_t i = 0;
  for (; i + LANES <= columns->count && WindowHolds(first[i], second[i + LANES - 1], readable);
       i += LANES) {
    const int32_t start = WindowStart(first[i], readable);
    columns->start[i] = start;
    Store(columns->place[0] + i, Load<Ints>(first + i) - start);
    Store(columns->place[1] + i, Load<Ints>(second + i) - start);
  }
  for (int32_t k = 0; k < i; k++)
    columns->shareEstimate[k] = static_cast<float>(columns->share[k] * ONE);
  columns->estimated = i;
}

ZEL_INLINE Floats Between(Floats f0, Floats f1, Floats t) {
  return MultiplyAdd(f1 - f0, t, f0);
}

// In 65536ths. The row from its vector's start on.
ZEL_INLINE Floats JoinedAlong(const uint8_t* from, const TileColumns& columns, int32_t i) {
  const Floats f0 = (Floats)BytesAt(from, Load<Ints>(columns.place[0] + i));
  const Floats f1 = (Floats)BytesAt(from, Load<Ints>(columns.place[1] + i));
  const Floats whole = MultiplyAdd(f0, Floats{} + ONE, Floats{} - FLOAT_OFFSET * ONE);
  return MultiplyAdd(f1 - f0, Load<Floats>(columns.shareEstimate + i), whole);
}

void EstimateAlong(const uint8_t* from, const TileColumns& columns, float* to) {
  const int32_t count = columns.estimated;
  for (int32_t i = 0; i < count; i += LANES) {
    Store(to + i, JoinedAlong(from + columns.start[i], columns, i));
  }
}

ZEL_INLINE double StatedAlong(const uint8_t* from, const TileColumns& columns, int32_t i) {
  return Between(static_cast<double>(from[columns.index[0][i]]),
                 static_cast<double>(from[columns.index[1][i]]), columns.share[i]);
}

// The doubtful results of a tile: bits for each vector. They are left for a second pass, so that
// the first one runs without a branch.
struct Doubts {
  uint16_t vectors[TILE_NUMBERS / LANES];
};

// Results whose four pixels are equal are exact.
ZEL_INLINE uint32_t EqualBits(const EstimatedRows& rows, const TileColumns& columns, int32_t i) {
  const uint8_t* top = rows.from[0] + columns.start[i];
  const uint8_t* bottom = rows.from[1] + columns.start[i];
  const auto first = Load<Ints>(columns.place[0] + i);
  const auto second = Load<Ints>(columns.place[1] + i);
  const Ints corner = BytesAt(top, first);
  const Ints differs = (corner ^ BytesAt(top, second)) | (corner ^ BytesAt(bottom, first)) |
                       (corner ^ BytesAt(bottom, second));
  return DisjointBits(differs, differs);
}

void DoubtsSettle(const EstimatedRows& rows, const TileColumns& columns, const Doubts& doubts,
                  uint8_t* to) {
  const int32_t count = columns.estimated;
  for (int32_t i = 0; i < count; i += LANES) {
    uint32_t bits = doubts.vectors[i / LANES];
    if (bits != 0) bits &= ~EqualBits(rows, columns, i);
    for (; bits != 0; bits &= bits - 1) {
      const int32_t at = i + __builtin_ctz(bits);
      const double stated = Between(StatedAlong(rows.from[0], columns, at),
                                    StatedAlong(rows.from[1], columns, at), rows.share);
      to[at] = NumberOf<uint8_t>(stated);
    }
  }
}

ZEL_INLINE void StoreEstimates(Floats top, Floats bottom, Floats share, int32_t i, uint8_t* to,
                               Doubts* doubts) {
  const Ints parts = Truncate(Between(top, bottom, share));
  StoreBytes<2>(to + i, parts);
  doubts->vectors[i / LANES] =
      static_cast<uint16_t>(DisjointBits(parts + NEAR_WHOLE, Ints{} + FAR_FROM_WHOLE));
}

void EstimateDown(const EstimatedRows& rows, const TileColumns& columns, uint8_t* to) {
  const Floats share = Floats{} + static_cast<float>(rows.share);
  const float* top = rows.joined[0];
  const float* bottom = rows.joined[1];
  const int32_t count = columns.estimated;
  Doubts doubts;
  for (int32_t i = 0; i < count; i += LANES) {
    StoreEstimates(Load<Floats>(top + i), Load<Floats>(bottom + i), share, i, to, &doubts);
  }
  DoubtsSettle(rows, columns, doubts, to);
}

void EstimateBoth(const EstimatedRows& rows, const TileColumns& columns, uint8_t* to) {
  const Floats share = Floats{} + static_cast<float>(rows.share);
  const uint8_t* top = rows.from[0];
  const uint8_t* bottom = rows.from[1];
  const int32_t count = columns.estimated;
  Doubts doubts;
  for (int32_t i = 0; i < count; i += LANES) {
    const int32_t start = columns.start[i];
    StoreEstimates(JoinedAlong(top + start, columns, i), JoinedAlong(bottom + start, columns, i),
                   share, i, to, &doubts);
  }
  DoubtsSettle(rows, columns, doubts, to);
}

constexpr EstimateRows ESTIMATE = {.prepare = &EstimatePrepare,
                                   .along = &EstimateAlong,
                                   .down = &EstimateDown,
                                   .both = &EstimateBoth};

#else

// The stated numbers are all there is.
void EstimateNothing(TileColumns* columns) {
  columns->estimated = 0;
}
constexpr EstimateRows ESTIMATE = {
    .prepare = &EstimateNothing, .along = nullptr, .down = nullptr, .both = nullptr};

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
