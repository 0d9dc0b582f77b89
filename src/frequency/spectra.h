// What operations on spectra share: their images looked up and settled.
#pragma once

#include "core/images.h"
#include "core/pixel_types.h"
#include "engine/operands.h"

namespace zel {

constexpr bool TypeIsComplex(int32_t type) {
  return type == IMAGE_COMPLEX;
}
// Whose pixels are 32-bit floats, one or two.
constexpr bool TypeIsSpectrum(int32_t type) {
  return type == IMAGE_SGL || type == IMAGE_COMPLEX;
}
constexpr bool TypeIsScalarOrComplex(int32_t type) {
  return TypeIsScalar(type) || type == IMAGE_COMPLEX;
}

// STATUS_BAD_IMAGE, and `refusal` for another type.
Status LookupOfTypes(ImageRef reference, TypeTest takesType, Status refusal, Image** image);

// Where the result goes: 0 is the source. Any other image takes the source's calibration and size
// and is then refused for its type, which leaves it without pixels:
// STATUS_DESTINATION_TYPE_DIFFERS.
Status SettleDestination(Image* source, ImageRef reference, TypeTest takesType, Image** to);
// The same for a destination of the source's type.
Status SettleDestination(Image* source, ImageRef reference, Image** to);

}  // namespace zel
