// Whole pictures: arrays, copies and drawings, geometry, colours, spectra, files.
#include <array>
#include <cstddef>

#include "harness/sweep/sweep.h"

namespace test {
namespace {

template <class T>
void ToArray(Sweep& sweep, ImageRef image, int32_t arrayType) {
  std::array<T, 100> line{};
  int32_t count = 0;
  const int32_t status =
      ZEL_GetLine(image, 0, sweep.height - 1, 90, 0, arrayType, line.data(), &count);
  sweep.Add(status, line.data(), line.size());
  std::array<T, 40> part{};
  int32_t columns = 0;
  int32_t rows = 0;
  const int32_t taken =
      ZEL_ImageToArray(image, 0, 1, 4, 10, arrayType, part.data(), &columns, &rows);
  sweep.Add(taken, part.data(), part.size());
}

void Arrays(Sweep& sweep, ImageRef image) {
  ToArray<int8_t>(sweep, image, ARRAY_I8);
  ToArray<uint8_t>(sweep, image, ARRAY_U8);
  ToArray<int16_t>(sweep, image, ARRAY_I16);
  ToArray<uint16_t>(sweep, image, ARRAY_U16);
  ToArray<int32_t>(sweep, image, ARRAY_I32);
  ToArray<uint32_t>(sweep, image, ARRAY_U32);
  ToArray<float>(sweep, image, ARRAY_SGL);
  ToArray<double>(sweep, image, ARRAY_DBL);
}

void Drawings(Sweep& sweep) {
  for (const int32_t mode : {DRAW_FRAME, DRAW_PAINT, DRAW_INVERT_FRAME, DRAW_INVERT_PAINT}) {
    sweep.Add(ZEL_DrawLine(sweep.first, sweep.result, -3, 2, 30, 50, mode, 77.7f));
    sweep.Add(ZEL_DrawRect(sweep.first, sweep.result, 1, -2, 9, 20, mode, 1e6f));
    sweep.Add(ZEL_DrawOval(sweep.first, sweep.result, -1, 2, 15, 22, mode, -9));
  }
}

void ColourMode(Sweep& sweep, int32_t mode) {
  const TestImage planes[] = {TestImage(IMAGE_U8, sweep.width, sweep.height, 1, 6),
                              TestImage(IMAGE_U8, sweep.width, sweep.height, 1, 7),
                              TestImage(IMAGE_U8, sweep.width, sweep.height, 1, 8)};
  sweep.Add(
      ZEL_ReplaceColorPlanes(sweep.first, sweep.result, planes[0], planes[1], planes[2], mode));
  sweep.Add(ZEL_ReplaceColorPlanes(sweep.first, sweep.result, planes[0], 0, planes[2], mode));
  const int32_t status = ZEL_ExtractColorPlanes(sweep.first, planes[0], planes[1], planes[2], mode);
  for (const TestImage& plane : planes) sweep.AddImage(status, plane);
  sweep.AddImage(ZEL_ColorThreshold(sweep.first, planes[0], mode, 255, 40, 240, 10, 255, 0, 200),
                 planes[0]);
  std::array<std::array<uint32_t, 60>, 3> counts{};
  std::array<ColorHistogramReport, 3> reports{};
  const int32_t counted =
      ZEL_ColorHistogram(sweep.first, sweep.mask, 60, mode, counts[0].data(), counts[1].data(),
                         counts[2].data(), &reports[0], &reports[1], &reports[2]);
  sweep.Add(counted, counts.data(), counts.size());
  sweep.Add(counted, reports.data(), reports.size());
  std::array<uint8_t, 256> table{};
  for (size_t i = 0; i < table.size(); i++) table[i] = static_cast<uint8_t>(i * 77);
  sweep.Add(ZEL_ColorUserLookup(sweep.first, 0, sweep.result, mode, ARRAY_U8, table.data(), nullptr,
                                table.data()));
}

// Of a spectrum in the result image.
void Spectrum(Sweep& sweep, ImageRef spectrum) {
  for (const int16_t mode : {FREQUENCY_KEEP_LOW, FREQUENCY_KEEP_HIGH}) {
    sweep.Add(ZEL_ComplexAttenuate(spectrum, sweep.result, mode));
    sweep.Add(ZEL_ComplexTruncate(spectrum, sweep.result, mode, 35));
  }
  for (const auto& operation :
       {ZEL_ComplexAdd, ZEL_ComplexSubtract, ZEL_ComplexMultiply, ZEL_ComplexDivide}) {
    sweep.Add(operation(spectrum, 0, sweep.result, 1.5f, -2.0f));
    sweep.Add(operation(spectrum, spectrum, sweep.result, 0, 0));
    sweep.Add(operation(spectrum, sweep.first, sweep.result, 0, 0));
  }
  sweep.Add(ZEL_ComplexConjugate(spectrum, sweep.result));
  sweep.Add(ZEL_ComplexFlipFrequency(spectrum, sweep.result));
  for (const int32_t plane : {COMPLEX_PLANE_REAL, COMPLEX_PLANE_IMAGINARY, COMPLEX_PLANE_MAGNITUDE,
                              COMPLEX_PLANE_PHASE}) {
    const TestImage values(IMAGE_SGL, 2, 2, 1, 6);
    sweep.AddImage(ZEL_ExtractComplexPlane(spectrum, values, static_cast<ComplexPlane>(plane)),
                   values);
    sweep.Add(ZEL_ReplaceComplexPlane(values, spectrum, static_cast<ComplexPlane>(plane)));
  }
}

}  // namespace

void SweepUtilities(Sweep& sweep) {
  const ImageRef first = sweep.first;
  const ImageRef result = sweep.result;
  Arrays(sweep, sweep.first);
  Arrays(sweep, sweep.second);
  for (int32_t method = RESAMPLE_NEAREST; method <= RESAMPLE_SPLINE; method++) {
    sweep.Add(ZEL_Resample(first, result, 0, 0, -1, -1, 53, 21, method));
    sweep.Add(ZEL_Resample(first, result, 1, 1, 20, 30, 9, 40, method));
  }
  sweep.Add(ZEL_Expand(first, result, 0, 1, 6, 7, 2, 3));
  sweep.Add(ZEL_Extract(first, result, 1, 0, 20, 40, 3, 2));
  ZEL_Copy(sweep.second, result);
  sweep.Add(ZEL_ImageToImage(first, result, 2, -1));
  sweep.Add(ZEL_FillImage(result, sweep.mask, 99.6f, 0x102030, 3, 4));
  Drawings(sweep);
}

void SweepGeometry(Sweep& sweep) {
  const ImageRef first = sweep.first;
  const ImageRef result = sweep.result;
  for (const float angle : {17.0f, 90.0f, -133.25f}) {
    for (const int32_t interpolates : {0, 1}) {
      sweep.Add(ZEL_Rotate(first, result, angle, 9, interpolates));
    }
  }
  sweep.Add(ZEL_Shift(first, result, 3, -2, 70.5f));
  for (uint8_t symmetry = SYMMETRY_TOP_BOTTOM; symmetry <= SYMMETRY_OTHER_DIAGONAL; symmetry++) {
    sweep.Add(ZEL_Symmetry(first, result, symmetry));
  }
  sweep.Add(ZEL_Transpose(first, result));
  const TestImage relief(IMAGE_U8, 1, 1, 1, 1);
  for (int32_t plane = VIEW_PLANE_REAL; plane <= VIEW_PLANE_PHASE; plane++) {
    const View3DOptions options{20.5f, 33.0f, 5, 85, plane};
    sweep.AddImage(ZEL_3DView(first, relief, 2, 40, plane, &options), relief);
    if (sweep.type != IMAGE_COMPLEX) break;
  }
}

void SweepColour(Sweep& sweep) {
  if (sweep.type != IMAGE_RGB) return;
  for (const int32_t mode : {MODE_RGB, MODE_HSL, MODE_HSV}) ColourMode(sweep, mode);
  for (const int32_t allPlanes : {0, 1}) {
    sweep.Add(ZEL_ColorEqualize(sweep.first, sweep.result, allPlanes));
  }
}

void SweepFrequency(Sweep& sweep) {
  const TestImage spectrum(IMAGE_COMPLEX, 1, 1, 0, 1);
  sweep.AddImage(ZEL_FFT(sweep.first, spectrum), spectrum);
  sweep.Add(ZEL_InverseFFT(spectrum, sweep.result));
  if (sweep.type == IMAGE_COMPLEX) Spectrum(sweep, spectrum);
}

void SweepFiles(Sweep& sweep) {
  for (const int32_t format : {FILE_FORMAT_NATIVE, FILE_FORMAT_TIFF, FILE_FORMAT_BMP}) {
    const int32_t written = ZEL_WriteFile(sweep.first, "sweep", format, nullptr, 0);
    sweep.Add(written);
    if (written != 0) continue;
    sweep.Add(ZEL_ReadFile(sweep.result, "sweep", 0, nullptr, nullptr));
  }
}

}  // namespace test
