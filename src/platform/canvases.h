// Canvases and bitmaps: what a desktop draws on, in memory, whoever shows it then. Numbers that
// name none are left alone.
#pragma once

#include <cstdint>
#include <string>

#include "platform/desktop.h"
#include "platform/fonts.h"
#include "platform/memory_picture.h"

namespace zel {

struct Canvas {
  int32_t panel = 0;  // that it lies on
  MemoryPicture picture;
  int32_t penX = 0, penY = 0;
  int32_t batches = 0;  // begun, one inside the other
  std::string texts;
};

// Failures of the desktop that tests ask for, for as long as they are set.
struct DesktopFaults {
  bool noPanels = false;
  bool noCanvases = false;
  bool noBitmaps = false;
  bool noFonts = false;
  bool noClipboard = false;
  // Pictures of more pixels are not drawn.
  int64_t mostPixels = INT64_MAX;
};
DesktopFaults* DesktopFaultsGet();

// For panels, canvases and bitmaps: one that was never used.
int32_t DesktopNumberNext();

int32_t CanvasNew(int32_t panel);
void CanvasForget(int32_t panel, int32_t canvas);
void CanvasesForget();                  // all of them, and bitmaps
Canvas* CanvasOf(int32_t canvas);       // or null
Canvas* CanvasOnPanel(int32_t panel);   // the first one, or null
int32_t CanvasNumberOn(int32_t panel);  // likewise, or 0

// Names a font for CanvasText, and whose letters it has.
void CanvasFont(const char* name, const FontStyle& style, const TextRasteriser& letters);

// Operations of a Desktop.
void CanvasSet(int32_t panel, int32_t canvas, int32_t attribute, int32_t value);
void CanvasPen(int32_t canvas, const DesktopPen& pen);
void CanvasPenDefaults(int32_t canvas);
void CanvasPenMove(int32_t canvas, int32_t x, int32_t y);
void CanvasLineTo(int32_t canvas, int32_t x, int32_t y);
void CanvasRect(int32_t canvas, const DesktopRect& rect, ShapeFill fill);
void CanvasOval(int32_t canvas, const DesktopRect& rect, ShapeFill fill);
void CanvasInvert(int32_t canvas, const DesktopRect& rect);
void CanvasText(int32_t canvas, const char* text, const char* font, const DesktopRect& rect,
                TextAlignment alignment);
DesktopRect CanvasClip(int32_t canvas);
void CanvasSetClip(int32_t canvas, const DesktopRect& rect);
int32_t BitmapNew(const DesktopBitmap& bitmap);
void BitmapForget(int32_t bitmap);
void CanvasBlit(int32_t canvas, int32_t bitmap, const DesktopRect& source, const DesktopRect& to);

// Milliseconds of the machine's clock that only goes forward.
uint32_t MachineTicks();

}  // namespace zel
