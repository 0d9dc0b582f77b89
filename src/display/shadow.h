// Images of types that a screen cannot show, as 8-bit images.
#pragma once

#include "core/images.h"

namespace zel {

// Fills a U8 image of the source's size: I16 and SGL by the straight line from the smallest to the
// largest pixel, COMPLEX by its magnitude with the zero frequency in the middle. Other types are
// left alone.
void ShadowConvert(const PixelView& source, const PixelView& shadow);

}  // namespace zel
