#include "barcode/barcode_test.h"

#include <chrono>
#include <limits>
#include <map>

#include "core/heap.h"
#include "tests/support/refused_memory.h"

namespace {

using reference::Code;
using reference::Corners;
using test::Print;
using test::Printed;
using test::PrintedCode;
using test::PrintedCodes;
using test::Read;
using test::Reader;
using test::ReaderOf;
using test::Readers;
using test::RegionAt;
using test::RegionRecord;
using test::TestImage;
using test::WholeOf;

Code ReadPrinted(const PrintedCode& code, const Print& print, bool validate = false) {
  const TestImage image = Printed(code.widths, print);
  return Read(code.kind, image, WholeOf(image), validate, code.FirstDigit());
}

TEST(Barcodes, PrintedCodesOfAllKindsAreRead) {
  std::map<std::string, int> kinds;
  for (const PrintedCode& code : PrintedCodes()) {
    kinds[code.kind]++;
    EXPECT_EQ(ReadPrinted(code, {}), (Code{0, code.text})) << code.kind;
  }
  EXPECT_EQ(kinds.size(), Readers().size());
  for (const auto& [kind, count] : kinds) EXPECT_GE(count, 4) << kind;
}

TEST(Barcodes, ChecksThatAreAskedForLeaveTheTextOrRefuseIt) {
  std::map<std::string, int> passed;
  std::map<std::string, int> refused;
  for (const PrintedCode& code : PrintedCodes()) {
    if (code.checked == "unknown") continue;
    const Code read = ReadPrinted(code, {}, true);
    if (code.checked == "refused") {
      refused[code.kind]++;
      EXPECT_EQ(read, (Code{-3003, ""})) << code.kind << ' ' << code.text;
    } else {
      // Kinds that are always checked look at no wish.
      passed[code.kind]++;
      EXPECT_EQ(read, (Code{0, code.checked == "none" ? code.text : code.checked}))
          << code.kind << ' ' << code.text;
    }
  }
  EXPECT_EQ(passed.size(), Readers().size());
  EXPECT_GT(refused["Interleaved"], 0);
  EXPECT_GT(refused["MSI"], 0);
}

TEST(Barcodes, PrintedPicturesAreRead) {
  const struct {
    const char *file, *kind, *text;
    uint8_t firstDigit;
  } pictures[] = {
      {"codabar", "Codabar", "A40156B", 0},
      {"interleaved", "Interleaved", "0987654321", 0},
      {"msi", "MSI", "123456", 0},
      {"code39", "Code39", "*CODE-39*", 0},
      {"ean8", "EAN8", "96385074", 0},
      {"ean13", "EAN13", "5901234123457", 5},
      {"upca", "UPCA", "012345678905", 0},
      {"code93", "Code93", "CODE93", 0},
      {"code128", "Code128", "Ab12345678", 0},
  };
  for (const auto& picture : pictures) {
    std::ifstream file(std::string(PTK_TEST_DATA "/barcodes/") + picture.file + ".pbm",
                       std::ios::binary);
    std::string magic;
    int32_t width = 0;
    int32_t height = 0;
    file >> magic >> width >> height;
    file.get();
    ASSERT_EQ(magic, "P4") << picture.file;
    const TestImage image(IMAGE_U8, width, height);
    for (int32_t y = 0; y < height; y++) {
      int bits = 0;
      for (int32_t x = 0; x < width; x++) {
        bits = x % 8 == 0 ? file.get() : bits << 1;
        image.Set<uint8_t>(x, y, (bits & 128) != 0 ? 0 : 255);
      }
    }
    EXPECT_EQ(Read(picture.kind, image, {0, 2, width - 1, height - 3}, false, picture.firstDigit),
              (Code{0, picture.text}))
        << picture.file;
  }
}

TEST(Barcodes, AnyPixelTypeModuleAndLightIsRead) {
  const Print prints[] = {
      {.module = 3.0},
      {.module = 5.0, .margin = 5},
      {.module = 2.37},
      {.module = 3.71, .light = 140, .dark = 110},
      {.module = 2.5, .type = IMAGE_I16, .light = 12000, .dark = -15000},
      {.module = 2.5, .type = IMAGE_SGL, .light = 1e-3, .dark = -2e-3},
      {.module = 3.0, .light = 100, .dark = 40, .slope = 0.05},
      {.module = 3.0, .light = 200, .dark = 60, .noise = 25},
      {.margin = 1},
      {.height = 1},
      {.height = 300},
  };
  for (const PrintedCode& code : PrintedCodes()) {
    for (const Print& print : prints) {
      EXPECT_EQ(ReadPrinted(code, print), (Code{0, code.text}))
          << code.kind << " with modules of " << print.module << " in type " << print.type;
    }
  }
}

TEST(Barcodes, ARectangleFromTheRightReadsAMirroredCode) {
  for (const PrintedCode& code : PrintedCodes()) {
    const std::string mirrored(code.widths.rbegin(), code.widths.rend());
    const TestImage image = Printed(mirrored);
    const Corners whole = WholeOf(image);
    EXPECT_EQ(
        Read(code.kind, image, {whole.x2, whole.y2, whole.x1, whole.y1}, false, code.FirstDigit()),
        (Code{0, code.text}))
        << code.kind;
  }
}

TEST(Barcodes, BothCornersBelongToTheRegion) {
  // The light behind the last bar is the last column: without it the bar would not end.
  const PrintedCode& code = PrintedCodes()[0];
  const TestImage image = Printed(code.widths);
  const Code expected{0, code.text};
  int32_t end = image.width() - 1;
  while (image.Get<uint8_t>(end - 1, 0) == 230) end--;
  EXPECT_EQ(Read(code.kind, image, {0, 0, end, 5}), expected);
  EXPECT_NE(Read(code.kind, image, {0, 0, end - 1, 5}), expected);
}

TEST(Barcodes, AWrongCharacterIsFoundByEveryCheck) {
  // Each data symbol is replaced by its neighbour: sound symbols in a wrong order.
  const struct {
    const char* kind;
    size_t first, size, fromEnd;  // elements before the data, of a symbol, behind the data
    bool validate;
  } layouts[] = {
      {"Code128", 6, 6, 13, false}, {"Code93", 6, 6, 19, false}, {"Code39", 10, 10, 19, true},
      {"Codabar", 8, 8, 15, true},  {"EAN8", 3, 4, 24, false},   {"UPCA", 3, 4, 32, false},
  };
  for (const auto& layout : layouts) {
    int mutilated = 0;
    for (const PrintedCode& code : PrintedCodes()) {
      if (code.kind != layout.kind || (layout.validate && code.checked == "unknown")) continue;
      for (size_t i = layout.first; i + 2 * layout.size + layout.fromEnd <= code.widths.size();
           i += layout.size) {
        PrintedCode wrong = code;
        wrong.widths.replace(i, layout.size, code.widths.substr(i + layout.size, layout.size));
        if (wrong.widths == code.widths) continue;
        mutilated++;
        EXPECT_LT(ReadPrinted(wrong, {}, layout.validate).status, 0)
            << code.kind << ' ' << code.text << " at " << i;
      }
    }
    EXPECT_GT(mutilated, 3) << layout.kind;
  }
}

TEST(Barcodes, MutilatedCodesGiveWhatTheRuleGives) {
  test::Random random(5);
  std::map<int32_t, int> answers;
  for (const PrintedCode& code : PrintedCodes()) {
    for (int i = 0; i < 12; i++) {
      std::string widths = code.widths;
      const auto place =
          static_cast<size_t>(random.Between(0, static_cast<int32_t>(widths.size()) - 1));
      if (i % 3 == 0) widths.resize(place);
      if (i % 3 == 1) widths[place] = static_cast<char>('1' + random.Between(0, 3));
      if (i % 3 == 2) widths.erase(place, 1);
      const TestImage image = Printed(widths);
      const auto profile = reference::Profile(image, WholeOf(image));
      const bool validate = i % 2 == 0;
      const Code expected =
          ReaderOf(code.kind).reference(reference::RunsOf(*profile), validate, code.FirstDigit());
      EXPECT_EQ(Read(code.kind, image, WholeOf(image), validate, code.FirstDigit()), expected);
      answers[expected.status]++;
    }
  }
  EXPECT_EQ(answers.size(), 4u);  // 0, -3003, -3004, -3030
}

// Wild pictures: noise, few gray levels, codes in part, odd floats, and regions anywhere.
TEST(Barcodes, AnyPictureGivesWhatTheRuleGives) {
  test::Random random(11);
  const auto& codes = PrintedCodes();
  std::map<int32_t, int> answers;
  for (int i = 0; i < 900; i++) {
    const int32_t type = random.Between(IMAGE_U8, IMAGE_SGL);
    const int32_t noise = random.Between(0, 2) == 0 ? 0 : random.Between(1, 60);
    const auto& code = codes[random.Next() % codes.size()];
    const Print print{.module = 1.0 + random.Between(0, 30) / 10.0,
                      .margin = random.Between(0, 6),
                      .height = random.Between(1, 30),
                      .type = type,
                      .light = 150.0,
                      .dark = 90.0,
                      .noise = noise,
                      .seed = static_cast<uint64_t>(i)};
    const TestImage image = Printed(code.widths, print);
    if (i % 3 == 1) image.FillRandom(static_cast<uint64_t>(i));
    const int32_t w = image.width();
    const int32_t h = image.height();
    Corners c = WholeOf(image);
    if (i % 2 == 0) {
      c = {random.Between(-20, w), random.Between(0, h), random.Between(0, w + 20),
           random.Between(-3, h + 3)};
    }
    const auto profile = reference::Profile(image, c);
    const Reader& reader = Readers()[static_cast<size_t>(i) % Readers().size()];
    const bool validate = random.Between(0, 1) == 1;
    const auto firstDigit = static_cast<uint8_t>(random.Between(0, 11));
    const Code expected = profile
                              ? reader.reference(reference::RunsOf(*profile), validate, firstDigit)
                              : Code{-752, ""};
    EXPECT_EQ(Read(reader, image, RegionAt(c), validate, firstDigit), expected)
        << reader.kind << ' ' << i;
    answers[expected.status]++;
  }
  for (const int32_t status : {0, -752, -3003, -3030}) EXPECT_GT(answers[status], 20) << status;
}

TEST(Barcodes, ColumnsOfNaNAndInfinityAreLight) {
  const PrintedCode& code = PrintedCodes()[0];
  for (const float strange :
       {std::numeric_limits<float>::quiet_NaN(), std::numeric_limits<float>::infinity()}) {
    const TestImage image = Printed(code.widths, {.type = IMAGE_SGL});
    image.Set<float>(50, 0, strange);
    for (const Reader& reader : Readers()) {
      const auto profile = reference::Profile(image, WholeOf(image));
      EXPECT_EQ(Read(reader, image, RegionAt(WholeOf(image))),
                reader.reference(reference::RunsOf(*profile), false, 0))
          << reader.kind;
    }
  }
}

TEST(Barcodes, AnEvenPictureHasNoBars) {
  // Around this gray the fit meets the profile, or lies above it by a rounding: any text of no
  // check may come, but the same as by the rule.
  for (const double gray : {0.0, 128.0, 77.0}) {
    const TestImage image = Printed("", {.margin = 30, .light = gray});
    const auto runs = reference::RunsOf(*reference::Profile(image, WholeOf(image)));
    for (const Reader& reader : Readers()) {
      for (const bool validate : {false, true}) {
        EXPECT_EQ(Read(reader, image, RegionAt(WholeOf(image)), validate),
                  reader.reference(runs, validate, 0));
      }
    }
  }
  const TestImage light = Printed("", {.margin = 32, .type = IMAGE_SGL, .light = 0.0});
  EXPECT_EQ(Read("Codabar", light, {0, 0, 1, 0}), (Code{0, ""}));
  EXPECT_EQ(Read("Codabar", light, {0, 0, 1, 0}, true), (Code{-3003, ""}));
  EXPECT_EQ(Read("EAN13", light, {0, 0, 1, 0}), (Code{-3030, ""}));
  EXPECT_EQ(Read("Code128", light, {0, 0, 1, 0}), (Code{-3003, ""}));
}

TEST(Barcodes, TheFirstDigitOfAnEan13IsTakenAsGiven) {
  for (const PrintedCode& code : PrintedCodes()) {
    if (code.kind != "EAN13") continue;
    const TestImage image = Printed(code.widths);
    for (uint8_t given = 0; given < 10; given++) {
      if (given == code.FirstDigit()) continue;
      // Another reading of the widths, or, by chance, a text that begins with the given digit.
      const Code read = Read("EAN13", image, WholeOf(image), false, given);
      if (read.status == 0) {
        EXPECT_EQ(read.text[0], '0' + given);
      } else {
        EXPECT_EQ(read.status, -3003);
      }
    }
    if (code.FirstDigit() == 1) {
      uint8_t digit = 200;
      char* text = nullptr;
      int32_t length = 0;
      EXPECT_EQ(ZEL_ReadEAN13(image, RegionAt(WholeOf(image)), 0, &digit, &text, &length), 0);
      EXPECT_EQ(digit, 200);
      EXPECT_EQ(std::string(text, 13), code.text);
      ZEL_free(text);
    }
  }
}

TEST(Barcodes, ACode128MayHaveACharacterThatNobodyPrints) {
  const std::string function2 = "411113";  // value 97
  const std::string shift = "411311";      // value 98, the check (104 + 97) mod 103
  EXPECT_EQ(ReadPrinted({"Code128", "", "", "211214" + function2 + shift + "2331112"}, {}),
            (Code{0, "FNC 2"}));
  // Value 99 changes from A to C, and is its own check (103 + 99) mod 103: no text at all.
  const std::string change = "113141";
  EXPECT_EQ(ReadPrinted({"Code128", "", "", "211412" + change + change + "2331112"}, {}),
            (Code{0, ""}));
}

TEST(Barcodes, ShiftsOfCode93ThatMeanNothingAreRefused) {
  // Start, the shift (/), M, two checks, stop: (/)M is no character.
  const std::string shift = "311121";
  const std::string m = "112221";
  EXPECT_EQ(ReadPrinted({"Code93", "", "", "111141" + shift + m + m + m + "1111411"}, {}).status,
            -3004);
  // Behind another shift the later one counts: (/)($)A is character 1.
  const std::string dollar = "121221";
  const std::string a = "211113";
  const int64_t c = (3 * 45 + 2 * 43 + 10) % 47;
  const int64_t k = (4 * 45 + 3 * 43 + 2 * 10 + c) % 47;
  ASSERT_EQ(c, 43);
  ASSERT_EQ(k, 43);
  EXPECT_EQ(
      ReadPrinted({"Code93", "", "", "111141" + shift + dollar + a + dollar + dollar + "1111411"},
                  {}),
      (Code{0, std::string("S\0", 2)}));
}

TEST(Barcodes, FailuresComeInTheirOrder) {
  const TestImage image = Printed(PrintedCodes()[0].widths);
  const TestImage colour(IMAGE_RGB, 40, 12);
  const TestImage complex(IMAGE_COMPLEX, 40, 12);
  const RegionRecord rect = RegionAt(WholeOf(image));
  const RegionRecord line = RegionAt(WholeOf(image), ROI_LINE);
  const RegionRecord point =
      RegionRecord::OfFlat({0, 0, 0, 0, ROI_MARKER_EXTERNAL, ROI_RECT, 3, 3});
  const RegionRecord pointAndMore = RegionRecord::OfFlat(
      {0, 0, 0, 0, ROI_MARKER_EXTERNAL, ROI_RECT, 3, 3, ROI_MARKER_INTERNAL, ROI_WHOLE});
  const RegionRecord nowhere = RegionAt(Corners{0, 500, 90, 600});
  const RegionRecord column = RegionAt(Corners{7, 0, 7, 9});
  const RegionRecord hole = RegionRecord::OfFlat(
      {0, 0, 0, 0, ROI_MARKER_INTERNAL, ROI_RECT, 0, 0, image.width() - 1, image.height() - 1});
  const uint8_t digit = 1;
  const ImageRef unknown = 0x7FFFFFF0;
  for (const Reader& reader : Readers()) {
    char* text = nullptr;
    int32_t length = -7;
    const auto call = [&](ImageRef from, const RoiDescriptor* roi) {
      return reader.call({from, roi, 1, &digit, &text, &length});
    };
    EXPECT_EQ(reader.call({0, nullptr, 1, nullptr, nullptr, nullptr}), -201) << reader.kind;
    EXPECT_EQ(reader.call({unknown, nullptr, 1, nullptr, nullptr, nullptr}), -1200);
    EXPECT_EQ(reader.call({unknown, line, 1, &digit, nullptr, &length}), -5);
    EXPECT_EQ(reader.call({unknown, line, 1, &digit, &text, nullptr}), -5);
    if (reader.kind == "EAN13") {
      EXPECT_EQ(reader.call({unknown, line, 1, nullptr, &text, &length}), -5);
    }
    EXPECT_EQ(call(unknown, point), -200);
    EXPECT_EQ(call(colour, point), -301);
    EXPECT_EQ(call(complex, line), -301);
    EXPECT_EQ(call(image, point), -1200);
    EXPECT_EQ(call(image, line), -3000);
    EXPECT_EQ(call(image, nowhere), -752);
    EXPECT_EQ(call(image, column), -752);
    // The next contour's marker and type pass for a corner far outside.
    EXPECT_NE(call(image, pointAndMore), -1200);
    EXPECT_EQ(text, nullptr);
    EXPECT_EQ(length, -7);
    EXPECT_EQ(Read(reader, image, hole), Read(reader, image, rect)) << reader.kind;
    char name[ERROR_PROCEDURE_BYTES];
    EXPECT_EQ(call(0, rect), -201);
    EXPECT_EQ(ZEL_GetLastError(name), -201);
    EXPECT_EQ(std::string(name).substr(0, 8), "ZEL_Read");
  }
}

TEST(Barcodes, EachReaderReportsItsOwnName) {
  const char* names[] = {"ZEL_ReadCodabar", "ZEL_ReadCod25",   "ZEL_ReadMSI",
                         "ZEL_ReadCod39",   "ZEL_ReadCodEAN8", "ZEL_ReadEAN13",
                         "ZEL_ReadUPCA",    "ZEL_ReadCod93",   "ZEL_ReadCod128"};
  for (size_t i = 0; i < Readers().size(); i++) {
    char name[ERROR_PROCEDURE_BYTES];
    Readers()[i].call({0, nullptr, 0, nullptr, nullptr, nullptr});
    ZEL_GetLastError(name);
    EXPECT_STREQ(name, names[i]);
  }
}

TEST(Barcodes, ABlockIsResizedAndOfNoTextReleased) {
  const PrintedCode& code = PrintedCodes()[0];
  const TestImage image = Printed(code.widths);
  const TestImage empty = Printed("", {.margin = 1, .light = 0.0});
  char* text = static_cast<char*>(ZEL_malloc(1));
  int32_t length = 0;
  EXPECT_EQ(ZEL_ReadCodabar(image, RegionAt(WholeOf(image)), 0, &text, &length), 0);
  EXPECT_EQ(std::string(text, static_cast<size_t>(length)), code.text);
  const RegionRecord outside = RegionAt(Corners{0, 100, 9, 109});
  EXPECT_EQ(ZEL_ReadCodabar(image, outside, 0, &text, &length), -752);
  EXPECT_EQ(std::string(text, static_cast<size_t>(length)), code.text);
  EXPECT_EQ(ZEL_ReadCodabar(empty, RegionAt(WholeOf(empty)), 0, &text, &length), 0);
  EXPECT_EQ(text, nullptr);
  EXPECT_EQ(length, 0);
}

TEST(Barcodes, RefusedMemoryIsReportedAndChangesNothing) {
  for (const PrintedCode& code : PrintedCodes()) {
    const TestImage image = Printed(code.widths);
    const RegionRecord roi = RegionAt(WholeOf(image));
    const uint8_t digit = code.FirstDigit();
    char* text = nullptr;
    int32_t length = 0;
    test::RefuseEachAllocation(
        [] {},
        [&] {
          return ReaderOf(code.kind).call({image, roi, 0, &digit, &text, &length});
        });
    EXPECT_EQ(std::string(text, static_cast<size_t>(length)), code.text);
    ZEL_free(text);
    if (code.kind == "Code128" && code.text == "A") break;
  }
}

TEST(Barcodes, CornersFarOutsideCostNothing) {
  const TestImage image = Printed(PrintedCodes()[0].widths);
  const RegionRecord wide = RegionAt(Corners{INT32_MIN, INT32_MIN, INT32_MAX, INT32_MAX});
  const RegionRecord first = RegionAt(Corners{INT32_MIN, 3, INT32_MAX, INT32_MAX});
  for (const Reader& reader : Readers()) {
    EXPECT_EQ(Read(reader, image, wide).status, -752);
    Read(reader, image, first);
  }
}

}  // namespace
