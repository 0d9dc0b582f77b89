// Images as device-independent bitmaps, and the clipboard that these lie in.
#include <algorithm>
#include <cstring>

#include "core/heap.h"
#include "core/images.h"
#include "orlune_ptk.h"
#include "platform/desktop.h"

namespace zel {
namespace {

constexpr char NAME[] = "ZEL_ClipboardToImage";  // reports of both directions say this
constexpr Status STATUS_BAD_BITMAP = 1;

constexpr int32_t COLOURS = 256;
constexpr int64_t HEADER_BYTES = 40;
constexpr int64_t SIZE_BYTES = 12;  // the header up to the height
// A bitmap that lacks more than this is not worth an image of the size that it claims.
constexpr int64_t MOST_MISSING = 1 << 20;

// ---- the header, in which numbers stand with their low byte first

void Put(uint8_t* to, uint32_t value, int32_t bytes) {
  for (int32_t i = 0; i < bytes; i++) to[i] = static_cast<uint8_t>(value >> (8 * i));
}

uint32_t Get(const uint8_t* from, int32_t bytes) {
  uint32_t value = 0;
  for (int32_t i = 0; i < bytes; i++) value |= uint32_t{from[i]} << (8 * i);
  return value;
}

int64_t RowBytes(int64_t width, int64_t bits) {
  return (width * bits + 31) / 32 * 4;
}

void GreyLevels(RGBValue* colours) {
  for (uint32_t i = 0; i < COLOURS; i++) colours[i] = i * 0x010101;
}

// ---- from an image

int32_t BitsOf(const Image& image) {
  return image.type == IMAGE_RGB ? 24 : 8;
}

void HeaderPut(const Image& image, uint8_t* to) {
  const bool hasTable = image.type == IMAGE_U8;
  std::memset(to, 0, HEADER_BYTES);
  Put(to, HEADER_BYTES, 4);
  Put(to + 4, static_cast<uint32_t>(image.width), 4);
  Put(to + 8, static_cast<uint32_t>(image.height), 4);
  Put(to + 12, 1, 2);  // planes
  Put(to + 14, static_cast<uint32_t>(BitsOf(image)), 2);
  Put(to + 32, hasTable ? COLOURS : 0, 4);
}

void RowPut(const uint8_t* from, int32_t type, int32_t width, uint8_t* to) {
  if (type == IMAGE_U8) {
    std::memcpy(to, from, static_cast<size_t>(width));
    return;
  }
  for (int32_t x = 0; x < width; x++, from += 4, to += 3) std::copy_n(from, 3, to);
}

Status ImageToClipboard(ImageRef reference, const RGBValue* palette) {
  Image* image = nullptr;
  const Status status = ImageLookup(reference, &image);
  if (status != STATUS_OK) return status;
  if (image->type != IMAGE_U8 && image->type != IMAGE_RGB) return STATUS_BAD_TYPE;
  if (image->width == 0 || image->height == 0) return STATUS_OK;

  const int64_t rowBytes = RowBytes(image->width, BitsOf(*image));
  const int64_t tableBytes = image->type == IMAGE_U8 ? 4 * COLOURS : 0;
  const int64_t size = HEADER_BYTES + tableBytes + rowBytes * image->height;
  WorkArray<uint8_t> bitmap;
  if (!bitmap.AllocateZeroed(static_cast<uint64_t>(size))) return STATUS_MEMORY_FULL;
  HeaderPut(*image, bitmap.data());
  if (tableBytes > 0) {
    RGBValue grey[COLOURS];
    GreyLevels(grey);
    const RGBValue* colours = palette ? palette : grey;
    uint8_t* table = bitmap.data() + HEADER_BYTES;
    for (int32_t i = 0; i < COLOURS; i++) Put(table + 4 * i, colours[i] & 0xFFFFFF, 4);
  }
  const PixelView view = ViewOf(*image);
  uint8_t* row = bitmap.data() + HEADER_BYTES + tableBytes;
  for (int32_t y = image->height - 1; y >= 0; y--, row += rowBytes) {
    RowPut(view.Row<uint8_t>(y), image->type, image->width, row);
  }
  const ClipboardBitmap written{bitmap.data(), static_cast<size_t>(size)};
  return DesktopInUse().clipboardWrite(written) ? STATUS_OK : STATUS_MEMORY_FULL;
}

// ---- into an image

// What the header tells. Numbers that a short header does not have are 0.
struct BitmapHeader {
  int64_t bytes, width, height;  // of the header; rows are counted without their direction
  bool isTopDown;
  int64_t bits, colours;
  bool isPacked;

  bool IsEmpty() const { return width < 1 || height < 1; }
  int64_t PixelsAt() const { return bytes + 4 * colours; }
  // With its pixels; the least where the number of bits is not one to be read, and the most where
  // there is no number for it.
  int64_t Bytes() const {
    int64_t pixels = 0;
    int64_t all = 0;
    const int64_t rowBytes = RowBytes(width, std::max<int64_t>(bits, 1));
    const bool isTooMuch = __builtin_mul_overflow(rowBytes, height, &pixels) ||
                           __builtin_add_overflow(PixelsAt(), pixels, &all);
    return isTooMuch ? INT64_MAX : all;
  }
  bool IsReadable() const {
    return bytes >= HEADER_BYTES && !isPacked && (bits == 8 || bits == 24);
  }
};

BitmapHeader HeaderOf(const ClipboardBitmap& bitmap) {
  uint8_t fields[HEADER_BYTES] = {};
  std::memcpy(fields, bitmap.bytes, std::min<size_t>(bitmap.size, HEADER_BYTES));
  const auto height = static_cast<int32_t>(Get(fields + 8, 4));
  BitmapHeader header{};
  header.bytes = Get(fields, 4);
  header.width = static_cast<int32_t>(Get(fields + 4, 4));
  header.height = height < 0 ? -int64_t{height} : height;
  header.isTopDown = height < 0;
  header.bits = Get(fields + 14, 2);
  header.isPacked = Get(fields + 16, 4) != 0;
  header.colours = Get(fields + 32, 4);
  if (header.colours == 0 && header.bits == 8) header.colours = COLOURS;
  return header;
}

// Grey levels go on where the bitmap's colours end.
void ColoursOf(const ClipboardBitmap& bitmap, const BitmapHeader& header, RGBValue* colours) {
  GreyLevels(colours);
  if (!header.IsReadable() || header.bits != 8) return;
  const int64_t room = (static_cast<int64_t>(bitmap.size) - header.bytes) / 4;
  const int64_t count = std::min({header.colours, int64_t{COLOURS}, std::max<int64_t>(room, 0)});
  const uint8_t* table = bitmap.bytes + header.bytes;
  for (int64_t i = 0; i < count; i++) colours[i] = Get(table + 4 * i, 3);
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
    for (int32_t x = 0; x < view.width; x++) to[x] = Get(from + 3 * int64_t{x}, 3);
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
  const BitmapHeader header = HeaderOf(bitmap);
  const bool isEmpty = header.IsEmpty();
  if (!isEmpty && header.Bytes() > size + MOST_MISSING) return STATUS_BAD_BITMAP;
  status = ImageSetSize(reference, isEmpty ? 0 : static_cast<int32_t>(header.width),
                        isEmpty ? 0 : static_cast<int32_t>(header.height));
  if (status != STATUS_OK) return status;
  const bool isWhole = header.IsReadable() && header.Bytes() <= size;
  if (!isEmpty && !isWhole) return STATUS_BAD_BITMAP;

  RGBValue colours[COLOURS];
  ColoursOf(bitmap, header, colours);
  if (palette) std::copy_n(colours, COLOURS, palette);
  if (isEmpty) return STATUS_OK;
  ImageLookup(reference, &image);
  const PixelView view = ViewOf(*image);
  const int64_t rowBytes = RowBytes(header.width, header.bits);
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
