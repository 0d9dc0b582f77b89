// The region around a pixel: a fill that begins at a seed.
#include <algorithm>
#include <cstring>

#include "core/numbers.h"
#include "engine/operands.h"
#include "morphology/bit_plane.h"
#include "morphology/magic_wand_rows.h"
#include "morphology/regions.h"
#include "particles/runs_rows.h"

namespace zel {
namespace {

// The pixels of an image that lie in a range, found row by row where a fill comes by.
class OpenPixels {
 public:
  // STATUS_MEMORY_FULL.
  Status Start(const PixelView& view, const ValueRange& range);

  int32_t width() const { return view_.width; }
  int32_t height() const { return view_.height; }
  uint64_t* Row(int32_t y);

 private:
  PixelView view_;
  ValueRange range_{};
  BitPlane bits_;
  WorkArray<uint8_t> isKnown_;  // by row
  WorkArray<uint8_t> flags_;    // by column
};

Status OpenPixels::Start(const PixelView& view, const ValueRange& range) {
  view_ = view;
  range_ = range;
  const bool hasMemory = bits_.Create(view.width, view.height, 0) &&
                         isKnown_.AllocateZeroed(static_cast<uint64_t>(view.height)) &&
                         flags_.AllocateZeroed((static_cast<uint64_t>(view.width) + 7) / 8 * 8);
  return hasMemory ? STATUS_OK : STATUS_MEMORY_FULL;
}

uint64_t* OpenPixels::Row(int32_t y) {
  uint64_t* row = bits_.Row(y);
  uint8_t& isKnown = isKnown_[static_cast<size_t>(y)];
  if (isKnown != 0) return row;
  isKnown = 1;
  const MagicWandRows& rows = magicWandRows();
  const auto inRange = view_.type == IMAGE_U8    ? rows.inRangeU8
                       : view_.type == IMAGE_I16 ? rows.inRangeI16
                                                 : rows.inRangeSgl;
  inRange(view_.Row<void>(y), view_.width, range_, flags_.data());
  runRows().bitsU8(flags_.data(), view_.width, row);
  return row;
}

// Fills what a seed is connected with, a run of pixels at a time. Runs wait in a list that grows
// by each of them once.
class SeedFill {
 public:
  // `open`: pixels that may be entered; those that are get clear. `marker`: a U8 image of its size.
  SeedFill(OpenPixels* open, const PixelView& marker, uint8_t value, bool connectivity8)
      : open_(open), marker_(marker), value_(value), reach_(connectivity8 ? 1 : 0) {}

  // STATUS_MEMORY_FULL.
  Status FillFrom(int32_t x, int32_t y);

 private:
  struct Span {
    int32_t start, end, y;
  };

  bool EnterRow(int32_t y, int32_t start, int32_t end);
  bool Push(Span span);

  OpenPixels* open_;
  PixelView marker_;
  uint8_t value_;
  int32_t reach_;  // columns that runs of neighbouring rows may lie apart and still touch
  WorkArray<Span> waiting_;
  uint64_t capacity_ = 0;
  uint64_t count_ = 0;
};

// The first column from x on where the bit is set, or clear; `end` where there is none before.
int32_t NextColumn(const uint64_t* row, int32_t x, int32_t end, bool set) {
  const uint64_t flip = set ? 0 : ~uint64_t{0};
  int32_t word = x / 64;
  uint64_t bits = (row[word] ^ flip) & ~uint64_t{0} << (x % 64);
  while (bits == 0) {
    if (++word * 64 >= end) return end;
    bits = row[word] ^ flip;
  }
  return std::min(word * 64 + __builtin_ctzll(bits), end);
}

// The first column of the run of set bits that x belongs to.
int32_t RunStart(const uint64_t* row, int32_t x) {
  int32_t word = x / 64;
  uint64_t clear = ~row[word] << (63 - x % 64) >> (63 - x % 64);
  while (clear == 0) {
    if (--word < 0) return 0;
    clear = ~row[word];
  }
  return word * 64 + 64 - __builtin_clzll(clear);
}

void BitsClear(uint64_t* row, int32_t start, int32_t end) {
  const int32_t first = start / 64;
  const int32_t last = (end - 1) / 64;
  const uint64_t head = ~uint64_t{0} << (start % 64);
  const uint64_t tail = ~uint64_t{0} >> (63 - (end - 1) % 64);
  if (first == last) {
    row[first] &= ~(head & tail);
    return;
  }
  row[first] &= ~head;
  std::fill(row + first + 1, row + last, 0);
  row[last] &= ~tail;
}

bool SeedFill::Push(Span span) {
  if (count_ == capacity_) {
    const uint64_t grown = 2 * capacity_ + 256;
    if (!waiting_.Resize(grown)) return false;
    capacity_ = grown;
  }
  waiting_[count_++] = span;
  return true;
}

// All runs of open pixels that reach into these columns.
bool SeedFill::EnterRow(int32_t y, int32_t start, int32_t end) {
  if (y < 0 || y >= open_->height()) return true;
  uint64_t* row = open_->Row(y);
  int32_t x = std::max(start, 0);
  end = std::min(end, open_->width());
  while (x < end && (x = NextColumn(row, x, end, true)) < end) {
    const int32_t runStart = RunStart(row, x);
    const int32_t runEnd = NextColumn(row, x, open_->width(), false);
    BitsClear(row, runStart, runEnd);
    std::memset(marker_.At<uint8_t>(runStart, y), value_, static_cast<size_t>(runEnd - runStart));
    if (!Push({runStart, runEnd, y})) return false;
    x = runEnd;
  }
  return true;
}

Status SeedFill::FillFrom(int32_t x, int32_t y) {
  if (!EnterRow(y, x, x + 1)) return STATUS_MEMORY_FULL;
  while (count_ > 0) {
    const Span span = waiting_[--count_];
    for (const int32_t next : {span.y - 1, span.y + 1}) {
      if (!EnterRow(next, span.start - reach_, span.end + reach_)) return STATUS_MEMORY_FULL;
    }
  }
  return STATUS_OK;
}

// The values around that of a pixel, in the pixels' own type.
ValueRange RangeAround(const PixelView& view, int32_t x, int32_t y, float tolerance) {
  const float value = view.type == IMAGE_U8    ? static_cast<float>(*view.At<uint8_t>(x, y))
                      : view.type == IMAGE_I16 ? static_cast<float>(*view.At<int16_t>(x, y))
                                               : *view.At<float>(x, y);
  ValueRange range{.low = value - tolerance, .high = value + tolerance, .lowest = 0, .highest = 0};
  if (view.type != IMAGE_SGL) {
    const IntegerLimits limits = LimitsOf(view.type);
    range.lowest = CutLimited(static_cast<double>(range.low), limits.low, limits.high);
    range.highest = CutLimited(static_cast<double>(range.high), limits.low, limits.high);
  }
  return range;
}

struct WandSeed {
  int32_t x, y;
  float tolerance;
};

Status MagicWand(ImageRef source, ImageRef destination, const WandSeed& seed, bool connectivity8,
                 float replaceValue) {
  Operands operands;
  operands.Source(source, &TypeIsScalar);
  operands.Destination(destination, IMAGE_U8, STATUS_BAD_TYPE);
  if (operands.HasFailed()) return operands.status();

  const PixelView from = operands.From();
  const auto value = CutLow<uint8_t>(static_cast<double>(replaceValue));
  // A marker of 0 holds the value already, and a tolerance below 0 or NaN includes nothing.
  const bool fills = !from.IsEmpty() && value != 0 && seed.tolerance >= 0.0f;
  const int32_t x = Clamped(seed.x, 0, from.width - 1);
  const int32_t y = Clamped(seed.y, 0, from.height - 1);
  OpenPixels open;
  if (fills) {
    const Status status = open.Start(from, RangeAround(from, x, y, seed.tolerance));
    if (status != STATUS_OK) return status;
  }
  operands.WriteBeside(Operands::CANNOT_RUN_IN_PLACE);
  operands.TakeSize();
  operands.TakeInfo();
  if (operands.HasFailed()) return operands.status();

  const PixelView to = operands.To();
  PixelsClear(to);
  Status status = STATUS_OK;
  if (fills) status = SeedFill(&open, to, value, connectivity8).FillFrom(x, y);
  if (status == STATUS_OK) operands.Written();
  return status;
}

}  // namespace
}  // namespace zel

int32_t ZEL_MagicWand(ImageRef source, ImageRef dest, int32_t x, int32_t y, float tolerance,
                      uint16_t connectivity8, float replaceValue) {
  return ZEL_ProcessError("ZEL_MagicWand", zel::MagicWand(source, dest, {x, y, tolerance},
                                                          connectivity8 != 0, replaceValue));
}
