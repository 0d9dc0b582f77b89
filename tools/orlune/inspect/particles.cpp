// Particles with all their measures: those of the library, in as many calls as its limit of pieces
// takes, and those of the front.
#include "orlune/inspect/particles.h"

#include <algorithm>
#include <cmath>
#include <initializer_list>
#include <limits>
#include <numbers>
#include <stdexcept>

namespace front {
namespace {

constexpr int32_t PARTICLE_BORDER = 2;

// By label - 1: how many such pixels a particle has.
std::vector<int64_t> StartsOf(const Labels& labels, bool eight) {
  std::vector<int64_t> starts(labels.count);
  const std::vector<PixelRun>& runs = labels.runs;
  const int32_t reach = eight ? 1 : 0;
  size_t other = 0;  // the first run that can lie above
  for (const PixelRun& run : runs) {
    const auto ends = [&](const PixelRun& above) {
      return above.y < run.y - 1 || (above.y == run.y - 1 && above.end + reach <= run.start);
    };
    while (ends(runs[other])) ++other;
    const PixelRun& above = runs[other];
    const bool covered = above.y == run.y - 1 && above.start <= run.start + reach;
    if (!covered) ++starts[run.label - 1];
  }
  return starts;
}

// Whose numbers the library is asked for.
std::vector<uint32_t> AskedOfLibrary(const MeasureSet& wanted) {
  MeasureSet asked = wanted;
  asked.set(MEASURE_AREA_PIXELS);
  const std::vector<Measure>& all = AllMeasures();
  for (size_t m = FIRST_BY_NAME; m < all.size(); ++m) {
    if (wanted[m]) asked.set(all[m].inLibrary);
  }
  std::vector<uint32_t> numbers;
  for (uint32_t m = 0; m < LIBRARY_MEASURES; ++m) {
    if (asked[m]) numbers.push_back(m);
  }
  return numbers;
}

// Of the particles of a mask, numbered on from those that are there.
void AppendReports(const Image& mask, bool eight, const std::vector<uint32_t>& asked,
                   std::vector<Particle>* particles) {
  ParticleReport* found = nullptr;
  int32_t count = 0;
  const int32_t status =
      ZEL_Particle(mask, eight ? CONNECTIVITY_8 : CONNECTIVITY_4, &found, &count);
  const Block<ParticleReport> reports(found);
  Check(status);

  std::vector<float> values(asked.size() * static_cast<size_t>(count));
  Check(ZEL_ParticleCoeffs(mask, asked.data(), static_cast<uint32_t>(asked.size()), reports.get(),
                           count, values.data()));

  const std::vector<Measure>& all = AllMeasures();
  particles->reserve(particles->size() + static_cast<size_t>(count));
  for (size_t i = 0; i < static_cast<size_t>(count); ++i) {
    Particle& particle = particles->emplace_back();
    particle.number = static_cast<uint32_t>(particles->size());
    particle.rect = reports[i].rect;
    particle.values.resize(all.size());
    const float* own = values.data() + i * asked.size();
    for (size_t m = 0; m < asked.size(); ++m) {
      particle.values[asked[m]] = static_cast<double>(own[m]);
    }
    for (size_t m = FIRST_BY_NAME; m < all.size(); ++m) {
      particle.values[m] = particle.values[all[m].inLibrary];
    }
  }
}

// A picture of the particles of some numbers alone.
Image MaskOfSome(const Image& mask, const Labels& labels, uint32_t first, uint32_t last) {
  const ImageInfo info = mask.Info();
  Image some(IMAGE_U8, PARTICLE_BORDER, info.width, info.height);
  Check(ZEL_SetImageCalibration(some, info.unit, info.xStep, info.yStep));
  Check(ZEL_ClearPixels(some));
  const ImageInfo to = some.Info();
  for (const PixelRun& run : labels.runs) {
    if (run.label <= first || run.label > last) continue;
    std::fill_n(Row<uint8_t>(to, run.y) + run.start, run.end - run.start, uint8_t{1});
  }
  return some;
}

// A particle is measured by itself, so that a picture of too many can be taken in parts. Only the
// outline of one that touches others by corners (with four neighbours) may come out longer or
// shorter in a part, where those are missing.
void MeasureByLibrary(const Image& mask, const Labels& labels, bool eight,
                      const std::vector<uint32_t>& asked, int64_t most,
                      std::vector<Particle>* particles) {
  // A run has one start at most.
  if (static_cast<int64_t>(labels.runs.size()) <= most) {
    AppendReports(mask, eight, asked, particles);
    return;
  }
  const std::vector<int64_t> starts = StartsOf(labels, eight);
  for (uint32_t first = 0; first < labels.count;) {
    int64_t sum = 0;
    uint32_t last = first;
    while (last < labels.count && sum + starts[last] <= most) sum += starts[last++];
    if (last == first) {
      throw std::runtime_error(
          "particle " + std::to_string(first + 1) + " has " + std::to_string(starts[first]) +
          " starts of pieces, of which the library takes " + std::to_string(most) +
          ": a texture is taken for objects; "
          "choose other levels with --range, or smooth the picture with 'orlune filter' first");
    }
    const bool all = first == 0 && last == labels.count;
    if (all) {
      AppendReports(mask, eight, asked, particles);
    } else {
      AppendReports(MaskOfSome(mask, labels, first, last), eight, asked, particles);
    }
    first = last;
  }
}

// A particle's runs side by side.
std::vector<std::vector<PixelRun>> RunsByParticle(const Labels& labels) {
  std::vector<std::vector<PixelRun>> runs(labels.count);
  for (const PixelRun& run : labels.runs) runs[run.label - 1].push_back(run);
  return runs;
}

void PutMoments(const std::vector<PixelRun>& runs, const Scale& scale,
                std::vector<double>* values) {
  Moments moments;
  for (const PixelRun& run : runs) moments.Add(run);
  std::vector<double>& v = *values;
  v[MEASURE_CENTRE_OF_MASS_X] = moments.CentreX();
  v[MEASURE_CENTRE_OF_MASS_Y] = moments.CentreY();
  v[MEASURE_SUM_X] = static_cast<double>(moments.sumX);
  v[MEASURE_SUM_Y] = static_cast<double>(moments.sumY);
  v[MEASURE_SUM_XX] = static_cast<double>(moments.sumXX);
  v[MEASURE_SUM_YY] = static_cast<double>(moments.sumYY);
  v[MEASURE_SUM_XY] = static_cast<double>(moments.sumXY);
  const double xx = moments.InertiaXX(), yy = moments.InertiaYY(), xy = moments.InertiaXY();
  v[MEASURE_INERTIA_XX] = xx;
  v[MEASURE_INERTIA_YY] = yy;
  v[MEASURE_INERTIA_XY] = xy;
  v[MEASURE_ORIENTATION] = AxisAngle(xx, yy, xy);
  const double area = static_cast<double>(moments.area), product = xx * yy;
  v[MEASURE_TYPE_FACTOR] =
      product > 0 ? std::min(1.0, area * area / (4 * std::numbers::pi * std::sqrt(product))) : 0;
  const Ellipse ellipse = EllipseOf(moments, scale);
  v[MOMENT_ELLIPSE_MAJOR_AXIS] = ellipse.major;
  v[MOMENT_ELLIPSE_MINOR_AXIS] = ellipse.minor;
  v[MOMENT_ELLIPSE_ANGLE] = ellipse.angle;
  v[ECCENTRICITY] = ellipse.eccentricity;
}

void PutHull(const std::vector<PixelRun>& runs, const Scale& scale, double area,
             std::vector<double>* values) {
  const HullMeasures hull = MeasureHull(ConvexHull(runs), scale);
  std::vector<double>& v = *values;
  v[FERET_MAXIMUM] = hull.feretMaximum;
  v[FERET_MAXIMUM_ANGLE] = hull.feretMaximumAngle;
  v[FERET_MINIMUM] = hull.feretMinimum;
  v[FERET_MINIMUM_ANGLE] = hull.feretMinimumAngle;
  v[MINIMAL_BOX_LENGTH] = hull.boxLength;
  v[MINIMAL_BOX_WIDTH] = hull.boxWidth;
  v[MINIMAL_BOX_ANGLE] = hull.boxAngle;
  v[HULL_AREA] = hull.area;
  v[HULL_PERIMETER] = hull.perimeter;
  v[SOLIDITY] = area / hull.area;
}

template <class T>
void PutGrays(const std::vector<PixelRun>& runs, const ImageInfo& picture,
              std::vector<double>* values) {
  double sum = 0, pixels = 0;
  double low = std::numeric_limits<double>::infinity(), high = -low;
  const auto forPixels = [&](auto function) {
    for (const PixelRun& run : runs) {
      const T* row = Row<T>(picture, run.y);
      for (int32_t x = run.start; x < run.end; ++x) function(static_cast<double>(row[x]));
    }
  };
  forPixels([&](double value) {
    sum += value;
    pixels += 1;
    low = std::min(low, value);
    high = std::max(high, value);
  });
  const double mean = sum / pixels;
  double squares = 0;
  forPixels([&](double value) { squares += (value - mean) * (value - mean); });
  std::vector<double>& v = *values;
  v[GRAY_MEAN] = mean;
  v[GRAY_DEVIATION] = std::sqrt(squares / pixels);
  v[GRAY_MINIMUM] = low;
  v[GRAY_MAXIMUM] = high;
  v[GRAY_SUM] = sum;
}

// Measures of the front that are made together.
MeasureSet SetOf(std::initializer_list<size_t> numbers) {
  MeasureSet set;
  for (const size_t number : numbers) set.set(number);
  return set;
}
MeasureSet FromTo(size_t first, size_t last) {
  MeasureSet set;
  for (size_t number = first; number <= last; ++number) set.set(number);
  return set;
}
const MeasureSet MOMENTS =
    SetOf({MEASURE_CENTRE_OF_MASS_X, MEASURE_CENTRE_OF_MASS_Y, MEASURE_SUM_X, MEASURE_SUM_Y,
           MEASURE_SUM_XX, MEASURE_SUM_YY, MEASURE_SUM_XY, MEASURE_INERTIA_XX, MEASURE_INERTIA_YY,
           MEASURE_INERTIA_XY, MEASURE_ORIENTATION, MEASURE_TYPE_FACTOR}) |
    FromTo(MOMENT_ELLIPSE_MAJOR_AXIS, ECCENTRICITY);
const MeasureSet GRAYS = FromTo(GRAY_MEAN, GRAY_SUM);
const MeasureSet HULL = FromTo(FERET_MAXIMUM, SOLIDITY);
const MeasureSet CROFTON = FromTo(CROFTON_PERIMETER, CROFTON_CIRCULARITY);

// By label - 1.
std::vector<int64_t> PixelsOf(const Labels& labels) {
  std::vector<int64_t> pixels(labels.count);
  for (const PixelRun& run : labels.runs) pixels[run.label - 1] += run.end - run.start;
  return pixels;
}

// Both number the particles; each must mean the same one.
void CheckArea(size_t number, int64_t pixels, double measured) {
  if (static_cast<double>(pixels) == measured || pixels >= 1 << 24) return;
  throw std::logic_error("particle " + std::to_string(number) + " has two areas");
}

void PutCrofton(const Labels& labels, const std::vector<int64_t>& pixels, const Scale& scale,
                std::vector<Particle>* particles) {
  const double pixelArea = static_cast<double>(scale.x) * static_cast<double>(scale.y);
  const std::vector<Crossings> crossings = CountCrossings(LabelPicture(labels), labels.count);
  for (size_t i = 0; i < particles->size(); ++i) {
    const double area = static_cast<double>(pixels[i]) * pixelArea;
    const double perimeter = crossings[i].Perimeter(scale);
    std::vector<double>& values = (*particles)[i].values;
    values[CROFTON_PERIMETER] = perimeter;
    values[CROFTON_CIRCULARITY] = 4 * std::numbers::pi * area / (perimeter * perimeter);
  }
}

// What is made of the particles' runs.
void PutOwn(const Image& picture, const Labels& labels, const std::vector<int64_t>& pixels,
            const MeasureSet& wanted, std::vector<Particle>* particles) {
  const ImageInfo info = picture.Info();
  // A step of 0 counts as 1, as in the library.
  const Scale scale{info.xStep != 0 ? info.xStep : 1, info.yStep != 0 ? info.yStep : 1};
  const double pixelArea = static_cast<double>(scale.x) * static_cast<double>(scale.y);
  if ((wanted & CROFTON).any()) PutCrofton(labels, pixels, scale, particles);
  if ((wanted & (MOMENTS | HULL | GRAYS)).none()) return;
  const std::vector<std::vector<PixelRun>> runs = RunsByParticle(labels);
  for (size_t i = 0; i < particles->size(); ++i) {
    std::vector<double>& values = (*particles)[i].values;
    if ((wanted & MOMENTS).any()) PutMoments(runs[i], scale, &values);
    if ((wanted & HULL).any()) {
      PutHull(runs[i], scale, static_cast<double>(pixels[i]) * pixelArea, &values);
    }
    if ((wanted & GRAYS).none()) continue;
    ForPixelType(info.type, [&](auto* pixel) {
      PutGrays<std::remove_pointer_t<decltype(pixel)>>(runs[i], info, &values);
    });
  }
}

}  // namespace

bool NeedLabels(const MeasureSet& wanted) {
  return (wanted & (MOMENTS | HULL | GRAYS | CROFTON)).any();
}

std::optional<std::vector<Particle>> MeasureUnlabelled(const Image& mask, bool eightConnected,
                                                       const MeasureSet& wanted) {
  MeasureSet counted = wanted;
  counted.set(MEASURE_NUMBER_OF_RUNS);
  std::vector<Particle> particles;
  AppendReports(mask, eightConnected, AskedOfLibrary(counted), &particles);
  double runs = 0;
  for (const Particle& particle : particles) runs += particle.values[MEASURE_NUMBER_OF_RUNS];
  if (runs > MOST_STARTS) return std::nullopt;
  return particles;
}

std::vector<Particle> MeasureParticles(const Image& mask, const Image& picture,
                                       const Labels& labels, bool eightConnected,
                                       const MeasureSet& wanted, int64_t mostStarts) {
  std::vector<Particle> particles;
  MeasureByLibrary(mask, labels, eightConnected, AskedOfLibrary(wanted), mostStarts, &particles);

  const std::vector<int64_t> pixels = PixelsOf(labels);
  if (particles.size() != pixels.size()) {
    throw std::logic_error("there are two numbers of particles");
  }
  for (size_t i = 0; i < particles.size(); ++i) {
    CheckArea(i + 1, pixels[i], particles[i].values[MEASURE_AREA_PIXELS]);
  }
  PutOwn(picture, labels, pixels, wanted, &particles);
  return particles;
}

}  // namespace front
