// What the steps of commands and recipes take.
#include "orlune/command/options.h"

#include <cmath>
#include <map>
#include <stdexcept>

#include "orlune/gauge/line_setup.h"
#include "orlune/shared/words.h"

namespace front {
namespace {

// An option that takes one of some words.
template <class Value, class Take>
Option WordOption(const std::string& name, const std::string& type, const std::string& group,
                  const std::string& help, const std::map<std::string, Value>& values, Take take) {
  Option option{.name = name,
                .type = type,
                .group = group,
                .help = help,
                .take = [=](const std::string& text) {
                  const auto found = values.find(text);
                  if (found != values.end()) return take(found->second);
                  std::vector<std::string_view> names;
                  for (const auto& [word, value] : values) names.push_back(word);
                  throw std::invalid_argument(Quoted(text) + " is none of " + ListOf(names) +
                                              Suggestion(text, names));
                }};
  for (const auto& [word, value] : values) option.choices.push_back(word);
  return option;
}

Option Switch(const std::string& name, const std::string& group, const std::string& help,
              bool* on) {
  return {.name = name, .type = "", .group = group, .help = help, .take = [=](const std::string&) {
            *on = true;
          }};
}

Option Excluding(Option option, std::vector<std::string> others) {
  option.excludes = std::move(others);
  return option;
}

std::map<std::string, Method> Methods() {
  std::map<std::string, Method> methods;
  for (const MethodRow& row : AllMethods()) methods[std::string(row.name)] = row.method;
  return methods;
}

template <class Value>
std::map<std::string, Value> WordsOf(const std::vector<NamedRow<Value>>& rows) {
  std::map<std::string, Value> words;
  for (const NamedRow<Value>& row : rows) words[std::string(row.name)] = row.value;
  return words;
}

void Append(Options more, Options* options) {
  for (Option& option : more) options->push_back(std::move(option));
}

// ---- inspecting

Option RangeOption(const std::string& group, InspectSettings* settings) {
  return {.name = "range",
          .type = "LEVELS",
          .group = group,
          .help = "gray levels of objects: MIN:MAX, MIN: or :MAX",
          .take = [=](const std::string& text) { settings->range = ParseRange(text); }};
}

Option RegionOption(const std::string& group, std::optional<Region>* region) {
  return {.name = "region",
          .type = "LEFT,TOP,WIDTH,HEIGHT",
          .group = group,
          .help = "look only into this rectangle of each picture",
          .take = [=](const std::string& text) { *region = ParseRegion(text); }};
}

Options ColourOptions(const std::string& group, ColourRanges* colours) {
  const std::vector<std::string> levels = {"range", "method", "light", "dark"};
  return {{.name = "hue",
           .type = "DEGREES",
           .group = group,
           .help = "hues of objects: red is 0, green 120, blue 240; 340:20 is\naround red",
           .take = [=](const std::string& text) { colours->hue = ParseHues(text); },
           .excludes = levels},
          {.name = "saturation",
           .type = "PERCENT",
           .group = group,
           .help = "how far from gray the colours of objects are: MIN:MAX or MIN:",
           .take = [=](const std::string& text) { colours->saturation = ParsePercents(text); },
           .excludes = levels},
          {.name = "lightness",
           .type = "PERCENT",
           .group = group,
           .help = "how light the colours of objects are, 0 black to 100 white",
           .take = [=](const std::string& text) { colours->lightness = ParsePercents(text); },
           .excludes = levels}};
}

Options FindingOptions(InspectWork* work) {
  const std::string group = "Finding objects";
  InspectSettings* settings = &work->settings;
  Options options = {
      RangeOption(group, settings),
      Excluding(
          WordOption("method", "METHOD", group,
                     "how to find the boundary: clustering (used if nothing is said),\nentropy, "
                     "metric, moments, interclass, otsu",
                     Methods(), [=](Method chosen) { settings->method = chosen; }),
          {"range"}),
      {.name = "light",
       .type = "",
       .group = group,
       .help = "objects are lighter than the background (usual)",
       .take = [](const std::string&) {},
       .excludes = {"range"}},
      Excluding(Switch("dark", group, "objects are darker than the background", &settings->dark),
                {"range", "light"})};
  Append(ColourOptions(group, &settings->colours), &options);
  options.push_back(WordOption("connectivity", "4|8", group,
                               "pixels that touch by a corner are joined (8, usual) or not (4)",
                               std::map<std::string, bool>{{"4", false}, {"8", true}},
                               [=](bool eight) { settings->eightConnected = eight; }));
  options.push_back(RegionOption(group, &settings->region));
  options.push_back({.name = "mask",
                     .type = "FILE",
                     .group = group,
                     .help = "look only where this picture is not 0",
                     .take = [=](const std::string& text) { work->mask = text; }});
  return options;
}

Options RefiningOptions(Refinement* refinement) {
  const std::string group = "Refining objects, in this order";
  const auto disk = [&](const std::string& name, int32_t* size, const std::string& help) {
    return Option{.name = name,
                  .type = "N",
                  .group = group,
                  .help = help,
                  .take = [=](const std::string& text) { *size = ParseDisk(text); }};
  };
  return {disk("open", &refinement->open, "take away what is thinner than a disk of N pixels"),
          disk("close", &refinement->close, "fill gaps that are thinner than a disk of N pixels"),
          Switch("fill-holes", group, "holes become objects", &refinement->fillHoles),
          disk("separate", &refinement->separate,
               "cut particles apart that are joined by a neck thinner than\nN pixels"),
          Switch("reject-border", group,
                 "leave out particles that touch the edge of the picture,\nthe region or the mask",
                 &refinement->rejectBorder)};
}

Options ScaleOptions(const std::string& group, std::optional<Scale>* scale, std::string* unit) {
  return {{.name = "scale",
           .type = "SIZE",
           .group = group,
           .help = "size of a pixel in the unit, or X,Y for width and height",
           .take = [=](const std::string& text) { *scale = ParseScale(text); }},
          {.name = "unit",
           .type = "NAME",
           .group = group,
           .help = "name of the unit, as mm",
           .take = [=](const std::string& text) { *unit = text; }}};
}

Options MeasuringOptions(InspectWork* work) {
  const std::string group = "Measuring";
  InspectSettings* settings = &work->settings;
  Options options = {
      {.name = "keep",
       .type = "CONDITION",
       .group = group,
       .help = "keep only particles for which this holds, as \"AreaPixels>=50\";\nmay be given "
               "again",
       .take =
           [=](const std::string& text) {
             for (Condition& c : ParseConditions(text)) settings->keep.push_back(c);
           },
       .many = true},
      {.name = "measures",
       .type = "NAMES",
       .group = group,
       .help = "measures to list, with commas between them, or all",
       .take = [=](const std::string& text) { work->measures = ParseMeasures(text); }}};
  Append(ScaleOptions(group, &settings->scale, &settings->unit), &options);
  return options;
}

// ---- gauging

Option NumberOption(const std::string& name, const std::string& help,
                    std::optional<double>* number) {
  return {.name = name,
          .type = "SIZE",
          .group = LINES_GROUP,
          .help = help,
          .take = [=](const std::string& text) { *number = ParseNumber(text); }};
}

Option PixelsOption(const std::string& name, const std::string& help, int32_t* pixels,
                    int32_t (*parse)(double)) {
  return {.name = name,
          .type = "PIXELS",
          .group = LINES_GROUP,
          .help = help,
          .take = [=](const std::string& text) { *pixels = parse(ParseNumber(text)); }};
}

double ParseTolerance(const std::string& text) {
  const double tolerance = ParseNumber(text);
  if (!(tolerance >= 0)) throw std::invalid_argument("a tolerance is 0 or above");
  return tolerance;
}

int ParseDigit(const std::string& text) {
  const double digit = ParseNumber(text);
  if (!(digit >= 0 && digit <= 9) || digit != std::floor(digit)) {
    throw std::invalid_argument(Quoted(text) + " is no digit of 0 to 9");
  }
  return static_cast<int>(digit);
}

}  // namespace

Options InspectOptions(InspectWork* work) {
  Options options = FindingOptions(work);
  Append(RefiningOptions(&work->settings.refinement), &options);
  Append(MeasuringOptions(work), &options);
  return options;
}

Options ViewOptions(InspectSettings* settings) {
  return {WordOption("method", "METHOD", "", "how the boundary of objects is found at first",
                     Methods(), [=](Method chosen) { settings->method = chosen; }),
          Switch("dark", "", "objects are darker than the background", &settings->dark)};
}

Options FilterOptions(FilterWork* work) {
  return {{.name = "steps",
           .type = "STEPS",
           .group = "",
           .help = "what to do, with semicolons between the steps, as\n\"median 5; edges sobel "
                   "20\"",
           .take = [=](const std::string& text) { work->steps = ParseChain(text); }},
          {.name = "mask",
           .type = "FILE",
           .group = "",
           .help = "filter only where this picture, of the same size, is not 0",
           .take = [=](const std::string& text) { work->mask = text; }}};
}

Options LineOptions(LineGauge* line) {
  return {
      WordOption("measure", "MEASURE", LINES_GROUP,
                 "what to measure along it: span, pair, start, end or edges",
                 WordsOf(AllLineMeasures()), [=](LineMeasure measure) { line->measure = measure; }),
      WordOption("object", "KIND", LINES_GROUP,
                 "what is measured is dark or light beside what is around it, or any",
                 WordsOf(AllObjects()), [=](Object object) { line->object = object; }),
      NumberOption("min", "least size that passes, in the unit", &line->limits.low),
      NumberOption("max", "greatest size that passes", &line->limits.high),
      NumberOption("nominal", "of several pairs take the one that is nearest to this size",
                   &line->nominal),
      {.name = "threshold",
       .type = "LEVELS|PERCENT%",
       .group = LINES_GROUP,
       .help = "least contrast of an edge in gray levels, or as part of the range\non the "
               "line, as 30% (usual)",
       .take = [=](const std::string& text) { ParseEdgeThreshold(text, &line->search); }},
      PixelsOption("edge-width", "pixels on either side of an edge that are looked at; usual is 3",
                   &line->search.edgeWidth, ParseEdgeWidth),
      PixelsOption("band", "pixels across the line whose mean is looked at; usual is 5",
                   &line->search.band, ParseBand)};
}

Options GaugeOptions(GaugeWork* work) {
  const std::string group = "Set-up";
  GaugeSetup* setup = &work->setup;
  const auto follow = [=](Object object) {
    setup->reference.follow = Follow::Object;
    setup->reference.object = object;
  };
  Options options = {
      {.name = "line",
       .type = "[NAME=]X1,Y1,X2,Y2",
       .group = LINES_GROUP,
       .help = "a line to measure along, with a name or without; may be given\nagain",
       .take = [=](const std::string& text) { setup->gauges.push_back(ParseLineGauge(text)); },
       .many = true}};
  Append(LineOptions(&work->line), &options);
  options.push_back({.name = "setup",
                     .type = "FILE",
                     .group = group,
                     .help = "take lines, limits and reference from this file",
                     .take = [=](const std::string& text) { work->setupFile = text; }});
  options.push_back(Excluding(
      WordOption(
          "follow", "dark|light", group, "let the lines follow the largest dark or light object",
          std::map<std::string, Object>{{"dark", Object::Dark}, {"light", Object::Light}}, follow),
      {"setup"}));
  options.push_back({.name = "master",
                     .type = "FILE",
                     .group = group,
                     .help = "picture that the lines are drawn for, where they follow",
                     .take = [=](const std::string& text) { work->master = text; }});
  Append(ScaleOptions(group, &setup->scale, &setup->unit), &options);
  return options;
}

Options MatchOptions(MatchWork* work) {
  const std::string group = "Matching";
  MatchSettings* settings = &work->settings;
  InspectSettings* finding = &settings->finding;
  return {RangeOption(group, finding),
          Excluding(WordOption("method", "METHOD", group,
                               "how to find the boundary, as in orlune inspect", Methods(),
                               [=](Method chosen) { finding->method = chosen; }),
                    {"range"}),
          Excluding(Switch("dark", group, "objects are darker than the background", &finding->dark),
                    {"range"}),
          Switch("fill-holes", group, "holes count to the object", &finding->refinement.fillHoles),
          Switch("reject-border", group, "leave out objects that touch the edge of the picture",
                 &finding->refinement.rejectBorder),
          {.name = "tolerance",
           .type = "PART",
           .group = group,
           .help = "by how much of them the invariants of a shape may differ; usual\nis 0.05",
           .take = [=](const std::string& text) { settings->tolerance = ParseTolerance(text); }},
          {.name = "scales",
           .type = "MIN:MAX",
           .group = group,
           .help = "sizes by the template's, as 0.5:2; otherwise areas within 10\npercent",
           .take = [=](const std::string& text) { settings->scales = ParseRange(text); }}};
}

Options BarcodeOptions(BarcodeSettings* settings) {
  std::map<std::string, BarcodeKind> kinds;
  for (const BarcodeKindRow& row : AllBarcodeKinds()) kinds[std::string(row.name)] = row.kind;
  return {WordOption("kind", "KIND", BARCODES_GROUP,
                     "codabar, code39, code93, code128, ean8, ean13, interleaved,\nmsi or upca",
                     kinds, [=](BarcodeKind kind) { settings->kind = kind; }),
          RegionOption(BARCODES_GROUP, &settings->region),
          Switch("validate", BARCODES_GROUP,
                 "ask for the check character of codabar, code39, interleaved\nand msi",
                 &settings->validate),
          {.name = "first-digit",
           .type = "DIGIT",
           .group = BARCODES_GROUP,
           .help = "first digit of an ean13; otherwise the one that fits best",
           .take = [=](const std::string& text) { settings->firstDigit = ParseDigit(text); }}};
}

}  // namespace front
