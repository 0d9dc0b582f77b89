// Gray morphology: the largest and the smallest pixels around each one.
#include "core/pixel_types.h"
#include "morphology/compound.h"
#include "morphology/structuring_element.h"
#include "point/compare_rows.h"

namespace zel {
namespace {

bool HasMembers(const StructuringElement& element) {
  const int64_t positions = ElementPositions(element);
  for (int64_t i = 0; i < positions; i++) {
    if (element.elements[i] != 0) return true;
  }
  return false;
}

// What has no meaning for gray levels does what stands next in the list of operations.
MorphologyOperation GrayOperationOf(int32_t number) {
  switch (MorphologyOperationOf(number)) {
    case MORPHOLOGY_GRADIENT:
    case MORPHOLOGY_OUTER_GRADIENT:
    case MORPHOLOGY_INNER_GRADIENT:
    case MORPHOLOGY_HIT_MISS:
      return MORPHOLOGY_OPEN;
    case MORPHOLOGY_THICK:
    case MORPHOLOGY_THIN:
      return MORPHOLOGY_PROPER_OPEN;
    default:
      return MorphologyOperationOf(number);
  }
}

void Combine(const CompareRoutines& routines, const PixelView& first, const PixelView& second,
             const PixelView& result) {
  const PointViews views{.first = first, .second = second, .result = result, .mask = {}};
  routines.images.For(views)(views, {});
}

constexpr Combinations COMBINATIONS = {
    .gradient = nullptr,  // none of gray levels
    .autoMedian =
        [](const CombinedRows& rows) {
          Combine(compareRows().minimum, rows.source, rows.first, rows.first);
          Combine(compareRows().maximum, rows.first, rows.second, rows.result);
        },
    .properClose =
        [](const CombinedRows& rows) {
          Combine(compareRows().maximum, rows.source, rows.first, rows.result);
        },
    .properOpen =
        [](const CombinedRows& rows) {
          Combine(compareRows().minimum, rows.source, rows.first, rows.result);
        },
};

Status Run(MorphologyOperation operation, const ElementShape& shape, Operands* operands) {
  const int32_t type = operands->source().type;
  const MorphologyPass dilate = ExtremePass(shape, type, LARGEST, FINISH_VALUE);
  const MorphologyPass erode = ExtremePass(shape, type, SMALLEST, FINISH_VALUE);
  switch (operation) {
    case MORPHOLOGY_DILATE:
      return MorphologyRun(operands, {.first = {{&dilate}, 1}});
    case MORPHOLOGY_ERODE:
      return MorphologyRun(operands, {.first = {{&erode}, 1}});
    default:
      return MorphologyRun(operands, CompoundPlan(operation, dilate, erode, COMBINATIONS));
  }
}

Status GrayMorphology(ImageRef source, ImageRef destination, int32_t operation,
                      const StructuringElement* element) {
  Operands operands;
  Status status = MorphologySettle({source, destination}, element, &TypeIsScalar, &operands);
  if (status != STATUS_OK) return status;
  if (ElementPositions(*element) < LEAST_ELEMENT_POSITIONS || !HasMembers(*element)) {
    operands.TakePixels();
    return operands.status();
  }
  ElementShape shape;
  status = shape.Make(*element, EvenWidth::LAST_COLUMN_UNUSED);
  if (status != STATUS_OK) return status;
  return Run(GrayOperationOf(operation), shape, &operands);
}

}  // namespace
}  // namespace zel

int32_t ZEL_GrayMorphology(ImageRef source, ImageRef dest, int32_t operation,
                           const StructuringElement* element) {
  return ZEL_ProcessError("ZEL_GrayMorphology",
                          zel::GrayMorphology(source, dest, operation, element));
}
