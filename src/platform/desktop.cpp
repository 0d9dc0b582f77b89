// The desktop in use.
#include "platform/desktop.h"

#include "platform/memory_desktop.h"
#include "platform/refused_memory.h"
#if ZEL_WITH_X11
#include "platform/x11_desktop.h"
#endif

namespace zel {
namespace {

const Desktop* inUse = nullptr;
bool isGiven = false;  // by DesktopUse

const Desktop* MachineDesktopOpen() {
#if ZEL_WITH_X11
  if (X11DesktopOpen()) return &X11_DESKTOP;
#endif
  return &MEMORY_DESKTOP;
}

// False while it is still needed.
bool MachineDesktopLeave() {
#if ZEL_WITH_X11
  return GUARDED<&X11DesktopLeave>();
#else
  return true;
#endif
}

}  // namespace

const Desktop& DesktopInUse() {
  if (!inUse) inUse = MachineDesktopOpen();
  return *inUse;
}

void DesktopUse(const Desktop* desktop) {
  inUse = desktop;
  isGiven = desktop != nullptr;
}

void DesktopLeave() {
  if (!isGiven && MachineDesktopLeave()) inUse = nullptr;
}

}  // namespace zel
