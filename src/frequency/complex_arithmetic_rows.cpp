// Row routines of complex arithmetic: plain loops.
//
// A sum, difference, product or quotient of two 32-bit floats is the same whether it is rounded to
// 32 bits at once or to 64 bits first: what has one such operation is computed in 32 bits.
#include "frequency/complex_arithmetic_rows.h"

#include "orlune_ptk/frequency.h"

namespace zel::ZEL_LEVEL {
namespace {

// A complex number on its way, of which each step is rounded to 64 bits.
struct Wide {
  double real, imaginary;
};
ZEL_INLINE Wide Widened(ComplexValue v) {
  return {static_cast<double>(v.real), static_cast<double>(v.imaginary)};
}
ZEL_INLINE ComplexValue Rounded(double real, double imaginary) {
  return {static_cast<float>(real), static_cast<float>(imaginary)};
}

ZEL_INLINE ComplexValue Product(ComplexValue first, ComplexValue second) {
  const Wide a = Widened(first);
  const Wide b = Widened(second);
  return Rounded(a.real * b.real - a.imaginary * b.imaginary,
                 a.real * b.imaginary + a.imaginary * b.real);
}
// square: of the divisor's magnitude.
ZEL_INLINE ComplexValue Quotient(ComplexValue first, ComplexValue divisor, double square) {
  const Wide a = Widened(first);
  const Wide b = Widened(divisor);
  return Rounded((a.real * b.real + a.imaginary * b.imaginary) / square,
                 (a.imaginary * b.real - a.real * b.imaginary) / square);
}

template <class Number, class Rule>
ZEL_INLINE void WithNumbers(const PointViews& views, Rule rule) {
  CombineSamePlace<ComplexValue, Number, ComplexValue>(
      views, [rule](ComplexValue a, Number b) { return rule(a, static_cast<float>(b)); });
}

template <class Number>
void Add(const PointViews& views, const NoRule&) {
  WithNumbers<Number>(views, [](ComplexValue a, float b) {
    return ComplexValue{a.real + b, a.imaginary};
  });
}
template <class Number>
void Subtract(const PointViews& views, const NoRule&) {
  WithNumbers<Number>(views, [](ComplexValue a, float b) {
    return ComplexValue{a.real - b, a.imaginary};
  });
}
template <class Number>
void Multiply(const PointViews& views, const NoRule&) {
  WithNumbers<Number>(views, [](ComplexValue a, float b) {
    return ComplexValue{a.real * b, a.imaginary * b};
  });
}
template <class Number>
void Divide(const PointViews& views, const NoRule&) {
  WithNumbers<Number>(views, [](ComplexValue a, float b) {
    return b == 0.0f ? a : ComplexValue{a.real / b, a.imaginary / b};
  });
}

template <class Rule>
ZEL_INLINE void WithComplex(const PointViews& views, Rule rule) {
  CombineSamePlace<ComplexValue, ComplexValue, ComplexValue>(views, rule);
}
void AddComplex(const PointViews& views, const NoRule&) {
  WithComplex(views, [](ComplexValue a, ComplexValue b) {
    return ComplexValue{a.real + b.real, a.imaginary + b.imaginary};
  });
}
void SubtractComplex(const PointViews& views, const NoRule&) {
  WithComplex(views, [](ComplexValue a, ComplexValue b) {
    return ComplexValue{a.real - b.real, a.imaginary - b.imaginary};
  });
}
void MultiplyComplex(const PointViews& views, const NoRule&) {
  WithComplex(views, [](ComplexValue a, ComplexValue b) { return Product(a, b); });
}
void DivideComplex(const PointViews& views, const NoRule&) {
  WithComplex(views, [](ComplexValue a, ComplexValue b) {
    const Wide divisor = Widened(b);
    const double square = divisor.real * divisor.real + divisor.imaginary * divisor.imaginary;
    const ComplexValue quotient = Quotient(a, b, square);
    const bool isZero = b.real == 0.0f && b.imaginary == 0.0f;
    return ComplexValue{isZero ? a.real : quotient.real, isZero ? a.imaginary : quotient.imaginary};
  });
}

void AddConstant(const PointViews& views, const ComplexConstant& rule) {
  const float real = rule.real;
  const float imaginary = rule.imaginary;
  MapSamePlace<ComplexValue, ComplexValue>(views, [=](ComplexValue a) {
    return ComplexValue{a.real + real, a.imaginary + imaginary};
  });
}
void MultiplyConstant(const PointViews& views, const ComplexConstant& rule) {
  const ComplexValue constant{rule.real, rule.imaginary};
  MapSamePlace<ComplexValue, ComplexValue>(views,
                                           [=](ComplexValue a) { return Product(a, constant); });
}
void DivideConstant(const PointViews& views, const ComplexConstant& rule) {
  const ComplexValue constant{rule.real, rule.imaginary};
  const auto square = static_cast<double>(rule.square);
  MapSamePlace<ComplexValue, ComplexValue>(
      views, [=](ComplexValue a) { return Quotient(a, constant, square); });
}

void Conjugate(const PointViews& views, const NoRule&) {
  MapSamePlace<ComplexValue, ComplexValue>(views, [](ComplexValue a) {
    return ComplexValue{a.real, -a.imaginary};
  });
}

}  // namespace

extern const ComplexArithmeticRows complexArithmeticRows = {
    .add = {.u8 = &Add<uint8_t>, .i16 = &Add<int16_t>, .sgl = &Add<float>, .complex = &AddComplex},
    .subtract = {.u8 = &Subtract<uint8_t>,
                 .i16 = &Subtract<int16_t>,
                 .sgl = &Subtract<float>,
                 .complex = &SubtractComplex},
    .multiply = {.u8 = &Multiply<uint8_t>,
                 .i16 = &Multiply<int16_t>,
                 .sgl = &Multiply<float>,
                 .complex = &MultiplyComplex},
    .divide = {.u8 = &Divide<uint8_t>,
               .i16 = &Divide<int16_t>,
               .sgl = &Divide<float>,
               .complex = &DivideComplex},
    .addConstant = &AddConstant,
    .multiplyConstant = &MultiplyConstant,
    .divideConstant = &DivideConstant,
    .conjugate = &Conjugate,
};

}  // namespace zel::ZEL_LEVEL
