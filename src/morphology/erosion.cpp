// Erosions of bit planes: rows of bits, moved by the columns of the members, combined.
#include "morphology/erosion.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <utility>

#include "morphology/structuring_element.h"

namespace zel {
namespace {

// Members side by side that are looked at one by one; more are combined by doubling.
constexpr int32_t SINGLE_MEMBERS = 3;

// Rows are eroded in blocks of about so many words: in a small image, calls for each row would take
// longer than the work in them; in a large one, blocks without pixels are passed over.
constexpr int64_t BLOCK_WORDS = 256;

int32_t Groups(int64_t words) {
  return static_cast<int32_t>((words + BIT_GROUP_WORDS - 1) / BIT_GROUP_WORDS * BIT_GROUP_WORDS);
}

// Rows that members reach up or down.
int32_t RowReach(const RunList& members) {
  int32_t reach = 0;
  for (int32_t i = 0; i < members.count; i++) {
    reach = std::max(reach, std::abs(members.runs[i].row));
  }
  return reach;
}

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
  const int32_t frameRows = RowReach(shape_.members());
  const auto create = [&](BitPlane* plane) {
    return plane->CreatePacked(view.width, view.height, reach, frameRows);
  };
  if (!create(&planes_[0]) || !create(&planes_[1]) || (!Shrinks() && !create(&planes_[2])) ||
      (isRectangle_ && !create(&alongRows_))) {
    return STATUS_MEMORY_FULL;
  }
  turns_[2] = Shrinks() ? 1 : 2;
  // Members of odd rows change their places from row to row in a hexagonal frame.
  const int64_t pitch = planes_[0].pitch();
  blockRows_ =
      shape_.hexagonal() ? 1 : static_cast<int32_t>(std::max(BLOCK_WORDS / pitch, int64_t{1}));
  // Behind a block as much as in a plane: a shift and a group are read beyond.
  windowWords_ = blockRows_ * pitch + 2 * int64_t{planes_[0].marginWords()} + 2 * BIT_GROUP_WORDS;
  const int64_t mostShifted = int64_t{SINGLE_MEMBERS} * shape_.members().count + 2;
  if (!windows_.AllocateZeroed(2 * static_cast<uint64_t>(windowWords_)) ||
      !shifted_.Allocate(static_cast<uint64_t>(mostShifted))) {
    return STATUS_MEMORY_FULL;
  }
  planes_[0].Take(view);
  planes_[0].RowsReplicate(0, view.height);
  planes_[0].FrameReplicate();
  return STATUS_OK;
}

template <class Work>
void Erosion::EachBlock(const Work& work) const {
  const int32_t height = planes_[0].height();
  for (int32_t y = 0; y < height; y += std::min(blockRows_, height - y)) {
    work(Block{y, y + std::min(blockRows_, height - y)});
  }
}

// From the first pixel to the end of the last row, with the margins between. The words that make
// these whole groups belong to rows that are still to be done, or to none.
int32_t Erosion::WordsOf(const Block& block) const {
  const int64_t rowsBefore = int64_t{block.end} - block.begin - 1;
  return Groups(rowsBefore * planes_[0].pitch() + planes_[0].words());
}

bool Erosion::IsClear(const Block& block) const {
  for (int32_t y = block.begin; y < block.end; y++) {
    if (BitsAreSet(Left().Row(y), 0, Left().width())) return false;
  }
  return true;
}

void Erosion::Clear(const Block& block, BitPlane* plane) const {
  const int64_t rows = int64_t{block.end} - block.begin;
  std::fill_n(plane->Row(block.begin) - plane->marginWords(), rows * plane->pitch(), 0);
}

// Rows whose bits tell whether so many from there on are set: those of a block, this far from the
// element's middle.
const uint64_t* Erosion::Window(const Block& block, int32_t row, int32_t length) {
  const int64_t margin = planes_[0].marginWords();
  const int32_t words = Groups((int64_t{block.end} - block.begin) * planes_[0].pitch());
  const uint64_t* window = Left().Row(int64_t{block.begin} + row) - margin;
  uint64_t* to = windows_.data();
  uint64_t* other = to + windowWords_;
  for (int32_t done = 1; done < length;) {
    const int32_t step = std::min(done, length - done);
    const ShiftedRow rows[] = {{window, 0}, ShiftedBy(window, step)};
    erosionRows().all(to, rows, 2, words);
    window = to;
    std::swap(to, other);
    done += step;
  }
  return window + margin;
}

// Erodes by the members of a rectangle that lie side by side.
void Erosion::AlongRows(const Block& block) {
  if (IsClear(block)) return Clear(block, &alongRows_);
  const ElementRun& run = shape_.members().runs[0];
  const uint64_t* from = Left().Row(block.begin);
  int32_t count = 1;
  if (run.length > SINGLE_MEMBERS) {
    shifted_[0] = ShiftedBy(Window(block, 0, run.length), run.column);
  } else {
    count = run.length;
    for (int32_t i = 0; i < count; i++) {
      shifted_[static_cast<size_t>(i)] = ShiftedBy(from, run.column + i);
    }
  }
  erosionRows().all(alongRows_.Row(block.begin), shifted_.data(), count, WordsOf(block));
}

void Erosion::AcrossRows(const Block& block, BitPlane* to) {
  const RunList members = shape_.members();
  for (int32_t i = 0; i < members.count; i++) {
    const int64_t y = int64_t{block.begin} + members.runs[i].row;
    shifted_[static_cast<size_t>(i)] = {alongRows_.Row(y), 0};
  }
  erosionRows().all(to->Row(block.begin), shifted_.data(), members.count, WordsOf(block));
}

void Erosion::ByMembers(const Block& block, BitPlane* to) {
  const auto all = erosionRows().all;
  const int32_t words = WordsOf(block);
  uint64_t* result = to->Row(block.begin);
  std::fill_n(result, words, ~uint64_t{0});
  shifted_[0] = {result, 0};  // what long runs have left of it
  shifted_[1] = {Left().Row(block.begin), 0};
  int32_t count = looksAtPixel_ ? 2 : 1;
  const RunList members = shape_.members();
  for (int32_t i = 0; i < members.count; i++) {
    const ElementRun& run = members.runs[i];
    const int32_t column = shape_.ColumnAt(run, block.begin);
    if (run.length > SINGLE_MEMBERS) {
      const ShiftedRow rows[] = {{result, 0},
                                 ShiftedBy(Window(block, run.row, run.length), column)};
      all(result, rows, 2, words);
      continue;
    }
    const uint64_t* from = Left().Row(int64_t{block.begin} + run.row);
    for (int32_t m = 0; m < run.length; m++) {
      shifted_[static_cast<size_t>(count++)] = ShiftedBy(from, column + m);
    }
  }
  all(result, shifted_.data(), count, words);
}

void Erosion::Step() {
  BitPlane& to = planes_[turns_[2]];
  if (isRectangle_) {
    EachBlock([this](const Block& block) { AlongRows(block); });
    alongRows_.FrameReplicate();
  }
  EachBlock([this, &to](const Block& block) {
    if (Shrinks() && IsClear(block)) return Clear(block, &to);
    if (isRectangle_) {
      AcrossRows(block, &to);
    } else {
      ByMembers(block, &to);
    }
    to.RowsReplicate(block.begin, block.end);
  });
  to.FrameReplicate();
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
    if (std::memcmp(now.Row(y), before.Row(y), static_cast<size_t>(now.usedWords()) * 8) != 0) {
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
