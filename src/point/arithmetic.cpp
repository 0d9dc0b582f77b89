// Addition, subtraction, multiplication, division, modulo, and multiplication with division.
#include <algorithm>
#include <cmath>

#include "point/arithmetic_rows.h"
#include "point/operators.h"

namespace zel {
namespace {

// NaN counts as 0, as it does when a result is truncated.
double LimitedFactor(double factor, double limit) {
  return std::isnan(factor) ? 0.0 : std::clamp(factor, -limit, limit);
}

void AddConstant(const PointViews& views, int64_t constant) {
  const int32_t type = views.first.type;
  PointWalk(views, arithmeticRows().addConstant[type], SumWithConstant(type, constant));
}

// Grouped columns of U8 take the truncated constant, read as an unsigned number of at most 255; the
// remaining ones its absolute value as it is.
void MultiplyConstant(const PointViews& views, float constant) {
  const ArithmeticRows& rows = arithmeticRows();
  OperatorConstant prepared{};
  prepared.factor = LimitedFactor(static_cast<double>(constant), SCALE_LIMIT);
  if (views.first.type == IMAGE_I16) return PointWalk(views, rows.scale[IMAGE_I16], prepared);

  prepared.factor = std::fabs(prepared.factor);
  const auto truncated = static_cast<uint32_t>(CutSaturated(static_cast<double>(constant)));
  prepared.value = static_cast<int32_t>(std::min<uint32_t>(truncated, UINT8_MAX));
  const int32_t width = views.result.width;
  const int32_t grouped = GroupedColumns(width);
  PointWalk(PointColumns(views, 0, grouped), rows.multiplyByte, prepared);
  const PointViews rest = PointColumns(views, grouped, width);
  if (rest.result.width < GROUP_COLUMNS) {
    PointWalk(rest, rows.scale[IMAGE_U8], prepared);
  } else {
    PointWalkByTable(rest, rows.scale[IMAGE_U8], prepared);
  }
}

// Division by a constant is a product with a reciprocal that is a little too large: by more than
// the roundings (2^-52), so that whole quotients come out no smaller than they are, and by too
// little for any other quotient of a 16-bit pixel and a 24-bit divisor to reach the next whole
// number, which is at least 2^-40 of itself away.
constexpr double RECIPROCAL_EXCESS = 0x1p-45;

void DivideByConstant(const PointViews& views, float constant) {
  const ArithmeticRows& rows = arithmeticRows();
  const double divisor = constant == 0.0f ? 1.0 : static_cast<double>(constant);
  OperatorConstant prepared{};
  prepared.factor = LimitedFactor((1.0 + RECIPROCAL_EXCESS) / divisor, SCALE_LIMIT);
  if (views.first.type == IMAGE_I16) return PointWalk(views, rows.scale[IMAGE_I16], prepared);
  prepared.factor = std::fabs(prepared.factor);
  PointWalkByTable(views, rows.scale[IMAGE_U8], prepared);
}

void ModuloByConstant(const PointViews& views, int64_t constant) {
  const ArithmeticRows& rows = arithmeticRows();
  const int64_t divisor = constant < 0 ? -constant : constant;
  OperatorConstant prepared{};
  if (views.first.type == IMAGE_I16) {
    // The sign of the divisor doesn't matter; one above every pixel leaves the pixels.
    prepared.value = Clamped(divisor, 1, INT16_MAX + 2);
    return PointWalk(views, rows.moduloConstant[IMAGE_I16], prepared);
  }
  prepared.value = std::max(static_cast<int32_t>(divisor & UINT8_MAX), 1);
  PointWalkByTable(views, rows.moduloConstant[IMAGE_U8], prepared);
}

OperatorConstant FloatOf(float constant) {
  OperatorConstant prepared{};
  prepared.real = constant;
  return prepared;
}

// A divisor of 0 divides as 1.
OperatorConstant FloatDivisor(float constant) {
  return FloatOf(constant == 0.0f ? 1.0f : constant);
}

// One operator: its routines, and what it does with a constant on integer pixels.
struct Operator {
  OperandOrder order;
  PairRoutines ArithmeticRows::*images;
  OperatorRoutine ArithmeticRows::*floats;
  OperatorConstant (*floatConstant)(float constant);
  void (*integerConstant)(const PointViews& views, float constant);
};

int64_t Truncated(float constant) {
  return CutSaturated(static_cast<double>(constant));
}

constexpr Operator ADD = {.order = OperandOrder::MAY_CHANGE,
                          .images = &ArithmeticRows::add,
                          .floats = &ArithmeticRows::addFloat,
                          .floatConstant = &FloatOf,
                          .integerConstant = [](const PointViews& views, float constant) {
                            AddConstant(views, Truncated(constant));
                          }};

constexpr Operator SUBTRACT = {.order = OperandOrder::MATTERS,
                               .images = &ArithmeticRows::subtract,
                               .floats = &ArithmeticRows::subtractFloat,
                               .floatConstant = &FloatOf,
                               .integerConstant = [](const PointViews& views, float constant) {
                                 AddConstant(views, -Truncated(constant));
                               }};

constexpr Operator MULTIPLY = {.order = OperandOrder::MAY_CHANGE,
                               .images = &ArithmeticRows::multiply,
                               .floats = &ArithmeticRows::multiplyFloat,
                               .floatConstant = &FloatOf,
                               .integerConstant = &MultiplyConstant};

constexpr Operator DIVIDE = {.order = OperandOrder::MATTERS,
                             .images = &ArithmeticRows::divide,
                             .floats = &ArithmeticRows::divideFloat,
                             .floatConstant = &FloatDivisor,
                             .integerConstant = &DivideByConstant};

constexpr Operator MODULO = {.order = OperandOrder::MATTERS,
                             .images = &ArithmeticRows::modulo,
                             .floats = &ArithmeticRows::moduloFloat,
                             .floatConstant = &FloatDivisor,
                             .integerConstant = [](const PointViews& views, float constant) {
                               ModuloByConstant(views, Truncated(constant));
                             }};

Status Calculate(const Operator& calculation, ImageRef first, ImageRef second, ImageRef destination,
                 float constant) {
  OperatorOperands operands;
  const Status status =
      ScalarOperandsSettle(first, second, destination, calculation.order, &operands);
  if (status != STATUS_OK || operands.isDone) return status;

  const ArithmeticRows& rows = arithmeticRows();
  const PointViews& views = operands.views;
  if (operands.hasSecond) {
    PointWalk(views, (rows.*calculation.images).For(views), OperatorConstant{});
  } else if (views.first.type == IMAGE_SGL) {
    PointWalk(views, rows.*calculation.floats, calculation.floatConstant(constant));
  } else {
    calculation.integerConstant(views, constant);
  }
  return STATUS_OK;
}

OperatorConstant MulDivConstant(int32_t type, float constant) {
  OperatorConstant prepared{};
  prepared.factor = static_cast<double>(constant);
  if (type == IMAGE_U8) {
    prepared.factor = LimitedFactor(std::fabs(prepared.factor), FACTOR_LIMIT_U8);
  } else if (type == IMAGE_I16) {
    prepared.factor = LimitedFactor(prepared.factor, FACTOR_LIMIT_I16);
    prepared.value = CutSaturated(static_cast<double>(constant));
  }
  return prepared;
}

// There is no form of it without a second image, whose absence is told after all other failures.
Status MulDiv(ImageRef first, ImageRef second, ImageRef destination, float constant) {
  OperatorOperands operands;
  if (second == 0) {
    const Status status =
        OperandsSettle(first, second, destination, OperandOrder::MATTERS, &operands);
    return status != STATUS_OK ? status : STATUS_SECOND_IMAGE_MISSING;
  }
  const Status status =
      ScalarOperandsSettle(first, second, destination, OperandOrder::MATTERS, &operands);
  if (status != STATUS_OK || operands.isDone) return status;
  const PointViews& views = operands.views;
  PointWalk(views, arithmeticRows().mulDiv.For(views), MulDivConstant(views.first.type, constant));
  return STATUS_OK;
}

}  // namespace
}  // namespace zel

int32_t ZEL_Add(ImageRef first, ImageRef second, ImageRef destination, float constant) {
  return ZEL_ProcessError("ZEL_Add",
                          zel::Calculate(zel::ADD, first, second, destination, constant));
}

// The misspelt name is what programs in the field look for.
int32_t ZEL_Subtract(ImageRef first, ImageRef second, ImageRef destination, float constant) {
  return ZEL_ProcessError("ZEL_Substract",
                          zel::Calculate(zel::SUBTRACT, first, second, destination, constant));
}

int32_t ZEL_Multiply(ImageRef first, ImageRef second, ImageRef destination, float constant) {
  return ZEL_ProcessError("ZEL_Multiply",
                          zel::Calculate(zel::MULTIPLY, first, second, destination, constant));
}

int32_t ZEL_Divide(ImageRef first, ImageRef second, ImageRef destination, float constant) {
  return ZEL_ProcessError("ZEL_Divide",
                          zel::Calculate(zel::DIVIDE, first, second, destination, constant));
}

int32_t ZEL_Modulo(ImageRef first, ImageRef second, ImageRef destination, float constant) {
  return ZEL_ProcessError("ZEL_Modulo",
                          zel::Calculate(zel::MODULO, first, second, destination, constant));
}

int32_t ZEL_MulDiv(ImageRef first, ImageRef second, ImageRef destination, float constant) {
  return ZEL_ProcessError("ZEL_MulDiv", zel::MulDiv(first, second, destination, constant));
}
