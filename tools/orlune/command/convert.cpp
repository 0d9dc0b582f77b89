// orlune convert: a picture file in another format or with other pixels.
#include <iostream>
#include <utility>

#include "orlune/command/commands.h"
#include "orlune/shared/numbers.h"

namespace front {
namespace {

bool IsNumber(int32_t type) {
  return type == IMAGE_U8 || type == IMAGE_I16 || type == IMAGE_SGL;
}

// What the picture's values become in a type of a smaller range, and what a viewer shows of them.
std::string RemarkOn(const Image& image, int32_t type, Depth depth) {
  if (!IsNumber(image.Info().type) || (!IsNumber(type) && type != IMAGE_RGB)) return "";
  const Extremes extremes = ExtremesOf(image);
  const std::string values = "its values of " + Short(extremes.low) + " to " + Short(extremes.high);
  if (depth == Depth::AsImage && (type == IMAGE_U8 || type == IMAGE_RGB)) {
    if (extremes.low < 0 || extremes.high > 255) {
      return values + " are limited to 0 to 255; --stretch spreads them over that range";
    }
    if (extremes.high > 0 && extremes.high < 16) {
      return values + " look black in 8 bits; --stretch spreads them";
    }
  }
  if (depth == Depth::Unsigned16 && extremes.high > 0 && extremes.high < 4096) {
    return values + " look dark in 16 bits; --type u8 --stretch spreads them over 0 to 255";
  }
  return "";
}

struct Result {
  Image image;
  std::vector<RGBValue> palette;
  Depth depth;
  std::vector<std::string> remarks;
};

Result Converted(Loaded picture, const ConvertCommand& command, PictureFormat format) {
  std::vector<std::string> remarks = picture.account.losses;
  if (command.stretch) {
    const Extremes extremes = ExtremesOf(picture.image);
    picture.image = Stretch(picture.image, extremes);
    picture.palette.clear();
    remarks.push_back("values " + Short(extremes.low) + " to " + Short(extremes.high) +
                      " are spread over 0 to 255");
  }
  // Native files have no place for colours beside the pixels.
  if (format == PictureFormat::Native && !picture.palette.empty()) ApplyPalette(&picture);
  const int32_t stored = picture.image.Info().type;
  const bool unsigned16 = command.type == TYPE_U16;
  const int32_t wanted = unsigned16
                             ? (stored == IMAGE_SGL ? int32_t{IMAGE_SGL} : int32_t{IMAGE_I16})
                             : command.type.value_or(stored);
  const Depth depth = unsigned16     ? Depth::Unsigned16
                      : command.type ? Depth::AsImage
                                     : DepthOf(picture.account, picture.image);
  if (wanted != stored && !picture.palette.empty()) ApplyPalette(&picture);
  const std::string remark = RemarkOn(picture.image, wanted, depth);
  if (!remark.empty() && !command.stretch && picture.palette.empty()) remarks.push_back(remark);
  Check(ZEL_Cast(picture.image, wanted));
  return {std::move(picture.image), std::move(picture.palette), depth, std::move(remarks)};
}

}  // namespace

int Run(const ConvertCommand& command) {
  std::string concerned = command.from;
  try {
    const PictureFormat format = command.format ? *command.format : FormatByEnding(command.to);
    FilePlan plan;
    plan.Reads(command.from, "the picture to be converted");
    plan.Writes(command.to, "the result");
    // Without a stretch, values are limited to what the wanted type holds: that is the cast's rule.
    Loaded picture = ReadPicture(
        command.from,
        {.form = command.stretch ? Form::Gray : Form::AsStored, .swapBytes = command.swapBytes});
    const Result result = Converted(std::move(picture), command, format);
    concerned = command.to;
    WritePicture(result.image, result.palette, result.depth, command.to, format);
    for (const std::string& remark : result.remarks) {
      std::cerr << "orlune: " << command.to << ": " << remark << '\n';
    }
    return ALL_WELL;
  } catch (const std::invalid_argument& failure) {
    PrintFailure(command.to, failure);
    return BAD_USE;
  } catch (const std::exception& failure) {
    PrintFailure(concerned, failure);
    return SOME_FAILED;
  }
}

}  // namespace front
