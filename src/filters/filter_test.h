// What the tests of filters share: expected images made pixel by pixel from a rule, and the calls
// that every filter must bear.
#pragma once

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <vector>

#include "core/images.h"
#include "tests/support/pixels.h"
#include "tests/support/refused_memory.h"
#include "tests/support/walks.h"

namespace test {

constexpr ImageRef UNKNOWN_IMAGE = 0x7FFFFFFF;
constexpr int32_t SCALAR_TYPES[] = {IMAGE_U8, IMAGE_I16, IMAGE_SGL};

// The pixels of an image and of its border, once that is filled as filters fill it.
class Mirrored {
 public:
  explicit Mirrored(const TestImage& image) {
    const TestImage mirrored = CloneOf(image);
    const ImageInfo info = mirrored.Info();
    EXPECT_EQ(zel::BorderMirror(mirrored),
              info.border > 0 ? zel::STATUS_OK : zel::STATUS_NO_BORDER);
    type_ = info.type;
    border_ = info.border;
    width_ = info.width == 0 ? 0 : info.width + 2 * border_;
    const int32_t height = info.height == 0 ? 0 : info.height + 2 * border_;
    for (int32_t y = 0; y < height; y++) {
      for (int32_t x = 0; x < width_; x++) {
        pixels_.push_back(PixelOf(mirrored, x - border_, y - border_));
      }
    }
  }
  int32_t type() const { return type_; }
  double operator()(int32_t x, int32_t y) const {
    return pixels_.at(static_cast<size_t>(y + border_) * static_cast<size_t>(width_) +
                      static_cast<size_t>(x + border_));
  }

 private:
  int32_t type_, border_, width_;
  std::vector<double> pixels_;
};

// rule(pixels with the border filled, x, y) for the selected pixels; the source's for the others.
template <class Rule>
TestImage Filtered(const TestImage& source, const TestImage* mask, Rule rule) {
  const Mirrored pixels(source);
  const ImageInfo info = source.Info();
  TestImage result(info.type, info.width, info.height);
  for (int32_t y = 0; y < info.height; y++) {
    for (int32_t x = 0; x < info.width; x++) {
      SetPixel(result, x, y, Selects(mask, x, y) ? rule(pixels, x, y) : pixels(x, y));
    }
  }
  return result;
}

// Calls filter(source, mask, destination) with its images in every relation to each other. All of
// the calls must succeed and give what the rule gives.
template <class Filter, class Rule>
void ExpectFiltered(const TestImage& source, Filter filter, Rule rule) {
  const ImageInfo info = source.Info();
  const auto maskOf = [&] {
    return SparseMask(info.width * 2 / 3 + 2, info.height / 2 + 3, info.width / 4 - 1, -2, 5);
  };
  const TestImage firstMask = maskOf();
  for (const TestImage* mask : {static_cast<const TestImage*>(nullptr), &firstMask}) {
    const TestImage expected = Filtered(source, mask, rule);
    const ImageRef over = mask ? ImageRef{*mask} : 0;
    TestImage destination(info.type, 3, 2, 2, 8);
    {
      const TestImage from = CloneOf(source);
      ASSERT_EQ(filter(from, over, destination), 0);
      ASSERT_EQ(PixelDifference(destination, expected), "") << "beside the source";
    }
    for (const bool byReference : {false, true}) {
      const TestImage from = CloneOf(source);
      const ImageRef noMask = byReference ? ImageRef{from} : 0;
      const ImageRef to = byReference ? ImageRef{from} : 0;
      ASSERT_EQ(filter(from, mask ? over : noMask, to), 0);
      ASSERT_EQ(PixelDifference(from, expected), "") << "in place of the source";
    }
  }
  if (info.type != IMAGE_U8) return;
  const TestImage mask = maskOf();
  ASSERT_EQ(filter(source, mask, mask), 0);
  ASSERT_EQ(PixelDifference(mask, Filtered(source, &firstMask, rule)), "")
      << "in place of the mask";
}

template <class Filter, class Rule>
void ExpectTheSameForAnyWorkers(Filter filter, Rule rule) {
  for (const int32_t type : SCALAR_TYPES) {
    const TestImage source(type, 200, 160, 3, 3);
    const TestImage mask = SparseMask(150, 100, 30, -20, 7);
    for (const TestImage* over : {static_cast<const TestImage*>(nullptr), &mask}) {
      const TestImage expected = Filtered(source, over, rule);
      for (const int32_t workers : {1, 2, 3, 8}) {
        const Workers forced(workers);
        TestImage destination(type, 1, 1);
        ASSERT_EQ(filter(source, over ? ImageRef{*over} : 0, destination), 0);
        ASSERT_EQ(destination.Pixels(), expected.Pixels()) << workers << " workers, type " << type;
      }
    }
  }
}

// A filter of a window needs half of its larger side, rounded down, as border. call(width, height)
// is the filter.
template <class Call>
void ExpectTheBorderOfTheLargerSide(Call call) {
  const TestImage source(IMAGE_U8, 9, 9, 2, 3);
  TestImage destination(IMAGE_U8, 1, 1);
  EXPECT_EQ(call(5, 1)(source, 0, destination), 0);
  EXPECT_EQ(call(1, 5)(source, 0, destination), 0);
  EXPECT_EQ(call(4, 4)(source, 0, destination), 0);
  EXPECT_EQ(call(6, 1)(source, 0, destination), -309);
  EXPECT_EQ(call(1, 7)(source, 0, destination), -309);
  EXPECT_EQ(call(-1, 7)(source, 0, destination), -309);
  EXPECT_EQ(call(-1, 5)(source, 0, destination), 0);
  EXPECT_EQ(call(INT32_MAX, INT32_MAX)(source, 0, destination), -309);
  const TestImage narrow(IMAGE_U8, 9, 9, 1, 3);
  EXPECT_EQ(call(4, 1)(narrow, 0, destination), -309);
}

// What every filter refuses, in the order of the tests, with a source that needs a border of 1.
template <class Filter>
void ExpectRefusals(Filter filter) {
  const TestImage source(IMAGE_U8, 9, 5, 1, 4);
  const TestImage words(IMAGE_I16, 9, 5, 1, 4);
  const TestImage bare(IMAGE_I16, 9, 5, 0, 4);
  const TestImage destination(IMAGE_U8, 4, 4, 1, 5);
  const auto before = destination.Block();
  EXPECT_EQ(filter(UNKNOWN_IMAGE, 0, destination), -200);
  EXPECT_EQ(filter(0, 0, destination), -200);
  for (const int32_t type : {IMAGE_COMPLEX, IMAGE_RGB, IMAGE_OPAQUE}) {
    const int32_t size = type == IMAGE_OPAQUE ? 0 : 9;
    const TestImage other(type, size, size, 0, 4);
    EXPECT_EQ(filter(other, UNKNOWN_IMAGE, UNKNOWN_IMAGE), -301) << type;
    EXPECT_EQ(filter(source, other, destination), -301) << type;
    EXPECT_EQ(filter(source, 0, other), -304) << type;
  }
  EXPECT_EQ(filter(bare, UNKNOWN_IMAGE, UNKNOWN_IMAGE), -309);
  EXPECT_EQ(filter(source, words, UNKNOWN_IMAGE), -200);
  EXPECT_EQ(filter(source, words, words), -304);
  EXPECT_EQ(filter(source, UNKNOWN_IMAGE, destination), -200);
  EXPECT_EQ(filter(source, words, destination), -301);
  EXPECT_EQ(destination.Block(), before);
}

// With one allocation refused after the other, into a new destination and in place of the source. A
// call that succeeds all the same gives what it gives with memory.
template <class Filter>
void ExpectMemoryRefusals(int32_t type, Filter filter) {
  TestImage source;
  TestImage destination;
  const TestImage mask = SparseMask(20, 20, 2, 3, 7);
  const auto prepare = [&] {
    source = TestImage(type, 40, 30, 8, 3);
    destination = TestImage(type, 0, 0, 0, 3);
  };
  for (const ImageRef over : {ImageRef{0}, ImageRef{mask}}) {
    prepare();
    const TestImage expected(type, 0, 0);
    ASSERT_EQ(filter(source, over, expected), 0);
    for (const bool inPlace : {false, true}) {
      RefuseEachAllocation(prepare, [&] {
        const int32_t result = filter(source, over, inPlace ? 0 : ImageRef{destination});
        const TestImage& written = inPlace ? source : destination;
        EXPECT_TRUE(result != 0 || PixelDifference(written, expected).empty());
        return result;
      });
    }
  }
}

}  // namespace test
