// Regions as masks.
#pragma once

#include <cstdint>

#include "core/handles.h"
#include "orlune_ptk.h"

namespace zel {

// Paints a region in the flat form into a mask: external contours with a value, then internal ones
// with 0. The mask takes the size of the model, or without one (0, unknown or empty) the size of
// the region's rectangle and its place as offset; an odd width is raised by one where the mask is
// not smaller than the rectangle's right and bottom. A flat form without contour selects
// everything. Of a mask that is not U8 only the size changes. `clipped`: whether the last shape
// painted did not lie wholly in the image. STATUS_BAD_IMAGE, STATUS_MEMORY_FULL.
Status MaskFromRoi(ImageRef mask, ImageRef model, Handle vector, uint8_t value, bool* clipped);

}  // namespace zel
