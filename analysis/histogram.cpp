// The histogram of a region with the statistics of the pixels that it counts.
#include "analysis/histogram.h"

#include <cmath>
#include <cstring>

#include "core/kernels.h"
#include "core/numbers.h"

namespace zel {
namespace {

constexpr int32_t CLASSES_MAX = 4096;
constexpr float EXTREME_NONE = 1e38f;  // where running extremes start; one class is as wide

// Both ends of the counted values and the classes between them.
struct ClassMap {
  double min, max;
  double scale, offset;
  int32_t classes;

  bool Takes(double value) const { return value >= min && value <= max; }
  // The + 1.0 stands for floats too, although only whole numbers need it.
  double Extent() const { return max - min + 1.0; }
};

// What the counted pixels add up to.
struct Statistics {
  double min, max;
  double sum, squares;
  uint32_t count;
};

ClassMap ClassMapOf(double min, double max, int32_t classes) {
  ClassMap map{min, max, 0.0, 0.0, classes};
  if (classes > 1) map.scale = static_cast<double>(static_cast<float>(classes / map.Extent()));
  map.offset = static_cast<double>(static_cast<float>((map.scale - 1.0) * 0.5));
  return map;
}

// Rounded to the nearest class, an exact half down.
int32_t ClassOf(const ClassMap& map, double value) {
  const double position = (value - map.min) * map.scale + map.offset;
  if (!(position > 0.0)) return 0;
  if (position >= map.classes - 1) return map.classes - 1;
  const auto below = static_cast<int32_t>(position);
  return below + (position - below > 0.5 ? 1 : 0);
}

void ReportWrite(const ClassMap& map, const Statistics& statistics, HistogramReport* report) {
  *report = {};
  if (statistics.count == 0) return;
  const double count = statistics.count;
  report->min = static_cast<float>(statistics.min);
  report->max = static_cast<float>(statistics.max);
  report->start = static_cast<float>(map.min);
  report->interval =
      map.classes == 1 ? EXTREME_NONE : static_cast<float>(map.Extent() / map.classes);
  report->mean = static_cast<float>(statistics.sum / count);
  // The stored mean is rounded, so that the difference can fall below 0.
  const double mean = static_cast<double>(report->mean);
  const double variance = statistics.squares / count - mean * mean;
  report->stdDev = static_cast<float>(variance < 0.0 ? 0.0 : std::sqrt(variance));
  report->nbPixels = statistics.count;
}

Status CountersMake(Handle histogram, int32_t classes, uint32_t** counters) {
  const Status status = VectorResize(histogram, sizeof(uint32_t), static_cast<uint64_t>(classes));
  if (status != STATUS_OK) return status;
  *counters = VectorData<uint32_t>(histogram);
  std::memset(*counters, 0, static_cast<size_t>(classes) * sizeof(uint32_t));
  return STATUS_OK;
}

// All sums of whole numbers up to 2^53 are exact, in whatever order: those of U8 pixels always are.
void CountBytes(const PixelRegion& region, const ClassMap& map, uint32_t* counters,
                Statistics* statistics) {
  uint32_t levels[LEVELS_U8];
  CountLevels(region, levels);
  for (int32_t level = 0; level < LEVELS_U8; level++) {
    const uint32_t count = levels[level];
    if (count == 0 || !map.Takes(level)) continue;
    if (statistics->count == 0) statistics->min = level;
    statistics->max = level;
    statistics->count += count;
    statistics->sum += static_cast<double>(level) * count;
    statistics->squares += static_cast<double>(level * level) * count;
    counters[ClassOf(map, level)] += count;
  }
}

template <class T>
void CountPixels(const PixelRegion& region, const ClassMap& map, uint32_t* counters,
                 Statistics* statistics) {
  for (int32_t y = 0; y < region.height; y++) {
    const auto* row = reinterpret_cast<const T*>(region.pixels + y * region.pitch);
    const uint8_t* mask = region.mask ? region.mask + y * region.maskPitch : nullptr;
    for (int32_t x = 0; x < region.width; x++) {
      const auto value = static_cast<double>(row[x]);
      if ((mask && mask[x] == 0) || !map.Takes(value)) continue;
      if (value < statistics->min) statistics->min = value;
      if (value > statistics->max) statistics->max = value;
      statistics->count++;
      statistics->sum += value;
      statistics->squares += value * value;
      counters[ClassOf(map, value)]++;
    }
  }
}

}  // namespace

void CountLevels(const PixelRegion& region, uint32_t (&counts)[LEVELS_U8]) {
  std::memset(counts, 0, sizeof(counts));
  for (int32_t y = 0; y < region.height; y++) {
    const uint8_t* row = region.pixels + y * region.pitch;
    const uint8_t* mask = region.mask ? region.mask + y * region.maskPitch : nullptr;
    for (int32_t x = 0; x < region.width; x++) {
      if (!mask || mask[x] != 0) counts[row[x]]++;
    }
  }
}

void HistogramKernel(ImageRef image, ImageRef mask, const int32_t* nbClasses, const float* min,
                     const float* max, Handle histogram, HistogramReport* report, Status* status) {
  PixelRegion region{};
  PixelRegionOf(image, mask, &region, status);
  if (*status != STATUS_OK) return;
  if (!TypeIsScalar(region.type)) {
    *status = STATUS_BAD_TYPE;
    return;
  }

  int32_t classes = Clamped(*nbClasses, 1, CLASSES_MAX);
  double low = CutSaturated(static_cast<double>(*min));
  double high = CutSaturated(static_cast<double>(*max));
  bool everyLevel = false;
  if (region.type == IMAGE_U8) {
    if (low < 1) low = 0;
    if (high == 0 || high > 255) high = 255;
    if (classes > LEVELS_U8) classes = LEVELS_U8;
    everyLevel = classes == LEVELS_U8 && low == 0 && high == 255;
  } else if (region.type == IMAGE_I16 ? low == 0 && high == 0 : *min == 0.0f && *max == 0.0f) {
    float lowest = 0;
    float highest = 0;
    ImageMinMax(region, &lowest, &highest, status);
    low = static_cast<double>(lowest);
    high = static_cast<double>(highest);
  } else if (region.type == IMAGE_I16) {
    if (low < INT16_MIN) low = INT16_MIN;
    if (high > INT16_MAX) high = INT16_MAX;
  } else {
    low = static_cast<double>(*min);
    high = static_cast<double>(*max);
  }

  uint32_t* counters = nullptr;
  *status = CountersMake(histogram, classes, &counters);
  if (*status != STATUS_OK) return;
  const ClassMap map = ClassMapOf(low, high, classes);
  Statistics statistics{};
  statistics.min = static_cast<double>(EXTREME_NONE);
  statistics.max = static_cast<double>(-EXTREME_NONE);
  if (!(high - low < 0)) {
    if (region.type == IMAGE_U8) CountBytes(region, map, counters, &statistics);
    if (region.type == IMAGE_I16) CountPixels<int16_t>(region, map, counters, &statistics);
    if (region.type == IMAGE_SGL) CountPixels<float>(region, map, counters, &statistics);
  }
  ReportWrite(map, statistics, report);
  if (everyLevel) report->interval = 1.0f;  // also when nothing is counted
}

}  // namespace zel

int32_t ZEL_Histogram(ImageRef image, ImageRef mask, int32_t nbClasses, float min, float max,
                      uint32_t* histogram, HistogramReport* report) {
  // Counters that nobody asked for. A caller's array is never used beyond the most classes.
  uint32_t unused[zel::CLASSES_MAX];
  const int32_t room = histogram ? zel::Clamped(nbClasses, 0, zel::CLASSES_MAX) : zel::CLASSES_MAX;
  HistogramReport result{};
  zel::ScopedWrap counters;
  zel::Status status = counters.Create(histogram ? histogram : unused, sizeof(uint32_t),
                                       static_cast<uint32_t>(room), 0, 0);
  if (status == zel::STATUS_OK) {
    zel::HistogramKernel(image, mask, &nbClasses, &min, &max, counters.handle(), &result, &status);
  }
  if (status == zel::STATUS_OK && report) *report = result;
  return ZEL_ProcessError("ZEL_Histogram", status);
}
