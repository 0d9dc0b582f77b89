/* Particle filters: whole particles kept, removed, filled and enclosed. The rules that hold for all
 * functions are told in orlune_ptk.h, those of particles in particles.h.
 *
 * Only the pixels of an image decide here: a particle does not go on in the border. */
#ifndef ORLUNE_PTK_PARTICLE_FILTERS_H
#define ORLUNE_PTK_PARTICLE_FILTERS_H

#include "morphology.h"
#include "particles.h"
#include "types.h"

#ifdef __cplusplus
extern "C" {
#endif
#pragma GCC visibility push(default)

/* Fills the holes of particles: background that is not connected with the image's edge. Background
 * is connected the other way: side by side only where particles are by their corners too, and the
 * reverse. A hole becomes 1; of every other pixel the lowest bit is kept, so that one with an even
 * value becomes 0.
 * source:        IMAGE_U8.
 * dest:          IMAGE_U8; 0 or the source: the source receives the result.
 * connectivity8: a Connectivity, of the particles.
 * Failures: -200 for source; -301 for another source type; -200 for dest; -304 for another dest
 * type; -101 no memory: all these change nothing, but for -101 when dest cannot have the source's
 * size or attachments: by then it can have size, calibration and offset. */
int32_t ZEL_FillHole(ImageRef source, ImageRef dest, uint16_t connectivity8);

/* Removes the particles that touch the image's edge; the others keep their values.
 * source:        IMAGE_U8. Its border is 0 afterwards.
 * dest:          IMAGE_U8; 0 or the source: the source receives the result.
 * connectivity8: a Connectivity.
 * Failures: -200 for source; -301 for another source type. Then the border is cleared. -200 for
 * dest; -304 for another dest type; -101 no memory: pixels are unchanged, but for -101 when dest
 * cannot have the source's size or attachments: by then it can have size, calibration and
 * offset. */
int32_t ZEL_RejectBorder(ImageRef source, ImageRef dest, uint16_t connectivity8);

/* Keeps large particles, or small ones: those of which erosions leave something, or nothing. What
 * is kept has the source's shape and values.
 * source:        IMAGE_U8, with a border of at least half the element's longer side less one, and
 *                of at least 1. The border is 0 afterwards, unless the source is only copied.
 * dest:          IMAGE_U8; 0 or the source: the source receives the result.
 * connectivity8: a Connectivity.
 * removeLarge:   0 keeps the particles that survive the erosions, any other number those that do
 *                not.
 * nbErosions:    how many times the image is eroded; below 1 it is 1. Pixels beyond the image are
 *                those of its edge.
 * element:       what erosions look at. One with fewer than 3 members copies the source.
 * Failures: -3009 for element, and for its elements if there are 3 positions or more; -200 for
 * source; -301 for another source type; -309 for the border that the element needs; -200 for dest;
 * -304 for another dest type; -309 for a border of 0: all these change nothing. Then the border is
 * cleared. -101 no memory: pixels are unchanged, but for -101 when dest cannot have the source's
 * size or attachments: by then it can have size, calibration and offset, and be a copy. */
int32_t ZEL_LowHighPass(ImageRef source, ImageRef dest, uint16_t connectivity8,
                        uint16_t removeLarge, int32_t nbErosions,
                        const StructuringElement* element);

/* Selects the region around a pixel: all pixels that are connected with it and differ from it by no
 * more than a tolerance. They receive a value, all others 0.
 * source:        IMAGE_U8, IMAGE_I16 or IMAGE_SGL.
 * dest:          IMAGE_U8; 0 or the source: the source, which must be IMAGE_U8 then, is replaced,
 *                and addresses of its pixels are no longer valid.
 * x:             column of the pixel, limited to the image.
 * y:             row of the pixel, limited to the image.
 * tolerance:     the range is the pixel's value less and plus the tolerance, both included, in
 *                32-bit floats; for integers its ends are limited to those of the type and cut
 *                toward 0. Below 0, or NaN, nothing is selected; nor where the pixel is NaN.
 * connectivity8: a Connectivity.
 * replaceValue:  the value, cut toward zero with its low 8 bits kept. With 0 nothing is selected.
 * Failures: -200 for source; -301 for another source type; -200 for dest; -301 for another dest
 * type: all these change nothing. -101 no memory: dest can have the source's size, calibration and
 * offset, and a part of the region; a source that is to be replaced stays as it was, also with -102
 * no memory and -1001 no reference is left. */
int32_t ZEL_MagicWand(ImageRef source, ImageRef dest, int32_t x, int32_t y, float tolerance,
                      uint16_t connectivity8, float replaceValue);

/* Fills the convex hull of each label with the label. Labels follow each other in ascending order,
 * so that a later hull lies on top. An edge of a hull is the line of pixels between two of its
 * corners, drawn from the upper one, or along a row.
 * source: IMAGE_U8 or IMAGE_I16, labelled; pixels of IMAGE_I16 are read as numbers without sign.
 * dest:   an image of source's type; 0 or the source: the source receives the hulls.
 * Failures: -200 for source; -301 for another source type; -200 for dest; -304 for another dest
 * type; -101 no memory: all these change nothing, but for -101 when dest cannot have the source's
 * size or attachments: by then it can have size, calibration and offset. */
int32_t ZEL_Convex(ImageRef source, ImageRef dest);

#pragma GCC visibility pop
#ifdef __cplusplus
}
#endif

#endif
