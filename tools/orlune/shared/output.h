// Picture files written in the format that their names tell.
#pragma once

#include <filesystem>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "orlune/shared/pictures.h"
#include "pictures/whole_file.h"

namespace front {

enum class PictureFormat { Native, Tiff, Png, Bmp };

// Every format with its name on the command line and its usual ending.
struct FormatRow {
  PictureFormat format;
  std::string_view name, ending;
  std::string_view holds;  // for messages
};
const std::vector<FormatRow>& AllFormats();

// By the ending of the name. Throws std::invalid_argument where it tells none.
PictureFormat FormatByEnding(const std::filesystem::path& path);

std::string EndingOf(PictureFormat format);  // ".tif"

// Pixels on their way into a file: those of the image, or whole numbers of 0 to 65535 in an image
// that holds them as signed numbers or floats.
enum class Depth { AsImage, Unsigned16 };

// What the pixels of a picture are best written as: 16-bit files stay such files.
Depth DepthOf(const Account& account, const Image& image);

// Throws std::invalid_argument when the format has no place for such pixels.
void CheckType(PictureFormat format, int32_t imageType, Depth depth);

// Whole at its place or not at all; "-" is the standard output. Throws as CheckType, WriteFailure
// and LibraryFailure.
void WritePicture(const Image& image, const std::vector<RGBValue>& palette, Depth depth,
                  const std::string& path, PictureFormat format);

// Which files a run reads and writes. No file may be both, and no file may be written twice.
class FilePlan {
 public:
  void Reads(std::string path, std::string what) {
    read_.emplace_back(std::move(path), std::move(what));
  }
  // Throws std::invalid_argument that tells what the file is needed for.
  void Writes(const std::string& path, const std::string& what);

 private:
  void TakeRead();

  // Where nothing is written, nobody asks what files these are.
  std::vector<std::pair<std::string, std::string>> read_;  // path and use
  std::map<std::string, std::string> uses_;                // by identity
};

// A name in the folder, made of the picture's: "part-annotated.bmp", and "part-annotated-2.bmp" if
// another picture of the run has that one.
class NamesInFolder {
 public:
  NamesInFolder(std::string folder, std::string suffix)
      : folder_(std::move(folder)), suffix_(std::move(suffix)) {}
  std::string NameFor(const std::string& picture);

 private:
  std::filesystem::path folder_;
  std::string suffix_;               // "-annotated.bmp"
  std::map<std::string, int> used_;  // by the picture's name
};

// Throws WriteFailure.
void MakeFolder(const std::string& folder);

}  // namespace front
