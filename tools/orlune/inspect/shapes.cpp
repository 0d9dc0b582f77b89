// Shapes of particles.
#include "orlune/inspect/shapes.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace front {
namespace {

using std::numbers::pi;

double Degrees(double radians) {
  return radians * 180 / pi;
}

// Of a direction with y downwards, counter-clockwise, 0 up to and without 180.
double DirectionAngle(double x, double y) {
  double angle = Degrees(std::atan2(-y, x));
  if (angle < 0) angle += 180;
  return angle >= 180 ? 0 : angle + 0.0;  // never a negative zero
}

// The sum of squares of 0 to n - 1.
Int128 SquaresBelow(int64_t n) {
  return static_cast<Int128>(n - 1) * n * (2 * n - 1) / 6;
}

struct Point {
  double x, y;
};

int64_t Turn(const Corner& a, const Corner& b, const Corner& c) {
  return (b.x - a.x) * (c.y - a.y) - (b.y - a.y) * (c.x - a.x);
}

// What the hull spans along and across one of its sides.
struct Span {
  double along, across;
};
Span SpanAt(const std::vector<Point>& points, const Point& direction) {
  double lowAlong = INFINITY, highAlong = -INFINITY, lowAcross = INFINITY, highAcross = -INFINITY;
  for (const Point& p : points) {
    const double along = p.x * direction.x + p.y * direction.y;
    const double across = p.x * direction.y - p.y * direction.x;
    lowAlong = std::min(lowAlong, along);
    highAlong = std::max(highAlong, along);
    lowAcross = std::min(lowAcross, across);
    highAcross = std::max(highAcross, across);
  }
  return {highAlong - lowAlong, highAcross - lowAcross};
}

void MeasureLargest(const std::vector<Point>& points, HullMeasures* measures) {
  double largest = 0;
  for (size_t i = 0; i < points.size(); ++i) {
    for (size_t j = i + 1; j < points.size(); ++j) {
      const double x = points[j].x - points[i].x, y = points[j].y - points[i].y;
      const double squared = x * x + y * y;
      if (squared <= largest) continue;
      largest = squared;
      measures->feretMaximumAngle = DirectionAngle(x, y);
    }
  }
  measures->feretMaximum = std::sqrt(largest);
}

// The smallest extent and the smallest rectangle lie at a side of the hull.
void MeasureSides(const std::vector<Point>& points, HullMeasures* measures) {
  measures->feretMinimum = INFINITY;
  double smallest = INFINITY;
  for (size_t i = 0; i < points.size(); ++i) {
    const Point& from = points[i];
    const Point& to = points[(i + 1) % points.size()];
    const double length = std::hypot(to.x - from.x, to.y - from.y);
    const Point direction{(to.x - from.x) / length, (to.y - from.y) / length};
    measures->perimeter += length;
    measures->area += (from.x * to.y - to.x * from.y) / 2;
    const Span span = SpanAt(points, direction);
    if (span.across < measures->feretMinimum) {
      measures->feretMinimum = span.across;
      measures->feretMinimumAngle = DirectionAngle(direction.y, -direction.x);
    }
    if (span.along * span.across < smallest) {
      smallest = span.along * span.across;
      const bool alongIsLong = span.along >= span.across;
      measures->boxLength = std::max(span.along, span.across);
      measures->boxWidth = std::min(span.along, span.across);
      measures->boxAngle = alongIsLong ? DirectionAngle(direction.x, direction.y)
                                       : DirectionAngle(direction.y, -direction.x);
    }
  }
}

}  // namespace

void Moments::Add(const PixelRun& run) {
  const int64_t length = run.end - run.start;
  const int64_t columns = (int64_t{run.start} + run.end - 1) * length / 2;
  area += length;
  sumX += columns;
  sumY += length * run.y;
  sumXX += SquaresBelow(run.end) - SquaresBelow(run.start);
  sumYY += static_cast<Int128>(run.y) * run.y * length;
  sumXY += static_cast<Int128>(columns) * run.y;
}

double Moments::Central(Int128 squares, int64_t a, int64_t b) const {
  const Int128 times = squares * area - static_cast<Int128>(a) * b;
  return static_cast<double>(times) / static_cast<double>(area);
}

double AxisAngle(double xx, double yy, double xy) {
  if (xx == yy && xy == 0) return 0;
  double angle = Degrees(std::atan2(-2 * xy, xx - yy) / 2);
  if (angle < 0) angle += 180;
  return angle >= 180 ? 0 : angle + 0.0;
}

Ellipse EllipseOf(const Moments& moments, const Scale& scale) {
  const double area = static_cast<double>(moments.area);
  const double sx = static_cast<double>(scale.x), sy = static_cast<double>(scale.y);
  const double xx = (moments.InertiaXX() / area + 1.0 / 12) * sx * sx;
  const double yy = (moments.InertiaYY() / area + 1.0 / 12) * sy * sy;
  const double xy = moments.InertiaXY() / area * sx * sy;
  const double middle = (xx + yy) / 2;
  const double half = std::hypot((xx - yy) / 2, xy);
  Ellipse ellipse;
  ellipse.major = 4 * std::sqrt(middle + half);
  ellipse.minor = 4 * std::sqrt(std::max(0.0, middle - half));
  ellipse.angle = AxisAngle(xx, yy, xy);
  const double ratio = ellipse.minor / ellipse.major;
  ellipse.eccentricity = std::sqrt(std::max(0.0, 1 - ratio * ratio));
  return ellipse;
}

std::vector<Corner> ConvexHull(std::span<const PixelRun> runs) {
  // The first and the last corner of each row of corners, from the top: left ones go down on one
  // side of the hull, right ones on the other.
  std::vector<Corner> left, right;
  const auto extend = [](std::vector<Corner>* side, Corner corner, int64_t sign) {
    if (!side->empty() && side->back().y == corner.y) {
      if ((corner.x - side->back().x) * sign <= 0) return;
      side->pop_back();
    }
    while (side->size() >= 2 && Turn((*side)[side->size() - 2], side->back(), corner) * sign <= 0) {
      side->pop_back();
    }
    side->push_back(corner);
  };
  for (size_t i = 0; i < runs.size();) {
    const int64_t y = runs[i].y;
    const int64_t start = runs[i].start;
    int64_t end = runs[i].end;
    for (; i < runs.size() && runs[i].y == y; ++i) end = std::max<int64_t>(end, runs[i].end);
    for (const int64_t edge : {y, y + 1}) {
      extend(&left, {start, edge}, -1);
      extend(&right, {end, edge}, 1);
    }
  }
  left.insert(left.end(), right.rbegin(), right.rend());
  return left;
}

HullMeasures MeasureHull(const std::vector<Corner>& hull, const Scale& scale) {
  std::vector<Point> points;
  // From the first corner on, so that no figures are lost far from the origin.
  for (const Corner& corner : hull) {
    points.push_back(
        {static_cast<double>(corner.x - hull.front().x) * static_cast<double>(scale.x),
         static_cast<double>(corner.y - hull.front().y) * static_cast<double>(scale.y)});
  }
  HullMeasures measures;
  MeasureLargest(points, &measures);
  MeasureSides(points, &measures);
  measures.area = std::abs(measures.area);
  return measures;
}

double Crossings::Perimeter(const Scale& scale) const {
  // Half of all crossings on all lines, by the lines' distance and by the angle between their
  // directions; each start of particle on a line stands for two crossings.
  const double x = static_cast<double>(scale.x), y = static_cast<double>(scale.y);
  const double diagonal = std::atan2(y, x);
  const double diagonalDistance = x * y / std::hypot(x, y);
  const double rows = diagonal * y * static_cast<double>(starts[0]);
  const double columns = (pi / 2 - diagonal) * x * static_cast<double>(starts[2]);
  const double diagonals = pi / 4 * diagonalDistance * static_cast<double>(starts[1] + starts[3]);
  return rows + columns + diagonals;
}

std::vector<Crossings> CountCrossings(const LabelPicture& labels, uint32_t count) {
  std::vector<Crossings> crossings(count);
  for (int32_t y = 0; y < labels.height(); ++y) {
    const uint32_t* above = labels.Row(y - 1);
    const uint32_t* row = labels.Row(y);
    for (int32_t x = 0; x < labels.width(); ++x) {
      const uint32_t label = row[x];
      if (label == 0) continue;
      auto& starts = crossings[label - 1].starts;
      starts[0] += row[x - 1] != label;
      starts[1] += above[x + 1] != label;
      starts[2] += above[x] != label;
      starts[3] += above[x - 1] != label;
    }
  }
  return crossings;
}

}  // namespace front
