// Holes as connected gaps between runs.
#include "particles/particle_holes.h"

namespace zel {

bool HoleFinder::Prepare() {
  const uint64_t places = runs_.size();
  stackCapacity_ = 64;
  return seen_.AllocateZeroed(places) && skipBefore_.AllocateZeroed(places) &&
         skipBehind_.AllocateZeroed(places) && stack_.Allocate(stackCapacity_);
}

bool HoleFinder::IsWall(uint32_t place) {
  return (*lastRows_)[sets_->Find((*labels_)[place])] >= wallRow_;
}

// Complete particles stay complete, so what one search has passed the next ones skip. Sentinels end
// a search on both sides.
uint32_t HoleFinder::WallAtOrBefore(uint32_t place) {
  uint32_t wall = place;
  while (runs_[wall].start != RUN_SENTINEL.start && !IsWall(wall)) wall -= skipBefore_[wall] + 1;
  while (place != wall) {
    const uint32_t next = place - skipBefore_[place] - 1;
    skipBefore_[place] = place - wall - 1;
    place = next;
  }
  return wall;
}

uint32_t HoleFinder::WallAtOrBehind(uint32_t place) {
  uint32_t wall = place;
  while (runs_[wall].start != RUN_SENTINEL.start && !IsWall(wall)) wall += skipBehind_[wall] + 1;
  while (place != wall) {
    const uint32_t next = place + skipBehind_[place] + 1;
    skipBehind_[place] = wall - place - 1;
    place = next;
  }
  return wall;
}

bool HoleFinder::Push(Gap gap) {
  seen_[gap.left] = holes_;
  if (stackSize_ == stackCapacity_) {
    if (!stack_.Resize(2 * stackCapacity_)) return false;
    stackCapacity_ *= 2;
  }
  stack_[stackSize_++] = gap;
  return true;
}

// The gaps of row y that overlap the columns from start to end, up to that behind lastPlace. No run
// of the row before `from` ends beyond the start.
bool HoleFinder::PushNeighbours(int32_t y, uint32_t from, int32_t start, int32_t end,
                                uint32_t lastPlace) {
  uint32_t right = from;
  while (runs_[right].end <= start) right++;
  uint32_t left = WallAtOrBefore(right - 1);
  if (runs_[left].start == RUN_SENTINEL.start) left = WallAtOrBehind(right);
  while (left <= lastPlace && runs_[left].end < end) {
    const uint32_t next = WallAtOrBehind(left + 1);
    const int32_t nextStart = runs_[next].start;
    if (nextStart == RUN_SENTINEL.start) break;
    if (nextStart > start && seen_[left] != holes_ && !Push({left, nextStart, y})) return false;
    left = next;
  }
  return true;
}

// A run that spans all columns of a gap below it touches the runs beside the gap: it is of their
// particle, and a wall.
bool HoleFinder::IsCoveredFromAbove(int32_t start, int32_t end, uint32_t from) const {
  while (runs_[from].end <= start) from++;
  return runs_[from].start <= start && runs_[from].end >= end;
}

bool HoleFinder::Find(int32_t y, uint32_t place, HoleShape* hole) {
  const int32_t left = runs_[place].end;
  const int32_t right = runs_[place + 1].start;
  if (IsCoveredFromAbove(left - reach_, right + reach_, neighbours_->firstAbove[place])) {
    *hole = {.area = right - left, .x = left, .y = y, .isGap = true};
    return true;
  }
  if (holes_ == 0 && !Prepare()) return false;
  holes_++;
  wallRow_ = y;
  stackSize_ = 0;
  *hole = {.area = 0, .x = 0, .y = INT32_MAX, .isGap = false};
  if (!Push({place, right, y})) return false;
  while (stackSize_ != 0) {
    const Gap gap = stack_[--stackSize_];
    const int32_t start = runs_[gap.left].end;
    const int32_t end = gap.end;
    hole->area += end - start;
    if (gap.y < hole->y || (gap.y == hole->y && start < hole->x)) {
      hole->x = start;
      hole->y = gap.y;
    }
    if (gap.y > 0 && !PushNeighbours(gap.y - 1, neighbours_->firstAbove[gap.left], start - reach_,
                                     end + reach_, UINT32_MAX)) {
      return false;
    }
    if (gap.y == y) continue;
    const uint32_t below = neighbours_->firstBelow[gap.left];
    if (!PushNeighbours(gap.y + 1, below != 0 ? below : runs_.RowEnd(gap.y + 1), start - reach_,
                        end + reach_, gap.y + 1 == y ? place : UINT32_MAX)) {
      return false;
    }
  }
  return true;
}

}  // namespace zel
