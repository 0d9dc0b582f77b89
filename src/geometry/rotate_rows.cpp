// Row routines of rotation.
#include "geometry/rotate_rows.h"

#include <cstring>

#include "core/numbers.h"
#include "engine/vectors.h"

namespace zel::ZEL_LEVEL {
namespace {

constexpr int32_t REST = POSITION_ONE - 1;

// ---- the pixel types: how four pixels are joined, and what is put where there is none

struct BytePixels {
  using Pixel = uint8_t;
  static Pixel Outside(uint32_t outside, Pixel) { return static_cast<Pixel>(outside); }

  // To the nearest number, and down from the middle. The four weights are not negative, so neither
  // is their sum.
  ZEL_INLINE static int32_t Rounded(int32_t p00, int32_t p10, int32_t p01, int32_t p11, int32_t fx,
                                    int32_t fy) {
    const int32_t top = p00 * POSITION_ONE + (p10 - p00) * fx;
    const int32_t bottom = p01 * POSITION_ONE + (p11 - p01) * fx;
    const int32_t sum = top * POSITION_ONE + (bottom - top) * fy;
    return (sum + (1 << (2 * POSITION_BITS - 1)) - 1) >> (2 * POSITION_BITS);
  }
  ZEL_INLINE static Pixel Join(Pixel p00, Pixel p10, Pixel p01, Pixel p11, int32_t fx, int32_t fy) {
    return static_cast<Pixel>(Rounded(p00, p10, p01, p11, fx, fy));
  }
};

struct ColourPixels {
  using Pixel = uint32_t;
  static Pixel Outside(uint32_t outside, Pixel before) { return (before & 0xFF000000) | outside; }
  ZEL_INLINE static uint32_t Byte(Pixel p00, Pixel p10, Pixel p01, Pixel p11, int32_t fx,
                                  int32_t fy, int32_t shift) {
    const auto byte = [=](Pixel pixel) { return static_cast<int32_t>((pixel >> shift) & 0xFF); };
    return static_cast<uint32_t>(
               BytePixels::Rounded(byte(p00), byte(p10), byte(p01), byte(p11), fx, fy))
           << shift;
  }
  ZEL_INLINE static Pixel Join(Pixel p00, Pixel p10, Pixel p01, Pixel p11, int32_t fx, int32_t fy) {
    return Byte(p00, p10, p01, p11, fx, fy, 0) | Byte(p00, p10, p01, p11, fx, fy, 8) |
           Byte(p00, p10, p01, p11, fx, fy, 16);
  }
};

// Cut toward zero, with shares of 6 bits.
struct WordPixels {
  using Pixel = int16_t;
  static Pixel Outside(uint32_t outside, Pixel) { return static_cast<Pixel>(outside); }
  ZEL_INLINE static Pixel Join(Pixel p00, Pixel p10, Pixel p01, Pixel p11, int32_t fx, int32_t fy) {
    const int32_t a = fx >> 4;
    const int32_t b = fy >> 4;
    const int32_t top = p00 * 64 + (p10 - p00) * a;
    const int32_t bottom = p01 * 64 + (p11 - p01) * a;
    return static_cast<Pixel>((top * 64 + (bottom - top) * b) / 4096);
  }
};

struct FloatPixels {
  using Pixel = float;
  static Pixel Outside(uint32_t outside, Pixel) {
    Pixel pixel;
    std::memcpy(&pixel, &outside, sizeof pixel);
    return pixel;
  }
  // On a pixel it is that one, so that infinities don't become NaN there.
  ZEL_INLINE static Pixel Join(Pixel f00, Pixel f10, Pixel f01, Pixel f11, int32_t fx, int32_t fy) {
    const double a = fx * (1.0 / POSITION_ONE);
    const double b = fy * (1.0 / POSITION_ONE);
    const double p00 = f00;
    const double p10 = f10;
    const double p01 = f01;
    const double p11 = f11;
    const double joined = ((p11 - p10 - p01 + p00) * b + (p10 - p00)) * a + ((p01 - p00) * b + p00);
    return (fx | fy) == 0 ? f00 : static_cast<Pixel>(joined);
  }
};

template <class Pixel>
ZEL_INLINE const Pixel* PixelAt(const RotateRule& rule, int32_t x, int32_t y) {
  return reinterpret_cast<const Pixel*>(rule.origin + y * rule.pitch) + x;
}

// ---- nearest

// The magnitude is rounded, down from the middle.
ZEL_INLINE int32_t NearestTo(uint32_t position) {
  const auto value = static_cast<int32_t>(position);
  const uint32_t magnitude = value < 0 ? 0 - position : position;
  const auto whole = static_cast<int32_t>((magnitude + 511) >> POSITION_BITS);
  return value < 0 ? -whole : whole;
}

template <class Type>
void NearestAnywhere(const RotateRule& of, uint32_t x, uint32_t y, void* destination,
                     int32_t count) {
  using Pixel = typename Type::Pixel;
  const RotateRule rule = of;
  auto* to = static_cast<Pixel*>(destination);
  for (int32_t i = 0; i < count; i++) {
    const int32_t ix = NearestTo(x);
    const int32_t iy = NearestTo(y);
    const bool inside = ix >= 0 && ix < rule.width && iy >= 0 && iy < rule.height;
    to[i] = inside ? *PixelAt<Pixel>(rule, ix, iy) : Type::Outside(rule.outside, to[i]);
    x += rule.stepX;
    y += rule.stepY;
  }
}

template <class Type>
void NearestInside(const RotateRule& of, uint32_t x, uint32_t y, void* destination, int32_t count) {
  using Pixel = typename Type::Pixel;
  const RotateRule rule = of;
  auto* __restrict to = static_cast<Pixel*>(destination);
  for (int32_t i = 0; i < count; i++) {
    to[i] = *PixelAt<Pixel>(rule, static_cast<int32_t>((x + 511) >> POSITION_BITS),
                            static_cast<int32_t>((y + 511) >> POSITION_BITS));
    x += rule.stepX;
    y += rule.stepY;
  }
}

// ---- bilinear

// Along one axis: the pixel, how far the next one is, and the share of the way to that.
struct Place {
  int32_t pixel, next, share;
  bool outside;

  ZEL_INLINE Place(uint32_t position, int32_t size) {
    const auto value = static_cast<int32_t>(position);
    const int32_t floor = value >> POSITION_BITS;
    outside = floor < -1 || floor >= size;
    pixel = floor < 0 ? 0 : floor;
    next = floor < 0 || floor >= size - 1 ? 0 : 1;
    share = value & REST;
  }
};

template <class Type>
void BilinearAnywhere(const RotateRule& of, uint32_t x, uint32_t y, void* destination,
                      int32_t count) {
  using Pixel = typename Type::Pixel;
  const RotateRule rule = of;
  auto* to = static_cast<Pixel*>(destination);
  for (int32_t i = 0; i < count; i++) {
    const Place column(x, rule.width);
    const Place row(y, rule.height);
    if (column.outside || row.outside) {
      to[i] = Type::Outside(rule.outside, to[i]);
    } else {
      const Pixel* top = PixelAt<Pixel>(rule, column.pixel, row.pixel);
      const Pixel* bottom = PixelAt<Pixel>(rule, column.pixel, row.pixel + row.next);
      to[i] = Type::Join(top[0], top[column.next], bottom[0], bottom[column.next], column.share,
                         row.share);
    }
    x += rule.stepX;
    y += rule.stepY;
  }
}

template <class Type>
void BilinearInside(const RotateRule& of, uint32_t x, uint32_t y, void* destination,
                    int32_t count) {
  using Pixel = typename Type::Pixel;
  const RotateRule rule = of;
  auto* __restrict to = static_cast<Pixel*>(destination);
  for (int32_t i = 0; i < count; i++) {
    const Pixel* top = PixelAt<Pixel>(rule, static_cast<int32_t>(x >> POSITION_BITS),
                                      static_cast<int32_t>(y >> POSITION_BITS));
    const Pixel* bottom =
        reinterpret_cast<const Pixel*>(reinterpret_cast<const uint8_t*>(top) + rule.pitch);
    to[i] = Type::Join(top[0], top[1], bottom[0], bottom[1], static_cast<int32_t>(x & REST),
                       static_cast<int32_t>(y & REST));
    x += rule.stepX;
    y += rule.stepY;
  }
}

template <class Type>
constexpr RotateRoutines NEAREST = {
    .anywhere = &NearestAnywhere<Type>, .inside = &NearestInside<Type>, .reach = 0};
template <class Type>
constexpr RotateRoutines BILINEAR = {
    .anywhere = &BilinearAnywhere<Type>, .inside = &BilinearInside<Type>, .reach = 1};

// ---- a vector of pixels at a time

#if defined(ZEL_WIDE_VECTORS)

// Four bytes are read for each, the last of them so far to the right.
constexpr int32_t BYTES_BEHIND = 3;
constexpr int32_t LANES = VECTOR_BYTES / 4;
using UnsignedInts = uint32_t __attribute__((vector_size(VECTOR_BYTES)));

// Positions of a vector of results, and how far the next ones are.
struct Positions {
  UnsignedInts now, stride;

  ZEL_INLINE Positions(uint32_t first, uint32_t step) {
    for (uint32_t i = 0; i < LANES; i++) now[i] = first + i * step;
    stride = UnsignedInts{} + LANES * step;
  }
  ZEL_INLINE void Advance() { now += stride; }
};

ZEL_INLINE Ints OffsetsOf(UnsignedInts columns, UnsignedInts rows, uint32_t pitch) {
  return (Ints)(rows * pitch + columns);
}

// Offsets of the pixels of four bytes at the floors of positions.
ZEL_INLINE Ints WideOffsets(const Positions& column, const Positions& row, uint32_t pitch) {
  return OffsetsOf((column.now >> POSITION_BITS) * 4, row.now >> POSITION_BITS, pitch);
}

struct NearestByte {
  using Type = BytePixels;
  ZEL_INLINE static void Move(const RotateRule& rule, const Positions& column, const Positions& row,
                              uint32_t pitch, uint8_t* to) {
    const Ints offsets = OffsetsOf(column.now >> POSITION_BITS, row.now >> POSITION_BITS, pitch);
    StoreBytes<0>(to, GatherInts(rule.origin, offsets));
  }
};

struct NearestWide {
  using Type = ColourPixels;
  ZEL_INLINE static void Move(const RotateRule& rule, const Positions& column, const Positions& row,
                              uint32_t pitch, uint32_t* to) {
    Store(to, GatherInts(rule.origin, WideOffsets(column, row, pitch)));
  }
};

template <class Nearest>
void NearestPixels(const RotateRule& of, uint32_t x, uint32_t y, void* destination, int32_t count) {
  const RotateRule rule = of;
  auto* to = static_cast<typename Nearest::Type::Pixel*>(destination);
  const auto pitch = static_cast<uint32_t>(rule.pitch);
  Positions column(x + 511, rule.stepX);
  Positions row(y + 511, rule.stepY);
  int32_t done = 0;
  for (; done + LANES <= count; done += LANES) {
    Nearest::Move(rule, column, row, pitch, to + done);
    column.Advance();
    row.Advance();
  }
  const auto steps = static_cast<uint32_t>(done);
  NearestInside<typename Nearest::Type>(rule, x + steps * rule.stepX, y + steps * rule.stepY,
                                        to + done, count - done);
}

// Two neighbours, the low bytes of four, joined by their weights: in 1024ths.
ZEL_INLINE Ints JoinedAlong(Ints four, Ints weights) {
  const Ints two = (four & 0xFF) | ((four << 8) & 0xFF0000);
  return PairSums((Words)two, (Words)weights);
}

// Rows joined, as BytePixels rounds them.
ZEL_INLINE Ints RoundedDown(Ints top, Ints bottom, Ints fy) {
  const Ints sum = (top << POSITION_BITS) + (bottom - top) * fy;
  return (sum + ((1 << (2 * POSITION_BITS - 1)) - 1)) >> (2 * POSITION_BITS);
}

void BilinearBytes(const RotateRule& of, uint32_t x, uint32_t y, void* destination, int32_t count) {
  const RotateRule rule = of;
  auto* to = static_cast<uint8_t*>(destination);
  const auto pitch = static_cast<uint32_t>(rule.pitch);
  const uint8_t* below = rule.origin + rule.pitch;
  Positions column(x, rule.stepX);
  Positions row(y, rule.stepY);
  int32_t done = 0;
  for (; done + LANES <= count; done += LANES) {
    const Ints offsets = OffsetsOf(column.now >> POSITION_BITS, row.now >> POSITION_BITS, pitch);
    const Ints fx = (Ints)column.now & REST;
    const Ints fy = (Ints)row.now & REST;
    const Ints weights = (fx << 16) + (POSITION_ONE - fx);
    const Ints top = JoinedAlong(GatherInts(rule.origin, offsets), weights);
    const Ints bottom = JoinedAlong(GatherInts(below, offsets), weights);
    StoreBytes<0>(to + done, RoundedDown(top, bottom, fy));
    column.Advance();
    row.Advance();
  }
  const auto steps = static_cast<uint32_t>(done);
  BilinearInside<BytePixels>(rule, x + steps * rule.stepX, y + steps * rule.stepY, to + done,
                             count - done);
}

// ---- pixels of four bytes

// The bytes of four pixels that lie so high, joined.
template <int32_t shift>
ZEL_INLINE Ints ByteJoined(Ints p00, Ints p10, Ints p01, Ints p11, Ints weights, Ints fy) {
  const auto along = [=](Ints left, Ints right) {
    const Ints two = ((left >> shift) & 0xFF) | (((right >> shift) & 0xFF) << 16);
    return PairSums((Words)two, (Words)weights);
  };
  return RoundedDown(along(p00, p10), along(p01, p11), fy) << shift;
}

void BilinearColours(const RotateRule& of, uint32_t x, uint32_t y, void* destination,
                     int32_t count) {
  const RotateRule rule = of;
  auto* to = static_cast<uint32_t*>(destination);
  const auto pitch = static_cast<uint32_t>(rule.pitch);
  const uint8_t* below = rule.origin + rule.pitch;
  Positions column(x, rule.stepX);
  Positions row(y, rule.stepY);
  int32_t done = 0;
  for (; done + LANES <= count; done += LANES) {
    const Ints offsets = WideOffsets(column, row, pitch);
    const Ints fx = (Ints)column.now & REST;
    const Ints fy = (Ints)row.now & REST;
    const Ints weights = (fx << 16) + (POSITION_ONE - fx);
    const Ints p00 = GatherInts(rule.origin, offsets);
    const Ints p10 = GatherInts(rule.origin, offsets + 4);
    const Ints p01 = GatherInts(below, offsets);
    const Ints p11 = GatherInts(below, offsets + 4);
    const Ints blue = ByteJoined<0>(p00, p10, p01, p11, weights, fy);
    const Ints green = ByteJoined<8>(p00, p10, p01, p11, weights, fy);
    const Ints red = ByteJoined<16>(p00, p10, p01, p11, weights, fy);
    Store(to + done, blue | green | red);
    column.Advance();
    row.Advance();
  }
  const auto steps = static_cast<uint32_t>(done);
  BilinearInside<ColourPixels>(rule, x + steps * rule.stepX, y + steps * rule.stepY, to + done,
                               count - done);
}

constexpr RotateRoutines NEAREST_BYTES = {.anywhere = &NearestAnywhere<BytePixels>,
                                          .inside = &NearestPixels<NearestByte>,
                                          .reach = BYTES_BEHIND};
constexpr RotateRoutines BILINEAR_BYTES = {
    .anywhere = &BilinearAnywhere<BytePixels>, .inside = &BilinearBytes, .reach = BYTES_BEHIND};
constexpr RotateRoutines NEAREST_FLOATS = {
    .anywhere = &NearestAnywhere<FloatPixels>, .inside = &NearestPixels<NearestWide>, .reach = 0};
constexpr RotateRoutines NEAREST_COLOURS = {
    .anywhere = &NearestAnywhere<ColourPixels>, .inside = &NearestPixels<NearestWide>, .reach = 0};
constexpr RotateRoutines BILINEAR_COLOURS = {
    .anywhere = &BilinearAnywhere<ColourPixels>, .inside = &BilinearColours, .reach = 1};

#else

constexpr RotateRoutines NEAREST_BYTES = NEAREST<BytePixels>;
constexpr RotateRoutines BILINEAR_BYTES = BILINEAR<BytePixels>;
constexpr RotateRoutines NEAREST_FLOATS = NEAREST<FloatPixels>;
constexpr RotateRoutines NEAREST_COLOURS = NEAREST<ColourPixels>;
constexpr RotateRoutines BILINEAR_COLOURS = BILINEAR<ColourPixels>;

#endif

}  // namespace

extern const RotateRows rotateRows = {
    .nearest = {.u8 = NEAREST_BYTES,
                .i16 = NEAREST<WordPixels>,
                .sgl = NEAREST_FLOATS,
                .rgb = NEAREST_COLOURS},
    .bilinear = {.u8 = BILINEAR_BYTES,
                 .i16 = BILINEAR<WordPixels>,
                 .sgl = BILINEAR<FloatPixels>,
                 .rgb = BILINEAR_COLOURS},
};

}  // namespace zel::ZEL_LEVEL
