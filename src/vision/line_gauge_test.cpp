#include <algorithm>
#include <limits>

#include "tests/support/refused_memory.h"
#include "vision/vision_test.h"

namespace {

using namespace test::paths;
using test::TestImage;

struct Request {
  int32_t x1 = 0, y1 = 0, x2 = 0, y2 = 0;
  int32_t method = 0, oversampling = 0;
  int32_t threshold = 20, edgeWidth = 2, gap = 0;
  int32_t mode = GAUGE_EDGE_TO_EDGE;
  std::vector<PointInt> extras = {};
  PointInt reference{0, 0};
  float referenceAngle = 0;
  PointInt now{0, 0};
  float nowAngle = 0;
};

constexpr float UNTOUCHED = -77.0f;

int32_t Measure(ImageRef image, const Request& r, std::vector<float>* results) {
  results->assign(r.extras.size() / 2 + 1, UNTOUCHED);
  return ZEL_LineGauge(image, r.x1, r.y1, r.x2, r.y2, r.method, r.oversampling, r.threshold,
                       r.edgeWidth, r.gap, r.mode, r.extras.data(),
                       static_cast<int32_t>(r.extras.size()), r.reference.x, r.reference.y,
                       r.referenceAngle, r.now.x, r.now.y, r.nowAngle, results->data());
}

// The end of a line where the part is now.
PointInt Moved(const Request& r, int64_t x, int64_t y) {
  const double theta =
      (static_cast<double>(r.referenceAngle) - static_cast<double>(r.nowAngle)) * 0.017453293;
  if (theta == 0 && r.reference.x == r.now.x && r.reference.y == r.now.y) {
    return {static_cast<int32_t>(x), static_cast<int32_t>(y)};
  }
  const auto rx = static_cast<double>(x - r.now.x + (r.now.x - r.reference.x));
  const auto ry = static_cast<double>(y - r.now.y + (r.now.y - r.reference.y));
  const double sine = std::sin(theta);
  const double cosine = std::cos(theta);
  return {r.now.x + static_cast<int32_t>(sine * ry + cosine * rx),
          r.now.y + static_cast<int32_t>(cosine * ry - sine * rx)};
}

double Distance(double x1, double y1, double x2, double y2) {
  return std::sqrt((x2 - x1) * (x2 - x1) + (y2 - y1) * (y2 - y1));
}

// One line that lies wholly in the image, so that no clipping comes in. The pixels of a line are
// those that the image itself tells of.
float OracleResult(const TestImage& image, const Request& r, const PointInt& a, const PointInt& b) {
  if (r.mode == GAUGE_POINT_TO_POINT) return static_cast<float>(Distance(a.x, a.y, b.x, b.y));
  // An image that holds its own coordinates gives the points of the line.
  const TestImage columns(IMAGE_I16, image.width(), image.height());
  const TestImage rows(IMAGE_I16, image.width(), image.height());
  for (int16_t y = 0; y < image.height(); y++) {
    for (int16_t x = 0; x < image.width(); x++) {
      columns.Set<int16_t>(x, y, x);
      rows.Set<int16_t>(x, y, y);
    }
  }
  std::vector<int32_t> xs(500);
  std::vector<int32_t> ys(500);
  int32_t n = 0;
  EXPECT_EQ(ZEL_GetLine(columns, a.x, a.y, b.x, b.y, ARRAY_I32, xs.data(), &n), 0);
  EXPECT_EQ(ZEL_GetLine(rows, a.x, a.y, b.x, b.y, ARRAY_I32, ys.data(), &n), 0);
  Path path;
  for (size_t i = 0; i < static_cast<size_t>(n); i++) path.push_back({xs[i], ys[i]});
  const std::vector<float> signal =
      Interpolated(image, path, r.oversampling > 0 ? r.method : 0, r.oversampling);
  const std::vector<OracleEdge> edges =
      OracleEdges(signal, r.oversampling, r.threshold, r.edgeWidth, r.gap, path);
  if (edges.empty()) return 0;
  const auto x = static_cast<double>(edges.front().x);
  const auto y = static_cast<double>(edges.front().y);
  const OracleEdge& last = edges.back();
  if (r.mode == 0) {
    return static_cast<float>(
        Distance(x, y, static_cast<double>(last.x), static_cast<double>(last.y)));
  }
  if (r.mode == 1) return static_cast<float>(Distance(x, y, b.x, b.y));
  if (r.mode == 2) return static_cast<float>(Distance(a.x, a.y, x, y));
  return 0;
}

TEST(LineGauge, FollowsTheRule) {
  test::Random random(9);
  const TestImage image(IMAGE_U8, 90, 80, 1, 6);
  for (int32_t i = 0; i < 60; i++) {
    Request r;
    r.x1 = random.Between(30, 60);
    r.y1 = random.Between(25, 35);
    r.x2 = r.x1 + random.Between(5, 12) * (random.Between(0, 1) * 2 - 1);
    r.y2 = random.Between(30, 45);
    r.method = random.Between(0, 2);
    r.oversampling = random.Between(-1, 3);
    r.threshold = random.Between(5, 60);
    r.edgeWidth = random.Between(0, 2);
    r.gap = random.Between(-1, 1);
    r.mode = random.Between(-1, 4);
    for (int32_t k = random.Between(0, 5); k > 0; k--) {
      r.extras.push_back({random.Between(-9, 9), random.Between(-9, 9)});
    }
    if (random.Between(0, 2) > 0) {
      r.reference = {45, 35};
      r.referenceAngle = random.Float(-180, 180);
      r.now = {random.Between(40, 50), random.Between(35, 45)};
      r.nowAngle = random.Float(-180, 180);
    }
    std::vector<float> results;
    ASSERT_EQ(Measure(image, r, &results), 0);
    for (size_t k = 0; k < results.size(); k++) {
      PointInt a{r.x1, r.y1};
      PointInt b{r.x2, r.y2};
      if (k > 0) {
        a = {a.x + r.extras[2 * k - 2].x, a.y + r.extras[2 * k - 2].y};
        b = {b.x + r.extras[2 * k - 1].x, b.y + r.extras[2 * k - 1].y};
      }
      a = Moved(r, a.x, a.y);
      b = Moved(r, b.x, b.y);
      if (std::max(std::abs(b.x - a.x), std::abs(b.y - a.y)) < 4) break;  // no path of a caller
      EXPECT_FLOAT_EQ(results[k], OracleResult(image, r, a, b));
    }
  }
}

// A light square on a dark image.
TestImage Square() {
  TestImage image(IMAGE_U8, 100, 100);
  for (int32_t y = 0; y < 100; y++) {
    for (int32_t x = 0; x < 100; x++) {
      const bool isIn = x >= 30 && x < 61 && y >= 30 && y < 61;
      image.Set<uint8_t>(x, y, isIn ? 200 : 20);
    }
  }
  return image;
}

TEST(LineGauge, MeasuresASquareInEachMode) {
  const TestImage image = Square();
  Request r{.x1 = 10, .y1 = 45, .x2 = 89, .y2 = 45};
  std::vector<float> results;
  ASSERT_EQ(Measure(image, r, &results), 0);
  EXPECT_EQ(results[0], 31.0f);
  r.mode = GAUGE_POINT_TO_EDGE;
  ASSERT_EQ(Measure(image, r, &results), 0);
  const float toEdge = results[0];
  EXPECT_NEAR(toEdge, 20.0f, 2.0f);
  r.mode = GAUGE_EDGE_TO_POINT;
  ASSERT_EQ(Measure(image, r, &results), 0);
  EXPECT_EQ(results[0], 79.0f - toEdge);
  r.mode = GAUGE_POINT_TO_POINT;
  ASSERT_EQ(Measure(image, r, &results), 0);
  EXPECT_EQ(results[0], 79.0f);
  for (const int32_t mode : {-1, 4, INT32_MIN}) {
    r.mode = mode;
    ASSERT_EQ(Measure(image, r, &results), 0);
    EXPECT_EQ(results[0], 0.0f);
  }
}

TEST(LineGauge, OfOneEdgeIsZeroFromEdgeToEdge) {
  const TestImage image = Square();
  std::vector<float> results;
  ASSERT_EQ(Measure(image, {.x1 = 10, .y1 = 45, .x2 = 50, .y2 = 45}, &results), 0);
  EXPECT_EQ(results[0], 0.0f);
}

TEST(LineGauge, StaysExactlyWhereNothingMoves) {
  const TestImage image = Square();
  Request r{.x1 = 10, .y1 = 45, .x2 = 89, .y2 = 45};
  r.reference = r.now = {INT32_MAX, INT32_MIN};
  r.referenceAngle = r.nowAngle = 33.3f;
  std::vector<float> results;
  ASSERT_EQ(Measure(image, r, &results), 0);
  EXPECT_EQ(results[0], 31.0f);
}

// Kept: the sine of a quarter turn is a little below 1, and cutting then loses a pixel.
TEST(LineGauge, LosesAPixelInAQuarterTurn) {
  const TestImage image = Square();
  Request r{.x1 = 50, .y1 = 50, .x2 = 60, .y2 = 50};
  r.mode = GAUGE_POINT_TO_POINT;
  r.reference = r.now = {50, 50};
  r.referenceAngle = 90;
  std::vector<float> results;
  ASSERT_EQ(Measure(image, r, &results), 0);
  EXPECT_EQ(results[0], 9.0f);
}

TEST(LineGauge, FollowsAPartThatTurnsAndMoves) {
  const TestImage image = Square();
  // Drawn for the square standing upright at 0, 0, and measured along its diagonal here.
  Request r{.x1 = -35, .y1 = 0, .x2 = 35, .y2 = 0};
  r.now = {45, 45};
  r.nowAngle = 45;
  r.method = INTERP_SPLINE;
  r.oversampling = 4;
  std::vector<float> results;
  ASSERT_EQ(Measure(image, r, &results), 0);
  EXPECT_NEAR(results[0], 31 * std::sqrt(2.0), 1.5);
}

TEST(LineGauge, IsClippedToTheImage) {
  const TestImage image = Square();
  Request r{.x1 = -2000000000, .y1 = 45, .x2 = 2000000000, .y2 = 45};
  std::vector<float> results;
  ASSERT_EQ(Measure(image, r, &results), 0);
  EXPECT_EQ(results[0], 31.0f);
  r.mode = GAUGE_POINT_TO_POINT;
  r.extras = {{INT32_MIN, 0}, {INT32_MAX, 0}};
  ASSERT_EQ(Measure(image, r, &results), 0);
  EXPECT_EQ(results[0], 99.0f);
  EXPECT_EQ(results[1], 99.0f);  // sums that no 32 bits hold
}

TEST(LineGauge, EndsAtTheFirstLineOutside) {
  const TestImage image = Square();
  Request r{.x1 = 10, .y1 = 45, .x2 = 89, .y2 = 45};
  r.extras = {{0, 1}, {0, 1}, {0, 900}, {0, 900}, {0, 2}, {0, 2}};
  std::vector<float> results;
  ASSERT_EQ(Measure(image, r, &results), 0);
  EXPECT_EQ(results, (std::vector<float>{31, 31, UNTOUCHED, UNTOUCHED}));
  const TestImage empty(IMAGE_U8, 0, 0);
  ASSERT_EQ(Measure(empty, r, &results), 0);
  EXPECT_EQ(results, std::vector<float>(4, UNTOUCHED));
}

TEST(LineGauge, LeavesHalfALineOut) {
  const TestImage image = Square();
  std::vector<float> results = {UNTOUCHED, UNTOUCHED, UNTOUCHED};
  const PointInt extras[3] = {{0, 1}, {0, 1}, {0, 2}};
  for (const int32_t count : {3, 2, 1, 0, -5, INT32_MIN}) {
    results.assign(3, UNTOUCHED);
    ASSERT_EQ(ZEL_LineGauge(image, 10, 45, 89, 45, 0, 0, 20, 2, 0, 0, extras, count, 0, 0, 0, 0, 0,
                            0, results.data()),
              0);
    EXPECT_EQ(results[1], count >= 2 ? 31.0f : UNTOUCHED);
    EXPECT_EQ(results[2], UNTOUCHED);
  }
  ASSERT_EQ(ZEL_LineGauge(image, 10, 45, 89, 45, 0, 0, 20, 2, 0, 0, nullptr, 2, 0, 0, 0, 0, 0, 0,
                          results.data()),
            0);
}

TEST(LineGauge, OfShortLinesAndOfWildNumbersEnds) {
  const TestImage image = Square();
  constexpr float inf = std::numeric_limits<float>::infinity();
  std::vector<float> results;
  for (int32_t method = 0; method < 3; method++) {
    for (int32_t length = 0; length < 6; length++) {
      Request r{.x1 = 28, .y1 = 45, .x2 = 28 + length, .y2 = 45};
      r.method = method;
      r.oversampling = 2;
      r.edgeWidth = 1;
      EXPECT_EQ(Measure(image, r, &results), 0);
    }
  }
  for (const float angle : {NAN, inf, -inf, 3e38f}) {
    Request r{.x1 = 10, .y1 = 45, .x2 = 89, .y2 = 45};
    r.nowAngle = angle;
    r.now = {5, 6};
    EXPECT_EQ(Measure(image, r, &results), 0);
  }
  // Nowhere: both ends are cut to the new point.
  Request r{.x1 = 10, .y1 = 45, .x2 = 89, .y2 = 45};
  r.nowAngle = NAN;
  r.mode = GAUGE_POINT_TO_POINT;
  ASSERT_EQ(Measure(image, r, &results), 0);
  EXPECT_EQ(results[0], 0.0f);
}

TEST(LineGauge, InImagesWithoutASignalIsZeroWithoutAFailure) {
  for (const int32_t type : {IMAGE_COMPLEX, IMAGE_RGB}) {
    const TestImage image(type, 90, 90, 0, 3);
    std::vector<float> results;
    ASSERT_EQ(Measure(image, {.x1 = 10, .y1 = 45, .x2 = 89, .y2 = 45}, &results), 0);
    EXPECT_EQ(results[0], 0.0f);
  }
}

TEST(LineGauge, ThatIsRefusedWritesNothing) {
  const TestImage image = Square();
  Request r{.x1 = 10, .y1 = 45, .x2 = 89, .y2 = 45};
  std::vector<float> results;
  EXPECT_EQ(Measure(999, r, &results), ZEL_ERR_BAD_IMAGE);
  EXPECT_EQ(ZEL_LineGauge(999, 1, 1, 9, 9, 0, 0, 0, 0, 0, 0, nullptr, 0, 0, 0, 0, 0, 0, 0, nullptr),
            ZEL_ERR_NULL_POINTER);
  r.method = 7;
  EXPECT_EQ(Measure(image, r, &results), 0);  // not asked for
  r.oversampling = 1;
  EXPECT_EQ(Measure(image, r, &results), ZEL_ERR_BAD_INTERPOLATION);
  EXPECT_EQ(results[0], UNTOUCHED);
  r.mode = GAUGE_POINT_TO_POINT;
  EXPECT_EQ(Measure(image, r, &results), 0);
  r.mode = GAUGE_EDGE_TO_EDGE;
  r.method = 0;
  r.oversampling = INT32_MAX;
  EXPECT_EQ(Measure(image, r, &results), ZEL_ERR_MEMORY_FULL);
  EXPECT_EQ(results[0], UNTOUCHED);
}

TEST(LineGauge, DoesWithoutMemory) {
  const TestImage image(IMAGE_U8, 700, 3, 0, 7);
  std::vector<float> results;
  Request r{.x1 = 0, .y1 = 1, .x2 = 699, .y2 = 1};
  r.method = INTERP_SPLINE;
  r.oversampling = 2;
  test::RefuseEachAllocation([] {},
                             [&] {
                               const int32_t result = Measure(image, r, &results);
                               EXPECT_EQ(result == 0, results[0] != UNTOUCHED);
                               return result;
                             });
}

}  // namespace
