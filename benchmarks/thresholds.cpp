// Thresholds: one range, several classes, and thresholds found from the histogram.
#include "benchmarks/pairs.h"

#if defined(HAVE_OPENCV)
#include <opencv2/imgproc.hpp>
#endif

namespace {

using bench::Pair;

const char* TypeName(int32_t type) {
  return type == IMAGE_U8 ? "u8" : type == IMAGE_I16 ? "i16" : "f32";
}

struct Limits {
  float low, high;
};

Limits LimitsFor(int32_t type) {
  if (type == IMAGE_I16) return {-9000.0f, 12000.0f};
  return {60.0f, 180.0f};
}

void RegisterRange(int32_t type, int32_t width, int32_t height) {
  const ImageRef source = bench::MakeImage(type, width, height);
  const ImageRef result = bench::MakeDestination(type);
  const Limits limits = LimitsFor(type);
  std::function<void()> theirRange;
  std::function<void()> theirKeep;
#if defined(HAVE_OPENCV)
  const cv::Mat from = bench::MatOf(source);
  theirRange = [from, limits, to = cv::Mat()]() mutable {
    cv::inRange(from, cv::Scalar(static_cast<double>(limits.low)),
                cv::Scalar(static_cast<double>(limits.high)), to);
  };
  theirKeep = [from, limits, to = cv::Mat()]() mutable {
    cv::threshold(from, to, static_cast<double>(limits.low), 255, cv::THRESH_TOZERO);
  };
#endif
  // The peer's range test writes bytes of 0 and 255 for every pixel type.
  Pair(
      "threshold_range", TypeName(type), width, height, "opencv",
      [=] { ZEL_Threshold(source, result, limits.low, limits.high, 255.0f, 1); }, theirRange);
  Pair(
      "threshold_keep", TypeName(type), width, height, "opencv",
      [=] { ZEL_Threshold(source, result, limits.low, 1e9f, 0.0f, 0); }, theirKeep);
  static const ThresholdClass classes[] = {{10.0f, 60.0f, 1.0f, 1},
                                           {61.0f, 120.0f, 2.0f, 1},
                                           {121.0f, 200.0f, 3.0f, 1},
                                           {201.0f, 254.0f, 4.0f, 0}};
  Pair(
      "threshold_four_classes", TypeName(type), width, height, "",
      [=] { ZEL_MultiThreshold(source, result, 4, classes); }, nullptr);
}

void RegisterAutomatic(int32_t width, int32_t height) {
  const ImageRef source = bench::MakeImage(IMAGE_U8, width, height);
  std::function<void()> theirs;
#if defined(HAVE_OPENCV)
  const cv::Mat from = bench::MatOf(source);
  // Finds its threshold by the variance between classes, and applies it.
  theirs = [from, to = cv::Mat()]() mutable {
    cv::threshold(from, to, 0, 255, cv::THRESH_BINARY | cv::THRESH_OTSU);
  };
#endif
  const char* names[] = {"clustering", "entropy", "metric", "moments", "interclass"};
  for (int32_t method = 0; method < 5; method++) {
    Pair(
        std::string("threshold_auto_") + names[method], "u8", width, height, "opencv",
        [=] {
          int32_t threshold = 0;
          ZEL_AutoBThreshold(source, method, ARRAY_U16, nullptr, &threshold);
        },
        theirs);
  }
  Pair(
      "threshold_auto_five_classes", "u8", width, height, "",
      [=] {
        ThresholdClass classes[5];
        ZEL_AutoMThreshold(source, 5, ARRAY_U16, nullptr, classes);
      },
      nullptr);
}

void RegisterAll() {
  for (const auto& [width, height] : bench::SIZES) {
    for (const int32_t type : {IMAGE_U8, IMAGE_I16, IMAGE_SGL}) RegisterRange(type, width, height);
    RegisterAutomatic(width, height);
  }
}

const bench::Family family(&RegisterAll);

}  // namespace
