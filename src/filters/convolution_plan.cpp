// Choosing how a matrix is applied: which sums are exact in how many bits, and what divides them.
#include "filters/convolution_plan.h"

#include <algorithm>
#include <cmath>
#include <numeric>

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

// ---- factors

// The coefficients of a matrix of bytes, and where its centre is.
struct ByteMatrix {
  const ConvolutionMatrix& matrix;
  int32_t centreColumn, centreRow;

  explicit ByteMatrix(const ConvolutionMatrix& of)
      : matrix(of), centreColumn((of.width - 1) / 2), centreRow((of.height - 1) / 2) {}
  int32_t At(int32_t column, int32_t row) const {
    return static_cast<int32_t>(matrix.coefficients[int64_t{row} * matrix.width + column]);
  }
  bool IsCentre(int32_t column, int32_t row) const {
    return column == centreColumn && row == centreRow;
  }
};

// A coefficient that is neither in the centre's row nor in its column.
bool ReferenceFind(const ByteMatrix& bytes, int32_t* column, int32_t* row) {
  for (*row = 0; *row < bytes.matrix.height; ++*row) {
    for (*column = 0; *column < bytes.matrix.width; ++*column) {
      if (*row == bytes.centreRow || *column == bytes.centreColumn) continue;
      if (bytes.At(*column, *row) != 0) return true;
    }
  }
  return false;
}

// False where the matrix is no such product.
bool FactorsFind(const ByteMatrix& bytes, int8_t* across, ConvolutionFactors* factors) {
  const ConvolutionMatrix& matrix = bytes.matrix;
  int32_t column = 0;
  int32_t row = 0;
  if (!ReferenceFind(bytes, &column, &row)) return false;
  int32_t divisor = 0;
  for (int32_t i = 0; i < matrix.width; i++) divisor = std::gcd(divisor, bytes.At(i, row));
  for (int32_t i = 0; i < matrix.width; i++) {
    across[i] = static_cast<int8_t>(bytes.At(i, row) / divisor);
  }
  factors->rows = matrix.height;
  for (int32_t j = 0; j < matrix.height; j++) {
    const int32_t weight = bytes.At(column, j) / across[column];
    factors->down[j] = static_cast<int16_t>(weight);
    for (int32_t i = 0; i < matrix.width; i++) {
      const int32_t rest = bytes.At(i, j) - weight * across[i];
      if (bytes.IsCentre(i, j)) factors->centre = static_cast<int16_t>(rest);
      if (rest != 0 && !bytes.IsCentre(i, j)) return false;
    }
  }
  return true;
}

// What factors have to save before the rows of sums are worth their memory.
constexpr int32_t FEWEST_TERMS_SAVED = 3;

Status FactorsMake(const ConvolutionMatrix& matrix, ConvolutionPlan* plan) {
  const int32_t width = matrix.width;
  if (plan->rule.termCount == 0 || width < 3 || matrix.height < 3 ||
      std::max(width, matrix.height) > CONVOLUTION_MOST_FACTOR_ROWS) {
    return STATUS_OK;
  }
  int8_t across[CONVOLUTION_MOST_FACTOR_ROWS];
  ConvolutionFactors& factors = plan->factors;
  if (!FactorsFind(ByteMatrix(matrix), across, &factors)) return STATUS_OK;

  const auto columns = static_cast<uint64_t>(width);
  if (!plan->factorTaps.Allocate(columns) || !plan->factorTerms.Allocate(columns)) {
    return STATUS_MEMORY_FULL;
  }
  TermList list{plan->factorTerms.data(), 0, true, {}};
  float coefficients[CONVOLUTION_MOST_FACTOR_ROWS];
  int32_t taps = 0;
  for (int32_t i = 0; i < width; i++) {
    coefficients[i] = across[i];
    if (across[i] != 0) {
      plan->factorTaps[static_cast<size_t>(taps++)] = {0, i - (width - 1) / 2, across[i], 0};
    }
  }
  list.AddRow(coefficients, width, 0);
  factors.across.taps = plan->factorTaps.data();
  factors.across.tapCount = taps;
  factors.across.terms = list.terms;
  factors.across.termCount = list.count;
  plan->hasFactors = list.count + matrix.height + FEWEST_TERMS_SAVED <= plan->rule.termCount;
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

ConvolutionRoutine ByteRoutineOf(const WindowViews& views, ConvolutionPlan* plan) {
  const ConvolutionRows& rows = convolutionRows();
  ConvolutionRule& rule = plan->rule;
  const double largestSum = UINT8_MAX * plan->positiveSum;
  const bool fitsSigned = largestSum <= INT16_MAX && UINT8_MAX * plan->negativeSum >= INT16_MIN;
  const bool fitsUnsigned = largestSum <= UINT16_MAX && plan->negativeSum == 0.0;
  rule.wrappedColumns = views.source.width;
  plan->factors.across.wrappedColumns = views.source.width;
  if (rule.divider == 1.0f) {
    if (fitsSigned) return {rows.wrapped, rows.wrappedDown};
    constexpr int32_t groupColumns = 4;
    const bool fitsBytes = plan->lowest >= INT8_MIN && plan->highest <= INT8_MAX;
    rule.wrappedColumns = fitsBytes ? WindowGroupedColumns(views, groupColumns) : 0;
    if (rule.wrappedColumns > 0) return {rows.wrapped, rows.wrappedDown};
    return {rows.whole.u8, nullptr};
  }
  if ((fitsSigned || fitsUnsigned) && MultiplierSettle(rule.divider, largestSum, &rule)) {
    if (fitsUnsigned) return {rows.dividedUnsigned, rows.dividedUnsignedDown};
    return {rows.dividedSigned, rows.dividedSignedDown};
  }
  return {rows.whole.u8, nullptr};
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
  Status status = TapsMake(matrix, type, plan);
  if (status == STATUS_OK) status = TermsMake(matrix, type, plan);
  if (status == STATUS_OK && type == IMAGE_U8) status = FactorsMake(matrix, plan);
  return status;
}

ConvolutionRoutine ConvolutionRoutineOf(const WindowViews& views, ConvolutionPlan* plan) {
  const int32_t type = views.source.type;
  if (type != IMAGE_U8) return {convolutionRows().whole.For(type), nullptr};
  ConvolutionRoutine routine = ByteRoutineOf(views, plan);
  if (!plan->hasFactors) routine.down = nullptr;
  return routine;
}

}  // namespace zel
