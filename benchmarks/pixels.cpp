// Pixels, lines and whole arrays.
#include <vector>

#include "benchmarks/pairs.h"

namespace {

using Call = std::function<void()>;

#if defined(HAVE_OPENCV)
Call PeerCopy(ImageRef image) {
  return [pixels = bench::MatOf(image), copy = cv::Mat()]() mutable { pixels.copyTo(copy); };
}

Call PeerConvert(ImageRef image, int type) {
  return [pixels = bench::MatOf(image), copy = cv::Mat(), type]() mutable {
    pixels.convertTo(copy, type);
  };
}

Call PeerFill(ImageRef image, ImageRef mask) {
  return [pixels = bench::MatOf(image),
          selected = mask != 0 ? bench::MatOf(mask) : cv::Mat()]() mutable {
    pixels.setTo(cv::Scalar(42), selected);
  };
}

Call PeerColumn(ImageRef image) {
  return [pixels = bench::MatOf(image), column = cv::Mat()]() mutable {
    pixels.col(7).copyTo(column);
  };
}
const int TO_FLOATS = CV_32F;
#else
Call PeerCopy(ImageRef) {
  return {};
}
Call PeerConvert(ImageRef, int) {
  return {};
}
Call PeerFill(ImageRef, ImageRef) {
  return {};
}
Call PeerColumn(ImageRef) {
  return {};
}
const int TO_FLOATS = 0;
#endif

const bench::Family pixels([] {
  for (const auto& [width, height] : bench::SIZES) {
    const auto pair = [&, w = width, h = height](const char* operation, const char* type, Call ours,
                                                 Call theirs) {
      bench::Pair(operation, type, w, h, "opencv", std::move(ours), std::move(theirs));
    };
    const ImageRef bytes = bench::MakeImage(IMAGE_U8, width, height);
    const ImageRef floats = bench::MakeImage(IMAGE_SGL, width, height);
    const ImageRef noise = bench::MakeNoise(width, height, 0);
    const ImageRef filled = bench::MakeImage(IMAGE_U8, width, height, 0, 2);
    const ImageRef filledFloats = bench::MakeImage(IMAGE_SGL, width, height, 0, 2);
    static std::vector<float> array(1920 * 1080);
    static std::vector<uint8_t> given(1920 * 1080);
    const int32_t w = width;
    const int32_t h = height;
    pair(
        "image_to_array", "u8",
        [=] { ZEL_ImageToArray(bytes, 0, 0, h, w, ARRAY_U8, array.data(), nullptr, nullptr); },
        PeerCopy(bytes));
    pair(
        "image_to_array", "u8-f32",
        [=] { ZEL_ImageToArray(bytes, 0, 0, h, w, ARRAY_SGL, array.data(), nullptr, nullptr); },
        PeerConvert(bytes, TO_FLOATS));
    pair(
        "array_to_image", "u8", [=] { ZEL_ArrayToImage(filled, ARRAY_U8, given.data(), w, h); },
        PeerCopy(bytes));
    pair(
        "array_to_image", "u8-f32",
        [=] { ZEL_ArrayToImage(filledFloats, ARRAY_U8, given.data(), w, h); },
        PeerConvert(bytes, TO_FLOATS));
    pair(
        "fill", "u8", [=] { ZEL_FillImage(filled, 0, 42, 0, 0, 0); }, PeerFill(filled, 0));
    pair(
        "fill_masked", "u8", [=] { ZEL_FillImage(filled, noise, 42, 0, 0, 0); },
        PeerFill(filled, noise));
    pair(
        "fill_masked", "f32", [=] { ZEL_FillImage(filledFloats, noise, 42, 0, 0, 0); },
        PeerFill(filledFloats, noise));
    pair(
        "get_column", "u8", [=] { ZEL_GetRowCol(bytes, 1, 7, ARRAY_U8, array.data(), nullptr); },
        PeerColumn(bytes));
    pair(
        "get_column", "f32", [=] { ZEL_GetRowCol(floats, 1, 7, ARRAY_SGL, array.data(), nullptr); },
        PeerColumn(floats));
  }
});

}  // namespace
