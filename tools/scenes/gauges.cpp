// Gauges painted point by point: each pixel is the mean of some places in it.
#include "scenes/gauges.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <numbers>

#include "scenes/paint.h"

namespace scenes {
namespace {

constexpr int DIAL_SIZE = 320;

// How far a point is from a straight stroke.
double DistanceFromStroke(Point at, Point from, Point to) {
  const Point along = {to.x - from.x, to.y - from.y};
  const Point off = {at.x - from.x, at.y - from.y};
  const double length = along.x * along.x + along.y * along.y;
  const double part = std::clamp((off.x * along.x + off.y * along.y) / length, 0.0, 1.0);
  return std::hypot(off.x - part * along.x, off.y - part * along.y);
}

// A place at this distance from the dial's centre, at a part of the scale.
Point OnDial(double part, double distance) {
  const double angle = (0.75 + 1.5 * part) * std::numbers::pi;
  return {DIAL_CENTRE + distance * std::cos(angle), DIAL_CENTRE + distance * std::sin(angle)};
}

// Which segments stand on: top, right ones, bottom, left ones from below, middle.
const char* SegmentsOf(char digit) {
  static const char* const all[] = {"1111110", "0110000", "1101101", "1111001", "0110011",
                                    "1011011", "1011111", "1110000", "1111111", "1111011"};
  return all[digit - '0'];
}

// Whether a place in a digit of 40 x 72 lies on a segment that stands on.
bool IsOnSegment(Point at, const char* segments) {
  struct Box {
    double left, top, right, bottom;
  };
  constexpr Box boxes[7] = {{11, 0, 29, 9}, {31, 0, 40, 34}, {31, 38, 40, 72}, {11, 63, 29, 72},
                            {0, 38, 9, 72}, {0, 0, 9, 34},   {11, 32, 29, 40}};
  for (int i = 0; i < 7; i++) {
    const Box& box = boxes[i];
    if (segments[i] == '1' && at.x >= box.left && at.x < box.right && at.y >= box.top &&
        at.y < box.bottom) {
      return true;
    }
  }
  return false;
}

}  // namespace

Gauge Dial(const std::string& file, double bar) {
  const double part = bar / 10;
  const auto light = [part](Point at) {
    const double distance = std::hypot(at.x - DIAL_CENTRE, at.y - DIAL_CENTRE);
    if (distance > 150) return 70.0;
    double level = 225 - 0.15 * at.x;  // lit from the left
    for (int tick = 0; tick <= 20; tick++) {
      const double from = tick % 2 == 0 ? 122 : 130;
      const double stroke =
          DistanceFromStroke(at, OnDial(tick / 20.0, from), OnDial(tick / 20.0, 140));
      if (stroke < (tick % 2 == 0 ? 1.6 : 0.8)) return 40.0;
    }
    const Point shaded = {at.x - 3, at.y - 5};
    if (DistanceFromStroke(shaded, OnDial(part, -28), OnDial(part, DIAL_NEEDLE)) < 2.5) {
      level *= 0.75;
    }
    const double needle = DistanceFromStroke(at, OnDial(part, -28), OnDial(part, DIAL_NEEDLE));
    return needle < 2.5 - distance / 80 || distance < 11 ? 30.0 : level;
  };
  char says[32];
  std::snprintf(says, sizeof says, "%.2f bar", bar);
  return {file, says, Paint(DIAL_SIZE, DIAL_SIZE, 11, light)};
}

Gauge Display(const std::string& file, const std::string& digits) {
  const auto light = [&digits](Point at) {
    const double shine = 1 - at.x / 900;  // lit from the left
    double left = 40;
    for (const char digit : digits) {
      const Point inside = {at.x + 0.5 - left, at.y + 0.5 - 34};
      if (digit == '.') {
        if (std::hypot(inside.x + 11, inside.y - 67) < 4.5) return 190 * shine;
        continue;
      }
      if (IsOnSegment(inside, SegmentsOf(digit))) return 190 * shine;
      left += 62;
    }
    return 25 + 30 * shine;
  };
  return {file, digits, Paint(316, 140, 12, light)};
}

std::vector<Gauge> AllGauges() {
  return {Dial("empty.bmp", 0),
          Dial("full.bmp", 10),
          Dial("dial1.bmp", 2.75),
          Dial("dial2.bmp", 6.4),
          Display("eights.bmp", "8888"),
          Display("display1.bmp", "127.5"),
          Display("display2.bmp", "3.064")};
}

}  // namespace scenes
