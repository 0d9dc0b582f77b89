// Edges along a path, by the difference of two windows side by side that slide along its signal.
#pragma once

#include <cstdint>

#include "vision/path_signal.h"
#include "vision/window_sum.h"

namespace zel {

struct EdgeRule {
  int32_t threshold;  // gray levels
  int32_t width;      // samples of each window; below 1 counts as 2
  int32_t gap;        // samples between them; below 0 counts as 0
};

struct ScannedEdge {
  float position;  // along the path, in samples
  float contrast;  // gray levels
  int32_t polarity;
  PointFloat at;
};
constexpr int32_t EDGE_RISING = 1;
constexpr int32_t EDGE_FALLING = -1;

// A point between two of a path; the last one at the path's end and beyond.
PointFloat PointAt(const PointInt* points, int64_t count, float position);

// The difference of the windows at each value of a signal, 0 where either is not on it.
class Gradient {
 public:
  Gradient(const float* values, int64_t count, int64_t width, int64_t gap);

  float value() const { return value_; }
  float former() const { return former_; }
  // The difference at the next value; the first call gives that at the second one.
  void Advance();
  // Goes on as long as differences are smaller than a limit, at most so many times; tells how
  // often.
  int64_t SkipSmaller(float limit, int64_t most);

 private:
  int64_t SkipExactly(float limit, int64_t most);
  float Difference() const { return after_.Value() - before_.Value(); }

  WindowSumRule rule_;
  WindowSum before_, after_;
  int64_t index_ = 0;
  int64_t first_, last_;  // where both windows are on the signal
  float value_ = 0.0f;
  float former_ = 0.0f;
};

// The edges of a signal one after the other.
class EdgeScan {
 public:
  EdgeScan(const PathSignal& signal, const EdgeRule& rule, const PointInt* points,
           int64_t pointCount);

  // False when there are no more.
  bool Next(ScannedEdge* edge);

 private:
  // The sizes in values of the signal; all 0 where windows and gap do not fit on it.
  struct Sizes {
    int64_t count, width, gap, steps;
  };
  static Sizes SizesOf(const PathSignal& signal, const EdgeRule& rule);
  EdgeScan(const PathSignal& signal, const EdgeRule& rule, const Sizes& sizes,
           const PointInt* points, int64_t pointCount);

  bool IsBelow() const;
  bool GoesOn(bool rising) const;
  void Step();
  ScannedEdge EdgeHere(bool rising) const;

  Gradient gradient_;
  int64_t steps_;
  int64_t index_ = 0;
  double factor_;
  double width_;  // as a float has it
  int64_t threshold_;
  float surelyBelow_;  // no difference that is smaller reaches the threshold
  const PointInt* points_;
  int64_t pointCount_;
};

}  // namespace zel
