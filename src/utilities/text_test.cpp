// Text in images, against the bits of its lines.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "core/heap.h"
#include "harness/test_image.h"
#include "platform/built_in_face.h"
#include "platform/fonts.h"
#include "tests/support/walks.h"

namespace {

using test::CloneOf;
using test::PixelDifference;
using test::TestImage;

struct Text {
  int32_t x = 3, y = 2;
  int32_t mode = TEXT_WHITE;
  std::string text = "Ag";
  int32_t size = 10;
  int32_t style = 0;
  int32_t align = TEXT_ALIGN_LEFT;
  std::string font = "any";
};

int32_t Draw(ImageRef source, ImageRef destination, const Text& text, int32_t* lines = nullptr) {
  return ZEL_DrawText(source, destination, text.x, text.y, text.mode, text.text.c_str(), text.size,
                      text.style, text.align, text.font.c_str(), lines);
}

// Letters that are the same on every machine, unless a test wants the machine's.
class DrawText : public testing::Test {
 protected:
  void SetUp() override { zel::FontsUse(&zel::BUILT_IN_FACE); }
  void TearDown() override { zel::FontsUse(nullptr); }
};

// ---- as it is stated

std::vector<std::string> LinesOf(const std::string& text) {
  std::vector<std::string> lines(1);
  for (const char c : text) {
    if (c == '\r') {
      lines.emplace_back();
    } else {
      lines.back() += c;
    }
  }
  return lines;
}

template <class T>
T Inked(T pixel, bool isLetter, int32_t mode, T white) {
  const int32_t known = std::clamp(mode, 0, 4);
  if (known == 2) return isLetter ? pixel ^ white : pixel;
  if (known == 0) return isLetter ? white : pixel;
  if (known == 1) return isLetter ? T{0} : pixel;
  return isLetter == (known == 4) ? white : T{0};
}

void PixelInk(const TestImage& image, int32_t x, int32_t y, bool isLetter, int32_t mode) {
  if (image.Info().type == IMAGE_U8) {
    const uint8_t pixel = image.Get<uint8_t>(x, y);
    image.Set(x, y, Inked<uint8_t>(pixel, isLetter, mode, 0xFF));
  } else {
    const uint32_t pixel = image.Get<uint32_t>(x, y);
    image.Set(x, y, Inked<uint32_t>(pixel, isLetter, mode, 0xFFFFFF));
  }
}

void DrawAsStated(const TestImage& image, const Text& text) {
  const int32_t height = std::max(text.size, 10);
  const zel::FontRequest font{text.font.c_str(),     height,
                              (text.style & 1) != 0, (text.style & 2) != 0,
                              (text.style & 4) != 0, (text.style & 32) != 0};
  int64_t top = text.y;
  for (const std::string& line : LinesOf(text.text)) {
    if (line.size() > 256) return;
    int32_t width = 0;
    ASSERT_EQ(zel::FontsInUse().measure(font, line, &width), 0);
    std::vector<uint8_t> bits(static_cast<size_t>(width) * static_cast<size_t>(height) + 1);
    const zel::TextPixels all{bits.data(), width, 0, 0, width, height};
    ASSERT_EQ(zel::FontsInUse().draw(font, line, all), 0);
    const int32_t align = std::clamp(text.align, 0, 2);
    const int64_t left = int64_t{text.x} - (align == 0 ? 0 : align == 1 ? width / 2 : width);
    for (int64_t y = 0; y < height; y++) {
      for (int64_t x = 0; x < width; x++) {
        if (left + x < 0 || left + x >= image.width()) continue;
        if (top + y < 0 || top + y >= image.height()) continue;
        PixelInk(image, static_cast<int32_t>(left + x), static_cast<int32_t>(top + y),
                 bits[static_cast<size_t>(y * width + x)] != 0, text.mode);
      }
    }
    top += height;
  }
}

void ExpectAsStated(int32_t type, const Text& text) {
  const TestImage source(type, 61, 37, 2, 5);
  const TestImage expected = CloneOf(source);
  DrawAsStated(expected, text);
  const TestImage destination(type, 4, 4, 2, 9);
  const int32_t count = static_cast<int32_t>(LinesOf(text.text).size());
  int32_t lines = -1;
  EXPECT_EQ(Draw(source, destination, text, &lines), 0);
  EXPECT_EQ(lines, count);
  EXPECT_EQ(PixelDifference(destination, expected), "");
  const std::vector<uint8_t> around = source.Surroundings();
  EXPECT_EQ(Draw(source, 0, text), 0);
  EXPECT_EQ(PixelDifference(source, expected), "");
  EXPECT_EQ(source.Surroundings(), around);
}

constexpr int32_t TYPES[] = {IMAGE_U8, IMAGE_RGB};

TEST_F(DrawText, InksEachPixelByItsMode) {
  for (const int32_t type : TYPES) {
    for (const int32_t mode : {-3, 0, 1, 2, 3, 4, 5, INT32_MAX, INT32_MIN}) {
      ExpectAsStated(type, {.mode = mode, .text = "Text\r.", .size = 14});
    }
  }
}

TEST_F(DrawText, TakesNegativePlacesAndLeavesOutWhatIsBeyondTheImage) {
  for (const int32_t type : TYPES) {
    for (const int32_t x : {INT32_MIN, -40, -3, 0, 30, 58, 61, 1000, INT32_MAX}) {
      for (const int32_t y : {INT32_MIN, -25, -3, 30, 37, INT32_MAX}) {
        ExpectAsStated(type, {.x = x, .y = y, .mode = TEXT_INVERT, .text = "many\rlines of it"});
      }
    }
  }
}

TEST_F(DrawText, IsAlignedByItsEndsOrItsMiddle) {
  for (const int32_t align : {-5, 0, 1, 2, 9}) {
    ExpectAsStated(IMAGE_U8,
                   {.x = 31, .mode = TEXT_BLACK_ON_WHITE, .text = "a\rbcd\ref", .align = align});
  }
}

TEST_F(DrawText, HasTheStylesOfItsBits) {
  for (int32_t style = 0; style < 64; style++) {
    ExpectAsStated(IMAGE_U8,
                   {.mode = TEXT_WHITE_ON_BLACK, .text = "ski", .size = 20, .style = style});
  }
  const TestImage one(IMAGE_U8, 40, 20);
  const TestImage other(IMAGE_U8, 40, 20);
  EXPECT_EQ(Draw(one, 0, {.style = TEXT_BOLD}), 0);
  EXPECT_EQ(Draw(other, 0, {.style = TEXT_BOLD | 8 | 16 | 64 | 1 << 30}), 0);
  EXPECT_EQ(PixelDifference(one, other), "");
}

TEST_F(DrawText, OfSize3IsDrawnAsSize10) {
  for (const int32_t size : {3, 9, 0, -1, INT32_MIN}) {
    const TestImage small(IMAGE_U8, 50, 20);
    const TestImage ten(IMAGE_U8, 50, 20);
    EXPECT_EQ(Draw(small, 0, {.size = size}), 0);
    EXPECT_EQ(Draw(ten, 0, {.size = 10}), 0);
    EXPECT_EQ(PixelDifference(small, ten), "");
  }
}

TEST_F(DrawText, EndsLinesAtCode13AndPassesOtherControlCodesOver) {
  ExpectAsStated(IMAGE_U8, {.text = "\r\ra\r"});
  ExpectAsStated(IMAGE_U8, {.text = ""});
  const TestImage plain(IMAGE_U8, 50, 30);
  const TestImage mixed(IMAGE_U8, 50, 30);
  EXPECT_EQ(Draw(plain, 0, {.text = "ab\rc"}), 0);
  EXPECT_EQ(Draw(mixed, 0, {.text = "a\n\tb\x7F\r\nc"}), 0);
  EXPECT_EQ(PixelDifference(plain, mixed), "");
}

TEST_F(DrawText, StopsAtALineOfMoreThan256Bytes) {
  const std::string longest(256, 'i');
  ExpectAsStated(IMAGE_U8, {.x = -700, .text = "a\r" + longest + "\rb"});
  ExpectAsStated(IMAGE_U8, {.text = "a\r" + longest + "i\rb"});
  int32_t lines = 0;
  const TestImage image(IMAGE_U8, 50, 30);
  const std::vector<uint8_t> before = image.Pixels();
  EXPECT_EQ(Draw(image, 0, {.text = longest + "i\rb\rc"}, &lines), 0);
  EXPECT_EQ(lines, 3);
  EXPECT_EQ(image.Pixels(), before);
}

TEST_F(DrawText, LooksAt31BytesOfAFontsName) {
  zel::FontsUse(nullptr);
  const std::string name = "DejaVu Sans Mono";
  const TestImage exact(IMAGE_U8, 80, 30);
  const TestImage padded(IMAGE_U8, 80, 30);
  EXPECT_EQ(Draw(exact, 0, {.text = "imp", .size = 20, .font = std::string(31, 'x')}), 0);
  EXPECT_EQ(Draw(padded, 0, {.text = "imp", .size = 20, .font = std::string(31, 'x') + name}), 0);
  EXPECT_EQ(PixelDifference(exact, padded), "");
}

TEST_F(DrawText, DrawsWithTheMachinesFonts) {
  zel::FontsUse(nullptr);
  for (const int32_t type : TYPES) {
    for (int32_t style : {0, 1, 2, 4, 32, 39}) {
      ExpectAsStated(type, {.mode = TEXT_BLACK_ON_WHITE,
                            .text = "M\xFCller\r5 µm",
                            .size = 17,
                            .style = style,
                            .font = "DejaVu Serif"});
    }
  }
  // Lines are as high as the size, and letters reach over most of it.
  const TestImage image(IMAGE_U8, 200, 100);
  EXPECT_EQ(ZEL_ClearPixels(image), 0);
  EXPECT_EQ(Draw(image, 0, {.y = 0, .text = "Hg\rHg", .size = 50, .font = "DejaVu Sans"}), 0);
  int32_t used = 0;
  for (int32_t y = 0; y < 100; y++) {
    bool isUsed = false;
    for (int32_t x = 0; x < 200; x++) {
      isUsed = isUsed || image.Get<uint8_t>(x, y) != 0;
      EXPECT_EQ(image.Get<uint8_t>(x, y), image.Get<uint8_t>(x, (y + 50) % 100));
    }
    used += isUsed ? 1 : 0;
  }
  EXPECT_GT(used, 70);
}

TEST_F(DrawText, WithANullTextGives450BeforeAnythingElse) {
  int32_t lines = 77;
  EXPECT_EQ(ZEL_DrawText(999, 998, 0, 0, 0, nullptr, 10, 0, 0, "any", &lines), ZEL_ERR_NO_TEXT);
  EXPECT_EQ(ZEL_DrawText(999, 998, 0, 0, 0, "text", 10, 0, 0, nullptr, &lines), ZEL_ERR_NO_TEXT);
  EXPECT_EQ(lines, 77);
  char procedure[ERROR_PROCEDURE_BYTES];
  EXPECT_EQ(ZEL_GetLastError(procedure), ZEL_ERR_NO_TEXT);
  EXPECT_STREQ(procedure, "ZEL_DrawText");
}

TEST_F(DrawText, RefusesUnknownImagesAndOtherTypes) {
  const TestImage u8(IMAGE_U8, 9, 9);
  const TestImage rgb(IMAGE_RGB, 9, 9);
  int32_t lines = 77;
  EXPECT_EQ(Draw(0, u8, {}, &lines), ZEL_ERR_BAD_IMAGE);
  EXPECT_EQ(Draw(999, u8, {}, &lines), ZEL_ERR_BAD_IMAGE);
  EXPECT_EQ(Draw(u8, 999, {}, &lines), ZEL_ERR_BAD_IMAGE);
  EXPECT_EQ(Draw(u8, rgb, {}, &lines), ZEL_ERR_BAD_TYPE);
  EXPECT_EQ(Draw(rgb, u8, {}, &lines), ZEL_ERR_BAD_TYPE);
  for (const int32_t type : {IMAGE_I16, IMAGE_SGL, IMAGE_COMPLEX}) {
    const TestImage other(type, 9, 9);
    EXPECT_EQ(Draw(other, 0, {}, &lines), ZEL_ERR_BAD_TYPE);
    EXPECT_EQ(Draw(other, 999, {}, &lines), ZEL_ERR_BAD_TYPE);
    EXPECT_EQ(Draw(u8, other, {}, &lines), ZEL_ERR_BAD_TYPE);
  }
  EXPECT_EQ(lines, 77);
}

TEST_F(DrawText, DrawsNothingIntoAnImageWithoutPixels) {
  const TestImage empty(IMAGE_U8, 0, 0);
  int32_t lines = 0;
  EXPECT_EQ(Draw(empty, 0, {.text = "a\rb"}, &lines), 0);
  EXPECT_EQ(lines, 2);
}

TEST_F(DrawText, WithoutFontsFailsAndLeavesTheDestination) {
  static int32_t failure;
  static constexpr zel::TextRasteriser broken{
      .measure = [](const zel::FontRequest&, std::string_view, int32_t*) { return failure; },
      .draw = [](const zel::FontRequest&, std::string_view,
                 const zel::TextPixels&) { return failure; },
      .release = [] {}};
  zel::FontsUse(&broken);
  const TestImage source(IMAGE_U8, 20, 20, 0, 1);
  const TestImage destination(IMAGE_U8, 5, 5, 0, 2);
  const std::vector<uint8_t> before = destination.Block();
  int32_t lines = 77;
  for (const int32_t number :
       {ZEL_ERR_NO_FONT_LIBRARIES, ZEL_ERR_NO_FONT, ZEL_ERR_FONT_UNREADABLE}) {
    failure = number;
    EXPECT_EQ(Draw(source, destination, {}, &lines), number);
  }
  zel::FontsUse(nullptr);
  zel::FontsInUse().release();
  const std::string list = (std::filesystem::temp_directory_path() / "ptk_no_fonts.conf").string();
  std::ofstream(list) << "<?xml version=\"1.0\"?>\n<fontconfig></fontconfig>\n";
  setenv("FONTCONFIG_FILE", list.c_str(), 1);
  EXPECT_EQ(Draw(source, destination, {}, &lines), ZEL_ERR_NO_FONT);
  unsetenv("FONTCONFIG_FILE");
  std::filesystem::remove(list);
  EXPECT_EQ(Draw(source, destination, {.size = FONT_SIZE_LIMIT + 1}, &lines),
            ZEL_ERR_FONT_TOO_LARGE);
  EXPECT_EQ(destination.Block(), before);
  EXPECT_EQ(lines, 77);
  EXPECT_EQ(Draw(source, destination, {.size = FONT_SIZE_LIMIT}, &lines), 0);
}

TEST_F(DrawText, WithoutMemoryForALineLeavesTheDestination) {
  const TestImage source(IMAGE_U8, 100, 100);
  const TestImage destination(IMAGE_U8, 5, 5);
  const std::vector<uint8_t> before = destination.Block();
  zel::HeapHooksGet()->blockBudget = 500;
  int32_t lines = 77;
  EXPECT_EQ(Draw(source, destination, {}, &lines), ZEL_ERR_MEMORY_FULL);
  zel::HeapHooksGet()->blockBudget = 0;
  EXPECT_EQ(destination.Block(), before);
  EXPECT_EQ(lines, 77);
}

}  // namespace
