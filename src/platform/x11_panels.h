// Panels as windows of the X server. Operations of a Desktop.
#pragma once

#include "platform/desktop.h"

namespace zel {

int32_t X11PanelCreate(int32_t parent, const char* title, const DesktopRect& rect);
void X11PanelDiscard(int32_t panel);
int32_t X11CanvasCreate(int32_t panel);
void X11PanelSet(int32_t panel, int32_t attribute, int32_t value);
int32_t X11PanelGet(int32_t panel, int32_t attribute);
void X11PanelSetTitle(int32_t panel, const char* title);
const char* X11PanelTitle(int32_t panel);
void X11PanelMove(int32_t panel, int32_t top, int32_t left);
void X11SetSink(int32_t panel, int32_t canvas, int32_t window, DesktopSink sink);
void X11Activate(int32_t panel);
int32_t X11Active();

bool X11HasManager();

}  // namespace zel
