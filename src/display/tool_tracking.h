// The mouse tools at work.
#pragma once

#include "display/window_records.h"

namespace zel {

// Serves a press in an image window: scroll bars, the region to be moved, the zoom, or a shape to
// be drawn. Returns when the button is up, or the shape ended.
void ToolTrack(int32_t window, const DesktopEvent& press);

}  // namespace zel
