/* Convolution and correlation: sums of a pixel's neighbours, weighted by a matrix, and how alike
 * a template and the pixels under it are. The rules that hold for all functions are told in
 * orlune_ptk.h. */
#ifndef ORLUNE_PTK_CONVOLUTION_H
#define ORLUNE_PTK_CONVOLUTION_H

#include "types.h"

#ifdef __cplusplus
extern "C" {
#endif
#pragma GCC visibility push(default)

typedef struct ConvolutionMatrix {
  int32_t width;       /* columns */
  int32_t height;      /* rows */
  float* coefficients; /* width * height of them, row by row, the top row first */
  float divider;       /* of each sum. 0: the sum of the coefficients, or 1 where that is 0 */
} ConvolutionMatrix;

/* Families of standard matrices. */
typedef enum ConvolutionFamily {
  CONVOLUTION_GRADIENT = 0, /* slopes in eight directions; every second one adds the pixel itself */
  CONVOLUTION_LAPLACIAN = 1, /* what stands out from the neighbours */
  CONVOLUTION_SMOOTHING = 2, /* means of the neighbours */
  CONVOLUTION_GAUSSIAN = 3   /* ... with weights that fall with the distance */
} ConvolutionFamily;

/* How the source's border is filled before it is read. */
typedef enum ConvolutionBorder {
  BORDER_FILL_MIRROR = 0,    /* from the edge inwards; the pixel at the edge is there twice */
  BORDER_FILL_REPLICATE = 1, /* with the pixel at the edge */
  BORDER_FILL_ZERO = 2       /* with 0 */
} ConvolutionBorder;

/* Gives each pixel the sum of the pixels of its window times the matrix, divided by the matrix's
 * divider. The matrix is not turned: its first coefficient belongs to the window's upper left
 * pixel. The window's centre is at column (width - 1) / 2 and row (height - 1) / 2, cut to whole
 * numbers: the extra column of an even width lies on the right, the extra row of an even height
 * below.
 *
 * IMAGE_U8 and IMAGE_I16 with whole coefficients below 2^31 in size: the sum is a 32-bit integer
 * and wraps around beyond its range; the quotient is cut toward zero, then limited to the range of
 * the type. Where an IMAGE_U8 image is wider than 3, no mask is given, all coefficients are -128 to
 * 127 and the divider is 1, sums of the columns in whole groups of 4 wrap around at 16 bits with a
 * sign: they differ from those of the remaining columns where a sum is beyond -32768 to 32767. (On
 * processors other than x86-64 there are no such groups.)
 * Else products are added in the order of the matrix's rows as 64-bit floats, and the sum is
 * rounded to a 32-bit float and divided. For IMAGE_SGL the quotient is stored, for the others it is
 * cut and limited as above; NaN becomes 0.
 *
 * The source's border is filled first. In an image smaller than its border that is to be mirrored,
 * the pixels filled are not those next to the image. Under a mask, pixels that are not selected are
 * copies of the source's, and where source and destination have borders of the same width, the
 * border is one too. A result in place of the source or the mask is made in a new image that takes
 * its place: addresses of pixels are no longer valid then.
 * source:      IMAGE_U8, IMAGE_I16 or IMAGE_SGL, with a border of at least half of the matrix's
 *              longer side less 1, cut to a whole number. What an even side needs beyond that is
 *              taken to be filled alike.
 * mask:        an IMAGE_U8 image placed by its offset: pixels not selected are copied. 0 or source:
 *              all are computed.
 * dest:        an image of source's type. 0 replaces source. It may be the mask.
 * matrix:      its divider is replaced by the number that it stands for, once the images are
 *              settled. A matrix of fewer than 3 coefficients copies the source and stays as it is.
 *              Its coefficients may be NULL then; else that is -3009.
 * borderFill:  a ConvolutionBorder; any other number is BORDER_FILL_ZERO.
 * Failures: -3009; -200; -301 for another source type; -309 for a border that is too narrow. Then
 * the border is filled. -304 for another destination type; -301 for a mask that is not IMAGE_U8;
 * -101 no memory, with size, calibration and offset of dest, and the divider, changed by then. -102
 * no memory and -1001 no reference is left, both where source or mask are replaced, which stay as
 * they were. */
int32_t ZEL_Convolute(ImageRef source, ImageRef mask, ImageRef dest, ConvolutionMatrix* matrix,
                      int32_t borderFill);

/* Gives the address of a standard matrix. The matrices are the library's own, of this process, for
 * all callers: what a caller changes in them stays changed.
 *
 * Families have 32, 8, 8 and 6 matrices of 3x3; 16, 2, 2 and 1 of 5x5; 8, 2, 2 and 1 of 7x7.
 * Gradients come in pairs: the second one is the first with 1 in its centre. In 3x3 the slope of a
 * pair points 45 degrees further to the left than that of the pair before, beginning with slopes
 * that rise to the right, first with equal weights, from index 16 on with double ones on the axis;
 * in 5x5 likewise, in 7x7 by 90 degrees. Two oddities are kept, as pictures made with them have
 * them: the gradient of 7x7 at index 3 has -1 for 1 at the left of its second row, and the last
 * smoothing matrix of 3x3 has a divider of 13 with a sum of 33.
 * family:  a ConvolutionFamily. Below 0 it is 0, above 3 it is 3.
 * size:    above 6: 7x7; 5 and 6: 5x5; any other number: 3x3.
 * index:   below 0 it is 0; beyond the last matrix it is that one.
 * Failures: none. */
ConvolutionMatrix* ZEL_GetConvolutionMatrix(int32_t family, int32_t size, int32_t index);

/* Marks where a template is found: each pixel becomes 255 times the correlation of the template
 * with the pixels under it, that is C / (sqrt(E) T), cut toward zero. C is the sum of products of
 * pixels and template, E the sum of the pixels' squares, T the root of the sum of the template's
 * squares; a perfect match gives 255, or 254 by rounding. Pixels outside the image count as 0.
 * Pixels outside the rectangle become 0, and dest's border too. All is 0 where the rectangle has no
 * pixel but 0.
 *
 * The template's upper left pixel lies at (x - width / 2, y - height / 2), cut to whole numbers,
 * for the result at (x, y). With a template whose width is a multiple of 4 that holds for the
 * columns beyond the last whole group of 4 of the rectangle only; for the others, if there are any,
 * it lies at (x - (width - 1) / 2, y - (height - 1) / 2), and E and C are 32-bit integers that wrap
 * around. (On processors other than x86-64 there are no such groups.)
 * source:         IMAGE_U8. No border is needed.
 * templateImage:  IMAGE_U8, of any size. It may be dest.
 * dest:           an IMAGE_U8 image. 0 replaces source: a new image takes its place, and addresses
 *                 of pixels are no longer valid then.
 * rect:           what is computed. It is limited to the image: a left or top side beyond the last
 *                 pixel lies on it, and so does a right or lower side beyond the image, which is
 *                 one pixel less than one that ends with the image. Negative sides are 0.
 * Failures: -200; -301 for a source or template that is not IMAGE_U8; -101 no memory; -304 for
 * another destination type. -101 no memory, with dest resized and cleared by then. -102 no memory
 * and -1001 no reference is left, both where source is replaced, which stays as it was. */
int32_t ZEL_Correlate(ImageRef source, ImageRef templateImage, ImageRef dest, ApiRect rect);

#pragma GCC visibility pop
#ifdef __cplusplus
}
#endif

#endif
