// One plain face that needs no machine: 5 by 7 points, in whole multiples of them, with the
// characters of ASCII and a box for all others. The same pixels everywhere.
#pragma once

#include "platform/fonts.h"

namespace zel {

extern const TextRasteriser BUILT_IN_FACE;

}  // namespace zel
