// Native files, through the library.
#include "pictures/native.h"

#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <cstring>
#include <system_error>

#include "pictures/whole_file.h"

namespace pictures {
namespace {

constexpr size_t HEADER_BYTES = 512;

// Bytes in memory under a name that the library can open.
class NamedMemory {
 public:
  explicit NamedMemory(Bytes bytes) : descriptor_(::memfd_create("picture", MFD_CLOEXEC)) {
    if (descriptor_ < 0) throw std::system_error(errno, std::generic_category(), "memfd_create");
    for (size_t at = 0; at < bytes.size();) {
      const ssize_t count = ::write(descriptor_, bytes.data() + at, bytes.size() - at);
      if (count <= 0) {
        ::close(descriptor_);
        throw std::bad_alloc();
      }
      at += static_cast<size_t>(count);
    }
  }
  ~NamedMemory() { ::close(descriptor_); }
  NamedMemory(const NamedMemory&) = delete;
  NamedMemory& operator=(const NamedMemory&) = delete;
  std::string path() const { return "/proc/self/fd/" + std::to_string(descriptor_); }

 private:
  int descriptor_;
};

int32_t StoredType(const FileInfo& file) {
  switch (file.bitsPerPixel) {
    case 16:
      return IMAGE_I16;
    case 24:
      return IMAGE_RGB;
    case 32:
      return file.planes == 3 ? IMAGE_RGB : IMAGE_SGL;
    case 48:
    case 64:
      return IMAGE_COMPLEX;
    default:
      return IMAGE_U8;
  }
}

int32_t GrayType(int32_t stored) {
  if (stored == IMAGE_RGB) return IMAGE_U8;
  return stored == IMAGE_COMPLEX ? int32_t{IMAGE_SGL} : stored;
}

FileInfo InfoOf(const NamedMemory& memory, size_t bytes) {
  FileInfo info{};
  Check(ZEL_PtkFileInfo(memory.path().c_str(), &info));
  if (info.fileType != FILE_FORMAT_NATIVE) {
    throw BadFile("the native file has a damaged header, or is cut inside it");
  }
  const int64_t pixels = int64_t{info.width} * info.height * info.bitsPerPixel / 8;
  const int64_t there = static_cast<int64_t>(bytes) - static_cast<int64_t>(HEADER_BYTES);
  if (there < pixels) {
    throw BadFile("the native file is cut: its " + std::to_string(info.width) + " x " +
                  std::to_string(info.height) + " pixels take " + std::to_string(pixels) +
                  " bytes, and there are " + std::to_string(std::max<int64_t>(there, 0)));
  }
  return info;
}

Account AccountOf(const FileInfo& info) {
  Account account;
  account.format = "native";
  account.width = info.width;
  account.height = info.height;
  account.byteOrder = "big-endian";
  switch (StoredType(info)) {
    case IMAGE_U8:
      break;
    case IMAGE_I16:
      account.bits = 16;
      account.kind = "signed";
      account.byteOrder = "that of the machine";
      break;
    case IMAGE_SGL:
      account.bits = 32;
      account.kind = "float";
      account.byteOrder = "that of the machine";
      break;
    case IMAGE_COMPLEX:
      account.bits = info.bitsPerPixel / 2;
      account.samples = 2;
      account.kind = "complex";
      account.byteOrder = "that of the machine";
      break;
    default:
      account.samples = 3;
      account.kind = "colour";
  }
  return account;
}

}  // namespace

bool IsNative(Bytes file) {
  return file.size() >= 4 && std::memcmp(file.data(), "ORLN", 4) == 0;
}

Account NativeAccount(Bytes file) {
  const NamedMemory memory(file);
  return AccountOf(InfoOf(memory, file.size()));
}

Loaded ReadNative(Bytes file, const ReadSettings& settings) {
  const NamedMemory memory(file);
  const FileInfo info = InfoOf(memory, file.size());
  const int32_t stored = StoredType(info);
  Image read(settings.form == Form::Gray ? GrayType(stored) : stored, settings.border);
  Check(ZEL_ReadFile(read, memory.path().c_str(), 0, nullptr, nullptr));

  // Reading makes every width even; the column that it adds to an odd one is no part of the
  // picture.
  const ImageInfo from = read.Info();
  Image image = Image::ForNewPixels(from.type, settings.border, info.width, info.height);
  Check(ZEL_SetImageCalibration(image, from.unit, from.xStep, from.yStep));
  const ImageInfo to = image.Info();
  for (int32_t y = 0; y < info.height; ++y) {
    std::memcpy(Row<char>(to, y), Row<char>(from, y),
                static_cast<size_t>(info.width) * static_cast<size_t>(from.pixelBytes));
    if (settings.swapBytes && from.type == IMAGE_I16) {
      auto* row = Row<uint16_t>(to, y);
      std::transform(row, row + info.width, row,
                     [](uint16_t v) { return static_cast<uint16_t>(v << 8 | v >> 8); });
    }
  }
  return {AccountOf(info), std::move(image), {}, {}};
}

void WriteNative(const Image& image, const std::string& path) {
  constexpr int32_t LONGEST_SIDE = 0xFFFF;
  const ImageInfo info = image.Info();
  if (info.width > LONGEST_SIDE || info.height > LONGEST_SIDE) {
    throw std::invalid_argument("native files hold at most 65535 x 65535 pixels");
  }
  WholeFile file(path);
  if (!file.IsBeside()) {
    throw WriteFailure("native pictures go into ordinary files only");
  }
  Check(ZEL_WriteFile(image, file.beside().c_str(), FILE_FORMAT_NATIVE, nullptr, 0));
  file.Finish();
}

}  // namespace pictures
