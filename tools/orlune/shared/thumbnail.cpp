// Pictures made small: each pixel is the mean of those that it stands for.
#include "orlune/shared/thumbnail.h"

#include <algorithm>
#include <array>

#include "pictures/writers.h"

namespace front {
namespace {

constexpr int32_t LONGEST_SIDE = 320;

std::array<uint8_t, 3> MeanOf(const ImageInfo& from, int32_t left, int32_t top, int32_t size) {
  std::array<int64_t, 3> sums{};
  int64_t count = 0;
  for (int32_t y = top; y < std::min(top + size, from.height); ++y) {
    const RGBValue* row = Row<RGBValue>(from, y);
    for (int32_t x = left; x < std::min(left + size, from.width); ++x, ++count) {
      sums[0] += row[x] >> 16 & 0xFF;
      sums[1] += row[x] >> 8 & 0xFF;
      sums[2] += row[x] & 0xFF;
    }
  }
  std::array<uint8_t, 3> mean{};
  for (size_t i = 0; i < mean.size(); ++i) mean[i] = static_cast<uint8_t>(sums[i] / count);
  return mean;
}

}  // namespace

std::string ThumbnailOf(const Image& picture) {
  const ImageInfo from = picture.Info();
  const int32_t size = (std::max(from.width, from.height) + LONGEST_SIDE - 1) / LONGEST_SIDE;
  Raster raster =
      MakeRaster((from.width + size - 1) / size, (from.height + size - 1) / size, 3, Sample::U8);
  for (int32_t y = 0; y < raster.height; ++y) {
    uint8_t* to = raster.Row(y);
    for (int32_t x = 0; x < raster.width; ++x, to += 3) {
      const std::array<uint8_t, 3> mean = MeanOf(from, x * size, y * size, size);
      std::copy(mean.begin(), mean.end(), to);
    }
  }
  const std::vector<uint8_t> bytes = EncodePng(raster);
  return {bytes.begin(), bytes.end()};
}

}  // namespace front
