#include "barcode/widths.h"

#include <limits>

#include "barcode/barcode_test.h"

namespace {

using test::TestImage;

TEST(Widths, HalvesRoundToTheEvenModule) {
  const double values[][2] = {{0, 0},       {0.3, 0},  {0.5, 0},   {0.6, 1},   {1.49, 1},
                              {1.5, 2},     {2.5, 2},  {2.51, 3},  {3.5, 4},   {6.999, 7},
                              {-0.7, 1},    {-0.4, 0}, {-1.2, -1}, {1e9, 1e9}, {0x1p30, 0},
                              {-0x1p30, 0}, {1e300, 0}};
  for (const auto& [value, rounded] : values) {
    EXPECT_EQ(zel::ModuleRound(value), rounded) << value;
    EXPECT_EQ(reference::Rounded(value), rounded) << value;
  }
  EXPECT_EQ(zel::ModuleRound(std::numeric_limits<double>::quiet_NaN()), 0);
  EXPECT_EQ(zel::ModuleRound(-std::numeric_limits<double>::infinity()), 0);
}

TEST(Widths, TheRowWithMostElementsInCommonMatchesAndOfEqualsTheFirst) {
  constexpr zel::Elements rows[] = {0x1111, 0x2222, 0x1122};
  EXPECT_EQ(zel::Match(0x2222, rows), 1);
  EXPECT_EQ(zel::Match(0x1222, rows), 1);
  EXPECT_EQ(zel::Match(0x1112, rows), 0);
  EXPECT_EQ(zel::Match(0x1123, rows), 2);
  EXPECT_EQ(zel::Match(0x3333, rows), 0);
  EXPECT_EQ(zel::Match(0xFFFF, rows), 0);
}

// The widths along all of an image, and which are wide, are those of the rule to the bit.
void ExpectTheRule(const TestImage& image) {
  const reference::Corners c = test::WholeOf(image);
  zel::ScopedVector region;
  ASSERT_EQ(region.Create(), 0);
  ASSERT_EQ(zel::VectorResize(region.handle(), sizeof(int32_t), 10), 0);
  const int32_t flat[] = {0, 0, 0, 0, ROI_MARKER_EXTERNAL, ROI_RECT, c.x1, c.y1, c.x2, c.y2};
  std::copy(std::begin(flat), std::end(flat), zel::VectorData<int32_t>(region.handle()));
  zel::BarWidths widths;
  ASSERT_EQ(widths.Measure(image, region.handle()), 0);
  const reference::Runs runs = reference::RunsOf(*reference::Profile(image, c));
  ASSERT_EQ(widths.Bars(), runs.bars.size());
  ASSERT_EQ(widths.Spaces(), runs.spaces.size());
  for (int64_t k = 0; k <= widths.Elements(); k++) {
    EXPECT_EQ(widths[k], k % 2 == 0 ? runs.bars[k / 2] : runs.spaces[k / 2]);
  }
  const zel::TwoWidths classes(widths);
  const reference::List bars = reference::Classes(runs.bars);
  for (int64_t k = 0; k < bars.size() + 2; k++) EXPECT_EQ(classes.IsWide(2 * k), bars[k] == 1);
}

TEST(Widths, AreTheListsOfTheRuleToTheBit) {
  test::Random random(3);
  for (int i = 0; i < 300; i++) {
    ExpectTheRule({random.Between(IMAGE_U8, IMAGE_SGL), random.Between(2, 90),
                   random.Between(1, 12), 0, static_cast<uint64_t>(i)});
  }
}

// A slope of the light crosses pixels of one value: there is nothing between them to divide.
TEST(Widths, AreThoseOfTheRuleWhereTheLightCrossesEvenPixels) {
  test::Random random(4);
  for (int i = 0; i < 100; i++) {
    const TestImage image(IMAGE_U8, random.Between(6, 90), 1);
    const int32_t step = random.Between(2, 7);
    uint8_t value = 0;
    for (int32_t x = 0; x < image.width(); x++) {
      if (x % step == 0) value = static_cast<uint8_t>(2 * x + random.Between(0, 40));
      image.Set<uint8_t>(x, 0, value);
    }
    ExpectTheRule(image);
  }
}

}  // namespace
