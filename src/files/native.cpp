// The native format: a big-endian header of 512 bytes with the calibration, then packed rows in
// the order of the machine, but for colour.
#include "files/native.h"

#include <bit>
#include <cstring>
#include <iterator>

#include "core/pixel_types.h"
#include "files/bytes.h"

namespace zel {
namespace {

constexpr uint8_t TAG[4] = {'O', 'R', 'L', 'N'};
constexpr int64_t HEADER_BYTES = 512;
constexpr uint32_t VERSION = 1;
constexpr uint32_t FIXED_WORD = 2;

constexpr int AT_VERSION = 4;
constexpr int AT_TYPE_CODE = 6;
constexpr int AT_BITS = 8;
constexpr int AT_PLANES = 10;
constexpr int AT_FIXED_WORD = 12;
constexpr int AT_WIDTH = 16;
constexpr int AT_HEIGHT = 18;
constexpr int AT_RATIO = 20;
constexpr int AT_UNIT = 24;

// By type code less 1. Code 3 is read and never written.
constexpr PixelClass CLASSES[] = {CLASS_U8,  CLASS_RGB32,   CLASS_COMPLEX24,
                                  CLASS_U16, CLASS_COMPLEX, CLASS_SGL};

struct WrittenType {
  uint32_t typeCode, bits, planes;
  PixelClass pixelClass;
};
// By image type.
constexpr WrittenType WRITTEN[] = {{1, 8, 1, CLASS_U8},
                                   {4, 16, 1, CLASS_U16},
                                   {6, 32, 1, CLASS_SGL},
                                   {5, 64, 2, CLASS_COMPLEX},
                                   {2, 32, 3, CLASS_RGB32}};

bool IsNative(const uint8_t (&start)[SIGNATURE_BYTES], int64_t) {
  return std::memcmp(start, TAG, sizeof(TAG)) == 0;
}

Status ReadHeader(const OpenFile& file, FileContext* context) {
  uint8_t header[HEADER_BYTES];
  const Status status = FileReadAt(file, 0, header, HEADER_BYTES, STATUS_BAD_FILE_HEADER);
  if (status != STATUS_OK) return status;
  context->width = BigAt16(header + AT_WIDTH);
  context->height = BigAt16(header + AT_HEIGHT);
  context->ratioX = context->ratioY = std::bit_cast<float>(BigAt32(header + AT_RATIO));
  context->unit = BigAt16(header + AT_UNIT);  // the upper half of a 32-bit field
  context->swapBytes = 0;
  context->dataOffset = HEADER_BYTES;
  context->scaleToRange = 0;
  if (BigAt16(header + AT_VERSION) != VERSION) return STATUS_BAD_FILE_HEADER;
  const uint32_t typeCode = BigAt16(header + AT_TYPE_CODE);
  if (typeCode < 1 || typeCode > std::size(CLASSES)) return STATUS_BAD_FILE_HEADER;
  context->pixelClass = CLASSES[typeCode - 1];
  return STATUS_OK;
}

Status WriteHeader(const OpenFile& file, FileContext* context) {
  if (!TypeHasPixels(context->imageType)) return STATUS_BAD_FILE_HEADER;
  const WrittenType& type = WRITTEN[context->imageType];
  context->pixelClass = type.pixelClass;
  context->swapBytes = 0;
  context->dataOffset = HEADER_BYTES;

  uint8_t header[HEADER_BYTES] = {};
  std::memcpy(header, TAG, sizeof(TAG));
  BigPut16(header + AT_VERSION, VERSION);
  BigPut16(header + AT_TYPE_CODE, type.typeCode);
  BigPut16(header + AT_BITS, type.bits);
  BigPut16(header + AT_PLANES, type.planes);
  BigPut16(header + AT_FIXED_WORD, FIXED_WORD);
  // Sizes above 65535 are cut to their low bits, with all pixels following: kept.
  BigPut16(header + AT_WIDTH, static_cast<uint32_t>(context->width));
  BigPut16(header + AT_HEIGHT, static_cast<uint32_t>(context->height));
  BigPut32(header + AT_RATIO, std::bit_cast<uint32_t>(context->ratioX));
  BigPut32(header + AT_UNIT, static_cast<uint32_t>(context->unit) << 16);
  return FileWriteAt(file, 0, header, HEADER_BYTES, STATUS_BAD_FILE_HEADER);
}

}  // namespace

const FormatOperations NATIVE_FORMAT = {.format = FORMAT_NATIVE,
                                        .fileType = FILE_FORMAT_NATIVE,
                                        .recognises = &IsNative,
                                        .readHeader = &ReadHeader,
                                        .readData = &PixelStreamReadRest,
                                        .checkImage = nullptr,
                                        .writeHeader = &WriteHeader,
                                        .writeData = &PixelRowsWriteAll,
                                        .sparesColourRows = false};

}  // namespace zel
