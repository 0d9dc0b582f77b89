// The part of a picture that a command works on.
#include "orlune/inspect/regions.h"

#include <algorithm>
#include <cmath>
#include <stdexcept>

#include "orlune/shared/words.h"

namespace front {
namespace {

template <class T, class Test>
Image Marked(const Image& picture, Test isMarked) {
  const ImageInfo from = picture.Info();
  Image mask(IMAGE_U8, 0, from.width, from.height);
  const ImageInfo to = mask.Info();
  for (int32_t y = 0; y < from.height; ++y) {
    const T* source = Row<T>(from, y);
    std::transform(source, source + from.width, Row<uint8_t>(to, y),
                   [&](const T& v) { return static_cast<uint8_t>(isMarked(v)); });
  }
  return mask;
}

std::string SizeText(const ImageInfo& info) {
  return std::to_string(info.width) + " x " + std::to_string(info.height);
}

int32_t Side(std::string_view text) {
  const double number = ParseNumber(text);
  if (number != std::floor(number) || number < 0 || number > 0x7FFFFFFF) {
    throw std::invalid_argument(Quoted(text) + " is no place in a picture");
  }
  return static_cast<int32_t>(number);
}

}  // namespace

Region ParseRegion(std::string_view text) {
  const std::vector<std::string_view> sides = Split(text, ',');
  if (sides.size() != 4) {
    throw std::invalid_argument(Quoted(text) +
                                " is no region: write LEFT,TOP,WIDTH,HEIGHT, as in 10,20,300,200");
  }
  const Region region{Side(sides[0]), Side(sides[1]), Side(sides[2]), Side(sides[3])};
  if (region.width == 0 || region.height == 0) {
    throw std::invalid_argument("the region " + Quoted(text) + " is empty");
  }
  return region;
}

// The mean of a colour would not do: it may be 0.
Image ReadMask(const std::string& path) {
  struct Complex {
    float real, imaginary;
  };
  Loaded picture = ReadPicture(path, {});
  if (!picture.palette.empty()) ApplyPalette(&picture);
  const auto notZero = [](auto v) { return v != 0; };
  switch (picture.image.Info().type) {
    case IMAGE_U8:
      return Marked<uint8_t>(picture.image, notZero);
    case IMAGE_I16:
      return Marked<int16_t>(picture.image, notZero);
    case IMAGE_SGL:
      return Marked<float>(picture.image, notZero);
    case IMAGE_COMPLEX:
      return Marked<Complex>(picture.image,
                             [](const Complex& v) { return v.real != 0 || v.imaginary != 0; });
    default:
      return Marked<RGBValue>(picture.image, [](RGBValue v) { return (v & 0xFFFFFF) != 0; });
  }
}

void CheckMaskFits(const Image& mask, const Image& picture) {
  const ImageInfo own = mask.Info(), other = picture.Info();
  if (own.width != other.width || own.height != other.height) {
    throw std::invalid_argument("the mask of " + SizeText(own) +
                                " pixels does not fit on the picture of " + SizeText(other));
  }
}

std::optional<Image> PlaceOf(const std::optional<Region>& region, const Image* mask,
                             const Image& picture) {
  if (!region && mask == nullptr) return std::nullopt;
  if (mask != nullptr) CheckMaskFits(*mask, picture);
  const ImageInfo info = picture.Info();
  const Region all{0, 0, info.width, info.height};
  const Region part = region.value_or(all);
  const int64_t right = std::min<int64_t>(int64_t{part.left} + part.width, info.width);
  const int64_t bottom = std::min<int64_t>(int64_t{part.top} + part.height, info.height);
  if (part.left >= right || part.top >= bottom) {
    throw std::invalid_argument("the region lies outside the picture of " + SizeText(info));
  }
  Image place(IMAGE_U8, 0, info.width, info.height);
  Check(ZEL_ClearPixels(place));
  const ImageInfo to = place.Info();
  for (int32_t y = part.top; y < bottom; ++y) {
    uint8_t* row = Row<uint8_t>(to, y);
    if (mask == nullptr) {
      std::fill(row + part.left, row + right, uint8_t{1});
    } else {
      const uint8_t* from = Row<uint8_t>(mask->Info(), y);
      std::copy(from + part.left, from + right, row + part.left);
    }
  }
  return place;
}

Image PixelsAt(const Image& place, const Image& gray) {
  const ImageInfo info = gray.Info(), where = place.Info();
  std::vector<uint8_t> pixels;
  for (int32_t y = 0; y < info.height; ++y) {
    const uint8_t* row = Row<uint8_t>(info, y);
    const uint8_t* marked = Row<uint8_t>(where, y);
    for (int32_t x = 0; x < info.width; ++x) {
      if (marked[x] != 0) pixels.push_back(row[x]);
    }
  }
  Image line(IMAGE_U8);
  if (!pixels.empty()) {
    Check(ZEL_ArrayToImage(line, ARRAY_U8, pixels.data(), static_cast<int32_t>(pixels.size()), 1));
  }
  return line;
}

void KeepAt(const Image& place, const Image& mask) {
  const ImageInfo info = mask.Info(), where = place.Info();
  for (int32_t y = 0; y < info.height; ++y) {
    uint8_t* row = Row<uint8_t>(info, y);
    const uint8_t* marked = Row<uint8_t>(where, y);
    std::transform(row, row + info.width, marked, row,
                   [](uint8_t value, uint8_t here) { return here != 0 ? value : uint8_t{0}; });
  }
}

}  // namespace front
