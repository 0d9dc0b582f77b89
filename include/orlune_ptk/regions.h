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
 * there, which stays as it was; -101 no memory for a new record, or for a contour: the contours made
 * by then are in the record, and counted. */
int32_t ZEL_ArrayToROI(const int32_t* values, int32_t count, RoiDescriptor** roi);

/* Releases a region: its contours, then the record.
 * roi: NULL does nothing; nor does a contour of NULL.
 * Failures: none. */
void ZEL_FreeROI(RoiDescriptor* roi);

#pragma GCC visibility pop
#ifdef __cplusplus
}
#endif

#endif
