// A picture on its way through the steps of a recipe.
#include "orlune/recipe/picture_run.h"

#include <algorithm>
#include <cmath>
#include <cstring>

#include "orlune/shared/numbers.h"
#include "orlune/shared/reports.h"
#include "orlune/shared/words.h"

namespace front {
namespace {

constexpr RGBValue READ_COLOUR = 0x20E850;

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

// That of the filter step that takes the original over, so that it need not be copied for it.
int32_t BorderOfOriginal(const Recipe& recipe) {
  const std::vector<std::string> names = LookedAt(recipe);
  const auto last = std::find(names.rbegin(), names.rend(), ORIGINAL);
  if (last == names.rend()) return 0;
  const auto step = static_cast<size_t>(names.rend() - last) - 1;
  const auto* filter = std::get_if<FilterStep>(&recipe.steps[step].work);
  return filter != nullptr ? BorderOf(filter->steps) : 0;
}

bool NeedsColours(const Recipe& recipe) {
  return std::any_of(recipe.steps.begin(), recipe.steps.end(), [](const RecipeStep& step) {
    const auto* filter = std::get_if<FilterStep>(&step.work);
    const auto* inspect = std::get_if<InspectStep>(&step.work);
    return (filter != nullptr && TakesColours(filter->steps)) ||
           (inspect != nullptr && inspect->settings.colours.Any());
  });
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
std::optional<ObjectPose> LargestKept(const Inspection& inspection) {
  std::optional<ObjectPose> largest;
  for (const Particle& particle : inspection.particles) {
    if (!particle.kept) continue;
    const std::optional<ObjectPose> object = PoseOf(inspection.labels, particle.number);
    if (object && (!largest || object->area > largest->area)) largest = object;
  }
  return largest;
}

std::optional<ObjectPose> BestOf(const std::vector<ShapeMatch>& matches) {
  const auto best =
      std::max_element(matches.begin(), matches.end(),
                       [](const ShapeMatch& a, const ShapeMatch& b) { return a.score < b.score; });
  if (best == matches.end()) return {};
  return ObjectPose{.pose = {best->at, best->degrees.value_or(0)},
                    .area = best->area,
                    .hasAxis = best->degrees.has_value(),
                    .hasFront = best->hasFront};
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

void TakeParticle(const Particle& particle, const InspectStep& inspect, const MeasureList& measures,
                  const std::string& unit, StepResult* result, Judgement* judgement) {
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
    const Verdict verdict = judgement->Take(
        required.condition.Holds(value), "particle " + number + ": " + std::string(measure.name) +
                                             " is " + Short(value) + ", against " + required.text);
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

void TakeText(const Pattern& expected, StepValue* value, Judgement* judgement) {
  value->verdict = judgement->Take(std::regex_match(value->text, expected.expression),
                                   Quoted(value->text) + " does not match " + expected.text);
}

}  // namespace

std::vector<std::string> LookedAt(const Recipe& recipe) {
  std::vector<std::string> names;
  std::string last = ORIGINAL;
  for (const RecipeStep& step : recipe.steps) {
    names.push_back(step.on.empty() ? last : step.on);
    if (std::holds_alternative<FilterStep>(step.work)) last = step.name;
  }
  return names;
}

PictureRun::PictureRun(const Recipe& recipe, std::string file, bool shown)
    : recipe_(recipe), file_(std::move(file)), shown_(shown) {
  Loaded loaded = ReadPicture(file_, {.form = Form::Gray,
                                      .swapBytes = recipe.swapBytes,
                                      .border = BorderOfOriginal(recipe),
                                      .colours = NeedsColours(recipe)});
  pictures_.emplace(ORIGINAL, Picture{std::move(loaded.account), std::move(loaded.image),
                                      std::move(loaded.colours)});
}

StepResult PictureRun::Do(const RecipeStep& step, const PreparedStep& prepared) {
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

Pose PictureRun::PartFor(const RecipeStep& step, const GaugeSetup& setup) const {
  const auto& gauge = std::get<GaugeStep>(step.work);
  if (gauge.part.empty())
    return FindPart(file_, LoadedOf(CopyOf(PictureOf(step))), setup.reference);
  return PartOf(gauge.part).pose;
}

// The step's own picture, to do with as it likes.
Loaded PictureRun::PictureFor(const RecipeStep& step, const PreparedStep& prepared) {
  if (!TakesOver(prepared)) return LoadedOf(CopyOf(PictureOf(step)));
  return LoadedOf(std::move(pictures_.extract(LookedAtBy(step)).mapped()));
}

void PictureRun::AddMark(Mark mark) {
  if (shown_) marks_.push_back(std::move(mark));
}

// Whether lines follow the part that the step finds.
bool PictureRun::IsFollowed(const std::string& name) const {
  return std::any_of(recipe_.steps.begin(), recipe_.steps.end(), [&](const RecipeStep& step) {
    const auto* gauge = std::get_if<GaugeStep>(&step.work);
    return gauge != nullptr && gauge->part == name;
  });
}

const ObjectPose& PictureRun::PartOf(const std::string& step) const {
  const auto part = parts_.find(step);
  if (part == parts_.end()) {
    throw NotFound("the part was not found: there is none in step " + step);
  }
  return part->second;
}

void PictureRun::Work(const RecipeStep& step, const FilterStep& filter,
                      const PreparedStep& prepared, StepResult* /*result*/) {
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

void PictureRun::Work(const RecipeStep& step, const InspectStep& inspect,
                      const PreparedStep& prepared, StepResult* result) {
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

void PictureRun::Work(const RecipeStep& step, const GaugeStep& gauge, const PreparedStep& prepared,
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
      reason = line.name + " is " + ValueText(line, measured.value) + " " + unit + ", not within " +
               LimitsText(line.limits);
    }
    result->values.push_back({.object = "",
                              .name = line.name,
                              .number = measured.value,
                              .text = "",
                              .unit = unit,
                              .verdict = judgement.Take(measured.passed, reason)});
  }
}

void PictureRun::Work(const RecipeStep& step, const MatchStep& match, const PreparedStep& prepared,
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

void PictureRun::Work(const RecipeStep& step, const BarcodeStep& barcode,
                      const PreparedStep& /*prepared*/, StepResult* result) {
  const Image& gray = PictureOf(step).gray;
  const std::optional<BarcodeReading> reading =
      gray.Info().type == IMAGE_U8 ? FindBarcode(gray, barcode.settings)
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

void PictureRun::Work(const RecipeStep& step, const DialStep& dial, const PreparedStep& prepared,
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

}  // namespace front
