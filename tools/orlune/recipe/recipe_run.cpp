// A recipe carried out on pictures.
#include "orlune/recipe/recipe_run.h"

#include <algorithm>
#include <filesystem>

#include "orlune/recipe/picture_run.h"
#include "orlune/shared/output.h"
#include "orlune/shared/thumbnail.h"
#include "orlune/shared/words.h"

namespace front {
namespace {

// A page to draw on.
Image PageOf(const Picture& picture) {
  const ImageInfo info = picture.gray.Info();
  Image page(IMAGE_RGB, 0, info.width, info.height);
  if (picture.colours) {
    Check(ZEL_Copy(*picture.colours, page));
  } else if (info.type == IMAGE_U8) {
    Canvas(page).CopyGray(picture.gray);
  } else {
    Canvas(page).CopyGray(Stretch(picture.gray, ExtremesOf(picture.gray)));
  }
  return page;
}

bool MovesPixels(const RecipeStep& step) {
  const auto* filter = std::get_if<FilterStep>(&step.work);
  return filter != nullptr &&
         std::any_of(filter->steps.begin(), filter->steps.end(),
                     [](const ChosenStep& chosen) { return chosen.step->movesPixels; });
}

Verdict VerdictOf(const RecipeStep& step, const StepResult& result) {
  if (result.verdict == Verdict::Error) return Verdict::Error;
  return result.verdict == Verdict::Failed && !step.recordOnly ? Verdict::Failed : Verdict::Passed;
}

void TakeStep(const RecipeStep& step, StepResult found, PictureResult* result) {
  const Verdict verdict = VerdictOf(step, found);
  if (verdict > result->verdict) {
    result->verdict = verdict;
    result->reason = step.name + ": " + found.reason;
  }
  result->steps.push_back(std::move(found));
}

void WritePage(const Picture& picture, const std::vector<Mark>& marks, const std::string& file) {
  const Image page = PageOf(picture);
  for (const Mark& mark : marks) mark(Canvas(page));
  WritePicture(page, {}, Depth::AsImage, file, PictureFormat::Bmp);
}

// The picture, what was found in it, and the verdict.
void DrawVerdict(const Image& page, const PictureResult& result) {
  const std::string text =
      std::string(NameOf(result.verdict)) + (result.reason.empty() ? "" : ": " + result.reason);
  Canvas(page).Caption(text);
}

}  // namespace

RecipeRun::RecipeRun(const Recipe& recipe) : recipe_(recipe) {}
RecipeRun::~RecipeRun() = default;

std::vector<std::string> RecipeRun::ReadToo() const {
  std::vector<std::string> files = {recipe_.file};
  const auto add = [&](const std::string& file) {
    if (!file.empty()) files.push_back(file);
  };
  for (size_t i = 0; i < recipe_.steps.size(); i++) {
    const RecipeStep::Work& work = recipe_.steps[i].work;
    if (const auto* filter = std::get_if<FilterStep>(&work)) add(filter->mask);
    if (const auto* inspect = std::get_if<InspectStep>(&work)) add(inspect->mask);
    if (const auto* gauge = std::get_if<GaugeStep>(&work)) {
      add(gauge->setupFile);
      add(i < steps_.size() ? steps_[i]->master : gauge->master);
    }
    if (const auto* match = std::get_if<MatchStep>(&work)) add(match->shape);
    if (const auto* dial = std::get_if<DialStep>(&work)) add(dial->setup);
  }
  return files;
}

std::vector<Mistake> RecipeRun::Prepare() {
  std::vector<Mistake> mistakes;
  const std::vector<std::string> names = LookedAt(recipe_);
  for (const RecipeStep& step : recipe_.steps) {
    const auto own = names.begin() + static_cast<std::ptrdiff_t>(steps_.size());
    steps_.push_back(std::make_unique<PreparedStep>());
    PreparedStep& prepared = *steps_.back();
    prepared.takesOver = std::find(own + 1, names.end(), *own) == names.end();
    const auto attempt = [&](const std::string& key, const std::string& file, auto function) {
      try {
        function();
      } catch (const std::exception& failure) {
        mistakes.push_back(
            {step.LineOf(key), file.empty() ? failure.what() : FailureText(file, failure)});
      }
    };
    const auto readMask = [&](const std::string& mask) {
      if (mask.empty()) return;
      attempt("mask", mask, [&] { prepared.mask = ReadMask(mask); });
    };
    if (const auto* filter = std::get_if<FilterStep>(&step.work)) readMask(filter->mask);
    if (const auto* inspect = std::get_if<InspectStep>(&step.work)) readMask(inspect->mask);
    if (const auto* match = std::get_if<MatchStep>(&step.work)) {
      attempt("template", match->shape,
              [&] { prepared.shape = ReadTemplate(match->shape, match->settings.finding); });
    }
    if (const auto* dial = std::get_if<DialStep>(&step.work)) {
      attempt("setup", dial->setup, [&] { prepared.dial = DialOf(dial->kind, dial->setup); });
    }
    const auto* gauge = std::get_if<GaugeStep>(&step.work);
    if (gauge == nullptr) continue;
    const size_t before = mistakes.size();
    attempt("setup", "", [&] {
      PreparedGauging gauging = PrepareGauging(*gauge);
      prepared.gauging = std::move(gauging.setup);
      prepared.master = std::move(gauging.master);
      if (!gauge->part.empty()) prepared.gauging.reference = {};
    });
    if (mistakes.size() > before) continue;
    const Reference& reference = prepared.gauging.reference;
    const bool follows = !gauge->part.empty() || reference.follow != Follow::Nothing;
    if (!follows || (reference.taught && prepared.master.empty())) continue;
    if (prepared.master.empty()) {
      mistakes.push_back({step.line, "the set-up follows the part, and names no master"});
      continue;
    }
    if (!mistakes.empty()) continue;  // the steps before this one may not be fit to run
    attempt("master", prepared.master, [&] {
      PictureRun master(recipe_, prepared.master, false);
      for (size_t i = 0; i + 1 < steps_.size(); i++) {
        const StepResult result = master.Do(recipe_.steps[i], *steps_[i]);
        if (result.verdict == Verdict::Error) throw std::runtime_error(result.reason);
      }
      prepared.gauging.reference.taught.reset();
      prepared.gauging.reference.taught = master.PartFor(step, prepared.gauging);
    });
  }
  return mistakes;
}

std::vector<std::string> RecipeRun::StepFiles(const std::string& folder) const {
  std::vector<std::string> files;
  const auto add = [&](const std::string& name) {
    const std::string number = std::to_string(files.size());
    std::string file = (number.size() < 2 ? "0" : "") + number + "-" + name + ".bmp";
    std::replace(file.begin(), file.end(), '/', '-');
    files.push_back((std::filesystem::path(folder) / file).string());
  };
  add(ORIGINAL);
  for (const RecipeStep& step : recipe_.steps) add(step.name);
  return files;
}

PictureResult RecipeRun::Run(const std::string& file, const PictureOutputs& outputs) const {
  Clock clock;
  PictureResult result;
  result.file = file;
  const bool drawn = !outputs.annotated.empty() || outputs.thumbnail;
  const bool stepwise = !outputs.stepsFolder.empty();
  std::optional<PictureRun> run;
  try {
    run.emplace(recipe_, file, drawn || stepwise);
  } catch (const std::bad_alloc&) {
    return ErrorOf(file, "not enough memory");
  } catch (const std::exception& failure) {
    return ErrorOf(file, failure.what());
  }
  std::optional<Image> page;
  if (drawn) page = PageOf(run->Last());
  std::vector<std::string> stepFiles;
  if (stepwise) {
    stepFiles = StepFiles(outputs.stepsFolder);
    WritePage(run->Last(), {}, stepFiles[0]);
  }
  for (size_t i = 0; i < recipe_.steps.size(); i++) {
    const RecipeStep& step = recipe_.steps[i];
    const size_t marked = run->marks().size();
    StepResult found = run->Do(step, *steps_[i]);
    const bool broken = found.verdict == Verdict::Error;
    TakeStep(step, std::move(found), &result);
    if (stepwise) {
      const std::vector<Mark> own(run->marks().begin() + static_cast<std::ptrdiff_t>(marked),
                                  run->marks().end());
      WritePage(run->Last(), own, stepFiles[i + 1]);
    }
    if (broken) break;
    if (drawn && MovesPixels(step)) {
      page = PageOf(run->Last());
      run->ForgetMarks();
    }
  }
  result.seconds = clock.Lap().count();
  if (!drawn) return result;
  for (const Mark& mark : run->marks()) mark(Canvas(*page));
  DrawVerdict(*page, result);
  if (outputs.thumbnail) result.thumbnail = ThumbnailOf(*page);
  if (!outputs.annotated.empty()) {
    WritePicture(*page, {}, Depth::AsImage, outputs.annotated, PictureFormat::Bmp);
  }
  return result;
}

}  // namespace front
