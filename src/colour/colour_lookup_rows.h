// Row routine of colours whose red, green and blue go through a table each.
#pragma once

#include "engine/levels.h"
#include "orlune_ptk/types.h"

namespace zel {

struct ChannelTables {
  const uint8_t *red, *green, *blue;  // LEVELS_U8 each
};

// Pixels that lie side by side; the results may take their place. The fourth byte is kept.
using ChannelLookup = void (*)(const RGBValue* from, RGBValue* to, int64_t count,
                               const ChannelTables& tables);

struct ColourLookupRows {
  ChannelLookup rgb;
};
ZEL_ROW_TABLE(ColourLookupRows, colourLookupRows)

}  // namespace zel
