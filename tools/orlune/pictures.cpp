// Picture files as images, in the form that a task wants.
#include "orlune/pictures.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>

namespace front {
namespace {

bool IsColour(const FileInfo& file) {
  return file.bitsPerPixel == 24 || (file.bitsPerPixel == 32 && file.planes == 3);
}

int32_t StoredType(const FileInfo& file) {
  if (IsColour(file)) return IMAGE_RGB;
  switch (file.bitsPerPixel) {
    case 16:
      return IMAGE_I16;
    case 32:
      return IMAGE_SGL;
    case 48:
    case 64:
      return IMAGE_COMPLEX;
    default:
      return IMAGE_U8;
  }
}

int32_t GrayType(const FileInfo& file) {
  switch (StoredType(file)) {
    case IMAGE_I16:
      return IMAGE_I16;
    case IMAGE_SGL:
    case IMAGE_COMPLEX:
      return IMAGE_SGL;
    default:
      return IMAGE_U8;
  }
}

// Reading makes every width even. The column that it adds to an odd one is no part of the picture,
// and would be found as dark objects.
Image WithoutAddedColumn(Image image, int32_t width) {
  const ImageInfo from = image.Info();
  if (from.width == width) return image;
  Image trimmed(from.type, from.border, width, from.height);
  Check(ZEL_SetImageCalibration(trimmed, from.unit, from.xStep, from.yStep));
  const ImageInfo to = trimmed.Info();
  const size_t rowBytes = static_cast<size_t>(width) * static_cast<size_t>(from.pixelBytes);
  for (int32_t y = 0; y < from.height; ++y)
    std::memcpy(Row<char>(to, y), Row<char>(from, y), rowBytes);
  return trimmed;
}

void SwapBytes(const Image& image) {
  const ImageInfo info = image.Info();
  for (int32_t y = 0; y < info.height; ++y) {
    uint16_t* row = Row<uint16_t>(info, y);
    std::transform(row, row + info.width, row,
                   [](uint16_t v) { return static_cast<uint16_t>(v << 8 | v >> 8); });
  }
}

bool IsGrayRamp(const std::vector<RGBValue>& palette) {
  for (uint32_t i = 0; i < palette.size(); ++i) {
    if ((palette[i] & 0xFFFFFF) != i * 0x010101) return false;
  }
  return true;
}

// Pixels of a palette picture are numbers of colours; their gray is the mean of the colour.
void PaletteToGray(const Image& image, const std::vector<RGBValue>& palette) {
  uint8_t gray[FILE_TABLE_ENTRIES];
  std::transform(palette.begin(), palette.end(), gray, [](RGBValue c) {
    return static_cast<uint8_t>(((c >> 16 & 255) + (c >> 8 & 255) + (c & 255)) / 3);
  });
  const ImageInfo info = image.Info();
  for (int32_t y = 0; y < info.height; ++y) {
    uint8_t* row = Row<uint8_t>(info, y);
    std::transform(row, row + info.width, row, [&](uint8_t v) { return gray[v]; });
  }
}

template <class T>
void StretchRows(const ImageInfo& from, const ImageInfo& to, const Extremes& extremes) {
  const double low = extremes.low, high = extremes.high;
  const double scale = high > low ? 255.0 / (high - low) : 0.0;
  for (int32_t y = 0; y < from.height; ++y) {
    const T* source = Row<T>(from, y);
    std::transform(source, source + from.width, Row<uint8_t>(to, y), [&](T v) {
      const double level = (static_cast<double>(v) - low) * scale + 0.5;
      return static_cast<uint8_t>(level >= 255 ? 255 : level >= 0 ? level : 0);
    });
  }
}

}  // namespace

Picture ReadPicture(const std::filesystem::path& path, const ReadSettings& settings) {
  FileInfo file{};
  Check(ZEL_PtkFileInfo(path.c_str(), &file));
  Image image(settings.form == Form::Gray ? GrayType(file) : StoredType(file), settings.border);
  std::vector<RGBValue> palette(FILE_TABLE_ENTRIES);
  int32_t colours = 0;
  Check(ZEL_ReadFile(image, path.c_str(), 1, palette.data(), &colours));

  const int32_t type = image.Info().type;
  if (colours == 0 || type != IMAGE_U8 || IsGrayRamp(palette)) palette.clear();
  if (settings.swapBytes && file.bitsPerPixel == 16) SwapBytes(image);
  if (settings.form == Form::Gray && !palette.empty()) PaletteToGray(image, palette);
  return {file, WithoutAddedColumn(std::move(image), file.width), std::move(palette)};
}

void WritePicture(const Image& image, const std::filesystem::path& path, PictureFormat format,
                  const std::vector<RGBValue>& palette) {
  Check(ZEL_WriteFile(image, path.c_str(), static_cast<int32_t>(format),
                      palette.empty() ? nullptr : palette.data(),
                      static_cast<int32_t>(palette.size())));
}

void ApplyPalette(Picture* picture) {
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

std::string FormatName(const FileInfo& file) {
  switch (file.fileType) {
    case FILE_FORMAT_NATIVE:
      return "native";
    case FILE_FORMAT_TIFF:
      return "TIFF";
    case FILE_FORMAT_BMP:
      return "BMP";
    default:
      return "unknown";
  }
}

std::string KindName(const FileInfo& file) {
  const std::string bits = std::to_string(file.bitsPerPixel) + "-bit ";
  switch (StoredType(file)) {
    case IMAGE_RGB:
      return bits + "colour";
    case IMAGE_SGL:
      return bits + "float";
    case IMAGE_COMPLEX:
      return bits + "complex";
    default:
      return bits + "gray";
  }
}

std::string TypeName(int32_t imageType) {
  static constexpr const char* NAMES[] = {"u8", "i16", "sgl", "complex", "rgb"};
  return imageType >= IMAGE_U8 && imageType <= IMAGE_RGB ? NAMES[imageType] : "opaque";
}

Extremes ExtremesOf(const Image& image) {
  HistogramReport report;
  Check(ZEL_Histogram(image, 0, 1, 0, 0, nullptr, &report));
  return {report.min, report.max, report.mean};
}

Image Stretch(const Image& gray) {
  const ImageInfo from = gray.Info();
  const Extremes extremes = ExtremesOf(gray);
  Image stretched(IMAGE_U8, from.border, from.width, from.height);
  Check(ZEL_SetImageCalibration(stretched, from.unit, from.xStep, from.yStep));
  const ImageInfo to = stretched.Info();
  switch (from.type) {
    case IMAGE_U8:
      StretchRows<uint8_t>(from, to, extremes);
      break;
    case IMAGE_I16:
      StretchRows<int16_t>(from, to, extremes);
      break;
    case IMAGE_SGL:
      StretchRows<float>(from, to, extremes);
      break;
    default:
      throw std::logic_error("only gray images can be stretched");
  }
  return stretched;
}

}  // namespace front
