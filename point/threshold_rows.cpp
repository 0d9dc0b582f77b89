// Row loops of the thresholds: one range, and several.
#include "point/threshold_rows.h"

#include <bit>
#include <type_traits>

namespace zel::ZEL_LEVEL {
namespace {

// Pixels go through the classes in groups that stay in registers or the nearest cache.
constexpr int32_t GROUP = 128;

template <class T, bool keep>
ZEL_INLINE void IntegerRange(const LookupOperation& operation, T lowest, T highest, T replacement) {
  using Unsigned = std::make_unsigned_t<T>;
  const auto low = static_cast<Unsigned>(lowest);
  const auto value = static_cast<Unsigned>(replacement);
  const auto span = static_cast<Unsigned>(highest - lowest);
  const int64_t width = operation.width;
  for (int64_t y = 0; y < operation.height; y++) {
    const auto* from = operation.SourceRow<Unsigned>(y);
    auto* to = operation.DestinationRow<Unsigned>(y);
#pragma GCC ivdep
    for (int64_t x = 0; x < width; x++) {
      const Unsigned pixel = from[x];
      // One unsigned comparison tests both ends.
      const bool inside = static_cast<Unsigned>(pixel - low) <= span;
      to[x] = inside ? (keep ? pixel : value) : Unsigned{0};
    }
  }
}

template <class T>
void RangeOfIntegers(const LookupOperation& operation, const ThresholdRange<T>& range) {
  if (range.low > range.high) {
    IntegerRange<T, false>(operation, T{0}, T{0}, T{0});
  } else if (range.keep) {
    IntegerRange<T, true>(operation, range.low, range.high, T{0});
  } else {
    IntegerRange<T, false>(operation, range.low, range.high, range.value);
  }
}

void RangeSgl(const LookupOperation& operation, const ThresholdRange<float>& range) {
  const float low = range.low;
  const float high = range.high;
  const uint32_t value = range.keep ? 0 : std::bit_cast<uint32_t>(range.value);
  const uint32_t kept = range.keep ? ~0u : 0;
  const int64_t width = operation.width;
  for (int64_t y = 0; y < operation.height; y++) {
    const auto* from = operation.SourceRow<float>(y);
    auto* to = operation.DestinationRow<float>(y);
#pragma GCC ivdep
    for (int64_t x = 0; x < width; x++) {
      const float pixel = from[x];
      const uint32_t above = pixel >= low ? ~0u : 0;
      const uint32_t below = pixel <= high ? ~0u : 0;
      const uint32_t result = (std::bit_cast<uint32_t>(pixel) & kept) | value;
      to[x] = std::bit_cast<float>(result & above & below);
    }
  }
}

void RangesI16(const LookupOperation& operation, const ThresholdRange<int16_t>* ranges,
               int32_t count) {
  for (int64_t y = 0; y < operation.height; y++) {
    const auto* from = operation.SourceRow<int16_t>(y);
    auto* to = operation.DestinationRow<int16_t>(y);
    for (int32_t x = 0; x < operation.width; x += GROUP) {
      const int32_t size = operation.width - x < GROUP ? operation.width - x : GROUP;
      int16_t pixels[GROUP];
      int16_t results[GROUP];
      for (int32_t i = 0; i < size; i++) {
        pixels[i] = from[x + i];
        results[i] = 0;
      }
      for (int32_t c = 0; c < count; c++) {
        const ThresholdRange<int16_t> range = ranges[c];
        const auto kept = static_cast<int16_t>(range.keep ? -1 : 0);
        const auto value = static_cast<int16_t>(range.keep ? 0 : range.value);
        for (int32_t i = 0; i < size; i++) {
          const int16_t pixel = pixels[i];
          const bool inside = (pixel >= range.low) & (pixel <= range.high);
          const auto result = static_cast<int16_t>((pixel & kept) | value);
          results[i] = inside ? result : results[i];
        }
      }
      for (int32_t i = 0; i < size; i++) to[x + i] = results[i];
    }
  }
}

void ClassesSgl(const LookupOperation& operation, const ThresholdClass* classes, int32_t count) {
  for (int64_t y = 0; y < operation.height; y++) {
    const auto* from = operation.SourceRow<float>(y);
    auto* to = operation.DestinationRow<uint32_t>(y);
    for (int32_t x = 0; x < operation.width; x += GROUP) {
      const int32_t size = operation.width - x < GROUP ? operation.width - x : GROUP;
      float pixels[GROUP];
      uint32_t results[GROUP];
      for (int32_t i = 0; i < size; i++) {
        pixels[i] = from[x + i];
        results[i] = 0;
      }
      for (int32_t c = 0; c < count; c++) {
        const float low = classes[c].rangeMin;
        const float high = classes[c].rangeMax;
        const bool replaces = classes[c].useNew != 0;
        const uint32_t value = replaces ? std::bit_cast<uint32_t>(classes[c].newValue) : 0;
        const uint32_t kept = replaces ? 0 : ~0u;
        for (int32_t i = 0; i < size; i++) {
          const float pixel = pixels[i];
          const uint32_t above = pixel >= low ? ~0u : 0;
          const uint32_t below = pixel <= high ? ~0u : 0;
          // The search is over once any bit but the sign is set.
          const uint32_t searching = (results[i] << 1) == 0 ? ~0u : 0;
          const uint32_t result = (std::bit_cast<uint32_t>(pixel) & kept) | value;
          const uint32_t taken = above & below & searching;
          results[i] = (result & taken) | (results[i] & ~taken);
        }
      }
      for (int32_t i = 0; i < size; i++) to[x + i] = results[i];
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
};

}  // namespace zel::ZEL_LEVEL
