// Row routines of mean, minimum, maximum and compare-and-keep: the rule for one pixel of each, and
// their table.
#include "point/compare_rows.h"

#include <cfloat>
#include <cmath>
#include <cstdint>

#include "point/pair_rows.h"

namespace zel::ZEL_LEVEL {
namespace {

// Both halves added without the bit that could carry out of the type; rounds down.
struct Mean {
  template <class T>
  ZEL_INLINE T operator()(T a, T b) const {
    return static_cast<T>((a & b) + static_cast<T>(static_cast<T>(a ^ b) >> 1));
  }
  // Half of the sum, rounded once: a sum too small for its half to be a normal number is exact, and
  // halves of larger numbers are exact. Operands whose sum is beyond the type are halved before.
  ZEL_INLINE float operator()(float a, float b) const {
    const float sum = a + b;
    const float half = sum * 0.5f;
    const float ofHalves = a * 0.5f + b * 0.5f;
    return std::fabs(sum) <= FLT_MAX ? half : ofHalves;
  }
};

struct HalfOfSum {
  ZEL_INLINE float operator()(float a, float b) const { return (a + b) * 0.5f; }
};

// The first operand stays where the two compare equal or not at all.
struct Minimum {
  template <class T>
  ZEL_INLINE T operator()(T a, T b) const {
    return b < a ? b : a;
  }
};

struct Maximum {
  template <class T>
  ZEL_INLINE T operator()(T a, T b) const {
    return b > a ? b : a;
  }
};

// Each is stated by the test that clears, so that a NaN keeps the pixel.
struct KeepNotBelow {
  template <class T>
  ZEL_INLINE T operator()(T a, T b) const {
    return a < b ? T{0} : a;
  }
};

struct KeepAbove {
  template <class T>
  ZEL_INLINE T operator()(T a, T b) const {
    return a <= b ? T{0} : a;
  }
};

struct KeepDifferent {
  template <class T>
  ZEL_INLINE T operator()(T a, T b) const {
    return a == b ? T{0} : a;
  }
};

struct KeepBelow {
  template <class T>
  ZEL_INLINE T operator()(T a, T b) const {
    return a >= b ? T{0} : a;
  }
};

struct KeepNotAbove {
  template <class T>
  ZEL_INLINE T operator()(T a, T b) const {
    return a > b ? T{0} : a;
  }
};

template <class T, class Rule>
void Constant(const Plane& plane) {
  const auto b = static_cast<T>(plane.constant.value);
  ForPixels<T, T>(plane, [=](T a) { return Rule()(a, b); });
}

template <class T>
void KeepRange(const Plane& plane) {
  const auto low = static_cast<T>(plane.constant.low);
  const auto high = static_cast<T>(plane.constant.high);
  ForPixels<T, T>(plane, [=](T a) {
    const T raised = a < low ? T{0} : a;
    return a > high ? T{0} : raised;
  });
}

template <class T>
void MeanConstant(const Plane& plane) {
  const auto low = static_cast<T>(plane.constant.low);
  const auto high = static_cast<T>(plane.constant.high);
  const auto value = static_cast<T>(static_cast<uint32_t>(plane.constant.value));
  const auto odd = static_cast<T>(plane.constant.odd);
  ForPixels<T, T>(plane, [=](T a) {
    const auto half = static_cast<T>(static_cast<T>(a >> 1) + static_cast<T>(a & odd));
    const T raised = half > low ? half : low;
    const T limited = raised < high ? raised : high;
    return static_cast<T>(static_cast<uint32_t>(limited) + static_cast<uint32_t>(value));
  });
}

}  // namespace

extern const CompareRows compareRows = {
    {IMAGES<Mean>, IMAGES<Minimum>, IMAGES<Maximum>, IMAGES<KeepNotBelow>, IMAGES<KeepAbove>,
     IMAGES<KeepDifferent>, IMAGES<KeepBelow>, IMAGES<KeepNotAbove>},
    {
        {&Constant<uint8_t, Mean>, &Constant<int16_t, Mean>, &FloatConstant<Mean>},
        {&Constant<uint8_t, Minimum>, &Constant<int16_t, Minimum>, &FloatConstant<Minimum>},
        {&Constant<uint8_t, Maximum>, &Constant<int16_t, Maximum>, &FloatConstant<Maximum>},
        {nullptr, nullptr, &FloatConstant<KeepNotBelow>},
        {nullptr, nullptr, &FloatConstant<KeepAbove>},
        {&Constant<uint8_t, KeepDifferent>, &Constant<int16_t, KeepDifferent>,
         &FloatConstant<KeepDifferent>},
        {nullptr, nullptr, &FloatConstant<KeepBelow>},
        {nullptr, nullptr, &FloatConstant<KeepNotAbove>},
    },
    &FloatConstant<HalfOfSum>,
    {&KeepRange<uint8_t>, &KeepRange<int16_t>},
    {&MeanConstant<uint8_t>, &MeanConstant<int16_t>},
};

}  // namespace zel::ZEL_LEVEL
