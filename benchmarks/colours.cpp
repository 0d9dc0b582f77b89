// Colour images: planes, threshold, lookup, histogram.
#include <opencv2/imgproc.hpp>
#include <vector>

#include "benchmarks/pairs.h"

namespace {

using bench::Images;
using bench::Kind;
using bench::Mats;

constexpr char NOTES[] = R"(
Pixels have four bytes on both sides. The peers of the planes are `mixChannels` of three channels for
RGB, and `cvtColor` to and from HLS (or HSV) for the hue modes: it gives its result with three bytes a
pixel where ours gives planes, and hues of 180 steps. The peer of the threshold is `inRange`, in the hue
modes behind `cvtColor`; that of the lookup is `LUT` over all channels. No peer has one call for three
histograms; `calcHist` for each channel stands beside it.
)";

const std::vector<Kind> RGB = {{IMAGE_RGB}};

const uint8_t* Table() {
  static const auto table = [] {
    std::vector<uint8_t> levels(256);
    for (uint32_t i = 0; i < 256; i++) levels[i] = static_cast<uint8_t>(i * 40503u >> 3);
    return levels;
  }();
  return table.data();
}

// Three planes of their own, made once and kept: the peer has its matrices as well.
struct Planes {
  ImageRef planes[3] = {};
  Planes() {
    for (ImageRef& plane : planes) ZEL_Create(&plane, IMAGE_U8, bench::BORDER);
  }
};
Planes& OurPlanes() {
  static Planes planes;
  return planes;
}

int32_t Extract(Images& i, int32_t mode) {
  const auto& [planes] = OurPlanes();
  return ZEL_ExtractColorPlanes(i.a, planes[0], planes[1], planes[2], mode);
}

int32_t Replace(Images& i, int32_t mode) {
  const auto& [planes] = OurPlanes();
  return ZEL_ReplaceColorPlanes(0, i.to, planes[0], planes[1], planes[2], mode);
}

// The planes of the picture, for both.
template <int32_t mode>
int32_t PreparePlanes(Images& i, Mats& m) {
  cv::Mat bgr;
  cv::cvtColor(m.a, bgr, cv::COLOR_BGRA2BGR);
  if (mode == MODE_HSL) cv::cvtColor(bgr, m.other, cv::COLOR_BGR2HLS);
  if (mode == MODE_HSV) cv::cvtColor(bgr, m.other, cv::COLOR_BGR2HSV);
  for (int c = 0; c < 3; c++) cv::extractChannel(m.a, m.scratch[static_cast<size_t>(c)], c);
  return Extract(i, mode);
}

void Split(Mats& m) {
  for (size_t c = 0; c < 3; c++) m.scratch[c].create(m.a.size(), CV_8UC1);
  const int pairs[] = {0, 0, 1, 1, 2, 2};
  cv::mixChannels(&m.a, 1, m.scratch.data(), 3, pairs, 3);
}

void Merge(Mats& m) {
  m.to.create(m.a.size(), CV_8UC4);
  const int pairs[] = {0, 0, 1, 1, 2, 2};
  cv::mixChannels(m.scratch.data(), 3, &m.to, 1, pairs, 3);
}

int32_t Threshold(Images& i, int32_t mode) {
  return ZEL_ColorThreshold(i.a, i.to, mode, 255, 20, 200, 30, 220, 40, 250);
}

void PeerThreshold(Mats& m) {
  cv::inRange(m.a, cv::Scalar(40, 30, 20, 0), cv::Scalar(250, 220, 200, 255), m.to);
}

void PeerHueThreshold(Mats& m) {
  cv::cvtColor(m.a, m.other, cv::COLOR_BGR2HLS);
  cv::inRange(m.other, cv::Scalar(14, 40, 30), cv::Scalar(141, 250, 220), m.to);
}

int32_t Lookup(Images& i, int32_t mode) {
  return ZEL_ColorUserLookup(i.a, 0, i.to, mode, ARRAY_U8, Table(), Table(), Table());
}

void PeerLookup(Mats& m) {
  static const cv::Mat table(1, 256, CV_8UC1, const_cast<uint8_t*>(Table()));
  cv::LUT(m.a, table, m.to);
}

int32_t Histogram(Images& i, int32_t mode) {
  static uint32_t counts[3][256];
  return ZEL_ColorHistogram(i.a, 0, 256, mode, counts[0], counts[1], counts[2], nullptr, nullptr,
                            nullptr);
}

void PeerHistogram(Mats& m) {
  const int size = 256;
  const float range[] = {0, 256};
  const float* ranges = range;
  for (int c = 0; c < 3; c++) {
    cv::calcHist(&m.a, 1, &c, cv::Mat(), m.scratch[static_cast<size_t>(c)], 1, &size, &ranges);
  }
}

const std::vector<bench::Pair> PAIRS = {
    {.operation = "split_rgb",
     .kinds = RGB,
     .ours = [](Images& i) { return Extract(i, MODE_RGB); },
     .theirs = Split},
    {.operation = "split_hsl",
     .kinds = RGB,
     .ours = [](Images& i) { return Extract(i, MODE_HSL); },
     .theirs = [](Mats& m) { cv::cvtColor(m.a, m.to, cv::COLOR_BGR2HLS); }},
    {.operation = "split_hsv",
     .kinds = RGB,
     .ours = [](Images& i) { return Extract(i, MODE_HSV); },
     .theirs = [](Mats& m) { cv::cvtColor(m.a, m.to, cv::COLOR_BGR2HSV); }},
    {.operation = "merge_rgb",
     .kinds = RGB,
     .prepare = PreparePlanes<MODE_RGB>,
     .ours = [](Images& i) { return Replace(i, MODE_RGB); },
     .theirs = Merge},
    {.operation = "merge_hsl",
     .kinds = RGB,
     .prepare = PreparePlanes<MODE_HSL>,
     .ours = [](Images& i) { return Replace(i, MODE_HSL); },
     .theirs = [](Mats& m) { cv::cvtColor(m.other, m.to, cv::COLOR_HLS2BGR, 4); }},
    {.operation = "merge_hsv",
     .kinds = RGB,
     .prepare = PreparePlanes<MODE_HSV>,
     .ours = [](Images& i) { return Replace(i, MODE_HSV); },
     .theirs = [](Mats& m) { cv::cvtColor(m.other, m.to, cv::COLOR_HSV2BGR, 4); }},
    {.operation = "threshold_rgb",
     .kinds = RGB,
     .result = IMAGE_U8,
     .ours = [](Images& i) { return Threshold(i, MODE_RGB); },
     .theirs = PeerThreshold},
    {.operation = "threshold_hsl",
     .kinds = RGB,
     .result = IMAGE_U8,
     .ours = [](Images& i) { return Threshold(i, MODE_HSL); },
     .theirs = PeerHueThreshold},
    {.operation = "lookup_rgb",
     .kinds = RGB,
     .ours = [](Images& i) { return Lookup(i, MODE_RGB); },
     .theirs = PeerLookup},
    {.operation = "lookup_hsl",
     .kinds = RGB,
     .ours = [](Images& i) { return Lookup(i, MODE_HSL); }},
    {.operation = "histogram_rgb",
     .kinds = RGB,
     .ours = [](Images& i) { return Histogram(i, MODE_RGB); },
     .theirs = PeerHistogram},
    {.operation = "histogram_hsl",
     .kinds = RGB,
     .ours = [](Images& i) { return Histogram(i, MODE_HSL); }},
    {.operation = "equalize_lightness",
     .kinds = RGB,
     .ours = [](Images& i) { return ZEL_ColorEqualize(i.a, i.to, 0); }},
    {.operation = "convert_to_components",
     .kinds = RGB,
     .ours =
         [](Images& i) {
           static std::vector<uint8_t> planes[3];
           const auto count = static_cast<size_t>(bench::Area(i.size));
           for (auto& plane : planes) plane.resize(count);
           i.array.resize(4 * count);
           return ZEL_IntegerToColor(reinterpret_cast<const RGBValue*>(i.array.data()),
                                     static_cast<int32_t>(count), MODE_HSL, ARRAY_U8,
                                     planes[0].data(), planes[1].data(), planes[2].data());
         }},
    {.operation = "convert_to_pixels",
     .kinds = RGB,
     .ours =
         [](Images& i) {
           static std::vector<uint8_t> plane;
           const auto count = static_cast<size_t>(bench::Area(i.size));
           plane.resize(count);
           i.array.resize(4 * count);
           return ZEL_ColorToInteger(plane.data(), plane.data(), plane.data(),
                                     static_cast<int32_t>(count), MODE_HSL, ARRAY_U8,
                                     reinterpret_cast<RGBValue*>(i.array.data()));
         }},
    {.operation = "image_to_array",
     .kinds = RGB,
     .ours =
         [](Images& i) {
           i.array.resize(static_cast<size_t>(4 * bench::Area(i.size)));
           return ZEL_ColorImageToArray(i.a, 0, 0, i.size.height, i.size.width,
                                        reinterpret_cast<RGBValue*>(i.array.data()), nullptr,
                                        nullptr);
         },
     .theirs = [](Mats& m) { m.a.copyTo(m.to); }},
    {.operation = "array_to_image",
     .kinds = RGB,
     .ours =
         [](Images& i) {
           i.array.resize(static_cast<size_t>(4 * bench::Area(i.size)));
           return ZEL_ArrayToColorImage(i.to, reinterpret_cast<const RGBValue*>(i.array.data()),
                                        i.size.width, i.size.height);
         },
     .theirs = [](Mats& m) { m.a.copyTo(m.to); }},
    {.operation = "get_line",
     .kinds = RGB,
     .pixels = bench::Line,
     .ours =
         [](Images& i) {
           static std::vector<RGBValue> line;
           line.resize(static_cast<size_t>(bench::Line(i.size)));
           return ZEL_GetColorLine(i.a, 0, 0, i.size.width - 1, i.size.height - 1, line.data(),
                                   nullptr);
         }},
    {.operation = "set_line",
     .kinds = RGB,
     .pixels = bench::Line,
     .ours =
         [](Images& i) {
           static std::vector<RGBValue> line;
           line.resize(static_cast<size_t>(bench::Line(i.size)));
           return ZEL_SetColorLine(i.to, 0, 0, i.size.width - 1, i.size.height - 1, line.data(),
                                   static_cast<int32_t>(line.size()));
         }},
    {.operation = "get_pixel",
     .kinds = RGB,
     .pixels = bench::OnePixel,
     .ours =
         [](Images& i) {
           RGBValue value = 0;
           return ZEL_GetColorPixel(i.a, 7, 7, &value);
         }},
    {.operation = "set_pixel",
     .kinds = RGB,
     .pixels = bench::OnePixel,
     .ours = [](Images& i) { return ZEL_SetColorPixel(i.to, 7, 7, 0x123456); }},
    {.operation = "convert_one",
     .kinds = RGB,
     .pixels = bench::OnePixel,
     .ours =
         [](Images&) {
           uint8_t color[3];
           return ZEL_ColorConversion(MODE_RGB, 10, 200, 30, MODE_HSL, &color[0], &color[1],
                                      &color[2]);
         }},
};

const bench::Registration COLOURS({"colours", "Colour", NOTES, PAIRS});

}  // namespace
