// The run lengths of BMP files.
#pragma once

#include "pictures/raster.h"

namespace pictures {

// Writes the numbers of colours that the runs tell into width x height zeros, of which pixels that
// no run covers stay. Gives the number of those. Throws BadFile for runs that leave the picture or
// end before it does.
int64_t DecodeRuns(Bytes runs, bool fourBits, bool topDown, uint8_t* pixels, int32_t width,
                   int32_t height);

}  // namespace pictures
