// The part of a picture that a command works on.
#pragma once

#include <optional>
#include <string>

#include "orlune/shared/pictures.h"

namespace front {

struct Region {
  int32_t left = 0, top = 0, width = 0, height = 0;
};

// "LEFT,TOP,WIDTH,HEIGHT". Throws std::invalid_argument.
Region ParseRegion(std::string_view text);

// A picture file as a mask: 1 where a pixel is not 0, or not black, else 0. Throws as ReadPicture.
Image ReadMask(const std::string& path);

// Throws std::invalid_argument where the mask has another size than the picture.
void CheckMaskFits(const Image& mask, const Image& picture);

// 1 in the region and where the mask, which may be null, is not 0; none where neither limits
// anything. Throws std::invalid_argument for a region outside the picture and as CheckMaskFits.
std::optional<Image> PlaceOf(const std::optional<Region>& region, const Image* mask,
                             const Image& picture);

// The 8-bit pixels where the place is not 0, in one row.
Image PixelsAt(const Image& place, const Image& gray);

// Makes pixels 0 where the place is 0.
void KeepAt(const Image& place, const Image& mask);

}  // namespace front
