/* Making, sizing, describing and disposing of images. The rules that hold for all functions are
 * told in orlune_ptk.h. */
#ifndef ORLUNE_PTK_IMAGES_H
#define ORLUNE_PTK_IMAGES_H

#include "types.h"

#ifdef __cplusplus
extern "C" {
#endif
#pragma GCC visibility push(default)

/* What ZEL_GetImageInfo tells of an image. */
typedef struct ImageInfo {
  int32_t width;      /* pixels */
  int32_t height;     /* rows */
  int32_t type;       /* ImageType */
  int32_t pixelBytes; /* bytes a pixel; 0 for a number outside ImageType */
  int32_t lineWidth;  /* pixels from one row to the next */
  int32_t lineBytes;  /* bytes from one row to the next */
  int32_t border;     /* pixels of border on each side */
  int32_t totalBytes; /* bytes of the pixel block, border included */
  int32_t offsetX;    /* where the image lies when it is used as a mask */
  int32_t offsetY;
  int32_t unit;     /* the caller's calibration unit code */
  float xStep;      /* width of a pixel in that unit */
  float yStep;      /* height of a pixel in that unit */
  void* firstPixel; /* pixel (0, 0); NULL for an image without any pixel, border included. Valid
                       until the image is resized or replaced by a result */
} ImageInfo;

/* What ZEL_GetImageReference returns. */
typedef enum ReferenceKind {
  REFERENCE_OF_CALLER = 0, /* an image that a caller made */
  REFERENCE_ABSENT = 1,    /* there is no image of that number */
  REFERENCE_TEMPORARY = 2  /* one that came out of a function working through a temporary image */
} ReferenceKind;

/* Makes the library's tables ready. Not required: the first call of any function does it.
 * Failures: -101. */
int32_t ZEL_InitSys(void);

/* Disposes of all images and frees all memory of the library, except blocks that callers own.
 * Later calls start over; references from before are never used again.
 * Failures: none; returns 0. */
int32_t ZEL_CloseSys(void);

/* Makes an image of 0 x 0 pixels with calibration steps of 1.0, unit 0 and offset 0.
 * image:  variable for the reference. If it holds the reference of a live image, that image is made
 *         over and keeps its reference; anything else, 0 too, makes a new image. The caller ends
 *         it with ZEL_Dispose.
 * type:   an ImageType.
 * border: pixels on each side, 0 or more. Neighbourhood functions state the border that they need;
 *         most are served by 1 to 3.
 * Failures: -3009 for image. -308 for a border below 0. Both change nothing. -101 and -102 no
 * memory, -1001 all 2^32 references are used up: image then holds what it held, 0xFFFFFFFF in place
 * of 0, or the reference of an image that has no use but has to be disposed of: another call with
 * that reference makes a new image, and the useless one keeps its place until ZEL_CloseSys. An
 * image that was to be made over is as it was. -300 for a number outside ImageType: the image then
 * exists, with that type and without pixels, and has to be disposed of or made over. */
int32_t ZEL_Create(ImageRef* image, int16_t type, int32_t border);

/* Disposes of an image and frees its pixels. Its reference is never used again.
 * image: of any type.
 * Failures: -200. */
int32_t ZEL_Dispose(ImageRef image);

/* Fills a record about an image.
 * image: of any type.
 * info:  receives the record.
 * Failures: unlike all other functions this one returns the POSITIVE number (what ZEL_GetLastError
 * tells is negative): 3009 for info; 200; 300 for IMAGE_OPAQUE or a number outside ImageType, with
 * the record filled, and firstPixel NULL. */
int32_t ZEL_GetImageInfo(ImageRef image, ImageInfo* info);

/* Resizes an image. Its type, border size, calibration and offset stay. Unless the size stays the
 * same, the pixels are undefined afterwards, border included.
 * image:  of any type.
 * width:  pixels. Below 1 gives 0 x 0, whatever the height.
 * height: rows. Below 1 gives 0 x 0, whatever the width.
 * Failures: -200; -300 for a number outside ImageType; -101. All leave the image as it was. */
int32_t ZEL_SetImageSize(ImageRef image, int32_t width, int32_t height);

/* Stores the calibration of an image.
 * image: of any type.
 * unit:  a code of the caller's, of which the low 16 bits are kept, as a signed number. It has no
 *        meaning to the library.
 * xStep: width of a pixel in that unit. Any float, also 0, negative numbers and NaN.
 * yStep: height of a pixel, likewise.
 * Failures: -200. */
int32_t ZEL_SetImageCalibration(ImageRef image, int32_t unit, float xStep, float yStep);

/* Stores where an image lies on another one when it serves as a mask.
 * image: of any type.
 * x:     column of the other image that column 0 of this one covers; may be negative.
 * y:     row of the other image that row 0 of this one covers; may be negative.
 * Failures: -200; -301 for a number outside ImageType. */
int32_t ZEL_SetImageOffset(ImageRef image, int32_t x, int32_t y);

/* Walks the images there are. Returns a ReferenceKind. The images keep their numbers until one is
 * made, disposed of or replaced by a result.
 * index: number of the image, from 0.
 * image: NULL, or receives the reference; untouched after REFERENCE_ABSENT.
 * count: NULL, or receives how many images there are, also after REFERENCE_ABSENT.
 * Failures: none; nothing is reported. */
int32_t ZEL_GetImageReference(int32_t index, ImageRef* image, int32_t* count);

/* Tells where a pixel of an image or of its border lies in memory.
 * image:   of any type but IMAGE_OPAQUE. One of 0 x 0 pixels has its border only; without a border
 *          it has nothing, and pixel (0, 0) alone is given, with an address of NULL.
 * x:       column, from -border up to and without width + border.
 * y:       row, from -border up to and without height + border.
 * address: receives the address, which is valid until the image is resized or replaced by a result.
 * Failures: -3009 for address; -200; -300 for IMAGE_OPAQUE or a number outside ImageType; -1001
 * outside the image and its border. */
int32_t ZEL_GetPixelAddress(ImageRef image, int32_t x, int32_t y, void** address);

#pragma GCC visibility pop
#ifdef __cplusplus
}
#endif

#endif
