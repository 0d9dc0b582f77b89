// All pixels of an image at once.
#pragma once

#include "core/views.h"

namespace zel {

// The pixels of one image in another of its type and size, which may be the same.
void PixelsCopy(const PixelView& from, const PixelView& to);
// Sets all pixels to 0.
void PixelsClear(const PixelView& view);

}  // namespace zel
