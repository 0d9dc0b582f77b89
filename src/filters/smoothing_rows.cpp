// Row routines of conditional smoothing: sums of windows, their means, and what becomes of a pixel.
#include "filters/smoothing_rows.h"

#include <cmath>
#include <cstdint>

#include "core/numbers.h"
#include "filters/window_sums.h"

namespace zel::ZEL_LEVEL {
namespace {

template <class Pixel, class Sum>
void ColumnsAdd(const void* row, void* columnSums, int64_t count) {
  const auto* pixels = static_cast<const Pixel*>(row);
  auto* __restrict sums = static_cast<Sum*>(columnSums);
  for (int64_t x = 0; x < count; x++) sums[x] = static_cast<Sum>(sums[x] + pixels[x]);
}

template <class Pixel, class Sum>
void ColumnsSlide(const void* entering, const void* leaving, void* columnSums, int64_t count) {
  const auto* in = static_cast<const Pixel*>(entering);
  const auto* out = static_cast<const Pixel*>(leaving);
  auto* __restrict sums = static_cast<Sum*>(columnSums);
  for (int64_t x = 0; x < count; x++) sums[x] = static_cast<Sum>(sums[x] + (in[x] - out[x]));
}

ZEL_INLINE uint16_t HighHalf(uint16_t a, uint16_t b) {
  return static_cast<uint16_t>((uint32_t{a} * b) >> 16);
}

// What becomes of a pixel in sums of 16 bits. The sum and the bit between the products keep the
// compiler from joining them into wider ones.
struct WordMean {
  uint16_t reciprocal, power, share, wholes;
  explicit WordMean(const SmoothingRule& rule)
      : reciprocal(rule.reciprocal), power(rule.power), share(rule.share), wholes(rule.wholes) {}

  ZEL_INLINE uint8_t operator()(uint16_t windowSum, uint8_t pixel) const {
    const uint16_t c = pixel;
    const uint16_t quotient = HighHalf(static_cast<uint16_t>(windowSum - c), reciprocal);
    const uint16_t m = HighHalf(static_cast<uint16_t>(quotient + quotient), power);
    const auto scale = static_cast<uint16_t>(m | static_cast<uint16_t>(m == 0));
    const auto limit = static_cast<uint16_t>(HighHalf(scale, share) + (scale & wholes));
    const auto distance = static_cast<uint16_t>(m > c ? m - c : c - m);
    return static_cast<uint8_t>(distance > limit ? m : c);
  }
};

// ... and of 32 bits. Sums have less than 2^31, means less than 2^15: the quotient in single
// precision is at most one off, which its rest tells.
struct LongMean {
  int32_t neighbours, toleranceHigh, toleranceLow, toleranceShift;
  float reciprocal;
  explicit LongMean(const SmoothingRule& rule)
      : neighbours(static_cast<int32_t>(rule.neighbours)),
        toleranceHigh(rule.toleranceHigh),
        toleranceLow(rule.toleranceLow),
        toleranceShift(rule.toleranceShift),
        reciprocal(1.0f / static_cast<float>(rule.neighbours)) {}

  template <class Pixel>
  ZEL_INLINE Pixel operator()(int32_t windowSum, Pixel pixel) const {
    const int32_t c = pixel;
    const int32_t sum = windowSum - c;
    const int32_t size = sum < 0 ? -sum : sum;
    auto quotient = static_cast<int32_t>(static_cast<float>(size) * reciprocal);
    const int32_t rest = size - quotient * neighbours;
    quotient += static_cast<int32_t>(rest >= neighbours);
    quotient -= static_cast<int32_t>(rest < 0);
    const int32_t m = sum < 0 ? -quotient : quotient;
    const int32_t scale = m > 1 ? m : 1;
    const int32_t limit =
        (scale * toleranceHigh + ((scale * toleranceLow) >> TOLERANCE_HALF_BITS)) >> toleranceShift;
    const int32_t distance = 100 * (m > c ? m - c : c - m);
    return static_cast<Pixel>(((distance > limit) & (m >= 0)) ? m : c);
  }
};

// ... by the rule as it is stated, for floats too.
ZEL_INLINE bool StandsOut(double mean, double pixel, double tolerance) {
  const double distance = std::fabs((mean - pixel) * 100.0);
  return (mean == 0.0 ? distance : distance / mean) > tolerance;
}

struct ExactMean {
  int64_t neighbours;
  double tolerance;
  explicit ExactMean(const SmoothingRule& rule)
      : neighbours(rule.neighbours), tolerance(rule.tolerance) {}

  template <class Pixel>
  ZEL_INLINE Pixel operator()(int64_t windowSum, Pixel pixel) const {
    const int64_t mean = (windowSum - pixel) / neighbours;
    const bool replaced =
        StandsOut(static_cast<double>(mean), static_cast<double>(pixel), tolerance);
    return static_cast<Pixel>(replaced ? mean : pixel);
  }
};

template <class Pixel, class Sum, class Mean>
void SmoothedRow(const void* columnSums, void* memory, const void* centre, void* to, int64_t width,
                 const SmoothingRule& rule) {
  const Mean mean(rule);
  const Sum* sums = WindowSums(static_cast<const Sum*>(columnSums), static_cast<Sum*>(memory),
                               rule.columns, width);
  const auto* pixels = static_cast<const Pixel*>(centre);
  auto* __restrict results = static_cast<Pixel*>(to);
  for (int64_t x = 0; x < width; x++) results[x] = mean(sums[x], pixels[x]);
}

template <class Pixel, class Sum, class Mean>
constexpr SlidingMean SLIDING_MEAN = {
    .sumBytes = sizeof(Sum),
    .add = &ColumnsAdd<Pixel, Sum>,
    .slide = &ColumnsSlide<Pixel, Sum>,
    .row = &SmoothedRow<Pixel, Sum, Mean>,
};

// Sums of floats are rounded, so each window is summed by itself, in the order of its pixels. What
// goes side by side is windows.
void SmoothedFloats(const void* const* rows, void* to, int32_t width, const SmoothingRule& rule) {
  constexpr int64_t block = 256;
  double sums[block];
  const int32_t columns = rule.columns;
  const int32_t windowRows = rule.rows;
  const int32_t left = (columns - 1) / 2;
  const int32_t above = (windowRows - 1) / 2;
  const auto neighbours = static_cast<double>(rule.neighbours);
  const double tolerance = rule.tolerance;
  for (int64_t first = 0; first < width; first += block) {
    const int64_t count = width - first < block ? width - first : block;
    for (int64_t x = 0; x < count; x++) sums[x] = 0.0;
    for (int32_t j = 0; j < windowRows; j++) {
      for (int32_t i = 0; i < columns; i++) {
        if (j == above && i == left) continue;
        const float* pixels = static_cast<const float*>(rows[j]) + first + i - left;
        for (int64_t x = 0; x < count; x++) sums[x] += static_cast<double>(pixels[x]);
      }
    }
    const float* pixels = static_cast<const float*>(rows[above]) + first;
    float* __restrict results = static_cast<float*>(to) + first;
    for (int64_t x = 0; x < count; x++) {
      const double mean = sums[x] / neighbours;
      const bool replaced = StandsOut(mean, static_cast<double>(pixels[x]), tolerance);
      results[x] = replaced ? static_cast<float>(mean) : pixels[x];
    }
  }
}

}  // namespace

extern const SmoothingRows smoothingRows = {
    .u8Words = SLIDING_MEAN<uint8_t, uint16_t, WordMean>,
    .u8 = SLIDING_MEAN<uint8_t, int32_t, LongMean>,
    .i16 = SLIDING_MEAN<int16_t, int32_t, LongMean>,
    .u8Long = SLIDING_MEAN<uint8_t, int64_t, ExactMean>,
    .i16Long = SLIDING_MEAN<int16_t, int64_t, ExactMean>,
    .sgl = &SmoothedFloats,
};

}  // namespace zel::ZEL_LEVEL
