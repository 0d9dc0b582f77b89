// The desktop in memory: its script, its panels, and what it draws.
#include "platform/memory_desktop.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <vector>

#include "platform/built_in_face.h"
#include "platform/machine_fonts.h"
#include "platform/memory_picture.h"
#include "tests/support/no_fonts.h"

namespace {

using zel::DesktopEventKind;

class MemoryDesktop : public testing::Test {
 protected:
  MemoryDesktop() {
    zel::MemoryDesktopReset();
    panel_ = desktop_.panelCreate(0, "title", {1, 2, SIDE, SIDE});
    canvas_ = desktop_.canvasCreate(panel_);
    desktop_.canvasSet(panel_, canvas_, zel::CANVAS_BACKGROUND, 0);
    desktop_.canvasSet(panel_, canvas_, zel::CANVAS_WIDTH, SIDE);
    desktop_.canvasSet(panel_, canvas_, zel::CANVAS_HEIGHT, SIDE);
  }
  ~MemoryDesktop() override { zel::MemoryDesktopReset(); }

  void Line(int32_t x1, int32_t y1, int32_t x2, int32_t y2) const {
    desktop_.penMove(canvas_, x1, y1);
    desktop_.lineTo(canvas_, x2, y2);
  }
  bool IsSet(int32_t x, int32_t y) const {
    return zel::MemoryDesktopPixel(canvas_, x, y) == 0xFFFFFF;
  }
  int32_t CountSet() const {
    int32_t count = 0;
    for (int32_t i = 0; i < SIDE * SIDE; i++) count += IsSet(i % SIDE, i / SIDE) ? 1 : 0;
    return count;
  }
  void Clear() const {
    zel::DesktopPen black;
    black.foreground = 0;
    desktop_.canvasPen(canvas_, black);
    desktop_.rect(canvas_, {0, 0, SIDE, SIDE}, zel::ShapeFill::FILL);
    desktop_.penDefaults(canvas_);
  }

  static constexpr int32_t SIDE = 60;
  const zel::Desktop& desktop_ = zel::MEMORY_DESKTOP;
  int32_t panel_, canvas_;
};

std::vector<DesktopEventKind> taken;

void Take(const zel::DesktopEvent& event) {
  taken.push_back(event.kind);
  zel::MEMORY_DESKTOP.pump();
}

TEST_F(MemoryDesktop, HandsTheScriptOutInOrder) {
  taken.clear();
  desktop_.setSink(panel_, canvas_, 5, &Take);
  zel::DesktopEvent event;
  event.window = 5;
  for (const auto kind : {DesktopEventKind::LEFT_PRESS, DesktopEventKind::KEY_PRESS}) {
    event.kind = kind;
    zel::MemoryDesktopPost(event);
  }
  zel::MemoryDesktopPointer(3, 4, true);
  event.kind = DesktopEventKind::GOT_FOCUS;
  zel::MemoryDesktopPost(event);
  event.window = 6;
  zel::MemoryDesktopPost(event);
  desktop_.pump();
  EXPECT_EQ(taken, (std::vector{DesktopEventKind::LEFT_PRESS, DesktopEventKind::KEY_PRESS,
                                DesktopEventKind::GOT_FOCUS}))
      << "inner pumps stop at the sample, the outer one drops it";
  zel::MemoryDesktopPointer(7, 8, true);
  EXPECT_TRUE(desktop_.pointer(panel_, canvas_).leftDown);
  const zel::PointerState last = desktop_.pointer(panel_, canvas_);
  EXPECT_EQ(last.x, 7);
  EXPECT_FALSE(last.leftDown);
  EXPECT_FALSE(last.isFollowed);
}

TEST_F(MemoryDesktop, KeepsWhatPanelsAreTold) {
  EXPECT_EQ(desktop_.panelGet(panel_, zel::PANEL_VISIBLE), 0);
  EXPECT_EQ(desktop_.panelGet(panel_, zel::PANEL_TOP), 1);
  EXPECT_EQ(desktop_.active(), 0);
  desktop_.panelSet(panel_, zel::PANEL_VISIBLE, 1);
  EXPECT_EQ(desktop_.active(), 0);
  desktop_.activate(panel_);
  EXPECT_EQ(desktop_.active(), panel_);
  desktop_.panelSet(panel_, zel::PANEL_VISIBLE, 0);
  EXPECT_EQ(desktop_.active(), 0);
  EXPECT_STREQ(desktop_.panelTitle(panel_), "title");
  desktop_.panelSetTitle(panel_, "other");
  EXPECT_STREQ(desktop_.panelTitle(panel_), "other");
  const int32_t other = desktop_.panelCreate(0, "", {});
  EXPECT_GT(other, canvas_);
  desktop_.panelDiscard(other);
  EXPECT_GT(desktop_.panelCreate(0, "", {}), other) << "numbers are never used again";
  EXPECT_EQ(desktop_.panelGet(other, zel::PANEL_TOP), 0);
  EXPECT_LT(desktop_.canvasCreate(other), 0);
}

TEST_F(MemoryDesktop, DrawsLinesWithBothEnds) {
  for (const auto& [x, y] : {std::pair{50, 7}, {7, 50}, {9, 9}, {0, 0}, {10, 10}, {30, 59}}) {
    Clear();
    Line(10, 10, x, y);
    EXPECT_TRUE(IsSet(10, 10));
    EXPECT_TRUE(IsSet(x, y));
    EXPECT_EQ(CountSet(), std::max(std::abs(x - 10), std::abs(y - 10)) + 1) << x << ", " << y;
  }
}

TEST_F(MemoryDesktop, DrawsFramesAndFillsWithinTheClip) {
  desktop_.rect(canvas_, {10, 5, 20, 30}, zel::ShapeFill::FRAME);
  EXPECT_EQ(CountSet(), 2 * 30 + 2 * 18);
  EXPECT_TRUE(IsSet(34, 29));
  EXPECT_FALSE(IsSet(35, 29));
  Clear();
  desktop_.setClip(canvas_, {0, 0, 15, 10});
  desktop_.rect(canvas_, {10, 5, 20, 30}, zel::ShapeFill::FILL);
  desktop_.setClip(canvas_, {0, 0, SIDE, SIDE});
  EXPECT_EQ(CountSet(), 5 * 5);
}

// The middles of pixels that lie in the ellipse, and the middle row and column.
TEST_F(MemoryDesktop, FillsOvalsByTheMiddlesOfPixels) {
  for (const auto& [width, height] : {std::pair{1, 1}, {2, 9}, {20, 20}, {31, 17}, {40, 3}}) {
    Clear();
    desktop_.oval(canvas_, {4, 6, height, width}, zel::ShapeFill::FILL);
    for (int32_t y = 0; y < height; y++) {
      for (int32_t x = 0; x < width; x++) {
        const double u = (x + 0.5 - width / 2.0) / (width / 2.0);
        const double v = (y + 0.5 - height / 2.0) / (height / 2.0);
        const bool isMiddle = std::abs(2 * x + 1 - width) <= 1;
        ASSERT_EQ(IsSet(6 + x, 4 + y), isMiddle || u * u + v * v <= 1 + 1e-12)
            << width << " x " << height << " at " << x << ", " << y;
      }
    }
    const int32_t filled = CountSet();
    desktop_.oval(canvas_, {4, 6, height, width}, zel::ShapeFill::FRAME);
    EXPECT_EQ(CountSet(), filled) << "the frame lies inside";
  }
}

TEST_F(MemoryDesktop, TakesAwayWhatItInvertedByDrawingItAgain) {
  zel::DesktopPen pen;
  pen.mode = zel::PEN_INVERT;
  for (uint8_t& row : pen.pattern) row = 0xCC;
  Line(3, 3, 40, 50);
  const int32_t before = CountSet();
  for (int i = 0; i < 2; i++) {
    desktop_.canvasPen(canvas_, pen);
    desktop_.oval(canvas_, {2, 2, 40, 50}, zel::ShapeFill::FRAME);
    desktop_.rect(canvas_, {5, 5, 30, 30}, zel::ShapeFill::FRAME);
    if (i != 0) continue;
    EXPECT_NE(CountSet(), before);
  }
  EXPECT_EQ(CountSet(), before);
  desktop_.invert(canvas_, {0, 0, SIDE, SIDE});
  EXPECT_EQ(CountSet(), SIDE * SIDE - before);
}

TEST_F(MemoryDesktop, TakesColoursAsTheyAreAndLeavesTheirHighByte) {
  std::vector<uint32_t> pixels(5 * 3);
  for (uint32_t i = 0; i < pixels.size(); i++) pixels[i] = 0xAB000000 + i * 0x010203;
  const auto* rows = static_cast<const uint8_t*>(static_cast<const void*>(pixels.data()));
  const int32_t bitmap = desktop_.bitmapCreate({rows, 20, 32, 5, 3, nullptr});
  desktop_.blit(canvas_, bitmap, {1, 1, 2, 4}, {3, 4, 2, 4});
  desktop_.blit(canvas_, bitmap, {0, 0, 3, 5}, {20, 20, 6, 13});
  for (int32_t i = 0; i < 8; i++) {
    EXPECT_EQ(zel::MemoryDesktopPixel(canvas_, 4 + i % 4, 3 + i / 4),
              static_cast<uint32_t>((1 + i / 4) * 5 + 1 + i % 4) * 0x010203);
  }
  for (int32_t i = 0; i < 6 * 13; i++) {
    const int32_t from = i / 13 * 3 / 6 * 5 + i % 13 * 5 / 13;
    ASSERT_EQ(zel::MemoryDesktopPixel(canvas_, 20 + i % 13, 20 + i / 13),
              static_cast<uint32_t>(from) * 0x010203);
  }
  desktop_.bitmapDiscard(bitmap);
}

TEST_F(MemoryDesktop, ScalesBitmapsToTheNearestPixel) {
  std::vector<uint8_t> rows(7 * 8);
  std::vector<uint32_t> colours(256);
  for (size_t i = 0; i < rows.size(); i++) rows[i] = static_cast<uint8_t>(i);
  for (uint32_t i = 0; i < 256; i++) colours[i] = i * 0x010203;
  const int32_t bitmap = desktop_.bitmapCreate({rows.data(), 8, 8, 7, 7, colours.data()});
  desktop_.blit(canvas_, bitmap, {1, 2, 5, 4}, {3, 4, 50, 51});
  for (int32_t y = 0; y < 50; y++) {
    for (int32_t x = 0; x < 51; x++) {
      const auto index = static_cast<size_t>((1 + y * 5 / 50) * 8 + 2 + x * 4 / 51);
      ASSERT_EQ(zel::MemoryDesktopPixel(canvas_, 4 + x, 3 + y), colours[rows[index]]);
    }
  }
  desktop_.bitmapDiscard(bitmap);
}

TEST_F(MemoryDesktop, DropsDrawingBeyondItsLimits) {
  desktop_.canvasSet(panel_, canvas_, zel::CANVAS_WIDTH, zel::MEMORY_CANVAS_LIMIT + 1);
  Line(0, 0, 5, 5);
  EXPECT_EQ(zel::MemoryDesktopPixel(canvas_, 1, 1), UINT32_MAX);
  desktop_.canvasSet(panel_, canvas_, zel::CANVAS_WIDTH, 100);
  Line(0, 0, 5, 5);
  EXPECT_TRUE(IsSet(1, 1));
  desktop_.rect(canvas_, {INT32_MIN, INT32_MIN, INT32_MAX, INT32_MAX}, zel::ShapeFill::FILL);
  desktop_.oval(canvas_, {-5, -5, INT32_MAX, 3}, zel::ShapeFill::FILL);
  Line(INT32_MIN, INT32_MAX, INT32_MAX, INT32_MIN);
  EXPECT_EQ(zel::MemoryDesktopPixel(canvas_, 100, 0), UINT32_MAX);
}

class MemoryText : public MemoryDesktop {
 protected:
  MemoryText() {
    desktop_.metaFont("letters", zel::DESKTOP_BASE_FONT, {10, false, false, false, false});
    Clear();
  }
  struct Box {
    int32_t left = SIDE, top = SIDE, right = -1, bottom = -1;  // of the first and last pixels
    bool operator==(const Box&) const = default;
  };
  Box BoxSet() const {
    Box box;
    for (int32_t i = 0; i < SIDE * SIDE; i++) {
      const int32_t x = i % SIDE;
      const int32_t y = i / SIDE;
      if (!IsSet(x, y)) continue;
      box = {std::min(box.left, x), std::min(box.top, y), std::max(box.right, x),
             std::max(box.bottom, y)};
    }
    return box;
  }
  // "H" is 5 wide and 7 high, in a cell of 6 by 10.
  Box Drawn(const char* text, const zel::DesktopRect& rect, zel::TextAlignment alignment) {
    Clear();
    desktop_.text(canvas_, text, "letters", rect, alignment);
    return BoxSet();
  }
};

TEST_F(MemoryText, StandsInItsRectangle) {
  using enum zel::TextAlignment;
  const zel::DesktopRect rect{20, 10, 10, 40};
  EXPECT_EQ(Drawn("H", rect, LEFT), (Box{10, 20, 14, 26}));
  EXPECT_EQ(Drawn("H", rect, CENTRE), (Box{27, 20, 31, 26}));
  EXPECT_EQ(Drawn("H", rect, RIGHT), (Box{44, 20, 48, 26}));
  EXPECT_EQ(Drawn("HHHHHHHHHHHH", rect, LEFT), (Box{10, 20, 49, 26})) << "cut at its side";
  // Letters of 10 points are 16 pixels high, where there is room: in the middle of 30.
  EXPECT_EQ(Drawn("H", {20, 10, 30, 40}, LEFT), (Box{10, 27, 14, 33}));
  EXPECT_EQ(Drawn("H", {20, 10, 0, 40}, LEFT), Box{});
  EXPECT_EQ(Drawn("H", {20, 10, 10, -4}, LEFT), Box{});
  EXPECT_EQ(Drawn("", rect, LEFT), Box{});
}

TEST_F(MemoryText, HasALineForEachLineFeed) {
  using enum zel::TextAlignment;
  EXPECT_EQ(Drawn("H\nH\n", {0, 0, 30, 30}, LEFT), (Box{0, 0, 4, 16}));
  EXPECT_EQ(Drawn("\n\nH", {0, 0, 30, 30}, LEFT), (Box{0, 20, 4, 26}));
}

TEST_F(MemoryText, IsClippedAndTakesThePensForeground) {
  using enum zel::TextAlignment;
  desktop_.setClip(canvas_, {22, 0, 3, 12});
  EXPECT_EQ(Drawn("HH", {20, 10, 10, 40}, LEFT), (Box{10, 22, 11, 24}));
  desktop_.setClip(canvas_, {0, 0, SIDE, SIDE});
  Clear();
  zel::DesktopPen pen;
  pen.foreground = 0x123456;
  pen.pattern[0] = 0;
  pen.mode = zel::PEN_INVERT;
  desktop_.canvasPen(canvas_, pen);
  for (const uint32_t expected : {0x123456u, 0u}) {
    desktop_.text(canvas_, "H", "letters", {0, 0, 10, 10}, LEFT);
    EXPECT_EQ(zel::MemoryDesktopPixel(canvas_, 0, 0), expected);
  }
}

TEST_F(MemoryText, InAnUnknownFontIsNotDrawn) {
  desktop_.text(canvas_, "H", "others", {0, 0, 10, 10}, zel::TextAlignment::LEFT);
  EXPECT_EQ(BoxSet(), Box{});
}

TEST(WindowText, WithoutFontsIsDrawnInTheBuiltInFace) {
  const zel::TextRasteriser* faces[] = {&test::NO_FONTS, &zel::BUILT_IN_FACE, &zel::MACHINE_FONTS};
  zel::MemoryPicture pictures[3];
  for (int32_t i = 0; i < 3; i++) {
    pictures[i].Resize(60, 20);
    ASSERT_TRUE(pictures[i].Begin());
    pictures[i].pen.foreground = 0;
    pictures[i].Text("Size", {10, false, false, false, false}, {0, 0, 20, 60},
                     zel::TextAlignment::LEFT, *faces[i]);
  }
  int32_t set = 0;
  int32_t others = 0;
  for (int32_t y = 0; y < 20; y++) {
    for (int32_t x = 0; x < 60; x++) {
      EXPECT_EQ(pictures[0].Pixel(x, y), pictures[1].Pixel(x, y));
      set += pictures[0].Pixel(x, y) == 0 ? 1 : 0;
      others += pictures[0].Pixel(x, y) != pictures[2].Pixel(x, y) ? 1 : 0;
    }
  }
  EXPECT_GT(set, 20);
  EXPECT_GT(others, 0);
}

}  // namespace
