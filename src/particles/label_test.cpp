#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "particles/particle_scan.h"
#include "tests/reference/particles.h"
#include "tests/support/refused_memory.h"

namespace {

using test::FloodFill;
using test::Labelling;
using test::Picture;
using test::PictureOf;
using test::RandomPicture;
using test::TestImage;

const std::vector<int32_t> WIDTHS = {1, 2, 3, 7, 8, 9, 16, 31, 33, 63, 64, 65, 127, 128, 130, 200};
constexpr uint16_t FOUR = 0;
constexpr uint16_t EIGHT = 1;
constexpr int32_t PERCENTS[] = {3, 30, 50, 62, 85, 100};

int64_t LabelAt(const TestImage& image, int32_t x, int32_t y) {
  return image.Info().type == IMAGE_U8 ? int64_t{image.Get<uint8_t>(x, y)}
                                       : int64_t{image.Get<int16_t>(x, y)};
}

void ExpectLabels(const TestImage& image, const Labelling& expected, const std::string& what) {
  const ImageInfo info = image.Info();
  ASSERT_EQ(expected.numbers.size(),
            static_cast<size_t>(info.width) * static_cast<size_t>(info.height));
  for (int32_t y = 0; y < info.height; y++) {
    for (int32_t x = 0; x < info.width; x++) {
      const int32_t number = expected.numbers[static_cast<size_t>(y * info.width + x)];
      const int64_t wanted =
          info.type == IMAGE_U8 ? std::min(number, 255) : static_cast<int16_t>(number);
      ASSERT_EQ(LabelAt(image, x, y), wanted) << what << " at " << x << ", " << y;
    }
  }
}

void ExpectClearBorder(const TestImage& image) {
  const ImageInfo info = image.Info();
  for (int32_t y = -info.border; y < info.height + info.border; y++) {
    for (int32_t x = -info.border; x < info.width + info.border; x++) {
      const bool inside = x >= 0 && y >= 0 && x < info.width && y < info.height;
      if (!inside) {
        ASSERT_EQ(LabelAt(image, x, y), 0) << "border at " << x << ", " << y;
      }
    }
  }
}

struct BasicReports {
  BasicParticleReport* reports = nullptr;
  int32_t count = -1;
  ~BasicReports() { ZEL_free(reports); }
};

// From the pixels of each number.
std::vector<BasicParticleReport> ReportsOf(const Labelling& labels, int32_t width, int32_t height,
                                           double pixelArea) {
  std::vector<BasicParticleReport> reports(static_cast<size_t>(labels.count));
  std::vector<int32_t> right(reports.size(), -1);
  std::vector<int32_t> bottom(reports.size(), -1);
  for (BasicParticleReport& report : reports) report.rect = {65535, 65535, 0, 0};
  for (int32_t y = 0; y < height; y++) {
    for (int32_t x = 0; x < width; x++) {
      const int32_t number = labels.numbers[static_cast<size_t>(y) * static_cast<size_t>(width) +
                                            static_cast<size_t>(x)];
      if (number == 0) continue;
      const auto i = static_cast<size_t>(number - 1);
      reports[i].area++;
      reports[i].rect.left = std::min(reports[i].rect.left, x);
      reports[i].rect.top = std::min(reports[i].rect.top, y);
      right[i] = std::max(right[i], x + 1);
      bottom[i] = std::max(bottom[i], y + 1);
    }
  }
  for (size_t i = 0; i < reports.size(); i++) {
    reports[i].calibratedArea = static_cast<float>(reports[i].area * pixelArea);
    reports[i].rect.width = right[i] - reports[i].rect.left;
    reports[i].rect.height = bottom[i] - reports[i].rect.top;
  }
  return reports;
}

void ExpectReports(const BasicReports& actual, const std::vector<BasicParticleReport>& expected) {
  ASSERT_EQ(actual.count, static_cast<int32_t>(expected.size()));
  EXPECT_EQ(actual.reports == nullptr, expected.empty());
  for (size_t i = 0; i < expected.size(); i++) {
    const BasicParticleReport& a = actual.reports[i];
    const BasicParticleReport& e = expected[i];
    ASSERT_EQ(a.area, e.area) << i;
    ASSERT_EQ(a.calibratedArea, e.calibratedArea) << i;
    ASSERT_EQ(a.rect.left, e.rect.left) << i;
    ASSERT_EQ(a.rect.top, e.rect.top) << i;
    ASSERT_EQ(a.rect.width, e.rect.width) << i;
    ASSERT_EQ(a.rect.height, e.rect.height) << i;
  }
}

// Isolated pixels on every second column and row: each takes a provisional label.
TestImage Dots(int32_t count, int32_t columns, int32_t border = 2) {
  const int32_t rows = (count + columns - 1) / columns;
  TestImage image(IMAGE_U8, 2 * columns, 2 * rows, border);
  for (int32_t y = 0; y < 2 * rows; y++) {
    for (int32_t x = 0; x < 2 * columns; x++) {
      const bool dot = x % 2 == 0 && y % 2 == 0 && y / 2 * columns + x / 2 < count;
      image.Set<uint8_t>(x, y, dot ? 200 : 0);
    }
  }
  return image;
}

TEST(Label, NumbersAreThoseOfAFloodFill) {
  uint64_t seed = 1;
  for (const int32_t width : WIDTHS) {
    for (const int32_t percent : PERCENTS) {
      for (const int32_t type : {IMAGE_U8, IMAGE_I16}) {
        for (const uint16_t connectivity : {FOUR, EIGHT, uint16_t{7}}) {
          const int32_t height = 1 + static_cast<int32_t>(seed % 23);
          const TestImage source = RandomPicture(type, width, height, percent, ++seed);
          const Picture picture = PictureOf(source);
          const Labelling expected = FloodFill(picture, connectivity != 0);
          const std::vector<uint8_t> pixels = source.Pixels();
          for (const int32_t destinationType : {IMAGE_U8, IMAGE_I16}) {
            for (const int32_t border : {0, 1, 2}) {
              const TestImage destination(destinationType, 3, 5, border, seed);
              int32_t count = -1;
              ASSERT_EQ(ZEL_Label(source, destination, connectivity, &count), 0);
              EXPECT_EQ(count, expected.count);
              ExpectLabels(destination, expected, "width " + std::to_string(width));
            }
          }
          EXPECT_TRUE(source.Pixels() == pixels);
          ExpectClearBorder(source);
          int32_t count = -1;
          ASSERT_EQ(ZEL_Label(source, seed % 2 != 0 ? 0 : ImageRef{source}, connectivity, &count),
                    0);
          EXPECT_EQ(count, expected.count);
          ExpectLabels(source, expected, "in place, width " + std::to_string(width));
          ExpectClearBorder(source);
        }
      }
    }
  }
}

TEST(Label, TheScannerLeavesLabelsATableAndClearBorders) {
  for (uint64_t seed = 1; seed <= 60; seed++) {
    const bool eight = seed % 2 != 0;
    const int32_t type = seed % 4 < 2 ? IMAGE_U8 : IMAGE_I16;
    const TestImage source = RandomPicture(type, static_cast<int32_t>(seed * 3), 20, 45, seed);
    const TestImage labels(IMAGE_I16, static_cast<int32_t>(seed * 3), 20, 2, seed);
    const Labelling expected = FloodFill(PictureOf(source), eight);
    const ImageInfo from = source.Info();
    const ImageInfo to = labels.Info();
    const zel::ParticleScanRequest request = {type,
                                              IMAGE_I16,
                                              from.firstPixel,
                                              to.firstPixel,
                                              static_cast<uint32_t>(from.lineWidth),
                                              static_cast<uint32_t>(to.lineWidth),
                                              static_cast<uint32_t>(from.width),
                                              static_cast<uint32_t>(from.height)};
    zel::Handle table = 0;
    int32_t count = 0;
    ASSERT_EQ(zel::ParticleScan(request, source, labels, &table, eight, &count), 0);
    EXPECT_EQ(count, expected.count);
    const auto* equivalence = zel::VectorData<zel::EquivalenceTable>(table);
    EXPECT_EQ(equivalence->numbers[0], 0);
    for (int32_t y = 0; y < from.height; y++) {
      for (int32_t x = 0; x < from.width; x++) {
        const uint16_t label = labels.Get<uint16_t>(x, y);
        ASSERT_EQ(equivalence->numbers[label],
                  expected.numbers[static_cast<size_t>(y * from.width + x)]);
      }
    }
    ExpectClearBorder(source);
    ExpectClearBorder(labels);
    zel::HandleFree(table);
  }
}

TEST(Label, TheScannerWithoutMemoryLeavesNoTableAndNoLabels) {
  const TestImage source = RandomPicture(IMAGE_U8, 60, 20, 45, 1);
  const TestImage labels(IMAGE_I16, 60, 20, 2, 7);
  const ImageInfo from = source.Info();
  const ImageInfo to = labels.Info();
  const auto pitch = [](const ImageInfo& info) { return static_cast<uint32_t>(info.lineWidth); };
  const zel::ParticleScanRequest request = {
      IMAGE_U8, IMAGE_I16, from.firstPixel, to.firstPixel, pitch(from), pitch(to), 60, 20};
  const int16_t untouched = labels.Get<int16_t>(5, 5);
  test::RefuseEachAllocation([&] { labels.Set<int16_t>(5, 5, untouched); },
                             [&] {
                               zel::Handle table = 0;
                               int32_t count = 0;
                               const zel::Status status =
                                   zel::ParticleScan(request, source, labels, &table, true, &count);
                               EXPECT_EQ(table != 0, status == 0);
                               if (status != 0) {
                                 EXPECT_EQ(labels.Get<int16_t>(5, 5), untouched);
                                 EXPECT_EQ(count, 0);
                               }
                               if (table != 0) zel::HandleFree(table);
                               return -status;
                             });
}

TEST(Label, TheScannerRefusesOtherTypesAndLeavesNoTable) {
  const TestImage image(IMAGE_U8, 4, 4, 2);
  const ImageInfo info = image.Info();
  for (const auto& [source, labels] : {std::pair{IMAGE_SGL, IMAGE_I16}, {IMAGE_U8, IMAGE_U8}}) {
    const zel::ParticleScanRequest request = {
        source, labels, info.firstPixel, info.firstPixel, 16, 16, 4, 4};
    zel::Handle table = 0;
    int32_t count = 0;
    EXPECT_EQ(zel::ParticleScan(request, image, image, &table, false, &count), 301);
    EXPECT_EQ(table, 0);
  }
}

TEST(Label, DiagonalPixelsAreOneParticleOnlyWithEightNeighbours) {
  const TestImage image = TestImage::FromRows({"#..", ".#.", "...", "..#"});
  const TestImage labels(IMAGE_U8, 1, 1);
  int32_t count = 0;
  ASSERT_EQ(ZEL_Label(image, labels, 0, &count), 0);
  EXPECT_EQ(count, 3);
  ASSERT_EQ(ZEL_Label(image, labels, 1, &count), 0);
  EXPECT_EQ(count, 2);
  EXPECT_EQ(labels.Get<uint8_t>(0, 0), 1);
  EXPECT_EQ(labels.Get<uint8_t>(1, 1), 1);
  EXPECT_EQ(labels.Get<uint8_t>(2, 3), 2);
}

TEST(Label, ArmsThatMeetFurtherDownAreOneParticle) {
  const TestImage image = TestImage::FromRows({"#..#.#", "#..#..", "####.#"});
  for (const uint16_t connectivity : {FOUR, EIGHT}) {
    int32_t count = 0;
    const TestImage labels(IMAGE_I16, 1, 1);
    ASSERT_EQ(ZEL_Label(image, labels, connectivity, &count), 0);
    EXPECT_EQ(count, 3);
    EXPECT_EQ(labels.Get<int16_t>(0, 0), 1);
    EXPECT_EQ(labels.Get<int16_t>(3, 0), 1);
    EXPECT_EQ(labels.Get<int16_t>(5, 0), 2);
    EXPECT_EQ(labels.Get<int16_t>(5, 2), 3);
  }
}

TEST(Label, EmptyAndClearImagesHaveNoParticles) {
  for (const auto& [width, height] : {std::pair{0, 0}, {5, 4}}) {
    TestImage image(IMAGE_U8, width, height, 2);
    for (int32_t y = 0; y < height; y++) {
      for (int32_t x = 0; x < width; x++) image.Set<uint8_t>(x, y, 0);
    }
    int32_t count = -1;
    const TestImage labels(IMAGE_I16, 7, 7, 2);
    EXPECT_EQ(ZEL_Label(image, labels, 1, &count), 0);
    EXPECT_EQ(count, 0);
    EXPECT_EQ(labels.width(), width);
    EXPECT_EQ(labels.height(), height);
    BasicReports table;
    table.reports = static_cast<BasicParticleReport*>(ZEL_malloc(100));
    EXPECT_EQ(ZEL_BasicParticle(image, 1, &table.reports, &table.count), 0);
    EXPECT_EQ(table.count, 0);
    EXPECT_EQ(table.reports, nullptr);
  }
}

TEST(Label, BytesHold255ForAllParticlesFromThereOn) {
  for (const int32_t particles : {254, 255, 256, 300}) {
    const TestImage image = Dots(particles, 20);
    const Labelling expected = FloodFill(PictureOf(image), false);
    const TestImage labels(IMAGE_U8, 1, 1);
    int32_t count = 0;
    ASSERT_EQ(ZEL_Label(image, labels, 0, &count), 0);
    EXPECT_EQ(count, particles);
    ExpectLabels(labels, expected, std::to_string(particles));
    ASSERT_EQ(ZEL_Label(image, 0, 1, &count), 0);
    ExpectLabels(image, expected, std::to_string(particles) + " in place");
  }
}

TEST(Label, SixteenBitLabelsAbove32767ReadNegative) {
  const TestImage image = Dots(33000, 220);
  const TestImage labels(IMAGE_I16, 1, 1, 2);
  int32_t count = 0;
  ASSERT_EQ(ZEL_Label(image, labels, 1, &count), 0);
  EXPECT_EQ(count, 33000);
  const auto at = [&](int32_t number) {
    return labels.Get<int16_t>((number - 1) % 220 * 2, (number - 1) / 220 * 2);
  };
  EXPECT_EQ(at(32767), 32767);
  EXPECT_EQ(at(32768), -32768);
  EXPECT_EQ(at(33000), 33000 - 65536);
}

TEST(Label, MoreThan65535ProvisionalLabelsAreTooMany) {
  for (const uint16_t connectivity : {FOUR, EIGHT}) {
    const TestImage most = Dots(65535, 300);
    const TestImage tooMany = Dots(65536, 300);
    const TestImage labels(IMAGE_I16, 3, 3, 2, 5);
    int32_t count = -1;
    EXPECT_EQ(ZEL_Label(most, labels, connectivity, &count), 0);
    EXPECT_EQ(count, 65535);
    EXPECT_EQ(labels.Get<uint16_t>(268, 436), 65535);  // the last dot
    EXPECT_EQ(ZEL_Label(tooMany, labels, connectivity, &count), -101);
    EXPECT_EQ(count, 0);
    ExpectClearBorder(labels);

    const std::vector<uint8_t> pixels = tooMany.Pixels();
    EXPECT_EQ(ZEL_Label(tooMany, 0, connectivity, &count), -101);
    EXPECT_TRUE(tooMany.Pixels() == pixels);
    ExpectClearBorder(tooMany);

    BasicReports table;
    EXPECT_EQ(ZEL_BasicParticle(most, connectivity, &table.reports, &table.count), 0);
    EXPECT_EQ(table.count, 65535);
    BasicParticleReport* const before = table.reports;
    EXPECT_EQ(ZEL_BasicParticle(tooMany, connectivity, &table.reports, &table.count), -101);
    EXPECT_EQ(table.count, 0);
    EXPECT_EQ(table.reports, before);
  }
}

// Combs: rows of teeth with a full row below them that makes one particle of each comb. Every tooth
// takes a provisional label, and the full row none, since it begins below a tooth.
TEST(Label, ProvisionalLabelsCountAlsoWhereTheyMerge) {
  constexpr int32_t teethOfComb = 256;
  for (const uint16_t connectivity : {FOUR, EIGHT}) {
    for (const int32_t teeth : {65535, 65536}) {
      const TestImage image(IMAGE_U8, 2 * teethOfComb, 3 * 256, 2);
      for (int32_t y = 0; y < image.height(); y++) {
        for (int32_t x = 0; x < 2 * teethOfComb; x++) {
          const bool tooth = x % 2 == 0 && y / 3 * teethOfComb + x / 2 < teeth;
          image.Set<uint8_t>(x, y, (y % 3 == 0 && tooth) || y % 3 == 1 ? 1 : 0);
        }
      }
      ASSERT_EQ(test::ProvisionalLabels(PictureOf(image), connectivity != 0), teeth);
      int32_t count = -1;
      const TestImage labels(IMAGE_U8, 1, 1);
      EXPECT_EQ(ZEL_Label(image, labels, connectivity, &count), teeth > 65535 ? -101 : 0);
      EXPECT_EQ(count, teeth > 65535 ? 0 : 256);
    }
  }
}

TEST(Label, TheLimitFallsWhereAScanPixelByPixelHasIt) {
  // Noise near the limit, trimmed to one row more or less of it.
  for (const bool eight : {false, true}) {
    const int32_t width = 700;
    const TestImage noise = RandomPicture(IMAGE_U8, width, eight ? 3060 : 780, 50, eight ? 11 : 12);
    const Picture picture = PictureOf(noise);
    ASSERT_GT(test::ProvisionalLabels(picture, eight), 65535);
    int32_t low = 1;
    int32_t high = picture.height;
    while (low < high) {  // the first height with too many labels
      const int32_t middle = (low + high) / 2;
      const Picture part{width, middle, picture.set};
      if (test::ProvisionalLabels(part, eight) > 65535) {
        high = middle;
      } else {
        low = middle + 1;
      }
    }
    for (const int32_t height : {low - 1, low}) {
      const TestImage image(IMAGE_U8, width, height, 2);
      for (int32_t y = 0; y < height; y++) {
        for (int32_t x = 0; x < width; x++) image.Set<uint8_t>(x, y, picture.At(x, y));
      }
      int32_t count = -1;
      const TestImage labels(IMAGE_I16, 1, 1, 2);
      EXPECT_EQ(ZEL_Label(image, labels, eight, &count), height == low ? -101 : 0);
    }
  }
}

TEST(Label, TheDestinationTakesSizeCalibrationAndOffset) {
  const TestImage image = TestImage::FromRows({"##.", "..#"});
  ZEL_SetImageCalibration(image, 3, 2.0f, 0.5f);
  ZEL_SetImageOffset(image, -4, 9);
  for (const int32_t type : {IMAGE_U8, IMAGE_I16}) {
    const TestImage labels(type, 50, 60, 1);
    ASSERT_EQ(ZEL_Label(image, labels, 0, nullptr), 0);
    const ImageInfo info = labels.Info();
    EXPECT_EQ(info.width, 3);
    EXPECT_EQ(info.height, 2);
    EXPECT_EQ(info.border, 1);
    EXPECT_EQ(info.unit, 3);
    EXPECT_EQ(info.xStep, 2.0f);
    EXPECT_EQ(info.yStep, 0.5f);
    EXPECT_EQ(info.offsetX, -4);
    EXPECT_EQ(info.offsetY, 9);
  }
}

TEST(Label, OnlyALabelImagesBorderIsCleared) {
  for (const int32_t width : {1, 5, 8, 31, 64, 100}) {
    const TestImage image = RandomPicture(IMAGE_U8, width, 6, 50, static_cast<uint64_t>(width));
    for (const auto& [type, border] : {std::pair{IMAGE_U8, 3}, {IMAGE_I16, 1}, {IMAGE_U8, 0}}) {
      const TestImage labels(type, width, 6, border, 5);
      const std::vector<uint8_t> surroundings = labels.Surroundings();
      ASSERT_EQ(ZEL_Label(image, labels, 1, nullptr), 0);
      EXPECT_TRUE(labels.Surroundings() == surroundings) << type << " border " << border;
    }
    const TestImage wide(IMAGE_I16, width, 6, 2, 5);
    ASSERT_EQ(ZEL_Label(image, wide, 1, nullptr), 0);
    ExpectClearBorder(wide);
  }
}

TEST(Label, WrongImagesGiveTheirNumbersInTheOrderOfTheChecks) {
  const TestImage good = TestImage::FromRows({"#.#"});
  const TestImage narrow = TestImage::FromRows({"#.#"}, 1);
  const TestImage bare = TestImage::FromRows({"#.#"}, 0);
  const TestImage floats(IMAGE_SGL, 3, 3, 2);
  const TestImage labels(IMAGE_U8, 9, 9);
  int32_t count = 5;
  EXPECT_EQ(ZEL_Label(0, labels, 0, &count), -200);
  EXPECT_EQ(count, 0);
  EXPECT_EQ(ZEL_Label(123456, labels, 0, &count), -200);
  EXPECT_EQ(ZEL_Label(floats, 123456, 0, &count), -301);
  EXPECT_EQ(ZEL_Label(bare, 123456, 0, &count), -309);
  EXPECT_EQ(ZEL_Label(narrow, labels, 1, &count), -309);
  EXPECT_EQ(labels.width(), 9);
  EXPECT_EQ(ZEL_Label(narrow, labels, 0, &count), 0);
  EXPECT_EQ(ZEL_Label(good, 123456, 1, &count), -200);
  EXPECT_EQ(count, 0);
  char name[256];
  EXPECT_EQ(ZEL_GetLastError(name), -200);
  EXPECT_STREQ(name, "ZEL_Label");
}

TEST(Label, ADestinationOfAnotherTypeIsResizedBeforeItGives312) {
  const TestImage image = TestImage::FromRows({"#.#", "..."});
  for (const int32_t type : {IMAGE_SGL, IMAGE_COMPLEX, IMAGE_RGB}) {
    const TestImage other(type, 9, 9, 0);
    int32_t count = -1;
    EXPECT_EQ(ZEL_Label(image, other, 0, &count), -312);
    EXPECT_EQ(count, 2);
    EXPECT_EQ(other.width(), 3);
    EXPECT_EQ(other.height(), 2);
  }
  ExpectClearBorder(image);
}

TEST(Label, RowsWiderThan65535ColumnsAreLabelled) {
  for (const uint16_t connectivity : {FOUR, EIGHT}) {
    TestImage image(IMAGE_U8, 70001, 3, 2);
    for (int32_t y = 0; y < 3; y++) {
      for (int32_t x = 0; x < 70001; x++) {
        image.Set<uint8_t>(x, y, x >= 32760 && x < 32775 ? 1 : x > 69990 ? 9 : 0);
      }
    }
    image.Set<uint8_t>(66000, 1, 1);
    const Labelling expected = FloodFill(PictureOf(image), connectivity != 0);
    const TestImage labels(IMAGE_I16, 1, 1);
    int32_t count = 0;
    ASSERT_EQ(ZEL_Label(image, labels, connectivity, &count), 0);
    EXPECT_EQ(count, 3);
    ExpectLabels(labels, expected, "wide");
    BasicReports table;
    ASSERT_EQ(ZEL_BasicParticle(image, connectivity, &table.reports, &table.count), 0);
    ExpectReports(table, ReportsOf(expected, 70001, 3, 1.0));
    EXPECT_EQ(table.reports[2].rect.left, 65535);  // the pixel at 66000
    EXPECT_EQ(table.reports[2].rect.width, 466);
    EXPECT_EQ(table.reports[1].rect.left, 65535);  // the bar at 69991
    EXPECT_EQ(table.reports[1].rect.width, 4466);
  }
}

TEST(BasicParticle, ReportsAreSumsOverTheParticlesPixels) {
  uint64_t seed = 100;
  for (const int32_t width : WIDTHS) {
    for (const int32_t percent : PERCENTS) {
      for (const uint16_t connectivity : {FOUR, EIGHT}) {
        const int32_t height = 1 + static_cast<int32_t>(seed % 19);
        const TestImage image =
            RandomPicture(IMAGE_U8, width, height, percent, ++seed, connectivity != 0 ? 2 : 1);
        const float xStep = 0.37f;
        const float yStep = seed % 3 == 0 ? -1.7f : 3.1f;
        ZEL_SetImageCalibration(image, 0, xStep, yStep);
        const Labelling labels = FloodFill(PictureOf(image), connectivity != 0);
        const std::vector<uint8_t> pixels = image.Pixels();
        BasicReports table;
        if (seed % 2 == 0) {
          table.reports =
              static_cast<BasicParticleReport*>(ZEL_malloc(3 * sizeof(BasicParticleReport)));
        }
        ASSERT_EQ(ZEL_BasicParticle(image, connectivity, &table.reports, &table.count), 0);
        ExpectReports(table, ReportsOf(labels, width, height,
                                       static_cast<double>(xStep) * static_cast<double>(yStep)));
        EXPECT_TRUE(image.Pixels() == pixels);
        ExpectClearBorder(image);
      }
    }
  }
}

TEST(BasicParticle, ABlockHasItsAreaAndRectangle) {
  TestImage image(IMAGE_U8, 12, 10, 2);
  for (int32_t y = 0; y < 10; y++) {
    for (int32_t x = 0; x < 12; x++) {
      image.Set<uint8_t>(x, y, x >= 4 && x < 7 && y >= 5 && y < 7 ? 1 : 0);
    }
  }
  BasicReports table;
  ASSERT_EQ(ZEL_BasicParticle(image, 7, &table.reports, &table.count), 0);
  ASSERT_EQ(table.count, 1);
  EXPECT_EQ(table.reports[0].area, 6);
  EXPECT_EQ(table.reports[0].rect.top, 5);
  EXPECT_EQ(table.reports[0].rect.left, 4);
  EXPECT_EQ(table.reports[0].rect.height, 2);
  EXPECT_EQ(table.reports[0].rect.width, 3);
}

TEST(BasicParticle, RowsBeyond65535ReportThatOne) {
  TestImage image(IMAGE_U8, 2, 65540, 1);
  for (int32_t y = 0; y < 65540; y++) {
    image.Set<uint8_t>(0, y, y == 65538);
    image.Set<uint8_t>(1, y, 0);
  }
  BasicReports table;
  ASSERT_EQ(ZEL_BasicParticle(image, 0, &table.reports, &table.count), 0);
  ASSERT_EQ(table.count, 1);
  EXPECT_EQ(table.reports[0].rect.top, 65535);
  EXPECT_EQ(table.reports[0].rect.height, 4);
  EXPECT_EQ(table.reports[0].rect.left, 0);
  EXPECT_EQ(table.reports[0].rect.width, 1);
}

TEST(BasicParticle, WrongImagesGiveTheirNumbersAndLeaveTheTable) {
  const TestImage words(IMAGE_I16, 3, 3, 2);
  const TestImage narrow = TestImage::FromRows({"#.#"}, 1);
  BasicReports table;
  table.reports = static_cast<BasicParticleReport*>(ZEL_malloc(24));
  BasicParticleReport* const before = table.reports;
  EXPECT_EQ(ZEL_BasicParticle(0, 0, &table.reports, &table.count), -200);
  EXPECT_EQ(table.count, 0);
  EXPECT_EQ(ZEL_BasicParticle(words, 0, &table.reports, &table.count), -301);
  EXPECT_EQ(ZEL_BasicParticle(narrow, 1, &table.reports, &table.count), -309);
  EXPECT_EQ(table.reports, before);
  table.count = 77;
  EXPECT_EQ(ZEL_BasicParticle(99999, 0, nullptr, &table.count), -3009);
  EXPECT_EQ(table.count, 77);
  char name[256];
  EXPECT_EQ(ZEL_GetLastError(name), -3009);
  EXPECT_STREQ(name, "ZEL_BasicParticle");
  EXPECT_EQ(ZEL_BasicParticle(narrow, 0, &table.reports, nullptr), 0);
  EXPECT_EQ(table.reports[1].rect.left, 2);
}

TEST(Label, RefusedMemoryIs101AndNothingIsLost) {
  const TestImage source = RandomPicture(IMAGE_U8, 300, 200, 50, 3);
  const Labelling expected = FloodFill(PictureOf(source), true);
  std::vector<uint8_t> pixels = source.Pixels();
  const TestImage labels(IMAGE_I16, 0, 0, 2);
  test::RefuseEachAllocation([&] { ZEL_SetImageSize(labels, 0, 0); },
                             [&] {
                               int32_t count = -1;
                               const int32_t result = ZEL_Label(source, labels, 1, &count);
                               EXPECT_EQ(count, result == 0 ? expected.count : 0);
                               return result;
                             });
  test::RefuseEachAllocation([] {},
                             [&] {
                               const int32_t result = ZEL_Label(source, 0, 1, nullptr);
                               if (result == 0) pixels = source.Pixels();
                               EXPECT_TRUE(source.Pixels() == pixels);
                               return result;
                             });
}

TEST(BasicParticle, RefusedMemoryIs101AndNothingIsLost) {
  const TestImage source = RandomPicture(IMAGE_U8, 300, 200, 50, 3);
  const Labelling expected = FloodFill(PictureOf(source), false);
  for (const uint32_t given : {0u, 24u}) {
    BasicReports table;
    test::RefuseEachAllocation(
        [&] {
          ZEL_free(table.reports);
          table.reports =
              given != 0 ? static_cast<BasicParticleReport*>(ZEL_malloc(given)) : nullptr;
        },
        [&] {
          const int32_t result = ZEL_BasicParticle(source, 0, &table.reports, &table.count);
          EXPECT_EQ(table.count, result == 0 ? expected.count : 0);
          return result;
        });
  }
}

}  // namespace
