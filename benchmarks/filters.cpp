// Edges, conditional smoothing and rank filters.
#include <opencv2/imgproc.hpp>
#include <string>

#include "benchmarks/pairs.h"

namespace {

using bench::Images;
using bench::Mats;
using bench::PLAIN_LOOP;
using bench::SCALARS;

constexpr char NOTES[] = R"(
The peers of edges are two derivative filters (`Sobel`, `sepFilter2D` for Prewitt, `filter2D` for
Roberts) and the maximum of their absolute values; for the other operators and for `low_pass` there is
a plain loop, which leaves the edge of the image out. The peer of medians is `medianBlur`, which takes
I16 as unsigned words, and windows above 5x5 for U8 only; that of the smallest of a window is `erode`.
OpenCV continues the image by reflection or by its last pixels, ours by mirroring.
)";

template <int32_t method>
int32_t Edge(Images& i) {
  return ZEL_GrayEdge(i.a, 0, i.to, method, 0.0f);
}

// The larger of the absolute values of two derivatives, scaled, in the source's type.
void Larger(double scale, Mats* m) {
  auto& [x, y, xSize, ySize] = m->scratch;
  if (m->a.depth() == CV_8U) {
    cv::convertScaleAbs(x, xSize, scale);
    cv::convertScaleAbs(y, ySize, scale);
    cv::max(xSize, ySize, m->to);
  } else {
    cv::absdiff(x, cv::Scalar(0), xSize);
    cv::absdiff(y, cv::Scalar(0), ySize);
    cv::max(xSize, ySize, x);
    x.convertTo(m->to, m->a.depth(), scale);
  }
}

int DerivativeDepth(const Mats& m) {
  return m.a.depth() == CV_8U ? CV_16S : CV_32F;
}

void PeerSobel(Mats& m) {
  cv::Sobel(m.a, m.scratch[0], DerivativeDepth(m), 1, 0);
  cv::Sobel(m.a, m.scratch[1], DerivativeDepth(m), 0, 1);
  Larger(0.25, &m);
}

void PeerPrewitt(Mats& m) {
  const cv::Vec3f difference(-1, 0, 1);
  const cv::Vec3f sum(1, 1, 1);
  cv::sepFilter2D(m.a, m.scratch[0], DerivativeDepth(m), difference, sum);
  cv::sepFilter2D(m.a, m.scratch[1], DerivativeDepth(m), sum, difference);
  Larger(1.0 / 3, &m);
}

void PeerRoberts(Mats& m) {
  const cv::Matx22f falling(1, 0, 0, -1);
  const cv::Matx22f rising(0, -1, 1, 0);
  const cv::Point lowerRight(1, 1);
  cv::filter2D(m.a, m.scratch[0], DerivativeDepth(m), falling, lowerRight);
  cv::filter2D(m.a, m.scratch[1], DerivativeDepth(m), rising, lowerRight);
  Larger(1, &m);
}

// The pixels around one.
template <class T>
struct Window {
  const T* centre;
  int64_t pitch;
  // Integers are widened to 32 bits, floats take part as they are.
  auto operator()(int dx, int dy) const { return +centre[dy * pitch + dx]; }
};

// Each pixel but those within `margin` of the edge by a rule that takes its window.
template <class T, class Rule>
void EachPixel(Mats* m, int margin, Rule rule) {
  m->to.create(m->a.size(), m->a.type());
  const int width = m->a.cols;
  const auto pitch = static_cast<int64_t>(m->a.step1());
  for (int y = margin; y < m->a.rows - margin; y++) {
    const T* from = m->a.ptr<T>(y);
    T* to = m->to.ptr<T>(y);
    for (int x = margin; x < width - margin; x++) {
      to[x] = static_cast<T>(rule(Window<T>{from + x, pitch}));
    }
  }
}

template <class Rule>
void ForType(Mats* m, int margin, Rule rule) {
  if (m->a.depth() == CV_8U) EachPixel<uint8_t>(m, margin, rule);
  if (m->a.depth() == CV_16S) EachPixel<int16_t>(m, margin, rule);
  if (m->a.depth() == CV_32F) EachPixel<float>(m, margin, rule);
}

void LoopDifferentiation(Mats& m) {
  ForType(&m, 1, [](auto at) {
    const auto centre = at(0, 0);
    return std::max({std::abs(at(-1, -1) - centre), std::abs(at(0, -1) - centre),
                     std::abs(at(-1, 0) - centre)});
  });
}

void LoopGradient(Mats& m) {
  ForType(&m, 1, [](auto at) {
    return std::max(std::abs(at(-1, -1) - at(-1, 0)), std::abs(at(0, -1) - at(0, 0)));
  });
}

void LoopSigma(Mats& m) {
  ForType(&m, 1, [](auto at) {
    const auto centre = at(0, 0);
    auto sum = centre - centre;
    for (int dy = -1; dy <= 1; dy++) {
      for (int dx = -1; dx <= 1; dx++) sum += std::abs(at(dx, dy) - centre);
    }
    return sum / 8;
  });
}

constexpr float TOLERANCE = 20;

template <int32_t side>
int32_t LowPass(Images& i) {
  return ZEL_LowPass(i.a, 0, i.to, side, side, TOLERANCE);
}

// The mean of the neighbours where a pixel stands out from it.
template <int32_t side>
void LoopLowPass(Mats& m) {
  constexpr int reach = side / 2;
  ForType(&m, reach, [](auto at) {
    const auto centre = at(0, 0);
    auto sum = -centre;
    for (int dy = -reach; dy <= reach; dy++) {
      for (int dx = -reach; dx <= reach; dx++) sum += at(dx, dy);
    }
    const auto mean = sum / (side * side - 1);
    const float off = std::abs(static_cast<float>(mean - centre)) * 100;
    const float size = mean == 0 ? 1.0f : std::abs(static_cast<float>(mean));
    return off / size > TOLERANCE ? mean : centre;
  });
}

void PeerMedian(Mats& m, int side) {
  if (m.a.depth() == CV_16S) {
    const cv::Mat words(m.a.size(), CV_16U, m.a.data);
    cv::medianBlur(words, m.to, side);
  } else {
    cv::medianBlur(m.a, m.to, side);
  }
}

bench::Pair Rank(const char* name, const std::vector<bench::Kind>& kinds, int32_t side,
                 int32_t order, std::function<void(Mats&)> theirs) {
  const std::string window = std::to_string(side) + "x" + std::to_string(side);
  return {.operation = name + window,
          .kinds = kinds,
          .border = std::max(bench::BORDER, side / 2),
          .ours = [=](Images& i) { return ZEL_NthOrder(i.a, 0, i.to, side, side, order); },
          .theirs = std::move(theirs)};
}

bench::Pair Median(const std::vector<bench::Kind>& kinds, int32_t side) {
  return Rank("median", kinds, side, side * side / 2, [side](Mats& m) { PeerMedian(m, side); });
}

bench::Pair MedianAlone(const std::vector<bench::Kind>& kinds, int32_t side) {
  return Rank("median", kinds, side, side * side / 2, nullptr);
}

const std::vector<bench::Kind> BYTES = {{IMAGE_U8}};
const std::vector<bench::Kind> OTHERS = {{IMAGE_I16}, {IMAGE_SGL}};

const std::vector<bench::Pair> PAIRS = {
    {.operation = "edge_sobel", .kinds = SCALARS, .ours = Edge<EDGE_SOBEL>, .theirs = PeerSobel},
    {.operation = "edge_prewitt",
     .kinds = SCALARS,
     .ours = Edge<EDGE_PREWITT>,
     .theirs = PeerPrewitt},
    {.operation = "edge_roberts",
     .kinds = SCALARS,
     .ours = Edge<EDGE_ROBERTS>,
     .theirs = PeerRoberts},
    {.operation = "edge_differentiation",
     .kinds = SCALARS,
     .ours = Edge<EDGE_DIFFERENTIATION>,
     .peer = PLAIN_LOOP,
     .theirs = LoopDifferentiation},
    {.operation = "edge_gradient",
     .kinds = SCALARS,
     .ours = Edge<EDGE_GRADIENT>,
     .peer = PLAIN_LOOP,
     .theirs = LoopGradient},
    {.operation = "edge_sigma",
     .kinds = SCALARS,
     .ours = Edge<EDGE_SIGMA>,
     .peer = PLAIN_LOOP,
     .theirs = LoopSigma},

    {.operation = "low_pass3x3",
     .kinds = SCALARS,
     .ours = LowPass<3>,
     .peer = PLAIN_LOOP,
     .theirs = LoopLowPass<3>},
    {.operation = "low_pass5x5",
     .kinds = SCALARS,
     .ours = LowPass<5>,
     .peer = PLAIN_LOOP,
     .theirs = LoopLowPass<5>},

    Median(SCALARS, 3),
    Median(SCALARS, 5),
    Median(BYTES, 7),
    Median(BYTES, 15),
    Median(BYTES, 31),
    MedianAlone(OTHERS, 7),
    Rank("smallest", SCALARS, 3, 0, [](Mats& m) { cv::erode(m.a, m.to, {}); }),
};

const bench::Registration FILTERS({"filters", "Edge, smoothing and rank filters", NOTES, PAIRS});

}  // namespace
