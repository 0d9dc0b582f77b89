// Picture files written in the format that their names tell.
#include "orlune/shared/output.h"

#include <algorithm>
#include <cmath>
#include <stdexcept>

#include "orlune/shared/words.h"
#include "pictures/native.h"
#include "pictures/source.h"
#include "pictures/writers.h"

namespace front {
namespace {

namespace fs = std::filesystem;

const FormatRow& RowOf(PictureFormat format) {
  const auto& rows = AllFormats();
  return *std::find_if(rows.begin(), rows.end(),
                       [&](const FormatRow& row) { return row.format == format; });
}

constexpr double MOST_UNSIGNED16 = 65535;

// The image's values as unsigned samples. Throws std::invalid_argument for values that are none.
Raster Unsigned16Of(const Image& image) {
  const ImageInfo info = image.Info();
  Raster raster = MakeRaster(info.width, info.height, 1, Sample::U16);
  ForPixelType(info.type, [&](auto* pixel) {
    using T = std::remove_pointer_t<decltype(pixel)>;
    for (int32_t y = 0; y < info.height; ++y) {
      const T* from = Row<T>(info, y);
      auto* to = reinterpret_cast<uint16_t*>(raster.Row(y));
      for (int32_t x = 0; x < info.width; ++x) {
        const auto value = static_cast<double>(from[x]);
        if (!(value >= 0 && value <= MOST_UNSIGNED16) || value != std::floor(value)) {
          throw std::invalid_argument(
              "unsigned 16-bit pixels are whole numbers of 0 to 65535, and this picture has "
              "others");
        }
        to[x] = static_cast<uint16_t>(value);
      }
    }
  });
  return raster;
}

bool FitsUnsigned16(const Image& image) {
  const ImageInfo info = image.Info();
  bool fits = true;
  ForPixelType(info.type, [&](auto* pixel) {
    using T = std::remove_pointer_t<decltype(pixel)>;
    for (int32_t y = 0; fits && y < info.height; ++y) {
      const T* row = Row<T>(info, y);
      fits = std::all_of(row, row + info.width, [](T v) {
        const auto value = static_cast<double>(v);
        return value >= 0 && value <= MOST_UNSIGNED16 && value == std::floor(value);
      });
    }
  });
  return fits;
}

}  // namespace

const std::vector<FormatRow>& AllFormats() {
  static const std::vector<FormatRow> ROWS = {
      {PictureFormat::Native, "native", ".orln", "native files hold all"},
      {PictureFormat::Tiff, "tiff", ".tif", "TIFF holds u8, u16, i16, sgl and rgb"},
      {PictureFormat::Png, "png", ".png", "PNG holds u8, u16 and rgb"},
      {PictureFormat::Bmp, "bmp", ".bmp", "BMP holds u8 and rgb"}};
  return ROWS;
}

PictureFormat FormatByEnding(const fs::path& path) {
  const std::string ending = Lower(path.extension().string());
  if (ending == ".tiff") return PictureFormat::Tiff;
  for (const FormatRow& row : AllFormats()) {
    if (ending == row.ending) return row.format;
  }
  throw std::invalid_argument("the ending " + Quoted(ending) +
                              " tells no format: use .orln, .tif, .png or .bmp, or say --format");
}

std::string EndingOf(PictureFormat format) {
  return std::string(RowOf(format).ending);
}

Depth DepthOf(const Account& account, const Image& image) {
  const int32_t type = image.Info().type;
  const bool deep = type == IMAGE_I16 || (type == IMAGE_SGL && account.kind == "gray");
  return deep && account.kind != "float" && FitsUnsigned16(image) ? Depth::Unsigned16
                                                                  : Depth::AsImage;
}

void CheckType(PictureFormat format, int32_t imageType, Depth depth) {
  const bool bytes = imageType == IMAGE_U8 || imageType == IMAGE_RGB;
  const bool deep = depth == Depth::Unsigned16;
  const bool number = imageType == IMAGE_I16 || imageType == IMAGE_SGL;
  const bool fits = format == PictureFormat::Native || bytes ||
                    (format == PictureFormat::Tiff && number) ||
                    (format == PictureFormat::Png && number && deep);
  if (fits) return;
  throw std::invalid_argument(std::string(RowOf(format).holds) + " pixels, not " +
                              (deep ? "u16" : TypeName(imageType)) +
                              ": 'orlune convert --type u8' makes such, with --stretch if the "
                              "values are not 0 to 255");
}

void WritePicture(const Image& image, const std::vector<RGBValue>& palette, Depth depth,
                  const std::string& path, PictureFormat format) {
  CheckType(format, image.Info().type, depth);
  if (format == PictureFormat::Native) {
    WriteNative(image, path);
    return;
  }
  const Raster raster = depth == Depth::Unsigned16 ? Unsigned16Of(image) : RasterOf(image, palette);
  switch (format) {
    case PictureFormat::Tiff:
      return WriteWhole(path, EncodeTiff(raster));
    case PictureFormat::Png:
      return WriteWhole(path, EncodePng(raster));
    default:
      return WriteWhole(path, EncodeBmp(raster));
  }
}

void FilePlan::TakeRead() {
  for (auto& [path, what] : read_) {
    const Source source = SourceOf(path);
    if (!source.IsStandardInput()) uses_[IdentityOf(source.path)] = std::move(what);
  }
  read_.clear();
}

void FilePlan::Writes(const std::string& path, const std::string& what) {
  TakeRead();
  if (path == STANDARD_STREAM) {
    const auto [use, free] = uses_.try_emplace(path, what);
    if (free) return;
    throw std::invalid_argument(what + " cannot go to standard output: that is " + use->second);
  }
  // Devices take what comes, from any number of sides.
  std::error_code ignored;
  const fs::file_status status = fs::status(path, ignored);
  if (fs::exists(status) && !fs::is_regular_file(status) && !fs::is_directory(status)) return;
  const auto [use, free] = uses_.try_emplace(IdentityOf(path), what);
  if (!free) {
    throw std::invalid_argument(what + " cannot go to " + path + ": that is " + use->second);
  }
}

std::string NamesInFolder::NameFor(const std::string& picture) {
  const Source source = SourceOf(picture);
  std::string stem =
      source.IsStandardInput() ? "standard-input" : fs::path(source.path).stem().string();
  if (source.pageNamed) stem += "-" + std::to_string(source.page);
  const int copies = ++used_[stem];
  if (copies > 1) {
    const size_t dot = suffix_.rfind('.');
    stem.append(suffix_, 0, dot).append("-").append(std::to_string(copies));
    stem.append(suffix_, dot);
  } else {
    stem += suffix_;
  }
  return (folder_ / stem).string();
}

void MakeFolder(const std::string& folder) {
  std::error_code failed;
  fs::create_directories(folder, failed);
  if (failed) throw WriteFailure("the folder cannot be made: " + failed.message());
}

}  // namespace front
