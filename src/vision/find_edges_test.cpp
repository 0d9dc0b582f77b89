#include "vision/find_edges.h"

#include <algorithm>

#include "tests/support/refused_memory.h"
#include "vision/vision_test.h"

namespace {

using namespace test::paths;
using test::TestImage;

struct Request {
  int32_t method = INTERP_LINEAR, oversampling = 0;
  int32_t threshold = 20, edgeWidth = 2, gap = 0;
};

struct Found {
  Table<EdgeRecord> edges;
  Table<PointFloat> places;
};

int32_t Find(ImageRef image, const Path& path, const Request& r, Found* found) {
  const int32_t result = ZEL_FindEdges(image, path.data(), Count(path), r.method, r.oversampling,
                                       r.threshold, r.edgeWidth, r.gap, &found->edges.count,
                                       &found->edges.records, &found->places.records);
  found->places.count = found->edges.count;
  return result;
}

void ExpectOracleEdges(ImageRef image, const Path& path, const Request& r) {
  Found found;
  ASSERT_EQ(Find(image, path, r, &found), 0);
  const std::vector<float> signal =
      Interpolated(image, path, r.oversampling > 0 ? r.method : 0, r.oversampling);
  const std::vector<OracleEdge> expected =
      OracleEdges(signal, r.oversampling, r.threshold, r.edgeWidth, r.gap, path);
  ASSERT_EQ(static_cast<size_t>(found.edges.count), expected.size());
  EXPECT_EQ(found.edges.records == nullptr, expected.empty());
  for (int32_t i = 0; i < found.edges.count; i++) {
    const OracleEdge& edge = expected[static_cast<size_t>(i)];
    EXPECT_EQ(found.edges[i].position, edge.position);
    EXPECT_EQ(found.edges[i].contrast, edge.contrast);
    EXPECT_EQ(found.edges[i].polarity, edge.polarity);
    EXPECT_EQ(found.edges[i].reserved, 0.0f);
    EXPECT_EQ(found.places[i].x, edge.x);
    EXPECT_EQ(found.places[i].y, edge.y);
  }
}

TEST(FindEdges, FollowTheRule) {
  test::Random random(5);
  for (const int32_t type : {IMAGE_U8, IMAGE_I16, IMAGE_SGL}) {
    const TestImage image(type, 60, 50, 1, 6);
    const int32_t levels = type == IMAGE_U8 ? 60 : 15000;
    for (int32_t i = 0; i < 150; i++) {
      Path path;
      const int32_t n = random.Between(5, 130);
      PointInt p{random.Between(0, 59), random.Between(0, 49)};
      for (int32_t k = 0; k < n; k++) {
        path.push_back(p);
        p = {p.x + random.Between(-1, 1), p.y + random.Between(-1, 1)};
      }
      ExpectOracleEdges(image, path,
                        {random.Between(0, 2), random.Between(-1, 7), random.Between(-3, levels),
                         random.Between(-1, 9), random.Between(-1, 6)});
    }
  }
}

// Wide windows over values that doubles cannot sum without rounding.
TEST(FindEdges, FollowTheRuleForWideWindows) {
  const TestImage image(IMAGE_SGL, 300, 2, 0, 12);
  for (const int32_t method : {INTERP_LINEAR, INTERP_QUADRATIC, INTERP_SPLINE}) {
    ExpectOracleEdges(image, RowPath(300), {method, 30, 1, 11, 3});
    ExpectOracleEdges(image, RowPath(300), {method, 9, 0, 20, 0});
  }
}

TEST(FindEdges, OfAFlatSignalAreNone) {
  for (const uint8_t level : {uint8_t{0}, uint8_t{7}, uint8_t{255}}) {
    const TestImage image = RowImage<uint8_t>(IMAGE_U8, std::vector<uint8_t>(50, level));
    for (const int32_t method : {INTERP_LINEAR, INTERP_SPLINE}) {
      for (const int32_t oversampling : {0, 3}) {
        Found found;
        ASSERT_EQ(Find(image, RowPath(50), {method, oversampling, 1, 3, 1}, &found), 0);
        EXPECT_EQ(found.edges.count, 0);
        EXPECT_EQ(found.edges.records, nullptr);
      }
    }
  }
}

TEST(FindEdges, OfASignalThatIsTooShortAreNone) {
  // Up to 2 x 4 + 2 values nothing fits, and the last of a longer one are not looked at.
  for (int32_t length = 5; length < 30; length++) {
    std::vector<uint8_t> step(static_cast<size_t>(length), 0);
    std::fill(step.begin() + 5, step.end(), uint8_t{200});
    const TestImage image = RowImage<uint8_t>(IMAGE_U8, step);
    Found found;
    ASSERT_EQ(Find(image, RowPath(length), {0, 0, 20, 4, 2}, &found), 0);
    EXPECT_EQ(found.edges.count, length < 13 ? 0 : 1) << length;
    ExpectOracleEdges(image, RowPath(length), {0, 0, 20, 4, 2});
  }
}

TEST(FindEdges, OfAPulseWithinOneWindowHaveBothPolarities) {
  std::vector<uint8_t> pulse(30, 10);
  pulse[14] = pulse[15] = 210;
  const TestImage image = RowImage<uint8_t>(IMAGE_U8, pulse);
  Found found;
  ASSERT_EQ(Find(image, RowPath(30), {0, 0, 20, 4, 0}, &found), 0);
  ASSERT_EQ(found.edges.count, 2);
  EXPECT_EQ(found.edges[0].polarity, 1);
  EXPECT_EQ(found.edges[1].polarity, -1);
}

// Kept: the two kinds of edges do not tell their contrast alike.
TEST(FindEdges, ThatRiseHaveACutContrastAndThatFallTheFormerOne) {
  std::vector<float> values(40, 0.0f);
  for (size_t i = 15; i < 25; i++) values[i] = 100.75f;
  const TestImage image = RowImage<float>(IMAGE_SGL, values);
  Found found;
  ASSERT_EQ(Find(image, RowPath(40), {0, 0, 30, 2, 0}, &found), 0);
  ASSERT_EQ(found.edges.count, 2);
  EXPECT_EQ(found.edges[0].contrast, 50.0f);  // 100.75 of two samples, cut to 100
  EXPECT_EQ(found.edges[1].contrast, 0.0f);   // before the first difference there is none
}

// Kept: what the image is not asked for, it does not refuse.
TEST(FindEdges, InImagesWithoutASignalAreNoneAndNoFailure) {
  for (const int32_t type : {IMAGE_COMPLEX, IMAGE_RGB}) {
    const TestImage image(type, 50, 2, 0, 3);
    Found found;
    EXPECT_EQ(Find(image, RowPath(50), {0, 0, 1, 2, 0}, &found), 0);
    EXPECT_EQ(found.edges.count, 0);
    ASSERT_EQ(Find(image, RowPath(50), {0, 0, 0, 2, 0}, &found), 0);  // all is an edge
    EXPECT_EQ(found.edges.count, 1);
    EXPECT_EQ(found.edges[0].polarity, -1);
    EXPECT_EQ(found.edges[0].position, 0.0f);
  }
}

// The values of the parabolas begin one sample early and end in zeros, which a wide gap lets see.
TEST(FindEdges, ByParabolasLieOneSampleEarlyAndFallAtTheEnd) {
  std::vector<uint8_t> step(40, 50);
  std::fill(step.begin() + 20, step.end(), uint8_t{150});
  const TestImage image = RowImage<uint8_t>(IMAGE_U8, step);
  Found straight;
  Found parabolas;
  ASSERT_EQ(Find(image, RowPath(40), {INTERP_LINEAR, 3, 30, 1, 2}, &straight), 0);
  ASSERT_EQ(Find(image, RowPath(40), {INTERP_QUADRATIC, 3, 30, 1, 2}, &parabolas), 0);
  ASSERT_EQ(straight.edges.count, 1);
  ASSERT_EQ(parabolas.edges.count, 2);
  EXPECT_NEAR(parabolas.edges[0].position, straight.edges[0].position - 1.0f, 0.3f);
  EXPECT_EQ(parabolas.edges[1].polarity, -1);
}

TEST(FindEdges, OfInfiniteDifferencesStartNoEdge) {
  std::vector<float> values(40, 0.0f);
  values[20] = std::numeric_limits<float>::infinity();
  const TestImage image = RowImage<float>(IMAGE_SGL, values);
  Found found;
  ASSERT_EQ(Find(image, RowPath(40), {0, 0, 20, 2, 0}, &found), 0);
  EXPECT_EQ(found.edges.count, 0);
}

// A blurred step at a known place: its edge keeps the same distance from it wherever it lies, and a
// second step of the same kind is found at exactly its distance.
TEST(FindEdges, FollowAStepByPartsOfAPixel) {
  const auto step = [](double x, double at) {
    return static_cast<float>(20.0 + 100.0 * (1.0 + std::erf((x - at) / (1.5 * std::sqrt(2.0)))));
  };
  float least = 1e9f;
  float most = -1e9f;
  for (int32_t part = 0; part < 20; part++) {
    const double at = 40.0 + part / 20.0;
    std::vector<float> values(100);
    for (size_t x = 0; x < values.size(); x++) values[x] = step(static_cast<double>(x), at);
    const TestImage image = RowImage<float>(IMAGE_SGL, values);
    Found found;
    ASSERT_EQ(Find(image, RowPath(100), {INTERP_SPLINE, 19, 20, 3, 0}, &found), 0);
    ASSERT_EQ(found.edges.count, 1);
    const float off = found.edges[0].position - static_cast<float>(at);
    least = std::min(least, off);
    most = std::max(most, off);
  }
  EXPECT_LT(most - least, 0.06f);
  EXPECT_LT(most, 0.0f);  // found where the slope begins
}

TEST(FindEdges, OfATiltedEdgeLieAlongIt) {
  // A straight edge through the middle, 30 degrees from the vertical, blurred. Along rows it comes
  // later and later, but always as far from the middle of its slope.
  const double nx = std::cos(0.5235987756);
  const double ny = std::sin(0.5235987756);
  const TestImage image(IMAGE_U8, 120, 120);
  for (int32_t y = 0; y < 120; y++) {
    for (int32_t x = 0; x < 120; x++) {
      const double across = (x - 60.3) * nx + (y - 59.6) * ny;
      image.Set<uint8_t>(x, y, static_cast<uint8_t>(std::lround(128 + 90 * std::erf(across))));
    }
  }
  double former = 0;
  for (int32_t row = 0; row < 5; row++) {
    Path path;
    for (int32_t i = 0; i < 80; i++) path.push_back({20 + i, 40 + 5 * row});
    Found found;
    ASSERT_EQ(Find(image, path, {INTERP_SPLINE, 9, 25, 3, 0}, &found), 0);
    ASSERT_EQ(found.edges.count, 1);
    const double across = (static_cast<double>(found.places[0].x) - 60.3) * nx +
                          (static_cast<double>(found.places[0].y) - 59.6) * ny;
    if (row > 0) {
      EXPECT_NEAR(across, former, 0.12);
    }
    former = across;
    EXPECT_LT(std::fabs(across), 3.0);
  }
}

TEST(FindEdges, FailInTheStatedOrderAndLeaveTheOutputs) {
  const TestImage image(IMAGE_U8, 9, 9);
  const TestImage empty(IMAGE_I16, 0, 0);
  const Path path = RowPath(9);
  EdgeRecord* edges = nullptr;
  PointFloat* places = nullptr;
  int32_t count = 77;
  const auto call = [&](ImageRef reference, const PointInt* points, int32_t n, int32_t method,
                        int32_t oversampling) {
    return ZEL_FindEdges(reference, points, n, method, oversampling, 1, 1, 0, &count, &edges,
                         &places);
  };
  EXPECT_EQ(call(999, nullptr, 1, 7, 1), ZEL_ERR_NULL_POINTER);
  EXPECT_EQ(ZEL_FindEdges(image, path.data(), 9, 0, 0, 1, 1, 0, &count, nullptr, &places),
            ZEL_ERR_NULL_POINTER);
  EXPECT_EQ(ZEL_FindEdges(image, path.data(), 9, 0, 0, 1, 1, 0, &count, &edges, nullptr),
            ZEL_ERR_NULL_POINTER);
  EXPECT_EQ(call(999, path.data(), 4, 7, 1), ZEL_ERR_BAD_IMAGE);
  EXPECT_EQ(call(empty, path.data(), 4, 7, 1), ZEL_ERR_INTERNAL);
  EXPECT_EQ(call(image, path.data(), 4, 7, 1), ZEL_ERR_TOO_FEW_POINTS);
  EXPECT_EQ(call(image, path.data(), 9, 7, 1), ZEL_ERR_BAD_INTERPOLATION);
  EXPECT_EQ(call(image, path.data(), 9, 0, INT32_MAX), ZEL_ERR_MEMORY_FULL);
  EXPECT_EQ(count, 77);
  EXPECT_EQ(edges, nullptr);
  // Without oversampling no method is asked for.
  EXPECT_EQ(call(image, path.data(), 9, 7, 0), 0);
  EXPECT_EQ(ZEL_FindEdges(image, path.data(), 9, 7, INT32_MIN, 1, 1, 0, nullptr, &edges, &places),
            0);
  ZEL_free(edges);
  ZEL_free(places);
}

TEST(FindEdges, TakeExtremeSizesForWindowsThatDoNotFit) {
  const TestImage image(IMAGE_U8, 9, 9);
  for (const int32_t extreme : {INT32_MAX, INT32_MAX / 2, 1 << 30}) {
    for (const Request& r : {Request{0, 3, 1, extreme, 0}, Request{0, 3, 1, 1, extreme},
                             Request{0, 0, extreme, extreme, extreme}}) {
      Found found;
      ASSERT_EQ(Find(image, RowPath(9), r, &found), 0);
      EXPECT_EQ(found.edges.count, 0);
    }
  }
  ExpectOracleEdges(image, RowPath(9), {0, 0, INT32_MIN, INT32_MIN, INT32_MIN});
  ExpectOracleEdges(image, RowPath(9), {0, 0, INT32_MAX, 1, 0});
}

// Hundreds of thousands of values under windows as wide take no longer than the values do.
TEST(FindEdges, WithHugeOversamplingEnd) {
  const TestImage image = RowImage<float>(IMAGE_SGL, {1e-20f, 3, -7.1f, 1, 0.3f, -1, 1, -1});
  Found found;
  ASSERT_EQ(Find(image, RowPath(8), {INTERP_SPLINE, 100000, 1, 2, 0}, &found), 0);
  EXPECT_GT(found.edges.count, 0);
}

TEST(FindEdges, DoWithoutMemory) {
  const TestImage image(IMAGE_U8, 600, 1, 0, 7);
  Found found;
  test::RefuseEachAllocation(
      [] {},
      [&] {
        return Find(image, RowPath(600), {INTERP_SPLINE, 3, 5, 2, 0}, &found);
      });
}

}  // namespace
