// What the tests of shapes share: binary scenes, structuring elements, and erosion as it is stated.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <string>
#include <vector>

#include "core/images.h"
#include "harness/test_image.h"
#include "tests/support/refused_memory.h"

namespace test::shape {

constexpr ImageRef UNKNOWN_IMAGE = 0x7FFFFFFF;

// 10, 30, 50 and 90 percent of the pixels at random; some disks; everything; nothing.
constexpr int32_t SCENES = 7;

inline bool IsInBlob(int32_t x, int32_t y, int32_t width, int32_t height, uint64_t seed) {
  Random random(seed);
  for (int32_t i = 0; i < 6; i++) {
    const int32_t centreX = random.Between(0, std::max(width, 1));
    const int32_t centreY = random.Between(0, std::max(height, 1));
    const int32_t outer = random.Between(1, std::max(width, height) / 4 + 2);
    const int32_t inner = random.Between(-3, outer / 2);
    const int32_t square = (x - centreX) * (x - centreX) + (y - centreY) * (y - centreY);
    if (square <= outer * outer && (inner <= 0 || square > inner * inner)) return true;
  }
  return false;
}

// A U8 image of a scene. Set pixels have any value from 1 to `highest`, and the border is rubbish.
inline TestImage SceneImage(int32_t scene, int32_t width, int32_t height, int32_t border,
                            uint64_t seed, int32_t highest = 255) {
  TestImage image(IMAGE_U8, width, height, border, seed + 11);
  Random random(seed);
  constexpr int32_t percents[SCENES] = {10, 30, 50, 90, 0, 100, 0};
  for (int32_t y = 0; y < height; y++) {
    for (int32_t x = 0; x < width; x++) {
      const bool set = scene == 4 ? IsInBlob(x, y, width, height, seed)
                                  : random.Between(0, 99) < percents[scene];
      image.Set<uint8_t>(x, y, static_cast<uint8_t>(set ? random.Between(1, highest) : 0));
    }
  }
  return image;
}

// Every width from 0 to 40 at heights around those of words and vectors, with scenes and seeds by
// turns.
template <class Check>
void ForAllSizes(Check check) {
  uint64_t seed = 1;
  for (const int32_t height : {0, 1, 2, 3, 4, 5, 7, 8, 9, 15, 16, 17, 24, 31, 33, 40}) {
    for (int32_t width = 0; width <= 40; width++, seed++) {
      if ((width == 0) != (height == 0)) continue;  // no image has that
      SCOPED_TRACE(std::to_string(width) + " x " + std::to_string(height) + ", seed " +
                   std::to_string(seed));
      check(width, height, static_cast<int32_t>(seed % SCENES), seed);
      if (testing::Test::HasFatalFailure()) return;
    }
  }
}

// Some larger ones, around the words of 64 pixels, in every scene.
template <class Check>
void ForLargerSizes(Check check) {
  uint64_t seed = 1;
  for (const int32_t width : {63, 64, 65, 127, 128, 129, 200, 333}) {
    for (int32_t scene = 0; scene < SCENES; scene++, seed++) {
      SCOPED_TRACE("width " + std::to_string(width) + ", scene " + std::to_string(scene));
      check(width, 20 + static_cast<int32_t>(seed % 50), scene, seed);
      if (testing::Test::HasFatalFailure()) return;
    }
  }
}

// Bytes with a size: what references compute on.
struct Bytes {
  int32_t width = 0;
  int32_t height = 0;
  std::vector<uint8_t> pixels;

  Bytes(int32_t w, int32_t h)
      : width(w), height(h), pixels(static_cast<size_t>(w) * static_cast<size_t>(h)) {}
  explicit Bytes(const TestImage& image) : Bytes(image.width(), image.height()) {
    pixels = image.Pixels();
  }

  uint8_t& operator()(int32_t x, int32_t y) {
    return pixels.at(static_cast<size_t>(y) * static_cast<size_t>(width) + static_cast<size_t>(x));
  }
  uint8_t operator()(int32_t x, int32_t y) const {
    return pixels.at(static_cast<size_t>(y) * static_cast<size_t>(width) + static_cast<size_t>(x));
  }
  // The nearest pixel of the image.
  uint8_t Nearest(int32_t x, int32_t y) const {
    return (*this)(std::clamp(x, 0, width - 1), std::clamp(y, 0, height - 1));
  }
  // 0 beyond the image.
  uint8_t OrZero(int32_t x, int32_t y) const {
    return x < 0 || y < 0 || x >= width || y >= height ? uint8_t{0} : (*this)(x, y);
  }
};

inline void ExpectPixels(const TestImage& image, const Bytes& expected) {
  const ImageInfo info = image.Info();
  ASSERT_EQ(info.width, expected.width);
  ASSERT_EQ(info.height, expected.height);
  for (int32_t y = 0; y < info.height; y++) {
    for (int32_t x = 0; x < info.width; x++) {
      ASSERT_EQ(static_cast<int32_t>(image.Get<uint8_t>(x, y)),
                static_cast<int32_t>(expected(x, y)))
          << "at " << x << ", " << y;
    }
  }
}

struct Labelling {
  std::vector<int32_t> numbers;  // of each pixel, 0 where it is clear
  int32_t count = 0;
};

// Numbers particles in raster order of their first pixels, by a flood from each of those.
inline Labelling FloodFill(const Bytes& picture, bool eight) {
  Labelling labels{std::vector<int32_t>(picture.pixels.size()), 0};
  std::vector<std::pair<int32_t, int32_t>> waiting;
  for (int32_t y = 0; y < picture.height; y++) {
    for (int32_t x = 0; x < picture.width; x++) {
      if (labels.numbers[static_cast<size_t>(y * picture.width + x)] == 0 && picture(x, y) != 0) {
        labels.count++;
        waiting.emplace_back(x, y);
      }
      while (!waiting.empty()) {
        const auto [column, row] = waiting.back();
        waiting.pop_back();
        if (picture.OrZero(column, row) == 0) continue;
        int32_t& number = labels.numbers[static_cast<size_t>(row * picture.width + column)];
        if (number != 0) continue;
        number = labels.count;
        for (int32_t i = 0; i < 9; i++) {
          if (eight || i % 2 == 1) waiting.emplace_back(column + i % 3 - 1, row + i / 3 - 1);
        }
      }
    }
  }
  return labels;
}

// A structuring element that owns its numbers.
struct Element {
  std::vector<int32_t> numbers;
  StructuringElement record;

  Element(int32_t width, int32_t height, std::vector<int32_t> members, int32_t hexagonal = 0)
      : numbers(std::move(members)), record{width, height, numbers.data(), hexagonal} {}
  Element(const Element&) = delete;
  Element& operator=(const Element&) = delete;
  Element(Element&& other) noexcept
      : Element(other.record.width, other.record.height, std::move(other.numbers),
                other.record.hexagonal) {}
  operator const StructuringElement*() const { return &record; }  // NOLINT: as calls take it
};

inline Element FullElement(int32_t width, int32_t height, int32_t hexagonal = 0) {
  const size_t positions = static_cast<size_t>(width) * static_cast<size_t>(height);
  return {width, height, std::vector<int32_t>(positions, 7), hexagonal};
}

inline Element RandomElement(int32_t width, int32_t height, int32_t percent, uint64_t seed,
                             int32_t hexagonal = 0) {
  Random random(seed);
  std::vector<int32_t> members(static_cast<size_t>(width) * static_cast<size_t>(height));
  for (int32_t& member : members) {
    member = random.Between(0, 99) < percent ? random.Between(-2, -1) : 0;
  }
  return {width, height, std::move(members), hexagonal};
}

// Elements of many shapes, in turn.
inline Element ElementOfTurn(uint64_t turn) {
  const int32_t hexagonal = turn / 8 % 3 == 2 ? 1 : 0;
  switch (turn % 8) {
    case 0:
      return FullElement(3, 3, hexagonal);
    case 1:
      return RandomElement(3, 3, 60, turn, hexagonal);
    case 2:
      return FullElement(5, 5, hexagonal);
    case 3:
      return FullElement(7, 3, hexagonal);
    case 4:
      return RandomElement(5, 7, 50, turn, hexagonal);
    case 5:
      return FullElement(2, 2, hexagonal);
    case 6:
      return FullElement(1, 9, hexagonal);
    default:
      return RandomElement(6, 4, 70, turn, hexagonal);
  }
}
constexpr int32_t ELEMENT_BORDER = 4;  // that all of these need

inline int32_t MembersOf(const StructuringElement& element) {
  return static_cast<int32_t>(std::count_if(element.elements,
                                            element.elements + element.width * element.height,
                                            [](int32_t number) { return number != 0; }));
}

// ---- lines

struct Point {
  int32_t x, y;
};

// The pixels of a line: along the longer axis one by one (along x where both are equal), across it
// the nearest, and the farther one of two.
inline std::vector<Point> LineOf(Point a, Point b) {
  const int32_t width = std::abs(b.x - a.x);
  const int32_t height = std::abs(b.y - a.y);
  const int32_t longer = std::max(width, height);
  const int32_t shorter = std::min(width, height);
  const int32_t signX = b.x < a.x ? -1 : 1;
  const int32_t signY = b.y < a.y ? -1 : 1;
  std::vector<Point> line;
  for (int32_t i = 0; i <= longer; i++) {
    const int32_t across = longer == 0 ? 0 : (2 * shorter * i + longer) / (2 * longer);
    line.push_back(width >= height ? Point{a.x + signX * i, a.y + signY * across}
                                   : Point{a.x + signX * across, a.y + signY * i});
  }
  return line;
}

// ---- erosion as it is stated

// 3x3: a pattern number of the pixels around one, column by column, against that of the element.
inline Bytes ErodedByTable(const Bytes& from, const StructuringElement& element) {
  uint32_t pattern = 0;
  for (int32_t column = 0; column < 3; column++) {
    for (int32_t row = 0; row < 3; row++) {
      pattern = pattern * 2 + (element.elements[row * 3 + column] != 0 ? 1 : 0);
    }
  }
  Bytes to(from.width, from.height);
  for (int32_t y = 0; y < from.height; y++) {
    uint32_t used = 511;
    uint32_t members = pattern;
    if ((element.hexagonal & 0xFFFF) != 0) {
      used = y % 2 == 0 ? 511u - 1 - 4 : 511u - 64 - 256;
      if (y % 2 != 0) members = ((pattern & 0x168) >> 3) | (pattern & 146);
    }
    for (int32_t x = 0; x < from.width; x++) {
      uint32_t index = 0;
      for (int32_t column = -1; column <= 1; column++) {
        for (int32_t row = -1; row <= 1; row++) {
          index = index * 2 + (from.Nearest(x + column, y + row) != 0 ? 1 : 0);
        }
      }
      to(x, y) = (index & members & used) == (members & used) ? 1 : 0;
    }
  }
  return to;
}

// Other sizes: 0 where a member's pixel is 0, else the pixel itself.
inline Bytes ErodedByWindow(const Bytes& from, const StructuringElement& element) {
  const int32_t width = element.width;
  const int32_t height = element.height;
  const bool hexagonal = (element.hexagonal & 0xFFFF) != 0;
  int32_t rows = (height - 1) / 2;
  if (hexagonal && rows > width) rows = (width + 1) / 2;
  Bytes to = from;
  for (int32_t y = 0; y < from.height; y++) {
    for (int32_t x = 0; x < from.width; x++) {
      for (int32_t r = -rows; r <= rows; r++) {
        const int32_t q = (width - 1) / 2;
        const int32_t half = q - std::abs(r) / 2;
        const int32_t first = hexagonal ? -half : -(width / 2);
        const int32_t last = hexagonal ? half - std::abs(r) % 2 : width - 1 - width / 2;
        const int32_t middle = hexagonal ? q : width / 2;
        const int32_t moved = hexagonal && r % 2 != 0 && y % 2 != 0 ? 1 : 0;
        for (int32_t c = first; c <= last; c++) {
          const bool member = element.elements[(r + (height - 1) / 2) * width + c + middle] != 0;
          if (member && from.Nearest(x + c + moved, y + r) == 0) to(x, y) = 0;
        }
      }
    }
  }
  return to;
}

inline Bytes Eroded(const Bytes& from, const StructuringElement& element) {
  const bool isSmall = element.width == 3 && element.height == 3;
  return isSmall ? ErodedByTable(from, element) : ErodedByWindow(from, element);
}

// ---- calls

// Calls function(source, destination) with the images in every relation to each other, all of which
// must give the expected pixels.
template <class Function>
void ExpectInEveryPlace(const TestImage& source, int32_t border, const Bytes& expected,
                        Function function) {
  const auto clone = [&] {
    TestImage copy(IMAGE_U8, source.width(), source.height(), border);
    EXPECT_EQ(zel::ImageCopyPixels(source, copy), zel::STATUS_OK);
    return copy;
  };
  {
    const TestImage from = clone();
    const TestImage destination(IMAGE_U8, 5, 3, 1, 8);
    ASSERT_EQ(function(from, destination), 0);
    ExpectPixels(destination, expected);
    ASSERT_EQ(from.Pixels(), source.Pixels()) << "the source is changed";
  }
  for (const bool byReference : {false, true}) {
    const TestImage from = clone();
    ASSERT_EQ(function(from, byReference ? ImageRef{from} : 0), 0);
    ExpectPixels(from, expected);
  }
}

}  // namespace test::shape
