// Conversions between the numeric types of callers' arrays.
#include "engine/array_convert.h"

#include "engine/array_convert_rows.h"

namespace zel {

int32_t ArrayTypeBits(int32_t arrayType, int32_t* bits) {
  constexpr int32_t bytesByType[ARRAY_TYPES] = {1, 4, 2, 4, 8, 0, 2, 4, 1};
  const int32_t bytes = arrayType >= 0 && arrayType < ARRAY_TYPES ? bytesByType[arrayType] : 0;
  if (bits) *bits = bytes * 8;
  return bytes;
}

PixelView ArrayView(const void* array, int32_t arrayType, int32_t width, int32_t height) {
  const int32_t bytes = ArrayTypeBits(arrayType, nullptr);
  return {.origin = static_cast<uint8_t*>(const_cast<void*>(array)),
          .pitch = int64_t{width} * bytes,
          .width = width,
          .height = height,
          .type = -1,
          .pixelBytes = static_cast<int16_t>(bytes)};
}

namespace {

ArrayConverter ConverterOf(int32_t sourceType, int32_t destinationType) {
  return arrayRows().from[sourceType].to[destinationType];
}

PointViews ConversionViews(const PixelView& source, const PixelView& destination) {
  return {.first = source, .second = {}, .result = destination, .mask = {}};
}

}  // namespace

void ArrayConvert(const void* source, int32_t sourceType, void* destination,
                  int32_t destinationType, int64_t count) {
  const auto width = static_cast<int32_t>(count);
  const PixelView from = ArrayView(source, sourceType, width, 1);
  const PixelView to = ArrayView(destination, destinationType, width, 1);
  if (from.pixelBytes == 0 || to.pixelBytes == 0 || count < 1) return;
  ConverterOf(sourceType, destinationType)(ConversionViews(from, to), {});
}

void ArrayConvertRows(const PixelView& source, int32_t sourceType, const PixelView& destination,
                      int32_t destinationType) {
  PointWalk(ConversionViews(source, destination), ConverterOf(sourceType, destinationType), {});
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
