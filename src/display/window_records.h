// What the display knows of its windows, and of all of them together.
#pragma once

#include <cstdint>

#include "core/handles.h"
#include "core/rectangles.h"
#include "orlune_ptk.h"
#include "platform/desktop.h"

namespace zel {

constexpr int32_t WINDOW_COUNT = 23;
constexpr int32_t IMAGE_WINDOWS = 16;   // windows 0 to 15
constexpr int32_t SHARED_WINDOWS = 15;  // windows 0 to 14 have their grid, tool and colour together
constexpr int32_t TOOLS_WINDOW = 16;
constexpr int32_t SCROLL_BAR_SIZE = 16;
constexpr int32_t PALETTE_ENTRIES = 256;
constexpr char DISPLAY_FONT[] = "ZEL_FONT";

constexpr bool IsWindow(int32_t window) {
  return window >= 0 && window < WINDOW_COUNT;
}
constexpr int32_t KindOf(int32_t window) {
  if (window < IMAGE_WINDOWS) return WINDOW_IMAGE;
  return window == TOOLS_WINDOW ? WINDOW_TOOLS : WINDOW_USER;
}

// What a window's pending event is. The codes of tools are those of the shape that was drawn.
enum EventCode : int32_t {
  EVENT_NONE = 0,
  EVENT_ZOOMED = 9,     // parameters: the click's x and y, the centre's x and y
  EVENT_SCROLLED = 10,  // the centre's x and y
  EVENT_MOVED = 11,     // left, top
  EVENT_RESIZED = 12,   // width, height
  EVENT_CLOSED = 13,
  EVENT_ACTIVATED = 14,
  EVENT_BUTTON = 15,  // index, state
};

struct WindowRecord {
  bool isOpen;
  uint32_t
      opening;     // how often the panel has been made: a loop sees that its window is another one
  ImageRef image;  // what is shown: mostly the caller's
  ImageRef ownImage;            // of the tools window and of user windows
  ImageRef upImage, downImage;  // of a user window: the caller's
  ImageRef shadow;              // 8 bits for a type that cannot be shown itself
  int32_t imageType;            // last drawn
  KernelRect canvasRect;        // the image on the canvas, after the last computation of the view
  int32_t panelWidth, panelHeight;  // scroll bars included
  int32_t imageWidth, imageHeight;
  bool hasScrollBars;
  int32_t zoomX, zoomY;  // n: n canvas pixels an image pixel; below 1: one for each |n| of them
  float zoomFactorX, zoomFactorY;
  int32_t gridX, gridY;
  int32_t activeTool, roiKind;  // internal tool numbers
  int32_t lastEvent;            // EventCode, or the internal tool number of a shape
  uint32_t eventTime, previousEventTime;
  int32_t eventParam[4];
  PointInt toolStart, toolEnd;        // of the shape held
  int32_t originX, originY;           // the image pixel wanted at the canvas' corner
  uint32_t palette[PALETTE_ENTRIES];  // 0x00RRGGBB
  Handle roiContour;                  // PointInt pairs of the region, or 0
  Handle buttons;                     // ImageButton of a user window, or 0
  int32_t lastButton;
};

// What belongs to a window's number, whether it is open or not.
struct PanelBinding {
  int32_t panel, canvas;  // 0: closed
  int32_t parent;
  WindowCallback callback;
  uintptr_t callbackData;
};

struct KeyRecord {
  int32_t window, isNew, key, modifiers;
  uint32_t tick;
};

struct DisplayPens {
  DesktopPen pointRubber, pointFinal, shapeRubber, shapeFinal, custom, margin;
};

constexpr int32_t NO_TYPE = 5;

// What the box of coordinates tells.
struct CoordinatesBox {
  float value;
  PointInt at, start;
  int32_t shape;  // internal tool number of the one being drawn
};

struct ToolsState {
  Handle cells;      // ToolCell, or 0
  int32_t selected;  // a cell's number from 1 on; 0: none
  bool showsCoordinates;
  int32_t coordinatesTop;
  int32_t shownType;  // whose icon is shown; NO_TYPE
  CoordinatesBox box;
};

constexpr int32_t MOST_WAITING = 8;

struct DisplayState {
  bool isInitialised;
  Status ready;  // how the first initialisation went
  WindowRecord windows[WINDOW_COUNT];
  PanelBinding bindings[WINDOW_COUNT];
  bool isDirty[WINDOW_COUNT];
  int32_t lastActiveWindow;
  bool isTracking;  // a tool draws a shape
  bool isInLoop;    // a tool or a scroll bar follows the pointer: presses wait
  bool isPumping;
  int32_t waitingPresses;
  DesktopEvent presses[MOST_WAITING];
  int32_t mouseWindow, mouseX, mouseY;
  KeyRecord key;
  DisplayPens pens;
  ToolsState tools;
  Handle brush;  // integers as they were given, or 0
};
extern DisplayState display;

inline WindowRecord& RecordOf(int32_t window) {
  return display.windows[window];
}

// Makes the display ready at its first use. STATUS_DISPLAY_UNUSABLE where that failed, until the
// library is closed; STATUS_MEMORY_FULL.
Status DisplayEnsure();

// Whether an image is a window's own: such ones come and go with what windows show.
bool IsWindowImage(ImageRef image);

// A record without a window; what was recorded of events stays.
void RecordReset(int32_t window);

void EventRecord(int32_t window, int32_t code, int32_t first = 0, int32_t second = 0,
                 int32_t third = 0, int32_t fourth = 0);

}  // namespace zel
