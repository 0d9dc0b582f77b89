// The standard matrices of convolution: what they are, and the records that callers are given.
#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

#include "orlune_ptk.h"

namespace zel {
namespace {

template <size_t side>
struct Standard {
  int8_t coefficients[side * side];
  uint8_t divider;
};
template <size_t side, size_t count>
using Standards = std::array<Standard<side>, count>;

// ---- gradients: each is followed by the same with 1 in its centre

template <size_t side, size_t count>
constexpr Standards<side, 2 * count> WithCentres(const Standards<side, count>& gradients) {
  Standards<side, 2 * count> all{};
  for (size_t i = 0; i < count; i++) {
    all[2 * i] = gradients[i];
    all[2 * i + 1] = gradients[i];
    all[2 * i + 1].coefficients[side * side / 2] = 1;
  }
  return all;
}

// clang-format off
constexpr auto GRADIENTS_3 = WithCentres<3, 16>({{
    {{-1,  0,  1,
      -1,  0,  1,
      -1,  0,  1}, 1},
    {{ 0,  1,  1,
      -1,  0,  1,
      -1, -1,  0}, 1},
    {{ 1,  1,  1,
       0,  0,  0,
      -1, -1, -1}, 1},
    {{ 1,  1,  0,
       1,  0, -1,
       0, -1, -1}, 1},
    {{ 1,  0, -1,
       1,  0, -1,
       1,  0, -1}, 1},
    {{ 0, -1, -1,
       1,  0, -1,
       1,  1,  0}, 1},
    {{-1, -1, -1,
       0,  0,  0,
       1,  1,  1}, 1},
    {{-1, -1,  0,
      -1,  0,  1,
       0,  1,  1}, 1},
    {{-1,  0,  1,
      -2,  0,  2,
      -1,  0,  1}, 1},
    {{ 0,  1,  2,
      -1,  0,  1,
      -2, -1,  0}, 1},
    {{ 1,  2,  1,
       0,  0,  0,
      -1, -2, -1}, 1},
    {{ 2,  1,  0,
       1,  0, -1,
       0, -1, -2}, 1},
    {{ 1,  0, -1,
       2,  0, -2,
       1,  0, -1}, 1},
    {{ 0, -1, -2,
       1,  0, -1,
       2,  1,  0}, 1},
    {{-1, -2, -1,
       0,  0,  0,
       1,  2,  1}, 1},
    {{-2, -1,  0,
      -1,  0,  1,
       0,  1,  2}, 1},
}});

constexpr auto GRADIENTS_5 = WithCentres<5, 8>({{
    {{ 0, -1,  0,  1,  0,
      -1, -2,  0,  2,  1,
      -1, -2,  0,  2,  1,
      -1, -2,  0,  2,  1,
       0, -1,  0,  1,  0}, 1},
    {{ 0,  0,  1,  1,  1,
       0,  0,  2,  2,  1,
      -1, -2,  0,  2,  1,
      -1, -2, -2,  0,  0,
      -1, -1, -1,  0,  0}, 1},
    {{ 0,  1,  1,  1,  0,
       1,  2,  2,  2,  1,
       0,  0,  0,  0,  0,
      -1, -2, -2, -2, -1,
       0, -1, -1, -1,  0}, 1},
    {{ 1,  1,  1,  0,  0,
       1,  2,  2,  0,  0,
       1,  2,  0, -2, -1,
       0,  0, -2, -2, -1,
       0,  0, -1, -1, -1}, 1},
    {{ 0,  1,  0, -1,  0,
       1,  2,  0, -2, -1,
       1,  2,  0, -2, -1,
       1,  2,  0, -2, -1,
       0,  1,  0, -1,  0}, 1},
    {{ 0,  0, -1, -1, -1,
       0,  0, -2, -2, -1,
       1,  2,  0, -2, -1,
       1,  2,  2,  0,  0,
       1,  1,  1,  0,  0}, 1},
    {{ 0, -1, -1, -1,  0,
      -1, -2, -2, -2, -1,
       0,  0,  0,  0,  0,
       1,  2,  2,  2,  1,
       0,  1,  1,  1,  0}, 1},
    {{-1, -1, -1,  0,  0,
      -1, -2, -2,  0,  0,
      -1, -2,  0,  2,  1,
       0,  0,  2,  2,  1,
       0,  0,  1,  1,  1}, 1},
}});

constexpr auto GRADIENTS_7 = [] {
  auto gradients = WithCentres<7, 4>({{
    {{ 0, -1, -1,  0,  1,  1,  0,
      -1, -2, -2,  0,  2,  2,  1,
      -1, -2, -3,  0,  3,  2,  1,
      -1, -2, -3,  0,  3,  2,  1,
      -1, -2, -3,  0,  3,  2,  1,
      -1, -2, -2,  0,  2,  2,  1,
       0, -1, -1,  0,  1,  1,  0}, 1},
    {{ 0,  1,  1,  1,  1,  1,  0,
       1,  2,  2,  2,  2,  2,  1,
       1,  2,  3,  3,  3,  2,  1,
       0,  0,  0,  0,  0,  0,  0,
      -1, -2, -3, -3, -3, -2, -1,
      -1, -2, -2, -2, -2, -2, -1,
       0, -1, -1, -1, -1, -1,  0}, 1},
    {{ 0,  1,  1,  0, -1, -1,  0,
       1,  2,  2,  0, -2, -2, -1,
       1,  2,  3,  0, -3, -2, -1,
       1,  2,  3,  0, -3, -2, -1,
       1,  2,  3,  0, -3, -2, -1,
       1,  2,  2,  0, -2, -2, -1,
       0,  1,  1,  0, -1, -1,  0}, 1},
    {{ 0, -1, -1, -1, -1, -1,  0,
      -1, -2, -2, -2, -2, -2, -1,
      -1, -2, -3, -3, -3, -2, -1,
       0,  0,  0,  0,  0,  0,  0,
       1,  2,  3,  3,  3,  2,  1,
       1,  2,  2,  2,  2,  2,  1,
       0,  1,  1,  1,  1,  1,  0}, 1},
  }});
  gradients[3].coefficients[7] = -1;  // kept: results in the field have it
  return gradients;
}();

// ---- what stands out

constexpr Standards<3, 8> LAPLACIANS_3 = {{
    {{ 0, -1,  0,
      -1,  4, -1,
       0, -1,  0}, 1},
    {{ 0, -1,  0,
      -1,  5, -1,
       0, -1,  0}, 1},
    {{ 0, -1,  0,
      -1,  6, -1,
       0, -1,  0}, 2},
    {{-1, -1, -1,
      -1,  8, -1,
      -1, -1, -1}, 1},
    {{-1, -1, -1,
      -1,  9, -1,
      -1, -1, -1}, 1},
    {{-1, -1, -1,
      -1, 10, -1,
      -1, -1, -1}, 2},
    {{-1, -2, -1,
      -2, 12, -2,
      -1, -2, -1}, 1},
    {{-1, -2, -1,
      -2, 13, -2,
      -1, -2, -1}, 1},
}};

// ---- means

constexpr Standards<3, 8> SMOOTHINGS_3 = {{
    {{0, 1, 0,
      1, 0, 1,
      0, 1, 0}, 4},
    {{0, 1, 0,
      1, 1, 1,
      0, 1, 0}, 5},
    {{0, 2, 0,
      2, 1, 2,
      0, 2, 0}, 9},
    {{0, 4, 0,
      4, 1, 4,
      0, 4, 0}, 17},
    {{1, 1, 1,
      1, 0, 1,
      1, 1, 1}, 8},
    {{1, 1, 1,
      1, 1, 1,
      1, 1, 1}, 9},
    {{2, 2, 2,
      2, 1, 2,
      2, 2, 2}, 17},
    {{4, 4, 4,
      4, 1, 4,
      4, 4, 4}, 13},  // kept: not their sum, but results in the field have it
}};

constexpr Standards<3, 6> GAUSSIANS_3 = {{
    {{0,  1, 0,
      1,  2, 1,
      0,  1, 0}, 6},
    {{0,  1, 0,
      1,  4, 1,
      0,  1, 0}, 8},
    {{1,  1, 1,
      1,  2, 1,
      1,  1, 1}, 10},
    {{1,  1, 1,
      1,  4, 1,
      1,  1, 1}, 12},
    {{1,  2, 1,
      2,  4, 2,
      1,  2, 1}, 16},
    {{1,  4, 1,
      4, 16, 4,
      1,  4, 1}, 36},
}};

constexpr Standards<5, 1> GAUSSIANS_5 = {{
    {{1, 2,  4, 2, 1,
      2, 4,  8, 4, 2,
      4, 8, 16, 8, 4,
      2, 4,  8, 4, 2,
      1, 2,  4, 2, 1}, 100},
}};

constexpr Standards<7, 1> GAUSSIANS_7 = {{
    {{1, 1, 2,  2, 2, 1, 1,
      1, 2, 2,  4, 2, 2, 1,
      2, 2, 4,  8, 4, 2, 2,
      2, 4, 8, 16, 8, 4, 2,
      2, 2, 4,  8, 4, 2, 2,
      1, 2, 2,  4, 2, 2, 1,
      1, 1, 2,  2, 2, 1, 1}, 140},
}};
// clang-format on

template <size_t side>
constexpr Standard<side> Equal(int8_t coefficient, int8_t centre, uint8_t divider) {
  Standard<side> standard{};
  std::fill(std::begin(standard.coefficients), std::end(standard.coefficients), coefficient);
  standard.coefficients[side * side / 2] = centre;
  standard.divider = divider;
  return standard;
}

constexpr Standards<5, 2> LAPLACIANS_5 = {Equal<5>(-1, 24, 1), Equal<5>(-1, 25, 1)};
constexpr Standards<7, 2> LAPLACIANS_7 = {Equal<7>(-1, 48, 1), Equal<7>(-1, 49, 1)};
constexpr Standards<5, 2> SMOOTHINGS_5 = {Equal<5>(1, 0, 24), Equal<5>(1, 1, 25)};
constexpr Standards<7, 2> SMOOTHINGS_7 = {Equal<7>(1, 0, 48), Equal<7>(1, 1, 49)};

// ---- the records, which callers may write

template <size_t side, size_t count>
struct MatrixList {
  float coefficients[count][side * side] = {};
  ConvolutionMatrix records[count] = {};

  explicit constexpr MatrixList(const Standards<side, count>& standards) {
    for (size_t i = 0; i < count; i++) {
      std::copy(std::begin(standards[i].coefficients), std::end(standards[i].coefficients),
                coefficients[i]);
      records[i] = {side, side, coefficients[i], static_cast<float>(standards[i].divider)};
    }
  }
};

constinit MatrixList gradients3(GRADIENTS_3);
constinit MatrixList gradients5(GRADIENTS_5);
constinit MatrixList gradients7(GRADIENTS_7);
constinit MatrixList laplacians3(LAPLACIANS_3);
constinit MatrixList laplacians5(LAPLACIANS_5);
constinit MatrixList laplacians7(LAPLACIANS_7);
constinit MatrixList smoothings3(SMOOTHINGS_3);
constinit MatrixList smoothings5(SMOOTHINGS_5);
constinit MatrixList smoothings7(SMOOTHINGS_7);
constinit MatrixList gaussians3(GAUSSIANS_3);
constinit MatrixList gaussians5(GAUSSIANS_5);
constinit MatrixList gaussians7(GAUSSIANS_7);

// By ConvolutionFamily, then by size.
constexpr std::span<ConvolutionMatrix> LISTS[][3] = {
    {gradients3.records, gradients5.records, gradients7.records},
    {laplacians3.records, laplacians5.records, laplacians7.records},
    {smoothings3.records, smoothings5.records, smoothings7.records},
    {gaussians3.records, gaussians5.records, gaussians7.records},
};

}  // namespace
}  // namespace zel

ConvolutionMatrix* ZEL_GetConvolutionMatrix(int32_t family, int32_t size, int32_t index) {
  const int32_t row = std::clamp<int32_t>(family, CONVOLUTION_GRADIENT, CONVOLUTION_GAUSSIAN);
  const int32_t column = size > 6 ? 2 : size > 4 ? 1 : 0;
  const std::span<ConvolutionMatrix> list = zel::LISTS[row][column];
  return &list[static_cast<size_t>(std::clamp(index, 0, static_cast<int32_t>(list.size()) - 1))];
}
