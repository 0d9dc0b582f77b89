// Picture files written in the format that their names tell.
#include "orlune/output.h"

#include <stdexcept>

#include "orlune/words.h"

namespace front {

PictureFormat FormatByEnding(const std::filesystem::path& path) {
  const std::string ending = Lower(path.extension().string());
  if (ending == ".orln") return PictureFormat::Native;
  if (ending == ".tif" || ending == ".tiff") return PictureFormat::Tiff;
  if (ending == ".bmp") return PictureFormat::Bmp;
  throw std::invalid_argument("the ending " + Quoted(ending) +
                              " tells no format: use .orln, .tif or .bmp, or say --format");
}

std::string EndingOf(PictureFormat format) {
  switch (format) {
    case PictureFormat::Native:
      return ".orln";
    case PictureFormat::Tiff:
      return ".tif";
    case PictureFormat::Bmp:
      return ".bmp";
  }
  return "";
}

void CheckType(PictureFormat format, int32_t type) {
  const bool bytes = type == IMAGE_U8 || type == IMAGE_RGB;
  const bool fits = format == PictureFormat::Native || bytes ||
                    (format == PictureFormat::Tiff && type == IMAGE_I16);
  if (fits) return;
  const std::string holds =
      format == PictureFormat::Bmp ? "BMP holds u8 and rgb" : "TIFF holds u8, i16 and rgb";
  throw std::invalid_argument(holds + " pixels, not " + TypeName(type) +
                              ": 'orlune convert --type u8' makes such, with --stretch if the "
                              "values are not 0 to 255");
}

bool RowsReadBack(const Image& image, PictureFormat format) {
  const ImageInfo info = image.Info();
  return format != PictureFormat::Bmp || info.type != IMAGE_U8 || info.width % 4 == 0;
}

std::string WriteFitting(Picture picture, const std::filesystem::path& path, PictureFormat format) {
  const ImageInfo info = picture.image.Info();
  CheckType(format, info.type);
  std::string remark;
  if (!RowsReadBack(picture.image, format)) {
    if (!picture.palette.empty()) ApplyPalette(&picture);
    Check(ZEL_Cast(picture.image, IMAGE_RGB));
    remark = "written with 24 bits a pixel, since 4 does not divide the width of " +
             std::to_string(info.width);
  }
  WritePicture(picture.image, path, format, picture.palette);
  return remark;
}

}  // namespace front
