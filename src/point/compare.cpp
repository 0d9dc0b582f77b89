// Mean, minimum, maximum, and pixels kept or cleared by comparison.
#include <algorithm>
#include <cmath>

#include "core/numbers.h"
#include "point/compare_rows.h"
#include "point/operands.h"

namespace zel {
namespace {

// Grouped columns of U8 take the low 8 bits of the constant, the remaining ones the constant.
void MeanConstantRun(int32_t type, int32_t constant, const Plane& plane) {
  const CompareRows& rows = compareRows();
  const int64_t grouped = type == IMAGE_U8 ? GroupedColumns(plane) : 0;
  Plane groups = PlaneColumns(plane, 0, grouped);
  groups.constant.value = constant & 0xFF;
  PlaneRun(rows.constant[COMPARE_MEAN][IMAGE_U8], &groups);

  // (a + c) >> 1 is ((a + odd bit of c) >> 1) + (c >> 1), whatever the signs.
  Plane rest = PlaneColumns(plane, grouped, plane.width);
  rest.constant = SumWithConstant(type, constant >> 1);
  rest.constant.odd = constant & 1;
  PlaneRun(rows.meanConstant[type], &rest);
}

// The range of pixels that a comparison with a constant keeps. Where it keeps none, the range of
// 0 alone has the same results.
void KeepConstantRun(int32_t type, CompareOperation compare, int64_t constant, Plane* plane) {
  const int64_t least = type == IMAGE_U8 ? 0 : INT16_MIN;
  const int64_t most = type == IMAGE_U8 ? UINT8_MAX : INT16_MAX;
  int64_t low = least;
  int64_t high = most;
  if (compare == COMPARE_KEEP_NOT_BELOW) low = std::max(low, constant);
  if (compare == COMPARE_KEEP_ABOVE) low = std::max(low, constant + 1);
  if (compare == COMPARE_KEEP_BELOW) high = std::min(high, constant - 1);
  if (compare == COMPARE_KEEP_NOT_ABOVE) high = std::min(high, constant);
  if (low > high) low = high = 0;
  plane->constant.low = static_cast<int32_t>(low);
  plane->constant.high = static_cast<int32_t>(high);
  PlaneRun(compareRows().keepRange[type], plane);
}

void IntegerConstantRun(int32_t type, CompareOperation compare, int32_t constant, Plane* plane) {
  const int32_t least = type == IMAGE_U8 ? 0 : INT16_MIN;
  const int32_t most = type == IMAGE_U8 ? UINT8_MAX : INT16_MAX;
  const bool inRange = constant >= least && constant <= most;
  switch (compare) {
    case COMPARE_MEAN:
      MeanConstantRun(type, constant, *plane);
      return;
    case COMPARE_MINIMUM:
    case COMPARE_MAXIMUM:
      plane->constant.value = std::clamp(constant, least, most);
      break;
    case COMPARE_KEEP_DIFFERENT:
      // No pixel equals a constant out of range: clearing those that are 0 keeps all as they are.
      plane->constant.value = inRange ? constant : 0;
      break;
    default:
      KeepConstantRun(type, compare, constant, plane);
      return;
  }
  PlaneRun(compareRows().constant[compare][type], plane);
}

void CompareKernel(ImageRef first, ImageRef second, ImageRef destination, const int32_t* operation,
                   const float* constant, Status* status) {
  const int32_t compare =
      std::clamp<int32_t>(*operation, COMPARISON_MEAN, COMPARISON_KEEP_NOT_ABOVE);
  const auto code = static_cast<int16_t>(OPERATION_MEAN + 2 * compare);
  OperatorKernel(first, second, destination, code, false, constant, &CompareDispatch, status);
}

}  // namespace

void CompareDispatch(const RowOperation& operation, Status* status) {
  if (operation.code < OPERATION_MEAN || operation.code >= OPERATION_ADD) {
    *status = STATUS_INTERNAL;
    return;
  }
  const auto compare = static_cast<CompareOperation>(operation.code / 2);
  Plane plane{};
  if (!ScalarPlaneOf(operation, &plane, status)) return;

  const CompareRows& rows = compareRows();
  const int32_t type = operation.type1;
  if (!OperationHasConstant(operation.code)) {
    PlaneRun(rows.images[compare].byPair[ScalarPair(type, operation.type2)], &plane);
  } else if (type == IMAGE_SGL) {
    // No sum with a constant below this is beyond the type.
    constexpr float sumStaysInRange = 1e30f;
    const float constant = operation.constantFloat;
    const bool isPlainMean = compare == COMPARE_MEAN && std::fabs(constant) < sumStaysInRange;
    plane.constant.real = constant;
    PlaneRun(isPlainMean ? rows.halfOfSum : rows.constant[compare][IMAGE_SGL], &plane);
  } else {
    IntegerConstantRun(type, compare, operation.constantInt, &plane);
  }
}

}  // namespace zel

int32_t ZEL_Compare(ImageRef first, ImageRef second, ImageRef destination, int32_t operation,
                    float constant) {
  zel::Status status = zel::STATUS_OK;
  zel::CompareKernel(first, second, destination, &operation, &constant, &status);
  return ZEL_ProcessError("ZEL_Compare", status);
}
