// Reading of conditions, ranges and lists of measures.
#include "orlune/inspect/selection.h"

#include <cmath>
#include <stdexcept>

#include "orlune/shared/words.h"

namespace front {
namespace {

Condition ParseCondition(std::string_view text) {
  const std::string quoted = Quoted(text);
  const size_t sign = text.find_first_of("<>=!");
  if (sign == std::string_view::npos) {
    throw std::invalid_argument(quoted +
                                " has no comparison: write a measure, one of >= <= > < =, and a "
                                "number, as in AreaPixels>=50");
  }
  const size_t signEnd = std::min(text.find_first_not_of("<>=!", sign), text.size());
  const std::string_view comparison = text.substr(sign, signEnd - sign);
  const std::string_view name = Trim(text.substr(0, sign));
  const std::string_view bound = Trim(text.substr(signEnd));
  if (name.empty()) {
    throw std::invalid_argument(quoted + " names no measure before the " + Quoted(comparison));
  }
  if (bound.empty()) {
    throw std::invalid_argument(quoted + " has no number after the " + Quoted(comparison));
  }

  Condition condition;
  condition.measure = &FindMeasure(name);
  if ((comparison == "=" || comparison == "==") && bound.find(':') != std::string_view::npos) {
    condition.range = ParseRange(bound);
    return condition;
  }
  const double value = ParseNumber(bound);
  if (comparison == ">=" || comparison == ">") {
    condition.range.low = value;
    condition.lowExcluded = comparison == ">";
  } else if (comparison == "<=" || comparison == "<") {
    condition.range.high = value;
    condition.highExcluded = comparison == "<";
  } else if (comparison == "=" || comparison == "==") {
    condition.range = {value, value};
  } else {
    throw std::invalid_argument(Quoted(comparison) + " in " + quoted +
                                " is no comparison: use >= <= > < or =");
  }
  return condition;
}

}  // namespace

Range ParseRange(std::string_view text) {
  const size_t colon = text.find(':');
  if (colon == std::string_view::npos) {
    throw std::invalid_argument(Quoted(text) +
                                " is no range: write MIN:MAX, MIN: or :MAX, as in 100:200");
  }
  const std::string_view low = Trim(text.substr(0, colon)), high = Trim(text.substr(colon + 1));
  if (low.empty() && high.empty()) {
    throw std::invalid_argument("the range ':' has no end: write MIN:MAX, MIN: or :MAX");
  }
  Range range = EVERYTHING;
  if (!low.empty()) range.low = ParseNumber(low);
  if (!high.empty()) range.high = ParseNumber(high);
  if (range.low > range.high) {
    throw std::invalid_argument("the range " + Quoted(text) +
                                " is empty: its low end is above its high end");
  }
  return range;
}

Scale ParseScale(std::string_view text) {
  const std::vector<std::string_view> sides = Split(text, ',');
  if (sides.size() > 2) throw std::invalid_argument("give one size, or two with a comma between");
  const Scale scale{static_cast<float>(ParseNumber(sides.front())),
                    static_cast<float>(ParseNumber(sides.back()))};
  if (!(scale.x > 0 && scale.y > 0 && std::isfinite(scale.x) && std::isfinite(scale.y))) {
    throw std::invalid_argument("the size of a pixel is above 0, and a 32-bit float holds it");
  }
  return scale;
}

bool Condition::Holds(double value) const {
  if (!std::isfinite(value)) return false;  // no number is no such number
  const bool aboveLow = lowExcluded ? value > range.low : value >= range.low;
  const bool belowHigh = highExcluded ? value < range.high : value <= range.high;
  return aboveLow && belowHigh;
}

std::vector<Condition> ParseConditions(std::string_view text) {
  std::vector<Condition> conditions;
  for (const std::string_view piece : Split(text, ',')) {
    conditions.push_back(ParseCondition(piece));
  }
  return conditions;
}

std::vector<const Measure*> ParseMeasures(std::string_view text) {
  std::vector<const Measure*> measures;
  if (Trim(text) == "all") {
    for (const Measure& measure : AllMeasures()) {
      if (measure.maker != Maker::LibraryByName) measures.push_back(&measure);
    }
    return measures;
  }
  for (const std::string_view piece : Split(text, ',')) {
    if (piece.empty()) throw std::invalid_argument("a name is missing: write A,B,C");
    measures.push_back(&FindMeasure(piece));
  }
  return measures;
}

MeasureSet SetOf(const std::vector<const Measure*>& measures) {
  MeasureSet set;
  for (const Measure* measure : measures) set.set(measure->number);
  return set;
}

}  // namespace front
