// The steps that see a picture as a sum of waves. The library transforms pictures whose sides are
// powers of 2; others are continued to the right and downward by their mirror image.
#include "orlune/filter/spectrum_steps.h"

#include <algorithm>
#include <bit>
#include <cmath>

namespace front {
namespace {

using Kind = Parameter::Kind;

ImageInfo InfoOf(ImageRef image) {
  ImageInfo info;
  Check(-ZEL_GetImageInfo(image, &info));
  return info;
}

int32_t SideFor(int32_t pixels) {
  constexpr uint32_t least = 16;
  return static_cast<int32_t>(std::bit_ceil(std::max(static_cast<uint32_t>(pixels), least)));
}

int32_t Mirrored(int32_t place, int32_t size) {
  const int32_t along = place % (2 * size);
  return along < size ? along : 2 * size - 1 - along;
}

// A copy in floats with sides that can be transformed.
Image Continued(ImageRef image) {
  const Image floats(IMAGE_SGL);
  Check(ZEL_Convert(image, floats));
  const ImageInfo from = floats.Info();
  Image field(IMAGE_SGL, from.border, SideFor(from.width), SideFor(from.height));
  Check(ZEL_SetImageCalibration(field, from.unit, from.xStep, from.yStep));
  const ImageInfo to = field.Info();
  for (int32_t y = 0; y < to.height; ++y) {
    const auto* source = Row<const float>(from, Mirrored(y, from.height));
    auto* pixels = Row<float>(to, y);
    for (int32_t x = 0; x < to.width; ++x) pixels[x] = source[Mirrored(x, from.width)];
  }
  return field;
}

// Magnitudes range over many powers of 10: they become their logarithms, the largest one white.
void Lighten(const ImageInfo& magnitudes) {
  constexpr float white = 255;
  float largest = 0;
  for (int32_t y = 0; y < magnitudes.height; ++y) {
    auto* row = Row<float>(magnitudes, y);
    for (int32_t x = 0; x < magnitudes.width; ++x) {
      row[x] = std::log1p(row[x]);
      largest = std::max(largest, row[x]);
    }
  }
  if (largest == 0) return;
  for (int32_t y = 0; y < magnitudes.height; ++y) {
    auto* row = Row<float>(magnitudes, y);
    for (int32_t x = 0; x < magnitudes.width; ++x) row[x] *= white / largest;
  }
}

int32_t ShowSpectrum(ImageRef image, ImageRef, const Arguments&) {
  const Image spectrum(IMAGE_COMPLEX);
  const Image magnitudes = Continued(image);
  int32_t status = ZEL_FFT(magnitudes, spectrum);
  if (status == 0) status = ZEL_ComplexFlipFrequency(spectrum, 0);
  if (status == 0) status = ZEL_ExtractComplexPlane(spectrum, magnitudes, COMPLEX_PLANE_MAGNITUDE);
  if (status != 0) return status;
  Lighten(magnitudes.Info());
  return ZEL_Convert(magnitudes, image);
}

int32_t KeepFrequencies(ImageRef image, ImageRef, const Arguments& arguments) {
  const ImageInfo info = InfoOf(image);
  const Image spectrum(IMAGE_COMPLEX);
  int32_t status = ZEL_FFT(Continued(image), spectrum);
  if (status == 0) {
    status = ZEL_ComplexTruncate(spectrum, 0, static_cast<int16_t>(arguments[0].Whole()),
                                 arguments[1].Real());
  }
  if (status == 0) status = ZEL_InverseFFT(spectrum, image);
  if (status == 0) status = ZEL_Extract(image, 0, 0, 0, info.height, info.width, 1, 1);
  return status;
}

}  // namespace

std::vector<Step> SpectrumSteps() {
  return {
      {.name = "frequencies",
       .parameters = {{.name = "BAND",
                       .kind = Kind::Choice,
                       .choices = {{"low", FREQUENCY_KEEP_LOW}, {"high", FREQUENCY_KEEP_HIGH}}},
                      {.name = "PERCENT", .kind = Kind::Real, .low = 0, .high = 100}},
       .meaning = "the waves within PERCENT of the spectrum, or those outside, unsigned",
       .movesPixels = true,
       .border = [](const Arguments&) { return 0; },
       .apply = KeepFrequencies},
      {.name = "spectrum",
       .parameters = {},
       .meaning = "how strong each wave is, as logarithms, the longest in the middle",
       .movesPixels = true,
       .border = [](const Arguments&) { return 0; },
       .apply = ShowSpectrum},
  };
}

}  // namespace front
