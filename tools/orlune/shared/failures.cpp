// How failures are told, with a hint where the library's message is short of one.
#include <iostream>

#include "orlune/command/commands.h"
#include "orlune/shared/readable.h"

namespace front {
namespace {

std::string Hint(const LibraryFailure& failure) {
  if (failure.function() == "ZEL_WriteFile" && failure.number() == ZEL_ERR_FILE_OPEN) {
    return "is there such a folder, and may you write to it?";
  }
  if (failure.function() == "ZEL_WriteFile") return "is the disk full?";
  return failure.number() == ZEL_ERR_MEMORY_FULL ? "the picture is too large for this machine" : "";
}

}  // namespace

std::string FailureText(const std::string& file, const std::exception& failure) {
  std::string text = LineText(file) + ": ";
  if (dynamic_cast<const std::bad_alloc*>(&failure) != nullptr) return text + "not enough memory";
  text += failure.what();
  if (const auto* reported = dynamic_cast<const LibraryFailure*>(&failure)) {
    const std::string hint = Hint(*reported);
    if (!hint.empty()) text += "; " + hint;
  }
  return text;
}

void PrintFailure(const std::string& file, const std::exception& failure) {
  std::cerr << "orlune: " << FailureText(file, failure) << '\n';
}

std::vector<std::string> WithAllPages(const std::vector<std::string>& files) {
  const std::string mark = "#all";
  std::vector<std::string> names;
  for (const std::string& file : files) {
    const bool all = file.size() > mark.size() && file.ends_with(mark);
    if (!all) {
      names.push_back(file);
      continue;
    }
    const std::string path = file.substr(0, file.size() - mark.size());
    const int32_t pages = DescribeFile(path + "#1").pages.front().pages;
    for (int32_t page = 1; page <= pages; ++page) {
      names.push_back(path + "#" + std::to_string(page));
    }
  }
  return names;
}

}  // namespace front
