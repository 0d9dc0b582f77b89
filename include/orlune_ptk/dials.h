/* Gauges with a needle and displays of seven segments, calibrated once and then read. No function
 * here changes an image. The rules that hold for all functions are told in orlune_ptk.h. */
#ifndef ORLUNE_PTK_DIALS_H
#define ORLUNE_PTK_DIALS_H

#include "regions.h"
#include "types.h"

#ifdef __cplusplus
extern "C" {
#endif
#pragma GCC visibility push(default)

/* The coordinates of the base and of the points of an arc lie within this much of 0. */
#define METER_COORDINATE_LIMIT 1048576

/* Finds the base and the arc of a meter from the two extreme positions of its needle. The base is
 * where the lines cross. The arc is the part of the circle around it through the first line's start
 * that goes clockwise on the screen until it has the angle between the two starts; its points are
 * pixel positions in that order, the first one the nearest to the start.
 * roi:   two contours, the first of them a ROI_LINE. The first two points of each are a line:
 *        its start, which lies on the arc, and its end towards the base. The kinds of the contours
 *        and the type of the second do not matter. NULL shows the message "ROI not provided", also
 *        when failures are not shown.
 * base:  receives the base.
 * arc:   a result table of points.
 * count: receives their number, at least 1.
 * Failures: -1200 for a NULL roi; -5 for a NULL
 * base, arc or count; -1200 for another number of contours, a NULL one, one of fewer than two
 * points, or a first one that is no line; -752 for a line without length; -3010 for lines that do
 * not cross; -503 for a base or start beyond METER_COORDINATE_LIMIT; -752 for a start at the base;
 * -101. */
int32_t ZEL_CalibrateMeter(const RoiDescriptor* roi, PointFloat* base, PointFloat** arc,
                           int32_t* count);

/* Finds the arc of a meter from its base and the ends of its scale, as ZEL_CalibrateMeter does.
 * baseX:  column of the point that the needle turns around.
 * baseY:  row of it.
 * startX: column of the needle's tip at the start of the scale.
 * startY: row of it.
 * endX:   column of a point of the needle at the end of the scale; its distance from the base does
 *         not matter.
 * endY:   row of it.
 * arc:    a result table of points.
 * count:  receives their number, at least 1.
 * Failures: -5 for a NULL arc or count; -503 for a
 * number that is not finite or beyond METER_COORDINATE_LIMIT; -752 for a start or an end at the
 * base, or a radius too small for its coordinates; -101. */
int32_t ZEL_CalibrateMeter2(float baseX, float baseY, float startX, float startY, float endX,
                            float endY, PointFloat** arc, int32_t* count);

/* Reads a meter: of the lines from the points of the arc to the base, the needle lies on the one
 * with the least mean level, or the greatest. Lines are clipped and walked as by ZEL_GetLine and
 * averaged as by ZEL_LineProfile; one that misses the image has the mean 0 and takes part. A mean
 * that is NaN does not, and without any other the first point is taken.
 * image:       IMAGE_U8, IMAGE_I16 or IMAGE_SGL.
 * baseX:       column of the base; truncated for the lines, as the points of the arc are.
 * baseY:       row of it.
 * arc:         the points, from the start of the scale to its end. NULL shows the message "Arc
 *              Points not provided", also when failures are not shown.
 * count:       their number, at least 2.
 * lightNeedle: 0 looks for the least mean, a dark needle on a light dial; any other number for the
 *              greatest. The first of equal means is taken.
 * percent:     receives where the needle stands: its angle from the first point in percent of the
 *              angle from the first to the last.
 * needleTip:   receives the point of the arc that was taken.
 * Failures: -201 for an image of 0; -503 for a count below 2; -5 for a NULL arc, percent or
 * needleTip; -200; -301 for another image type, unless all lines miss the image; -752 for a first,
 * last or taken point at the base; -3006 for an arc whose last point has the angle of its first. */
int32_t ZEL_ReadMeter(ImageRef image, float baseX, float baseY, const PointFloat* arc,
                      int32_t count, int32_t lightNeedle, float* percent, PointFloat* needleTip);

/* Finds the digits of a display: rectangles from left to right, of one height, which
 * ZEL_ReadLCDDisplay reads. Two lines over the region, at a third and two thirds of its height, are
 * smoothed over 5 pixels and fitted by a straight line each, and strokes lie where the profile is
 * on the segments' side of it. Strokes that a horizontal segment joins are one digit. What is lower
 * than half the tallest is no digit, and one that is narrower than 0.6 of the widest, such as 1, is
 * widened to the left. The picture shows at least one digit with segments on both sides, and
 * between two digits, or a digit and a point, more than 2 pixels and more than a twentieth of the
 * region's height.
 * image:         IMAGE_U8, IMAGE_I16 or IMAGE_SGL.
 * roi:           its first contour is a ROI_RECT with two corners or a ROI_POLYGON with four, which
 *                acts by the rectangle around it: that holds the digits, with some ground around
 *                them, and nothing else. NULL shows the message "ROI not provided", also when
 *                failures are not shown.
 * lightSegments: 0 for dark segments on a light ground; any other number for light ones on a dark
 *                ground.
 * threshold:     gray levels; a line with a smaller standard deviation has no strokes.
 * outputRoi:     address of a pointer to a record or NULL, as told with RoiDescriptor; receives one
 *                external ROI_RECT a digit. NULL shows the message "output_ROI not provided".
 * Failures: -201 for an image of 0; -1200 for a
 * NULL roi or outputRoi; -200; -101; -1200 for another first contour; -301 for another image type,
 * unless the lines miss the image; -3040 without a digit. */
int32_t ZEL_CalibrateLCD(ImageRef image, const RoiDescriptor* roi, int32_t lightSegments,
                         float threshold, RoiDescriptor** outputRoi);

/* What stands on of one digit. */
typedef struct DigitSegments {
  int32_t count;     /* 1 */
  uint8_t states[7]; /* 1 on, 0 off: top, upper right, lower right, bottom, lower left, upper left,
                        middle */
} DigitSegments;

/* Reads one digit. Three lines lie over it: across at a third and at two thirds of its height, and
 * down half way across. Each is walked as by ZEL_GetLine and smoothed over 3 pixels, and has
 * contrast where its standard deviation is above the threshold. On such a line a pixel is on that
 * lies beyond half way between its extremes (cut to integers, the largest not below 0, the smallest
 * not above 33000), and turns on the segment of its half, or third, of the line. The digit is the
 * one with the fewest differing segments, the lowest of several; 7 has no upper left segment, 6 and
 * 9 have their tails.
 * image:         IMAGE_U8, IMAGE_I16 or IMAGE_SGL.
 * roi:           its first contour is a ROI_RECT with two corners, both included, or a ROI_POLYGON
 *                with the digit's corners: top left, top right, bottom right, bottom left. Further
 *                points and contours do not matter. NULL shows the message "ROI not provided", also
 *                when failures are not shown.
 * lightSegments: 0 for dark segments on a light ground; any other number for light ones on a dark
 *                ground.
 * threshold:     gray levels.
 * decimalPoint:  0, or looks for a point behind the digit: contrast on one of five short lines
 *                across the height of its foot, from 2 pixels beyond its right edge on, a twentieth
 *                of its width apart.
 * text:          address of a pointer to NULL or a block from ZEL_malloc, which is replaced by one
 *                with the digit, the point if there is one, and a zero byte; the caller releases it
 *                with ZEL_free.
 * value:         receives the digit.
 * segments:      receives the segments.
 * Failures: -201 for an image of 0; -1200 for a NULL roi; -5 for a NULL text, value or segments;
 * -200; -101; -1200 for a region without two points, or another first contour; -301 for another
 * image type, unless the lines miss the image; -3040 for a digit without a segment, with the
 * segments given; -3041 for segments that form no digit exactly, with everything given. */
int32_t ZEL_ReadSingleDigit(ImageRef image, const RoiDescriptor* roi, int32_t lightSegments,
                            float threshold, int32_t decimalPoint, char** text, double* value,
                            DigitSegments* segments);

/* Reads the digits of a display, each as ZEL_ReadSingleDigit does.
 * image:         IMAGE_U8, IMAGE_I16 or IMAGE_SGL.
 * roi:           a contour a digit, from left to right, external or internal. NULL shows the
 *                message "ROI not provided", also when failures are not shown.
 * lightSegments: 0 for dark segments on a light ground; any other number for light ones on a dark
 *                ground.
 * threshold:     gray levels.
 * sign:          0, or looks for a minus left of the first digit: contrast on one of twenty lines
 *                over the middle third of its height, from its left edge on a twentieth of its
 *                width apart (where that is less than a pixel, the first lie on the edge, which
 *                then has to be clear of the segments).
 * decimalPoint:  0, or looks for a point behind each digit.
 * text:          address of a pointer to NULL or a block from ZEL_malloc, which is replaced by one
 *                with the sign, where that is looked for ("-" or a blank), each digit with the
 *                point behind it if there is one, and a zero byte; the caller releases it with
 *                ZEL_free.
 * value:         receives the number that the digits form, whatever the sign and the points.
 * segments:      address of a pointer likewise; of bytes, seven a digit as in DigitSegments.
 * count:         receives the number of digits.
 * Failures: -201 for an image of 0; -1200 for a
 * NULL roi; -5 for another NULL; -200; -101; -1200 for a region without a digit's contour, or one
 * of another type or too few points; -301 for another image type, unless all lines miss the image;
 * -3040 at a digit without a segment; -3041 at segments that form no digit exactly. */
int32_t ZEL_ReadLCDDisplay(ImageRef image, const RoiDescriptor* roi, int32_t lightSegments,
                           float threshold, int32_t sign, int32_t decimalPoint, char** text,
                           double* value, uint8_t** segments, int32_t* count);

#pragma GCC visibility pop
#ifdef __cplusplus
}
#endif

#endif
