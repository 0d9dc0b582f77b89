// Set-ups of line gauges: as files, and as words of the command line.
#include "orlune/gauge/line_setup.h"

#include <algorithm>
#include <cmath>
#include <set>
#include <stdexcept>

#include "orlune/shared/json_values.h"
#include "orlune/shared/numbers.h"
#include "orlune/shared/reports.h"
#include "orlune/shared/words.h"

namespace front {
namespace {

[[noreturn]] void Complain(const std::string& what) {
  throw std::invalid_argument("no set-up: " + what);
}

Line LineOf(const Numbers& sides, const std::string& text) {
  const auto isFar = [](double side) { return !(std::abs(side) <= FARTHEST); };
  if (sides.size() != 4 || std::any_of(sides.begin(), sides.end(), isFar)) {
    throw std::invalid_argument(text + " is no line: write X1,Y1,X2,Y2, as in 120,40,120,200.5");
  }
  const Line line{{sides[0], sides[1]}, {sides[2], sides[3]}};
  if (line.Length() < 1)
    throw std::invalid_argument(text + " is no line: it is shorter than a pixel");
  return line;
}

int32_t WholeWithin(double pixels, int32_t most, const std::string& what) {
  if (!(pixels >= 1 && pixels <= most) || pixels != std::floor(pixels)) {
    throw std::invalid_argument(what + " is a whole number of 1 to " + std::to_string(most));
  }
  return static_cast<int32_t>(pixels);
}

// ---- reading

template <class Value>
void TakeName(const Members& members, const std::string& name,
              const std::vector<NamedRow<Value>>& rows, Value* value) {
  std::string word;
  if (!members.Take(name, &word)) return;
  std::vector<std::string_view> names;
  for (const NamedRow<Value>& row : rows) {
    names.push_back(row.name);
    if (row.name != word) continue;
    *value = row.value;
    return;
  }
  Complain(Quoted(word) + " is none of " + ListOf(names) + Suggestion(word, names));
}

std::optional<double> TakeNumber(const Members& members, const std::string& name) {
  double number = 0;
  return members.Take(name, &number) ? std::optional(number) : std::nullopt;
}

// Leaves what the members say nothing of.
void TakeSearch(const Members& members, EdgeSearch* search) {
  std::string threshold;
  if (members.Is<double>("threshold")) {
    threshold = Exact(*TakeNumber(members, "threshold"));
  } else {
    members.Take("threshold", &threshold);
  }
  if (!threshold.empty()) ParseEdgeThreshold(threshold, search);
  if (const auto width = TakeNumber(members, "edgeWidth"))
    search->edgeWidth = ParseEdgeWidth(*width);
  if (const auto band = TakeNumber(members, "band")) search->band = ParseBand(*band);
}

std::optional<Scale> TakeScale(const Members& members) {
  const Numbers sides = members.TakeNumbers("scale");
  if (sides.empty()) return std::nullopt;
  const auto isNone = [](double side) { return !(side > 0 && side <= 1e30); };
  if (sides.size() > 2 || std::any_of(sides.begin(), sides.end(), isNone)) {
    Complain("'scale' is no size of a pixel: SIZE or [X, Y]");
  }
  return Scale{static_cast<float>(sides.front()), static_cast<float>(sides.back())};
}

const std::vector<NamedRow<Follow>>& AllFollows() {
  static const std::vector<NamedRow<Follow>> ROWS = {{Follow::Nothing, "nothing", ""},
                                                     {Follow::Object, "object", ""},
                                                     {Follow::Edges, "edges", ""}};
  return ROWS;
}

Reference TakeReference(const Members& all, const EdgeSearch& search, std::string* master) {
  Reference reference;
  reference.search = search;
  JsonObject object;
  if (!all.Take("reference", &object)) return reference;
  const Members members(object);
  reference.follow = Follow::Object;
  TakeName(members, "follow", AllFollows(), &reference.follow);
  TakeName(members, "object", AllObjects(), &reference.object);
  if (reference.follow == Follow::Object && reference.object == Object::Any) {
    Complain("an object to follow is 'dark' or 'light'");
  }
  TakeSearch(members, &reference.search);
  members.Take("master", master);
  const std::vector<Numbers> lines = members.TakeLists("lines");
  if (reference.follow == Follow::Edges) {
    if (lines.size() != reference.lines.size())
      Complain("the reference by edges has three 'lines'");
    for (size_t i = 0; i < lines.size(); i++) {
      reference.lines[i] = LineOf(lines[i], "no set-up: a list of 'lines'");
    }
  }
  const Numbers taught = members.TakeNumbers("taught");
  if (!taught.empty()) {
    if (taught.size() != 3) Complain("'taught' is no place and angle: [X, Y, DEGREES]");
    reference.taught = Pose{{taught[0], taught[1]}, taught[2]};
  }
  members.RefuseOthers();
  return reference;
}

LineGauge TakeGauge(const JsonValue& value, const EdgeSearch& search) {
  const JsonObject* object = std::get_if<JsonObject>(&value.value);
  if (object == nullptr) Complain("'lines' is no list of objects");
  const Members members(*object);
  LineGauge gauge;
  gauge.search = search;
  members.Take("name", &gauge.name);
  gauge.line = LineOf(members.TakeNumbers("line"), "no set-up: 'line' of " + Quoted(gauge.name));
  TakeName(members, "measure", AllLineMeasures(), &gauge.measure);
  TakeName(members, "object", AllObjects(), &gauge.object);
  gauge.nominal = TakeNumber(members, "nominal");
  gauge.limits = {TakeNumber(members, "min"), TakeNumber(members, "max")};
  TakeSearch(members, &gauge.search);
  members.RefuseOthers();
  return gauge;
}

// ---- writing

std::string ListText(const Numbers& numbers) {
  std::string text;
  for (const double number : numbers) text += (text.empty() ? "" : ", ") + Exact(number);
  return "[" + text + "]";
}

std::string LineText(const Line& line) {
  return ListText({line.from.x, line.from.y, line.to.x, line.to.y});
}

std::string SearchText(const EdgeSearch& search) {
  const std::string threshold =
      search.threshold ? Exact(*search.threshold) : Exact(search.share * 100) + "%";
  return "\"threshold\": " + JsonText(threshold) +
         ", \"edgeWidth\": " + std::to_string(search.edgeWidth) +
         ", \"band\": " + std::to_string(search.band);
}

std::string NameText(std::string_view name) {
  return JsonText(std::string(name));
}

std::string ReferenceText(const Reference& reference) {
  const bool byEdges = reference.follow == Follow::Edges;
  std::string text = std::string("{\"follow\": ") + (byEdges ? "\"edges\"" : "\"object\"") +
                     ", \"object\": " + NameText(NameOf(reference.object));
  if (byEdges) {
    std::string lines;
    for (const Line& line : reference.lines) lines += (lines.empty() ? "" : ", ") + LineText(line);
    text += ", \"lines\": [" + lines + "], " + SearchText(reference.search);
  }
  if (reference.taught) {
    const Pose& pose = *reference.taught;
    text += ", \"taught\": " + ListText({pose.at.x, pose.at.y, pose.degrees});
  }
  return text + "}";
}

std::string GaugeText(const LineGauge& gauge) {
  std::string text = "    {\"name\": " + JsonText(gauge.name) +
                     ", \"line\": " + LineText(gauge.line) +
                     ", \"measure\": " + NameText(NameOf(gauge.measure)) +
                     ", \"object\": " + NameText(NameOf(gauge.object));
  const auto add = [&](const char* name, const std::optional<double>& number) {
    if (number) text += ", \"" + std::string(name) + "\": " + Exact(*number);
  };
  add("nominal", gauge.nominal);
  add("min", gauge.limits.low);
  add("max", gauge.limits.high);
  return text + ",\n     " + SearchText(gauge.search) + "}";
}

}  // namespace

std::string SetupText(const GaugeSetup& setup) {
  std::string text = "{\n  \"gauge\": \"lines\"";
  if (setup.scale) {
    text += ",\n  \"scale\": [" + Exact(setup.scale->x) + ", " + Exact(setup.scale->y) + "]";
  }
  if (!setup.unit.empty()) text += ",\n  \"unit\": " + JsonText(setup.unit);
  if (setup.reference.follow != Follow::Nothing) {
    text += ",\n  \"reference\": " + ReferenceText(setup.reference);
  }
  std::string lines;
  for (const LineGauge& gauge : setup.gauges)
    lines += (lines.empty() ? "\n" : ",\n") + GaugeText(gauge);
  return text + ",\n  \"lines\": [" + lines + "\n  ]\n}\n";
}

ParsedGaugeSetup ParseGaugeSetup(const std::string& text) {
  const JsonObject object = ParseJsonObject(text);
  const Members members(object);
  std::string kind;
  members.Take("gauge", &kind);
  if (kind != "lines") Complain("\"gauge\" is not 'lines'");
  ParsedGaugeSetup parsed;
  GaugeSetup& setup = parsed.setup;
  setup.scale = TakeScale(members);
  members.Take("unit", &setup.unit);
  EdgeSearch search;  // of all that say nothing themselves
  TakeSearch(members, &search);
  setup.reference = TakeReference(members, search, &parsed.master);
  JsonList lines;
  members.Take("lines", &lines);
  if (lines.empty()) Complain("'lines' is missing");
  for (const JsonValue& line : lines) setup.gauges.push_back(TakeGauge(line, search));
  members.RefuseOthers();
  NameLines(&setup);
  return parsed;
}

LineGauge ParseLineGauge(const std::string& text) {
  LineGauge gauge;
  const size_t sign = text.find('=');
  if (sign != std::string::npos) gauge.name = Trim(std::string_view(text).substr(0, sign));
  gauge.line = ParseLine(std::string_view(text).substr(sign == std::string::npos ? 0 : sign + 1));
  return gauge;
}

Line ParseLine(std::string_view text) {
  Numbers sides;
  for (const std::string_view side : Split(text, ',')) sides.push_back(ParseNumber(side));
  return LineOf(sides, Quoted(text));
}

void ParseEdgeThreshold(std::string_view text, EdgeSearch* search) {
  const bool isShare = text.ends_with('%');
  if (isShare) text.remove_suffix(1);
  const double number = ParseNumber(text);
  if (!(number > 0 && number <= (isShare ? 100 : 1e30))) {
    throw std::invalid_argument("a threshold is a number of gray levels, or 1% to 100%");
  }
  search->threshold = isShare ? std::nullopt : std::optional(number);
  if (isShare) search->share = number / 100;
}

int32_t ParseEdgeWidth(double pixels) {
  return WholeWithin(pixels, WIDEST_EDGE, "the width of an edge");
}

int32_t ParseBand(double pixels) {
  return WholeWithin(pixels, WIDEST_BAND, "the band");
}

void NameLines(GaugeSetup* setup) {
  std::set<std::string> names;
  for (size_t i = 0; i < setup->gauges.size(); i++) {
    LineGauge& gauge = setup->gauges[i];
    if (gauge.name.empty()) gauge.name = std::to_string(i + 1);
    if (!names.insert(gauge.name).second) {
      throw std::invalid_argument("two lines have the name " + Quoted(gauge.name));
    }
    const Limits& limits = gauge.limits;
    if (limits.low && limits.high && *limits.low > *limits.high) {
      throw std::invalid_argument("no value of " + Quoted(gauge.name) +
                                  " is within limits of which the least is above the most");
    }
  }
}

}  // namespace front
