// Where objects lie in a picture, and which way they point, by moments of their pixels.
#include "orlune/gauge/poses.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <vector>

#include "orlune/inspect/shapes.h"

namespace front {
namespace {

constexpr double DEGREES = 180 / std::numbers::pi;

// Of the ratio of the axes, and of the third moment along the long one by the third power of its
// deviation: below, noise of the outline decides. Stairs of turned squares and discs stay below.
constexpr double LEAST_AXIS_RATIO = 1.05;
constexpr double LEAST_SKEWNESS = 0.02;

uint32_t LargestLabel(const Labels& labels) {
  std::vector<int64_t> areas(labels.count);
  for (const PixelRun& run : labels.runs) areas[run.label - 1] += run.end - run.start;
  const auto largest = std::max_element(areas.begin(), areas.end());
  return largest == areas.end() ? 0 : static_cast<uint32_t>(largest - areas.begin()) + 1;
}

// The third moment along a direction, by the third power of the deviation.
double SkewnessAlong(const std::vector<PixelRun>& runs, Place centre, double angle) {
  const double c = std::cos(angle), s = std::sin(angle);
  double squares = 0, cubes = 0, count = 0;
  for (const PixelRun& run : runs) {
    for (int32_t x = run.start; x < run.end; x++) {
      const double along = (x - centre.x) * c + (run.y - centre.y) * s;
      squares += along * along;
      cubes += along * along * along;
    }
    count += run.end - run.start;
  }
  return squares > 0 ? cubes / count / std::pow(squares / count, 1.5) : 0;
}

}  // namespace

Place Carried(Place point, const Pose& from, const Pose& to) {
  const double angle = (to.degrees - from.degrees) / DEGREES;
  const double c = std::cos(angle), s = std::sin(angle);
  const double x = point.x - from.at.x, y = point.y - from.at.y;
  return {to.at.x + c * x - s * y, to.at.y + s * x + c * y};
}

double Turned(double degrees) {
  return degrees - 360 * std::floor((degrees + 180) / 360);
}

std::optional<ObjectPose> PoseOf(const Labels& labels, uint32_t label) {
  if (label == 0) label = LargestLabel(labels);
  std::vector<PixelRun> runs;
  std::copy_if(labels.runs.begin(), labels.runs.end(), std::back_inserter(runs),
               [&](const PixelRun& run) { return run.label == label; });
  if (runs.empty()) return std::nullopt;
  Moments moments;
  for (const PixelRun& run : runs) moments.Add(run);
  ObjectPose object;
  object.area = static_cast<double>(moments.area);
  object.pose.at = {moments.CentreX(), moments.CentreY()};
  const Ellipse ellipse = EllipseOf(moments, {});
  object.hasAxis = ellipse.major > LEAST_AXIS_RATIO * ellipse.minor;
  if (!object.hasAxis) return object;
  const double xx = moments.InertiaXX(), yy = moments.InertiaYY(), xy = moments.InertiaXY();
  double angle = std::atan2(2 * xy, xx - yy) / 2;
  // The longer tail is the front.
  const double skewness = SkewnessAlong(runs, object.pose.at, angle);
  object.hasFront = std::abs(skewness) > LEAST_SKEWNESS;
  if (object.hasFront && skewness < 0) angle += std::numbers::pi;
  object.pose.degrees = Turned(angle * DEGREES);
  return object;
}

Pose Resolved(const ObjectPose& object, const Pose& other) {
  Pose pose = object.pose;
  if (!object.hasAxis) pose.degrees = other.degrees;
  const bool opposite = std::abs(Turned(pose.degrees - other.degrees)) > 90;
  if (object.hasAxis && !object.hasFront && opposite) pose.degrees = Turned(pose.degrees + 180);
  return pose;
}

}  // namespace front
