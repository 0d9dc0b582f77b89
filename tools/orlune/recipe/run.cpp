// orlune run: recipes carried out on picture files, and what was found recorded.
#include "orlune/recipe/run.h"

#include <filesystem>
#include <iostream>
#include <memory>
#include <optional>
#include <set>
#include <system_error>

#include "orlune/command/commands.h"
#include "orlune/recipe/folder_watch.h"
#include "orlune/recipe/recipe_run.h"
#include "orlune/recipe/run_database.h"
#include "orlune/recipe/run_reports.h"
#include "orlune/recipe/verdict_call.h"
#include "orlune/recipe/verdict_pipe.h"
#include "orlune/shared/interrupts.h"
#include "orlune/shared/numbers.h"
#include "orlune/shared/output.h"
#include "orlune/shared/parcel.h"
#include "orlune/shared/progress.h"
#include "orlune/shared/readable.h"
#include "orlune/shared/tasks.h"
#include "pictures/source.h"

namespace front {
namespace {

// A report that grows by each picture.
class Report {
 public:
  // Throws as WholeFile. Without a path nothing is written.
  void Open(const std::string& path) {
    if (!path.empty()) file_ = Named(path, [&] { return std::make_unique<WholeFile>(path); });
  }
  bool IsOpen() const { return file_ != nullptr; }
  void Add(const std::string& text) {
    if (file_) file_->stream() << text;
  }
  // For whoever reads along.
  void Flush() {
    if (file_) file_->stream().flush();
  }
  void Finish() {
    if (file_) Named(file_->path(), [&] { file_->Finish(); });
  }

 private:
  std::unique_ptr<WholeFile> file_;
};

// What the reports that are open get of a picture.
struct ReportTexts {
  std::string csv, json, html;
};

class RecipeRunner {
 public:
  RecipeRunner(const RunCommand& command, const Recipe& recipe, const RecipeRun& run)
      : command_(command),
        recipe_(recipe),
        run_(run),
        names_(command.annotate, "-result.bmp"),
        out_(command.csv == STANDARD_STREAM || command.json == STANDARD_STREAM ||
                     command.html == STANDARD_STREAM
                 ? std::cerr
                 : std::cout) {}

  // Throws std::invalid_argument where a file would be written that is read, or written twice, and
  // what cannot be made as std::runtime_error.
  int Work() {
    std::unique_ptr<FolderWatch> watch;
    if (!command_.watch.empty()) watch = std::make_unique<FolderWatch>(command_.watch);
    TakeFiles();
    for (const std::string& file : files_) PlanAnnotated(file);
    if (command_.onlyList) return ALL_WELL;
    if (!command_.verdicts.empty()) pipe_ = std::make_unique<VerdictPipe>(command_.verdicts);
    if (!command_.annotate.empty())
      Named(command_.annotate, [&] { MakeFolder(command_.annotate); });
    csv_.Open(command_.csv);
    json_.Open(command_.json);
    html_.Open(command_.html);
    csv_.Add(RunCsvHead());
    html_.Add(HtmlHead(recipe_));
    WorkOnPending();
    const std::string ended = watch ? WorkAsTheyCome(watch.get()) : "";
    const bool whole = told_ == files_.size();
    html_.Add(HtmlEnd(counts_, whole));
    for (Report* report : {&csv_, &json_, &html_}) report->Finish();
    if (database_ && whole) database_->Finish();
    if (!command_.quiet) TellSummary(whole);
    if (!ended.empty()) std::cerr << "orlune: " << ended << '\n';
    const bool heard = out_.flush().good() || Interrupted() != 0;
    const bool well = whole && counts_.errors == 0 && failedCalls_ == 0 && ended.empty() && heard;
    return !well ? NO_VERDICT : counts_.failed > 0 ? SOME_FAILED : ALL_WELL;
  }

 private:
  // The pictures of the run, and which of them are done.
  void TakeFiles() {
    files_ = WithAllPages(command_.files);
    RefuseWatched();
    // Before an empty file becomes a database.
    plan_ = PlanFor(files_);
    if (!command_.database.empty()) {
      database_ = std::make_unique<RunDatabase>(command_.database);
      const bool resumed = command_.resume && database_->Resume(recipe_, files_);
      if (!resumed) {
        RefuseNone();
        database_->Begin(recipe_, files_);
      }
      files_ = database_->Files();
      done_ = database_->Done();
      plan_ = PlanFor(files_);
    }
    RefuseNone();
    done_.resize(files_.size());
    for (size_t i = 0; i < files_.size(); i++) {
      if (!done_[i]) pending_.push_back(i);
    }
  }

  void RefuseNone() const {
    if (files_.empty() && command_.watch.empty()) {
      throw std::invalid_argument("give the pictures to be looked at");
    }
  }

  // Of all but the annotated pictures.
  FilePlan PlanFor(const std::vector<std::string>& files) const {
    FilePlan plan;
    for (const std::string& file : files) plan.Reads(file, "a picture to be looked at");
    for (const std::string& file : run_.ReadToo()) plan.Reads(file, "read for the recipe");
    const auto writes = [&](const std::string& file, const std::string& what) {
      if (!file.empty()) plan.Writes(file, what);
    };
    writes(command_.csv, "the CSV report");
    writes(command_.json, "the JSON lines");
    writes(command_.html, "the HTML report");
    writes(command_.database, "the database");
    return plan;
  }

  // What is written into the watched folder would come as a picture.
  void RefuseWatched() const {
    if (command_.watch.empty()) return;
    const std::string watched = IdentityOf(command_.watch);
    const auto refuse = [&](const std::string& folder) {
      if (IdentityOf(folder.empty() ? "." : folder) != watched) return;
      throw std::invalid_argument("reports and records cannot go into the folder that is watched");
    };
    if (!command_.annotate.empty()) refuse(command_.annotate);
    for (const std::string& file :
         {command_.csv, command_.json, command_.html, command_.database, command_.verdicts}) {
      if (!file.empty() && file != STANDARD_STREAM) {
        refuse(std::filesystem::path(file).parent_path().string());
      }
    }
  }

  void PlanAnnotated(const std::string& file) {
    annotated_.push_back(command_.annotate.empty() ? "" : names_.NameFor(file));
    if (annotated_.back().empty()) return;
    plan_.Writes(annotated_.back(), "the annotated picture of " + file);
  }

  // Until an interrupt, or until the folder goes away: then what is told stays told, and the reason
  // is given. The reports that go to a pipe are complete by each of them.
  std::string WorkAsTheyCome(FolderWatch* watch) {
    const std::set<std::string> recorded(files_.begin(), files_.end());
    bool first = true;
    while (Interrupted() == 0) {
      std::vector<std::string> files;
      try {
        files = watch->Next();
      } catch (const std::system_error& failure) {
        return failure.what();
      }
      // Those of a run that is resumed have their verdicts.
      if (first) std::erase_if(files, [&](const auto& file) { return recorded.contains(file); });
      first = false;
      if (files.empty()) continue;
      if (database_) database_->Add(files);
      pending_.clear();
      for (const std::string& file : files) {
        pending_.push_back(files_.size());
        files_.push_back(file);
        plan_.Reads(file, "a picture to be looked at");
        PlanAnnotated(file);
      }
      WorkOnPending();
    }
    return "";
  }

  void WorkOnPending() {
    progress_.emplace(pending_.size());
    size_t taken = 0;
    TaskRun tasks;
    tasks.tasks = pending_.size();
    tasks.workers = command_.workers;
    tasks.apart = true;
    if (command_.limit > 0) tasks.limit = Seconds(command_.limit);
    tasks.work = [&](size_t task) { return WithTexts(WorkOn(pending_[task])); };
    tasks.late = [&](size_t task) {
      return WithTexts(ErrorOf(files_[pending_[task]],
                               "it took longer than " + Short(command_.limit) + " seconds"));
    };
    tasks.take = [&](size_t task, std::optional<std::string> result) {
      TakeNew(pending_[task], result ? *result : WithTexts(Lost(pending_[task])));
      progress_->Done(++taken);
    };
    if (!pending_.empty()) RunTasks(tasks);
    if (taken == pending_.size()) TellDoneBefore(files_.size());
    progress_.reset();
  }

  PictureResult WorkOn(size_t picture) const {
    try {
      return run_.Run(files_[picture], {.annotated = annotated_[picture],
                                        .thumbnail = !command_.html.empty(),
                                        .stepsFolder = ""});
    } catch (const std::exception& failure) {
      return ErrorOf(files_[picture], failure.what());
    }
  }

  PictureResult Lost(size_t picture) const {
    return ErrorOf(files_[picture], "the process that worked on it was ended");
  }

  ReportTexts TextsOf(const PictureResult& result) const {
    return {.csv = csv_.IsOpen() ? CsvRows(result) : "",
            .json = json_.IsOpen() ? JsonLine(result) : "",
            .html = html_.IsOpen() ? HtmlOf(result) : ""};
  }

  // The result and its texts as bytes: workers write the texts, since one process alone would be
  // late with those of many.
  std::string WithTexts(const PictureResult& result) const {
    const ReportTexts texts = TextsOf(result);
    ParcelWriter parcel;
    parcel.Put(Packed(result)).Put(texts.csv).Put(texts.json).Put(texts.html);
    return parcel.Take();
  }

  // Those between pictures that were still to be done are told where they belong.
  void TakeNew(size_t picture, const std::string& resultWithTexts) {
    ParcelReader parcel(resultWithTexts);
    const PictureResult result = UnpackedResult(parcel.Text(), database_ || PrintsVerdicts());
    const ReportTexts texts{.csv = parcel.Text(), .json = parcel.Text(), .html = parcel.Text()};
    TellDoneBefore(picture);
    if (database_) database_->Store(picture, result);
    Tell(result, texts);
    PassOn(result);
  }

  // To whoever waits for the verdict. What a run that is resumed has in its records is old.
  void PassOn(const PictureResult& result) {
    if (pipe_) pipe_->Send(VerdictLine(result));
    if (command_.call.empty()) return;
    const std::string failure = CallFor(
        result,
        {.program = command_.call, .limit = Seconds(command_.callLimit), .recipe = recipe_.name});
    if (failure.empty()) return;
    failedCalls_++;
    progress_->Hide();
    std::cerr << "orlune: " << command_.call << " for " << LineText(result.file) << ": " << failure
              << '\n';
  }

  void TellDoneBefore(size_t picture) {
    while (told_ < picture) {
      const PictureResult stored = database_->Stored(told_);
      Tell(stored, TextsOf(stored));
    }
  }

  bool PrintsVerdicts() const { return !command_.quiet && &out_ != &std::cerr; }

  void Tell(const PictureResult& result, const ReportTexts& texts) {
    told_++;
    counts_.Add(result.verdict);
    csv_.Add(texts.csv);
    json_.Add(texts.json);
    html_.Add(texts.html);
    if (!command_.watch.empty()) csv_.Flush();
    if (!command_.watch.empty()) json_.Flush();
    if (!PrintsVerdicts()) return;
    progress_->Hide();
    if (command_.watch.empty()) {
      PrintResult(out_, result);
    } else {
      PrintVerdict(out_, result);
      out_.flush();
    }
    if (!out_) NoteClosedPipe();
  }

  void TellSummary(bool whole) const {
    if (!whole) {
      out_ << "Stopped after " << told_ << " of " << Plural(files_.size(), "picture") << '\n';
    }
    out_ << recipe_.name << ": " << Plural(counts_.All(), "picture") << ", " << counts_.passed
         << " passed, " << counts_.failed << " failed, " << counts_.errors
         << " without a verdict\n";
    if (!command_.annotate.empty()) {
      out_ << "Annotated pictures are in " << command_.annotate << '\n';
    }
    if (pipe_ && pipe_->unread() > 0) {
      out_ << Plural(pipe_->unread(), "verdict") << " found no reader at " << command_.verdicts
           << '\n';
    }
    if (failedCalls_ > 0) {
      out_ << Plural(failedCalls_, "call") << " of " << command_.call << " failed\n";
    }
  }

  const RunCommand& command_;
  const Recipe& recipe_;
  const RecipeRun& run_;
  NamesInFolder names_;
  FilePlan plan_;
  std::ostream& out_;
  std::unique_ptr<RunDatabase> database_;
  std::vector<std::string> files_, annotated_;
  std::vector<bool> done_;
  std::vector<size_t> pending_;
  Report csv_, json_, html_;
  std::unique_ptr<VerdictPipe> pipe_;
  size_t failedCalls_ = 0;
  std::optional<Progress> progress_;  // while pictures are worked on
  size_t told_ = 0;
  RunCounts counts_;
};

void PrintMistakes(const std::string& file, const std::vector<Mistake>& mistakes) {
  for (const Mistake& mistake : mistakes) {
    std::cerr << file << ':' << mistake.line << ": " << mistake.text << '\n';
  }
}

int Explain(const RunCommand& command, const RecipeRun& run) {
  FilePlan plan;
  plan.Reads(command.explainOn, "the picture to be looked at");
  for (const std::string& file : run.ReadToo()) plan.Reads(file, "read for the recipe");
  for (const std::string& file : run.StepFiles(command.out)) plan.Writes(file, "what a step left");
  MakeFolder(command.out);
  const PictureResult result =
      run.Run(command.explainOn, {.annotated = "", .thumbnail = false, .stepsFolder = command.out});
  PrintResult(std::cout, result);
  if (!result.steps.empty()) {
    std::cout << "A picture after each step is in " << command.out << '\n';
  }
  if (result.verdict == Verdict::Error) return NO_VERDICT;
  return result.verdict == Verdict::Failed ? SOME_FAILED : ALL_WELL;
}

ParsedRecipe ReadNamed(const std::string& file) {
  try {
    return ReadRecipe(file);
  } catch (const std::invalid_argument& failure) {
    throw std::invalid_argument(FailureText(file, failure));
  }
}

int RunChecked(const RunCommand& command) {
  const ParsedRecipe parsed = ReadNamed(command.recipe);
  RecipeRun run(parsed.recipe);
  std::vector<Mistake> mistakes = parsed.mistakes;
  if (mistakes.empty()) mistakes = run.Prepare();
  PrintMistakes(command.recipe, mistakes);
  if (!mistakes.empty()) return BAD_USE;
  if (command.check) {
    std::cout << ExplanationOf(parsed.recipe);
    return ALL_WELL;
  }
  if (!command.explainOn.empty()) return Explain(command, run);
  return RecipeRunner(command, parsed.recipe, run).Work();
}

}  // namespace

int Run(const RunCommand& command) {
  try {
    if (command.resume && command.database.empty()) {
      throw std::invalid_argument("--resume needs --db, the records of the run");
    }
    if (command.onlyList && command.database.empty()) {
      throw std::invalid_argument("--only-list needs --db, the records that they are put into");
    }
    if (command.explainOn.empty() != command.out.empty()) {
      throw std::invalid_argument("--explain-on PICTURE and --out FOLDER go together");
    }
    if (!command.check && command.explainOn.empty() && !command.resume && command.watch.empty() &&
        command.files.empty()) {
      throw std::invalid_argument("give the pictures to be looked at");
    }
    return RunChecked(command);
  } catch (const std::invalid_argument& error) {
    std::cerr << "orlune: " << error.what() << '\n';
    return BAD_USE;
  } catch (const std::exception& failure) {
    std::cerr << "orlune: " << failure.what() << '\n';
    return NO_VERDICT;
  }
}

}  // namespace front
