// Displays read: one digit, or all digits of a region with their sign and points.
#include <algorithm>
#include <cmath>

#include "core/heap.h"
#include "dials/digit.h"
#include "platform/message_box.h"

namespace zel {
namespace {

bool IsDigit(const FlatContour& contour) {
  return IsRoiMarker(contour.marker);
}

// A block of the library that takes the place of a caller's.
template <class T>
void HandOver(WorkArray<T>* made, T** callers) {
  HeapFree(*callers);
  *callers = made->Release();
}

Status ReadSingleDigit(DigitReader* reader, const RoiDescriptor* roi, char** text, double* value,
                       DigitSegments* segments) {
  ScopedVector region;
  WorkArray<char> characters;
  Status status = region.Create();
  if (status == STATUS_OK) status = DisplayRegion(reader->image(), roi, region.handle());
  if (status != STATUS_OK) return status;
  FlatContour contour{};
  DigitShape shape{};
  FlatContours(region.handle()).Next(&contour);
  status = DigitShapeOf(contour, &shape);
  if (status == STATUS_OK) status = reader->Create();
  if (status != STATUS_OK) return status;
  if (!characters.AllocateZeroed(3)) return STATUS_MEMORY_FULL;

  DigitReading reading{};
  status = reader->Read(shape, &reading);
  const bool isNamed = status == STATUS_OK || status == STATUS_INEXACT_DIGIT;
  if (!isNamed && status != STATUS_NO_SEGMENT) return status;
  segments->count = 1;
  for (int32_t i = 0; i < SEGMENTS; i++) segments->states[i] = reading.segments[i];
  if (!isNamed) return status;
  characters[0] = static_cast<char>('0' + reading.digit);
  if (reading.hasPoint) characters[1] = '.';
  HandOver(&characters, text);
  *value = reading.digit;
  return status;
}

// Exact up to 22. Beyond the range of doubles it is infinite.
double PowerOfTen(int32_t exponent) {
  double power = 1.0;
  for (int32_t i = 0; i < exponent && std::isfinite(power); i++) power *= 10.0;
  return power;
}

int32_t CountDigits(Handle region) {
  int32_t digits = 0;
  FlatContour contour{};
  for (FlatContours contours(region); contours.Next(&contour);) digits += IsDigit(contour) ? 1 : 0;
  return digits;
}

// What a display says, in memory for `digitCount` digits, a sign and a point each.
class DisplayText {
 public:
  bool Allocate(int32_t digitCount) {
    const auto digits = static_cast<uint64_t>(digitCount);
    return characters_.AllocateZeroed(2 * digits + 2) && segments_.Allocate(SEGMENTS * digits);
  }
  void AddSign(bool isMinus) { Add(isMinus ? '-' : ' '); }
  void AddDigit(const DigitReading& reading, int32_t index, int32_t digitCount) {
    Add(static_cast<char>('0' + reading.digit));
    if (reading.hasPoint) Add('.');
    // A digit of 0 adds nothing, however many digits follow.
    if (reading.digit != 0) value_ += reading.digit * PowerOfTen(digitCount - index - 1);
    uint8_t* segments = segments_.data() + int64_t{SEGMENTS} * index;
    std::copy_n(reading.segments, SEGMENTS, segments);
  }
  void HandTo(char** text, double* value, uint8_t** segments) {
    HandOver(&characters_, text);
    HandOver(&segments_, segments);
    *value = value_;
  }

 private:
  void Add(char character) { characters_[length_++] = character; }

  WorkArray<char> characters_;
  WorkArray<uint8_t> segments_;
  size_t length_ = 0;
  double value_ = 0.0;
};

Status ReadDigits(DigitReader* reader, Handle region, bool wantsSign, int32_t digitCount,
                  DisplayText* text) {
  FlatContours contours(region);
  FlatContour contour{};
  for (int32_t index = 0; contours.Next(&contour);) {
    if (!IsDigit(contour)) continue;
    DigitShape shape{};
    DigitReading reading{};
    bool isMinus = false;
    Status status = DigitShapeOf(contour, &shape);
    if (status == STATUS_OK && index == 0 && wantsSign) {
      status = reader->FindSign(shape, &isMinus);
      if (status == STATUS_OK) text->AddSign(isMinus);
    }
    if (status == STATUS_OK) status = reader->Read(shape, &reading);
    if (status != STATUS_OK) return status;
    text->AddDigit(reading, index++, digitCount);
  }
  return STATUS_OK;
}

Status ReadDisplay(DigitReader* reader, const RoiDescriptor* roi, bool wantsSign, char** text,
                   double* value, uint8_t** segments, int32_t* count) {
  ScopedVector region;
  DisplayText display;
  Status status = region.Create();
  if (status == STATUS_OK) status = DisplayRegion(reader->image(), roi, region.handle());
  if (status != STATUS_OK) return status;
  const int32_t digits = CountDigits(region.handle());
  if (digits == 0) return STATUS_BAD_ROI;
  status = reader->Create();
  if (status != STATUS_OK) return status;
  if (!display.Allocate(digits)) return STATUS_MEMORY_FULL;
  status = ReadDigits(reader, region.handle(), wantsSign, digits, &display);
  if (status != STATUS_OK) return status;
  display.HandTo(text, value, segments);
  *count = digits;
  return STATUS_OK;
}

// What is missing of a call, tested in this order.
Status MissingOf(const char* procedure, ImageRef image, const RoiDescriptor* roi,
                 bool hasAllOutputs) {
  if (image == 0) return STATUS_IMAGE_MISSING;
  if (!roi) {
    MessageBoxInUse().show(procedure, "ROI not provided");
    return STATUS_BAD_ROI;
  }
  return hasAllOutputs ? STATUS_OK : STATUS_NO_OUTPUT;
}

DisplayRules RulesOf(ImageRef image, int32_t lightSegments, float threshold, int32_t decimalPoint) {
  return {image, lightSegments != 0, static_cast<double>(threshold), decimalPoint != 0};
}

}  // namespace
}  // namespace zel

int32_t ZEL_ReadSingleDigit(ImageRef image, const RoiDescriptor* roi, int32_t lightSegments,
                            float threshold, int32_t decimalPoint, char** text, double* value,
                            DigitSegments* segments) {
  zel::Status status = zel::MissingOf("ZEL_ReadSingleDigit", image, roi, text && value && segments);
  if (status == zel::STATUS_OK) {
    zel::DigitReader reader(zel::RulesOf(image, lightSegments, threshold, decimalPoint));
    status = zel::ReadSingleDigit(&reader, roi, text, value, segments);
  }
  return ZEL_ProcessError("ZEL_ReadSingleDigit", status);
}

int32_t ZEL_ReadLCDDisplay(ImageRef image, const RoiDescriptor* roi, int32_t lightSegments,
                           float threshold, int32_t sign, int32_t decimalPoint, char** text,
                           double* value, uint8_t** segments, int32_t* count) {
  zel::Status status =
      zel::MissingOf("ZEL_ReadLCDDisplay", image, roi, text && value && segments && count);
  if (status == zel::STATUS_OK) {
    zel::DigitReader reader(zel::RulesOf(image, lightSegments, threshold, decimalPoint));
    status = zel::ReadDisplay(&reader, roi, sign != 0, text, value, segments, count);
  }
  return ZEL_ProcessError("ZEL_ReadLCDDisplay", status);
}
