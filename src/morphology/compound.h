// Operations on images, made of elementary passes: what binary and gray morphology have in common.
#pragma once

#include <cstdint>

#include "engine/operands.h"
#include "morphology/pass.h"
#include "orlune_ptk.h"

namespace zel {

struct MorphologyImages {
  ImageRef source, destination;
};

// Settles the images of an operation with an element. Sources that have been settled have a border
// that is wide enough, and not yet filled. In the order in which they count: STATUS_NULL_POINTER,
// STATUS_BAD_IMAGE, STATUS_BAD_TYPE, STATUS_BORDER_TOO_SMALL, STATUS_BAD_IMAGE and
// STATUS_DESTINATION_TYPE_DIFFERS for the destination, STATUS_MEMORY_FULL.
Status MorphologySettle(const MorphologyImages& images, const StructuringElement* element,
                        TypeTest takesType, Operands* operands);

// A MorphologyOperation, whatever the number.
MorphologyOperation MorphologyOperationOf(int32_t number);

// What compound operations make of the source and of their chains.
struct Combinations {
  void (*gradient)(const CombinedRows& rows);  // dilated and eroded
  void (*autoMedian)(const CombinedRows& rows);
  void (*properClose)(const CombinedRows& rows);
  void (*properOpen)(const CombinedRows& rows);
};

// The passes must outlive the plan. Other operations are not compound ones.
PassPlan CompoundPlan(MorphologyOperation operation, const MorphologyPass& dilate,
                      const MorphologyPass& erode, const Combinations& combinations);

// Fills the source's border and runs the passes.
Status MorphologyRun(Operands* operands, const PassPlan& plan);

}  // namespace zel
