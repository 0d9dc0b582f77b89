// Scroll bars, which the library draws itself, and the loop that follows the pointer on them.
#pragma once

#include <cstdint>

#include "display/window_records.h"

namespace zel {

void ScrollBarsPaint(int32_t window);

// True when a press belongs to the bars of a window. The view follows the pointer then until the
// button is up, and a scrolled event is recorded.
bool ScrollTrack(int32_t window, int32_t x, int32_t y);

}  // namespace zel
