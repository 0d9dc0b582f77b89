#include <cstring>

#include "dials/displays_test.h"
#include "tests/support/refused_memory.h"

namespace {

using test::Block;
using test::DisplayLook;
using test::PaintedDisplay;
using test::RegionRecord;
using test::TestImage;

constexpr float THRESHOLD = 10;

struct Reading {
  int32_t result = 0;
  std::string text = "unwritten";
  double value = -1;
  std::string segments = "unwritten";
  int32_t count = -1;
};

std::string Digits(const uint8_t* states, int32_t count) {
  std::string text;
  for (int32_t i = 0; i < count; i++) text += static_cast<char>('0' + states[i]);
  return text;
}

struct Options {
  bool isLight = false;
  float threshold = THRESHOLD;
  bool sign = false;
  bool point = false;
};

Options OptionsFor(const DisplayLook& look, bool sign = false, bool point = false) {
  return {look.isLight(), look.threshold, sign, point};
}

Reading ReadDisplay(ImageRef image, const RoiDescriptor* roi, const Options& options) {
  Reading reading;
  Block<char> text;
  Block<uint8_t> segments;
  reading.result =
      ZEL_ReadLCDDisplay(image, roi, options.isLight, options.threshold, options.sign,
                         options.point, &text.data, &reading.value, &segments.data, &reading.count);
  if (text.data) reading.text = text.data;
  if (segments.data) reading.segments = Digits(segments.data, 7 * reading.count);
  return reading;
}

Reading ReadDigit(ImageRef image, const RoiDescriptor* roi, const Options& options) {
  Reading reading;
  Block<char> text;
  DigitSegments segments{-1, {9, 9, 9, 9, 9, 9, 9}};
  reading.result = ZEL_ReadSingleDigit(image, roi, options.isLight, options.threshold,
                                       options.point, &text.data, &reading.value, &segments);
  if (text.data) reading.text = text.data;
  reading.count = segments.count;
  if (segments.count == 1) reading.segments = Digits(segments.states, 7);
  return reading;
}

Reading ReadSegments(const std::string& segments) {
  const PaintedDisplay display = PaintedDisplay::OfSegments({}, segments);
  return ReadDigit(display.ToImage(), RegionRecord({display.RectangleOf(0)}), {});
}

TEST(ReadSingleDigit, NamesEveryDigit) {
  for (char digit = '0'; digit <= '9'; digit++) {
    const Reading reading = ReadSegments(test::SegmentsOf(digit));
    EXPECT_EQ(reading.result, 0);
    EXPECT_EQ(reading.text, std::string(1, digit));
    EXPECT_EQ(reading.value, digit - '0');
    EXPECT_EQ(reading.segments, test::SegmentsOf(digit));
    EXPECT_EQ(reading.count, 1);
  }
}

// The nearest one by differing segments, the lowest of several, over all 128 patterns.
TEST(ReadSingleDigit, NamesTheNearestDigitOfOtherPatternsWith3041) {
  for (int pattern = 1; pattern < 128; pattern++) {
    std::string segments;
    for (int i = 0; i < 7; i++) segments += static_cast<char>('0' + (pattern >> i & 1));
    int nearest = -1;
    int fewest = 8;
    for (int digit = 0; digit < 10; digit++) {
      const std::string whole = test::SegmentsOf(static_cast<char>('0' + digit));
      int differing = 0;
      for (size_t i = 0; i < 7; i++) differing += whole[i] != segments[i];
      if (differing < fewest) {
        fewest = differing;
        nearest = digit;
      }
    }
    const Reading reading = ReadSegments(segments);
    EXPECT_EQ(reading.result, fewest == 0 ? 0 : -3041) << segments;
    EXPECT_EQ(reading.segments, segments);
    EXPECT_EQ(reading.value, nearest) << segments;
    EXPECT_EQ(reading.text, std::to_string(nearest));
  }
}

TEST(ReadSingleDigit, BetweenOneAndFourTakesOne) {
  const Reading reading = ReadSegments("0110001");  // upper right, lower right, middle
  EXPECT_EQ(reading.result, -3041);
  EXPECT_EQ(reading.text, "1");
  EXPECT_EQ(reading.value, 1);
}

TEST(ReadSingleDigit, WithoutASegmentGives3040AndTheSegments) {
  const Reading reading = ReadSegments("0000000");
  EXPECT_EQ(reading.result, -3040);
  EXPECT_EQ(reading.segments, "0000000");
  EXPECT_EQ(reading.count, 1);
  EXPECT_EQ(reading.value, -1);
  EXPECT_EQ(reading.text, "unwritten");
}

// Rows 5, 10 and column 5 of a digit from (0, 0) to (10, 15); all else is 100.
class Lines {
 public:
  Lines() : image_(IMAGE_SGL, 11, 16) {
    for (int32_t y = 0; y < 16; y++) {
      for (int32_t x = 0; x < 11; x++) Set(x, y, 100);
    }
  }
  void Set(int32_t x, int32_t y, float level) { image_.Set(x, y, level); }
  Reading Read(const Options& options = {}) const {
    return ReadDigit(image_, RegionRecord({{ROI_RECT, {0, 0, 10, 15}}}), options);
  }

 private:
  TestImage image_;
};

TEST(ReadSingleDigit, HasContrastWhereTheDeviationIsAboveTheThreshold) {
  Lines lines;
  lines.Set(2, 5, 10);
  // Smoothed over 3: three samples of 70, eight of 100.
  const double mean = (3 * 70.0 + 8 * 100.0) / 11;
  const double deviation = std::sqrt((3 * 4900.0 + 8 * 10000.0) / 11 - mean * mean);
  const auto just = static_cast<float>(deviation);
  EXPECT_EQ(lines.Read({.threshold = std::nextafter(just, 0.0f)}).segments, "0000010");
  EXPECT_EQ(lines.Read({.threshold = std::nextafter(just, 99.0f)}).result, -3040);
  EXPECT_EQ(lines.Read({.threshold = 1e30f}).segments, "0000000");
  EXPECT_EQ(lines.Read({.threshold = NAN}).result, -3040);
  EXPECT_EQ(lines.Read({.threshold = INFINITY}).result, -3040);
}

TEST(ReadSingleDigit, WithADeviationOfExactlyTheThresholdHasNoContrast) {
  Lines flat;
  EXPECT_EQ(flat.Read({.threshold = 0.0f}).result, -3040);
}

TEST(ReadSingleDigit, BelowAThresholdOf0EveryLineHasContrast) {
  Lines flat;  // extremes of 100, and not a sample beyond
  EXPECT_EQ(flat.Read({.threshold = -1.0f}).result, -3040);
  for (int32_t y = 0; y < 16; y++) {
    for (int32_t x = 0; x < 11; x++) flat.Set(x, y, 100.5f);
  }
  // The level is of whole numbers: every sample is above 100.
  EXPECT_EQ(flat.Read({.isLight = true, .threshold = -1.0f}).segments, "1111111");
  EXPECT_EQ(flat.Read({.isLight = false, .threshold = -1.0f}).segments, "0000000");
  for (int32_t y = 0; y < 16; y++) {
    for (int32_t x = 0; x < 11; x++) flat.Set(x, y, -100.0f);
  }
  // The largest sample begins at 0: half way is -50.
  EXPECT_EQ(flat.Read({.isLight = false, .threshold = -1.0f}).segments, "1111111");
  for (int32_t y = 0; y < 16; y++) {
    for (int32_t x = 0; x < 11; x++) flat.Set(x, y, 50000.0f);
  }
  // The smallest begins at 33000: half way is 41500.
  EXPECT_EQ(flat.Read({.isLight = true, .threshold = -1.0f}).segments, "1111111");
}

TEST(ReadSingleDigit, SmoothsWithTheSamplesThatThereAreAtTheEnds) {
  Lines lines;
  // Smoothed (40, 60, 80, 100, ..): the level is 70.
  lines.Set(0, 5, 20);
  lines.Set(1, 5, 60);
  EXPECT_EQ(lines.Read({.threshold = 5}).segments, "0000010");
  // The mean of two at the end is 60, of three in its place would be 73.
  Lines ends;
  ends.Set(10, 10, 20);
  ends.Set(2, 10, 20);
  // (.., 73.3, 73.3, 73.3, .., 73.3, 60): the level is 80, so all five are on.
  EXPECT_EQ(ends.Read({.threshold = 5}).segments, "0010100");
}

TEST(ReadSingleDigit, SplitsItsLinesInHalvesAndThirds) {
  // A point that is on after smoothing, at place i of 11 or 16.
  const auto across = [](int32_t x, int32_t y) {
    Lines lines;
    lines.Set(x, y, 10);
    lines.Set(x - 1, y, 130);
    lines.Set(x + 1, y, 130);
    return lines.Read({.threshold = 3}).segments;
  };
  EXPECT_EQ(across(3, 5), "0000010");
  EXPECT_EQ(across(7, 5), "0100000");
  EXPECT_EQ(across(3, 10), "0000100");
  EXPECT_EQ(across(7, 10), "0010000");
  const auto down = [](int32_t y) {
    Lines lines;
    for (int32_t row = y - 1; row <= y + 1; row++) lines.Set(5, row, 70);
    return lines.Read({.threshold = 3}).segments;
  };
  EXPECT_EQ(down(3), "1000000");  // 3 of 16 samples: the first third
  EXPECT_EQ(down(8), "0000001");
  EXPECT_EQ(down(13), "0001000");
}

TEST(ReadSingleDigit, TakesCornersInAnyOrder) {
  const PaintedDisplay display({}, "6");
  const TestImage image = display.ToImage();
  const std::vector<int32_t> c = display.RectangleOf(0).coordinates;
  for (const auto& corners : {std::vector<int32_t>{c[0], c[1], c[2], c[3]},
                              {c[2], c[3], c[0], c[1]},
                              {c[2], c[1], c[0], c[3]},
                              {c[0], c[3], c[2], c[1], 1, 1, 2, 2}}) {
    EXPECT_EQ(ReadDigit(image, RegionRecord({{ROI_RECT, corners}}), {}).text, "6");
  }
}

TEST(ReadSingleDigit, TurnsWithItsFourCorners) {
  const PaintedDisplay display({}, "4");
  const TestImage image = display.ToImage();
  const std::vector<int32_t> c = display.RectangleOf(0).coordinates;
  const std::vector<int32_t> upright = {c[0], c[1], c[2], c[1], c[2], c[3], c[0], c[3]};
  EXPECT_EQ(ReadDigit(image, RegionRecord({{ROI_POLYGON, upright}}), {}).text, "4");
  // Closed, as a turned region is written.
  std::vector<int32_t> closed = upright;
  closed.insert(closed.end(), {c[0], c[1]});
  EXPECT_EQ(ReadDigit(image, RegionRecord({{ROI_POLYGON, closed}}), {}).text, "4");
  // Seen in a mirror.
  const std::vector<int32_t> mirrored = {c[2], c[1], c[0], c[1], c[0], c[3], c[2], c[3]};
  const Reading reading = ReadDigit(image, RegionRecord({{ROI_POLYGON, mirrored}}), {});
  EXPECT_EQ(reading.result, -3041);
  EXPECT_EQ(reading.segments, "0100111");
}

TEST(ReadSingleDigit, ReadsItsFirstContourAlone) {
  const PaintedDisplay display({}, "27");
  const TestImage image = display.ToImage();
  const auto first = display.RectangleOf(0);
  const auto second = display.RectangleOf(1);
  EXPECT_EQ(ReadDigit(image, RegionRecord({first, second}), {}).text, "2");
  EXPECT_EQ(ReadDigit(image, RegionRecord({second, {ROI_OVAL, {1, 2, 3, 4}}}), {}).text, "7");
}

TEST(ReadSingleDigit, RefusesRegionsThatNameNoDigit) {
  const TestImage image(IMAGE_U8, 30, 30);
  const auto result = [&](const std::vector<RegionRecord::Contour>& contours) {
    return ReadDigit(image, RegionRecord(contours), {}).result;
  };
  EXPECT_EQ(result({}), -1200);
  EXPECT_EQ(result({{ROI_RECT, {1, 2}}}), -1200);
  EXPECT_EQ(result({{ROI_RECT, {1, 2}}, {ROI_RECT, {1, 2, 3, 4}}}), -1200);
  EXPECT_EQ(result({{ROI_OVAL, {1, 2, 3, 4}}}), -1200);
  EXPECT_EQ(result({{ROI_POLYGON, {1, 2, 3, 4, 5, 6}}}), -1200);
  EXPECT_EQ(result({{ROI_FREEHAND, {1, 2, 3, 4, 5, 6, 7, 8}}}), -1200);
  EXPECT_EQ(result({{ROI_LINE, {1, 2, 3, 4}}}), -1200);
  EXPECT_EQ(result({{77, {1, 2, 3, 4}}}), -1200);
}

TEST(ReadSingleDigit, ChecksWhatItIsGivenInOrder) {
  const test::MessageWatch watch;
  const TestImage image(IMAGE_U8, 30, 30);
  const TestImage rgb(IMAGE_RGB, 30, 30);
  const TestImage empty(IMAGE_RGB, 0, 0);
  const RegionRecord digit({{ROI_RECT, {5, 5, 20, 25}}});
  const RegionRecord none;
  const ImageRef unknown = 0xFFFFFFFF;
  Block<char> text;
  double value = -1;
  DigitSegments segments{};
  const auto read = [&](ImageRef from, const RoiDescriptor* roi) {
    return ZEL_ReadSingleDigit(from, roi, 0, 5, 0, &text.data, &value, &segments);
  };
  EXPECT_EQ(ZEL_ReadSingleDigit(0, nullptr, 0, 5, 0, nullptr, nullptr, nullptr), -201);
  EXPECT_TRUE(watch.Messages().empty());
  EXPECT_EQ(ZEL_ReadSingleDigit(unknown, nullptr, 0, 5, 0, nullptr, nullptr, nullptr), -1200);
  EXPECT_EQ(watch.Messages(), std::vector<std::string>{"ZEL_ReadSingleDigit: ROI not provided"});
  EXPECT_EQ(ZEL_ReadSingleDigit(unknown, digit, 0, 5, 0, nullptr, &value, &segments), -5);
  EXPECT_EQ(ZEL_ReadSingleDigit(unknown, digit, 0, 5, 0, &text.data, nullptr, &segments), -5);
  EXPECT_EQ(ZEL_ReadSingleDigit(unknown, digit, 0, 5, 0, &text.data, &value, nullptr), -5);
  EXPECT_EQ(read(unknown, RegionRecord({{ROI_OVAL, {1, 2, 3, 4}}})), -200);
  EXPECT_EQ(read(rgb, RegionRecord({{ROI_OVAL, {1, 2, 3, 4}}})), -1200);
  EXPECT_EQ(read(rgb, digit), -301);
  EXPECT_EQ(value, -1);
  EXPECT_EQ(segments.count, 0);
  EXPECT_EQ(text.data, nullptr);
  EXPECT_EQ(read(empty, digit), -3040);
  EXPECT_EQ(segments.count, 1);
}

TEST(ReadSingleDigit, TakesEveryGrayType) {
  for (const int32_t type : {IMAGE_U8, IMAGE_I16, IMAGE_SGL}) {
    const PaintedDisplay display({}, "5");
    const Reading reading =
        ReadDigit(display.ToImage(type), RegionRecord({display.RectangleOf(0)}), {});
    EXPECT_EQ(reading.text, "5");
  }
}

TEST(ReadSingleDigit, SeesOnlyTheImage) {
  const PaintedDisplay display({}, "8");
  const TestImage image = display.ToImage();
  for (const auto& corners : {std::vector<int32_t>{-100, -100, -10, -10},
                              {INT32_MIN + 9000000, INT32_MIN, INT32_MAX, INT32_MAX},
                              {400, 400, 500, 500},
                              {5, 5, 5, 5},
                              {-32000, 3, 7, 9},
                              {0, 0, INT32_MAX, 1}}) {
    const int32_t result =
        ReadDigit(image, RegionRecord({{ROI_RECT, corners}}), {.point = true}).result;
    EXPECT_TRUE(result == -3040 || result == -3041 || result == 0 || result == -1200) << result;
  }
}

// A line's profile, smoothed, and what of it is on; from the pixels that ZEL_GetLine gives.
std::vector<bool> OnByTheRule(ImageRef image, const std::vector<int32_t>& ends,
                              const Options& options) {
  std::vector<double> raw(200);
  int32_t count = 0;
  EXPECT_EQ(ZEL_GetLine(image, ends[0], ends[1], ends[2], ends[3], ARRAY_DBL, raw.data(), &count),
            0);
  const auto n = static_cast<size_t>(count);
  std::vector<double> smooth(n);
  double sum = 0;
  double squares = 0;
  for (size_t i = 0; i < n; i++) {
    double total = i > 0 ? raw[i - 1] : 0;
    total += raw[i];
    int parts = i > 0 ? 2 : 1;
    if (i + 1 < n) {
      total += raw[i + 1];
      parts++;
    }
    smooth[i] = total / parts;
    sum += smooth[i];
    squares += smooth[i] * smooth[i];
  }
  std::vector<bool> on(n);
  if (n == 0) return on;
  const double mean = sum / count;
  const double variance = std::max(squares / count - mean * mean, 0.0);
  if (!(static_cast<double>(options.threshold) < std::sqrt(variance))) return on;
  int64_t largest = 0;
  int64_t smallest = 33000;
  for (const double sample : smooth) {
    largest = std::max(largest, static_cast<int64_t>(sample));
    smallest = std::min(smallest, static_cast<int64_t>(sample));
  }
  const auto level = static_cast<double>((largest + smallest) / 2);
  for (size_t i = 0; i < n; i++) on[i] = options.isLight ? smooth[i] > level : smooth[i] < level;
  return on;
}

TEST(ReadSingleDigit, FollowsTheRuleOnAnyPixels) {
  test::Random random(17);
  for (int i = 0; i < 400; i++) {
    const TestImage image(i % 3, 60, 50, 1, static_cast<uint64_t>(i));
    int32_t c[8];
    for (int32_t k = 0; k < 8; k++) c[k] = random.Between(-9, k % 2 == 0 ? 68 : 58);
    const bool isRectangle = i % 2 == 0;
    const Options options{.isLight = random.Between(0, 1) == 1, .threshold = random.Float(-1, 90)};
    const std::vector<int32_t> corners(c, c + (isRectangle ? 4 : 8));
    if (isRectangle) {
      const auto [left, right] = std::minmax(corners[0], corners[2]);
      const auto [top, bottom] = std::minmax(corners[1], corners[3]);
      const int32_t both[] = {left, top, right, top, right, bottom, left, bottom};
      std::copy(both, both + 8, c);
    }
    const auto part = [](int32_t from, int32_t to, int32_t k, int32_t of) {
      return from + k * (to - from) / of;
    };
    std::vector<std::vector<int32_t>> lines;
    for (int32_t k = 1; k <= 2; k++) {
      lines.push_back({part(c[0], c[6], k, 3), part(c[1], c[7], k, 3), part(c[2], c[4], k, 3),
                       part(c[3], c[5], k, 3)});
    }
    lines.push_back({part(c[0], c[2], 1, 2), part(c[1], c[3], 1, 2), part(c[6], c[4], 1, 2),
                     part(c[7], c[5], 1, 2)});
    if (isRectangle) lines[2][0] = lines[2][2] = (c[0] + c[2]) / 2;
    std::string expected = "0000000";
    const size_t segments[3][3] = {{5, 1, 9}, {4, 2, 9}, {0, 6, 3}};
    for (size_t line = 0; line < 3; line++) {
      const std::vector<bool> on = OnByTheRule(image, lines[line], options);
      const size_t parts = line == 2 ? 3 : 2;
      for (size_t k = 0; k < on.size(); k++) {
        if (on[k]) expected[segments[line][parts * k / on.size()]] = '1';
      }
    }
    const RegionRecord digit({{isRectangle ? ROI_RECT : ROI_POLYGON, corners}});
    ASSERT_EQ(ReadDigit(image, digit, options).segments, expected) << i;
  }
}

// Half way across is truncated as a whole: between columns -1 and 0 that is column 0.
TEST(ReadSingleDigit, CutsTheMiddleOfARectangleTowardsZero) {
  const TestImage image(IMAGE_U8, 1, 30);
  for (int32_t y = 0; y < 30; y++) image.Set<uint8_t>(0, y, y < 10 ? 0 : 200);
  EXPECT_EQ(ReadDigit(image, RegionRecord({{ROI_RECT, {-1, 0, 0, 29}}}), {}).segments, "1000000");
  EXPECT_EQ(
      ReadDigit(image, RegionRecord({{ROI_POLYGON, {-1, 0, 0, 0, 0, 29, -1, 29}}}), {}).segments,
      "0000000");
  EXPECT_EQ(ReadDigit(image, RegionRecord({{ROI_RECT, {-2, 0, -1, 29}}}), {}).segments, "0000000");
}

TEST(ReadSingleDigit, WithoutMemoryChangesNothing) {
  const PaintedDisplay display({}, "4");
  const TestImage image = display.ToImage();
  const RegionRecord digit({display.RectangleOf(0)});
  Block<char> text;
  double value = 0;
  DigitSegments segments{};
  const auto prepare = [&] {
    ZEL_free(std::exchange(text.data, static_cast<char*>(ZEL_malloc(2))));
    std::memcpy(text.data, "x", 2);
    value = -1;
    segments.count = -1;
  };
  test::RefuseEachAllocation(prepare, [&] {
    const int32_t result =
        ZEL_ReadSingleDigit(image, digit, 0, THRESHOLD, 1, &text.data, &value, &segments);
    if (result != 0) {
      EXPECT_STREQ(text.data, "x");
      EXPECT_EQ(value, -1);
      EXPECT_EQ(segments.count, -1);
    }
    return result;
  });
  EXPECT_STREQ(text.data, "4");
}

// A sign is looked for as far left as the digit is wide.
TEST(ReadLCDDisplay, LooksForASignOneWidthToTheLeft) {
  for (const int32_t gap : {20, 21}) {
    const TestImage image(IMAGE_U8, 100, 60);
    ZEL_ClearPixels(image);
    for (int32_t y = 10; y <= 40; y++) {
      for (int32_t x = 68; x <= 70; x++) image.Set<uint8_t>(x, y, 200);  // a 1
    }
    for (int32_t y = 24; y <= 26; y++) image.Set<uint8_t>(50 - gap, y, 200);
    const RegionRecord digit({{ROI_RECT, {50, 10, 70, 40}}});
    const Reading reading = ReadDisplay(image, digit, {.isLight = true, .sign = true});
    EXPECT_EQ(reading.text, gap == 20 ? "-1" : " 1") << gap;
  }
}

// The left edge of a 2 has contrast of its own.
TEST(ReadLCDDisplay, TakesNoEdgeOfANarrowDigitForASign) {
  for (const int32_t width : {12, 18, 19, 20}) {
    const TestImage image(IMAGE_U8, 60, 60);
    ZEL_ClearPixels(image);
    const auto paint = [&](int32_t left, int32_t top, int32_t right, int32_t bottom) {
      for (int32_t y = top; y < bottom; y++) {
        for (int32_t x = left; x < right; x++) image.Set<uint8_t>(x, y, 200);
      }
    };
    const int32_t right = 20 + width;
    for (const int32_t top : {10, 25, 40}) paint(20, top, right, top + 3);
    paint(right - 3, 10, right, 28);
    paint(20, 25, 23, 43);
    const RegionRecord digit({{ROI_RECT, {20, 10, right, 43}}});
    const Options options{.isLight = true, .sign = true};
    EXPECT_EQ(ReadDisplay(image, digit, options).text, " 2") << width;
    paint(10, 25, 18, 28);
    EXPECT_EQ(ReadDisplay(image, digit, options).text, "-2") << width;
  }
}

// Of a foot without width a point is looked for two pixels to the right.
TEST(ReadSingleDigit, LooksForAPointBesideAFootOfNoWidth) {
  for (const int32_t x : {33, 34}) {
    const TestImage image(IMAGE_U8, 60, 60);
    ZEL_ClearPixels(image);
    for (const auto& [right, y] : {std::pair{37, 20}, {34, 30}}) {
      for (int32_t i = 0; i < 3; i++) image.Set<uint8_t>(right - i, y, 200);  // a 1
    }
    image.Set<uint8_t>(x, 33, 200);
    const RegionRecord digit({{ROI_POLYGON, {20, 10, 40, 10, 30, 40, 30, 40}}});
    const Reading reading = ReadDigit(image, digit, {.isLight = true, .point = true});
    EXPECT_EQ(reading.text, x == 34 ? "1." : "1") << x;
  }
}

class Displays : public testing::TestWithParam<DisplayLook> {};

TEST_P(Displays, AreRead) {
  const DisplayLook& look = GetParam();
  for (const std::string text : {"0123456789", "8", "11", "70707"}) {
    const PaintedDisplay display(look, text);
    const Reading reading = ReadDisplay(display.ToImage(), display.Digits(text), OptionsFor(look));
    EXPECT_EQ(reading.result, 0);
    EXPECT_EQ(reading.text, text);
    EXPECT_EQ(reading.value, std::stod(text));
    EXPECT_EQ(reading.count, static_cast<int32_t>(text.size()));
  }
}

TEST_P(Displays, AreReadWithTheirPoints) {
  const DisplayLook& look = GetParam();
  for (const std::string text : {"3.14159", "88.8", "9.0", "1.2.3.4."}) {
    const PaintedDisplay display(look, text);
    const Reading reading =
        ReadDisplay(display.ToImage(), display.Digits(text), OptionsFor(look, false, true));
    EXPECT_EQ(reading.result, 0);
    EXPECT_EQ(reading.text, text);
    std::string digits = text;
    std::erase(digits, '.');
    EXPECT_EQ(reading.value, std::stod(digits)) << "points do not change the value";
  }
}

// The looks for a sign begin close to the digit's edge, which a segment may not touch.
TEST_P(Displays, AreReadWithTheirSign) {
  const DisplayLook& look = GetParam();
  for (const std::string text : {"-25", "-80", " 96", " 61"}) {
    const PaintedDisplay display(look, text);
    const Reading reading =
        ReadDisplay(display.ToImage(), display.Digits(text, 2), OptionsFor(look, true, false));
    EXPECT_EQ(reading.result, 0);
    EXPECT_EQ(reading.text, text);
    EXPECT_EQ(reading.value, std::stod(text.substr(1))) << "the sign does not change the value";
  }
}

INSTANTIATE_TEST_SUITE_P(Painted, Displays, testing::ValuesIn(test::LOOKS));

TEST(ReadLCDDisplay, GivesTheSegmentsOfAllDigits) {
  const PaintedDisplay display({}, "180");
  const Reading reading = ReadDisplay(display.ToImage(), display.Digits("180"), {});
  EXPECT_EQ(reading.segments, "011000011111111111110");
}

TEST(ReadLCDDisplay, StopsAtADigitThatFailsAndWritesNothing) {
  const PaintedDisplay display({}, "1 2");
  const TestImage image = display.ToImage();
  const RegionRecord digits(
      {display.RectangleOf(0), display.RectangleOf(1), {ROI_OVAL, {1, 2, 3, 4}}});
  const Reading blank = ReadDisplay(image, digits, {});
  EXPECT_EQ(blank.result, -3040);
  EXPECT_EQ(blank.text, "unwritten");
  EXPECT_EQ(blank.value, -1);
  EXPECT_EQ(blank.segments, "unwritten");
  EXPECT_EQ(blank.count, -1);
  const PaintedDisplay odd = PaintedDisplay::OfSegments({}, "0110001");
  const Reading inexact = ReadDisplay(odd.ToImage(), RegionRecord({odd.RectangleOf(0)}), {});
  EXPECT_EQ(inexact.result, -3041);
  EXPECT_EQ(inexact.text, "unwritten");
  EXPECT_EQ(ReadDisplay(image, RegionRecord({display.RectangleOf(2), {ROI_OVAL, {1, 2, 3, 4}}}), {})
                .result,
            -1200);
}

TEST(ReadLCDDisplay, CountsExternalAndInternalContours) {
  const PaintedDisplay display({}, "42");
  const TestImage image = display.ToImage();
  auto hole = display.RectangleOf(1);
  hole.kind = ROI_INTERNAL;
  RegionRecord digits({display.RectangleOf(0), hole});
  EXPECT_EQ(ReadDisplay(image, digits, {}).text, "42");
  // Contours of other kinds name no digit.
  digits->contours[0]->contourKind = 7;
  EXPECT_EQ(ReadDisplay(image, digits, {}).text, "2");
  EXPECT_EQ(ReadDigit(image, digits, {}).text, "4");
  digits->contours[1]->contourKind = -3;
  EXPECT_EQ(ReadDisplay(image, digits, {}).result, -1200);
}

TEST(ReadLCDDisplay, ReadsAThousandDigits) {
  const PaintedDisplay display({}, "90");
  const auto nine = display.RectangleOf(0);
  const auto zero = display.RectangleOf(1);
  const TestImage image = display.ToImage();
  const Reading long22 = ReadDisplay(image, RegionRecord(std::vector(23, nine)), {});
  double exact = 0;
  for (int i = 22; i >= 0; i--) exact += 9 * std::pow(10.0, i);
  EXPECT_EQ(long22.value, exact);
  const Reading endless = ReadDisplay(image, RegionRecord(std::vector(1000, nine)), {});
  EXPECT_EQ(endless.value, INFINITY);
  EXPECT_EQ(endless.text, std::string(1000, '9'));
  EXPECT_EQ(ReadDisplay(image, RegionRecord(std::vector(1000, zero)), {}).value, 0.0);
}

TEST(ReadLCDDisplay, ChecksWhatItIsGivenInOrder) {
  const test::MessageWatch watch;
  const TestImage image(IMAGE_U8, 30, 30);
  const TestImage rgb(IMAGE_RGB, 30, 30);
  const TestImage empty(IMAGE_U8, 0, 0);
  const RegionRecord digit({{ROI_RECT, {5, 5, 20, 25}}});
  const ImageRef unknown = 0xFFFFFFFF;
  Block<char> text;
  Block<uint8_t> segments;
  double value = -1;
  int32_t count = -1;
  const auto read = [&](ImageRef from, const RoiDescriptor* roi) {
    return ZEL_ReadLCDDisplay(from, roi, 0, 5, 0, 0, &text.data, &value, &segments.data, &count);
  };
  EXPECT_EQ(ZEL_ReadLCDDisplay(0, nullptr, 0, 5, 0, 0, nullptr, nullptr, nullptr, nullptr), -201);
  EXPECT_TRUE(watch.Messages().empty());
  EXPECT_EQ(ZEL_ReadLCDDisplay(unknown, nullptr, 0, 5, 0, 0, nullptr, nullptr, nullptr, nullptr),
            -1200);
  EXPECT_EQ(watch.Messages(), std::vector<std::string>{"ZEL_ReadLCDDisplay: ROI not provided"});
  uint8_t** const noSegments = nullptr;
  EXPECT_EQ(ZEL_ReadLCDDisplay(unknown, digit, 0, 5, 0, 0, nullptr, &value, &segments.data, &count),
            -5);
  EXPECT_EQ(
      ZEL_ReadLCDDisplay(unknown, digit, 0, 5, 0, 0, &text.data, nullptr, &segments.data, &count),
      -5);
  EXPECT_EQ(ZEL_ReadLCDDisplay(unknown, digit, 0, 5, 0, 0, &text.data, &value, noSegments, &count),
            -5);
  EXPECT_EQ(
      ZEL_ReadLCDDisplay(unknown, digit, 0, 5, 0, 0, &text.data, &value, &segments.data, nullptr),
      -5);
  EXPECT_EQ(read(unknown, digit), -200);
  EXPECT_EQ(read(rgb, RegionRecord({{ROI_OVAL, {1, 2, 3, 4}}})), -1200);
  EXPECT_EQ(read(image, RegionRecord(std::vector<RegionRecord::Contour>{})), -1200);
  EXPECT_EQ(read(rgb, digit), -301);
  EXPECT_EQ(read(empty, digit), -3040);
  EXPECT_EQ(count, -1);
  EXPECT_EQ(text.data, nullptr);
}

TEST(ReadLCDDisplay, WithoutMemoryChangesNothing) {
  const PaintedDisplay display({}, "42");
  const TestImage image = display.ToImage();
  const RegionRecord digits = display.Digits("42");
  Block<char> text;
  Block<uint8_t> segments;
  double value = 0;
  int32_t count = 0;
  const auto prepare = [&] {
    ZEL_free(std::exchange(text.data, static_cast<char*>(ZEL_malloc(2))));
    ZEL_free(std::exchange(segments.data, static_cast<uint8_t*>(ZEL_malloc(1))));
    std::memcpy(text.data, "x", 2);
    segments.data[0] = 77;
    value = -1;
    count = -1;
  };
  test::RefuseEachAllocation(prepare, [&] {
    const int32_t result = ZEL_ReadLCDDisplay(image, digits, 0, THRESHOLD, 1, 1, &text.data, &value,
                                              &segments.data, &count);
    if (result != 0) {
      EXPECT_STREQ(text.data, "x");
      EXPECT_EQ(segments.data[0], 77);
      EXPECT_EQ(value, -1);
      EXPECT_EQ(count, -1);
    }
    return result;
  });
  EXPECT_STREQ(text.data, " 42");
  EXPECT_EQ(segments.data[0], 0);
}

}  // namespace
