// Row routines that fill the pixels which a mask selects.
#pragma once

#include "engine/levels.h"

namespace zel {

// Writes the pixel where the mask is not 0.
using MaskedFillRow = void (*)(void* row, const uint8_t* mask, const void* pixel, int32_t width);

struct FillRows {
  MaskedFillRow byType[5];  // by ImageType
};
ZEL_ROW_TABLE(FillRows, fillRows)

}  // namespace zel
