#include <array>
#include <cmath>
#include <limits>

#include "morphology/shapes_test.h"

namespace {

using test::TestImage;
using test::shape::Bytes;
using test::shape::Element;
using test::shape::Eroded;
using test::shape::ExpectInEveryPlace;
using test::shape::ExpectPixels;
using test::shape::FloodFill;
using test::shape::ForAllSizes;
using test::shape::ForLargerSizes;
using test::shape::FullElement;
using test::shape::Labelling;
using test::shape::LineOf;
using test::shape::Point;
using test::shape::RandomElement;
using test::shape::SceneImage;
using test::shape::UNKNOWN_IMAGE;

// ---- distances

// The two sweeps as they are told, on planes of bytes.
Bytes DistanceMapOf(const Bytes& from) {
  const int32_t width = from.width;
  const int32_t height = from.height;
  Bytes planeX(width, height);
  Bytes planeY(width, height);
  for (size_t i = 0; i < from.pixels.size(); i++) {
    planeX.pixels[i] = planeY.pixels[i] = from.pixels[i] != 0 ? 255 : 0;
  }
  const auto improve = [&](int32_t x, int32_t y, int32_t a, int32_t b) {
    const int32_t own = planeY(x, y) * planeY(x, y) + planeX(x, y) * planeX(x, y);
    if (own <= b * b + a * a) return;
    planeX(x, y) = static_cast<uint8_t>(a);
    planeY(x, y) = static_cast<uint8_t>(b);
  };
  const auto improveRow = [&](int32_t y, int32_t other) {
    for (int32_t x = 0; x < width; x++) improve(x, y, planeX(x, other), planeY(x, other) + 1);
    for (int32_t x = 1; x < width; x++) improve(x, y, planeX(x - 1, y) + 1, planeY(x - 1, y));
    for (int32_t x = width - 2; x >= 0; x--) improve(x, y, planeX(x + 1, y) + 1, planeY(x + 1, y));
  };
  for (int32_t y = 1; y < height; y++) improveRow(y, y - 1);
  for (int32_t y = height - 2; y >= 0; y--) improveRow(y, y + 1);
  Bytes map(width, height);
  for (size_t i = 0; i < map.pixels.size(); i++) {
    const double square = planeY.pixels[i] * planeY.pixels[i] + planeX.pixels[i] * planeX.pixels[i];
    map.pixels[i] = static_cast<uint8_t>(static_cast<int32_t>(std::sqrt(square)));
  }
  return map;
}

void ExpectDistances(const TestImage& source) {
  ExpectInEveryPlace(source, 1, DistanceMapOf(Bytes(source)),
                     [](ImageRef from, ImageRef to) { return ZEL_Danielsson(from, to); });
}

TEST(Danielsson, SpreadsColumnsAndRows) {
  const auto check = [](int32_t width, int32_t height, int32_t scene, uint64_t seed) {
    ExpectDistances(SceneImage(scene, width, height, 1, seed));
  };
  ForAllSizes(check);
  ForLargerSizes(check);
}

// Single pixels of background, so that numbers of columns and rows reach the end of a byte.
TEST(Danielsson, KeepsStepsInBytes) {
  for (const auto& [x, y] : {std::pair{0, 0}, {0, 599}, {299, 300}, {600, 20}, {550, 599}}) {
    const TestImage source = SceneImage(5, 601, 600, 1, 5);
    source.Set<uint8_t>(x, y, 0);
    ExpectDistances(source);
  }
  ExpectDistances(SceneImage(4, 1200, 700, 1, 9));
}

TEST(Danielsson, WithoutBackgroundIsFarAway) {
  for (const int32_t height : {1, 2, 30}) {
    const TestImage image = SceneImage(5, 20, height, 0, 5);
    ASSERT_EQ(ZEL_Danielsson(image, 0), 0);
    EXPECT_EQ(image.Pixels(), std::vector<uint8_t>(static_cast<size_t>(20 * height), 104));
  }
}

TEST(Danielsson, LeavesCalibrationAndOffset) {
  const TestImage source = SceneImage(4, 20, 10, 0, 5);
  ASSERT_EQ(ZEL_SetImageOffset(source, 3, 4), 0);
  const TestImage destination(IMAGE_U8, 1, 1);
  ASSERT_EQ(ZEL_Danielsson(source, destination), 0);
  EXPECT_EQ(destination.Info().offsetX, 0);
}

// Round by round. What a round does not change is counted without end; what alternates has been
// counted to 255 long before the last.
Bytes ErosionsCounted(const Bytes& from, const StructuringElement& element) {
  if (test::shape::MembersOf(element) < 3) return from;
  Bytes counts(from.width, from.height);
  Bytes left(from.width, from.height);
  for (size_t i = 0; i < left.pixels.size(); i++) left.pixels[i] = from.pixels[i] != 0 ? 1 : 0;
  size_t position = 0;
  for (int32_t round = 0; round < 700; round++) {
    for (size_t i = 0; i < left.pixels.size(); i++) {
      counts.pixels[i] = static_cast<uint8_t>(std::min(counts.pixels[i] + left.pixels[i], 255));
    }
    const Bytes next = Eroded(left, element);
    const bool settled = next.pixels == left.pixels;
    left = next;
    while (position < left.pixels.size() && left.pixels[position] == 0) position++;
    if (position == left.pixels.size()) break;
    if (!settled) continue;
    for (size_t i = 0; i < left.pixels.size(); i++) {
      if (left.pixels[i] != 0) counts.pixels[i] = 255;
    }
    break;
  }
  return counts;
}

TEST(Distance, CountsErosions) {
  const auto check = [](int32_t width, int32_t height, int32_t scene, uint64_t seed) {
    const TestImage source = SceneImage(scene, width, height, test::shape::ELEMENT_BORDER, seed);
    const Element element = test::shape::ElementOfTurn(seed / 7);
    ExpectInEveryPlace(source, test::shape::ELEMENT_BORDER,
                       ErosionsCounted(Bytes(source), element.record),
                       [&](ImageRef from, ImageRef to) { return ZEL_Distance(from, to, element); });
  };
  ForAllSizes(check);
  ForLargerSizes(check);
}

TEST(Distance, EndsWithEveryElementOfThreeByThree) {
  for (int32_t pattern = 0; pattern < 512; pattern++) {
    std::vector<int32_t> members;
    for (int32_t i = 0; i < 9; i++) members.push_back(pattern >> i & 1);
    for (const int32_t hexagonal : {0, 1}) {
      const Element element(3, 3, members, hexagonal);
      const TestImage source =
          SceneImage(2 + pattern % 2, 6 + pattern % 7, 11, 1, static_cast<uint64_t>(pattern));
      const TestImage destination(IMAGE_U8, 0, 0);
      ASSERT_EQ(ZEL_Distance(source, destination, element), 0);
      SCOPED_TRACE(pattern);
      ExpectPixels(destination, ErosionsCounted(Bytes(source), element.record));
      if (HasFatalFailure()) return;
    }
  }
}

// More rows than are eroded at once, and members farther away than a word has columns.
TEST(Distance, CountsErosionsOfTallImagesAndByWideElements) {
  const Element elements[] = {FullElement(3, 3),          FullElement(7, 5),
                              RandomElement(9, 7, 40, 3), RandomElement(5, 7, 60, 4, 1),
                              FullElement(131, 3),        RandomElement(141, 5, 4, 5)};
  for (const Element& element : elements) {
    const int32_t border = std::max(element.record.width, element.record.height) / 2 + 1;
    for (const auto& [width, height] : {std::pair{5, 300}, {70, 190}, {200, 90}}) {
      const TestImage source = SceneImage(5, width, height, border, 6);
      for (int32_t y = 3; y < height; y += 7) source.Set<uint8_t>(13 * y % width, y, 0);
      const TestImage destination(IMAGE_U8, 0, 0);
      ASSERT_EQ(ZEL_Distance(source, destination, element), 0);
      SCOPED_TRACE(std::to_string(element.record.width) + " columns of an element, image of " +
                   std::to_string(height) + " rows");
      ExpectPixels(destination, ErosionsCounted(Bytes(source), element.record));
      if (HasFatalFailure()) return;
    }
  }
}

TEST(Distance, ReachesTwoHundredAndFiftyFive) {
  const TestImage source = SceneImage(5, 300, 20, 1, 5);
  for (int32_t y = 0; y < 20; y++) source.Set<uint8_t>(299, y, 0);
  const TestImage destination(IMAGE_U8, 0, 0);
  ASSERT_EQ(ZEL_Distance(source, destination, FullElement(3, 3)), 0);
  for (int32_t x = 0; x < 300; x++) {
    ASSERT_EQ(destination.Get<uint8_t>(x, 7), std::min(299 - x, 255)) << x;
  }
}

TEST(Distance, ClearsTheBorderOfTheDestination) {
  const TestImage source = SceneImage(4, 9, 7, 2, 5);
  const auto before = source.Block();
  const TestImage destination(IMAGE_U8, 9, 7, 3, 6);
  ASSERT_EQ(ZEL_Distance(source, destination, FullElement(3, 3)), 0);
  EXPECT_EQ(source.Block(), before);
  for (int32_t x = -3; x < 12; x++) EXPECT_EQ(destination.Get<uint8_t>(x, -2), 0);
  EXPECT_EQ(destination.Get<uint8_t>(-3, 3), 0);
}

// ---- circles

struct ExpectedCircles {
  std::vector<CircleReport> reports;
  Bytes picture;
};

void MaximaFind(const Bytes& map, Bytes* maxima) {
  for (int32_t y = 2; y < map.height - 2; y++) {
    for (int32_t x = 2; x < map.width - 2; x++) {
      bool exceeded = false;
      for (int32_t dy = -2; dy <= 2; dy++) {
        for (int32_t dx = -2; dx <= 2; dx++) exceeded |= map(x + dx, y + dy) > map(x, y);
      }
      (*maxima)(x, y) = exceeded ? 0 : 255;
    }
  }
  const auto look = [&](int32_t x, int32_t y) {
    for (int32_t dy = -1; dy <= 1; dy++) {
      for (int32_t dx = -1; dx <= 1; dx++) {
        if ((*maxima)(x + dx, y + dy) == 0 && map(x + dx, y + dy) == map(x, y)) {
          (*maxima)(x, y) = 0;
        }
      }
    }
  };
  for (int32_t y = 2; y < map.height - 2; y++) {
    for (int32_t x = 2; x < map.width - 2; x++) look(x, y);
  }
  for (int32_t y = map.height - 3; y >= 2; y--) {
    for (int32_t x = map.width - 3; x >= 2; x--) look(x, y);
  }
}

void CircleDraw(const CircleReport& circle, Bytes* picture) {
  const auto limited = [&](int32_t x, int32_t y) {
    return Point{std::clamp(x, 0, picture->width - 1), std::clamp(y, 0, picture->height - 1)};
  };
  const int32_t r = circle.radius;
  const std::array<std::pair<int32_t, int32_t>, 4> quadrants{{{1, 1}, {-1, -1}, {-1, 1}, {1, -1}}};
  for (const auto& [signX, signY] : quadrants) {
    Point last = limited(circle.x + signX * r, circle.y);
    for (int32_t degrees = 0; degrees <= 90; degrees += 10) {
      const double a = degrees * 0.017453293;
      const auto dx = static_cast<int32_t>(std::cos(a) * r + 0.5);
      const auto dy = static_cast<int32_t>(std::sin(a) * r + 0.5);
      const Point next = limited(circle.x + signX * dx, circle.y + signY * dy);
      for (const Point& point : LineOf(last, next)) (*picture)(point.x, point.y) = 255;
      last = next;
    }
  }
}

ExpectedCircles CirclesOf(const Bytes& from, double scale, float least, float most) {
  Bytes maxima(from.width, from.height);
  const Bytes map = DistanceMapOf(from);
  MaximaFind(map, &maxima);
  const Labelling labels = FloodFill(maxima, true);
  ExpectedCircles expected{{}, Bytes(from.width, from.height)};
  std::vector<std::pair<int64_t, int64_t>> sums(static_cast<size_t>(labels.count));
  expected.reports.resize(sums.size());
  for (int32_t y = 0; y < from.height; y++) {
    for (int32_t x = 0; x < from.width; x++) {
      const int32_t label = labels.numbers[static_cast<size_t>(y * from.width + x)];
      if (label == 0) continue;
      const auto n = static_cast<size_t>(label - 1);
      sums[n].first += x;
      sums[n].second += y;
      expected.reports[n].nbPixels++;
      expected.reports[n].radius = map(x, y);
      expected.picture(x, y) = static_cast<uint8_t>(std::min(label, 255));
    }
  }
  for (size_t n = 0; n < sums.size(); n++) {
    CircleReport& report = expected.reports[n];
    report.x = static_cast<int32_t>(sums[n].first / report.nbPixels);
    report.y = static_cast<int32_t>(sums[n].second / report.nbPixels);
    const double length = report.radius * scale;
    if (length >= static_cast<double>(least) && length <= static_cast<double>(most)) continue;
    report.radius = -report.radius;
    for (size_t i = 0; i < labels.numbers.size(); i++) {
      if (labels.numbers[i] == static_cast<int32_t>(n + 1)) expected.picture.pixels[i] = 0;
    }
  }
  for (const CircleReport& report : expected.reports) {
    if (report.radius > 0) CircleDraw(report, &expected.picture);
  }
  return expected;
}

struct Circles {
  CircleReport* reports = nullptr;
  int32_t count = -1;
  ~Circles() { ZEL_free(reports); }
};

void ExpectReports(const Circles& circles, const std::vector<CircleReport>& expected) {
  ASSERT_EQ(circles.count, static_cast<int32_t>(expected.size()));
  EXPECT_EQ(circles.reports == nullptr, expected.empty());
  for (size_t n = 0; n < expected.size(); n++) {
    ASSERT_EQ(circles.reports[n].x, expected[n].x) << n;
    ASSERT_EQ(circles.reports[n].y, expected[n].y) << n;
    ASSERT_EQ(circles.reports[n].radius, expected[n].radius) << n;
    ASSERT_EQ(circles.reports[n].nbPixels, expected[n].nbPixels) << n;
  }
}

TEST(Circles, AreTheMaximaOfTheDistanceMap) {
  const auto check = [](int32_t width, int32_t height, int32_t scene, uint64_t seed) {
    const TestImage source = SceneImage(seed % 2 == 0 ? 4 : scene, width, height, 0, seed);
    if (seed % 3 == 0) {
      ASSERT_EQ(ZEL_SetImageCalibration(source, 0, 0.5f, 0.25f), 0);
    }
    const double scale = seed % 3 == 0 ? 0.375 : 1.0;
    const auto least = static_cast<float>(seed % 4);
    const ExpectedCircles expected = CirclesOf(Bytes(source), scale, least, least + 4);
    {
      const TestImage destination(IMAGE_U8, 3, 3, 1);
      Circles circles;
      ASSERT_EQ(
          ZEL_Circles(source, destination, least, least + 4, &circles.reports, &circles.count), 0);
      ExpectReports(circles, expected.reports);
      ExpectPixels(destination, expected.picture);
    }
    Circles circles;
    ASSERT_EQ(ZEL_Circles(source, seed % 5 == 0 ? 0 : ImageRef{source}, least, least + 4,
                          &circles.reports, &circles.count),
              0);
    ExpectReports(circles, expected.reports);
    ExpectPixels(source, expected.picture);
  };
  ForAllSizes(check);
  ForLargerSizes(check);
  check(500, 300, 4, 6);
}

TEST(Circles, OutOfTheRangeStayInTheTable) {
  const float nan = std::numeric_limits<float>::quiet_NaN();
  const std::pair<float, float> ranges[] = {{1, 2}, {nan, 100}, {0, nan}, {100, 200}};
  for (const auto& [least, most] : ranges) {
    const TestImage source(IMAGE_U8, 30, 30, 0);
    for (int32_t y = 0; y < 30; y++) {
      for (int32_t x = 0; x < 30; x++) {
        const int32_t square = (x - 14) * (x - 14) + (y - 13) * (y - 13);
        source.Set<uint8_t>(x, y, square < 64 ? 9 : 0);
      }
    }
    Circles circles;
    ASSERT_EQ(ZEL_Circles(source, 0, least, most, &circles.reports, &circles.count), 0);
    ASSERT_EQ(circles.count, 1);
    EXPECT_EQ(circles.reports[0].x, 14);
    EXPECT_EQ(circles.reports[0].y, 13);
    EXPECT_EQ(circles.reports[0].radius, -8);
    EXPECT_EQ(source.Pixels(), std::vector<uint8_t>(900));
  }
}

TEST(Circles, CountsNothingAfterAFailure) {
  const TestImage words(IMAGE_I16, 5, 5);
  const TestImage bytes(IMAGE_U8, 5, 5);
  Circles circles;
  int32_t count = 7;
  EXPECT_EQ(ZEL_Circles(UNKNOWN_IMAGE, bytes, 0, 9, nullptr, &count), -3009);
  EXPECT_EQ(count, 7);
  EXPECT_EQ(ZEL_Circles(UNKNOWN_IMAGE, bytes, 0, 9, &circles.reports, &count), -200);
  EXPECT_EQ(count, 0);
  EXPECT_EQ(ZEL_Circles(words, bytes, 0, 9, &circles.reports, nullptr), -301);
  EXPECT_EQ(ZEL_Circles(bytes, words, 0, 9, &circles.reports, nullptr), -301);
  EXPECT_EQ(ZEL_Circles(bytes, UNKNOWN_IMAGE, 0, 9, &circles.reports, nullptr), -200);
}

// ---- skeletons

// An image with a border of one pixel around it, which stays 0.
struct Framed {
  int32_t width, height;
  std::vector<uint8_t> pixels;

  Framed(int32_t w, int32_t h)
      : width(w), height(h), pixels(static_cast<size_t>(w + 2) * static_cast<size_t>(h + 2)) {}
  uint8_t& operator()(int32_t x, int32_t y) {
    return pixels[static_cast<size_t>(y + 1) * static_cast<size_t>(width + 2) +
                  static_cast<size_t>(x + 1)];
  }
};

using Table = std::array<uint8_t, 512>;

Table ThinningTable(uint32_t hit, uint32_t miss) {
  Table table{};
  for (uint32_t i = 0; i < 512; i++) {
    const bool matches = (i & hit) == hit && (i & miss) == 0;
    table[i] = !matches && (i & 16) != 0;
  }
  return table;
}

void TableApply(const Table& table, Framed* from, Framed* to) {
  for (int32_t y = 0; y < from->height; y++) {
    for (int32_t x = 0; x < from->width; x++) {
      uint32_t index = 0;
      for (int32_t dx = -1; dx <= 1; dx++) {
        for (int32_t dy = 1; dy >= -1; dy--) {
          index = index * 2 + ((*from)(x + dx, y + dy) != 0 ? 1u : 0u);
        }
      }
      (*to)(x, y) = table[index];
    }
  }
}

// The count of rounds; changes the pixels.
int32_t RoundsCount(Framed* image) {
  int32_t most = 0;
  for (int32_t y = 0; y < image->height; y++) {
    for (int32_t x = 0; x < image->width; x++) {
      uint8_t& pixel = (*image)(x, y);
      if (pixel == 0) continue;
      const uint8_t least = std::min(
          {(*image)(x - 1, y - 1), (*image)(x, y - 1), (*image)(x + 1, y - 1), (*image)(x - 1, y)});
      pixel = static_cast<uint8_t>(least + 1);
      most = std::max(most, int32_t{pixel});
    }
  }
  return most;
}

constexpr std::pair<uint32_t, uint32_t> SET_A[8] = {{308, 73}, {432, 11}, {464, 7},  {216, 38},
                                                    {89, 292}, {27, 416}, {23, 448}, {54, 200}};
constexpr std::pair<uint32_t, uint32_t> SET_B[8] = {{464, 2},  {216, 4}, {89, 32}, {27, 256},
                                                    {23, 128}, {54, 64}, {308, 8}, {432, 1}};

// Line ends and lone pixels.
constexpr size_t ENDS[] = {16, 272, 48, 20, 18, 17, 80, 144, 304, 52, 22, 19, 25, 88, 208, 400, 24};

void RoundsRun(int32_t count, const std::vector<Table>& tables, Framed* image) {
  Framed other(image->width, image->height);
  for (int32_t round = 0; count > 0 && round < count + 3; round++) {
    for (size_t pass = 0; pass < 8; pass++) {
      Framed* from = pass % 2 == 0 ? image : &other;
      TableApply(tables[pass], from, pass % 2 == 0 ? &other : image);
    }
  }
}

Bytes SkeletonOf(const Bytes& from, int32_t type) {
  if (type < 0 || type > 2) return from;
  Framed image(from.width, from.height);
  for (int32_t y = 0; y < from.height; y++) {
    for (int32_t x = 0; x < from.width; x++) image(x, y) = from(x, y);
  }
  std::vector<Table> tables;
  for (const auto& [hit, miss] : type == 1 ? SET_B : SET_A) {
    tables.push_back(ThinningTable(hit, miss));
  }
  if (type == 2) {
    for (Table& table : tables) {
      for (const size_t end : ENDS) {
        table[end] = 0;
      }
    }
    Table clean = ThinningTable(1023, 0);
    clean[16] = 0;
    clean[495] = 1;
    Framed cleaned(from.width, from.height);
    TableApply(clean, &image, &cleaned);
    for (int32_t y = 0; y < from.height; y++) {
      for (int32_t x = 0; x < from.width; x++) {
        const bool onEdge = x == 0 || y == 0 || x == from.width - 1 || y == from.height - 1;
        image(x, y) = onEdge || cleaned(x, y) == 0 ? 1 : 0;
      }
    }
  }
  Framed counted = image;
  const int32_t count = RoundsCount(&counted);
  RoundsRun(count, tables, &image);
  Bytes result(from.width, from.height);
  Framed last = image;
  if (type == 2 && count != 0) TableApply(ThinningTable(511, 0), &image, &last);
  for (int32_t y = 0; y < from.height; y++) {
    for (int32_t x = 0; x < from.width; x++) result(x, y) = last(x, y);
  }
  return result;
}

TEST(Skeleton, ThinsByTables) {
  const auto check = [](int32_t width, int32_t height, int32_t scene, uint64_t seed) {
    const TestImage source = SceneImage(scene, width, height, 1, seed);
    const auto type = static_cast<int32_t>(seed / 5 % 3);
    ExpectInEveryPlace(source, 1, SkeletonOf(Bytes(source), type),
                       [&](ImageRef from, ImageRef to) { return ZEL_Skeleton(from, to, type); });
  };
  ForAllSizes(check);
  ForLargerSizes(check);
  for (const int32_t type : {0, 1, 2}) {
    const TestImage source = SceneImage(4, 190, 150, 1, 3 + static_cast<uint64_t>(type));
    ExpectInEveryPlace(source, 1, SkeletonOf(Bytes(source), type),
                       [&](ImageRef from, ImageRef to) { return ZEL_Skeleton(from, to, type); });
  }
}

// Depths beyond a byte, where the rounds do not grow any more in number.
TEST(Skeleton, CountsRoundsInAByte) {
  const TestImage source = SceneImage(5, 262, 530, 1, 3);
  const Bytes expected = SkeletonOf(Bytes(source), 0);
  const TestImage destination(IMAGE_U8, 1, 1);
  ASSERT_EQ(ZEL_Skeleton(source, destination, 0), 0);
  ExpectPixels(destination, expected);
}

TEST(Skeleton, OfAnotherTypeIsACopy) {
  for (const int32_t type : {-1, 3, 5, 2147483647}) {
    const TestImage source = SceneImage(2, 9, 7, 1, 5);
    const auto before = source.Block();
    const TestImage destination(IMAGE_U8, 1, 1);
    ASSERT_EQ(ZEL_Skeleton(source, destination, type), 0);
    EXPECT_EQ(destination.Pixels(), source.Pixels());
    EXPECT_EQ(source.Block(), before);
  }
}

TEST(Skeleton, ClearsTheBorderOfTheSource) {
  for (const int32_t type : {0, 1, 2}) {
    const TestImage source = SceneImage(5, 9, 7, 2, 5);
    ASSERT_EQ(ZEL_Skeleton(source, 0, type), 0);
    for (int32_t x = -2; x < 11; x++) EXPECT_EQ(source.Get<uint8_t>(x, -1), 0);
  }
}

// ---- zones

// Pass by pass, with rows continued by the pixels next to their ends.
std::vector<int32_t> ZonesOf(const TestImage& image) {
  const ImageInfo info = image.Info();
  const int32_t width = info.width;
  const int32_t height = info.height;
  std::vector<int32_t> state;
  for (int32_t y = 0; y < height; y++) {
    for (int32_t x = 0; x < width; x++) {
      state.push_back(static_cast<int32_t>(PixelOf(image, x, y)));
    }
  }
  const auto at = [&](int32_t x, int32_t y) {
    y = std::clamp(y, 0, height - 1);
    if (x < 0) x = width > 1 ? 1 : 0;
    if (x >= width) x = width > 1 ? width - 2 : 0;
    return state[static_cast<size_t>(y * width + x)];
  };
  bool changed = width > 0;
  for (int32_t pass = 0; changed && pass < std::max(width, height); pass++) {
    std::vector<int32_t> next = state;
    changed = false;
    for (int32_t y = 0; y < height; y++) {
      for (int32_t x = 0; x < width; x++) {
        int32_t& pixel = next[static_cast<size_t>(y * width + x)];
        for (int32_t i = 0; i < 9 && pixel == 0; i++) pixel = at(x + i % 3 - 1, y + i / 3 - 1);
        changed |= pixel != at(x, y);
      }
    }
    state = next;
  }
  return state;
}

void ExpectZones(const TestImage& image, const std::vector<int32_t>& expected) {
  const ImageInfo info = image.Info();
  ASSERT_EQ(expected.size(), static_cast<size_t>(info.width) * static_cast<size_t>(info.height));
  for (int32_t y = 0; y < info.height; y++) {
    for (int32_t x = 0; x < info.width; x++) {
      ASSERT_EQ(static_cast<int32_t>(PixelOf(image, x, y)),
                expected[static_cast<size_t>(y * info.width + x)])
          << "at " << x << ", " << y;
    }
  }
}

TestImage Seeds(int32_t type, int32_t width, int32_t height, uint64_t seed) {
  TestImage image(type, width, height, 1 + static_cast<int32_t>(seed % 2), seed);
  test::Random random(seed);
  const int32_t of[] = {2, 20, 200, 2000};
  for (int32_t y = 0; y < height; y++) {
    for (int32_t x = 0; x < width; x++) {
      const bool set = random.Between(0, of[seed % 4]) == 0;
      const int32_t label = set ? random.Between(1, 4) : 0;
      if (type == IMAGE_U8) image.Set(x, y, static_cast<uint8_t>(label * 60));
      if (type == IMAGE_I16) image.Set(x, y, static_cast<int16_t>(label * 12800));
    }
  }
  return image;
}

TEST(Segmentation, GrowsZonesPassByPass) {
  const auto check = [](int32_t width, int32_t height, int32_t, uint64_t seed) {
    const int32_t type = seed % 2 == 0 ? IMAGE_U8 : IMAGE_I16;
    const TestImage source = Seeds(type, width, height, seed);
    const auto before = source.Pixels();
    const std::vector<int32_t> expected = ZonesOf(source);
    const TestImage destination(type, 4, 4, static_cast<int32_t>(seed % 3), 5);
    ASSERT_EQ(ZEL_Segmentation(source, destination), 0);
    ExpectZones(destination, expected);
    ASSERT_EQ(source.Pixels(), before);
    ASSERT_EQ(ZEL_Segmentation(source, seed % 4 < 2 ? 0 : ImageRef{source}), 0);
    ExpectZones(source, expected);
  };
  ForAllSizes(check);
  ForLargerSizes(check);
}

TEST(Segmentation, PrefersTheUpperLeftNeighbour) {
  const TestImage image = TestImage::FromRows({"1....", "1...2", "1...2", "....2"}, 1);
  image.Set<uint8_t>(0, 0, 1);
  image.Set<uint8_t>(0, 1, 1);
  image.Set<uint8_t>(0, 2, 1);
  for (int32_t y = 1; y < 4; y++) image.Set<uint8_t>(4, y, 2);
  const std::vector<int32_t> expected = ZonesOf(image);
  ASSERT_EQ(ZEL_Segmentation(image, 0), 0);
  ExpectZones(image, expected);
  EXPECT_EQ(image.Get<uint8_t>(2, 1), 1);
  EXPECT_EQ(image.Get<uint8_t>(2, 2), 1);
}

TEST(Segmentation, FillsTheBorderOfTheSource) {
  const TestImage source = Seeds(IMAGE_U8, 9, 7, 4);
  const TestImage destination(IMAGE_U8, 1, 1);
  ASSERT_EQ(ZEL_Segmentation(source, destination), 0);
  for (int32_t x = 0; x < 9; x++) EXPECT_EQ(source.Get<uint8_t>(x, -1), source.Get<uint8_t>(x, 0));
}

TEST(Segmentation, RefusesOtherTypesAndNoBorder) {
  const TestImage bare(IMAGE_U8, 5, 5, 0);
  const TestImage bytes(IMAGE_U8, 5, 5, 1);
  const TestImage words(IMAGE_I16, 5, 5, 1);
  const TestImage floats(IMAGE_SGL, 5, 5, 1);
  const auto before = bytes.Block();
  EXPECT_EQ(ZEL_Segmentation(UNKNOWN_IMAGE, bytes), -200);
  EXPECT_EQ(ZEL_Segmentation(floats, UNKNOWN_IMAGE), -301);
  EXPECT_EQ(ZEL_Segmentation(bare, UNKNOWN_IMAGE), -309);
  EXPECT_EQ(ZEL_Segmentation(bytes, UNKNOWN_IMAGE), -200);
  EXPECT_EQ(ZEL_Segmentation(bytes, words), -304);
  EXPECT_EQ(ZEL_Segmentation(words, bytes), -304);
  EXPECT_EQ(bytes.Block(), before);
}

// ---- separation

// The largest of the members' pixels; nothing is below 0.
uint8_t DilatedAt(const Bytes& zones, const StructuringElement& element, int32_t x, int32_t y) {
  const bool hexagonal = (element.hexagonal & 0xFFFF) != 0;
  const int32_t q = (element.width - 1) / 2;
  int32_t rows = (element.height - 1) / 2;
  if (hexagonal && rows > element.width) rows = (element.width + 1) / 2;
  uint8_t most = 0;
  for (int32_t r = -rows; r <= rows; r++) {
    const bool odd = hexagonal && r % 2 != 0;
    const int32_t half = hexagonal ? q - std::abs(r) / 2 : q;
    for (int32_t c = -half; c <= half - (odd ? 1 : 0); c++) {
      if (element.elements[(r + (element.height - 1) / 2) * element.width + c + q] == 0) continue;
      most = std::max(most, zones.Nearest(x + c + (odd && y % 2 != 0 ? 1 : 0), y + r));
    }
  }
  return most;
}

Bytes Separated(const Bytes& from, int32_t erosions, const StructuringElement& element) {
  if (element.width * element.height < 3) return from;
  Bytes left = from;
  for (int32_t i = 0; i < std::max(erosions, 1); i++) left = Eroded(left, element);
  const Labelling labels = FloodFill(left, true);
  TestImage seeds(IMAGE_U8, from.width, from.height);
  for (int32_t y = 0; y < from.height; y++) {
    for (int32_t x = 0; x < from.width; x++) {
      const int32_t label = labels.numbers[static_cast<size_t>(y * from.width + x)];
      seeds.Set(x, y, static_cast<uint8_t>(std::min(label, 255)));
    }
  }
  const std::vector<int32_t> grown = ZonesOf(seeds);
  Bytes zones(from.width, from.height);
  for (size_t i = 0; i < grown.size(); i++) zones.pixels[i] = static_cast<uint8_t>(grown[i]);
  Bytes result = from;
  for (int32_t y = 0; y < from.height; y++) {
    for (int32_t x = 0; x < from.width; x++) {
      if (DilatedAt(zones, element, x, y) > zones(x, y)) result(x, y) = 0;
    }
  }
  return result;
}

TEST(Separation, CutsWhereZonesMeet) {
  const auto check = [](int32_t width, int32_t height, int32_t scene, uint64_t seed) {
    const TestImage source =
        SceneImage(seed % 2 == 0 ? 4 : scene, width, height, test::shape::ELEMENT_BORDER, seed);
    const Element element = test::shape::ElementOfTurn(seed / 3);
    const auto erosions = static_cast<int32_t>(seed % 6) - 1;
    ExpectInEveryPlace(
        source, test::shape::ELEMENT_BORDER, Separated(Bytes(source), erosions, element.record),
        [&](ImageRef from, ImageRef to) { return ZEL_Separation(from, to, erosions, element); });
  };
  ForAllSizes(check);
  ForLargerSizes(check);
}

TEST(Separation, PartsTwoDisks) {
  const TestImage image(IMAGE_U8, 60, 30, 2);
  for (int32_t y = 0; y < 30; y++) {
    for (int32_t x = 0; x < 60; x++) {
      const bool first = (x - 18) * (x - 18) + (y - 15) * (y - 15) < 144;
      const bool second = (x - 40) * (x - 40) + (y - 15) * (y - 15) < 144;
      image.Set<uint8_t>(x, y, first || second ? 200 : 0);
    }
  }
  int32_t count = 0;
  const TestImage labels(IMAGE_U8, 1, 1, 2);
  ASSERT_EQ(ZEL_Label(image, labels, 1, &count), 0);
  ASSERT_EQ(count, 1);
  ASSERT_EQ(ZEL_Separation(image, 0, 7, ZEL_Get_MO_STD3X3Ptr()), 0);
  ASSERT_EQ(ZEL_Label(image, labels, 0, &count), 0);
  EXPECT_EQ(count, 2);
  EXPECT_EQ(image.Get<uint8_t>(18, 15), 200);
}

TEST(Separation, RefusesInTheOrderOfItsSteps) {
  const TestImage bytes = SceneImage(4, 9, 9, 3, 5);
  const TestImage narrow = SceneImage(4, 9, 9, 1, 5);
  const TestImage words(IMAGE_I16, 9, 9, 3);
  const auto pixels = bytes.Pixels();
  const auto untouched = words.Block();
  EXPECT_EQ(ZEL_Separation(UNKNOWN_IMAGE, bytes, 1, nullptr), -3009);
  EXPECT_EQ(ZEL_Separation(UNKNOWN_IMAGE, bytes, 1, FullElement(3, 3)), -200);
  EXPECT_EQ(ZEL_Separation(words, UNKNOWN_IMAGE, 1, FullElement(3, 3)), -200);
  EXPECT_EQ(ZEL_Separation(words, words, 1, FullElement(3, 3)), -301);
  EXPECT_EQ(ZEL_Separation(narrow, words, 1, FullElement(5, 5)), -309);
  EXPECT_EQ(ZEL_Separation(narrow, words, 1, FullElement(3, 3)), -309);
  EXPECT_EQ(ZEL_Separation(narrow, words, 1, FullElement(1, 2)), -309);
  EXPECT_EQ(ZEL_Separation(bytes, words, 1, FullElement(3, 3)), -304);
  EXPECT_EQ(bytes.Pixels(), pixels);
  EXPECT_EQ(words.Block(), untouched);
}

// ---- what all of them refuse

struct ShapeCall {
  int32_t (*run)(ImageRef source, ImageRef destination);
  int32_t otherDestination;
};
const ShapeCall SHAPE_CALLS[] = {
    {&ZEL_Danielsson, -301},
    {[](ImageRef source, ImageRef destination) {
       return ZEL_Distance(source, destination, ZEL_Get_MO_STD3X3Ptr());
     },
     -304},
    {[](ImageRef source, ImageRef destination) { return ZEL_Skeleton(source, destination, 1); },
     -301},
    {[](ImageRef source, ImageRef destination) {
       CircleReport* reports = nullptr;
       const int32_t result = ZEL_Circles(source, destination, 0, 99, &reports, nullptr);
       ZEL_free(reports);
       return result;
     },
     -301},
};

TEST(Shapes, RefuseWhatIsNoImageOfTheirType) {
  for (const ShapeCall& call : SHAPE_CALLS) {
    const TestImage source = SceneImage(2, 9, 5, 2, 4);
    const TestImage destination(IMAGE_U8, 4, 4, 1, 5);
    const auto before = destination.Block();
    const auto untouched = source.Block();
    EXPECT_EQ(call.run(UNKNOWN_IMAGE, destination), -200);
    EXPECT_EQ(call.run(0, destination), -200);
    EXPECT_EQ(call.run(source, UNKNOWN_IMAGE), -200);
    for (const int32_t type : {IMAGE_I16, IMAGE_SGL, IMAGE_COMPLEX, IMAGE_RGB, IMAGE_OPAQUE}) {
      const int32_t size = type == IMAGE_OPAQUE ? 0 : 9;
      const TestImage other(type, size, size, 0, 4);
      EXPECT_EQ(call.run(other, UNKNOWN_IMAGE), -301) << type;
      EXPECT_EQ(call.run(source, other), call.otherDestination) << type;
    }
    EXPECT_EQ(destination.Block(), before);
    EXPECT_EQ(source.Block(), untouched);
  }
  const TestImage bare = SceneImage(2, 9, 5, 0, 4);
  const TestImage words(IMAGE_I16, 9, 5, 1, 4);
  EXPECT_EQ(ZEL_Skeleton(words, words, 7), -301);
  EXPECT_EQ(ZEL_Skeleton(bare, UNKNOWN_IMAGE, 1), -309);
  EXPECT_EQ(ZEL_Distance(bare, UNKNOWN_IMAGE, ZEL_Get_MO_STD3X3Ptr()), -309);
  EXPECT_EQ(ZEL_Distance(UNKNOWN_IMAGE, 0, nullptr), -3009);
}

TEST(Shapes, SurviveRefusedMemory) {
  const auto all = [](auto call) {
    for (const bool inPlace : {false, true}) {
      TestImage source;
      TestImage destination;
      test::RefuseEachAllocation(
          [&] {
            source = SceneImage(4, 40, 30, 8, 3);
            destination = TestImage(IMAGE_U8, 0, 0, 0, 3);
          },
          [&] { return call(source, inPlace ? 0 : ImageRef{destination}); });
    }
  };
  for (const ShapeCall& call : SHAPE_CALLS) all(call.run);
  all(&ZEL_Segmentation);
  all([](ImageRef source, ImageRef destination) {
    return ZEL_Separation(source, destination, 2, ZEL_Get_MO_STD5X5Ptr());
  });
}

}  // namespace
