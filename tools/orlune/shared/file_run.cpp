// A command's work on many picture files.
#include "orlune/shared/file_run.h"

#include <iostream>
#include <memory>
#include <stdexcept>

#include "orlune/command/commands.h"
#include "orlune/shared/interrupts.h"
#include "orlune/shared/numbers.h"
#include "orlune/shared/output.h"
#include "orlune/shared/parcel.h"
#include "orlune/shared/progress.h"
#include "orlune/shared/reports.h"
#include "orlune/shared/tasks.h"
#include "pictures/source.h"

namespace front {
namespace {

std::string Packed(const FileOutcome& outcome) {
  ParcelWriter parcel;
  parcel.Put(outcome.failed).Put(outcome.well).Put(outcome.table).Put(outcome.csv);
  parcel.Put(outcome.json).Put(outcome.complaints).Put(outcome.findings);
  return parcel.Take();
}

FileOutcome Unpacked(const std::string& bytes) {
  ParcelReader parcel(bytes);
  FileOutcome outcome;
  outcome.failed = parcel.Get<bool>();
  outcome.well = parcel.Get<bool>();
  outcome.table = parcel.Text();
  outcome.csv = parcel.Text();
  outcome.json = parcel.Text();
  outcome.complaints = parcel.Text();
  outcome.findings = parcel.Text();
  return outcome;
}

FileOutcome FailureOf(const std::string& file, const std::string& text,
                      const std::string& message) {
  FileOutcome outcome;
  outcome.failed = true;
  outcome.well = false;
  outcome.complaints = "orlune: " + text + '\n';
  outcome.json = JsonFailure(file, message);
  return outcome;
}

std::unique_ptr<WholeFile> OpenReport(const std::string& path) {
  if (path.empty()) return nullptr;
  return Named(path, [&] { return std::make_unique<WholeFile>(path); });
}

class Runner {
 public:
  explicit Runner(const FileRun& run)
      : run_(run),
        out_(run.csv == STANDARD_STREAM || run.json == STANDARD_STREAM ? std::cerr : std::cout),
        progress_(run.files.size()) {}

  // Throws std::invalid_argument where a file would be written that is read, or written twice.
  void Plan() {
    FilePlan plan;
    for (const std::string& file : run_.files) plan.Reads(file, "a picture to be looked at");
    for (const std::string& file : run_.alsoRead) plan.Reads(file, "read for it");
    for (const std::string& file : run_.alsoWritten) plan.Writes(file, "the set-up");
    if (!run_.csv.empty()) plan.Writes(run_.csv, "the CSV report");
    if (!run_.json.empty()) plan.Writes(run_.json, "the JSON report");
    marked_.resize(run_.files.size());
    if (run_.annotate.empty()) return;
    NamesInFolder names(run_.annotate, run_.annotateSuffix);
    for (size_t i = 0; i < run_.files.size(); i++) {
      marked_[i] = names.NameFor(run_.files[i]);
      plan.Writes(marked_[i], "the annotated picture of " + run_.files[i]);
    }
  }

  // Throws WriteFailure for a report or a folder that cannot be made.
  int Work() {
    if (run_.prepare) run_.prepare();
    if (!run_.annotate.empty()) Named(run_.annotate, [&] { MakeFolder(run_.annotate); });
    csv_ = OpenReport(run_.csv);
    json_ = OpenReport(run_.json);
    if (csv_) csv_->stream() << run_.csvHead;
    if (json_) {
      json_->stream() << "{\"program\": \"orlune\", \"version\": \"" << ORLUNE_VERSION
                      << "\",\n \"files\": [";
    }
    RunTasks({.tasks = run_.files.size(),
              .workers = run_.workers,
              .work = [&](size_t task) { return Packed(WorkOn(task)); },
              .take =
                  [&](size_t task, std::optional<std::string> result) {
                    Take(result ? Unpacked(*result) : Lost(task));
                    progress_.Done(++done_);
                  }});
    progress_.Hide();
    const bool whole = done_ == run_.files.size();
    if (json_) {
      json_->stream() << "],\n \"summary\": {" << run_.summary() << ", \"failed\": " << failed_
                      << ", \"complete\": " << (whole ? "true" : "false") << "}}\n";
    }
    if (!run_.quiet) TellSummary(whole);
    for (WholeFile* file : {csv_.get(), json_.get()}) {
      if (file != nullptr) Named(file->path(), [&] { file->Finish(); });
    }
    return well_ == run_.files.size() ? ALL_WELL : SOME_FAILED;
  }

 private:
  FileOutcome WorkOn(size_t task) const {
    const std::string& file = run_.files[task];
    try {
      return run_.work(file, marked_[task]);
    } catch (const std::exception& failure) {
      return FailureOf(file, FailureText(file, failure), failure.what());
    }
  }

  FileOutcome Lost(size_t task) const {
    const std::string& file = run_.files[task];
    const std::string message = "the process that worked on it was ended";
    return FailureOf(file, file + ": " + message, message);
  }

  void Take(const FileOutcome& outcome) {
    if (outcome.failed) failed_++;
    if (outcome.well) well_++;
    if (csv_) csv_->stream() << outcome.csv;
    if (json_) json_->stream() << (done_ == 0 ? "\n" : ",\n") << outcome.json;
    if (!outcome.failed) run_.take(outcome.findings);
    if (!run_.quiet && !outcome.table.empty() && &out_ != &std::cerr) {
      progress_.Hide();
      out_ << outcome.table;
      if (!out_) NoteClosedPipe();
    }
    if (outcome.complaints.empty()) return;
    progress_.Hide();
    std::cout.flush();
    std::cerr << outcome.complaints;
  }

  void TellSummary(bool whole) const {
    if (!whole) {
      out_ << "Stopped after " << done_ << " of " << Plural(run_.files.size(), "picture") << '\n';
    }
    run_.tell(out_);
    if (failed_ > 0) out_ << Plural(failed_, "picture") << " could not be read\n";
    if (!run_.annotate.empty()) out_ << "Annotated pictures are in " << run_.annotate << '\n';
  }

  const FileRun& run_;
  std::ostream& out_;
  Progress progress_;
  std::vector<std::string> marked_;
  std::unique_ptr<WholeFile> csv_, json_;
  size_t done_ = 0, failed_ = 0, well_ = 0;
};

}  // namespace

int RunFiles(const FileRun& asked) {
  FileRun run = asked;
  try {
    run.files = WithAllPages(asked.files);
    Runner runner(run);
    runner.Plan();
    return runner.Work();
  } catch (const std::invalid_argument& error) {
    std::cerr << "orlune: " << error.what() << '\n';
    return BAD_USE;
  } catch (const std::exception& failure) {
    std::cerr << "orlune: " << failure.what() << '\n';
    return SOME_FAILED;
  }
}

void WriteMarked(const std::string& file, const std::function<void(const std::string&)>& write,
                 FileOutcome* outcome) {
  if (file.empty()) return;
  try {
    write(file);
  } catch (const std::exception& failure) {
    outcome->well = false;
    outcome->complaints += "orlune: " + FailureText(file, failure) + '\n';
  }
}

}  // namespace front
