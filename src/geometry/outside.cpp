// What results show where no pixel of the source lies.
#include "geometry/outside.h"

#include <algorithm>
#include <bit>

#include "core/numbers.h"
#include "core/pixel_types.h"

namespace zel {
namespace {

uint32_t BitsOf(int32_t type, float number) {
  switch (type) {
    case IMAGE_U8:
      return CutLow<uint8_t>(static_cast<double>(number));
    case IMAGE_I16:
      return CutLow<uint16_t>(static_cast<double>(number));
    case IMAGE_RGB:
      return CutLow<uint8_t>(static_cast<double>(number)) * uint32_t{0x010101};
    default:
      return std::bit_cast<uint32_t>(number);
  }
}

}  // namespace

OutsidePixel::OutsidePixel(int16_t imageType, float number)
    : bits(BitsOf(imageType, number)), type(imageType) {}

void OutsidePixel::Fill(void* to, int64_t count) const {
  switch (type) {
    case IMAGE_U8:
      std::fill_n(static_cast<uint8_t*>(to), count, static_cast<uint8_t>(bits));
      break;
    case IMAGE_I16:
      std::fill_n(static_cast<uint16_t*>(to), count, static_cast<uint16_t>(bits));
      break;
    default:
      std::fill_n(static_cast<uint32_t*>(to), count, bits);
      break;
  }
}

void OutsidePixel::FillColours(void* to, int64_t count) const {
  if (type != IMAGE_RGB) return Fill(to, count);
  auto* pixels = static_cast<uint32_t*>(to);
  for (int64_t i = 0; i < count; i++) pixels[i] = (pixels[i] & 0xFF000000) | bits;
}

}  // namespace zel
