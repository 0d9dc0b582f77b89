/* Histograms, statistics of images and regions, centroids and line profiles. No function here
 * changes an image. The rules that hold for all functions are told in orlune_ptk.h. */
#ifndef ORLUNE_PTK_STATISTICS_H
#define ORLUNE_PTK_STATISTICS_H

#include "types.h"

#ifdef __cplusplus
extern "C" {
#endif
#pragma GCC visibility push(default)

/* The most classes of a histogram. */
#define HISTOGRAM_CLASSES_LIMIT 4096

/* What ZEL_Histogram tells of the pixels that it counted. Without any, all fields are 0, except an
 * interval of 1.0 for the 256 levels of IMAGE_U8. */
typedef struct HistogramReport {
  float min;         /* smallest counted value */
  float max;         /* largest counted value */
  float start;       /* lower bound of the first class, as used */
  float interval;    /* width of a class; 1e38 for a single class */
  float mean;        /* of the counted values */
  float stdDev;      /* standard deviation; 0 where rounding would make its square negative */
  uint32_t nbPixels; /* counted pixels */
} HistogramReport;

/* Counts the pixels of an image by classes of equal width over a range of values. A value v falls
 * into the class nearest to (v - min) x scale + (scale - 1) / 2, an exact half into the lower one,
 * where scale is nbClasses / (max - min + 1.0), for floats too. Pixels outside the range are not
 * counted; a max below min counts nothing. NaN is 0 for the integer types and counts nothing for
 * IMAGE_SGL.
 * image:     IMAGE_U8, IMAGE_I16 or IMAGE_SGL.
 * mask:      IMAGE_U8: only pixels that it selects are counted. 0 or the image: all pixels.
 * nbClasses: limited to 1..HISTOGRAM_CLASSES_LIMIT, for IMAGE_U8 to 1..256.
 * min:       lower end of the range, included. Truncated for the integer types. IMAGE_U8:
 *            below 1 it is 0. IMAGE_I16: limited to the type's range; min and max both 0 mean the
 *            extremes of the selected pixels. IMAGE_SGL: both 0 mean the extremes.
 * max:       upper end of the range, included, truncated and limited likewise. IMAGE_U8: 0 or
 *            above 255 it is 255.
 * histogram: NULL, or an array of nbClasses counters (of the limited number, which may be less, all
 *            are written).
 * report:    NULL, or receives the statistics.
 * Failures: -101; -200; -301 for a mask that is not IMAGE_U8; -301 for another image type; -102 for
 * a histogram with nbClasses below 1; -101 no memory to count in. */
int32_t ZEL_Histogram(ImageRef image, ImageRef mask, int32_t nbClasses, float min, float max,
                      uint32_t* histogram, HistogramReport* report);

/* What ZEL_Quantify tells of an image or of a region. */
typedef struct QuantifyReport {
  float mean;
  float stdDev; /* standard deviation; 0 where rounding would make its square negative */
  float min;    /* smallest pixel; 1e38 without pixels */
  float max;    /* largest pixel; -1e38 without pixels */
  float area;   /* pixels x the image's xStep x yStep */
  int32_t nbPixels;
  float percent; /* pixels in percent of the whole image's width x height */
} QuantifyReport;

/* Statistics of an image, or of the regions that a label image names on it.
 * image:         of any type, but only IMAGE_U8, IMAGE_I16 and IMAGE_SGL have values: without a
 *                mask the pixels of others are counted and add 0, with a mask they have no regions.
 * mask:          IMAGE_U8: labels, of which 0 is background and 1 to 255 name regions. 0 or the
 *                image: the whole image, and no regions.
 * globalReport:  NULL, or receives the statistics of all regions, or of the whole image. Without
 *                pixels mean and stdDev are NaN.
 * regionReports: NULL, or a result table: one record a label from 1 to the highest one that occurs,
 *                all fields 0 for a label without pixels. Unchanged after a failure.
 * nbRegions:     NULL, or receives the number of these records; 0 after a failure.
 * Failures: -101; -200; -301 for a mask that is not IMAGE_U8. */
int32_t ZEL_Quantify(ImageRef image, ImageRef mask, QuantifyReport* globalReport,
                     QuantifyReport** regionReports, int32_t* nbRegions);

/* The centre of energy: the mean of the coordinates of the pixels weighted with their values.
 * image: of any type; those but IMAGE_U8, IMAGE_I16 and IMAGE_SGL have no energy.
 * mask:  IMAGE_U8: only pixels that it selects count. 0 or the image: all pixels.
 * x:     receives the column in pixels, from column 0 of the image, or with a mask from the first
 *        column of the image that the mask covers. NaN when the values sum up to nothing.
 * y:     receives the row in pixels, from row 0 or from the first row that the mask covers; or NaN.
 * Failures: -3009 for x or y; -200; -301 for a mask that is not IMAGE_U8. */
int32_t ZEL_Centroid(ImageRef image, ImageRef mask, float* x, float* y);

/* What ZEL_LineProfile tells of a line. All 0 for a line that misses the image. */
typedef struct LineProfileReport {
  int32_t startX, startY; /* first point of the line as clipped to the image */
  int32_t endX, endY;     /* last one */
  float min;              /* smallest sample */
  float max;              /* largest sample */
  float mean;             /* summed in 32-bit floats, for IMAGE_U8 in integers */
  float stdDev;           /* standard deviation, summed in 32-bit floats */
  int32_t nbPixels;       /* samples */
} LineProfileReport;

/* Samples the pixels of a straight line, which is clipped and walked as by ZEL_GetLine.
 * image:     IMAGE_U8, IMAGE_I16 or IMAGE_SGL.
 * startX:    column of the first point.
 * startY:    row of the first point.
 * endX:      column of the last point.
 * endY:      row of the last point.
 * arrayType: ArrayType of the elements of profile, converted from 32-bit floats. With an unknown
 *            one profile is not written.
 * profile:   NULL, or receives the samples: room for the larger of the line's extents in x and y,
 *            plus 1.
 * nbPixels:  NULL, or receives their number, 0 for a line that misses the image.
 * report:    NULL, or receives the statistics.
 * Failures: -101; -200; -301 for another image type, unless the line misses the image. */
int32_t ZEL_LineProfile(ImageRef image, int32_t startX, int32_t startY, int32_t endX, int32_t endY,
                        int32_t arrayType, void* profile, int32_t* nbPixels,
                        LineProfileReport* report);

#pragma GCC visibility pop
#ifdef __cplusplus
}
#endif

#endif
