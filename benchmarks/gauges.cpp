// Edges and gauges along paths, and shapes matched.
#include <opencv2/imgproc.hpp>
#include <vector>

#include "benchmarks/pairs.h"

namespace {

using bench::Images;
using bench::Mats;
using bench::Scene;
using bench::Size;

constexpr char NOTES[] = R"(
Times are those of a call. A caliper and the edges before it look along a path of 200 pixels through
disks, oversampled four times where the name says so; a line gauge measures 50 lines of up to 400
pixels. OpenCV has none of these. The peer of `shape_match` takes the outer contours of the same picture, their moments and
seven invariants of each; it neither compares nor writes a result.
)";

const std::vector<Size> ONE_SIZE = {{1920, 1080}};
const std::vector<bench::Kind> DISKS = {{IMAGE_U8, Scene::Blobs}};

constexpr int32_t PATH = 200;

std::vector<PointInt> PathThrough(const Images& i) {
  std::vector<PointInt> path;
  for (int32_t x = 0; x < PATH; x++) path.push_back({x % i.size.width, i.size.height / 2});
  return path;
}

int32_t Edges(Images& i) {
  static const std::vector<PointInt> path = PathThrough(i);
  EdgeRecord* edges = nullptr;
  PointFloat* places = nullptr;
  const int32_t status =
      ZEL_FindEdges(i.a, path.data(), PATH, 0, 0, 40, 2, 0, nullptr, &edges, &places);
  ZEL_free(edges);
  ZEL_free(places);
  return status;
}

int32_t Caliper(Images& i, int32_t method, int32_t oversampling) {
  static const std::vector<PointInt> path = PathThrough(i);
  CaliperReport* reports = nullptr;
  PointFloat* ends = nullptr;
  const int32_t status = ZEL_Caliper(i.a, path.data(), PATH, method, oversampling, 40, 2, 0,
                                     PAIR_ANY, 0, 0, nullptr, &reports, nullptr, &ends);
  ZEL_free(reports);
  ZEL_free(ends);
  return status;
}

int32_t Gauge(Images& i) {
  std::vector<PointInt> extras;
  for (int32_t line = 1; line < 50; line++) {
    extras.push_back({0, line});
    extras.push_back({0, line});
  }
  float results[50] = {};
  return ZEL_LineGauge(i.a, 0, 5, 399, 9, INTERP_SPLINE, 4, 40, 2, 0, GAUGE_EDGE_TO_EDGE,
                       extras.data(), 98, 0, 0, 0, 0, 0, 0, results);
}

int32_t Shapes(Images& i) {
  ShapeReport* reports = nullptr;
  const int32_t status = ZEL_ShapeMatch(i.a, i.mask, i.to, 1, 0.1, 1, nullptr, &reports);
  ZEL_free(reports);
  return status;
}

void PeerShapes(Mats& m) {
  std::vector<std::vector<cv::Point>> contours;
  cv::findContours(m.a, contours, cv::RETR_EXTERNAL, cv::CHAIN_APPROX_SIMPLE);
  for (const auto& contour : contours) {
    double invariants[7];
    cv::HuMoments(cv::moments(contour), invariants);
  }
}

const std::vector<bench::Pair> PAIRS = {
    {.operation = "find_edges_200_pixels",
     .kinds = DISKS,
     .sizes = ONE_SIZE,
     .pixels = bench::OnePixel,
     .ours = Edges},
    {.operation = "caliper_200_pixels",
     .kinds = DISKS,
     .sizes = ONE_SIZE,
     .pixels = bench::OnePixel,
     .ours = [](Images& i) { return Caliper(i, INTERP_LINEAR, 0); }},
    {.operation = "caliper_200_pixels_x5",
     .kinds = DISKS,
     .sizes = ONE_SIZE,
     .pixels = bench::OnePixel,
     .ours = [](Images& i) { return Caliper(i, INTERP_SPLINE, 4); }},
    {.operation = "line_gauge_50_lines",
     .kinds = DISKS,
     .sizes = ONE_SIZE,
     .pixels = bench::OnePixel,
     .ours = Gauge},
    {.operation = "shape_match", .kinds = DISKS, .ours = Shapes, .theirs = PeerShapes},
};

const bench::Registration GAUGES({"gauges", "Gauges and shapes", NOTES, PAIRS});

}  // namespace
