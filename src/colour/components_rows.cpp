// Row routines that take one component out of colour pixels: plain loops, which compilers turn into
// vectors of 32-bit integers and floats.
#include "colour/components_rows.h"

#include "colour/hue_arithmetic.h"

namespace zel::ZEL_LEVEL {
namespace {

template <class Rule>
ZEL_INLINE void TakeOut(const RGBValue* pixels, uint8_t* component, int64_t count, Rule rule) {
#pragma GCC ivdep
  for (int64_t i = 0; i < count; i++) component[i] = static_cast<uint8_t>(rule(pixels[i]));
}

void Red(const RGBValue* pixels, uint8_t* component, int64_t count) {
  TakeOut(pixels, component, count, [](RGBValue pixel) { return pixel >> 16; });
}

void Green(const RGBValue* pixels, uint8_t* component, int64_t count) {
  TakeOut(pixels, component, count, [](RGBValue pixel) { return pixel >> 8; });
}

void Blue(const RGBValue* pixels, uint8_t* component, int64_t count) {
  TakeOut(pixels, component, count, [](RGBValue pixel) { return pixel; });
}

void Hue(const RGBValue* pixels, uint8_t* component, int64_t count) {
  TakeOut(pixels, component, count,
          [](RGBValue pixel) { return Narrowed(Hue16(ChannelsOf(pixel))); });
}

void Saturation(const RGBValue* pixels, uint8_t* component, int64_t count) {
  TakeOut(pixels, component, count,
          [](RGBValue pixel) { return SaturationByte(ChannelsOf(pixel)); });
}

void Lightness(const RGBValue* pixels, uint8_t* component, int64_t count) {
  TakeOut(pixels, component, count,
          [](RGBValue pixel) { return LightnessByte(ChannelsOf(pixel)); });
}

void Value(const RGBValue* pixels, uint8_t* component, int64_t count) {
  TakeOut(pixels, component, count, [](RGBValue pixel) { return ChannelsOf(pixel).Max(); });
}

}  // namespace

extern const ComponentRows componentRows = {
    .red = &Red,
    .green = &Green,
    .blue = &Blue,
    .hue = &Hue,
    .saturation = &Saturation,
    .lightness = &Lightness,
    .value = &Value,
};

}  // namespace zel::ZEL_LEVEL
