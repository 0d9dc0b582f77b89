/* Tools, events and regions of windows. The rules that hold for all functions are told in
 * orlune_ptk.h, those of windows in windows.h.
 *
 * In an image window a person works with a tool: it draws a shape, which becomes the window's
 * region, or zooms. With shift, lines keep to an axis, boxes are square, and the shape goes beside
 * those that are there; with control the region is moved. Each action leaves an event, which a
 * caller polls, or which a callback gets. An event takes the place of one that was not read. */
#ifndef ORLUNE_PTK_WINDOW_TOOLS_H
#define ORLUNE_PTK_WINDOW_TOOLS_H

#include "regions.h"
#include "types.h"

#ifdef __cplusplus
extern "C" {
#endif
#pragma GCC visibility push(default)

typedef enum WindowTool {
  WTOOL_NONE = 0,
  WTOOL_POINT = 1,
  WTOOL_LINE = 2,
  WTOOL_RECT = 3,
  WTOOL_OVAL = 4,
  WTOOL_POLYGON = 5,  /* a corner at each press; ends at a double click, or near the first corner */
  WTOOL_FREEHAND = 6, /* closed */
  WTOOL_ZOOM = 8,     /* a click doubles the zoom, with shift it halves it */
  WTOOL_POLYLINE = 10, /* as WTOOL_POLYGON, open */
  WTOOL_FREELINE = 11  /* as WTOOL_FREEHAND, open */
} WindowTool;

typedef enum WindowEventType {
  WEVENT_NONE = 0,
  WEVENT_CLICK = 1,  /* point: x, y, milliseconds since the event before; the pixel's values (red,
                          green, blue; real, imaginary). Zoom: x, y, then x, y in the middle;
                          zooms */
  WEVENT_DRAW = 2,   /* line: x1, y1, x2, y2; dx, dy, angle (up 0, left 90, down 180, right 270),
                          length + 0.5. Rectangle and oval: left, top, right, bottom; width, height.
                          Others: WindowTool; left, top, right, bottom */
  WEVENT_MOVE = 3,   /* the panel: left, top */
  WEVENT_SIZE = 4,   /* the panel: width, height */
  WEVENT_SCROLL = 5, /* x, y in the middle */
  WEVENT_ACTIVATE = 6,
  WEVENT_CLOSE = 7,
  WEVENT_BUTTON = 8 /* of a user window: index, new state */
} WindowEventType;

typedef struct WindowEvent {
  int32_t window;
  int32_t type;        /* WindowEventType */
  int32_t tool;        /* WindowTool, for types 1 and 2 */
  int32_t integers[4]; /* by type; unused ones are 0 */
  float floats[4];
} WindowEvent;

/* Gets an event, which is read then, and the number that was installed with the callback. It may
 * call the library, and close the window. */
typedef void (*WindowCallback)(WindowEvent* event, uintptr_t data);

/* Lays the tools window out: a cell of 24 pixels for each tool, and one for the type of the image
 * under the pointer. The window stays hidden where it is.
 * showCoordinates: not 0: a box below the cells tells of the pointer and of the shape being drawn.
 * tools:           WindowTools; other numbers and WTOOL_NONE are left out. NULL: the standard ones.
 * toolCount:       of tools; below 1: the standard ones.
 * toolsPerRow:     cells in a row, at most 1365; below 1: all of them.
 * Failures: -101; -600; -601 the window could not be opened; -101. */
int32_t ZEL_WindToolsSetup(int32_t showCoordinates, const int32_t* tools, int32_t toolCount,
                           int32_t toolsPerRow);

/* Sets an attribute of the tools window. Lets events in.
 * attribute: WATTR_VISIBLE, WATTR_LEFT, WATTR_TOP, WATTR_TITLE, or flag 571, 581, 601 or 615.
 * value:     the number, or for WATTR_TITLE the address of the text.
 * Failures: -699; -3009 for a title; -101; -600; -601 the window could not be opened. Reported as
 * of "ZEL_SetWindToosAttribute". */
int32_t ZEL_SetWindToolsAttribute(int32_t attribute, intptr_t value);

/* Reads an attribute of the tools window.
 * attribute: a WindowAttribute that is no pair.
 * value:     receives an int32_t, or for WATTR_TITLE the text with its terminator.
 * Failures: -3009 for value; -699; -101; -600; -601 the window could not be opened. */
int32_t ZEL_GetWindToolsAttribute(int32_t attribute, void* value);

/* Chooses the tool of windows 0 to 14.
 * tool: a WindowTool; any other number does nothing as a tool, and is read back as 7.
 * Failures: -101; -600; -601 the tools window could not be opened. */
int32_t ZEL_SetActiveTool(int32_t tool);

/* Reads the tool of window 0.
 * tool: receives a WindowTool; at the start WTOOL_POINT.
 * Failures: -3009 for tool; -101; -600; -601 the window could not be opened. */
int32_t ZEL_GetActiveTool(int32_t* tool);

/* Closes the tools window.
 * Failures: -101; -600; -601 a closed window could not be opened. */
int32_t ZEL_WindToolsClose(void);

/* Returns the nine standard tools, which are never released: 1 to 6, 10, 11, 8.
 * Failures: none. */
const int32_t* ZEL_Get_WT_STDLIST(void);

/* Has a function called with each event that the desktop brings. Events that calls of the library
 * record themselves (ZEL_WindClose) are for polling only.
 * window:   an open window; below 0: image windows 0 to 15, of which one is open.
 * callback: the function; NULL removes it. It stays while the window is closed and opened again,
 *           until the library is closed.
 * data:     handed to the function.
 * Failures: -101; -600; -698 for a closed window, or no window. */
int32_t ZEL_InstallWCallback(int32_t window, WindowCallback callback, uintptr_t data);

/* Removes a callback.
 * window: a window; below 0: windows 0 to 15. Above 22 nothing is done.
 * Failures: none; returns 0. */
int32_t ZEL_RemoveWCallback(int32_t window);

/* Lets events in, and takes the newest event of all open windows; older ones are forgotten. Returns
 * 1, 0 where there is none, or a failure.
 * event: receives the event; without one all of it is 0.
 * Failures: -3009 for event; -101; -600. */
int32_t ZEL_GetLastEvent(WindowEvent* event);

/* Lets events in, and takes the event of a window, also of a closed one. Returns 1, 0 where there
 * is none, or a failure.
 * window: a window.
 * event:  receives the event; without one all of it is 0 but the window.
 * Failures: -3009 for event; -101; -600; -602. */
int32_t ZEL_GetLastWEvent(int32_t window, WindowEvent* event);

/* Sets the region of a window. Lets events in. Of a region of one contour, rectangles and ovals
 * take their corners from globalRect. Of several contours those are left out that have another
 * number of points than their type, and unknown types.
 * window: a window.
 * roi:    the region; NULL, or without contours: none.
 * Failures: -101; -600; -602; -601 the window could not be opened; -101 without a region. */
int32_t ZEL_SetWROI(int32_t window, const RoiDescriptor* roi);

/* Reads the region of a window: without one, a contour ROI_WHOLE over the image.
 * window: a window.
 * roi:    address of a pointer to a record or NULL, as told with RoiDescriptor; the record is
 *         replaced. Unchanged after a failure.
 * Failures: -3009 for roi; -101; -600; -602; -601 the window could not be opened; -101. */
int32_t ZEL_GetWROI(int32_t window, RoiDescriptor** roi);

/* Forgets the region of a window. Lets events in.
 * window: a window.
 * Failures: -101; -600; -602; -601 the window could not be opened. Reported as of "ZEL_ClearROI".
 * */
int32_t ZEL_ClearWROI(int32_t window);

#pragma GCC visibility pop
#ifdef __cplusplus
}
#endif

#endif
