// orlune convert: a picture file in another format or with other pixels.
#include <iostream>
#include <utility>

#include "orlune/commands.h"
#include "orlune/output.h"

namespace front {
namespace {

void Convert(const ConvertCommand& command) {
  const PictureFormat format = command.format ? *command.format : FormatByEnding(command.to);
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

  if (command.type && !RowsReadBack(picture.image, format)) {
    throw std::invalid_argument(
        "8-bit BMP files need a width that 4 divides, and this picture is " +
        std::to_string(picture.image.Info().width) + " wide: choose --type rgb, or another format");
  }
  const std::string remark = WriteFitting(std::move(picture), command.to, format);
  if (!remark.empty()) std::cerr << "orlune: " << command.to << ": " << remark << '\n';
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
