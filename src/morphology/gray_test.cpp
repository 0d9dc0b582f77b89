#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstdlib>
#include <limits>

#include "morphology/morphology_test.h"

namespace {

using test::CloneOf;
using test::EachPixel;
using test::Element;
using test::Picture;
using test::PixelDifference;
using test::TestImage;
using test::Workers;

// The largest or smallest pixel of the members, as it is stated: floats that are no numbers are
// passed over, and the first of equal zeros stays.
Picture Pass(const Picture& picture, int32_t type, bool largest, const Element& element) {
  const double farthest = type == IMAGE_U8    ? 255
                          : type == IMAGE_I16 ? 32767
                                              : static_cast<double>(1e38f);
  const double nearest = type == IMAGE_U8    ? 0
                         : type == IMAGE_I16 ? -32768
                                             : static_cast<double>(-1e38f);
  const int32_t middleRow = (element.height - 1) / 2;
  const int32_t middleColumn = (element.width - 1) / 2;
  int32_t reach = middleRow;
  if (element.hexagonal && reach > element.width) reach = (element.width + 1) / 2;
  return EachPixel(picture, [&](int32_t x, int32_t y) {
    double extreme = largest ? nearest : farthest;
    for (int32_t row = -reach; row <= reach; row++) {
      const int32_t distance = std::abs(row);
      const bool isDrawnIn = element.hexagonal && distance % 2 != 0;
      const int32_t half = element.hexagonal ? middleColumn - distance / 2 : middleColumn;
      for (int32_t column = -half; column <= (isDrawnIn ? half - 1 : half); column++) {
        if (!element.IsMember(row + middleRow, column + middleColumn)) continue;
        const int32_t moved = isDrawnIn && y % 2 != 0 ? 1 : 0;
        const double pixel = picture(x + column + moved, y + row);
        if (largest ? pixel > extreme : pixel < extreme) extreme = pixel;
      }
    }
    return extreme;
  });
}

// The first stays where both are equal or one is no number.
double Larger(double a, double b) {
  return b > a ? b : a;
}
double Smaller(double a, double b) {
  return b < a ? b : a;
}

Picture Morphology(const Picture& x, int32_t type, int32_t operation, const Element& element) {
  const test::Steps steps{
      [&](const Picture& picture) { return Pass(picture, type, true, element); },
      [&](const Picture& picture) { return Pass(picture, type, false, element); }};
  switch (operation) {
    case MORPHOLOGY_AUTO_MEDIAN: {
      const Picture first = steps.ClosedOpenedClosed(x);
      const Picture second = steps.OpenedClosedOpened(x);
      return EachPixel(x, [&](int32_t i, int32_t j) {
        return Larger(Smaller(x(i, j), first(i, j)), second(i, j));
      });
    }
    case MORPHOLOGY_CLOSE:
      return steps.Close(x);
    case MORPHOLOGY_DILATE:
      return steps.dilate(x);
    case MORPHOLOGY_ERODE:
      return steps.erode(x);
    case MORPHOLOGY_PROPER_CLOSE: {
      const Picture second = steps.OpenedClosedOpened(x);
      return EachPixel(x, [&](int32_t i, int32_t j) { return Larger(x(i, j), second(i, j)); });
    }
    case MORPHOLOGY_PROPER_OPEN:
    case MORPHOLOGY_THICK:
    case MORPHOLOGY_THIN: {
      const Picture first = steps.ClosedOpenedClosed(x);
      return EachPixel(x, [&](int32_t i, int32_t j) { return Smaller(x(i, j), first(i, j)); });
    }
    default:
      return steps.Open(x);
  }
}

void ExpectMorphology(const TestImage& source, int32_t operation, Element element) {
  SCOPED_TRACE("operation " + std::to_string(operation) + " with " + element.Name() + " on type " +
               std::to_string(source.Info().type) + ", " + std::to_string(source.width()) + " x " +
               std::to_string(source.height()));
  const Picture expected = Morphology(Picture(source), source.Info().type, operation, element);
  test::ExpectMorphology(ZEL_GrayMorphology, source, operation, element.Record(), expected);
}

void ExpectAllOperations(const TestImage& source, const Element& element) {
  for (int32_t operation = 0; operation < test::OPERATIONS; operation++) {
    ExpectMorphology(source, operation, element);
    if (testing::Test::HasFatalFailure()) return;
  }
}

constexpr int32_t TYPES[] = {IMAGE_U8, IMAGE_I16, IMAGE_SGL};

TEST(GrayMorphology, GivesEveryOperationOnAllTypesAndSizes) {
  for (const int32_t type : TYPES) {
    for (const auto& [width, height] : test::ODD_SIZES) {
      for (const bool hexagonal : {false, true}) {
        ExpectAllOperations(TestImage(type, width, height, 1, 3), Element(3, 3, hexagonal));
        ExpectAllOperations(TestImage(type, width, height, 3, 4), Element(6, 5, hexagonal));
        if (HasFatalFailure()) return;
      }
    }
  }
}

TEST(GrayMorphology, BearsElementsOfEveryShape) {
  uint64_t seed = 1;
  for (int32_t height = 1; height <= 7; height++) {
    for (int32_t width = 1; width <= 7; width++) {
      for (const bool hexagonal : {false, true}) {
        const Element element = Element::Random(width, height, hexagonal, ++seed, 40);
        if (width * height < 3 || std::all_of(element.members.begin(), element.members.end(),
                                              [](int m) { return m == 0; })) {
          continue;
        }
        for (const int32_t type : TYPES) {
          const TestImage image(type, 70, 9, element.Border(), seed);
          for (const int32_t operation : {MORPHOLOGY_DILATE, MORPHOLOGY_ERODE, MORPHOLOGY_CLOSE}) {
            ExpectMorphology(image, operation, element);
            if (HasFatalFailure()) return;
          }
        }
      }
    }
  }
}

TEST(GrayMorphology, BearsLargeElements) {
  for (const int32_t type : TYPES) {
    const TestImage image(type, 70, 50, 15, 5);
    for (const Element& element :
         {Element(31, 31, false), Element(31, 2, false), Element(1, 20, false),
          Element(9, 30, true), Element(31, 31, true), Element::Ring(9), Element::Ring(21),
          Element::Disk(30), Element::Random(17, 17, false, 4, 10)}) {
      for (const int32_t operation : {MORPHOLOGY_DILATE, MORPHOLOGY_ERODE, MORPHOLOGY_CLOSE}) {
        ExpectMorphology(image, operation, element);
        if (HasFatalFailure()) return;
      }
    }
  }
}

TEST(GrayMorphology, BearsElementsLargerThanTheImage) {
  for (const int32_t type : TYPES) {
    for (const auto& [width, height] : {std::pair{1, 1}, {3, 5}, {6, 2}}) {
      ExpectAllOperations(TestImage(type, width, height, 20, 5), Element(41, 39, false));
      ExpectAllOperations(TestImage(type, width, height, 20, 6), Element::Random(39, 40, true, 3));
      if (HasFatalFailure()) return;
    }
  }
}

TEST(GrayMorphology, PassesOverWhatIsNoNumberAndKeepsSignsOfZeros) {
  constexpr float odd[] = {std::numeric_limits<float>::quiet_NaN(),
                           -std::numeric_limits<float>::quiet_NaN(),
                           std::numeric_limits<float>::infinity(),
                           -std::numeric_limits<float>::infinity(),
                           0.0f,
                           -0.0f,
                           0.0f,
                           -0.0f,
                           1.5e38f,
                           -1.5e38f,
                           1e38f,
                           -1e38f,
                           1e-40f,
                           -1.0f};
  test::Random random(5);
  for (const int32_t kinds : {14, 6}) {
    const TestImage image(IMAGE_SGL, 70, 24, 15, 5);
    for (int32_t y = 0; y < 24; y++) {
      for (int32_t x = 0; x < 70; x++) {
        const int32_t first = kinds == 6 ? 4 : 0;
        image.Set(x, y, odd[random.Between(first, kinds == 6 ? 7 : kinds - 1)]);
      }
    }
    for (const Element& element :
         {Element(3, 3, false), Element(5, 5, true), Element(15, 15, false), Element(1, 3, false),
          Element(4, 1, false), Element::Disk(11), Element::Ring(9), Element::Disk(20)}) {
      ExpectAllOperations(image, element);
      if (HasFatalFailure()) return;
    }
  }
}

TEST(GrayMorphology, GivesLimitsWhereNoMemberIsLookedAt) {
  Element corner(3, 3, true, 0);
  corner.At(0, 2) = 1;  // outside the hexagon
  for (const int32_t type : TYPES) {
    const TestImage image(type, 70, 5, 1, 5);
    ExpectMorphology(image, MORPHOLOGY_DILATE, corner);
    ExpectMorphology(image, MORPHOLOGY_ERODE, corner);
  }
}

TEST(GrayMorphology, IsTheSameForAnyNumberOfWorkers) {
  for (const int32_t workers : {2, 7}) {
    const Workers forced(workers);
    for (const int32_t type : TYPES) {
      const TestImage image(type, 70, 80, 15, 8);
      for (const Element& element :
           {Element(3, 3, false), Element(3, 3, true), Element(13, 13, false), Element::Disk(7)}) {
        for (const int32_t operation : {MORPHOLOGY_ERODE, MORPHOLOGY_AUTO_MEDIAN}) {
          ExpectMorphology(image, operation, element);
          if (HasFatalFailure()) return;
        }
      }
    }
  }
}

TEST(GrayMorphology, OpensWhereAnOperationHasNoMeaning) {
  const TestImage image(IMAGE_I16, 40, 20, 1, 2);
  const auto result = [&](int32_t operation) {
    const TestImage copy = CloneOf(image);
    EXPECT_EQ(ZEL_GrayMorphology(copy, 0, operation, ZEL_Get_MO_STD3X3Ptr()), 0);
    return copy.Pixels();
  };
  for (const int32_t operation : {MORPHOLOGY_GRADIENT, MORPHOLOGY_OUTER_GRADIENT,
                                  MORPHOLOGY_INNER_GRADIENT, MORPHOLOGY_HIT_MISS}) {
    EXPECT_EQ(result(operation), result(MORPHOLOGY_OPEN));
  }
  for (const int32_t operation : {int32_t{MORPHOLOGY_THICK}, int32_t{MORPHOLOGY_THIN}, 15}) {
    EXPECT_EQ(result(operation), result(MORPHOLOGY_PROPER_OPEN));
  }
  EXPECT_EQ(result(-3), result(MORPHOLOGY_AUTO_MEDIAN));
}

TEST(GrayMorphology, CopiesWithoutMembers) {
  for (const auto& [width, height] : {std::pair{1, 2}, {0, 9}, {5, 5}}) {
    const TestImage image(IMAGE_SGL, 20, 20, 4, 2);
    const TestImage destination(IMAGE_SGL, 1, 1);
    Element element(width, height, false, 0);
    const StructuringElement record = element.Record();
    const auto before = image.Block();
    EXPECT_EQ(ZEL_GrayMorphology(image, destination, MORPHOLOGY_ERODE, &record), 0);
    EXPECT_EQ(PixelDifference(destination, image), "");
    EXPECT_EQ(image.Block(), before);
  }
}

TEST(GrayMorphology, RefusesWhatItCannotWorkWith) {
  for (const int32_t type : TYPES) {
    test::ExpectRefusals(ZEL_GrayMorphology, {IMAGE_COMPLEX, IMAGE_RGB, IMAGE_OPAQUE}, type);
  }
}

TEST(GrayMorphology, BearsRefusedMemory) {
  for (const int32_t type : TYPES) {
    for (const int32_t operation : {MORPHOLOGY_ERODE, MORPHOLOGY_AUTO_MEDIAN}) {
      test::ExpectMemoryRefusals(ZEL_GrayMorphology, type, operation, *ZEL_Get_MO_STD7X7Ptr());
      Element element = Element::Disk(13);
      test::ExpectMemoryRefusals(ZEL_GrayMorphology, type, operation, element.Record());
    }
  }
}

}  // namespace
