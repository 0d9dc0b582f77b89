// Regions painted into masks, masks traced, and circles of pixels compared.
#include <cmath>
#include <opencv2/imgproc.hpp>
#include <vector>

#include "benchmarks/pairs.h"

namespace {

using bench::Images;
using bench::Kind;
using bench::Mats;
using bench::OnePixel;
using bench::Scene;
using bench::Size;

constexpr char NOTES[] = R"(
`polygon` has 1000 vertices around the middle of a mask, at distances that jump; `convex polygon` has as
many on an ellipse. Beside both stands `fillPoly` into a matrix that is set to 0 first. `trace` and `trace
external` stand beside `findContours` with simple approximation, of all contours in two levels and of the
outermost ones. `detect rotation` compares circles of 361 pixels, a call being one pixel; it has no peer.
)";

constexpr int32_t VERTICES = 1000;
const std::vector<Kind> BLOBS = {{IMAGE_U8, Scene::Blobs}};

// A region that the library fills, released with the program.
struct OwnedRegion {
  RoiDescriptor* record = nullptr;

  OwnedRegion() = default;
  OwnedRegion(const OwnedRegion&) = delete;
  OwnedRegion& operator=(const OwnedRegion&) = delete;
  ~OwnedRegion() { Clear(); }
  void Clear() {
    ZEL_FreeROI(record);
    record = nullptr;
  }
};
OwnedRegion polygon;

using Polygon = std::vector<cv::Point>;

// Vertices around the middle; `jump`: how far they go in, in parts of the way.
Polygon VerticesIn(Size size, double jump) {
  constexpr double fullTurn = 6.283185307179586;
  Polygon points;
  uint32_t random = 1;
  for (int32_t i = 0; i < VERTICES; i++) {
    random = random * 1664525 + 1013904223;
    const double part = 1 - jump * (random >> 16) / 65536.0;
    const double angle = fullTurn * i / VERTICES;
    points.emplace_back(
        cv::saturate_cast<int>(size.width * (0.5 + 0.48 * part * std::cos(angle))),
        cv::saturate_cast<int>(size.height * (0.5 + 0.48 * part * std::sin(angle))));
  }
  return points;
}

int32_t Prepare(Images& i, Mats& m, double jump) {
  const Polygon points = VerticesIn(i.size, jump);
  std::vector<int32_t> values{0, 0, i.size.width, i.size.height, ROI_MARKER_EXTERNAL, ROI_POLYGON};
  for (const cv::Point& point : points) {
    values.push_back(point.x);
    values.push_back(point.y);
  }
  m.to.create(m.a.size(), CV_8U);
  m.own = points;
  polygon.Clear();
  return ZEL_ArrayToROI(values.data(), static_cast<int32_t>(values.size()), &polygon.record);
}

int32_t Paint(Images& i) {
  return ZEL_ROIToMask(i.to, i.a, polygon.record, 255);
}

void PeerPaint(Mats& m) {
  m.to = 0;
  cv::fillPoly(m.to, std::any_cast<Polygon&>(m.own), 255);
}

template <uint16_t externalOnly>
int32_t Trace(Images& i) {
  OwnedRegion region;
  return ZEL_MaskToROI(i.a, externalOnly, INT32_MAX, &region.record, nullptr);
}

template <cv::RetrievalModes mode>
void PeerTrace(Mats& m) {
  std::vector<Polygon> contours;
  cv::findContours(m.a, contours, mode, cv::CHAIN_APPROX_SIMPLE);
}

int32_t DetectRotation(Images& i) {
  const PointFloat centre{static_cast<float>(i.size.width) / 2,
                          static_cast<float>(i.size.height) / 2};
  double radians = 0;
  double degrees = 0;
  return ZEL_DetectRotation(i.a, i.b, centre, centre, i.size.height / 2 - 2, 1, &radians, &degrees);
}

std::vector<bench::Pair> Pairs() {
  return {
      {.operation = "polygon",
       .prepare = [](Images& i, Mats& m) { return Prepare(i, m, 0.6); },
       .ours = Paint,
       .theirs = PeerPaint},
      {.operation = "convex polygon",
       .prepare = [](Images& i, Mats& m) { return Prepare(i, m, 0); },
       .ours = Paint,
       .theirs = PeerPaint},
      {.operation = "trace", .kinds = BLOBS, .ours = Trace<0>, .theirs = PeerTrace<cv::RETR_CCOMP>},
      {.operation = "trace external",
       .kinds = BLOBS,
       .ours = Trace<1>,
       .theirs = PeerTrace<cv::RETR_EXTERNAL>},
      {.operation = "detect rotation",
       .kinds = bench::SCALARS,
       .pixels = OnePixel,
       .ours = DetectRotation},
  };
}

const bench::Registration REGISTRATION{{"regions", "Regions", NOTES, Pairs()}};

}  // namespace
