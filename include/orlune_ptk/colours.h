/* Colour images: planes in RGB, HSL and HSV, single pixels, lines and arrays, conversion of
 * colours, histogram, threshold, lookup and equalisation. The rules that hold for all functions are
 * told in orlune_ptk.h.
 *
 * What holds for all of them:
 *
 * - Components are bytes. Hue is a circle of 256 steps with red at 0, green at 85 and blue at 170;
 *   a gray has hue 0 and saturation 0. The saturation is the same number in HSL and HSV. Results
 *   are exact integers; the way from a colour to HSL or HSV and back may change a byte by some
 *   steps.
 * - Inside a function that changes some components, the others keep 16 bits on their way, where it
 *   doesn't say that they go through bytes.
 * - The fourth byte of a pixel stays with it, and is 0 in pixels that are built from planes or
 *   arrays of components alone.
 */
#ifndef ORLUNE_PTK_COLOURS_H
#define ORLUNE_PTK_COLOURS_H

#include "types.h"

#ifdef __cplusplus
extern "C" {
#endif
#pragma GCC visibility push(default)

/* What the three planes of a colour are. */
typedef enum ColorMode {
  MODE_RGB = 0, /* red, green, blue */
  MODE_HSL = 1, /* hue, saturation, lightness */
  MODE_HSV = 2  /* hue, saturation, value */
} ColorMode;

/* What ZEL_ColorHistogram tells of a plane. All 0 when no pixel was counted. */
typedef struct ColorHistogramReport {
  float min;    /* lowest level that occurs */
  float max;    /* highest one */
  float start;  /* of the first class: 0 */
  float width;  /* levels in a class: 256 / classes */
  float mean;   /* of the counted pixels */
  float stdDev; /* standard deviation */
  int32_t area; /* counted pixels */
} ColorHistogramReport;

/* Takes planes out of a colour image. Each plane becomes as large as the image and takes its
 * calibration.
 * image:  IMAGE_RGB.
 * plane1: IMAGE_U8; receives red or hue. 0: not wanted.
 * plane2: IMAGE_U8; receives green or saturation. 0: not wanted.
 * plane3: IMAGE_U8; receives blue, lightness or value. 0: not wanted.
 * mode:   a ColorMode. Any other number is MODE_HSV, but writes no pixels where plane1 alone is
 *         wanted.
 * Failures: -200; -301 for another image type; then for each plane in turn -200, -101, -301 for
 * another type (its calibration has been taken already), -101; -313 for one image as two planes.
 * Planes before the failing one have been calibrated and resized, with -313 all of them. */
int32_t ZEL_ExtractColorPlanes(ImageRef image, ImageRef plane1, ImageRef plane2, ImageRef plane3,
                               int32_t mode);

/* Puts planes into a colour image: all three make up the pixels; one or two take the place of these
 * components of the source's pixels. With no plane at all nothing is done.
 * source:      IMAGE_RGB. 0: the destination. With three planes only its calibration counts.
 * destination: IMAGE_RGB. 0: the source, whose pixels are replaced.
 * plane1:      IMAGE_U8; red or hue. 0: kept. One image may be several planes.
 * plane2:      IMAGE_U8; green or saturation. 0: kept.
 * plane3:      IMAGE_U8; blue, lightness or value. 0: kept.
 * mode:        a ColorMode. Any other number writes no pixels.
 * Failures: -200, also for a source and a destination of 0; -101. With three planes: -200; -306 for
 * planes of different sizes; -301 for another type of a plane. With fewer: -301 for another source
 * type; for each plane in turn -200, -301, and -306 for another size than the source's. Then -200
 * and -301 for the destination; -101. Where both source and destination are given, the destination
 * has taken the source's calibration, unless the failure is the one of the references of these two.
 */
int32_t ZEL_ReplaceColorPlanes(ImageRef source, ImageRef destination, ImageRef plane1,
                               ImageRef plane2, ImageRef plane3, int32_t mode);

/* Reads a pixel. Coordinates outside the image are those of the nearest pixel.
 * image: IMAGE_RGB. Of another type, and of 0 x 0, nothing is read.
 * x:     column.
 * y:     row.
 * value: receives the pixel with its fourth byte.
 * Failures: -3009 for value; -200. */
int32_t ZEL_GetColorPixel(ImageRef image, int32_t x, int32_t y, RGBValue* value);

/* Writes a pixel. Outside the image nothing is done.
 * image: IMAGE_RGB. In another type nothing is done.
 * x:     column.
 * y:     row.
 * value: all four bytes are written.
 * Failures: -200. */
int32_t ZEL_SetColorPixel(ImageRef image, int32_t x, int32_t y, RGBValue value);

/* Reads the pixels of a straight line, clipped and walked as by ZEL_GetLine.
 * image: IMAGE_RGB. Of another type nothing is read; the points are counted.
 * x1:    column of the first point.
 * y1:    row of the first point.
 * x2:    column of the last point.
 * y2:    row of the last point.
 * array: room for as many pixels as the line has points inside the image: at most the larger of its
 *        extents in x and y, plus 1.
 * count: NULL, or receives the number of points; 0 when the line misses the image.
 * Failures: -3009 for array; -200. */
int32_t ZEL_GetColorLine(ImageRef image, int32_t x1, int32_t y1, int32_t x2, int32_t y2,
                         RGBValue* array, int32_t* count);

/* Writes the pixels of a straight line, clipped and walked as by ZEL_GetLine. Pixels beyond a short
 * array stay.
 * image:  IMAGE_RGB. In another type nothing is written.
 * x1:     column of the first point.
 * y1:     row of the first point.
 * x2:     column of the last point.
 * y2:     row of the last point.
 * array:  length pixels, the first for the first point inside the image. May be NULL when length is
 *         below 1.
 * length: pixels; below 1 nothing is written.
 * Failures: -3009 for array; -200. */
int32_t ZEL_SetColorLine(ImageRef image, int32_t x1, int32_t y1, int32_t x2, int32_t y2,
                         const RGBValue* array, int32_t length);

/* Copies a rectangle of a colour image into an array, row after row without gaps.
 * image:   IMAGE_RGB.
 * top:     first row of the rectangle, which is limited to the image.
 * left:    first column.
 * height:  rows. A negative height reaches to the other side of top.
 * width:   columns. A negative width reaches to the other side of left.
 * array:   room for the pixels of the limited rectangle.
 * columns: NULL, or receives the columns of the limited rectangle, also where it has no rows.
 * rows:    NULL, or receives its rows, also where it has no columns.
 * Failures: -3009 for array; -200; -301 for another image type. */
int32_t ZEL_ColorImageToArray(ImageRef image, int32_t top, int32_t left, int32_t height,
                              int32_t width, RGBValue* array, int32_t* columns, int32_t* rows);

/* Resizes a colour image to an array and copies it. The calibration stays, and the border is not
 * written.
 * image:  IMAGE_RGB.
 * array:  width x height pixels, row after row. May be NULL when one of the two is below 1.
 * width:  columns; below 1 the image becomes 0 x 0.
 * height: rows; below 1 the image becomes 0 x 0.
 * Failures: -3009 for array; -200; -301 for another image type; -101. */
int32_t ZEL_ArrayToColorImage(ImageRef image, const RGBValue* array, int32_t width, int32_t height);

/* Converts one colour. Equal modes copy, also where the number is no mode. From HSL to HSV and back
 * only the third component changes.
 * fromMode: a ColorMode. From another number to MODE_RGB nothing is written.
 * c1:       red or hue, of which the low 8 bits count.
 * c2:       green or saturation.
 * c3:       blue, lightness or value.
 * toMode:   a ColorMode. From MODE_RGB any other number is MODE_HSV.
 * out1:     NULL, or receives red or hue.
 * out2:     NULL, or receives green or saturation.
 * out3:     NULL, or receives blue, lightness or value.
 * Failures: none; returns 0. */
int32_t ZEL_ColorConversion(int32_t fromMode, int32_t c1, int32_t c2, int32_t c3, int32_t toMode,
                            uint8_t* out1, uint8_t* out2, uint8_t* out3);

/* Makes pixels of arrays of components.
 * plane1:      count elements: red or hue. Of each the low 8 bits count, truncated.
 * plane2:      count elements: green or saturation.
 * plane3:      count elements: blue, lightness or value.
 * count:       elements; below 1 nothing is done.
 * mode:        a ColorMode. For any other number nothing is done.
 * elementType: the ArrayType of the planes. For an unknown one nothing is done.
 * values:      receives count pixels. NULL: nothing is done.
 * Failures: -102 for a plane that is NULL. */
int32_t ZEL_ColorToInteger(const void* plane1, const void* plane2, const void* plane3,
                           int32_t count, int32_t mode, int32_t elementType, RGBValue* values);

/* Takes the components of pixels apart into arrays.
 * values:      count pixels. Planes of 32-bit elements may lie in their place.
 * count:       elements; below 1 nothing is done.
 * mode:        a ColorMode. Any other number is MODE_HSV.
 * elementType: the ArrayType of the planes. For an unknown one nothing is done.
 * plane1:      NULL, or receives count elements of 0..255: red or hue.
 * plane2:      NULL, or receives green or saturation.
 * plane3:      NULL, or receives blue, lightness or value.
 * Failures: -102 for values NULL, if count is not 0. */
int32_t ZEL_IntegerToColor(const RGBValue* values, int32_t count, int32_t mode, int32_t elementType,
                           void* plane1, void* plane2, void* plane3);

/* Counts the levels of the three planes of a colour image.
 * image:      IMAGE_RGB.
 * mask:       IMAGE_U8: only pixels that it selects are counted. An image of another type, the
 *             image itself too, selects none. 0: all pixels.
 * classes:    of each histogram, limited to 1..256. Level l goes to class l / (256 / classes), both
 *             divisions in 32-bit floats, truncated.
 * mode:       a ColorMode. With any other number pixels are counted in area only.
 * histogram1: NULL, or receives as many counters as there are classes: red or hue.
 * histogram2: NULL, or ...: green or saturation.
 * histogram3: NULL, or ...: blue, lightness or value.
 * report1:    NULL, or receives the report of red or hue.
 * report2:    NULL, or ... of green or saturation.
 * report3:    NULL, or ... of blue, lightness or value.
 * Failures: -200; -301 for another image type; -200 for mask; -101. */
int32_t ZEL_ColorHistogram(ImageRef image, ImageRef mask, int32_t classes, int32_t mode,
                           uint32_t* histogram1, uint32_t* histogram2, uint32_t* histogram3,
                           ColorHistogramReport* report1, ColorHistogramReport* report2,
                           ColorHistogramReport* report3);

/* Marks the pixels whose components all lie in their ranges, both ends included: they become
 * replaceValue, all others 0. A range with low above high has no pixels; but for hue it is what
 * lies outside both ends, without these: 240 and 15 take the hues 0 to 14 and 241 to 255. Where all
 * three ranges are whole, the destination takes size and calibration and no pixel is written.
 * source:       IMAGE_RGB.
 * destination:  IMAGE_U8; 0 is no image here.
 * mode:         a ColorMode. With any other number no pixel is written.
 * replaceValue: limited to 0..255.
 * low1:         least red or hue. All ends are limited to 0..255.
 * high1:        largest red or hue.
 * low2:         least green or saturation.
 * high2:        largest green or saturation.
 * low3:         least blue, lightness or value.
 * high3:        largest blue, lightness or value.
 * Failures: -200 and -301 for the source; -200 and -301 for the destination; -101: the destination
 * may have the source's calibration. */
int32_t ZEL_ColorThreshold(ImageRef source, ImageRef destination, int32_t mode,
                           int32_t replaceValue, int32_t low1, int32_t high1, int32_t low2,
                           int32_t high2, int32_t low3, int32_t high3);

/* Maps the components of every pixel through tables. In the hue modes all three go through bytes,
 * also those without a table, so that such pixels may change by some steps. With a mask, and with
 * no table at all, the destination first becomes a copy of the source's pixels, and with them of a
 * border of the same width as its own.
 * source:      IMAGE_RGB.
 * mask:        IMAGE_U8: only pixels that it selects are mapped; the others take the source's
 *              value. 0: all pixels.
 * destination: IMAGE_RGB. 0 or the source: in place.
 * mode:        a ColorMode. With any other number no pixel is mapped.
 * elementType: the ArrayType of the tables; tables of an unknown type map nothing.
 * table1:      256 entries for red or hue, of which the low 8 bits count, truncated. NULL: red
 *              stays, or the hue goes through its byte.
 * table2:      256 entries for green or saturation, or NULL.
 * table3:      256 entries for blue, lightness or value, or NULL.
 * Failures: -200 and -301 for the source; -200 and -301 for the destination; -200 and -301 for the
 * mask, also for the source as mask; -101: the destination may have the source's calibration. */
int32_t ZEL_ColorUserLookup(ImageRef source, ImageRef mask, ImageRef destination, int32_t mode,
                            int32_t elementType, const void* table1, const void* table2,
                            const void* table3);

/* Equalises a colour image: its lightness, or red, green and blue, by ZEL_ExtractColorPlanes,
 * ZEL_Histogram, ZEL_Equalize and ZEL_ReplaceColorPlanes. Each plane is put beside the source's
 * other planes: in a destination that is not the source, only the last one, blue, is equalised.
 * Returns 0 always: a step that fails ends the call and is told by ZEL_GetLastError under its own
 * name; what the steps before have done stays.
 * source:      IMAGE_RGB.
 * destination: IMAGE_RGB. 0 or the source: in place.
 * allPlanes:   0: lightness. Any other number: red, green and blue.
 * Failures: none of its own. */
int32_t ZEL_ColorEqualize(ImageRef source, ImageRef destination, int32_t allPlanes);

#pragma GCC visibility pop
#ifdef __cplusplus
}
#endif

#endif
