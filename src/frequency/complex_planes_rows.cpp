// Row routines of complex planes: plain loops. Values come out in 64 bits and are rounded or
// truncated once, where they are stored.
#include "frequency/complex_planes_rows.h"

#include <cmath>
#include <cstring>
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

// ---- phases, estimated for some pixels at once

// Nearer to the phase than 2^-48 of its size. The arctangent of a quotient from 0 to tan(pi / 8) is
// a polynomial, fitted at the nodes that Chebyshev's are; others are turned into that range first.
ZEL_INLINE double PhaseEstimate(double real, double imaginary) {
  constexpr double eighth = 0.41421356237309503;  // tan(pi / 8)
  constexpr double quarterTurn = 1.5707963267948966;
  const double across = std::fabs(real);
  const double up = std::fabs(imaginary);
  const double low = up > across ? across : up;
  const double high = up > across ? up : across;
  const bool isWide = low > eighth * high;
  const double t = (isWide ? low - high : low) / (isWide ? low + high : high);
  const double u = t * t;
  double slope = -0.025316479573776474;
  slope = slope * u + 0.05024762118940128;
  slope = slope * u - 0.0650598296717084;
  slope = slope * u + 0.07673535428183285;
  slope = slope * u - 0.09089529956562307;
  slope = slope * u + 0.11111048853751296;
  slope = slope * u - 0.14285712661684793;
  slope = slope * u + 0.19999999978392663;
  slope = slope * u - 0.3333333333322143;
  slope = slope * u + 0.999999999999999;
  const double flat = (isWide ? quarterTurn / 2 : 0.0) + t * slope;
  const double angle = (up > across ? quarterTurn - flat : flat) * DEGREES;
  const double left = imaginary < 0 ? angle - 180.0 : 180.0 - angle;
  const double phase = real < 0 ? left : std::copysign(angle, imaginary);
  const double right = imaginary < 0 ? -90.0 : 90.0;
  return across < LEAST_REAL_PART ? right : phase;
}

constexpr double ESTIMATE_ERROR = 0x1p-44;
constexpr int32_t ESTIMATED = 64;

// Where rounding or truncation may fall on the other side than the stated value does, all are
// computed.
template <class Pixel>
ZEL_INLINE void PhasesEstimate(const ComplexValue* from, Pixel* to) {
  double phases[ESTIMATED];
  for (int32_t i = 0; i < ESTIMATED; i++) {
    phases[i] =
        PhaseEstimate(static_cast<double>(from[i].real), static_cast<double>(from[i].imaginary));
  }
  Pixel results[ESTIMATED];
  Pixel others[ESTIMATED];
  for (int32_t i = 0; i < ESTIMATED; i++) {
    results[i] = Stored<COMPLEX_PLANE_PHASE, Pixel>(phases[i] * (1.0 - ESTIMATE_ERROR));
  }
  for (int32_t i = 0; i < ESTIMATED; i++) {
    others[i] = Stored<COMPLEX_PLANE_PHASE, Pixel>(phases[i] * (1.0 + ESTIMATE_ERROR));
  }
  int32_t doubts = 0;
  for (int32_t i = 0; i < ESTIMATED; i++) {
    doubts |= NumberOf(results[i]) == NumberOf(others[i]) ? 0 : 1;
  }
  if (doubts != 0) {
    for (int32_t i = 0; i < ESTIMATED; i++) {
      results[i] = Stored<COMPLEX_PLANE_PHASE, Pixel>(ValueOf<COMPLEX_PLANE_PHASE>(from[i]));
    }
  }
  std::memcpy(to, results, sizeof(results));
}

template <class Pixel>
void ExtractPhase(const PointViews& views, const NoRule&) {
  for (int32_t y = 0; y < views.result.height; y++) {
    const auto* from = views.first.Row<const ComplexValue>(y);
    auto* to = views.result.Row<Pixel>(y);
    const int32_t width = views.result.width;
    int32_t x = 0;
    for (; x + ESTIMATED <= width; x += ESTIMATED) PhasesEstimate(from + x, to + x);
    for (; x < width; x++) {
      to[x] = Stored<COMPLEX_PLANE_PHASE, Pixel>(ValueOf<COMPLEX_PLANE_PHASE>(from[x]));
    }
  }
}

// ---- parts put back

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
                {&ExtractPhase<uint8_t>, &ExtractPhase<int16_t>, &ExtractPhase<float>,
                 &ExtractPhase<ComplexValue>}},
    .replace = {{&Replace<0, uint8_t>, &Replace<0, int16_t>, &Replace<0, float>,
                 &Replace<0, ComplexValue>},
                {&Replace<1, uint8_t>, &Replace<1, int16_t>, &Replace<1, float>,
                 &Replace<1, ComplexValue>}},
};

}  // namespace zel::ZEL_LEVEL
