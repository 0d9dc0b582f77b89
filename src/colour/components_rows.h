// Row routines that take one component out of colour pixels.
#pragma once

#include "engine/levels.h"
#include "orlune_ptk/types.h"

namespace zel {

// The bytes of one component of pixels that lie side by side.
using ComponentRoutine = void (*)(const RGBValue* pixels, uint8_t* component, int64_t count);

struct ComponentRows {
  ComponentRoutine red, green, blue;
  ComponentRoutine hue, saturation, lightness, value;
};
ZEL_ROW_TABLE(ComponentRows, componentRows)

}  // namespace zel
