// Looks bytes up in a table of 256, which fits the vector registers.
#include "point/byte_table_rows.h"

#if defined(ZEL_LEVEL_v3) || defined(ZEL_LEVEL_v4)
#include <immintrin.h>
#endif

namespace zel::ZEL_LEVEL {
namespace {

void Lookup(const Plane& plane) {
  const uint8_t* table = plane.table;
  ForPixels<uint8_t, uint8_t>(plane, [=](uint8_t a) { return table[a]; });
}

}  // namespace

extern const ByteTableRows byteTableRows = {&Lookup};

}  // namespace zel::ZEL_LEVEL
