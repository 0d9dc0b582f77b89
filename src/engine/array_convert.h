// Conversions between the numeric types of callers' arrays.
#pragma once

#include <cstdint>

#include "orlune_ptk.h"

namespace zel {

// Bytes of an element; its bits too where asked for. 0 for an unknown type.
int32_t ArrayTypeBits(int32_t arrayType, int32_t* bits);

// Each element goes through a 64-bit float; integers take the low bits of the cut value, without
// saturation. An unknown type reads and writes nothing. A count below 1 converts nothing.
void ArrayConvert(const void* source, int32_t sourceType, void* destination,
                  int32_t destinationType, int64_t count);

// The ArrayType of a scalar image type's pixels; -1 for other types.
int32_t NativeArrayType(int32_t imageType);

}  // namespace zel
