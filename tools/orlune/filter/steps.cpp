// The steps of filter chains: what they are called, what they take, what they do.
#include "orlune/filter/steps.h"

#include <algorithm>
#include <cmath>
#include <iomanip>
#include <limits>
#include <sstream>
#include <stdexcept>
#include <utility>

#include "orlune/filter/colour_steps.h"
#include "orlune/filter/morphology_steps.h"
#include "orlune/filter/spectrum_steps.h"
#include "orlune/shared/colours.h"
#include "orlune/shared/numbers.h"
#include "orlune/shared/words.h"

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

// A family of standard matrices and a size, as one number.
constexpr int32_t MatricesOf(ConvolutionFamily family, int32_t side) {
  return family * 10 + side;
}

ConvolutionMatrix* MatrixOf(const Arguments& arguments, int32_t index) {
  const int32_t matrices = arguments[0].Whole();
  return ZEL_GetConvolutionMatrix(matrices / 10, matrices % 10, index);
}

// Of a step whose parameters are no window.
int32_t NoBorder(const Arguments&) {
  return 0;
}

Parameter Factor() {
  return {.name = "FACTOR", .kind = Kind::Whole, .low = 1, .high = LARGEST_SIDE};
}

constexpr int32_t WHOLE = WHOLE_IMAGE_EXTENT;

// Bilinear where it is left out.
constexpr int32_t METHOD_BILINEAR = 0;
constexpr int32_t METHOD_NEAREST = 1;  // the others are those of ZEL_Resample
Parameter Method(std::vector<Choice> others) {
  others.insert(others.begin(), {"bilinear", METHOD_BILINEAR});
  return {.name = "METHOD", .kind = Kind::Choice, .choices = std::move(others), .optional = true};
}

int32_t Resample(ImageRef image, double factor, int32_t method) {
  ImageInfo info{};
  const int32_t status = ZEL_GetImageInfo(image, &info);
  if (status != 0) return -status;
  const auto side = [&](int32_t pixels) {
    return static_cast<int32_t>(std::clamp(std::round(pixels * factor), 1.0, 1e9));
  };
  const int32_t known = method == METHOD_BILINEAR  ? RESAMPLE_BILINEAR
                        : method == METHOD_NEAREST ? RESAMPLE_NEAREST
                                                   : method;
  return ZEL_Resample(image, 0, 0, 0, info.height, info.width, side(info.width), side(info.height),
                      known);
}

std::vector<Step> MakeFilters() {
  return {
      {.name = "convolve",
       .parameters =
           {{.name = "MATRIX",
             .kind = Kind::Choice,
             .choices = {{"gradient3", MatricesOf(CONVOLUTION_GRADIENT, 3)},
                         {"gradient5", MatricesOf(CONVOLUTION_GRADIENT, 5)},
                         {"gradient7", MatricesOf(CONVOLUTION_GRADIENT, 7)},
                         {"laplacian3", MatricesOf(CONVOLUTION_LAPLACIAN, 3)},
                         {"laplacian5", MatricesOf(CONVOLUTION_LAPLACIAN, 5)},
                         {"laplacian7", MatricesOf(CONVOLUTION_LAPLACIAN, 7)},
                         {"smoothing3", MatricesOf(CONVOLUTION_SMOOTHING, 3)},
                         {"smoothing5", MatricesOf(CONVOLUTION_SMOOTHING, 5)},
                         {"smoothing7", MatricesOf(CONVOLUTION_SMOOTHING, 7)},
                         {"gaussian3", MatricesOf(CONVOLUTION_GAUSSIAN, 3)},
                         {"gaussian5", MatricesOf(CONVOLUTION_GAUSSIAN, 5)},
                         {"gaussian7", MatricesOf(CONVOLUTION_GAUSSIAN, 7)}}},
            {.name = "INDEX", .kind = Kind::Whole, .low = 0, .high = 31, .optional = true}},
       .meaning = "neighbours weighted by a standard matrix, one of a family and a size",
       .complaint = [](const Arguments& a) -> std::string {
         const ConvolutionMatrix* last = MatrixOf(a, INT32_MAX);
         int32_t count = 1;
         while (MatrixOf(a, count - 1) != last) count++;
         return a[1].Whole() < count
                    ? ""
                    : "the index must be 0 to " + std::to_string(count - 1) + " for this matrix";
       },
       .border = [](const Arguments& a) { return MatrixOf(a, 0)->width / 2; },
       .apply =
           [](ImageRef image, ImageRef mask, const Arguments& a) {
             return ZEL_Convolute(image, mask, 0, MatrixOf(a, a[1].Whole()), BORDER_FILL_MIRROR);
           }},

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

      {.name = "expand",
       .parameters = {Factor()},
       .meaning = "each pixel becomes a square of FACTOR x FACTOR",
       .movesPixels = true,
       .border = NoBorder,
       .apply =
           [](ImageRef image, ImageRef, const Arguments& a) {
             return ZEL_Expand(image, 0, 0, 0, WHOLE, WHOLE, a[0].Whole(), a[0].Whole());
           }},

      {.name = "extract",
       .parameters = {Factor()},
       .meaning = "every FACTOR-th pixel of every FACTOR-th row",
       .movesPixels = true,
       .border = NoBorder,
       .apply =
           [](ImageRef image, ImageRef, const Arguments& a) {
             return ZEL_Extract(image, 0, 0, 0, WHOLE, WHOLE, a[0].Whole(), a[0].Whole());
           }},

      {.name = "flip",
       .parameters = {{.name = "AXIS",
                       .kind = Kind::Choice,
                       .choices = {{"top-bottom", SYMMETRY_TOP_BOTTOM},
                                   {"left-right", SYMMETRY_LEFT_RIGHT},
                                   {"both", SYMMETRY_BOTH}}}},
       .meaning = "the picture mirrored, or turned by 180 degrees",
       .movesPixels = true,
       .border = NoBorder,
       .apply =
           [](ImageRef image, ImageRef, const Arguments& a) {
             return ZEL_Symmetry(image, 0, static_cast<uint8_t>(a[0].Whole()));
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

      {.name = "relief",
       .parameters = {{.name = "REDUCTION", .kind = Kind::Whole, .low = 1, .high = LARGEST_SIDE}},
       .meaning = "bars as high as the picture is light, each REDUCTION-th pixel",
       .movesPixels = true,
       .border = NoBorder,
       .apply =
           [](ImageRef image, ImageRef, const Arguments& a) {
             constexpr int32_t height = 64;
             return ZEL_3DView(image, 0, a[0].Whole(), height, 0, nullptr);
           }},

      {.name = "resample",
       .parameters = {{.name = "FACTOR", .kind = Kind::Real, .low = 0.001, .high = LARGEST_SIDE},
                      Method({{"nearest", METHOD_NEAREST},
                              {"quadratic", RESAMPLE_QUADRATIC},
                              {"spline", RESAMPLE_SPLINE}})},
       .meaning = "FACTOR times the size",
       .movesPixels = true,
       .border = NoBorder,
       .apply = [](ImageRef image, ImageRef,
                   const Arguments& a) { return Resample(image, a[0].number, a[1].Whole()); }},

      {.name = "rotate",
       .parameters = {{.name = "ANGLE", .kind = Kind::Real, .low = -360, .high = 360},
                      Method({{"nearest", METHOD_NEAREST}})},
       .meaning = "turned about the centre by degrees, the size as it is, black outside",
       .movesPixels = true,
       .border = NoBorder,
       .apply =
           [](ImageRef image, ImageRef, const Arguments& a) {
             return ZEL_Rotate(image, 0, a[0].Real(), 0, a[1].Whole() == METHOD_BILINEAR ? 1 : 0);
           }},

      {.name = "shift",
       .parameters = {{.name = "X", .kind = Kind::Whole, .low = -1e6, .high = 1e6},
                      {.name = "Y", .kind = Kind::Whole, .low = -1e6, .high = 1e6}},
       .meaning = "moved by X pixels to the right and Y down, black outside",
       .movesPixels = true,
       .border = NoBorder,
       .apply =
           [](ImageRef image, ImageRef, const Arguments& a) {
             return ZEL_Shift(image, 0, a[0].Whole(), a[1].Whole(), 0);
           }},

      {.name = "transpose",
       .parameters = {},
       .meaning = "rows become columns",
       .movesPixels = true,
       .border = NoBorder,
       .apply = [](ImageRef image, ImageRef, const Arguments&) { return ZEL_Transpose(image, 0); }},
  };
}

std::vector<Step> MakeSteps() {
  std::vector<Step> steps = MakeFilters();
  for (Step& step : MorphologySteps()) steps.push_back(std::move(step));
  for (Step& step : ColourSteps()) steps.push_back(std::move(step));
  for (Step& step : SpectrumSteps()) steps.push_back(std::move(step));
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
  if (parameter.kind == Kind::Hues) return "MIN:MAX in degrees, as 200:260 or 340:20";
  if (parameter.kind == Kind::Percents) return "MIN:MAX of 0 to 100, MIN: or :MAX";
  const auto end = [](double value) {
    return value == std::floor(value) ? Fixed(value, 0) : Short(value);
  };
  std::string range = end(parameter.low);
  range += parameter.high >= UNLIMITED ? " or more" : " to " + end(parameter.high);
  return parameter.kind == Kind::Window ? range + ", or WIDTHxHEIGHT" : range;
}

// What an optional parameter is where it is left out.
std::string DefaultText(const Parameter& parameter) {
  if (parameter.kind == Kind::Percents) return "0:100";
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
      case Kind::Hues:
        argument.range = ParseHues(text);
        break;
      case Kind::Percents:
        argument.range = ParsePercents(text);
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

bool TakesColours(const Chain& chain) {
  return !chain.empty() && chain.front().step->takesColours;
}

Chain ParseChain(std::string_view text) {
  Chain chain;
  bool coloured = true;
  for (const std::string_view piece : Split(text, ';')) {
    try {
      chain.push_back(ParseStep(piece));
      const Step& step = *chain.back().step;
      if (step.takesColours && !coloured) {
        chain.pop_back();
        throw std::invalid_argument(std::string(step.name) +
                                    ": the picture is gray by then; steps on colours come first");
      }
      coloured = step.takesColours && !step.makesGray;
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
  const bool coloured = image.Info().type == IMAGE_RGB;
  if (chosen.step->takesColours && !coloured) {
    throw std::invalid_argument("the picture is gray, and the step " +
                                std::string(chosen.step->name) + " takes colours");
  }
  if (coloured && !chosen.step->takesColours) Check(ZEL_Cast(image, IMAGE_U8));
  Check(chosen.step->apply(image, mask, chosen.arguments));
}

std::string StepsHelp() {
  constexpr int USAGE_WIDTH = 25;
  constexpr size_t MEANING_WIDTH = 70;
  std::ostringstream help;
  const auto row = [&](const std::string& left, const std::string& right) {
    help << "  " << std::left << std::setw(USAGE_WIDTH) << left << ' ' << right << '\n';
  };
  const auto line = [&](std::string left, std::string right) {
    while (right.size() > MEANING_WIDTH) {
      const size_t space = right.rfind(' ', MEANING_WIDTH);
      row(std::exchange(left, ""), right.substr(0, space));
      right = "  " + right.substr(space + 1);
    }
    row(left, right);
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
