// Automatic methods.
#include "orlune/inspect/boundaries.h"

#include <algorithm>
#include <bitset>

#include "orlune/shared/pictures.h"

namespace front {
namespace {

bool HasThreeLevels(const Image& pixels) {
  const ImageInfo info = pixels.Info();
  std::bitset<256> levels;
  for (int32_t y = 0; y < info.height; ++y) {
    const uint8_t* row = Row<uint8_t>(info, y);
    const auto isThird = [&](uint8_t level) { return levels.set(level).count() > 2; };
    if (std::any_of(row, row + info.width, isThird)) return true;
  }
  return false;
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
std::string RemarkOn(const Image& pixels, int32_t level, Method method) {
  if (HasLevelsBeyond(pixels, {level - 1.0, 1.0 * level})) return "";
  const Range levels = ByteRange(pixels);
  const std::string boundary = "the boundary of " + std::string(MethodName(method)) + " lies ";
  if (level <= levels.low) return boundary + "below all levels";
  if (level > levels.high) return boundary + "above all levels";
  return boundary + (level == levels.low + 1 ? "at the darkest level" : "at the lightest level");
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
  if (!HasThreeLevels(pixels)) {
    const Range levels = ByteRange(pixels);
    if (levels.low == levels.high) return std::nullopt;
    return Boundary{static_cast<int32_t>(levels.high), ""};
  }
  const int32_t level = LevelOf(pixels, method);
  return Boundary{level, RemarkOn(pixels, level, method)};
}

}  // namespace front
