// Edges: how much a pixel differs from its neighbours, by one of six operators.
#include <algorithm>

#include "core/numbers.h"
#include "engine/window.h"
#include "filters/edges_rows.h"

namespace zel {
namespace {

constexpr WindowReach REACH = {.above = 1, .below = 1};

const WindowRows<EdgeRule>& RowsOf(int32_t method) {
  const EdgeRows& rows = edgeRows();
  switch (method) {
    case EDGE_DIFFERENTIATION:
      return rows.differentiation;
    case EDGE_GRADIENT:
      return rows.gradient;
    case EDGE_PREWITT:
      return rows.prewitt;
    case EDGE_ROBERTS:
      return rows.roberts;
    case EDGE_SIGMA:
      return rows.sigma;
    default:
      return rows.sobel;
  }
}

WindowRow<EdgeRule> SingleRowOf(int32_t method) {
  const auto& rows = edgeRows().singles;
  switch (method) {
    case EDGE_DIFFERENTIATION:
      return rows.differentiation;
    case EDGE_GRADIENT:
      return rows.gradient;
    case EDGE_ROBERTS:
      return rows.roberts;
    default:
      return nullptr;
  }
}

WindowRow<EdgeRule> RowOf(int32_t method, int32_t type, const EdgeRule& rule) {
  const bool keepsAll = !(rule.realLimit > 0.0);
  const WindowRow<EdgeRule> single = keepsAll && type == IMAGE_SGL ? SingleRowOf(method) : nullptr;
  return single ? single : RowsOf(method).For(type);
}

EdgeRule RuleOf(float threshold) {
  const auto real = static_cast<double>(threshold);
  const int32_t limit = CutSaturated(real);
  return {.byteLimit = static_cast<uint8_t>(std::clamp(limit, 0, UINT8_MAX)),
          .byteKept = static_cast<uint8_t>(limit > UINT8_MAX ? 0 : UINT8_MAX),
          .limit = limit,
          .realLimit = real};
}

Status GrayEdge(const WindowImages& images, int32_t method, float threshold) {
  Operands operands;
  WindowOperandsSettle(images, BORDER_MIRROR, 1, &operands);
  if (operands.HasFailed()) return operands.status();

  constexpr RowEffort effort = 2;
  const bool hasThreshold = method != EDGE_SIGMA;
  const EdgeRule rule = RuleOf(hasThreshold ? threshold : 0.0f);
  const Status status = WindowWalk(WindowViewsOf(operands), REACH, effort,
                                   RowOf(method, operands.source().type, rule), rule);
  if (status == STATUS_OK) operands.Written();
  return status;
}

}  // namespace
}  // namespace zel

int32_t ZEL_GrayEdge(ImageRef source, ImageRef mask, ImageRef destination, int32_t method,
                     float threshold) {
  return ZEL_ProcessError("ZEL_GrayEdge",
                          zel::GrayEdge({source, mask, destination}, method, threshold));
}
