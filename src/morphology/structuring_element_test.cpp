#include "morphology/structuring_element.h"

#include <gtest/gtest.h>

namespace {

TEST(StructuringElements, AreSquaresOfOnes) {
  StructuringElement* const elements[] = {ZEL_Get_MO_STD3X3Ptr(), ZEL_Get_MO_STD5X5Ptr(),
                                          ZEL_Get_MO_STD7X7Ptr()};
  int32_t side = 3;
  for (const StructuringElement* element : elements) {
    EXPECT_EQ(element->width, side);
    EXPECT_EQ(element->height, side);
    EXPECT_EQ(element->hexagonal, 0);
    for (int32_t i = 0; i < side * side; i++) EXPECT_EQ(element->elements[i], 1) << i;
    side += 2;
  }
}

TEST(StructuringElements, KeepWhatACallerChanges) {
  StructuringElement* element = ZEL_Get_MO_STD5X5Ptr();
  element->elements[24] = 0;
  element->hexagonal = 1;
  EXPECT_EQ(ZEL_Get_MO_STD5X5Ptr()->elements[24], 0);
  EXPECT_EQ(ZEL_Get_MO_STD5X5Ptr()->hexagonal, 1);
  EXPECT_EQ(ZEL_Get_MO_STD5X5Ptr()->elements[23], 1);
  element->elements[24] = 1;
  element->hexagonal = 0;
}

TEST(StructuringElements, CountNoPositionsWithASideBelowOne) {
  int32_t one = 1;
  EXPECT_EQ(zel::ElementPositions({0, 5, &one, 0}), 0);
  EXPECT_EQ(zel::ElementPositions({-3, -5, &one, 0}), 0);
  EXPECT_EQ(zel::ElementPositions({0x10000, 0x10000, &one, 0}), int64_t{1} << 32);
}

TEST(StructuringElements, AskForHalfTheirLongerSide) {
  int32_t one = 1;
  EXPECT_EQ(zel::ElementBorder({3, 3, &one, 0}), 1);
  EXPECT_EQ(zel::ElementBorder({4, 2, &one, 0}), 1);
  EXPECT_EQ(zel::ElementBorder({1, 31, &one, 0}), 15);
  EXPECT_EQ(zel::ElementBorder({-7, INT32_MIN, &one, 0}), 0);
}

TEST(StructuringElements, AreHexagonalByTheirLowBits) {
  EXPECT_FALSE(zel::IsHexagonal({3, 3, nullptr, 0x10000}));
  EXPECT_TRUE(zel::IsHexagonal({3, 3, nullptr, 0x18000}));
}

TEST(StructuringElements, AreMissingWhereTheyWouldBeRead) {
  EXPECT_TRUE(zel::ElementIsMissing(nullptr));
  const StructuringElement pair{1, 2, nullptr, 0};
  EXPECT_FALSE(zel::ElementIsMissing(&pair));
  const StructuringElement triple{1, 3, nullptr, 0};
  EXPECT_TRUE(zel::ElementIsMissing(&triple));
}

}  // namespace
