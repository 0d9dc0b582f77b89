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
void Constant(const PointViews& views, const OperatorConstant& constant) {
  const auto b = static_cast<T>(constant.value);
  MapSamePlace<T, T>(views, [=](T a) { return Rule()(a, b); });
}

template <class T>
void KeepRange(const PointViews& views, const OperatorConstant& constant) {
  const auto low = static_cast<T>(constant.low);
  const auto high = static_cast<T>(constant.high);
  MapSamePlace<T, T>(views, [=](T a) {
    const T raised = a < low ? T{0} : a;
    return a > high ? T{0} : raised;
  });
}

template <class T>
void MeanConstant(const PointViews& views, const OperatorConstant& constant) {
  const auto low = static_cast<T>(constant.low);
  const auto high = static_cast<T>(constant.high);
  const auto value = static_cast<T>(static_cast<uint32_t>(constant.value));
  const auto odd = static_cast<T>(constant.odd);
  MapSamePlace<T, T>(views, [=](T a) {
    const auto half = static_cast<T>(static_cast<T>(a >> 1) + static_cast<T>(a & odd));
    const T raised = half > low ? half : low;
    const T limited = raised < high ? raised : high;
    return static_cast<T>(static_cast<uint32_t>(limited) + static_cast<uint32_t>(value));
  });
}

template <class Rule>
constexpr CompareRoutines ROUTINES = {
    .images = IMAGES<Rule>,
    .constant = {&Constant<uint8_t, Rule>, &Constant<int16_t, Rule>},
    .floatConstant = &FloatConstant<Rule>,
};

// Integers are compared with a constant by the range of pixels that are kept.
template <class Rule>
constexpr CompareRoutines ORDERED = {
    .images = IMAGES<Rule>,
    .constant = {},
    .floatConstant = &FloatConstant<Rule>,
};

}  // namespace

extern const CompareRows compareRows = {
    .mean = ROUTINES<Mean>,
    .minimum = ROUTINES<Minimum>,
    .maximum = ROUTINES<Maximum>,
    .keepNotBelow = ORDERED<KeepNotBelow>,
    .keepAbove = ORDERED<KeepAbove>,
    .keepDifferent = ROUTINES<KeepDifferent>,
    .keepBelow = ORDERED<KeepBelow>,
    .keepNotAbove = ORDERED<KeepNotAbove>,
    .halfOfSum = &FloatConstant<HalfOfSum>,
    .keepRange = {&KeepRange<uint8_t>, &KeepRange<int16_t>},
    .meanConstant = {&MeanConstant<uint8_t>, &MeanConstant<int16_t>},
};

}  // namespace zel::ZEL_LEVEL
