// The state that must hold between any two calls of the library.
#include "core/world.h"

#include "core/images.h"
#include "core/tables.h"

namespace zel {
namespace {

const char* ImageFault(const ImageEntry& entry) {
  if (entry.recordHandle == 0) return nullptr;  // an image that could not be made
  const HandleEntry& record = *HandleRow(entry.recordHandle);
  if (record.kind != HANDLE_IMAGE_RECORD || !record.data) return "an image row has no record";
  const Image& image = *static_cast<const Image*>(record.data);
  if (image.pixels == 0 || HandleRow(image.pixels)->kind != HANDLE_IMAGE_PIXELS) {
    return "an image has no pixel block";
  }
  if (image.width < 0 || image.height < 0 || image.border < 0 || image.lineWidth < 0) {
    return "an image has a negative measure";
  }
  if ((image.width == 0) != (image.height == 0)) return "an image is empty one way only";
  int32_t pixelBytes = 0;
  if (PixelSize(image.type, &pixelBytes) != STATUS_OK) return nullptr;
  const int64_t bytes = (image.height + 2 * int64_t{image.border}) * image.lineWidth * pixelBytes;
  if (int64_t{HandleByteSize(image.pixels)} < bytes) return "a pixel block is too small";
  if (bytes > 0 && image.lineWidth < image.width + 2 * int64_t{image.border}) {
    return "a row of pixels is too short";
  }
  return nullptr;
}

}  // namespace

const char* WorldFault() {
  uint32_t images = 0;
  for (uint32_t row = 0; row < coreTables.imageCapacity; row++) {
    const ImageEntry& entry = coreTables.images[row];
    if (entry.reference == 0) continue;
    images++;
    if (entry.reference > coreTables.lastReference) return "a reference was never issued";
    for (uint32_t other = 0; other < row; other++) {
      if (coreTables.images[other].reference == entry.reference) return "a reference is not unique";
    }
    if (const char* fault = ImageFault(entry)) return fault;
  }
  if (images != coreTables.imageRows) return "the count of images is wrong";

  uint32_t handles = 1;
  for (uint32_t row = 1; row < coreTables.handleCapacity; row++) {
    const HandleEntry& entry = coreTables.handles[row];
    if (entry.kind == HANDLE_FREE) continue;
    handles++;
    if (entry.kind == HANDLE_FOREIGN) return "a caller's block is still wrapped";
    if (!entry.data && entry.elementSize != 0 && entry.count != 0 && entry.count2 != 0) {
      return "a handle counts elements it does not hold";
    }
  }
  if (handles != coreTables.handleRows) return "the count of handles is wrong";
  return nullptr;
}

}  // namespace zel
