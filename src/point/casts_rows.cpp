// Row routines of conversions between pixel types: the rule for one pixel of each pair of types,
// and their table.
#include "point/casts_rows.h"

#include <bit>
#include <cmath>
#include <cstdint>

#include "engine/vectors.h"

namespace zel::ZEL_LEVEL {
namespace {

struct Complex {
  float re, im;
};
enum class Rgb : uint32_t {};  // blue in the low byte, then green and red

ZEL_INLINE double Magnitude(Complex value) {
  const auto re = static_cast<double>(value.re);
  const auto im = static_cast<double>(value.im);
  return std::sqrt(re * re + im * im);
}

// The low 16 bits of a truncated magnitude, which has none from 2^63 on.
ZEL_INLINE uint32_t LowBits(double magnitude) {
  const double inRange = magnitude < 9223372036854775808.0 ? magnitude : 0.0;  // NaN too
  const double whole = std::floor(inRange);
  const double above = std::floor(whole * (1.0 / 65536.0)) * 65536.0;
  return static_cast<uint32_t>(static_cast<int32_t>(whole - above));
}

ZEL_INLINE uint32_t Sum(Rgb pixel) {
  const auto bits = static_cast<uint32_t>(pixel);
  return (bits & 0xFF) + ((bits >> 8) & 0xFF) + ((bits >> 16) & 0xFF);
}

// A third, exact for every sum of three bytes.
constexpr uint32_t THIRD = 0xAAAB;  // of 2^17, rounded up
ZEL_INLINE uint32_t Mean(Rgb pixel) {
  return (Sum(pixel) * THIRD) >> 17;
}

struct ToByte {
  using Pixel = uint8_t;
  ZEL_INLINE uint8_t operator()(int16_t value) const {
    const auto raised = static_cast<int16_t>(value > 0 ? value : 0);
    return static_cast<uint8_t>(raised < 255 ? raised : 255);
  }
  ZEL_INLINE uint8_t operator()(float value) const {
    const float raised = value > 0.0f ? value : 0.0f;  // NaN too
    return static_cast<uint8_t>(static_cast<int32_t>(raised < 255.0f ? raised : 255.0f));
  }
  ZEL_INLINE uint8_t operator()(Complex value) const {
    return static_cast<uint8_t>(LowBits(Magnitude(value)));
  }
  ZEL_INLINE uint8_t operator()(Rgb pixel) const { return static_cast<uint8_t>(Mean(pixel)); }
};

struct ToWord {
  using Pixel = int16_t;
  ZEL_INLINE int16_t operator()(uint8_t value) const { return value; }
  ZEL_INLINE int16_t operator()(float value) const {
    const float number = value == value ? value : 0.0f;
    const float raised = number > -32768.0f ? number : -32768.0f;
    return static_cast<int16_t>(static_cast<int32_t>(raised < 32767.0f ? raised : 32767.0f));
  }
  ZEL_INLINE int16_t operator()(Complex value) const {
    return static_cast<int16_t>(static_cast<uint16_t>(LowBits(Magnitude(value))));
  }
  ZEL_INLINE int16_t operator()(Rgb pixel) const { return static_cast<int16_t>(Mean(pixel)); }
};

struct ToFloat {
  using Pixel = float;
  ZEL_INLINE float operator()(uint8_t value) const { return value; }
  ZEL_INLINE float operator()(int16_t value) const { return value; }
  ZEL_INLINE float operator()(Complex value) const { return static_cast<float>(Magnitude(value)); }
  // Two parts of a third, of which the first has an exact product: for every sum this is what
  // 0.3333333333333333 times the sum rounds to.
  ZEL_INLINE float operator()(Rgb pixel) const {
    const auto sum = static_cast<float>(static_cast<int32_t>(Sum(pixel)));
    return sum * (5461.0f / 16384.0f) + sum * (1.0f / 49152.0f);
  }
};

struct ToComplex {
  using Pixel = uint64_t;  // the bits of the real part, and an imaginary part of 0
  template <class From>
  ZEL_INLINE uint64_t operator()(From value) const {
    return std::bit_cast<uint32_t>(ToFloat()(value));
  }
  ZEL_INLINE uint64_t operator()(float value) const { return std::bit_cast<uint32_t>(value); }
};

struct ToRgb {
  using Pixel = uint32_t;
  ZEL_INLINE uint32_t operator()(uint8_t value) const { return value * 0x010101u; }
  template <class From>
  ZEL_INLINE uint32_t operator()(From value) const {
    return (*this)(ToByte()(value));
  }
};

template <class From, class Rule>
void Convert(const PointViews& views, const NoRule&) {
  MapSamePlace<From, typename Rule::Pixel>(views, Rule());
}

// Pixels of 4 bytes become narrower in groups of four vectors, the rest of a row by the plain rule.
#if defined(ZEL_VECTORS)

// The 32-bit integers of floats or colours, then what is done to them in 16 bits.
struct FloatsToBytes {
  using From = float;
  using Rule = ToByte;
  ZEL_INLINE Ints Integers(const float* pixels) const {
    const Floats values = Load<Floats>(pixels);
    const Floats raised = values > 0.0f ? values : Floats{};  // NaN too
    return Truncate(raised < 255.0f ? raised : Floats{} + 255.0f);
  }
  ZEL_INLINE Words Finish(Words words) const { return words; }
};

// What is too small for 32 bits is truncated to the smallest integer, which packing limits.
struct FloatsToWords {
  using From = float;
  using Rule = ToWord;
  ZEL_INLINE Ints Integers(const float* pixels) const {
    const Floats values = Load<Floats>(pixels);
    const Floats numbers = values == values ? values : Floats{};
    return Truncate(numbers < 32767.0f ? numbers : Floats{} + 32767.0f);
  }
  ZEL_INLINE Words Finish(Words words) const { return words; }
};

#if defined(ZEL_WIDE_VECTORS)
template <class To>
struct ColoursToMean {
  using From = Rgb;
  using Rule = To;
  // The sums of the first three of four bytes.
  ZEL_INLINE Ints Integers(const Rgb* pixels) const {
    const Bytes channels = (Bytes)(Ints{} + 0x00010101);
    return PairSums(PairSums(Load<Bytes>(pixels), channels), Words{} + 1);
  }
  // The product with THIRD without its lower 17 bits.
  ZEL_INLINE Words Finish(Words sums) const {
    const UnsignedWords third = UnsignedWords{} + static_cast<uint16_t>(THIRD);
    return (Words)(HighProducts((UnsignedWords)sums, third) >> 1);
  }
};
#endif

template <class Groups>
void Narrow(const PointViews& views, const NoRule&) {
  using From = typename Groups::From;
  using To = typename Groups::Rule::Pixel;
  constexpr int64_t lanes = FLOAT_LANES;
  const Groups groups;
  const typename Groups::Rule rule;
  const int64_t width = views.result.width;
  for (int64_t y = 0; y < views.result.height; y++) {
    const auto* from = views.first.Row<const From>(y);
    auto* to = views.result.Row<To>(y);
    int64_t x = 0;
    for (; x + 4 * lanes <= width; x += 4 * lanes) {
      const Ints a = groups.Integers(from + x);
      const Ints b = groups.Integers(from + x + lanes);
      const Ints c = groups.Integers(from + x + 2 * lanes);
      const Ints d = groups.Integers(from + x + 3 * lanes);
      const Words low = groups.Finish(PackSaturated(a, b));
      const Words high = groups.Finish(PackSaturated(c, d));
      if constexpr (sizeof(To) == 1) {
        Store(to + x, PackSaturated(low, high));
      } else {
        Store(to + x, low);
        Store(to + x + 2 * lanes, high);
      }
    }
    for (; x < width; x++) to[x] = rule(from[x]);
  }
}

constexpr CastRoutine FLOATS_TO_BYTES = &Narrow<FloatsToBytes>;
constexpr CastRoutine FLOATS_TO_WORDS = &Narrow<FloatsToWords>;
#else
constexpr CastRoutine FLOATS_TO_BYTES = &Convert<float, ToByte>;
constexpr CastRoutine FLOATS_TO_WORDS = &Convert<float, ToWord>;
#endif

#if defined(ZEL_WIDE_VECTORS)
constexpr CastRoutine COLOURS_TO_BYTES = &Narrow<ColoursToMean<ToByte>>;
constexpr CastRoutine COLOURS_TO_WORDS = &Narrow<ColoursToMean<ToWord>>;
#else
constexpr CastRoutine COLOURS_TO_BYTES = &Convert<Rgb, ToByte>;
constexpr CastRoutine COLOURS_TO_WORDS = &Convert<Rgb, ToWord>;
#endif

void Shift(const PointViews& views, const BitShift& given) {
  const int32_t shift = given.bits;
  MapSamePlace<int16_t, uint8_t>(views, [=](int16_t value) {
    return static_cast<uint8_t>(static_cast<int16_t>(value >> shift));
  });
}

template <class From, class To>
void Lookup(const PointViews& views, const ValueTable<To>& table) {
  const To* values = table.values;
  MapSamePlace<From, To>(views, [=](From level) { return values[level]; });
}

}  // namespace

extern const CastRows castRows = {
    .fromU8 = {.toU8 = nullptr,
               .toI16 = &Convert<uint8_t, ToWord>,
               .toSgl = &Convert<uint8_t, ToFloat>,
               .toComplex = &Convert<uint8_t, ToComplex>,
               .toRgb = &Convert<uint8_t, ToRgb>},
    .fromI16 = {.toU8 = &Convert<int16_t, ToByte>,
                .toI16 = nullptr,
                .toSgl = &Convert<int16_t, ToFloat>,
                .toComplex = &Convert<int16_t, ToComplex>,
                .toRgb = &Convert<int16_t, ToRgb>},
    .fromSgl = {.toU8 = FLOATS_TO_BYTES,
                .toI16 = FLOATS_TO_WORDS,
                .toSgl = nullptr,
                .toComplex = &Convert<float, ToComplex>,
                .toRgb = &Convert<float, ToRgb>},
    .fromComplex = {.toU8 = &Convert<Complex, ToByte>,
                    .toI16 = &Convert<Complex, ToWord>,
                    .toSgl = &Convert<Complex, ToFloat>,
                    .toComplex = nullptr,
                    .toRgb = &Convert<Complex, ToRgb>},
    .fromRgb = {.toU8 = COLOURS_TO_BYTES,
                .toI16 = COLOURS_TO_WORDS,
                .toSgl = &Convert<Rgb, ToFloat>,
                .toComplex = &Convert<Rgb, ToComplex>,
                .toRgb = nullptr},
    .shift = &Shift,
    .bytesToWords = &Lookup<uint8_t, int16_t>,
    .bytesToFloats = &Lookup<uint8_t, float>,
    .wordsToBytes = &Lookup<uint16_t, uint8_t>,
    .wordsToFloats = &Lookup<uint16_t, float>,
};

}  // namespace zel::ZEL_LEVEL
