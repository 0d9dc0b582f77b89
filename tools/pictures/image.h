// Pictures of files as images of the library.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "pictures/library.h"
#include "pictures/raster.h"

namespace pictures {

enum class Form {
  AsStored,  // the image type that holds the file's pixels with the least loss
  Gray       // one number a pixel: the mean of the colours, the magnitude of complex values
};

struct ReadSettings {
  Form form = Form::AsStored;
  bool swapBytes = false;  // exchange the bytes of 16-bit samples
  int32_t border = 0;      // of the image
  bool colours = false;    // wanted too, where the form leaves them out
};

// A picture in the library's hands.
struct Loaded {
  Account account;
  Image image;
  std::vector<RGBValue> palette;  // 256 colours of an IMAGE_U8, or none
  std::optional<Image> colours;   // IMAGE_RGB of the same size, if wanted; none of a gray picture
};

// A file by its name, "file.tif#3" for a page of it, "-" for the standard input. Throws BadFile,
// and LibraryFailure.
Loaded ReadPicture(const std::string& name, const ReadSettings& settings);

// The accounts of all pages, without the pixels. A page that is damaged ends the list with a
// BadFile.
struct FileAccount {
  std::vector<Account> pages;
  std::string complaint;  // about the page behind the last one; empty for none
  int64_t bytes = 0;
};
FileAccount DescribeFile(const std::string& name);

// Samples above 32767 that would be negative in IMAGE_I16 make an image of floats, which hold them
// exactly; what an image does not hold exactly is added to the account's losses.
Image ImageOf(const Raster& raster, const ReadSettings& settings, Account* account);

// Rows of the image without gaps: U8, I16, F32, or U8 in three channels. Throws
// std::invalid_argument for complex pixels.
Raster RasterOf(const Image& image, const std::vector<RGBValue>& palette);

// Gives a palette picture its real colours: the image becomes RGB, the palette goes.
void ApplyPalette(Loaded* picture);

// Calls a generic function with null pointer to the type of a scalar image's pixels.
template <class Function>
auto ForPixelType(int32_t type, Function function) {
  switch (type) {
    case IMAGE_U8:
      return function(static_cast<uint8_t*>(nullptr));
    case IMAGE_I16:
      return function(static_cast<int16_t*>(nullptr));
    case IMAGE_SGL:
      return function(static_cast<float*>(nullptr));
    default:
      throw std::logic_error("only images of one number a pixel");
  }
}

}  // namespace pictures
