#include "harness/printed_code.h"

#include <cstring>

namespace test {
namespace {

constexpr int32_t MODULE = 2;
constexpr int32_t MARGIN = 6;
constexpr int32_t HEIGHT = 3;

}  // namespace

int32_t PrintCode(const PrintedCode& code, ImageRef* image) {
  int32_t width = 2 * MARGIN;
  for (const char* run = code; *run != 0; run++) width += MODULE * (*run - '0');
  *image = 0;
  int32_t result = ZEL_Create(image, IMAGE_U8, 0);
  if (result == 0) result = ZEL_SetImageSize(*image, width, HEIGHT);
  ImageInfo info{};
  if (result == 0) result = ZEL_GetImageInfo(*image, &info);
  if (result != 0) {
    if (*image != 0 && *image != 0xFFFFFFFF) ZEL_Dispose(*image);
    *image = 0;
    return result;
  }
  for (int32_t y = 0; y < HEIGHT; y++) {
    auto* pixel = static_cast<uint8_t*>(info.firstPixel) + int64_t{y} * info.lineBytes;
    std::memset(pixel, 200, static_cast<size_t>(width));
    pixel += MARGIN;
    for (size_t i = 0; code[i] != 0; i++) {
      const int32_t columns = MODULE * (code[i] - '0');
      if (i % 2 == 0) std::memset(pixel, 40, static_cast<size_t>(columns));
      pixel += columns;
    }
  }
  return 0;
}

}  // namespace test
