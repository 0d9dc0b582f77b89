// Edges, calipers, gauges, peaks, shapes and lists of points.
#include <array>

#include "harness/session/session.h"

namespace test {
namespace {

constexpr int32_t POINTS = 37;

std::array<PointInt, POINTS> Path() {
  std::array<PointInt, POINTS> path{};
  for (int32_t i = 0; i < POINTS; i++) path[static_cast<size_t>(i)] = {i, 3 + i / 3};
  return path;
}

// On a circle.
std::array<PointFloat, 12> Corners() {
  std::array<PointFloat, 12> corners{};
  for (size_t i = 0; i < corners.size(); i++) {
    const float slope = (static_cast<float>(i) - 5.5f) / 2.0f;
    const float scale = 9.0f / (1.0f + slope * slope);
    corners[i] = {30.0f + (1.0f - slope * slope) * scale, 20.0f + 2.0f * slope * scale};
  }
  return corners;
}

// A result table of one step.
template <class T>
struct Table {
  T* records = nullptr;

  Table() = default;
  Table(const Table&) = delete;
  Table& operator=(const Table&) = delete;
  ~Table() { ZEL_free(records); }
};

template <class T>
void Out(Session& s, const Table<T>& table, int32_t count) {
  s.Out(count);
  s.Out(table.records, static_cast<size_t>(count));
}

int32_t SimpleEdges(Session& s) {
  const auto path = Path();
  Table<PointFloat> edges;
  int32_t count = 0;
  const int32_t result =
      ZEL_SimpleEdge(s.u8, path.data(), POINTS, EDGE_ALL, 1, 50, 10, 1, &edges.records, &count);
  Out(s, edges, count);
  return result;
}

int32_t FoundEdges(Session& s) {
  const auto path = Path();
  Table<EdgeRecord> edges;
  Table<PointFloat> places;
  int32_t count = 0;
  const int32_t result = ZEL_FindEdges(s.u8, path.data(), POINTS, INTERP_SPLINE, 40, 10, 2, 0,
                                       &count, &edges.records, &places.records);
  Out(s, edges, count);
  Out(s, places, count);
  return result;
}

int32_t Caliper(Session& s) {
  const auto path = Path();
  Table<CaliperReport> reports;
  Table<PointFloat> ends;
  int32_t pairs = 0;
  int32_t count = 0;
  const int32_t result =
      ZEL_Caliper(s.sgl, path.data(), POINTS, INTERP_LINEAR, 2, 1, 1, 0, PAIR_ANY, 0, 0, &pairs,
                  &reports.records, &count, &ends.records);
  Out(s, reports, pairs);
  Out(s, ends, count);
  return result;
}

int32_t LineGauge(Session& s) {
  const PointInt extras[] = {{0, 1}, {0, 2}, {1, -2}, {-3, 2}};
  float results[3] = {};
  const int32_t result =
      ZEL_LineGauge(s.u8, 2, 4, 30, 18, INTERP_SPLINE, 50, 10, 2, 0, GAUGE_EDGE_TO_EDGE, extras, 4,
                    20, 10, 0, 21, 11, 3.5f, results);
  s.Out(results, 3);
  return result;
}

int32_t Values(Session& s) {
  const auto path = Path();
  Table<float> values;
  int32_t count = 0;
  const int32_t result =
      ZEL_Interpolate1D(s.i16, path.data(), POINTS, INTERP_QUADRATIC, 3, &values.records, &count);
  Out(s, values, count);
  return result;
}

int32_t Peaks(Session& s) {
  double data[60];
  for (int32_t i = 0; i < 60; i++) data[i] = (i * 37 % 19) - 9;
  Table<double> locations;
  Table<double> amplitudes;
  Table<double> seconds;
  int32_t count = 0;
  const int32_t result =
      ZEL_PeakValleyDetector(data, 60, 0, 3, DETECT_PEAKS, &count, &locations.records,
                             &amplitudes.records, &seconds.records);
  Out(s, locations, count);
  Out(s, amplitudes, count);
  Out(s, seconds, count);
  return result;
}

int32_t Shapes(Session& s) {
  Table<ShapeReport> reports;
  int32_t count = 0;
  const int32_t result =
      ZEL_ShapeMatch(s.u8, s.mask, s.target, 1, 1e9, 1, &count, &reports.records);
  Out(s, reports, count);
  return result;
}

int32_t Circle(Session& s) {
  const auto corners = Corners();
  PointFloat centre{};
  double sizes[3] = {};
  const int32_t result =
      ZEL_GetCircle(corners.data(), 12, &centre, &sizes[0], &sizes[1], &sizes[2]);
  s.Out(centre);
  s.Out(sizes, 3);
  return result;
}

int32_t Angles(Session& s) {
  const auto corners = Corners();
  Table<float> radians;
  Table<float> degrees;
  int32_t count = 0;
  const int32_t result = ZEL_GetAngles(corners.data(), 12, {30, 20}, ANGLES_FROM_ORIGIN,
                                       &radians.records, &degrees.records, &count);
  Out(s, radians, count);
  Out(s, degrees, count);
  return result;
}

int32_t Distances(Session& s) {
  const auto corners = Corners();
  Table<float> distances;
  int32_t count = 0;
  const int32_t result = ZEL_PointDistances(corners.data(), 12, &distances.records, &count);
  Out(s, distances, count);
  return result;
}

constexpr Step ROWS[] = {
    {"ZEL_SimpleEdge", &SimpleEdges}, {"ZEL_FindEdges", &FoundEdges},
    {"ZEL_Caliper", &Caliper},        {"ZEL_LineGauge", &LineGauge},
    {"ZEL_Interpolate1D", &Values},   {"ZEL_PeakValleyDetector", &Peaks},
    {"ZEL_ShapeMatch", &Shapes},      {"ZEL_GetCircle", &Circle},
    {"ZEL_GetAngles", &Angles},       {"ZEL_PointDistances", &Distances},
};

}  // namespace

constinit const std::span<const Step> VISION_STEPS{ROWS};

}  // namespace test
