// The mapping of pixels to the 256 levels of a palette.
#include "display/shadow.h"

#include <algorithm>
#include <cmath>

#include "core/numbers.h"
#include "display/shadow_rows.h"
#include "engine/bands.h"
#include "platform/workers.h"
#include "statistics/sums_rows.h"

namespace zel {
namespace {

int64_t BytesOf(const PixelView& view) {
  return int64_t{view.width} * view.pixelBytes * view.height;
}

LevelLine LineThrough(float low, float high) {
  if (low == high) return {};
  LevelLine line;
  line.slope = static_cast<float>(255.0 / (double{high} - double{low}));
  line.offset = static_cast<float>(-(double{line.slope} * double{low}));
  return line;
}

// A NaN is neither, and never takes part.
struct Range {
  float low = 1e+38F;
  float high = -1e+38F;

  void Add(const Range& other) {
    if (other.low < low) low = other.low;
    if (other.high > high) high = other.high;
  }
};

Range RangeOf(const PixelView& source) {
  const ExtremesRow extremesOf = sumsRows().extremes[source.type];
  Range ranges[WORKERS_AT_MOST];
  BandsRun({.units = source.height, .bytes = BytesOf(source)}, [&](const Band& band) {
    Range* range = &ranges[band.worker];
    for (int64_t y = band.begin; y < band.end; y++) {
      extremesOf(source.Row<void>(y), nullptr, source.width, &range->low, &range->high);
    }
  });
  Range all;
  for (const Range& range : ranges) all.Add(range);
  return all;
}

// The levels of floats that a row routine does not take.
void FarLevels(const void* pixels, const LevelLine& line, int32_t width, uint8_t* to) {
  const auto* from = static_cast<const float*>(pixels);
  for (int32_t x = 0; x < width; x++) to[x] = CutLow<uint8_t>(line.At(from[x]));
}

// All levels lie between those of the extremes.
bool AreNear(const LevelLine& line, const Range& range) {
  const auto isNear = [&line](float pixel) { return std::abs(line.At(pixel)) < 0x1p31; };
  return isNear(range.low) && isNear(range.high);
}

void ConvertScalars(const PixelView& source, const PixelView& shadow) {
  const Range range = RangeOf(source);
  const LevelLine line = LineThrough(range.low, range.high);
  LevelsRow levelsOf = source.type == IMAGE_I16 ? shadowRows().ofWords : shadowRows().ofFloats;
  if (!AreNear(line, range)) levelsOf = &FarLevels;
  BandsRun({.units = source.height, .bytes = 2 * BytesOf(source)}, [&](const Band& band) {
    for (int64_t y = band.begin; y < band.end; y++) {
      levelsOf(source.Row<void>(y), line, source.width, shadow.Row<uint8_t>(y));
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
  if (source.type == IMAGE_I16 || source.type == IMAGE_SGL) ConvertScalars(source, shadow);
  if (source.type == IMAGE_COMPLEX) ConvertComplex(source, shadow);
}

}  // namespace zel
