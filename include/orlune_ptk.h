/* orlune_ptk: machine vision and image processing with a plain C interface.
 *
 * How to read this header
 *
 * Results. Unless a function says otherwise it returns 0 on success and a negative failure number.
 * The number is also kept for ZEL_GetLastError and, unless ZEL_SetErrorMode chose silence, shown in
 * a message box ("Orlune Error"; on a machine without a desktop, standard error). Failure numbers
 * that any function can return: -200 for an image reference that names no image, -101 when there is
 * no memory or a size would pass 2^31 - 1 bytes, -3009 for NULL where a pointer is required. The
 * others are listed with each function. A failing call leaves the caller's outputs as they were.
 *
 * Images. A caller holds an ImageRef from ZEL_Create until ZEL_Dispose; 0 is no image. Every image
 * has a type, a size that functions set as they need, and a border of extra pixels around it that
 * neighbourhood functions read. Rows start on 8-byte boundaries.
 *
 * Destinations. A destination of 0, or equal to the source, means that the result replaces the
 * source. Any other destination is resized to the source's size and takes its calibration and mask
 * offset; its own border keeps its size and its pixels, unless the function says otherwise.
 *
 * Masks. A mask is an IMAGE_U8 image whose non-zero pixels select. It lies on the image at its own
 * offset (ZEL_SetImageOffset); pixels that it does not cover are not selected. A mask of 0, or
 * equal to the image, is no mask.
 *
 * Coordinates are pixels; x counts columns from the left and y rows from the top, both from 0.
 *
 * Result tables. Where a function takes the address of a pointer, that pointer holds NULL or a
 * block from ZEL_malloc on entry. The function resizes the block, stores its address back (NULL for
 * no records) and the caller releases it with ZEL_free.
 *
 * Threads. The library keeps process-wide state without locks: one thread at a time may be inside.
 */
#ifndef ORLUNE_PTK_H
#define ORLUNE_PTK_H

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

#if defined(__GNUC__)
#pragma GCC visibility push(default)
#endif

/* ====================================================================================== types */

typedef uint32_t ImageRef; /* 0 is no image */
typedef uint32_t RGBValue; /* 0x00RRGGBB; bytes in memory: blue, green, red, fourth */

typedef struct ApiRect {
  int32_t top, left, height, width;
} ApiRect;

typedef struct ApiPoint {
  int32_t x, y;
} ApiPoint;

/* Sides of a rectangle that means "the whole image": rectangles are clipped to the image. */
#define WHOLE_IMAGE_EXTENT 32767

typedef enum ImageType {
  IMAGE_U8 = 0,      /* unsigned 8-bit */
  IMAGE_I16 = 1,     /* signed 16-bit */
  IMAGE_SGL = 2,     /* 32-bit float */
  IMAGE_COMPLEX = 3, /* two 32-bit floats, real then imaginary */
  IMAGE_RGB = 4,     /* blue, green, red and an unused byte, in address order */
  IMAGE_OPAQUE = 5   /* a block of bytes that no function computes on */
} ImageType;

/* Numeric types of callers' arrays. Code 5 is unused. Between types, values go through a 64-bit
 * float; an integer takes the low bits of the value cut toward zero, without saturation. */
typedef enum ArrayType {
  ARRAY_I8 = 0,
  ARRAY_I32 = 1,
  ARRAY_I16 = 2,
  ARRAY_SGL = 3,
  ARRAY_DBL = 4,
  ARRAY_U16 = 6,
  ARRAY_U32 = 7,
  ARRAY_U8 = 8
} ArrayType;

/* ===================================================================================== memory */

/* The heap that every block handed to callers comes from. NULL when there is no memory. Nothing
 * is reported. ZEL_free takes NULL. */
void* ZEL_malloc(uint32_t size);                 /* size in bytes; contents undefined */
void* ZEL_calloc(uint32_t count, uint32_t size); /* count x size bytes of 0 */
void* ZEL_realloc(void* block, uint32_t size);   /* keeps contents up to the smaller size */
void ZEL_free(void* block);

/* ===================================================================================== images */

/* What ZEL_GetImageInfo tells of an image. */
typedef struct ImageInfo {
  int32_t width;      /* pixels */
  int32_t height;     /* rows */
  int32_t type;       /* ImageType */
  int32_t pixelBytes; /* bytes a pixel */
  int32_t lineWidth;  /* pixels from one row to the next */
  int32_t lineBytes;  /* bytes from one row to the next */
  int32_t border;     /* pixels of border on each side */
  int32_t totalBytes; /* bytes of the pixel block, border included */
  int32_t offsetX;    /* where the image lies when it is used as a mask */
  int32_t offsetY;
  int32_t unit;     /* the caller's calibration unit code */
  float xStep;      /* width of a pixel in that unit */
  float yStep;      /* height of a pixel in that unit */
  void* firstPixel; /* pixel (0, 0); valid until the image is resized or replaced */
} ImageInfo;

/* Makes the library's tables ready. Not required: the first call of any function does it. */
int32_t ZEL_InitSys(void);

/* Disposes of all images and frees all memory of the library, except blocks that callers own.
 * Later calls start over; references from before are never used again. Reported as "ZEL_InitSys".
 */
int32_t ZEL_CloseSys(void);

/* Makes an image of 0 x 0 pixels with calibration steps of 1.0, unit 0 and offset 0.
 * image:  variable for the reference. If it holds the reference of a live image, that image is made
 *         over and keeps its reference; anything else makes a new image. After a failed creation it
 *         may hold the reference of an unusable image, which ZEL_Dispose takes, or 0xFFFFFFFF.
 * type:   an ImageType; -300 for any other number (the image then exists, with that type).
 * border: pixels on each side, 0 or more; -308 below 0 (nothing is made). Neighbourhood functions
 *         state the border that they need; most are served by 1 to 3.
 * Failures: -300, -308, -101, -102. */
int32_t ZEL_Create(ImageRef* image, int16_t type, int32_t border);

/* Disposes of an image. Its reference is never used again. Failures: -200. */
int32_t ZEL_Dispose(ImageRef image);

/* Fills a record about an image. Unlike all other functions it returns the POSITIVE number after a
 * failure: 200 (info untouched); 300 for an image without pixel addresses (firstPixel is NULL, all
 * else is filled); 3009. */
int32_t ZEL_GetImageInfo(ImageRef image, ImageInfo* info);

/* Resizes an image of any type. A width or height below 1 gives 0 x 0. Unless the size stays the
 * same, the pixels are undefined afterwards, border included. Failures: -200, -300, -101 (the image
 * is unchanged). */
int32_t ZEL_SetImageSize(ImageRef image, int32_t width, int32_t height);

/* Stores the calibration of an image of any type: a unit code, of which the low 16 bits are kept
 * and which has no meaning to the library, and the width and height of a pixel in that unit.
 * Any float is taken. Failures: -200. */
int32_t ZEL_SetImageCalibration(ImageRef image, int32_t unit, float xStep, float yStep);

/* Stores where the image lies on another one when it serves as a mask: its pixel (0, 0) covers
 * pixel (x, y) there. Negative offsets are allowed. Failures: -200; -301 for a type outside 0 to 5.
 */
int32_t ZEL_SetImageOffset(ImageRef image, int32_t x, int32_t y);

/* Walks the images: writes how many there are to count, and the reference of number index, from 0,
 * to image. Returns 0 for an image that a caller made, 2 for one that came out of a function
 * working through a temporary image, 1 when there is no such number (image untouched). NULL outputs
 * are skipped. Reports nothing. */
int32_t ZEL_GetImageReference(int32_t index, ImageRef* image, int32_t* count);

/* The address of a pixel of the image or its border: x from -border up to and without
 * width + border, y likewise. Valid until the image is resized or replaced by a result.
 * Failures: -200; -300 for IMAGE_OPAQUE; -1001 outside the image and its border. */
int32_t ZEL_GetPixelAddress(ImageRef image, int32_t x, int32_t y, void** address);

/* ===================================================================================== errors */

/* Reports a failure the way the library's own functions do.
 * procedure: name of the failing function, zero-terminated, of which 255 bytes are kept; NULL keeps
 *            the name reported before.
 * status:    0 does nothing and clears nothing; any other number is reported by its absolute value.
 * Returns 0, or the status made negative. */
int32_t ZEL_ProcessError(const char* procedure, int32_t status);

/* mode: above 0 is silent (1); any other value shows a message box for every failure (0, the mode
 * at the start). Always returns 0. */
int32_t ZEL_SetErrorMode(int32_t mode);

/* The error mode, 0 or 1. */
int32_t ZEL_GetErrorMode(void);

/* The last failure number (negative), then 0 until the next failure. procedure: NULL, or 256 bytes
 * that receive the name reported with it, an empty text when there is none. */
int32_t ZEL_GetLastError(char* procedure);

/* ============================================================= pixels, lines and whole arrays */

/* These take IMAGE_U8, IMAGE_I16 and IMAGE_SGL images, where nothing else is said, and callers'
 * arrays of any ArrayType. ARRAY_I8 with IMAGE_U8 and ARRAY_U16 with IMAGE_I16 pass bits unchanged;
 * every other pair is converted as told at ArrayType. With an unknown array type nothing is read
 * (pixels become 0) or written (the array stays, counts are given). */

/* Reads a pixel into value. Coordinates outside the image are those of the nearest pixel.
 * Failures: -200; -301 for another image type; -1001 for an empty image. */
int32_t ZEL_GetPixelValue(ImageRef image, int32_t x, int32_t y, float* value);

/* Writes a pixel; outside the image nothing is done (0 is returned). The integer types take the low
 * bits of the value cut toward zero: 300.0 is 44 in IMAGE_U8. Failures: -200; -301 for another
 * image type. */
int32_t ZEL_SetPixelValue(ImageRef image, int32_t x, int32_t y, float value);

/* Reads a row (column 0) or a column (any other number) into an array.
 * index:     of the row or column; outside the image the nearest one.
 * arrayType: of the elements.
 * array:     room for the image's width, or height.
 * count:     NULL, or receives the number of elements.
 * Failures: -200; -301 for another image type. */
int32_t ZEL_GetRowCol(ImageRef image, int16_t column, int32_t index, int32_t arrayType, void* array,
                      int32_t* count);

/* Writes a row (column 0) or a column (any other number) from an array of count elements; those
 * beyond the row or column are left out. array may be NULL when count is below 1. Further arguments
 * as for ZEL_GetRowCol. Failures: -200; -301 for another image type; -101 for more elements than an
 * image can hold. */
int32_t ZEL_SetRowCol(ImageRef image, int16_t column, int32_t index, int32_t arrayType,
                      const void* array, int32_t count);

/* Reads the pixels of a straight line, both ends included, into an array.
 * start, end: may lie outside the image: the line is clipped to it, and the array starts with the
 *             first point inside. A clipped line can pass through other pixels than the whole one.
 * array:      room for as many elements as the line has points: the larger of its extents in x and
 *             y, plus 1.
 * count:      NULL, or receives the number of elements; 0 when the line misses the image.
 * From (0, 0) to (4, 2) the line goes (0, 0) (1, 1) (2, 1) (3, 2) (4, 2).
 * Failures: -200; -301 for another image type, unless the line misses the image. */
int32_t ZEL_GetLine(ImageRef image, int32_t startX, int32_t startY, int32_t endX, int32_t endY,
                    int32_t arrayType, void* array, int32_t* count);

/* Writes the pixels of a straight line from an array of count elements, the first to the first
 * point inside the image; elements beyond the line are left out. array may be NULL when count is
 * below 1. Lines and failures as for ZEL_GetLine; -101 for more elements than an image can hold. */
int32_t ZEL_SetLine(ImageRef image, int32_t startX, int32_t startY, int32_t endX, int32_t endY,
                    int32_t arrayType, const void* array, int32_t count);

/* Copies a rectangle into an array, row after row.
 * top, left, height, width: the rectangle, limited to the image. A negative size reaches to the
 *                           other side of top or left.
 * array:               room for the elements of the limited rectangle.
 * outWidth, outHeight: NULL, or receive its columns and rows; both 0 for an empty one.
 * Failures: -200; -301 for another image type, unless the rectangle is empty. */
int32_t ZEL_ImageToArray(ImageRef image, int32_t top, int32_t left, int32_t height, int32_t width,
                         int32_t arrayType, void* array, int32_t* outWidth, int32_t* outHeight);

/* Gives an image the size of an array and copies the array into it. The border is not filled.
 * array:         height rows of width elements, without gaps; may be NULL when either is below 1.
 * width, height: a size below 1 gives an image of 0 x 0.
 * Failures: -200; -301 for another image type; -304 when both sizes are below 1; -101. */
int32_t ZEL_ArrayToImage(ImageRef image, int32_t arrayType, const void* array, int32_t width,
                         int32_t height);

/* Fills an image of any type but IMAGE_OPAQUE with a value.
 * mask:     only pixels that it selects are filled. Without a mask (0 or the image) the fill is one
 *           of memory, not of the image: for IMAGE_U8 the first (height + 2 border) x
 *           (width + 2 border) bytes of the pixel block, whatever the row pitch, so that the last
 *           rows of an image can keep their pixels; for the other types width + 2 border pixels
 * from the start of each line, so that the last columns can. To fill exactly the pixels, pass a
 *           mask.
 * value:    for the scalar types; the integer ones take the low bits of it cut toward zero.
 * rgbValue: for IMAGE_RGB, all four bytes.
 * complexReal, complexImaginary: for IMAGE_COMPLEX.
 * Failures: -200; -301 for IMAGE_OPAQUE or a mask that is not IMAGE_U8. */
int32_t ZEL_FillImage(ImageRef image, ImageRef mask, float value, uint32_t rgbValue,
                      float complexReal, float complexImaginary);

/* Sets all pixels of an image of any type but IMAGE_OPAQUE to 0, border and padding included.
 * Failures: -200, -300. */
int32_t ZEL_ClearPixels(ImageRef image);

/* Joins two fields into a frame, or splits a frame, for images of any type but IMAGE_OPAQUE.
 * frame, firstField, secondField: of one type; a field may be the frame itself. With a field of 0
 *       the other one serves for both in a join, and is the only one written in a split. With both
 * 0 nothing is done. mode: 0 joins: the first field's rows become the even rows of the frame, from
 * row 0, the second one's the odd rows. The frame gets the smaller of the fields' widths and twice
 * the smaller of their heights. Any other mode splits: each field gets the frame's width and half
 * its height, and a last odd row is dropped. Borders keep their pixels; calibration is not copied.
 * Failures: -200; -304 for a field of another type than the frame's; -301 for IMAGE_OPAQUE. */
int32_t ZEL_Interlace(ImageRef frame, ImageRef firstField, ImageRef secondField, int32_t mode);

/* ============================================================= arithmetic and logic operators */

/* Operators combine two images, or an image and a constant, pixel by pixel.
 *
 * first:       IMAGE_U8, IMAGE_I16 or IMAGE_SGL for arithmetic and comparison; IMAGE_U8, IMAGE_I16
 *              or IMAGE_RGB for bitwise operators.
 * second:      an image of first's size, or 0 to use the constant. In arithmetic and comparison its
 *              type may be narrower than first's (U8 < I16 < SGL) and is widened; ZEL_Add and
 *              ZEL_Multiply also take the wider image second. Bitwise operators need equal types.
 * destination: 0 replaces first. Its type must be that of the result, which is the wider operand's.
 *              It is resized to the operands' size and takes first's calibration and mask offset.
 *              It may be either operand. Borders are neither read nor written.
 * constant:    ignored when there is a second image, except by ZEL_MulDiv. Integer images use it
 *              cut toward zero and limited to 32 bits where a function says "cut constant".
 *
 * When exactly one of the two images is empty (0 x 0), the other is copied to the destination,
 * which must have its type (-303), and nothing is computed.
 *
 * Integer results are cut toward zero and limited to the type's range (0 to 255, -32768 to 32767)
 * unless stated otherwise; float results are rounded once. Dividing by 0 never fails.
 *
 * Failures of all of them: -200; -302 a type of first that the function does not take; -305 a
 * second image or a destination of an unsuitable type; -306 different sizes; -300 IMAGE_OPAQUE;
 * -303. */

/* first + second, or first + the cut constant (floats: the constant). */
int32_t ZEL_Add(ImageRef first, ImageRef second, ImageRef destination, float constant);

/* first - second, or first - the cut constant (floats: the constant). second may not be of a wider
 * type than first. Reported as "ZEL_Substract". */
int32_t ZEL_Subtract(ImageRef first, ImageRef second, ImageRef destination, float constant);

/* first x second, or first x constant. IMAGE_U8 takes the absolute value of the constant, but on
 * processors with MMX this holds for the last width modulo 4 columns only (for all columns when
 * there are fewer than 8): the others take the cut constant, 255 in place of a negative or larger
 * one. */
int32_t ZEL_Multiply(ImageRef first, ImageRef second, ImageRef destination, float constant);

/* first / second, or first / constant. A divisor pixel or constant of 0 leaves first. IMAGE_U8
 * takes the absolute value of the constant. */
int32_t ZEL_Divide(ImageRef first, ImageRef second, ImageRef destination, float constant);

/* The remainder of first / second, with the sign of first; first where second is 0. With a
 * constant: IMAGE_U8 divides by the low 8 bits of the cut constant's absolute value, IMAGE_I16 by
 * the cut constant, IMAGE_SGL by the constant; 1 stands in for 0. Floats: a - (a / b cut) x b. */
int32_t ZEL_Modulo(ImageRef first, ImageRef second, ImageRef destination, float constant);

/* first x constant / second; first where second is 0. second may not be of a wider type than first,
 * and not 0 (-202). IMAGE_U8 takes the absolute value of the constant. IMAGE_I16 with a second of
 * IMAGE_U8 multiplies by the cut constant in integers and keeps the low 16 bits of the quotient,
 * not limited. */
int32_t ZEL_MulDiv(ImageRef first, ImageRef second, ImageRef destination, float constant);

/* Mean, smaller, larger, or first kept where a comparison holds and 0 elsewhere.
 * operation: 0 mean, rounded down on integers (floats: half the sum); 1 the smaller; 2 the larger;
 *            first where it is 3 not below, 4 above, 5 different from, 6 below, 7 not above the
 *            second operand, else 0. Numbers below 0 act as 0, above 7 as 7. A float pixel that is
 *            no number is kept; it is never the smaller or larger second operand.
 * constant:  integers use the cut constant, in its whole range. The mean of IMAGE_U8 is limited to
 * 0 to 255, but on processors with MMX this holds for the last width modulo 4 columns only (for all
 * when there are fewer than 8 columns): the others take the low 8 bits of the cut constant. second
 * may not be of a wider type than first. */
int32_t ZEL_Compare(ImageRef first, ImageRef second, ImageRef destination, int32_t operation,
                    float constant);

/* Bitwise operators on whole pixels, with second or with the low 8 (IMAGE_U8), 16 (IMAGE_I16) or 32
 * (IMAGE_RGB) bits of the constant. invert: other than 0 inverts all bits of the result. */
int32_t ZEL_And(ImageRef first, ImageRef second, ImageRef destination, int16_t invert,
                uint32_t constant);
int32_t ZEL_Or(ImageRef first, ImageRef second, ImageRef destination, int16_t invert,
               uint32_t constant);
int32_t ZEL_Xor(ImageRef first, ImageRef second, ImageRef destination, int16_t invert,
                uint32_t constant);

/* The bits of first that are not set in second. */
int32_t ZEL_LogDiff(ImageRef first, ImageRef second, ImageRef destination, uint32_t constant);

/* Keeps the pixels of source that the mask selects and makes all others 0, border included.
 * source:      any type but IMAGE_OPAQUE (-301).
 * mask:        an IMAGE_U8 image placed by its offset (-301 for another type). 0 or source: the
 *              pixels are copied, and the destination keeps its calibration and offset. Where the
 *              mask misses the source altogether, nothing is written.
 * destination: of source's type (-304); 0 replaces source. It may be the mask, which then holds the
 *              result.
 * Failures: -200, -301, -304. */
int32_t ZEL_Mask(ImageRef source, ImageRef mask, ImageRef destination);

/* ====================================================================================== casts */

/* Conversion between pixel types. What becomes of a pixel:
 *   to U8, I16   from I16 and SGL: cut toward zero, limited to the type's range, NaN as 0;
 *                from COMPLEX: the magnitude cut, low 8 or 16 bits kept, NOT limited;
 *                from RGB: (blue + green + red) / 3, cut;
 *   to SGL       the value; of COMPLEX the magnitude; of RGB a third of the sum of the channels;
 *   to COMPLEX   the real part as for SGL, the imaginary part 0;
 *   to RGB       what U8 would be, in all three channels; the fourth byte 0.
 * IMAGE_OPAQUE is not converted. */

/* Gives an image another type; its reference stays, and after a failure its pixels too.
 * type: an ImageType below IMAGE_OPAQUE; the present type does nothing.
 * Failures: -200; -302 an image of IMAGE_OPAQUE; -305 for the type IMAGE_OPAQUE; -300 for a number
 * outside ImageType. */
int32_t ZEL_Cast(ImageRef image, int32_t type);

/* Converts into an image of another type, which takes the source's size, BORDER SIZE, calibration
 * and mask offset. destination: 0 or source does nothing. Equal types are copied line by line, from
 * pixel (0, 0) to the end of the last line, so that some pixels of the border come along. Failures:
 * -200; -302 a source and -305 a destination of IMAGE_OPAQUE. */
int32_t ZEL_Convert(ImageRef source, ImageRef destination);

/* Converts through a table: IMAGE_U8 to IMAGE_I16 or IMAGE_SGL by 256 entries, IMAGE_I16, read as
 * unsigned, to IMAGE_U8 or IMAGE_SGL by 65536.
 * destination: 0 or source does nothing.
 * arrayType:   ArrayType of the array; entries go through 32-bit floats. An unknown type reads as
 * 0. array:       the entries. Integer results keep the low bits of the entry cut toward zero.
 * count:       entries given; a longer table is cut, in a shorter one each missing entry is its own
 *              index. Below 1: none, and array may be NULL.
 * Failures: -200; -301 a source and -304 a destination of another type. */
int32_t ZEL_ConvertByLookup(ImageRef source, ImageRef destination, int32_t arrayType,
                            const void* array, int32_t count);

/* Shifts IMAGE_I16 pixels right, keeping their sign, and stores the low 8 bits, not limited.
 * destination: an IMAGE_U8 image. shift: bits, limited to 0 to 8.
 * Failures: -200; -301 images of other types. Reported as "ZEL_Shift16to8". */
int32_t ZEL_Shift16To8(ImageRef source, ImageRef destination, int32_t shift);

/* ================================================================================= thresholds */

/* One range of values, 16 bytes in an array. The upper half of the fourth 32-bit word is ignored
 * on input and written as 0. */
typedef struct ThresholdClass {
  float rangeMin;  /* lowest value of the class, inclusive */
  float rangeMax;  /* highest value of the class, inclusive */
  float newValue;  /* value given to its pixels */
  uint16_t useNew; /* non-zero: pixels take newValue; 0: they keep their value */
} ThresholdClass;

/* Keeps one range of values: a pixel from rangeMin to rangeMax, both included, becomes newValue, or
 * keeps its value when useNew is 0. Every other pixel becomes 0, also NaN; with a rangeMin above
 * rangeMax all of them.
 * source:      IMAGE_U8, IMAGE_I16 or IMAGE_SGL.
 * destination: 0 or the source: in place. Any other image must have the source's type.
 * rangeMin, rangeMax, newValue: for integer images cut toward zero and then limited to the type's
 *              range (-5 to -3 on IMAGE_U8 selects level 0; NaN counts as 0); for IMAGE_SGL as
 *              given.
 * Failures: -200, -301 (source type), -304 (destination type). */
int32_t ZEL_Threshold(ImageRef source, ImageRef destination, float rangeMin, float rangeMax,
                      float newValue, int16_t useNew);

/* Keeps several ranges of values; pixels in none of them become 0.
 * source:      IMAGE_U8, IMAGE_I16 or IMAGE_SGL.
 * destination: 0 or the source: in place. Any other image must have the source's type.
 * count:       number of classes. With 0 or less the source's pixels are copied as they are.
 * classes:     tried in order. Where they overlap, the LAST class decides for integer images, whose
 *              limits and new values are cut and limited as in ZEL_Threshold. For IMAGE_SGL the
 *              FIRST class decides that makes the pixel other than 0. NULL only with a count of 0
 *              or less.
 * Failures: -200, -301 (source type), -304 (destination type). */
int32_t ZEL_MultiThreshold(ImageRef source, ImageRef destination, int32_t count,
                           const ThresholdClass* classes);

/* How ZEL_AutoBThreshold finds its threshold. */
typedef enum AutoBMethod {
  AUTOB_CLUSTERING = 0, /* iterated mean of the two class means, from the median on */
  AUTOB_ENTROPY = 1,    /* greatest entropy of the two classes */
  AUTOB_METRIC = 2,     /* least sum of absolute distances to the class means */
  AUTOB_MOMENTS = 3,    /* two levels with the first three moments of the image */
  AUTOB_INTERCLASS = 4  /* bisection of the span of levels on the class means */
} AutoBMethod;

/* Finds one threshold from the histogram of an image. The image is not changed.
 * image:     IMAGE_U8. With one level only, the threshold is that level, and 255 without pixels.
 *            AUTOB_CLUSTERING gives 0 there, also for two levels; AUTOB_ENTROPY always one of 1 to
 *            254.
 * method:    an AutoBMethod. With any other number the call succeeds and writes nothing.
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
 * count:     number of classes, 2 to 256. With any other number the call succeeds and writes
 *            nothing. With as many classes as levels that occur, or more, thresholds lie midway
 *            between levels; surplus classes come first, are empty and have a rangeMax of -1.
 * arrayType: an ArrayType; with an unknown one lookup is not written.
 * lookup:    NULL, or an array of 256 elements: the class of each level, from 0. The level at the
 *            whole part of a fractional threshold counts to the class above it, although that
 *            class's rangeMin is one higher.
 * classes:   NULL, or an array of count records for ZEL_MultiThreshold: ranges of whole numbers up
 *            to 255, the class number as newValue, and 32768 as useNew.
 * Failures: -200; -301 for an image that is not IMAGE_U8; -306 for one without pixels. */
int32_t ZEL_AutoMThreshold(ImageRef image, int32_t count, int32_t arrayType, void* lookup,
                           ThresholdClass* classes);

/* =============================================================== histogram and quantification */

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

/* Counts the pixels of an image by classes of equal width over a range of values.
 * image:     IMAGE_U8, IMAGE_I16 or IMAGE_SGL.
 * mask:      only pixels that it selects are counted. 0 or the image: all pixels.
 * nbClasses: limited to 1..4096, for IMAGE_U8 to 1..256.
 * min, max:  the range, both ends included; pixels outside it are not counted. Cut toward zero for
 *            the integer types. IMAGE_U8: a min below 1 is 0, and a max of 0 or above 255 is 255.
 *            IMAGE_I16: both 0 mean the extremes of the selected pixels; else the range is limited
 *            to the type's. IMAGE_SGL: both 0 mean the extremes. A max below min counts nothing.
 *            NaN is 0 for the integer types and counts nothing for IMAGE_SGL.
 * histogram: array of nbClasses counters (of the limited number, which may be less, all are
 *            written), or NULL.
 * report:    NULL, or receives the statistics. Written on success only.
 * A value v falls into the class nearest to (v - min) x scale + (scale - 1) / 2, an exact half into
 * the lower one, where scale is nbClasses / (max - min + 1.0), for floats too.
 * Failures: -200; -301 for another image type or a mask that is not IMAGE_U8; -102 for a histogram
 * with nbClasses below 1. */
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
 * mask the pixels of others are counted and add 0, with a mask they have no regions. mask: labels:
 * 0 is background, 1 to 255 name regions. 0 or the image: the whole image, and no regions.
 * globalReport:  NULL, or receives the statistics of all regions, or of the whole image. Without
 *                pixels mean and stdDev are NaN.
 * regionReports: NULL, or a result table: one record a label from 1 to the highest one that occurs,
 *                all fields 0 for a label without pixels. Stored back after a failure too.
 * nbRegions:     NULL, or receives the number of these records; 0 after a failure.
 * Failures: -200; -301 for a mask that is not IMAGE_U8. */
int32_t ZEL_Quantify(ImageRef image, ImageRef mask, QuantifyReport* globalReport,
                     QuantifyReport** regionReports, int32_t* nbRegions);

/* The centre of energy: the mean of the coordinates of the pixels weighted with their values.
 * image: of any type; those but IMAGE_U8, IMAGE_I16 and IMAGE_SGL have no energy.
 * mask:  only pixels that it selects count. 0 or the image: all pixels.
 * x, y:  in pixels, from the top left pixel of the image, or with a mask from that of the part of
 *        the image that the mask covers. NaN when the values sum up to nothing.
 * Failures: -200; -301 for a mask that is not IMAGE_U8. */
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
 * arrayType: of the elements of profile, converted from 32-bit floats.
 * profile:   NULL, or receives the samples: room for the larger of the line's extents in x and y,
 *            plus 1.
 * nbPixels:  NULL, or receives their number, 0 for a line that misses the image.
 * report:    NULL, or receives the statistics.
 * Failures: -200; -301 for another image type, unless the line misses the image. */
int32_t ZEL_LineProfile(ImageRef image, int32_t startX, int32_t startY, int32_t endX, int32_t endY,
                        int32_t arrayType, void* profile, int32_t* nbPixels,
                        LineProfileReport* report);

/* ==================================================================================== lookups */

/* Maps every pixel through a table of the caller's.
 * source:      IMAGE_U8 or IMAGE_I16.
 * mask:        only pixels that it selects are mapped; the others take the source's value. 0 or the
 *              source: all pixels are mapped. May also be the destination, which then becomes the
 *              result.
 * destination: 0 or the source: in place. Any other image must have the source's type. Where the
 *              mask does not touch the source, it keeps its calibration and mask offset.
 * arrayType:   an ArrayType; an array of an unknown type counts as zeros.
 * array:       count entries; the first is the new value of level 0, and that of a negative
 *              IMAGE_I16 pixel p is number p + 65536. Entries are taken as signed 16-bit integers,
 *              and limited to 0..255 for IMAGE_U8. NULL only with a count of 0 or less.
 * count:       256 entries are used for IMAGE_U8 and 65536 for IMAGE_I16. Levels beyond a shorter
 *              table keep their value; further entries are not read.
 * Failures: -200; -301 for another source type or a mask that is not IMAGE_U8; -304 (destination
 * type). */
int32_t ZEL_UserLookup(ImageRef source, ImageRef mask, ImageRef destination, int32_t arrayType,
                       const void* array, int32_t count);

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

/* Maps every pixel by a mathematical law. Results lie between 0 and 255 for IMAGE_U8, for other
 * types between the smallest and the largest selected pixel. Laws are computed in 80-bit floats and
 * rounded to 32 bits.
 * Integer images: pixels below rangeMin become 0 and pixels above rangeMax the largest result;
 * others the law's value cut toward zero, of which the low 8 or 16 bits count (for IMAGE_I16 the
 * smallest pixel is not added). At d = 0 the laws 1, 2, 5 and 6 give 0.
 * IMAGE_SGL: pixels up to and including rangeMin become 0.0 and pixels above rangeMax the largest
 * result; others the law's value plus the smallest result, limited to the results (NaN: the
 * smallest).
 * source:      IMAGE_U8, IMAGE_I16 or IMAGE_SGL.
 * mask, destination: as for ZEL_UserLookup.
 * operation:   a MathOperator, limited to 0..6.
 * x:           exponent of the laws 5 and 6; any number, 0 is no failure.
 * rangeMin, rangeMax: the range of pixels that the law takes; both 0 for all. rangeMin is raised to
 *              the smallest result and rangeMax lowered to the largest, also when NaN. Cut toward
 *              zero for integer images.
 * Failures: -200; -301 for another source type or a mask that is not IMAGE_U8; -304 (destination
 * type). */
int32_t ZEL_MathLookup(ImageRef source, ImageRef mask, ImageRef destination, int32_t operation,
                       float x, float rangeMin, float rangeMax);

/* Maps pixels so that the results are used evenly, by a histogram: each becomes the sum of the
 * classes up to its own, scaled to 0..255 for IMAGE_U8 and to the extremes of the selected pixels
 * for other types. The class at rangeMin carries no weight. Pixels outside the range become 0.
 * Integers are rounded at one half.
 * source:      IMAGE_U8, IMAGE_I16 or IMAGE_SGL.
 * mask, destination: as for ZEL_UserLookup.
 * histogram, count, report: counters and report of an earlier ZEL_Histogram; they are only read.
 *              Unless both are given, the histogram of the selected pixels with 256 classes over
 *              their whole range is made.
 * rangeMin, rangeMax: as for ZEL_MathLookup.
 * An image of a single level becomes 255 (IMAGE_U8 of a level above 0) or stays as it is.
 * Failures: -200; -301 for another source type or a mask that is not IMAGE_U8; -304 (destination
 * type); -102 for a given histogram with a count below 1. */
int32_t ZEL_Equalize(ImageRef source, ImageRef mask, ImageRef destination,
                     const uint32_t* histogram, int32_t count, const HistogramReport* report,
                     float rangeMin, float rangeMax);

/* ========================================================================= particle labelling */

/* A particle is a set of connected non-zero pixels: side by side with connectivity8 0, also corner
 * to corner with any other value. Particles are numbered from 1 in raster order of their first
 * pixels. The image needs a border of 1 pixel, or of 2 with connectivity8 (else -309). */

/* What ZEL_BasicParticle tells of a particle. */
typedef struct BasicParticleReport {
  int32_t area;         /* pixels */
  float calibratedArea; /* area times the steps of the image's calibration */
  ApiRect rect;         /* bounding rectangle; a left or top beyond 65535 reads 65535 */
} BasicParticleReport;

/* Writes the number of each pixel's particle, and 0 where there is none.
 * source:      IMAGE_U8 or IMAGE_I16. Its border is 0 afterwards.
 * dest:        IMAGE_U8 or IMAGE_I16, resized; 0 or the source: the source receives the numbers.
 *              IMAGE_U8 holds 255 for all particles from number 255 on; IMAGE_I16 holds the low 16
 *              bits, so numbers above 32767 read negative. The border of an IMAGE_I16 dest is 0
 *              afterwards if it is as wide as the source's has to be.
 * nbParticles: NULL, or receives the number of particles, also when -312 is returned; 0 after any
 *              other failure.
 * Failures: -200; -301 for another source type; -309; -101, also for more than 65535 pixels that
 * are set while the neighbours before them (left and above, with connectivity8 also above-left and
 * above-right) are not; -312 for another dest type, which has been resized by then. */
int32_t ZEL_Label(ImageRef source, ImageRef dest, uint16_t connectivity8, int32_t* nbParticles);

/* Area and bounding rectangle of each particle.
 * image:     IMAGE_U8. Its border is 0 afterwards.
 * reports:   address of a result table, see above. When there is no memory for the table itself,
 *            the caller's former block is released and the variable is NULL.
 * nbReports: NULL, or receives the number of particles, 0 after a failure.
 * Failures: -200; -301; -309; -101, also for too many particles, as for ZEL_Label; -3009 for
 * reports. */
int32_t ZEL_BasicParticle(ImageRef image, uint16_t connectivity8, BasicParticleReport** reports,
                          int32_t* nbReports);

/* ======================================================================= particle measurement */

/* What ZEL_Particle tells of a particle. The sums run over its pixels and are kept in 32-bit floats
 * run by run; those of a single run lose what is beyond 32 bits. */
typedef struct ParticleReport {
  int32_t area;           /* pixels, holes not counted */
  float calibratedArea;   /* area times the steps of the image's calibration */
  float perimeter;        /* outer perimeter, calibrated; 0 for a single pixel */
  int32_t nbHoles;        /* holes of a 4-connected particle are 8-connected and vice versa */
  int32_t holesArea;      /* pixels of all holes, with what lies in them */
  float holesPerimeter;   /* of all holes together, calibrated; at least that of a disk of holesArea
                             in pixels */
  ApiRect rect;           /* bounding rectangle */
  float sumX, sumY;       /* sums of coordinates */
  float sumXX, sumYY;     /* ... of their squares */
  float sumXY;            /* ... of x times y */
  int32_t longestSegment; /* length of the longest run of pixels in a row, the first of equals */
  int32_t longestSegmentX; /* its first pixel */
  int32_t longestSegmentY;
  int32_t projectionX; /* pixels without a pixel of the particle above them */
  int32_t nbRuns;      /* runs of pixels in rows */
} ParticleReport;

/* Measures each particle of an image.
 * image:     IMAGE_U8 with a border of 1, or 2 with connectivity8, which is left alone.
 * reports:   address of a result table, see above. Unchanged after a failure.
 * nbReports: NULL, or receives the number of particles, 0 after a failure.
 * Failures: -200; -301; -309; -101; -3009 for reports. */
int32_t ZEL_Particle(ImageRef image, uint16_t connectivity8, ParticleReport** reports,
                     int32_t* nbReports);

/* Numbers of measures. Steps are those of the image's calibration; lengths are in pixels where no
 * step is named, except for those that come from perimeters or calibrated areas. */
typedef enum ParticleMeasure {
  MEASURE_AREA_PIXELS = 0,           /* area */
  MEASURE_AREA_CALIBRATED = 1,       /* calibratedArea */
  MEASURE_NUMBER_OF_HOLES = 2,       /* nbHoles */
  MEASURE_HOLES_AREA_CALIBRATED = 3, /* holesArea x steps */
  MEASURE_TOTAL_AREA_CALIBRATED = 4, /* (holesArea + area) x steps */
  MEASURE_IMAGE_AREA_CALIBRATED = 5, /* image's area x steps */
  MEASURE_TOTAL_AREA_PERCENT = 6,    /* (holesArea + area) / image's area x 100 */
  MEASURE_AREA_PERCENT = 7,          /* area / image's area x 100 */
  MEASURE_CENTRE_OF_MASS_X = 8,      /* sumX / area */
  MEASURE_CENTRE_OF_MASS_Y = 9,      /* sumY / area */
  MEASURE_LEFT = 10,                 /* rect.left */
  MEASURE_TOP = 11,                  /* rect.top */
  MEASURE_RIGHT = 12,                /* rect.left + rect.width */
  MEASURE_BOTTOM = 13,               /* rect.top + rect.height */
  MEASURE_WIDTH_CALIBRATED = 14,     /* rect.width x xStep */
  MEASURE_HEIGHT_CALIBRATED = 15,    /* rect.height x yStep */
  MEASURE_LONGEST_SEGMENT = 16,      /* longestSegment */
  MEASURE_LONGEST_SEGMENT_X = 17,    /* longestSegmentX */
  MEASURE_LONGEST_SEGMENT_Y = 18,    /* longestSegmentY */
  MEASURE_PERIMETER = 19,            /* perimeter */
  MEASURE_HOLES_PERIMETER = 20,      /* holesPerimeter */
  MEASURE_SUM_X = 21,                /* sumX */
  MEASURE_SUM_Y = 22,                /* sumY */
  MEASURE_SUM_XX = 23,               /* sumXX */
  MEASURE_SUM_YY = 24,               /* sumYY */
  MEASURE_SUM_XY = 25,               /* sumXY */
  MEASURE_PROJECTION_X = 26,         /* projectionX */
  MEASURE_NUMBER_OF_RUNS = 27,       /* nbRuns */
  MEASURE_INERTIA_XX = 28,           /* second moments about the centre */
  MEASURE_INERTIA_YY = 29,
  MEASURE_INERTIA_XY = 30,
  MEASURE_MEAN_CHORD_X = 31, /* area / nbRuns */
  MEASURE_MEAN_CHORD_Y = 32, /* area / projectionX */
  /* Between rect's diagonal and its longer side, by how much of its width longestSegment fills. */
  MEASURE_MAX_INTERCEPT = 33,
  MEASURE_MEAN_PERPENDICULAR_INTERCEPT = 34, /* area / MAX_INTERCEPT */
  MEASURE_ORIENTATION = 35,                  /* degrees, 0 to 180; of a level line 180 */
  MEASURE_INTERCEPT_ELLIPSE_MINOR_AXIS = 36, /* area / (MAX_INTERCEPT x pi) x 4 */
  MEASURE_ELLIPSE_MAJOR_AXIS = 37,           /* ellipse of equal area and perimeter */
  MEASURE_ELLIPSE_MINOR_AXIS = 38,
  MEASURE_ELLIPSE_RATIO = 39,       /* major / minor; major when minor is 0 */
  MEASURE_RECTANGLE_LONG_SIDE = 40, /* rectangle of equal area and perimeter */
  MEASURE_RECTANGLE_SHORT_SIDE = 41,
  MEASURE_RECTANGLE_RATIO = 42,     /* long / short */
  MEASURE_ELONGATION_FACTOR = 43,   /* MAX_INTERCEPT / MEAN_PERPENDICULAR_.. */
  MEASURE_COMPACTNESS_FACTOR = 44,  /* area / area of rect */
  MEASURE_HEYWOOD_CIRCULARITY = 45, /* perimeter / that of a disk of equal area */
  MEASURE_TYPE_FACTOR = 46,         /* 0 to 1, by area and second moments */
  MEASURE_HYDRAULIC_RADIUS = 47,    /* calibratedArea / perimeter */
  MEASURE_WADDEL_DIAMETER = 48,     /* of a disk of equal area */
  MEASURE_DIAGONAL_CALIBRATED = 49, /* of rect */
} ParticleMeasure;

/* Computes measures from reports.
 * image:        where the reports come from: its size and calibration, in which a step of 0 counts
 *               as 1.0, enter the measures. Any type.
 * measures:     nbMeasures numbers of measures.
 * reports:      nbReports reports; not changed. Below 1: the call does nothing, as with nbMeasures
 *               0, and returns 0 whatever the other arguments are.
 * coefficients: nbReports x nbMeasures floats; those of a report stand side by side. Quotients by 0
 *               are infinities and NaN. After -801 those before the first wrong number are written.
 * Failures: -200; -306 for an image without pixels; -801 for a number above 49; -3009. */
int32_t ZEL_ParticleCoeffs(ImageRef image, const uint32_t* measures, uint32_t nbMeasures,
                           ParticleReport* reports, int32_t nbReports, float* coefficients);

/* A range of a field of a report. */
typedef struct ParticleCriterion {
  uint32_t measure; /* 0 to 3 and 10 to 27 name the field that the ParticleMeasure of that number
                       is made of, in pixels where there is a choice; others let all pass */
  float lower;      /* smallest value that passes */
  float upper;      /* largest value that passes; integers are rounded to float before */
} ParticleCriterion;

/* Keeps the reports whose fields are in all of the given ranges.
 * image:      not looked at.
 * criteria:   nbCriteria ranges. With nbCriteria 0 the first one is used all the same, unless it is
 *             NULL or its measure is 0xFFFFFFFF: then all reports are kept.
 * reports:    nbReports reports. Those that are kept move to the front in their order; behind them
 *             each is a copy of what was the last one. Not read with nbReports below 1.
 * nbKept:     NULL, or receives the number of kept reports.
 * Failures: -3009. */
int32_t ZEL_ParticleDiscrim(ImageRef image, const ParticleCriterion* criteria, uint32_t nbCriteria,
                            ParticleReport* reports, int32_t nbReports, int32_t* nbKept);

/* ====================================================================================== files */

/* Three formats: the library's own ("native"), which holds every image type and the calibration;
 * TIFF and BMP, both uncompressed. Paths name regular files of at most 2^31 - 1 bytes: a folder,
 * pipe or device is refused at once, never waited for. A path of NULL counts as an empty one.
 *
 * What is read of a file: native files of version 1; TIFF with one directory, either byte order,
 * strips, 1, 2, 4, 8 or 16 bits gray or palette, 24-bit colour interleaved or in planes; BMP of 4,
 * 8 and 24 bits from the bottom up, whose size field equals the file's length. Any other file is
 * -509, a compressed TIFF -514. The compression field of a BMP is not looked at.
 *
 * Known oddities, kept because files and programs in the field rely on them:
 * - The samples of 16-bit TIFF files are big-endian, whatever byte order the file's mark tells.
 * - Two SHORTs or two to four BYTEs inside a TIFF directory entry are taken for an offset.
 * - A TIFF with photometric 0 has every bit of an IMAGE_U8 or IMAGE_I16 image inverted: one bit
 *   0 and 1 read as 255 and 254. TIFF rows of fewer than 8 bits are one stream without padding.
 * - A strip's byte count is made a multiple of the width in pixels.
 * - A TIFF colour map of fewer than 768 values is taken as having that many entries in each of the
 *   three colours; values behind its end are 0.
 * - The green and blue planes of a TIFF read into IMAGE_RGB lie one and two pixels further on, and
 *   only the red plane reaches IMAGE_I16, IMAGE_SGL and IMAGE_COMPLEX.
 * - 8-bit BMP files are written without row padding: only widths that are multiples of 4 read back.
 * - 4-bit BMP rows of an odd width lack their last pixel, which keeps what the image held.
 * - 8-bit TIFF files are written as palette images.
 */

/* What ZEL_PtkFileInfo tells of a file. */
typedef struct FileInfo {
  int32_t fileType;     /* 0 not understood, 1 native, 2 TIFF, 3 BMP */
  int32_t bitsPerPixel; /* 1, 2, 4, 8, 16, 24, 32, 48 or 64 */
  int32_t planes;       /* 1 for gray, 16-bit gray 3; 3 for colour, in separate planes 1;
                           2 for complex */
  int32_t width;        /* of the file, odd widths too */
  int32_t height;
} FileInfo;

/* Reads a file's header. A file that is missing or not understood is no failure of this call: it
 * gives fileType, planes, width and height of 0, and bitsPerPixel keeps what it held.
 * Failures: -3009 for a NULL info. */
int32_t ZEL_PtkFileInfo(const char* path, FileInfo* info);

/* Reads a file into an image of any type but IMAGE_OPAQUE, converting the pixels.
 *
 * The image takes the file's height and its width rounded up to even; the column that an odd width
 * leaves over is 0. Pixels that the file is too short to hold keep what the resized image held. The
 * border is not written. The calibration becomes the file's for native files (both steps from the
 * one stored ratio), else unit 3 and steps of 1.0.
 *
 *   from \ to       IMAGE_U8       IMAGE_I16      IMAGE_SGL      IMAGE_COMPLEX   IMAGE_RGB
 *   1, 2, 4, 8 bits the sample     the sample     the sample     as real part    as all colours
 *   16 bits         low byte       the sample     signed value   signed value    low byte
 *   24 bits         (R+G+B)/3      (R+G+B)/3      (R+G+B) x 1/3  as real part    R, G, B
 *   colour, native  (R+G+B)/3      (R+G+B)/3      (R+G+B) x 1/3  as real part    all four bytes
 *   float           cut, low byte  cut, low word  the sample     as real part    cut, low byte
 *   complex         of magnitude   of magnitude   magnitude      the sample      of magnitude
 *
 * Samples are not scaled: a bilevel file gives 0 and 1. Low bits are taken without saturation.
 * Where gray becomes colour, and for 24 bits, the fourth byte is 0.
 *
 * wantTable: non-zero asks for the file's colour table.
 * table:     256 entries that receive it, or NULL. They are written only when the call succeeds,
 *            wantTable is set and the file has a table; entries that the file does not give are a
 *            gray ramp. The fourth byte of each entry is left alone.
 * count:     256 when the table was wanted and found, 0 when not; 256 after every failure, also of
 *            an unknown image. May be NULL.
 * Failures: -200 (tested before the path); -510 missing file or no regular file; -503 the file
 * cannot be opened; -509 unknown format; -500 header not accepted; -514 TIFF directory not
 * accepted; -507 a TIFF value at a negative offset; -511 the pixels cannot be read; -300
 * IMAGE_OPAQUE; -101 also for sizes that no image can have. A refused header leaves the image as it
 * was; after a later failure it is resized and partly written. */
int32_t ZEL_ReadFile(ImageRef image, const char* path, int32_t wantTable, RGBValue* table,
                     int32_t* count);

/* Writes an image to a file, which is made, or emptied first when it is there.
 *
 *   format          image types and what becomes of them
 *   1  native       all five; with the unit and the x step, sizes cut to 16 bits
 *   2  TIFF         IMAGE_U8 (8 bits with the table as palette), IMAGE_I16, IMAGE_RGB (24 bits);
 *                   little-endian, one strip; width and height 1 to 65535
 *   any other BMP   IMAGE_U8 (8 bits with the table), IMAGE_RGB (24 bits)
 *
 * table, count: the first colours of the table, at most 256; the rest is a gray ramp. NULL or a
 *               count below 1 give the whole ramp. For IMAGE_U8 as TIFF or BMP only.
 * The image is not changed. Only when writing the pixels fails (-511, -512) and the image has line
 * padding are its rows left moved together, without the padding between them; a colour BMP is
 * spared even then.
 * Failures: -200 (the file is not touched); -503 the file cannot be opened, or is no regular file;
 * -500 the header cannot be written, or the format does not take the image: an empty file is left
 * then for a type that TIFF or native does not take, and nothing is touched for a size that TIFF
 * does not take or a type that BMP does not take; -512 the pixels cannot be written (not reported
 * for the rows of a colour BMP), -511 for a seek in a TIFF. A file that could not be finished stays
 * as far as it came. */
int32_t ZEL_WriteFile(ImageRef image, const char* path, int32_t format, const RGBValue* table,
                      int32_t count);

#if defined(__GNUC__)
#pragma GCC visibility pop
#endif

#ifdef __cplusplus
}
#endif

#endif
