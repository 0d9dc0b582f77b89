#include <algorithm>
#include <array>
#include <limits>

#include "core/images.h"
#include "tests/support/refused_memory.h"
#include "vision/vision_test.h"

namespace {

using namespace test::paths;
using test::TestImage;

// A part with a long arm, a short arm and a notch: no symmetry in it.
bool IsPart(double x, double y) {
  const bool isStem = x >= -4 && x < 4 && y >= -16 && y < 16;
  const bool isArm = x >= 4 && x < 18 && y >= -16 && y < -8;
  const bool isShort = x >= -9 && x < -4 && y >= 8 && y < 16;
  return isStem || isArm || isShort;
}

struct Place {
  double x, y, degrees = 0, scale = 1;
  bool isMirrored = false;
};

void DrawPart(const TestImage& image, const Place& at, int32_t value) {
  const double c = std::cos(at.degrees * 0.017453292519943295);
  const double s = std::sin(at.degrees * 0.017453292519943295);
  for (int32_t y = 0; y < image.height(); y++) {
    for (int32_t x = 0; x < image.width(); x++) {
      const double dx = (x - at.x) / at.scale;
      const double dy = (y - at.y) / at.scale;
      const double px = c * dx + s * dy;
      const double py = c * dy - s * dx;
      if (!IsPart(at.isMirrored ? -px : px, py)) continue;
      if (image.Info().type == IMAGE_U8) image.Set<uint8_t>(x, y, static_cast<uint8_t>(value));
      if (image.Info().type == IMAGE_I16) image.Set<int16_t>(x, y, static_cast<int16_t>(value));
    }
  }
}

TestImage Black(int32_t type, int32_t width, int32_t height, int32_t border = 2) {
  TestImage image(type, width, height, border);
  zel::ImageClearAll(image);
  return image;
}

TestImage Template() {
  TestImage image = Black(IMAGE_U8, 60, 60, 0);
  DrawPart(image, {30, 30}, 1);
  return image;
}

struct Match {
  Table<ShapeReport> reports;
};

int32_t Find(ImageRef source, ImageRef pattern, ImageRef dest, double tolerance, int32_t scale,
             Match* match, uint16_t connectivity = 1) {
  return ZEL_ShapeMatch(source, pattern, dest, connectivity, tolerance, scale,
                        &match->reports.count, &match->reports.records);
}

// The invariants by sums over pixels about the centre, as they are written in books, but for the
// seventh with its 2.
using Invariants = std::array<double, 7>;

Invariants InvariantsOf(const std::vector<PointInt>& pixels) {
  const auto n = static_cast<double>(pixels.size());
  double cx = 0;
  double cy = 0;
  for (const PointInt& p : pixels) {
    cx += p.x / n;
    cy += p.y / n;
  }
  const auto eta = [&](int p, int q) {
    double sum = 0;
    for (const PointInt& pixel : pixels)
      sum += std::pow(pixel.x - cx, p) * std::pow(pixel.y - cy, q);
    return sum / std::pow(n, 1 + (p + q) / 2.0);
  };
  const double n20 = eta(2, 0), n02 = eta(0, 2), n11 = eta(1, 1);
  const double n21 = eta(2, 1), n12 = eta(1, 2), n30 = eta(3, 0), n03 = eta(0, 3);
  const double u = n30 + n12;
  const double v = n21 + n03;
  return {n20 + n02,
          std::pow(n20 - n02, 2) + 4 * n11 * n11,
          std::pow(n30 - 3 * n12, 2) + std::pow(3 * n21 - n03, 2),
          u * u + v * v,
          -(n30 - 3 * n12) * u * (3 * v * v - u * u) - (3 * n21 - n03) * v * (v * v - 3 * u * u),
          (n02 - n20) * (v * v - u * u) + 4 * n11 * u * v,
          (3 * n21 - n03) * u * (2 * v * v - u * u) - (n30 - 3 * n12) * v * (v * v - 3 * u * u)};
}

double Distance(const Invariants& a, const Invariants& b) {
  double sum = 0;
  for (size_t i = 0; i < 7; i++) sum += (a[i] - b[i]) * (a[i] - b[i]);
  return std::sqrt(sum);
}

// Particles by flooding, in raster order of their first pixels.
std::vector<std::vector<PointInt>> Particles(const TestImage& image, bool connectivity8) {
  const int32_t width = image.width();
  const int32_t height = image.height();
  std::vector<bool> seen(static_cast<size_t>(width) * static_cast<size_t>(height));
  std::vector<std::vector<PointInt>> particles;
  const auto take = [&](int32_t x, int32_t y, std::vector<PointInt>* pixels) {
    if (x < 0 || y < 0 || x >= width || y >= height || test::PixelOf(image, x, y) == 0) return;
    const size_t at = static_cast<size_t>(y) * static_cast<size_t>(width) + static_cast<size_t>(x);
    if (!seen[at]) pixels->push_back({x, y});
    seen[at] = true;
  };
  for (int32_t y = 0; y < height; y++) {
    for (int32_t x = 0; x < width; x++) {
      std::vector<PointInt> pixels;
      take(x, y, &pixels);
      for (size_t i = 0; i < pixels.size(); i++) {
        const PointInt p = pixels[i];
        for (int32_t dy = -1; dy <= 1; dy++) {
          for (int32_t dx = -1; dx <= 1; dx++) {
            if (connectivity8 || dx == 0 || dy == 0) take(p.x + dx, p.y + dy, &pixels);
          }
        }
      }
      if (!pixels.empty()) particles.push_back(pixels);
    }
  }
  return particles;
}

std::vector<PointInt> OnesOf(const TestImage& image) {
  std::vector<PointInt> pixels;
  for (int32_t y = 0; y < image.height(); y++) {
    for (int32_t x = 0; x < image.width(); x++) {
      if (image.Get<uint8_t>(x, y) == 1) pixels.push_back({x, y});
    }
  }
  return pixels;
}

void ExpectOracleMatches(const TestImage& source, const TestImage& pattern, double tolerance,
                         int32_t scale, bool connectivity8) {
  const std::vector<PointInt> ones = OnesOf(pattern);
  const Invariants wanted = InvariantsOf(ones);
  const double limit = tolerance * Distance(wanted, {});
  const TestImage result(source.Info().type, 3, 3);
  Match match;
  const std::vector<std::vector<PointInt>> particles = Particles(source, connectivity8);
  ASSERT_EQ(Find(source, pattern, result, tolerance, scale, &match, connectivity8 ? 7 : 0), 0);
  int32_t number = 0;
  TestImage expected = Black(source.Info().type, source.width(), source.height());
  for (const std::vector<PointInt>& pixels : particles) {
    const auto area = static_cast<double>(ones.size());
    const double off = std::fabs(static_cast<double>(pixels.size()) - area);
    if (scale == 0 && !(off < 0.1 * area)) continue;
    const double distance = Distance(wanted, InvariantsOf(pixels));
    if (!(distance <= limit)) continue;
    ASSERT_LT(number, match.reports.count);
    const ShapeReport& report = match.reports[number++];
    int64_t sumX = 0;
    int64_t sumY = 0;
    PointInt low{INT32_MAX, INT32_MAX};
    PointInt high{0, 0};
    for (const PointInt& p : pixels) {
      sumX += p.x;
      sumY += p.y;
      low = {std::min(low.x, p.x), std::min(low.y, p.y)};
      high = {std::max(high.x, p.x), std::max(high.y, p.y)};
      if (source.Info().type == IMAGE_U8) {
        expected.Set<uint8_t>(p.x, p.y, static_cast<uint8_t>(number));
      } else {
        expected.Set<int16_t>(p.x, p.y, static_cast<int16_t>(number));
      }
    }
    const auto count = static_cast<int64_t>(pixels.size());
    EXPECT_EQ(report.area, count);
    EXPECT_EQ(report.centreX, sumX / count);
    EXPECT_EQ(report.centreY, sumY / count);
    EXPECT_EQ(report.rect.left, low.x);
    EXPECT_EQ(report.rect.top, low.y);
    EXPECT_EQ(report.rect.width, high.x - low.x);
    EXPECT_EQ(report.rect.height, high.y - low.y);
    EXPECT_NEAR(report.score, (limit - distance) * 999 / limit + 1, 0.01);
  }
  EXPECT_EQ(match.reports.count, number);
  EXPECT_EQ(test::PixelDifference(result, expected), "");
}

TEST(ShapeMatch, FollowsTheRule) {
  const TestImage pattern = Template();
  for (const int32_t type : {IMAGE_U8, IMAGE_I16}) {
    const TestImage source = Black(type, 260, 200);
    test::Random random(5);
    for (int32_t i = 0; i < 9; i++) {
      DrawPart(source,
               {35.0 + 60 * (i % 4), 35.0 + 60 * (i / 4), 40.0 * i,
                0.7 + 0.05 * random.Between(0, 9), i % 5 == 3},
               77 + i);
    }
    for (int32_t i = 0; i < 200; i++) {
      const int32_t x = random.Between(0, 259);
      const int32_t y = random.Between(0, 199);
      if (type == IMAGE_U8) source.Set<uint8_t>(x, y, 5);
      if (type == IMAGE_I16) source.Set<int16_t>(x, y, -5);
    }
    for (const double tolerance : {0.02, 0.1, 0.5, 5.0}) {
      for (const int32_t scale : {0, 1}) {
        for (const bool connectivity8 : {false, true}) {
          ExpectOracleMatches(source, pattern, tolerance, scale, connectivity8);
        }
      }
    }
  }
}

TEST(ShapeMatch, OfAnExactCopyScoresAThousand) {
  const TestImage pattern = Template();
  const TestImage source = Black(IMAGE_U8, 60, 60);
  DrawPart(source, {30, 30}, 200);
  Match match;
  ASSERT_EQ(Find(source, pattern, 0, 0.1, 0, &match), 0);
  ASSERT_EQ(match.reports.count, 1);
  EXPECT_FLOAT_EQ(match.reports[0].score, 1000.0f);
  EXPECT_EQ(source.Get<uint8_t>(30, 30), 1);
  EXPECT_EQ(source.Get<uint8_t>(0, 0), 0);
  // A tolerance of 0 takes it as well.
  ASSERT_EQ(Find(source, pattern, 0, 0.0, 0, &match), 0);
  ASSERT_EQ(match.reports.count, 1);
  EXPECT_EQ(match.reports[0].score, 1000.0f);
  constexpr double inf = std::numeric_limits<double>::infinity();
  ASSERT_EQ(Find(source, pattern, 0, inf, 0, &match), 0);
  ASSERT_EQ(match.reports.count, 1);
  EXPECT_EQ(match.reports[0].score, 1000.0f);
  for (const double nothing : {-0.1, -inf, static_cast<double>(NAN)}) {
    const TestImage result(IMAGE_U8, 5, 5);
    ASSERT_EQ(Find(source, pattern, result, nothing, 0, &match), 0);
    EXPECT_EQ(match.reports.count, 0);
    EXPECT_EQ(match.reports.records, nullptr);
    EXPECT_EQ(result.Pixels(), std::vector<uint8_t>(3600, 0));
  }
}

TEST(ShapeMatch, FindsTurnedPartsAndScaledOnesIfAsked) {
  const TestImage pattern = Template();
  const TestImage source = Black(IMAGE_U8, 320, 120);
  DrawPart(source, {40, 60, 90}, 255);
  DrawPart(source, {100, 60, 37}, 255);
  DrawPart(source, {200, 60, 10, 2}, 255);
  for (int32_t y = 40; y < 72; y++) {
    for (int32_t x = 280; x < 294; x++) source.Set<uint8_t>(x, y, 255);  // a bar of that area
  }
  const TestImage result(IMAGE_U8, 1, 1);
  Match match;
  ASSERT_EQ(Find(source, pattern, result, 0.05, 0, &match), 0);
  ASSERT_EQ(match.reports.count, 2);
  EXPECT_GT(match.reports[0].score, 900.0f);
  ASSERT_EQ(Find(source, pattern, result, 0.05, 1, &match), 0);
  EXPECT_EQ(match.reports.count, 3);
}

TEST(ShapeMatch, OfATemplateWithoutASumOrAShapeMatchesNothing) {
  const TestImage zeros = Black(IMAGE_U8, 20, 20);
  const TestImage mask = Black(IMAGE_U8, 60, 60);
  DrawPart(mask, {30, 30}, 255);
  const TestImage none(IMAGE_U8, 0, 0);
  const TestImage source = Black(IMAGE_U8, 60, 60);
  DrawPart(source, {30, 30}, 255);
  const std::vector<uint8_t> before = source.Pixels();
  const TestImage result(IMAGE_U8, 7, 5);
  const std::vector<uint8_t> resultBefore = result.Block();
  Match match;
  for (const ImageRef pattern : {static_cast<ImageRef>(zeros), static_cast<ImageRef>(none)}) {
    match.reports.records = static_cast<ShapeReport*>(ZEL_realloc(match.reports.records, 100));
    ASSERT_EQ(Find(source, pattern, result, 1.0, 1, &match), 0);
    EXPECT_EQ(match.reports.count, 0);
    EXPECT_EQ(match.reports.records, nullptr);
    EXPECT_EQ(result.Block(), resultBefore);
    ASSERT_EQ(Find(source, pattern, 0, 1.0, 1, &match), 0);
    EXPECT_EQ(source.Pixels(), before);
  }
  ASSERT_EQ(Find(source, mask, 0, 1e300, 1, &match), 0);
  EXPECT_EQ(match.reports.count, 0);
  EXPECT_EQ(source.Pixels(), std::vector<uint8_t>(3600, 0));
}

// Kept: the reports are those of the result's pixels, and a byte knows 255 numbers.
TEST(ShapeMatch, OfMoreThan255MatchesWrapsInBytes) {
  const TestImage pattern = Black(IMAGE_U8, 3, 3);
  for (int32_t x = 0; x < 3; x++) pattern.Set<uint8_t>(x, 1, 1);
  for (const int32_t type : {IMAGE_U8, IMAGE_I16}) {
    const TestImage source = Black(type, 120, 20);
    for (int32_t i = 0; i < 300; i++) {
      for (int32_t k = 0; k < 3; k++) {
        const int32_t x = 1 + 4 * (i % 30) + k % 3;
        if (x >= 120) continue;
        if (type == IMAGE_U8) source.Set<uint8_t>(x, 2 * (i / 30), 9);
        if (type == IMAGE_I16) source.Set<int16_t>(x, 2 * (i / 30), 9);
      }
    }
    Match match;
    ASSERT_EQ(Find(source, pattern, 0, 0.1, 0, &match), 0);
    ASSERT_EQ(match.reports.count, 300);
    const bool wraps = type == IMAGE_U8;
    EXPECT_EQ(match.reports[0].area, wraps ? 6 : 3);   // numbers 1 and 257
    EXPECT_EQ(match.reports[43].area, wraps ? 6 : 3);  // 44 and 300
    EXPECT_EQ(match.reports[44].area, 3);
    EXPECT_EQ(match.reports[255].area, wraps ? 0 : 3);  // 256 reads 0
    EXPECT_EQ(match.reports[299].area, wraps ? 0 : 3);
    EXPECT_FLOAT_EQ(match.reports[299].score, 1000.0f);
    if (wraps) {
      const ShapeReport& empty = match.reports[299];
      EXPECT_EQ(empty.centreX, 0);
      EXPECT_EQ(empty.rect.left, 0);
      EXPECT_EQ(empty.rect.width, WHOLE_IMAGE_EXTENT);
      EXPECT_EQ(empty.rect.height, WHOLE_IMAGE_EXTENT);
    }
  }
}

TEST(ShapeMatch, MayWriteIntoTheTemplate) {
  const TestImage pattern = Template();
  const TestImage source = Black(IMAGE_U8, 100, 80);
  DrawPart(source, {40, 40, 90}, 255);
  ZEL_SetImageCalibration(source, 3, 2.0f, 5.0f);
  Match match;
  ASSERT_EQ(Find(source, pattern, pattern, 0.05, 0, &match), 0);
  EXPECT_EQ(match.reports.count, 1);
  EXPECT_EQ(pattern.width(), 100);
  EXPECT_EQ(pattern.Info().unit, 3);
  EXPECT_EQ(pattern.Get<uint8_t>(40, 40), 1);
}

TEST(ShapeMatch, FailsInTheStatedOrder) {
  const TestImage pattern = Template();
  const TestImage words = Black(IMAGE_I16, 30, 30);
  const TestImage floats = Black(IMAGE_SGL, 30, 30);
  const TestImage bare = Black(IMAGE_U8, 30, 30, 1);
  const TestImage source = Black(IMAGE_U8, 30, 30);
  ShapeReport* reports = nullptr;
  int32_t count = 77;
  const auto call = [&](ImageRef from, ImageRef like, ImageRef to) {
    count = 77;
    return ZEL_ShapeMatch(from, like, to, 1, 0.1, 1, &count, &reports);
  };
  EXPECT_EQ(ZEL_ShapeMatch(999, 999, 999, 1, 0.1, 1, &count, nullptr), ZEL_ERR_NULL_POINTER);
  EXPECT_EQ(count, 77);
  EXPECT_EQ(call(999, pattern, source), ZEL_ERR_BAD_IMAGE);
  EXPECT_EQ(call(floats, 999, source), ZEL_ERR_BAD_IMAGE);
  EXPECT_EQ(call(floats, words, source), ZEL_ERR_BAD_TYPE);
  EXPECT_EQ(call(bare, words, 999), ZEL_ERR_BORDER_TOO_SMALL);
  EXPECT_EQ(call(source, words, 999), ZEL_ERR_BAD_TYPE);
  EXPECT_EQ(call(source, pattern, 999), ZEL_ERR_BAD_IMAGE);
  EXPECT_EQ(call(source, pattern, words), ZEL_ERR_DESTINATION_TYPE_DIFFERS);
  EXPECT_EQ(count, 0);
  EXPECT_EQ(ZEL_ShapeMatch(bare, pattern, source, 0, 0.1, 1, nullptr, &reports), 0);
  EXPECT_EQ(reports, nullptr);
}

TEST(ShapeMatch, DoesWithoutMemory) {
  const TestImage pattern = Template();
  const TestImage source = Black(IMAGE_U8, 100, 80);
  DrawPart(source, {40, 40, 90}, 255);
  const TestImage result(IMAGE_U8, 3, 3);
  Match match;
  test::RefuseEachAllocation([&] { ZEL_SetImageSize(result, 3, 3); },
                             [&] { return Find(source, pattern, result, 0.1, 0, &match); });
}

}  // namespace
