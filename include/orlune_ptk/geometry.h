/* Geometry: images turned, shifted, mirrored, transposed, seen in relief. The rules that hold for
 * all functions are told in orlune_ptk.h.
 *
 * A result in place of the source is made in a new image that takes its place: addresses of pixels
 * are no longer valid then, and the pixels of its border are 0. */
#ifndef ORLUNE_PTK_GEOMETRY_H
#define ORLUNE_PTK_GEOMETRY_H

#include "types.h"

#ifdef __cplusplus
extern "C" {
#endif
#pragma GCC visibility push(default)

/* Turns an image about its centre; the size stays. With S and C as 512 times the sine and the
 * cosine of the angle, cut toward zero and raised by 1 where more than 0.5 was cut off, and u and v
 * as twice the distance of a pixel of the result from the centre, its source position in 1024ths of
 * a pixel is 512 (width - 1) + u C - v S, 512 (height - 1) + v C + u S. Negative numbers are cut
 * only, so that turning by 180 degrees is not exact; by 90 degrees it is. In an image of more than
 * a million pixels a side positions are taken modulo 2^32.
 *
 * The nearest pixel is copied with all of its bytes. Bilinear, the four pixels around the position
 * are joined: those of IMAGE_U8 and each colour of IMAGE_RGB, whose fourth byte becomes 0, are
 * rounded to the nearest number and down from the middle; IMAGE_I16 takes shares of 1/64 and cuts
 * toward zero; IMAGE_SGL is joined in 64-bit floats. Less than a pixel beyond the edge, the edge's
 * pixels are taken.
 * source:      IMAGE_U8, IMAGE_I16, IMAGE_SGL or IMAGE_RGB.
 * dest:        an image of source's type. 0 replaces source.
 * angle:       degrees; infinities and NaN are 0.
 * fill:        value of pixels for which there is none in source. Integer types take the low bits
 *              of it cut toward zero: 300.0 is 44 in IMAGE_U8. IMAGE_RGB takes those in blue, green
 *              and red; the fourth byte stays as it is in dest, and is 0 in place of source.
 * interpolate: 0 takes the nearest pixel, any other number is bilinear.
 * Failures: -200; -301 for another source type; -304 for another dest type; -101 no memory. -102 no
 * memory and -1001 no reference is left, both where source is replaced. All images stay as they
 * were then. */
int32_t ZEL_Rotate(ImageRef source, ImageRef dest, float angle, float fill, int32_t interpolate);

/* Shifts an image by whole pixels; the size stays.
 * source: IMAGE_U8, IMAGE_I16, IMAGE_SGL or IMAGE_RGB.
 * dest:   an image of source's type. 0 replaces source.
 * shiftX: columns to the right; negative to the left.
 * shiftY: rows down; negative up.
 * fill:   value of pixels for which there is none in source. Integer types take the low bits of it
 *         cut toward zero; IMAGE_RGB takes those in blue, green and red, and 0 in the fourth byte.
 * Failures: -200; -301 for another source type; -304 for another dest type; -101 no memory. -102 no
 * memory and -1001 no reference is left, both where source is replaced. All images stay as they
 * were then. */
int32_t ZEL_Shift(ImageRef source, ImageRef dest, int32_t shiftX, int32_t shiftY, float fill);

/* Where ZEL_Symmetry puts pixel (x, y) of an image of W x H pixels. */
typedef enum SymmetryAxis {
  SYMMETRY_TOP_BOTTOM = 0,    /* (x, H - 1 - y) */
  SYMMETRY_LEFT_RIGHT = 1,    /* (W - 1 - x, y) */
  SYMMETRY_BOTH = 2,          /* (W - 1 - x, H - 1 - y) */
  SYMMETRY_MAIN_DIAGONAL = 3, /* (y, x), square images only */
  SYMMETRY_OTHER_DIAGONAL = 4 /* (H - 1 - y, W - 1 - x), square images only */
} SymmetryAxis;

/* Mirrors an image.
 * source:   IMAGE_U8, IMAGE_I16, IMAGE_SGL or IMAGE_RGB.
 * dest:     an image of source's type. 0 replaces source.
 * symmetry: a SymmetryAxis. With a number above 4 no pixel is written: dest takes source's size,
 *           calibration and mask offset, and in place of source nothing is done.
 * Failures: -200; -301 for another source type; -306 for a diagonal of an image that is not square;
 * -200 for dest; -304 for another dest type; -101 no memory. -102 no memory and -1001 no reference
 * is left, both where source is replaced. All images stay as they were then. */
int32_t ZEL_Symmetry(ImageRef source, ImageRef dest, uint8_t symmetry);

/* Makes rows of columns: pixel (x, y) goes to (y, x), and the sizes change places. The steps of the
 * calibration don't.
 * source: an image of any type but IMAGE_OPAQUE.
 * dest:   an image of source's type, resized to the result. 0 replaces source.
 * Failures: -200; -301 for IMAGE_OPAQUE; -304 for another dest type; -101 no memory. -102 no memory
 * and -1001 no reference is left, both where source is replaced. All images stay as they were
 * then. */
int32_t ZEL_Transpose(ImageRef source, ImageRef dest);

/* What ZEL_3DView shows of a complex image. */
typedef enum ViewPlane {
  VIEW_PLANE_REAL = 0,
  VIEW_PLANE_IMAGINARY = 1,
  VIEW_PLANE_MAGNITUDE = 2,
  VIEW_PLANE_PHASE = 3 /* degrees of atan(imaginary / real); 90 where |real| is below 1 */
} ViewPlane;

/* How ZEL_3DView draws. Numbers beyond the limits are limited; angles are compared by their bits,
 * so that negative ones are 15 degrees, and NaN is 45, or 15 with a sign. */
typedef struct View3DOptions {
  float alpha;        /* degrees, 15 to 45, that the grid's first axis falls to the right; 30 */
  float beta;         /* degrees, 15 to 45, that its second axis rises to the right; 30 */
  int32_t border;     /* pixels around the drawing, 0 to 64; 20 */
  int32_t background; /* value, 0 to 255; 85 */
  int32_t plane;      /* a ViewPlane, for a complex image; VIEW_PLANE_MAGNITUDE */
} View3DOptions;

/* Draws an image in relief: each sample stands as a bar on an oblique grid, and nearer bars cover
 * those behind them. A bar is as long as the sample is light, up to maxHeight pixels for 255, and
 * its gray rises from 0 at the foot to the sample's. Of a complex image, bars show a part divided
 * by a number that grows with the image; negative ones hang down, and all but those of magnitudes
 * have room for maxHeight more rows. Its quadrants are seen exchanged so that
 * low frequencies stand in the middle. The drawing is an image of its own size, calibrated as
 * source is; an image of 0 x 0 gives one of 0 x 0.
 * source:    IMAGE_U8 or IMAGE_COMPLEX.
 * dest:      an IMAGE_U8 image, resized to the drawing. 0 or source replaces source, which must be
 *            IMAGE_U8 then.
 * reduction: from one sample to the next, in pixels: 1, up to an eighth of the smaller side.
 * maxHeight: pixels of the longest bar, 2 to 256; numbers beyond are limited.
 * direction: the corner that pixel (0, 0) stands in: 0 the far one, 1 left, 2 near, 3 right;
 *            numbers beyond are limited. The picture is turned for that, and not mirrored.
 * options:   how it is drawn; NULL: with the numbers that stand last above.
 * Failures: -200; -202 for a dest of 0 with another source than IMAGE_U8; -304 for source as dest
 * with such a source; -301 for another source or dest type; -101 no memory. -102 no memory and
 * -1001 no reference is left, both where source is replaced. All images stay as they were then. */
int32_t ZEL_3DView(ImageRef source, ImageRef dest, int32_t reduction, int32_t maxHeight,
                   int32_t direction, const View3DOptions* options);

#pragma GCC visibility pop
#ifdef __cplusplus
}
#endif

#endif
