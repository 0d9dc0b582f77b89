/* Particles: connected pixels, numbered, measured, selected. The rules that hold for all functions
 * are told in orlune_ptk.h.
 *
 * A particle is a set of connected non-zero pixels: side by side with CONNECTIVITY_4, also corner
 * to corner with CONNECTIVITY_8. Particles are numbered from 1 in raster order of their first
 * pixels. The image needs a border of 1 pixel, or of 2 with CONNECTIVITY_8 (else -309).
 */
#ifndef ORLUNE_PTK_PARTICLES_H
#define ORLUNE_PTK_PARTICLES_H

#include "types.h"

#ifdef __cplusplus
extern "C" {
#endif
#pragma GCC visibility push(default)

/* Which neighbours of a pixel belong to its particle. */
typedef enum Connectivity {
  CONNECTIVITY_4 = 0, /* those beside it, above and below */
  CONNECTIVITY_8 = 1  /* and those at its corners; as any other number */
} Connectivity;

/* What ZEL_BasicParticle tells of a particle. */
typedef struct BasicParticleReport {
  int32_t area;         /* pixels */
  float calibratedArea; /* area times the steps of the image's calibration */
  ApiRect rect;         /* bounding rectangle; a left or top beyond 65535 reads 65535 */
} BasicParticleReport;

/* Writes the number of each pixel's particle, and 0 where there is none. A destination takes the
 * source's size, calibration and offset.
 * source:        IMAGE_U8 or IMAGE_I16. Its border is 0 afterwards.
 * dest:          IMAGE_U8 or IMAGE_I16; 0 or the source: the source receives the numbers. IMAGE_U8
 *                holds 255 for all particles from number 255 on; IMAGE_I16 holds the low 16 bits,
 *                so numbers above 32767 read negative. The border of an IMAGE_I16 dest is 0
 *                afterwards if it is as wide as the source's has to be.
 * connectivity8: a Connectivity.
 * nbParticles:   NULL, or receives the number of particles, also when -312 is returned; 0 after any
 *                other failure.
 * Failures: -200 for source; -301 for another source type; -309; -200 for dest; -101 no memory for
 * its size, and -300 for a dest whose number is outside ImageType: all these change nothing. -101
 * no memory, or more than 65535 pixels that are set while the neighbours before them (left and
 * above, with CONNECTIVITY_8 also above-left and above-right) are not: by then the borders are 0,
 * and dest has the source's size but not its calibration. -312 for another dest type: likewise. */
int32_t ZEL_Label(ImageRef source, ImageRef dest, uint16_t connectivity8, int32_t* nbParticles);

/* Area and bounding rectangle of each particle.
 * image:         IMAGE_U8. Its border is 0 afterwards.
 * connectivity8: a Connectivity.
 * reports:       address of a result table. When there is no memory for the table itself, the
 *                caller's former block is released and the variable is NULL; other failures leave
 *                it.
 * nbReports:     NULL, or receives the number of particles, 0 after a failure other than -3009.
 * Failures: -3009 for reports; -200; -301 for another image type; -309; -101, also for too many
 * particles, as for ZEL_Label. After -101 the border can be 0 already. */
int32_t ZEL_BasicParticle(ImageRef image, uint16_t connectivity8, BasicParticleReport** reports,
                          int32_t* nbReports);

/* What ZEL_Particle tells of a particle. The sums run over its pixels and are kept in 32-bit floats
 * run by run; those of a single run lose what is beyond 32 bits. */
typedef struct ParticleReport {
  int32_t area;           /* pixels, holes not counted */
  float calibratedArea;   /* area times the steps of the image's calibration */
  float perimeter;        /* outer perimeter, calibrated; 0 for a single pixel */
  int32_t nbHoles;        /* holes of a 4-connected particle are 8-connected and vice versa */
  int32_t holesArea;      /* pixels of all holes, with what lies in them */
  float holesPerimeter;   /* of all holes together, calibrated; at least that of a disk of holesArea
                             in pixels */
  ApiRect rect;           /* bounding rectangle */
  float sumX, sumY;       /* sums of coordinates */
  float sumXX, sumYY;     /* ... of their squares */
  float sumXY;            /* ... of x times y */
  int32_t longestSegment; /* length of the longest run of pixels in a row, the first of equals */
  int32_t longestSegmentX; /* its first pixel */
  int32_t longestSegmentY;
  int32_t projectionX; /* pixels without a pixel of the particle above them */
  int32_t nbRuns;      /* runs of pixels in rows */
} ParticleReport;

/* Measures each particle of an image, which is not changed.
 * image:         IMAGE_U8. What its border holds does not matter.
 * connectivity8: a Connectivity.
 * reports:       address of a result table. Unchanged after a failure.
 * nbReports:     NULL, or receives the number of particles, 0 after a failure other than -3009.
 * Failures: -3009 for reports; -200; -301 for another image type; -309; -101. */
int32_t ZEL_Particle(ImageRef image, uint16_t connectivity8, ParticleReport** reports,
                     int32_t* nbReports);

/* Numbers of measures. Steps are those of the image's calibration; lengths are in pixels where no
 * step is named, except for those that come from perimeters or calibrated areas. */
typedef enum ParticleMeasure {
  MEASURE_AREA_PIXELS = 0,           /* area */
  MEASURE_AREA_CALIBRATED = 1,       /* calibratedArea */
  MEASURE_NUMBER_OF_HOLES = 2,       /* nbHoles */
  MEASURE_HOLES_AREA_CALIBRATED = 3, /* holesArea x steps */
  MEASURE_TOTAL_AREA_CALIBRATED = 4, /* (holesArea + area) x steps */
  MEASURE_IMAGE_AREA_CALIBRATED = 5, /* image's area x steps */
  MEASURE_TOTAL_AREA_PERCENT = 6,    /* (holesArea + area) / image's area x 100 */
  MEASURE_AREA_PERCENT = 7,          /* area / image's area x 100 */
  MEASURE_CENTRE_OF_MASS_X = 8,      /* sumX / area */
  MEASURE_CENTRE_OF_MASS_Y = 9,      /* sumY / area */
  MEASURE_LEFT = 10,                 /* rect.left */
  MEASURE_TOP = 11,                  /* rect.top */
  MEASURE_RIGHT = 12,                /* rect.left + rect.width */
  MEASURE_BOTTOM = 13,               /* rect.top + rect.height */
  MEASURE_WIDTH_CALIBRATED = 14,     /* rect.width x xStep */
  MEASURE_HEIGHT_CALIBRATED = 15,    /* rect.height x yStep */
  MEASURE_LONGEST_SEGMENT = 16,      /* longestSegment */
  MEASURE_LONGEST_SEGMENT_X = 17,    /* longestSegmentX */
  MEASURE_LONGEST_SEGMENT_Y = 18,    /* longestSegmentY */
  MEASURE_PERIMETER = 19,            /* perimeter */
  MEASURE_HOLES_PERIMETER = 20,      /* holesPerimeter */
  MEASURE_SUM_X = 21,                /* sumX */
  MEASURE_SUM_Y = 22,                /* sumY */
  MEASURE_SUM_XX = 23,               /* sumXX */
  MEASURE_SUM_YY = 24,               /* sumYY */
  MEASURE_SUM_XY = 25,               /* sumXY */
  MEASURE_PROJECTION_X = 26,         /* projectionX */
  MEASURE_NUMBER_OF_RUNS = 27,       /* nbRuns */
  MEASURE_INERTIA_XX = 28,           /* second moments about the centre */
  MEASURE_INERTIA_YY = 29,
  MEASURE_INERTIA_XY = 30,
  MEASURE_MEAN_CHORD_X = 31, /* area / nbRuns */
  MEASURE_MEAN_CHORD_Y = 32, /* area / projectionX */
  /* Between rect's diagonal and its longer side, by how much of its width longestSegment fills. */
  MEASURE_MAX_INTERCEPT = 33,
  MEASURE_MEAN_PERPENDICULAR_INTERCEPT = 34, /* area / MAX_INTERCEPT */
  MEASURE_ORIENTATION = 35,                  /* degrees, 0 to 180; of a level line 180 */
  MEASURE_INTERCEPT_ELLIPSE_MINOR_AXIS = 36, /* area / (MAX_INTERCEPT x pi) x 4 */
  MEASURE_ELLIPSE_MAJOR_AXIS = 37,           /* ellipse of equal area and perimeter */
  MEASURE_ELLIPSE_MINOR_AXIS = 38,
  MEASURE_ELLIPSE_RATIO = 39,       /* major / minor; major when minor is 0 */
  MEASURE_RECTANGLE_LONG_SIDE = 40, /* rectangle of equal area and perimeter */
  MEASURE_RECTANGLE_SHORT_SIDE = 41,
  MEASURE_RECTANGLE_RATIO = 42,     /* long / short */
  MEASURE_ELONGATION_FACTOR = 43,   /* MAX_INTERCEPT / MEAN_PERPENDICULAR_.. */
  MEASURE_COMPACTNESS_FACTOR = 44,  /* area / area of rect */
  MEASURE_HEYWOOD_CIRCULARITY = 45, /* perimeter / that of a disk of equal area */
  MEASURE_TYPE_FACTOR = 46,         /* 0 to 1, by area and second moments */
  MEASURE_HYDRAULIC_RADIUS = 47,    /* calibratedArea / perimeter */
  MEASURE_WADDEL_DIAMETER = 48,     /* of a disk of equal area */
  MEASURE_DIAGONAL_CALIBRATED = 49, /* of rect */
} ParticleMeasure;

/* Computes measures from reports. With nbReports below 1 or nbMeasures 0 the call does nothing and
 * returns 0, whatever the other arguments are.
 * image:        where the reports come from: its size and calibration, in which a step of 0 counts
 *               as 1.0, enter the measures. Any type.
 * measures:     nbMeasures numbers of measures, each a ParticleMeasure.
 * nbMeasures:   how many.
 * reports:      nbReports reports; not changed.
 * nbReports:    how many.
 * coefficients: nbReports x nbMeasures floats; those of a report stand side by side. Quotients by 0
 *               are infinities and NaN.
 * Failures: -3009 for measures, reports or coefficients; -200; -306 for an image of 0 x 0; -801 for
 * a number above 49, with the coefficients before the first such number written. */
int32_t ZEL_ParticleCoeffs(ImageRef image, const uint32_t* measures, uint32_t nbMeasures,
                           ParticleReport* reports, int32_t nbReports, float* coefficients);

/* A range of a field of a report. */
typedef struct ParticleCriterion {
  uint32_t measure; /* 0 to 3 and 10 to 27 name the field that the ParticleMeasure of that number
                       is made of, in pixels where there is a choice; others let all pass */
  float lower;      /* smallest value that passes */
  float upper;      /* largest value that passes; integers are rounded to float before */
} ParticleCriterion;

/* The measure of a criterion that stands for none, see ZEL_ParticleDiscrim. */
#define PARTICLE_CRITERION_NONE 0xFFFFFFFFu

/* Keeps the reports whose fields are in all of the given ranges.
 * image:      not looked at; 0 or any other number.
 * criteria:   nbCriteria ranges.
 * nbCriteria: how many. With 0 the first one is used all the same, unless criteria is NULL or its
 *             measure is PARTICLE_CRITERION_NONE: then all reports are kept.
 * reports:    nbReports reports. Those that are kept move to the front in their order; behind them
 *             each is a copy of what was the last one. The caller's block keeps its size.
 * nbReports:  how many. Below 1 none is kept, and criteria and reports are not looked at.
 * nbKept:     NULL, or receives the number of kept reports.
 * Failures: -3009 for reports, or for criteria with an nbCriteria above 0. */
int32_t ZEL_ParticleDiscrim(ImageRef image, const ParticleCriterion* criteria, uint32_t nbCriteria,
                            ParticleReport* reports, int32_t nbReports, int32_t* nbKept);

#pragma GCC visibility pop
#ifdef __cplusplus
}
#endif

#endif
