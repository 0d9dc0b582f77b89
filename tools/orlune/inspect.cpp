// orlune inspect: finds and measures the particles of picture files.
#include <fstream>
#include <iostream>
#include <memory>
#include <set>

#include "orlune/annotation.h"
#include "orlune/commands.h"
#include "orlune/progress.h"
#include "orlune/reports.h"

namespace front {
namespace {

namespace fs = std::filesystem;

std::vector<const Measure*> UsualMeasures(const InspectSettings& settings) {
  return ParseMeasures(std::string(settings.scale ? "AreaCalibrated" : "AreaPixels") +
                       ",CentreOfMassX,CentreOfMassY,WidthCalibrated,HeightCalibrated,Perimeter,"
                       "NumberOfHoles,Orientation,HeywoodCircularity");
}

// A report's place: a file, or the standard output for "-".
class Output {
 public:
  explicit Output(const std::string& path) : path_(path) {
    if (path == "-") return;
    file_.open(path, std::ios::binary | std::ios::trunc);
    if (!file_) throw std::runtime_error("cannot be written");
  }
  std::ostream& stream() { return path_ == "-" ? std::cout : file_; }
  const std::string& path() const { return path_; }
  bool Finish() {
    stream().flush();
    return stream().good();
  }

 private:
  std::string path_;
  std::ofstream file_;
};

// A name in the folder that no other file of this run has.
class AnnotationNames {
 public:
  explicit AnnotationNames(fs::path folder) : folder_(std::move(folder)) {}
  fs::path NameFor(const fs::path& picture) {
    const std::string stem = picture.stem().string() + "-annotated";
    fs::path name = folder_ / (stem + ".bmp");
    for (int copy = 2; !used_.insert(name).second; ++copy) {
      name = folder_ / (stem + "-" + std::to_string(copy) + ".bmp");
    }
    return name;
  }

 private:
  fs::path folder_;
  std::set<fs::path> used_;
};

class InspectRun {
 public:
  explicit InspectRun(const InspectCommand& command)
      : command_(command),
        names_(command.annotate),
        measures_(command.measures.empty() ? UsualMeasures(command.settings) : command.measures),
        tableOut_(command.csv == "-" || command.json == "-" ? std::cerr : std::cout),
        progress_(command.files.size()) {}

  // False when a report or the folder cannot be made; nothing is inspected then.
  bool Open() {
    try {
      if (!command_.annotate.empty()) fs::create_directories(command_.annotate);
    } catch (const fs::filesystem_error& failure) {
      std::cerr << "orlune: " << command_.annotate
                << ": the folder cannot be made: " << failure.code().message() << '\n';
      return false;
    }
    return OpenReport(command_.csv, &csvFile_, &csv_) &&
           OpenReport(command_.json, &jsonFile_, &json_);
  }

  int Work() {
    for (size_t i = 0; i < command_.files.size(); ++i) {
      progress_.Done(i);
      InspectFile(command_.files[i]);
    }
    progress_.Hide();
    if (json_) json_->Finish(summary_);
    if (!command_.quiet) {
      PrintSummary(tableOut_, summary_);
      if (annotated_ > 0) {
        tableOut_ << "Annotated pictures are in " << command_.annotate << '\n';
      }
    }
    const bool written = Finish(csvFile_.get()) & Finish(jsonFile_.get());
    return written && !failed_ ? ALL_WELL : SOME_FAILED;
  }

 private:
  template <class Report>
  bool OpenReport(const std::string& path, std::unique_ptr<Output>* file,
                  std::unique_ptr<Report>* report) {
    if (path.empty()) return true;
    try {
      *file = std::make_unique<Output>(path);
      *report = std::make_unique<Report>((*file)->stream(), measures_);
      return true;
    } catch (const std::exception& failure) {
      PrintFailure(path, failure);
      return false;
    }
  }

  bool Finish(Output* file) {
    if (!file || file->Finish()) return true;
    PrintFailure(file->path(), std::runtime_error("could not be written to its end"));
    return false;
  }

  void InspectFile(const std::string& path) {
    try {
      Inspection inspection = Inspect(path, command_.settings);
      if (!command_.annotate.empty()) Annotate(&inspection);
      summary_.Add(inspection);
      if (csv_) csv_->Add(inspection);
      if (json_) json_->Add(inspection, command_.settings);
      if (command_.quiet || &tableOut_ == &std::cerr) return;
      progress_.Hide();
      PrintTable(std::cout, inspection, command_.settings, measures_, command_.rows);
      std::cout << '\n';
    } catch (const std::exception& failure) {
      progress_.Hide();
      std::cout.flush();
      PrintFailure(path, failure);
      failed_ = true;
      summary_.failed += 1;
      const auto* reported = dynamic_cast<const LibraryFailure*>(&failure);
      if (json_) json_->AddFailure(path, reported ? reported->number() : 0, failure.what());
    }
  }

  // A picture that was inspected stays so when its annotation cannot be written.
  void Annotate(Inspection* inspection) {
    const fs::path file = names_.NameFor(inspection->path);
    Clock clock;
    try {
      WriteAnnotation(*inspection, file);
      ++annotated_;
    } catch (const std::exception& failure) {
      progress_.Hide();
      PrintFailure(file.string(), failure);
      failed_ = true;
    }
    inspection->timing.writing = clock.Lap();
  }

  const InspectCommand& command_;
  AnnotationNames names_;
  std::vector<const Measure*> measures_;
  std::ostream& tableOut_;
  Progress progress_;
  std::unique_ptr<Output> csvFile_, jsonFile_;
  std::unique_ptr<CsvReport> csv_;
  std::unique_ptr<JsonReport> json_;
  Summary summary_;
  size_t annotated_ = 0;
  bool failed_ = false;
};

}  // namespace

int Run(const InspectCommand& command) {
  InspectRun run(command);
  return run.Open() ? run.Work() : SOME_FAILED;
}

}  // namespace front
