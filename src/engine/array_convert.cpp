// Conversions between the numeric types of callers' arrays.
#include "engine/array_convert.h"

#include <cstring>

#include "engine/array_convert_rows.h"

namespace zel {

int32_t ArrayTypeBits(int32_t arrayType, int32_t* bits) {
  constexpr int32_t bytesByType[ARRAY_TYPES] = {1, 4, 2, 4, 8, 0, 2, 4, 1};
  const int32_t bytes = arrayType >= 0 && arrayType < ARRAY_TYPES ? bytesByType[arrayType] : 0;
  if (bits) *bits = bytes * 8;
  return bytes;
}

void ArrayConvert(const void* source, int32_t sourceType, void* destination,
                  int32_t destinationType, int64_t count) {
  const int32_t sourceBytes = ArrayTypeBits(sourceType, nullptr);
  if (sourceBytes == 0 || ArrayTypeBits(destinationType, nullptr) == 0 || count < 1) return;
  if (sourceType == destinationType) {
    std::memcpy(destination, source, static_cast<size_t>(count) * static_cast<size_t>(sourceBytes));
    return;
  }
  arrayRows().from[sourceType].to[destinationType](source, destination, count);
}

int32_t NativeArrayType(int32_t imageType) {
  switch (imageType) {
    case IMAGE_U8:
      return ARRAY_U8;
    case IMAGE_I16:
      return ARRAY_I16;
    case IMAGE_SGL:
      return ARRAY_SGL;
    default:
      return -1;
  }
}

}  // namespace zel
