// Objects by their colour.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "orlune/shared/pictures.h"

namespace front {

// What of a colour must lie where, both ends included. Hue is an angle in degrees: red 0, green
// 120, blue 240; its low end may be above the high one, around red. The others are percent.
struct ColourRanges {
  std::optional<Range> hue{}, saturation{}, lightness{};

  bool Any() const { return hue || saturation || lightness; }
};

// "200:260", "340:20" or "-20:20". Throws std::invalid_argument.
Range ParseHues(std::string_view text);

// "80:", within 0 to 100. Throws std::invalid_argument.
Range ParsePercents(std::string_view text);

// "hue 200 to 260 degrees", "saturation 80 to 100 %"
std::vector<std::string> TextsOf(const ColourRanges& ranges);

// 1 where the colour of an IMAGE_RGB lies in the ranges, 0 elsewhere: an IMAGE_U8 with this border.
// A gray has no hue: one in a range of hues is none, unless the range is the whole circle. Throws
// LibraryFailure.
Image ObjectsByColour(ImageRef colours, const ColourRanges& ranges, int32_t border);

}  // namespace front
