// The two bare layouts, which nothing marks.
#pragma once

#include "files/format.h"

namespace zel {

extern const FormatOperations RASTER_FORMAT;
extern const FormatOperations RAW_FORMAT;

}  // namespace zel
