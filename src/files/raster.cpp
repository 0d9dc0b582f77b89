// The two bare layouts: pixels behind a size of 4 bytes, and pixels alone. Nothing marks such
// files, so only the library's own callers reach them.
#include "files/raster.h"

#include "core/pixel_types.h"
#include "files/bytes.h"

namespace zel {
namespace {

constexpr int64_t SIZE_BYTES = 4;

// By image type.
constexpr PixelClass WRITTEN[] = {CLASS_U8, CLASS_U16, CLASS_SGL, CLASS_COMPLEX, CLASS_RGB32};

Status ReadHeader(const OpenFile& file, FileContext* context) {
  uint8_t size[SIZE_BYTES];
  const Status status = FileReadAt(file, 0, size, SIZE_BYTES, STATUS_BAD_FILE_HEADER);
  if (status != STATUS_OK) return status;
  // Little-endian, though the writer stores big-endian numbers: kept.
  context->width = LittleAt16(size);
  context->height = LittleAt16(size + 2);
  context->dataOffset = SIZE_BYTES;
  context->swapBytes = 0;
  context->scaleToRange = 0;
  return STATUS_OK;
}

Status WriteHeader(const OpenFile& file, FileContext* context) {
  if (!TypeHasPixels(context->imageType)) return STATUS_BAD_FILE_HEADER;
  context->pixelClass = WRITTEN[context->imageType];
  context->swapBytes = 0;
  context->dataOffset = SIZE_BYTES;
  uint8_t size[SIZE_BYTES];
  BigPut16(size, static_cast<uint32_t>(context->width));
  BigPut16(size + 2, static_cast<uint32_t>(context->height));
  return FileWriteAt(file, 0, size, SIZE_BYTES, STATUS_BAD_FILE_HEADER);
}

}  // namespace

const FormatOperations RASTER_FORMAT = {.format = FORMAT_RSTR,
                                        .fileType = 0,
                                        .recognises = nullptr,
                                        .readHeader = &ReadHeader,
                                        .readData = &PixelStreamReadRest,
                                        .checkImage = nullptr,
                                        .writeHeader = &WriteHeader,
                                        .writeData = &PixelRowsWriteAll,
                                        .sparesColourRows = false};

const FormatOperations RAW_FORMAT = {.format = FORMAT_RAW,
                                     .fileType = 0,
                                     .recognises = nullptr,
                                     .readHeader = nullptr,
                                     .readData = &PixelStreamReadRest,
                                     .checkImage = nullptr,
                                     .writeHeader = nullptr,
                                     .writeData = nullptr,
                                     .sparesColourRows = false};

}  // namespace zel
