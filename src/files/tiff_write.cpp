// Writing uncompressed TIFF: 8-bit images with a palette, 16-bit ones and colour.
#include "files/tiff_write.h"

#include <algorithm>

#include "core/heap.h"
#include "files/bytes.h"
#include "files/pixel_stream.h"
#include "files/samples_rows.h"
#include "files/tiff_tags.h"

namespace zel {
namespace {

constexpr int32_t SIZE_LIMIT = 65535;  // sizes are stored in 16 bits
constexpr uint32_t PHOTOMETRIC_GRAY = 1;
constexpr uint32_t PHOTOMETRIC_RGB = 2;
constexpr uint32_t PHOTOMETRIC_PALETTE = 3;
constexpr int64_t DIRECTORY_AT = TIFF_HEADER_BYTES + 2;

struct StripPlan {
  int64_t rowsPerStrip;
  int64_t rowBytes;
  int64_t count;
  int64_t firstOffset;
};

struct Layout {
  int64_t entries;
  int64_t outOfLine;  // bytes of values that no entry holds
  StripPlan strips;
};

Layout LayoutOf(const FileContext& context) {
  const bool colour = context.imageType == IMAGE_RGB;
  const bool words = context.imageType == IMAGE_I16;
  Layout layout{};
  layout.entries = 11;
  layout.strips.rowsPerStrip = context.rowsPerStrip;
  layout.strips.rowBytes = int64_t{context.width} * (colour ? 3 : words ? 2 : 1);
  layout.strips.count = (context.height + layout.strips.rowsPerStrip - 1) / context.rowsPerStrip;
  // The 16 bits of a 16-bit file are stored in their entry and once more behind the directory:
  // kept.
  const int64_t bits = colour ? 6 : words ? 2 : 0;
  const int64_t map = colour || words ? 0 : 3 * 2 * int64_t{TABLE_ENTRIES};
  const int64_t arrays = layout.strips.count > 1 ? 2 * 4 * layout.strips.count : 0;
  layout.outOfLine = bits + map + arrays;
  layout.strips.firstOffset =
      DIRECTORY_AT + TIFF_ENTRY_BYTES * layout.entries + 4 + layout.outOfLine;
  return layout;
}

// Fills the bytes of a header in one of the two orders: entries from the front, their values from
// behind the directory.
class DirectoryWriter {
 public:
  DirectoryWriter(uint8_t* bytes, int64_t entries, bool little)
      : bytes_(bytes), little_(little), valueAt_(DIRECTORY_AT + TIFF_ENTRY_BYTES * entries + 4) {
    bytes_[0] = bytes_[1] = little ? 'I' : 'M';
    Put16(2, TIFF_MARK);
    Put32(4, TIFF_HEADER_BYTES);
    Put16(TIFF_HEADER_BYTES, static_cast<uint32_t>(entries));
  }

  void Short(TiffTagNumber tag, uint32_t value) { Put16(Entry(tag, TIFF_SHORT, 1), value); }
  void Long(TiffTagNumber tag, uint32_t value) { Put32(Entry(tag, TIFF_LONG, 1), value); }

  // An entry whose values were put at a place behind the directory.
  void Array(TiffTagNumber tag, TiffType type, int64_t count, int64_t at) {
    Put32(Entry(tag, type, static_cast<uint32_t>(count)), static_cast<uint32_t>(at));
  }

  // Values behind the directory, in the order of the calls.
  int64_t ValuesAt() const { return valueAt_; }
  void ShortValue(uint32_t value) {
    Put16(valueAt_, value);
    valueAt_ += 2;
  }
  void LongValue(int64_t value) {
    Put32(valueAt_, static_cast<uint32_t>(value));
    valueAt_ += 4;
  }

 private:
  int64_t Entry(TiffTagNumber tag, TiffType type, uint32_t count) {
    const int64_t at = entryAt_;
    entryAt_ += TIFF_ENTRY_BYTES;
    Put16(at, tag);
    Put16(at + 2, type);
    Put32(at + 4, count);
    return at + 8;
  }
  void Put16(int64_t at, uint32_t value) {
    little_ ? LittlePut16(bytes_ + at, value) : BigPut16(bytes_ + at, value);
  }
  void Put32(int64_t at, uint32_t value) {
    little_ ? LittlePut32(bytes_ + at, value) : BigPut32(bytes_ + at, value);
  }

  uint8_t* bytes_;
  bool little_;
  int64_t entryAt_ = DIRECTORY_AT;
  int64_t valueAt_;
};

int64_t StripRows(const FileContext& context, const StripPlan& plan, int64_t strip) {
  return std::min(plan.rowsPerStrip, context.height - strip * plan.rowsPerStrip);
}

int64_t StripOffset(const StripPlan& plan, int64_t strip) {
  return plan.firstOffset + strip * plan.rowsPerStrip * plan.rowBytes;
}

void FillHeader(const FileContext& context, const Layout& layout, uint8_t* header) {
  const bool colour = context.imageType == IMAGE_RGB;
  const bool words = context.imageType == IMAGE_I16;
  const bool palette = !colour && !words;
  const StripPlan& plan = layout.strips;
  const bool little = !palette || context.littleEndian != 0;
  DirectoryWriter directory(header, layout.entries, little);

  const int64_t bitsAt = directory.ValuesAt();
  for (int i = 0; i < 3 && colour; i++) directory.ShortValue(8);
  if (words) directory.ShortValue(16);
  const int64_t mapAt = directory.ValuesAt();
  for (int shift = 16; shift >= 0 && palette; shift -= 8) {
    for (const uint32_t entry : context.table) directory.ShortValue((entry >> shift & 0xFF) * 257);
  }
  const int64_t countsAt = directory.ValuesAt();
  const int64_t offsetsAt = countsAt + 4 * plan.count;
  const bool single = plan.count == 1;
  for (int64_t i = 0; i < plan.count && !single; i++) {
    directory.LongValue(StripRows(context, plan, i) * plan.rowBytes);
  }
  for (int64_t i = 0; i < plan.count && !single; i++) directory.LongValue(StripOffset(plan, i));

  directory.Long(TAG_NEW_SUBFILE_TYPE, 0);
  directory.Short(TAG_WIDTH, static_cast<uint32_t>(context.width));
  directory.Short(TAG_HEIGHT, static_cast<uint32_t>(context.height));
  if (colour) {
    directory.Array(TAG_BITS_PER_SAMPLE, TIFF_SHORT, 3, bitsAt);
  } else {
    directory.Short(TAG_BITS_PER_SAMPLE, words ? 16 : 8);
  }
  directory.Short(TAG_COMPRESSION, 1);
  directory.Short(TAG_PHOTOMETRIC, colour  ? PHOTOMETRIC_RGB
                                   : words ? PHOTOMETRIC_GRAY
                                           : PHOTOMETRIC_PALETTE);
  if (single) {
    directory.Long(TAG_STRIP_OFFSETS, static_cast<uint32_t>(plan.firstOffset));
  } else {
    directory.Array(TAG_STRIP_OFFSETS, TIFF_LONG, plan.count, offsetsAt);
  }
  directory.Short(TAG_SAMPLES_PER_PIXEL, colour ? 3 : 1);
  directory.Long(TAG_ROWS_PER_STRIP, static_cast<uint32_t>(plan.rowsPerStrip));
  if (single) {
    directory.Long(TAG_STRIP_BYTE_COUNTS, static_cast<uint32_t>(context.height * plan.rowBytes));
  } else {
    directory.Array(TAG_STRIP_BYTE_COUNTS, TIFF_LONG, plan.count, countsAt);
  }
  if (palette) {
    directory.Array(TAG_COLOUR_MAP, TIFF_SHORT, 3 * int64_t{TABLE_ENTRIES}, mapAt);
  } else {
    directory.Short(TAG_PLANAR_CONFIGURATION, 1);
  }
}

}  // namespace

Status TiffCheckImage(const FileContext& context) {
  const bool fits = context.width > 0 && context.width <= SIZE_LIMIT && context.height > 0 &&
                    context.height <= SIZE_LIMIT;
  return fits ? STATUS_OK : STATUS_BAD_FILE_HEADER;
}

Status TiffWriteHeader(const OpenFile& file, FileContext* context) {
  const int32_t type = context->imageType;
  if (type != IMAGE_U8 && type != IMAGE_I16 && type != IMAGE_RGB) return STATUS_BAD_FILE_HEADER;
  const Layout layout = LayoutOf(*context);
  const int64_t bytes = layout.strips.firstOffset;
  context->dataOffset = bytes;
  WorkArray<uint8_t> header;
  if (!header.AllocateZeroed(static_cast<uint64_t>(bytes))) return STATUS_MEMORY_FULL;
  FillHeader(*context, layout, header.data());
  return FileWriteAt(file, 0, header.data(), bytes, STATUS_BAD_FILE_HEADER);
}

// Strips follow each other without gaps, so that all rows go out in one sweep.
Status TiffWriteData(const OpenFile& file, const FileContext& context, const PixelView& view) {
  if (FileSeek(file, context.dataOffset) != STATUS_OK) return STATUS_FILE_READ;
  switch (context.imageType) {
    case IMAGE_I16:
      // Big-endian samples under a little-endian mark, as the reader takes them: kept.
      return PixelRowsWrite(file, view,
                            {.pack = sampleRows().reverse16, .sampleBytes = 2, .rowPadding = 0});
    case IMAGE_RGB:
      return PixelRowsWrite(file, view,
                            {.pack = sampleRows().packRedFirst, .sampleBytes = 3, .rowPadding = 0});
    default:
      return PixelRowsWrite(file, view);
  }
}

}  // namespace zel
