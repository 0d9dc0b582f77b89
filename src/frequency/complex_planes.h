// Planes of complex pixels, for the functions that speak of images and those that speak of arrays.
#pragma once

#include "core/images.h"

namespace zel {

// Takes a plane, limited to the numbers of ComplexPlane, out of complex pixels. Both views are of
// one size; the result has one of the scalar types or IMAGE_COMPLEX.
void PlaneExtract(const PixelView& from, int32_t plane, const PixelView& to);

// Puts numbers of one of these types (of complex ones the real parts) into the real parts of
// complex pixels, or for any plane but 0 into the imaginary ones.
void PlaneReplace(const PixelView& from, int32_t plane, const PixelView& to);

// Gives a complex image the size of a plane that is to be put in: where that is another one, all
// pixels are 0 afterwards. STATUS_MEMORY_FULL.
Status SizeForPlane(Image* image, int32_t width, int32_t height);

}  // namespace zel
