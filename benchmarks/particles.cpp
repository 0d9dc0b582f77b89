// Labelling and particle measurement beside connected components of the peers.
#include <leptonica/allheaders.h>

#include <opencv2/imgproc.hpp>

#include "benchmarks/packed.h"
#include "benchmarks/pairs.h"

namespace {

using bench::Images;
using bench::Kind;
using bench::Mats;
using bench::Scene;
using bench::Size;

constexpr char NOTES[] = R"(
Blobs are disks and rings that cover a fifth of the image, noise sets each pixel by chance, coarse
noise each square of pixels. Noise of single pixels has more provisional labels than 16 bits count in
larger images, and with 4 neighbours from full HD on; such calls are refused, so it is measured at
sizes that are accepted and coarse noise stands for it beyond.

OpenCV has 16-bit labels here, and its statistics are area, rectangle and centre; those of `boxes` are
Leptonica's rectangles, of a picture that is already packed to a bit a pixel. `particle` measures
perimeters, holes with their perimeters, second moments and longest runs besides, and is the slower
call where every second pixel belongs to another hole.
)";

const std::vector<Kind> SCENES = {{IMAGE_U8, Scene::Blobs}, {IMAGE_U8, Scene::CoarseNoise}};
const std::vector<Kind> NOISE = {{IMAGE_U8, Scene::Noise}};
const std::vector<Size> NOISE_SIZES = {{64, 64}, {480, 360}};
const std::vector<Size> NOISE_SIZES_8 = {{64, 64}, {480, 360}, {1920, 1080}};

constexpr uint16_t CONNECTIVITY_4 = 0;
constexpr uint16_t CONNECTIVITY_8 = 1;

template <uint16_t connectivity>
constexpr int NEIGHBOURS = connectivity == CONNECTIVITY_8 ? 8 : 4;

template <uint16_t connectivity>
int32_t Label(Images& i) {
  int32_t count = 0;
  return ZEL_Label(i.a, i.to, connectivity, &count);
}

template <uint16_t connectivity>
void PeerLabel(Mats& m) {
  cv::connectedComponents(m.a, m.to, NEIGHBOURS<connectivity>, CV_16U);
}

template <uint16_t connectivity>
int32_t BasicParticle(Images& i) {
  BasicParticleReport* reports = nullptr;
  const int32_t status = ZEL_BasicParticle(i.a, connectivity, &reports, nullptr);
  ZEL_free(reports);
  return status;
}

template <uint16_t connectivity>
int32_t Particle(Images& i) {
  ParticleReport* reports = nullptr;
  const int32_t status = ZEL_Particle(i.a, connectivity, &reports, nullptr);
  ZEL_free(reports);
  return status;
}

template <uint16_t connectivity>
void PeerParticle(Mats& m) {
  cv::connectedComponentsWithStats(m.a, m.to, m.scratch[0], m.scratch[1], NEIGHBOURS<connectivity>,
                                   CV_16U);
}

template <uint16_t connectivity>
void PeerBoxes(Mats& m) {
  PIX* packed = bench::PackedOf(m);
  BOXA* boxes = pixConnComp(packed, nullptr, NEIGHBOURS<connectivity>);
  boxaDestroy(&boxes);
}

template <uint16_t connectivity>
void AddPairs(const std::vector<Kind>& kinds, const std::vector<Size>& sizes,
              std::vector<bench::Pair>* pairs) {
  const std::string number = std::to_string(NEIGHBOURS<connectivity>);
  pairs->push_back({.operation = "label" + number,
                    .kinds = kinds,
                    .sizes = sizes,
                    .result = IMAGE_I16,
                    .ours = Label<connectivity>,
                    .theirs = PeerLabel<connectivity>});
  pairs->push_back({.operation = "basic_particle" + number,
                    .kinds = kinds,
                    .sizes = sizes,
                    .ours = BasicParticle<connectivity>,
                    .theirs = PeerParticle<connectivity>});
  pairs->push_back({.operation = "basic_particle" + number + "_boxes",
                    .kinds = kinds,
                    .sizes = sizes,
                    .prepare = bench::Pack,
                    .ours = BasicParticle<connectivity>,
                    .peer = "Leptonica",
                    .theirs = PeerBoxes<connectivity>});
  pairs->push_back({.operation = "particle" + number,
                    .kinds = kinds,
                    .sizes = sizes,
                    .ours = Particle<connectivity>,
                    .theirs = PeerParticle<connectivity>});
}

std::vector<bench::Pair> Pairs() {
  std::vector<bench::Pair> pairs;
  AddPairs<CONNECTIVITY_4>(SCENES, bench::SIZES, &pairs);
  AddPairs<CONNECTIVITY_8>(SCENES, bench::SIZES, &pairs);
  AddPairs<CONNECTIVITY_4>(NOISE, NOISE_SIZES, &pairs);
  AddPairs<CONNECTIVITY_8>(NOISE, NOISE_SIZES_8, &pairs);
  return pairs;
}

const bench::Registration PARTICLES({"particles", "Particles", NOTES, Pairs()});

}  // namespace
