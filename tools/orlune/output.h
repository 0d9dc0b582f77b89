// Picture files written in the format that their names tell.
#pragma once

#include <filesystem>
#include <string>

#include "orlune/pictures.h"

namespace front {

// By the ending of the name. Throws std::invalid_argument where it tells none.
PictureFormat FormatByEnding(const std::filesystem::path& path);

std::string EndingOf(PictureFormat format);  // ".tif"

// Throws std::invalid_argument when the format has no place for such pixels.
void CheckType(PictureFormat format, int32_t type);

// Rows of 8-bit BMP files are written without the padding that readers of BMP expect, so that only
// widths that 4 divides read back.
bool RowsReadBack(const Image& image, PictureFormat format);

// Writes the picture, an 8-bit one whose rows would not read back with 24 bits a pixel. Returns
// what there is to say about that, or nothing. Throws as CheckType, and LibraryFailure.
std::string WriteFitting(Picture picture, const std::filesystem::path& path, PictureFormat format);

}  // namespace front
