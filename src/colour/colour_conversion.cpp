// Colours without an image: one colour, and arrays of colours, from mode to mode.
#include <algorithm>

#include "colour/components.h"
#include "core/numbers.h"
#include "core/status.h"
#include "engine/array_convert.h"
#include "engine/bands.h"
#include "orlune_ptk.h"

namespace zel {
namespace {

struct ColourBytes {
  uint8_t planes[COLOUR_PLANES];
};

ColourBytes OfPixel(RGBValue pixel, int32_t mode) {
  const ComponentSet components = ComponentsOf(mode);
  ColourBytes color{};
  for (int32_t p = 0; p < COLOUR_PLANES; p++) components.planes[p](&pixel, &color.planes[p], 1);
  return color;
}

RGBValue ToPixel(const ColourBytes& color, MergeRoutine merge) {
  RGBValue pixel = 0;
  merge({nullptr, {&color.planes[0], &color.planes[1], &color.planes[2]}, &pixel, 1});
  return pixel;
}

// Lightness to value is the one formula, anything else the other. Hue and saturation are the same
// numbers in both modes.
uint8_t ThirdOfOtherMode(int32_t fromMode, double saturation, double third) {
  double result = 0.0;
  if (fromMode == MODE_HSL) {
    const double reach = third >= 128.0 ? 256.0 - third : third;
    result = third + reach * saturation * 0.00390625;
  } else if (2.0 * third <= saturation + 256.0) {
    result = third - third * saturation / (saturation + 256.0);
  } else {
    result = third - (256.0 - third) * saturation / (256.0 - saturation);
  }
  const double limited = std::clamp(result, 0.0, 255.0);
  const auto whole = static_cast<int32_t>(limited);
  return static_cast<uint8_t>(whole + (limited - whole >= 0.5 ? 1 : 0));
}

// False where the modes say nothing of a result.
bool Convert(int32_t fromMode, const ColourBytes& from, int32_t toMode, ColourBytes* to) {
  if (fromMode == toMode) {
    *to = from;
  } else if (fromMode == MODE_RGB) {
    *to = OfPixel(ToPixel(from, MergeOf(MODE_RGB)), toMode);
  } else if (toMode == MODE_RGB) {
    const MergeRoutine merge = MergeOf(fromMode);
    if (!merge) return false;
    *to = OfPixel(ToPixel(from, merge), MODE_RGB);
  } else {
    *to = from;
    to->planes[2] = ThirdOfOtherMode(fromMode, from.planes[1], from.planes[2]);
  }
  return true;
}

// An element of a conversion costs far more than the bytes of an addition.
constexpr int64_t WORK_AN_ELEMENT = 64;

// Calls work(first, count) for runs of at most a block that together are all elements, on several
// threads where that repays.
template <class Work>
void BlocksRun(int64_t count, const Work& work) {
  BandsRun({.units = count, .bytes = WORK_AN_ELEMENT * count, .alignment = COLOUR_BLOCK},
           [&](const Band& band) {
             for (int64_t first = band.begin; first < band.end; first += COLOUR_BLOCK) {
               work(first, std::min(COLOUR_BLOCK, band.end - first));
             }
           });
}

Status ColorToInteger(const void* const (&arrays)[COLOUR_PLANES], int32_t count, int32_t mode,
                      int32_t elementType, RGBValue* values) {
  if (!values || count < 1) return STATUS_OK;
  if (!arrays[0] || !arrays[1] || !arrays[2]) return STATUS_MEMORY_ERROR;
  const int32_t bytes = ArrayTypeBits(elementType, nullptr);
  const MergeRoutine merge = MergeOf(mode);
  if (bytes == 0 || !merge) return STATUS_OK;
  BlocksRun(count, [&](int64_t first, int64_t size) {
    uint8_t planes[COLOUR_PLANES][COLOUR_BLOCK];
    for (int32_t p = 0; p < COLOUR_PLANES; p++) {
      ArrayConvert(static_cast<const uint8_t*>(arrays[p]) + first * bytes, elementType, planes[p],
                   ARRAY_U8, size);
    }
    merge({nullptr, {planes[0], planes[1], planes[2]}, values + first, size});
  });
  return STATUS_OK;
}

Status IntegerToColor(const RGBValue* values, int32_t count, int32_t mode, int32_t elementType,
                      void* const (&arrays)[COLOUR_PLANES]) {
  if (count == 0) return STATUS_OK;
  if (!values) return STATUS_MEMORY_ERROR;
  const int32_t bytes = ArrayTypeBits(elementType, nullptr);
  if (count < 0 || bytes == 0) return STATUS_OK;
  const ComponentSet components = ComponentsOf(mode);
  BlocksRun(count, [&](int64_t first, int64_t size) {
    // All are there before one is stored: an array of planes may be that of the values.
    uint8_t planes[COLOUR_PLANES][COLOUR_BLOCK];
    for (int32_t p = 0; p < COLOUR_PLANES; p++) {
      if (arrays[p]) components.planes[p](values + first, planes[p], size);
    }
    for (int32_t p = 0; p < COLOUR_PLANES; p++) {
      if (!arrays[p]) continue;
      ArrayConvert(planes[p], ARRAY_U8, static_cast<uint8_t*>(arrays[p]) + first * bytes,
                   elementType, size);
    }
  });
  return STATUS_OK;
}

}  // namespace
}  // namespace zel

int32_t ZEL_ColorConversion(int32_t fromMode, int32_t c1, int32_t c2, int32_t c3, int32_t toMode,
                            uint8_t* out1, uint8_t* out2, uint8_t* out3) {
  const zel::ColourBytes from{
      {static_cast<uint8_t>(c1), static_cast<uint8_t>(c2), static_cast<uint8_t>(c3)}};
  zel::ColourBytes to{};
  if (zel::Convert(fromMode, from, toMode, &to)) {
    if (out1) *out1 = to.planes[0];
    if (out2) *out2 = to.planes[1];
    if (out3) *out3 = to.planes[2];
  }
  return ZEL_ProcessError("ZEL_ColorConversion", zel::STATUS_OK);
}

int32_t ZEL_ColorToInteger(const void* plane1, const void* plane2, const void* plane3,
                           int32_t count, int32_t mode, int32_t elementType, RGBValue* values) {
  return ZEL_ProcessError("ZEL_ColorToInteger", zel::ColorToInteger({plane1, plane2, plane3}, count,
                                                                    mode, elementType, values));
}

int32_t ZEL_IntegerToColor(const RGBValue* values, int32_t count, int32_t mode, int32_t elementType,
                           void* plane1, void* plane2, void* plane3) {
  return ZEL_ProcessError(
      "ZEL_IntegerToColor",
      zel::IntegerToColor(values, count, mode, elementType, {plane1, plane2, plane3}));
}
