// Row routines of convolution by fractions and of float images: 64-bit sums, rounded when complete.
#include <cstddef>
#include <cstdint>

#include "engine/vectors.h"
#include "filters/convolution_quotients.h"
#include "filters/convolution_rows.h"

namespace zel::ZEL_LEVEL {
namespace {

constexpr int64_t BLOCK = CONVOLUTION_BLOCK;

template <class Pixel>
ZEL_INLINE void Widen(const Pixel* from, double* __restrict to, int64_t count) {
  for (int64_t x = 0; x < count; x++) to[x] = from[x];
}

// ---- sums

// The rows of a block: pixels made 64-bit floats, or 32-bit floats as they are.
template <class Number>
struct Block {
  const Number* numbers;
  int64_t pitch;
  int64_t count;  // of columns of results

  const Number* Row(int64_t j) const { return numbers + j * pitch; }
};

// Products of two 32-bit floats are exact; sums are rounded, so their order is kept.
template <class Number>
ZEL_INLINE void PlainSums(const Block<Number>& block, int32_t above, const ConvolutionRule& rule,
                          float divider, float* __restrict rounded) {
  double sums[BLOCK];
  const int64_t count = block.count;
  for (int64_t x = 0; x < count; x++) sums[x] = 0.0;
  const ConvolutionTap* tap = rule.taps;
  for (int32_t j = 0; j < rule.rows; j++) {
    for (int32_t i = 0; i < rule.columns; i++, tap++) {
      const Number* pixels = block.Row(above + j) + i;
      for (int64_t x = 0; x < count; x++) sums[x] += tap->real * double{pixels[x]};
    }
  }
  for (int64_t x = 0; x < count; x++) rounded[x] = static_cast<float>(sums[x]) / divider;
}

#if defined(ZEL_VECTORS)

// As many sums as the registers hold beside pixels.
template <int32_t results>
constexpr size_t VECTORS = results == 1         ? 8
                           : VECTOR_BYTES == 64 ? 4
                                                : 2;
template <int32_t results>
constexpr int64_t COLUMNS = static_cast<int64_t>(VECTORS<results>) * DOUBLE_LANES;

ZEL_INLINE Doubles AsDoubles(const float* from) {
  return WidenFloats(from);
}
ZEL_INLINE Doubles AsDoubles(const double* from) {
  return Load<Doubles>(from);
}

// The 64-bit quotient of two 32-bit floats, rounded to 32 bits, is their 32-bit quotient: as it is
// no closer to the middle between two of these than 2^-49 of its size, or lies there, rounding to
// 53 bits before doesn't carry it across.
using HalfFloats = float __attribute__((vector_size(VECTOR_BYTES / 2)));
ZEL_INLINE void StoreDivided(float* to, Doubles sums, float divider) {
  if (divider == 1.0f) return StoreRounded(to, sums);
  Store(to, __builtin_convertvector(sums, HalfFloats) / divider);
}

// Most pixels lie in the windows of all rows of results: each is loaded once for these, whose sums
// go to results of their own.
template <int32_t results, class Number>
ZEL_INLINE void SumGroup(const Block<Number>& block, int64_t x, const ConvolutionRule& rule,
                         float divider, float* const* to) {
  constexpr size_t vectors = VECTORS<results>;
  Doubles sums[static_cast<size_t>(results)][vectors] = {};
  for (int32_t j = 0; j < rule.rows + results - 1; j++) {
    // The row of the matrix that meets these pixels, for each row of results whose windows they lie
    // in.
    const ConvolutionTap* taps[static_cast<size_t>(results)];
    for (int32_t r = 0; r < results; r++) {
      const int32_t row = j - r;
      const bool isInside = row >= 0 && row < rule.rows;
      taps[r] = isInside ? rule.taps + int64_t{row} * rule.columns : nullptr;
    }
    const Number* row = block.Row(j) + x;
    for (int32_t i = 0; i < rule.columns; i++) {
      Doubles pixels[vectors];
      for (size_t v = 0; v < vectors; v++) pixels[v] = AsDoubles(row + i + v * DOUBLE_LANES);
      for (int32_t r = 0; r < results; r++) {
        if (!taps[r]) continue;
        const Doubles coefficient = taps[r][i].real - Doubles{};
        for (size_t v = 0; v < vectors; v++) {
          sums[r][v] = MultiplyAdd(coefficient, pixels[v], sums[r][v]);
        }
      }
    }
  }
  for (int32_t r = 0; r < results; r++) {
    for (size_t v = 0; v < vectors; v++)
      StoreDivided(to[r] + x + v * DOUBLE_LANES, sums[r][v], divider);
  }
}

// Groups of columns, the last of which may cover some of the one before once more. False for fewer
// columns than a group has. Not inlined, so that the sums have all registers to themselves.
template <int32_t results, class Number>
[[gnu::noinline]] bool GroupSums(const Block<Number>& block, const ConvolutionRule& rule,
                                 float divider, float* const* sums) {
  constexpr int64_t columns = COLUMNS<results>;
  const int64_t count = block.count;
  if (count < columns) return false;
  for (int64_t next = 0; next < count; next += columns) {
    const int64_t x = next < count - columns ? next : count - columns;
    SumGroup<results>(block, x, rule, divider, sums);
  }
  return true;
}

#else

template <int32_t results>
constexpr int64_t COLUMNS = 1;

template <int32_t results, class Number>
ZEL_INLINE bool GroupSums(const Block<Number>&, const ConvolutionRule&, float, float* const*) {
  return false;
}

#endif

// ---- results

// Of a sum that is no number, 0. By way of whole numbers in 32 bits: the compiler has no good
// vectors for steps from 64 bits to 8.
template <class Pixel>
ZEL_INLINE void Finish(const float* sums, Pixel* __restrict results, int64_t count,
                       const ConvolutionRule& rule) {
  int32_t whole[BLOCK];
  if (rule.divider == 1.0f) {
    for (int64_t x = 0; x < count; x++) {
      whole[x] = LimitedQuotient<Pixel>(sums[x] == sums[x] ? sums[x] : 0.0f);
    }
  } else {
    const double reciprocal = rule.reciprocal;
    for (int64_t x = 0; x < count; x++) {
      const double quotient = static_cast<double>(sums[x]) * reciprocal;
      whole[x] = LimitedQuotient<Pixel>(quotient == quotient ? quotient : 0.0);
    }
  }
  for (int64_t x = 0; x < count; x++) results[x] = static_cast<Pixel>(whole[x]);
}

// Where the sums of a block go: those of floats are results already.
template <class Pixel, int32_t results>
ZEL_INLINE void SumsPlace(float (*sums)[BLOCK], void* const* to, int64_t first, float** places) {
  for (int32_t r = 0; r < results; r++) {
    if constexpr (sizeof(Pixel) == sizeof(float)) {
      places[r] = static_cast<float*>(to[r]) + first;
    } else {
      places[r] = sums[r];
    }
  }
}

template <int32_t results, class Number>
ZEL_INLINE void BlockSums(const Block<Number>& block, const ConvolutionRule& rule, float divider,
                          float* const* sums) {
  if (GroupSums<results>(block, rule, divider, sums)) return;
  for (int32_t r = 0; r < results; r++) PlainSums(block, r, rule, divider, sums[r]);
}

// So many coefficients meet each pixel that it pays to make it a 64-bit float once.
constexpr int32_t FEWEST_TO_WIDEN = 25;

// Blocks of columns. One of fewer columns than a group has begins earlier.
template <class Pixel, int32_t results>
void RealRows(const void* const* places, void* const* to, int32_t width,
              const ConvolutionRule& rule, double* numbers) {
  constexpr bool ofFloats = sizeof(Pixel) == sizeof(float);
  const float divider = ofFloats ? rule.divider : 1.0f;
  const auto* rows = reinterpret_cast<const Pixel* const*>(places);
  const int32_t rowCount = rule.rows + results - 1;
  const int64_t least = width < COLUMNS<results> ? width : COLUMNS<results>;
  const int64_t pitch = ConvolutionBlockPitch(rule);
  alignas(64) float held[static_cast<size_t>(results)][BLOCK];
  for (int64_t next = 0; next < width; next += BLOCK) {
    const int64_t first = next < width - least ? next : width - least;
    const int64_t count = width - first < BLOCK ? width - first : BLOCK;
    float* sums[static_cast<size_t>(results)];
    SumsPlace<Pixel, results>(held, to, first, sums);
    if constexpr (ofFloats) {
      if (rule.tapCount < FEWEST_TO_WIDEN) {
        const int64_t rowPitch = rowCount > 1 ? rows[1] - rows[0] : 0;
        BlockSums<results>(Block<float>{rows[0] + first, rowPitch, count}, rule, divider, sums);
        continue;
      }
    }
    for (int32_t j = 0; j < rowCount; j++) {
      Widen(rows[j] + first, numbers + j * pitch, count + rule.columns - 1);
    }
    BlockSums<results>(Block<double>{numbers, pitch, count}, rule, divider, sums);
    if constexpr (!ofFloats) {
      for (int32_t r = 0; r < results; r++) {
        Finish(sums[r], static_cast<Pixel*>(to[r]) + first, count, rule);
      }
    }
  }
}

template <class Pixel>
constexpr ConvolutionRealRows ROWS_OF = {
    .one = &RealRows<Pixel, 1>,
    .atOnce = &RealRows<Pixel, CONVOLUTION_ROWS_AT_ONCE>,
};

}  // namespace

extern const ConvolutionRealTypes convolutionRealRows = {
    .u8 = ROWS_OF<uint8_t>,
    .i16 = ROWS_OF<int16_t>,
    .sgl = ROWS_OF<float>,
};

}  // namespace zel::ZEL_LEVEL
