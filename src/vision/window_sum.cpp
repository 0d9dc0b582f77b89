// Sliding sums that keep the rounding of fresh ones.
#include "vision/window_sum.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstring>
#include <limits>

namespace zel {
namespace {

constexpr int64_t NARROW = 64;       // windows that are summed afresh in no time
constexpr int32_t DOUBLE_BITS = 53;  // of a significand
// Bits of the largest value in units: with the 31 of a count of terms and a sign they fit 128, and
// reach so far down that what a unit cuts off is below what doubles round off.
constexpr int32_t UNIT_BITS = 95;

// A finite float as a whole number times a power of 2.
struct FloatParts {
  int32_t significand;  // without sign
  int32_t exponent;
};

FloatParts PartsOf(float value) {
  constexpr int32_t fractionBits = 23;
  const auto bits = std::bit_cast<uint32_t>(value);
  const auto field = static_cast<int32_t>(bits >> fractionBits & 0xFF);
  const auto fraction = static_cast<int32_t>(bits & 0x7FFFFF);
  return {field == 0 ? fraction : fraction | 1 << fractionBits, std::max(field, 1) - 150};
}

// The bits from the lowest to the highest that any value of a signal has set.
struct BitRange {
  int32_t low = INT32_MAX;
  int32_t high = INT32_MIN;  // past the highest
  bool isFinite = true;
};

// Whether all values are whole numbers of the 16 bits that pixels have at most.
bool IsOfWholeNumbers(const float* signal, int64_t count) {
  for (int64_t i = 0; i < count; i++) {
    const float value = signal[i];
    if (!(std::fabs(value) <= 32768.0f)) return false;  // NaN among them
    if (static_cast<float>(static_cast<int32_t>(value)) != value) return false;
  }
  return true;
}

// The range by the exponents alone: it reaches as low as the smallest value's last bit, whether
// that is set or not.
BitRange RoughBitsOf(const float* signal, int64_t count) {
  int32_t least = INT32_MAX;
  int32_t most = 0;
  for (int64_t i = 0; i < count; i++) {
    const int32_t bits = std::bit_cast<int32_t>(signal[i]) & INT32_MAX;
    least = std::min(least, bits == 0 ? INT32_MAX : bits);
    most = std::max(most, bits);
  }
  if (most == 0) return {};
  const float largest = std::bit_cast<float>(most);
  if (!std::isfinite(largest)) return {.isFinite = false};
  const FloatParts parts = PartsOf(largest);
  const auto width = std::bit_width(static_cast<uint32_t>(parts.significand));
  return {PartsOf(std::bit_cast<float>(least)).exponent,
          parts.exponent + static_cast<int32_t>(width), true};
}

BitRange BitsOf(const float* signal, int64_t count) {
  if (IsOfWholeNumbers(signal, count)) return {.low = 0, .high = 16, .isFinite = true};
  BitRange range;
  for (int64_t i = 0; i < count; i++) {
    if (signal[i] == 0.0f) continue;
    if (!std::isfinite(signal[i])) {
      range.isFinite = false;
      continue;
    }
    const FloatParts parts = PartsOf(signal[i]);
    const auto significand = static_cast<uint32_t>(parts.significand);
    range.low = std::min(range.low, parts.exponent + std::countr_zero(significand));
    range.high =
        std::max(range.high, parts.exponent + static_cast<int32_t>(std::bit_width(significand)));
  }
  return range;
}

}  // namespace

WindowSumRule::WindowSumRule(const float* signal, int64_t count, int64_t width)
    : end_(signal + count), width_(width), way_(Way::AFRESH) {
  // A sum that slides has one term more for a moment.
  const auto countBits = static_cast<int32_t>(std::bit_width(static_cast<uint64_t>(width)));
  const auto isExact = [&](const BitRange& range) {
    const bool isZero = range.low > range.high;
    return range.isFinite && (isZero || int64_t{range.high} + countBits - range.low <= DOUBLE_BITS);
  };
  if (isExact(RoughBitsOf(signal, count))) {
    way_ = Way::EXACT;
    return;
  }
  const BitRange range = BitsOf(signal, count);
  if (isExact(range)) {
    way_ = Way::EXACT;
  } else if (width > NARROW) {
    way_ = Way::BRACKETED;
    unit_ = range.low > range.high ? 0 : range.high - UNIT_BITS;
    // Each of width additions is off by at most 2^-52 of the sum of all sizes, however doubles are
    // rounded, and each value by what its unit cuts off. Twice that, for the bracket's own
    // rounding.
    margin_ = (Wide{width} * width << (UNIT_BITS - DOUBLE_BITS + 3)) + width;
  }
}

float WindowSumRule::Fresh(const float* window) const {
  double sum = 0.0;
  for (int64_t i = 0; i < width_; i++) sum += static_cast<double>(window[i]);
  return static_cast<float>(sum);
}

// Each window is added up from left to right for itself, but all take a step together.
void WindowSumRule::FreshBlock(const float* window, float* sums) const {
  using FloatPair [[gnu::vector_size(8)]] = float;
  using DoublePair [[gnu::vector_size(16)]] = double;
  constexpr int32_t PAIRS = BLOCK / 2;
  DoublePair all[PAIRS] = {};
  for (int64_t i = 0; i < width_; i++) {
    for (int32_t j = 0; j < PAIRS; j++) {
      FloatPair values;
      std::memcpy(&values, window + i + 2 * j, sizeof values);
      all[j] += __builtin_convertvector(values, DoublePair);
    }
  }
  for (int32_t j = 0; j < BLOCK; j++) sums[j] = static_cast<float>(all[j / 2][j % 2]);
}

WindowSumRule::Wide WindowSumRule::UnitsOf(float value) const {
  const FloatParts parts = PartsOf(value);
  const int32_t shift = parts.exponent - unit_;
  if (shift <= -32) return 0;
  const Wide size =
      shift < 0 ? Wide{parts.significand} >> -shift : Wide{parts.significand} << shift;
  return std::signbit(value) ? -size : size;
}

float WindowSumRule::FloatOf(Wide units) const {
  return static_cast<float>(std::ldexp(static_cast<double>(units), unit_));
}

WindowSum::WindowSum(const WindowSumRule& rule, const float* window)
    : rule_(rule), window_(window), aheadFrom_(window) {
  if (rule.way_ == Way::AFRESH) {
    SumAhead();
    return;
  }
  for (int64_t i = 0; i < rule.width_; i++) Enter(window[i]);
}

// The last windows of a signal, of which there is no whole block, are summed one by one.
void WindowSum::SumAhead() {
  aheadFrom_ = window_;
  const int64_t windows = rule_.WindowsFrom(window_);
  if (windows >= WindowSumRule::BLOCK) {
    rule_.FreshBlock(window_, ahead_);
    return;
  }
  for (int64_t i = 0; i < windows; i++) ahead_[i] = rule_.Fresh(window_ + i);
}

void WindowSum::SlideInUnits() {
  Enter(window_[rule_.width_]);
  Leave(window_[0]);
  window_++;
}

int64_t* WindowSum::CounterOf(float value) {
  if (std::isfinite(value)) return nullptr;
  if (std::isnan(value)) return &nans_;
  return value > 0.0f ? &infinities_ : &negativeInfinities_;
}

void WindowSum::Enter(float value) {
  if (rule_.way_ == Way::EXACT) {
    sum_ += static_cast<double>(value);
  } else if (int64_t* counter = CounterOf(value)) {
    ++*counter;
  } else {
    units_ += rule_.UnitsOf(value);
  }
}

void WindowSum::Leave(float value) {
  if (int64_t* counter = CounterOf(value)) {
    --*counter;
  } else {
    units_ -= rule_.UnitsOf(value);
  }
}

float WindowSum::ValueOfUnits() const {
  if (nans_ != 0 || (infinities_ != 0 && negativeInfinities_ != 0)) {
    return std::numeric_limits<float>::quiet_NaN();
  }
  if (infinities_ != 0) return std::numeric_limits<float>::infinity();
  if (negativeInfinities_ != 0) return -std::numeric_limits<float>::infinity();

  const float low = rule_.FloatOf(units_ - rule_.margin_);
  const float high = rule_.FloatOf(units_ + rule_.margin_);
  if (low == high) return low;
  if (rule_.termsLeft_ <= 0) return rule_.FloatOf(units_);
  rule_.termsLeft_ -= rule_.width_;
  return rule_.Fresh(window_);
}

}  // namespace zel
