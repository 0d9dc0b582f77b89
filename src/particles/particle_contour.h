// Perimeters of particles and holes, from a walk along their contours.
#pragma once

#include <cstdint>

#include "particles/runs.h"

namespace zel {

enum class Contour : int32_t {
  Particle4,  // outer contour of a 4-connected particle
  Particle8,  // outer contour of an 8-connected particle
  Hole,       // of a particle of either connectivity
};

// The perimeter in calibrated units. A particle is named by its first pixel in raster order, a hole
// by the particle's pixel to the left of the hole's first pixel. 0 for a single pixel. Holes of few
// pixels can have a negative one.
double ContourPerimeter(const PixelBits& bits, int32_t x, int32_t y, Contour contour, float xStep,
                        float yStep);
// That of a hole of so many pixels in one row, whatever lies around it.
double GapPerimeter(int32_t width, float xStep, float yStep);

}  // namespace zel
