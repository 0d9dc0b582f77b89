// Row routines that weight frequencies: plain loops.
#include "frequency/spectrum_filters_rows.h"

#include "core/numbers.h"

namespace zel::ZEL_LEVEL {
namespace {

template <int32_t parts, class Distance>
ZEL_INLINE void Weigh(const float* from, float* to, int64_t first, int64_t end, double factor,
                      Distance distance) {
#pragma GCC ivdep
  for (int64_t x = first; x < end; x++) {
    // A weight is rounded, and so is each product with it.
    const auto weight = static_cast<float>(factor * static_cast<double>(distance(x)));
    for (int32_t part = 0; part < parts; part++) {
      to[parts * x + part] = from[parts * x + part] * weight;
    }
  }
}

// Both distances fall on the one side of the middle and rise on the other, or the reverse.
template <int32_t parts>
void FromMiddle(const WeightedRow& row) {
  const int64_t width = row.width;
  const auto middle = static_cast<int32_t>(width / 2);
  const auto factor = static_cast<double>(row.factor);
  Weigh<parts>(row.from, row.to, 0, middle, factor,
               [middle](int64_t x) { return middle - static_cast<int32_t>(x); });
  Weigh<parts>(row.from, row.to, middle, width, factor,
               [middle](int64_t x) { return static_cast<int32_t>(x) - middle; });
}

template <int32_t parts>
void FromSides(const WeightedRow& row) {
  const int64_t width = row.width;
  const int64_t middle = width / 2;
  const auto last = static_cast<int32_t>(width - 1);
  const auto factor = static_cast<double>(row.factor);
  Weigh<parts>(row.from, row.to, 0, middle, factor,
               [](int64_t x) { return static_cast<int32_t>(x); });
  Weigh<parts>(row.from, row.to, middle, width, factor,
               [last](int64_t x) { return last - static_cast<int32_t>(x); });
}

}  // namespace

extern const SpectrumFilterRows spectrumFilterRows = {
    .fromMiddle = {.one = &FromMiddle<1>, .two = &FromMiddle<2>},
    .fromSides = {.one = &FromSides<1>, .two = &FromSides<2>},
};

}  // namespace zel::ZEL_LEVEL
