// Images as device-independent bitmaps, and the clipboard that these lie in.
#include <algorithm>
#include <cstring>

#include "core/heap.h"
#include "core/images.h"
#include "orlune_ptk.h"
#include "platform/desktop.h"
#include "platform/packed_bitmap.h"

namespace zel {
namespace {

constexpr char NAME[] = "ZEL_ClipboardToImage";  // reports of both directions say this
constexpr Status STATUS_BAD_BITMAP = 1;

constexpr int64_t SIZE_BYTES = 12;  // the header up to the height
// A bitmap that lacks more than this is not worth an image of the size that it claims.
constexpr int64_t MOST_MISSING = 1 << 20;

void GrayLevels(RGBValue* colours) {
  for (uint32_t i = 0; i < BITMAP_COLOURS; i++) colours[i] = i * 0x010101;
}

// ---- from an image

int32_t BitsOf(const Image& image) {
  return image.type == IMAGE_RGB ? 24 : 8;
}

void HeaderPut(const Image& image, uint8_t* to) {
  const bool hasTable = image.type == IMAGE_U8;
  std::memset(to, 0, BITMAP_HEADER_BYTES);
  PutLowFirst(to, BITMAP_HEADER_BYTES, 4);
  PutLowFirst(to + 4, static_cast<uint32_t>(image.width), 4);
  PutLowFirst(to + 8, static_cast<uint32_t>(image.height), 4);
  PutLowFirst(to + 12, 1, 2);  // planes
  PutLowFirst(to + 14, static_cast<uint32_t>(BitsOf(image)), 2);
  PutLowFirst(to + 32, hasTable ? BITMAP_COLOURS : 0, 4);
}

void RowPut(const uint8_t* from, int32_t type, int32_t width, uint8_t* to) {
  if (type == IMAGE_U8) {
    std::memcpy(to, from, static_cast<size_t>(width));
    return;
  }
  // The fourth byte is overwritten by the next pixel.
  for (int32_t x = 1; x < width; x++, from += 4, to += 3) std::memcpy(to, from, 4);
  std::memcpy(to, from, 3);
}

Status ImageToClipboard(ImageRef reference, const RGBValue* palette) {
  Image* image = nullptr;
  const Status status = ImageLookup(reference, &image);
  if (status != STATUS_OK) return status;
  if (image->type != IMAGE_U8 && image->type != IMAGE_RGB) return STATUS_BAD_TYPE;
  if (image->width == 0 || image->height == 0) return STATUS_OK;

  const int64_t rowBytes = BitmapRowBytes(image->width, BitsOf(*image));
  const int64_t tableBytes = image->type == IMAGE_U8 ? 4 * BITMAP_COLOURS : 0;
  const int64_t size = BITMAP_HEADER_BYTES + tableBytes + rowBytes * image->height;
  WorkArray<uint8_t> bitmap;
  if (!bitmap.AllocateZeroed(static_cast<uint64_t>(size))) return STATUS_MEMORY_FULL;
  HeaderPut(*image, bitmap.data());
  if (tableBytes > 0) {
    RGBValue gray[BITMAP_COLOURS];
    GrayLevels(gray);
    const RGBValue* colours = palette ? palette : gray;
    uint8_t* table = bitmap.data() + BITMAP_HEADER_BYTES;
    for (int32_t i = 0; i < BITMAP_COLOURS; i++)
      PutLowFirst(table + 4 * i, colours[i] & 0xFFFFFF, 4);
  }
  const PixelView view = ViewOf(*image);
  uint8_t* row = bitmap.data() + BITMAP_HEADER_BYTES + tableBytes;
  for (int32_t y = image->height - 1; y >= 0; y--, row += rowBytes) {
    RowPut(view.Row<uint8_t>(y), image->type, image->width, row);
  }
  const ClipboardBitmap written{bitmap.data(), static_cast<size_t>(size)};
  return DesktopInUse().clipboardWrite(written) ? STATUS_OK : STATUS_MEMORY_FULL;
}

// ---- into an image

// Gray levels go on where the bitmap's colours end.
void ColoursOf(const ClipboardBitmap& bitmap, const BitmapHeader& header, RGBValue* colours) {
  GrayLevels(colours);
  if (!header.IsReadable() || header.bits != 8) return;
  const int64_t room = (static_cast<int64_t>(bitmap.size) - header.bytes) / 4;
  const int64_t count =
      std::min({header.colours, int64_t{BITMAP_COLOURS}, std::max<int64_t>(room, 0)});
  const uint8_t* table = bitmap.bytes + header.bytes;
  for (int64_t i = 0; i < count; i++) colours[i] = GetLowFirst(table + 4 * i, 3);
}

void RowTake(const uint8_t* from, int64_t bits, const RGBValue* colours, const PixelView& view,
             int32_t y) {
  if (bits == 8 && view.type == IMAGE_U8) {
    std::memcpy(view.Row<uint8_t>(y), from, static_cast<size_t>(view.width));
  } else if (bits == 8) {
    auto* to = view.Row<RGBValue>(y);
    for (int32_t x = 0; x < view.width; x++) to[x] = colours[from[x]];
  } else if (view.type == IMAGE_RGB) {
    auto* to = view.Row<RGBValue>(y);
    for (int32_t x = 0; x < view.width; x++) to[x] = GetLowFirst(from + 3 * int64_t{x}, 3);
  } else {
    auto* to = view.Row<uint8_t>(y);
    for (int32_t x = 0; x < view.width; x++, from += 3) {
      to[x] = static_cast<uint8_t>((from[0] + from[1] + from[2]) / 3);
    }
  }
}

Status BitmapToImage(const ClipboardBitmap& bitmap, ImageRef reference, RGBValue* palette) {
  Image* image = nullptr;
  Status status = ImageLookup(reference, &image);
  if (status != STATUS_OK) return status;
  if (image->type != IMAGE_U8 && image->type != IMAGE_RGB) return STATUS_BAD_TYPE;

  const auto size = static_cast<int64_t>(bitmap.size);
  if (size < SIZE_BYTES) return STATUS_BAD_BITMAP;
  const BitmapHeader header = BitmapHeaderOf(bitmap.bytes, bitmap.size);
  const bool isEmpty = header.IsEmpty();
  if (!isEmpty && header.Bytes() > size + MOST_MISSING) return STATUS_BAD_BITMAP;
  status = ImageSetSize(reference, isEmpty ? 0 : static_cast<int32_t>(header.width),
                        isEmpty ? 0 : static_cast<int32_t>(header.height));
  if (status != STATUS_OK) return status;
  const bool isWhole = header.IsReadable() && header.Bytes() <= size;
  if (!isEmpty && !isWhole) return STATUS_BAD_BITMAP;

  RGBValue colours[BITMAP_COLOURS];
  ColoursOf(bitmap, header, colours);
  if (palette) std::copy_n(colours, BITMAP_COLOURS, palette);
  if (isEmpty) return STATUS_OK;
  ImageLookup(reference, &image);
  const PixelView view = ViewOf(*image);
  const int64_t rowBytes = BitmapRowBytes(header.width, header.bits);
  const uint8_t* row = bitmap.bytes + header.PixelsAt();
  for (int32_t i = 0; i < view.height; i++, row += rowBytes) {
    RowTake(row, header.bits, colours, view, header.isTopDown ? i : view.height - 1 - i);
  }
  return STATUS_OK;
}

Status ClipboardToImage(ImageRef reference, RGBValue* palette, int32_t* available) {
  if (!available) return STATUS_NULL_POINTER;
  ClipboardBitmap bitmap{};
  const ClipboardState state = DesktopInUse().clipboardRead(&bitmap);
  if (state == ClipboardState::CLOSED) return STATUS_OK;
  *available = state == ClipboardState::FILLED ? 1 : 0;
  return *available == 1 ? BitmapToImage(bitmap, reference, palette) : STATUS_OK;
}

}  // namespace
}  // namespace zel

int32_t ZEL_ImageToClipboard(ImageRef image, const RGBValue* palette) {
  return ZEL_ProcessError(zel::NAME, zel::ImageToClipboard(image, palette));
}

int32_t ZEL_ClipboardToImage(ImageRef image, RGBValue* palette, int32_t* available) {
  return ZEL_ProcessError(zel::NAME, zel::ClipboardToImage(image, palette, available));
}
