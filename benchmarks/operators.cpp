// Operators between images and with constants, beside OpenCV or a plain loop; and memory copies of
// as many bytes as operations touch, as the floor.
#include <cmath>
#include <cstring>
#include <memory>
#include <string>

#include "benchmarks/pairs.h"

#if defined(HAVE_OPENCV)
#include <opencv2/imgproc.hpp>
#endif

namespace {

const char* const TYPE_NAMES[] = {"u8", "i16", "sgl", "complex", "rgb"};

// A copy that reads and writes together as many bytes as an operation does with `bytes` a pixel.
void RegisterFloor(int32_t width, int32_t height, int32_t bytes) {
  const size_t size =
      static_cast<size_t>(width) * static_cast<size_t>(height) * static_cast<size_t>(bytes) / 2;
  const auto from = std::make_shared<std::vector<uint8_t>>(size, uint8_t{7});
  const auto to = std::make_shared<std::vector<uint8_t>>(size, uint8_t{9});
  bench::Pair(
      "floor", std::to_string(bytes) + "_bytes", width, height, "",
      [=] { std::memcpy(to->data(), from->data(), size); }, nullptr);
}

#if defined(HAVE_OPENCV)

// Division as a plain program would write it: one pixel after the other.
#define SCALAR_LOOP __attribute__((noinline, optimize("no-tree-vectorize")))

template <class T>
SCALAR_LOOP void ScalarModulo(const cv::Mat& a, const cv::Mat& b, cv::Mat* to) {
  for (int y = 0; y < a.rows; y++) {
    const T* first = a.ptr<T>(y);
    const T* second = b.ptr<T>(y);
    T* result = to->ptr<T>(y);
    for (int x = 0; x < a.cols; x++) {
      result[x] = second[x] == 0 ? first[x] : static_cast<T>(first[x] % second[x]);
    }
  }
}

template <class T>
SCALAR_LOOP void ScalarModulo(const cv::Mat& a, T divisor, cv::Mat* to) {
  for (int y = 0; y < a.rows; y++) {
    const T* first = a.ptr<T>(y);
    T* result = to->ptr<T>(y);
    for (int x = 0; x < a.cols; x++) result[x] = static_cast<T>(first[x] % divisor);
  }
}

template <class T>
SCALAR_LOOP void ScalarMulDiv(const cv::Mat& a, const cv::Mat& b, double factor, cv::Mat* to) {
  for (int y = 0; y < a.rows; y++) {
    const T* first = a.ptr<T>(y);
    const T* second = b.ptr<T>(y);
    T* result = to->ptr<T>(y);
    for (int x = 0; x < a.cols; x++) {
      result[x] = second[x] == 0 ? first[x] : cv::saturate_cast<T>(first[x] * factor / second[x]);
    }
  }
}

struct Images {
  ImageRef a, b, to;
  cv::Mat matA, matB, matTo, mask;

  Images(int32_t type, int32_t width, int32_t height)
      : a(bench::MakeImage(type, width, height, 0, 1)),
        b(bench::MakeImage(type, width, height, 0, 2)),
        to(bench::MakeDestination(type)),
        matA(bench::MatOf(a)),
        matB(bench::MatOf(b)),
        matTo(height, width, matA.type()),
        mask(height, width, CV_8U) {}
};

void RegisterImages(int32_t type, int32_t width, int32_t height) {
  const auto images = std::make_shared<Images>(type, width, height);
  const auto pair = [&](const char* name, auto ours, auto theirs, const char* peer = "opencv") {
    bench::Pair(
        name, TYPE_NAMES[type], width, height, peer, [=] { ours(*images); },
        [=] { theirs(*images); });
  };
  const bool isFloat = type == IMAGE_SGL;
  pair(
      "add", [](Images& i) { ZEL_Add(i.a, i.b, i.to, 0); },
      [](Images& i) { cv::add(i.matA, i.matB, i.matTo); });
  pair(
      "subtract", [](Images& i) { ZEL_Subtract(i.a, i.b, i.to, 0); },
      [](Images& i) { cv::subtract(i.matA, i.matB, i.matTo); });
  pair(
      "minimum", [](Images& i) { ZEL_Compare(i.a, i.b, i.to, COMPARISON_MINIMUM, 0); },
      [](Images& i) { cv::min(i.matA, i.matB, i.matTo); });
  pair(
      "maximum", [](Images& i) { ZEL_Compare(i.a, i.b, i.to, COMPARISON_MAXIMUM, 0); },
      [](Images& i) { cv::max(i.matA, i.matB, i.matTo); });
  pair(
      "mean", [](Images& i) { ZEL_Compare(i.a, i.b, i.to, COMPARISON_MEAN, 0); },
      [](Images& i) { cv::addWeighted(i.matA, 0.5, i.matB, 0.5, 0, i.matTo); });
  pair(
      "keep_above", [](Images& i) { ZEL_Compare(i.a, i.b, i.to, COMPARISON_KEEP_ABOVE, 0); },
      [](Images& i) {
        cv::compare(i.matA, i.matB, i.mask, cv::CMP_GT);
        if (i.matA.type() == CV_8U) {
          cv::bitwise_and(i.matA, i.mask, i.matTo);
        } else {
          i.matTo.setTo(0);
          i.matA.copyTo(i.matTo, i.mask);
        }
      });
  pair(
      "multiply", [](Images& i) { ZEL_Multiply(i.a, i.b, i.to, 0); },
      [](Images& i) { cv::multiply(i.matA, i.matB, i.matTo); });
  pair(
      "divide", [](Images& i) { ZEL_Divide(i.a, i.b, i.to, 0); },
      [](Images& i) { cv::divide(i.matA, i.matB, i.matTo); });
  if (type == IMAGE_U8) {
    pair(
        "modulo", [](Images& i) { ZEL_Modulo(i.a, i.b, i.to, 0); },
        [](Images& i) { ScalarModulo<uint8_t>(i.matA, i.matB, &i.matTo); }, "scalar");
    pair(
        "muldiv", [](Images& i) { ZEL_MulDiv(i.a, i.b, i.to, 3.7f); },
        [](Images& i) { ScalarMulDiv<uint8_t>(i.matA, i.matB, 3.7, &i.matTo); }, "scalar");
  } else if (type == IMAGE_I16) {
    pair(
        "modulo", [](Images& i) { ZEL_Modulo(i.a, i.b, i.to, 0); },
        [](Images& i) { ScalarModulo<int16_t>(i.matA, i.matB, &i.matTo); }, "scalar");
    pair(
        "muldiv", [](Images& i) { ZEL_MulDiv(i.a, i.b, i.to, 3.7f); },
        [](Images& i) { ScalarMulDiv<int16_t>(i.matA, i.matB, 3.7, &i.matTo); }, "scalar");
  }
  if (!isFloat) {
    pair(
        "and", [](Images& i) { ZEL_And(i.a, i.b, i.to, 0, 0); },
        [](Images& i) { cv::bitwise_and(i.matA, i.matB, i.matTo); });
    pair(
        "or", [](Images& i) { ZEL_Or(i.a, i.b, i.to, 0, 0); },
        [](Images& i) { cv::bitwise_or(i.matA, i.matB, i.matTo); });
    pair(
        "xor", [](Images& i) { ZEL_Xor(i.a, i.b, i.to, 0, 0); },
        [](Images& i) { cv::bitwise_xor(i.matA, i.matB, i.matTo); });
  }
  pair(
      "add_in_place", [](Images& i) { ZEL_Add(i.to, i.b, 0, 0); },
      [](Images& i) { cv::add(i.matTo, i.matB, i.matTo); });
}

void RegisterConstants(int32_t type, int32_t width, int32_t height) {
  const auto images = std::make_shared<Images>(type, width, height);
  const auto pair = [&](const char* name, auto ours, auto theirs, const char* peer = "opencv") {
    bench::Pair(
        name, TYPE_NAMES[type], width, height, peer, [=] { ours(*images); },
        [=] { theirs(*images); });
  };
  pair(
      "add_constant", [](Images& i) { ZEL_Add(i.a, 0, i.to, 40); },
      [](Images& i) { cv::add(i.matA, cv::Scalar(40), i.matTo); });
  pair(
      "subtract_constant", [](Images& i) { ZEL_Subtract(i.a, 0, i.to, 40); },
      [](Images& i) { cv::subtract(i.matA, cv::Scalar(40), i.matTo); });
  pair(
      "minimum_constant", [](Images& i) { ZEL_Compare(i.a, 0, i.to, COMPARISON_MINIMUM, 90); },
      [](Images& i) { cv::min(i.matA, 90, i.matTo); });
  pair(
      "maximum_constant", [](Images& i) { ZEL_Compare(i.a, 0, i.to, COMPARISON_MAXIMUM, 90); },
      [](Images& i) { cv::max(i.matA, 90, i.matTo); });
  pair(
      "mean_constant", [](Images& i) { ZEL_Compare(i.a, 0, i.to, COMPARISON_MEAN, 90); },
      [](Images& i) { i.matA.convertTo(i.matTo, -1, 0.5, 45); });
  pair(
      "keep_above_constant",
      [](Images& i) { ZEL_Compare(i.a, 0, i.to, COMPARISON_KEEP_ABOVE, 90); },
      [](Images& i) { cv::threshold(i.matA, i.matTo, 90, 0, cv::THRESH_TOZERO); });
  pair(
      "multiply_constant", [](Images& i) { ZEL_Multiply(i.a, 0, i.to, 3); },
      [](Images& i) { cv::multiply(i.matA, cv::Scalar(3), i.matTo); });
  pair(
      "divide_constant", [](Images& i) { ZEL_Divide(i.a, 0, i.to, 3.7f); },
      [](Images& i) { cv::divide(i.matA, cv::Scalar(3.7), i.matTo); });
  if (type == IMAGE_SGL) return;
  if (type == IMAGE_U8) {
    pair(
        "modulo_constant", [](Images& i) { ZEL_Modulo(i.a, 0, i.to, 37); },
        [](Images& i) { ScalarModulo<uint8_t>(i.matA, uint8_t{37}, &i.matTo); }, "scalar");
  } else {
    pair(
        "modulo_constant", [](Images& i) { ZEL_Modulo(i.a, 0, i.to, 37); },
        [](Images& i) { ScalarModulo<int16_t>(i.matA, int16_t{37}, &i.matTo); }, "scalar");
  }
  pair(
      "and_constant", [](Images& i) { ZEL_And(i.a, 0, i.to, 0, 0x5A); },
      [](Images& i) { cv::bitwise_and(i.matA, cv::Scalar(0x5A), i.matTo); });
  pair(
      "or_constant", [](Images& i) { ZEL_Or(i.a, 0, i.to, 0, 0x5A); },
      [](Images& i) { cv::bitwise_or(i.matA, cv::Scalar(0x5A), i.matTo); });
  pair(
      "xor_constant", [](Images& i) { ZEL_Xor(i.a, 0, i.to, 0, 0x5A); },
      [](Images& i) { cv::bitwise_xor(i.matA, cv::Scalar(0x5A), i.matTo); });
}

void RegisterMask(int32_t type, int32_t width, int32_t height) {
  const auto images = std::make_shared<Images>(type, width, height);
  const ImageRef mask = bench::MakeBlobs(width, height, 0);
  const cv::Mat matMask = bench::MatOf(mask);
  bench::Pair(
      "mask", TYPE_NAMES[type], width, height, "opencv",
      [=] { ZEL_Mask(images->a, mask, images->to); },
      [=] {
        images->matTo.setTo(0);
        images->matA.copyTo(images->matTo, matMask);
      });
}

#endif

const bench::Family OPERATORS([] {
  for (const auto& [width, height] : bench::SIZES) {
    for (const int32_t bytes : {2, 3, 4, 5, 6, 8, 12}) RegisterFloor(width, height, bytes);
#if defined(HAVE_OPENCV)
    for (const int32_t type : {IMAGE_U8, IMAGE_I16, IMAGE_SGL}) {
      RegisterImages(type, width, height);
      RegisterConstants(type, width, height);
    }
    for (const int32_t type : {IMAGE_U8, IMAGE_I16, IMAGE_RGB}) RegisterMask(type, width, height);
#endif
  }
});

}  // namespace
