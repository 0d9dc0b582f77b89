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

// ---- magnitudes and phases, estimated for some pixels at once

constexpr int32_t ESTIMATED = 64;

// Of factors whose product may be rounded before the sum or not.
template <class Number>
ZEL_INLINE Number ProductSum(Number a, Number b, Number c) {
#if defined(FP_FAST_FMA) && defined(FP_FAST_FMAF)
  return std::fma(a, b, c);
#else
  return a * b + c;
#endif
}

// A phase is `degrees`, some quarters of a turn, and the arctangent of low / high, which lies
// between -1 and 1.
struct PhaseTerms {
  float low[ESTIMATED], high[ESTIMATED];
  float quarters[ESTIMATED], degrees[ESTIMATED];
};

ZEL_INLINE void PhaseTermsOf(const ComplexValue* from, PhaseTerms* terms) {
  // No float lies between the two.
  constexpr auto least = static_cast<float>(LEAST_REAL_PART);
  static_assert(static_cast<double>(least) > LEAST_REAL_PART);
  for (int32_t i = 0; i < ESTIMATED; i++) {
    const float real = from[i].real;
    const float imaginary = from[i].imaginary;
    const bool isUpright = std::fabs(real) < least;
    const bool isLeft = real < 0;
    const float across = std::fabs(real);
    const float up = std::fabs(imaginary);
    const bool isSteep = up > across;
    // Only to the right of the origin is there a phase of -0.
    const float minus = imaginary < 0 ? -1.0f : 1.0f;
    const float sign = isLeft ? minus : std::copysign(1.0f, imaginary);
    const float turn = isLeft ? -sign : sign;
    const float low = (isSteep ? across : up) * (isSteep ? -turn : turn);
    terms->low[i] = isUpright ? 0.0f : low;
    terms->high[i] = isUpright ? 1.0f : isSteep ? up : across;
    terms->quarters[i] = isSteep && !isUpright ? turn : 0.0f * turn;
    terms->degrees[i] = isUpright ? 90.0f * minus : isLeft ? 180.0f * sign : 0.0f * sign;
  }
}

// Nearer to the phase than 2^-43 of its size. The arctangent is a polynomial, fitted at the nodes
// that Chebyshev's are; its two halves are summed side by side.
ZEL_INLINE double PhaseOf(const PhaseTerms& terms, int32_t i) {
  constexpr double quarterTurn = 1.5707963267948966 * DEGREES;
  const double t = static_cast<double>(terms.low[i]) / static_cast<double>(terms.high[i]);
  const double u = t * t;
  const double v = u * u;
  double odd = ProductSum(-0.00010950133737292665 * DEGREES, v, -0.0042695010966784085 * DEGREES);
  odd = ProductSum(odd, v, -0.02279206378279654 * DEGREES);
  odd = ProductSum(odd, v, -0.047005235904944216 * DEGREES);
  odd = ProductSum(odd, v, -0.06613494495894422 * DEGREES);
  odd = ProductSum(odd, v, -0.0908950250900279 * DEGREES);
  odd = ProductSum(odd, v, -0.14285707246678706 * DEGREES);
  odd = ProductSum(odd, v, -0.33333333330931053 * DEGREES);
  double even = ProductSum(0.0009961348991062624 * DEGREES, v, 0.011594726016119614 * DEGREES);
  even = ProductSum(even, v, 0.0354478304883713 * DEGREES);
  even = ProductSum(even, v, 0.056826465091119466 * DEGREES);
  even = ProductSum(even, v, 0.07681984916045911 * DEGREES);
  even = ProductSum(even, v, 0.11110983774962185 * DEGREES);
  even = ProductSum(even, v, 0.19999999793953496 * DEGREES);
  even = ProductSum(even, v, 0.9999999999999531 * DEGREES);
  const double angle = t * ProductSum(odd, u, even);
  const double quarters = static_cast<double>(terms.quarters[i]);
  return static_cast<double>(terms.degrees[i]) + ProductSum(quarters, quarterTurn, angle);
}

constexpr double ESTIMATE_ERROR = 0x1p-42;

// False where rounding or truncation may fall on the other side than the stated value does.
template <class Pixel>
ZEL_INLINE bool PhasesEstimate(const ComplexValue* from, Pixel* to) {
  PhaseTerms terms;
  PhaseTermsOf(from, &terms);
  double phases[ESTIMATED];
  for (int32_t i = 0; i < ESTIMATED; i++) phases[i] = PhaseOf(terms, i);
  Pixel others[ESTIMATED];
  for (int32_t i = 0; i < ESTIMATED; i++) {
    to[i] = Stored<COMPLEX_PLANE_PHASE, Pixel>(phases[i] * (1.0 - ESTIMATE_ERROR));
  }
  for (int32_t i = 0; i < ESTIMATED; i++) {
    others[i] = Stored<COMPLEX_PLANE_PHASE, Pixel>(phases[i] * (1.0 + ESTIMATE_ERROR));
  }
  int32_t doubts = 0;
  for (int32_t i = 0; i < ESTIMATED; i++) {
    doubts |= NumberOf(to[i]) == NumberOf(others[i]) ? 0 : 1;
  }
  return doubts == 0;
}

#if defined(FP_FAST_FMAF)
// The root of a sum of squares in floats, and what its square misses of the sum, which tells
// whether the next float is nearer. False where that is too close to tell, also where squares leave
// the range of floats.
ZEL_INLINE bool MagnitudesEstimate(const ComplexValue* from, float* to) {
  constexpr float unit = 0x1p-23f;
  constexpr float least = 0x1p-40f;
  constexpr float margin = 0x1p-18f;
  // Below a power of two the next float is only half as far.
  constexpr float marginOfPower = 0.75f;
  int32_t doubts = 0;
  for (int32_t i = 0; i < ESTIMATED; i++) {
    const float real = from[i].real;
    const float imaginary = from[i].imaginary;
    const float first = real * real;
    const float second = imaginary * imaginary;
    const float sum = first + second;
    const float ofSecond = sum - first;
    const float lostOfSum = (first - (sum - ofSecond)) + (second - ofSecond);
    const float lost = std::fma(real, real, -first) + std::fma(imaginary, imaginary, -second);
    const float root = std::sqrt(sum);
    const float missing = std::fma(-root, root, sum) + (lost + lostOfSum);
    uint32_t bits = 0;
    std::memcpy(&bits, &root, sizeof(bits));
    const uint32_t binadeBits = bits & 0x7F800000;
    float binade = 0;
    std::memcpy(&binade, &binadeBits, sizeof(binade));
    const float half = root * (binade * unit);  // by which half of the last bit changes the square
    const float beyond = std::fabs(missing) - half;
    const float safe = half * (bits == binadeBits ? marginOfPower : margin);
    const int32_t isNear = std::fabs(beyond) >= safe ? 0 : 1;
    const float size = std::fabs(real) + std::fabs(imaginary);
    const int32_t isSmall = size < least ? (size > 0 ? 1 : 0) : 0;
    doubts |= isNear | isSmall;
    const uint32_t step = missing < 0 ? UINT32_MAX : 1;
    const uint32_t nearest = bits + (beyond > 0 ? step : 0);
    std::memcpy(to + i, &nearest, sizeof(nearest));
  }
  return doubts == 0;
}
#endif

template <int32_t plane, class Pixel>
ZEL_INLINE bool Estimate(const ComplexValue* from, Pixel* to) {
  if constexpr (plane == COMPLEX_PLANE_PHASE) {
    return PhasesEstimate(from, to);
  } else {
    return MagnitudesEstimate(from, to);
  }
}

// `some` pixels, up to ESTIMATED, of which all are computed where an estimate does not do.
template <int32_t plane, class Pixel>
ZEL_INLINE void ExtractSome(const ComplexValue* from, Pixel* to, int32_t some) {
  Pixel results[ESTIMATED];
  if (!Estimate<plane>(from, results)) {
    for (int32_t i = 0; i < some; i++) results[i] = Stored<plane, Pixel>(ValueOf<plane>(from[i]));
  }
  std::memcpy(to, results, static_cast<size_t>(some) * sizeof(Pixel));
}

template <int32_t plane, class Pixel>
void ExtractEstimated(const PointViews& views, const NoRule&) {
  const int32_t width = views.result.width;
  const int32_t blocks = width / ESTIMATED * ESTIMATED;
  for (int32_t y = 0; y < views.result.height; y++) {
    const auto* from = views.first.Row<const ComplexValue>(y);
    auto* to = views.result.Row<Pixel>(y);
    for (int32_t x = 0; x < blocks; x += ESTIMATED) ExtractSome<plane>(from + x, to + x, ESTIMATED);
    if (blocks == width) continue;
    ComplexValue rest[ESTIMATED] = {};
    std::memcpy(rest, from + blocks, static_cast<size_t>(width - blocks) * sizeof(ComplexValue));
    ExtractSome<plane>(rest, to + blocks, width - blocks);
  }
}

#if defined(FP_FAST_FMAF)
constexpr PointRoutine<NoRule> MAGNITUDES = &ExtractEstimated<COMPLEX_PLANE_MAGNITUDE, float>;
#else
constexpr PointRoutine<NoRule> MAGNITUDES = &Extract<COMPLEX_PLANE_MAGNITUDE, float>;
#endif

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
                {&Extract<2, uint8_t>, &Extract<2, int16_t>, MAGNITUDES, &Extract<2, ComplexValue>},
                {&ExtractEstimated<3, uint8_t>, &ExtractEstimated<3, int16_t>,
                 &ExtractEstimated<3, float>, &ExtractEstimated<3, ComplexValue>}},
    .replace = {{&Replace<0, uint8_t>, &Replace<0, int16_t>, &Replace<0, float>,
                 &Replace<0, ComplexValue>},
                {&Replace<1, uint8_t>, &Replace<1, int16_t>, &Replace<1, float>,
                 &Replace<1, ComplexValue>}},
};

}  // namespace zel::ZEL_LEVEL
