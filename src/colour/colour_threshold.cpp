// Colours that lie in three ranges.
#include <algorithm>
#include <cstring>

#include "colour/colour_threshold_rows.h"
#include "colour/components.h"
#include "core/images.h"
#include "core/pixel_types.h"
#include "orlune_ptk.h"

namespace zel {
namespace {

// The ends of a range as the caller gives them.
struct GivenRange {
  int32_t low, high;
  bool Restricts() const { return low > 0 || high < UINT8_MAX; }
};

struct ColourThreshold {
  GivenRange given[COLOUR_PLANES];
  int32_t mode;
  int32_t value;

  bool Restricts() const {
    return given[0].Restricts() || given[1].Restricts() || given[2].Restricts();
  }
};

// The colour threshold component by component.
struct HueRanges {
  ComponentSet components;
  ByteRange ranges[COLOUR_PLANES];
  bool isActive[COLOUR_PLANES];
  uint8_t value;
  void (*restrict)(const uint8_t* component, const ByteRange& range, uint8_t* result,
                   int64_t count);
};

// A range whose ends are in the wrong order has no bytes, so that no pixel is in all three; but on
// the circle of hues it is what lies outside both ends, without these.
bool RangeOf(const GivenRange& given, bool isHue, ByteRange* range) {
  const auto low = static_cast<uint8_t>(Clamped(given.low, 0, UINT8_MAX));
  const auto high = static_cast<uint8_t>(Clamped(given.high, 0, UINT8_MAX));
  *range = {low, static_cast<uint8_t>(high - low), false};
  if (low <= high) return true;
  if (!isHue) return false;
  *range = {high, static_cast<uint8_t>(low - high), true};
  return true;
}

void HuesInRanges(const PointViews& views, const HueRanges& rule) {
  for (int64_t y = 0; y < views.result.height; y++) {
    const auto* from = views.first.Row<const RGBValue>(y);
    auto* to = views.result.Row<uint8_t>(y);
    for (int64_t x = 0; x < views.result.width; x += COLOUR_BLOCK) {
      const int64_t size = std::min(COLOUR_BLOCK, views.result.width - x);
      std::memset(to + x, rule.value, static_cast<size_t>(size));
      for (int32_t p = 0; p < COLOUR_PLANES; p++) {
        if (!rule.isActive[p]) continue;
        uint8_t component[COLOUR_BLOCK];
        rule.components.planes[p](from + x, component, size);
        rule.restrict(component, rule.ranges[p], to + x, size);
      }
    }
  }
}

void ThresholdPixels(const PointViews& views, const ColourThreshold& threshold) {
  ByteRange ranges[COLOUR_PLANES];
  auto value = static_cast<uint8_t>(Clamped(threshold.value, 0, UINT8_MAX));
  for (int32_t p = 0; p < COLOUR_PLANES; p++) {
    const bool isHue = p == 0 && threshold.mode != MODE_RGB;
    if (!RangeOf(threshold.given[p], isHue, &ranges[p])) value = 0;
  }
  const ColourThresholdRows& rows = colourThresholdRows();
  if (threshold.mode == MODE_RGB) {
    PointWalk(views, rows.rgb, ColourRanges{{ranges[0], ranges[1], ranges[2]}, value});
    return;
  }
  HueRanges rule{ComponentsOf(threshold.mode), {}, {}, value, rows.restrict};
  for (int32_t p = 0; p < COLOUR_PLANES; p++) {
    rule.ranges[p] = ranges[p];
    rule.isActive[p] = value != 0 && threshold.given[p].Restricts();
  }
  PointWalk(views, &HuesInRanges, rule);
}

Status ColorThreshold(ImageRef source, ImageRef destination, const ColourThreshold& threshold) {
  Image* from = nullptr;
  Status status = ImageLookup(source, &from);
  if (status != STATUS_OK) return status;
  if (from->type != IMAGE_RGB) return STATUS_BAD_TYPE;
  Image* to = nullptr;
  status = ImageLookup(destination, &to);
  if (status != STATUS_OK) return status;
  if (to->type != IMAGE_U8) return STATUS_BAD_TYPE;
  status = ImageCopyInfo(*from, to);
  if (status == STATUS_OK) status = ImageLayoutSize(to, from->width, from->height, true);
  if (status != STATUS_OK) return status;
  if (!threshold.Restricts() || !IsColourMode(threshold.mode)) return STATUS_OK;
  ThresholdPixels({.first = ViewOf(*from), .second = {}, .result = ViewOf(*to), .mask = {}},
                  threshold);
  return STATUS_OK;
}

}  // namespace
}  // namespace zel

int32_t ZEL_ColorThreshold(ImageRef source, ImageRef destination, int32_t mode,
                           int32_t replaceValue, int32_t low1, int32_t high1, int32_t low2,
                           int32_t high2, int32_t low3, int32_t high3) {
  const zel::ColourThreshold threshold{
      {{low1, high1}, {low2, high2}, {low3, high3}}, mode, replaceValue};
  return ZEL_ProcessError("ZEL_ColorThreshold",
                          zel::ColorThreshold(source, destination, threshold));
}
