// Pictures that lie on a side or are mirrored, as cameras and scanners store them.
#pragma once

#include "pictures/raster.h"

namespace pictures {

// Upright pixels of one that is stored in the given EXIF orientation, 1 to 8; others count as 1.
Raster Upright(Raster stored, int32_t orientation);

// The orientation that a block of EXIF data tells, 1 where it tells none.
int32_t OrientationIn(Bytes exif);

}  // namespace pictures
