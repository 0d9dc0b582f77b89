// What all readers of bar codes share: the road from a call to a code's decoder and back.
#pragma once

#include <cstdint>

#include "barcode/widths.h"
#include "core/heap.h"
#include "orlune_ptk.h"

namespace zel {

// A text while it is decoded.
struct BarcodeText {
  WorkArray<char> bytes;
  int64_t length = 0;

  // Room for this many bytes, all 0.
  Status Reserve(int64_t count);
  void Append(char byte) { bytes[static_cast<size_t>(length++)] = byte; }
  // Up to a zero byte or to the end of the field.
  void Append(const char* field, int32_t size);
};

struct BarcodeOptions {
  bool validate = false;
  int32_t firstDigit = 0;  // of an EAN-13
};

// Makes the text of the widths. STATUS_MEMORY_FULL, and what the code refuses.
using BarcodeDecoder = Status (*)(const BarWidths& widths, const BarcodeOptions& options,
                                  BarcodeText* text);

// What a caller passes to each of the exports.
struct BarcodeRequest {
  ImageRef image;
  const RoiDescriptor* region;
  char** text;
  int32_t* textLength;

  // STATUS_IMAGE_MISSING, STATUS_BAD_ROI, STATUS_NO_OUTPUT.
  Status Check() const;
};

// Hands the text over in the caller's block, and changes nothing where it fails.
Status BarcodeRead(const BarcodeRequest& request, BarcodeDecoder decoder,
                   const BarcodeOptions& options);

// How many symbols of a size there are in a number of elements; none in less than one.
constexpr int64_t SymbolsIn(int64_t elements, int64_t size) {
  return elements > 0 ? elements / size : 0;
}

// What is missing to the next multiple of a base: what most checks are.
constexpr int64_t CheckOf(int64_t sum, int64_t base) {
  return (base - sum % base) % base;
}

}  // namespace zel
