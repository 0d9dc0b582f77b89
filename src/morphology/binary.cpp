// Binary morphology: pixels that are 0, and those that are not.
#include "core/pixel_types.h"
#include "morphology/compound.h"
#include "morphology/structuring_element.h"
#include "point/logic_rows.h"

namespace zel {
namespace {

// ---- elementary passes. One with a small element stores 1 for what it sets, others keep pixels.

constexpr int32_t SMALL_SIDE = 3;

struct BinaryElement {
  ElementShape shape;
  bool isSmall;

  Status Make(const StructuringElement& element) {
    isSmall = element.width == SMALL_SIDE && element.height == SMALL_SIDE;
    return shape.Make(element, EvenWidth::EXTRA_COLUMN_LEFT);
  }
};

MorphologyPass DilatePass(const BinaryElement& element) {
  const Finish small = element.shape.hasCentre() ? FINISH_MARK : FINISH_ADD_MARK;
  return ExtremePass(element.shape, IMAGE_U8, LARGEST, element.isSmall ? small : FINISH_ADD);
}

MorphologyPass ErodePass(const BinaryElement& element) {
  return ExtremePass(element.shape, IMAGE_U8, SMALLEST,
                     element.isSmall ? FINISH_MARK : FINISH_KEEP);
}

bool IsElementary(MorphologyOperation operation) {
  switch (operation) {
    case MORPHOLOGY_DILATE:
    case MORPHOLOGY_ERODE:
    case MORPHOLOGY_OUTER_GRADIENT:
    case MORPHOLOGY_INNER_GRADIENT:
    case MORPHOLOGY_HIT_MISS:
    case MORPHOLOGY_THICK:
    case MORPHOLOGY_THIN:
      return true;
    default:
      return false;
  }
}

MorphologyPass ElementaryPass(MorphologyOperation operation, const BinaryElement& element) {
  const ElementShape& shape = element.shape;
  switch (operation) {
    case MORPHOLOGY_DILATE:
      return DilatePass(element);
    case MORPHOLOGY_ERODE:
      return ErodePass(element);
    case MORPHOLOGY_OUTER_GRADIENT:
      return ExtremePass(shape, IMAGE_U8, LARGEST, FINISH_OUTER);
    case MORPHOLOGY_INNER_GRADIENT:
      return ExtremePass(shape, IMAGE_U8, SMALLEST, FINISH_INNER);
    case MORPHOLOGY_HIT_MISS:
      return MatchPass(shape, element.isSmall ? FINISH_MARK : FINISH_KEEP);
    case MORPHOLOGY_THICK:
      return MatchPass(shape, element.isSmall ? FINISH_ADD_MARK : FINISH_ADD);
    default:
      return MatchPass(shape, FINISH_INNER);
  }
}

// ---- compound operations

void Combine(PointRoutine<NoRule> LogicRows::*operation, const PixelView& first,
             const PixelView& second, const PixelView& result) {
  (logicRows().*operation)({.first = first, .second = second, .result = result, .mask = {}},
                           NoRule());
}

constexpr Combinations COMBINATIONS = {
    .gradient =
        [](const CombinedRows& rows) {
          morphologyRows().subtract(rows.first.origin, rows.second.origin, rows.result.origin,
                                    rows.result.width);
        },
    .autoMedian =
        [](const CombinedRows& rows) {
          Combine(&LogicRows::bitAnd, rows.source, rows.first, rows.first);
          Combine(&LogicRows::bitOr, rows.first, rows.second, rows.result);
        },
    .properClose =
        [](const CombinedRows& rows) {
          Combine(&LogicRows::bitOr, rows.source, rows.first, rows.first);
          logicRows().keepAndFlip[PIXEL_1](
              {.first = rows.first, .second = rows.first, .result = rows.result, .mask = {}},
              {.keep = 1, .flip = 0});
        },
    .properOpen =
        [](const CombinedRows& rows) {
          Combine(&LogicRows::bitAnd, rows.source, rows.first, rows.result);
        },
};

Status Run(MorphologyOperation operation, const BinaryElement& element, Operands* operands) {
  if (IsElementary(operation)) {
    const MorphologyPass pass = ElementaryPass(operation, element);
    return MorphologyRun(operands, {.first = {{&pass}, 1}});
  }
  const MorphologyPass dilate = DilatePass(element);
  const MorphologyPass erode = ErodePass(element);
  return MorphologyRun(operands, CompoundPlan(operation, dilate, erode, COMBINATIONS));
}

Status BinaryMorphology(ImageRef source, ImageRef destination, int32_t operation,
                        const StructuringElement* element) {
  Operands operands;
  Status status = MorphologySettle({source, destination}, element, &TypeIsU8, &operands);
  if (status != STATUS_OK) return status;
  if (ElementPositions(*element) < LEAST_ELEMENT_POSITIONS) {
    operands.TakePixels();
    return operands.status();
  }
  BinaryElement prepared;
  status = prepared.Make(*element);
  if (status != STATUS_OK) return status;
  return Run(MorphologyOperationOf(operation), prepared, &operands);
}

}  // namespace
}  // namespace zel

int32_t ZEL_Morphology(ImageRef source, ImageRef dest, int32_t operation,
                       const StructuringElement* element) {
  return ZEL_ProcessError("ZEL_Morphology",
                          zel::BinaryMorphology(source, dest, operation, element));
}
