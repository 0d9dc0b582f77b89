#include "engine/window.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <string>
#include <vector>

#include "platform/processor.h"
#include "tests/support/walks.h"

namespace {

using namespace zel;
using test::ODD_SIZES;
using test::Selects;
using test::SparseMask;
using test::TestImage;
using test::Workers;

// The weighted sum of a window, which tells each of its places apart from the others.
struct Weights {
  int32_t left, right, rows;
  uint32_t factor;  // odd
  uint32_t offset;
};

uint32_t WeightOf(const Weights& weights, int32_t row, int32_t column) {
  const int32_t columns = weights.left + 1 + weights.right;
  return static_cast<uint32_t>(row * columns + column + 1) * weights.factor;
}

template <class Pixel>
void WeightedRow(const void* const* rows, void* to, int32_t width, const Weights& weights) {
  for (int32_t x = 0; x < width; x++) {
    uint32_t sum = weights.offset;
    for (int32_t j = 0; j < weights.rows; j++) {
      const auto* pixels = static_cast<const Pixel*>(rows[j]) + x - weights.left;
      for (int32_t i = 0; i <= weights.left + weights.right; i++) {
        sum += WeightOf(weights, j, i) * static_cast<uint32_t>(pixels[i]);
      }
    }
    static_cast<Pixel*>(to)[x] = static_cast<Pixel>(sum >> 2);
  }
}

constexpr WindowRows<Weights> WEIGHTED = {
    .u8 = &WeightedRow<uint8_t>, .i16 = &WeightedRow<int16_t>, .sgl = nullptr};

// A pixel of the image or of what a filled border holds, by the rule of the filling.
double PixelBeyond(const TestImage& image, int32_t x, int32_t y, BorderFill fill) {
  const ImageInfo info = image.Info();
  const bool inside = x >= 0 && y >= 0 && x < info.width && y < info.height;
  if (fill == BORDER_ZERO && !inside) return 0;
  const auto place = [fill](int32_t at, int32_t size) {
    if (at >= 0 && at < size) return at;
    if (fill == BORDER_REPLICATE) return at < 0 ? 0 : size - 1;
    return at < 0 ? -1 - at : 2 * size - 1 - at;
  };
  return PixelOf(image, place(x, info.width), place(y, info.height));
}

uint32_t Weighted(const TestImage& source, int32_t x, int32_t y, BorderFill fill, int32_t above,
                  const Weights& weights) {
  uint32_t sum = weights.offset;
  for (int32_t j = 0; j < weights.rows; j++) {
    for (int32_t i = 0; i <= weights.left + weights.right; i++) {
      const double pixel = PixelBeyond(source, x - weights.left + i, y - above + j, fill);
      sum += WeightOf(weights, j, i) * static_cast<uint32_t>(static_cast<int32_t>(pixel));
    }
  }
  return sum >> 2;
}

void SetLowBits(const TestImage& image, int32_t x, int32_t y, uint32_t value) {
  if (image.Info().type == IMAGE_U8) {
    image.Set(x, y, static_cast<uint8_t>(value));
  } else {
    image.Set(x, y, static_cast<int16_t>(value));
  }
}

struct Call {
  WindowReach reach;
  BorderFill fill;
  int32_t border;
  Weights even, odd;
};

Status Walk(const WindowImages& images, const Call& call) {
  Operands operands;
  WindowOperandsSettle(images, call.fill, call.border, &operands);
  if (operands.HasFailed()) return operands.status();
  const Status status =
      WindowWalk(WindowViewsOf(operands), call.reach, 1, WEIGHTED.For(operands.source().type),
                 ParityRules<Weights>{call.even, call.odd});
  if (status == STATUS_OK) operands.Written();
  return status;
}

// What a walk makes of the source: pixels under no mask are the source's.
TestImage Expected(const TestImage& source, const TestImage* mask, const Call& call) {
  TestImage result = CloneOf(source);
  const ImageInfo info = source.Info();
  for (int32_t y = 0; y < info.height; y++) {
    const Weights& weights = y % 2 == 0 ? call.even : call.odd;
    for (int32_t x = 0; x < info.width; x++) {
      if (!Selects(mask, x, y)) continue;
      SetLowBits(result, x, y, Weighted(source, x, y, call.fill, call.reach.above, weights));
    }
  }
  return result;
}

constexpr Weights W3X3 = {.left = 1, .right = 1, .rows = 3, .factor = 7, .offset = 3};
constexpr Call CALL_3X3 = {{1, 1}, BORDER_MIRROR, 1, W3X3, W3X3};

Call CallOf(int32_t columns, int32_t rows, BorderFill fill) {
  const int32_t border = std::max(columns, rows) / 2;
  const Weights weights{
      .left = (columns - 1) / 2, .right = columns / 2, .rows = rows, .factor = 11, .offset = 5};
  return {{(rows - 1) / 2, rows / 2}, fill, border, weights, weights};
}

TEST(Window, ReadsEachPlaceOfTheWindowOnAllSizesAndTypes) {
  for (const int32_t workers : {1, 2, 3, 8}) {
    const Workers forced(workers);
    uint64_t seed = 1;
    for (const int32_t type : {IMAGE_U8, IMAGE_I16}) {
      for (const auto& [width, height] : ODD_SIZES) {
        for (const int32_t border : {1, 2}) {
          if (border > 1 && (width < border || height < border)) continue;
          const TestImage source(type, width, height, border, ++seed);
          TestImage destination(type, 3, 2, 2, seed + 9);
          ASSERT_EQ(Walk({source, 0, destination}, CALL_3X3), STATUS_OK);
          ASSERT_EQ(PixelDifference(destination, Expected(source, nullptr, CALL_3X3)), "");
        }
      }
    }
  }
}

TEST(Window, FillsTheBorderByTheRule) {
  for (const BorderFill fill : {BORDER_MIRROR, BORDER_REPLICATE, BORDER_ZERO}) {
    for (const auto& [columns, rows] :
         {std::pair{3, 3}, {5, 3}, {2, 2}, {4, 5}, {1, 7}, {6, 1}, {9, 8}, {1, 1}}) {
      const Call call = CallOf(columns, rows, fill);
      const TestImage source(IMAGE_I16, 23, 11, call.border + 1, 4);
      const auto before = source.Pixels();
      TestImage destination(IMAGE_I16, 1, 1, 0, 5);
      ASSERT_EQ(Walk({source, 0, destination}, call), STATUS_OK);
      EXPECT_EQ(PixelDifference(destination, Expected(source, nullptr, call)), "")
          << columns << " x " << rows << " fill " << fill;
      EXPECT_EQ(source.Pixels(), before);
    }
  }
}

TEST(Window, OfMoreRowsThanFew) {
  for (const int32_t workers : {1, 3}) {
    const Workers forced(workers);
    const Call call = CallOf(3, 41, BORDER_REPLICATE);
    const TestImage source(IMAGE_U8, 17, 50, call.border, 4);
    TestImage destination(IMAGE_U8, 1, 1, 0, 5);
    ASSERT_EQ(Walk({source, 0, destination}, call), STATUS_OK);
    EXPECT_EQ(PixelDifference(destination, Expected(source, nullptr, call)), "");
  }
}

TEST(Window, WritesPixelsOnlyAndKeepsTheDestinationsBorder) {
  const TestImage source(IMAGE_U8, 30, 9, 1, 4);
  const TestImage destination(IMAGE_U8, 30, 9, 3, 5);
  const auto before = destination.Surroundings();
  ASSERT_EQ(Walk({source, 0, destination}, CALL_3X3), STATUS_OK);
  EXPECT_EQ(destination.Surroundings(), before);
}

TEST(Window, WritesSelectedPixelsOfMasksAtTheirOffsets) {
  for (const int32_t workers : {1, 3}) {
    const Workers forced(workers);
    for (const int32_t type : {IMAGE_U8, IMAGE_I16}) {
      for (const auto& [x, y] : {std::pair{0, 0},
                                 {5, 3},
                                 {-4, -2},
                                 {20, 9},
                                 {-11, 2},
                                 {31, 0},
                                 {0, 17},
                                 {-12, 0},
                                 {INT32_MAX, 1},
                                 {1, INT32_MIN}}) {
        const TestImage source(type, 31, 17, 2, 4);
        const TestImage mask = SparseMask(12, 9, x, y, 7);
        TestImage destination(type, 5, 5, 1, 5);
        ASSERT_EQ(Walk({source, mask, destination}, CALL_3X3), STATUS_OK);
        EXPECT_EQ(PixelDifference(destination, Expected(source, &mask, CALL_3X3)), "")
            << type << " at " << x << ' ' << y;
      }
    }
  }
}

TEST(Window, ReplacesTheSource) {
  for (const bool byReference : {false, true}) {
    for (const bool masked : {false, true}) {
      const TestImage source(IMAGE_U8, 33, 12, 2, 4);
      ZEL_SetImageCalibration(source, 7, 2.0f, 3.0f);
      const TestImage mask = SparseMask(20, 20, 6, -3, 8);
      const TestImage expected = Expected(source, masked ? &mask : nullptr, CALL_3X3);
      const ImageRef over = masked ? ImageRef{mask} : byReference ? ImageRef{source} : 0;
      ASSERT_EQ(Walk({source, over, byReference ? ImageRef{source} : 0}, CALL_3X3), STATUS_OK);
      EXPECT_EQ(PixelDifference(source, expected), "");
      EXPECT_EQ(source.Info().unit, 7);
    }
  }
}

TEST(Window, ReplacesTheMask) {
  const TestImage source(IMAGE_U8, 33, 12, 2, 4);
  ZEL_SetImageOffset(source, 3, 4);
  const TestImage mask = SparseMask(20, 20, 6, -3, 8);
  const TestImage expected = Expected(source, &mask, CALL_3X3);
  ASSERT_EQ(Walk({source, mask, mask}, CALL_3X3), STATUS_OK);
  EXPECT_EQ(PixelDifference(mask, expected), "");
  EXPECT_EQ(mask.Info().offsetX, 3);
}

TEST(Window, HasARuleForEvenAndOneForOddRowsOfTheImage) {
  Call call = CALL_3X3;
  call.odd = {.left = 0, .right = 1, .rows = 3, .factor = 13, .offset = 9};
  for (const int32_t workers : {1, 3}) {
    const Workers forced(workers);
    for (const int32_t y : {0, 1, 2, 5}) {
      const TestImage source(IMAGE_U8, 20, 13, 1, 4);
      const TestImage mask = SparseMask(12, 6, 1, y, 8);
      TestImage destination(IMAGE_U8, 5, 5, 1, 5);
      ASSERT_EQ(Walk({source, mask, destination}, call), STATUS_OK);
      EXPECT_EQ(PixelDifference(destination, Expected(source, &mask, call)), "");
      ASSERT_EQ(Walk({source, 0, destination}, call), STATUS_OK);
      EXPECT_EQ(PixelDifference(destination, Expected(source, nullptr, call)), "");
    }
  }
}

TEST(Window, HasGroupedColumnsWithoutAMaskAndWithTheInstructionsOnly) {
  const TestImage source(IMAGE_U8, 23, 4, 1, 4);
  const TestImage mask = SparseMask(23, 4, 0, 0, 8);
  TestImage destination(IMAGE_U8, 5, 5, 1, 5);
  for (const int32_t present : {0, 1}) {
    MmxForce(present);
    for (const ImageRef over : {ImageRef{0}, ImageRef{mask}}) {
      Operands operands;
      WindowOperandsSettle({source, over, destination}, BORDER_MIRROR, 1, &operands);
      const int32_t grouped = WindowGroupedColumns(WindowViewsOf(operands), 4);
      EXPECT_EQ(grouped, present == 1 && over == 0 ? 20 : 0);
    }
  }
}

TEST(Window, WalksPartsOfTheColumns) {
  const Call other = CallOf(3, 3, BORDER_MIRROR);
  const TestImage source(IMAGE_U8, 23, 7, 1, 4);
  TestImage destination(IMAGE_U8, 5, 5, 1, 5);
  Operands operands;
  WindowOperandsSettle({source, 0, destination}, BORDER_MIRROR, 1, &operands);
  const WindowViews views = WindowViewsOf(operands);
  const WindowReach reach = CALL_3X3.reach;
  ASSERT_EQ(WindowWalk(views.Columns(0, 20), reach, 1, WEIGHTED.u8, CALL_3X3.even), STATUS_OK);
  ASSERT_EQ(WindowWalk(views.Columns(20, 23), reach, 1, WEIGHTED.u8, other.even), STATUS_OK);
  const TestImage first = Expected(source, nullptr, CALL_3X3);
  const TestImage rest = Expected(source, nullptr, other);
  for (int32_t y = 0; y < 7; y++) {
    for (int32_t x = 0; x < 23; x++) {
      EXPECT_EQ(destination.Get<uint8_t>(x, y), (x < 20 ? first : rest).Get<uint8_t>(x, y));
    }
  }
}

TEST(Window, GivesEachBandMemoryOfItsOwnAndRowsOnce) {
  for (const int32_t workers : {1, 2, 3, 8}) {
    const Workers forced(workers);
    for (const bool masked : {false, true}) {
      const TestImage source(IMAGE_I16, 37, 40, 1, 4);
      const TestImage mask = SparseMask(30, 30, 2, 3, 8);
      TestImage destination(IMAGE_I16, 5, 5, 1, 5);
      Operands operands;
      WindowOperandsSettle({source, masked ? ImageRef{mask} : 0, destination}, BORDER_MIRROR, 1,
                           &operands);
      const WindowViews views = WindowViewsOf(operands);
      constexpr int64_t bytes = 1000;
      const auto negative = [&](const WindowBand& band) {
        EXPECT_EQ(reinterpret_cast<uintptr_t>(band.memory) % 64, 0u);
        EXPECT_TRUE(band.end - band.begin >= 5 || band.end == views.result.height);
        std::memset(band.memory, band.begin, bytes);
        for (int32_t y = band.begin; y < band.end; y++) {
          auto* to = static_cast<int16_t*>(band.RowBegin(y));
          const auto* from = views.source.Row<int16_t>(y);
          for (int32_t x = 0; x < views.source.width; x++) {
            to[x] = static_cast<int16_t>(~from[x]);
          }
          band.RowEnd(y);
        }
        const uint8_t mark = static_cast<uint8_t>(band.begin);
        EXPECT_TRUE(std::all_of(band.memory, band.memory + bytes,
                                [mark](uint8_t byte) { return byte == mark; }));
      };
      ASSERT_EQ(WindowBandsRun(views, {.memoryBytes = bytes, .startRows = 5}, negative), STATUS_OK);
      for (int32_t y = 0; y < 40; y++) {
        for (int32_t x = 0; x < 37; x++) {
          const auto pixel = source.Get<int16_t>(x, y);
          const bool selected = !masked || Selects(&mask, x, y);
          ASSERT_EQ(destination.Get<int16_t>(x, y),
                    selected ? static_cast<int16_t>(~pixel) : pixel);
        }
      }
    }
  }
}

TEST(Window, StoresPartsOfRowsUnderTheMask) {
  const TestImage source(IMAGE_SGL, 21, 6, 1, 4);
  const TestImage mask = SparseMask(14, 6, 3, 0, 8);
  const std::vector<float> pixels(21, 77.0f);
  for (const bool masked : {false, true}) {
    TestImage destination(IMAGE_SGL, 5, 5, 1, 5);
    Operands operands;
    WindowOperandsSettle({source, masked ? ImageRef{mask} : 0, destination}, BORDER_MIRROR, 1,
                         &operands);
    const WindowViews views = WindowViewsOf(operands);
    std::memcpy(views.result.Row<float>(2), views.source.Row<float>(2),
                static_cast<size_t>(views.result.RowBytes()));
    WindowStore(views, 4, 2, 7, pixels.data());
    const int32_t left = masked ? 3 : 0;
    for (int32_t x = left; x < left + views.result.width; x++) {
      const bool stored = x >= left + 4 && x < left + 11 && (!masked || Selects(&mask, x, 2));
      EXPECT_EQ(destination.Get<float>(x, 2), stored ? 77.0f : source.Get<float>(x, 2)) << x;
    }
  }
}

TEST(Window, RefusesInTheOrderOfTheOperands) {
  const TestImage source(IMAGE_U8, 9, 5, 1, 4);
  const TestImage words(IMAGE_I16, 9, 5, 1, 4);
  const TestImage colours(IMAGE_RGB, 9, 5, 1, 4);
  const TestImage bare(IMAGE_U8, 9, 5, 0, 4);
  constexpr ImageRef unknown = 0x7FFFFFFF;
  EXPECT_EQ(Walk({unknown, unknown, unknown}, CALL_3X3), STATUS_BAD_IMAGE);
  EXPECT_EQ(Walk({colours, unknown, unknown}, CALL_3X3), STATUS_BAD_TYPE);
  EXPECT_EQ(Walk({bare, unknown, unknown}, CALL_3X3), STATUS_BORDER_TOO_SMALL);
  EXPECT_EQ(Walk({source, words, unknown}, CALL_3X3), STATUS_BAD_IMAGE);
  EXPECT_EQ(Walk({source, words, words}, CALL_3X3), STATUS_DESTINATION_TYPE_DIFFERS);
  EXPECT_EQ(Walk({source, unknown, 0}, CALL_3X3), STATUS_BAD_IMAGE);
  EXPECT_EQ(Walk({source, words, 0}, CALL_3X3), STATUS_BAD_TYPE);
  EXPECT_EQ(Walk({words, colours, words}, CALL_3X3), STATUS_BAD_TYPE);
}

TEST(Window, FillsTheBorderBeforeLaterRefusals) {
  const TestImage source(IMAGE_U8, 9, 5, 1, 4);
  const auto before = source.Surroundings();
  const TestImage words(IMAGE_I16, 9, 5, 1, 4);
  EXPECT_EQ(Walk({source, 0, words}, CALL_3X3), STATUS_DESTINATION_TYPE_DIFFERS);
  EXPECT_NE(source.Surroundings(), before);
  EXPECT_EQ(source.Get<uint8_t>(-1, -1), source.Get<uint8_t>(0, 0));
}

TEST(Window, NeedsNoBorderWhereNoneIsRead) {
  const TestImage source(IMAGE_U8, 9, 5, 0, 4);
  TestImage destination(IMAGE_U8, 1, 1, 0, 5);
  const Call call = CallOf(1, 1, BORDER_MIRROR);
  ASSERT_EQ(Walk({source, 0, destination}, call), STATUS_OK);
  EXPECT_EQ(PixelDifference(destination, Expected(source, nullptr, call)), "");
}

// An image smaller than its border is mirrored as the border's own routine does it; windows read
// what it leaves there.
TEST(Window, ReadsTheBorderOfImagesSmallerThanIt) {
  for (const auto& [width, height] : {std::pair{1, 1}, {2, 2}, {1, 5}, {6, 2}, {2, 3}}) {
    const TestImage source(IMAGE_U8, width, height, 4, 4);
    const TestImage filled = CloneOf(source);
    ASSERT_EQ(BorderMirror(filled), STATUS_OK);
    const Call call = CallOf(5, 5, BORDER_MIRROR);
    TestImage destination(IMAGE_U8, 1, 1, 0, 5);
    ASSERT_EQ(Walk({source, 0, destination}, call), STATUS_OK);
    EXPECT_EQ(source.Block(), filled.Block());
    for (int32_t y = 0; y < height; y++) {
      for (int32_t x = 0; x < width; x++) {
        uint32_t sum = call.even.offset;
        for (int32_t j = 0; j < 5; j++) {
          for (int32_t i = 0; i < 5; i++) {
            sum += WeightOf(call.even, j, i) * filled.Get<uint8_t>(x - 2 + i, y - 2 + j);
          }
        }
        EXPECT_EQ(destination.Get<uint8_t>(x, y), static_cast<uint8_t>(sum >> 2));
      }
    }
  }
}

TEST(Window, WithoutMemoryLeavesTheImagesItWouldHaveReplaced) {
  HeapHooks* hooks = HeapHooksGet();
  const Call call = CallOf(1, 41, BORDER_MIRROR);
  for (uint64_t n = 1; n < 20; n++) {
    const TestImage source(IMAGE_U8, 40, 50, call.border, 4);
    ASSERT_EQ(BorderMirror(source), STATUS_OK);
    const auto before = source.Block();
    hooks->requests = 0;
    hooks->failAt = n;
    const Status status = Walk({source, 0, 0}, call);
    const bool refused = hooks->requests >= n;
    hooks->failAt = 0;
    if (!refused) {
      EXPECT_EQ(status, STATUS_OK);
      EXPECT_GT(n, 2u);
      return;
    }
    EXPECT_TRUE(status == STATUS_MEMORY_FULL || status == STATUS_MEMORY_ERROR) << status;
    EXPECT_EQ(source.Block(), before);
  }
  FAIL() << "no end of allocations";
}

}  // namespace
