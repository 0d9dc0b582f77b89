// Choosing how a matrix is applied: which sums are exact in how many bits, and what divides them.
#include "filters/convolution_plan.h"

#include <algorithm>
#include <cmath>

namespace zel {
namespace {

// ---- what the coefficients are

bool IsWhole(float coefficient) {
  return coefficient >= -2147483648.0f && coefficient < 2147483648.0f &&
         coefficient == std::trunc(coefficient);
}

// Answers the sum of all.
double CoefficientsLookAt(const ConvolutionMatrix& matrix, ConvolutionPlan* plan) {
  double sum = 0.0;
  const int64_t count = ConvolutionCount(matrix);
  for (int64_t i = 0; i < count; i++) {
    const float coefficient = matrix.coefficients[i];
    const auto real = static_cast<double>(coefficient);
    sum += real;
    (real < 0 ? plan->negativeSum : plan->positiveSum) += real;
    plan->isFractional |= !IsWhole(coefficient);
    plan->lowest = std::min(plan->lowest, coefficient);
    plan->highest = std::max(plan->highest, coefficient);
  }
  return sum;
}

Status TapsMake(const ConvolutionMatrix& matrix, int32_t type, ConvolutionPlan* plan) {
  if (!plan->taps.Allocate(static_cast<uint64_t>(ConvolutionCount(matrix)))) {
    return STATUS_MEMORY_FULL;
  }
  const bool takesFloats = plan->isFractional || type == IMAGE_SGL;
  const float* coefficients = matrix.coefficients;
  size_t count = 0;
  for (int32_t row = 0; row < matrix.height; row++) {
    for (int32_t column = 0; column < matrix.width; column++) {
      const float coefficient = *coefficients++;
      // The product with 0 is 0 unless a pixel may be infinite or no number.
      if (coefficient == 0.0f && !takesFloats) continue;
      const int32_t whole = plan->isFractional ? 0 : static_cast<int32_t>(coefficient);
      plan->taps[count++] = {row, column - (matrix.width - 1) / 2, whole,
                             static_cast<double>(coefficient)};
    }
  }
  plan->rule.taps = plan->taps.data();
  plan->rule.tapCount = static_cast<int32_t>(count);
  return STATUS_OK;
}

// ---- pairs of coefficients

// With coefficients of one sign that add up to no more, sums of bytes are within 16 bits with a
// sign.
constexpr int32_t MOST_IN_WORDS = INT16_MAX / UINT8_MAX;

struct SignedSums {
  int32_t negative = 0, positive = 0;

  SignedSums With(int32_t coefficient) const {
    return coefficient < 0 ? SignedSums{negative + coefficient, positive}
                           : SignedSums{negative, positive + coefficient};
  }
  bool FitWords() const { return negative >= -MOST_IN_WORDS && positive <= MOST_IN_WORDS; }
};

struct Pair {
  int32_t first, second;
};

uint32_t PackedBytes(const Pair& pair) {
  const auto low = static_cast<uint8_t>(pair.first);
  const auto high = static_cast<uint8_t>(pair.second);
  return (low | uint32_t{high} << 8) * 0x10001u;
}

uint32_t PackedWords(const Pair& pair) {
  return static_cast<uint16_t>(pair.first) | uint32_t{static_cast<uint16_t>(pair.second)} << 16;
}

// Terms of a row, put behind those there are. None reads a column beside the window, unless that
// has one column only.
struct TermList {
  ConvolutionTerm* terms;
  int32_t count = 0;
  bool ofBytes;
  SignedSums sums;  // of the terms since the last one that is marked

  void Add(int32_t row, int32_t column, const Pair& pair) {
    const SignedSums with = sums.With(pair.first).With(pair.second);
    if (count > 0 && !with.FitWords()) {
      terms[count - 1].isLast = true;
      sums = SignedSums{}.With(pair.first).With(pair.second);
    } else {
      sums = with;
    }
    terms[count++] = {row, column, ofBytes ? PackedBytes(pair) : PackedWords(pair), false};
  }

  void AddRow(const float* coefficients, int32_t width, int32_t row) {
    const int32_t centre = (width - 1) / 2;
    const auto at = [&](int32_t i) { return static_cast<int32_t>(coefficients[i]); };
    for (int32_t i = 0; i < width; i++) {
      if (at(i) == 0) continue;
      const bool isLast = i + 1 == width;
      if (!isLast && (!ofBytes || SignedSums{}.With(at(i)).With(at(i + 1)).FitWords())) {
        Add(row, i - centre, {at(i), at(i + 1)});
        i++;
      } else if (isLast && i > 0) {
        Add(row, i - 1 - centre, {0, at(i)});
      } else {
        Add(row, i - centre, {at(i), 0});
      }
    }
  }
};

bool TermsFit(const ConvolutionPlan& plan, int32_t type) {
  if (plan.isFractional) return false;
  return type == IMAGE_U8
             ? plan.lowest >= INT8_MIN && plan.highest <= INT8_MAX
             : type == IMAGE_I16 && plan.lowest >= INT16_MIN && plan.highest <= INT16_MAX;
}

Status TermsMake(const ConvolutionMatrix& matrix, int32_t type, ConvolutionPlan* plan) {
  if (!TermsFit(*plan, type)) return STATUS_OK;
  // There are no more terms than taps.
  if (!plan->terms.Allocate(static_cast<uint64_t>(plan->rule.tapCount))) return STATUS_MEMORY_FULL;
  TermList list{plan->terms.data(), 0, type == IMAGE_U8, {}};
  for (int32_t row = 0; row < matrix.height; row++) {
    list.AddRow(matrix.coefficients + int64_t{row} * matrix.width, matrix.width, row);
  }
  if (list.count > 0) list.terms[list.count - 1].isLast = true;
  plan->rule.terms = list.terms;
  plan->rule.termCount = list.count;
  return STATUS_OK;
}

// ---- dividers

float DividerOf(const ConvolutionMatrix& matrix, double sum) {
  if (matrix.divider != 0.0f) return matrix.divider;
  const auto rounded = static_cast<float>(sum);
  return rounded != 0.0f ? rounded : 1.0f;
}

// Larger than 1 / divider by 2^-42 of it, so that a quotient that is a whole number is not missed,
// while none that is not reaches the next one: with numerator and divider of 24 bits it is at least
// 2^-24 / 32768 of its size away from a whole number up to 32768, and with a numerator of 32 bits
// likewise. Quotients by an infinite divider are 0, and those that are no numbers count as 0.
double ReciprocalOf(float divider) {
  if (std::isnan(divider) || std::isinf(divider)) return 0.0;
  return 1.0 / static_cast<double>(divider) * (1.0 + 0x1p-42);
}

// The last bit of a number that is set, or 1 if it is larger.
double LowestBit(double number) {
  double bit = 1.0;
  while (std::fmod(number, bit) != 0.0) bit /= 2;
  return bit;
}

// (sum x multiplier) >> (16 + shift) is too large by sum x excess / 2^(16 + shift) of a d-th, where
// the excess is multiplier x d - 2^(16 + shift). A quotient that is not whole is below the next
// whole number by a d-th of the divider's last bit at least.
bool MultiplierSettle(float divider, double largestSum, ConvolutionRule* rule) {
  constexpr int32_t mostShift = 15;
  const auto d = static_cast<double>(divider);
  if (!(d > 1.0 && d <= 65536.0)) return false;
  int32_t shift = 0;
  while (std::ldexp(1.0, shift + 1) < d) shift++;
  const double power = std::ldexp(1.0, 16 + shift);
  const double multiplier = std::ceil(power / d);
  const double excess = multiplier * d - power;
  if (shift > mostShift || multiplier > UINT16_MAX || excess < 0) return false;
  if (!(largestSum * excess < power * LowestBit(d))) return false;
  rule->multiplier = static_cast<uint16_t>(multiplier);
  rule->shift = static_cast<uint16_t>(shift);
  return true;
}

WindowRow<ConvolutionRule> ByteRowOf(const WindowViews& views, ConvolutionPlan* plan) {
  const ConvolutionRows& rows = convolutionRows();
  ConvolutionRule& rule = plan->rule;
  const double largestSum = UINT8_MAX * plan->positiveSum;
  const bool fitsSigned = largestSum <= INT16_MAX && UINT8_MAX * plan->negativeSum >= INT16_MIN;
  const bool fitsUnsigned = largestSum <= UINT16_MAX && plan->negativeSum == 0.0;
  rule.wrappedColumns = views.source.width;
  if (rule.divider == 1.0f) {
    if (fitsSigned) return rows.wrapped;
    constexpr int32_t groupColumns = 4;
    const bool fitsBytes = plan->lowest >= INT8_MIN && plan->highest <= INT8_MAX;
    rule.wrappedColumns = fitsBytes ? WindowGroupedColumns(views, groupColumns) : 0;
    return rule.wrappedColumns > 0 ? rows.wrapped : rows.whole.u8;
  }
  if ((fitsSigned || fitsUnsigned) && MultiplierSettle(rule.divider, largestSum, &rule)) {
    return fitsUnsigned ? rows.dividedUnsigned : rows.dividedSigned;
  }
  return rows.whole.u8;
}

}  // namespace

int64_t ConvolutionCount(const ConvolutionMatrix& matrix) {
  return matrix.width < 1 || matrix.height < 1 ? 0 : int64_t{matrix.width} * matrix.height;
}

Status ConvolutionPlanMake(const ConvolutionMatrix& matrix, int32_t type, ConvolutionPlan* plan) {
  const double sum = CoefficientsLookAt(matrix, plan);
  plan->rule.columns = matrix.width;
  plan->rule.rows = matrix.height;
  plan->rule.divider = DividerOf(matrix, sum);
  plan->rule.reciprocal = ReciprocalOf(plan->rule.divider);
  const Status status = TapsMake(matrix, type, plan);
  return status != STATUS_OK ? status : TermsMake(matrix, type, plan);
}

WindowRow<ConvolutionRule> ConvolutionRowOf(const WindowViews& views, ConvolutionPlan* plan) {
  const int32_t type = views.source.type;
  if (plan->isFractional || type == IMAGE_SGL) return convolutionRows().real.For(type);
  return type == IMAGE_U8 ? ByteRowOf(views, plan) : convolutionRows().whole.i16;
}

}  // namespace zel
