// Row routines of the thresholds: one range, and several.
#include "point/threshold_rows.h"

#include <bit>
#include <cstring>
#include <type_traits>

namespace zel::ZEL_LEVEL {
namespace {

// Pixels go through several ranges in groups that stay in the nearest cache. A last, smaller one is
// filled up to whole vectors.
constexpr int32_t GROUP = 512;
constexpr int32_t FILLED = 32;

template <class T, bool keep>
ZEL_INLINE void IntegerRange(const PointViews& views, T lowest, T highest, T replacement) {
  using Unsigned = std::make_unsigned_t<T>;
  const auto low = static_cast<Unsigned>(lowest);
  const auto value = static_cast<Unsigned>(replacement);
  const auto span = static_cast<Unsigned>(highest - lowest);
  MapSamePlace<Unsigned, Unsigned>(views, [=](Unsigned pixel) {
    // One unsigned comparison tests both ends.
    const bool inside = static_cast<Unsigned>(pixel - low) <= span;
    return inside ? (keep ? pixel : value) : Unsigned{0};
  });
}

template <class T>
void RangeOfIntegers(const PointViews& views, const ThresholdRange<T>& range) {
  if (range.low > range.high) {
    IntegerRange<T, false>(views, T{0}, T{0}, T{0});
  } else if (range.keep) {
    IntegerRange<T, true>(views, range.low, range.high, T{0});
  } else {
    IntegerRange<T, false>(views, range.low, range.high, range.value);
  }
}

void RangeSgl(const PointViews& views, const ThresholdRange<float>& range) {
  const float low = range.low;
  const float high = range.high;
  const uint32_t value = range.keep ? 0 : std::bit_cast<uint32_t>(range.value);
  const uint32_t kept = range.keep ? ~0u : 0;
  MapSamePlace<float, float>(views, [=](float pixel) {
    const uint32_t above = pixel >= low ? ~0u : 0;
    const uint32_t below = pixel <= high ? ~0u : 0;
    const uint32_t result = (std::bit_cast<uint32_t>(pixel) & kept) | value;
    return std::bit_cast<float>(result & above & below);
  });
}

// One more range over a group of pixels: those within it take its value, whatever they had.
ZEL_INLINE void RangeOverGroup(const int16_t* pixels, int16_t* results, int32_t filled,
                               const ThresholdRange<int16_t>& range) {
  const int16_t low = range.low;
  const int16_t high = range.high;
  const auto kept = static_cast<int16_t>(range.keep ? -1 : 0);
  const auto value = static_cast<int16_t>(range.keep ? 0 : range.value);
#pragma GCC ivdep
  for (int32_t i = 0; i < filled; i++) {
    const int16_t pixel = pixels[i];
    const auto taken = static_cast<int16_t>(-((pixel >= low) & (pixel <= high)));
    results[i] = static_cast<int16_t>((((pixel & kept) | value) & taken) | (results[i] & ~taken));
  }
}

// The same for pixels that have no result but zero yet. All in bits, since a result may be a NaN or
// a negative zero.
ZEL_INLINE void RangeOverGroup(const float* pixels, uint32_t* results, int32_t filled,
                               const ThresholdClass& range) {
  const float low = range.rangeMin;
  const float high = range.rangeMax;
  const uint32_t value = range.useNew != 0 ? std::bit_cast<uint32_t>(range.newValue) : 0;
  const uint32_t kept = range.useNew != 0 ? 0 : ~0u;
#pragma GCC ivdep
  for (int32_t i = 0; i < filled; i++) {
    const float pixel = pixels[i];
    const uint32_t above = pixel >= low ? ~0u : 0;
    const uint32_t below = pixel <= high ? ~0u : 0;
    const uint32_t searching = (results[i] << 1) == 0 ? ~0u : 0;
    const uint32_t taken = above & below & searching;
    const uint32_t result = (std::bit_cast<uint32_t>(pixel) & kept) | value;
    results[i] = (result & taken) | (results[i] & ~taken);
  }
}

// Result: what results of pixels are computed as, of the same size.
template <class Pixel, class Result, class Ranges>
void SeveralRanges(const PointViews& views, const Ranges& given) {
  const int64_t width = views.result.width;
  for (int64_t y = 0; y < views.result.height; y++) {
    const auto* from = views.first.Row<const Pixel>(y);
    auto* to = views.result.Row<Pixel>(y);
    for (int64_t x = 0; x < width; x += GROUP) {
      // Of the truncated number g++ knows no bound: with one it joined two passes over a group in
      // place of using vectors, at four times the cost.
      const int32_t size = width - x < GROUP ? static_cast<int32_t>(width - x) : GROUP;
      const int32_t filled = (size + FILLED - 1) & -FILLED;
      Pixel pixels[GROUP] = {};
      Result results[GROUP] = {};
      std::memcpy(pixels, from + x, static_cast<size_t>(size) * sizeof(Pixel));
      for (int32_t i = 0; i < given.count; i++) {
        RangeOverGroup(pixels, results, filled, given.ranges[i]);
      }
      std::memcpy(to + x, results, static_cast<size_t>(size) * sizeof(Pixel));
    }
  }
}

}  // namespace

extern const ThresholdRows thresholdRows = {
    .rangeU8 = &RangeOfIntegers<uint8_t>,
    .rangeI16 = &RangeOfIntegers<int16_t>,
    .rangeSgl = &RangeSgl,
    .rangesI16 = &SeveralRanges<int16_t, int16_t, WordRanges>,
    .rangesSgl = &SeveralRanges<float, uint32_t, FloatRanges>,
};

}  // namespace zel::ZEL_LEVEL
