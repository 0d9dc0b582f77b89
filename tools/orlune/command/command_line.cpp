// The command line: commands and options.
#include "orlune/command/command_line.h"

#include <algorithm>
#include <cmath>
#include <iomanip>
#include <iostream>
#include <sstream>

#include "orlune/command/help_texts.h"
#include "orlune/shared/numbers.h"
#include "orlune/shared/tasks.h"
#include "orlune/shared/words.h"

namespace front {
namespace {

// Turns a parser's complaint into one of the command line.
template <class Function>
void Parse(const std::string& option, Function function) {
  try {
    function();
  } catch (const std::invalid_argument& error) {
    throw CLI::ValidationError(option, error.what());
  }
}

// An option whose text a parser turns into a value.
template <class Take>
CLI::Option* AddParsed(CLI::App* command, const std::string& name, const std::string& option,
                       Take take, const std::string& help) {
  return command->add_option_function<std::string>(
      name, [=](const std::string& text) { Parse(option, [&] { take(text); }); }, help);
}

double ParseLimit(const std::string& text) {
  constexpr double MOST = 1000000;
  const double seconds = ParseNumber(text);
  if (seconds >= 0 && seconds <= MOST) return seconds;
  throw std::invalid_argument("a limit is 0 to 1000000 seconds, not " + Quoted(text));
}

void AddLimit(CLI::App* command, const std::string& name, double* limit, const std::string& help,
              const std::string& group) {
  AddParsed(
      command, name, name, [=](const std::string& text) { *limit = ParseLimit(text); }, help)
      ->type_name("SECONDS")
      ->default_str(Short(*limit))
      ->group(group);
}

size_t ParseCount(const std::string& text) {
  constexpr double MOST = 1000000000;
  const double count = ParseNumber(text);
  if (count >= 0 && count <= MOST && count == std::floor(count)) return static_cast<size_t>(count);
  throw std::invalid_argument(Quoted(text) + " is no whole number of 0 or more");
}

// What a script leaves empty by mistake would be taken as not said at all.
void RefuseEmptyNames(CLI::App* command) {
  constexpr std::string_view NAMES[] = {"DIGESTS", "FILE",    "FOLDER",  "IN",
                                        "OUT",     "PICTURE", "PIPE",    "PROGRAM",
                                        "RECIPE",  "SETUP",   "TEMPLATE"};
  const auto refuse = [](const std::string& name) {
    return name.empty() ? std::string("the name is empty") : std::string();
  };
  for (CLI::Option* option : command->get_options()) {
    const bool isName =
        std::find(std::begin(NAMES), std::end(NAMES), option->get_type_name()) != std::end(NAMES);
    if (isName) option->check(refuse);
  }
}

template <class Value>
std::string RowsHelp(const std::vector<NamedRow<Value>>& rows) {
  std::ostringstream help;
  for (const NamedRow<Value>& row : rows) {
    help << "  " << std::left << std::setw(8) << row.name << row.meaning << '\n';
  }
  return help.str();
}

std::map<std::string, PictureFormat> Formats() {
  std::map<std::string, PictureFormat> formats;
  for (const FormatRow& row : AllFormats()) formats[std::string(row.name)] = row.format;
  return formats;
}

const std::map<std::string, int32_t> TYPES = {{"u8", IMAGE_U8},           {"u16", TYPE_U16},
                                              {"i16", IMAGE_I16},         {"sgl", IMAGE_SGL},
                                              {"complex", IMAGE_COMPLEX}, {"rgb", IMAGE_RGB}};

const std::map<std::string, GaugeKind> GAUGES = {{"lcd", GaugeKind::Display},
                                                 {"meter", GaugeKind::Meter}};
const std::map<std::string, Readable> READABLE = {
    {"barcode", Readable::Barcode}, {"lcd", Readable::Display}, {"meter", Readable::Meter}};

// Groups of options.
constexpr char METERS_AND_DISPLAYS[] = "Meters and displays";

constexpr char SWAP_HELP[] =
    "exchange the bytes of 16-bit samples: for files that say the\nwrong byte order";
constexpr char FORMAT_HELP[] = "native, tiff, png or bmp; otherwise by the ending of the name";

std::string MethodsHelp() {
  std::ostringstream help;
  for (const MethodRow& row : AllMethods()) {
    help << "  " << std::left << std::setw(12) << row.name << row.meaning << '\n';
  }
  return help.str();
}

// Options without the remarks about others that they exclude: the texts say what goes together.
class HelpText : public CLI::Formatter {
 public:
  HelpText() { column_width(26); }

  std::string make_option_opts(const CLI::Option* option) const override {
    const bool many = option->get_positional() && option->get_expected_max() > 1;
    std::string text = option->get_positional() ? "" : option->get_type_name();
    if (!text.empty()) text.insert(0, " ");
    if (many) text += "...";
    if (!option->get_default_str().empty()) text += " (" + option->get_default_str() + ")";
    return text;
  }

  std::string make_help(const CLI::App* app, std::string name,
                        CLI::AppFormatMode mode) const override {
    std::string help = CLI::Formatter::make_help(app, std::move(name), mode);
    for (size_t at; (at = help.find("\n\n\n")) != std::string::npos;) help.erase(at, 1);
    return help;
  }
};

}  // namespace

template <class Value, class Take>
CLI::Option* CommandLine::AddChoice(CLI::App* command, const std::string& name,
                                    const std::map<std::string, Value>& values, Take take,
                                    const std::string& help) {
  CLI::Option* option = AddParsed(
      command, name, name,
      [=](const std::string& text) {
        const auto found = values.find(text);
        if (found != values.end()) return take(found->second);
        std::vector<std::string_view> names;
        for (const auto& [word, value] : values) names.push_back(word);
        throw std::invalid_argument(Quoted(text) + " is none of " + ListOf(names) +
                                    Suggestion(text, names));
      },
      help);
  for (const auto& [word, value] : values) choices_[option].push_back(word);
  return option;
}

void CommandLine::Add(CLI::App* command, const Options& options) {
  for (const Option& option : options) {
    const std::string name = "--" + option.name;
    const auto take = [name, take = option.take](const std::string& text) {
      Parse(name, [&] { take(text); });
    };
    CLI::Option* added = nullptr;
    if (option.IsSwitch()) {
      added = command->add_flag_callback(
          name, [take] { take(""); }, option.help);
    } else {
      added = command->add_option_function<std::vector<std::string>>(
          name,
          [take](const std::vector<std::string>& texts) {
            for (const std::string& text : texts) take(text);
          },
          option.help);
      added->type_name(option.type)->allow_extra_args(false);
      if (!option.many) added->expected(1)->multi_option_policy(CLI::MultiOptionPolicy::Throw);
    }
    if (!option.group.empty()) added->group(option.group);
    for (const std::string& other : option.excludes) {
      added->excludes(command->get_option("--" + other));
    }
    if (!option.choices.empty()) choices_[added] = option.choices;
  }
}

void CommandLine::AddFiles(CLI::App* command, std::vector<std::string>* files) {
  command->add_option("FILE", *files, "picture files; FILE#3 is a page, - standard input")
      ->required()
      ->type_name("FILE");
}

void CommandLine::AddWorkers(CLI::App* command, size_t* workers, const std::string& group) {
  CLI::Option* option = AddParsed(
      command, "-j,--jobs", "-j", [=](const std::string& text) { *workers = ParseWorkers(text); },
      "work on so many files at a time; auto is one a processor");
  option->type_name("N");
  choices_[option] = {"auto"};
  if (!group.empty()) option->group(group);
}

void CommandLine::AddInfo() {
  CLI::App* info = app_.add_subcommand("info", "tell what picture files hold");
  AddFiles(info, &info_.files);
  info->add_flag("--json", info_.json, "tell it as JSON");
  info->footer(INFO_FOOTER);
}

void CommandLine::AddReporting(CLI::App* inspect) {
  const std::string group = "Reporting";
  inspect
      ->add_option("--csv", inspect_.csv, "write the kept particles as CSV; - is standard output")
      ->type_name("FILE")
      ->group(group);
  inspect
      ->add_option("--json", inspect_.json,
                   "write all that was found as JSON; - is standard output")
      ->type_name("FILE")
      ->group(group);
  inspect
      ->add_option("--annotate", inspect_.annotate,
                   "write each picture as BMP with outlines, rectangles and numbers")
      ->type_name("FOLDER")
      ->group(group);
  inspect
      ->add_option("--labels", inspect_.labels,
                   "write a TIFF of each whose pixels are the kept particles' numbers")
      ->type_name("FOLDER")
      ->group(group);
  AddParsed(
      inspect, "--rows", "--rows",
      [this](const std::string& text) { inspect_.rows = ParseCount(text); },
      "list at most so many particles a picture; 0 is all")
      ->type_name("N")
      ->default_str(std::to_string(inspect_.rows))
      ->group(group);
  AddWorkers(inspect, &inspect_.workers, group);
  inspect->add_flag("--quiet", inspect_.quiet, "print no table and no summary")->group(group);
}

void CommandLine::AddInspect() {
  CLI::App* inspect = app_.add_subcommand("inspect", "find, measure and list the particles");
  AddFiles(inspect, &inspect_.files);
  Add(inspect, InspectOptions(&inspect_));
  inspect->add_flag("--swap-bytes", inspect_.settings.swapBytes, SWAP_HELP)
      ->group("Finding objects");
  AddReporting(inspect);
  inspect->footer(INSPECT_FOOTER + MethodsHelp() + INSPECT_EXAMPLES);
}

void CommandLine::AddView() {
  CLI::App* view =
      app_.add_subcommand("view", "show pictures in windows, and measure regions there");
  ViewSettings* settings = &view_.settings;
  AddFiles(view, &settings->files);
  Add(view, ViewOptions(&settings->inspect));
  view->add_option("--out", settings->folder, "save marked copies in this folder")
      ->type_name("FOLDER");
  view->add_flag("--swap-bytes", settings->inspect.swapBytes, SWAP_HELP);
  std::string keys;
  for (const std::string& line : Viewer::KeyLines()) keys += "  " + line + "\n";
  view->footer(VIEW_FOOTER + keys + VIEW_EXAMPLES);
}

void CommandLine::AddFilter() {
  CLI::App* filter =
      app_.add_subcommand("filter", "apply filters to pictures, one after the other");
  AddFiles(filter, &filter_.files);
  Add(filter, FilterOptions(&filter_));
  filter->get_option("--steps")->required();
  CLI::Option* folder =
      filter->add_option("--out", filter_.folder, "write a picture of each file into this folder");
  folder->type_name("FOLDER");
  filter->add_option("-o", filter_.to, "write the picture of one file to this file")
      ->type_name("OUT")
      ->excludes(folder);
  AddChoice(
      filter, "--format", Formats(), [this](PictureFormat format) { filter_.format = format; },
      FORMAT_HELP)
      ->type_name("FORMAT");
  filter->add_flag("--swap-bytes", filter_.swapBytes, SWAP_HELP);
  AddWorkers(filter, &filter_.workers, "");
  filter->add_flag("--quiet", filter_.quiet, "print no list and no summary");
  filter->footer(FILTER_FOOTER + StepsHelp() + FILTER_EXAMPLES);
}

void CommandLine::AddConvert() {
  CLI::App* convert = app_.add_subcommand("convert", "write a picture in another format or type");
  convert->add_option("IN", convert_.from, "picture file to read")->required()->type_name("IN");
  convert->add_option("OUT", convert_.to, "picture file to write")->required()->type_name("OUT");
  AddChoice(
      convert, "--format", Formats(), [this](PictureFormat format) { convert_.format = format; },
      FORMAT_HELP)
      ->type_name("FORMAT");
  AddChoice(
      convert, "--type", TYPES, [this](int32_t type) { convert_.type = type; },
      "u8, u16, i16, sgl, complex or rgb; otherwise that of IN")
      ->type_name("TYPE");
  convert->add_flag("--stretch", convert_.stretch,
                    "make it gray, and spread its values from darkest to brightest\nover 0 to 255");
  convert->add_flag("--swap-bytes", convert_.swapBytes, SWAP_HELP);
  convert->footer(CONVERT_FOOTER);
}

template <class Command>
void CommandLine::AddFileReports(CLI::App* app, Command* command, const std::string& annotation,
                                 const std::string& group) {
  app->add_option("--csv", command->csv, "write what was found as CSV; - is standard output")
      ->type_name("FILE")
      ->group(group);
  app->add_option("--json", command->json, "write what was found as JSON; - is standard output")
      ->type_name("FILE")
      ->group(group);
  app->add_option("--annotate", command->annotate, annotation)->type_name("FOLDER")->group(group);
  AddWorkers(app, &command->workers, group);
  app->add_flag("--quiet", command->quiet, "print no table and no summary")->group(group);
}

void CommandLine::AddGauge() {
  CLI::App* gauge = app_.add_subcommand("gauge", "measure along lines, and hold it to limits");
  AddFiles(gauge, &gauge_.files);
  Add(gauge, GaugeOptions(&gauge_));
  const std::string group = "Set-up";
  gauge->add_option("--save", gauge_.save, "write all this as a set-up file")
      ->type_name("FILE")
      ->group(group);
  gauge->add_flag("--swap-bytes", gauge_.swapBytes, SWAP_HELP)->group(group);
  AddFileReports(gauge, &gauge_, "write each picture as BMP with lines, edges and distances",
                 "Reporting");
  gauge->footer(GAUGE_FOOTER + RowsHelp(AllLineMeasures()) + "\nKinds of object:\n" +
                RowsHelp(AllObjects()) + GAUGE_EXAMPLES);
}

int CommandLine::RunGauge() {
  const CLI::App* gauge = FindCommand("gauge");
  if (!gauge_.setupFile.empty()) {
    for (const CLI::Option* option : gauge->get_options()) {
      if (option->count() == 0 || option->get_group() != LINES_GROUP) continue;
      std::cerr << "orlune: " << option->get_name() << " is said by the set-up file\n";
      return BAD_USE;
    }
  }
  return front::Run(gauge_);
}

void CommandLine::AddMatch() {
  CLI::App* match = app_.add_subcommand("match", "find objects that have the shape of a template");
  match->add_option("TEMPLATE", match_.shape, "picture whose largest object is looked for")
      ->required()
      ->type_name("TEMPLATE");
  AddFiles(match, &match_.files);
  Add(match, MatchOptions(&match_));
  match->add_flag("--swap-bytes", match_.settings.finding.swapBytes, SWAP_HELP)->group("Matching");
  AddFileReports(match, &match_, "write each picture as BMP with the matches drawn", "Reporting");
  match->footer(MATCH_FOOTER);
}

void CommandLine::AddRun() {
  CLI::App* run = app_.add_subcommand("run", "carry out a recipe on pictures");
  run->add_option("RECIPE", run_.recipe, "recipe file")->required()->type_name("RECIPE");
  run->add_option("FILE", run_.files, "picture files; FILE#3 is a page, - standard input")
      ->type_name("FILE");
  const std::string trying = "Trying a recipe";
  CLI::Option* check = run->add_flag("--check", run_.check,
                                     "only tell what the recipe says, or what is wrong with it");
  check->group(trying);
  run->add_option("--explain-on", run_.explainOn,
                  "carry it out on this picture, and write one after each step")
      ->type_name("PICTURE")
      ->group(trying)
      ->excludes(check);
  run->add_option("--out", run_.out, "where these go")->type_name("FOLDER")->group(trying);
  const std::string reporting = "Reporting";
  const auto file = [&](const std::string& name, std::string* to, const std::string& help) {
    run->add_option(name, *to, help)->type_name("FILE")->group(reporting);
  };
  file("--csv", &run_.csv, "write all values as CSV; - is standard output");
  file("--json-lines", &run_.json, "write a JSON object a line for each picture; - likewise");
  file("--html", &run_.html, "write a report with small pictures, in one file");
  run->add_option("--annotate", run_.annotate, "write each picture as BMP with what was found")
      ->type_name("FOLDER")
      ->group(reporting);
  run->add_flag("--quiet", run_.quiet, "print no table and no summary")->group(reporting);
  const std::string working = "Working";
  AddWorkers(run, &run_.workers, working);
  run->add_option("--watch", run_.watch, "take the pictures that come into this folder, too")
      ->type_name("FOLDER")
      ->group(working);
  AddLimit(run, "--time-limit", &run_.limit, "what a picture may take; 0 is no limit", working);
  run->add_option("--db", run_.database, "record the run in this SQLite file")
      ->type_name("FILE")
      ->group(working);
  run->add_flag("--resume", run_.resume, "finish the last run of the recipe in there")
      ->group(working);
  run->add_flag("--only-list", run_.onlyList,
                "only put the pictures in there, for others to work on")
      ->group(working);
  const std::string line = "Verdicts for a line";
  run->add_option("--verdicts", run_.verdicts,
                  "write each verdict to this pipe, if it has a reader")
      ->type_name("PIPE")
      ->group(line);
  run->add_option("--call", run_.call, "call this program with each verdict and its picture")
      ->type_name("PROGRAM")
      ->group(line);
  AddLimit(run, "--call-limit", &run_.callLimit, "what a call may take; 0 is no limit", line);
  run->footer(RUN_FOOTER);
}

void CommandLine::AddRead() {
  CLI::App* read = app_.add_subcommand("read", "read bar codes, meters or displays in pictures");
  AddChoice(
      read, "WHAT", READABLE, [this](Readable what) { readable_ = what; },
      "barcode; meter: a dial with a needle; lcd: a display of seven\nsegments")
      ->required()
      ->type_name("WHAT");
  AddFiles(read, &readFiles_.files);
  read->add_option("--csv", readFiles_.csv, "write what was read as CSV; - is standard output")
      ->type_name("FILE");
  read->add_option("--json", readFiles_.json, "write what was read as JSON; - is standard output")
      ->type_name("FILE");
  read->add_option("--annotate", readFiles_.annotate,
                   "write each picture as BMP with what was read marked")
      ->type_name("FOLDER");
  read->add_flag("--quiet", readFiles_.quiet, "print nothing of what was read");
  AddReadingBarcodes(read);
  AddReadingGauges(read);
  read->footer(READ_FOOTER);
}

void CommandLine::AddReadingBarcodes(CLI::App* read) {
  BarcodeSettings* settings = &readBarcodes_.settings;
  Add(read, BarcodeOptions(settings));
  read->add_flag("--swap-bytes", settings->swapBytes, SWAP_HELP)->group(BARCODES_GROUP);
  AddWorkers(read, &readBarcodes_.workers, BARCODES_GROUP);
}

void CommandLine::AddReadingGauges(CLI::App* read) {
  read->add_option("--setup", readDials_.setup, "what 'orlune calibrate' wrote of the gauge")
      ->type_name("FILE")
      ->group(METERS_AND_DISPLAYS);
}

int CommandLine::RunRead() {
  const bool isBarcode = readable_ == Readable::Barcode;
  const CLI::App* read = FindCommand("read");
  const std::string needed = isBarcode ? "--kind" : "--setup";
  if (read->get_option(needed)->count() == 0) {
    std::cerr << "orlune: this reading needs " << needed << '\n';
    return BAD_USE;
  }
  for (const CLI::Option* option : read->get_options()) {
    if (option->count() == 0 ||
        option->get_group() != (isBarcode ? METERS_AND_DISPLAYS : BARCODES_GROUP)) {
      continue;
    }
    std::cerr << "orlune: " << option->get_name() << " is not for this reading\n";
    return BAD_USE;
  }
  if (isBarcode) {
    static_cast<ReadFiles&>(readBarcodes_) = readFiles_;
    return front::Run(readBarcodes_);
  }
  static_cast<ReadFiles&>(readDials_) = readFiles_;
  readDials_.kind = readable_ == Readable::Meter ? GaugeKind::Meter : GaugeKind::Display;
  return front::Run(readDials_);
}

void CommandLine::AddCalibrate() {
  CLI::App* calibrate =
      app_.add_subcommand("calibrate", "write the set-up that a gauge is read with");
  CalibrateDialsCommand* command = &calibrateDials_;
  MeterSetup* meter = &command->meter;
  DisplaySetup* display = &command->display;
  const auto addPlace = [&](const std::string& name, PointFloat* place, const std::string& help) {
    AddParsed(
        calibrate, name, name, [=](const std::string& text) { *place = ParsePlace(text); }, help)
        ->type_name("X,Y")
        ->group("Meter");
  };
  AddChoice(
      calibrate, "KIND", GAUGES, [=](GaugeKind kind) { command->kind = kind; }, "meter or lcd")
      ->required()
      ->type_name("KIND");
  calibrate
      ->add_option("FILE", command->files,
                   "meter: none, or a picture of the needle at each end; lcd: one picture")
      ->type_name("FILE");
  calibrate->add_option("-o", command->setup, "set-up file to write")
      ->required()
      ->type_name("SETUP");
  calibrate->add_flag_callback(
      "--light", [=] { meter->isLight = display->isLight = true; },
      "a light needle, or light segments, on dark");
  addPlace("--base", &meter->base, "the point that the needle turns around");
  addPlace("--start", &meter->start, "the needle's tip at the start of the scale");
  addPlace("--end", &meter->end, "the needle's tip at the end, clockwise");
  calibrate
      ->add_option("--radius", command->radius,
                   "from the base to the tip, where pictures show the ends")
      ->type_name("PIXELS")
      ->group("Meter");
  calibrate->add_option("--low", meter->low, "what the scale says at its start")
      ->type_name("VALUE")
      ->group("Meter");
  calibrate->add_option("--high", meter->high, "what the scale says at its end")
      ->type_name("VALUE")
      ->group("Meter");
  calibrate->add_option("--unit", meter->unit, "name of the unit, as bar")
      ->type_name("NAME")
      ->group("Meter");
  AddParsed(
      calibrate, "--region", "--region",
      [=](const std::string& text) { command->region = ParseRegion(text); },
      "the digits, with some ground around them and nothing else")
      ->type_name("LEFT,TOP,WIDTH,HEIGHT")
      ->group("Display");
  calibrate
      ->add_option("--threshold", display->threshold,
                   "least standard deviation of a line that crosses segments")
      ->type_name("LEVELS")
      ->capture_default_str()
      ->group("Display");
  calibrate->add_flag("--sign", display->hasSign, "look for a minus sign")->group("Display");
  calibrate->add_flag("--points", display->hasPoints, "look for decimal points")->group("Display");
  calibrate->footer(CALIBRATE_FOOTER);
}

void CommandLine::AddSelfcheck() {
  CLI::App* selfcheck =
      app_.add_subcommand("selfcheck", "see whether this machine computes what it should");
  CLI::Option* file =
      selfcheck->add_option("DIGESTS", selfcheck_.file, "file of another run to compare with");
  file->type_name("DIGESTS");
  selfcheck->add_option("--write", selfcheck_.write, "write what this machine gives to this file")
      ->type_name("FILE")
      ->excludes(file);
  selfcheck->footer(SELFCHECK_FOOTER);
}

void CommandLine::AddOthers() {
  app_.add_subcommand("measures", "list the measures of a particle");
  CLI::App* help = app_.add_subcommand("help", "tell how a command is used");
  CLI::Option* topic = help->add_option("COMMAND", helpTopic_, "name of the command");
  CLI::App* completions =
      app_.add_subcommand("completions", "print completions of the command line for a shell");
  CLI::Option* shell = completions->add_option("SHELL", shell_, "bash, zsh or fish");
  shell->required();
  choices_[shell] = {"bash", "fish", "zsh"};
  completions->footer(COMPLETIONS_FOOTER);
  CLI::App* manual = app_.add_subcommand("manual", "print the manual page of a command for man");
  manual->add_option("COMMAND", manualTopic_, "name of the command; otherwise of the program");
  for (const CLI::App* command : Commands()) choices_[topic].push_back(command->get_name());
}

CommandLine::CommandLine()
    : app_("orlune finds, measures, gauges and reads what picture files show.", "orlune") {
  app_.set_version_flag("-V,--version", std::string("orlune ") + ORLUNE_VERSION,
                        "print the version");
  app_.set_help_flag("-h,--help", "print this help");
  app_.require_subcommand(0, 1);
  app_.formatter(std::make_shared<HelpText>());
  AddInfo();
  AddInspect();
  AddGauge();
  AddMatch();
  AddRun();
  AddRead();
  AddCalibrate();
  AddFilter();
  AddConvert();
  AddView();
  AddSelfcheck();
  AddOthers();
  for (CLI::App* command : app_.get_subcommands({})) RefuseEmptyNames(command);
  app_.footer(PROGRAM_FOOTER);
}

std::vector<const CLI::App*> CommandLine::Commands() const {
  return app_.get_subcommands([](const CLI::App*) { return true; });
}

const CLI::App* CommandLine::FindCommand(const std::string& name) const {
  for (const CLI::App* command : Commands()) {
    if (command->get_name() == name) return command;
  }
  return nullptr;
}

std::vector<std::string> CommandLine::ChoicesOf(const CLI::Option& option) const {
  const auto found = choices_.find(&option);
  return found == choices_.end() ? std::vector<std::string>() : found->second;
}

std::string CommandLine::WrongName(int argc, char** argv) const {
  const CLI::App* command = &app_;
  for (int i = 1; i < argc; ++i) {
    const std::string word = argv[i];
    if (word == "--") break;
    if (command == &app_ && !word.starts_with('-')) {
      command = FindCommand(word);
      if (command != nullptr) continue;
      std::vector<std::string_view> names;
      for (const CLI::App* other : Commands()) names.push_back(other->get_name());
      return "there is no command " + Quoted(word) + Suggestion(word, names);
    }
    if (!word.starts_with("--")) continue;
    const std::string name = word.substr(2, word.find('=') - 2);
    std::vector<std::string_view> names;
    for (const CLI::Option* option : command->get_options()) {
      for (const std::string& known : option->get_lnames()) names.push_back(known);
    }
    if (std::find(names.begin(), names.end(), name) != names.end()) continue;
    const std::string suggestion = Suggestion(name, names, "--");
    return "there is no option " + Quoted("--" + name) + suggestion;
  }
  return "";
}

int CommandLine::Run(int argc, char** argv) {
  const std::string wrong = WrongName(argc, argv);
  if (!wrong.empty()) {
    std::cerr << "orlune: " << wrong << "\n'orlune help' tells how it is used.\n";
    return BAD_USE;
  }
  try {
    app_.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    if (error.get_exit_code() == 0) return app_.exit(error);  // help and version
    std::cerr << "orlune: " << error.what() << "\n'orlune help' tells how it is used.\n";
    return BAD_USE;
  }
  const auto asked = [&](const char* name) { return FindCommand(name)->parsed(); };
  if (asked("info")) return front::Run(info_);
  if (asked("inspect")) return front::Run(inspect_);
  if (asked("gauge")) return RunGauge();
  if (asked("match")) return front::Run(match_);
  if (asked("run")) return front::Run(run_);
  if (asked("read")) return RunRead();
  if (asked("filter")) return front::Run(filter_);
  if (asked("convert")) return front::Run(convert_);
  if (asked("view")) return front::Run(view_);
  if (asked("calibrate")) return front::Run(calibrateDials_);
  if (asked("measures")) return ListMeasures();
  if (asked("selfcheck")) return front::Run(selfcheck_);
  if (asked("completions")) {
    const std::string script = Completions(*this, shell_);
    std::cout << script;
    if (script.empty()) std::cerr << "orlune: completions are made for bash, zsh and fish\n";
    return script.empty() ? BAD_USE : ALL_WELL;
  }
  const bool manual = asked("manual");
  const std::string& topic = manual ? manualTopic_ : helpTopic_;
  const CLI::App* command = topic.empty() ? &app_ : FindCommand(topic);
  if (command == nullptr) {
    std::cerr << "orlune: there is no command " << Quoted(topic) << '\n';
    return BAD_USE;
  }
  std::cout << (manual ? ManualPage(*this, *command) : command->help());
  return manual || asked("help") ? ALL_WELL : BAD_USE;
}

int RunProgram(int argc, char** argv) {
  return CommandLine().Run(argc, argv);
}

}  // namespace front
