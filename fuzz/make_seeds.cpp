// Writes the seeds of the fuzz targets: small valid files of every format and type behind the
// bytes that a target takes for itself, and call sequences. usage: make_seeds FOLDER
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "harness/bad_files.h"
#include "harness/checks.h"
#include "harness/memory_files.h"
#include "harness/printed_code.h"
#include "harness/test_image.h"

namespace {

using Bytes = std::vector<uint8_t>;

std::filesystem::path folder;

void Write(const std::string& target, const std::string& name, const Bytes& bytes) {
  const std::filesystem::path place = folder / target;
  std::filesystem::create_directories(place);
  std::ofstream file(place / name, std::ios::binary);
  file.write(reinterpret_cast<const char*>(bytes.data()),
             static_cast<std::streamsize>(bytes.size()));
  file.close();
  test::Require(file.good(), "a seed cannot be written");
}

Bytes Behind(Bytes head, const Bytes& tail) {
  head.insert(head.end(), tail.begin(), tail.end());
  return head;
}

// A file of ours for each type that the format takes, read into each type.
void FileSeeds(const std::string& target, int32_t format) {
  test::MemoryFiles files;
  for (int32_t type = IMAGE_U8; type <= IMAGE_RGB; type++) {
    const test::TestImage image(type, 9 + type, 5, 0);
    if (ZEL_WriteFile(image, "seed", format, nullptr, 0) != 0) continue;
    for (uint8_t into = 0; into < 5; into++) {
      const auto options = static_cast<uint8_t>(into + 8 * (into % 4));
      Write(target, "written-" + std::to_string(type) + "-into-" + std::to_string(into),
            Behind({options, 0x22}, files.Get("seed")));
    }
    test::Random random(static_cast<uint64_t>(type) + 1);
    const Bytes& file = files.Get("seed");
    const auto size = static_cast<uint16_t>(file.size());
    Bytes chain = Behind({0, static_cast<uint8_t>(size >> 8), static_cast<uint8_t>(size)}, file);
    for (size_t i = 0; i < 500; i++) chain.push_back(static_cast<uint8_t>(random.Next()));
    Write("chain", "format-" + std::to_string(format) + "-type-" + std::to_string(type), chain);
  }
}

std::string ReaderOf(const Bytes& file) {
  if (file[0] == 'O') return "read_native";
  return file[0] == 'B' ? "read_bmp" : "read_tiff";
}

// Good files of every layout, each into a type of its own, and the broken and odd ones.
void TableSeeds() {
  uint32_t number = 0;
  for (const Bytes& file : bad_files::GoodFiles()) {
    for (uint8_t type = 0; type < 5; type++) {
      const std::string name = "good-" + std::to_string(number++) + "-into-" + std::to_string(type);
      Write(ReaderOf(file), name, Behind({type, 0x22}, file));
    }
  }
  for (const bad_files::Case& one : bad_files::AllCases()) {
    if (one.file.size() < 6 || one.file.size() > 4000) continue;
    if (one.file[0] == 'B') Write("front_bmp", "table-" + std::to_string(number), one.file);
    const auto options = static_cast<uint8_t>(number);
    Write(ReaderOf(one.file), "table-" + std::to_string(number++),
          Behind({options, 0x22}, one.file));
  }
}

// Kinds of BMP that only the front reads: run lengths, bit fields, the oldest header, 1 to 32 bits.
void FrontBmpSeeds() {
  struct Kind {
    uint8_t headerBytes, bits, compression, height;
    Bytes behind;  // palette or masks, and pixels
  };
  const Kind kinds[] = {
      {40, 8, 1, 2, {0, 0, 0, 0, 9, 9, 9, 0, 3, 1, 0, 0, 0, 2, 1, 0, 0, 3, 0, 1, 1, 0, 0, 1}},
      {40, 4, 2, 2, {0, 0, 0, 0, 9, 9, 9, 0, 4, 0x10, 0, 0, 0, 4, 0x01, 0x10, 0, 1}},
      {40, 16, 3, 1, {0, 0xF8, 0, 0, 0xE0, 7, 0, 0, 0x1F, 0, 0, 0, 1, 2, 3, 4, 5, 6, 7, 8}},
      {40, 32, 0, 1, Bytes(16, 77)},
      {40, 1, 0, 1, {0, 0, 0, 0, 255, 255, 255, 0, 0x60, 0, 0, 0}},
      {40, 2, 0, 1, Bytes(20, 0x1B)},
      {12, 4, 0, 1, Bytes(52, 3)}};
  int number = 0;
  for (const Kind& kind : kinds) {
    Bytes file = {'B', 'M'};
    const auto put = [&](uint64_t value, int bytes) {
      for (int i = 0; i < bytes; i++) file.push_back(static_cast<uint8_t>(value >> (8 * i)));
    };
    const bool oldest = kind.headerBytes == 12;
    const int side = oldest ? 2 : 4;
    put(0, 8);
    put(0, 4);  // pixels begin where the palette ends
    put(kind.headerBytes, 4);
    put(4, side);
    put(kind.height, side);
    put(1, 2);
    put(kind.bits, 2);
    if (!oldest) {
      put(kind.compression, 4);
      for (int i = 0; i < 3; i++) put(0, 4);
      put(kind.bits <= 8 && kind.bits != 2 ? 2 : 0, 4);
      put(0, 4);
    }
    Write("front_bmp", "kind-" + std::to_string(number++), Behind(file, kind.behind));
  }
}

// Bytes for every pixel class, type and stretch.
void RawSeeds() {
  for (uint8_t pixelClass = 0; pixelClass < 16; pixelClass++) {
    test::Random random(pixelClass + 1u);
    const auto choice = static_cast<uint8_t>(pixelClass % 5 + (pixelClass % 2) * 0x40);
    Bytes raw = {choice, pixelClass, 1, 0, static_cast<uint8_t>(pixelClass % 3), 10, 90, 1, 9, 7};
    for (int i = 0; i < 600; i++) raw.push_back(static_cast<uint8_t>(random.Next()));
    Write("read_raw", "class-" + std::to_string(pixelClass), raw);
  }
}

// Regions of one to four contours over runs of pixels, in each pixel type.
void DialSeeds() {
  for (uint8_t seed = 0; seed < 24; seed++) {
    test::Random random(seed + 1u);
    Bytes bytes = {static_cast<uint8_t>(0x80 | seed % 3), 60, 50, static_cast<uint8_t>(seed % 4)};
    for (int i = 0; i < 400; i++) bytes.push_back(static_cast<uint8_t>(random.Next()));
    Write("dials", "region-" + std::to_string(seed), bytes);
  }
}

void CallSeeds() {
  for (uint64_t seed = 1; seed <= 60; seed++) {
    test::Random random(seed);
    Bytes calls(200 + seed * 10);
    for (uint8_t& byte : calls) byte = static_cast<uint8_t>(random.Next());
    Write("api", "calls-" + std::to_string(seed), calls);
  }
}

// Each sound code as bars, as one region and as a part of one, in each pixel type.
void BarcodeSeeds() {
  for (const char* code : {test::PRINTED_CODE128, test::PRINTED_INTERLEAVED, test::PRINTED_CODE39,
                           test::PRINTED_CODE93, test::PRINTED_EAN8, test::PRINTED_CODABAR,
                           test::PRINTED_EAN13, test::PRINTED_MSI, test::PRINTED_UPCA}) {
    int32_t modules = 10;
    int light = 5;
    Bytes bars;
    for (size_t i = 0; code[i] != 0; i += 2) {
      bars.push_back(static_cast<uint8_t>(light << 4 | (code[i] - '0')));
      light = code[i + 1] == 0 ? 5 : code[i + 1] - '0';
      modules += code[i] - '0' + light;
      if (code[i + 1] == 0) break;
    }
    bars.push_back(0x50);
    for (uint8_t type = 0; type < 3; type++) {
      const auto columns = static_cast<uint8_t>(modules);
      Write("barcode", std::string(code).substr(0, 20) + "-" + std::to_string(type),
            Behind({static_cast<uint8_t>(0xE0 | type), columns, 3}, bars));
      Write("barcode", std::string(code).substr(0, 20) + "-part-" + std::to_string(type),
            Behind({static_cast<uint8_t>(0xB0 | type), columns, 9, 20, 4, 224, 18, 3}, bars));
    }
  }
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) {
    std::fprintf(stderr, "usage: make_seeds FOLDER\n");
    return 2;
  }
  folder = argv[1];
  ZEL_SetErrorMode(1);
  FileSeeds("read_native", 1);
  FileSeeds("read_tiff", 2);
  FileSeeds("read_bmp", 3);
  TableSeeds();
  FrontBmpSeeds();
  RawSeeds();
  BarcodeSeeds();
  DialSeeds();
  CallSeeds();
  ZEL_CloseSys();
  return 0;
}
