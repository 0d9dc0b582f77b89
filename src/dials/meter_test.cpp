#include <numeric>

#include "dials/dials_test.h"

namespace {

using test::Block;
using test::Canvas;
using test::Place;
using test::TestImage;

double DirectionByTheRule(PointFloat point, PointFloat centre) {
  const float dx = point.x - centre.x;
  const float dy = point.y - centre.y;
  if (dx == 0) return dy > 0 ? 1.5707963 : 4.712389;
  double direction = std::atan(static_cast<double>(dy) / static_cast<double>(dx));
  if (dx < 0) direction += static_cast<double>(3.1415925f);
  if (dx > 0 && dy < 0) direction += static_cast<double>(6.283185f);
  return direction;
}

float AngleByTheRule(PointFloat a, PointFloat b, PointFloat centre) {
  double angle = DirectionByTheRule(b, centre) - DirectionByTheRule(a, centre);
  if (angle < 0) angle += static_cast<double>(6.283185f);
  return static_cast<float>(angle);
}

struct Reading {
  int32_t result = 0;
  float percent = -1;
  PointFloat tip = {-1, -1};
};

Reading Read(ImageRef image, PointFloat base, const std::vector<PointFloat>& arc, bool isLight) {
  Reading reading;
  reading.result =
      ZEL_ReadMeter(image, base.x, base.y, arc.data(), static_cast<int32_t>(arc.size()), isLight,
                    &reading.percent, &reading.tip);
  return reading;
}

// By the profiles of the lines.
Reading ReadByTheRule(ImageRef image, PointFloat base, const std::vector<PointFloat>& arc,
                      bool isLight) {
  size_t best = 0;
  float bestMean = isLight ? -1e38f : 1e38f;
  for (size_t i = 0; i < arc.size(); i++) {
    LineProfileReport report{};
    EXPECT_EQ(ZEL_LineProfile(image, static_cast<int32_t>(arc[i].x), static_cast<int32_t>(arc[i].y),
                              static_cast<int32_t>(base.x), static_cast<int32_t>(base.y), ARRAY_SGL,
                              nullptr, nullptr, &report),
              0);
    if (isLight ? report.mean > bestMean : report.mean < bestMean) {
      bestMean = report.mean;
      best = i;
    }
  }
  Reading reading;
  const double angle = static_cast<double>(AngleByTheRule(arc[0], arc[best], base));
  const double full = static_cast<double>(AngleByTheRule(arc[0], arc.back(), base));
  reading.percent = static_cast<float>(angle / full * 100.0);
  reading.tip = arc[best];
  return reading;
}

std::vector<PointFloat> ArcOf(PointFloat base, PointFloat start, PointFloat end) {
  Block<PointFloat> arc;
  int32_t count = 0;
  EXPECT_EQ(ZEL_CalibrateMeter2(base.x, base.y, start.x, start.y, end.x, end.y, &arc.data, &count),
            0);
  return {arc.data, arc.data + count};
}

TEST(ReadMeter, FollowsTheRuleForAllTypes) {
  test::Random random(11);
  for (int i = 0; i < 120; i++) {
    const int32_t type = i % 3;
    const TestImage image(type, 90, 70, 1, static_cast<uint64_t>(i));
    const PointFloat base{random.Float(-20, 110), random.Float(-20, 90)};
    const std::vector<PointFloat> arc =
        ArcOf(base, {random.Float(-30, 120), random.Float(-30, 100)},
              {random.Float(-30, 120), random.Float(-30, 100)});
    if (arc.size() < 2) continue;
    const bool isLight = i % 2 == 0;
    const Reading expected = ReadByTheRule(image, base, arc, isLight);
    const Reading reading = Read(image, base, arc, isLight);
    ASSERT_EQ(reading.result, 0);
    EXPECT_EQ(reading.percent, expected.percent);
    EXPECT_EQ(reading.tip.x, expected.tip.x);
    EXPECT_EQ(reading.tip.y, expected.tip.y);
  }
}

TEST(ReadMeter, TakesTheFirstOfEqualMeans) {
  const TestImage image(IMAGE_U8, 50, 50);
  for (int32_t y = 0; y < 50; y++) {
    for (int32_t x = 0; x < 50; x++) image.Set<uint8_t>(x, y, 9);
  }
  const std::vector<PointFloat> arc = {{5, 25}, {25, 5}, {45, 25}};
  for (const bool isLight : {false, true}) {
    const Reading reading = Read(image, {25, 25}, arc, isLight);
    EXPECT_EQ(reading.result, 0);
    EXPECT_EQ(reading.percent, 0.0f);
    EXPECT_EQ(reading.tip.x, 5);
  }
  image.Set<uint8_t>(25, 10, 8);
  image.Set<uint8_t>(40, 25, 10);
  EXPECT_NEAR(Read(image, {25, 25}, arc, false).percent, 50.0f, 1e-4f);
  EXPECT_EQ(Read(image, {25, 25}, arc, true).percent, 100.0f);
}

TEST(ReadMeter, LetsLinesOutsideTheImageTakePartWithAMeanOf0) {
  const TestImage image(IMAGE_I16, 50, 50);
  for (int32_t y = 0; y < 50; y++) {
    for (int32_t x = 0; x < 50; x++) image.Set<int16_t>(x, y, 100);
  }
  const std::vector<PointFloat> arc = {{40, 60}, {60, 60}, {60, 40}};
  EXPECT_EQ(Read(image, {45, 45}, arc, false).tip.x, 40);  // 100, partly outside
  const std::vector<PointFloat> beyond = {{40, 60}, {70, 80}, {80, 60}};
  const Reading dark = Read(image, {60, 45}, beyond, false);
  EXPECT_EQ(dark.result, 0);
  EXPECT_EQ(dark.tip.x, 40) << "wholly outside, as the others are";
  const std::vector<PointFloat> mixed = {{10, 45}, {70, 80}, {80, 60}};
  EXPECT_EQ(Read(image, {60, 45}, mixed, false).tip.x, 70);
  EXPECT_EQ(Read(image, {60, 45}, mixed, true).tip.x, 10);
}

TEST(ReadMeter, NeverTakesAMeanThatIsNoNumber) {
  const TestImage image(IMAGE_SGL, 50, 50);
  for (int32_t y = 0; y < 50; y++) {
    for (int32_t x = 0; x < 50; x++) image.Set<float>(x, y, x < 25 ? NAN : 7.0f);
  }
  const std::vector<PointFloat> arc = {{5, 20}, {24, 5}, {45, 20}};
  for (const bool isLight : {false, true}) EXPECT_EQ(Read(image, {30, 25}, arc, isLight).tip.x, 45);
  for (int32_t y = 0; y < 50; y++) {
    for (int32_t x = 0; x < 50; x++) image.Set<float>(x, y, NAN);
  }
  for (const bool isLight : {false, true}) {
    const Reading reading = Read(image, {30, 25}, arc, isLight);
    EXPECT_EQ(reading.result, 0);
    EXPECT_EQ(reading.tip.x, 5);
    EXPECT_EQ(reading.percent, 0.0f);
  }
}

TEST(ReadMeter, CutsCoordinatesForTheLinesAndNotForTheAngles) {
  const TestImage image(IMAGE_U8, 50, 50, 0, 3);
  const std::vector<PointFloat> whole = {{5, 20}, {25, 5}, {45, 20}};
  const std::vector<PointFloat> parts = {{5.9f, 20.9f}, {25.5f, 5.5f}, {45.9f, 20.1f}};
  const Reading cut = Read(image, {30, 25}, whole, false);
  const Reading uncut = Read(image, {30.9f, 25.7f}, parts, false);
  EXPECT_EQ(std::floor(uncut.tip.x), cut.tip.x);
  EXPECT_EQ(uncut.percent, ReadByTheRule(image, {30.9f, 25.7f}, parts, false).percent);
}

TEST(ReadMeter, OfWildPlacesEndsAndGivesADefinedAnswer) {
  const TestImage image(IMAGE_U8, 50, 50, 0, 3);
  for (const float wild : {NAN, INFINITY, -INFINITY, 1e38f, -1e38f}) {
    EXPECT_EQ(Read(image, {25, 25}, {{wild, 3}, {4, 5}, {6, wild}}, false).result, 0);
    const int32_t result = Read(image, {wild, 25}, {{1, 3}, {4, 5}, {6, 7}}, true).result;
    EXPECT_TRUE(result == 0 || result == -3006) << result;
  }
}

TEST(ReadMeter, ChecksWhatItIsGivenInOrder) {
  const test::MessageWatch watch;
  const TestImage image(IMAGE_U8, 50, 50);
  const TestImage rgb(IMAGE_RGB, 50, 50);
  const std::vector<PointFloat> arc = {{5, 20}, {25, 5}, {45, 20}};
  float percent = -1;
  PointFloat tip{-1, -1};
  const ImageRef unknown = 0xFFFFFFFF;
  EXPECT_EQ(ZEL_ReadMeter(0, 9, 9, nullptr, 0, 0, nullptr, nullptr), -201);
  EXPECT_EQ(ZEL_ReadMeter(unknown, 9, 9, nullptr, 1, 0, nullptr, nullptr), -503);
  EXPECT_EQ(ZEL_ReadMeter(image, 9, 9, arc.data(), 1, 0, &percent, &tip), -503);
  EXPECT_EQ(ZEL_ReadMeter(image, 9, 9, arc.data(), -3, 0, &percent, &tip), -503);
  EXPECT_TRUE(watch.Messages().empty());
  EXPECT_EQ(ZEL_ReadMeter(unknown, 9, 9, nullptr, 3, 0, nullptr, nullptr), -5);
  EXPECT_EQ(watch.Messages(), std::vector<std::string>{"ZEL_ReadMeter: Arc Points not provided"});
  EXPECT_EQ(ZEL_ReadMeter(unknown, 9, 9, arc.data(), 3, 0, nullptr, &tip), -5);
  EXPECT_EQ(ZEL_ReadMeter(unknown, 9, 9, arc.data(), 3, 0, &percent, nullptr), -5);
  EXPECT_EQ(watch.Messages().size(), 1u);
  EXPECT_EQ(ZEL_ReadMeter(unknown, 9, 9, arc.data(), 3, 0, &percent, &tip), -200);
  EXPECT_EQ(ZEL_ReadMeter(rgb, 5, 20, arc.data(), 3, 0, &percent, &tip), -301);
  EXPECT_EQ(percent, -1);
  EXPECT_EQ(tip.x, -1);
  // No line meets the image.
  const std::vector<PointFloat> outside = {{105, 20}, {125, 5}, {145, 20}};
  EXPECT_EQ(ZEL_ReadMeter(rgb, 110, 30, outside.data(), 3, 0, &percent, &tip), 0);
}

TEST(ReadMeter, RefusesArcsWithoutAnAngle) {
  const TestImage image(IMAGE_U8, 50, 50);
  EXPECT_EQ(Read(image, {25, 25}, {{5, 20}, {25, 5}, {5, 20}}, false).result, -3006);
  EXPECT_EQ(Read(image, {25, 25}, {{5, 25}, {25, 5}, {15, 25}}, false).result, -3006);
  EXPECT_EQ(Read(image, {25, 25}, {{25, 25}, {25, 5}, {5, 20}}, false).result, -752);
  EXPECT_EQ(Read(image, {25, 25}, {{5, 20}, {25, 5}, {25, 25}}, false).result, -752);
  const Reading reading = Read(image, {25, 25}, {{5, 20}, {5, 20}}, false);
  EXPECT_EQ(reading.result, -3006);
  EXPECT_EQ(reading.percent, -1);
  EXPECT_EQ(reading.tip.x, -1);
  // The circle closed on its first point.
  std::vector<PointFloat> circle = ArcOf({25, 25}, {40, 25}, {40, 24.99f});
  circle.push_back(circle.front());
  EXPECT_EQ(Read(image, {25, 25}, circle, false).result, -3006);
}

// ---- painted gauges

struct Gauge {
  const char* name;
  double tolerance = 0.5;  // percent
  double needleWidth = 5;
  double tail = 20;   // behind the base
  double shadow = 0;  // strength
  double light = 1;   // at the right side
  float noise = 0;
  bool isInverse = false;  // light on dark
  bool hasTicks = true;
};

void PrintTo(const Gauge& gauge, std::ostream* out) {
  *out << gauge.name;
}

class Gauges : public testing::TestWithParam<Gauge> {
 public:
  static constexpr Place BASE = {121.3, 117.8};
  static constexpr double RADIUS = 80;

  // 0 and 100 percent lie 45 degrees left and right of straight down.
  static Place OnCircle(double percent, double radius) {
    const double angle = (135 + 2.7 * percent) * std::numbers::pi / 180;
    return {BASE.x + radius * std::cos(angle), BASE.y + radius * std::sin(angle)};
  }
  static PointFloat Float(Place place) {
    return {static_cast<float>(place.x), static_cast<float>(place.y)};
  }

  static void PaintNeedle(Canvas* canvas, const Gauge& gauge, double percent, Place shift,
                          double level, double strength) {
    const auto moved = [&](Place p) { return Place{p.x + shift.x, p.y + shift.y}; };
    const Place tip = OnCircle(percent, RADIUS + 4);
    const Place tail = OnCircle(percent, -gauge.tail);
    const double across = (135 + 2.7 * percent + 90) * std::numbers::pi / 180;
    const Place side = {gauge.needleWidth / 2 * std::cos(across),
                        gauge.needleWidth / 2 * std::sin(across)};
    canvas->Polygon(
        {moved({tail.x + side.x, tail.y + side.y}), moved({tip.x + side.x / 4, tip.y + side.y / 4}),
         moved({tip.x - side.x / 4, tip.y - side.y / 4}),
         moved({tail.x - side.x, tail.y - side.y})},
        level, strength);
  }

  static TestImage Paint(const Gauge& gauge, double percent, int32_t type) {
    Canvas canvas(240, 240, 60);
    canvas.Disc(BASE, 112, 220);
    if (gauge.hasTicks) {
      for (int tick = 0; tick <= 50; tick++) {
        const bool isLong = tick % 5 == 0;
        canvas.Bar(OnCircle(2 * tick, isLong ? 88 : 94), OnCircle(2 * tick, 100), isLong ? 3 : 1.5,
                   30);
      }
    }
    if (gauge.shadow > 0) PaintNeedle(&canvas, gauge, percent, {3, 4}, 0, gauge.shadow);
    PaintNeedle(&canvas, gauge, percent, {0, 0}, 25, 1);
    canvas.Disc(BASE, 9, 40);
    canvas.LightFromLeft(gauge.light);
    canvas.Noise(gauge.noise, 7);
    if (gauge.isInverse) canvas.Invert();
    return canvas.ToImage(type);
  }
};

// Half a percent is 1.35 degrees, or two pixels along the arc.
TEST_P(Gauges, AreReadWithinAPercent) {
  const Gauge& gauge = GetParam();
  const std::vector<PointFloat> arc =
      ArcOf(Float(BASE), Float(OnCircle(0, RADIUS)), Float(OnCircle(100, RADIUS)));
  for (int step = 0; step <= 16; step++) {
    const double truth = 6.25 * step;
    const TestImage image = Paint(gauge, truth, step % 3);
    const Reading reading = Read(image, Float(BASE), arc, gauge.isInverse);
    ASSERT_EQ(reading.result, 0);
    EXPECT_NEAR(static_cast<double>(reading.percent), truth, gauge.tolerance)
        << "type " << step % 3;
  }
}

INSTANTIATE_TEST_SUITE_P(
    Painted, Gauges,
    testing::Values(Gauge{.name = "plain"},
                    Gauge{.name = "thin", .tolerance = 0.8, .needleWidth = 2.5},
                    Gauge{.name = "without ticks", .hasTicks = false},
                    Gauge{.name = "long tail", .tail = 45}, Gauge{.name = "shadow", .shadow = 0.35},
                    Gauge{.name = "lit from one side", .light = 0.6},
                    Gauge{.name = "noise", .noise = 30},
                    Gauge{.name = "light on dark", .shadow = 0.2, .isInverse = true}));

TEST(Gauge, AtTheEndsOfItsScaleGives0And100) {
  const std::vector<PointFloat> arc =
      ArcOf(Gauges::Float(Gauges::BASE), Gauges::Float(Gauges::OnCircle(0, Gauges::RADIUS)),
            Gauges::Float(Gauges::OnCircle(100, Gauges::RADIUS)));
  Canvas canvas(240, 240, 200);
  const auto paintLine = [&](PointFloat tip) {
    canvas.Bar(Gauges::BASE, {static_cast<double>(tip.x), static_cast<double>(tip.y)}, 1.5, 0);
  };
  paintLine(arc.front());
  EXPECT_EQ(Read(canvas.ToImage(), Gauges::Float(Gauges::BASE), arc, false).percent, 0.0f);
  canvas = Canvas(240, 240, 200);
  paintLine(arc.back());
  EXPECT_EQ(Read(canvas.ToImage(), Gauges::Float(Gauges::BASE), arc, false).percent, 100.0f);
}

}  // namespace
