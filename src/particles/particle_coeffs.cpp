// The numbered measures of particles, computed from their reports.
#include <algorithm>
#include <cmath>
#include <iterator>

#include "core/images.h"
#include "core/numbers.h"

namespace zel {
namespace {

// Pi and numbers made of it, to the digits that the measures are defined with.
constexpr double FOUR_PI = 12.56637096;
constexpr double ONE_BY_PI = 0.31830987742860645;
constexpr double HALF_BY_PI_SQUARED = 0.050660589034307243;
constexpr double HALF_TURN_BY_2_PI = 28.647888968574584;  // degrees: half an angle in radians

// The image that reports were taken from.
struct MeasuredImage {
  double width, height;  // pixels
  double xStep, yStep;
};

double SquareRoot(double value) {
  return value > 0.0 ? std::sqrt(value) : 0.0;
}

double Rounded(double value) {
  return static_cast<double>(static_cast<float>(value));
}

// A report with its image. Everything is computed in 64-bit floats; a measure is rounded to 32 bits
// once, and measures that build on others take the rounded ones.
struct Measures {
  const ParticleReport& report;
  const MeasuredImage& image;
  double area = report.area;
  double holesArea = report.holesArea;
  double calibratedArea = static_cast<double>(report.calibratedArea);
  double perimeter = static_cast<double>(report.perimeter);
  double width = report.rect.width;  // of the rectangle, in pixels
  double height = report.rect.height;
  double meanX = static_cast<double>(report.sumX) / area;
  double meanY = static_cast<double>(report.sumY) / area;
  double imageArea = image.width * image.height;

  // False for a number that is no measure.
  bool Value(uint32_t measure, float* value) const;

  // Of a number that is one.
  double Of(ParticleMeasure measure) const {
    float value = 0.0f;
    Value(measure, &value);
    return static_cast<double>(value);
  }
  // The dividend alone where the divisor is 0.
  double GuardedRatio(ParticleMeasure dividend, ParticleMeasure divisor) const {
    const double by = Of(divisor);
    return by == 0.0 ? Of(dividend) : Of(dividend) / by;
  }
  double MaxIntercept() const;
  double Orientation() const;
  double EllipseAxis(double sign) const;
  double RectangleSide(double sign) const;
  double TypeFactor() const;
};

// Blends the rectangle's diagonal with its longer side by how much of the width the longest run
// fills.
double Measures::MaxIntercept() const {
  const double filled = report.longestSegment / width;
  const double blend = Rounded(filled * Rounded(filled));
  const double diagonal = std::sqrt(width * width + height * height);
  return diagonal * (1.0 - blend) + blend * std::max(width, height);
}

// In degrees. With equal moments along both axes the sign of the mixed one decides.
double Measures::Orientation() const {
  const double xx = Of(MEASURE_INERTIA_XX);
  const double yy = Of(MEASURE_INERTIA_YY);
  const double xy = Of(MEASURE_INERTIA_XY);
  double angle = yy == xx ? 45.0 : std::atan(xy / (xx - yy) * 2.0) * HALF_TURN_BY_2_PI;
  if (!(yy > xx) && (!std::signbit(xy) || xy == 0.0)) angle = 180.0 - angle;
  if (yy < xx && xy < 0.0) angle = -angle;
  if (yy > xx) angle = 90.0 - angle;
  return angle < 0.0 ? 0.0 : angle;
}

// Of the ellipse of equal area and perimeter.
double Measures::EllipseAxis(double sign) const {
  const double p = calibratedArea * 2.0 * ONE_BY_PI;
  const double q = Rounded(perimeter * perimeter * HALF_BY_PI_SQUARED);
  return SquareRoot(p + q) + sign * SquareRoot(q - p);
}

// Of the rectangle of equal area and perimeter.
double Measures::RectangleSide(double sign) const {
  const double root = SquareRoot(perimeter * perimeter - 16.0 * calibratedArea);
  return (perimeter + sign * root) * 0.25;
}

double Measures::TypeFactor() const {
  const double product = Of(MEASURE_INERTIA_YY) * Of(MEASURE_INERTIA_XX);
  if (!(product > 0.0)) return 0.0;
  const double factor = area * area / (std::sqrt(product) * FOUR_PI);
  return factor > 1.0 ? 1.0 : factor;
}

// One row a measure, in the order of their numbers.
using M = const Measures&;
using Formula = double (*)(M m);
struct MeasureFormula {
  ParticleMeasure measure;
  Formula value;
};
constexpr MeasureFormula FORMULAS[] = {
    {MEASURE_AREA_PIXELS, [](M m) { return m.area; }},
    {MEASURE_AREA_CALIBRATED, [](M m) { return m.calibratedArea; }},
    {MEASURE_NUMBER_OF_HOLES, [](M m) -> double { return m.report.nbHoles; }},
    {MEASURE_HOLES_AREA_CALIBRATED,
     [](M m) { return m.holesArea * m.image.xStep * m.image.yStep; }},
    {MEASURE_TOTAL_AREA_CALIBRATED,
     [](M m) { return (m.holesArea + m.area) * m.image.xStep * m.image.yStep; }},
    {MEASURE_IMAGE_AREA_CALIBRATED,
     [](M m) { return m.imageArea * m.image.xStep * m.image.yStep; }},
    {MEASURE_TOTAL_AREA_PERCENT, [](M m) { return (m.holesArea + m.area) / m.imageArea * 100.0; }},
    {MEASURE_AREA_PERCENT, [](M m) { return m.area / m.imageArea * 100.0; }},
    {MEASURE_CENTRE_OF_MASS_X, [](M m) { return m.meanX; }},
    {MEASURE_CENTRE_OF_MASS_Y, [](M m) { return m.meanY; }},
    {MEASURE_LEFT, [](M m) -> double { return m.report.rect.left; }},
    {MEASURE_TOP, [](M m) -> double { return m.report.rect.top; }},
    {MEASURE_RIGHT,
     [](M m) -> double { return SumWrapped(m.report.rect.left, m.report.rect.width); }},
    {MEASURE_BOTTOM,
     [](M m) -> double { return SumWrapped(m.report.rect.top, m.report.rect.height); }},
    {MEASURE_WIDTH_CALIBRATED, [](M m) { return m.width * m.image.xStep; }},
    {MEASURE_HEIGHT_CALIBRATED, [](M m) { return m.height * m.image.yStep; }},
    {MEASURE_LONGEST_SEGMENT, [](M m) -> double { return m.report.longestSegment; }},
    {MEASURE_LONGEST_SEGMENT_X, [](M m) -> double { return m.report.longestSegmentX; }},
    {MEASURE_LONGEST_SEGMENT_Y, [](M m) -> double { return m.report.longestSegmentY; }},
    {MEASURE_PERIMETER, [](M m) { return m.perimeter; }},
    {MEASURE_HOLES_PERIMETER, [](M m) { return double{m.report.holesPerimeter}; }},
    {MEASURE_SUM_X, [](M m) { return double{m.report.sumX}; }},
    {MEASURE_SUM_Y, [](M m) { return double{m.report.sumY}; }},
    {MEASURE_SUM_XX, [](M m) { return double{m.report.sumXX}; }},
    {MEASURE_SUM_YY, [](M m) { return double{m.report.sumYY}; }},
    {MEASURE_SUM_XY, [](M m) { return double{m.report.sumXY}; }},
    {MEASURE_PROJECTION_X, [](M m) -> double { return m.report.projectionX; }},
    {MEASURE_NUMBER_OF_RUNS, [](M m) -> double { return m.report.nbRuns; }},
    {MEASURE_INERTIA_XX,
     [](M m) { return double{m.report.sumXX} - m.meanX * Rounded(m.meanX) * m.area; }},
    {MEASURE_INERTIA_YY,
     [](M m) { return double{m.report.sumYY} - m.meanY * Rounded(m.meanY) * m.area; }},
    {MEASURE_INERTIA_XY,
     [](M m) { return double{m.report.sumXY} - m.meanX * Rounded(m.meanY) * m.area; }},
    {MEASURE_MEAN_CHORD_X, [](M m) { return m.area / m.report.nbRuns; }},
    {MEASURE_MEAN_CHORD_Y, [](M m) { return m.area / m.report.projectionX; }},
    {MEASURE_MAX_INTERCEPT, [](M m) { return m.MaxIntercept(); }},
    {MEASURE_MEAN_PERPENDICULAR_INTERCEPT,
     [](M m) { return m.area / m.Of(MEASURE_MAX_INTERCEPT); }},
    {MEASURE_ORIENTATION, [](M m) { return m.Orientation(); }},
    {MEASURE_INTERCEPT_ELLIPSE_MINOR_AXIS,
     [](M m) { return m.area / (m.Of(MEASURE_MAX_INTERCEPT) * PI) * 4.0; }},
    {MEASURE_ELLIPSE_MAJOR_AXIS, [](M m) { return m.EllipseAxis(1.0); }},
    {MEASURE_ELLIPSE_MINOR_AXIS, [](M m) { return m.EllipseAxis(-1.0); }},
    {MEASURE_ELLIPSE_RATIO,
     [](M m) { return m.GuardedRatio(MEASURE_ELLIPSE_MAJOR_AXIS, MEASURE_ELLIPSE_MINOR_AXIS); }},
    {MEASURE_RECTANGLE_LONG_SIDE, [](M m) { return m.RectangleSide(1.0); }},
    {MEASURE_RECTANGLE_SHORT_SIDE, [](M m) { return m.RectangleSide(-1.0); }},
    {MEASURE_RECTANGLE_RATIO,
     [](M m) { return m.Of(MEASURE_RECTANGLE_LONG_SIDE) / m.Of(MEASURE_RECTANGLE_SHORT_SIDE); }},
    {MEASURE_ELONGATION_FACTOR,
     [](M m) {
       return m.GuardedRatio(MEASURE_MAX_INTERCEPT, MEASURE_MEAN_PERPENDICULAR_INTERCEPT);
     }},
    {MEASURE_COMPACTNESS_FACTOR, [](M m) { return m.area / (m.width * m.height); }},
    {MEASURE_HEYWOOD_CIRCULARITY,
     [](M m) { return m.perimeter / (std::sqrt(m.calibratedArea * PI) * 2.0); }},
    {MEASURE_TYPE_FACTOR, [](M m) { return m.TypeFactor(); }},
    {MEASURE_HYDRAULIC_RADIUS, [](M m) { return m.calibratedArea / m.perimeter; }},
    {MEASURE_WADDEL_DIAMETER, [](M m) { return std::sqrt(m.calibratedArea * ONE_BY_PI) * 2.0; }},
    {MEASURE_DIAGONAL_CALIBRATED,
     [](M m) {
       return std::sqrt(m.width * m.image.xStep * (m.width * m.image.xStep) +
                        m.height * m.image.yStep * (m.height * m.image.yStep));
     }},
};

constexpr bool RowsAreInOrder() {
  uint32_t row = 0;
  for (const MeasureFormula& formula : FORMULAS) {
    if (formula.measure != row++) return false;
  }
  return true;
}
static_assert(RowsAreInOrder());

bool Measures::Value(uint32_t measure, float* value) const {
  if (measure >= std::size(FORMULAS)) return false;
  *value = static_cast<float>(FORMULAS[measure].value(*this));
  return true;
}

Status ParticleCoeffs(ImageRef reference, const uint32_t* measures, uint32_t nbMeasures,
                      const ParticleReport* reports, int32_t nbReports, float* coefficients) {
  if (nbMeasures == 0 || nbReports <= 0) return STATUS_OK;
  if (!measures || !reports || !coefficients) return STATUS_NULL_POINTER;
  Image* image = nullptr;
  const Status status = ImageLookup(reference, &image);
  if (status != STATUS_OK) return status;
  if (image->width == 0 || image->height == 0) return STATUS_SIZE_DIFFERS;
  const auto step = [](float value) { return value == 0.0f ? 1.0 : static_cast<double>(value); };
  const MeasuredImage measured = {static_cast<double>(image->width),
                                  static_cast<double>(image->height), step(image->xStep),
                                  step(image->yStep)};
  for (int32_t i = 0; i < nbReports; i++) {
    const Measures values{reports[i], measured};
    for (uint32_t j = 0; j < nbMeasures; j++) {
      if (!values.Value(measures[j], coefficients++)) return STATUS_BAD_MEASURE;
    }
  }
  return STATUS_OK;
}

}  // namespace
}  // namespace zel

int32_t ZEL_ParticleCoeffs(ImageRef image, const uint32_t* measures, uint32_t nbMeasures,
                           ParticleReport* reports, int32_t nbReports, float* coefficients) {
  return ZEL_ProcessError(
      "ZEL_ParticleCoeffs",
      zel::ParticleCoeffs(image, measures, nbMeasures, reports, nbReports, coefficients));
}
