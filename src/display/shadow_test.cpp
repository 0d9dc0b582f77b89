// Palettes and the mapping of pixels to their levels.
#include "display/shadow.h"

#include <cmath>
#include <limits>

#include "display/display_test.h"
#include "display/palettes.h"

namespace {

using test::TestImage;

std::vector<uint32_t> PaletteOf(int32_t kind) {
  std::vector<uint32_t> colours(256, 0xABABABAB);
  zel::PaletteBuild(kind, colours.data());
  return colours;
}

constexpr uint32_t Rgb(uint32_t red, uint32_t green, uint32_t blue) {
  return red << 16 | green << 8 | blue;
}

TEST(Palettes, BeginWithBlackAndEndWithWhite) {
  for (int32_t kind = PALETTE_GRAY; kind <= PALETTE_TEMPERATURE; kind++) {
    EXPECT_EQ(PaletteOf(kind)[0], 0u) << kind;
    EXPECT_EQ(PaletteOf(kind)[255], 0xFFFFFFu) << kind;
    for (const uint32_t colour : PaletteOf(kind)) EXPECT_LE(colour, 0xFFFFFFu) << kind;
  }
}

TEST(Palettes, HaveTheirColoursInBetween) {
  EXPECT_EQ(PaletteOf(PALETTE_GRAY)[77], Rgb(77, 77, 77));
  const auto binary = PaletteOf(PALETTE_BINARY);
  EXPECT_EQ(binary[1], Rgb(255, 0, 0));
  EXPECT_EQ(binary[15], Rgb(127, 127, 255));
  EXPECT_EQ(binary[16], Rgb(255, 0, 0));
  EXPECT_EQ(binary[240], Rgb(127, 127, 255));
  EXPECT_EQ(binary[254], Rgb(127, 255, 127));
  const auto gradient = PaletteOf(PALETTE_GRADIENT);
  EXPECT_EQ(gradient[1], Rgb(9, 0, 0));
  EXPECT_EQ(gradient[15], Rgb(135, 0, 0));
  EXPECT_EQ(gradient[16], Rgb(144, 0, 0));
  EXPECT_EQ(gradient[95], Rgb(240 - 15, 160 + 45, 0));
  EXPECT_EQ(gradient[112], Rgb(160, 240, 0));
  EXPECT_EQ(gradient[200], Rgb(128 + 16, 224 + 8, 240 - 8));
  EXPECT_EQ(gradient[254], Rgb(238, 240, 238));
  const auto rainbow = PaletteOf(PALETTE_RAINBOW);
  EXPECT_EQ(rainbow[1], Rgb(0, 4, 255));
  EXPECT_EQ(rainbow[64], Rgb(0, 255, 255));
  EXPECT_EQ(rainbow[129], Rgb(4, 255, 0));
  EXPECT_EQ(rainbow[254], Rgb(255, 7, 0));
  const auto heat = PaletteOf(PALETTE_TEMPERATURE);
  EXPECT_EQ(heat[103], Rgb(103, 0, 0));
  EXPECT_EQ(heat[105], Rgb(105, 1, 0));
  EXPECT_EQ(heat[254], Rgb(254, 253, 252));
}

std::vector<uint8_t> ShadowOf(const TestImage& source) {
  const TestImage shadow(IMAGE_U8, source.width(), source.height());
  zel::Image* from = nullptr;
  zel::Image* to = nullptr;
  zel::ImageLookup(source, &from);
  zel::ImageLookup(shadow, &to);
  zel::ShadowConvert(zel::ViewOf(*from), zel::ViewOf(*to));
  return shadow.Pixels();
}

TEST(Shadows, StretchFromTheSmallestToTheLargestPixel) {
  const TestImage image(IMAGE_I16, 3, 1);
  image.Set<int16_t>(0, 0, -50);
  image.Set<int16_t>(1, 0, 0);
  image.Set<int16_t>(2, 0, 50);
  // 2.55 as a float is a little below it, so that the largest pixel lands on 254.
  EXPECT_EQ(ShadowOf(image), (std::vector<uint8_t>{0, 127, 254}));
}

TEST(Shadows, OfOneValueShowItsLowBits) {
  const TestImage image(IMAGE_I16, 2, 2);
  for (int32_t i = 0; i < 4; i++) image.Set<int16_t>(i % 2, i / 2, 300);
  EXPECT_EQ(ShadowOf(image), (std::vector<uint8_t>{44, 44, 44, 44}));
}

TEST(Shadows, OfLargeImagesAreTheSameAsOfTheirParts) {
  const TestImage image(IMAGE_I16, 300, 300, 0, 7);
  image.Set<int16_t>(0, 0, INT16_MIN);
  image.Set<int16_t>(1, 0, INT16_MAX);
  const TestImage part(IMAGE_I16, 300, 100);
  for (int32_t y = 0; y < 100; y++) {
    for (int32_t x = 0; x < 300; x++) part.Set<int16_t>(x, y, image.Get<int16_t>(x, y));
  }
  auto all = ShadowOf(image);
  all.resize(300 * 100);
  EXPECT_EQ(all, ShadowOf(part));
}

TEST(Shadows, LeaveNaNOutOfTheRangeAndShowItBlack) {
  const TestImage image(IMAGE_SGL, 4, 1);
  image.Set<float>(0, 0, std::numeric_limits<float>::quiet_NaN());
  image.Set<float>(1, 0, 2.0F);
  image.Set<float>(2, 0, 3.0F);
  image.Set<float>(3, 0, 4.0F);
  EXPECT_EQ(ShadowOf(image), (std::vector<uint8_t>{0, 0, 127, 255}));
}

// As it is stated, pixel by pixel.
uint8_t LevelAsStated(double level) {
  if (!(std::abs(level) < 9.2e18)) return 0;
  return static_cast<uint8_t>(static_cast<int64_t>(level) & 255);
}
template <class T>
std::vector<uint8_t> ShadowAsStated(const TestImage& image) {
  float low = 1e38F;
  float high = -1e38F;
  for (int32_t y = 0; y < image.height(); y++) {
    for (int32_t x = 0; x < image.width(); x++) {
      const auto pixel = static_cast<float>(image.Get<T>(x, y));
      if (pixel < low) low = pixel;
      if (pixel > high) high = pixel;
    }
  }
  const bool isFlat = low == high;
  const float a = isFlat ? 1.0F : static_cast<float>(255.0 / (double{high} - double{low}));
  const float b = isFlat ? 0.0F : static_cast<float>(-(double{a} * double{low}));
  std::vector<uint8_t> levels;
  for (int32_t y = 0; y < image.height(); y++) {
    for (int32_t x = 0; x < image.width(); x++) {
      levels.push_back(
          LevelAsStated(static_cast<double>(image.Get<T>(x, y)) * double{a} + double{b}));
    }
  }
  return levels;
}

TEST(Shadows, OfAnyFloatsAreAsStated) {
  constexpr float infinite = std::numeric_limits<float>::infinity();
  constexpr float nan = std::numeric_limits<float>::quiet_NaN();
  constexpr float denormal = std::numeric_limits<float>::denorm_min();
  const std::vector<std::vector<float>> specials = {{},
                                                    {nan, -nan},
                                                    {infinite},
                                                    {-infinite, infinite},
                                                    {3e38F, -3e38F},
                                                    {1e-40F},
                                                    {denormal, nan},
                                                    {-1e30F, 1e30F},
                                                    {2e38F},
                                                    {-0.0F, 255.0F},
                                                    {1e20F},
                                                    {-5e9F, nan, 1e10F},
                                                    {-1e-30F, 1e-30F}};
  for (size_t i = 0; i < specials.size(); i++) {
    for (const int32_t width : {1, 7, 16, 17, 33, 65, 300}) {
      const TestImage image(IMAGE_SGL, width, width, 1, i + 3);
      for (size_t k = 0; k < specials[i].size() && k < static_cast<size_t>(width); k++) {
        image.Set<float>(static_cast<int32_t>(k), 0, specials[i][k]);
      }
      EXPECT_EQ(ShadowOf(image), ShadowAsStated<float>(image)) << i << " at " << width;
    }
  }
  const TestImage all(IMAGE_SGL, 2, 2);
  for (const float value : {infinite, nan, 2e38F, -3e38F, 1e-40F, 300.0F, -1.0F}) {
    for (int32_t i = 0; i < 4; i++) all.Set<float>(i % 2, i / 2, value);
    EXPECT_EQ(ShadowOf(all), ShadowAsStated<float>(all)) << value;
  }
}

TEST(Shadows, OfWordsAreAsStated) {
  for (const int32_t width : {1, 7, 8, 9, 15, 16, 17, 31, 32, 33, 65}) {
    const TestImage image(IMAGE_I16, width, 3, 1, static_cast<uint64_t>(width));
    EXPECT_EQ(ShadowOf(image), ShadowAsStated<int16_t>(image)) << width;
  }
  const TestImage all(IMAGE_I16, 300, 300, 0, 7);  // more pixels than levels
  all.Set<int16_t>(0, 0, INT16_MIN);
  all.Set<int16_t>(1, 0, INT16_MAX);
  EXPECT_EQ(ShadowOf(all), ShadowAsStated<int16_t>(all));
  const TestImage flat(IMAGE_I16, 33, 1);
  for (const int value : {INT16_MIN, -1, 300, INT16_MAX}) {
    for (int32_t x = 0; x < 33; x++) flat.Set<int16_t>(x, 0, static_cast<int16_t>(value));
    EXPECT_EQ(ShadowOf(flat), ShadowAsStated<int16_t>(flat)) << value;
  }
}

TEST(Shadows, OfSpectraHaveTheirCornersInTheMiddle) {
  // 64 x 64: 2^n at most 4 gives n = 2 and a divisor of 32.
  const TestImage image(IMAGE_COMPLEX, 64, 64);
  for (int32_t y = 0; y < 64; y++) {
    for (int32_t x = 0; x < 64; x++) {
      auto* pixel = static_cast<float*>(static_cast<void*>(image.At<uint64_t>(x, y)));
      pixel[0] = static_cast<float>(32 * 3 * (x + y == 0));
      pixel[1] = static_cast<float>(32 * 4 * (x + y == 0));
    }
  }
  const auto shadow = ShadowOf(image);
  EXPECT_EQ(shadow[32 * 64 + 32], 5);
  EXPECT_EQ(shadow[0], 0);
}

TEST(Shadows, OfOddSpectraKeepTheLastColumnAndRow) {
  const TestImage image(IMAGE_COMPLEX, 33, 33);
  for (int32_t y = 0; y < 33; y++) {
    for (int32_t x = 0; x < 33; x++) {
      auto* pixel = static_cast<float*>(static_cast<void*>(image.At<uint64_t>(x, y)));
      pixel[0] = 0;
      pixel[1] = x == 32 ? 8.0F * 9 : 8.0F;  // 2^n at most 2: n = 1, divisor 8
    }
  }
  const auto shadow = ShadowOf(image);
  for (size_t y = 0; y < 33; y++) EXPECT_EQ(shadow[y * 33 + 32], 9) << y;
  EXPECT_EQ(shadow[5], 1);
}

}  // namespace
