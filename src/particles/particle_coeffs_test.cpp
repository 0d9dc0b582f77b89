#include <gtest/gtest.h>

#include <cfloat>
#include <cmath>
#include <cstring>
#include <functional>
#include <limits>
#include <vector>

#include "harness/test_image.h"

namespace {

using test::Random;
using test::TestImage;

constexpr uint32_t MEASURES = 50;

// What the formulas are written in: a report's fields as 64-bit floats, and the image.
struct Facts {
  double area, calibratedArea, perimeter, holes, holesArea, holesPerimeter;
  double left, top, right, bottom, w, h;
  double sumX, sumY, sumXX, sumYY, sumXY;
  double longest, longestX, longestY, projectionX, runs;
  double W, H, xs, ys;
};

double F32(double value) {
  return static_cast<double>(static_cast<float>(value));
}

// The rounded measures 28, 29, 30.
double Ixx(const Facts& f) {
  const double mx = f.sumX / f.area;
  return F32(f.sumXX - mx * F32(mx) * f.area);
}
double Iyy(const Facts& f) {
  const double my = f.sumY / f.area;
  return F32(f.sumYY - my * F32(my) * f.area);
}
double Ixy(const Facts& f) {
  const double mx = f.sumX / f.area;
  const double my = f.sumY / f.area;
  return F32(f.sumXY - mx * F32(my) * f.area);
}

double Intercept(const Facts& f) {
  const double t = f.longest / f.w;
  const double u = F32(t * F32(t));
  const double longer = f.w > f.h ? f.w : f.h;
  return F32(std::sqrt(f.w * f.w + f.h * f.h) * (1 - u) + u * longer);
}

double Angle(const Facts& f) {
  const double xx = Ixx(f);
  const double yy = Iyy(f);
  const double xy = Ixy(f);
  double angle = 0;
  if (yy == xx) {
    angle = 45;
  } else {
    angle = std::atan(xy / (xx - yy) * 2.0) * 28.647888968574584;
  }
  const bool signless = !std::signbit(xy) || xy == 0;
  if (!(yy > xx) && signless) angle = 180 - angle;
  if (yy < xx && xy < 0) angle = -angle;
  if (yy > xx) angle = 90 - angle;
  if (angle < 0) angle = 0;
  return angle;
}

double EllipseA(const Facts& f) {
  const double p = f.calibratedArea * 2.0 * 0.31830987742860645;
  const double q = F32(f.perimeter * f.perimeter * 0.050660589034307243);
  return p + q > 0 ? std::sqrt(p + q) : 0;
}
double EllipseB(const Facts& f) {
  const double p = f.calibratedArea * 2.0 * 0.31830987742860645;
  const double q = F32(f.perimeter * f.perimeter * 0.050660589034307243);
  return q - p > 0 ? std::sqrt(q - p) : 0;
}
double Root(const Facts& f) {
  const double under = f.perimeter * f.perimeter - 16 * f.calibratedArea;
  return under > 0 ? std::sqrt(under) : 0;
}
double Type(const Facts& f) {
  const double v = Iyy(f) * Ixx(f);
  if (!(v > 0)) return 0;
  const double factor = f.area * f.area / (std::sqrt(v) * 12.56637096);
  return factor > 1 ? 1 : factor;
}

using Formula = double (*)(const Facts&);
const Formula FORMULAS[MEASURES] = {
    [](const Facts& f) { return f.area; },
    [](const Facts& f) { return f.calibratedArea; },
    [](const Facts& f) { return f.holes; },
    [](const Facts& f) { return f.holesArea * f.xs * f.ys; },
    [](const Facts& f) { return (f.holesArea + f.area) * f.xs * f.ys; },
    [](const Facts& f) { return f.W * f.H * f.xs * f.ys; },
    [](const Facts& f) { return (f.holesArea + f.area) / (f.W * f.H) * 100; },
    [](const Facts& f) { return f.area / (f.W * f.H) * 100; },
    [](const Facts& f) { return f.sumX / f.area; },
    [](const Facts& f) { return f.sumY / f.area; },
    [](const Facts& f) { return f.left; },
    [](const Facts& f) { return f.top; },
    [](const Facts& f) { return f.right; },
    [](const Facts& f) { return f.bottom; },
    [](const Facts& f) { return f.w * f.xs; },
    [](const Facts& f) { return f.h * f.ys; },
    [](const Facts& f) { return f.longest; },
    [](const Facts& f) { return f.longestX; },
    [](const Facts& f) { return f.longestY; },
    [](const Facts& f) { return f.perimeter; },
    [](const Facts& f) { return f.holesPerimeter; },
    [](const Facts& f) { return f.sumX; },
    [](const Facts& f) { return f.sumY; },
    [](const Facts& f) { return f.sumXX; },
    [](const Facts& f) { return f.sumYY; },
    [](const Facts& f) { return f.sumXY; },
    [](const Facts& f) { return f.projectionX; },
    [](const Facts& f) { return f.runs; },
    Ixx,
    Iyy,
    Ixy,
    [](const Facts& f) { return f.area / f.runs; },
    [](const Facts& f) { return f.area / f.projectionX; },
    Intercept,
    [](const Facts& f) { return f.area / Intercept(f); },
    Angle,
    [](const Facts& f) { return f.area / (Intercept(f) * 3.14159274) * 4.0; },
    [](const Facts& f) { return EllipseA(f) + EllipseB(f); },
    [](const Facts& f) { return EllipseA(f) - EllipseB(f); },
    [](const Facts& f) {
      const double major = F32(EllipseA(f) + EllipseB(f));
      const double minor = F32(EllipseA(f) - EllipseB(f));
      return minor == 0 ? major : major / minor;
    },
    [](const Facts& f) { return (f.perimeter + Root(f)) * 0.25; },
    [](const Facts& f) { return (f.perimeter - Root(f)) * 0.25; },
    [](const Facts& f) {
      return F32((f.perimeter + Root(f)) * 0.25) / F32((f.perimeter - Root(f)) * 0.25);
    },
    [](const Facts& f) {
      const double across = F32(f.area / Intercept(f));
      return across == 0 ? Intercept(f) : Intercept(f) / across;
    },
    [](const Facts& f) { return f.area / (f.w * f.h); },
    [](const Facts& f) { return f.perimeter / (std::sqrt(f.calibratedArea * 3.14159274) * 2.0); },
    Type,
    [](const Facts& f) { return f.calibratedArea / f.perimeter; },
    [](const Facts& f) { return std::sqrt(f.calibratedArea * 0.31830987742860645) * 2.0; },
    [](const Facts& f) {
      const double w = f.w * f.xs;
      const double h = f.h * f.ys;
      return std::sqrt(w * w + h * h);
    },
};

Facts FactsOf(const ParticleReport& r, const TestImage& image) {
  const ImageInfo info = image.Info();
  const auto wide = [](float value) { return static_cast<double>(value); };
  const auto end = [](int32_t start, int32_t length) {
    return static_cast<double>(
        static_cast<int32_t>(static_cast<uint32_t>(start) + static_cast<uint32_t>(length)));
  };
  return {static_cast<double>(r.area),
          wide(r.calibratedArea),
          wide(r.perimeter),
          static_cast<double>(r.nbHoles),
          static_cast<double>(r.holesArea),
          wide(r.holesPerimeter),
          static_cast<double>(r.rect.left),
          static_cast<double>(r.rect.top),
          end(r.rect.left, r.rect.width),
          end(r.rect.top, r.rect.height),
          static_cast<double>(r.rect.width),
          static_cast<double>(r.rect.height),
          wide(r.sumX),
          wide(r.sumY),
          wide(r.sumXX),
          wide(r.sumYY),
          wide(r.sumXY),
          static_cast<double>(r.longestSegment),
          static_cast<double>(r.longestSegmentX),
          static_cast<double>(r.longestSegmentY),
          static_cast<double>(r.projectionX),
          static_cast<double>(r.nbRuns),
          static_cast<double>(info.width),
          static_cast<double>(info.height),
          info.xStep == 0.0f ? 1.0 : wide(info.xStep),
          info.yStep == 0.0f ? 1.0 : wide(info.yStep)};
}

bool SameFloat(float a, float b) {
  if (std::isnan(a) || std::isnan(b)) return std::isnan(a) && std::isnan(b);
  return std::memcmp(&a, &b, sizeof a) == 0;
}

std::vector<uint32_t> AllMeasures() {
  std::vector<uint32_t> measures;
  for (uint32_t i = 0; i < MEASURES; i++) measures.push_back(i);
  return measures;
}

void ExpectAllMeasures(const TestImage& image, std::vector<ParticleReport> reports) {
  const std::vector<uint32_t> measures = AllMeasures();
  std::vector<float> coefficients(reports.size() * MEASURES + 1, 4711.0f);
  const std::vector<ParticleReport> before = reports;
  ASSERT_EQ(ZEL_ParticleCoeffs(image, measures.data(), MEASURES, reports.data(),
                               static_cast<int32_t>(reports.size()), coefficients.data()),
            0);
  for (size_t i = 0; i < reports.size(); i++) {
    const Facts facts = FactsOf(reports[i], image);
    for (uint32_t j = 0; j < MEASURES; j++) {
      const auto expected = static_cast<float>(FORMULAS[j](facts));
      ASSERT_TRUE(SameFloat(coefficients[i * MEASURES + j], expected))
          << "measure " << j << " of report " << i << " is " << coefficients[i * MEASURES + j]
          << " instead of " << expected;
    }
  }
  EXPECT_EQ(coefficients.back(), 4711.0f);
  EXPECT_EQ(std::memcmp(before.data(), reports.data(), reports.size() * sizeof(ParticleReport)), 0);
}

TestImage MeasuredImage(float xStep, float yStep) {
  TestImage image(IMAGE_U8, 123, 45, 0);
  ZEL_SetImageCalibration(image, 0, xStep, yStep);
  return image;
}

float Measure(const TestImage& image, ParticleReport report, uint32_t measure) {
  float value = -1.0f;
  EXPECT_EQ(ZEL_ParticleCoeffs(image, &measure, 1, &report, 1, &value), 0);
  return value;
}

TEST(ParticleCoeffs, RandomReportsHaveTheirMeasures) {
  Random random(5);
  for (const auto& [xStep, yStep] :
       {std::pair{1.0f, 1.0f}, {0.25f, 3.7f}, {0.0f, 2.0f}, {1.0f, -0.0f}, {-3.0f, 0.5f}}) {
    const TestImage image = MeasuredImage(xStep, yStep);
    std::vector<ParticleReport> reports;
    for (int32_t i = 0; i < 2000; i++) {
      ParticleReport r{};
      r.area = random.Between(1, i % 2 == 0 ? 50 : 5000);
      r.calibratedArea = static_cast<float>(r.area) * random.Float(0.5f, 2.0f);
      r.perimeter = random.Float(1.0f, 400.0f);
      r.nbHoles = random.Between(0, 9);
      r.holesArea = random.Between(0, 500);
      r.holesPerimeter = random.Float(0.0f, 90.0f);
      r.rect = {random.Between(0, 99), random.Between(0, 99), random.Between(1, 80),
                random.Between(1, 80)};
      r.sumX = random.Float(0.0f, 1e5f);
      r.sumY = random.Float(0.0f, 1e5f);
      r.sumXX = random.Float(-1e5f, 1e8f);
      r.sumYY = random.Float(-1e5f, 1e8f);
      r.sumXY = random.Float(-1e8f, 1e8f);
      r.longestSegment = random.Between(1, 80);
      r.longestSegmentX = random.Between(0, 99);
      r.longestSegmentY = random.Between(0, 99);
      r.projectionX = random.Between(1, 80);
      r.nbRuns = random.Between(1, 200);
      reports.push_back(r);
    }
    ExpectAllMeasures(image, reports);
  }
}

TEST(ParticleCoeffs, MeasuredParticlesHaveTheirMeasures) {
  const TestImage image = TestImage::FromRows(
      {"##........", "##..###...", "....#.#..#", "#...###.##", ".#.....###", "..#...####"});
  for (const auto& [xStep, yStep] : {std::pair{1.0f, 1.0f}, {0.3f, 1.7f}, {0.0f, 0.0f}}) {
    ZEL_SetImageCalibration(image, 0, xStep, yStep);
    for (const uint16_t connectivity : {uint16_t{0}, uint16_t{1}}) {
      ParticleReport* reports = nullptr;
      int32_t count = 0;
      ASSERT_EQ(ZEL_Particle(image, connectivity, &reports, &count), 0);
      ASSERT_GE(count, 3);
      ExpectAllMeasures(image, {reports, reports + count});
      if (xStep == 0.0f) {
        EXPECT_EQ(reports[0].calibratedArea, 0.0f);  // though measures take such a step as 1
        EXPECT_EQ(Measure(image, reports[0], MEASURE_WIDTH_CALIBRATED), 2.0f);
      }
      ZEL_free(reports);
    }
  }
}

TEST(ParticleCoeffs, ReportsOfZerosAndWildNumbersGiveFloatsWithoutStatus) {
  const float infinity = std::numeric_limits<float>::infinity();
  const float notANumber = std::numeric_limits<float>::quiet_NaN();
  const TestImage image = MeasuredImage(1.0f, 2.0f);
  std::vector<ParticleReport> reports(6);
  reports[1].area = 1;
  reports[2] = {INT32_MAX,
                FLT_MAX,
                FLT_MAX,
                INT32_MIN,
                INT32_MIN,
                -FLT_MAX,
                {INT32_MAX, INT32_MIN, INT32_MAX, INT32_MIN},
                FLT_MAX,
                -FLT_MAX,
                FLT_MAX,
                -FLT_MAX,
                FLT_MAX,
                INT32_MIN,
                INT32_MAX,
                INT32_MIN,
                INT32_MIN,
                INT32_MAX};
  reports[3] = {-5,       notANumber, infinity,   1,         2,        notANumber, {1, 2, 0, 0},
                infinity, infinity,   notANumber, -infinity, infinity, 3,          0,
                0,        0,          0};
  reports[4] = {10,    -20.0f, -3.0f, 0, 0,  0.0f, {0, 0, 5, -5}, 1.0f, 2.0f, -3.0f, -4.0f,
                -0.0f, 5,      1,     1, -1, 1};
  reports[5] = {4,    4.0f, 8.0f, 0, 0, 0.0f, {-7, -9, 2, 2}, 1e-40f, 0.0f, 0.0f, -0.0f,
                0.0f, 2,    1,    1, 0, 0};
  ExpectAllMeasures(image, reports);
  EXPECT_TRUE(std::isnan(Measure(image, reports[0], MEASURE_CENTRE_OF_MASS_X)));
  EXPECT_TRUE(std::isnan(Measure(image, reports[0], MEASURE_HEYWOOD_CIRCULARITY)));
  reports[0].perimeter = 5.0f;
  EXPECT_EQ(Measure(image, reports[0], MEASURE_HEYWOOD_CIRCULARITY), infinity);
}

TEST(ParticleCoeffs, ConstantsAreThoseOfTheMeasures) {
  const TestImage image = MeasuredImage(2.0f, 3.0f);
  ParticleReport r{};
  r.area = 12;
  r.calibratedArea = 72.0f;
  r.perimeter = 30.0f;
  r.holesArea = 4;
  r.rect = {3, 5, 3, 4};
  r.longestSegment = 4;
  r.longestSegmentX = 5;
  r.longestSegmentY = 3;
  r.nbRuns = 3;
  r.projectionX = 4;
  EXPECT_EQ(Measure(image, r, 3), 24.0f);
  EXPECT_EQ(Measure(image, r, 4), 96.0f);
  EXPECT_EQ(Measure(image, r, 5), 123.0f * 45.0f * 6.0f);
  EXPECT_EQ(Measure(image, r, 10), 5.0f);
  EXPECT_EQ(Measure(image, r, 11), 3.0f);
  EXPECT_EQ(Measure(image, r, 12), 9.0f);
  EXPECT_EQ(Measure(image, r, 13), 6.0f);
  EXPECT_EQ(Measure(image, r, 14), 8.0f);
  EXPECT_EQ(Measure(image, r, 15), 9.0f);
  EXPECT_EQ(Measure(image, r, 16), 4.0f);
  EXPECT_EQ(Measure(image, r, 17), 5.0f);
  EXPECT_EQ(Measure(image, r, 18), 3.0f);
  EXPECT_EQ(Measure(image, r, 31), 4.0f);
  EXPECT_EQ(Measure(image, r, 32), 3.0f);
  EXPECT_EQ(Measure(image, r, 33), 4.0f);  // the longest run fills the width
  EXPECT_EQ(Measure(image, r, 34), 3.0f);
  EXPECT_EQ(Measure(image, r, 44), 1.0f);
  EXPECT_NEAR(static_cast<double>(Measure(image, r, 49)), std::sqrt(64.0 + 81.0), 1e-5);
}

TEST(ParticleCoeffs, OrientationOfEqualMomentsGoesByTheSignOfTheMixedOne) {
  const TestImage image = MeasuredImage(1.0f, 1.0f);
  ParticleReport r{};
  r.area = 1;
  r.sumXX = r.sumYY = 10.0f;
  EXPECT_EQ(Measure(image, r, MEASURE_ORIENTATION), 135.0f);
  r.sumXY = 3.0f;
  EXPECT_EQ(Measure(image, r, MEASURE_ORIENTATION), 135.0f);
  r.sumXY = -3.0f;
  EXPECT_EQ(Measure(image, r, MEASURE_ORIENTATION), 45.0f);
  r.sumXY = 0.0f;
  r.sumXX = 20.0f;  // level
  EXPECT_EQ(Measure(image, r, MEASURE_ORIENTATION), 180.0f);
  r.sumYY = 40.0f;  // upright
  EXPECT_EQ(Measure(image, r, MEASURE_ORIENTATION), 90.0f);
}

TEST(ParticleCoeffs, MeasuresStandSideBySideInTheOrderAskedFor) {
  const TestImage image = MeasuredImage(1.0f, 1.0f);
  std::vector<ParticleReport> reports(3);
  for (int32_t i = 0; i < 3; i++) {
    reports[static_cast<size_t>(i)].area = 10 + i;
    reports[static_cast<size_t>(i)].nbRuns = 20 + i;
  }
  const uint32_t measures[] = {27, 0, 27};
  float values[9] = {};
  ASSERT_EQ(ZEL_ParticleCoeffs(image, measures, 3, reports.data(), 3, values), 0);
  const float expected[9] = {20, 10, 20, 21, 11, 21, 22, 12, 22};
  for (size_t i = 0; i < 9; i++) EXPECT_EQ(values[i], expected[i]) << i;
}

TEST(ParticleCoeffs, AnUnknownMeasureIs801AndKeepsWhatIsBefore) {
  const TestImage image = MeasuredImage(1.0f, 1.0f);
  std::vector<ParticleReport> reports(2);
  reports[0].area = 7;
  reports[0].rect = {1, INT32_MAX, 3, INT32_MAX};  // a right end beyond 32 bits
  const std::vector<ParticleReport> before = reports;
  for (const uint32_t wrong : {50u, 0xFFFFFFFFu}) {
    const uint32_t measures[] = {0, wrong, 0};
    float values[6] = {1, 1, 1, 1, 1, 1};
    EXPECT_EQ(ZEL_ParticleCoeffs(image, measures, 3, reports.data(), 2, values), -801);
    EXPECT_EQ(values[0], 7.0f);
    for (size_t i = 1; i < 6; i++) EXPECT_EQ(values[i], 1.0f);
    EXPECT_EQ(std::memcmp(before.data(), reports.data(), 2 * sizeof(ParticleReport)), 0);
  }
  char name[256];
  EXPECT_EQ(ZEL_GetLastError(name), -801);
  EXPECT_STREQ(name, "ZEL_ParticleCoeffs");
}

TEST(ParticleCoeffs, NothingAskedForTouchesAndReportsNothing) {
  ZEL_GetLastError(nullptr);
  const uint32_t measure = 99;
  ParticleReport report{};
  float value = 0;
  EXPECT_EQ(ZEL_ParticleCoeffs(0, nullptr, 0, nullptr, 5, nullptr), 0);
  EXPECT_EQ(ZEL_ParticleCoeffs(77777, &measure, 1, nullptr, 0, nullptr), 0);
  EXPECT_EQ(ZEL_ParticleCoeffs(77777, &measure, 1, &report, -3, &value), 0);
  EXPECT_EQ(ZEL_ParticleCoeffs(77777, &measure, 0x80000000u, &report, 0, &value), 0);
  EXPECT_EQ(ZEL_GetLastError(nullptr), 0);
}

TEST(ParticleCoeffs, WrongArgumentsGiveTheirNumbersInTheOrderOfTheChecks) {
  const TestImage empty(IMAGE_SGL, 0, 0);
  const TestImage floats(IMAGE_SGL, 4, 4);
  const uint32_t measure = 99;
  ParticleReport report{};
  float value = 0;
  EXPECT_EQ(ZEL_ParticleCoeffs(1234567, nullptr, 1, &report, 1, &value), -3009);
  EXPECT_EQ(ZEL_ParticleCoeffs(1234567, &measure, 1, nullptr, 1, &value), -3009);
  EXPECT_EQ(ZEL_ParticleCoeffs(1234567, &measure, 1, &report, 1, nullptr), -3009);
  EXPECT_EQ(ZEL_ParticleCoeffs(1234567, &measure, 1, &report, 1, &value), -200);
  EXPECT_EQ(ZEL_ParticleCoeffs(0, &measure, 1, &report, 1, &value), -200);
  EXPECT_EQ(ZEL_ParticleCoeffs(empty, &measure, 1, &report, 1, &value), -306);
  EXPECT_EQ(ZEL_ParticleCoeffs(floats, &measure, 1, &report, 1, &value), -801);
}

}  // namespace
