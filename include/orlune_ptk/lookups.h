/* Gray levels through tables and laws. The rules that hold for all functions are told in
 * orlune_ptk.h.
 *
 * What holds for all of them:
 *
 * - Under a mask the destination first becomes a copy of the source's pixels, and with them of a
 *   border of the same width as its own; then the pixels that the mask selects are mapped. Where
 *   the mask does not touch the source, that copy is all, and the destination keeps its calibration
 *   and mask offset. The mask may be the destination, which then becomes the result.
 * - A failing call changes nothing.
 */
#ifndef ORLUNE_PTK_LOOKUPS_H
#define ORLUNE_PTK_LOOKUPS_H

#include "statistics.h"
#include "types.h"

#ifdef __cplusplus
extern "C" {
#endif
#pragma GCC visibility push(default)

/* The laws of ZEL_MathLookup. d: a pixel's distance above rangeMin; R = rangeMax - rangeMin; O: the
 * largest result less the smallest; k = ln(10) / 100. */
typedef enum MathOperator {
  MATH_LINEAR = 0, /* d O / R */
  MATH_LOG = 1,    /* ln(d) O / ln(R) */
  MATH_EXP = 2,    /* (e^(k d) - e^k) O / (e^(k R) - e^k) */
  MATH_SQUARE = 3, /* (d O / R)^2 / O */
  MATH_SQRT = 4,   /* d^(1/2) O / R^(1/2) */
  MATH_POWERX = 5, /* (d^x - 1) O / (R^x - 1) */
  MATH_POWER1X = 6 /* (d^(1/x) - 1) O / (R^(1/x) - 1) */
} MathOperator;

/* Maps every pixel through a table of the caller's.
 * source:      IMAGE_U8 or IMAGE_I16.
 * mask:        IMAGE_U8: only pixels that it selects are mapped; the others take the source's
 *              value. 0 or the source: all pixels are mapped.
 * destination: an image of the source's type. 0 or the source: in place.
 * arrayType:   an ArrayType; an array of an unknown type counts as zeros.
 * array:       count entries; the first is the new value of level 0, and that of a negative
 *              IMAGE_I16 pixel p is number p + 65536. Entries are taken as signed 16-bit integers,
 *              and limited to 0..255 for IMAGE_U8. NULL only with a count of 0 or less.
 * count:       256 entries are used for IMAGE_U8 and 65536 for IMAGE_I16. Levels beyond a shorter
 *              table keep their value; further entries are not used.
 * Failures: -3009 for array; -101 no memory for the table; -200; -301 for another source type; -304
 * for another destination type; -301 for a mask that is not IMAGE_U8; -101. -102 no memory and
 * -1001 no reference is left, both where the mask is the destination. */
int32_t ZEL_UserLookup(ImageRef source, ImageRef mask, ImageRef destination, int32_t arrayType,
                       const void* array, int32_t count);

/* Maps every pixel by a mathematical law. Results lie between 0 and 255 for IMAGE_U8, for other
 * types between the smallest and the largest selected pixel. Laws are computed in 80-bit floats and
 * rounded to 32 bits.
 *
 * Integer images: pixels below rangeMin become 0 and pixels above rangeMax the largest result;
 * others the law's value truncated, of which the low 8 or 16 bits count (for IMAGE_I16 the
 * smallest pixel is not added). At d = 0 the laws 1, 2, 5 and 6 give 0.
 *
 * IMAGE_SGL: pixels up to and including rangeMin become 0.0 and pixels above rangeMax the largest
 * result; others the law's value plus the smallest result, limited to the results (NaN: the
 * smallest).
 * source:      IMAGE_U8, IMAGE_I16 or IMAGE_SGL.
 * mask:        IMAGE_U8: only pixels that it selects are mapped; the others take the source's
 *              value. 0 or the source: all pixels are mapped.
 * destination: an image of the source's type. 0 or the source: in place.
 * operation:   a MathOperator, limited to 0..6.
 * x:           exponent of the laws 5 and 6; any number, 0 is no failure.
 * rangeMin:    lowest pixel that the law takes; raised to the smallest result, also when NaN.
 *              Truncated for integer images. Both 0: the law takes all pixels.
 * rangeMax:    highest pixel that the law takes; lowered to the largest result, also when NaN.
 *              Integer images take rangeMax - rangeMin, truncated, above the truncated rangeMin.
 * Failures: -200; -301 for another source type; -304 for another destination type; -301 for a mask
 * that is not IMAGE_U8; -101. -102 no memory and -1001 no reference is left, both where the mask is
 * the destination. */
int32_t ZEL_MathLookup(ImageRef source, ImageRef mask, ImageRef destination, int32_t operation,
                       float x, float rangeMin, float rangeMax);

/* Maps pixels so that the results are used evenly, by a histogram: each becomes the sum of the
 * classes up to its own, scaled to 0..255 for IMAGE_U8 and to the extremes of the selected pixels
 * for other types. The class at rangeMin carries no weight. Pixels outside the range become 0.
 * Integers are rounded at one half. An image of a single level becomes 255 (IMAGE_U8 of a level
 * above 0) or stays as it is.
 * source:      IMAGE_U8, IMAGE_I16 or IMAGE_SGL.
 * mask:        IMAGE_U8: only pixels that it selects are mapped; the others take the source's
 *              value. 0 or the source: all pixels are mapped.
 * destination: an image of the source's type. 0 or the source: in place.
 * histogram:   counters of an earlier ZEL_Histogram, which are only read. Unless both it and report
 *              are given, the histogram of the selected pixels with 256 classes over their whole
 *              range is made. NULL: not given.
 * count:       counters in histogram. Not looked at when it is not used.
 * report:      report of the same ZEL_Histogram, which is only read. NULL: not given.
 * rangeMin:    lowest pixel that is mapped; raised to the smallest result, also when NaN.
 *              Truncated for integer images. Both 0: all pixels are mapped.
 * rangeMax:    highest pixel that is mapped; lowered to the largest result, also when NaN.
 * Failures: -200; -102 for a given histogram with a count below 1; -301 for another source type;
 * -304 for another destination type; -301 for a mask that is not IMAGE_U8; -101. -102 no memory and
 * -1001 no reference is left, both where the mask is the destination. */
int32_t ZEL_Equalize(ImageRef source, ImageRef mask, ImageRef destination,
                     const uint32_t* histogram, int32_t count, const HistogramReport* report,
                     float rangeMin, float rangeMax);

#pragma GCC visibility pop
#ifdef __cplusplus
}
#endif

#endif
