#include <gtest/gtest.h>

#include <array>
#include <cstdlib>

#include "morphology/morphology_test.h"

namespace {

using test::CloneOf;
using test::EachPixel;
using test::Element;
using test::Noise;
using test::Picture;
using test::PixelDifference;
using test::TestImage;
using test::Workers;

// ---- a pass with an element of 3 x 3, as it is stated: tables of 512 entries

using Table = std::array<double, 512>;

// Bits column by column from the left, each from the top, the first one highest.
uint32_t PatternOf(const Element& element) {
  uint32_t pattern = 0;
  for (int32_t column = 0; column < 3; column++) {
    for (int32_t row = 0; row < 3; row++) {
      pattern = pattern << 1 | (element.IsMember(row, column) ? 1u : 0u);
    }
  }
  return pattern;
}

Table TableOf(int32_t operation, uint32_t pattern, uint32_t used) {
  Table table{};
  for (uint32_t i = 0; i < 512; i++) {
    const double centre = (i & 16) != 0 ? 1 : 0;
    const bool someSet = (i & pattern & used) != 0;
    const bool allSet = (i & pattern & used) == (pattern & used);
    const bool matches = (i & used) == (pattern & used);
    switch (operation) {
      case MORPHOLOGY_DILATE:
        table[i] = someSet || centre != 0 ? 1 : 0;
        break;
      case MORPHOLOGY_ERODE:
        table[i] = allSet ? 1 : 0;
        break;
      case MORPHOLOGY_OUTER_GRADIENT:
        table[i] = centre == 0 && someSet ? 1 : 0;
        break;
      case MORPHOLOGY_INNER_GRADIENT:
        table[i] = allSet ? 0 : centre;
        break;
      case MORPHOLOGY_HIT_MISS:
        table[i] = matches ? 1 : 0;
        break;
      case MORPHOLOGY_THICK:
        table[i] = matches ? 1 : centre;
        break;
      default:
        table[i] = matches ? 0 : centre;
    }
  }
  return table;
}

Picture TablePass(const Picture& picture, int32_t operation, const Element& element) {
  const uint32_t pattern = PatternOf(element);
  const uint32_t odd = ((pattern & 0x168) >> 3) | (pattern & 146);
  const Table even =
      element.hexagonal ? TableOf(operation, pattern, 511 & ~5u) : TableOf(operation, pattern, 511);
  const Table ofOdd = element.hexagonal ? TableOf(operation, odd, 511 & ~320u) : even;
  return EachPixel(picture, [&](int32_t x, int32_t y) {
    uint32_t index = 0;
    for (int32_t dx = -1; dx <= 1; dx++) {
      for (int32_t dy = -1; dy <= 1; dy++) {
        index = index << 1 | (picture(x + dx, y + dy) != 0 ? 1u : 0u);
      }
    }
    return (y % 2 == 0 ? even : ofOdd)[index];
  });
}

// ---- a pass with any other element

// visit(set or not, pixel) for all positions of the element around a pixel.
template <class Visit>
void EachPosition(const Picture& picture, const Element& element, int32_t x, int32_t y,
                  const Visit& visit) {
  const int32_t middleRow = (element.height - 1) / 2;
  int32_t reach = middleRow;
  if (element.hexagonal && reach > element.width) reach = (element.width + 1) / 2;
  for (int32_t row = -reach; row <= reach; row++) {
    const int32_t distance = std::abs(row);
    int32_t first = -(element.width / 2);
    int32_t last = element.width - 1 - element.width / 2;
    int32_t middleColumn = element.width / 2;
    int32_t moved = 0;
    if (element.hexagonal) {
      const int32_t half = (element.width - 1) / 2 - distance / 2;
      first = -half;
      last = distance % 2 == 0 ? half : half - 1;
      middleColumn = (element.width - 1) / 2;
      moved = distance % 2 != 0 && y % 2 != 0 ? 1 : 0;
    }
    for (int32_t column = first; column <= last; column++) {
      visit(element.IsMember(row + middleRow, column + middleColumn),
            picture(x + column + moved, y + row));
    }
  }
}

Picture GeneralPass(const Picture& picture, int32_t operation, const Element& element) {
  return EachPixel(picture, [&](int32_t x, int32_t y) -> double {
    const double s = picture(x, y);
    bool someSet = false;
    bool someClear = false;
    bool differs = false;
    EachPosition(picture, element, x, y, [&](bool isMember, double pixel) {
      if (isMember && pixel != 0) someSet = true;
      if (isMember && pixel == 0) someClear = true;
      if (isMember != (pixel != 0)) differs = true;
    });
    switch (operation) {
      case MORPHOLOGY_DILATE:
        return s != 0 ? s : someSet ? 1 : 0;
      case MORPHOLOGY_ERODE:
        return s == 0 || someClear ? 0 : s;
      case MORPHOLOGY_OUTER_GRADIENT:
        return s == 0 && someSet ? 1 : 0;
      case MORPHOLOGY_INNER_GRADIENT:
        return s != 0 && someClear ? 1 : 0;
      case MORPHOLOGY_HIT_MISS:
        return differs ? 0 : s;
      case MORPHOLOGY_THICK:
        return s != 0 ? s : differs ? 0 : 1;
      default:
        return s == 0 ? 0 : differs ? 1 : 0;
    }
  });
}

// ---- operations

Picture Pass(const Picture& picture, int32_t operation, const Element& element) {
  const bool isSmall = element.width == 3 && element.height == 3;
  return isSmall ? TablePass(picture, operation, element)
                 : GeneralPass(picture, operation, element);
}

Picture Morphology(const Picture& x, int32_t operation, const Element& element) {
  const test::Steps steps{
      [&](const Picture& picture) { return Pass(picture, MORPHOLOGY_DILATE, element); },
      [&](const Picture& picture) { return Pass(picture, MORPHOLOGY_ERODE, element); }};
  const auto bits = [](double value) { return static_cast<uint32_t>(value); };
  switch (operation) {
    case MORPHOLOGY_AUTO_MEDIAN: {
      const Picture first = steps.ClosedOpenedClosed(x);
      const Picture second = steps.OpenedClosedOpened(x);
      return EachPixel(x, [&](int32_t i, int32_t j) -> double {
        return (bits(x(i, j)) & bits(first(i, j))) | bits(second(i, j));
      });
    }
    case MORPHOLOGY_CLOSE:
      return steps.Close(x);
    case MORPHOLOGY_GRADIENT: {
      const Picture dilated = steps.dilate(x);
      const Picture eroded = steps.erode(x);
      return EachPixel(
          x, [&](int32_t i, int32_t j) { return std::max(dilated(i, j) - eroded(i, j), 0.0); });
    }
    case MORPHOLOGY_OPEN:
      return steps.Open(x);
    case MORPHOLOGY_PROPER_CLOSE: {
      const Picture second = steps.OpenedClosedOpened(x);
      return EachPixel(x, [&](int32_t i, int32_t j) -> double {
        return (bits(x(i, j)) | bits(second(i, j))) & 1;
      });
    }
    case MORPHOLOGY_PROPER_OPEN: {
      const Picture first = steps.ClosedOpenedClosed(x);
      return EachPixel(
          x, [&](int32_t i, int32_t j) -> double { return bits(x(i, j)) & bits(first(i, j)); });
    }
    default:
      return Pass(x, operation, element);
  }
}

void ExpectMorphology(const TestImage& source, int32_t operation, Element element) {
  SCOPED_TRACE("operation " + std::to_string(operation) + " with " + element.Name() + " on " +
               std::to_string(source.width()) + " x " + std::to_string(source.height()));
  const Picture expected = Morphology(Picture(source), operation, element);
  test::ExpectMorphology(ZEL_Morphology, source, operation, element.Record(), expected);
}

void ExpectAllOperations(const TestImage& source, const Element& element) {
  for (int32_t operation = 0; operation < test::OPERATIONS; operation++) {
    ExpectMorphology(source, operation, element);
    if (testing::Test::HasFatalFailure()) return;
  }
}

constexpr int32_t ELEMENTARY[] = {MORPHOLOGY_DILATE,
                                  MORPHOLOGY_ERODE,
                                  MORPHOLOGY_OUTER_GRADIENT,
                                  MORPHOLOGY_INNER_GRADIENT,
                                  MORPHOLOGY_HIT_MISS,
                                  MORPHOLOGY_THICK,
                                  MORPHOLOGY_THIN};

TEST(BinaryMorphology, GivesEveryOperationAtEverySize) {
  for (const auto& [width, height] : test::ODD_SIZES) {
    for (const bool hexagonal : {false, true}) {
      ExpectAllOperations(Noise(width, height, 1, 50, 3), Element(3, 3, hexagonal));
      ExpectAllOperations(Noise(width, height, 3, 70, 4), Element(5, 5, hexagonal));
      if (HasFatalFailure()) return;
    }
  }
}

TEST(BinaryMorphology, GivesPassesAtAllSmallSizes) {
  for (int32_t height = 0; height <= 40; height += height < 9 ? 1 : 5) {
    for (int32_t width = 0; width <= 40; width += height < 4 ? 1 : 3) {
      const TestImage image = Noise(width, height, 7, 60, static_cast<uint64_t>(width));
      for (const int32_t operation : {MORPHOLOGY_DILATE, MORPHOLOGY_ERODE, MORPHOLOGY_OPEN}) {
        ExpectMorphology(image, operation, Element(3, 3, false));
        ExpectMorphology(image, operation, Element(15, 13, false));
        if (HasFatalFailure()) return;
      }
    }
  }
}

TEST(BinaryMorphology, LooksAtEveryPatternOfSmallElements) {
  const TestImage image = Noise(70, 9, 1, 50, 9);
  for (uint32_t bits = 0; bits < 512; bits++) {
    for (const bool hexagonal : {false, true}) {
      for (const int32_t operation : ELEMENTARY) {
        ExpectMorphology(image, operation, Element::Small(bits, hexagonal));
        if (HasFatalFailure()) return;
      }
    }
  }
}

TEST(BinaryMorphology, BearsElementsOfEveryShape) {
  uint64_t seed = 1;
  for (int32_t height = 1; height <= 7; height++) {
    for (int32_t width = 1; width <= 7; width++) {
      for (const bool hexagonal : {false, true}) {
        for (const int32_t percent : {0, 20, 90, 100}) {
          if (width * height < 3) continue;
          const Element element = Element::Random(width, height, hexagonal, ++seed, percent);
          const TestImage image = Noise(37, 11, element.Border(), 100 - percent, seed);
          for (const int32_t operation : ELEMENTARY) {
            ExpectMorphology(image, operation, element);
            if (HasFatalFailure()) return;
          }
        }
      }
    }
  }
}

TEST(BinaryMorphology, BearsLargeElements) {
  const TestImage image = Noise(70, 50, 15, 97, 5);
  const TestImage sparse = Noise(70, 50, 15, 1, 6);
  for (const Element& element :
       {Element(31, 31, false), Element(15, 31, false), Element(31, 2, false),
        Element(1, 20, false), Element(8, 10, false), Element(9, 30, true), Element(31, 31, true),
        Element(3, 31, true), Element::Ring(9), Element::Ring(21), Element::Disk(11),
        Element::Disk(30), Element::Random(17, 17, false, 4), Element(12, 12, false, 0)}) {
    for (const int32_t operation : {MORPHOLOGY_DILATE, MORPHOLOGY_ERODE, MORPHOLOGY_THICK,
                                    MORPHOLOGY_HIT_MISS, MORPHOLOGY_OPEN}) {
      ExpectMorphology(image, operation, element);
      ExpectMorphology(sparse, operation, element);
      if (HasFatalFailure()) return;
    }
  }
}

// The rectangle of the members lies to one side of the pixel.
TEST(BinaryMorphology, BearsElementsWithMembersFarFromTheirMiddle) {
  const TestImage image = Noise(66, 40, 12, 90, 5);
  for (int32_t corner = 0; corner < 4; corner++) {
    for (const int32_t side : {2, 3, 10}) {
      Element element(25, 25, false, 0);
      for (int32_t y = 0; y < side; y++) {
        for (int32_t x = 0; x < side; x++) {
          element.At(corner < 2 ? y : 24 - y, corner % 2 == 0 ? x : 24 - x) = 1;
        }
      }
      for (const int32_t operation :
           {MORPHOLOGY_DILATE, MORPHOLOGY_ERODE, MORPHOLOGY_THIN, MORPHOLOGY_CLOSE}) {
        ExpectMorphology(image, operation, element);
        if (HasFatalFailure()) return;
      }
    }
  }
}

TEST(BinaryMorphology, BearsElementsLargerThanTheImage) {
  for (const auto& [width, height] : {std::pair{1, 1}, {3, 5}, {6, 2}}) {
    for (const bool hexagonal : {false, true}) {
      ExpectAllOperations(Noise(width, height, 20, 60, 5), Element(41, 39, hexagonal));
      ExpectAllOperations(Noise(width, height, 20, 60, 6), Element::Random(39, 40, hexagonal, 3));
      if (HasFatalFailure()) return;
    }
  }
}

TEST(BinaryMorphology, GivesEveryOperationOnEveryKindOfPicture) {
  for (const int32_t percent : {0, 10, 30, 50, 90, 100}) {
    const TestImage image = Noise(130, 20, 7, percent, 8);
    for (const Element& element : {Element(3, 3, false), Element(3, 3, true), Element(7, 7, false),
                                   Element::Small(0x0BA, false), Element::Disk(9)}) {
      ExpectAllOperations(image, element);
      if (HasFatalFailure()) return;
    }
  }
}

TEST(BinaryMorphology, IsTheSameForAnyNumberOfWorkers) {
  const TestImage image = Noise(70, 120, 15, 85, 8);
  for (const int32_t workers : {2, 7}) {
    const Workers forced(workers);
    for (const Element& element : {Element(3, 3, false), Element(3, 3, true),
                                   Element(13, 13, false), Element::Disk(7), Element(6, 6, true)}) {
      for (const int32_t operation :
           {MORPHOLOGY_DILATE, MORPHOLOGY_HIT_MISS, MORPHOLOGY_GRADIENT, MORPHOLOGY_AUTO_MEDIAN}) {
        ExpectMorphology(image, operation, element);
        if (HasFatalFailure()) return;
      }
    }
  }
}

TEST(BinaryMorphology, LimitsOperationNumbers) {
  const TestImage image = Noise(20, 20, 1, 50, 2);
  const Element element(3, 3, false);
  const auto result = [&](int32_t operation) {
    const TestImage copy = CloneOf(image);
    Element own = element;
    const StructuringElement record = own.Record();
    EXPECT_EQ(ZEL_Morphology(copy, 0, operation, &record), 0);
    return copy.Pixels();
  };
  for (const int32_t below : {-3, -1, INT32_MIN}) {
    EXPECT_EQ(result(below), result(MORPHOLOGY_AUTO_MEDIAN));
  }
  for (const int32_t above : {13, 15, INT32_MAX}) {
    EXPECT_EQ(result(above), result(MORPHOLOGY_THIN));
  }
}

TEST(BinaryMorphology, CopiesWithFewerThanThreePositions) {
  for (const auto& [width, height] :
       {std::pair{1, 2}, {2, 1}, {1, 1}, {0, 9}, {-4, -5}, {INT32_MIN, 3}}) {
    const TestImage image = Noise(20, 20, 4, 50, 2);
    const TestImage destination(IMAGE_U8, 1, 1);
    const StructuringElement element{width, height, nullptr, 0};
    const auto before = image.Block();
    EXPECT_EQ(ZEL_Morphology(image, destination, MORPHOLOGY_ERODE, &element), 0);
    EXPECT_EQ(PixelDifference(destination, image), "");
    EXPECT_EQ(image.Block(), before);
    EXPECT_EQ(ZEL_Morphology(image, 0, MORPHOLOGY_ERODE, &element), 0);
    EXPECT_EQ(PixelDifference(destination, image), "");
  }
}

TEST(BinaryMorphology, ReadsCopiesOfTheEdge) {
  const TestImage image = TestImage::FromRows({"###", "###", "###"}, 1, 1);
  EXPECT_EQ(ZEL_Morphology(image, 0, MORPHOLOGY_ERODE, ZEL_Get_MO_STD3X3Ptr()), 0);
  EXPECT_EQ(PixelDifference(image, TestImage::FromRows({"###", "###", "###"}, 1, 1)), "");
}

TEST(BinaryMorphology, FillsTheSourcesBorder) {
  const TestImage image = Noise(9, 7, 4, 50, 2);
  const TestImage destination(IMAGE_U8, 1, 1);
  EXPECT_EQ(ZEL_Morphology(image, destination, MORPHOLOGY_ERODE, ZEL_Get_MO_STD3X3Ptr()), 0);
  const Picture pixels(image);
  for (int32_t y = -4; y < 11; y++) {
    for (int32_t x = -4; x < 13; x++) EXPECT_EQ(image.Get<uint8_t>(x, y), pixels(x, y)) << x << y;
  }
}

TEST(BinaryMorphology, StoresOneOnlyWithSmallElements) {
  const TestImage image(IMAGE_U8, 20, 20, 2, 1);
  ASSERT_EQ(ZEL_FillImage(image, 0, 255, 0, 0, 0), 0);
  const TestImage small(IMAGE_U8, 1, 1);
  const TestImage large(IMAGE_U8, 1, 1);
  EXPECT_EQ(ZEL_Morphology(image, small, MORPHOLOGY_ERODE, ZEL_Get_MO_STD3X3Ptr()), 0);
  EXPECT_EQ(ZEL_Morphology(image, large, MORPHOLOGY_ERODE, ZEL_Get_MO_STD5X5Ptr()), 0);
  EXPECT_EQ(small.Get<uint8_t>(5, 5), 1);
  EXPECT_EQ(large.Get<uint8_t>(5, 5), 255);
}

TEST(BinaryMorphology, KeepsTheLowestBitInProperClosings) {
  const TestImage image = Noise(40, 40, 1, 50, 7);
  EXPECT_EQ(ZEL_Morphology(image, 0, MORPHOLOGY_PROPER_CLOSE, ZEL_Get_MO_STD3X3Ptr()), 0);
  for (const uint8_t pixel : image.Pixels()) EXPECT_LE(pixel, 1);
}

TEST(BinaryMorphology, HitsPixelsWithAllEightNeighboursSet) {
  const TestImage image = TestImage::FromRows({".....", ".###.", ".####", ".###.", "....."}, 1);
  EXPECT_EQ(ZEL_Morphology(image, 0, MORPHOLOGY_HIT_MISS, ZEL_Get_MO_STD3X3Ptr()), 0);
  const TestImage hit = TestImage::FromRows({".....", ".....", "..#..", ".....", "....."}, 1, 1);
  EXPECT_EQ(PixelDifference(image, hit), "");
}

TEST(BinaryMorphology, LooksAtSevenPixelsOfAHexagon) {
  Element element(3, 3, true);
  const StructuringElement record = element.Record();
  const auto dilated = [&](const std::vector<std::string>& rows) {
    TestImage image = TestImage::FromRows(rows, 1);
    EXPECT_EQ(ZEL_Morphology(image, 0, MORPHOLOGY_DILATE, &record), 0);
    return image;
  };
  EXPECT_EQ(
      PixelDifference(dilated({".....", ".....", "..#..", ".....", "....."}),
                      TestImage::FromRows({".....", ".##..", ".###.", ".##..", "....."}, 1, 1)),
      "");
  EXPECT_EQ(PixelDifference(dilated({".....", "..#..", ".....", "....."}),
                            TestImage::FromRows({"..##.", ".###.", "..##.", "....."}, 1, 1)),
            "");
}

TEST(BinaryMorphology, TakesCalibrationAndOffset) {
  const TestImage image = Noise(9, 7, 4, 50, 2);
  ASSERT_EQ(ZEL_SetImageOffset(image, 3, -4), 0);
  const TestImage destination(IMAGE_U8, 1, 1);
  EXPECT_EQ(ZEL_Morphology(image, destination, MORPHOLOGY_CLOSE, ZEL_Get_MO_STD3X3Ptr()), 0);
  EXPECT_EQ(destination.Info().offsetX, 3);
  EXPECT_EQ(destination.Info().offsetY, -4);
}

TEST(BinaryMorphology, RefusesWhatItCannotWorkWith) {
  test::ExpectRefusals(ZEL_Morphology,
                       {IMAGE_I16, IMAGE_SGL, IMAGE_COMPLEX, IMAGE_RGB, IMAGE_OPAQUE}, IMAGE_U8);
}

TEST(BinaryMorphology, AsksForHalfTheElementsLongerSide) {
  const TestImage image = Noise(20, 20, 2, 50, 2);
  for (const auto& [width, height, result] :
       {std::array{5, 5, 0}, {6, 6, 0}, {1, 6, 0}, {7, 1, -309}, {1, 7, -309}}) {
    Element element(width, height, false);
    const StructuringElement record = element.Record();
    EXPECT_EQ(ZEL_Morphology(image, 0, MORPHOLOGY_ERODE, &record), result) << width << height;
  }
  const StructuringElement unreadable{INT32_MAX, INT32_MAX, &ZEL_Get_MO_STD3X3Ptr()->elements[0],
                                      0};
  EXPECT_EQ(ZEL_Morphology(image, 0, MORPHOLOGY_ERODE, &unreadable), -309);
}

TEST(BinaryMorphology, BearsRefusedMemory) {
  for (const int32_t operation : {MORPHOLOGY_ERODE, MORPHOLOGY_AUTO_MEDIAN, MORPHOLOGY_THICK}) {
    test::ExpectMemoryRefusals(ZEL_Morphology, IMAGE_U8, operation, *ZEL_Get_MO_STD7X7Ptr());
    Element element = Element::Disk(9);
    test::ExpectMemoryRefusals(ZEL_Morphology, IMAGE_U8, operation, element.Record());
  }
}

}  // namespace
