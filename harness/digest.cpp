#include "harness/digest.h"

#include <cmath>
#include <cstring>
#include <limits>

namespace test {

void Digest::Add(const void* data, size_t bytes) {
  const auto* byte = static_cast<const uint8_t*>(data);
  for (size_t i = 0; i < bytes; i++) value_ = (value_ ^ byte[i]) * 0x100000001B3u;
}

void Digest::AddFloats(const void* floats, size_t count) {
  for (size_t i = 0; i < count; i++) {
    float value = 0;
    std::memcpy(&value, static_cast<const uint8_t*>(floats) + 4 * i, sizeof(value));
    if (std::isnan(value)) value = std::numeric_limits<float>::quiet_NaN();
    Add(&value, sizeof(value));
  }
}

void Digest::Add(double value) {
  if (std::isnan(value)) value = std::numeric_limits<double>::quiet_NaN();
  Add(&value, sizeof(value));
}

void Digest::AddImage(ImageRef image) {
  ImageInfo info{};
  if (image == 0 || ZEL_GetImageInfo(image, &info) != 0) return;
  Add(info.type);
  Add(info.width);
  Add(info.height);
  AddFloats(&info.xStep, 1);
  AddFloats(&info.yStep, 1);
  for (int32_t y = 0; y < info.height; y++) {
    const auto* row = static_cast<const uint8_t*>(info.firstPixel) + int64_t{y} * info.lineBytes;
    const auto bytes = static_cast<size_t>(info.width) * static_cast<size_t>(info.pixelBytes);
    if (info.type == IMAGE_SGL || info.type == IMAGE_COMPLEX) {
      AddFloats(row, bytes / sizeof(float));
    } else {
      Add(row, bytes);
    }
  }
}

void Digest::AddImages() {
  int32_t count = 0;
  ZEL_GetImageReference(-1, nullptr, &count);
  Add(count);
  for (int32_t i = 0; i < count; i++) {
    ImageRef image = 0;
    ZEL_GetImageReference(i, &image, nullptr);
    AddImage(image);
  }
}

}  // namespace test
