// Uncompressed bitmaps: a header of 54 bytes, a colour table, and rows from the bottom to the top.
#include "files/bmp.h"

#include <algorithm>

#include "files/bytes.h"
#include "files/samples_rows.h"

namespace zel {
namespace {

constexpr int64_t HEADER_BYTES = 54;  // the file header's 14 and the information header's 40
constexpr int64_t TABLE_BYTES = 4 * TABLE_ENTRIES;

constexpr int AT_FILE_SIZE = 2;
constexpr int AT_DATA_OFFSET = 10;
constexpr int AT_INFO_SIZE = 14;
constexpr int AT_WIDTH = 18;
constexpr int AT_HEIGHT = 22;
constexpr int AT_PLANES = 26;
constexpr int AT_BITS = 28;
constexpr int AT_IMAGE_SIZE = 34;
constexpr int AT_COLOURS_USED = 46;
constexpr int AT_COLOURS_IMPORTANT = 50;

constexpr uint32_t INFO_SIZE = 40;
constexpr uint32_t COLOUR_MASK = 0xFFFFFF;

int64_t RoundedUpTo4(int64_t value) {
  return (value + 3) / 4 * 4;
}

// The table lies before the pixels, wherever these are.
Status ReadTable(const OpenFile& file, uint32_t entries, FileContext* context) {
  uint8_t table[TABLE_BYTES];
  const int64_t bytes = 4 * int64_t{entries};
  const Status status =
      FileReadAt(file, context->dataOffset - bytes, table, bytes, STATUS_BAD_FILE_HEADER);
  if (status != STATUS_OK) return status;
  for (uint32_t i = 0; i < TABLE_ENTRIES; i++) {
    context->table[i] = i < entries ? LittleAt32(table + 4 * i) & COLOUR_MASK : i * TABLE_GRAY_STEP;
  }
  context->tableCount = entries;
  return STATUS_OK;
}

// Only with the file's own length behind the mark.
bool IsBitmap(const uint8_t (&start)[SIGNATURE_BYTES], int64_t fileBytes) {
  return start[0] == 'B' && start[1] == 'M' && LittleAt32(start + AT_FILE_SIZE) == fileBytes;
}

Status ReadHeader(const OpenFile& file, FileContext* context) {
  uint8_t header[HEADER_BYTES];
  const Status status = FileReadAt(file, 0, header, HEADER_BYTES, STATUS_BAD_FILE_HEADER);
  if (status != STATUS_OK) return status;
  context->swapBytes = 1;
  context->scaleToRange = 0;
  context->dataOffset = static_cast<int32_t>(LittleAt32(header + AT_DATA_OFFSET));
  context->width = static_cast<int32_t>(LittleAt32(header + AT_WIDTH));
  context->height = static_cast<int32_t>(LittleAt32(header + AT_HEIGHT));

  uint32_t entries = 0;
  switch (LittleAt16(header + AT_BITS)) {
    case 4:
      context->pixelClass = CLASS_BITS4;
      entries = 16;
      break;
    case 8:
      context->pixelClass = CLASS_U8;
      entries = TABLE_ENTRIES;
      break;
    case 24:
      context->pixelClass = CLASS_RGB24;
      break;
    default:
      return STATUS_BAD_FILE_HEADER;
  }
  // Top-down files, which have a negative height, are among what is refused. A width has to have
  // an even one above it.
  if (context->width < 0 || context->height < 0 || context->width == INT32_MAX) {
    return STATUS_BAD_FILE_HEADER;
  }
  return context->tableWanted && entries > 0 ? ReadTable(file, entries, context) : STATUS_OK;
}

Status ReadData(const OpenFile& file, const FileContext& context, PixelStream* stream) {
  stream->view = TurnedOver(stream->view);
  // With 4 bits and an odd width the last pixel of a row is in no byte that is read, and the stride
  // may come out short: kept.
  const int64_t width = context.width;
  const int64_t rowBytes = context.pixelClass == CLASS_BITS4   ? width / 2
                           : context.pixelClass == CLASS_RGB24 ? 3 * width
                                                               : width;
  const int64_t stride = RoundedUpTo4(rowBytes);
  // A row that the file's end cuts is not read at all.
  const int64_t behindFirst = context.dataSize - context.dataOffset - rowBytes;
  const int64_t rowsThere = behindFirst < 0 ? 0 : stride > 0 ? 1 + behindFirst / stride : INT32_MAX;
  const int64_t rows = std::min<int64_t>(context.height, rowsThere);
  if (context.height == 0) return STATUS_OK;
  return PixelStreamRead(file, context, {context.dataOffset, rowBytes, stride, rows, 0}, stream);
}

Status CheckImage(const FileContext& context) {
  return context.imageType == IMAGE_U8 || context.imageType == IMAGE_RGB ? STATUS_OK
                                                                         : STATUS_BAD_FILE_HEADER;
}

Status WriteHeader(const OpenFile& file, FileContext* context) {
  const bool colour = context->imageType == IMAGE_RGB;
  const int64_t width = context->width;
  const int64_t height = context->height;
  // Gray rows are written without padding, and only their total is rounded up; files whose width is
  // no multiple of 4 come back skewed: kept.
  const int64_t bytes = colour ? RoundedUpTo4(3 * width) * height : RoundedUpTo4(width * height);
  context->pixelClass = colour ? CLASS_RGB24 : CLASS_U8;
  context->swapBytes = 1;
  context->dataOffset = colour ? HEADER_BYTES : HEADER_BYTES + TABLE_BYTES;

  uint8_t header[HEADER_BYTES + TABLE_BYTES] = {'B', 'M'};
  const auto put = [&](int at, int64_t value) {
    LittlePut32(header + at, static_cast<uint32_t>(value));
  };
  put(AT_FILE_SIZE, bytes + context->dataOffset);
  put(AT_DATA_OFFSET, context->dataOffset);
  put(AT_INFO_SIZE, INFO_SIZE);
  put(AT_WIDTH, width);
  put(AT_HEIGHT, height);
  LittlePut16(header + AT_PLANES, 1);
  LittlePut16(header + AT_BITS, colour ? 24 : 8);
  put(AT_IMAGE_SIZE, bytes);
  put(AT_COLOURS_USED, colour ? 0 : TABLE_ENTRIES);
  put(AT_COLOURS_IMPORTANT, colour ? 0 : TABLE_ENTRIES);
  if (!colour) {
    for (uint32_t i = 0; i < TABLE_ENTRIES; i++) {
      put(HEADER_BYTES + 4 * static_cast<int>(i), context->table[i]);
    }
  }
  return FileWriteAt(file, 0, header, context->dataOffset, STATUS_BAD_FILE_HEADER);
}

Status WriteData(const OpenFile& file, const FileContext& context, const PixelView& view) {
  if (FileSeek(file, context.dataOffset) != STATUS_OK) return STATUS_FILE_WRITE;
  const PixelView turned = TurnedOver(view);
  if (context.pixelClass == CLASS_RGB24) {
    const int64_t rowBytes = 3 * int64_t{view.width};
    const auto padding = static_cast<int32_t>(RoundedUpTo4(rowBytes) - rowBytes);
    const Status status = PixelRowsWrite(
        file, turned,
        {.pack = sampleRows().packBlueFirst, .sampleBytes = 3, .rowPadding = padding});
    // A row that could not be written is not reported: kept. Want of memory is.
    return status == STATUS_FILE_WRITE ? STATUS_OK : status;
  }
  const Status status = PixelRowsWrite(file, turned);
  if (status != STATUS_OK) return status;
  const int64_t bytes = int64_t{view.width} * view.height;
  const int64_t missing = RoundedUpTo4(bytes) - bytes;
  constexpr uint8_t rounding[3] = {};
  return missing > 0 ? FileWrite(file, rounding, missing) : STATUS_OK;
}

}  // namespace

const FormatOperations BMP_FORMAT = {.format = FORMAT_BMP,
                                     .fileType = FILE_FORMAT_BMP,
                                     .recognises = &IsBitmap,
                                     .readHeader = &ReadHeader,
                                     .readData = &ReadData,
                                     .checkImage = &CheckImage,
                                     .writeHeader = &WriteHeader,
                                     .writeData = &WriteData,
                                     .sparesColourRows = true};

}  // namespace zel
