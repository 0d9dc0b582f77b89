// The viewer on a desktop in memory, with a person played by a script.
#include "orlune/view/viewer.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <cmath>
#include <filesystem>
#include <fstream>
#include <limits>
#include <sstream>

#include "orlune/shared/output.h"
#include "orlune/view/text_panel.h"
#include "platform/built_in_face.h"
#include "platform/canvases.h"
#include "platform/memory_desktop.h"
#include "tests/support/complaints.h"
#include "tests/support/no_fonts.h"

namespace {

using namespace front;  // NOLINT: these are its tests
using test::Has;

namespace fs = std::filesystem;
using zel::DesktopEventKind;

constexpr int32_t WIDTH = 64;
constexpr int32_t HEIGHT = 48;
constexpr int32_t ZOOM = 6;  // that such a picture is shown at

class View : public testing::Test {
 protected:
  View() {
    zel::MemoryDesktopReset();
    zel::FontsUse(&zel::BUILT_IN_FACE);
    fs::create_directories(folder_);
    settings_.folder = (folder_ / "marked").string();
  }
  ~View() override {
    viewer_.reset();
    ZEL_CloseSys();
    EXPECT_EQ(zel::MemoryDesktopPanels(), 0) << "windows left behind";
    zel::FontsUse(nullptr);
    zel::MemoryDesktopReset();
    fs::remove_all(folder_);
  }

  struct Block {
    int32_t left, top, side;
    float level;
  };
  // A dark picture with light squares.
  std::string File(const std::string& name, const std::vector<Block>& blocks,
                   int32_t type = IMAGE_U8) {
    const Image image(type, 0, WIDTH, HEIGHT);
    Check(ZEL_ClearPixels(image));
    for (const Block& block : blocks) {
      Check(ZEL_DrawRect(image, 0, block.top, block.left, block.side, block.side, DRAW_PAINT,
                         block.level));
    }
    const std::string path = (folder_ / name).string();
    WritePicture(image, {}, Depth::AsImage, path, FormatByEnding(path));
    return path;
  }
  std::string TwoSquares() { return File("two.tif", {{10, 10, 8, 200}, {40, 20, 5, 100}}); }

  bool Open(const std::vector<std::string>& files) {
    settings_.files = files;
    viewer_.emplace(settings_, out_, complaints_);
    return viewer_->Open();
  }
  // In pixels of the picture, from a corner to the other.
  void Drag(int32_t tool, int32_t x1, int32_t y1, int32_t x2, int32_t y2) {
    Check(ZEL_SetActiveTool(tool));
    Post(DesktopEventKind::LEFT_PRESS, x1 * ZOOM, y1 * ZOOM, 0);
    zel::MemoryDesktopPointer(x1 * ZOOM, y1 * ZOOM, true);
    zel::MemoryDesktopPointer(x2 * ZOOM, y2 * ZOOM, true);
    zel::MemoryDesktopPointer(x2 * ZOOM, y2 * ZOOM, false);
    EXPECT_EQ(viewer_->Look(), Viewer::Turn::BUSY);
  }
  Viewer::Turn Press(int32_t key) {
    Post(DesktopEventKind::KEY_PRESS, 0, 0, key);
    return viewer_->Look();
  }
  static void Post(DesktopEventKind kind, int32_t x = 0, int32_t y = 0, int32_t key = 0) {
    zel::DesktopEvent event;
    event.kind = kind;
    event.window = PICTURE_WINDOW;
    event.x = x;
    event.y = y;
    event.key = key;
    zel::MemoryDesktopPost(event);
  }

  std::string Title() const {
    char title[300] = {};
    Check(ZEL_GetWindowAttribute(PICTURE_WINDOW, WATTR_TITLE, title));
    return title;
  }
  std::string Report() const {
    std::string text;
    for (const std::string& line : viewer_->ReportLines()) text += line + '\n';
    return text;
  }
  static bool IsOpen(int32_t window) {
    int32_t panel = 0;
    ZEL_GetWindowIDs(window, &panel, nullptr);
    return panel != 0;
  }
  static uint32_t Pixel(int32_t x, int32_t y) {
    int32_t canvas = 0;
    ZEL_GetWindowIDs(PICTURE_WINDOW, nullptr, &canvas);
    return zel::MemoryDesktopPixel(canvas, x * ZOOM + ZOOM / 2, y * ZOOM + ZOOM / 2);
  }

  fs::path folder_ = fs::temp_directory_path() / ("orlune_view_" + std::to_string(::getpid()));
  ViewSettings settings_;
  std::ostringstream out_, complaints_;
  std::optional<Viewer> viewer_;
};

TEST_F(View, ShowsAPictureWithItsToolsAndMeasures) {
  ASSERT_TRUE(Open({TwoSquares()}));
  EXPECT_EQ(Title(), "two.tif  TIFF, 64 x 48, 8-bit gray  6:1");
  EXPECT_EQ(Pixel(12, 12), 0xC8C8C8u);
  EXPECT_EQ(Pixel(30, 30), 0u);
  EXPECT_TRUE(IsOpen(16));
  EXPECT_TRUE(IsOpen(REPORT_WINDOW));
  EXPECT_TRUE(Has(Report(), "whole picture")) << Report();
  EXPECT_TRUE(Has(Report(), "3072 pixels, 100.0 % of the picture"));
  EXPECT_EQ(viewer_->Look(), Viewer::Turn::IDLE);
  EXPECT_EQ(complaints_.str(), "");
}

TEST_F(View, MeasuresARectangleAsSoonAsItIsDrawn) {
  ASSERT_TRUE(Open({TwoSquares()}));
  Drag(WTOOL_RECT, 8, 8, 20, 20);
  EXPECT_TRUE(Has(Report(), "rectangle 8,8 20,20")) << Report();
  EXPECT_TRUE(Has(Report(), "144 pixels"));
  EXPECT_TRUE(Has(Report(), "mean 88.8889, deviation 99.3808, 0 to 200")) << Report();
  EXPECT_TRUE(Has(Report(), "1 particle of 200 to 255 (clustering)")) << Report();
  EXPECT_TRUE(Has(Report(), "1: 64 px at 13.5,13.5")) << Report();
  EXPECT_EQ(Press(8), Viewer::Turn::BUSY);
  EXPECT_TRUE(Has(Report(), "whole picture"));
}

TEST_F(View, ShowsTheProfileAndTheEdgesOfALine) {
  ASSERT_TRUE(Open({TwoSquares()}));
  Drag(WTOOL_LINE, 2, 14, 60, 14);
  EXPECT_TRUE(Has(Report(), "line 2,14 60,14")) << Report();
  EXPECT_TRUE(Has(Report(), "length 58.0, angle 0.0"));
  EXPECT_TRUE(Has(Report(), "2 edges"));
  EXPECT_TRUE(Has(Report(), "rising at ")) << Report();
  EXPECT_TRUE(Has(Report(), "falling at ")) << Report();
}

TEST_F(View, TellsTheValueOfAPoint) {
  ASSERT_TRUE(Open({TwoSquares()}));
  Drag(WTOOL_POINT, 12, 11, 12, 11);
  EXPECT_EQ(Report(), "point 12,11\nvalue 200\n");
}

TEST_F(View, MovesTheThresholdByKeys) {
  ASSERT_TRUE(Open({TwoSquares()}));
  EXPECT_TRUE(Has(Report(), "2 particles")) << Report();
  for (int i = 0; i < 64; ++i) Press(']');
  EXPECT_TRUE(Has(Report(), "1 particle of 200 to 200\n")) << Report();
  for (int i = 0; i < 64; ++i) Press('[');
  EXPECT_TRUE(Has(Report(), "2 particles of 8 to 200\n")) << Report();
  Press('a');
  EXPECT_TRUE(Has(Report(), "2 particles"));
  Press('m');
  EXPECT_TRUE(Has(Report(), "(entropy)")) << Report();
  Press('d');
  EXPECT_TRUE(Has(Report(), "1 particle of 0 to ")) << Report();
}

TEST_F(View, GoesThroughThePicturesAndPassesBrokenOnesOver) {
  const std::string broken = (folder_ / "broken.tif").string();
  std::ofstream(broken) << "no picture";
  const std::string other = File("other.orln", {{0, 0, 4, 1000}}, IMAGE_I16);
  ASSERT_TRUE(Open({broken, TwoSquares(), other}));
  EXPECT_TRUE(Has(complaints_.str(), "broken.tif: ")) << complaints_.str();
  EXPECT_TRUE(viewer_->HasFailed());
  EXPECT_TRUE(Title().starts_with("[2/3] two.tif"));
  EXPECT_EQ(Press('n'), Viewer::Turn::BUSY);
  EXPECT_TRUE(Title().starts_with("[3/3] other.orln")) << Title();
  EXPECT_EQ(Pixel(1, 1), 0xFEFEFEu) << "spread over the grays";
  Press('n');
  EXPECT_TRUE(Title().starts_with("[2/3]")) << Title();
  Press('p');
  EXPECT_TRUE(Title().starts_with("[3/3]")) << Title();
  Press(0xFF55);
  EXPECT_TRUE(Title().starts_with("[2/3]")) << Title();
}

TEST_F(View, WithoutAPictureThatCanBeReadShowsNothing) {
  EXPECT_FALSE(Open({(folder_ / "none.tif").string()}));
  EXPECT_FALSE(IsOpen(PICTURE_WINDOW));
  EXPECT_TRUE(Has(complaints_.str(), "none.tif: "));
}

TEST_F(View, ForgetsTheRegionWithThePicture) {
  ASSERT_TRUE(Open({TwoSquares(), File("one.tif", {{3, 3, 4, 50}})}));
  Drag(WTOOL_OVAL, 8, 8, 20, 20);
  EXPECT_TRUE(Has(Report(), "oval 8,8 20,20"));
  Press(' ');
  EXPECT_TRUE(Has(Report(), "whole picture"));
}

TEST_F(View, ZoomsByKeys) {
  ASSERT_TRUE(Open({TwoSquares()}));
  Press('+');
  EXPECT_TRUE(Title().ends_with("12:1")) << Title();
  Press('0');
  EXPECT_TRUE(Title().ends_with("1:1"));
  Press('-');
  EXPECT_TRUE(Title().ends_with("1:2"));
  Press('-');
  EXPECT_TRUE(Title().ends_with("1:4"));
  Press('+');
  Press('+');
  EXPECT_TRUE(Title().ends_with("1:1")) << Title();
  for (int i = 0; i < 9; ++i) Press('+');
  EXPECT_TRUE(Title().ends_with("32:1"));
  int32_t bars = 0;
  Check(ZEL_GetWindowAttribute(PICTURE_WINDOW, WATTR_SCROLLBARS, &bars));
  EXPECT_EQ(bars, 1);
  for (int i = 0; i < 12; ++i) Press('-');
  EXPECT_TRUE(Title().ends_with("1:16"));
  Press('f');
  EXPECT_TRUE(Title().ends_with("6:1"));
}

TEST_F(View, ChoosesColoursByKeys) {
  ASSERT_TRUE(Open({TwoSquares()}));
  const uint32_t gray = Pixel(42, 22);
  Press('4');
  EXPECT_NE(Pixel(42, 22), gray);
  Press('1');
  EXPECT_EQ(Pixel(42, 22), gray);
}

TEST_F(View, WritesMeasuresAndOptions) {
  const std::string file = TwoSquares();
  ASSERT_TRUE(Open({file}));
  Press('o');
  EXPECT_EQ(out_.str(), "orlune inspect --method clustering '" + file + "'\n");
  Drag(WTOOL_RECT, 8, 8, 50, 30);
  out_.str("");
  Press('o');
  EXPECT_EQ(out_.str(), "orlune inspect --region 8,8,42,22 --method clustering '" + file + "'\n");
  out_.str("");
  Press('w');
  EXPECT_EQ(out_.str().substr(0, file.size() + 1), file + "\n");
  EXPECT_TRUE(Has(out_.str(), "2 particles of 86 to 255")) << out_.str();
  // The command finds the same.
  InspectSettings settings;
  settings.region = Region{8, 8, 42, 22};
  EXPECT_EQ(Inspect(file, settings).Kept(), 2u);
}

TEST_F(View, SavesAMarkedCopy) {
  const std::string file = TwoSquares();
  ASSERT_TRUE(Open({file}));
  Drag(WTOOL_RECT, 30, 15, 50, 30);
  Press('s');
  const std::string copy = settings_.folder + "/two-marked.png";
  EXPECT_EQ(out_.str(), "saved " + copy + "\n");
  const Loaded saved = ReadPicture(copy, {});
  const ImageInfo info = saved.image.Info();
  EXPECT_EQ(info.width, WIDTH);
  EXPECT_EQ(Row<RGBValue>(info, 15)[30] & 0xFFFFFF, 0xFF9600u) << "the region's corner";
  EXPECT_EQ(Row<RGBValue>(info, 12)[12] & 0xFFFFFF, 0xC8C8C8u);
  Press('s');
  EXPECT_EQ(complaints_.str(), "") << "a second copy takes the place of the first";
}

TEST_F(View, CopiesThePictureWithItsMarksToTheClipboard) {
  ASSERT_TRUE(Open({TwoSquares()}));
  Press('c');
  const Image copy(IMAGE_RGB);
  std::vector<RGBValue> palette(256);
  int32_t isThere = 0;
  Check(ZEL_ClipboardToImage(copy, palette.data(), &isThere));
  EXPECT_EQ(isThere, 1);
  EXPECT_EQ(Row<RGBValue>(copy.Info(), 10)[10] & 0xFFFFFF, 0x20E850u);
}

TEST_F(View, NeverSavesOverAPictureThatItShows) {
  const std::string file = TwoSquares();
  const std::string other = File("two-marked.png", {});
  settings_.folder = folder_.string();
  ASSERT_TRUE(Open({file, other}));
  const auto before = fs::last_write_time(other);
  Press('s');
  EXPECT_TRUE(Has(complaints_.str(), "two-marked.png")) << complaints_.str();
  EXPECT_EQ(fs::last_write_time(other), before);
}

TEST_F(View, MarksWhatIsFoundInTheWindow) {
  ASSERT_TRUE(Open({TwoSquares()}));
  EXPECT_EQ(Pixel(10, 10), 0xC8C8C8u);
  Press('x');
  EXPECT_EQ(Pixel(10, 10), 0x20E850u);
  EXPECT_EQ(Pixel(12, 12), 0xC8C8C8u);
  for (int i = 0; i < 64; ++i) Press(']');
  EXPECT_EQ(Pixel(40, 20), 0x646464u) << "no object any more";
  Press('x');
  EXPECT_EQ(Pixel(10, 10), 0xC8C8C8u);
}

TEST_F(View, HelpsOnAKey) {
  ASSERT_TRUE(Open({TwoSquares()}));
  Press('h');
  EXPECT_TRUE(IsOpen(HELP_WINDOW));
  Press(0xFFBE);
  EXPECT_FALSE(IsOpen(HELP_WINDOW));
}

TEST_F(View, EndsWhenThePersonLeaves) {
  ASSERT_TRUE(Open({TwoSquares()}));
  EXPECT_EQ(Press('k'), Viewer::Turn::BUSY) << "means nothing";
  EXPECT_EQ(Press('q'), Viewer::Turn::DONE);
  ASSERT_TRUE(Open({TwoSquares()}));
  EXPECT_EQ(Press(27), Viewer::Turn::DONE);
  ASSERT_TRUE(Open({TwoSquares()}));
  Post(DesktopEventKind::CLOSE);
  EXPECT_EQ(viewer_->Look(), Viewer::Turn::DONE);
}

TEST_F(View, WithoutFontsTellsSoOnceAndMeasuresAllTheSame) {
  zel::FontsUse(&test::NO_FONTS);
  ASSERT_TRUE(Open({TwoSquares()}));
  Drag(WTOOL_RECT, 8, 8, 20, 20);
  EXPECT_EQ(complaints_.str(),
            "orlune: no font is installed: measures are shown by the key w alone\n");
  EXPECT_FALSE(IsOpen(REPORT_WINDOW));
  Press('w');
  EXPECT_TRUE(Has(out_.str(), "144 pixels"));
  Press('h');
  EXPECT_TRUE(Has(out_.str(), "next picture"));
}

TEST_F(View, WithoutWindowsFails) {
  zel::DesktopFaultsGet()->noPanels = true;
  EXPECT_THROW(Open({TwoSquares()}), LibraryFailure);
  zel::DesktopFaultsGet()->noPanels = false;
}

TEST(TextPanel, DrawsCurvesOfAnyValues) {
  zel::FontsUse(&zel::BUILT_IN_FACE);
  const std::vector<std::string> lines = {"one", "another line"};
  const float infinite = std::numeric_limits<float>::infinity();
  for (const std::vector<float>& curve :
       std::vector<std::vector<float>>{{}, {1}, {2, 2}, {0, 5, infinite, 3, -1e30F, NAN}}) {
    const std::optional<Image> panel = DrawPanel({lines, curve, {}});
    ASSERT_TRUE(panel);
    EXPECT_EQ(panel->Info().height, curve.empty() ? 48 : 176);
  }
  zel::FontsUse(nullptr);
}

}  // namespace
