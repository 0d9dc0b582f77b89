// Edges, calipers, gauges, peaks, shapes and lists of points.
#include "harness/calls/calls.h"
#include "harness/calls/draws.h"

namespace test {
namespace {

using namespace draw;

// A path as callers have it, step by step along a line, or points anywhere.
struct Path {
  const PointInt* points;
  int32_t count;
};
Path PathAnywhere(Playground& play) {
  const int32_t count = Count(play);
  const struct {
    int32_t kind, x, y, dx, dy;
  } a{Below<4>(play), Int(play), Int(play), Below<3>(play) - 1, Below<3>(play) - 1};
  auto* points = play.ArrayOf<PointInt>(Held(count));
  for (size_t i = 0; points && a.kind != 0 && i < Held(count); i++) {
    const auto step = static_cast<int64_t>(i);
    points[i] = {static_cast<int32_t>(a.x % 64 + a.dx * step),
                 static_cast<int32_t>(a.y % 64 + a.dy * step)};
  }
  play.model().Gives(points);
  return {points, count};
}

// Mostly few values between samples: memory and time are those of the values.
int32_t Oversampling(Playground& play) {
  const struct { int32_t kind, few, wild; } a{Below<32>(play), Below<12>(play), Int(play)};
  return a.kind == 0 ? a.wild : a.few - 1;
}
int32_t Method(Playground& play) {
  return Below<16>(play) == 0 ? Int(play) : Below<3>(play);
}

// The tables of one call, released at its end.
template <class T>
class Table {
 public:
  explicit Table(Playground& play) : isMissing_(Below<32>(play) == 31) {
    if (Below<2>(play) == 0) records_ = static_cast<T*>(ZEL_malloc(sizeof(T)));
    if (records_) *records_ = {};
  }
  Table(const Table&) = delete;
  Table& operator=(const Table&) = delete;
  ~Table() { ZEL_free(records_); }
  T** Address() { return isMissing_ ? nullptr : &records_; }

 private:
  T* records_ = nullptr;
  bool isMissing_;
};

struct EdgeNumbers {
  int32_t method, oversampling, threshold, width, gap;
};
EdgeNumbers EdgeRule(Playground& play) {
  return {Method(play), Oversampling(play), Int(play), Int(play), Int(play)};
}

int32_t SimpleEdge(Playground& play) {
  const struct {
    ImageRef image;
    Path path;
    int32_t process, percent, threshold, hysteresis, subPixel;
  } a{Source(play), PathAnywhere(play), Below<4>(play), Below<2>(play),
      Int(play),    Int(play),          Below<2>(play)};
  Table<PointFloat> edges(play);
  return ZEL_SimpleEdge(a.image, a.path.points, a.path.count, a.process, a.percent, a.threshold,
                        a.hysteresis, a.subPixel, edges.Address(), Output<int32_t>(play));
}

int32_t FindEdges(Playground& play) {
  const struct {
    ImageRef image;
    Path path;
    EdgeNumbers rule;
  } a{Source(play), PathAnywhere(play), EdgeRule(play)};
  Table<EdgeRecord> edges(play);
  Table<PointFloat> coordinates(play);
  return ZEL_FindEdges(a.image, a.path.points, a.path.count, a.rule.method, a.rule.oversampling,
                       a.rule.threshold, a.rule.width, a.rule.gap, Output<int32_t>(play),
                       edges.Address(), coordinates.Address());
}

int32_t Caliper(Playground& play) {
  const struct {
    ImageRef image;
    Path path;
    EdgeNumbers rule;
    int32_t mode;
    float separation, deviation;
    int32_t *pairs, *ends;
  } a{Source(play), PathAnywhere(play), EdgeRule(play),        Below<6>(play),
      Float(play),  Float(play),        Output<int32_t>(play), Output<int32_t>(play)};
  Table<CaliperReport> reports(play);
  Table<PointFloat> coordinates(play);
  return ZEL_Caliper(a.image, a.path.points, a.path.count, a.rule.method, a.rule.oversampling,
                     a.rule.threshold, a.rule.width, a.rule.gap, a.mode, a.separation, a.deviation,
                     a.pairs, reports.Address(), a.ends, coordinates.Address());
}

int32_t LineGauge(Playground& play) {
  const struct {
    ImageRef image;
    Line line;
    EdgeNumbers rule;
    int32_t mode;
    Path extras;
    PointInt reference, now;
    float referenceAngle, nowAngle;
  } a{Source(play),           LineAnywhere(play), EdgeRule(play),
      Below<5>(play),         PathAnywhere(play), {Int(play), Int(play)},
      {Int(play), Int(play)}, Float(play),        Float(play)};
  // Long signals along many lines would only take long.
  const int32_t extras = a.rule.oversampling > 64 ? std::min(a.extras.count, 8) : a.extras.count;
  auto* results = play.OutputOf<float>(Held(a.extras.points ? extras : 0) / 2 + 1);
  return ZEL_LineGauge(a.image, a.line.x1, a.line.y1, a.line.x2, a.line.y2, a.rule.method,
                       a.rule.oversampling, a.rule.threshold, a.rule.width, a.rule.gap, a.mode,
                       a.extras.points, extras, a.reference.x, a.reference.y, a.referenceAngle,
                       a.now.x, a.now.y, a.nowAngle, results);
}

int32_t Interpolate(Playground& play) {
  const struct {
    ImageRef image;
    Path path;
    int32_t method, oversampling;
  } a{Source(play), PathAnywhere(play), Method(play), Oversampling(play)};
  Table<float> values(play);
  return ZEL_Interpolate1D(a.image, a.path.points, a.path.count, a.method, a.oversampling,
                           values.Address(), Output<int32_t>(play));
}

int32_t PeakValley(Playground& play) {
  const int32_t count = Count(play);
  const struct {
    const double* data;
    float threshold;
    int32_t width, type;
    int32_t* found;
  } a{play.ArrayOf<double>(Held(count)), Float(play), Int(play), Below<3>(play),
      Output<int32_t>(play)};
  Table<double> locations(play);
  Table<double> amplitudes(play);
  Table<double> seconds(play);
  return ZEL_PeakValleyDetector(a.data, count, static_cast<double>(a.threshold), a.width, a.type,
                                a.found, locations.Address(), amplitudes.Address(),
                                seconds.Address());
}

int32_t ShapeMatch(Playground& play) {
  const struct {
    ImageRef source, pattern, destination;
    int32_t connectivity;
    float tolerance;
    int32_t scale;
    int32_t* count;
  } a{FramedSource(play), Source(play),   Destination(play),    Below<3>(play),
      Float(play),        Below<2>(play), Output<int32_t>(play)};
  Table<ShapeReport> reports(play);
  return ZEL_ShapeMatch(a.source, a.pattern, a.destination, static_cast<uint16_t>(a.connectivity),
                        static_cast<double>(a.tolerance), a.scale, a.count, reports.Address());
}

struct Points {
  const PointFloat* points;
  int32_t count;
};
Points PointsAnywhere(Playground& play) {
  const int32_t count = Count(play);
  auto* points = play.ArrayOf<PointFloat>(Held(count));
  const bool isWild = Below<2>(play) == 0;
  for (size_t i = 0; points && !isWild && i < Held(count); i++) {
    points[i] = {static_cast<float>(Below<40>(play)), static_cast<float>(Below<40>(play))};
  }
  play.model().Gives(points);
  return {points, count};
}

int32_t Circle(Playground& play) {
  const struct {
    Points points;
    PointFloat* centre;
    double *diameter, *area, *perimeter;
  } a{PointsAnywhere(play), Output<PointFloat>(play), Output<double>(play), Output<double>(play),
      Output<double>(play)};
  return ZEL_GetCircle(a.points.points, a.points.count, a.centre, a.diameter, a.area, a.perimeter);
}

int32_t Angles(Playground& play) {
  const struct {
    Points points;
    PointFloat origin;
    int32_t mode;
    int32_t* count;
  } a{PointsAnywhere(play), {Float(play), Float(play)}, Below<4>(play), Output<int32_t>(play)};
  Table<float> radians(play);
  Table<float> degrees(play);
  return ZEL_GetAngles(a.points.points, a.points.count, a.origin, a.mode, radians.Address(),
                       degrees.Address(), a.count);
}

int32_t Distances(Playground& play) {
  const struct {
    Points points;
    int32_t* count;
  } a{PointsAnywhere(play), Output<int32_t>(play)};
  Table<float> distances(play);
  return ZEL_PointDistances(a.points.points, a.points.count, distances.Address(), a.count);
}

constexpr Leftovers OF_SHAPES[] = {{ANY_FAILURE, OUTPUTS}, {-101, CALIBRATION}};

constexpr ApiCall ROWS[] = {
    {230, "ZEL_SimpleEdge", SimpleEdge},
    {231, "ZEL_FindEdges", FindEdges},
    {232, "ZEL_Caliper", Caliper},
    {233, "ZEL_LineGauge", LineGauge},
    {234, "ZEL_Interpolate1D", Interpolate},
    {235, "ZEL_PeakValleyDetector", PeakValley, STATUS, {}, "ZEL_PeakValleyDetect"},
    {236, "ZEL_ShapeMatch", ShapeMatch, STATUS, OF_SHAPES},
    {237, "ZEL_GetCircle", Circle},
    {238, "ZEL_GetAngles", Angles},
    {239, "ZEL_PointDistances", Distances},
};

}  // namespace

constinit const std::span<const ApiCall> VISION_CALLS{ROWS};

}  // namespace test
