// The row routines that put results under a mask.
#pragma once

#include <cstdint>

#include "engine/levels.h"

namespace zel {

// Pixels whose byte of the mask is not 0 are copied; the others stay.
using SelectedCopy = void (*)(const void* from, const uint8_t* mask, void* to, int32_t columns);

struct WindowMaskRows {
  SelectedCopy bytes1, bytes2, bytes4;  // by the bytes of a pixel

  SelectedCopy For(int32_t pixelBytes) const {
    return pixelBytes == 1 ? bytes1 : pixelBytes == 2 ? bytes2 : bytes4;
  }
};
ZEL_ROW_TABLE(WindowMaskRows, windowMaskRows)

}  // namespace zel
