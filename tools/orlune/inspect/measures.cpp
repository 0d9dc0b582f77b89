// The measures of a particle: names, units and meanings.
#include "orlune/inspect/measures.h"

#include <iterator>
#include <stdexcept>
#include <vector>

#include "orlune/shared/words.h"
#include "orlune_ptk.h"

namespace front {
namespace {

const Measure LISTED[] = {
    {MEASURE_AREA_PIXELS, "AreaPixels", Unit::SquarePixels, Maker::Library,
     "pixels of the particle, without holes"},
    {MEASURE_AREA_CALIBRATED, "AreaCalibrated", Unit::Area, Maker::Library, "area without holes"},
    {MEASURE_NUMBER_OF_HOLES, "NumberOfHoles", Unit::Count, Maker::Library, "holes"},
    {MEASURE_HOLES_AREA_CALIBRATED, "HolesAreaCalibrated", Unit::Area, Maker::Library,
     "area of all holes"},
    {MEASURE_TOTAL_AREA_CALIBRATED, "TotalAreaCalibrated", Unit::Area, Maker::Library,
     "area with holes"},
    {MEASURE_IMAGE_AREA_CALIBRATED, "ImageAreaCalibrated", Unit::Area, Maker::Library,
     "area of the whole picture"},
    {MEASURE_TOTAL_AREA_PERCENT, "TotalAreaPercent", Unit::Percent, Maker::Library,
     "area with holes, of the picture's"},
    {MEASURE_AREA_PERCENT, "AreaPercent", Unit::Percent, Maker::Library,
     "area without holes, of the picture's"},
    {MEASURE_CENTRE_OF_MASS_X, "CentreOfMassX", Unit::Pixels, Maker::Front,
     "column of the centre of mass"},
    {MEASURE_CENTRE_OF_MASS_Y, "CentreOfMassY", Unit::Pixels, Maker::Front,
     "row of the centre of mass"},
    {MEASURE_LEFT, "Left", Unit::Pixels, Maker::Library, "first column"},
    {MEASURE_TOP, "Top", Unit::Pixels, Maker::Library, "first row"},
    {MEASURE_RIGHT, "Right", Unit::Pixels, Maker::Library, "one past the last column"},
    {MEASURE_BOTTOM, "Bottom", Unit::Pixels, Maker::Library, "one past the last row"},
    {MEASURE_WIDTH_CALIBRATED, "WidthCalibrated", Unit::Length, Maker::Library,
     "width of the upright rectangle"},
    {MEASURE_HEIGHT_CALIBRATED, "HeightCalibrated", Unit::Length, Maker::Library,
     "height of the upright rectangle"},
    {MEASURE_LONGEST_SEGMENT, "LongestSegment", Unit::Pixels, Maker::Library,
     "longest run of pixels in a row"},
    {MEASURE_LONGEST_SEGMENT_X, "LongestSegmentX", Unit::Pixels, Maker::Library,
     "first column of that run"},
    {MEASURE_LONGEST_SEGMENT_Y, "LongestSegmentY", Unit::Pixels, Maker::Library, "row of that run"},
    {MEASURE_PERIMETER, "Perimeter", Unit::Length, Maker::Library, "length of the outline"},
    {MEASURE_HOLES_PERIMETER, "HolesPerimeter", Unit::Length, Maker::Library,
     "length of the holes' outlines"},
    {MEASURE_SUM_X, "SumX", Unit::Pixels, Maker::Front, "sum of x over the pixels"},
    {MEASURE_SUM_Y, "SumY", Unit::Pixels, Maker::Front, "sum of y over the pixels"},
    {MEASURE_SUM_XX, "SumXX", Unit::SquarePixels, Maker::Front, "sum of x squared"},
    {MEASURE_SUM_YY, "SumYY", Unit::SquarePixels, Maker::Front, "sum of y squared"},
    {MEASURE_SUM_XY, "SumXY", Unit::SquarePixels, Maker::Front, "sum of x times y"},
    {MEASURE_PROJECTION_X, "ProjectionX", Unit::Pixels, Maker::Library,
     "pixels with background right above"},
    {MEASURE_NUMBER_OF_RUNS, "NumberOfRuns", Unit::Count, Maker::Library,
     "runs of pixels in all rows"},
    {MEASURE_INERTIA_XX, "InertiaXX", Unit::SquarePixels, Maker::Front,
     "second moment of x about the centre"},
    {MEASURE_INERTIA_YY, "InertiaYY", Unit::SquarePixels, Maker::Front,
     "second moment of y about the centre"},
    {MEASURE_INERTIA_XY, "InertiaXY", Unit::SquarePixels, Maker::Front,
     "mixed moment about the centre"},
    {MEASURE_MEAN_CHORD_X, "MeanChordX", Unit::Pixels, Maker::Library,
     "mean length of the horizontal runs"},
    {MEASURE_MEAN_CHORD_Y, "MeanChordY", Unit::Pixels, Maker::Library,
     "mean length of the vertical runs"},
    {MEASURE_MAX_INTERCEPT, "MaxIntercept", Unit::Pixels, Maker::Library,
     "longest extent, estimated"},
    {MEASURE_MEAN_PERPENDICULAR_INTERCEPT, "MeanPerpendicularIntercept", Unit::Pixels,
     Maker::Library, "mean extent across the longest"},
    {MEASURE_ORIENTATION, "Orientation", Unit::Degrees, Maker::Front,
     "direction of the long axis, counter-clockwise from the rows"},
    {MEASURE_INTERCEPT_ELLIPSE_MINOR_AXIS, "InterceptEllipseMinorAxis", Unit::Pixels,
     Maker::Library, "short axis of the ellipse of that extent and area"},
    {MEASURE_ELLIPSE_MAJOR_AXIS, "EllipseMajorAxis", Unit::Length, Maker::Library,
     "long axis of the ellipse of the same area and outline"},
    {MEASURE_ELLIPSE_MINOR_AXIS, "EllipseMinorAxis", Unit::Length, Maker::Library,
     "its short axis"},
    {MEASURE_ELLIPSE_RATIO, "EllipseRatio", Unit::Ratio, Maker::Library, "long axis by short axis"},
    {MEASURE_RECTANGLE_LONG_SIDE, "RectangleLongSide", Unit::Length, Maker::Library,
     "long side of the rectangle of the same area and outline"},
    {MEASURE_RECTANGLE_SHORT_SIDE, "RectangleShortSide", Unit::Length, Maker::Library,
     "its short side"},
    {MEASURE_RECTANGLE_RATIO, "RectangleRatio", Unit::Ratio, Maker::Library,
     "long side by short side"},
    {MEASURE_ELONGATION_FACTOR, "ElongationFactor", Unit::Ratio, Maker::Library,
     "longest extent by mean width"},
    {MEASURE_COMPACTNESS_FACTOR, "CompactnessFactor", Unit::Ratio, Maker::Library,
     "area by that of the upright rectangle"},
    {MEASURE_HEYWOOD_CIRCULARITY, "HeywoodCircularity", Unit::Ratio, Maker::Library,
     "outline by that of a disk of the same area"},
    {MEASURE_TYPE_FACTOR, "TypeFactor", Unit::Ratio, Maker::Front,
     "1 for an ellipse, less for other shapes"},
    {MEASURE_HYDRAULIC_RADIUS, "HydraulicRadius", Unit::Length, Maker::Library, "area by outline"},
    {MEASURE_WADDEL_DIAMETER, "WaddelDiameter", Unit::Length, Maker::Library,
     "diameter of a disk of the same area"},
    {MEASURE_DIAGONAL_CALIBRATED, "DiagonalCalibrated", Unit::Length, Maker::Library,
     "diagonal of the upright rectangle"},
    {GRAY_MEAN, "GrayMean", Unit::Level, Maker::Front, "mean of the pixels' values"},
    {GRAY_DEVIATION, "GrayDeviation", Unit::Level, Maker::Front, "their standard deviation"},
    {GRAY_MINIMUM, "GrayMinimum", Unit::Level, Maker::Front, "the least of them"},
    {GRAY_MAXIMUM, "GrayMaximum", Unit::Level, Maker::Front, "the greatest of them"},
    {GRAY_SUM, "GraySum", Unit::Level, Maker::Front, "their sum"},
    {FERET_MAXIMUM, "FeretMaximum", Unit::Length, Maker::Front, "largest distance of two points"},
    {FERET_MAXIMUM_ANGLE, "FeretMaximumAngle", Unit::Degrees, Maker::Front, "its direction"},
    {FERET_MINIMUM, "FeretMinimum", Unit::Length, Maker::Front,
     "smallest distance of parallels around the particle"},
    {FERET_MINIMUM_ANGLE, "FeretMinimumAngle", Unit::Degrees, Maker::Front,
     "direction across those parallels"},
    {MINIMAL_BOX_LENGTH, "MinimalBoxLength", Unit::Length, Maker::Front,
     "long side of the smallest rectangle around it, at any angle"},
    {MINIMAL_BOX_WIDTH, "MinimalBoxWidth", Unit::Length, Maker::Front, "its short side"},
    {MINIMAL_BOX_ANGLE, "MinimalBoxAngle", Unit::Degrees, Maker::Front,
     "direction of its long side"},
    {HULL_AREA, "HullArea", Unit::Area, Maker::Front, "area of the convex hull"},
    {HULL_PERIMETER, "HullPerimeter", Unit::Length, Maker::Front, "its outline"},
    {SOLIDITY, "Solidity", Unit::Ratio, Maker::Front, "area by that of the convex hull"},
    {MOMENT_ELLIPSE_MAJOR_AXIS, "MomentEllipseMajorAxis", Unit::Length, Maker::Front,
     "long axis of the ellipse of the same second moments"},
    {MOMENT_ELLIPSE_MINOR_AXIS, "MomentEllipseMinorAxis", Unit::Length, Maker::Front,
     "its short axis"},
    {MOMENT_ELLIPSE_ANGLE, "MomentEllipseAngle", Unit::Degrees, Maker::Front,
     "direction of its long axis, in real units"},
    {ECCENTRICITY, "Eccentricity", Unit::Ratio, Maker::Front, "of that ellipse: 0 for a circle"},
    {CROFTON_PERIMETER, "CroftonPerimeter", Unit::Length, Maker::Front,
     "length of all outlines, by crossings in four directions"},
    {CROFTON_CIRCULARITY, "CroftonCircularity", Unit::Ratio, Maker::Front,
     "area by that of a disk with this perimeter"},
};

// Measures of the front that the library has as well.
std::vector<Measure> ListWithLibrarysOwn() {
  static std::vector<std::string> names;  // of what the list points to
  std::vector<Measure> list(std::begin(LISTED), std::end(LISTED));
  names.reserve(LIBRARY_MEASURES);
  for (size_t i = 0; i < LIBRARY_MEASURES; ++i) {
    if (LISTED[i].maker != Maker::Front) continue;
    names.push_back("Library" + std::string(LISTED[i].name));
    list.push_back({list.size(), names.back(), LISTED[i].unit, Maker::LibraryByName,
                    "the library's own number, by 32-bit sums", static_cast<uint32_t>(i)});
  }
  return list;
}

}  // namespace

const std::vector<Measure>& AllMeasures() {
  static const std::vector<Measure> LIST = ListWithLibrarysOwn();
  return LIST;
}

const Measure& FindMeasure(std::string_view name) {
  const std::string wanted = Lower(name);
  std::vector<std::string_view> names;
  for (const Measure& measure : AllMeasures()) {
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
    case Unit::Level:
    case Unit::Ratio:
      return "";
  }
  return "";
}

}  // namespace front
