// Spectra: the Fourier transform, complex images combined, filtered, taken apart.
#include "harness/calls/calls.h"
#include "harness/calls/draws.h"

namespace test {
namespace {

using namespace draw;

// An image whose sides mostly become some that can be transformed before the call begins.
template <auto transform>
int32_t Transform(Playground& play) {
  const struct {
    ImageRef source;
    int32_t kind, columns, rows;
  } a{Source(play), Below<8>(play), Below<3>(play), Below<3>(play)};
  if (a.kind != 0) {
    ZEL_SetImageSize(a.source, 16 << a.columns, 16 << a.rows);
    ZEL_GetLastError(nullptr);
  }
  play.model().Begin();
  play.model().Names(a.source, 0);
  return transform(a.source, Destination(play));
}

int32_t ArrayToComplexImage(Playground& play) {
  const struct {
    ImageRef image;
    int32_t width, height;
  } a{ImageThatMay<SIZE | PIXELS>(play), Below<50>(play) - 3, Below<50>(play) - 3};
  const auto* array = play.ArrayOf<ComplexValue>(Held(a.width) * Held(a.height));
  return ZEL_ArrayToComplexImage(a.image, array, a.width, a.height);
}

int32_t ArrayToComplexPlane(Playground& play) {
  const struct {
    ImageRef image;
    int32_t plane, width, height;
  } a{ImageThatMay<SIZE | PIXELS>(play), Int(play), Below<50>(play) - 3, Below<50>(play) - 3};
  const auto* array = play.ArrayOf<float>(Held(a.width) * Held(a.height));
  return ZEL_ArrayToComplexPlane(a.image, a.plane, array, a.width, a.height);
}

// Pixels of one side of a rectangle: an end that does not lie within the image is the image's.
size_t PixelsAlong(int32_t from, int32_t size, int32_t pixels) {
  const auto limited = [pixels](int64_t end, int64_t otherwise) {
    return end >= 0 && end <= pixels ? end : otherwise;
  };
  return Held(limited(int64_t{from} + size, pixels) - limited(from, 0));
}
size_t NumbersOf(const Rect& rect, const Playground::Shape& image) {
  return PixelsAlong(rect.left, rect.width, image.width) *
         PixelsAlong(rect.top, rect.height, image.height);
}

int32_t ComplexImageToArray(Playground& play) {
  const struct {
    ImageRef image;
    Rect rect;
  } a{Source(play), RectAnywhere(play)};
  const struct {
    ComplexValue* array;
    int32_t *columns, *rows;
  } out{play.OutputOf<ComplexValue>(NumbersOf(a.rect, play.ShapeOf(a.image))),
        Output<int32_t>(play), Output<int32_t>(play)};
  return ZEL_ComplexImageToArray(a.image, a.rect.top, a.rect.left, a.rect.height, a.rect.width,
                                 out.array, out.columns, out.rows);
}

int32_t ComplexPlaneToArray(Playground& play) {
  const struct {
    ImageRef image;
    int32_t plane;
    Rect rect;
  } a{Source(play), Int(play), RectAnywhere(play)};
  const struct {
    float* array;
    int32_t *columns, *rows;
  } out{play.OutputOf<float>(NumbersOf(a.rect, play.ShapeOf(a.image))), Output<int32_t>(play),
        Output<int32_t>(play)};
  return ZEL_ComplexPlaneToArray(a.image, a.plane, a.rect.top, a.rect.left, a.rect.height,
                                 a.rect.width, out.array, out.columns, out.rows);
}

int32_t Constant([[maybe_unused]] Playground& play) {
  const ComplexValue* one = ZEL_GetCpxConstant1Ptr();
  return one->real == 1.0f && one->imaginary == 0.0f ? 0 : -1;
}

constexpr Leftovers OF_FORWARD[] = {{-101, CALIBRATION | SIZE | PIXELS}};
constexpr Leftovers OF_INVERSE[] = {{-101, CALIBRATION | SIZE}};
constexpr Leftovers OF_MEMORY[] = {{-101, CALIBRATION}};
// A destination of another type has been settled and then emptied.
constexpr Leftovers OF_ONE_SOURCE[] = {
    {-101, CALIBRATION}, {-300, CALIBRATION}, {-304, CALIBRATION | SIZE}};

constexpr ApiCall ROWS[] = {
    {200, "ZEL_FFT", Transform<ZEL_FFT>, STATUS, OF_FORWARD},
    {201, "ZEL_InverseFFT", Transform<ZEL_InverseFFT>, STATUS, OF_INVERSE},
    {202, "ZEL_ComplexAdd", Call<ZEL_ComplexAdd, Source, Source, Destination, Float, Float>, STATUS,
     OF_MEMORY},
    {203, "ZEL_ComplexSubtract",
     Call<ZEL_ComplexSubtract, Source, Source, Destination, Float, Float>, STATUS, OF_MEMORY},
    {204, "ZEL_ComplexMultiply",
     Call<ZEL_ComplexMultiply, Source, Source, Destination, Float, Float>, STATUS, OF_MEMORY},
    {205, "ZEL_ComplexDivide", Call<ZEL_ComplexDivide, Source, Source, Destination, Float, Float>,
     STATUS, OF_MEMORY},
    {206, "ZEL_ComplexConjugate", Call<ZEL_ComplexConjugate, Source, Destination>, STATUS,
     OF_ONE_SOURCE},
    {207, "ZEL_ComplexFlipFrequency", Call<ZEL_ComplexFlipFrequency, Source, Destination>, STATUS,
     OF_ONE_SOURCE},
    {208, "ZEL_ComplexAttenuate", Call<ZEL_ComplexAttenuate, Source, Destination, Int>, STATUS,
     OF_ONE_SOURCE},
    {209, "ZEL_ComplexTruncate", Call<ZEL_ComplexTruncate, Source, Destination, Below<2>, Float>,
     STATUS, OF_ONE_SOURCE},
    {210, "ZEL_ExtractComplexPlane", Call<ZEL_ExtractComplexPlane, Source, Destination, Int>,
     STATUS, OF_ONE_SOURCE},
    {211, "ZEL_ReplaceComplexPlane", Call<ZEL_ReplaceComplexPlane, Source, Destination, Below<3>>,
     STATUS, OF_MEMORY},
    {212, "ZEL_ArrayToComplexImage", ArrayToComplexImage},
    {213, "ZEL_ArrayToComplexPlane", ArrayToComplexPlane},
    {214, "ZEL_ComplexImageToArray", ComplexImageToArray},
    {215, "ZEL_ComplexPlaneToArray", ComplexPlaneToArray},
    {216, "ZEL_GetCpxConstant1Ptr", Constant, NO_STATUS},
};

}  // namespace

constinit const std::span<const ApiCall> FREQUENCY_CALLS{ROWS};

}  // namespace test
