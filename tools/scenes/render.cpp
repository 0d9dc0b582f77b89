// Light, lens and sensor of the scenes.
#include "scenes/render.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

#include "scenes/random.h"

namespace scenes {
namespace {

constexpr int SAMPLES = 3;  // samples a pixel and axis
constexpr double EDGE_REACH = 3.0;
constexpr double SHADOW_REACH = 14.0;
constexpr Point LIGHT{-0.6, -0.8};  // where the light comes from, in the plane of the tray

class Plane {
 public:
  Plane(int width, int height, double value = 0)
      : width_(width), height_(height), values_(Size(width, height), value) {}
  int width() const { return width_; }
  int height() const { return height_; }
  double& At(int x, int y) { return values_[Index(x, y)]; }
  double At(int x, int y) const { return values_[Index(x, y)]; }
  double Clamped(int x, int y) const {
    return At(std::clamp(x, 0, width_ - 1), std::clamp(y, 0, height_ - 1));
  }

 private:
  static size_t Size(int width, int height) {
    return static_cast<size_t>(width) * static_cast<size_t>(height);
  }
  size_t Index(int x, int y) const { return Size(width_, y) + static_cast<size_t>(x); }
  int width_, height_;
  std::vector<double> values_;
};

// A fixed random value in -1 to 1 for each point of a grid.
double Lattice(int64_t x, int64_t y, uint64_t seed) {
  Random random(seed ^ static_cast<uint64_t>(x * 0x1F123BB5) ^
                (static_cast<uint64_t>(y * 0x5851F42D) << 20));
  return 2 * random.Uniform() - 1;
}

double Clouds(double x, double y, uint64_t seed) {
  const double fx = std::floor(x), fy = std::floor(y);
  const auto ix = static_cast<int64_t>(fx);
  const auto iy = static_cast<int64_t>(fy);
  const auto smooth = [](double t) { return t * t * (3 - 2 * t); };
  const double u = smooth(x - fx), v = smooth(y - fy);
  const double top = std::lerp(Lattice(ix, iy, seed), Lattice(ix + 1, iy, seed), u);
  const double bottom = std::lerp(Lattice(ix, iy + 1, seed), Lattice(ix + 1, iy + 1, seed), u);
  return std::lerp(top, bottom, v);
}

void BlurLine(std::vector<double>* line, const std::vector<double>& weights) {
  const auto reach = static_cast<int64_t>(weights.size()) - 1;
  const auto count = static_cast<int64_t>(line->size());
  const std::vector<double> source = *line;
  for (int64_t i = 0; i < count; ++i) {
    double sum = 0;
    for (int64_t k = -reach; k <= reach; ++k) {
      sum += weights[static_cast<size_t>(std::abs(k))] *
             source[static_cast<size_t>(std::clamp<int64_t>(i + k, 0, count - 1))];
    }
    (*line)[static_cast<size_t>(i)] = sum;
  }
}

void Blur(Plane* plane, double deviation) {
  if (deviation <= 0) return;
  std::vector<double> weights;
  double total = 0;
  for (int k = 0; k <= static_cast<int>(std::ceil(3 * deviation)); ++k) {
    weights.push_back(std::exp(-0.5 * k * k / (deviation * deviation)));
    total += weights.back() * (k == 0 ? 1 : 2);
  }
  for (double& weight : weights) weight /= total;

  std::vector<double> line(static_cast<size_t>(plane->width()));
  for (int y = 0; y < plane->height(); ++y) {
    for (int x = 0; x < plane->width(); ++x) line[static_cast<size_t>(x)] = plane->At(x, y);
    BlurLine(&line, weights);
    for (int x = 0; x < plane->width(); ++x) plane->At(x, y) = line[static_cast<size_t>(x)];
  }
  line.resize(static_cast<size_t>(plane->height()));
  for (int x = 0; x < plane->width(); ++x) {
    for (int y = 0; y < plane->height(); ++y) line[static_cast<size_t>(y)] = plane->At(x, y);
    BlurLine(&line, weights);
    for (int y = 0; y < plane->height(); ++y) plane->At(x, y) = line[static_cast<size_t>(y)];
  }
}

// Where the surface faces: the way out of the part at a point, as a unit vector.
Point Outward(const Part& part, Point at) {
  constexpr double STEP = 0.25;
  const Point slope{Distance(part, {at.x + STEP, at.y}) - Distance(part, {at.x - STEP, at.y}),
                    Distance(part, {at.x, at.y + STEP}) - Distance(part, {at.x, at.y - STEP})};
  const double length = std::hypot(slope.x, slope.y);
  return length > 0 ? Point{slope.x / length, slope.y / length} : Point{};
}

// The light that a point of a part sends to the camera.
double PartLight(const Part& part, Point at, const Material& material, uint64_t seed) {
  const double depth = -Distance(part, at);
  const Point own = Local(part, at);
  const Point out = Outward(part, at);
  const double toLight = out.x * LIGHT.x + out.y * LIGHT.y;
  double light = material.level;

  switch (part.shape) {
    case Shape::Washer: {
      // Turned metal shines in two opposite sectors; the edges are rolled off.
      const double bevel = std::exp(-depth / 2.2);
      const double angle = std::atan2(at.y - part.centre.y, at.x - part.centre.x);
      const double sector = std::pow(std::abs(std::cos(angle - 2.2)), 14.0);
      light += material.relief * bevel * toLight + material.gloss * sector * (1 - bevel);
      const double radius = std::hypot(at.x - part.centre.x, at.y - part.centre.y);
      light += material.grain * std::sin(radius * 3.1) * 0.7;
      break;
    }
    case Shape::Nut: {
      const double bevel = std::exp(-depth / 3.5);
      const double radius = std::hypot(own.x, own.y);
      const double chamfer = std::exp(-0.5 * std::pow((radius - part.length * 0.97) / 1.6, 2));
      light += material.relief * bevel * toLight + material.gloss * 0.8 * chamfer;
      // The thread shows as thin rings at the wall of the hole.
      const double wall = radius - part.width;
      if (wall < 4) light -= material.relief * 0.8 * (1 - wall / 4);
      break;
    }
    case Shape::Pin: {
      // A polished round shaft under a lamp at 30 degrees from above.
      const double head =
          part.detail > 0 ? std::hypot(own.x - part.length, own.y) - part.detail : 1.0;
      const double half = head < 0 ? part.detail : part.width;
      const double side = std::clamp(1 - depth / half, 0.0, 1.0);
      const double up = std::sqrt(1 - side * side);
      const double diffuse = std::max(0.0, 0.5 * side * toLight + 0.866 * up);
      const double mirrored = std::max(0.0, 0.26 * side * toLight + 0.966 * up);
      light += material.relief * (1.5 * diffuse - 1.1) + material.gloss * std::pow(mirrored, 50.0);
      break;
    }
    case Shape::Chip: {
      const double bevel = std::exp(-depth / 1.8);
      light += material.relief * bevel * toLight;
      // Metal caps at both ends.
      const double cap = part.length - std::abs(own.x);
      if (cap < part.length * 0.24) light += material.gloss * (0.7 + 0.3 * toLight * bevel);
      // The joint between cap and body.
      light -= material.relief * 0.6 * std::exp(-std::abs(cap - part.length * 0.24) / 0.8);
      break;
    }
  }
  light += material.grain * Clouds(at.x / 1.7, at.y / 1.7, seed + 77);
  return light;
}

double TrayLight(const Setup& setup, Point at) {
  const Tray& tray = setup.tray;
  // The lamp stands at the upper left; the lens darkens the corners a little.
  const double dx = at.x / setup.width - 0.38, dy = at.y / setup.height - 0.36;
  const double fall = std::min(1.0, 1.7 * (dx * dx + dy * dy));
  const double streaks = Clouds(at.x / 46.0, at.y / 0.9, setup.seed) * 0.6 +
                         Clouds(at.x / 17.0, at.y / 1.6, setup.seed + 3) * 0.4;
  const double clouds = Clouds(at.x / 90.0, at.y / 90.0, setup.seed + 5) * 0.6 +
                        Clouds(at.x / 31.0, at.y / 31.0, setup.seed + 7) * 0.4;
  return tray.level * (1 - tray.shading * fall) + tray.texture * streaks + tray.mottle * clouds;
}

double Shading(const Setup& setup, Point at) {
  const double dx = at.x / setup.width - 0.38, dy = at.y / setup.height - 0.36;
  return 1 - 0.6 * setup.tray.shading * std::min(1.0, 1.7 * (dx * dx + dy * dy));
}

bool Near(const Part& part, Point at, double margin) {
  const double reach = Reach(part) + margin;
  const double dx = at.x - part.centre.x, dy = at.y - part.centre.y;
  return dx * dx + dy * dy <= reach * reach;
}

// The tray is gray.
double Light(const Setup& setup, const std::vector<const Part*>& parts, Point at,
             const double Tint::*share) {
  const Part* top = nullptr;
  double nearest = 0;
  double open = 1e9;  // distance from the shadow's middle
  for (const Part* part : parts) {
    if (!Near(*part, at, SHADOW_REACH)) continue;
    const double distance = Distance(*part, at);
    if (distance < nearest) {
      nearest = distance;
      top = part;
    }
    // The shadow falls away from the light.
    const Point from{at.x + LIGHT.x * 4.5, at.y + LIGHT.y * 4.5};
    open = std::min({open, Distance(*part, from), distance + 2.0});
  }
  if (top) {
    const double light = PartLight(*top, at, setup.material, setup.seed) * Shading(setup, at);
    return share ? light * top->tint.*share : light;
  }
  const double shade = 1 / (1 + std::exp((open - 1.0) / 1.6));
  return TrayLight(setup, at) * (1 - setup.tray.shadow * shade);
}

template <class Function>
void ForSamples(int x, int y, int samples, Function function) {
  for (int j = 0; j < samples; ++j) {
    for (int i = 0; i < samples; ++i) {
      function(Point{x + (i + 0.5) / samples - 0.5, y + (j + 0.5) / samples - 0.5});
    }
  }
}

// The light that falls on each pixel: of all colours, or of one of them.
Plane LightOnSensor(const Setup& setup, const std::vector<Part>& parts, const double Tint::*share) {
  Plane light(setup.width, setup.height);
  std::vector<const Part*> here;
  for (int y = 0; y < setup.height; ++y) {
    for (int x = 0; x < setup.width; ++x) {
      const Point pixel{static_cast<double>(x), static_cast<double>(y)};
      here.clear();
      bool edge = false;
      for (const Part& part : parts) {
        if (!Near(part, pixel, SHADOW_REACH + 2)) continue;
        here.push_back(&part);
        edge = edge || std::abs(Distance(part, pixel)) < EDGE_REACH;
      }
      // Only edges need more than one sample: all else is smooth.
      const int samples = edge ? SAMPLES : 1;
      double sum = 0;
      ForSamples(x, y, samples, [&](Point at) { sum += Light(setup, here, at, share); });
      light.At(x, y) = sum / (samples * samples);
    }
  }
  Blur(&light, setup.camera.blur);
  return light;
}

std::vector<uint16_t> Sensed(const Setup& setup, const Plane& light, uint64_t seed) {
  std::vector<uint16_t> pixels;
  const double range = setup.camera.bits == 8 ? 255 : 4095;
  Random random(seed);
  for (int y = 0; y < setup.height; ++y) {
    for (int x = 0; x < setup.width; ++x) {
      // Shot noise grows with the root of the light; reading adds a little of its own.
      const double value = light.At(x, y);
      const double deviation =
          setup.camera.noise * std::sqrt(std::max(0.0, value) + 0.05) + setup.camera.noise * 0.25;
      const double sensed = std::clamp(value + deviation * random.Gauss(), 0.0, 1.0);
      pixels.push_back(static_cast<uint16_t>(std::lround(sensed * range)));
    }
  }
  return pixels;
}

}  // namespace

Picture Render(const Setup& setup, const std::vector<Part>& parts) {
  Picture picture;
  picture.width = setup.width;
  picture.height = setup.height;
  picture.bits = setup.camera.bits;
  if (!setup.camera.colour) {
    picture.pixels = Sensed(setup, LightOnSensor(setup, parts, nullptr), setup.seed + 1000);
    return picture;
  }
  uint64_t seed = setup.seed + 1000;
  for (const double Tint::*share : {&Tint::red, &Tint::green, &Tint::blue}) {
    const std::vector<uint16_t> levels = Sensed(setup, LightOnSensor(setup, parts, share), seed++);
    picture.colours.resize(levels.size());
    std::transform(levels.begin(), levels.end(), picture.colours.begin(), picture.colours.begin(),
                   [](uint16_t level, uint32_t colour) { return colour << 8 | level; });
  }
  return picture;
}

std::vector<Truth> TruthOf(const Setup& setup, const std::vector<Part>& parts) {
  constexpr int FINE = 6;  // samples a pixel and axis: areas good to a tenth of a percent
  std::vector<Truth> truth;
  for (const Part& part : parts) {
    truth.resize(std::max(truth.size(), static_cast<size_t>(part.group) + 1));
    Truth& group = truth[static_cast<size_t>(part.group)];
    group.parts += 1;
    group.holes += Holes(part);
    group.perimeter += Perimeter(part);
  }
  for (size_t index = 0; index < truth.size(); ++index) {
    std::vector<const Part*> members;
    double left = 1e9, right = -1e9, top = 1e9, bottom = -1e9;
    for (const Part& part : parts) {
      if (part.group != static_cast<int>(index)) continue;
      members.push_back(&part);
      left = std::min(left, part.centre.x - Reach(part));
      right = std::max(right, part.centre.x + Reach(part));
      top = std::min(top, part.centre.y - Reach(part));
      bottom = std::max(bottom, part.centre.y + Reach(part));
    }
    const auto nearest = [&](Point at) {
      double distance = 1e9;
      for (const Part* part : members) distance = std::min(distance, Distance(*part, at));
      return distance;
    };
    double area = 0, sumX = 0, sumY = 0;
    const int lastX = std::min(setup.width - 1, static_cast<int>(std::ceil(right)) + 1);
    const int lastY = std::min(setup.height - 1, static_cast<int>(std::ceil(bottom)) + 1);
    for (int y = std::max(0, static_cast<int>(top) - 1); y <= lastY; ++y) {
      for (int x = std::max(0, static_cast<int>(left) - 1); x <= lastX; ++x) {
        const Point pixel{static_cast<double>(x), static_cast<double>(y)};
        // A pixel well inside or outside is so in all its samples.
        const double distance = nearest(pixel);
        const int samples = std::abs(distance) > 1 ? 1 : FINE;
        ForSamples(x, y, samples, [&](Point at) {
          if (nearest(at) >= 0) return;
          const double share = 1.0 / (samples * samples);
          area += share;
          sumX += share * at.x;
          sumY += share * at.y;
        });
      }
    }
    truth[index].area = area;
    if (area > 0) truth[index].centre = {sumX / area, sumY / area};
  }
  return truth;
}

std::vector<Truth> TruthOfOutlines(const Setup& setup, const std::vector<Part>& parts) {
  std::vector<Part> alone;
  for (const Part& part : parts) {
    alone.push_back(WithoutHoles(part));
    alone.back().group = static_cast<int>(alone.size()) - 1;
  }
  return TruthOf(setup, alone);
}

}  // namespace scenes
