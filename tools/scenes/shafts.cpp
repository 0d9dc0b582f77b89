// Shafts of known diameters: dark before a lit ground, as behind a lens without perspective.
#include "scenes/shafts.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "scenes/paint.h"

namespace scenes {
namespace {

constexpr double BLUR = 0.9;      // deviation of the lens blur, pixels
constexpr double OVERLAP = 15.0;  // by which a section reaches into a thicker neighbour

// From a box around the axis, negative inside.
double DistanceFromBox(double u, double v, double from, double to, double half) {
  const double dx = std::max(from - u, u - to), dy = std::abs(v) - half;
  return dx > 0 && dy > 0 ? std::sqrt(dx * dx + dy * dy) : std::max(dx, dy);
}

// Sections that reach into thicker neighbours, so that no outline runs between them.
std::vector<Section> Joined(const std::vector<Section>& sections) {
  std::vector<Section> joined = sections;
  for (size_t i = 0; i < sections.size(); i++) {
    const auto isThicker = [&](size_t j) {
      return j < sections.size() && sections[j].diameter > sections[i].diameter;
    };
    if (i > 0 && isThicker(i - 1)) joined[i].from -= OVERLAP;
    if (isThicker(i + 1)) joined[i].to += OVERLAP;
  }
  return joined;
}

// From the outline.
double DistanceFrom(const std::vector<Section>& joined, double u, double v) {
  double distance = 1e9;
  for (const Section& section : joined) {
    distance =
        std::min(distance, DistanceFromBox(u, v, section.from, section.to, section.diameter / 2));
  }
  return distance;
}

// Of the ground's light, the part that comes past a straight outline through the lens.
double ShareOfLight(double distance) {
  constexpr double far = 8 * BLUR;
  if (std::abs(distance) > far) return distance > 0 ? 1 : 0;
  return std::erfc(-distance / (BLUR * std::numbers::sqrt2)) / 2;
}

std::vector<Section> SectionsOf(double head, double body, double seat, double groove, double foot) {
  return {{"head", -200, -130, head},
          {"body", -130, -30, body},
          {"seat", -30, 60, seat},
          {"groove", 60, 75, groove},
          {"foot", 75, 200, foot}};
}

}  // namespace

Shaft ShaftAt(const std::string& file, Point place, double degrees,
              const std::vector<Section>& sections) {
  const double angle = degrees * std::numbers::pi / 180;
  const double c = std::cos(angle), s = std::sin(angle);
  const std::vector<Section> joined = Joined(sections);
  const auto light = [&](Point at) {
    const double x = at.x - place.x, y = at.y - place.y;
    const double share = ShareOfLight(DistanceFrom(joined, c * x + s * y, c * y - s * x));
    const double ground = 212 - 0.05 * at.x - 0.03 * at.y;  // lit from the upper left
    return 34 + (ground - 34) * share;
  };
  const auto seed = static_cast<uint64_t>(1000 + 10 * degrees + place.x);
  return {file, sections, Paint(640, 480, seed, light)};
}

std::vector<Shaft> AllShafts() {
  return {ShaftAt("shaft1.bmp", {320, 240}, 0, SectionsOf(60, 100, 80, 64, 44)),
          ShaftAt("shaft2.bmp", {329.3, 235.6}, 11.3, SectionsOf(60.12, 99.9, 80.07, 64.2, 44.1)),
          ShaftAt("shaft3.bmp", {311.6, 246.2}, -27.5, SectionsOf(59.85, 100.1, 79.9, 63.8, 43.9)),
          ShaftAt("shaft4.bmp", {324.5, 231.1}, 63, SectionsOf(60.05, 100.2, 80.1, 64.1, 44.15)),
          ShaftAt("shaft5.bmp", {318.2, 243.7}, 178.2, SectionsOf(59.95, 99.85, 79.95, 63.9, 44)),
          ShaftAt("shaft6.bmp", {326.4, 238.8}, -96.4, SectionsOf(60.1, 99.1, 80.05, 64.1, 43.95))};
}

}  // namespace scenes
