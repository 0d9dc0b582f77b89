#include <algorithm>
#include <limits>

#include "tests/support/refused_memory.h"
#include "vision/vision_test.h"

namespace {

using namespace test::paths;

using Points = std::vector<PointFloat>;

constexpr double PI = 3.14159274;
constexpr double DEGREES = 57.29577867;

int32_t CountOf(const Points& points) {
  return static_cast<int32_t>(points.size());
}

struct Circle {
  PointFloat centre{-7, -7};
  double diameter = -7, area = -7, perimeter = -7;
};

int32_t Fit(const Points& points, Circle* circle) {
  return ZEL_GetCircle(points.data(), CountOf(points), &circle->centre, &circle->diameter,
                       &circle->area, &circle->perimeter);
}

TEST(GetCircle, FindsTheCircleThatThePointsLieOn) {
  for (const double radius : {0.5, 7.0, 300.0}) {
    for (const int32_t count : {3, 4, 17, 100}) {
      Points points;
      for (int32_t i = 0; i < count; i++) {
        const double angle = 5.0 * i / count;
        points.push_back({static_cast<float>(31.5 + radius * std::cos(angle)),
                          static_cast<float>(-12.25 + radius * std::sin(angle))});
      }
      Circle circle;
      ASSERT_EQ(Fit(points, &circle), 0);
      EXPECT_NEAR(circle.centre.x, 31.5, 2e-3);
      EXPECT_NEAR(circle.centre.y, -12.25, 2e-3);
      EXPECT_NEAR(circle.diameter, 2 * radius, 4e-3);
      EXPECT_DOUBLE_EQ(circle.perimeter, circle.diameter * PI);
      EXPECT_NEAR(circle.area, circle.diameter * circle.diameter / 4 * PI, 1e-9 * circle.area);
    }
  }
}

// The least sum of squares of (distance squared - radius squared), by its normal equations.
TEST(GetCircle, OfScatteredPointsIsTheLeastSquaresOne) {
  test::Random random(4);
  for (int32_t trial = 0; trial < 20; trial++) {
    Points points;
    for (int32_t i = 0; i < 12; i++) {
      points.push_back({random.Float(-9, 9), random.Float(-9, 9)});
    }
    Circle circle;
    ASSERT_EQ(Fit(points, &circle), 0);
    const auto errorAt = [&](double x, double y) {
      double mean = 0;
      for (const PointFloat& p : points) {
        mean += (std::pow(static_cast<double>(p.x) - x, 2) +
                 std::pow(static_cast<double>(p.y) - y, 2)) /
                static_cast<double>(points.size());
      }
      double sum = 0;
      for (const PointFloat& p : points) {
        sum += std::pow(std::pow(static_cast<double>(p.x) - x, 2) +
                            std::pow(static_cast<double>(p.y) - y, 2) - mean,
                        2);
      }
      return sum;
    };
    const auto x = static_cast<double>(circle.centre.x);
    const auto y = static_cast<double>(circle.centre.y);
    const double here = errorAt(x, y);
    for (const double step : {-0.01, 0.01}) {
      EXPECT_GT(errorAt(x + step, y), here);
      EXPECT_GT(errorAt(x, y + step), here);
    }
    double squares = 0;
    for (const PointFloat& p : points) {
      squares +=
          std::pow(static_cast<double>(p.x) - x, 2) + std::pow(static_cast<double>(p.y) - y, 2);
    }
    EXPECT_DOUBLE_EQ(circle.diameter, 2 * std::sqrt(squares / 12));
  }
}

TEST(GetCircle, OfPointsOnALineHasNoSolution) {
  Circle circle;
  EXPECT_EQ(Fit({{0, 0}, {1, 1}, {2, 2}}, &circle), ZEL_ERR_NO_SOLUTION);
  EXPECT_EQ(Fit({{3, -1}, {3, 0}, {3, 1}, {3, 4}}, &circle), ZEL_ERR_NO_SOLUTION);
  EXPECT_EQ(Fit({{5, 5}, {5, 5}, {5, 5}}, &circle), ZEL_ERR_NO_SOLUTION);
  EXPECT_EQ(circle.diameter, -7);
  EXPECT_EQ(circle.centre.x, -7);
}

TEST(GetCircle, FailsInTheStatedOrder) {
  const PointFloat points[3] = {{0, 0}, {1, 0}, {0, 1}};
  Circle c;
  for (const int32_t count : {2, 0, -1, INT32_MIN}) {
    EXPECT_EQ(ZEL_GetCircle(points, count, &c.centre, &c.diameter, &c.area, &c.perimeter),
              ZEL_ERR_INVALID_PARAMETER);
  }
  EXPECT_EQ(ZEL_GetCircle(nullptr, 2, &c.centre, &c.diameter, &c.area, &c.perimeter),
            ZEL_ERR_NULL_POINTER);
  EXPECT_EQ(ZEL_GetCircle(points, 2, nullptr, &c.diameter, &c.area, &c.perimeter),
            ZEL_ERR_NULL_POINTER);
  EXPECT_EQ(ZEL_GetCircle(points, 2, &c.centre, nullptr, &c.area, &c.perimeter),
            ZEL_ERR_NULL_POINTER);
  EXPECT_EQ(ZEL_GetCircle(points, 2, &c.centre, &c.diameter, nullptr, &c.perimeter),
            ZEL_ERR_NULL_POINTER);
  EXPECT_EQ(ZEL_GetCircle(points, 2, &c.centre, &c.diameter, &c.area, nullptr),
            ZEL_ERR_NULL_POINTER);
  EXPECT_EQ(ZEL_GetCircle(nullptr, -1, &c.centre, &c.diameter, &c.area, &c.perimeter),
            ZEL_ERR_INVALID_PARAMETER);
}

TEST(GetCircle, OfWildPointsEnds) {
  constexpr float inf = std::numeric_limits<float>::infinity();
  for (const float wild : {NAN, inf, 3e38f, 1e-45f}) {
    Circle circle;
    const int32_t result = Fit({{wild, 0}, {1, wild}, {2, 5}, {-wild, wild}}, &circle);
    EXPECT_TRUE(result == 0 || result == ZEL_ERR_NO_SOLUTION);
  }
}

struct Angles {
  Table<float> radians, degrees;
};

int32_t Measure(const Points& points, PointFloat origin, int32_t mode, Angles* angles) {
  const int32_t result =
      ZEL_GetAngles(points.data(), CountOf(points), origin, mode, &angles->radians.records,
                    &angles->degrees.records, &angles->radians.count);
  angles->degrees.count = angles->radians.count;
  return result;
}

// By the directions' own angles.
double Between(double x1, double y1, double x2, double y2) {
  const double turn = std::fabs(std::atan2(y1, x1) - std::atan2(y2, x2));
  return std::min(turn, 2 * std::acos(-1.0) - turn);
}

double DirectionAngle(const PointFloat& a, const PointFloat& b, const PointFloat& c,
                      const PointFloat& d) {
  return Between(static_cast<double>(b.x - a.x), static_cast<double>(b.y - a.y),
                 static_cast<double>(d.x - c.x), static_cast<double>(d.y - c.y));
}

TEST(GetAngles, FollowsItsModes) {
  test::Random random(6);
  for (int32_t count = 3; count < 20; count++) {
    Points p;
    for (int32_t i = 0; i < count; i++) p.push_back({random.Float(-9, 9), random.Float(-9, 9)});
    const PointFloat origin{random.Float(-9, 9), random.Float(-9, 9)};
    Angles from;
    ASSERT_EQ(Measure(p, origin, ANGLES_FROM_ORIGIN | 0x30000, &from), 0);
    ASSERT_EQ(from.radians.count, count - 1);
    for (int32_t i = 0; i + 1 < count; i++) {
      const auto k = static_cast<size_t>(i);
      EXPECT_NEAR(from.radians[i], DirectionAngle(origin, p[k], origin, p[k + 1]), 2e-3);
      EXPECT_EQ(from.degrees[i],
                static_cast<float>(static_cast<double>(from.radians[i]) * DEGREES));
    }
    Angles lines;
    ASSERT_EQ(Measure(p, origin, ANGLES_BETWEEN_LINES, &lines), 0);
    ASSERT_EQ(lines.radians.count, count == 3 ? 1 : count / 4);
    if (count == 3) {
      EXPECT_NEAR(lines.radians[0], DirectionAngle(p[1], p[0], p[1], p[2]), 2e-3);
    }
    for (int32_t i = 0; count > 3 && i < count / 4; i++) {
      const auto k = static_cast<size_t>(4 * i);
      EXPECT_NEAR(lines.radians[i], DirectionAngle(p[k], p[k + 1], p[k + 2], p[k + 3]), 2e-3);
    }
  }
}

TEST(GetAngles, OfASquareAreRightAngles) {
  const Points corner = {{4, 2}, {2, 2}, {2, 9}};
  Angles angles;
  ASSERT_EQ(Measure(corner, {}, 0, &angles), 0);
  EXPECT_FLOAT_EQ(angles.degrees[0], 90.0f);
  ASSERT_EQ(Measure({{1, 0}, {-2, 0}}, {}, 1, &angles), 0);
  EXPECT_FLOAT_EQ(angles.degrees[0], 180.0f);
}

TEST(GetAngles, BesideDirectionsWithoutLengthAreNaN) {
  Angles angles;
  ASSERT_EQ(Measure({{0, 0}, {1, 1}, {1, 0}}, {0, 0}, 1, &angles), 0);
  EXPECT_TRUE(std::isnan(angles.radians[0]));
  EXPECT_TRUE(std::isnan(angles.degrees[0]));
  EXPECT_FLOAT_EQ(angles.degrees[1], 45.0f);
}

TEST(GetAngles, OfAnUnknownModeKeepWhatTheTablesHold) {
  const Points points(12, PointFloat{1, 2});
  Angles angles;
  angles.radians.records = static_cast<float*>(ZEL_malloc(2 * sizeof(float)));
  angles.degrees.records = static_cast<float*>(ZEL_malloc(5 * sizeof(float)));
  std::fill_n(angles.radians.records, 2, 7.0f);
  std::fill_n(angles.degrees.records, 5, 8.0f);
  ASSERT_EQ(Measure(points, {}, 2, &angles), 0);
  EXPECT_EQ(angles.radians.Copy(), (std::vector<float>{7, 7, 0}));
  EXPECT_EQ(angles.degrees.Copy(), (std::vector<float>{8, 8, 8}));
  Angles fresh;
  ASSERT_EQ(Measure(points, {}, -1, &fresh), 0);
  EXPECT_EQ(fresh.radians.Copy(), (std::vector<float>{0, 0, 0}));
}

TEST(GetAngles, FailInTheStatedOrderAndLeaveTheOutputs) {
  const PointFloat points[4] = {};
  float* radians = nullptr;
  float* degrees = nullptr;
  int32_t count = 77;
  const auto call = [&](const PointFloat* p, int32_t n, int32_t mode) {
    return ZEL_GetAngles(p, n, {}, mode, &radians, &degrees, &count);
  };
  EXPECT_EQ(call(nullptr, 1, 0), ZEL_ERR_NULL_POINTER);
  EXPECT_EQ(ZEL_GetAngles(points, 1, {}, 0, nullptr, &degrees, &count), ZEL_ERR_NULL_POINTER);
  EXPECT_EQ(ZEL_GetAngles(points, 1, {}, 0, &radians, nullptr, &count), ZEL_ERR_NULL_POINTER);
  EXPECT_EQ(call(points, 1, ANGLES_FROM_ORIGIN), ZEL_ERR_TOO_FEW_POINTS);
  for (const int32_t mode : {0, 2, 0x10000}) {
    EXPECT_EQ(call(points, 2, mode), ZEL_ERR_TOO_FEW_POINTS);
  }
  EXPECT_EQ(call(nullptr, INT32_MIN, 1), ZEL_ERR_TOO_FEW_POINTS);
  EXPECT_EQ(count, 77);
  EXPECT_EQ(ZEL_GetAngles(points, 4, {}, 1, &radians, &degrees, nullptr), 0);
  ZEL_free(radians);
  ZEL_free(degrees);
}

TEST(GetAngles, DoWithoutMemory) {
  const Points points(40, PointFloat{1, 2});
  Angles angles;
  test::RefuseEachAllocation([] {}, [&] { return Measure(points, {}, 1, &angles); });
}

TEST(PointDistances, LeadFromPointToPoint) {
  test::Random random(6);
  Points points;
  for (int32_t i = 0; i < 100; i++) {
    points.push_back({random.Float(-900, 900), random.Float(-900, 900)});
  }
  Table<float> distances;
  ASSERT_EQ(ZEL_PointDistances(points.data(), 100, &distances.records, &distances.count), 0);
  ASSERT_EQ(distances.count, 99);
  for (int32_t i = 0; i < 99; i++) {
    const PointFloat& a = points[static_cast<size_t>(i)];
    const PointFloat& b = points[static_cast<size_t>(i) + 1];
    EXPECT_FLOAT_EQ(distances[i], static_cast<float>(std::hypot(
                                      static_cast<double>(b.x) - static_cast<double>(a.x),
                                      static_cast<double>(b.y) - static_cast<double>(a.y))));
  }
  // In doubles: no square leaves the floats.
  const PointFloat far[2] = {{-3e38f, 0}, {3e37f, 0}};
  ASSERT_EQ(ZEL_PointDistances(far, 2, &distances.records, nullptr), 0);
  EXPECT_FLOAT_EQ(distances[0], 3.3e38f);
}

TEST(PointDistances, OfFewerThanTwoPointsFail) {
  const PointFloat point[1] = {};
  float* distances = nullptr;
  int32_t count = 77;
  for (const int32_t n : {1, 0, -1, INT32_MIN}) {
    EXPECT_EQ(ZEL_PointDistances(point, n, &distances, &count), ZEL_ERR_TOO_FEW_POINTS);
  }
  EXPECT_EQ(ZEL_PointDistances(nullptr, 1, &distances, &count), ZEL_ERR_NULL_POINTER);
  EXPECT_EQ(ZEL_PointDistances(point, 1, nullptr, &count), ZEL_ERR_NULL_POINTER);
  EXPECT_EQ(count, 77);
  EXPECT_EQ(distances, nullptr);
}

TEST(PointDistances, DoWithoutMemory) {
  const Points points(40, PointFloat{1, 2});
  Table<float> d;
  test::RefuseEachAllocation(
      [] {}, [&] { return ZEL_PointDistances(points.data(), 40, &d.records, &d.count); });
}

}  // namespace
