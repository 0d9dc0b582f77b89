// Spectra: the Fourier transform, complex arithmetic, planes and filters.
#include <opencv2/core.hpp>
#include <vector>

#include "benchmarks/pairs.h"

namespace {

using bench::Images;
using bench::Kind;
using bench::Mats;

constexpr char NOTES[] = R"(
The peer of the transform is `dft` of 32-bit floats, with full complex output, and back with scaling. It
rounds each stage to 32 bits throughout, where ours rounds only the results of butterflies. The peers of
products are `mulSpectrums`; those of sums and differences `add` and `subtract`; those of real and
imaginary planes `extractChannel`, of magnitudes and phases `magnitude` and `phase` on planes that are
apart already. There is none for the filters and for quotients.
)";

const std::vector<Kind> COMPLEX = {{IMAGE_COMPLEX}};
const std::vector<Kind> FOURIER_KINDS = {{IMAGE_U8}, {IMAGE_COMPLEX}};
const std::vector<bench::Size> FOURIER_SIZES = {{64, 64}, {512, 512}, {1024, 1024}, {2048, 2048}};

void Forward(Mats& m) {
  if (m.a.channels() == 1) {
    m.a.convertTo(m.other, CV_32F);
    cv::dft(m.other, m.to, cv::DFT_COMPLEX_OUTPUT);
  } else {
    cv::dft(m.a, m.to);
  }
}

int32_t Unary(Images& i, int32_t (*call)(ImageRef, ImageRef)) {
  return call(i.a, i.to);
}

void ExtractPlanes(Mats& m) {
  for (int c = 0; c < 2; c++) cv::extractChannel(m.a, m.scratch[static_cast<size_t>(c)], c);
}

int32_t PreparePlanes(Images&, Mats& m) {
  ExtractPlanes(m);
  return 0;
}

const std::vector<bench::Pair> PAIRS = {
    {.operation = "fft",
     .kinds = FOURIER_KINDS,
     .sizes = FOURIER_SIZES,
     .result = IMAGE_COMPLEX,
     .ours = [](Images& i) { return ZEL_FFT(i.a, i.to); },
     .theirs = Forward},
    {.operation = "inverse_fft",
     .kinds = COMPLEX,
     .sizes = FOURIER_SIZES,
     .ours = [](Images& i) { return ZEL_InverseFFT(i.a, i.to); },
     .theirs = [](Mats& m) { cv::dft(m.a, m.to, cv::DFT_INVERSE | cv::DFT_SCALE); }},
    {.operation = "inverse_fft_to_u8",
     .kinds = COMPLEX,
     .sizes = FOURIER_SIZES,
     .result = IMAGE_U8,
     .ours = [](Images& i) { return ZEL_InverseFFT(i.a, i.to); },
     .theirs =
         [](Mats& m) {
           cv::dft(m.a, m.other, cv::DFT_INVERSE | cv::DFT_SCALE);
           for (int c = 0; c < 2; c++) {
             cv::extractChannel(m.other, m.scratch[static_cast<size_t>(c)], c);
           }
           cv::magnitude(m.scratch[0], m.scratch[1], m.scratch[2]);
           m.scratch[2].convertTo(m.to, CV_8U);
         }},
    {.operation = "add",
     .kinds = COMPLEX,
     .ours = [](Images& i) { return ZEL_ComplexAdd(i.a, i.b, i.to, 0, 0); },
     .theirs = [](Mats& m) { cv::add(m.a, m.b, m.to); }},
    {.operation = "subtract",
     .kinds = COMPLEX,
     .ours = [](Images& i) { return ZEL_ComplexSubtract(i.a, i.b, i.to, 0, 0); },
     .theirs = [](Mats& m) { cv::subtract(m.a, m.b, m.to); }},
    {.operation = "multiply",
     .kinds = COMPLEX,
     .ours = [](Images& i) { return ZEL_ComplexMultiply(i.a, i.b, i.to, 0, 0); },
     .theirs = [](Mats& m) { cv::mulSpectrums(m.a, m.b, m.to, 0); }},
    {.operation = "divide",
     .kinds = COMPLEX,
     .ours = [](Images& i) { return ZEL_ComplexDivide(i.a, i.b, i.to, 0, 0); }},
    {.operation = "add_constant",
     .kinds = COMPLEX,
     .ours = [](Images& i) { return ZEL_ComplexAdd(i.a, 0, i.to, 3, 4); },
     .theirs = [](Mats& m) { cv::add(m.a, cv::Scalar(3, 4), m.to); }},
    {.operation = "multiply_constant",
     .kinds = COMPLEX,
     .ours = [](Images& i) { return ZEL_ComplexMultiply(i.a, 0, i.to, 3, 4); }},
    {.operation = "divide_constant",
     .kinds = COMPLEX,
     .ours = [](Images& i) { return ZEL_ComplexDivide(i.a, 0, i.to, 3, 4); }},
    {.operation = "conjugate",
     .kinds = COMPLEX,
     .ours = [](Images& i) { return Unary(i, ZEL_ComplexConjugate); },
     .theirs = [](Mats& m) { cv::multiply(m.a, cv::Scalar(1, -1), m.to); }},
    {.operation = "flip_frequency",
     .kinds = COMPLEX,
     .ours = [](Images& i) { return Unary(i, ZEL_ComplexFlipFrequency); },
     .theirs =
         [](Mats& m) {
           m.to.create(m.a.size(), m.a.type());
           const int w = m.a.cols / 2;
           const int h = m.a.rows / 2;
           m.a(cv::Rect(w, h, w, h)).copyTo(m.to(cv::Rect(0, 0, w, h)));
           m.a(cv::Rect(0, 0, w, h)).copyTo(m.to(cv::Rect(w, h, w, h)));
           m.a(cv::Rect(0, h, w, h)).copyTo(m.to(cv::Rect(w, 0, w, h)));
           m.a(cv::Rect(w, 0, w, h)).copyTo(m.to(cv::Rect(0, h, w, h)));
         }},
    {.operation = "attenuate",
     .kinds = COMPLEX,
     .ours = [](Images& i) { return ZEL_ComplexAttenuate(i.a, i.to, FREQUENCY_KEEP_LOW); }},
    {.operation = "truncate",
     .kinds = COMPLEX,
     .ours = [](Images& i) { return ZEL_ComplexTruncate(i.a, i.to, FREQUENCY_KEEP_HIGH, 50); }},
    {.operation = "extract_real",
     .kinds = COMPLEX,
     .result = IMAGE_SGL,
     .ours = [](Images& i) { return ZEL_ExtractComplexPlane(i.a, i.to, COMPLEX_PLANE_REAL); },
     .theirs = [](Mats& m) { cv::extractChannel(m.a, m.to, 0); }},
    {.operation = "extract_magnitude",
     .kinds = COMPLEX,
     .result = IMAGE_SGL,
     .prepare = PreparePlanes,
     .ours = [](Images& i) { return ZEL_ExtractComplexPlane(i.a, i.to, COMPLEX_PLANE_MAGNITUDE); },
     .theirs = [](Mats& m) { cv::magnitude(m.scratch[0], m.scratch[1], m.to); }},
    {.operation = "extract_phase",
     .kinds = COMPLEX,
     .result = IMAGE_SGL,
     .prepare = PreparePlanes,
     .ours = [](Images& i) { return ZEL_ExtractComplexPlane(i.a, i.to, COMPLEX_PLANE_PHASE); },
     .theirs = [](Mats& m) { cv::phase(m.scratch[0], m.scratch[1], m.to, true); }},
    {.operation = "replace_plane",
     .kinds = {{IMAGE_SGL}},
     .result = IMAGE_COMPLEX,
     .ours = [](Images& i) { return ZEL_ReplaceComplexPlane(i.a, i.to, COMPLEX_PLANE_IMAGINARY); },
     .theirs =
         [](Mats& m) {
           m.to.create(m.a.size(), CV_32FC2);
           cv::insertChannel(m.a, m.to, 1);
         }},
    {.operation = "image_to_array",
     .kinds = COMPLEX,
     .ours =
         [](Images& i) {
           i.array.resize(static_cast<size_t>(8 * bench::Area(i.size)));
           return ZEL_ComplexImageToArray(i.a, 0, 0, i.size.height, i.size.width,
                                          reinterpret_cast<ComplexValue*>(i.array.data()), nullptr,
                                          nullptr);
         },
     .theirs = [](Mats& m) { m.a.copyTo(m.to); }},
    {.operation = "array_to_image",
     .kinds = COMPLEX,
     .ours =
         [](Images& i) {
           i.array.resize(static_cast<size_t>(8 * bench::Area(i.size)));
           return ZEL_ArrayToComplexImage(i.to,
                                          reinterpret_cast<const ComplexValue*>(i.array.data()),
                                          i.size.width, i.size.height);
         },
     .theirs = [](Mats& m) { m.a.copyTo(m.to); }},
    {.operation = "plane_to_array",
     .kinds = COMPLEX,
     .ours =
         [](Images& i) {
           i.array.resize(static_cast<size_t>(4 * bench::Area(i.size)));
           return ZEL_ComplexPlaneToArray(i.a, COMPLEX_PLANE_REAL, 0, 0, i.size.height,
                                          i.size.width, reinterpret_cast<float*>(i.array.data()),
                                          nullptr, nullptr);
         },
     .theirs = [](Mats& m) { cv::extractChannel(m.a, m.to, 0); }},
    {.operation = "array_to_plane",
     .kinds = COMPLEX,
     .ours =
         [](Images& i) {
           i.array.resize(static_cast<size_t>(4 * bench::Area(i.size)));
           return ZEL_ArrayToComplexPlane(i.to, COMPLEX_PLANE_IMAGINARY,
                                          reinterpret_cast<const float*>(i.array.data()),
                                          i.size.width, i.size.height);
         }},
};

const bench::Registration FREQUENCY({"frequency", "Frequency domain", NOTES, PAIRS});

}  // namespace
