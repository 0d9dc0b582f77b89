// Row routines of the colour threshold: all bytes of a pixel tested at once, and one component
// after the other.
#include "colour/colour_threshold_rows.h"

#include "engine/vectors.h"
#include "orlune_ptk/types.h"

namespace zel::ZEL_LEVEL {
namespace {

// One unsigned comparison tests both ends.
ZEL_INLINE bool IsWithin(uint32_t component, const ByteRange& range) {
  return static_cast<uint8_t>(component - range.low) <= range.span;
}

#if defined(ZEL_VECTORS)

// The ends of the ranges at the places of the bytes in each pixel. The fourth byte is always in.
struct PackedRanges {
  Bytes low, span;
  Ints value;
};

PackedRanges PackedOf(const ColourRanges& rule) {
  PackedRanges packed{};
  const auto fill = [](uint32_t bytes) { return (Bytes)(Ints{} + static_cast<int32_t>(bytes)); };
  const auto& [red, green, blue] = rule.ranges;
  packed.low = fill((uint32_t{red.low} << 16) | (uint32_t{green.low} << 8) | blue.low);
  packed.span =
      fill(0xFF000000u | (uint32_t{red.span} << 16) | (uint32_t{green.span} << 8) | blue.span);
  packed.value = Ints{} + rule.value;
  return packed;
}

ZEL_INLINE Ints ResultOf(const RGBValue* from, const PackedRanges& packed) {
  const Bytes within = (Bytes)(Load<Bytes>(from) - packed.low <= packed.span);
  return ((Ints)within == -1) & packed.value;
}

// As many pixels as a vector has bytes.
ZEL_INLINE void Group(const RGBValue* from, uint8_t* to, const PackedRanges& packed) {
  const Words first = PackSaturated(ResultOf(from, packed), ResultOf(from + FLOAT_LANES, packed));
  const Words second = PackSaturated(ResultOf(from + 2 * FLOAT_LANES, packed),
                                     ResultOf(from + 3 * FLOAT_LANES, packed));
  Store(to, PackSaturated(first, second));
}

constexpr int64_t GROUP = VECTOR_BYTES;

#else

struct PackedRanges {};
PackedRanges PackedOf(const ColourRanges&) {
  return {};
}
ZEL_INLINE void Group(const RGBValue*, uint8_t*, const PackedRanges&) {}
constexpr int64_t GROUP = INT64_MAX;

#endif

void Rgb(const PointViews& views, const ColourRanges& given) {
  const ColourRanges rule = given;
  const PackedRanges packed = PackedOf(rule);
  const int64_t width = views.result.width;
  const int64_t grouped = width / GROUP * GROUP;
  for (int64_t y = 0; y < views.result.height; y++) {
    const auto* from = views.first.Row<const RGBValue>(y);
    auto* to = views.result.Row<uint8_t>(y);
    for (int64_t x = 0; x < grouped; x += GROUP) Group(from + x, to + x, packed);
    for (int64_t x = grouped; x < width; x++) {
      const RGBValue pixel = from[x];
      const bool within = IsWithin(pixel >> 16, rule.ranges[0]) &
                          IsWithin(pixel >> 8, rule.ranges[1]) & IsWithin(pixel, rule.ranges[2]);
      to[x] = within ? rule.value : uint8_t{0};
    }
  }
}

void Restrict(const uint8_t* component, const ByteRange& range, uint8_t* result, int64_t count) {
  const uint8_t low = range.low;
  const uint8_t span = range.span;
  const uint8_t others = range.isOutside ? 255 : 0;
#pragma GCC ivdep
  for (int64_t i = 0; i < count; i++) {
    const uint8_t within = static_cast<uint8_t>(component[i] - low) <= span ? 255 : 0;
    result[i] = static_cast<uint8_t>(result[i] & (within ^ others));
  }
}

}  // namespace

extern const ColourThresholdRows colourThresholdRows = {
    .rgb = &Rgb,
    .restrict = &Restrict,
};

}  // namespace zel::ZEL_LEVEL
