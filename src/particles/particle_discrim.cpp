// Particle reports kept or dropped by ranges of their fields.
#include <algorithm>
#include <cstdint>

#include "core/numbers.h"
#include "core/status.h"
#include "orlune_ptk.h"

namespace zel {
namespace {

// An integer is compared exactly with the lower bound, and rounded to 32-bit float with the upper.
bool InRange(int32_t value, const ParticleCriterion& range) {
  return static_cast<double>(value) >= static_cast<double>(range.lower) &&
         static_cast<float>(value) <= range.upper;
}
bool InRange(float value, const ParticleCriterion& range) {
  return value >= range.lower && value <= range.upper;
}

// Areas and sides are in pixels here, unlike the measures that have the same numbers.
bool Passes(const ParticleReport& report, const ParticleCriterion& criterion) {
  switch (criterion.measure) {
    case MEASURE_AREA_PIXELS:
      return InRange(report.area, criterion);
    case MEASURE_AREA_CALIBRATED:
      return InRange(report.calibratedArea, criterion);
    case MEASURE_NUMBER_OF_HOLES:
      return InRange(report.nbHoles, criterion);
    case MEASURE_HOLES_AREA_CALIBRATED:
      return InRange(report.holesArea, criterion);
    case MEASURE_LEFT:
      return InRange(report.rect.left, criterion);
    case MEASURE_TOP:
      return InRange(report.rect.top, criterion);
    case MEASURE_RIGHT:
      return InRange(SumWrapped(report.rect.left, report.rect.width), criterion);
    case MEASURE_BOTTOM:
      return InRange(SumWrapped(report.rect.top, report.rect.height), criterion);
    case MEASURE_WIDTH_CALIBRATED:
      return InRange(report.rect.width, criterion);
    case MEASURE_HEIGHT_CALIBRATED:
      return InRange(report.rect.height, criterion);
    case MEASURE_LONGEST_SEGMENT:
      return InRange(report.longestSegment, criterion);
    case MEASURE_LONGEST_SEGMENT_X:
      return InRange(report.longestSegmentX, criterion);
    case MEASURE_LONGEST_SEGMENT_Y:
      return InRange(report.longestSegmentY, criterion);
    case MEASURE_PERIMETER:
      return InRange(report.perimeter, criterion);
    case MEASURE_HOLES_PERIMETER:
      return InRange(report.holesPerimeter, criterion);
    case MEASURE_SUM_X:
      return InRange(report.sumX, criterion);
    case MEASURE_SUM_Y:
      return InRange(report.sumY, criterion);
    case MEASURE_SUM_XX:
      return InRange(report.sumXX, criterion);
    case MEASURE_SUM_YY:
      return InRange(report.sumYY, criterion);
    case MEASURE_SUM_XY:
      return InRange(report.sumXY, criterion);
    case MEASURE_PROJECTION_X:
      return InRange(report.projectionX, criterion);
    case MEASURE_NUMBER_OF_RUNS:
      return InRange(report.nbRuns, criterion);
    default:
      return true;
  }
}

bool PassesAll(const ParticleReport& report, const ParticleCriterion* criteria, uint32_t count) {
  for (uint32_t i = 0; i < count; i++) {
    if (!Passes(report, criteria[i])) return false;
  }
  return true;
}

// Kept records move to the front. Those behind them all become copies of the last record, which is
// what moving the rest of the table down at each removal leaves there.
int32_t Discriminate(const ParticleCriterion* criteria, uint32_t nbCriteria,
                     ParticleReport* reports, int32_t nbReports) {
  const ParticleReport last = reports[nbReports - 1];
  int32_t kept = 0;
  for (int32_t i = 0; i < nbReports; i++) {
    if (PassesAll(reports[i], criteria, nbCriteria)) reports[kept++] = reports[i];
  }
  for (int32_t i = kept; i < nbReports; i++) reports[i] = last;
  return kept;
}

// nbKept may be null; nothing is written to it on failure.
Status ParticleDiscrim(const ParticleCriterion* criteria, uint32_t nbCriteria,
                       ParticleReport* reports, int32_t nbReports, int32_t* nbKept) {
  int32_t kept = 0;
  if (nbReports > 0) {
    if (!reports || (!criteria && nbCriteria != 0)) return STATUS_NULL_POINTER;
    // One criterion is taken to be there, unless its number says that there is none.
    const bool hasNone =
        nbCriteria == 0 && (!criteria || criteria->measure == PARTICLE_CRITERION_NONE);
    kept =
        hasNone ? nbReports : Discriminate(criteria, std::max(nbCriteria, 1u), reports, nbReports);
  }
  if (nbKept) *nbKept = kept;
  return STATUS_OK;
}

}  // namespace
}  // namespace zel

int32_t ZEL_ParticleDiscrim(ImageRef, const ParticleCriterion* criteria, uint32_t nbCriteria,
                            ParticleReport* reports, int32_t nbReports, int32_t* nbKept) {
  return ZEL_ProcessError("ZEL_ParticleDiscrim",
                          zel::ParticleDiscrim(criteria, nbCriteria, reports, nbReports, nbKept));
}
