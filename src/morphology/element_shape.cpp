// Structuring elements taken apart into runs of members and of other positions.
#include "morphology/element_shape.h"

#include <algorithm>
#include <cstdlib>

#include "morphology/structuring_element.h"

namespace zel {
namespace {

// The positions of an element, by row and column from the pixel.
struct Frame {
  const StructuringElement& element;
  bool isHexagonal;
  int32_t reach;         // rows above and below the pixel
  int32_t middleColumn;  // of the element, that lies on the pixel
  int32_t lastColumn;    // of a square frame

  int32_t FirstColumnOf(int32_t row) const {
    return isHexagonal ? -HexagonHalf(row) : -middleColumn;
  }
  int32_t LastColumnOf(int32_t row) const {
    return isHexagonal ? HexagonHalf(row) - (row & 1) : lastColumn;
  }
  // A row's numbers, not 0 for members, by column from the pixel.
  const int32_t* RowOf(int32_t row) const {
    const int64_t elementRow = int64_t{row} + (element.height - 1) / 2;
    return element.elements + elementRow * element.width + middleColumn;
  }

 private:
  // Rows of a hexagon have a position less for each row away from the pixel's.
  int32_t HexagonHalf(int32_t row) const { return (element.width - 1) / 2 - std::abs(row) / 2; }
};

Frame FrameOf(const StructuringElement& element, EvenWidth evenWidth) {
  const int32_t half = (element.width - 1) / 2;
  int32_t reach = (element.height - 1) / 2;
  if (IsHexagonal(element)) {
    if (reach > element.width) reach = (element.width + 1) / 2;
    return {element, true, reach, half, half};
  }
  if (evenWidth == EvenWidth::LAST_COLUMN_UNUSED) return {element, false, reach, half, half};
  return {element, false, reach, element.width / 2, half};
}

// The end of the run that begins at a column.
int32_t RunEnd(const int32_t* row, int32_t first, int32_t end) {
  const bool isMember = row[first] != 0;
  const auto differs = [isMember](int32_t number) { return (number != 0) != isMember; };
  return static_cast<int32_t>(std::find_if(row + first, row + end, differs) - row);
}

}  // namespace

bool ElementShape::Runs::Append(const ElementRun& run) {
  if (count == capacity) {
    const int32_t grown = 2 * capacity + 32;
    if (!array.Resize(static_cast<uint64_t>(grown))) return false;
    capacity = grown;
  }
  array[static_cast<size_t>(count++)] = run;
  return true;
}

Status ElementShape::Make(const StructuringElement& element, EvenWidth evenWidth) {
  const Frame frame = FrameOf(element, evenWidth);
  hexagonal_ = frame.isHexagonal;
  hasCentre_ = frame.RowOf(0)[0] != 0;
  members_.count = 0;
  others_.count = 0;
  for (int32_t row = -frame.reach; row <= frame.reach; row++) {
    const int32_t* numbers = frame.RowOf(row);
    const int32_t end = frame.LastColumnOf(row) + 1;
    for (int32_t column = frame.FirstColumnOf(row); column < end;) {
      const int32_t first = column;
      column = RunEnd(numbers, first, end);
      Runs& runs = numbers[first] != 0 ? members_ : others_;
      if (!runs.Append({row, first, column - first})) return STATUS_MEMORY_FULL;
    }
  }
  return STATUS_OK;
}

int32_t ElementShape::MemberReach() const {
  int32_t reach = 0;
  for (int32_t i = 0; i < members_.count; i++) {
    const ElementRun& run = members().runs[i];
    reach = std::max({reach, -run.column, run.LastColumn() + (hexagonal_ ? 1 : 0)});
  }
  return reach;
}

}  // namespace zel
