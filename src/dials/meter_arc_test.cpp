#include "dials/meter_arc.h"

#include "dials/dials_test.h"
#include "dials/meter_angle.h"
#include "tests/support/refused_memory.h"

namespace {

using test::Block;
using test::RegionRecord;

// The whole circle as stated, from a list of all points of the walk.
std::vector<PointFloat> CircleByTheRule(PointFloat centre, float radius) {
  const float squared = radius * radius;
  const auto off = [&](PointFloat p) {
    const float dx = p.x - centre.x;
    const float dy = p.y - centre.y;
    const float dx2 = dx * dx;
    const float dy2 = dy * dy;
    const float sum = dx2 + dy2;
    return std::fabs(sum - squared);
  };
  std::vector<PointFloat> walk = {{centre.x + radius, centre.y}};
  while (walk.back().x > centre.x) {
    const auto [x, y] = walk.back();
    const PointFloat a{x, y + 1}, b{x - 1, y}, c{x - 1, y + 1};
    PointFloat next = off(b) <= off(a) ? b : a;
    if (off(c) < off(next)) next = c;
    walk.push_back(next);
  }
  const size_t k = walk.size() - 1;
  if (k == 0) return {};
  std::vector<PointFloat> circle(4 * k - 2);
  for (size_t i = 0; i < k; i++) circle[i] = {walk[k - 1 - i].x, 2 * centre.y - walk[k - 1 - i].y};
  for (size_t i = k; i <= 2 * k - 2; i++) circle[i] = walk[i - k + 1];
  for (size_t i = 0; i < 2 * k - 1; i++) {
    circle[2 * k - 1 + i] = {2 * centre.x - circle[2 * k - 2 - i].x, circle[2 * k - 2 - i].y};
  }
  return circle;
}

double DirectionByTheRule(PointFloat point, PointFloat centre, double pi, double twoPi) {
  const float dx = point.x - centre.x;
  const float dy = point.y - centre.y;
  if (dx == 0) return dy > 0 ? 1.5707963 : 4.712389;
  double direction = std::atan(static_cast<double>(dy) / static_cast<double>(dx));
  if (dx < 0) direction += pi;
  if (dx > 0 && dy < 0) direction += twoPi;
  return direction;
}

float AngleByTheRule(PointFloat a, PointFloat b, PointFloat centre) {
  double angle = DirectionByTheRule(b, centre, 3.1415926, 6.2831852) -
                 DirectionByTheRule(a, centre, 3.1415926, 6.2831852);
  if (angle < 0) angle += 6.2831852;
  return static_cast<float>(angle);
}

std::vector<PointFloat> ArcByTheRule(PointFloat base, PointFloat start, PointFloat end) {
  const double dx = static_cast<double>(start.x) - static_cast<double>(base.x);
  const double dy = static_cast<double>(start.y) - static_cast<double>(base.y);
  const auto circle = CircleByTheRule(base, static_cast<float>(std::sqrt(dx * dx + dy * dy)));
  size_t nearest = 0;
  float least = INFINITY;
  for (size_t i = 0; i < circle.size(); i++) {
    const float x = circle[i].x - start.x;
    const float y = circle[i].y - start.y;
    const float x2 = x * x;
    const float y2 = y * y;
    if (x2 + y2 < least) {
      least = x2 + y2;
      nearest = i;
    }
  }
  const float limit = AngleByTheRule(start, end, base);
  std::vector<PointFloat> arc;
  for (size_t i = 0; i < circle.size(); i++) {
    const PointFloat point = circle[(nearest + i) % circle.size()];
    if (AngleByTheRule(circle[nearest], point, base) > limit) break;
    arc.push_back(point);
  }
  return arc;
}

struct Calibrated {
  int32_t result = 0;
  PointFloat base = {-1, -2};
  std::vector<PointFloat> arc;
};

Calibrated Calibrate2(PointFloat base, PointFloat start, PointFloat end) {
  Block<PointFloat> arc;
  int32_t count = 0;
  Calibrated made;
  made.result =
      ZEL_CalibrateMeter2(base.x, base.y, start.x, start.y, end.x, end.y, &arc.data, &count);
  made.arc.assign(arc.data, arc.data + count);
  return made;
}

Calibrated Calibrate(const RoiDescriptor* roi) {
  Block<PointFloat> arc;
  int32_t count = 0;
  Calibrated made;
  made.result = ZEL_CalibrateMeter(roi, &made.base, &arc.data, &count);
  made.arc.assign(arc.data, arc.data + count);
  return made;
}

bool IsSame(const std::vector<PointFloat>& a, const std::vector<PointFloat>& b) {
  return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                    [](PointFloat p, PointFloat q) { return p.x == q.x && p.y == q.y; });
}

TEST(MeterCircles, AreWalkedByTheRule) {
  test::Random random(3);
  for (int i = 0; i < 300; i++) {
    const PointFloat centre =
        i % 3 == 0 ? PointFloat{100, 80} : PointFloat{random.Float(-50, 500), random.Float(0, 400)};
    const float radius = i < 100 ? static_cast<float>(i + 1) / 4 : random.Float(0.1f, 900);
    zel::MeterCircle circle;
    ASSERT_EQ(circle.Walk(centre, radius), 0);
    const auto expected = CircleByTheRule(centre, radius);
    ASSERT_EQ(circle.count(), static_cast<int64_t>(expected.size()));
    std::vector<PointFloat> points;
    for (int64_t p = 0; p < circle.count(); p++) points.push_back(circle[p]);
    ASSERT_TRUE(IsSame(points, expected)) << centre.x << ' ' << centre.y << ' ' << radius;
  }
}

TEST(MeterCircles, AreRoundAndClockwiseAndStepTwoPixelsAtTopAndBottom) {
  const PointFloat centre{200, 200};
  zel::MeterCircle circle;
  ASSERT_EQ(circle.Walk(centre, 90), 0);
  int64_t wideSteps = 0;
  for (int64_t i = 0; i < circle.count(); i++) {
    const PointFloat point = circle[i];
    const PointFloat next = circle[(i + 1) % circle.count()];
    EXPECT_NEAR(std::hypot(point.x - 200, point.y - 200), 90, 1.0);
    EXPECT_NE(point.x, 200) << "the column of the centre";
    EXPECT_LT(AngleByTheRule(point, next, centre), 0.05f);
    if (std::fabs(next.x - point.x) == 2) wideSteps++;
  }
  EXPECT_EQ(wideSteps, 2);
  EXPECT_EQ(circle[0].x, 201);  // right of the top
}

TEST(MeterCircles, OfOnePixelHaveTwoPoints) {
  const auto circle = CircleByTheRule({10, 10}, 0.5f);
  zel::MeterCircle made;
  ASSERT_EQ(made.Walk({10, 10}, 0.5f), 0);
  EXPECT_EQ(made.count(), 2);
  EXPECT_EQ(circle.size(), 2u);
}

TEST(MeterAngles, AreMeasuredClockwiseOnTheScreen) {
  const PointFloat centre{10, 20};
  const auto& turn = zel::CALIBRATING_TURN;
  const auto direction = [&](float x, float y) {
    return zel::DirectionAround({x, y}, centre, turn);
  };
  EXPECT_EQ(direction(12, 20), 0.0);
  EXPECT_EQ(direction(10, 25), 1.5707963);
  EXPECT_EQ(direction(7, 20), 3.1415926);
  EXPECT_EQ(direction(10, 15), 4.712389);
  EXPECT_EQ(direction(11, 19), std::atan(-1.0) + 6.2831852);
  EXPECT_EQ(direction(9, 19), std::atan(1.0) + 3.1415926);
  float angle = -1;
  EXPECT_EQ(zel::AngleAround({12, 20}, {10, 25}, centre, turn, &angle), 0);
  EXPECT_EQ(angle, static_cast<float>(1.5707963));
  EXPECT_EQ(zel::AngleAround({10, 25}, {12, 20}, centre, turn, &angle), 0);
  EXPECT_EQ(angle, static_cast<float>(-1.5707963 + 6.2831852));
  EXPECT_EQ(zel::AngleAround({11, 25}, {11, 25}, centre, turn, &angle), 0);
  EXPECT_EQ(angle, 0.0f);
}

TEST(MeterAngles, AroundAPointThemselvesAre752) {
  float angle = -1;
  const auto& turn = zel::READING_TURN;
  EXPECT_EQ(zel::AngleAround({1, 2}, {3, 4}, {1, 2}, turn, &angle), 752);
  EXPECT_EQ(zel::AngleAround({1, 2}, {3, 4}, {3, 4}, turn, &angle), 752);
  EXPECT_EQ(angle, -1);
  EXPECT_EQ(zel::AngleAround({1, 2}, {3, 4}, {1, 4}, turn, &angle), 0);
}

TEST(MeterAngles, OfReadingHaveTurnsRoundedToFloats) {
  EXPECT_EQ(zel::READING_TURN.half, static_cast<double>(3.1415925f));
  EXPECT_EQ(zel::READING_TURN.full, static_cast<double>(6.283185f));
  EXPECT_NE(zel::READING_TURN.half, zel::CALIBRATING_TURN.half);
}

TEST(CalibrateMeter2, GivesTheStatedArc) {
  test::Random random(5);
  for (int i = 0; i < 200; i++) {
    const PointFloat base{random.Float(0, 300), random.Float(0, 300)};
    const PointFloat start{random.Float(0, 300), random.Float(0, 300)};
    const PointFloat end{random.Float(0, 300), random.Float(0, 300)};
    const auto [result, unused, arc] = Calibrate2(base, start, end);
    ASSERT_EQ(result, 0);
    ASSERT_GE(arc.size(), 1u);
    ASSERT_TRUE(IsSame(arc, ArcByTheRule(base, start, end)));
  }
}

TEST(CalibrateMeter2, OfEqualDirectionsGivesTheNearestPointAlone) {
  const auto [result, unused, arc] = Calibrate2({100, 100}, {150, 100}, {180, 100});
  ASSERT_EQ(result, 0);
  ASSERT_EQ(arc.size(), 1u);
  EXPECT_EQ(arc[0].x, 150);
  EXPECT_EQ(arc[0].y, 100);
}

TEST(CalibrateMeter2, RefusesWhatIsNoMeter) {
  EXPECT_EQ(Calibrate2({5, 5}, {5, 5}, {9, 9}).result, -752);
  EXPECT_EQ(Calibrate2({5, 5}, {9, 9}, {5, 5}).result, -752);
  // A radius that is lost beside the base's column.
  EXPECT_EQ(Calibrate2({1000000, 1e-9f}, {1000000, 0}, {1000000, 5}).result, -752);
  const float beyond = std::nextafter(1048576.0f, 1e9f);
  for (const float wild : {beyond, -beyond, NAN, INFINITY, -INFINITY, 1e38f}) {
    EXPECT_EQ(Calibrate2({wild, 5}, {9, 9}, {7, 8}).result, -503);
    EXPECT_EQ(Calibrate2({5, 5}, {9, wild}, {7, 8}).result, -503);
    EXPECT_EQ(Calibrate2({5, 5}, {9, 9}, {wild, 8}).result, -503);
  }
  int32_t count = 7;
  Block<PointFloat> arc;
  EXPECT_EQ(ZEL_CalibrateMeter2(1, 2, 3, 4, 5, 6, nullptr, &count), -5);
  EXPECT_EQ(ZEL_CalibrateMeter2(1, 2, 3, 4, 5, 6, &arc.data, nullptr), -5);
  EXPECT_EQ(count, 7);
  EXPECT_EQ(arc.data, nullptr);
}

TEST(CalibrateMeter2, TakesCoordinatesUpToTheLimit) {
  const auto [result, unused, arc] = Calibrate2({1048576, 1048576}, {1048476, 1048576},  //
                                                {1048576, 1048476});
  ASSERT_EQ(result, 0);
  EXPECT_GT(arc.size(), 100u);
  EXPECT_TRUE(IsSame(arc, ArcByTheRule({1048576, 1048576}, {1048476, 1048576},  //
                                       {1048576, 1048476})));
}

TEST(CalibrateMeter2, LeavesTheArcAfterAFailureAndReplacesItAfterASuccess) {
  Block<PointFloat> arc;
  int32_t count = 0;
  ASSERT_EQ(ZEL_CalibrateMeter2(100, 100, 150, 100, 100, 150, &arc.data, &count), 0);
  const std::vector<PointFloat> before(arc.data, arc.data + count);
  const PointFloat* const place = arc.data;
  EXPECT_EQ(ZEL_CalibrateMeter2(100, 100, 100, 100, 100, 150, &arc.data, &count), -752);
  EXPECT_EQ(arc.data, place);
  EXPECT_TRUE(IsSame(before, {arc.data, arc.data + count}));
  ASSERT_EQ(ZEL_CalibrateMeter2(100, 100, 180, 100, 100, 150, &arc.data, &count), 0);
  EXPECT_GT(static_cast<size_t>(count), before.size());
  EXPECT_TRUE(
      IsSame({arc.data, arc.data + count}, ArcByTheRule({100, 100}, {180, 100}, {100, 150})));
}

RegionRecord TwoLines(std::vector<int32_t> first, std::vector<int32_t> second) {
  return RegionRecord({{ROI_LINE, std::move(first)}, {ROI_LINE, std::move(second)}});
}

TEST(CalibrateMeter, FindsTheBaseWhereTheLinesCross) {
  // From the arc towards the base, which neither line reaches.
  const auto [result, base, arc] = Calibrate(TwoLines({50, 150, 75, 125}, {150, 150, 140, 140}));
  ASSERT_EQ(result, 0);
  EXPECT_EQ(base.x, 100);
  EXPECT_EQ(base.y, 100);
  // Three quarters of the circle, clockwise over the top.
  EXPECT_TRUE(IsSame(arc, ArcByTheRule({100, 100}, {50, 150}, {150, 150})));
  EXPECT_NEAR(arc.front().x, 50, 1);
  EXPECT_NEAR(arc.front().y, 150, 1);
  const auto isAbove = [](PointFloat point) { return point.y < 50; };
  EXPECT_TRUE(std::any_of(arc.begin(), arc.end(), isAbove));
}

TEST(CalibrateMeter, FindsBasesBetweenPixels) {
  const auto [result, base, arc] = Calibrate(TwoLines({10, 0, 0, 7}, {0, 0, 9, 11}));
  ASSERT_EQ(result, 0);
  const double x = 70.0 / (7.0 + 110.0 / 9.0);
  EXPECT_FLOAT_EQ(base.x, static_cast<float>(x));
  EXPECT_FLOAT_EQ(base.y, static_cast<float>(11.0 / 9.0 * x));
}

TEST(CalibrateMeter, LooksAtNothingButTheFirstTypeAndTwoPointsEach) {
  const std::vector<int32_t> first = {50, 150, 75, 125};
  const std::vector<int32_t> second = {150, 150, 140, 140};
  const Calibrated plain = Calibrate(TwoLines(first, second));
  const RegionRecord odd({{ROI_LINE, {50, 150, 75, 125, 9, 9}, ROI_INTERNAL}, {ROI_OVAL, second}});
  const Calibrated other = Calibrate(odd);
  ASSERT_EQ(other.result, 0);
  EXPECT_EQ(other.base.x, plain.base.x);
  EXPECT_TRUE(IsSame(other.arc, plain.arc));
}

TEST(CalibrateMeter, RefusesOtherDrawnRegions) {
  const std::vector<int32_t> line = {50, 150, 75, 125};
  EXPECT_EQ(Calibrate(RegionRecord(std::vector<RegionRecord::Contour>{})).result, -1200);
  EXPECT_EQ(Calibrate(RegionRecord({{ROI_LINE, line}})).result, -1200);
  EXPECT_EQ(Calibrate(RegionRecord({{ROI_LINE, line}, {ROI_LINE, line}, {ROI_LINE, line}})).result,
            -1200);
  EXPECT_EQ(Calibrate(RegionRecord({{ROI_RECT, line}, {ROI_LINE, {1, 2, 3, 5}}})).result, -1200);
  EXPECT_EQ(Calibrate(RegionRecord({{ROI_LINE, {50, 150}}, {ROI_LINE, line}})).result, -1200);
  EXPECT_EQ(Calibrate(RegionRecord({{ROI_LINE, line}, {ROI_LINE, {}}})).result, -1200);
  RegionRecord withoutContour = TwoLines(line, {1, 2, 3, 5});
  RoiContour* const kept = std::exchange(withoutContour->contours[1], nullptr);
  EXPECT_EQ(Calibrate(withoutContour).result, -1200);
  withoutContour->contours[1] = kept;
  withoutContour->contourCount = -2;
  EXPECT_EQ(Calibrate(withoutContour).result, -1200);
  withoutContour->contourCount = 2;
}

TEST(CalibrateMeter, RefusesLinesThatGiveNoBase) {
  EXPECT_EQ(Calibrate(TwoLines({10, 10, 20, 20}, {10, 20, 20, 30})).result, -3010);
  EXPECT_EQ(Calibrate(TwoLines({10, 10, 20, 20}, {10, 10, 20, 20})).result, -3010);
  EXPECT_EQ(Calibrate(TwoLines({10, 10, 10, 10}, {10, 20, 20, 30})).result, -752);
  EXPECT_EQ(Calibrate(TwoLines({10, 20, 20, 30}, {10, 10, 10, 10})).result, -752);
  EXPECT_EQ(Calibrate(TwoLines({10, 10, 20, 20}, {10, 10, 20, 30})).result, -752);
  // Nearly parallel: they cross far away.
  EXPECT_EQ(Calibrate(TwoLines({0, 0, 2000, 1}, {0, 10, 2000, 9})).result, 0);
  EXPECT_EQ(Calibrate(TwoLines({0, 0, 2000000, 1}, {0, 10, 2000000, 10})).result, -503);
  const RegionRecord wide = TwoLines({0, INT32_MIN, INT32_MAX, INT32_MAX},  //
                                     {INT32_MAX, INT32_MIN, 0, INT32_MAX});
  EXPECT_EQ(Calibrate(wide).result, -503);
}

TEST(CalibrateMeter, NeedsADrawnRegionAndPlacesForTheResults) {
  const test::MessageWatch watch;
  const RegionRecord lines = TwoLines({50, 150, 75, 125}, {150, 150, 140, 140});
  PointFloat base{};
  Block<PointFloat> arc;
  int32_t count = 7;
  EXPECT_EQ(ZEL_CalibrateMeter(lines, nullptr, &arc.data, &count), -5);
  EXPECT_EQ(ZEL_CalibrateMeter(lines, &base, nullptr, &count), -5);
  EXPECT_EQ(ZEL_CalibrateMeter(lines, &base, &arc.data, nullptr), -5);
  EXPECT_TRUE(watch.Messages().empty());
  EXPECT_EQ(ZEL_CalibrateMeter(nullptr, nullptr, nullptr, nullptr), -1200);
  EXPECT_EQ(watch.Messages(), std::vector<std::string>{"ZEL_CalibrateMeter: ROI not provided"});
  EXPECT_EQ(count, 7);
}

TEST(CalibrateMeter, WithoutMemoryChangesNothing) {
  const RegionRecord lines = TwoLines({50, 150, 75, 125}, {150, 150, 140, 140});
  Block<PointFloat> arc;
  PointFloat base{};
  int32_t count = 0;
  const auto prepare = [&] {
    ZEL_free(std::exchange(arc.data, static_cast<PointFloat*>(ZEL_malloc(8))));
    arc.data[0] = {3, 4};
    base = {1, 2};
    count = 7;
  };
  test::RefuseEachAllocation(prepare, [&] {
    const int32_t result = ZEL_CalibrateMeter(lines, &base, &arc.data, &count);
    if (result != 0) {
      EXPECT_EQ(base.x, 1);
      EXPECT_EQ(count, 7);
      EXPECT_EQ(arc.data[0].y, 4);
    }
    return result;
  });
  EXPECT_EQ(base.x, 100);
}

}  // namespace
