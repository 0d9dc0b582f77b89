// Particles as runs of pixels in rows, numbered in raster order of their first pixels, from 1: any
// number of them.
#pragma once

#include <cstdint>
#include <vector>

#include "pictures/library.h"

namespace front {

struct PixelRun {
  int32_t y = 0, start = 0, end = 0;  // end is one past the last pixel
  uint32_t label = 0;
};

struct Labels {
  int32_t width = 0, height = 0;
  uint32_t count = 0;          // of particles
  std::vector<PixelRun> runs;  // in raster order
};

// Of the pixels of an IMAGE_U8 that are not 0; joined by corners too where eightConnected.
Labels LabelRuns(const pictures::Image& mask, bool eightConnected);

// The number of each pixel's particle, with one more row and column of 0 on each side.
class LabelPicture {
 public:
  explicit LabelPicture(const Labels& labels);
  int32_t width() const { return width_; }
  int32_t height() const { return height_; }
  // Row y, from -1 to height; columns likewise.
  const uint32_t* Row(int32_t y) const {
    return pixels_.data() + static_cast<size_t>(y + 1) * pitch_ + 1;
  }

 private:
  int32_t width_, height_;
  size_t pitch_;
  std::vector<uint32_t> pixels_;
};

}  // namespace front
