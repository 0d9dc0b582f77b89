// orlune: inspects, filters and converts picture files from the command line.
#include <CLI/CLI.hpp>
#include <iomanip>
#include <iostream>
#include <map>

#include "orlune/commands.h"
#include "orlune/numbers.h"

namespace {

using namespace front;  // NOLINT: this is the program

constexpr char PROGRAM_FOOTER[] = R"(
Examples:
  orlune info part.tif
  orlune inspect --dark --keep "AreaPixels>=50" parts/*.bmp
  orlune inspect --scale 0.05 --unit mm --csv parts.csv --annotate marked parts/*.tif
  orlune filter --steps "median 5; edges sobel 20" --out filtered parts/*.tif
  orlune convert --type u8 --stretch deep.tif view.bmp

'orlune COMMAND --help' tells more about a command.
Exit status: 0 all went well; 1 a file could not be read or written; 2 wrong use.)";

constexpr char INSPECT_FOOTER[] = R"(
How objects are found:
  Every pixel whose grey level lies in the range is object, all others are background. Without
  --range, --method finds the boundary in each picture, and objects are the pixels at or above it,
  with --dark those below it. Colour pictures are inspected by the mean of their colours.
  --range is in the values of the file, whatever its depth. The automatic methods work on 8 bits:
  deeper pictures are stretched for them from their darkest to their brightest pixel. 16-bit values
  above 32767 are read as negative.
  Touching objects form one particle.

Which particles are kept:
  --keep takes comparisons of the 50 measures, in the units that the table shows, with commas
  between them; all must hold:  --keep "AreaPixels>=50,NumberOfHoles=1"  --keep "Left=10:500"
  'orlune measures' lists them.

Examples:
  orlune inspect part.tif
  orlune inspect --dark --keep "AreaPixels>=50" --annotate marked parts/*.bmp
  orlune inspect --range 1800:4095 --measures AreaPixels,Perimeter,Orientation deep.tif
  orlune inspect --scale 0.05 --unit mm --json parts.json --quiet parts/*.tif)";

constexpr char FILTER_FOOTER[] = R"(
What is filtered:
  The steps follow one another on the picture in memory, which keeps its depth. Colour pictures are
  filtered by the mean of their colours. Neighbours beyond the picture are its own pixels, mirrored
  at the edge: no side of it may be shorter than half of the largest window. Under a mask, each step
  changes only the pixels where the mask is not 0.

Where pictures go:
  --out makes a picture of the same name in a folder for each file, -o one picture of one file. The
  ending tells the format: .orln, .tif or .bmp. A picture that is read is never written over, nor
  are two pictures written to one file.

Steps:
)";

constexpr char FILTER_EXAMPLES[] = R"(
Examples:
  orlune filter --steps "median 5" part.tif -o quiet.tif
  orlune filter --steps "lowpass 3 10; edges sobel 20" --out edges parts/*.bmp
  orlune filter --steps "rank 9x1 2" --mask tray.bmp --format bmp --out ranked parts/*.tif)";

constexpr char CONVERT_FOOTER[] = R"(
Formats: native (.orln) holds all types and the scale of a pixel; TIFF (.tif, .tiff) holds u8, i16
and rgb; BMP (.bmp) holds u8 and rgb. Types: u8 0 to 255; i16 -32768 to 32767; sgl 32-bit float;
complex two floats; rgb three bytes. Values beyond a type's range are limited to it, unless
--stretch spreads them over it.

Examples:
  orlune convert part.bmp part.tif
  orlune convert --type u8 --stretch deep.tif view.bmp
  orlune convert --type sgl part.tif part.orln)";

// Turns a parser's complaint into one of the command line.
template <class Function>
void Parse(const std::string& option, Function function) {
  try {
    function();
  } catch (const std::invalid_argument& error) {
    throw CLI::ValidationError(option, error.what());
  }
}

const std::map<std::string, AutoBMethod> METHODS = {{"clustering", AUTOB_CLUSTERING},
                                                    {"entropy", AUTOB_ENTROPY},
                                                    {"metric", AUTOB_METRIC},
                                                    {"moments", AUTOB_MOMENTS},
                                                    {"interclass", AUTOB_INTERCLASS}};
const std::map<std::string, int32_t> TYPES = {{"u8", IMAGE_U8},
                                              {"i16", IMAGE_I16},
                                              {"sgl", IMAGE_SGL},
                                              {"complex", IMAGE_COMPLEX},
                                              {"rgb", IMAGE_RGB}};
const std::map<std::string, PictureFormat> FORMATS = {
    {"native", PictureFormat::Native}, {"tiff", PictureFormat::Tiff}, {"bmp", PictureFormat::Bmp}};
const std::map<std::string, bool> CONNECTIVITIES = {{"4", false}, {"8", true}};

template <class Value>
Value Choose(const std::string& option, const std::map<std::string, Value>& choices,
             const std::string& name) {
  const auto found = choices.find(name);
  if (found != choices.end()) return found->second;
  std::string list;
  for (const auto& [choice, value] : choices) list += (list.empty() ? "" : ", ") + choice;
  throw CLI::ValidationError(option, "'" + name + "' is none of " + list);
}

constexpr char SWAP_HELP[] =
    "exchange the bytes of 16-bit pixels: for TIFF files that other\nprograms wrote in the low "
    "byte "
    "first order";

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

CLI::App* AddInfo(CLI::App* app, InfoCommand* command) {
  CLI::App* info = app->add_subcommand("info", "tell what picture files hold");
  info->add_option("FILE", command->files, "picture files: native, TIFF or BMP")
      ->required()
      ->type_name("FILE");
  return info;
}

CLI::App* AddInspect(CLI::App* app, InspectCommand* command) {
  CLI::App* inspect = app->add_subcommand("inspect", "find, measure and list the particles");
  InspectSettings* settings = &command->settings;
  inspect->add_option("FILE", command->files, "picture files: native, TIFF or BMP")
      ->required()
      ->type_name("FILE");

  const std::string finding = "Finding objects";
  CLI::Option* range = inspect->add_option_function<std::string>(
      "--range",
      [=](const std::string& text) {
        Parse("--range", [&] { settings->range = ParseRange(text); });
      },
      "grey levels of objects: MIN:MAX, MIN: or :MAX");
  range->type_name("LEVELS")->group(finding);
  CLI::Option* method = inspect->add_option_function<std::string>(
      "--method",
      [=](const std::string& name) { settings->method = Choose("--method", METHODS, name); },
      "how to find the boundary: clustering (used if nothing is said),\nentropy, metric, moments, "
      "interclass");
  method->type_name("METHOD")->group(finding)->excludes(range);
  CLI::Option* light = inspect->add_flag(
      "--light", [](int64_t) {}, "objects are lighter than the background (usual)");
  CLI::Option* dark =
      inspect->add_flag("--dark", settings->dark, "objects are darker than the background");
  light->group(finding)->excludes(range);
  dark->group(finding)->excludes(range)->excludes(light);
  inspect
      ->add_option_function<std::string>(
          "--connectivity",
          [=](const std::string& name) {
            settings->eightConnected = Choose("--connectivity", CONNECTIVITIES, name);
          },
          "pixels that touch by a corner are joined (8, usual) or not (4)")
      ->type_name("4|8")
      ->group(finding);
  inspect->add_flag("--swap-bytes", settings->swapBytes, SWAP_HELP)->group(finding);

  const std::string measuring = "Measuring";
  inspect
      ->add_option_function<std::vector<std::string>>(
          "--keep",
          [=](const std::vector<std::string>& texts) {
            for (const std::string& text : texts) {
              Parse("--keep", [&] {
                for (Condition& c : ParseConditions(text)) settings->keep.push_back(c);
              });
            }
          },
          "keep only particles for which this holds, as \"AreaPixels>=50\";\nmay be given again")
      ->allow_extra_args(false)
      ->type_name("CONDITION")
      ->group(measuring);
  inspect
      ->add_option_function<std::string>(
          "--measures",
          [=](const std::string& text) {
            Parse("--measures", [&] { command->measures = ParseMeasures(text); });
          },
          "measures to list, with commas between them, or all")
      ->type_name("NAMES")
      ->group(measuring);
  inspect
      ->add_option_function<std::string>(
          "--scale",
          [=](const std::string& text) {
            Parse("--scale", [&] { settings->scale = ParseScale(text); });
          },
          "size of a pixel in the unit, or X,Y for width and height")
      ->type_name("SIZE")
      ->group(measuring);
  inspect->add_option("--unit", settings->unit, "name of the unit, as mm")
      ->type_name("NAME")
      ->group(measuring);

  const std::string reporting = "Reporting";
  inspect
      ->add_option("--csv", command->csv, "write the kept particles as CSV; - is standard output")
      ->type_name("FILE")
      ->group(reporting);
  inspect
      ->add_option("--json", command->json,
                   "write all that was found as JSON; - is standard output")
      ->type_name("FILE")
      ->group(reporting);
  inspect
      ->add_option("--annotate", command->annotate,
                   "write each picture as BMP with outlines, rectangles and numbers")
      ->type_name("FOLDER")
      ->group(reporting);
  inspect->add_option("--rows", command->rows, "list at most so many particles a picture; 0 is all")
      ->type_name("N")
      ->capture_default_str()
      ->group(reporting);
  inspect->add_flag("--quiet", command->quiet, "print no table and no summary")->group(reporting);
  inspect->footer(INSPECT_FOOTER);
  return inspect;
}

CLI::App* AddFilter(CLI::App* app, FilterCommand* command) {
  CLI::App* filter =
      app->add_subcommand("filter", "apply filters to pictures, one after the other");
  filter->add_option("FILE", command->files, "picture files: native, TIFF or BMP")
      ->required()
      ->type_name("FILE");
  filter
      ->add_option_function<std::string>(
          "--steps",
          [=](const std::string& text) {
            Parse("--steps", [&] { command->steps = ParseChain(text); });
          },
          "what to do, with semicolons between the steps, as\n\"median 5; edges sobel 20\"")
      ->required()
      ->type_name("STEPS");
  CLI::Option* folder =
      filter->add_option("--out", command->folder, "write a picture of each file into this folder");
  folder->type_name("FOLDER");
  filter->add_option("-o", command->to, "write the picture of one file to this file")
      ->type_name("OUT")
      ->excludes(folder);
  filter
      ->add_option("--mask", command->mask,
                   "filter only where this picture, of the same size, is not 0")
      ->type_name("FILE");
  filter
      ->add_option_function<std::string>(
          "--format",
          [=](const std::string& name) { command->format = Choose("--format", FORMATS, name); },
          "native, tiff or bmp; otherwise by the endings of the names")
      ->type_name("FORMAT");
  filter->add_flag("--swap-bytes", command->swapBytes, SWAP_HELP);
  filter->add_flag("--quiet", command->quiet, "print no list and no summary");
  filter->footer(FILTER_FOOTER + StepsHelp() + FILTER_EXAMPLES);
  return filter;
}

CLI::App* AddConvert(CLI::App* app, ConvertCommand* command) {
  CLI::App* convert = app->add_subcommand("convert", "write a picture in another format or type");
  convert->add_option("IN", command->from, "picture file to read")->required()->type_name("IN");
  convert->add_option("OUT", command->to, "picture file to write")->required()->type_name("OUT");
  convert
      ->add_option_function<std::string>(
          "--format",
          [=](const std::string& name) { command->format = Choose("--format", FORMATS, name); },
          "native, tiff or bmp; otherwise by the ending of OUT")
      ->type_name("FORMAT");
  convert
      ->add_option_function<std::string>(
          "--type", [=](const std::string& name) { command->type = Choose("--type", TYPES, name); },
          "u8, i16, sgl, complex or rgb; otherwise that of IN")
      ->type_name("TYPE");
  convert->add_flag("--stretch", command->stretch,
                    "make it gray, and spread its values from darkest to brightest\nover 0 to 255");
  convert->add_flag("--swap-bytes", command->swapBytes, SWAP_HELP);
  convert->footer(CONVERT_FOOTER);
  return convert;
}

int RunProgram(int argc, char** argv) {
  CLI::App app("orlune finds, measures and lists the particles of picture files.", "orlune");
  app.set_version_flag("--version", std::string("orlune ") + ORLUNE_VERSION, "print the version");
  app.set_help_flag("--help,-h", "print this help");
  app.require_subcommand(0, 1);
  app.formatter(std::make_shared<HelpText>());

  InfoCommand infoCommand;
  InspectCommand inspectCommand;
  FilterCommand filterCommand;
  ConvertCommand convertCommand;
  const CLI::App* info = AddInfo(&app, &infoCommand);
  const CLI::App* inspect = AddInspect(&app, &inspectCommand);
  const CLI::App* filter = AddFilter(&app, &filterCommand);
  const CLI::App* convert = AddConvert(&app, &convertCommand);
  const CLI::App* measures = app.add_subcommand("measures", "list the 50 measures of a particle");

  app.footer(PROGRAM_FOOTER);

  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    if (error.get_exit_code() == 0) return app.exit(error);  // help and version
    std::cerr << "orlune: " << error.what() << "\n'orlune --help' tells how it is used.\n";
    return BAD_USE;
  }
  ZEL_SetErrorMode(ERROR_MODE_SILENT);
  if (info->parsed()) return Run(infoCommand);
  if (inspect->parsed()) return Run(inspectCommand);
  if (filter->parsed()) return Run(filterCommand);
  if (convert->parsed()) return Run(convertCommand);
  if (measures->parsed()) return ListMeasures();
  std::cout << app.help();
  return BAD_USE;
}

}  // namespace

int main(int argc, char** argv) {
  try {
    return RunProgram(argc, argv);
  } catch (const std::exception& failure) {
    std::cerr << "orlune: " << failure.what() << '\n';
    return SOME_FAILED;
  }
}
