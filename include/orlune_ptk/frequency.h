/* Spectra: the Fourier transform of images and back, arithmetic and filters on complex images,
 * their planes, and their exchange with arrays. The rules that hold for all functions are told in
 * orlune_ptk.h.
 *
 * What holds for all of them:
 *
 * - A pixel of IMAGE_COMPLEX is a ComplexValue. Results are computed in 64-bit floats in the order
 *   in which they are written here, and rounded to 32 bits once, at the store.
 * - A spectrum lies as the transform gives it: the zero frequency at pixel (0, 0), low frequencies
 *   in the four corners, the highest ones in the middle. ZEL_ComplexFlipFrequency moves the zero
 *   frequency to the middle.
 * - To an integer a float is truncated. Where a text says that it is limited, it is so before that,
 *   and NaN counts as 0; else the low bits of the truncated value are kept.
 */
#ifndef ORLUNE_PTK_FREQUENCY_H
#define ORLUNE_PTK_FREQUENCY_H

#include "types.h"

#ifdef __cplusplus
extern "C" {
#endif
#pragma GCC visibility push(default)

/* A pixel of a complex image. */
typedef struct ComplexValue {
  float real, imaginary;
} ComplexValue;

/* What can be taken out of complex pixels. */
typedef enum ComplexPlane {
  COMPLEX_PLANE_REAL = 0,
  COMPLEX_PLANE_IMAGINARY = 1,
  COMPLEX_PLANE_MAGNITUDE = 2, /* sqrt(real * real + imaginary * imaginary) */
  COMPLEX_PLANE_PHASE = 3 /* in degrees, from -180 to 180: atan(imaginary / real) * 57.29577867;
                                  of a negative real part 180 more, or less where the imaginary part
                                  is negative too; of a real part below 1e-10 in size 90, or -90
                                  where the imaginary part is negative */
} ComplexPlane;

/* Which frequencies a filter keeps. */
typedef enum FrequencyFilter {
  FREQUENCY_KEEP_LOW = 0,
  FREQUENCY_KEEP_HIGH = 1 /* and any other number */
} FrequencyFilter;

/* Transforms an image to its spectrum, without any scaling: pixel (0, 0) is the sum of all pixels.
 * Rows are transformed first, then columns, by a transform of radix 2 whose numbers are rounded to
 * 32-bit floats after each stage.
 * source:      IMAGE_U8, IMAGE_I16, IMAGE_SGL or IMAGE_COMPLEX. Width and height are each one of
 *              16, 32, 64, 128, 256, 512, 1024, 2048, 4096, 8192, 16384.
 * destination: IMAGE_COMPLEX, another image than the source.
 * Failures: -200; -301 for another source type; -306 for another size; -202 for a destination of 0;
 * -200; -313 for the source as destination; -2003 for another destination type; -101: the
 * destination may have the source's calibration and size and part of the spectrum by then. */
int32_t ZEL_FFT(ImageRef source, ImageRef destination);

/* Transforms a spectrum back to an image. Values are divided by width * height. A real destination
 * receives magnitudes, so that negative values come back positive.
 * source:      IMAGE_COMPLEX. Width and height are each one of those that ZEL_FFT takes.
 * destination: another image than the source. IMAGE_U8: magnitudes limited to 255. IMAGE_I16:
 *              limited to 32767. IMAGE_SGL: magnitudes. IMAGE_COMPLEX: the values.
 * Failures: -200; -2003 for another source type; -306 for another size; -202 for a destination of
 * 0; -200; -313 for the source as destination; -301 for another destination type; -101: the
 * destination may have the source's calibration and size by then. */
int32_t ZEL_InverseFFT(ImageRef source, ImageRef destination);

/* Adds an image or a constant.
 * source:            IMAGE_COMPLEX.
 * operand:           an image of the source's size. IMAGE_U8, IMAGE_I16 or IMAGE_SGL: numbers,
 *                    added to the real part; the imaginary part is copied. IMAGE_COMPLEX: part by
 *                    part. 0: the constant is added.
 * destination:       IMAGE_COMPLEX. 0: the source. May be the operand.
 * constantReal:      its real part, used when operand is 0.
 * constantImaginary: its imaginary part. When both are 0, the destination takes size and
 *                    calibration, but NO pixel is written, even if it is another image.
 * Failures: -200 and -2003 for the source; -200, -305 for an operand of another type, -306 for one
 * of another size; -200 and -2003 for the destination; -101: the destination may have the source's
 * calibration. */
int32_t ZEL_ComplexAdd(ImageRef source, ImageRef operand, ImageRef destination, float constantReal,
                       float constantImaginary);

/* Subtracts an image or a constant.
 * source:            IMAGE_COMPLEX.
 * operand:           an image of the source's size. IMAGE_U8, IMAGE_I16 or IMAGE_SGL: numbers,
 *                    taken from the real part; the imaginary part is copied. IMAGE_COMPLEX: part by
 *                    part. 0: the constant is subtracted.
 * destination:       IMAGE_COMPLEX. 0: the source. May be the operand.
 * constantReal:      its real part, used when operand is 0.
 * constantImaginary: its imaginary part. When both are 0, the destination takes size and
 *                    calibration, but NO pixel is written, even if it is another image.
 * Failures: -200 and -2003 for the source; -200, -305 for an operand of another type, -306 for one
 * of another size; -200 and -2003 for the destination; -101: the destination may have the source's
 * calibration. */
int32_t ZEL_ComplexSubtract(ImageRef source, ImageRef operand, ImageRef destination,
                            float constantReal, float constantImaginary);

/* Multiplies by an image or a constant.
 * source:            IMAGE_COMPLEX.
 * operand:           an image of the source's size. IMAGE_U8, IMAGE_I16 or IMAGE_SGL: numbers, by
 *                    which both parts are multiplied. IMAGE_COMPLEX: the complex product. 0: by the
 *                    constant.
 * destination:       IMAGE_COMPLEX. 0: the source. May be the operand.
 * constantReal:      its real part, used when operand is 0.
 * constantImaginary: its imaginary part.
 * Failures: -200 and -2003 for the source; -200, -305 for an operand of another type, -306 for one
 * of another size; -200 and -2003 for the destination; -101: the destination may have the source's
 * calibration. */
int32_t ZEL_ComplexMultiply(ImageRef source, ImageRef operand, ImageRef destination,
                            float constantReal, float constantImaginary);

/* Divides by an image or a constant. A divisor of 0 leaves the source's pixel as it is.
 * source:            IMAGE_COMPLEX.
 * operand:           an image of the source's size. IMAGE_U8, IMAGE_I16 or IMAGE_SGL: numbers, by
 *                    which both parts are divided. IMAGE_COMPLEX: the product with the conjugate,
 *                    divided by the square of the magnitude. 0: by the constant.
 * destination:       IMAGE_COMPLEX. 0: the source. May be the operand.
 * constantReal:      its real part, used when operand is 0.
 * constantImaginary: its imaginary part. The square of a constant's magnitude is rounded to 32
 *                    bits.
 * Failures: -200 and -2003 for the source; -200, -305 for an operand of another type, -306 for one
 * of another size; -200 and -2003 for the destination; -101: the destination may have the source's
 * calibration. */
int32_t ZEL_ComplexDivide(ImageRef source, ImageRef operand, ImageRef destination,
                          float constantReal, float constantImaginary);

/* Changes the sign of the imaginary parts.
 * source:      IMAGE_COMPLEX.
 * destination: IMAGE_COMPLEX. 0 or the source: in place.
 * Failures: -200; -2003 for another source type; -200; -101: the destination may have the source's
 * calibration; -304 for another type of the destination, which is calibrated and 0 x 0 then; -300
 * for one made with a number outside ImageType, which is calibrated then. */
int32_t ZEL_ComplexConjugate(ImageRef source, ImageRef destination);

/* Exchanges the quadrants: top left with bottom right, top right with bottom left. The last column
 * of an odd width and the last row of an odd height stay. Called twice it gives the source again.
 * source:      IMAGE_SGL or IMAGE_COMPLEX.
 * destination: of the source's type. 0 or the source: in place.
 * Failures: -200; -301 for another source type; -200; -101: the destination may have the source's
 * calibration; -304 for another type of the destination, which is calibrated and 0 x 0 then; -300
 * for one made with a number outside ImageType, which is calibrated then. */
int32_t ZEL_ComplexFlipFrequency(ImageRef source, ImageRef destination);

/* Weights frequencies. With w2 = width / 2 and h2 = height / 2 (truncated):
 *   low frequencies are kept by  |y - h2| / (h2 * w2) * |x - w2|, which is 0 in the middle and 1 at
 *                                (0, 0);
 *   high ones by                 dy / (h2 * w2) * dx, where dx and dy are the distances from the
 *                                nearest edges, which is 0 at the edges.
 * Each step of this is rounded to 32 bits. Where a side is below 2, pixels are copied.
 * source:      IMAGE_SGL or IMAGE_COMPLEX.
 * destination: of the source's type. 0 or the source: in place.
 * mode:        a FrequencyFilter.
 * Failures: -200; -301 for another source type; -200; -101: the destination may have the source's
 * calibration; -304 for another type of the destination, which is calibrated and 0 x 0 then; -300
 * for one made with a number outside ImageType, which is calibrated then. */
int32_t ZEL_ComplexAttenuate(ImageRef source, ImageRef destination, int16_t mode);

/* Clears frequencies outside, or inside, a quarter of an ellipse in each corner. Its half axes are
 * a = width * percent * 0.005 and b = height * percent * 0.005, truncated; at the distance y from
 * the nearest horizontal edge it reaches x(y) = sqrt(a * a * (1 - y * y / (b * b))), truncated.
 *   FREQUENCY_KEEP_LOW:  in the first b rows and the last b rows the columns from x(y) to
 *                        width - x(y) - 1 are cleared, and all rows in between.
 *   FREQUENCY_KEEP_HIGH: in rows 0 to b, and as many at the bottom, the first x(y) + 1 columns and
 *                        the last x(y) + 1 are cleared. With b = 0 nothing is.
 * source:      IMAGE_SGL or IMAGE_COMPLEX.
 * destination: of the source's type. 0 or the source: in place.
 * mode:        a FrequencyFilter.
 * percent:     of the spectrum, limited to 0..100; NaN is 0.
 * Failures: -200; -301 for another source type; -200; -101: the destination may have the source's
 * calibration; -304 for another type of the destination, which is calibrated and 0 x 0 then; -300
 * for one made with a number outside ImageType, which is calibrated then. */
int32_t ZEL_ComplexTruncate(ImageRef source, ImageRef destination, int16_t mode, float percent);

/* Takes a plane out of a complex image.
 * source:      IMAGE_COMPLEX.
 * destination: IMAGE_U8: real and imaginary parts limited to 0..255, the magnitude limited to 255,
 *              the size of the phase without its sign. IMAGE_I16: the low 16 bits. IMAGE_SGL: the
 *              value. IMAGE_COMPLEX: the value as real part, with the imaginary part 0. 0 or the
 *              source: in place.
 * plane:       a ComplexPlane; limited to its numbers.
 * Failures: -200; -2003 for another source type; -200; -101: the destination may have the source's
 * calibration; -304 for another type of the destination, which is calibrated and 0 x 0 then; -300
 * for one made with a number outside ImageType, which is calibrated then. */
int32_t ZEL_ExtractComplexPlane(ImageRef source, ImageRef destination, int32_t plane);

/* Replaces the real or the imaginary parts of a complex image. The other part stays, where the
 * image already has the size of the plane; else it is 0.
 * source:      the plane: IMAGE_U8, IMAGE_I16 or IMAGE_SGL, or IMAGE_COMPLEX, whose real parts
 *              count.
 * destination: IMAGE_COMPLEX. 0: the source.
 * plane:       0: COMPLEX_PLANE_REAL. Any other number: COMPLEX_PLANE_IMAGINARY.
 * Failures: -200; -200 and -2003 for the destination; -304 for another source type; -101: the
 * destination may have the source's calibration. */
int32_t ZEL_ReplaceComplexPlane(ImageRef source, ImageRef destination, int32_t plane);

/* Resizes a complex image to an array and copies it. The calibration stays, and the border is not
 * written.
 * image:  IMAGE_COMPLEX.
 * array:  width x height values, row after row. May be NULL when one of the two is below 1.
 * width:  columns; below 1 the image becomes 0 x 0.
 * height: rows; below 1 the image becomes 0 x 0.
 * Failures: -3009 for array; -200; -301 for another image type; -101. */
int32_t ZEL_ArrayToComplexImage(ImageRef image, const ComplexValue* array, int32_t width,
                                int32_t height);

/* Resizes a complex image to an array, where its size is another one, and copies the array to one
 * part of the pixels. The other part stays, where the image already has the size; else it is 0.
 * image:  IMAGE_COMPLEX.
 * plane:  0: COMPLEX_PLANE_REAL. Any other number: COMPLEX_PLANE_IMAGINARY.
 * array:  width x height numbers, row after row. May be NULL when one of the two is below 1.
 * width:  columns; below 1 the image becomes 0 x 0.
 * height: rows; below 1 the image becomes 0 x 0.
 * Failures: -3009 for array; -200; -301 for another image type; -101. */
int32_t ZEL_ArrayToComplexPlane(ImageRef image, int32_t plane, const float* array, int32_t width,
                                int32_t height);

/* Copies a rectangle of a complex image into an array, row after row without gaps. A side of the
 * rectangle that does not lie within the image, both edges included, is that of the image: a
 * rectangle wholly outside gives all columns, or all rows. So the array must have room for the
 * whole image unless the rectangle is known to lie in it.
 * image:   IMAGE_COMPLEX.
 * top:     first row of the rectangle.
 * left:    first column.
 * height:  rows. What comes out below 0 is 0.
 * width:   columns. What comes out below 0 is 0.
 * array:   room for the values of the limited rectangle.
 * columns: NULL, or receives the columns of the limited rectangle, also where it has no rows.
 * rows:    NULL, or receives its rows, also where it has no columns.
 * Failures: -3009 for array; -200; -301 for another image type. */
int32_t ZEL_ComplexImageToArray(ImageRef image, int32_t top, int32_t left, int32_t height,
                                int32_t width, ComplexValue* array, int32_t* columns,
                                int32_t* rows);

/* Copies one plane of a rectangle of a complex image into an array, row after row without gaps. The
 * rectangle is limited as by ZEL_ComplexImageToArray: the array must have room for the whole image
 * unless the rectangle is known to lie in it.
 * image:   IMAGE_COMPLEX.
 * plane:   a ComplexPlane; limited to its numbers.
 * top:     first row of the rectangle.
 * left:    first column.
 * height:  rows. What comes out below 0 is 0.
 * width:   columns. What comes out below 0 is 0.
 * array:   room for the numbers of the limited rectangle.
 * columns: NULL, or receives the columns of the limited rectangle, also where it has no rows.
 * rows:    NULL, or receives its rows, also where it has no columns.
 * Failures: -3009 for array; -200; -301 for another image type. */
int32_t ZEL_ComplexPlaneToArray(ImageRef image, int32_t plane, int32_t top, int32_t left,
                                int32_t height, int32_t width, float* array, int32_t* columns,
                                int32_t* rows);

/* Returns the address of the complex number 1, which is the library's and stays as it is.
 * Failures: none. */
const ComplexValue* ZEL_GetCpxConstant1Ptr(void);

#pragma GCC visibility pop
#ifdef __cplusplus
}
#endif

#endif
