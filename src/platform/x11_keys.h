// What keys of the X server mean.
#pragma once

#include <cstdint>

#include "platform/x11_connection.h"

namespace zel {

// The key of a DesktopEvent; 0 for a modifier, which is no key of its own.
int32_t X11KeyOf(const X11Connection& connection, uint8_t code, uint16_t state);
// EventModifier.
int32_t X11ModifiersOf(uint16_t state);

}  // namespace zel
