// Row routines that put results under a mask.
#include "engine/window_rows.h"

namespace zel::ZEL_LEVEL {
namespace {

template <class Pixel>
void CopySelected(const void* from, const uint8_t* mask, void* to, int32_t columns) {
  const auto* pixels = static_cast<const Pixel*>(from);
  auto* __restrict results = static_cast<Pixel*>(to);
  for (int64_t x = 0; x < columns; x++) results[x] = mask[x] != 0 ? pixels[x] : results[x];
}

}  // namespace

extern const WindowMaskRows windowMaskRows = {
    .bytes1 = &CopySelected<uint8_t>,
    .bytes2 = &CopySelected<uint16_t>,
    .bytes4 = &CopySelected<uint32_t>,
};

}  // namespace zel::ZEL_LEVEL
