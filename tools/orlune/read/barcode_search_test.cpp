// Bar codes found in pictures of known codes, spoilt in known ways.
#include "orlune/read/barcode_search.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "orlune/read/barcode_calls.h"
#include "orlune/read/barcode_lines.h"
#include "scorecard/codes.h"

namespace front {
namespace {

using scorecard::Code;
using scorecard::Look;
using scorecard::Sight;

Image ImageOf(const Sight& sight) {
  Image image(IMAGE_U8, 0, sight.width, sight.height);
  const ImageInfo info = image.Info();
  for (int32_t y = 0; y < sight.height; ++y) {
    std::copy_n(sight.pixels.begin() + int64_t{y} * sight.width, sight.width,
                Row<uint8_t>(info, y));
  }
  return image;
}

// Of each kind the last code that peers give alike.
std::vector<Code> OneOfEachKind() {
  static const std::vector<Code> codes = scorecard::CodesIn(PTK_PRINTED_CODES);
  std::vector<Code> chosen;
  for (const BarcodeKindRow& row : AllBarcodeKinds()) {
    const auto last = std::find_if(codes.rbegin(), codes.rend(),
                                   [&](const Code& code) { return code.kind == row.kind; });
    if (last != codes.rend()) chosen.push_back(*last);
  }
  return chosen;
}

std::optional<BarcodeReading> Find(const Sight& sight, BarcodeKind kind, bool validate = false) {
  BarcodeSettings settings;
  settings.kind = kind;
  settings.validate = validate;
  return FindBarcode(ImageOf(sight), settings);
}

bool HasLines(const Code& code) {
  return HasEvenSymbols(code.kind);
}

// Around a can, without quiet zones, faint.
std::vector<Look> Spoilt() {
  std::vector<Look> looks(3);
  looks[0].bend = 50;
  looks[1].quiet = 0;
  looks[2].contrast = 25;
  return looks;
}

TEST(BarcodeSearch, ReadsEveryKind) {
  const std::vector<Code> codes = OneOfEachKind();
  EXPECT_EQ(codes.size(), AllBarcodeKinds().size());
  for (const Code& code : codes) {
    const auto reading = Find(scorecard::Show(code.widths, {}, 1), code.kind);
    ASSERT_TRUE(reading) << NameOf(code.kind);
    EXPECT_EQ(reading->text, code.text) << NameOf(code.kind);
    EXPECT_FALSE(reading->backward);
  }
}

TEST(BarcodeSearch, ReadsCodesUpsideDown) {
  for (const Code& code : OneOfEachKind()) {
    Sight sight = scorecard::Show(code.widths, {}, 1);
    std::reverse(sight.pixels.begin(), sight.pixels.end());
    const auto reading = Find(sight, code.kind);
    ASSERT_TRUE(reading) << NameOf(code.kind);
    EXPECT_EQ(reading->text, code.text) << NameOf(code.kind);
    EXPECT_TRUE(reading->backward);
  }
}

TEST(BarcodeSearch, ReadsTurnedCodesAndTellsTheirCorners) {
  Look look;
  look.tilt = 35;  // no row crosses all bars
  for (const Code& code : OneOfEachKind()) {
    if (!HasLines(code)) continue;
    const Sight sight = scorecard::Show(code.widths, look, 1);
    const auto reading = Find(sight, code.kind);
    ASSERT_TRUE(reading) << NameOf(code.kind);
    EXPECT_EQ(reading->text, code.text);
    double modules = 0;
    for (const char width : code.widths) modules += width - '0';
    const PointFloat &first = reading->corners[0], &second = reading->corners[1];
    const double x = static_cast<double>(second.x - first.x);
    const double y = static_cast<double>(second.y - first.y);
    EXPECT_NEAR(std::hypot(x, y), modules * look.module, 12);
    EXPECT_NEAR(std::atan2(y, x) * 57.2958, look.tilt, 5);
    const PointFloat& opposite = reading->corners[2];
    EXPECT_NEAR((first.x + opposite.x) / 2, sight.width / 2.0, 6);
    EXPECT_NEAR((first.y + opposite.y) / 2, sight.height / 2.0, 6);
  }
}

TEST(BarcodeSearch, ReadsCansAndCutQuietZonesAlongLines) {
  for (const Code& code : OneOfEachKind()) {
    if (!HasLines(code)) continue;
    for (const Look& look : Spoilt()) {
      const auto reading = Find(scorecard::Show(code.widths, look, 2), code.kind);
      ASSERT_TRUE(reading) << NameOf(code.kind) << ' ' << look.bend << ' ' << look.quiet;
      EXPECT_EQ(reading->text, code.text);
    }
  }
}

TEST(BarcodeSearch, ReadsBarsThatReachThePicturesEnds) {
  Look look;
  look.quiet = 0;
  for (const Code& code : OneOfEachKind()) {
    const Sight sight = scorecard::Show(code.widths, look, 1);
    const auto reading = Find(sight, code.kind);
    ASSERT_TRUE(reading) << NameOf(code.kind);
    EXPECT_EQ(reading->text, code.text) << NameOf(code.kind);
    EXPECT_GE(reading->place.left, 0);
    EXPECT_LE(reading->place.left + reading->place.width, sight.width);
    EXPECT_NEAR((reading->corners[0].x + reading->corners[1].x) / 2, sight.width / 2.0, 6);
  }
}

TEST(BarcodeSearch, LooksIntoTheRegionAlone) {
  const Code code = OneOfEachKind().back();
  const Sight sight = scorecard::Show(code.widths, {}, 1);
  BarcodeSettings settings;
  settings.kind = code.kind;
  settings.region = Region{0, 0, sight.width / 3, sight.height};
  EXPECT_FALSE(FindBarcode(ImageOf(sight), settings));
  settings.region = Region{5, sight.height / 2, sight.width - 10, 1};  // a single row
  const auto reading = FindBarcode(ImageOf(sight), settings);
  ASSERT_TRUE(reading);
  EXPECT_EQ(reading->text, code.text);
  EXPECT_EQ(reading->place.top, sight.height / 2);
  settings.region = Region{5, 5, sight.width, 9};
  EXPECT_THROW(FindBarcode(ImageOf(sight), settings), std::invalid_argument);
}

TEST(BarcodeSearch, ReadsNothingWhereThereIsNoCode) {
  for (const uint64_t seed : {0u, 1u, 3u}) {
    const Sight sight = scorecard::NoCode(seed);
    for (const BarcodeKindRow& row : AllBarcodeKinds()) {
      const bool hasLines = HasEvenSymbols(row.kind);
      if (hasLines != (seed != 1)) continue;  // rectangles take longer
      const auto reading = Find(sight, row.kind, !hasLines);
      EXPECT_FALSE(reading) << row.name << ' ' << seed << ' ' << reading->text;
    }
  }
}

TEST(BarcodeSearch, TakesNoWrongTextFromAWrongBar) {
  for (const Code& code : OneOfEachKind()) {
    if (!HasLines(code)) continue;
    for (uint64_t seed = 0; seed < 2; ++seed) {
      const std::string widths = scorecard::Mutilated(code.widths, seed);
      // What is wrong can be such that only the right text is near.
      const auto reading = Find(scorecard::Show(widths, {}, seed), code.kind);
      const std::string text = reading ? reading->text : code.text;
      EXPECT_EQ(text, code.text) << NameOf(code.kind) << ' ' << seed;
    }
  }
}

TEST(BarcodeSearch, TakesPicturesOfAnySize) {
  for (const int32_t width : {1, 2, 3, 9, 40}) {
    for (const int32_t height : {1, 2, 5}) {
      const Sight sight = {
          width, height, std::vector<uint8_t>(static_cast<size_t>(width * height), 90), {}};
      for (const BarcodeKindRow& row : AllBarcodeKinds()) EXPECT_FALSE(Find(sight, row.kind));
    }
  }
}

// ---- lines

TEST(BarcodeLines, HaveEdgesHalfwayBetweenLightAndDark) {
  const std::vector<double> levels = {200, 200, 200, 120, 40, 40, 40, 40, 200, 200};
  const Edges edges = EdgesOf(levels);
  ASSERT_EQ(edges.places.size(), 2u);
  EXPECT_TRUE(edges.beginsDark);
  EXPECT_DOUBLE_EQ(edges.places[0], 3.0);
  EXPECT_DOUBLE_EQ(edges.places[1], 7.5);
  const Edges reversed = Reversed(edges, levels.size());
  EXPECT_TRUE(reversed.beginsDark);
  EXPECT_DOUBLE_EQ(reversed.places[0], 1.5);
  EXPECT_DOUBLE_EQ(reversed.places[1], 6.0);
}

TEST(BarcodeLines, WithoutSwingsHaveNoEdges) {
  EXPECT_TRUE(EdgesOf({}).places.empty());
  EXPECT_TRUE(EdgesOf({9}).places.empty());
  EXPECT_TRUE(EdgesOf(std::vector<double>(50, 77.0)).places.empty());
  EXPECT_FALSE(CodeAlong({}, BarcodeKind::Code128));
}

TEST(BarcodeLines, OfGrownBarsThatNarrowAreReadAsWholeModules) {
  for (const Code& code : OneOfEachKind()) {
    if (!HasLines(code)) continue;
    Edges edges;
    edges.beginsDark = true;
    double place = 10, module = 4;
    edges.places.push_back(place);
    for (size_t i = 0; i < code.widths.size(); ++i, module *= 0.993) {
      place += module * (code.widths[i] - '0' + (i % 2 == 0 ? 0.2 : -0.2));
      edges.places.push_back(place);
    }
    const auto found = CodeAlong(edges, code.kind);
    ASSERT_TRUE(found) << NameOf(code.kind);
    EXPECT_EQ(found->widths, code.widths);
    EXPECT_DOUBLE_EQ(found->left, 10);
    EXPECT_DOUBLE_EQ(found->right, place);
    EXPECT_EQ(ReadWidths(found->widths, {.kind = code.kind, .firstDigit = code.text[0] - '0'}),
              code.text);
  }
}

TEST(BarcodeLines, AreSharpenedTowardsWhatWasBlurred) {
  std::vector<double> levels(60, 200.0);
  for (size_t i = 28; i < 32; ++i) levels[i] = 100;  // a bar that lost half of its depth
  levels[27] = levels[32] = 150;
  const std::vector<double> sharp = Sharpened(levels, 1.6);
  EXPECT_LT(*std::min_element(sharp.begin(), sharp.end()), 80);
  EXPECT_NEAR(sharp[5], 200, 1e-3);
}

}  // namespace
}  // namespace front
