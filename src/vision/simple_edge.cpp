// ZEL_SimpleEdge: where gray levels along a path cross a threshold.
#include <algorithm>
#include <cmath>

#include "core/numbers.h"
#include "core/pixel_types.h"
#include "vision/path_signal.h"
#include "vision/result_table.h"

namespace zel {
namespace {

struct Levels {
  int32_t threshold, hysteresis;
};

// Of a share of the range of the samples, cut to whole levels also for floats.
Levels LevelsOfPercent(const float* samples, int64_t count, const Levels& percent) {
  float low = samples[0];
  float high = samples[0];
  for (int64_t i = 1; i < count; i++) {
    if (samples[i] < low) low = samples[i];
    if (samples[i] > high) high = samples[i];
  }
  const double range = static_cast<double>(high) - static_cast<double>(low);
  const auto share = [range](int32_t part) { return std::clamp(part, 0, 100) * range * 0.01; };
  return {CutLow<int32_t>(share(percent.threshold) + static_cast<double>(low)),
          CutLow<int32_t>(share(percent.hysteresis))};
}

// Samples with their points, from the first to the last or the other way.
struct Sequence {
  const float* samples;
  const PointInt* points;
  int64_t count;
  bool isReversed;

  int64_t Index(int64_t i) const { return isReversed ? count - 1 - i : i; }
  double Sample(int64_t i) const { return static_cast<double>(samples[Index(i)]); }
  const PointInt& Point(int64_t i) const { return points[Index(i)]; }
};

PointFloat FloatOf(const PointInt& point) {
  return {static_cast<float>(point.x), static_cast<float>(point.y)};
}

// A row of three equations.
struct Row {
  double a, b, c;
};

double Determinant(const Row& p, const Row& q, const Row& r) {
  return p.a * (q.b * r.c - r.b * q.c) - p.b * (q.a * r.c - r.a * q.c) +
         p.c * (q.a * r.b - r.a * q.b);
}

// c2 t^2 + c1 t + c0
struct Parabola {
  double c2, c1, c0;
};

// Through samples at three distances. False when that has no solution.
bool ParabolaThrough(const double (&t)[3], const double (&s)[3], Parabola* parabola) {
  const double squares[3] = {t[0] * t[0], t[1] * t[1], t[2] * t[2]};
  const auto determinant = [](const double(&a)[3], const double(&b)[3], const double(&c)[3]) {
    return Determinant({a[0], b[0], c[0]}, {a[1], b[1], c[1]}, {a[2], b[2], c[2]});
  };
  const double ones[3] = {1.0, 1.0, 1.0};
  const double whole = determinant(squares, t, ones);
  if (whole == 0.0) return false;
  *parabola = {determinant(s, t, ones) / whole, determinant(squares, s, ones) / whole,
               determinant(squares, t, s) / whole};
  return true;
}

// Where the parabola meets the level from 0 to `last`; the farther one of two places.
bool PlaceOf(const Parabola& parabola, double level, double last, double* place) {
  const auto& [c2, c1, c0] = parabola;
  double roots[2];
  if (c2 != 0.0) {
    const double discriminant = c1 * c1 - 4.0 * c2 * (c0 - level);
    if (discriminant < 0.0) return false;
    // The root whose two terms would cancel comes from the product of both. On a slant line c2 may
    // be nothing but the rounding of distances, and the digits lost would be all of them.
    const double sum = -0.5 * (c1 + std::copysign(std::sqrt(discriminant), c1));
    roots[0] = sum / c2;
    roots[1] = sum == 0.0 ? 0.0 : (c0 - level) / sum;
  } else {
    if (c1 == 0.0) return false;
    roots[0] = roots[1] = -(c0 - level) / c1;
  }
  const auto isGood = [last](double root) { return root >= 0.0 && root <= last; };
  if (!isGood(roots[0]) && !isGood(roots[1])) return false;
  const bool takesSecond = isGood(roots[1]) && (!isGood(roots[0]) || roots[1] > roots[0]);
  *place = roots[takesSecond ? 1 : 0];
  return true;
}

double DistanceOf(const PointInt& a, const PointInt& b) {
  const auto dx = static_cast<double>(int64_t{b.x} - a.x);
  const auto dy = static_cast<double>(int64_t{b.y} - a.y);
  return std::sqrt(dx * dx + dy * dy);
}

// The point from the first towards the second one of three where the parabola through their samples
// meets the level. Points that fall together give none.
bool QuadCross(const Sequence& of, const int64_t (&at)[3], double level, PointFloat* point) {
  const PointInt& start = of.Point(at[0]);
  const PointInt& next = of.Point(at[1]);
  const double t[3] = {0.0, DistanceOf(start, next), DistanceOf(start, of.Point(at[2]))};
  const double s[3] = {of.Sample(at[0]), of.Sample(at[1]), of.Sample(at[2])};
  Parabola parabola{};
  double place = 0.0;
  if (!ParabolaThrough(t, s, &parabola) || !PlaceOf(parabola, level, t[1], &place)) return false;
  const auto along = [&](int32_t from, int32_t to) {
    return static_cast<float>(from + place * (static_cast<double>(int64_t{to} - from) / t[1]));
  };
  *point = {along(start.x, next.x), along(start.y, next.y)};
  return true;
}

struct Crossing {
  int64_t next = -1;  // the first sample on the other side; -1 where there is none
  PointFloat at{-1.0f, -1.0f};
};

PointFloat PlaceBehind(const Sequence& of, int64_t k, double level) {
  PointFloat point{};
  bool isFound = false;
  if (k + 2 < of.count) {
    isFound = QuadCross(of, {k, k + 1, k + 2}, level, &point);
  } else if (k > 0) {
    isFound = QuadCross(of, {k + 1, k, k - 1}, level, &point);
  }
  return isFound ? point : FloatOf(of.Point(k + 1));
}

// The first crossing from `start` on: past the threshold by more than the hysteresis, and placed
// where the threshold itself was passed last before that.
Crossing EdgeCross(const Sequence& of, const Levels& levels, bool subPixel, int64_t start) {
  const double level = levels.threshold;
  const auto high = static_cast<double>(int64_t{levels.threshold} + levels.hysteresis);
  const auto low = static_cast<double>(int64_t{levels.threshold} - levels.hysteresis);
  int64_t first = start;
  while (first < of.count && of.Sample(first) == level) first++;
  if (first >= of.count) return {};

  const bool below = of.Sample(first) < level;
  int64_t j = first;
  while (j < of.count && !(below ? of.Sample(j) > high : of.Sample(j) < low)) j++;
  if (j >= of.count) return {};
  int64_t k = j - 1;
  while (k >= first && !(below ? of.Sample(k) < level : of.Sample(k) > level)) k--;
  if (k < first) return {};
  return {k + 1, subPixel ? PlaceBehind(of, k, level) : FloatOf(of.Point(k + 1))};
}

using PointList = LocalList<PointFloat, 64>;

// False when there is no memory.
bool CrossingsFind(const Sequence& path, int32_t processType, const Levels& levels, bool subPixel,
                   PointList* found) {
  Crossing crossing = EdgeCross(path, levels, subPixel, 0);
  if (crossing.next >= 0 && !found->Append(crossing.at)) return false;
  if (processType == EDGE_FIRST) return true;
  if (processType == EDGE_FIRST_AND_LAST) {
    // A crossing that is the only one is found from both sides. Kept.
    const Sequence reversed{path.samples, path.points, path.count, true};
    crossing = EdgeCross(reversed, levels, subPixel, 0);
    return crossing.next < 0 || found->Append(crossing.at);
  }
  for (int64_t former = 0; crossing.next > former;) {
    former = crossing.next;
    crossing = EdgeCross(path, levels, subPixel, former);
    if (crossing.next > former && !found->Append(crossing.at)) return false;
  }
  return true;
}

struct SimpleEdgeRule {
  int32_t processType;
  bool isPercent;
  Levels levels;
  bool subPixel;
};

Status SimpleEdges(ImageRef reference, const PointInt* points, int32_t pointCount,
                   const SimpleEdgeRule& rule, PointFloat** edges, int32_t* edgeCount) {
  if ((!points && pointCount > 0) || !edges) return STATUS_NULL_POINTER;
  Image* image = nullptr;
  Status status = ImageLookup(reference, &image);
  if (status == STATUS_OK && !TypeIsScalar(image->type)) status = STATUS_BAD_TYPE;
  if (status == STATUS_OK) status = PathImageLookup(reference, &image);
  if (status != STATUS_OK) return status;

  PointList found;
  if (pointCount > 0) {
    LocalArray<float, 1024> samples;
    if (!samples.Allocate(pointCount)) return STATUS_MEMORY_FULL;
    PathSample(ViewOf(*image), points, pointCount, samples.data());
    const Levels levels =
        rule.isPercent ? LevelsOfPercent(samples.data(), pointCount, rule.levels) : rule.levels;
    const Sequence path{samples.data(), points, pointCount, false};
    if (!CrossingsFind(path, rule.processType, levels, rule.subPixel, &found)) {
      return STATUS_MEMORY_FULL;
    }
  }
  WorkArray<PointFloat> table;
  if (!TableMake(&table, found.count())) return STATUS_MEMORY_FULL;
  for (int64_t i = 0; i < found.count(); i++) table.data()[i] = found[i];
  TableHandOver(&table, edges);
  CountTell(found.count(), edgeCount);
  return STATUS_OK;
}

}  // namespace
}  // namespace zel

int32_t ZEL_SimpleEdge(ImageRef image, const PointInt* points, int32_t pointCount,
                       int32_t processType, int32_t thresholdInPercent, int32_t threshold,
                       int32_t hysteresis, int32_t subPixel, PointFloat** edges,
                       int32_t* edgeCount) {
  const zel::SimpleEdgeRule rule{
      processType, thresholdInPercent != 0, {threshold, hysteresis}, subPixel != 0};
  return ZEL_ProcessError("ZEL_SimpleEdge",
                          zel::SimpleEdges(image, points, pointCount, rule, edges, edgeCount));
}
