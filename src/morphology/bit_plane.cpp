// Bit planes made from pixels.
#include "morphology/bit_plane.h"

#include <algorithm>
#include <cstring>

#include "engine/bit_rows.h"
#include "particles/runs_rows.h"

namespace zel {

bool BitPlane::Create(int32_t width, int32_t height, int32_t reach) {
  width_ = width;
  height_ = height;
  frameRows_ = 1;
  reachWords_ = reach / 64 + 1;
  words_ = (usedWords() + BIT_GROUP_WORDS - 1) / BIT_GROUP_WORDS * BIT_GROUP_WORDS;
  // A shift by whole words reads one more. Whole rows are groups too.
  marginWords_ = (reachWords_ + 1 + 3) / 4 * 4;
  static_assert(BIT_GROUP_WORDS == 2 * 4);
  return Allocate(0);
}

bool BitPlane::CreatePacked(int32_t width, int32_t height, int32_t reach, int32_t frameRows) {
  width_ = width;
  height_ = height;
  frameRows_ = frameRows;
  reachWords_ = reach / 64 + 1;
  words_ = usedWords();
  marginWords_ = reachWords_;
  // What is begun in the last row is read as far as a shift goes, and a group and a word beyond.
  return Allocate(2 * int64_t{marginWords_} + 2 * BIT_GROUP_WORDS);
}

bool BitPlane::Allocate(int64_t slackWords) {
  pitch_ = int64_t{words_} + 2 * int64_t{marginWords_};
  return bits_.AllocateZeroed(static_cast<uint64_t>(size() + slackWords));
}

void BitPlane::Take(const PixelView& view) {
  for (int32_t y = 0; y < height_; y++) runRows().bitsU8(view.Row<void>(y), width_, Row(y));
}

void BitPlane::Write(const PixelView& view, uint8_t value) const {
  for (int32_t y = 0; y < height_; y++) {
    auto* row = view.Row<uint8_t>(y);
    std::memset(row, 0, static_cast<size_t>(width_));
    bitRows().store(row, Row(y), width_, value);
  }
}

void BitPlane::Clear() {
  std::memset(bits_.data(), 0, static_cast<size_t>(size()) * sizeof(uint64_t));
}

void BitPlane::CopyFrom(const BitPlane& plane) {
  std::memcpy(bits_.data(), plane.bits_.data(), static_cast<size_t>(size()) * sizeof(uint64_t));
}

void BitPlane::RowCut(int32_t y) {
  const int32_t last = (width_ - 1) / 64;
  Row(y)[last] &= ~uint64_t{0} >> (63 - (width_ - 1) % 64);
  std::fill(Row(y) + last + 1, Row(y) + words_, 0);
}

void BitPlane::RowsReplicate(int32_t begin, int32_t end) {
  if (begin >= end) return;
  const int64_t pitch = pitch_;
  const int32_t reachWords = reachWords_;
  const int32_t lastPlace = (width_ - 1) / 64;
  const int32_t lastBit = (width_ - 1) % 64;
  const uint64_t used = ~uint64_t{0} >> (63 - lastBit);
  uint64_t* row = Row(begin);
  for (int32_t y = begin; y < end; y++, row += pitch) {
    uint64_t* lastWord = row + lastPlace;
    const uint64_t first = ~(row[0] & 1) + 1;
    const uint64_t last = ~(*lastWord >> lastBit & 1) + 1;
    *lastWord = (*lastWord & used) | (last & ~used);
    for (int32_t i = 1; i <= reachWords; i++) {
      row[-i] = first;
      lastWord[i] = last;
    }
  }
}

void BitPlane::FrameReplicate() {
  if (height_ == 0) return;
  const auto rowBytes = static_cast<size_t>(pitch_) * sizeof(uint64_t);
  for (int64_t i = 0; i < frameRows_; i++) {
    std::memcpy(Row(-1 - i) - marginWords_, Row(0) - marginWords_, rowBytes);
    std::memcpy(Row(height_ + i) - marginWords_, Row(height_ - 1) - marginWords_, rowBytes);
  }
}

}  // namespace zel
