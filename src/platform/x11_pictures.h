// Pictures of canvases on their way to the X server.
#pragma once

#include <cstdint>

#include "platform/x11_state.h"

namespace zel {

// Sends what was drawn on a panel since it was last sent, if it is shown, or on all of them.
void X11PanelPresent(const X11Session& session, int32_t panel);
void X11Present(const X11Session& session);

}  // namespace zel
