// Two fields joined into a frame, and a frame split into its fields.
#include <algorithm>
#include <cstring>
#include <utility>

#include "engine/operands.h"

namespace zel {
namespace {

// The images of one call. A field may be null, the other one, or the frame itself.
struct InterlaceImages {
  Image* frame;
  Image* even;  // its rows are the rows 0, 2, .. of the frame
  Image* odd;
};

Status FieldLookup(ImageRef reference, const Image& frame, Image** field) {
  *field = nullptr;
  if (reference == 0) return STATUS_OK;
  const Status status = ImageLookup(reference, field);
  if (status != STATUS_OK) return status;
  return (*field)->type == frame.type ? STATUS_OK : STATUS_DESTINATION_TYPE_DIFFERS;
}

Status CopyOf(const Image& image, ScratchImage* copy) {
  const Status status = copy->Create(image.type, image.width, image.height, 0);
  return status != STATUS_OK ? status : ImageCopyPixels(image, copy->image());
}

void CopyRow(const PixelView& from, int64_t fromRow, const PixelView& to, int64_t toRow,
             int64_t bytes) {
  // A field that is the frame has rows that stay where they are.
  std::memmove(to.Row<void>(toRow), from.Row<void>(fromRow), static_cast<size_t>(bytes));
}

Status FieldsJoin(const InterlaceImages& images) {
  Image* frame = images.frame;
  const Image* even = images.even ? images.even : images.odd;
  const Image* odd = images.odd ? images.odd : images.even;
  const int32_t width = std::min(even->width, odd->width);
  const int32_t height = std::min(even->height, odd->height);
  // A field that is the frame itself is read from a copy when the frame's rows are going to move.
  ScratchImage copy;
  if (frame->width != width && (even == frame || odd == frame)) {
    const Status status = CopyOf(*frame, &copy);
    if (status != STATUS_OK) return status;
    if (even == frame) even = copy.image();
    if (odd == frame) odd = copy.image();
  }
  const Status status = ImageLayoutSize(frame, width, 2 * height, true);
  if (status != STATUS_OK) return status;

  const PixelView to = ViewOf(*frame);
  const PixelView evenRows = ViewOf(*even);
  const PixelView oddRows = ViewOf(*odd);
  // From the bottom, so that a field that is the frame is read before it is overwritten.
  for (int64_t y = to.height / 2 - 1; y >= 0; y--) {
    CopyRow(oddRows, y, to, 2 * y + 1, to.RowBytes());
    CopyRow(evenRows, y, to, 2 * y, to.RowBytes());
  }
  return STATUS_OK;
}

// Sizes both fields or, without memory, neither: one that shrinks comes last, since it cannot fail,
// and one that has grown shrinks back with all that it held.
Status FieldsTakeSize(Image* first, Image* second, int32_t width, int32_t height) {
  if (first && ImageShrinksTo(*first, width, height)) std::swap(first, second);
  const Image former = first ? *first : Image{};
  Status status = STATUS_OK;
  if (first) status = ImageLayoutSize(first, width, height, true);
  if (status != STATUS_OK || !second) return status;
  status = ImageLayoutSize(second, width, height, true);
  if (status != STATUS_OK && first) ImageLayoutSize(first, former.width, former.height, true);
  return status;
}

Status FrameSplit(const InterlaceImages& images) {
  Image* frame = images.frame;
  const int32_t height = frame->height / 2;
  const auto unlessFrame = [&](Image* field) { return field != frame ? field : nullptr; };
  const Status status =
      FieldsTakeSize(unlessFrame(images.even), unlessFrame(images.odd), frame->width, height);
  if (status != STATUS_OK) return status;

  const PixelView whole = ViewOf(*frame);
  const PixelView even = images.even ? ViewOf(*images.even) : PixelView{};
  const PixelView odd = images.odd ? ViewOf(*images.odd) : PixelView{};
  for (int64_t y = 0; y < height; y++) {
    if (images.even) CopyRow(whole, 2 * y, even, y, whole.RowBytes());
    if (images.odd) CopyRow(whole, 2 * y + 1, odd, y, whole.RowBytes());
  }
  // Only now may the frame lose its lower half.
  const bool isField = images.even == frame || images.odd == frame;
  return isField ? ImageLayoutSize(frame, frame->width, height, true) : STATUS_OK;
}

Status Interlace(ImageRef frame, ImageRef first, ImageRef second, int32_t mode) {
  InterlaceImages images{};
  Status status = ImageLookup(frame, &images.frame);
  if (status == STATUS_OK) status = FieldLookup(first, *images.frame, &images.even);
  if (status == STATUS_OK) status = FieldLookup(second, *images.frame, &images.odd);
  if (status != STATUS_OK || (first == 0 && second == 0)) return status;
  if (!TypeHasPixels(images.frame->type)) return STATUS_BAD_TYPE;
  return mode == 0 ? FieldsJoin(images) : FrameSplit(images);
}

}  // namespace
}  // namespace zel

int32_t ZEL_Interlace(ImageRef frame, ImageRef firstField, ImageRef secondField, int32_t mode) {
  return ZEL_ProcessError("ZEL_Interlace", zel::Interlace(frame, firstField, secondField, mode));
}
