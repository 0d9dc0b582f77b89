// Reading the directory of a TIFF file. Values larger than an entry stay in the file: they are
// checked against its length at once, and read when they are needed.
#include "files/tiff_tags.h"

#include <algorithm>
#include <cstring>
#include <iterator>
#include <utility>

#include "core/heap.h"
#include "files/bytes.h"

namespace zel {
namespace {

constexpr TiffTagNumber KEPT[TIFF_TAGS_KEPT] = {
    TAG_NEW_SUBFILE_TYPE, TAG_SUBFILE_TYPE,      TAG_WIDTH,
    TAG_HEIGHT,           TAG_BITS_PER_SAMPLE,   TAG_COMPRESSION,
    TAG_PHOTOMETRIC,      TAG_STRIP_OFFSETS,     TAG_SAMPLES_PER_PIXEL,
    TAG_ROWS_PER_STRIP,   TAG_STRIP_BYTE_COUNTS, TAG_PLANAR_CONFIGURATION,
    TAG_COLOUR_MAP};

constexpr int64_t FIELD_BYTES = 4;

uint16_t Number16(const FileContext& context, const uint8_t* bytes) {
  return context.swapBytes == 1 ? BigAt16(bytes) : LittleAt16(bytes);
}

uint32_t Number32(const FileContext& context, const uint8_t* bytes) {
  return context.swapBytes == 1 ? BigAt32(bytes) : LittleAt32(bytes);
}

// 0 for an unknown type.
int64_t TypeBytes(uint16_t type) {
  switch (type) {
    case TIFF_BYTE:
    case TIFF_ASCII:
      return 1;
    case TIFF_SHORT:
      return 2;
    case TIFF_LONG:
      return 4;
    case TIFF_RATIONAL:
      return 8;
    default:
      return 0;
  }
}

int64_t ValueBytes(const TiffTag& tag) {
  return tag.count * TypeBytes(tag.type);
}

// Only a single value can be in the entry itself: two SHORTs, which others put there, are looked
// for at the offset that they form. Kept.
bool LiesInEntry(const TiffTag& tag) {
  return tag.count == 1 && TypeBytes(tag.type) <= FIELD_BYTES;
}

// From the file's order to the host's, element by element.
void ToHostOrder(uint16_t type, uint8_t* value, int64_t bytes) {
  const int64_t word = type == TIFF_SHORT ? 2 : type == TIFF_LONG || type == TIFF_RATIONAL ? 4 : 1;
  for (int64_t at = 0; at + word <= bytes; at += word) {
    if (word == 2) std::swap(value[at], value[at + 1]);
    if (word == 4) std::reverse(value + at, value + at + 4);
  }
}

// The number at the start of a value: its first bytes in host order, as many as a field of the
// wanted width takes, whatever their type. Only a SHORT counts as one number in a wider field.
uint32_t ScalarOf(const FileContext& context, const TiffTag& tag, int64_t fieldBytes) {
  uint8_t value[FIELD_BYTES];
  std::memcpy(value, tag.field, FIELD_BYTES);
  if (context.swapBytes == 1) ToHostOrder(tag.type, value, FIELD_BYTES);
  const int64_t wanted = tag.type == TIFF_SHORT ? 2 : fieldBytes;
  const int64_t there = std::min({wanted, ValueBytes(tag), FIELD_BYTES});
  uint32_t number = 0;
  for (int64_t i = 0; i < there; i++) number |= uint32_t{value[i]} << (8 * i);
  return number;
}

int32_t Wide(const FileContext& context, TiffTagNumber number, int32_t otherwise) {
  const TiffTag* tag = TiffFind(context, number);
  return tag ? static_cast<int32_t>(ScalarOf(context, *tag, 4)) : otherwise;
}

uint16_t Narrow(const FileContext& context, TiffTagNumber number, uint16_t otherwise) {
  const TiffTag* tag = TiffFind(context, number);
  return tag ? static_cast<uint16_t>(ScalarOf(context, *tag, 2)) : otherwise;
}

uint16_t NarrowAmong(const FileContext& context, TiffTagNumber number,
                     std::initializer_list<uint16_t> accepted, uint16_t otherwise) {
  const uint16_t value = Narrow(context, number, otherwise);
  return std::find(accepted.begin(), accepted.end(), value) != accepted.end() ? value : otherwise;
}

Status KeepEntry(const OpenFile& file, const uint8_t* entry, FileContext* context) {
  const uint16_t number = Number16(*context, entry);
  const auto* kept = std::find(std::begin(KEPT), std::end(KEPT), number);
  if (kept == std::end(KEPT)) return STATUS_OK;

  TiffTag tag{true, Number16(*context, entry + 2), Number32(*context, entry + 4), 0, {}};
  if (TypeBytes(tag.type) == 0) return STATUS_BAD_FILE_FORMAT;
  if (LiesInEntry(tag)) {
    std::memcpy(tag.field, entry + 8, FIELD_BYTES);
  } else {
    tag.offset = static_cast<int32_t>(Number32(*context, entry + 8));
    const int64_t bytes = ValueBytes(tag);
    if (bytes > context->dataSize) return STATUS_BAD_FILE_FORMAT;
    if (FileSeek(file, tag.offset) != STATUS_OK) return STATUS_FILE_SEEK;
    if (tag.offset + bytes > context->dataSize && bytes > 0) return STATUS_BAD_FILE_FORMAT;
    const int64_t first = std::min(bytes, FIELD_BYTES);
    int64_t got = 0;
    if (FileRead(file, tag.field, first, &got) != STATUS_OK || got < first) {
      return STATUS_BAD_FILE_FORMAT;
    }
  }
  context->tags[kept - std::begin(KEPT)] = tag;  // of tags that come twice the last one counts
  return STATUS_OK;
}

}  // namespace

Status TiffLoadDirectory(const OpenFile& file, FileContext* context) {
  uint8_t countField[2];
  const Status status =
      FileReadAt(file, context->dataOffset, countField, 2, STATUS_BAD_FILE_FORMAT);
  if (status != STATUS_OK) return status;
  const int64_t entries = Number16(*context, countField);
  const int64_t bytes = entries * TIFF_ENTRY_BYTES;
  if (context->dataOffset + 2 + bytes > context->dataSize) return STATUS_BAD_FILE_FORMAT;
  WorkArray<uint8_t> directory;
  if (!directory.Allocate(static_cast<uint64_t>(bytes))) return STATUS_MEMORY_FULL;
  int64_t got = 0;
  if (FileRead(file, directory.data(), bytes, &got) != STATUS_OK || got < bytes) {
    return STATUS_BAD_FILE_FORMAT;
  }
  for (int64_t i = 0; i < entries; i++) {
    const Status kept = KeepEntry(file, directory.data() + i * TIFF_ENTRY_BYTES, context);
    if (kept != STATUS_OK) return kept;
  }
  return STATUS_OK;
}

const TiffTag* TiffFind(const FileContext& context, TiffTagNumber number) {
  const auto* kept = std::find(std::begin(KEPT), std::end(KEPT), number);
  const TiffTag& tag = context.tags[kept - std::begin(KEPT)];
  return tag.present ? &tag : nullptr;
}

Status TiffDecodeEssentials(const FileContext& context, TiffEssentials* essentials) {
  TiffEssentials& e = *essentials;
  e.width = Wide(context, TAG_WIDTH, 0);
  e.height = Wide(context, TAG_HEIGHT, 0);
  e.samplesPerPixel = NarrowAmong(context, TAG_SAMPLES_PER_PIXEL, {1, 3}, 1);
  e.bitsPerSample = NarrowAmong(context, TAG_BITS_PER_SAMPLE, {1, 2, 4, 8, 16}, 1);
  e.compression = Narrow(context, TAG_COMPRESSION, 1);
  e.photometric = NarrowAmong(context, TAG_PHOTOMETRIC, {0, 1, 2, 3}, 1);
  e.planarConfiguration = Narrow(context, TAG_PLANAR_CONFIGURATION, 1);
  e.rowsPerStrip = Wide(context, TAG_ROWS_PER_STRIP, e.height);
  if (e.rowsPerStrip < 0 || e.rowsPerStrip > e.height) e.rowsPerStrip = e.height;
  // A width has to have an even one above it.
  const bool sized = e.width > 0 && e.width < INT32_MAX && e.height > 0;
  return sized && e.compression == 1 ? STATUS_OK : STATUS_BAD_FILE_FORMAT;
}

Status TiffReadValue(const OpenFile& file, const FileContext& context, const TiffTag& tag,
                     uint8_t* value, int64_t room, int64_t* bytes) {
  *bytes = std::min(ValueBytes(tag), room);
  if (LiesInEntry(tag)) {
    std::memcpy(value, tag.field, static_cast<size_t>(*bytes));
  } else {
    const Status status = FileReadAt(file, tag.offset, value, *bytes, STATUS_BAD_FILE_FORMAT);
    if (status != STATUS_OK) return status;
  }
  if (context.swapBytes == 1) ToHostOrder(tag.type, value, *bytes);
  return STATUS_OK;
}

Status TiffArrayReader::Element(int64_t index, uint32_t* value) {
  *value = 0;
  if (tag_.type != TIFF_BYTE && tag_.type != TIFF_SHORT && tag_.type != TIFF_LONG) return STATUS_OK;
  const int64_t elementBytes = TypeBytes(tag_.type);
  const int64_t at = index * elementBytes;
  const uint8_t* element = tag_.field;
  if (!LiesInEntry(tag_)) {
    if (at < firstByte_ || at + elementBytes > firstByte_ + bytes_) {
      const int64_t bytes = std::min(WINDOW_BYTES, ValueBytes(tag_) - at);
      const Status status =
          FileReadAt(file_, tag_.offset + at, window_, bytes, STATUS_BAD_FILE_FORMAT);
      if (status != STATUS_OK) return status;
      firstByte_ = at;
      bytes_ = bytes;
    }
    element = window_ + (at - firstByte_);
  }
  *value = elementBytes == 1   ? *element
           : elementBytes == 2 ? Number16(context_, element)
                               : Number32(context_, element);
  return STATUS_OK;
}

}  // namespace zel
