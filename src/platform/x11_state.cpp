// Finding panels, and losing them.
#include "platform/x11_state.h"

#include <new>

namespace zel {

X11State* x11 = nullptr;

namespace {

// Those that there is no memory to tell of are lost again at the next turn: nothing that needs the
// server may fail for them, discarding least of all.
void PanelsLose() {
  try {
    for (auto& [number, panel] : x11->panels) {
      if (panel.window != 0) X11PanelLose(number, &panel);
    }
  } catch (const std::bad_alloc&) {
  }
  x11->active = 0;
}

}  // namespace

void X11PanelLose(int32_t number, X11Panel* panel) {
  X11Deed deed;
  deed.panel = number;
  deed.event.kind = DesktopEventKind::CLOSE;
  x11->deeds.push_back(deed);
  panel->window = 0;
  panel->picture = 0;
  panel->attributes[PANEL_VISIBLE] = 0;
  if (x11->active == number) x11->active = 0;
}

X11Panel* X11PanelOf(int32_t panel) {
  const auto found = x11->panels.find(panel);
  return found == x11->panels.end() ? nullptr : &found->second;
}

X11Panel* X11PanelOfWindow(xcb_window_t window, int32_t* panel) {
  for (auto& [number, candidate] : x11->panels) {
    if (window == 0 || candidate.window != window) continue;
    *panel = number;
    return &candidate;
  }
  return nullptr;
}

X11Session::X11Session() : turn_(&x11->connection) {
  if (!turn_.IsAlive()) PanelsLose();
}

}  // namespace zel
