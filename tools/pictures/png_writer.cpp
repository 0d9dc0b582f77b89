// PNG files through libpng.
#include <png.h>

#include <csetjmp>
#include <new>
#include <stdexcept>

#include "pictures/writers.h"

namespace pictures {
namespace {

// The bytes so far; libpng is left by a jump when there is no memory for more.
struct Output {
  std::vector<uint8_t> bytes;
};

bool Append(Output* output, const uint8_t* from, size_t count) {
  try {
    output->bytes.insert(output->bytes.end(), from, from + count);
    return true;
  } catch (const std::bad_alloc&) {
    return false;
  }
}

void WriteBytes(png_structp png, png_bytep from, size_t count) {
  if (!Append(static_cast<Output*>(png_get_io_ptr(png)), from, count)) png_error(png, "no memory");
}

void Flush(png_structp) {}
void Ignore(png_structp, png_const_charp) {}

struct Header {
  int bits, colour;
  png_color palette[256];
};

Header HeaderOf(const Raster& raster) {
  Header header{};
  if (raster.sample != Sample::U8 && raster.sample != Sample::U16) {
    throw std::invalid_argument("PNG holds unsigned bytes and 16-bit numbers only");
  }
  header.bits = 8 * BytesOf(raster.sample);
  header.colour = raster.channels == 3      ? PNG_COLOR_TYPE_RGB
                  : !raster.palette.empty() ? PNG_COLOR_TYPE_PALETTE
                                            : PNG_COLOR_TYPE_GRAY;
  for (size_t i = 0; i < raster.palette.size(); ++i) {
    const uint32_t colour = raster.palette[i];
    header.palette[i] = {static_cast<png_byte>(colour >> 16), static_cast<png_byte>(colour >> 8),
                         static_cast<png_byte>(colour)};
  }
  return header;
}

// False where libpng failed. Nothing in it has a destructor.
bool Write(png_structp png, png_infop info, const Raster& raster, Header* header) {
  if (setjmp(png_jmpbuf(png)) != 0) return false;
  png_set_IHDR(png, info, static_cast<png_uint_32>(raster.width),
               static_cast<png_uint_32>(raster.height), header->bits, header->colour,
               PNG_INTERLACE_NONE, PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
  if (header->colour == PNG_COLOR_TYPE_PALETTE) png_set_PLTE(png, info, header->palette, 256);
  png_write_info(png, info);
  const uint16_t one = 1;
  if (header->bits == 16 && *reinterpret_cast<const uint8_t*>(&one) == 1) png_set_swap(png);
  for (int64_t y = 0; y < raster.height; ++y) png_write_row(png, raster.Row(y));
  png_write_end(png, info);
  return true;
}

}  // namespace

std::vector<uint8_t> EncodePng(const Raster& raster) {
  Header header = HeaderOf(raster);
  Output output;
  png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, Ignore);
  png_infop info = png != nullptr ? png_create_info_struct(png) : nullptr;
  bool written = false;
  if (info != nullptr) {
    png_set_user_limits(png, PNG_UINT_31_MAX, PNG_UINT_31_MAX);
    png_set_write_fn(png, &output, WriteBytes, Flush);
    written = Write(png, info, raster, &header);
  }
  png_destroy_write_struct(&png, &info);
  if (!written) throw std::bad_alloc();
  return std::move(output.bytes);
}

}  // namespace pictures
