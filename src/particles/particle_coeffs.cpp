// The numbered measures of particles, computed from their reports.
#include <algorithm>
#include <cmath>

#include "core/images.h"

namespace zel {
namespace {

// Pi and numbers made of it, to the digits that the measures are defined with.
constexpr double PI = 3.14159274;
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

// A report with its image. Everything is computed in 64-bit floats; a measure is rounded to 32 bits
// once, and measures that build on others take the rounded ones.
class Measures {
 public:
  Measures(const ParticleReport& report, const MeasuredImage& image)
      : report_(report),
        image_(image),
        area_(report.area),
        holesArea_(report.holesArea),
        calibratedArea_(static_cast<double>(report.calibratedArea)),
        perimeter_(static_cast<double>(report.perimeter)),
        width_(report.rect.width),
        height_(report.rect.height),
        meanX_(static_cast<double>(report.sumX) / area_),
        meanY_(static_cast<double>(report.sumY) / area_) {}

  // False for a number that is no measure.
  bool Value(uint32_t measure, float* value) const;

 private:
  double Of(uint32_t measure) const {
    float value = 0.0f;
    Value(measure, &value);
    return static_cast<double>(value);
  }
  double MaxIntercept() const;
  double Orientation() const;
  double EllipseAxis(double sign) const;
  double RectangleSide(double sign) const;
  double TypeFactor() const;

  static double Rounded(double value) { return static_cast<double>(static_cast<float>(value)); }
  // One past the last pixel; sums beyond 32 bits wrap, as the rectangle's own do.
  static int32_t End(int32_t start, int32_t length) {
    return static_cast<int32_t>(static_cast<uint32_t>(start) + static_cast<uint32_t>(length));
  }

  const ParticleReport& report_;
  const MeasuredImage& image_;
  double area_, holesArea_, calibratedArea_, perimeter_;
  double width_, height_;  // of the rectangle, in pixels
  double meanX_, meanY_;
};

// Blends the rectangle's diagonal with its longer side by how much of the width the longest run
// fills.
double Measures::MaxIntercept() const {
  const double filled = report_.longestSegment / width_;
  const double blend = Rounded(filled * Rounded(filled));
  const double diagonal = std::sqrt(width_ * width_ + height_ * height_);
  return diagonal * (1.0 - blend) + blend * std::max(width_, height_);
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
  const double p = calibratedArea_ * 2.0 * ONE_BY_PI;
  const double q = Rounded(perimeter_ * perimeter_ * HALF_BY_PI_SQUARED);
  return SquareRoot(p + q) + sign * SquareRoot(q - p);
}

// Of the rectangle of equal area and perimeter.
double Measures::RectangleSide(double sign) const {
  const double root = SquareRoot(perimeter_ * perimeter_ - 16.0 * calibratedArea_);
  return (perimeter_ + sign * root) * 0.25;
}

double Measures::TypeFactor() const {
  const double product = Of(MEASURE_INERTIA_YY) * Of(MEASURE_INERTIA_XX);
  if (!(product > 0.0)) return 0.0;
  const double factor = area_ * area_ / (std::sqrt(product) * FOUR_PI);
  return factor > 1.0 ? 1.0 : factor;
}

bool Measures::Value(uint32_t measure, float* value) const {
  const double xStep = image_.xStep;
  const double yStep = image_.yStep;
  const double imageArea = image_.width * image_.height;
  const auto ratioGuarded = [&](uint32_t dividend, uint32_t divisor) {
    const double by = Of(divisor);
    return by == 0.0 ? Of(dividend) : Of(dividend) / by;
  };
  double result = 0.0;
  switch (measure) {
    case MEASURE_AREA_PIXELS:
      result = area_;
      break;
    case MEASURE_AREA_CALIBRATED:
      result = calibratedArea_;
      break;
    case MEASURE_NUMBER_OF_HOLES:
      result = report_.nbHoles;
      break;
    case MEASURE_HOLES_AREA_CALIBRATED:
      result = holesArea_ * xStep * yStep;
      break;
    case MEASURE_TOTAL_AREA_CALIBRATED:
      result = (holesArea_ + area_) * xStep * yStep;
      break;
    case MEASURE_IMAGE_AREA_CALIBRATED:
      result = imageArea * xStep * yStep;
      break;
    case MEASURE_TOTAL_AREA_PERCENT:
      result = (holesArea_ + area_) / imageArea * 100.0;
      break;
    case MEASURE_AREA_PERCENT:
      result = area_ / imageArea * 100.0;
      break;
    case MEASURE_CENTRE_OF_MASS_X:
      result = meanX_;
      break;
    case MEASURE_CENTRE_OF_MASS_Y:
      result = meanY_;
      break;
    case MEASURE_LEFT:
      result = report_.rect.left;
      break;
    case MEASURE_TOP:
      result = report_.rect.top;
      break;
    case MEASURE_RIGHT:
      result = End(report_.rect.left, report_.rect.width);
      break;
    case MEASURE_BOTTOM:
      result = End(report_.rect.top, report_.rect.height);
      break;
    case MEASURE_WIDTH_CALIBRATED:
      result = width_ * xStep;
      break;
    case MEASURE_HEIGHT_CALIBRATED:
      result = height_ * yStep;
      break;
    case MEASURE_LONGEST_SEGMENT:
      result = report_.longestSegment;
      break;
    case MEASURE_LONGEST_SEGMENT_X:
      result = report_.longestSegmentX;
      break;
    case MEASURE_LONGEST_SEGMENT_Y:
      result = report_.longestSegmentY;
      break;
    case MEASURE_PERIMETER:
      result = perimeter_;
      break;
    case MEASURE_HOLES_PERIMETER:
      result = static_cast<double>(report_.holesPerimeter);
      break;
    case MEASURE_SUM_X:
      result = static_cast<double>(report_.sumX);
      break;
    case MEASURE_SUM_Y:
      result = static_cast<double>(report_.sumY);
      break;
    case MEASURE_SUM_XX:
      result = static_cast<double>(report_.sumXX);
      break;
    case MEASURE_SUM_YY:
      result = static_cast<double>(report_.sumYY);
      break;
    case MEASURE_SUM_XY:
      result = static_cast<double>(report_.sumXY);
      break;
    case MEASURE_PROJECTION_X:
      result = report_.projectionX;
      break;
    case MEASURE_NUMBER_OF_RUNS:
      result = report_.nbRuns;
      break;
    case MEASURE_INERTIA_XX:
      result = static_cast<double>(report_.sumXX) - meanX_ * Rounded(meanX_) * area_;
      break;
    case MEASURE_INERTIA_YY:
      result = static_cast<double>(report_.sumYY) - meanY_ * Rounded(meanY_) * area_;
      break;
    case MEASURE_INERTIA_XY:
      result = static_cast<double>(report_.sumXY) - meanX_ * Rounded(meanY_) * area_;
      break;
    case MEASURE_MEAN_CHORD_X:
      result = area_ / report_.nbRuns;
      break;
    case MEASURE_MEAN_CHORD_Y:
      result = area_ / report_.projectionX;
      break;
    case MEASURE_MAX_INTERCEPT:
      result = MaxIntercept();
      break;
    case MEASURE_MEAN_PERPENDICULAR_INTERCEPT:
      result = area_ / Of(MEASURE_MAX_INTERCEPT);
      break;
    case MEASURE_ORIENTATION:
      result = Orientation();
      break;
    case MEASURE_INTERCEPT_ELLIPSE_MINOR_AXIS:
      result = area_ / (Of(MEASURE_MAX_INTERCEPT) * PI) * 4.0;
      break;
    case MEASURE_ELLIPSE_MAJOR_AXIS:
      result = EllipseAxis(1.0);
      break;
    case MEASURE_ELLIPSE_MINOR_AXIS:
      result = EllipseAxis(-1.0);
      break;
    case MEASURE_ELLIPSE_RATIO:
      result = ratioGuarded(MEASURE_ELLIPSE_MAJOR_AXIS, MEASURE_ELLIPSE_MINOR_AXIS);
      break;
    case MEASURE_RECTANGLE_LONG_SIDE:
      result = RectangleSide(1.0);
      break;
    case MEASURE_RECTANGLE_SHORT_SIDE:
      result = RectangleSide(-1.0);
      break;
    case MEASURE_RECTANGLE_RATIO:
      result = Of(MEASURE_RECTANGLE_LONG_SIDE) / Of(MEASURE_RECTANGLE_SHORT_SIDE);
      break;
    case MEASURE_ELONGATION_FACTOR:
      result = ratioGuarded(MEASURE_MAX_INTERCEPT, MEASURE_MEAN_PERPENDICULAR_INTERCEPT);
      break;
    case MEASURE_COMPACTNESS_FACTOR:
      result = area_ / (width_ * height_);
      break;
    case MEASURE_HEYWOOD_CIRCULARITY:
      result = perimeter_ / (std::sqrt(calibratedArea_ * PI) * 2.0);
      break;
    case MEASURE_TYPE_FACTOR:
      result = TypeFactor();
      break;
    case MEASURE_HYDRAULIC_RADIUS:
      result = calibratedArea_ / perimeter_;
      break;
    case MEASURE_WADDEL_DIAMETER:
      result = std::sqrt(calibratedArea_ * ONE_BY_PI) * 2.0;
      break;
    case MEASURE_DIAGONAL_CALIBRATED:
      result = std::sqrt(width_ * xStep * (width_ * xStep) + height_ * yStep * (height_ * yStep));
      break;
    default:
      return false;
  }
  *value = static_cast<float>(result);
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
    const Measures values(reports[i], measured);
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
