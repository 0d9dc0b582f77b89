/* Shapes drawn into images. The rules that hold for all functions are told in orlune_ptk.h.
 *
 * A shape is drawn over a copy of the source. What lies beyond the image is left out; borders are not
 * drawn into, but where source and destination have borders of the same width, the destination's is a
 * copy as well. */
#ifndef ORLUNE_PTK_DRAWING_H
#define ORLUNE_PTK_DRAWING_H

#include "types.h"

#ifdef __cplusplus
extern "C" {
#endif
#pragma GCC visibility push(default)

/* What a shape does to pixels. Numbers below are DRAW_FRAME, those above DRAW_INVERT_PAINT.
 *
 * A pixel of an IMAGE_U8 image is inverted to its bitwise complement, one of another image to the sum
 * of the smallest and the largest pixel of the whole image, less the pixel; that sum is 0 where the two
 * are equal. For IMAGE_I16 the largest is at least 0, and the low 16 bits are kept; for IMAGE_SGL, NaN
 * and what is beyond 1e38 are not looked at. Each pixel is inverted once. */
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
 * outside. An image whose corners all lie in the ellipse is painted as a whole, and has no outline in
 * it. An ellipse that holds no corner of the image is not drawn if its centre lies outside, though it
 * may reach over an edge.
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

#pragma GCC visibility pop
#ifdef __cplusplus
}
#endif

#endif
