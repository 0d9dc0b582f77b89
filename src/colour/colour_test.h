// The conversions as they are stated, in 64-bit integers and one colour at a time, and pictures of
// colours.
#pragma once

#include <array>
#include <cstdint>

#include "harness/test_image.h"
#include "orlune_ptk.h"

namespace test {

using Color = std::array<int64_t, 3>;  // bytes, or 16-bit fixed-point numbers

inline Color WidenedColor(const Color& color) {
  return {color[0] * 257, color[1] * 257, color[2] * 257};
}

// Hue, saturation and third component in 16 bits.
inline Color StatedForward(const Color& rgb, int32_t mode) {
  const auto [r, g, b] = WidenedColor(rgb);
  const int64_t max = std::max(r, std::max(g, b));
  const int64_t min = std::min(r, std::min(g, b));
  const int64_t sum = max + min;
  const int64_t lightness = sum / 2;
  const int64_t third = mode == MODE_HSL ? lightness : max;
  if (max == min) return {0, 0, third};
  const int64_t diff = max - min;
  const int64_t saturation =
      lightness <= 32767 ? diff * 65536 / sum : diff * 65536 / (131072 - sum);
  int64_t hue = 0;
  if (max == r) {
    hue = 10922 * (g - b) / diff;
  } else if (max == g) {
    hue = 10922 * (b - r) / diff + 21845;
  } else {
    hue = 10922 * (r - g) / diff + 43690;
  }
  if (hue < 0) hue += 65536;
  return {hue, saturation, third};
}

inline Color NarrowedColor(const Color& color) {
  return {color[0] / 257, color[1] / 257, color[2] / 257};
}

// Of 16-bit components to bytes of red, green and blue.
inline Color StatedBackward(const Color& color, int32_t mode) {
  const auto [h, s, t] = color;
  int64_t least = 0;
  int64_t most = 0;
  int64_t full = 0;
  if (mode == MODE_HSL) {
    const int64_t half = (t <= 32767 ? t : 65536 - t) * s / 65536;
    full = 2 * half;
    least = t - half;
    most = t + half;
  } else {
    const bool bright = t / 257 * 514 > s + 65536;
    const int64_t quotient = bright ? (65536 - t) * s / (65536 - s) : s * t / (s + 65536);
    full = 2 * quotient;
    least = t - full;
    most = t;
  }
  const auto ramp = [&](int64_t along) { return least + along * full / 10922; };
  Color result{};
  if (h < 10923) {
    result = {most, ramp(h), least};
  } else if (h < 21846) {
    result = {ramp(21845 - h), most, least};
  } else if (h < 32768) {
    result = {least, most, ramp(h - 21845)};
  } else if (h < 43691) {
    result = {least, ramp(43690 - h), most};
  } else if (h < 54613) {
    result = {ramp(h - 43690), least, most};
  } else {
    result = {most, least, ramp(65536 - h)};
  }
  for (int64_t& channel : result)
    channel = std::min<int64_t>(std::max<int64_t>(channel >> 8, 0), 255);
  return result;
}

inline Color ChannelsOfPixel(RGBValue pixel) {
  return {(pixel >> 16) & 255, (pixel >> 8) & 255, pixel & 255};
}
inline RGBValue PixelOfChannels(const Color& rgb, RGBValue fourth = 0) {
  return static_cast<RGBValue>(rgb[0] * 65536 + rgb[1] * 256 + rgb[2]) | (fourth & 0xFF000000);
}

// The bytes that a plane of a mode holds.
inline Color StatedComponents(RGBValue pixel, int32_t mode) {
  const Color rgb = ChannelsOfPixel(pixel);
  return mode == MODE_RGB ? rgb : NarrowedColor(StatedForward(rgb, mode));
}
inline RGBValue StatedPixel(const Color& bytes, int32_t mode, RGBValue fourth = 0) {
  return PixelOfChannels(mode == MODE_RGB ? bytes : StatedBackward(WidenedColor(bytes), mode),
                         fourth);
}

// Random colours, with grays and pure colours among them.
inline TestImage ColorImage(int32_t width, int32_t height, int32_t border, uint64_t seed) {
  TestImage image(IMAGE_RGB, width, height, border, seed);
  Random random(seed + 5);
  for (int32_t y = 0; y < height; y++) {
    for (int32_t x = 0; x < width; x++) {
      const int32_t kind = random.Between(0, 5);
      if (kind == 0)
        image.Set<RGBValue>(x, y, 0x010101u * static_cast<uint32_t>(random.Between(0, 255)));
      if (kind == 1) image.Set<RGBValue>(x, y, 255u << (8 * random.Between(0, 2)));
    }
  }
  return image;
}

}  // namespace test
