// Mean, minimum, maximum, and pixels kept or cleared by comparison.
#include <algorithm>
#include <cmath>
#include <iterator>

#include "point/compare_rows.h"
#include "point/operators.h"

namespace zel {
namespace {

OperatorConstant ValueOf(int32_t value) {
  OperatorConstant constant{};
  constant.value = value;
  return constant;
}

// Grouped columns of U8 take the low 8 bits of the constant, the remaining ones the constant.
void MeanWithConstant(const PointViews& views, int32_t constant) {
  const CompareRows& rows = compareRows();
  const int32_t type = views.first.type;
  const int32_t width = views.result.width;
  const int32_t grouped = type == IMAGE_U8 ? GroupedColumns(width) : 0;
  PointWalk(PointColumns(views, 0, grouped), rows.mean.constant[IMAGE_U8],
            ValueOf(constant & UINT8_MAX));

  // (a + c) >> 1 is ((a + odd bit of c) >> 1) + (c >> 1), whatever the signs.
  OperatorConstant half = SumWithConstant(type, constant >> 1);
  half.odd = constant & 1;
  PointWalk(PointColumns(views, grouped, width), rows.meanConstant[type], half);
}

void SmallerOrLargerThanConstant(const PointViews& views, int32_t constant,
                                 const CompareRoutines& routines) {
  const int32_t type = views.first.type;
  const auto [least, most] = LimitsOf(type);
  PointWalk(views, routines.constant[type], ValueOf(std::clamp(constant, least, most)));
}

void KeepDifferentFromConstant(const PointViews& views, int32_t constant) {
  const int32_t type = views.first.type;
  const auto [least, most] = LimitsOf(type);
  const bool inRange = constant >= least && constant <= most;
  // No pixel equals a constant out of range: clearing those that are 0 keeps all as they are.
  PointWalk(views, compareRows().keepDifferent.constant[type], ValueOf(inRange ? constant : 0));
}

// Pixels from one value to another are kept. Where that is none, the range of 0 alone has the same
// results.
void KeepFromTo(const PointViews& views, int64_t low, int64_t high) {
  const int32_t type = views.first.type;
  const auto [least, most] = LimitsOf(type);
  OperatorConstant range{};
  range.low = static_cast<int32_t>(std::max<int64_t>(low, least));
  range.high = static_cast<int32_t>(std::min<int64_t>(high, most));
  if (low > most || high < least) range.low = range.high = 0;
  PointWalk(views, compareRows().keepRange[type], range);
}

// One comparison: its routines, and what it does with a constant on integer pixels.
struct Comparison {
  CompareRoutines CompareRows::*routines;
  void (*integerConstant)(const PointViews& views, int32_t constant);
};

// In the order of the numbers that callers pass.
constexpr Comparison COMPARISONS[] = {
    {.routines = &CompareRows::mean, .integerConstant = &MeanWithConstant},
    {.routines = &CompareRows::minimum,
     .integerConstant =
         [](const PointViews& views, int32_t c) {
           SmallerOrLargerThanConstant(views, c, compareRows().minimum);
         }},
    {.routines = &CompareRows::maximum,
     .integerConstant =
         [](const PointViews& views, int32_t c) {
           SmallerOrLargerThanConstant(views, c, compareRows().maximum);
         }},
    {.routines = &CompareRows::keepNotBelow,
     .integerConstant = [](const PointViews& views,
                           int32_t c) { KeepFromTo(views, c, INT32_MAX); }},
    {.routines = &CompareRows::keepAbove,
     .integerConstant = [](const PointViews& views,
                           int32_t c) { KeepFromTo(views, int64_t{c} + 1, INT32_MAX); }},
    {.routines = &CompareRows::keepDifferent, .integerConstant = &KeepDifferentFromConstant},
    {.routines = &CompareRows::keepBelow,
     .integerConstant = [](const PointViews& views,
                           int32_t c) { KeepFromTo(views, INT32_MIN, int64_t{c} - 1); }},
    {.routines = &CompareRows::keepNotAbove,
     .integerConstant = [](const PointViews& views,
                           int32_t c) { KeepFromTo(views, INT32_MIN, c); }},
};
constexpr int32_t LAST_COMPARISON = static_cast<int32_t>(std::size(COMPARISONS)) - 1;

void FloatConstantWalk(const PointViews& views, const CompareRoutines& routines, float constant) {
  const CompareRows& rows = compareRows();
  // No sum with a constant below this is beyond the type.
  constexpr float sumStaysInRange = 1e30f;
  const bool isPlainMean = &routines == &rows.mean && std::fabs(constant) < sumStaysInRange;
  OperatorConstant prepared{};
  prepared.real = constant;
  PointWalk(views, isPlainMean ? rows.halfOfSum : routines.floatConstant, prepared);
}

Status Compare(ImageRef first, ImageRef second, ImageRef destination, int32_t operation,
               float constant) {
  OperatorOperands operands;
  const Status status =
      ScalarOperandsSettle(first, second, destination, OperandOrder::MATTERS, &operands);
  if (status != STATUS_OK || operands.isDone) return status;

  const Comparison& comparison = COMPARISONS[std::clamp(operation, 0, LAST_COMPARISON)];
  const CompareRoutines& routines = compareRows().*comparison.routines;
  const PointViews& views = operands.views;
  if (operands.hasSecond) {
    PointWalk(views, routines.images.For(views), OperatorConstant{});
  } else if (views.first.type == IMAGE_SGL) {
    FloatConstantWalk(views, routines, constant);
  } else {
    comparison.integerConstant(views, CutSaturated(static_cast<double>(constant)));
  }
  return STATUS_OK;
}

}  // namespace
}  // namespace zel

int32_t ZEL_Compare(ImageRef first, ImageRef second, ImageRef destination, int32_t operation,
                    float constant) {
  return ZEL_ProcessError("ZEL_Compare",
                          zel::Compare(first, second, destination, operation, constant));
}
