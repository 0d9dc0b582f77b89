// Two fields joined into a frame, and a frame split into its fields.
#include <algorithm>
#include <cstring>

#include "core/kernels.h"

namespace zel {
namespace {

void FieldCheck(ImageRef field, int32_t frameType, Status* status) {
  if (*status != STATUS_OK || field == 0) return;
  const Image* image = ImageLookup(field, status);
  if (image && image->type != frameType) *status = STATUS_DESTINATION_TYPE_DIFFERS;
}

// An image that a resize of the frame does not disturb: the field, or a copy of one that is the
// frame itself when its rows are going to move.
ImageRef FieldBeside(ImageRef field, ImageRef frame, bool rowsMove, ScratchImage* copy,
                     Status* status) {
  if (*status != STATUS_OK || field != frame || !rowsMove) return field;
  const Image* image = ImageLookup(field, status);
  if (!image) return field;
  *status = copy->Create(image->type, image->width, image->height, 0);
  if (*status == STATUS_OK) *status = ImageCopyPixels(field, copy->reference());
  return copy->reference();
}

void CopyRow(const PixelGrid& from, int64_t fromRow, const PixelGrid& to, int64_t toRow,
             size_t bytes) {
  // A field that is the frame has rows that stay where they are.
  std::memmove(to.Row<uint8_t>(toRow), from.Row<uint8_t>(fromRow), bytes);
}

PixelGrid GridOf(ImageRef reference, Status* status) {
  const Image* image = ImageLookup(reference, status);
  return image ? PixelGridOf(*image) : PixelGrid{};
}

void FieldsJoin(ImageRef frame, ImageRef first, ImageRef second, size_t pixelBytes,
                Status* status) {
  const PixelGrid a = GridOf(first, status);
  const PixelGrid b = GridOf(second, status);
  const int32_t width = std::min(a.width, b.width);
  const int32_t height = std::min(a.height, b.height);
  const bool rowsMove = GridOf(frame, status).width != width;
  ScratchImage firstCopy;
  ScratchImage secondCopy;
  const ImageRef firstField = FieldBeside(first, frame, rowsMove, &firstCopy, status);
  const ImageRef secondField =
      first == second ? firstField : FieldBeside(second, frame, rowsMove, &secondCopy, status);
  if (*status == STATUS_OK) *status = ImageSetSize(frame, width, 2 * height);
  if (*status != STATUS_OK) return;

  const PixelGrid to = GridOf(frame, status);
  const PixelGrid even = GridOf(firstField, status);
  const PixelGrid odd = GridOf(secondField, status);
  const size_t bytes = static_cast<size_t>(width) * pixelBytes;
  // From the bottom, so that a field that is the frame is read before it is overwritten.
  for (int64_t y = to.height / 2 - 1; y >= 0; y--) {
    CopyRow(odd, y, to, 2 * y + 1, bytes);
    CopyRow(even, y, to, 2 * y, bytes);
  }
}

void FrameSplit(ImageRef frame, ImageRef first, ImageRef second, size_t pixelBytes,
                Status* status) {
  const PixelGrid whole = GridOf(frame, status);
  const int32_t height = whole.height / 2;
  const ImageRef fields[] = {first, second};
  for (const ImageRef field : fields) {
    if (*status != STATUS_OK) return;
    if (field != 0 && field != frame) *status = ImageSetSize(field, whole.width, height);
  }
  if (*status != STATUS_OK) return;

  const size_t bytes = static_cast<size_t>(whole.width) * pixelBytes;
  const PixelGrid even = first != 0 ? GridOf(first, status) : PixelGrid{};
  const PixelGrid odd = second != 0 ? GridOf(second, status) : PixelGrid{};
  for (int64_t y = 0; y < height; y++) {
    if (first != 0) CopyRow(whole, 2 * y, even, y, bytes);
    if (second != 0) CopyRow(whole, 2 * y + 1, odd, y, bytes);
  }
  // Only now may the frame lose its lower half.
  for (const ImageRef field : fields) {
    if (field != 0 && field == frame && *status == STATUS_OK) {
      *status = ImageSetSize(field, whole.width, height);
    }
  }
}

void InterlaceKernel(ImageRef frame, ImageRef first, ImageRef second, const int32_t* mode,
                     Status* status) {
  const Image* image = ImageLookup(frame, status);
  if (!image) return;
  FieldCheck(first, image->type, status);
  FieldCheck(second, image->type, status);
  if (*status != STATUS_OK || (first == 0 && second == 0)) return;
  int32_t pixelBytes = 0;
  if (PixelSize(image->type, &pixelBytes) != STATUS_OK) {
    *status = STATUS_BAD_TYPE;
    return;
  }
  const auto bytes = static_cast<size_t>(pixelBytes);
  if (*mode == INTERLACE_JOIN) {
    FieldsJoin(frame, first != 0 ? first : second, second != 0 ? second : first, bytes, status);
  } else {
    FrameSplit(frame, first, second, bytes, status);
  }
}

}  // namespace
}  // namespace zel

int32_t ZEL_Interlace(ImageRef frame, ImageRef firstField, ImageRef secondField, int32_t mode) {
  zel::Status status = zel::STATUS_OK;
  zel::InterlaceKernel(frame, firstField, secondField, &mode, &status);
  return ZEL_ProcessError("ZEL_Interlace", status);
}
