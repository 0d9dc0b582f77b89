// Labels and shapes against what is counted pixel by pixel, and against shapes whose measures are
// known.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <numbers>
#include <random>

#include "orlune/inspect/boundaries.h"
#include "orlune/inspect/particles.h"
#include "orlune/inspect/selection.h"

namespace {

using namespace front;  // NOLINT: these are its tests

using std::numbers::pi;

constexpr int32_t BORDER = 2;

// A mask of the pixels whose centres lie inside.
Image MaskOf(int32_t width, int32_t height, const std::function<bool(double, double)>& inside) {
  Image mask(IMAGE_U8, BORDER, width, height);
  Check(ZEL_ClearPixels(mask));
  const ImageInfo info = mask.Info();
  for (int32_t y = 0; y < height; ++y) {
    for (int32_t x = 0; x < width; ++x) Row<uint8_t>(info, y)[x] = inside(x, y) ? 1 : 0;
  }
  return mask;
}

Image RandomMask(int32_t width, int32_t height, uint32_t seed, uint32_t percent) {
  std::mt19937 random(seed);
  return MaskOf(width, height, [&](double, double) { return random() % 100 < percent; });
}

std::vector<Particle> Measured(const Image& mask, bool eight = true, int64_t most = MOST_STARTS) {
  const Labels labels = LabelRuns(mask, eight);
  return MeasureParticles(mask, mask, labels, eight, MeasureSet().set(), most);
}

TEST(LabelsOfRuns, AreThoseOfTheLibrary) {
  for (const bool eight : {false, true}) {
    for (uint32_t seed = 0; seed < 12; ++seed) {
      const Image mask = RandomMask(61, 47, seed, 20 + 5 * seed);
      const Labels labels = LabelRuns(mask, eight);
      const LabelPicture picture(labels);
      const Image numbers(IMAGE_I16, BORDER);
      int32_t count = 0;
      Check(ZEL_Label(mask, numbers, eight ? 1 : 0, &count));
      ASSERT_EQ(labels.count, static_cast<uint32_t>(count));
      const ImageInfo info = numbers.Info();
      for (int32_t y = 0; y < 47; ++y) {
        for (int32_t x = 0; x < 61; ++x) {
          ASSERT_EQ(picture.Row(y)[x], static_cast<uint32_t>(Row<int16_t>(info, y)[x]));
        }
      }
    }
  }
}

// With four neighbours the library's walk around a particle looks at pixels of others that touch
// its corners, which are missing in a part: outlines may differ there, and what is made of them.
bool ComesFromTheOutline(size_t measure) {
  return measure == MEASURE_PERIMETER || measure == MEASURE_HOLES_PERIMETER ||
         (measure >= MEASURE_ELLIPSE_MAJOR_AXIS && measure <= MEASURE_RECTANGLE_RATIO) ||
         measure == MEASURE_HEYWOOD_CIRCULARITY || measure == MEASURE_HYDRAULIC_RADIUS;
}

TEST(ManyParticles, MeasuredInPartsAreTheSame) {
  for (const bool eight : {false, true}) {
    for (const uint32_t percent : {30u, 55u, 75u}) {
      const Image mask = RandomMask(90, 70, percent, percent);
      const std::vector<Particle> whole = Measured(mask, eight), parts = Measured(mask, eight, 300);
      ASSERT_EQ(whole.size(), parts.size());
      for (size_t i = 0; i < whole.size(); ++i) {
        EXPECT_EQ(whole[i].rect.left, parts[i].rect.left);
        for (size_t m = 0; m < whole[i].values.size(); ++m) {
          if (!eight && ComesFromTheOutline(m)) continue;
          const double a = whole[i].values[m], b = parts[i].values[m];
          EXPECT_TRUE(a == b || (std::isnan(a) && std::isnan(b))) << AllMeasures()[m].name << i;
        }
      }
    }
  }
}

TEST(ManyParticles, AboveTheLibrarysLimitAreMeasured) {
  const Image mask =
      MaskOf(700, 500, [](double x, double y) { return static_cast<int>(x + y) % 2 == 0; });
  const std::vector<Particle> particles = Measured(mask, false);
  EXPECT_EQ(particles.size(), 175000u);
  EXPECT_EQ(particles.back().values[MEASURE_AREA_PIXELS], 1);
  EXPECT_EQ(particles.back().values[MEASURE_BOTTOM], 500);
  try {
    Measured(mask, false, 0);
    FAIL();
  } catch (const std::runtime_error& failure) {
    EXPECT_NE(std::string(failure.what()).find("--range"), std::string::npos);
  }
}

TEST(Moments, AreTheSumsOverPixels) {
  const Image mask = RandomMask(80, 60, 5, 60);
  const Labels labels = LabelRuns(mask, true);
  std::vector<Moments> moments(labels.count);
  for (const PixelRun& run : labels.runs) moments[run.label - 1].Add(run);
  const LabelPicture picture(labels);
  for (uint32_t label = 1; label <= labels.count; ++label) {
    int64_t area = 0, x1 = 0, y1 = 0, xx = 0, yy = 0, xy = 0;
    for (int32_t y = 0; y < 60; ++y) {
      for (int32_t x = 0; x < 80; ++x) {
        if (picture.Row(y)[x] != label) continue;
        area += 1;
        x1 += x;
        y1 += y;
        xx += x * x;
        yy += y * y;
        xy += x * y;
      }
    }
    const Moments& m = moments[label - 1];
    EXPECT_TRUE(m.area == area && m.sumX == x1 && m.sumY == y1 && m.sumXX == xx && m.sumYY == yy &&
                m.sumXY == xy);
  }
}

TEST(Moments, HoldFarFromTheOrigin) {
  const Image mask = MaskOf(4096, 40, [](double x, double y) { return x >= 3900 && y >= 20; });
  const std::vector<Particle> particles = Measured(mask);
  ASSERT_EQ(particles.size(), 1u);
  EXPECT_EQ(particles[0].values[MEASURE_ORIENTATION], 0);
  EXPECT_EQ(particles[0].values[MEASURE_INERTIA_XY], 0);
  EXPECT_DOUBLE_EQ(particles[0].values[MEASURE_INERTIA_XX], 20.0 * 196 * (196.0 * 196 - 1) / 12);
  Moments far;
  for (int32_t y = 2000000000; y < 2000000010; ++y) far.Add({y, 2000000000, 2000000100, 1});
  EXPECT_DOUBLE_EQ(far.InertiaXX(), 10.0 * 100 * (100.0 * 100 - 1) / 12);
  EXPECT_EQ(AxisAngle(far.InertiaXX(), far.InertiaYY(), far.InertiaXY()), 0);
}

TEST(Moments, AnglesGoCounterClockwiseFromTheRows) {
  for (int degrees = 0; degrees < 180; degrees += 5) {
    const double c = std::cos(degrees * pi / 180), s = std::sin(degrees * pi / 180);
    const Image mask = MaskOf(220, 220, [&](double x, double y) {
      const double along = (x - 110) * c - (y - 110) * s, across = (x - 110) * s + (y - 110) * c;
      return std::abs(along) <= 95.3 && std::abs(across) <= 8.3;
    });
    const Particle particle = Measured(mask).at(0);
    const auto off = [&](size_t measure) {
      const double difference = std::abs(particle.values[measure] - degrees);
      return std::min(difference, 180 - difference);
    };
    EXPECT_LT(off(MEASURE_ORIENTATION), 0.2) << degrees;
    EXPECT_LT(off(MOMENT_ELLIPSE_ANGLE), 0.2) << degrees;
    EXPECT_LT(off(MINIMAL_BOX_ANGLE), 1.0) << degrees;
    EXPECT_NEAR(particle.values[MINIMAL_BOX_LENGTH], 191, 2) << degrees;
    EXPECT_NEAR(particle.values[MINIMAL_BOX_WIDTH], 17, 1.7) << degrees;
  }
}

TEST(Ellipses, OfTheSameMomentsAreThoseOfEllipses) {
  const Image mask = MaskOf(200, 200, [](double x, double y) {
    const double a = (x - 100) / 80, b = (y - 100) / 30;
    return a * a + b * b <= 1;
  });
  const Particle particle = Measured(mask).at(0);
  EXPECT_NEAR(particle.values[MOMENT_ELLIPSE_MAJOR_AXIS], 160, 0.5);
  EXPECT_NEAR(particle.values[MOMENT_ELLIPSE_MINOR_AXIS], 60, 0.5);
  EXPECT_NEAR(particle.values[ECCENTRICITY], std::sqrt(1 - 9.0 / 64), 0.003);
  EXPECT_GT(particle.values[SOLIDITY], 0.97);
  const Particle pixel =
      Measured(MaskOf(3, 3, [](double x, double y) { return x + y == 2 && x == 1; })).at(0);
  EXPECT_DOUBLE_EQ(pixel.values[MOMENT_ELLIPSE_MAJOR_AXIS], 4 / std::sqrt(12.0));
  EXPECT_EQ(pixel.values[ECCENTRICITY], 0);
  EXPECT_EQ(pixel.values[SOLIDITY], 1);
}

// The hull by its definition: a pair of corners is a side when all others lie on one side of it.
double LargestDistance(const std::vector<Corner>& corners) {
  double largest = 0;
  for (const Corner& a : corners) {
    for (const Corner& b : corners) {
      largest = std::max(
          largest, std::hypot(static_cast<double>(a.x - b.x), static_cast<double>(a.y - b.y)));
    }
  }
  return largest;
}

TEST(Hulls, AreTheSmallestConvexShapes) {
  for (uint32_t seed = 0; seed < 8; ++seed) {
    const Image mask = RandomMask(30, 30, seed, 45);
    const Labels labels = LabelRuns(mask, true);
    for (uint32_t label = 1; label <= labels.count; ++label) {
      std::vector<PixelRun> runs;
      std::vector<Corner> corners;
      for (const PixelRun& run : labels.runs) {
        if (run.label != label) continue;
        runs.push_back(run);
        for (const int64_t y : {run.y, run.y + 1}) {
          corners.push_back({run.start, y});
          corners.push_back({run.end, y});
        }
      }
      const std::vector<Corner> hull = ConvexHull(runs);
      const auto turn = [](const Corner& a, const Corner& b, const Corner& c) {
        return (b.x - a.x) * (c.y - a.y) - (b.y - a.y) * (c.x - a.x);
      };
      double doubleArea = 0;
      for (size_t i = 0; i < hull.size(); ++i) {
        const Corner &a = hull[i], &b = hull[(i + 1) % hull.size()],
                     &c = hull[(i + 2) % hull.size()];
        EXPECT_LT(turn(a, b, c), 0);  // convex, and no corner in the middle of a side
        for (const Corner& corner : corners) EXPECT_LE(turn(a, b, corner), 0);
        doubleArea += static_cast<double>(a.x * b.y - b.x * a.y);
      }
      const HullMeasures measures = MeasureHull(hull, {});
      EXPECT_DOUBLE_EQ(measures.area, std::abs(doubleArea) / 2);
      EXPECT_DOUBLE_EQ(measures.feretMaximum, LargestDistance(corners));
      // No direction has a smaller extent, of many.
      double smallest = 1e9;
      for (int step = 0; step < 720; ++step) {
        const double c = std::cos(step * pi / 720), s = std::sin(step * pi / 720);
        double low = 1e9, high = -1e9;
        for (const Corner& corner : corners) {
          const double at = static_cast<double>(corner.x) * c + static_cast<double>(corner.y) * s;
          low = std::min(low, at);
          high = std::max(high, at);
        }
        smallest = std::min(smallest, high - low);
      }
      EXPECT_LE(measures.feretMinimum, smallest + 1e-9);
      EXPECT_GT(measures.feretMinimum, smallest * 0.99);
      EXPECT_GE(measures.boxLength * measures.boxWidth, measures.area - 1e-9);
    }
  }
}

TEST(Hulls, AreMeasuredInRealUnits) {
  const Image mask =
      MaskOf(20, 20, [](double x, double y) { return x >= 5 && x < 15 && y >= 4 && y < 8; });
  Check(ZEL_SetImageCalibration(mask, 0, 0.5f, 2.0f));
  const Particle particle = Measured(mask).at(0);
  EXPECT_DOUBLE_EQ(particle.values[FERET_MAXIMUM], std::hypot(5, 8));
  EXPECT_DOUBLE_EQ(particle.values[FERET_MINIMUM], 5);
  EXPECT_EQ(particle.values[FERET_MINIMUM_ANGLE], 0);
  EXPECT_DOUBLE_EQ(particle.values[MINIMAL_BOX_LENGTH], 8);
  EXPECT_EQ(particle.values[MINIMAL_BOX_ANGLE], 90);
  EXPECT_DOUBLE_EQ(particle.values[HULL_AREA], 40);
  EXPECT_DOUBLE_EQ(particle.values[HULL_PERIMETER], 26);
  EXPECT_EQ(particle.values[SOLIDITY], 1);
  EXPECT_EQ(particle.values[MOMENT_ELLIPSE_ANGLE], 90);
}

TEST(Crofton, PerimetersOfDiscsAreNearTheirTruth) {
  for (const double radius : {10.0, 20.0, 50.0, 100.0}) {
    for (const double shift : {0.0, 0.3, 0.5}) {
      const double centre = radius + 3 + shift;
      const auto size = static_cast<int32_t>(2 * radius + 8);
      const Particle particle = Measured(MaskOf(size, size, [&](double x, double y) {
                                  return std::hypot(x - centre, y - centre) <= radius;
                                })).at(0);
      const double tolerance = 0.01 + 0.3 / radius;
      EXPECT_NEAR(particle.values[CROFTON_PERIMETER] / (2 * pi * radius), 1, tolerance) << radius;
      EXPECT_NEAR(particle.values[CROFTON_CIRCULARITY], 1, 2 * tolerance) << radius;
    }
  }
}

TEST(Crofton, HolesAndScalesCount) {
  const auto ring = [](double inner) {
    return MaskOf(120, 120, [=](double x, double y) {
      const double r = std::hypot(x - 60, y - 60);
      return r <= 50 && r > inner;
    });
  };
  const double outer = Measured(ring(0.5)).at(0).values[CROFTON_PERIMETER];
  EXPECT_NEAR(Measured(ring(25)).at(0).values[CROFTON_PERIMETER], 2 * pi * 75, 10);
  Image scaled = ring(-1);
  Check(ZEL_SetImageCalibration(scaled, 0, 0.1f, 0.1f));
  EXPECT_NEAR(Measured(scaled).at(0).values[CROFTON_PERIMETER], 2 * pi * 5, 0.5);
  EXPECT_GT(outer, 2 * pi * 50);
}

// Where no measure needs them.
TEST(Measures, AreTheSameWithoutLabels) {
  const MeasureSet wanted = SetOf(ParseMeasures("AreaPixels,Perimeter,NumberOfRuns,Left"));
  ASSERT_FALSE(NeedLabels(wanted));
  for (const bool eight : {false, true}) {
    const Image mask = RandomMask(61, 47, 7, 40);
    const auto labelled = MeasureParticles(mask, mask, LabelRuns(mask, eight), eight, wanted);
    const auto unlabelled = MeasureUnlabelled(mask, eight, wanted);
    ASSERT_TRUE(unlabelled.has_value());
    ASSERT_EQ(unlabelled->size(), labelled.size());
    for (size_t i = 0; i < labelled.size(); ++i) {
      const Particle &one = labelled[i], &other = (*unlabelled)[i];
      EXPECT_EQ(other.number, one.number);
      EXPECT_EQ(other.rect.left, one.rect.left);
      EXPECT_EQ(other.rect.top, one.rect.top);
      EXPECT_EQ(other.values, one.values);
    }
  }
}

TEST(Measures, OfRunsNeedLabels) {
  const auto needLabels = [](const char* names) { return NeedLabels(SetOf(ParseMeasures(names))); };
  EXPECT_FALSE(needLabels("AreaCalibrated"));
  for (const char* name : {"CentreOfMassX", "MomentEllipseAngle", "GrayMean", "FeretMaximum",
                           "CroftonPerimeter", "AreaPixels,Solidity"}) {
    EXPECT_TRUE(needLabels(name)) << name;
  }
}

TEST(Measures, OfVeryManyRunsNeedLabels) {
  const Image dots = MaskOf(600, 600, [](double x, double y) {
    return static_cast<int>(x) % 2 == 0 && static_cast<int>(y) % 2 == 0;
  });
  MeasureSet area;
  area.set(MEASURE_AREA_PIXELS);
  EXPECT_FALSE(MeasureUnlabelled(dots, true, area).has_value());
  EXPECT_EQ(MeasureParticles(dots, dots, LabelRuns(dots, true), true, area).size(), 90000u);
}

TEST(Grays, AreThoseOfTheParticlesPixels) {
  const Image mask = MaskOf(9, 3, [](double x, double) { return x < 3 || x > 6; });
  Image picture(IMAGE_SGL, 0, 9, 3);
  const ImageInfo info = picture.Info();
  for (int32_t y = 0; y < 3; ++y) {
    for (int32_t x = 0; x < 9; ++x) Row<float>(info, y)[x] = static_cast<float>(10 * y + x) / 4;
  }
  const Labels labels = LabelRuns(mask, true);
  const std::vector<Particle> particles = MeasureParticles(mask, picture, labels, true);
  ASSERT_EQ(particles.size(), 2u);
  double sum = 0, squares = 0;
  for (const int v : {0, 1, 2, 10, 11, 12, 20, 21, 22}) {
    sum += v / 4.0;
    squares += v / 4.0 * v / 4.0;
  }
  EXPECT_DOUBLE_EQ(particles[0].values[GRAY_SUM], sum);
  EXPECT_DOUBLE_EQ(particles[0].values[GRAY_MEAN], sum / 9);
  EXPECT_NEAR(particles[0].values[GRAY_DEVIATION], std::sqrt(squares / 9 - sum * sum / 81), 1e-12);
  EXPECT_EQ(particles[0].values[GRAY_MINIMUM], 0);
  EXPECT_EQ(particles[0].values[GRAY_MAXIMUM], 5.5);
  EXPECT_EQ(particles[1].values[GRAY_MINIMUM], 1.75);
}

// The variance between classes by its definition, for every boundary.
TEST(Otsu, HasTheGreatestVarianceBetweenClasses) {
  std::mt19937 random(3);
  for (int round = 0; round < 50; ++round) {
    Histogram histogram{};
    for (uint32_t& count : histogram)
      count = static_cast<uint32_t>(random() % 4 == 0 ? random() % 1000 : 0);
    double greatest = -1;
    int32_t expected = 0;
    for (int32_t boundary = 1; boundary < 256; ++boundary) {
      double n[2] = {}, s[2] = {};
      for (int32_t level = 0; level < 256; ++level) {
        n[level >= boundary] += histogram[static_cast<size_t>(level)];
        s[level >= boundary] += 1.0 * level * histogram[static_cast<size_t>(level)];
      }
      if (n[0] == 0 || n[1] == 0) continue;
      const double total = n[0] + n[1], distance = s[0] / n[0] - s[1] / n[1];
      const double variance = n[0] / total * (n[1] / total) * distance * distance;
      if (variance > greatest * (1 + 1e-12)) {
        greatest = variance;
        expected = boundary;
      }
    }
    EXPECT_EQ(OtsuBoundary(histogram), expected);
  }
}

TEST(Boundaries, AtAnEndOfTheLevelsAreTold) {
  // Nearly all pixels of one level, and a ramp: moments gives up on such.
  Image picture(IMAGE_U8, 0, 100, 100);
  const ImageInfo info = picture.Info();
  for (int32_t y = 0; y < 100; ++y) {
    for (int32_t x = 0; x < 100; ++x) {
      Row<uint8_t>(info, y)[x] = static_cast<uint8_t>(y == 0 ? 100 + x : 100);
    }
  }
  int told = 0;
  for (const MethodRow& row : AllMethods()) {
    const Boundary boundary = FindBoundary(picture, row.method).value();
    const bool end = boundary.level <= 101 || boundary.level >= 199;
    EXPECT_EQ(end, !boundary.remark.empty()) << row.name << ' ' << boundary.level;
    told += end;
  }
  EXPECT_GT(told, 0);
}

}  // namespace
