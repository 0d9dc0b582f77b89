// BMP files of all kinds: any header, 1 to 32 bits, palettes of any length, run lengths, bit
// fields, either row order.
#include <algorithm>
#include <array>
#include <bit>

#include "pictures/bmp_runs.h"
#include "pictures/readers.h"

namespace pictures {
namespace {

constexpr size_t FILE_HEADER = 14;
constexpr size_t CORE_HEADER = 12;  // the oldest: 16-bit sizes, palette entries of three bytes
constexpr size_t INFO_HEADER = 40;
constexpr size_t MASKS_HEADER = 52;  // from this size on, the masks are part of the header
constexpr size_t ALPHA_HEADER = 56;  // and from this size on the one of alpha
constexpr size_t OS2_HEADER = 64;

enum Compression : uint32_t {
  NONE = 0,
  RLE8 = 1,
  RLE4 = 2,
  FIELDS = 3,
  JPEG = 4,
  PNG = 5,
  ALPHA_FIELDS = 6
};

// Numbers of the file, low byte first. A file that ends before them is cut.
class Numbers {
 public:
  explicit Numbers(Bytes file) : file_(file) {}
  uint32_t At(size_t at, size_t bytes) const {
    if (at > file_.size() || bytes > file_.size() - at) {
      throw BadFile("the BMP file is cut: it ends inside its header, after " +
                    Count(static_cast<int64_t>(file_.size()), "byte"));
    }
    uint32_t value = 0;
    for (size_t i = 0; i < bytes; ++i) value |= uint32_t{file_[at + i]} << (8 * i);
    return value;
  }
  uint32_t Long(size_t at) const { return At(at, 4); }
  uint32_t Short(size_t at) const { return At(at, 2); }

 private:
  Bytes file_;
};

struct Header {
  size_t size = 0;  // of the second header
  int64_t width = 0, height = 0;
  bool topDown = false;
  uint32_t bits = 0, compression = NONE;
  std::array<uint32_t, 4> masks{};  // red, green, blue, alpha
  size_t masksBytes = 0;            // that follow the header
  size_t paletteAt = 0, paletteEntry = 4, colours = 0;
  size_t pixelsAt = 0;
  uint32_t perMetreX = 0, perMetreY = 0;

  bool HasFields() const { return compression == FIELDS || compression == ALPHA_FIELDS; }
  bool HasRuns() const { return compression == RLE8 || compression == RLE4; }
};

std::string CompressionName(const Header& header) {
  if (header.size == OS2_HEADER && header.compression == 3) return "Huffman of one dimension";
  if (header.size == OS2_HEADER && header.compression == 4) return "RLE24";
  switch (header.compression) {
    case NONE:
    case FIELDS:
    case ALPHA_FIELDS:
      return "none";
    case RLE8:
      return "RLE8";
    case RLE4:
      return "RLE4";
    case JPEG:
      return "JPEG";
    case PNG:
      return "PNG";
    default:
      return "number " + std::to_string(header.compression);
  }
}

[[noreturn]] void Refuse(const Header& header) {
  throw BadFile("BMP with " + std::to_string(header.bits) + " bits a pixel and compression " +
                std::to_string(header.compression) + " (" + CompressionName(header) +
                ") is not read; save it uncompressed, or as PNG");
}

void CheckKind(const Header& header) {
  const uint32_t bits = header.bits;
  const bool indexed = bits == 1 || bits == 2 || bits == 4 || bits == 8;
  const bool direct = bits == 16 || bits == 24 || bits == 32;
  const bool os2 = header.size == OS2_HEADER;
  const bool known = (header.compression == NONE && (indexed || direct)) ||
                     (header.compression == RLE8 && bits == 8) ||
                     (header.compression == RLE4 && bits == 4) ||
                     (header.HasFields() && !os2 && (bits == 16 || bits == 32));
  if (!known) Refuse(header);
}

void ReadMasks(const Numbers& numbers, Header* header) {
  if (header->bits == 16) header->masks = {0x7C00, 0x03E0, 0x001F, 0};
  if (header->bits == 32) header->masks = {0xFF0000, 0xFF00, 0xFF, 0};
  if (!header->HasFields()) return;
  const bool inside = header->size >= MASKS_HEADER;
  const bool alpha = inside ? header->size >= ALPHA_HEADER : header->compression == ALPHA_FIELDS;
  for (size_t i = 0; i < (alpha ? 4u : 3u); ++i) {
    header->masks[i] = numbers.Long(FILE_HEADER + INFO_HEADER + 4 * i);
  }
  if (!inside) header->masksBytes = alpha ? 16 : 12;
  for (const uint32_t mask : header->masks) {
    const uint32_t ones = mask == 0 ? 0 : mask >> std::countr_zero(mask);
    if ((ones & (ones + 1)) != 0) throw BadFile("the BMP file is damaged: a bit field has gaps");
  }
}

// The table ends where the pixels begin, whatever number of colours the header claims.
void PlacePalette(const Numbers& numbers, size_t fileSize, Header* header) {
  header->paletteAt = FILE_HEADER + header->size + header->masksBytes;
  if (header->bits > 8) {
    if (header->pixelsAt == 0) header->pixelsAt = header->paletteAt;
    return;
  }
  const size_t most = size_t{1} << header->bits;
  size_t claimed = header->size >= 36 ? numbers.Long(FILE_HEADER + 32) : 0;
  if (claimed == 0 || claimed > most) claimed = most;
  const size_t end = header->pixelsAt == 0 ? fileSize : std::min(header->pixelsAt, fileSize);
  const size_t room =
      end > header->paletteAt ? (end - header->paletteAt) / header->paletteEntry : 0;
  header->colours = std::min(claimed, room);
  if (header->pixelsAt == 0) {
    header->pixelsAt = header->paletteAt + header->colours * header->paletteEntry;
  }
}

Header ReadHeader(Bytes file) {
  const Numbers numbers(file);
  Header header;
  header.pixelsAt = numbers.Long(10);
  header.size = numbers.Long(FILE_HEADER);
  if (header.size == CORE_HEADER) {
    header.width = numbers.Short(18);
    header.height = numbers.Short(20);
    header.bits = numbers.Short(24);
    header.paletteEntry = 3;
  } else if (header.size >= 16 && header.size <= 4096) {
    header.width = static_cast<int32_t>(numbers.Long(18));
    header.height = static_cast<int32_t>(numbers.Long(22));
    header.bits = numbers.Short(28);
    if (header.size >= 20) header.compression = numbers.Long(30);
    if (header.size >= 32) {
      header.perMetreX = numbers.Long(38);
      header.perMetreY = numbers.Long(42);
    }
  } else {
    throw BadFile("the BMP file has a header of " + std::to_string(header.size) +
                  " bytes, which no kind of BMP has");
  }
  header.topDown = header.height < 0;
  if (header.topDown) header.height = -header.height;
  CheckKind(header);
  ReadMasks(numbers, &header);
  PlacePalette(numbers, file.size(), &header);
  if (header.pixelsAt < header.paletteAt) {
    throw BadFile("the BMP file is damaged: its pixels begin inside its header");
  }
  return header;
}

std::vector<uint32_t> ReadPalette(Bytes file, const Header& header) {
  const Numbers numbers(file);
  std::vector<uint32_t> palette(header.colours);
  for (size_t i = 0; i < header.colours; ++i) {
    palette[i] = numbers.At(header.paletteAt + i * header.paletteEntry, 3);
  }
  return palette;
}

Account AccountOf(const Header& header, std::span<const uint32_t> palette) {
  Account account;
  account.format = "BMP";
  account.width = header.width;
  account.height = header.height;
  account.compression = CompressionName(header);
  account.layout = header.topDown ? "rows from the top" : "rows from the bottom";
  if (header.bits <= 8) {
    account.bits = static_cast<int32_t>(header.bits);
    DescribePalette(palette, &account);
  } else {
    account.kind = "colour";
    account.samples = header.masks[3] != 0 ? 4 : 3;
    account.bits = header.bits == 16 ? 5 : 8;
    if (header.HasFields() && header.masks[0] != 0) {
      account.bits = std::popcount(header.masks[0]);
      account.meaning = "bit fields of " + std::to_string(std::popcount(header.masks[0])) + ", " +
                        std::to_string(std::popcount(header.masks[1])) + " and " +
                        std::to_string(std::popcount(header.masks[2])) + " bits";
    }
  }
  if (header.masks[3] != 0) {
    account.alpha = "straight";
    account.losses.push_back("alpha is left out");
  }
  const auto deep = [](uint32_t mask) { return std::popcount(mask) > 8; };
  if (header.HasFields() && std::any_of(header.masks.begin(), header.masks.begin() + 3, deep)) {
    account.losses.push_back("colours of more than 8 bits are rounded to 8");
  }
  if (header.perMetreX > 0) {
    account.resolution = std::to_string(header.perMetreX) + " x " +
                         std::to_string(header.perMetreY) + " pixels a metre";
  }
  return account;
}

// A row of the file as it stands there. Throws for one that the file is too short for.
class StoredRows {
 public:
  StoredRows(Bytes file, const Header& header) : header_(header) {
    const auto bits = static_cast<uint64_t>(header.width) * header.bits;
    pitch_ = static_cast<size_t>((bits + 31) / 32 * 4);
    rowBytes_ = static_cast<size_t>((bits + 7) / 8);
    // The padding of the last row may be missing.
    const uint64_t needed = uint64_t{pitch_} * static_cast<uint64_t>(header.height - 1) + rowBytes_;
    const uint64_t there = file.size() > header.pixelsAt ? file.size() - header.pixelsAt : 0;
    if (there < needed) {
      throw BadFile("the BMP file is cut: its " + std::to_string(header.width) + " x " +
                    std::to_string(header.height) + " pixels take " + std::to_string(needed) +
                    " bytes, and there are " + std::to_string(there));
    }
    first_ = file.data() + header.pixelsAt;
  }
  const uint8_t* Row(int64_t y) const {
    const int64_t stored = header_.topDown ? y : header_.height - 1 - y;
    return first_ + static_cast<uint64_t>(stored) * pitch_;
  }

 private:
  const Header& header_;
  const uint8_t* first_ = nullptr;
  size_t pitch_ = 0, rowBytes_ = 0;
};

// Of bytes that are pixels, and no numbers of colours.
void LendRows(Bytes file, const Header& header, Raster* raster) {
  const StoredRows rows(file, header);
  RefuseSize(header.width, header.height, 1);
  raster->width = static_cast<int32_t>(header.width);
  raster->height = static_cast<int32_t>(header.height);
  raster->lent = rows.Row(0);
  raster->lentPitch = header.height > 1 ? rows.Row(1) - rows.Row(0) : 0;
}

void ReadIndexed(Bytes file, const Header& header, Raster* raster) {
  const StoredRows rows(file, header);
  *raster = MakeRaster(header.width, header.height, 1, Sample::U8);
  const uint32_t bits = header.bits, mask = (1u << bits) - 1;
  for (int64_t y = 0; y < header.height; ++y) {
    const uint8_t* from = rows.Row(y);
    uint8_t* to = raster->Row(y);
    if (bits == 8) {
      std::copy_n(from, header.width, to);
      continue;
    }
    for (uint64_t x = 0; x < static_cast<uint64_t>(header.width); ++x) {
      const uint64_t bit = x * bits;
      to[x] = static_cast<uint8_t>(uint32_t{from[bit / 8]} >> (8 - bits - bit % 8) & mask);
    }
  }
}

void ReadRuns(Bytes file, const Header& header, Raster* raster, Account* account) {
  *raster = MakeRaster(header.width, header.height, 1, Sample::U8);
  const Bytes runs = header.pixelsAt < file.size() ? file.subspan(header.pixelsAt) : Bytes();
  const int64_t skipped = DecodeRuns(runs, header.compression == RLE4, header.topDown,
                                     raster->bytes.data(), raster->width, raster->height);
  if (skipped > 0) {
    account->losses.push_back(Count(skipped, "pixel") + " that the runs leave out became colour 0");
  }
}

// A bit field as 8 bits: its largest value is 255.
class Field {
 public:
  explicit Field(uint32_t mask)
      : mask_(mask), shift_(mask == 0 ? 0 : std::countr_zero(mask)), most_(mask >> shift_) {}
  uint8_t Of(uint32_t pixel) const {
    if (most_ == 0) return 0;
    const uint64_t value = (pixel & mask_) >> shift_;
    return static_cast<uint8_t>((value * 255 + most_ / 2) / most_);
  }

 private:
  uint32_t mask_;
  int shift_;
  uint64_t most_;
};

void ReadDirect(Bytes file, const Header& header, Raster* raster) {
  const StoredRows rows(file, header);
  *raster = MakeRaster(header.width, header.height, 3, Sample::U8);
  const size_t pixelBytes = header.bits / 8;
  const std::array<uint32_t, 4> masks =
      header.bits == 24 ? std::array<uint32_t, 4>{0xFF0000, 0xFF00, 0xFF, 0} : header.masks;
  const std::array<Field, 3> fields{Field(masks[0]), Field(masks[1]), Field(masks[2])};
  for (int64_t y = 0; y < header.height; ++y) {
    const uint8_t* from = rows.Row(y);
    uint8_t* to = raster->Row(y);
    for (int64_t x = 0; x < header.width; ++x, from += pixelBytes, to += 3) {
      uint32_t pixel = 0;
      for (size_t i = 0; i < pixelBytes; ++i) pixel |= uint32_t{from[i]} << (8 * i);
      for (size_t c = 0; c < 3; ++c) to[c] = fields[c].Of(pixel);
    }
  }
}

void TellStrayNumbers(const Header& header, const Raster& raster, Account* account) {
  if (header.colours >> header.bits != 0) return;  // there can be none
  const auto stray = std::count_if(raster.bytes.begin(), raster.bytes.end(),
                                   [&](uint8_t number) { return number >= header.colours; });
  if (stray > 0) {
    account->losses.push_back(Count(stray, "pixel") + " with colours beyond the palette of " +
                              std::to_string(header.colours) + " became black");
  }
}

}  // namespace

bool IsBmp(Bytes file) {
  return file.size() >= 2 && file[0] == 'B' && file[1] == 'M';
}

Picture ReadBmp(Bytes file, int32_t page, Want want) {
  OnlyPage(page, "BMP");
  const Header header = ReadHeader(file);
  Picture picture;
  std::vector<uint32_t> palette = ReadPalette(file, header);
  picture.account = AccountOf(header, palette);
  if (want == Want::Account) return picture;
  if (header.width < 1 || header.height < 1) {
    throw BadFile("the BMP picture has no pixels: it is " + std::to_string(header.width) + " x " +
                  std::to_string(header.height));
  }
  if (header.bits > 8) {
    ReadDirect(file, header, &picture.raster);
    return picture;
  }
  const bool lends = want == Want::PixelsOrLent && !header.HasRuns() && header.bits == 8;
  if (lends && IsRamp(palette)) {
    LendRows(file, header, &picture.raster);
    return picture;
  }
  if (header.HasRuns()) {
    ReadRuns(file, header, &picture.raster, &picture.account);
  } else {
    ReadIndexed(file, header, &picture.raster);
  }
  TellStrayNumbers(header, picture.raster, &picture.account);
  picture.raster.palette = std::move(palette);
  SettlePalette(&picture.raster);
  return picture;
}

}  // namespace pictures
