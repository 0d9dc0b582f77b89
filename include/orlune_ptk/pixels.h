/* Single pixels, rows, columns, lines, whole arrays, fills and interlaced fields. The rules that
 * hold for all functions are told in orlune_ptk.h.
 *
 * These functions take IMAGE_U8, IMAGE_I16 and IMAGE_SGL images, where nothing else is said, and
 * callers' arrays of any ArrayType. ARRAY_I8 with IMAGE_U8 and ARRAY_U16 with IMAGE_I16 pass bits
 * unchanged; every other pair is converted as told at ArrayType. With an unknown array type nothing
 * is read (pixels become 0) or written (the array stays, counts are given).
 *
 * Borders are neither read nor written, and the calibration stays, unless a function says so.
 */
#ifndef ORLUNE_PTK_PIXELS_H
#define ORLUNE_PTK_PIXELS_H

#include "types.h"

#ifdef __cplusplus
extern "C" {
#endif
#pragma GCC visibility push(default)

/* Which of the two ZEL_GetRowCol and ZEL_SetRowCol mean. */
typedef enum RowOrColumn {
  ROWCOL_ROW = 0,
  ROWCOL_COLUMN = 1 /* as any other number */
} RowOrColumn;

/* What ZEL_Interlace does. */
typedef enum InterlaceMode {
  INTERLACE_JOIN = 0, /* two fields into a frame */
  INTERLACE_SPLIT = 1 /* a frame into its fields; as any other number */
} InterlaceMode;

/* Reads a pixel. Coordinates outside the image are those of the nearest pixel.
 * image: IMAGE_U8, IMAGE_I16 or IMAGE_SGL.
 * x:     column.
 * y:     row.
 * value: receives the pixel.
 * Failures: -3009 for value; -200; -301 for another image type; -1001 for an image of 0 x 0. */
int32_t ZEL_GetPixelValue(ImageRef image, int32_t x, int32_t y, float* value);

/* Writes a pixel. Outside the image nothing is done.
 * image: IMAGE_U8, IMAGE_I16 or IMAGE_SGL.
 * x:     column.
 * y:     row.
 * value: the integer types take the low bits of it, truncated: 300.0 is 44 in IMAGE_U8.
 * Failures: -200; -301 for another image type, when the pixel lies inside. */
int32_t ZEL_SetPixelValue(ImageRef image, int32_t x, int32_t y, float value);

/* Reads a row or a column into an array.
 * image:     IMAGE_U8, IMAGE_I16 or IMAGE_SGL. One of 0 x 0 gives no elements.
 * column:    a RowOrColumn.
 * index:     of the row or column, from 0; outside the image the nearest one.
 * arrayType: ArrayType of the elements.
 * array:     room for the image's width, or height.
 * count:     NULL, or receives the number of elements.
 * Failures: -3009 for array; -200; -301 for another image type. */
int32_t ZEL_GetRowCol(ImageRef image, int16_t column, int32_t index, int32_t arrayType, void* array,
                      int32_t* count);

/* Writes a row or a column from an array. Pixels beyond a short array stay.
 * image:     IMAGE_U8, IMAGE_I16 or IMAGE_SGL.
 * column:    a RowOrColumn.
 * index:     of the row or column, from 0; outside the image the nearest one.
 * arrayType: ArrayType of the elements.
 * array:     count elements; those beyond the row or column are left out. May be NULL when count is
 *            below 1.
 * count:     elements; below 1 nothing is written.
 * Failures: -3009 for array; -200; -301 for another image type; -101 for more elements than the
 * 2^31 - 1 bytes of an image can hold. */
int32_t ZEL_SetRowCol(ImageRef image, int16_t column, int32_t index, int32_t arrayType,
                      const void* array, int32_t count);

/* Reads the pixels of a straight line, both ends included, into an array. From (0, 0) to (4, 2) the
 * line goes (0, 0) (1, 1) (2, 1) (3, 2) (4, 2). Points may lie outside the image: the line is
 * clipped to it, and the array starts with the first point inside. A clipped line can pass through
 * other pixels than the whole one.
 * image:     IMAGE_U8, IMAGE_I16 or IMAGE_SGL.
 * startX:    column of the first point.
 * startY:    row of the first point.
 * endX:      column of the last point.
 * endY:      row of the last point.
 * arrayType: ArrayType of the elements.
 * array:     room for as many elements as the line has points: the larger of its extents in x and
 *            y, plus 1.
 * count:     NULL, or receives the number of elements; 0 when the line misses the image.
 * Failures: -3009 for array; -200; -301 for another image type, unless the line misses the image.
 */
int32_t ZEL_GetLine(ImageRef image, int32_t startX, int32_t startY, int32_t endX, int32_t endY,
                    int32_t arrayType, void* array, int32_t* count);

/* Writes the pixels of a straight line, clipped and walked as by ZEL_GetLine, from an array. Pixels
 * beyond a short array stay.
 * image:     IMAGE_U8, IMAGE_I16 or IMAGE_SGL.
 * startX:    column of the first point.
 * startY:    row of the first point.
 * endX:      column of the last point.
 * endY:      row of the last point.
 * arrayType: ArrayType of the elements.
 * array:     count elements, the first for the first point inside the image; those beyond the line
 *            are left out. May be NULL when count is below 1.
 * count:     elements; below 1 nothing is written.
 * Failures: -3009 for array; -200; -101 for more elements than the 2^31 - 1 bytes of an image can
 * hold; -301 for another image type, unless the line misses the image. */
int32_t ZEL_SetLine(ImageRef image, int32_t startX, int32_t startY, int32_t endX, int32_t endY,
                    int32_t arrayType, const void* array, int32_t count);

/* Copies a rectangle of an image into an array, row after row without gaps.
 * image:     IMAGE_U8, IMAGE_I16 or IMAGE_SGL.
 * top:       first row of the rectangle, which is limited to the image.
 * left:      first column.
 * height:    rows. A negative height reaches to the other side of top.
 * width:     columns. A negative width reaches to the other side of left.
 * arrayType: ArrayType of the elements.
 * array:     room for the elements of the limited rectangle.
 * outWidth:  NULL, or receives the columns of the limited rectangle; 0 for an empty one.
 * outHeight: NULL, or receives its rows; 0 for an empty one.
 * Failures: -3009 for array; -200; -301 for another image type, unless the rectangle is empty. */
int32_t ZEL_ImageToArray(ImageRef image, int32_t top, int32_t left, int32_t height, int32_t width,
                         int32_t arrayType, void* array, int32_t* outWidth, int32_t* outHeight);

/* Gives an image the size of an array and copies the array into it.
 * image:     IMAGE_U8, IMAGE_I16 or IMAGE_SGL.
 * arrayType: ArrayType of the elements.
 * array:     height rows of width elements, without gaps; may be NULL when either is below 1. It
 *            may not lie in the image's own pixels unless the size stays: these are given back
 *            before it is read.
 * width:     columns. Below 1 gives an image of 0 x 0.
 * height:    rows. Below 1 gives an image of 0 x 0.
 * Failures: -3009 for array; -200; -301 for another image type; -304 when both sizes are below 1;
 * -101. */
int32_t ZEL_ArrayToImage(ImageRef image, int32_t arrayType, const void* array, int32_t width,
                         int32_t height);

/* Fills an image with a value.
 * image:            of any type but IMAGE_OPAQUE.
 * mask:             only pixels that it selects are filled. Without a mask (0 or the image) the
 *                   fill is one of memory, not of the image: for IMAGE_U8 the first
 *                   (height + 2 border) x (width + 2 border) bytes of the pixel block, whatever the
 *                   row pitch, so that the last rows of an image can keep their pixels; for the
 *                   other types width + 2 border pixels from the start of each line, so that the
 *                   last columns can. Borders are filled that way too. To fill exactly the pixels,
 *                   pass a mask.
 * value:            for the scalar types; the integer ones take the low bits of it, truncated.
 * rgbValue:         for IMAGE_RGB, all four bytes.
 * complexReal:      for IMAGE_COMPLEX.
 * complexImaginary: for IMAGE_COMPLEX.
 * Failures: -200 for image; -301 for IMAGE_OPAQUE; -200 for mask; -301 for a mask that is not
 * IMAGE_U8. */
int32_t ZEL_FillImage(ImageRef image, ImageRef mask, float value, uint32_t rgbValue,
                      float complexReal, float complexImaginary);

/* Sets all pixels of an image to 0, border and padding included.
 * image: of any type but IMAGE_OPAQUE.
 * Failures: -200; -300 for IMAGE_OPAQUE. */
int32_t ZEL_ClearPixels(ImageRef image);

/* Joins two fields into a frame, or splits a frame.
 *
 * Joined, the first field's rows become the even rows of the frame, from row 0, the second one's
 * the odd rows. The frame gets the smaller of the fields' widths and twice the smaller of their
 * heights. Split, each field gets the frame's width and half its height, and a last odd row is
 * dropped.
 * frame:       of any type but IMAGE_OPAQUE. The source of a split, which stays as it is unless it
 *              is one of the fields, the destination of a join.
 * firstField:  an image of the frame's type, also the frame itself. 0: the second field serves for
 *              both in a join, and is the only one written in a split. With both 0 nothing is done.
 * secondField: likewise. A field given twice holds the odd rows after a split.
 * mode:        an InterlaceMode.
 * Failures: -200; -304 for a field of another type than the frame's; -301 for IMAGE_OPAQUE; -101
 * no memory. -102 no memory and -1001 no reference is left, both for a copy of a field that is the
 * frame of a join. All leave everything as it was. */
int32_t ZEL_Interlace(ImageRef frame, ImageRef firstField, ImageRef secondField, int32_t mode);

#pragma GCC visibility pop
#ifdef __cplusplus
}
#endif

#endif
