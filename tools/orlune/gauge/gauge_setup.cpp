// Set-up files of gauges: JSON objects of numbers, texts, switches and lists of numbers.
#include "orlune/gauge/gauge_setup.h"

#include <cmath>
#include <stdexcept>

#include "orlune/shared/json_values.h"
#include "orlune/shared/numbers.h"
#include "orlune/shared/reports.h"
#include "orlune/shared/words.h"

namespace front {
namespace {

// The object of a set-up of this kind.
JsonObject ObjectOf(const std::string& text, const std::string& kind) {
  JsonObject object = ParseJsonObject(text);
  std::string given;
  Members(object).Take("gauge", &given);
  if (given != kind) {
    throw std::invalid_argument("no set-up of a " + kind + ": \"gauge\" is not " + Quoted(kind));
  }
  return object;
}

std::vector<Numbers> ListsOf(const Members& members, const std::string& name) {
  std::vector<Numbers> lists = members.TakeLists(name);
  if (lists.empty()) throw std::invalid_argument("no set-up: " + Quoted(name) + " is missing");
  return lists;
}

PointFloat PointOf(const Members& members, const std::string& name) {
  const std::vector<Numbers> lists = ListsOf(members, name);
  if (lists.size() != 1 || lists[0].size() != 2) {
    throw std::invalid_argument("no set-up: " + Quoted(name) + " is no point: [X, Y]");
  }
  return {static_cast<float>(lists[0][0]), static_cast<float>(lists[0][1])};
}

std::string PointText(PointFloat point) {
  return "[" + Exact(point.x) + ", " + Exact(point.y) + "]";
}

std::string TruthText(bool truth) {
  return truth ? "true" : "false";
}

int32_t WholeNumber(double number) {
  if (number != std::floor(number) || std::fabs(number) > 0x7FFFFFFF) {
    throw std::invalid_argument("no set-up: " + Exact(number) + " is no place in a picture");
  }
  return static_cast<int32_t>(number);
}

}  // namespace

std::string SetupText(const MeterSetup& setup) {
  return "{\n  \"gauge\": \"meter\",\n  \"base\": " + PointText(setup.base) +
         ",\n  \"start\": " + PointText(setup.start) + ",\n  \"end\": " + PointText(setup.end) +
         ",\n  \"light\": " + TruthText(setup.isLight) + ",\n  \"low\": " + Exact(setup.low) +
         ",\n  \"high\": " + Exact(setup.high) + ",\n  \"unit\": " + JsonText(setup.unit) + "\n}\n";
}

std::string SetupText(const DisplaySetup& setup) {
  std::string digits;
  for (const DisplaySetup::Digit& digit : setup.digits) {
    std::string corners;
    for (const int32_t side : digit)
      corners += (corners.empty() ? "" : ", ") + std::to_string(side);
    digits += (digits.empty() ? "\n    [" : ",\n    [") + corners + "]";
  }
  return "{\n  \"gauge\": \"lcd\",\n  \"digits\": [" + digits +
         "\n  ],\n  \"light\": " + TruthText(setup.isLight) +
         ",\n  \"threshold\": " + Exact(setup.threshold) +
         ",\n  \"sign\": " + TruthText(setup.hasSign) +
         ",\n  \"points\": " + TruthText(setup.hasPoints) + "\n}\n";
}

MeterSetup ParseMeterSetup(const std::string& text) {
  const JsonObject object = ObjectOf(text, "meter");
  const Members members(object);
  MeterSetup setup;
  setup.base = PointOf(members, "base");
  setup.start = PointOf(members, "start");
  setup.end = PointOf(members, "end");
  members.Take("light", &setup.isLight);
  members.Take("low", &setup.low);
  members.Take("high", &setup.high);
  members.Take("unit", &setup.unit);
  return setup;
}

DisplaySetup ParseDisplaySetup(const std::string& text) {
  const JsonObject object = ObjectOf(text, "lcd");
  const Members members(object);
  DisplaySetup setup;
  for (const Numbers& corners : ListsOf(members, "digits")) {
    if (corners.size() != 4 && corners.size() != 8) {
      throw std::invalid_argument("no set-up: a digit has two or four corners");
    }
    setup.digits.emplace_back();
    for (const double side : corners) setup.digits.back().push_back(WholeNumber(side));
  }
  members.Take("light", &setup.isLight);
  members.Take("threshold", &setup.threshold);
  members.Take("sign", &setup.hasSign);
  members.Take("points", &setup.hasPoints);
  return setup;
}

}  // namespace front
