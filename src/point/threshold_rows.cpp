// Row loops of the thresholds: one range, and several.
#include "point/threshold_rows.h"

#include <bit>
#include <cstring>
#include <type_traits>

namespace zel::ZEL_LEVEL {
namespace {

// Pixels go through the classes in groups that stay in the nearest cache. A last, smaller one is
// filled up to whole vectors.
constexpr int32_t GROUP = 512;
constexpr int32_t FILLED = 32;

ZEL_INLINE int32_t GroupSize(int64_t width, int64_t x) {
  return width - x < GROUP ? static_cast<int32_t>(width - x) : GROUP;
}

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

// Settles a group of pixels by one more range: those within it take its value, whatever they had.
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

void RangesI16(const PointViews& views, const WordRanges& given) {
  const int64_t width = views.result.width;
  for (int64_t y = 0; y < views.result.height; y++) {
    const auto* from = views.first.Row<const int16_t>(y);
    auto* to = views.result.Row<int16_t>(y);
    for (int64_t x = 0; x < width; x += GROUP) {
      const int32_t size = GroupSize(width, x);
      const int32_t filled = (size + FILLED - 1) & -FILLED;
      int16_t pixels[GROUP] = {};
      int16_t results[GROUP] = {};
      std::memcpy(pixels, from + x, static_cast<size_t>(size) * sizeof(int16_t));
      for (int32_t c = 0; c < given.count; c++) {
        RangeOverGroup(pixels, results, filled, given.ranges[c]);
      }
      std::memcpy(to + x, results, static_cast<size_t>(size) * sizeof(int16_t));
    }
  }
}

// The same by one more class, for pixels that have no result but zero yet. All in bits, since a
// result may be a NaN or a negative zero.
ZEL_INLINE void ClassOverGroup(const float* pixels, uint32_t* results, int32_t filled,
                               const ThresholdClass& given) {
  const float low = given.rangeMin;
  const float high = given.rangeMax;
  const uint32_t value = given.useNew != 0 ? std::bit_cast<uint32_t>(given.newValue) : 0;
  const uint32_t kept = given.useNew != 0 ? 0 : ~0u;
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

void ClassesSgl(const PointViews& views, const FloatClasses& given) {
  const int64_t width = views.result.width;
  for (int64_t y = 0; y < views.result.height; y++) {
    const auto* from = views.first.Row<const float>(y);
    auto* to = views.result.Row<float>(y);
    for (int64_t x = 0; x < width; x += GROUP) {
      const int32_t size = GroupSize(width, x);
      const int32_t filled = (size + FILLED - 1) & -FILLED;
      float pixels[GROUP] = {};
      uint32_t results[GROUP] = {};
      std::memcpy(pixels, from + x, static_cast<size_t>(size) * sizeof(float));
      for (int32_t c = 0; c < given.count; c++) {
        ClassOverGroup(pixels, results, filled, given.classes[c]);
      }
      std::memcpy(to + x, results, static_cast<size_t>(size) * sizeof(float));
    }
  }
}

// Level by level for all splits, not split by split: the additions for one split keep their order,
// and those of neighbouring splits run side by side.
void Deviations(const SplitDeviations& splits) {
  const int32_t high = splits.high;
  const double* meansBelow = splits.meansBelow;
  const double* meansFrom = splits.meansFrom;
  double* sumsBelow = splits.sumsBelow;
  double* sumsFrom = splits.sumsFrom;
  for (int32_t split = splits.low; split <= high; split++) sumsBelow[split] = sumsFrom[split] = 0.0;
  for (int32_t level = splits.low; level <= high; level++) {
    const double count = splits.counts[level];
    if (count == 0.0) continue;
#pragma GCC ivdep
    for (int32_t split = splits.low; split <= level; split++) {
      sumsFrom[split] += __builtin_fabs(level - meansFrom[split]) * count;
    }
#pragma GCC ivdep
    for (int32_t split = level + 1; split <= high; split++) {
      sumsBelow[split] += __builtin_fabs(level - meansBelow[split]) * count;
    }
  }
}

}  // namespace

extern const ThresholdRows thresholdRows = {
    .rangeU8 = &RangeOfIntegers<uint8_t>,
    .rangeI16 = &RangeOfIntegers<int16_t>,
    .rangeSgl = &RangeSgl,
    .rangesI16 = &RangesI16,
    .classesSgl = &ClassesSgl,
    .deviations = &Deviations,
};

}  // namespace zel::ZEL_LEVEL
