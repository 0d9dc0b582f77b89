// Reading and writing files in memory: TIFF beside libtiff, BMP beside OpenCV, the native format
// alone; all without compression.
#include <tiffio.h>

#include <cstdlib>
#include <filesystem>
#include <opencv2/imgcodecs.hpp>
#include <opencv2/imgproc.hpp>
#include <string>

#include "benchmarks/pairs.h"

namespace {

using bench::Images;
using bench::Mats;

constexpr char NOTES[] = R"(
Files lie in the memory file system and are written over and over. The peers write and read the same
layouts: libtiff one strip through `TIFFWriteEncodedStrip` and `TIFFReadEncodedStrip`, OpenCV
`imwrite` and `imread`. Colour pixels have four bytes in our images and three in the peers'. libtiff
copies 16-bit samples as they lie, while our files have them in the other order. Writing is bound by
the system, which makes and gives back a page for every 4096 bytes, for everybody.
)";

constexpr int32_t NATIVE = 1;
constexpr int32_t TIFF_FILE = 2;
constexpr int32_t BMP = 3;

constexpr char LIBTIFF[] = "libtiff";

// The files of the process, removed at its end.
class Folder {
 public:
  Folder() {
    const bool memory = std::filesystem::is_directory("/dev/shm");
    path_ = memory ? "/dev/shm/ptk_bench_XXXXXX" : "/tmp/ptk_bench_XXXXXX";
    if (!mkdtemp(path_.data())) std::abort();
  }
  ~Folder() { std::filesystem::remove_all(path_); }
  std::string File(const char* name) const { return path_ + "/" + name; }

 private:
  std::string path_;
};

template <int32_t format>
int32_t Write(Images& i) {
  return ZEL_WriteFile(i.a, i.path.c_str(), format, nullptr, 0);
}

int32_t Read(Images& i) {
  return ZEL_ReadFile(i.to, i.path.c_str(), 0, nullptr, nullptr);
}

void TiffWrite(Mats& m) {
  TIFF* file = TIFFOpen(m.path.c_str(), "w");
  if (!file) std::abort();
  TIFFSetField(file, TIFFTAG_IMAGEWIDTH, static_cast<uint32_t>(m.other.cols));
  TIFFSetField(file, TIFFTAG_IMAGELENGTH, static_cast<uint32_t>(m.other.rows));
  TIFFSetField(file, TIFFTAG_BITSPERSAMPLE, static_cast<int>(m.other.elemSize1() * 8));
  TIFFSetField(file, TIFFTAG_SAMPLESPERPIXEL, m.other.channels());
  TIFFSetField(file, TIFFTAG_PHOTOMETRIC,
               m.other.channels() == 3 ? PHOTOMETRIC_RGB : PHOTOMETRIC_MINISBLACK);
  TIFFSetField(file, TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG);
  TIFFSetField(file, TIFFTAG_COMPRESSION, COMPRESSION_NONE);
  TIFFSetField(file, TIFFTAG_ROWSPERSTRIP, static_cast<uint32_t>(m.other.rows));
  const auto size = static_cast<tmsize_t>(m.other.total() * m.other.elemSize());
  if (TIFFWriteEncodedStrip(file, 0, m.other.data, size) < 0) std::abort();
  TIFFClose(file);
}

void TiffRead(Mats& m) {
  TIFF* file = TIFFOpen(m.path.c_str(), "r");
  if (!file) std::abort();
  uint8_t* to = m.to.data;
  for (uint32_t strip = 0; strip < TIFFNumberOfStrips(file); strip++) {
    const tmsize_t size = TIFFReadEncodedStrip(file, strip, to, -1);
    if (size < 0) std::abort();
    to += size;
  }
  TIFFClose(file);
}

void BmpWrite(Mats& m) {
  cv::imwrite(m.path, m.other);
}

void BmpRead(Mats& m) {
  m.to = cv::imread(m.path, cv::IMREAD_UNCHANGED);
}

// The peer's samples as they lie in the file, room to read them, and a file of each side.
template <int32_t format>
int32_t MakeFiles(Images& i, Mats& m) {
  static const Folder folder;
  constexpr const char* suffix = format == NATIVE ? ".orl" : format == TIFF_FILE ? ".tif" : ".bmp";
  i.path = folder.File("ours") + suffix;
  m.path = folder.File("theirs") + suffix;
  m.other = m.a;
  if (i.type == IMAGE_RGB) cv::cvtColor(m.a, m.other, cv::COLOR_BGRA2BGR);
  m.to.create(m.other.size(), m.other.type());
  if (format == TIFF_FILE) TiffWrite(m);
  if (format == BMP) BmpWrite(m);
  return Write<format>(i);
}

const std::vector<bench::Pair> PAIRS = {
    {.operation = "write_tiff",
     .kinds = {{IMAGE_U8}, {IMAGE_I16}, {IMAGE_RGB}},
     .prepare = MakeFiles<TIFF_FILE>,
     .ours = Write<TIFF_FILE>,
     .peer = LIBTIFF,
     .theirs = TiffWrite},
    {.operation = "read_tiff",
     .kinds = {{IMAGE_U8}, {IMAGE_I16}, {IMAGE_RGB}},
     .prepare = MakeFiles<TIFF_FILE>,
     .ours = Read,
     .peer = LIBTIFF,
     .theirs = TiffRead},
    {.operation = "write_bmp",
     .kinds = {{IMAGE_U8}, {IMAGE_RGB}},
     .prepare = MakeFiles<BMP>,
     .ours = Write<BMP>,
     .theirs = BmpWrite},
    {.operation = "read_bmp",
     .kinds = {{IMAGE_U8}, {IMAGE_RGB}},
     .prepare = MakeFiles<BMP>,
     .ours = Read,
     .theirs = BmpRead},
    {.operation = "write_native",
     .kinds = {{IMAGE_U8}, {IMAGE_RGB}},
     .prepare = MakeFiles<NATIVE>,
     .ours = Write<NATIVE>},
    {.operation = "read_native",
     .kinds = {{IMAGE_U8}, {IMAGE_RGB}},
     .prepare = MakeFiles<NATIVE>,
     .ours = Read},
};

const bench::Registration FILES({"files", "Reading and writing files", NOTES, PAIRS});

}  // namespace
