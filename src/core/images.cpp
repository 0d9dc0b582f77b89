// The image table, the life of images, the layout of their pixel blocks, and the exports for these.
#include "core/images.h"

#include "core/errors.h"
#include "core/heap.h"
#include "core/pixel_types.h"
#include "core/tables.h"

namespace zel {
namespace {

constexpr ImageRef REFERENCE_NO_IMAGE = 0xFFFFFFFF;  // what ZEL_Create makes of a variable with 0

// Rows found lately, by the low bits of their reference, so that a lookup is no search.
constexpr uint32_t ROW_CACHE_SIZE = 256;
uint32_t rowCache[ROW_CACHE_SIZE];

ImageEntry* EntryFind(ImageRef reference) {
  if (reference == 0) return nullptr;
  uint32_t& cached = rowCache[reference % ROW_CACHE_SIZE];
  if (cached < coreTables.imageCapacity && coreTables.images[cached].reference == reference) {
    return &coreTables.images[cached];
  }
  for (uint32_t row = 0; row < coreTables.imageCapacity; row++) {
    if (coreTables.images[row].reference == reference) {
      cached = row;
      return &coreTables.images[row];
    }
  }
  return nullptr;
}

// Null for a row whose image could not be made.
Image* RecordOf(const ImageEntry& entry) {
  return entry.recordHandle != 0 ? static_cast<Image*>(HandleRow(entry.recordHandle)->data)
                                 : nullptr;
}

int32_t LayoutType(const Image& image) {
  return image.type == IMAGE_OPAQUE ? image.opaqueType : image.type;
}

struct Layout {
  int64_t lineWidth;  // pixels
  int64_t bytes;      // of the whole block
  int64_t origin;     // where pixel (0, 0) is in it
};

bool LayoutOf(int32_t width, int32_t height, int32_t border, int32_t pixelBytes, Layout* layout) {
  const int64_t leftBytes = PaddedBytes(border, pixelBytes);
  const int64_t lineBytes = leftBytes + PaddedBytes(int64_t{border} + width, pixelBytes);
  if (pixelBytes == 0 || lineBytes > static_cast<int64_t>(HEAP_BLOCK_LIMIT)) return false;
  const int64_t rows = height + 2 * int64_t{border};
  layout->lineWidth = lineBytes / pixelBytes;
  layout->origin = border * lineBytes + leftBytes;
  layout->bytes = rows * lineBytes;  // below 2^63: twice the border is no more than a line
  return layout->bytes <= static_cast<int64_t>(HEAP_BLOCK_LIMIT);
}

// Whether the block of an image is laid out like this already, as with the destinations of most
// calls. The size alone doesn't tell: a border may have changed since.
bool HasLayout(const Image& image, const Layout& layout) {
  return image.lineWidth == layout.lineWidth && image.type != IMAGE_OPAQUE &&
         int64_t{HandleRow(image.pixels)->blockBytes} == layout.bytes && layout.bytes != 0;
}

// A handle of an image for one of its two blocks.
Status ImageHandleNew(ImageRef reference, uint32_t size, HandleKind kind, Handle* handle) {
  *handle = HandleNew(size);
  if (*handle == 0) return STATUS_MEMORY_ERROR;
  HandleRow(*handle)->kind = kind;
  HandleRow(*handle)->ownerImage = reference;
  return STATUS_OK;
}

// A list like the template's: entries that stay with their image come out empty.
Status AttachmentsLike(Handle template_, Handle* list) {
  uint32_t count = 0;
  Status status = VectorCount(template_, &count);
  if (status == STATUS_OK) status = VectorNew(list);
  if (status != STATUS_OK) return status;
  status = AttachmentsAppendCopies(template_, *list);
  if (status != STATUS_OK) AttachmentsFree(*list, false);
  return status;
}

}  // namespace

int32_t ImageEntryFind(ImageRef reference, Handle* record, int32_t* row) {
  const ImageEntry* entry = EntryFind(reference);
  if (!entry) return 0;
  *record = entry->recordHandle;
  *row = static_cast<int32_t>(entry - coreTables.images);
  return 1;
}

Status ImageEntryNew(ImageRef* reference, bool temporary) {
  uint32_t row = coreTables.imageFreeHint;
  while (row < coreTables.imageCapacity && coreTables.images[row].reference != 0) row++;
  coreTables.imageFreeHint = row;
  if (row >= coreTables.imageCapacity) return STATUS_INTERNAL;
  if (coreTables.lastReference >= REFERENCE_NO_IMAGE - 1) return STATUS_INTERNAL;  // all used up

  coreTables.imageRows++;
  const ImageRef made = ++coreTables.lastReference;
  coreTables.images[row] = {made, 0, temporary ? IMAGE_FLAG_TEMPORARY : 0};
  rowCache[made % ROW_CACHE_SIZE] = row;
  // Also after a failure below: the row is there, and its reference can be disposed of.
  *reference = made;

  Handle record = 0;
  Status status = ImageHandleNew(made, sizeof(Image), HANDLE_IMAGE_RECORD, &record);
  if (status != STATUS_OK) return status;
  Handle pixels = 0;
  status = ImageHandleNew(made, 0, HANDLE_IMAGE_PIXELS, &pixels);
  if (status != STATUS_OK) {
    HandleFree(record);
    return status;
  }
  static_cast<Image*>(HandleRow(record)->data)->pixels = pixels;
  coreTables.images[row].recordHandle = record;
  return STATUS_OK;
}

Status ImageLookup(ImageRef reference, Image** image) {
  const ImageEntry* entry = EntryFind(reference);
  Image* record = entry ? RecordOf(*entry) : nullptr;
  if (!record) return STATUS_BAD_IMAGE;
  *image = record;
  return STATUS_OK;
}

Status ImageCreateLike(ImageRef* reference, const Image& like) {
  const Image wanted = like;  // the template may be the record that is made over
  Status status = TablesEnsure();
  if (status != STATUS_OK) return status;

  const bool temporary = *reference == 0;
  bool made = false;
  Image* image = nullptr;
  if (temporary || ImageLookup(*reference, &image) != STATUS_OK) {
    made = true;
    status = ImageEntryNew(reference, temporary);
    if (status == STATUS_OK) status = ImageLookup(*reference, &image);
    if (status != STATUS_OK) return status;
  }

  const Image former = *image;
  *image = wanted;
  image->lineWidth = 0;
  image->pixels = former.pixels;
  image->attachments = 0;
  image->reserved = 0;
  status = ImageLayoutSize(image, wanted.width, wanted.height, false);
  if (status == STATUS_MEMORY_FULL) *image = former;  // the record that fits the block there is
  if (status != STATUS_OK) return status;

  if (made && temporary && wanted.attachments != 0) {
    status = AttachmentsLike(wanted.attachments, &image->attachments);
  }
  return status;
}

Status ImageDestroy(ImageRef reference) {
  ImageEntry* entry = EntryFind(reference);
  if (!entry) return STATUS_BAD_IMAGE;
  Status status = STATUS_OK;
  Handle attachments = 0;
  if (const Image* image = RecordOf(*entry)) {
    attachments = image->attachments;
    HandleFree(image->pixels);
    status = HandleFree(entry->recordHandle);
  }
  const auto row = static_cast<uint32_t>(entry - coreTables.images);
  *entry = {};
  coreTables.imageRows--;
  if (row < coreTables.imageFreeHint) coreTables.imageFreeHint = row;
  if (attachments != 0) AttachmentsFree(attachments, true);
  return status;
}

Status ImageSetSize(ImageRef reference, int32_t width, int32_t height) {
  Image* image = nullptr;
  const Status status = ImageLookup(reference, &image);
  return status != STATUS_OK ? status : ImageLayoutSize(image, width, height, true);
}

Status ImageLayoutSize(Image* image, int32_t width, int32_t height, bool keep) {
  if (width < 1 || height < 1) width = height = 0;
  int32_t pixelBytes = 0;
  Status status = PixelSize(LayoutType(*image), &pixelBytes);
  if (status != STATUS_OK) return status;
  Layout layout{};
  if (!LayoutOf(width, height, image->border, pixelBytes, &layout)) return STATUS_MEMORY_FULL;
  const bool sameSize = image->width == width && image->height == height;
  if (keep && sameSize && HasLayout(*image, layout)) return STATUS_OK;

  const bool opaque = image->type == IMAGE_OPAQUE;
  const int64_t required = !opaque ? layout.bytes : image->opaqueSize > 0 ? image->opaqueSize : 0;
  const bool enough =
      keep && image->keepMemory != 0 && int64_t{HandleByteSize(image->pixels)} >= required;
  if (!enough) {
    HandleRow(image->pixels)->alignedAt = static_cast<uint32_t>(layout.origin);
    status = HandleResize(image->pixels, static_cast<uint64_t>(required));
  }
  if (status != STATUS_OK) return status;

  image->width = width;
  image->height = height;
  image->lineWidth = static_cast<int32_t>(layout.lineWidth);
  return STATUS_OK;
}

bool ImageShrinksTo(const Image& image, int32_t width, int32_t height) {
  Layout layout{};
  return LayoutOf(width, height, image.border, PixelBytesOf(image.type), &layout) &&
         layout.bytes < int64_t{HandleByteSize(image.pixels)};
}

Status PixelSize(int32_t type, int32_t* bytes) {
  const int32_t known = PixelBytesOf(type);
  if (known == 0) return STATUS_BAD_LAYOUT_TYPE;
  *bytes = known;
  return STATUS_OK;
}

Status ImagePixelAddress(ImageRef reference, int32_t x, int32_t y, void** address) {
  Image* image = nullptr;
  Status status = ImageLookup(reference, &image);
  if (status != STATUS_OK) return status;
  int32_t pixelBytes = 0;
  status = PixelSize(image->type, &pixelBytes);
  if (status != STATUS_OK) return status;
  if (image->lineWidth == 0) {
    if (x != 0 || y != 0) return STATUS_INTERNAL;
    return HandleData(image->pixels, address);
  }
  const int64_t border = image->border;
  if (x < -border || x >= image->width + border || y < -border || y >= image->height + border) {
    return STATUS_INTERNAL;
  }
  *address = ViewOf(*image).Row<uint8_t>(y) + int64_t{x} * pixelBytes;
  return STATUS_OK;
}

PixelView ViewOf(const Image& image) {
  const int32_t pixelBytes = PixelBytesOf(image.type);
  PixelView view{.width = image.width,
                 .height = image.height,
                 .type = image.type,
                 .pixelBytes = static_cast<int16_t>(pixelBytes)};
  auto* block = static_cast<uint8_t*>(HandleRow(image.pixels)->data);
  if (pixelBytes == 0 || !block) return view;
  view.pitch = int64_t{image.lineWidth} * pixelBytes;
  view.origin = block + image.border * view.pitch + PaddedBytes(image.border, pixelBytes);
  return view;
}

Status ImageSwap(ImageRef a, ImageRef b) {
  ImageEntry* entryA = EntryFind(a);
  ImageEntry* entryB = EntryFind(b);
  if (!entryA || !entryB) return STATUS_BAD_IMAGE;
  entryA->reference = b;
  entryB->reference = a;
  return STATUS_OK;
}

bool ImageSame(ImageRef a, ImageRef b) {
  const ImageEntry* entryA = EntryFind(a);
  const ImageEntry* entryB = EntryFind(b);
  return !entryA || !entryB || entryA == entryB;
}

}  // namespace zel

int32_t ZEL_InitSys(void) {
  return ZEL_ProcessError("ZEL_InitSys", zel::TablesEnsure());
}

// Reports under the name of its counterpart, which programs in the field look for.
int32_t ZEL_CloseSys(void) {
  return ZEL_ProcessError("ZEL_InitSys", zel::CoreShutdown());
}

int32_t ZEL_Create(ImageRef* image, int16_t type, int32_t border) {
  zel::Status status = zel::STATUS_OK;
  if (!image) {
    status = zel::STATUS_NULL_POINTER;
  } else if (border < 0) {
    status = zel::STATUS_NO_BORDER;
  } else {
    zel::Image like{};
    like.xStep = 1.0f;
    like.yStep = 1.0f;
    like.type = type;
    like.border = border;
    if (*image == 0) *image = zel::REFERENCE_NO_IMAGE;
    status = zel::ImageCreateLike(image, like);
  }
  return ZEL_ProcessError("ZEL_Create", status);
}

int32_t ZEL_Dispose(ImageRef image) {
  return ZEL_ProcessError("ZEL_Dispose", zel::ImageDestroy(image));
}

int32_t ZEL_GetImageInfo(ImageRef image, ImageInfo* info) {
  zel::Image* record = nullptr;
  zel::Status status = info ? zel::ImageLookup(image, &record) : zel::STATUS_NULL_POINTER;
  if (status == zel::STATUS_OK) {
    int32_t pixelBytes = 0;
    zel::PixelSize(zel::LayoutType(*record), &pixelBytes);
    const int64_t lineBytes = int64_t{record->lineWidth} * pixelBytes;
    *info = {};
    info->width = record->width;
    info->height = record->height;
    info->type = record->type;
    info->pixelBytes = pixelBytes;
    info->lineWidth = record->lineWidth;
    info->lineBytes = static_cast<int32_t>(lineBytes);
    info->border = record->border;
    info->totalBytes =
        static_cast<int32_t>((record->height + 2 * int64_t{record->border}) * lineBytes);
    info->offsetX = record->offsetX;
    info->offsetY = record->offsetY;
    info->unit = record->unit;
    info->xStep = record->xStep;
    info->yStep = record->yStep;
    // An empty image with a border has its first pixel in the border.
    status = zel::ImagePixelAddress(image, 0, 0, &info->firstPixel);
  }
  // Unlike every other export this one answers the positive number.
  ZEL_ProcessError("ZEL_GetImageInfo", status);
  return status;
}

int32_t ZEL_SetImageSize(ImageRef image, int32_t width, int32_t height) {
  return ZEL_ProcessError("ZEL_SetImageSize", zel::ImageSetSize(image, width, height));
}

int32_t ZEL_SetImageCalibration(ImageRef image, int32_t unit, float xStep, float yStep) {
  zel::Image* record = nullptr;
  const zel::Status status = zel::ImageLookup(image, &record);
  if (status == zel::STATUS_OK) {
    record->unit = static_cast<int16_t>(static_cast<uint32_t>(unit));
    record->xStep = xStep;
    record->yStep = yStep;
  }
  return ZEL_ProcessError("ZEL_SetImageCalibration", status);
}

int32_t ZEL_SetImageOffset(ImageRef image, int32_t x, int32_t y) {
  zel::Image* record = nullptr;
  zel::Status status = zel::ImageLookup(image, &record);
  if (status == zel::STATUS_OK && (record->type < IMAGE_U8 || record->type > IMAGE_OPAQUE)) {
    status = zel::STATUS_BAD_TYPE;
  }
  if (status == zel::STATUS_OK) {
    record->offsetX = x;
    record->offsetY = y;
  }
  return ZEL_ProcessError("ZEL_SetImageOffset", status);
}

int32_t ZEL_GetImageReference(int32_t index, ImageRef* image, int32_t* count) {
  const zel::CoreTables& tables = zel::coreTables;
  if (count) *count = static_cast<int32_t>(tables.imageRows);
  if (index < 0) return REFERENCE_ABSENT;
  int32_t skipped = 0;
  for (uint32_t row = 0; row < tables.imageCapacity; row++) {
    const zel::ImageEntry& entry = tables.images[row];
    if (entry.reference == 0 || skipped++ != index) continue;
    if (image) *image = entry.reference;
    return (entry.flags & zel::IMAGE_FLAG_TEMPORARY) != 0 ? REFERENCE_TEMPORARY
                                                          : REFERENCE_OF_CALLER;
  }
  return REFERENCE_ABSENT;
}

int32_t ZEL_GetPixelAddress(ImageRef image, int32_t x, int32_t y, void** address) {
  const zel::Status status =
      address ? zel::ImagePixelAddress(image, x, y, address) : zel::STATUS_NULL_POINTER;
  return ZEL_ProcessError("ZEL_GetPixelAddress", status);
}
