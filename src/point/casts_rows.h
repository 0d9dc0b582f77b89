// The row routines of conversions between pixel types.
#pragma once

#include "engine/levels.h"
#include "point/plane.h"

namespace zel {

constexpr int32_t PIXEL_TYPES = 5;

struct CastRows {
  PlaneRoutine convert[PIXEL_TYPES][PIXEL_TYPES];  // by the types of source and result; null
                                                   // between equal types
  PlaneRoutine shift;  // I16 to U8: shifted right by PlaneConstant::value, low bits kept
  // Through Plane::table, of values of the result's type, I16 read as unsigned.
  PlaneRoutine bytesToWords;
  PlaneRoutine bytesToFloats;
  PlaneRoutine wordsToBytes;
  PlaneRoutine wordsToFloats;
};
ZEL_ROW_TABLE(CastRows, castRows)

}  // namespace zel
