// The operations of the X desktop, and its beginning and end.
#include "platform/x11_desktop.h"

#include <new>

#include "platform/canvases.h"
#include "platform/memory_desktop.h"
#include "platform/refused_memory.h"
#include "platform/x11_events.h"
#include "platform/x11_panels.h"
#include "platform/x11_pictures.h"
#include "platform/x11_state.h"

namespace zel {
namespace {

void BeginBatch(int32_t canvas) {
  if (Canvas* found = CanvasOf(canvas)) found->batches++;
}

void EndBatch(int32_t canvas) {
  Canvas* found = CanvasOf(canvas);
  if (!found || found->batches == 0 || --found->batches > 0) return;
  const X11Session session;
  if (!session) return;
  X11PanelPresent(session, found->panel);
  x11->connection.x->flush(x11->connection.link);
}

void Screen(int32_t* width, int32_t* height) {
  const X11Session session;
  const X11Connection& at = x11->connection;
  *width = session ? at.screen->width_in_pixels / at.scale : 0;
  *height = session ? at.screen->height_in_pixels / at.scale : 0;
}

void Beep() {
  const X11Session session;
  if (!session) return;
  x11->connection.x->bell(x11->connection.link, 0);
  x11->connection.x->flush(x11->connection.link);
}

int32_t MetaFont(const char* name, const char*, const FontStyle& style) {
  if (DesktopFaultsGet()->noFonts) return -1;
  CanvasFont(name, style, FontsInUse());
  return 0;
}

void Close() {
  x11->connection.Close();
  delete x11;
  x11 = nullptr;
}

// A program that forgets to close the library is left by it all the same.
__attribute__((destructor)) void CloseAtUnloading() {
  if (!x11) return;
  X11SelectionKeep();
  Close();
}

}  // namespace

constinit const Desktop X11_DESKTOP{
    .panelCreate = GUARDED<&X11PanelCreate, -1>,
    .panelDiscard = GUARDED<&X11PanelDiscard>,
    .canvasCreate = GUARDED<&X11CanvasCreate, -1>,
    .canvasDiscard = GUARDED<&CanvasForget>,
    .panelSet = GUARDED<&X11PanelSet>,
    .panelGet = GUARDED<&X11PanelGet>,
    .panelSetTitle = GUARDED<&X11PanelSetTitle>,
    .panelTitle = GUARDED<&X11PanelTitle>,
    .panelMove = GUARDED<&X11PanelMove>,
    .setSink = GUARDED<&X11SetSink>,
    .activate = GUARDED<&X11Activate>,
    .active = GUARDED<&X11Active>,
    .canvasSet = GUARDED<&CanvasSet>,
    .canvasPen = GUARDED<&CanvasPen>,
    .penDefaults = GUARDED<&CanvasPenDefaults>,
    .penMove = GUARDED<&CanvasPenMove>,
    .lineTo = GUARDED<&CanvasLineTo>,
    .rect = GUARDED<&CanvasRect>,
    .oval = GUARDED<&CanvasOval>,
    .invert = GUARDED<&CanvasInvert>,
    .text = GUARDED<&CanvasText>,
    .clip = GUARDED<&CanvasClip>,
    .setClip = GUARDED<&CanvasSetClip>,
    .beginBatch = GUARDED<&BeginBatch>,
    .endBatch = GUARDED<&EndBatch>,
    .bitmapCreate = GUARDED<&BitmapNew, -1>,
    .bitmapDiscard = GUARDED<&BitmapForget>,
    .blit = GUARDED<&CanvasBlit>,
    .pump = GUARDED<&X11Pump>,
    .idle = GUARDED<&X11Idle>,
    .pointer = GUARDED<&X11Pointer>,
    .screen = GUARDED<&Screen>,
    .beep = GUARDED<&Beep>,
    .ticks = GUARDED<&MachineTicks>,
    .metaFont = GUARDED<&MetaFont, -1>,
    .clipboardRead = GUARDED<&X11ClipboardRead>,
    .clipboardWrite = GUARDED<&X11ClipboardWrite>,
};

bool X11DesktopOpen() {
  if (x11) return true;
  try {
    x11 = new X11State;
    if (x11->connection.Open()) return true;
  } catch (const std::bad_alloc&) {
  }
  if (x11) Close();
  return false;
}

bool X11DesktopLeave() {
  if (!x11) return true;
  if (x11->pumps > 0 || !x11->panels.empty()) return false;
  X11SelectionKeep();
  const ClipboardBitmap offered = X11SelectionOffered();
  if (offered.size > 0) {
    if (const X11Session session; session) return false;
    // Without a server what was copied stays at least with this program.
    MEMORY_DESKTOP.clipboardWrite(offered);
  }
  Close();
  return true;
}

}  // namespace zel
