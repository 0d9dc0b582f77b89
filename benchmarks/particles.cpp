// Labelling and particle measurement beside connected components of the peers.
#include <cstdlib>
#include <string>

#include "benchmarks/pairs.h"

#if defined(HAVE_OPENCV)
#include <opencv2/imgproc.hpp>
#endif
#if defined(HAVE_LEPTONICA)
#include <leptonica/allheaders.h>
#endif

namespace {

struct Scene {
  std::string name;
  int32_t width, height;
  ImageRef image;
};

// A call that fails would be measured as a fast one.
void MustSucceed(int32_t result) {
  if (result != 0) std::abort();
}

// Full-HD noise of single pixels has too many provisional labels for 4-connectivity, so noise of
// coarser grain and a smaller image stand for it.
std::vector<Scene> Scenes() {
  return {{"blobs", 64, 64, bench::MakeBlobs(64, 64, 2)},
          {"blobs", 1920, 1080, bench::MakeBlobs(1920, 1080, 2)},
          {"noise", 64, 64, bench::MakeNoise(64, 64, 2)},
          {"noise", 480, 360, bench::MakeNoise(480, 360, 2)},
          {"coarse_noise", 1920, 1080, bench::MakeNoise(1920, 1080, 2, 3)}};
}

void RegisterLabel(const Scene& scene, uint16_t connectivity) {
  const ImageRef image = scene.image;
  const ImageRef labels = bench::MakeDestination(IMAGE_I16, 2);
  const auto ours = [=] {
    int32_t count = 0;
    MustSucceed(ZEL_Label(image, labels, connectivity, &count));
  };
  std::function<void()> theirs;
#if defined(HAVE_OPENCV)
  theirs = [mat = bench::MatOf(image), numbers = cv::Mat(), connectivity]() mutable {
    cv::connectedComponents(mat, numbers, connectivity != 0 ? 8 : 4, CV_16U);
  };
#endif
  bench::Pair(std::string("label") + (connectivity != 0 ? "8_" : "4_") + scene.name, "u8",
              scene.width, scene.height, "opencv", ours, theirs);
}

std::function<void()> StatsOfOpenCv([[maybe_unused]] ImageRef image,
                                    [[maybe_unused]] uint16_t connectivity) {
#if defined(HAVE_OPENCV)
  return [mat = bench::MatOf(image), numbers = cv::Mat(), stats = cv::Mat(), centroids = cv::Mat(),
          connectivity]() mutable {
    cv::connectedComponentsWithStats(mat, numbers, stats, centroids, connectivity != 0 ? 8 : 4,
                                     CV_16U);
  };
#else
  return {};
#endif
}

// The picture is handed over one bit a pixel, as that library works.
std::function<void()> BoxesOfLeptonica([[maybe_unused]] ImageRef image,
                                       [[maybe_unused]] uint16_t connectivity) {
#if defined(HAVE_LEPTONICA)
  ImageInfo info{};
  ZEL_GetImageInfo(image, &info);
  PIX* pix = pixCreate(info.width, info.height, 1);
  for (int32_t y = 0; y < info.height; y++) {
    const auto* row = static_cast<const uint8_t*>(info.firstPixel) + int64_t{y} * info.lineBytes;
    for (int32_t x = 0; x < info.width; x++) {
      if (row[x] != 0) pixSetPixel(pix, x, y, 1);
    }
  }
  return [pix, connectivity] {
    BOXA* boxes = pixConnComp(pix, nullptr, connectivity != 0 ? 8 : 4);
    boxaDestroy(&boxes);
  };
#else
  return {};
#endif
}

void RegisterReports(const Scene& scene, uint16_t connectivity) {
  const ImageRef image = scene.image;
  const std::string suffix = (connectivity != 0 ? "8_" : "4_") + scene.name;
  const auto basic = [=] {
    BasicParticleReport* reports = nullptr;
    int32_t count = 0;
    MustSucceed(ZEL_BasicParticle(image, connectivity, &reports, &count));
    ZEL_free(reports);
  };
  const auto full = [=] {
    ParticleReport* reports = nullptr;
    int32_t count = 0;
    MustSucceed(ZEL_Particle(image, connectivity, &reports, &count));
    ZEL_free(reports);
  };
  bench::Pair("basic_particle" + suffix, "u8", scene.width, scene.height, "opencv", basic,
              StatsOfOpenCv(image, connectivity));
  bench::Pair("basic_particle_boxes" + suffix, "u8", scene.width, scene.height, "leptonica", basic,
              BoxesOfLeptonica(image, connectivity));
  bench::Pair("particle" + suffix, "u8", scene.width, scene.height, "opencv", full,
              StatsOfOpenCv(image, connectivity));
}

void Register() {
  for (const Scene& scene : Scenes()) {
    for (const uint16_t connectivity : {uint16_t{0}, uint16_t{1}}) {
      RegisterLabel(scene, connectivity);
      RegisterReports(scene, connectivity);
    }
  }
  const Scene fine = {"noise", 1920, 1080, bench::MakeNoise(1920, 1080, 2)};
  int32_t count = 0;
  const ImageRef labels = bench::MakeDestination(IMAGE_I16, 2);
  if (ZEL_Label(fine.image, labels, 1, &count) == 0) RegisterLabel(fine, 1);
}

const bench::Family FAMILY(Register);

}  // namespace
