// One picture inspected: thresholded, labelled, measured, selected.
#include "orlune/inspection.h"

#include <algorithm>
#include <cmath>

namespace front {
namespace {

constexpr int32_t PARTICLE_BORDER = 2;  // what 8-connected particles need around the picture

// 1 where a pixel lies in the range, 0 elsewhere, with the border that particle functions need.
Image MaskOf(const Image& image, const Range& range) {
  Image mask(image.Info().type, PARTICLE_BORDER);
  Check(ZEL_Threshold(image, mask, static_cast<float>(range.low), static_cast<float>(range.high), 1,
                      1));
  Check(ZEL_Cast(mask, IMAGE_U8));
  return mask;
}

Image EmptyMaskOf(const Image& image) {
  const ImageInfo info = image.Info();
  Image mask(IMAGE_U8, PARTICLE_BORDER, info.width, info.height);
  Check(ZEL_SetImageCalibration(mask, info.unit, info.xStep, info.yStep));
  Check(ZEL_ClearPixels(mask));
  return mask;
}

// The boundary that the method finds in an 8-bit picture. A picture of two levels has only one.
std::optional<int32_t> Boundary(const Image& gray, AutoBMethod method) {
  uint32_t histogram[256];
  Check(ZEL_Histogram(gray, 0, 256, 0, 255, histogram, nullptr));
  const auto filled = [](uint32_t count) { return count != 0; };
  const auto levels = std::count_if(std::begin(histogram), std::end(histogram), filled);
  if (levels < 2) return std::nullopt;
  if (levels == 2) {
    const auto last = std::find_if(std::rbegin(histogram), std::rend(histogram), filled);
    return static_cast<int32_t>(std::distance(last, std::rend(histogram))) - 1;
  }
  int32_t threshold = 0;
  Check(ZEL_AutoBThreshold(gray, method, ARRAY_U8, nullptr, &threshold));
  return threshold;
}

// Levels that an integer or float image can hold, so that an open end of a range shows as a value.
Range LevelsOf(const FileInfo& file, int32_t type) {
  if (type == IMAGE_I16) return {-32768, 32767};
  if (type == IMAGE_U8) return {0, file.bitsPerPixel < 8 ? (1 << file.bitsPerPixel) - 1.0 : 255.0};
  return {};
}

// Finds the objects, and says by which levels.
Image FindObjects(const InspectSettings& settings, Inspection* result) {
  const Image& picture = result->picture;
  if (settings.range) {
    const Range levels = LevelsOf(result->file, picture.Info().type);
    const Range objects{std::max(settings.range->low, levels.low),
                        std::min(settings.range->high, levels.high)};
    if (objects.low > objects.high) return EmptyMaskOf(picture);
    result->objects = objects;
    return MaskOf(picture, objects);
  }

  const Image& gray = result->Gray();
  const std::optional<int32_t> boundary = Boundary(gray, settings.method);
  if (!boundary || (settings.dark && *boundary == 0)) return EmptyMaskOf(gray);
  const Range objects = settings.dark ? Range{0, *boundary - 1.0} : Range{1.0 * *boundary, 255};
  // In the file's own values, which a stretch has left behind.
  const Extremes extremes = result->stretched ? ExtremesOf(picture) : Extremes{0, 255, 0};
  const double step = (extremes.high - extremes.low) / 255;
  result->objects = Range{extremes.low + objects.low * step, extremes.low + objects.high * step};
  return MaskOf(gray, objects);
}

std::vector<Particle> MeasureParticles(const Image& mask, Connectivity connectivity) {
  ParticleReport* found = nullptr;
  int32_t count = 0;
  const int32_t status = ZEL_Particle(mask, connectivity, &found, &count);
  const Block<ParticleReport> reports(found);
  Check(status);

  std::array<uint32_t, MEASURE_COUNT> numbers;
  for (uint32_t i = 0; i < MEASURE_COUNT; ++i) numbers[i] = i;
  std::vector<float> values(MEASURE_COUNT * static_cast<size_t>(count));
  Check(
      ZEL_ParticleCoeffs(mask, numbers.data(), MEASURE_COUNT, reports.get(), count, values.data()));

  std::vector<Particle> particles(static_cast<size_t>(count));
  for (size_t i = 0; i < particles.size(); ++i) {
    particles[i].number = static_cast<int32_t>(i) + 1;
    particles[i].rect = reports[i].rect;
    std::copy_n(values.begin() + static_cast<std::ptrdiff_t>(i * MEASURE_COUNT), MEASURE_COUNT,
                particles[i].values.begin());
  }
  return particles;
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

std::string_view MethodName(AutoBMethod method) {
  switch (method) {
    case AUTOB_CLUSTERING:
      return "clustering";
    case AUTOB_ENTROPY:
      return "entropy";
    case AUTOB_METRIC:
      return "metric";
    case AUTOB_MOMENTS:
      return "moments";
    case AUTOB_INTERCLASS:
      return "interclass";
  }
  return "";
}

Inspection Inspect(const std::string& path, const InspectSettings& settings) {
  Clock clock;
  Picture picture = ReadPicture(path, {Form::Gray, settings.swapBytes});
  const ImageInfo info = picture.image.Info();

  Inspection result{.path = path,
                    .file = picture.file,
                    .objects = {},
                    .scale = settings.scale.value_or(Scale{info.xStep, info.yStep}),
                    .unit = "px",
                    .particles = {},
                    .timing = {},
                    .picture = std::move(picture.image),
                    .stretched = {},
                    .labels = Image(IMAGE_I16, PARTICLE_BORDER)};
  if (result.scale.x != 1 || result.scale.y != 1 || !settings.unit.empty()) {
    result.unit = settings.unit.empty() ? "unit" : settings.unit;
  }
  Check(ZEL_SetImageCalibration(result.picture, info.unit, result.scale.x, result.scale.y));
  result.timing.reading = clock.Lap();

  if (info.type != IMAGE_U8 || picture.file.bitsPerPixel < 8) {
    result.stretched = Stretch(result.picture);
  }
  const Image mask = FindObjects(settings, &result);
  result.timing.thresholding = clock.Lap();

  const Connectivity connectivity = settings.eightConnected ? CONNECTIVITY_8 : CONNECTIVITY_4;
  int32_t labelled = 0;
  Check(ZEL_Label(mask, result.labels, connectivity, &labelled));
  result.timing.labelling = clock.Lap();

  result.particles = MeasureParticles(mask, connectivity);
  for (Particle& particle : result.particles) {
    particle.kept = std::all_of(
        settings.keep.begin(), settings.keep.end(),
        [&](const Condition& c) { return c.Holds(particle.values[c.measure->number]); });
  }
  result.timing.measuring = clock.Lap();
  return result;
}

}  // namespace front
