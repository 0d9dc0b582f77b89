// Steps held to a mask, where the library's calls know none.
#include "orlune/inspect/masking.h"

#include <cstring>

namespace front {

void RestoreOutside(const Image& before, ImageRef mask, ImageRef image) {
  ImageInfo from, over, to;
  Check(-ZEL_GetImageInfo(before, &from));
  Check(-ZEL_GetImageInfo(mask, &over));
  Check(-ZEL_GetImageInfo(image, &to));
  const auto bytes = static_cast<size_t>(from.pixelBytes);
  for (int32_t y = 0; y < from.height; ++y) {
    const auto* selected = y < over.height ? Row<const uint8_t>(over, y) : nullptr;
    for (int32_t x = 0; x < from.width; ++x) {
      if (selected && x < over.width && selected[x] != 0) continue;
      const size_t at = static_cast<size_t>(x) * bytes;
      std::memcpy(Row<uint8_t>(to, y) + at, Row<const uint8_t>(from, y) + at, bytes);
    }
  }
}

}  // namespace front
