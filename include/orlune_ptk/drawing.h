/* Shapes and text drawn into images. The rules that hold for all functions are told in
 * orlune_ptk.h.
 *
 * They are drawn over a copy of the source. What lies beyond the image is left out; borders are not
 * drawn into, but where source and destination have borders of the same width, the destination's is
 * a copy as well. */
#ifndef ORLUNE_PTK_DRAWING_H
#define ORLUNE_PTK_DRAWING_H

#include "types.h"

#ifdef __cplusplus
extern "C" {
#endif
#pragma GCC visibility push(default)

/* What a shape does to pixels. Numbers below are DRAW_FRAME, those above DRAW_INVERT_PAINT.
 *
 * A pixel of an IMAGE_U8 image is inverted to its bitwise complement, one of another image to the
 * sum of the smallest and the largest pixel of the whole image, less the pixel; that sum is 0 where
 * the two are equal. For IMAGE_I16 the largest is at least 0, and the low 16 bits are kept; for
 * IMAGE_SGL, NaN and what is beyond 1e38 are not looked at. Each pixel is inverted once. */
typedef enum DrawMode {
  DRAW_FRAME = 0,        /* the outline takes the value */
  DRAW_PAINT = 1,        /* the outline and what is inside take it */
  DRAW_INVERT_FRAME = 2, /* the outline is inverted */
  DRAW_INVERT_PAINT = 3  /* the outline and what is inside are inverted */
} DrawMode;

/* Draws a straight line. It is clipped to the image first, with ends cut toward zero, as by
 * ZEL_GetLine.
 * source:      IMAGE_U8, IMAGE_I16 or IMAGE_SGL.
 * destination: an image of source's type. 0 draws into source.
 * startX:      column of the first point.
 * startY:      row of the first point.
 * endX:        column of the last point.
 * endY:        row of the last point.
 * mode:        a DrawMode; whether it paints makes no difference.
 * value:       for integer images cut toward zero, of which the low bits are kept: 300 is 44 in an
 *              IMAGE_U8 image.
 * Failures: -200; -301 for another source type; -304 for another destination type; -101 no memory,
 * with size, pixels, border, calibration and offset of destination changed by then. */
int32_t ZEL_DrawLine(ImageRef source, ImageRef destination, int32_t startX, int32_t startY,
                     int32_t endX, int32_t endY, int32_t mode, float value);

/* Draws a rectangle. One without pixels, or outside the image, draws nothing.
 * source:      IMAGE_U8, IMAGE_I16 or IMAGE_SGL.
 * destination: an image of source's type. 0 draws into source.
 * top:         its first row.
 * left:        its first column.
 * height:      rows.
 * width:       columns.
 * mode:        a DrawMode.
 * value:       as for ZEL_DrawLine.
 * Failures: -200; -301 for another source type; -304 for another destination type; -101 no memory,
 * with size, pixels, border, calibration and offset of destination changed by then. */
int32_t ZEL_DrawRect(ImageRef source, ImageRef destination, int32_t top, int32_t left,
                     int32_t height, int32_t width, int32_t mode, float value);

/* Draws the ellipse that fills a rectangle; where that is less than 2 pixels wide or high, the
 * rectangle itself. The outline are its pixels with a pixel beside, above or below them that is
 * outside. An image whose corners all lie in the ellipse is painted as a whole, and has no outline
 * in it. An ellipse that holds no corner of the image is not drawn if its centre lies outside,
 * though it may reach over an edge.
 * source:      IMAGE_U8, IMAGE_I16 or IMAGE_SGL.
 * destination: an image of source's type. 0 draws into source.
 * top:         first row of the rectangle.
 * left:        its first column.
 * height:      its rows.
 * width:       its columns.
 * mode:        a DrawMode.
 * value:       as for ZEL_DrawLine.
 * Failures: -200; -301 for another source type; -304 for another destination type; -101 no memory,
 * with size, pixels, border, calibration and offset of destination changed by then. */
int32_t ZEL_DrawOval(ImageRef source, ImageRef destination, int32_t top, int32_t left,
                     int32_t height, int32_t width, int32_t mode, float value);

/* What letters, and the ground that they stand on, do to pixels. White is 255, or 0xFFFFFF in an
 * IMAGE_RGB image, and black 0; the fourth byte of IMAGE_RGB becomes 0. Numbers below TEXT_WHITE
 * are that one, those above TEXT_WHITE_ON_BLACK that one. */
typedef enum TextMode {
  TEXT_WHITE = 0,  /* the letters turn white */
  TEXT_BLACK = 1,  /* the letters turn black */
  TEXT_INVERT = 2, /* pixels of letters become their bitwise complement, but for fourth bytes */
  TEXT_BLACK_ON_WHITE = 3, /* also the ground, as far as lines go */
  TEXT_WHITE_ON_BLACK = 4  /* likewise */
} TextMode;

/* Bits of a style. All others are ignored. */
typedef enum TextFlags {
  TEXT_BOLD = 1,
  TEXT_ITALIC = 2,
  TEXT_UNDERLINE = 4,
  TEXT_STRIKEOUT = 32
} TextFlags;

/* Which point of a line is the given one. Numbers outside are the nearest of these. */
typedef enum TextAlign {
  TEXT_ALIGN_LEFT = 0,   /* its left end */
  TEXT_ALIGN_CENTRE = 1, /* its middle */
  TEXT_ALIGN_RIGHT = 2   /* its right end */
} TextAlign;

#define FONT_SIZE_LEAST 10   /* pixels: smaller sizes are raised to it */
#define FONT_SIZE_LIMIT 8192 /* pixels */
#define TEXT_LINE_BYTES 256  /* at most, of one line */

/* Draws text with a font of the machine. No display is needed, but the libraries freetype and
 * fontconfig, which are opened at the first call, and a font.
 *
 * Text is UTF-8, of which a byte that does not belong there is the Latin-1 character of its value.
 * Code 13 ends a line; codes 10 and 0 to 31 otherwise, 127, and 128 to 159 are passed over. Letters
 * have hard edges. Each line is as high as the size and the lines follow each other without gaps;
 * what lies beyond its two ends, its height or the image is left out. A line of more than
 * TEXT_LINE_BYTES ends the drawing, without a failure.
 * source:      IMAGE_U8 or IMAGE_RGB.
 * destination: an image of source's type. 0 draws into source.
 * x:           column of the lines' left ends, middles or right ends. Any number.
 * y:           row of the first line's top. Any number.
 * textMode:    a TextMode.
 * text:        zero-terminated.
 * size:        pixels from what ascends in a line to what descends, from FONT_SIZE_LEAST to
 *              FONT_SIZE_LIMIT.
 * style:       TextFlags, added up. Where a font has no bold or italic letters, they are made so.
 * align:       a TextAlign.
 * fontName:    a font's family, like "DejaVu Sans", in UTF-8, of which 31 bytes are looked at. The
 *              font nearest to it is taken where there is none of that name.
 * lineCount:   receives how many lines the text has, also those that are not drawn. NULL: not
 *              wanted.
 * Failures: -450 for a NULL text or name, before anything else is looked at; -200; -301 for another
 * type of source or destination; -7 without the libraries, -2 without a font, -4 for a font that
 * cannot be opened, -6 for a size beyond the limit; -101 no memory for a line; -101 no memory, with
 * size, pixels, border, calibration and offset of destination changed by then. */
int32_t ZEL_DrawText(ImageRef source, ImageRef destination, int32_t x, int32_t y, int32_t textMode,
                     const char* text, int32_t size, int32_t style, int32_t align,
                     const char* fontName, int32_t* lineCount);

#pragma GCC visibility pop
#ifdef __cplusplus
}
#endif

#endif
