// Whole particles kept, removed and filled, beside the peers' fills.
#include <leptonica/allheaders.h>

#include <algorithm>
#include <opencv2/imgproc.hpp>

#include "benchmarks/packed.h"
#include "benchmarks/pairs.h"

namespace {

using bench::Images;
using bench::Kind;
using bench::Mats;
using bench::Scene;

constexpr char NOTES[] = R"(
Leptonica's pictures are packed to a bit a pixel before the clock starts, so that it reads and writes an
eighth of our bytes. It has no call that keeps particles by erosions: beside `low_high_pass` stands its
erosion followed by the fill of the source from what is left. `convex` stands beside OpenCV's hulls of
contours that it finds in one label image after the other; `magic_wand` beside a flood fill into a mask,
which ours also clears.
)";

const std::vector<Kind> SCENES = {{IMAGE_U8, Scene::Blobs}, {IMAGE_U8, Scene::CoarseNoise}};
const std::vector<Kind> BLOBS = {{IMAGE_U8, Scene::Blobs}};

constexpr uint16_t CONNECTIVITY = CONNECTIVITY_8;
constexpr int NEIGHBOURS = 8;

void PeerFillHoles(Mats& m) {
  PIX* filled = pixHolesByFilling(bench::PackedOf(m), 12 - NEIGHBOURS);
  pixOr(filled, filled, bench::PackedOf(m));
  pixDestroy(&filled);
}

void PeerRejectBorder(Mats& m) {
  PIX* kept = pixRemoveBorderConnComps(bench::PackedOf(m), NEIGHBOURS);
  pixDestroy(&kept);
}

constexpr int32_t EROSIONS = 5;

void PeerLowHighPass(Mats& m) {
  constexpr l_int32 side = 2 * EROSIONS + 1;
  PIX* left = pixErodeBrick(nullptr, bench::PackedOf(m), side, side);
  PIX* kept = pixSeedfillBinary(nullptr, left, bench::PackedOf(m), NEIGHBOURS);
  pixDestroy(&left);
  pixDestroy(&kept);
}

int32_t LowHighPass(Images& i) {
  return ZEL_LowHighPass(i.a, i.to, CONNECTIVITY, 0, EROSIONS, ZEL_Get_MO_STD3X3Ptr());
}

// Somewhere in the background, which goes around most blobs.
cv::Point wandSeed;

int32_t SeedFind(Images&, Mats& m) {
  const auto* row = m.a.ptr<uint8_t>(m.a.rows / 2);
  wandSeed = {static_cast<int>(std::find(row, row + m.a.cols, 0) - row), m.a.rows / 2};
  return 0;
}

void PeerMagicWand(Mats& m) {
  m.to.create(m.a.rows + 2, m.a.cols + 2, CV_8U);
  m.to.setTo(0);
  cv::floodFill(m.a, m.to, wandSeed, 0, nullptr, 0, 0,
                NEIGHBOURS | 255 << 8 | cv::FLOODFILL_MASK_ONLY | cv::FLOODFILL_FIXED_RANGE);
}

// Labels in `other`, for both.
int32_t LabelOther(Images& i, Mats& m) {
  cv::connectedComponents(m.a, m.other, NEIGHBOURS, CV_16U);
  return ZEL_Label(i.a, i.other, CONNECTIVITY, nullptr);
}

void PeerConvex(Mats& m) {
  std::vector<std::vector<cv::Point>> contours;
  cv::findContours(m.a, contours, cv::RETR_EXTERNAL, cv::CHAIN_APPROX_NONE);
  m.to.create(m.a.size(), CV_16U);
  m.to.setTo(0);
  for (const std::vector<cv::Point>& contour : contours) {
    std::vector<cv::Point> hull;
    cv::convexHull(contour, hull);
    const cv::Point start = contour.front();
    cv::fillConvexPoly(m.to, hull, cv::Scalar(m.other.at<uint16_t>(start)));
  }
}

std::vector<bench::Pair> Pairs() {
  return {
      {.operation = "fill_hole",
       .kinds = SCENES,
       .prepare = bench::Pack,
       .ours = [](Images& i) { return ZEL_FillHole(i.a, i.to, CONNECTIVITY); },
       .peer = "Leptonica",
       .theirs = PeerFillHoles},
      {.operation = "reject_border",
       .kinds = SCENES,
       .prepare = bench::Pack,
       .ours = [](Images& i) { return ZEL_RejectBorder(i.a, i.to, CONNECTIVITY); },
       .peer = "Leptonica",
       .theirs = PeerRejectBorder},
      {.operation = "low_high_pass",
       .kinds = SCENES,
       .prepare = bench::Pack,
       .ours = LowHighPass,
       .peer = "Leptonica",
       .theirs = PeerLowHighPass},
      {.operation = "magic_wand",
       .kinds = SCENES,
       .prepare = SeedFind,
       .ours =
           [](Images& i) {
             return ZEL_MagicWand(i.a, i.to, wandSeed.x, wandSeed.y, 0, CONNECTIVITY, 255);
           },
       .theirs = PeerMagicWand},
      {.operation = "convex",
       .kinds = BLOBS,
       .result = IMAGE_I16,
       .prepare = LabelOther,
       .ours = [](Images& i) { return ZEL_Convex(i.other, i.to); },
       .theirs = PeerConvex},
  };
}

const bench::Registration PARTICLE_FILTERS({"particle_filters", "Particle filters", NOTES,
                                            Pairs()});

}  // namespace
