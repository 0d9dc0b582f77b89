// Looking up, checking and settling the operands of an operator, and the steps that operators
// share.
#include "point/operators.h"

#include <algorithm>
#include <utility>

#include "core/images.h"
#include "platform/processor.h"
#include "point/lookup_rows.h"

namespace zel {
namespace {

struct OperatorImages {
  Image* first;
  Image* second;  // the first where there is no second
  Image* destination;
};

bool IsEmpty(const Image& image) {
  return image.width == 0 || image.height == 0;
}

// Gives the destination what it takes from the operands, once their types have been checked.
Status DestinationSettle(const OperatorImages& images, OperatorOperands* operands) {
  const Image& one = *images.first;
  const Image& two = *images.second;
  const Status status = ImageCopyInfo(one, images.destination);
  if (status != STATUS_OK) return status;
  if (one.width == two.width && one.height == two.height) {
    return images.destination == &one
               ? STATUS_OK
               : ImageLayoutSize(images.destination, one.width, one.height, true);
  }
  operands->isDone = true;
  if (IsEmpty(one)) return ImageCopyPixels(two, images.destination);
  if (IsEmpty(two)) return ImageCopyPixels(one, images.destination);
  return STATUS_SIZE_DIFFERS;
}

Status ViewsSettle(const OperatorImages& images, OperatorOperands* operands) {
  const Status status = DestinationSettle(images, operands);
  if (status != STATUS_OK || operands->isDone) return status;
  operands->views = {.first = ViewOf(*images.first),
                     .second = ViewOf(*images.second),
                     .result = ViewOf(*images.destination),
                     .mask = {}};
  return STATUS_OK;
}

}  // namespace

Status OperandsSettle(ImageRef first, ImageRef second, ImageRef destination, OperandOrder order,
                      OperatorOperands* operands) {
  *operands = {};
  operands->hasSecond = second != 0;
  OperatorImages images{};
  Status status = ImageLookup(first, &images.first);
  if (status == STATUS_OK) status = ImageLookup(second == 0 ? first : second, &images.second);
  if (status == STATUS_OK) {
    status = ImageLookup(destination == 0 ? first : destination, &images.destination);
  }
  if (status != STATUS_OK) return status;

  const bool secondIsWider = images.second->type > images.first->type;
  if (secondIsWider && order == OperandOrder::MATTERS) return STATUS_OPERAND_TYPE_DIFFERS;
  const int16_t resultType = secondIsWider ? images.second->type : images.first->type;
  if (images.destination->type != resultType) return STATUS_OPERAND_TYPE_DIFFERS;

  status = ViewsSettle(images, operands);
  if (secondIsWider) std::swap(operands->views.first, operands->views.second);
  return status;
}

Status ScalarOperandsSettle(ImageRef first, ImageRef second, ImageRef destination,
                            OperandOrder order, OperatorOperands* operands) {
  const Status status = OperandsSettle(first, second, destination, order, operands);
  if (status != STATUS_OK || operands->isDone) return status;
  const PointViews& views = operands->views;
  if (!TypeHasPixels(views.first.type) || !TypeHasPixels(views.second.type)) {
    return STATUS_BAD_LAYOUT_TYPE;
  }
  return TypeIsScalar(views.first.type) ? STATUS_OK : STATUS_BAD_OPERAND_TYPE;
}

Status BitOperandsSettle(ImageRef first, ImageRef second, ImageRef destination,
                         OperatorOperands* operands) {
  *operands = {};
  operands->hasSecond = second != 0;
  OperatorImages images{};
  Status status = ImageLookup(first, &images.first);
  if (status != STATUS_OK) return status;
  const int16_t type = images.first->type;
  if (!TypeIsInteger(type) && type != IMAGE_RGB) return STATUS_BAD_OPERAND_TYPE;
  status = ImageLookup(second == 0 ? first : second, &images.second);
  if (status != STATUS_OK) return status;
  if (images.second->type != type) return STATUS_OPERAND_TYPE_DIFFERS;
  status = ImageLookup(destination == 0 ? first : destination, &images.destination);
  if (status != STATUS_OK) return status;
  if (images.destination->type != type) return STATUS_OPERAND_TYPE_DIFFERS;
  return ViewsSettle(images, operands);
}

int32_t GroupedColumns(int32_t width) {
  if (MmxAvailable() == 0 || width < 2 * GROUP_COLUMNS) return 0;
  return width / GROUP_COLUMNS * GROUP_COLUMNS;
}

OperatorConstant SumWithConstant(int32_t type, int64_t constant) {
  const auto [least, most] = LimitsOf(type);
  OperatorConstant sum{};
  sum.value = Clamped(constant, least - most, most - least);
  sum.low = std::max(least, least - sum.value);
  sum.high = std::min(most, most - sum.value);
  return sum;
}

void PointWalkByTable(const PointViews& views, OperatorRoutine routine,
                      const OperatorConstant& constant) {
  uint8_t bytes[LEVELS_U8];
  uint8_t table[LEVELS_U8];
  for (int32_t level = 0; level < LEVELS_U8; level++) bytes[level] = static_cast<uint8_t>(level);
  PixelView row{.pitch = LEVELS_U8, .width = LEVELS_U8, .height = 1, .pixelBytes = 1};
  PointViews all{};
  all.first = all.second = all.result = row;
  all.first.origin = all.second.origin = bytes;
  all.result.origin = table;
  routine(all, constant);
  PointWalk(views, lookupRows().mapU8, ByteTable{table});
}

}  // namespace zel
