// The shape of a structuring element: the positions around a pixel that an operation looks at, as
// runs of columns.
#pragma once

#include <cstdint>

#include "core/heap.h"
#include "core/status.h"
#include "orlune_ptk.h"

namespace zel {

// Positions side by side in one row of an element, relative to the pixel.
struct ElementRun {
  int32_t row, column, length;

  int32_t LastColumn() const { return column + length - 1; }
};

struct RunList {
  const ElementRun* runs;
  int32_t count;
};

// Where the middle of an even width lies.
enum class EvenWidth {
  EXTRA_COLUMN_LEFT,  // binary operations look at one column more to the left than to the right
  LAST_COLUMN_UNUSED  // those on gray levels at as many on both sides
};

// In a hexagonal frame, positions in odd rows from the pixel lie one column further to the right
// where the pixel's own row is an odd one of the image.
class ElementShape {
 public:
  // For an element with sides above 0. STATUS_MEMORY_FULL.
  Status Make(const StructuringElement& element, EvenWidth evenWidth);

  bool hexagonal() const { return hexagonal_; }
  bool hasCentre() const { return hasCentre_; }  // the pixel itself is a member
  // In raster order.
  RunList members() const { return members_.List(); }
  // The first column of a run around a pixel of this row of the image.
  int32_t ColumnAt(const ElementRun& run, int32_t y) const {
    return run.column + (hexagonal_ && run.row % 2 != 0 && y % 2 != 0 ? 1 : 0);
  }
  int32_t MemberReach() const;                       // columns to either side, at most
  RunList others() const { return others_.List(); }  // the positions that are no members

 private:
  struct Runs {
    WorkArray<ElementRun> array;
    int32_t count = 0;
    int32_t capacity = 0;

    bool Append(const ElementRun& run);  // false when there is no memory
    RunList List() const { return {array.data(), count}; }
  };

  bool hexagonal_ = false;
  bool hasCentre_ = false;
  Runs members_, others_;
};

}  // namespace zel
