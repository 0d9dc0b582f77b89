#include "engine/point.h"

#include <gtest/gtest.h>

#include <cstring>
#include <vector>

#include "core/pixel_types.h"
#include "tests/support/walks.h"

namespace {

using namespace zel;
using test::TestImage;

constexpr int32_t PIXEL_TYPES[] = {IMAGE_U8, IMAGE_I16, IMAGE_SGL, IMAGE_COMPLEX, IMAGE_RGB};

// Bytes that stand for an image of any pitch; nothing is read from them.
class Sheet {
 public:
  Sheet(int32_t type, int32_t width, int32_t height, int64_t gap = 0)
      : bytes_(static_cast<size_t>((int64_t{width} * PixelBytesOf(type) + gap) * height + 1)),
        view_{.origin = bytes_.data(),
              .pitch = int64_t{width} * PixelBytesOf(type) + gap,
              .width = width,
              .height = height,
              .type = static_cast<int16_t>(type),
              .pixelBytes = static_cast<int16_t>(PixelBytesOf(type))} {}
  const PixelView& view() const { return view_; }

 private:
  std::vector<uint8_t> bytes_;
  PixelView view_;
};

bool IsOneRowOf(const PixelView& joined, const PixelView& view) {
  return joined.origin == view.origin && joined.height == 1 &&
         joined.width == view.width * view.height && joined.type == view.type &&
         joined.pixelBytes == view.pixelBytes;
}

bool IsSame(const PixelView& a, const PixelView& b) {
  return a.origin == b.origin && a.pitch == b.pitch && a.width == b.width && a.height == b.height;
}

TEST(RowsJoin, OperandsWithoutGapsAreOneRow) {
  const Sheet bytes(IMAGE_U8, 7, 5);
  const Sheet words(IMAGE_I16, 7, 5);
  const Sheet colours(IMAGE_RGB, 7, 5);
  const std::vector<uint8_t> mask(35);
  const PointViews joined = RowsJoin({.first = bytes.view(),
                                      .second = words.view(),
                                      .result = colours.view(),
                                      .mask = {mask.data(), 7}});
  EXPECT_TRUE(IsOneRowOf(joined.first, bytes.view()));
  EXPECT_TRUE(IsOneRowOf(joined.second, words.view()));
  EXPECT_TRUE(IsOneRowOf(joined.result, colours.view()));
  EXPECT_EQ(joined.mask.Row(0), mask.data());
  EXPECT_TRUE(IsOneRowOf(RowsJoin(words.view()), words.view()));
}

TEST(RowsJoin, ASecondOperandAndAMaskNeedNotBeThere) {
  const Sheet from(IMAGE_SGL, 7, 5);
  const Sheet to(IMAGE_U8, 7, 5);
  const PointViews joined =
      RowsJoin({.first = from.view(), .second = {}, .result = to.view(), .mask = {}});
  EXPECT_TRUE(IsOneRowOf(joined.first, from.view()));
  EXPECT_TRUE(IsOneRowOf(joined.result, to.view()));
  EXPECT_TRUE(joined.mask.SelectsAll());
  EXPECT_EQ(joined.second.origin, nullptr);
}

TEST(RowsJoin, AGapInAnyOperandKeepsTheRowsOfAll) {
  const std::vector<uint8_t> mask(100);
  for (int32_t which = 0; which < 4; which++) {
    const Sheet first(IMAGE_U8, 7, 5, which == 0 ? 1 : 0);
    const Sheet second(IMAGE_I16, 7, 5, which == 1 ? 2 : 0);
    const Sheet result(IMAGE_SGL, 7, 5, which == 2 ? 4 : 0);
    const PointViews views = {.first = first.view(),
                              .second = second.view(),
                              .result = result.view(),
                              .mask = {mask.data(), which == 3 ? 8 : 7}};
    const PointViews kept = RowsJoin(views);
    EXPECT_TRUE(IsSame(kept.first, views.first)) << which;
    EXPECT_TRUE(IsSame(kept.second, views.second)) << which;
    EXPECT_TRUE(IsSame(kept.result, views.result)) << which;
    EXPECT_EQ(kept.mask.pitch, views.mask.pitch) << which;
    const PixelView alone = RowsJoin(views.first);
    EXPECT_TRUE(which == 0 ? IsSame(alone, views.first) : IsOneRowOf(alone, views.first));
  }
}

TEST(RowsJoin, AMaskOfAPartOfAnImageDoesNotJoin) {
  // The pitch of the image is wider than what the mask covers.
  const Sheet image(IMAGE_U8, 7, 5);
  const std::vector<uint8_t> mask(15);
  const PixelView part = image.view().Part(
      {.imageX = 2, .imageY = 1, .maskX = 0, .maskY = 0, .width = 5, .height = 3});
  const PointViews kept =
      RowsJoin({.first = part, .second = {}, .result = part, .mask = {mask.data(), 5}});
  EXPECT_TRUE(IsSame(kept.result, part));
}

TEST(PointColumns, CutsAllOperands) {
  const Sheet first(IMAGE_U8, 9, 3, 1);
  const Sheet second(IMAGE_I16, 9, 3);
  const Sheet result(IMAGE_COMPLEX, 9, 3);
  const std::vector<uint8_t> mask(27);
  const PointViews views = {.first = first.view(),
                            .second = second.view(),
                            .result = result.view(),
                            .mask = {mask.data(), 9}};
  const PointViews part = PointColumns(views, 2, 7);
  EXPECT_EQ(part.first.At<uint8_t>(0, 2), views.first.At<uint8_t>(2, 2));
  EXPECT_EQ(part.second.At<int16_t>(0, 2), views.second.At<int16_t>(2, 2));
  EXPECT_EQ(part.result.At<uint64_t>(0, 2), views.result.At<uint64_t>(2, 2));
  EXPECT_EQ(part.mask.Row(2), views.mask.Row(2) + 2);
  for (const PixelView& view : {part.first, part.second, part.result}) {
    EXPECT_EQ(view.width, 5);
    EXPECT_EQ(view.height, 3);
  }
}

TEST(PointColumns, OfNoMaskIsNoMask) {
  const Sheet sheet(IMAGE_U8, 9, 3);
  const PointViews part =
      PointColumns({.first = sheet.view(), .second = {}, .result = sheet.view(), .mask = {}}, 2, 7);
  EXPECT_TRUE(part.mask.SelectsAll());
  EXPECT_EQ(part.second.origin, nullptr);
}

// ---- the walk

// Adds the amount to the first bytes of each result pixel that the mask selects, and tells when an
// operand does not lie at the same place.
struct CountRule {
  uint8_t amount;
  bool hasSecond;
};

void Count(const PointViews& views, const CountRule& rule) {
  const PixelView& to = views.result;
  for (int64_t y = 0; y < to.height; y++) {
    const uint8_t* mask = views.mask.Row(y);
    for (int64_t x = 0; x < to.width; x++) {
      auto* pixel = to.Row<uint8_t>(y) + x * to.pixelBytes;
      const auto* first = views.first.Row<uint8_t>(y) + x * views.first.pixelBytes;
      const auto* second =
          rule.hasSecond ? views.second.Row<uint8_t>(y) + x * views.second.pixelBytes : first;
      const bool agree = *first == *second;
      if (!mask || mask[x] != 0) *pixel = static_cast<uint8_t>(*pixel + (agree ? rule.amount : 99));
    }
  }
}

PixelView ViewOf(const TestImage& image) {
  Image* record = nullptr;
  ImageLookup(image, &record);
  return zel::ViewOf(*record);
}

// The first byte of a pixel is a number that goes by its place.
void NumberPixels(const TestImage& image) {
  const PixelView view = ViewOf(image);
  for (int32_t y = 0; y < view.height; y++) {
    for (int32_t x = 0; x < view.width; x++) {
      view.Row<uint8_t>(y)[x * view.pixelBytes] = static_cast<uint8_t>(x * 7 + y * 13 + x / 256);
    }
  }
}

struct WalkCase {
  int32_t workers;
  int32_t border;  // of the result: 0 can be one long row
};

class PointWalkOf : public testing::TestWithParam<WalkCase> {
  const test::Workers workers_{GetParam().workers};
};
INSTANTIATE_TEST_SUITE_P(Workers, PointWalkOf,
                         testing::Values(WalkCase{1, 0}, WalkCase{1, 3}, WalkCase{3, 0},
                                         WalkCase{3, 3}));

// Around the groups, and long enough for a row that is split at the boundary of a cache line.
std::vector<std::pair<int32_t, int32_t>> WalkSizes() {
  std::vector<std::pair<int32_t, int32_t>> sizes = test::ODD_SIZES;
  sizes.insert(sizes.end(), {{16385, 1}, {128, 129}, {1000, 33}, {24, 2000}});
  return sizes;
}

TEST_P(PointWalkOf, CoversEachPixelOnceAndNothingElse) {
  for (const int32_t type : PIXEL_TYPES) {
    for (const auto& [width, height] : WalkSizes()) {
      const TestImage first(IMAGE_U8, width, height, 0);
      const TestImage second(IMAGE_I16, width, height, 0);
      const TestImage result(type, width, height, GetParam().border);
      NumberPixels(first);
      NumberPixels(second);
      const auto around = result.Surroundings();
      const auto before = result.Pixels();
      PointWalk<CountRule>(
          {.first = ViewOf(first), .second = ViewOf(second), .result = ViewOf(result), .mask = {}},
          &Count, {.amount = 1, .hasSecond = true});
      const auto after = result.Pixels();
      const auto pixelBytes = static_cast<size_t>(PixelBytesOf(type));
      for (size_t i = 0; i < after.size(); i++) {
        const int32_t added = i % pixelBytes == 0 ? 1 : 0;
        ASSERT_EQ(after[i], static_cast<uint8_t>(before[i] + added))
            << width << " x " << height << " type " << type << " byte " << i;
      }
      ASSERT_EQ(result.Surroundings(), around) << width << " x " << height << " type " << type;
    }
  }
}

TEST_P(PointWalkOf, TakesTheMaskAlong) {
  for (const auto& [width, height] : WalkSizes()) {
    for (const int32_t maskGap : {0, 8}) {
      const TestImage result(IMAGE_U8, width, height, GetParam().border);
      const TestImage mask(IMAGE_U8, width + maskGap, height, 0, 3);
      const auto before = result.Pixels();
      for (int32_t y = 0; y < height; y++) {
        for (int32_t x = 0; x < width; x++) {
          mask.Set<uint8_t>(x, y, static_cast<uint8_t>((x * 5 + y * 3) % 4 == 0 ? 0 : x | 1));
        }
      }
      const PixelView maskView = ViewOf(mask);
      PointWalk<CountRule>({.first = ViewOf(result),
                            .second = {},
                            .result = ViewOf(result),
                            .mask = {maskView.origin, maskView.pitch}},
                           &Count, {.amount = 5, .hasSecond = false});
      const auto after = result.Pixels();
      for (size_t i = 0; i < after.size(); i++) {
        const auto x = static_cast<int32_t>(i) % width;
        const auto y = static_cast<int32_t>(i) / width;
        const int32_t added = (x * 5 + y * 3) % 4 == 0 ? 0 : 5;
        ASSERT_EQ(after[i], static_cast<uint8_t>(before[i] + added))
            << width << " x " << height << " at " << x << ", " << y;
      }
    }
  }
}

TEST_P(PointWalkOf, EmptyViewsCallNothing) {
  const auto fail = [](const PointViews&, const NoRule&) { ADD_FAILURE() << "called"; };
  const Sheet sheet(IMAGE_U8, 4, 4);
  PointWalk<NoRule>({}, fail, {});
  const PixelView noRows = sheet.view().Rows(2, 2);
  PointWalk<NoRule>({.first = noRows, .second = {}, .result = noRows, .mask = {}}, fail, {});
  const PixelView noColumns = sheet.view().Columns(2, 2);
  PointWalk<NoRule>({.first = noColumns, .second = {}, .result = noColumns, .mask = {}}, fail, {});
}

// The parts that a walk hands out.
struct Parts {
  std::vector<PixelView>* seen;
};
void NotePart(const PointViews& views, const Parts& parts) {
  parts.seen->push_back(views.result);
}

TEST(PointWalk, PartsOfALongRowBeginOnCacheLines) {
  for (const int32_t type : PIXEL_TYPES) {
    for (const int32_t offset : {0, 8, 40}) {
      const Sheet sheet(type, 20000, 1);
      PixelView view = sheet.view();
      const auto over = reinterpret_cast<uintptr_t>(view.origin) % 64;
      view = view.Columns(
          static_cast<int32_t>((64 - over + static_cast<uintptr_t>(offset)) % 64) / view.pixelBytes,
          19000);
      std::vector<PixelView> parts;
      PointWalk<Parts>({.first = view, .second = {}, .result = view, .mask = {}}, &NotePart,
                       {&parts});
      ASSERT_EQ(parts.size(), offset == 0 ? 1u : 2u) << type << " " << offset;
      EXPECT_EQ(reinterpret_cast<uintptr_t>(parts.back().origin) % 64, 0u);
      EXPECT_EQ(parts.front().origin, view.origin);
    }
  }
}

TEST(PointWalk, ShortRowsAreOnePart) {
  const Sheet sheet(IMAGE_U8, 100, 3, 4);
  std::vector<PixelView> parts;
  PointWalk<Parts>({.first = sheet.view(), .second = {}, .result = sheet.view(), .mask = {}},
                   &NotePart, {&parts});
  ASSERT_EQ(parts.size(), 1u);
  EXPECT_TRUE(IsSame(parts[0], sheet.view()));
}

// Results past the caches from the first byte on.
class Streaming {
 public:
  Streaming() { pointStreamBytes = 0; }
  Streaming(const Streaming&) = delete;
  Streaming& operator=(const Streaming&) = delete;
  ~Streaming() { pointStreamBytes = POINT_STREAM_UNKNOWN; }
};

TEST(PointWalk, OnlyResultsThatAreNoOperandAreStreamed) {
  const Streaming streaming;
  const Sheet first(IMAGE_U8, 100, 1);
  const Sheet second(IMAGE_U8, 100, 1);
  const Sheet other(IMAGE_U8, 100, 1);
  for (const Sheet* result : {&first, &second, &other}) {
    std::vector<PixelView> parts;
    PointWalk<Parts>(
        {.first = first.view(), .second = second.view(), .result = result->view(), .mask = {}},
        &NotePart, {&parts});
    ASSERT_EQ(parts.size(), 1u);
    EXPECT_EQ(parts[0].origin != result->view().origin, result == &other);
  }
}

void AddWords(const PointViews& views, const NoRule&) {
  CombineSamePlace<uint16_t, uint8_t, uint16_t>(
      views, [](uint16_t a, uint8_t b) { return static_cast<uint16_t>(a + b); });
}

TEST(PointWalk, StreamedResultsAreThoseOfOrdinaryStoresAndTouchNothingElse) {
  for (const int32_t border : {0, 3}) {
    for (const int32_t width : {1, 2, 7, 8, 31, 32, 33, 63, 64, 65, 4095, 4096, 4097, 9000}) {
      const TestImage words(IMAGE_I16, width, 3, border, 1);
      const TestImage bytes(IMAGE_U8, width, 3, border, 2);
      const TestImage expected(IMAGE_I16, width, 3, border, 3);
      const TestImage streamed(IMAGE_I16, width, 3, border, 3);
      const auto viewOf = [](const TestImage& image) {
        Image* record = nullptr;
        ImageLookup(image, &record);
        return ViewOf(*record);
      };
      PointViews views = {
          .first = viewOf(words), .second = viewOf(bytes), .result = viewOf(expected), .mask = {}};
      PointWalk(views, &AddWords, NoRule());
      views.result = viewOf(streamed);
      {
        const Streaming streaming;
        PointWalk(views, &AddWords, NoRule());
        ASSERT_EQ(streamed.Block(), expected.Block()) << "width " << width;
        views.result = views.first;  // in place
        PointWalk(views, &AddWords, NoRule());
      }
      ASSERT_EQ(words.Pixels(), expected.Pixels()) << "width " << width;
    }
  }
}

}  // namespace
