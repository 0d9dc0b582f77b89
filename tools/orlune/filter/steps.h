// The steps of filter chains: what they are called, what they take, what they do.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "orlune/shared/pictures.h"

namespace front {

struct Window {
  int32_t width = 1, height = 1;
  int32_t Pixels() const { return width * height; }
};

// What stands for a parameter in a step as it was typed.
struct Argument {
  double number = 0;    // a word's own number where words are to be chosen from
  Window window;        // where the parameter is one
  Range range{0, 100};  // likewise; of percent, all where it is left out

  int32_t Whole() const { return static_cast<int32_t>(number); }
  float Real() const { return static_cast<float>(number); }
};
using Arguments = std::vector<Argument>;  // one for each parameter of the step

struct Choice {
  std::string_view word;
  int32_t number;
};

struct Parameter {
  enum class Kind { Choice, Window, Whole, Real, Hues, Percents };

  std::string_view name;  // in capitals
  Kind kind;
  double low = 0, high = 0;  // the range of a number, or of a window's sides
  std::vector<Choice> choices = {};
  bool optional = false;  // 0 where it is left out; only the last ones may be
};

// To add a step, add a row to the table: parsing, help and messages follow it.
struct Step {
  std::string_view name;
  std::vector<Parameter> parameters;
  std::string_view meaning;  // one line of help
  // What is wrong with arguments that are each in their range; empty for nothing. May be null.
  std::string (*complaint)(const Arguments&) = nullptr;
  bool movesPixels = false;   // so that no mask can choose some of them
  bool takesColours = false;  // an IMAGE_RGB; others take a gray picture, of colours their mean
  bool makesGray = false;     // of colours, so that no mask can keep some of them
  // Pixels around the picture that are read.
  int32_t (*border)(const Arguments&);
  // In place, where the mask, if there is one, is not 0. Gives the library's status.
  int32_t (*apply)(ImageRef image, ImageRef mask, const Arguments&);
};

const std::vector<Step>& AllSteps();

// A step as it was typed.
struct ChosenStep {
  const Step* step = nullptr;
  Arguments arguments;
};
using Chain = std::vector<ChosenStep>;

// Whether the chain begins with colours: then it is given them, else their mean.
bool TakesColours(const Chain& chain);

// "median 5; edges sobel 20". Throws std::invalid_argument that says what is wrong where.
Chain ParseChain(std::string_view text);

// The border that all steps have enough of.
int32_t BorderOf(const Chain& chain);

// In place. The image has the border that the step needs. Throws LibraryFailure, and
// std::invalid_argument for a gray picture where the step takes colours.
void Apply(const ChosenStep& chosen, const Image& image, ImageRef mask);

// Every step with its parameters, in columns.
std::string StepsHelp();

}  // namespace front
