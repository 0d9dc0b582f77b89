#include <algorithm>
#include <limits>

#include "tests/support/refused_memory.h"
#include "vision/vision_test.h"

namespace {

using namespace test::paths;

struct Found {
  Table<double> locations, amplitudes, seconds;
};

int32_t Detect(const std::vector<double>& data, double threshold, int32_t width, int32_t type,
               Found* found) {
  const int32_t result =
      ZEL_PeakValleyDetector(data.data(), static_cast<int32_t>(data.size()), threshold, width, type,
                             &found->locations.count, &found->locations.records,
                             &found->amplitudes.records, &found->seconds.records);
  found->amplitudes.count = found->seconds.count = found->locations.count;
  return result;
}

struct Coefficients {
  double a, b, c;
};

// Least squares by Gram-Schmidt on 1, t, t^2.
Coefficients Fit(const std::vector<double>& data, size_t start, size_t width) {
  const double half = (static_cast<double>(width) - 1) / 2;
  double s0 = 0, s1 = 0, n1 = 0, s2 = 0, n2 = 0, mean2 = 0;
  for (size_t i = 0; i < width; i++) {
    const double t = static_cast<double>(i) - half;
    mean2 += t * t / static_cast<double>(width);
  }
  for (size_t i = 0; i < width; i++) {
    const double t = static_cast<double>(i) - half;
    const double y = data[start + i];
    s0 += y;
    s1 += t * y;
    n1 += t * t;
    s2 += (t * t - mean2) * y;
    n2 += (t * t - mean2) * (t * t - mean2);
  }
  const double c = s2 / n2;
  return {s0 / static_cast<double>(width) - c * mean2, s1 / n1, c};
}

struct OracleVertex {
  double location, amplitude, second;
};

std::vector<OracleVertex> Vertices(const std::vector<double>& data, double threshold, size_t width,
                                   bool peaks) {
  std::vector<OracleVertex> found;
  const double half = (static_cast<double>(width) - 1) / 2;
  for (size_t start = 1; start + width <= data.size(); start++) {
    const Coefficients former = Fit(data, start - 1, width);
    Coefficients now = Fit(data, start, width);
    if ((former.b > 0) == (now.b > 0)) continue;
    if (now.c == 0) continue;
    auto at = static_cast<double>(start);
    double x = -now.b / (2 * now.c);
    if (x < -0.5) {
      if (former.c == 0) continue;
      const double other = -former.b / (2 * former.c);
      if (std::fabs(x) > std::fabs(other)) {
        x = other;
        now = former;
        at -= 1;
      }
    }
    if (std::fabs(x) > half) continue;
    const double y = now.a + now.b * x + now.c * x * x;
    if (peaks ? now.c < 0 && y > threshold : now.c > 0 && y < threshold) {
      found.push_back({at + half + x, y, 2 * now.c});
    }
  }
  return found;
}

TEST(PeakValleyDetector, FollowsTheRule) {
  test::Random random(31);
  for (int32_t i = 0; i < 100; i++) {
    std::vector<double> data(static_cast<size_t>(random.Between(3, 200)));
    double level = 0;
    for (double& value : data) {
      level += static_cast<double>(random.Float(-1, 1));
      value = level;
    }
    const int32_t width = random.Between(3, 12);
    for (const int32_t type : {0, 1, -5}) {
      Found found;
      ASSERT_EQ(Detect(data, 0.1, width, type, &found), 0);
      const std::vector<OracleVertex> expected =
          Vertices(data, 0.1, static_cast<size_t>(width), type == DETECT_PEAKS);
      ASSERT_EQ(static_cast<size_t>(found.locations.count), expected.size());
      for (int32_t k = 0; k < found.locations.count; k++) {
        const OracleVertex& vertex = expected[static_cast<size_t>(k)];
        EXPECT_NEAR(found.locations[k], vertex.location, 1e-8);
        EXPECT_NEAR(found.amplitudes[k], vertex.amplitude, 1e-9);
        EXPECT_NEAR(found.seconds[k], vertex.second, 1e-9);
      }
    }
  }
}

TEST(PeakValleyDetector, FindsTheVertexOfAParabola) {
  std::vector<double> data(41);
  for (size_t i = 0; i < data.size(); i++) {
    const double x = static_cast<double>(i) - 17.3;
    data[i] = 50 - 0.5 * x * x;
  }
  for (const int32_t width : {3, 4, 7, 12}) {
    Found peaks;
    ASSERT_EQ(Detect(data, 0, width, DETECT_PEAKS, &peaks), 0);
    ASSERT_EQ(peaks.locations.count, 1);
    EXPECT_NEAR(peaks.locations[0], 17.3, 1e-9);
    EXPECT_NEAR(peaks.amplitudes[0], 50, 1e-9);
    EXPECT_NEAR(peaks.seconds[0], -1, 1e-9);
    Found valleys;
    ASSERT_EQ(Detect(data, 100, width, DETECT_VALLEYS, &valleys), 0);
    EXPECT_EQ(valleys.locations.count, 0);
    ASSERT_EQ(Detect(data, 50.5, width, DETECT_PEAKS, &peaks), 0);
    EXPECT_EQ(peaks.locations.count, 0);
    EXPECT_EQ(peaks.locations.records, nullptr);
  }
}

TEST(PeakValleyDetector, FindsNothingOnFlatData) {
  for (const double level : {0.0, 0.1, -1e300, 12345.678}) {
    const std::vector<double> data(60, level);
    for (const int32_t width : {3, 4, 25}) {
      for (const int32_t type : {0, 1}) {
        Found found;
        ASSERT_EQ(Detect(data, type == 0 ? -1e301 : 1e301, width, type, &found), 0);
        EXPECT_EQ(found.locations.count, 0);
      }
    }
  }
}

TEST(PeakValleyDetector, OfFewerDataThanItsWidthFindsNothing) {
  const std::vector<double> data = {0, 5, 0, 5};
  Found found;
  for (const int32_t width : {5, 1000, INT32_MAX}) {
    ASSERT_EQ(Detect(data, 0, width, 0, &found), 0);
    EXPECT_EQ(found.locations.count, 0);
  }
  EXPECT_EQ(ZEL_PeakValleyDetector(nullptr, -3, 0, 3, 0, nullptr, &found.locations.records,
                                   &found.amplitudes.records, &found.seconds.records),
            0);
}

TEST(PeakValleyDetector, OfWildDataEnds) {
  constexpr double inf = std::numeric_limits<double>::infinity();
  std::vector<double> data = {0, NAN, 5, inf, -inf, 1e308, -1e308, 3, 2, 1, 0, 1, 2, NAN, 1, 0, 1};
  for (const double threshold : {0.0, inf, -inf, static_cast<double>(NAN)}) {
    for (int32_t width = 3; width < 10; width++) {
      Found found;
      EXPECT_EQ(Detect(data, threshold, width, 0, &found), 0);
      EXPECT_EQ(Detect(data, threshold, width, 1, &found), 0);
    }
  }
}

TEST(PeakValleyDetector, FailsInTheStatedOrderAndLeavesTheOutputs) {
  const double data[4] = {0, 1, 0, 1};
  double* a = nullptr;
  double* b = nullptr;
  double* c = nullptr;
  int32_t found = 77;
  EXPECT_EQ(ZEL_PeakValleyDetector(nullptr, 4, 0, 2, 0, &found, &a, &b, &c), ZEL_ERR_NULL_POINTER);
  EXPECT_EQ(ZEL_PeakValleyDetector(data, 4, 0, 2, 0, &found, nullptr, &b, &c),
            ZEL_ERR_NULL_POINTER);
  EXPECT_EQ(ZEL_PeakValleyDetector(data, 4, 0, 2, 0, &found, &a, nullptr, &c),
            ZEL_ERR_NULL_POINTER);
  EXPECT_EQ(ZEL_PeakValleyDetector(data, 4, 0, 2, 0, &found, &a, &b, nullptr),
            ZEL_ERR_NULL_POINTER);
  EXPECT_EQ(ZEL_PeakValleyDetector(data, -4, 0, 2, 0, &found, &a, &b, &c), ZEL_ERR_BAD_WIDTH);
  EXPECT_EQ(ZEL_PeakValleyDetector(data, 4, 0, INT32_MIN, 0, &found, &a, &b, &c),
            ZEL_ERR_BAD_WIDTH);
  EXPECT_EQ(found, 77);
  char name[ERROR_PROCEDURE_BYTES] = "";
  ZEL_GetLastError(name);
  EXPECT_STREQ(name, "ZEL_PeakValleyDetect");
}

TEST(PeakValleyDetector, DoesWithoutMemory) {
  std::vector<double> data(400);
  for (size_t i = 0; i < data.size(); i++) data[i] = std::sin(static_cast<double>(i) * 1.7);
  Found found;
  test::RefuseEachAllocation([] {}, [&] { return Detect(data, 0, 3, 0, &found); });
}

}  // namespace
