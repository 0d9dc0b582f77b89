// Histograms and statistics of images.
#include <opencv2/imgproc.hpp>
#include <vector>

#include "benchmarks/pairs.h"

namespace {

using bench::Images;
using bench::INTEGERS;
using bench::Mats;
using bench::PLAIN_LOOP;
using bench::SCALARS;
using bench::Scene;

constexpr char NOTES[] = R"(
The peer of a histogram is `calcHist` with `meanStdDev`, as ours gives the statistics too; that of
`quantify` is `meanStdDev` with `minMaxLoc`, and that of `centroid` is `moments`, which computes more.
`histogram_full_range` looks for the extremes first, and its peer does so by `minMaxLoc`.
`histogram_counts` asks for no statistics, and its peer is the loop that counts levels.
OpenCV takes no histogram of signed words and no labels. Masks are a scene of blobs or
noise, and pixels "u8-blobs" are that scene.
)";

int32_t Count(Images& i, ImageRef mask, float low, float high) {
  uint32_t counters[256];
  HistogramReport report;
  return ZEL_Histogram(i.a, mask, 256, low, high, counters, &report);
}

void PeerCount(const Mats& m, const cv::Mat& mask, float low, float high) {
  const int channel = 0;
  const int classes = 256;
  const float range[] = {low, high};
  const float* ranges[] = {range};
  cv::Mat histogram;
  cv::Scalar mean;
  cv::Scalar deviation;
  cv::calcHist(&m.a, 1, &channel, mask, histogram, 1, &classes, ranges);
  cv::meanStdDev(m.a, mean, deviation, mask);
}

struct Extremes {
  double low = 0, high = 0;
};

Extremes PeerExtremes(const Mats& m) {
  Extremes extremes;
  cv::minMaxLoc(m.a, &extremes.low, &extremes.high);
  return extremes;
}

void PeerCountFullRange(Mats& m) {
  const Extremes extremes = PeerExtremes(m);
  PeerCount(m, {}, static_cast<float>(extremes.low), static_cast<float>(extremes.high) + 0.01f);
}

int32_t CountLevels(Images& i) {
  uint32_t counters[256];
  return i.type == IMAGE_U8 ? ZEL_Histogram(i.a, 0, 256, 0, 0, counters, nullptr)
                            : ZEL_Histogram(i.a, 0, 256, -32768, 32767, counters, nullptr);
}

void LoopOverLevels(Mats& m) {
  m.to = cv::Mat::zeros(1, 256, CV_32S);
  auto* counters = m.to.ptr<int32_t>();
  for (int y = 0; y < m.a.rows; y++) {
    if (m.a.depth() == CV_8U) {
      const uint8_t* row = m.a.ptr<uint8_t>(y);
      for (int x = 0; x < m.a.cols; x++) counters[row[x]]++;
    } else {
      const int16_t* row = m.a.ptr<int16_t>(y);
      for (int x = 0; x < m.a.cols; x++) counters[(row[x] + 32768) >> 8]++;
    }
  }
}

int32_t Quantify(Images& i, ImageRef labels) {
  QuantifyReport report;
  return ZEL_Quantify(i.a, labels, &report, nullptr, nullptr);
}

void PeerQuantify(Mats& m) {
  cv::Scalar mean;
  cv::Scalar deviation;
  cv::meanStdDev(m.a, mean, deviation);
  PeerExtremes(m);
}

int32_t Centroid(Images& i) {
  float x = 0;
  float y = 0;
  return ZEL_Centroid(i.a, 0, &x, &y);
}

int32_t Profile(Images& i) {
  LineProfileReport report;
  return ZEL_LineProfile(i.a, 0, 0, i.size.width - 1, i.size.height - 1, ARRAY_SGL, nullptr,
                         nullptr, &report);
}

const std::vector<bench::Pair> PAIRS = {
    {.operation = "histogram",
     .kinds = {{IMAGE_U8}, {IMAGE_U8, Scene::Blobs}, {IMAGE_SGL}},
     .ours = [](Images& i) { return Count(i, 0, 0, 256); },
     .theirs = [](Mats& m) { PeerCount(m, {}, 0, 256); }},
    {.operation = "histogram_range",
     .ours = [](Images& i) { return Count(i, 0, 10, 200); },
     .theirs = [](Mats& m) { PeerCount(m, {}, 10, 201); }},
    {.operation = "histogram_masked",
     .kinds = {{IMAGE_U8}, {IMAGE_SGL}},
     .ours = [](Images& i) { return Count(i, i.mask, 0, 256); },
     .theirs = [](Mats& m) { PeerCount(m, m.mask, 0, 256); }},
    {.operation = "histogram_noise_mask",
     .ours = [](Images& i) { return Count(i, i.noise, 0, 256); },
     .theirs = [](Mats& m) { PeerCount(m, m.noise, 0, 256); }},
    {.operation = "histogram_full_range",
     .kinds = {{IMAGE_SGL}},
     .ours = [](Images& i) { return Count(i, 0, 0, 0); },
     .theirs = PeerCountFullRange},
    {.operation = "histogram_full_range",
     .kinds = {{IMAGE_I16}},
     .ours = [](Images& i) { return Count(i, 0, 0, 0); }},
    {.operation = "histogram_masked",
     .kinds = {{IMAGE_I16}},
     .ours = [](Images& i) { return Count(i, i.mask, 0, 0); }},
    {.operation = "histogram_counts",
     .kinds = INTEGERS,
     .ours = CountLevels,
     .peer = PLAIN_LOOP,
     .theirs = LoopOverLevels},
    {.operation = "quantify",
     .kinds = SCALARS,
     .ours = [](Images& i) { return Quantify(i, 0); },
     .theirs = PeerQuantify},
    {.operation = "quantify_labels", .ours = [](Images& i) { return Quantify(i, i.mask); }},
    {.operation = "quantify_labels_noise", .ours = [](Images& i) { return Quantify(i, i.noise); }},
    {.operation = "centroid",
     .kinds = SCALARS,
     .ours = Centroid,
     .theirs = [](Mats& m) { static_cast<void>(cv::moments(m.a)); }},
    {.operation = "line_profile", .kinds = SCALARS, .pixels = bench::Line, .ours = Profile},
};

const bench::Registration STATISTICS({"statistics", "Histogram and quantification", NOTES, PAIRS});

}  // namespace
