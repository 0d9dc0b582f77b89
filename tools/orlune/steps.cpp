// The steps of filter chains: what they are called, what they take, what they do.
#include "orlune/steps.h"

#include <algorithm>
#include <cmath>
#include <iomanip>
#include <limits>
#include <sstream>
#include <stdexcept>

#include "orlune/morphology_steps.h"
#include "orlune/numbers.h"
#include "orlune/words.h"

namespace front {
namespace {

using Kind = Parameter::Kind;

constexpr double LARGEST_SIDE = 1000;
constexpr double UNLIMITED = std::numeric_limits<float>::max();

Parameter Size() {
  return {.name = "SIZE", .kind = Kind::Window, .low = 1, .high = LARGEST_SIDE};
}

std::string SizeText(const Window& window) {
  return std::to_string(window.width) + "x" + std::to_string(window.height);
}

// Of a window that comes first.
int32_t WindowBorder(const Arguments& arguments) {
  return std::max(arguments[0].window.width, arguments[0].window.height) / 2;
}

int32_t Rank(ImageRef image, ImageRef mask, const Window& window, int32_t order) {
  return ZEL_NthOrder(image, mask, 0, window.width, window.height, order);
}

std::vector<Step> MakeFilters() {
  return {
      {.name = "edges",
       .parameters = {{.name = "METHOD",
                       .kind = Kind::Choice,
                       .choices = {{"differentiation", EDGE_DIFFERENTIATION},
                                   {"gradient", EDGE_GRADIENT},
                                   {"prewitt", EDGE_PREWITT},
                                   {"roberts", EDGE_ROBERTS},
                                   {"sigma", EDGE_SIGMA},
                                   {"sobel", EDGE_SOBEL}}},
                      {.name = "THRESHOLD",
                       .kind = Kind::Real,
                       .low = 0,
                       .high = UNLIMITED,
                       .optional = true}},
       .meaning = "how much pixels differ from their neighbours, 0 below the threshold",
       .complaint = [](const Arguments& a) -> std::string {
         const bool ignored = a[0].Whole() == EDGE_SIGMA && a[1].number > 0;
         return ignored ? "the method sigma has no threshold" : "";
       },
       .border = [](const Arguments&) { return 1; },
       .apply =
           [](ImageRef image, ImageRef mask, const Arguments& a) {
             return ZEL_GrayEdge(image, mask, 0, a[0].Whole(), a[1].Real());
           }},

      {.name = "lowpass",
       .parameters = {Size(), {.name = "TOLERANCE", .kind = Kind::Real, .low = 0, .high = 100}},
       .meaning = "the neighbours' mean, where a pixel differs from it by more percent",
       .border = WindowBorder,
       .apply =
           [](ImageRef image, ImageRef mask, const Arguments& a) {
             const Window& window = a[0].window;
             return ZEL_LowPass(image, mask, 0, window.width, window.height, a[1].Real());
           }},

      {.name = "maximum",
       .parameters = {Size()},
       .meaning = "the lightest pixel of the window",
       .border = WindowBorder,
       .apply =
           [](ImageRef image, ImageRef mask, const Arguments& a) {
             return Rank(image, mask, a[0].window, a[0].window.Pixels() - 1);
           }},

      {.name = "median",
       .parameters = {Size()},
       .meaning = "the middle pixel of the window by value",
       .border = WindowBorder,
       .apply =
           [](ImageRef image, ImageRef mask, const Arguments& a) {
             return Rank(image, mask, a[0].window, a[0].window.Pixels() / 2);
           }},

      {.name = "minimum",
       .parameters = {Size()},
       .meaning = "the darkest pixel of the window",
       .border = WindowBorder,
       .apply = [](ImageRef image, ImageRef mask,
                   const Arguments& a) { return Rank(image, mask, a[0].window, 0); }},

      {.name = "rank",
       .parameters = {Size(),
                      {.name = "ORDER",
                       .kind = Kind::Whole,
                       .low = 0,
                       .high = LARGEST_SIDE * LARGEST_SIDE - 1}},
       .meaning = "pixel ORDER of the window by value; SIZE x SIZE - 1 is the lightest",
       .complaint = [](const Arguments& a) -> std::string {
         const int32_t last = a[0].window.Pixels() - 1;
         return a[1].Whole() <= last ? ""
                                     : "the order must be 0 to " + std::to_string(last) +
                                           " in a window of " + SizeText(a[0].window);
       },
       .border = WindowBorder,
       .apply = [](ImageRef image, ImageRef mask,
                   const Arguments& a) { return Rank(image, mask, a[0].window, a[1].Whole()); }},
  };
}

std::vector<Step> MakeSteps() {
  std::vector<Step> steps = MakeFilters();
  for (Step& step : MorphologySteps()) steps.push_back(std::move(step));
  return steps;
}

std::vector<std::string_view> WordsOf(const Parameter& parameter) {
  std::vector<std::string_view> words;
  for (const Choice& choice : parameter.choices) words.push_back(choice.word);
  return words;
}

// What a parameter may be: "0 to 100".
std::string RangeText(const Parameter& parameter) {
  if (parameter.kind == Kind::Choice) return ListOf(WordsOf(parameter));
  std::string range = Short(parameter.low);
  if (parameter.high >= UNLIMITED) {
    range += " or more";
  } else {
    range += " to " + Fixed(parameter.high, parameter.high == std::floor(parameter.high) ? 0 : 2);
  }
  return parameter.kind == Kind::Window ? range + ", or WIDTHxHEIGHT" : range;
}

// What an optional parameter is where it is left out.
std::string DefaultText(const Parameter& parameter) {
  for (const Choice& choice : parameter.choices) {
    if (choice.number == 0) return std::string(choice.word);
  }
  return "0";
}

// "median SIZE"
std::string Usage(const Step& step) {
  std::string usage(step.name);
  for (const Parameter& parameter : step.parameters) {
    const std::string name(parameter.name);
    usage += parameter.optional ? " [" + name + "]" : " " + name;
  }
  return usage;
}

// Throws std::invalid_argument, here and below without saying which argument it is.
double NumberOf(const Parameter& parameter, std::string_view text) {
  const double number = ParseNumber(text);
  const bool whole = parameter.kind == Kind::Real || number == std::floor(number);
  if (!whole || number < parameter.low || number > parameter.high) {
    throw std::invalid_argument("out of range");
  }
  return number;
}

Window WindowOf(const Parameter& parameter, std::string_view text) {
  const size_t cross = text.find_first_of("xX");
  const bool square = cross == std::string_view::npos;
  const double width = NumberOf(parameter, text.substr(0, cross));
  const double height = square ? width : NumberOf(parameter, text.substr(cross + 1));
  return {static_cast<int32_t>(width), static_cast<int32_t>(height)};
}

int32_t ChoiceOf(const Parameter& parameter, std::string_view text) {
  for (const Choice& choice : parameter.choices) {
    if (choice.word == Lower(text)) return choice.number;
  }
  throw std::invalid_argument("no such word");
}

Argument ParseArgument(const Parameter& parameter, std::string_view text) {
  Argument argument;
  try {
    switch (parameter.kind) {
      case Kind::Choice:
        argument.number = ChoiceOf(parameter, text);
        break;
      case Kind::Window:
        argument.window = WindowOf(parameter, text);
        break;
      case Kind::Whole:
      case Kind::Real:
        argument.number = NumberOf(parameter, text);
        break;
    }
    return argument;
  } catch (const std::invalid_argument&) {
    std::string message = "the " + Lower(parameter.name) + " must be " + RangeText(parameter) +
                          ", not " + Quoted(text);
    if (parameter.kind == Kind::Choice) {
      message += "; did you mean " + std::string(NearestName(text, WordsOf(parameter))) + "?";
    }
    throw std::invalid_argument(message);
  }
}

Arguments ParseArguments(const Step& step, const std::vector<std::string_view>& words) {
  Arguments arguments;
  for (const Parameter& parameter : step.parameters) {
    const size_t place = arguments.size() + 1;  // behind the name
    if (place < words.size()) {
      arguments.push_back(ParseArgument(parameter, words[place]));
    } else if (parameter.optional) {
      arguments.push_back({});
    } else {
      throw std::invalid_argument("the " + Lower(parameter.name) + " is missing: write " +
                                  Usage(step));
    }
  }
  if (words.size() > arguments.size() + 1) {
    throw std::invalid_argument(Quoted(words[arguments.size() + 1]) +
                                " is one argument too many: write " + Usage(step));
  }
  const std::string complaint = step.complaint ? step.complaint(arguments) : "";
  if (!complaint.empty()) throw std::invalid_argument(complaint);
  return arguments;
}

const Step& FindStep(std::string_view name) {
  std::vector<std::string_view> names;
  for (const Step& step : AllSteps()) {
    if (step.name == Lower(name)) return step;
    names.push_back(step.name);
  }
  throw std::invalid_argument(Quoted(name) + ": no such step; did you mean " +
                              std::string(NearestName(name, names)) +
                              "? 'orlune filter --help' lists them all");
}

ChosenStep ParseStep(std::string_view text) {
  const std::vector<std::string_view> words = SplitAtBlanks(text);
  if (words.empty()) throw std::invalid_argument("there is none; semicolons stand between steps");
  const Step& step = FindStep(words[0]);
  try {
    return {&step, ParseArguments(step, words)};
  } catch (const std::invalid_argument& error) {
    throw std::invalid_argument(std::string(step.name) + ": " + error.what());
  }
}

}  // namespace

const std::vector<Step>& AllSteps() {
  static const std::vector<Step> STEPS = MakeSteps();
  return STEPS;
}

Chain ParseChain(std::string_view text) {
  Chain chain;
  for (const std::string_view piece : Split(text, ';')) {
    try {
      chain.push_back(ParseStep(piece));
    } catch (const std::invalid_argument& error) {
      throw std::invalid_argument("step " + std::to_string(chain.size() + 1) + ", " + error.what());
    }
  }
  return chain;
}

int32_t BorderOf(const Chain& chain) {
  int32_t border = 0;
  for (const ChosenStep& chosen : chain) {
    border = std::max(border, chosen.step->border(chosen.arguments));
  }
  return border;
}

void Apply(const ChosenStep& chosen, const Image& image, ImageRef mask) {
  Check(chosen.step->apply(image, mask, chosen.arguments));
}

std::string StepsHelp() {
  constexpr int USAGE_WIDTH = 25;
  std::ostringstream help;
  const auto line = [&](const std::string& left, const std::string& right) {
    help << "  " << std::left << std::setw(USAGE_WIDTH) << left << ' ' << right << '\n';
  };
  for (const Step& step : AllSteps()) {
    line(Usage(step), std::string(step.meaning));
    for (const Parameter& parameter : step.parameters) {
      line("", std::string(parameter.name) + ": " + RangeText(parameter) +
                   (parameter.optional ? "; " + DefaultText(parameter) + " if left out" : ""));
    }
  }
  return help.str();
}

}  // namespace front
