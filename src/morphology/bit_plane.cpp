// Bit planes made from pixels.
#include "morphology/bit_plane.h"

#include <algorithm>
#include <cstring>

#include "morphology/distance_rows.h"
#include "particles/runs_rows.h"

namespace zel {

bool BitPlane::Create(int32_t width, int32_t height, int32_t reach, int32_t frameRows) {
  width_ = width;
  height_ = height;
  frameRows_ = frameRows;
  reachWords_ = reach / 64 + 1;
  constexpr int64_t groupPixels = 64 * BIT_GROUP_WORDS;
  words_ = static_cast<int32_t>((width + groupPixels - 1) / groupPixels * BIT_GROUP_WORDS);
  // A shift by whole words reads one more. Whole rows are groups too.
  marginWords_ = (reach / 64 + 2 + 3) / 4 * 4;
  static_assert(BIT_GROUP_WORDS == 2 * 4);
  pitch_ = int64_t{words_} + 2 * int64_t{marginWords_};
  return bits_.AllocateZeroed(static_cast<uint64_t>(size()));
}

void BitPlane::Take(const PixelView& view) {
  for (int32_t y = 0; y < height_; y++) runRows().bitsU8(view.Row<void>(y), width_, Row(y));
}

void BitPlane::Write(const PixelView& view, uint8_t value) const {
  for (int32_t y = 0; y < height_; y++) {
    auto* row = view.Row<uint8_t>(y);
    std::memset(row, 0, static_cast<size_t>(width_));
    distanceRows().store(row, Row(y), width_, value);
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

void BitPlane::RowReplicate(int32_t y) {
  uint64_t* row = Row(y);
  uint64_t* lastWord = row + (width_ - 1) / 64;
  const int32_t lastBit = (width_ - 1) % 64;
  const uint64_t used = ~uint64_t{0} >> (63 - lastBit);
  const uint64_t first = row[0] & 1 ? ~uint64_t{0} : 0;
  const uint64_t last = *lastWord >> lastBit & 1 ? ~uint64_t{0} : 0;
  *lastWord = (*lastWord & used) | (last & ~used);
  for (int32_t i = 1; i <= reachWords_; i++) {
    row[-i] = first;
    lastWord[i] = last;
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
