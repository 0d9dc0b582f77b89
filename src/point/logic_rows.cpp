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
struct Difference {
  ZEL_INLINE int32_t operator()(int32_t a, int32_t b) const { return a & ~b; }
};

template <class Rule>
void Images(const PointViews& views, const NoRule&) {
  CombineSamePlace<uint8_t, uint8_t, uint8_t>(
      views, [](uint8_t a, uint8_t b) { return static_cast<uint8_t>(Rule()(a, b)); });
}

template <class T>
void KeepAndFlip(const PointViews& views, const BitConstant& bits) {
  const auto keep = static_cast<T>(bits.keep);
  const auto flip = static_cast<T>(bits.flip);
  MapSamePlace<T, T>(views, [=](T a) { return static_cast<T>((a & keep) ^ flip); });
}

template <class T>
void Mask(const PointViews& views, const NoRule&) {
  CombineSamePlace<T, uint8_t, T>(views, [](T a, uint8_t mask) { return mask == 0 ? T{0} : a; });
}

}  // namespace

extern const LogicRows logicRows = {
    .bitAnd = &Images<And>,
    .notAnd = &Images<NotAnd>,
    .bitOr = &Images<Or>,
    .notOr = &Images<NotOr>,
    .bitXor = &Images<Xor>,
    .notXor = &Images<NotXor>,
    .difference = &Images<Difference>,
    .keepAndFlip = {&KeepAndFlip<uint8_t>, &KeepAndFlip<uint16_t>, &KeepAndFlip<uint32_t>},
    .mask = {&Mask<uint8_t>, &Mask<uint16_t>, &Mask<uint32_t>, &Mask<uint64_t>},
};

}  // namespace zel::ZEL_LEVEL
