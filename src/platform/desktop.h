// What the library asks of the machine's desktop: panels with a canvas each, drawing, the pointer,
// events and a clock, as a plain record of operations. Calls come from one thread.
#pragma once

#include <cstddef>
#include <cstdint>

namespace zel {

struct DesktopRect {
  int32_t top, left, height, width;
};

enum PenMode : int16_t {
  PEN_COPY = 1,
  PEN_INVERT = 3,  // what is drawn twice disappears
};

struct DesktopPen {
  uint32_t foreground = 0xFFFFFF;  // 0x00RRGGBB
  uint32_t background = 0;
  // Rows of the 8 x 8 pattern, which repeats from the canvas' corner; a set bit is foreground.
  uint8_t pattern[8] = {0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF};
  int16_t width = 1;
  int16_t mode = PEN_COPY;
  int32_t style = 0;
};

enum EventModifier : int32_t { MODIFIER_SHIFT = 2, MODIFIER_CONTROL = 16 };

enum class DesktopEventKind : int32_t {
  LEFT_PRESS,         // x, y, modifiers
  RIGHT_PRESS,        // likewise
  LEFT_DOUBLE_PRESS,  // likewise
  KEY_PRESS,          // key, modifiers
  GOT_FOCUS,
  LOST_FOCUS,
  CLOSE,
  PANEL_SIZE,    // width, height; a person changed them
  PANEL_MOVE,    // left, top; likewise
  POINTER_MOVE,  // x, y
};

struct DesktopEvent {
  DesktopEventKind kind = DesktopEventKind::CLOSE;
  int32_t window = 0;  // the number that came with the sink
  int32_t canvas = 0;  // 0 for an event of the panel
  int32_t x = 0, y = 0;
  int32_t modifiers = 0;  // EventModifier
  // The character's number; 8, 9, 13, 27 of backspace, tab, return and escape, 512 of delete; of
  // other keys the number that the desktop has for them, from 0xFF00 up.
  int32_t key = 0;
  int32_t left = 0, top = 0, width = 0, height = 0;
};
using DesktopSink = void (*)(const DesktopEvent& event);

// Flags are stored and forwarded; what they mean is the desktop's own.
enum PanelAttribute : int32_t {
  PANEL_VISIBLE = 530,
  PANEL_LEFT = 531,
  PANEL_TOP = 532,
  PANEL_WIDTH = 533,
  PANEL_HEIGHT = 540,
  PANEL_FLAG_571 = 571,
  PANEL_FLAG_580 = 580,
  PANEL_FLAG_581 = 581,
  PANEL_FLAG_599 = 599,
  PANEL_FLAG_600 = 600,
  PANEL_FLAG_601 = 601,
  PANEL_FLAG_615 = 615,
  PANEL_FLAG_616 = 616,
  PANEL_BACKGROUND = 1000,  // 0x00RRGGBB
};

enum CanvasAttribute : int32_t {
  CANVAS_WIDTH = 1,
  CANVAS_HEIGHT = 2,
  CANVAS_BACKGROUND = 3,
  CANVAS_DRAW_POLICY = 1370,  // 1: drawing is kept until it is drawn over
};

enum class ShapeFill { FRAME, FILL };
enum class TextAlignment { LEFT, CENTRE, RIGHT };

struct PointerState {
  int32_t x, y;  // in pixels of what it was asked for; outside as well
  bool leftDown;
  bool isFollowed = true;  // false: nobody moves it any more, and no press will come
};

// Pixels to be copied to a canvas, top row first. They belong to the caller, and stay while the
// bitmap lives.
struct DesktopBitmap {
  const uint8_t* rows;
  int64_t pitch;
  // Bits of a pixel: 4 (the left one in the high bits), 8, 24 (red, green, blue), or 32: a number
  // as colours are, with any high byte.
  int32_t depth;
  int32_t width, height;
  const uint32_t* colours;  // 16 or 256 of 0x00RRGGBB; null from 24 bits on
};

struct FontStyle {
  int32_t size;  // points
  bool isBold, isItalic, isUnderlined, isStruckOut;
};

enum class ClipboardState {
  CLOSED,  // it cannot be looked into, or written
  EMPTY,   // nothing, or no picture
  FILLED,
};

// A packed device-independent bitmap: header, colour table, rows.
struct ClipboardBitmap {
  const uint8_t* bytes;
  size_t size;
};

// The font that meta fonts are made from.
constexpr char DESKTOP_BASE_FONT[] = "PtkAppMetaFont";

// Panels, canvases and bitmaps are positive numbers that are never used again; a negative one is a
// failure. Whatever names none of them is left alone, and reads 0. A new panel is hidden.
// What a program changes itself comes back as no event.
struct Desktop {
  int32_t (*panelCreate)(int32_t parent, const char* title, const DesktopRect& rect);
  void (*panelDiscard)(int32_t panel);
  int32_t (*canvasCreate)(int32_t panel);  // at the panel's corner
  void (*canvasDiscard)(int32_t panel, int32_t canvas);

  void (*panelSet)(int32_t panel, int32_t attribute, int32_t value);  // PanelAttribute
  int32_t (*panelGet)(int32_t panel, int32_t attribute);
  void (*panelSetTitle)(int32_t panel, const char* title);
  const char* (*panelTitle)(int32_t panel);  // valid until the next call
  void (*panelMove)(int32_t panel, int32_t top, int32_t left);
  void (*setSink)(int32_t panel, int32_t canvas, int32_t window, DesktopSink sink);
  void (*activate)(int32_t panel);
  int32_t (*active)();  // the active panel, or 0

  void (*canvasSet)(int32_t panel, int32_t canvas, int32_t attribute, int32_t value);
  void (*canvasPen)(int32_t canvas, const DesktopPen& pen);
  void (*penDefaults)(int32_t canvas);
  void (*penMove)(int32_t canvas, int32_t x, int32_t y);
  void (*lineTo)(int32_t canvas, int32_t x, int32_t y);  // both ends are drawn
  void (*rect)(int32_t canvas, const DesktopRect& rect, ShapeFill fill);
  void (*oval)(int32_t canvas, const DesktopRect& rect, ShapeFill fill);
  void (*invert)(int32_t canvas, const DesktopRect& rect);
  void (*text)(int32_t canvas, const char* text, const char* font, const DesktopRect& rect,
               TextAlignment alignment);
  DesktopRect (*clip)(int32_t canvas);
  void (*setClip)(int32_t canvas, const DesktopRect& rect);
  void (*beginBatch)(int32_t canvas);
  void (*endBatch)(int32_t canvas);

  int32_t (*bitmapCreate)(const DesktopBitmap& bitmap);
  void (*bitmapDiscard)(int32_t bitmap);
  // Scaled to fit: a pixel d of a destination of n pixels takes pixel floor(d * m / n) of m.
  void (*blit)(int32_t canvas, int32_t bitmap, const DesktopRect& source,
               const DesktopRect& destination);

  void (*pump)();                      // hands all pending events to their sinks
  void (*idle)(int32_t milliseconds);  // waits for input, at most so long
  PointerState (*pointer)(int32_t panel, int32_t canvas);  // relative to the canvas, or the panel
  void (*screen)(int32_t* width, int32_t* height);
  void (*beep)();
  uint32_t (*ticks)();  // milliseconds of a clock that only goes forward, low 32 bits
  int32_t (*metaFont)(const char* name, const char* base, const FontStyle& style);  // 0, or below

  // Bytes that are read belong to the desktop, until its next operation.
  ClipboardState (*clipboardRead)(ClipboardBitmap* bitmap);
  bool (*clipboardWrite)(const ClipboardBitmap& bitmap);  // false: no memory for it
};

// The one in use. The first call opens the machine's own, or, where there is none, one in memory,
// which nobody sees.
const Desktop& DesktopInUse();
// Null lets the next call choose again.
void DesktopUse(const Desktop* desktop);
// Gives back what the machine's desktop holds and nobody uses any more: when the library is closed.
void DesktopLeave();

}  // namespace zel
