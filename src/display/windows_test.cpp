// Windows: opened, drawn, zoomed, sized, asked and closed.
#include <cstring>

#include "display/display_test.h"

namespace {

using test::DesktopEventKind;
using test::TestImage;

class Windows : public test::Display {};

using Numbers = std::vector<int32_t>;

TestImage Ramp(int32_t width, int32_t height) {
  TestImage image(IMAGE_U8, width, height);
  for (int32_t y = 0; y < height; y++) {
    for (int32_t x = 0; x < width; x++) image.Set<uint8_t>(x, y, static_cast<uint8_t>(x + 3 * y));
  }
  return image;
}

uint32_t Gray(int32_t level) {
  return static_cast<uint32_t>(level) * 0x010101;
}

TEST_F(Windows, AreMadeHiddenByTheFirstQuestion) {
  EXPECT_EQ(Ask(0, -4), Numbers{0});
  EXPECT_EQ(Ask(0, -2), (Numbers{20, 40}));
  EXPECT_EQ(Ask(0, -3), (Numbers{256, 256, 0}));
  EXPECT_EQ(Ask(22, -3), (Numbers{28, 28, 0}));
  EXPECT_EQ(Ask(22, -2), (Numbers{280, 40}));
  EXPECT_EQ(Ask(16, -3), (Numbers{53, 28, 0}));
  EXPECT_EQ(Ask(9, -1), Numbers{});
  EXPECT_EQ(Ask(9, -98).size(), 3u);
  int32_t panel = -1;
  ZEL_GetWindowIDs(9, &panel, nullptr);
  EXPECT_EQ(panel, 0) << "a question for its shape or for the pointer leaves a window closed";
}

TEST_F(Windows, OutsideTheTableFail) {
  int32_t value = 7;
  for (const int32_t window : {-1, 23, INT32_MIN, INT32_MAX}) {
    int32_t number = window;
    for (const int32_t command : {12, 0, -1, -4, -10, -39, -98, -99}) {
      EXPECT_EQ(ZEL_DisplayManager(&number, command, nullptr, 0, nullptr, 0), -602);
    }
    EXPECT_EQ(ZEL_WindDraw(0, window, nullptr, 0), -602);
    EXPECT_EQ(ZEL_GetWindowAttribute(window, WATTR_WIDTH, &value), -602);
    EXPECT_EQ(ZEL_GetWindowAttribute(window, WATTR_FLAG_571, &value), -602);
    EXPECT_EQ(ZEL_GetWindowAttribute(window, 1, &value), -699) << "the number comes first";
    EXPECT_EQ(ZEL_WindClose(window, 0), -602);
    EXPECT_EQ(ZEL_ClearWROI(window), -602);
    int32_t panel = 5;
    EXPECT_EQ(ZEL_GetWindowIDs(window, &panel, nullptr), 0);
    EXPECT_EQ(panel, 0);
    EXPECT_EQ(ZEL_SetWParent(window, 3), 0);
  }
  EXPECT_EQ(value, 7);
}

TEST_F(Windows, WithoutAFontAreUnusableUntilTheLibraryIsClosed) {
  zel::DesktopFaultsGet()->noFonts = true;
  EXPECT_EQ(ZEL_WindDraw(0, 0, nullptr, 0), -600);
  zel::DesktopFaultsGet()->noFonts = false;
  EXPECT_EQ(ZEL_WindDraw(0, 0, nullptr, 0), -600);
  WindowEvent event{};
  EXPECT_EQ(ZEL_GetLastEvent(&event), -600);
  ZEL_CloseSys();
  EXPECT_EQ(ZEL_WindDraw(0, 0, nullptr, 0), 0);
}

TEST_F(Windows, ThatTheDesktopRefusesFailAndLeaveNothing) {
  zel::DesktopFaultsGet()->noPanels = true;
  EXPECT_EQ(ZEL_WindDraw(0, 0, nullptr, 0), -601);
  EXPECT_EQ(ZEL_WindToolsSetup(0, nullptr, 0, 0), -601);
  zel::DesktopFaultsGet()->noPanels = false;
  zel::DesktopFaultsGet()->noCanvases = true;
  EXPECT_EQ(ZEL_WindDraw(0, 18, nullptr, 0), -601);
  zel::DesktopFaultsGet()->noCanvases = false;
  EXPECT_EQ(zel::MemoryDesktopPanels(), 0);
  EXPECT_EQ(ZEL_WindDraw(0, 18, nullptr, 0), 0);
}

TEST_F(Windows, ShowAnImageThroughTheirPaletteByTheZoom) {
  const TestImage image = Ramp(40, 30);
  ASSERT_EQ(ZEL_SetWindow2DAttributes(1, WATTR2_ZOOM, 3, 2), 0);
  ASSERT_EQ(ZEL_WindDraw(image, 1, "ramp", 1), 0);
  EXPECT_EQ(Ask(1, -3), (Numbers{80, 90, 0}));
  EXPECT_EQ(Ask(1, -4), Numbers{1});
  for (int32_t y = 0; y < 90; y++) {
    for (int32_t x = 0; x < 80; x++) ASSERT_EQ(Pixel(1, x, y), Gray(x / 2 + 3 * (y / 3)));
  }
  ASSERT_EQ(ZEL_WSetPalette(1, PALETTE_BINARY, nullptr), 0);
  EXPECT_EQ(Pixel(1, 0, 0), 0u);
  EXPECT_EQ(Pixel(1, 2, 0), 0xFF0000u);
  std::vector<RGBValue> colours(256);
  for (uint32_t i = 0; i < 256; i++) colours[i] = 0xAB000000 | (i * 0x000301);
  ASSERT_EQ(ZEL_WSetPalette(1, -1, colours.data()), 0);
  EXPECT_EQ(Pixel(1, 10, 0), 5u * 0x000301);
  EXPECT_EQ(ZEL_WSetPalette(1, -1, nullptr), -3009);
  char title[32] = "?";
  ASSERT_EQ(ZEL_GetWindowAttribute(1, WATTR_TITLE, title), 0);
  EXPECT_STREQ(title, "ramp");
}

TEST_F(Windows, ShowColoursAndMappedTypes) {
  const TestImage rgb(IMAGE_RGB, 64, 64);
  for (int32_t i = 0; i < 64 * 64; i++) {
    rgb.Set<uint32_t>(i % 64, i / 64, 0x77000000u + static_cast<uint32_t>(i));
  }
  ASSERT_EQ(ZEL_WindDraw(rgb, 2, nullptr, 1), 0);
  for (int32_t i = 0; i < 64 * 64; i++) {
    ASSERT_EQ(Pixel(2, i % 64, i / 64), static_cast<uint32_t>(i));
  }
  EXPECT_EQ(Ask(2, -41), Numbers{0});
  const TestImage words(IMAGE_I16, 64, 64);
  for (int32_t i = 0; i < 64 * 64; i++) {
    words.Set<int16_t>(i % 64, i / 64, static_cast<int16_t>(i % 2 == 0 ? -5 : 250));
  }
  ASSERT_EQ(ZEL_WindDraw(words, 2, nullptr, 1), 0);
  EXPECT_EQ(Pixel(2, 0, 0), 0u);
  EXPECT_EQ(Pixel(2, 1, 0), Gray(255));
  const auto shadow = static_cast<ImageRef>(Ask(2, -41)[0]);
  ASSERT_EQ(ZEL_WindDraw(rgb, 2, nullptr, 1), 0);
  EXPECT_EQ(static_cast<ImageRef>(Ask(2, -41)[0]), shadow) << "it stays through colours";
  const TestImage bytes = Ramp(8, 8);
  ASSERT_EQ(ZEL_WindDraw(bytes, 2, nullptr, 1), 0);
  EXPECT_EQ(Ask(2, -41), Numbers{0});
}

TEST_F(Windows, AreHatchedWhereThereIsNoImage) {
  TestImage image = Ramp(64, 64);
  ASSERT_EQ(ZEL_WindDraw(image, 0, nullptr, 1), 0);
  image = TestImage();
  ASSERT_EQ(ZEL_WindDraw(0, 0, nullptr, 0), 0);
  for (int32_t i = 0; i < 64; i++) {
    EXPECT_EQ(Pixel(0, i, 1), i % 2 == 0 ? 0u : 0xFFFFFFu);
    EXPECT_EQ(Pixel(0, i, 2), i % 2 == 0 ? 0xFFFFFFu : 0u);
  }
  EXPECT_EQ(ZEL_WindDraw(0x7FFFFFFF, 0, nullptr, 1), 0) << "an unknown image is stored unseen";
}

TEST_F(Windows, HaveSmallImagesInTheMiddleWithAMargin) {
  const TestImage image = Ramp(10, 10);
  ASSERT_EQ(ZEL_SetWindow2DAttributes(0, WATTR2_SIZE, 101, 101), 0);
  ASSERT_EQ(ZEL_SetWindow2DAttributes(0, WATTR2_ZOOM, 4, 4), 0);
  ASSERT_EQ(ZEL_WindDraw(image, 0, nullptr, 0), 0);
  // 100 pixels of canvas, an image of 40: 30 to the left, and 30 rounded down to a multiple of 4.
  const Numbers view = Ask(0, -40);
  ASSERT_EQ(view.size(), 12u);
  EXPECT_EQ((Numbers{view.begin() + 4, view.begin() + 8}), (Numbers{30, 28, 70, 68}));
  EXPECT_EQ(Pixel(0, 30, 28), Gray(0));
  EXPECT_EQ(Pixel(0, 69, 67), Gray(9 + 27));
  EXPECT_EQ(Pixel(0, 29, 40), 0u);
  EXPECT_EQ(Pixel(0, 70, 40), 0u);
  EXPECT_EQ(Pixel(0, 50, 27), 0u);
  EXPECT_EQ(Pixel(0, 50, 68), 0u);
  EXPECT_EQ(Pixel(0, 0, 0), 0xFFFFFFu);
  EXPECT_EQ(Pixel(0, 1, 0), 0u);
}

TEST_F(Windows, TakeZoomsOfTheirRangeInSilence) {
  const auto zooms = [](int32_t zoom) {
    EXPECT_EQ(ZEL_SetWindow2DAttributes(0, WATTR2_ZOOM, zoom, zoom), 0);
    return Ask(0, -11);
  };
  EXPECT_EQ(zooms(5), (Numbers{5, 5}));
  EXPECT_EQ(zooms(0), (Numbers{5, 5}));
  EXPECT_EQ(zooms(-17), (Numbers{5, 5}));
  EXPECT_EQ(zooms(33), (Numbers{5, 5}));
  EXPECT_EQ(zooms(-1), (Numbers{-1, -1}));
  EXPECT_EQ(zooms(32), (Numbers{32, 32}));
  EXPECT_EQ(zooms(-16), (Numbers{-16, -16}));
  ASSERT_EQ(ZEL_SetWindowAttribute(0, WATTR_ZOOM_X, 7), 0);
  EXPECT_EQ(Ask(0, -11), (Numbers{7, -16}));
  EXPECT_EQ(Attribute(0, WATTR_ZOOM_Y), -16);
  EXPECT_EQ(Attribute(0, WATTR_ZOOM_X), 7);
}

TEST_F(Windows, TakeTheSizeOfAnImageTimesTheZoomRoundedDown) {
  const auto widthFor = [](int32_t zoom, int32_t width) {
    const TestImage image(IMAGE_U8, width, 100);
    EXPECT_EQ(ZEL_SetWindow2DAttributes(0, WATTR2_ZOOM, zoom, zoom), 0);
    EXPECT_EQ(ZEL_WindDraw(image, 0, nullptr, 1), 0);
    return Attribute(0, WATTR_WIDTH);
  };
  EXPECT_EQ(widthFor(3, 100), 300);
  EXPECT_EQ(widthFor(3, 10), 63);
  EXPECT_EQ(widthFor(5, 10), 60);
  EXPECT_EQ(widthFor(-2, 101), 64);
  EXPECT_EQ(widthFor(-2, 301), 150);
}

TEST_F(Windows, ScrollTheViewOfLargeImages) {
  const TestImage image = Ramp(300, 200);
  ASSERT_EQ(ZEL_SetWindow2DAttributes(0, WATTR2_SIZE, 100, 100), 0);
  ASSERT_EQ(ZEL_WindDraw(image, 0, nullptr, 0), 0);
  EXPECT_EQ(Ask(0, -40), (Numbers{0, 0, 100, 100, 0, 0, 100, 100, 0, 0, 100, 100}));
  ASSERT_EQ(ZEL_SetWindow2DAttributes(0, WATTR2_CENTRE, 120, 200), 0);
  EXPECT_EQ(Ask(0, -12), (Numbers{200, 120}));
  EXPECT_EQ(Pixel(0, 0, 0), Gray((150 + 3 * 70) & 255));
  // Beyond the end the last pixels are shown.
  ASSERT_EQ(ZEL_SetWindow2DAttributes(0, WATTR2_CENTRE, 1000, 1000), 0);
  EXPECT_EQ(Pixel(0, 99, 99), Gray((299 + 3 * 199) & 255));
  ASSERT_EQ(ZEL_SetWindow2DAttributes(0, WATTR2_ZOOM, -2, -2), 0);
  EXPECT_EQ(Ask(0, -40)[4], 0);
  EXPECT_EQ(Ask(0, -40)[2] - Ask(0, -40)[0], 200);
  Do(0, 2, {150, 100});
  EXPECT_EQ(Ask(0, -12), (Numbers{150, 100}));
}

TEST_F(Windows, KeepTheViewForPointsOutsideTheirImage) {
  const TestImage image = Ramp(300, 200);
  ASSERT_EQ(ZEL_SetWindow2DAttributes(0, WATTR2_SIZE, 100, 100), 0);
  ASSERT_EQ(ZEL_WindDraw(image, 0, nullptr, 0), 0);
  Do(0, 2, {150, 100});
  for (const Numbers& point :
       {Numbers{-1, 60}, {60, -1}, {300, 60}, {60, 200}, {60}, {60, 60, 60}}) {
    Do(0, 2, point);
    EXPECT_EQ(Ask(0, -12), (Numbers{150, 100})) << point[0];
  }
  Do(0, 2, {249, 149});
  EXPECT_EQ(Ask(0, -12), (Numbers{249, 149}));
}

// Four numbers are left, top, right and bottom of a part, which waits for the queue; whatever is no
// part has the whole window drawn at once.
TEST_F(Windows, DrawAPartLaterAndAllElseAtOnce) {
  const TestImage image = Ramp(100, 80);
  ASSERT_EQ(ZEL_WindDraw(image, 0, nullptr, 1), 0);
  uint8_t level = 1;
  const auto isDrawnBy = [&](const Numbers& input) {
    image.Set<uint8_t>(3, 3, ++level);
    Do(0, 2, input);
    return Pixel(0, 3, 3) == Gray(level);
  };
  for (const Numbers& part : {Numbers{0, 0, 10, 10}, {5, 0, 5, 0}, {90, 70, 500, 500}}) {
    EXPECT_FALSE(isDrawnBy(part)) << part[0];
  }
  const Numbers others[] = {
      {},           {0, 0, 10}, {0, 0, 10, 10, 0}, {-1, 0, 10, 10}, {0, -1, 10, 10}, {6, 0, 5, 10},
      {0, 6, 10, 5}};
  for (const Numbers& other : others)
    EXPECT_TRUE(isDrawnBy(other)) << testing::PrintToString(other);
}

// Numbers that miss something, or that no command takes, change nothing.
TEST_F(Windows, IgnoreCommandsWithoutTheirNumbers) {
  Do(0, 100, {120, 90});
  Do(0, -6, {4, 3});
  const auto state = [] {
    Numbers all;
    for (const int32_t query : {-2, -3, -4, -5, -11, -12, -34}) {
      for (const int32_t number : Ask(0, query)) all.push_back(number);
    }
    return all;
  };
  const Numbers before = state();
  const struct {
    int32_t command;
    Numbers input;
  } commands[] = {{-6, {}},      {-6, {0, 0}},     {-6, {-1}},     {5, {}},
                  {5, {2, 10}},  {100, {50}},      {100, {0, 50}}, {100, {50, 0}},
                  {100, {}},     {100, {9, 9, 9}}, {-9, {}},       {-21, {}},
                  {-33, {1, 2}}, {-35, {1, 2, 3}}, {-9, {0}},      {-777, {1, 2, 3, 4}}};
  for (const auto& [command, input] : commands) {
    Do(0, command, input);
    EXPECT_EQ(state(), before) << command << ' ' << testing::PrintToString(input);
  }
  // One number for both.
  Do(0, -6, {9});
  EXPECT_EQ(Ask(0, -5), (Numbers{9, 9}));
}

TEST_F(Windows, KeepTheirOddCentreAttributes) {
  const TestImage image = Ramp(600, 600);
  ASSERT_EQ(ZEL_WindDraw(image, 0, nullptr, 0), 0);
  ASSERT_EQ(ZEL_SetWindow2DAttributes(0, WATTR2_CENTRE, 250, 300), 0);
  ASSERT_EQ(ZEL_SetWindowAttribute(0, WATTR_CENTRE_X, 400), 0);
  EXPECT_EQ(Attribute(0, WATTR_CENTRE_X), 300);
  EXPECT_EQ(Attribute(0, WATTR_CENTRE_Y), 250);
  ASSERT_EQ(ZEL_SetWindowAttribute(0, WATTR_CENTRE_Y, 400), 0);
  EXPECT_EQ(Attribute(0, WATTR_CENTRE_X), 400);
  EXPECT_EQ(Attribute(0, WATTR_CENTRE_Y), 400);
}

TEST_F(Windows, ShareTheirGridBesidesTheLast) {
  ASSERT_EQ(ZEL_SetWindowAttribute(15, WATTR_GRID_X, 5), 0);
  EXPECT_EQ(zel::RecordOf(15).gridX, 1);
  EXPECT_EQ(zel::RecordOf(14).gridX, 5);
  EXPECT_EQ(zel::RecordOf(0).gridY, 1);
  EXPECT_EQ(Attribute(15, WATTR_GRID_X), 5);
  Do(3, 400, {7, 0});
  EXPECT_EQ(zel::RecordOf(3).gridX, 7);
  EXPECT_EQ(zel::RecordOf(3).gridY, 1);
  EXPECT_EQ(zel::RecordOf(4).gridX, 5);
}

TEST_F(Windows, AreNoLargerThanNumbersAllowWithScrollBars) {
  constexpr int32_t most = INT32_MAX - 16;
  Do(0, 100, {INT32_MAX, INT32_MAX});
  EXPECT_EQ(Ask(0, -3), (Numbers{most, most, 0}));
  EXPECT_EQ(Ask(0, -9, {1}), (Numbers{most, most, 1}));
  Do(0, 100, {INT32_MAX, 100});
  EXPECT_EQ(Ask(0, -3), (Numbers{most, 116, 1}));
}

TEST_F(Windows, HaveScrollBarsBesideTheCanvas) {
  const TestImage image = Ramp(300, 300);
  ASSERT_EQ(ZEL_SetWindow2DAttributes(0, WATTR2_SIZE, 200, 200), 0);
  ASSERT_EQ(ZEL_SetWindowAttribute(0, WATTR_SCROLLBARS, 9), 0);
  EXPECT_EQ(Ask(0, -3), (Numbers{216, 216, 1}));
  EXPECT_EQ(Ask(0, -9, {1}), (Numbers{216, 216, 1}));
  ASSERT_EQ(ZEL_WindDraw(image, 0, nullptr, 0), 0);
  EXPECT_EQ(Pixel(0, 199, 199), Gray((199 + 3 * 199) & 255));
  EXPECT_EQ(Pixel(0, 205, 100), 0xB3B3B3u) << "the bar of a window that is not active";
  int32_t canvas = 0;
  ZEL_GetWindowIDs(0, nullptr, &canvas);
  EXPECT_NE(std::strstr(zel::MemoryDesktopTexts(canvas), "300x300\n1/1\n"), nullptr);
  EXPECT_EQ(Ask(0, -9, {0}), (Numbers{200, 200, 0}));
  EXPECT_EQ(Ask(0, -9), (Numbers{200, 200, 0}));
}

// The band is wide from a canvas of 160 columns on, and tells a zoom that both axes have.
TEST_F(Windows, TellSizeAndZoomWhereThereIsRoom) {
  const TestImage image = Ramp(300, 250);
  const auto texts = [&](int32_t window, int32_t width, int32_t zoomX) {
    EXPECT_EQ(ZEL_SetWindow2DAttributes(window, WATTR2_SIZE, 200, width), 0);
    EXPECT_EQ(ZEL_SetWindowAttribute(window, WATTR_SCROLLBARS, 1), 0);
    EXPECT_EQ(ZEL_SetWindowAttribute(window, WATTR_ZOOM_X, zoomX), 0);
    EXPECT_EQ(ZEL_WindDraw(image, window, nullptr, 0), 0);
    int32_t canvas = 0;
    ZEL_GetWindowIDs(window, nullptr, &canvas);
    return std::string(zel::MemoryDesktopTexts(canvas));
  };
  const std::string narrow = texts(0, 159, 1);
  EXPECT_NE(narrow.find("1/1"), std::string::npos);
  EXPECT_EQ(narrow.find("300x250"), std::string::npos);
  const std::string wide = texts(1, 160, 1);
  EXPECT_NE(wide.find("1/1"), std::string::npos);
  EXPECT_NE(wide.find("300x250"), std::string::npos);
  EXPECT_EQ(texts(2, 160, 2).find("2/1"), std::string::npos);
}

TEST_F(Windows, MoveShowAndActivateByDigits) {
  EXPECT_EQ(Ask(0, 200, {100, 50}), (Numbers{100, 50}));
  EXPECT_EQ(Ask(0, 200, {7}), (Numbers{20, 40}));
  EXPECT_EQ(Ask(0, 30), Numbers{0});
  EXPECT_EQ(Ask(0, 210, {3, 4}), Numbers{2}) << "the last answer counts";
  EXPECT_EQ(Ask(0, 20), Numbers{0});
  EXPECT_EQ(Ask(0, 10), Numbers{1});
  EXPECT_EQ(Ask(0, 1), Numbers{});
  for (const int32_t command : {4, 6, 40, 60, 70, 500, 20000, -7, -50, -104, 1000000000}) {
    EXPECT_EQ(Ask(5, command), Numbers{}) << command;
  }
  Do(5, 5000);
  EXPECT_EQ(zel::RecordOf(5).activeTool, 4);
  Do(5, 10000);
  EXPECT_EQ(zel::RecordOf(5).activeTool, 9);
}

TEST_F(Windows, WriteNothingIntoAnOutputThatIsTooSmall) {
  int32_t window = 0;
  int32_t output[2] = {7, 7};
  EXPECT_EQ(ZEL_DisplayManager(&window, -3, nullptr, 0, output, 2), -102);
  EXPECT_EQ(output[0], 7);
  EXPECT_EQ(ZEL_DisplayManager(&window, -2, nullptr, -5, output, -1), -102);
  EXPECT_EQ(ZEL_DisplayManager(nullptr, -2, nullptr, 0, output, 2), -3009);
  char name[ERROR_PROCEDURE_BYTES];
  EXPECT_EQ(ZEL_GetLastError(name), -3009);
  EXPECT_STREQ(name, "ZEL_WindManager");
  Do(0, 9);
  EXPECT_EQ(ZEL_DisplayManager(&window, 0, nullptr, 0, output, 2), -102);
  EXPECT_EQ(EventOf(0).type, WEVENT_CLOSE) << "it stayed";
}

TEST_F(Windows, AnswerWhatTheyKeep) {
  EXPECT_EQ(Ask(0, -34), (Numbers{255, 255, 255, 0, 0, 0, 204, 51, 204, 51, 204, 51, 204, 51, 1}));
  Do(0, -35, {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 2, 3});
  EXPECT_EQ(Ask(0, -34), (Numbers{1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 2}));
  Do(0, -35, {9, 9, 9});
  EXPECT_EQ(Ask(0, -34)[0], 1);
  EXPECT_EQ(Ask(0, -38), Numbers(265, 0));
  Numbers brush(267);
  for (size_t i = 0; i < brush.size(); i++) brush[i] = static_cast<int32_t>(i) + 1;
  brush[263] = 1;
  brush[264] = 2;
  Do(0, -37, brush);
  EXPECT_EQ(Ask(0, -38), brush);
  brush[264] = 3;
  Do(0, -37, brush);
  EXPECT_EQ(Ask(0, -38)[264], 2) << "a pattern that is not there";
  EXPECT_EQ(Ask(0, -39), (Numbers{1920, 1080, 1, 1}));
  EXPECT_EQ(Ask(0, -42).size(), 2u);
  EXPECT_EQ(Ask(0, -36), Numbers(5, 0));
}

TEST_F(Windows, CloseWithAnEventAndOpenAsNew) {
  ASSERT_EQ(ZEL_WindClose(3, 0), 0) << "a closed one is opened first";
  EXPECT_EQ(EventOf(3).type, WEVENT_CLOSE);
  EXPECT_EQ(EventOf(3).type, WEVENT_NONE);
  ASSERT_EQ(ZEL_SetWindow2DAttributes(3, WATTR2_ZOOM, 4, 4), 0);
  ASSERT_EQ(ZEL_SetActiveTool(WTOOL_OVAL), 0);
  ASSERT_EQ(ZEL_WindDraw(0, 4, nullptr, 0), 0);
  ASSERT_EQ(ZEL_WindDraw(0, 17, nullptr, 0), 0);
  ASSERT_EQ(ZEL_WindClose(3, 1), 0);
  int32_t panel = -1;
  ZEL_GetWindowIDs(4, &panel, nullptr);
  EXPECT_EQ(panel, 0);
  ZEL_GetWindowIDs(17, &panel, nullptr);
  EXPECT_NE(panel, 0);
  EXPECT_EQ(Ask(3, -11), (Numbers{1, 1}));
  EXPECT_EQ(zel::RecordOf(3).activeTool, 1);
}

TEST_F(Windows, HoldFlagsOnlyWhileTheyAreOpen) {
  EXPECT_EQ(Attribute(0, WATTR_FLAG_615), 1);
  EXPECT_EQ(ZEL_SetWindowAttribute(0, WATTR_FLAG_615, 5), 0);
  char title[8] = "?";
  ASSERT_EQ(ZEL_GetWindowAttribute(0, WATTR_TITLE, title), 0);
  EXPECT_STREQ(title, "");
  EXPECT_EQ(zel::MemoryDesktopPanels(), 0);
  Do(0, 10);
  for (const int32_t flag : {571, 580, 581, 599, 600, 601}) EXPECT_EQ(Attribute(0, flag), 1);
  EXPECT_EQ(Attribute(0, WATTR_FLAG_615), 0);
  ASSERT_EQ(ZEL_SetWindowAttribute(0, WATTR_FLAG_615, -5), 0);
  EXPECT_EQ(Attribute(0, WATTR_FLAG_615), -5);
  Do(0, -10, {0, 1, 0, 1});
  EXPECT_EQ(Attribute(0, WATTR_FLAG_580), 0);
  EXPECT_EQ(Attribute(0, WATTR_FLAG_601), 1);
  EXPECT_EQ(Attribute(0, WATTR_FLAG_599), 0);
  EXPECT_EQ(Attribute(0, WATTR_FLAG_615), 1);
  EXPECT_EQ(Ask(0, -4), Numbers{1}) << "it stays shown";
  EXPECT_EQ(Attribute(17, WATTR_VISIBLE), 0);
  EXPECT_EQ(Attribute(17, WATTR_FLAG_600), 0);
  EXPECT_EQ(Attribute(17, WATTR_FLAG_615), 1);
}

TEST_F(Windows, KnowTheirAttributesByNumber) {
  int32_t one = 3;
  int32_t two = 3;
  EXPECT_EQ(ZEL_SetWindowAttribute(0, 1, 1), -699);
  EXPECT_EQ(ZEL_SetWindowAttribute(0, WATTR2_SIZE, 1), -699);
  EXPECT_EQ(ZEL_GetWindowAttribute(0, WATTR2_SIZE, &one), -699);
  EXPECT_EQ(ZEL_SetWindow2DAttributes(0, WATTR_WIDTH, 1, 1), -699);
  EXPECT_EQ(ZEL_GetWindow2DAttributes(0, WATTR_WIDTH, &one, &two), -699);
  EXPECT_EQ(ZEL_GetWindow2DAttributes(0, WATTR2_SIZE, nullptr, &two), -3009);
  EXPECT_EQ(ZEL_SetWindowAttribute(0, WATTR_TITLE, 0), -3009);
  EXPECT_EQ(one, 3);
  ASSERT_EQ(ZEL_SetWindow2DAttributes(0, WATTR2_POSITION, 11, 22), 0);
  ASSERT_EQ(ZEL_GetWindow2DAttributes(0, WATTR2_POSITION, &one, &two), 0);
  EXPECT_EQ(one, 11);
  EXPECT_EQ(two, 22);
  EXPECT_EQ(Attribute(0, WATTR_TOP), 11);
  ASSERT_EQ(ZEL_SetWindowAttribute(0, WATTR_LEFT, 33), 0);
  EXPECT_EQ(Ask(0, -2), (Numbers{33, 11}));
  ASSERT_EQ(ZEL_SetWindowAttribute(0, WATTR_VISIBLE, 8), 0);
  EXPECT_EQ(Attribute(0, WATTR_VISIBLE), 1);
  ASSERT_EQ(ZEL_SetWindow2DAttributes(0, WATTR2_SIZE, 10, 2000000000), 0);
  EXPECT_EQ(Ask(0, -3), (Numbers{2000000000, 64, 0}));
  ASSERT_EQ(ZEL_SetWindow2DAttributes(0, WATTR2_SIZE, 0, 77), 0);
  EXPECT_EQ(Ask(0, -3), (Numbers{2000000000, 64, 0}));
}

TEST_F(Windows, AreSizedAndMovedByPeople) {
  Do(0, 10);
  zel::DesktopEvent event;
  event.kind = DesktopEventKind::PANEL_SIZE;
  event.width = 500;
  event.height = 30;
  zel::MemoryDesktopPost(event);
  WindowEvent read = EventOf(0);
  EXPECT_EQ(read.type, WEVENT_SIZE);
  EXPECT_EQ(read.integers[0], 500);
  EXPECT_EQ(read.integers[1], 64);
  EXPECT_EQ(Ask(0, -3), (Numbers{500, 64, 0}));
  event.kind = DesktopEventKind::PANEL_MOVE;
  event.left = -7;
  event.top = 8;
  zel::MemoryDesktopPost(event);
  read = EventOf(0);
  EXPECT_EQ(read.type, WEVENT_MOVE);
  EXPECT_EQ(read.integers[0], -7);
  EXPECT_EQ(read.tool, 0);
  Post(0, DesktopEventKind::CLOSE);
  read = EventOf(0);
  EXPECT_EQ(read.type, WEVENT_CLOSE);
  EXPECT_EQ(zel::MemoryDesktopPanels(), 0);
}

TEST_F(Windows, KeepTheParentThroughTheEndOfTheLibrary) {
  ZEL_SetWParent(3, 99);
  Do(3, 10);
  ZEL_CloseSys();
  EXPECT_EQ(zel::display.bindings[3].parent, 99);
  ZEL_SetWParent(3, 0);
}

}  // namespace
