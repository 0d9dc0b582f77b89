// The native format, which holds every image type and the calibration.
#pragma once

#include "files/format.h"

namespace zel {

extern const FormatOperations NATIVE_FORMAT;

}  // namespace zel
