// orlune_scenes: writes the inspection scenes as picture files, and what is truly in them.
#include <cstdio>
#include <cstring>
#include <exception>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <stdexcept>

#include "orlune_ptk.h"
#include "pictures/writers.h"
#include "scenes/scenes.h"

namespace {

void Check(int32_t status, const std::string& file) {
  if (status == 0) return;
  char function[ERROR_PROCEDURE_BYTES];
  ZEL_GetLastError(function);
  throw std::runtime_error(file + ": " + function + " returned " + std::to_string(status));
}

int32_t FormatOf(const std::filesystem::path& file) {
  const std::string ending = file.extension().string();
  if (ending == ".orln") return FILE_FORMAT_NATIVE;
  return ending == ".tif" ? FILE_FORMAT_TIFF : FILE_FORMAT_BMP;
}

// Deep TIFF files in the byte order that their header tells, as other programs read them.
void WriteDeepTiff(const scenes::Picture& picture, const std::string& name) {
  pictures::Raster raster =
      pictures::MakeRaster(picture.width, picture.height, 1, pictures::Sample::U16);
  std::memcpy(raster.bytes.data(), picture.pixels.data(), raster.bytes.size());
  const std::vector<uint8_t> bytes = pictures::EncodeTiff(raster);
  std::ofstream file(name, std::ios::binary);
  file.write(reinterpret_cast<const char*>(bytes.data()),
             static_cast<std::streamsize>(bytes.size()));
  if (!file.flush()) throw std::runtime_error(name + " could not be written");
}

void WritePicture(const scenes::Picture& picture, const std::filesystem::path& file) {
  const std::string name = file.string();
  if (picture.bits > 8 && FormatOf(file) == FILE_FORMAT_TIFF) {
    WriteDeepTiff(picture, name);
    return;
  }
  ImageRef image = 0;
  Check(ZEL_Create(&image, picture.bits == 8 ? IMAGE_U8 : IMAGE_I16, 0), name);
  Check(ZEL_ArrayToImage(image, ARRAY_U16, picture.pixels.data(), picture.width, picture.height),
        name);
  Check(ZEL_WriteFile(image, name.c_str(), FormatOf(file), nullptr, 0), name);
  Check(ZEL_Dispose(image), name);
}

void WriteScenes(const std::filesystem::path& folder, const std::filesystem::path& truthFile) {
  std::filesystem::create_directories(folder);
  std::ofstream truth(truthFile);
  truth << "File,Number,Parts,Holes,AreaPixels,CentreOfMassX,CentreOfMassY\n";
  for (const scenes::Scene& scene : scenes::AllScenes()) {
    WritePicture(scenes::Render(scene.setup, scene.parts), folder / scene.file);
    const std::vector<scenes::Truth> groups = scenes::TruthOf(scene.setup, scene.parts);
    int number = 0;
    for (const scenes::Truth& group : groups) {
      truth << scene.file << ',' << ++number << ',' << group.parts << ',' << group.holes << ','
            << group.area << ',' << group.centre.x << ',' << group.centre.y << '\n';
    }
    std::printf("%-12s %4d x %d, %2d bits, %2zu particles: %s\n", scene.file.c_str(),
                scene.setup.width, scene.setup.height, scene.setup.camera.bits, groups.size(),
                scene.subject.c_str());
  }
  if (!truth.flush()) throw std::runtime_error(truthFile.string() + " could not be written");
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 3) {
    std::cerr << "usage: orlune_scenes FOLDER TRUTH\n"
                 "Writes inspection scenes into the folder, and a CSV file with what is in them.\n";
    return 2;
  }
  try {
    ZEL_SetErrorMode(ERROR_MODE_SILENT);
    WriteScenes(argv[1], argv[2]);
  } catch (const std::exception& failure) {
    std::cerr << "orlune_scenes: " << failure.what() << '\n';
    return 1;
  }
}
