// Copies from image to image, fills, and the placing of masks.
#include <algorithm>
#include <cstring>

#include "core/heap.h"
#include "core/images.h"

namespace zel {
namespace {

Attachment* EntriesOf(Handle list, uint32_t* count) {
  *count = 0;
  VectorCount(list, count);
  return VectorData<Attachment>(list);
}

// Frees what a list may not keep and moves the rest to the front; returns how many are left.
uint32_t AttachmentsKeepStaying(Handle list) {
  uint32_t count = 0;
  Attachment* entries = EntriesOf(list, &count);
  uint32_t kept = 0;
  for (uint32_t i = 0; i < count; i++) {
    if ((entries[i].flags & ATTACHMENT_STAYS) != 0) {
      entries[kept++] = entries[i];
    } else if (entries[i].handle != 0) {
      HandleFree(entries[i].handle);
    }
  }
  VectorResize(list, sizeof(Attachment), kept);
  return kept;
}

Status BlockCopy(Handle from, Handle* to) {
  const uint32_t bytes = HandleByteSize(from);
  const Status status = HandleAlloc(to, bytes);
  if (status == STATUS_OK) MemCopy(VectorData<void>(from), VectorData<void>(*to), bytes);
  return status;
}

int64_t PresentSize(const Image& image) {
  return image.keepMemory != 0 ? int64_t{HandleByteSize(image.pixels)} : -1;
}

// Makes the pixel block of an image hold at least `required` bytes.
Status BlockEnsure(const Image& image, int64_t required) {
  if (PresentSize(image) >= required) return STATUS_OK;
  return HandleResize(image.pixels, static_cast<uint64_t>(required));
}

// The size of a pixel block, from a record that fits its block.
Status BlockBytes(const Image& image, int64_t* bytes) {
  int32_t pixelBytes = 0;
  const Status status = PixelSize(image.type, &pixelBytes);
  *bytes = (image.height + 2 * int64_t{image.border}) * image.lineWidth * pixelBytes;
  return status;
}

Status OpaqueClone(const Image& source, Image* destination) {
  const bool keepsLarger =
      destination->keepMemory != 0 && destination->opaqueSize >= source.opaqueSize;
  const int32_t size = keepsLarger ? destination->opaqueSize : source.opaqueSize;
  const int64_t held = HandleByteSize(destination->pixels);
  if (size != destination->opaqueSize || held < size) {
    const Status status = HandleResize(destination->pixels, static_cast<uint64_t>(size));
    if (status != STATUS_OK) return status;
  }
  destination->opaqueSize = size;
  MemCopy(VectorData<void>(source.pixels), VectorData<void>(destination->pixels),
          static_cast<size_t>(source.opaqueSize));
  return STATUS_OK;
}

Status OpaqueCopyPixels(const Image& source, Image* destination) {
  if (source.opaqueType != destination->opaqueType) return STATUS_COPY_TYPE_DIFFERS;
  const Status status = OpaqueClone(source, destination);
  if (status != STATUS_OK) return status;
  destination->lineWidth = source.lineWidth;
  destination->border = source.border;
  destination->width = source.width;
  destination->height = source.height;
  return STATUS_OK;
}

template <class T>
void FillLines(uint8_t* block, int64_t lineBytes, int64_t rows, int64_t columns,
               const void* pixel) {
  T value;
  std::memcpy(&value, pixel, sizeof(T));
  T* first = reinterpret_cast<T*>(block);
  std::fill_n(first, columns, value);
  for (int64_t row = 1; row < rows; row++) {
    std::memcpy(block + row * lineBytes, first, static_cast<size_t>(columns) * sizeof(T));
  }
}

struct TwoWords {
  uint32_t word[2];
};

}  // namespace

Status AttachmentsAppendCopies(Handle from, Handle to) {
  uint32_t fromCount = 0;
  uint32_t toCount = 0;
  Status status = VectorCount(from, &fromCount);
  if (status == STATUS_OK) status = VectorCount(to, &toCount);
  if (status == STATUS_OK) {
    status = VectorResize(to, sizeof(Attachment), uint64_t{toCount} + fromCount);
  }
  for (uint32_t i = 0; status == STATUS_OK && i < fromCount; i++) {
    const Attachment entry = VectorData<Attachment>(from)[i];
    Attachment copy{};
    if (entry.handle != 0 && (entry.flags & ATTACHMENT_STAYS) == 0) {
      copy.flags = entry.flags;
      status = BlockCopy(entry.handle, &copy.handle);
    }
    VectorData<Attachment>(to)[toCount + i] = copy;
  }
  return status;
}

void AttachmentsFree(Handle list, bool flaggedOnly) {
  uint32_t count = 0;
  const Attachment* entries = EntriesOf(list, &count);
  for (uint32_t i = 0; i < count; i++) {
    if (entries[i].handle != 0 && (entries[i].flags != 0 || !flaggedOnly)) {
      HandleFree(entries[i].handle);
    }
  }
  HandleFree(list);
}

Status ImageClone(ImageRef source, ImageRef destination) {
  Image* from = nullptr;
  Image* to = nullptr;
  Status status = ImageLookup(source, &from);
  if (status == STATUS_OK) status = ImageLookup(destination, &to);
  if (status != STATUS_OK || from == to) return status;

  if (from->type == IMAGE_OPAQUE) {
    status = OpaqueClone(*from, to);
  } else {
    int64_t bytes = 0;
    status = BlockBytes(*from, &bytes);
    if (status == STATUS_OK) status = BlockEnsure(*to, bytes);
    if (status == STATUS_OK) {
      to->opaqueSize = from->opaqueSize;
      MemCopy(VectorData<void>(from->pixels), VectorData<void>(to->pixels),
              static_cast<size_t>(bytes));
    }
  }
  if (status != STATUS_OK) return status;

  const Image former = *to;
  *to = *from;
  to->opaqueSize = former.opaqueSize;
  to->keepMemory = former.keepMemory;
  to->pixels = former.pixels;
  to->attachments = former.attachments;
  to->reserved = former.reserved;
  return STATUS_OK;
}

Status ImageCopyPixels(ImageRef source, ImageRef destination) {
  Image* from = nullptr;
  Image* to = nullptr;
  Status status = ImageLookup(source, &from);
  if (status == STATUS_OK) status = ImageLookup(destination, &to);
  return status != STATUS_OK ? status : ImageCopyPixels(*from, to);
}

Status ImageCopyPixels(const Image& source, Image* to) {
  const Image* from = &source;
  if (from == to) return STATUS_OK;
  if (from->type != to->type) return STATUS_COPY_TYPE_DIFFERS;

  if (from->type == IMAGE_OPAQUE) return OpaqueCopyPixels(*from, to);
  if (from->width != to->width || from->height != to->height) {
    const Status status = ImageLayoutSize(to, from->width, from->height, true);
    if (status != STATUS_OK) return status;
  }
  if (from->border == to->border) {
    int64_t bytes = 0;
    const Status status = BlockBytes(*from, &bytes);
    if (status != STATUS_OK) return status;
    MemCopy(VectorData<void>(from->pixels), VectorData<void>(to->pixels),
            static_cast<size_t>(bytes));
    return STATUS_OK;
  }
  const PixelView read = ViewOf(*from);
  const PixelView write = ViewOf(*to);
  for (int64_t y = 0; y < read.height; y++) {
    std::memcpy(write.Row<uint8_t>(y), read.Row<uint8_t>(y), static_cast<size_t>(read.RowBytes()));
  }
  return STATUS_OK;
}

Status ImageCopyInfo(ImageRef source, ImageRef destination) {
  Image* from = nullptr;
  Image* to = nullptr;
  Status status = ImageLookup(source, &from);
  if (status == STATUS_OK) status = ImageLookup(destination, &to);
  return status != STATUS_OK ? status : ImageCopyInfo(*from, to);
}

Status ImageCopyInfo(const Image& source, Image* to) {
  const Image* from = &source;
  if (from == to) return STATUS_OK;
  to->unit = from->unit;
  to->xStep = from->xStep;
  to->yStep = from->yStep;
  to->offsetX = from->offsetX;
  to->offsetY = from->offsetY;
  if (from->attachments == 0 && to->attachments == 0) return STATUS_OK;

  const uint32_t kept = to->attachments != 0 ? AttachmentsKeepStaying(to->attachments) : 0;
  if (from->attachments == 0) {
    if (kept == 0) {
      HandleFree(to->attachments);
      to->attachments = 0;
    }
    return STATUS_OK;
  }
  Status status = STATUS_OK;
  if (to->attachments == 0) status = VectorNew(&to->attachments);
  return status != STATUS_OK ? status : AttachmentsAppendCopies(from->attachments, to->attachments);
}

Status ImageClearAll(ImageRef reference) {
  Image* image = nullptr;
  const Status status = ImageLookup(reference, &image);
  return status != STATUS_OK ? status : ImageClearAll(image);
}

Status ImageClearAll(Image* image) {
  int64_t bytes = 0;
  const Status status = BlockBytes(*image, &bytes);
  if (status == STATUS_OK) MemFill(VectorData<void>(image->pixels), 0, static_cast<size_t>(bytes));
  return status;
}

Status ImageFillAll(ImageRef reference, const void* pixel) {
  if (!pixel) return ImageClearAll(reference);
  Image* image = nullptr;
  Status status = ImageLookup(reference, &image);
  if (status != STATUS_OK || image->width == 0 || image->height == 0) return status;
  int32_t pixelBytes = 0;
  status = PixelSize(image->type, &pixelBytes);
  if (status != STATUS_OK) return status;

  uint8_t* block = VectorData<uint8_t>(image->pixels);
  const int64_t lineBytes = int64_t{image->lineWidth} * pixelBytes;
  const int64_t rows = image->height + 2 * int64_t{image->border};
  const int64_t columns = image->width + 2 * int64_t{image->border};
  switch (pixelBytes) {
    case 1:
      // One run from the start of the block, whatever the pitch: lines are longer than this when
      // the columns are no multiple of 8, and the tail of the image keeps its pixels then.
      MemFill(block, *static_cast<const uint8_t*>(pixel), static_cast<size_t>(rows * columns));
      break;
    case 2:
      FillLines<uint16_t>(block, lineBytes, rows, columns, pixel);
      break;
    case 4:
      FillLines<uint32_t>(block, lineBytes, rows, columns, pixel);
      break;
    default:
      FillLines<TwoWords>(block, lineBytes, rows, columns, pixel);
      break;
  }
  return STATUS_OK;
}

OverlapRect MaskOverlap(const Image& image, const Image& mask) {
  const int64_t right = int64_t{mask.offsetX} + mask.width;
  const int64_t bottom = int64_t{mask.offsetY} + mask.height;
  if (right < 1 || mask.offsetX >= image.width || bottom < 1 || mask.offsetY >= image.height) {
    return {};
  }
  OverlapRect overlap{};
  overlap.imageX = std::max(mask.offsetX, 0);
  overlap.imageY = std::max(mask.offsetY, 0);
  // Never below -INT32_MAX here: the mask reaches into the image.
  overlap.maskX = mask.offsetX < 0 ? -mask.offsetX : 0;
  overlap.maskY = mask.offsetY < 0 ? -mask.offsetY : 0;
  overlap.width = static_cast<int32_t>(std::min<int64_t>(right, image.width) - overlap.imageX);
  overlap.height = static_cast<int32_t>(std::min<int64_t>(bottom, image.height) - overlap.imageY);
  return overlap;
}

}  // namespace zel
