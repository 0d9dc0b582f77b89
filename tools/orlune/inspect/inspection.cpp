// One picture inspected: thresholded, labelled, measured, selected.
#include "orlune/inspect/inspection.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <stdexcept>

#include "orlune/shared/numbers.h"

namespace front {
namespace {

constexpr int32_t PARTICLE_BORDER = 2;  // what 8-connected particles need around the picture

// Of a range of numbers, the part that pixels of a type can have: whole numbers, or floats. Its low
// end is above its high end where there is none.
Range InPixelValues(const Range& range, int32_t type) {
  const auto limits = [&](double lowest, double highest) {
    return Range{std::max(std::ceil(range.low), lowest), std::min(std::floor(range.high), highest)};
  };
  if (type == IMAGE_U8) return limits(0, 255);
  if (type == IMAGE_I16) return limits(-32768, 32767);
  constexpr float INFINITE = std::numeric_limits<float>::infinity();
  auto low = static_cast<float>(range.low), high = static_cast<float>(range.high);
  if (static_cast<double>(low) < range.low) low = std::nextafter(low, INFINITE);
  if (static_cast<double>(high) > range.high) high = std::nextafter(high, -INFINITE);
  return {static_cast<double>(low), static_cast<double>(high)};
}

// 1 where a pixel lies in the range, 0 elsewhere, with the border that particle functions need.
Image MaskOf(const Image& image, const Range& range) {
  const ImageInfo info = image.Info();
  const Range inside = InPixelValues(range, info.type);
  if (inside.low > inside.high) {
    Image none(IMAGE_U8, PARTICLE_BORDER, info.width, info.height);
    Check(ZEL_SetImageCalibration(none, info.unit, info.xStep, info.yStep));
    Check(ZEL_ClearPixels(none));
    return none;
  }
  Image mask = Image::ForNewPixels(info.type, PARTICLE_BORDER, info.width, info.height);
  Check(ZEL_Threshold(image, mask, static_cast<float>(inside.low), static_cast<float>(inside.high),
                      1, 1));
  Check(ZEL_Cast(mask, IMAGE_U8));
  return mask;
}

// The least value that the stretch brings to a level or above.
double ValueAtLevel(const Extremes& extremes, double level, int32_t type) {
  const double step = (extremes.high - extremes.low) / 255;
  const double value = extremes.low + (level - 0.5) * step;
  return type == IMAGE_SGL ? value : std::ceil(value);
}

// The greatest value below another one.
double ValueBelow(double value, int32_t type) {
  if (type != IMAGE_SGL) return value - 1;
  return std::nextafter(value, -std::numeric_limits<double>::infinity());
}

void FindLevels(const InspectSettings& settings, const Image* place, const Extremes& extremes,
                Inspection* result) {
  const Image& gray = result->Gray();
  const std::optional<Boundary> boundary =
      place != nullptr ? FindBoundary(PixelsAt(*place, gray), settings.method)
                       : FindBoundary(gray, settings.method);
  if (!boundary) {
    const bool noNumbers = result->stretched && extremes.finite == 0;
    result->remark = noNumbers ? "no pixel has a number" : "the picture has no contrast";
    return;
  }
  result->remark = boundary->remark;
  const int32_t type = result->picture.Info().type;
  const Range levels = result->stretched ? Range{extremes.low, extremes.high} : Range{0, 255};
  const double light =
      result->stretched ? ValueAtLevel(extremes, boundary->level, type) : boundary->level;
  // The lowest level begins at the darkest pixel.
  const double first = boundary->level == 0 ? levels.low : light;
  if (settings.dark && boundary->level == 0) return;
  result->objects =
      settings.dark ? Range{levels.low, ValueBelow(first, type)} : Range{first, levels.high};
}

void TakeGivenLevels(const Range& given, const Extremes& extremes, Inspection* result) {
  const Range levels = LevelsOf(result->account, result->picture.Info().type);
  const Range objects{std::max(given.low, levels.low), std::min(given.high, levels.high)};
  if (objects.low > objects.high || objects.low > extremes.high || objects.high < extremes.low) {
    result->remark = "no pixel lies in the range: the picture's values are " + Short(extremes.low) +
                     " to " + Short(extremes.high);
    if (objects.low > objects.high) return;
  }
  result->objects = objects;
}

Image FindByLevels(const InspectSettings& settings, const Image* place, const Extremes& extremes,
                   Inspection* result) {
  if (settings.range) {
    TakeGivenLevels(*settings.range, extremes, result);
  } else {
    FindLevels(settings, place, extremes, result);
  }
  const Range none{1, 0};
  return MaskOf(result->picture, result->objects.value_or(none));
}

Image FindByColour(const ColourRanges& ranges, const std::optional<Image>& colours,
                   const Image& picture) {
  if (!colours) throw std::invalid_argument("the picture is gray: it has no objects of a colour");
  Image mask = ObjectsByColour(*colours, ranges, PARTICLE_BORDER);
  const ImageInfo info = picture.Info();
  Check(ZEL_SetImageCalibration(mask, info.unit, info.xStep, info.yStep));
  return mask;
}

// Finds the objects, and says by which levels. A picture of bytes is stretched, and its extremes
// are looked for, only where they are used.
Image FindObjects(const InspectSettings& settings, const std::optional<Image>& colours,
                  Inspection* result) {
  const std::optional<Image> place = PlaceOf(settings.region, settings.mask, result->picture);
  const int32_t type = result->picture.Info().type;
  const bool stretches = type != IMAGE_U8 || LevelsOf(result->account, type).high < 255;
  Extremes extremes;
  if (stretches || settings.range) extremes = ExtremesOf(result->picture);
  if (stretches) result->stretched = Stretch(result->picture, extremes);
  const Image* where = place ? &*place : nullptr;
  Image mask = settings.colours.Any() ? FindByColour(settings.colours, colours, result->picture)
                                      : FindByLevels(settings, where, extremes, result);
  if (place) KeepAt(*place, mask);
  Refine(settings.refinement, settings.eightConnected, where, &mask);
  return mask;
}

}  // namespace

Timing& Timing::operator+=(const Timing& other) {
  reading += other.reading;
  thresholding += other.thresholding;
  labelling += other.labelling;
  measuring += other.measuring;
  writing += other.writing;
  return *this;
}

Seconds Timing::Total() const {
  return reading + thresholding + labelling + measuring + writing;
}

size_t Inspection::Kept() const {
  return static_cast<size_t>(
      std::count_if(particles.begin(), particles.end(), [](const Particle& p) { return p.kept; }));
}

namespace {

// A picture, and the mask that shows its objects.
struct Located {
  Inspection inspection;
  Image mask;
};

Located FindIn(Loaded picture, const std::string& path, const InspectSettings& settings) {
  Clock clock;
  const ImageInfo info = picture.image.Info();
  Inspection result{.path = path,
                    .account = std::move(picture.account),
                    .objects = {},
                    .remark = {},
                    .scale = settings.scale.value_or(Scale{info.xStep, info.yStep}),
                    .unit = "px",
                    .particles = {},
                    .timing = {},
                    .picture = std::move(picture.image),
                    .stretched = {},
                    .labels = {}};
  if (result.scale.x != 1 || result.scale.y != 1 || !settings.unit.empty()) {
    result.unit = settings.unit.empty() ? "unit" : settings.unit;
  }
  Check(ZEL_SetImageCalibration(result.picture, info.unit, result.scale.x, result.scale.y));
  Image mask = FindObjects(settings, picture.colours, &result);
  result.timing.thresholding = clock.Lap();
  return {std::move(result), std::move(mask)};
}

Located FindIn(const std::string& path, const InspectSettings& settings) {
  Clock clock;
  Loaded picture = ReadPicture(
      path,
      {.form = Form::Gray, .swapBytes = settings.swapBytes, .colours = settings.colours.Any()});
  const Seconds reading = clock.Lap();
  Located located = FindIn(std::move(picture), path, settings);
  located.inspection.timing.reading = reading;
  return located;
}

Inspection Labelled(Located located, const InspectSettings& settings) {
  Clock clock;
  Inspection result = std::move(located.inspection);
  result.labels = LabelRuns(located.mask, settings.eightConnected);
  result.timing.labelling = clock.Lap();
  return result;
}

std::vector<Particle> ParticlesOf(const Image& mask, const MeasureSet& wanted,
                                  const InspectSettings& settings, Inspection* result) {
  const bool eight = settings.eightConnected;
  if (!settings.labelled && !NeedLabels(wanted)) {
    if (auto particles = MeasureUnlabelled(mask, eight, wanted)) return *std::move(particles);
  }
  Clock clock;
  result->labels = LabelRuns(mask, eight);
  result->timing.labelling = clock.Lap();
  return MeasureParticles(mask, result->picture, result->labels, eight, wanted);
}

Inspection Measured(Located located, const InspectSettings& settings) {
  Inspection result = std::move(located.inspection);
  MeasureSet wanted = settings.measured;
  for (const Condition& condition : settings.keep) wanted.set(condition.measure->number);
  Clock clock;
  result.particles = ParticlesOf(located.mask, wanted, settings, &result);
  for (Particle& particle : result.particles) {
    particle.kept = std::all_of(
        settings.keep.begin(), settings.keep.end(),
        [&](const Condition& c) { return c.Holds(particle.values[c.measure->number]); });
  }
  result.timing.measuring = clock.Lap() - result.timing.labelling;
  return result;
}

}  // namespace

Inspection Locate(const std::string& path, const InspectSettings& settings) {
  return Labelled(FindIn(path, settings), settings);
}

Inspection Inspect(const std::string& path, const InspectSettings& settings) {
  return Measured(FindIn(path, settings), settings);
}

Inspection Locate(Loaded picture, const std::string& path, const InspectSettings& settings) {
  return Labelled(FindIn(std::move(picture), path, settings), settings);
}

Inspection Inspect(Loaded picture, const std::string& path, const InspectSettings& settings) {
  return Measured(FindIn(std::move(picture), path, settings), settings);
}

}  // namespace front
