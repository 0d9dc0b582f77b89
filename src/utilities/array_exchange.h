// Callers' arrays of numbers beside runs of pixels.
#pragma once

#include <cstdint>

#include "core/status.h"

namespace zel {

// `count` pixels of a U8, I16 or SGL image that lie side by side, against the numbers of a caller's
// array from number `first` on. An unknown array type gives pixels of 0 and takes nothing.
void PixelsFromArray(const void* array, int32_t arrayType, int64_t first, int32_t imageType,
                     void* pixels, int64_t count);
void PixelsToArray(const void* pixels, int32_t imageType, int64_t count, void* array,
                   int32_t arrayType, int64_t first);

// STATUS_MEMORY_FULL for more numbers than a block of pixels of an image type may hold.
Status ArrayCountCheck(int32_t imageType, int64_t count);

}  // namespace zel
