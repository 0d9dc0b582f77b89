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

class ByteWindow {
 public:
  // Loads once: for each use again, as compilers do, most loads would be across two cache lines.
  explicit ByteWindow(const uint8_t* from) : bytes_(Load<__m512i>(from)) { asm("" : "+v"(bytes_)); }
  ZEL_INLINE Ints At(Ints places) const {
    constexpr __mmask64 lowBytes = 0x1111111111111111;
    return (Ints)_mm512_mask_permutexvar_epi8(_mm512_set1_epi32(FLOAT_BITS), lowBytes, Of(places),
                                              bytes_);
  }

 private:
  __m512i bytes_;
};

// So that nothing is read beyond the readable bytes.
ZEL_INLINE int32_t WindowStart(int32_t first, int32_t readable) {
  return first < readable - WINDOW_BYTES ? first : readable - WINDOW_BYTES;
}
ZEL_INLINE bool WindowHolds(int32_t first, int32_t last, int32_t readable) {
  return last < readable && last - first < WINDOW_BYTES && readable >= WINDOW_BYTES;
}

#else

// By gathers, which read four bytes at each place.
class ByteWindow {
 public:
  explicit ByteWindow(const uint8_t* from) : from_(from) {}
  ZEL_INLINE Ints At(Ints places) const { return (GatherInts(from_, places) & 0xFF) | FLOAT_BITS; }

 private:
  const uint8_t* from_;
};
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
ZEL_INLINE void PickEach(const void* source, const PickColumns& columns, int32_t begin,
                         void* destination) {
  const T* from = static_cast<const T*>(source);
  T* __restrict to = static_cast<T*>(destination);
  for (int32_t i = begin; i < columns.count; i++) to[i] = from[columns.index[i]];
}

void PrepareNothing(PickColumns*) {}

template <class T>
void PickAll(const void* from, const PickColumns& columns, void* to) {
  PickEach<T>(from, columns, 0, to);
}

template <class T>
constexpr PickRoutines PICK_EACH = {.prepare = &PrepareNothing, .pick = &PickAll<T>};

#if defined(ZEL_LEVEL_v4)

// Out of two vectors.
ZEL_INLINE __m512i Permuted(__m512i low, __m512i places, __m512i high, uint8_t) {
  return _mm512_permutex2var_epi8(low, places, high);
}
ZEL_INLINE __m512i Permuted(__m512i low, __m512i places, __m512i high, uint16_t) {
  return _mm512_permutex2var_epi16(low, places, high);
}
ZEL_INLINE __m512i Permuted(__m512i low, __m512i places, __m512i high, uint32_t) {
  return _mm512_permutex2var_epi32(low, places, high);
}

// Vectors of results, the last of which may cover some of the one before once more.
template <class T>
constexpr int32_t PICKED = VECTOR_BYTES / static_cast<int32_t>(sizeof(T));

template <class T>
ZEL_INLINE int32_t FirstPicked(int32_t vector, int32_t count) {
  const int32_t first = vector * PICKED<T>;
  return first < count - PICKED<T> ? first : count - PICKED<T>;
}

template <class T>
void PreparePick(PickColumns* columns) {
  constexpr int32_t window = 2 * PICKED<T>;
  columns->vectors = 0;
  if (columns->count < PICKED<T> || columns->readable < window) return;
  T* places = reinterpret_cast<T*>(columns->places);
  for (int32_t i = 0; i < columns->count; i += PICKED<T>) {
    const int32_t* index = columns->index + FirstPicked<T>(columns->vectors, columns->count);
    const int32_t last = columns->readable - window;
    const int32_t start = index[0] < last ? index[0] : last;
    if (index[PICKED<T> - 1] - start >= window) return;
    columns->start[columns->vectors++] = start;
    for (int32_t k = 0; k < PICKED<T>; k++) *places++ = static_cast<T>(index[k] - start);
  }
}

template <class T>
void PickVectors(const void* source, const PickColumns& columns, void* destination) {
  const T* from = static_cast<const T*>(source);
  T* to = static_cast<T*>(destination);
  const T* places = reinterpret_cast<const T*>(columns.places);
  for (int32_t v = 0; v < columns.vectors; v++) {
    const T* window = from + columns.start[v];
    Store(to + FirstPicked<T>(v, columns.count),
          Permuted(Load<__m512i>(window), Load<__m512i>(places + v * PICKED<T>),
                   Load<__m512i>(window + PICKED<T>), T{}));
  }
  PickEach<T>(from, columns, columns.vectors * PICKED<T>, to);
}

template <class T>
constexpr PickRoutines PICK = {.prepare = &PreparePick<T>, .pick = &PickVectors<T>};

#elif defined(ZEL_WIDE_VECTORS)

void PickBytes(const void* source, const PickColumns& columns, void* destination) {
  const auto* from = static_cast<const uint8_t*>(source);
  auto* to = static_cast<uint8_t*>(destination);
  const int32_t* index = columns.index;
  int32_t i = 0;
  for (;
       i + LANES <= columns.count && WindowHolds(index[i], index[i + LANES - 1], columns.readable);
       i += LANES) {
    const int32_t start = WindowStart(index[i], columns.readable);
    StoreBytes<0>(to + i, ByteWindow(from + start).At(Load<Ints>(index + i) - start));
  }
  PickEach<uint8_t>(from, columns, i, to);
}

template <class T>
constexpr PickRoutines PICK = PICK_EACH<T>;
template <>
constexpr PickRoutines PICK<uint8_t> = {.prepare = &PrepareNothing, .pick = &PickBytes};

#else

template <class T>
constexpr PickRoutines PICK = PICK_EACH<T>;

#endif

// ---- joined numbers

template <class T>
void Widen(const void* source, double* __restrict to, int32_t count) {
  const T* from = static_cast<const T*>(source);
  for (int32_t i = 0; i < count; i++) to[i] = static_cast<double>(from[i]);
}

// Numbers between samples, as 64-bit floats in this order of operations.
template <class Number>
ZEL_INLINE Number Between(Number f0, Number f1, Number t) {
  return f0 + t * (f1 - f0);
}
template <class Number>
ZEL_INLINE Number Between(Number f0, Number f1, Number f2, Number t) {
  const Number d1 = f1 - f0;
  const Number d2 = (f2 - f1) - d1;
  return f0 + t * d1 + t * (t - 1.0) * 0.5 * d2;
}

#if defined(ZEL_LEVEL_v4)

// As many numbers as two vectors hold.
constexpr int32_t WINDOW_NUMBERS = 2 * LANES;

// Pixels of the border may stand before those of the image, so that all are looked at.
bool WindowPlace(TileColumns* columns, int32_t first, int32_t samples) {
  const int32_t last = columns->readable - WINDOW_NUMBERS;
  const int32_t begin = columns->index[0][first];
  const int32_t start = begin < last ? begin : last;
  columns->start[first] = start;
  bool fits = start >= 0;
  for (int32_t sample = 0; sample < samples; sample++) {
    for (int32_t i = first; i < first + LANES; i++) {
      const int32_t place = columns->index[sample][i] - start;
      columns->place[sample][i] = place;
      fits &= place >= 0 && place < WINDOW_NUMBERS;
    }
  }
  return fits;
}

void PlaceAll(TileColumns* columns, int32_t samples) {
  int32_t i = 0;
  while (samples > 1 && i + LANES <= columns->count && WindowPlace(columns, i, samples)) i += LANES;
  columns->windowed = i;
}
constexpr PlaceWindows PLACE_WINDOWS = &PlaceAll;

ZEL_INLINE __m512i NumbersAt(const float* window, Ints places) {
  return Permuted(Load<__m512i>(window), Of(places), Load<__m512i>(window + LANES), uint32_t{});
}
ZEL_INLINE __m512i NumbersAt(const uint8_t* window, Ints places) {
  return Permuted(_mm512_maskz_cvtepu8_epi32(0xFFFF, Load<__m128i>(window)), Of(places),
                  _mm512_maskz_cvtepu8_epi32(0xFFFF, Load<__m128i>(window + LANES)), uint32_t{});
}
ZEL_INLINE __m512i NumbersAt(const int16_t* window, Ints places) {
  return Permuted(_mm512_maskz_cvtepi16_epi32(0xFFFF, Load<__m256i>(window)), Of(places),
                  _mm512_maskz_cvtepi16_epi32(0xFFFF, Load<__m256i>(window + LANES)), uint32_t{});
}

template <class T>
ZEL_INLINE Doubles Widened(__m256i numbers) {
  if constexpr (sizeof(T) == sizeof(float)) {
    return (Doubles)_mm512_maskz_cvtps_pd(0xFF, _mm256_castsi256_ps(numbers));
  } else {
    return (Doubles)_mm512_maskz_cvtepi32_pd(0xFF, numbers);
  }
}

template <class T, int32_t samples>
ZEL_INLINE int32_t AlongWindows(const T* from, const TileColumns& columns, double* to) {
  for (int32_t i = 0; i < columns.windowed; i += LANES) {
    const T* window = from + columns.start[i];
    Doubles numbers[2][static_cast<size_t>(samples)];
    for (int32_t sample = 0; sample < samples; sample++) {
      const __m512i all = NumbersAt(window, Load<Ints>(columns.place[sample] + i));
      numbers[0][sample] = Widened<T>(_mm512_maskz_extracti64x4_epi64(0xF, all, 0));
      numbers[1][sample] = Widened<T>(_mm512_maskz_extracti64x4_epi64(0xF, all, 1));
    }
    for (int32_t half = 0; half < 2; half++) {
      const Doubles* f = numbers[half];
      const int32_t at = i + half * DOUBLE_LANES;
      const auto share = Load<Doubles>(columns.share + at);
      if constexpr (samples == 2) {
        Store(to + at, Between(f[0], f[1], share));
      } else {
        Store(to + at, Between(f[0], f[1], f[2], share));
      }
    }
  }
  return columns.windowed;
}

#else

constexpr PlaceWindows PLACE_WINDOWS = nullptr;

template <class T, int32_t samples>
ZEL_INLINE int32_t AlongWindows(const T*, const TileColumns&, double*) {
  return 0;
}

#endif

template <class T, int32_t samples>
void Along(const void* source, const TileColumns& columns, double* destination) {
  const T* from = static_cast<const T*>(source);
  const int32_t* first = columns.index[0];
  const int32_t* second = columns.index[1];
  const int32_t* third = columns.index[2];
  const double* share = columns.share;
  double* __restrict to = destination;
  const int32_t count = columns.count;
  int32_t begin = columns.shortcuts;
  if constexpr (samples > 1) begin += AlongWindows<T, samples>(from, columns, to);
  for (int32_t i = begin; i < count; i++) {
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

// ---- two rows at once

#if defined(ZEL_WIDE_VECTORS)

// Rows that lie far from each other: the processor does not see which ones are next.
template <class T>
ZEL_INLINE void FetchNext(const RowPair& rows, int32_t start) {
  for (const void* next : rows.next) __builtin_prefetch(static_cast<const T*>(next) + start);
}

#endif

#if defined(ZEL_LEVEL_v4)

// Numbers near each other, of which a vector is taken as 64-bit floats.
template <class T>
class NumberWindow;

template <>
class NumberWindow<float> {
 public:
  static constexpr int32_t NUMBERS = 2 * DOUBLE_LANES;

  explicit NumberWindow(const float* from)
      : low_(WidenFloats(from)), high_(WidenFloats(from + DOUBLE_LANES)) {}
  ZEL_INLINE Doubles At(__m512i places) const {
    return (Doubles)_mm512_permutex2var_pd((__m512d)low_, places, (__m512d)high_);
  }

 private:
  Doubles low_, high_;
};

// Words are set into the 64-bit float 2^52, raised by 2^15 so that they have no sign.
template <>
class NumberWindow<int16_t> {
 public:
  static constexpr int32_t NUMBERS = VECTOR_BYTES / 2;

  explicit NumberWindow(const int16_t* from) : raised_(Of(Load<Words>(from) ^ INT16_MIN)) {}
  ZEL_INLINE Doubles At(__m512i places) const {
    constexpr __mmask32 lowWords = 0x11111111;
    constexpr int64_t bits = 0x4330000000000000;
    constexpr double offset = 4503599627370496.0 + 32768.0;
    return (Doubles)_mm512_mask_permutexvar_epi16(_mm512_set1_epi64(bits), lowWords, places,
                                                  raised_) -
           offset;
  }

 private:
  __m512i raised_;
};

// Vectors of results of which each second sample is the number behind the first.
template <class T>
bool PairPlace(TileColumns* columns, int32_t first) {
  const int32_t last = columns->readable - NumberWindow<T>::NUMBERS;
  const int32_t begin = columns->index[0][first];
  const int32_t start = begin < last ? begin : last;
  columns->start[first] = start;
  bool fits = start >= 0;
  for (int32_t i = first; i < first + DOUBLE_LANES; i++) {
    const int32_t place = columns->index[0][i] - start;
    columns->place[0][i] = place;
    fits &= place + 1 < NumberWindow<T>::NUMBERS && columns->index[1][i] == start + place + 1;
  }
  return fits;
}

template <class T>
void PairPrepare(TileColumns* columns) {
  int32_t i = 0;
  while (i + DOUBLE_LANES <= columns->count && PairPlace<T>(columns, i)) i += DOUBLE_LANES;
  columns->shortcuts = i;
}

ZEL_INLINE void StoreNumbers(float* to, Doubles numbers) {
  StoreRounded(to, numbers);
}
ZEL_INLINE void StoreNumbers(int16_t* to, Doubles numbers) {
  const __m256i whole = _mm512_maskz_cvttpd_epi32(0xFF, (__m512d)numbers);
  Store(to, _mm_packs_epi32(_mm256_castsi256_si128(whole), _mm256_extracti128_si256(whole, 1)));
}

template <class T>
void PairJoin(const RowPair& rows, const TileColumns& columns, void* destination) {
  const T* upper = static_cast<const T*>(rows.from[0]);
  const T* lower = static_cast<const T*>(rows.from[1]);
  T* to = static_cast<T*>(destination);
  const Doubles down = Doubles{} + rows.share;
  const int32_t count = columns.shortcuts;
  for (int32_t i = 0; i < count; i += DOUBLE_LANES) {
    const NumberWindow<T> top(upper + columns.start[i]);
    const NumberWindow<T> bottom(lower + columns.start[i]);
    FetchNext<T>(rows, columns.start[i]);
    const __m512i first = _mm512_maskz_cvtepi32_epi64(0xFF, Load<__m256i>(columns.place[0] + i));
    const __m512i second = _mm512_add_epi64(first, _mm512_set1_epi64(1));
    const auto along = Load<Doubles>(columns.share + i);
    StoreNumbers(to + i, Between(Between(top.At(first), top.At(second), along),
                                 Between(bottom.At(first), bottom.At(second), along), down));
  }
}

template <class T>
constexpr PairRoutines PAIRS = {.prepare = &PairPrepare<T>, .join = &PairJoin<T>};

#else

template <class T>
constexpr PairRoutines PAIRS = {.prepare = nullptr, .join = nullptr};

#endif

// ---- estimated bytes

#if defined(ZEL_WIDE_VECTORS)

// What is estimated, and what is added up on the way, lies below 2^24 of 65536ths, so that rounding
// it is half of one off at most. So is a rounded share of a difference of 255, and with it of 510
// one. Along a row there are two halves, and down the rows three more. For both at once there are
// seven: the slope, its share down (two) and its share across, what is down from the corner and its
// share, and the sum. The stated numbers are rounded to far less. So the estimate, cut, is less
// than 5 off, and in doubt where it is within 8 of a whole number.
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
  columns->shortcuts = i;
}

ZEL_INLINE Floats Between(Floats f0, Floats f1, Floats t) {
  return MultiplyAdd(f1 - f0, t, f0);
}

// In 65536ths.
ZEL_INLINE Floats InParts(Floats bytes) {
  return MultiplyAdd(bytes, Floats{} + ONE, Floats{} - FLOAT_OFFSET * ONE);
}

// In 65536ths. The row from its vector's start on.
ZEL_INLINE Floats JoinedAlong(const uint8_t* from, const TileColumns& columns, int32_t i) {
  const ByteWindow window(from);
  const Floats f0 = (Floats)window.At(Load<Ints>(columns.place[0] + i));
  const Floats f1 = (Floats)window.At(Load<Ints>(columns.place[1] + i));
  return MultiplyAdd(f1 - f0, Load<Floats>(columns.shareEstimate + i), InParts(f0));
}

void EstimateAlong(const uint8_t* from, const TileColumns& columns, float* to) {
  const int32_t count = columns.shortcuts;
  for (int32_t i = 0; i < count; i += LANES) {
    Store(to + i, JoinedAlong(from + columns.start[i], columns, i));
  }
}

// The stated results of a vector, from its bytes at four corners.
[[gnu::noinline]] void StateAll(const RowPair& rows, const TileColumns& columns, int32_t i,
                                uint8_t* to) {
  alignas(VECTOR_BYTES) int32_t corners[2][2][LANES];
  for (int32_t row = 0; row < 2; row++) {
    const ByteWindow window(static_cast<const uint8_t*>(rows.from[row]) + columns.start[i]);
    for (int32_t sample = 0; sample < 2; sample++) {
      Store(corners[row][sample], window.At(Load<Ints>(columns.place[sample] + i)) & UINT8_MAX);
    }
  }
  const auto along = [&](int32_t row, int32_t k) {
    return Between(static_cast<double>(corners[row][0][k]), static_cast<double>(corners[row][1][k]),
                   columns.share[i + k]);
  };
  alignas(VECTOR_BYTES) int32_t whole[LANES];
  for (int32_t k = 0; k < LANES; k++) {
    whole[k] = static_cast<int32_t>(Between(along(0, k), along(1, k), rows.share));
  }
  StoreBytes<0>(to + i, Load<Ints>(whole));
}

// A bit for each of a vector whose four pixels are equal: these are exact.
ZEL_INLINE uint32_t EqualBits(const RowPair& rows, const TileColumns& columns, int32_t i) {
  const ByteWindow top(static_cast<const uint8_t*>(rows.from[0]) + columns.start[i]);
  const ByteWindow bottom(static_cast<const uint8_t*>(rows.from[1]) + columns.start[i]);
  const auto first = Load<Ints>(columns.place[0] + i);
  const auto second = Load<Ints>(columns.place[1] + i);
  const Ints corner = top.At(first);
  const Ints differs =
      (corner ^ top.At(second)) | (corner ^ bottom.At(first)) | (corner ^ bottom.At(second));
  return DisjointBits(differs, differs);
}

// From estimates in 65536ths. Answers the bits of those in doubt.
ZEL_INLINE uint32_t StoreEstimates(Floats estimates, uint8_t* to) {
  const Ints parts = Truncate(estimates);
  StoreBytes<2>(to, parts);
  return DisjointBits(parts + NEAR_WHOLE, Ints{} + FAR_FROM_WHOLE);
}

void EstimateDown(const EstimatedRows& rows, const TileColumns& columns, uint8_t* to) {
  const Floats share = Floats{} + static_cast<float>(rows.share);
  const int32_t count = columns.shortcuts;
  for (int32_t i = 0; i < count; i += LANES) {
    const auto top = Load<Floats>(rows.joined[0] + i);
    const auto bottom = Load<Floats>(rows.joined[1] + i);
    const uint32_t doubts = StoreEstimates(Between(top, bottom, share), to + i);
    if (doubts == 0) continue;
    const RowPair pair{{rows.from[0], rows.from[1]}, {}, rows.share};
    if ((doubts & ~EqualBits(pair, columns, i)) != 0) StateAll(pair, columns, i, to);
  }
}

// From the first pixel of four: what there is down from it and along from it, and how much more
// along in the row below.
void EstimatePair(const RowPair& rows, const TileColumns& columns, void* destination) {
  const auto* upper = static_cast<const uint8_t*>(rows.from[0]);
  const auto* lower = static_cast<const uint8_t*>(rows.from[1]);
  auto* to = static_cast<uint8_t*>(destination);
  const Floats share = Floats{} + static_cast<float>(rows.share);
  const Floats shareParts = share * static_cast<float>(ONE);
  const int32_t count = columns.shortcuts;
  for (int32_t i = 0; i < count; i += LANES) {
    const ByteWindow top(upper + columns.start[i]);
    const ByteWindow bottom(lower + columns.start[i]);
    FetchNext<uint8_t>(rows, columns.start[i]);
    const auto first = Load<Ints>(columns.place[0] + i);
    const auto second = Load<Ints>(columns.place[1] + i);
    const Floats corner = (Floats)top.At(first);
    const Floats down = (Floats)bottom.At(first) - corner;
    const Floats along = (Floats)top.At(second) - corner;
    const Floats more = (Floats)bottom.At(second) - (Floats)bottom.At(first) - along;
    const Floats slope = MultiplyAdd(more, share, along);
    const Floats left = MultiplyAdd(down, shareParts, InParts(corner));
    const auto across = Load<Floats>(columns.shareEstimate + i);
    const uint32_t doubts = StoreEstimates(MultiplyAdd(slope, across, left), to + i);
    if (doubts == 0) continue;
    // Results whose four pixels are equal are exact.
    const Ints differs = (Ints)along | (Ints)down | (Ints)more;
    if ((doubts & ~DisjointBits(differs, differs)) != 0) StateAll(rows, columns, i, to);
  }
}

constexpr EstimateRows ESTIMATE = {
    .prepare = &EstimatePrepare, .along = &EstimateAlong, .down = &EstimateDown};
constexpr PairRoutines BYTE_PAIRS = {.prepare = &EstimatePrepare, .join = &EstimatePair};

#else

// The stated numbers are all there is.
void EstimateNothing(TileColumns* columns) {
  columns->shortcuts = 0;
}
constexpr EstimateRows ESTIMATE = {.prepare = &EstimateNothing, .along = nullptr, .down = nullptr};
constexpr PairRoutines BYTE_PAIRS = {.prepare = nullptr, .join = nullptr};

#endif

}  // namespace

extern const ResampleRows resampleRows = {
    .pick = {.one = PICK<uint8_t>,
             .two = PICK<uint16_t>,
             .four = PICK<uint32_t>,
             .eight = PICK_EACH<uint64_t>},
    .widen = {.u8 = &Widen<uint8_t>, .i16 = &Widen<int16_t>, .sgl = &Widen<float>},
    .placeWindows = PLACE_WINDOWS,
    .along = {.u8 = ALONG<uint8_t>, .i16 = ALONG<int16_t>, .sgl = ALONG<float>},
    .down = {.u8 = DOWN<uint8_t>, .i16 = DOWN<int16_t>, .sgl = DOWN<float>},
    .estimate = ESTIMATE,
    .pairs = {.u8 = BYTE_PAIRS, .i16 = PAIRS<int16_t>, .sgl = PAIRS<float>},
};

}  // namespace zel::ZEL_LEVEL
