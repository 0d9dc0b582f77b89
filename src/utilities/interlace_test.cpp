#include <gtest/gtest.h>

#include <cstring>
#include <vector>

#include "harness/test_image.h"

namespace {

using test::TestImage;
using Rows = std::vector<std::vector<uint8_t>>;

Rows RowsOf(const TestImage& image) {
  const ImageInfo info = image.Info();
  Rows rows;
  for (int32_t y = 0; y < info.height; y++) {
    const auto* row = image.At<uint8_t>(0, y);
    rows.emplace_back(row, row + info.width * info.pixelBytes);
  }
  return rows;
}

Rows Joined(const Rows& first, const Rows& second, size_t rowBytes) {
  Rows rows;
  for (size_t y = 0; y < std::min(first.size(), second.size()); y++) {
    for (const Rows* field : {&first, &second}) {
      rows.push_back((*field)[y]);
      rows.back().resize(rowBytes);
    }
  }
  return rows;
}

Rows EveryOther(const Rows& frame, size_t from) {
  Rows rows;
  for (size_t y = 0; y < frame.size() / 2; y++) rows.push_back(frame[2 * y + from]);
  return rows;
}

constexpr int32_t ALL_TYPES[] = {IMAGE_U8, IMAGE_I16, IMAGE_SGL, IMAGE_COMPLEX, IMAGE_RGB};

TEST(Interlace, JoinTakesTheSmallerSidesOfTwoFields) {
  for (const int32_t type : ALL_TYPES) {
    const TestImage frame(type, 3, 3, 2, 1);
    const TestImage first(type, 11, 4, 0, 2);
    const TestImage second(type, 9, 6, 3, 3);
    const auto bytes = static_cast<size_t>(9 * frame.Info().pixelBytes);
    ASSERT_EQ(ZEL_Interlace(frame, first, second, 0), 0);
    EXPECT_EQ(frame.width(), 9);
    EXPECT_EQ(RowsOf(frame), Joined(RowsOf(first), RowsOf(second), bytes));
  }
}

TEST(Interlace, JoinWorksWithTheFrameAsEitherFieldOrBoth) {
  for (const int32_t frameWidth : {10, 16, 9}) {
    for (const int32_t otherWidth : {10, 9, 30}) {
      for (const int32_t frameHeight : {2, 5}) {
        for (const int32_t which : {1, 2, 3}) {
          const TestImage frame(IMAGE_I16, frameWidth, frameHeight, 1, 4);
          const TestImage other(IMAGE_I16, otherWidth, 3, 1, 5);
          const TestImage& first = (which & 1) != 0 ? frame : other;
          const TestImage& second = (which & 2) != 0 ? frame : other;
          const int32_t width = std::min(first.width(), second.width());
          const Rows expected =
              Joined(RowsOf(first), RowsOf(second), static_cast<size_t>(width) * 2);
          ASSERT_EQ(ZEL_Interlace(frame, first, second, 0), 0);
          EXPECT_EQ(RowsOf(frame), expected) << frameWidth << " " << otherWidth << " " << which;
        }
      }
    }
  }
}

TEST(Interlace, JoinWithOneFieldUsesItTwice) {
  const TestImage field(IMAGE_U8, 5, 3);
  for (const bool asFirst : {true, false}) {
    const TestImage frame(IMAGE_U8, 1, 1);
    ASSERT_EQ(ZEL_Interlace(frame, asFirst ? field : 0u, asFirst ? 0u : field, 0), 0);
    EXPECT_EQ(RowsOf(frame), Joined(RowsOf(field), RowsOf(field), 5));
  }
}

TEST(Interlace, JoinWithAnEmptyFieldEmptiesTheFrame) {
  const TestImage frame(IMAGE_U8, 5, 3);
  const TestImage field(IMAGE_U8, 5, 3);
  const TestImage empty(IMAGE_U8, 0, 0);
  ASSERT_EQ(ZEL_Interlace(frame, field, empty, 0), 0);
  EXPECT_EQ(frame.width(), 0);
}

TEST(Interlace, SplitGivesEvenAndOddRowsAndDropsALastOddRow) {
  for (const int32_t type : ALL_TYPES) {
    for (const int32_t height : {1, 2, 6, 7}) {
      const TestImage frame(type, 7, height, 1, 6);
      const TestImage first(type, 2, 2, 2);
      const TestImage second(type, 20, 20, 0);
      const auto before = frame.Block();
      ASSERT_EQ(ZEL_Interlace(frame, first, second, 1), 0);
      EXPECT_EQ(RowsOf(first), EveryOther(RowsOf(frame), 0));
      EXPECT_EQ(RowsOf(second), EveryOther(RowsOf(frame), 1));
      EXPECT_EQ(first.height(), height / 2);
      EXPECT_EQ(frame.Block(), before);
    }
  }
}

TEST(Interlace, SplitWritesOnlyTheFieldsThatAreGiven) {
  const TestImage frame(IMAGE_U8, 9, 6);
  const TestImage field(IMAGE_U8, 1, 1);
  ASSERT_EQ(ZEL_Interlace(frame, field, 0, -1), 0);
  EXPECT_EQ(RowsOf(field), EveryOther(RowsOf(frame), 0));
  ASSERT_EQ(ZEL_Interlace(frame, 0, field, 2), 0);
  EXPECT_EQ(RowsOf(field), EveryOther(RowsOf(frame), 1));
}

TEST(Interlace, SplitShortensAFieldThatIsTheFrame) {
  for (const bool asFirst : {true, false}) {
    const TestImage frame(IMAGE_I16, 9, 7, 2);
    const TestImage other(IMAGE_I16, 1, 1);
    const Rows whole = RowsOf(frame);
    ASSERT_EQ(ZEL_Interlace(frame, asFirst ? frame : other, asFirst ? other : frame, 1), 0);
    EXPECT_EQ(RowsOf(frame), EveryOther(whole, asFirst ? 0 : 1));
    EXPECT_EQ(RowsOf(other), EveryOther(whole, asFirst ? 1 : 0));
  }
}

TEST(Interlace, SplitIntoOneImageTwiceLeavesTheOddRows) {
  const TestImage frame(IMAGE_U8, 9, 6);
  const TestImage field(IMAGE_U8, 1, 1);
  ASSERT_EQ(ZEL_Interlace(frame, field, field, 1), 0);
  EXPECT_EQ(RowsOf(field), EveryOther(RowsOf(frame), 1));
  const Rows whole = RowsOf(frame);
  ASSERT_EQ(ZEL_Interlace(frame, frame, frame, 1), 0);
  EXPECT_EQ(RowsOf(frame), EveryOther(whole, 1));
}

TEST(Interlace, NoFieldsDoNothing) {
  const TestImage frame(IMAGE_U8, 4, 4);
  const auto before = frame.Block();
  EXPECT_EQ(ZEL_Interlace(frame, 0, 0, 0), 0);
  EXPECT_EQ(ZEL_Interlace(frame, 0, 0, 1), 0);
  EXPECT_EQ(frame.Block(), before);
}

TEST(Interlace, WrongImagesAreRefusedInOrder) {
  const TestImage frame(IMAGE_U8, 4, 4);
  const TestImage words(IMAGE_I16, 4, 4);
  ImageRef opaque = 0;
  ASSERT_EQ(ZEL_Create(&opaque, IMAGE_OPAQUE, 0), 0);
  EXPECT_EQ(ZEL_Interlace(999, words, words, 0), -200);
  EXPECT_EQ(ZEL_Interlace(frame, words, 999, 0), -304);
  EXPECT_EQ(ZEL_Interlace(frame, frame, 999, 0), -200);
  EXPECT_EQ(ZEL_Interlace(frame, frame, words, 1), -304);
  EXPECT_EQ(ZEL_Interlace(opaque, opaque, 0, 1), -301);
  EXPECT_EQ(ZEL_Interlace(opaque, 0, 0, 1), 0);
  ZEL_Dispose(opaque);
}

TEST(Interlace, JoinKeepsTheFramesBorderWhenTheSizeStays) {
  const TestImage frame(IMAGE_U8, 9, 6, 3);
  const TestImage field(IMAGE_U8, 9, 3, 1);
  const auto around = frame.Surroundings();
  ASSERT_EQ(ZEL_Interlace(frame, field, field, 0), 0);
  EXPECT_EQ(frame.Surroundings(), around);
}

}  // namespace
