// What is told of a region.
#include "orlune/view/region_report.h"

#include <algorithm>
#include <cmath>
#include <span>

#include "orlune/shared/numbers.h"

namespace front {
namespace {

constexpr size_t PARTICLES_TOLD = 12;
constexpr size_t EDGES_TOLD = 12;
constexpr int32_t EDGE_SAMPLES = 2;   // that are compared on either side of an edge
constexpr double EDGE_PART = 0.2;     // of a profile's range is the least step of an edge
constexpr int32_t LEAST_SAMPLES = 5;  // that edges are looked for in

std::span<const PointInt> PointsOf(const RoiContour& contour) {
  return {contour.points, static_cast<size_t>(std::max(contour.pointCount, 0))};
}

const RoiContour* OnlyContour(const RoiDescriptor& roi) {
  return roi.contourCount == 1 ? roi.contours[0] : nullptr;
}

bool IsChain(const RoiContour& contour) {
  return contour.contourType == ROI_LINE || contour.contourType == ROI_POLYLINE ||
         contour.contourType == ROI_FREELINE;
}

std::string PlaceText(double x, double y) {
  return Short(std::round(x * 10) / 10) + "," + Short(std::round(y * 10) / 10);
}

std::string LevelsText(double mean, double deviation, double low, double high) {
  return "mean " + Short(mean) + ", deviation " + Short(deviation) + ", " + Short(low) + " to " +
         Short(high);
}

// ---- a point

float ValueAt(const Image& image, const PointInt& point) {
  float value = 0;
  Check(ZEL_GetPixelValue(image, point.x, point.y, &value));
  return value;
}

bool HasPixel(const Image& image, const PointInt& point) {
  const ImageInfo info = image.Info();
  return point.x >= 0 && point.x < info.width && point.y >= 0 && point.y < info.height;
}

RegionReport ReportOnPoint(const ViewedPicture& picture, const PointInt& point) {
  RegionReport report;
  report.lines.push_back("point " + PlaceText(point.x, point.y));
  if (!HasPixel(picture.loaded.image, point)) return report;
  report.lines.push_back("value " +
                         Short(static_cast<double>(ValueAt(picture.loaded.image, point))));
  if (picture.loaded.colours) {
    const auto colour = Row<RGBValue>(picture.loaded.colours->Info(), point.y)[point.x];
    report.lines.push_back("red " + std::to_string(colour >> 16 & 255) + ", green " +
                           std::to_string(colour >> 8 & 255) + ", blue " +
                           std::to_string(colour & 255));
  }
  return report;
}

// ---- a line

struct Profile {
  Block<float> samples;
  Block<PointInt> points;
  int32_t count = 0;
  ProfileReport report{};
};

Profile ProfileOf(const Image& image, const RoiDescriptor& roi) {
  Profile profile;
  float* samples = nullptr;
  PointInt* points = nullptr;
  Check(ZEL_ROIProfile(image, &roi, &samples, &profile.count, &profile.report, &points));
  profile.samples.reset(samples);
  profile.points.reset(points);
  return profile;
}

// Edges are looked for in 8 bits: their steps are whole gray levels.
void AddEdges(const Image& bytes, const RoiDescriptor& roi, RegionReport* report) {
  const Profile profile = ProfileOf(bytes, roi);
  if (profile.count < LEAST_SAMPLES) return;
  const auto range = static_cast<double>(profile.report.maximum - profile.report.minimum);
  const auto threshold = std::max(static_cast<int32_t>(range * EDGE_PART), 1);
  int32_t count = 0;
  EdgeRecord* records = nullptr;
  PointFloat* places = nullptr;
  const int32_t status = ZEL_FindEdges(bytes, profile.points.get(), profile.count, INTERP_LINEAR, 0,
                                       threshold, EDGE_SAMPLES, 0, &count, &records, &places);
  const Block<EdgeRecord> edges(records);
  const Block<PointFloat> coordinates(places);
  Check(status);
  report->lines.push_back(Plural(static_cast<size_t>(count), "edge"));
  for (int32_t i = 0; i < count; ++i) {
    const EdgeRecord& edge = edges[static_cast<size_t>(i)];
    const PointFloat& place = coordinates[static_cast<size_t>(i)];
    report->edges.push_back(edge.position);
    if (static_cast<size_t>(i) >= EDGES_TOLD) continue;
    std::string line = (edge.polarity > 0 ? "rising at " : "falling at ") +
                       PlaceText(static_cast<double>(place.x), static_cast<double>(place.y));
    if (i > 0) {
      const PointFloat& last = coordinates[static_cast<size_t>(i) - 1];
      const auto distance =
          std::hypot(static_cast<double>(place.x - last.x), static_cast<double>(place.y - last.y));
      line += ", " + Fixed(distance, 1) + " on";
    }
    report->lines.push_back(line);
  }
}

double LengthOf(std::span<const PointInt> points) {
  double length = 0;
  for (size_t i = 1; i < points.size(); ++i) {
    length += std::hypot(double{1} * points[i].x - points[i - 1].x,
                         double{1} * points[i].y - points[i - 1].y);
  }
  return length;
}

RegionReport ReportOnChain(const ViewedPicture& picture, const RoiDescriptor& roi) {
  constexpr double DEGREES = 57.29577951308232;
  const std::span<const PointInt> points = PointsOf(*roi.contours[0]);
  RegionReport report;
  report.lines = RegionTexts(roi);
  std::string size = "length " + Fixed(LengthOf(points), 1);
  if (points.size() == 2) {
    const double angle =
        std::atan2(double{1} * points[0].y - points[1].y, double{1} * points[1].x - points[0].x);
    size += ", angle " + Fixed(angle * DEGREES, 1);
  }
  report.lines.push_back(size);
  const Profile profile = ProfileOf(picture.loaded.image, roi);
  if (profile.count == 0) return report;
  const ProfileReport& levels = profile.report;
  report.lines.push_back(
      LevelsText(static_cast<double>(levels.mean), static_cast<double>(levels.deviation),
                 static_cast<double>(levels.minimum), static_cast<double>(levels.maximum)));
  report.profile.assign(profile.samples.get(), profile.samples.get() + profile.count);
  AddEdges(picture.Bytes(), roi, &report);
  return report;
}

// ---- an area

Loaded CopyOf(const Loaded& loaded) {
  Loaded copy{loaded.account, Image(loaded.image.Info().type), {}, std::nullopt};
  Check(ZEL_Copy(loaded.image, copy.image));
  return copy;
}

std::string ObjectsText(const Inspection& inspection, const InspectSettings& settings) {
  std::string text = Plural(inspection.Kept(), "particle");
  if (inspection.objects) {
    text += " of " + Short(inspection.objects->low) + " to " + Short(inspection.objects->high);
  }
  if (!settings.range) text += " (" + std::string(MethodName(settings.method)) + ")";
  return text;
}

void AddParticles(const Inspection& inspection, RegionReport* report) {
  static const Measure& AREA = FindMeasure("AreaPixels");
  static const Measure& X = FindMeasure("CentreOfMassX");
  static const Measure& Y = FindMeasure("CentreOfMassY");
  size_t told = 0;
  for (const Particle& particle : inspection.particles) {
    if (!particle.kept) continue;
    if (++told > PARTICLES_TOLD) {
      report->lines.push_back("... and " + std::to_string(inspection.Kept() - PARTICLES_TOLD) +
                              " more");
      return;
    }
    report->lines.push_back(std::to_string(particle.number) + ": " +
                            Short(particle.values[AREA.number]) + " px at " +
                            PlaceText(particle.values[X.number], particle.values[Y.number]));
  }
}

RegionReport ReportOnArea(const ViewedPicture& picture, const RoiDescriptor& roi,
                          const InspectSettings& settings) {
  const Image& gray = picture.loaded.image;
  RegionReport report;
  report.lines = RegionTexts(roi);
  const Image mask(IMAGE_U8);
  Check(ZEL_ROIToMask(mask, gray, &roi, 1));
  QuantifyReport levels{};
  Check(ZEL_Quantify(gray, mask, &levels, nullptr, nullptr));
  report.lines.push_back(Plural(static_cast<size_t>(levels.nbPixels), "pixel") + ", " +
                         Fixed(static_cast<double>(levels.percent), 1) + " % of the picture");
  if (levels.nbPixels == 0) return report;
  report.lines.push_back(
      LevelsText(static_cast<double>(levels.mean), static_cast<double>(levels.stdDev),
                 static_cast<double>(levels.min), static_cast<double>(levels.max)));
  InspectSettings inside = settings;
  inside.mask = &mask;
  report.inspection = Inspect(CopyOf(picture.loaded), picture.path, inside);
  report.lines.push_back(ObjectsText(*report.inspection, settings));
  if (!report.inspection->remark.empty()) report.lines.push_back(report.inspection->remark);
  AddParticles(*report.inspection, &report);
  return report;
}

// ---- texts

std::string ShapeName(int32_t type) {
  switch (type) {
    case ROI_WHOLE:
      return "whole picture";
    case ROI_POINT:
      return "point";
    case ROI_LINE:
      return "line";
    case ROI_RECT:
      return "rectangle";
    case ROI_OVAL:
      return "oval";
    case ROI_POLYGON:
      return "polygon";
    case ROI_FREEHAND:
      return "freehand";
    case ROI_POLYLINE:
      return "broken line";
    default:
      return "free line";
  }
}

std::string QuotedForShell(const std::string& word) {
  std::string quoted = "'";
  for (const char c : word) {
    if (c == '\'') {
      quoted += "'\\''";
    } else {
      quoted += c;
    }
  }
  return quoted + "'";
}

void ChainDraw(const Image& image, std::span<const PointInt> points) {
  for (size_t i = 1; i < points.size(); ++i) {
    Check(ZEL_DrawLine(image, 0, points[i - 1].x, points[i - 1].y, points[i].x, points[i].y,
                       DRAW_PAINT, 255));
  }
}

}  // namespace

ViewedPicture ReadViewed(const std::string& path, bool swapBytes) {
  ViewedPicture picture{
      path,
      ReadPicture(path, {.form = Form::Gray, .swapBytes = swapBytes, .colours = true}),
      {},
      {}};
  picture.extremes = ExtremesOf(picture.loaded.image);
  if (picture.loaded.image.Info().type != IMAGE_U8) {
    picture.bytes = Stretch(picture.loaded.image, picture.extremes);
  }
  return picture;
}

RegionReport ReportOn(const ViewedPicture& picture, const RoiDescriptor& roi,
                      const InspectSettings& settings) {
  const RoiContour* only = OnlyContour(roi);
  if (only != nullptr && only->contourType == ROI_POINT && only->pointCount == 1) {
    return ReportOnPoint(picture, only->points[0]);
  }
  if (only != nullptr && IsChain(*only)) return ReportOnChain(picture, roi);
  return ReportOnArea(picture, roi, settings);
}

std::vector<std::string> RegionTexts(const RoiDescriptor& roi) {
  constexpr size_t POINTS_TOLD = 4;
  std::vector<std::string> texts;
  for (int32_t i = 0; i < roi.contourCount; ++i) {
    const RoiContour& contour = *roi.contours[i];
    std::string text = ShapeName(contour.contourType);
    const std::span<const PointInt> points = PointsOf(contour);
    for (const PointInt& point : points.first(std::min(points.size(), POINTS_TOLD))) {
      text += " " + PlaceText(point.x, point.y);
    }
    if (points.size() > POINTS_TOLD) text += " ... (" + Plural(points.size(), "point") + ")";
    texts.push_back(text);
  }
  return texts;
}

std::string InspectCommandLine(const ViewedPicture& picture, const RoiDescriptor& roi,
                               const InspectSettings& settings) {
  std::string line = "orlune inspect";
  const RoiContour* only = OnlyContour(roi);
  if (only == nullptr || only->contourType != ROI_WHOLE) {
    const ApiRect& rect = roi.globalRect;
    const int32_t left = std::max(rect.left, 0);
    const int32_t top = std::max(rect.top, 0);
    const int32_t width = rect.left + rect.width - left;
    const int32_t height = rect.top + rect.height - top;
    line += " --region " + std::to_string(left) + "," + std::to_string(top) + "," +
            std::to_string(std::max(width, 1)) + "," + std::to_string(std::max(height, 1));
  }
  if (settings.range) {
    line += " --range " + Exact(settings.range->low) + ":" + Exact(settings.range->high);
  } else {
    line += " --method " + std::string(MethodName(settings.method));
    if (settings.dark) line += " --dark";
  }
  return line + " " + QuotedForShell(picture.path);
}

Image OutlinesOf(const RoiDescriptor& roi, const Image& picture) {
  const ImageInfo info = picture.Info();
  Image outlines(IMAGE_U8, 0, info.width, info.height);
  Check(ZEL_ClearPixels(outlines));
  for (int32_t i = 0; i < roi.contourCount; ++i) {
    const RoiContour& contour = *roi.contours[i];
    const std::span<const PointInt> points = PointsOf(contour);
    const bool isBox = contour.contourType == ROI_RECT || contour.contourType == ROI_OVAL;
    if (isBox && points.size() == 2) {
      const auto [left, right] = std::minmax(points[0].x, points[1].x);
      const auto [top, bottom] = std::minmax(points[0].y, points[1].y);
      const auto draw = contour.contourType == ROI_RECT ? &ZEL_DrawRect : &ZEL_DrawOval;
      Check(draw(outlines, 0, top, left, bottom - top, right - left, DRAW_FRAME, 255));
    } else if (contour.contourType == ROI_POINT && points.size() == 1) {
      const auto [x, y] = points[0];
      Check(ZEL_DrawLine(outlines, 0, x - 3, y, x + 3, y, DRAW_PAINT, 255));
      Check(ZEL_DrawLine(outlines, 0, x, y - 3, x, y + 3, DRAW_PAINT, 255));
    } else {
      ChainDraw(outlines, points);
      const bool isClosed =
          contour.contourType == ROI_POLYGON || contour.contourType == ROI_FREEHAND;
      if (isClosed && points.size() > 2) {
        const PointInt ends[] = {points.back(), points.front()};
        ChainDraw(outlines, ends);
      }
    }
  }
  return outlines;
}

}  // namespace front
