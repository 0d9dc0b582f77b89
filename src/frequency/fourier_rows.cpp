// Row routines of the Fourier transform.
#include "frequency/fourier_rows.h"

#include <cmath>
#include <cstring>

#include "engine/vectors.h"
#include "orlune_ptk/frequency.h"

namespace zel::ZEL_LEVEL {
namespace {

constexpr int64_t SIGNALS = FOURIER_SIGNALS;

// ---- gathering and scattering

// Counts through the indices of a signal, with their bits reversed.
class ReversedIndex {
 public:
  explicit ReversedIndex(int64_t length) : length_(length) {}
  int64_t index() const { return index_; }
  void Next() {
    int64_t bit = length_ / 2;
    while ((index_ & bit) != 0) {
      index_ -= bit;
      bit /= 2;
    }
    index_ += bit;
  }

 private:
  int64_t length_;
  int64_t index_ = 0;
};

ZEL_INLINE ComplexValue ComplexOf(ComplexValue pixel, float scale) {
  return {pixel.real * scale, pixel.imaginary * scale};
}
template <class Number>
ZEL_INLINE ComplexValue ComplexOf(Number number, float) {
  return {static_cast<float>(number), 0.0f};
}

template <class Pixel>
void GatherRows(const FourierPixels& pixels, const FourierSignals& signals) {
  const Pixel* rows[SIGNALS];
  for (int64_t s = 0; s < SIGNALS; s++) {
    rows[s] = reinterpret_cast<const Pixel*>(pixels.origin + s * pixels.pitch);
  }
  const float scale = pixels.scale;
  ReversedIndex place(signals.length);
  for (int64_t x = 0; x < signals.length; x++, place.Next()) {
    FourierElements& to = signals.elements[place.index()];
    for (int64_t s = 0; s < SIGNALS; s++) {
      const ComplexValue value = ComplexOf(rows[s][x], scale);
      to.real[s] = value.real;
      to.imaginary[s] = value.imaginary;
    }
  }
}

void ScatterRows(const FourierPixels& pixels, const FourierSignals& signals) {
  ComplexValue* rows[SIGNALS];
  for (int64_t s = 0; s < SIGNALS; s++) {
    rows[s] = reinterpret_cast<ComplexValue*>(pixels.origin + s * pixels.pitch);
  }
  for (int64_t x = 0; x < signals.length; x++) {
    const FourierElements& from = signals.elements[x];
    for (int64_t s = 0; s < SIGNALS; s++) rows[s][x] = {from.real[s], from.imaginary[s]};
  }
}

void GatherColumns(const FourierPixels& pixels, const FourierSignals& signals) {
  ReversedIndex place(signals.length);
  for (int64_t y = 0; y < signals.length; y++, place.Next()) {
    const auto* from = reinterpret_cast<const ComplexValue*>(pixels.origin + y * pixels.pitch);
    FourierElements& to = signals.elements[place.index()];
    for (int64_t s = 0; s < SIGNALS; s++) {
      to.real[s] = from[s].real;
      to.imaginary[s] = from[s].imaginary;
    }
  }
}

template <class Number>
ZEL_INLINE Number Limited(double value) {
  constexpr double limit = sizeof(Number) == 1 ? UINT8_MAX : INT16_MAX;
  const double notNan = value == value ? value : 0.0;
  return static_cast<Number>(static_cast<int32_t>(notNan > limit ? limit : notNan));
}
template <>
ZEL_INLINE float Limited<float>(double value) {
  return static_cast<float>(value);
}

template <class Pixel>
void ScatterMagnitudes(const FourierPixels& pixels, const FourierSignals& signals) {
  for (int64_t y = 0; y < signals.length; y++) {
    auto* to = reinterpret_cast<Pixel*>(pixels.origin + y * pixels.pitch);
    const FourierElements& from = signals.elements[y];
    for (int64_t s = 0; s < SIGNALS; s++) {
      const auto real = static_cast<double>(from.real[s]);
      const auto imaginary = static_cast<double>(from.imaginary[s]);
      to[s] = Limited<Pixel>(std::sqrt(real * real + imaginary * imaginary));
    }
  }
}

void ScatterColumns(const FourierPixels& pixels, const FourierSignals& signals) {
  for (int64_t y = 0; y < signals.length; y++) {
    auto* to = reinterpret_cast<ComplexValue*>(pixels.origin + y * pixels.pitch);
    const FourierElements& from = signals.elements[y];
    for (int64_t s = 0; s < SIGNALS; s++) to[s] = {from.real[s], from.imaginary[s]};
  }
}

// ---- butterflies

// As many 32-bit floats as there are doubles in a vector.
using HalfFloats = float __attribute__((vector_size(VECTOR_BYTES / 2)));

#if defined(ZEL_VECTORS)

ZEL_INLINE Doubles Widened(const float* from) {
  return WidenFloats(from);
}
#if defined(ZEL_LEVEL_v4)
ZEL_INLINE void StoreRounded(float* to, Doubles v) {
  Store(to, _mm512_maskz_cvtpd_ps(0xFF, (__m512d)v));
}
#elif defined(ZEL_LEVEL_v3)
ZEL_INLINE void StoreRounded(float* to, Doubles v) {
  Store(to, _mm256_cvtpd_ps((__m256d)v));
}
#else
ZEL_INLINE void StoreRounded(float* to, Doubles v) {
  _mm_storel_pi(reinterpret_cast<__m64*>(to), _mm_cvtpd_ps((__m128d)v));
}
#endif

#else

ZEL_INLINE Doubles Widened(const float* from) {
  return __builtin_convertvector(Load<HalfFloats>(from), Doubles);
}
ZEL_INLINE void StoreRounded(float* to, Doubles v) {
  Store(to, __builtin_convertvector(v, HalfFloats));
}

#endif

// a * b + c * d: the products of widened floats are exact, so that only the sum is rounded.
ZEL_INLINE Doubles SumOfProducts(Doubles a, Doubles b, Doubles c, Doubles d) {
#if defined(ZEL_WIDE_VECTORS)
  return MultiplyAdd(a, b, c * d);
#else
  return a * b + c * d;
#endif
}

// Two elements of each signal become their sum and difference, the second one times a factor first.
// Products are rounded to 64 bits, the results to 64 and then to 32.
ZEL_INLINE void Butterfly(FourierElements& first, FourierElements& second, const Twiddle& twiddle) {
  const Doubles real = Doubles{} + twiddle.real;
  const Doubles imaginary = Doubles{} + twiddle.imaginary;
  for (int64_t s = 0; s < SIGNALS; s += DOUBLE_LANES) {
    const Doubles secondReal = Widened(second.real + s);
    const Doubles secondImaginary = Widened(second.imaginary + s);
    const Doubles productReal = SumOfProducts(real, secondReal, -imaginary, secondImaginary);
    const Doubles productImaginary = SumOfProducts(real, secondImaginary, imaginary, secondReal);
    const Doubles firstReal = Widened(first.real + s);
    const Doubles firstImaginary = Widened(first.imaginary + s);
    StoreRounded(second.real + s, firstReal - productReal);
    StoreRounded(second.imaginary + s, firstImaginary - productImaginary);
    StoreRounded(first.real + s, firstReal + productReal);
    StoreRounded(first.imaginary + s, firstImaginary + productImaginary);
  }
}

// The same for the first factor of all, which is 1 and a 0 with a sign: products and sums of floats
// with it are the same in 32 bits.
ZEL_INLINE void ButterflyByOne(FourierElements& first, FourierElements& second, float zero) {
  for (int64_t s = 0; s < SIGNALS; s += DOUBLE_LANES) {
    const auto secondReal = Load<HalfFloats>(second.real + s);
    const auto secondImaginary = Load<HalfFloats>(second.imaginary + s);
    const HalfFloats productReal = secondReal - zero * secondImaginary;
    const HalfFloats productImaginary = secondImaginary + zero * secondReal;
    const auto firstReal = Load<HalfFloats>(first.real + s);
    const auto firstImaginary = Load<HalfFloats>(first.imaginary + s);
    Store(second.real + s, firstReal - productReal);
    Store(second.imaginary + s, firstImaginary - productImaginary);
    Store(first.real + s, firstReal + productReal);
    Store(first.imaginary + s, firstImaginary + productImaginary);
  }
}

// Part of a stage: `count` butterflies side by side, each with the next factor.
ZEL_INLINE void Butterflies(FourierElements* elements, int64_t half, const Twiddle* twiddles,
                            int64_t stride, int64_t count) {
  for (int64_t t = 0; t < count; t++) {
    Butterfly(elements[t], elements[t + half], twiddles[t * stride]);
  }
}

// Signals are taken apart into blocks that fit the first-level cache, where the first stages stay;
// those after them take so many elements of each block at a time.
constexpr int64_t BLOCK = 256;
constexpr int64_t CHUNK = 16;

void FirstStages(const FourierSignals& signals, int64_t begin, int64_t block) {
  FourierElements* elements = signals.elements + begin;
  const auto zero = static_cast<float>(signals.twiddles->imaginary);
  for (int64_t half = 1; half < block; half *= 2) {
    const int64_t stride = signals.length / (2 * half);
    for (int64_t first = 0; first < block; first += 2 * half) {
      ButterflyByOne(elements[first], elements[first + half], zero);
      Butterflies(elements + first + 1, half, signals.twiddles + stride, stride, half - 1);
    }
  }
}

void LastStages(const FourierSignals& signals, int64_t begin, int64_t block) {
  for (int64_t half = block; half < signals.length; half *= 2) {
    const int64_t stride = signals.length / (2 * half);
    for (int64_t first = 0; first < signals.length; first += 2 * half) {
      for (int64_t t = begin; t < half; t += block) {
        Butterflies(signals.elements + first + t, half, signals.twiddles + t * stride, stride,
                    CHUNK);
      }
    }
  }
}

void Transform(const FourierSignals& signals) {
  const int64_t block = signals.length < BLOCK ? signals.length : BLOCK;
  for (int64_t begin = 0; begin < signals.length; begin += block) {
    FirstStages(signals, begin, block);
  }
  for (int64_t begin = 0; begin < block; begin += CHUNK) LastStages(signals, begin, block);
}

}  // namespace

extern const FourierRows fourierRows = {
    .gatherRows = {.u8 = &GatherRows<uint8_t>,
                   .i16 = &GatherRows<int16_t>,
                   .sgl = &GatherRows<float>,
                   .complex = &GatherRows<ComplexValue>},
    .scatterRows = &ScatterRows,
    .gatherColumns = &GatherColumns,
    .scatterColumns = {.u8 = &ScatterMagnitudes<uint8_t>,
                       .i16 = &ScatterMagnitudes<int16_t>,
                       .sgl = &ScatterMagnitudes<float>,
                       .complex = &ScatterColumns},
    .transform = &Transform,
};

}  // namespace zel::ZEL_LEVEL
