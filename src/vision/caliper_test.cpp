#include <algorithm>
#include <limits>

#include "tests/support/refused_memory.h"
#include "vision/vision_test.h"

namespace {

using namespace test::paths;
using test::TestImage;

struct Request {
  int32_t method = INTERP_LINEAR, oversampling = 0;
  int32_t threshold = 20, edgeWidth = 2, gap = 0;
  int32_t mode = PAIR_ANY;
  float separation = 0, deviation = 0;
};

struct Found {
  Table<CaliperReport> reports;
  Table<PointFloat> places;
};

int32_t Find(ImageRef image, const Path& path, const Request& r, Found* found) {
  return ZEL_Caliper(image, path.data(), Count(path), r.method, r.oversampling, r.threshold,
                     r.edgeWidth, r.gap, r.mode, r.separation, r.deviation, &found->reports.count,
                     &found->reports.records, &found->places.count, &found->places.records);
}

// Whether two edges are of the polarities that a mode asks for.
bool OraclePolarities(int32_t mode, const OracleEdge& first, const OracleEdge& i,
                      const OracleEdge& j) {
  switch (mode) {
    case 0:
      return i.polarity == first.polarity && j.polarity != first.polarity;
    case 1:
      return i.polarity == 1 && j.polarity != 1;
    case 2:
      return i.polarity == -1 && j.polarity != -1;
    case 3:
      return i.polarity == 1 && j.polarity == 1;
    case 4:
      return i.polarity == -1 && j.polarity == -1;
    default:
      return false;
  }
}

bool OracleDistance(const Request& r, float distance) {
  const auto s = static_cast<double>(r.separation);
  const auto two = 2 * static_cast<double>(r.deviation);
  const auto d = static_cast<double>(distance);
  if (r.mode == 0 && r.separation == 0 && r.deviation == 0) return true;
  if (r.mode == 1) return s - two <= d && d <= s + two;
  return s - two < d && d < s + two;
}

float OracleScore(const Request& r, float distance) {
  const auto s = static_cast<double>(r.separation);
  const auto deviation = static_cast<double>(r.deviation);
  if (!(r.deviation >= 1.0f)) return 1000.0f;
  return static_cast<float>(1000 -
                            999 / (deviation * 2) * std::fabs(static_cast<double>(distance) - s));
}

void ExpectOraclePairs(ImageRef image, const Path& path, const Request& r) {
  const std::vector<float> signal =
      Interpolated(image, path, r.oversampling > 0 ? r.method : 0, r.oversampling);
  const std::vector<OracleEdge> edges =
      OracleEdges(signal, r.oversampling, r.threshold, r.edgeWidth, r.gap, path);
  Found found;
  ASSERT_EQ(Find(image, path, r, &found), 0);
  int32_t pairs = 0;
  for (size_t i = 0; i < edges.size(); i++) {
    for (size_t j = i + 1; j < edges.size(); j++) {
      if (!OraclePolarities(r.mode, edges[0], edges[i], edges[j])) continue;
      const auto distance = static_cast<float>(
          std::hypot(static_cast<double>(edges[j].x) - static_cast<double>(edges[i].x),
                     static_cast<double>(edges[j].y) - static_cast<double>(edges[i].y)));
      if (!OracleDistance(r, distance)) continue;
      ASSERT_LT(pairs, found.reports.count);
      const CaliperReport& report = found.reports[pairs];
      EXPECT_EQ(report.firstIndex, static_cast<float>(i));
      EXPECT_EQ(report.firstContrast, edges[i].contrast);
      EXPECT_EQ(report.secondIndex, static_cast<float>(j));
      EXPECT_EQ(report.secondContrast, edges[j].contrast);
      EXPECT_FLOAT_EQ(report.distance, distance);
      EXPECT_NEAR(report.score, OracleScore(r, report.distance), 1e-3);
      EXPECT_EQ(found.places[2 * pairs].x, edges[i].x);
      EXPECT_EQ(found.places[2 * pairs].y, edges[i].y);
      EXPECT_EQ(found.places[2 * pairs + 1].x, edges[j].x);
      EXPECT_EQ(found.places[2 * pairs + 1].y, edges[j].y);
      pairs++;
    }
  }
  EXPECT_EQ(found.reports.count, pairs);
  EXPECT_EQ(found.places.count, 2 * pairs);
  EXPECT_EQ(found.reports.records == nullptr, pairs == 0);
}

TEST(Caliper, FollowsTheRule) {
  test::Random random(8);
  const TestImage image(IMAGE_U8, 90, 70, 1, 6);
  for (int32_t i = 0; i < 400; i++) {
    Path path;
    PointInt p{random.Between(0, 89), random.Between(0, 69)};
    for (int32_t k = random.Between(5, 150); k > 0; k--) {
      path.push_back(p);
      p = {p.x + random.Between(-1, 1), p.y + random.Between(-1, 1)};
    }
    Request r;
    r.method = random.Between(0, 2);
    r.oversampling = random.Between(0, 3);
    r.threshold = random.Between(5, 90);
    r.edgeWidth = random.Between(1, 4);
    r.gap = random.Between(0, 2);
    r.mode = random.Between(-1, 5);
    r.separation = static_cast<float>(random.Between(0, 20));
    r.deviation = static_cast<float>(random.Between(0, 10)) * 0.5f;
    ExpectOraclePairs(image, path, r);
  }
}

// A bar of the given first pixel and width on a dark row.
TestImage Bar(int32_t first, int32_t width, int32_t length = 60) {
  std::vector<uint8_t> row(static_cast<size_t>(length), 10);
  std::fill_n(row.begin() + first, width, uint8_t{210});
  return RowImage<uint8_t>(IMAGE_U8, row);
}

// A falling edge is placed where a rising one would be: the width of a bar comes out exactly.
TEST(Caliper, MeasuresABar) {
  const TestImage image = Bar(20, 17);
  Found found;
  ASSERT_EQ(Find(image, RowPath(60), {0, 0, 20, 2, 0, PAIR_RISE_FALL, 17, 2}, &found), 0);
  ASSERT_EQ(found.reports.count, 1);
  EXPECT_EQ(found.reports[0].distance, 17.0f);
  EXPECT_EQ(found.reports[0].score, 1000.0f);
}

TEST(Caliper, TakesTheEndsOfItsRangeInOneModeOnly) {
  const TestImage light = Bar(20, 17);
  // 17 is exactly separation + 2 x deviation, and then separation - 2 x deviation.
  for (const float separation : {13.0f, 21.0f}) {
    Found found;
    ASSERT_EQ(Find(light, RowPath(60), {0, 0, 20, 2, 0, PAIR_RISE_FALL, separation, 2}, &found), 0);
    ASSERT_EQ(found.reports.count, 1);
    EXPECT_EQ(found.reports[0].score, 1.0f);
    Found open;
    ASSERT_EQ(Find(light, RowPath(60), {0, 0, 20, 2, 0, PAIR_ANY, separation, 2}, &open), 0);
    EXPECT_EQ(open.reports.count, 0);
  }
  std::vector<uint8_t> dark(60, 210);
  std::fill_n(dark.begin() + 20, 17, uint8_t{10});
  const TestImage valley = RowImage<uint8_t>(IMAGE_U8, dark);
  Found found;
  ASSERT_EQ(Find(valley, RowPath(60), {0, 0, 20, 2, 0, PAIR_FALL_RISE, 13, 2}, &found), 0);
  EXPECT_EQ(found.reports.count, 0);
  ASSERT_EQ(Find(valley, RowPath(60), {0, 0, 20, 2, 0, PAIR_FALL_RISE, 13.5f, 2}, &found), 0);
  EXPECT_EQ(found.reports.count, 1);
}

TEST(Caliper, OfASmallDeviationScoresAlike) {
  const TestImage image = Bar(20, 17);
  for (const float deviation : {0.75f, 0.999f}) {
    Found found;
    ASSERT_EQ(Find(image, RowPath(60), {0, 0, 20, 2, 0, 1, 16, deviation}, &found), 0);
    ASSERT_EQ(found.reports.count, 1);
    EXPECT_EQ(found.reports[0].score, 1000.0f);
  }
}

TEST(Caliper, WithWildNumbersFindsWhatTheirComparisonsSay) {
  const TestImage image = Bar(20, 17);
  constexpr float inf = std::numeric_limits<float>::infinity();
  const auto pairsOf = [&](int32_t mode, float separation, float deviation) {
    Found found;
    EXPECT_EQ(Find(image, RowPath(60), {0, 0, 20, 2, 0, mode, separation, deviation}, &found), 0);
    return found.reports.count;
  };
  EXPECT_EQ(pairsOf(PAIR_RISE_FALL, NAN, 1), 0);
  EXPECT_EQ(pairsOf(PAIR_RISE_FALL, 17, NAN), 0);
  EXPECT_EQ(pairsOf(PAIR_RISE_FALL, 17, -3), 0);
  EXPECT_EQ(pairsOf(PAIR_RISE_FALL, 17, inf), 1);
  EXPECT_EQ(pairsOf(PAIR_RISE_FALL, inf, 1), 0);
  EXPECT_EQ(pairsOf(INT32_MIN, 17, 2), 0);
  EXPECT_EQ(pairsOf(INT32_MAX, 17, 2), 0);
}

// Blurred bars with noise, at parts of pixels, along a tilted path: rise and fall are found at the
// same place of their slopes, so the width is good to a small part of a pixel.
TEST(Caliper, MeasuresABlurredBarByPartsOfAPixel) {
  test::Random random(11);
  double squares = 0;
  constexpr int32_t trials = 40;
  for (int32_t trial = 0; trial < trials; trial++) {
    const double left = 60 + trial * 0.13;
    const double right = left + 50.37;
    std::vector<float> row(200);
    for (size_t x = 0; x < row.size(); x++) {
      const auto at = static_cast<double>(x);
      const double light = (std::erf((at - left) / 1.8) - std::erf((at - right) / 1.8)) / 2;
      row[x] = static_cast<float>(30 + 180 * light) + random.Float(-2.0f, 2.0f);
    }
    const TestImage image = RowImage<float>(IMAGE_SGL, row);
    Found found;
    ASSERT_EQ(
        Find(image, RowPath(200), {INTERP_SPLINE, 9, 60, 4, 0, PAIR_RISE_FALL, 50, 2}, &found), 0);
    ASSERT_EQ(found.reports.count, 1);
    const double off = static_cast<double>(found.reports[0].distance) - 50.37;
    squares += off * off;
  }
  EXPECT_LT(std::sqrt(squares / trials), 0.12);
}

TEST(Caliper, ThatIsRefusedLeavesTheOutputs) {
  const TestImage image = Bar(20, 17);
  const TestImage empty(IMAGE_U8, 0, 0);
  const Path path = RowPath(60);
  CaliperReport* reports = nullptr;
  PointFloat* places = nullptr;
  int32_t pairs = 77;
  int32_t ends = 78;
  const auto call = [&](ImageRef reference, const PointInt* points, int32_t n, int32_t method) {
    return ZEL_Caliper(reference, points, n, method, 1, 20, 2, 0, 0, 0, 0, &pairs, &reports, &ends,
                       &places);
  };
  EXPECT_EQ(call(999, nullptr, 1, 7), ZEL_ERR_NULL_POINTER);
  EXPECT_EQ(
      ZEL_Caliper(image, path.data(), 60, 0, 0, 1, 2, 0, 0, 0, 0, &pairs, nullptr, &ends, &places),
      ZEL_ERR_NULL_POINTER);
  EXPECT_EQ(
      ZEL_Caliper(image, path.data(), 60, 0, 0, 1, 2, 0, 0, 0, 0, &pairs, &reports, &ends, nullptr),
      ZEL_ERR_NULL_POINTER);
  EXPECT_EQ(call(999, path.data(), 4, 7), ZEL_ERR_BAD_IMAGE);
  EXPECT_EQ(call(empty, path.data(), 4, 7), ZEL_ERR_INTERNAL);
  EXPECT_EQ(call(image, path.data(), 4, 7), ZEL_ERR_TOO_FEW_POINTS);
  EXPECT_EQ(call(image, path.data(), 60, 7), ZEL_ERR_BAD_INTERPOLATION);
  EXPECT_EQ(pairs, 77);
  EXPECT_EQ(ends, 78);
  EXPECT_EQ(reports, nullptr);
  EXPECT_EQ(ZEL_Caliper(image, path.data(), 60, 0, 0, 20, 2, 0, 0, 0, 0, nullptr, &reports, nullptr,
                        &places),
            0);
  EXPECT_NE(reports, nullptr);
  ZEL_free(reports);
  ZEL_free(places);
}

TEST(Caliper, OnAShortPathAllocatesNothingButItsResult) {
  const TestImage image = Bar(70, 44, 200);
  const Path path = RowPath(200);
  zel::HeapHooks* hooks = zel::HeapHooksGet();
  Found found;
  const uint64_t before = hooks->requests;
  ASSERT_EQ(Find(image, path, {INTERP_SPLINE, 3, 20, 2, 0, PAIR_RISE_FALL, 44, 2}, &found), 0);
  EXPECT_EQ(found.reports.count, 1);
  EXPECT_EQ(hooks->requests, before + 2);
}

TEST(Caliper, DoesWithoutMemory) {
  const TestImage image(IMAGE_U8, 1100, 1, 0, 7);
  Found found;
  test::RefuseEachAllocation(
      [] {},
      [&] {
        return Find(image, RowPath(1100), {INTERP_SPLINE, 1, 5, 2, 0, 3, 0, 3}, &found);
      });
}

}  // namespace
