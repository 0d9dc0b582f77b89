#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <limits>
#include <vector>

#include "harness/test_image.h"
#include "regions/regions_test.h"
#include "tests/support/refused_memory.h"
#include "vision/oval_path.h"

namespace {

using test::Contour;
using test::FromArray;
using test::Region;
using test::RegionOf;
using test::RegionRecord;
using test::TestImage;

struct Placing {
  int32_t oldX, oldY;
  float oldAngle;
  int32_t newX, newY;
  float newAngle;
};

int32_t Transform(const std::vector<int32_t>& values, const Placing& p, RegionRecord* result) {
  RegionRecord roi;
  EXPECT_EQ(FromArray(values, &roi), 0);
  return ZEL_TransformROI(roi.Get(), p.oldX, p.oldY, p.oldAngle, p.newX, p.newY, p.newAngle,
                          result->Address());
}

Region Transformed(const std::vector<int32_t>& values, const Placing& placing) {
  RegionRecord result;
  EXPECT_EQ(Transform(values, placing, &result), 0);
  return result.Get() ? RegionOf(result.Get()) : Region{};
}

PointInt Turned(PointInt point, const Placing& p) {
  const double a =
      (static_cast<double>(p.oldAngle) - static_cast<double>(p.newAngle)) * 0.017453293;
  const double u = point.x - p.oldX;
  const double v = point.y - p.oldY;
  return {static_cast<int32_t>(u * std::cos(a) + v * std::sin(a)) + p.newX,
          static_cast<int32_t>(v * std::cos(a) - u * std::sin(a)) + p.newY};
}

// ---- the outline of an oval

std::vector<PointInt> PathOf(const zel::PixelBox& box) {
  zel::OvalPath path;
  EXPECT_EQ(path.Make(box), 0);
  std::vector<PointInt> points;
  for (int64_t i = 0; i < path.count(); i++) points.push_back(path[i]);
  return points;
}

TEST(OvalPath, HasThePixelsOfAFrameOnce) {
  for (int32_t width = 1; width < 40; width++) {
    for (int32_t height = 1; height < 40; height++) {
      const TestImage frame(IMAGE_U8, width, height);
      ASSERT_EQ(ZEL_DrawRect(frame, 0, 0, 0, height, width, DRAW_PAINT, 0), 0);
      ASSERT_EQ(ZEL_DrawOval(frame, 0, 0, 0, height, width, DRAW_FRAME, 1), 0);
      const std::vector<PointInt> path = PathOf({5, -7, 5 + width - 1, -7 + height - 1});
      for (const PointInt& point : path) {
        const int32_t x = point.x - 5;
        const int32_t y = point.y + 7;
        ASSERT_TRUE(x >= 0 && x < width && y >= 0 && y < height);
        ASSERT_EQ(frame.Get<uint8_t>(x, y), 1) << width << ' ' << height;
        frame.Set<uint8_t>(x, y, 0);
      }
      const std::vector<uint8_t> left = frame.Pixels();
      ASSERT_EQ(std::count(left.begin(), left.end(), 1), 0) << width << ' ' << height;
    }
  }
}

TEST(OvalPath, GoesClockwiseFromTheTopThroughNeighbours) {
  for (int32_t width = 5; width < 40; width++) {
    // Flat and thin ones have tips one pixel wide, behind which the path jumps.
    for (int32_t height = std::max(5, width / 3); height < std::min(2 * width, 40); height++) {
      const std::vector<PointInt> path = PathOf({0, 0, width - 1, height - 1});
      EXPECT_EQ(path.front().y, 0);
      for (const PointInt& point : path) {
        EXPECT_TRUE(point.y != 0 || path.front().x <= point.x);
      }
      for (size_t i = 0; i < path.size(); i++) {
        const PointInt& a = path[i];
        const PointInt& b = path[(i + 1) % path.size()];
        EXPECT_LE(std::max(std::abs(a.x - b.x), std::abs(a.y - b.y)), 1) << width << ' ' << height;
        // Clockwise where y grows downwards: the middle stays on the right.
        const int32_t cross =
            (b.x - a.x) * (height - 1 - 2 * a.y) - (b.y - a.y) * (width - 1 - 2 * a.x);
        EXPECT_GE(cross, 0) << width << ' ' << height;
      }
    }
  }
}

TEST(OvalPath, OddMiddleRowBelongsToBothHalves) {
  const std::vector<PointInt> path = PathOf({0, 0, 6, 2});
  const auto columnsOf = [&](int32_t y) {
    std::vector<int32_t> columns;
    for (const PointInt& point : path) {
      if (point.y == y) columns.push_back(point.x);
    }
    return columns;
  };
  // Right half rising, and after the bottom row the left half falling.
  const std::vector<int32_t> middle = columnsOf(1);
  const auto left = std::find_if(middle.begin(), middle.end(), [](int32_t x) { return x < 3; });
  EXPECT_TRUE(std::is_sorted(middle.begin(), left));
  EXPECT_TRUE(std::is_sorted(left, middle.end(), std::greater<>()));
  EXPECT_EQ(path.back().y, 1);
}

TEST(OvalPath, ThinBoxesHaveAllTheirPixels) {
  const std::vector<PointInt> wide = PathOf({2, 3, 5, 3});
  ASSERT_EQ(wide.size(), 4u);
  for (int32_t i = 0; i < 4; i++) EXPECT_EQ(wide[static_cast<size_t>(i)].x, 2 + i);
  const std::vector<PointInt> high = PathOf({2, 3, 2, 6});
  ASSERT_EQ(high.size(), 4u);
  for (int32_t i = 0; i < 4; i++) EXPECT_EQ(high[static_cast<size_t>(i)].y, 3 + i);
}

TEST(OvalPath, RefusesWhatIsBeyondTheLimit) {
  zel::OvalPath path;
  EXPECT_EQ(path.Make({0, 0, (1 << 20) - 1, 0}), 0);
  EXPECT_EQ(path.Make({0, 0, 1 << 24, 0}), 101);
  EXPECT_EQ(path.Make({0, 0, 1 << 23, 5000}), 101);
  EXPECT_EQ(path.Make({INT32_MIN, INT32_MIN, INT32_MAX, INT32_MAX}), 101);
}

// ---- regions

TEST(TransformRoi, WithoutMotionIsACopy) {
  EXPECT_EQ(Transformed({1, 2, 30, 42, -32767, 3, 1, 2, 30, 42, -32768, 1, 9, 9},
                        {5, 6, 30.0f, 5, 6, 30.0f}),
            (Region{2, 1, 40, 29, {{1, ROI_RECT, {1, 2, 30, 42}}, {0, ROI_POINT, {9, 9}}}}));
}

TEST(TransformRoi, ShiftsPointsAndRectangle) {
  EXPECT_EQ(Transformed({1, 2, 30, 42, -32767, 4, 1, 2, 30, 42}, {5, 6, 0.0f, 15, 4, 0.0f}),
            (Region{0, 11, 40, 29, {{1, ROI_OVAL, {11, 0, 40, 40}}}}));
}

TEST(TransformRoi, ShiftLeavesNegativeColumns) {
  // The rectangle's first corner begins with a negative x, and stays.
  RegionRecord result;
  ASSERT_EQ(
      Transform({-1, 2, 30, 42, -32767, 2, 8, 2, 30, 42}, {0, 0, 0.0f, 10, 10, 0.0f}, &result), 0);
  EXPECT_EQ(RegionOf(result.Get()), (Region{2, -1, 50, 41, {{1, ROI_LINE, {18, 12, 40, 52}}}}));
}

TEST(TransformRoi, TurnsPointsAroundTheOldOrigin) {
  const Placing placing{20, 30, 10.0f, 100, 120, 47.5f};
  const std::vector<int32_t> points{12, 25, 40, 33, 21, 60};
  for (const int32_t type : {0, 1, 2, 5, 6, 7, 8, 9, 10, 11}) {
    std::vector<int32_t> values{0, 0, 50, 70, -32768, type};
    values.insert(values.end(), points.begin(), points.end());
    Contour contour{0, type, {}};
    Region expected;
    int32_t right = 0;
    int32_t bottom = 0;
    expected.left = 32767;
    expected.top = 322767;
    for (size_t i = 0; i < points.size(); i += 2) {
      const PointInt turned = Turned({points[i], points[i + 1]}, placing);
      contour.coordinates.push_back(turned.x);
      contour.coordinates.push_back(turned.y);
      expected.left = std::min(expected.left, turned.x);
      expected.top = std::min(expected.top, turned.y);
      right = std::max(right, turned.x);
      bottom = std::max(bottom, turned.y);
    }
    expected.width = right - expected.left;
    expected.height = bottom - expected.top;
    expected.contours.push_back(contour);
    EXPECT_EQ(Transformed(values, placing), expected) << type;
  }
}

TEST(TransformRoi, TurnsARectangleIntoAPolygon) {
  const Placing placing{10, 10, 0.0f, 60, 70, -30.0f};
  Contour contour{1, ROI_POLYGON, {}};
  for (const PointInt corner : {PointInt{12, 15}, {42, 15}, {42, 28}, {12, 28}, {12, 15}}) {
    const PointInt turned = Turned(corner, placing);
    contour.coordinates.push_back(turned.x);
    contour.coordinates.push_back(turned.y);
  }
  const Region region = Transformed({12, 15, 42, 28, -32767, 3, 12, 15, 42, 28}, placing);
  ASSERT_EQ(region.contours.size(), 1u);
  EXPECT_EQ(region.contours[0], contour);
  // With three points it is no rectangle.
  EXPECT_EQ(
      Transformed({12, 15, 42, 28, -32767, 3, 12, 15, 42, 28, 1, 1}, placing).contours[0].type,
      ROI_RECT);
}

TEST(TransformRoi, TurnsAnOvalOfAnOblongRegionIntoItsOutline) {
  const Placing placing{10, 10, 0.0f, 60, 70, 25.0f};
  const Region region = Transformed({12, 15, 42, 28, -32767, 4, 12, 15, 42, 28}, placing);
  Contour contour{1, ROI_POLYGON, {}};
  int32_t right = 0;
  int32_t bottom = 0;
  for (const PointInt& point : PathOf({12, 15, 41, 27})) {
    const PointInt turned = Turned(point, placing);
    contour.coordinates.push_back(turned.x);
    contour.coordinates.push_back(turned.y);
    right = std::max(right, turned.x);
    bottom = std::max(bottom, turned.y);
  }
  ASSERT_EQ(region.contours.size(), 1u);
  EXPECT_EQ(region.contours[0], contour);
  EXPECT_EQ(region.left + region.width, right + 1);
  EXPECT_EQ(region.top + region.height, bottom + 1);
}

TEST(TransformRoi, OvalOfASquareRegionStaysAnOval) {
  const Placing placing{10, 10, 0.0f, 60, 70, 25.0f};
  const Region region =
      Transformed({12, 15, 42, 45, -32767, 4, 12, 15, 42, 45, -32767, 1, 20, 20}, placing);
  int32_t left = INT32_MAX;
  int32_t top = INT32_MAX;
  int32_t right = INT32_MIN;
  int32_t bottom = INT32_MIN;
  for (const PointInt& point : PathOf({12, 15, 41, 44})) {
    const PointInt turned = Turned(point, placing);
    left = std::min(left, turned.x);
    top = std::min(top, turned.y);
    right = std::max(right, turned.x);
    bottom = std::max(bottom, turned.y);
  }
  const PointInt point = Turned({20, 20}, placing);
  EXPECT_EQ(region, (Region{top,
                            left,
                            bottom + 1 - top,
                            right + 1 - left,
                            {{1, ROI_OVAL, {left, top, right + 1, bottom + 1}},
                             {1, ROI_POINT, {point.x, point.y}}}}));
}

TEST(TransformRoi, EmptyOvalIsItsFirstCorner) {
  const Placing placing{0, 0, 0.0f, 50, 50, 170.0f};
  const PointInt corner = Turned({12, 15}, placing);
  EXPECT_EQ(Transformed({12, 15, 42, 28, -32767, 4, 12, 15, 9, 28}, placing).contours,
            (std::vector<Contour>{{1, ROI_POLYGON, {corner.x, corner.y}}}));
}

TEST(TransformRoi, RegionWithoutPointsKeepsTheFirstRectangle) {
  EXPECT_EQ(Transformed({12, 15, 42, 28, -32767, 0}, {0, 0, 0.0f, 0, 0, 90.0f}),
            (Region{0, 0, 322767, 32767, {{1, ROI_WHOLE, {}}}}));
}

TEST(TransformRoi, NumbersThatAreNoneGiveTheNewOrigin) {
  const float nan = std::numeric_limits<float>::quiet_NaN();
  EXPECT_EQ(Transformed({0, 0, 9, 9, -32767, 1, 5, 6}, {1, 2, nan, 30, 40, 0.0f}),
            (Region{40, 30, 0, 0, {{1, ROI_POINT, {30, 40}}}}));
}

TEST(TransformRoi, RefusesRegionsOfWrongShape) {
  const Placing turn{0, 0, 0.0f, 0, 0, 90.0f};
  RegionRecord result;
  EXPECT_EQ(Transform({1, 2, 3, 4}, turn, &result), -1200);
  EXPECT_EQ(Transform({1, 2, 3, 4}, {0, 0, 0, 5, 5, 0}, &result), -1200);
  EXPECT_EQ(ZEL_TransformROI(nullptr, 0, 0, 0, 0, 0, 0, result.Address()), -1200);
  EXPECT_EQ(ZEL_TransformROI(nullptr, 0, 0, 0, 0, 0, 0, nullptr), -3009);
  for (const int32_t type : {-1, 12, INT32_MIN, INT32_MAX}) {
    EXPECT_EQ(Transform({0, 0, 9, 9, -32767, type, 3, 3}, turn, &result), -1200);
    RegionRecord shifted;
    EXPECT_EQ(Transform({0, 0, 9, 9, -32767, type, 3, 3}, {0, 0, 0, 5, 5, 0}, &shifted), 0);
  }
  EXPECT_EQ(Transform({0, 0, 9, 9, 5, 2, 3, 3, 4, 4}, turn, &result), -1200);
  EXPECT_EQ(result.Get(), nullptr);
}

TEST(TransformRoi, CoordinateLikeAMarkerWithNothingBehindIsRefused) {
  RegionRecord roi;
  ASSERT_EQ(FromArray({0, 0, 9, 9, -32767, 1, 3, 3}, &roi), 0);
  roi->contours[0]->points[0].y = -32768;
  RegionRecord result;
  EXPECT_EQ(ZEL_TransformROI(roi.Get(), 0, 0, 0, 0, 0, 5, result.Address()), -1200);
}

TEST(TransformRoi, SurvivesEachRefusedAllocation) {
  RegionRecord roi;
  ASSERT_EQ(FromArray({0, 0, 60, 50, -32767, 4, 0, 0, 60, 50, -32767, 3, 1, 1, 9, 9}, &roi), 0);
  test::RefuseEachAllocation([] {},
                             [&] {
                               RegionRecord result;
                               const int32_t status = ZEL_TransformROI(roi.Get(), 0, 0, 0, 90, 90,
                                                                       15, result.Address());
                               EXPECT_EQ(result.Get() == nullptr, status != 0);
                               return status;
                             });
}

}  // namespace
