/* Matching: particles of a wanted shape, and measures of lists of points. The rules that hold for
 * all functions are told in orlune_ptk.h, those of particles in particles.h. */
#ifndef ORLUNE_PTK_MATCHING_H
#define ORLUNE_PTK_MATCHING_H

#include "types.h"

#ifdef __cplusplus
extern "C" {
#endif
#pragma GCC visibility push(default)

/* What ZEL_ShapeMatch tells of a particle. */
typedef struct ShapeReport {
  ApiRect rect;    /* from the first to the last column and row: height and width are one less than
                      the pixels there, 0 for a single one; within 0..32767 */
  int32_t centreX; /* mean of the coordinates of the pixels, cut */
  int32_t centreY;
  int32_t area; /* pixels */
  float score;  /* 1000 for the very shape of the template, 1 at the tolerance */
} ShapeReport;

/* Finds the particles that have the shape of a template, wherever they lie and however they are
 * turned, by seven moment invariants: a particle matches if its invariants differ from those of the
 * template by at most tolerance times the length of these. Matches are numbered from 1 in the order
 * of the particles, and the result shows each one's number, and 0 elsewhere.
 * source:         IMAGE_U8 or IMAGE_I16. Its border is 0 afterwards.
 * templateImage:  IMAGE_U8. Its shape are the pixels of value 1 (a mask of 255 has none, and
 *                 matches nothing); its area for the test of size is the sum of all its pixels.
 *                 With a sum of 0 nothing matches, and the pixels of source and dest stay.
 * dest:           an image of source's type, which takes source's size, calibration and offset; 0
 *                 or the source: the source receives the result. It may be templateImage. In
 *                 IMAGE_U8 numbers go on from 255 to 0.
 * connectivity:   a Connectivity.
 * tolerance:      0 accepts equal invariants only, with a score of 1000; infinity everything. Below
 *                 0, or NaN, nothing matches.
 * scaleInvariant: 0: the area has to be within 10 percent of the template's as well.
 * matchCount:     NULL, or receives the number of matches, 0 after a failure other than -3009.
 * reports:        address of a result table. Rectangle, centre and area are those of all pixels
 *                 that show the report's number: with more than 255 matches in IMAGE_U8 the first
 *                 reports take in those of later ones, and reports without a pixel have area and
 *                 centre 0 and a rectangle of 32767 x 32767. The score is always the match's own.
 * Failures: -3009 for reports; -200 for source or templateImage; -301 for another source type;
 * -309: all these change nothing. Then the border of source is cleared. -101, also for too many
 * particles, as for ZEL_Label; -301 for another template type; -200 for dest; -304 for another dest
 * type; -101 no memory, when dest can have calibration, offset and attachments of source. */
int32_t ZEL_ShapeMatch(ImageRef source, ImageRef templateImage, ImageRef dest,
                       uint16_t connectivity, double tolerance, int32_t scaleInvariant,
                       int32_t* matchCount, ShapeReport** reports);

/* Fits a circle to points, by least squares. The centre is rounded to floats, and so are
 * coordinates less their mean: far from the origin, where neighbouring floats lie apart, digits are
 * lost.
 * points:    count points.
 * count:     at least 3.
 * centre:    receives the centre.
 * diameter:  receives twice the root of the mean squared distance from it.
 * area:      receives that circle's area.
 * perimeter: receives that circle's perimeter.
 * Failures: -3009 for any pointer; -503 for fewer than 3 points; -3010 for points on one line,
 * where that comes out exactly. */
int32_t ZEL_GetCircle(const PointFloat* points, int32_t count, PointFloat* centre, double* diameter,
                      double* area, double* perimeter);

/* Which angles ZEL_GetAngles measures. */
typedef enum AngleMode {
  /* Of 3 points: at the second one, between the directions to the others. Of more: between the line
   * from the first to the second of four points and that from the third to the fourth, and so on
   * for each four; what is left over is not used. */
  ANGLES_BETWEEN_LINES = 0,
  ANGLES_FROM_ORIGIN = 1 /* between the directions from origin to each point and the next one */
} AngleMode;

/* Measures angles between directions, from 0 to a half turn. All is computed in floats: products of
 * coordinates beyond some thousands lose digits. A direction without length gives NaN.
 * points:     count points.
 * count:      at least 3, or 2 with ANGLES_FROM_ORIGIN.
 * origin:     what directions start from with ANGLES_FROM_ORIGIN; else not looked at.
 * mode:       an AngleMode in the low 16 bits. With any other number there are as many angles as
 *             with ANGLES_BETWEEN_LINES, but they are left as the tables hold them, or 0.
 * radians:    address of a result table.
 * degrees:    address of a result table.
 * angleCount: NULL, or receives how many there are.
 * Failures: -3009 for points, radians or degrees; -752 for too few points; -101. */
int32_t ZEL_GetAngles(const PointFloat* points, int32_t count, PointFloat origin, int32_t mode,
                      float** radians, float** degrees, int32_t* angleCount);

/* Measures the distance from each point to the next one.
 * points:        count points.
 * count:         at least 2.
 * distances:     address of a result table.
 * distanceCount: NULL, or receives count - 1.
 * Failures: -3009 for points or distances; -752 for fewer than 2 points; -101. */
int32_t ZEL_PointDistances(const PointFloat* points, int32_t count, float** distances,
                           int32_t* distanceCount);

#pragma GCC visibility pop
#ifdef __cplusplus
}
#endif

#endif
