#include "harness/sweep/sweep.h"

#include <iterator>
#include <limits>

namespace test {
namespace {

constexpr int32_t TYPES[] = {IMAGE_U8, IMAGE_I16, IMAGE_SGL, IMAGE_COMPLEX, IMAGE_RGB};

// Around the groups of the row routines; one that the Fourier transform takes.
constexpr struct {
  int32_t width, height;
} SIZES[] = {{1, 1}, {3, 7}, {8, 5}, {17, 9}, {31, 4}, {32, 16}, {65, 33}, {129, 10}};

constexpr float SPECIAL[] = {std::numeric_limits<float>::quiet_NaN(),
                             std::numeric_limits<float>::infinity(),
                             -std::numeric_limits<float>::infinity(),
                             3e9f,
                             -3e9f,
                             1e30f,
                             -1e30f,
                             70000.0f,
                             -70000.0f,
                             -0.0f,
                             1e-40f,
                             -1e-40f,
                             255.5f,
                             -0.5f,
                             32767.5f,
                             9.3e18f};

TestImage WithSpecials(int32_t type, int32_t width, int32_t height) {
  TestImage image(type, width, height, 3, 2);
  if (type != IMAGE_SGL) return image;
  size_t next = 0;
  for (int32_t y = 0; y < height; y++) {
    for (int32_t x = y % 3; x < width; x += 5) {
      image.Set(x, y, SPECIAL[next++ % std::size(SPECIAL)]);
    }
  }
  return image;
}

TestImage Blobs(int32_t width, int32_t height) {
  TestImage image(IMAGE_U8, width, height, 2, 5);
  for (int32_t y = 0; y < height; y++) {
    for (int32_t x = 0; x < width; x++) {
      const bool round = (x % 13 - 6) * (x % 13 - 6) + (y % 11 - 5) * (y % 11 - 5) < 22;
      const bool hole = x % 13 == 6 && y % 11 == 5 && x % 2 == 0;
      const bool speck = image.Get<uint8_t>(x, y) % 8 == 0;
      image.Set<uint8_t>(x, y, (round && !hole) != speck ? 255 : 0);
    }
  }
  return image;
}

int32_t MaskSide(int32_t side) {
  return side - side / 8;
}

}  // namespace

Sweep::Sweep(int32_t type_, int32_t width_, int32_t height_, Digest* digest)
    : type(type_),
      width(width_),
      height(height_),
      first(type_, width_, height_, 3, 1),
      second(WithSpecials(type_, width_, height_)),
      mask(IMAGE_U8, MaskSide(width_), MaskSide(height_), 0, 4),
      blobs(Blobs(width_, height_)),
      result(type_, 1, 1, 3, 3),
      digest_(digest) {
  ZEL_SetImageOffset(mask, width / 9, height / 9);
}

void Sweep::Add(int32_t status) {
  AddImage(status, result);
}

void Sweep::AddImage(int32_t status, ImageRef image) {
  digest_->Add(status);
  digest_->AddImage(image);
}

const std::vector<SweepFamily>& SweepFamilies() {
  static const std::vector<SweepFamily> families = {
      {"utilities", SweepUtilities},   {"point", SweepPoint},
      {"statistics", SweepStatistics}, {"particles", SweepParticles},
      {"filters", SweepFilters},       {"geometry", SweepGeometry},
      {"morphology", SweepMorphology}, {"particle-filters", SweepParticleFilters},
      {"shapes", SweepShapes},         {"colour", SweepColour},
      {"frequency", SweepFrequency},   {"files", SweepFiles},
      {"regions", SweepRegions},       {"vision", SweepVision},
  };
  return families;
}

void RunSweep(const SweepFamily& family, Digest* digest) {
  for (const int32_t type : TYPES) {
    for (const auto& [width, height] : SIZES) {
      Sweep sweep(type, width, height, digest);
      family.run(sweep);
    }
  }
}

}  // namespace test
