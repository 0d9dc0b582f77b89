// Tools, events, regions, the tools window and buttons, with a person played by a script.
#include <array>
#include <cmath>
#include <string>

#include "core/heap.h"
#include "core/world.h"
#include "display/commands.h"
#include "display/display_test.h"

namespace {

using test::DesktopEventKind;
using test::TestImage;
using Numbers = std::vector<int32_t>;

// A command that an image goes with: no export sends one.
zel::Status WithImage(int32_t command, ImageRef image, const Numbers& input) {
  zel::DisplayRequest request;
  request.window = 17;
  request.command = command;
  request.image = image;
  request.input = input.data();
  request.inputCount = static_cast<int64_t>(input.size());
  return zel::DisplayDispatch(&request, {}, nullptr);
}

class Tools : public test::Display {
 protected:
  // A window with an image of its size, and a tool.
  void Open(int32_t tool) {
    ASSERT_EQ(ZEL_WindDraw(image_, 0, nullptr, 1), 0);
    ASSERT_EQ(ZEL_SetActiveTool(tool), 0);
  }
  static Numbers Integers(const WindowEvent& event) { return {event.integers, event.integers + 4}; }

  TestImage image_{IMAGE_U8, 200, 150, 0, 5};
};

TEST_F(Tools, DrawLines) {
  Open(WTOOL_LINE);
  Drag(0, {{10, 20}, {15, 22}, {40, 60}});
  const WindowEvent event = EventOf(0);
  EXPECT_EQ(event.type, WEVENT_DRAW);
  EXPECT_EQ(event.tool, WTOOL_LINE);
  EXPECT_EQ(Integers(event), (Numbers{10, 20, 40, 60}));
  EXPECT_EQ(event.floats[0], 30.0F);
  EXPECT_EQ(event.floats[1], 40.0F);
  EXPECT_EQ(event.floats[3], 50.5F);
  EXPECT_NEAR(event.floats[2], 180 + std::atan2(30.0, 40.0) * 57.29577867, 1e-3);
  EXPECT_EQ(Ask(0, -30), (Numbers{10, 20, 41, 61, ROI_MARKER_EXTERNAL, 2, 10, 20, 40, 60}));
  EXPECT_EQ(Ask(0, -1).size(), 8u);
  EXPECT_EQ(Ask(0, -1)[7], 50);
  EXPECT_EQ(EventOf(0).type, WEVENT_NONE);
}

TEST_F(Tools, TellAnglesWithUpAsZeroAndLeftAsNinety) {
  Open(WTOOL_LINE);
  const struct {
    int32_t x, y;
    float angle;
  } ends[] = {{100, 50, 0}, {50, 75, 90},   {100, 100, 180}, {150, 75, 270},
              {75, 50, 45}, {125, 50, 315}, {75, 100, 135},  {125, 100, 225}};
  for (const auto& end : ends) {
    Drag(0, {{100, 75}, {end.x, end.y}});
    EXPECT_NEAR(EventOf(0).floats[2], end.angle, 1e-4F) << end.x << ", " << end.y;
  }
}

TEST_F(Tools, DrawBoxesWithTheirCornersInOrder) {
  Open(WTOOL_RECT);
  Drag(0, {{60, 50}, {20, 10}});
  EXPECT_EQ(Integers(EventOf(0)), (Numbers{20, 10, 60, 50}));
  EXPECT_EQ(Ask(0, -30), (Numbers{20, 10, 60, 50, ROI_MARKER_EXTERNAL, 3, 20, 10, 60, 50}));
  ASSERT_EQ(ZEL_SetActiveTool(WTOOL_OVAL), 0);
  Drag(0, {{10, 10}, {30, 25}});
  const WindowEvent event = EventOf(0);
  EXPECT_EQ(event.tool, WTOOL_OVAL);
  EXPECT_EQ(event.floats[0], 20.0F);
  EXPECT_EQ(event.floats[1], 15.0F);
}

TEST_F(Tools, LeaveThePictureAsItWasBesidesTheRegion) {
  Open(WTOOL_RECT);
  Drag(0, {{20, 10}, {90, 90}, {60, 50}});
  EXPECT_EQ(EventOf(0).type, WEVENT_DRAW);
  int32_t changed = 0;
  for (int32_t y = 0; y < 150; y++) {
    for (int32_t x = 0; x < 200; x++) {
      const uint32_t shown = image_.Get<uint8_t>(x, y) * 0x010101u;
      const bool onFrame =
          x >= 20 && x < 60 && y >= 10 && y < 50 && (x == 20 || x == 59 || y == 10 || y == 49);
      if (Pixel(0, x, y) != shown) changed++;
      if (onFrame) continue;
      ASSERT_EQ(Pixel(0, x, y), shown) << x << ", " << y;
    }
  }
  EXPECT_GT(changed, 100);
  ASSERT_EQ(ZEL_ClearWROI(0), 0);
  EXPECT_EQ(Pixel(0, 20, 10), image_.Get<uint8_t>(20, 10) * 0x010101u);
  EXPECT_EQ(Ask(0, -30), (Numbers{0, 0, 200, 150, ROI_MARKER_EXTERNAL, 0}));
}

TEST_F(Tools, BringTheFormerRegionBackAfterAMereClick) {
  Open(WTOOL_RECT);
  Drag(0, {{20, 10}, {60, 50}});
  EventOf(0);
  Drag(0, {{90, 90}, {90, 90}});
  EXPECT_EQ(EventOf(0).type, WEVENT_NONE);
  EXPECT_EQ(Ask(0, -1), (Numbers{20, 10, 60, 50, 40, 40}));
}

TEST_F(Tools, CountTheTicksBetweenClicks) {
  Open(WTOOL_POINT);
  Drag(0, {{30, 40}});
  EventOf(0);
  zel::MemoryDesktopTicks(1230);
  Drag(0, {{31, 41}});
  const WindowEvent event = EventOf(0);
  EXPECT_EQ(event.type, WEVENT_CLICK);
  EXPECT_EQ(event.tool, WTOOL_POINT);
  EXPECT_EQ(Integers(event), (Numbers{31, 41, 230, 0}));
  EXPECT_EQ(event.floats[0], static_cast<float>(image_.Get<uint8_t>(31, 41)));
  EXPECT_EQ(Ask(0, -30), (Numbers{31, 41, 32, 42, ROI_MARKER_EXTERNAL, 1, 31, 41}));
}

TEST_F(Tools, TellWhatAPixelOfEachTypeHolds) {
  const auto clicked = [](const TestImage& image) {
    EXPECT_EQ(ZEL_WindDraw(image, 0, nullptr, 1), 0);
    EXPECT_EQ(ZEL_SetActiveTool(WTOOL_POINT), 0);
    Drag(0, {{3, 2}});
    const WindowEvent event = EventOf(0);
    return std::vector<float>{event.floats[0], event.floats[1], event.floats[2]};
  };
  const TestImage integers(IMAGE_I16, 90, 70);
  integers.Set<int16_t>(3, 2, -1234);
  EXPECT_EQ(clicked(integers)[0], -1234.0F);
  const TestImage floats(IMAGE_SGL, 90, 70);
  floats.Set<float>(3, 2, 0.125F);
  EXPECT_EQ(clicked(floats)[0], 0.125F);
  const TestImage colours(IMAGE_RGB, 90, 70);
  colours.Set<uint32_t>(3, 2, 0x00112233);
  EXPECT_EQ(clicked(colours), (std::vector<float>{0x11, 0x22, 0x33}));
  const TestImage spectrum(IMAGE_COMPLEX, 90, 70);
  const float pixel[] = {2.5F, -7.0F};
  spectrum.Set<std::array<float, 2>>(3, 2, {pixel[0], pixel[1]});
  const std::vector<float> parts = clicked(spectrum);
  EXPECT_EQ(parts[0], pixel[0]);
  EXPECT_EQ(parts[1], pixel[1]);
}

TEST_F(Tools, SnapToTheGridAndKeepToShift) {
  Open(WTOOL_LINE);
  ASSERT_EQ(ZEL_SetWindow2DAttributes(0, WATTR2_GRID, 10, 8), 0);
  Drag(0, {{13, 27}, {47, 68}});
  EXPECT_EQ(Integers(EventOf(0)), (Numbers{8, 20, 40, 60}));
  ASSERT_EQ(ZEL_SetWindow2DAttributes(0, WATTR2_GRID, 1, 1), 0);
  ASSERT_EQ(ZEL_ClearWROI(0), 0);
  Drag(0, {{10, 10}, {30, 25}}, zel::MODIFIER_SHIFT);
  EXPECT_EQ(Integers(EventOf(0)), (Numbers{10, 10, 30, 10}));
  ASSERT_EQ(ZEL_ClearWROI(0), 0);
  ASSERT_EQ(ZEL_SetActiveTool(WTOOL_RECT), 0);
  Drag(0, {{50, 50}, {20, 62}}, zel::MODIFIER_SHIFT);
  EXPECT_EQ(Integers(EventOf(0)), (Numbers{38, 50, 50, 62}));
}

TEST_F(Tools, AddShapesWithShift) {
  Open(WTOOL_RECT);
  Drag(0, {{20, 10}, {60, 50}});
  Drag(0, {{100, 100}, {120, 140}}, zel::MODIFIER_SHIFT);
  EXPECT_EQ(EventOf(0).tool, WTOOL_FREEHAND);
  const int32_t m = ROI_MARKER_EXTERNAL;
  EXPECT_EQ(Ask(0, -30),
            (Numbers{20, 10, 121, 121, m, 3, 20, 10, 60, 50, m, 3, 100, 100, 120, 120}));
}

TEST_F(Tools, DrawPolygonsPressByPress) {
  Open(WTOOL_POLYGON);
  Post(0, DesktopEventKind::LEFT_PRESS, 20, 20);
  zel::MemoryDesktopPointer(60, 20, false);
  Post(0, DesktopEventKind::LEFT_PRESS, 80, 20);
  zel::MemoryDesktopPointer(80, 50, true);
  Post(0, DesktopEventKind::LEFT_PRESS, 80, 70);
  zel::MemoryDesktopPointer(80, 80, true);
  Post(0, DesktopEventKind::LEFT_PRESS, 23, 17);
  const WindowEvent event = EventOf(0);
  EXPECT_EQ(event.type, WEVENT_DRAW);
  EXPECT_EQ(event.integers[0], WTOOL_POLYGON);
  EXPECT_EQ(event.floats[2], 81.0F);
  EXPECT_EQ(Ask(0, -30),
            (Numbers{20, 20, 81, 71, ROI_MARKER_EXTERNAL, 5, 20, 20, 80, 20, 80, 70, 20, 20}));
}

// Nearer than two image pixels at that zoom, which are eight of the window.
TEST_F(Tools, ClosePolygonsNearTheirStartInAZoomedWindow) {
  const auto corners = [](int32_t lastX) {
    EXPECT_EQ(ZEL_ClearWROI(0), 0);
    Post(0, DesktopEventKind::LEFT_PRESS, 40, 40);
    zel::MemoryDesktopPointer(80, 40, false);
    Post(0, DesktopEventKind::LEFT_PRESS, 120, 40);
    Post(0, DesktopEventKind::LEFT_PRESS, 120, 120);
    Post(0, DesktopEventKind::LEFT_PRESS, lastX, 40);
    Post(0, DesktopEventKind::LEFT_DOUBLE_PRESS, 60, 100);
    zel::MemoryDesktopPointer(60, 100, false);
    EventOf(0);
    return (Ask(0, -30).size() - 6) / 2;
  };
  Open(WTOOL_POLYGON);
  ASSERT_EQ(ZEL_SetWindow2DAttributes(0, WATTR2_ZOOM, 4, 4), 0);
  EXPECT_EQ(corners(47), 4u) << "closed by the press";
  EXPECT_EQ(corners(48), 5u) << "closed by the double press";
}

TEST_F(Tools, EndBrokenLinesAtADoubleClick) {
  Open(WTOOL_POLYLINE);
  Post(0, DesktopEventKind::LEFT_PRESS, 20, 20);
  zel::MemoryDesktopPointer(60, 20, false);
  Post(0, DesktopEventKind::LEFT_PRESS, 80, 20);
  Post(0, DesktopEventKind::LEFT_PRESS, 80, 70);
  Post(0, DesktopEventKind::LEFT_DOUBLE_PRESS, 80, 70);
  EXPECT_EQ(EventOf(0).tool, WTOOL_POLYLINE);
  EXPECT_EQ(Ask(0, -30),
            (Numbers{20, 20, 81, 71, ROI_MARKER_EXTERNAL, 10, 20, 20, 80, 20, 80, 70}));
}

TEST_F(Tools, MakeAPointOfTooFewCorners) {
  Open(WTOOL_FREELINE);
  Drag(0, {{20, 20}, {24, 20}});
  EXPECT_EQ(EventOf(0).type, WEVENT_CLICK);
  EXPECT_EQ(Ask(0, -1), (Numbers{20, 20}));
}

TEST_F(Tools, KeepTheFirst8192PointsDrawnByHand) {
  Open(WTOOL_FREEHAND);
  std::vector<std::pair<int32_t, int32_t>> way;
  for (int32_t i = 0; i < 9000; i++) way.emplace_back(i % 190, i / 190);
  Drag(0, way);
  EXPECT_EQ(EventOf(0).tool, WTOOL_FREEHAND);
  RoiDescriptor* region = nullptr;
  ASSERT_EQ(ZEL_GetWROI(0, &region), 0);
  ASSERT_EQ(region->contourCount, 1);
  const RoiContour* contour = region->contours[0];
  ASSERT_EQ(contour->pointCount, 8193) << "the last one closes the shape";
  EXPECT_EQ(contour->points[8191].x, 8191 % 190);
  EXPECT_EQ(contour->points[8191].y, 8191 / 190);
  EXPECT_EQ(contour->points[8192].x, 0);
  ZEL_FreeROI(region);
}

TEST_F(Tools, EndWithoutAnEventWhenNobodyMovesThePointer) {
  Open(WTOOL_RECT);
  Post(0, DesktopEventKind::LEFT_PRESS, 20, 20);
  zel::MemoryDesktopPointer(60, 20, true);
  EXPECT_EQ(EventOf(0).type, WEVENT_NONE);
  EXPECT_EQ(Ask(0, -1), Numbers{});
  EXPECT_FALSE(zel::display.isTracking);
}

TEST_F(Tools, SurviveAWindowThatIsClosedUnderThem) {
  Open(WTOOL_POLYGON);
  Post(0, DesktopEventKind::LEFT_PRESS, 20, 20);
  zel::MemoryDesktopPointer(60, 20, true);
  Post(0, DesktopEventKind::CLOSE);
  zel::MemoryDesktopPointer(70, 20, true);
  EXPECT_EQ(EventOf(0).type, WEVENT_CLOSE);
  EXPECT_EQ(zel::RecordOf(0).isOpen, false);
}

TEST_F(Tools, MoveARegionWithControl) {
  Open(WTOOL_RECT);
  Drag(0, {{20, 10}, {60, 50}});
  Drag(0, {{30, 30}, {35, 40}}, zel::MODIFIER_CONTROL);
  EXPECT_EQ(Integers(EventOf(0)), (Numbers{25, 20, 65, 60}));
  Drag(0, {{100, 100}, {110, 110}}, zel::MODIFIER_CONTROL);
  EXPECT_EQ(EventOf(0).type, WEVENT_NONE);
  EXPECT_EQ(zel::MemoryDesktopBeeps(), 1);
  EXPECT_EQ(Ask(0, -1), (Numbers{25, 20, 65, 60, 40, 40}));
}

// The first row and column of the region's bounds belong to it, those at their ends do not.
TEST_F(Tools, MoveARegionFromWithinItsBoundsAlone) {
  Open(WTOOL_RECT);
  Drag(0, {{20, 10}, {60, 50}});
  EventOf(0);
  int32_t beeps = 0;
  for (const auto& [x, y] : {std::pair{60, 30}, {30, 50}, {19, 30}, {30, 9}}) {
    Drag(0, {{x, y}, {x + 5, y + 5}}, zel::MODIFIER_CONTROL);
    EXPECT_EQ(EventOf(0).type, WEVENT_NONE) << x << ' ' << y;
    EXPECT_EQ(zel::MemoryDesktopBeeps(), ++beeps) << x << ' ' << y;
  }
  Drag(0, {{59, 49}, {60, 51}}, zel::MODIFIER_CONTROL);
  EXPECT_EQ(Integers(EventOf(0)), (Numbers{21, 12, 61, 52}));
  Drag(0, {{21, 12}, {20, 10}}, zel::MODIFIER_CONTROL);
  EXPECT_EQ(Integers(EventOf(0)), (Numbers{20, 10, 60, 50}));
}

TEST_F(Tools, MoveAllShapesOfARegionTogether) {
  Open(WTOOL_RECT);
  Drag(0, {{20, 10}, {60, 50}});
  Drag(0, {{100, 100}, {120, 120}}, zel::MODIFIER_SHIFT);
  EventOf(0);
  Drag(0, {{30, 30}, {33, 25}}, zel::MODIFIER_CONTROL);
  EXPECT_EQ(EventOf(0).tool, WTOOL_FREEHAND);
  const int32_t m = ROI_MARKER_EXTERNAL;
  EXPECT_EQ(Ask(0, -30), (Numbers{23, 5, 124, 116, m, 3, 23, 5, 63, 45, m, 3, 103, 95, 123, 115}));
}

TEST_F(Tools, LeaveARegionWhereItIsWhenNobodyMovesThePointer) {
  Open(WTOOL_RECT);
  Drag(0, {{20, 10}, {60, 50}});
  EventOf(0);
  Post(0, DesktopEventKind::LEFT_PRESS, 30, 30, zel::MODIFIER_CONTROL);
  zel::MemoryDesktopPointer(90, 90, true);
  EXPECT_EQ(EventOf(0).type, WEVENT_NONE);
  EXPECT_EQ(Ask(0, -1), (Numbers{20, 10, 60, 50, 40, 40}));
  EXPECT_EQ(Pixel(0, 80, 80), image_.Get<uint8_t>(80, 80) * 0x010101u);
}

TEST_F(Tools, TakeAnAddedShapeWholeOrLeaveNoRegionWithoutMemory) {
  Open(WTOOL_RECT);
  zel::HeapHooks* hooks = zel::HeapHooksGet();
  int32_t lost = 0;
  bool refused = true;
  for (uint64_t n = 1; refused; n++) {
    Drag(0, {{20, 10}, {60, 50}});
    EventOf(0);
    hooks->requests = 0;
    hooks->failAt = n;
    Drag(0, {{100, 100}, {120, 120}}, zel::MODIFIER_SHIFT);
    const int32_t type = EventOf(0).type;
    refused = hooks->requests >= n;
    hooks->failAt = 0;
    lost += type == WEVENT_NONE ? 1 : 0;
    EXPECT_EQ(Ask(0, -1), type == WEVENT_NONE ? Numbers{} : (Numbers{6, 20, 10, 121, 121})) << n;
    EXPECT_EQ(zel::WorldFault(), nullptr);
  }
  EXPECT_GE(lost, 1);
}

// What was told before the key is forgotten with the region, what is told after it stays.
TEST_F(Tools, LeaveARegionAloneThatIsErasedWhileItIsMoved) {
  Open(WTOOL_RECT);
  Drag(0, {{20, 10}, {60, 50}});
  EventOf(0);
  Post(0, DesktopEventKind::LEFT_PRESS, 30, 30, zel::MODIFIER_CONTROL);
  zel::MemoryDesktopPointer(30, 30, true);
  zel::MemoryDesktopPointer(35, 40, true);
  zel::DesktopEvent key;
  key.kind = DesktopEventKind::KEY_PRESS;
  key.key = 512;
  zel::MemoryDesktopPost(key);
  Post(0, DesktopEventKind::GOT_FOCUS);
  zel::MemoryDesktopPointer(50, 60, true);
  zel::MemoryDesktopPointer(50, 60, false);
  EXPECT_EQ(EventOf(0).type, WEVENT_ACTIVATE);
  EXPECT_EQ(Ask(0, -1), Numbers{});
  EXPECT_EQ(Ask(0, -30), (Numbers{0, 0, 200, 150, ROI_MARKER_EXTERNAL, 0}));
  for (const auto& [x, y] : {std::pair{20, 10}, {40, 40}, {79, 79}}) {
    EXPECT_EQ(Pixel(0, x, y), image_.Get<uint8_t>(x, y) * 0x010101u) << x << ' ' << y;
  }
}

TEST_F(Tools, ZoomStepByStep) {
  Open(WTOOL_ZOOM);
  // On the image at every zoom: the canvas becomes 192 x 128 at 32.
  const auto click = [](int32_t modifiers) {
    Post(0, DesktopEventKind::LEFT_PRESS, 96, 64, modifiers);
    const WindowEvent event = EventOf(0);
    return event.type == WEVENT_CLICK ? event.floats[0] : 0.0F;
  };
  for (const float zoom : {2.0F, 4.0F, 8.0F, 16.0F, 32.0F, 0.0F}) EXPECT_EQ(click(0), zoom);
  for (const float zoom : {16.0F, 8.0F, 4.0F, 2.0F, 1.0F, -2.0F, -4.0F}) {
    EXPECT_EQ(click(zel::MODIFIER_SHIFT), zoom);
  }
  for (const float zoom : {-8.0F, -16.0F, 0.0F}) EXPECT_EQ(click(zel::MODIFIER_SHIFT), zoom);
  for (const float zoom : {-8.0F, -4.0F, -2.0F, 1.0F}) EXPECT_EQ(click(0), zoom);
  Do(0, 5, {-1, 0, 0});
  EXPECT_EQ(click(0), 2.0F) << "-1 is 1";
  Do(0, 5, {-3, 0, 0});
  Post(0, DesktopEventKind::LEFT_PRESS, 80, 60);
  const WindowEvent event = EventOf(0);
  EXPECT_EQ(event.tool, WTOOL_ZOOM);
  EXPECT_EQ(event.floats[1], -1.0F);
}

TEST_F(Tools, ZoomWithoutChangingTheCanvasBesideScrollBars) {
  Do(0, 100, {120, 80});
  Do(0, -9, {1});
  Open(WTOOL_ZOOM);
  Do(0, 100, {120, 80});
  ASSERT_EQ(Ask(0, -3), (Numbers{136, 96, 1}));
  Post(0, DesktopEventKind::LEFT_PRESS, 50, 40);
  EXPECT_EQ(EventOf(0).floats[0], 2.0F);
  EXPECT_EQ(Ask(0, -3), (Numbers{136, 96, 1}));
}

TEST_F(Tools, FollowTheScrollBars) {
  const TestImage large(IMAGE_U8, 600, 600);
  Do(0, 100, {200, 200});
  Do(0, -9, {1});
  ASSERT_EQ(ZEL_WindDraw(large, 0, nullptr, 0), 0);
  // The lower arrow, held for three looks.
  Drag(0, {{208, 195}, {208, 195}, {208, 195}});
  WindowEvent event = EventOf(0);
  EXPECT_EQ(event.type, WEVENT_SCROLL);
  EXPECT_EQ(event.integers[0], 100);
  EXPECT_EQ(event.integers[1], 100 + 3 * 8);
  // Released before the first look.
  Post(0, DesktopEventKind::LEFT_PRESS, 208, 195);
  zel::MemoryDesktopPointer(150, 20, false);
  event = EventOf(0);
  EXPECT_EQ(event.type, WEVENT_SCROLL);
  EXPECT_EQ(event.integers[1], 100 + 4 * 8);
  // The thumb to the end of the track and beyond.
  Drag(0, {{208, 30}, {208, 500}});
  event = EventOf(0);
  EXPECT_EQ(event.integers[1], 500);
  EXPECT_EQ(zel::RecordOf(0).originY, 400);
}

// The bars of a canvas of 200 x 200 have a track from 16 to 184 in the one, from 112 to 184 in the
// other; a view of a third of the image gives thumbs of 56 and 24 pixels.
TEST_F(Tools, ScrollByTheirPartsOfTheBars) {
  const TestImage large(IMAGE_U8, 600, 600);
  Do(0, 100, {200, 200});
  Do(0, -9, {1});
  ASSERT_EQ(ZEL_WindDraw(large, 0, nullptr, 0), 0);
  // Where the view begins after a press at the origin that is held for a look.
  const auto pressed = [](int32_t x, int32_t y) {
    zel::RecordOf(0).originX = zel::RecordOf(0).originY = 100;
    Drag(0, {{x, y}});
    EventOf(0);
    return Numbers{zel::RecordOf(0).originX, zel::RecordOf(0).originY};
  };
  constexpr int32_t thumb = 44;  // its first pixel at 100: 16 + 100 * 112 / 400
  EXPECT_EQ(pressed(208, 0), (Numbers{100, 92}));
  EXPECT_EQ(pressed(208, 15), (Numbers{100, 92}));
  EXPECT_EQ(pressed(208, 16), (Numbers{100, 0})) << "by the panel's height, up to the end";
  EXPECT_EQ(pressed(208, thumb - 1), (Numbers{100, 0}));
  EXPECT_EQ(pressed(208, thumb), (Numbers{100, 100}));
  EXPECT_EQ(pressed(208, thumb + 55), (Numbers{100, 100}));
  EXPECT_EQ(pressed(208, thumb + 56), (Numbers{100, 316}));
  EXPECT_EQ(pressed(208, 183), (Numbers{100, 316}));
  EXPECT_EQ(pressed(208, 184), (Numbers{100, 108}));
  EXPECT_EQ(pressed(208, 199), (Numbers{100, 108}));
  EXPECT_EQ(pressed(208, 200), (Numbers{100, 100})) << "the corner";
  EXPECT_EQ(pressed(95, 208), (Numbers{100, 100})) << "the band beside the bar";
  EXPECT_EQ(pressed(96, 208), (Numbers{92, 100}));
  EXPECT_EQ(pressed(112, 208), (Numbers{0, 100}));
  EXPECT_EQ(pressed(183, 208), (Numbers{316, 100}));
  EXPECT_EQ(pressed(199, 208), (Numbers{108, 100}));
  EXPECT_EQ(pressed(200, 208), (Numbers{100, 100}));
}

// Arrows are triangles of 2 to 8 pixels, the grip three slanting lines of 4, 8 and 12.
TEST_F(Tools, ShowTheirBarsAsActiveWhereTheWindowIs) {
  const TestImage large(IMAGE_U8, 600, 600);
  Do(0, 100, {200, 200});
  Do(0, -9, {1});
  ASSERT_EQ(ZEL_WindDraw(large, 0, nullptr, 0), 0);
  // Black pixels in a column or a row of the square at a place, without its frame.
  const auto black = [](int32_t left, int32_t top, int32_t at, bool inRow) {
    int32_t count = 0;
    for (int32_t i = 1; i < 15; i++) {
      count += Pixel(0, left + (inRow ? i : at), top + (inRow ? at : i)) == 0 ? 1 : 0;
    }
    return count;
  };
  const auto triangle = [&black](int32_t left, int32_t top, bool inRows) {
    Numbers counts;
    for (int32_t at = 5; at <= 10; at++) counts.push_back(black(left, top, at, inRows));
    return counts;
  };
  const auto grip = [&black] {
    int32_t count = 0;
    for (int32_t at = 1; at < 15; at++) count += black(200, 200, at, true);
    return count;
  };
  const Numbers growing{0, 2, 4, 6, 8, 0};
  const Numbers shrinking{0, 8, 6, 4, 2, 0};
  const Numbers none(6, 0);
  Do(1, 10);
  const auto activate = [](int32_t window) {
    zel::DesktopInUse().activate(zel::display.bindings[window].panel);
  };
  for (int32_t round = 0; round < 2; round++) {
    activate(0);
    Post(0, DesktopEventKind::GOT_FOCUS);
    EventOf(0);
    EXPECT_EQ(triangle(200, 0, true), growing);
    EXPECT_EQ(triangle(200, 184, true), shrinking);
    EXPECT_EQ(triangle(96, 200, false), growing);
    EXPECT_EQ(triangle(184, 200, false), shrinking);
    EXPECT_EQ(grip(), 4 + 8 + 12);
    activate(1);
    Post(0, DesktopEventKind::LOST_FOCUS);
    EventOf(0);
    EXPECT_EQ(triangle(200, 0, true), none);
    EXPECT_EQ(triangle(184, 200, false), none);
    EXPECT_EQ(grip(), 0);
  }
}

TEST_F(Tools, DoNotScrollAnImageThatFits) {
  const TestImage small(IMAGE_U8, 100, 100);
  Do(0, 100, {200, 200});
  Do(0, -9, {1});
  ASSERT_EQ(ZEL_WindDraw(small, 0, nullptr, 0), 0);
  for (const auto& [x, y] : {std::pair{208, 195}, {195, 208}, {208, 100}, {150, 208}}) {
    Drag(0, {{x, y}, {x, y}});
    EventOf(0);
    EXPECT_EQ(zel::RecordOf(0).originX, 0);
    EXPECT_EQ(zel::RecordOf(0).originY, 0);
  }
}

TEST_F(Tools, EraseTheRegionByKey) {
  Open(WTOOL_RECT);
  Drag(0, {{20, 10}, {60, 50}});
  zel::DesktopEvent key;
  key.kind = DesktopEventKind::KEY_PRESS;
  key.key = 512;
  key.modifiers = 2;
  zel::MemoryDesktopPost(key);
  EXPECT_EQ(EventOf(0).type, WEVENT_NONE);
  EXPECT_EQ(Ask(0, -1), Numbers{});
  EXPECT_EQ(Ask(0, -36), (Numbers{0, 1, 8, 2, 1000}));
  EXPECT_EQ(Ask(0, -36)[1], 0);
}

TEST_F(Tools, ReachAllWindowsBesidesTheLast) {
  ASSERT_EQ(ZEL_SetActiveTool(WTOOL_FREELINE), 0);
  EXPECT_EQ(zel::RecordOf(14).activeTool, 8);
  EXPECT_EQ(zel::RecordOf(15).activeTool, 1);
  int32_t tool = 0;
  ASSERT_EQ(ZEL_GetActiveTool(&tool), 0);
  EXPECT_EQ(tool, WTOOL_FREELINE);
  ASSERT_EQ(ZEL_SetActiveTool(99), 0);
  ASSERT_EQ(ZEL_GetActiveTool(&tool), 0);
  EXPECT_EQ(tool, 7);
  EXPECT_EQ(ZEL_GetActiveTool(nullptr), -3009);
}

TEST_F(Tools, AreChosenInTheToolsWindow) {
  ASSERT_EQ(ZEL_WindToolsSetup(0, nullptr, 0, 0), 0);
  EXPECT_EQ(Ask(16, -3), (Numbers{245, 29, 0}));
  ASSERT_EQ(ZEL_SetWindToolsAttribute(WATTR_VISIBLE, 1), 0);
  const uint32_t before = Pixel(16, 3 + 24 * 3 + 2, 5);
  Post(16, DesktopEventKind::LEFT_PRESS, 3 + 24 * 3 + 5, 10);
  int32_t tool = 0;
  ASSERT_EQ(ZEL_SetWindToolsAttribute(WATTR_VISIBLE, 1), 0);
  ASSERT_EQ(ZEL_GetActiveTool(&tool), 0);
  EXPECT_EQ(tool, WTOOL_OVAL);
  EXPECT_EQ(Pixel(16, 3 + 24 * 3 + 2, 5), before ^ 0xFFFFFF);
  Post(16, DesktopEventKind::LEFT_PRESS, 3 + 24 * 9 + 5, 10);
  ZEL_SetWindToolsAttribute(WATTR_VISIBLE, 1);
  EXPECT_EQ(zel::MemoryDesktopBeeps(), 1) << "the type is no tool";
  // A new window takes the tool that is selected.
  Do(3, 9);
  EXPECT_EQ(zel::RecordOf(3).activeTool, 4);
  const int32_t list[] = {WTOOL_LINE, 7, 99, WTOOL_ZOOM, WTOOL_LINE};
  ASSERT_EQ(ZEL_WindToolsSetup(1, list, 5, 2), 0);
  EXPECT_EQ(Ask(16, -3), (Numbers{53, 2 * 24 + 5 + 137, 0}));
  EXPECT_EQ(ZEL_SetWindToolsAttribute(WATTR_FLAG_580, 1), -699);
  char name[ERROR_PROCEDURE_BYTES];
  ZEL_GetLastError(name);
  EXPECT_STREQ(name, "ZEL_SetWindToosAttribute");
  ASSERT_EQ(ZEL_WindToolsClose(), 0);
}

TEST_F(Tools, TellOfThePointer) {
  Open(WTOOL_POINT);
  ASSERT_EQ(ZEL_WindToolsSetup(1, nullptr, 0, 3), 0);
  image_.Set<uint8_t>(44, 33, 217);
  Post(0, DesktopEventKind::POINTER_MOVE, 44, 33);
  Post(0, DesktopEventKind::POINTER_MOVE, 44, 33);
  EventOf(0);
  EXPECT_EQ(Ask(0, -98), (Numbers{0, 44, 33}));
  int32_t canvas = 0;
  ZEL_GetWindowIDs(16, nullptr, &canvas);
  EXPECT_NE(std::string(zel::MemoryDesktopTexts(canvas)).find("v\n217\nx\n44\ny\n33\n"),
            std::string::npos);
}

TEST_F(Tools, TellOfTheLineThatIsDrawn) {
  Open(WTOOL_LINE);
  ASSERT_EQ(ZEL_WindToolsSetup(1, nullptr, 0, 3), 0);
  image_.Set<uint8_t>(40, 60, 99);
  Drag(0, {{10, 20}, {40, 60}});
  EventOf(0);
  int32_t canvas = 0;
  ZEL_GetWindowIDs(16, nullptr, &canvas);
  EXPECT_NE(std::string(zel::MemoryDesktopTexts(canvas))
                .find("v\n99\nx\n40\ny\n60\nx0\n10\ny0\n20\nw\n30\nh\n40\nl\n50.5\na\n216.87\n"),
            std::string::npos)
      << zel::MemoryDesktopTexts(canvas);
}

TEST_F(Tools, KeepButtonsDownOnANewSheet) {
  const TestImage up(IMAGE_U8, 60, 30);
  const TestImage down(IMAGE_RGB, 60, 30);
  ASSERT_EQ(WithImage(-100, up, {}), 0);
  for (int32_t i = 0; i < 60 * 30; i++) down.Set<uint32_t>(i % 60, i / 60, 0x0000FF);
  ASSERT_EQ(WithImage(-101, down, {0, 0, 0, 20, 20, 1, 30, 0, 50, 20, 9, 9}), 0);
  Do(17, 12);
  Post(17, DesktopEventKind::LEFT_PRESS, 5, 5);
  EXPECT_EQ(EventOf(17).type, WEVENT_BUTTON);
  const TestImage other(IMAGE_RGB, 60, 30);
  for (int32_t i = 0; i < 60 * 30; i++) other.Set<uint32_t>(i % 60, i / 60, 0x00FF00);
  ASSERT_EQ(WithImage(-100, other, {}), 0);
  Do(17, 12);
  EXPECT_EQ(Pixel(17, 5, 5), 0x0000FFu) << "it is down";
  EXPECT_EQ(Pixel(17, 35, 5), 0x00FF00u);
  EXPECT_EQ(Ask(17, -102), (Numbers{1, 0}));
}

TEST_F(Tools, PressButtons) {
  const TestImage up(IMAGE_U8, 60, 30);
  const TestImage down(IMAGE_RGB, 60, 30);
  for (int32_t i = 0; i < 60 * 30; i++) {
    up.Set<uint8_t>(i % 60, i / 60, 80);
    down.Set<uint32_t>(i % 60, i / 60, 0x0000FF);
  }
  ASSERT_EQ(WithImage(-100, up, {}), 0);
  ASSERT_EQ(WithImage(-101, down, {0, 0, 0, 20, 20, 1, 30, 0, 50, 20, 9, 9}), 0);
  EXPECT_EQ(Ask(17, -3), (Numbers{60, 30, 0}));
  Do(17, 12);
  EXPECT_EQ(Pixel(17, 5, 5), 0x505050u);
  Post(17, DesktopEventKind::LEFT_PRESS, 5, 5);
  WindowEvent event = EventOf(17);
  EXPECT_EQ(event.type, WEVENT_BUTTON);
  EXPECT_EQ(Integers(event), (Numbers{0, 1, 0, 0}));
  EXPECT_EQ(Pixel(17, 19, 19), 0x0000FFu);
  EXPECT_EQ(Pixel(17, 20, 19), 0x505050u);
  EXPECT_EQ(Ask(17, -102), (Numbers{1, 0}));
  Drag(17, {{35, 5}, {35, 6}});
  event = EventOf(17);
  EXPECT_EQ(Integers(event), (Numbers{1, 1, 0, 0}));
  EXPECT_EQ(Pixel(17, 35, 5), 0x505050u) << "up again";
  EXPECT_EQ(Ask(17, -103, {0, 1}), (Numbers{0, 0}));
  Do(17, 12);
  EXPECT_EQ(Pixel(17, 5, 5), 0x505050u);
  EXPECT_EQ(WithImage(-100, 0x7FFFFFF0, {}), 200);
}

TEST_F(Tools, PressAButtonWithinItsEdgesAlone) {
  const TestImage up(IMAGE_RGB, 60, 30);
  const TestImage down(IMAGE_RGB, 60, 30);
  ASSERT_EQ(WithImage(-100, up, {}), 0);
  ASSERT_EQ(WithImage(-101, down, {0, 10, 8, 30, 20, 1}), 0);
  Do(17, 12);
  for (const auto& [x, y] : {std::pair{9, 12}, {30, 12}, {12, 7}, {12, 20}}) {
    Post(17, DesktopEventKind::LEFT_PRESS, x, y);
    EXPECT_NE(EventOf(17).type, WEVENT_BUTTON) << x << ' ' << y;
    EXPECT_EQ(Ask(17, -102), (Numbers{0}));
  }
  int32_t state = 0;
  for (const auto& [x, y] : {std::pair{10, 8}, {29, 8}, {10, 19}, {29, 19}}) {
    Post(17, DesktopEventKind::LEFT_PRESS, x, y);
    EXPECT_EQ(EventOf(17).type, WEVENT_BUTTON) << x << ' ' << y;
    state = 1 - state;
    EXPECT_EQ(Ask(17, -102), (Numbers{state}));
  }
}

// ---- events

TEST_F(Tools, GiveTheNewestEventAndForgetTheOthers) {
  for (const int32_t window : {2, 5, 7}) Do(window, 10);
  for (const auto& [window, time] : {std::pair{5, 10u}, {2, 30u}, {7, 20u}}) {
    zel::MemoryDesktopTicks(time);
    Post(window, DesktopEventKind::GOT_FOCUS);
    Do(window, -4);
    ZEL_SetWindowAttribute(window, WATTR_VISIBLE, 1);
  }
  WindowEvent event{};
  EXPECT_EQ(ZEL_GetLastEvent(&event), 1);
  EXPECT_EQ(event.window, 2);
  EXPECT_EQ(event.type, WEVENT_ACTIVATE);
  EXPECT_EQ(zel::display.lastActiveWindow, 7);
  EXPECT_EQ(ZEL_GetLastEvent(&event), 0);
  EXPECT_EQ(event.window, 0);
  EXPECT_EQ(ZEL_GetLastEvent(nullptr), -3009);
  EXPECT_EQ(ZEL_GetLastWEvent(23, &event), -602);
  int32_t window = 4;
  EXPECT_EQ(ZEL_DisplayManager(&window, -99, nullptr, 0, nullptr, 0), 0);
  EXPECT_EQ(window, 4);
}

int32_t calls = 0;

void CloseIt(WindowEvent* event, uintptr_t data) {
  calls++;
  EXPECT_EQ(data, 0x123456789ABCu);
  EXPECT_EQ(event->type, WEVENT_ACTIVATE);
  ZEL_WindClose(event->window, 0);
  WindowEvent other{};
  ZEL_GetLastEvent(&other);
}

TEST_F(Tools, CallBackAndLetItselfBeCalled) {
  calls = 0;
  EXPECT_EQ(ZEL_InstallWCallback(0, &CloseIt, 1), -698);
  EXPECT_EQ(ZEL_InstallWCallback(-1, &CloseIt, 1), -698);
  EXPECT_EQ(ZEL_InstallWCallback(23, &CloseIt, 1), -698);
  Do(3, 10);
  ASSERT_EQ(ZEL_InstallWCallback(-1, &CloseIt, 0x123456789ABC), 0);
  Post(3, DesktopEventKind::GOT_FOCUS);
  Post(3, DesktopEventKind::GOT_FOCUS);
  EXPECT_EQ(EventOf(3).type, WEVENT_CLOSE) << "for polling";
  EXPECT_EQ(calls, 1);
  Do(3, 10);
  Post(3, DesktopEventKind::GOT_FOCUS);
  EventOf(3);
  EXPECT_EQ(calls, 2) << "it stays through closing";
  Do(3, 10);
  ASSERT_EQ(ZEL_RemoveWCallback(-1), 0);
  Post(3, DesktopEventKind::GOT_FOCUS);
  EXPECT_EQ(EventOf(3).type, WEVENT_ACTIVATE);
  EXPECT_EQ(calls, 2);
}

TEST_F(Tools, CallBackForAllImageWindowsAndNoOthers) {
  Do(3, 10);
  ASSERT_EQ(ZEL_InstallWCallback(-1, &CloseIt, 5), 0);
  for (int32_t window = 0; window < zel::WINDOW_COUNT; window++) {
    const zel::PanelBinding& binding = zel::display.bindings[window];
    EXPECT_EQ(binding.callback, window < zel::IMAGE_WINDOWS ? &CloseIt : nullptr) << window;
  }
  ASSERT_EQ(ZEL_RemoveWCallback(-1), 0);
}

TEST_F(Tools, LetSomeAttributesOfTheirWindowBeSet) {
  Do(16, 10);
  const auto set = [](int32_t attribute, intptr_t value) {
    return ZEL_SetWindToolsAttribute(attribute, value);
  };
  EXPECT_EQ(set(WATTR_TITLE, reinterpret_cast<intptr_t>("Tools")), 0);
  for (const int32_t attribute : {WATTR_LEFT, WATTR_TOP, WATTR_VISIBLE}) {
    EXPECT_EQ(set(attribute, 1), 0) << attribute;
  }
  for (const int32_t attribute : {WATTR_WIDTH, WATTR_HEIGHT, WATTR_ZOOM_X, WATTR_SCROLLBARS}) {
    EXPECT_EQ(set(attribute, 1), -699) << attribute;
  }
}

void EndAll(WindowEvent*, uintptr_t) {
  ZEL_CloseSys();
}

TEST_F(Tools, SurviveTheEndOfTheLibraryInACallback) {
  Open(WTOOL_FREEHAND);
  ASSERT_EQ(ZEL_InstallWCallback(0, &EndAll, 0), 0);
  Post(0, DesktopEventKind::LEFT_PRESS, 20, 20);
  zel::MemoryDesktopPointer(30, 30, true);
  Post(0, DesktopEventKind::GOT_FOCUS);
  zel::MemoryDesktopPointer(40, 30, true);
  zel::MemoryDesktopPointer(40, 40, false);
  EXPECT_EQ(ZEL_SetWindowAttribute(1, WATTR_VISIBLE, 1), 0);
  EXPECT_FALSE(zel::RecordOf(0).isOpen);
  image_ = TestImage();
}

// ---- regions

TEST_F(Tools, TakeRegionsInTheirFlatForm) {
  Open(WTOOL_POINT);
  const int32_t m = ROI_MARKER_EXTERNAL;
  const auto taken = [](const Numbers& flat) {
    Do(0, -31, flat);
    return Ask(0, -30);
  };
  const Numbers whole{0, 0, 200, 150, m, 0};
  EXPECT_EQ(taken({1, 2, 3, 4, m, 1, 7, 8}), (Numbers{7, 8, 8, 9, m, 1, 7, 8}));
  EXPECT_EQ(taken({1, 2, 30, 40, m, 3, 5, 5, 6, 6}), (Numbers{1, 2, 30, 40, m, 3, 1, 2, 30, 40}));
  EXPECT_EQ(taken({1, 2, 3, 4, m, 10, 5, 5, 6, 9}), (Numbers{5, 5, 7, 10, m, 10, 5, 5, 6, 9}));
  EXPECT_EQ(taken({1, 2, 3, 4, m, 2, 5, 5, 6, 9, m - 1, 1, 3, 3}),
            (Numbers{3, 3, 7, 10, m, 2, 5, 5, 6, 9, m - 1, 1, 3, 3}));
  EXPECT_EQ(taken({1, 2, 3, 4}), whole);
  EXPECT_EQ(taken({1, 2, 3, 4, 5, 6}), whole) << "no marker";
  EXPECT_EQ(taken({1, 2, 3, 4, m, 7, 1, 1, m, 9, 2, 2}), whole) << "no known type";
  EXPECT_EQ(taken({1, 2, 3, 4, m, 0}), whole);
  EXPECT_EQ(zel::RecordOf(0).roiKind, 0);
  Do(0, -31, {1, 2, 30, 40, m, 4, 1, 2, 30, 40});
  Do(0, -43);
  EXPECT_EQ(Ask(0, -1), Numbers{});
}

TEST_F(Tools, ExchangeRegionsAsRecords) {
  Open(WTOOL_POINT);
  const int32_t flat[] = {2, 3, 30, 40, ROI_MARKER_EXTERNAL, ROI_FREEHAND, 2, 3, 29, 5, 9, 39};
  RoiDescriptor* region = nullptr;
  ASSERT_EQ(ZEL_ArrayToROI(flat, 12, &region), 0);
  ASSERT_EQ(ZEL_SetWROI(0, region), 0);
  ZEL_FreeROI(region);
  region = nullptr;
  ASSERT_EQ(ZEL_GetWROI(0, &region), 0);
  EXPECT_EQ(region->globalRect.width, 28);
  ASSERT_EQ(region->contourCount, 1);
  EXPECT_EQ(region->contours[0]->contourType, ROI_FREEHAND);
  EXPECT_EQ(region->contours[0]->pointCount, 3);
  ZEL_FreeROI(region);
  ASSERT_EQ(ZEL_SetWROI(0, nullptr), 0);
  region = nullptr;
  ASSERT_EQ(ZEL_GetWROI(1, &region), 0);
  EXPECT_EQ(region->globalRect.height, 256) << "of a window that was just opened";
  EXPECT_EQ(region->contours[0]->contourType, ROI_WHOLE);
  ZEL_FreeROI(region);
  EXPECT_EQ(ZEL_GetWROI(0, nullptr), -3009);
}

}  // namespace
