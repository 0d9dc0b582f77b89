/* Windows that show images. The rules that hold for all functions are told in orlune_ptk.h.
 *
 * Windows are numbers: 0 to 15 show images, 16 is the tools window, 17 to 22 are panels of buttons.
 * A window opens, hidden, at the first call that names it, a query or ZEL_WindClose among them;
 * where a function leaves closed windows closed it says so.
 *
 * They are shown by the X server that DISPLAY names, on a Wayland desktop the one that stands for
 * it. It is looked for at the first use. On a machine without a desktop windows are kept in memory,
 * and every call gives what it would give with a desktop; the screen has 1920 x 1080 pixels then.
 * When the server goes the windows are closed, with their events, and none is had (-601) until
 * ZEL_CloseSys was called; the same holds in a forked child, which has no windows of its parent.
 * ORLUNE_PTK_SCALE, 1 to 8, shows all windows so many times larger; without it that is what
 * GDK_SCALE says, or the desktop's resolution tells. Positions and sizes are told as without it.
 *
 * A window shows the caller's image itself, not a copy: the image stays the caller's, and must live
 * as long as it is shown. One that is disposed of, without pixels, or IMAGE_OPAQUE is shown as a
 * hatched canvas, without a failure. IMAGE_U8 is shown through the window's palette of 256 colours,
 * IMAGE_RGB as it is. Other types are mapped to 8 bits whenever the window is painted for another
 * reason than scrolling: IMAGE_I16 and IMAGE_SGL so that the range from the smallest to the largest
 * pixel becomes 0 to 255 (of one value only, its low 8 bits), IMAGE_COMPLEX by its magnitude with
 * the zero frequency in the middle.
 *
 * A zoom of n from 1 to 32 makes n canvas pixels of an image pixel, and one from -1 to -16 one of
 * |n|. An image smaller than its canvas lies in the middle, the top at a multiple of the vertical
 * zoom. Scroll bars take 16 pixels at the right and the bottom.
 *
 * Painting and events happen inside calls only: those of which it is said let the desktop's events
 * in, serve callbacks and paint what is to be painted, also when they fail, but not with -600. */
#ifndef ORLUNE_PTK_WINDOWS_H
#define ORLUNE_PTK_WINDOWS_H

#include "types.h"

#ifdef __cplusplus
extern "C" {
#endif
#pragma GCC visibility push(default)

typedef enum WindowKind {
  WINDOW_IMAGE = 0, /* windows 0 to 15 */
  WINDOW_TOOLS = 1, /* window 16 */
  WINDOW_USER = 2   /* windows 17 to 22 */
} WindowKind;

/* What can be read and set of a window. The flags are the desktop's own: they are kept, and handed
 * on to it. */
typedef enum WindowAttribute {
  WATTR_VISIBLE = 530, /* 0 hidden, else shown */
  WATTR_LEFT = 531,    /* of the panel on the screen */
  WATTR_TOP = 532,
  WATTR_WIDTH = 533, /* read: of the panel; set: of the canvas without scroll bars, at least 64 */
  WATTR_HEIGHT = 540,
  WATTR_SCROLLBARS = 551, /* 0 off, else on */
  WATTR_CENTRE_X =
      560, /* image column in the middle; setting it changes nothing but the painting */
  WATTR_FLAG_571 = 571,
  WATTR_TITLE = 573, /* a text; setting it paints the window */
  WATTR_FLAG_580 = 580,
  WATTR_FLAG_581 = 581,
  WATTR_CENTRE_Y = 593, /* image row in the middle; setting it sets the column to the same value */
  WATTR_FLAG_599 = 599,
  WATTR_FLAG_600 = 600,
  WATTR_FLAG_601 = 601,
  WATTR_FLAG_615 = 615,
  WATTR_ZOOM_Y = 990000, /* -16 to 32; 0 and other numbers keep the zoom */
  WATTR_ZOOM_X = 990001,
  WATTR_GRID_Y =
      990002, /* tools' positions snap to it; read of window 0, set for windows 0 to 14, */
  WATTR_GRID_X = 990003,    /* whatever window is named; below 1 is kept */
  WATTR2_POSITION = 990004, /* top and left; those from here on are pairs */
  WATTR2_SIZE = 990005,     /* height and width; a 0 sets nothing */
  WATTR2_CENTRE = 990006,   /* row and column */
  WATTR2_ZOOM = 990007,
  WATTR2_GRID = 990008
} WindowAttribute;

/* Palettes. All of them begin with black and end with white. */
typedef enum PaletteKind {
  PALETTE_GRAY = 0,
  PALETTE_BINARY = 1, /* fifteen colours in turn */
  PALETTE_GRADIENT = 2,
  PALETTE_RAINBOW = 3,
  PALETTE_TEMPERATURE = 4
} PaletteKind;

/* Gives a window a command. Those above 0 are decimal: each digit is an action, and they run from
 * the left; a digit that is not in the list does nothing. The last digit that answers counts.
 *   10000, 1000 to 9000  image windows: the tool is the zoom; it is the thousands less 1, of the
 *                        numbers 0 none, 1 to 6 as WindowTool, 7 WTOOL_POLYLINE, 8 WTOOL_FREELINE
 *   100  size of the canvas: input [width, height]
 *   200  place of the panel: input [left, top], else 20, 40; answers as -2
 *   400  grid of this window: input [both] or [x, y]
 *   10, 20, 30  show, hide, make active; answer as -4
 *   1    answers nothing
 *   2    paint; input [x, y] puts this pixel in the middle first, [top, left, bottom, right] asks
 *        for the painting of a part
 *   3    forget the region
 *   5    zoom and middle: input [zoom, x, y] or [zoom x, zoom y, x, y]
 *   9    close
 * Commands of 0 and below; those of other numbers do nothing:
 *   0    the window's event, which is taken: its four integers, or none; a closed window stays
 *        closed
 *   -1   the numbers of the region's shape: point x, y; line x1, y1, x2, y2, dx, dy, angle, length;
 *        rectangle and oval left, top, right, bottom, width, height; others WindowTool, left, top,
 *        right, bottom; a closed window stays closed
 *   -2   [left, top] of the panel
 *   -3   [width, height, scroll bars]
 *   -4   [0 hidden, 1 shown, 2 shown and active]
 *   -5   [x, y]: the grid of window 0
 *   -6   grid of windows 0 to 14: input [both] or [x, y]; answers as -5
 *   -9   scroll bars: input [0 or another number]; answers as -3
 *   -10  a new panel at the place of the old one: input of four numbers sets flags 580, 601, 571
 *        with 581, 615; fewer give the panel that a window opens with
 *   -11  [zoom x, zoom y]
 *   -12  [x, y]: the image position in the middle
 *   -19  close all windows of this one's kind
 *   -20  window 16: lay the tools out: input [coordinates, tools a row, WindowTool, ...]
 *   -21  choose a tool for windows 0 to 14: input [WindowTool]
 *   -30  the region in its flat form (regions.h)
 *   -31  set the region: input in its flat form
 *   -33  colour of shapes: input [red, green, blue]
 *   -34  the outline pen: [red, green, blue, red, green, blue of the background, eight rows of the
 *        pattern, width]
 *   -35  set it: input of these, and the mode
 *   -36  [window, 1 once for each key, key, modifiers, milliseconds] of the last key
 *   -37  set the brush: input [window, opacity in percent, enabled, blend mode, scaled, two scales,
 *        a table of 256, height and width of a pattern, its words]
 *   -38  the brush as it was set, or 265 zeros
 *   -39  [width, height, 1, 1] of the screen
 *   -40  left, top, right, bottom of the part of the image that is shown, of its place on the
 *        canvas, and of what the canvas shows of that place
 *   -41  [the 8-bit image that another type was mapped to, or 0]
 *   -42  [the address of the window's record: low word, high word if there is room for it]
 *   -43  forget the region, without painting
 *   -98  [window, x, y] of the last move of the pointer, in image pixels
 *   -99  the newest event of the types in input (WindowEventType), as 0; `window` receives its
 *        window
 *   -100 user window: a background; no image goes with the command here, which is -200
 *   -101 user window: the buttons: input [kind, left, top, right, bottom] for each; kind 0 stays
 *        down, others only as long as the mouse
 *   -102 user window: the states of buttons of kind 0, others 0
 *   -103 set them: input a number for each; answers as -102
 * window:      a window; receives the event's with -99.
 * command:     as above.
 * input:       the command's numbers, or NULL for none.
 * inputCount:  of input; below 0 counts as 0.
 * output:      receives the answer, or NULL. What it does not fill is left alone.
 * outputCount: numbers that output has room for.
 * Failures: -3009 for window; -101; -600; -602; -601 the window could not be opened; -200 the
 * background; -101; -102 the answer has more numbers than outputCount: none is written, what the
 * command does has been done, and an event stays. Reported as of "ZEL_WindManager". */
int32_t ZEL_DisplayManager(int32_t* window, int32_t command, const int32_t* input,
                           int32_t inputCount, int32_t* output, int32_t outputCount);

/* Shows a window and paints an image in it. Lets events in.
 * image:  what the window shows from now on; 0: what it showed. It is not looked at before the
 *         painting.
 * window: an image window, or a user window: it shows the image in the place of its own. The tools
 *         window is only shown.
 * title:  of the window; NULL keeps it.
 * resize: not 0: the canvas takes the size of the image times the zoom, at least 64 each way,
 *         rounded down to a multiple of the zoom, and the view goes to its corner; an unknown image
 *         keeps it.
 * Failures: -101; -600; -602; -601 the window could not be opened. */
int32_t ZEL_WindDraw(ImageRef image, int32_t window, const char* title, int32_t resize);

/* Sets the palette of a window and paints it. Lets events in.
 * window:      a window; the tools window takes no palette.
 * paletteKind: a PaletteKind; any other number: userPalette.
 * userPalette: 256 colours, whose fourth bytes do not count. May be NULL with a PaletteKind.
 * Failures: -3009 for userPalette; -101; -600; -602; -601 the window could not be opened. */
int32_t ZEL_WSetPalette(int32_t window, int32_t paletteKind, const RGBValue* userPalette);

/* Sets an attribute. Lets events in.
 * window:    a window. Flags of a closed one are not set, and leave it closed.
 * attribute: a WindowAttribute that is no pair.
 * value:     the number, or for WATTR_TITLE the address of the text.
 * Failures: -699; -3009 for a title; -101; -600; -602; -601 the window could not be opened; -699
 * for a pair, with the window open. */
int32_t ZEL_SetWindowAttribute(int32_t window, int32_t attribute, intptr_t value);

/* Reads an attribute.
 * window:    a window. Flags (1) and title ("") of a closed one leave it closed.
 * attribute: a WindowAttribute that is no pair.
 * value:     receives an int32_t, or for WATTR_TITLE the text with its terminator.
 * Failures: -3009 for value; -699; -101; -600; -602; -601 the window could not be opened. */
int32_t ZEL_GetWindowAttribute(int32_t window, int32_t attribute, void* value);

/* Sets a pair. Lets events in.
 * window:     a window.
 * attribute:  WATTR2_POSITION to WATTR2_GRID.
 * vertical:   its vertical value.
 * horizontal: its horizontal value.
 * Failures: -699; -101; -600; -602; -601 the window could not be opened. */
int32_t ZEL_SetWindow2DAttributes(int32_t window, int32_t attribute, int32_t vertical,
                                  int32_t horizontal);

/* Reads a pair.
 * window:     a window.
 * attribute:  WATTR2_POSITION to WATTR2_GRID.
 * vertical:   receives its vertical value.
 * horizontal: receives its horizontal value.
 * Failures: -3009 for an output; -699; -101; -600; -602; -601 the window could not be opened. */
int32_t ZEL_GetWindow2DAttributes(int32_t window, int32_t attribute, int32_t* vertical,
                                  int32_t* horizontal);

/* Closes a window, which leaves an event of type WEVENT_CLOSE (not the tools window). Images that
 * were shown stay.
 * window:    a window.
 * allOfKind: not 0: all windows of its kind are closed.
 * Failures: -101; -600; -602; -601 a closed window could not be opened. */
int32_t ZEL_WindClose(int32_t window, int32_t allOfKind);

/* Reads the desktop's own numbers of a window, which stays closed where it is.
 * window: a window. Outside 0 to 22, and for a closed one, both numbers are 0.
 * panel:  NULL, or receives the number of the panel.
 * canvas: NULL, or receives that of the canvas on it.
 * Failures: none; returns 0. */
int32_t ZEL_GetWindowIDs(int32_t window, int32_t* panel, int32_t* canvas);

/* Sets the panel that a window opens on from now on. It survives ZEL_CloseSys.
 * window:      a window; outside 0 to 22 nothing is done.
 * parentPanel: the desktop's number of the panel; 0, as at the start: none.
 * Failures: none; returns 0. */
int32_t ZEL_SetWParent(int32_t window, int32_t parentPanel);

#pragma GCC visibility pop
#ifdef __cplusplus
}
#endif

#endif
