// Thresholds with given ranges: one range, and several classes.
#include <type_traits>

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

// Unlike other tables a threshold gives its destination the source's information before its size:
// where the size cannot be had, the information is there. Kept.
PointViews ThresholdSettle(Operands* operands) {
  operands->TakeInfo();
  operands->TakeSize();
  if (operands->HasFailed()) return {};
  return {.first = operands->From(), .second = {}, .result = operands->To(), .mask = {}};
}

Status Threshold(ImageRef source, ImageRef destination, float rangeMin, float rangeMax,
                 float newValue, bool keep) {
  Operands operands;
  ThresholdCheck(source, destination, &operands);
  const PointViews views = ThresholdSettle(&operands);
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

// Whether the classes go into a table of levels, or are compared with each pixel.
bool ClassesGoByTable(int32_t type, int32_t count) {
  return type == IMAGE_U8 || (type == IMAGE_I16 && count > COMPARED_CLASSES);
}

Status TableOfClasses(int32_t type, const ThresholdClass* classes, int32_t count,
                      LevelTable* table) {
  const Status status = table->Create(type);
  if (status != STATUS_OK) return status;
  if (type == IMAGE_U8) {
    TableOfClasses<uint8_t>(classes, count, table->entries());
  } else {
    TableOfClasses<int16_t>(classes, count, table->entries());
  }
  return STATUS_OK;
}

void CompareWithClasses(const PointViews& views, const ThresholdClass* classes, int32_t count) {
  ThresholdRange<int16_t> ranges[COMPARED_CLASSES];
  for (int32_t c = 0; c < count; c++) ranges[c] = IntegerRange<int16_t>(classes[c]);
  PointWalk(views, thresholdRows().rangesI16, WordRanges{ranges, count});
}

// Without any class a destination that is given takes the source's pixels.
Status MultiThreshold(ImageRef source, ImageRef destination, const ThresholdClass* classes,
                      int32_t count) {
  Operands operands;
  ThresholdCheck(source, destination, &operands);
  if (operands.HasFailed()) return operands.status();
  const int32_t type = operands.source().type;
  LevelTable table;
  const bool byTable = ClassesGoByTable(type, count);
  const Status status = byTable ? TableOfClasses(type, classes, count, &table) : STATUS_OK;
  if (status != STATUS_OK) return status;

  const PointViews views = ThresholdSettle(&operands);
  if (operands.HasFailed()) return operands.status();
  if (count < 1) {
    operands.TakePixels();
  } else if (byTable) {
    LookupApply(views, table.entries());
  } else if (type == IMAGE_I16) {
    CompareWithClasses(views, classes, count);
  } else {
    PointWalk(views, thresholdRows().rangesSgl, FloatRanges{classes, count});
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
