// From a call to a code's decoder and back to the caller's block.
#include "barcode/reader.h"

#include <cstring>

#include "regions/descriptors.h"

namespace zel {
namespace {

// A zero byte follows the text, for callers who print it; it is not counted.
Status HandOver(const BarcodeText& text, const BarcodeRequest& request) {
  const auto length = static_cast<size_t>(text.length);
  char* block = nullptr;
  if (length == 0) {
    HeapFree(*request.text);
  } else {
    block = static_cast<char*>(HeapResize(*request.text, length + 1));
    if (!block) return STATUS_MEMORY_FULL;
    std::memcpy(block, text.bytes.data(), length);
    block[length] = 0;
  }
  *request.text = block;
  *request.textLength = static_cast<int32_t>(length);
  return STATUS_OK;
}

}  // namespace

Status BarcodeText::Reserve(int64_t count) {
  return bytes.AllocateZeroed(static_cast<uint64_t>(count)) ? STATUS_OK : STATUS_MEMORY_FULL;
}

void BarcodeText::Append(const char* field, int32_t size) {
  for (int32_t i = 0; i < size && field[i] != 0; i++) Append(field[i]);
}

Status BarcodeRequest::Check() const {
  if (image == 0) return STATUS_IMAGE_MISSING;
  if (!region) return STATUS_BAD_ROI;
  return text && textLength ? STATUS_OK : STATUS_NO_OUTPUT;
}

Status BarcodeRead(const BarcodeRequest& request, BarcodeDecoder decoder,
                   const BarcodeOptions& options) {
  Status status = request.Check();
  ScopedVector region;
  if (status == STATUS_OK) status = region.Create();
  if (status == STATUS_OK) status = RoiToVector(request.region, region.handle());
  BarWidths widths;
  if (status == STATUS_OK) status = widths.Measure(request.image, region.handle());
  BarcodeText text;
  if (status == STATUS_OK) status = decoder(widths, options, &text);
  return status != STATUS_OK ? status : HandOver(text, request);
}

}  // namespace zel
