#include "vision/path_signal.h"

#include <limits>

#include "core/heap.h"
#include "tests/support/refused_memory.h"
#include "vision/vision_test.h"

namespace {

using namespace test::paths;
using test::TestImage;

constexpr float INF = std::numeric_limits<float>::infinity();

std::vector<double> SamplesOf(const TestImage& image, const Path& path) {
  std::vector<double> samples;
  for (const PointInt& p : path) samples.push_back(test::PixelOf(image, p.x, p.y));
  return samples;
}

// A natural cubic spline's second derivatives by elimination over the whole matrix.
std::vector<double> SplineCurvatures(const std::vector<double>& y) {
  const size_t n = y.size();
  std::vector<std::vector<double>> rows(n, std::vector<double>(n + 1, 0.0));
  rows[0][0] = rows[n - 1][n - 1] = 1.0;
  for (size_t i = 1; i + 1 < n; i++) {
    rows[i][i - 1] = rows[i][i + 1] = 1.0;
    rows[i][i] = 4.0;
    rows[i][n] = 6.0 * (y[i + 1] - 2.0 * y[i] + y[i - 1]);
  }
  for (size_t i = 0; i < n; i++) {
    for (size_t k = 0; k < n; k++) {
      if (k == i || rows[k][i] == 0.0) continue;
      const double factor = rows[k][i] / rows[i][i];
      for (size_t c = 0; c <= n; c++) rows[k][c] -= factor * rows[i][c];
    }
  }
  std::vector<double> m(n);
  for (size_t i = 0; i < n; i++) m[i] = rows[i][n] / rows[i][i];
  return m;
}

TEST(Interpolate, FollowsTheStatedCurves) {
  test::Random random(3);
  for (const int32_t type : {IMAGE_U8, IMAGE_I16, IMAGE_SGL}) {
    const TestImage image(type, 40, 30, 2, 9);
    for (const int32_t n : {5, 6, 17, 300}) {
      Path path;
      for (int32_t i = 0; i < n; i++) {
        path.push_back({random.Between(0, 39), random.Between(0, 29)});
      }
      const std::vector<double> d = SamplesOf(image, path);
      const std::vector<double> m = SplineCurvatures(d);
      double most = 1.0;
      for (const double value : d) most = std::max(most, std::fabs(value));
      for (const int32_t oversampling : {-7, 0, 1, 4, 9}) {
        const auto factor = static_cast<size_t>(std::max(oversampling, 0) + 1);
        const size_t count = (d.size() - 1) * factor + 1;
        const std::vector<float> linear = Interpolated(image, path, INTERP_LINEAR, oversampling);
        const std::vector<float> spline = Interpolated(image, path, INTERP_SPLINE, oversampling);
        const std::vector<float> quad = Interpolated(image, path, INTERP_QUADRATIC, oversampling);
        ASSERT_EQ(linear.size(), count);
        ASSERT_EQ(spline.size(), count);
        ASSERT_EQ(quad.size(), count);
        for (size_t v = 0; v < count; v++) {
          const size_t j = std::min(v / factor, d.size() - 2);
          const double t = static_cast<double>(v - j * factor) / static_cast<double>(factor);
          EXPECT_EQ(linear[v], static_cast<float>(d[j] + t * (d[j + 1] - d[j])));
          // Hermite's form of the same cubic.
          const double slope0 = d[j + 1] - d[j] - (2 * m[j] + m[j + 1]) / 6;
          const double cubic = d[j] + t * (slope0 + t * (m[j] / 2 + t * (m[j + 1] - m[j]) / 6));
          EXPECT_NEAR(spline[v], cubic, most * 1e-6);
          if (v >= (d.size() - 2) * factor) continue;
          // Lagrange's form through d[j], d[j + 1], d[j + 2], one interval on.
          const double u = t + 1.0;
          const double lagrange =
              d[j] * (u - 1) * (u - 2) / 2 - d[j + 1] * u * (u - 2) + d[j + 2] * u * (u - 1) / 2;
          EXPECT_NEAR(quad[v], lagrange, most * 1e-6);
        }
        // What is left behind the parabolas: the last sample but one, and then nothing.
        EXPECT_EQ(quad[(d.size() - 2) * factor], static_cast<float>(d[d.size() - 2]));
        for (size_t v = (d.size() - 2) * factor + 1; v < count; v++) EXPECT_EQ(quad[v], 0.0f);
      }
    }
  }
}

TEST(Interpolate, ByParabolasBeginsAtTheSecondSample) {
  const TestImage image = RowImage<uint8_t>(IMAGE_U8, {10, 20, 40, 70, 110, 160});
  const std::vector<float> expected = {20, 40, 70, 110, 110, 0};
  EXPECT_EQ(Interpolated(image, RowPath(6), INTERP_QUADRATIC, 0), expected);
  const std::vector<float> twice = Interpolated(image, RowPath(6), INTERP_QUADRATIC, 1);
  const std::vector<float> doubled = {20, 28.75f, 40, 53.75f, 70, 88.75f, 110, 133.75f, 110, 0, 0};
  EXPECT_EQ(twice, doubled);
}

TEST(Interpolate, OfAStraightLineIsTheLine) {
  const TestImage image = RowImage<int16_t>(IMAGE_I16, {-8, -4, 0, 4, 8, 12});
  for (const int32_t method : {INTERP_LINEAR, INTERP_SPLINE}) {
    const std::vector<float> values = Interpolated(image, RowPath(6), method, 3);
    for (size_t i = 0; i < values.size(); i++) {
      EXPECT_EQ(values[i], static_cast<float>(i) - 8.0f);
    }
  }
}

TEST(Interpolate, OutsideTheImageReadsTheNearestPixel) {
  const TestImage image(IMAGE_I16, 7, 4, 1, 5);
  const Path path = {{-1, 0}, {INT32_MIN, 3}, {7, INT32_MAX}, {3, -9}, {INT32_MAX, INT32_MIN}};
  const std::vector<float> expected = {
      static_cast<float>(image.Get<int16_t>(0, 0)), static_cast<float>(image.Get<int16_t>(0, 3)),
      static_cast<float>(image.Get<int16_t>(6, 3)), static_cast<float>(image.Get<int16_t>(3, 0)),
      static_cast<float>(image.Get<int16_t>(6, 0))};
  EXPECT_EQ(Interpolated(image, path, INTERP_LINEAR, 0), expected);
}

TEST(Interpolate, OfImagesWithoutASignalIsZeroWithoutAFailure) {
  for (const int32_t type : {IMAGE_COMPLEX, IMAGE_RGB}) {
    const TestImage image(type, 9, 9, 0, 4);
    for (const int32_t method : {INTERP_LINEAR, INTERP_QUADRATIC, INTERP_SPLINE}) {
      EXPECT_EQ(Interpolated(image, RowPath(9), method, 2), std::vector<float>(25, 0.0f));
    }
  }
}

TEST(Interpolate, OfAnOpaqueImageIsZeroAsWell) {
  ImageRef image = 0;
  ASSERT_EQ(ZEL_Create(&image, IMAGE_OPAQUE, 0), 0);
  const int32_t sized = ZEL_SetImageSize(image, 9, 9);
  Table<float> values;
  const Path path = RowPath(9);
  EXPECT_EQ(ZEL_Interpolate1D(image, path.data(), 9, 0, 1, &values.records, &values.count),
            sized == 0 ? 0 : ZEL_ERR_INTERNAL);
  if (sized == 0) {
    EXPECT_EQ(values.Copy(), std::vector<float>(17, 0.0f));
  }
  EXPECT_EQ(ZEL_Dispose(image), 0);
}

TEST(Interpolate, FailsInTheStatedOrderAndLeavesTheOutputs) {
  const TestImage image(IMAGE_U8, 9, 9);
  const TestImage empty(IMAGE_U8, 0, 0);
  const Path path = RowPath(9);
  auto* block = static_cast<float*>(ZEL_malloc(8));
  float* values = block;
  int32_t count = 77;
  const auto call = [&](ImageRef reference, const PointInt* points, int32_t n, int32_t method,
                        int32_t oversampling) {
    return ZEL_Interpolate1D(reference, points, n, method, oversampling, &values, &count);
  };
  EXPECT_EQ(call(999, nullptr, 1, 7, 0), ZEL_ERR_NULL_POINTER);
  EXPECT_EQ(ZEL_Interpolate1D(image, path.data(), 9, 0, 0, nullptr, &count), ZEL_ERR_NULL_POINTER);
  EXPECT_EQ(call(999, path.data(), 4, 7, 0), ZEL_ERR_BAD_IMAGE);
  EXPECT_EQ(call(empty, path.data(), 4, 7, 0), ZEL_ERR_INTERNAL);
  EXPECT_EQ(call(image, path.data(), 4, 7, 0), ZEL_ERR_TOO_FEW_POINTS);
  EXPECT_EQ(call(image, nullptr, INT32_MIN, 0, 0), ZEL_ERR_TOO_FEW_POINTS);
  for (const int32_t method : {-1, 3, INT32_MIN, INT32_MAX}) {
    EXPECT_EQ(call(image, path.data(), 9, method, 0), ZEL_ERR_BAD_INTERPOLATION);
  }
  EXPECT_EQ(call(image, path.data(), 9, 0, INT32_MAX), ZEL_ERR_MEMORY_FULL);
  EXPECT_EQ(values, block);
  EXPECT_EQ(count, 77);
  EXPECT_EQ(ZEL_Interpolate1D(image, path.data(), 9, 0, 0, &values, nullptr), 0);
  EXPECT_EQ(values[8], static_cast<float>(image.Get<uint8_t>(8, 0)));
  ZEL_free(values);
}

TEST(Interpolate, DoesWithoutMemory) {
  const TestImage image(IMAGE_SGL, 600, 1, 0, 7);
  const Path path = RowPath(600);
  Table<float> values;
  test::RefuseEachAllocation([] {},
                             [&] {
                               return ZEL_Interpolate1D(image, path.data(), 600, INTERP_SPLINE, 3,
                                                        &values.records, &values.count);
                             });
}

// As lines of a gauge can be that short.
TEST(Oversampler, OfFewSamplesRepeatsTheFirstOne) {
  const float samples[2] = {3.0f, 7.0f};
  zel::Oversampler oversampler;
  for (const int32_t method : {INTERP_LINEAR, INTERP_QUADRATIC, INTERP_SPLINE}) {
    ASSERT_EQ(oversampler.Prepare(method, 4, 2), zel::STATUS_OK);
    float values[5] = {-1, -1, -1, -1, -1};
    oversampler.Oversample(samples, 1, values);
    EXPECT_EQ(values[0], 3.0f);
    EXPECT_EQ(values[1], -1.0f);
    oversampler.Oversample(samples, 2, values);
    const bool isFlat = method == INTERP_QUADRATIC;
    for (int i = 0; i < 5; i++) {
      EXPECT_EQ(values[i], isFlat ? 3.0f : 3.0f + static_cast<float>(i));
    }
  }
}

TEST(Interpolate, PassesInfinitiesAndNaNOn) {
  const TestImage image = RowImage<float>(IMAGE_SGL, {0, INF, 0, NAN, 0, 1});
  const std::vector<float> values = Interpolated(image, RowPath(6), INTERP_LINEAR, 1);
  EXPECT_TRUE(std::isinf(values[1]));
  EXPECT_TRUE(std::isnan(values[5]));
  EXPECT_EQ(values[9], 0.5f);
}

}  // namespace
