// Equalisation: a lookup that spreads the levels of an image by its histogram.
#include <cmath>

#include "core/heap.h"
#include "point/lookup.h"
#include "point/lookup_rows.h"
#include "statistics/histogram.h"

namespace zel {
namespace {

constexpr int32_t CLASSES = 256;  // of a histogram that the call makes itself

// A histogram, and how its classes lie over the pixel values.
struct ClassCounts {
  const uint32_t* counts;
  int32_t classes;
  double first;  // value at which class 0 begins
  double width;  // of a class

  int32_t ClassOf(double value) const {
    return CutLimited((value - first) / width, 0, classes - 1);
  }
};

// The equalising curve over the sum of the classes up to a level.
struct Equalizer {
  double low, high;  // limits of the results
  double scale;
  double offset;
  int32_t firstClass, lastClass;

  // rounding: added before the value is truncated.
  double Value(double sum, double rounding) const {
    const double value = sum * scale + offset + low + rounding;
    return !(value >= low) ? low : !(value <= high) ? high : value;
  }
};

Equalizer EqualizerOf(const ClassCounts& histogram, const LookupLimits& limits) {
  Equalizer equalizer{};
  equalizer.low = static_cast<double>(limits.low);
  equalizer.high = static_cast<double>(limits.high);
  equalizer.firstClass = histogram.ClassOf(static_cast<double>(limits.rangeMin));
  equalizer.lastClass = histogram.ClassOf(static_cast<double>(limits.rangeMax));
  uint64_t total = 0;
  for (int32_t c = equalizer.firstClass; c <= equalizer.lastClass; c++) {
    total += histogram.counts[c];
  }
  // The first class carries no weight, so that the lowest level maps to the low limit.
  const auto dropped = static_cast<double>(histogram.counts[equalizer.firstClass]);
  equalizer.scale = (equalizer.high - equalizer.low) / (static_cast<double>(total) - dropped);
  equalizer.offset = -(dropped * equalizer.scale);
  return equalizer;
}

// The first level behind a run of one class. The class rises or falls with the level and never
// turns, so that a level of the same class farther on has only such levels before it.
int64_t RunEnd(const ClassCounts& histogram, int64_t level, int64_t last, int32_t runClass) {
  const auto within = [&](int64_t at) {
    return at <= last && histogram.ClassOf(static_cast<double>(at)) == runClass;
  };
  int64_t step = 1;
  while (within(level + step)) step *= 2;
  int64_t inside = level + step / 2;
  int64_t outside = level + step;
  while (outside - inside > 1) {
    const int64_t middle = (inside + outside) / 2;
    (within(middle) ? inside : outside) = middle;
  }
  return outside;
}

// Entries of the levels in the range; all others stay 0. A class counts when the walk over the
// levels enters it: classes narrower than a level may be passed over.
void EqualizeTable(const ClassCounts& histogram, const Equalizer& equalizer,
                   const LookupLimits& limits, uint16_t* table) {
  const int64_t last = CutSaturated(std::floor(static_cast<double>(limits.rangeMax)));
  double sum = 0.0;
  int64_t level = CutSaturated(static_cast<double>(limits.rangeMin));
  // The usual histogram of bytes needs no search.
  const bool levelsAreClasses =
      histogram.first == 0.0 && histogram.width == 1.0 && level >= 0 && last < histogram.classes;
  while (level <= last) {
    const int32_t runClass = levelsAreClasses ? static_cast<int32_t>(level)
                                              : histogram.ClassOf(static_cast<double>(level));
    const int64_t end = levelsAreClasses ? level + 1 : RunEnd(histogram, level, last, runClass);
    sum += histogram.counts[runClass];
    const auto entry = CutLow<uint16_t>(equalizer.Value(sum, 0.5));
    for (; level < end; level++) table[static_cast<uint16_t>(level)] = entry;
  }
}

// The values of the classes that the curve passes; 0 for the others.
void EqualizeValues(const ClassCounts& histogram, const Equalizer& equalizer, float* values) {
  double sum = 0.0;
  for (int32_t c = equalizer.firstClass; c <= equalizer.lastClass; c++) {
    sum += histogram.counts[c];
    values[c] = static_cast<float>(equalizer.Value(sum, 0.0));
  }
}

// What the curve is worked out in is made before the destination is settled.
Status EqualizeBy(const ClassCounts& histogram, float rangeMin, float rangeMax,
                  Operands* operands) {
  const int32_t type = operands->source().type;
  WorkArray<float> values;  // by class, for floats
  LevelTable table;
  Status status = table.Create(type);
  if (type == IMAGE_SGL && !values.AllocateZeroed(static_cast<uint64_t>(histogram.classes))) {
    status = STATUS_MEMORY_FULL;
  }
  if (status != STATUS_OK) return status;
  const PointViews views = LookupSettle(operands);
  if (views.result.IsEmpty()) return operands->status();

  const LookupLimits limits = LookupLimitsOf(views.first, views.mask, rangeMin, rangeMax);
  const Equalizer equalizer = EqualizerOf(histogram, limits);
  if (type == IMAGE_SGL) {
    EqualizeValues(histogram, equalizer, values.data());
    PointWalk(views, lookupRows().curveSgl,
              ClassCurve{.values = values.data(),
                         .classes = histogram.classes,
                         .first = histogram.first,
                         .width = histogram.width,
                         .rangeMin = limits.rangeMin,
                         .rangeMax = limits.rangeMax});
  } else if (!limits.IsEmpty()) {
    EqualizeTable(histogram, equalizer, limits, table.entries());
    LookupApply(views, table.entries());
  }
  return STATUS_OK;
}

// The histogram of the selected pixels over their whole range.
Status CountClasses(ImageRef source, ImageRef mask, uint32_t (&counts)[CLASSES],
                    HistogramReport* report) {
  Region region;
  const Status status = RegionOf(source, mask, &region);
  if (status != STATUS_OK) return status;
  if (region.view.type == IMAGE_U8) {  // a class for each level; no other figures are asked for
    CountLevels(region, counts);
    report->interval = 1.0f;
    return STATUS_OK;
  }
  ScopedWrap wrap;
  const Status wrapped = wrap.Create(counts, sizeof(uint32_t), CLASSES, 0, 0);
  if (wrapped != STATUS_OK) return wrapped;
  return Histogram(source, mask, CLASSES, 0.0f, 0.0f, wrap.handle(), report);
}

// Null for a histogram or its report: the call makes its own.
Status Equalize(ImageRef source, ImageRef mask, ImageRef destination, const uint32_t* histogram,
                int32_t count, const HistogramReport* report, float rangeMin, float rangeMax) {
  uint32_t ownCounts[CLASSES] = {};
  HistogramReport used{};
  ClassCounts counts{histogram, count, 0.0, 0.0};
  if (histogram && report) {
    used = *report;
    Image* image = nullptr;
    const Status status = ImageLookup(source, &image);
    if (status != STATUS_OK) return status;
    if (count < 1) return STATUS_MEMORY_ERROR;
  } else {
    const Status status = CountClasses(source, mask, ownCounts, &used);
    if (status != STATUS_OK) return status;
    counts.counts = ownCounts;
    counts.classes = CLASSES;
  }
  counts.first = static_cast<double>(used.start);
  counts.width = static_cast<double>(used.interval);
  Operands operands;
  LookupCheck(source, mask, destination, &TypeIsScalar, &operands);
  return operands.HasFailed() ? operands.status()
                              : EqualizeBy(counts, rangeMin, rangeMax, &operands);
}

}  // namespace
}  // namespace zel

int32_t ZEL_Equalize(ImageRef source, ImageRef mask, ImageRef destination,
                     const uint32_t* histogram, int32_t count, const HistogramReport* report,
                     float rangeMin, float rangeMax) {
  return ZEL_ProcessError("ZEL_Equalize", zel::Equalize(source, mask, destination, histogram, count,
                                                        report, rangeMin, rangeMax));
}
