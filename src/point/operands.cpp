// The checks before an operator, and the way from its record to the row routines.
#include "point/operands.h"

#include <algorithm>
#include <utility>

#include "core/images.h"
#include "core/kernels.h"
#include "platform/processor.h"
#include "point/lookup_rows.h"

namespace zel {
namespace {

struct OperandImages {
  Image* first;
  Image* second;  // the first where there is no second
  Image* destination;
};

// Gives the destination what it takes from the operands, once their types have been checked.
void DestinationPrepare(ImageRef first, ImageRef second, ImageRef destination,
                        const OperandImages& images, bool* skip, Status* status) {
  *status = ImageCopyInfo(first, destination);
  if (*status != STATUS_OK) return;
  const Image& one = *images.first;
  const Image& two = *images.second;
  const auto isEmpty = [](const Image& image) { return image.width == 0 || image.height == 0; };
  if (one.width == two.width && one.height == two.height) {
    *status = ImageSetSize(destination, one.width, one.height);
    *skip = *status != STATUS_OK;
  } else if (isEmpty(one)) {
    *status = ImageCopyPixels(second, destination);
  } else if (isEmpty(two)) {
    *status = ImageCopyPixels(first, destination);
  } else {
    *status = STATUS_SIZE_DIFFERS;
  }
}

Image* LookupUnlessKnown(ImageRef reference, ImageRef known, Image* knownImage, Status* status) {
  return reference == known ? knownImage : ImageLookup(reference, status);
}

// The pixels of a long row before the first result on a boundary of vectors: blocks come from the
// heap at the same offset to a boundary mostly, so that all images are then on theirs.
int64_t ColumnsToAlignment(const Plane& plane) {
  constexpr uintptr_t vectorBytes = 64;
  constexpr int64_t longRow = 16384;
  if (plane.width * plane.resultBytes < longRow) return 0;
  const uintptr_t over = reinterpret_cast<uintptr_t>(plane.result) % vectorBytes;
  return over == 0 ? 0 : static_cast<int64_t>(vectorBytes - over) / plane.resultBytes;
}

void PlaneJoinRows(Plane* plane) {
  const bool isOneRow = plane->width * plane->firstBytes == plane->firstPitch &&
                        plane->width * plane->secondBytes == plane->secondPitch &&
                        plane->width * plane->resultBytes == plane->resultPitch;
  if (!isOneRow) return;
  plane->width *= plane->height;
  plane->height = 1;
}

}  // namespace

void OperandPrepare(ImageRef first, ImageRef second, ImageRef destination, bool* swapAllowed,
                    bool* isImage, bool* skip, Status* status) {
  *skip = true;
  *isImage = second != 0;
  if (destination == 0) destination = first;
  if (second == 0) second = first;
  OperandImages images{};
  images.first = ImageLookup(first, status);
  if (!images.first) return;
  images.second = LookupUnlessKnown(second, first, images.first, status);
  if (!images.second) return;
  images.destination = destination == second
                           ? images.second
                           : LookupUnlessKnown(destination, first, images.first, status);
  if (!images.destination) return;

  int16_t resultType = images.first->type;
  const bool secondIsWider = images.second->type > images.first->type;
  if (secondIsWider && *swapAllowed) resultType = images.second->type;
  if ((secondIsWider && !*swapAllowed) || images.destination->type != resultType) {
    *status = STATUS_OPERAND_TYPE_DIFFERS;
    return;
  }
  *swapAllowed = secondIsWider;
  DestinationPrepare(first, second, destination, images, skip, status);
}

void LogicOperandPrepare(ImageRef first, ImageRef second, ImageRef destination, bool* isImage,
                         bool* skip, Status* status) {
  *skip = true;
  *isImage = second != 0;
  if (destination == 0) destination = first;
  if (second == 0) second = first;
  OperandImages images{};
  images.first = ImageLookup(first, status);
  if (!images.first) return;
  const int16_t type = images.first->type;
  if (!TypeIsInteger(type) && type != IMAGE_RGB) {
    *status = STATUS_BAD_OPERAND_TYPE;
    return;
  }
  images.second = LookupUnlessKnown(second, first, images.first, status);
  if (!images.second) return;
  if (images.second->type != type) {
    *status = STATUS_OPERAND_TYPE_DIFFERS;
    return;
  }
  images.destination = destination == second
                           ? images.second
                           : LookupUnlessKnown(destination, first, images.first, status);
  if (!images.destination) return;
  if (images.destination->type != type) {
    *status = STATUS_OPERAND_TYPE_DIFFERS;
    return;
  }
  DestinationPrepare(first, second, destination, images, skip, status);
}

void OperandsRead(ImageRef first, ImageRef second, ImageRef destination, RowOperation* operation,
                  Status* status) {
  const Image* one = ImageLookup(first, status);
  if (!one) return;
  const Image* two = second == 0 || second == first ? one : ImageLookup(second, status);
  if (!two) return;
  const Image* to = destination == 0 || destination == first ? one
                    : destination == second                  ? two
                                                             : ImageLookup(destination, status);
  if (!to) return;
  if (!TypeHasPixels(one->type) || !TypeHasPixels(two->type)) {
    *status = STATUS_BAD_LAYOUT_TYPE;
    return;
  }
  operation->type1 = one->type;
  operation->type2 = two->type;
  operation->source1 = PixelGridOf(*one).origin;
  operation->source2 = PixelGridOf(*two).origin;
  operation->destination = PixelGridOf(*to).origin;
  operation->stride1 = one->lineWidth;
  operation->stride2 = two->lineWidth;
  operation->strideDestination = to->lineWidth;
  operation->width = one->width;
  operation->height = one->height;
}

void OperatorKernel(ImageRef first, ImageRef second, ImageRef destination, int16_t code,
                    bool swapAllowed, const float* constant, OperatorEngine engine,
                    Status* status) {
  bool exchanged = swapAllowed;
  bool isImage = false;
  bool skip = false;
  OperandPrepare(first, second, destination, &exchanged, &isImage, &skip, status);
  if (*status != STATUS_OK || skip) return;

  RowOperation operation{};
  OperandsRead(first, second, destination, &operation, status);
  if (*status != STATUS_OK) return;
  if (exchanged) {
    std::swap(operation.type1, operation.type2);
    std::swap(operation.source1, operation.source2);
    std::swap(operation.stride1, operation.stride2);
  }
  operation.code = isImage ? code : OperationWithConstant(code);
  operation.constantInt = CutSaturated(static_cast<double>(*constant));
  operation.constantFloat = *constant;
  engine(operation, status);
}

void PlaneOf(const RowOperation& operation, Plane* plane) {
  int32_t firstBytes = 1;
  int32_t secondBytes = 1;
  PixelSize(operation.type1, &firstBytes);
  PixelSize(operation.type2, &secondBytes);
  plane->first = static_cast<const uint8_t*>(operation.source1);
  plane->second = static_cast<const uint8_t*>(operation.source2);
  plane->result = static_cast<uint8_t*>(operation.destination);
  plane->firstPitch = int64_t{operation.stride1} * firstBytes;
  plane->secondPitch = int64_t{operation.stride2} * secondBytes;
  plane->resultPitch = int64_t{operation.strideDestination} * firstBytes;
  plane->firstBytes = firstBytes;
  plane->secondBytes = secondBytes;
  plane->resultBytes = firstBytes;
  plane->width = operation.width;
  plane->height = operation.height;
}

void PlaneOfFirst(const RowOperation& operation, Plane* plane) {
  PlaneOf(operation, plane);
  plane->second = plane->first;
  plane->secondPitch = plane->firstPitch;
  plane->secondBytes = plane->firstBytes;
}

bool ScalarPlaneOf(const RowOperation& operation, Plane* plane, Status* status) {
  if (!TypeIsScalar(operation.type1)) {
    *status = STATUS_BAD_OPERAND_TYPE;
    return false;
  }
  if (OperationHasConstant(operation.code)) {
    PlaneOfFirst(operation, plane);
    return true;
  }
  if (operation.type2 < IMAGE_U8 || operation.type2 > operation.type1) {
    *status = STATUS_OPERAND_TYPE_DIFFERS;
    return false;
  }
  PlaneOf(operation, plane);
  return true;
}

int64_t GroupedColumns(const Plane& plane) {
  if (MmxAvailable() == 0 || plane.width < 2 * GROUP_COLUMNS) return 0;
  return plane.width / GROUP_COLUMNS * GROUP_COLUMNS;
}

PlaneConstant SumWithConstant(int32_t type, int64_t constant) {
  const int32_t least = type == IMAGE_U8 ? 0 : INT16_MIN;
  const int32_t most = type == IMAGE_U8 ? UINT8_MAX : INT16_MAX;
  PlaneConstant sum{};
  sum.value = Clamped(constant, least - most, most - least);
  sum.low = std::max(least, least - sum.value);
  sum.high = std::min(most, most - sum.value);
  return sum;
}

Plane PlaneColumns(const Plane& plane, int64_t from, int64_t to) {
  Plane columns = plane;
  columns.first += from * plane.firstBytes;
  columns.second += from * plane.secondBytes;
  columns.result += from * plane.resultBytes;
  columns.width = to - from;
  return columns;
}

void PlaneRun(PlaneRoutine routine, Plane* plane) {
  if (plane->width < 1 || plane->height < 1) return;
  PlaneJoinRows(plane);
  const int64_t head = plane->height == 1 ? ColumnsToAlignment(*plane) : 0;
  if (head == 0) {
    routine(*plane);
    return;
  }
  routine(PlaneColumns(*plane, 0, head));
  routine(PlaneColumns(*plane, head, plane->width));
}

void PlaneRunByTable(PlaneRoutine routine, const Plane& plane) {
  uint8_t bytes[256];
  uint8_t table[256];
  for (int32_t i = 0; i < 256; i++) bytes[i] = static_cast<uint8_t>(i);
  Plane all = plane;
  all.first = bytes;
  all.result = table;
  all.width = 256;
  all.height = 1;
  routine(all);
  LookupOperation lookup{};
  lookup.type = IMAGE_U8;
  lookup.source = plane.first;
  lookup.sourcePitch = plane.firstPitch;
  lookup.destination = plane.result;
  lookup.destinationPitch = plane.resultPitch;
  lookup.width = static_cast<int32_t>(plane.width);
  lookup.height = static_cast<int32_t>(plane.height);
  if (!lookup.IsEmpty()) lookupRows().mapU8(LookupAsOneRow(lookup), table);
}

}  // namespace zel
