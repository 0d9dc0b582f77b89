/* Bar codes in a region of an image. No function here changes an image. The rules that hold for all
 * functions are told in orlune_ptk.h.
 *
 * Where. The bars stand upright and the code is read from left to right, along ten rows spread over
 * the region, of which the means are taken: a high region costs no more than a low one, and the
 * time of a call is bounded by the region's columns. The region's first contour is a ROI_RECT; here
 * both of its corners belong to it. Light in front of the first bar may be missing; a bar at which
 * the region ends is not seen. A rectangle whose first corner lies to the right is read from right
 * to left. To find a code, to turn it upright and to try it both ways is the caller's part.
 *
 * Dark and light are told apart by the straight line that fits the profile of the whole region
 * best, light around the code included: wide margins at both sides move it, and the modules of a
 * code should be two pixels wide. Ends of bars count in fractions of pixels. Each symbol is taken
 * for the one of its code that it has most elements in common with: only a check tells a code from
 * none, and without one a text always comes out, of no characters where there are too few bars.
 *
 * Results. A text is textLength bytes in a block that the caller releases with ZEL_free; a zero
 * byte behind them is not counted. Some texts have zero bytes in them. On entry *text holds NULL or
 * a block from ZEL_malloc, which is resized; a text of no bytes gives NULL. A failing call leaves
 * both results as they were. */
#ifndef ORLUNE_PTK_BARCODES_H
#define ORLUNE_PTK_BARCODES_H

#include "regions.h"
#include "types.h"

#ifdef __cplusplus
extern "C" {
#endif
#pragma GCC visibility push(default)

/* Reads a Codabar: all characters with start and stop, as A, B, C or D.
 * image:      IMAGE_U8, IMAGE_I16 or IMAGE_SGL.
 * roi:        where the code is.
 * validate:   not 0: the character before the stop has to be the check modulo 16 of all others; the
 *             text has it, and loses the stop.
 * text:       address of the text's block.
 * textLength: receives its bytes.
 * Failures: -201 for an image of 0; -1200 for a roi of NULL; -5 for text or textLength; -101; -200;
 * -301 for another image type; -1200 for a region without a contour of two points; -3000 for one
 * that does not begin with a ROI_RECT; -752 where fewer than two columns lie in the image; -3003
 * the check, or fewer than two characters to check. */
int32_t ZEL_ReadCodabar(ImageRef image, const RoiDescriptor* roi, int32_t validate, char** text,
                        int32_t* textLength);

/* Reads an Interleaved 2 of 5: pairs of digits.
 * image:      IMAGE_U8, IMAGE_I16 or IMAGE_SGL.
 * roi:        where the code is.
 * validate:   not 0: the last digit has to be what 3 times the digits at odd places and the others,
 *             the last one among them, lack to a multiple of 10; it is no part of the text then. Of
 *             usual check digits, for which the last one is not counted, 0 passes alone.
 * text:       address of the text's block.
 * textLength: receives its bytes.
 * Failures: -201 for an image of 0; -1200 for a roi of NULL; -5 for text or textLength; -101; -200;
 * -301 for another image type; -1200 for a region without a contour of two points; -3000 for one
 * that does not begin with a ROI_RECT; -752 where fewer than two columns lie in the image; -3003
 * the check, or no digits to check. */
int32_t ZEL_ReadCod25(ImageRef image, const RoiDescriptor* roi, int32_t validate, char** text,
                      int32_t* textLength);

/* Reads an MSI: digits. Bars that make a digit above 9 give the byte '0' + digit.
 * image:      IMAGE_U8, IMAGE_I16 or IMAGE_SGL.
 * roi:        where the code is.
 * validate:   not 0: the last digit has to be the check of the others, which counts every second
 *             digit from the first one on once and those between them doubled, digit by digit; it
 *             is no part of the text then. That is the usual check for an odd number of digits,
 *             check included.
 * text:       address of the text's block.
 * textLength: receives its bytes.
 * Failures: -201 for an image of 0; -1200 for a roi of NULL; -5 for text or textLength; -101; -200;
 * -301 for another image type; -1200 for a region without a contour of two points; -3000 for one
 * that does not begin with a ROI_RECT; -752 where fewer than two columns lie in the image; -3003
 * the check, no digits to check, or one above 9. */
int32_t ZEL_ReadMSI(ImageRef image, const RoiDescriptor* roi, int32_t validate, char** text,
                    int32_t* textLength);

/* Reads an EAN-8: eight digits, of which the last one is the check of the others.
 * image:      IMAGE_U8, IMAGE_I16 or IMAGE_SGL.
 * roi:        where the code is.
 * validate:   not looked at.
 * text:       address of the text's block.
 * textLength: receives 8.
 * Failures: -201 for an image of 0; -1200 for a roi of NULL; -5 for text or textLength; -101; -200;
 * -301 for another image type; -1200 for a region without a contour of two points; -3000 for one
 * that does not begin with a ROI_RECT; -752 where fewer than two columns lie in the image; -3030
 * fewer than 22 bars; -3003 the check. */
int32_t ZEL_ReadCodEAN8(ImageRef image, const RoiDescriptor* roi, int32_t validate, char** text,
                        int32_t* textLength);

/* Reads an EAN-13: thirteen digits, of which the first one is given and the last one is the check
 * of the others. The first digit of an EAN-13 lies in the widths of the next six: given another
 * one, these are misread, and the check fails or, now and then, not.
 * image:      IMAGE_U8, IMAGE_I16 or IMAGE_SGL.
 * roi:        where the code is.
 * validate:   not looked at.
 * firstDigit: the first digit, as a number; above 9 it counts as 1.
 * text:       address of the text's block.
 * textLength: receives 13.
 * Failures: -201 for an image of 0; -1200 for a roi of NULL; -5 for firstDigit, text or textLength;
 * -101; -200; -301 for another image type; -1200 for a region without a contour of two points;
 * -3000 for one that does not begin with a ROI_RECT; -752 where fewer than two columns lie in the
 * image; -3030 fewer than 30 bars; -3003 the check. */
int32_t ZEL_ReadEAN13(ImageRef image, const RoiDescriptor* roi, int32_t validate,
                      const uint8_t* firstDigit, char** text, int32_t* textLength);

/* Reads a UPC-A: twelve digits, of which the last one is the check of the others.
 * image:      IMAGE_U8, IMAGE_I16 or IMAGE_SGL.
 * roi:        where the code is.
 * validate:   not looked at.
 * text:       address of the text's block.
 * textLength: receives 12.
 * Failures: -201 for an image of 0; -1200 for a roi of NULL; -5 for text or textLength; -101; -200;
 * -301 for another image type; -1200 for a region without a contour of two points; -3000 for one
 * that does not begin with a ROI_RECT; -752 where fewer than two columns lie in the image; -3030
 * fewer than 30 bars; -3003 the check. */
int32_t ZEL_ReadUPCA(ImageRef image, const RoiDescriptor* roi, int32_t validate, char** text,
                     int32_t* textLength);

/* Reads a Code 39: all characters with the asterisks of start and stop. Pairs that stand for one
 * character of full ASCII stay pairs.
 * image:      IMAGE_U8, IMAGE_I16 or IMAGE_SGL.
 * roi:        where the code is.
 * validate:   not 0: the character before the stop has to be the check modulo 43 of the others; the
 *             text is what stands between the start and it.
 * text:       address of the text's block.
 * textLength: receives its bytes.
 * Failures: -201 for an image of 0; -1200 for a roi of NULL; -5 for text or textLength; -101; -200;
 * -301 for another image type; -1200 for a region without a contour of two points; -3000 for one
 * that does not begin with a ROI_RECT; -752 where fewer than two columns lie in the image; -3003
 * the check, or fewer than three characters to check. */
int32_t ZEL_ReadCod39(ImageRef image, const RoiDescriptor* roi, int32_t validate, char** text,
                      int32_t* textLength);

/* Reads a Code 93 with its full ASCII: the text without start, checks and stop. The checks weigh
 * characters by their places throughout, so that a sound code of more than 14 characters is mostly
 * refused.
 * image:      IMAGE_U8, IMAGE_I16 or IMAGE_SGL.
 * roi:        where the code is.
 * validate:   not looked at: both checks have to be right.
 * text:       address of the text's block. A control character stands there with the first letter
 *             of its name ("N" for NL, ..., "D" for DEL).
 * textLength: receives the bytes, in which a control character counts 2, DEL 3: as many zero bytes
 *             as were counted too much end the text.
 * Failures: -201 for an image of 0; -1200 for a roi of NULL; -5 for text or textLength; -101; -200;
 * -301 for another image type; -1200 for a region without a contour of two points; -3000 for one
 * that does not begin with a ROI_RECT; -752 where fewer than two columns lie in the image; -3004 a
 * shift before a character that it does not go with; -3003 the checks, or no room for them. */
int32_t ZEL_ReadCod93(ImageRef image, const RoiDescriptor* roi, int32_t validate, char** text,
                      int32_t* textLength);

/* Reads a Code 128 in the sets A, B and C: the text without start, check and stop. Control and
 * function characters give their names ("NU", "SH", ..., "US", "DEL", "FNC 1" to "FNC 4", "SHIFT",
 * which shifts nothing); changes of the set give nothing.
 * image:      IMAGE_U8, IMAGE_I16 or IMAGE_SGL.
 * roi:        where the code is.
 * validate:   not looked at: the check has to be right.
 * text:       address of the text's block.
 * textLength: receives its bytes.
 * Failures: -201 for an image of 0; -1200 for a roi of NULL; -5 for text or textLength; -101; -200;
 * -301 for another image type; -1200 for a region without a contour of two points; -3000 for one
 * that does not begin with a ROI_RECT; -752 where fewer than two columns lie in the image; -3003
 * the check, or no room for it. */
int32_t ZEL_ReadCod128(ImageRef image, const RoiDescriptor* roi, int32_t validate, char** text,
                       int32_t* textLength);

#pragma GCC visibility pop
#ifdef __cplusplus
}
#endif

#endif
