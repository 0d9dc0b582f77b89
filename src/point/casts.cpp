// Conversions between pixel types: in place, into another image, through a table, and by a shift.
#include <algorithm>
#include <cstring>

#include "engine/array_convert.h"
#include "core/heap.h"
#include "core/kernels.h"
#include "core/numbers.h"
#include "point/casts_rows.h"
#include "point/operands.h"

namespace zel {
namespace {

constexpr uint32_t ENTRIES_U8 = 256;
constexpr uint32_t ENTRIES_I16 = 65536;
constexpr int32_t MAX_SHIFT = 8;

Plane PlaneOfImages(const Image& source, const Image& destination) {
  const PixelGrid read = PixelGridOf(source);
  const PixelGrid write = PixelGridOf(destination);
  int32_t readBytes = 1;
  int32_t writeBytes = 1;
  PixelSize(source.type, &readBytes);
  PixelSize(destination.type, &writeBytes);
  Plane plane{};
  plane.first = plane.second = read.origin;
  plane.firstPitch = plane.secondPitch = read.pitch;
  plane.firstBytes = plane.secondBytes = readBytes;
  plane.result = write.origin;
  plane.resultPitch = write.pitch;
  plane.resultBytes = writeBytes;
  plane.width = read.width;
  plane.height = read.height;
  return plane;
}

// Gives a destination the border and the size of the source, so that both have one line layout for
// pixels of one size. Without memory it keeps its own.
Status LayoutLikeSource(const Image& source, ImageRef destination, Image* record) {
  const int32_t border = record->border;
  record->border = source.border;
  const Status status = ImageSetSize(destination, source.width, source.height);
  if (status != STATUS_OK) record->border = border;
  return status;
}

void ImageConvertPixels(ImageRef source, ImageRef destination, Status* status) {
  const Image* from = ImageLookup(source, status);
  if (!from || destination == 0 || destination == source) return;
  Image* to = ImageLookup(destination, status);
  if (!to) return;
  if (!TypeHasPixels(from->type)) {
    *status = STATUS_BAD_OPERAND_TYPE;
    return;
  }
  if (!TypeHasPixels(to->type)) {
    *status = STATUS_OPERAND_TYPE_DIFFERS;
    return;
  }
  *status = ImageCopyInfo(source, destination);
  if (*status == STATUS_OK) *status = LayoutLikeSource(*from, destination, to);
  if (*status != STATUS_OK || from->width == 0) return;

  Plane plane = PlaneOfImages(*from, *to);
  if (from->type == to->type) {
    // Whole lines, from pixel (0, 0) on: the pixels of the border that lie between them come along.
    std::memcpy(plane.result, plane.first,
                static_cast<size_t>(plane.firstPitch) * static_cast<size_t>(plane.height));
  } else {
    PlaneRun(castRows().convert[from->type][to->type], &plane);
  }
}

// The reference names the converted pixels only when all went well.
void CastKernel(ImageRef image, const int32_t* type, Status* status) {
  const Image* from = ImageLookup(image, status);
  if (!from || from->type == *type) return;
  if (*type < IMAGE_U8 || *type > IMAGE_OPAQUE) {
    *status = STATUS_BAD_LAYOUT_TYPE;
  } else if (!TypeHasPixels(from->type)) {
    *status = STATUS_BAD_OPERAND_TYPE;
  } else if (!TypeHasPixels(*type)) {
    *status = STATUS_OPERAND_TYPE_DIFFERS;
  }
  if (*status != STATUS_OK) return;

  Image like = *from;
  like.type = static_cast<int16_t>(*type);
  ReplacementImage replacement(status);
  if (!replacement.Create(image, like)) return;
  ImageConvertPixels(image, replacement.reference(), status);
  if (*status == STATUS_OK) replacement.Written();
}

// Brings a table to the wanted length; entries beyond the given ones hold their own index.
Status TableComplete(Handle table, uint32_t entries) {
  uint32_t count = 0;
  Status status = VectorCount(table, &count);
  if (status != STATUS_OK || count == entries) return status;
  status = VectorResize(table, sizeof(float), entries);
  if (status != STATUS_OK) return status;
  auto* values = VectorData<float>(table);
  for (uint32_t i = count; i < entries; i++) values[i] = static_cast<float>(i);
  return STATUS_OK;
}

// Integer results take the low bits of the cut entries, worked out once for each entry.
template <class T>
bool TableCut(const float* values, uint32_t entries, WorkArray<T>* cut) {
  if (!cut->Allocate(entries)) return false;
  for (uint32_t i = 0; i < entries; i++) (*cut)[i] = CutLow<T>(static_cast<double>(values[i]));
  return true;
}

void ConvertByLookupKernel(ImageRef source, ImageRef destination, const Handle* table,
                           Status* status) {
  const Image* from = ImageLookup(source, status);
  if (!from || destination == 0 || destination == source) return;
  const Image* to = ImageLookup(destination, status);
  if (!to) return;
  if (!TypeIsInteger(from->type)) {
    *status = STATUS_BAD_TYPE;
    return;
  }
  const bool fromBytes = from->type == IMAGE_U8;
  if (to->type != IMAGE_SGL && to->type != (fromBytes ? IMAGE_I16 : IMAGE_U8)) {
    *status = STATUS_DESTINATION_TYPE_DIFFERS;
    return;
  }
  const uint32_t entries = fromBytes ? ENTRIES_U8 : ENTRIES_I16;
  *status = TableComplete(*table, entries);
  if (*status != STATUS_OK) return;

  const CastRows& rows = castRows();
  const auto* values = VectorData<float>(*table);
  WorkArray<uint8_t> bytes;
  WorkArray<int16_t> words;
  const void* results = values;
  PlaneRoutine routine = fromBytes ? rows.bytesToFloats : rows.wordsToFloats;
  bool enoughMemory = true;
  if (to->type == IMAGE_U8) {
    enoughMemory = TableCut(values, entries, &bytes);
    results = bytes.data();
    routine = rows.wordsToBytes;
  } else if (to->type == IMAGE_I16) {
    enoughMemory = TableCut(values, entries, &words);
    results = words.data();
    routine = rows.bytesToWords;
  }
  if (!enoughMemory) {
    *status = STATUS_MEMORY_FULL;
    return;
  }
  DestinationLikeSource(source, destination, status);
  if (*status != STATUS_OK) return;
  Plane plane = PlaneOfImages(*from, *to);
  plane.table = results;
  PlaneRun(routine, &plane);
}

void Shift16To8Kernel(ImageRef source, ImageRef destination, const int32_t* shift, Status* status) {
  const Image* from = ImageLookup(source, status);
  if (!from) return;
  if (from->type != IMAGE_I16) {
    *status = STATUS_BAD_TYPE;
    return;
  }
  const Image* to = ImageLookup(destination == 0 ? source : destination, status);
  if (!to) return;
  if (to->type != IMAGE_U8) {
    *status = STATUS_BAD_TYPE;
    return;
  }
  DestinationLikeSource(source, destination, status);
  if (*status != STATUS_OK) return;
  Plane plane = PlaneOfImages(*from, *to);
  plane.constant.value = std::clamp(*shift, 0, MAX_SHIFT);
  PlaneRun(castRows().shift, &plane);
}

}  // namespace
}  // namespace zel

int32_t ZEL_Cast(ImageRef image, int32_t type) {
  zel::Status status = zel::STATUS_OK;
  zel::CastKernel(image, &type, &status);
  return ZEL_ProcessError("ZEL_Cast", status);
}

int32_t ZEL_Convert(ImageRef source, ImageRef destination) {
  zel::Status status = zel::STATUS_OK;
  zel::ImageConvertPixels(source, destination, &status);
  return ZEL_ProcessError("ZEL_Convert", status);
}

int32_t ZEL_ConvertByLookup(ImageRef source, ImageRef destination, int32_t arrayType,
                            const void* array, int32_t count) {
  zel::Status status = zel::STATUS_OK;
  zel::ScopedVector table;
  // Entries beyond the longest table are never looked at.
  const int32_t entries = std::clamp(count, 0, static_cast<int32_t>(zel::ENTRIES_I16));
  if (!array && entries > 0) {
    status = zel::STATUS_NULL_POINTER;
  } else {
    status = table.Create();
  }
  if (status == zel::STATUS_OK) {
    status = zel::VectorResize(table.handle(), sizeof(float), static_cast<uint64_t>(entries));
  }
  if (status == zel::STATUS_OK) {
    const zel::Handle handle = table.handle();
    zel::ArrayConvert(array, arrayType, zel::VectorData<float>(handle), ARRAY_SGL, entries);
    zel::ConvertByLookupKernel(source, destination, &handle, &status);
  }
  return ZEL_ProcessError("ZEL_ConvertByLookup", status);
}

// The name in the report has a small t.
int32_t ZEL_Shift16To8(ImageRef source, ImageRef destination, int32_t shift) {
  zel::Status status = zel::STATUS_OK;
  zel::Shift16To8Kernel(source, destination, &shift, &status);
  return ZEL_ProcessError("ZEL_Shift16to8", status);
}
