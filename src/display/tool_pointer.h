// Where the pointer of a tool is in the image.
#pragma once

#include "display/view.h"

namespace zel {

// A canvas position that is moved back to the grid, as image coordinates.
PointInt SnappedPoint(const WindowRecord& record, int32_t x, int32_t y);

// The same for a pointer anywhere: one outside the canvas scrolls the view first, and counts as the
// nearest position of the image. `scrolled` tells whether all was painted anew.
PointInt FollowedPoint(int32_t window, const PointerState& pointer, bool withRegion,
                       bool* scrolled);

// Whether it would.
bool WouldScroll(int32_t window, const PointerState& pointer);

}  // namespace zel
