// Convolution by matrices of several kinds, and correlation with templates.
#include <opencv2/imgproc.hpp>
#include <random>
#include <string>

#include "benchmarks/pairs.h"

namespace {

using bench::Images;
using bench::Kind;
using bench::Mats;
using bench::SCALARS;
using bench::Size;

constexpr char NOTES[] = R"(
Matrices named by their size alone have whole coefficients without any order, `divided` ones a divider
besides, which the peer has in its coefficients; `fractions` are coefficients that are not whole. All of
these go beside `filter2D`, which rounds where ours are cut. Beside `box` there is `blur`, beside
`gaussian` (products of 1 2 1 and of 1 2 4 2 1) `sepFilter2D`. OpenCV continues the image by reflection,
ours by mirroring.

The peer of correlation, `matchTemplate` with `TM_CCORR_NORMED`, gives floats, and only where the
template lies within the image.
)";

struct Matrix {
  int32_t side;
  std::vector<float> coefficients;
  float divider;

  cv::Mat Peer() const {
    return cv::Mat(side, side, CV_32F, const_cast<float*>(coefficients.data())).clone() / divider;
  }
};

Matrix Whole(int32_t side, float divider) {
  std::mt19937 random(static_cast<uint32_t>(side));
  Matrix matrix{side, {}, divider};
  for (int32_t i = 0; i < side * side; i++) {
    matrix.coefficients.push_back(static_cast<float>(static_cast<int32_t>(random() % 9) - 4));
    if (matrix.coefficients.back() == 0) matrix.coefficients.back() = 5;
  }
  return matrix;
}

Matrix Fractions(int32_t side) {
  Matrix matrix = Whole(side, 1);
  for (float& coefficient : matrix.coefficients) coefficient *= 0.1f;
  return matrix;
}

Matrix Box(int32_t side) {
  const auto count = static_cast<size_t>(side) * static_cast<size_t>(side);
  return {side, std::vector<float>(count, 1), static_cast<float>(count)};
}

Matrix Product(const std::vector<float>& weights) {
  Matrix matrix{static_cast<int32_t>(weights.size()), {}, 0};
  for (const float down : weights) {
    for (const float across : weights) {
      matrix.coefficients.push_back(down * across);
      matrix.divider += down * across;
    }
  }
  return matrix;
}

int32_t Convolute(Images& i, const Matrix& matrix) {
  ConvolutionMatrix record{matrix.side, matrix.side, const_cast<float*>(matrix.coefficients.data()),
                           matrix.divider};
  return ZEL_Convolute(i.a, 0, i.to, &record, BORDER_FILL_MIRROR);
}

bench::Pair Convolution(const std::string& name, const std::vector<Kind>& kinds,
                        const Matrix& matrix, std::function<void(Mats&)> theirs) {
  return {.operation = name + std::to_string(matrix.side) + "x" + std::to_string(matrix.side),
          .kinds = kinds,
          .ours = [=](Images& i) { return Convolute(i, matrix); },
          .theirs = std::move(theirs)};
}

bench::Pair ByMatrix(const std::string& name, const std::vector<Kind>& kinds,
                     const Matrix& matrix) {
  return Convolution(name, kinds, matrix,
                     [peer = matrix.Peer()](Mats& m) { cv::filter2D(m.a, m.to, -1, peer); });
}

bench::Pair ByBox(const std::vector<Kind>& kinds, int32_t side) {
  return Convolution("box", kinds, Box(side),
                     [side](Mats& m) { cv::blur(m.a, m.to, cv::Size(side, side)); });
}

bench::Pair ByGaussian(const std::vector<Kind>& kinds, const std::vector<float>& weights) {
  cv::Mat peer = cv::Mat(weights, true);
  peer /= cv::sum(peer)[0];
  return Convolution("gaussian", kinds, Product(weights),
                     [peer](Mats& m) { cv::sepFilter2D(m.a, m.to, -1, peer, peer); });
}

// A template that is a part of the image.
int32_t CutTemplate(Images& i, Mats& m, int32_t side) {
  ImageInfo from{};
  ImageInfo to{};
  int32_t status = ZEL_SetImageSize(i.other, side, side);
  if (status == 0) status = ZEL_GetImageInfo(i.a, &from);
  if (status == 0) status = ZEL_GetImageInfo(i.other, &to);
  if (status != 0) return status;
  for (int32_t y = 0; y < side; y++) {
    const auto* row = static_cast<const uint8_t*>(from.firstPixel) + (y + 7) * from.lineBytes + 9;
    std::copy(row, row + side, static_cast<uint8_t*>(to.firstPixel) + y * to.lineBytes);
  }
  m.other = m.a(cv::Rect(9, 7, side, side)).clone();
  return 0;
}

bench::Pair Correlation(int32_t side) {
  return {.operation = "correlate" + std::to_string(side) + "x" + std::to_string(side),
          .sizes = {{64, 64}, {640, 480}},
          .prepare = [side](Images& i, Mats& m) { return CutTemplate(i, m, side); },
          .ours =
              [](Images& i) {
                return ZEL_Correlate(i.a, i.other, i.to, {0, 0, i.size.height, i.size.width});
              },
          .theirs = [](Mats& m) { cv::matchTemplate(m.a, m.other, m.to, cv::TM_CCORR_NORMED); }};
}

const std::vector<Kind> BYTES = {{IMAGE_U8}};

const std::vector<bench::Pair> PAIRS = {
    ByMatrix("matrix", SCALARS, Whole(3, 1)),
    ByMatrix("matrix", SCALARS, Whole(5, 1)),
    ByMatrix("matrix", SCALARS, Whole(7, 1)),
    ByMatrix("divided", SCALARS, Whole(3, 7)),
    ByMatrix("divided", BYTES, Whole(5, 7.3f)),
    ByMatrix("divided", BYTES, Whole(7, 30)),
    ByMatrix("fractions", SCALARS, Fractions(3)),
    ByBox(SCALARS, 3),
    ByBox(BYTES, 5),
    ByBox(BYTES, 7),
    ByGaussian(SCALARS, {1, 2, 1}),
    ByGaussian(BYTES, {1, 2, 4, 2, 1}),

    Correlation(8),
    Correlation(16),
    Correlation(32),
};

const bench::Registration CONVOLUTION({"convolution", "Convolution and correlation", NOTES, PAIRS});

}  // namespace
