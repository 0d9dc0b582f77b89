// Thresholds with given ranges: one range, and several classes.
#include <type_traits>

#include "core/heap.h"
#include "core/numbers.h"
#include "point/lookup.h"
#include "point/threshold_rows.h"

namespace zel {
namespace {

// Up to so many classes, comparing each pixel with each class is faster on 16-bit pixels than
// building a table of all levels.
constexpr int32_t COMPARED_CLASSES = 16;

template <class T>
ThresholdRange<T> IntegerRange(float min, float max, float newValue, bool keep) {
  constexpr int32_t lowest = std::is_signed_v<T> ? INT16_MIN : 0;
  constexpr int32_t highest = std::is_signed_v<T> ? INT16_MAX : UINT8_MAX;
  const auto limited = [](float value) {
    return static_cast<T>(CutLimited(static_cast<double>(value), lowest, highest));
  };
  return {limited(min), limited(max), limited(newValue), keep};
}

template <class T>
ThresholdRange<T> IntegerRange(const ThresholdClass& given) {
  return IntegerRange<T>(given.rangeMin, given.rangeMax, given.newValue, given.useNew == 0);
}

// Steps that both thresholds begin with; the pixels to map, or none after a failure.
LookupOperation ThresholdPrepare(ImageRef source, ImageRef destination, Status* status) {
  const Image* from = ImageLookup(source, status);
  if (!from) return {};
  if (!TypeIsScalar(from->type)) {
    *status = STATUS_BAD_TYPE;
    return {};
  }
  const ImageRef target = DestinationOfSameType(source, destination, status);
  if (*status != STATUS_OK) return {};
  DestinationLikeSource(source, target, status);
  if (*status != STATUS_OK) return {};
  from = ImageLookup(source, status);
  return LookupOfImages(*from, *ImageLookup(target, status));
}

void ThresholdKernel(ImageRef source, ImageRef destination, const float* rangeMin,
                     const float* rangeMax, const float* newValue, const int16_t* useNew,
                     Status* status) {
  const LookupOperation operation = LookupAsOneRow(ThresholdPrepare(source, destination, status));
  if (operation.IsEmpty()) return;
  const bool keep = *useNew == 0;
  switch (operation.type) {
    case IMAGE_U8:
      return thresholdRows().rangeU8(operation,
                                     IntegerRange<uint8_t>(*rangeMin, *rangeMax, *newValue, keep));
    case IMAGE_I16:
      return thresholdRows().rangeI16(operation,
                                      IntegerRange<int16_t>(*rangeMin, *rangeMax, *newValue, keep));
    default:
      return thresholdRows().rangeSgl(operation, {*rangeMin, *rangeMax, *newValue, keep});
  }
}

// Writes the classes into a table in order, so that the last one decides.
template <class T>
void TableOfClasses(const ThresholdClass* classes, int32_t count, uint16_t* table) {
  for (int32_t c = 0; c < count; c++) {
    const ThresholdRange<T> range = IntegerRange<T>(classes[c]);
    for (int32_t level = range.low; level <= range.high; level++) {
      const auto entry = range.keep ? static_cast<T>(level) : range.value;
      table[static_cast<std::make_unsigned_t<T>>(level)] = static_cast<uint16_t>(entry);
    }
  }
}

void MultiThresholdI16(const LookupOperation& operation, const ThresholdClass* classes,
                       int32_t count, Status* status) {
  if (count <= COMPARED_CLASSES) {
    ThresholdRange<int16_t> ranges[COMPARED_CLASSES];
    for (int32_t c = 0; c < count; c++) ranges[c] = IntegerRange<int16_t>(classes[c]);
    thresholdRows().rangesI16(operation, ranges, count);
    return;
  }
  WorkArray<uint16_t> table;
  if (!table.AllocateZeroed(LEVELS_I16)) {
    *status = STATUS_MEMORY_FULL;
    return;
  }
  TableOfClasses<int16_t>(classes, count, table.data());
  LookupApply(operation, table.data(), status);
}

void MultiThresholdKernel(ImageRef source, ImageRef destination, const int32_t* count,
                          const ThresholdClass* classes, Status* status) {
  const LookupOperation operation = LookupAsOneRow(ThresholdPrepare(source, destination, status));
  if (*status != STATUS_OK) return;
  if (*count < 1) {
    if (destination != 0) *status = ImageCopyPixels(source, destination);
    return;
  }
  if (operation.IsEmpty()) return;
  switch (operation.type) {
    case IMAGE_U8: {
      uint16_t table[LEVELS_U8] = {};
      TableOfClasses<uint8_t>(classes, *count, table);
      return LookupApply(operation, table, status);
    }
    case IMAGE_I16:
      return MultiThresholdI16(operation, classes, *count, status);
    default:
      return thresholdRows().classesSgl(operation, classes, *count);
  }
}

}  // namespace
}  // namespace zel

int32_t ZEL_Threshold(ImageRef source, ImageRef destination, float rangeMin, float rangeMax,
                      float newValue, int16_t useNew) {
  zel::Status status = zel::STATUS_OK;
  zel::ThresholdKernel(source, destination, &rangeMin, &rangeMax, &newValue, &useNew, &status);
  return ZEL_ProcessError("ZEL_Threshold", status);
}

int32_t ZEL_MultiThreshold(ImageRef source, ImageRef destination, int32_t count,
                           const ThresholdClass* classes) {
  zel::Status status = classes || count < 1 ? zel::STATUS_OK : zel::STATUS_NULL_POINTER;
  if (status == zel::STATUS_OK) {
    zel::MultiThresholdKernel(source, destination, &count, classes, &status);
  }
  return ZEL_ProcessError("ZEL_MultiThreshold", status);
}
