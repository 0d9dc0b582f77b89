// Repeatable pictures: random pixels, blobs and noise.
#include "benchmarks/pictures.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace bench {
namespace {

class Random {
 public:
  explicit Random(uint64_t seed) : state_(seed * 0x9E3779B97F4A7C15u + 99) {}
  uint64_t Next() {
    state_ ^= state_ << 13;
    state_ ^= state_ >> 7;
    state_ ^= state_ << 17;
    return state_;
  }
  int32_t Below(int32_t limit) {
    return static_cast<int32_t>((Next() >> 24) % static_cast<uint64_t>(limit));
  }

 private:
  uint64_t state_;
};

void Must(int32_t status, const char* what) {
  if (status == 0) return;
  std::fprintf(stderr, "benchmark: %s gives %d\n", what, status);
  std::exit(1);
}

ImageRef Empty(int32_t type, int32_t border) {
  ImageRef image = 0;
  Must(ZEL_Create(&image, static_cast<int16_t>(type), border), "ZEL_Create");
  return image;
}

ImageRef Cleared(int32_t type, Size size, int32_t border) {
  const ImageRef image = Empty(type, border);
  Must(ZEL_SetImageSize(image, size.width, size.height), "ZEL_SetImageSize");
  Must(ZEL_ClearPixels(image), "ZEL_ClearPixels");
  return image;
}

// The rows of an image's pixels.
struct Rows {
  ImageInfo info{};
  explicit Rows(ImageRef image) { Must(-ZEL_GetImageInfo(image, &info), "ZEL_GetImageInfo"); }
  uint8_t* operator[](int32_t y) const {
    return static_cast<uint8_t*>(info.firstPixel) + int64_t{y} * info.lineBytes;
  }
  size_t Bytes() const {
    return static_cast<size_t>(info.width) * static_cast<size_t>(info.pixelBytes);
  }
};

// Bytes are random; floats lie from 0 to 256 in steps of 1/200.
void FillRandomly(ImageRef image, uint64_t seed) {
  const Rows rows(image);
  const bool floats = rows.info.type == IMAGE_SGL || rows.info.type == IMAGE_COMPLEX;
  Random random(seed);
  for (int32_t y = 0; y < rows.info.height; y++) {
    for (size_t i = 0; i < rows.Bytes(); i += floats ? sizeof(float) : sizeof(uint64_t)) {
      if (floats) {
        const float value = static_cast<float>(random.Below(51200)) / 200.0f;
        std::memcpy(rows[y] + i, &value, sizeof(value));
      } else {
        const uint64_t bytes = random.Next();
        std::memcpy(rows[y] + i, &bytes, std::min(sizeof(bytes), rows.Bytes() - i));
      }
    }
  }
}

void DrawBlobs(ImageRef image) {
  const Rows rows(image);
  const int32_t width = rows.info.width;
  const int32_t height = rows.info.height;
  Random random(4242);
  const int32_t blobs = std::max(6, width * height / 2600);
  const int32_t radii = std::clamp(std::min(width, height) / 8, 1, 18);
  for (int32_t i = 0; i < blobs; i++) {
    const int32_t centreX = random.Below(width);
    const int32_t centreY = random.Below(height);
    const int32_t radius = 4 + random.Below(radii);
    const int32_t hollow = i % 5 == 0 ? radius / 2 : 0;
    for (int32_t y = std::max(0, centreY - radius); y < std::min(height, centreY + radius); y++) {
      for (int32_t x = std::max(0, centreX - radius); x < std::min(width, centreX + radius); x++) {
        const int32_t dx = x - centreX;
        const int32_t dy = y - centreY;
        const int32_t distance = dx * dx + dy * dy;
        if (distance < radius * radius && distance >= hollow * hollow) rows[y][x] = 255;
      }
    }
  }
}

// Sets every other square of `grain` pixels on average.
void DrawNoise(ImageRef image, int32_t grain) {
  FillRandomly(image, 7);
  const Rows rows(image);
  for (int32_t y = 0; y < rows.info.height; y++) {
    const uint8_t* grains = rows[y / grain * grain];
    for (int32_t x = 0; x < rows.info.width; x++) {
      rows[y][x] = (grains[x / grain * grain] & 1) != 0 ? 255 : 0;
    }
  }
}

int32_t GrainFor(Size size) {
  constexpr double squares = 230000;
  const double area = static_cast<double>(size.width) * size.height;
  return std::max(3, static_cast<int32_t>(std::ceil(std::sqrt(area / squares))));
}

ImageRef Picture(Kind kind, Size size, int32_t border, uint64_t seed) {
  const ImageRef image = Cleared(kind.type, size, border);
  switch (kind.scene) {
    case Scene::Random:
      FillRandomly(image, seed);
      break;
    case Scene::Blobs:
      DrawBlobs(image);
      break;
    case Scene::Noise:
      DrawNoise(image, 1);
      break;
    case Scene::CoarseNoise:
      DrawNoise(image, GrainFor(size));
      break;
  }
  return image;
}

// A copy of the pixels: U8, I16, SGL, complex (2 channels) and RGB (4 channels).
cv::Mat MatOf(ImageRef image) {
  constexpr int types[] = {CV_8UC1, CV_16SC1, CV_32FC1, CV_32FC2, CV_8UC4};
  const Rows rows(image);
  cv::Mat mat(rows.info.height, rows.info.width, types[rows.info.type]);
  for (int32_t y = 0; y < rows.info.height; y++) std::memcpy(mat.ptr(y), rows[y], rows.Bytes());
  return mat;
}

}  // namespace

std::string NameOf(Size size) {
  return std::to_string(size.width) + "x" + std::to_string(size.height);
}

std::string NameOf(Kind kind) {
  constexpr const char* types[] = {"u8", "i16", "sgl", "complex", "rgb"};
  constexpr const char* scenes[] = {"", "-blobs", "-noise", "-coarse-noise"};
  return std::string(types[kind.type]) + scenes[static_cast<int32_t>(kind.scene)];
}

Pictures::Pictures(Kind kind, Size size, int32_t border) : kind_(kind), border_(border) {
  images.size = size;
  images.type = kind.type;
  images.a = Picture(kind, size, border, 1);
  images.b = Picture({kind.type}, size, border, 2);
  images.mask = Picture({IMAGE_U8, Scene::Blobs}, size, border, 3);
  images.noise = Picture({IMAGE_U8, Scene::Noise}, size, border, 4);
  mats.a = MatOf(images.a);
  mats.b = MatOf(images.b);
  mats.mask = MatOf(images.mask);
  mats.noise = MatOf(images.noise);
}

Pictures::~Pictures() {
  for (const ImageRef image : {images.a, images.b, images.mask, images.noise}) ZEL_Dispose(image);
  ClearAway();
}

bool Pictures::Are(Kind kind, Size size, int32_t border) const {
  return kind == kind_ && size == images.size && border == border_;
}

void Pictures::SetOut(int32_t type) {
  ClearAway();
  images.to = Empty(type, border_);
  images.other = Empty(type, border_);
}

void Pictures::ClearAway() {
  for (const ImageRef image : {images.to, images.other}) {
    if (image != 0) ZEL_Dispose(image);
  }
  images.array.clear();
  mats.to = cv::Mat();
  mats.other = cv::Mat();
  mats.scratch = {};
  mats.own.reset();
}

}  // namespace bench
