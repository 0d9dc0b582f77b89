// The row routines of conversions between pixel types.
#pragma once

#include "engine/levels.h"
#include "engine/point.h"

namespace zel {

using CastRoutine = PointRoutine<NoRule>;

// From one type to each other one; null for the type itself.
struct CastsFrom {
  CastRoutine toU8, toI16, toSgl, toComplex, toRgb;

  CastRoutine To(int32_t type) const {
    const CastRoutine routines[] = {toU8, toI16, toSgl, toComplex, toRgb};
    return routines[type];
  }
};

// The values that a lookup gives, indexed by the pixel read as unsigned.
template <class T>
struct ValueTable {
  const T* values;
};

struct BitShift {
  int32_t bits;  // to the right
};

struct CastRows {
  CastsFrom fromU8, fromI16, fromSgl, fromComplex, fromRgb;
  PointRoutine<BitShift> shift;  // I16 to U8, low bits kept
  PointRoutine<ValueTable<int16_t>> bytesToWords;
  PointRoutine<ValueTable<float>> bytesToFloats;
  PointRoutine<ValueTable<uint8_t>> wordsToBytes;
  PointRoutine<ValueTable<float>> wordsToFloats;

  const CastsFrom& From(int32_t type) const {
    constexpr CastsFrom CastRows::*sources[] = {&CastRows::fromU8, &CastRows::fromI16,
                                                &CastRows::fromSgl, &CastRows::fromComplex,
                                                &CastRows::fromRgb};
    return this->*sources[type];
  }
};
ZEL_ROW_TABLE(CastRows, castRows)

}  // namespace zel
