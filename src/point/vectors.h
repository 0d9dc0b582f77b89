// For row sources only: vectors of the level's width, for what the compiler does not find in plain
// loops: saturating sums, high halves of products, reciprocals, and packing. The build defines
// ZEL_VECTORS for the levels that have any; ZEL_BYTE_SUMS is defined where they can add
// neighbouring bytes.
#pragma once

#include <cstdint>
#include <cstring>

#include "core/numbers.h"

#if defined(ZEL_LEVEL_v4) || defined(ZEL_LEVEL_v3)
#define ZEL_BYTE_SUMS 1
#include <immintrin.h>
#elif defined(ZEL_VECTORS)
#include <emmintrin.h>
#endif

namespace zel::ZEL_LEVEL {
namespace {

#if defined(ZEL_LEVEL_v4)

using Vector = __m512i;

// The forms with a mask: those without one start from an undefined register, which compilers warn
// of.
constexpr __mmask16 ALL_LANES = 0xFFFF;

ZEL_INLINE Vector Load(const void* at) {
  return _mm512_loadu_si512(at);
}
ZEL_INLINE void Store(void* at, Vector bits) {
  _mm512_storeu_si512(at, bits);
}

// Integers limited to the narrower type, in their order.
ZEL_INLINE Vector InOrder(Vector packed) {
  return _mm512_maskz_permutexvar_epi64(0xFF, _mm512_setr_epi64(0, 2, 4, 6, 1, 3, 5, 7), packed);
}
ZEL_INLINE Vector PackedWords(Vector a, Vector b) {
  return InOrder(_mm512_packs_epi32(a, b));
}
ZEL_INLINE Vector PackedBytes(Vector a, Vector b) {
  return InOrder(_mm512_packus_epi16(a, b));
}

// Floats limited from 0 to 255 and cut; NaN is 0, as the larger of two is the second then.
ZEL_INLINE Vector CutToBytes(Vector pixels) {
  const __m512 raised =
      _mm512_maskz_max_ps(ALL_LANES, _mm512_castsi512_ps(pixels), _mm512_setzero_ps());
  return _mm512_maskz_cvttps_epi32(ALL_LANES,
                                   _mm512_maskz_min_ps(ALL_LANES, raised, _mm512_set1_ps(255.0f)));
}

// Floats limited from above and cut; what is too small for 32 bits becomes the smallest integer,
// and NaN 0.
ZEL_INLINE Vector CutToWords(Vector pixels) {
  const __m512 values = _mm512_castsi512_ps(pixels);
  const __mmask16 numbers = _mm512_cmp_ps_mask(values, values, _CMP_ORD_Q);
  return _mm512_maskz_cvttps_epi32(
      numbers, _mm512_maskz_min_ps(ALL_LANES, values, _mm512_set1_ps(32767.0f)));
}

// The sums of the first three of four bytes.
ZEL_INLINE Vector ChannelSums(Vector pixels) {
  const Vector pairs = _mm512_maddubs_epi16(pixels, _mm512_set1_epi32(0x00010101));
  return _mm512_madd_epi16(pairs, _mm512_set1_epi16(1));
}
ZEL_INLINE Vector Thirds(Vector sums) {
  return _mm512_srli_epi16(_mm512_mulhi_epu16(sums, _mm512_set1_epi16(-0x5555)), 1);
}

ZEL_INLINE Vector BytesAdded(Vector a, Vector b) {
  return _mm512_adds_epu8(a, b);
}
ZEL_INLINE Vector BytesSubtracted(Vector a, Vector b) {
  return _mm512_subs_epu8(a, b);
}
ZEL_INLINE Vector WordsAdded(Vector a, Vector b) {
  return _mm512_adds_epi16(a, b);
}
ZEL_INLINE Vector WordsSubtracted(Vector a, Vector b) {
  return _mm512_subs_epi16(a, b);
}

// Products of words, limited to words.
ZEL_INLINE Vector WordsMultiplied(Vector a, Vector b) {
  const Vector low = _mm512_mullo_epi16(a, b);
  const Vector high = _mm512_mulhi_epi16(a, b);
  return _mm512_packs_epi32(_mm512_unpacklo_epi16(low, high), _mm512_unpackhi_epi16(low, high));
}

// a - b x c on words, low bits.
ZEL_INLINE Vector WordsLessProduct(Vector a, Vector b, Vector c) {
  return _mm512_sub_epi16(a, _mm512_mullo_epi16(b, c));
}

// As many bytes as there are 32-bit lanes.
ZEL_INLINE Vector WidenedBytes(const void* at) {
  return _mm512_maskz_cvtepu8_epi32(ALL_LANES, _mm_loadu_si128(static_cast<const __m128i*>(at)));
}

// Quotients of integers up to 255; 0 divides as 1. The half keeps each of them at least 0.5 / 255.5
// of itself away from the whole numbers, and reciprocals are ten times as exact as that.
ZEL_INLINE Vector ByteQuotients(Vector a, Vector b) {
  const __m512 dividend =
      _mm512_add_ps(_mm512_maskz_cvtepi32_ps(ALL_LANES, a), _mm512_set1_ps(0.5f));
  const __m512 divisor =
      _mm512_maskz_max_ps(ALL_LANES, _mm512_maskz_cvtepi32_ps(ALL_LANES, b), _mm512_set1_ps(1.0f));
  return _mm512_maskz_cvttps_epi32(
      ALL_LANES, _mm512_mul_ps(dividend, _mm512_maskz_rcp14_ps(ALL_LANES, divisor)));
}

#elif defined(ZEL_LEVEL_v3)

using Vector = __m256i;

ZEL_INLINE Vector Load(const void* at) {
  return _mm256_loadu_si256(static_cast<const Vector*>(at));
}
ZEL_INLINE void Store(void* at, Vector bits) {
  _mm256_storeu_si256(static_cast<Vector*>(at), bits);
}

// Integers limited to the narrower type, in their order.
ZEL_INLINE Vector PackedWords(Vector a, Vector b) {
  return _mm256_permute4x64_epi64(_mm256_packs_epi32(a, b), 0xD8);
}
ZEL_INLINE Vector PackedBytes(Vector a, Vector b) {
  return _mm256_permute4x64_epi64(_mm256_packus_epi16(a, b), 0xD8);
}

// Floats limited from 0 to 255 and cut; NaN is 0, as the larger of two is the second then.
ZEL_INLINE Vector CutToBytes(Vector pixels) {
  const __m256 raised = _mm256_max_ps(_mm256_castsi256_ps(pixels), _mm256_setzero_ps());
  return _mm256_cvttps_epi32(_mm256_min_ps(raised, _mm256_set1_ps(255.0f)));
}

// Floats limited from above and cut; what is too small for 32 bits becomes the smallest integer,
// and NaN 0.
ZEL_INLINE Vector CutToWords(Vector pixels) {
  const __m256 values = _mm256_castsi256_ps(pixels);
  const __m256 numbers = _mm256_and_ps(values, _mm256_cmp_ps(values, values, _CMP_ORD_Q));
  return _mm256_cvttps_epi32(_mm256_min_ps(numbers, _mm256_set1_ps(32767.0f)));
}

// The sums of the first three of four bytes.
ZEL_INLINE Vector ChannelSums(Vector pixels) {
  const Vector pairs = _mm256_maddubs_epi16(pixels, _mm256_set1_epi32(0x00010101));
  return _mm256_madd_epi16(pairs, _mm256_set1_epi16(1));
}
ZEL_INLINE Vector Thirds(Vector sums) {
  return _mm256_srli_epi16(_mm256_mulhi_epu16(sums, _mm256_set1_epi16(-0x5555)), 1);
}

ZEL_INLINE Vector BytesAdded(Vector a, Vector b) {
  return _mm256_adds_epu8(a, b);
}
ZEL_INLINE Vector BytesSubtracted(Vector a, Vector b) {
  return _mm256_subs_epu8(a, b);
}
ZEL_INLINE Vector WordsAdded(Vector a, Vector b) {
  return _mm256_adds_epi16(a, b);
}
ZEL_INLINE Vector WordsSubtracted(Vector a, Vector b) {
  return _mm256_subs_epi16(a, b);
}

// Products of words, limited to words.
ZEL_INLINE Vector WordsMultiplied(Vector a, Vector b) {
  const Vector low = _mm256_mullo_epi16(a, b);
  const Vector high = _mm256_mulhi_epi16(a, b);
  return _mm256_packs_epi32(_mm256_unpacklo_epi16(low, high), _mm256_unpackhi_epi16(low, high));
}

// a - b x c on words, low bits.
ZEL_INLINE Vector WordsLessProduct(Vector a, Vector b, Vector c) {
  return _mm256_sub_epi16(a, _mm256_mullo_epi16(b, c));
}

// As many bytes as there are 32-bit lanes.
ZEL_INLINE Vector WidenedBytes(const void* at) {
  return _mm256_cvtepu8_epi32(_mm_loadl_epi64(static_cast<const __m128i*>(at)));
}

// Quotients of integers up to 255; 0 divides as 1. The half keeps each of them at least 0.5 / 255.5
// of itself away from the whole numbers, and reciprocals are ten times as exact as that.
ZEL_INLINE Vector ByteQuotients(Vector a, Vector b) {
  const __m256 dividend = _mm256_add_ps(_mm256_cvtepi32_ps(a), _mm256_set1_ps(0.5f));
  const __m256 divisor = _mm256_max_ps(_mm256_cvtepi32_ps(b), _mm256_set1_ps(1.0f));
  return _mm256_cvttps_epi32(_mm256_mul_ps(dividend, _mm256_rcp_ps(divisor)));
}

#elif defined(ZEL_VECTORS)

using Vector = __m128i;

ZEL_INLINE Vector Load(const void* at) {
  return _mm_loadu_si128(static_cast<const Vector*>(at));
}
ZEL_INLINE void Store(void* at, Vector bits) {
  _mm_storeu_si128(static_cast<Vector*>(at), bits);
}

// Integers limited to the narrower type.
ZEL_INLINE Vector PackedWords(Vector a, Vector b) {
  return _mm_packs_epi32(a, b);
}
ZEL_INLINE Vector PackedBytes(Vector a, Vector b) {
  return _mm_packus_epi16(a, b);
}

// Floats limited from 0 to 255 and cut; NaN is 0, as the larger of two is the second then.
ZEL_INLINE Vector CutToBytes(Vector pixels) {
  const __m128 raised = _mm_max_ps(_mm_castsi128_ps(pixels), _mm_setzero_ps());
  return _mm_cvttps_epi32(_mm_min_ps(raised, _mm_set1_ps(255.0f)));
}

// Floats limited from above and cut; what is too small for 32 bits becomes the smallest integer,
// and NaN 0.
ZEL_INLINE Vector CutToWords(Vector pixels) {
  const __m128 values = _mm_castsi128_ps(pixels);
  const __m128 numbers = _mm_and_ps(values, _mm_cmpord_ps(values, values));
  return _mm_cvttps_epi32(_mm_min_ps(numbers, _mm_set1_ps(32767.0f)));
}

ZEL_INLINE Vector BytesAdded(Vector a, Vector b) {
  return _mm_adds_epu8(a, b);
}
ZEL_INLINE Vector BytesSubtracted(Vector a, Vector b) {
  return _mm_subs_epu8(a, b);
}
ZEL_INLINE Vector WordsAdded(Vector a, Vector b) {
  return _mm_adds_epi16(a, b);
}
ZEL_INLINE Vector WordsSubtracted(Vector a, Vector b) {
  return _mm_subs_epi16(a, b);
}

// Products of words, limited to words.
ZEL_INLINE Vector WordsMultiplied(Vector a, Vector b) {
  const Vector low = _mm_mullo_epi16(a, b);
  const Vector high = _mm_mulhi_epi16(a, b);
  return _mm_packs_epi32(_mm_unpacklo_epi16(low, high), _mm_unpackhi_epi16(low, high));
}

// a - b x c on words, low bits.
ZEL_INLINE Vector WordsLessProduct(Vector a, Vector b, Vector c) {
  return _mm_sub_epi16(a, _mm_mullo_epi16(b, c));
}

// As many bytes as there are 32-bit lanes.
ZEL_INLINE Vector WidenedBytes(const void* at) {
  int32_t bytes;
  std::memcpy(&bytes, at, sizeof bytes);
  const Vector words = _mm_unpacklo_epi8(_mm_cvtsi32_si128(bytes), _mm_setzero_si128());
  return _mm_unpacklo_epi16(words, _mm_setzero_si128());
}

// Quotients of integers up to 255; 0 divides as 1. The half keeps each of them at least 0.5 / 255.5
// of itself away from the whole numbers, and reciprocals are ten times as exact as that.
ZEL_INLINE Vector ByteQuotients(Vector a, Vector b) {
  const __m128 dividend = _mm_add_ps(_mm_cvtepi32_ps(a), _mm_set1_ps(0.5f));
  const __m128 divisor = _mm_max_ps(_mm_cvtepi32_ps(b), _mm_set1_ps(1.0f));
  return _mm_cvttps_epi32(_mm_mul_ps(dividend, _mm_rcp_ps(divisor)));
}

#endif

}  // namespace
}  // namespace zel::ZEL_LEVEL
