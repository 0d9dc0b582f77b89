// Readers and writers of pictures: BMP of all kinds byte by byte, what is written read back, files
// that are there whole or not at all.
#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <numeric>
#include <span>
#include <tuple>

#include "pictures/image.h"
#include "pictures/orientation.h"
#include "pictures/readers.h"
#include "pictures/source.h"
#include "pictures/whole_file.h"
#include "pictures/writers.h"
#include "tests/support/complaints.h"

namespace {

using namespace pictures;  // NOLINT: these are its tests
using test::Complaint;
using test::Has;

namespace fs = std::filesystem;

using Pixels = std::vector<uint8_t>;

// ----------------------------------------------------------------------------------------- BMP

// A BMP file, of parts that a case chooses.
struct Bmp {
  uint32_t headerSize = 40;
  int32_t width = 3, height = 2;
  uint32_t bits = 8, compression = 0, colours = 0;
  Pixels masks = {}, palette = {}, pixels = {};
  int32_t offset = -1;  // of the pixels; -1 is where they are

  Pixels Bytes() const {
    Pixels file;
    const auto put = [&](uint32_t value, int bytes) {
      for (int i = 0; i < bytes; ++i) file.push_back(static_cast<uint8_t>(value >> (8 * i)));
    };
    const auto pixelsAt = static_cast<uint32_t>(14 + headerSize + masks.size() + palette.size());
    put('B' | 'M' << 8, 2);
    put(0, 4);
    put(0, 4);
    put(offset < 0 ? pixelsAt : static_cast<uint32_t>(offset), 4);
    put(headerSize, 4);
    if (headerSize == 12) {
      put(static_cast<uint32_t>(width), 2);
      put(static_cast<uint32_t>(height), 2);
      put(1, 2);
      put(bits, 2);
    } else {
      put(static_cast<uint32_t>(width), 4);
      put(static_cast<uint32_t>(height), 4);
      put(1, 2);
      put(bits, 2);
      put(compression, 4);
      for (int i = 0; i < 3; ++i) put(0, 4);
      put(colours, 4);
      put(0, 4);
      file.resize(14 + headerSize);
    }
    for (const Pixels* part : {&masks, &palette, &pixels}) {
      file.insert(file.end(), part->begin(), part->end());
    }
    return file;
  }
  Picture Read() const {
    const Pixels bytes = Bytes();
    return ReadBmp(bytes, 1, Want::Pixels);
  }
};

// Four bytes an entry, gray levels.
Pixels Grays(const Pixels& levels) {
  Pixels palette;
  for (const uint8_t level : levels) palette.insert(palette.end(), {level, level, level, 0});
  return palette;
}

// Row y with the border on both of its sides.
std::span<uint8_t> WholeRow(const ImageInfo& info, int32_t y) {
  const int32_t side = info.border * info.pixelBytes;
  return {Row<uint8_t>(info, y) - side,
          static_cast<size_t>(info.width * info.pixelBytes + 2 * side)};
}

TEST(SpareImages, AreNewButForTheirPixels) {
  const SpareImages spares;
  for (const int32_t type : {IMAGE_U8, IMAGE_I16, IMAGE_SGL}) {
    for (const int32_t border : {0, 1, 3}) {
      for (const int32_t width : {1, 7, 33}) {
        ImageRef before = 0;
        {
          const Image image = Image::ForNewPixels(type, border, width, 5);
          before = image;
          const ImageInfo info = image.Info();
          for (int32_t y = -border; y < 5 + border; ++y) {
            std::ranges::fill(WholeRow(info, y), uint8_t{0xA5});
          }
          Check(ZEL_SetImageCalibration(image, 3, 2, 4));
          Check(ZEL_SetImageOffset(image, 5, 6));
        }
        const Image again = Image::ForNewPixels(type, border, width, 5);
        EXPECT_EQ(ImageRef(again), before);
        const ImageInfo info = again.Info();
        EXPECT_EQ(std::tuple(info.unit, info.xStep, info.yStep), std::tuple(0, 1.0f, 1.0f));
        EXPECT_EQ(std::tuple(info.offsetX, info.offsetY), std::tuple(0, 0));
        for (int32_t y = 0; y < 5; ++y) {
          std::fill_n(Row<uint8_t>(info, y), width * info.pixelBytes, uint8_t{0});
        }
        for (int32_t y = -border; y < 5 + border; ++y) {
          EXPECT_TRUE(
              std::ranges::all_of(WholeRow(info, y), [](uint8_t byte) { return byte == 0; }))
              << "row " << y << ", border " << border << ", width " << width;
        }
      }
    }
  }
}

TEST(SpareImages, AreNotInUseAndOfTheSameKind) {
  const SpareImages spares;
  const Image used = Image::ForNewPixels(IMAGE_U8, 2, 20, 10);
  const Image second = Image::ForNewPixels(IMAGE_U8, 2, 20, 10);
  EXPECT_NE(ImageRef(used), ImageRef(second));
  { const Image given = Image::ForNewPixels(IMAGE_U8, 2, 20, 10); }
  const auto kind = [](const Image& image) {
    const ImageInfo info = image.Info();
    return std::tuple(info.type, info.border, info.width, info.height);
  };
  EXPECT_EQ(kind(Image::ForNewPixels(IMAGE_U8, 2, 10, 20)), std::tuple(IMAGE_U8, 2, 10, 20));
  EXPECT_EQ(kind(Image::ForNewPixels(IMAGE_U8, 1, 20, 10)), std::tuple(IMAGE_U8, 1, 20, 10));
  EXPECT_EQ(kind(Image::ForNewPixels(IMAGE_I16, 2, 20, 10)), std::tuple(IMAGE_I16, 2, 20, 10));
}

TEST(SpareImages, AreFewAndSmall) {
  const auto images = [] {
    int32_t count = 0;
    ZEL_GetImageReference(0, nullptr, &count);
    return count;
  };
  const int32_t before = images();
  {
    const SpareImages spares;
    for (int32_t width = 1; width <= 50; ++width) Image::ForNewPixels(IMAGE_U8, 0, width, 1);
    EXPECT_EQ(images(), before + 4);
    Image::ForNewPixels(IMAGE_U8, 0, 4000, 4000);
    EXPECT_EQ(images(), before + 4);
    const SpareImages others;  // the first ones go on
    Image::ForNewPixels(IMAGE_U8, 0, 51, 1);
    EXPECT_EQ(images(), before + 4);
  }
  EXPECT_EQ(images(), before);
  Image::ForNewPixels(IMAGE_U8, 0, 10, 10);
  EXPECT_EQ(images(), before);
}

TEST(BmpReader, RowsComeFromTheBottomOrFromTheTop) {
  Bmp bmp{.palette = Grays({10, 20, 30, 40}), .pixels = {0, 1, 2, 0, 3, 3, 0, 0}};
  bmp.colours = 4;
  EXPECT_EQ(bmp.Read().raster.bytes, (Pixels{40, 40, 10, 10, 20, 30}));
  bmp.height = -2;
  const Picture topDown = bmp.Read();
  EXPECT_EQ(topDown.raster.bytes, (Pixels{10, 20, 30, 40, 40, 10}));
  EXPECT_EQ(topDown.account.layout, "rows from the top");
}

TEST(BmpReader, LowBitsAreUnpackedByTheirPalette) {
  Bmp one{.width = 9,
          .height = 1,
          .bits = 1,
          .palette = Grays({7, 200}),
          .pixels = {0b10110001, 0b10000000, 0, 0}};
  EXPECT_EQ(one.Read().raster.bytes, (Pixels{200, 7, 200, 200, 7, 7, 7, 200, 200}));
  Bmp two{.width = 3,
          .height = 1,
          .bits = 2,
          .palette = Grays({1, 2, 3, 4}),
          .pixels = {0b11011000, 0, 0, 0}};
  EXPECT_EQ(two.Read().raster.bytes, (Pixels{4, 2, 3}));
  Bmp four{.width = 3,
           .height = 1,
           .bits = 4,
           .colours = 3,
           .palette = Grays({1, 2, 3}),
           .pixels = {0x21, 0x00, 0, 0}};
  EXPECT_EQ(four.Read().raster.bytes, (Pixels{3, 2, 1}));
}

TEST(BmpReader, ShortPalettesAreNotShifted) {
  Bmp bmp{
      .width = 4, .height = 1, .colours = 2, .palette = Grays({50, 60}), .pixels = {0, 1, 1, 9}};
  const Picture picture = bmp.Read();
  EXPECT_EQ(picture.raster.bytes, (Pixels{50, 60, 60, 0}));
  ASSERT_EQ(picture.account.losses.size(), 1u);
  EXPECT_EQ(picture.account.losses[0], "1 pixel with colours beyond the palette of 2 became black");
  bmp.colours = 0;  // 256 are claimed, of which the pixels leave room for two
  EXPECT_EQ(bmp.Read().raster.bytes, (Pixels{50, 60, 60, 0}));
}

TEST(BmpReader, ColoursStayColours) {
  Bmp bmp{.width = 1, .height = 1, .colours = 1, .palette = {1, 2, 3, 0}, .pixels = {0, 0, 0, 0}};
  const Picture picture = bmp.Read();
  EXPECT_EQ(picture.raster.palette[0], 0x030201u);
  EXPECT_EQ(picture.account.kind, "palette");
}

TEST(BmpReader, TheOldestHeaderHasPalettesOfThreeBytes) {
  Bmp bmp{.headerSize = 12,
          .width = 2,
          .height = 1,
          .bits = 1,
          .palette = {5, 5, 5, 9, 9, 9},
          .pixels = {0b01000000, 0, 0, 0}};
  EXPECT_EQ(bmp.Read().raster.bytes, (Pixels{5, 9}));
}

TEST(BmpReader, DirectColoursOfAllWidths) {
  Bmp full{.width = 1, .height = 1, .bits = 24, .pixels = {1, 2, 3, 0}};
  EXPECT_EQ(full.Read().raster.bytes, (Pixels{3, 2, 1}));
  Bmp filled{.width = 1, .height = 1, .bits = 32, .pixels = {1, 2, 3, 99}};
  EXPECT_EQ(filled.Read().raster.bytes, (Pixels{3, 2, 1}));
  Bmp five{.width = 1, .height = 1, .bits = 16, .pixels = {0x1F, 0x7C, 0, 0}};
  EXPECT_EQ(five.Read().raster.bytes, (Pixels{255, 0, 255}));
  Bmp fields{.width = 1,
             .height = 1,
             .bits = 16,
             .compression = 3,
             .masks = {0x00, 0xF8, 0, 0, 0xE0, 0x07, 0, 0, 0x1F, 0x00, 0, 0},
             .pixels = {0xE0, 0x07, 0, 0}};
  EXPECT_EQ(fields.Read().raster.bytes, (Pixels{0, 255, 0}));
  EXPECT_EQ(fields.Read().account.meaning, "bit fields of 5, 6 and 5 bits");
}

TEST(BmpReader, RunsAreUnpacked) {
  Bmp bmp{.width = 5,
          .height = 2,
          .compression = 1,
          .colours = 4,
          .palette = Grays({10, 20, 30, 40}),
          .pixels = {3, 1, 0, 0, /* skipped */ 0, 3, 2, 3, 0, 0, 2, 1, 0, 1}};
  const Picture picture = bmp.Read();
  EXPECT_EQ(picture.raster.bytes, (Pixels{30, 40, 10, 20, 20, 20, 20, 20, 10, 10}));
  EXPECT_EQ(picture.account.losses,
            (std::vector<std::string>{"2 pixels that the runs leave out became colour 0"}));
  Bmp four{.width = 5,
           .height = 1,
           .bits = 4,
           .compression = 2,
           .colours = 3,
           .palette = Grays({1, 2, 3}),
           .pixels = {3, 0x12, 0, 2, 1, 0, 1, 0x20, 0, 1}};
  EXPECT_EQ(four.Read().raster.bytes, (Pixels{2, 3, 2, 1, 3}));
}

TEST(BmpReader, RunsMayFillARowUpAndGoNoFurther) {
  Bmp bmp{.width = 5,
          .height = 1,
          .compression = 1,
          .colours = 1,
          .palette = Grays({9}),
          .pixels = {8, 0, 0, 1}};
  EXPECT_EQ(bmp.Read().raster.bytes, Pixels(5, 9));
  bmp.pixels = {9, 0, 0, 1};
  EXPECT_TRUE(Has(Complaint([&] { bmp.Read(); }), "a run leaves the picture in row 1"));
  bmp.pixels = {0, 2, 0, 9, 1, 0, 0, 1};
  EXPECT_TRUE(Has(Complaint([&] { bmp.Read(); }), "leave the picture"));
}

TEST(BmpReader, CutFilesAreNamed) {
  Bmp bmp{.width = 40000, .height = 40000, .palette = Grays(Pixels(256)), .pixels = {1}};
  EXPECT_TRUE(Has(Complaint([&] { bmp.Read(); }),
                  "cut: its 40000 x 40000 pixels take 1600000000 bytes, and there are 1"));
  Bmp runs{.width = 4,
           .height = 2,
           .compression = 1,
           .colours = 1,
           .palette = Grays({1}),
           .pixels = {4, 0}};
  EXPECT_TRUE(Has(Complaint([&] { runs.Read(); }), "its runs end in row 1 of 2"));
  const Pixels whole = Bmp{.palette = Grays(Pixels(256)), .pixels = Pixels(8)}.Bytes();
  for (size_t size = 2; size < whole.size(); size += 7) {
    const Pixels part(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size));
    EXPECT_TRUE(Has(Complaint([&] { ReadBmp(part, 1, Want::Pixels); }), "BMP")) << size;
  }
}

TEST(BmpReader, WhatIsNotReadIsToldInTheFilesWords) {
  const auto complaint = [](Bmp bmp) { return Complaint([&] { bmp.Read(); }); };
  EXPECT_TRUE(Has(complaint({.bits = 0, .compression = 4}), "compression 4 (JPEG)"));
  EXPECT_TRUE(Has(complaint({.headerSize = 64, .bits = 1, .compression = 3}), "Huffman"));
  EXPECT_TRUE(Has(complaint({.bits = 64}), "64 bits a pixel"));
  EXPECT_TRUE(Has(complaint({.headerSize = 5}), "a header of 5 bytes"));
  EXPECT_TRUE(Has(complaint({.width = 0}), "no pixels"));
  EXPECT_TRUE(Has(complaint({.palette = Grays({1}), .offset = 20}), "begin inside its header"));
  EXPECT_TRUE(Has(Complaint([] { ReadBmp(Bmp{}.Bytes(), 2, Want::Account); }), "no #2"));
}

// -------------------------------------------------------------------------------- orientations

TEST(Orientation, AllEightTurnsAreUndone) {
  // Upright: 1 2 3 over 4 5 6. How each orientation stores it, by the meaning of the number.
  const std::pair<int32_t, std::vector<Pixels>> stored[] = {
      {1, {{1, 2, 3}, {4, 5, 6}}},   {2, {{3, 2, 1}, {6, 5, 4}}},   {3, {{6, 5, 4}, {3, 2, 1}}},
      {4, {{4, 5, 6}, {1, 2, 3}}},   {5, {{1, 4}, {2, 5}, {3, 6}}}, {6, {{3, 6}, {2, 5}, {1, 4}}},
      {7, {{6, 3}, {5, 2}, {4, 1}}}, {8, {{4, 1}, {5, 2}, {6, 3}}}, {99, {{1, 2, 3}, {4, 5, 6}}}};
  for (const auto& [orientation, rows] : stored) {
    Raster raster = MakeRaster(static_cast<int64_t>(rows[0].size()),
                               static_cast<int64_t>(rows.size()), 1, Sample::U8);
    for (size_t y = 0; y < rows.size(); ++y) {
      std::copy(rows[y].begin(), rows[y].end(), raster.Row(static_cast<int64_t>(y)));
    }
    const Raster upright = Upright(raster, orientation);
    EXPECT_EQ(upright.width, 3) << orientation;
    EXPECT_EQ(upright.bytes, (Pixels{1, 2, 3, 4, 5, 6})) << orientation;
  }
}

TEST(Orientation, DamagedExifTellsNone) {
  EXPECT_EQ(OrientationIn({}), 1);
  const Pixels little = {'I', 'I', 42, 0, 8, 0, 0, 0, 1, 0, 0x12, 1, 3, 0, 1, 0, 0, 0, 6, 0, 0, 0};
  EXPECT_EQ(OrientationIn(little), 6);
  for (size_t size = 0; size < little.size(); ++size) {
    const int32_t orientation = OrientationIn(Bytes(little).first(size));
    EXPECT_TRUE(orientation == 1 || orientation == 6) << size;
  }
  Pixels far = little;
  far[7] = 0x7F;
  EXPECT_EQ(OrientationIn(far), 1);
}

// ------------------------------------------------------------------------------------- writers

Raster Ramp(int32_t channels, Sample sample) {
  Raster raster = MakeRaster(13, 7, channels, sample);
  std::iota(raster.bytes.begin(), raster.bytes.end(), uint8_t{1});
  return raster;
}

void ExpectSame(const Raster& read, const Raster& written) {
  EXPECT_EQ(read.width, written.width);
  EXPECT_EQ(read.channels, written.channels);
  EXPECT_EQ(static_cast<int>(read.sample), static_cast<int>(written.sample));
  EXPECT_EQ(read.bytes, written.bytes);
  EXPECT_EQ(read.palette, written.palette);
}

// What a file lends is what it gives.
void ExpectSameRows(const Raster& lent, const Raster& given) {
  ASSERT_EQ(lent.width, given.width);
  ASSERT_EQ(lent.height, given.height);
  ASSERT_EQ(lent.RowBytes(), given.RowBytes());
  EXPECT_EQ(lent.palette, given.palette);
  for (int64_t y = 0; y < given.height; ++y) {
    EXPECT_TRUE(std::equal(given.Row(y), given.Row(y) + given.RowBytes(), lent.Row(y))) << y;
  }
}

TEST(BmpReader, BytesOfGraysAloneMayStayInTheFile) {
  Pixels levels(256);
  std::iota(levels.begin(), levels.end(), uint8_t{0});
  Bmp bmp{.width = 3, .height = 2, .palette = Grays(levels), .pixels = {9, 8, 7, 0, 1, 2, 3}};
  const auto rasters = [&](const Pixels& file) {
    return std::pair(ReadBmp(file, 1, Want::PixelsOrLent).raster,
                     ReadBmp(file, 1, Want::Pixels).raster);
  };
  for (const int32_t height : {2, -2, 1}) {
    bmp.height = height;
    const Pixels file = bmp.Bytes();
    const auto [lent, given] = rasters(file);
    EXPECT_NE(lent.lent, nullptr);
    EXPECT_TRUE(lent.bytes.empty());
    ExpectSameRows(lent, given);
  }
  // Numbers of colours, and of other grays, have to become what they mean.
  bmp.palette[4 * 7] = 8;
  const Pixels coloured = bmp.Bytes();
  EXPECT_EQ(rasters(coloured).first.lent, nullptr);
  ExpectSameRows(rasters(coloured).first, rasters(coloured).second);
  bmp.palette[4 * 7 + 1] = bmp.palette[4 * 7 + 2] = 8;
  const Pixels gray = bmp.Bytes();
  EXPECT_EQ(rasters(gray).first.lent, nullptr);
  ExpectSameRows(rasters(gray).first, rasters(gray).second);
}

TEST(Writers, WhatIsWrittenReadsBack) {
  Raster palette = Ramp(1, Sample::U8);
  palette.palette.assign(256, 0x102030);
  const Raster gray = Ramp(1, Sample::U8), colour = Ramp(3, Sample::U8);
  for (const Raster* raster : {&gray, &colour, const_cast<const Raster*>(&palette)}) {
    ExpectSame(ReadBmp(EncodeBmp(*raster), 1, Want::Pixels).raster, *raster);
    ExpectSame(ReadTiff(EncodeTiff(*raster), 1, Want::Pixels).raster, *raster);
    ExpectSame(ReadPng(EncodePng(*raster), 1, Want::Pixels).raster, *raster);
  }
  for (const Sample sample : {Sample::U16, Sample::I16, Sample::F32}) {
    const Raster raster = Ramp(1, sample);
    ExpectSame(ReadTiff(EncodeTiff(raster), 1, Want::Pixels).raster, raster);
  }
  const Raster deep = Ramp(1, Sample::U16), deepColour = Ramp(3, Sample::U16);
  ExpectSame(ReadPng(EncodePng(deep), 1, Want::Pixels).raster, deep);
  ExpectSame(ReadPng(EncodePng(deepColour), 1, Want::Pixels).raster, deepColour);
  EXPECT_THROW(EncodeBmp(deep), std::invalid_argument);
  EXPECT_THROW(EncodePng(Ramp(1, Sample::F32)), std::invalid_argument);
  EXPECT_THROW(EncodeTiff(deepColour), std::invalid_argument);
}

// A field of a TIFF that the writer made, changed to another number.
Pixels WithTag(Pixels file, uint16_t tag, uint16_t value) {
  for (size_t entry = 10; entry + 12 <= file.size(); entry += 12) {
    if ((file[entry] << 8 | file[entry + 1]) != tag) continue;
    const size_t at = entry + (file[entry + 3] == 4 ? 10 : 8);  // the low half of a LONG
    file[at] = static_cast<uint8_t>(value >> 8);
    file[at + 1] = static_cast<uint8_t>(value);
    break;
  }
  return file;
}

TEST(TiffReader, WhatIsNotReadIsToldInTheFilesWords) {
  const Pixels gray = EncodeTiff(Ramp(1, Sample::U8));
  const auto complaint = [&](uint16_t tag, uint16_t value) {
    return Complaint([&] { ReadTiff(WithTag(gray, tag, value), 1, Want::Pixels); });
  };
  EXPECT_TRUE(Has(complaint(259, 64000), "page 1: compression 64000 is not read"));
  EXPECT_TRUE(Has(complaint(277, 5), "5 samples a pixel are not read"));
  EXPECT_TRUE(Has(complaint(262, 8), "photometric interpretation 8 (CIE L*a*b*, 1 samples"));
  EXPECT_TRUE(Has(complaint(258, 33), "33-bit samples are not read"));
  EXPECT_TRUE(
      Has(Complaint([&] { ReadTiff(gray, 2, Want::Account); }), "has 1 page; there is no #2"));
  EXPECT_TRUE(Has(Complaint([&] { ReadTiff(WithTag(gray, 257, 60000), 1, Want::Pixels); }), "cut"));
}

TEST(TiffReader, WhiteAtZeroIsTurnedRound) {
  const Raster deep = Ramp(1, Sample::U16);
  const Picture picture = ReadTiff(WithTag(EncodeTiff(deep), 262, 0), 1, Want::Pixels);
  EXPECT_EQ(picture.account.meaning, "0 is white");
  for (size_t i = 0; i < deep.bytes.size(); ++i) {
    ASSERT_EQ(picture.raster.bytes[i], 255 - deep.bytes[i]);
  }
}

class Files : public testing::Test {
 protected:
  void SetUp() override { fs::create_directories(folder_); }
  void TearDown() override { fs::remove_all(folder_); }
  std::string Path(const std::string& name) const { return (folder_ / name).string(); }
  std::string Text(const std::string& name) const {
    std::ifstream file(Path(name));
    return {std::istreambuf_iterator<char>(file), {}};
  }
  size_t Count() const {
    return static_cast<size_t>(std::distance(fs::directory_iterator(folder_), {}));
  }
  fs::path folder_ = fs::temp_directory_path() / ("orlune_pictures_" + std::to_string(::getpid()));
};

TEST_F(Files, TheLibraryReadsWhatIsWritten) {
  Raster deep = MakeRaster(4, 2, 1, Sample::U16);
  auto* samples = reinterpret_cast<uint16_t*>(deep.bytes.data());
  std::iota(samples, samples + 8, uint16_t{1000});
  WriteWhole(Path("deep.tif"), EncodeTiff(deep));
  const Raster gray = [] {
    Raster raster = MakeRaster(6, 2, 1, Sample::U8);
    std::iota(raster.bytes.begin(), raster.bytes.end(), uint8_t{100});
    return raster;
  }();
  WriteWhole(Path("gray.bmp"), EncodeBmp(gray));
  float value = 0;
  const Image image(IMAGE_I16);
  Check(ZEL_ReadFile(image, Path("deep.tif").c_str(), 0, nullptr, nullptr));
  Check(ZEL_GetPixelValue(image, 3, 1, &value));
  EXPECT_EQ(value, 1007);
  Check(ZEL_ReadFile(image, Path("gray.bmp").c_str(), 0, nullptr, nullptr));
  Check(ZEL_GetPixelValue(image, 5, 1, &value));
  EXPECT_EQ(value, 111);
}

TEST_F(Files, AreThereWholeOrAsTheyWere) {
  WriteWhole(Path("a"), Pixels{'o', 'l', 'd'});
  {
    WholeFile file(Path("a"));
    file.stream() << "half";
    EXPECT_EQ(Text("a"), "old");
  }
  EXPECT_EQ(Text("a"), "old");
  EXPECT_EQ(Count(), 1u);
  WholeFile file(Path("a"));
  file.stream() << "new";
  file.Finish();
  EXPECT_EQ(Text("a"), "new");
  EXPECT_EQ(Count(), 1u);
  EXPECT_THROW(WholeFile(Path("")), WriteFailure);
  EXPECT_THROW(WholeFile(Path("no/such")), WriteFailure);
}

TEST_F(Files, LinksAndRightsStay) {
  WriteWhole(Path("a"), Pixels{'1'});
  fs::permissions(Path("a"), fs::perms::owner_read | fs::perms::owner_write);
  fs::create_symlink("a", Path("link"));
  WriteWhole(Path("link"), Pixels{'2'});
  EXPECT_TRUE(fs::is_symlink(Path("link")));
  EXPECT_EQ(Text("a"), "2");
  EXPECT_EQ(fs::status(Path("a")).permissions(), fs::perms::owner_read | fs::perms::owner_write);
}

TEST_F(Files, AFullDeviceIsToldWithItsReason) {
  if (!fs::exists("/dev/full")) GTEST_SKIP() << "no /dev/full";
  EXPECT_EQ(Complaint([] { WriteWhole("/dev/full", Pixels(100000)); }),
            "cannot be written: the disk is full");
}

TEST_F(Files, NamesOfPages) {
  WriteWhole(Path("x#2"), Pixels{1});
  EXPECT_EQ(SourceOf(Path("x#2")).path, Path("x#2"));
  EXPECT_EQ(SourceOf("scan.tif#3").page, 3);
  EXPECT_EQ(SourceOf("scan.tif#3").path, "scan.tif");
  EXPECT_EQ(SourceOf("scan#a").path, "scan#a");
  EXPECT_FALSE(SourceOf("scan.tif").pageNamed);
}

TEST_F(Files, CutNativeFilesAreNamed) {
  const Image image(IMAGE_U8, 0, 20, 10);
  Check(ZEL_ClearPixels(image));
  Check(ZEL_WriteFile(image, Path("a.orln").c_str(), FILE_FORMAT_NATIVE, nullptr, 0));
  EXPECT_EQ(ReadPicture(Path("a.orln"), {}).account.width, 20);
  fs::resize_file(Path("a.orln"), 600);
  EXPECT_TRUE(Has(Complaint([&] { ReadPicture(Path("a.orln"), {}); }),
                  "cut: its 20 x 10 pixels take 200 bytes, and there are 88"));
}

// Any byte changed, any length: a picture or a complaint, and nothing else.
TEST_F(Files, DamagedFilesGiveAPictureOrAComplaint) {
  const Raster gray = Ramp(1, Sample::U8);
  const std::vector<Pixels> files = {EncodeTiff(gray), EncodePng(gray), EncodeBmp(gray),
                                     EncodeTiff(Ramp(3, Sample::U8))};
  using Reader = Picture (*)(Bytes, int32_t, Want);
  const Reader readers[] = {ReadTiff, ReadPng, ReadBmp, ReadTiff};
  uint32_t random = 1;
  for (size_t i = 0; i < files.size(); ++i) {
    int read = 0;
    int refused = 0;
    for (int round = 0; round < 400; ++round) {
      Pixels damaged = files[i];
      for (int change = 0; change < 3; ++change) {
        random = random * 1664525 + 1013904223;
        const size_t reach = change == 0 ? damaged.size() : std::min<size_t>(damaged.size(), 200);
        damaged[(random >> 8) % reach] = static_cast<uint8_t>(random >> 24);
      }
      if (round % 4 == 0) damaged.resize((random >> 4) % damaged.size());
      try {
        const Account account = readers[i](damaged, 1, Want::Account).account;
        if (account.width * account.height > 1000000) continue;
        const Raster raster = readers[i](damaged, 1, Want::Pixels).raster;
        EXPECT_EQ(static_cast<int64_t>(raster.bytes.size()), raster.RowBytes() * raster.height);
        ExpectSameRows(readers[i](damaged, 1, Want::PixelsOrLent).raster, raster);
        ++read;
      } catch (const BadFile&) {
        ++refused;
      }
    }
    // PNG files have checksums, which tell of nearly any change.
    if (readers[i] != &ReadPng) {
      EXPECT_GT(read, 10) << i;
    }
    EXPECT_GT(refused, 10) << i;
  }
}

}  // namespace
