// The 256 colours that 8-bit pixels are shown in.
#pragma once

#include <cstdint>

namespace zel {

// Builds a palette of 256 colours, 0x00RRGGBB. kind: a PaletteKind.
void PaletteBuild(int32_t kind, uint32_t* colours);

}  // namespace zel
