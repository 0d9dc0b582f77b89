// The 50 measures of a particle: names, units and meanings.
#include "orlune/measures.h"

#include <stdexcept>
#include <vector>

#include "orlune/words.h"
#include "orlune_ptk.h"

namespace front {
namespace {

constexpr Measure MEASURES[MEASURE_COUNT] = {
    {MEASURE_AREA_PIXELS, "AreaPixels", Unit::SquarePixels,
     "pixels of the particle, without holes"},
    {MEASURE_AREA_CALIBRATED, "AreaCalibrated", Unit::Area, "area without holes"},
    {MEASURE_NUMBER_OF_HOLES, "NumberOfHoles", Unit::Count, "holes"},
    {MEASURE_HOLES_AREA_CALIBRATED, "HolesAreaCalibrated", Unit::Area, "area of all holes"},
    {MEASURE_TOTAL_AREA_CALIBRATED, "TotalAreaCalibrated", Unit::Area, "area with holes"},
    {MEASURE_IMAGE_AREA_CALIBRATED, "ImageAreaCalibrated", Unit::Area, "area of the whole picture"},
    {MEASURE_TOTAL_AREA_PERCENT, "TotalAreaPercent", Unit::Percent,
     "area with holes, of the picture's"},
    {MEASURE_AREA_PERCENT, "AreaPercent", Unit::Percent, "area without holes, of the picture's"},
    {MEASURE_CENTRE_OF_MASS_X, "CentreOfMassX", Unit::Pixels, "column of the centre of mass"},
    {MEASURE_CENTRE_OF_MASS_Y, "CentreOfMassY", Unit::Pixels, "row of the centre of mass"},
    {MEASURE_LEFT, "Left", Unit::Pixels, "first column"},
    {MEASURE_TOP, "Top", Unit::Pixels, "first row"},
    {MEASURE_RIGHT, "Right", Unit::Pixels, "one past the last column"},
    {MEASURE_BOTTOM, "Bottom", Unit::Pixels, "one past the last row"},
    {MEASURE_WIDTH_CALIBRATED, "WidthCalibrated", Unit::Length, "width of the upright rectangle"},
    {MEASURE_HEIGHT_CALIBRATED, "HeightCalibrated", Unit::Length,
     "height of the upright rectangle"},
    {MEASURE_LONGEST_SEGMENT, "LongestSegment", Unit::Pixels, "longest run of pixels in a row"},
    {MEASURE_LONGEST_SEGMENT_X, "LongestSegmentX", Unit::Pixels, "first column of that run"},
    {MEASURE_LONGEST_SEGMENT_Y, "LongestSegmentY", Unit::Pixels, "row of that run"},
    {MEASURE_PERIMETER, "Perimeter", Unit::Length, "length of the outline"},
    {MEASURE_HOLES_PERIMETER, "HolesPerimeter", Unit::Length, "length of the holes' outlines"},
    {MEASURE_SUM_X, "SumX", Unit::Pixels, "sum of x over the pixels"},
    {MEASURE_SUM_Y, "SumY", Unit::Pixels, "sum of y over the pixels"},
    {MEASURE_SUM_XX, "SumXX", Unit::SquarePixels, "sum of x squared"},
    {MEASURE_SUM_YY, "SumYY", Unit::SquarePixels, "sum of y squared"},
    {MEASURE_SUM_XY, "SumXY", Unit::SquarePixels, "sum of x times y"},
    {MEASURE_PROJECTION_X, "ProjectionX", Unit::Pixels, "pixels with background right above"},
    {MEASURE_NUMBER_OF_RUNS, "NumberOfRuns", Unit::Count, "runs of pixels in all rows"},
    {MEASURE_INERTIA_XX, "InertiaXX", Unit::SquarePixels, "second moment of x about the centre"},
    {MEASURE_INERTIA_YY, "InertiaYY", Unit::SquarePixels, "second moment of y about the centre"},
    {MEASURE_INERTIA_XY, "InertiaXY", Unit::SquarePixels, "mixed moment about the centre"},
    {MEASURE_MEAN_CHORD_X, "MeanChordX", Unit::Pixels, "mean length of the horizontal runs"},
    {MEASURE_MEAN_CHORD_Y, "MeanChordY", Unit::Pixels, "mean length of the vertical runs"},
    {MEASURE_MAX_INTERCEPT, "MaxIntercept", Unit::Pixels, "longest extent, estimated"},
    {MEASURE_MEAN_PERPENDICULAR_INTERCEPT, "MeanPerpendicularIntercept", Unit::Pixels,
     "mean extent across the longest"},
    {MEASURE_ORIENTATION, "Orientation", Unit::Degrees, "direction of the long axis"},
    {MEASURE_INTERCEPT_ELLIPSE_MINOR_AXIS, "InterceptEllipseMinorAxis", Unit::Pixels,
     "short axis of the ellipse of that extent and area"},
    {MEASURE_ELLIPSE_MAJOR_AXIS, "EllipseMajorAxis", Unit::Length,
     "long axis of the ellipse of the same area and outline"},
    {MEASURE_ELLIPSE_MINOR_AXIS, "EllipseMinorAxis", Unit::Length, "its short axis"},
    {MEASURE_ELLIPSE_RATIO, "EllipseRatio", Unit::Ratio, "long axis by short axis"},
    {MEASURE_RECTANGLE_LONG_SIDE, "RectangleLongSide", Unit::Length,
     "long side of the rectangle of the same area and outline"},
    {MEASURE_RECTANGLE_SHORT_SIDE, "RectangleShortSide", Unit::Length, "its short side"},
    {MEASURE_RECTANGLE_RATIO, "RectangleRatio", Unit::Ratio, "long side by short side"},
    {MEASURE_ELONGATION_FACTOR, "ElongationFactor", Unit::Ratio, "longest extent by mean width"},
    {MEASURE_COMPACTNESS_FACTOR, "CompactnessFactor", Unit::Ratio,
     "area by that of the upright rectangle"},
    {MEASURE_HEYWOOD_CIRCULARITY, "HeywoodCircularity", Unit::Ratio,
     "outline by that of a disk of the same area"},
    {MEASURE_TYPE_FACTOR, "TypeFactor", Unit::Ratio, "1 for an ellipse, less for other shapes"},
    {MEASURE_HYDRAULIC_RADIUS, "HydraulicRadius", Unit::Length, "area by outline"},
    {MEASURE_WADDEL_DIAMETER, "WaddelDiameter", Unit::Length,
     "diameter of a disk of the same area"},
    {MEASURE_DIAGONAL_CALIBRATED, "DiagonalCalibrated", Unit::Length,
     "diagonal of the upright rectangle"},
};

}  // namespace

std::span<const Measure, MEASURE_COUNT> AllMeasures() {
  return MEASURES;
}

const Measure& FindMeasure(std::string_view name) {
  const std::string wanted = Lower(name);
  std::vector<std::string_view> names;
  for (const Measure& measure : MEASURES) {
    if (Lower(measure.name) == wanted) return measure;
    names.push_back(measure.name);
  }
  throw std::invalid_argument("there is no measure " + Quoted(name) + "; did you mean " +
                              std::string(NearestName(name, names)) +
                              "? 'orlune measures' lists them all");
}

std::string UnitText(Unit unit, const std::string& lengthUnit) {
  switch (unit) {
    case Unit::Pixels:
      return "px";
    case Unit::SquarePixels:
      return "px2";
    case Unit::Length:
      return lengthUnit;
    case Unit::Area:
      return lengthUnit + "2";
    case Unit::Percent:
      return "%";
    case Unit::Degrees:
      return "deg";
    case Unit::Count:
    case Unit::Ratio:
      return "";
  }
  return "";
}

}  // namespace front
