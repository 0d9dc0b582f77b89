// Operators that combine two images, or an image and a constant, pixel by pixel: their operands
// settled, and the steps that they share.
#pragma once

#include <cstdint>

#include "core/status.h"
#include "engine/point.h"
#include "orlune_ptk.h"
#include "point/operator_rules.h"

namespace zel {

// What an operator works on. The result has the first operand's type.
struct OperatorOperands {
  PointViews views;  // without a second image the first stands in its place
  bool hasSecond;
  bool isDone;  // nothing is left to do: one operand was empty, and the other has been copied
};

// Whether first and second may change places, so that the second may be of the wider type.
enum class OperandOrder : bool { MATTERS, MAY_CHANGE };

// Arithmetic and comparison. The destination (0: the first image) takes the first image's
// calibration and size; if one of two operands is empty, it takes the other's pixels.
// STATUS_BAD_IMAGE; STATUS_OPERAND_TYPE_DIFFERS for a second image of a wider type, and for a
// destination of another type than the result; STATUS_SIZE_DIFFERS, after the calibration has been
// taken.
Status OperandsSettle(ImageRef first, ImageRef second, ImageRef destination, OperandOrder order,
                      OperatorOperands* operands);

// The same for operands of the scalar types, which all but the bitwise operators want. After
// all else has succeeded, STATUS_BAD_LAYOUT_TYPE for images without pixels, and
// STATUS_BAD_OPERAND_TYPE for others.
Status ScalarOperandsSettle(ImageRef first, ImageRef second, ImageRef destination,
                            OperandOrder order, OperatorOperands* operands);

// The same for bitwise operators, whose three images have one type out of U8, I16 and RGB:
// STATUS_BAD_OPERAND_TYPE for a first image of another type, STATUS_OPERAND_TYPE_DIFFERS for the
// others.
Status BitOperandsSettle(ImageRef first, ImageRef second, ImageRef destination,
                         OperatorOperands* operands);

// The columns of a U8 image that come in groups, from the left. Products and means with a constant
// see the constant otherwise there than in the remaining columns. Rows shorter than two groups
// have none.
constexpr int32_t GROUP_COLUMNS = 4;
int32_t GroupedColumns(int32_t width);

// Sums of integer pixels and a constant, limited to the type's range: the pixel is limited so that
// the sum can't leave the range. A constant beyond the span of the range gives the limit for every
// pixel.
OperatorConstant SumWithConstant(int32_t type, int64_t constant);

// Runs a routine of bytes whose result depends on one operand only: it is worked out once for each
// of the 256 bytes and looked up.
void PointWalkByTable(const PointViews& views, OperatorRoutine routine,
                      const OperatorConstant& constant);

}  // namespace zel
