// orlune convert: a picture file in another format or with other pixels.
#include <algorithm>
#include <cctype>
#include <filesystem>
#include <iostream>

#include "orlune/commands.h"
#include "orlune/pictures.h"

namespace front {
namespace {

PictureFormat FormatOf(const ConvertCommand& command) {
  if (command.format) return *command.format;
  std::string ending = std::filesystem::path(command.to).extension().string();
  std::transform(ending.begin(), ending.end(), ending.begin(),
                 [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  if (ending == ".orln") return PictureFormat::Native;
  if (ending == ".tif" || ending == ".tiff") return PictureFormat::Tiff;
  if (ending == ".bmp") return PictureFormat::Bmp;
  throw std::invalid_argument("the ending '" + ending +
                              "' tells no format: use .orln, .tif or .bmp, or say --format");
}

// Throws when the format has no place for such pixels.
void CheckType(PictureFormat format, int32_t type) {
  const bool bytes = type == IMAGE_U8 || type == IMAGE_RGB;
  const bool fits = format == PictureFormat::Native || bytes ||
                    (format == PictureFormat::Tiff && type == IMAGE_I16);
  if (fits) return;
  const std::string holds =
      format == PictureFormat::Bmp ? "BMP holds u8 and rgb" : "TIFF holds u8, i16 and rgb";
  throw std::invalid_argument(holds + " pixels, not " + TypeName(type) +
                              ": choose --type u8, with --stretch if the values are not 0 to 255");
}

void Convert(const ConvertCommand& command) {
  const PictureFormat format = FormatOf(command);
  // Without a stretch, values are limited to what the wanted type holds: that is the cast's rule,
  // where reading into the type would keep the low bits.
  Picture picture =
      ReadPicture(command.from, {command.stretch ? Form::Gray : Form::AsStored, command.swapBytes});
  if (command.stretch) {
    picture.image = Stretch(picture.image);
    picture.palette.clear();
  }
  const int32_t stored = picture.image.Info().type;
  const int32_t wanted = command.type.value_or(stored);
  CheckType(format, wanted);
  if (wanted != stored && !picture.palette.empty()) {
    ApplyPalette(&picture);
  }
  Check(ZEL_Cast(picture.image, wanted));

  const ImageInfo info = picture.image.Info();
  if (format == PictureFormat::Bmp && wanted == IMAGE_U8 && info.width % 4 != 0) {
    // The rows of 8-bit files are written without the padding that readers of BMP expect.
    if (command.type) {
      throw std::invalid_argument(
          "8-bit BMP files need a width that 4 divides, and this picture is " +
          std::to_string(info.width) + " wide: choose --type rgb, or another format");
    }
    if (!picture.palette.empty()) ApplyPalette(&picture);
    Check(ZEL_Cast(picture.image, IMAGE_RGB));
    std::cerr << "orlune: " << command.to
              << ": written with 24 bits a pixel, since 4 does not divide "
              << "the width of " << info.width << '\n';
  }
  WritePicture(picture.image, command.to, format, picture.palette);
}

}  // namespace

int Run(const ConvertCommand& command) {
  try {
    Convert(command);
    return ALL_WELL;
  } catch (const std::exception& failure) {
    const auto* reported = dynamic_cast<const LibraryFailure*>(&failure);
    const bool writing = reported && reported->function() == "ZEL_WriteFile";
    const bool reading = reported && !writing;
    PrintFailure(reading ? command.from : command.to, failure);
    return reported ? SOME_FAILED : BAD_USE;
  }
}

}  // namespace front
