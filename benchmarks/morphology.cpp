// Binary and gray morphology.
#include <leptonica/allheaders.h>

#include <memory>
#include <opencv2/imgproc.hpp>

#include "benchmarks/packed.h"
#include "benchmarks/pairs.h"

namespace {

using bench::Images;
using bench::Kind;
using bench::Mats;
using bench::Scene;

constexpr char NOTES[] = R"(
Binary operations are measured on blobs of 0 and 255, gray ones on random pixels. OpenCV continues the
image by what changes nothing, ours by copies of its outermost pixels; its `open`, `close` and `gradient`
are `morphologyEx`, and its auto-median is made of `erode`, `dilate` and bitwise operations. Disks have
the same members on both sides. The peer of `hit_miss` is Leptonica's `pixHMT` of a picture that is
already packed to a bit a pixel. Nobody else has hexagonal grids.
)";

// An element that owns its numbers, and the same for OpenCV.
struct Element {
  std::vector<int32_t> members;
  StructuringElement record{};
  cv::Mat kernel;

  explicit Element(const cv::Mat& of, bool hexagonal = false) : kernel(of) {
    for (int y = 0; y < of.rows; y++) {
      for (int x = 0; x < of.cols; x++) members.push_back(of.at<uint8_t>(y, x));
    }
    record = {of.cols, of.rows, members.data(), hexagonal ? 1 : 0};
  }
};
using SharedElement = std::shared_ptr<const Element>;

SharedElement Square(int side) {
  return std::make_shared<const Element>(cv::Mat::ones(side, side, CV_8U));
}
SharedElement Hexagon(int side) {
  return std::make_shared<const Element>(cv::Mat::ones(side, side, CV_8U), true);
}
SharedElement Disk(int side) {
  return std::make_shared<const Element>(
      cv::getStructuringElement(cv::MORPH_ELLIPSE, {side, side}));
}

using Export = int32_t (*)(ImageRef, ImageRef, int32_t, const StructuringElement*);
using Peer = void (*)(Mats&, const cv::Mat& kernel);

void PeerErode(Mats& m, const cv::Mat& kernel) {
  cv::erode(m.a, m.to, kernel);
}
void PeerDilate(Mats& m, const cv::Mat& kernel) {
  cv::dilate(m.a, m.to, kernel);
}
template <int operation>
void PeerCompound(Mats& m, const cv::Mat& kernel) {
  cv::morphologyEx(m.a, m.to, operation, kernel);
}

// closed, opened and closed, and the other way round
void PeerAutoMedian(Mats& m, const cv::Mat& kernel) {
  auto& [first, second, third, fourth] = m.scratch;
  cv::morphologyEx(m.a, first, cv::MORPH_CLOSE, kernel);
  cv::morphologyEx(first, second, cv::MORPH_OPEN, kernel);
  cv::morphologyEx(second, first, cv::MORPH_CLOSE, kernel);
  cv::morphologyEx(m.a, second, cv::MORPH_OPEN, kernel);
  cv::morphologyEx(second, third, cv::MORPH_CLOSE, kernel);
  cv::morphologyEx(third, second, cv::MORPH_OPEN, kernel);
  cv::min(m.a, first, fourth);
  cv::max(fourth, second, m.to);
}

const std::vector<Kind> BLOBS = {{IMAGE_U8, Scene::Blobs}};
const std::vector<Kind> BYTES = {{IMAGE_U8}};

bench::Pair PairOf(Export call, const std::string& name, const std::vector<Kind>& kinds,
                   int32_t operation, const SharedElement& element, Peer peer) {
  bench::Pair pair{.operation = name,
                   .kinds = kinds,
                   .border = std::max(bench::BORDER, element->record.width / 2),
                   .ours = [=](Images& i) { return call(i.a, i.to, operation, &element->record); }};
  if (peer) pair.theirs = [=](Mats& m) { peer(m, element->kernel); };
  return pair;
}

std::string Named(const char* name, int side) {
  return name + std::to_string(side) + "x" + std::to_string(side);
}

// Upper edges of blobs.
bench::Pair HitMiss() {
  constexpr char marks[] = "oooxXxxxx";
  cv::Mat kernel(3, 3, CV_8U);
  for (int i = 0; i < 9; i++) kernel.at<uint8_t>(i / 3, i % 3) = marks[i] == 'o' ? 0 : 1;
  const auto element = std::make_shared<const Element>(kernel);
  bench::Pair pair =
      PairOf(ZEL_Morphology, "hit_miss3x3", BLOBS, MORPHOLOGY_HIT_MISS, element, nullptr);
  const std::shared_ptr<SEL> sel(selCreateFromString(marks, 3, 3, nullptr),
                                 [](SEL* given) { selDestroy(&given); });
  const std::shared_ptr<PIX*> result(new PIX*(nullptr), [](PIX** kept) {
    pixDestroy(kept);
    delete kept;
  });
  pair.prepare = bench::Pack;
  pair.peer = "Leptonica";
  pair.theirs = [=](Mats& m) { *result = pixHMT(*result, bench::PackedOf(m), sel.get()); };
  return pair;
}

std::vector<bench::Pair> Pairs() {
  std::vector<bench::Pair> pairs;
  const auto binary = [&](const std::string& name, int32_t operation, const SharedElement& element,
                          Peer peer) {
    pairs.push_back(PairOf(ZEL_Morphology, "binary_" + name, BLOBS, operation, element, peer));
  };
  const auto gray = [&](const std::string& name, const std::vector<Kind>& kinds, int32_t operation,
                        const SharedElement& element, Peer peer) {
    pairs.push_back(PairOf(ZEL_GrayMorphology, "gray_" + name, kinds, operation, element, peer));
  };
  for (const int side : {3, 7, 15, 31}) {
    const SharedElement square = Square(side);
    binary(Named("erode", side), MORPHOLOGY_ERODE, square, PeerErode);
    binary(Named("dilate", side), MORPHOLOGY_DILATE, square, PeerDilate);
    const std::vector<Kind>& kinds = side == 3 || side == 15 ? bench::SCALARS : BYTES;
    gray(Named("erode", side), kinds, MORPHOLOGY_ERODE, square, PeerErode);
    gray(Named("dilate", side), kinds, MORPHOLOGY_DILATE, square, PeerDilate);
  }
  for (const int side : {3, 7}) {
    const SharedElement square = Square(side);
    binary(Named("open", side), MORPHOLOGY_OPEN, square, PeerCompound<cv::MORPH_OPEN>);
    binary(Named("gradient", side), MORPHOLOGY_GRADIENT, square, PeerCompound<cv::MORPH_GRADIENT>);
    binary(Named("auto_median", side), MORPHOLOGY_AUTO_MEDIAN, square, PeerAutoMedian);
    gray(Named("close", side), BYTES, MORPHOLOGY_CLOSE, square, PeerCompound<cv::MORPH_CLOSE>);
    gray(Named("auto_median", side), BYTES, MORPHOLOGY_AUTO_MEDIAN, square, PeerAutoMedian);
  }
  for (const int side : {7, 15}) {
    binary(Named("erode_disk", side), MORPHOLOGY_ERODE, Disk(side), PeerErode);
    gray(Named("dilate_disk", side), BYTES, MORPHOLOGY_DILATE, Disk(side), PeerDilate);
  }
  for (const int side : {3, 7}) {
    binary(Named("erode_hexagon", side), MORPHOLOGY_ERODE, Hexagon(side), nullptr);
  }
  pairs.push_back(HitMiss());
  return pairs;
}

const bench::Registration MORPHOLOGY({"morphology", "Morphology", NOTES, Pairs()});

}  // namespace
