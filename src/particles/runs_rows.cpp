// Pixels to bits, bits to runs, runs to labels.
#include "particles/runs_rows.h"

#include <cstring>

#include "core/numbers.h"

#if defined(__SSE2__)
#include <immintrin.h>
#endif

namespace zel::ZEL_LEVEL {
namespace {

// Set bits for the non-zero pixels of 8 bytes.
ZEL_INLINE uint64_t BitsOfWordU8(const uint8_t* pixels) {
  uint64_t word;
  std::memcpy(&word, pixels, sizeof word);
  constexpr uint64_t low7 = 0x7F7F7F7F7F7F7F7F;
  const uint64_t tops = (((word & low7) + low7) | word) & ~low7;
  return (tops >> 7) * 0x0102040810204080 >> 56;  // gathers the eight bits
}

ZEL_INLINE uint64_t BitsOfWordI16(const uint8_t* pixels) {
  uint64_t word;
  std::memcpy(&word, pixels, sizeof word);
  constexpr uint64_t low15 = 0x7FFF7FFF7FFF7FFF;
  const uint64_t tops = (((word & low15) + low15) | word) & ~low15;
  return ((tops >> 15) * 0x0001000200040008 >> 48) & 15;
}

ZEL_INLINE uint64_t BitsOfGroupU8(const uint8_t* pixels) {
#if defined(ZEL_LEVEL_v4)
  const __m512i group = _mm512_loadu_si512(pixels);
  return _mm512_test_epi8_mask(group, group);
#elif defined(ZEL_LEVEL_v3)
  uint64_t bits = 0;
  for (int32_t half = 1; half >= 0; half--) {
    const __m256i group = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(pixels + 32 * half));
    const __m256i zero = _mm256_cmpeq_epi8(group, _mm256_setzero_si256());
    bits = bits << 32 | static_cast<uint32_t>(~_mm256_movemask_epi8(zero));
  }
  return bits;
#elif defined(__SSE2__)
  uint64_t bits = 0;
  for (int32_t part = 3; part >= 0; part--) {
    const __m128i group = _mm_loadu_si128(reinterpret_cast<const __m128i*>(pixels + 16 * part));
    const __m128i zero = _mm_cmpeq_epi8(group, _mm_setzero_si128());
    bits = bits << 16 | (static_cast<uint32_t>(~_mm_movemask_epi8(zero)) & 0xFFFF);
  }
  return bits;
#else
  uint64_t bits = 0;
  for (int32_t part = 7; part >= 0; part--) bits = bits << 8 | BitsOfWordU8(pixels + 8 * part);
  return bits;
#endif
}

ZEL_INLINE uint64_t BitsOfGroupI16(const uint8_t* pixels) {
#if defined(ZEL_LEVEL_v4)
  const __m512i low = _mm512_loadu_si512(pixels);
  const __m512i high = _mm512_loadu_si512(pixels + 64);
  return static_cast<uint64_t>(_mm512_test_epi16_mask(high, high)) << 32 |
         _mm512_test_epi16_mask(low, low);
#elif defined(__SSE2__)
  uint64_t bits = 0;
  for (int32_t part = 3; part >= 0; part--) {
    const auto* at = reinterpret_cast<const __m128i*>(pixels + 32 * part);
    const __m128i zero = _mm_setzero_si128();
    const __m128i low = _mm_cmpeq_epi16(_mm_loadu_si128(at), zero);
    const __m128i high = _mm_cmpeq_epi16(_mm_loadu_si128(at + 1), zero);
    const int32_t mask = _mm_movemask_epi8(_mm_packs_epi16(low, high));
    bits = bits << 16 | (static_cast<uint32_t>(~mask) & 0xFFFF);
  }
  return bits;
#else
  uint64_t bits = 0;
  for (int32_t part = 15; part >= 0; part--) bits = bits << 4 | BitsOfWordI16(pixels + 8 * part);
  return bits;
#endif
}

template <int32_t PixelBytes>
ZEL_INLINE void BitsOfRow(const uint8_t* row, int32_t width, uint64_t* words) {
  constexpr int32_t wordPixels = 8 / PixelBytes;
  const int32_t groups = width / 64;
  for (int32_t i = 0; i < groups; i++) {
    const uint8_t* at = row + int64_t{64 * PixelBytes} * i;
    words[i] = PixelBytes == 1 ? BitsOfGroupU8(at) : BitsOfGroupI16(at);
  }
  const int32_t rest = width % 64;
  if (rest == 0) return;
  uint64_t bits = 0;
  const uint8_t* at = row + int64_t{64 * PixelBytes} * groups;
  for (int32_t x = 0; x < rest; x += wordPixels, at += 8) {
    bits |= (PixelBytes == 1 ? BitsOfWordU8(at) : BitsOfWordI16(at)) << x;
  }
  words[groups] = bits & ((uint64_t{1} << rest) - 1);
}

void BitsU8(const void* row, int32_t width, uint64_t* words) {
  BitsOfRow<1>(static_cast<const uint8_t*>(row), width, words);
}

void BitsI16(const void* row, int32_t width, uint64_t* words) {
  BitsOfRow<2>(static_cast<const uint8_t*>(row), width, words);
}

// Starts and ends alternate along a row, so they are written as one sequence of columns.
uint32_t Runs(const uint64_t* words, int32_t width, Run* runs) {
  auto* columns = reinterpret_cast<int32_t*>(runs);
  const auto count = static_cast<int32_t>(WordsOfBits(width));
  uint64_t carry = 0;
#if defined(ZEL_LEVEL_v4)
  alignas(64) static constexpr uint8_t places[64] = {
      0,  1,  2,  3,  4,  5,  6,  7,  8,  9,  10, 11, 12, 13, 14, 15, 16, 17, 18, 19, 20, 21,
      22, 23, 24, 25, 26, 27, 28, 29, 30, 31, 32, 33, 34, 35, 36, 37, 38, 39, 40, 41, 42, 43,
      44, 45, 46, 47, 48, 49, 50, 51, 52, 53, 54, 55, 56, 57, 58, 59, 60, 61, 62, 63};
  const __m512i iota = _mm512_load_si512(places);
#endif
  for (int32_t i = 0; i < count; i++) {
    const uint64_t word = words[i];
    uint64_t changes = word ^ (word << 1 | carry);
    carry = word >> 63;
    if (changes == 0) continue;
    const int32_t base = 64 * i;
#if defined(ZEL_LEVEL_v4)
    const int32_t found = __builtin_popcountll(changes);
    __m512i packed = _mm512_maskz_compress_epi8(changes, iota);
    int32_t* to = columns;
    columns += found;
    // The zero-masked forms of these instructions keep the compiler from warning of registers
    // without a value.
    for (;;) {
      const __m512i wide =
          _mm512_maskz_cvtepu8_epi32(0xFFFF, _mm512_maskz_extracti32x4_epi32(0xF, packed, 0));
      _mm512_storeu_si512(to, _mm512_add_epi32(wide, _mm512_set1_epi32(base)));
      to += 16;
      if (to >= columns) break;
      packed = _mm512_maskz_alignr_epi64(0xFF, packed, packed, 2);
    }
#else
    do {
      *columns++ = base + __builtin_ctzll(changes);
      changes &= changes - 1;
    } while (changes != 0);
#endif
  }
  if (carry != 0) *columns++ = width;
  return static_cast<uint32_t>((columns - reinterpret_cast<int32_t*>(runs)) / 2);
}

#if defined(ZEL_LEVEL_v3) || defined(ZEL_LEVEL_v4)
constexpr size_t FILL_BYTES = 32;
#else
constexpr size_t FILL_BYTES = 16;
#endif

// Writes a row stretch by stretch from left to right, in whole groups: what a group covers beyond
// its stretch is written next. The row's last group is put together aside, since nothing beyond the
// row may be written.
template <class T>
class RowWriter {
 public:
  ZEL_INLINE RowWriter(T* row, int32_t width)
      : row_(row), width_(width), tailStart_(width > LANES ? width - LANES : 0) {}

  ZEL_INLINE void Fill(int32_t start, int32_t end, T value) {
    const Group group = value - Group{};
    const int32_t bodyEnd = end < tailStart_ ? end : tailStart_;
    int32_t x = start;
    for (; x < bodyEnd; x += LANES) std::memcpy(row_ + x, &group, sizeof group);
    if (end <= tailStart_) return;
    // At most one group long.
    const int32_t tail = start > tailStart_ ? start - tailStart_ : 0;
    std::memcpy(tail_ + tail, &group, sizeof group);
  }

  ZEL_INLINE void Finish() {
    if (width_ >= LANES) {
      std::memcpy(row_ + tailStart_, tail_, sizeof(Group));
    } else {
      std::memcpy(row_, tail_, static_cast<size_t>(width_) * sizeof(T));
    }
  }

 private:
  using Group [[gnu::vector_size(FILL_BYTES)]] = T;
  static constexpr auto LANES = static_cast<int32_t>(FILL_BYTES / sizeof(T));

  T* row_;
  int32_t width_;
  int32_t tailStart_;
  T tail_[2 * FILL_BYTES / sizeof(T)];
};

#if defined(ZEL_LEVEL_v4)
ZEL_INLINE void StoreMasked(uint8_t* at, uint64_t mask, uint8_t value) {
  _mm512_mask_storeu_epi8(at, mask, _mm512_set1_epi8(static_cast<char>(value)));
}
ZEL_INLINE void StoreMasked(uint16_t* at, uint64_t mask, uint16_t value) {
  _mm512_mask_storeu_epi16(at, static_cast<uint32_t>(mask),
                           _mm512_set1_epi16(static_cast<int16_t>(value)));
}

// At least one pixel.
template <class T>
ZEL_INLINE void FillMasked(T* row, int32_t start, int32_t end, T value) {
  constexpr auto lanes = static_cast<int32_t>(64 / sizeof(T));
  int32_t x = start;
  for (; x + lanes < end; x += lanes) StoreMasked(row + x, ~uint64_t{0}, value);
  StoreMasked(row + x, _bzhi_u64(~uint64_t{0}, static_cast<uint32_t>(end - x)), value);
}

// With masked stores a row can be cleared and its runs written exactly.
template <class T>
ZEL_INLINE void LabelsOfRow(T* row, int32_t width, const Run* runs, const uint32_t* labels,
                            const uint32_t* numbers) {
  FillMasked<T>(row, 0, width, 0);
  for (; runs->start < width; runs++, labels++) {
    FillMasked<T>(row, runs->start, runs->end, static_cast<T>(numbers[*labels]));
  }
}
#else
template <class T>
ZEL_INLINE void LabelsOfRow(T* row, int32_t width, const Run* runs, const uint32_t* labels,
                            const uint32_t* numbers) {
  RowWriter<T> writer(row, width);
  int32_t x = 0;
  for (; runs->start < width; runs++, labels++) {
    writer.Fill(x, runs->start, 0);
    writer.Fill(runs->start, runs->end, static_cast<T>(numbers[*labels]));
    x = runs->end;
  }
  writer.Fill(x, width, 0);
  writer.Finish();
}
#endif

void LabelsU8(void* row, int32_t width, const Run* runs, const uint32_t* labels,
              const uint32_t* numbers) {
  LabelsOfRow(static_cast<uint8_t*>(row), width, runs, labels, numbers);
}

void LabelsI16(void* row, int32_t width, const Run* runs, const uint32_t* labels,
               const uint32_t* numbers) {
  LabelsOfRow(static_cast<uint16_t*>(row), width, runs, labels, numbers);
}

}  // namespace

extern const RunRows runRows = {.bitsU8 = &BitsU8,
                                .bitsI16 = &BitsI16,
                                .runs = &Runs,
                                .labelsU8 = &LabelsU8,
                                .labelsI16 = &LabelsI16};

}  // namespace zel::ZEL_LEVEL
