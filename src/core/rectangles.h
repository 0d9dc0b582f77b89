// Rectangles and lines of callers and of kernels.
#pragma once

#include <cstdint>

#include "orlune_ptk.h"

namespace zel {

struct KernelRect {
  int32_t left, top, right, bottom;  // right and bottom are one past the last pixel
};

struct KernelLine {
  int32_t startX, startY, endX, endY;
};

// x, y, width, height in this order, as the complex-plane arrays use them.
struct PlacedRect {
  int32_t x, y, width, height;
};

// Sides beyond 32 bits are limited. Null is the whole image: 0, 0 to WHOLE_IMAGE_EXTENT.
void RectFromApi(const ApiRect* rect, KernelRect* kernelRect);
// Two corners in any order.
void RectToApi(const KernelRect* corners, ApiRect* rect);
void LineFromPoints(const ApiPoint* start, const ApiPoint* end, KernelLine* line);
void PointsFromLine(const KernelLine* line, ApiPoint* start, ApiPoint* end);

// The second rectangle's edges where they lie within the first, both ends included; else the
// first one's. A second rectangle beyond the first therefore gives the whole first one.
void RectClip(const PlacedRect& first, const PlacedRect& second, PlacedRect* clipped);

}  // namespace zel
