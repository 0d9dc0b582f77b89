// Structuring elements of plain shapes.
#include "orlune/filter/element.h"

#include <algorithm>

namespace front {
namespace {

// The pixels of the rectangle that lie in the ellipse which fills it.
bool EllipseHolds(int32_t width, int32_t height, int32_t x, int32_t y) {
  const double u = (2.0 * x + 1 - width) / width;
  const double v = (2.0 * y + 1 - height) / height;
  return u * u + v * v <= 1;
}

}  // namespace

Element::Element(int32_t width, int32_t height, ElementShape shape) {
  for (int32_t y = 0; y < height; ++y) {
    for (int32_t x = 0; x < width; ++x) {
      members_.push_back(shape != DISK || EllipseHolds(width, height, x, y) ? 1 : 0);
    }
  }
  record_ = {width, height, members_.data(), shape == HEXAGON ? 1 : 0};
}

int32_t ElementBorder(int32_t width, int32_t height) {
  return (std::max(width, height) - 1) / 2;
}

}  // namespace front
