// Resampling of rectangles to any size, by one of four methods.
#include "utilities/resample.h"

#include <algorithm>
#include <cstring>
#include <numeric>

#include "core/cache_lines.h"
#include "core/heap.h"
#include "core/pixel_types.h"
#include "engine/bands.h"
#include "engine/operands.h"
#include "engine/stream_rows.h"
#include "utilities/copying.h"
#include "utilities/resample_rows.h"
#include "utilities/resample_spline.h"

namespace zel {
namespace {

// Results of more bytes have left the caches of one core before anyone reads them.
constexpr int64_t STREAMED_BYTES = int64_t{4} << 20;
bool IsStreamed(const PixelView& result) {
  return result.Bytes() >= STREAMED_BYTES;
}

// The pixel that is read for one at or behind an image's last: pixels of the border as they are,
// and beyond them the nearest of the image.
int32_t Readable(int64_t pixel, int32_t size, int32_t border) {
  return static_cast<int32_t>(pixel < int64_t{size} + border ? pixel : size - 1);
}

// Columns of results that fit a tile.
struct Tile {
  int32_t begin, end;

  int32_t Columns() const { return end - begin; }
};

int64_t BytesTouched(const ResampleAxis& x, const ResampleAxis& y, int32_t pixelBytes) {
  const int64_t results = int64_t{x.results} * y.results;
  const int64_t pixels = int64_t{x.size} * y.size;
  return (results + std::min(pixels, 4 * results)) * pixelBytes;
}

// Joining numbers takes so many times as long as adding them.
constexpr int64_t JOINING_EFFORT = 8;

// Calls work(tile, y) with the tiles of a band one after the other, each from top to bottom, after
// begin(tile).
template <class Begin, class Work>
void TilesWalk(const ResampleViews& views, const Band& band, int32_t tileColumns,
               const Begin& begin, const Work& work) {
  for (int32_t x = 0; x < views.result.width;) {
    const int32_t end = x + std::min(tileColumns, views.result.width - x);
    const Tile tile{x, end};
    begin(tile);
    for (int64_t y = band.begin; y < band.end; y++) work(tile, static_cast<int32_t>(y));
    x = end;
  }
}

// ---- nearest

// A row of results is repeated as often as it lies on the same source row.
void NearestBand(const ResampleViews& views, const Band& band) {
  const bool isStreamed = IsStreamed(views.result);
  const int32_t pixelBytes = views.result.pixelBytes;
  const PickRoutines routines = resampleRows().pick.For(pixelBytes);
  const StreamRows& stream = streamRows();
  PickColumns columns;
  columns.readable = views.source.width;
  alignas(CACHE_LINE) uint8_t picked[TILE_NUMBERS * sizeof(float)];
  const void* last = nullptr;
  const uint8_t* lastFrom = nullptr;
  const auto begin = [&](const Tile& tile) {
    columns.count = tile.Columns();
    for (int32_t i = 0; i < columns.count; i++) {
      columns.index[i] = views.x.At(tile.begin + i).pixel;
    }
    routines.prepare(&columns);
    lastFrom = nullptr;
  };
  TilesWalk(views, band, TILE_NUMBERS, begin, [&](const Tile& tile, int32_t y) {
    const auto* from = views.source.Row<uint8_t>(views.y.At(y).pixel);
    uint8_t* to = views.result.Row<uint8_t>(y) + int64_t{tile.begin} * pixelBytes;
    const int64_t bytes = int64_t{columns.count} * pixelBytes;
    const bool isNew = from != lastFrom;
    lastFrom = from;
    if (isStreamed) {
      if (isNew) routines.pick(from, columns, picked);
      stream.store(to, picked, bytes);
    } else {
      if (isNew) {
        routines.pick(from, columns, to);
      } else {
        std::memcpy(to, last, static_cast<size_t>(bytes));
      }
      last = to;
    }
  });
  if (isStreamed) stream.end();
}

// ---- joined samples

// A source row, joined: estimates of the first numbers of a tile, and the others.
struct HeldRow {
  int64_t row;
  alignas(CACHE_LINE) double numbers[TILE_NUMBERS];
  alignas(CACHE_LINE) float estimates[TILE_NUMBERS];
};

// What a worker joins rows in.
struct JoiningTile {
  TileColumns columns;
  HeldRow held[TILE_SAMPLES];
  alignas(CACHE_LINE) uint8_t results[TILE_NUMBERS * sizeof(float)];  // that are streamed
};

// Taken before anything is written.
class JoiningMemory {
 public:
  Status Allocate(int64_t bytesTouched) {
    const int32_t workers = BandWorkersFor(JOINING_EFFORT * bytesTouched);
    const auto bytes = static_cast<uint64_t>(workers) * sizeof(JoiningTile) + CACHE_LINE;
    return block_.Allocate(bytes) ? STATUS_OK : STATUS_MEMORY_FULL;
  }
  JoiningTile* OfWorker(int32_t worker) {
    uint8_t* first = block_.data();
    first += BytesToCacheLine(first);
    return reinterpret_cast<JoiningTile*>(first) + worker;
  }

 private:
  WorkArray<uint8_t> block_;
};

// Rows of a tile that were joined along the row already: those that the next row of results needs
// are mostly the same.
class JoinedRows {
 public:
  JoinedRows(const ResampleViews& views, int32_t method, JoiningTile* tile)
      : views_(views),
        rows_(resampleRows()),
        numbers_(views.NumbersAPixel()),
        samplesAlong_(views.x.Changes() ? method + 1 : 1),
        samplesDown_(views.y.Changes() ? method + 1 : 1),
        along_(rows_.along.For(views.source.type).For(samplesAlong_)),
        down_(rows_.down.For(views.source.type).For(samplesDown_)),
        isBilinear_(samplesAlong_ == 2 && samplesDown_ == 2),
        pairs_(isBilinear_ && !RowsRepeat(views.y) ? rows_.pairs.For(views.source.type)
                                                   : PairRoutines{}),
        canBeEstimated_((views.source.type == IMAGE_U8 || views.source.type == IMAGE_RGB) &&
                        isBilinear_ && !pairs_.join &&
                        !(rows_.placeWindows && MeetsWholeNumbers(views))),
        isStreamed_(views.source.type == IMAGE_SGL && IsStreamed(views.result)),
        columns_(tile->columns),
        held_(tile->held),
        results_(tile->results) {}

  int32_t ColumnsATile() const { return TILE_NUMBERS / numbers_; }

  void Begin(const Tile& tile) {
    columns_.count = tile.Columns() * numbers_;
    columns_.readable = views_.source.width * numbers_;
    if (numbers_ == 1) {
      Place<1>(tile);
    } else {
      Place<4>(tile);
    }
    columns_.shortcuts = 0;
    columns_.windowed = 0;
    if (pairs_.join) {
      pairs_.prepare(&columns_);
    } else if (canBeEstimated_) {
      rows_.estimate.prepare(&columns_);
    } else if (rows_.placeWindows) {
      rows_.placeWindows(&columns_, samplesAlong_);
    }
    for (int32_t i = 0; i < TILE_SAMPLES; i++) held_[i].row = NONE;
  }

  void RowTo(const Tile& tile, int32_t y) {
    uint8_t* to = views_.result.Row<uint8_t>(y) + int64_t{tile.begin} * views_.result.pixelBytes;
    if (!isStreamed_) return Join(y, to);
    Join(y, results_);
    streamRows().store(to, results_, int64_t{tile.Columns()} * views_.result.pixelBytes);
  }

  void End() {
    if (isStreamed_) streamRows().end();
  }

 private:
  static constexpr int64_t NONE = -1;

  // Shares are multiples of 1 / so many.
  static int64_t Shares(const ResampleAxis& axis) {
    return axis.results / std::gcd(axis.results, axis.size - 1);
  }
  // So many results are whole numbers, or nearly, that estimates save nothing.
  static bool MeetsWholeNumbers(const ResampleViews& views) {
    constexpr int64_t fewestShares = 500;
    return Shares(views.x) * Shares(views.y) < fewestShares;
  }

  // Most of the rows that a row of results is joined from are needed for the next one again.
  static bool RowsRepeat(const ResampleAxis& y) { return y.step < 1.5; }

  void Join(int32_t y, uint8_t* to) {
    const SourcePosition at = views_.y.At(y);
    if (pairs_.join) {
      const int32_t next = views_.y.At(std::min(y + 1, views_.result.height - 1)).pixel;
      pairs_.join(
          {{RowOf(at.pixel, 0), RowOf(at.pixel, 1)}, {RowOf(next, 0), RowOf(next, 1)}, at.share},
          columns_, to);
      if (columns_.shortcuts == columns_.count) return;
    }
    const HeldRow* held[TILE_SAMPLES] = {};
    for (int32_t sample = 0; sample < samplesDown_; sample++) {
      held[sample] = &Joined(RowAt(at.pixel, sample));
    }
    const int32_t shortcuts = columns_.shortcuts;
    if (canBeEstimated_ && shortcuts != 0) {
      const EstimatedRows rows{{RowOf(at.pixel, 0), RowOf(at.pixel, 1)},
                               {held[0]->estimates, held[1]->estimates},
                               at.share};
      rows_.estimate.down(rows, columns_, to);
    }
    if (shortcuts == columns_.count) return;
    const double* rows[TILE_SAMPLES] = {};
    for (int32_t sample = 0; sample < samplesDown_; sample++) {
      rows[sample] = held[sample]->numbers + shortcuts;
    }
    const int64_t numberBytes = views_.result.pixelBytes / numbers_;
    down_(rows, at.share, to + shortcuts * numberBytes, columns_.count - shortcuts);
  }

  // The row of a sample, and its pixels.
  int32_t RowAt(int32_t first, int32_t sample) const {
    return Readable(int64_t{first} + sample, views_.source.height, views_.border);
  }
  const uint8_t* RowOf(int32_t first, int32_t sample) const {
    return views_.source.Row<uint8_t>(RowAt(first, sample));
  }

  // Where the pixels of a tile stand, of so many numbers each.
  template <int32_t numbers>
  void Place(const Tile& tile) {
    const ResampleAxis x = views_.x;
    const int32_t size = views_.source.width;
    const int32_t border = views_.border;
    const int32_t count = tile.Columns();
    int32_t pixels[TILE_NUMBERS];
    for (int32_t i = 0; i < count; i++) {
      const SourcePosition at = x.At(tile.begin + i);
      pixels[i] = at.pixel;
      for (int32_t k = 0; k < numbers; k++) columns_.share[i * numbers + k] = at.share;
    }
    for (int32_t sample = 0; sample < samplesAlong_; sample++) {
      int32_t* index = columns_.index[sample];
      for (int32_t i = 0; i < count; i++) {
        const int32_t pixel = Readable(int64_t{pixels[i]} + sample, size, border);
        for (int32_t k = 0; k < numbers; k++) index[i * numbers + k] = pixel * numbers + k;
      }
    }
  }

  // The rows that are needed at once follow each other, or are one: none displaces another.
  const HeldRow& Joined(int32_t row) {
    HeldRow& held = held_[row % samplesDown_];
    if (held.row == row) return held;
    held.row = row;
    const auto* from = views_.source.Row<uint8_t>(row);
    if (canBeEstimated_ && columns_.shortcuts != 0) {
      rows_.estimate.along(from, columns_, held.estimates);
    }
    if (columns_.shortcuts != columns_.count) along_(from, columns_, held.numbers);
    return held;
  }

  const ResampleViews& views_;
  const ResampleRows& rows_;
  int32_t numbers_, samplesAlong_, samplesDown_;
  AlongRow along_;
  DownRows down_;
  bool isBilinear_;
  PairRoutines pairs_;
  bool canBeEstimated_;
  bool isStreamed_;  // integers take longer to join than to store
  TileColumns& columns_;
  HeldRow* held_;
  uint8_t* results_;
};

void JoinedBand(const ResampleViews& views, const Band& band, int32_t method, JoiningTile* tile) {
  JoinedRows rows(views, method, tile);
  TilesWalk(
      views, band, rows.ColumnsATile(), [&](const Tile& columns) { rows.Begin(columns); },
      [&](const Tile& columns, int32_t y) { rows.RowTo(columns, y); });
  rows.End();
}

// ---- the call

bool TypeCanBeResampled(int32_t type) {
  return TypeIsScalar(type) || type == IMAGE_RGB;
}

void NearestRun(const ResampleViews& views, int64_t bytesTouched) {
  BandsRun({.units = views.result.height, .bytes = bytesTouched},
           [&](const Band& band) { NearestBand(views, band); });
}

void JoinedRun(const ResampleViews& views, int32_t method, int64_t bytesTouched,
               JoiningMemory* memory) {
  constexpr int64_t startRows = 8;  // a band begins with the places of all columns
  BandsRun(
      {.units = views.result.height,
       .bytes = JOINING_EFFORT * bytesTouched,
       .startUnits = startRows},
      [&](const Band& band) { JoinedBand(views, band, method, memory->OfWorker(band.worker)); });
}

struct ResampleSize {
  int32_t width, height;
};

Status EmptyResult(Operands* operands) {
  operands->WriteSized(0, 0);
  if (!operands->HasFailed()) operands->Written();
  return operands->status();
}

Status ResampleRun(const ClippedRect& part, const ResampleSize& wanted, int32_t method,
                   Operands* operands) {
  const int32_t type = operands->source().type;
  const int64_t results = int64_t{wanted.width} * wanted.height;
  if (results > static_cast<int64_t>(HEAP_BLOCK_LIMIT)) return STATUS_MEMORY_FULL;
  const ResampleAxis x(part.left, part.width, wanted.width);
  const ResampleAxis y(part.top, part.height, wanted.height);
  const int64_t bytesTouched = BytesTouched(x, y, PixelBytesOf(type));
  JoiningMemory joining;
  SplineMemory spline;
  Status status = STATUS_OK;
  if (method == RESAMPLE_SPLINE) status = spline.Allocate(x, y, NumbersAPixel(type));
  if (method == RESAMPLE_BILINEAR || method == RESAMPLE_QUADRATIC) {
    status = joining.Allocate(bytesTouched);
  }
  if (status != STATUS_OK) return status;
  operands->WriteSized(wanted.width, wanted.height);
  if (operands->HasFailed()) return operands->status();
  operands->Written();

  const ResampleViews views{operands->From(), operands->source().border, operands->To(), x, y};
  if (method == RESAMPLE_NEAREST) {
    NearestRun(views, bytesTouched);
  } else if (method == RESAMPLE_SPLINE) {
    SplineRun(views, &spline);
  } else {
    JoinedRun(views, method, bytesTouched, &joining);
  }
  return STATUS_OK;
}

Status Resample(ImageRef source, ImageRef destination, const ApiRect& rect,
                const ResampleSize& wanted, int32_t method) {
  Operands operands;
  operands.Source(source, [](int32_t) { return true; });
  if (operands.HasFailed()) return operands.status();
  const ClippedRect part = RectOn(operands.source(), rect);
  const bool isEmpty = part.IsEmpty() || wanted.width < 1 || wanted.height < 1;
  if (!isEmpty && part.width == wanted.width && part.height == wanted.height) {
    const bool inPlace = destination == 0 || destination == source;
    return inPlace ? STATUS_OK : ImageClone(source, destination);
  }
  if (!TypeCanBeResampled(operands.source().type)) return STATUS_BAD_TYPE;
  operands.Destination(destination);
  if (operands.HasFailed()) return operands.status();
  if (isEmpty) return EmptyResult(&operands);
  const int32_t known = std::clamp<int32_t>(method, RESAMPLE_NEAREST, RESAMPLE_SPLINE);
  return ResampleRun(part, wanted, known, &operands);
}

}  // namespace
}  // namespace zel

int32_t ZEL_Resample(ImageRef source, ImageRef destination, int32_t top, int32_t left,
                     int32_t height, int32_t width, int32_t newWidth, int32_t newHeight,
                     int32_t method) {
  return ZEL_ProcessError("ZEL_Resample",
                          zel::Resample(source, destination, {top, left, height, width},
                                        {newWidth, newHeight}, method));
}
