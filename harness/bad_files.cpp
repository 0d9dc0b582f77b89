// The table: what is broken, wild or odd about each file, and what reading it gives.
#include "harness/bad_files.h"

#include <cmath>
#include <limits>
#include <utility>

#include "harness/file_bytes.h"
#include "harness/tiff_file.h"

namespace bad_files {
namespace {

using test::BmpFields;
using test::BmpFile;
using test::Bytes;
using test::FileBytes;
using test::NativeFile;
using test::TiffFile;
using test::TiffOf;

class Table {
 public:
  void Add(std::string name, Bytes file, int32_t status, Info info, bool wantsTable = false) {
    cases_.push_back({std::move(name), std::move(file), status, info, wantsTable});
  }
  const std::vector<Case>& cases() const { return cases_; }

 private:
  std::vector<Case> cases_;
};

// ------------------------------------------------------------------ files that nobody understands

void AddStrangers(Table* table) {
  table->Add("nothing", {}, 509, NOT_UNDERSTOOD);
  for (const char* start : {"B", "I", "II", "MM", "ORL", "OR", "BM"}) {
    table->Add(std::string("only ") + start, FileBytes().Text(start), 509, NOT_UNDERSTOOD);
  }
  for (const char* text :
       {"ordinary text that goes on", "NLRO....", "orln....", "BA000000", "bm000000",
        "IM*\0\0\0\0\0", "\x89PNG\r\n\x1a\n", "GIF89a......", "P5 2 2 255 ...."}) {
    table->Add(std::string("text ") + text, FileBytes().Text(text).Zeros(100), 509, NOT_UNDERSTOOD);
  }
  table->Add("zeros", Bytes(1000), 509, NOT_UNDERSTOOD);
  table->Add("ones", Bytes(1000, 0xFF), 509, NOT_UNDERSTOOD);
  for (const bool little : {true, false}) {
    for (const uint64_t mark : {0u, 41u, 43u, 0x2A00u}) {
      table->Add("mark " + std::to_string(mark) + (little ? " II" : " MM"),
                 FileBytes().Text(little ? "II" : "MM").Number(little, mark, 2).Zeros(50), 509,
                 NOT_UNDERSTOOD);
    }
    // The signature without a header behind it.
    for (const size_t zeros : {0u, 1u, 2u, 3u}) {
      table->Add("cut header " + std::to_string(zeros) + (little ? " II" : " MM"),
                 FileBytes().Text(little ? "II" : "MM").Number(little, 42, 2).Zeros(zeros), 500,
                 NOT_UNDERSTOOD);
    }
  }
}

// ---------------------------------------------------------------------------------------- native

struct NativeCode {
  uint32_t code;
  size_t bytes;
  int32_t bits, planes;
};
constexpr NativeCode NATIVE_CODES[] = {{1, 1, 8, 1},  {2, 4, 32, 3}, {3, 6, 48, 2},
                                       {4, 2, 16, 3}, {5, 8, 64, 2}, {6, 4, 32, 1}};

void AddNative(Table* table) {
  const Info gray{1, 8, 1, 8, 6};
  const Bytes good = NativeFile(8, 6, 1, test::RandomBytes(48, 1));
  for (size_t size = 4; size < 512; size += size < 32 ? 1 : 60) {
    table->Add("native of " + std::to_string(size), test::Cut(good, size), 500, NOT_UNDERSTOOD);
  }
  table->Add("native of 511", test::Cut(good, 511), 500, NOT_UNDERSTOOD);
  for (const uint32_t version : {0u, 2u, 0x100u, 0x101u, 0xFFFFu}) {
    table->Add("native version " + std::to_string(version),
               NativeFile(8, 6, 1, Bytes(48), 1.0f, 3, version), 500, NOT_UNDERSTOOD);
  }
  for (const uint32_t code : {0u, 7u, 8u, 0x100u, 0x600u, 0xFFFFu}) {
    table->Add("native code " + std::to_string(code), NativeFile(8, 6, code, Bytes(48)), 500,
               NOT_UNDERSTOOD);
  }
  for (const NativeCode& code : NATIVE_CODES) {
    const std::string name = "native code " + std::to_string(code.code);
    const auto info = [&](int32_t width, int32_t height) {
      return Info{1, code.bits, code.planes, width, height};
    };
    const size_t full = 48 * code.bytes;
    for (const size_t data :
         {size_t{0}, size_t{1}, full / 2 + 1, full - 1, full, full + 1, full + 4001}) {
      table->Add(name + " with " + std::to_string(data),
                 NativeFile(8, 6, code.code, test::RandomBytes(data, 2)), 0, info(8, 6));
    }
    table->Add(name + " odd", NativeFile(7, 3, code.code, test::RandomBytes(21 * code.bytes, 2)), 0,
               info(7, 3));
    table->Add(name + " 1 x 1", NativeFile(1, 1, code.code, test::RandomBytes(20, 2)), 0,
               info(1, 1));
    table->Add(name + " wide", NativeFile(65535, 1, code.code, Bytes(8)), 0, info(65535, 1));
    table->Add(name + " high", NativeFile(1, 65535, code.code, Bytes(8)), 0, info(1, 65535));
    table->Add(name + " largest", NativeFile(65535, 65535, code.code, Bytes(8)), 101,
               info(65535, 65535));
    for (const auto& [width, height] : {std::pair{0, 6}, {8, 0}, {0, 0}}) {
      table->Add(name + " empty",
                 NativeFile(static_cast<uint32_t>(width), static_cast<uint32_t>(height), code.code,
                            Bytes(99)),
                 0, info(width, height));
    }
  }
  const float nan = std::numeric_limits<float>::quiet_NaN();
  const float infinity = std::numeric_limits<float>::infinity();
  for (const float ratio : {nan, infinity, -infinity, -1.0f, 0.0f, 1e-42f}) {
    table->Add("native ratio", NativeFile(8, 6, 1, Bytes(48), ratio, 0xFFFF), 0, gray);
  }
  FileBytes odd;
  for (int i = 0; i < 96; i++) {
    const float values[] = {nan,    infinity,      -infinity, 3e38f,
                            -3e38f, 2147483648.0f, -9.3e18f,  1e-42f};
    uint32_t bits = 0;
    std::memcpy(&bits, &values[i % 8], 4);
    odd.Little(bits, 4);
  }
  table->Add("native odd floats", NativeFile(8, 12, 6, odd), 0, {1, 32, 1, 8, 12});
  table->Add("native odd complex", NativeFile(8, 6, 5, odd), 0, {1, 64, 2, 8, 6});
}

// ------------------------------------------------------------------------------------------- bmp

void AddBmp(Table* table) {
  const Bytes colours = test::RandomBytes(1024, 1);
  const Bytes rows = test::RandomBytes(48, 2);
  const BmpFields plain{.colours = colours, .rows = rows};
  const Bytes good = BmpFile(plain);
  const Info info{3, 8, 1, 8, 6};
  table->Add("bmp", good, 0, info, true);
  for (const uint32_t size : {0u, 1u, 54u, static_cast<uint32_t>(good.size() - 1), 0xFFFFFFFFu}) {
    table->Add("bmp size field " + std::to_string(size),
               test::Overwritten(good, 2, FileBytes().Little(size, 4)), 509, NOT_UNDERSTOOD);
  }
  table->Add("bmp cut", test::Cut(good, good.size() - 3), 509, NOT_UNDERSTOOD);
  for (size_t size = 6; size < 54; size += 3) {
    table->Add("bmp of " + std::to_string(size), BmpSized(test::Cut(good, size)), 500,
               NOT_UNDERSTOOD);
  }
  for (const uint32_t bits : {0u, 1u, 2u, 3u, 5u, 15u, 16u, 32u, 48u, 0xFFFFu}) {
    table->Add("bmp bits " + std::to_string(bits),
               test::Overwritten(good, 28, FileBytes().Little(bits, 2)), 500, NOT_UNDERSTOOD);
  }
  // Fields that are not looked at: header size, planes, compression, image size, colours.
  for (const size_t at : {14u, 26u, 30u, 34u, 38u, 42u, 46u, 50u}) {
    table->Add("bmp field at " + std::to_string(at),
               test::Overwritten(good, at, Bytes(at == 26 ? 2 : 4, 0xFF)), 0, info, true);
  }
  for (const size_t data :
       {size_t{0}, size_t{7}, size_t{8}, size_t{23}, size_t{47}, size_t{49}, size_t{5000}}) {
    table->Add("bmp with " + std::to_string(data),
               BmpFile({.colours = colours, .rows = test::RandomBytes(data, 3)}), 0, info, true);
  }
  const auto size = static_cast<int64_t>(good.size());
  for (const int64_t offset :
       {int64_t{0}, int64_t{54}, size - 1, size, size + 1, int64_t{0x7FFFFFFF}}) {
    table->Add("bmp offset " + std::to_string(offset),
               BmpFile({.dataOffset = offset, .colours = colours, .rows = rows}), 0, info);
  }
  for (const int64_t offset : {int64_t{0x80000000}, int64_t{0xFFFFFFFF}, int64_t{0xFFFFFC00}}) {
    table->Add("bmp offset " + std::to_string(offset),
               BmpFile({.dataOffset = offset, .colours = colours, .rows = rows}), 511, info);
  }
  // The table is wanted and does not lie in the file. The information does not ask for it.
  for (const int64_t offset :
       {int64_t{0}, int64_t{1023}, size + 1024, int64_t{0x7FFFFFFF}, int64_t{0xFFFFFFFF}}) {
    table->Add("bmp table before " + std::to_string(offset),
               BmpFile({.dataOffset = offset, .colours = colours, .rows = rows}), 500, info, true);
  }
  for (const uint32_t bits : {4u, 8u, 24u}) {
    const std::string name = "bmp " + std::to_string(bits) + " bits ";
    const auto depth = static_cast<int32_t>(bits);
    const auto sized = [&](int32_t width, int32_t height) {
      return BmpFile({.width = width, .height = height, .bits = bits, .rows = rows});
    };
    const auto told = [&](int32_t width, int32_t height) {
      return Info{3, depth, bits == 24 ? 3 : 1, width, height};
    };
    for (const auto& [width, height] : {std::pair{0, 6},
                                        {8, 0},
                                        {0, 0},
                                        {0, INT32_MAX},
                                        {1, 6},
                                        {3, 2},
                                        {7, 5},
                                        {9, 4},
                                        {8, 20000},
                                        {100000, 6}}) {
      table->Add(name + std::to_string(width) + " x " + std::to_string(height),
                 sized(width, height), 0, told(width, height));
    }
    for (const auto& [width, height] :
         {std::pair{8, -6}, {-8, 6}, {-1, -1}, {INT32_MIN, 6}, {8, INT32_MIN}, {INT32_MAX, 6}}) {
      table->Add(name + std::to_string(width) + " x " + std::to_string(height),
                 sized(width, height), 500, NOT_UNDERSTOOD);
    }
    for (const auto& [width, height] : {std::pair{INT32_MAX - 1, 6},
                                        {8, INT32_MAX},
                                        {0x10000, 0x10000},
                                        {0x55555556, 2},
                                        {0x40000000, 4},
                                        {20000, 20000},
                                        {1, 0x7FFFFFF0}}) {
      table->Add(name + std::to_string(width) + " x " + std::to_string(height),
                 sized(width, height), 101, told(width, height));
    }
  }
}

// ------------------------------------------------------------------------------------------ tiff

TiffFile GrayTiff() {
  return TiffOf(8, 6, {8}, {test::RandomBytes(48, 1)}, 6);
}

TiffFile StripTiff() {
  const Bytes data = test::RandomBytes(64, 1);
  std::vector<Bytes> strips;
  for (auto at = data.begin(); at != data.end(); at += 16) strips.emplace_back(at, at + 16);
  return TiffOf(8, 8, {8}, strips, 2);
}

TiffFile ColourTiff(uint32_t planar) {
  const Bytes data = test::RandomBytes(144, 1);
  if (planar == 1) return TiffOf(8, 6, {8, 8, 8}, {data}, 6);
  const Bytes plane = test::Cut(data, 48);
  return TiffOf(8, 6, {8, 8, 8}, {plane, plane, plane}, 6).Set(284, test::TIFF_SHORT, {planar});
}

void AddTiffDirectories(Table* table) {
  const Info gray{2, 8, 1, 8, 6};
  const Bytes good = GrayTiff().Build();
  table->Add("tiff", good, 0, gray);
  const size_t end = 10 + 12 * 10;
  for (size_t size = 8; size < end; size += 5) {
    table->Add("tiff of " + std::to_string(size), test::Cut(good, size), 514, NOT_UNDERSTOOD);
  }
  for (size_t size = end; size < good.size(); size += 7) {
    table->Add("tiff of " + std::to_string(size), test::Cut(good, size), 0, gray);
  }
  for (const uint32_t offset : {0u, 1u, 2u, 4u, 100u, static_cast<uint32_t>(good.size()), 0x100000u,
                                0x7FFFFFFFu, 0x80000000u, 0xFFFFFFFFu}) {
    table->Add("tiff directory at " + std::to_string(offset),
               test::Overwritten(good, 4, FileBytes().Little(offset, 4)), 514, NOT_UNDERSTOOD);
  }
  for (const uint32_t count : {0u, 1u, 0x8000u, 0xFFFFu}) {
    table->Add("tiff of " + std::to_string(count) + " entries",
               test::Overwritten(good, 8, FileBytes().Little(count, 2)), 514, NOT_UNDERSTOOD);
  }
  for (const uint32_t next : {8u, 0xFFFFFFFFu}) {
    TiffFile file = GrayTiff();
    file.nextDirectory = next;
    table->Add("tiff next directory", file.Build(), 0, gray);
  }
  TiffFile backwards = GrayTiff();
  std::reverse(backwards.entries.begin(), backwards.entries.end());
  table->Add("tiff backwards", backwards.Build(), 0, gray);
  table->Add("tiff twice",
             GrayTiff().Add(256, test::TIFF_SHORT, 1, 4).Add(257, test::TIFF_SHORT, 1, 3).Build(),
             0, {2, 8, 1, 4, 3});
  TiffFile busy = GrayTiff();
  for (int i = 0; i < 3000; i++) busy.Add(320, test::TIFF_LONG, 5000, 8);
  table->Add("tiff busy", busy.Build(), 0, gray, true);
}

void AddTiffValues(Table* table) {
  const Info gray{2, 8, 1, 8, 6};
  const Info bilevel{2, 1, 1, 8, 6};
  for (const uint32_t tag : {258u, 259u, 262u, 277u, 278u, 279u, 284u}) {
    table->Add("tiff without " + std::to_string(tag), GrayTiff().Drop(tag).Build(), 0,
               tag == 258 ? bilevel : gray);
  }
  table->Add("tiff without 256", GrayTiff().Drop(256).Build(), 514, NOT_UNDERSTOOD);
  table->Add("tiff without 257", GrayTiff().Drop(257).Build(), 514, NOT_UNDERSTOOD);
  table->Add("tiff without 273", GrayTiff().Drop(273).Build(), 514, gray);
  TiffFile sizesOnly;
  sizesOnly.Set(256, test::TIFF_SHORT, {8}).Set(257, test::TIFF_SHORT, {6});
  table->Add("tiff of a size", sizesOnly.Build(), 514, bilevel);

  const auto with = [&](uint32_t tag, uint32_t value) {
    return GrayTiff().Set(tag, test::TIFF_SHORT, {value}).Build();
  };
  for (const uint32_t value : {0u, 2u, 5u, 7u, 8u, 32773u, 65535u}) {
    table->Add("tiff compression", with(259, value), 514, NOT_UNDERSTOOD);
  }
  for (const uint32_t value : {0u, 2u, 4u, 65535u}) {
    table->Add("tiff samples", with(277, value), 0, gray);
    table->Add("tiff photometric", with(262, value + 2), 0, gray);
    table->Add("tiff planar", with(284, value), 0, gray);
  }
  for (const uint32_t value : {0u, 1u, 3u, 7u, 12u, 32u, 65535u}) {
    table->Add("tiff bits", with(258, value), 0, bilevel);
  }
  table->Add("tiff 2 bits", with(258, 2), 0, {2, 2, 1, 8, 6});
  table->Add("tiff 16 bits cut", with(258, 16), 0, {2, 16, 3, 8, 6});
  table->Add("tiff 3 samples, 8 bits", with(277, 3), 0, {2, 24, 3, 8, 6});
  for (const uint32_t bits : {1u, 2u, 4u, 16u}) {
    table->Add("tiff colour bits",
               ColourTiff(1).Set(258, test::TIFF_SHORT, {bits, bits, bits}).Build(), 500,
               NOT_UNDERSTOOD);
  }
  table->Add("tiff colour without bits", ColourTiff(1).Drop(258).Build(), 500, NOT_UNDERSTOOD);

  for (const uint32_t kind : {0u, 6u, 7u, 12u, 13u, 65535u}) {
    table->Add("tiff kept type", GrayTiff().Add(255, kind, 1, 0).Build(), 514, NOT_UNDERSTOOD);
    table->Add("tiff other type", GrayTiff().Add(282, kind, 0xFFFFFFFF, 0xFFFFFFFF).Build(), 0,
               gray);
  }
  for (const uint32_t kind : {1u, 2u, 3u, 4u, 5u}) {
    for (const uint32_t count : {100000u, 0x20000001u, 0x40000001u, 0x80000001u, 0xFFFFFFFFu}) {
      table->Add("tiff count", GrayTiff().Add(254, kind, count, 8).Build(), 514, NOT_UNDERSTOOD);
    }
    table->Add("tiff value behind", GrayTiff().Add(254, kind, 2, 0x7FFFFFFF).Build(), 514,
               NOT_UNDERSTOOD);
    table->Add("tiff value before", GrayTiff().Add(254, kind, 2, 0x80000000).Build(), 507,
               NOT_UNDERSTOOD);
    table->Add("tiff empty value", GrayTiff().Add(254, kind, 0, 0x7FFFFFFF).Build(), 0, gray);
  }
  const auto size = static_cast<uint32_t>(ColourTiff(1).Build().size());
  table->Add("tiff value across the end", ColourTiff(1).Count(258, 3).Field(258, size - 5).Build(),
             514, NOT_UNDERSTOOD);
  for (const uint32_t kind : {test::TIFF_BYTE, test::TIFF_LONG}) {
    table->Add("tiff width type", GrayTiff().Set(256, kind, {8}).Build(), 0, gray);
  }
  table->Add("tiff width fraction", GrayTiff().Set(256, test::TIFF_RATIONAL, {8, 1}).Build(), 0,
             gray);
  table->Add("tiff width text",
             GrayTiff().Set(256, test::TIFF_ASCII, {'0', '1', '2', '3', '4', '5'}).Build(), 101,
             {2, 8, 1, 0x33323130, 6});
  table->Add("tiff width of nothing", GrayTiff().Count(256, 0).Build(), 514, NOT_UNDERSTOOD);
}

void AddTiffStrips(Table* table) {
  const Info gray{2, 8, 1, 8, 6};
  const Info tall{2, 8, 1, 8, 8};
  for (const uint32_t rows : {7u, 1000u, 0x7FFFFFFFu, 0x80000000u, 0xFFFFFFFFu}) {
    table->Add("tiff rows", GrayTiff().Set(278, test::TIFF_LONG, {rows}).Build(), 0, gray);
  }
  for (const uint32_t rows : {0u, 1u, 2u, 5u}) {
    table->Add("tiff rows", GrayTiff().Set(278, test::TIFF_LONG, {rows}).Build(), 514, gray);
  }
  for (const uint32_t offset : {0u, 8u, 0x100000u, 0x7FFFFFFFu}) {
    table->Add("tiff strip at", GrayTiff().Field(273, offset).Build(), 0, gray);
  }
  for (const uint32_t offset : {0x80000000u, 0xFFFFFFFFu}) {
    table->Add("tiff strip at", GrayTiff().Field(273, offset).Build(), 511, gray);
  }
  for (const uint32_t count :
       {0u, 1u, 7u, 8u, 47u, 49u, 4096u, 0x7FFFFFFFu, 0x80000000u, 0xFFFFFFFFu}) {
    TiffFile file = GrayTiff();
    file.strips.push_back(test::RandomBytes(6000, 4));
    table->Add("tiff strip of",
               file.Set(279, test::TIFF_LONG, {count}).Count(273, 1).Field(273, 100).Build(), 0,
               gray);
  }
  table->Add("tiff strips", StripTiff().Build(), 0, tall);
  table->Add("tiff strips over",
             StripTiff().Set(279, test::TIFF_LONG, {512, 512, 512, 512}).Build(), 0, tall);
  table->Add("tiff strips together",
             StripTiff().Set(273, test::TIFF_LONG, {200, 200, 200, 200}).Build(), 0, tall);
  for (const uint32_t tag : {273u, 279u}) {
    table->Add("tiff few", StripTiff().Set(tag, test::TIFF_LONG, {16, 16, 16}).Build(), 514, tall);
    table->Add("tiff one", StripTiff().Set(tag, test::TIFF_LONG, {16}).Build(), 514, tall);
    table->Add("tiff none", StripTiff().Count(tag, 0).Build(), 514, tall);
    table->Add("tiff many", StripTiff().Set(tag, test::TIFF_LONG, {16, 16, 16, 16, 16}).Build(), 0,
               tall);
    table->Add("tiff bytes", StripTiff().Set(tag, test::TIFF_BYTE, {16, 16, 16, 16}).Build(), 0,
               tall);
    table->Add("tiff text", StripTiff().Set(tag, test::TIFF_ASCII, {16, 16, 16, 16}).Build(), 0,
               tall);
    table->Add("tiff fractions",
               StripTiff().Set(tag, test::TIFF_RATIONAL, {16, 1, 16, 1, 16, 1, 16, 1}).Build(), 0,
               tall);
    table->Add("tiff array behind", StripTiff().Field(tag, 0x100000).Build(), 514, NOT_UNDERSTOOD);
    table->Add("tiff array before", StripTiff().Field(tag, 0xFFFFFF00).Build(), 507,
               NOT_UNDERSTOOD);
  }
  std::vector<Bytes> lines(4096, Bytes(5, 7));
  table->Add("tiff lines", TiffOf(4, 4096, {8}, lines, 1).Build(), 0, {2, 8, 1, 4, 4096});
  table->Add("tiff planes", ColourTiff(2).Build(), 0, {2, 24, 1, 8, 6});
  table->Add("tiff planes over", ColourTiff(2).Set(279, test::TIFF_LONG, {480, 480, 480}).Build(),
             0, {2, 24, 1, 8, 6});
  table->Add("tiff planes of nothing", ColourTiff(2).Set(279, test::TIFF_LONG, {0, 0, 0}).Build(),
             0, {2, 24, 1, 8, 6});
  table->Add("tiff two planes", ColourTiff(2).Set(273, test::TIFF_LONG, {200, 248}).Build(), 514,
             {2, 24, 1, 8, 6});
  table->Add("tiff planes without counts", ColourTiff(2).Drop(279).Build(), 0, {2, 24, 1, 8, 6});
}

void AddTiffSizes(Table* table) {
  const auto sized = [](uint32_t width, uint32_t height, uint32_t rows) {
    return GrayTiff()
        .Set(256, test::TIFF_LONG, {width})
        .Set(257, test::TIFF_LONG, {height})
        .Set(278, test::TIFF_LONG, {rows})
        .Build();
  };
  for (const auto& [width, height] : {std::pair{0u, 6u},
                                      {8u, 0u},
                                      {0xFFFFFFFFu, 6u},
                                      {8u, 0xFFFFFFFFu},
                                      {0x80000000u, 6u},
                                      {8u, 0x80000000u},
                                      {0x7FFFFFFFu, 1u}}) {
    table->Add("tiff size", sized(width, height, height), 514, NOT_UNDERSTOOD);
  }
  for (const auto& [width, height] : {std::pair{0x10000u, 0x10000u},
                                      {0x40000000u, 4u},
                                      {46341u, 46341u},
                                      {1u, 0x7FFFFFFFu},
                                      {0x7FFFFFFEu, 1u},
                                      {20000u, 20000u}}) {
    const Info info{2, 8, 1, static_cast<int32_t>(width), static_cast<int32_t>(height)};
    table->Add("tiff size", sized(width, height, height), 101, info);
    table->Add("tiff size in lines", sized(width, height, 1), 101, info);
    table->Add("tiff size in two", sized(width, height, height - 1), 101, info);
  }
  table->Add("tiff wide", sized(65535, 6, 6), 0, {2, 8, 1, 65535, 6});
  table->Add("tiff high", sized(8, 65535, 65535), 0, {2, 8, 1, 8, 65535});
  table->Add("tiff strips missing", sized(8, 65535, 6), 514, {2, 8, 1, 8, 65535});
}

void AddTiffMaps(Table* table) {
  const Info gray{2, 8, 1, 8, 6};
  for (const size_t count : {1u, 2u, 3u, 47u, 255u, 256u, 767u, 768u, 1000u}) {
    const std::vector<uint32_t> map(count, 0x1234);
    for (const uint32_t kind :
         {test::TIFF_BYTE, test::TIFF_ASCII, test::TIFF_SHORT, test::TIFF_LONG}) {
      table->Add("tiff map", GrayTiff().Set(320, kind, map).Build(), 0, gray, true);
    }
  }
  table->Add("tiff map of nothing", GrayTiff().Add(320, test::TIFF_SHORT, 0, 0).Build(), 0, gray,
             true);
  table->Add("tiff map behind", GrayTiff().Add(320, test::TIFF_SHORT, 768, 0x100000).Build(), 514,
             NOT_UNDERSTOOD, true);
}

}  // namespace

std::vector<Case> AllCases() {
  Table table;
  AddStrangers(&table);
  AddNative(&table);
  AddBmp(&table);
  AddTiffDirectories(&table);
  AddTiffValues(&table);
  AddTiffStrips(&table);
  AddTiffSizes(&table);
  AddTiffMaps(&table);
  return table.cases();
}

Bytes BmpSized(Bytes file) {
  const auto size = static_cast<uint32_t>(file.size());
  return file.size() < 6 ? file : test::Overwritten(file, 2, FileBytes().Little(size, 4));
}

std::vector<Bytes> GoodFiles() {
  std::vector<Bytes> files;
  for (const NativeCode& code : NATIVE_CODES) {
    files.push_back(NativeFile(8, 6, code.code, test::RandomBytes(48 * code.bytes, 2)));
  }
  files.push_back(
      BmpFile({.colours = test::RandomBytes(1024, 1), .rows = test::RandomBytes(48, 2)}));
  files.push_back(
      BmpFile({.bits = 4, .colours = test::RandomBytes(64, 1), .rows = test::RandomBytes(24, 2)}));
  files.push_back(BmpFile({.width = 7, .bits = 24, .rows = test::RandomBytes(144, 2)}));
  files.push_back(GrayTiff().Build());
  files.push_back(StripTiff().Build());
  files.push_back(ColourTiff(1).Build());
  files.push_back(ColourTiff(2).Build());
  files.push_back(
      TiffOf(16, 4, {1}, {Bytes(16, 0x5A)}, 4, false).Set(262, test::TIFF_SHORT, {0}).Build());
  files.push_back(TiffOf(8, 3, {16}, {test::RandomBytes(48, 2)}, 3, false).Build());
  files.push_back(GrayTiff().Set(320, test::TIFF_SHORT, std::vector<uint32_t>(768, 99)).Build());
  return files;
}

}  // namespace bad_files
