// Floods that look at 64 pixels at a time.
#include "morphology/flood.h"

#include <algorithm>
#include <bit>
#include <utility>

namespace zel {
namespace {

// All of each run of open pixels that some are reached of.
uint64_t RunsFilled(uint64_t reached, uint64_t open) {
  // Towards the higher columns a carry runs through.
  uint64_t filled = reached | (open & ((open + reached) ^ open));
  if ((open & ~filled & filled >> 1) == 0) return filled;
  for (int32_t step = 1; step < 64; step *= 2) {
    filled |= open & filled >> step;
    open &= open >> step;
  }
  return filled;
}

}  // namespace

bool Flood::Create(int32_t width, int32_t height, bool connectivity8) {
  lastWord_ = (width - 1) / 64;
  groupShift_ = 0;
  while (lastWord_ >> groupShift_ >= 64) groupShift_++;
  corners_ = connectivity8 ? ~uint64_t{0} : 0;
  rows_ = static_cast<size_t>(height);
  if (!reached_.Create(width, height, 1) || !toLookAt_.AllocateZeroed(rows_) ||
      !waiting_.Allocate(rows_)) {
    return false;
  }
  return true;
}

void Flood::StartFromEdge(const BitPlane& open) {
  const int32_t lastRow = reached_.height() - 1;
  const uint64_t lastBit = uint64_t{1} << ((reached_.width() - 1) & 63);
  for (int32_t y = 0; y <= lastRow; y++) {
    const uint64_t* row = open.Row(y);
    if (y == 0 || y == lastRow) {
      StartFromBits(y, row, row);
      continue;
    }
    const uint64_t first = row[0] & 1;
    const uint64_t last = row[lastWord_] & lastBit;
    if ((first | last) == 0) continue;
    uint64_t* reached = reached_.Row(y);
    reached[0] = RunsFilled(first, row[0]);
    reached[lastWord_] |= RunsFilled(last, row[lastWord_]);
    RowStart(y, (first != 0 ? GroupOf(0) : 0) | (last != 0 ? GroupOf(lastWord_) : 0));
  }
}

void Flood::StartFromPixel(int32_t x, int32_t y, const uint64_t* open) {
  const int32_t i = x / 64;
  const uint64_t bit = uint64_t{1} << (x % 64);
  if ((open[i] & bit) == 0) return;
  reached_.Row(y)[i] = RunsFilled(bit, open[i]);
  RowStart(y, GroupOf(i));
}

void Flood::StartFromBits(int32_t y, const uint64_t* open, const uint64_t* bits) {
  uint64_t* reached = reached_.Row(y);
  uint64_t changed = 0;
  for (int32_t i = 0; i <= lastWord_; i++) {
    if ((open[i] & bits[i]) == 0) continue;
    reached[i] = RunsFilled(open[i] & bits[i], open[i]);
    changed |= GroupOf(i);
  }
  if (changed != 0) RowStart(y, changed);
}

// The row's own runs may go on in the next words.
void Flood::RowStart(int32_t y, uint64_t changed) {
  const uint64_t around = GroupsAround(changed);
  const int32_t last = std::min(y + 1, reached_.height() - 1);
  for (int32_t row = std::max(y - 1, 0); row <= last; row++) Wait(row, around, true);
}

uint64_t Flood::GroupsAround(uint64_t groups) const {
  const uint64_t all = ~uint64_t{0} >> (63 - (lastWord_ >> groupShift_));
  return (groups | groups << 1 | groups >> 1) & all;
}

int32_t Flood::NextRow() {
  if (above_ + below_ == 0) return NO_ROW;
  goesDown_ = goesDown_ ? below_ > 0 : above_ == 0;
  return waiting_[goesDown_ ? rows_ - below_-- : --above_];
}

void Flood::Wait(int32_t y, uint64_t groups, bool isAbove) {
  uint64_t& all = toLookAt_[static_cast<size_t>(y)];
  if (all == 0) waiting_[isAbove ? above_++ : rows_ - ++below_] = y;
  all |= groups;
}

void Flood::NeighboursWait(int32_t y, uint64_t changed) {
  if (changed == 0) return;
  const uint64_t around = GroupsAround(changed);
  if (y > 0) Wait(y - 1, around, true);
  if (y + 1 < reached_.height()) Wait(y + 1, around, false);
}

// Sets the runs of a word that have been entered; answers whether there are any.
bool Flood::WordEnter(uint64_t* row, const uint64_t* open, int32_t word, uint64_t entered,
                      uint64_t* changed) const {
  entered &= open[word] & ~row[word];
  if (entered == 0) return false;
  row[word] = RunsFilled(row[word] | entered, open[word]);
  *changed |= GroupOf(word);
  return true;
}

// Looks at the groups of a row that wait for it; answers in which of the row some have changed.
uint64_t Flood::RowGrow(int32_t y, const uint64_t* open) {
  const uint64_t* above = reached_.Row(y - 1);
  const uint64_t* below = reached_.Row(y + 1);
  uint64_t* row = reached_.Row(y);
  // What a pixel touches sideways, by corners too where these count.
  const auto beside = [&](int32_t i) { return row[i] | ((above[i] | below[i]) & corners_); };
  uint64_t changed = 0;
  uint64_t groups = std::exchange(toLookAt_[static_cast<size_t>(y)], 0);
  while (groups != 0) {
    const int32_t first = std::countr_zero(groups);
    const int32_t behind = first + std::countr_one(groups >> first);
    groups &= groups + (uint64_t{1} << first);  // without these
    const int32_t end = std::min(behind << groupShift_, lastWord_ + 1);
    uint64_t before = beside((first << groupShift_) - 1);
    uint64_t self = beside(first << groupShift_);
    for (int32_t i = first << groupShift_; i < end; i++) {
      const uint64_t next = beside(i + 1);
      const uint64_t touched =
          above[i] | below[i] | self << 1 | before >> 63 | self >> 1 | next << 63;
      before = self;
      self = next;
      if (!WordEnter(row, open, i, touched, &changed)) continue;
      before |= row[i];
      // Runs go on in words on both sides.
      for (int32_t j = i; WordEnter(row, open, j + 1, row[j] >> 63, &changed);) j++;
      for (int32_t j = i; WordEnter(row, open, j - 1, row[j] << 63, &changed);) j--;
    }
  }
  return changed;
}

void Flood::ReachedRemove(BitPlane* pixels) const {
  for (int32_t y = 0; y < reached_.height(); y++) {
    uint64_t* row = pixels->Row(y);
    const uint64_t* reached = reached_.Row(y);
    for (int32_t i = 0; i <= lastWord_; i++) row[i] &= ~reached[i];
  }
}

void Flood::OthersTake(BitPlane* pixels) const {
  for (int32_t y = 0; y < reached_.height(); y++) {
    uint64_t* row = pixels->Row(y);
    const uint64_t* reached = reached_.Row(y);
    for (int32_t i = 0; i <= lastWord_; i++) row[i] = ~reached[i];
    pixels->RowCut(y);
  }
}

void Flood::Run(OpenRow openRow, void* pixels) {
  for (int32_t y = NextRow(); y != NO_ROW; y = NextRow()) {
    NeighboursWait(y, RowGrow(y, openRow(pixels, y)));
  }
}

void Flood::Run(BitPlane* open) {
  Run([](void* plane, int32_t y) { return std::as_const(*static_cast<BitPlane*>(plane)).Row(y); },
      open);
}

bool SetPixelsTake(const PixelView& view, BitPlane* plane) {
  if (!plane->Create(view.width, view.height, 1)) return false;
  plane->Take(view);
  return true;
}

bool ClearPixelsTake(const PixelView& view, BitPlane* plane) {
  if (!SetPixelsTake(view, plane)) return false;
  if (view.IsEmpty()) return true;
  const int32_t last = (view.width - 1) / 64;
  for (int32_t y = 0; y < view.height; y++) {
    uint64_t* row = plane->Row(y);
    for (int32_t i = 0; i <= last; i++) row[i] = ~row[i];
    plane->RowCut(y);
  }
  return true;
}

}  // namespace zel
