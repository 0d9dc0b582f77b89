// Spectra: the Fourier transform, complex images combined, filtered, taken apart.
#include <array>

#include "harness/session/session.h"

namespace test {
namespace {

constexpr int32_t SIDES[] = {32, 16};  // that can be transformed
constexpr size_t PIXELS = size_t{SIDES[0]} * SIDES[1];

int32_t ArrayToImage(Session& s) {
  std::array<ComplexValue, PIXELS> values{};
  for (size_t i = 0; i < PIXELS; i++) {
    values[i] = {static_cast<float>(i * 40503u % 2048), static_cast<float>(i * 7919u % 512)};
  }
  return ZEL_ArrayToComplexImage(s.complex, values.data(), SIDES[0], SIDES[1]);
}

int32_t ArrayToPlane(Session& s) {
  std::array<float, 200> numbers{};
  for (size_t i = 0; i < numbers.size(); i++) numbers[i] = static_cast<float>(i) / 4.0f;
  return ZEL_ArrayToComplexPlane(s.complex, COMPLEX_PLANE_IMAGINARY, numbers.data(), 20, 10);
}

int32_t ImageToArray(Session& s) {
  std::array<ComplexValue, PIXELS> values{};
  int32_t columns = 0;
  int32_t rows = 0;
  const int32_t result =
      ZEL_ComplexImageToArray(s.complex, 2, 3, 5, 10, values.data(), &columns, &rows);
  s.Out(values);
  s.Out(columns);
  s.Out(rows);
  return result;
}

int32_t PlaneToArray(Session& s) {
  std::array<float, PIXELS> numbers{};
  int32_t columns = 0;
  int32_t rows = 0;
  const int32_t result = ZEL_ComplexPlaneToArray(s.complex, COMPLEX_PLANE_MAGNITUDE, 2, 3, 5, 10,
                                                 numbers.data(), &columns, &rows);
  s.Out(numbers);
  s.Out(columns);
  s.Out(rows);
  return result;
}

constexpr Step ROWS[] = {
    {"ZEL_Cast", [](Session& s) { return ZEL_Cast(s.complex, IMAGE_COMPLEX); }},
    {"ZEL_ArrayToComplexImage", &ArrayToImage},
    {"ZEL_InverseFFT", [](Session& s) { return ZEL_InverseFFT(s.complex, s.targetFloat); }},
    {"ZEL_FFT", [](Session& s) { return ZEL_FFT(s.targetFloat, s.complex); }},
    {"ZEL_ComplexFlipFrequency", [](Session& s) { return ZEL_ComplexFlipFrequency(s.complex, 0); }},
    {"ZEL_ComplexTruncate",
     [](Session& s) { return ZEL_ComplexTruncate(s.complex, 0, FREQUENCY_KEEP_HIGH, 40); }},
    {"ZEL_ComplexAttenuate",
     [](Session& s) { return ZEL_ComplexAttenuate(s.complex, 0, FREQUENCY_KEEP_LOW); }},
    {"ZEL_ComplexAdd",
     [](Session& s) { return ZEL_ComplexAdd(s.complex, s.targetFloat, 0, 0, 0); }},
    {"ZEL_ComplexSubtract",
     [](Session& s) { return ZEL_ComplexSubtract(s.complex, 0, 0, 1.5f, -2.0f); }},
    {"ZEL_ComplexMultiply",
     [](Session& s) { return ZEL_ComplexMultiply(s.complex, s.complex, 0, 0, 0); }},
    {"ZEL_ComplexDivide", [](Session& s) { return ZEL_ComplexDivide(s.complex, 0, 0, 3, 4); }},
    {"ZEL_ComplexConjugate", [](Session& s) { return ZEL_ComplexConjugate(s.complex, 0); }},
    {"ZEL_ExtractComplexPlane",
     [](Session& s) {
       return ZEL_ExtractComplexPlane(s.complex, s.target16, COMPLEX_PLANE_MAGNITUDE);
     }},
    {"ZEL_ReplaceComplexPlane",
     [](Session& s) {
       return ZEL_ReplaceComplexPlane(s.target16, s.complex, COMPLEX_PLANE_IMAGINARY);
     }},
    {"ZEL_ComplexImageToArray", &ImageToArray},
    {"ZEL_ArrayToComplexPlane", &ArrayToPlane},
    {"ZEL_ComplexPlaneToArray", &PlaneToArray},
    {"ZEL_GetCpxConstant1Ptr",
     [](Session& s) {
       s.Out(*ZEL_GetCpxConstant1Ptr());
       return 0;
     }},
};

}  // namespace

constinit const std::span<const Step> FREQUENCY_STEPS{ROWS};

}  // namespace test
