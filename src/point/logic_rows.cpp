// Row routines of bitwise operators and of masking, and their table.
#include "point/logic_rows.h"

#include <cstdint>

namespace zel::ZEL_LEVEL {
namespace {

struct And {
  ZEL_INLINE int32_t operator()(int32_t a, int32_t b) const { return a & b; }
};
struct NotAnd {
  ZEL_INLINE int32_t operator()(int32_t a, int32_t b) const { return ~(a & b); }
};
struct Or {
  ZEL_INLINE int32_t operator()(int32_t a, int32_t b) const { return a | b; }
};
struct NotOr {
  ZEL_INLINE int32_t operator()(int32_t a, int32_t b) const { return ~(a | b); }
};
struct Xor {
  ZEL_INLINE int32_t operator()(int32_t a, int32_t b) const { return a ^ b; }
};
struct NotXor {
  ZEL_INLINE int32_t operator()(int32_t a, int32_t b) const { return ~(a ^ b); }
};
struct Diff {
  ZEL_INLINE int32_t operator()(int32_t a, int32_t b) const { return a & ~b; }
};

template <class Rule>
void Images(const Plane& plane) {
  ForPixelPairs<uint8_t, uint8_t, uint8_t>(
      plane, [](uint8_t a, uint8_t b) { return static_cast<uint8_t>(Rule()(a, b)); });
}

template <class T>
void KeepAndFlip(const Plane& plane) {
  const auto keep = static_cast<T>(plane.constant.bits.keep);
  const auto flip = static_cast<T>(plane.constant.bits.flip);
  ForPixels<T, T>(plane, [=](T a) { return static_cast<T>((a & keep) ^ flip); });
}

template <class T>
void ConstantIfZero(const Plane& plane) {
  const auto constant = static_cast<T>(plane.constant.bits.flip);
  ForPixels<T, T>(plane, [=](T a) { return a == 0 ? constant : T{0}; });
}

template <class T>
void Mask(const Plane& plane) {
  ForPixelPairs<T, uint8_t, T>(plane, [](T a, uint8_t mask) { return mask == 0 ? T{0} : a; });
}

}  // namespace

extern const LogicRows logicRows = {
    {&Images<And>, &Images<NotAnd>, &Images<Or>, &Images<NotOr>, &Images<Xor>, &Images<NotXor>,
     &Images<Diff>},
    {&KeepAndFlip<uint8_t>, &KeepAndFlip<uint16_t>, &KeepAndFlip<uint32_t>},
    {&ConstantIfZero<uint8_t>, &ConstantIfZero<uint16_t>, &ConstantIfZero<uint32_t>},
    {&Mask<uint8_t>, &Mask<uint16_t>, &Mask<uint32_t>, &Mask<uint64_t>},
};

}  // namespace zel::ZEL_LEVEL
