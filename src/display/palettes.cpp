// The built-in palettes. All of them begin with black and end with white.
#include "display/palettes.h"

#include "orlune_ptk.h"

namespace zel {
namespace {

constexpr int32_t LAST = 255;

constexpr uint32_t Packed(int32_t red, int32_t green, int32_t blue) {
  return static_cast<uint32_t>(red << 16 | green << 8 | blue);
}

uint32_t GrayAt(int32_t i) {
  return Packed(i, i, i);
}

uint32_t BinaryAt(int32_t i) {
  constexpr uint32_t colours[] = {0xFF0000, 0x00FF00, 0x0000FF, 0xFFFF00, 0xFF00FF,
                                  0x00FFFF, 0xFF7F00, 0xFF007F, 0x7FFF00, 0x7F00FF,
                                  0x007FFF, 0x00FF7F, 0xFF7F7F, 0x7FFF7F, 0x7F7FFF};
  return colours[(i - 1) % 15];
}

// Sixteen straight pieces of sixteen entries each; the first one begins with the second step.
uint32_t GradientAt(int32_t i) {
  struct Ramp {
    int32_t start, step;
  };
  struct Piece {
    Ramp red, green, blue;
  };
  constexpr Piece pieces[] = {{{0, 9}, {0, 0}, {0, 0}},        {{144, 4}, {0, 0}, {0, 0}},
                              {{208, 2}, {0, 0}, {0, 0}},      {{240, 0}, {0, 6}, {0, 0}},
                              {{240, 0}, {96, 4}, {0, 0}},     {{240, -1}, {160, 3}, {0, 0}},
                              {{224, -4}, {208, 2}, {0, 0}},   {{160, -2}, {240, 0}, {0, 6}},
                              {{128, -1}, {240, 0}, {96, 5}},  {{112, -1}, {240, -2}, {176, 3}},
                              {{96, 1}, {208, 0}, {224, 1}},   {{112, 1}, {208, 1}, {240, 0}},
                              {{128, 2}, {224, 1}, {240, -1}}, {{160, 2}, {240, 0}, {224, 0}},
                              {{192, 2}, {240, 0}, {224, 0}},  {{224, 1}, {240, 0}, {224, 1}}};
  const Piece& piece = pieces[i / 16];
  const auto at = [k = i % 16](const Ramp& ramp) { return ramp.start + ramp.step * k; };
  return Packed(at(piece.red), at(piece.green), at(piece.blue));
}

uint32_t RainbowAt(int32_t i) {
  const int32_t rise = 4 * i % 256;
  switch (i / 64) {
    case 0:
      return Packed(0, rise, 255);
    case 1:
      return Packed(0, 255, 255 - rise);
    case 2:
      return Packed(rise, 255, 0);
    default:
      return Packed(255, 255 - rise, 0);
  }
}

uint32_t TemperatureAt(int32_t i) {
  const auto risen = [i](int32_t from, int32_t length) {
    return i < from ? 0 : 255 * (i - from) / length;
  };
  return Packed(i, risen(104, 151), risen(142, 113));
}

}  // namespace

void PaletteBuild(int32_t kind, uint32_t* colours) {
  constexpr decltype(&GrayAt) builders[] = {&GrayAt, &BinaryAt, &GradientAt, &RainbowAt,
                                            &TemperatureAt};
  static_assert(PALETTE_GRAY == 0 && PALETTE_BINARY == 1 && PALETTE_GRADIENT == 2 &&
                PALETTE_RAINBOW == 3 && PALETTE_TEMPERATURE == 4);
  for (int32_t i = 1; i < LAST; i++) colours[i] = builders[kind](i);
  colours[0] = 0;
  colours[LAST] = 0xFFFFFF;
}

}  // namespace zel
