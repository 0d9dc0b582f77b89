// All pixels of an image copied or cleared, row by row.
#include "morphology/whole_images.h"

#include <cstring>

namespace zel {

void PixelsCopy(const PixelView& from, const PixelView& to) {
  if (from.origin == to.origin) return;
  for (int32_t y = 0; y < from.height; y++) {
    std::memcpy(to.Row<void>(y), from.Row<void>(y), static_cast<size_t>(from.RowBytes()));
  }
}

void PixelsClear(const PixelView& view) {
  for (int32_t y = 0; y < view.height; y++) {
    std::memset(view.Row<void>(y), 0, static_cast<size_t>(view.RowBytes()));
  }
}

}  // namespace zel
