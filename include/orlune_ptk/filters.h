/* Filters: what a pixel and its neighbours give. The rules that hold for all functions are told in
 * orlune_ptk.h.
 *
 * Neighbours beyond the image are read from the border of the source, which a filter fills first.
 * In an image smaller than its border, the pixels filled are not those next to the image.
 *
 * A result in place of the source or the mask is made in a new image that takes its place:
 * addresses of pixels are no longer valid then. Under a mask, pixels that are not selected are
 * copies of the source's, and where source and destination have borders of the same width, the
 * border is one too. */
#ifndef ORLUNE_PTK_FILTERS_H
#define ORLUNE_PTK_FILTERS_H

#include "types.h"

#ifdef __cplusplus
extern "C" {
#endif
#pragma GCC visibility push(default)

/* How ZEL_GrayEdge measures an edge, with the neighbours of a pixel C named by compass: NW is the
 * one above and to the left. */
typedef enum EdgeMethod {
  EDGE_DIFFERENTIATION = 0, /* the largest of |NW - C|, |N - C| and |W - C| */
  EDGE_GRADIENT = 1,        /* the larger of |NW - W| and |N - C| */
  EDGE_PREWITT = 2,         /* a third of the larger of |(NE + E + SE) - (NW + W + SW)| and
                             * |(SW + S + SE) - (NW + N + NE)| */
  EDGE_ROBERTS = 3,         /* the larger of |NW - C| and |W - N| */
  EDGE_SIGMA = 4,           /* the mean of |C - neighbour| over all eight */
  EDGE_SOBEL = 5            /* a quarter of the larger of |(NE + 2 E + SE) - (NW + 2 W + SW)| and
                             * |(NW + 2 N + NE) - (SW + 2 S + SE)| */
} EdgeMethod;

/* Measures how much each pixel differs from its neighbours. The source's border is filled by
 * mirroring. Results of integer images are truncated; one above 32767 of an IMAGE_I16 image
 * keeps its low 16 bits, and reads as a negative number.
 * source:      IMAGE_U8, IMAGE_I16 or IMAGE_SGL, with a border of at least 1.
 * mask:        an IMAGE_U8 image placed by its offset: pixels not selected are copied. 0 or source:
 *              all are measured.
 * destination: an image of source's type. 0 replaces source. It may be the mask.
 * method:      an EdgeMethod; any other number is EDGE_SOBEL.
 * threshold:   a result below it becomes 0; with EDGE_SIGMA it is ignored. For integer images it is
 *              truncated, and NaN counts as 0; for IMAGE_SGL, NaN keeps every result.
 * Failures: -200; -301 for another source type; -309 for a border of 0. Then the border is filled.
 * -304 for another destination type; -301 for a mask that is not IMAGE_U8; -101 no memory, with
 * size, calibration, offset and pixels of destination changed by then. -102 no memory and -1001 no
 * reference is left, both where source or mask are replaced, which stay as they were. */
int32_t ZEL_GrayEdge(ImageRef source, ImageRef mask, ImageRef destination, int32_t method,
                     float threshold);

/* Gives pixels that stand out from their neighbours the neighbours' mean; all others stay. The mean
 * m is that of the window without its centre, and for integer images truncated. A pixel c
 * becomes m where 100 |m - c| / m is greater than the tolerance (100 |c| where m is 0); a negative
 * m replaces nothing. The source's border is filled by mirroring.
 * source:      IMAGE_U8, IMAGE_I16 or IMAGE_SGL, with a border of at least half the window's longer
 *              side, rounded down.
 * mask:        an IMAGE_U8 image placed by its offset: pixels not selected are copied. 0 or source:
 *              all are looked at.
 * destination: an image of source's type. 0 replaces source. It may be the mask.
 * width:       columns of the window. The extra column of an even number lies on the right. Below 1
 *              it is 1; with a window of one pixel the source is copied.
 * height:      rows of the window; the extra row of an even number lies below. Below 1 it is 1.
 * tolerance:   percent of the mean. A number above 100, or NaN, is 100; one with a sign is not
 *              limited, and loses the sign: -500 is 500.
 * Failures: -200; -301 for another source type; -309 for a border that is too narrow. Then the
 * border is filled. -304 for another destination type; -301 for a mask that is not IMAGE_U8; -101
 * no memory, with size, calibration, offset and pixels of destination changed by then. -102 no
 * memory and -1001 no reference is left, both where source or mask are replaced, which stay as they
 * were. */
int32_t ZEL_LowPass(ImageRef source, ImageRef mask, ImageRef destination, int32_t width,
                    int32_t height, float tolerance);

/* Gives each pixel the value of one rank in its window: the one that is found at a place when the
 * window's pixels are sorted in ascending order. Rank 0 is the smallest, width * height / 2 the
 * median of a window with an odd number of pixels, width * height - 1 the largest. In an IMAGE_SGL
 * image a NaN stays where it is in the order of the window's rows, and what comes before it,
 * between two of them and after it is sorted apart; zeros are equal whatever their sign, and equal
 * pixels keep the order of the rows. The source's border is filled by mirroring.
 * source:      IMAGE_U8, IMAGE_I16 or IMAGE_SGL, with a border of at least half the window's longer
 *              side, rounded down.
 * mask:        an IMAGE_U8 image placed by its offset: pixels not selected are copied. 0 or source:
 *              all are replaced.
 * destination: an image of source's type. 0 replaces source. It may be the mask.
 * width:       columns of the window. The extra column of an even number lies on the right. Below
 *              1, or with a window of one pixel, the source is copied.
 * height:      rows of the window; the extra row of an even number lies below. Below 1 the source
 *              is copied.
 * order:       the rank. Below 0 it is 0, above the largest it is that.
 * Reported as "KORNthOrder".
 * Failures: -200; -301 for another source type; -309 for a border that is too narrow. Then the
 * border is filled. -304 for another destination type; -301 for a mask that is not IMAGE_U8; -101
 * no memory, with size, calibration, offset and pixels of destination changed by then. -102 no
 * memory and -1001 no reference is left, both where source or mask are replaced, which stay as they
 * were. */
int32_t ZEL_NthOrder(ImageRef source, ImageRef mask, ImageRef destination, int32_t width,
                     int32_t height, int32_t order);

#pragma GCC visibility pop
#ifdef __cplusplus
}
#endif

#endif
