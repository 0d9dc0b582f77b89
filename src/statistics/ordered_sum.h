// Sums of floats that come out as if the terms were added one by one, several at a time.
//
// An addition rounds its result to a multiple of the sum's last place. While the sum stays between
// two powers of two that place is the same, so that each addition changes the sum by its term
// rounded to a multiple of that place, whatever the sum is: only a term that lies exactly between
// two multiples goes by what is there. So a block of terms is rounded one by one and added up in
// any order, which is exact, unless it could take the sum past a power of two or has a term half
// way: such blocks are to be added plainly.
#pragma once

#include "engine/vectors.h"

namespace zel::ZEL_LEVEL {
namespace {

constexpr int32_t SUM_BLOCK = 128;  // terms

class OrderedSum {
 public:
  ZEL_INLINE explicit OrderedSum(double sum) : sum_(sum) { FindZone(); }
  ZEL_INLINE double sum() const { return sum_; }

  // Takes the next terms of a block. Nothing is added before Commit.
  ZEL_INLINE void Take(const Doubles& terms) {
    const Doubles rounded = (terms + anchor_) - anchor_;
    const Doubles rest = (Doubles)((DoubleMasks)(terms - rounded) & INT64_MAX);
    change_ += rounded;
    rest_ = rest > rest_ ? rest : rest_;
  }

  // Adds the SUM_BLOCK terms that were taken, none of which is larger than `largest` in magnitude.
  // False, and nothing added, when they have to be added plainly.
  ZEL_INLINE bool Commit(double largest) {
    double change = 0.0;
    double rest = 0.0;
    for (int32_t lane = 0; lane < DOUBLE_LANES; lane++) {
      change += change_[lane];
      rest = rest_[lane] > rest ? rest_[lane] : rest;
    }
    change_ = Doubles{};
    rest_ = Doubles{};
    const double reach = largest * (SUM_BLOCK * 1.0625) + slack_;
    const double size = sum_ < 0.0 ? -sum_ : sum_;
    if (!(size - reach > low_ && size + reach < 2.0 * low_ && rest < half_)) return false;
    sum_ += change;
    return true;
  }

  ZEL_INLINE void AddPlain(double term) { sum_ += term; }

  // To be called after terms were added plainly, before more are taken.
  ZEL_INLINE void FindZone() {
    // Beyond these the last places or the reach could leave the range of doubles.
    constexpr double smallest = 0x1p-900;
    constexpr double greatest = 0x1p900;
    const double size = sum_ < 0.0 ? -sum_ : sum_;
    uint64_t bits = 0;
    std::memcpy(&bits, &size, sizeof(bits));
    bits &= 0x7FF0000000000000u;
    std::memcpy(&low_, &bits, sizeof(low_));
    if (!(size >= smallest && size <= greatest)) low_ = greatest;  // no sum lies above
    slack_ = low_ * (SUM_BLOCK * 0x1p-52);                         // SUM_BLOCK last places
    half_ = low_ * 0x1p-53;                                        // of the last place
    anchor_ = Doubles{} + 1.5 * low_;  // its last place is that of the sum
  }

 private:
  double sum_;
  double low_ = 0.0;  // the power of two below the sum
  double slack_ = 0.0;
  double half_ = 0.0;
  Doubles anchor_{};
  Doubles change_{};  // of the block so far
  Doubles rest_{};    // the most that a term was rounded by
};

}  // namespace
}  // namespace zel::ZEL_LEVEL
