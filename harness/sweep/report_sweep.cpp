// What is told of images: statistics, particles, edges, regions.
#include <array>
#include <vector>

#include "harness/sweep/sweep.h"

namespace test {
namespace {

constexpr uint32_t MEASURES = 50;

void Statistics(Sweep& sweep, ImageRef image, ImageRef mask) {
  std::array<uint32_t, 70> counts{};
  HistogramReport report{};
  const int32_t counted = ZEL_Histogram(image, mask, 70, 0, 0, counts.data(), &report);
  sweep.Add(counted, counts.data(), counts.size());
  sweep.Add(counted, &report, 1);
  QuantifyReport all{};
  QuantifyReport* regions = nullptr;
  int32_t count = 0;
  const int32_t quantified = ZEL_Quantify(image, mask, &all, &regions, &count);
  sweep.Add(quantified, &all, 1);
  sweep.AddTable(quantified, regions, count);
  std::array<float, 2> centre{};
  sweep.Add(ZEL_Centroid(image, mask, &centre[0], &centre[1]), &centre, 1);
}

void Measure(Sweep& sweep, uint16_t connectivity) {
  int32_t count = 0;
  sweep.Add(ZEL_Label(sweep.blobs, sweep.result, connectivity, &count));
  BasicParticleReport* basic = nullptr;
  const int32_t found = ZEL_BasicParticle(sweep.blobs, connectivity, &basic, &count);
  sweep.AddTable(found, basic, count);
  ParticleReport* particles = nullptr;
  const int32_t measured = ZEL_Particle(sweep.blobs, connectivity, &particles, &count);
  std::array<uint32_t, MEASURES> measures{};
  for (uint32_t i = 0; i < MEASURES; i++) measures[i] = i;
  std::vector<float> values(static_cast<size_t>(count) * MEASURES);
  const int32_t derived =
      ZEL_ParticleCoeffs(sweep.blobs, measures.data(), MEASURES, particles, count, values.data());
  sweep.Add(derived, values.data(), values.size());
  sweep.AddTable(measured, particles, count);
}

std::vector<PointInt> Path(const Sweep& sweep) {
  std::vector<PointInt> path;
  for (int32_t x = 0; x < sweep.width; x++)
    path.push_back({x, x * (sweep.height - 1) / sweep.width});
  return path;
}

void Edges(Sweep& sweep, ImageRef image, int32_t method) {
  const std::vector<PointInt> path = Path(sweep);
  const auto points = static_cast<int32_t>(path.size());
  EdgeRecord* edges = nullptr;
  PointFloat* places = nullptr;
  int32_t count = 0;
  const int32_t found =
      ZEL_FindEdges(image, path.data(), points, method, 7, 20, 2, 0, &count, &edges, &places);
  sweep.AddTable(found, edges, count);
  sweep.AddTable(found, places, count);
  CaliperReport* reports = nullptr;
  PointFloat* ends = nullptr;
  int32_t pairs = 0;
  const int32_t paired = ZEL_Caliper(image, path.data(), points, method, 3, 10, 2, 1, PAIR_ANY, 4,
                                     3, &pairs, &reports, &count, &ends);
  sweep.AddTable(paired, reports, pairs);
  sweep.AddTable(paired, ends, count);
  float* values = nullptr;
  const int32_t interpolated =
      ZEL_Interpolate1D(image, path.data(), points, method, 3, &values, &count);
  sweep.AddTable(interpolated, values, count);
}

void Profile(Sweep& sweep, const RoiDescriptor* region) {
  float* samples = nullptr;
  PointInt* points = nullptr;
  int32_t count = 0;
  ProfileReport report{};
  const int32_t status = ZEL_ROIProfile(sweep.first, region, &samples, &count, &report, &points);
  sweep.AddTable(status, samples, count);
  sweep.AddTable(status, points, count);
}

}  // namespace

void SweepStatistics(Sweep& sweep) {
  for (const TestImage* image : {&sweep.first, &sweep.second}) {
    Statistics(sweep, *image, 0);
    Statistics(sweep, *image, sweep.mask);
  }
  std::array<float, 400> profile{};
  LineProfileReport report{};
  int32_t count = 0;
  const int32_t status = ZEL_LineProfile(sweep.first, 0, 0, sweep.width - 1, sweep.height - 1,
                                         ARRAY_SGL, profile.data(), &count, &report);
  sweep.Add(status, profile.data(), profile.size());
  sweep.Add(count, &report, 1);
}

void SweepParticles(Sweep& sweep) {
  Measure(sweep, CONNECTIVITY_4);
  Measure(sweep, CONNECTIVITY_8);
}

void SweepVision(Sweep& sweep) {
  for (const int32_t method : {INTERP_LINEAR, INTERP_QUADRATIC, INTERP_SPLINE}) {
    Edges(sweep, sweep.first, method);
  }
  ShapeReport* shapes = nullptr;
  int32_t count = 0;
  const int32_t matched =
      ZEL_ShapeMatch(sweep.blobs, sweep.blobs, sweep.result, 1, 1e9, 1, &count, &shapes);
  sweep.AddTable(matched, shapes, count);
}

void SweepRegions(Sweep& sweep) {
  const int32_t right = sweep.width - 1;
  const int32_t bottom = sweep.height - 1;
  for (const int32_t kind : {ROI_LINE, ROI_RECT, ROI_OVAL}) {
    const int32_t values[] = {0, 0, right, bottom, ROI_MARKER_EXTERNAL, kind, 0, 0, right, bottom};
    RoiDescriptor* region = nullptr;
    RoiDescriptor* turned = nullptr;
    ZEL_ArrayToROI(values, 10, &region);
    sweep.Add(ZEL_ROIToMask(sweep.result, sweep.first, region, 200));
    Profile(sweep, region);
    sweep.Add(ZEL_TransformROI(region, 3, 2, 5.0f, 7, 9, 35.0f, &turned));
    sweep.Add(ZEL_ROIToMask(sweep.result, sweep.first, turned, 90));
    ZEL_FreeROI(turned);
    ZEL_FreeROI(region);
  }
}

}  // namespace test
