// Conversions between pixel types.
#include <opencv2/imgproc.hpp>
#include <vector>

#include "benchmarks/pairs.h"

namespace {

using bench::Images;
using bench::Mats;

constexpr char NOTES[] = R"(
Colours become gray by weights in OpenCV; the mean of three is its `transform`, beside which
`rgb_to_u8_mean` and the other casts of colour stand. Magnitudes of complex pixels are split off and
taken in single precision there.
)";

int32_t Convert(Images& i) {
  return ZEL_Convert(i.a, i.to);
}

template <int depth>
void ToDepth(Mats& m) {
  m.a.convertTo(m.to, depth);
}

template <int depth>
void MeanOfColours(Mats& m) {
  cv::Mat& mean = depth == CV_8U ? m.to : m.scratch[0];
  cv::transform(m.a, mean, cv::Matx14f(1 / 3.0f, 1 / 3.0f, 1 / 3.0f, 0));
  if (depth != CV_8U) mean.convertTo(m.to, depth);
}

void ToColour(Mats& m) {
  m.a.convertTo(m.scratch[0], CV_8U);
  cv::cvtColor(m.scratch[0], m.to, cv::COLOR_GRAY2BGRA);
}

int32_t MakeZeros(Images&, Mats& m) {
  m.scratch[1] = cv::Mat::zeros(m.a.size(), CV_32F);
  return 0;
}

void ToComplex(Mats& m) {
  if (m.a.depth() == CV_32F) {
    m.scratch[0] = m.a;
  } else {
    m.a.convertTo(m.scratch[0], CV_32F);
  }
  cv::merge(m.scratch.data(), 2, m.to);
}

template <int depth>
void Magnitude(Mats& m) {
  cv::Mat& magnitude = depth == CV_32F ? m.to : m.scratch[2];
  cv::split(m.a, m.scratch.data());
  cv::magnitude(m.scratch[0], m.scratch[1], magnitude);
  if (depth != CV_32F) magnitude.convertTo(m.to, depth);
}

bench::Pair Cast(const char* name, int32_t from, int32_t to, void (*theirs)(Mats&)) {
  return {.operation = name, .kinds = {{from}}, .result = to, .ours = Convert, .theirs = theirs};
}

bench::Pair CastToComplex(const char* name, int32_t from) {
  bench::Pair pair = Cast(name, from, IMAGE_COMPLEX, ToComplex);
  pair.prepare = MakeZeros;
  return pair;
}

std::vector<float> Squares() {
  std::vector<float> table(256);
  for (size_t i = 0; i < table.size(); i++) table[i] = static_cast<float>(i * i);
  return table;
}

int32_t LookUp(Images& i) {
  static const std::vector<float> table = Squares();
  return ZEL_ConvertByLookup(i.a, i.to, ARRAY_SGL, table.data(), 256);
}

void PeerLookUp(Mats& m) {
  static const cv::Mat table(Squares(), true);
  cv::LUT(m.a, table, m.to);
}

const std::vector<bench::Pair> PAIRS = {
    Cast("u8_to_i16", IMAGE_U8, IMAGE_I16, ToDepth<CV_16S>),
    Cast("u8_to_sgl", IMAGE_U8, IMAGE_SGL, ToDepth<CV_32F>),
    Cast("i16_to_u8", IMAGE_I16, IMAGE_U8, ToDepth<CV_8U>),
    Cast("i16_to_sgl", IMAGE_I16, IMAGE_SGL, ToDepth<CV_32F>),
    Cast("sgl_to_u8", IMAGE_SGL, IMAGE_U8, ToDepth<CV_8U>),
    Cast("sgl_to_i16", IMAGE_SGL, IMAGE_I16, ToDepth<CV_16S>),
    Cast("u8_to_rgb", IMAGE_U8, IMAGE_RGB,
         [](Mats& m) { cv::cvtColor(m.a, m.to, cv::COLOR_GRAY2BGRA); }),
    Cast("rgb_to_u8", IMAGE_RGB, IMAGE_U8,
         [](Mats& m) { cv::cvtColor(m.a, m.to, cv::COLOR_BGRA2GRAY); }),
    Cast("rgb_to_u8_mean", IMAGE_RGB, IMAGE_U8, MeanOfColours<CV_8U>),
    Cast("rgb_to_i16", IMAGE_RGB, IMAGE_I16, MeanOfColours<CV_16S>),
    Cast("rgb_to_sgl", IMAGE_RGB, IMAGE_SGL, MeanOfColours<CV_32F>),
    Cast("i16_to_rgb", IMAGE_I16, IMAGE_RGB, ToColour),
    Cast("sgl_to_rgb", IMAGE_SGL, IMAGE_RGB, ToColour),
    CastToComplex("u8_to_complex", IMAGE_U8),
    CastToComplex("sgl_to_complex", IMAGE_SGL),
    Cast("complex_to_u8", IMAGE_COMPLEX, IMAGE_U8, Magnitude<CV_8U>),
    Cast("complex_to_sgl", IMAGE_COMPLEX, IMAGE_SGL, Magnitude<CV_32F>),
    {.operation = "shift_16_to_8",
     .kinds = {{IMAGE_I16}},
     .result = IMAGE_U8,
     .ours = [](Images& i) { return ZEL_Shift16To8(i.a, i.to, 4); },
     .theirs = [](Mats& m) { m.a.convertTo(m.to, CV_8U, 1.0 / 16); }},
    {.operation = "u8_to_sgl_by_lookup", .result = IMAGE_SGL, .ours = LookUp, .theirs = PeerLookUp},
};

const bench::Registration CASTS({"casts", "Casts", NOTES, PAIRS});

}  // namespace
