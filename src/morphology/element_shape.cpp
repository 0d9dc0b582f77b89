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
  bool IsMember(int32_t row, int32_t column) const {
    const int64_t elementRow = int64_t{row} + (element.height - 1) / 2;
    return element.elements[elementRow * element.width + column + middleColumn] != 0;
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

// Calls visit(run) for all runs of members, or of other positions, in raster order.
template <class Visit>
void EachRun(const Frame& frame, bool members, const Visit& visit) {
  for (int32_t row = -frame.reach; row <= frame.reach; row++) {
    const int32_t end = frame.LastColumnOf(row) + 1;
    int32_t column = frame.FirstColumnOf(row);
    while (column < end) {
      const int32_t first = column;
      while (column < end && frame.IsMember(row, column) == members) column++;
      if (column > first) visit(ElementRun{row, first, column - first});
      while (column < end && frame.IsMember(row, column) != members) column++;
    }
  }
}

}  // namespace

Status ElementShape::Make(const StructuringElement& element, EvenWidth evenWidth) {
  const Frame frame = FrameOf(element, evenWidth);
  hexagonal_ = frame.isHexagonal;
  hasCentre_ = frame.IsMember(0, 0);
  for (const bool isMembers : {true, false}) {
    Runs& runs = isMembers ? members_ : others_;
    uint64_t count = 0;
    EachRun(frame, isMembers, [&](const ElementRun&) { count++; });
    if (!runs.array.Allocate(count)) return STATUS_MEMORY_FULL;
    runs.count = 0;
    EachRun(frame, isMembers, [&](const ElementRun& run) {
      runs.array[static_cast<size_t>(runs.count)] = run;
      runs.count++;
    });
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
