// Painting by rule: each pixel is the mean of some places in it.
#pragma once

#include <algorithm>
#include <cmath>

#include "scenes/random.h"
#include "scenes/render.h"

namespace scenes {

// Each pixel from the light that the rule gives for places in it, with the noise of a camera.
template <class Light>
Picture Paint(int width, int height, uint64_t seed, const Light& light) {
  constexpr int PLACES = 4;  // looked at in a pixel, along each side
  Picture picture;
  picture.width = width;
  picture.height = height;
  picture.pixels.resize(static_cast<size_t>(width) * static_cast<size_t>(height));
  Random random(seed);
  for (int y = 0; y < height; y++) {
    for (int x = 0; x < width; x++) {
      double sum = 0;
      for (int i = 0; i < PLACES * PLACES; i++) {
        sum += light(
            Point{x + (i % PLACES + 0.5) / PLACES - 0.5, y + (i / PLACES + 0.5) / PLACES - 0.5});
      }
      const double level = sum / (PLACES * PLACES) + 2.0 * random.Gauss();
      picture.pixels[static_cast<size_t>(y * width + x)] =
          static_cast<uint16_t>(std::lround(std::clamp(level, 0.0, 255.0)));
    }
  }
  return picture;
}

}  // namespace scenes
