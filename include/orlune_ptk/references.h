/* Regions tied to parts that move in an image: a part's place and angle, how far it has turned,
 * regions carried along with it, and the pixels along a region's outline. The rules that hold for
 * all functions are told in orlune_ptk.h. */
#ifndef ORLUNE_PTK_REFERENCES_H
#define ORLUNE_PTK_REFERENCES_H

#include "regions.h"
#include "types.h"

#ifdef __cplusplus
extern "C" {
#endif
#pragma GCC visibility push(default)

/* Derives an origin and an angle from two or three points of a part. With two points the origin is
 * the first. With three or more it is the foot of the perpendicular from the third to the line
 * through the first two, in whole pixels, cut toward zero; coordinates and their products of two
 * factors wrap at 32 bits there. The angle is that of the line through the first two points,
 * between -90 and 90 degrees; a line straight up or down has 90.
 * points:       in pixels; the first three count. NULL only with a count below 1.
 * count:        of points, at least 2.
 * origin:       receives the origin in pixels.
 * angleDegrees: receives the angle.
 * angleRadians: receives it in radians.
 * Failures: -3009 for points, origin, angleDegrees or angleRadians; -752 for a count below 2; -3006
 * for three points of which the first two are the same. */
int32_t ZEL_CoordinateReference(const PointInt* points, int32_t count, PointInt* origin,
                                float* angleDegrees, float* angleRadians);

/* Finds how far a part has turned from one image to another, from the pixels on a circle. Of each
 * image 360 / precision + 1 samples are taken at equal angles, clockwise from the right, each from
 * the pixel that holds the point, or the nearest in the image; the smallest is subtracted. The
 * rotation is the number of samples by which the reference has to be shifted to correlate best with
 * the test; the smaller one of equals.
 * reference:       IMAGE_U8, IMAGE_I16 or IMAGE_SGL.
 * test:            the same types, also another one than the reference.
 * testCentre:      centre of the circle in test, in pixels.
 * referenceCentre: centre of the circle in reference, in pixels.
 * radius:          of the circle in pixels. Each centre lies at least so far from the sides of its
 *                  image, 0 and its width or height.
 * precision:       degrees from one sample to the next, at least 1; above 360 there is one sample.
 * angleRadians:    receives the rotation, from 0 to less than a full turn.
 * angleDegrees:    receives it in degrees.
 * Failures: -3009 for angleRadians or angleDegrees; -200; -301 for another type; -2314 for a circle
 * that does not fit, a centre that is no number, or an image without pixels; -503 for a precision
 * below 1. */
int32_t ZEL_DetectRotation(ImageRef reference, ImageRef test, PointFloat testCentre,
                           PointFloat referenceCentre, int32_t radius, int32_t precision,
                           double* angleRadians, double* angleDegrees);

/* Carries a region from one coordinate reference to another: it turns around the old origin by the
 * difference of the angles, and its origin goes to the new one. Coordinates are cut toward zero and
 * kept in 32 bits; one that is NaN or beyond 64 bits is 0 before the new origin is added.
 *
 * Without a turn (the angles are equal) points and rectangle are shifted, except pairs whose first
 * coordinate is negative, which stay. With one, a rectangle becomes a ROI_POLYGON of five points,
 * the last the same as the first. An oval, its outline as ZEL_DrawOval frames it, becomes a
 * ROI_POLYGON of the outline's pixels, clockwise from the top, or, in a region whose rectangle is
 * square, a ROI_OVAL in the rectangle around these. Both are taken point by point where they have
 * other than two points. The rectangle of the turned region goes from the least to the largest
 * coordinates, which are limited to 32767 for x and 322767 for y on one side and 0 on the other; it
 * ends at the last pixel, behind an oval one later. In the record that is made a negative x begins
 * a contour, so that a region should stay at coordinates from 0 on.
 * roi:      the region, with one contour at least.
 * oldX:     column of the origin that the region belongs to.
 * oldY:     row of that origin.
 * oldAngle: angle there, in degrees, as ZEL_CoordinateReference gives it.
 * newX:     column of the origin where it is to be.
 * newY:     row of that origin.
 * newAngle: angle there, in degrees.
 * result:   address of a pointer to a record or NULL, as told with RoiDescriptor; the record is
 *           replaced. Unchanged after a failure.
 * Failures: -3009 for result; -101 no memory for the call's own; -1200 for a roi of NULL or without
 * contour, and with a turn for a contour of a type below 0 or above 11, a first contour of a kind
 * that is no RoiContourKind, or a coordinate that is taken for a marker with nothing behind it;
 * -101 no memory, or an outline of more than 2^24 pixels. */
int32_t ZEL_TransformROI(const RoiDescriptor* roi, int32_t oldX, int32_t oldY, float oldAngle,
                         int32_t newX, int32_t newY, float newAngle, RoiDescriptor** result);

/* What ZEL_ROIProfile tells of a profile. All 0 without samples. */
typedef struct ProfileReport {
  int32_t startX,
      startY;         /* first point; of an oval its first corner; see ZEL_ROIProfile for chains */
  int32_t endX, endY; /* last point; of an oval its second corner as given */
  float minimum;      /* smallest sample; 1e38 where all are NaN or larger */
  float maximum;      /* largest sample; -1e38 where all are NaN or smaller */
  float mean;
  float deviation;     /* standard deviation; 0 where rounding would make its square negative */
  int32_t sampleCount; /* samples */
} ProfileReport;

/* Samples the pixels along the outline of a region's first contour, which is to be external.
 *
 * A line is clipped and walked as by ZEL_GetLine. A rectangle is walked clockwise from its upper
 * left corner, each side clipped by itself; one without width or height has no outline. An oval is
 * followed along the pixels that ZEL_DrawOval frames, clockwise from the leftmost one of the top
 * row; it has no samples where it is not wholly in the image, and one, its first corner, where it
 * is less than 2 pixels wide or high. Polygons and chains are walked from point to point, clipped,
 * each line without its last pixel, and without a line back to the first point; the report has the
 * ends of the last line as it was clipped, or as given where it lies outside.
 *
 * There are no samples for other types, for another number of points than a type has, for a hole,
 * or for what lies outside the image.
 * image:   IMAGE_U8, IMAGE_I16 or IMAGE_SGL. There are no samples of an unknown image or another
 *          type.
 * roi:     the region; there are no samples for NULL or one without contour.
 * samples: a result table: the pixels.
 * count:   NULL, or receives their number.
 * report:  NULL, or receives the statistics.
 * points:  a result table: where the samples lie, in their order.
 * Failures: -3009 for samples or points; -101. */
int32_t ZEL_ROIProfile(ImageRef image, const RoiDescriptor* roi, float** samples, int32_t* count,
                       ProfileReport* report, PointInt** points);

#pragma GCC visibility pop
#ifdef __cplusplus
}
#endif

#endif
