// orlune inspect: finds and measures the particles of picture files.
#include <iostream>
#include <memory>
#include <sstream>

#include "orlune/command/commands.h"
#include "orlune/shared/annotation.h"
#include "orlune/shared/interrupts.h"
#include "orlune/shared/numbers.h"
#include "orlune/shared/parcel.h"
#include "orlune/shared/progress.h"
#include "orlune/shared/reports.h"
#include "orlune/shared/tasks.h"
#include "pictures/source.h"

namespace front {
namespace {

// What there is to say of a file, made where it was inspected and told where all come together.
struct FileResult {
  Summary summary;
  std::string table, csv, json;
  std::string complaints;  // lines for standard error
  size_t pictures = 0;     // written

  std::string Pack() const {
    ParcelWriter parcel;
    parcel.Put(summary).Put(table).Put(csv).Put(json).Put(complaints).Put(pictures);
    return parcel.Take();
  }
  static FileResult Unpack(const std::string& bytes) {
    ParcelReader parcel(bytes);
    FileResult result;
    result.summary = parcel.Get<Summary>();
    result.table = parcel.Text();
    result.csv = parcel.Text();
    result.json = parcel.Text();
    result.complaints = parcel.Text();
    result.pictures = parcel.Get<size_t>();
    return result;
  }
};

// A picture for each file: where it goes, in the order of the files, and who makes it.
struct PictureSet {
  std::vector<std::string> names;  // empty: not wanted
  void (*write)(const Inspection& inspection, const std::string& file);
};

class InspectRun {
 public:
  explicit InspectRun(const InspectCommand& command)
      : command_(command),
        settings_(command.settings),
        measures_(MeasuresOf(command)),
        tableOut_(command.csv == STANDARD_STREAM || command.json == STANDARD_STREAM ? std::cerr
                                                                                    : std::cout),
        progress_(command.files.size()) {
    settings_.measured = SetOf(measures_);
  }

  // Throws std::invalid_argument where a file would be written that is read, or written twice.
  void Plan() {
    FilePlan plan;
    for (const std::string& file : command_.files) plan.Reads(file, "a picture to be inspected");
    if (!command_.mask.empty()) plan.Reads(command_.mask, "the mask");
    if (!command_.csv.empty()) plan.Writes(command_.csv, "the CSV report");
    if (!command_.json.empty()) plan.Writes(command_.json, "the JSON report");
    PlanPictures(command_.annotate, "-annotated.bmp", "the annotated picture of ", &plan,
                 &annotated_);
    PlanPictures(command_.labels, "-labels.tif", "the label picture of ", &plan, &labelled_);
  }

  // False when a report or a folder cannot be made; nothing is inspected then.
  bool Open() {
    return OpenMask() && MakeFolderFor(command_.annotate) && MakeFolderFor(command_.labels) &&
           OpenReport(command_.csv, &csv_) && OpenReport(command_.json, &json_);
  }

  int Work() {
    if (csv_) csv_->stream() << CsvHead(measures_);
    if (json_) jsonReport_ = std::make_unique<JsonReport>(json_->stream());
    RunTasks({.tasks = command_.files.size(),
              .workers = command_.workers,
              .work = [&](size_t task) { return InspectFile(task).Pack(); },
              .take =
                  [&](size_t task, std::optional<std::string> result) {
                    Take(result ? FileResult::Unpack(*result) : Lost(task));
                    progress_.Done(task + 1);
                  }});
    progress_.Hide();
    const size_t done = summary_.inspected + summary_.failed;
    const bool whole = done == command_.files.size();
    if (jsonReport_) jsonReport_->Finish(summary_, whole);
    if (!command_.quiet) TellSummary(done, whole);
    const bool written = Finish(csv_.get()) & Finish(json_.get());
    return written && summary_.failed == 0 && !pictureFailed_ ? ALL_WELL : SOME_FAILED;
  }

 private:
  void PlanPictures(const std::string& folder, const std::string& suffix, const std::string& what,
                    FilePlan* plan, PictureSet* set) const {
    if (folder.empty()) return;
    NamesInFolder names(folder, suffix);
    for (const std::string& file : command_.files) {
      set->names.push_back(names.NameFor(file));
      plan->Writes(set->names.back(), what + file);
    }
  }

  bool OpenMask() {
    if (command_.mask.empty()) return true;
    try {
      mask_ = ReadMask(command_.mask);
      settings_.mask = &*mask_;
      return true;
    } catch (const std::exception& failure) {
      PrintFailure(command_.mask, failure);
      return false;
    }
  }

  static bool MakeFolderFor(const std::string& folder) {
    if (folder.empty()) return true;
    try {
      MakeFolder(folder);
      return true;
    } catch (const std::exception& failure) {
      PrintFailure(folder, failure);
      return false;
    }
  }

  static bool OpenReport(const std::string& path, std::unique_ptr<WholeFile>* file) {
    if (path.empty()) return true;
    try {
      *file = std::make_unique<WholeFile>(path);
      return true;
    } catch (const std::exception& failure) {
      PrintFailure(path, failure);
      return false;
    }
  }

  static bool Finish(WholeFile* file) {
    if (file == nullptr) return true;
    try {
      file->Finish();
      return true;
    } catch (const std::exception& failure) {
      if (file->path() != STANDARD_STREAM) PrintFailure(file->path(), failure);
      return file->path() == STANDARD_STREAM;  // which the program looks at itself at its end
    }
  }

  FileResult InspectFile(size_t task) const {
    const std::string& path = command_.files[task];
    FileResult result;
    try {
      Inspection inspection = Inspect(path, settings_);
      Clock clock;
      WritePictureOf(annotated_, task, inspection, &result);
      WritePictureOf(labelled_, task, inspection, &result);
      if (!annotated_.names.empty() || !labelled_.names.empty()) {
        inspection.timing.writing = clock.Lap();
      }
      result.summary = SummaryOf(inspection);
      if (csv_) result.csv = CsvRows(inspection, measures_);
      if (json_) result.json = JsonRecord(inspection, settings_, measures_);
      if (!command_.quiet && &tableOut_ != &std::cerr) {
        std::ostringstream table;
        PrintTable(table, inspection, settings_, measures_, command_.rows);
        result.table = table.str();
      }
    } catch (const std::exception& failure) {
      result = {};
      result.summary.failed = 1;
      result.complaints = "orlune: " + FailureText(path, failure) + '\n';
      result.json = JsonFailure(path, failure.what());
    }
    return result;
  }

  // A picture that was inspected stays so when one of what was found cannot be written.
  static void WritePictureOf(const PictureSet& set, size_t task, const Inspection& inspection,
                             FileResult* result) {
    if (set.names.empty()) return;
    try {
      set.write(inspection, set.names[task]);
      ++result->pictures;
    } catch (const std::exception& failure) {
      result->complaints += "orlune: " + FailureText(set.names[task], failure) + '\n';
    }
  }

  FileResult Lost(size_t task) const {
    const std::string message = "the process that inspected it was ended";
    FileResult result;
    result.summary.failed = 1;
    result.complaints = "orlune: " + command_.files[task] + ": " + message + '\n';
    result.json = JsonFailure(command_.files[task], message);
    return result;
  }

  void Take(const FileResult& result) {
    summary_ += result.summary;
    pictures_ += result.pictures;
    if (csv_) csv_->stream() << result.csv;
    if (jsonReport_) jsonReport_->Add(result.json);
    if (!result.table.empty()) {
      progress_.Hide();
      std::cout << result.table << '\n';
      if (!std::cout) NoteClosedPipe();
    }
    if (result.complaints.empty()) return;
    progress_.Hide();
    std::cout.flush();
    std::cerr << result.complaints;
    pictureFailed_ = true;
  }

  void TellSummary(size_t done, bool whole) const {
    if (!whole) {
      tableOut_ << "Stopped after " << done << " of " << Plural(command_.files.size(), "picture")
                << '\n';
    }
    PrintSummary(tableOut_, summary_);
    if (pictures_ == 0) return;
    if (!command_.annotate.empty()) {
      tableOut_ << "Annotated pictures are in " << command_.annotate << '\n';
    }
    if (!command_.labels.empty()) tableOut_ << "Label pictures are in " << command_.labels << '\n';
  }

  const InspectCommand& command_;
  InspectSettings settings_;
  std::optional<Image> mask_;
  MeasureList measures_;
  PictureSet annotated_{{}, WriteAnnotation}, labelled_{{}, WriteLabels};
  std::ostream& tableOut_;
  Progress progress_;
  std::unique_ptr<WholeFile> csv_, json_;
  std::unique_ptr<JsonReport> jsonReport_;
  Summary summary_;
  size_t pictures_ = 0;
  bool pictureFailed_ = false;
};

}  // namespace

MeasureList MeasuresOf(const InspectWork& work) {
  if (!work.measures.empty()) return work.measures;
  return ParseMeasures(std::string(work.settings.scale ? "AreaCalibrated" : "AreaPixels") +
                       ",CentreOfMassX,CentreOfMassY,WidthCalibrated,HeightCalibrated,Perimeter,"
                       "NumberOfHoles,Orientation,HeywoodCircularity");
}

int Run(const InspectCommand& asked) {
  InspectCommand command = asked;
  try {
    command.files = WithAllPages(asked.files);
  } catch (const std::exception& failure) {
    std::cerr << "orlune: " << failure.what() << '\n';
    return SOME_FAILED;
  }
  InspectRun run(command);
  try {
    run.Plan();
  } catch (const std::invalid_argument& error) {
    std::cerr << "orlune: " << error.what() << '\n';
    return BAD_USE;
  }
  return run.Open() ? run.Work() : SOME_FAILED;
}

}  // namespace front
