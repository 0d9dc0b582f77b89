// A recipe carried out on pictures.
#include "orlune/recipe/recipe_run.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <filesystem>
#include <map>

#include "orlune/command/commands.h"
#include "orlune/gauge/line_reports.h"
#include "orlune/shared/annotation.h"
#include "orlune/shared/numbers.h"
#include "orlune/shared/output.h"
#include "orlune/shared/parcel.h"
#include "orlune/shared/reports.h"
#include "orlune/shared/thumbnail.h"
#include "orlune/shared/words.h"

namespace front {

// What a step needs of files, read once.
struct RecipeRun::Prepared {
  bool takesOver = false;  // its picture, at which no later step looks
  std::optional<Image> mask;
  GaugeSetup gauging;
  std::string master;
  std::optional<Template> shape;
  Dial dial;
};

namespace {

using Mark = std::function<void(const Canvas&)>;

// The picture at hand: gray, and its colours where a step takes them.
struct Picture {
  Account account;
  Image gray;
  std::optional<Image> colours;
};

// The library's own copy would take the border over.
Image CopyOf(const Image& image, int32_t border) {
  const ImageInfo from = image.Info();
  Image copy = Image::ForNewPixels(from.type, border, from.width, from.height);
  Check(ZEL_SetImageCalibration(copy, from.unit, from.xStep, from.yStep));
  const ImageInfo to = copy.Info();
  const auto bytes = static_cast<size_t>(from.width) * static_cast<size_t>(from.pixelBytes);
  for (int32_t y = 0; y < from.height; ++y) {
    std::memcpy(Row<char>(to, y), Row<const char>(from, y), bytes);
  }
  return copy;
}

Picture CopyOf(const Picture& picture) {
  Picture copy{picture.account, CopyOf(picture.gray, 0), {}};
  if (picture.colours) copy.colours = CopyOf(*picture.colours, 0);
  return copy;
}

Loaded LoadedOf(Picture picture) {
  return {std::move(picture.account), std::move(picture.gray), {}, std::move(picture.colours)};
}

// The picture that each step looks at, by the name of the step that left it.
std::vector<std::string> LookedAt(const Recipe& recipe) {
  std::vector<std::string> names;
  std::string last = ORIGINAL;
  for (const RecipeStep& step : recipe.steps) {
    names.push_back(step.on.empty() ? last : step.on);
    if (std::holds_alternative<FilterStep>(step.work)) last = step.name;
  }
  return names;
}

// That of the filter step that takes the original over, so that it need not be copied for it.
int32_t BorderOfOriginal(const Recipe& recipe) {
  const std::vector<std::string> names = LookedAt(recipe);
  const auto last = std::find(names.rbegin(), names.rend(), ORIGINAL);
  if (last == names.rend()) return 0;
  const auto step = static_cast<size_t>(names.rend() - last) - 1;
  const auto* filter = std::get_if<FilterStep>(&recipe.steps[step].work);
  return filter != nullptr ? BorderOf(filter->steps) : 0;
}

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

bool NeedsColours(const Recipe& recipe) {
  return std::any_of(recipe.steps.begin(), recipe.steps.end(), [](const RecipeStep& step) {
    const auto* filter = std::get_if<FilterStep>(&step.work);
    const auto* inspect = std::get_if<InspectStep>(&step.work);
    return (filter != nullptr && TakesColours(filter->steps)) ||
           (inspect != nullptr && inspect->settings.colours.Any());
  });
}

bool MovesPixels(const RecipeStep& step) {
  const auto* filter = std::get_if<FilterStep>(&step.work);
  return filter != nullptr &&
         std::any_of(filter->steps.begin(), filter->steps.end(),
                     [](const ChosenStep& chosen) { return chosen.step->movesPixels; });
}

std::string CountText(const Range& range) {
  if (range.low == range.high) return Short(range.low);
  const auto end = [](double value) { return std::isfinite(value) ? Short(value) : ""; };
  return end(range.low) + ":" + end(range.high);
}

// The reasons of a step that does not pass: the first one, and how many more there are.
class Judgement {
 public:
  explicit Judgement(StepResult* result) : result_(*result) {}
  ~Judgement() {
    if (reasons_ > 1) result_.reason += " (and " + std::to_string(reasons_ - 1) + " more)";
  }
  Judgement(const Judgement&) = delete;
  Judgement& operator=(const Judgement&) = delete;

  // Gives the verdict on one thing.
  Verdict Take(bool holds, const std::string& reason) {
    if (holds) {
      if (result_.verdict == Verdict::None) result_.verdict = Verdict::Passed;
      return Verdict::Passed;
    }
    result_.verdict = Verdict::Failed;
    if (reasons_++ == 0) result_.reason = reason;
    return Verdict::Failed;
  }

 private:
  StepResult& result_;
  size_t reasons_ = 0;
};

void TakeCount(size_t count, const std::optional<Range>& wanted, const std::string& what,
               StepResult* result, Judgement* judgement) {
  const auto number = static_cast<double>(count);
  StepValue value{.object = "", .name = "count", .number = number, .text = "", .unit = ""};
  if (wanted) {
    value.verdict = judgement->Take(number >= wanted->low && number <= wanted->high,
                                    what + ", not " + CountText(*wanted));
  }
  result->values.push_back(value);
}

// The pose that lines follow: of the largest kept particle, or the best match.
struct FoundPart {
  ObjectPose object;
};

std::optional<FoundPart> LargestKept(const Inspection& inspection) {
  std::optional<FoundPart> largest;
  for (const Particle& particle : inspection.particles) {
    if (!particle.kept) continue;
    const std::optional<ObjectPose> object = PoseOf(inspection.labels, particle.number);
    if (object && (!largest || object->area > largest->object.area)) largest = {*object};
  }
  return largest;
}

std::optional<FoundPart> BestOf(const std::vector<ShapeMatch>& matches) {
  const auto best =
      std::max_element(matches.begin(), matches.end(),
                       [](const ShapeMatch& a, const ShapeMatch& b) { return a.score < b.score; });
  if (best == matches.end()) return {};
  return FoundPart{{.pose = {best->at, best->degrees.value_or(0)},
                    .area = best->area,
                    .hasAxis = best->degrees.has_value(),
                    .hasFront = best->hasFront}};
}

MeasureSet MeasuredFor(const InspectStep& inspect, const MeasureList& measures) {
  MeasureSet wanted = SetOf(measures);
  for (const Requirement& each : inspect.required) wanted.set(each.condition.measure->number);
  return wanted;
}

// With no more figures than it has, as the command tells it: a float's are those that tell it from
// its neighbours. Whole numbers have no others.
std::optional<double> NumberTold(const Measure& measure, double value) {
  if (!std::isfinite(value)) return std::nullopt;
  constexpr double WHOLE_FLOATS_END = 1 << 24;
  const bool isWhole = std::trunc(value) == value && std::abs(value) < WHOLE_FLOATS_END;
  return isWhole ? value : ParseNumber(ExactValue(measure, value));
}

// One picture on its way through the steps.
class PictureRun {
 public:
  using Prepared = RecipeRun::Prepared;

  // What is shown keeps its pictures and the marks of what was found.
  PictureRun(const Recipe& recipe, std::string file, bool shown)
      : recipe_(recipe), file_(std::move(file)), shown_(shown) {
    Loaded loaded = ReadPicture(file_, {.form = Form::Gray,
                                        .swapBytes = recipe.swapBytes,
                                        .border = BorderOfOriginal(recipe),
                                        .colours = NeedsColours(recipe)});
    pictures_.emplace(ORIGINAL, Picture{std::move(loaded.account), std::move(loaded.image),
                                        std::move(loaded.colours)});
  }

  const Picture& Last() const { return pictures_.at(last_); }
  const std::vector<Mark>& marks() const { return marks_; }
  void ForgetMarks() { marks_.clear(); }

  StepResult Do(const RecipeStep& step, const Prepared& prepared) {
    StepResult result{.step = step.name, .verdict = Verdict::None, .reason = "", .values = {}};
    try {
      std::visit([&](const auto& work) { Work(step, work, prepared, &result); }, step.work);
    } catch (const NotFound& failure) {
      result.verdict = Verdict::Failed;
      result.reason = failure.what();
    } catch (const std::bad_alloc&) {
      result.verdict = Verdict::Error;
      result.reason = "not enough memory";
    } catch (const std::exception& failure) {
      result.verdict = Verdict::Error;
      result.reason = failure.what();
    }
    return result;
  }

  // Where the part is that a gauge step follows, as it is taught by a master.
  Pose PartFor(const RecipeStep& step, const GaugeSetup& setup) const {
    const auto& gauge = std::get<GaugeStep>(step.work);
    if (gauge.part.empty())
      return FindPart(file_, LoadedOf(CopyOf(PictureOf(step))), setup.reference);
    return PartOf(gauge.part).pose;
  }

 private:
  const std::string& LookedAtBy(const RecipeStep& step) const {
    return step.on.empty() ? last_ : step.on;
  }
  const Picture& PictureOf(const RecipeStep& step) const { return pictures_.at(LookedAtBy(step)); }

  bool TakesOver(const Prepared& prepared) const { return prepared.takesOver && !shown_; }

  // The step's own picture, to do with as it likes.
  Loaded PictureFor(const RecipeStep& step, const Prepared& prepared) {
    if (!TakesOver(prepared)) return LoadedOf(CopyOf(PictureOf(step)));
    return LoadedOf(std::move(pictures_.extract(LookedAtBy(step)).mapped()));
  }

  void AddMark(Mark mark) {
    if (shown_) marks_.push_back(std::move(mark));
  }

  // Whether lines follow the part that the step finds.
  bool IsFollowed(const std::string& name) const {
    return std::any_of(recipe_.steps.begin(), recipe_.steps.end(), [&](const RecipeStep& step) {
      const auto* gauge = std::get_if<GaugeStep>(&step.work);
      return gauge != nullptr && gauge->part == name;
    });
  }

  const ObjectPose& PartOf(const std::string& step) const {
    const auto part = parts_.find(step);
    if (part == parts_.end()) {
      throw NotFound("the part was not found: there is none in step " + step);
    }
    return part->second.object;
  }

  void Work(const RecipeStep& step, const FilterStep& filter, const Prepared& prepared,
            StepResult* /*result*/) {
    Picture& from = pictures_.at(LookedAtBy(step));
    const bool coloured = TakesColours(filter.steps) && from.colours.has_value();
    const Image* mask = prepared.mask ? &*prepared.mask : nullptr;
    Image& before = coloured ? *from.colours : from.gray;
    const int32_t border = BorderOf(filter.steps);
    const bool fits = TakesOver(prepared) && before.Info().border == border;
    Image image = fits ? std::move(before) : CopyOf(before, border);
    ApplyChain(filter, mask, image);
    Account account = TakesOver(prepared) ? std::move(from.account) : from.account;
    Picture picture{std::move(account), std::move(image), {}};
    if (TakesOver(prepared)) pictures_.erase(LookedAtBy(step));
    if (picture.gray.Info().type == IMAGE_RGB) {
      picture.colours = CopyOf(picture.gray, 0);
      Check(ZEL_Cast(picture.gray, IMAGE_U8));
    }
    pictures_.insert_or_assign(step.name, std::move(picture));
    last_ = step.name;
  }

  void Work(const RecipeStep& step, const InspectStep& inspect, const Prepared& prepared,
            StepResult* result) {
    InspectSettings settings = inspect.settings;
    settings.mask = prepared.mask ? &*prepared.mask : nullptr;
    const MeasureList measures = MeasuresOf(inspect);
    settings.measured = MeasuredFor(inspect, measures);
    settings.labelled = shown_ || IsFollowed(step.name);
    const auto found =
        std::make_shared<Inspection>(Inspect(PictureFor(step, prepared), file_, settings));
    AddMark([found](const Canvas& canvas) { DrawParticles(*found, canvas); });
    if (IsFollowed(step.name)) {
      if (const auto part = LargestKept(*found)) parts_.emplace(step.name, *part);
    }
    Judgement judgement(result);
    const size_t kept = found->Kept();
    result->values.reserve(1 + kept * (measures.size() + inspect.required.size()));
    TakeCount(kept, inspect.count, Plural(kept, "particle"), result, &judgement);
    for (const Particle& particle : found->particles) {
      if (particle.kept) TakeParticle(particle, inspect, measures, found->unit, result, &judgement);
    }
  }

  static void TakeParticle(const Particle& particle, const InspectStep& inspect,
                           const MeasureList& measures, const std::string& unit, StepResult* result,
                           Judgement* judgement) {
    const std::string number = std::to_string(particle.number);
    const size_t first = result->values.size();
    const auto add = [&](const Measure& measure) {
      result->values.push_back({.object = number,
                                .name = std::string(measure.name),
                                .number = NumberTold(measure, particle.values[measure.number]),
                                .text = "",
                                .unit = UnitText(measure.unit, unit)});
    };
    for (const Measure* measure : measures) add(*measure);
    for (const Requirement& required : inspect.required) {
      const Measure& measure = *required.condition.measure;
      const double value = particle.values[measure.number];
      const Verdict verdict =
          judgement->Take(required.condition.Holds(value),
                          "particle " + number + ": " + std::string(measure.name) + " is " +
                              Short(value) + ", against " + required.text);
      const auto isIt = [&](const StepValue& v) { return v.name == measure.name; };
      auto row = std::find_if(result->values.begin() + static_cast<std::ptrdiff_t>(first),
                              result->values.end(), isIt);
      if (row == result->values.end()) {
        add(measure);
        row = result->values.end() - 1;
      }
      row->verdict = std::max(row->verdict, verdict);
    }
  }

  void Work(const RecipeStep& step, const GaugeStep& gauge, const Prepared& prepared,
            StepResult* result) {
    std::optional<Pose> part;
    if (!gauge.part.empty()) {
      part = Resolved(PartOf(gauge.part), prepared.gauging.reference.taught.value_or(Pose{}));
    }
    const auto found = std::make_shared<Gauging>(
        GaugePicture(file_, PictureFor(step, prepared), prepared.gauging, part));
    const GaugeSetup& setup = prepared.gauging;
    AddMark([found, &setup](const Canvas& canvas) { DrawGauged(*found, setup, canvas); });
    Judgement judgement(result);
    for (size_t i = 0; i < setup.gauges.size(); i++) {
      const LineGauge& line = setup.gauges[i];
      const GaugeResult& measured = found->results[i];
      const std::string unit = UnitOf(line, found->unit);
      std::string reason = line.name + " was not found";
      if (measured.value) {
        reason = line.name + " is " + ValueText(line, measured.value) + " " + unit +
                 ", not within " + LimitsText(line.limits);
      }
      result->values.push_back({.object = "",
                                .name = line.name,
                                .number = measured.value,
                                .text = "",
                                .unit = unit,
                                .verdict = judgement.Take(measured.passed, reason)});
    }
  }

  void Work(const RecipeStep& step, const MatchStep& match, const Prepared& prepared,
            StepResult* result) {
    const auto found = std::make_shared<Matching>(
        FindMatches(Locate(PictureFor(step, prepared), file_, match.settings.finding),
                    *prepared.shape, match.settings));
    AddMark([found](const Canvas& canvas) { DrawMatches(*found, canvas); });
    if (const auto part = BestOf(found->matches)) parts_.emplace(step.name, *part);
    Judgement judgement(result);
    const Range usual{1, EVERYTHING.high};
    TakeCount(found->matches.size(), match.count.value_or(usual),
              Plural(found->matches.size(), "match", "es"), result, &judgement);
    for (const ShapeMatch& each : found->matches) {
      const auto add = [&](const char* name, std::optional<double> number, const char* unit) {
        result->values.push_back({.object = std::to_string(each.number),
                                  .name = name,
                                  .number = number,
                                  .text = "",
                                  .unit = unit});
      };
      add("x", each.at.x, "px");
      add("y", each.at.y, "px");
      add("angle", each.degrees, "deg");
      add("scale", each.scale, "");
      add("score", each.score, "");
    }
  }

  void Work(const RecipeStep& step, const BarcodeStep& barcode, const Prepared& /*prepared*/,
            StepResult* result) {
    const Image& gray = PictureOf(step).gray;
    const std::optional<BarcodeReading> reading =
        gray.Info().type == IMAGE_U8
            ? FindBarcode(gray, barcode.settings)
            : FindBarcode(Stretch(gray, ExtremesOf(gray)), barcode.settings);
    Judgement judgement(result);
    if (reading && reading->angle == 0) {
      const Region place = reading->place;
      AddMark([place](const Canvas& canvas) {
        canvas.Frame(place.left, place.top, place.left + place.width - 1,
                     place.top + place.height - 1, READ_COLOUR);
      });
    }
    StepValue value{.object = "", .name = "text", .number = {}, .text = "", .unit = ""};
    if (reading) value.text = reading->text;
    value.verdict = judgement.Take(reading.has_value(), "no code was read");
    if (reading && barcode.expected) TakeText(*barcode.expected, &value, &judgement);
    result->values.push_back(value);
  }

  static void TakeText(const Pattern& expected, StepValue* value, Judgement* judgement) {
    value->verdict = judgement->Take(std::regex_match(value->text, expected.expression),
                                     Quoted(value->text) + " does not match " + expected.text);
  }

  void Work(const RecipeStep& step, const DialStep& dial, const Prepared& prepared,
            StepResult* result) {
    Judgement judgement(result);
    DialReading reading;
    try {
      reading = prepared.dial.read(PictureOf(step).gray);
    } catch (const LibraryFailure& failure) {
      judgement.Take(false, std::string("it was not read: ") + failure.what());
      return;
    }
    AddMark([strokes = reading.strokes](const Canvas& canvas) {
      for (const Stroke& s : strokes) {
        canvas.Stroke({static_cast<double>(s.x1), static_cast<double>(s.y1)},
                      {static_cast<double>(s.x2), static_cast<double>(s.y2)}, 1, READ_COLOUR);
      }
    });
    StepValue value{.object = "",
                    .name = "value",
                    .number = reading.value,
                    .text = reading.text,
                    .unit = reading.unit};
    const std::string limits = LimitsText(dial.limits);
    value.verdict =
        judgement.Take(dial.limits.Hold(reading.value), reading.text + " is not within " + limits);
    if (dial.expected && value.verdict == Verdict::Passed) {
      TakeText(*dial.expected, &value, &judgement);
    }
    result->values.push_back(value);
  }

  static constexpr RGBValue READ_COLOUR = 0x20E850;

  const Recipe& recipe_;
  std::string file_;
  bool shown_;
  std::map<std::string, Picture> pictures_;  // by the steps that left them
  std::string last_ = ORIGINAL;
  std::map<std::string, FoundPart> parts_;  // by the steps that found them
  std::vector<Mark> marks_;
};

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

std::string_view NameOf(Verdict verdict) {
  switch (verdict) {
    case Verdict::Passed:
      return "passed";
    case Verdict::Failed:
      return "failed";
    case Verdict::Error:
      return "error";
    default:
      return "";
  }
}

std::string Packed(const PictureResult& result) {
  ParcelWriter parcel;
  parcel.Put(result.file).Put(result.verdict).Put(result.reason).Put(result.seconds);
  parcel.Put(result.thumbnail).Put(result.steps.size());
  for (const StepResult& step : result.steps) {
    parcel.Put(step.step).Put(step.verdict).Put(step.reason).Put(step.values.size());
    for (const StepValue& value : step.values) {
      parcel.Put(value.object).Put(value.name).Put(value.number.has_value());
      parcel.Put(value.number.value_or(0)).Put(value.text).Put(value.unit).Put(value.verdict);
    }
  }
  return parcel.Take();
}

PictureResult UnpackedResult(const std::string& bytes, bool withSteps) {
  ParcelReader parcel(bytes);
  PictureResult result;
  result.file = parcel.Text();
  result.verdict = parcel.Get<Verdict>();
  result.reason = parcel.Text();
  result.seconds = parcel.Get<double>();
  result.thumbnail = parcel.Text();
  if (!withSteps) return result;
  result.steps.resize(parcel.Get<size_t>());
  for (StepResult& step : result.steps) {
    step.step = parcel.Text();
    step.verdict = parcel.Get<Verdict>();
    step.reason = parcel.Text();
    step.values.resize(parcel.Get<size_t>());
    for (StepValue& value : step.values) {
      value.object = parcel.Text();
      value.name = parcel.Text();
      const bool known = parcel.Get<bool>();
      const auto number = parcel.Get<double>();
      if (known) value.number = number;
      value.text = parcel.Text();
      value.unit = parcel.Text();
      value.verdict = parcel.Get<Verdict>();
    }
  }
  return result;
}

PictureResult ErrorOf(const std::string& file, const std::string& reason) {
  PictureResult result;
  result.file = file;
  result.verdict = Verdict::Error;
  result.reason = reason;
  return result;
}

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
    steps_.push_back(std::make_unique<Prepared>());
    Prepared& prepared = *steps_.back();
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
