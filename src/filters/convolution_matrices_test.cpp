#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <functional>
#include <numeric>
#include <set>
#include <vector>

#include "orlune_ptk.h"

namespace {

constexpr int32_t SIDES[] = {3, 5, 7};

// Coefficients by their place: columns to the right of the centre, rows above it.
using Law = std::function<int32_t(int32_t right, int32_t up)>;

// The Chebyshev distance from the centre.
int32_t RingOf(int32_t right, int32_t up) {
  return std::max(std::abs(right), std::abs(up));
}
int32_t SignOf(int32_t number) {
  return (number > 0) - (number < 0);
}

void ExpectLaw(int32_t family, int32_t side, int32_t index, const Law& law, float divider) {
  SCOPED_TRACE(testing::Message() << "family " << family << ", " << side << " x " << side
                                  << ", index " << index);
  const ConvolutionMatrix* matrix = ZEL_GetConvolutionMatrix(family, side, index);
  ASSERT_EQ(matrix->width, side);
  ASSERT_EQ(matrix->height, side);
  EXPECT_EQ(matrix->divider, divider);
  const int32_t reach = side / 2;
  for (int32_t up = reach; up >= -reach; up--) {
    for (int32_t right = -reach; right <= reach; right++) {
      const float coefficient = matrix->coefficients[(reach - up) * side + reach + right];
      EXPECT_EQ(coefficient, static_cast<float>(law(right, up))) << right << ", " << up;
    }
  }
}

// The law with another number in the centre.
Law WithCentre(int32_t centre, const Law& law) {
  return [=](int32_t right, int32_t up) { return right == 0 && up == 0 ? centre : law(right, up); };
}

// Turned to the left by quarters of a circle.
Law Turned(int32_t quarters, const Law& law) {
  if (quarters == 0) return law;
  return [=](int32_t right, int32_t up) { return Turned(quarters - 1, law)(up, -right); };
}

// The ring around the centre of a 3x3 matrix turned to the left by eighths of a circle.
Law TurnedRing(int32_t eighths, const Law& law) {
  return [=](int32_t right, int32_t up) {
    static constexpr int32_t RING[8][2] = {{1, 0},  {1, 1},   {0, 1},  {-1, 1},
                                           {-1, 0}, {-1, -1}, {0, -1}, {1, -1}};
    for (int32_t place = 0; place < 8; place++) {
      if (RING[place][0] == right && RING[place][1] == up) {
        const auto& from = RING[(place + 8 - eighths) % 8];
        return law(from[0], from[1]);
      }
    }
    return law(right, up);
  };
}

void ExpectGradientPair(int32_t side, int32_t pair, const Law& law) {
  ExpectLaw(CONVOLUTION_GRADIENT, side, 2 * pair, law, 1);
  ExpectLaw(CONVOLUTION_GRADIENT, side, 2 * pair + 1, WithCentre(1, law), 1);
}

TEST(StandardMatrices, Have3x3GradientsOfEightDirectionsAndTwoWeights) {
  const Law equal = [](int32_t right, int32_t) { return right; };
  const Law doubled = [](int32_t right, int32_t up) { return right * (2 - std::abs(up)); };
  for (int32_t direction = 0; direction < 8; direction++) {
    ExpectGradientPair(3, direction, TurnedRing(direction, equal));
    ExpectGradientPair(3, direction + 8, TurnedRing(direction, doubled));
  }
}

// Weights grow toward the centre; the corners have none.
Law AxialGradient(int32_t reach) {
  return [=](int32_t right, int32_t up) {
    const bool isCorner = std::abs(right) == reach && std::abs(up) == reach;
    return isCorner ? 0 : SignOf(right) * (reach + 1 - RingOf(right, up));
  };
}

TEST(StandardMatrices, Have5x5GradientsOfEightDirections) {
  // The weights of a ring count where a place is as far from the falling diagonal as the ring is
  // from the centre.
  const Law diagonal = [](int32_t right, int32_t up) {
    const int32_t ring = RingOf(right, up);
    return std::abs(right + up) < ring ? 0 : SignOf(right + up) * (3 - ring);
  };
  for (int32_t quarter = 0; quarter < 4; quarter++) {
    ExpectGradientPair(5, 2 * quarter, Turned(quarter, AxialGradient(2)));
    ExpectGradientPair(5, 2 * quarter + 1, Turned(quarter, diagonal));
  }
}

TEST(StandardMatrices, Have7x7GradientsOfFourDirectionsAndAnOddOne) {
  for (int32_t quarter = 0; quarter < 4; quarter++) {
    const Law law = Turned(quarter, AxialGradient(3));
    if (quarter != 1) {
      ExpectGradientPair(7, quarter, law);
      continue;
    }
    ExpectLaw(CONVOLUTION_GRADIENT, 7, 2, law, 1);
    ExpectLaw(
        CONVOLUTION_GRADIENT, 7, 3,
        [&](int32_t right, int32_t up) {
          return right == -3 && up == 2 ? -1 : WithCentre(1, law)(right, up);
        },
        1);
  }
}

TEST(StandardMatrices, HaveLaplaciansThatLeaveASumOrTheDivider) {
  const Law cross = [](int32_t right, int32_t up) {
    return std::abs(right) + std::abs(up) > 1 ? 0 : -1;
  };
  const Law all = [](int32_t, int32_t) { return -1; };
  const Law weighted = [](int32_t right, int32_t up) {
    return std::abs(right) + std::abs(up) > 1 ? -1 : -2;
  };
  const auto expect = [](int32_t side, int32_t index, const Law& law, int32_t centre,
                         float divider) {
    ExpectLaw(CONVOLUTION_LAPLACIAN, side, index, WithCentre(centre, law), divider);
  };
  expect(3, 0, cross, 4, 1);
  expect(3, 1, cross, 4 + 1, 1);
  expect(3, 2, cross, 4 + 2, 2);
  expect(3, 3, all, 8, 1);
  expect(3, 4, all, 8 + 1, 1);
  expect(3, 5, all, 8 + 2, 2);
  expect(3, 6, weighted, 12, 1);
  expect(3, 7, weighted, 12 + 1, 1);
  for (const int32_t side : {5, 7}) {
    expect(side, 0, all, side * side - 1, 1);
    expect(side, 1, all, side * side, 1);
  }
}

TEST(StandardMatrices, HaveMeans) {
  const auto cross = [](int32_t weight) {
    return
        [=](int32_t right, int32_t up) { return std::abs(right) + std::abs(up) > 1 ? 0 : weight; };
  };
  const auto all = [](int32_t weight) { return [=](int32_t, int32_t) { return weight; }; };
  const auto expect = [](int32_t side, int32_t index, const Law& law, int32_t centre,
                         int32_t divider) {
    ExpectLaw(CONVOLUTION_SMOOTHING, side, index, WithCentre(centre, law),
              static_cast<float>(divider));
  };
  expect(3, 0, cross(1), 0, 4);
  expect(3, 1, cross(1), 1, 4 + 1);
  expect(3, 2, cross(2), 1, 4 * 2 + 1);
  expect(3, 3, cross(4), 1, 4 * 4 + 1);
  expect(3, 4, all(1), 0, 8);
  expect(3, 5, all(1), 1, 8 + 1);
  expect(3, 6, all(2), 1, 8 * 2 + 1);
  expect(3, 7, all(4), 1, 13);  // not the sum
  for (const int32_t side : {5, 7}) {
    expect(side, 0, all(1), 0, side * side - 1);
    expect(side, 1, all(1), 1, side * side);
  }
}

TEST(StandardMatrices, HaveGaussians) {
  const auto expect = [](int32_t side, int32_t index, const Law& law, float divider) {
    ExpectLaw(CONVOLUTION_GAUSSIAN, side, index, law, divider);
  };
  const Law cross = [](int32_t right, int32_t up) {
    return std::abs(right) + std::abs(up) > 1 ? 0 : 1;
  };
  const Law all = [](int32_t, int32_t) { return 1; };
  expect(3, 0, WithCentre(2, cross), 6);
  expect(3, 1, WithCentre(4, cross), 8);
  expect(3, 2, WithCentre(2, all), 10);
  expect(3, 3, WithCentre(4, all), 12);
  // Products of a column and a row, by the distances from the centre.
  const auto product = [](std::vector<int32_t> weights) {
    return [=](int32_t right, int32_t up) {
      return weights.at(static_cast<size_t>(std::abs(right))) *
             weights.at(static_cast<size_t>(std::abs(up)));
    };
  };
  expect(3, 4, product({2, 1}), 16);
  expect(3, 5, product({4, 1}), 36);
  expect(5, 0, product({4, 2, 1}), 100);
  // One eighth of the matrix; the rest mirrors it.
  expect(
      7, 0,
      [](int32_t right, int32_t up) {
        static constexpr int32_t EIGHTH[4][4] = {{16}, {8, 4}, {4, 2, 2}, {2, 2, 1, 1}};
        const int32_t far = RingOf(right, up);
        return EIGHTH[far][std::min(std::abs(right), std::abs(up))];
      },
      140);
}

TEST(StandardMatrices, AreDistinctRecordsWithTheirOwnCoefficients) {
  std::set<const ConvolutionMatrix*> records;
  std::set<const float*> coefficients;
  for (int32_t family = 0; family < 4; family++) {
    for (const int32_t side : SIDES) {
      for (int32_t index = 0; index < 40; index++) {
        const ConvolutionMatrix* matrix = ZEL_GetConvolutionMatrix(family, side, index);
        records.insert(matrix);
        coefficients.insert(matrix->coefficients);
      }
    }
  }
  EXPECT_EQ(records.size(), 88u);
  EXPECT_EQ(coefficients.size(), 88u);
}

TEST(StandardMatrices, AreCountedByFamilyAndSize) {
  constexpr int32_t COUNTS[4][3] = {{32, 16, 8}, {8, 2, 2}, {8, 2, 2}, {6, 1, 1}};
  for (int32_t family = 0; family < 4; family++) {
    for (size_t size = 0; size < 3; size++) {
      std::set<const ConvolutionMatrix*> records;
      for (int32_t index = 0; index < 100; index++) {
        records.insert(ZEL_GetConvolutionMatrix(family, SIDES[size], index));
      }
      EXPECT_EQ(records.size(), static_cast<size_t>(COUNTS[family][size]));
    }
  }
}

TEST(StandardMatrices, AreFoundByLimitedNumbers) {
  const auto get = ZEL_GetConvolutionMatrix;
  EXPECT_EQ(get(7, 3, 100), get(CONVOLUTION_GAUSSIAN, 3, 5));
  EXPECT_EQ(get(-1, 3, -1), get(CONVOLUTION_GRADIENT, 3, 0));
  EXPECT_EQ(get(INT32_MIN, INT32_MIN, INT32_MIN), get(0, 3, 0));
  EXPECT_EQ(get(INT32_MAX, INT32_MAX, INT32_MAX), get(3, 7, 0));
  EXPECT_EQ(get(0, 4, 3), get(0, 3, 3));
  EXPECT_EQ(get(0, 0, 3), get(0, 3, 3));
  EXPECT_EQ(get(0, 6, 3), get(0, 5, 3));
  EXPECT_EQ(get(0, 8, 3), get(0, 7, 3));
  EXPECT_EQ(get(0, 3, 32), get(0, 3, 31));
}

TEST(StandardMatrices, StayAsACallerChangedThem) {
  ConvolutionMatrix* matrix = ZEL_GetConvolutionMatrix(CONVOLUTION_SMOOTHING, 3, 0);
  matrix->divider = 7;
  matrix->coefficients[0] = 3;
  EXPECT_EQ(ZEL_GetConvolutionMatrix(CONVOLUTION_SMOOTHING, 3, 0)->divider, 7.0f);
  EXPECT_EQ(ZEL_GetConvolutionMatrix(CONVOLUTION_SMOOTHING, 3, 0)->coefficients[0], 3.0f);
  matrix->divider = 4;
  matrix->coefficients[0] = 0;
}

}  // namespace
