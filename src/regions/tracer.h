// Masks as regions.
#pragma once

#include <cstdint>

#include "core/handles.h"
#include "orlune_ptk.h"

namespace zel {

// The outlines of what a U8 mask selects, in the flat form: polygons and points. Of the vector's
// pairs of integers, the rectangle's and the markers' included, at most maxPoints are kept; below 2
// it is 2. `limitReached`: whether so many are there. STATUS_BAD_IMAGE, STATUS_BAD_TYPE,
// STATUS_MEMORY_FULL.
Status RoiFromMask(ImageRef mask, int32_t maxPoints, bool externalOnly, Handle vector,
                   bool* limitReached);

}  // namespace zel
