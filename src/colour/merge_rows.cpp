// Row routines that build colour pixels from components: plain loops, which compilers turn into
// vectors of 32-bit integers and floats.
#include "colour/merge_rows.h"

#include "colour/hue_arithmetic.h"

namespace zel::ZEL_LEVEL {
namespace {

// What is not given is read from here, so that a loop need not ask.
constexpr int64_t BLOCK = 512;
constexpr RGBValue NO_PIXELS[BLOCK] = {};
constexpr uint8_t NO_BYTES[BLOCK] = {};

template <class Rule>
ZEL_INLINE void Merge(const MergeRun& run, Rule rule) {
  for (int64_t done = 0; done < run.count; done += BLOCK) {
    const int64_t size = run.count - done < BLOCK ? run.count - done : BLOCK;
    const RGBValue* from = run.from ? run.from + done : NO_PIXELS;
    const uint8_t* first = run.planes[0] ? run.planes[0] + done : NO_BYTES;
    const uint8_t* second = run.planes[1] ? run.planes[1] + done : NO_BYTES;
    const uint8_t* third = run.planes[2] ? run.planes[2] + done : NO_BYTES;
    RGBValue* to = run.to + done;
#pragma GCC ivdep
    for (int64_t i = 0; i < size; i++) to[i] = rule(from[i], first[i], second[i], third[i]);
  }
}

constexpr RGBValue FOURTH_BYTE = 0xFF000000;

void Rgb(const MergeRun& run) {
  const RGBValue kept = FOURTH_BYTE | (run.planes[0] ? 0 : 0xFF0000u) |
                        (run.planes[1] ? 0 : 0xFF00u) | (run.planes[2] ? 0 : 0xFFu);
  Merge(run, [kept](RGBValue from, uint8_t red, uint8_t green, uint8_t blue) {
    return (from & kept) | (RGBValue{red} << 16) | (RGBValue{green} << 8) | blue;
  });
}

// Components that are kept stay 16-bit numbers on their way.
template <bool isValue>
void OfHues(const MergeRun& run) {
  const auto pixelOf = [](const Components& color) {
    return PixelOf(color.hue, isValue ? RangeOfValue(color) : RangeOfLightness(color));
  };
  if (run.planes[0] && run.planes[1] && run.planes[2]) {
    Merge(run, [pixelOf](RGBValue from, uint8_t hue, uint8_t saturation, uint8_t third) {
      return (from & FOURTH_BYTE) | pixelOf({WIDENED * hue, WIDENED * saturation, WIDENED * third});
    });
    return;
  }
  const int32_t keepsHue = run.planes[0] ? 0 : -1;
  const int32_t keepsSaturation = run.planes[1] ? 0 : -1;
  const int32_t keepsThird = run.planes[2] ? 0 : -1;
  Merge(run, [=](RGBValue from, uint8_t hue, uint8_t saturation, uint8_t third) {
    const Channels channels = ChannelsOf(from);
    const int32_t third16 = isValue ? Value16(channels) : Lightness16(channels);
    return (from & FOURTH_BYTE) |
           pixelOf({(Hue16(channels) & keepsHue) | (WIDENED * hue),
                    (Saturation16(channels) & keepsSaturation) | (WIDENED * saturation),
                    (third16 & keepsThird) | (WIDENED * third)});
  });
}

void Select(const uint8_t* mask, const RGBValue* chosen, const RGBValue* others, RGBValue* to,
            int64_t count) {
#pragma GCC ivdep
  for (int64_t i = 0; i < count; i++) {
    const RGBValue selected = mask[i] != 0 ? ~0u : 0;
    to[i] = (chosen[i] & selected) | (others[i] & ~selected);
  }
}

}  // namespace

extern const MergeRows mergeRows = {
    .rgb = &Rgb,
    .hsl = &OfHues<false>,
    .hsv = &OfHues<true>,
    .select = &Select,
};

}  // namespace zel::ZEL_LEVEL
