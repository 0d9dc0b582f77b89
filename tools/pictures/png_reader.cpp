// PNG files through libpng, of all depths.
#include <png.h>

#include <csetjmp>
#include <cstring>
#include <memory>

#include "pictures/orientation.h"
#include "pictures/readers.h"

namespace pictures {
namespace {

struct Input {
  Bytes file;
  size_t at = 0;
  char complaint[200] = "";
};

void ReadBytes(png_structp png, png_bytep to, size_t bytes) {
  auto* input = static_cast<Input*>(png_get_io_ptr(png));
  if (bytes > input->file.size() - input->at) png_error(png, "the file is cut");
  std::memcpy(to, input->file.data() + input->at, bytes);
  input->at += bytes;
}

void NoteError(png_structp png, png_const_charp message) {
  auto* input = static_cast<Input*>(png_get_error_ptr(png));
  std::strncpy(input->complaint, message, sizeof input->complaint - 1);
  png_longjmp(png, 1);
}

void IgnoreWarning(png_structp, png_const_charp) {}

class Png {
 public:
  explicit Png(Bytes file) : input_{.file = file} {
    png_ = png_create_read_struct(PNG_LIBPNG_VER_STRING, &input_, NoteError, IgnoreWarning);
    info_ = png_ != nullptr ? png_create_info_struct(png_) : nullptr;
    if (info_ == nullptr) {
      png_destroy_read_struct(&png_, &info_, nullptr);
      throw std::bad_alloc();
    }
    png_set_read_fn(png_, &input_, ReadBytes);
    png_set_user_limits(png_, PNG_UINT_31_MAX, PNG_UINT_31_MAX);
  }
  ~Png() { png_destroy_read_struct(&png_, &info_, nullptr); }
  Png(const Png&) = delete;
  Png& operator=(const Png&) = delete;

  // Runs calls of libpng, which leaves them by a jump when it fails: nothing in them may have a
  // destructor.
  template <class Calls>
  void Try(Calls calls) {
    bool failed = false;
    if (setjmp(png_jmpbuf(png_)) == 0) {
      calls(png_, info_);
    } else {
      failed = true;
    }
    if (failed) throw BadFile(std::string("the PNG file is not read: ") + input_.complaint);
  }

  png_structp png() const { return png_; }
  png_infop info() const { return info_; }

 private:
  Input input_;
  png_structp png_ = nullptr;
  png_infop info_ = nullptr;
};

struct Header {
  png_uint_32 width = 0, height = 0;
  int bits = 0, colour = 0, interlace = 0;
  png_colorp palette = nullptr;
  int colours = 0;
  bool transparent = false;
  png_bytep exif = nullptr;
  png_uint_32 exifBytes = 0;
  png_uint_32 perMetreX = 0, perMetreY = 0;

  bool IsColour() const { return (colour & PNG_COLOR_MASK_COLOR) != 0 && !HasPalette(); }
  bool HasPalette() const { return colour == PNG_COLOR_TYPE_PALETTE; }
  bool HasAlpha() const { return (colour & PNG_COLOR_MASK_ALPHA) != 0; }
};

void ReadHeader(png_structp png, png_infop info, Header* header) {
  png_read_info(png, info);
  png_get_IHDR(png, info, &header->width, &header->height, &header->bits, &header->colour,
               &header->interlace, nullptr, nullptr);
  if (header->HasPalette()) png_get_PLTE(png, info, &header->palette, &header->colours);
  header->transparent = png_get_valid(png, info, PNG_INFO_tRNS) != 0;
  png_get_eXIf_1(png, info, &header->exifBytes, &header->exif);
  int unit = PNG_RESOLUTION_UNKNOWN;
  png_get_pHYs(png, info, &header->perMetreX, &header->perMetreY, &unit);
  if (unit != PNG_RESOLUTION_METER) header->perMetreX = header->perMetreY = 0;
}

std::vector<uint32_t> PaletteOf(const Header& header) {
  std::vector<uint32_t> palette;
  for (int i = 0; i < header.colours; ++i) {
    const png_color& colour = header.palette[i];
    palette.push_back(uint32_t{colour.red} << 16 | uint32_t{colour.green} << 8 | colour.blue);
  }
  return palette;
}

Account AccountOf(const Header& header) {
  Account account;
  account.format = "PNG";
  account.width = header.width;
  account.height = header.height;
  account.bits = header.bits;
  account.samples = (header.IsColour() ? 3 : 1) + (header.HasAlpha() ? 1 : 0);
  account.kind = header.IsColour() ? "colour" : "gray";
  if (header.HasPalette()) DescribePalette(PaletteOf(header), &account);
  account.compression = "deflate";
  account.layout = header.interlace != PNG_INTERLACE_NONE ? "interlaced" : "";
  if (header.HasAlpha() || header.transparent) {
    account.alpha = "straight";
    account.losses.push_back("alpha is left out");
  }
  if (header.exif != nullptr) account.orientation = OrientationIn({header.exif, header.exifBytes});
  if (header.perMetreX > 0) {
    account.resolution = std::to_string(header.perMetreX) + " x " +
                         std::to_string(header.perMetreY) + " pixels a metre";
  }
  return account;
}

// All rows with all samples: an interlaced picture is complete only after the last pass.
std::vector<uint8_t> ReadRows(Png* file, const Header& header, size_t* rowBytes) {
  file->Try([](png_structp png, png_infop info) {
    png_set_packing(png);
    const uint16_t one = 1;
    if (*reinterpret_cast<const uint8_t*>(&one) == 1) png_set_swap(png);
    png_set_interlace_handling(png);
    png_read_update_info(png, info);
  });
  *rowBytes = png_get_rowbytes(file->png(), file->info());
  std::vector<uint8_t> bytes(*rowBytes * header.height);
  std::vector<png_bytep> rows(header.height);
  for (size_t y = 0; y < rows.size(); ++y) rows[y] = bytes.data() + y * *rowBytes;
  file->Try([&](png_structp png, png_infop) {
    png_read_image(png, rows.data());
    png_read_end(png, nullptr);
  });
  return bytes;
}

Raster ReadPixels(Png* file, const Header& header, int32_t samples) {
  const size_t sampleBytes = header.bits == 16 ? 2 : 1;
  const int32_t channels = header.IsColour() ? 3 : 1;
  // Room for what is read, alpha included, is checked before it is taken.
  if (double{static_cast<double>(header.width)} * header.height * samples *
          static_cast<double>(sampleBytes) >
      static_cast<double>(MOST_BYTES)) {
    throw BadFile("the picture of " + std::to_string(header.width) + " x " +
                  std::to_string(header.height) + " pixels takes more than 2 GiB of memory");
  }
  size_t rowBytes = 0;
  std::vector<uint8_t> bytes = ReadRows(file, header, &rowBytes);
  Raster raster = MakeRaster(header.width, header.height, channels,
                             sampleBytes == 2 ? Sample::U16 : Sample::U8);
  if (samples == channels) {
    raster.bytes = std::move(bytes);
    return raster;
  }
  const size_t from = static_cast<size_t>(samples) * sampleBytes;
  const auto to = static_cast<size_t>(raster.PixelBytes());
  const size_t pixels = size_t{header.width} * header.height;
  for (size_t i = 0; i < pixels; ++i) {
    std::memcpy(raster.bytes.data() + i * to, bytes.data() + i * from, to);
  }
  return raster;
}

}  // namespace

bool IsPng(Bytes file) {
  constexpr size_t SIGNATURE = 8;
  return file.size() >= SIGNATURE && png_sig_cmp(file.data(), 0, SIGNATURE) == 0;
}

Picture ReadPng(Bytes bytes, int32_t page, Want want) {
  OnlyPage(page, "PNG");
  Png file(bytes);
  Header header;
  file.Try([&](png_structp png, png_infop info) { ReadHeader(png, info, &header); });
  Picture picture;
  picture.account = AccountOf(header);
  if (want == Want::Account) return picture;
  picture.raster = ReadPixels(&file, header, picture.account.samples);
  picture.raster.palette = PaletteOf(header);
  SettlePalette(&picture.raster);
  picture.raster = Upright(std::move(picture.raster), picture.account.orientation);
  return picture;
}

}  // namespace pictures
