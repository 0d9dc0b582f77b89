// Line gauges: edges on rendered lines with known places, set-ups, and lines that follow a part.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <functional>
#include <numbers>
#include <sstream>

#include "orlune/gauge/line_reports.h"
#include "orlune/gauge/line_setup.h"
#include "orlune/shared/json_values.h"
#include "orlune/shared/output.h"
#include "scenes/random.h"
#include "scenes/shafts.h"
#include "tests/support/complaints.h"

namespace {

using namespace front;  // NOLINT: these are its tests
using test::Complaint;
using test::Has;

Image Painted(int32_t width, int32_t height, const std::function<double(Place)>& light,
              int32_t type = IMAGE_U8) {
  Image image(type, 0, width, height);
  const ImageInfo info = image.Info();
  ForPixelType(type, [&](auto* pixel) {
    using T = std::remove_pointer_t<decltype(pixel)>;
    for (int32_t y = 0; y < height; y++) {
      for (int32_t x = 0; x < width; x++) {
        const double level = light({1.0 * x, 1.0 * y});
        Row<T>(info, y)[x] = static_cast<T>(std::is_same_v<T, float> ? level : std::round(level));
      }
    }
  });
  return image;
}

// From 0 to 1 across 0, with a lens blur of a pixel.
double Step(double t) {
  return std::erfc(-t / std::numbers::sqrt2) / 2;
}

// ------------------------------------------------------------------------------------- edges

TEST(LineEdges, LieWhereTheyTrulyAre) {
  for (const double first : {30.0, 30.25, 30.5, 30.8}) {
    const double last = first + 40.3;
    const Image bar =
        Painted(120, 9, [=](Place p) { return 40 + 150 * (Step(p.x - first) - Step(p.x - last)); });
    const std::vector<LineEdge> edges = EdgesAlong(bar, {{5, 4}, {115, 4}}, {});
    ASSERT_EQ(edges.size(), 2u);
    EXPECT_NEAR(edges[0].along, first - 5, 0.02);
    EXPECT_NEAR(edges[1].along, last - 5, 0.02);
    EXPECT_TRUE(edges[0].rises);
    EXPECT_FALSE(edges[1].rises);
    EXPECT_GT(edges[0].contrast, 100);
    EXPECT_LT(edges[1].contrast, -100);
  }
}

TEST(LineEdges, OfDifferentContrastAreNotDrawnApart) {
  const Image bar =
      Painted(120, 9, [=](Place p) { return 40 + 150 * Step(p.x - 30.3) - 90 * Step(p.x - 70.6); });
  const std::vector<LineEdge> edges = EdgesAlong(bar, {{5, 4}, {115, 4}}, {});
  ASSERT_EQ(edges.size(), 2u);
  EXPECT_NEAR(edges[1].along - edges[0].along, 40.3, 0.03);
}

TEST(LineEdges, AreFoundOnLinesOfAnyAngleInAnyType) {
  for (const int32_t type : {IMAGE_U8, IMAGE_I16, IMAGE_SGL}) {
    for (const double degrees : {0.0, 7.0, 33.0, 45.0, 90.0, 141.0, 270.0}) {
      const double angle = degrees * std::numbers::pi / 180;
      const double ux = std::cos(angle), uy = std::sin(angle);
      const Image step = Painted(
          101, 101, [=](Place p) { return 20 + 120 * Step((p.x - 50.3) * ux + (p.y - 49.6) * uy); },
          type);
      const Line line{{50.3 - 30 * ux, 49.6 - 30 * uy}, {50.3 + 30 * ux, 49.6 + 30 * uy}};
      const std::vector<LineEdge> edges = EdgesAlong(step, line, {});
      ASSERT_EQ(edges.size(), 1u) << degrees;
      EXPECT_NEAR(edges[0].along, 30, 0.03) << degrees << ", type " << type;
    }
  }
}

TEST(LineEdges, NeedAContrastAboveTheThreshold) {
  const Image step = Painted(60, 9, [](Place p) { return 40 + 30 * Step(p.x - 30); });
  EdgeSearch search;
  search.threshold = 20;
  EXPECT_EQ(EdgesAlong(step, {{5, 4}, {55, 4}}, search).size(), 1u);
  search.threshold = 40;
  EXPECT_TRUE(EdgesAlong(step, {{5, 4}, {55, 4}}, search).empty());
}

TEST(LineEdges, AreNoneInFlatAndNoisyPictures) {
  scenes::Random random(7);
  const Image flat = Painted(200, 9, [](Place) { return 90; });
  const Image noisy = Painted(200, 9, [&](Place) { return 90 + 5 * random.Gauss(); });
  EXPECT_TRUE(EdgesAlong(flat, {{5, 4}, {190, 4}}, {}).empty());
  EXPECT_TRUE(EdgesAlong(noisy, {{5, 4}, {190, 4}}, {}).empty());
}

TEST(LineEdges, BesideTheLineOrThePictureAreNoEdges) {
  const Image step = Painted(60, 9, [](Place p) { return 40 + 100 * Step(p.x - 30); });
  EXPECT_TRUE(EdgesAlong(step, {{34, 4}, {55, 4}}, {}).empty());
  EXPECT_EQ(EdgesAlong(step, {{29, 4}, {31, 4}}, {}).size(), 1u);
  EXPECT_EQ(EdgesAlong(step, {{-100, 4}, {200, 4}}, {}).size(), 1u);
  EXPECT_TRUE(EdgesAlong(step, {{-300, -300}, {-200, -300}}, {}).empty());
}

TEST(LineEdges, AreNoneWhereNoNumberIs) {
  const Image none = Painted(
      40, 9, [](Place) { return std::nan(""); }, IMAGE_SGL);
  EXPECT_TRUE(EdgesAlong(none, {{5, 4}, {30, 4}}, {}).empty());
  const Image far = Painted(
      40, 9, [](Place p) { return p.x < 20 ? -3e38 : 3e38; }, IMAGE_SGL);
  EXPECT_LE(EdgesAlong(far, {{5, 4}, {30, 4}}, {}).size(), 1u);
}

// ------------------------------------------------------------------------------------- gauges

// Light bars from 20 to 30.5 and from 50 to 62 on the dark.
Image Bars() {
  return Painted(100, 9, [](Place p) {
    return 30 + 150 * (Step(p.x - 20) - Step(p.x - 30.5) + Step(p.x - 50) - Step(p.x - 62));
  });
}

GaugeResult Measured(LineMeasure measure, Object object, std::optional<double> nominal = {},
                     Limits limits = {}, Scale scale = {}) {
  GaugeSetup setup;
  setup.gauges.push_back({.name = "it",
                          .line = {{5, 4}, {90, 4}},
                          .measure = measure,
                          .object = object,
                          .nominal = nominal,
                          .limits = limits,
                          .search = {}});
  return GaugeLines(Bars(), scale, setup, {}).at(0);
}

TEST(LineGauges, MeasureWhatTheyAreAskedFor) {
  const auto value = [](LineMeasure measure, Object object, std::optional<double> nominal = {}) {
    return Measured(measure, object, nominal).value.value_or(-1);
  };
  EXPECT_NEAR(value(LineMeasure::Span, Object::Any), 42, 0.05);
  EXPECT_NEAR(value(LineMeasure::Span, Object::Light), 42, 0.05);
  EXPECT_NEAR(value(LineMeasure::Span, Object::Dark), 19.5, 0.05);
  EXPECT_NEAR(value(LineMeasure::Pair, Object::Light), 10.5, 0.05);
  EXPECT_NEAR(value(LineMeasure::Pair, Object::Light, 13), 12, 0.05);
  EXPECT_NEAR(value(LineMeasure::Pair, Object::Dark), 19.5, 0.05);
  EXPECT_NEAR(value(LineMeasure::Start, Object::Dark), 25.5, 0.05);
  EXPECT_NEAR(value(LineMeasure::End, Object::Any), 70, 0.05);
  EXPECT_EQ(value(LineMeasure::Edges, Object::Any), 4);
  EXPECT_EQ(value(LineMeasure::Edges, Object::Dark), 2);
}

TEST(LineGauges, PassWithinTheirLimitsInTheUnit) {
  const Scale half{0.5f, 2.0f};
  const auto passes = [&](Limits limits) {
    return Measured(LineMeasure::Pair, Object::Light, {}, limits, half).passed;
  };
  EXPECT_TRUE(passes({}));
  EXPECT_TRUE(passes({5.2, 5.3}));
  EXPECT_FALSE(passes({5.4, {}}));
  EXPECT_FALSE(passes({{}, 5.1}));
}

TEST(LineGauges, WithoutTheirEdgesDoNotPass) {
  GaugeSetup setup;
  setup.gauges.push_back(
      {.name = "it", .line = {{60, 4}, {90, 4}}, .nominal = {}, .limits = {}, .search = {}});
  const GaugeResult result = GaugeLines(Bars(), {}, setup, {}).at(0);
  EXPECT_FALSE(result.value);
  EXPECT_FALSE(result.passed);
  EXPECT_EQ(VerdictOf(result), "not found");
}

// ------------------------------------------------------------------------------------- poses

TEST(Poses, CarryPointsAlong) {
  const Place moved = Carried({12, 5}, {{10, 5}, 20}, {{100, 50}, 110});
  EXPECT_NEAR(moved.x, 100, 1e-9);
  EXPECT_NEAR(moved.y, 52, 1e-9);
  EXPECT_NEAR(Turned(270), -90, 1e-12);
  EXPECT_NEAR(Turned(-180), -180, 1e-12);
  EXPECT_NEAR(Turned(180), -180, 1e-12);
}

// Of all pixels whose centre is in the shape.
std::optional<ObjectPose> PoseOfShape(const std::function<bool(Place)>& holds) {
  Image mask = Painted(200, 200, [&](Place p) { return holds(p) ? 1.0 : 0.0; });
  return PoseOf(LabelRuns(mask, true), 0);
}

TEST(Poses, TellHowAPartIsTurned) {
  for (const double degrees : {-170.0, -95.0, -30.0, 0.0, 45.0, 90.0, 133.0}) {
    const Pose truth{{101.3, 97.8}, degrees};
    // A wedge: thick at its back, with a long front.
    const auto pose = PoseOfShape([&](Place p) {
      const Place own = Carried(p, truth, {});
      return own.x > -25 && own.x < 60 && std::abs(own.y) < (60 - own.x) / 4;
    });
    ASSERT_TRUE(pose && pose->hasAxis && pose->hasFront);
    EXPECT_NEAR(Turned(pose->pose.degrees - degrees), 0, 0.5);
  }
}

TEST(Poses, WithoutFrontOrAxisAreResolvedByTheOther) {
  const auto bar =
      PoseOfShape([](Place p) { return std::abs(p.x - 90) < 50 && std::abs(p.y - 80) < 9; });
  ASSERT_TRUE(bar && bar->hasAxis);
  EXPECT_FALSE(bar->hasFront);
  EXPECT_NEAR(Resolved(*bar, {{}, 10}).degrees, 0, 0.1);
  EXPECT_NEAR(std::abs(Resolved(*bar, {{}, 170}).degrees), 180, 0.1);
  const auto disc = PoseOfShape([](Place p) { return std::hypot(p.x - 90, p.y - 80) < 40; });
  ASSERT_TRUE(disc);
  EXPECT_FALSE(disc->hasAxis);
  EXPECT_EQ(Resolved(*disc, {{}, 77}).degrees, 77);
  EXPECT_FALSE(PoseOfShape([](Place) { return false; }));
}

// ------------------------------------------------------------------------------------- set-ups

constexpr char SETUP[] =
    R"({"gauge": "lines", "scale": 0.05, "unit": "mm", "threshold": 20, "band": 9,
  "reference": {"follow": "edges", "object": "light", "threshold": "40%", "taught": [10, 20.5, -3],
                "lines": [[1, 2, 30, 4], [5, 6, 70, 8], [9, 10, 11, 120]]},
  "lines": [{"name": "a", "line": [1, 2, 3.5, 40], "measure": "pair", "object": "dark", "nominal": 2,
             "min": 1, "max": 3, "threshold": "25%", "edgeWidth": 7},
            {"line": [0, 0, 50, 50]}]})";

TEST(LineSetups, ReadBackAsTheyAreWritten) {
  const GaugeSetup setup = ParseGaugeSetup(SETUP).setup;
  ASSERT_EQ(setup.gauges.size(), 2u);
  EXPECT_EQ(setup.scale->y, 0.05f);
  EXPECT_EQ(setup.reference.follow, Follow::Edges);
  EXPECT_EQ(setup.reference.taught->degrees, -3);
  EXPECT_EQ(setup.reference.lines[2].to.y, 120);
  EXPECT_FALSE(setup.reference.search.threshold);
  EXPECT_EQ(setup.reference.search.band, 9);
  const LineGauge& first = setup.gauges[0];
  EXPECT_EQ(first.measure, LineMeasure::Pair);
  EXPECT_EQ(first.search.share, 0.25);
  EXPECT_EQ(first.search.edgeWidth, 7);
  EXPECT_EQ(setup.gauges[1].name, "2");
  EXPECT_EQ(setup.gauges[1].search.threshold, 20);
  const std::string text = SetupText(setup);
  EXPECT_EQ(SetupText(ParseGaugeSetup(text).setup), text);
}

TEST(LineSetups, MistakesAreExplained) {
  const auto complaint = [](const std::string& text) {
    return Complaint([&] { ParseGaugeSetup(text); });
  };
  const auto ofLine = [&](const std::string& line) {
    return complaint(R"({"gauge": "lines", "lines": [)" + line + "]}");
  };
  EXPECT_TRUE(Has(complaint(R"({"gauge": "meter"})"), "is not 'lines'"));
  EXPECT_TRUE(Has(complaint(R"({"gauge": "lines"})"), "'lines' is missing"));
  EXPECT_TRUE(Has(complaint(R"({"gauge": "lines", "lines": [3]})"), "list of objects"));
  EXPECT_TRUE(Has(complaint(R"({"gauge": "lines", "scael": 2, "lines": [{"line": [1,2,3,4]}]})"),
                  "did you mean scale?"));
  EXPECT_TRUE(Has(ofLine(R"({"line": [1, 2, 3]})"), "is no line"));
  EXPECT_TRUE(Has(ofLine(R"({"line": [1, 2, 1, 2]})"), "shorter than a pixel"));
  EXPECT_TRUE(Has(ofLine(R"({"line": [1, 2, 3, 99999]})"), "is no line"));
  EXPECT_TRUE(Has(ofLine(R"({"line": [1, 2, 30, 4], "mim": 3})"), "did you mean min?"));
  EXPECT_TRUE(Has(ofLine(R"({"line": [1, 2, 30, 4], "measure": "spam"})"), "did you mean span?"));
  EXPECT_TRUE(Has(ofLine(R"({"line": [1, 2, 30, 4], "band": 0})"), "whole number"));
  EXPECT_TRUE(Has(ofLine(R"({"line": [1, 2, 30, 4], "edgeWidth": 2.5})"), "whole number"));
  EXPECT_TRUE(Has(ofLine(R"({"line": [1, 2, 30, 4], "threshold": "0%"})"), "a threshold is"));
  EXPECT_TRUE(Has(ofLine(R"({"line": [1, 2, 30, 4], "min": "3"})"), "wrong kind"));
  EXPECT_TRUE(Has(ofLine(R"({"line": [1, 2, 30, 4], "min": 3, "max": 2})"), "least is above"));
  EXPECT_TRUE(
      Has(ofLine(R"({"name": "a", "line": [1, 2, 30, 4]}, {"name": "a", "line": [1, 2, 30, 4]})"),
          "two lines have the name"));
}

TEST(JsonValues, OfEveryDepthAndDamageAreReadOrRefused) {
  EXPECT_TRUE(
      Has(Complaint([] { ParseJsonObject(std::string("{\"a\": ") + std::string(100000, '[')); }),
          "inside each other"));
  EXPECT_EQ(Complaint([] { ParseJsonObject(R"({"a": [[[1]]], "b": {"c": [{}]}})"); }),
            "no complaint");
  const std::string text = SETUP;
  for (size_t length = 0; length < text.size(); length++) {
    EXPECT_NE(Complaint([&] { ParseJsonObject(text.substr(0, length)); }), "no complaint");
  }
}

TEST(LineOptions, AreParsed) {
  const LineGauge named = ParseLineGauge(" head = 1,2, 3.5,40");
  EXPECT_EQ(named.name, "head");
  EXPECT_EQ(named.line.to.x, 3.5);
  EXPECT_EQ(ParseLineGauge("1,2,3,40").name, "");
  EXPECT_TRUE(Has(Complaint([] { ParseLineGauge("1,2,3"); }), "X1,Y1,X2,Y2"));
  EXPECT_TRUE(Has(Complaint([] { ParseLineGauge("a=1,2,3,x"); }), "not a number"));
}

TEST(ValueSpreads, TellMeanAndDeviation) {
  ValueSpread spread;
  EXPECT_EQ(spread.Deviation(), 0);
  for (const double value : {2.0, 4.0, 4.0, 4.0, 5.0, 5.0, 7.0, 9.0}) spread.Add(value);
  EXPECT_EQ(spread.mean(), 5);
  EXPECT_EQ(spread.low(), 2);
  EXPECT_EQ(spread.high(), 9);
  EXPECT_NEAR(spread.Deviation(), std::sqrt(32.0 / 7), 1e-12);
}

// White pixels, which are those of texts, after lines with these names were drawn at these columns.
int64_t TextPixels(const std::vector<std::pair<std::string, double>>& lines) {
  GaugeSetup setup;
  Gauging gauging{.path = {},
                  .account = {},
                  .picture = Image(IMAGE_U8),
                  .scale = {},
                  .unit = {},
                  .part = {},
                  .results = {}};
  for (const auto& [name, x] : lines) {
    LineGauge& gauge = setup.gauges.emplace_back();
    gauge.name = name;
    gauging.results.emplace_back().line = {{x, 20}, {x, 60}};
  }
  const Image picture(IMAGE_RGB, 0, 200, 200);
  Check(ZEL_ClearPixels(picture));
  const Canvas canvas(picture);
  DrawGauged(gauging, setup, canvas);
  int64_t white = 0;
  for (int32_t y = 0; y < canvas.height(); y++) {
    white += std::count(canvas.RowAt(y), canvas.RowAt(y) + canvas.width(), RGBValue{0xFFFFFF});
  }
  return white;
}

TEST(DrawnGauges, HaveTheirTextsBesideEachOther) {
  const int64_t first = TextPixels({{"BODY", 80}}), second = TextPixels({{"SEAT", 90}});
  const int64_t third = TextPixels({{"GROOVE", 100}});
  EXPECT_GT(first, 0);
  EXPECT_EQ(TextPixels({{"BODY", 80}, {"SEAT", 90}, {"GROOVE", 100}}), first + second + third);
  // On one and the same place too.
  EXPECT_EQ(TextPixels({{"BODY", 80}, {"BODY", 80}}), 2 * first);
}

// ------------------------------------------------------------------------------------- pictures

std::string WriteShaft(const scenes::Shaft& shaft) {
  const std::string path = testing::TempDir() + shaft.file;
  Image image(IMAGE_U8);
  Check(ZEL_ArrayToImage(image, ARRAY_U16, shaft.picture.pixels.data(), shaft.picture.width,
                         shaft.picture.height));
  WritePicture(image, {}, Depth::AsImage, path, PictureFormat::Bmp);
  return path;
}

// Lines across the head and the body, and along the axis, for a shaft that lies level.
GaugeSetup ShaftSetup() {
  GaugeSetup setup;
  for (const char* line :
       {"head=155,180,155,300", "body=240,160,240,320", "length=90,240,550,240"}) {
    setup.gauges.push_back(ParseLineGauge(line));
    setup.gauges.back().object = Object::Dark;
  }
  return setup;
}

void ExpectShaftSizes(const Gauging& gauging, const scenes::Shaft& shaft) {
  ASSERT_EQ(gauging.results.size(), 3u);
  for (const GaugeResult& result : gauging.results) ASSERT_TRUE(result.value);
  EXPECT_NEAR(*gauging.results[0].value, shaft.sections[0].diameter, 0.1);
  EXPECT_NEAR(*gauging.results[1].value, shaft.sections[1].diameter, 0.1);
  EXPECT_NEAR(*gauging.results[2].value, shaft.Length(), 0.1);
}

TEST(LineGauges, FollowAPartByItsObject) {
  const std::vector<scenes::Shaft> shafts = scenes::AllShafts();
  GaugeSetup setup = ShaftSetup();
  setup.reference.follow = Follow::Object;
  EXPECT_TRUE(Has(Complaint([&] { GaugePicture(WriteShaft(shafts[1]), setup, false); }),
                  "the picture they are drawn for"));
  setup.reference.taught = FindPart(WriteShaft(shafts[0]), setup.reference, false);
  for (const size_t i : {size_t{3}, size_t{4}}) {
    SCOPED_TRACE(shafts[i].file);
    ExpectShaftSizes(GaugePicture(WriteShaft(shafts[i]), setup, false), shafts[i]);
  }
}

TEST(LineGauges, FollowAPartByThreeEdges) {
  const std::vector<scenes::Shaft> shafts = scenes::AllShafts();
  GaugeSetup setup = ShaftSetup();
  setup.reference.follow = Follow::Edges;
  // Two on the upper side of the foot, one on the end of the head.
  setup.reference.lines = {ParseLine("410,150,410,250"), ParseLine("500,150,500,270"),
                           ParseLine("80,250,200,250")};
  setup.reference.taught = FindPart(WriteShaft(shafts[0]), setup.reference, false);
  EXPECT_NEAR(setup.reference.taught->at.x, 120, 0.1);
  EXPECT_NEAR(setup.reference.taught->at.y, 240 - 22, 0.1);
  EXPECT_NEAR(setup.reference.taught->degrees, 0, 0.05);
  const scenes::Shaft moved = ShaftAt("moved.bmp", {313.4, 246.7}, -4.2, shafts[1].sections);
  ExpectShaftSizes(GaugePicture(WriteShaft(moved), setup, false), moved);
}

TEST(LineGauges, ComplainWhereThePartIsNot) {
  const std::string path = testing::TempDir() + "flat.bmp";
  WritePicture(Painted(60, 40, [](Place) { return 90; }), {}, Depth::AsImage, path,
               PictureFormat::Bmp);
  Reference reference;
  reference.follow = Follow::Object;
  EXPECT_TRUE(Has(Complaint([&] { FindPart(path, reference, false); }), "no contrast"));
  reference.follow = Follow::Edges;
  reference.lines.fill(ParseLine("5,5,50,5"));
  EXPECT_TRUE(Has(Complaint([&] { FindPart(path, reference, false); }), "no edge"));
}

}  // namespace
