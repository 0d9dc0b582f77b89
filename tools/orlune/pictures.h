// Picture files as images, in the form that a task wants.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "orlune/library.h"

namespace front {

enum class Form {
  AsStored,  // the image type that holds the file's pixels without loss
  Gray       // one number a pixel: the mean of the colours, the magnitude of complex values
};

enum class PictureFormat : int32_t {
  Native = FILE_FORMAT_NATIVE,
  Tiff = FILE_FORMAT_TIFF,
  Bmp = FILE_FORMAT_BMP
};

struct ReadSettings {
  Form form = Form::AsStored;
  bool swapBytes = false;  // exchange the bytes of 16-bit pixels
  int32_t border = 0;      // of the image
};

struct Picture {
  FileInfo file{};
  Image image;                    // of the file's own size
  std::vector<RGBValue> palette;  // 256 colours, or none
};

// Throws LibraryFailure.
Picture ReadPicture(const std::filesystem::path& path, const ReadSettings& settings);

// The palette, where there is one, goes with 8-bit pixels. Throws LibraryFailure.
void WritePicture(const Image& image, const std::filesystem::path& path, PictureFormat format,
                  const std::vector<RGBValue>& palette);

// Gives a palette picture its real colours: the image becomes RGB, the palette goes.
void ApplyPalette(Picture* picture);

std::string FormatName(const FileInfo& file);  // "TIFF"
std::string KindName(const FileInfo& file);    // "16-bit gray"
std::string TypeName(int32_t imageType);       // "i16"

// An 8-bit copy of a gray image: its darkest pixel becomes 0, its brightest 255.
Image Stretch(const Image& gray);

struct Extremes {
  double low = 0, high = 0, mean = 0;
};
// Of an image of type U8, I16 or SGL.
Extremes ExtremesOf(const Image& image);

}  // namespace front
