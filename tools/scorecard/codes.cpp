// Bars rendered by the light that falls on each pixel.
#include "scorecard/codes.h"

#include <algorithm>
#include <cmath>
#include <fstream>
#include <map>
#include <numbers>
#include <sstream>
#include <stdexcept>

#include "scenes/random.h"

namespace scorecard {
namespace {

using front::BarcodeKind;

constexpr double LIGHTEST = 210;
constexpr double BAR_HEIGHT = 24;  // modules

BarcodeKind KindOf(const std::string& name) {
  static const std::map<std::string, BarcodeKind> kinds = {
      {"Codabar", BarcodeKind::Codabar}, {"Interleaved", BarcodeKind::Interleaved},
      {"MSI", BarcodeKind::Msi},         {"Code39", BarcodeKind::Code39},
      {"Code93", BarcodeKind::Code93},   {"Code128", BarcodeKind::Code128},
      {"EAN8", BarcodeKind::Ean8},       {"EAN13", BarcodeKind::Ean13},
      {"UPCA", BarcodeKind::UpcA}};
  return kinds.at(name);
}

// Peers give control characters as bytes and refuse short texts.
bool IsPlain(const std::string& text) {
  constexpr size_t SHORTEST = 6;
  const auto isPlain = [](char c) { return c >= ' ' && c <= '~' && c != '\\'; };
  return text.size() >= SHORTEST && std::all_of(text.begin(), text.end(), isPlain) &&
         text.find("FNC") == std::string::npos && text.find("SHIFT") == std::string::npos &&
         text.find("DEL") == std::string::npos;
}

uint8_t Level(double light) {
  return static_cast<uint8_t>(std::lround(std::clamp(light, 0.0, 255.0)));
}

// Where bars begin and end, in pixels from the middle of the code.
std::vector<double> EdgesOf(const std::string& widths, const Look& look) {
  double length = 0;
  std::vector<double> edges = {length};
  for (const char width : widths) edges.push_back(length += (width - '0') * look.module);
  const double half = length / 2;
  const double bend = look.bend * std::numbers::pi / 180;
  for (double& edge : edges) {
    edge -= half;
    if (bend > 0) edge = half / bend * std::sin(edge / half * bend);
  }
  return edges;
}

// The share of light along the code, at steps of a pixel's part, after blur.
class Profile {
 public:
  Profile(const std::vector<double>& edges, double blur) {
    constexpr double PIXEL = 0.29;  // deviation of the light that one pixel gathers
    const double deviation = std::hypot(blur, PIXEL);
    reach_ = edges.back() + 6 * deviation + 1;
    for (double x = -reach_; x <= reach_; x += 1.0 / STEPS) {
      double dark = 0;
      for (size_t i = 0; i + 1 < edges.size(); i += 2) {
        dark += Below(x - edges[i], deviation) - Below(x - edges[i + 1], deviation);
      }
      light_.push_back(1 - dark);
    }
  }

  double At(double x) const {
    const auto i = static_cast<std::ptrdiff_t>(std::lround((x + reach_) * STEPS));
    return i < 0 || i >= std::ssize(light_) ? 1.0 : light_[static_cast<size_t>(i)];
  }

 private:
  static constexpr double STEPS = 32;
  static double Below(double x, double deviation) {
    return 0.5 * std::erfc(-x / (deviation * std::numbers::sqrt2));
  }
  double reach_ = 0;
  std::vector<double> light_;
};

}  // namespace

std::vector<Code> CodesIn(const std::string& table) {
  std::ifstream in(table);
  if (!in) throw std::runtime_error(table + " cannot be read");
  std::vector<Code> codes;
  for (std::string line; std::getline(in, line);) {
    std::istringstream fields(line);
    std::string kind, text, checked, widths;
    std::getline(fields, kind, '\t');
    std::getline(fields, text, '\t');
    std::getline(fields, checked, '\t');
    std::getline(fields, widths, '\t');
    if (!IsPlain(text) || checked == "refused") continue;
    codes.push_back({KindOf(kind), text, widths, checked != "none" && checked != "unknown"});
  }
  return codes;
}

Sight Show(const std::string& widths, const Look& look, uint64_t seed) {
  scenes::Random random(seed);
  const std::vector<double> edges = EdgesOf(widths, look);
  const double angle = look.tilt * std::numbers::pi / 180;
  const double cosine = std::cos(angle), sine = std::sin(angle);
  const double halfHeight = BAR_HEIGHT / 2 * look.module;
  const double quiet = look.quiet * look.module;
  const double halfX = cosine * (edges.back() + quiet) + sine * (halfHeight + 4);
  const double halfY = sine * (edges.back() + quiet) + cosine * (halfHeight + 4);
  Sight sight;
  sight.width = static_cast<int32_t>(std::ceil(2 * halfX));
  sight.height = static_cast<int32_t>(std::ceil(2 * halfY));
  const double centreX = sight.width / 2.0 + random.Between(-0.5, 0.5);
  const double centreY = sight.height / 2.0;
  const Profile profile(edges, look.blur * look.module);
  for (int32_t y = 0; y < sight.height; ++y) {
    for (int32_t x = 0; x < sight.width; ++x) {
      const double dx = x + 0.5 - centreX, dy = y + 0.5 - centreY;
      const double across = cosine * dy - sine * dx;
      const double light =
          std::fabs(across) < halfHeight ? profile.At(cosine * dx + sine * dy) : 1.0;
      sight.pixels.push_back(
          Level(LIGHTEST - look.contrast * (1 - light) + look.noise * random.Gauss()));
    }
  }
  // Upright and as high as all bars reach, with some light at both ends.
  const double margin = std::min(quiet, 3 * look.module);
  const double reach = std::max(0.3 * halfHeight - 0.5 * sine * edges.back(), 1.0);
  const auto left = static_cast<int32_t>(centreX - cosine * edges.back() - margin);
  const auto right = static_cast<int32_t>(centreX + cosine * edges.back() + margin);
  sight.place.left = std::max(0, left);
  sight.place.width = std::min(sight.width, right + 1) - sight.place.left;
  sight.place.top = static_cast<int32_t>(centreY - reach);
  sight.place.height = static_cast<int32_t>(2 * reach) + 1;
  return sight;
}

Sight NoCode(uint64_t seed) {
  scenes::Random random(seed);
  Sight sight;
  sight.width = 320;
  sight.height = 96;
  sight.place = {8, 8, 304, 80};
  const int kind = static_cast<int>(seed % 4);
  std::vector<double> columns, rows;
  for (double level = 120; columns.size() < 320; level = random.Between(30, 220)) {
    const auto run = static_cast<size_t>(kind == 1 ? 4 : random.Between(2, 12));
    columns.insert(columns.end(), run, kind == 1 ? (columns.size() % 8 < 4 ? 40 : 200) : level);
  }
  for (size_t y = 0; y < 96; ++y) rows.push_back(random.Between(0, 1));
  for (int32_t y = 0; y < sight.height; ++y) {
    for (int32_t x = 0; x < sight.width; ++x) {
      const double column = columns[static_cast<size_t>(x)];
      double level = column + 8 * random.Gauss();  // stripes, even ones and others
      if (kind == 2) level = random.Between(0, 255);
      if (kind == 3) {  // words on lines
        const bool isInk = y % 16 < 10 && random.Uniform() < 0.45 && column > 60;
        level = isInk ? 40 : 210;
      }
      sight.pixels.push_back(Level(level));
    }
  }
  return sight;
}

std::string Mutilated(const std::string& widths, uint64_t seed) {
  scenes::Random random(seed);
  std::string changed = widths;
  for (int attempt = 0; attempt < 100 && changed == widths; ++attempt) {
    const auto at = static_cast<size_t>(random.Between(6, static_cast<double>(widths.size()) - 8));
    if (seed % 3 == 0) {
      std::swap(changed[at], changed[at + 1]);
    } else if (seed % 3 == 1 && changed[at] > '1' && changed[at + 2] < '4') {
      --changed[at];
      ++changed[at + 2];
    } else if (seed % 3 == 2) {
      changed.resize(std::max<size_t>(9, at | 1));
    }
  }
  return changed;
}

}  // namespace scorecard
