// Sums, squares and extremes of float pixels, a block at a time.
#pragma once

#include "statistics/ordered_sum.h"
#include "statistics/pixel_sums.h"

namespace zel::ZEL_LEVEL {
namespace {

// Runs from this length on gain by blocks.
constexpr int32_t LONG_RUN = 2 * SUM_BLOCK;

// Adds a run of pixels as PixelSumsAdd does one after the other.
class FloatSums {
 public:
  ZEL_INLINE explicit FloatSums(PixelSums* sums)
      : sums_(sums), sum_(sums->sum), squares_(sums->squares) {}

  // SUM_BLOCK pixels; with MASKED those whose entry in `keep` is 0, not -1, are left out.
  template <bool MASKED>
  ZEL_INLINE void AddBlock(const float* pixels, const int32_t* keep) {
    // Two doubles at a time gain nothing over one after the other.
    if constexpr (DOUBLE_LANES > 2) {
      const Lanes none = Lanes{} + EXTREME_NONE;
      LaneMasks largest{};
#pragma GCC unroll 2
      for (int32_t x = 0; x < SUM_BLOCK; x += DOUBLE_LANES) {
        const auto pixel = Load<Lanes>(pixels + x);
        LaneMasks mask{};
        if constexpr (MASKED) mask = Load<LaneMasks>(keep + x);
        const Lanes low = !MASKED || mask != 0 ? pixel : none;
        const Lanes high = !MASKED || mask != 0 ? pixel : -none;
        min_ = low < min_ ? low : min_;
        max_ = high > max_ ? high : max_;
        const LaneMasks bits = MASKED ? (LaneMasks)pixel & mask : (LaneMasks)pixel;
        // The bits of floats without sign are in the order of their values.
        const LaneMasks size = bits & INT32_MAX;
        largest = size > largest ? size : largest;
        const Doubles value = __builtin_convertvector((Lanes)bits, Doubles);
        sum_.Take(value);
        squares_.Take(value * value);
      }
      int32_t bits = 0;
      for (int32_t lane = 0; lane < DOUBLE_LANES; lane++) {
        bits = largest[lane] > bits ? largest[lane] : bits;
      }
      float bound;
      std::memcpy(&bound, &bits, sizeof(bound));
      const double wide = static_cast<double>(bound);
      const bool summed = sum_.Commit(wide);
      const bool squared = squares_.Commit(wide * wide);
      if (!summed) AddPlain<MASKED>(pixels, keep, &sum_, [](double value) { return value; });
      if (!squared) {
        AddPlain<MASKED>(pixels, keep, &squares_, [](double value) { return value * value; });
      }
    } else {
      AddFew<MASKED>(pixels, keep, SUM_BLOCK);
    }
  }

  // The same for any number of pixels, one after the other.
  template <bool MASKED>
  ZEL_INLINE void AddFew(const float* pixels, const int32_t* keep, int32_t count) {
    float min = EXTREME_NONE;
    float max = -EXTREME_NONE;
    for (int32_t x = 0; x < count; x++) {
      if (MASKED && keep[x] == 0) continue;
      const double value = static_cast<double>(pixels[x]);
      sum_.AddPlain(value);
      squares_.AddPlain(value * value);
      min = pixels[x] < min ? pixels[x] : min;
      max = pixels[x] > max ? pixels[x] : max;
    }
    min_[0] = min < min_[0] ? min : min_[0];
    max_[0] = max > max_[0] ? max : max_[0];
    sum_.FindZone();
    squares_.FindZone();
  }

  // Stores the sums, but for the count, of a run of pixels. isKept(x) tells whether one took part:
  // of several zeros the first one is the extreme, sign and all.
  template <class IsKept>
  ZEL_INLINE void Finish(const float* pixels, const IsKept& isKept) {
    float min = EXTREME_NONE;
    float max = -EXTREME_NONE;
    for (int32_t lane = 0; lane < DOUBLE_LANES; lane++) {
      min = min_[lane] < min ? min_[lane] : min;
      max = max_[lane] > max ? max_[lane] : max;
    }
    const auto firstLike = [&](float extreme) {
      if (extreme != 0.0f) return extreme;
      int32_t x = 0;
      while (pixels[x] != 0.0f || !isKept(x)) x++;
      return pixels[x];
    };
    if (min < sums_->min) sums_->min = firstLike(min);
    if (max > sums_->max) sums_->max = firstLike(max);
    sums_->sum = sum_.sum();
    sums_->squares = squares_.sum();
  }

 private:
  // As many floats as a vector has doubles.
  using Lanes = float __attribute__((vector_size(VECTOR_BYTES / 2)));
  using LaneMasks = int32_t __attribute__((vector_size(VECTOR_BYTES / 2)));

  template <bool MASKED, class Term>
  ZEL_INLINE static void AddPlain(const float* pixels, const int32_t* keep, OrderedSum* sum,
                                  const Term& term) {
    for (int32_t x = 0; x < SUM_BLOCK; x++) {
      if (!MASKED || keep[x] != 0) sum->AddPlain(term(static_cast<double>(pixels[x])));
    }
    sum->FindZone();
  }

  PixelSums* sums_;
  OrderedSum sum_;
  OrderedSum squares_;
  Lanes min_ = Lanes{} + EXTREME_NONE;
  Lanes max_ = Lanes{} - EXTREME_NONE;
};

}  // namespace
}  // namespace zel::ZEL_LEVEL
