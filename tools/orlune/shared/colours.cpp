// Objects by their colour.
#include "orlune/shared/colours.h"

#include <algorithm>
#include <cmath>

#include "orlune/inspect/selection.h"
#include "orlune/shared/numbers.h"
#include "orlune/shared/words.h"

namespace front {
namespace {

constexpr double CIRCLE = 360;
constexpr double HIGHEST = 255;  // of the library's components; hue 255 is red again

struct Levels {
  int32_t low = 0, high = 255;

  bool Whole() const { return low == 0 && high == 255; }
};

// The levels that are nearest to the ends of a range, of which the largest value is given.
Levels LevelsIn(const std::optional<Range>& range, double largest) {
  if (!range) return {};
  const auto level = [&](double value) {
    return static_cast<int32_t>(std::lround(std::clamp(value, 0.0, largest) * HIGHEST / largest));
  };
  return {level(range->low), level(range->high)};
}

Image Threshold(ImageRef colours, const Levels& hue, const Levels& saturation,
                const Levels& lightness, int32_t border) {
  ImageInfo info;
  Check(-ZEL_GetImageInfo(colours, &info));
  Image mask(IMAGE_U8, border, info.width, info.height);
  Check(ZEL_ColorThreshold(colours, mask, MODE_HSL, 1, hue.low, hue.high, saturation.low,
                           saturation.high, lightness.low, lightness.high));
  // Where nothing is asked of a colour, the call writes nothing.
  const bool whole = hue.Whole() && saturation.Whole() && lightness.Whole();
  if (whole) Check(ZEL_FillImage(mask, 0, 1, 0, 0, 0));
  return mask;
}

double OnCircle(double degrees) {
  const double rest = std::fmod(degrees, CIRCLE);
  return rest < 0 ? rest + CIRCLE : rest;
}

}  // namespace

Range ParseHues(std::string_view text) {
  const size_t colon = text.find(':');
  const std::string_view low = Trim(text.substr(0, colon));
  const std::string_view high = colon == text.npos ? "" : Trim(text.substr(colon + 1));
  if (colon == text.npos || (low.empty() && high.empty())) {
    throw std::invalid_argument(Quoted(text) +
                                " is no range of hues: write MIN:MAX in degrees, as in 200:260");
  }
  const Range range{low.empty() ? 0 : ParseNumber(low), high.empty() ? CIRCLE : ParseNumber(high)};
  if (std::abs(range.low) > CIRCLE || std::abs(range.high) > 2 * CIRCLE) {
    throw std::invalid_argument("hues are angles of 0 to 360 degrees");
  }
  if (range.high - range.low >= CIRCLE) return {0, CIRCLE};
  const double first = OnCircle(range.low);
  return {first, range.high == CIRCLE ? CIRCLE : OnCircle(range.high)};
}

Range ParsePercents(std::string_view text) {
  const Range range = ParseRange(text);
  if (range.low > 100 || range.high < 0) {
    throw std::invalid_argument("the range " + Quoted(text) + " has nothing of 0 to 100 percent");
  }
  return {std::max(range.low, 0.0), std::min(range.high, 100.0)};
}

std::vector<std::string> TextsOf(const ColourRanges& ranges) {
  std::vector<std::string> texts;
  const auto add = [&](const char* name, const std::optional<Range>& range, const char* unit) {
    if (!range) return;
    texts.push_back(std::string(name) + " " + Short(range->low) + " to " + Short(range->high) +
                    unit);
  };
  add("hue", ranges.hue, " degrees");
  add("saturation", ranges.saturation, " %");
  add("lightness", ranges.lightness, " %");
  return texts;
}

Image ObjectsByColour(ImageRef colours, const ColourRanges& ranges, int32_t border) {
  const Levels hue = LevelsIn(ranges.hue, CIRCLE);
  Levels saturation = LevelsIn(ranges.saturation, 100);
  const Levels lightness = LevelsIn(ranges.lightness, 100);
  if (!hue.Whole()) saturation.low = std::max(saturation.low, 1);
  if (hue.low <= hue.high) return Threshold(colours, hue, saturation, lightness, border);
  Image mask = Threshold(colours, {hue.low, 255}, saturation, lightness, border);
  const Image beyondRed = Threshold(colours, {0, hue.high}, saturation, lightness, border);
  Check(ZEL_Or(mask, beyondRed, 0, 0, 0));
  return mask;
}

}  // namespace front
