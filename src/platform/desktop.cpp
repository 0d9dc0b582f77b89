// The desktop in use.
#include "platform/desktop.h"

#include "platform/memory_desktop.h"

namespace zel {
namespace {

const Desktop* inUse = &MEMORY_DESKTOP;

}  // namespace

const Desktop& DesktopInUse() {
  return *inUse;
}

void DesktopUse(const Desktop* desktop) {
  inUse = desktop ? desktop : &MEMORY_DESKTOP;
}

}  // namespace zel
