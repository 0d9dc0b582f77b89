// Measures of lines and pixels.
#include "display/measures.h"

#include <algorithm>
#include <cmath>

#include "core/images.h"

namespace zel {
namespace {

constexpr double DEGREES = 57.29577867;

double AngleOf(double dx, double up) {
  if (dx == 0) return up < 0 ? 180.0 : 0.0;
  if (up == 0) return dx > 0 ? 270.0 : 90.0;
  const double angle = std::atan(dx / up) * -DEGREES;
  if (up < 0) return angle + 180.0;
  return dx > 0 ? angle + 360.0 : angle;
}

}  // namespace

LineMeasures MeasuresOf(PointInt from, PointInt to) {
  const double dx = double(to.x) - from.x;
  const double dy = double(to.y) - from.y;
  return {static_cast<float>(dx), static_cast<float>(dy), static_cast<float>(AngleOf(dx, -dy)),
          static_cast<float>(std::sqrt(dx * dx + dy * dy) + 0.5)};
}

KernelRect OrderedCorners(PointInt a, PointInt b) {
  return {std::min(a.x, b.x), std::min(a.y, b.y), std::max(a.x, b.x), std::max(a.y, b.y)};
}

PixelValues PixelOf(const WindowRecord& record, PointInt at) {
  Image* image = nullptr;
  if (ImageLookup(record.image, &image) != STATUS_OK) return {};
  const PixelView pixels = ViewOf(*image);
  if (pixels.IsEmpty() || !pixels.origin) return {};
  const int32_t x = std::clamp(at.x, 0, pixels.width - 1);
  const int32_t y = std::clamp(at.y, 0, pixels.height - 1);
  switch (pixels.type) {
    case IMAGE_U8:
      return {1, {static_cast<float>(*pixels.At<uint8_t>(x, y))}};
    case IMAGE_I16:
      return {1, {static_cast<float>(*pixels.At<int16_t>(x, y))}};
    case IMAGE_SGL:
      return {1, {*pixels.At<float>(x, y)}};
    case IMAGE_COMPLEX: {
      const float* pixel = pixels.At<float>(2 * int64_t{x}, y);
      return {2, {pixel[0], pixel[1]}};
    }
    case IMAGE_RGB: {
      const uint8_t* pixel = pixels.At<uint8_t>(4 * int64_t{x}, y);
      return {3, {float(pixel[2]), float(pixel[1]), float(pixel[0])}};
    }
    default:
      return {};
  }
}

}  // namespace zel
