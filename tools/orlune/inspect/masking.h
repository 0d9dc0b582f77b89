// Steps held to a mask, where the library's calls know none.
#pragma once

#include "orlune/shared/pictures.h"

namespace front {

// Gives the pixels back that the mask, from its first pixel on the first one, does not select.
void RestoreOutside(const Image& before, ImageRef mask, ImageRef image);

// call() changes the image and gives a status; what the mask, if there is one, does not select
// stays.
template <class Call>
int32_t UnderMask(ImageRef image, ImageRef mask, const Call& call) {
  if (mask == 0) return call();
  const Image before(IMAGE_U8);
  Check(ZEL_Copy(image, before));
  const int32_t status = call();
  if (status == 0) RestoreOutside(before, mask, image);
  return status;
}

}  // namespace front
