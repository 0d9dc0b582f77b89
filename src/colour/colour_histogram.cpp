// Histograms of the three components of colour images.
#include <algorithm>
#include <cmath>
#include <cstring>

#include "colour/components.h"
#include "core/heap.h"
#include "core/images.h"
#include "core/numbers.h"
#include "core/pixel_types.h"
#include "engine/bands.h"
#include "engine/operands.h"
#include "orlune_ptk.h"
#include "statistics/histogram_rows.h"

namespace zel {
namespace {

// The tables of a plane. Pixels that a mask leaves out are counted as one more level.
struct TableShape {
  int32_t number, length;
  constexpr int32_t Counters() const { return number * length; }
};
constexpr TableShape ALL_PIXELS{LEVEL_TABLES, LEVELS_U8};
constexpr TableShape UNDER_MASK{COUNT_TABLES, LEVELS_U8 + 1};

// Counters of one thread, the tables of a plane one after the other.
struct ComponentCounts {
  uint32_t tables[COLOUR_PLANES][std::max(ALL_PIXELS.Counters(), UNDER_MASK.Counters())];
};

// How often each level occurs in each component, and the number of counted pixels.
struct ColourCounts {
  uint32_t levels[COLOUR_PLANES][LEVELS_U8];
  uint64_t total;
};

void CountRow(const RGBValue* pixels, const uint8_t* mask, int64_t width,
              const ComponentSet& components, ComponentCounts* counts) {
  const HistogramRows& rows = histogramRows();
  for (int64_t x = 0; x < width; x += COLOUR_BLOCK) {
    const auto size = static_cast<int32_t>(std::min(COLOUR_BLOCK, width - x));
    for (int32_t p = 0; p < COLOUR_PLANES; p++) {
      uint8_t component[COLOUR_BLOCK];
      components.planes[p](pixels + x, component, size);
      if (mask) {
        uint16_t levels[COLOUR_BLOCK];
        rows.levelsUnderMask(component, mask + x, size, levels);
        rows.countNumbers(levels, size, UNDER_MASK.length, counts->tables[p]);
      } else {
        rows.countLevels(component, size, counts->tables[p]);
      }
    }
  }
}

Status CountPixels(const Region& region, int32_t mode, ColourCounts* counts) {
  const PixelView& view = region.view;
  constexpr int64_t workAPixel = 64;
  const BandPlan plan{.units = view.height, .bytes = workAPixel * view.width * view.height};
  const auto workers = static_cast<uint64_t>(BandWorkersFor(plan.bytes));
  WorkArray<ComponentCounts> ofWorkers;
  if (!ofWorkers.AllocateZeroed(workers)) return STATUS_MEMORY_FULL;
  const ComponentSet components = ComponentsOf(mode);
  BandsRun(plan, [&](const Band& band) {
    ComponentCounts* own = &ofWorkers[static_cast<size_t>(band.worker)];
    for (int64_t y = band.begin; y < band.end; y++) {
      CountRow(view.Row<const RGBValue>(y), region.mask.Row(y), view.width, components, own);
    }
  });
  const TableShape& shape = region.mask.SelectsAll() ? ALL_PIXELS : UNDER_MASK;
  for (uint64_t worker = 0; worker < workers; worker++) {
    for (int32_t p = 0; p < COLOUR_PLANES; p++) {
      const uint32_t* table = ofWorkers[worker].tables[p];
      for (int32_t t = 0; t < shape.number; t++, table += shape.length) {
        for (int32_t level = 0; level < LEVELS_U8; level++) {
          counts->levels[p][level] += table[level];
        }
      }
    }
  }
  for (const uint32_t count : counts->levels[0]) counts->total += count;
  // Without a mode pixels are counted, but have no levels.
  if (!IsColourMode(mode)) std::memset(counts->levels, 0, sizeof(counts->levels));
  return STATUS_OK;
}

float ClassWidth(int32_t classes) {
  return classes == LEVELS_U8 ? 1.0f : 256.0f / static_cast<float>(classes);
}

// The sums are rounded to 32 bits at each level.
ColorHistogramReport ReportOf(const uint32_t (&levels)[LEVELS_U8], uint64_t total,
                              int32_t classes) {
  ColorHistogramReport report{};
  if (total == 0) return report;
  int32_t lowest = 0;
  int32_t highest = LEVELS_U8 - 1;
  while (lowest < highest && levels[lowest] == 0) lowest++;
  while (highest > 0 && levels[highest] == 0) highest--;
  float sum = 0.0f;
  float squares = 0.0f;
  for (int32_t level = 0; level < LEVELS_U8; level++) {
    const double count = levels[level];
    sum = static_cast<float>(static_cast<double>(sum) + level * count);
    squares = static_cast<float>(static_cast<double>(squares) + level * level * count);
  }
  const auto pixels = static_cast<double>(total);
  report.min = static_cast<float>(lowest <= highest ? lowest : 0);
  report.max = static_cast<float>(highest);
  report.width = ClassWidth(classes);
  report.mean = static_cast<float>(static_cast<double>(sum) / pixels);
  const auto mean = static_cast<double>(report.mean);
  const double variance = static_cast<double>(squares) / pixels - mean * mean;
  report.stdDev = static_cast<float>(variance > 0.0 ? std::sqrt(variance) : 0.0);
  report.area = static_cast<int32_t>(total);
  return report;
}

// The quotient of 32-bit floats decides, also where it is rounded up to the next class.
void ClassesOf(const uint32_t (&levels)[LEVELS_U8], int32_t classes, uint32_t* histogram) {
  std::memset(histogram, 0, static_cast<size_t>(classes) * sizeof(uint32_t));
  const float width = ClassWidth(classes);
  for (int32_t level = 0; level < LEVELS_U8; level++) {
    const auto place = static_cast<int32_t>(static_cast<float>(level) / width);
    histogram[std::min(place, classes - 1)] += levels[level];
  }
}

// Arrays and reports may be null.
struct HistogramResults {
  uint32_t* histograms[COLOUR_PLANES];
  ColorHistogramReport* reports[COLOUR_PLANES];
};

Status ColorHistogram(ImageRef reference, ImageRef mask, int32_t classes, int32_t mode,
                      const HistogramResults& results) {
  Image* image = nullptr;
  Status status = ImageLookup(reference, &image);
  if (status != STATUS_OK) return status;
  if (image->type != IMAGE_RGB) return STATUS_BAD_TYPE;
  Region region;
  status = RegionOf(*image, mask, &region);
  ColourCounts counts{};
  // Kept: a mask of another type is no failure, it selects nothing.
  if (status == STATUS_OK && !region.view.IsEmpty()) status = CountPixels(region, mode, &counts);
  if (status != STATUS_OK && status != STATUS_BAD_TYPE) return status;

  const int32_t used = Clamped(classes, 1, LEVELS_U8);
  for (int32_t p = 0; p < COLOUR_PLANES; p++) {
    if (results.histograms[p]) ClassesOf(counts.levels[p], used, results.histograms[p]);
    if (results.reports[p]) *results.reports[p] = ReportOf(counts.levels[p], counts.total, used);
  }
  return STATUS_OK;
}

}  // namespace
}  // namespace zel

int32_t ZEL_ColorHistogram(ImageRef image, ImageRef mask, int32_t classes, int32_t mode,
                           uint32_t* histogram1, uint32_t* histogram2, uint32_t* histogram3,
                           ColorHistogramReport* report1, ColorHistogramReport* report2,
                           ColorHistogramReport* report3) {
  const zel::HistogramResults results{{histogram1, histogram2, histogram3},
                                      {report1, report2, report3}};
  return ZEL_ProcessError("ZEL_ColorHistogram",
                          zel::ColorHistogram(image, mask, classes, mode, results));
}
