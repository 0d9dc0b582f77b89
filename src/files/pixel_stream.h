// The meeting place of files and images: a stream of pixels that fills an image row by row, and
// the rows of an image on their way to a file.
#pragma once

#include "core/heap.h"
#include "core/views.h"
#include "files/access.h"
#include "files/context.h"
#include "files/samples_rows.h"

namespace zel {

// The part of an image's block that resizing has just added, less what was written since: it reads
// 0, and costs no memory where the block is large.
struct Untouched {
  const uint8_t* from;
  const uint8_t* to;

  int64_t Bytes() const { return to - from; }
  // What is left, of both sides the larger one, when the bytes between two others are written.
  void Touch(const uint8_t* first, const uint8_t* end);
};

// Position k of the stream is pixel (k mod width, k div width) of the view, whose width is the
// file's. Positions behind the last pixel are dropped, and a pixel that no sample arrives for keeps
// its value.
struct PixelStream {
  PixelView view;
  Untouched untouched;        // of the block that the view lies in
  WorkArray<uint8_t> buffer;  // for samples that have to be converted; made when first needed
  int64_t bufferBytes = 0;

  int64_t Pixels() const { return int64_t{view.width} * view.height; }
};

// The same pixels with the last row first.
PixelView TurnedOver(const PixelView& view);

// Samples in a file: `rows` runs of `rowBytes`, their starts `stride` bytes apart. The first one
// goes to `position`, each further one a width further on.
struct SampleRun {
  int64_t offset;
  int64_t rowBytes;
  int64_t stride;
  int64_t rows;
  int64_t position;
};

// Reads a run as far as the file and the image go; an incomplete sample at the end is dropped.
// STATUS_FILE_READ when the file cannot be read or the offset is negative; the end of the file is
// no failure.
Status PixelStreamRead(const OpenFile& file, const FileContext& context, const SampleRun& run,
                       PixelStream* stream);

// All samples behind the data offset.
Status PixelStreamReadRest(const OpenFile& file, const FileContext& context, PixelStream* stream);

// The smallest and largest sample behind the data offset, for classes of integers that have them.
Status SampleRangeScan(const OpenFile& file, FileContext* context, PixelStream* stream);

// How pixels go into a file.
struct PixelPacking {
  ElementMove pack;
  int32_t sampleBytes;  // of a packed pixel
  int32_t rowPadding;   // zero bytes behind each row, at most 3
};
// Writes the rows at the file's position, packed or as they are. STATUS_FILE_WRITE;
// STATUS_MEMORY_FULL only where they are packed, and before anything is written.
Status PixelRowsWrite(const OpenFile& file, const PixelView& view, const PixelPacking& packing);
Status PixelRowsWrite(const OpenFile& file, const PixelView& view);
// Rows from top to bottom without gaps, from the data offset on. Colour pixels are reversed, fourth
// byte first.
Status PixelRowsWriteAll(const OpenFile& file, const FileContext& context, const PixelView& view);

// Bitwise NOT of the stream's pixels. Of those that lie untouched, more than `unread` bytes stay as
// they are: zero.
void PixelStreamInvert(int64_t unread, PixelStream* stream);
// Sets the pixels of a view to 0, without touching what reads 0 already.
void PixelRowsClear(const PixelView& view, const Untouched& untouched);
// Moves the rows together in memory, without gaps.
void PixelRowsCompact(const PixelView& view);

}  // namespace zel
