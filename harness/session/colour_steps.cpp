// Colour images: planes, pixels, conversion, histogram, threshold, lookup.
#include <array>

#include "harness/session/session.h"

namespace test {
namespace {

constexpr size_t PIXELS = size_t{Session::WIDTH} * Session::HEIGHT;

// Colours of all kinds, so that the later steps see some.
int32_t ArrayToImage(Session& s) {
  std::array<RGBValue, PIXELS> pixels{};
  for (size_t i = 0; i < PIXELS; i++) pixels[i] = static_cast<RGBValue>(i * 2654435761u);
  return ZEL_ArrayToColorImage(s.rgb, pixels.data(), Session::WIDTH, Session::HEIGHT);
}

int32_t GetPixel(Session& s) {
  RGBValue value = 0;
  const int32_t result = ZEL_GetColorPixel(s.rgb, 5, 100, &value);
  s.Out(value);
  return result;
}

int32_t GetLine(Session& s) {
  std::array<RGBValue, 64> line{};
  int32_t count = 0;
  const int32_t result = ZEL_GetColorLine(s.rgb, 0, 3, 36, 20, line.data(), &count);
  s.Out(line);
  s.Out(count);
  return result;
}

int32_t ImageToArray(Session& s) {
  std::array<RGBValue, PIXELS> pixels{};
  int32_t columns = 0;
  int32_t rows = 0;
  const int32_t result = ZEL_ColorImageToArray(s.rgb, 2, 3, 10, 20, pixels.data(), &columns, &rows);
  s.Out(pixels);
  s.Out(columns);
  s.Out(rows);
  return result;
}

int32_t Conversion(Session& s) {
  std::array<uint8_t, 3> color{};
  const int32_t result =
      ZEL_ColorConversion(MODE_RGB, 10, 200, 30, MODE_HSL, &color[0], &color[1], &color[2]);
  s.Out(color);
  return result;
}

int32_t ToInteger(Session& s) {
  const std::array<int16_t, 4> planes[3] = {{1, 90, 180, 255}, {200, 255, 0, 77}, {9, 99, 199, 1}};
  std::array<RGBValue, 4> values{};
  const int32_t result = ZEL_ColorToInteger(planes[0].data(), planes[1].data(), planes[2].data(), 4,
                                            MODE_HSV, ARRAY_I16, values.data());
  s.Out(values);
  return result;
}

int32_t FromInteger(Session& s) {
  const std::array<RGBValue, 4> values = {0x123456, 0xFF0001, 0x808080, 0x00FFFE};
  std::array<float, 4> planes[3] = {};
  const int32_t result = ZEL_IntegerToColor(values.data(), 4, MODE_HSL, ARRAY_SGL, planes[0].data(),
                                            planes[1].data(), planes[2].data());
  for (const auto& plane : planes) s.Out(plane);
  return result;
}

int32_t Histogram(Session& s) {
  std::array<uint32_t, 14> counts[3] = {};
  ColorHistogramReport reports[3] = {};
  const int32_t result =
      ZEL_ColorHistogram(s.rgb, s.mask, 14, MODE_HSL, counts[0].data(), counts[1].data(),
                         counts[2].data(), &reports[0], &reports[1], &reports[2]);
  for (const auto& plane : counts) s.Out(plane);
  for (const auto& report : reports) s.Out(report);
  return result;
}

const uint8_t* Negative() {
  static const auto table = [] {
    std::array<uint8_t, 256> levels{};
    for (size_t i = 0; i < levels.size(); i++) levels[i] = static_cast<uint8_t>(255 - i);
    return levels;
  }();
  return table.data();
}

// The call gives 0 always; what failed is told by the reporter. Lightness, since the planes before
// a failing one would stay equalised.
int32_t Equalize(Session& s) {
  ZEL_GetLastError(nullptr);
  ZEL_ColorEqualize(s.rgb, 0, 0);
  return ZEL_GetLastError(nullptr);
}

constexpr Step ROWS[] = {
    {"ZEL_ArrayToColorImage", &ArrayToImage},
    {"ZEL_SetColorPixel", [](Session& s) { return ZEL_SetColorPixel(s.rgb, 4, 4, 0x00FF8001); }},
    {"ZEL_GetColorPixel", &GetPixel},
    {"ZEL_SetColorLine",
     [](Session& s) {
       const std::array<RGBValue, 3> colors = {0xFF0000, 0x00FF00, 0x0000FF};
       return ZEL_SetColorLine(s.rgb, 2, 2, 20, 9, colors.data(), 3);
     }},
    {"ZEL_GetColorLine", &GetLine},
    {"ZEL_ColorImageToArray", &ImageToArray},
    {"ZEL_ExtractColorPlanes",
     [](Session& s) { return ZEL_ExtractColorPlanes(s.rgb, s.target, 0, s.other, MODE_HSL); }},
    {"ZEL_ReplaceColorPlanes",
     [](Session& s) { return ZEL_ReplaceColorPlanes(s.rgb, 0, s.target, 0, s.other, MODE_HSV); }},
    {"ZEL_ColorConversion", &Conversion},
    {"ZEL_ColorToInteger", &ToInteger},
    {"ZEL_IntegerToColor", &FromInteger},
    {"ZEL_ColorHistogram", &Histogram},
    {"ZEL_ColorThreshold",
     [](Session& s) {
       return ZEL_ColorThreshold(s.rgb, s.target, MODE_HSL, 255, 240, 90, 10, 255, 0, 255);
     }},
    {"ZEL_ColorUserLookup",
     [](Session& s) {
       return ZEL_ColorUserLookup(s.rgb, s.mask, 0, MODE_HSL, ARRAY_U8, nullptr, nullptr,
                                  Negative());
     }},
    {"ZEL_ColorEqualize", &Equalize},
};

}  // namespace

constinit const std::span<const Step> COLOUR_STEPS{ROWS};

}  // namespace test
