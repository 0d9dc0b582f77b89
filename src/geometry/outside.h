// What results show where no pixel of the source lies.
#pragma once

#include <cstdint>

#include "core/views.h"

namespace zel {

// Pixels of integer types take the low bits of a number cut toward zero; those of IMAGE_RGB take
// them in blue, green and red.
struct OutsidePixel {
  uint32_t bits;  // as they lie in memory
  int16_t type;

  OutsidePixel(int16_t imageType, float number);
  // Sets pixels, with the fourth byte of IMAGE_RGB 0.
  void Fill(void* to, int64_t count) const;
  // The same, but the fourth byte stays as it is.
  void FillColours(void* to, int64_t count) const;
};

}  // namespace zel
