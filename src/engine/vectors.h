// For row sources only: vectors as wide as the registers of the processor level, and the verbs that
// plain loops and vector expressions do not compile to: saturating sums, high halves of products,
// sums of neighbours, packing, reciprocals. What can be written as an expression over vectors is
// written so, once, for all levels.
//
// The build defines ZEL_VECTORS for the levels whose instructions may be used by name; the verbs
// are there at these only. ZEL_WIDE_VECTORS: the verbs of x86-64-v3 are there too.
#pragma once

#include <cstdint>
#include <cstring>

#include "core/numbers.h"

#if defined(ZEL_LEVEL_v3) || defined(ZEL_LEVEL_v4)
#define ZEL_WIDE_VECTORS 1
#endif
#if defined(ZEL_LEVEL_neon)
#include <arm_neon.h>
#elif defined(ZEL_VECTORS)
#include <immintrin.h>
#endif

namespace zel::ZEL_LEVEL {
namespace {

#if defined(ZEL_LEVEL_v4)
constexpr int32_t VECTOR_BYTES = 64;
#elif defined(ZEL_LEVEL_v3)
constexpr int32_t VECTOR_BYTES = 32;
#else
constexpr int32_t VECTOR_BYTES = 16;
#endif

using Bytes = uint8_t __attribute__((vector_size(VECTOR_BYTES)));
using Words = int16_t __attribute__((vector_size(VECTOR_BYTES)));
using UnsignedWords = uint16_t __attribute__((vector_size(VECTOR_BYTES)));
using Ints = int32_t __attribute__((vector_size(VECTOR_BYTES)));
using Floats = float __attribute__((vector_size(VECTOR_BYTES)));
using Doubles = double __attribute__((vector_size(VECTOR_BYTES)));
using DoubleMasks = int64_t __attribute__((vector_size(VECTOR_BYTES)));

template <class T>
struct VectorOf;
template <>
struct VectorOf<uint8_t> {
  using Type = Bytes;
};
template <>
struct VectorOf<int16_t> {
  using Type = Words;
};
template <>
struct VectorOf<float> {
  using Type = Floats;
};
// Of the pixels of a type.
template <class T>
using Vector = typename VectorOf<T>::Type;
template <class T>
constexpr int64_t LANES_OF = VECTOR_BYTES / static_cast<int64_t>(sizeof(T));

constexpr int32_t FLOAT_LANES = VECTOR_BYTES / 4;
constexpr int32_t DOUBLE_LANES = VECTOR_BYTES / 8;

template <class V>
ZEL_INLINE V Load(const void* from) {
  V vector;
  std::memcpy(&vector, from, sizeof(V));
  return vector;
}
template <class V>
ZEL_INLINE void Store(void* to, V vector) {
  std::memcpy(to, &vector, sizeof(V));
}

#if defined(ZEL_VECTORS)

// ---- the verbs, level by level: the same list in each

#if defined(ZEL_LEVEL_v4)

// The forms with a mask, where there are any: those without one start from an undefined register,
// which compilers warn of.
constexpr __mmask16 ALL_LANES = 0xFFFF;

ZEL_INLINE __m512i Of(Bytes v) {
  return (__m512i)v;
}
ZEL_INLINE __m512i Of(Words v) {
  return (__m512i)v;
}
ZEL_INLINE __m512i Of(UnsignedWords v) {
  return (__m512i)v;
}
ZEL_INLINE __m512i Of(Ints v) {
  return (__m512i)v;
}
ZEL_INLINE __m512i InOrder(__m512i packed) {
  return _mm512_maskz_permutexvar_epi64(0xFF, _mm512_setr_epi64(0, 2, 4, 6, 1, 3, 5, 7), packed);
}

ZEL_INLINE Bytes AddSaturated(Bytes a, Bytes b) {
  return (Bytes)_mm512_adds_epu8(Of(a), Of(b));
}
ZEL_INLINE Words AddSaturated(Words a, Words b) {
  return (Words)_mm512_adds_epi16(Of(a), Of(b));
}
ZEL_INLINE Bytes SubtractSaturated(Bytes a, Bytes b) {
  return (Bytes)_mm512_subs_epu8(Of(a), Of(b));
}
ZEL_INLINE Words SubtractSaturated(Words a, Words b) {
  return (Words)_mm512_subs_epi16(Of(a), Of(b));
}
ZEL_INLINE Words PackSaturated(Ints a, Ints b) {
  return (Words)InOrder(_mm512_packs_epi32(Of(a), Of(b)));
}
ZEL_INLINE Bytes PackSaturated(Words a, Words b) {
  return (Bytes)InOrder(_mm512_packus_epi16(Of(a), Of(b)));
}
ZEL_INLINE UnsignedWords HighProducts(UnsignedWords a, UnsignedWords b) {
  return (UnsignedWords)_mm512_mulhi_epu16(Of(a), Of(b));
}
ZEL_INLINE Words ProductsSaturated(Words a, Words b) {
  const __m512i low = _mm512_mullo_epi16(Of(a), Of(b));
  const __m512i high = _mm512_mulhi_epi16(Of(a), Of(b));
  return (Words)_mm512_packs_epi32(_mm512_unpacklo_epi16(low, high),
                                   _mm512_unpackhi_epi16(low, high));
}
ZEL_INLINE Words PairSums(Bytes a, Bytes weights) {
  return (Words)_mm512_maddubs_epi16(Of(a), Of(weights));
}
ZEL_INLINE Ints PairSums(Words a, Words weights) {
  return (Ints)_mm512_madd_epi16(Of(a), Of(weights));
}
ZEL_INLINE Ints WidenBytes(const uint8_t* from) {
  return (Ints)_mm512_maskz_cvtepu8_epi32(ALL_LANES, Load<__m128i>(from));
}
ZEL_INLINE Floats ReciprocalEstimate(Floats v) {
  return (Floats)_mm512_maskz_rcp14_ps(ALL_LANES, (__m512)v);
}
ZEL_INLINE Ints Truncate(Floats v) {
  return (Ints)_mm512_maskz_cvttps_epi32(ALL_LANES, (__m512)v);
}
ZEL_INLINE Ints ProductsTruncated(Ints v, double factor) {
  const __m512d factors = _mm512_set1_pd(factor);
  const auto half = [&](__m256i ints) {
    const __m512d products = _mm512_mul_pd(_mm512_maskz_cvtepi32_pd(0xFF, ints), factors);
    return _mm512_maskz_cvttpd_epi32(0xFF, products);
  };
  const __m256i low = half(_mm512_maskz_extracti64x4_epi64(0xFF, Of(v), 0));
  const __m256i high = half(_mm512_maskz_extracti64x4_epi64(0xFF, Of(v), 1));
  return (Ints)__builtin_shufflevector(low, high, 0, 1, 2, 3, 4, 5, 6, 7);
}
// Exact products only: they are not rounded.
ZEL_INLINE Doubles MultiplyAdd(Doubles a, Doubles b, Doubles sum) {
  return (Doubles)_mm512_fmadd_pd((__m512d)a, (__m512d)b, (__m512d)sum);
}
ZEL_INLINE Doubles WidenFloats(const float* from) {
  return (Doubles)_mm512_maskz_cvtps_pd(0xFF, Load<__m256>(from));
}
ZEL_INLINE void StoreRounded(float* to, Doubles v) {
  Store(to, _mm512_maskz_cvtpd_ps(0xFF, (__m512d)v));
}
// Sums of four neighbouring products, of bytes without and with a sign.
ZEL_INLINE Ints AddDotProducts(Ints sums, Bytes a, Bytes withSign) {
  return (Ints)_mm512_dpbusd_epi32(Of(sums), Of(a), Of(withSign));
}
// The four bytes at each offset from an address.
ZEL_INLINE Ints GatherInts(const uint8_t* from, Ints offsets) {
  return (Ints)_mm512_mask_i32gather_epi32(_mm512_setzero_si512(), ALL_LANES, Of(offsets), from, 1);
}
// One byte of each, counted from the low one.
template <int32_t byte>
ZEL_INLINE void StoreBytes(uint8_t* to, Ints v) {
  const __m128i places = _mm_setr_epi8(byte, 4 + byte, 8 + byte, 12 + byte, 16 + byte, 20 + byte,
                                       24 + byte, 28 + byte, 32 + byte, 36 + byte, 40 + byte,
                                       44 + byte, 48 + byte, 52 + byte, 56 + byte, 60 + byte);
  const __m512i packed =
      _mm512_maskz_permutexvar_epi8(0xFFFF, _mm512_castsi128_si512(places), Of(v));
  std::memcpy(to, &packed, sizeof places);
}
// A bit for each that has none of the other's bits.
ZEL_INLINE uint32_t DisjointBits(Ints a, Ints b) {
  return _mm512_testn_epi32_mask(Of(a), Of(b));
}
// a * b + c, rounded once.
ZEL_INLINE Floats MultiplyAdd(Floats a, Floats b, Floats c) {
  return (Floats)_mm512_fmadd_ps((__m512)a, (__m512)b, (__m512)c);
}
// Pieces of 16 bytes, each so far behind the one before.
ZEL_INLINE Bytes LoadPieces(const uint8_t* from, int64_t step) {
  const auto piece = [=](int64_t k) { return Load<__m128i>(from + k * step); };
  const __m512i two = _mm512_inserti32x4(_mm512_castsi128_si512(piece(0)), piece(1), 1);
  const __m512i three = _mm512_inserti32x4(two, piece(2), 2);
  return (Bytes)_mm512_inserti32x4(three, piece(3), 3);
}
// On a boundary of vectors, past the caches.
ZEL_INLINE void Stream(uint8_t* to, Bytes v) {
  _mm512_stream_si512(reinterpret_cast<__m512i*>(to), Of(v));
}

#elif defined(ZEL_LEVEL_v3)

ZEL_INLINE __m256i Of(Bytes v) {
  return (__m256i)v;
}
ZEL_INLINE __m256i Of(Words v) {
  return (__m256i)v;
}
ZEL_INLINE __m256i Of(UnsignedWords v) {
  return (__m256i)v;
}
ZEL_INLINE __m256i Of(Ints v) {
  return (__m256i)v;
}
ZEL_INLINE __m256i InOrder(__m256i packed) {
  return _mm256_permute4x64_epi64(packed, 0xD8);
}

ZEL_INLINE Bytes AddSaturated(Bytes a, Bytes b) {
  return (Bytes)_mm256_adds_epu8(Of(a), Of(b));
}
ZEL_INLINE Words AddSaturated(Words a, Words b) {
  return (Words)_mm256_adds_epi16(Of(a), Of(b));
}
ZEL_INLINE Bytes SubtractSaturated(Bytes a, Bytes b) {
  return (Bytes)_mm256_subs_epu8(Of(a), Of(b));
}
ZEL_INLINE Words SubtractSaturated(Words a, Words b) {
  return (Words)_mm256_subs_epi16(Of(a), Of(b));
}
ZEL_INLINE Words PackSaturated(Ints a, Ints b) {
  return (Words)InOrder(_mm256_packs_epi32(Of(a), Of(b)));
}
ZEL_INLINE Bytes PackSaturated(Words a, Words b) {
  return (Bytes)InOrder(_mm256_packus_epi16(Of(a), Of(b)));
}
ZEL_INLINE UnsignedWords HighProducts(UnsignedWords a, UnsignedWords b) {
  return (UnsignedWords)_mm256_mulhi_epu16(Of(a), Of(b));
}
ZEL_INLINE Words ProductsSaturated(Words a, Words b) {
  const __m256i low = _mm256_mullo_epi16(Of(a), Of(b));
  const __m256i high = _mm256_mulhi_epi16(Of(a), Of(b));
  return (Words)_mm256_packs_epi32(_mm256_unpacklo_epi16(low, high),
                                   _mm256_unpackhi_epi16(low, high));
}
ZEL_INLINE Words PairSums(Bytes a, Bytes weights) {
  return (Words)_mm256_maddubs_epi16(Of(a), Of(weights));
}
ZEL_INLINE Ints PairSums(Words a, Words weights) {
  return (Ints)_mm256_madd_epi16(Of(a), Of(weights));
}
ZEL_INLINE Ints WidenBytes(const uint8_t* from) {
  return (Ints)_mm256_cvtepu8_epi32(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(from)));
}
ZEL_INLINE Floats ReciprocalEstimate(Floats v) {
  return (Floats)_mm256_rcp_ps((__m256)v);
}
ZEL_INLINE Ints Truncate(Floats v) {
  return (Ints)_mm256_cvttps_epi32((__m256)v);
}
ZEL_INLINE Ints ProductsTruncated(Ints v, double factor) {
  const __m256d factors = _mm256_set1_pd(factor);
  const auto half = [&](__m128i ints) {
    return _mm256_cvttpd_epi32(_mm256_mul_pd(_mm256_cvtepi32_pd(ints), factors));
  };
  return (Ints)_mm256_set_m128i(half(_mm256_extracti128_si256(Of(v), 1)),
                                half(_mm256_castsi256_si128(Of(v))));
}
// Exact products only: they are not rounded.
ZEL_INLINE Doubles MultiplyAdd(Doubles a, Doubles b, Doubles sum) {
  return (Doubles)_mm256_fmadd_pd((__m256d)a, (__m256d)b, (__m256d)sum);
}
ZEL_INLINE Doubles WidenFloats(const float* from) {
  return (Doubles)_mm256_cvtps_pd(Load<__m128>(from));
}
ZEL_INLINE void StoreRounded(float* to, Doubles v) {
  Store(to, _mm256_cvtpd_ps((__m256d)v));
}
ZEL_INLINE Words WidenBytes(const int8_t* from) {
  return (Words)_mm256_cvtepi8_epi16(Load<__m128i>(from));
}
// The four bytes at each offset from an address.
ZEL_INLINE Ints GatherInts(const uint8_t* from, Ints offsets) {
  return (Ints)_mm256_i32gather_epi32(reinterpret_cast<const int*>(from), Of(offsets), 1);
}
// One byte of each, counted from the low one.
template <int32_t byte>
ZEL_INLINE void StoreBytes(uint8_t* to, Ints v) {
  const __m256i places = _mm256_set1_epi32(0x0C080400 + 0x01010101 * byte);
  const __m256i packed = _mm256_shuffle_epi8(Of(v), places);
  const __m128i upper = _mm256_extracti128_si256(packed, 1);
  _mm_storel_epi64(reinterpret_cast<__m128i*>(to),
                   _mm_unpacklo_epi32(_mm256_castsi256_si128(packed), upper));
}
// A bit for each that has none of the other's bits.
ZEL_INLINE uint32_t DisjointBits(Ints a, Ints b) {
  return static_cast<uint32_t>(_mm256_movemask_ps((__m256)((a & b) == 0)));
}
// a * b + c, rounded once.
ZEL_INLINE Floats MultiplyAdd(Floats a, Floats b, Floats c) {
  return (Floats)_mm256_fmadd_ps((__m256)a, (__m256)b, (__m256)c);
}
// Pieces of 16 bytes, each so far behind the one before.
ZEL_INLINE Bytes LoadPieces(const uint8_t* from, int64_t step) {
  const __m256i first = _mm256_castsi128_si256(Load<__m128i>(from));
  return (Bytes)_mm256_inserti128_si256(first, Load<__m128i>(from + step), 1);
}
// On a boundary of vectors, past the caches.
ZEL_INLINE void Stream(uint8_t* to, Bytes v) {
  _mm256_stream_si256(reinterpret_cast<__m256i*>(to), Of(v));
}

#elif defined(ZEL_LEVEL_neon)

ZEL_INLINE Bytes AddSaturated(Bytes a, Bytes b) {
  return (Bytes)vqaddq_u8((uint8x16_t)a, (uint8x16_t)b);
}
ZEL_INLINE Words AddSaturated(Words a, Words b) {
  return (Words)vqaddq_s16((int16x8_t)a, (int16x8_t)b);
}
ZEL_INLINE Bytes SubtractSaturated(Bytes a, Bytes b) {
  return (Bytes)vqsubq_u8((uint8x16_t)a, (uint8x16_t)b);
}
ZEL_INLINE Words SubtractSaturated(Words a, Words b) {
  return (Words)vqsubq_s16((int16x8_t)a, (int16x8_t)b);
}
ZEL_INLINE Words PackSaturated(Ints a, Ints b) {
  return (Words)vqmovn_high_s32(vqmovn_s32((int32x4_t)a), (int32x4_t)b);
}
ZEL_INLINE Bytes PackSaturated(Words a, Words b) {
  return (Bytes)vqmovun_high_s16(vqmovun_s16((int16x8_t)a), (int16x8_t)b);
}
ZEL_INLINE Words ProductsSaturated(Words a, Words b) {
  const int32x4_t low = vmull_s16(vget_low_s16((int16x8_t)a), vget_low_s16((int16x8_t)b));
  return PackSaturated((Ints)low, (Ints)vmull_high_s16((int16x8_t)a, (int16x8_t)b));
}
ZEL_INLINE Ints WidenBytes(const uint8_t* from) {
  uint32_t bytes;
  std::memcpy(&bytes, from, sizeof bytes);
  const uint16x8_t words = vmovl_u8(vreinterpret_u8_u32(vdup_n_u32(bytes)));
  return (Ints)vmovl_u16(vget_low_u16(words));
}
// The processor's own estimate has 8 bits, and one step twice as many.
ZEL_INLINE Floats ReciprocalEstimate(Floats v) {
  const float32x4_t estimate = vrecpeq_f32((float32x4_t)v);
  return (Floats)vmulq_f32(estimate, vrecpsq_f32((float32x4_t)v, estimate));
}
ZEL_INLINE Ints Truncate(Floats v) {
  return (Ints)vcvtq_s32_f32((float32x4_t)v);
}
// Exact products only: they are not rounded.
ZEL_INLINE Doubles MultiplyAdd(Doubles a, Doubles b, Doubles sum) {
  return (Doubles)vfmaq_f64((float64x2_t)sum, (float64x2_t)a, (float64x2_t)b);
}
ZEL_INLINE Doubles WidenFloats(const float* from) {
  return (Doubles)vcvt_f64_f32(vld1_f32(from));
}
ZEL_INLINE void StoreRounded(float* to, Doubles v) {
  vst1_f32(to, vcvt_f32_f64((float64x2_t)v));
}
// Pieces of 16 bytes: there is room for one.
ZEL_INLINE Bytes LoadPieces(const uint8_t* from, int64_t) {
  return Load<Bytes>(from);
}
// The processor keeps long runs of stores out of its caches by itself.
ZEL_INLINE void Stream(uint8_t* to, Bytes v) {
  Store(to, v);
}

#else

ZEL_INLINE __m128i Of(Bytes v) {
  return (__m128i)v;
}
ZEL_INLINE __m128i Of(Words v) {
  return (__m128i)v;
}
ZEL_INLINE __m128i Of(Ints v) {
  return (__m128i)v;
}

ZEL_INLINE Bytes AddSaturated(Bytes a, Bytes b) {
  return (Bytes)_mm_adds_epu8(Of(a), Of(b));
}
ZEL_INLINE Words AddSaturated(Words a, Words b) {
  return (Words)_mm_adds_epi16(Of(a), Of(b));
}
ZEL_INLINE Bytes SubtractSaturated(Bytes a, Bytes b) {
  return (Bytes)_mm_subs_epu8(Of(a), Of(b));
}
ZEL_INLINE Words SubtractSaturated(Words a, Words b) {
  return (Words)_mm_subs_epi16(Of(a), Of(b));
}
ZEL_INLINE Words PackSaturated(Ints a, Ints b) {
  return (Words)_mm_packs_epi32(Of(a), Of(b));
}
ZEL_INLINE Bytes PackSaturated(Words a, Words b) {
  return (Bytes)_mm_packus_epi16(Of(a), Of(b));
}
ZEL_INLINE Words ProductsSaturated(Words a, Words b) {
  const __m128i low = _mm_mullo_epi16(Of(a), Of(b));
  const __m128i high = _mm_mulhi_epi16(Of(a), Of(b));
  return (Words)_mm_packs_epi32(_mm_unpacklo_epi16(low, high), _mm_unpackhi_epi16(low, high));
}
ZEL_INLINE Ints WidenBytes(const uint8_t* from) {
  int32_t bytes;
  std::memcpy(&bytes, from, sizeof bytes);
  const __m128i words = _mm_unpacklo_epi8(_mm_cvtsi32_si128(bytes), _mm_setzero_si128());
  return (Ints)_mm_unpacklo_epi16(words, _mm_setzero_si128());
}
ZEL_INLINE Floats ReciprocalEstimate(Floats v) {
  return (Floats)_mm_rcp_ps((__m128)v);
}
ZEL_INLINE Ints Truncate(Floats v) {
  return (Ints)_mm_cvttps_epi32((__m128)v);
}
// Exact products only: they are not rounded.
ZEL_INLINE Doubles MultiplyAdd(Doubles a, Doubles b, Doubles sum) {
  return a * b + sum;
}
ZEL_INLINE Doubles WidenFloats(const float* from) {
  return (Doubles)_mm_cvtps_pd(_mm_setr_ps(from[0], from[1], 0, 0));
}
ZEL_INLINE void StoreRounded(float* to, Doubles v) {
  _mm_storel_pi(reinterpret_cast<__m64*>(to), _mm_cvtpd_ps((__m128d)v));
}
// Pieces of 16 bytes: there is room for one.
ZEL_INLINE Bytes LoadPieces(const uint8_t* from, int64_t) {
  return Load<Bytes>(from);
}
// On a boundary of vectors, past the caches.
ZEL_INLINE void Stream(uint8_t* to, Bytes v) {
  _mm_stream_si128(reinterpret_cast<__m128i*>(to), Of(v));
}

#endif

// After the last of them, before anyone else reads.
ZEL_INLINE void StreamEnd() {
#if !defined(ZEL_LEVEL_neon)
  _mm_sfence();
#endif
}

#endif  // ZEL_VECTORS

}  // namespace
}  // namespace zel::ZEL_LEVEL
