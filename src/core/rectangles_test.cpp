#include "core/rectangles.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>

#include "core/numbers.h"

namespace {

using namespace zel;

TEST(Rectangles, NullIsTheWholeImage) {
  KernelRect kernel{};
  RectFromApi(nullptr, &kernel);
  EXPECT_EQ(kernel.left, 0);
  EXPECT_EQ(kernel.top, 0);
  EXPECT_EQ(kernel.right, 32767);
  EXPECT_EQ(kernel.bottom, 32767);
  ApiRect api{};
  RectToApi(nullptr, &api);
  EXPECT_EQ(api.height, 32767);
  EXPECT_EQ(api.width, 32767);
}

TEST(Rectangles, SidesAreLimitedAndNotWrapped) {
  const ApiRect far{2147483000, -5, 1000, 2147483647};
  KernelRect kernel{};
  RectFromApi(&far, &kernel);
  EXPECT_EQ(kernel.bottom, 2147483647);
  EXPECT_EQ(kernel.right, 2147483642);
  const KernelRect corners{INT32_MAX, 3, INT32_MIN, 1};
  ApiRect api{};
  RectToApi(&corners, &api);
  EXPECT_EQ(api.left, INT32_MIN);
  EXPECT_EQ(api.top, 1);
  EXPECT_EQ(api.width, INT32_MAX);
  EXPECT_EQ(api.height, 2);
}

TEST(Rectangles, SidesBelowZeroReachAsFarAsNumbersDo) {
  const ApiRect far{-2147483000, -2147483648, -1000, -2147483647};
  KernelRect kernel{};
  RectFromApi(&far, &kernel);
  EXPECT_EQ(kernel.top, -2147483000);
  EXPECT_EQ(kernel.left, INT32_MIN);
  EXPECT_EQ(kernel.bottom, INT32_MIN);
  EXPECT_EQ(kernel.right, INT32_MIN);
}

TEST(Rectangles, CornersInAnyOrderGiveTheSameRectangle) {
  for (const KernelRect& corners :
       {KernelRect{7, 3, 2, 1}, KernelRect{2, 1, 7, 3}, KernelRect{7, 1, 2, 3}}) {
    ApiRect api{};
    RectToApi(&corners, &api);
    EXPECT_EQ(std::min(corners.left, corners.right), api.left);
    EXPECT_EQ(api.top, 1);
    EXPECT_EQ(api.width, 5);
    EXPECT_EQ(api.height, 2);
  }
  const KernelRect all{INT32_MIN, INT32_MIN, INT32_MAX, INT32_MAX};
  ApiRect api{};
  RectToApi(&all, &api);
  EXPECT_EQ(api.width, INT32_MAX);
  EXPECT_EQ(api.height, INT32_MAX);
}

TEST(Lines, GoFromPointToPointAndBack) {
  const ApiPoint start{-1, 2};
  const ApiPoint end{3, -4};
  KernelLine line{};
  LineFromPoints(&start, &end, &line);
  EXPECT_EQ(line.startX, -1);
  EXPECT_EQ(line.startY, 2);
  EXPECT_EQ(line.endX, 3);
  EXPECT_EQ(line.endY, -4);
  ApiPoint a{};
  ApiPoint b{};
  PointsFromLine(&line, &a, &b);
  EXPECT_EQ(a.x, -1);
  EXPECT_EQ(a.y, 2);
  EXPECT_EQ(b.x, 3);
  EXPECT_EQ(b.y, -4);
}

TEST(Lines, NullPointsAreTheCorners) {
  KernelLine line{};
  const ApiPoint end{3, 4};
  LineFromPoints(nullptr, &end, &line);
  EXPECT_EQ(line.startX, 0);
  EXPECT_EQ(line.endY, 4);
  LineFromPoints(nullptr, nullptr, &line);
  EXPECT_EQ(line.endX, 32767);
  ApiPoint a{};
  ApiPoint b{};
  PointsFromLine(&line, &a, &b);
  EXPECT_EQ(b.y, 32767);
  PointsFromLine(nullptr, &a, nullptr);
  EXPECT_EQ(a.x, 0);
  PointsFromLine(nullptr, nullptr, &b);
  EXPECT_EQ(b.x, 32767);
}

TEST(RectClip, TakesTheSecondRectanglesEdgesWhereTheyLieInTheFirst) {
  const PlacedRect first{10, 20, 30, 40};
  PlacedRect clipped{};
  RectClip(first, {15, 25, 10, 10}, &clipped);
  EXPECT_EQ(clipped.x, 15);
  EXPECT_EQ(clipped.y, 25);
  EXPECT_EQ(clipped.width, 10);
  EXPECT_EQ(clipped.height, 10);
  RectClip(first, {40, 60, 100, 100}, &clipped);  // both ends belong to it
  EXPECT_EQ(clipped.x, 40);
  EXPECT_EQ(clipped.width, 0);
  RectClip(first, {41, 61, 5, 5}, &clipped);  // beyond it: the whole first rectangle
  EXPECT_EQ(clipped.x, 10);
  EXPECT_EQ(clipped.width, 30);
  EXPECT_EQ(clipped.height, 40);
  RectClip(first, {5, 10, 10, 20}, &clipped);  // before it: its own start, the second one's end
  EXPECT_EQ(clipped.x, 10);
  EXPECT_EQ(clipped.width, 5);
  EXPECT_EQ(clipped.y, 20);
  EXPECT_EQ(clipped.height, 10);
  RectClip({INT32_MIN, INT32_MIN, INT32_MAX, INT32_MAX}, {INT32_MAX, 0, INT32_MAX, INT32_MIN},
           &clipped);
  EXPECT_EQ(clipped.x, INT32_MIN);
}

TEST(Numbers, LimitedCutsDecideInFloats) {
  EXPECT_EQ(CutLimited(NAN, 5, 9), 5);
  EXPECT_EQ(CutLimited(NAN, -5, 9), 0);
  EXPECT_EQ(CutLimited(1e300, 0, 255), 255);
  EXPECT_EQ(CutLimited(-INFINITY, 0, 255), 0);
  EXPECT_EQ(CutLimited(-0.9, -5, 5), 0);
  EXPECT_EQ(CutSaturated(3e9), INT32_MAX);
  EXPECT_EQ(CutSaturated(-3e9), INT32_MIN);
  EXPECT_EQ(SumSaturated(INT32_MAX, 1), INT32_MAX);
  EXPECT_EQ(SumSaturated(INT32_MIN, -1), INT32_MIN);
  EXPECT_EQ(CutLow<int32_t>(1e10), 1410065408);
  EXPECT_EQ(CutLow<uint8_t>(-1.0), 255);
  EXPECT_EQ(CutLow<uint8_t>(300.7), 44);
}

}  // namespace
