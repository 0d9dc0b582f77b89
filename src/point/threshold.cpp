// Thresholds with given ranges: one range, and several classes.
#include <type_traits>

#include "core/heap.h"
#include "point/lookup.h"
#include "point/threshold_rows.h"

namespace zel {
namespace {

// Up to so many classes, comparing each pixel with each class is faster on 16-bit pixels than
// building a table of all levels.
constexpr int32_t COMPARED_CLASSES = 16;

template <class T>
ThresholdRange<T> IntegerRange(float min, float max, float newValue, bool keep) {
  const auto limited = [](float value) {
    return static_cast<T>(
        CutLimited(static_cast<double>(value), LIMITS_OF<T>.low, LIMITS_OF<T>.high));
  };
  return {limited(min), limited(max), limited(newValue), keep};
}

template <class T>
ThresholdRange<T> IntegerRange(const ThresholdClass& given) {
  return IntegerRange<T>(given.rangeMin, given.rangeMax, given.newValue, given.useNew == 0);
}

void ThresholdCheck(ImageRef source, ImageRef destination, Operands* operands) {
  LookupCheck(source, 0, destination, &TypeIsScalar, operands);
}

Status Threshold(ImageRef source, ImageRef destination, float rangeMin, float rangeMax,
                 float newValue, bool keep) {
  Operands operands;
  ThresholdCheck(source, destination, &operands);
  const PointViews views = LookupSettle(&operands);
  if (operands.HasFailed()) return operands.status();
  const ThresholdRows& rows = thresholdRows();
  switch (views.result.type) {
    case IMAGE_U8:
      PointWalk(views, rows.rangeU8, IntegerRange<uint8_t>(rangeMin, rangeMax, newValue, keep));
      break;
    case IMAGE_I16:
      PointWalk(views, rows.rangeI16, IntegerRange<int16_t>(rangeMin, rangeMax, newValue, keep));
      break;
    default:
      PointWalk(views, rows.rangeSgl, ThresholdRange<float>{rangeMin, rangeMax, newValue, keep});
      break;
  }
  return STATUS_OK;
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

// What several classes make of pixels, prepared before the destination is settled.
struct Classes {
  const ThresholdClass* given;
  int32_t count;
  WorkArray<uint16_t> table;  // of all levels, where integers go by one

  bool AreCompared() const { return count <= COMPARED_CLASSES; }
};

Status ClassesPrepare(int32_t type, Classes* classes) {
  if (type == IMAGE_SGL || (type == IMAGE_I16 && classes->AreCompared())) return STATUS_OK;
  const bool isBytes = type == IMAGE_U8;
  if (!classes->table.AllocateZeroed(isBytes ? LEVELS_U8 : LEVELS_I16)) return STATUS_MEMORY_FULL;
  (isBytes ? &TableOfClasses<uint8_t> : &TableOfClasses<int16_t>)(classes->given, classes->count,
                                                                  classes->table.data());
  return STATUS_OK;
}

void CompareWithClasses(const PointViews& views, const Classes& classes) {
  ThresholdRange<int16_t> ranges[COMPARED_CLASSES];
  for (int32_t c = 0; c < classes.count; c++) ranges[c] = IntegerRange<int16_t>(classes.given[c]);
  PointWalk(views, thresholdRows().rangesI16, WordRanges{ranges, classes.count});
}

Status MultiThreshold(ImageRef source, ImageRef destination, const ThresholdClass* given,
                      int32_t count) {
  Operands operands;
  ThresholdCheck(source, destination, &operands);
  if (operands.HasFailed()) return operands.status();
  const int32_t type = operands.source().type;
  Classes classes{.given = given, .count = count, .table = {}};
  if (count > 0) {
    const Status status = ClassesPrepare(type, &classes);
    if (status != STATUS_OK) return status;
  }
  const PointViews views = LookupSettle(&operands);
  if (operands.HasFailed()) return operands.status();
  if (count < 1) {
    operands.TakePixels();
  } else if (type == IMAGE_SGL) {
    PointWalk(views, thresholdRows().classesSgl, FloatClasses{given, count});
  } else if (type == IMAGE_I16 && classes.AreCompared()) {
    CompareWithClasses(views, classes);
  } else {
    LookupApply(views, classes.table.data());
  }
  return operands.status();
}

}  // namespace
}  // namespace zel

int32_t ZEL_Threshold(ImageRef source, ImageRef destination, float rangeMin, float rangeMax,
                      float newValue, int16_t useNew) {
  return ZEL_ProcessError("ZEL_Threshold", zel::Threshold(source, destination, rangeMin, rangeMax,
                                                          newValue, useNew == 0));
}

int32_t ZEL_MultiThreshold(ImageRef source, ImageRef destination, int32_t count,
                           const ThresholdClass* classes) {
  const zel::Status status = classes || count < 1
                                 ? zel::MultiThreshold(source, destination, classes, count)
                                 : zel::STATUS_NULL_POINTER;
  return ZEL_ProcessError("ZEL_MultiThreshold", status);
}
