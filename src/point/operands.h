// What the engines of the operators share: from the record of an operation to the plane that the
// row routines take. For the sources of this family only.
#pragma once

#include "point/operators.h"
#include "point/plane.h"

namespace zel {

using OperatorEngine = void (*)(const RowOperation& operation, Status* status);

// The kernel of all operators but the bitwise ones: prepares, reads the operands, chooses between
// the code for two images and the one for a constant, and runs the engine.
void OperatorKernel(ImageRef first, ImageRef second, ImageRef destination, int16_t code,
                    bool swapAllowed, const float* constant, OperatorEngine engine, Status* status);

// Whether a code below OPERATION_MULDIV takes a constant in place of a second image.
constexpr bool OperationHasConstant(int16_t code) {
  return code % 2 != 0;
}

// The plane of an arithmetic or comparing operation; with a constant the first operand stands in
// for the second. False with a status for types that have no engine.
bool ScalarPlaneOf(const RowOperation& operation, Plane* plane, Status* status);

void PlaneOf(const RowOperation& operation, Plane* plane);
// With the first operand in place of the second.
void PlaneOfFirst(const RowOperation& operation, Plane* plane);

// The columns of a U8 plane that come in groups, from the left. Products and means with a constant
// see the constant otherwise there than in the remaining columns. Rows shorter than two groups
// have none.
constexpr int64_t GROUP_COLUMNS = 4;
int64_t GroupedColumns(const Plane& plane);

// Sums of integer pixels and a constant, limited to the type's range: the pixel is limited so that
// the sum can't leave the range. A constant beyond the span of the range gives the limit for every
// pixel.
PlaneConstant SumWithConstant(int32_t type, int64_t constant);

// The columns of a plane from one up to and without another.
Plane PlaneColumns(const Plane& plane, int64_t from, int64_t to);

// Runs a routine over a plane; as one long row, which the plane then is, where the rows of all
// images follow each other without a gap.
void PlaneRun(PlaneRoutine routine, Plane* plane);

// The same for a routine whose result depends on one byte only: it is worked out once for each of
// the 256 bytes and looked up.
void PlaneRunByTable(PlaneRoutine routine, const Plane& plane);

}  // namespace zel
