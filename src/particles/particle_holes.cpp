// Holes as connected gaps between runs.
#include "particles/particle_holes.h"

namespace zel {

bool HoleFinder::IsWall(const SweptRun& swept) {
  return swept.run.start == RUN_SENTINEL.start ||
         (*lastRows_)[sets_->Find(swept.label)] >= wallRow_;
}

// Complete particles stay complete, so what one search has passed the next ones skip. Sentinels end
// a search on both sides.
uint32_t HoleFinder::WallAtOrBefore(uint32_t place) {
  uint32_t wall = place;
  while (!IsWall(At(wall))) wall -= At(wall).skipBefore + 1;
  while (place != wall) {
    const uint32_t next = place - At(place).skipBefore - 1;
    At(place).skipBefore = place - wall - 1;
    place = next;
  }
  return wall;
}

uint32_t HoleFinder::WallAtOrBehind(uint32_t place) {
  uint32_t wall = place;
  while (!IsWall(At(wall))) wall += At(wall).skipBehind + 1;
  while (place != wall) {
    const uint32_t next = place + At(place).skipBehind + 1;
    At(place).skipBehind = wall - place - 1;
    place = next;
  }
  return wall;
}

bool HoleFinder::Push(Gap gap) {
  At(gap.left).seenFor = holes_;
  if (stackSize_ == stackCapacity_) {
    const uint64_t grown = 2 * stackCapacity_ + 64;
    if (!stack_.Resize(grown)) return false;
    stackCapacity_ = grown;
  }
  stack_[stackSize_++] = gap;
  return true;
}

// The gaps of row y that overlap the columns from start to end, up to that behind lastPlace. No run
// of the row before `from` ends beyond the start.
bool HoleFinder::PushNeighbours(int32_t y, uint32_t from, int32_t start, int32_t end,
                                uint32_t lastPlace) {
  uint32_t right = from;
  while (At(right).run.end <= start) right++;
  uint32_t left = WallAtOrBefore(right - 1);
  if (At(left).run.start == RUN_SENTINEL.start) left = WallAtOrBehind(right);
  while (left <= lastPlace && At(left).run.end < end) {
    const uint32_t next = WallAtOrBehind(left + 1);
    const int32_t nextStart = At(next).run.start;
    if (nextStart == RUN_SENTINEL.start) break;
    if (nextStart > start && At(left).seenFor != holes_ && !Push({left, next, y})) return false;
    left = next;
  }
  return true;
}

// A run that spans all columns of a gap below it touches the runs beside the gap: it is of their
// particle, and a wall.
bool HoleFinder::IsCoveredFromAbove(int32_t start, int32_t end, uint32_t from) const {
  while (At(from).run.end <= start) from++;
  return At(from).run.start <= start && At(from).run.end >= end;
}

bool HoleFinder::Find(int32_t y, uint32_t place, HoleShape* hole) {
  const int32_t left = At(place).run.end;
  const int32_t right = At(place + 1).run.start;
  if (IsCoveredFromAbove(left - reach_, right + reach_, At(place).firstAbove)) {
    *hole = {.area = right - left, .x = left, .y = y, .isGap = true};
    return true;
  }
  holes_++;
  wallRow_ = y;
  stackSize_ = 0;
  *hole = {.area = 0, .x = 0, .y = INT32_MAX, .isGap = false};
  if (!Push({place, place + 1, y})) return false;
  while (stackSize_ != 0) {
    const Gap gap = stack_[--stackSize_];
    const int32_t start = At(gap.left).run.end;
    const int32_t end = At(gap.right).run.start;
    // What comes next on the right is far from what comes next on the left.
    __builtin_prefetch(&At(At(gap.right).firstAbove));
    __builtin_prefetch(&At(At(gap.right).firstBelow));
    hole->area += end - start;
    if (gap.y < hole->y || (gap.y == hole->y && start < hole->x)) {
      hole->x = start;
      hole->y = gap.y;
    }
    if (gap.y > 0 && !PushNeighbours(gap.y - 1, At(gap.left).firstAbove, start - reach_,
                                     end + reach_, UINT32_MAX)) {
      return false;
    }
    if (gap.y == y) continue;
    const uint32_t below = At(gap.left).firstBelow;
    if (!PushNeighbours(gap.y + 1, below != 0 ? below : table_.RowEnd(gap.y + 1), start - reach_,
                        end + reach_, gap.y + 1 == y ? place : UINT32_MAX)) {
      return false;
    }
  }
  return true;
}

}  // namespace zel
