// Reading and writing files in memory (/dev/shm): TIFF beside libtiff, BMP beside OpenCV, both
// uncompressed, and the native format alone.
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "benchmarks/pairs.h"

#if defined(HAVE_OPENCV)
#include <opencv2/imgcodecs.hpp>
#endif
#if defined(HAVE_LIBTIFF)
#include <tiffio.h>
#endif

namespace {

constexpr int32_t NATIVE = 1;
constexpr int32_t TIFF_FORMAT = 2;
constexpr int32_t BMP = 3;

// The files of the run, removed at its end.
class Folder {
 public:
  Folder() {
    const bool memory = std::filesystem::is_directory("/dev/shm");
    std::string name = memory ? "/dev/shm/ptk_bench_XXXXXX" : "/tmp/ptk_bench_XXXXXX";
    if (!mkdtemp(name.data())) std::abort();
    path_ = name;
  }
  ~Folder() { std::filesystem::remove_all(path_); }
  std::string File(const std::string& name) const { return path_ + "/" + name; }

 private:
  std::string path_;
};

const Folder& TheFolder() {
  static const Folder folder;
  return folder;
}

void Write(ImageRef image, const std::string& path, int32_t format) {
  if (ZEL_WriteFile(image, path.c_str(), format, nullptr, 0) != 0) std::abort();
}

void Read(ImageRef image, const std::string& path) {
  if (ZEL_ReadFile(image, path.c_str(), 0, nullptr, nullptr) != 0) std::abort();
}

struct Size {
  int32_t width, height;
};

std::string NameOf(const char* kind, Size size, const char* suffix) {
  return TheFolder().File(std::string(kind) + std::to_string(size.width) + suffix);
}

void RegisterNative(int32_t type, const char* kind, Size size) {
  const std::string path = NameOf(kind, size, ".orl");
  const ImageRef image = bench::MakeImage(type, size.width, size.height);
  const ImageRef back = bench::MakeDestination(type);
  Write(image, path, NATIVE);
  bench::Pair("write_native", kind, size.width, size.height, "",
              [=] { Write(image, path, NATIVE); }, {});
  bench::Pair("read_native", kind, size.width, size.height, "", [=] { Read(back, path); }, {});
}

#if defined(HAVE_LIBTIFF)
struct Samples {
  uint16_t count, bits;
  std::vector<uint8_t> bytes;
};

void TiffWrite(const std::string& path, Size size, const Samples& samples) {
  TIFF* file = TIFFOpen(path.c_str(), "w");
  if (!file) std::abort();
  TIFFSetField(file, TIFFTAG_IMAGEWIDTH, static_cast<uint32_t>(size.width));
  TIFFSetField(file, TIFFTAG_IMAGELENGTH, static_cast<uint32_t>(size.height));
  TIFFSetField(file, TIFFTAG_BITSPERSAMPLE, samples.bits);
  TIFFSetField(file, TIFFTAG_SAMPLESPERPIXEL, samples.count);
  TIFFSetField(file, TIFFTAG_PHOTOMETRIC,
               samples.count == 3 ? PHOTOMETRIC_RGB : PHOTOMETRIC_MINISBLACK);
  TIFFSetField(file, TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG);
  TIFFSetField(file, TIFFTAG_COMPRESSION, COMPRESSION_NONE);
  TIFFSetField(file, TIFFTAG_ROWSPERSTRIP, static_cast<uint32_t>(size.height));
  auto* bytes = const_cast<uint8_t*>(samples.bytes.data());
  if (TIFFWriteEncodedStrip(file, 0, bytes, static_cast<tmsize_t>(samples.bytes.size())) < 0) {
    std::abort();
  }
  TIFFClose(file);
}

void TiffRead(const std::string& path, Samples* samples) {
  TIFF* file = TIFFOpen(path.c_str(), "r");
  if (!file) std::abort();
  auto at = samples->bytes.data();
  for (uint32_t strip = 0; strip < TIFFNumberOfStrips(file); strip++) {
    const tmsize_t got = TIFFReadEncodedStrip(file, strip, at, -1);
    if (got < 0) std::abort();
    at += got;
  }
  TIFFClose(file);
}
#endif

void RegisterTiff(int32_t type, const char* kind, Size size) {
  const std::string ours = NameOf(kind, size, ".tif");
  const ImageRef image = bench::MakeImage(type, size.width, size.height);
  const ImageRef back = bench::MakeDestination(type);
  Write(image, ours, TIFF_FORMAT);
  std::function<void()> theirWrite;
  std::function<void()> theirRead;
#if defined(HAVE_LIBTIFF)
  const std::string theirs = NameOf(kind, size, "_libtiff.tif");
  auto samples = std::make_shared<Samples>();
  samples->count = type == IMAGE_RGB ? 3 : 1;
  samples->bits = type == IMAGE_I16 ? 16 : 8;
  samples->bytes.assign(static_cast<size_t>(size.width) * static_cast<size_t>(size.height) *
                            samples->count * samples->bits / 8,
                        77);
  TiffWrite(theirs, size, *samples);
  theirWrite = [=] { TiffWrite(theirs, size, *samples); };
  theirRead = [=] { TiffRead(theirs, samples.get()); };
#endif
  bench::Pair(
      "write_tiff", kind, size.width, size.height, "libtiff",
      [=] { Write(image, ours, TIFF_FORMAT); }, theirWrite);
  bench::Pair(
      "read_tiff", kind, size.width, size.height, "libtiff", [=] { Read(back, ours); }, theirRead);
}

void RegisterBmp(int32_t type, const char* kind, Size size) {
  const std::string ours = NameOf(kind, size, ".bmp");
  const ImageRef image = bench::MakeImage(type, size.width, size.height);
  const ImageRef back = bench::MakeDestination(type);
  Write(image, ours, BMP);
  std::function<void()> theirWrite;
  std::function<void()> theirRead;
#if defined(HAVE_OPENCV)
  const std::string theirs = NameOf(kind, size, "_opencv.bmp");
  const cv::Mat mat(size.height, size.width, type == IMAGE_RGB ? CV_8UC3 : CV_8UC1,
                    cv::Scalar(1, 2, 3));
  cv::imwrite(theirs, mat);
  theirWrite = [=] { cv::imwrite(theirs, mat); };
  theirRead = [=] { cv::imread(theirs, cv::IMREAD_UNCHANGED); };
#endif
  bench::Pair(
      "write_bmp", kind, size.width, size.height, "opencv", [=] { Write(image, ours, BMP); },
      theirWrite);
  bench::Pair(
      "read_bmp", kind, size.width, size.height, "opencv", [=] { Read(back, ours); }, theirRead);
}

void RegisterFiles() {
  for (const Size size : {Size{64, 64}, {1920, 1080}, {4096, 4096}}) {
    RegisterTiff(IMAGE_U8, "u8", size);
    RegisterTiff(IMAGE_I16, "i16", size);
    RegisterTiff(IMAGE_RGB, "rgb24", size);
    RegisterBmp(IMAGE_U8, "u8", size);
    RegisterBmp(IMAGE_RGB, "rgb24", size);
    RegisterNative(IMAGE_U8, "u8", size);
    RegisterNative(IMAGE_RGB, "rgb32", size);
  }
}

const bench::Family family(&RegisterFiles);

}  // namespace
