// The steps that take colours, which stand at the beginning of a chain.
#include "orlune/filter/colour_steps.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "orlune/inspect/masking.h"
#include "orlune/shared/colours.h"

namespace front {
namespace {

using Kind = Parameter::Kind;

constexpr double LARGEST_PERCENT = 1000;

// A component of colours as one number: the mode, and which of its three planes.
constexpr int32_t PlaneOf(ColorMode mode, int32_t index) {
  return mode * 3 + index;
}

Parameter PlaneParameter(bool withHue) {
  std::vector<Choice> choices = {
      {"red", PlaneOf(MODE_RGB, 0)},       {"green", PlaneOf(MODE_RGB, 1)},
      {"blue", PlaneOf(MODE_RGB, 2)},      {"saturation", PlaneOf(MODE_HSL, 1)},
      {"lightness", PlaneOf(MODE_HSL, 2)}, {"value", PlaneOf(MODE_HSV, 2)}};
  if (withHue) choices.push_back({"hue", PlaneOf(MODE_HSL, 0)});
  return {.name = "PLANE", .kind = Kind::Choice, .choices = std::move(choices)};
}

int32_t ExtractPlane(ImageRef image, ImageRef, const Arguments& arguments) {
  ImageInfo info;
  Check(-ZEL_GetImageInfo(image, &info));
  const Image plane(IMAGE_U8, info.border);
  const int32_t chosen = arguments[0].Whole();
  const auto wanted = [&](int32_t index) { return chosen % 3 == index ? ImageRef(plane) : 0; };
  Check(ZEL_ExtractColorPlanes(image, wanted(0), wanted(1), wanted(2), chosen / 3));
  return ZEL_Copy(plane, image);
}

int32_t ThresholdColours(ImageRef image, ImageRef, const Arguments& arguments) {
  ImageInfo info;
  Check(-ZEL_GetImageInfo(image, &info));
  const ColourRanges ranges{arguments[0].range, arguments[1].range, arguments[2].range};
  const Image objects = ObjectsByColour(image, ranges, info.border);
  Check(ZEL_Multiply(objects, 0, 0, 255));
  return ZEL_Copy(objects, image);
}

// A table for one plane: the others stay.
int32_t ScalePlane(ImageRef image, ImageRef mask, const Arguments& arguments) {
  std::array<uint8_t, 256> table;
  for (size_t level = 0; level < table.size(); ++level) {
    const double scaled = std::round(static_cast<double>(level) * arguments[1].number / 100);
    table[level] = static_cast<uint8_t>(std::min(scaled, 255.0));
  }
  const int32_t chosen = arguments[0].Whole();
  const auto tableOf = [&](int32_t index) { return chosen % 3 == index ? table.data() : nullptr; };
  return ZEL_ColorUserLookup(image, mask, 0, chosen / 3, ARRAY_U8, tableOf(0), tableOf(1),
                             tableOf(2));
}

int32_t Equalize(ImageRef image, ImageRef mask, const Arguments& arguments) {
  return UnderMask(image, mask, [&] { return ZEL_ColorEqualize(image, 0, arguments[0].Whole()); });
}

int32_t NoBorder(const Arguments&) {
  return 0;
}

}  // namespace

std::vector<Step> ColourSteps() {
  return {
      {.name = "equalize",
       .parameters = {{.name = "PLANES",
                       .kind = Kind::Choice,
                       .choices = {{"lightness", 0}, {"all", 1}},
                       .optional = true}},
       .meaning = "levels spread so that each occurs about as often (colour)",
       .takesColours = true,
       .border = NoBorder,
       .apply = Equalize},

      {.name = "plane",
       .parameters = {PlaneParameter(true)},
       .meaning = "one component of the colours as a gray picture (colour)",
       .takesColours = true,
       .makesGray = true,
       .border = NoBorder,
       .apply = ExtractPlane},

      {.name = "scale",
       .parameters = {PlaneParameter(false),
                      {.name = "PERCENT", .kind = Kind::Real, .low = 0, .high = LARGEST_PERCENT}},
       .meaning = "so many percent of one component of the colours (colour)",
       .takesColours = true,
       .border = NoBorder,
       .apply = ScalePlane},

      {.name = "select",
       .parameters = {{.name = "HUES", .kind = Kind::Hues},
                      {.name = "SATURATION", .kind = Kind::Percents, .optional = true},
                      {.name = "LIGHTNESS", .kind = Kind::Percents, .optional = true}},
       .meaning = "white where all lie in their ranges, else black (colour)",
       .takesColours = true,
       .makesGray = true,
       .border = NoBorder,
       .apply = ThresholdColours},
  };
}

}  // namespace front
