// Conversions between pixel types beside OpenCV.
#include <array>
#include <cstring>
#include <memory>
#include <string>

#include "benchmarks/pairs.h"

#if defined(HAVE_OPENCV)
#include <opencv2/imgproc.hpp>
#endif

namespace {

#if defined(HAVE_OPENCV)

struct Types {
  const char* name;
  int32_t from, to;
};

constexpr Types SCALARS[] = {
    {"u8_to_i16", IMAGE_U8, IMAGE_I16}, {"u8_to_sgl", IMAGE_U8, IMAGE_SGL},
    {"i16_to_u8", IMAGE_I16, IMAGE_U8}, {"i16_to_sgl", IMAGE_I16, IMAGE_SGL},
    {"sgl_to_u8", IMAGE_SGL, IMAGE_U8}, {"sgl_to_i16", IMAGE_SGL, IMAGE_I16},
};

void Register(int32_t width, int32_t height) {
  constexpr int depths[] = {CV_8U, CV_16S, CV_32F};
  const auto pair = [=](const char* name, const char* peer, int32_t from, int32_t to, auto theirs) {
    const ImageRef source = bench::MakeImage(from, width, height);
    const ImageRef destination = bench::MakeDestination(to);
    const cv::Mat mat = bench::MatOf(source);
    const auto result = std::make_shared<cv::Mat>();
    bench::Pair(
        "convert", name, width, height, peer, [=] { ZEL_Convert(source, destination); },
        [=] { theirs(mat, result.get()); });
  };
  for (const Types& types : SCALARS) {
    const int depth = depths[types.to];
    pair(types.name, "opencv", types.from, types.to,
         [=](const cv::Mat& mat, cv::Mat* to) { mat.convertTo(*to, depth); });
  }
  pair("u8_to_rgb", "opencv", IMAGE_U8, IMAGE_RGB,
       [](const cv::Mat& mat, cv::Mat* to) { cv::cvtColor(mat, *to, cv::COLOR_GRAY2BGRA); });
  pair("rgb_to_u8", "opencv", IMAGE_RGB, IMAGE_U8,
       [](const cv::Mat& mat, cv::Mat* to) { cv::cvtColor(mat, *to, cv::COLOR_BGRA2GRAY); });
  const auto third = [](const cv::Mat& mat, cv::Mat* to) {
    cv::transform(mat, *to, cv::Matx14f(1 / 3.0f, 1 / 3.0f, 1 / 3.0f, 0));
  };
  pair("rgb_to_u8_mean", "opencv", IMAGE_RGB, IMAGE_U8, third);
  pair("rgb_to_sgl", "opencv", IMAGE_RGB, IMAGE_SGL, [=](const cv::Mat& mat, cv::Mat* to) {
    cv::Mat grey;
    third(mat, &grey);
    grey.convertTo(*to, CV_32F);
  });
  pair("rgb_to_i16", "opencv", IMAGE_RGB, IMAGE_I16, [=](const cv::Mat& mat, cv::Mat* to) {
    cv::Mat grey;
    third(mat, &grey);
    grey.convertTo(*to, CV_16S);
  });
  for (const int32_t type : {IMAGE_I16, IMAGE_SGL}) {
    pair(type == IMAGE_I16 ? "i16_to_rgb" : "sgl_to_rgb", "opencv", type, IMAGE_RGB,
         [](const cv::Mat& mat, cv::Mat* to) {
           cv::Mat grey;
           mat.convertTo(grey, CV_8U);
           cv::cvtColor(grey, *to, cv::COLOR_GRAY2BGRA);
         });
  }
  const auto merged = [](const cv::Mat& mat, cv::Mat* to) {
    const std::array<cv::Mat, 2> planes = {mat, cv::Mat::zeros(mat.size(), CV_32F)};
    cv::merge(planes.data(), 2, *to);
  };
  pair("sgl_to_complex", "opencv", IMAGE_SGL, IMAGE_COMPLEX, merged);
  pair("u8_to_complex", "opencv", IMAGE_U8, IMAGE_COMPLEX, [=](const cv::Mat& mat, cv::Mat* to) {
    cv::Mat floats;
    mat.convertTo(floats, CV_32F);
    merged(floats, to);
  });
  const auto magnitude = [](const cv::Mat& mat, cv::Mat* to) {
    std::array<cv::Mat, 2> planes;
    cv::split(mat, planes.data());
    cv::magnitude(planes[0], planes[1], *to);
  };
  pair("complex_to_sgl", "opencv", IMAGE_COMPLEX, IMAGE_SGL, magnitude);
  pair("complex_to_u8", "opencv", IMAGE_COMPLEX, IMAGE_U8, [=](const cv::Mat& mat, cv::Mat* to) {
    cv::Mat floats;
    magnitude(mat, &floats);
    floats.convertTo(*to, CV_8U);
  });

  const ImageRef words = bench::MakeImage(IMAGE_I16, width, height);
  const ImageRef bytes = bench::MakeDestination(IMAGE_U8);
  const cv::Mat matWords = bench::MatOf(words);
  const auto matBytes = std::make_shared<cv::Mat>();
  bench::Pair(
      "shift_16_to_8", "i16", width, height, "opencv", [=] { ZEL_Shift16To8(words, bytes, 4); },
      [=] { matWords.convertTo(*matBytes, CV_8U, 1.0 / 16); });

  const auto table = std::make_shared<std::vector<float>>(256);
  for (size_t i = 0; i < 256; i++) (*table)[i] = static_cast<float>(i * i);
  const ImageRef levels = bench::MakeImage(IMAGE_U8, width, height);
  const ImageRef floats = bench::MakeDestination(IMAGE_SGL);
  const cv::Mat matLevels = bench::MatOf(levels);
  const cv::Mat matTable(1, 256, CV_32F, table->data());
  const auto matFloats = std::make_shared<cv::Mat>();
  bench::Pair(
      "convert_by_lookup", "u8_to_sgl", width, height, "opencv",
      [=] { ZEL_ConvertByLookup(levels, floats, ARRAY_SGL, table->data(), 256); },
      [=] { cv::LUT(matLevels, matTable, *matFloats); });
}

const bench::Family CASTS([] {
  for (const auto& [width, height] : bench::SIZES) Register(width, height);
});

#endif

}  // namespace
