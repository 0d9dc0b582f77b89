// Pictures as the commands need them.
#include "orlune/shared/pictures.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace front {

std::string KindName(const Account& account) {
  const bool several = account.kind == "colour" || account.kind == "complex";
  const int32_t count = several ? account.PixelBits() : account.bits;  // of gray without alpha
  const std::string bits = std::to_string(count) + "-bit ";
  if (account.kind == "signed") return bits + "signed gray";
  return bits + account.kind;
}

std::string SizeName(const Account& account) {
  return std::to_string(account.width) + " x " + std::to_string(account.height);
}

std::string HeadLine(const Account& account) {
  std::string line = account.format;
  if (account.pages > 1) {
    line += " page " + std::to_string(account.page) + " of " + std::to_string(account.pages);
  }
  return line + ", " + SizeName(account) + ", " + KindName(account);
}

std::string TypeName(int32_t imageType) {
  static constexpr const char* NAMES[] = {"u8", "i16", "sgl", "complex", "rgb"};
  return imageType >= IMAGE_U8 && imageType <= IMAGE_RGB ? NAMES[imageType] : "opaque";
}

Range LevelsOf(const Account& account, int32_t imageType) {
  constexpr double INFINITE = std::numeric_limits<double>::infinity();
  const bool plain = account.kind == "gray" && account.meaning != "grays of a palette";
  if (imageType == IMAGE_U8) {
    return {0, plain && account.bits < 8 ? std::ldexp(1.0, account.bits) - 1 : 255};
  }
  if (plain) return {0, std::ldexp(1.0, account.bits) - 1};
  if (account.kind == "colour" && account.format != "native") {
    return {0, std::ldexp(1.0, account.bits) - 1};
  }
  if (imageType == IMAGE_I16) return {-32768, 32767};
  return {-INFINITE, INFINITE};
}

namespace {

// Whole numbers are summed as such, so many at a time as a small sum takes: the mean is exact, and
// the loops take many at once.
template <class T>
int64_t SumOf(const T* row, int32_t width) {
  using Part = std::conditional_t<sizeof(T) == 1, uint16_t, int32_t>;
  constexpr int32_t AT_ONCE = 256;
  int64_t sum = 0;
  for (int32_t first = 0; first < width; first += AT_ONCE) {
    const int32_t end = std::min(first + AT_ONCE, width);
    Part part = 0;
    for (int32_t x = first; x < end; ++x) part = static_cast<Part>(part + row[x]);
    sum += part;
  }
  return sum;
}

// The ends of whole numbers.
template <class T>
struct Ends {
  T low = std::numeric_limits<T>::max(), high = std::numeric_limits<T>::lowest();

  void Take(const T* row, int32_t width) {
    T lowest = low, highest = high;
    for (int32_t x = 0; x < width; ++x) {
      lowest = std::min(lowest, row[x]);
      highest = std::max(highest, row[x]);
    }
    low = lowest;
    high = highest;
  }
};

template <class T>
Extremes ExtremesOfWhole(const ImageInfo& info) {
  Ends<T> ends;
  int64_t sum = 0;
  for (int32_t y = 0; y < info.height; ++y) {
    const T* row = Row<T>(info, y);
    ends.Take(row, info.width);
    sum += SumOf(row, info.width);
  }
  const int64_t pixels = int64_t{info.width} * info.height;
  if (pixels == 0) return {};
  return {static_cast<double>(ends.low), static_cast<double>(ends.high),
          static_cast<double>(sum) / static_cast<double>(pixels), pixels, 0};
}

Extremes ExtremesOfFloats(const ImageInfo& info) {
  Extremes extremes;
  float low = std::numeric_limits<float>::max(), high = std::numeric_limits<float>::lowest();
  double sum = 0;
  for (int32_t y = 0; y < info.height; ++y) {
    const float* row = Row<float>(info, y);
    for (int32_t x = 0; x < info.width; ++x) {
      if (!std::isfinite(row[x])) {
        ++extremes.others;
        continue;
      }
      low = std::min(low, row[x]);
      high = std::max(high, row[x]);
      sum += static_cast<double>(row[x]);
    }
  }
  extremes.finite = int64_t{info.width} * info.height - extremes.others;
  if (extremes.finite == 0) return extremes;
  extremes.low = static_cast<double>(low);
  extremes.high = static_cast<double>(high);
  extremes.mean = sum / static_cast<double>(extremes.finite);
  return extremes;
}

}  // namespace

Extremes ExtremesOf(const Image& image) {
  const ImageInfo info = image.Info();
  return ForPixelType(info.type, [&](auto* pixel) {
    using T = std::remove_pointer_t<decltype(pixel)>;
    if constexpr (std::is_floating_point_v<T>) {
      return ExtremesOfFloats(info);
    } else {
      return ExtremesOfWhole<T>(info);
    }
  });
}

Range ByteRange(const Image& image) {
  const ImageInfo info = image.Info();
  Ends<uint8_t> ends;
  for (int32_t y = 0; y < info.height; ++y) ends.Take(Row<uint8_t>(info, y), info.width);
  if (int64_t{info.width} * info.height == 0) return {};
  return {static_cast<double>(ends.low), static_cast<double>(ends.high)};
}

bool HasLevelsBeyond(const Image& image, const Range& range) {
  const ImageInfo info = image.Info();
  Ends<uint8_t> ends;
  // From the middle on, where most things are.
  for (int32_t i = 0; i < info.height; ++i) {
    const int32_t y = (info.height / 2 + i) % info.height;
    ends.Take(Row<uint8_t>(info, y), info.width);
    if (ends.low < range.low && ends.high > range.high) return true;
  }
  return false;
}

Image Stretch(const Image& gray, const Extremes& extremes) {
  const ImageInfo from = gray.Info();
  Image stretched = Image::ForNewPixels(IMAGE_U8, from.border, from.width, from.height);
  Check(ZEL_SetImageCalibration(stretched, from.unit, from.xStep, from.yStep));
  const ImageInfo to = stretched.Info();
  const double low = extremes.low, high = extremes.high;
  const double scale = high > low ? 255.0 / (high - low) : 0.0;
  ForPixelType(from.type, [&](auto* pixel) {
    using T = std::remove_pointer_t<decltype(pixel)>;
    for (int32_t y = 0; y < from.height; ++y) {
      const T* source = Row<T>(from, y);
      std::transform(source, source + from.width, Row<uint8_t>(to, y), [&](T v) {
        const double level = (static_cast<double>(v) - low) * scale + 0.5;
        return static_cast<uint8_t>(level >= 255 ? 255 : level >= 0 ? level : 0);
      });
    }
  });
  return stretched;
}

}  // namespace front
