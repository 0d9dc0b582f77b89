// Slow references for particle tests: pixels, flood fill, and sums over pixels.
#pragma once

#include <cstdint>
#include <vector>

#include "harness/test_image.h"

namespace test {

// A binary picture as tests think of it: outside of it all is clear.
struct Picture {
  int32_t width = 0;
  int32_t height = 0;
  std::vector<uint8_t> set;

  bool At(int64_t x, int64_t y) const {
    return x >= 0 && y >= 0 && x < width && y < height &&
           set[static_cast<size_t>(y * width + x)] != 0;
  }
};

inline Picture PictureOf(const TestImage& image) {
  const ImageInfo info = image.Info();
  Picture picture{info.width, info.height, {}};
  for (int32_t y = 0; y < info.height; y++) {
    for (int32_t x = 0; x < info.width; x++) {
      const bool set =
          info.type == IMAGE_U8 ? image.Get<uint8_t>(x, y) != 0 : image.Get<int16_t>(x, y) != 0;
      picture.set.push_back(set);
    }
  }
  return picture;
}

// Sets each pixel with a probability in percent, and every pixel outside to rubbish.
inline TestImage RandomPicture(int32_t type, int32_t width, int32_t height, int32_t percent,
                               uint64_t seed, int32_t border = 2) {
  TestImage image(type, width, height, border, seed + 77);
  Random random(seed);
  for (int32_t y = 0; y < height; y++) {
    for (int32_t x = 0; x < width; x++) {
      const bool set = random.Between(0, 99) < percent;
      if (type == IMAGE_U8) {
        image.Set<uint8_t>(x, y, static_cast<uint8_t>(set ? random.Between(1, 255) : 0));
      } else {
        // Values whose low byte is 0, or that are negative, count as well.
        const int16_t values[] = {1, -1, 256, -32768, 32767, 255};
        image.Set<int16_t>(x, y, set ? values[random.Between(0, 5)] : int16_t{0});
      }
    }
  }
  return image;
}

struct Labelling {
  std::vector<int32_t> numbers;  // of each pixel, 0 where it is clear
  int32_t count = 0;
};

// Flood fill from each pixel in raster order.
inline Labelling FloodFill(const Picture& picture, bool eight) {
  Labelling labels;
  labels.numbers.assign(picture.set.size(), 0);
  std::vector<std::pair<int32_t, int32_t>> stack;
  for (int32_t y = 0; y < picture.height; y++) {
    for (int32_t x = 0; x < picture.width; x++) {
      if (!picture.At(x, y) || labels.numbers[static_cast<size_t>(y * picture.width + x)] != 0) {
        continue;
      }
      labels.count++;
      stack.emplace_back(x, y);
      while (!stack.empty()) {
        const auto [px, py] = stack.back();
        stack.pop_back();
        if (!picture.At(px, py)) continue;
        int32_t& number = labels.numbers[static_cast<size_t>(py * picture.width + px)];
        if (number != 0) continue;
        number = labels.count;
        for (int32_t dy = -1; dy <= 1; dy++) {
          for (int32_t dx = -1; dx <= 1; dx++) {
            if (eight || dx == 0 || dy == 0) stack.emplace_back(px + dx, py + dy);
          }
        }
      }
    }
  }
  return labels;
}

// Labels that a scan pixel by pixel hands out before it merges any.
inline int64_t ProvisionalLabels(const Picture& picture, bool eight) {
  int64_t labels = 0;
  for (int32_t y = 0; y < picture.height; y++) {
    for (int32_t x = 0; x < picture.width; x++) {
      if (!picture.At(x, y) || picture.At(x - 1, y) || picture.At(x, y - 1)) continue;
      if (eight && (picture.At(x - 1, y - 1) || picture.At(x + 1, y - 1))) continue;
      labels++;
    }
  }
  return labels;
}

}  // namespace test
