// How failures are told, with a hint where the library's message is short of one.
#include <filesystem>
#include <iostream>

#include "orlune/commands.h"
#include "orlune/library.h"

namespace front {
namespace {

std::string Hint(const std::string& file, const LibraryFailure& failure) {
  std::error_code ignored;
  if (failure.function() == "ZEL_WriteFile") {
    return failure.number() == ZEL_ERR_FILE_OPEN
               ? "is there such a folder, and may you write to it?"
               : "";
  }
  switch (failure.number()) {
    case ZEL_ERR_FILE_INFO:
      if (!std::filesystem::exists(file, ignored)) return "there is no such file";
      if (std::filesystem::is_directory(file, ignored)) return "this is a folder";
      return "this is no ordinary file, or it is above 2 GiB";
    case ZEL_ERR_FILE_OPEN:
      return "may you read it?";
    case ZEL_ERR_FILE_UNSUPPORTED:
      return "this is no TIFF, BMP or native picture";
    case ZEL_ERR_BAD_FILE_FORMAT:
      return "TIFF files must be uncompressed and complete";
    case ZEL_ERR_BAD_FILE_HEADER:
      return "the file is damaged, or of a kind that is not read";
    case ZEL_ERR_MEMORY_FULL:
      return failure.function() == "ZEL_Label" ? "more than 65535 pieces: the threshold finds noise"
                                               : "";
    default:
      return "";
  }
}

}  // namespace

void PrintFailure(const std::string& file, const std::exception& failure) {
  std::cerr << "orlune: " << file << ": " << failure.what();
  if (const auto* reported = dynamic_cast<const LibraryFailure*>(&failure)) {
    const std::string hint = Hint(file, *reported);
    if (!hint.empty()) std::cerr << "; " << hint;
  }
  std::cerr << '\n';
}

}  // namespace front
