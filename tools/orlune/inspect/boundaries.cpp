// Automatic methods.
#include "orlune/inspect/boundaries.h"

#include <algorithm>

#include "orlune/shared/pictures.h"

namespace front {
namespace {

struct Ends {
  int32_t lowest, highest;
  int32_t levels;  // that occur: 1, 2, or 3 for more
};

Ends EndsOf(const Image& pixels) {
  const Range range = ByteRange(pixels);
  const auto lowest = static_cast<uint8_t>(range.low);
  const auto highest = static_cast<uint8_t>(range.high);
  if (lowest == highest) return {lowest, highest, 1};
  const ImageInfo info = pixels.Info();
  for (int32_t y = 0; y < info.height; ++y) {
    const uint8_t* row = Row<uint8_t>(info, y);
    const auto isBetween = [&](uint8_t level) { return level != lowest && level != highest; };
    if (std::any_of(row, row + info.width, isBetween)) return {lowest, highest, 3};
  }
  return {lowest, highest, 2};
}

int32_t LevelOf(const Image& pixels, Method method) {
  if (method == Method::Otsu) {
    Histogram histogram;
    Check(ZEL_Histogram(pixels, 0, 256, 0, 255, histogram.data(), nullptr));
    return OtsuBoundary(histogram);
  }
  int32_t level = 0;
  Check(ZEL_AutoBThreshold(pixels, static_cast<int32_t>(method), ARRAY_U8, nullptr, &level));
  return level;
}

// A boundary between the last levels says more of the method than of the picture.
std::string RemarkOn(const Ends& ends, int32_t level, std::string_view method) {
  const std::string name(method);
  if (level <= ends.lowest) return "the boundary of " + name + " lies below all levels";
  if (level > ends.highest) return "the boundary of " + name + " lies above all levels";
  if (level == ends.lowest + 1) return "the boundary of " + name + " lies at the darkest level";
  if (level == ends.highest) return "the boundary of " + name + " lies at the lightest level";
  return "";
}

}  // namespace

const std::vector<MethodRow>& AllMethods() {
  static const std::vector<MethodRow> ROWS = {
      {Method::Clustering, "clustering",
       "midway between the means of both sides, from the median on; used if nothing is said"},
      {Method::Entropy, "entropy", "where both sides together tell most; for few objects"},
      {Method::Metric, "metric", "where levels lie nearest to the means of their sides"},
      {Method::Moments, "moments",
       "by the first three moments; in photographs often at an end of the levels"},
      {Method::Interclass, "interclass", "by halving the span of levels at the means"},
      {Method::Otsu, "otsu", "where the variance between both sides is greatest"}};
  return ROWS;
}

std::string_view MethodName(Method method) {
  return AllMethods()[static_cast<size_t>(method)].name;
}

int32_t OtsuBoundary(const Histogram& histogram) {
  double pixels = 0, sum = 0;
  for (size_t level = 0; level < histogram.size(); ++level) {
    pixels += histogram[level];
    sum += static_cast<double>(level) * histogram[level];
  }
  double dark = 0, darkSum = 0, greatest = -1;
  int32_t boundary = 0;
  for (size_t level = 0; level + 1 < histogram.size(); ++level) {
    dark += histogram[level];
    darkSum += static_cast<double>(level) * histogram[level];
    const double light = pixels - dark;
    if (dark == 0 || light == 0) continue;
    const double distance = darkSum / dark - (sum - darkSum) / light;
    const double variance = dark * light * distance * distance;
    if (variance > greatest) {
      greatest = variance;
      boundary = static_cast<int32_t>(level) + 1;
    }
  }
  return boundary;
}

std::optional<Boundary> FindBoundary(const Image& pixels, Method method) {
  const Ends ends = EndsOf(pixels);
  if (ends.levels < 2) return std::nullopt;
  if (ends.levels == 2) return Boundary{ends.highest, ""};
  const int32_t level = LevelOf(pixels, method);
  return Boundary{level, RemarkOn(ends, level, MethodName(method))};
}

}  // namespace front
