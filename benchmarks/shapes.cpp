// Distance maps, skeletons and zones beside those of the peers.
#include <leptonica/allheaders.h>

#include <opencv2/imgproc.hpp>

#include "benchmarks/packed.h"
#include "benchmarks/pairs.h"

namespace {

using bench::Images;
using bench::Kind;
using bench::Mats;
using bench::Scene;

constexpr char NOTES[] = R"(
OpenCV's distances are its precise ones beside `danielsson` and those of a chessboard beside `distance`;
both are floats. Beside the growth of zones stands its distance map of 5 x 5 with the number of the
nearest particle. Leptonica thins a picture that is already packed to a bit a pixel. `circles` and
`separation` have no peer.
)";

const std::vector<Kind> SCENES = {{IMAGE_U8, Scene::Blobs}, {IMAGE_U8, Scene::CoarseNoise}};
const std::vector<Kind> BLOBS = {{IMAGE_U8, Scene::Blobs}};
const std::vector<bench::Size> SMALLER_SIZES = {{64, 64}, {1920, 1080}};

int32_t Circles(Images& i) {
  CircleReport* reports = nullptr;
  const int32_t status = ZEL_Circles(i.a, i.to, 0, 1000, &reports, nullptr);
  ZEL_free(reports);
  return status;
}

void PeerThin(Mats& m) {
  PIX* thin = pixThinConnected(bench::PackedOf(m), L_THIN_FG, 8, 0);
  pixDestroy(&thin);
}

// Labels in `other` for ours; what the peer measures from is clear.
int32_t PrepareZones(Images& i, Mats& m) {
  m.other = m.a == 0;
  return ZEL_Label(i.a, i.other, CONNECTIVITY_8, nullptr);
}

void PeerZones(Mats& m) {
  cv::distanceTransform(m.other, m.scratch[0], m.to, cv::DIST_L2, cv::DIST_MASK_5,
                        cv::DIST_LABEL_CCOMP);
}

std::vector<bench::Pair> Pairs() {
  return {
      {.operation = "danielsson",
       .kinds = SCENES,
       .ours = [](Images& i) { return ZEL_Danielsson(i.a, i.to); },
       .theirs =
           [](Mats& m) { cv::distanceTransform(m.a, m.to, cv::DIST_L2, cv::DIST_MASK_PRECISE); }},
      {.operation = "distance",
       .kinds = SCENES,
       .ours = [](Images& i) { return ZEL_Distance(i.a, i.to, ZEL_Get_MO_STD3X3Ptr()); },
       .theirs = [](Mats& m) { cv::distanceTransform(m.a, m.to, cv::DIST_C, cv::DIST_MASK_3); }},
      {.operation = "circles", .kinds = BLOBS, .ours = Circles},
      {.operation = "skeleton",
       .kinds = SCENES,
       .sizes = SMALLER_SIZES,
       .prepare = bench::Pack,
       .ours = [](Images& i) { return ZEL_Skeleton(i.a, i.to, SKELETON_SET_A); },
       .peer = "Leptonica",
       .theirs = PeerThin},
      {.operation = "skeleton_zones",
       .kinds = BLOBS,
       .sizes = SMALLER_SIZES,
       .ours = [](Images& i) { return ZEL_Skeleton(i.a, i.to, SKELETON_INFLUENCE_ZONES); }},
      {.operation = "segmentation",
       .kinds = BLOBS,
       .result = IMAGE_I16,
       .prepare = PrepareZones,
       .ours = [](Images& i) { return ZEL_Segmentation(i.other, i.to); },
       .theirs = PeerZones},
      {.operation = "separation",
       .kinds = BLOBS,
       .ours = [](Images& i) { return ZEL_Separation(i.a, i.to, 5, ZEL_Get_MO_STD3X3Ptr()); }},
  };
}

const bench::Registration SHAPES({"shapes", "Shapes", NOTES, Pairs()});

}  // namespace
