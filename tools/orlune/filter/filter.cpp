// orlune filter: picture files put through a chain of filters.
#include <algorithm>
#include <functional>
#include <iostream>
#include <stdexcept>

#include "orlune/command/commands.h"
#include "orlune/shared/interrupts.h"
#include "orlune/shared/numbers.h"
#include "orlune/shared/parcel.h"
#include "orlune/shared/progress.h"
#include "orlune/shared/readable.h"
#include "orlune/shared/tasks.h"
#include "pictures/source.h"

namespace front {
namespace {

namespace fs = std::filesystem;

struct Output {
  fs::path path;
  PictureFormat format;
};

Output OutputFor(const FilterCommand& command, const std::string& file) {
  fs::path path = command.to;
  if (!command.folder.empty()) {
    const Source source = SourceOf(file);
    fs::path name = fs::path(source.path).filename();
    if (source.IsStandardInput()) name = "standard-input";
    if (source.pageNamed) {
      name = name.stem().string() + "-" + std::to_string(source.page) + name.extension().string();
    }
    path = fs::path(command.folder) / name;
    if (command.format) path.replace_extension(EndingOf(*command.format));
  }
  return {path, command.format ? *command.format : FormatByEnding(path)};
}

// One for each file, in their order. Throws std::invalid_argument where one would be written over a
// file that is read, or over another one.
std::vector<Output> PlanOutputs(const FilterCommand& command) {
  if (command.folder.empty() && command.to.empty()) {
    throw std::invalid_argument("say where pictures go: --out FOLDER, or -o OUT for one file");
  }
  if (command.folder.empty() && command.files.size() > 1) {
    throw std::invalid_argument("-o is for one file, --out for " +
                                std::to_string(command.files.size()));
  }
  FilePlan plan;
  if (!command.mask.empty()) plan.Reads(command.mask, "the mask");
  for (const std::string& file : command.files) plan.Reads(file, "a picture to be filtered");
  std::vector<Output> outputs;
  for (const std::string& file : command.files) {
    outputs.push_back(OutputFor(command, file));
    plan.Writes(outputs.back().path.string(), "the result of " + file);
  }
  return outputs;
}

// What there is to say of a file, made where it was filtered and told where all come together.
struct FileResult {
  bool filtered = false;
  std::string line;       // for standard output
  std::string complaint;  // for standard error
  double pixels = 0;
  Seconds reading{}, writing{};
  std::vector<Seconds> steps;

  std::string Pack() const {
    ParcelWriter parcel;
    parcel.Put(filtered).Put(line).Put(complaint).Put(pixels).Put(reading).Put(writing);
    parcel.Put(steps.size());
    for (const Seconds& step : steps) parcel.Put(step);
    return parcel.Take();
  }
  static FileResult Unpack(const std::string& bytes) {
    ParcelReader parcel(bytes);
    FileResult result;
    result.filtered = parcel.Get<bool>();
    result.line = parcel.Text();
    result.complaint = parcel.Text();
    result.pixels = parcel.Get<double>();
    result.reading = parcel.Get<Seconds>();
    result.writing = parcel.Get<Seconds>();
    result.steps.resize(parcel.Get<size_t>());
    for (Seconds& step : result.steps) step = parcel.Get<Seconds>();
    return result;
  }
};

class FilterRun {
 public:
  FilterRun(const FilterCommand& command, std::vector<Output> outputs)
      : command_(command),
        outputs_(std::move(outputs)),
        border_(BorderOf(command.steps)),
        out_(command.to == STANDARD_STREAM ? std::cerr : std::cout),
        progress_(command.files.size()) {
    total_.steps.resize(command.steps.size());
  }

  // False when there is no mask or no folder; nothing is filtered then.
  bool Open() {
    try {
      if (!command_.mask.empty()) mask_ = ReadMask(command_.mask);
    } catch (const std::exception& failure) {
      PrintFailure(command_.mask, failure);
      return false;
    }
    try {
      if (!command_.folder.empty()) MakeFolder(command_.folder);
    } catch (const std::exception& failure) {
      PrintFailure(command_.folder, failure);
      return false;
    }
    return true;
  }

  int Work() {
    RunTasks({.tasks = command_.files.size(),
              .workers = command_.workers,
              .work = [&](size_t task) { return FilterFile(task).Pack(); },
              .take =
                  [&](size_t task, std::optional<std::string> result) {
                    Take(result ? FileResult::Unpack(*result) : Lost(task));
                    progress_.Done(task + 1);
                  }});
    progress_.Hide();
    if (!command_.quiet) PrintSummary();
    return failed_ == 0 ? ALL_WELL : SOME_FAILED;
  }

 private:
  FileResult FilterFile(size_t task) const {
    const std::string& file = command_.files[task];
    const Output& output = outputs_[task];
    std::string concerned = file;
    FileResult result;
    try {
      Clock clock;
      Loaded picture =
          ReadPicture(file, {.form = TakesColours(command_.steps) ? Form::AsStored : Form::Gray,
                             .swapBytes = command_.swapBytes,
                             .border = border_});
      if (!picture.palette.empty()) ApplyPalette(&picture);
      result.reading = clock.Lap();
      const Image* mask = mask_ ? &*mask_ : nullptr;
      CheckSize(picture.image, command_, mask);
      const Depth depth = DepthOf(picture.account, picture.image);
      ApplyChain(command_, mask, picture.image, [&] { result.steps.push_back(clock.Lap()); });

      concerned = output.path.string();
      // Filters of whole numbers give such, but not always those of an unsigned type.
      const bool still = depth == DepthOf(picture.account, picture.image);
      WritePicture(picture.image, {}, still ? depth : Depth::AsImage, concerned, output.format);
      result.writing = clock.Lap();
      const ImageInfo info = picture.image.Info();
      result.pixels = 1.0 * info.width * info.height;
      result.line = LineText(file) + ": " + HeadLine(picture.account) +
                    "; filtered: " + LineText(output.path.string()) + '\n';
      for (const std::string& loss : picture.account.losses) {
        result.line += "  note: " + loss + '\n';
      }
      result.filtered = true;
    } catch (const std::exception& failure) {
      result.complaint = "orlune: " + FailureText(concerned, failure) + '\n';
    }
    return result;
  }

  FileResult Lost(size_t task) const {
    FileResult result;
    result.complaint =
        "orlune: " + command_.files[task] + ": the process that filtered it was ended\n";
    return result;
  }

  void Take(const FileResult& result) {
    if (!result.filtered) {
      ++failed_;
      progress_.Hide();
      std::cout.flush();
      std::cerr << result.complaint;
      return;
    }
    ++filtered_;
    total_.pixels += result.pixels;
    total_.reading += result.reading;
    total_.writing += result.writing;
    std::transform(result.steps.begin(), result.steps.end(), total_.steps.begin(),
                   total_.steps.begin(), std::plus<>());
    if (command_.quiet) return;
    progress_.Hide();
    out_ << result.line;
    if (!std::cout) NoteClosedPipe();
  }

  void PrintSummary() const {
    out_ << '\n';
    const size_t done = filtered_ + failed_;
    if (done < command_.files.size()) {
      out_ << "Stopped after " << done << " of " << Plural(command_.files.size(), "picture")
           << '\n';
    }
    out_ << Plural(filtered_, "picture") << " filtered";
    if (failed_ > 0) out_ << ", " << failed_ << " could not be";
    out_ << '\n';
    if (filtered_ == 0) return;
    Seconds time = total_.reading + total_.writing;
    for (const Seconds step : total_.steps) time += step;
    out_ << Fixed(total_.pixels / 1e6, 2) << " megapixels in " << Milliseconds(time) << ": reading "
         << Milliseconds(total_.reading);
    for (size_t i = 0; i < total_.steps.size(); ++i) {
      out_ << ", " << command_.steps[i].step->name << ' ' << Milliseconds(total_.steps[i]);
    }
    out_ << ", writing " << Milliseconds(total_.writing) << '\n';
  }

  const FilterCommand& command_;
  std::vector<Output> outputs_;
  int32_t border_;
  std::ostream& out_;  // for texts: pictures may go to standard output
  std::optional<Image> mask_;
  FileResult total_;  // times and pixels of all files
  size_t filtered_ = 0, failed_ = 0;
  Progress progress_;
};

}  // namespace

void RefuseMask(const FilterWork& work) {
  for (const ChosenStep& step : work.steps) {
    if (work.mask.empty() || !(step.step->movesPixels || step.step->makesGray)) continue;
    throw std::invalid_argument("no mask can go with the step " + std::string(step.step->name) +
                                (step.step->makesGray ? ", which makes a gray picture of colours"
                                                      : ", which moves pixels"));
  }
}

// The library fills a border that is wider than the picture with other pixels than the
// neighbours, and takes a mask of any size.
void CheckSize(const Image& image, const FilterWork& work, const Image* mask) {
  const ImageInfo picture = image.Info();
  const int32_t border = BorderOf(work.steps);
  if (std::min(picture.width, picture.height) < border) {
    throw std::invalid_argument("the picture of " + std::to_string(picture.width) + " x " +
                                std::to_string(picture.height) +
                                " pixels is too small for these steps: they take at least " +
                                std::to_string(border) + " on each side");
  }
  if (mask != nullptr) CheckMaskFits(*mask, image);
}

void ApplyChain(const FilterWork& work, const Image* mask, const Image& image,
                const std::function<void()>& done) {
  for (const ChosenStep& step : work.steps) {
    CheckSize(image, work, mask);
    Apply(step, image, mask != nullptr ? ImageRef(*mask) : 0);
    if (done) done();
  }
}

int Run(const FilterCommand& asked) {
  FilterCommand command = asked;
  try {
    command.files = WithAllPages(asked.files);
  } catch (const std::exception& failure) {
    std::cerr << "orlune: " << failure.what() << '\n';
    return SOME_FAILED;
  }
  std::vector<Output> outputs;
  try {
    RefuseMask(command);
    outputs = PlanOutputs(command);
  } catch (const std::invalid_argument& error) {
    std::cerr << "orlune: " << error.what() << '\n';
    return BAD_USE;
  }
  FilterRun run(command, std::move(outputs));
  return run.Open() ? run.Work() : SOME_FAILED;
}

}  // namespace front
