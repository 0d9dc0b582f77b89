// A TIFF file in memory, as libtiff sees it.
#pragma once

#include <tiffio.h>

#include <memory>
#include <string>

#include "pictures/raster.h"

namespace pictures {

// What libtiff complains of, the first time since it was last asked.
class TiffComplaint {
 public:
  void Note(const char* format, va_list arguments);
  std::string Take(const std::string& otherwise);

 private:
  std::string text_;
};

// A file to be read.
class TiffInput {
 public:
  // Throws BadFile.
  explicit TiffInput(Bytes file);
  TiffInput(const TiffInput&) = delete;
  TiffInput& operator=(const TiffInput&) = delete;

  TIFF* handle() const { return handle_.get(); }
  uint64_t size() const { return file_.size(); }
  // "the TIFF file ...: what libtiff said"
  [[noreturn]] void Fail(const std::string& what);

  template <class T>
  T Field(uint32_t tag, T otherwise) const {
    T value{};
    return TIFFGetFieldDefaulted(handle(), tag, &value) != 0 ? value : otherwise;
  }

 private:
  static tmsize_t Read(thandle_t self, void* to, tmsize_t bytes);
  static tmsize_t Write(thandle_t self, void* from, tmsize_t bytes);
  static toff_t Seek(thandle_t self, toff_t offset, int whence);
  static int Close(thandle_t self);
  static toff_t Size(thandle_t self);

  struct Closer {
    void operator()(TIFF* tiff) const { TIFFClose(tiff); }
  };
  Bytes file_;
  uint64_t at_ = 0;
  TiffComplaint complaint_;
  std::unique_ptr<TIFF, Closer> handle_;
};

// Of libtiff's own list; "" for a number that it does not know.
std::string TiffCompressionName(uint16_t compression);

}  // namespace pictures
