// Conversions between the numeric types of callers' arrays.
#pragma once

#include <cstdint>

#include "core/views.h"
#include "orlune_ptk.h"

namespace zel {

// Bytes of an element; its bits too where asked for. 0 for an unknown type.
int32_t ArrayTypeBits(int32_t arrayType, int32_t* bits);

// Each element goes through a 64-bit float; integers take the low bits of the truncated value,
// without saturation. An unknown type reads and writes nothing. A count below 1 converts nothing;
// one is below 2^31.
void ArrayConvert(const void* source, int32_t sourceType, void* destination,
                  int32_t destinationType, int64_t count);

// The same for all rows of two views of one size, on several threads where that repays. The types
// are those of their elements, and known.
void ArrayConvertRows(const PixelView& source, int32_t sourceType, const PixelView& destination,
                      int32_t destinationType);

// An array as rows of `width` elements. What is only read may be constant.
PixelView ArrayView(const void* array, int32_t arrayType, int32_t width, int32_t height);

// The ArrayType of a scalar image type's pixels; -1 for other types.
int32_t NativeArrayType(int32_t imageType);

}  // namespace zel
