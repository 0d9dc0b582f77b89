// The pixels on an oval's outline, in their order around it.
#include "vision/oval_path.h"

#include <algorithm>

namespace zel {
namespace {

// What an outline has in the rows to the left and to the right of the middle. The top row belongs
// to the right side as a whole, since the path begins there, and so does a middle column.
class OutlineSides {
 public:
  explicit OutlineSides(const PixelBox& box)
      : box_(box),
        isThin_(box.Width() < 2 || box.Height() < 2),
        middle_(box.left + box.Width() / 2),
        oval_(box) {}

  Columns Left(int64_t y) const {
    if (y == box_.top) return {middle_, middle_ - 1};
    const OvalOutline row = Row(y);
    return {row.left.first, std::min(row.left.last, middle_ - 1)};
  }
  Columns Right(int64_t y) const {
    const OvalOutline row = Row(y);
    if (y == box_.top) return row.left;
    const bool isOnePart = row.right.first > row.right.last;
    return isOnePart ? Columns{std::max(row.left.first, middle_), row.left.last} : row.right;
  }

 private:
  OvalOutline Row(int64_t y) const {
    if (isThin_) return {{box_.left, box_.right}, {box_.right + 1, box_.right}};
    return OvalOutlineOf(oval_, y);
  }

  PixelBox box_;
  bool isThin_;
  int64_t middle_;
  Oval oval_;
};

int64_t SizeOf(const Columns& columns) {
  return columns.last - columns.first + 1;
}

// One more than the limit stands for all that are beyond it.
int64_t PixelCount(const PixelBox& box, const OutlineSides& sides) {
  // Each row and each column has a pixel.
  if (box.Width() > OVAL_PATH_LIMIT || box.Height() > OVAL_PATH_LIMIT) return OVAL_PATH_LIMIT + 1;
  int64_t count = 0;
  for (int64_t y = box.top; y <= box.bottom && count <= OVAL_PATH_LIMIT; y++) {
    count += SizeOf(sides.Left(y)) + SizeOf(sides.Right(y));
  }
  return count;
}

}  // namespace

void OvalPath::AddRising(const Columns& columns, int64_t y) {
  for (int64_t x = columns.first; x <= columns.last; x++) Add(x, y);
}

void OvalPath::AddFalling(const Columns& columns, int64_t y) {
  for (int64_t x = columns.last; x >= columns.first; x--) Add(x, y);
}

void OvalPath::Add(int64_t x, int64_t y) {
  points_[static_cast<size_t>(count_++)] = {static_cast<int32_t>(x), static_cast<int32_t>(y)};
}

Status OvalPath::Make(const PixelBox& box) {
  const OutlineSides sides(box);
  const int64_t count = PixelCount(box, sides);
  count_ = 0;
  if (count > OVAL_PATH_LIMIT || !points_.Allocate(static_cast<uint64_t>(count))) {
    return STATUS_MEMORY_FULL;
  }
  // A middle row's right side belongs to the upper half, its left side to the lower one.
  const int64_t lowerRight = box.top + (box.Height() + 1) / 2;
  const int64_t lowerLeft = box.top + box.Height() / 2;
  for (int64_t y = box.top; y < lowerRight; y++) AddRising(sides.Right(y), y);
  for (int64_t y = lowerRight; y <= box.bottom; y++) AddFalling(sides.Right(y), y);
  for (int64_t y = box.bottom; y >= lowerLeft; y--) AddFalling(sides.Left(y), y);
  for (int64_t y = lowerLeft - 1; y >= box.top; y--) AddRising(sides.Left(y), y);
  return STATUS_OK;
}

}  // namespace zel
