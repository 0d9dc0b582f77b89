/* Shapes: distance maps, circles, skeletons, zones, touching particles. The rules that hold for all
 * functions are told in orlune_ptk.h, those of particles in particles.h. */
#ifndef ORLUNE_PTK_SHAPES_H
#define ORLUNE_PTK_SHAPES_H

#include "morphology.h"
#include "types.h"

#ifdef __cplusplus
extern "C" {
#endif
#pragma GCC visibility push(default)

/* Gives each pixel that is not 0 its distance from the next one that is 0, cut to a whole number.
 * Distances spread from row to row and from pixel to pixel, down the image and up again, as columns
 * and rows of a byte each: where the nearest pixel of 0 cannot be reached that way, a distance can
 * be too long. Of a distance above 255 the low 8 bits are kept; without any pixel of 0, or in an
 * image of one row, all pixels that are not 0 are far away, which reads 104. dest takes the
 * source's size, but not its calibration and offset.
 * source: IMAGE_U8.
 * dest:   IMAGE_U8; 0 or the source: the source receives the distances.
 * Failures: -200 for source; -301 for another source type; -200 for dest; -301 for another dest
 * type; -101 no memory: all these change nothing. */
int32_t ZEL_Danielsson(ImageRef source, ImageRef dest);

/* Gives each pixel the number of erosions that it takes part in: 1 if the first one clears it, 255
 * if it survives 254 or more. Beyond the image its edge pixels continue. A 3 x 3 element without
 * its centre can set pixels: the count ends when no pixel is left at or behind the first one that
 * was left before, and where erosions would go on for ever, what they leave holds 255.
 * source:  IMAGE_U8, with a border of at least half the element's longer side less one.
 * dest:    IMAGE_U8; 0 or the source: the source receives the numbers. Its border is 0 afterwards,
 *          unless the source is only copied.
 * element: what erosions look at, as in ZEL_Morphology. One with fewer than 3 members copies the
 *          source, where both borders have the same width with the border.
 * Failures: -3009 for element, and for its elements if there are 3 positions or more; -200 for
 * source; -301 for another source type; -309; -200 for dest; -304 for another dest type; -101 no
 * memory: all these change nothing, but for -101 when dest cannot have the source's size or
 * attachments: by then it can have size, calibration and offset, and be a copy. */
int32_t ZEL_Distance(ImageRef source, ImageRef dest, const StructuringElement* element);

/* What ZEL_Circles tells of a circle. */
typedef struct CircleReport {
  int32_t x; /* centre: the mean of the pixels of a maximum of the distance map, cut */
  int32_t y;
  int32_t radius;   /* the distance there; negative if the circle is not in the range */
  int32_t nbPixels; /* pixels of the maximum */
} CircleReport;

/* Finds round particles by the maxima of their distance map (see ZEL_Danielsson): sets of connected
 * pixels that nothing within two rows and columns exceeds, and that touch no pixel of the same
 * distance that is exceeded. The two outermost rows and columns have none. dest shows the number of
 * the circle in the pixels of each maximum that is in the range, limited to 255 (numbers above
 * 32767 as 0), and 255 along a polygon for the circle itself.
 * source:    IMAGE_U8.
 * dest:      IMAGE_U8; 0 or the source: the source receives the circles.
 * minRadius: least radius in the range, in units of the calibration: the mean of the steps, or 1
 *            where that is 0.
 * maxRadius: largest radius in the range. A limit that is NaN excludes all circles.
 * reports:   address of a result table, which holds all circles, also those out of the range. When
 *            there is no memory for the table itself, the caller's former block is released and the
 *            variable is NULL; other failures leave it.
 * nbCircles: NULL, or receives the number of circles, 0 after a failure other than -3009.
 * Failures: -3009 for reports; -200 for source; -301 for another source type; -200 for dest; -301
 * for another dest type: all these change nothing. -101 no memory, or too many maxima, as for
 * ZEL_Label: by then dest has the source's size, calibration and offset. */
int32_t ZEL_Circles(ImageRef source, ImageRef dest, float minRadius, float maxRadius,
                    CircleReport** reports, int32_t* nbCircles);

/* What ZEL_Skeleton makes of particles. */
typedef enum SkeletonType {
  SKELETON_SET_A = 0, /* lines with their branches */
  SKELETON_SET_B = 1, /* with more of the branches */
  SKELETON_INFLUENCE_ZONES =
      2 /* lines between particles, around the zone that is nearest to each */
} SkeletonType;

/* Thins particles to lines of one pixel: 1 in the result, and 0 elsewhere. In a round each of eight
 * passes takes away pixels on one side. There are three rounds more than particles are deep: a
 * pixel's depth is one more than the least of the four neighbours before it in raster order, and
 * 255 at most. Outside the image all is 0.
 * source:       IMAGE_U8, with a border of at least 1. The border is 0 afterwards, unless the
 *               source is only copied.
 * dest:         IMAGE_U8; 0 or the source: the source receives the skeletons.
 * skeletonType: a SkeletonType. Any other number copies the source, where both borders have the
 *               same width with the border.
 * Failures: -200 for source; -301 for another source type; -309; -200 for dest; -301 for another
 * dest type: all these change nothing. Then the border is cleared. -101 no memory: pixels are
 * unchanged, but for -101 when dest cannot have the source's size or attachments: by then it can
 * have size, calibration and offset, and be a copy. */
int32_t ZEL_Skeleton(ImageRef source, ImageRef dest, int32_t skeletonType);

/* Grows labels over the background, by a pixel in each pass, until they meet. A pixel of 0 takes
 * the first label among its eight neighbours in raster order. On the left and right edge of the
 * image, neighbours beyond are the pixels beside the edge, above and below those of the edge.
 * source: IMAGE_U8 or IMAGE_I16, labelled, with a border of at least 1, which is filled with the
 *         image's edge pixels.
 * dest:   an image of source's type; 0 or the source: the labels grow in the source. Its border is
 *         a copy of the source's where both have the same width.
 * Failures: -200 for source; -301 for another source type; -309; -200 for dest; -304 for another
 * dest type: all these change nothing. -101 no memory: dest can have the source's size and pixels,
 * and the border is filled. */
int32_t ZEL_Segmentation(ImageRef source, ImageRef dest);

/* Cuts particles that touch. What erosions leave of them is labelled, corner to corner, and grows
 * back as in ZEL_Segmentation; a pixel is cleared where a member of the element around it has a
 * higher label than itself. All others keep their values.
 * source:     IMAGE_U8, with a border of at least 2 and of half the element's longer side less one.
 *             The border is filled with the image's edge pixels if the element has 3 positions or
 *             more.
 * dest:       IMAGE_U8; 0 or the source: the source receives the result.
 * nbErosions: how many times the particles are eroded; below 1 it is 1.
 * element:    what erosions look at, as in ZEL_Morphology. One with fewer than 3 positions cuts
 *             nothing.
 * Failures: -3009 for element, and for its elements if there are 3 positions or more; -200 for
 * source or dest; -301 for another source type; -309 for the border that the element needs: all
 * these change nothing. Then the border is filled. -309 for a border below 2; -101 no memory, or
 * too many particles, as for ZEL_Label; -304 for another dest type: pixels are unchanged, but for
 * -101 when dest cannot have the source's size or attachments: by then it can have size,
 * calibration and offset. */
int32_t ZEL_Separation(ImageRef source, ImageRef dest, int32_t nbErosions,
                       const StructuringElement* element);

#pragma GCC visibility pop
#ifdef __cplusplus
}
#endif

#endif
