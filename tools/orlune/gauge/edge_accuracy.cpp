// orlune_edge_accuracy: how far edges and distances along lines are from the truth of drawn bars,
// as the table of docs/edges.md. usage: orlune_edge_accuracy [PAGE]   (with a page, checks that the
// table stands in it, and that all is within the bounds that the page promises)
#include <array>
#include <cmath>
#include <fstream>
#include <functional>
#include <iostream>
#include <iterator>
#include <limits>
#include <numbers>
#include <sstream>

#include "orlune/gauge/line_edges.h"
#include "orlune/shared/numbers.h"
#include "scenes/random.h"

namespace {

using namespace front;  // NOLINT: this is its program

constexpr int32_t SIZE = 240;      // of the picture
constexpr double LINE_HALF = 75;   // of the line's length, from the picture's middle
constexpr double REACH = 10;       // beside the line, where the picture has pixels
constexpr double FIRST_EDGE = 42;  // along the line
constexpr double BAR = 63;         // from there to the second edge
constexpr double NOTHING = std::numeric_limits<double>::quiet_NaN();
constexpr int TRIALS = 60;
constexpr int32_t EDGE_WIDTH = 3;
constexpr int32_t OVERSAMPLING = 15;

// A light bar across a line, as a lens and a sensor give it.
struct Bar {
  double blur = 1;        // deviation, pixels
  double noise = 2;       // deviation, gray levels
  double contrast = 100;  // gray levels of the first edge
  double second = 1;      // contrast of the second edge by that of the first
  double degrees = 0;     // of the line
};

struct Trial {
  Image picture{IMAGE_U8, 0, SIZE, SIZE};
  PointInt from{}, to{};  // the line
  double first = 0, last = 0;
  std::vector<PointInt> path;
};

PointInt Rounded(double x, double y) {
  return {static_cast<int32_t>(std::lround(x)), static_cast<int32_t>(std::lround(y))};
}

// The pixels nearest to the line, one for each step along its longer side.
std::vector<PointInt> PathOf(PointInt from, PointInt to) {
  const int32_t dx = to.x - from.x, dy = to.y - from.y;
  const int32_t steps = std::max(std::abs(dx), std::abs(dy));
  std::vector<PointInt> path;
  for (int32_t i = 0; i <= steps; i++) {
    path.push_back(Rounded(from.x + 1.0 * dx * i / steps, from.y + 1.0 * dy * i / steps));
  }
  return path;
}

Trial Draw(const Bar& bar, int number) {
  scenes::Random random(static_cast<uint64_t>(number) + 1);
  Trial trial;
  const double angle = bar.degrees * std::numbers::pi / 180;
  const double middle = SIZE / 2;
  trial.from = Rounded(middle - LINE_HALF * std::cos(angle), middle - LINE_HALF * std::sin(angle));
  trial.to = Rounded(middle + LINE_HALF * std::cos(angle), middle + LINE_HALF * std::sin(angle));
  trial.first = FIRST_EDGE + random.Uniform();
  trial.last = trial.first + BAR + random.Uniform();
  trial.path = PathOf(trial.from, trial.to);
  const double dx = trial.to.x - trial.from.x, dy = trial.to.y - trial.from.y;
  const double length = std::hypot(dx, dy);
  const auto step = [&](double t) { return std::erfc(-t / bar.blur / std::numbers::sqrt2) / 2; };
  Check(ZEL_ClearPixels(trial.picture));
  const ImageInfo info = trial.picture.Info();
  for (int32_t y = 0; y < SIZE; y++) {
    for (int32_t x = 0; x < SIZE; x++) {
      const double u = x - trial.from.x, v = y - trial.from.y;
      if (std::abs(dx * v - dy * u) / length > REACH) continue;
      const double along = (dx * u + dy * v) / length;
      const double light = 25 + bar.contrast * (1 - bar.second) * step(along - trial.last) +
                           bar.contrast * (step(along - trial.first) - step(along - trial.last));
      const double level = light + bar.noise * random.Gauss();
      Row<uint8_t>(info, y)[x] =
          static_cast<uint8_t>(std::lround(std::min(std::max(level, 0.0), 255.0)));
    }
  }
  return trial;
}

// How far a number is off, over all trials.
class Spread {
 public:
  void Add(double off) {
    sum_ += off;
    squares_ += off * off;
    count_++;
  }
  double Bias() const { return sum_ / count_; }
  double Deviation() const { return std::sqrt(std::max(squares_ / count_ - Bias() * Bias(), 0.0)); }
  int count() const { return count_; }

 private:
  double sum_ = 0, squares_ = 0;
  int count_ = 0;
};

// Where a point lies along the line.
double Along(const Trial& trial, PointFloat point) {
  const double dx = trial.to.x - trial.from.x, dy = trial.to.y - trial.from.y;
  return (dx * (static_cast<double>(point.x) - trial.from.x) +
          dy * (static_cast<double>(point.y) - trial.from.y)) /
         std::hypot(dx, dy);
}

int32_t ThresholdOf(const Bar& bar) {
  return static_cast<int32_t>(0.3 * bar.contrast);
}

// Each measures a trial, and returns by how much it is off; NaN where it finds nothing.
double SimpleEdgeOff(const Trial& trial, const Bar&) {
  PointFloat* edges = nullptr;
  int32_t count = 0;
  Check(ZEL_SimpleEdge(trial.picture, trial.path.data(), static_cast<int32_t>(trial.path.size()),
                       EDGE_FIRST, 1, 50, 15, 1, &edges, &count));
  const Block<PointFloat> owner(edges);
  return count > 0 ? Along(trial, edges[0]) - trial.first : NOTHING;
}

double FindEdgesOff(const Trial& trial, const Bar& bar) {
  EdgeRecord* edges = nullptr;
  PointFloat* places = nullptr;
  int32_t count = 0;
  Check(ZEL_FindEdges(trial.picture, trial.path.data(), static_cast<int32_t>(trial.path.size()),
                      INTERP_SPLINE, OVERSAMPLING, ThresholdOf(bar), EDGE_WIDTH, 0, &count, &edges,
                      &places));
  const Block<EdgeRecord> edgesOwner(edges);
  const Block<PointFloat> placesOwner(places);
  return count > 0 ? Along(trial, places[0]) - trial.first : NOTHING;
}

double CaliperOff(const Trial& trial, const Bar& bar) {
  CaliperReport* reports = nullptr;
  PointFloat* places = nullptr;
  int32_t pairs = 0, ends = 0;
  Check(ZEL_Caliper(trial.picture, trial.path.data(), static_cast<int32_t>(trial.path.size()),
                    INTERP_SPLINE, OVERSAMPLING, ThresholdOf(bar), EDGE_WIDTH, 0, PAIR_RISE_FALL,
                    static_cast<float>(BAR), 5, &pairs, &reports, &ends, &places));
  const Block<CaliperReport> reportsOwner(reports);
  const Block<PointFloat> placesOwner(places);
  return pairs > 0 ? static_cast<double>(reports[0].distance) - (trial.last - trial.first)
                   : NOTHING;
}

double LineGaugeOff(const Trial& trial, const Bar& bar) {
  float distance = 0;
  Check(ZEL_LineGauge(trial.picture, trial.from.x, trial.from.y, trial.to.x, trial.to.y,
                      INTERP_SPLINE, OVERSAMPLING, ThresholdOf(bar), EDGE_WIDTH, 0,
                      GAUGE_EDGE_TO_EDGE, nullptr, 0, 0, 0, 0, 0, 0, 0, &distance));
  return distance > 0 ? static_cast<double>(distance) - (trial.last - trial.first) : NOTHING;
}

std::vector<LineEdge> GaugedEdges(const Trial& trial, int32_t band) {
  EdgeSearch search;
  search.band = band;
  const Line line{{1.0 * trial.from.x, 1.0 * trial.from.y}, {1.0 * trial.to.x, 1.0 * trial.to.y}};
  return EdgesAlong(trial.picture, line, search);
}

double GaugedEdgeOff(const Trial& trial, const Bar&) {
  const std::vector<LineEdge> edges = GaugedEdges(trial, 5);
  return edges.empty() ? NOTHING : edges.front().along - trial.first;
}

template <int32_t BAND>
double GaugedSpanOff(const Trial& trial, const Bar&) {
  const std::vector<LineEdge> edges = GaugedEdges(trial, BAND);
  if (edges.size() < 2) return NOTHING;
  return edges.back().along - edges.front().along - (trial.last - trial.first);
}

struct Method {
  const char* head;
  double (*off)(const Trial& trial, const Bar& bar);
};
constexpr Method METHODS[] = {{"`ZEL_SimpleEdge` edge", SimpleEdgeOff},
                              {"`ZEL_FindEdges` edge", FindEdgesOff},
                              {"`orlune gauge` edge", GaugedEdgeOff},
                              {"`ZEL_Caliper` distance", CaliperOff},
                              {"`ZEL_LineGauge` distance", LineGaugeOff},
                              {"`orlune gauge --band 1` distance", GaugedSpanOff<1>},
                              {"`orlune gauge` distance", GaugedSpanOff<5>}};
constexpr size_t METHOD_COUNT = std::size(METHODS);

// What a bias and a deviation may be at most.
struct Bounds {
  double bias = 0, deviation = 0;
};

struct TableRow {
  std::string name;
  Bar bar;
  Bounds gauge;  // of the distances of orlune gauge
};

std::vector<TableRow> AllRows() {
  const auto with = [](auto member, double value) {
    Bar bar;
    bar.*member = value;
    return bar;
  };
  return {{"blur 0.5", with(&Bar::blur, 0.5), {0.02, 0.04}},
          {"**usual: blur 1, noise 2, contrast 100, level**", Bar{}, {0.01, 0.05}},
          {"blur 2", with(&Bar::blur, 2), {0.02, 0.08}},
          {"blur 3", with(&Bar::blur, 3), {0.03, 0.2}},
          {"noise 0", with(&Bar::noise, 0), {0.01, 0.02}},
          {"noise 5", with(&Bar::noise, 5), {0.02, 0.1}},
          {"noise 10", with(&Bar::noise, 10), {0.03, 0.2}},
          {"contrast 20", with(&Bar::contrast, 20), {0.03, 0.2}},
          {"contrast 50", with(&Bar::contrast, 50), {0.02, 0.09}},
          {"contrast 200", with(&Bar::contrast, 200), {0.01, 0.03}},
          {"second edge of 70 levels", with(&Bar::second, 0.7), {0.02, 0.05}},
          {"line at 5 degrees", with(&Bar::degrees, 5), {0.02, 0.04}},
          {"line at 20 degrees", with(&Bar::degrees, 20), {0.02, 0.06}},
          {"line at 45 degrees", with(&Bar::degrees, 45), {0.02, 0.055}},
          {"line at 70 degrees", with(&Bar::degrees, 70), {0.025, 0.045}}};
}

std::string Signed(double pixels) {
  const double rounded = std::round(pixels * 1000) / 1000;
  return (rounded > 0 ? "+" : "") + Fixed(rounded == 0 ? 0 : rounded, 3);
}

struct Accuracy {
  std::string table, broken;  // what is beyond its bounds, a line each
};

Accuracy Measure() {
  std::ostringstream table, broken;
  table << "| picture |";
  for (const Method& method : METHODS) table << ' ' << method.head << " |";
  table << "\n|---|";
  for (size_t i = 0; i < METHOD_COUNT; i++) table << "---|";
  table << '\n';
  for (const TableRow& row : AllRows()) {
    std::array<Spread, METHOD_COUNT> spreads;
    for (int number = 0; number < TRIALS; number++) {
      const Trial trial = Draw(row.bar, number);
      for (size_t i = 0; i < METHOD_COUNT; i++) {
        const double off = METHODS[i].off(trial, row.bar);
        if (std::isfinite(off)) spreads[i].Add(off);
      }
    }
    table << "| " << row.name << " |";
    for (const Spread& spread : spreads) {
      table << ' ' << Signed(spread.Bias()) << " ± " << Fixed(spread.Deviation(), 3);
      if (spread.count() < TRIALS) table << " (" << spread.count() << " of " << TRIALS << " found)";
      table << " |";
    }
    table << '\n';
    const Spread& gauge = spreads[METHOD_COUNT - 1];
    if (gauge.count() < TRIALS || !(std::abs(gauge.Bias()) <= row.gauge.bias) ||
        !(gauge.Deviation() <= row.gauge.deviation)) {
      broken << row.name << ": " << gauge.count() << " found, " << Signed(gauge.Bias()) << " ± "
             << Fixed(gauge.Deviation(), 3) << ", not within " << row.gauge.bias << " ± "
             << row.gauge.deviation << '\n';
    }
  }
  return {table.str(), broken.str()};
}

}  // namespace

int main(int argc, char** argv) {
  const Accuracy accuracy = Measure();
  if (argc < 2) {
    std::cout << accuracy.table;
    return 0;
  }
  std::cerr << accuracy.broken;
  std::ifstream file(argv[1]);
  const std::string page{std::istreambuf_iterator<char>(file), {}};
  const bool stands = page.find(accuracy.table) != std::string::npos;
  if (!stands) std::cerr << argv[1] << " has another table than this:\n" << accuracy.table;
  return stands && accuracy.broken.empty() ? 0 : 1;
}
