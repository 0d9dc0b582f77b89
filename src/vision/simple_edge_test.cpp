#include <algorithm>
#include <limits>

#include "tests/support/refused_memory.h"
#include "vision/vision_test.h"

namespace {

using namespace test::paths;
using test::TestImage;

struct Request {
  int32_t process = EDGE_ALL, percent = 0;
  int32_t threshold = 100, hysteresis = 10, subPixel = 0;
};

int32_t Find(ImageRef image, const Path& path, const Request& r, Table<PointFloat>* edges) {
  return ZEL_SimpleEdge(image, path.data(), Count(path), r.process, r.percent, r.threshold,
                        r.hysteresis, r.subPixel, &edges->records, &edges->count);
}

std::vector<float> PlacesOf(ImageRef image, int32_t count, const Request& r) {
  Table<PointFloat> edges;
  EXPECT_EQ(Find(image, RowPath(count), r, &edges), 0);
  std::vector<float> places;
  for (int32_t i = 0; i < edges.count; i++) places.push_back(edges[i].x);
  return places;
}

// Where a parabola through three samples meets the level, by divided differences.
bool OracleQuad(const double (&t)[3], const double (&s)[3], double level, double* place) {
  if (t[1] == 0 || t[2] == 0 || t[1] == t[2]) return false;
  const double first = (s[1] - s[0]) / t[1];
  const double c2 = ((s[2] - s[1]) / (t[2] - t[1]) - first) / t[2];
  const double c1 = first - c2 * t[1];
  const double discriminant = c1 * c1 - 4 * c2 * (s[0] - level);
  if (discriminant < 0) return false;
  std::vector<double> roots;
  if (std::fabs(c2) > 1e-12) {
    roots = {(-c1 - std::sqrt(discriminant)) / (2 * c2),
             (-c1 + std::sqrt(discriminant)) / (2 * c2)};
  } else if (c1 != 0) {
    roots = {(level - s[0]) / c1};
  }
  std::erase_if(roots, [&](double root) { return root < -1e-9 || root > t[1] + 1e-9; });
  if (roots.empty()) return false;
  *place = *std::max_element(roots.begin(), roots.end());
  return true;
}

struct OracleCross {
  int64_t next = -1;
  double x = -1, y = -1;
};

OracleCross Cross(const std::vector<double>& v, const Path& p, const Request& r, int64_t start) {
  const auto n = static_cast<int64_t>(v.size());
  const auto at = [&](int64_t i) { return v[static_cast<size_t>(i)]; };
  const auto point = [&](int64_t i) { return p[static_cast<size_t>(i)]; };
  int64_t i = start;
  while (i < n && at(i) == r.threshold) i++;
  if (i >= n) return {};
  const bool below = at(i) < r.threshold;
  int64_t j = i;
  const double high = static_cast<double>(r.threshold) + r.hysteresis;
  const double low = static_cast<double>(r.threshold) - r.hysteresis;
  while (j < n && !(below ? at(j) > high : at(j) < low)) j++;
  if (j == n) return {};
  for (int64_t k = j - 1; k >= i; k--) {
    if (!(below ? at(k) < r.threshold : at(k) > r.threshold)) continue;
    OracleCross cross{k + 1, static_cast<double>(point(k + 1).x),
                      static_cast<double>(point(k + 1).y)};
    if (r.subPixel == 0 || (k + 2 >= n && k == 0)) return cross;
    const int64_t three[3] = {k + 2 < n ? k : k + 1, k + 2 < n ? k + 1 : k,
                              k + 2 < n ? k + 2 : k - 1};
    double t[3];
    double s[3];
    for (int m = 0; m < 3; m++) {
      t[m] =
          std::hypot(point(three[m]).x - point(three[0]).x, point(three[m]).y - point(three[0]).y);
      s[m] = at(three[m]);
    }
    double place = 0;
    if (!OracleQuad(t, s, r.threshold, &place)) return cross;
    const PointInt a = point(three[0]);
    const PointInt b = point(three[1]);
    cross.x = a.x + place * (b.x - a.x) / t[1];
    cross.y = a.y + place * (b.y - a.y) / t[1];
    return cross;
  }
  return {};
}

std::vector<OracleCross> Crossings(std::vector<double> v, Path p, const Request& r) {
  std::vector<OracleCross> found;
  OracleCross cross = Cross(v, p, r, 0);
  if (cross.next >= 0) found.push_back(cross);
  if (r.process == EDGE_FIRST) return found;
  if (r.process == EDGE_FIRST_AND_LAST) {
    std::reverse(v.begin(), v.end());
    std::reverse(p.begin(), p.end());
    cross = Cross(v, p, r, 0);
    if (cross.next >= 0) found.push_back(cross);
    return found;
  }
  for (int64_t former = 0; cross.next > former;) {
    former = cross.next;
    cross = Cross(v, p, r, former);
    if (cross.next > former) found.push_back(cross);
  }
  return found;
}

TEST(SimpleEdge, FollowsTheRule) {
  test::Random random(21);
  for (const int32_t type : {IMAGE_U8, IMAGE_I16, IMAGE_SGL}) {
    const TestImage image(type, 50, 40, 1, 5);
    for (int32_t i = 0; i < 300; i++) {
      Path path;
      PointInt p{random.Between(0, 49), random.Between(0, 39)};
      for (int32_t n = random.Between(1, 60); n > 0; n--) {
        path.push_back(p);
        p = {std::clamp(p.x + random.Between(-1, 1), 0, 49),
             std::clamp(p.y + random.Between(-1, 1), 0, 39)};
      }
      std::vector<double> v;
      for (const PointInt& q : path) v.push_back(test::PixelOf(image, q.x, q.y));
      const int32_t scale = type == IMAGE_U8 ? 1 : 60;
      const Request r{random.Between(-1, 3), 0, random.Between(20, 200) * scale,
                      random.Between(-3, 40) * scale, random.Between(0, 1)};
      Table<PointFloat> edges;
      ASSERT_EQ(Find(image, path, r, &edges), 0);
      const std::vector<OracleCross> expected = Crossings(v, path, r);
      ASSERT_EQ(static_cast<size_t>(edges.count), expected.size());
      for (int32_t k = 0; k < edges.count; k++) {
        EXPECT_NEAR(edges[k].x, expected[static_cast<size_t>(k)].x, 1e-4);
        EXPECT_NEAR(edges[k].y, expected[static_cast<size_t>(k)].y, 1e-4);
      }
    }
  }
}

TEST(SimpleEdge, OfAFlatSignalIsNone) {
  const TestImage image = RowImage<uint8_t>(IMAGE_U8, std::vector<uint8_t>(30, 100));
  for (const int32_t percent : {0, 1}) {
    for (const int32_t threshold : {0, 50, 100, 200}) {
      EXPECT_TRUE(PlacesOf(image, 30, {EDGE_ALL, percent, threshold, 0, 1}).empty());
    }
  }
}

TEST(SimpleEdge, PassesOverSamplesAtTheThreshold) {
  const TestImage image = RowImage<uint8_t>(IMAGE_U8, {100, 100, 180, 20, 20, 180});
  // The first sample that tells a side is the third: the row starts above.
  EXPECT_EQ(PlacesOf(image, 6, {EDGE_ALL, 0, 100, 10, 0}), (std::vector<float>{3, 5}));
  EXPECT_EQ(PlacesOf(image, 2, {EDGE_ALL, 0, 100, 10, 0}), std::vector<float>{});
}

TEST(SimpleEdge, NeedsMoreThanTheHysteresisAndLiesAtTheThreshold) {
  const TestImage image = RowImage<uint8_t>(IMAGE_U8, {0, 90, 101, 99, 105, 110, 111, 120});
  EXPECT_EQ(PlacesOf(image, 8, {EDGE_FIRST, 0, 100, 10, 0}), (std::vector<float>{4}));
  EXPECT_EQ(PlacesOf(image, 8, {EDGE_FIRST, 0, 100, 20, 0}), (std::vector<float>{}));
  EXPECT_EQ(PlacesOf(image, 8, {EDGE_ALL, 0, 100, 0, 0}), (std::vector<float>{2, 3, 4}));
}

TEST(SimpleEdge, OfOneCrossingIsReportedFromBothSides) {
  const TestImage image = RowImage<uint8_t>(IMAGE_U8, {0, 0, 0, 200, 200, 200});
  EXPECT_EQ(PlacesOf(image, 6, {EDGE_FIRST_AND_LAST, 0, 100, 10, 0}), (std::vector<float>{3, 2}));
}

TEST(SimpleEdge, ByPartsOfAPixelFollowsTheParabola) {
  const TestImage line = RowImage<uint8_t>(IMAGE_U8, {0, 40, 80, 120, 160, 200});
  EXPECT_EQ(PlacesOf(line, 6, {EDGE_FIRST, 0, 100, 10, 1}), (std::vector<float>{2.5f}));
  // x * x * 10, met at 100 and so at the root of 10.
  const TestImage square = RowImage<uint8_t>(IMAGE_U8, {0, 10, 40, 90, 160, 250});
  EXPECT_NEAR(PlacesOf(square, 6, {EDGE_FIRST, 0, 100, 10, 1})[0], std::sqrt(10.0f), 1e-6);
  // Among the last two samples the three are taken the other way.
  const TestImage last = RowImage<uint8_t>(IMAGE_U8, {0, 10, 40, 90});
  EXPECT_NEAR(PlacesOf(last, 4, {EDGE_FIRST, 0, 60, 10, 1})[0], std::sqrt(6.0f), 1e-6);
  const TestImage two = RowImage<uint8_t>(IMAGE_U8, {0, 90});
  EXPECT_EQ(PlacesOf(two, 2, {EDGE_FIRST, 0, 60, 10, 1}), (std::vector<float>{1}));
}

// Squares of slant distances are rounded: equal steps leave a second power that is only rounding.
TEST(SimpleEdge, OfEqualStepsOnASlantLineIsExact) {
  for (const PointInt step : {PointInt{1, 1}, PointInt{1, 2}, PointInt{3, 1}}) {
    TestImage image(IMAGE_I16, 24, 24);
    Path path;
    for (int32_t i = 0; i < 8; i++) {
      path.push_back({i * step.x, i * step.y});
      image.Set<int16_t>(path.back().x, path.back().y, static_cast<int16_t>(100 * i - 1300));
    }
    for (int32_t threshold = -1299; threshold < -600; threshold++) {
      Table<PointFloat> edges;
      ASSERT_EQ(Find(image, path, {EDGE_FIRST, 0, threshold, 0, 1}, &edges), 0);
      ASSERT_EQ(edges.count, 1);
      const float steps = static_cast<float>(threshold + 1300) / 100.0f;
      EXPECT_NEAR(edges[0].x, steps * static_cast<float>(step.x), 1e-5) << threshold;
      EXPECT_NEAR(edges[0].y, steps * static_cast<float>(step.y), 1e-5) << threshold;
    }
  }
}

TEST(SimpleEdge, InPercentCutsItsLevels) {
  // From 10 to 210: 25 percent are 60, with a hysteresis of 10.
  const TestImage image = RowImage<uint8_t>(IMAGE_U8, {10, 59, 60, 70, 71, 210});
  EXPECT_EQ(PlacesOf(image, 6, {EDGE_FIRST, 1, 25, 5, 0}), (std::vector<float>{2}));
  EXPECT_EQ(PlacesOf(image, 6, {EDGE_FIRST, 1, -70, 0, 0}),
            PlacesOf(image, 6, {EDGE_FIRST, 1, 0, 0, 0}));
  EXPECT_EQ(PlacesOf(image, 6, {EDGE_FIRST, 1, INT32_MAX, 0, 0}),
            PlacesOf(image, 6, {EDGE_FIRST, 1, 100, 0, 0}));
  // Floats: 50 percent of 0.25 to 3.75 are 2, and not 2.0000 to be met at 1.9.
  const TestImage floats = RowImage<float>(IMAGE_SGL, {0.25f, 1.5f, 1.9f, 2.5f, 3.75f});
  EXPECT_EQ(PlacesOf(floats, 5, {EDGE_FIRST, 1, 50, 0, 0}), (std::vector<float>{3}));
  const TestImage cut = RowImage<float>(IMAGE_SGL, {0.0f, 1.5f, 1.9f, 2.5f, 3.9f});
  EXPECT_EQ(PlacesOf(cut, 5, {EDGE_FIRST, 1, 50, 0, 0}), (std::vector<float>{1}));  // 1.95, cut
}

TEST(SimpleEdge, WithoutPointsIsNone) {
  const TestImage image(IMAGE_U8, 9, 9);
  Table<PointFloat> edges;
  edges.records = static_cast<PointFloat*>(ZEL_malloc(800));
  for (const int32_t count : {0, -1, INT32_MIN}) {
    EXPECT_EQ(ZEL_SimpleEdge(image, nullptr, count, 0, 0, 1, 1, 1, &edges.records, &edges.count),
              0);
    EXPECT_EQ(edges.count, 0);
    EXPECT_EQ(edges.records, nullptr);
  }
}

TEST(SimpleEdge, OfExtremeLevelsAndSamplesEnds) {
  constexpr float inf = std::numeric_limits<float>::infinity();
  const TestImage image = RowImage<float>(IMAGE_SGL, {NAN, -inf, 5, inf, NAN, 3e38f, -3e38f, 0});
  for (const int32_t threshold : {INT32_MIN, -1, 0, INT32_MAX}) {
    for (const int32_t hysteresis : {INT32_MIN, 0, INT32_MAX}) {
      for (const int32_t percent : {0, 1}) {
        for (int32_t process = 0; process < 3; process++) {
          Table<PointFloat> edges;
          EXPECT_EQ(Find(image, RowPath(8), {process, percent, threshold, hysteresis, 1}, &edges),
                    0);
        }
      }
    }
  }
}

TEST(SimpleEdge, FailsInTheStatedOrderAndLeavesTheOutputs) {
  const TestImage image(IMAGE_U8, 9, 9);
  const TestImage colour(IMAGE_RGB, 9, 9);
  const TestImage empty(IMAGE_U8, 0, 0);
  const TestImage emptyColour(IMAGE_RGB, 0, 0);
  const Path path = RowPath(9);
  PointFloat* edges = nullptr;
  int32_t count = 77;
  const auto call = [&](ImageRef reference, const PointInt* points, int32_t n) {
    return ZEL_SimpleEdge(reference, points, n, 0, 0, 1, 1, 0, &edges, &count);
  };
  EXPECT_EQ(call(999, nullptr, 1), ZEL_ERR_NULL_POINTER);
  EXPECT_EQ(ZEL_SimpleEdge(image, path.data(), 9, 0, 0, 1, 1, 0, nullptr, &count),
            ZEL_ERR_NULL_POINTER);
  EXPECT_EQ(call(999, path.data(), 0), ZEL_ERR_BAD_IMAGE);
  EXPECT_EQ(call(colour, path.data(), 0), ZEL_ERR_BAD_TYPE);
  EXPECT_EQ(call(emptyColour, path.data(), 9), ZEL_ERR_BAD_TYPE);
  EXPECT_EQ(call(empty, path.data(), 0), ZEL_ERR_INTERNAL);
  EXPECT_EQ(count, 77);
  EXPECT_EQ(edges, nullptr);
}

TEST(SimpleEdge, DoesWithoutMemory) {
  const TestImage image(IMAGE_U8, 1500, 1, 0, 7);
  Table<PointFloat> edges;
  test::RefuseEachAllocation([] {},
                             [&] {
                               return Find(image, RowPath(1500), {EDGE_ALL, 0, 100, 5, 1}, &edges);
                             });
}

}  // namespace
