// For row sources only: bytes through a table of 256, a vector of them at a time, at the levels
// that have byte shuffles for it.
#pragma once

#include <cstdint>

#include "core/numbers.h"

#if defined(ZEL_VECTORS) && defined(__SSE2__)
#include <immintrin.h>
#endif

namespace zel::ZEL_LEVEL {
namespace {

#if defined(ZEL_LEVEL_v4)

// 256 bytes in four registers.
struct ShuffleTable {
  __m512i parts[4];
};

ZEL_INLINE ShuffleTable ShuffleTableOf(const uint8_t* table) {
  ShuffleTable loaded;
  for (int32_t i = 0; i < 4; i++) loaded.parts[i] = _mm512_loadu_si512(table + 64 * i);
  return loaded;
}

// Each permutation takes the low 7 bits of a level from 128 entries; the top bit chooses the half.
ZEL_INLINE __m512i Mapped(const ShuffleTable& table, __m512i levels) {
  const __m512i lower = _mm512_permutex2var_epi8(table.parts[0], levels, table.parts[1]);
  const __m512i upper = _mm512_permutex2var_epi8(table.parts[2], levels, table.parts[3]);
  return _mm512_mask_blend_epi8(_mm512_movepi8_mask(levels), lower, upper);
}

#elif defined(ZEL_LEVEL_v3)

// A byte shuffle looks up 16 entries by the low 4 bits of an index, and gives 0 for one whose top
// bit is set. Shuffle k of a half sees level - 16 k, so that all shuffles up to the level's row
// answer; each holds the difference (exclusive or) to the row before it, so that together they
// answer the entry. A saturating subtraction keeps the levels of the other half negative.
struct ShuffleTable {
  __m256i differences[16];
};

ZEL_INLINE ShuffleTable ShuffleTableOf(const uint8_t* table) {
  ShuffleTable loaded;
  __m256i before = _mm256_setzero_si256();
  for (int32_t k = 0; k < 16; k++) {
    const __m256i row =
        _mm256_broadcastsi128_si256(_mm_loadu_si128(reinterpret_cast<const __m128i*>(table) + k));
    loaded.differences[k] = k == 8 ? row : _mm256_xor_si256(row, before);
    before = row;
  }
  return loaded;
}

ZEL_INLINE __m256i Mapped(const ShuffleTable& table, __m256i levels) {
  const __m256i step = _mm256_set1_epi8(16);
  __m256i lower = levels;
  __m256i upper = _mm256_xor_si256(levels, _mm256_set1_epi8(-128));
  __m256i result = _mm256_setzero_si256();
  for (int32_t k = 0; k < 8; k++) {
    result = _mm256_xor_si256(result, _mm256_shuffle_epi8(table.differences[k], lower));
    result = _mm256_xor_si256(result, _mm256_shuffle_epi8(table.differences[8 + k], upper));
    lower = _mm256_subs_epi8(lower, step);
    upper = _mm256_subs_epi8(upper, step);
  }
  return result;
}

#endif

}  // namespace
}  // namespace zel::ZEL_LEVEL
