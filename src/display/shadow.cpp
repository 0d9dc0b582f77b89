// The mapping of pixels to the 256 levels of a palette.
#include "display/shadow.h"

#include <algorithm>
#include <cmath>

#include "core/heap.h"
#include "core/numbers.h"

namespace zel {
namespace {

// pixel * slope + offset, in doubles, of which the low 8 bits are shown: the largest pixel often
// lands on 254.
struct Line {
  float slope = 1;
  float offset = 0;

  uint8_t LevelOf(double pixel) const {
    return CutLow<uint8_t>(pixel * double{slope} + double{offset});
  }
};

Line LineThrough(float low, float high) {
  if (low == high) return {};
  Line line;
  line.slope = static_cast<float>(255.0 / (double{high} - double{low}));
  line.offset = static_cast<float>(-(double{line.slope} * double{low}));
  return line;
}

template <class T>
Line LineOf(const PixelView& source) {
  float low = 1e+38F;
  float high = -1e+38F;
  for (int32_t y = 0; y < source.height; y++) {
    const T* row = source.Row<T>(y);
    for (int32_t x = 0; x < source.width; x++) {
      // A NaN is neither, and never takes part.
      const auto pixel = static_cast<float>(row[x]);
      if (pixel < low) low = pixel;
      if (pixel > high) high = pixel;
    }
  }
  return LineThrough(low, high);
}

constexpr int32_t I16_LEVELS = 65536;

// Each level once, where there are more pixels than levels.
bool ConvertByTable(const PixelView& source, const PixelView& shadow, const Line& line) {
  WorkArray<uint8_t> levels;
  if (int64_t{source.width} * source.height <= I16_LEVELS || !levels.Allocate(I16_LEVELS)) {
    return false;
  }
  for (int32_t i = 0; i < I16_LEVELS; i++) {
    levels[static_cast<uint16_t>(i + INT16_MIN)] = line.LevelOf(i + INT16_MIN);
  }
  const uint8_t* table = levels.data();
  for (int32_t y = 0; y < source.height; y++) {
    const auto* from = source.Row<uint16_t>(y);
    auto* to = shadow.Row<uint8_t>(y);
    for (int32_t x = 0; x < source.width; x++) to[x] = table[from[x]];
  }
  return true;
}

template <class T>
void ConvertPixels(const PixelView& source, const PixelView& shadow, const Line& line) {
  for (int32_t y = 0; y < source.height; y++) {
    const T* from = source.Row<T>(y);
    auto* to = shadow.Row<uint8_t>(y);
    for (int32_t x = 0; x < source.width; x++) to[x] = line.LevelOf(from[x]);
  }
}

// What magnitudes are divided by: the larger the image, the more its sums grow. Without a power of
// two small enough the shift is one by -1, of which the low five bits count.
double MagnitudeScale(int32_t width, int32_t height) {
  const int64_t room = (int64_t{width} + height) / 32;
  int32_t n = 29;
  while (n >= 0 && (int64_t{1} << n) > room) n--;
  const uint32_t scale = uint32_t{1} << (static_cast<uint32_t>(2 * n + 1) & 31);
  return static_cast<int32_t>(scale);
}

void SwapQuadrants(const PixelView& shadow) {
  const int32_t halfWidth = shadow.width / 2;
  const int32_t halfHeight = shadow.height / 2;
  for (int32_t y = 0; y < halfHeight; y++) {
    auto* upper = shadow.Row<uint8_t>(y);
    auto* lower = shadow.Row<uint8_t>(y + halfHeight);
    std::swap_ranges(upper, upper + halfWidth, lower + halfWidth);
    std::swap_ranges(upper + halfWidth, upper + 2 * halfWidth, lower);
  }
}

void ConvertComplex(const PixelView& source, const PixelView& shadow) {
  const double scale = MagnitudeScale(source.width, source.height);
  for (int32_t y = 0; y < source.height; y++) {
    const auto* from = source.Row<float>(y);
    auto* to = shadow.Row<uint8_t>(y);
    for (int32_t x = 0; x < source.width; x++) {
      const double re = double{from[2 * x]} / scale;
      const double im = double{from[2 * x + 1]} / scale;
      to[x] = CutLow<uint8_t>(std::sqrt(re * re + im * im));
    }
  }
  SwapQuadrants(shadow);
}

}  // namespace

void ShadowConvert(const PixelView& source, const PixelView& shadow) {
  if (source.IsEmpty()) return;
  if (source.type == IMAGE_I16) {
    const Line line = LineOf<int16_t>(source);
    if (!ConvertByTable(source, shadow, line)) ConvertPixels<int16_t>(source, shadow, line);
  }
  if (source.type == IMAGE_SGL) ConvertPixels<float>(source, shadow, LineOf<float>(source));
  if (source.type == IMAGE_COMPLEX) ConvertComplex(source, shadow);
}

}  // namespace zel
