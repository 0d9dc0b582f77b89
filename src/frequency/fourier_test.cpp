// The Fourier transform against the plain algorithm, bit by bit, and against the mathematics.
#include <gtest/gtest.h>

#include <cmath>
#include <complex>
#include <numbers>
#include <utility>
#include <vector>

#include "frequency/frequency_test.h"
#include "tests/support/refused_memory.h"
#include "tests/support/walks.h"

namespace {

using test::ComplexAt;
using test::SameBits;
using test::SpectrumImage;
using test::TestImage;

// ---- the algorithm as it is stated, one signal at a time

struct Number {
  float re, im;
};

std::vector<Number> StatedTable(int n, float direction) {
  std::vector<Number> table;
  const auto step = static_cast<float>(3.14159274 / (n / 2));
  float angle = 0;
  for (int k = 0; k < n / 2; k++) {
    const auto wide = static_cast<double>(angle);
    table.push_back(
        {static_cast<float>(std::cos(wide)), direction * static_cast<float>(std::sin(wide))});
    angle = angle + step;
  }
  return table;
}

void StatedTransform(std::vector<Number>& x, const std::vector<Number>& table) {
  const size_t n = x.size();
  size_t j = 1;
  for (size_t i = 1; i <= n; i++) {
    if (j > i) std::swap(x[i - 1], x[j - 1]);
    size_t k = n / 2;
    while (k >= 1 && k < j) {
      j -= k;
      k /= 2;
    }
    j += k;
  }
  for (size_t half = 1; half < n; half *= 2) {
    for (size_t t = 0; t < half; t++) {
      const auto wr = static_cast<double>(table[t * (n / (2 * half))].re);
      const auto wi = static_cast<double>(table[t * (n / (2 * half))].im);
      for (size_t p = t; p < n; p += 2 * half) {
        const size_t q = p + half;
        const auto xr = static_cast<double>(x[q].re);
        const auto xi = static_cast<double>(x[q].im);
        const double re = wr * xr - wi * xi;
        const double im = wr * xi + wi * xr;
        const auto pr = static_cast<double>(x[p].re);
        const auto pi = static_cast<double>(x[p].im);
        x[q] = {static_cast<float>(pr - re), static_cast<float>(pi - im)};
        x[p] = {static_cast<float>(pr + re), static_cast<float>(pi + im)};
      }
    }
  }
}

using Rows = std::vector<std::vector<Number>>;

void StatedPasses(Rows& rows, float direction) {
  for (auto& row : rows) StatedTransform(row, StatedTable(static_cast<int>(row.size()), direction));
  const auto table = StatedTable(static_cast<int>(rows.size()), direction);
  std::vector<Number> column(rows.size());
  for (size_t x = 0; x < rows[0].size(); x++) {
    for (size_t y = 0; y < rows.size(); y++) column[y] = rows[y][x];
    StatedTransform(column, table);
    for (size_t y = 0; y < rows.size(); y++) rows[y][x] = column[y];
  }
}

Rows RowsOf(const TestImage& image) {
  const ImageInfo info = image.Info();
  Rows rows(static_cast<size_t>(info.height));
  for (int32_t y = 0; y < info.height; y++) {
    for (int32_t x = 0; x < info.width; x++) {
      const float imaginary = info.type == IMAGE_COMPLEX ? ComplexAt(image, x, y).imaginary : 0.0f;
      rows[static_cast<size_t>(y)].push_back({test::NumberAt(image, x, y), imaginary});
    }
  }
  return rows;
}

Rows StatedForward(const TestImage& image) {
  Rows rows = RowsOf(image);
  StatedPasses(rows, -1.0f);
  return rows;
}

Rows StatedInverse(const TestImage& image) {
  Rows rows = RowsOf(image);
  const auto pixels = static_cast<float>(rows.size() * rows[0].size());
  for (auto& row : rows) {
    for (Number& number : row) number = {number.re / pixels, number.im / pixels};
  }
  StatedPasses(rows, 1.0f);
  return rows;
}

// What an inverse transform stores, as a float.
float StatedStore(const Number& number, int32_t type) {
  const auto re = static_cast<double>(number.re);
  const auto im = static_cast<double>(number.im);
  const double magnitude = std::sqrt(re * re + im * im);
  if (type == IMAGE_SGL) return static_cast<float>(magnitude);
  if (std::isnan(magnitude)) return 0.0f;
  return static_cast<float>(std::trunc(std::min(magnitude, type == IMAGE_U8 ? 255.0 : 32767.0)));
}

void ExpectStated(const TestImage& actual, const Rows& stated) {
  const ImageInfo info = actual.Info();
  ASSERT_EQ(static_cast<size_t>(info.height), stated.size());
  ASSERT_EQ(static_cast<size_t>(info.width), stated[0].size());
  for (int32_t y = 0; y < info.height; y++) {
    for (int32_t x = 0; x < info.width; x++) {
      const Number& number = stated[static_cast<size_t>(y)][static_cast<size_t>(x)];
      if (info.type == IMAGE_COMPLEX) {
        ASSERT_TRUE(SameBits(ComplexAt(actual, x, y), {number.re, number.im}))
            << "pixel " << x << ", " << y << ": " << ComplexAt(actual, x, y).real << " and "
            << number.re;
      } else {
        ASSERT_TRUE(SameBits(test::NumberAt(actual, x, y), StatedStore(number, info.type)))
            << "pixel " << x << ", " << y << ": " << test::NumberAt(actual, x, y);
      }
    }
  }
}

const std::vector<std::pair<int32_t, int32_t>> SIZES = {
    {16, 16}, {32, 16}, {16, 32}, {64, 128}, {256, 32}, {16, 512}, {1024, 16}, {16, 4096}};

TEST(Fourier, SpectraAreThoseOfThePlainAlgorithm) {
  for (const auto& [width, height] : SIZES) {
    for (const int32_t type : test::FREQUENCY_TYPES) {
      const TestImage source = SpectrumImage(type, width, height, type, 3, false);
      const TestImage spectrum(IMAGE_COMPLEX, 3, 5, width % 3);
      ASSERT_EQ(ZEL_FFT(source, spectrum), 0);
      ExpectStated(spectrum, StatedForward(source));
    }
  }
}

TEST(Fourier, ImagesAreThoseOfThePlainAlgorithm) {
  for (const auto& [width, height] : SIZES) {
    const TestImage source = SpectrumImage(IMAGE_COMPLEX, width, height, 1, 4, false);
    for (int32_t x = 0; x < width; x++) {  // for magnitudes of all sizes
      *source.At<ComplexValue>(x, 0) = {static_cast<float>(x * 30000), static_cast<float>(-x)};
    }
    const Rows stated = StatedInverse(source);
    for (const int32_t type : test::FREQUENCY_TYPES) {
      const TestImage image(type, 3, 5, height % 3);
      ASSERT_EQ(ZEL_InverseFFT(source, image), 0);
      ExpectStated(image, stated);
    }
  }
}

// Signs of zeros, infinities and NaN too: a few extreme numbers among others, or among zeros.
TEST(Fourier, ExtremeNumbersPassAsInThePlainAlgorithm) {
  test::Random random(7);
  for (int32_t round = 0; round < 24; round++) {
    const int32_t height = round % 3 == 0 ? 512 : 32;
    const TestImage source = SpectrumImage(IMAGE_COMPLEX, 16, height, 0, 5, false);
    for (int32_t x = 0; x < 16 && round % 2 == 0; x++) {
      for (int32_t y = 0; y < height; y++) {
        *source.At<ComplexValue>(x, y) = {random.Next() % 8 == 0 ? 0.0f : -0.0f,
                                          random.Next() % 8 == 0 ? 0.0f : -0.0f};
      }
    }
    if (round % 4 != 0) {
      *source.At<ComplexValue>(random.Between(0, 15), random.Between(0, height - 1)) = {
          test::ExtremeFloat(&random), test::ExtremeFloat(&random)};
    }
    const TestImage spectrum(IMAGE_COMPLEX, 1, 1);
    ASSERT_EQ(ZEL_FFT(source, spectrum), 0);
    ExpectStated(spectrum, StatedForward(source));
    const Rows stated = StatedInverse(source);
    for (const int32_t type : test::FREQUENCY_TYPES) {
      const TestImage image(type, 1, 1);
      ASSERT_EQ(ZEL_InverseFFT(source, image), 0);
      ExpectStated(image, stated);
    }
  }
}

TEST(Fourier, SpectraAreTheSameForAnyNumberOfWorkers) {
  const TestImage source = SpectrumImage(IMAGE_SGL, 128, 64, 2, 6, false);
  const TestImage one(IMAGE_COMPLEX, 1, 1);
  const TestImage back(IMAGE_SGL, 1, 1);
  {
    const test::Workers alone(1);
    ASSERT_EQ(ZEL_FFT(source, one), 0);
    ASSERT_EQ(ZEL_InverseFFT(one, back), 0);
  }
  for (const int32_t count : {2, 3, 5}) {
    const test::Workers workers(count);
    const TestImage spectrum(IMAGE_COMPLEX, 1, 1);
    ASSERT_EQ(ZEL_FFT(source, spectrum), 0);
    EXPECT_EQ(test::PixelDifference(spectrum, one), "");
    const TestImage image(IMAGE_SGL, 1, 1);
    ASSERT_EQ(ZEL_InverseFFT(spectrum, image), 0);
    EXPECT_EQ(test::PixelDifference(image, back), "");
  }
}

// ---- against the mathematics

double EnergyOf(const TestImage& image) {
  double energy = 0;
  const ImageInfo info = image.Info();
  for (int32_t y = 0; y < info.height; y++) {
    for (int32_t x = 0; x < info.width; x++) {
      const ComplexValue value = ComplexAt(image, x, y);
      energy += std::norm(std::complex<double>(static_cast<double>(value.real),
                                               static_cast<double>(value.imaginary)));
    }
  }
  return energy;
}

TEST(Fourier, SpectraAreNearTheSumsThatDefineThem) {
  for (const auto& [width, height] : {std::pair{16, 16}, {32, 16}, {16, 64}}) {
    const TestImage source = SpectrumImage(IMAGE_COMPLEX, width, height, 0, 8, false);
    const TestImage spectrum(IMAGE_COMPLEX, 1, 1);
    ASSERT_EQ(ZEL_FFT(source, spectrum), 0);
    // Ten roundings of 6e-8 each, and angles that are off by some 1e-6, of numbers as large as the
    // spectrum's are on an average.
    const double tolerance = 1e-5 * std::sqrt(EnergyOf(source));
    for (int32_t v = 0; v < height; v++) {
      for (int32_t u = 0; u < width; u++) {
        std::complex<double> sum = 0;
        for (int32_t y = 0; y < height; y++) {
          for (int32_t x = 0; x < width; x++) {
            const ComplexValue value = ComplexAt(source, x, y);
            const double turns = static_cast<double>(u * x % width) / width +
                                 static_cast<double>(v * y % height) / height;
            sum += std::complex<double>(static_cast<double>(value.real),
                                        static_cast<double>(value.imaginary)) *
                   std::polar(1.0, -2 * std::numbers::pi * turns);
          }
        }
        const ComplexValue actual = ComplexAt(spectrum, u, v);
        ASSERT_NEAR(static_cast<double>(actual.real), sum.real(), tolerance);
        ASSERT_NEAR(static_cast<double>(actual.imaginary), sum.imag(), tolerance);
      }
    }
  }
}

TEST(Fourier, LargeSpectraHaveTheEnergyOfTheirImagesAndGiveThemBack) {
  for (const auto& [width, height] : {std::pair{1024, 512}, {16, 16384}}) {
    const TestImage source = SpectrumImage(IMAGE_COMPLEX, width, height, 0, 9, false);
    const TestImage spectrum(IMAGE_COMPLEX, 1, 1);
    ASSERT_EQ(ZEL_FFT(source, spectrum), 0);
    const double energy = EnergyOf(source);
    EXPECT_NEAR(EnergyOf(spectrum) / energy / width / height, 1.0, 1e-4);
    const TestImage back(IMAGE_COMPLEX, 1, 1);
    ASSERT_EQ(ZEL_InverseFFT(spectrum, back), 0);
    // Angles grow by a rounded step, so that those of long signals drift: by 7e-6 of 1024 elements,
    // by 3.5e-4 of 16384, in both directions, for numbers of up to 300.
    const double tolerance = 300 * (height > 8192 ? 3e-3 : 2e-5);
    for (int32_t y = 0; y < height; y++) {
      for (int32_t x = 0; x < width; x++) {
        const ComplexValue value = ComplexAt(source, x, y);
        const ComplexValue result = ComplexAt(back, x, y);
        ASSERT_NEAR(static_cast<double>(result.real), static_cast<double>(value.real), tolerance);
        ASSERT_NEAR(static_cast<double>(result.imaginary), static_cast<double>(value.imaginary),
                    tolerance);
      }
    }
  }
}

TEST(Fourier, AConstantImageHasNothingButItsSum) {
  const TestImage ones(IMAGE_U8, 16, 16);
  ZEL_FillImage(ones, 0, 1, 0, 0, 0);
  const TestImage spectrum(IMAGE_COMPLEX, 1, 1);
  ASSERT_EQ(ZEL_FFT(ones, spectrum), 0);
  for (int32_t y = 0; y < 16; y++) {
    for (int32_t x = 0; x < 16; x++) {
      const ComplexValue value = ComplexAt(spectrum, x, y);
      EXPECT_NEAR(static_cast<double>(value.real), x == 0 && y == 0 ? 256.0 : 0.0, 1e-4);
      EXPECT_NEAR(static_cast<double>(value.imaginary), 0.0, 1e-4);
    }
  }
}

TEST(Fourier, BytesComeBackOrOneLower) {
  const TestImage source(IMAGE_U8, 64, 32, 1, 10);
  const TestImage spectrum(IMAGE_COMPLEX, 1, 1);
  const TestImage back(IMAGE_U8, 1, 1, 2);
  ASSERT_EQ(ZEL_FFT(source, spectrum), 0);
  ASSERT_EQ(ZEL_InverseFFT(spectrum, back), 0);
  for (int32_t y = 0; y < 32; y++) {
    for (int32_t x = 0; x < 64; x++) {
      const int32_t lost = source.Get<uint8_t>(x, y) - back.Get<uint8_t>(x, y);
      EXPECT_TRUE(lost == 0 || lost == 1) << x << ", " << y << ": " << lost;
    }
  }
}

TEST(Fourier, MagnitudesAboveTheRangeOfIntegersAreLimited) {
  const TestImage spectrum(IMAGE_COMPLEX, 16, 16);
  ZEL_FillImage(spectrum, 0, 0, 0, 0, 0);
  *spectrum.At<ComplexValue>(0, 0) = {-256.0f * 40000.0f, 0.0f};
  const TestImage bytes(IMAGE_U8, 1, 1);
  const TestImage words(IMAGE_I16, 1, 1);
  const TestImage floats(IMAGE_SGL, 1, 1);
  ASSERT_EQ(ZEL_InverseFFT(spectrum, bytes), 0);
  ASSERT_EQ(ZEL_InverseFFT(spectrum, words), 0);
  ASSERT_EQ(ZEL_InverseFFT(spectrum, floats), 0);
  EXPECT_EQ(bytes.Get<uint8_t>(3, 5), 255);
  EXPECT_EQ(words.Get<int16_t>(3, 5), 32767);
  EXPECT_EQ(floats.Get<float>(3, 5), 40000.0f);
}

// ---- the call

TEST(Fourier, TheResultTakesCalibrationAndSizeAndKeepsItsBorder) {
  const TestImage source(IMAGE_U8, 32, 16, 2, 11);
  ZEL_SetImageCalibration(source, 4, 0.5f, 0.25f);
  const TestImage spectrum(IMAGE_COMPLEX, 32, 16, 3, 12);
  const auto surroundings = spectrum.Surroundings();
  const auto before = source.Block();
  ASSERT_EQ(ZEL_FFT(source, spectrum), 0);
  EXPECT_EQ(test::SurroundingsDifference(surroundings, spectrum), "");
  EXPECT_EQ(source.Block(), before);
  const ImageInfo info = spectrum.Info();
  EXPECT_EQ(info.unit, 4);
  EXPECT_EQ(info.xStep, 0.5f);
  const TestImage bytes(IMAGE_U8, 32, 16, 3, 13);
  const auto around = bytes.Surroundings();
  const auto spectrumBefore = spectrum.Block();
  ASSERT_EQ(ZEL_InverseFFT(spectrum, bytes), 0);
  EXPECT_EQ(test::SurroundingsDifference(around, bytes), "");
  EXPECT_EQ(spectrum.Block(), spectrumBefore);
  EXPECT_EQ(bytes.Info().unit, 4);
}

TEST(Fourier, OtherSidesThanPowersOfTwoFrom16To16384Give306) {
  for (const auto& [width, height] :
       {std::pair{15, 16}, {16, 15}, {16, 32768}, {32768, 16}, {8, 16}, {48, 16}, {16, 0}}) {
    const TestImage image(IMAGE_U8, width, height);
    const TestImage spectrum(IMAGE_COMPLEX, width, height);
    const TestImage result(IMAGE_COMPLEX, 2, 2);
    EXPECT_EQ(ZEL_FFT(image, result), -306);
    EXPECT_EQ(ZEL_FFT(image, 0), -306);
    EXPECT_EQ(ZEL_InverseFFT(spectrum, result), -306);
    EXPECT_EQ(result.width(), 2);
  }
}

TEST(Fourier, ImagesThatDoNotFitAreRefusedInTheOrderOfTheTests) {
  const TestImage bytes(IMAGE_U8, 16, 16);
  const TestImage complex(IMAGE_COMPLEX, 16, 16);
  const TestImage colors(IMAGE_RGB, 16, 16);
  const TestImage small(IMAGE_COMPLEX, 3, 3);
  EXPECT_EQ(ZEL_FFT(test::NO_IMAGE, 0), -200);
  EXPECT_EQ(ZEL_FFT(colors, colors), -301);
  EXPECT_EQ(ZEL_FFT(bytes, 0), -202);
  EXPECT_EQ(ZEL_FFT(bytes, test::NO_IMAGE), -200);
  EXPECT_EQ(ZEL_FFT(bytes, bytes), -313);
  EXPECT_EQ(ZEL_FFT(complex, complex), -313);
  EXPECT_EQ(ZEL_FFT(bytes, colors), -2003);
  EXPECT_EQ(ZEL_InverseFFT(test::NO_IMAGE, 0), -200);
  EXPECT_EQ(ZEL_InverseFFT(bytes, bytes), -2003);
  EXPECT_EQ(ZEL_InverseFFT(small, small), -306);
  EXPECT_EQ(ZEL_InverseFFT(complex, 0), -202);
  EXPECT_EQ(ZEL_InverseFFT(complex, test::NO_IMAGE), -200);
  EXPECT_EQ(ZEL_InverseFFT(complex, complex), -313);
  EXPECT_EQ(ZEL_InverseFFT(complex, colors), -301);
}

TEST(Fourier, RefusedMemoryIsAFailureOfTheCall) {
  const TestImage source(IMAGE_U8, 32, 16, 0, 14);
  const TestImage spectrum(IMAGE_COMPLEX, 2, 2);
  const auto shrink = [&spectrum] { ZEL_SetImageSize(spectrum, 2, 2); };
  test::RefuseEachAllocation(shrink, [&] { return ZEL_FFT(source, spectrum); });
  const TestImage bytes(IMAGE_U8, 2, 2);
  test::RefuseEachAllocation([&bytes] { ZEL_SetImageSize(bytes, 2, 2); },
                             [&] { return ZEL_InverseFFT(spectrum, bytes); });
}

}  // namespace
