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

// Whether arithmetic and comparison have an engine for the two types.
Status ScalarPairCheck(int32_t type1, int32_t type2);

Plane PlaneOf(const RowOperation& operation);

// The columns of a plane from one up to and without another.
Plane PlaneColumns(const Plane& plane, int64_t from, int64_t to);

// Runs a routine over a plane; as one long row where the rows of all images follow each other
// without a gap.
void PlaneRun(PlaneRoutine routine, const Plane& plane);

// The same for a routine whose result depends on one byte only: it is worked out once for each of
// the 256 bytes and looked up.
void PlaneRunByTable(PlaneRoutine routine, const Plane& plane);

}  // namespace zel
