// What frames convert between callers and kernels: numeric arrays, rectangles and lines.
#pragma once

#include <cstdint>

#include "core/status.h"
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

// Bytes of an element; its bits too where asked for. 0 for an unknown type.
int32_t ArrayTypeBits(int32_t arrayType, int32_t* bits);

// Each element goes through a 64-bit float; integers take the low bits of the cut value, without
// saturation. An unknown type reads and writes nothing. A count below 1 converts nothing.
void ArrayConvert(const void* source, int32_t sourceType, void* destination,
                  int32_t destinationType, int64_t count);

// The ArrayType of a scalar image type's pixels; -1 for other types.
int32_t NativeArrayType(int32_t imageType);

}  // namespace zel
