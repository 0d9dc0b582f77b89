// The objects of a picture that have the shape of a template.
#include "orlune/gauge/shape_matches.h"

#include <algorithm>
#include <cmath>
#include <stdexcept>

namespace front {
namespace {

constexpr int32_t MATCH_BORDER = 2;  // what 8-connected particles need around the picture

// The upright rectangle of each object.
std::vector<ApiRect> RectsOf(const Labels& labels) {
  struct Sides {
    int32_t left, top, right, bottom;
  };
  std::vector<Sides> sides(labels.count, {labels.width, labels.height, 0, 0});
  for (const PixelRun& run : labels.runs) {
    Sides& s = sides[run.label - 1];
    s.left = std::min(s.left, run.start);
    s.right = std::max(s.right, run.end);
    s.top = std::min(s.top, run.y);
    s.bottom = std::max(s.bottom, run.y + 1);
  }
  std::vector<ApiRect> rects;
  for (const Sides& s : sides) rects.push_back({s.top, s.left, s.bottom - s.top, s.right - s.left});
  return rects;
}

std::vector<double> AreasOf(const Labels& labels) {
  std::vector<double> areas(labels.count);
  for (const PixelRun& run : labels.runs) areas[run.label - 1] += run.end - run.start;
  return areas;
}

// 1 in the objects that are wanted, else 0.
template <class Wanted>
Image MaskOf(const Labels& labels, Wanted wanted) {
  Image mask(IMAGE_I16, MATCH_BORDER, labels.width, labels.height);
  Check(ZEL_ClearPixels(mask));
  const ImageInfo info = mask.Info();
  for (const PixelRun& run : labels.runs) {
    if (!wanted(run.label)) continue;
    std::fill_n(Row<int16_t>(info, run.y) + run.start, run.end - run.start, int16_t{1});
  }
  return mask;
}

// The score of each object that the library takes for a match, 0 of the others.
std::vector<double> ScoresOf(const Labels& labels, const Image& mask, const Template& shape,
                             const MatchSettings& settings) {
  int32_t count = 0;
  ShapeReport* reports = nullptr;
  const Image numbers(IMAGE_I16, MATCH_BORDER);
  Check(ZEL_ShapeMatch(mask, shape.mask, numbers,
                       settings.finding.eightConnected ? CONNECTIVITY_8 : CONNECTIVITY_4,
                       settings.tolerance, settings.scales.has_value(), &count, &reports));
  const Block<ShapeReport> owner(reports);
  std::vector<double> scores(labels.count);
  if (count == 0) return scores;
  const ImageInfo info = numbers.Info();
  for (const PixelRun& run : labels.runs) {
    const auto number = static_cast<uint16_t>(Row<int16_t>(info, run.y)[run.start]);
    if (number > 0) scores[run.label - 1] = static_cast<double>(reports[number - 1].score);
  }
  return scores;
}

ShapeMatch MatchOf(const Labels& labels, uint32_t label, double score, const Template& shape) {
  const ObjectPose object = PoseOf(labels, label).value_or(ObjectPose{});
  ShapeMatch match{.number = label,
                   .at = object.pose.at,
                   .degrees = {},
                   .hasFront = shape.object.hasFront && object.hasFront,
                   .scale = std::sqrt(object.area / shape.object.area),
                   .score = score,
                   .area = object.area};
  if (!shape.object.hasAxis || !object.hasAxis) return match;
  double degrees = Turned(object.pose.degrees - shape.object.pose.degrees);
  if (!match.hasFront && std::abs(degrees) > 90) degrees = Turned(degrees + 180);
  match.degrees = degrees;
  return match;
}

}  // namespace

Template ReadTemplate(const std::string& path, const InspectSettings& finding) {
  const Inspection inspection = Locate(path, finding);
  const Labels& labels = inspection.labels;
  const std::vector<double> areas = AreasOf(labels);
  if (areas.empty()) {
    throw std::runtime_error(inspection.remark.empty() ? "there is no object" : inspection.remark);
  }
  const auto largest =
      static_cast<uint32_t>(std::max_element(areas.begin(), areas.end()) - areas.begin());
  const ApiRect rect = RectsOf(labels)[largest];
  Template shape{Image(IMAGE_U8, 0, rect.width, rect.height),
                 PoseOf(labels, largest + 1).value_or(ObjectPose{})};
  Check(ZEL_ClearPixels(shape.mask));
  const ImageInfo info = shape.mask.Info();
  for (const PixelRun& run : labels.runs) {
    if (run.label != largest + 1) continue;
    std::fill_n(Row<uint8_t>(info, run.y - rect.top) + run.start - rect.left, run.end - run.start,
                uint8_t{1});
  }
  return shape;
}

Matching FindMatches(const std::string& path, const Template& shape,
                     const MatchSettings& settings) {
  return FindMatches(Locate(path, settings.finding), shape, settings);
}

Matching FindMatches(Inspection located, const Template& shape, const MatchSettings& settings) {
  Matching matching{std::move(located), {}};
  const Labels& labels = matching.inspection.labels;
  const std::vector<double> areas = AreasOf(labels);
  const auto isWanted = [&](uint32_t label) {
    const double scale = std::sqrt(areas[label - 1] / shape.object.area);
    return !settings.scales || (scale >= settings.scales->low && scale <= settings.scales->high);
  };
  const std::vector<double> scores = ScoresOf(labels, MaskOf(labels, isWanted), shape, settings);
  const std::vector<ApiRect> rects = RectsOf(labels);
  for (uint32_t label = 1; label <= labels.count; label++) {
    const double score = scores[label - 1];
    matching.inspection.particles.push_back(
        {.number = label, .kept = score > 0, .rect = rects[label - 1], .values = {}});
    if (score > 0) matching.matches.push_back(MatchOf(labels, label, score, shape));
  }
  return matching;
}

}  // namespace front
