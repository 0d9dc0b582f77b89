#include "dials/displays_test.h"
#include "tests/support/refused_memory.h"

namespace {

using test::Block;
using test::DisplayLook;
using test::PaintedDisplay;
using test::RegionRecord;
using test::TestImage;

int32_t Calibrate(ImageRef image, const RoiDescriptor* roi, const DisplayLook& look,
                  RegionRecord* digits) {
  return ZEL_CalibrateLCD(image, roi, look.isLight(), look.threshold, digits->Address());
}

std::string Read(ImageRef image, const RoiDescriptor* digits, const DisplayLook& look) {
  Block<char> text;
  Block<uint8_t> segments;
  double value = 0;
  int32_t count = 0;
  const int32_t result = ZEL_ReadLCDDisplay(image, digits, look.isLight(), look.threshold, 0, 0,
                                            &text.data, &value, &segments.data, &count);
  return result == 0 ? text.data : std::to_string(result);
}

TEST(CalibrateLCD, FindsTheExactRectanglesOfEights) {
  for (const DisplayLook& look : test::LOOKS) {
    // Where edges are soft or noisy there is no exact one.
    const bool isSoft = look.slant != 0 || look.noise > 0 || look.gap != std::floor(look.gap);
    if (isSoft) continue;
    for (const int32_t type : {IMAGE_U8, IMAGE_I16, IMAGE_SGL}) {
      const PaintedDisplay display(look, "888");
      RegionRecord digits;
      ASSERT_EQ(Calibrate(display.ToImage(type), display.All(3), look, &digits), 0) << look.name;
      std::vector<std::vector<int32_t>> expected;
      for (int32_t i = 0; i < 3; i++) expected.push_back(display.RectangleOf(i).coordinates);
      EXPECT_EQ(digits.Coordinates(), expected) << look.name;
      const ApiRect rect = digits->globalRect;
      EXPECT_EQ(rect.left, expected.front()[0]);
      EXPECT_EQ(rect.top, expected.front()[1]);
      EXPECT_EQ(rect.left + rect.width, expected.back()[2]);
      EXPECT_EQ(rect.top + rect.height, expected.back()[3]);
      for (int32_t i = 0; i < 3; i++) {
        EXPECT_EQ(digits->contours[i]->contourKind, ROI_EXTERNAL);
        EXPECT_EQ(digits->contours[i]->contourType, ROI_RECT);
        EXPECT_EQ(digits->contours[i]->pointCount, 2);
      }
    }
  }
}

// Calibrated on one text, the display reads that and others.
TEST(CalibrateLCD, GivesWhatReadsTheDisplay) {
  for (const DisplayLook& look : test::LOOKS) {
    // An upright rectangle holds a slanted digit only as long as the slant is slight.
    if (look.slant > 0.2) continue;
    const TestImage another = PaintedDisplay(look, "9350").ToImage();
    for (const std::string text : {"8888", "0123", "4567", "8911", "1080", "2.5.60"}) {
      const PaintedDisplay display(look, text);
      std::string bare = text;
      std::erase(bare, '.');
      const TestImage image = display.ToImage();
      RegionRecord digits;
      const int32_t result =
          Calibrate(image, display.All(static_cast<int32_t>(bare.size())), look, &digits);
      ASSERT_EQ(result, 0) << look.name << ' ' << text;
      EXPECT_EQ(Read(image, digits, look), bare) << look.name << ' ' << text;
      if (text == "8888" || look.slant == 0) {
        EXPECT_EQ(Read(another, digits, look), "9350") << look.name << " calibrated on " << text;
      }
    }
  }
}

TEST(CalibrateLCD, LeavesSignsAndPointsOut) {
  const DisplayLook look;
  const PaintedDisplay display(look, "-8.8");
  RegionRecord digits;
  ASSERT_EQ(Calibrate(display.ToImage(), display.All(3), look, &digits), 0);
  const std::vector<std::vector<int32_t>> expected = {display.RectangleOf(1).coordinates,
                                                      display.RectangleOf(2).coordinates};
  EXPECT_EQ(digits.Coordinates(), expected);
}

TEST(CalibrateLCD, WidensNarrowDigitsToTheLeftUpToTheNeighbour) {
  DisplayLook look;
  const PaintedDisplay display(look, "81");
  RegionRecord digits;
  ASSERT_EQ(Calibrate(display.ToImage(), display.All(2), look, &digits), 0);
  EXPECT_EQ(digits.Coordinates()[1], display.RectangleOf(1).coordinates);
  // A 1 close behind an 8, as in a font of digits of several widths.
  const TestImage image = [] {
    test::Canvas canvas(100, 100, 200);
    canvas.Bar({20.5, 20}, {20.5, 60}, 4, 0);
    canvas.Bar({40.5, 20}, {40.5, 60}, 4, 0);
    for (const double y : {21.0, 40.0, 59.0}) canvas.Bar({20.5, y}, {40.5, y}, 4, 0);
    canvas.Bar({48.5, 20}, {48.5, 60}, 4, 0);
    return canvas.ToImage();
  }();
  RegionRecord close;
  ASSERT_EQ(Calibrate(image, RegionRecord({{ROI_RECT, {10, 10, 60, 70}}}), look, &close), 0);
  ASSERT_EQ(close.Coordinates().size(), 2u);
  EXPECT_EQ(close.Coordinates()[1][0], close.Coordinates()[0][2]);
}

TEST(CalibrateLCD, TakesFourCornersByTheirRectangle) {
  const DisplayLook look;
  const PaintedDisplay display(look, "88");
  const TestImage image = display.ToImage();
  const std::vector<int32_t> c = display.All(2).Coordinates()[0];
  RegionRecord fromRectangle;
  RegionRecord fromCorners;
  ASSERT_EQ(Calibrate(image, display.All(2), look, &fromRectangle), 0);
  const RegionRecord corners(
      {{ROI_POLYGON, {c[0] + 3, c[1], c[2], c[1] + 5, c[2] - 3, c[3], c[0], c[3] - 5}}});
  ASSERT_EQ(Calibrate(image, corners, look, &fromCorners), 0);
  EXPECT_EQ(fromCorners.Coordinates(), fromRectangle.Coordinates());
}

TEST(CalibrateLCD, LooksAtTheImageOnly) {
  const DisplayLook look;
  const PaintedDisplay display(look, "88");
  const TestImage image = display.ToImage();
  RegionRecord digits;
  const int32_t lastRow = image.height() - 1;
  const RegionRecord wide({{ROI_RECT, {-30000, 0, 1000000000, lastRow}}});
  ASSERT_EQ(Calibrate(image, wide, look, &digits), 0);
  EXPECT_EQ(Read(image, digits, look), "88");
  const RegionRecord beyond({{ROI_RECT, {5000, 5000, 6000, 6000}}});
  EXPECT_EQ(Calibrate(image, beyond, look, &digits), -3040);
  const RegionRecord everything(
      {{ROI_RECT, {INT32_MIN + 65536 * 4, INT32_MIN, INT32_MAX, INT32_MAX}}});
  const int32_t result = Calibrate(image, everything, look, &digits);
  EXPECT_TRUE(result == -3040 || result == -1200) << result;
}

TEST(CalibrateLCD, WithoutADigitGives3040AndLeavesTheRegion) {
  const TestImage flat(IMAGE_U8, 60, 60);
  for (int32_t y = 0; y < 60; y++) {
    for (int32_t x = 0; x < 60; x++) flat.Set<uint8_t>(x, y, 90);
  }
  const RegionRecord all({{ROI_RECT, {5, 5, 55, 55}}});
  RegionRecord digits({{ROI_OVAL, {1, 2, 3, 4}}});
  EXPECT_EQ(Calibrate(flat, all, {}, &digits), -3040);
  EXPECT_EQ(ZEL_CalibrateLCD(flat, all, 0, -1, digits.Address()), -3040) << "nothing is beyond";
  EXPECT_EQ(digits.Coordinates(), (std::vector<std::vector<int32_t>>{{1, 2, 3, 4}}));
  const PaintedDisplay display({}, "88");
  EXPECT_EQ(ZEL_CalibrateLCD(display.ToImage(), display.All(2), 0, 1000, digits.Address()), -3040);
  EXPECT_EQ(ZEL_CalibrateLCD(display.ToImage(), display.All(2), 0, NAN, digits.Address()), -3040);
  const TestImage none(IMAGE_RGB, 0, 0);
  EXPECT_EQ(Calibrate(none, all, {}, &digits), -3040);
}

TEST(CalibrateLCD, ChecksWhatItIsGivenInOrder) {
  const test::MessageWatch watch;
  const TestImage rgb(IMAGE_RGB, 60, 60);
  const RegionRecord all({{ROI_RECT, {5, 5, 55, 55}}});
  RegionRecord digits;
  const ImageRef unknown = 0xFFFFFFFF;
  EXPECT_EQ(ZEL_CalibrateLCD(0, nullptr, 0, 5, nullptr), -201);
  EXPECT_TRUE(watch.Messages().empty());
  EXPECT_EQ(ZEL_CalibrateLCD(unknown, nullptr, 0, 5, nullptr), -1200);
  EXPECT_EQ(ZEL_CalibrateLCD(unknown, all, 0, 5, nullptr), -1200);
  EXPECT_EQ(watch.Messages(),
            (std::vector<std::string>{"ZEL_CalibrateLCD: ROI not provided",
                                      "ZEL_CalibrateLCD: output_ROI not provided"}));
  EXPECT_EQ(ZEL_CalibrateLCD(unknown, all, 0, 5, digits.Address()), -200);
  EXPECT_EQ(ZEL_CalibrateLCD(rgb, RegionRecord({{ROI_OVAL, {1, 2, 3, 4}}}), 0, 5, digits.Address()),
            -1200);
  EXPECT_EQ(ZEL_CalibrateLCD(rgb, RegionRecord({{ROI_RECT, {1, 2}}}), 0, 5, digits.Address()),
            -1200);
  EXPECT_EQ(ZEL_CalibrateLCD(rgb, all, 0, 5, digits.Address()), -301);
  EXPECT_EQ(*digits.Address(), nullptr);
}

TEST(CalibrateLCD, OfNoiseEndsAndGivesDigitsWithinTheImage) {
  int calibrated = 0;
  for (uint64_t seed = 0; seed < 60; seed++) {
    const TestImage image(static_cast<int32_t>(seed % 3), 80, 60, 0, seed);
    RegionRecord digits;
    const int32_t result = ZEL_CalibrateLCD(image, RegionRecord({{ROI_RECT, {3, 4, 77, 55}}}),
                                            seed % 2, 1, digits.Address());
    ASSERT_TRUE(result == 0 || result == -3040);
    if (result != 0) continue;
    calibrated++;
    int32_t right = 3;
    for (const std::vector<int32_t>& c : digits.Coordinates()) {
      EXPECT_GE(c[0], right);
      EXPECT_GT(c[2], c[0]);
      EXPECT_GE(c[1], 4);
      EXPECT_LE(c[3], 56);
      right = c[2];
    }
    EXPECT_LE(right, 78);
  }
  EXPECT_GT(calibrated, 10);
}

TEST(CalibrateLCD, WithoutMemoryChangesNothing) {
  const PaintedDisplay display({}, "88");
  const TestImage image = display.ToImage();
  const RegionRecord all = display.All(2);
  RegionRecord digits;
  const auto prepare = [&] {
    ZEL_FreeROI(*digits.Address());
    *digits.Address() = nullptr;
  };
  test::RefuseEachAllocation(prepare, [&] {
    const int32_t result = Calibrate(image, all, {}, &digits);
    EXPECT_EQ(*digits.Address() == nullptr, result != 0);
    return result;
  });
  EXPECT_EQ(digits.Coordinates().size(), 2u);
}

}  // namespace
