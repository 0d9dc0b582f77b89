// What tests of dials share: arcs, messages that are shown, and a canvas that scenes of
// known truth are painted on.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <numbers>
#include <string>
#include <vector>

#include "harness/region_record.h"
#include "harness/test_image.h"
#include "orlune_ptk.h"
#include "platform/message_box.h"

namespace test {

// A block of the library in a caller's variable.
template <class T>
struct Block {
  T* data = nullptr;

  Block() = default;
  Block(const Block&) = delete;
  Block& operator=(const Block&) = delete;
  ~Block() { ZEL_free(data); }
};

// Messages to the person at the machine, kept instead of shown.
class MessageWatch {
 public:
  MessageWatch() {
    Kept().clear();
    static const zel::MessageBox keeping{[](const char* title, const char* text) {
      Kept().push_back(std::string(title) + ": " + text);
    }};
    zel::MessageBoxUse(&keeping);
    ZEL_SetErrorMode(ERROR_MODE_SILENT);
  }
  MessageWatch(const MessageWatch&) = delete;
  MessageWatch& operator=(const MessageWatch&) = delete;
  ~MessageWatch() {
    zel::MessageBoxUse(nullptr);
    ZEL_SetErrorMode(ERROR_MODE_MESSAGE_BOX);
  }

  static const std::vector<std::string>& Messages() { return Kept(); }

 private:
  static std::vector<std::string>& Kept() {
    static std::vector<std::string> kept;
    return kept;
  }
};

struct Place {
  double x, y;
};

// Gray levels, painted with soft edges.
class Canvas {
 public:
  Canvas(int32_t width, int32_t height, double level)
      : width_(width), height_(height), levels_(static_cast<size_t>(width * height), level) {}

  // A shape that covers with part of its strength, as a shadow does. Each pixel takes as much of it
  // as five lines through the pixel lie in the polygon.
  void Polygon(const std::vector<Place>& corners, double level, double strength = 1.0) {
    constexpr int lines = 5;
    const auto [top, bottom] = std::minmax_element(corners.begin(), corners.end(),
                                                   [](Place a, Place b) { return a.y < b.y; });
    const int32_t first = std::max(static_cast<int32_t>(std::floor(top->y)), 0);
    const int32_t last = std::min(static_cast<int32_t>(std::ceil(bottom->y)), height_ - 1);
    const auto [leftmost, rightmost] = std::minmax_element(
        corners.begin(), corners.end(), [](Place a, Place b) { return a.x < b.x; });
    const int32_t left = std::max(static_cast<int32_t>(std::floor(leftmost->x)), 0);
    const int32_t right = std::min(static_cast<int32_t>(std::ceil(rightmost->x)), width_ - 1);
    std::vector<double> coverage(static_cast<size_t>(width_));
    for (int32_t y = first; y <= last; y++) {
      for (int32_t x = left; x <= right; x++) coverage[static_cast<size_t>(x)] = 0.0;
      for (int line = 0; line < lines; line++) {
        const std::vector<double> crossings = Crossings(corners, y + (line - 2) / 5.0);
        for (size_t i = 0; i + 1 < crossings.size(); i += 2) {
          AddSpan(crossings[i], crossings[i + 1], 1.0 / lines, &coverage);
        }
      }
      for (int32_t x = left; x <= right; x++) {
        double& there = levels_[static_cast<size_t>(y * width_ + x)];
        there += (level - there) * strength * coverage[static_cast<size_t>(x)];
      }
    }
  }
  void Bar(Place from, Place to, double width, double level, double strength = 1.0) {
    const double length = std::hypot(to.x - from.x, to.y - from.y);
    const Place across = {-(to.y - from.y) / length * width / 2,
                          (to.x - from.x) / length * width / 2};
    Polygon({{from.x + across.x, from.y + across.y},
             {to.x + across.x, to.y + across.y},
             {to.x - across.x, to.y - across.y},
             {from.x - across.x, from.y - across.y}},
            level, strength);
  }
  void Disc(Place centre, double radius, double level) {
    std::vector<Place> corners;
    for (int i = 0; i < 48; i++) {
      const double angle = i * std::numbers::pi / 24;
      corners.push_back({centre.x + radius * std::cos(angle), centre.y + radius * std::sin(angle)});
    }
    Polygon(corners, level);
  }
  // Light from one side: full at the left, this part of it at the right.
  void LightFromLeft(double part) {
    for (size_t i = 0; i < levels_.size(); i++) {
      const auto x = static_cast<double>(i % static_cast<size_t>(width_));
      levels_[i] *= 1.0 - (1.0 - part) * x / width_;
    }
  }
  void Noise(float amplitude, uint64_t seed) {
    Random random(seed);
    for (double& level : levels_) level += static_cast<double>(random.Float(-amplitude, amplitude));
  }
  void Invert() {
    for (double& level : levels_) level = 255.0 - level;
  }

  TestImage ToImage(int32_t type = IMAGE_U8) const {
    TestImage image(type, width_, height_, 1);
    for (int32_t y = 0; y < height_; y++) {
      for (int32_t x = 0; x < width_; x++) {
        const double level = levels_[static_cast<size_t>(y * width_ + x)];
        const double whole = std::clamp(std::round(level), 0.0, 255.0);
        if (type == IMAGE_U8) image.Set(x, y, static_cast<uint8_t>(whole));
        if (type == IMAGE_I16) image.Set(x, y, static_cast<int16_t>(whole * 100.0));
        if (type == IMAGE_SGL) image.Set(x, y, static_cast<float>(level));
      }
    }
    return image;
  }

 private:
  // Where a row crosses the edges, from left to right.
  static std::vector<double> Crossings(const std::vector<Place>& corners, double y) {
    std::vector<double> crossings;
    for (size_t i = 0; i < corners.size(); i++) {
      const Place a = corners[i];
      const Place b = corners[(i + 1) % corners.size()];
      if ((a.y > y) == (b.y > y)) continue;
      crossings.push_back((b.x - a.x) * (y - a.y) / (b.y - a.y) + a.x);
    }
    std::sort(crossings.begin(), crossings.end());
    return crossings;
  }
  // Pixel x reaches from x - 0.5 to x + 0.5.
  static void AddSpan(double from, double to, double weight, std::vector<double>* coverage) {
    const auto size = static_cast<double>(coverage->size());
    from = std::clamp(from + 0.5, 0.0, size);
    to = std::clamp(to + 0.5, 0.0, size);
    for (auto x = static_cast<size_t>(from); static_cast<double>(x) < to; x++) {
      const auto left = static_cast<double>(x);
      (*coverage)[x] += weight * (std::min(left + 1.0, to) - std::max(left, from));
    }
  }

  int32_t width_, height_;
  std::vector<double> levels_;
};

}  // namespace test
