// Painted displays of seven segments, with known truth.
#pragma once

#include <string>
#include <vector>

#include "dials/dials_test.h"

namespace test {

struct DisplayLook {
  const char* name = "plain";
  double width = 24;     // of a digit
  double height = 44;    // of a digit
  double stroke = 6;     // thickness of a segment
  double gap = 1;        // between segments
  double spacing = 14;   // between digits
  double slant = 0;      // columns that the top leans to the right by, for a row
  double ground = 200;   // level
  double segments = 40;  // level
  double off = 0;        // part of the contrast that segments have when they are off
  double light = 1;      // at the right side
  float noise = 0;
  float threshold = 10;  // that suits it
  bool isLight() const { return segments > ground; }
};

inline void PrintTo(const DisplayLook& look, std::ostream* out) {
  *out << look.name;
}

// Rows of the segments that stand on: top, upper right, lower right, bottom, lower left, upper
// left, middle.
inline std::string SegmentsOf(char digit) {
  static const char* const all[] = {"1111110", "0110000", "1101101", "1111001", "0110011",
                                    "1011011", "1011111", "1110000", "1111111", "1111011"};
  return digit >= '0' && digit <= '9' ? all[digit - '0'] : digit == '-' ? "0000001" : "0000000";
}

class PaintedDisplay {
 public:
  static constexpr double MARGIN = 30;

  // Text of digits, blanks and minus signs; a point goes behind the digit before it.
  PaintedDisplay(const DisplayLook& look, const std::string& text)
      : look_(look), canvas_(WidthFor(look, text), HeightFor(look), look.ground) {
    for (const char character : text) {
      if (character == '.') {
        PaintPoint();
      } else {
        PaintSegments(SegmentsOf(character));
      }
    }
    canvas_.LightFromLeft(look.light);
    canvas_.Noise(look.noise, 5);
  }

  // A digit by its segments, for such as form none.
  static PaintedDisplay OfSegments(const DisplayLook& look, const std::string& segments) {
    PaintedDisplay display(look, "");
    display.canvas_ = Canvas(WidthFor(look, "8"), HeightFor(look), look.ground);
    display.PaintSegments(segments);
    return display;
  }

  TestImage ToImage(int32_t type = IMAGE_U8) const { return canvas_.ToImage(type); }

  // The pixels that a digit covers: its corners, of which the lower right one is past the last
  // pixel.
  RegionRecord::Contour RectangleOf(int32_t index) const {
    const auto x = static_cast<int32_t>(std::lround(LeftOf(index)));
    const auto y = static_cast<int32_t>(MARGIN);
    return {ROI_RECT, {x, y, x + Whole(look_.width), y + Whole(look_.height)}};
  }
  // The same of a slanted one.
  RegionRecord::Contour CornersOf(int32_t index) const {
    const double left = LeftOf(index);
    const double lean = look_.slant * look_.height;
    const auto y = static_cast<int32_t>(MARGIN);
    const int32_t bottom = y + Whole(look_.height);
    return {ROI_POLYGON,
            {Whole(left + lean), y, Whole(left + lean + look_.width), y, Whole(left + look_.width),
             bottom, Whole(left), bottom}};
  }
  // With some columns of ground at the left of each digit.
  RegionRecord Digits(const std::string& text, int32_t room = 0) const {
    std::vector<RegionRecord::Contour> contours;
    int32_t index = 0;
    for (const char character : text) {
      if (character >= '0' && character <= '9') {
        contours.push_back(look_.slant != 0 ? CornersOf(index) : RectangleOf(index));
        std::vector<int32_t>& corners = contours.back().coordinates;
        corners[0] -= room;
        if (look_.slant != 0) corners[6] -= room;
      }
      index += character != '.';
    }
    return RegionRecord(contours);
  }
  RegionRecord All(int32_t count) const {
    const int32_t around = 10;
    const double lean = look_.slant * look_.height;
    const double right = LeftOf(count) - look_.spacing + lean;
    const auto top = static_cast<int32_t>(MARGIN);
    return RegionRecord({{ROI_RECT,
                          {Whole(LeftOf(0)) - around, top - around, Whole(right) + around,
                           top + Whole(look_.height) + around}}});
  }

 private:
  static int32_t Whole(double value) { return static_cast<int32_t>(std::lround(value)); }
  static int32_t WidthFor(const DisplayLook& look, const std::string& text) {
    const auto points = std::count(text.begin(), text.end(), '.');
    const double places = static_cast<double>(text.size()) - static_cast<double>(points);
    return Whole(2 * MARGIN + places * (look.width + look.spacing) + look.slant * look.height);
  }
  static int32_t HeightFor(const DisplayLook& look) { return Whole(look.height + 2 * MARGIN); }
  double LeftOf(int32_t index) const { return MARGIN + index * (look_.width + look_.spacing); }

  // Places of a digit's frame; those at whole and a half lie between pixels.
  Place At(double x, double y) const {
    return {LeftOf(digit_) + x - 0.5 + look_.slant * (look_.height - y), MARGIN + y - 0.5};
  }
  void PaintPart(const std::vector<Place>& frame, bool isOn) {
    std::vector<Place> corners;
    for (const Place place : frame) corners.push_back(At(place.x, place.y));
    canvas_.Polygon(corners, look_.segments, isOn ? 1.0 : look_.off);
  }
  void PaintSegments(const std::string& segments) {
    const double w = look_.width;
    const double h = look_.height;
    const double t = look_.stroke;
    const double g = look_.gap;
    const double half = h / 2;
    const auto bar = [&](double left, double top, double right, double bottom) {
      return std::vector<Place>{{left, top}, {right, top}, {right, bottom}, {left, bottom}};
    };
    const std::vector<Place> parts[7] = {
        bar(t + g, 0, w - t - g, t),
        bar(w - t, 0, w, half - g / 2),
        bar(w - t, half + g / 2, w, h),
        bar(t + g, h - t, w - t - g, h),
        bar(0, half + g / 2, t, h),
        bar(0, 0, t, half - g / 2),
        bar(t + g, half - t / 2, w - t - g, half + t / 2),
    };
    for (size_t i = 0; i < 7; i++) PaintPart(parts[i], segments[i] == '1');
    digit_++;
  }
  void PaintPoint() {
    digit_--;
    const double x = look_.width + look_.spacing / 2;
    const double size = look_.stroke * 0.8;
    PaintPart({{x - size / 2, look_.height - size},
               {x + size / 2, look_.height - size},
               {x + size / 2, look_.height},
               {x - size / 2, look_.height}},
              true);
    digit_++;
  }

  DisplayLook look_;
  Canvas canvas_;
  int32_t digit_ = 0;
};

// What displays look like in the field.
inline const std::vector<DisplayLook> LOOKS = {
    {.name = "plain"},
    {.name = "light on dark", .ground = 20, .segments = 230},
    {.name = "slanted", .slant = 0.15},
    {.name = "slanted much", .spacing = 16, .slant = 0.3},
    {.name = "dim", .ground = 110, .segments = 80, .threshold = 5},
    {.name = "dim and noisy", .ground = 120, .segments = 70, .noise = 12, .threshold = 8},
    {.name = "ghosts of segments that are off", .off = 0.2, .threshold = 20},
    {.name = "lit from one side", .light = 0.4, .threshold = 12},
    {.name = "small", .width = 14, .height = 24, .stroke = 3, .gap = 0.5, .spacing = 9},
    {.name = "large", .width = 70, .height = 130, .stroke = 16, .gap = 3, .spacing = 34},
    {.name = "thin strokes", .stroke = 3},
    {.name = "light, slanted, noisy", .slant = 0.12, .ground = 30, .segments = 160, .noise = 15},
};

}  // namespace test
