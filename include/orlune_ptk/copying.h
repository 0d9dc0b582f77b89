/* Blocks of pixels from image to image: copied, repeated, thinned out, pasted, resampled. The rules
 * that hold for all functions are told in orlune_ptk.h.
 *
 * Rectangles are limited to the image. A result in place of the source is made in a new image that
 * takes its place: addresses of pixels are no longer valid then, and the pixels of its border are
 * 0. */
#ifndef ORLUNE_PTK_COPYING_H
#define ORLUNE_PTK_COPYING_H

#include "types.h"

#ifdef __cplusplus
extern "C" {
#endif
#pragma GCC visibility push(default)

/* Makes an image the exact copy of another one: type, size, calibration, mask offset, pixels, and
 * the border with its pixels and width.
 * source:      an image of any type.
 * destination: an image of any type, which becomes source's. With source itself nothing is done.
 * Failures: -200, also for a destination of 0; -101 no memory, and destination stays as it was. */
int32_t ZEL_Copy(ImageRef source, ImageRef destination);

/* Blows a rectangle up: each pixel is repeated along its row, and each row that this gives down the
 * image. The result has xFactor x yFactor times the rectangle's pixels.
 * source:      of any type but IMAGE_OPAQUE.
 * destination: an image of source's type, resized to the result. 0 replaces source.
 * top:         first row of the rectangle.
 * left:        first column.
 * height:      rows. Below 1, or beside the image, the result is 0 x 0.
 * width:       columns. Below 1, or beside the image, the result is 0 x 0.
 * xFactor:     times that each pixel is repeated along its row; below 1 it is 1.
 * yFactor:     times that each row is repeated; below 1 it is 1.
 * Failures: -200 for source; -301 for IMAGE_OPAQUE; -200 for destination; -304 for another
 * destination type; -101 no memory, also for a result of more than 2^31 - 1 bytes. -102 no memory
 * and -1001 no reference is left, both where source is replaced. All images stay as they were
 * then. */
int32_t ZEL_Expand(ImageRef source, ImageRef destination, int32_t top, int32_t left, int32_t height,
                   int32_t width, int32_t xFactor, int32_t yFactor);

/* Takes the pixels (left + i * xFactor, top + j * yFactor) that lie in a rectangle. The result has
 * the rectangle's sizes divided by the factors and rounded up.
 * source:      IMAGE_U8, IMAGE_I16, IMAGE_SGL or IMAGE_RGB.
 * destination: an image of source's type, resized to the result. 0 replaces source.
 * top:         first row of the rectangle.
 * left:        first column.
 * height:      rows. Below 1, or beside the image, the result is 0 x 0.
 * width:       columns. Below 1, or beside the image, the result is 0 x 0.
 * xFactor:     from one column taken to the next; below 1 it is 1.
 * yFactor:     from one row taken to the next; below 1 it is 1.
 * Failures: -200 for source; -300 for another source type; -200 for destination; -304 for another
 * destination type; -101 no memory. -102 no memory and -1001 no reference is left, both where
 * source is replaced. All images stay as they were then. */
int32_t ZEL_Extract(ImageRef source, ImageRef destination, int32_t top, int32_t left,
                    int32_t height, int32_t width, int32_t xFactor, int32_t yFactor);

/* Pastes an image into another one. Pixels of destination that source does not cover stay, and so
 * do its size, calibration and mask offset.
 * source:      of any type but IMAGE_OPAQUE. Its mask offset is not looked at.
 * destination: an image of source's type. 0 or source: the image is pasted into itself, row after
 *              row from the first one, so that rows moved down repeat.
 * x:           column of destination where column 0 of source goes; any number.
 * y:           row of destination where row 0 of source goes; any number.
 * Failures: -200; -304 for another destination type; -300 for IMAGE_OPAQUE, unless source lies
 * beside destination. */
int32_t ZEL_ImageToImage(ImageRef source, ImageRef destination, int32_t x, int32_t y);

/* What ZEL_Resample makes of the pixels around a position. */
typedef enum ResampleMethod {
  RESAMPLE_NEAREST = 0,   /* the pixel at the position cut toward zero */
  RESAMPLE_BILINEAR = 1,  /* two pixels joined by a line, in x, then in y */
  RESAMPLE_QUADRATIC = 2, /* three pixels joined by a parabola, in x, then in y */
  RESAMPLE_SPLINE = 3 /* all pixels of the rectangle's row joined by a natural cubic spline, then
                           * all of the column of that */
} ResampleMethod;

/* Resamples a rectangle to any size. Pixel (i, j) of the result stands at the source position
 * (left + i * (width - 1) / newWidth, top + j * (height - 1) / newHeight), computed like all
 * numbers in between in 64-bit floats; so the last pixels of the rectangle are never quite reached.
 * Along a side whose size does not change, pixels stay at theirs and are not joined. Results of
 * integer images are cut toward zero and keep their low bits: a curve that swings to 260 gives 4 in
 * IMAGE_U8. Each of the four bytes of an IMAGE_RGB pixel is treated by itself.
 *
 * Where a method needs a pixel beyond the rectangle it takes that of the image, beyond the image
 * the border's as it is, and beyond the border the nearest of the image. A spline needs none.
 *
 * When the rectangle has the new size already, and has pixels, the call is ZEL_Copy: of all of
 * source, whatever the rectangle and the types. In place of source it does nothing then.
 * source:      IMAGE_U8, IMAGE_I16, IMAGE_SGL or IMAGE_RGB.
 * destination: an image of source's type, resized to the result. 0 replaces source.
 * top:         first row of the rectangle.
 * left:        first column.
 * height:      rows. Below 1, or beside the image, the result is 0 x 0.
 * width:       columns. Below 1, or beside the image, the result is 0 x 0.
 * newWidth:    columns of the result. Below 1 the result is 0 x 0.
 * newHeight:   rows of the result. Below 1 the result is 0 x 0.
 * method:      a ResampleMethod; below 0 it is 0, above 3 it is 3.
 * Failures: -200 for source; -301 for another source type; -200 for destination; -304 for another
 * destination type; -101 no memory, also for a result, or 64-bit floats of a spline, of more than
 * 2^31 - 1 bytes. -102 no memory and -1001 no reference is left, both where source is replaced. All
 * images stay as they were then. */
int32_t ZEL_Resample(ImageRef source, ImageRef destination, int32_t top, int32_t left,
                     int32_t height, int32_t width, int32_t newWidth, int32_t newHeight,
                     int32_t method);

#pragma GCC visibility pop
#ifdef __cplusplus
}
#endif

#endif
