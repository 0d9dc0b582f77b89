/* Regions of interest: shapes over an image, as records that callers hold. The rules that hold for
 * all functions are told in orlune_ptk.h.
 *
 * A region is a list of contours. External ones select pixels; internal ones are holes, and are cut
 * out of what all external contours select, whatever the order of the list.
 *
 * The flat form of a region is an array of integers: left, top, right and bottom of the rectangle
 * that holds all contours (right and bottom are one past the last pixel), and then for each contour
 * a marker (ROI_MARKER_EXTERNAL or ROI_MARKER_INTERNAL), its RoiContourType, and x and y of each
 * point. */
#ifndef ORLUNE_PTK_REGIONS_H
#define ORLUNE_PTK_REGIONS_H

#include "types.h"

#ifdef __cplusplus
extern "C" {
#endif
#pragma GCC visibility push(default)

/* What a contour does to a region. */
typedef enum RoiContourKind {
  ROI_INTERNAL = 0, /* a hole */
  ROI_EXTERNAL = 1  /* selects pixels */
} RoiContourKind;

/* Where contours begin in the flat form: a contour's kind less 32768. */
typedef enum RoiMarker { ROI_MARKER_INTERNAL = -32768, ROI_MARKER_EXTERNAL = -32767 } RoiMarker;

/* The shape of a contour. There are no shapes 7 to 9. */
typedef enum RoiContourType {
  ROI_WHOLE = 0,     /* the whole image; no points */
  ROI_POINT = 1,     /* one pixel; one point */
  ROI_LINE = 2,      /* the pixels of a line; two points */
  ROI_RECT = 3,      /* two opposite corners, of which the lower right one is past the last pixel */
  ROI_OVAL = 4,      /* two opposite corners of the rectangle around it, likewise */
  ROI_POLYGON = 5,   /* two points or more; closed, filled, its outline included */
  ROI_FREEHAND = 6,  /* as ROI_POLYGON, drawn by hand */
  ROI_POLYLINE = 10, /* two points or more; an open chain of lines */
  ROI_FREELINE = 11  /* as ROI_POLYLINE, drawn by hand */
} RoiContourType;

/* A contour: one block from the library's heap, with its points. */
__extension__ typedef struct RoiContour {
  int32_t contourKind; /* RoiContourKind */
  int32_t contourType; /* RoiContourType */
  int32_t pointCount;
  PointInt points[];
} RoiContour;

/* A region: one block from the library's heap, with the addresses of its contours, which are blocks
 * of their own. ZEL_FreeROI releases all of them. A function that takes the address of a pointer to
 * a record fills the record that is there, or makes one where the pointer is NULL. It resizes the
 * record, which may move, and overwrites the addresses of contours without releasing them: a caller
 * who has contours in it releases these first. */
__extension__ typedef struct RoiDescriptor {
  ApiRect globalRect; /* holds all contours */
  int32_t contourCount;
  RoiContour* contours[];
} RoiDescriptor;

/* Makes a region from its flat form. A contour begins behind the four integers of the rectangle,
 * whatever stands there, and reaches to the next x below -32766; where no integer is left for the
 * type, the region ends. An odd integer at the end is no point. No report is made, and
 * ZEL_GetLastError is left alone. Returns 0 or a failure.
 * values: the integers; NULL counts as none.
 * count:  of integers. Below 4 the region has a rectangle of zeros, and below 6 no contour.
 * roi:    address of a pointer to a record or NULL, as told with RoiDescriptor.
 * Failures: -1 for a roi of NULL; -1 no memory for a larger record in place of the one that is
 * there, which stays as it was; -101 no memory for a new record, or for a contour: the contours
 * made by then are in the record, and counted. */
int32_t ZEL_ArrayToROI(const int32_t* values, int32_t count, RoiDescriptor** roi);

/* Releases a region: its contours, then the record.
 * roi: NULL does nothing; nor does a contour of NULL.
 * Failures: none. */
void ZEL_FreeROI(RoiDescriptor* roi);

/* Paints a region into a mask. External contours take fillValue, in the order of the list; then
 * internal ones, of any shape, are painted with 0. What lies outside is 0, the border included.
 *
 * A contour that has another number of points than its type is passed over, and so is one of an
 * unknown type; ROI_WHOLE selects the whole mask and ends the painting. Lines, chains and outlines
 * are those of ZEL_GetLine, ovals those that ZEL_DrawOval paints. A polygon holds its outline and
 * the pixels between its crossings with each row, taken two by two; below three points, or with all
 * points on one row, it is its outline only. Rows of polygons are limited to 16 bits, -32768 to
 * 32767. Integers in the region that are -32767 or -32768 begin a contour, also where they were
 * meant as coordinates.
 * mask:      IMAGE_U8. Receives the region. With a model it takes the model's size, and its offset
 *            stays; without one it takes the size of globalRect and lies at its left and top, so
 *            that coordinates keep their meaning. An odd width is raised by one, unless the model
 *            ends before the right or the bottom of globalRect. A mask of another type takes the
 *            size only.
 * model:     an image of the size that the mask is to have; 0, an unknown one or one without
 *            pixels: none.
 * roi:       the region. NULL, or no contour: all pixels are selected, of a mask of the model's
 *            size, or of its own size; its border and offset stay.
 * fillValue: the value of what is selected; its low 8 bits count.
 * Failures: -101 no memory for the call's own; -200 for mask; -101 no memory for polygons or for
 * the mask, or a globalRect that is too large for one. */
int32_t ZEL_ROIToMask(ImageRef mask, ImageRef model, const RoiDescriptor* roi, uint32_t fillValue);

/* Finds the outlines of what a mask selects: of each set of pixels that touch by sides or corners
 * an external contour, and of each hole (pixels of 0 that reach the edge of the image by no chain
 * of sides) an internal one. A contour is a ROI_POLYGON along the set's outermost pixels, with a
 * vertex where the direction changes, or a ROI_POINT for a single pixel; thin parts can make
 * several. An object inside a hole belongs to what surrounds it. Coordinates are those of the mask
 * plus its offset; a negative x is taken for a marker, so that the offset should not be negative.
 *
 * globalRect holds the vertices whose x is not negative, and begins no further right or below than
 * 32000. Without a contour it is top 1, left 1, height 31999, width 31999.
 * mask:         IMAGE_U8; pixels other than 0 are selected.
 * externalOnly: 0, or another number to leave out holes.
 * maxPoints:    how many pairs of integers the flat form of the region may have, two for the
 *               rectangle and one for each marker; below 2 it is 2. Points beyond are dropped.
 * roi:          address of a pointer to a record or NULL, as told with RoiDescriptor; the record is
 *               replaced. Unchanged after a failure.
 * limitReached: NULL, or receives 1 when there are maxPoints pairs, else 0.
 * Failures: -3009 for roi; -101 no memory for the call's own; -200; -301 for another type; -101. */
int32_t ZEL_MaskToROI(ImageRef mask, uint16_t externalOnly, int32_t maxPoints, RoiDescriptor** roi,
                      int32_t* limitReached);

#pragma GCC visibility pop
#ifdef __cplusplus
}
#endif

#endif
