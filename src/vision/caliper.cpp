// ZEL_Caliper: pairs of edges along a path, by polarity and distance.
#include <bit>
#include <cmath>

#include "vision/find_edges.h"
#include "vision/point_distance.h"
#include "vision/result_table.h"

namespace zel {
namespace {

// Tables of more pairs cannot be had.
constexpr int64_t MOST_PAIRS = HEAP_BLOCK_LIMIT / sizeof(CaliperReport);

// Distances that a pair may have.
class DistanceWindow {
 public:
  DistanceWindow(int32_t mode, float separation, float deviation)
      : separation_(static_cast<double>(separation)),
        low_(separation_ - 2.0 * static_cast<double>(deviation)),
        high_(separation_ + 2.0 * static_cast<double>(deviation)),
        takesAll_(mode == PAIR_ANY && separation == 0.0f && deviation == 0.0f),
        takesEnds_(mode == PAIR_RISE_FALL) {
    // A deviation below 1 counts for nothing in the score.
    if (std::bit_cast<int32_t>(deviation) >= std::bit_cast<int32_t>(1.0f)) {
      scale_ = 999.0 / (static_cast<double>(deviation) * 2.0);
    }
  }

  bool Holds(float distance) const {
    const auto d = static_cast<double>(distance);
    // Only one mode takes the ends. Kept.
    if (takesEnds_) return low_ <= d && d <= high_;
    return takesAll_ || (low_ < d && d < high_);
  }

  float ScoreOf(float distance) const {
    const double off = std::fabs(static_cast<double>(distance) - separation_);
    return static_cast<float>(1000.0 - scale_ * off);
  }

 private:
  double separation_, low_, high_;
  double scale_ = 0.0;
  bool takesAll_, takesEnds_;
};

// Which polarity the first and the second edge of a pair have.
class PolarityPair {
 public:
  PolarityPair(int32_t mode, int32_t firstPolarity) {
    const bool risesFirst = mode == PAIR_ANY ? firstPolarity == EDGE_RISING
                                             : mode == PAIR_RISE_FALL || mode == PAIR_RISE_RISE;
    const bool isSame = mode == PAIR_RISE_RISE || mode == PAIR_FALL_FALL;
    first_ = risesFirst ? EDGE_RISING : EDGE_FALLING;
    second_ = isSame ? first_ : -first_;
    isKnown_ = mode >= PAIR_ANY && mode <= PAIR_FALL_FALL;
  }

  bool TakesFirst(const ScannedEdge& edge) const { return isKnown_ && edge.polarity == first_; }
  bool TakesSecond(const ScannedEdge& edge) const { return edge.polarity == second_; }

 private:
  int32_t first_, second_;
  bool isKnown_;
};

// Calls take(i, j, distance) for each pair, by rising i and then rising j, until it answers false.
template <class Take>
void PairEdges(const EdgeList& edges, int32_t mode, const DistanceWindow& window,
               const Take& take) {
  if (edges.count() < 2) return;
  const PolarityPair polarities(mode, edges[0].polarity);
  for (int64_t i = 0; i < edges.count(); i++) {
    if (!polarities.TakesFirst(edges[i])) continue;
    for (int64_t j = i + 1; j < edges.count(); j++) {
      if (!polarities.TakesSecond(edges[j])) continue;
      const float distance = DistanceOf(edges[i].at, edges[j].at);
      if (window.Holds(distance) && !take(i, j, distance)) return;
    }
  }
}

struct PairTables {
  WorkArray<CaliperReport> reports;
  WorkArray<PointFloat> coordinates;
  int64_t count = 0;
};

Status PairsFind(const EdgeList& edges, int32_t mode, const DistanceWindow& window,
                 PairTables* tables) {
  int64_t pairs = 0;
  PairEdges(edges, mode, window, [&](int64_t, int64_t, float) { return pairs++ < MOST_PAIRS; });
  if (!TableMake(&tables->reports, pairs) || !TableMake(&tables->coordinates, 2 * pairs)) {
    return STATUS_MEMORY_FULL;
  }
  CaliperReport* report = tables->reports.data();
  PointFloat* ends = tables->coordinates.data();
  PairEdges(edges, mode, window, [&](int64_t i, int64_t j, float distance) {
    *report++ = {static_cast<float>(i), edges[i].contrast, static_cast<float>(j),
                 edges[j].contrast,     distance,          window.ScoreOf(distance)};
    *ends++ = edges[i].at;
    *ends++ = edges[j].at;
    return true;
  });
  tables->count = pairs;
  return STATUS_OK;
}

}  // namespace
}  // namespace zel

int32_t ZEL_Caliper(ImageRef image, const PointInt* points, int32_t pointCount, int32_t method,
                    int32_t oversampling, int32_t threshold, int32_t edgeWidth, int32_t gap,
                    int32_t polarityMode, float separation, float deviation, int32_t* pairCount,
                    CaliperReport** reports, int32_t* coordinateCount, PointFloat** coordinates) {
  zel::Status status = zel::STATUS_NULL_POINTER;
  if ((points || pointCount <= 0) && reports && coordinates) {
    zel::EdgeList edges;
    zel::PairTables tables;
    status = zel::PathEdgesFind(image, points, pointCount, method, oversampling,
                                {threshold, edgeWidth, gap}, &edges);
    if (status == zel::STATUS_OK) {
      const zel::DistanceWindow window(polarityMode, separation, deviation);
      status = zel::PairsFind(edges, polarityMode, window, &tables);
    }
    if (status == zel::STATUS_OK) {
      zel::TableHandOver(&tables.reports, reports);
      zel::TableHandOver(&tables.coordinates, coordinates);
      zel::CountTell(tables.count, pairCount);
      zel::CountTell(2 * tables.count, coordinateCount);
    }
  }
  return ZEL_ProcessError("ZEL_Caliper", status);
}
