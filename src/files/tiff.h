// Uncompressed TIFF.
#pragma once

#include "files/format.h"

namespace zel {

extern const FormatOperations TIFF_FORMAT;

}  // namespace zel
