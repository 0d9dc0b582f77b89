// Row routine of the colour lookup: all bytes of a pixel through their tables at once.
#include "colour/colour_lookup_rows.h"

#include "engine/byte_tables.h"

namespace zel::ZEL_LEVEL {
namespace {

ZEL_INLINE RGBValue Mapped(RGBValue pixel, const ChannelTables& tables) {
  return (pixel & 0xFF000000u) | uint32_t{tables.red[(pixel >> 16) & 0xFF]} << 16 |
         uint32_t{tables.green[(pixel >> 8) & 0xFF]} << 8 | tables.blue[pixel & 0xFF];
}

#if defined(ZEL_LEVEL_v4)

constexpr int64_t GROUP = 16;
constexpr __mmask64 BLUE_BYTES = 0x1111111111111111;
constexpr __mmask64 GREEN_BYTES = BLUE_BYTES << 1;
constexpr __mmask64 RED_BYTES = BLUE_BYTES << 2;

struct ShuffleTables {
  ShuffleTable red, green, blue;
};

ShuffleTables ShuffleTablesOf(const ChannelTables& tables) {
  return {ShuffleTableOf(tables.red), ShuffleTableOf(tables.green), ShuffleTableOf(tables.blue)};
}

ZEL_INLINE void MapGroup(const RGBValue* from, RGBValue* to, const ShuffleTables& tables) {
  const __m512i pixels = _mm512_loadu_si512(from);
  __m512i results = _mm512_mask_blend_epi8(BLUE_BYTES, pixels, Mapped(tables.blue, pixels));
  results = _mm512_mask_blend_epi8(GREEN_BYTES, results, Mapped(tables.green, pixels));
  results = _mm512_mask_blend_epi8(RED_BYTES, results, Mapped(tables.red, pixels));
  _mm512_storeu_si512(to, results);
}

#else

constexpr int64_t GROUP = INT64_MAX;
struct ShuffleTables {};
ShuffleTables ShuffleTablesOf(const ChannelTables&) {
  return {};
}
ZEL_INLINE void MapGroup(const RGBValue*, RGBValue*, const ShuffleTables&) {}

#endif

void Rgb(const RGBValue* from, RGBValue* to, int64_t count, const ChannelTables& given) {
  const ChannelTables tables = given;
  const ShuffleTables shuffles = ShuffleTablesOf(tables);
  const int64_t grouped = count / GROUP * GROUP;
  for (int64_t x = 0; x < grouped; x += GROUP) MapGroup(from + x, to + x, shuffles);
  for (int64_t x = grouped; x < count; x++) to[x] = Mapped(from[x], tables);
}

}  // namespace

extern const ColourLookupRows colourLookupRows = {
    .rgb = &Rgb,
};

}  // namespace zel::ZEL_LEVEL
