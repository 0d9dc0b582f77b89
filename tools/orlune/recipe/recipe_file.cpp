// Recipes as TOML files: every key is an option of a command, and every mistake has its line.
#define TOML_HEADER_ONLY 1
#define TOML_EXCEPTIONS 0
#define TOML_ENABLE_FORMATTERS 0
#include <toml++/toml.h>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <map>
#include <set>
#include <sstream>
#include <stdexcept>

#include "orlune/command/options.h"
#include "orlune/gauge/line_setup.h"
#include "orlune/recipe/recipe.h"
#include "orlune/shared/json_values.h"
#include "orlune/shared/numbers.h"
#include "orlune/shared/words.h"

namespace front {
namespace {

namespace fs = std::filesystem;

int LineOf(const toml::source_region& place) {
  return static_cast<int>(place.begin.line);
}

struct Entry {
  std::string key;
  const toml::node* value;
  toml::source_region place;
};

// In the order of the file: the library's is that of the alphabet.
std::vector<Entry> EntriesOf(const toml::table& table) {
  std::vector<Entry> entries;
  for (const auto& [key, value] : table) {
    entries.push_back({std::string(key.str()), &value, key.source()});
  }
  const auto isBefore = [](const Entry& a, const Entry& b) {
    return std::pair(a.place.begin.line, a.place.begin.column) <
           std::pair(b.place.begin.line, b.place.begin.column);
  };
  std::sort(entries.begin(), entries.end(), isBefore);
  return entries;
}

// A text or a number as it would be typed.
std::string WordOf(const toml::node& value) {
  if (const auto text = value.value_exact<std::string>()) return *text;
  if (const auto whole = value.value_exact<int64_t>()) return std::to_string(*whole);
  if (const auto number = value.value_exact<double>()) return Exact(*number);
  throw std::invalid_argument("takes a text or a number");
}

// What an option is given: one text, or several where it may be given again.
std::vector<std::string> TextsOf(const toml::node& value, bool many) {
  const toml::array* list = value.as_array();
  if (list == nullptr) return {WordOf(value)};
  std::vector<std::string> words;
  for (const toml::node& word : *list) words.push_back(WordOf(word));
  if (words.empty()) throw std::invalid_argument("is an empty list");
  const auto isNumber = [](const toml::node& word) { return word.is_number(); };
  if (many && !std::all_of(list->begin(), list->end(), isNumber)) return words;
  std::string joined;
  for (const std::string& word : words) joined += (joined.empty() ? "" : ",") + word;
  return {joined};
}

Range ParseCount(const std::string& text) {
  if (text.find(':') != std::string::npos) return ParseRange(text);
  const double number = ParseNumber(text);
  if (!(number >= 0) || number != std::floor(number)) {
    throw std::invalid_argument(Quoted(text) + " is no number of objects: write 11, 3:5 or 1:");
  }
  return {number, number};
}

Pattern ParsePattern(const std::string& text) {
  try {
    return {std::regex(text, std::regex::ECMAScript), text};
  } catch (const std::regex_error& error) {
    throw std::invalid_argument(Quoted(text) + " is no regular expression: " + error.what());
  }
}

Option CountOption(const std::string& what, std::optional<Range>* count) {
  return {.name = "count",
          .type = "NUMBER",
          .group = "",
          .help = "passes with so many " + what,
          .take = [=](const std::string& text) { *count = ParseCount(text); }};
}

Option ExpectOption(std::optional<Pattern>* expected) {
  return {.name = "expect",
          .type = "PATTERN",
          .group = "",
          .help = "passes if all of what is read matches this regular expression",
          .take = [=](const std::string& text) { *expected = ParsePattern(text); }};
}

Option LimitOption(const std::string& name, const std::string& help, std::optional<double>* limit) {
  return {.name = name,
          .type = "VALUE",
          .group = "",
          .help = help,
          .take = [=](const std::string& text) { *limit = ParseNumber(text); }};
}

Option TextOption(const std::string& name, const std::string& help, std::string* to,
                  std::vector<std::string> excludes = {}) {
  return {.name = name,
          .type = "TEXT",
          .group = "",
          .help = help,
          .take =
              [=](const std::string& text) {
                if (text.empty()) throw std::invalid_argument("is empty");
                *to = text;
              },
          .excludes = std::move(excludes)};
}

Option SwitchOption(const std::string& name, const std::string& help, bool* on) {
  return {.name = name, .type = "", .group = "", .help = help, .take = [=](const std::string&) {
            *on = true;
          }};
}

// ---- what the kinds of steps take beside the options of their commands

Options OptionsOf(FilterStep* step) {
  return FilterOptions(step);
}

Options OptionsOf(InspectStep* step) {
  Options options = InspectOptions(step);
  options.push_back(CountOption("kept particles", &step->count));
  options.push_back(
      {.name = "require",
       .type = "CONDITION",
       .group = "",
       .help = "passes if this holds for each kept particle",
       .take =
           [=](const std::string& text) {
             for (const std::string_view piece : Split(text, ',')) {
               step->required.push_back({ParseConditions(piece).front(), std::string(piece)});
             }
           },
       .many = true});
  return options;
}

Options OptionsOf(GaugeStep* step) {
  Options options = GaugeOptions(step);
  options.push_back(TextOption("follow-step",
                               "let the lines follow the largest kept particle, or the best "
                               "match, of this step",
                               &step->part, {"follow"}));
  return options;
}

Options OptionsOf(MatchStep* step) {
  Options options = MatchOptions(step);
  options.push_back(
      TextOption("template", "picture whose largest object is looked for", &step->shape));
  options.push_back(CountOption("matches; usual is at least one", &step->count));
  return options;
}

Options OptionsOf(BarcodeStep* step) {
  Options options = BarcodeOptions(&step->settings);
  options.push_back(ExpectOption(&step->expected));
  return options;
}

Options OptionsOf(DialStep* step) {
  return {TextOption("setup", "what 'orlune calibrate' wrote of the gauge", &step->setup),
          ExpectOption(&step->expected),
          LimitOption("min", "least value that passes", &step->limits.low),
          LimitOption("max", "greatest value that passes", &step->limits.high)};
}

const std::set<std::string> FILE_KEYS = {"mask", "setup", "master", "template"};

// The keys without which a kind of step has nothing to do: one of each list.
std::vector<std::vector<std::string_view>> NeededBy(const RecipeStep::Work& work) {
  if (std::holds_alternative<FilterStep>(work)) return {{"steps"}};
  if (std::holds_alternative<GaugeStep>(work)) return {{"line", "lines", "setup"}};
  if (std::holds_alternative<MatchStep>(work)) return {{"template"}};
  if (std::holds_alternative<BarcodeStep>(work)) return {{"kind"}};
  if (std::holds_alternative<DialStep>(work)) return {{"setup"}};
  return {};
}

// ---- reading

class Reader {
 public:
  explicit Reader(ParsedRecipe* parsed)
      : recipe_(parsed->recipe),
        mistakes_(parsed->mistakes),
        folder_(fs::path(parsed->recipe.file).parent_path()) {}

  void Read(const toml::table& root) {
    const toml::array* steps = nullptr;
    const Options options = {TextOption("name", "", &recipe_.name),
                             TextOption("unit", "", &unit_),
                             {.name = "scale",
                              .type = "SIZE",
                              .group = "",
                              .help = "",
                              .take = [&](const std::string& text) { scale_ = ParseScale(text); }},
                             SwitchOption("swap-bytes", "", &recipe_.swapBytes)};
    for (const Entry& entry : EntriesOf(root)) {
      if (entry.key == "step") {
        steps = entry.value->as_array();
        if (steps == nullptr || !steps->is_array_of_tables()) {
          Complain(LineOf(entry.place), "steps are tables of their own: write [[step]]");
          return;
        }
        continue;
      }
      TakeEntry(entry, options, {"step"});
    }
    if (steps == nullptr) {
      Complain(1, "the recipe has no [[step]]");
      return;
    }
    for (const toml::node& step : *steps) ReadStep(*step.as_table());
  }

 private:
  void Complain(int line, const std::string& text) { mistakes_.push_back({line, text}); }

  // Complains of what is wrong; else gives what was said.
  std::optional<std::string> TakeEntry(const Entry& entry, const Options& options,
                                       std::vector<std::string_view> otherNames) {
    const auto option = std::find_if(options.begin(), options.end(),
                                     [&](const Option& o) { return o.name == entry.key; });
    if (option == options.end()) {
      for (const Option& known : options) otherNames.push_back(known.name);
      Complain(LineOf(entry.place),
               "there is no key " + Quoted(entry.key) + Suggestion(entry.key, otherNames));
      return {};
    }
    try {
      return Give(*option, *entry.value);
    } catch (const std::invalid_argument& error) {
      Complain(LineOf(entry.place), Quoted(entry.key) + ": " + error.what());
      return {};
    }
  }

  std::string Give(const Option& option, const toml::node& value) {
    if (option.IsSwitch()) {
      const auto on = value.value_exact<bool>();
      if (!on) throw std::invalid_argument("is true or false");
      if (*on) option.take("");
      return *on ? "true" : "false";
    }
    std::string all;
    for (const std::string& text : TextsOf(value, option.many)) {
      option.take(FILE_KEYS.contains(option.name) && !text.empty() ? InFolder(text) : text);
      all += (all.empty() ? "" : "; ") + text;
    }
    return all;
  }

  std::string InFolder(const std::string& file) const { return (folder_ / file).string(); }

  // None where the step has no kind.
  std::optional<RecipeStep::Work> WorkOf(const toml::table& table, std::string* kind) {
    const auto named = WordFor(table, "do", {"filter", "inspect", "gauge", "match", "read"});
    if (!named) return {};
    *kind = *named;
    if (*named == "filter") return FilterStep();
    if (*named == "inspect") return InspectStep();
    if (*named == "gauge") return GaugeStep();
    if (*named == "match") return MatchStep();
    const auto what = WordFor(table, "what", {"barcode", "meter", "lcd"});
    if (!what) return {};
    *kind += " " + *what;
    if (*what == "barcode") return BarcodeStep();
    DialStep dial;
    dial.kind = *what == "meter" ? GaugeKind::Meter : GaugeKind::Display;
    return dial;
  }

  std::optional<std::string> WordFor(const toml::table& table, const std::string& key,
                                     const std::vector<std::string_view>& words) {
    const toml::node* node = table.get(key);
    if (node == nullptr) {
      Complain(LineOf(table.source()),
               "the step says nothing of " + Quoted(key) + ": " + ListOf(words));
      return {};
    }
    const auto text = node->value_exact<std::string>();
    const std::string word = text.value_or("");
    if (std::find(words.begin(), words.end(), word) != words.end()) return word;
    Complain(LineOf(node->source()), (text ? Quoted(word) : "the value of " + Quoted(key)) +
                                         " is none of " + ListOf(words) +
                                         (text ? Suggestion(word, words) : ""));
    return {};
  }

  void ReadStep(const toml::table& table) {
    RecipeStep step;
    step.line = LineOf(table.source());
    std::optional<RecipeStep::Work> work = WorkOf(table, &step.kind);
    if (!work) return;
    step.work = std::move(*work);
    Options options = std::visit([](auto& w) { return OptionsOf(&w); }, step.work);
    options.push_back(TextOption("name", "what the step is called", &step.name));
    options.push_back(
        TextOption("on", "the picture that this filter step left, or 'original'", &step.on));
    options.push_back(
        SwitchOption("record-only", "what is found does not decide", &step.recordOnly));
    for (const Entry& entry : EntriesOf(table)) ReadEntry(entry, options, &step);
    CheckTogether(options, step);
    if (auto* inspect = std::get_if<InspectStep>(&step.work)) {
      TakeScale(&inspect->settings.scale, &inspect->settings.unit);
    }
    if (auto* gauge = std::get_if<GaugeStep>(&step.work)) {
      if (gauge->setupFile.empty()) TakeScale(&gauge->setup.scale, &gauge->setup.unit);
    }
    // The options lead into the step where it was read: from here on they are of no use.
    recipe_.steps.push_back(std::move(step));
  }

  void ReadEntry(const Entry& entry, const Options& options, RecipeStep* step) {
    if (entry.key == "do" || (entry.key == "what" && step->kind.starts_with("read"))) return;
    auto* gauge = std::get_if<GaugeStep>(&step->work);
    if (gauge != nullptr && entry.key == "lines") {
      ReadLines(entry, gauge);
      step->said.push_back({"lines", Plural(gauge->lines.size(), "line"),
                            "lines to measure along, each with settings of its own",
                            LineOf(entry.place)});
      return;
    }
    std::vector<std::string_view> others = {"do"};
    if (gauge != nullptr) others.push_back("lines");
    const std::optional<std::string> text = TakeEntry(entry, options, others);
    std::string meaning;
    for (const Option& option : options) {
      if (option.name == entry.key) meaning = option.help;
    }
    std::replace(meaning.begin(), meaning.end(), '\n', ' ');
    step->said.push_back({entry.key, text.value_or(""), meaning, LineOf(entry.place)});
  }

  // Lines that have settings of their own, as in a set-up file.
  void ReadLines(const Entry& entry, GaugeStep* gauge) {
    const toml::array* lines = entry.value->as_array();
    if (lines == nullptr || !lines->is_array_of_tables()) {
      Complain(LineOf(entry.place), "'lines' are tables: write [[step.lines]]");
      return;
    }
    for (const toml::node& node : *lines) {
      const toml::table& table = *node.as_table();
      LineGauge line = gauge->line;
      bool placed = false;
      Options options = LineOptions(&line);
      options.push_back(TextOption("name", "", &line.name));
      options.push_back({.name = "line",
                         .type = "X1,Y1,X2,Y2",
                         .group = "",
                         .help = "",
                         .take = [&](const std::string& text) {
                           placed = true;
                           line.line = ParseLine(text);
                         }});
      for (const Entry& member : EntriesOf(table)) TakeEntry(member, options, {});
      if (!placed) Complain(LineOf(table.source()), "the line has no 'line' = [X1, Y1, X2, Y2]");
      gauge->lines.push_back(line);
    }
  }

  void TakeScale(std::optional<Scale>* scale, std::string* unit) const {
    if (!*scale) *scale = scale_;
    if (unit->empty()) *unit = unit_;
  }

  // What is missing, and what does not go together.
  void CheckTogether(const Options& options, const RecipeStep& step) {
    const auto isSaid = [&](std::string_view key) {
      return std::any_of(step.said.begin(), step.said.end(),
                         [&](const auto& said) { return said.key == key; });
    };
    for (const std::vector<std::string_view>& keys : NeededBy(step.work)) {
      if (std::any_of(keys.begin(), keys.end(), isSaid)) continue;
      Complain(step.line, "the step " + step.kind + " needs " + ListOf(keys));
    }
    for (const Option& option : options) {
      for (const std::string& other : option.excludes) {
        if (!isSaid(option.name) || !isSaid(other)) continue;
        Complain(step.LineOf(option.name),
                 Quoted(option.name) + " and " + Quoted(other) + " do not go together");
      }
      if (option.group == LINES_GROUP && isSaid(option.name) && isSaid("setup")) {
        Complain(step.LineOf(option.name), Quoted(option.name) + " is said by the set-up file");
      }
    }
    if (isSaid("lines") && isSaid("setup")) {
      Complain(step.LineOf("lines"), "'lines' is said by the set-up file");
    }
    if (isSaid("lines") && isSaid("line")) {
      Complain(step.LineOf("lines"), "'line' and 'lines' do not go together");
    }
  }

  Recipe& recipe_;
  std::vector<Mistake>& mistakes_;
  fs::path folder_;
  std::optional<Scale> scale_;
  std::string unit_;
};

// ---- the order of steps

class OrderCheck {
 public:
  explicit OrderCheck(ParsedRecipe* parsed) : parsed_(*parsed) {}

  void Run() {
    for (RecipeStep& step : parsed_.recipe.steps) {
      CheckName(&step);
      CheckPicture(step);
      if (const auto* gauge = std::get_if<GaugeStep>(&step.work)) CheckPart(step, *gauge);
      earlier_.push_back(&step);
    }
  }

 private:
  void Complain(int line, const std::string& text) { parsed_.mistakes.push_back({line, text}); }

  void CheckName(RecipeStep* step) {
    if (step->name == ORIGINAL) {
      Complain(step->LineOf("name"), "'original' is the picture as it was read, and no step");
    }
    if (!step->name.empty()) {
      if (Earlier(step->name) != nullptr) {
        Complain(step->LineOf("name"), "two steps have the name " + Quoted(step->name));
      }
      return;
    }
    const std::string kind = step->kind.substr(step->kind.rfind(' ') + 1);
    step->name = kind;
    for (int number = 2; Earlier(step->name) != nullptr; number++) {
      step->name = kind + "-" + std::to_string(number);
    }
  }

  const RecipeStep* Earlier(const std::string& name) const {
    for (const RecipeStep* step : earlier_) {
      if (step->name == name) return step;
    }
    return nullptr;
  }

  // Whether there is a picture of the kind that the step takes.
  void CheckPicture(const RecipeStep& step) {
    const auto from = coloured_.find(step.on.empty() ? last_ : step.on);
    if (from == coloured_.end()) {
      Complain(step.LineOf("on"),
               Quoted(step.on) + " is no earlier filter step, and not 'original'");
      return;
    }
    const bool coloured = from->second;
    const auto* inspect = std::get_if<InspectStep>(&step.work);
    if (inspect != nullptr && inspect->settings.colours.Any() && !coloured) {
      Complain(step.line, "the picture is gray by then: it has no objects of a colour");
    }
    const auto* filter = std::get_if<FilterStep>(&step.work);
    if (filter == nullptr || filter->steps.empty()) return;
    if (TakesColours(filter->steps) && !coloured) {
      Complain(step.LineOf("steps"), "the picture is gray by then; steps on colours come first");
    }
    try {
      RefuseMask(*filter);
    } catch (const std::invalid_argument& error) {
      Complain(step.LineOf("mask"), error.what());
    }
    const Step& end = *filter->steps.back().step;
    last_ = step.name;
    coloured_[step.name] = end.takesColours && !end.makesGray;
  }

  void CheckPart(const RecipeStep& step, const GaugeStep& gauge) {
    const bool follows = gauge.setup.reference.follow != Follow::Nothing || !gauge.part.empty();
    if (follows && gauge.master.empty()) {
      Complain(step.line,
               "lines that follow the part need 'master', the picture that they are drawn for");
    }
    if (!follows && !gauge.master.empty() && gauge.setupFile.empty()) {
      Complain(step.LineOf("master"), "'master' is for lines that follow the part");
    }
    if (gauge.part.empty()) return;
    const RecipeStep* part = Earlier(gauge.part);
    const bool found = part != nullptr && (std::holds_alternative<InspectStep>(part->work) ||
                                           std::holds_alternative<MatchStep>(part->work));
    if (!found) {
      Complain(step.LineOf("follow-step"),
               Quoted(gauge.part) + " is no earlier step that finds particles or matches");
    }
  }

  ParsedRecipe& parsed_;
  std::vector<const RecipeStep*> earlier_;
  std::map<std::string, bool> coloured_ = {{ORIGINAL, true}};  // pictures by their steps
  std::string last_ = ORIGINAL;
};

std::string Indented(const RecipeStep::Said& said) {
  std::string line = "     " + said.key;
  if (said.text != "true") line += " = " + said.text;
  constexpr size_t MEANINGS = 40;
  line.append(line.size() < MEANINGS ? MEANINGS - line.size() : 2, ' ');
  return line + said.meaning + '\n';
}

}  // namespace

int RecipeStep::LineOf(const std::string& key) const {
  for (const Said& each : said) {
    if (each.key == key) return each.line;
  }
  return line;
}

bool RecipeStep::Decides() const {
  const auto* inspect = std::get_if<InspectStep>(&work);
  const bool judges = inspect == nullptr || inspect->count || !inspect->required.empty();
  return judges && !recordOnly && !std::holds_alternative<FilterStep>(work);
}

ParsedRecipe ParseRecipe(const std::string& text, const std::string& file) {
  ParsedRecipe parsed;
  parsed.recipe.file = file;
  parsed.recipe.text = text;
  const toml::parse_result root = toml::parse(text);
  if (!root) {
    parsed.mistakes.push_back(
        {LineOf(root.error().source()), std::string(root.error().description())});
    return parsed;
  }
  Reader(&parsed).Read(root.table());
  OrderCheck(&parsed).Run();
  if (parsed.recipe.name.empty()) parsed.recipe.name = fs::path(file).stem().string();
  std::stable_sort(parsed.mistakes.begin(), parsed.mistakes.end(),
                   [](const Mistake& a, const Mistake& b) { return a.line < b.line; });
  return parsed;
}

ParsedRecipe ReadRecipe(const std::string& file) {
  return ParseRecipe(ReadSetupFile(file), file);
}

std::string ExplanationOf(const Recipe& recipe) {
  std::ostringstream out;
  out << recipe.name << ": " << Plural(recipe.steps.size(), "step") << '\n';
  size_t number = 0;
  for (const RecipeStep& step : recipe.steps) {
    number++;
    out << std::string(number < 10 ? " " : "") << number << ". " << step.name << " (" << step.kind
        << ", line " << step.line << ")";
    if (step.Decides()) out << ", decides";
    out << '\n';
    for (const RecipeStep::Said& said : step.said) {
      if (said.key != "name" && said.text != "false") out << Indented(said);
    }
  }
  const bool any = std::any_of(recipe.steps.begin(), recipe.steps.end(),
                               [](const RecipeStep& step) { return step.Decides(); });
  out << (any ? "A picture passes if all deciding steps do.\n"
              : "No step decides: every picture that can be read passes.\n");
  return out.str();
}

}  // namespace front
