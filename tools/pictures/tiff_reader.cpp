// TIFF pages through libtiff: what they hold, and which of it is read.
#include <algorithm>
#include <cmath>

#include "pictures/orientation.h"
#include "pictures/readers.h"
#include "pictures/tiff_samples.h"

namespace pictures {
namespace {

std::string Number(int64_t number) {
  return std::to_string(number);
}

std::string PhotometricName(uint16_t photometric) {
  switch (photometric) {
    case PHOTOMETRIC_SEPARATED:
      return "inks";
    case PHOTOMETRIC_CIELAB:
    case PHOTOMETRIC_ICCLAB:
    case PHOTOMETRIC_ITULAB:
      return "CIE L*a*b*";
    case PHOTOMETRIC_LOGL:
    case PHOTOMETRIC_LOGLUV:
      return "logarithmic luminance";
    case PHOTOMETRIC_CFA:
      return "colour filter array";
    default:
      return "unknown";
  }
}

TiffLayout LayoutOf(const TiffInput& file) {
  TiffLayout layout;
  layout.width = file.Field<uint32_t>(TIFFTAG_IMAGEWIDTH, 0);
  layout.height = file.Field<uint32_t>(TIFFTAG_IMAGELENGTH, 0);
  layout.bits = file.Field<uint16_t>(TIFFTAG_BITSPERSAMPLE, 1);
  layout.samples = file.Field<uint16_t>(TIFFTAG_SAMPLESPERPIXEL, 1);
  layout.format = file.Field<uint16_t>(TIFFTAG_SAMPLEFORMAT, SAMPLEFORMAT_UINT);
  if (layout.format == SAMPLEFORMAT_VOID) layout.format = SAMPLEFORMAT_UINT;
  layout.compression = file.Field<uint16_t>(TIFFTAG_COMPRESSION, COMPRESSION_NONE);
  layout.planesApart =
      file.Field<uint16_t>(TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG) == PLANARCONFIG_SEPARATE &&
      layout.samples > 1;
  uint16_t photometric = 0;
  layout.hasPhotometric = TIFFGetField(file.handle(), TIFFTAG_PHOTOMETRIC, &photometric) != 0;
  const bool colour = layout.samples >= 3;
  layout.photometric = layout.hasPhotometric ? photometric
                       : colour              ? uint16_t{PHOTOMETRIC_RGB}
                                             : uint16_t{PHOTOMETRIC_MINISBLACK};
  layout.tiled = TIFFIsTiled(file.handle()) != 0;
  return layout;
}

std::string AlphaOf(const TiffInput& file) {
  uint16_t count = 0;
  uint16_t* kinds = nullptr;
  if (TIFFGetField(file.handle(), TIFFTAG_EXTRASAMPLES, &count, &kinds) == 0) return "";
  for (uint16_t i = 0; i < count; ++i) {
    if (kinds[i] == EXTRASAMPLE_ASSOCALPHA) return "premultiplied";
    if (kinds[i] == EXTRASAMPLE_UNASSALPHA) return "straight";
  }
  return "";
}

std::string KindOf(const TiffLayout& layout) {
  if (layout.photometric == PHOTOMETRIC_PALETTE) return "palette";
  if (layout.IsColour()) return "colour";
  if (layout.format == SAMPLEFORMAT_IEEEFP) return "float";
  return layout.format == SAMPLEFORMAT_INT ? "signed" : "gray";
}

std::string ShapeOf(const TiffInput& file, const TiffLayout& layout) {
  std::string shape;
  if (layout.tiled) {
    shape = "tiles of " + Number(file.Field<uint32_t>(TIFFTAG_TILEWIDTH, 0)) + " x " +
            Number(file.Field<uint32_t>(TIFFTAG_TILELENGTH, 0));
  } else {
    const int64_t strips = TIFFNumberOfStrips(file.handle());
    shape = strips == 1 ? "one strip" : Number(strips) + " strips";
  }
  return layout.planesApart ? shape + ", planes apart" : shape;
}

std::string ResolutionOf(const TiffInput& file) {
  float x = 0, y = 0;
  if (TIFFGetField(file.handle(), TIFFTAG_XRESOLUTION, &x) == 0 ||
      TIFFGetField(file.handle(), TIFFTAG_YRESOLUTION, &y) == 0 || !(x > 0) || !(y > 0) ||
      !(x < 1e9f) || !(y < 1e9f)) {
    return "";
  }
  const uint16_t unit = file.Field<uint16_t>(TIFFTAG_RESOLUTIONUNIT, RESUNIT_INCH);
  const char* name = unit == RESUNIT_CENTIMETER ? " pixels a centimetre"
                     : unit == RESUNIT_INCH     ? " pixels an inch"
                                                : " (no unit)";
  return Number(std::lround(x)) + " x " + Number(std::lround(y)) + name;
}

// A colour table has 16-bit values, but some writers left them at 8.
std::vector<uint32_t> PaletteOf(const TiffInput& file, const TiffLayout& layout) {
  uint16_t *red = nullptr, *green = nullptr, *blue = nullptr;
  if (layout.bits > 8 || TIFFGetField(file.handle(), TIFFTAG_COLORMAP, &red, &green, &blue) == 0) {
    return {};
  }
  const size_t colours = size_t{1} << layout.bits;
  const auto small = [&](const uint16_t* values) {
    return std::all_of(values, values + colours, [](uint16_t v) { return v < 256; });
  };
  const int shift = small(red) && small(green) && small(blue) ? 0 : 8;
  std::vector<uint32_t> palette(colours);
  for (size_t i = 0; i < colours; ++i) {
    palette[i] = uint32_t{static_cast<uint8_t>(red[i] >> shift)} << 16 |
                 uint32_t{static_cast<uint8_t>(green[i] >> shift)} << 8 |
                 static_cast<uint8_t>(blue[i] >> shift);
  }
  return palette;
}

Account AccountOf(const TiffInput& file, const TiffLayout& layout) {
  Account account;
  account.format = "TIFF";
  account.width = layout.width;
  account.height = layout.height;
  account.bits = layout.bits;
  account.samples = layout.samples;
  account.kind = KindOf(layout);
  account.byteOrder = TIFFIsBigEndian(file.handle()) != 0 ? "big-endian" : "little-endian";
  account.compression = TiffCompressionName(layout.compression);
  if (account.compression.empty()) account.compression = "number " + Number(layout.compression);
  account.layout = ShapeOf(file, layout);
  if (layout.photometric == PHOTOMETRIC_MINISWHITE) account.meaning = "0 is white";
  if (layout.photometric == PHOTOMETRIC_YCBCR) account.meaning = "luminance and colour differences";
  const int32_t orientation = file.Field<uint16_t>(TIFFTAG_ORIENTATION, ORIENTATION_TOPLEFT);
  account.orientation = orientation >= 1 && orientation <= 8 ? orientation : 1;
  account.alpha = AlphaOf(file);
  if (layout.photometric == PHOTOMETRIC_PALETTE) {
    DescribePalette(PaletteOf(file, layout), &account);
  }
  account.resolution = ResolutionOf(file);
  const int32_t used = layout.Channels();
  if (!account.alpha.empty()) {
    account.losses.push_back(account.alpha == "straight" ? "alpha is left out"
                                                         : "alpha, by which colours are "
                                                           "multiplied, is left out");
  } else if (layout.samples > used) {
    account.losses.push_back(Count(layout.samples - used, "further sample") +
                             " a pixel is left out");
  }
  return account;
}

// Why a page is not read, and the way out; empty for one that is.
std::string Refusal(const TiffLayout& layout) {
  if (TIFFIsCODECConfigured(layout.compression) == 0) {
    const std::string name = TiffCompressionName(layout.compression);
    return "compression " + Number(layout.compression) + (name.empty() ? "" : " (" + name + ")") +
           " is not read; save it uncompressed or with LZW or deflate";
  }
  const bool known =
      layout.photometric == PHOTOMETRIC_MINISWHITE ||
      layout.photometric == PHOTOMETRIC_MINISBLACK || layout.photometric == PHOTOMETRIC_RGB ||
      layout.photometric == PHOTOMETRIC_PALETTE || layout.photometric == PHOTOMETRIC_MASK ||
      layout.photometric == PHOTOMETRIC_YCBCR;
  if (!known) {
    return "photometric interpretation " + Number(layout.photometric) + " (" +
           PhotometricName(layout.photometric) + ", " + Number(layout.samples) +
           " samples a pixel) is not read; convert it to gray or RGB";
  }
  if (layout.samples > layout.Channels() + 1 || layout.samples < layout.Channels()) {
    return Number(layout.samples) + " samples a pixel are not read where " +
           Number(layout.Channels()) + " or one more are usual; save each sample as a page";
  }
  if (layout.photometric == PHOTOMETRIC_PALETTE &&
      (layout.bits > 8 || layout.format != SAMPLEFORMAT_UINT)) {
    return "a palette for " + Number(layout.bits) + "-bit samples is not read; convert it to RGB";
  }
  return TiffSampleRefusal(layout);
}

Raster ReadPage(TiffInput* file, const TiffLayout& layout, const Account& account) {
  const std::string refusal = Refusal(layout);
  if (!refusal.empty()) {
    throw BadFile("the TIFF file, page " + Number(account.page) + ": " + refusal);
  }
  Raster raster = ReadTiffSamples(file, layout);
  if (layout.photometric == PHOTOMETRIC_PALETTE) {
    raster.palette = PaletteOf(*file, layout);
    if (raster.palette.empty()) file->Fail("has a palette picture without a palette");
    SettlePalette(&raster);
  }
  return Upright(std::move(raster), account.orientation);
}

}  // namespace

bool IsTiff(Bytes file) {
  if (file.size() < 4) return false;
  const bool little = file[0] == 'I' && file[1] == 'I' && (file[2] == 42 || file[2] == 43);
  const bool big = file[0] == 'M' && file[1] == 'M' && (file[3] == 42 || file[3] == 43);
  return little || big;
}

Picture ReadTiff(Bytes bytes, int32_t page, Want want) {
  TiffInput file(bytes);
  const auto pages = static_cast<int32_t>(TIFFNumberOfDirectories(file.handle()));
  if (page < 1 || page > pages) {
    throw BadFile("the TIFF file has " + Count(pages, "page") + "; there is no #" + Number(page));
  }
  if (TIFFSetDirectory(file.handle(), static_cast<tdir_t>(page - 1)) == 0) {
    file.Fail("has a damaged page " + Number(page));
  }
  const TiffLayout layout = LayoutOf(file);
  Picture picture;
  picture.account = AccountOf(file, layout);
  picture.account.page = page;
  picture.account.pages = pages;
  if (want != Want::Account) picture.raster = ReadPage(&file, layout, picture.account);
  return picture;
}

}  // namespace pictures
