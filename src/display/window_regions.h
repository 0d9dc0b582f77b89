// The region of a window, in and out of the flat form.
#pragma once

#include <cstdint>

#include "display/shapes_held.h"
#include "display/window_records.h"

namespace zel {

// The rectangle that holds a contour: right and bottom are one past the last point. Of one without
// points it is 32000, 32000, -1, -1.
KernelRect BoundsOf(const ContourPairs& contour);
// Of the region held; of none, the whole image.
KernelRect RegionBounds(const WindowRecord& record);

// Forgets the region and what is recorded of it; the picture stays.
void RegionForget(WindowRecord* record);
// Forgets it and has the window painted.
void RegionErase(int32_t window);

// The flat form of the region. STATUS_MEMORY_FULL.
Status RegionRead(const WindowRecord& record, Handle vector);
// Takes the place of the region. STATUS_MEMORY_FULL, without a region then.
Status RegionWrite(int32_t window, Handle vector);

// A contour of its own for a region of one shape: a marker, and its points.
// STATUS_MEMORY_FULL leaves the vector as it was.
Status ShapeAppend(Handle contour, const Shape& shape);

// Replaces the contour that the record holds.
void ContourReplace(WindowRecord* record, Handle contour);

}  // namespace zel
