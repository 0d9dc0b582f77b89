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
using test::shape::SceneImage;
using test::shape::UNKNOWN_IMAGE;

constexpr uint16_t FOUR = 0;
constexpr uint16_t EIGHT = 1;
constexpr uint16_t CONNECTIVITIES[] = {FOUR, EIGHT, 512};
constexpr uint16_t KEEP_LARGE = 0;
constexpr uint16_t REMOVE_LARGE = 256;
constexpr float NOT_A_NUMBER = std::numeric_limits<float>::quiet_NaN();
constexpr float ENDLESS = std::numeric_limits<float>::infinity();

// Whether the particle of each label has a pixel on the image's edge.
std::vector<bool> TouchesEdge(const Labelling& labels, int32_t width, int32_t height) {
  std::vector<bool> touches(static_cast<size_t>(labels.count) + 1);
  for (int32_t y = 0; y < height; y++) {
    for (int32_t x = 0; x < width; x++) {
      const bool onEdge = x == 0 || y == 0 || x == width - 1 || y == height - 1;
      if (onEdge)
        touches[static_cast<size_t>(labels.numbers[static_cast<size_t>(y * width + x)])] = true;
    }
  }
  return touches;
}

// rule(label, pixel) for each pixel.
template <class Rule>
Bytes ByLabel(const Bytes& from, const Labelling& labels, Rule rule) {
  Bytes to(from.width, from.height);
  for (size_t i = 0; i < from.pixels.size(); i++) {
    to.pixels[i] = rule(static_cast<size_t>(labels.numbers[i]), from.pixels[i]);
  }
  return to;
}

Bytes HolesFilled(const Bytes& from, bool eight) {
  Bytes background(from.width, from.height);
  for (size_t i = 0; i < from.pixels.size(); i++) background.pixels[i] = from.pixels[i] == 0;
  const Labelling labels = FloodFill(background, !eight);
  const std::vector<bool> open = TouchesEdge(labels, from.width, from.height);
  return ByLabel(from, labels, [&](size_t label, uint8_t pixel) -> uint8_t {
    const bool hole = label != 0 && !open[label];
    return (pixel | (hole ? 1 : 0)) & 1;
  });
}

Bytes BorderRejected(const TestImage& source, bool eight) {
  const Bytes from(source);
  const Labelling labels = FloodFill(Bytes(source), eight);
  const std::vector<bool> touches = TouchesEdge(labels, from.width, from.height);
  return ByLabel(from, labels,
                 [&](size_t label, uint8_t pixel) { return touches[label] ? uint8_t{0} : pixel; });
}

Bytes Passed(const TestImage& source, const StructuringElement& element, bool eight,
             bool removeLarge, int32_t erosions) {
  const Bytes from(source);
  if (test::shape::MembersOf(element) < 3) return from;
  Bytes left = from;
  for (int32_t i = 0; i < std::max(erosions, 1); i++) left = Eroded(left, element);
  const Labelling labels = FloodFill(Bytes(source), eight);
  std::vector<bool> survives(static_cast<size_t>(labels.count) + 1);
  for (size_t i = 0; i < from.pixels.size(); i++) {
    if (left.pixels[i] != 0) survives[static_cast<size_t>(labels.numbers[i])] = true;
  }
  return ByLabel(from, labels, [&](size_t label, uint8_t pixel) {
    return survives[label] != removeLarge ? pixel : uint8_t{0};
  });
}

TEST(FillHole, FillsBackgroundThatTheEdgeDoesNotReach) {
  const auto check = [](int32_t width, int32_t height, int32_t scene, uint64_t seed) {
    const TestImage source = SceneImage(scene, width, height, static_cast<int32_t>(seed % 3), seed);
    for (const uint16_t connectivity : CONNECTIVITIES) {
      ExpectInEveryPlace(
          source, static_cast<int32_t>(seed % 3), HolesFilled(Bytes(source), connectivity != 0),
          [&](ImageRef from, ImageRef to) { return ZEL_FillHole(from, to, connectivity); });
    }
  };
  ForAllSizes(check);
  ForLargerSizes(check);
}

TEST(FillHole, LeavesAHoleThatTouchesTheEdge) {
  const TestImage image = TestImage::FromRows({
      "##.##....",  //
      "#...#.###",
      "#####.#.#",
      "......###",
  });
  ASSERT_EQ(ZEL_FillHole(image, 0, CONNECTIVITY_8), 0);
  EXPECT_EQ(image.Get<uint8_t>(2, 1), 0);
  EXPECT_EQ(image.Get<uint8_t>(7, 2), 1);
  EXPECT_EQ(image.Get<uint8_t>(6, 2), 1);  // 255 before
}

TEST(FillHole, LooksThroughCornersAsTheConnectivitySays) {
  const std::vector<std::string> ring = {".....", "..#..", ".#.#.", "..#..", "....."};
  const TestImage closed = TestImage::FromRows(ring);
  ASSERT_EQ(ZEL_FillHole(closed, 0, CONNECTIVITY_8), 0);
  EXPECT_EQ(closed.Get<uint8_t>(2, 2), 1);
  const TestImage leaking = TestImage::FromRows(ring);
  ASSERT_EQ(ZEL_FillHole(leaking, 0, CONNECTIVITY_4), 0);
  EXPECT_EQ(leaking.Get<uint8_t>(2, 2), 0);
}

TEST(FillHole, LeavesBordersAlone) {
  const TestImage source = SceneImage(2, 20, 10, 3, 5);
  const TestImage destination(IMAGE_U8, 20, 10, 2, 6);
  const auto before = source.Block();
  const auto around = destination.Surroundings();
  ASSERT_EQ(ZEL_FillHole(source, destination, 1), 0);
  EXPECT_EQ(source.Block(), before);
  EXPECT_EQ(destination.Surroundings(), around);
}

TEST(RejectBorder, RemovesWholeParticlesThatTouchTheEdge) {
  const auto check = [](int32_t width, int32_t height, int32_t scene, uint64_t seed) {
    const auto border = static_cast<int32_t>(seed % 3);
    const TestImage source = SceneImage(scene, width, height, border, seed);
    for (const uint16_t connectivity : CONNECTIVITIES) {
      ExpectInEveryPlace(
          source, border, BorderRejected(source, connectivity != 0),
          [&](ImageRef from, ImageRef to) { return ZEL_RejectBorder(from, to, connectivity); });
    }
  };
  ForAllSizes(check);
  ForLargerSizes(check);
}

// A way of one pixel's width up and down all columns of an image, which leaves by the first one.
TestImage WindingImage(int32_t width, int32_t height, bool leaves) {
  TestImage image(IMAGE_U8, width, height, 2, 1);
  for (int32_t y = 0; y < height; y++) {
    for (int32_t x = 0; x < width; x++) {
      const bool onEdge = x == 0 || y == 0 || x == width - 1 || y == height - 1;
      const bool isTurn = x % 4 == 0 ? y == 1 : y == height - 2;
      const bool isSet = onEdge ? leaves && x == 1 : x % 2 == 1 || isTurn;
      image.Set(x, y, static_cast<uint8_t>(isSet ? 255 : 0));
    }
  }
  return image;
}

TEST(RejectBorder, FollowsAWayThatTurnsOften) {
  for (const bool leaves : {true, false}) {
    for (const uint16_t connectivity : {FOUR, EIGHT}) {
      const TestImage source = WindingImage(150, 70, leaves);
      const Bytes expected = BorderRejected(source, connectivity != 0);
      ASSERT_EQ(ZEL_RejectBorder(source, 0, connectivity), 0);
      ExpectPixels(source, expected);
      EXPECT_EQ(source.Get<uint8_t>(75, 35), leaves ? 0 : 255);
    }
  }
}

TEST(RejectBorder, ClearsTheBorderOfTheSource) {
  const TestImage source = SceneImage(5, 9, 7, 3, 5);
  const TestImage destination(IMAGE_U8, 9, 7, 3, 6);
  const auto around = destination.Surroundings();
  ASSERT_EQ(ZEL_RejectBorder(source, destination, 1), 0);
  for (int32_t x = -3; x < 12; x++) {
    EXPECT_EQ(source.Get<uint8_t>(x, -3), 0);
    EXPECT_EQ(source.Get<uint8_t>(x, 7), 0);
  }
  EXPECT_EQ(source.Get<uint8_t>(-1, 3), 0);
  EXPECT_EQ(destination.Surroundings(), around);
}

TEST(LowHighPass, KeepsParticlesByWhatErosionsLeave) {
  const auto check = [](int32_t width, int32_t height, int32_t scene, uint64_t seed) {
    const TestImage source = SceneImage(scene, width, height, test::shape::ELEMENT_BORDER, seed);
    const Element element = test::shape::ElementOfTurn(seed);
    const auto erosions = static_cast<int32_t>(seed % 5) - 1;
    for (const uint16_t connectivity : {FOUR, EIGHT}) {
      for (const uint16_t removeLarge : {KEEP_LARGE, REMOVE_LARGE}) {
        ExpectInEveryPlace(
            source, test::shape::ELEMENT_BORDER,
            Passed(source, element.record, connectivity != 0, removeLarge != 0, erosions),
            [&](ImageRef from, ImageRef to) {
              return ZEL_LowHighPass(from, to, connectivity, removeLarge, erosions, element);
            });
      }
    }
  };
  ForAllSizes(check);
  ForLargerSizes(check);
}

// Elements wider than a word of pixels, and with any number of members side by side.
TEST(LowHighPass, TakesWideElements) {
  for (int32_t side = 1; side <= 160; side = side * 5 / 4 + 1) {
    for (const bool wide : {false, true}) {
      const Element element = wide ? FullElement(side, 3) : FullElement(3, side);
      const TestImage source = SceneImage(4, 230, 60, side / 2 + 1, static_cast<uint64_t>(side));
      ExpectInEveryPlace(
          source, side / 2 + 1, Passed(source, element.record, true, false, 1),
          [&](ImageRef from, ImageRef to) { return ZEL_LowHighPass(from, to, 1, 0, 1, element); });
    }
  }
}

TEST(LowHighPass, EndsAfterAnyNumberOfErosions) {
  const TestImage source = SceneImage(3, 30, 20, 1, 5);
  for (int32_t pattern = 0; pattern < 512; pattern += 3) {
    std::vector<int32_t> members;
    for (int32_t i = 0; i < 9; i++) members.push_back(pattern >> i & 1);
    const Element element(3, 3, members, pattern % 2);
    // Odd and even numbers from where nothing new comes up in an image of that size.
    for (const int32_t more : {0, 1}) {
      const TestImage from = SceneImage(3, 30, 20, 1, 5);
      const Bytes expected = Passed(source, element.record, true, false, 60 + more);
      ASSERT_EQ(ZEL_LowHighPass(from, 0, 1, 0, 2147483646 + more, element), 0);
      ExpectPixels(from, expected);
    }
  }
}

TEST(LowHighPass, CopiesForAnElementOfTwoMembers) {
  const TestImage source = SceneImage(2, 30, 20, 1, 5);
  const auto before = source.Block();
  const Element pair(3, 3, {0, 0, 1, 0, 0, 0, 1, 0, 0});
  const TestImage destination(IMAGE_U8, 3, 3);
  ASSERT_EQ(ZEL_LowHighPass(source, destination, 1, 1, 3, pair), 0);
  EXPECT_EQ(destination.Pixels(), source.Pixels());
  EXPECT_EQ(source.Block(), before);
  const StructuringElement nothing{1, 2, nullptr, 0};
  const TestImage bare = SceneImage(2, 30, 20, 0, 5);
  EXPECT_EQ(ZEL_LowHighPass(bare, destination, 1, 0, 3, &nothing), 0);
  EXPECT_EQ(destination.Pixels(), bare.Pixels());
}

TEST(LowHighPass, NeedsABorder) {
  const TestImage bare = SceneImage(2, 30, 20, 0, 5);
  const TestImage narrow = SceneImage(2, 30, 20, 2, 5);
  const auto before = narrow.Block();
  EXPECT_EQ(ZEL_LowHighPass(bare, 0, 1, 0, 1, FullElement(2, 2)), -309);
  EXPECT_EQ(ZEL_LowHighPass(narrow, UNKNOWN_IMAGE, 1, 0, 1, FullElement(7, 1)), -309);
  EXPECT_EQ(narrow.Block(), before);
}

TEST(LowHighPass, RefusesAMissingElement) {
  const TestImage source = SceneImage(2, 30, 20, 2, 5);
  const StructuringElement empty{3, 1, nullptr, 0};
  EXPECT_EQ(ZEL_LowHighPass(UNKNOWN_IMAGE, 0, 1, 0, 1, nullptr), -3009);
  EXPECT_EQ(ZEL_LowHighPass(UNKNOWN_IMAGE, 0, 1, 0, 1, &empty), -3009);
}

// What a fill from a seed may enter, for pixels as numbers.
Bytes WandSelection(const TestImage& image, int32_t x, int32_t y, float tolerance, bool eight,
                    uint8_t value) {
  const ImageInfo info = image.Info();
  Bytes selection(info.width, info.height);
  if (info.width == 0 || value == 0) return selection;
  x = std::clamp(x, 0, info.width - 1);
  y = std::clamp(y, 0, info.height - 1);
  const auto seed = static_cast<float>(PixelOf(image, x, y));
  double low = static_cast<double>(seed - tolerance);
  double high = static_cast<double>(seed + tolerance);
  if (info.type != IMAGE_SGL) {
    const bool bytes = info.type == IMAGE_U8;
    low = std::trunc(std::max(low, bytes ? 0.0 : -32768.0));
    high = std::trunc(std::min(high, bytes ? 255.0 : 32767.0));
  }
  const bool nothing = std::isnan(tolerance) || tolerance < 0;
  Bytes open(info.width, info.height);
  for (int32_t row = 0; row < info.height; row++) {
    for (int32_t column = 0; column < info.width; column++) {
      const double pixel = PixelOf(image, column, row);
      open(column, row) = !nothing && pixel >= low && pixel <= high;
    }
  }
  const Labelling labels = FloodFill(open, eight);
  const int32_t chosen = labels.numbers[static_cast<size_t>(y * info.width + x)];
  for (size_t i = 0; i < selection.pixels.size(); i++) {
    if (chosen != 0 && labels.numbers[i] == chosen) selection.pixels[i] = value;
  }
  return selection;
}

// Few levels, so that regions have some size.
TestImage Levels(int32_t type, int32_t width, int32_t height, uint64_t seed) {
  TestImage image(type, width, height, static_cast<int32_t>(seed % 2), seed);
  test::Random random(seed);
  for (int32_t y = 0; y < height; y++) {
    for (int32_t x = 0; x < width; x++) {
      const int32_t level = random.Between(0, 3);
      if (type == IMAGE_U8) image.Set(x, y, static_cast<uint8_t>(level * 85));
      if (type == IMAGE_I16) image.Set(x, y, static_cast<int16_t>(level * 21845 - 32768));
      if (type == IMAGE_SGL) {
        const float values[] = {-1.5f, 0.0f, 1.25f, 3.0f};
        image.Set(x, y, random.Between(0, 30) == 0 ? NOT_A_NUMBER : values[level]);
      }
    }
  }
  return image;
}

TEST(MagicWand, SelectsTheRegionAroundAPixel) {
  const auto check = [](int32_t width, int32_t height, int32_t, uint64_t seed) {
    test::Random random(seed);
    for (const int32_t type : {IMAGE_U8, IMAGE_I16, IMAGE_SGL}) {
      const TestImage source = Levels(type, width, height, seed);
      const int32_t x = random.Between(-3, width + 3);
      const int32_t y = random.Between(-3, height + 3);
      const float step = type == IMAGE_U8 ? 85.0f : type == IMAGE_I16 ? 21845.0f : 1.5f;
      for (const float tolerance : {0.0f, step, step * 1.01f, step * 2, ENDLESS}) {
        const bool eight = random.Between(0, 1) != 0;
        const TestImage destination(IMAGE_U8, 2, 7, 1);
        ASSERT_EQ(ZEL_MagicWand(source, destination, x, y, tolerance, eight, 455.9f), 0);
        ExpectPixels(destination, WandSelection(source, x, y, tolerance, eight, 199));
      }
    }
  };
  ForAllSizes(check);
  ForLargerSizes(check);
}

TEST(MagicWand, ReplacesAnImageOfBytes) {
  for (const bool byReference : {false, true}) {
    const TestImage image = Levels(IMAGE_U8, 30, 20, 3);
    const Bytes expected = WandSelection(image, 4, 5, 85, true, 3);
    ASSERT_EQ(ZEL_MagicWand(image, byReference ? ImageRef{image} : 0, 4, 5, 85, 1, 3), 0);
    ExpectPixels(image, expected);
  }
}

TEST(MagicWand, SelectsNothingWithAToleranceBelowZeroOrAValueOfZero) {
  for (const float tolerance : {-0.5f, -ENDLESS, NOT_A_NUMBER}) {
    const TestImage image(IMAGE_U8, 4, 4);
    ZEL_MagicWand(image, 0, 0, 0, tolerance, 1, 7);
    EXPECT_EQ(image.Pixels(), std::vector<uint8_t>(16)) << tolerance;
  }
  for (const float value : {0.0f, 256.0f, 0.9f, NOT_A_NUMBER}) {
    const TestImage image(IMAGE_U8, 4, 4);
    ZEL_MagicWand(image, 0, 0, 0, 255, 1, value);
    EXPECT_EQ(image.Pixels(), std::vector<uint8_t>(16)) << value;
  }
}

TEST(MagicWand, CutsTheEndsOfTheRangeTowardZero) {
  const TestImage image(IMAGE_I16, 6, 1);
  const int16_t pixels[] = {7, 8, 10, 12, -8, -7};
  for (int32_t x = 0; x < 6; x++) image.Set(x, 0, pixels[x]);
  const TestImage destination(IMAGE_U8, 0, 0);
  ASSERT_EQ(ZEL_MagicWand(image, destination, 2, 0, 2.5f, 0, 1), 0);
  EXPECT_EQ(destination.Pixels(), (std::vector<uint8_t>{1, 1, 1, 1, 0, 0}));
  ASSERT_EQ(ZEL_MagicWand(image, destination, 4, 0, 0.5f, 0, 1), 0);  // -8.5 to -7.5
  EXPECT_EQ(destination.Pixels(), (std::vector<uint8_t>{0, 0, 0, 0, 1, 1}));
}

TEST(MagicWand, NeedsADestinationOfBytes) {
  const TestImage words(IMAGE_I16, 4, 4);
  const TestImage colours(IMAGE_RGB, 4, 4);
  EXPECT_EQ(ZEL_MagicWand(UNKNOWN_IMAGE, words, 0, 0, 1, 1, 1), -200);
  EXPECT_EQ(ZEL_MagicWand(colours, UNKNOWN_IMAGE, 0, 0, 1, 1, 1), -301);
  EXPECT_EQ(ZEL_MagicWand(words, UNKNOWN_IMAGE, 0, 0, 1, 1, 1), -200);
  EXPECT_EQ(ZEL_MagicWand(words, 0, 0, 0, 1, 1, 1), -301);
  EXPECT_EQ(ZEL_MagicWand(words, words, 0, 0, 1, 1, 1), -301);
}

// ---- hulls

// From the upper to the lower end, from the left one where it is level.
std::vector<Point> EdgeOf(Point a, Point b) {
  return b.y < a.y || (b.y == a.y && b.x < a.x) ? LineOf(b, a) : LineOf(a, b);
}

int64_t SideOf(Point a, Point b, Point c) {
  return int64_t{b.x - a.x} * (c.y - a.y) - int64_t{b.y - a.y} * (c.x - a.x);
}

bool IsBetween(Point a, Point b, Point c) {
  return std::min(a.x, b.x) <= c.x && c.x <= std::max(a.x, b.x) && std::min(a.y, b.y) <= c.y &&
         c.y <= std::max(a.y, b.y);
}

// Two points are neighbours on the hull when all others lie on one side, or between them.
bool IsHullEdge(const std::vector<Point>& points, Point a, Point b) {
  bool left = false;
  bool right = false;
  for (const Point& c : points) {
    const int64_t side = SideOf(a, b, c);
    left |= side < 0;
    right |= side > 0;
    if (side == 0 && !IsBetween(a, b, c)) return false;
  }
  return !(left && right);
}

void HullDraw(const std::vector<Point>& points, int32_t label, std::vector<int32_t>* to,
              int32_t width, int32_t height) {
  std::vector<int32_t> least(static_cast<size_t>(height), 1 << 30);
  std::vector<int32_t> most(static_cast<size_t>(height), -1);
  const auto include = [&](Point point) {
    const auto y = static_cast<size_t>(point.y);
    least[y] = std::min(least[y], point.x);
    most[y] = std::max(most[y], point.x);
  };
  for (size_t i = 0; i < points.size(); i++) {
    for (size_t j = i; j < points.size(); j++) {
      if (!IsHullEdge(points, points[i], points[j])) continue;
      for (const Point& point : EdgeOf(points[i], points[j])) include(point);
    }
  }
  for (int32_t y = 0; y < height; y++) {
    for (int32_t x = least[static_cast<size_t>(y)]; x <= most[static_cast<size_t>(y)]; x++) {
      (*to)[static_cast<size_t>(y * width + x)] = label;
    }
  }
}

int32_t LabelAt(const TestImage& image, int32_t x, int32_t y) {
  return image.Info().type == IMAGE_U8 ? int32_t{image.Get<uint8_t>(x, y)}
                                       : int32_t{image.Get<uint16_t>(x, y)};
}

std::vector<int32_t> HullsOf(const TestImage& image) {
  const ImageInfo info = image.Info();
  std::vector<int32_t> hulls(static_cast<size_t>(info.width) * static_cast<size_t>(info.height));
  std::vector<int32_t> labels;
  for (int32_t y = 0; y < info.height; y++) {
    for (int32_t x = 0; x < info.width; x++) labels.push_back(LabelAt(image, x, y));
  }
  std::sort(labels.begin(), labels.end());
  labels.erase(std::unique(labels.begin(), labels.end()), labels.end());
  for (const int32_t label : labels) {
    if (label == 0) continue;
    std::vector<Point> points;
    for (int32_t y = 0; y < info.height; y++) {
      int32_t first = -1;
      int32_t last = -1;
      for (int32_t x = 0; x < info.width; x++) {
        if (LabelAt(image, x, y) != label) continue;
        if (first < 0) first = x;
        last = x;
      }
      if (first >= 0) points.push_back({first, y});
      if (last > first) points.push_back({last, y});
    }
    HullDraw(points, label, &hulls, info.width, info.height);
  }
  return hulls;
}

void ExpectHulls(const TestImage& image, const std::vector<int32_t>& expected) {
  const ImageInfo info = image.Info();
  ASSERT_EQ(expected.size(), static_cast<size_t>(info.width) * static_cast<size_t>(info.height));
  for (int32_t y = 0; y < info.height; y++) {
    for (int32_t x = 0; x < info.width; x++) {
      ASSERT_EQ(LabelAt(image, x, y), expected[static_cast<size_t>(y * info.width + x)])
          << "at " << x << ", " << y;
    }
  }
}

// Some labels thrown about, or each square of pixels one.
TestImage Labelled(int32_t type, int32_t width, int32_t height, uint64_t seed) {
  TestImage image(type, width, height, static_cast<int32_t>(seed % 3), seed);
  test::Random random(seed);
  const int32_t sparse = random.Between(1, 40);
  for (int32_t y = 0; y < height; y++) {
    for (int32_t x = 0; x < width; x++) {
      int32_t label = random.Between(0, 99) < sparse ? random.Between(0, 4) * 63 : 0;
      if (seed % 3 == 0) label = (x / 9 + 5 * (y / 9)) % 250;
      if (type == IMAGE_U8) image.Set(x, y, static_cast<uint8_t>(label));
      if (type == IMAGE_I16) image.Set(x, y, static_cast<uint16_t>(label * 257));
    }
  }
  return image;
}

TEST(Convex, FillsTheHullOfEachLabel) {
  const auto check = [](int32_t width, int32_t height, int32_t, uint64_t seed) {
    const int32_t type = seed % 2 == 0 ? IMAGE_U8 : IMAGE_I16;
    const TestImage source = Labelled(type, width, height, seed);
    const auto before = source.Block();
    const std::vector<int32_t> expected = HullsOf(source);
    const TestImage destination(type, 4, 4, 1, 5);
    ASSERT_EQ(ZEL_Convex(source, destination), 0);
    ExpectHulls(destination, expected);
    ASSERT_EQ(source.Block(), before);
    ASSERT_EQ(ZEL_Convex(source, seed % 4 < 2 ? 0 : ImageRef{source}), 0);
    ExpectHulls(source, expected);
  };
  ForAllSizes(check);
  check(150, 60, 0, 2);
  check(200, 40, 0, 7);
}

TEST(Convex, OfAnLIsATriangle) {
  const TestImage image = TestImage::FromRows({"#....", "#....", "#....", "#....", "#####"}, 2, 9);
  ASSERT_EQ(ZEL_Convex(image, 0), 0);
  const std::vector<std::string> expected = {"9....", "99...", "999..", "9999.", "99999"};
  for (int32_t y = 0; y < 5; y++) {
    for (int32_t x = 0; x < 5; x++) {
      const bool set = expected[static_cast<size_t>(y)][static_cast<size_t>(x)] != '.';
      EXPECT_EQ(image.Get<uint8_t>(x, y), set ? 9 : 0) << x << ", " << y;
    }
  }
}

// ---- what all of them refuse

using Filter = int32_t (*)(ImageRef source, ImageRef destination);
constexpr Filter BYTE_FILTERS[] = {
    [](ImageRef source, ImageRef destination) { return ZEL_FillHole(source, destination, 1); },
    [](ImageRef source, ImageRef destination) { return ZEL_RejectBorder(source, destination, 1); },
    [](ImageRef source, ImageRef destination) {
      return ZEL_LowHighPass(source, destination, 1, 0, 2, ZEL_Get_MO_STD5X5Ptr());
    },
};
constexpr Filter LABEL_FILTERS[] = {
    &ZEL_Convex,
    [](ImageRef source, ImageRef destination) {
      return ZEL_MagicWand(source, destination, 10, 10, 5, 1, 1);
    },
};

TEST(ParticleFilters, RefuseWhatIsNoImageOfTheirType) {
  for (const Filter filter : BYTE_FILTERS) {
    const TestImage source = SceneImage(2, 9, 5, 2, 4);
    const TestImage destination(IMAGE_U8, 4, 4, 1, 5);
    const auto pixels = source.Pixels();
    const auto before = destination.Block();
    EXPECT_EQ(filter(UNKNOWN_IMAGE, destination), -200);
    EXPECT_EQ(filter(0, destination), -200);
    EXPECT_EQ(filter(source, UNKNOWN_IMAGE), -200);
    for (const int32_t type : {IMAGE_I16, IMAGE_SGL, IMAGE_COMPLEX, IMAGE_RGB, IMAGE_OPAQUE}) {
      const int32_t size = type == IMAGE_OPAQUE ? 0 : 9;
      const TestImage other(type, size, size, 0, 4);
      EXPECT_EQ(filter(other, UNKNOWN_IMAGE), -301) << type;
      EXPECT_EQ(filter(source, other), -304) << type;
    }
    EXPECT_EQ(destination.Block(), before);
    EXPECT_EQ(source.Pixels(), pixels);
  }
  const TestImage bytes(IMAGE_U8, 4, 4);
  const TestImage words(IMAGE_I16, 4, 4);
  const TestImage floats(IMAGE_SGL, 4, 4);
  EXPECT_EQ(ZEL_Convex(floats, UNKNOWN_IMAGE), -301);
  EXPECT_EQ(ZEL_Convex(UNKNOWN_IMAGE, bytes), -200);
  EXPECT_EQ(ZEL_Convex(bytes, UNKNOWN_IMAGE), -200);
  EXPECT_EQ(ZEL_Convex(bytes, words), -304);
  EXPECT_EQ(ZEL_Convex(words, bytes), -304);
}

TEST(ParticleFilters, TakeCalibrationAndOffset) {
  for (const Filter filter : BYTE_FILTERS) {
    const TestImage source = SceneImage(2, 9, 5, 2, 4);
    ASSERT_EQ(ZEL_SetImageCalibration(source, 3, 0.5f, 0.25f), 0);
    ASSERT_EQ(ZEL_SetImageOffset(source, 7, -8), 0);
    const TestImage destination(IMAGE_U8, 4, 4, 1, 5);
    ASSERT_EQ(filter(source, destination), 0);
    const ImageInfo info = destination.Info();
    EXPECT_EQ(info.xStep, 0.5f);
    EXPECT_EQ(info.offsetX, 7);
    EXPECT_EQ(info.offsetY, -8);
  }
}

TEST(ParticleFilters, SurviveRefusedMemory) {
  const auto all = [&](const Filter filter) {
    for (const bool inPlace : {false, true}) {
      TestImage source;
      TestImage destination;
      test::RefuseEachAllocation(
          [&] {
            source = SceneImage(2, 40, 30, 8, 3);
            destination = TestImage(IMAGE_U8, 0, 0, 0, 3);
          },
          [&] { return filter(source, inPlace ? 0 : ImageRef{destination}); });
    }
  };
  for (const Filter filter : BYTE_FILTERS) all(filter);
  for (const Filter filter : LABEL_FILTERS) all(filter);
}

}  // namespace
