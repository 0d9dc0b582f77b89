// The machine's own fonts, through libraries that are opened at the first use: a program that draws
// no text, and a machine without them, need none.
#pragma once

#include "platform/fonts.h"

namespace zel {

extern const TextRasteriser MACHINE_FONTS;

}  // namespace zel
