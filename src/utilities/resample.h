// What the methods of resampling share: where results stand in the source.
#pragma once

#include <cstdint>

#include "core/pixel_types.h"
#include "core/views.h"

namespace zel {

// A pixel, and the part of the way to the next one.
struct SourcePosition {
  int32_t pixel;
  double share;
};

// One axis of a rectangle that is resampled.
struct ResampleAxis {
  int32_t first;    // source pixel
  int32_t size;     // source pixels
  int32_t results;  // pixels of the result
  double step;      // from one result to the next: 1 where the size does not change

  ResampleAxis(int32_t firstPixel, int32_t pixels, int32_t resultPixels)
      : first(firstPixel),
        size(pixels),
        results(resultPixels),
        step(pixels == resultPixels ? 1.0 : (pixels - 1.0) / resultPixels) {}

  bool Changes() const { return size != results; }
  // Multiplied for each result, as a sum of steps would be rounded otherwise.
  SourcePosition At(int32_t result) const { return PositionOf(first + result * step); }
  // In pixels of the rectangle.
  SourcePosition Within(int32_t result) const { return PositionOf(result * step); }

 private:
  static SourcePosition PositionOf(double position) {
    const auto pixel = static_cast<int32_t>(position);
    return {pixel, position - pixel};
  }
};

// What methods join: an IMAGE_RGB pixel is four numbers, any other is one.
constexpr int32_t NumbersAPixel(int32_t type) {
  return type == IMAGE_RGB ? 4 : 1;
}

// What is resampled into what.
struct ResampleViews {
  PixelView source;  // the whole image
  int32_t border;    // ... and pixels around it
  PixelView result;
  ResampleAxis x, y;

  int32_t NumbersAPixel() const { return zel::NumbersAPixel(source.type); }
};

}  // namespace zel
