// Row routines of edge operators: what each makes of a pixel and its eight neighbours.
#include "filters/edges_rows.h"

#include <cmath>
#include <cstdint>

#include "core/numbers.h"

namespace zel::ZEL_LEVEL {
namespace {

// A pixel and its neighbours by compass, as the numbers that an operator computes with: uint8_t,
// int32_t for I16 and double for SGL.
template <class Number>
struct Neighbours {
  Number nw, n, ne, w, c, e, sw, s, se;
};

// Holds sums of a few pixels and of their differences: narrow lanes are fast ones.
template <class Number>
struct WideOf {
  using Type = Number;
};
template <>
struct WideOf<uint8_t> {
  using Type = int16_t;
};
template <class Number>
using Wide = typename WideOf<Number>::Type;

template <class Number>
ZEL_INLINE Wide<Number> Widened(int32_t sum) {
  return static_cast<Wide<Number>>(sum);
}
template <class Number>
ZEL_INLINE double Widened(double sum) {
  return sum;
}

// The first where either is no number.
template <class Number>
ZEL_INLINE Number Larger(Number a, Number b) {
  return b > a ? b : a;
}

ZEL_INLINE uint8_t Distance(uint8_t a, uint8_t b) {
  return static_cast<uint8_t>(a > b ? a - b : b - a);
}
ZEL_INLINE int16_t Distance(int16_t a, int16_t b) {
  return static_cast<int16_t>(a > b ? a - b : b - a);
}
ZEL_INLINE int32_t Distance(int32_t a, int32_t b) {
  return a > b ? a - b : b - a;
}
ZEL_INLINE float Distance(float a, float b) {
  return std::fabs(a - b);
}
ZEL_INLINE double Distance(double a, double b) {
  return std::fabs(a - b);
}

// 2^16 / 3, rounded up: too large by a third at most, so that the quotients of all numbers below
// 2^15 are exact.
constexpr uint32_t THIRD_OF_WORD = 21846;
// Of sums of differences of words, which are below 2^18: in single precision their quotients are
// never rounded up to a whole number.
constexpr float THIRD = 1.0f / 3.0f;

ZEL_INLINE int16_t Third(int16_t sum) {
  return static_cast<int16_t>((static_cast<uint32_t>(static_cast<uint16_t>(sum)) * THIRD_OF_WORD) >>
                              16);
}
ZEL_INLINE int32_t Third(int32_t sum) {
  return static_cast<int32_t>(static_cast<float>(sum) * THIRD);
}
ZEL_INLINE double Third(double sum) {
  return sum / 3.0;
}

template <class Number>
ZEL_INLINE Number Quarter(Number sum) {
  return static_cast<Number>(sum >> 2);
}
template <>
ZEL_INLINE double Quarter(double sum) {
  return sum * 0.25;
}

template <class Number>
ZEL_INLINE Number Eighth(Number sum) {
  return static_cast<Number>(sum >> 3);
}
template <>
ZEL_INLINE double Eighth(double sum) {
  return sum * 0.125;
}

// Sums of floats are taken in the order in which they are written here.

struct Differentiation {
  template <class Number>
  ZEL_INLINE static Number Of(const Neighbours<Number>& p) {
    return Larger(Larger(Distance(p.nw, p.c), Distance(p.n, p.c)), Distance(p.w, p.c));
  }
};

struct Gradient {
  template <class Number>
  ZEL_INLINE static Number Of(const Neighbours<Number>& p) {
    return Larger(Distance(p.nw, p.w), Distance(p.n, p.c));
  }
};

struct Prewitt {
  template <class Number>
  ZEL_INLINE static Wide<Number> Of(const Neighbours<Number>& p) {
    const auto east = Widened<Number>(p.ne + p.e + p.se);
    const auto west = Widened<Number>(p.nw + p.w + p.sw);
    const auto south = Widened<Number>(p.sw + p.s + p.se);
    const auto north = Widened<Number>(p.nw + p.n + p.ne);
    return Third(Larger(Distance(east, west), Distance(south, north)));
  }
};

struct Roberts {
  template <class Number>
  ZEL_INLINE static Number Of(const Neighbours<Number>& p) {
    return Larger(Distance(p.nw, p.c), Distance(p.w, p.n));
  }
};

struct Sigma {
  template <class Number>
  ZEL_INLINE static Wide<Number> Of(const Neighbours<Number>& p) {
    return Eighth(Widened<Number>(Distance(p.c, p.nw) + Distance(p.c, p.n) + Distance(p.c, p.ne) +
                                  Distance(p.c, p.w) + Distance(p.c, p.e) + Distance(p.c, p.sw) +
                                  Distance(p.c, p.s) + Distance(p.c, p.se)));
  }
};

struct Sobel {
  template <class Number>
  ZEL_INLINE static Wide<Number> Of(const Neighbours<Number>& p) {
    const auto east = Widened<Number>(p.ne + 2 * p.e + p.se);
    const auto west = Widened<Number>(p.nw + 2 * p.w + p.sw);
    const auto north = Widened<Number>(p.nw + 2 * p.n + p.ne);
    const auto south = Widened<Number>(p.sw + 2 * p.s + p.se);
    return Quarter(Larger(Distance(east, west), Distance(north, south)));
  }
};

// What is left of a result after the limit. No number is not below it.

struct KeptBytes {
  uint8_t limit, kept;
  explicit KeptBytes(const EdgeRule& rule) : limit(rule.byteLimit), kept(rule.byteKept) {}
  ZEL_INLINE uint8_t operator()(int32_t result) const {
    const auto byte = static_cast<uint8_t>(result);
    return static_cast<uint8_t>((byte < limit ? 0 : byte) & kept);
  }
};

struct KeptWords {
  int32_t limit;
  explicit KeptWords(const EdgeRule& rule) : limit(rule.limit) {}
  ZEL_INLINE int16_t operator()(int32_t result) const {
    return static_cast<int16_t>(static_cast<uint16_t>(result < limit ? 0 : result));
  }
};

struct KeptFloats {
  double limit;
  explicit KeptFloats(const EdgeRule& rule) : limit(rule.realLimit) {}
  ZEL_INLINE float operator()(double result) const {
    return static_cast<float>(result < limit ? 0.0 : result);
  }
};

// For a limit that no result is below.
struct AllFloats {
  explicit AllFloats(const EdgeRule&) {}
  ZEL_INLINE float operator()(float result) const { return result; }
};

template <class Edge, class Pixel, class Number, class Kept>
void EdgeRow(const void* const* rows, void* to, int32_t width, const EdgeRule& rule) {
  const auto* north = static_cast<const Pixel*>(rows[0]);
  const auto* centre = static_cast<const Pixel*>(rows[1]);
  const auto* south = static_cast<const Pixel*>(rows[2]);
  auto* __restrict results = static_cast<Pixel*>(to);
  const Kept kept(rule);
  for (int64_t x = 0; x < width; x++) {
    const Neighbours<Number> pixels{north[x - 1],  north[x],  north[x + 1],
                                    centre[x - 1], centre[x], centre[x + 1],
                                    south[x - 1],  south[x],  south[x + 1]};
    results[x] = kept(Edge::Of(pixels));
  }
}

template <class Edge>
constexpr WindowRows<EdgeRule> EDGE_ROWS = {
    .u8 = &EdgeRow<Edge, uint8_t, uint8_t, KeptBytes>,
    .i16 = &EdgeRow<Edge, int16_t, int32_t, KeptWords>,
    .sgl = &EdgeRow<Edge, float, double, KeptFloats>,
};

// A difference of floats rounded to a double and then to a float is the difference rounded to a
// float at once, as a double has more than twice as many bits; and the largest of some numbers
// stays the largest when they are rounded.
template <class Edge>
constexpr WindowRow<EdgeRule> SINGLE_EDGE_ROW = &EdgeRow<Edge, float, float, AllFloats>;

}  // namespace

extern const EdgeRows edgeRows = {
    .differentiation = EDGE_ROWS<Differentiation>,
    .gradient = EDGE_ROWS<Gradient>,
    .prewitt = EDGE_ROWS<Prewitt>,
    .roberts = EDGE_ROWS<Roberts>,
    .sigma = EDGE_ROWS<Sigma>,
    .sobel = EDGE_ROWS<Sobel>,
    .singles =
        {
            .differentiation = SINGLE_EDGE_ROW<Differentiation>,
            .gradient = SINGLE_EDGE_ROW<Gradient>,
            .roberts = SINGLE_EDGE_ROW<Roberts>,
        },
};

}  // namespace zel::ZEL_LEVEL
