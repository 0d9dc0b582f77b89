// The integer arithmetic between RGB and the hue modes, for one pixel, as row sources write it into
// their loops. Components are 16-bit fixed-point numbers in 32 bits: a byte b is b x 257, and a
// saturation can be 65536.
//
// Divisions are divisions of floats where it is proven that these find the same whole numbers.
#pragma once

#include <cstdint>

#include "core/numbers.h"
#include "orlune_ptk/types.h"

namespace zel {

constexpr int32_t WIDENED = 257;       // what a byte is multiplied with
constexpr int32_t HUE_CIRCLE = 65536;  // red is at 0
constexpr int32_t HUE_GREEN = 21845;
constexpr int32_t HUE_BLUE = 43690;
constexpr int32_t HUE_SIXTH = 10922;
// Where the sixths of the circle begin, and which channels then have the largest value.
constexpr int32_t GREEN_BEGINS = 10923;
constexpr int32_t BLUE_BEGINS = 32768;
constexpr int32_t RED_BEGINS = 54613;
// ... and the smallest one: blue, then red, then green.
constexpr int32_t RED_IS_LEAST = 21846;
constexpr int32_t GREEN_IS_LEAST = 43691;

struct Channels {
  int32_t red, green, blue;  // bytes

  ZEL_INLINE int32_t Max() const {
    const int32_t larger = red > green ? red : green;
    return larger > blue ? larger : blue;
  }
  ZEL_INLINE int32_t Min() const {
    const int32_t smaller = red < green ? red : green;
    return smaller < blue ? smaller : blue;
  }
};

ZEL_INLINE Channels ChannelsOf(RGBValue pixel) {
  return {static_cast<int32_t>((pixel >> 16) & 255), static_cast<int32_t>((pixel >> 8) & 255),
          static_cast<int32_t>(pixel & 255)};
}

// value / 257 for 0..65536: with value = 256 a + b it is a, or a - 1 where b is below a.
ZEL_INLINE int32_t Narrowed(int32_t value) {
  return (value - (value >> 8)) >> 8;
}

// A quotient of integers below 2^24 as floats is the exact one rounded once. Where the exact one is
// no whole number, it lies at least 1 / divisor below the next: the cut quotient of floats is right
// where the rounding is smaller than that.
//
// Here the numerator is at most 10922 x divisor, the quotient below 2^14 and the rounding at most
// 2^-11; the divisor is at most 255.
ZEL_INLINE int32_t Hue16(const Channels& pixel) {
  const int32_t max = pixel.Max();
  const int32_t spread = max - pixel.Min();
  const bool redLeads = pixel.red == max;
  const bool greenLeads = pixel.green == max;
  const int32_t difference = redLeads     ? pixel.green - pixel.blue
                             : greenLeads ? pixel.blue - pixel.red
                                          : pixel.red - pixel.green;
  const int32_t start = redLeads ? 0 : greenLeads ? HUE_GREEN : HUE_BLUE;
  const int32_t divisor = spread > 1 ? spread : 1;  // of a gray: the difference is 0
  const int32_t hue = start + static_cast<int32_t>(static_cast<float>(HUE_SIXTH * difference) /
                                                   static_cast<float>(divisor));
  return hue < 0 ? hue + HUE_CIRCLE : hue;
}

// What the difference of the largest and the smallest channel is set against: the sum of both where
// the lightness is at most one half, else what is left of it.
ZEL_INLINE int32_t SaturationDivisor(int32_t sum) {
  const int32_t divisor = sum <= 255 ? WIDENED * sum : 2 * HUE_CIRCLE - WIDENED * sum;
  return divisor > 1 ? divisor : 1;  // of black: the difference is 0
}

// The byte is 65536 x spread / divisor. The quotient is below 256 and rounded by at most 2^-17; the
// divisor is at most 65535.
ZEL_INLINE int32_t SaturationByte(const Channels& pixel) {
  const int32_t max = pixel.Max();
  const int32_t min = pixel.Min();
  return static_cast<int32_t>(static_cast<float>(65536 * (max - min)) /
                              static_cast<float>(SaturationDivisor(max + min)));
}

// The quotient is up to 65536 and rounded by at most 2^-8: it may be rounded up to a whole number,
// which the rest then tells.
ZEL_INLINE int32_t Saturation16(const Channels& pixel) {
  const int32_t max = pixel.Max();
  const int32_t min = pixel.Min();
  const int32_t divisor = SaturationDivisor(max + min);
  const int32_t widened = WIDENED * (max - min);
  const auto quotient =
      static_cast<int32_t>(static_cast<float>(widened) * 65536.0f / static_cast<float>(divisor));
  const uint32_t rest = (static_cast<uint32_t>(widened) << 16) -
                        static_cast<uint32_t>(quotient) * static_cast<uint32_t>(divisor);
  return quotient - (static_cast<int32_t>(rest) < 0 ? 1 : 0);
}

ZEL_INLINE int32_t Lightness16(const Channels& pixel) {
  return (WIDENED * (pixel.Max() + pixel.Min())) >> 1;
}
ZEL_INLINE int32_t LightnessByte(const Channels& pixel) {
  return (pixel.Max() + pixel.Min()) >> 1;  // the same less 257
}
ZEL_INLINE int32_t Value16(const Channels& pixel) {
  return WIDENED * pixel.Max();
}

struct Components {
  int32_t hue, saturation, third;
};

// The smallest channel, and how much the largest one is above it.
struct ChannelRange {
  int32_t min, extent;
};

ZEL_INLINE ChannelRange RangeOfLightness(const Components& color) {
  const int32_t lightness = color.third;
  const int32_t weight = lightness <= 32767 ? lightness : 65536 - lightness;
  const uint32_t product = static_cast<uint32_t>(weight) * static_cast<uint32_t>(color.saturation);
  const auto half = static_cast<int32_t>(product >> 16);
  return {lightness - half, 2 * half};
}

// With the value as v and the saturation as s, the quotient is at most s / 2, so below 2^15: the
// two roundings together are below 2^-8, and the cut quotient of floats is off by at most 1.
ZEL_INLINE ChannelRange RangeOfValue(const Components& color) {
  const int32_t value = color.third;
  const int32_t saturation = color.saturation;
  const bool isBright = 2 * value > saturation + 65536;
  const int32_t divisor = isBright ? 65536 - saturation : 65536 + saturation;
  const int32_t factor = isBright ? 65536 - value : value;
  auto quotient = static_cast<int32_t>(static_cast<float>(factor) * static_cast<float>(saturation) /
                                       static_cast<float>(divisor));
  const auto rest =
      static_cast<int32_t>(static_cast<uint32_t>(factor) * static_cast<uint32_t>(saturation) -
                           static_cast<uint32_t>(quotient) * static_cast<uint32_t>(divisor));
  quotient += (rest >= divisor ? 1 : 0) - (rest < 0 ? 1 : 0);
  return {value - 2 * quotient, 2 * quotient};
}

// The channel between the smallest and the largest: min + along x extent / 10922, of which the low
// 8 bits go, so (10922 min + along x extent) / (512 x 5461). The bits of the 512 are shifted out
// first. What is left is below 2^21, so that one half more is exact as a float: the quotient then
// lies at least 1 / 10922 off every whole number. It is below 258, and the product with the rounded
// reciprocal is at most 258 x 2^-23 off it, less than 1 / 32000.
ZEL_INLINE int32_t RampByte(const ChannelRange& range, int32_t along) {
  const int32_t scaled = (HUE_SIXTH * range.min + along * range.extent) >> 9;
  const auto byte = static_cast<int32_t>((static_cast<float>(scaled) + 0.5f) * (1.0f / 5461.0f));
  return byte < 255 ? byte : 255;
}

// The pixel of a hue and a range, with a fourth byte of 0. Along each sixth the channel in between
// goes from the smallest value to the largest or back: by how far the hue is from the next of red,
// green and blue.
ZEL_INLINE RGBValue PixelOf(int32_t hue, const ChannelRange& range) {
  const int32_t nearest = hue < GREEN_BEGINS  ? 0
                          : hue < BLUE_BEGINS ? HUE_GREEN
                          : hue < RED_BEGINS  ? HUE_BLUE
                                              : HUE_CIRCLE;
  const int32_t ahead = hue - nearest;
  const int32_t ramp = RampByte(range, ahead < 0 ? -ahead : ahead);
  const int32_t least = range.min >> 8;
  const int32_t top = (range.min + range.extent) >> 8;
  const int32_t most = top < 255 ? top : 255;
  // In masks: compilers take branches for these choices else.
  const int32_t greenLeads = nearest == HUE_GREEN ? -1 : 0;
  const int32_t blueLeads = nearest == HUE_BLUE ? -1 : 0;
  const int32_t blueIsLeast = hue < RED_IS_LEAST ? -1 : 0;
  const int32_t greenIsLeast = hue >= GREEN_IS_LEAST ? -1 : 0;
  const int32_t redIsLeast = ~(blueIsLeast | greenIsLeast);
  const int32_t redLeads = ~(greenLeads | blueLeads);
  const auto channel = [=](int32_t leads, int32_t isLeast) {
    return (most & leads) | (least & isLeast) | (ramp & ~(leads | isLeast));
  };
  const int32_t red = channel(redLeads, redIsLeast);
  const int32_t green = channel(greenLeads, greenIsLeast);
  const int32_t blue = channel(blueLeads, blueIsLeast);
  return static_cast<RGBValue>((red << 16) | (green << 8) | blue);
}

}  // namespace zel
