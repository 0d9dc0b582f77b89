// orlune match: finds the objects of picture files that have the shape of a template.
#include <iomanip>
#include <iostream>
#include <sstream>

#include "orlune/command/commands.h"
#include "orlune/shared/annotation.h"
#include "orlune/shared/file_run.h"
#include "orlune/shared/numbers.h"
#include "orlune/shared/output.h"
#include "orlune/shared/parcel.h"
#include "orlune/shared/readable.h"
#include "orlune/shared/reports.h"

namespace front {
namespace {

constexpr char CSV_HEAD[] = "File,Number,X,Y,Angle,Front,Scale,Score,Area\n";

// Half a turn more or less looks the same where the shape has no front.
std::string AngleText(const ShapeMatch& match) {
  if (!match.degrees) return "-";
  return Fixed(*match.degrees, 2) +
         (match.hasFront ? "" : " or " + Fixed(Turned(*match.degrees + 180), 2));
}

std::string TableOf(const Matching& matching) {
  std::ostringstream out;
  const auto column = [&](int width, const std::string& text) {
    out << "  " << std::setw(width) << text;
  };
  out << LineText(matching.inspection.path) << ": "
      << Plural(matching.matches.size(), "match", "es") << " among "
      << Plural(matching.inspection.particles.size(), "object") << '\n';
  if (matching.matches.empty()) return out.str();
  column(4, "No"), column(9, "X"), column(9, "Y"), column(7, "Scale"), column(6, "Score");
  out << "  Angle\n";
  for (const ShapeMatch& match : matching.matches) {
    column(4, std::to_string(match.number));
    column(9, Fixed(match.at.x, 2));
    column(9, Fixed(match.at.y, 2));
    column(7, Fixed(match.scale, 3));
    column(6, Fixed(match.score, 0));
    out << "  " << AngleText(match) << '\n';
  }
  return out.str();
}

std::string CsvRowsOf(const Matching& matching) {
  std::string rows;
  for (const ShapeMatch& match : matching.matches) {
    rows += CsvText(matching.inspection.path) + ',' + std::to_string(match.number) + ',' +
            Exact(match.at.x) + ',' + Exact(match.at.y) + ',' +
            (match.degrees ? Exact(*match.degrees) : "") + ',' + (match.hasFront ? "1," : "0,") +
            Exact(match.scale) + ',' + Exact(match.score) + ',' + Exact(match.area) + '\n';
  }
  return rows;
}

std::string JsonOf(const Matching& matching) {
  std::string record = "  {\"file\": " + JsonText(matching.inspection.path) +
                       ", \"objects\": " + std::to_string(matching.inspection.particles.size()) +
                       ", \"matches\": [";
  bool first = true;
  for (const ShapeMatch& match : matching.matches) {
    record +=
        (first ? "\n" : ",\n") + std::string("    {\"number\": ") + std::to_string(match.number) +
        ", \"x\": " + JsonNumber(match.at.x) + ", \"y\": " + JsonNumber(match.at.y) +
        ", \"angle\": " + (match.degrees ? JsonNumber(*match.degrees) : "null") +
        ", \"front\": " + (match.hasFront ? "true" : "false") +
        ", \"scale\": " + JsonNumber(match.scale) + ", \"score\": " + JsonNumber(match.score) +
        ", \"area\": " + JsonNumber(match.area) + "}";
    first = false;
  }
  return record + "]}";
}

void WriteMatches(const Matching& matching, const std::string& file) {
  const Image& gray = matching.inspection.Gray();
  const ImageInfo info = gray.Info();
  const Image picture(IMAGE_RGB, 0, info.width, info.height);
  const Canvas canvas(picture);
  canvas.CopyGray(gray);
  DrawMatches(matching, canvas);
  WritePicture(picture, {}, Depth::AsImage, file, PictureFormat::Bmp);
}

}  // namespace

int Run(const MatchCommand& command) {
  std::optional<Template> shape;
  size_t pictures = 0, matches = 0;
  FileRun run;
  run.files = command.files;
  run.workers = command.workers;
  run.quiet = command.quiet;
  run.csv = command.csv;
  run.json = command.json;
  run.csvHead = CSV_HEAD;
  run.annotate = command.annotate;
  run.annotateSuffix = "-matched.bmp";
  run.alsoRead = {command.shape};
  run.prepare = [&] {
    shape =
        Named(command.shape, [&] { return ReadTemplate(command.shape, command.settings.finding); });
  };
  run.work = [&](const std::string& file, const std::string& marked) {
    const Matching matching = FindMatches(file, *shape, command.settings);
    FileOutcome outcome;
    outcome.well = !matching.matches.empty();
    outcome.table = TableOf(matching);
    outcome.csv = CsvRowsOf(matching);
    outcome.json = JsonOf(matching);
    outcome.findings = ParcelWriter().Put(matching.matches.size()).Take();
    WriteMarked(
        marked, [&](const std::string& to) { WriteMatches(matching, to); }, &outcome);
    return outcome;
  };
  run.take = [&](const std::string& findings) {
    pictures++;
    matches += ParcelReader(findings).Get<size_t>();
  };
  run.tell = [&](std::ostream& out) {
    out << Plural(pictures, "picture") << " searched; " << Plural(matches, "match", "es")
        << " found\n";
  };
  run.summary = [&] {
    return "\"searched\": " + std::to_string(pictures) +
           ", \"matches\": " + std::to_string(matches);
  };
  return RunFiles(run);
}

}  // namespace front
