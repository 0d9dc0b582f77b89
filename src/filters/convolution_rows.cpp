// Row routines of convolution: for a block of columns, first the sums of all windows, coefficient
// after coefficient, then their quotients.
#include "filters/convolution_rows.h"

#include <cstddef>
#include <cstdint>
#include <type_traits>

#include "core/numbers.h"
#include "engine/vectors.h"
#include "filters/convolution_quotients.h"

namespace zel::ZEL_LEVEL {
namespace {

constexpr int64_t BLOCK = 256;

// Integer sums wrap around.
template <class Pixel, class Sum>
ZEL_INLINE void WholeSums(const void* const* rows, int64_t first, int64_t count,
                          const ConvolutionRule& rule, Sum* __restrict sums) {
  for (int64_t x = 0; x < count; x++) sums[x] = 0;
  for (int32_t i = 0; i < rule.tapCount; i++) {
    const ConvolutionTap& tap = rule.taps[i];
    const Pixel* pixels = static_cast<const Pixel*>(rows[tap.row]) + first + tap.column;
    const auto coefficient = static_cast<Sum>(tap.whole);
    for (int64_t x = 0; x < count; x++) {
      sums[x] = static_cast<Sum>(sums[x] + coefficient * static_cast<Sum>(pixels[x]));
    }
  }
}

template <class Pixel>
void WholeColumns(const void* const* rows, void* to, int64_t begin, int64_t end,
                  const ConvolutionRule& rule) {
  uint32_t sums[BLOCK];
  const double reciprocal = rule.reciprocal;
  for (int64_t first = begin; first < end; first += BLOCK) {
    const int64_t count = end - first < BLOCK ? end - first : BLOCK;
    WholeSums<Pixel>(rows, first, count, rule, sums);
    Pixel* __restrict results = static_cast<Pixel*>(to) + first;
    for (int64_t x = 0; x < count; x++) {
      results[x] = Quotient<Pixel>(static_cast<int32_t>(sums[x]), reciprocal);
    }
  }
}

// ---- U8 in sums of 16 bits, what becomes of them

struct Limited {
  explicit Limited(const ConvolutionRule&) {}
  template <class Lane, class Limit>
  ZEL_INLINE static Lane Of(Lane sum, Limit zero, Limit top) {
    const Lane lower = sum > zero ? sum : zero;
    return lower < top ? lower : top;
  }
  ZEL_INLINE uint8_t operator()(uint16_t sum) const {
    return static_cast<uint8_t>(Of(static_cast<int16_t>(sum), int16_t{0}, int16_t{UINT8_MAX}));
  }
#if defined(ZEL_WIDE_VECTORS)
  ZEL_INLINE UnsignedWords operator()(UnsignedWords sums) const {
    return (UnsignedWords)Of((Words)sums, Words{}, Words{} + UINT8_MAX);
  }
#endif
};

template <bool hasSign>
struct Divided {
  uint16_t multiplier, shift;
  explicit Divided(const ConvolutionRule& rule) : multiplier(rule.multiplier), shift(rule.shift) {}

  ZEL_INLINE uint8_t operator()(uint16_t sum) const {
    const bool isNegative = hasSign && static_cast<int16_t>(sum) < 0;
    const auto positive = static_cast<uint16_t>(isNegative ? 0 : sum);
    const auto product = static_cast<uint16_t>((uint32_t{positive} * multiplier) >> 16);
    const auto quotient = static_cast<uint16_t>(product >> shift);
    return static_cast<uint8_t>(quotient < UINT8_MAX ? quotient : UINT8_MAX);
  }
#if defined(ZEL_WIDE_VECTORS)
  ZEL_INLINE UnsignedWords operator()(UnsignedWords sums) const {
    if constexpr (hasSign) sums = (UnsignedWords)((Words)sums > 0 ? (Words)sums : Words{});
    const UnsignedWords top = UnsignedWords{} + UINT8_MAX;
    const UnsignedWords quotients = HighProducts(sums, UnsignedWords{} + multiplier) >> shift;
    return quotients < top ? quotients : top;
  }
#endif
};

template <class Finish>
void WordColumns(const void* const* rows, void* to, int64_t end, const ConvolutionRule& rule) {
  uint16_t sums[BLOCK];
  const Finish finish(rule);
  for (int64_t first = 0; first < end; first += BLOCK) {
    const int64_t count = end - first < BLOCK ? end - first : BLOCK;
    WholeSums<uint8_t>(rows, first, count, rule, sums);
    uint8_t* __restrict results = static_cast<uint8_t*>(to) + first;
    for (int64_t x = 0; x < count; x++) results[x] = finish(sums[x]);
  }
}

// Calls for groups of columns, the last of which may cover some of the one before once more.
template <int32_t columns, class Group>
ZEL_INLINE void EachGroup(int64_t end, const Group& group) {
  for (int64_t x = 0; x < end; x += columns) group(x < end - columns ? x : end - columns);
}

#if defined(ZEL_WIDE_VECTORS)

// ---- sums of pairs: those of even and of odd columns side by side

using UnsignedInts = uint32_t __attribute__((vector_size(VECTOR_BYTES)));

template <class V, size_t vectors>
struct PairedSums {
  V even[vectors], odd[vectors];
};

template <class V, size_t vectors, class Pixel>
ZEL_INLINE void TermAdd(const ConvolutionTerm& term, const void* const* rows, int64_t x,
                        PairedSums<V, vectors>* sums) {
  using Pixels = std::conditional_t<sizeof(Pixel) == 1, Bytes, Words>;
  constexpr size_t lanes = sizeof(Pixels) / sizeof(Pixel);
  const Pixel* pixels = static_cast<const Pixel*>(rows[term.row]) + x + term.column;
  const auto weights = (Pixels)(Ints{} + static_cast<int32_t>(term.weights));
  for (size_t v = 0; v < vectors; v++) {
    sums->even[v] += (V)PairSums(Load<Pixels>(pixels + v * lanes), weights);
    sums->odd[v] += (V)PairSums(Load<Pixels>(pixels + v * lanes + 1), weights);
  }
}

template <class Finish, size_t vectors>
ZEL_INLINE void WordGroup(const void* const* rows, uint8_t* to, int64_t x,
                          const ConvolutionRule& rule, const Finish& finish) {
  PairedSums<UnsignedWords, vectors> sums{};
  for (int32_t i = 0; i < rule.termCount; i++) {
    TermAdd<UnsignedWords, vectors, uint8_t>(rule.terms[i], rows, x, &sums);
  }
  for (size_t v = 0; v < vectors; v++) {
    Store(to + x + v * VECTOR_BYTES, (Bytes)(finish(sums.even[v]) | finish(sums.odd[v]) << 8));
  }
}

template <class Finish>
ZEL_INLINE bool WordGroups(const void* const* rows, void* to, int64_t end,
                           const ConvolutionRule& rule) {
  if (rule.termCount == 0 || end < VECTOR_BYTES) return false;
  auto* results = static_cast<uint8_t*>(to);
  const Finish finish(rule);
  if (end < 2 * VECTOR_BYTES) {
    EachGroup<VECTOR_BYTES>(
        end, [&](int64_t x) { WordGroup<Finish, 1>(rows, results, x, rule, finish); });
  } else {
    EachGroup<2 * VECTOR_BYTES>(
        end, [&](int64_t x) { WordGroup<Finish, 2>(rows, results, x, rule, finish); });
  }
  return true;
}

// Quotients in 32 bits, limited to a type. By dividers below 1 they need not fit.
struct Quotients {
  double reciprocal;
  bool isWhole;  // a divider of 1
  explicit Quotients(const ConvolutionRule& rule)
      : reciprocal(rule.reciprocal), isWhole(rule.divider == 1.0f) {}
  static bool Fit(const ConvolutionRule& rule) {
    return rule.reciprocal > -1.0000001 && rule.reciprocal < 1.0000001;
  }
  ZEL_INLINE Ints operator()(Ints sums, int32_t low, int32_t high) const {
    const Ints quotients = isWhole ? sums : ProductsTruncated(sums, reciprocal);
    const Ints lower = quotients > low ? quotients : Ints{} + low;
    return lower < high ? lower : Ints{} + high;
  }
};

// Sums of bytes are kept in 16 bits as long as they fit. Each vector of 32-bit sums is of every
// fourth column.
ZEL_INLINE void ByteGroup(const void* const* rows, uint8_t* to, int64_t x,
                          const ConvolutionRule& rule, const Quotients& quotients) {
  UnsignedInts sums[4] = {};
  PairedSums<Words, 1> words{};
  for (int32_t i = 0; i < rule.termCount; i++) {
    const ConvolutionTerm& term = rule.terms[i];
    TermAdd<Words, 1, uint8_t>(term, rows, x, &words);
    if (!term.isLast) continue;
    sums[0] += (UnsignedInts)((Ints)words.even[0] << 16 >> 16);
    sums[1] += (UnsignedInts)((Ints)words.odd[0] << 16 >> 16);
    sums[2] += (UnsignedInts)((Ints)words.even[0] >> 16);
    sums[3] += (UnsignedInts)((Ints)words.odd[0] >> 16);
    words = {};
  }
  Ints results{};
  for (int32_t k = 0; k < 4; k++) results |= quotients((Ints)sums[k], 0, UINT8_MAX) << (8 * k);
  Store(to + x, results);
}

ZEL_INLINE void ShortGroup(const void* const* rows, int16_t* to, int64_t x,
                           const ConvolutionRule& rule, const Quotients& quotients) {
  PairedSums<UnsignedInts, 1> sums{};
  for (int32_t i = 0; i < rule.termCount; i++) {
    TermAdd<UnsignedInts, 1, int16_t>(rule.terms[i], rows, x, &sums);
  }
  const Ints even = quotients((Ints)sums.even[0], INT16_MIN, INT16_MAX);
  const Ints odd = quotients((Ints)sums.odd[0], INT16_MIN, INT16_MAX);
  Store(to + x, (even & 0xFFFF) | odd << 16);
}

ZEL_INLINE bool WholeGroups(const void* const* rows, uint8_t* to, int64_t end,
                            const ConvolutionRule& rule) {
  if (rule.termCount == 0 || end < VECTOR_BYTES || !Quotients::Fit(rule)) return false;
  const Quotients quotients(rule);
  EachGroup<VECTOR_BYTES>(end, [&](int64_t x) { ByteGroup(rows, to, x, rule, quotients); });
  return true;
}

ZEL_INLINE bool WholeGroups(const void* const* rows, int16_t* to, int64_t end,
                            const ConvolutionRule& rule) {
  if (rule.termCount == 0 || end < VECTOR_BYTES / 2 || !Quotients::Fit(rule)) return false;
  const Quotients quotients(rule);
  EachGroup<VECTOR_BYTES / 2>(end, [&](int64_t x) { ShortGroup(rows, to, x, rule, quotients); });
  return true;
}

#else

template <class Finish>
ZEL_INLINE bool WordGroups(const void* const*, void*, int64_t, const ConvolutionRule&) {
  return false;
}
template <class Pixel>
ZEL_INLINE bool WholeGroups(const void* const*, Pixel*, int64_t, const ConvolutionRule&) {
  return false;
}

#endif

template <class Pixel>
void WholeRow(const void* const* rows, void* to, int32_t width, const ConvolutionRule& rule) {
  if (WholeGroups(rows, static_cast<Pixel*>(to), width, rule)) return;
  WholeColumns<Pixel>(rows, to, 0, width, rule);
}

// The columns behind those that are wrapped have sums of 32 bits.
template <class Finish>
void WordRow(const void* const* rows, void* to, int32_t width, const ConvolutionRule& rule) {
  const int32_t end = rule.wrappedColumns;
  if (!WordGroups<Finish>(rows, to, end, rule)) WordColumns<Finish>(rows, to, end, rule);
  if (end < width) WholeColumns<uint8_t>(rows, to, end, width, rule);
}

// ---- by factors: sums across rows, then down

ZEL_INLINE void PlainAcross(const void* row, uint16_t* sums, int64_t width,
                            const ConvolutionRule& rule) {
  WholeSums<uint8_t>(&row, 0, width, rule, sums);
}

template <class Finish>
ZEL_INLINE void PlainDown(const uint8_t* const* sumRows, const uint8_t* centre, uint8_t* to,
                          int64_t end, const ConvolutionFactors& factors, const Finish& finish) {
  uint16_t sums[BLOCK];
  for (int64_t first = 0; first < end; first += BLOCK) {
    const int64_t count = end - first < BLOCK ? end - first : BLOCK;
    const auto own = static_cast<uint16_t>(factors.centre);
    for (int64_t x = 0; x < count; x++) sums[x] = static_cast<uint16_t>(own * centre[first + x]);
    for (int32_t j = 0; j < factors.rows; j++) {
      const auto* row = reinterpret_cast<const uint16_t*>(sumRows[j]) + first;
      const auto weight = static_cast<uint16_t>(factors.down[j]);
      for (int64_t x = 0; x < count; x++) {
        sums[x] = static_cast<uint16_t>(sums[x] + uint32_t{weight} * row[x]);
      }
    }
    uint8_t* __restrict results = to + first;
    for (int64_t x = 0; x < count; x++) results[x] = finish(sums[x]);
  }
}

#if defined(ZEL_WIDE_VECTORS)

// Groups of sums lie one after the other, those of even columns before those of odd ones.
constexpr int64_t GROUP_SUMS_BYTES = 2 * VECTOR_BYTES;

void Across(const void* row, uint8_t* sums, int32_t width, const ConvolutionFactors& factors) {
  if (width < VECTOR_BYTES) {
    return PlainAcross(row, reinterpret_cast<uint16_t*>(sums), width, factors.across);
  }
  const ConvolutionRule& rule = factors.across;
  EachGroup<VECTOR_BYTES>(width, [&](int64_t x) {
    PairedSums<UnsignedWords, 1> group{};
    for (int32_t i = 0; i < rule.termCount; i++) {
      TermAdd<UnsignedWords, 1, uint8_t>(rule.terms[i], &row, x, &group);
    }
    Store(sums, group.even[0]);
    Store(sums + VECTOR_BYTES, group.odd[0]);
    sums += GROUP_SUMS_BYTES;
  });
}

template <class Finish>
ZEL_INLINE void DownGroup(const uint8_t* const* sumRows, int64_t offset, const uint8_t* centre,
                          uint8_t* to, const ConvolutionFactors& factors, const Finish& finish) {
  const auto pixels = (UnsignedWords)Load<Bytes>(centre);
  const auto own = static_cast<uint16_t>(factors.centre);
  UnsignedWords even = (pixels & 0xFF) * own;
  UnsignedWords odd = (pixels >> 8) * own;
  for (int32_t j = 0; j < factors.rows; j++) {
    const uint8_t* sums = sumRows[j] + offset;
    const auto weight = static_cast<uint16_t>(factors.down[j]);
    even += Load<UnsignedWords>(sums) * weight;
    odd += Load<UnsignedWords>(sums + VECTOR_BYTES) * weight;
  }
  Store(to, (Bytes)(finish(even) | finish(odd) << 8));
}

template <class Finish>
void Down(const uint8_t* const* sums, const void* centre, void* to,
          const ConvolutionFactors& factors, const ConvolutionRule& rule) {
  const Finish finish(rule);
  const auto* pixels = static_cast<const uint8_t*>(centre);
  auto* results = static_cast<uint8_t*>(to);
  const int32_t width = factors.across.wrappedColumns;
  if (width < VECTOR_BYTES) return PlainDown(sums, pixels, results, width, factors, finish);
  int64_t offset = 0;
  EachGroup<VECTOR_BYTES>(width, [&](int64_t x) {
    DownGroup(sums, offset, pixels + x, results + x, factors, finish);
    offset += GROUP_SUMS_BYTES;
  });
}

#else

void Across(const void* row, uint8_t* sums, int32_t width, const ConvolutionFactors& factors) {
  PlainAcross(row, reinterpret_cast<uint16_t*>(sums), width, factors.across);
}

template <class Finish>
void Down(const uint8_t* const* sums, const void* centre, void* to,
          const ConvolutionFactors& factors, const ConvolutionRule& rule) {
  PlainDown(sums, static_cast<const uint8_t*>(centre), static_cast<uint8_t*>(to),
            factors.across.wrappedColumns, factors, Finish(rule));
}

#endif

}  // namespace

extern const ConvolutionRows convolutionRows = {
    .wrapped = &WordRow<Limited>,
    .dividedSigned = &WordRow<Divided<true>>,
    .dividedUnsigned = &WordRow<Divided<false>>,
    .across = &Across,
    .wrappedDown = &Down<Limited>,
    .dividedSignedDown = &Down<Divided<true>>,
    .dividedUnsignedDown = &Down<Divided<false>>,
    .whole = {.u8 = &WholeRow<uint8_t>, .i16 = &WholeRow<int16_t>, .sgl = nullptr},
};

}  // namespace zel::ZEL_LEVEL
