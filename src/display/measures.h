// What windows tell of shapes and pixels.
#pragma once

#include "display/window_records.h"

namespace zel {

struct LineMeasures {
  float dx, dy;
  float angle;   // degrees: up is 0, left 90, down 180, right 270
  float length;  // with the half that makes it round when it is cut
};
LineMeasures MeasuresOf(PointInt from, PointInt to);

// The corners of two points in order.
KernelRect OrderedCorners(PointInt a, PointInt b);

// A pixel of the window's image, or of the nearest one there is.
struct PixelValues {
  int32_t count;    // 1; 2 for COMPLEX; 3 for RGB; 0 without an image
  float values[3];  // real, imaginary; red, green, blue
};
PixelValues PixelOf(const WindowRecord& record, PointInt at);

}  // namespace zel
