/* Operators that combine two images, or an image and a constant, pixel by pixel. The rules that
 * hold for all functions are told in orlune_ptk.h.
 *
 * What holds for all of them but ZEL_Mask:
 *
 * - Types. In arithmetic and comparison the second image may be of a narrower type than the first
 *   (IMAGE_U8 < IMAGE_I16 < IMAGE_SGL) and is widened; ZEL_Add and ZEL_Multiply also take the wider
 *   image second. The destination's type is that of the result, which is the wider operand's.
 *   Bitwise operators need equal types.
 * - Destination. It is resized to the operands' size and takes first's calibration and mask offset.
 *   It may be either operand. Borders are neither read nor written.
 * - Sizes. Both images have one size. When exactly one of them is 0 x 0, the other is copied to the
 *   destination, which must have its type (-303), and nothing is computed; a border of the same
 *   width as the destination's is copied with it. Calibration and offset are first's even then.
 * - Results. Integers are truncated and limited to the type's range (0 to 255, -32768 to
 *   32767) unless stated otherwise; floats are rounded once. Dividing by 0 never fails. "The
 *   truncated constant" is that without its fraction, limited to 32 bits.
 * - Failing calls. A destination other than first has first's calibration and offset after -306,
 *   -303 and -101, and first's size too after -300, -302 and -202. (-302 of the bitwise operators
 *   comes before.) Its pixels are written by calls that succeed only, but a new size leaves them
 *   undefined. Other failures change nothing.
 */
#ifndef ORLUNE_PTK_OPERATORS_H
#define ORLUNE_PTK_OPERATORS_H

#include "types.h"

#ifdef __cplusplus
extern "C" {
#endif
#pragma GCC visibility push(default)

/* What ZEL_Compare makes of a pixel of first and one of second, or the constant. */
typedef enum ComparisonOperator {
  COMPARISON_MEAN = 0,           /* half the sum, rounded down on integers */
  COMPARISON_MINIMUM = 1,        /* the smaller */
  COMPARISON_MAXIMUM = 2,        /* the larger */
  COMPARISON_KEEP_NOT_BELOW = 3, /* first where it is not below second, else 0 */
  COMPARISON_KEEP_ABOVE = 4,     /* first where it is above second, else 0 */
  COMPARISON_KEEP_DIFFERENT = 5, /* first where it is different from second, else 0 */
  COMPARISON_KEEP_BELOW = 6,     /* first where it is below second, else 0 */
  COMPARISON_KEEP_NOT_ABOVE = 7  /* first where it is not above second, else 0 */
} ComparisonOperator;

/* first + second, or first + the constant.
 * first:       IMAGE_U8, IMAGE_I16 or IMAGE_SGL.
 * second:      one of these types, of first's size. 0: the constant is used.
 * destination: an image of the wider operand's type. 0 replaces first.
 * constant:    integer images use the truncated constant, IMAGE_SGL the constant. Ignored with a
 *              second image.
 * Failures: -200; -305 for the destination's type; -306 different sizes; -303 for one operand of
 * 0 x 0; -101; -300 operands of IMAGE_OPAQUE; -302 operands of IMAGE_COMPLEX or IMAGE_RGB. */
int32_t ZEL_Add(ImageRef first, ImageRef second, ImageRef destination, float constant);

/* first - second, or first - the constant. Reported as "ZEL_Substract".
 * first:       IMAGE_U8, IMAGE_I16 or IMAGE_SGL.
 * second:      of first's type or a narrower one, of first's size. 0: the constant is used.
 * destination: an image of first's type. 0 replaces first.
 * constant:    integer images use the truncated constant, IMAGE_SGL the constant. Ignored with a
 *              second image.
 * Failures: -200; -305 for the type of second or destination; -306 different sizes; -303 for one
 * operand of 0 x 0; -101; -300 operands of IMAGE_OPAQUE; -302 a first of IMAGE_COMPLEX or
 * IMAGE_RGB. */
int32_t ZEL_Subtract(ImageRef first, ImageRef second, ImageRef destination, float constant);

/* first x second, or first x the constant.
 * first:       IMAGE_U8, IMAGE_I16 or IMAGE_SGL.
 * second:      one of these types, of first's size. 0: the constant is used.
 * destination: an image of the wider operand's type. 0 replaces first.
 * constant:    ignored with a second image. IMAGE_U8 takes its absolute value, but on processors
 *              with MMX this holds for the last width modulo 4 columns only (for all columns when
 *              there are fewer than 8): the others take the truncated constant, 255 in place
 *              of a negative or larger one.
 * Failures: -200; -305 for the destination's type; -306 different sizes; -303 for one operand of
 * 0 x 0; -101; -300 operands of IMAGE_OPAQUE; -302 operands of IMAGE_COMPLEX or IMAGE_RGB. */
int32_t ZEL_Multiply(ImageRef first, ImageRef second, ImageRef destination, float constant);

/* first / second, or first / the constant. A divisor of 0 leaves first's pixel.
 * first:       IMAGE_U8, IMAGE_I16 or IMAGE_SGL.
 * second:      of first's type or a narrower one, of first's size. 0: the constant is used.
 * destination: an image of first's type. 0 replaces first.
 * constant:    IMAGE_U8 takes its absolute value. Ignored with a second image.
 * Failures: -200; -305 for the type of second or destination; -306 different sizes; -303 for one
 * operand of 0 x 0; -101; -300 operands of IMAGE_OPAQUE; -302 a first of IMAGE_COMPLEX or
 * IMAGE_RGB. */
int32_t ZEL_Divide(ImageRef first, ImageRef second, ImageRef destination, float constant);

/* The remainder of first / second, with the sign of first; first where second is 0. Floats:
 * a - (a / b truncated) x b.
 * first:       IMAGE_U8, IMAGE_I16 or IMAGE_SGL.
 * second:      of first's type or a narrower one, of first's size. 0: the constant is used.
 * destination: an image of first's type. 0 replaces first.
 * constant:    IMAGE_U8 divides by the low 8 bits of the truncated constant's absolute value,
 *              IMAGE_I16 by the truncated constant, IMAGE_SGL by the constant; 1 stands in for 0.
 *              Ignored with a second image.
 * Failures: -200; -305 for the type of second or destination; -306 different sizes; -303 for one
 * operand of 0 x 0; -101; -300 operands of IMAGE_OPAQUE; -302 a first of IMAGE_COMPLEX or
 * IMAGE_RGB. */
int32_t ZEL_Modulo(ImageRef first, ImageRef second, ImageRef destination, float constant);

/* first x the constant / second; first where second is 0.
 * first:       IMAGE_U8, IMAGE_I16 or IMAGE_SGL.
 * second:      of first's type or a narrower one, of first's size. There is no form without it.
 * destination: an image of first's type. 0 replaces first.
 * constant:    IMAGE_U8 takes its absolute value. IMAGE_I16 with a second of IMAGE_U8 multiplies by
 *              the truncated constant in integers and keeps the low 16 bits of the quotient.
 * Failures: -200; -305 for the type of second or destination; -306 different sizes; -303 for one
 * operand of 0 x 0; -101; -202 for a second of 0; -300 operands of IMAGE_OPAQUE; -302 a first of
 * IMAGE_COMPLEX or IMAGE_RGB. */
int32_t ZEL_MulDiv(ImageRef first, ImageRef second, ImageRef destination, float constant);

/* Mean, smaller, larger, or first kept where a comparison holds and 0 elsewhere. A float pixel that
 * is no number is kept; it is never the smaller or larger second operand.
 * first:       IMAGE_U8, IMAGE_I16 or IMAGE_SGL.
 * second:      of first's type or a narrower one, of first's size. 0: the constant is used.
 * destination: an image of first's type. 0 replaces first.
 * operation:   a ComparisonOperator. Numbers below 0 act as 0, above 7 as 7.
 * constant:    integers use the truncated constant, in its whole range. The mean of IMAGE_U8 is
 *              limited to 0 to 255, but on processors with MMX this holds for the last width
 *              modulo 4 columns only (for all when there are fewer than 8 columns): the others take
 *              the low 8 bits of the truncated constant. Ignored with a second image.
 * Failures: -200; -305 for the type of second or destination; -306 different sizes; -303 for one
 * operand of 0 x 0; -101; -300 operands of IMAGE_OPAQUE; -302 a first of IMAGE_COMPLEX or
 * IMAGE_RGB. */
int32_t ZEL_Compare(ImageRef first, ImageRef second, ImageRef destination, int32_t operation,
                    float constant);

/* The bits that are set in first and in second.
 * first:       IMAGE_U8, IMAGE_I16 or IMAGE_RGB.
 * second:      of first's type and size. 0: the constant is used.
 * destination: an image of first's type. 0 replaces first.
 * invert:      other than 0 inverts all bits of the result.
 * constant:    its low 8 (IMAGE_U8), 16 (IMAGE_I16) or 32 (IMAGE_RGB) bits. Ignored with a second
 *              image.
 * Failures: -200; -302 another type of first; -305 for the type of second or destination; -306
 * different sizes; -101. */
int32_t ZEL_And(ImageRef first, ImageRef second, ImageRef destination, int16_t invert,
                uint32_t constant);

/* The bits that are set in first or in second.
 * first:       IMAGE_U8, IMAGE_I16 or IMAGE_RGB.
 * second:      of first's type and size. 0: the constant is used.
 * destination: an image of first's type. 0 replaces first.
 * invert:      other than 0 inverts all bits of the result.
 * constant:    its low 8 (IMAGE_U8), 16 (IMAGE_I16) or 32 (IMAGE_RGB) bits. Ignored with a second
 *              image.
 * Failures: -200; -302 another type of first; -305 for the type of second or destination; -306
 * different sizes; -101. */
int32_t ZEL_Or(ImageRef first, ImageRef second, ImageRef destination, int16_t invert,
               uint32_t constant);

/* The bits that are set in one of first and second.
 * first:       IMAGE_U8, IMAGE_I16 or IMAGE_RGB.
 * second:      of first's type and size. 0: the constant is used.
 * destination: an image of first's type. 0 replaces first.
 * invert:      other than 0 inverts all bits of the result.
 * constant:    its low 8 (IMAGE_U8), 16 (IMAGE_I16) or 32 (IMAGE_RGB) bits. Ignored with a second
 *              image.
 * Failures: -200; -302 another type of first; -305 for the type of second or destination; -306
 * different sizes; -101. */
int32_t ZEL_Xor(ImageRef first, ImageRef second, ImageRef destination, int16_t invert,
                uint32_t constant);

/* The bits that are set in first and not in second.
 * first:       IMAGE_U8, IMAGE_I16 or IMAGE_RGB.
 * second:      of first's type and size. 0: the constant is used.
 * destination: an image of first's type. 0 replaces first.
 * constant:    its low 8 (IMAGE_U8), 16 (IMAGE_I16) or 32 (IMAGE_RGB) bits. Ignored with a second
 *              image.
 * Failures: -200; -302 another type of first; -305 for the type of second or destination; -306
 * different sizes; -101. */
int32_t ZEL_LogDiff(ImageRef first, ImageRef second, ImageRef destination, uint32_t constant);

/* Keeps the pixels of source that the mask selects and makes all others 0, border included. The
 * destination takes the source's size, calibration and offset; where the mask misses the source
 * altogether, nothing is written or resized.
 * source:      of any type but IMAGE_OPAQUE.
 * mask:        an IMAGE_U8 image placed by its offset. 0 or source: the pixels are copied, with the
 *              border where the destination's has the same width, and the destination keeps its
 *              calibration and offset.
 * destination: an image of source's type. 0 replaces source. It may be the mask, which then holds
 *              the result.
 * Failures: -200; -301 a source of IMAGE_OPAQUE; -304 a destination of another type; -301 a mask
 * that is not IMAGE_U8; -101 no memory. -102 no memory and -1001 no reference is left, both where
 * source or mask are replaced. All leave everything as it was. */
int32_t ZEL_Mask(ImageRef source, ImageRef mask, ImageRef destination);

#pragma GCC visibility pop
#ifdef __cplusplus
}
#endif

#endif
