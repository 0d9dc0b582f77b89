// Labelled zones that grow over the background.
#pragma once

#include "core/status.h"
#include "core/views.h"

namespace zel {

// Grows the labels of a U8 or I16 image in place, until no pixel is 0 or the image is all 0. In
// each pass the pixels of 0 that touch a label take the one that comes first in raster order around
// them. STATUS_MEMORY_FULL before anything is written.
Status ZonesGrow(const PixelView& view);

}  // namespace zel
