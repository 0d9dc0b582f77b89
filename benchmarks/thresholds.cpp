// Thresholds: one range, several classes, and thresholds found from the histogram.
#include <opencv2/imgproc.hpp>

#include "benchmarks/pairs.h"

namespace {

using bench::Images;
using bench::Mats;
using bench::SCALARS;

constexpr char NOTES[] = R"(
The peers: `inRange` for `range` (it writes bytes for every pixel type), `threshold` to zero for
`keep` (one-sided, as OpenCV has no other), `threshold` with Otsu's method for `auto` (another method
than any of ours; it also applies its threshold). No peer has several classes.

`auto_metric` estimates a sum of distances for every split, whatever the size of the image, and the
entropy and moments methods have their logarithms and roots: small images are dear there.
)";

struct Limits {
  float low, high;
};

Limits LimitsFor(bool words) {
  return words ? Limits{-9000.0f, 12000.0f} : Limits{60.0f, 180.0f};
}

int32_t Range(Images& i) {
  const Limits limits = LimitsFor(i.type == IMAGE_I16);
  return ZEL_Threshold(i.a, i.to, limits.low, limits.high, 255.0f, 1);
}

void PeerRange(Mats& m) {
  const Limits limits = LimitsFor(m.a.depth() == CV_16S);
  cv::inRange(m.a, cv::Scalar(static_cast<double>(limits.low)),
              cv::Scalar(static_cast<double>(limits.high)), m.to);
}

int32_t Keep(Images& i) {
  return ZEL_Threshold(i.a, i.to, LimitsFor(i.type == IMAGE_I16).low, 1e9f, 0.0f, 0);
}

void PeerKeep(Mats& m) {
  const auto low = static_cast<double>(LimitsFor(m.a.depth() == CV_16S).low);
  cv::threshold(m.a, m.to, low, 255, cv::THRESH_TOZERO);
}

int32_t FourClasses(Images& i) {
  const ThresholdClass classes[] = {{10.0f, 60.0f, 1.0f, 1},
                                    {61.0f, 120.0f, 2.0f, 1},
                                    {121.0f, 200.0f, 3.0f, 1},
                                    {201.0f, 254.0f, 4.0f, 0}};
  return ZEL_MultiThreshold(i.a, i.to, 4, classes);
}

template <int32_t method>
int32_t Find(Images& i) {
  int32_t threshold = 0;
  return ZEL_AutoBThreshold(i.a, method, ARRAY_U16, nullptr, &threshold);
}

int32_t FindFiveClasses(Images& i) {
  ThresholdClass classes[5];
  return ZEL_AutoMThreshold(i.a, 5, ARRAY_U16, nullptr, classes);
}

void PeerFind(Mats& m) {
  cv::threshold(m.a, m.to, 0, 255, cv::THRESH_BINARY | cv::THRESH_OTSU);
}

const std::vector<bench::Pair> PAIRS = {
    {.operation = "range", .kinds = SCALARS, .ours = Range, .theirs = PeerRange},
    {.operation = "keep", .kinds = SCALARS, .ours = Keep, .theirs = PeerKeep},
    {.operation = "four_classes", .kinds = SCALARS, .ours = FourClasses},
    {.operation = "auto_clustering", .ours = Find<AUTOB_CLUSTERING>, .theirs = PeerFind},
    {.operation = "auto_entropy", .ours = Find<AUTOB_ENTROPY>, .theirs = PeerFind},
    {.operation = "auto_metric", .ours = Find<AUTOB_METRIC>, .theirs = PeerFind},
    {.operation = "auto_moments", .ours = Find<AUTOB_MOMENTS>, .theirs = PeerFind},
    {.operation = "auto_interclass", .ours = Find<AUTOB_INTERCLASS>, .theirs = PeerFind},
    {.operation = "auto_five_classes", .ours = FindFiveClasses},
};

const bench::Registration THRESHOLDS({"thresholds", "Thresholds", NOTES, PAIRS});

}  // namespace
