// Pictures of files as images of the library.
#include "pictures/image.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <memory>

#include "pictures/native.h"
#include "pictures/readers.h"
#include "pictures/source.h"

namespace pictures {
namespace {

struct Reader {
  bool (*recognises)(Bytes file);
  Picture (*read)(Bytes file, int32_t page, Want want);
};
constexpr Reader READERS[] = {
    {IsTiff, ReadTiff}, {IsPng, ReadPng}, {IsJpeg, ReadJpeg}, {IsBmp, ReadBmp}};

const Reader& ReaderFor(Bytes file) {
  for (const Reader& reader : READERS) {
    if (reader.recognises(file)) return reader;
  }
  throw BadFile("this is no TIFF, PNG, JPEG, BMP or native picture");
}

template <class T>
const T* SamplesOf(const Raster& raster, int64_t y) {
  return reinterpret_cast<const T*>(raster.Row(y));
}

// Calls a generic function with a null pointer to the type of the samples.
template <class Function>
auto ForSample(Sample sample, Function function) {
  switch (sample) {
    case Sample::U8:
      return function(static_cast<uint8_t*>(nullptr));
    case Sample::U16:
      return function(static_cast<uint16_t*>(nullptr));
    case Sample::U32:
      return function(static_cast<uint32_t*>(nullptr));
    case Sample::I8:
      return function(static_cast<int8_t*>(nullptr));
    case Sample::I16:
      return function(static_cast<int16_t*>(nullptr));
    case Sample::I32:
      return function(static_cast<int32_t*>(nullptr));
    case Sample::F32:
      return function(static_cast<float*>(nullptr));
    case Sample::F64:
      break;
  }
  return function(static_cast<double*>(nullptr));
}

// Fills an image of To from a raster, a pixel from its first sample on.
template <class To, class From, class Rule>
Image Filled(const Raster& raster, int32_t type, int32_t border, Rule rule) {
  Image image = Image::ForNewPixels(type, border, raster.width, raster.height);
  const ImageInfo info = image.Info();
  for (int32_t y = 0; y < raster.height; ++y) {
    const From* from = SamplesOf<From>(raster, y);
    To* to = Row<To>(info, y);
    for (int32_t x = 0; x < raster.width; ++x, from += raster.channels) to[x] = rule(from);
  }
  return image;
}

// Whole numbers beyond 2^24 and doubles may lie between floats.
template <class From>
Image FloatImage(const Raster& raster, int32_t border, Account* account) {
  int64_t rounded = 0;
  Image image = Filled<float, From>(raster, IMAGE_SGL, border, [&](const From* v) {
    const auto value = static_cast<float>(*v);
    const auto exact = static_cast<double>(*v);
    if (static_cast<double>(value) != exact && exact == exact) ++rounded;
    return value;
  });
  if (rounded > 0) {
    account->losses.push_back(Count(rounded, "pixel") + " rounded to a 32-bit float");
  }
  return image;
}

bool HasBeyondI16(const Raster& raster) {
  for (int64_t y = 0; y < raster.height; ++y) {
    const auto* row = SamplesOf<uint16_t>(raster, y);
    if (std::any_of(row, row + raster.width, [](uint16_t v) { return v > INT16_MAX; })) return true;
  }
  return false;
}

// Bytes as they are.
Image ByteImage(const Raster& raster, int32_t border) {
  Image image = Image::ForNewPixels(IMAGE_U8, border, raster.width, raster.height);
  const ImageInfo info = image.Info();
  for (int32_t y = 0; y < raster.height; ++y) {
    std::copy_n(SamplesOf<uint8_t>(raster, y), raster.width, Row<uint8_t>(info, y));
  }
  return image;
}

Image OneNumberAPixel(const Raster& raster, int32_t border, Account* account) {
  return ForSample(raster.sample, [&](auto* sample) {
    using From = std::remove_pointer_t<decltype(sample)>;
    if constexpr (std::is_same_v<From, uint8_t>) {
      return ByteImage(raster, border);
    } else if constexpr (std::is_same_v<From, int8_t> || std::is_same_v<From, int16_t>) {
      return Filled<int16_t, From>(raster, IMAGE_I16, border,
                                   [](const From* v) { return int16_t{*v}; });
    } else if constexpr (std::is_same_v<From, uint16_t>) {
      if (HasBeyondI16(raster)) return FloatImage<From>(raster, border, account);
      return Filled<int16_t, From>(raster, IMAGE_I16, border,
                                   [](const From* v) { return static_cast<int16_t>(*v); });
    } else {
      return FloatImage<From>(raster, border, account);
    }
  });
}

// The mean of the three: cut in bytes, as the library takes it, exact to a float's figures in
// others.
Image GrayOfColours(const Raster& raster, int32_t border) {
  return ForSample(raster.sample, [&](auto* sample) {
    using From = std::remove_pointer_t<decltype(sample)>;
    if constexpr (std::is_same_v<From, uint8_t>) {
      return Filled<uint8_t, From>(raster, IMAGE_U8, border, [](const From* v) {
        return static_cast<uint8_t>((v[0] + v[1] + v[2]) / 3);
      });
    } else {
      return Filled<float, From>(raster, IMAGE_SGL, border, [](const From* v) {
        return static_cast<float>(
            (static_cast<double>(v[0]) + static_cast<double>(v[1]) + static_cast<double>(v[2])) /
            3);
      });
    }
  });
}

// Colours of images have 8 bits: those of deeper unsigned samples are rounded, others have no
// agreed range.
Image Colours(const Raster& raster, int32_t bits, int32_t border, Account* account) {
  const double most = std::ldexp(1.0, bits) - 1;
  return ForSample(raster.sample, [&](auto* sample) -> Image {
    using From = std::remove_pointer_t<decltype(sample)>;
    if constexpr (!std::is_unsigned_v<From>) {
      throw BadFile(
          "colours of signed numbers or floats have no agreed range of 8 bits; 'inspect' "
          "and 'filter' take their mean");
    } else {
      if (bits > 8) {
        account->losses.push_back("colours of " + std::to_string(bits) +
                                  " bits a sample are rounded to 8");
      }
      const auto byte = [&](From v) {
        if (bits == 8) return static_cast<uint32_t>(v);
        return static_cast<uint32_t>(std::min(255.0, static_cast<double>(v) * 255 / most + 0.5));
      };
      return Filled<RGBValue, From>(raster, IMAGE_RGB, border, [&](const From* v) {
        return byte(v[0]) << 16 | byte(v[1]) << 8 | byte(v[2]);
      });
    }
  });
}

void SwapSamples(Raster* raster) {
  if (BytesOf(raster->sample) != 2) return;
  for (size_t i = 0; i + 1 < raster->bytes.size(); i += 2) {
    std::swap(raster->bytes[i], raster->bytes[i + 1]);
  }
}

// Pixels of a palette picture are numbers of colours; their gray is the mean of the colour.
void PaletteToGray(Raster* raster) {
  uint8_t gray[256];
  std::transform(raster->palette.begin(), raster->palette.end(), gray, [](uint32_t c) {
    return static_cast<uint8_t>(((c >> 16 & 255) + (c >> 8 & 255) + (c & 255)) / 3);
  });
  std::transform(raster->bytes.begin(), raster->bytes.end(), raster->bytes.begin(),
                 [&](uint8_t number) { return gray[number]; });
  raster->palette.clear();
}

// The colours of a picture that is read as gray; none where it has none.
std::optional<Image> ColoursOf(const Raster& raster, Account* account) {
  if (raster.channels == 1 && raster.palette.empty()) return std::nullopt;
  Loaded coloured{{}, ImageOf(raster, {}, account), raster.palette, {}};
  if (!raster.palette.empty()) ApplyPalette(&coloured);
  return std::move(coloured.image);
}

std::optional<Image> ColoursOfNative(Bytes file) {
  Loaded stored = ReadNative(file, {});
  if (stored.image.Info().type != IMAGE_RGB) return std::nullopt;
  return std::move(stored.image);
}

}  // namespace

Image ImageOf(const Raster& raster, const ReadSettings& settings, Account* account) {
  if (raster.channels == 1) return OneNumberAPixel(raster, settings.border, account);
  if (settings.form == Form::Gray) return GrayOfColours(raster, settings.border);
  // Low-bit colours of BMP files are bytes already.
  const int32_t bits = raster.sample == Sample::U8 && account->format == "BMP" ? 8 : account->bits;
  return Colours(raster, bits, settings.border, account);
}

Loaded ReadPicture(const std::string& name, const ReadSettings& settings) {
  const Source source = SourceOf(name);
  const FileBytes bytes = ReadBytes(source);
  if (IsNative(bytes)) {
    OnlyPage(source.page, "native");
    Loaded loaded = ReadNative(bytes, settings);
    if (settings.colours) loaded.colours = ColoursOfNative(bytes);
    return loaded;
  }
  Picture picture = ReaderFor(bytes).read(bytes, source.page, Want::PixelsOrLent);
  Raster& raster = picture.raster;
  if (settings.swapBytes) SwapSamples(&raster);
  std::optional<Image> colours;
  if (settings.colours) colours = ColoursOf(raster, &picture.account);
  if (settings.form == Form::Gray && !raster.palette.empty()) PaletteToGray(&raster);
  Image image = ImageOf(raster, settings, &picture.account);
  return {std::move(picture.account), std::move(image), std::move(raster.palette),
          std::move(colours)};
}

FileAccount DescribeFile(const std::string& name) {
  const Source source = SourceOf(name);
  const FileBytes bytes = ReadBytes(source);
  FileAccount file;
  file.bytes = static_cast<int64_t>(bytes.size());
  if (IsNative(bytes)) {
    OnlyPage(source.page, "native");
    file.pages.push_back(NativeAccount(bytes));
    return file;
  }
  const Reader& reader = ReaderFor(bytes);
  if (source.pageNamed) {
    file.pages.push_back(reader.read(bytes, source.page, Want::Account).account);
    return file;
  }
  int32_t pages = 1;
  for (int32_t page = 1; page <= pages; ++page) {
    try {
      file.pages.push_back(reader.read(bytes, page, Want::Account).account);
      pages = file.pages.back().pages;
    } catch (const BadFile& bad) {
      if (page == 1) throw;
      file.complaint = bad.what();
      break;
    }
  }
  return file;
}

Raster RasterOf(const Image& image, const std::vector<RGBValue>& palette) {
  const ImageInfo info = image.Info();
  const auto copied = [&](Sample sample) {
    Raster raster = MakeRaster(info.width, info.height, 1, sample);
    for (int32_t y = 0; y < info.height; ++y) {
      std::memcpy(raster.Row(y), Row<char>(info, y), static_cast<size_t>(raster.RowBytes()));
    }
    return raster;
  };
  switch (info.type) {
    case IMAGE_U8: {
      Raster raster = copied(Sample::U8);
      raster.palette = palette;
      return raster;
    }
    case IMAGE_I16:
      return copied(Sample::I16);
    case IMAGE_SGL:
      return copied(Sample::F32);
    case IMAGE_RGB: {
      Raster raster = MakeRaster(info.width, info.height, 3, Sample::U8);
      for (int32_t y = 0; y < info.height; ++y) {
        const RGBValue* from = Row<RGBValue>(info, y);
        uint8_t* to = raster.Row(y);
        for (int32_t x = 0; x < info.width; ++x, to += 3) {
          to[0] = static_cast<uint8_t>(from[x] >> 16);
          to[1] = static_cast<uint8_t>(from[x] >> 8);
          to[2] = static_cast<uint8_t>(from[x]);
        }
      }
      return raster;
    }
    default:
      throw std::invalid_argument("complex pixels go into native files only");
  }
}

void ApplyPalette(Loaded* picture) {
  const ImageInfo from = picture->image.Info();
  Image coloured(IMAGE_RGB, from.border, from.width, from.height);
  Check(ZEL_SetImageCalibration(coloured, from.unit, from.xStep, from.yStep));
  const ImageInfo to = coloured.Info();
  for (int32_t y = 0; y < from.height; ++y) {
    const uint8_t* source = Row<uint8_t>(from, y);
    std::transform(source, source + from.width, Row<RGBValue>(to, y),
                   [&](uint8_t v) { return picture->palette[v] & 0xFFFFFF; });
  }
  picture->image = std::move(coloured);
  picture->palette.clear();
}

}  // namespace pictures
