// What the tests of geometry share: the calls that every operation must bear.
#pragma once

#include <gtest/gtest.h>

#include <cstring>

#include "harness/test_image.h"
#include "tests/support/refused_memory.h"
#include "tests/support/walks.h"

namespace test {

constexpr ImageRef UNKNOWN_IMAGE = 0x7FFFFFFF;
constexpr int32_t MOVED_TYPES[] = {IMAGE_U8, IMAGE_I16, IMAGE_SGL, IMAGE_RGB};

inline uint8_t* BytesAt(const TestImage& image, int32_t x, int32_t y) {
  return image.At<uint8_t>(0, y) + int64_t{x} * image.Info().pixelBytes;
}

inline void CopyPixel(const TestImage& from, int32_t fromX, int32_t fromY, const TestImage& to,
                      int32_t x, int32_t y) {
  std::memcpy(BytesAt(to, x, y), BytesAt(from, fromX, fromY),
              static_cast<size_t>(from.Info().pixelBytes));
}

// Calls move(source, destination) beside the source and in place of it: the result must be the
// expected one, calibrated as the source is, and nothing around it may change.
template <class Move>
void ExpectMoved(const TestImage& source, const TestImage& expected, const Move& move) {
  const ImageInfo info = source.Info();
  ZEL_SetImageCalibration(source, 3, 0.5f, 0.25f);
  ZEL_SetImageOffset(source, -4, 7);
  const TestImage destination(info.type, expected.width(), expected.height(), 3, 8);
  const auto around = destination.Surroundings();
  const auto before = source.Block();
  ASSERT_EQ(move(source, destination), 0);
  ASSERT_EQ(PixelDifference(destination, expected), "") << "beside the source";
  EXPECT_EQ(destination.Surroundings(), around);
  EXPECT_EQ(source.Block(), before);
  const TestImage empty(info.type, 0, 0, 1, 8);
  ASSERT_EQ(move(source, empty), 0);
  ASSERT_EQ(PixelDifference(empty, expected), "") << "in an image of another size";
  for (const bool byReference : {false, true}) {
    const TestImage from = CloneOf(source);
    ASSERT_EQ(move(from, byReference ? ImageRef{from} : 0), 0);
    ASSERT_EQ(PixelDifference(from, expected), "") << "in place of the source";
    EXPECT_EQ(from.Info().border, info.border);
  }
  const ImageInfo result = destination.Info();
  EXPECT_EQ(result.unit, 3);
  EXPECT_EQ(result.xStep, 0.5f);
  EXPECT_EQ(result.yStep, 0.25f);
  EXPECT_EQ(result.offsetX, -4);
  EXPECT_EQ(result.offsetY, 7);
}

// The same for any number of workers.
template <class Move>
void ExpectMovedByWorkers(const TestImage& source, const TestImage& expected, const Move& move) {
  for (const int32_t workers : {1, 2, 3, 8}) {
    const Workers forced(workers);
    ExpectMoved(source, expected, move);
  }
}

// What operations on the moved types refuse, in the order of the tests.
template <class Move>
void ExpectMoveRefusals(const Move& move) {
  const TestImage bytes(IMAGE_U8, 9, 9, 1, 4);
  const TestImage words(IMAGE_I16, 9, 9, 1, 4);
  const auto before = bytes.Block();
  EXPECT_EQ(move(0, bytes), -200);
  EXPECT_EQ(move(UNKNOWN_IMAGE, bytes), -200);
  for (const int32_t type : {IMAGE_COMPLEX, IMAGE_OPAQUE}) {
    const int32_t size = type == IMAGE_OPAQUE ? 0 : 9;
    const TestImage other(type, size, size, 0, 4);
    EXPECT_EQ(move(other, UNKNOWN_IMAGE), -301) << type;
    EXPECT_EQ(move(words, other), -304) << type;
  }
  EXPECT_EQ(move(words, UNKNOWN_IMAGE), -200);
  EXPECT_EQ(move(words, bytes), -304);
  EXPECT_EQ(bytes.Block(), before);
}

template <class Move>
void ExpectMoveMemoryRefusals(const Move& move) {
  TestImage source;
  TestImage destination;
  const auto prepare = [&] {
    source = TestImage(IMAGE_U8, 40, 40, 8, 3);
    destination = TestImage(IMAGE_U8, 0, 0, 0, 3);
  };
  for (const bool inPlace : {false, true}) {
    RefuseEachAllocation(prepare,
                         [&] { return move(source, inPlace ? 0 : ImageRef{destination}); });
  }
}

}  // namespace test
