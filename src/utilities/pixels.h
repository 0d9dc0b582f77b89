// Pixels that do not lie side by side.
#pragma once

#include <cstdint>

#include "core/status.h"

namespace zel {

// Copies `count` pixels of an image type that lie `stride` pixels apart (1: side by side) to where
// they lie side by side. STATUS_BAD_LAYOUT_TYPE for complex pixels and unknown types.
Status StridedGather(const void* source, void* destination, int16_t type, int64_t stride,
                     int64_t count);

}  // namespace zel
