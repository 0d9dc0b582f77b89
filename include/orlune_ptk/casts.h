/* Conversions between pixel types. The rules that hold for all functions are told in orlune_ptk.h.
 *
 * What becomes of a pixel in ZEL_Cast and ZEL_Convert:
 *   to U8, I16   from I16 and SGL: truncated, limited to the type's range, NaN as 0;
 *                from COMPLEX: the magnitude truncated, low 8 or 16 bits kept, NOT limited;
 *                from RGB: (blue + green + red) / 3, truncated;
 *   to SGL       the value; of COMPLEX the magnitude; of RGB a third of the sum of the channels;
 *   to COMPLEX   the real part as for SGL, the imaginary part 0;
 *   to RGB       what U8 would be, in all three channels; the fourth byte 0.
 * IMAGE_OPAQUE is not converted.
 */
#ifndef ORLUNE_PTK_CASTS_H
#define ORLUNE_PTK_CASTS_H

#include "types.h"

#ifdef __cplusplus
extern "C" {
#endif
#pragma GCC visibility push(default)

/* Gives an image another type. Its reference, size, border width, calibration and offset stay; the
 * border's pixels are 0 afterwards.
 * image: of any type but IMAGE_OPAQUE.
 * type:  an ImageType below IMAGE_OPAQUE; the present type does nothing.
 * Failures: -200; -300 for a number outside ImageType; -302 an image of IMAGE_OPAQUE; -305 for the
 * type IMAGE_OPAQUE; -101 and -102 no memory; -1001 no reference is left. All leave the image as it
 * was. */
int32_t ZEL_Cast(ImageRef image, int32_t type);

/* Converts into an image of another type, which takes the source's size, BORDER WIDTH, calibration
 * and mask offset. Equal types are copied line by line, from pixel (0, 0) to the end of the last
 * line, so that some pixels of the border come along; else the border is not written.
 * source:      of any type but IMAGE_OPAQUE.
 * destination: of any type but IMAGE_OPAQUE, which it keeps. 0 or source does nothing.
 * Failures: -200; -302 a source and -305 a destination of IMAGE_OPAQUE; -101, with the source's
 * calibration and offset in the destination by then, and its size and border as they were. */
int32_t ZEL_Convert(ImageRef source, ImageRef destination);

/* Converts through a table.
 * source:      IMAGE_U8 for a table of 256 entries; IMAGE_I16, read as unsigned, for one of 65536.
 * destination: for a source of IMAGE_U8 one of IMAGE_I16 or IMAGE_SGL, for a source of IMAGE_I16
 *              one of IMAGE_U8 or IMAGE_SGL, which it keeps. 0 or source does nothing.
 * arrayType:   ArrayType of the array; entries go through 32-bit floats. An unknown type reads
 *              as 0.
 * array:       count entries. Integer results keep the low bits of the truncated entry. May
 *              be NULL when count is below 1.
 * count:       entries given; those beyond the levels are not read, and each missing one is its own
 *              index. Below 1: none is given.
 * Failures: -3009 for array; -101 no memory for the table; -200; -301 a source and -304 a
 * destination of another type; -101, with the source's calibration and offset in the destination if
 * its size was what could not be had. */
int32_t ZEL_ConvertByLookup(ImageRef source, ImageRef destination, int32_t arrayType,
                            const void* array, int32_t count);

/* Shifts pixels right, keeping their sign, and stores the low 8 bits, not limited. Reported as
 * "ZEL_Shift16to8".
 * source:      IMAGE_I16.
 * destination: IMAGE_U8. 0 is the source, and so -301.
 * shift:       bits, limited to 0 to 8.
 * Failures: -200; -301 images of other types; -101. All leave everything as it was. */
int32_t ZEL_Shift16To8(ImageRef source, ImageRef destination, int32_t shift);

#pragma GCC visibility pop
#ifdef __cplusplus
}
#endif

#endif
