// The desktop of an X server, or of what speaks like one.
#pragma once

#include "platform/desktop.h"

namespace zel {

extern const Desktop X11_DESKTOP;

// Opens it. False where there is none.
bool X11DesktopOpen();
// Closes it unless there are panels or somebody may still want what lies in the clipboard; false
// then. It happens by itself when the library is unloaded, whatever there is.
bool X11DesktopLeave();

}  // namespace zel
