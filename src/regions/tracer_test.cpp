#include "regions/tracer.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "harness/test_image.h"
#include "regions/regions_test.h"
#include "tests/support/refused_memory.h"

namespace {

using test::Flat;
using test::Region;
using test::RegionOf;
using test::RegionRecord;
using test::TestImage;

using Values = std::vector<int32_t>;

// ---- the stated steps, pixel by pixel

// One number a pixel, and 0 around them.
class Grid {
 public:
  Grid(int32_t width, int32_t height)
      : width_(width),
        height_(height),
        cells_(static_cast<size_t>(width + 2) * static_cast<size_t>(height + 2)) {}
  int32_t width() const { return width_; }
  int32_t height() const { return height_; }
  bool Holds(int32_t x, int32_t y) const { return x >= 0 && x < width_ && y >= 0 && y < height_; }
  int& At(int32_t x, int32_t y) {
    return cells_[static_cast<size_t>(y + 1) * static_cast<size_t>(width_ + 2) +
                  static_cast<size_t>(x + 1)];
  }

 private:
  int32_t width_, height_;
  std::vector<int> cells_;
};

Grid GridOf(const TestImage& mask) {
  Grid grid(mask.width(), mask.height());
  for (int32_t y = 0; y < grid.height(); y++) {
    for (int32_t x = 0; x < grid.width(); x++) grid.At(x, y) = mask.Get<uint8_t>(x, y) != 0 ? 1 : 0;
  }
  return grid;
}

// What does not belong to the background that reaches the edge; only the holes of that on demand.
Grid Solid(Grid mask, bool keepObjects) {
  Grid reached(mask.width(), mask.height());
  std::vector<std::pair<int32_t, int32_t>> open;
  const auto visit = [&](int32_t x, int32_t y) {
    if (!mask.Holds(x, y) || mask.At(x, y) != 0 || reached.At(x, y) != 0) return;
    reached.At(x, y) = 1;
    open.emplace_back(x, y);
  };
  for (int32_t x = 0; x < mask.width(); x++) {
    visit(x, 0);
    visit(x, mask.height() - 1);
  }
  for (int32_t y = 0; y < mask.height(); y++) {
    visit(0, y);
    visit(mask.width() - 1, y);
  }
  while (!open.empty()) {
    const auto [x, y] = open.back();
    open.pop_back();
    visit(x - 1, y);
    visit(x + 1, y);
    visit(x, y - 1);
    visit(x, y + 1);
  }
  for (int32_t y = 0; y < mask.height(); y++) {
    for (int32_t x = 0; x < mask.width(); x++) {
      const bool isObject = mask.At(x, y) != 0;
      reached.At(x, y) = (reached.At(x, y) == 0 && !isObject) || (keepObjects && isObject) ? 1 : 0;
    }
  }
  return reached;
}

Grid Edges(Grid solid) {
  Grid edges(solid.width(), solid.height());
  for (int32_t y = 0; y < solid.height(); y++) {
    for (int32_t x = 0; x < solid.width(); x++) {
      const bool isInside = solid.At(x - 1, y) != 0 && solid.At(x + 1, y) != 0 &&
                            solid.At(x, y - 1) != 0 && solid.At(x, y + 1) != 0;
      edges.At(x, y) = solid.At(x, y) != 0 && !isInside ? 1 : 0;
    }
  }
  return edges;
}

struct Trace {
  Values values{32000, 32000, 0, 0};
  size_t limit;

  void Append(int32_t a, int32_t b) {
    if (values.size() + 2 > limit) return;
    values.push_back(a);
    values.push_back(b);
    if (a < 0) return;
    values[0] = std::min(values[0], a);
    values[1] = std::min(values[1], b);
    values[2] = std::max(values[2], a);
    values[3] = std::max(values[3], b);
  }

  void All(Grid edges, int32_t marker, int32_t offsetX, int32_t offsetY) {
    constexpr int stepX[8] = {-1, 0, 1, 1, 1, 0, -1, -1};
    constexpr int stepY[8] = {-1, -1, -1, 0, 1, 1, 1, 0};
    for (int32_t startY = 0; startY < edges.height(); startY++) {
      for (int32_t startX = 0; startX < edges.width(); startX++) {
        if (edges.At(startX, startY) == 0) continue;
        int32_t x = startX;
        int32_t y = startY;
        int previous = -5;
        int steps = 0;
        while (true) {
          edges.At(x, y) = 0;
          const bool odd = previous % 2 != 0;
          int found = -1;
          for (int t = 0; t < (odd ? 5 : 6) && found < 0; t++) {
            const int direction = (previous - (odd ? 1 : 2) + t + 16) % 8;
            if (edges.At(x + stepX[direction], y + stepY[direction]) != 0) found = direction;
          }
          if (found < 0) break;
          if (steps == 0) Append(marker, 5);
          if (found != previous) Append(x + offsetX, y + offsetY);
          previous = found;
          x += stepX[found];
          y += stepY[found];
          steps++;
        }
        if (steps == 0) Append(marker, 1);
        Append(x + offsetX, y + offsetY);
      }
    }
  }
};

Values ReferenceRegion(const TestImage& mask, int32_t maxPoints, bool externalOnly) {
  const Grid grid = GridOf(mask);
  const ImageInfo info = mask.Info();
  Trace trace;
  trace.limit = static_cast<size_t>(std::max(maxPoints, 2)) * 2;
  trace.All(Edges(Solid(grid, true)), -32767, info.offsetX, info.offsetY);
  if (!externalOnly) trace.All(Edges(Solid(grid, false)), -32768, info.offsetX, info.offsetY);
  trace.values[2]++;
  trace.values[3]++;
  return trace.values;
}

Values RegionValues(const TestImage& mask, int32_t maxPoints, bool externalOnly,
                    bool* limitReached) {
  const Flat flat;
  EXPECT_EQ(zel::RoiFromMask(mask, maxPoints, externalOnly, flat.handle(), limitReached), 0);
  return flat.Values();
}

constexpr int32_t PLENTY = 100000;

TEST(Tracer, FollowsRandomMasksByTheSteps) {
  test::Random random(21);
  for (int32_t i = 0; i < 1500 && !testing::Test::HasFailure(); i++) {
    const TestImage mask(IMAGE_U8, random.Between(1, i % 10 == 0 ? 200 : 40),
                         random.Between(1, 30));
    const int32_t density = random.Between(1, 99);
    for (int32_t y = 0; y < mask.height(); y++) {
      for (int32_t x = 0; x < mask.width(); x++) {
        const bool isSet = random.Between(0, 99) < density;
        mask.Set<uint8_t>(x, y, static_cast<uint8_t>(isSet ? random.Between(1, 255) : 0));
      }
    }
    // Larger shapes than noise has.
    if (i % 3 == 0) ZEL_NthOrder(mask, 0, 0, 3, 3, 4);
    ZEL_SetImageOffset(mask, random.Between(-30, 30), random.Between(-30, 30));
    const int32_t limit = i % 4 == 0 ? random.Between(-1, 60) : PLENTY;
    for (const bool externalOnly : {false, true}) {
      const Values expected = ReferenceRegion(mask, limit, externalOnly);
      bool limitReached = false;
      EXPECT_EQ(RegionValues(mask, limit, externalOnly, &limitReached), expected);
      EXPECT_EQ(limitReached, expected.size() == static_cast<size_t>(std::max(limit, 2)) * 2);
    }
  }
}

// ---- the export

int32_t ToRoi(const TestImage& mask, uint16_t externalOnly, RegionRecord* roi) {
  return ZEL_MaskToROI(mask, externalOnly, PLENTY, roi->Address(), nullptr);
}

TEST(MaskToRoi, FindsHolesUnlessToldOtherwise) {
  const TestImage mask = TestImage::FromRows({
      "........",
      ".#####..",
      ".#####..",
      ".##.##..",
      ".#####..",
      ".#####..",
  });
  const test::Contour outline{ROI_EXTERNAL, ROI_POLYGON, {1, 1, 5, 1, 5, 5, 1, 5, 1, 2}};
  RegionRecord all;
  ASSERT_EQ(ToRoi(mask, 0, &all), 0);
  EXPECT_EQ(RegionOf(all.Get()),
            (Region{1, 1, 5, 5, {outline, {ROI_INTERNAL, ROI_POINT, {3, 3}}}}));
  RegionRecord external;
  ASSERT_EQ(ToRoi(mask, 256, &external), 0);
  EXPECT_EQ(RegionOf(external.Get()), (Region{1, 1, 5, 5, {outline}}));
}

TEST(MaskToRoi, RectangleHasFewVertices) {
  const TestImage low = TestImage::FromRows({"......", ".####.", ".####.", "......"});
  RegionRecord two;
  ASSERT_EQ(ToRoi(low, 0, &two), 0);
  EXPECT_EQ(RegionOf(two.Get()),
            (Region{1, 1, 2, 4, {{ROI_EXTERNAL, ROI_POLYGON, {1, 1, 4, 1, 4, 2, 1, 2}}}}));
}

TEST(MaskToRoi, SinglePixelIsAPointAndDiagonalOnesAreOneContour) {
  const TestImage point = TestImage::FromRows({"....", "..#.", "...."});
  RegionRecord one;
  ASSERT_EQ(ToRoi(point, 0, &one), 0);
  EXPECT_EQ(RegionOf(one.Get()), (Region{1, 2, 1, 1, {{ROI_EXTERNAL, ROI_POINT, {2, 1}}}}));

  const TestImage diagonal = TestImage::FromRows({"....", "..#.", "...#"});
  RegionRecord both;
  ASSERT_EQ(ToRoi(diagonal, 0, &both), 0);
  EXPECT_EQ(RegionOf(both.Get()),
            (Region{1, 2, 2, 2, {{ROI_EXTERNAL, ROI_POLYGON, {2, 1, 3, 2}}}}));
}

TEST(MaskToRoi, LimitCountsPairsOfTheFlatForm) {
  const TestImage mask = TestImage::FromRows({"....", "..#.", "...."});
  for (const int32_t limit : {INT32_MIN, 0, 2}) {
    RegionRecord roi;
    int32_t limitReached = 7;
    ASSERT_EQ(ZEL_MaskToROI(mask, 0, limit, roi.Address(), &limitReached), 0);
    EXPECT_EQ(limitReached, 1);
    EXPECT_EQ(roi->contourCount, 0);
  }
  for (const auto& [limit, reached] : {std::pair{3, 1}, {4, 1}, {5, 0}}) {
    RegionRecord roi;
    int32_t limitReached = 7;
    ASSERT_EQ(ZEL_MaskToROI(mask, 0, limit, roi.Address(), &limitReached), 0);
    EXPECT_EQ(limitReached, reached);
    ASSERT_EQ(roi->contourCount, 1);
    EXPECT_EQ(roi->contours[0]->pointCount, limit == 3 ? 0 : 1);
  }
}

TEST(MaskToRoi, WithoutContourKeepsTheFirstRectangle) {
  const TestImage clear = TestImage::FromRows({"....", "...."});
  const TestImage empty(IMAGE_U8, 0, 0);
  for (const ImageRef mask : {static_cast<ImageRef>(clear), static_cast<ImageRef>(empty)}) {
    RegionRecord roi;
    int32_t limitReached = 7;
    ASSERT_EQ(ZEL_MaskToROI(mask, 0, PLENTY, roi.Address(), &limitReached), 0);
    EXPECT_EQ(RegionOf(roi.Get()), (Region{1, 1, 31999, 31999, {}}));
    EXPECT_EQ(limitReached, 0);
  }
}

TEST(MaskToRoi, ThickShapesComeBackAsTheSameMask) {
  const TestImage mask(IMAGE_U8, 120, 90);
  ASSERT_EQ(ZEL_DrawRect(mask, 0, 0, 0, 32767, 32767, DRAW_PAINT, 0), 0);
  ASSERT_EQ(ZEL_DrawOval(mask, 0, 5, 8, 70, 60, DRAW_PAINT, 1), 0);
  ASSERT_EQ(ZEL_DrawOval(mask, 0, 20, 20, 30, 25, DRAW_PAINT, 0), 0);
  ASSERT_EQ(ZEL_DrawRect(mask, 0, 10, 80, 40, 30, DRAW_PAINT, 1), 0);
  RegionRecord roi;
  ASSERT_EQ(ToRoi(mask, 0, &roi), 0);
  EXPECT_EQ(roi->contourCount, 3);
  const TestImage back(IMAGE_U8, 1, 1);
  ASSERT_EQ(ZEL_ROIToMask(back, mask, roi.Get(), 1), 0);
  EXPECT_EQ(PixelDifference(back, mask), "");
}

TEST(MaskToRoi, ObjectInsideAHoleIsLost) {
  const TestImage mask = TestImage::FromRows({
      "#######",
      "#.....#",
      "#.....#",
      "#..#..#",
      "#.....#",
      "#.....#",
      "#######",
  });
  RegionRecord roi;
  ASSERT_EQ(ToRoi(mask, 0, &roi), 0);
  for (int32_t i = 0; i < roi->contourCount; i++) {
    EXPECT_NE(
        roi->contours[i]->contourType == ROI_POINT && roi->contours[i]->contourKind == ROI_EXTERNAL,
        true);
  }
}

TEST(MaskToRoi, FailuresLeaveTheOutputsAlone) {
  const TestImage words(IMAGE_I16, 4, 4);
  const TestImage mask(IMAGE_U8, 4, 4);
  RegionRecord roi;
  int32_t limitReached = 7;
  EXPECT_EQ(ZEL_MaskToROI(12345, 0, 9, roi.Address(), &limitReached), -200);
  EXPECT_EQ(ZEL_MaskToROI(words, 0, 9, roi.Address(), &limitReached), -301);
  EXPECT_EQ(ZEL_MaskToROI(12345, 0, 9, nullptr, &limitReached), -3009);
  EXPECT_EQ(roi.Get(), nullptr);
  EXPECT_EQ(limitReached, 7);

  ASSERT_EQ(ZEL_MaskToROI(mask, 0, 9, roi.Address(), nullptr), 0);
  RoiDescriptor* const before = roi.Get();
  for (int32_t i = 0; i < before->contourCount; i++) ZEL_free(before->contours[i]);
  before->contourCount = 0;
  bool fails = true;
  test::RefuseEachAllocation([&] {},
                             [&] {
                               const int32_t result =
                                   ZEL_MaskToROI(mask, 0, PLENTY, roi.Address(), &limitReached);
                               fails = result != 0;
                               EXPECT_EQ(limitReached, fails ? 7 : 0);
                               if (!fails) {
                                 for (int32_t i = 0; i < roi->contourCount; i++) {
                                   ZEL_free(roi->contours[i]);
                                 }
                                 roi->contourCount = 0;
                                 limitReached = 7;
                               }
                               return result;
                             });
}

}  // namespace
