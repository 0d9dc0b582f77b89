// Which parts lie where, on what, under which light.
#include "scenes/scenes.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "scenes/random.h"

namespace scenes {
namespace {

constexpr double GAP = 9.0;     // free room between parts that are apart, pixels
constexpr double MARGIN = 8.0;  // and to the picture's edge

// Throws parts on the tray until they lie apart.
class Layout {
 public:
  Layout(const Setup& setup, uint64_t seed) : setup_(setup), random_(seed) {}

  Random& random() { return random_; }

  // Puts the part somewhere free, turned at random, as a group of its own.
  void Drop(Part part) {
    for (int attempt = 0; attempt < 2000; ++attempt) {
      const double room = Reach(part) + MARGIN;
      part.centre = {random_.Between(room, setup_.width - room),
                     random_.Between(room, setup_.height - room)};
      part.along = Direction();
      part.group = groups_;
      if (!Free(part)) continue;
      parts_.push_back(part);
      ++groups_;
      return;
    }
  }

  // Puts the part against the last one, so that the two touch over a neck of several pixels.
  void Lean(Part part) {
    const Part anchor = parts_.back();
    for (int attempt = 0; attempt < 400; ++attempt) {
      const Point direction = Direction();
      part.along = Direction();
      part.group = anchor.group;
      const auto place = [&](double distance) {
        part.centre = {anchor.centre.x + distance * direction.x,
                       anchor.centre.y + distance * direction.y};
      };
      double low = 0, high = Reach(anchor) + Reach(part) + 4;
      for (int step = 0; step < 20; ++step) {
        const double middle = (low + high) / 2;
        place(middle);
        (Gap(anchor, part) > -1.5 ? high : low) = middle;
      }
      place(low);
      const double room = Reach(part) + MARGIN;
      const bool inside = part.centre.x >= room && part.centre.x <= setup_.width - room &&
                          part.centre.y >= room && part.centre.y <= setup_.height - room;
      if (!inside || !Free(part)) continue;
      parts_.push_back(part);
      return;
    }
  }

  std::vector<Part> Take() { return std::move(parts_); }

 private:
  Point Direction() {
    const double angle = random_.Between(0, 2 * std::numbers::pi);
    return {std::cos(angle), std::sin(angle)};
  }

  bool Free(const Part& part) const {
    return std::all_of(parts_.begin(), parts_.end(), [&](const Part& other) {
      return other.group == part.group || Gap(part, other) >= GAP;
    });
  }

  const Setup& setup_;
  Random random_;
  std::vector<Part> parts_;
  int groups_ = 0;
};

Part WasherOf(double outer, double inner) {
  return {.shape = Shape::Washer, .centre = {}, .length = outer, .width = inner};
}
Part NutOf(double flat, double hole) {
  return {.shape = Shape::Nut, .centre = {}, .length = flat, .width = hole};
}
Part PinOf(double length, double radius, double head) {
  return {.shape = Shape::Pin, .centre = {}, .length = length / 2, .width = radius, .detail = head};
}
Part ChipOf(double length, double width, double hole) {
  return {
      .shape = Shape::Chip, .centre = {}, .length = length / 2, .width = width / 2, .detail = hole};
}

constexpr Tint RED{1.0, 0.16, 0.13, "red"};
constexpr Tint YELLOW{1.0, 0.85, 0.12, "yellow"};
constexpr Tint GREEN{0.12, 0.75, 0.25, "green"};
constexpr Tint BLUE{0.1, 0.3, 1.0, "blue"};
constexpr Tint GRAY{};

}  // namespace

Scene Washers() {
  Scene scene;
  scene.name = "washers";
  scene.subject = "dark washers on a bright tray, two of them touching";
  scene.file = "washers.bmp";
  scene.darkParts = true;
  scene.setup = {
      .width = 640,
      .height = 480,
      .seed = 11,
      .tray = {.level = 0.84, .shading = 0.12, .texture = 0.016, .mottle = 0.014, .shadow = 0.1},
      .material = {.level = 0.24, .relief = 0.12, .gloss = 0.17, .grain = 0.016},
      .camera = {.blur = 0.9, .noise = 0.011, .bits = 8}};
  Layout layout(scene.setup, 5);
  layout.Drop(WasherOf(54, 25));
  layout.Drop(WasherOf(54, 25));
  layout.Lean(WasherOf(40, 19));
  for (int i = 0; i < 4; ++i) layout.Drop(WasherOf(40, 19));
  for (int i = 0; i < 5; ++i) layout.Drop(WasherOf(27, 12));
  scene.parts = layout.Take();
  return scene;
}

Scene Pins() {
  Scene scene;
  scene.name = "pins";
  scene.subject = "bright pins with and without heads on a dark tray";
  scene.file = "pins.tif";
  scene.setup = {
      .width = 801,
      .height = 601,
      .seed = 23,
      .tray = {.level = 0.17, .shading = 0.3, .texture = 0.012, .mottle = 0.012, .shadow = 0.45},
      .material = {.level = 0.6, .relief = 0.14, .gloss = 0.45, .grain = 0.02},
      .camera = {.blur = 0.8, .noise = 0.014, .bits = 8}};
  Layout layout(scene.setup, 9);
  for (int i = 0; i < 9; ++i) layout.Drop(PinOf(120, 5.5, 10.5));
  for (int i = 0; i < 8; ++i) layout.Drop(PinOf(86, 7, 0));
  layout.Drop(PinOf(120, 5.5, 10.5));
  layout.Lean(PinOf(86, 7, 0));
  scene.parts = layout.Take();
  return scene;
}

Scene Chips() {
  Scene scene;
  scene.name = "chips";
  scene.subject = "ceramic chips on a dark tray, some with a hole; 16-bit pixels";
  scene.file = "chips.tif";
  scene.setup = {
      .width = 800,
      .height = 600,
      .seed = 31,
      .tray = {.level = 0.21, .shading = 0.28, .texture = 0.01, .mottle = 0.02, .shadow = 0.5},
      .material = {.level = 0.58, .relief = 0.13, .gloss = 0.27, .grain = 0.03},
      .camera = {.blur = 1.0, .noise = 0.009, .bits = 12}};
  Layout layout(scene.setup, 17);
  for (int i = 0; i < 7; ++i) layout.Drop(ChipOf(92, 46, 0));
  for (int i = 0; i < 5; ++i) layout.Drop(ChipOf(70, 56, 12));
  for (int i = 0; i < 8; ++i) layout.Drop(ChipOf(48, 25, 0));
  scene.parts = layout.Take();
  return scene;
}

Scene Mixed() {
  Scene scene;
  scene.name = "mixed";
  scene.subject = "washers, nuts, pins and chips together, with touching ones";
  scene.file = "mixed.orln";
  scene.setup = {
      .width = 1024,
      .height = 768,
      .seed = 47,
      .tray = {.level = 0.19, .shading = 0.26, .texture = 0.014, .mottle = 0.018, .shadow = 0.45},
      .material = {.level = 0.62, .relief = 0.13, .gloss = 0.26, .grain = 0.02},
      .camera = {.blur = 0.9, .noise = 0.013, .bits = 8}};
  Layout layout(scene.setup, 3);
  layout.Drop(WasherOf(62, 30));
  layout.Lean(NutOf(32, 19));
  layout.Drop(NutOf(40, 23));
  layout.Lean(PinOf(130, 7, 0));
  for (int i = 0; i < 4; ++i) layout.Drop(WasherOf(46, 21));
  for (int i = 0; i < 4; ++i) layout.Drop(NutOf(40, 23));
  for (int i = 0; i < 5; ++i) layout.Drop(PinOf(140, 7, 13));
  for (int i = 0; i < 4; ++i) layout.Drop(ChipOf(100, 52, 0));
  for (int i = 0; i < 3; ++i) layout.Drop(ChipOf(70, 56, 12));
  for (int i = 0; i < 4; ++i) layout.Drop(WasherOf(25, 11));
  for (int i = 0; i < 4; ++i) layout.Drop(ChipOf(48, 25, 0));
  scene.parts = layout.Take();
  return scene;
}

Scene Tokens() {
  Scene scene;
  scene.name = "tokens";
  scene.subject = "plastic parts of four colours and gray ones, with touching ones; in colour";
  scene.file = "tokens.bmp";
  scene.setup = {
      .width = 480,
      .height = 360,
      .seed = 59,
      .tray = {.level = 0.42, .shading = 0.18, .texture = 0.01, .mottle = 0.012, .shadow = 0.3},
      .material = {.level = 0.72, .relief = 0.08, .gloss = 0.1, .grain = 0.012},
      .camera = {.blur = 0.8, .noise = 0.008, .bits = 8, .colour = true}};
  Layout layout(scene.setup, 29);
  const auto tinted = [](Part part, const Tint& tint) {
    part.tint = tint;
    return part;
  };
  layout.Drop(tinted(WasherOf(36, 15), RED));
  layout.Lean(tinted(ChipOf(56, 30, 0), BLUE));
  layout.Drop(tinted(NutOf(30, 15), GREEN));
  layout.Lean(tinted(WasherOf(24, 9), YELLOW));
  for (const Tint& tint : {RED, YELLOW, GREEN, BLUE, GRAY}) {
    layout.Drop(tinted(WasherOf(24, 9), tint));
    layout.Drop(tinted(ChipOf(48, 28, 0), tint));
    layout.Drop(tinted(NutOf(20, 10), tint));
  }
  scene.parts = layout.Take();
  return scene;
}

std::vector<Scene> AllScenes() {
  return {Washers(), Pins(), Chips(), Mixed(), Tokens()};
}

}  // namespace scenes
