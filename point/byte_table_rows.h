// Row routine that looks bytes up in a table of 256.
#pragma once

#include "core/processor.h"
#include "point/plane.h"

namespace zel {

struct ByteTableRows {
  PlaneRoutine lookup;  // U8 to U8 through Plane::table
};
ZEL_ROW_TABLE(ByteTableRows, byteTableRows)

}  // namespace zel
