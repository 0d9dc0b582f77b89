// Operations made of passes: openings, closings, and what is combined of them.
#include "morphology/compound.h"

#include <algorithm>

#include "morphology/structuring_element.h"

namespace zel {

Status MorphologySettle(const MorphologyImages& images, const StructuringElement* element,
                        TypeTest takesType, Operands* operands) {
  if (ElementIsMissing(element)) return STATUS_NULL_POINTER;
  operands->Source(images.source, takesType);
  operands->BorderAtLeast(ElementBorder(*element));
  operands->Destination(images.destination);
  operands->WriteBeside(Operands::CANNOT_RUN_IN_PLACE);
  operands->TakeSize();
  operands->TakeInfo();
  return operands->status();
}

MorphologyOperation MorphologyOperationOf(int32_t number) {
  return static_cast<MorphologyOperation>(
      std::clamp<int32_t>(number, MORPHOLOGY_AUTO_MEDIAN, MORPHOLOGY_THIN));
}

PassPlan CompoundPlan(MorphologyOperation operation, const MorphologyPass& dilate,
                      const MorphologyPass& erode, const Combinations& combinations) {
  const MorphologyPass* const d = &dilate;
  const MorphologyPass* const e = &erode;
  const PassChain closed{{d, e}, 2};
  const PassChain opened{{e, d}, 2};
  const PassChain closedOpenedClosed{{d, e, e, d, d, e}, 6};
  const PassChain openedClosedOpened{{e, d, d, e, e, d}, 6};
  switch (operation) {
    case MORPHOLOGY_CLOSE:
      return {.first = closed};
    case MORPHOLOGY_OPEN:
      return {.first = opened};
    case MORPHOLOGY_GRADIENT:
      return {.first = {{d}, 1}, .second = {{e}, 1}, .combine = combinations.gradient};
    case MORPHOLOGY_PROPER_CLOSE:
      return {.first = openedClosedOpened, .combine = combinations.properClose};
    case MORPHOLOGY_PROPER_OPEN:
      return {.first = closedOpenedClosed, .combine = combinations.properOpen};
    default:
      return {.first = closedOpenedClosed,
              .second = openedClosedOpened,
              .combine = combinations.autoMedian};
  }
}

Status MorphologyRun(Operands* operands, const PassPlan& plan) {
  operands->BorderFilled(BORDER_REPLICATE);
  if (operands->HasFailed()) return operands->status();
  const WindowViews views{.source = operands->From(), .result = operands->To(), .mask = {}};
  const Status status = PassesRun(views, operands->source().border, plan);
  if (status == STATUS_OK) operands->Written();
  return status;
}

}  // namespace zel
