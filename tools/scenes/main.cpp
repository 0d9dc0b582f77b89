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
#include "scenes/gauges.h"
#include "scenes/labels.h"
#include "scenes/scenes.h"
#include "scenes/shafts.h"

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
  const ImageType gray = picture.bits == 8 ? IMAGE_U8 : IMAGE_I16;
  Check(ZEL_Create(&image, picture.colours.empty() ? gray : IMAGE_RGB, 0), name);
  if (picture.colours.empty()) {
    Check(ZEL_ArrayToImage(image, ARRAY_U16, picture.pixels.data(), picture.width, picture.height),
          name);
  } else {
    Check(ZEL_ArrayToColorImage(image, picture.colours.data(), picture.width, picture.height),
          name);
  }
  Check(ZEL_WriteFile(image, name.c_str(), FormatOf(file), nullptr, 0), name);
  Check(ZEL_Dispose(image), name);
}

void WriteScenes(const std::filesystem::path& folder, const std::filesystem::path& truthFile,
                 const std::filesystem::path& outlineFile) {
  std::filesystem::create_directories(folder);
  std::ofstream outline(outlineFile);
  outline << "File,Number,AreaPixels,Perimeter,CentreOfMassX,CentreOfMassY,Colour\n";
  std::ofstream truth(truthFile);
  truth << "File,Number,Parts,Holes,AreaPixels,CentreOfMassX,CentreOfMassY\n";
  for (const scenes::Scene& scene : scenes::AllScenes()) {
    WritePicture(scenes::Render(scene.setup, scene.parts), folder / scene.file);
    const std::vector<scenes::Truth> groups = scenes::TruthOf(scene.setup, scene.parts);
    const std::vector<scenes::Truth> outlines = TruthOfOutlines(scene.setup, scene.parts);
    int number = 0;
    for (const scenes::Truth& part : outlines) {
      const char* colour = scene.parts[static_cast<size_t>(number)].tint.name;
      outline << scene.file << ',' << ++number << ',' << part.area << ',' << part.perimeter << ','
              << part.centre.x << ',' << part.centre.y << ',' << colour << '\n';
    }
    number = 0;
    for (const scenes::Truth& group : groups) {
      truth << scene.file << ',' << ++number << ',' << group.parts << ',' << group.holes << ','
            << group.area << ',' << group.centre.x << ',' << group.centre.y << '\n';
    }
    std::printf("%-12s %4d x %d, %2d bits, %2zu particles: %s\n", scene.file.c_str(),
                scene.setup.width, scene.setup.height,
                scene.setup.camera.bits * (scene.setup.camera.colour ? 3 : 1), groups.size(),
                scene.subject.c_str());
  }
  if (!outline.flush()) throw std::runtime_error(outlineFile.string() + " could not be written");
  if (!truth.flush()) throw std::runtime_error(truthFile.string() + " could not be written");
}

void WriteGauges(const std::filesystem::path& folder) {
  std::filesystem::create_directories(folder);
  for (const scenes::Gauge& gauge : scenes::AllGauges()) {
    WritePicture(gauge.picture, folder / gauge.file);
    std::printf("%-12s a gauge that says %s\n", gauge.file.c_str(), gauge.says.c_str());
  }
}

void WriteLabels(const std::filesystem::path& folder) {
  std::filesystem::create_directories(folder);
  for (const scenes::Label& label : scenes::AllLabels()) {
    WritePicture(label.picture, folder / label.file);
    std::printf("%-12s a bar code of %s\n", label.file.c_str(), label.digits.c_str());
  }
}

void WriteShafts(const std::filesystem::path& folder) {
  std::filesystem::create_directories(folder);
  const std::filesystem::path truthFile = folder / "truth.csv";
  std::ofstream truth(truthFile);
  truth << "file,name,size\n";
  for (const scenes::Shaft& shaft : scenes::AllShafts()) {
    WritePicture(shaft.picture, folder / shaft.file);
    truth << shaft.file << ",length," << shaft.Length() << '\n';
    for (const scenes::Section& section : shaft.sections) {
      truth << shaft.file << ',' << section.name << ',' << section.diameter << '\n';
    }
    std::printf("%-12s a shaft of %zu sections\n", shaft.file.c_str(), shaft.sections.size());
  }
  if (!truth.flush()) throw std::runtime_error(truthFile.string() + " could not be written");
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 3 && argc != 4) {
    std::cerr << "usage: orlune_scenes FOLDER TRUTH [OUTLINES]\n"
                 "Writes inspection scenes into the folder, and CSV files with what is in them:\n"
                 "groups of touching parts, and each part alone with its holes.\n";
    return 2;
  }
  try {
    ZEL_SetErrorMode(ERROR_MODE_SILENT);
    WriteScenes(argv[1], argv[2], argc == 4 ? argv[3] : "/dev/null");
    WriteGauges(std::filesystem::path(argv[1]) / "gauges");
    WriteLabels(std::filesystem::path(argv[1]) / "labels");
    WriteShafts(std::filesystem::path(argv[1]) / "shafts");
  } catch (const std::exception& failure) {
    std::cerr << "orlune_scenes: " << failure.what() << '\n';
    return 1;
  }
}
