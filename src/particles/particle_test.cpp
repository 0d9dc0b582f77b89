#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <string>
#include <vector>

#include "tests/reference/particle_sweep.h"
#include "tests/support/refused_memory.h"

namespace {

using test::Picture;
using test::PictureOf;
using test::RandomPicture;
using test::ReferenceSweep;
using test::SweptParticle;
using test::TestImage;
using test::WalkCounts;

constexpr uint16_t FOUR = 0;
constexpr uint16_t EIGHT = 1;
constexpr uint16_t CONNECTIVITIES[] = {FOUR, EIGHT};

struct Reports {
  ParticleReport* reports = nullptr;
  int32_t count = -1;
  ~Reports() { ZEL_free(reports); }
  const ParticleReport& operator[](size_t i) const { return reports[i]; }
};

uint32_t BitsOf(float value) {
  if (std::isnan(value)) return 0x7FC00000;  // any NaN is as good as another
  uint32_t bits = 0;
  std::memcpy(&bits, &value, sizeof bits);
  return bits;
}

void ExpectReport(const ParticleReport& a, const ParticleReport& e, const std::string& what) {
  ASSERT_EQ(a.area, e.area) << what;
  ASSERT_EQ(BitsOf(a.calibratedArea), BitsOf(e.calibratedArea)) << what;
  ASSERT_EQ(BitsOf(a.perimeter), BitsOf(e.perimeter))
      << what << ": perimeter " << a.perimeter << " instead of " << e.perimeter;
  ASSERT_EQ(a.nbHoles, e.nbHoles) << what;
  ASSERT_EQ(a.holesArea, e.holesArea) << what;
  ASSERT_EQ(BitsOf(a.holesPerimeter), BitsOf(e.holesPerimeter))
      << what << ": holes' perimeter " << a.holesPerimeter << " instead of " << e.holesPerimeter;
  ASSERT_EQ(a.rect.left, e.rect.left) << what;
  ASSERT_EQ(a.rect.top, e.rect.top) << what;
  ASSERT_EQ(a.rect.width, e.rect.width) << what;
  ASSERT_EQ(a.rect.height, e.rect.height) << what;
  ASSERT_EQ(BitsOf(a.sumX), BitsOf(e.sumX)) << what;
  ASSERT_EQ(BitsOf(a.sumY), BitsOf(e.sumY)) << what;
  ASSERT_EQ(BitsOf(a.sumXX), BitsOf(e.sumXX)) << what;
  ASSERT_EQ(BitsOf(a.sumYY), BitsOf(e.sumYY)) << what;
  ASSERT_EQ(BitsOf(a.sumXY), BitsOf(e.sumXY)) << what;
  ASSERT_EQ(a.longestSegment, e.longestSegment) << what;
  ASSERT_EQ(a.longestSegmentX, e.longestSegmentX) << what;
  ASSERT_EQ(a.longestSegmentY, e.longestSegmentY) << what;
  ASSERT_EQ(a.projectionX, e.projectionX) << what;
  ASSERT_EQ(a.nbRuns, e.nbRuns) << what;
}

void ExpectAsReference(const TestImage& image, uint16_t connectivity, const std::string& what) {
  const ImageInfo info = image.Info();
  const std::vector<uint8_t> block = image.Block();
  const Picture picture = PictureOf(image);
  const std::vector<SweptParticle> expected =
      ReferenceSweep(picture, connectivity != 0, info.xStep, info.yStep).Run();
  Reports actual;
  ASSERT_EQ(ZEL_Particle(image, connectivity, &actual.reports, &actual.count), 0);
  ASSERT_EQ(actual.count, static_cast<int32_t>(expected.size())) << what;
  for (size_t i = 0; i < expected.size(); i++) {
    ExpectReport(actual[i], expected[i].report, what + ", particle " + std::to_string(i));
    if (testing::Test::HasFatalFailure()) return;
  }
  EXPECT_TRUE(image.Block() == block) << "the image or its border has changed";
}

TestImage Disk(int32_t radius) {
  const int32_t side = 2 * radius + 3;
  TestImage image(IMAGE_U8, side, side, 2);
  for (int32_t y = 0; y < side; y++) {
    for (int32_t x = 0; x < side; x++) {
      const int32_t dx = x - radius - 1;
      const int32_t dy = y - radius - 1;
      image.Set<uint8_t>(x, y, dx * dx + dy * dy <= radius * radius ? 255 : 0);
    }
  }
  return image;
}

// A walk whose counts are known.
struct KnownWalk {
  int64_t h, v, d;
  std::vector<int64_t> turns;
  int64_t c1, c2;
  double perimeter;
};

void ExpectWalk(const WalkCounts& counts, const KnownWalk& known, const std::string& what) {
  EXPECT_EQ(counts.h, known.h) << what;
  EXPECT_EQ(counts.v, known.v) << what;
  EXPECT_EQ(counts.d, known.d) << what;
  for (size_t i = 0; i < 5; i++)
    EXPECT_EQ(counts.turns[i], known.turns[i]) << what << " turn " << i;
  EXPECT_EQ(counts.c1, known.c1) << what;
  EXPECT_EQ(counts.c2, known.c2) << what;
  // Known to six decimals of the 32-bit float that a report holds.
  const auto stored = static_cast<float>(counts.perimeter);
  EXPECT_NEAR(static_cast<double>(stored), known.perimeter, 1e-6) << what;
}

// The outer contour of an image's first particle, by the reference's counts and by our report.
void ExpectOuter(const TestImage& image, uint16_t connectivity, const KnownWalk& known,
                 const std::string& what) {
  const ImageInfo info = image.Info();
  const Picture picture = PictureOf(image);
  const auto particles = ReferenceSweep(picture, connectivity != 0, info.xStep, info.yStep).Run();
  ASSERT_FALSE(particles.empty());
  ExpectWalk(particles[0].outer, known, what);
  Reports actual;
  ASSERT_EQ(ZEL_Particle(image, connectivity, &actual.reports, &actual.count), 0);
  EXPECT_NEAR(static_cast<double>(actual[0].perimeter), known.perimeter, 1e-6) << what;
}

struct KnownShape {
  std::string name;
  std::vector<std::string> rows;
  std::vector<uint16_t> connectivities;
  KnownWalk walk;
  float xStep = 1.0f;
  float yStep = 1.0f;
};

const std::vector<KnownShape> KNOWN_SHAPES = {
    {"row of 7", {"#######"}, {FOUR, EIGHT}, {12, 0, 0, {10, 0, 0, 0, 2}, 0, 0, 16}},
    {"column of 7",
     {"#", "#", "#", "#", "#", "#", "#"},
     {FOUR, EIGHT},
     {0, 12, 0, {10, 0, 0, 0, 2}, 0, 0, 16}},
    {"2x2 square", {"##", "##"}, {FOUR, EIGHT}, {2, 2, 0, {0, 0, 4, 0, 0}, 0, 0, 8}},
    {"5x5 square",
     {"#####", "#####", "#####", "#####", "#####"},
     {FOUR, EIGHT},
     {8, 8, 0, {12, 0, 4, 0, 0}, 0, 0, 20}},
    {"7x3 with wide pixels",
     {"#######", "#######", "#######"},
     {FOUR, EIGHT},
     {12, 4, 0, {12, 0, 4, 0, 0}, 0, 0, 34},
     2.0f,
     1.0f},
    {"diagonal", {"#..", ".#.", "..#"}, {EIGHT}, {0, 0, 4, {2, 0, 0, 0, 2}, 0, 0, 9.656855}},
    {"plus", {".#.", "###", ".#."}, {FOUR, EIGHT}, {0, 0, 4, {0, 0, 4, 0, 0}, 0, 0, 9.656855}},
    {"L", {"#..", "#..", "###"}, {FOUR, EIGHT}, {3, 3, 1, {2, 2, 1, 0, 2}, 2, 1, 10.375532}},
    {"T", {"###", ".#.", ".#."}, {FOUR, EIGHT}, {2, 2, 2, {1, 2, 0, 2, 1}, 2, 0, 10.289746}},
    {"U", {"#.#", "#.#", "###"}, {FOUR, EIGHT}, {2, 6, 2, {3, 2, 3, 0, 2}, 2, 3, 12.838378}},
    {"stairs",
     {"##..", ".##.", "..##"},
     {FOUR, EIGHT},
     {2, 0, 4, {2, 2, 0, 2, 0}, 0, 0, 11.656855}},
    {"start passed twice", {".##", "#.."}, {EIGHT}, {2, 0, 1, {0, 1, 0, 0, 2}, 1, 0, 7.139214}},
    {"beside another particle", {".##", "#.#"}, {FOUR}, {1, 1, 1, {0, 1, 1, 1, 0}, 0, 0, 7.414214}},
    {"the same alone", {".##", "..#"}, {FOUR, EIGHT}, {1, 1, 1, {0, 0, 1, 2, 0}, 0, 0, 7.414214}},
    {"hook passed twice", {".##", "#.#"}, {EIGHT}, {1, 1, 2, {0, 1, 1, 1, 1}, 1, 0, 8.553427}},
    {"roof passed twice", {".#.", "#.#"}, {EIGHT}, {0, 0, 3, {0, 0, 1, 0, 2}, 0, 1, 7.742640}},
    {"diamond ring", {".#.", "#.#", ".#."}, {EIGHT}, {0, 0, 7, {0, 0, 7, 0, 0}, 0, 3, 12.448127}},
    {"3x3 ring", {"###", "#.#", "###"}, {FOUR, EIGHT}, {4, 4, 0, {4, 0, 4, 0, 0}, 0, 0, 12}},
    {"4x4 ring",
     {"####", "#..#", "#..#", "####"},
     {FOUR, EIGHT},
     {6, 6, 0, {8, 0, 4, 0, 0}, 0, 0, 16}},
    {"square with a diagonal hole",
     {"####", "#.##", "##.#", "####"},
     {FOUR, EIGHT},
     {6, 6, 0, {8, 0, 4, 0, 0}, 0, 0, 16}},
    {"bar with holes",
     {"##########", "#.###.##.#", "####.#..##", "##########"},
     {FOUR, EIGHT},
     {18, 6, 0, {20, 0, 4, 0, 0}, 0, 0, 28}},
    {"ring around a pixel",
     {"#######", "#.....#", "#.....#", "#..#..#", "#.....#", "#.....#", "#######"},
     {FOUR, EIGHT},
     {12, 12, 0, {20, 0, 4, 0, 0}, 0, 0, 28}},
};

TEST(Particle, KnownContoursHaveTheirMovesTurnsAndPerimeters) {
  for (const KnownShape& shape : KNOWN_SHAPES) {
    for (const uint16_t connectivity : shape.connectivities) {
      const TestImage image = TestImage::FromRows(shape.rows);
      ZEL_SetImageCalibration(image, 0, shape.xStep, shape.yStep);
      ExpectOuter(image, connectivity, shape.walk, shape.name);
      ExpectAsReference(image, connectivity, shape.name);
    }
  }
}

TEST(Particle, DisksHaveTheirKnownContours) {
  const std::vector<std::pair<int32_t, KnownWalk>> disks = {
      {3, {4, 4, 8, {0, 8, 8, 0, 0}, 8, 4, 19.328230}},
      {5, {8, 8, 12, {8, 16, 4, 0, 0}, 16, 0, 32.921738}},
      {10, {16, 16, 24, {20, 32, 4, 0, 0}, 32, 0, 62.010120}},
      {20, {32, 32, 48, {44, 64, 4, 0, 0}, 64, 0, 120.346680}},
  };
  for (const auto& [radius, walk] : disks) {
    for (const uint16_t connectivity : CONNECTIVITIES) {
      ExpectOuter(Disk(radius), connectivity, walk, "radius " + std::to_string(radius));
    }
  }
}

TEST(Particle, ASinglePixelHasNoPerimeter) {
  const TestImage image = TestImage::FromRows({"...", ".#.", "..."});
  for (const uint16_t connectivity : CONNECTIVITIES) {
    Reports actual;
    ASSERT_EQ(ZEL_Particle(image, connectivity, &actual.reports, &actual.count), 0);
    ASSERT_EQ(actual.count, 1);
    EXPECT_EQ(actual[0].perimeter, 0.0f);
    EXPECT_EQ(actual[0].area, 1);
    EXPECT_EQ(actual[0].longestSegmentX, 1);
    EXPECT_EQ(actual[0].longestSegmentY, 1);
  }
}

TEST(Particle, ADiagonalIsThreeParticlesWithFourNeighbours) {
  const TestImage image = TestImage::FromRows({"#..", ".#.", "..#"});
  Reports actual;
  ASSERT_EQ(ZEL_Particle(image, FOUR, &actual.reports, &actual.count), 0);
  ASSERT_EQ(actual.count, 3);
  for (size_t i = 0; i < 3; i++) EXPECT_EQ(actual[i].perimeter, 0.0f);
}

struct KnownHoles {
  std::string name;
  std::vector<std::string> rows;
  uint16_t connectivity;
  int32_t holes, area;
  double perimeter;
  KnownWalk first;  // of the hole found first; no turns: not compared
};

const std::vector<KnownHoles> KNOWN_HOLES = {
    {"3x3 ring 4",
     {"###", "#.#", "###"},
     FOUR,
     1,
     1,
     3.544908,
     {0, 0, 4, {0, 0, 3, 0, 0}, 0, 0, 1.656854}},
    {"3x3 ring 8",
     {"###", "#.#", "###"},
     EIGHT,
     1,
     1,
     3.544908,
     {0, 0, 4, {0, 0, 3, 0, 0}, 0, 0, 1.656854}},
    {"4x4 ring 4",
     {"####", "#..#", "#..#", "####"},
     FOUR,
     1,
     4,
     7.089816,
     {2, 2, 4, {0, 7, 0, 0, 0}, 0, 0, 5.656854}},
    {"4x4 ring 8",
     {"####", "#..#", "#..#", "####"},
     EIGHT,
     1,
     4,
     7.089816,
     {2, 2, 4, {0, 7, 0, 0, 0}, 0, 0, 5.656854}},
    {"diagonal hole cut at its link",
     {"####", "#.##", "##.#", "####"},
     FOUR,
     1,
     2,
     5.013257,
     {0, 0, 4, {0, 0, 3, 0, 0}, 0, 0, 1.656854}},
    {"two diagonal holes", {"####", "#.##", "##.#", "####"}, EIGHT, 2, 2, 5.201762, {}},
    {"a part behind a merge is missed",
     {"##########", "#.###.##.#", "####.#..##", "##########"},
     FOUR,
     2,
     3,
     6.139960,
     {}},
    {"five holes",
     {"##########", "#.###.##.#", "####.#..##", "##########"},
     EIGHT,
     5,
     6,
     12.172325,
     {}},
    {"ring around a pixel 4",
     {"#######", "#.....#", "#.....#", "#..#..#", "#.....#", "#.....#", "#######"},
     FOUR,
     1,
     25,
     17.724539,
     {8, 8, 4, {12, 7, 0, 0, 0}, 0, 0, 17.656854}},
    {"ring around a pixel 8",
     {"#######", "#.....#", "#.....#", "#..#..#", "#.....#", "#.....#", "#######"},
     EIGHT,
     1,
     25,
     17.724539,
     {8, 8, 4, {12, 7, 0, 0, 0}, 0, 0, 17.656854}},
};

TEST(Particle, KnownHolesHaveTheirAreasAndPerimeters) {
  for (const KnownHoles& known : KNOWN_HOLES) {
    const TestImage image = TestImage::FromRows(known.rows);
    Reports actual;
    ASSERT_EQ(ZEL_Particle(image, known.connectivity, &actual.reports, &actual.count), 0);
    ASSERT_GE(actual.count, 1);
    EXPECT_EQ(actual[0].nbHoles, known.holes) << known.name;
    EXPECT_EQ(actual[0].holesArea, known.area) << known.name;
    EXPECT_NEAR(static_cast<double>(actual[0].holesPerimeter), known.perimeter, 1e-5) << known.name;
    if (known.first.turns.empty()) continue;
    const Picture picture = PictureOf(image);
    const auto particles = ReferenceSweep(picture, known.connectivity != 0, 1.0f, 1.0f).Run();
    ExpectWalk(particles[0].holes[0], known.first, known.name);
  }
}

TEST(Particle, AllPicturesOfFourByFourAreAsByTheReference) {
  const TestImage image(IMAGE_U8, 4, 4, 2);
  for (uint32_t bits = 0; bits < 65536; bits += bits % 8 == 7 ? 3u : 1u) {
    for (int32_t i = 0; i < 16; i++) {
      image.Set<uint8_t>(i % 4, i / 4, (bits >> i & 1) != 0 ? 3 : 0);
    }
    for (const uint16_t connectivity : CONNECTIVITIES) {
      ExpectAsReference(image, connectivity, "picture " + std::to_string(bits));
      if (HasFatalFailure()) return;
    }
  }
}

TEST(Particle, RandomPicturesAreAsByTheReference) {
  const std::vector<std::pair<float, float>> steps = {
      {1.0f, 1.0f}, {0.37f, 2.9f}, {1e-3f, 7e4f}, {0.0f, 1.0f}, {-1.0f, 0.5f}};
  uint64_t seed = 1;
  for (int32_t round = 0; round < 150; round++) {
    for (const int32_t percent : {8, 30, 45, 55, 65, 80, 95}) {
      for (const uint16_t connectivity : CONNECTIVITIES) {
        seed++;
        const auto width = static_cast<int32_t>(1 + seed * 7 % 41);
        const auto height = static_cast<int32_t>(1 + seed * 5 % 29);
        const TestImage image = RandomPicture(IMAGE_U8, width, height, percent, seed,
                                              connectivity == 0 ? 1 : 2 + round % 2);
        const auto [xStep, yStep] = steps[seed % steps.size()];
        ZEL_SetImageCalibration(image, 0, xStep, yStep);
        ExpectAsReference(image, connectivity, "seed " + std::to_string(seed));
        if (HasFatalFailure()) return;
      }
    }
  }
}

// Larger pictures of coarse grain: particles within holes of particles, and merges across holes.
TEST(Particle, CoarsePicturesAreAsByTheReference) {
  for (uint64_t seed = 1; seed <= 40; seed++) {
    const int32_t grain = 1 + static_cast<int32_t>(seed % 4);
    const TestImage image(IMAGE_U8, 90, 70, 2);
    const TestImage grains = RandomPicture(IMAGE_U8, 90, 70, seed % 2 == 0 ? 48 : 62, seed);
    for (int32_t y = 0; y < 70; y++) {
      for (int32_t x = 0; x < 90; x++) {
        image.Set<uint8_t>(x, y, grains.Get<uint8_t>(x / grain, y / grain));
      }
    }
    for (const uint16_t connectivity : CONNECTIVITIES) {
      ExpectAsReference(image, connectivity, "seed " + std::to_string(seed));
      if (HasFatalFailure()) return;
    }
  }
}

// Rings in rings, each with crumbs between: every closing run looks past what is complete.
TEST(Particle, NestedRingsAreAsByTheReference) {
  const int32_t side = 61;
  const TestImage image(IMAGE_U8, side, side, 2);
  for (int32_t y = 0; y < side; y++) {
    for (int32_t x = 0; x < side; x++) {
      const int32_t depth = std::min(std::min(x, y), std::min(side - 1 - x, side - 1 - y));
      const bool crumb = depth % 4 == 2 && (x + 3 * y) % 5 == 0;
      image.Set<uint8_t>(x, y, depth % 4 == 0 || crumb ? 1 : 0);
    }
  }
  for (const uint16_t connectivity : CONNECTIVITIES) {
    ExpectAsReference(image, connectivity, "rings");
  }
}

// A frame around the shape of a comb, with crumbs in the comb's back.
TestImage FramedComb() {
  constexpr int32_t teeth = 150;
  constexpr int32_t width = 2 * teeth + 1;
  constexpr int32_t height = 12;
  constexpr int32_t back = 6;  // the rows from there to the frame's last one
  TestImage image(IMAGE_U8, width, height, 2);
  for (int32_t y = 0; y < height; y++) {
    for (int32_t x = 0; x < width; x++) {
      const bool isFrame = y == 0 || y == height - 1 || x == 0 || x == width - 1;
      const bool isBetweenTeeth = y < back && x % 2 == 0;
      const bool isCrumb = y == back + 2 && x % 20 >= 4 && x % 2 == 0;
      image.Set<uint8_t>(x, y, isFrame || isBetweenTeeth || isCrumb ? 1 : 0);
    }
  }
  return image;
}

TEST(Particle, AHoleOfManyGapsInARowIsOneHole) {
  const TestImage comb = FramedComb();
  for (const uint16_t connectivity : CONNECTIVITIES) {
    ExpectAsReference(comb, connectivity, "comb");
    Reports actual;
    ASSERT_EQ(ZEL_Particle(comb, connectivity, &actual.reports, &actual.count), 0);
    EXPECT_EQ(actual[0].nbHoles, 1);
    EXPECT_EQ(actual[0].holesArea, 150 * 5 + 299 * 5);
  }
}

// One pixel to nine in a row, with set and with clear corners.
TEST(Particle, HolesOfOneRowHaveThePerimetersOfTheirWalks) {
  const TestImage image(IMAGE_U8, 80, 9, 2);
  ASSERT_EQ(ZEL_SetImageCalibration(image, 0, 1.25f, 0.7f), 0);
  for (const bool hasCorners : {true, false}) {
    ASSERT_EQ(ZEL_FillImage(image, 0, 1.0f, 0, 0, 0), 0);
    for (int32_t length = 1, x = 3; length <= 9; x += length + 3, length++) {
      for (int32_t i = 0; i < length; i++) image.Set<uint8_t>(x + i, 4, 0);
      if (hasCorners) continue;
      for (const int32_t y : {3, 5}) {
        image.Set<uint8_t>(x - 1, y, 0);
        image.Set<uint8_t>(x + length, y, 0);
      }
    }
    ExpectAsReference(image, EIGHT, hasCorners ? "with corners" : "without corners");
    ExpectAsReference(image, FOUR, hasCorners ? "with corners" : "without corners");
  }
}

TEST(Particle, SumsOfLongRunsWrapIn32Bits) {
  const TestImage image(IMAGE_U8, 40000, 4, 2);
  for (int32_t y = 0; y < 4; y++) {
    for (int32_t x = 0; x < 40000; x++) {
      image.Set<uint8_t>(x, y, y == 1 ? x >= 30000 && x < 39000 : y == 0 ? x < 1862 : x % 7 == y);
    }
  }
  for (const uint16_t connectivity : CONNECTIVITIES) {
    Reports actual;
    ASSERT_EQ(ZEL_Particle(image, connectivity, &actual.reports, &actual.count), 0);
    EXPECT_LT(actual[0].sumXX, 0.0f);
    const Picture whole = PictureOf(image);
    // The reference searches all runs, so it gets the two long ones only.
    Picture picture{40000, 2, {whole.set.begin(), whole.set.begin() + 80000}};
    const TestImage part(IMAGE_U8, 40000, 2, 2);
    for (int32_t y = 0; y < 2; y++) {
      for (int32_t x = 0; x < 40000; x++) part.Set<uint8_t>(x, y, picture.At(x, y));
    }
    ExpectAsReference(part, connectivity, "long runs");
  }
}

TEST(Particle, RowsWiderThan65535ColumnsAreMeasured) {
  const TestImage image(IMAGE_U8, 70000, 3, 2);
  for (int32_t y = 0; y < 3; y++) {
    for (int32_t x = 0; x < 70000; x++) {
      const bool ring = x >= 66000 && x < 66003 && !(x == 66001 && y == 1);
      image.Set<uint8_t>(x, y, ring || x == 40000 ? 1 : 0);
    }
  }
  for (const uint16_t connectivity : CONNECTIVITIES) {
    ExpectAsReference(image, connectivity, "wide");
    Reports actual;
    ASSERT_EQ(ZEL_Particle(image, connectivity, &actual.reports, &actual.count), 0);
    ASSERT_EQ(actual.count, 2);
    EXPECT_EQ(actual[1].rect.left, 66000);
    EXPECT_EQ(actual[1].nbHoles, 1);
  }
}

TEST(Particle, StepsThatAreNoNumbersAreTaken) {
  const float infinity = std::numeric_limits<float>::infinity();
  const float notANumber = std::numeric_limits<float>::quiet_NaN();
  const TestImage image = TestImage::FromRows({"###.#", "#.#.#", "###.."});
  for (const auto& [xStep, yStep] : {std::pair{notANumber, 1.0f},
                                     {1.0f, infinity},
                                     {-infinity, infinity},
                                     {1e38f, 1e38f},
                                     {0.0f, 0.0f}}) {
    ZEL_SetImageCalibration(image, 0, xStep, yStep);
    for (const uint16_t connectivity : CONNECTIVITIES) ExpectAsReference(image, connectivity, "");
  }
}

TEST(Particle, EmptyAndClearImagesHaveNoParticles) {
  for (const auto& [width, height] : {std::pair{0, 0}, {5, 4}, {64, 1}}) {
    const TestImage image(IMAGE_U8, width, height, 2);
    for (int32_t y = 0; y < height; y++) {
      for (int32_t x = 0; x < width; x++) image.Set<uint8_t>(x, y, 0);
    }
    Reports table;
    table.reports = static_cast<ParticleReport*>(ZEL_malloc(100));
    EXPECT_EQ(ZEL_Particle(image, EIGHT, &table.reports, &table.count), 0);
    EXPECT_EQ(table.count, 0);
    EXPECT_EQ(table.reports, nullptr);
  }
}

TEST(Particle, MoreParticlesThanSixteenBitsCountAreMeasured) {
  const TestImage image(IMAGE_U8, 600, 600, 2);
  for (int32_t y = 0; y < 600; y++) {
    for (int32_t x = 0; x < 600; x++) image.Set<uint8_t>(x, y, x % 2 == 0 && y % 2 == 0);
  }
  Reports actual;
  ASSERT_EQ(ZEL_Particle(image, EIGHT, &actual.reports, &actual.count), 0);
  ASSERT_EQ(actual.count, 90000);
  EXPECT_EQ(actual[89999].rect.left, 598);
}

TEST(Particle, WrongImagesGiveTheirNumbersAndLeaveTheTable) {
  const TestImage words(IMAGE_I16, 3, 3, 2);
  const TestImage narrow = TestImage::FromRows({"#.#"}, 1);
  const TestImage bare = TestImage::FromRows({"#.#"}, 0);
  Reports table;
  table.reports = static_cast<ParticleReport*>(ZEL_malloc(80));
  ParticleReport* const before = table.reports;
  EXPECT_EQ(ZEL_Particle(0, 0, &table.reports, &table.count), -200);
  EXPECT_EQ(table.count, 0);
  EXPECT_EQ(ZEL_Particle(424242, 0, &table.reports, &table.count), -200);
  EXPECT_EQ(ZEL_Particle(words, 0, &table.reports, &table.count), -301);
  EXPECT_EQ(ZEL_Particle(bare, 0, &table.reports, &table.count), -309);
  EXPECT_EQ(ZEL_Particle(narrow, 5, &table.reports, &table.count), -309);
  EXPECT_EQ(table.reports, before);
  table.count = 77;
  EXPECT_EQ(ZEL_Particle(narrow, 0, nullptr, &table.count), -3009);
  EXPECT_EQ(table.count, 77);
  char name[256];
  EXPECT_EQ(ZEL_GetLastError(name), -3009);
  EXPECT_STREQ(name, "ZEL_Particle");
  EXPECT_EQ(ZEL_Particle(narrow, 0, &table.reports, nullptr), 0);
  EXPECT_EQ(table[1].rect.left, 2);
}

void ExpectNothingLostWithoutMemory(const TestImage& source) {
  Reports whole;
  ASSERT_EQ(ZEL_Particle(source, EIGHT, &whole.reports, &whole.count), 0);
  Reports table;
  ParticleReport* before = nullptr;
  test::RefuseEachAllocation(
      [&] {
        ZEL_free(table.reports);
        table.reports = before = static_cast<ParticleReport*>(ZEL_malloc(80));
      },
      [&] {
        const int32_t result = ZEL_Particle(source, EIGHT, &table.reports, &table.count);
        EXPECT_EQ(table.count, result == 0 ? whole.count : 0);
        if (result != 0) {
          EXPECT_EQ(table.reports, before);
        } else {
          EXPECT_EQ(std::memcmp(table.reports, whole.reports,
                                static_cast<size_t>(whole.count) * sizeof(ParticleReport)),
                    0);
        }
        return result;
      });
}

TEST(Particle, RefusedMemoryIs101AndNothingIsLost) {
  ExpectNothingLostWithoutMemory(RandomPicture(IMAGE_U8, 200, 300, 55, 3));
  ExpectNothingLostWithoutMemory(FramedComb());
}

TEST(Particle, RowsOfManyGroupsAreMeasuredAsTheReferenceDoes) {
  const TestImage image = RandomPicture(IMAGE_U8, 333, 77, 60, 9);
  for (const uint16_t connectivity : CONNECTIVITIES) {
    ExpectAsReference(image, connectivity, "333 x 77");
  }
}

}  // namespace
