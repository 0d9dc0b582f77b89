// The front's own logic: conditions, reports, annotation, and pictures with awkward sizes.
#include <gtest/gtest.h>

#include <cmath>
#include <fstream>
#include <limits>
#include <sstream>

#include "core/errors.h"
#include "orlune/shared/annotation.h"
#include "orlune/shared/numbers.h"
#include "orlune/shared/output.h"
#include "orlune/shared/progress.h"
#include "orlune/shared/reports.h"
#include "pictures/writers.h"
#include "tests/support/complaints.h"

namespace {

using namespace front;  // NOLINT: these are its tests
using test::Complaint;
using test::Has;

namespace fs = std::filesystem;

// ---------------------------------------------------------------------------------- conditions

TEST(Conditions, ComparisonsKeepOrLeaveOutTheirBound) {
  const auto holds = [](const char* text, double value) {
    return ParseConditions(text).front().Holds(value);
  };
  EXPECT_TRUE(holds("AreaPixels>=50", 50));
  EXPECT_FALSE(holds("AreaPixels>=50", 49.5));
  EXPECT_FALSE(holds("AreaPixels>50", 50));
  EXPECT_TRUE(holds("AreaPixels>50", 50.5));
  EXPECT_TRUE(holds("AreaPixels<=50", 50));
  EXPECT_FALSE(holds("AreaPixels<50", 50));
  EXPECT_TRUE(holds("NumberOfHoles=1", 1));
  EXPECT_FALSE(holds("NumberOfHoles==1", 2));
  EXPECT_TRUE(holds("Left=10:20", 10));
  EXPECT_TRUE(holds("Left=10:20", 20));
  EXPECT_FALSE(holds("Left=10:20", 20.5));
  EXPECT_TRUE(holds("Left=:20", -1e30));
}

TEST(Conditions, UndefinedMeasuresHoldNoCondition) {
  EXPECT_FALSE(ParseConditions("Left>=0").front().Holds(std::nan("")));
  EXPECT_FALSE(ParseConditions("Left<=0").front().Holds(std::nan("")));
}

TEST(Conditions, BlanksCommasAndCaseAreFree) {
  const std::vector<Condition> conditions =
      ParseConditions(" areapixels >= 1e2 , HOLESPERIMETER<3");
  ASSERT_EQ(conditions.size(), 2u);
  EXPECT_EQ(conditions[0].measure->name, "AreaPixels");
  EXPECT_EQ(conditions[0].range.low, 100);
  EXPECT_EQ(conditions[1].measure->number, 20u);
}

TEST(Conditions, MistakesAreExplained) {
  const auto complaint = [](const char* text) { return Complaint([&] { ParseConditions(text); }); };
  EXPECT_TRUE(Has(complaint("AreaPixels"), "has no comparison"));
  EXPECT_TRUE(Has(complaint("Area>=50"), "did you mean AreaPixels?"));
  EXPECT_TRUE(Has(complaint("Perimetr>=50"), "did you mean Perimeter?"));
  EXPECT_TRUE(Has(complaint(">=50"), "names no measure"));
  EXPECT_TRUE(Has(complaint("Left>="), "has no number"));
  EXPECT_TRUE(Has(complaint("Left>=5O"), "'5O' is not a number"));
  EXPECT_TRUE(Has(complaint("Left>=nan"), "is not a number"));
  EXPECT_TRUE(Has(complaint("Left=>5"), "is no comparison"));
  EXPECT_TRUE(Has(complaint("Left!=5"), "is no comparison"));
  EXPECT_TRUE(Has(complaint("Left=20:10"), "is empty"));
  EXPECT_TRUE(Has(complaint("Left>5,"), "has no comparison"));
  EXPECT_TRUE(Has(complaint(""), "has no comparison"));
}

TEST(Conditions, RangesOfLevelsMayBeOpen) {
  EXPECT_EQ(ParseRange("100:200").low, 100);
  EXPECT_EQ(ParseRange("-5:").low, -5);
  EXPECT_TRUE(std::isinf(ParseRange("-5:").high));
  EXPECT_TRUE(std::isinf(ParseRange(":7").low));
  EXPECT_TRUE(Has(Complaint([] { ParseRange("100"); }), "is no range"));
  EXPECT_TRUE(Has(Complaint([] { ParseRange(":"); }), "has no end"));
  EXPECT_TRUE(Has(Complaint([] { ParseRange("1:x"); }), "'x' is not a number"));
}

TEST(Conditions, ScalesAreAboveZero) {
  EXPECT_EQ(ParseScale("0.5").y, 0.5f);
  EXPECT_EQ(ParseScale("0.5,0.25").y, 0.25f);
  for (const char* bad : {"0", "-1", "1,0", "1,2,3", "inf", "x", ""}) {
    EXPECT_NE(Complaint([&] { ParseScale(bad); }), "no complaint") << bad;
  }
}

TEST(Measures, StandAtTheirNumbersAndAllAreThoseThatNeedNoName) {
  for (size_t i = 0; i < AllMeasures().size(); ++i) EXPECT_EQ(AllMeasures()[i].number, i);
  EXPECT_EQ(ParseMeasures("all").size(), size_t{FIRST_BY_NAME});
  EXPECT_EQ(AllMeasures().size(), FIRST_BY_NAME + 12);
  EXPECT_EQ(FindMeasure("LibraryOrientation").inLibrary, uint32_t{MEASURE_ORIENTATION});
  const std::vector<const Measure*> two = ParseMeasures("Perimeter, areapixels");
  ASSERT_EQ(two.size(), 2u);
  EXPECT_EQ(two[0]->name, "Perimeter");
  EXPECT_EQ(two[1]->name, "AreaPixels");
}

TEST(Failures, MessagesAreThoseOfTheLibrary) {
  int known = 0;
  for (int32_t number = 1; number < 4000; ++number) {
    const std::string own = LibraryMessage(-number);
    if (own.empty()) continue;
    ++known;
    char line[zel::MESSAGE_LINE_SIZE];
    zel::ErrorMessage(number, line);
    EXPECT_EQ("#" + std::to_string(number) + " " + own + "\n", line);
  }
  EXPECT_GT(known, 15);
}

// ------------------------------------------------------------------------------------- reports

// Reads JSON far enough to tell whether it is well-formed.
class JsonChecker {
 public:
  explicit JsonChecker(std::string text) : text_(std::move(text)) {}
  bool WellFormed() { return Value() && (Blanks(), at_ == text_.size()); }

 private:
  char Peek() const { return at_ < text_.size() ? text_[at_] : '\0'; }
  bool Take(char c) {
    if (Peek() != c || at_ >= text_.size()) return false;
    ++at_;
    return true;
  }
  void Blanks() {
    while (at_ < text_.size() && std::string(" \n\r\t").find(text_[at_]) != std::string::npos)
      ++at_;
  }
  bool Word(const std::string& word) {
    if (text_.compare(at_, word.size(), word) != 0) return false;
    at_ += word.size();
    return true;
  }
  bool Text() {
    if (!Take('"')) return false;
    while (at_ < text_.size() && text_[at_] != '"') {
      if (static_cast<unsigned char>(text_[at_]) < 0x20) return false;
      if (text_[at_++] != '\\') continue;
      const char escape = Peek();
      ++at_;
      if (escape == 'u') {
        for (int i = 0; i < 4; ++i, ++at_) {
          if (!std::isxdigit(static_cast<unsigned char>(Peek()))) return false;
        }
      } else if (std::string("\"\\/bfnrt").find(escape) == std::string::npos) {
        return false;
      }
    }
    return Take('"');
  }
  bool Number() {
    const size_t start = at_;
    while (std::string("+-.eE0123456789").find(Peek()) != std::string::npos && Peek() != '\0')
      ++at_;
    return at_ > start && text_[at_ - 1] >= '0' && text_[at_ - 1] <= '9';
  }
  template <class Element>
  bool List(char open, char close, Element element) {
    if (!Take(open)) return false;
    Blanks();
    if (Take(close)) return true;
    do {
      Blanks();
      if (!element()) return false;
      Blanks();
    } while (Take(','));
    return Take(close);
  }
  bool Value() {
    Blanks();
    switch (Peek()) {
      case '{':
        return List('{', '}', [&] { return Text() && (Blanks(), Take(':')) && Value(); });
      case '[':
        return List('[', ']', [&] { return Value(); });
      case '"':
        return Text();
      case 'n':
        return Word("null");
      case 't':
        return Word("true");
      case 'f':
        return Word("false");
      default:
        return Number();
    }
  }

  std::string text_;
  size_t at_ = 0;
};

Inspection MadeUpInspection(const std::string& path) {
  Account account;
  account.format = "BMP";
  account.width = 40;
  account.height = 30;
  Inspection inspection{.path = path,
                        .account = account,
                        .objects = Range{100, 255},
                        .remark = {},
                        .scale = {},
                        .unit = "mm",
                        .particles = std::vector<Particle>(3),
                        .timing = {},
                        .picture = Image(IMAGE_U8),
                        .stretched = {},
                        .labels = {}};
  for (uint32_t i = 0; i < 3; ++i) {
    Particle& particle = inspection.particles[i];
    particle.number = i + 1;
    const float value = 0.1f * static_cast<float>(i + 1);
    particle.values.assign(AllMeasures().size(), static_cast<double>(value));
  }
  inspection.particles[1].kept = false;
  inspection.particles[2].values[45] = std::numeric_limits<double>::infinity();
  inspection.particles[2].values[46] = std::numeric_limits<double>::quiet_NaN();
  return inspection;
}

const std::string WILD_NAME =
    "a \"b\", \\c\nd\t\x01 \xC3\xA9 \xFF\xC0\xAF\xED\xA0\x80 \xF0\x9F\x98\x80.bmp";

std::string JsonOf(const std::vector<std::string>& records) {
  std::ostringstream out;
  JsonReport report(out);
  for (const std::string& record : records) report.Add(record);
  report.Finish(Summary{}, true);
  return out.str();
}

TEST(Json, IsWellFormedForWildNamesAndUndefinedMeasures) {
  const MeasureList all = ParseMeasures("all");
  Inspection odd = MadeUpInspection(WILD_NAME);
  odd.remark = "the \"boundary\"";
  odd.account.losses = {"alpha is left out", "more"};
  const std::string json =
      JsonOf({JsonRecord(odd, {}, all), JsonFailure(WILD_NAME, "unable to \"get\" info"),
              JsonRecord(MadeUpInspection("plain.bmp"), {}, all)});
  EXPECT_TRUE(JsonChecker(json).WellFormed()) << json;
  EXPECT_TRUE(Has(json, "\"HeywoodCircularity\": null"));
  EXPECT_TRUE(Has(json, "\"found\": 3, \"kept\": 2"));
  EXPECT_TRUE(Has(json, "\"losses\": [\"alpha is left out\", \"more\"]"));
  EXPECT_FALSE(Has(json, "{\"number\": 2,"));
}

TEST(Json, OfNoFilesIsWellFormed) {
  EXPECT_TRUE(JsonChecker(JsonOf({})).WellFormed());
}

TEST(Json, TextsKeepGoodCharactersAndReplaceBadBytes) {
  EXPECT_EQ(JsonText("\xC3\xA9"), "\"\xC3\xA9\"");
  EXPECT_EQ(JsonText("\xF0\x9F\x98\x80"), "\"\xF0\x9F\x98\x80\"");
  EXPECT_EQ(JsonText("\xFF"), "\"\\ufffd\"");
  EXPECT_EQ(JsonText("\xC3"), "\"\\ufffd\"");                        // cut short
  EXPECT_EQ(JsonText("\xC0\xAF"), "\"\\ufffd\\ufffd\"");             // a long form of '/'
  EXPECT_EQ(JsonText("\xED\xA0\x80"), "\"\\ufffd\\ufffd\\ufffd\"");  // half of a pair
  EXPECT_EQ(JsonText("\"\\\n"), "\"\\\"\\\\\\u000a\"");
}

TEST(Csv, QuotesNamesAndWritesNumbersThatReadBack) {
  const MeasureList measures = ParseMeasures("AreaPixels,Perimeter");
  EXPECT_EQ(CsvHead(measures), "File,Number,AreaPixels,Perimeter\n");
  EXPECT_EQ(CsvRows(MadeUpInspection("a,\"b\".bmp"), measures),
            "\"a,\"\"b\"\".bmp\",1,0.1,0.1\n"
            "\"a,\"\"b\"\".bmp\",3,0.3,0.3\n");
}

TEST(Csv, NamesAreNoFormulasAndReadable) {
  EXPECT_EQ(CsvText("=1+1.bmp"), "./=1+1.bmp");
  EXPECT_EQ(CsvText("@x"), "./@x");
  EXPECT_EQ(CsvText("-x,y"), "\"./-x,y\"");
  EXPECT_EQ(CsvText("a=b"), "a=b");
  EXPECT_EQ(CsvText("a\xFF.bmp"), "a\xEF\xBF\xBD.bmp");
}

TEST(Reports, ANumberThatIsNoneIsNoneInAllOfThem) {
  const MeasureList measures = ParseMeasures("HeywoodCircularity,TypeFactor,AreaPixels");
  const Inspection inspection = MadeUpInspection("x.bmp");
  EXPECT_TRUE(Has(CsvRows(inspection, measures), "x.bmp,3,,,0.3\n"));
  EXPECT_TRUE(Has(JsonRecord(inspection, {}, measures),
                  "\"HeywoodCircularity\": null, \"TypeFactor\": null"));
  std::ostringstream table;
  PrintTable(table, inspection, {}, measures, 0);
  EXPECT_FALSE(Has(table.str(), "inf"));
  EXPECT_FALSE(Has(table.str(), "nan"));
  EXPECT_FALSE(
      ParseConditions("HeywoodCircularity>0").front().Holds(inspection.particles[2].values[45]));
}

TEST(Numbers, ReadBackTheSame) {
  for (const float value : {0.1f, 1e-30f, 16777217.0f, -0.0f, 3.4028235e38f, 1.0f / 3}) {
    EXPECT_EQ(std::strtof(Exact(value).c_str(), nullptr), value);
  }
  EXPECT_EQ(Fixed(2.345, 1), "2.3");
  EXPECT_EQ(Fixed(-0.5e300, 0).size(), 301u);
  EXPECT_EQ(Short(0.05), "0.05");
}

TEST(Table, IsAlignedWithUnitsInTheHead) {
  const Inspection inspection = MadeUpInspection("x.bmp");
  const std::vector<const Measure*> measures = ParseMeasures("AreaPixels,Perimeter,CentreOfMassX");
  std::ostringstream out;
  PrintTable(out, inspection, {}, measures, 0);
  std::istringstream lines(out.str());
  std::string line;
  std::getline(lines, line);
  EXPECT_EQ(line, "x.bmp: BMP, 40 x 30, 8-bit gray");
  std::getline(lines, line);
  EXPECT_EQ(line, "  objects: levels 100 to 255, by the clustering method; 3 particles");
  std::vector<size_t> widths;
  while (std::getline(lines, line)) widths.push_back(line.size());
  ASSERT_EQ(widths.size(), 5u);  // two lines of names, units, two particles
  for (const size_t width : widths) EXPECT_EQ(width, widths.front());
  EXPECT_TRUE(Has(out.str(), "[px2]"));
  EXPECT_TRUE(Has(out.str(), "[mm]"));
  EXPECT_TRUE(Has(out.str(), "CentreOf"));
}

TEST(Table, CountsTheRowsThatItLeavesOut) {
  std::ostringstream out;
  PrintTable(out, MadeUpInspection("x.bmp"), {}, ParseMeasures("Left"), 1);
  EXPECT_TRUE(Has(out.str(), "... and 1 more"));
}

TEST(ProgressBar, TellsRateAndTimeLeft) {
  EXPECT_EQ(ProgressLine(0, 10, 0), "[..............................] 0 of 10");
  EXPECT_EQ(ProgressLine(5, 10, 2.5),
            "[###############...............] 5 of 10  2 files/s  3 s left");
  EXPECT_TRUE(Has(ProgressLine(1, 200, 1.0), "3:19 min left"));
}

// ------------------------------------------------------------------------------------ pictures

class Pictures : public testing::Test {
 protected:
  void SetUp() override { fs::create_directories(folder_); }
  void TearDown() override { fs::remove_all(folder_); }

  // Writes a gray picture of rows of text, where '.' is the background.
  std::string Write(const std::string& name, const std::vector<std::string>& rows,
                    uint8_t background, uint8_t object, int32_t format) {
    std::vector<uint8_t> pixels;
    for (const std::string& row : rows) {
      for (const char c : row) pixels.push_back(c == '.' ? background : object);
    }
    const Image image(IMAGE_U8);
    Check(ZEL_ArrayToImage(image, ARRAY_U8, pixels.data(), static_cast<int32_t>(rows[0].size()),
                           static_cast<int32_t>(rows.size())));
    const std::string path = (folder_ / name).string();
    Check(ZEL_WriteFile(image, path.c_str(), format, nullptr, 0));
    return path;
  }

  fs::path folder_ =
      fs::temp_directory_path() /
      ("orlune_front_" + std::to_string(testing::UnitTest::GetInstance()->random_seed()) + "_" +
       std::to_string(::getpid()));
};

const std::vector<std::string> TWO_DOTS = {".......", ".##....", ".##....", ".....#.", "......."};

TEST_F(Pictures, TheColumnThatReadingAddsToAnOddWidthIsNoObject) {
  const std::string path = Write("odd.tif", TWO_DOTS, 200, 20, 2);
  InspectSettings settings;
  settings.dark = true;
  const Inspection inspection = Inspect(path, settings);
  EXPECT_EQ(inspection.particles.size(), 2u);
  EXPECT_EQ(inspection.picture.Info().width, 7);
  EXPECT_EQ(inspection.particles[0].values[MEASURE_AREA_PIXELS], 4);
}

TEST_F(Pictures, LightAndDarkObjectsOfTwoLevelsAreFoundByEveryMethod) {
  const std::string path = Write("two.orln", TWO_DOTS, 7, 9, 1);
  for (const MethodRow& row : AllMethods()) {
    InspectSettings settings;
    settings.method = row.method;
    EXPECT_EQ(Inspect(path, settings).particles.size(), 2u) << row.name;
    settings.dark = true;
    const Inspection dark = Inspect(path, settings);
    EXPECT_EQ(dark.particles.size(), 1u) << row.name;
    EXPECT_EQ(dark.objects->high, 8);
  }
}

TEST_F(Pictures, APictureOfOneLevelHasNoObjects) {
  const std::string path = Write("flat.orln", TWO_DOTS, 90, 90, 1);
  const Inspection inspection = Inspect(path, {});
  EXPECT_TRUE(inspection.particles.empty());
  EXPECT_FALSE(inspection.objects.has_value());
  EXPECT_EQ(inspection.remark, "the picture has no contrast");
}

TEST_F(Pictures, CornersJoinPixelsOnlyWithEightNeighbours) {
  const std::string path = Write("corner.orln", {"#..", ".#.", "..."}, 0, 255, 1);
  InspectSettings settings;
  EXPECT_EQ(Inspect(path, settings).particles.size(), 1u);
  settings.eightConnected = false;
  EXPECT_EQ(Inspect(path, settings).particles.size(), 2u);
}

TEST_F(Pictures, RangesOutsideTheLevelsSelectNothing) {
  const std::string path = Write("range.orln", TWO_DOTS, 0, 100, 1);
  InspectSettings settings;
  settings.range = Range{300, 400};  // limited to 255, it would select white pixels
  EXPECT_TRUE(Inspect(path, settings).particles.empty());
  settings.range = Range{-9, -1};
  EXPECT_TRUE(Inspect(path, settings).particles.empty());
  settings.range = ParseRange("50:");
  EXPECT_EQ(Inspect(path, settings).particles.size(), 2u);
  EXPECT_EQ(Inspect(path, settings).objects->high, 255);
}

TEST_F(Pictures, ScaleAndConditionsApplyToTheMeasures) {
  const std::string path = Write("scale.orln", TWO_DOTS, 0, 100, 1);
  InspectSettings settings;
  settings.scale = Scale{0.5f, 2.0f};
  settings.unit = "mm";
  settings.keep = ParseConditions("AreaCalibrated>=2,WidthCalibrated<=1");
  const Inspection inspection = Inspect(path, settings);
  ASSERT_EQ(inspection.particles.size(), 2u);
  EXPECT_EQ(inspection.particles[0].values[MEASURE_AREA_CALIBRATED], 4);
  EXPECT_EQ(inspection.particles[0].values[MEASURE_WIDTH_CALIBRATED], 1);
  EXPECT_EQ(inspection.particles[0].values[MEASURE_HEIGHT_CALIBRATED], 4);
  EXPECT_TRUE(inspection.particles[0].kept);
  EXPECT_FALSE(inspection.particles[1].kept);
  EXPECT_EQ(inspection.Kept(), 1u);
}

TEST_F(Pictures, SixteenBitPicturesTakeRangesInTheirOwnValues) {
  Raster raster = MakeRaster(10, 10, 1, Sample::U16);
  auto* pixels = reinterpret_cast<uint16_t*>(raster.bytes.data());
  std::fill_n(pixels, 100, uint16_t{1000});
  pixels[33] = pixels[34] = 3000;
  pixels[71] = 50000;
  const std::string path = (folder_ / "deep.tif").string();
  WriteWhole(path, EncodeTiff(raster));
  InspectSettings settings;
  settings.range = Range{2999, 3000};
  const Inspection light = Inspect(path, settings);
  ASSERT_EQ(light.particles.size(), 1u);
  EXPECT_EQ(light.particles[0].values[MEASURE_AREA_PIXELS], 2);
  settings.range = ParseRange("40000:");
  ASSERT_EQ(Inspect(path, settings).particles.size(), 1u);
  EXPECT_EQ(Inspect(path, settings).particles[0].values[GRAY_MAXIMUM], 50000);
  EXPECT_EQ(Inspect(path, settings).objects->high, 65535);
  settings.range = ParseRange("2999.5:3000.5");
  EXPECT_EQ(Inspect(path, settings).particles.size(), 1u);
  settings.range = ParseRange("1000.5:2999.5");
  EXPECT_TRUE(Inspect(path, settings).particles.empty());
}

TEST_F(Pictures, ARegionAndAMaskLimitLevelsAndObjects) {
  const std::string path = Write("dots.orln", TWO_DOTS, 10, 200, 1);
  InspectSettings settings;
  settings.region = ParseRegion("4,2,9,9");
  EXPECT_EQ(Inspect(path, settings).particles.size(), 1u);
  settings.region = ParseRegion("3,0,2,3");
  EXPECT_EQ(Inspect(path, settings).remark, "the picture has no contrast");
  settings.region = ParseRegion("7,0,1,1");
  EXPECT_THROW(Inspect(path, settings), std::invalid_argument);
  settings.region.reset();
  const Image mask = ReadMask(
      Write("mask.orln", {"#......", "##.....", "##.....", ".......", "......."}, 0, 1, 1));
  settings.mask = &mask;
  const Inspection inspection = Inspect(path, settings);
  ASSERT_EQ(inspection.particles.size(), 1u);
  EXPECT_EQ(inspection.particles[0].values[MEASURE_AREA_PIXELS], 2);
  for (const char* bad : {"1,2,3", "1,2,0,4", "-1,2,3,4", "1,2,3,4.5", "a,2,3,4"}) {
    EXPECT_NE(Complaint([&] { ParseRegion(bad); }), "no complaint") << bad;
  }
}

TEST_F(Pictures, PaletteColoursAreInspectedByTheirGray) {
  const Image image(IMAGE_U8);
  std::vector<uint8_t> pixels(8 * 8, 3);
  pixels[20] = pixels[21] = 2;
  Check(ZEL_ArrayToImage(image, ARRAY_U8, pixels.data(), 8, 8));
  std::vector<RGBValue> palette(256, 0);
  palette[2] = 0x00FF00;  // green on black: the smaller number is the lighter colour
  const std::string path = (folder_ / "palette.bmp").string();
  Check(ZEL_WriteFile(image, path.c_str(), 3, palette.data(), 256));
  const Inspection inspection = Inspect(path, {});
  ASSERT_EQ(inspection.particles.size(), 1u);
  EXPECT_EQ(inspection.particles[0].values[MEASURE_AREA_PIXELS], 2);
  EXPECT_EQ(inspection.objects->low, 85);
}

// ---------------------------------------------------------------------------------- refinement

std::vector<double> AreasOf(const Inspection& inspection) {
  std::vector<double> areas;
  for (const Particle& particle : inspection.particles) {
    areas.push_back(particle.values[MEASURE_AREA_PIXELS]);
  }
  return areas;
}

using Areas = std::vector<double>;

TEST_F(Pictures, OpeningTakesThinThingsAndClosingFillsThinGaps) {
  const std::string path = Write("thin.orln",
                                 {"...........", ".####.####.", ".####.####.", ".####.####.",
                                  "...........", ".########..", "..........."},
                                 0, 255, 1);
  InspectSettings settings;
  EXPECT_EQ(AreasOf(Inspect(path, settings)), (Areas{12, 12, 8}));
  settings.refinement.open = 3;
  EXPECT_EQ(AreasOf(Inspect(path, settings)), (Areas{12, 12}));
  settings.refinement.close = 3;
  EXPECT_EQ(AreasOf(Inspect(path, settings)), (Areas{27}));
  EXPECT_EQ(NamesOf(settings.refinement), (std::vector<std::string>{"open 3", "close 3"}));
}

TEST_F(Pictures, HolesAreFilledAsTheNeighboursJoin) {
  const std::string path =
      Write("hole.orln", {".....", "..#..", ".#.#.", "..#..", "....."}, 0, 255, 1);
  InspectSettings settings;
  settings.refinement.fillHoles = true;
  EXPECT_EQ(AreasOf(Inspect(path, settings)), (Areas{5}));
  settings.eightConnected = false;
  EXPECT_EQ(AreasOf(Inspect(path, settings)), (Areas{1, 1, 1, 1}));
}

TEST_F(Pictures, ParticlesAtTheEdgeOfWhatIsLookedAtAreLeftOut) {
  const std::string path =
      Write("edge.orln", {"##.....", ".......", "..##...", "..##..#", "......."}, 0, 255, 1);
  InspectSettings settings;
  settings.refinement.rejectBorder = true;
  EXPECT_EQ(AreasOf(Inspect(path, settings)), (Areas{4}));
  settings.region = ParseRegion("1,1,5,4");
  EXPECT_EQ(AreasOf(Inspect(path, settings)), (Areas{4}));
  settings.region = ParseRegion("2,1,5,4");
  EXPECT_EQ(AreasOf(Inspect(path, settings)), (Areas{}));
}

TEST_F(Pictures, NecksAreCutWhereWiderPartsMeet) {
  const std::vector<std::string> rows = {"...............", ".#####...#####.", ".#####...#####.",
                                         ".#############.", ".#####...#####.", ".#####...#####.",
                                         "...............", ".#############.", "..............."};
  const std::string path = Write("neck.orln", rows, 0, 255, 1);
  InspectSettings settings;
  settings.refinement.separate = 3;
  settings.scale = Scale{0.5f, 0.5f};
  const Inspection inspection = Inspect(path, settings);
  const Areas areas = AreasOf(inspection);
  ASSERT_EQ(areas.size(), 3u);
  // One or two pixels of the neck are the cut; a bar without wide parts has no neck.
  EXPECT_EQ(areas[2], 13);
  EXPECT_GE(areas[0] + areas[1], 51);
  EXPECT_LE(areas[0] + areas[1], 52);
  EXPECT_NEAR(areas[0], areas[1], 3);
  EXPECT_EQ(inspection.particles[2].values[MEASURE_AREA_CALIBRATED], 13 * 0.25);
}

TEST_F(Pictures, RefinementTakesPicturesOfAnySize) {
  InspectSettings settings;
  settings.refinement = {.open = 3, .close = 31, .fillHoles = true, .separate = 31};
  for (const size_t width : {1u, 2u, 5u}) {
    for (const size_t height : {1u, 3u}) {
      std::vector<std::string> rows(height, std::string(width, '#'));
      const std::string path = Write("small.orln", rows, 0, 255, 1);
      settings.range = Range{1, 255};
      const double pixels = static_cast<double>(width * height);
      EXPECT_EQ(AreasOf(Inspect(path, settings)), (Areas{pixels})) << width << " x " << height;
    }
  }
}

TEST(Refinements, DisksHaveOddSizes) {
  EXPECT_EQ(ParseDisk("3"), 3);
  EXPECT_EQ(ParseDisk("999"), 999);
  for (const char* bad : {"1", "0", "-3", "4", "3.5", "1001", "1e9", "nan", "x", ""}) {
    EXPECT_THROW(ParseDisk(bad), std::invalid_argument) << bad;
  }
}

// ------------------------------------------------------------------------------------- colours

TEST(Colours, HuesGoRound) {
  const auto hues = [](const char* text) {
    const Range range = ParseHues(text);
    return std::pair(range.low, range.high);
  };
  EXPECT_EQ(hues("200:260"), std::pair(200.0, 260.0));
  EXPECT_EQ(hues("340:20"), std::pair(340.0, 20.0));
  EXPECT_EQ(hues("-20:20"), std::pair(340.0, 20.0));
  EXPECT_EQ(hues("340:380"), std::pair(340.0, 20.0));
  EXPECT_EQ(hues("300:"), std::pair(300.0, 360.0));
  EXPECT_EQ(hues(":60"), std::pair(0.0, 60.0));
  EXPECT_EQ(hues("20:400"), std::pair(0.0, 360.0));
  for (const char* bad : {"", ":", "200", "a:b", "1000:2000", "1:2:3"}) {
    EXPECT_THROW(ParseHues(bad), std::invalid_argument) << bad;
  }
  EXPECT_EQ(ParsePercents("80:").high, 100);
  EXPECT_THROW(ParsePercents("120:130"), std::invalid_argument);
}

// A row of colours in a picture file.
std::string WriteColours(const fs::path& path, const std::vector<RGBValue>& colours) {
  Raster raster = MakeRaster(static_cast<int64_t>(colours.size()), 1, 3, Sample::U8);
  for (size_t i = 0; i < colours.size(); ++i) {
    for (size_t k = 0; k < 3; ++k) {
      raster.bytes[i * 3 + k] = static_cast<uint8_t>(colours[i] >> (16 - 8 * k));
    }
  }
  WriteWhole(path.string(), EncodePng(raster));
  return path.string();
}

TEST_F(Pictures, ObjectsHaveTheColoursAskedFor) {
  const std::string path = WriteColours(
      folder_ / "colours.png",
      {0xFF0000, 0, 0x00FF00, 0, 0x0000FF, 0, 0x808080, 0, 0xFF0020, 0, 0xFF2000, 0, 0xD07070});
  const auto found = [&](const ColourRanges& colours) {
    InspectSettings settings;
    settings.colours = colours;
    std::string columns;
    for (const Particle& particle : Inspect(path, settings).particles) {
      columns += std::to_string(particle.rect.left) + " ";
    }
    return columns;
  };
  EXPECT_EQ(found({.hue = Range{200, 260}}), "4 ");
  EXPECT_EQ(found({.hue = Range{100, 260}}), "2 4 ");
  EXPECT_EQ(found({.hue = Range{340, 20}}), "0 8 10 12 ");
  EXPECT_EQ(found({.hue = Range{0, 20}}), "0 10 12 ");
  EXPECT_EQ(found({.hue = Range{356, 340}}), "0 2 4 10 12 ");
  EXPECT_EQ(found({.hue = Range{340, 20}, .saturation = Range{80, 100}}), "0 8 10 ");
  EXPECT_EQ(found({.saturation = Range{0, 10}, .lightness = Range{40, 60}}), "6 ");
  EXPECT_EQ(found({.hue = Range{0, 360}}), "0 ");  // all of the row
  EXPECT_EQ(found({.saturation = Range{0, 100}}), "0 ");
}

TEST_F(Pictures, PalettesAndNativeFilesHaveColoursToo) {
  Raster raster = MakeRaster(4, 1, 1, Sample::U8);
  raster.palette.assign(256, 0);
  raster.palette[1] = 0x0000FF;
  raster.palette[2] = 0x00FF00;
  raster.bytes = {0, 1, 0, 2};
  const std::string palette = (folder_ / "palette.bmp").string();
  WriteWhole(palette, EncodeBmp(raster));
  const std::string native = (folder_ / "colour.orln").string();
  const Image image(IMAGE_RGB, 0, 4, 1);
  Check(ZEL_ClearPixels(image));
  Check(ZEL_SetColorPixel(image, 1, 0, 0x0000FF));
  Check(ZEL_WriteFile(image, native.c_str(), FILE_FORMAT_NATIVE, nullptr, 0));
  InspectSettings settings;
  settings.colours.hue = Range{200, 260};
  for (const std::string& path : {palette, native}) {
    const Inspection inspection = Inspect(path, settings);
    ASSERT_EQ(inspection.particles.size(), 1u) << path;
    EXPECT_EQ(inspection.particles[0].rect.left, 1) << path;
    EXPECT_EQ(inspection.particles[0].values[GRAY_MEAN], 85) << path;
  }
  const std::string gray = Write("gray.orln", TWO_DOTS, 10, 200, 1);
  EXPECT_TRUE(Has(Complaint([&] { Inspect(gray, settings); }), "the picture is gray"));
}

TEST_F(Pictures, ReportsTellOfColoursAndOfWhatWasRefined) {
  InspectSettings settings;
  settings.colours = {.hue = Range{200, 260}, .saturation = {}, .lightness = Range{5, 95}};
  settings.refinement.fillHoles = true;
  const std::string path = WriteColours(folder_ / "one.png", {0xFF, 0});
  const Inspection inspection = Inspect(path, settings);
  const MeasureList measures = ParseMeasures("AreaPixels");
  std::ostringstream table;
  PrintTable(table, inspection, settings, measures, 0);
  EXPECT_TRUE(Has(table.str(),
                  "hue 200 to 260 degrees, lightness 5 to 95 %, as given; fill-holes; "
                  "1 particle"))
      << table.str();
  const std::string json = JsonRecord(inspection, settings, measures);
  EXPECT_TRUE(JsonChecker(json).WellFormed()) << json;
  EXPECT_TRUE(Has(json, "\"method\": \"colour\", \"hue\": {\"low\": 200, \"high\": 260}")) << json;
  EXPECT_TRUE(Has(json, "\"refined\": [\"fill-holes\"]")) << json;
}

TEST_F(Pictures, AnUnreadableFileSaysWhy) {
  EXPECT_EQ(Complaint([&] { Inspect((folder_ / "missing.tif").string(), {}); }),
            "there is no such file");
  EXPECT_EQ(Complaint([&] { Inspect(folder_.string(), {}); }), "this is a folder");
}

TEST_F(Pictures, LabelPicturesHoldTheNumbersOfKeptParticles) {
  const std::string path = Write("dots.orln", TWO_DOTS, 10, 200, 1);
  InspectSettings settings;
  settings.keep = ParseConditions("AreaPixels=1");
  const std::string file = (folder_ / "labels.tif").string();
  WriteLabels(Inspect(path, settings), file);
  const Loaded labels = ReadPicture(file, {});
  const ImageInfo info = labels.image.Info();
  ASSERT_EQ(info.type, IMAGE_I16);
  EXPECT_EQ(labels.account.kind, "gray");
  EXPECT_EQ(Row<int16_t>(info, 3)[5], 2);
  EXPECT_EQ(Row<int16_t>(info, 1)[1], 0);  // of the one that was left out
}

TEST_F(Pictures, AnnotationMarksKeptParticlesAndThoseLeftOut) {
  const std::vector<std::string> rows = {
      "................", "................", "................", "................",
      "................", "................", "................", "................",
      "................", "................", "................", "...###..........",
      "...###......#...", "...###..........", "................", "................"};
  const std::string path = Write("mark.orln", rows, 0, 200, 1);
  InspectSettings settings;
  settings.keep = ParseConditions("AreaPixels>1");
  const std::string marked = (folder_ / "marked.bmp").string();
  WriteAnnotation(Inspect(path, settings), marked);
  const Loaded picture = ReadPicture(marked, {});
  const ImageInfo info = picture.image.Info();
  ASSERT_EQ(info.type, IMAGE_RGB);
  const auto pixel = [&](int x, int y) { return Row<RGBValue>(info, y)[x] & 0xFFFFFF; };
  EXPECT_EQ(pixel(3, 11), 0x20E850u);
  EXPECT_EQ(pixel(4, 12), 0xC8C8C8u);  // inside: as it was
  EXPECT_EQ(pixel(12, 12), 0xFF4040u);
  EXPECT_EQ(pixel(1, 9), 0xFF9600u);
  EXPECT_EQ(pixel(7, 15), 0xFF9600u);
  EXPECT_EQ(pixel(10, 10), 0u);  // no rectangle around what was left out
  int white = 0;
  for (int y = 0; y < 9; ++y) {
    for (int x = 0; x < 16; ++x) white += pixel(x, y) == 0xFFFFFF;
  }
  EXPECT_EQ(white, 10);  // the digit 1
}

TEST_F(Pictures, AnnotationOfPartsAtTheEdgeStaysInside) {
  const std::string path = Write("edge.orln", {"###", "#.#", "###"}, 0, 255, 1);
  const std::string marked = (folder_ / "marked.bmp").string();
  WriteAnnotation(Inspect(path, {}), marked);
  EXPECT_EQ(ReadPicture(marked, {}).account.width, 3);
}

int64_t WhitePixels(const Image& image) {
  const ImageInfo info = image.Info();
  int64_t white = 0;
  for (int y = 0; y < info.height; ++y) {
    const RGBValue* row = Row<RGBValue>(info, y);
    white += std::count_if(row, row + info.width, [](RGBValue v) { return v == 0xFFFFFF; });
  }
  return white;
}

TEST(Captions, BreakAtBlanksWhereThereAreAny) {
  const int32_t ten = TextWidth("0123456789", 1);
  const auto lines = [&](const char* text) { return LinesOf(text, 1, ten); };
  EXPECT_EQ(lines("not within"), (std::vector<std::string>{"not within"}));
  EXPECT_EQ(lines("is not within 3:5"), (std::vector<std::string>{"is not", "within 3:5"}));
  EXPECT_EQ(lines("0123456789abcdef"), (std::vector<std::string>{"0123456789", "abcdef"}));
  EXPECT_EQ(lines(""), (std::vector<std::string>{""}));
  EXPECT_EQ(LinesOf("ab", 1, 0), (std::vector<std::string>{"a", "b"}));
}

TEST(Captions, ShowAllOfTheirTextInANarrowPicture) {
  const std::string text = "failed: weight: 238.9 is not within 248:252 (and 3 more)";
  const Image wide(IMAGE_RGB, 0, 1000, 200), narrow(IMAGE_RGB, 0, 90, 200);
  for (const Image* page : {&wide, &narrow}) {
    Check(ZEL_ClearPixels(*page));
    Canvas(*page).Caption(text);
  }
  EXPECT_EQ(WhitePixels(narrow), WhitePixels(wide));
  // No sign of it is a blank.
  const Image signs(IMAGE_RGB, 0, 1000, 200);
  Check(ZEL_ClearPixels(signs));
  int64_t before = 0;
  int32_t left = 4;
  for (const char sign : std::string(".,:-+=<>()[]/%'\"*_#?0aZ")) {
    Canvas(signs).Text(left += 10, 20, std::string(1, sign));
    const int64_t white = WhitePixels(signs);
    EXPECT_GT(white, before) << sign;
    before = white;
  }
  const Image tiny(IMAGE_RGB, 0, 3, 3);
  Canvas(tiny).Caption(text);
}

}  // namespace
