// Automatic thresholds: boundaries between classes of gray levels, found from the histogram.
#include <algorithm>
#include <cmath>
#include <cstring>

#include "core/numbers.h"
#include "engine/array_convert.h"
#include "point/threshold_rows.h"
#include "statistics/histogram.h"

namespace zel {
namespace {

using LevelCounts = uint32_t[LEVELS_U8];

constexpr int32_t CLASSES_MIN = 2;
constexpr int32_t CLASSES_MAX = 256;
constexpr uint16_t CLASS_REPLACES = 32768;  // `useNew` as callers know it from these functions
constexpr double BOUND_AT_REST = 0.1;       // a bound that moves no farther has been found

// The class of each level; nothing (count 0) unless a threshold was found.
struct LevelClasses {
  int32_t count;
  uint16_t classes[LEVELS_U8];
};

Status HistogramOf(ImageRef image, LevelCounts& counts, uint64_t* total) {
  Region region;
  const Status status = RegionOf(image, 0, &region);
  if (status != STATUS_OK) return status;
  if (region.view.type != IMAGE_U8) return STATUS_BAD_TYPE;
  CountLevels(region, counts);
  *total = static_cast<uint64_t>(region.view.width) * static_cast<uint64_t>(region.view.height);
  return STATUS_OK;
}

// Pixels of a run of levels: how many, and the sum of their levels.
struct Weight {
  uint64_t count;
  uint64_t sum;

  void Add(int32_t level, uint32_t pixels) {
    count += pixels;
    sum += static_cast<uint64_t>(level) * pixels;
  }
  double Mean() const { return static_cast<double>(sum) / static_cast<double>(count); }
};

// Of the levels from one up to and without another.
Weight WeightOf(const LevelCounts& counts, int32_t from, int32_t to) {
  Weight weight{};
  for (int32_t level = from; level < to; level++) weight.Add(level, counts[level]);
  return weight;
}

// The levels that occur, in rising order; returns how many.
int32_t OccurringLevels(const LevelCounts& counts, int32_t (&levels)[LEVELS_U8]) {
  int32_t found = 0;
  for (int32_t level = 0; level < LEVELS_U8; level++) {
    if (counts[level] != 0) levels[found++] = level;
  }
  return found;
}

// Iterated means of two classes, from the median on.
int32_t ThresholdByClustering(const LevelCounts& counts) {
  int32_t levels[LEVELS_U8];
  const int32_t found = OccurringLevels(counts, levels);
  if (found <= 2) return 0;

  const double half = 0.5 * static_cast<double>(WeightOf(counts, 0, LEVELS_U8).count);
  uint64_t sum = counts[levels[0]];
  int32_t index = 1;
  while (static_cast<double>(sum) < half && index < found - 1) sum += counts[levels[index++]];
  const uint32_t last = counts[levels[index - 1]];
  if (last < sum && 2.0 * (static_cast<double>(sum) - half) >= last) index--;
  auto threshold = static_cast<float>(levels[index - 1] + 0.5);

  constexpr int32_t rounds = 20;
  for (int32_t round = 0; round < rounds; round++) {
    const auto former = static_cast<double>(threshold);
    // Level 0 is always below, every other level when it is less than the threshold.
    const auto boundary = Clamped(static_cast<int64_t>(std::ceil(former)), 1, LEVELS_U8);
    const Weight below = WeightOf(counts, 0, boundary);
    const Weight above = WeightOf(counts, boundary, LEVELS_U8);
    const auto mean1 = static_cast<float>(below.count != 0 ? below.Mean() : former * 0.5);
    const auto mean2 = static_cast<float>(above.count != 0 ? above.Mean() : (former + 255.0) * 0.5);
    threshold = static_cast<float>((static_cast<double>(mean1) + static_cast<double>(mean2)) * 0.5);
    if (std::fabs(static_cast<double>(threshold) - former) <= BOUND_AT_REST) break;
  }
  return static_cast<int32_t>(std::ceil(threshold));
}

// n log(n) of numbers, of which small ones come again and again.
class Entropies {
 public:
  float Of(double number) {
    if (number >= KEPT) return Computed(number);
    float& kept = kept_[static_cast<int32_t>(number)];
    if (kept < 0.0f) kept = Computed(number);
    return kept;
  }
  Entropies() { std::fill_n(kept_, KEPT, -1.0f); }

 private:
  static constexpr int32_t KEPT = 256;
  static float Computed(double number) { return static_cast<float>(number * std::log(number)); }
  float kept_[KEPT];
};

// The greatest entropy of the two sides. Every level counts one pixel more than it has, level 0
// stays on the right-hand side, and level 255 is never tried.
int32_t ThresholdByEntropy(const LevelCounts& counts) {
  Entropies entropyOf;
  double numbers[LEVELS_U8];
  float entropies[LEVELS_U8];
  double numberRight = 0.0;
  double entropyRight = 0.0;
  for (int32_t level = 0; level < LEVELS_U8; level++) {
    numbers[level] = static_cast<double>(counts[level]) + 1.0;
    entropies[level] = entropyOf.Of(numbers[level]);
    numberRight += numbers[level];
    entropyRight += static_cast<double>(entropies[level]);
  }
  double numberLeft = 0.0;
  double entropyLeft = 0.0;
  double best = -1e30;
  // A product and its logarithm: a tangent there lies above all logarithms.
  double touched = 1.0;
  double logarithm = 0.0;
  constexpr double error = 1e-9;
  int32_t threshold = 0;
  for (int32_t level = 1; level < LEVELS_U8 - 1; level++) {
    const auto entropy = static_cast<double>(entropies[level]);
    numberRight -= numbers[level];
    entropyRight -= entropy;
    numberLeft += numbers[level];
    entropyLeft += entropy;
    const double product = numberRight * numberLeft;
    const double inside = entropyRight / numberRight + entropyLeft / numberLeft;
    if (logarithm + (product / touched - 1.0) - inside < best - error) continue;
    touched = product;
    logarithm = std::log(product);
    const double value = logarithm - inside;
    if (value > best) {
      best = value;
      threshold = level;
    }
  }
  return threshold;
}

// The first and the last level that occur. Without any, low is 255 and high 0.
struct LevelSpan {
  int32_t low, high;
};

LevelSpan SpanOf(const LevelCounts& counts) {
  LevelSpan span{0, LEVELS_U8 - 1};
  while (span.low < LEVELS_U8 - 1 && counts[span.low] == 0) span.low++;
  while (span.high > 0 && counts[span.high] == 0) span.high--;
  return span;
}

// The sum of the distances of pixels to the mean of their class, as added level by level.
double DeviationOf(const LevelCounts& counts, int32_t from, int32_t to, double mean) {
  double sum = 0.0;
  for (int32_t level = from; level < to; level++) {
    if (counts[level] != 0) sum += std::fabs(level - mean) * counts[level];
  }
  return sum;
}

// Pixels below each level and the sums of their levels; doubles hold all of them.
struct LevelsBelow {
  double counts[LEVELS_U8 + 1];
  double sums[LEVELS_U8 + 1];

  double MeanOf(int32_t from, int32_t to) const {
    return (sums[to] - sums[from]) / (counts[to] - counts[from]);
  }
  // What DeviationOf gives but for its rounding: as far as the lower levels are from the mean, the
  // others are on the other side of it.
  double DeviationEstimate(int32_t from, int32_t to) const {
    if (!(counts[to] > counts[from])) return 0.0;
    const double mean = MeanOf(from, to);
    const int32_t middle = static_cast<int32_t>(mean) + 1;
    return 2.0 * (mean * (counts[middle] - counts[from]) - (sums[middle] - sums[from]));
  }
};

LevelsBelow LevelsBelowOf(const LevelCounts& counts) {
  LevelsBelow below{};
  Weight weight{};
  for (int32_t level = 0; level <= LEVELS_U8; level++) {
    below.counts[level] = static_cast<double>(static_cast<int64_t>(weight.count));
    below.sums[level] = static_cast<double>(static_cast<int64_t>(weight.sum));
    if (level < LEVELS_U8) weight.Add(level, counts[level]);
  }
  return below;
}

// The least sum of distances to the means of the two classes. Sums are estimated first: a split
// whose estimate is not near the least one cannot have the least sum.
int32_t ThresholdByMetric(const LevelCounts& counts, LevelSpan span) {
  const LevelsBelow below = LevelsBelowOf(counts);
  const int32_t end = span.high + 1;
  double estimates[LEVELS_U8] = {};
  double least = 1e30;
  for (int32_t split = span.low; split < end; split++) {
    estimates[split] =
        below.DeviationEstimate(span.low, split) + below.DeviationEstimate(split, end);
    least = std::min(least, estimates[split]);
  }
  // Each of some 256 additions is rounded by at most 2^-53 of what all distances are together.
  const double error = 0x1p-42 * LEVELS_U8 * below.counts[LEVELS_U8];
  double best = 1e30;
  int32_t threshold = span.low;
  for (int32_t split = span.low; split < end; split++) {
    // Without pixels between them two splits are alike, and the first one counts.
    const bool isLikeFormer = split > span.low && counts[split - 1] == 0;
    if (isLikeFormer || estimates[split] > least + 2.0 * error) continue;
    const double sum = DeviationOf(counts, span.low, split, below.MeanOf(span.low, split)) +
                       DeviationOf(counts, split, end, below.MeanOf(split, end));
    if (sum < best) {
      best = sum;
      threshold = split;
    }
  }
  return threshold;
}

// Two levels that stand for the two classes, such that the first three moments come out alike.
int32_t ThresholdByMoments(const LevelCounts& counts, LevelSpan span) {
  const auto total = static_cast<double>(WeightOf(counts, span.low, span.high + 1).count);
  double moment1 = 0.0;
  double moment2 = 0.0;
  double moment3 = 0.0;
  double weight = 0.0;
  double best = 1e30;
  int32_t threshold = span.high;
  for (int32_t split = span.low; split < span.high; split++) {
    const double level = split;
    const double share = counts[split] / total;
    moment1 += level * share;
    moment2 += level * level * share;
    moment3 += level * level * level * share;
    weight += share;
    const double rest = 1.0 - weight;
    if (!(rest > 1e-10)) continue;
    // NaN where rounding leaves a negative root: no comparison below holds for it.
    const double distance = std::sqrt((moment2 - moment1 * moment1) / rest * weight);
    const double candidates[] = {moment1 + distance, moment1 - distance};
    for (const double upper : candidates) {
      const double lower = (moment1 - upper * rest) / weight;
      const bool valid = span.low <= lower && lower <= split && split < upper && upper <= span.high;
      if (!valid) continue;
      const double error =
          std::fabs(lower * lower * lower * weight + upper * upper * upper * rest - moment3);
      if (error < best) {
        best = error;
        threshold = split;
      }
    }
  }
  return threshold;
}

// Bisection of the span, towards the side on which the mean of the class means lies.
int32_t ThresholdByInterclass(const LevelCounts& counts, LevelSpan span) {
  int32_t low = span.low;
  int32_t high = span.high;
  int32_t threshold = 0;
  constexpr int32_t rounds = 20;
  for (int32_t round = 0; round < rounds; round++) {
    const auto middle = static_cast<float>((low + high) * 0.5);
    // The first level is always in the lower class. A level that a fractional middle lies behind is
    // in both.
    const auto lowerEnd = static_cast<int32_t>(std::ceil(middle));
    const Weight lower = WeightOf(counts, span.low, lowerEnd > span.low ? lowerEnd : span.low + 1);
    const Weight upper = WeightOf(counts, static_cast<int32_t>(middle), span.high + 1);
    const auto mean = static_cast<float>((lower.Mean() + upper.Mean()) * 0.5);
    threshold = CutLimited(static_cast<double>(mean), 0, LEVELS_U8 - 1);
    double distance = static_cast<double>(mean) - static_cast<double>(middle);
    if (distance < 0.0) {
      high = threshold;
      distance = -distance;
    } else {
      low = threshold;
    }
    if (!(distance > 1.0)) break;
  }
  return threshold;
}

int32_t ThresholdBy(int32_t method, const LevelCounts& counts) {
  if (method == AUTOB_CLUSTERING) return ThresholdByClustering(counts);
  if (method == AUTOB_ENTROPY) return ThresholdByEntropy(counts);
  const LevelSpan span = SpanOf(counts);
  if (span.low >= span.high) return span.low;
  switch (method) {
    case AUTOB_METRIC:
      return ThresholdByMetric(counts, span);
    case AUTOB_MOMENTS:
      return ThresholdByMoments(counts, span);
    default:
      return ThresholdByInterclass(counts, span);
  }
}

// An unknown method finds nothing, and does not fail.
Status AutoBThreshold(ImageRef image, int32_t method, LevelClasses* lookup, int32_t* threshold) {
  if (method < AUTOB_CLUSTERING || method > AUTOB_INTERCLASS) return STATUS_OK;
  LevelCounts counts;
  uint64_t total = 0;
  const Status status = HistogramOf(image, counts, &total);
  if (status != STATUS_OK) return status;
  *threshold = ThresholdBy(method, counts);
  lookup->count = LEVELS_U8;
  for (int32_t level = 0; level < LEVELS_U8; level++) {
    lookup->classes[level] = level < *threshold ? 0 : 1;
  }
  return STATUS_OK;
}

// Bounds of `classes` classes: bounds[k] is where class k begins, up to bounds[classes].
struct ClassBounds {
  int32_t classes;
  float bounds[CLASSES_MAX + 1];
};

// Classes of about the same number of pixels each, when there are more levels than classes.
void BoundsStart(const LevelCounts& counts, const int32_t (&levels)[LEVELS_U8], int32_t found,
                 uint64_t total, ClassBounds* result) {
  const int32_t classes = result->classes;
  const auto target = static_cast<double>(static_cast<float>(static_cast<double>(total) / classes));
  result->bounds[0] = 0.0f;
  result->bounds[classes] = static_cast<float>(LEVELS_U8);
  int32_t next = 0;  // the first level not taken yet; every later class is left one at least
  for (int32_t c = 1; c < classes; c++) {
    uint64_t sum = counts[levels[next++]];
    while (found - next > classes - c && static_cast<double>(sum) < target) {
      sum += counts[levels[next++]];
    }
    const uint32_t last = counts[levels[next - 1]];
    if (sum > last && last <= 2.0 * (static_cast<double>(sum) - target)) next--;
    result->bounds[c] = static_cast<float>(levels[next - 1] + 0.5);
  }
}

// Moves each bound to the middle between the means of its classes. True when all were at rest.
bool BoundsMove(const LevelCounts& counts, ClassBounds* result) {
  const int32_t classes = result->classes;
  float* bounds = result->bounds;
  uint64_t pixels[CLASSES_MAX] = {};
  float means[CLASSES_MAX] = {};
  for (int32_t k = 0; k < classes; k++) {
    const auto from = static_cast<int32_t>(std::ceil(bounds[k]));
    const auto to = static_cast<int32_t>(std::ceil(bounds[k + 1]));
    const Weight weight = WeightOf(counts, from, to);
    pixels[k] = weight.count;
    const double middle =
        (static_cast<double>(bounds[k]) + static_cast<double>(bounds[k + 1])) * 0.5;
    means[k] = static_cast<float>(weight.count != 0 ? weight.Mean() : middle);
  }
  // Empty classes take the mean of the neighbour with more pixels.
  if (pixels[0] == 0) means[0] = means[1];
  if (pixels[classes - 1] == 0) means[classes - 1] = means[classes - 2];
  for (int32_t k = 1; k < classes - 1; k++) {
    if (pixels[k] != 0) continue;
    means[k] = pixels[k - 1] >= pixels[k + 1] ? means[k - 1] : means[k + 1];
  }
  bool atRest = true;
  for (int32_t k = 1; k < classes; k++) {
    const auto former = static_cast<double>(bounds[k]);
    bounds[k] = static_cast<float>(
        (static_cast<double>(means[k - 1]) + static_cast<double>(means[k])) * 0.5);
    if (std::fabs(static_cast<double>(bounds[k]) - former) > BOUND_AT_REST) atRest = false;
  }
  return atRest;
}

// With a class for every level, bounds lie midway between levels; the first classes are empty.
void BoundsBetweenLevels(const int32_t (&levels)[LEVELS_U8], int32_t found, ClassBounds* result) {
  const int32_t empty = result->classes - found;
  for (int32_t k = 0; k <= empty; k++) result->bounds[k] = 0.0f;
  for (int32_t i = 0; i < found; i++) result->bounds[empty + 1 + i] = static_cast<float>(levels[i]);
  for (int32_t k = empty + 1; k < result->classes; k++) {
    result->bounds[k] = static_cast<float>(
        (static_cast<double>(result->bounds[k]) + static_cast<double>(result->bounds[k + 1])) *
        0.5);
  }
}

void BoundsOf(const LevelCounts& counts, uint64_t total, ClassBounds* result) {
  int32_t levels[LEVELS_U8];
  const int32_t found = OccurringLevels(counts, levels);
  if (result->classes >= found) return BoundsBetweenLevels(levels, found, result);
  BoundsStart(counts, levels, found, total, result);
  constexpr int32_t rounds = 40;
  for (int32_t round = 0; round < rounds && !BoundsMove(counts, result); round++) {
  }
}

// A level at the whole part of a fractional bound belongs to the next class in the table, although
// that class's range begins one above it: kept, programs rely on both.
void ClassesOfBounds(const ClassBounds& found, LevelClasses* lookup, ThresholdClass* classes) {
  lookup->count = LEVELS_U8;
  float bound = 0.0f;
  for (int32_t c = 0; c < found.classes; c++) {
    const bool isLast = c == found.classes - 1;
    const auto start = static_cast<int32_t>(bound);
    const float next = isLast ? static_cast<float>(LEVELS_U8) : found.bounds[c + 1];
    for (int32_t level = start; level < LEVELS_U8 && static_cast<float>(level) < next; level++) {
      lookup->classes[level] = static_cast<uint16_t>(c);
    }
    ThresholdClass& described = classes[c];
    described.rangeMin = bound > static_cast<float>(start) ? static_cast<float>(start + 1) : bound;
    const float whole = std::trunc(next);
    described.rangeMax = whole == next ? next - 1.0f : whole;
    described.newValue = static_cast<float>(c);
    described.useNew = CLASS_REPLACES;
    bound = next;
  }
}

// classes: room for CLASSES_MAX, all bytes 0. Another number of classes finds nothing, and does not
// fail.
Status AutoMThreshold(ImageRef image, int32_t count, LevelClasses* lookup,
                      ThresholdClass* classes) {
  if (count < CLASSES_MIN || count > CLASSES_MAX) return STATUS_OK;
  LevelCounts counts;
  uint64_t total = 0;
  const Status status = HistogramOf(image, counts, &total);
  if (status != STATUS_OK) return status;
  if (total == 0) return STATUS_SIZE_DIFFERS;
  ClassBounds found{};
  found.classes = count;
  BoundsOf(counts, total, &found);
  ClassesOfBounds(found, lookup, classes);
  return STATUS_OK;
}

// The table as the caller wants it; nothing where none was made.
void LookupDeliver(const LevelClasses& lookup, int32_t arrayType, void* array) {
  if (array) ArrayConvert(lookup.classes, ARRAY_U16, array, arrayType, lookup.count);
}

}  // namespace
}  // namespace zel

int32_t ZEL_AutoBThreshold(ImageRef image, int32_t method, int32_t arrayType, void* lookup,
                           int32_t* threshold) {
  zel::LevelClasses table{};
  int32_t found = 0;
  const zel::Status status = zel::AutoBThreshold(image, method, &table, &found);
  zel::LookupDeliver(table, arrayType, lookup);
  if (threshold && table.count != 0) *threshold = found;
  return ZEL_ProcessError("ZEL_AutoBThreshold", status);
}

int32_t ZEL_AutoMThreshold(ImageRef image, int32_t count, int32_t arrayType, void* lookup,
                           ThresholdClass* classes) {
  zel::LevelClasses table{};
  ThresholdClass found[zel::CLASSES_MAX];
  std::memset(found, 0, sizeof found);  // the bytes behind the fields too
  const zel::Status status = zel::AutoMThreshold(image, count, &table, found);
  zel::LookupDeliver(table, arrayType, lookup);
  if (classes && table.count != 0) {
    std::memcpy(classes, found, static_cast<size_t>(count) * sizeof(ThresholdClass));
  }
  return ZEL_ProcessError("ZEL_AutoMThreshold", status);
}
