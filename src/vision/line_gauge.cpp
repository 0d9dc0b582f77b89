// ZEL_LineGauge: distances along a line and its companions, which follow a part that moves.
#include <algorithm>
#include <cmath>

#include "core/numbers.h"
#include "utilities/lines.h"
#include "vision/edge_scan.h"
#include "vision/point_distance.h"

namespace zel {
namespace {

constexpr double RADIANS = 0.017453293;  // of a degree

// Where a part was and where it is now.
class Movement {
 public:
  Movement(PointInt reference, float referenceAngle, PointInt now, float nowAngle)
      : referenceX_(reference.x), referenceY_(reference.y), nowX_(now.x), nowY_(now.y) {
    const double angle =
        (static_cast<double>(referenceAngle) - static_cast<double>(nowAngle)) * RADIANS;
    sine_ = std::sin(angle);
    cosine_ = std::cos(angle);
    moves_ = angle != 0.0 || reference.x != now.x || reference.y != now.y;
  }

  // Turns a line about the old reference and carries it to the new one. Ends are cut to whole
  // pixels, so that a quarter turn can lose one; kept.
  WideLine Apply(const WideLine& line) const {
    if (!moves_) return line;
    return {MovedX(line.startX, line.startY), MovedY(line.startX, line.startY),
            MovedX(line.endX, line.endY), MovedY(line.endX, line.endY)};
  }

 private:
  int64_t MovedX(int64_t x, int64_t y) const {
    const auto dx = static_cast<double>(x - referenceX_);
    const auto dy = static_cast<double>(y - referenceY_);
    return nowX_ + CutLow<int64_t>(sine_ * dy + cosine_ * dx);
  }
  int64_t MovedY(int64_t x, int64_t y) const {
    const auto dx = static_cast<double>(x - referenceX_);
    const auto dy = static_cast<double>(y - referenceY_);
    return nowY_ + CutLow<int64_t>(cosine_ * dy - sine_ * dx);
  }

  int64_t referenceX_, referenceY_, nowX_, nowY_;
  double sine_, cosine_;
  bool moves_;
};

// The main line and those that lie beside it, as a caller gives them.
struct GaugeLines {
  KernelLine main;
  const PointInt* extras;  // two a line: what is added to both ends of the main line
  int64_t extraCount;      // of lines

  int64_t count() const { return 1 + extraCount; }
  WideLine operator[](int64_t index) const {
    WideLine line{main.startX, main.startY, main.endX, main.endY};
    if (index == 0) return line;
    const PointInt* extra = extras + 2 * (index - 1);
    line.startX += extra[0].x;
    line.startY += extra[0].y;
    line.endX += extra[1].x;
    line.endY += extra[1].y;
    return line;
  }
};

struct GaugeRule {
  int32_t method, oversampling;
  EdgeRule edges;
  int32_t mode;
};

// The points of one line after the other.
using LinePoints = LocalArray<PointInt, 256>;

void PointsTake(const KernelLine& line, int64_t count, PointInt* points) {
  LineSteps steps(line);
  points[0] = {line.startX, line.startY};
  for (int64_t i = 1; i < count; i++) {
    const LinePoint step = steps.Next();
    points[i] = {points[i - 1].x + step.x, points[i - 1].y + step.y};
  }
}

float LengthOf(const KernelLine& line) {
  const double dx = static_cast<double>(line.endX) - line.startX;
  const double dy = static_cast<double>(line.endY) - line.startY;
  return static_cast<float>(std::sqrt(dx * dx + dy * dy));
}

// What a mode measures between the edges and the ends of a line. 0 without edges, and for a mode
// that is none.
float GaugeMeasure(EdgeScan* scan, int32_t mode, const PointInt& start, const PointInt& end) {
  ScannedEdge first{};
  if (!scan->Next(&first)) return 0.0f;
  if (mode == GAUGE_EDGE_TO_POINT) return DistanceOf(end, first.at);
  if (mode == GAUGE_POINT_TO_EDGE) return DistanceOf(start, first.at);
  if (mode != GAUGE_EDGE_TO_EDGE) return 0.0f;
  ScannedEdge last = first;
  for (ScannedEdge edge{}; scan->Next(&edge);) last = edge;
  return DistanceOf(first.at, last.at);
}

class LineGauge {
 public:
  LineGauge(const Image& image, const GaugeLines& lines, const Movement& movement,
            const GaugeRule& rule)
      : view_(ViewOf(image)),
        width_(image.width),
        height_(image.height),
        lines_(lines),
        movement_(movement),
        rule_(rule) {}

  // Work memory for the longest line, and how many lines there are before the first one that lies
  // outside the image. Nothing fails from then on.
  Status Prepare() {
    int64_t longest = 0;
    KernelLine line{};
    for (; visible_ < lines_.count() && Clip(visible_, &line); visible_++) {
      longest = std::max(longest, LineSteps(line).points());
    }
    if (visible_ == 0 || rule_.mode == GAUGE_POINT_TO_POINT) return STATUS_OK;
    const Status status = signal_.Prepare(rule_.method, rule_.oversampling, longest);
    if (status != STATUS_OK) return status;
    return points_.Allocate(longest) ? STATUS_OK : STATUS_MEMORY_FULL;
  }

  void Measure(float* results) {
    for (int64_t i = 0; i < visible_; i++) {
      KernelLine line{};
      Clip(i, &line);
      results[i] = rule_.mode == GAUGE_POINT_TO_POINT ? LengthOf(line) : MeasureEdges(line);
    }
  }

 private:
  bool Clip(int64_t index, KernelLine* clipped) const {
    return LineClipToSize(width_, height_, movement_.Apply(lines_[index]), clipped);
  }

  float MeasureEdges(const KernelLine& line) {
    const int64_t count = LineSteps(line).points();
    PointsTake(line, count, points_.data());
    signal_.Take(view_, points_.data(), count);
    EdgeScan scan(signal_, rule_.edges, points_.data(), count);
    return GaugeMeasure(&scan, rule_.mode, points_[0], points_[count - 1]);
  }

  PixelView view_;
  int32_t width_, height_;
  const GaugeLines& lines_;
  const Movement& movement_;
  const GaugeRule& rule_;
  int64_t visible_ = 0;
  PathSignal signal_;
  LinePoints points_;
};

Status MeasureLines(ImageRef reference, const GaugeLines& lines, const Movement& movement,
                    const GaugeRule& rule, float* results) {
  if (!results) return STATUS_NULL_POINTER;
  Image* image = nullptr;
  Status status = ImageLookup(reference, &image);
  if (status != STATUS_OK) return status;
  LineGauge gauge(*image, lines, movement, rule);
  status = gauge.Prepare();
  if (status == STATUS_OK) gauge.Measure(results);
  return status;
}

}  // namespace
}  // namespace zel

int32_t ZEL_LineGauge(ImageRef image, int32_t x1, int32_t y1, int32_t x2, int32_t y2,
                      int32_t method, int32_t oversampling, int32_t threshold, int32_t edgeWidth,
                      int32_t gap, int32_t mode, const PointInt* extraLines, int32_t extraCount,
                      int32_t referenceX, int32_t referenceY, float referenceAngle, int32_t newX,
                      int32_t newY, float newAngle, float* results) {
  const int64_t extras = extraLines && extraCount > 0 ? extraCount / 2 : 0;
  const zel::GaugeLines lines{{x1, y1, x2, y2}, extraLines, extras};
  const zel::Movement movement({referenceX, referenceY}, referenceAngle, {newX, newY}, newAngle);
  const zel::GaugeRule rule{method, oversampling, {threshold, edgeWidth, gap}, mode};
  return ZEL_ProcessError("ZEL_LineGauge",
                          zel::MeasureLines(image, lines, movement, rule, results));
}
