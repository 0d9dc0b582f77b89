// Image objects: records behind references, the layout of pixels in their blocks, copying,
// masks placed on images, and borders.
#pragma once

#include <cstdint>

#include "core/handles.h"
#include "core/status.h"
#include "core/views.h"
#include "orlune_ptk.h"

namespace zel {

struct Image {
  int16_t unit;     // calibration unit code, kept and handed back only
  float xStep;      // real-world width of one pixel
  float yStep;      // real-world height of one pixel
  int16_t type;     // ImageType
  int32_t width;    // pixels a row, without border
  int32_t height;   // rows, without border
  int32_t offsetX;  // where this image lies on another one when it serves as a mask
  int32_t offsetY;
  int32_t border;      // pixels of border on each of the four sides
  int32_t lineWidth;   // pixels from one row to the next
  Handle pixels;       // of kind HANDLE_IMAGE_PIXELS
  Handle attachments;  // vector of Attachment, or 0
  uint32_t reserved;
  int32_t opaqueSize;   // IMAGE_OPAQUE: bytes of the block
  int32_t opaqueType;   // IMAGE_OPAQUE: the type that gives the bytes a pixel
  uint32_t keepMemory;  // non-zero: a block that is big enough stays when the image is resized
};

struct Attachment {
  uint32_t flags;  // ATTACHMENT_STAYS or 0
  Handle handle;
};
constexpr uint32_t ATTACHMENT_STAYS = 4;  // the entry is not copied to another image

// Deep copies of a list's entries, put behind those of another list. Entries that stay with their
// image are appended empty.
Status AttachmentsAppendCopies(Handle from, Handle to);
// Frees a list with its blocks. With flaggedOnly, blocks of entries without flags are left for
// the shutdown.
void AttachmentsFree(Handle list, bool flaggedOnly);

// 1 when the reference names an image, and then its record's handle and its row.
int32_t ImageEntryFind(ImageRef reference, Handle* record, int32_t* row);
Status ImageEntryNew(ImageRef* reference, bool temporary);

Status ImageLookup(ImageRef reference, Image** image);  // STATUS_BAD_IMAGE

// Makes an image like the template's record, or makes the named image over. A reference of 0 asks
// for a temporary image; one that names nothing for a caller's.
Status ImageCreateLike(ImageRef* reference, const Image& like);
Status ImageDestroy(ImageRef reference);

// Sizes below 1 give a 0 x 0 image. Bytes keep their place in the block, so a new width leaves the
// pixels scrambled: a caller writes them. On failure the image stays as it was.
Status ImageSetSize(ImageRef reference, int32_t width, int32_t height);
// The same for a record. keep: a block that is large enough stays where the image asks for that.
Status ImageLayoutSize(Image* image, int32_t width, int32_t height, bool keep);

// Whether the image's pixel block would have fewer bytes at that size: memory for it is always had.
bool ImageShrinksTo(const Image& image, int32_t width, int32_t height);

Status PixelSize(int32_t type, int32_t* bytes);
// The bytes of some pixels with what is needed to begin the next ones on a multiple of 8, where
// rows and their first pixels lie.
constexpr int64_t PaddedBytes(int64_t pixels, int32_t pixelBytes) {
  return (pixels * pixelBytes + 7) & -8;
}
Status ImagePixelAddress(ImageRef reference, int32_t x, int32_t y, void** address);

// Exchanges what two references name; rows and flags stay.
Status ImageSwap(ImageRef a, ImageRef b);
// True also when either reference is unknown: look references up before asking.
bool ImageSame(ImageRef a, ImageRef b);

// Everything: type, border, calibration and pixels with border and padding.
Status ImageClone(ImageRef source, ImageRef destination);
// Size and pixels; the destination keeps its border and record. Types must be the same.
Status ImageCopyPixels(ImageRef source, ImageRef destination);
Status ImageCopyPixels(const Image& source, Image* destination);
// Calibration, mask offset and attachments: what every derived image takes from its source.
Status ImageCopyInfo(ImageRef source, ImageRef destination);
Status ImageCopyInfo(const Image& source, Image* destination);

Status ImageClearAll(ImageRef reference);  // the whole block
Status ImageClearAll(Image* image);
// The first (height + 2 border) x (width + 2 border) bytes of a U8 block, whatever the row pitch;
// for other types that many pixels from the start of each line. Null clears the whole block.
Status ImageFillAll(ImageRef reference, const void* pixel);

OverlapRect MaskOverlap(const Image& image, const Image& mask);

// Fill the border. STATUS_NO_BORDER for an image without one; an empty image is left alone.
Status BorderMirror(ImageRef reference);
Status BorderReplicate(ImageRef reference);
Status BorderZero(ImageRef reference);

// The pixels of an image; without an origin for a type that has none.
PixelView ViewOf(const Image& image);

}  // namespace zel
