// The histogram of a region with the statistics of the pixels that it counts.
#include "statistics/histogram.h"

#include <algorithm>
#include <cmath>
#include <cstring>

#include "statistics/histogram_rows.h"
#include "core/kernels.h"
#include "core/numbers.h"

namespace zel {
namespace {

constexpr int32_t CLASSES_MAX = 4096;

// The + 1.0 stands for floats too, although only whole numbers need it.
double ExtentOf(const ClassMap& map) {
  return map.max - map.min + 1.0;
}

ClassMap ClassMapOf(double min, double max, int32_t classes) {
  ClassMap map{min, max, 0.0, 0.0, classes};
  if (classes > 1) map.scale = static_cast<double>(static_cast<float>(classes / ExtentOf(map)));
  map.offset = static_cast<double>(static_cast<float>((map.scale - 1.0) * 0.5));
  return map;
}

void ReportWrite(const ClassMap& map, const PixelSums& sums, HistogramReport* report) {
  *report = {};
  if (sums.count == 0) return;
  const auto count = static_cast<double>(sums.count);
  report->min = sums.min;
  report->max = sums.max;
  report->start = static_cast<float>(map.min);
  report->interval =
      map.classes == 1 ? EXTREME_NONE : static_cast<float>(ExtentOf(map) / map.classes);
  report->mean = static_cast<float>(sums.sum / count);
  report->stdDev = static_cast<float>(DeviationOf(sums.squares, count, report->mean));
  report->nbPixels = static_cast<uint32_t>(sums.count);
}

// COUNT_TABLES tables of counters, which are folded into one at the end.
class CountTables {
 public:
  explicit CountTables(int32_t length) : length_(length) {
    std::memset(counters_, 0, static_cast<size_t>(COUNT_TABLES * length) * sizeof(uint32_t));
  }
  uint32_t* counters() { return counters_; }
  void Fold(int32_t count, uint32_t* folded) const {
    std::memcpy(folded, counters_, static_cast<size_t>(count) * sizeof(uint32_t));
    for (int32_t table = 1; table < COUNT_TABLES; table++) {
      const uint32_t* more = counters_ + table * length_;
      for (int32_t i = 0; i < count; i++) folded[i] += more[i];
    }
  }

 private:
  int32_t length_;
  uint32_t counters_[COUNT_TABLES * (CLASSES_MAX + 1)];
};

// Sums of bytes stay below EXACT_SUM_LIMIT, so that the counts of the levels tell all.
void SumLevels(const uint32_t* counts, int32_t low, int32_t high, PixelSums* sums) {
  while (low <= high && counts[low] == 0) low++;
  while (high > low && counts[high] == 0) high--;
  if (low > high) return;
  uint64_t count = 0;
  uint64_t sum = 0;
  uint64_t squares = 0;
  for (int32_t level = low; level <= high; level++) {
    const uint64_t number = counts[level];
    const auto value = static_cast<uint32_t>(level);
    count += number;
    sum += number * value;
    squares += number * (value * value);
  }
  sums->min = static_cast<float>(low);
  sums->max = static_cast<float>(high);
  sums->count = static_cast<int64_t>(count);
  sums->sum = static_cast<double>(sum);
  sums->squares = static_cast<double>(squares);
}

void CountBytes(const PixelRegion& region, const ClassMap& map, uint32_t* counters,
                PixelSums* sums) {
  uint32_t counts[LEVELS_U8];
  CountLevels(region, counts);
  const auto low = static_cast<int32_t>(map.min);
  const auto high = static_cast<int32_t>(map.max);
  SumLevels(counts, low, high, sums);
  int16_t levels[LEVELS_U8];
  uint16_t classes[LEVELS_U8];
  for (int32_t level = low; level <= high; level++) levels[level] = static_cast<int16_t>(level);
  histogramRows().classesOfWords(levels + low, nullptr, high - low + 1, map, classes);
  std::memset(counters, 0, static_cast<size_t>(map.classes) * sizeof(uint32_t));
  for (int32_t level = low; level <= high; level++) {
    counters[classes[level - low]] += counts[level];
  }
}

// The squares of many large words are rounded as they come, pixel after pixel.
void SumWordsInOrder(const PixelRegion& region, const ClassMap& map, PixelSums* sums) {
  *sums = {};
  for (int32_t y = 0; y < region.height; y++) {
    const auto* row = reinterpret_cast<const int16_t*>(region.pixels + y * region.pitch);
    const uint8_t* mask = region.mask ? region.mask + y * region.maskPitch : nullptr;
    for (int32_t x = 0; x < region.width; x++) {
      const bool counted = (!mask || mask[x] != 0) && row[x] >= map.min && row[x] <= map.max;
      if (counted) PixelSumsAdd(sums, row[x]);
    }
  }
}

void CountPixels(const PixelRegion& region, const ClassMap& map, uint32_t* counters,
                 PixelSums* sums) {
  const HistogramRows& rows = histogramRows();
  const bool words = region.type == IMAGE_I16;
  const ClassRow classesOf = words ? rows.classesOfWords : rows.classesOfFloats;
  const SumRow sum = words ? rows.sumWords : rows.sumFloats;
  const int64_t pixelBytes = words ? 2 : 4;
  CountTables tables(map.classes + 1);
  uint16_t classes[CLASS_RUN];
  for (int32_t y = 0; y < region.height; y++) {
    const uint8_t* row = region.pixels + y * region.pitch;
    const uint8_t* mask = region.mask ? region.mask + y * region.maskPitch : nullptr;
    for (int32_t x = 0; x < region.width; x += CLASS_RUN) {
      const int32_t run = std::min(CLASS_RUN, region.width - x);
      const uint8_t* pixels = row + x * pixelBytes;
      classesOf(pixels, mask ? mask + x : nullptr, run, map, classes);
      sum(pixels, classes, run, map, tables.counters(), sums);
    }
  }
  tables.Fold(map.classes, counters);
  for (int32_t i = 0; i < map.classes; i++) sums->count += counters[i];
  if (!sums->SquaresAreExact() && words) SumWordsInOrder(region, map, sums);
}

}  // namespace

double DeviationOf(double squares, double count, float mean) {
  const auto wide = static_cast<double>(mean);
  const double variance = squares / count - wide * wide;
  return variance < 0.0 ? 0.0 : std::sqrt(variance);
}

void CountLevels(const PixelRegion& region, uint32_t (&counts)[LEVELS_U8]) {
  const HistogramRows& rows = histogramRows();
  // Under a mask a counter more takes the pixels that are left out.
  CountTables tables(LEVELS_U8 + (region.mask ? 1 : 0));
  uint16_t levels[CLASS_RUN];
  for (int32_t y = 0; y < region.height; y++) {
    const uint8_t* row = region.pixels + y * region.pitch;
    if (!region.mask) {
      rows.countLevels(row, region.width, tables.counters());
      continue;
    }
    const uint8_t* mask = region.mask + y * region.maskPitch;
    for (int32_t x = 0; x < region.width; x += CLASS_RUN) {
      const int32_t run = std::min(CLASS_RUN, region.width - x);
      rows.levelsUnderMask(row + x, mask + x, run, levels);
      rows.countNumbers(levels, run, LEVELS_U8 + 1, tables.counters());
    }
  }
  tables.Fold(LEVELS_U8, counts);
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

  *status = VectorResize(histogram, sizeof(uint32_t), static_cast<uint64_t>(classes));
  if (*status != STATUS_OK) return;
  auto* counters = VectorData<uint32_t>(histogram);
  const ClassMap map = ClassMapOf(low, high, classes);
  PixelSums sums;
  if (everyLevel) {
    uint32_t counts[LEVELS_U8];
    CountLevels(region, counts);
    SumLevels(counts, 0, LEVELS_U8 - 1, &sums);
    std::memcpy(counters, counts, sizeof(counts));
  } else if (high - low < 0) {
    std::memset(counters, 0, static_cast<size_t>(classes) * sizeof(uint32_t));
  } else if (region.type == IMAGE_U8) {
    CountBytes(region, map, counters, &sums);
  } else {
    CountPixels(region, map, counters, &sums);
  }
  ReportWrite(map, sums, report);
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
