// Lines of text become pixels: by the machine's fonts, by none of them, and by the built-in face.
#include "platform/fonts.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "platform/built_in_face.h"
#include "platform/characters.h"
#include "platform/machine_fonts.h"

namespace {
std::string missingLibrary;
}

// The linker puts this in the place of the system's.
extern "C" {
void* __real_dlopen(const char* name, int how);
void* __wrap_dlopen(const char* name, int how);
void* __wrap_dlopen(const char* name, int how) {
  return name && missingLibrary == name ? nullptr : __real_dlopen(name, how);
}
}

namespace {

using zel::BUILT_IN_FACE;
using zel::FontRequest;
using zel::MACHINE_FONTS;
using zel::TextRasteriser;

struct Picture {
  int32_t width = 0, height = 0;
  std::vector<uint8_t> pixels;

  bool operator==(const Picture&) const = default;
  uint8_t At(int32_t x, int32_t y) const {
    return pixels[static_cast<size_t>(y) * static_cast<size_t>(width) + static_cast<size_t>(x)];
  }
  int64_t Set() const { return std::count(pixels.begin(), pixels.end(), uint8_t{255}); }
  bool IsRowSet(int32_t y) const {
    for (int32_t x = 0; x < width; x++) {
      if (At(x, y) == 0) return false;
    }
    return true;
  }
  int32_t RowsSet() const {
    int32_t rows = 0;
    for (int32_t y = 0; y < height; y++) rows += IsRowSet(y) ? 1 : 0;
    return rows;
  }
  Picture Part(int32_t left, int32_t top, int32_t w, int32_t h) const {
    Picture part{w, h, {}};
    for (int32_t y = top; y < top + h; y++) {
      for (int32_t x = left; x < left + w; x++) {
        const bool isInside = x >= 0 && x < width && y >= 0 && y < height;
        part.pixels.push_back(isInside ? At(x, y) : 0);
      }
    }
    return part;
  }
};

FontRequest Font(const char* family, int32_t height) {
  return {family, height, false, false, false, false};
}

int32_t WidthOf(const TextRasteriser& face, const FontRequest& font, const std::string& line) {
  int32_t width = -1;
  EXPECT_EQ(face.measure(font, line, &width), 0);
  return width;
}

// A part of a line; other bytes stay.
Picture PartOf(const TextRasteriser& face, const FontRequest& font, const std::string& line,
               const zel::TextPixels& part) {
  const int64_t pitch = part.width + 3;
  std::vector<uint8_t> bytes(static_cast<size_t>(pitch * part.height) + 1, 77);
  zel::TextPixels to = part;
  to.first = bytes.data();
  to.pitch = pitch;
  EXPECT_EQ(face.draw(font, line, to), 0);
  Picture drawn{part.width, part.height, {}};
  for (int32_t y = 0; y < part.height; y++) {
    const uint8_t* row = bytes.data() + y * pitch;
    drawn.pixels.insert(drawn.pixels.end(), row, row + part.width);
    EXPECT_EQ(row[part.width], 77) << "beside row " << y;
  }
  for (const uint8_t pixel : drawn.pixels) EXPECT_TRUE(pixel == 0 || pixel == 255);
  return drawn;
}

Picture LineOf(const TextRasteriser& face, const FontRequest& font, const std::string& line) {
  return PartOf(face, font, line, {nullptr, 0, 0, 0, WidthOf(face, font, line), font.height});
}

std::string Sketch(const Picture& picture) {
  std::string sketch;
  for (int32_t y = 0; y < picture.height; y++) {
    for (int32_t x = 0; x < picture.width; x++) sketch += picture.At(x, y) ? '#' : '.';
    sketch += '\n';
  }
  return sketch;
}

// ---- characters

std::u32string CharactersOf(std::string_view text) {
  std::u32string characters;
  while (!text.empty()) characters += zel::CharacterNext(&text);
  return characters;
}

TEST(Characters, AreReadFromUtf8) {
  EXPECT_EQ(CharactersOf("aä€😀z"), U"aä€😀z");
  EXPECT_EQ(CharactersOf("\xF4\x8F\xBF\xBF"), std::u32string(1, char32_t{0x10FFFF}));
  EXPECT_EQ(CharactersOf(""), U"");
}

TEST(Characters, OfBytesThatAreNoUtf8AreLatin1) {
  EXPECT_EQ(CharactersOf("M\xFCller"), U"Müller");
  EXPECT_EQ(CharactersOf("5\xB0"), U"5°");
  EXPECT_EQ(CharactersOf("\xE2\x82"), U"\u00E2\u0082");            // cut off
  EXPECT_EQ(CharactersOf("\xC0\xAF"), U"\u00C0\u00AF");            // longer than it need be
  EXPECT_EQ(CharactersOf("\xE0\x80\xAF"), U"\u00E0\u0080\u00AF");  // likewise
  EXPECT_EQ(CharactersOf("\xED\xA0\x80"), U"\u00ED\u00A0\u0080");  // half of a pair
  EXPECT_EQ(CharactersOf("\xF4\x90\x80\x80"), U"\u00F4\u0090\u0080\u0080");  // beyond the last
}

TEST(Characters, ThatControlHaveNoLook) {
  for (const char32_t c : U"\n\t\r\x7F\u0080\u009F") EXPECT_TRUE(zel::IsControl(c)) << uint32_t{c};
  for (const char32_t c : {U' ', U'~', U'\u00A0', U'€'}) EXPECT_FALSE(zel::IsControl(c));
}

// ---- what holds for either

class EitherFont : public testing::TestWithParam<bool> {
 protected:
  const TextRasteriser& Face() const { return GetParam() ? MACHINE_FONTS : BUILT_IN_FACE; }
  FontRequest Sans(int32_t height) const { return Font("DejaVu Sans", height); }
};
INSTANTIATE_TEST_SUITE_P(Fonts, EitherFont, testing::Bool(), [](const auto& instance) {
  return std::string(instance.param ? "OfTheMachine" : "BuiltIn");
});

TEST_P(EitherFont, DrawsLettersAsHighAsTheLine) {
  for (const int32_t height : {10, 16, 40, 200}) {
    const Picture line = LineOf(Face(), Sans(height), "Hxgq");
    ASSERT_GT(line.width, height);
    int32_t used = 0;
    for (int32_t y = 0; y < height; y++) used += line.Part(0, y, line.width, 1).Set() > 0 ? 1 : 0;
    EXPECT_GT(used, height / 2) << height;
    EXPECT_LT(line.Set(), int64_t{line.width} * height / 2);
  }
}

TEST_P(EitherFont, DrawsAnyPartOfALineAsItIs) {
  FontRequest font = Sans(30);
  font.isUnderlined = font.isStruckOut = font.isBold = font.isItalic = true;
  const Picture whole = LineOf(Face(), font, "part of it");
  for (const zel::TextPixels& part : {zel::TextPixels{nullptr, 0, 7, 5, 20, 11},
                                      {nullptr, 0, -4, -3, 30, 40},
                                      {nullptr, 0, whole.width - 5, 0, 9, 30},
                                      {nullptr, 0, int64_t{1} << 40, 0, 3, 30},
                                      {nullptr, 0, 0, 30, 5, 5}}) {
    const Picture expected = whole.Part(static_cast<int32_t>(std::min<int64_t>(part.left, 1 << 20)),
                                        part.top, part.width, part.height);
    // Beyond the ends slanted letters may lean out.
    const Picture drawn = PartOf(Face(), font, "part of it", part);
    if (part.left >= 0 && part.left + part.width <= whole.width) {
      EXPECT_EQ(Sketch(drawn), Sketch(expected));
    } else {
      EXPECT_GE(drawn.Set(), expected.Set());
    }
  }
}

TEST_P(EitherFont, DrawsEachStyleItsOwnWay) {
  const FontRequest plain = Sans(40);
  const Picture line = LineOf(Face(), plain, "moment");
  FontRequest bold = plain;
  bold.isBold = true;
  EXPECT_GT(LineOf(Face(), bold, "moment").Set(), line.Set() * 11 / 10);
  FontRequest italic = plain;
  italic.isItalic = true;
  EXPECT_NE(LineOf(Face(), italic, "moment"), line);
  FontRequest under = plain;
  under.isUnderlined = true;
  FontRequest through = plain;
  through.isStruckOut = true;
  const Picture underlined = LineOf(Face(), under, "moment");
  const Picture struckOut = LineOf(Face(), through, "moment");
  EXPECT_EQ(line.RowsSet(), 0);
  EXPECT_GE(underlined.RowsSet(), 1);
  EXPECT_GE(struckOut.RowsSet(), 1);
  EXPECT_EQ(underlined.Part(0, 0, line.width, 25), line.Part(0, 0, line.width, 25));
  EXPECT_EQ(struckOut.Part(0, 32, line.width, 8), line.Part(0, 32, line.width, 8));
}

TEST_P(EitherFont, PassesControlCharactersOver) {
  EXPECT_EQ(LineOf(Face(), Sans(20), "a\n\tb\x7F"), LineOf(Face(), Sans(20), "ab"));
  EXPECT_EQ(WidthOf(Face(), Sans(20), ""), 0);
  EXPECT_EQ(WidthOf(Face(), Sans(20), "\n"), 0);
}

TEST_P(EitherFont, IsRefusedBeyondTheLargestSize) {
  int32_t width = 7;
  EXPECT_EQ(Face().measure(Sans(zel::FONT_HEIGHT_LIMIT + 1), "a", &width), zel::FONT_TOO_LARGE);
  EXPECT_EQ(Face().measure(Sans(INT32_MAX), "a", &width), zel::FONT_TOO_LARGE);
  EXPECT_EQ(width, 7);
  const Picture corner =
      PartOf(Face(), Sans(zel::FONT_HEIGHT_LIMIT), "HHHH", {nullptr, 0, 0, 0, 3000, 4000});
  EXPECT_GT(corner.Set(), 0);
}

// ---- the built-in face

TEST(BuiltInFace, IsMadeOfPointsInWholeMultiples) {
  const Picture line = LineOf(BUILT_IN_FACE, Font("", 10), "Tg");
  EXPECT_EQ(Sketch(line),
            "#####.......\n"
            "..#.........\n"
            "..#....####.\n"
            "..#...#...#.\n"
            "..#...#...#.\n"
            "..#...#...#.\n"
            "..#....####.\n"
            "..........#.\n"
            ".......###..\n"
            "............\n");
  const Picture twice = LineOf(BUILT_IN_FACE, Font("", 29), "Tg");
  ASSERT_EQ(twice.width, 2 * line.width);
  for (int32_t y = 0; y < 20; y++) {
    for (int32_t x = 0; x < twice.width; x++) ASSERT_EQ(twice.At(x, y), line.At(x / 2, y / 2));
  }
  EXPECT_EQ(LineOf(BUILT_IN_FACE, Font("", 10), "\xFF"), LineOf(BUILT_IN_FACE, Font("", 10), "€"));
}

// ---- the machine's fonts

TEST(MachineFonts, TellNamesApart) {
  const Picture sans = LineOf(MACHINE_FONTS, Font("DejaVu Sans", 30), "imWl");
  const Picture mono = LineOf(MACHINE_FONTS, Font("DejaVu Sans Mono", 30), "imWl");
  EXPECT_NE(sans, mono);
  EXPECT_EQ(WidthOf(MACHINE_FONTS, Font("DejaVu Sans Mono", 30), "iiii"),
            WidthOf(MACHINE_FONTS, Font("DejaVu Sans Mono", 30), "WWWW"));
  // Many more than are kept, and the first again.
  for (int32_t i = 0; i < 20; i++) {
    FontRequest font = Font(i % 2 == 0 ? "DejaVu Serif" : "DejaVu Sans", 10 + i);
    font.isBold = i % 3 == 0;
    font.isItalic = i % 5 == 0;
    EXPECT_GT(LineOf(MACHINE_FONTS, font, "other").Set(), 0);
  }
  for (int32_t i = 0; i < 20; i++) {
    const std::string name = "No Such Face " + std::to_string(i);
    EXPECT_GT(LineOf(MACHINE_FONTS, Font(name.c_str(), 30), "imWl").Set(), 0) << name;
  }
  EXPECT_EQ(LineOf(MACHINE_FONTS, Font("DejaVu Sans", 30), "imWl"), sans);
}

TEST(MachineFonts, DrawLettersThatAreKeptAsOthers) {
  for (const int32_t height : {10, 13, 16, 24, 25, 48, 49}) {
    const FontRequest font = Font("DejaVu Sans", height);
    const Picture latin = LineOf(MACHINE_FONTS, font, "AEHO");
    EXPECT_EQ(Sketch(LineOf(MACHINE_FONTS, font, "\u0410\u0415\u041D\u041E")), Sketch(latin))
        << "Cyrillic letters of the same look are not kept";
    LineOf(MACHINE_FONTS, Font("DejaVu Serif", height), "AEHO");
    EXPECT_EQ(Sketch(LineOf(MACHINE_FONTS, font, "AEHO")), Sketch(latin));
  }
}

TEST(MachineFonts, TakeAnyBytesAsAName) {
  for (const char* name : {"", "\xFF\xFE\xFD",
                           "Gr\xF6\xDF"
                           "e",
                           "名前", "😀😀😀😀😀😀😀", "a:b,c=d-12\n", "[]{}*?\\"}) {
    EXPECT_GT(LineOf(MACHINE_FONTS, Font(name, 20), "x").Set(), 0) << name;
  }
  const std::string longOne(1000, 'n');
  EXPECT_GT(LineOf(MACHINE_FONTS, Font(longOne.c_str(), 20), "x").Set(), 0);
}

TEST(MachineFonts, DrawLatin1AndUtf8Alike) {
  const FontRequest font = Font("DejaVu Sans", 24);
  EXPECT_EQ(LineOf(MACHINE_FONTS, font, "M\xFCller \xB5m"),
            LineOf(MACHINE_FONTS, font, "Müller µm"));
  EXPECT_NE(LineOf(MACHINE_FONTS, font, "Müller"), LineOf(MACHINE_FONTS, font, "Muller"));
}

class OtherFonts : public testing::Test {
 protected:
  void SetUp() override {
    MACHINE_FONTS.release();
    folder_ = (std::filesystem::temp_directory_path() / "ptk_fonts_XXXXXX").string();
    ASSERT_NE(mkdtemp(folder_.data()), nullptr);
  }
  void TearDown() override {
    missingLibrary.clear();
    unsetenv("FONTCONFIG_FILE");
    MACHINE_FONTS.release();
    std::filesystem::remove_all(folder_);
    EXPECT_GT(WidthOf(MACHINE_FONTS, Font("DejaVu Sans", 20), "here again"), 0);
  }
  // A machine whose fonts are all in this folder.
  void UseFolder(const std::string& rules = "") {
    const std::string list = folder_ + "/fonts.conf";
    std::ofstream(list) << "<?xml version=\"1.0\"?>\n<!DOCTYPE fontconfig SYSTEM \"fonts.dtd\">\n"
                        << "<fontconfig><dir>" << folder_ << "/fonts</dir><cachedir>" << folder_
                        << "/cache</cachedir>" << rules << "</fontconfig>\n";
    setenv("FONTCONFIG_FILE", list.c_str(), 1);
  }
  int32_t Answer() {
    int32_t width = 5;
    const int32_t failure = MACHINE_FONTS.measure(Font("DejaVu Sans", 20), "x", &width);
    EXPECT_EQ(width, 5);
    uint8_t byte = 9;
    EXPECT_EQ(MACHINE_FONTS.draw(Font("DejaVu Sans", 20), "x", {&byte, 1, 0, 0, 1, 1}), failure);
    EXPECT_EQ(byte, 9);
    return failure;
  }

  std::string folder_;
};

TEST_F(OtherFonts, MayBeNone) {
  UseFolder();
  EXPECT_EQ(Answer(), zel::FONT_MISSING);
}

TEST_F(OtherFonts, MayAllBeBroken) {
  UseFolder();
  std::filesystem::create_directory(folder_ + "/fonts");
  std::ofstream(folder_ + "/fonts/broken.ttf") << std::string("\0\1\0\0\0\4 no font", 14);
  EXPECT_EQ(Answer(), zel::FONT_MISSING);
}

TEST_F(OtherFonts, NeedBothLibraries) {
  for (const char* library : {"libfreetype.so.6", "libfontconfig.so.1"}) {
    missingLibrary = library;
    EXPECT_EQ(Answer(), zel::FONT_LIBRARIES_MISSING) << library;
  }
}

TEST_F(OtherFonts, ThatAreUprightAreThickenedAndSlanted) {
  std::filesystem::create_directory(folder_ + "/fonts");
  std::filesystem::copy_file("/usr/share/fonts/truetype/dejavu/DejaVuSansMono.ttf",
                             folder_ + "/fonts/upright.ttf");
  // Settings that call the face what it is not, as those of most machines do.
  const std::string rules =
      "<match target=\"font\"><test name=\"weight\" "
      "compare=\"less_eq\"><const>medium</const></test>"
      "<test target=\"pattern\" name=\"weight\" compare=\"more_eq\"><const>medium</const></test>"
      "<edit name=\"embolden\" mode=\"assign\"><bool>true</bool></edit>"
      "<edit name=\"weight\" mode=\"assign\"><const>bold</const></edit></match>"
      "<match target=\"font\"><test name=\"slant\"><const>roman</const></test>"
      "<test target=\"pattern\" name=\"slant\" compare=\"not_eq\"><const>roman</const></test>"
      "<edit name=\"matrix\" mode=\"assign\"><matrix><double>1</double><double>0.2</double>"
      "<double>0</double><double>1</double></matrix></edit>"
      "<edit name=\"slant\" mode=\"assign\"><const>oblique</const></edit></match>";
  Picture first;
  for (const std::string& setting : {std::string(), rules}) {
    MACHINE_FONTS.release();
    UseFolder(setting);
    const FontRequest plain = Font("", 60);
    FontRequest bold = plain;
    bold.isBold = true;
    FontRequest italic = plain;
    italic.isItalic = true;
    const Picture line = LineOf(MACHINE_FONTS, plain, "lull");
    EXPECT_GT(LineOf(MACHINE_FONTS, bold, "lull").Set(), line.Set() * 11 / 10) << setting;
    EXPECT_NE(LineOf(MACHINE_FONTS, italic, "lull"), line) << setting;
    if (setting.empty()) first = line;
    EXPECT_EQ(line, first);
  }
}

TEST(Fonts, InUseAreTheMachinesUntilOthersAreNamed) {
  EXPECT_EQ(&zel::FontsInUse(), &MACHINE_FONTS);
  zel::FontsUse(&BUILT_IN_FACE);
  EXPECT_EQ(&zel::FontsInUse(), &BUILT_IN_FACE);
  zel::FontsUse(nullptr);
  EXPECT_EQ(&zel::FontsInUse(), &MACHINE_FONTS);
}

}  // namespace
