// The desktop of a machine that has none: panels and canvases in memory. Tests say what a person
// does there, and look at what would be seen.
#pragma once

#include <cstdint>

#include "platform/canvases.h"
#include "platform/desktop.h"

namespace zel {

extern const Desktop MEMORY_DESKTOP;

constexpr int32_t MEMORY_SCREEN_WIDTH = 1920;
constexpr int32_t MEMORY_SCREEN_HEIGHT = 1080;
// Drawing into larger canvases is dropped, and where all pictures together would pass this square.
constexpr int32_t MEMORY_CANVAS_LIMIT = 8192;

// Without panels, events, samples, fonts and faults, with an empty clipboard and a clock that runs;
// numbers go on.
void MemoryDesktopReset();

// What a person does, in this order. The pump hands out the events up to the next sample of the
// pointer; those that name a window without a sink are lost. Each look at the pointer takes the
// next sample. Past the last one it stays there, with the button up and not followed, so that no
// loop waits for ever. Samples that nobody looked at are dropped by the next pump that is not
// called from a sink.
void MemoryDesktopPost(const DesktopEvent& event);
void MemoryDesktopPointer(int32_t x, int32_t y, bool leftDown);
// Stops the clock at a time.
void MemoryDesktopTicks(uint32_t ticks);

// What was drawn: 0x00RRGGBB, or 0xFFFFFFFF outside the canvas and where nothing was drawn yet.
uint32_t MemoryDesktopPixel(int32_t canvas, int32_t x, int32_t y);
// The texts that a canvas was given since it was made, each ended by a line feed; of the last ones
// so many as fit. They are drawn in the built-in face.
const char* MemoryDesktopTexts(int32_t canvas);
int32_t MemoryDesktopBeeps();
int32_t MemoryDesktopPanels();  // not discarded yet

}  // namespace zel
