// Pictures of the recipes' demonstration.
#include "scenes/lots.h"

#include <algorithm>

#include "scenes/gauges.h"
#include "scenes/labels.h"
#include "scenes/random.h"

namespace scenes {
namespace {

constexpr double RADIUS = 30;
constexpr double HOLE = 13;

Part WasherAt(Point centre, double radius, double hole, int group) {
  Part part;
  part.shape = Shape::Washer;
  part.centre = centre;
  part.length = radius;
  part.width = hole;
  part.group = group;
  return part;
}

LotPicture TrayOf(const std::string& file, std::vector<Part> parts, bool good) {
  Setup setup;
  setup.width = 480;
  setup.height = 360;
  setup.seed = 40 + parts.size() + static_cast<uint64_t>(file[4]);
  setup.tray = {0.72, 0.12, 0.015, 0.015, 0.1};
  setup.material = {0.22, 0.05, 0.05, 0.01};
  std::string truth = std::to_string(parts.size()) + " parts";
  for (const Part& part : parts) {
    truth +=
        ", " + std::to_string(static_cast<int>(part.length)) + (part.width > 0 ? " with hole" : "");
  }
  return {file, good, truth, Render(setup, parts)};
}

// In two rows, none quite in its place.
std::vector<Part> EightWashers(uint64_t seed) {
  Random random(seed);
  std::vector<Part> parts;
  for (int i = 0; i < 8; i++) {
    const Point centre = {70 + i % 4 * 112 + random.Between(-12, 12),
                          100 + i / 4 * 150 + random.Between(-20, 20)};
    parts.push_back(WasherAt(centre, RADIUS, HOLE, i));
  }
  return parts;
}

// A bar code above a display on one ground.
LotPicture PackageOf(const std::string& file, const std::string& code, const std::string& weight,
                     bool good) {
  const Picture label = BarcodeLabel(file, code, 0).picture;
  const Picture display = Display(file, weight).picture;
  Picture picture;
  picture.width = label.width;
  picture.height = label.height + display.height;
  picture.pixels.assign(static_cast<size_t>(picture.width) * static_cast<size_t>(picture.height),
                        120);
  const auto place = [&](const Picture& part, int left, int top) {
    for (int y = 0; y < part.height; y++) {
      const auto from = part.pixels.begin() + static_cast<std::ptrdiff_t>(y) * part.width;
      std::copy(
          from, from + part.width,
          picture.pixels.begin() + static_cast<std::ptrdiff_t>(top + y) * picture.width + left);
    }
  };
  place(label, 0, 0);
  place(display, 80, label.height);
  return {file, good, code + ", " + weight, picture};
}

}  // namespace

std::vector<LotPicture> Trays() {
  std::vector<LotPicture> trays;
  for (int i = 1; i <= 3; i++) {
    trays.push_back(
        TrayOf("tray" + std::to_string(i) + ".bmp", EightWashers(static_cast<uint64_t>(i)), true));
  }
  std::vector<Part> parts = EightWashers(4);
  parts.erase(parts.begin() + 5);
  trays.push_back(TrayOf("tray4.bmp", parts, false));
  parts = EightWashers(5);
  parts[2].width = 0;
  trays.push_back(TrayOf("tray5.bmp", parts, false));
  parts = EightWashers(6);
  parts[6].length = RADIUS + 4;
  trays.push_back(TrayOf("tray6.bmp", parts, false));
  return trays;
}

std::vector<LotPicture> Packages() {
  return {PackageOf("eights.bmp", "", "8888", false),
          PackageOf("package1.bmp", "20261122", "250.4", true),
          PackageOf("package2.bmp", "20261123", "249.8", true),
          PackageOf("package3.bmp", "19870604", "250.1", false),
          PackageOf("package4.bmp", "20261124", "238.9", false)};
}

}  // namespace scenes
