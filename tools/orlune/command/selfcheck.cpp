// orlune selfcheck: what this machine computes, against what the library's makers got.
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iostream>

#include "harness/family_digests.h"
#include "orlune/command/commands.h"

namespace front {
namespace {

// A folder of its own to work in, until it is left again.
class WorkFolder {
 public:
  WorkFolder() : former_(std::filesystem::current_path()) {
    std::string name = std::filesystem::temp_directory_path() / "orlune-XXXXXX";
    if (mkdtemp(name.data()) == nullptr) {
      throw std::runtime_error("no folder for the check in " + name + ": " + std::strerror(errno));
    }
    folder_ = name;
    std::filesystem::current_path(folder_);
  }
  WorkFolder(const WorkFolder&) = delete;
  WorkFolder& operator=(const WorkFolder&) = delete;
  ~WorkFolder() {
    std::error_code ignored;
    std::filesystem::current_path(former_, ignored);
    std::filesystem::remove_all(folder_, ignored);
  }

 private:
  std::filesystem::path former_, folder_;
};

std::vector<test::FamilyDigest> Compute() {
  const WorkFolder folder;
  return test::DigestsOfFamilies(std::cerr);
}

// The file that came with the program, from where the program is.
std::filesystem::path ShippedFile() {
  return std::filesystem::read_symlink("/proc/self/exe").parent_path() / ORLUNE_DIGESTS;
}

int WriteFile(const std::string& path) {
  const std::vector<test::FamilyDigest> digests = Compute();
  std::ofstream file(path);
  file << "# What 'orlune selfcheck' compares with: a number for the results of each family.\n";
  test::WriteDigests(digests, file);
  file.close();
  if (file) return ALL_WELL;
  std::cerr << "orlune: " << path << " cannot be written\n";
  return SOME_FAILED;
}

}  // namespace

int Run(const SelfcheckCommand& command) {
  if (!command.write.empty()) return WriteFile(command.write);
  const std::filesystem::path path =
      command.file.empty() ? ShippedFile() : std::filesystem::path(command.file);
  std::ifstream file(path);
  std::vector<test::FamilyDigest> expected;
  if (!test::ReadDigests(file, &expected)) {
    std::cerr << "orlune: " << path.string() << " is no list of digests that can be read\n";
    return SOME_FAILED;
  }
  const std::string family = test::FirstDifference(expected, Compute());
  if (!family.empty()) {
    std::cout << "The results of the family " << family << " are not those of " << path.string()
              << ".\n";
    return SOME_FAILED;
  }
  std::cout << "All " << expected.size() << " families give the results that they should.\n";
  return ALL_WELL;
}

}  // namespace front
