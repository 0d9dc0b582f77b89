// Polygons filled by scan conversion.
#include "regions/polygon_fill.h"

#include <algorithm>
#include <cstring>

#include "core/numbers.h"
#include "engine/bit_rows.h"

namespace zel {
namespace {

int64_t Magnitude(int64_t value) {
  return value < 0 ? -value : value;
}

// Toward minus infinity, so that a remainder is never negative.
struct FloorQuotient {
  int64_t quotient, remainder;
  FloorQuotient(int64_t dividend, int64_t divisor)
      : quotient(dividend / divisor), remainder(dividend % divisor) {
    if (remainder >= 0) return;
    quotient--;
    remainder += divisor;
  }
};

// Of a row of so many columns.
size_t WordsOf(int32_t columns) {
  return static_cast<size_t>(WordsOfBits(columns));
}

// Each bit becomes whether an odd number of bits up to it is set.
uint64_t OddUpTo(uint64_t bits) {
  for (int32_t step = 1; step < 64; step *= 2) bits ^= bits << step;
  return bits;
}

// Rows of more crossings are not sorted.
constexpr int32_t MOST_SORTED = 16;

}  // namespace

Status PolygonFill::Prepare(int64_t points, int32_t rows, int32_t columns) {
  const auto crossings = 2 * static_cast<uint64_t>(points);
  const bool hasMemory = crossings_.Allocate(crossings) && active_.Allocate(crossings) &&
                         beginning_.Allocate(static_cast<uint64_t>(std::max(rows, 0))) &&
                         columns_.Allocate(2 * WordsOf(std::max(columns, 0)));
  return hasMemory ? STATUS_OK : STATUS_MEMORY_FULL;
}

void PolygonFill::Begin(const PixelView& view, int64_t frameHeight, int32_t direction) {
  view_ = view;
  frameHeight_ = frameHeight;
  direction_ = direction;
  firstRow_ = view.height;
  endRow_ = 0;
  crossingCount_ = 0;
  activeCount_ = 0;
}

void PolygonFill::AddEdge(PointInt from, PointInt to) {
  const bool isAbove = from.y < 0 && to.y < 0;
  const bool isBelow = from.y >= frameHeight_ && to.y >= frameHeight_;
  if (isAbove || isBelow) return;
  if (from.y == to.y) {
    // Two crossings in one place change nothing beside the outline.
    if (from.x == to.x) return;
    AddPoint(from);
    AddPoint(to);
    return;
  }
  const int32_t direction = from.y < to.y ? 1 : -1;
  if (direction != direction_) AddPoint(from);
  direction_ = direction;
  AddSlope(from, to);
}

// Whether the remainder carries is a matter of chance, so that a mask does it and no branch.
void PolygonFill::Crossing::GoOn() {
  remainder += stepRemainder;
  const int32_t mask = -static_cast<int32_t>(remainder >= divisor);
  remainder -= divisor & mask;
  x = static_cast<int32_t>(static_cast<uint32_t>(x) + static_cast<uint32_t>(step) +
                           static_cast<uint32_t>(carry & mask));
}

void PolygonFill::AddPoint(PointInt point) {
  if (point.y < 0) return;
  Add(point.y, {.x = point.x,
                .remainder = 0,
                .stepRemainder = 0,
                .divisor = 1,
                .step = 0,
                .carry = 0,
                .last = point.y,
                .next = NONE});
}

// The row k steps from the first point is entered after (minor k + major / 2) / major columns where
// the line is steep, and where it is flat after the first column at which the line has come
// closer to that row than to the one before.
void PolygonFill::AddSlope(PointInt from, PointInt to) {
  const int64_t dx = Magnitude(int64_t{to.x} - from.x);
  const int64_t dy = Magnitude(int64_t{to.y} - from.y);
  const int64_t divisor = 2 * dy;
  const bool isSteep = dy > dx;
  const int64_t start = isSteep ? dy : 2 * dy - 1 - dx;

  const bool goesDown = to.y > from.y;
  const int64_t top = goesDown ? int64_t{from.y} + 1 : to.y;
  const int64_t bottom = goesDown ? to.y : int64_t{from.y} - 1;
  const int64_t first = std::max<int64_t>(top, 0);
  const int64_t steps = Magnitude(first - from.y);
  const FloorQuotient at(2 * dx * steps + start, divisor);
  const FloorQuotient perRow(goesDown ? 2 * dx : -2 * dx, divisor);
  const int64_t sign = to.x < from.x ? -1 : 1;
  Add(first, {.x = static_cast<int32_t>(from.x + sign * at.quotient),
              .remainder = static_cast<int32_t>(at.remainder),
              .stepRemainder = static_cast<int32_t>(perRow.remainder),
              .divisor = static_cast<int32_t>(divisor),
              .step = static_cast<int32_t>(sign * perRow.quotient),
              .carry = static_cast<int32_t>(sign),
              .last = static_cast<int32_t>(bottom),
              .next = NONE});
}

void PolygonFill::Add(int64_t first, const Crossing& crossing) {
  if (first >= view_.height || first > crossing.last) return;
  const auto row = static_cast<int32_t>(first);
  const int32_t end = std::min(crossing.last, view_.height - 1) + 1;
  // Rows get their list when the polygon first reaches them.
  int32_t* lists = beginning_.data();
  if (firstRow_ >= endRow_) {
    firstRow_ = row;
    endRow_ = row;
  }
  if (row < firstRow_) {
    std::fill(lists + row, lists + firstRow_, NONE);
    firstRow_ = row;
  }
  if (end > endRow_) {
    std::fill(lists + endRow_, lists + end, NONE);
    endRow_ = end;
  }
  Crossing& added = crossings_[static_cast<size_t>(crossingCount_)];
  added = crossing;
  added.next = lists[row];
  lists[row] = crossingCount_++;
}

// From the crossings of the row before to those of this one.
void PolygonFill::Advance(int32_t y) {
  Crossing* active = active_.data();
  const int32_t before = activeCount_;
  int32_t count = 0;
  for (int32_t i = 0; i < before; i++) {
    if (active[i].last < y) continue;
    active[count] = active[i];
    active[count++].GoOn();
  }
  for (int32_t index = beginning_[static_cast<size_t>(y)]; index != NONE;) {
    active[count] = crossings_[static_cast<size_t>(index)];
    index = active[count++].next;
  }
  activeCount_ = count;
}

// Edges hardly change places from row to row, so that each is inserted near where it was.
void PolygonFill::SortActive() {
  Crossing* active = active_.data();
  for (int32_t i = 1; i < activeCount_; i++) {
    const Crossing crossing = active[i];
    int32_t place = i;
    for (; place > 0 && active[place - 1].x > crossing.x; place--) {
      active[place] = active[place - 1];
    }
    active[place] = crossing;
  }
}

void PolygonFill::PaintSorted(int32_t y, uint8_t value) const {
  auto* row = view_.Row<uint8_t>(y);
  for (int32_t i = 0; i + 1 < activeCount_; i += 2) {
    const int32_t first = std::max(active_[static_cast<size_t>(i)].x, 0);
    const int32_t last = std::min(active_[static_cast<size_t>(i) + 1].x, view_.width - 1);
    if (first <= last) std::memset(row + first, value, static_cast<size_t>(last - first) + 1);
  }
}

// A pixel is painted where a crossing is, and where an odd number of them lies before it: that
// needs no order. Of an odd number in all, the last one has no other to go with.
void PolygonFill::PaintByColumns(int32_t y, uint8_t value) {
  const Crossing* active = active_.data();
  const Crossing* end = active + activeCount_;
  const auto isBefore = [](const Crossing& a, const Crossing& b) { return a.x < b.x; };
  const Crossing* alone = activeCount_ % 2 != 0 ? std::max_element(active, end, isBefore) : end;
  const size_t words = WordsOf(view_.width);
  uint64_t* any = columns_.data();
  uint64_t* odd = any + words;
  std::fill_n(any, 2 * words, 0);
  uint64_t before = 0;  // all bits, of the words so far
  for (const Crossing* crossing = active; crossing < end; crossing++) {
    if (crossing == alone || crossing->x >= view_.width) continue;
    if (crossing->x < 0) {
      before = ~before;
      continue;
    }
    const uint64_t bit = uint64_t{1} << (crossing->x % 64);
    any[crossing->x / 64] |= bit;
    odd[crossing->x / 64] ^= bit;
  }
  for (size_t i = 0; i < words; i++) {
    const uint64_t upTo = OddUpTo(odd[i]);
    any[i] |= upTo << 1 ^ before;
    if (upTo >> 63 != 0) before = ~before;
  }
  bitRows().store(view_.Row<uint8_t>(y), any, view_.width, value);
}

void PolygonFill::Paint(uint8_t value) {
  for (int32_t y = firstRow_; y < endRow_; y++) {
    Advance(y);
    if (activeCount_ <= MOST_SORTED) {
      SortActive();
      PaintSorted(y, value);
    } else {
      PaintByColumns(y, value);
    }
  }
}

}  // namespace zel
