// The histogram of a region with the statistics of the pixels that it counts.
#include "statistics/histogram.h"

#include <algorithm>
#include <cfenv>
#include <cstring>

#include "core/heap.h"
#include "core/numbers.h"
#include "statistics/histogram_rows.h"
#include "statistics/min_max.h"

namespace zel {
namespace {

constexpr int32_t CLASSES_MAX = 4096;

// The + 1.0 stands for floats too, although only whole numbers need it.
double ExtentOf(const ClassMap& map) {
  return map.max - map.min + 1.0;
}

// Not inlined, so that nothing of it is moved to where the caller's rounding is in force.
[[gnu::noinline]] void ClassMapScale(ClassMap* map) {
  map->scale = map->classes > 1 ? static_cast<float>(map->classes / ExtentOf(*map)) : 0.0f;
  map->offset = static_cast<float>((static_cast<double>(map->scale) - 1.0) * 0.5);
}

// The classes of integers are the same whatever way the caller's floats are rounded: the position
// of an integer is exact, once these two are settled.
ClassMap ClassMapOf(double min, double max, int32_t classes) {
  ClassMap map{min, max, 0.0f, 0.0f, classes};
  const int rounding = std::fegetround();
  if (rounding != FE_TONEAREST) std::fesetround(FE_TONEAREST);
  ClassMapScale(&map);
  if (rounding != FE_TONEAREST) std::fesetround(rounding);
  return map;
}

HistogramReport ReportOf(const ClassMap& map, const PixelSums& sums) {
  HistogramReport report{};
  if (sums.count == 0) return report;
  const auto count = static_cast<double>(sums.count);
  report.min = sums.min;
  report.max = sums.max;
  report.start = static_cast<float>(map.min);
  report.interval =
      map.classes == 1 ? EXTREME_NONE : static_cast<float>(ExtentOf(map) / map.classes);
  report.mean = static_cast<float>(sums.sum / count);
  report.stdDev = static_cast<float>(DeviationOf(sums.squares, count, report.mean));
  report.nbPixels = static_cast<uint32_t>(sums.count);
  return report;
}

// So many tables of `length` counters, one after the other.
struct CountTables {
  const uint32_t* counters;
  int32_t number, length;
};

// Adds up the first `count` counters of each table.
void FoldTables(const CountTables& tables, int32_t count, uint32_t* folded) {
  std::memcpy(folded, tables.counters, static_cast<size_t>(count) * sizeof(uint32_t));
  for (int32_t table = 1; table < tables.number; table++) {
    const uint32_t* more = tables.counters + table * tables.length;
    for (int32_t i = 0; i < count; i++) folded[i] += more[i];
  }
}

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

void CountBytes(const Region& region, const ClassMap& map, uint32_t* counters, PixelSums* sums) {
  uint32_t counts[LEVELS_U8];
  CountLevels(region, counts);
  const auto low = static_cast<int32_t>(map.min);
  const auto high = static_cast<int32_t>(map.max);
  if (sums) SumLevels(counts, low, high, sums);
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
void SumWordsInOrder(const Region& region, const ClassMap& map, PixelSums* sums) {
  *sums = {};
  for (int32_t y = 0; y < region.view.height; y++) {
    const auto* row = region.view.Row<const int16_t>(y);
    const uint8_t* mask = region.mask.Row(y);
    for (int32_t x = 0; x < region.view.width; x++) {
      const bool counted = (!mask || mask[x] != 0) && row[x] >= map.min && row[x] <= map.max;
      if (counted) PixelSumsAdd(sums, row[x]);
    }
  }
}

// The tables are too large for a thread with a small stack. Without a report there are no sums.
Status CountPixels(const Region& region, const ClassMap& map, uint32_t* counters, PixelSums* sums) {
  const int32_t length = map.classes + 1;
  WorkArray<uint32_t> tables;
  if (!tables.AllocateZeroed(static_cast<uint64_t>(COUNT_TABLES) * static_cast<uint64_t>(length))) {
    return STATUS_MEMORY_FULL;
  }
  const HistogramRows& rows = histogramRows();
  const PixelView& view = region.view;
  const bool words = view.type == IMAGE_I16;
  const ClassRow classesOf = words ? rows.classesOfWords : rows.classesOfFloats;
  const SumRow sum = words ? rows.sumWords : rows.sumFloats;
  uint16_t classes[CLASS_RUN];
  for (int32_t y = 0; y < view.height; y++) {
    const auto* row = view.Row<uint8_t>(y);
    const uint8_t* mask = region.mask.Row(y);
    for (int32_t x = 0; x < view.width; x += CLASS_RUN) {
      const int32_t run = std::min(CLASS_RUN, view.width - x);
      const uint8_t* pixels = row + int64_t{x} * view.pixelBytes;
      classesOf(pixels, mask ? mask + x : nullptr, run, map, classes);
      if (sums) {
        sum(pixels, classes, run, map, tables.data(), sums);
      } else {
        rows.countNumbers(classes, run, length, tables.data());
      }
    }
  }
  FoldTables({tables.data(), COUNT_TABLES, length}, map.classes, counters);
  if (!sums) return STATUS_OK;
  for (int32_t i = 0; i < map.classes; i++) sums->count += counters[i];
  if (!sums->SquaresAreExact() && words) SumWordsInOrder(region, map, sums);
  return STATUS_OK;
}

// Both ends of the values that are counted. What callers leave at 0 is all levels of bytes, and
// what occurs of the others; ends for integers are whole.
struct CountedRange {
  double low, high;
};

CountedRange RangeOfBytes(double low, double high) {
  constexpr IntegerLimits limits = LimitsOf(IMAGE_U8);
  if (low <= limits.low) low = limits.low;
  if (high == 0 || high > limits.high) high = limits.high;
  return {low, high};
}

CountedRange RangeOfWords(double low, double high) {
  constexpr IntegerLimits limits = LimitsOf(IMAGE_I16);
  return {low < limits.low ? limits.low : low, high > limits.high ? limits.high : high};
}

Status RangeFind(const Region& region, float min, float max, CountedRange* range) {
  const int16_t type = region.view.type;
  const double low = CutSaturated(static_cast<double>(min));
  const double high = CutSaturated(static_cast<double>(max));
  const bool isGiven = type == IMAGE_I16 ? low != 0 || high != 0 : min != 0.0f || max != 0.0f;
  if (type == IMAGE_U8) {
    *range = RangeOfBytes(low, high);
  } else if (isGiven && type == IMAGE_I16) {
    *range = RangeOfWords(low, high);
  } else if (isGiven) {
    *range = {static_cast<double>(min), static_cast<double>(max)};
  } else {
    float lowest = 0;
    float highest = 0;
    const Status status = ImageMinMax(region, &lowest, &highest);
    *range = {static_cast<double>(lowest), static_cast<double>(highest)};
    return status;
  }
  return STATUS_OK;
}

// All levels of bytes, each in a class of its own, whatever the way to the range was.
bool CountsEveryLevel(const PixelView& view, const CountedRange& range, int32_t classes) {
  constexpr IntegerLimits limits = LimitsOf(IMAGE_U8);
  return view.type == IMAGE_U8 && classes == LEVELS_U8 && range.low == limits.low &&
         range.high == limits.high;
}

void CountAllLevels(const PixelView& view, uint32_t (&counts)[LEVELS_U8]) {
  const HistogramRows& rows = histogramRows();
  uint32_t tables[LEVEL_TABLES * LEVELS_U8] = {};
  for (int32_t y = 0; y < view.height; y++) {
    rows.countLevels(view.Row<const uint8_t>(y), view.width, tables);
  }
  FoldTables({tables, LEVEL_TABLES, LEVELS_U8}, LEVELS_U8, counts);
}

void CountLevelsUnderMask(const Region& region, uint32_t (&counts)[LEVELS_U8]) {
  const HistogramRows& rows = histogramRows();
  const PixelView& view = region.view;
  constexpr int32_t length = LEVELS_U8 + 1;  // one more takes the pixels that are left out
  uint32_t tables[COUNT_TABLES * length] = {};
  uint16_t levels[CLASS_RUN];
  for (int32_t y = 0; y < view.height; y++) {
    const auto* row = view.Row<const uint8_t>(y);
    const uint8_t* mask = region.mask.Row(y);
    for (int32_t x = 0; x < view.width; x += CLASS_RUN) {
      const int32_t run = std::min(CLASS_RUN, view.width - x);
      rows.levelsUnderMask(row + x, mask + x, run, levels);
      rows.countNumbers(levels, run, length, tables);
    }
  }
  FoldTables({tables, COUNT_TABLES, length}, LEVELS_U8, counts);
}

}  // namespace

void CountLevels(const Region& region, uint32_t (&counts)[LEVELS_U8]) {
  if (region.mask.SelectsAll()) {
    CountAllLevels(region.view, counts);
  } else {
    CountLevelsUnderMask(region, counts);
  }
}

Status Histogram(ImageRef image, ImageRef mask, int32_t nbClasses, float min, float max,
                 Handle histogram, HistogramReport* report) {
  Region region{};
  Status status = RegionOf(image, mask, &region);
  if (status != STATUS_OK) return status;
  const int16_t type = region.view.type;
  if (!TypeIsScalar(type)) return STATUS_BAD_TYPE;

  CountedRange range{};
  status = RangeFind(region, min, max, &range);
  if (status != STATUS_OK) return status;
  const int32_t classes = Clamped(nbClasses, 1, type == IMAGE_U8 ? LEVELS_U8 : CLASSES_MAX);
  status = VectorResize(histogram, sizeof(uint32_t), static_cast<uint64_t>(classes));
  if (status != STATUS_OK) return status;

  auto* counters = VectorData<uint32_t>(histogram);
  const ClassMap map = ClassMapOf(range.low, range.high, classes);
  const bool everyLevel = CountsEveryLevel(region.view, range, classes);
  PixelSums ofReport;
  PixelSums* const sums = report ? &ofReport : nullptr;
  if (everyLevel) {
    uint32_t counts[LEVELS_U8];
    CountLevels(region, counts);
    if (sums) SumLevels(counts, 0, LEVELS_U8 - 1, sums);
    std::memcpy(counters, counts, sizeof(counts));
  } else if (range.high - range.low < 0) {
    std::memset(counters, 0, static_cast<size_t>(classes) * sizeof(uint32_t));
  } else if (type == IMAGE_U8) {
    CountBytes(region, map, counters, sums);
  } else {
    status = CountPixels(region, map, counters, sums);
  }
  if (status != STATUS_OK || !report) return status;
  *report = ReportOf(map, ofReport);
  if (everyLevel) report->interval = 1.0f;  // also when nothing is counted
  return STATUS_OK;
}

}  // namespace zel

int32_t ZEL_Histogram(ImageRef image, ImageRef mask, int32_t nbClasses, float min, float max,
                      uint32_t* histogram, HistogramReport* report) {
  // A caller's array is never used beyond the most classes. Without one the counters are of no use.
  zel::ScopedWrap counters;
  zel::ScopedVector unused;
  zel::Status status = zel::STATUS_OK;
  if (histogram) {
    const auto room = static_cast<uint32_t>(zel::Clamped(nbClasses, 0, zel::CLASSES_MAX));
    status = counters.Create(histogram, sizeof(uint32_t), room, 0, 0);
  } else {
    status = unused.Create();
  }
  if (status == zel::STATUS_OK) {
    const zel::Handle handle = histogram ? counters.handle() : unused.handle();
    status = zel::Histogram(image, mask, nbClasses, min, max, handle, report);
  }
  return ZEL_ProcessError("ZEL_Histogram", status);
}
