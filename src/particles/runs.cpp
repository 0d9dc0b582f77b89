// Runs of non-zero pixels, extracted row by row.
#include "particles/runs.h"

#include <algorithm>

#include "core/numbers.h"
#include "orlune_ptk.h"

namespace zel {
namespace {

using BitsOfRow = void (*)(const void* row, int32_t width, uint64_t* words);

BitsOfRow BitsOfType(int32_t type) {
  return type == IMAGE_U8 ? runRows().bitsU8 : runRows().bitsI16;
}

}  // namespace

bool PixelBits::Create(const PixelView& view) {
  width_ = view.width;
  height_ = view.height;
  // A clear word before each row is also the frame behind the row above.
  pitch_ = WordsOfBits(width_) + 1;
  const int64_t words = (int64_t{height_} + 2) * pitch_ + 1;
  if (!words_.AllocateZeroed(static_cast<uint64_t>(words))) return false;
  const BitsOfRow bitsOfRow = BitsOfType(view.type);
  for (int32_t y = 0; y < height_; y++) {
    bitsOfRow(view.Row<void>(y), width_, words_.data() + (int64_t{y} + 1) * pitch_ + 1);
  }
  return true;
}

bool RunTable::Start(int32_t width, int32_t height) {
  width_ = width;
  height_ = height;
  rowsFilled_ = 0;
  if (!rows_.Allocate(static_cast<uint64_t>(height) + 2)) return false;
  // A guess that small images and scenes of few particles do not outgrow.
  const uint64_t rowRoom = static_cast<uint64_t>(width) / 2 + 2 + RUN_SLACK;
  capacity_ = std::min(static_cast<uint64_t>(height) * 16, rowRoom * 64) + rowRoom;
  if (!runs_.Allocate(capacity_)) return false;
  rows_[0] = 0;
  runs_[0] = RUN_SENTINEL;
  rows_[1] = 1;
  size_ = 1;
  return true;
}

bool RunTable::AppendRow(const uint64_t* words) {
  const uint64_t needed = size_ + static_cast<uint64_t>(width_) / 2 + 2 + RUN_SLACK;
  if (needed > capacity_) {
    const uint64_t grown = needed + capacity_;
    if (!runs_.Resize(grown)) return false;
    capacity_ = grown;
  }
  size_ += runRows().runs(words, width_, runs_.data() + size_);
  runs_[size_++] = RUN_SENTINEL;
  rows_[static_cast<size_t>(rowsFilled_++) + 2] = size_;
  return true;
}

bool RunTable::Extract(const PixelView& view) {
  WorkArray<uint64_t> words;
  if (!Start(view.width, view.height) ||
      !words.Allocate(static_cast<uint64_t>(WordsOfBits(view.width)))) {
    return false;
  }
  const BitsOfRow bitsOfRow = BitsOfType(view.type);
  for (int32_t y = 0; y < view.height; y++) {
    bitsOfRow(view.Row<void>(y), view.width, words.data());
    if (!AppendRow(words.data())) return false;
  }
  return true;
}

bool RunTable::Extract(const PixelBits& bits) {
  if (!Start(bits.width(), bits.height())) return false;
  for (int32_t y = 0; y < bits.height(); y++) {
    if (!AppendRow(bits.Row(y))) return false;
  }
  return true;
}

}  // namespace zel
