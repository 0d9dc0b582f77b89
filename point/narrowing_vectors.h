// For row sources only: vectors of 32-bit pixels on their way to 16 and 8 bits, at the level's
// width. ZEL_NARROWING is defined where there are such vectors, ZEL_BYTE_SUMS where they can add
// bytes.
#pragma once

#include "core/numbers.h"

#if defined(ZEL_LEVEL_v4) || defined(ZEL_LEVEL_v3)
#define ZEL_NARROWING 1
#define ZEL_BYTE_SUMS 1
#include <immintrin.h>
#elif defined(__SSE2__)
#define ZEL_NARROWING 1
#include <emmintrin.h>
#endif

namespace zel::ZEL_LEVEL {
namespace {

// The larger and smaller of floats answer their second operand where the first is NaN.

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

// Floats limited from 0 to 255 and cut; NaN is 0.
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

// Floats limited from 0 to 255 and cut; NaN is 0.
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

#elif defined(ZEL_NARROWING)

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

// Floats limited from 0 to 255 and cut; NaN is 0.
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

#endif

}  // namespace
}  // namespace zel::ZEL_LEVEL
