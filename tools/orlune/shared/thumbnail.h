// Pictures made small, for reports.
#pragma once

#include <string>

#include "orlune/shared/pictures.h"

namespace front {

// Of an IMAGE_RGB: a PNG file no side of which is longer than 320 pixels.
std::string ThumbnailOf(const Image& picture);

}  // namespace front
