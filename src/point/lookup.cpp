// Tables over pixel values: what is mapped, how a table is applied, and the user's own tables.
#include "point/lookup.h"

#include "engine/array_convert.h"
#include "point/lookup_rows.h"
#include "point/threshold_rows.h"
#include "statistics/min_max.h"

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

void LookupApplyU8(const PointViews& views, const uint16_t* table) {
  uint8_t bytes[LEVELS_U8];
  for (int32_t level = 0; level < LEVELS_U8; level++) {
    bytes[level] = static_cast<uint8_t>(table[level]);
  }
  ThresholdRange<uint8_t> range{};
  if (views.mask.SelectsAll() && TableIsRange(bytes, &range)) {
    PointWalk(views, thresholdRows().rangeU8, range);
  } else {
    PointWalk(views, lookupRows().mapU8, ByteTable{bytes});
  }
}

// A caller's array as a table of all levels: entries beyond the given ones hold their own index.
// Arrays of 16-bit integers are taken as they are, others converted; an unknown array type reads as
// zeros.
void TableOfArray(int32_t arrayType, const void* array, int32_t count, LevelTable* table) {
  uint16_t* entries = table->entries();
  const int32_t given = Clamped(count, 0, table->levels());
  ArrayConvert(array, arrayType, entries, ARRAY_I16, given);
  for (int32_t level = given; level < table->levels(); level++) {
    entries[level] = static_cast<uint16_t>(level);
  }
}

// Results of bytes are limited, not their low bits taken.
void LimitToBytes(uint16_t* entries) {
  for (int32_t level = 0; level < LEVELS_U8; level++) {
    const auto entry = static_cast<int16_t>(entries[level]);
    entries[level] = static_cast<uint16_t>(Clamped(entry, 0, UINT8_MAX));
  }
}

// A caller's array that has an entry for every word is used where it is.
bool IsWholeTable(int32_t type, int32_t arrayType, int32_t count) {
  const bool ofWords = arrayType == ARRAY_I16 || arrayType == ARRAY_U16;
  return type == IMAGE_I16 && ofWords && count >= LEVELS_I16;
}

Status UserLookup(ImageRef source, ImageRef mask, ImageRef destination, int32_t arrayType,
                  const void* array, int32_t count) {
  Operands operands;
  LookupCheck(source, mask, destination, &TypeIsInteger, &operands);
  if (operands.HasFailed()) return operands.status();
  const int32_t type = operands.source().type;
  LevelTable table;
  const uint16_t* entries = static_cast<const uint16_t*>(array);
  if (!IsWholeTable(type, arrayType, count)) {
    const Status status = table.Create(type);
    if (status != STATUS_OK) return status;
    TableOfArray(arrayType, array, count, &table);
    if (type == IMAGE_U8) LimitToBytes(table.entries());
    entries = table.entries();
  }
  const PointViews views = LookupSettle(&operands);
  LookupApply(views, entries);
  return operands.status();
}

}  // namespace

void LookupCheck(ImageRef source, ImageRef mask, ImageRef destination, TypeTest takesType,
                 Operands* operands) {
  operands->Source(source, takesType);
  operands->Destination(destination);
  operands->Mask(mask);
}

PointViews LookupSettle(Operands* operands) {
  if (operands->HasMask()) {
    operands->WriteBeside(Operands::CAN_RUN_IN_PLACE);
    operands->TakePixels();
    if (operands->overlap().IsEmpty()) return {};
    operands->TakeInfo();
  } else {
    operands->TakeSize();
    operands->TakeInfo();
  }
  if (operands->HasFailed()) return {};
  return {.first = operands->From(),
          .second = {},
          .result = operands->To(),
          .mask = operands->MaskOver()};
}

LookupLimits LookupLimitsOf(const PixelView& source, const MaskView& mask, float rangeMin,
                            float rangeMax) {
  LookupLimits limits{0.0f, static_cast<float>(UINT8_MAX), rangeMin, rangeMax};
  if (source.type != IMAGE_U8) ImageMinMax({source, mask}, &limits.low, &limits.high);
  // NaN counts as out of the limits.
  const bool whole = rangeMin == 0.0f && rangeMax == 0.0f;
  if (whole || !(rangeMin >= limits.low)) limits.rangeMin = limits.low;
  if (whole || !(rangeMax <= limits.high)) limits.rangeMax = limits.high;
  return limits;
}

void LookupApply(const PointViews& views, const uint16_t* table) {
  if (views.result.IsEmpty()) return;
  if (views.result.type == IMAGE_U8) return LookupApplyU8(views, table);
  PointWalk(views, lookupRows().mapI16, WordTable{table});
}

}  // namespace zel

int32_t ZEL_UserLookup(ImageRef source, ImageRef mask, ImageRef destination, int32_t arrayType,
                       const void* array, int32_t count) {
  const zel::Status status =
      array || count < 1 ? zel::UserLookup(source, mask, destination, arrayType, array, count)
                         : zel::STATUS_NULL_POINTER;
  return ZEL_ProcessError("ZEL_UserLookup", status);
}
