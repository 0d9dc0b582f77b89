// Row routines of the lookups: byte tables, 16-bit tables, and values by class for floats.
#include "point/lookup_rows.h"

#include <bit>
#include <cstring>

#include "engine/byte_tables.h"

namespace zel::ZEL_LEVEL {
namespace {

// A run of pixels of one row, plainly. The mask is null without one.
template <class T>
ZEL_INLINE void MapPixels(const T* from, T* to, const uint8_t* mask, int64_t begin, int64_t end,
                          const T* table) {
  if (!mask) {
    for (int64_t x = begin; x < end; x++) to[x] = table[from[x]];
    return;
  }
  for (int64_t x = begin; x < end; x++) {
    const T pixel = from[x];
    const auto selected = static_cast<T>(mask[x] != 0 ? -1 : 0);  // no branch: masks may be noise
    to[x] = static_cast<T>((table[pixel] & selected) | (pixel & ~selected));
  }
}

#if defined(ZEL_LEVEL_v4)

ZEL_INLINE void MapGroup(const uint8_t* from, uint8_t* to, const uint8_t* mask, __mmask64 columns,
                         const ShuffleTable& table) {
  const __m512i levels = _mm512_maskz_loadu_epi8(columns, from);
  __mmask64 selected = columns;
  if (mask) {
    const __m512i bytes = _mm512_maskz_loadu_epi8(columns, mask);
    selected = _mm512_test_epi8_mask(bytes, bytes);
  }
  const __m512i results = _mm512_mask_blend_epi8(selected, levels, Mapped(table, levels));
  _mm512_mask_storeu_epi8(to, columns, results);
}

void MapU8(const PointViews& views, const ByteTable& given) {
  const ShuffleTable table = ShuffleTableOf(given.entries);
  const int64_t width = views.result.width;
  const int64_t grouped = width & ~int64_t{63};
  const __mmask64 remaining = (uint64_t{1} << (width - grouped)) - 1;
  for (int64_t y = 0; y < views.result.height; y++) {
    const auto* from = views.first.Row<const uint8_t>(y);
    auto* to = views.result.Row<uint8_t>(y);
    if (const uint8_t* mask = views.mask.Row(y)) {
      for (int64_t x = 0; x < grouped; x += 64) {
        MapGroup(from + x, to + x, mask + x, ~uint64_t{0}, table);
      }
      if (remaining != 0) {
        MapGroup(from + grouped, to + grouped, mask + grouped, remaining, table);
      }
    } else {
      for (int64_t x = 0; x < grouped; x += 64) {
        _mm512_storeu_si512(to + x, Mapped(table, _mm512_loadu_si512(from + x)));
      }
      if (remaining != 0) MapGroup(from + grouped, to + grouped, nullptr, remaining, table);
    }
  }
}

#elif defined(ZEL_LEVEL_v3)

ZEL_INLINE __m256i Load(const uint8_t* at) {
  return _mm256_loadu_si256(reinterpret_cast<const __m256i*>(at));
}

ZEL_INLINE void Store(uint8_t* at, __m256i bytes) {
  _mm256_storeu_si256(reinterpret_cast<__m256i*>(at), bytes);
}

void MapU8(const PointViews& views, const ByteTable& given) {
  const ShuffleTable table = ShuffleTableOf(given.entries);
  const int64_t width = views.result.width;
  const int64_t grouped = width & ~int64_t{31};
  for (int64_t y = 0; y < views.result.height; y++) {
    const auto* from = views.first.Row<const uint8_t>(y);
    auto* to = views.result.Row<uint8_t>(y);
    const uint8_t* mask = views.mask.Row(y);
    if (mask) {
      for (int64_t x = 0; x < grouped; x += 32) {
        const __m256i levels = Load(from + x);
        const __m256i skipped = _mm256_cmpeq_epi8(Load(mask + x), _mm256_setzero_si256());
        Store(to + x, _mm256_blendv_epi8(Mapped(table, levels), levels, skipped));
      }
    } else {
      for (int64_t x = 0; x < grouped; x += 32) Store(to + x, Mapped(table, Load(from + x)));
    }
    MapPixels(from, to, mask, grouped, width, given.entries);
  }
}

#else

void MapU8(const PointViews& views, const ByteTable& table) {
  for (int64_t y = 0; y < views.result.height; y++) {
    MapPixels(views.first.Row<const uint8_t>(y), views.result.Row<uint8_t>(y), views.mask.Row(y), 0,
              views.result.width, table.entries);
  }
}

#endif

#if defined(ZEL_VECTORS) && defined(__SSE2__)

// Pixels come and go in groups, so that the table's own loads are the bound.
constexpr int64_t WORD_GROUP = 8;

ZEL_INLINE __m128i MappedFour(const uint16_t* from, const uint16_t* table) {
  uint64_t levels = 0;
  std::memcpy(&levels, from, sizeof levels);
  __m128i results = _mm_cvtsi32_si128(table[levels & 0xFFFF]);
  results = _mm_insert_epi16(results, table[(levels >> 16) & 0xFFFF], 1);
  results = _mm_insert_epi16(results, table[(levels >> 32) & 0xFFFF], 2);
  return _mm_insert_epi16(results, table[levels >> 48], 3);
}

ZEL_INLINE void MapWords(const uint16_t* from, uint16_t* to, const uint16_t* table) {
  const __m128i results = _mm_unpacklo_epi64(MappedFour(from, table), MappedFour(from + 4, table));
  _mm_storeu_si128(reinterpret_cast<__m128i*>(to), results);
}

#else

constexpr int64_t WORD_GROUP = 1;

ZEL_INLINE void MapWords(const uint16_t* from, uint16_t* to, const uint16_t* table) {
  *to = table[*from];
}

#endif

void MapI16(const PointViews& views, const WordTable& given) {
  const uint16_t* table = given.entries;
  const int64_t width = views.result.width;
  for (int64_t y = 0; y < views.result.height; y++) {
    const auto* from = views.first.Row<const uint16_t>(y);
    auto* to = views.result.Row<uint16_t>(y);
    const uint8_t* mask = views.mask.Row(y);
    const int64_t grouped = mask ? 0 : width & ~(WORD_GROUP - 1);
    for (int64_t x = 0; x < grouped; x += WORD_GROUP) MapWords(from + x, to + x, table);
    MapPixels(from, to, mask, grouped, width, table);
  }
}

// The class numbers of a group of pixels are worked out side by side before the values are fetched.
constexpr int32_t GROUP = 128;

void CurveSgl(const PointViews& views, const ClassCurve& curve) {
  const double first = curve.first;
  const double classWidth = curve.width;
  const double lastClass = curve.classes - 1;
  const float rangeMin = curve.rangeMin;
  const float rangeMax = curve.rangeMax;
  for (int64_t y = 0; y < views.result.height; y++) {
    const auto* from = views.first.Row<const float>(y);
    auto* to = views.result.Row<float>(y);
    const uint8_t* mask = views.mask.Row(y);
    for (int32_t x = 0; x < views.result.width; x += GROUP) {
      const int32_t size = views.result.width - x < GROUP ? views.result.width - x : GROUP;
      float pixels[GROUP];
      int32_t classes[GROUP];
      uint32_t inside[GROUP];
      for (int32_t i = 0; i < size; i++) {
        const float pixel = from[x + i];
        pixels[i] = pixel;
        double position = (static_cast<double>(pixel) - first) / classWidth;
        position = position > 0.0 ? position : 0.0;  // NaN too
        position = position < lastClass ? position : lastClass;
        classes[i] = static_cast<int32_t>(position);
        const uint32_t above = pixel >= rangeMin ? ~0u : 0;
        const uint32_t below = pixel <= rangeMax ? ~0u : 0;
        inside[i] = above & below;
      }
      for (int32_t i = 0; i < size; i++) {
        const auto value = std::bit_cast<uint32_t>(curve.values[classes[i]]) & inside[i];
        to[x + i] = !mask || mask[x + i] != 0 ? std::bit_cast<float>(value) : pixels[i];
      }
    }
  }
}

}  // namespace

extern const LookupRows lookupRows = {
    .mapU8 = &MapU8,
    .mapI16 = &MapI16,
    .curveSgl = &CurveSgl,
};

}  // namespace zel::ZEL_LEVEL
