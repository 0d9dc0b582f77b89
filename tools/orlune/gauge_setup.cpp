// Set-up files: JSON objects of numbers, texts, switches and lists of numbers.
#include "orlune/gauge_setup.h"

#include <cmath>
#include <fstream>
#include <map>
#include <sstream>
#include <stdexcept>
#include <variant>

#include "orlune/numbers.h"
#include "orlune/reports.h"
#include "orlune/words.h"

namespace front {
namespace {

constexpr size_t MOST_BYTES_OF_SETUP = 1 << 20;

using Numbers = std::vector<double>;
using Value = std::variant<bool, double, std::string, std::vector<Numbers>>;

// As much of JSON as set-ups need. A list of numbers is a list of one list.
class SetupParser {
 public:
  explicit SetupParser(const std::string& text) : text_(text) {}

  std::map<std::string, Value> Parse() {
    std::map<std::string, Value> members;
    Expect('{');
    while (!Takes('}')) {
      if (!members.empty()) Expect(',');
      const std::string name = Text();
      Expect(':');
      if (!members.emplace(name, Member()).second) Fail(Quoted(name) + " stands there twice");
    }
    if (Next() != 0) Fail("something follows behind its end");
    return members;
  }

 private:
  [[noreturn]] void Fail(const std::string& what) const {
    throw std::invalid_argument("no set-up: " + what + " (byte " + std::to_string(at_) + ")");
  }
  // Without what may stand between words; 0 at the end.
  char Next() {
    while (at_ < text_.size() && std::string(" \t\r\n").find(text_[at_]) != std::string::npos)
      at_++;
    return at_ < text_.size() ? text_[at_] : '\0';
  }
  bool Takes(char wanted) {
    if (Next() != wanted) return false;
    at_++;
    return true;
  }
  void Expect(char wanted) {
    if (!Takes(wanted)) Fail(std::string("a ") + wanted + " is missing");
  }
  std::string Text() {
    Expect('"');
    std::string text;
    while (at_ < text_.size() && text_[at_] != '"') {
      if (text_[at_] == '\\' && ++at_ < text_.size() && text_[at_] != '"' && text_[at_] != '\\') {
        Fail("texts have no other escapes than of quotes");
      }
      if (at_ < text_.size()) text += text_[at_++];
    }
    if (at_++ >= text_.size()) Fail("a text does not end");
    return text;
  }
  double Number() {
    Next();
    size_t end = at_;
    while (end < text_.size() &&
           std::string("+-.0123456789eE").find(text_[end]) != std::string::npos) {
      end++;
    }
    try {
      const double number = ParseNumber(std::string_view(text_).substr(at_, end - at_));
      at_ = end;
      return number;
    } catch (const std::invalid_argument& error) {
      Fail(error.what());
    }
  }
  Numbers List() {
    Numbers numbers;
    Expect('[');
    while (!Takes(']')) {
      if (!numbers.empty()) Expect(',');
      numbers.push_back(Number());
    }
    return numbers;
  }
  std::vector<Numbers> Lists() {
    const size_t start = at_;
    Expect('[');
    if (Next() != '[') {
      at_ = start;
      return {List()};
    }
    std::vector<Numbers> lists;
    while (!Takes(']')) {
      if (!lists.empty()) Expect(',');
      lists.push_back(List());
    }
    return lists;
  }
  Value Member() {
    const char first = Next();
    if (first == '"') return Text();
    if (first == '[') return Lists();
    for (const bool truth : {true, false}) {
      const std::string_view word = truth ? "true" : "false";
      if (text_.compare(at_, word.size(), word) != 0) continue;
      at_ += word.size();
      return truth;
    }
    return Number();
  }

  const std::string& text_;
  size_t at_ = 0;
};

// The members of a set-up, each of the type that it is asked for as.
class Members {
 public:
  Members(const std::string& text, const std::string& kind) : members_(SetupParser(text).Parse()) {
    const auto found = members_.find("gauge");
    const auto* given =
        found == members_.end() ? nullptr : std::get_if<std::string>(&found->second);
    if (!given || *given != kind) {
      throw std::invalid_argument("no set-up of a " + kind + ": \"gauge\" is not " + Quoted(kind));
    }
  }

  // Leaves a value as it is where the file says nothing.
  template <class T>
  void Take(const std::string& name, T* value) const {
    const auto found = members_.find(name);
    if (found == members_.end()) return;
    const T* given = std::get_if<T>(&found->second);
    if (!given) throw std::invalid_argument("no set-up: " + Quoted(name) + " is of a wrong kind");
    *value = *given;
  }
  std::vector<Numbers> Lists(const std::string& name) const {
    std::vector<Numbers> lists;
    Take(name, &lists);
    if (lists.empty()) throw std::invalid_argument("no set-up: " + Quoted(name) + " is missing");
    return lists;
  }
  PointFloat Point(const std::string& name) const {
    const std::vector<Numbers> lists = Lists(name);
    if (lists.size() != 1 || lists[0].size() != 2) {
      throw std::invalid_argument("no set-up: " + Quoted(name) + " is no point: [X, Y]");
    }
    return {static_cast<float>(lists[0][0]), static_cast<float>(lists[0][1])};
  }

 private:
  std::map<std::string, Value> members_;
};

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
  const Members members(text, "meter");
  MeterSetup setup;
  setup.base = members.Point("base");
  setup.start = members.Point("start");
  setup.end = members.Point("end");
  members.Take("light", &setup.isLight);
  members.Take("low", &setup.low);
  members.Take("high", &setup.high);
  members.Take("unit", &setup.unit);
  return setup;
}

DisplaySetup ParseDisplaySetup(const std::string& text) {
  const Members members(text, "lcd");
  DisplaySetup setup;
  for (const Numbers& corners : members.Lists("digits")) {
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

std::string ReadSetupFile(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  std::string text(MOST_BYTES_OF_SETUP, '\0');
  file.read(text.data(), static_cast<std::streamsize>(text.size()));
  if (file.bad() || (!file.eof() && !file)) throw std::invalid_argument("cannot be read");
  if (!file.eof()) throw std::invalid_argument("too long for a set-up");
  text.resize(static_cast<size_t>(file.gcount()));
  return text;
}

}  // namespace front
