#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <optional>

#include "files/dispatch.h"
#include "harness/file_bytes.h"
#include "harness/memory_files.h"
#include "harness/test_image.h"

namespace {

using test::Bytes;
using test::MemoryFiles;
using test::TestImage;

constexpr int32_t TYPES[] = {IMAGE_U8, IMAGE_I16, IMAGE_SGL, IMAGE_COMPLEX, IMAGE_RGB};

// Raw files give samples of every class. The reference below takes one sample at a time.
struct Sample {
  enum { Integer, Colour, Float, Complex } kind = Integer;
  int64_t value = 0;
  int64_t red = 0, green = 0, blue = 0, fourth = 0;
  double real = 0, imaginary = 0;
};

float FloatOf(uint64_t bits) {
  const auto word = static_cast<uint32_t>(bits);
  float value = 0;
  std::memcpy(&value, &word, 4);
  return value;
}

int64_t Signed(uint64_t value, int bits) {
  const int64_t limit = int64_t{1} << (bits - 1);
  const auto number = static_cast<int64_t>(value);
  return number >= limit ? number - 2 * limit : number;
}

constexpr int64_t CLASS_BITS[] = {1, 2, 4, 8, 16, 16, 16, 16, 24, 8, 32, 32, 32, 32, 48, 64};

// Empty when the data ends before sample k does.
std::optional<Sample> SampleAt(int32_t pixelClass, bool swap, const Bytes& data, int64_t k) {
  const int64_t bits = CLASS_BITS[pixelClass];
  if ((k + 1) * bits > static_cast<int64_t>(data.size()) * 8) return {};
  const auto at = static_cast<size_t>(k * bits / 8);
  const auto number = [&](size_t offset, int size, bool reversed) {
    return reversed ? test::BigNumber(data, at + offset, size)
                    : test::LittleNumber(data, at + offset, size);
  };
  Sample sample;
  switch (pixelClass) {
    case 0:
    case 1:
    case 2: {
      for (int64_t bit = k * bits; bit < (k + 1) * bits; bit++) {
        const int set = data[static_cast<size_t>(bit / 8)] >> (7 - bit % 8) & 1;
        sample.value = sample.value * 2 + set;
      }
      return sample;
    }
    case 3:
    case 9:
      sample.value = data[at];
      return sample;
    case 4:
      sample.value = Signed(number(0, 2, false), 16);
      return sample;
    case 5:
    case 6:
      sample.value = Signed(number(0, 2, swap), 16);
      return sample;
    case 7: {
      const auto word = static_cast<int64_t>(number(0, 2, swap));
      sample.kind = Sample::Colour;
      sample.blue = word % 32;
      sample.green = word / 32 % 32;
      sample.red = word / 1024 % 32;
      return sample;
    }
    case 8:
      sample.kind = Sample::Colour;
      sample.red = data[swap ? at + 2 : at];
      sample.green = data[at + 1];
      sample.blue = data[swap ? at : at + 2];
      return sample;
    case 10:
      sample.value = static_cast<int64_t>(number(0, 4, swap));
      return sample;
    case 11:
      sample.value = Signed(number(0, 4, swap), 32);
      return sample;
    case 12: {
      // Reversed unless the option asks for a reversal.
      const uint64_t word = number(0, 4, !swap);
      sample.kind = Sample::Colour;
      sample.blue = word & 0xFF;
      sample.green = word >> 8 & 0xFF;
      sample.red = word >> 16 & 0xFF;
      sample.fourth = static_cast<int64_t>(word >> 24);
      return sample;
    }
    case 13:
      sample.kind = Sample::Float;
      sample.real = static_cast<double>(FloatOf(number(0, 4, swap)));
      return sample;
    case 14:
      sample.kind = Sample::Complex;
      sample.real = static_cast<double>(Signed(number(0, 3, false), 24));
      sample.imaginary = static_cast<double>(Signed(number(3, 3, false), 24));
      return sample;
    default:
      sample.kind = Sample::Complex;
      sample.real = static_cast<double>(FloatOf(number(0, 4, false)));
      sample.imaginary = static_cast<double>(FloatOf(number(4, 4, false)));
      return sample;
  }
}

// Cut toward zero, low bits kept; nothing where there is no 64-bit integer.
int64_t Cut(double value) {
  return std::isfinite(value) && std::fabs(value) < 9.2233720368547758e18
             ? static_cast<int64_t>(std::trunc(value))
             : 0;
}

template <class T>
Bytes BytesOf(const std::vector<T>& values) {
  Bytes bytes(values.size() * sizeof(T));
  std::memcpy(bytes.data(), values.data(), bytes.size());
  return bytes;
}

Bytes PixelOf(const Sample& sample, int32_t type) {
  const double magnitude =
      sample.kind == Sample::Complex
          ? std::sqrt(sample.real * sample.real + sample.imaginary * sample.imaginary)
          : sample.real;
  const int64_t sum = sample.red + sample.green + sample.blue;
  const int64_t integer = sample.kind == Sample::Integer  ? sample.value
                          : sample.kind == Sample::Colour ? sum / 3
                                                          : Cut(magnitude);
  const auto value =
      static_cast<float>(sample.kind == Sample::Integer  ? static_cast<double>(sample.value)
                         : sample.kind == Sample::Colour ? static_cast<double>(sum) * (1.0 / 3.0)
                                                         : magnitude);
  const auto byte = static_cast<uint8_t>(integer & 0xFF);
  switch (type) {
    case IMAGE_U8:
      return {byte};
    case IMAGE_I16:
      return BytesOf<uint16_t>({static_cast<uint16_t>(integer & 0xFFFF)});
    case IMAGE_SGL:
      return BytesOf<float>({value});
    case IMAGE_COMPLEX:
      if (sample.kind != Sample::Complex) return BytesOf<float>({value, 0.0f});
      return BytesOf<float>(
          {static_cast<float>(sample.real), static_cast<float>(sample.imaginary)});
    default:
      if (sample.kind != Sample::Colour) return {byte, byte, byte, 0};
      return {static_cast<uint8_t>(sample.blue), static_cast<uint8_t>(sample.green),
              static_cast<uint8_t>(sample.red), static_cast<uint8_t>(sample.fourth)};
  }
}

bool SamePixel(const Bytes& expected, const uint8_t* pixel, int32_t type) {
  if (type != IMAGE_SGL && type != IMAGE_COMPLEX) {
    return std::memcmp(expected.data(), pixel, expected.size()) == 0;
  }
  for (size_t at = 0; at < expected.size(); at += 4) {
    float wanted = 0;
    float got = 0;
    std::memcpy(&wanted, expected.data() + at, 4);
    std::memcpy(&got, pixel + at, 4);
    if (std::memcmp(&wanted, &got, 4) != 0 && !(std::isnan(wanted) && std::isnan(got)))
      return false;
  }
  return true;
}

// Class 13 and 15 go straight into their own types, where a raw file's order is not looked at.
bool OrderIsIgnored(int32_t pixelClass, int32_t type) {
  return pixelClass == 13 && type == IMAGE_SGL;
}

int32_t ReadRaw(const TestImage& image, const zel::ReadOptions& options) {
  zel::FileContext context;
  return zel::FileReadKernel(image, "f", {.options = &options}, &context);
}

Bytes DataOf(int32_t pixelClass, size_t size, uint64_t seed) {
  Bytes data = test::RandomBytes(size, seed);
  if (pixelClass != 13 && pixelClass != 15) return data;
  // Every kind of float, of either byte order.
  const float odd[] = {1.5f,
                       -2.5f,
                       300.7f,
                       -1.0f,
                       1e10f,
                       -1e10f,
                       1e19f,
                       70000.9f,
                       0.0f,
                       -0.0f,
                       std::numeric_limits<float>::infinity(),
                       std::numeric_limits<float>::quiet_NaN(),
                       3e38f,
                       1e-42f,
                       255.99f};
  for (size_t i = 0; i + 4 <= size; i += 4) {
    if (data[i] % 3 == 0) continue;
    std::memcpy(data.data() + i, &odd[data[i + 1] % std::size(odd)], 4);
    if (data[i] % 3 == 1)
      std::reverse(data.begin() + static_cast<int64_t>(i),
                   data.begin() + static_cast<int64_t>(i) + 4);
  }
  return data;
}

void ExpectRawFile(int32_t pixelClass, int32_t type, bool swap, int32_t width, int32_t height,
                   int32_t border, const Bytes& data, int32_t dataOffset) {
  const int32_t even = width + width % 2;
  const TestImage image(type, width, height, border);
  // What the resize to the even width leaves is where the pixels start from.
  const TestImage before(type, width, height, border);
  ASSERT_EQ(ZEL_SetImageSize(before, even, height), 0);
  const Bytes around = before.Surroundings();
  ASSERT_EQ(ReadRaw(image, {.rawMode = 1,
                            .pixelClass = pixelClass,
                            .dataOffset = dataOffset,
                            .scaleToRange = 0,
                            .rangeMin = 0,
                            .rangeMax = 0,
                            .littleEndian = swap ? 0 : 1}),
            0);
  ASSERT_EQ(image.width(), width == 0 || height == 0 ? 0 : even);
  EXPECT_EQ(image.Surroundings(), around);
  const bool order = swap && !OrderIsIgnored(pixelClass, type);
  const auto pixelBytes = static_cast<size_t>(image.Info().pixelBytes);
  const Bytes samples(data.begin() + dataOffset, data.end());
  for (int32_t y = 0; y < image.height(); y++) {
    for (int32_t x = 0; x < even; x++) {
      const auto sample = SampleAt(pixelClass, order, samples, int64_t{y} * width + x);
      const uint8_t* old = before.At<uint8_t>(x, y);
      const Bytes expected = x >= width ? Bytes(pixelBytes, 0)
                             : sample   ? PixelOf(*sample, type)
                                        : Bytes(old, old + pixelBytes);
      ASSERT_TRUE(SamePixel(expected, image.At<uint8_t>(x, y), type))
          << "class " << pixelClass << " to type " << type << (swap ? " swapped" : "") << ", "
          << width << " x " << height << ", pixel " << x << ' ' << y;
    }
  }
}

class Conversion : public testing::TestWithParam<int32_t> {};

TEST_P(Conversion, EverySampleBecomesItsPixel) {
  MemoryFiles files;
  const int32_t pixelClass = GetParam();
  for (const int32_t type : TYPES) {
    for (const auto& [width, height] : test::ODD_SIZES) {
      const int64_t bits = CLASS_BITS[pixelClass] * width * height;
      for (const bool swap : {false, true}) {
        const int32_t border = (width + height) % 3;
        const Bytes data = DataOf(pixelClass, static_cast<size_t>(bits / 8 + 9), 3);
        files.Put("f", data);
        ExpectRawFile(pixelClass, type, swap, width, height, border, data, 2);
        const Bytes shorter = test::Cut(data, static_cast<size_t>(bits / 8 * 2 / 3 + 2));
        files.Put("f", shorter);
        ExpectRawFile(pixelClass, type, swap, width, height, border, shorter, 2);
      }
    }
  }
}

TEST_P(Conversion, FilesLargerThanAnyBufferAreReadInPieces) {
  MemoryFiles files;
  const int32_t pixelClass = GetParam();
  for (const int32_t type : {IMAGE_U8, IMAGE_I16, IMAGE_RGB}) {
    const int64_t bits = CLASS_BITS[pixelClass] * 501 * 300;
    const Bytes data = DataOf(pixelClass, static_cast<size_t>(bits / 8 + 1), 3);
    files.Put("f", data);
    ExpectRawFile(pixelClass, type, true, 501, 300, 1, data, 0);
    ExpectRawFile(pixelClass, type, false, 500, 300, 0, data, 0);
  }
}

INSTANTIATE_TEST_SUITE_P(Classes, Conversion,
                         testing::Values(0, 1, 2, 3, 4, 5, 6, 7, 8, 10, 11, 12, 13, 14, 15),
                         [](const auto& about) { return "Class" + std::to_string(about.param); });

TEST(Conversion, APlaneAloneIsTheRedOne) {
  MemoryFiles files;
  const Bytes data = test::RandomBytes(24, 3);
  files.Put("f", data);
  const TestImage image(IMAGE_RGB, 6, 4, 1);
  ASSERT_EQ(ReadRaw(image, {1, 9, 0, 0, 0, 0, 1}), 0);
  for (int32_t k = 0; k < 24; k++) {
    EXPECT_EQ(image.Get<uint32_t>(k % 6, k / 6), uint32_t{data[static_cast<size_t>(k)]} << 16);
  }
}

TEST(Conversion, UnknownClassesAndMissingOptionsAre503) {
  MemoryFiles files;
  files.Put("f", Bytes(100));
  const TestImage image(IMAGE_U8, 4, 4);
  EXPECT_EQ(ReadRaw(image, {1, 16, 0, 0, 0, 0, 1}), 503);
  EXPECT_EQ(ReadRaw(image, {1, -1, 0, 0, 0, 0, 1}), 503);
  for (const zel::FileFormat format : {zel::FORMAT_RAW, zel::FORMAT_RSTR}) {
    zel::FileContext context;
    EXPECT_EQ(zel::FileReadKernel(image, "f", {.format = format}, &context), 503);
  }
}

TEST(Conversion, ANegativeDataOffsetIs511) {
  MemoryFiles files;
  files.Put("f", Bytes(100));
  const TestImage image(IMAGE_U8, 4, 4);
  EXPECT_EQ(ReadRaw(image, {1, 3, -1, 0, 0, 0, 1}), 511);
  EXPECT_EQ(ReadRaw(image, {1, 5, -1, 1, 0, 0, 1}), 511);
}

// The stretch, from the rule: in doubles, limited, cut.
int64_t Stretched(int64_t sample, int32_t type, int64_t min, int64_t max) {
  const double low = type == IMAGE_U8 ? 0 : -32768;
  const double high = type == IMAGE_U8 ? 255 : 32767;
  const double full = type == IMAGE_U8 ? 255 : 65535;
  const double scale = max > min ? full / static_cast<double>(max - min) : 1;
  const double offset = max > min ? -static_cast<double>(min) * scale : 0;
  const double value = static_cast<double>(sample) * scale + offset;
  return static_cast<int64_t>(std::trunc(std::min(std::max(value, low), high)));
}

TEST(Conversion, AStretchFromTheRangeInTheFile) {
  MemoryFiles files;
  for (const int32_t pixelClass : {1, 2, 3, 5, 6, 10, 11}) {
    for (const bool swap : {false, true}) {
      for (const int32_t type : {IMAGE_U8, IMAGE_I16}) {
        const bool direct = (pixelClass == 3 && type == IMAGE_U8) ||
                            ((pixelClass == 5 || pixelClass == 6) && type == IMAGE_I16);
        const auto size = static_cast<size_t>(CLASS_BITS[pixelClass] * 48 / 8);
        const Bytes data = test::RandomBytes(size, static_cast<uint64_t>(pixelClass));
        files.Put("f", data);
        const TestImage image(type, 8, 6, 1);
        ASSERT_EQ(ReadRaw(image, {1, pixelClass, 0, 1, 5, 6, swap ? 0 : 1}), 0);
        int64_t min = INT64_MAX;
        int64_t max = INT64_MIN;
        for (int64_t k = 0; k < 48; k++) {
          // The extremes are kept as floats.
          const auto value =
              static_cast<int64_t>(static_cast<float>(SampleAt(pixelClass, swap, data, k)->value));
          min = std::min(min, value);
          max = std::max(max, value);
        }
        min = std::max<int64_t>(min, INT32_MIN);
        max = std::min<int64_t>(max, INT32_MAX);
        for (int32_t k = 0; k < 48; k++) {
          const int64_t sample = SampleAt(pixelClass, swap, data, k)->value;
          const int64_t expected = direct ? sample : Stretched(sample, type, min, max);
          const int64_t pixel = type == IMAGE_U8 ? image.Get<uint8_t>(k % 8, k / 8)
                                                 : image.Get<int16_t>(k % 8, k / 8);
          ASSERT_EQ(pixel, expected) << "class " << pixelClass << " type " << type << " at " << k;
        }
      }
    }
  }
}

TEST(Conversion, AStretchFromAGivenRange) {
  MemoryFiles files;
  files.Put("f", test::FileBytes().Little(10, 2).Little(20, 2).Little(15, 2).Little(0xFFFF, 2));
  const TestImage image(IMAGE_U8, 4, 1);
  ASSERT_EQ(ReadRaw(image, {1, 5, 0, 2, 10.9f, 20.9f, 1}), 0);
  EXPECT_EQ(image.Pixels(), Bytes({0, 255, 127, 0}));
  ASSERT_EQ(ReadRaw(image, {1, 5, 0, 2, 20.0f, 20.0f, 1}), 0);
  EXPECT_EQ(image.Pixels(), Bytes({10, 20, 15, 0})) << "without a range nothing is scaled";
}

TEST(Conversion, BitsStretchToBlackAndWhite) {
  MemoryFiles files;
  files.Put("f", {0xA0});
  const TestImage image(IMAGE_U8, 4, 1);
  ASSERT_EQ(ReadRaw(image, {1, 0, 0, 1, 0, 0, 1}), 0);
  EXPECT_EQ(image.Pixels(), Bytes({255, 0, 255, 0}));
}

TEST(Conversion, AHeaderSwitchesTheStretchOff) {
  MemoryFiles files;
  files.Put("f", test::NativeFile(2, 1, 4, {1, 0, 2, 0}));
  const TestImage image(IMAGE_U8, 4, 1);
  ASSERT_EQ(ReadRaw(image, {0, 3, 0, 1, 0, 0, 1}), 0);
  EXPECT_EQ(image.Pixels(), Bytes({1, 2}));
}

}  // namespace
