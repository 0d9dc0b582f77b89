// Binary images of one bit a pixel, which operations on sets work on 64 pixels at a time.
#pragma once

#include <cstdint>

#include "core/heap.h"
#include "core/numbers.h"
#include "core/views.h"

namespace zel {

// Words of a row come in groups that row routines take at once.
constexpr int32_t BIT_GROUP_WORDS = 8;

// Set bits where pixels are set. Rows have words before and behind them, for operations that look
// to the sides, and so have the rows above and below. A frame is clear until it is written.
class BitPlane {
 public:
  // `reach`: columns to both sides that can be read; `frameRows`: rows above and below. False when
  // there is no memory.
  [[nodiscard]] bool Create(int32_t width, int32_t height, int32_t reach);
  // Rows without more words than that needs, for routines that take many rows as one: what they do
  // in whole groups goes on into the next row, and behind the last one there is room for it.
  // `frameRows`: rows above and below.
  [[nodiscard]] bool CreatePacked(int32_t width, int32_t height, int32_t reach, int32_t frameRows);
  // From the non-zero pixels of a U8 image of this size.
  void Take(const PixelView& view);

  // A value for set bits and 0 for others, into a U8 image of this size.
  void Write(const PixelView& view, uint8_t value = 1) const;

  int32_t width() const { return width_; }
  int32_t height() const { return height_; }
  int32_t words() const { return words_; }              // of a row: whole groups, if not packed
  int32_t marginWords() const { return marginWords_; }  // on each side
  int64_t pitch() const { return pitch_; }
  int64_t size() const { return (int64_t{height_} + 2 * int64_t{frameRows_}) * pitch_; }
  // Of a row, that have pixels.
  int32_t usedWords() const { return static_cast<int32_t>(WordsOfBits(width_)); }

  // The word that starts with column 0; also of the rows in the frame.
  uint64_t* Row(int64_t y) { return bits_.data() + (y + frameRows_) * pitch_ + marginWords_; }
  const uint64_t* Row(int64_t y) const {
    return bits_.data() + (y + frameRows_) * pitch_ + marginWords_;
  }

  void Clear();
  // The same pixels and surroundings; of a plane of the same size and reach.
  void CopyFrom(const BitPlane& plane);
  // Clears the bits behind a row's last pixel.
  void RowCut(int32_t y);
  // Continues rows beyond both ends by their first and their last pixel, as far as the reach goes.
  void RowsReplicate(int32_t begin, int32_t end);
  // The rows of the frame become the first and the last row, margins included.
  void FrameReplicate();

 private:
  [[nodiscard]] bool Allocate(int64_t slackWords);

  WorkArray<uint64_t> bits_;
  int64_t pitch_ = 0;
  int32_t width_ = 0;
  int32_t height_ = 0;
  int32_t words_ = 0;
  int32_t marginWords_ = 0;
  int32_t reachWords_ = 0;  // that have the reach, beyond one with pixels
  int32_t frameRows_ = 1;
};

// Whether any of the bits from start to end, without that, is set. At least one is asked for.
inline bool BitsAreSet(const uint64_t* row, int32_t start, int32_t end) {
  int32_t word = start / 64;
  const int32_t last = (end - 1) / 64;
  const uint64_t head = ~uint64_t{0} << (start % 64);
  const uint64_t tail = ~uint64_t{0} >> (63 - (end - 1) % 64);
  if (word == last) return (row[word] & head & tail) != 0;
  uint64_t any = row[word] & head;
  while (++word < last) any |= row[word];
  return (any | (row[last] & tail)) != 0;
}

// Sets them. At least one is asked for.
inline void BitsSet(uint64_t* row, int32_t start, int32_t end) {
  const int32_t first = start / 64;
  const int32_t last = (end - 1) / 64;
  const uint64_t head = ~uint64_t{0} << (start % 64);
  const uint64_t tail = ~uint64_t{0} >> (63 - (end - 1) % 64);
  if (first == last) {
    row[first] |= head & tail;
    return;
  }
  row[first] |= head;
  for (int32_t word = first + 1; word < last; word++) row[word] = ~uint64_t{0};
  row[last] |= tail;
}

}  // namespace zel
