// Lookups by mathematical laws: tables for integer pixels, the law itself for float pixels.
#include <cmath>
#include <limits>

#include "point/lookup.h"

namespace zel {
namespace {

// What is plain of a power law from the start.
enum class PowerEnds {
  None,
  Flat,      // an exponent so near 0 that every power rounds to 1: 0 or NaN is all there is
  Infinite,  // one so large that the power of the range is infinite
};

// A law over the distance d of a pixel above the range's minimum. Results are those of 80-bit
// floats rounded to 32 bits. Most are settled by 64-bit floats, since all numbers that their error
// leaves open round to the same 32-bit one.
struct MathLaw {
  int32_t operation;     // MathOperator
  long double range;     // R: what the distances run up to
  long double span;      // O: what the results run up to
  long double exponent;  // of the power laws
  long double first;     // e^k, where the exponential law begins
  long double last;      // what the law's function gives for R
  // The same for the estimate.
  double estimateFactor;  // span / last where 64 bits can hold it, else NaN
  double estimateFirst;
  double estimateExponent;
  double inverseRange;
  double estimateLogLast;  // ln(last) of a power law where `last` is very large, else 0
  PowerEnds ends;
  float flatValue;  // of PowerEnds::Flat
};

using Long = std::numeric_limits<long double>;

constexpr int32_t DIGITS = 64;  // binary ones, of an 80-bit float
static_assert(Long::digits >= DIGITS && Long::max_exponent == 16384);

// What an operation gives in 80-bit floats: where those of the processor are wider, one more
// rounding.
long double Rounded(long double value) {
  if constexpr (Long::digits == DIGITS) return value;
  int exponent = 0;
  const long double fraction = std::frexp(value, &exponent);
  return std::ldexp(std::nearbyint(std::ldexp(fraction, DIGITS)), exponent - DIGITS);
}

long double Product(long double a, long double b) {
  return Rounded(a * b);
}
long double Quotient(long double a, long double b) {
  return Rounded(a / b);
}
long double Difference(long double a, long double b) {
  return Rounded(a - b);
}

const long double EXP_RATE = Product(Rounded(std::log(10.0L)), Rounded(0.01L));

// The law's function, of which its value is a part of the span.
long double LawFunction(const MathLaw& law, long double d) {
  switch (law.operation) {
    case MATH_LOG:
      return Rounded(std::log(d));
    case MATH_EXP:
      return Difference(Rounded(std::exp(Product(EXP_RATE, d))), law.first);
    case MATH_SQRT:
      return Rounded(std::sqrt(d));
    case MATH_POWERX:
    case MATH_POWER1X:
      return Difference(Rounded(std::pow(d, law.exponent)), 1.0L);
    default:
      return d;
  }
}

long double LawValue(const MathLaw& law, long double d) {
  if (law.operation == MATH_SQUARE) {
    const long double scaled = Quotient(Product(d, law.span), law.range);
    return Quotient(Product(scaled, scaled), law.span);
  }
  return Quotient(Product(LawFunction(law, d), law.span), law.last);
}

struct Estimate {
  double value;
  double error;  // the true value is nowhere farther from `value`; NaN where nothing is known
};

constexpr double UNIT = std::numeric_limits<double>::epsilon();  // two halves of a last place

// The logarithm of a distance's power, and what it may be off by: the errors of the distance, of
// the exponent, of the logarithm and of the product.
struct PowerLog {
  double value, error;
};

PowerLog PowerLogOf(const MathLaw& law, double d) {
  const double exponent = law.estimateExponent;
  const double logOfDistance = std::log(d);
  const double value = exponent * logOfDistance;
  constexpr double NEAR_ONE = 1e-9;  // farther off, d is on the same side of 1 for certain
  if (std::isinf(exponent) && std::fabs(logOfDistance) > NEAR_ONE) return {value, 0.0};
  return {value, 8.0 * UNIT * (std::fabs(value) + std::fabs(exponent))};
}

constexpr Estimate UNKNOWN{0.0, std::numeric_limits<double>::quiet_NaN()};
constexpr double LARGE_POWER = 1e100;
constexpr double LARGEST_LOG = Long::max_exponent * 0.6931471805599453;
constexpr double SPAN_LOG = 150.0;  // more than that of a span, and than the errors

// The power less 1, from its logarithm, which keeps what a power near 1 has lost. The law itself
// rounds the power to its 80 bits before the 1 is taken away.
Estimate PowerEstimate(const MathLaw& law, double d) {
  constexpr double POWER_ROUNDING = 16.0 * 0x1p-63;
  constexpr double VANISHING = -100.0;  // a power of so small a logarithm leaves no trace beside 1
  const double factor = law.estimateFactor;
  const PowerLog log = PowerLogOf(law, d);
  if (law.estimateLogLast != 0.0) {  // the 1 leaves no trace beside such a power
    const auto span = static_cast<double>(law.span);
    const double error = log.error + 8.0 * UNIT * law.estimateLogLast;
    // The law multiplies the power by the span, and that may pass all bounds.
    if (!(error < 0.5 && log.value < LARGEST_LOG - SPAN_LOG)) return UNKNOWN;
    const double value = span * std::exp(log.value - law.estimateLogLast);
    return {value, (2.0 * error + 8.0 * UNIT) * value + span / LARGE_POWER};
  }
  if (log.value + log.error < VANISHING) return {-factor, 8.0 * UNIT * std::fabs(factor)};
  if (!(log.error < 0.5)) return UNKNOWN;
  const double lessOne = std::expm1(log.value);
  const double power = lessOne + 1.0 + UNIT;
  const double error = 8.0 * UNIT * std::fabs(lessOne) + (2.0 * log.error + POWER_ROUNDING) * power;
  return {lessOne * factor, error * std::fabs(factor)};
}

// Each rounding, and each library function, is taken to be off by less than UNIT of its result, and
// d by less than UNIT of itself; the errors below are generous sums.
Estimate LawEstimate(const MathLaw& law, double d) {
  const double factor = law.estimateFactor;
  switch (law.operation) {
    case MATH_LINEAR: {
      const double value = d * factor;
      return {value, 8.0 * UNIT * std::fabs(value)};
    }
    case MATH_LOG: {
      const double log = std::log(d);
      return {log * factor, 8.0 * UNIT * (std::fabs(log) + 1.0) * std::fabs(factor)};
    }
    case MATH_EXP: {
      const double position = static_cast<double>(EXP_RATE) * d;
      const double power = std::exp(position);
      const double relative = 8.0 * UNIT * (position + 1.0);
      return {(power - law.estimateFirst) * factor, relative * (power + 2.0) * std::fabs(factor)};
    }
    case MATH_SQUARE: {
      const double value = (d * factor) * (d * law.inverseRange);
      return {value, 16.0 * UNIT * std::fabs(value)};
    }
    case MATH_SQRT: {
      const double value = std::sqrt(d) * factor;
      return {value, 8.0 * UNIT * std::fabs(value)};
    }
    default:
      return PowerEstimate(law, d);
  }
}

// What a power law gives where its exponent is near 0 or beyond all bounds. False where that is not
// plain: the law has to be worked out then.
bool PowerIsSettled(const MathLaw& law, double d, float added, float* value) {
  if (!(d == d)) return false;
  if (law.ends == PowerEnds::Flat) {
    *value = law.flatValue + added;
    return true;
  }
  // The power of the range is infinite. The law is 0 where the pixel's is far from it, and no
  // number where it is infinite too.
  const PowerLog log = PowerLogOf(law, d);
  if (log.value + log.error < LARGEST_LOG - SPAN_LOG && (added != 0.0f || !std::signbit(added))) {
    *value = added;
    return true;
  }
  *value = std::numeric_limits<float>::quiet_NaN();
  return log.value - log.error > LARGEST_LOG + SPAN_LOG;
}

// The law's value at the distance of a pixel from an origin, plus a constant, as a 32-bit float.
float LawStored(const MathLaw& law, double pixel, double origin, float added) {
  float settled = 0;
  if (law.ends != PowerEnds::None && PowerIsSettled(law, pixel - origin, added, &settled)) {
    return settled;
  }
  const Estimate estimate = LawEstimate(law, pixel - origin);
  const double sum = estimate.value + static_cast<double>(added);
  const double error =
      estimate.error + 2.0 * std::numeric_limits<double>::epsilon() * std::fabs(sum);
  const auto lowest = static_cast<float>(sum - error);
  const auto highest = static_cast<float>(sum + error);
  // Not true for NaN. Results near 0 are left to the full width for the sake of their sign, and
  // because the errors above don't cover the ends of the exponents.
  constexpr float TINY = 1e-30f;
  if (lowest == highest && std::fabs(lowest) > TINY) return lowest;
  const long double d =
      Difference(static_cast<long double>(pixel), static_cast<long double>(origin));
  return static_cast<float>(Rounded(LawValue(law, d) + static_cast<long double>(added)));
}

MathLaw LawOf(int32_t operation, float x, const LookupLimits& limits) {
  MathLaw law{};
  law.operation = Clamped(operation, MATH_LINEAR, MATH_POWER1X);
  law.range = Difference(static_cast<long double>(limits.rangeMax),
                         static_cast<long double>(limits.rangeMin));
  law.span =
      Difference(static_cast<long double>(limits.high), static_cast<long double>(limits.low));
  const auto exponent = static_cast<long double>(x);
  law.exponent = law.operation == MATH_POWER1X ? Quotient(1.0L, exponent) : exponent;
  law.first = Rounded(std::exp(EXP_RATE));
  law.last = LawFunction(law, law.range);
  // Within these bounds no product of the estimate leaves the 64-bit exponents unnoticed.
  constexpr long double LARGEST = 1e200L;
  const long double factor = Quotient(law.span, law.last);
  const bool held = std::fabs(factor) > 1.0L / LARGEST && std::fabs(factor) < LARGEST;
  law.estimateFactor =
      held ? static_cast<double>(factor) : std::numeric_limits<double>::quiet_NaN();
  law.estimateFirst = static_cast<double>(law.first);
  law.estimateExponent = static_cast<double>(law.exponent);
  law.inverseRange = 1.0 / static_cast<double>(law.range);
  if (law.operation != MATH_POWERX && law.operation != MATH_POWER1X) return law;
  // No logarithm of a distance is longer than 104, and a power this near 1 is rounded to it.
  const long double flatExponent = std::ldexp(1.0L, -DIGITS - 6) / 104.0L;
  if (std::fabs(law.exponent) < flatExponent) law.ends = PowerEnds::Flat;
  if (std::isinf(law.last) && law.last > 0.0L) {
    law.ends = PowerEnds::Infinite;
  } else if (law.last > static_cast<long double>(LARGE_POWER)) {
    law.estimateLogLast = static_cast<double>(std::log(law.last));
  }
  law.flatValue = static_cast<float>((1.0L - 1.0L) * law.span / law.last);
  return law;
}

bool LawHasNoValueAtZero(const MathLaw& law) {
  return law.operation == MATH_LOG || law.operation == MATH_EXP || law.operation == MATH_POWERX ||
         law.operation == MATH_POWER1X;
}

// The entries of an integer table, level by level.
struct LevelLaw {
  MathLaw law;
  int64_t first;       // the level at which the distance is 0
  int64_t last;        // the last level that takes the law; below first when there is none
  uint16_t above;      // the entry of all levels beyond
  bool noValueAtZero;  // the first level's entry stays 0

  uint16_t Entry(int64_t level) const {
    if (level < first) return 0;
    if (level > last) return above;
    if (level == first && noValueAtZero) return 0;
    const float value =
        LawStored(law, static_cast<double>(level), static_cast<double>(first), 0.0f);
    return CutLow<uint16_t>(static_cast<double>(value));
  }
};

LevelLaw LevelLawOf(const MathLaw& law, const LookupLimits& limits) {
  LevelLaw levels{};
  levels.law = law;
  levels.first = CutSaturated(static_cast<double>(limits.rangeMin));
  levels.last = levels.first - 1;
  if (law.range >= 0.0L) {
    levels.last = levels.first + CutSaturated(static_cast<double>(std::trunc(law.range)));
  }
  levels.above = CutLow<uint16_t>(static_cast<double>(limits.high));
  levels.noValueAtZero = LawHasNoValueAtZero(law);
  return levels;
}

void LawIntoBytes(const LevelLaw& levels, uint16_t* table) {
  for (int32_t level = 0; level < LEVELS_U8; level++) table[level] = levels.Entry(level);
}

// The law is worked out for levels that can occur: those between the extremes, or those of the
// pixels where these are fewer. All entries of the table are 0 before.
void LawIntoWords(const LevelLaw& levels, const LookupLimits& limits, const PixelView& source,
                  uint16_t* table) {
  const auto lowest = static_cast<int64_t>(limits.low);
  const auto highest = static_cast<int64_t>(limits.high);
  if (int64_t{source.width} * source.height < highest - lowest) {
    for (int64_t y = 0; y < source.height; y++) {
      const auto* row = source.Row<const int16_t>(y);
      for (int64_t x = 0; x < source.width; x++) {
        table[static_cast<uint16_t>(row[x])] = levels.Entry(row[x]);
      }
    }
  } else {
    for (int64_t level = lowest; level <= highest; level++) {
      table[static_cast<uint16_t>(level)] = levels.Entry(level);
    }
  }
}

struct FloatLaw {
  MathLaw law;
  LookupLimits limits;

  float Value(float pixel) const {
    if (pixel <= limits.rangeMin) return 0.0f;
    if (pixel > limits.rangeMax) return limits.high;
    const float value = LawStored(law, static_cast<double>(pixel),
                                  static_cast<double>(limits.rangeMin), limits.low);
    return !(value >= limits.low) ? limits.low : !(value <= limits.high) ? limits.high : value;
  }
};

void LawOverFloats(const PointViews& views, const FloatLaw& law) {
  for (int64_t y = 0; y < views.result.height; y++) {
    const auto* from = views.first.Row<const float>(y);
    auto* to = views.result.Row<float>(y);
    const uint8_t* mask = views.mask.Row(y);
    for (int64_t x = 0; x < views.result.width; x++) {
      to[x] = !mask || mask[x] != 0 ? law.Value(from[x]) : from[x];
    }
  }
}

Status MathLookup(ImageRef source, ImageRef mask, ImageRef destination, int32_t operation, float x,
                  float rangeMin, float rangeMax) {
  Operands operands;
  LookupCheck(source, mask, destination, &TypeIsScalar, &operands);
  if (operands.HasFailed()) return operands.status();
  const int32_t type = operands.source().type;
  LevelTable table;
  const Status status = table.Create(type);
  if (status != STATUS_OK) return status;

  const PointViews views = LookupSettle(&operands);
  if (views.result.IsEmpty()) return operands.status();
  const LookupLimits limits = LookupLimitsOf(views.first, views.mask, rangeMin, rangeMax);
  const MathLaw law = LawOf(operation, x, limits);
  if (type == IMAGE_SGL) {
    PointWalk(views, &LawOverFloats, FloatLaw{law, limits});
    return STATUS_OK;
  }
  if (limits.IsEmpty()) return STATUS_OK;
  const LevelLaw levels = LevelLawOf(law, limits);
  if (type == IMAGE_U8) {
    LawIntoBytes(levels, table.entries());
  } else {
    LawIntoWords(levels, limits, views.first, table.entries());
  }
  LookupApply(views, table.entries());
  return STATUS_OK;
}

}  // namespace
}  // namespace zel

int32_t ZEL_MathLookup(ImageRef source, ImageRef mask, ImageRef destination, int32_t operation,
                       float x, float rangeMin, float rangeMax) {
  return ZEL_ProcessError("ZEL_MathLookup", zel::MathLookup(source, mask, destination, operation, x,
                                                            rangeMin, rangeMax));
}
