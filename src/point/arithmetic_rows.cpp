// Row routines of arithmetic: the rule for one pixel of each operation, and their table.
#include "point/arithmetic_rows.h"

#include <cmath>
#include <cstdint>
#include <type_traits>

#include "engine/vectors.h"
#include "point/pair_rows.h"

namespace zel::ZEL_LEVEL {
namespace {

// Saturating sums are written as "limit the first operand, then add", which needs no wider type:
// vectors of 8 and 16 bits stay vectors of 8 and 16 bits.

ZEL_INLINE int16_t Wrapped16(int32_t value) {
  return static_cast<int16_t>(static_cast<uint16_t>(value));
}

template <class T>
ZEL_INLINE T Smaller(T a, T b) {
  return a < b ? a : b;
}

template <class T>
ZEL_INLINE T Larger(T a, T b) {
  return a > b ? a : b;
}

// Truncated, then limited. The value has to fit 32 bits.
template <class T>
ZEL_INLINE T TruncateTo(double value) {
  constexpr IntegerLimits limits = LIMITS_OF<T>;
  return static_cast<T>(Smaller(Larger(static_cast<int32_t>(value), limits.low), limits.high));
}

struct Add {
  ZEL_INLINE uint8_t operator()(uint8_t a, uint8_t b) const {
    const auto most = static_cast<uint8_t>(255 - b);
    return static_cast<uint8_t>(Smaller(a, most) + b);
  }
  ZEL_INLINE int16_t operator()(int16_t a, int16_t b) const {
    const auto least = static_cast<int16_t>(INT16_MIN - Smaller<int16_t>(a, 0));
    const auto most = static_cast<int16_t>(INT16_MAX - Larger<int16_t>(a, 0));
    return static_cast<int16_t>(a + Smaller(Larger(b, least), most));
  }
  ZEL_INLINE float operator()(float a, float b) const { return a + b; }
};

struct Subtract {
  ZEL_INLINE uint8_t operator()(uint8_t a, uint8_t b) const {
    return static_cast<uint8_t>(Larger(a, b) - b);
  }
  ZEL_INLINE int16_t operator()(int16_t a, int16_t b) const {
    const auto least = static_cast<int16_t>(Larger<int16_t>(a, -1) - INT16_MAX);
    const auto most = static_cast<int16_t>(Smaller<int16_t>(a, -1) - INT16_MIN);
    return static_cast<int16_t>(a - Smaller(Larger(b, least), most));
  }
  ZEL_INLINE float operator()(float a, float b) const { return a - b; }
};

struct Multiply {
  ZEL_INLINE uint8_t operator()(uint8_t a, uint8_t b) const {
    const auto product = static_cast<uint16_t>(static_cast<uint16_t>(a) * b);
    return static_cast<uint8_t>(Smaller<uint16_t>(product, 255));
  }
  ZEL_INLINE int16_t operator()(int16_t a, int16_t b) const {
    // A product fits when its high half is nothing but copies of the low half's sign.
    const int32_t product = int32_t{a} * b;
    const int16_t low = Wrapped16(product);
    const auto high = static_cast<int16_t>(product >> 16);
    const auto limit = static_cast<int16_t>((high >> 15) ^ INT16_MAX);
    return high == static_cast<int16_t>(low >> 15) ? low : limit;
  }
  ZEL_INLINE float operator()(float a, float b) const { return a * b; }
};

// A divisor of 0 leaves the first operand: it divides as 1. Quotients of 8 and 16 bits in
// single precision, truncated, are those of integers.
struct Divide {
  template <class T>
  ZEL_INLINE int32_t Quotient(T a, T b) const {
    const auto divisor = static_cast<float>(b == 0 ? T{1} : b);
    return static_cast<int32_t>(static_cast<float>(a) / divisor);
  }
  ZEL_INLINE uint8_t operator()(uint8_t a, uint8_t b) const {
    return static_cast<uint8_t>(Quotient(a, b));
  }
  ZEL_INLINE int16_t operator()(int16_t a, int16_t b) const {
    return static_cast<int16_t>(Smaller<int32_t>(Quotient(a, b), INT16_MAX));
  }
  ZEL_INLINE float operator()(float a, float b) const { return a / (b == 0.0f ? 1.0f : b); }
};

// With a divisor of 0 the quotient doesn't matter, as it is multiplied by 0.
struct Modulo {
  template <class T>
  ZEL_INLINE T operator()(T a, T b) const {
    return static_cast<T>(a - Divide().Quotient(a, b) * b);
  }
  ZEL_INLINE float operator()(float a, float b) const {
    const double dividend = static_cast<double>(a);
    const double divisor = static_cast<double>(b);
    const double rest = dividend - std::trunc(dividend / divisor) * divisor;
    return b == 0.0f ? a : static_cast<float>(rest);
  }
};

// first x factor / second, truncated and limited. The product is exact in 64-bit floats, and a
// quotient below a whole number is never rounded up to it, so truncating the product first changes
// nothing.
// Products beyond 16 bits give 255 whatever they are divided by.
void MulDivBytes(const PointViews& views, const OperatorConstant& constant) {
  const double factor = constant.factor;
  CombineSamePlace<uint8_t, uint8_t, uint8_t>(views, [=](uint8_t a, uint8_t b) {
    const auto product = static_cast<int32_t>(static_cast<double>(a) * factor);
    const auto dividend = static_cast<float>(Smaller(product, UINT16_MAX));
    const auto quotient = static_cast<int32_t>(dividend / static_cast<float>(b == 0 ? 1 : b));
    const auto limited = static_cast<uint8_t>(Smaller(quotient, UINT8_MAX));
    return b == 0 ? a : limited;
  });
}

// The same by sizes and signs. A quotient within the limit is at most one off in single precision,
// which its rest tells.
template <class Product>
ZEL_INLINE void DivideProducts(const PointViews& views, const OperatorConstant& constant,
                               Product product) {
  const int32_t factorSign = constant.factor < 0.0 ? -1 : 0;
  CombineSamePlace<int16_t, int16_t, int16_t>(views, [=](int16_t a, int16_t b) {
    const int32_t dividend = product(a < 0 ? -a : a);
    const int32_t size = b < 0 ? -b : b;
    const int32_t divisor = b == 0 ? 1 : size;
    auto quotient =
        static_cast<int32_t>(static_cast<float>(dividend) / static_cast<float>(divisor));
    const int32_t rest = dividend - quotient * divisor;
    quotient += static_cast<int32_t>(rest >= divisor);
    quotient -= static_cast<int32_t>(rest < 0);
    const int32_t sign = (a ^ b ^ factorSign) >> 31;
    const int32_t limited = Smaller(quotient, INT16_MAX - sign);
    const int16_t result = Wrapped16((limited ^ sign) - sign);
    return b == 0 ? a : result;
  });
}

// Products from here on give the limit of a word whatever word they are divided by.
constexpr double PRODUCT_LIMIT = 0x1p30;

// The 24 bits of the factor in two halves, whose products with a pixel fit 32 bits; truncating the
// lower product to the unit of the upper one first changes nothing.
void MulDivWords(const PointViews& views, const OperatorConstant& constant) {
  constexpr int32_t factorBits = 24;
  constexpr int32_t halfBits = 12;
  const double factor = std::fabs(constant.factor);
  int32_t exponent = 0;
  const auto mantissa = static_cast<int32_t>(std::ldexp(std::frexp(factor, &exponent), factorBits));
  if (exponent <= halfBits) {
    const int32_t upper = mantissa >> halfBits;
    const int32_t lower = mantissa & ((1 << halfBits) - 1);
    const int32_t shift = Smaller(halfBits - exponent, 31);
    DivideProducts(views, constant,
                   [=](int32_t a) { return (a * upper + ((a * lower) >> halfBits)) >> shift; });
  } else {
    DivideProducts(views, constant, [=](int32_t a) {
      return static_cast<int32_t>(Smaller(a * factor, PRODUCT_LIMIT));
    });
  }
}

// The one integer case: the low 16 bits of the quotient, without saturation. Products stay below
// 2^47, so 64-bit floats hold them and their truncated quotients exactly.
void MulDivWordsByBytes(const PointViews& views, const OperatorConstant& constant) {
  const auto factor = static_cast<double>(constant.value);
  CombineSamePlace<int16_t, uint8_t, int16_t>(views, [=](int16_t a, uint8_t b) {
    const double divisor = b == 0 ? 1.0 : static_cast<double>(b);
    const double quotient = std::trunc(static_cast<double>(a) * factor / divisor);
    const double above = std::floor(quotient * (1.0 / 65536.0)) * 65536.0;
    const int16_t low = Wrapped16(static_cast<int32_t>(quotient - above));
    return b == 0 ? a : low;
  });
}

template <class Second>
void MulDivFloats(const PointViews& views, const OperatorConstant& constant) {
  const double factor = constant.factor;
  CombineSamePlace<float, Second, float>(views, [=](float a, Second b) {
    const double quotient = static_cast<double>(a) * factor / static_cast<double>(b);
    return b == Second{0} ? a : static_cast<float>(quotient);
  });
}

template <class T>
void AddConstant(const PointViews& views, const OperatorConstant& constant) {
  const auto low = static_cast<T>(constant.low);
  const auto high = static_cast<T>(constant.high);
  const auto value = static_cast<T>(static_cast<uint32_t>(constant.value));
  MapSamePlace<T, T>(views, [=](T a) {
    return static_cast<T>(static_cast<uint32_t>(Smaller(Larger(a, low), high)) +
                          static_cast<uint32_t>(value));
  });
}

template <class T>
void Scale(const PointViews& views, const OperatorConstant& constant) {
  const double factor = constant.factor;
  MapSamePlace<T, T>(views, [=](T a) { return TruncateTo<T>(static_cast<double>(a) * factor); });
}

// The reciprocal of a divisor is a little too large: by more than the roundings (2^-23), so that
// whole quotients are not truncated below themselves, and by too little for any other quotient of a
// 16-bit pixel to reach the next whole number, which is at least 2^-15 of itself away.
constexpr float RECIPROCAL_EXCESS = 0x1p-19f;

template <class T>
void ModuloConstant(const PointViews& views, const OperatorConstant& constant) {
  const int32_t divisor = constant.value;
  const float reciprocal = (1.0f + RECIPROCAL_EXCESS) / static_cast<float>(divisor);
  MapSamePlace<T, T>(views, [=](T a) {
    const auto quotient = static_cast<int32_t>(static_cast<float>(a) * reciprocal);
    return static_cast<T>(a - quotient * divisor);
  });
}

void MultiplyByte(const PointViews& views, const OperatorConstant& constant) {
  const auto factor = static_cast<uint8_t>(constant.value);
  MapSamePlace<uint8_t, uint8_t>(views, [=](uint8_t a) { return Multiply()(a, factor); });
}

#if defined(ZEL_VECTORS)

// Pixels of one type in vectors, the rest of a row by the plain rule.
template <class V, class T, class Rule, V (*Step)(V a, V b)>
void VectorImages(const PointViews& views, const OperatorConstant&) {
  constexpr int64_t lanes = sizeof(V) / sizeof(T);
  const int64_t width = views.result.width;
  for (int64_t y = 0; y < views.result.height; y++) {
    const auto* a = views.first.Row<const T>(y);
    const auto* b = views.second.Row<const T>(y);
    auto* to = views.result.Row<T>(y);
    int64_t x = 0;
    for (; x + lanes <= width; x += lanes) Store(to + x, Step(Load<V>(a + x), Load<V>(b + x)));
#pragma GCC ivdep
    for (; x < width; x++) to[x] = Rule()(a[x], b[x]);
  }
}

// Quotients of integers up to 255; 0 divides as 1. The half keeps each of them at least 0.5 / 255.5
// of itself away from the whole numbers, and reciprocals are ten times as exact as that.
ZEL_INLINE Ints ByteQuotients(Ints a, Ints b) {
  const Ints divisor = b > 1 ? b : Ints{} + 1;
  const Floats dividend = __builtin_convertvector(a, Floats) + 0.5f;
  return Truncate(dividend * ReciprocalEstimate(__builtin_convertvector(divisor, Floats)));
}

// Bytes are divided in 32 bits.
template <class Rule>
void DivideBytes(const PointViews& views, const OperatorConstant&) {
  constexpr bool modulo = std::is_same_v<Rule, Modulo>;
  constexpr int64_t lanes = FLOAT_LANES;
  const int64_t width = views.result.width;
  for (int64_t y = 0; y < views.result.height; y++) {
    const auto* a = views.first.Row<const uint8_t>(y);
    const auto* b = views.second.Row<const uint8_t>(y);
    auto* to = views.result.Row<uint8_t>(y);
    int64_t x = 0;
    for (; x + 4 * lanes <= width; x += 4 * lanes) {
      Words words[2];
      for (int64_t half = 0; half < 2; half++) {
        const int64_t at = x + 2 * lanes * half;
        const Ints a0 = WidenBytes(a + at);
        const Ints a1 = WidenBytes(a + at + lanes);
        const Ints b0 = WidenBytes(b + at);
        const Ints b1 = WidenBytes(b + at + lanes);
        words[half] = PackSaturated(ByteQuotients(a0, b0), ByteQuotients(a1, b1));
        if constexpr (modulo) {
          words[half] = PackSaturated(a0, a1) - words[half] * PackSaturated(b0, b1);
        }
      }
      Store(to + x, PackSaturated(words[0], words[1]));
    }
#pragma GCC ivdep
    for (; x < width; x++) to[x] = Rule()(a[x], b[x]);
  }
}

template <class Rule>
constexpr PairRoutines WithVectors(OperatorRoutine bytes, OperatorRoutine words) {
  PairRoutines routines = IMAGES<Rule>;
  routines.u8 = bytes;
  routines.i16 = words;
  return routines;
}

constexpr PairRoutines ADD = WithVectors<Add>(&VectorImages<Bytes, uint8_t, Add, &AddSaturated>,
                                              &VectorImages<Words, int16_t, Add, &AddSaturated>);
constexpr PairRoutines SUBTRACT =
    WithVectors<Subtract>(&VectorImages<Bytes, uint8_t, Subtract, &SubtractSaturated>,
                          &VectorImages<Words, int16_t, Subtract, &SubtractSaturated>);
constexpr PairRoutines MULTIPLY =
    WithVectors<Multiply>(&Images<uint8_t, uint8_t, Multiply>,
                          &VectorImages<Words, int16_t, Multiply, &ProductsSaturated>);
constexpr PairRoutines DIVIDE =
    WithVectors<Divide>(&DivideBytes<Divide>, &Images<int16_t, int16_t, Divide>);
constexpr PairRoutines MODULO =
    WithVectors<Modulo>(&DivideBytes<Modulo>, &Images<int16_t, int16_t, Modulo>);

#else

constexpr PairRoutines ADD = IMAGES<Add>;
constexpr PairRoutines SUBTRACT = IMAGES<Subtract>;
constexpr PairRoutines MULTIPLY = IMAGES<Multiply>;
constexpr PairRoutines DIVIDE = IMAGES<Divide>;
constexpr PairRoutines MODULO = IMAGES<Modulo>;

#endif

constexpr PairRoutines MULDIV = {
    .u8 = &MulDivBytes,
    .i16U8 = &MulDivWordsByBytes,
    .i16 = &MulDivWords,
    .sglU8 = &MulDivFloats<uint8_t>,
    .sglI16 = &MulDivFloats<int16_t>,
    .sgl = &MulDivFloats<float>,
};

}  // namespace

extern const ArithmeticRows arithmeticRows = {
    .add = ADD,
    .subtract = SUBTRACT,
    .multiply = MULTIPLY,
    .divide = DIVIDE,
    .modulo = MODULO,
    .mulDiv = MULDIV,
    .addConstant = {&AddConstant<uint8_t>, &AddConstant<int16_t>},
    .scale = {&Scale<uint8_t>, &Scale<int16_t>},
    .moduloConstant = {&ModuloConstant<uint8_t>, &ModuloConstant<int16_t>},
    .multiplyByte = &MultiplyByte,
    .addFloat = &FloatConstant<Add>,
    .subtractFloat = &FloatConstant<Subtract>,
    .multiplyFloat = &FloatConstant<Multiply>,
    .divideFloat = &FloatConstant<Divide>,
    .moduloFloat = &FloatConstant<Modulo>,
};

}  // namespace zel::ZEL_LEVEL
