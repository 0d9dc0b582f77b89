// Row routines of complex planes: plain loops. Values come out in 64 bits and are rounded or
// truncated once, where they are stored.
#include "frequency/complex_planes_rows.h"

#include <cmath>
#include <type_traits>

namespace zel::ZEL_LEVEL {
namespace {

constexpr double DEGREES = 57.29577867;    // of an angle of 1
constexpr double LEAST_REAL_PART = 1e-10;  // below it an angle is a right one

ZEL_INLINE double Magnitude(double real, double imaginary) {
  return std::sqrt(real * real + imaginary * imaginary);
}

ZEL_INLINE double Phase(double real, double imaginary) {
  if (std::fabs(real) < LEAST_REAL_PART) return imaginary < 0 ? -90.0 : 90.0;
  const double angle = std::atan(imaginary / real) * DEGREES;
  if (!(real < 0)) return angle;
  return imaginary < 0 ? angle - 180.0 : angle + 180.0;
}

template <int32_t plane>
ZEL_INLINE double ValueOf(ComplexValue pixel) {
  const auto real = static_cast<double>(pixel.real);
  const auto imaginary = static_cast<double>(pixel.imaginary);
  if constexpr (plane == COMPLEX_PLANE_REAL) {
    return real;
  } else if constexpr (plane == COMPLEX_PLANE_IMAGINARY) {
    return imaginary;
  } else if constexpr (plane == COMPLEX_PLANE_MAGNITUDE) {
    return Magnitude(real, imaginary);
  } else {
    return Phase(real, imaginary);
  }
}

template <int32_t plane, class Pixel>
ZEL_INLINE Pixel Stored(double value) {
  if constexpr (std::is_same_v<Pixel, uint8_t>) {
    const double size = plane == COMPLEX_PLANE_PHASE ? std::fabs(value) : value;
    return static_cast<uint8_t>(CutLimited(size, 0, UINT8_MAX));
  } else if constexpr (std::is_same_v<Pixel, int16_t>) {
    return CutLow<int16_t>(value);
  } else if constexpr (std::is_same_v<Pixel, float>) {
    return static_cast<float>(value);
  } else {
    return {static_cast<float>(value), 0.0f};
  }
}

template <int32_t plane, class Pixel>
void Extract(const PointViews& views, const NoRule&) {
  MapSamePlace<ComplexValue, Pixel>(
      views, [](ComplexValue pixel) { return Stored<plane, Pixel>(ValueOf<plane>(pixel)); });
}

ZEL_INLINE float NumberOf(ComplexValue pixel) {
  return pixel.real;
}
template <class Number>
ZEL_INLINE float NumberOf(Number number) {
  return static_cast<float>(number);
}

// The pixels of the result are the second operand too.
template <int32_t part, class Pixel>
void Replace(const PointViews& views, const NoRule&) {
  CombineSamePlace<Pixel, ComplexValue, ComplexValue>(views, [](Pixel plane, ComplexValue pixel) {
    const float number = NumberOf(plane);
    return part == COMPLEX_PLANE_REAL ? ComplexValue{number, pixel.imaginary}
                                      : ComplexValue{pixel.real, number};
  });
}

}  // namespace

extern const ComplexPlaneRows complexPlaneRows = {
    .extract = {{&Extract<0, uint8_t>, &Extract<0, int16_t>, &Extract<0, float>,
                 &Extract<0, ComplexValue>},
                {&Extract<1, uint8_t>, &Extract<1, int16_t>, &Extract<1, float>,
                 &Extract<1, ComplexValue>},
                {&Extract<2, uint8_t>, &Extract<2, int16_t>, &Extract<2, float>,
                 &Extract<2, ComplexValue>},
                {&Extract<3, uint8_t>, &Extract<3, int16_t>, &Extract<3, float>,
                 &Extract<3, ComplexValue>}},
    .replace = {{&Replace<0, uint8_t>, &Replace<0, int16_t>, &Replace<0, float>,
                 &Replace<0, ComplexValue>},
                {&Replace<1, uint8_t>, &Replace<1, int16_t>, &Replace<1, float>,
                 &Replace<1, ComplexValue>}},
};

}  // namespace zel::ZEL_LEVEL
