// Addition, subtraction, multiplication, division, modulo, and multiplication with division.
#include <algorithm>
#include <cmath>

#include "point/arithmetic_rows.h"
#include "point/operands.h"

namespace zel {
namespace {

void AddConstantRun(int32_t type, int64_t constant, Plane* plane) {
  plane->constant = SumWithConstant(type, constant);
  PlaneRun(arithmeticRows().addConstant[type], plane);
}

// NaN counts as 0, as it does when a result is cut.
double LimitedFactor(double factor, double limit) {
  return std::isnan(factor) ? 0.0 : std::clamp(factor, -limit, limit);
}

// Grouped columns of U8 take the cut constant, read as an unsigned number of at most 255; the
// remaining ones its absolute value as it is.
void MultiplyConstantRun(const RowOperation& operation, Plane* plane) {
  const ArithmeticRows& rows = arithmeticRows();
  const double factor = LimitedFactor(static_cast<double>(operation.constantFloat), SCALE_LIMIT);
  if (operation.type1 == IMAGE_I16) {
    plane->constant.factor = factor;
    PlaneRun(rows.scale[IMAGE_I16], plane);
    return;
  }
  plane->constant.factor = std::fabs(factor);
  plane->constant.value =
      static_cast<int32_t>(std::min(static_cast<uint32_t>(operation.constantInt), 255u));
  const int64_t grouped = GroupedColumns(*plane);
  Plane groups = PlaneColumns(*plane, 0, grouped);
  Plane rest = PlaneColumns(*plane, grouped, plane->width);
  PlaneRun(rows.multiplyByte, &groups);
  if (rest.width < GROUP_COLUMNS) {
    PlaneRun(rows.scale[IMAGE_U8], &rest);
  } else {
    PlaneRunByTable(rows.scale[IMAGE_U8], rest);
  }
}

// Division by a constant is a product with a reciprocal that is a little too large: whole quotients
// come out no smaller than they are, and no other quotient of a 16-bit pixel and a 24-bit divisor
// is so near to the next whole number that it would reach it.
void DivideConstantRun(const RowOperation& operation, Plane* plane) {
  const ArithmeticRows& rows = arithmeticRows();
  const auto constant = static_cast<double>(operation.constantFloat);
  const double divisor = constant == 0.0 ? 1.0 : constant;
  const double reciprocal = LimitedFactor((1.0 + 1.0 / 35184372088832.0) / divisor, SCALE_LIMIT);
  if (operation.type1 == IMAGE_I16) {
    plane->constant.factor = reciprocal;
    PlaneRun(rows.scale[IMAGE_I16], plane);
  } else {
    plane->constant.factor = std::fabs(reciprocal);
    PlaneRunByTable(rows.scale[IMAGE_U8], *plane);
  }
}

void ModuloConstantRun(const RowOperation& operation, Plane* plane) {
  const ArithmeticRows& rows = arithmeticRows();
  const int64_t constant = operation.constantInt;
  const int64_t divisor = constant < 0 ? -constant : constant;
  if (operation.type1 == IMAGE_I16) {
    // The sign of the divisor doesn't matter; one above every pixel leaves the pixels.
    plane->constant.value = Clamped(divisor, 1, INT16_MAX + 2);
    PlaneRun(rows.moduloConstant[IMAGE_I16], plane);
  } else {
    plane->constant.value = std::max(static_cast<int32_t>(divisor & 0xFF), 1);
    PlaneRunByTable(rows.moduloConstant[IMAGE_U8], *plane);
  }
}

void FloatConstantRun(const RowOperation& operation, ArithmeticOperation arithmetic, Plane* plane) {
  const float constant = operation.constantFloat;
  const bool divides = arithmetic == ARITHMETIC_DIVIDE || arithmetic == ARITHMETIC_MODULO;
  plane->constant.real = divides && constant == 0.0f ? 1.0f : constant;
  PlaneRun(arithmeticRows().floatConstant[arithmetic], plane);
}

void ConstantRun(const RowOperation& operation, ArithmeticOperation arithmetic, Plane* plane) {
  if (operation.type1 == IMAGE_SGL) {
    FloatConstantRun(operation, arithmetic, plane);
    return;
  }
  switch (arithmetic) {
    case ARITHMETIC_ADD:
      AddConstantRun(operation.type1, operation.constantInt, plane);
      break;
    case ARITHMETIC_SUBTRACT:
      AddConstantRun(operation.type1, -int64_t{operation.constantInt}, plane);
      break;
    case ARITHMETIC_MULTIPLY:
      MultiplyConstantRun(operation, plane);
      break;
    case ARITHMETIC_DIVIDE:
      DivideConstantRun(operation, plane);
      break;
    default:
      ModuloConstantRun(operation, plane);
      break;
  }
}

void MulDivConstant(const RowOperation& operation, PlaneConstant* constant) {
  const auto factor = static_cast<double>(operation.constantFloat);
  switch (operation.type1) {
    case IMAGE_U8:
      constant->factor = LimitedFactor(std::fabs(factor), FACTOR_LIMIT_U8);
      break;
    case IMAGE_I16:
      constant->factor = LimitedFactor(factor, FACTOR_LIMIT_I16);
      constant->value = operation.constantInt;
      break;
    default:
      constant->factor = factor;
      break;
  }
}

// There is no form of it without a second image.
void MulDivKernel(ImageRef first, ImageRef second, ImageRef destination, const float* constant,
                  Status* status) {
  if (second != 0) {
    OperatorKernel(first, second, destination, OPERATION_MULDIV, false, constant,
                   &ArithmeticDispatch, status);
    return;
  }
  bool swapAllowed = false;
  bool isImage = false;
  bool skip = false;
  OperandPrepare(first, second, destination, &swapAllowed, &isImage, &skip, status);
  if (*status == STATUS_OK) *status = STATUS_SECOND_IMAGE_MISSING;
}

}  // namespace

void ArithmeticDispatch(const RowOperation& operation, Status* status) {
  if (operation.code < OPERATION_ADD || operation.code > OPERATION_MULDIV) {
    *status = STATUS_INTERNAL;
    return;
  }
  const auto arithmetic = static_cast<ArithmeticOperation>((operation.code - OPERATION_ADD) / 2);
  Plane plane{};
  if (!ScalarPlaneOf(operation, &plane, status)) return;

  if (OperationHasConstant(operation.code)) {
    ConstantRun(operation, arithmetic, &plane);
    return;
  }
  if (arithmetic == ARITHMETIC_MULDIV) MulDivConstant(operation, &plane.constant);
  const int32_t pair = ScalarPair(operation.type1, operation.type2);
  PlaneRun(arithmeticRows().images[arithmetic].byPair[pair], &plane);
}

}  // namespace zel

int32_t ZEL_Add(ImageRef first, ImageRef second, ImageRef destination, float constant) {
  zel::Status status = zel::STATUS_OK;
  zel::OperatorKernel(first, second, destination, zel::OPERATION_ADD, true, &constant,
                      &zel::ArithmeticDispatch, &status);
  return ZEL_ProcessError("ZEL_Add", status);
}

// The misspelt name is what programs in the field look for.
int32_t ZEL_Subtract(ImageRef first, ImageRef second, ImageRef destination, float constant) {
  zel::Status status = zel::STATUS_OK;
  zel::OperatorKernel(first, second, destination, zel::OPERATION_SUBTRACT, false, &constant,
                      &zel::ArithmeticDispatch, &status);
  return ZEL_ProcessError("ZEL_Substract", status);
}

int32_t ZEL_Multiply(ImageRef first, ImageRef second, ImageRef destination, float constant) {
  zel::Status status = zel::STATUS_OK;
  zel::OperatorKernel(first, second, destination, zel::OPERATION_MULTIPLY, true, &constant,
                      &zel::ArithmeticDispatch, &status);
  return ZEL_ProcessError("ZEL_Multiply", status);
}

int32_t ZEL_Divide(ImageRef first, ImageRef second, ImageRef destination, float constant) {
  zel::Status status = zel::STATUS_OK;
  zel::OperatorKernel(first, second, destination, zel::OPERATION_DIVIDE, false, &constant,
                      &zel::ArithmeticDispatch, &status);
  return ZEL_ProcessError("ZEL_Divide", status);
}

int32_t ZEL_Modulo(ImageRef first, ImageRef second, ImageRef destination, float constant) {
  zel::Status status = zel::STATUS_OK;
  zel::OperatorKernel(first, second, destination, zel::OPERATION_MODULO, false, &constant,
                      &zel::ArithmeticDispatch, &status);
  return ZEL_ProcessError("ZEL_Modulo", status);
}

int32_t ZEL_MulDiv(ImageRef first, ImageRef second, ImageRef destination, float constant) {
  zel::Status status = zel::STATUS_OK;
  zel::MulDivKernel(first, second, destination, &constant, &status);
  return ZEL_ProcessError("ZEL_MulDiv", status);
}
