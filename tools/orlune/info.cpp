// orlune info: what picture files hold.
#include <iomanip>
#include <iostream>

#include "orlune/commands.h"
#include "orlune/numbers.h"

namespace front {
namespace {

void PrintInfo(const std::string& path) {
  const Picture picture = ReadPicture(path, {});
  const ImageInfo image = picture.image.Info();
  std::cout << path << '\n';
  const auto line = [](const char* name) -> std::ostream& {
    return std::cout << "  " << std::left << std::setw(10) << name << std::right;
  };
  line("format") << FormatName(picture.file) << '\n';
  line("size") << picture.file.width << " x " << picture.file.height << " pixels, "
               << std::filesystem::file_size(path) << " bytes in the file\n";
  line("pixels") << KindName(picture.file) << ", read as " << TypeName(image.type);
  if (!picture.palette.empty()) std::cout << ", with a palette";
  std::cout << '\n';
  if (image.type <= IMAGE_SGL && image.width > 0) {
    const Extremes extremes = ExtremesOf(picture.image);
    line("values") << Short(extremes.low) << " to " << Short(extremes.high) << ", mean "
                   << Short(extremes.mean) << '\n';
  }
  if (image.xStep != 1 || image.yStep != 1) {
    line("scale") << Short(static_cast<double>(image.xStep)) << " x "
                  << Short(static_cast<double>(image.yStep)) << " units a pixel\n";
  }
}

}  // namespace

int Run(const InfoCommand& command) {
  int status = ALL_WELL;
  for (const std::string& path : command.files) {
    try {
      PrintInfo(path);
    } catch (const std::exception& failure) {
      PrintFailure(path, failure);
      status = SOME_FAILED;
    }
  }
  return status;
}

}  // namespace front
