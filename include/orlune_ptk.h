/* orlune_ptk: machine vision and image processing with a plain C interface.
 *
 * This header includes all others; each of them holds one family of functions with the records,
 * enumerations and constants that these need, and can be included alone:
 *
 *   types.h       image references, pixel types, rectangles
 *   errors.h      failure numbers, and how failures are reported
 *   memory.h      the heap of blocks that go from the library to the caller and back
 *   images.h      making, sizing, describing and disposing of images
 *   pixels.h      single pixels, rows, columns, lines, whole arrays, fills, fields
 *   copying.h     images copied, blown up, thinned out, pasted, resampled
 *   drawing.h     lines, rectangles and ovals drawn into images
 *   operators.h   two images, or an image and a constant, pixel by pixel
 *   casts.h       from one pixel type to another
 *   thresholds.h  ranges of gray levels, given or found
 *   lookups.h     gray levels through tables and laws
 *   convolution.h a pixel's neighbours, weighted by a matrix; templates found
 *   filters.h     a pixel and its neighbours: edges, smoothing, ranks
 *   geometry.h    images turned, shifted, mirrored, transposed, seen in relief
 *   morphology.h  shapes and gray levels changed by structuring elements
 *   colours.h     colour images: planes, pixels, conversion, histogram, threshold, lookup
 *   frequency.h   the Fourier transform; spectra combined, filtered, taken apart
 *   statistics.h  histograms, regions, centroids, profiles
 *   particles.h   connected pixels, numbered, measured, selected
 *   particle_filters.h  whole particles kept, removed, filled, enclosed
 *   shapes.h      distance maps, circles, skeletons, zones, touching particles
 *   files.h       picture files
 *   regions.h     regions of interest
 *   references.h  regions tied to parts that move: places, turns, profiles
 *   gauges.h      edges along paths, pairs of edges, distances along lines, peaks
 *   matching.h    particles of a wanted shape, measures of points
 *   barcodes.h    bar codes read
 *   dials.h       needle meters and seven-segment displays, calibrated and read
 *   windows.h     windows that show images
 *   window_tools.h  tools, events and regions of windows
 *   clipboard.h   images to the clipboard of the desktop and from it
 *
 * What holds for all functions
 *
 * Results. Unless a function says otherwise it returns 0 on success and a negative FailureNumber.
 * The number is also kept for ZEL_GetLastError and, unless ZEL_SetErrorMode chose silence, shown in
 * a message box ("Orlune Error"; on a machine without a desktop, standard error). With each
 * function stand all numbers that it can return, in the order of the tests where that matters. A
 * failing call leaves images and the caller's outputs as they were, unless the function tells what
 * it has changed by then.
 *
 * NULL. Where a text does not say what NULL means, it is -3009 and nothing else is done.
 *
 * Images. A caller holds an ImageRef from ZEL_Create until ZEL_Dispose; 0 is no image. Every image
 * has a type, a size that functions set as they need, and a border of extra pixels around it that
 * neighbourhood functions read. Rows start on 8-byte boundaries. An image of 0 x 0 pixels is an
 * ordinary image: where a text does not name it, it gives a result of 0 x 0 or nothing.
 *
 * Resizing moves no pixels: where a size really changes, all pixels of the image are undefined
 * until they are written, those of its border too; memory that the image did not have before reads
 * 0. The width of the border stays.
 *
 * Destinations. A destination of 0, or equal to the source, means that the result replaces the
 * source. Any other destination is resized to the source's size and takes its calibration and mask
 * offset; its border keeps its width and is not written, unless the function says otherwise.
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
 * A stack of 64 KB suffices. Large images are computed on several threads of the library's own.
 *
 * Floats. Results are the same bits on every processor, at every level and for any number of
 * threads where the caller's floats are rounded to nearest and keep their smallest numbers, as they
 * are when a program starts. In another environment (fesetround, flush to zero) what is computed
 * through floats is rounded that way: float images and reports, laws, equalisation, factors and
 * divisors that are no whole numbers. What counts, compares, sorts and calculates in integers is
 * the same even then, the classes of a histogram of integers among it. The sign and payload of a
 * NaN are not promised; where one appears is.
 *
 * The process. The message of a failure on standard error never ends the program, also when nobody
 * reads it any more (SIGPIPE). Unloading the library (dlclose) ends its threads and gives nothing
 * else back: ZEL_CloseSys comes before, and ZEL_free for all blocks that the caller still holds.
 */
#ifndef ORLUNE_PTK_H
#define ORLUNE_PTK_H

#include "orlune_ptk/barcodes.h"
#include "orlune_ptk/casts.h"
#include "orlune_ptk/clipboard.h"
#include "orlune_ptk/colours.h"
#include "orlune_ptk/convolution.h"
#include "orlune_ptk/copying.h"
#include "orlune_ptk/dials.h"
#include "orlune_ptk/drawing.h"
#include "orlune_ptk/errors.h"
#include "orlune_ptk/files.h"
#include "orlune_ptk/filters.h"
#include "orlune_ptk/frequency.h"
#include "orlune_ptk/gauges.h"
#include "orlune_ptk/geometry.h"
#include "orlune_ptk/images.h"
#include "orlune_ptk/lookups.h"
#include "orlune_ptk/matching.h"
#include "orlune_ptk/memory.h"
#include "orlune_ptk/morphology.h"
#include "orlune_ptk/operators.h"
#include "orlune_ptk/particle_filters.h"
#include "orlune_ptk/particles.h"
#include "orlune_ptk/pixels.h"
#include "orlune_ptk/references.h"
#include "orlune_ptk/regions.h"
#include "orlune_ptk/shapes.h"
#include "orlune_ptk/statistics.h"
#include "orlune_ptk/thresholds.h"
#include "orlune_ptk/types.h"
#include "orlune_ptk/window_tools.h"
#include "orlune_ptk/windows.h"

#endif
