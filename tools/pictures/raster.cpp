// Pixels as a file holds them.
#include "pictures/raster.h"

#include <algorithm>

namespace pictures {
namespace {

bool IsGray(uint32_t colour) {
  return colour == (colour & 255) * 0x010101;
}

}  // namespace

bool IsRamp(std::span<const uint32_t> colours) {
  for (size_t i = 0; i < colours.size(); ++i) {
    if (colours[i] != i * 0x010101) return false;
  }
  return colours.size() == 256;
}

int32_t BytesOf(Sample sample) {
  switch (sample) {
    case Sample::U8:
    case Sample::I8:
      return 1;
    case Sample::U16:
    case Sample::I16:
      return 2;
    case Sample::U32:
    case Sample::I32:
    case Sample::F32:
      return 4;
    case Sample::F64:
      return 8;
  }
  return 1;
}

void RefuseSize(int64_t width, int64_t height, int64_t pixelBytes) {
  constexpr int64_t LONGEST_SIDE = 0x7FFFFFFF;
  const std::string size = std::to_string(width) + " x " + std::to_string(height);
  if (width < 1 || height < 1) throw BadFile("the picture has no pixels: it is " + size);
  if (width > LONGEST_SIDE || height > LONGEST_SIDE || width > MOST_BYTES / pixelBytes / height) {
    throw BadFile("the picture of " + size + " pixels takes more than 2 GiB of memory");
  }
}

Raster MakeRaster(int64_t width, int64_t height, int32_t channels, Sample sample) {
  const int64_t pixelBytes = int64_t{channels} * BytesOf(sample);
  RefuseSize(width, height, pixelBytes);
  Raster raster;
  raster.width = static_cast<int32_t>(width);
  raster.height = static_cast<int32_t>(height);
  raster.channels = channels;
  raster.sample = sample;
  raster.bytes.resize(static_cast<size_t>(width * height * pixelBytes));
  return raster;
}

void SettlePalette(Raster* raster) {
  if (raster->palette.empty()) return;
  raster->palette.resize(256);
  if (!std::all_of(raster->palette.begin(), raster->palette.end(), IsGray)) return;
  if (IsRamp(raster->palette)) {
    raster->palette.clear();
    return;
  }
  std::transform(raster->bytes.begin(), raster->bytes.end(), raster->bytes.begin(),
                 [&](uint8_t number) { return static_cast<uint8_t>(raster->palette[number]); });
  raster->palette.clear();
}

void DescribePalette(std::span<const uint32_t> colours, Account* account) {
  account->kind = "palette";
  account->colours = static_cast<int32_t>(colours.size());
  if (!std::all_of(colours.begin(), colours.end(), IsGray)) return;
  account->kind = "gray";
  if (!IsRamp(colours)) account->meaning = "grays of a palette";
}

void OnlyPage(int32_t page, const std::string& format) {
  if (page != 1) {
    throw BadFile("a " + format + " file holds one picture; there is no #" + std::to_string(page));
  }
}

std::string Count(int64_t number, const std::string& one) {
  return std::to_string(number) + " " + one + (number == 1 ? "" : "s");
}

}  // namespace pictures
