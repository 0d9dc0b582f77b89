/* Morphology: shapes and gray levels changed by structuring elements. The rules that hold for all
 * functions are told in orlune_ptk.h.
 *
 * Neighbours beyond the image are copies of its outermost pixels: a set pixel at the edge is not
 * eroded from outside. A result in place of the source is made in a new image that takes its place:
 * addresses of pixels are no longer valid then. */
#ifndef ORLUNE_PTK_MORPHOLOGY_H
#define ORLUNE_PTK_MORPHOLOGY_H

#include "types.h"

#ifdef __cplusplus
extern "C" {
#endif
#pragma GCC visibility push(default)

/* The neighbourhood that an operation of morphology looks at. */
typedef struct StructuringElement {
  int32_t width;     /* columns */
  int32_t height;    /* rows */
  int32_t* elements; /* width * height numbers, row by row; those that are not 0 are its members */
  int32_t hexagonal; /* 0 in the low 16 bits: rows of the image lie in columns. Else a hexagonal
                      * grid, in which rows 1, 3, 5... lie half a pixel to the right */
} StructuringElement;

/* What ZEL_Morphology and ZEL_GrayMorphology do. Numbers below are MORPHOLOGY_AUTO_MEDIAN, those
 * above MORPHOLOGY_THIN. To close is to dilate and then to erode, to open is to erode and then to
 * dilate; C(x), O(x) and D(x) stand for closed, opened and dilated. */
typedef enum MorphologyOperation {
  MORPHOLOGY_AUTO_MEDIAN = 0, /* (x and C(O(C(x)))) or O(C(O(x))): without spots and gaps */
  MORPHOLOGY_CLOSE = 1,
  MORPHOLOGY_DILATE = 2,
  MORPHOLOGY_ERODE = 3,
  MORPHOLOGY_GRADIENT = 4,       /* dilated less eroded, at least 0 */
  MORPHOLOGY_OUTER_GRADIENT = 5, /* what dilating would add */
  MORPHOLOGY_INNER_GRADIENT = 6, /* what eroding would take away */
  MORPHOLOGY_HIT_MISS = 7,       /* where members are set and all other positions clear */
  MORPHOLOGY_OPEN = 8,
  MORPHOLOGY_PROPER_CLOSE = 9, /* x or O(C(O(x))) */
  MORPHOLOGY_PROPER_OPEN = 10, /* x and C(O(C(x))) */
  MORPHOLOGY_THICK = 11,       /* x, and where hit-miss finds something */
  MORPHOLOGY_THIN = 12         /* x less where hit-miss finds something */
} MorphologyOperation;

/* Changes the shapes of what is set in a binary image: 0 is clear, all else is set. A position of
 * the element meets a pixel where it lies when the element's middle lies on the pixel looked at. Of
 * an even width, the middle is the right one of the two columns there; of an even height, the upper
 * one of the two rows, and the last row is not looked at. On a hexagonal grid, a row at distance d
 * from the middle has d positions less, its ends drawn in by half a column for each; the elements'
 * columns for that are (width - 1) / 2 to both sides of the middle, less d / 2, and less one on the
 * right for an odd d. Those in rows at an odd distance move one column to the right where the pixel
 * is in an odd row of the image. Where (height - 1) / 2 is greater than the width, only (width + 1)
 * / 2 rows above and below the middle are looked at.
 *
 * Dilated is what is set or has a set member, eroded what has only set members. With an element of
 * 3 x 3 the result is 0 and 1, and eroding or hit-miss do not ask whether the pixel itself is set
 * unless the element does. With any other element a set pixel that stays set keeps its value, what
 * becomes set is 1, eroding and hit-miss leave only pixels that were set, and the gradients and
 * thinning give 0 and 1. The other operations are made of these passes, and combine pixels bit by
 * bit; the result of MORPHOLOGY_PROPER_CLOSE is the lowest bit.
 *
 * source:    IMAGE_U8, with a border of at least (the element's longer side - 1) / 2. All of the
 *            border is filled, unless the source is copied.
 * dest:      an IMAGE_U8 image. 0 replaces source.
 * operation: a MorphologyOperation.
 * element:   the structuring element. One of fewer than 3 positions copies the source, and its
 *            numbers may be NULL. A side below 1 counts as no positions.
 * Failures: -3009 for element or its numbers; -200; -301 for another source type; -309; -200 for
 * dest; -304 for another dest type; -101 no memory, with size, calibration and offset of dest
 * changed, its pixels where the source is copied, and the source's border filled by then. -102 no
 * memory and -1001 no reference is left, both where source is replaced, which stays as it was. */
int32_t ZEL_Morphology(ImageRef source, ImageRef dest, int32_t operation,
                       const StructuringElement* element);

/* Changes gray levels: dilated is the largest pixel among the members of the element, eroded the
 * smallest. The pixel itself takes part if the element's middle is a member. The element lies as in
 * ZEL_Morphology, but of an even width the last column is not looked at, and the middle is the left
 * one of the two columns there. And and or are the smaller and the larger pixel.
 * MORPHOLOGY_GRADIENT, MORPHOLOGY_OUTER_GRADIENT, MORPHOLOGY_INNER_GRADIENT and MORPHOLOGY_HIT_MISS
 * act as MORPHOLOGY_OPEN, MORPHOLOGY_THICK and MORPHOLOGY_THIN as MORPHOLOGY_PROPER_OPEN.
 *
 * The largest of no pixel, where all members lie outside a hexagon, is 0, -32768 or -1e38, the
 * smallest 255, 32767 or 1e38. In an IMAGE_SGL image these limit results, NaN is passed over, and
 * of zeros with different signs the first in the element's order is taken.
 *
 * source:    IMAGE_U8, IMAGE_I16 or IMAGE_SGL, with a border of at least (the element's longer side
 *            - 1) / 2. All of the border is filled, unless the source is copied.
 * dest:      an image of source's type. 0 replaces source.
 * operation: a MorphologyOperation.
 * element:   the structuring element. One of fewer than 3 positions, or without members, copies the
 *            source; with fewer than 3 positions its numbers may be NULL. A side below 1 counts as
 *            no positions.
 * Failures: -3009 for element or its numbers; -200; -301 for another source type; -309; -200 for
 * dest; -304 for another dest type; -101 no memory, with size, calibration and offset of dest
 * changed, its pixels where the source is copied, and the source's border filled by then. -102 no
 * memory and -1001 no reference is left, both where source is replaced, which stays as it was. */
int32_t ZEL_GrayMorphology(ImageRef source, ImageRef dest, int32_t operation,
                           const StructuringElement* element);

/* An element of 3 x 3 members on a square grid. The library keeps one record: what a caller
 * changes in it stays changed, and it is not for the caller to release.
 * Failures: none; returns its address. */
StructuringElement* ZEL_Get_MO_STD3X3Ptr(void);

/* An element of 5 x 5 members on a square grid, kept like that of ZEL_Get_MO_STD3X3Ptr.
 * Failures: none; returns its address. */
StructuringElement* ZEL_Get_MO_STD5X5Ptr(void);

/* An element of 7 x 7 members on a square grid, kept like that of ZEL_Get_MO_STD3X3Ptr.
 * Failures: none; returns its address. */
StructuringElement* ZEL_Get_MO_STD7X7Ptr(void);

#pragma GCC visibility pop
#ifdef __cplusplus
}
#endif

#endif
