// Recipes: what is done to a picture, step after step, and what makes it pass.
#pragma once

#include <optional>
#include <regex>
#include <string>
#include <variant>
#include <vector>

#include "orlune/read/read_dials.h"
#include "orlune/shared/works.h"

namespace front {

// A condition with the words that it was given in.
struct Requirement {
  Condition condition;
  std::string text;
};

// A text that a reading has to be: a whole match of a regular expression.
struct Pattern {
  std::regex expression;
  std::string text;
};

struct FilterStep : FilterWork {};

struct InspectStep : InspectWork {
  std::optional<Range> count;         // of kept particles
  std::vector<Requirement> required;  // of each of them
};

struct GaugeStep : GaugeWork {
  std::string part;  // step whose largest particle or best match the lines follow; empty for none
};

struct MatchStep : MatchWork {
  std::optional<Range> count;  // of matches; none: at least one
};

struct BarcodeStep {
  BarcodeSettings settings;
  std::optional<Pattern> expected;
};

struct DialStep {
  GaugeKind kind = GaugeKind::Meter;
  std::string setup;  // file
  std::optional<Pattern> expected;
  Limits limits;
};

struct RecipeStep {
  using Work = std::variant<FilterStep, InspectStep, GaugeStep, MatchStep, BarcodeStep, DialStep>;

  std::string kind;         // "inspect", as the recipe says
  std::string name;         // the recipe's, or the kind with a number
  std::string on;           // filter step whose picture is looked at, or ORIGINAL; empty: the last
  bool recordOnly = false;  // what is found does not decide
  Work work;

  // What the recipe says, for explanations: each key with its text, its line and its meaning.
  struct Said {
    std::string key, text, meaning;
    int line = 0;
  };
  std::vector<Said> said;
  int line = 0;  // where the step begins

  // The line of a key, or of the step where there is none.
  int LineOf(const std::string& key) const;
  // Whether it can make a picture fail.
  bool Decides() const;
};
constexpr char ORIGINAL[] = "original";  // the picture as it was read

struct Recipe {
  std::string file, text;  // as it was read
  std::string name;        // its own, or that of the file
  bool swapBytes = false;
  std::vector<RecipeStep> steps;
};

// What is wrong with a recipe, and where.
struct Mistake {
  int line = 0;
  std::string text;
};

struct ParsedRecipe {
  Recipe recipe;
  std::vector<Mistake> mistakes;  // in the order of lines; with any the recipe is of no use
};
// Files that the recipe names are sought from its own folder. Throws std::invalid_argument for
// a recipe that cannot be read.
ParsedRecipe ReadRecipe(const std::string& file);
ParsedRecipe ParseRecipe(const std::string& text, const std::string& file);

// In words, for people.
std::string ExplanationOf(const Recipe& recipe);

}  // namespace front
