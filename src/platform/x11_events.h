// What people and other programs do, as the X server tells it. Operations of a Desktop.
#pragma once

#include "platform/desktop.h"
#include "platform/x11_state.h"

namespace zel {

void X11Pump();
void X11Idle(int32_t milliseconds);
PointerState X11Pointer(int32_t panel, int32_t canvas);

// Takes in what the server has sent. Nobody is called: what happened waits for the pump.
void X11EventsTake(const X11Session& session);
// Waits until the server has sent something, at most so long.
void X11Wait(const X11Session& session, int32_t milliseconds);

}  // namespace zel
