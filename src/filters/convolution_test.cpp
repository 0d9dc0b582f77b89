#include "filters/convolution_test.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <string>
#include <vector>

namespace {

using test::CloneOf;
using test::ODD_SIZES;
using test::PixelDifference;
using test::PixelOf;
using test::Random;
using test::SCALAR_TYPES;
using test::SparseMask;
using test::TestImage;
using namespace test::convolution;

TEST(Convolute, OfAllTypesAndSizes) {
  uint64_t seed = 1;
  for (const int32_t type : SCALAR_TYPES) {
    for (const auto& [width, height] : ODD_SIZES) {
      const int32_t border = 1 + static_cast<int32_t>(seed % 3);
      const TestImage source(type, width, height, border, ++seed);
      if (std::min(width, height) < border && width != 0) continue;
      ExpectConvolvedAnywhere(source, RandomMatrix(3, 3, -9, 9, 1, seed), BORDER_FILL_MIRROR);
      ExpectConvolvedAnywhere(source, RandomMatrix(3, 3, -9, 9, 3, seed), BORDER_FILL_ZERO);
      if (HasFatalFailure()) return;
    }
  }
}

TEST(Convolute, ByMatricesOfAllShapesAndDividers) {
  uint64_t seed = 100;
  for (const int32_t type : SCALAR_TYPES) {
    for (const auto& [width, height] : SHAPES) {
      for (const float divider : {1.0f, 0.0f, 2.0f, 9.0f, 7.3f, -5.0f}) {
        Matrix matrix = RandomMatrix(width, height, -7, 9, divider, ++seed);
        const TestImage source(type, 77, 23, matrix.Border(), seed);
        for (const int32_t fill : {0, 1, 2}) {
          ExpectConvolved(source, matrix, fill);
          if (HasFatalFailure()) return;
        }
      }
    }
  }
}

TEST(Convolute, WithEveryRelationOfImagesAndMasks) {
  uint64_t seed = 300;
  for (const int32_t type : SCALAR_TYPES) {
    for (const auto& [width, height] : SHAPES) {
      const Matrix matrix = RandomMatrix(width, height, -2, 3, 6, ++seed);
      const TestImage source(type, 41, 19, matrix.Border() + static_cast<int32_t>(seed % 2), seed);
      ExpectConvolvedAnywhere(source, matrix, static_cast<int32_t>(seed % 3));
      if (HasFatalFailure()) return;
    }
  }
}

TEST(Convolute, FillsTheBorderAsItIsTold) {
  const Matrix matrix = RandomMatrix(5, 5, -9, 9, 1, 3);
  for (const int32_t type : SCALAR_TYPES) {
    for (const int32_t fill : {BORDER_FILL_MIRROR, BORDER_FILL_REPLICATE, BORDER_FILL_ZERO}) {
      const TestImage source(type, 21, 9, 3, 4);
      const TestImage filled = CloneOf(source);
      ASSERT_EQ(fill == BORDER_FILL_MIRROR      ? zel::BorderMirror(filled)
                : fill == BORDER_FILL_REPLICATE ? zel::BorderReplicate(filled)
                                                : zel::BorderZero(filled),
                0);
      ExpectConvolved(source, matrix, fill);
      EXPECT_EQ(source.Block(), filled.Block());
    }
    for (const int32_t other : {3, -1, INT32_MIN, INT32_MAX}) {
      const TestImage source(type, 21, 9, 2, 4);
      TestImage first(type, 1, 1);
      TestImage second(type, 1, 1);
      ASSERT_EQ(Call(matrix, BORDER_FILL_ZERO)(source, 0, first), 0);
      ASSERT_EQ(Call(matrix, other)(source, 0, second), 0);
      EXPECT_EQ(first.Pixels(), second.Pixels());
    }
  }
}

TEST(Convolute, ReadsTheBorderOfAnImageThatIsSmallerThanIt) {
  const Matrix matrix = RandomMatrix(7, 7, -2, 3, 6, 3);
  for (const int32_t type : SCALAR_TYPES) {
    for (const auto& [width, height] : {std::pair{1, 1}, {2, 9}, {9, 2}, {2, 2}, {1, 30}}) {
      const TestImage source(type, width, height, 3, 4);
      test::ExpectFiltered(source, Call(matrix, BORDER_FILL_MIRROR),
                           [&](const test::Mirrored& pixels, int32_t x, int32_t y) {
                             return Convolved(matrix, pixels, x, y, false);
                           });
      if (HasFatalFailure()) return;
    }
  }
}

TEST(Convolute, TakesWhatAnEvenSideNeedsBeyondTheBorder) {
  // Only the lower right coefficient counts: it lies a pixel beyond a border of 1.
  Matrix matrix = AllOf(4, 4, 0, 1);
  matrix.coefficients.back() = 1;
  for (const int32_t type : SCALAR_TYPES) {
    for (const int32_t fill : {0, 1, 2}) {
      for (const int32_t border : {1, 2, 5}) {
        ExpectConvolved(TestImage(type, 9, 6, border, 4), matrix, fill);
      }
    }
  }
}

TEST(Convolute, NeedsTheBorderOfItsLargerSide) {
  const TestImage source(IMAGE_U8, 9, 9, 2, 3);
  TestImage destination(IMAGE_U8, 1, 1);
  const auto call = [&](int32_t width, int32_t height) {
    return Call(AllOf(width, height, 1, 1), 0)(source, 0, destination);
  };
  EXPECT_EQ(call(5, 1), 0);
  EXPECT_EQ(call(1, 5), 0);
  EXPECT_EQ(call(6, 6), 0);
  EXPECT_EQ(call(7, 1), -309);
  EXPECT_EQ(call(1, 7), -309);
  float one = 1;
  ConvolutionMatrix huge{INT32_MAX, INT32_MAX, &one, 1};
  EXPECT_EQ(ZEL_Convolute(source, 0, destination, &huge, 0), -309);
}

TEST(Convolute, OfFewerThanThreeCoefficientsCopies) {
  for (const int32_t type : SCALAR_TYPES) {
    for (const auto& [width, height] :
         {std::pair{1, 2}, {2, 1}, {1, 1}, {0, 5}, {5, 0}, {-3, -3}, {INT32_MIN, INT32_MIN}}) {
      float coefficients[2] = {7, 9};
      ConvolutionMatrix record{width, height, coefficients, 0};
      const TestImage source(type, 9, 5, 2, 3);
      TestImage destination(type, 1, 1);
      ASSERT_EQ(ZEL_Convolute(source, 0, destination, &record, 0), 0);
      EXPECT_EQ(PixelDifference(destination, source), "");
      record.coefficients = nullptr;
      const TestImage before = CloneOf(source);
      ASSERT_EQ(ZEL_Convolute(source, 0, 0, &record, 0), 0);
      EXPECT_EQ(PixelDifference(source, before), "");
      EXPECT_EQ(record.divider, 0.0f);
    }
  }
  const TestImage bare(IMAGE_U8, 9, 5, 0, 3);
  ConvolutionMatrix record{1, 2, nullptr, 0};
  EXPECT_EQ(ZEL_Convolute(bare, 0, 0, &record, 0), 0);
}

// Products of columns and rows, and such with another centre: they are computed in two steps where
// that is faster.
TEST(Convolute, ByProductsOfColumnsAndRows) {
  uint64_t seed = 1300;
  Random random(7);
  for (const int32_t type : SCALAR_TYPES) {
    for (const auto& [width, height] : {std::pair{3, 3},
                                        {5, 5},
                                        {7, 7},
                                        {9, 9},
                                        {5, 7},
                                        {7, 5},
                                        {4, 6},
                                        {15, 15},
                                        {13, 3},
                                        {3, 13}}) {
      for (int32_t kind = 0; kind < 12; kind++) {
        const int32_t limit = kind % 3 == 0 ? 1 : kind % 3 == 1 ? 3 : 11;
        std::vector<int32_t> across, down;
        for (int32_t i = 0; i < width; i++)
          across.push_back(random.Between(kind < 6 ? 1 : -limit, limit));
        for (int32_t j = 0; j < height; j++)
          down.push_back(random.Between(kind < 6 ? 1 : -limit, limit));
        Matrix matrix{
            width, height, {}, kind % 2 == 0 ? 1.0f : static_cast<float>(random.Between(-9, 90))};
        for (int32_t j = 0; j < height; j++) {
          for (int32_t i = 0; i < width; i++) {
            matrix.coefficients.push_back(
                static_cast<float>(down[static_cast<size_t>(j)] * across[static_cast<size_t>(i)]));
          }
        }
        if (kind >= 9) {
          const int32_t centre = (height - 1) / 2 * width + (width - 1) / 2;
          matrix.coefficients[static_cast<size_t>(centre)] =
              static_cast<float>(random.Between(-100, 100));
        }
        for (const int32_t columns : {20, 64, 65, 130, 199}) {
          const TestImage source(type, columns, 21, matrix.Border(), ++seed);
          ExpectConvolved(source, matrix, static_cast<int32_t>(seed % 3));
          if (HasFatalFailure()) return;
        }
      }
    }
  }
}

TEST(Convolute, ByTheStandardMatrices) {
  for (int32_t family = 0; family < 4; family++) {
    for (const int32_t size : {3, 5, 7}) {
      const ConvolutionMatrix* last = ZEL_GetConvolutionMatrix(family, size, INT32_MAX);
      for (int32_t index = 0;; index++) {
        const ConvolutionMatrix* standard = ZEL_GetConvolutionMatrix(family, size, index);
        const Matrix matrix{standard->width, standard->height,
                            std::vector<float>(standard->coefficients,
                                               standard->coefficients +
                                                   ptrdiff_t{standard->width} * standard->height),
                            standard->divider};
        for (const int32_t type : SCALAR_TYPES) {
          ExpectConvolved(TestImage(type, 135, 12, 3, 6), matrix, 0);
          ExpectConvolvedAnywhere(TestImage(type, 71, 12, 3, 7), matrix, 1);
          if (HasFatalFailure()) return;
        }
        if (standard == last) break;
      }
    }
  }
}

TEST(Convolute, IsTheSameForAnyWorkers) {
  for (const Matrix& matrix : {RandomMatrix(3, 3, -2, 3, 4, 1), RandomMatrix(7, 7, -2, 3, 9, 2),
                               AllOf(5, 5, 1, 25), RandomMatrix(4, 4, -2, 3, 4, 2)}) {
    for (const int32_t type : SCALAR_TYPES) {
      const TestImage source(type, 200, 160, 3, 3);
      const TestImage mask = SparseMask(150, 100, 30, -20, 7);
      for (const ImageRef over : {ImageRef{0}, ImageRef{mask}}) {
        std::vector<uint8_t> first;
        for (const int32_t workers : {1, 2, 3, 8}) {
          const test::Workers forced(workers);
          TestImage destination(type, 1, 1);
          ASSERT_EQ(Call(matrix, 0)(source, over, destination), 0);
          if (first.empty()) first = destination.Pixels();
          ASSERT_EQ(destination.Pixels(), first) << workers << " workers, type " << type;
        }
      }
    }
  }
}

TEST(Convolute, RefusesWhatItCannotTake) {
  test::ExpectRefusals(Call(AllOf(3, 3, 1, 9), 0));
  const TestImage source(IMAGE_U8, 9, 5, 1, 4);
  const auto before = source.Block();
  EXPECT_EQ(ZEL_Convolute(source, 0, 0, nullptr, 0), -3009);
  EXPECT_EQ(ZEL_Convolute(0, 0, 0, nullptr, 0), -3009);
  ConvolutionMatrix record{3, 1, nullptr, 1};
  EXPECT_EQ(ZEL_Convolute(test::UNKNOWN_IMAGE, 0, 0, &record, 0), -3009);
  EXPECT_EQ(source.Block(), before);
}

TEST(Convolute, StaysWholeWhenMemoryIsRefused) {
  for (const int32_t type : SCALAR_TYPES) {
    test::ExpectMemoryRefusals(type, Call(AllOf(3, 3, 1, 9), 0));
    test::ExpectMemoryRefusals(type, Call(AllOf(7, 7, 1, 49), 0));
    test::ExpectMemoryRefusals(type, Call(RandomMatrix(17, 17, 1, 9, 3, 4), 0));
  }
}

TEST(Convolute, TakesCalibrationAndOffset) {
  const TestImage source(IMAGE_U8, 9, 5, 1, 4);
  ASSERT_EQ(ZEL_SetImageCalibration(source, 3, 0.5f, 0.25f), 0);
  ASSERT_EQ(ZEL_SetImageOffset(source, 7, -4), 0);
  TestImage destination(IMAGE_U8, 1, 1);
  ASSERT_EQ(Call(AllOf(3, 3, 1, 9), 0)(source, 0, destination), 0);
  const ImageInfo info = destination.Info();
  EXPECT_EQ(info.unit, 3);
  EXPECT_EQ(info.xStep, 0.5f);
  EXPECT_EQ(info.offsetX, 7);
  EXPECT_EQ(info.offsetY, -4);
}

}  // namespace
