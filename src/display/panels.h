// Windows opened, sized and closed.
#pragma once

#include <cstdint>

#include "display/window_records.h"

namespace zel {

constexpr int32_t STYLE_DEFAULT = -1;

// Opens a window that is closed, hidden. STATUS_NO_WINDOW.
Status WindowOpen(int32_t window, int32_t style);

// Makes the panel anew with another style; title, place, size and whether it is shown stay. Opens
// a window that is closed. Of the bits 2, 4, 8 and 16 each stands for flags of the panel.
Status WindowRestyle(int32_t window, int32_t style);

// Records the event and gives back all that the window has.
void WindowClose(int32_t window);

// Sets the panel's size, scroll bars included, and has it painted.
void PanelResize(int32_t window, int32_t width, int32_t height);

// The canvas size that a window of that kind may have, plus its scroll bars.
void CanvasResize(int32_t window, int64_t width, int64_t height);

// The windows have been given these; they make an image of their own as large and return it.
// STATUS_MEMORY_FULL.
Status OwnImageResize(int32_t window, int32_t width, int32_t height);

}  // namespace zel
