// Arithmetic of complex images with images and constants, and conjugation.
#include "frequency/complex_arithmetic_rows.h"
#include "frequency/spectra.h"
#include "orlune_ptk.h"

namespace zel {

PointRoutine<NoRule> ComplexPairRoutines::For(int32_t type) const {
  switch (type) {
    case IMAGE_U8:
      return u8;
    case IMAGE_I16:
      return i16;
    case IMAGE_SGL:
      return sgl;
    default:
      return complex;
  }
}

namespace {

struct ComplexOperands {
  PointViews views;  // without a second image it has no second
  bool hasSecond;
};

Status ComplexOperandsSettle(ImageRef source, ImageRef operand, ImageRef destination,
                             ComplexOperands* operands) {
  Image* first = nullptr;
  Status status = LookupOfTypes(source, &TypeIsComplex, STATUS_COMPLEX_EXPECTED, &first);
  Image* second = nullptr;
  if (status == STATUS_OK && operand != 0) {
    status = LookupOfTypes(operand, &TypeIsScalarOrComplex, STATUS_OPERAND_TYPE_DIFFERS, &second);
    if (status == STATUS_OK && (second->width != first->width || second->height != first->height)) {
      status = STATUS_SIZE_DIFFERS;
    }
  }
  if (status != STATUS_OK) return status;
  Image* to = nullptr;
  status = LookupOfTypes(destination == 0 ? source : destination, &TypeIsComplex,
                         STATUS_COMPLEX_EXPECTED, &to);
  if (status == STATUS_OK) status = ImageCopyInfo(*first, to);
  if (status == STATUS_OK && to != first) {
    status = ImageLayoutSize(to, first->width, first->height, true);
  }
  if (status != STATUS_OK) return status;
  operands->hasSecond = second != nullptr;
  operands->views = {.first = ViewOf(*first),
                     .second = second ? ViewOf(*second) : PixelView{},
                     .result = ViewOf(*to),
                     .mask = {}};
  return STATUS_OK;
}

bool IsZero(const ComplexValue& value) {
  return value.real == 0.0f && value.imaginary == 0.0f;
}

// What each operation does with a constant.
using ConstantOperation = void (*)(const PointViews& views, const ComplexValue& constant);

// Kept: with 0 not even another image is written.
void AddConstant(const PointViews& views, const ComplexValue& constant) {
  if (IsZero(constant)) return;
  PointWalk(views, complexArithmeticRows().addConstant,
            ComplexConstant{constant.real, constant.imaginary, 0});
}

void SubtractConstant(const PointViews& views, const ComplexValue& constant) {
  AddConstant(views, {-constant.real, -constant.imaginary});
}

void MultiplyConstant(const PointViews& views, const ComplexValue& constant) {
  PointWalk(views, complexArithmeticRows().multiplyConstant,
            ComplexConstant{constant.real, constant.imaginary, 0});
}

// The square of a small constant may be 0, and is divided by all the same.
void DivideByConstant(const PointViews& views, const ComplexValue& constant) {
  if (IsZero(constant)) {
    // A sum with -0 leaves every number as it is.
    PointWalk(views, complexArithmeticRows().addConstant, ComplexConstant{-0.0f, -0.0f, 0});
    return;
  }
  const auto real = static_cast<double>(constant.real);
  const auto imaginary = static_cast<double>(constant.imaginary);
  const auto square = static_cast<float>(real * real + imaginary * imaginary);
  PointWalk(views, complexArithmeticRows().divideConstant,
            ComplexConstant{constant.real, constant.imaginary, square});
}

Status Calculate(ComplexPairRoutines ComplexArithmeticRows::*pairs, ConstantOperation withConstant,
                 ImageRef source, ImageRef operand, ImageRef destination,
                 const ComplexValue& constant) {
  ComplexOperands operands{};
  const Status status = ComplexOperandsSettle(source, operand, destination, &operands);
  if (status != STATUS_OK) return status;
  const PointViews& views = operands.views;
  if (operands.hasSecond) {
    PointWalk(views, (complexArithmeticRows().*pairs).For(views.second.type), NoRule{});
  } else {
    withConstant(views, constant);
  }
  return STATUS_OK;
}

Status ComplexConjugate(ImageRef source, ImageRef destination) {
  Image* from = nullptr;
  Status status = LookupOfTypes(source, &TypeIsComplex, STATUS_COMPLEX_EXPECTED, &from);
  Image* to = nullptr;
  if (status == STATUS_OK) status = SettleDestination(from, destination, &to);
  if (status != STATUS_OK) return status;
  PointWalk({.first = ViewOf(*from), .second = {}, .result = ViewOf(*to), .mask = {}},
            complexArithmeticRows().conjugate, NoRule{});
  return STATUS_OK;
}

}  // namespace
}  // namespace zel

int32_t ZEL_ComplexAdd(ImageRef source, ImageRef operand, ImageRef destination, float constantReal,
                       float constantImaginary) {
  return ZEL_ProcessError(
      "ZEL_ComplexAdd", zel::Calculate(&zel::ComplexArithmeticRows::add, &zel::AddConstant, source,
                                       operand, destination, {constantReal, constantImaginary}));
}

int32_t ZEL_ComplexSubtract(ImageRef source, ImageRef operand, ImageRef destination,
                            float constantReal, float constantImaginary) {
  return ZEL_ProcessError(
      "ZEL_ComplexSubtract",
      zel::Calculate(&zel::ComplexArithmeticRows::subtract, &zel::SubtractConstant, source, operand,
                     destination, {constantReal, constantImaginary}));
}

int32_t ZEL_ComplexMultiply(ImageRef source, ImageRef operand, ImageRef destination,
                            float constantReal, float constantImaginary) {
  return ZEL_ProcessError(
      "ZEL_ComplexMultiply",
      zel::Calculate(&zel::ComplexArithmeticRows::multiply, &zel::MultiplyConstant, source, operand,
                     destination, {constantReal, constantImaginary}));
}

int32_t ZEL_ComplexDivide(ImageRef source, ImageRef operand, ImageRef destination,
                          float constantReal, float constantImaginary) {
  return ZEL_ProcessError(
      "ZEL_ComplexDivide",
      zel::Calculate(&zel::ComplexArithmeticRows::divide, &zel::DivideByConstant, source, operand,
                     destination, {constantReal, constantImaginary}));
}

int32_t ZEL_ComplexConjugate(ImageRef source, ImageRef destination) {
  return ZEL_ProcessError("ZEL_ComplexConjugate", zel::ComplexConjugate(source, destination));
}
