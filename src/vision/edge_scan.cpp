// The double-window gradient and the edges that it shows.
#include "vision/edge_scan.h"

#include <algorithm>
#include <bit>
#include <cmath>

#include "core/numbers.h"

namespace zel {
namespace {

// Along an axis that both points share the coordinate is exact.
float Between(int32_t from, int32_t to, float part) {
  const auto first = static_cast<float>(from);
  if (from == to) return first;
  return first + (static_cast<float>(to) - first) * part;
}

constexpr int64_t FLOAT_INTEGERS = 1 << 24;  // up to here floats hold every whole number

bool HasPositiveBits(float value) {
  return std::bit_cast<int32_t>(value) > 0;
}

}  // namespace

PointFloat PointAt(const PointInt* points, int64_t count, float position) {
  const float whole = std::floor(position);
  const auto k = static_cast<int64_t>(whole);
  if (k >= count - 1) {
    return {static_cast<float>(points[count - 1].x), static_cast<float>(points[count - 1].y)};
  }
  const float part = position - whole;
  return {Between(points[k].x, points[k + 1].x, part), Between(points[k].y, points[k + 1].y, part)};
}

Gradient::Gradient(const float* values, int64_t count, int64_t width, int64_t gap)
    : rule_(values, count, width),
      before_(rule_, values),
      after_(rule_, values + gap + width + 1),
      first_(width + 1 + (gap + 1) / 2),
      last_(first_ + count - (gap + width + 1) - width) {}

void Gradient::Advance() {
  former_ = value_;
  index_++;
  if (index_ > first_ && index_ <= last_) {
    before_.Slide();
    after_.Slide();
  }
  value_ = index_ < first_ || index_ > last_ ? 0.0f : Difference();
}

int64_t Gradient::SkipSmaller(float limit, int64_t most) {
  int64_t skipped = 0;
  while (skipped < most && std::fabs(value_) < limit) {
    const bool slides = index_ >= first_ && index_ < last_;
    if (slides && before_.IsExact()) {
      skipped += SkipExactly(limit, std::min(most - skipped, last_ - index_));
    } else {
      Advance();
      skipped++;
    }
  }
  return skipped;
}

// At least once; both windows stay on the signal.
int64_t Gradient::SkipExactly(float limit, int64_t most) {
  ExactWindow before = before_.Exact();
  ExactWindow after = after_.Exact();
  float former;
  float value = value_;
  int64_t skipped = 0;
  do {
    before.Slide();
    after.Slide();
    former = value;
    value = after.Value() - before.Value();
    skipped++;
  } while (skipped < most && std::fabs(value) < limit);
  before_.GoOnFrom(before);
  after_.GoOnFrom(after);
  former_ = former;
  value_ = value;
  index_ += skipped;
  return skipped;
}

EdgeScan::Sizes EdgeScan::SizesOf(const PathSignal& signal, const EdgeRule& rule) {
  const int64_t count = signal.count();
  // A size as long as the signal fits nowhere, and neither does a longer one.
  const auto limited = [&](int64_t size) {
    return size >= count ? count : std::min(size * signal.factor(), count);
  };
  const int64_t width = limited(rule.width < 1 ? 2 : rule.width);
  const int64_t gap = limited(std::max(rule.gap, 0));
  if (gap + 2 * width >= count) return {};
  return {count, width, gap, std::min(count + gap - 2 * width, count)};
}

EdgeScan::EdgeScan(const PathSignal& signal, const EdgeRule& rule, const PointInt* points,
                   int64_t pointCount)
    : EdgeScan(signal, rule, SizesOf(signal, rule), points, pointCount) {}

EdgeScan::EdgeScan(const PathSignal& signal, const EdgeRule& rule, const Sizes& sizes,
                   const PointInt* points, int64_t pointCount)
    : gradient_(signal.values(), sizes.count, sizes.width, sizes.gap),
      steps_(sizes.steps),
      factor_(static_cast<double>(signal.factor())),
      width_(static_cast<double>(static_cast<float>(sizes.width))),
      threshold_(rule.threshold * sizes.width),
      surelyBelow_(static_cast<float>(std::clamp<int64_t>(threshold_, 0, FLOAT_INTEGERS))),
      points_(points),
      pointCount_(pointCount) {}

// A size below a whole number is below it when it is cut, too. Infinite differences are below any
// threshold above 0.
bool EdgeScan::IsBelow() const {
  if (std::fabs(gradient_.value()) < surelyBelow_) return true;
  return CutLow<int64_t>(static_cast<double>(std::fabs(gradient_.value()))) < threshold_;
}

bool EdgeScan::GoesOn(bool rising) const {
  const float value = gradient_.value();
  const bool hasTurned = rising ? value < 0.0f : value > 0.0f;
  return std::fabs(value) >= static_cast<float>(threshold_) && !hasTurned;
}

void EdgeScan::Step() {
  index_++;
  gradient_.Advance();
}

// A rising edge has the contrast of its place, cut to a whole difference, and a falling one that of
// the place before it. Kept: thresholds in the field are set by them.
ScannedEdge EdgeScan::EdgeHere(bool rising) const {
  const double size =
      static_cast<double>(std::fabs(rising ? gradient_.value() : gradient_.former()));
  const double difference = rising ? static_cast<double>(CutLow<int64_t>(size)) : size;
  const auto position = static_cast<float>(static_cast<double>(index_) / factor_);
  return {position, static_cast<float>(difference / width_), rising ? EDGE_RISING : EDGE_FALLING,
          PointAt(points_, pointCount_, position)};
}

bool EdgeScan::Next(ScannedEdge* edge) {
  while (index_ < steps_ && IsBelow()) {
    Step();
    index_ += gradient_.SkipSmaller(surelyBelow_, steps_ - index_);
  }
  if (index_ >= steps_) return false;
  const bool rising = HasPositiveBits(gradient_.value());
  // A falling edge on the last step is none.
  if (!rising && index_ + 1 >= steps_) {
    index_ = steps_;
    return false;
  }
  *edge = EdgeHere(rising);
  const bool lasts = rising || GoesOn(rising);
  Step();
  while (lasts && index_ < steps_ && GoesOn(rising)) Step();
  return true;
}

}  // namespace zel
