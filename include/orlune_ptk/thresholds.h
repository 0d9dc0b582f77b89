/* Thresholds: ranges of gray levels, given by the caller or found from the image. The rules that
 * hold for all functions are told in orlune_ptk.h. */
#ifndef ORLUNE_PTK_THRESHOLDS_H
#define ORLUNE_PTK_THRESHOLDS_H

#include "types.h"

#ifdef __cplusplus
extern "C" {
#endif
#pragma GCC visibility push(default)

/* One range of values, 16 bytes in an array. The upper half of the fourth 32-bit word is ignored
 * on input and written as 0. */
typedef struct ThresholdClass {
  float rangeMin;  /* lowest value of the class, inclusive */
  float rangeMax;  /* highest value of the class, inclusive */
  float newValue;  /* value given to its pixels */
  uint16_t useNew; /* non-zero: pixels take newValue; 0: they keep their value */
} ThresholdClass;

/* How ZEL_AutoBThreshold finds its threshold. */
typedef enum AutoBMethod {
  AUTOB_CLUSTERING = 0, /* iterated mean of the two class means, from the median on */
  AUTOB_ENTROPY = 1,    /* greatest entropy of the two classes */
  AUTOB_METRIC = 2,     /* least sum of absolute distances to the class means */
  AUTOB_MOMENTS = 3,    /* two levels with the first three moments of the image */
  AUTOB_INTERCLASS = 4  /* bisection of the span of levels on the class means */
} AutoBMethod;

/* Keeps one range of values: a pixel from rangeMin to rangeMax, both included, becomes newValue or
 * keeps its value. Every other pixel becomes 0, also NaN; with a rangeMin above rangeMax all of
 * them. The three numbers are, for integer images, truncated and then limited to the type's
 * range (-5 to -3 on IMAGE_U8 selects level 0; NaN counts as 0), and used as given for IMAGE_SGL.
 * source:      IMAGE_U8, IMAGE_I16 or IMAGE_SGL.
 * destination: an image of the source's type. 0 or the source: in place.
 * rangeMin:    lowest value that is kept.
 * rangeMax:    highest value that is kept.
 * newValue:    what kept pixels become.
 * useNew:      0: kept pixels keep their value; any other number: they become newValue.
 * Failures: -200; -301 for another source type; -304 for another destination type; -101, with the
 * source's calibration and offset in the destination by then. */
int32_t ZEL_Threshold(ImageRef source, ImageRef destination, float rangeMin, float rangeMax,
                      float newValue, int16_t useNew);

/* Keeps several ranges of values; pixels in none of them become 0.
 * source:      IMAGE_U8, IMAGE_I16 or IMAGE_SGL.
 * destination: an image of the source's type. 0 or the source: in place.
 * count:       number of classes. With 0 or less the source's pixels are copied as they are, and
 *              with them a border of the same width as the destination's.
 * classes:     tried in order. Where they overlap, the LAST class decides for integer images, whose
 *              limits and new values are truncated and limited as in ZEL_Threshold. For IMAGE_SGL
 *              the FIRST class decides that makes the pixel other than 0. NULL only with a count of
 *              0 or less.
 * Failures: -3009 for classes; -200; -301 for another source type; -304 for another destination
 * type; -101, with the source's calibration and offset in the destination if its size was what
 * could not be had. */
int32_t ZEL_MultiThreshold(ImageRef source, ImageRef destination, int32_t count,
                           const ThresholdClass* classes);

/* Finds one threshold from the histogram of an image. The image is not changed.
 * image:     IMAGE_U8. With one level only, the threshold is that level, and 255 without pixels.
 *            AUTOB_CLUSTERING gives 0 there, also for two levels; AUTOB_ENTROPY always one of 1 to
 *            254.
 * method:    an AutoBMethod. With any other number the call succeeds and does nothing.
 * arrayType: an ArrayType; with an unknown one lookup is not written.
 * lookup:    NULL, or an array of 256 elements: 0 for levels below the threshold, else 1. It serves
 *            as a table for ZEL_UserLookup.
 * threshold: NULL, or receives the threshold, 0 to 255.
 * Failures: -200; -301 for an image that is not IMAGE_U8. */
int32_t ZEL_AutoBThreshold(ImageRef image, int32_t method, int32_t arrayType, void* lookup,
                           int32_t* threshold);

/* Splits the levels of an image into several classes by iterated class means. The image is not
 * changed.
 * image:     IMAGE_U8.
 * count:     number of classes, 2 to 256. With any other number the call succeeds and does nothing.
 *            With as many classes as levels that occur, or more, thresholds lie midway between
 *            levels; surplus classes come first, are empty and have a rangeMax of -1.
 * arrayType: an ArrayType; with an unknown one lookup is not written.
 * lookup:    NULL, or an array of 256 elements: the class of each level, from 0. The level at the
 *            whole part of a fractional threshold counts to the class above it, although that
 *            class's rangeMin is one higher.
 * classes:   NULL, or an array of count records for ZEL_MultiThreshold: ranges of whole numbers up
 *            to 255, the class number as newValue, and 32768 as useNew.
 * Failures: -200; -301 for an image that is not IMAGE_U8; -306 for one of 0 x 0. */
int32_t ZEL_AutoMThreshold(ImageRef image, int32_t count, int32_t arrayType, void* lookup,
                           ThresholdClass* classes);

#pragma GCC visibility pop
#ifdef __cplusplus
}
#endif

#endif
