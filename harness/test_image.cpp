#include "harness/test_image.h"

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <sstream>

namespace test {
namespace {

[[noreturn]] void Stop(const char* what) {
  std::fprintf(stderr, "test image: %s\n", what);
  std::abort();
}

bool HasFloats(int32_t type) {
  return type == IMAGE_SGL || type == IMAGE_COMPLEX;
}

}  // namespace

TestImage::TestImage(int32_t type, int32_t width, int32_t height, int32_t border, uint64_t seed) {
  if (ZEL_Create(&reference_, static_cast<int16_t>(type), border) != 0 ||
      ZEL_SetImageSize(reference_, width, height) != 0) {
    Stop("cannot be made");
  }
  FillRandom(seed);
}

TestImage::~TestImage() {
  if (reference_ != 0) ZEL_Dispose(reference_);
}

TestImage TestImage::FromRows(const std::vector<std::string>& rows, int32_t border, uint8_t value) {
  const auto height = static_cast<int32_t>(rows.size());
  const auto width = rows.empty() ? 0 : static_cast<int32_t>(rows[0].size());
  TestImage image(IMAGE_U8, width, height, border);
  for (int32_t y = 0; y < height; y++) {
    for (int32_t x = 0; x < width; x++) {
      const char mark = rows[static_cast<size_t>(y)][static_cast<size_t>(x)];
      image.Set<uint8_t>(x, y, mark == '.' ? 0 : value);
    }
  }
  return image;
}

ImageInfo TestImage::Info() const {
  ImageInfo info{};
  if (ZEL_GetImageInfo(reference_, &info) == 200) Stop("is gone");
  return info;
}

void* TestImage::Address(int32_t x, int32_t y) const {
  void* address = nullptr;
  if (ZEL_GetPixelAddress(reference_, x, y, &address) != 0) Stop("has no such pixel");
  return address;
}

uint8_t* TestImage::BlockStart() const {
  const ImageInfo info = Info();
  if (info.totalBytes == 0) return nullptr;
  const int32_t step = info.pixelBytes >= 8 ? 1 : 8 / info.pixelBytes;
  const int64_t leftPad = (info.border + step - 1) / step * step;
  return static_cast<uint8_t*>(info.firstPixel) - int64_t{info.border} * info.lineBytes -
         leftPad * info.pixelBytes;
}

void TestImage::FillRandom(uint64_t seed) const {
  const ImageInfo info = Info();
  uint8_t* block = BlockStart();
  Random random(seed);
  if (HasFloats(info.type)) {
    for (int32_t i = 0; i < info.totalBytes; i += 4) {
      const float value = random.Float(-400.0f, 400.0f);
      std::memcpy(block + i, &value, 4);
    }
  } else {
    for (int32_t i = 0; i < info.totalBytes; i++) block[i] = static_cast<uint8_t>(random.Next());
  }
}

std::vector<uint8_t> TestImage::Pixels() const {
  const ImageInfo info = Info();
  const auto rowBytes = static_cast<size_t>(info.width) * static_cast<size_t>(info.pixelBytes);
  std::vector<uint8_t> pixels;
  for (int32_t y = 0; y < info.height; y++) {
    const auto* row = static_cast<const uint8_t*>(Address(0, y));
    pixels.insert(pixels.end(), row, row + rowBytes);
  }
  return pixels;
}

std::vector<uint8_t> TestImage::Block() const {
  const uint8_t* block = BlockStart();
  return block ? std::vector<uint8_t>(block, block + Info().totalBytes) : std::vector<uint8_t>();
}

std::vector<uint8_t> TestImage::Surroundings() const {
  const ImageInfo info = Info();
  std::vector<uint8_t> block = Block();
  const uint8_t* start = BlockStart();
  for (int32_t y = 0; y < info.height; y++) {
    const auto at = static_cast<const uint8_t*>(Address(0, y)) - start;
    std::memset(block.data() + at, 0,
                static_cast<size_t>(info.width) * static_cast<size_t>(info.pixelBytes));
  }
  return block;
}

double PixelOf(const TestImage& image, int32_t x, int32_t y) {
  switch (image.Info().type) {
    case IMAGE_U8:
      return image.Get<uint8_t>(x, y);
    case IMAGE_I16:
      return image.Get<int16_t>(x, y);
    default:
      return static_cast<double>(image.Get<float>(x, y));
  }
}

bool Selects(const TestImage* mask, int32_t x, int32_t y) {
  if (!mask) return true;
  const ImageInfo info = mask->Info();
  const int64_t maskX = int64_t{x} - info.offsetX;
  const int64_t maskY = int64_t{y} - info.offsetY;
  return maskX >= 0 && maskY >= 0 && maskX < info.width && maskY < info.height &&
         mask->Get<uint8_t>(static_cast<int32_t>(maskX), static_cast<int32_t>(maskY)) != 0;
}

std::string PixelDifference(const TestImage& actual, const TestImage& expected) {
  const ImageInfo a = actual.Info();
  const ImageInfo e = expected.Info();
  std::ostringstream text;
  if (a.type != e.type || a.width != e.width || a.height != e.height) {
    text << "type " << a.type << ", " << a.width << " x " << a.height << " instead of type "
         << e.type << ", " << e.width << " x " << e.height;
    return text.str();
  }
  for (int32_t y = 0; y < a.height; y++) {
    for (int32_t x = 0; x < a.width; x++) {
      const void* at = actual.At<uint8_t>(x, y);
      const void* wanted = expected.At<uint8_t>(x, y);
      if (std::memcmp(at, wanted, static_cast<size_t>(a.pixelBytes)) == 0) continue;
      std::vector<double> values;
      bool onlyNan = HasFloats(a.type);
      for (const void* pixel : {at, wanted}) {
        if (HasFloats(a.type)) {
          for (int32_t part = 0; part < a.pixelBytes / 4; part++) {
            float value = 0;
            std::memcpy(&value, static_cast<const uint8_t*>(pixel) + 4 * part, 4);
            values.push_back(static_cast<double>(value));
          }
        } else if (a.type == IMAGE_I16) {
          int16_t value = 0;
          std::memcpy(&value, pixel, 2);
          values.push_back(value);
        } else {
          for (int32_t part = 0; part < a.pixelBytes; part++) {
            values.push_back(static_cast<const uint8_t*>(pixel)[part]);
          }
        }
      }
      const size_t parts = values.size() / 2;
      for (size_t part = 0; part < parts; part++) {
        const bool bothNan = std::isnan(values[part]) && std::isnan(values[parts + part]);
        const bool same = values[part] == values[parts + part] &&
                          std::signbit(values[part]) == std::signbit(values[parts + part]);
        onlyNan = onlyNan && (bothNan || same);
      }
      if (onlyNan) continue;
      text << "pixel (" << x << ", " << y << ") of " << a.width << " x " << a.height << " is";
      for (size_t part = 0; part < parts; part++) text << ' ' << values[part];
      text << " instead of";
      for (size_t part = 0; part < parts; part++) text << ' ' << values[parts + part];
      return text.str();
    }
  }
  return "";
}

}  // namespace test
