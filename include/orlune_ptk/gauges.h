/* Gauges: edges along paths, pairs of edges, distances along lines, peaks of curves. The rules that
 * hold for all functions are told in orlune_ptk.h.
 *
 * A path is an array of points, one a pixel; where it leaves the image, the nearest pixel is read.
 * The signal of a path are the gray levels of its pixels as floats. Only IMAGE_U8, IMAGE_I16 and
 * IMAGE_SGL have one: with an image of another type ZEL_SimpleEdge fails, and for the other
 * functions the signal is 0 everywhere.
 *
 * Oversampling. With an oversampling of m, m values are interpolated between each two samples: a
 * signal of n samples has (n - 1) x (m + 1) + 1 values. Its memory and time grow with them.
 *
 * Edges. Two windows of edgeWidth samples, gap samples and one value apart, slide along the signal;
 * an edge is where the sum of the second one less that of the first one reaches threshold x
 * edgeWidth, up or down, and not where it is steepest. A step thus has its edge somewhat before its
 * middle, the more the further it goes beyond the threshold: by how much does not depend on where
 * the step lies, so that distances between edges of one kind are exact. One run of values beyond
 * the threshold is one edge. A signal of 2 edgeWidth + gap samples or fewer has none, and in a
 * longer one places within the last 2 edgeWidth - gap samples are not looked at.
 */
#ifndef ORLUNE_PTK_GAUGES_H
#define ORLUNE_PTK_GAUGES_H

#include "types.h"

#ifdef __cplusplus
extern "C" {
#endif
#pragma GCC visibility push(default)

/* How values between samples are found. */
typedef enum InterpolationMethod {
  INTERP_LINEAR = 0, /* along straight lines */
  /* Along the parabola through three samples, from the second one on: the signal begins at the
   * second sample, one sample early, and its last m + 1 values are 0. Of fewer than 3 samples all
   * values are the first one. */
  INTERP_QUADRATIC = 1,
  INTERP_SPLINE = 2 /* along a natural cubic spline */
} InterpolationMethod;

/* Which crossings ZEL_SimpleEdge reports. */
typedef enum SimpleEdgeProcess {
  EDGE_FIRST = 0,          /* the first one */
  EDGE_FIRST_AND_LAST = 1, /* the first one, and the first one seen from the path's end */
  EDGE_ALL = 2             /* all; as any other number */
} SimpleEdgeProcess;

/* Finds where the signal of a path crosses a threshold: where it has passed it by more than the
 * hysteresis, the crossing lies behind the last sample before that on the side where it came from.
 * Samples that equal the threshold at the start tell no side and are passed over.
 * image:              IMAGE_U8, IMAGE_I16 or IMAGE_SGL.
 * points:             pointCount points; NULL is allowed if there are none.
 * pointCount:         below 1 there are no crossings.
 * processType:        a SimpleEdgeProcess. EDGE_FIRST_AND_LAST reports one crossing twice, from
 *                     either side, if it is the only one.
 * thresholdInPercent: 0: threshold and hysteresis are gray levels. Any other number: they are
 *                     percents, limited to 0..100, of the range from the lowest to the highest
 *                     sample, the threshold counted from the lowest; both are cut to whole levels.
 * threshold:          the level.
 * hysteresis:         how far a sample has to go beyond the threshold. Below 0 little is found.
 * subPixel:           0: the first point behind the crossing. Any other number: the place between
 *                     the points where a parabola through three samples meets the threshold.
 * edges:              address of a result table: the points.
 * edgeCount:          NULL, or receives how many there are.
 * Failures: -3009 for points or edges; -200; -301 for another image type; -1001 for an image
 * without pixels; -101. */
int32_t ZEL_SimpleEdge(ImageRef image, const PointInt* points, int32_t pointCount,
                       int32_t processType, int32_t thresholdInPercent, int32_t threshold,
                       int32_t hysteresis, int32_t subPixel, PointFloat** edges,
                       int32_t* edgeCount);

/* An edge along a path. */
typedef struct EdgeRecord {
  float position; /* along the path: 0 is its first point, 1 the second one */
  float contrast; /* gray levels: what the windows differ by, divided by their width; cut to a whole
                       sum of a rising edge, and of a falling one taken at the value before it */
  int32_t polarity; /* 1 rising, -1 falling */
  float reserved;   /* 0 */
} EdgeRecord;

/* Finds all edges along a path.
 * image:        any type; see above.
 * points:       pointCount points.
 * pointCount:   at least 5.
 * method:       an InterpolationMethod. Not looked at without oversampling.
 * oversampling: values between two samples; 0 or below for none.
 * threshold:    gray levels by which the means of the windows have to differ. With 0 or below every
 *               value belongs to an edge.
 * edgeWidth:    samples of each window; below 1 it is 2.
 * gap:          samples between the windows; below 0 it is 0.
 * edgeCount:    NULL, or receives how many edges there are.
 * edges:        address of a result table.
 * coordinates:  address of a result table: where each edge lies in the image.
 * Failures: -3009 for points, edges or coordinates; -200; -1001 for an image without pixels; -752
 * for fewer than 5 points; -751 for another method, with oversampling; -101. */
int32_t ZEL_FindEdges(ImageRef image, const PointInt* points, int32_t pointCount, int32_t method,
                      int32_t oversampling, int32_t threshold, int32_t edgeWidth, int32_t gap,
                      int32_t* edgeCount, EdgeRecord** edges, PointFloat** coordinates);

/* Which edges ZEL_Caliper takes for a pair; the first one comes first along the path. With any
 * other number there are no pairs. */
typedef enum PairPolarity {
  PAIR_ANY = 0,       /* one of the kind of the path's first edge, and one of the other kind */
  PAIR_RISE_FALL = 1, /* light on dark */
  PAIR_FALL_RISE = 2, /* dark on light */
  PAIR_RISE_RISE = 3,
  PAIR_FALL_FALL = 4
} PairPolarity;

/* A pair of edges. */
typedef struct CaliperReport {
  float firstIndex;     /* number of the edge along the path, from 0 */
  float firstContrast;  /* as in EdgeRecord */
  float secondIndex;    /* ... of the second edge */
  float secondContrast; /* ... */
  float distance;       /* pixels from one to the other */
  float score;          /* 1000 at the wanted distance, and 1 at twice the deviation from it */
} CaliperReport;

/* Finds pairs of edges of chosen kinds at a wanted distance. Every first edge is paired with each
 * second one behind it.
 * image:           any type; see above.
 * points:          pointCount points.
 * pointCount:      at least 5.
 * method:          an InterpolationMethod. Not looked at without oversampling.
 * oversampling:    values between two samples; 0 or below for none.
 * threshold:       as in ZEL_FindEdges.
 * edgeWidth:       samples of each window; below 1 it is 2.
 * gap:             samples between the windows; below 0 it is 0.
 * polarityMode:    a PairPolarity.
 * separation:      the wanted distance in pixels.
 * deviation:       half of how far a pair may be from it: the distance lies between separation -
 *                  2 deviation and separation + 2 deviation. With PAIR_RISE_FALL it may also be one
 *                  of the two. With PAIR_ANY a separation and deviation of 0 take every pair. Below
 *                  1 it counts for nothing in the score, which is 1000.
 * pairCount:       NULL, or receives how many pairs there are.
 * reports:         address of a result table.
 * coordinateCount: NULL, or receives twice the number of pairs.
 * coordinates:     address of a result table: where the two edges of each pair lie in the image.
 * Failures: -3009 for points, reports or coordinates; -200; -1001 for an image without pixels; -752
 * for fewer than 5 points; -751 for another method, with oversampling; -101, also for too many
 * pairs. */
int32_t ZEL_Caliper(ImageRef image, const PointInt* points, int32_t pointCount, int32_t method,
                    int32_t oversampling, int32_t threshold, int32_t edgeWidth, int32_t gap,
                    int32_t polarityMode, float separation, float deviation, int32_t* pairCount,
                    CaliperReport** reports, int32_t* coordinateCount, PointFloat** coordinates);

/* What ZEL_LineGauge measures along a line. With any other number the result is 0. */
typedef enum GaugeMode {
  GAUGE_EDGE_TO_EDGE = 0,  /* from the first edge to the last one; 0 with one edge */
  GAUGE_EDGE_TO_POINT = 1, /* from the first edge to the last point of the line */
  GAUGE_POINT_TO_EDGE = 2, /* from the first point of the line to the first edge */
  GAUGE_POINT_TO_POINT = 3 /* the length of the line; no edges are looked for */
} GaugeMode;

/* Measures along a line and along others beside it, all of which follow a part that has moved: they
 * are turned about the reference and carried on to where that is now, each end cut to whole pixels.
 * A line is clipped to the image before anything is measured; its ends are then those of what is
 * left. The first line that lies outside the image ends the call.
 * image:          any type; see above.
 * x1:             column of the main line's start.
 * y1:             its row.
 * x2:             column of the main line's end.
 * y2:             its row.
 * method:         an InterpolationMethod. Not looked at without oversampling.
 * oversampling:   values between two samples; 0 or below for none.
 * threshold:      as in ZEL_FindEdges.
 * edgeWidth:      samples of each window; below 1 it is 2.
 * gap:            samples between the windows; below 0 it is 0.
 * mode:           a GaugeMode.
 * extraLines:     two points a line: what is added to start and end of the main line. NULL: none.
 * extraCount:     how many points; below 2 there are no other lines, and an odd one is left out.
 * referenceX:     column of the place that the lines were drawn for.
 * referenceY:     its row.
 * referenceAngle: degrees.
 * newX:           column of that place in this image.
 * newY:           its row. Where nothing has changed, the lines stay exactly.
 * newAngle:       degrees, counted from the x axis towards the y axis, which points down.
 * results:        extraCount / 2 + 1 floats: the distance in pixels of each line, the main line's
 *                 first, and 0 where no edge is found. Those from a line outside the image on are
 *                 left as they are.
 * Failures: -3009 for results; -200; -751 for another method where there is oversampling; -101. */
int32_t ZEL_LineGauge(ImageRef image, int32_t x1, int32_t y1, int32_t x2, int32_t y2,
                      int32_t method, int32_t oversampling, int32_t threshold, int32_t edgeWidth,
                      int32_t gap, int32_t mode, const PointInt* extraLines, int32_t extraCount,
                      int32_t referenceX, int32_t referenceY, float referenceAngle, int32_t newX,
                      int32_t newY, float newAngle, float* results);

/* Gives the signal of a path with values between its samples.
 * image:        any type; see above.
 * points:       pointCount points.
 * pointCount:   at least 5.
 * method:       an InterpolationMethod.
 * oversampling: values between two samples; 0 or below for none, when the methods but
 *               INTERP_QUADRATIC give the samples themselves.
 * values:       address of a result table.
 * valueCount:   NULL, or receives how many there are.
 * Failures: -3009 for points or values; -200; -1001 for an image without pixels; -752 for fewer
 * than 5 points; -751 for another method; -101. */
int32_t ZEL_Interpolate1D(ImageRef image, const PointInt* points, int32_t pointCount,
                          int32_t method, int32_t oversampling, float** values,
                          int32_t* valueCount);

/* What ZEL_PeakValleyDetector looks for. */
typedef enum PeakValleyType {
  DETECT_PEAKS = 0,
  DETECT_VALLEYS = 1 /* as any other number */
} PeakValleyType;

/* Finds peaks or valleys of a curve, by parabolas fitted to a window that slides along it: where
 * the slope in the middle changes its sign, the vertex of the parabola counts if it lies in the
 * window and beyond the threshold. A flat curve has none.
 * data:              count values; NULL is allowed if there are none.
 * count:             fewer than width have no result.
 * threshold:         peaks are above it, valleys below.
 * width:             values of the window, at least 3. The time is that of count x width steps.
 * type:              a PeakValleyType.
 * found:             NULL, or receives how many there are.
 * locations:         address of a result table: places along the curve, 0 for its first value.
 * amplitudes:        address of a result table: the parabola's height there.
 * secondDerivatives: address of a result table: its second derivative, below 0 for peaks.
 * Failures: -3009 for data, locations, amplitudes or secondDerivatives; -3051 for a width below 3;
 * -101. */
int32_t ZEL_PeakValleyDetector(const double* data, int32_t count, double threshold, int32_t width,
                               int32_t type, int32_t* found, double** locations,
                               double** amplitudes, double** secondDerivatives);

#pragma GCC visibility pop
#ifdef __cplusplus
}
#endif

#endif
