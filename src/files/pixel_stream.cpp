// Transfers between files and the rows of images, straight where the bytes are the same and
// through a buffer where they are not.
#include "files/pixel_stream.h"

#include <algorithm>
#include <cstring>

#include "engine/point.h"
#include "files/samples.h"

namespace zel {
namespace {

// Bytes on their way: they stay in the second-level cache, and hold whole samples of any class.
constexpr int64_t CHUNK_BYTES = 128 * 1024 - 128 * 1024 % 24;

struct PixelRows {
  uint8_t* first;
  int64_t pitch;
  int64_t pixels;  // of each row
  int64_t rows;
};

// Cuts a run of positions into the rows that it covers: the rest of the first one, whole ones, and
// the start of the last one. Where rows follow each other without gaps it is a single one. Stops
// when the visitor answers false.
template <class Visit>
void VisitRows(PixelStream* stream, int64_t position, int64_t count, Visit visit) {
  const PixelView view = RowsJoin(stream->view);
  while (count > 0) {
    const int64_t row = position / view.width;
    const int64_t column = position % view.width;
    const bool whole = column == 0 && count >= view.width;
    const int64_t rows = whole ? count / view.width : 1;
    const int64_t pixels = whole ? view.width : std::min<int64_t>(count, view.width - column);
    uint8_t* first = view.Row<uint8_t>(row) + column * view.pixelBytes;
    const uint8_t* last = first + (rows - 1) * view.pitch;
    stream->untouched.Touch(std::min<const uint8_t*>(first, last),
                            std::max<const uint8_t*>(first, last) + pixels * view.pixelBytes);
    if (!visit(PixelRows{first, view.pitch, pixels, rows})) return;
    position += rows * pixels;
    count -= rows * pixels;
  }
}

int64_t SamplesIn(const ClassLayout& layout, int64_t bytes) {
  return bytes / layout.unitBytes * layout.unitPixels;
}

bool BufferEnsure(int64_t bytes, PixelStream* stream) {
  if (stream->bufferBytes >= bytes) return true;
  stream->bufferBytes = 0;
  if (!stream->buffer.Allocate(static_cast<uint64_t>(bytes))) return false;
  stream->bufferBytes = bytes;
  return true;
}

int64_t RoundedDown(int64_t value, int64_t step) {
  return value - value % step;
}

void ReverseInPlace(const PixelRows& rows, int32_t pixelBytes, int64_t bytes, ElementMove reverse) {
  int64_t left = bytes / pixelBytes;
  for (int64_t row = 0; row < rows.rows && left > 0; row++) {
    uint8_t* at = rows.first + row * rows.pitch;
    const int64_t pixels = std::min(left, rows.pixels);
    reverse(at, pixels, at);
    left -= pixels;
  }
}

// Bytes that are pixels already go to their rows at once.
Status ReadDirect(const OpenFile& file, const FileContext& context, const SampleRun& run,
                  PixelStream* stream) {
  const int32_t pixelBytes = stream->view.pixelBytes;
  int64_t position = run.position;
  int64_t left = std::min(run.rowBytes / pixelBytes, stream->Pixels() - position);
  const ElementMove reverse = DirectReversal(context, stream->view.type);
  // What has to be reversed is reversed while it is in the cache.
  const int64_t step = reverse ? CHUNK_BYTES / pixelBytes : left;
  Status status = STATUS_OK;
  bool more = true;
  while (more && left > 0) {
    const int64_t count = std::min(left, step);
    VisitRows(stream, position, count, [&](const PixelRows& rows) {
      const int64_t wanted = rows.pixels * pixelBytes * rows.rows;
      int64_t got = 0;
      status =
          FileReadRows(file, {rows.first, rows.pitch, rows.pixels * pixelBytes, rows.rows}, &got);
      more = status == STATUS_OK && got == wanted;
      if (reverse && status == STATUS_OK) ReverseInPlace(rows, pixelBytes, got, reverse);
      return more;
    });
    position += count;
    left -= count;
  }
  return status;
}

void ConvertRun(const SampleConverter& converter, const uint8_t* samples, int64_t count,
                int64_t position, PixelStream* stream) {
  count = std::min(count, stream->Pixels() - position);
  if (count <= 0) return;
  int64_t first = 0;
  VisitRows(stream, position, count, [&](const PixelRows& rows) {
    for (int64_t row = 0; row < rows.rows; row++) {
      converter.Convert(samples, first, rows.pixels, rows.first + row * rows.pitch);
      first += rows.pixels;
    }
    return true;
  });
}

// One run of samples without gaps, chunk by chunk.
Status ReadConverting(const OpenFile& file, const FileContext& context, const SampleRun& run,
                      const SampleConverter& converter, PixelStream* stream) {
  const ClassLayout& layout = ClassLayoutOf(context.pixelClass);
  int64_t position = run.position;
  int64_t left = run.rowBytes;
  while (left > 0 && position < stream->Pixels()) {
    const int64_t count = std::min(left, CHUNK_BYTES);
    int64_t got = 0;
    const Status status = FileRead(file, stream->buffer.data(), count, &got);
    if (status != STATUS_OK) return status;
    SamplesReverse(context, stream->buffer.data(), got);
    const int64_t samples = SamplesIn(layout, got);
    ConvertRun(converter, stream->buffer.data(), samples, position, stream);
    if (got < count) break;
    position += samples;
    left -= count;
  }
  return STATUS_OK;
}

// Rows with gaps between them, as many at a time as the buffer holds.
Status ReadConvertingRows(const OpenFile& file, const FileContext& context, const SampleRun& run,
                          const SampleConverter& converter, PixelStream* stream) {
  const ClassLayout& layout = ClassLayoutOf(context.pixelClass);
  const int64_t rowSamples = SamplesIn(layout, run.rowBytes);
  const int64_t together = CHUNK_BYTES / run.stride;
  for (int64_t row = 0; row < run.rows; row += together) {
    const int64_t rows = std::min(together, run.rows - row);
    const int64_t wanted = (rows - 1) * run.stride + run.rowBytes;
    const int64_t gap = run.stride - run.rowBytes;
    // The gap behind the last row of a chunk is read with it, so that the next chunk is in place.
    const int64_t count = row + rows < run.rows ? wanted + gap : wanted;
    int64_t got = 0;
    const Status status = FileRead(file, stream->buffer.data(), count, &got);
    if (status != STATUS_OK) return status;
    for (int64_t i = 0; i < rows; i++) {
      if (i * run.stride + run.rowBytes > got) return STATUS_OK;
      uint8_t* samples = stream->buffer.data() + i * run.stride;
      SamplesReverse(context, samples, run.rowBytes);
      ConvertRun(converter, samples, rowSamples, run.position + (row + i) * stream->view.width,
                 stream);
    }
  }
  return STATUS_OK;
}

// Hands over the bytes of all rows but those that lie untouched. Rows that do so altogether are not
// even counted: a file may claim to have any number of them.
template <class Visit>
void VisitTouched(const PixelView& spread, const Untouched& untouched, Visit visit) {
  if (spread.IsEmpty()) return;
  const PixelView view = RowsJoin(spread);
  const int64_t rowsBefore = (untouched.from - view.origin + view.pitch - 1) / view.pitch;
  const int64_t rowsUpTo = (untouched.to - view.origin) / view.pitch;
  const int64_t skipFrom = std::clamp<int64_t>(rowsBefore, 0, view.height);
  const int64_t skipTo = std::clamp<int64_t>(rowsUpTo, skipFrom, view.height);
  const auto visitRow = [&](int64_t y) {
    uint8_t* begin = view.Row<uint8_t>(y);
    uint8_t* end = begin + view.RowBytes();
    const int64_t before = std::clamp<int64_t>(untouched.from - begin, 0, end - begin);
    const int64_t behind = std::clamp<int64_t>(end - untouched.to, 0, end - begin - before);
    if (before > 0) visit(begin, before);
    if (behind > 0) visit(end - behind, behind);
  };
  for (int64_t y = 0; y < skipFrom; y++) visitRow(y);
  for (int64_t y = skipTo; y < view.height; y++) visitRow(y);
}

// Rows that follow each other in the file and in the stream are one.
SampleRun Joined(const SampleRun& run, const ClassLayout& layout, int64_t width) {
  const bool gapless =
      run.rows == 1 || (run.stride == run.rowBytes && SamplesIn(layout, run.rowBytes) == width &&
                        run.rowBytes % layout.unitBytes == 0);
  if (!gapless) return run;
  const int64_t bytes = run.rowBytes * run.rows;
  return {run.offset, bytes, bytes, 1, run.position};
}

}  // namespace

PixelView TurnedOver(const PixelView& view) {
  PixelView turned = view;
  if (view.height > 0) turned.origin = view.Row<uint8_t>(view.height - 1);
  turned.pitch = -view.pitch;
  return turned;
}

Status PixelStreamRead(const OpenFile& file, const FileContext& context, const SampleRun& asked,
                       PixelStream* stream) {
  const ClassLayout& layout = ClassLayoutOf(context.pixelClass);
  SampleRun run = Joined(asked, layout, stream->view.width);
  if (FileSeek(file, run.offset) != STATUS_OK) return STATUS_FILE_READ;
  const int64_t room = stream->Pixels() - run.position;
  if (run.rows < 1 || room < 1) return STATUS_OK;

  if (run.rows == 1) {
    const int64_t units = (room + layout.unitPixels - 1) / layout.unitPixels;
    const int64_t there = std::max<int64_t>(context.dataSize - run.offset, 0);
    run.rowBytes =
        std::min({run.rowBytes, units * layout.unitBytes, RoundedDown(there, layout.unitBytes)});
  }
  if (run.rowBytes < layout.unitBytes) return STATUS_OK;
  if (run.rows == 1 && SamplesAreDirect(context.pixelClass, stream->view.type)) {
    return ReadDirect(file, context, run, stream);
  }

  const SampleConverter converter(context, stream->view.type);
  if (!converter.HasEffect()) return STATUS_OK;
  const int64_t bytes = run.rows > 1 ? run.stride * run.rows : run.rowBytes;
  if (!BufferEnsure(std::min(bytes, CHUNK_BYTES), stream)) return STATUS_MEMORY_FULL;
  if (run.rows == 1) return ReadConverting(file, context, run, converter, stream);
  if (run.stride <= CHUNK_BYTES) {
    return ReadConvertingRows(file, context, run, converter, stream);
  }
  for (int64_t row = 0; row < run.rows; row++) {
    const SampleRun one{run.offset + row * run.stride, run.rowBytes, run.rowBytes, 1,
                        run.position + row * stream->view.width};
    const Status status = PixelStreamRead(file, context, one, stream);
    if (status != STATUS_OK) return status;
  }
  return STATUS_OK;
}

Status PixelStreamReadRest(const OpenFile& file, const FileContext& context, PixelStream* stream) {
  const int64_t bytes = std::max<int64_t>(context.dataSize - context.dataOffset, 0);
  return PixelStreamRead(file, context, {context.dataOffset, bytes, bytes, 1, 0}, stream);
}

Status SampleRangeScan(const OpenFile& file, FileContext* context, PixelStream* stream) {
  if (!SamplesHaveRange(context->pixelClass)) return STATUS_OK;
  if (FileSeek(file, context->dataOffset) != STATUS_OK) return STATUS_FILE_READ;
  const int64_t chunk =
      std::clamp<int64_t>(context->dataSize - context->dataOffset, 1, CHUNK_BYTES);
  if (!BufferEnsure(chunk, stream)) return STATUS_MEMORY_FULL;
  const ClassLayout& layout = ClassLayoutOf(context->pixelClass);
  float min = 1.0e32f;
  float max = -1.0e32f;
  int64_t got = chunk;
  while (got == chunk) {
    const Status status = FileRead(file, stream->buffer.data(), chunk, &got);
    if (status != STATUS_OK) return status;
    SamplesReverse(*context, stream->buffer.data(), got);
    SamplesRange(context->pixelClass, stream->buffer.data(), SamplesIn(layout, got), &min, &max);
  }
  context->rangeMin = min;
  context->rangeMax = max;
  return STATUS_OK;
}

Status PixelRowsWrite(const OpenFile& file, const PixelView& view) {
  if (view.IsEmpty()) return STATUS_OK;
  const PixelView rows = RowsJoin(view);
  return FileWriteRows(file, {rows.origin, rows.pitch, rows.RowBytes(), rows.height});
}

Status PixelRowsWrite(const OpenFile& file, const PixelView& view, const PixelPacking& packing) {
  if (view.IsEmpty()) return STATUS_OK;
  const int64_t rowBytes = int64_t{view.width} * packing.sampleBytes + packing.rowPadding;
  WorkArray<uint8_t> buffer;
  if (!buffer.Allocate(static_cast<uint64_t>(std::min(rowBytes * view.height, CHUNK_BYTES)))) {
    return STATUS_MEMORY_FULL;
  }
  int64_t filled = 0;
  Status status = STATUS_OK;
  const auto flushUnlessRoom = [&](int64_t bytes) {
    if (filled + bytes <= CHUNK_BYTES) return;
    status = FileWrite(file, buffer.data(), filled);
    filled = 0;
  };
  for (int64_t row = 0; row < view.height; row++) {
    for (int64_t column = 0; column < view.width;) {
      flushUnlessRoom(packing.sampleBytes);
      if (status != STATUS_OK) return status;
      const int64_t count =
          std::min<int64_t>(view.width - column, (CHUNK_BYTES - filled) / packing.sampleBytes);
      packing.pack(view.Row<uint8_t>(row) + column * view.pixelBytes, count,
                   buffer.data() + filled);
      filled += count * packing.sampleBytes;
      column += count;
    }
    flushUnlessRoom(packing.rowPadding);
    if (status != STATUS_OK) return status;
    std::memset(buffer.data() + filled, 0, static_cast<size_t>(packing.rowPadding));
    filled += packing.rowPadding;
  }
  return FileWrite(file, buffer.data(), filled);
}

Status PixelRowsWriteAll(const OpenFile& file, const FileContext& context, const PixelView& view) {
  if (FileSeek(file, context.dataOffset) != STATUS_OK) return STATUS_FILE_WRITE;
  const ElementMove reverse = DirectReversal(context, view.type);
  if (!reverse) return PixelRowsWrite(file, view);
  return PixelRowsWrite(file, view,
                        {.pack = reverse, .sampleBytes = view.pixelBytes, .rowPadding = 0});
}

void Untouched::Touch(const uint8_t* first, const uint8_t* end) {
  const uint8_t* before = std::clamp(first, from, to);
  const uint8_t* behind = std::clamp(end, from, to);
  if (before - from > to - behind) {
    to = before;
  } else {
    from = behind;
  }
}

void PixelStreamInvert(int64_t unread, PixelStream* stream) {
  if (stream->untouched.Bytes() <= unread) stream->untouched.from = stream->untouched.to;
  VisitTouched(stream->view, stream->untouched, sampleRows().invertBytes);
}

void PixelRowsClear(const PixelView& view, const Untouched& untouched) {
  VisitTouched(view, untouched, [](void* bytes, int64_t count) {
    std::memset(bytes, 0, static_cast<size_t>(count));
  });
}

void PixelRowsCompact(const PixelView& view) {
  for (int64_t y = 1; y < view.height; y++) {
    std::memmove(view.origin + y * view.RowBytes(), view.Row<void>(y),
                 static_cast<size_t>(view.RowBytes()));
  }
}

}  // namespace zel
