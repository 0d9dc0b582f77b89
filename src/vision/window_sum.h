// Sums of a window that slides along a signal, each rounded to a float, the same bits as if every
// sum was computed afresh in doubles, from left to right.
#pragma once

#include <cstdint>

namespace zel {

// How the windows of a signal are summed.
class WindowSumRule {
 public:
  WindowSumRule(const float* signal, int64_t count, int64_t width);

 private:
  friend class WindowSum;

  enum class Way {
    EXACT,     // no sum of doubles is rounded, so its terms may come and go in any order
    AFRESH,    // narrow windows
    BRACKETED  // sums in whole units, with a margin for how doubles would have been rounded
  };
  __extension__ using Wide = __int128;

  // How many windows there are from this one on.
  int64_t WindowsFrom(const float* window) const { return end_ - window - width_ + 1; }
  float Fresh(const float* window) const;
  // The sums of so many windows one after the other, which are there.
  static constexpr int32_t BLOCK = 16;
  void FreshBlock(const float* window, float* sums) const;
  Wide UnitsOf(float value) const;
  float FloatOf(Wide units) const;

  const float* end_;  // of the signal
  int64_t width_;
  Way way_;
  int32_t unit_ = 0;  // BRACKETED: the exponent of a unit
  Wide margin_ = 0;   // ... in units
  // Sums afresh are had for doubtful windows until so many terms are added: a signal of hundreds of
  // millions of values under a window as wide would else take hours. From then on the sum that is
  // rounded once stands for the one of doubles.
  mutable int64_t termsLeft_ = int64_t{1} << 27;
};

// A window whose sum is exact, in few words that fit into registers.
struct ExactWindow {
  const float* first;
  int64_t width;
  double sum;

  void Slide() {
    sum += static_cast<double>(first[width]);
    sum -= static_cast<double>(*first++);
  }
  float Value() const { return static_cast<float>(sum); }
};

// The sum of one window.
class WindowSum {
 public:
  WindowSum(const WindowSumRule& rule, const float* window);

  bool IsExact() const { return rule_.way_ == Way::EXACT; }
  // Where the sum is exact: the window, and a place to go on from.
  ExactWindow Exact() const { return {window_, rule_.width_, sum_}; }
  void GoOnFrom(const ExactWindow& window) {
    window_ = window.first;
    sum_ = window.sum;
  }

  float Value() const {
    if (rule_.way_ == Way::EXACT) return static_cast<float>(sum_);
    return rule_.way_ == Way::AFRESH ? ahead_[window_ - aheadFrom_] : ValueOfUnits();
  }
  // On by one sample.
  void Slide() {
    if (rule_.way_ == Way::EXACT) {
      sum_ += static_cast<double>(window_[rule_.width_]);
      sum_ -= static_cast<double>(window_[0]);
      window_++;
    } else if (rule_.way_ == Way::AFRESH) {
      window_++;
      if (window_ - aheadFrom_ == WindowSumRule::BLOCK) SumAhead();
    } else {
      SlideInUnits();
    }
  }

 private:
  using Way = WindowSumRule::Way;

  float ValueOfUnits() const;
  void SlideInUnits();
  void SumAhead();
  void Enter(float value);
  void Leave(float value);
  // What is not finite is counted instead of added.
  int64_t* CounterOf(float value);

  const WindowSumRule& rule_;
  const float* window_;
  double sum_ = 0.0;
  WindowSumRule::Wide units_ = 0;
  int64_t nans_ = 0, infinities_ = 0, negativeInfinities_ = 0;
  // AFRESH: the sums of the next windows, which are independent of each other, and the window that
  // the first one of them belongs to.
  float ahead_[WindowSumRule::BLOCK] = {};
  const float* aheadFrom_;
};

}  // namespace zel
