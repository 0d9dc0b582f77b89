// Uncompressed bitmaps.
#pragma once

#include "files/format.h"

namespace zel {

extern const FormatOperations BMP_FORMAT;

}  // namespace zel
