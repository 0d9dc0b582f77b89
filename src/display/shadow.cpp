// The mapping of pixels to the 256 levels of a palette.
#include "display/shadow.h"

#include <algorithm>
#include <cmath>

#include "core/heap.h"
#include "core/numbers.h"
#include "engine/bands.h"
#include "platform/workers.h"

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

int64_t BytesOf(const PixelView& view) {
  return int64_t{view.width} * view.pixelBytes * view.height;
}

Line LineThrough(float low, float high) {
  if (low == high) return {};
  Line line;
  line.slope = static_cast<float>(255.0 / (double{high} - double{low}));
  line.offset = static_cast<float>(-(double{line.slope} * double{low}));
  return line;
}

// A NaN is neither, and never takes part.
struct Range {
  float low = 1e+38F;
  float high = -1e+38F;

  void Add(float least, float most) {
    if (least < low) low = least;
    if (most > high) high = most;
  }
};

// Several pixels at a time, each with a range of its own, so that none waits for the one before.
template <class T>
void RangeAdd(const T* row, int32_t width, Range* range) {
  constexpr int32_t lanes = 16;
  float low[lanes];
  float high[lanes];
  std::fill_n(low, lanes, range->low);
  std::fill_n(high, lanes, range->high);
  int32_t x = 0;
  for (; x + lanes <= width; x += lanes) {
    for (int32_t i = 0; i < lanes; i++) {
      const auto pixel = static_cast<float>(row[x + i]);
      low[i] = pixel < low[i] ? pixel : low[i];
      high[i] = pixel > high[i] ? pixel : high[i];
    }
  }
  for (int32_t i = 0; i < lanes; i++) range->Add(low[i], high[i]);
  for (; x < width; x++) range->Add(static_cast<float>(row[x]), static_cast<float>(row[x]));
}

template <class T>
Line LineOf(const PixelView& source) {
  Range ranges[WORKERS_AT_MOST];
  BandsRun({.units = source.height, .bytes = BytesOf(source)}, [&](const Band& band) {
    for (int64_t y = band.begin; y < band.end; y++) {
      RangeAdd(source.Row<T>(y), source.width, &ranges[band.worker]);
    }
  });
  Range all;
  for (const Range& range : ranges) all.Add(range.low, range.high);
  return LineThrough(all.low, all.high);
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
  BandsRun({.units = source.height, .bytes = 4 * BytesOf(source)}, [&](const Band& band) {
    for (int64_t y = band.begin; y < band.end; y++) {
      const T* from = source.Row<T>(y);
      auto* to = shadow.Row<uint8_t>(y);
      for (int32_t x = 0; x < source.width; x++) to[x] = line.LevelOf(from[x]);
    }
  });
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
