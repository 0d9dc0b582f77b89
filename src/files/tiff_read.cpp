// Reading uncompressed TIFF: bilevel, gray, palette and colour images in strips.
#include "files/tiff_read.h"

#include <algorithm>

#include "core/pixel_types.h"
#include "files/bytes.h"
#include "files/samples.h"
#include "files/tiff_tags.h"

namespace zel {
namespace {

// Pixels that nothing was read for are inverted with the others, but no more of them than a file of
// this length might have been cut of: a few bytes may claim two thousand million pixels. A byte of
// a file becomes at most 16 of the image that is inverted.
constexpr int64_t UNREAD_BYTES = 1 << 20;
constexpr int64_t UNREAD_BYTES_A_BYTE = 16;

constexpr int64_t MAP_BYTES = 3 * 2 * int64_t{TABLE_ENTRIES};

Status ClassOf(const TiffEssentials& essentials, PixelClass* pixelClass) {
  const bool colour = essentials.samplesPerPixel == 3;
  if (colour && essentials.bitsPerSample != 8) return STATUS_BAD_FILE_HEADER;
  switch (essentials.bitsPerSample) {
    case 1:
      *pixelClass = CLASS_BITS1;
      break;
    case 2:
      *pixelClass = CLASS_BITS2;
      break;
    case 4:
      *pixelClass = CLASS_BITS4;
      break;
    case 8:
      *pixelClass = !colour                               ? CLASS_U8
                    : essentials.planarConfiguration == 1 ? CLASS_RGB24
                                                          : CLASS_RGB_PLANES;
      break;
    default:
      *pixelClass = CLASS_U16;
      break;
  }
  return STATUS_OK;
}

// A map of fewer than 768 values is taken as having all its count in each of the three colours:
// kept. What then lies behind its end is 0.
Status LoadColourMap(const OpenFile& file, const TiffTag& map, FileContext* context) {
  uint8_t values[MAP_BYTES] = {};
  int64_t bytes = 0;
  const Status status = TiffReadValue(file, *context, map, values, MAP_BYTES, &bytes);
  if (status != STATUS_OK) return status;
  const uint32_t entries = std::min(map.count, TABLE_ENTRIES);
  const auto highByte = [&](uint32_t position) { return uint32_t{values[2 * position + 1]}; };
  for (uint32_t i = 0; i < TABLE_ENTRIES; i++) {
    context->table[i] =
        i < entries ? highByte(i) << 16 | highByte(entries + i) << 8 | highByte(2 * entries + i)
                    : i * TABLE_GRAY_STEP;
  }
  context->tableCount = TABLE_ENTRIES;
  return STATUS_OK;
}

// Strips that follow each other in the file and in the image are read as one. A strip that ends
// with a part of a sample ends there: the part is no beginning of the next one's.
class StripJoiner {
 public:
  StripJoiner(const OpenFile& file, const FileContext& context, PixelStream* stream)
      : file_(file), context_(context), stream_(stream) {}

  Status Add(int64_t offset, int64_t bytes, int64_t position, int64_t nextPosition) {
    const int64_t unitBytes = ClassLayoutOf(context_.pixelClass).unitBytes;
    const bool follows = isWaiting_ && waiting_.rowBytes % unitBytes == 0 &&
                         offset == waiting_.offset + waiting_.rowBytes && position == nextPosition_;
    nextPosition_ = nextPosition;
    if (follows) {
      waiting_.rowBytes += bytes;
      return STATUS_OK;
    }
    const Status status = Read();
    waiting_ = {offset, bytes, bytes, 1, position};
    isWaiting_ = true;
    return status;
  }

  Status Read() {
    if (!isWaiting_) return STATUS_OK;
    isWaiting_ = false;
    return PixelStreamRead(file_, context_, waiting_, stream_);
  }

 private:
  const OpenFile& file_;
  const FileContext& context_;
  PixelStream* stream_;
  SampleRun waiting_{};
  bool isWaiting_ = false;
  int64_t nextPosition_ = 0;
};

Status ReadStrips(const OpenFile& file, const TiffEssentials& essentials,
                  const FileContext& context, PixelStream* stream) {
  const TiffTag* offsets = TiffFind(context, TAG_STRIP_OFFSETS);
  const TiffTag* counts = TiffFind(context, TAG_STRIP_BYTE_COUNTS);
  const bool planes = context.pixelClass == CLASS_RGB_PLANES;
  if (!offsets || essentials.rowsPerStrip < 1) return STATUS_BAD_FILE_FORMAT;
  const int64_t planeStrips =
      (int64_t{essentials.height} + essentials.rowsPerStrip - 1) / essentials.rowsPerStrip;
  const int64_t strips = planes ? 3 * planeStrips : planeStrips;
  // Without counts all pixels are read from the first offset.
  if (offsets->count < (counts ? strips : 1)) return STATUS_BAD_FILE_FORMAT;
  if (counts && counts->count < strips) return STATUS_BAD_FILE_FORMAT;

  TiffArrayReader offsetOf(file, context, *offsets);
  // 16-bit samples are taken as big-endian whatever the file's mark says, as the writer stores
  // them, and 24-bit ones as red, green, blue. The arrays keep the order of the mark.
  FileContext samples = context;
  samples.swapBytes = context.pixelClass == CLASS_U16 ? 1 : 0;
  const ClassLayout& layout = ClassLayoutOf(context.pixelClass);

  if (!counts) {
    uint32_t offset = 0;
    const Status status = offsetOf.Element(0, &offset);
    if (status != STATUS_OK) return status;
    const int64_t pixels = int64_t{essentials.width} * essentials.height;
    const int64_t bytes = pixels / 8 * layout.bitsPerPixel + pixels % 8 * layout.bitsPerPixel / 8;
    const SampleRun all{static_cast<int32_t>(offset), bytes, bytes, 1, 0};
    return PixelStreamRead(file, samples, all, stream);
  }

  TiffArrayReader countOf(file, context, *counts);
  StripJoiner joiner(file, samples, stream);
  int64_t position = 0;
  for (int64_t i = 0; i < strips; i++) {
    uint32_t offset = 0;
    uint32_t count = 0;
    Status status = offsetOf.Element(i, &offset);
    if (status == STATUS_OK) status = countOf.Element(i, &count);
    if (planes && i % planeStrips == 0) {
      if (status == STATUS_OK) status = joiner.Read();
      samples.planeIndex = static_cast<int32_t>(i / planeStrips);
      // The later planes of a colour image begin one and two pixels further on: kept.
      position = stream->view.type == IMAGE_RGB ? samples.planeIndex : 0;
    }
    // A count is bytes and a width pixels, and still the one is made a multiple of the other: kept.
    const int64_t bytes = count - count % static_cast<uint32_t>(essentials.width);
    const int64_t next =
        std::min(position + bytes / layout.unitBytes * layout.unitPixels, stream->Pixels() + 2);
    if (status == STATUS_OK) {
      status = joiner.Add(static_cast<int32_t>(offset), bytes, position, next);
    }
    if (status != STATUS_OK) return status;
    position = next;
  }
  return joiner.Read();
}

}  // namespace

Status TiffReadHeader(const OpenFile& file, FileContext* context) {
  uint8_t header[TIFF_HEADER_BYTES];
  Status status = FileReadAt(file, 0, header, TIFF_HEADER_BYTES, STATUS_BAD_FILE_HEADER);
  if (status != STATUS_OK) return status;
  const bool little = header[0] == 'I' && header[1] == 'I';
  context->swapBytes = little ? 0 : 1;
  context->dataOffset = static_cast<int32_t>(little ? LittleAt32(header + 4) : BigAt32(header + 4));
  status = TiffLoadDirectory(file, context);
  if (status != STATUS_OK) return status;

  TiffEssentials essentials{};
  status = TiffDecodeEssentials(*context, &essentials);
  if (status == STATUS_OK) status = ClassOf(essentials, &context->pixelClass);
  if (status != STATUS_OK) return status;
  context->width = essentials.width;
  context->height = essentials.height;
  context->scaleToRange = 0;
  const TiffTag* map = context->tableWanted ? TiffFind(*context, TAG_COLOUR_MAP) : nullptr;
  return map ? LoadColourMap(file, *map, context) : STATUS_OK;
}

Status TiffReadData(const OpenFile& file, const FileContext& context, PixelStream* stream) {
  TiffEssentials essentials{};
  Status status = TiffDecodeEssentials(context, &essentials);
  if (status == STATUS_OK) status = ReadStrips(file, essentials, context, stream);
  const bool inverts = essentials.photometric == 0 && TypeIsInteger(stream->view.type);
  if (status == STATUS_OK && inverts) {
    PixelStreamInvert(UNREAD_BYTES + UNREAD_BYTES_A_BYTE * context.dataSize, stream);
  }
  return status;
}

}  // namespace zel
