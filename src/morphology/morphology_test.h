// What the tests of morphology share: elements, pictures, the operations as they are stated, pixel
// by pixel, and the calls that both exports must bear.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "harness/test_image.h"
#include "tests/support/refused_memory.h"
#include "tests/support/walks.h"

namespace test {

constexpr ImageRef UNKNOWN_IMAGE = 0x7FFFFFFF;

constexpr int32_t OPERATIONS = 13;

// An element that owns its numbers.
struct Element {
  int32_t width, height;
  bool hexagonal;
  std::vector<int32_t> members;

  Element(int32_t columns, int32_t rows, bool isHexagonal, int32_t value = 1)
      : width(columns),
        height(rows),
        hexagonal(isHexagonal),
        members(static_cast<size_t>(columns) * static_cast<size_t>(rows), value) {}

  static Element Random(int32_t columns, int32_t rows, bool isHexagonal, uint64_t seed,
                        int32_t percent = 50) {
    Element element(columns, rows, isHexagonal);
    test::Random random(seed);
    for (int32_t& member : element.members) {
      member = random.Between(0, 99) < percent ? random.Between(1, 3) - 2 : 0;
      if (member == 0 && random.Between(0, 99) < percent) member = 7;
    }
    return element;
  }
  // Members of 3 x 3 by the bits of a number, the first row lowest.
  static Element Small(uint32_t bits, bool isHexagonal) {
    Element element(3, 3, isHexagonal);
    for (size_t i = 0; i < 9; i++) element.members[i] = static_cast<int32_t>(bits >> i & 1);
    return element;
  }
  static Element Ring(int32_t side) {
    Element element(side, side, false);
    for (int32_t y = 1; y < side - 1; y++) {
      for (int32_t x = 1; x < side - 1; x++) element.At(y, x) = 0;
    }
    return element;
  }
  static Element Disk(int32_t side) {
    Element element(side, side, false);
    for (int32_t y = 0; y < side; y++) {
      for (int32_t x = 0; x < side; x++) {
        const int32_t dx = 2 * x + 1 - side;
        const int32_t dy = 2 * y + 1 - side;
        element.At(y, x) = dx * dx + dy * dy <= side * side ? 1 : 0;
      }
    }
    return element;
  }

  int32_t& At(int32_t row, int32_t column) {
    return members.at(static_cast<size_t>(row) * static_cast<size_t>(width) +
                      static_cast<size_t>(column));
  }
  bool IsMember(int32_t row, int32_t column) const {
    return const_cast<Element*>(this)->At(row, column) != 0;
  }
  int32_t Border() const { return (std::max(width, height) - 1) / 2; }
  StructuringElement Record() { return {width, height, members.data(), hexagonal ? 1 : 0}; }
  std::string Name() const {
    return std::to_string(width) + " x " + std::to_string(height) + (hexagonal ? " hexagonal" : "");
  }
};

// Pixels without a border; beyond them lie copies of the outermost ones.
struct Picture {
  int32_t width = 0, height = 0;
  std::vector<double> pixels;

  Picture(int32_t columns, int32_t rows)
      : width(columns),
        height(rows),
        pixels(static_cast<size_t>(columns) * static_cast<size_t>(rows)) {}
  explicit Picture(const TestImage& image) : Picture(image.width(), image.height()) {
    for (int32_t y = 0; y < height; y++) {
      for (int32_t x = 0; x < width; x++) At(x, y) = PixelOf(image, x, y);
    }
  }
  double& At(int32_t x, int32_t y) {
    return pixels.at(static_cast<size_t>(y) * static_cast<size_t>(width) + static_cast<size_t>(x));
  }
  double operator()(int32_t x, int32_t y) const {
    return const_cast<Picture*>(this)->At(std::clamp(x, 0, width - 1),
                                          std::clamp(y, 0, height - 1));
  }
  TestImage Image(int32_t type) const {
    TestImage image(type, width, height);
    for (int32_t y = 0; y < height; y++) {
      for (int32_t x = 0; x < width; x++) {
        const double value = (*this)(x, y);
        if (type == IMAGE_U8) image.Set(x, y, static_cast<uint8_t>(value));
        if (type == IMAGE_I16) image.Set(x, y, static_cast<int16_t>(value));
        if (type == IMAGE_SGL) image.Set(x, y, static_cast<float>(value));
      }
    }
    return image;
  }
};

// Each pixel by a rule that takes its place.
template <class Rule>
Picture EachPixel(const Picture& like, Rule rule) {
  Picture result(like.width, like.height);
  for (int32_t y = 0; y < like.height; y++) {
    for (int32_t x = 0; x < like.width; x++) result.At(x, y) = rule(x, y);
  }
  return result;
}

// Compound operations, made of a dilation and an erosion of pictures.
struct Steps {
  std::function<Picture(const Picture&)> dilate, erode;

  Picture Close(const Picture& x) const { return erode(dilate(x)); }
  Picture Open(const Picture& x) const { return dilate(erode(x)); }
  Picture ClosedOpenedClosed(const Picture& x) const { return Close(Open(Close(x))); }
  Picture OpenedClosedOpened(const Picture& x) const { return Open(Close(Open(x))); }
};

// Noise in which so many of a hundred pixels are not 0.
inline TestImage Noise(int32_t width, int32_t height, int32_t border, int32_t percent,
                       uint64_t seed) {
  TestImage image(IMAGE_U8, width, height, border, seed);
  Random random(seed);
  for (int32_t y = 0; y < height; y++) {
    for (int32_t x = 0; x < width; x++) {
      const bool isSet = random.Between(0, 99) < percent;
      image.Set(x, y, static_cast<uint8_t>(isSet ? random.Between(1, 255) : 0));
    }
  }
  return image;
}

using Export = int32_t (*)(ImageRef, ImageRef, int32_t, const StructuringElement*);

// The call must give the pixels beside the source and in its place, and change nothing else than
// the source's border.
inline void ExpectMorphology(Export call, const TestImage& source, int32_t operation,
                             const StructuringElement& element, const Picture& expected) {
  const ImageInfo info = source.Info();
  const TestImage result = expected.Image(info.type);
  {
    const TestImage from = CloneOf(source);
    const TestImage destination(info.type, 3, 2, 1, 8);
    ASSERT_EQ(call(from, destination, operation, &element), 0);
    ASSERT_EQ(PixelDifference(destination, result), "") << "beside the source";
    ASSERT_EQ(PixelDifference(from, source), "") << "the source";
  }
  {
    const TestImage from = CloneOf(source);
    const TestImage destination(info.type, info.width, info.height, 2, 8);
    const auto around = destination.Surroundings();
    ASSERT_EQ(call(from, destination, operation, &element), 0);
    ASSERT_EQ(destination.Surroundings(), around);
    ASSERT_EQ(PixelDifference(destination, result), "") << "beside the source";
  }
  for (const bool byReference : {false, true}) {
    const TestImage from = CloneOf(source);
    ASSERT_EQ(call(from, byReference ? ImageRef{from} : 0, operation, &element), 0);
    ASSERT_EQ(PixelDifference(from, result), "") << "in place of the source";
  }
}

// What both exports answer to arguments that they can't work with, in their order.
inline void ExpectRefusals(Export call, const std::vector<int32_t>& otherTypes, int32_t type) {
  const TestImage source(type, 9, 9, 1, 3);
  const TestImage bare(type, 9, 9, 0, 4);
  const TestImage destination(type, 4, 4, 1, 5);
  const TestImage other(type == IMAGE_U8 ? IMAGE_I16 : IMAGE_U8, 4, 4, 1, 6);
  const auto before = destination.Block();
  const auto sourceBefore = source.Block();
  StructuringElement* const element = ZEL_Get_MO_STD3X3Ptr();
  const StructuringElement unread{3, 3, nullptr, 0};
  EXPECT_EQ(call(UNKNOWN_IMAGE, UNKNOWN_IMAGE, 2, nullptr), -3009);
  EXPECT_EQ(call(UNKNOWN_IMAGE, UNKNOWN_IMAGE, 2, &unread), -3009);
  EXPECT_EQ(call(UNKNOWN_IMAGE, destination, 2, element), -200);
  EXPECT_EQ(call(0, destination, 2, element), -200);
  for (const int32_t wrong : otherTypes) {
    const TestImage image(wrong, wrong == IMAGE_OPAQUE ? 0 : 9, 9, 0, 4);
    EXPECT_EQ(call(image, UNKNOWN_IMAGE, 2, element), -301) << wrong;
  }
  EXPECT_EQ(call(bare, UNKNOWN_IMAGE, 2, element), -309);
  EXPECT_EQ(call(source, UNKNOWN_IMAGE, 2, element), -200);
  EXPECT_EQ(call(source, other, 2, element), -304);
  EXPECT_EQ(destination.Block(), before);
  EXPECT_EQ(source.Block(), sourceBefore);
}

// With one allocation refused after the other.
inline void ExpectMemoryRefusals(Export call, int32_t type, int32_t operation,
                                 StructuringElement element) {
  const TestImage original(type, 40, 30, 8, 3);
  TestImage source;
  TestImage destination;
  const auto prepare = [&] {
    source = CloneOf(original);
    destination = TestImage(type, 0, 0, 0, 3);
  };
  for (const bool inPlace : {false, true}) {
    RefuseEachAllocation(prepare, [&] {
      const int32_t result = call(source, inPlace ? 0 : ImageRef{destination}, operation, &element);
      if (result != 0) {
        EXPECT_EQ(PixelDifference(source, original), "");
      }
      return result;
    });
  }
}

}  // namespace test
