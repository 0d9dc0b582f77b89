// Conditional smoothing: pixels that stand out from their neighbours take the mean of them.
#include <algorithm>
#include <bit>
#include <cmath>
#include <cstring>

#include "engine/window.h"
#include "filters/smoothing_rows.h"

namespace zel {
namespace {

constexpr double WHOLE_TOLERANCE = 100.0;  // percent

// Limited by the number's bits, so that one with a sign passes whatever its size, and loses the
// sign then.
float LimitedTolerance(float tolerance) {
  constexpr auto whole = static_cast<float>(WHOLE_TOLERANCE);
  const bool isAbove = std::bit_cast<int32_t>(tolerance) > std::bit_cast<int32_t>(whole);
  return std::fabs(isAbove ? whole : tolerance);
}

// Sums of 16 bits are exact with so many neighbours: with a d-th of 2^16 x 2^shift rounded up to a
// whole number, where 2^shift is at least half of d, the quotient of a sum of 255 d is too large by
// less than 255 (d - 1) / 2^15 of a d-th, which is less than a d-th; the reciprocal has 16 bits as
// 2^shift is less than d.
constexpr int64_t FEWEST_IN_WORDS = 2;
constexpr int64_t MOST_IN_WORDS = 128;

void WordsSettle(SmoothingRule* rule) {
  const auto neighbours = static_cast<uint32_t>(rule->neighbours);
  const auto shift = static_cast<uint32_t>(std::bit_width(neighbours - 1) - 1);
  const uint32_t dividend = 0x10000u << shift;
  rule->reciprocal = static_cast<uint16_t>((dividend + neighbours - 1) / neighbours);
  rule->power = static_cast<uint16_t>(0x8000u >> shift);

  // Of the two 65536-ths around the tolerance one gives the right product with each mean, since
  // fractions with denominators up to 255 are further apart than that.
  const double share = rule->tolerance / WHOLE_TOLERANCE;
  if (share >= 1.0) {
    rule->wholes = UINT16_MAX;
    return;
  }
  auto below = static_cast<uint32_t>(share * 65536.0);
  for (uint32_t mean = 1; mean <= UINT8_MAX; mean++) {
    const uint32_t product = (mean * below) >> 16;
    if (mean * rule->tolerance >= WHOLE_TOLERANCE * (product + 1)) {
      below++;
      break;
    }
  }
  rule->share = static_cast<uint16_t>(below);
}

// The sum of a window, with the pixel itself, stays below 2^31.
constexpr int64_t MOST_IN_LONGS = 65534;

// The bits of the tolerance in two halves. Truncating the lower product to the unit of the upper
// one first changes nothing.
void LongsSettle(SmoothingRule* rule) {
  int32_t exponent = 0;
  const double fraction = std::frexp(rule->tolerance, &exponent);
  const auto bits = static_cast<int32_t>(std::ldexp(fraction, 2 * TOLERANCE_HALF_BITS));
  rule->toleranceHigh = bits >> TOLERANCE_HALF_BITS;
  rule->toleranceLow = bits & ((1 << TOLERANCE_HALF_BITS) - 1);
  rule->toleranceShift = std::min(TOLERANCE_HALF_BITS - exponent, 31);
}

SmoothingRule RuleOf(int32_t width, int32_t height, float tolerance) {
  SmoothingRule rule{};
  rule.columns = width;
  rule.rows = height;
  rule.neighbours = int64_t{width} * height - 1;
  rule.tolerance = static_cast<double>(LimitedTolerance(tolerance));
  return rule;
}

const SlidingMean& SlidingMeanSettle(int32_t type, SmoothingRule* rule) {
  const SmoothingRows& rows = smoothingRows();
  const bool isByte = type == IMAGE_U8;
  const bool isLimited = rule->tolerance <= WHOLE_TOLERANCE;
  if (!isLimited || rule->neighbours > MOST_IN_LONGS) return isByte ? rows.u8Long : rows.i16Long;
  if (isByte && rule->neighbours >= FEWEST_IN_WORDS && rule->neighbours <= MOST_IN_WORDS) {
    WordsSettle(rule);
    return rows.u8Words;
  }
  LongsSettle(rule);
  return isByte ? rows.u8 : rows.i16;
}

void BandSmooth(const WindowBand& band, const SlidingMean& mean, const SmoothingRule& rule) {
  const PixelView& source = band.views.source;
  const int64_t left = int64_t{(rule.columns - 1) / 2} * source.pixelBytes;
  const int64_t above = (rule.rows - 1) / 2;
  const int64_t count = int64_t{source.width} + rule.columns - 1;
  uint8_t* sums = band.memory;
  uint8_t* spare = sums + count * mean.sumBytes;
  const auto windowRow = [&](int64_t y) { return source.Row<uint8_t>(y - above) - left; };

  std::memset(sums, 0, static_cast<size_t>(count * mean.sumBytes));
  for (int64_t y = 0; y < rule.rows; y++) mean.add(windowRow(band.begin + y), sums, count);
  for (int32_t y = band.begin; y < band.end; y++) {
    mean.row(sums, spare, source.Row<uint8_t>(y), band.RowBegin(y), source.width, rule);
    band.RowEnd(y);
    if (y + 1 < band.end) mean.slide(windowRow(y + rule.rows), windowRow(y), sums, count);
  }
}

Status IntegersSmooth(const WindowViews& views, SmoothingRule rule) {
  const SlidingMean& mean = SlidingMeanSettle(views.source.type, &rule);
  const int64_t count = int64_t{views.source.width} + rule.columns - 1;
  constexpr int64_t arraysOfSums = 4;
  const WindowPlan plan{.memoryBytes = arraysOfSums * count * mean.sumBytes,
                        .effort = mean.sumBytes,
                        .startRows = rule.rows};
  return WindowBandsRun(views, plan, [&](const WindowBand& band) { BandSmooth(band, mean, rule); });
}

Status FloatsSmooth(const WindowViews& views, const SmoothingRule& rule) {
  const RowEffort effort = std::min<int64_t>(rule.neighbours, 1000);
  const WindowReach reach{.above = (rule.rows - 1) / 2, .below = rule.rows / 2};
  return WindowWalk(views, reach, effort, smoothingRows().sgl, rule);
}

Status LowPass(const WindowImages& images, int32_t width, int32_t height, float tolerance) {
  width = std::max(width, 1);
  height = std::max(height, 1);
  Operands operands;
  WindowOperandsSettle(images, BORDER_MIRROR, std::max(width, height) / 2, &operands);
  if (operands.HasFailed()) return operands.status();
  if (width == 1 && height == 1) {
    operands.TakePixels();
    return operands.status();
  }
  const WindowViews views = WindowViewsOf(operands);
  const SmoothingRule rule = RuleOf(width, height, tolerance);
  const bool hasFloats = views.source.type == IMAGE_SGL;
  const Status status = hasFloats ? FloatsSmooth(views, rule) : IntegersSmooth(views, rule);
  if (status == STATUS_OK) operands.Written();
  return status;
}

}  // namespace
}  // namespace zel

int32_t ZEL_LowPass(ImageRef source, ImageRef mask, ImageRef destination, int32_t width,
                    int32_t height, float tolerance) {
  return ZEL_ProcessError("ZEL_LowPass",
                          zel::LowPass({source, mask, destination}, width, height, tolerance));
}
