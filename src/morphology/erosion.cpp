// Erosions of bit planes: rows of bits, moved by the columns of the members, combined.
#include "morphology/erosion.h"

#include <algorithm>
#include <cstring>
#include <utility>

#include "core/numbers.h"
#include "morphology/structuring_element.h"

namespace zel {
namespace {

// Members side by side that are looked at one by one; more are combined by doubling.
constexpr int32_t SINGLE_MEMBERS = 3;

bool RowIsClear(const BitPlane& plane, int32_t y) {
  return !BitsAreSet(plane.Row(y), 0, plane.width());
}

void RowClear(BitPlane* plane, int32_t y) {
  std::fill_n(plane->Row(y) - plane->marginWords(), plane->pitch(), 0);
}

constexpr int32_t NO_ROWS = -1;

}  // namespace

Status ErosionSettle(ImageRef source, ImageRef destination, const StructuringElement* element,
                     Operands* operands, bool* isDone) {
  if (ElementIsMissing(element)) return STATUS_NULL_POINTER;
  operands->Source(source, &TypeIsU8);
  operands->BorderAtLeast(ElementBorder(*element));
  operands->Destination(destination);
  if (operands->HasFailed()) return operands->status();
  // The border bounds what is read of the element.
  *isDone = ElementMembers(*element) < LEAST_ELEMENT_POSITIONS;
  if (!*isDone) return STATUS_OK;
  if (operands->destination() != &operands->source()) operands->TakePixels();
  operands->TakeInfo();
  return operands->status();
}

// One run in each of some rows that follow each other, all alike.
bool Erosion::IsRectangle() const {
  const RunList members = shape_.members();
  if (members.count == 0 || looksAtPixel_ || shape_.hexagonal()) return false;
  const ElementRun& first = members.runs[0];
  for (int32_t i = 1; i < members.count; i++) {
    const ElementRun& run = members.runs[i];
    if (run.row != first.row + i || run.column != first.column || run.length != first.length) {
      return false;
    }
  }
  return true;
}

Status Erosion::Start(const PixelView& view, const StructuringElement& element) {
  const Status status = shape_.Make(element, EvenWidth::EXTRA_COLUMN_LEFT);
  if (status != STATUS_OK) return status;
  const bool isSmall = element.width == 3 && element.height == 3;
  looksAtPixel_ = !isSmall && !shape_.hasCentre();
  isRectangle_ = IsRectangle();
  const int32_t reach = shape_.MemberReach();
  const int32_t planes = Shrinks() ? 2 : 3;
  for (int32_t i = 0; i < planes; i++) {
    if (!planes_[i].Create(view.width, view.height, reach)) return STATUS_MEMORY_FULL;
  }
  const int32_t ringRows = isRectangle_ ? shape_.members().count : 0;
  if (!ring_.Create(view.width, ringRows, reach)) return STATUS_MEMORY_FULL;
  turns_[2] = Shrinks() ? 1 : 2;
  // A row with its margins, and behind it as much as a shift can reach beyond.
  windowWords_ = ring_.pitch() + ring_.marginWords() + BIT_GROUP_WORDS;
  const int64_t mostShifted = int64_t{SINGLE_MEMBERS} * shape_.members().count + 2;
  if (!windows_.Allocate(2 * static_cast<uint64_t>(windowWords_)) ||
      !shifted_.Allocate(static_cast<uint64_t>(mostShifted))) {
    return STATUS_MEMORY_FULL;
  }
  planes_[0].Take(view);
  for (int32_t y = 0; y < view.height; y++) planes_[0].RowReplicate(y);
  return STATUS_OK;
}

int32_t Erosion::Clip(int64_t y) const {
  return Clamped(y, 0, planes_[0].height() - 1);
}

// A row whose bits tell whether so many from there on are set.
const uint64_t* Erosion::Window(const uint64_t* from, int32_t length) {
  const auto all = erosionRows().all;
  const int64_t margin = ring_.marginWords();
  const int64_t rowEnd = ring_.words() + margin;
  uint64_t* window = windows_.data() + margin;
  uint64_t* other = window + windowWords_;
  std::copy(from - margin, from + rowEnd, window - margin);
  for (uint64_t* each : {window, other}) {
    std::fill(each + rowEnd, each - margin + windowWords_, from[rowEnd - 1]);
  }
  for (int32_t done = 1; done < length;) {
    const int32_t step = std::min(done, length - done);
    const ShiftedRow rows[] = {{window - margin, 0}, ShiftedBy(window - margin, step)};
    all(other - margin, rows, 2, static_cast<int32_t>(ring_.pitch()));
    std::swap(window, other);
    done += step;
  }
  return window;
}

// Erodes a row by the members of a rectangle that lie side by side.
void Erosion::AlongRow(int32_t y, uint64_t* to) {
  const auto all = erosionRows().all;
  const BitPlane& from = Left();
  const ElementRun& run = shape_.members().runs[0];
  if (RowIsClear(from, y)) {
    std::fill_n(to, from.words(), 0);
  } else if (run.length > SINGLE_MEMBERS) {
    const ShiftedRow window = ShiftedBy(Window(from.Row(y), run.length), run.column);
    all(to, &window, 1, from.words());
  } else {
    for (int32_t i = 0; i < run.length; i++) {
      shifted_[static_cast<size_t>(i)] = ShiftedBy(from.Row(y), run.column + i);
    }
    all(to, shifted_.data(), run.length, from.words());
  }
}

// Along rows, then along columns.
void Erosion::StepByRows() {
  const auto all = erosionRows().all;
  const BitPlane& from = Left();
  BitPlane& to = planes_[turns_[2]];
  const RunList members = shape_.members();
  const auto ringRow = [&](int32_t y) { return ring_.Row(y % members.count); };
  int32_t done = NO_ROWS;
  for (int32_t y = 0; y < to.height(); y++) {
    const int32_t last = Clip(int64_t{y} + members.runs[members.count - 1].row);
    while (done < last) {
      done++;
      AlongRow(done, ringRow(done));
    }
    if (Shrinks() && RowIsClear(from, y)) {
      RowClear(&to, y);
      continue;
    }
    for (int32_t i = 0; i < members.count; i++) {
      shifted_[static_cast<size_t>(i)] = {ringRow(Clip(int64_t{y} + members.runs[i].row)), 0};
    }
    all(to.Row(y), shifted_.data(), members.count, from.words());
    to.RowReplicate(y);
  }
}

void Erosion::StepByMembers() {
  const auto all = erosionRows().all;
  const BitPlane& from = Left();
  BitPlane& to = planes_[turns_[2]];
  const RunList members = shape_.members();
  for (int32_t y = 0; y < to.height(); y++) {
    uint64_t* row = to.Row(y);
    if (Shrinks() && RowIsClear(from, y)) {
      RowClear(&to, y);
      continue;
    }
    std::fill_n(row, to.words(), ~uint64_t{0});
    shifted_[0] = {row, 0};  // what long runs have left of it
    shifted_[1] = {from.Row(y), 0};
    int32_t count = looksAtPixel_ ? 2 : 1;
    for (int32_t i = 0; i < members.count; i++) {
      const ElementRun& run = members.runs[i];
      const uint64_t* at = from.Row(Clip(int64_t{y} + run.row));
      const int32_t column = shape_.ColumnAt(run, y);
      if (run.length > SINGLE_MEMBERS) {
        const ShiftedRow rows[] = {{row, 0}, ShiftedBy(Window(at, run.length), column)};
        all(row, rows, 2, to.words());
        continue;
      }
      for (int32_t m = 0; m < run.length; m++) {
        shifted_[static_cast<size_t>(count++)] = ShiftedBy(at, column + m);
      }
    }
    all(row, shifted_.data(), count, to.words());
    to.RowReplicate(y);
  }
}

void Erosion::Step() {
  if (isRectangle_) {
    StepByRows();
  } else {
    StepByMembers();
  }
  if (Shrinks()) {
    std::swap(turns_[0], turns_[1]);
    turns_[2] = turns_[1];
  } else {
    std::rotate(turns_, turns_ + 2, turns_ + 3);
  }
  steps_ = std::min(steps_ + 1, 2);
}

bool Erosion::IsLikeBefore(int32_t steps) const {
  if (steps_ < steps) return false;
  const BitPlane& now = Left();
  const BitPlane& before = planes_[turns_[steps]];
  for (int32_t y = 0; y < now.height(); y++) {
    if (std::memcmp(now.Row(y), before.Row(y), static_cast<size_t>(now.words()) * 8) != 0) {
      return false;
    }
  }
  return true;
}

void Erosion::Run(int32_t count) {
  for (int64_t left = std::max(count, 1); left > 0;) {
    Step();
    left--;
    if (IsLikeBefore(1)) return;
    // What alternates is where the steps left over would end.
    if (!Shrinks() && IsLikeBefore(2)) left %= 2;
  }
}

}  // namespace zel
