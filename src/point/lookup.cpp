// Tables over pixel values: what is mapped, how a table is applied, and the user's own tables.
#include "point/lookup.h"

#include "engine/array_convert.h"
#include "core/heap.h"
#include "point/lookup_rows.h"
#include "point/threshold_rows.h"

namespace zel {
namespace {

// True for a table that keeps one range of levels and makes all others 0: a threshold does the same
// without lookups.
bool TableIsRange(const uint8_t (&table)[LEVELS_U8], ThresholdRange<uint8_t>* range) {
  int32_t low = 0;
  int32_t high = LEVELS_U8 - 1;
  while (low < high && table[low] == 0) low++;
  while (high > low && table[high] == 0) high--;
  bool oneValue = true;
  bool ownValues = true;
  for (int32_t level = low; level <= high && (oneValue || ownValues); level++) {
    oneValue = oneValue && table[level] == table[low];
    ownValues = ownValues && table[level] == level;
  }
  *range = {static_cast<uint8_t>(low), static_cast<uint8_t>(high), table[low], !oneValue};
  return oneValue || ownValues;
}

void LookupApplyU8(const LookupOperation& operation, const uint16_t* table) {
  uint8_t bytes[LEVELS_U8];
  for (int32_t level = 0; level < LEVELS_U8; level++) {
    bytes[level] = static_cast<uint8_t>(table[level]);
  }
  ThresholdRange<uint8_t> range{};
  if (!operation.mask && TableIsRange(bytes, &range)) {
    thresholdRows().rangeU8(operation, range);
  } else {
    lookupRows().mapU8(operation, bytes);
  }
}

// A caller's table as 16-bit entries, cut to the levels that there can be.
struct UserTable {
  const uint16_t* entries;
  int32_t count;
};

// Arrays of 16-bit integers are used where they are, others converted. An unknown array type reads
// as zeros.
Status UserTableOf(int32_t arrayType, const void* array, int32_t count,
                   WorkArray<uint16_t>* converted, UserTable* table) {
  table->count = Clamped(count, 0, LEVELS_I16);
  if (arrayType == ARRAY_I16 || arrayType == ARRAY_U16) {
    table->entries = static_cast<const uint16_t*>(array);
    return STATUS_OK;
  }
  if (!converted->AllocateZeroed(static_cast<uint64_t>(table->count))) return STATUS_MEMORY_FULL;
  ArrayConvert(array, arrayType, converted->data(), ARRAY_I16, table->count);
  table->entries = converted->data();
  return STATUS_OK;
}

void UserLookupU8(const LookupOperation& operation, const UserTable& user, Status* status) {
  uint16_t table[LEVELS_U8];
  for (int32_t level = 0; level < LEVELS_U8; level++) {
    const auto entry = level < user.count ? static_cast<int16_t>(user.entries[level]) : level;
    table[level] = static_cast<uint16_t>(Clamped(entry, 0, UINT8_MAX));
  }
  LookupApply(operation, table, status);
}

void UserLookupI16(const LookupOperation& operation, const UserTable& user, Status* status) {
  if (user.count == LEVELS_I16) return LookupApply(operation, user.entries, status);
  WorkArray<uint16_t> table;
  if (!table.Allocate(LEVELS_I16)) {
    *status = STATUS_MEMORY_FULL;
    return;
  }
  for (int32_t level = 0; level < user.count; level++) {
    table.data()[level] = user.entries[level];
  }
  for (int32_t level = user.count; level < LEVELS_I16; level++) {
    table.data()[level] = static_cast<uint16_t>(level);
  }
  LookupApply(operation, table.data(), status);
}

void UserLookupKernel(ImageRef source, ImageRef mask, ImageRef destination, const UserTable* table,
                      Status* status) {
  ReplacementImage replacement(status);
  const LookupOperation operation =
      LookupPrepare(source, mask, destination, &TypeIsInteger, &replacement, status);
  if (operation.IsEmpty()) return;
  if (operation.type == IMAGE_U8) {
    UserLookupU8(operation, *table, status);
  } else {
    UserLookupI16(operation, *table, status);
  }
}

}  // namespace

LookupOperation LookupOfImages(const Image& source, const Image& destination) {
  const PixelGrid from = PixelGridOf(source);
  const PixelGrid to = PixelGridOf(destination);
  return {.type = source.type,
          .source = from.origin,
          .sourcePitch = from.pitch,
          .destination = to.origin,
          .destinationPitch = to.pitch,
          .mask = nullptr,
          .maskPitch = 0,
          .width = from.width,
          .height = from.height};
}

LookupOperation LookupAsOneRow(const LookupOperation& operation) {
  int32_t pixelBytes = 0;
  PixelSize(operation.type, &pixelBytes);
  const int64_t rowBytes = int64_t{operation.width} * pixelBytes;
  LookupOperation joined = operation;
  if (operation.sourcePitch == rowBytes && operation.destinationPitch == rowBytes &&
      (!operation.mask || operation.maskPitch == operation.width)) {
    joined.width = operation.width * operation.height;  // below 2^31, as a block's bytes are
    joined.height = 1;
  }
  return joined;
}

LookupOperation LookupPrepare(ImageRef source, ImageRef mask, ImageRef destination,
                              bool (*takesType)(int32_t type), ReplacementImage* replacement,
                              Status* status) {
  const Image* from = ImageLookup(source, status);
  if (!from) return {};
  if (!takesType(from->type)) {
    *status = STATUS_BAD_TYPE;
    return {};
  }
  ImageRef target = DestinationOfSameType(source, destination, status);
  if (*status != STATUS_OK) return {};
  PlacedMask placed{};
  const bool masked = mask != 0 && mask != source;
  if (masked) MaskPlace(source, mask, &placed, status);
  if (*status != STATUS_OK) return {};

  if (masked) {
    if (mask == target) {
      if (!replacement->Create(target, *ImageLookup(target, status))) return {};
      target = replacement->reference();
    }
    *status = ImageCopyPixels(source, target);
    if (*status != STATUS_OK) return {};
    replacement->Written();
    if (placed.IsEmpty()) return {};
    *status = ImageCopyInfo(source, target);
  } else {
    DestinationLikeSource(source, target, status);
  }
  if (*status != STATUS_OK) return {};

  LookupOperation operation =
      LookupOfImages(*ImageLookup(source, status), *ImageLookup(target, status));
  if (masked) {
    const OverlapRect& overlap = placed.overlap;
    int32_t pixelBytes = 0;
    PixelSize(operation.type, &pixelBytes);
    const int64_t column = int64_t{overlap.imageX} * pixelBytes;
    operation.source += overlap.imageY * operation.sourcePitch + column;
    operation.destination += overlap.imageY * operation.destinationPitch + column;
    operation.mask = placed.pixels;
    operation.maskPitch = placed.pitch;
    operation.width = overlap.width;
    operation.height = overlap.height;
  }
  return LookupAsOneRow(operation);
}

LookupLimits LookupLimitsOf(const LookupOperation& operation, float rangeMin, float rangeMax,
                            Status* status) {
  LookupLimits limits{0.0f, 255.0f, rangeMin, rangeMax};
  if (operation.type != IMAGE_U8) {
    const PixelRegion region{.pixels = operation.source,
                             .pitch = operation.sourcePitch,
                             .width = operation.width,
                             .height = operation.height,
                             .type = operation.type,
                             .mask = operation.mask,
                             .maskPitch = operation.maskPitch};
    ImageMinMax(region, &limits.low, &limits.high, status);
  }
  // NaN counts as out of the limits.
  const bool whole = rangeMin == 0.0f && rangeMax == 0.0f;
  if (whole || !(rangeMin >= limits.low)) limits.rangeMin = limits.low;
  if (whole || !(rangeMax <= limits.high)) limits.rangeMax = limits.high;
  return limits;
}

void LookupApply(const LookupOperation& operation, const uint16_t* table, Status* status) {
  switch (operation.type) {
    case IMAGE_U8:
      return LookupApplyU8(operation, table);
    case IMAGE_I16:
      return lookupRows().mapI16(operation, table);
    default:
      *status = STATUS_BAD_OPERAND_TYPE;
  }
}

}  // namespace zel

int32_t ZEL_UserLookup(ImageRef source, ImageRef mask, ImageRef destination, int32_t arrayType,
                       const void* array, int32_t count) {
  zel::Status status = array || count < 1 ? zel::STATUS_OK : zel::STATUS_NULL_POINTER;
  zel::WorkArray<uint16_t> converted;
  zel::UserTable table{};
  if (status == zel::STATUS_OK) {
    status = zel::UserTableOf(arrayType, array, count, &converted, &table);
  }
  if (status == zel::STATUS_OK) {
    zel::UserLookupKernel(source, mask, destination, &table, &status);
  }
  return ZEL_ProcessError("ZEL_UserLookup", status);
}
