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

// Pixels side by side, and their parts apart.
ZEL_INLINE void SeparateParts(const ComplexValue* from, FourierElements& to) {
  for (int64_t s = 0; s < SIGNALS; s++) {
    to.real[s] = from[s].real;
    to.imaginary[s] = from[s].imaginary;
  }
}
ZEL_INLINE void JoinParts(const FourierElements& from, ComplexValue* to) {
  for (int64_t s = 0; s < SIGNALS; s++) to[s] = {from.real[s], from.imaginary[s]};
}

[[maybe_unused]] ZEL_INLINE ComplexValue ComplexOf(ComplexValue pixel, float scale) {
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

#if !defined(ZEL_LEVEL_v4)
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

#else

// Eight pixels of eight rows, of which a vector holds a row, become vectors of a column: places
// that lie 1, 2 and then 4 apart are exchanged. In the last step the parts come apart too.
struct Square {
  Floats vectors[SIGNALS];
};

ZEL_INLINE void ExchangeNeighbours(Floats& first, Floats& second) {
  const auto a = (Doubles)first;
  const auto b = (Doubles)second;
  first = (Floats)__builtin_shufflevector(a, b, 0, 8, 2, 10, 4, 12, 6, 14);
  second = (Floats)__builtin_shufflevector(a, b, 1, 9, 3, 11, 5, 13, 7, 15);
}
ZEL_INLINE void ExchangePairs(Floats& first, Floats& second) {
  const auto a = (Doubles)first;
  const auto b = (Doubles)second;
  first = (Floats)__builtin_shufflevector(a, b, 0, 1, 8, 9, 4, 5, 12, 13);
  second = (Floats)__builtin_shufflevector(a, b, 2, 3, 10, 11, 6, 7, 14, 15);
}
ZEL_INLINE void ExchangeHalvesApart(Floats& first, Floats& second) {
  const Floats a = first;
  const Floats b = second;
  first = __builtin_shufflevector(a, b, 0, 2, 4, 6, 16, 18, 20, 22, 1, 3, 5, 7, 17, 19, 21, 23);
  second =
      __builtin_shufflevector(a, b, 8, 10, 12, 14, 24, 26, 28, 30, 9, 11, 13, 15, 25, 27, 29, 31);
}
ZEL_INLINE void ExchangeHalvesTogether(Floats& first, Floats& second) {
  const Floats a = first;
  const Floats b = second;
  first = __builtin_shufflevector(a, b, 0, 8, 1, 9, 2, 10, 3, 11, 16, 24, 17, 25, 18, 26, 19, 27);
  second =
      __builtin_shufflevector(a, b, 4, 12, 5, 13, 6, 14, 7, 15, 20, 28, 21, 29, 22, 30, 23, 31);
}

template <int32_t distance, class Exchange>
ZEL_INLINE void ExchangeAll(Square& square, Exchange exchange) {
  for (int32_t i = 0; i < SIGNALS; i++) {
    if ((i & distance) == 0) exchange(square.vectors[i], square.vectors[i + distance]);
  }
}

template <>
void GatherRows<ComplexValue>(const FourierPixels& pixels, const FourierSignals& signals) {
  const Floats scale = pixels.scale - Floats{};
  const int64_t apart = signals.length / SIGNALS;  // elements of neighbouring pixels, at least
  ReversedIndex place(apart);
  for (int64_t x = 0; x < signals.length; x += SIGNALS, place.Next()) {
    const uint8_t* from = pixels.origin + x * int64_t{sizeof(ComplexValue)};
    Square square;
    for (int64_t s = 0; s < SIGNALS; s++) {
      square.vectors[s] = Load<Floats>(from + s * pixels.pitch) * scale;
    }
    ExchangeAll<1>(square, ExchangeNeighbours);
    ExchangeAll<2>(square, ExchangePairs);
    ExchangeAll<4>(square, ExchangeHalvesApart);
    constexpr int64_t reversed[SIGNALS] = {0, 4, 2, 6, 1, 5, 3, 7};
    for (int64_t s = 0; s < SIGNALS; s++) {
      Store(signals.elements + place.index() + reversed[s] * apart, square.vectors[s]);
    }
  }
}

void ScatterRows(const FourierPixels& pixels, const FourierSignals& signals) {
  for (int64_t x = 0; x < signals.length; x += SIGNALS) {
    Square square;
    for (int64_t s = 0; s < SIGNALS; s++) {
      square.vectors[s] = Load<Floats>(signals.elements + x + s);
    }
    ExchangeAll<4>(square, ExchangeHalvesTogether);
    ExchangeAll<2>(square, ExchangePairs);
    ExchangeAll<1>(square, ExchangeNeighbours);
    uint8_t* to = pixels.origin + x * int64_t{sizeof(ComplexValue)};
    for (int64_t s = 0; s < SIGNALS; s++) Store(to + s * pixels.pitch, square.vectors[s]);
  }
}

#endif

// A row at a time, so that its pixels come from one page of memory.
void GatherColumns(const FourierPixels& pixels, const FourierSignals& signals) {
  ReversedIndex place(signals.length);
  for (int64_t y = 0; y < signals.length; y++, place.Next()) {
    const auto* from = reinterpret_cast<const ComplexValue*>(pixels.origin + y * pixels.pitch);
    FourierElements* to = signals.elements + place.index();
    for (int64_t g = 0; g < signals.groups; g++) {
      SeparateParts(from + g * SIGNALS, to[g * signals.groupStride]);
    }
  }
}

void ScatterColumns(const FourierPixels& pixels, const FourierSignals& signals) {
  for (int64_t y = 0; y < signals.length; y++) {
    auto* to = reinterpret_cast<ComplexValue*>(pixels.origin + y * pixels.pitch);
    const FourierElements* from = signals.elements + y;
    for (int64_t g = 0; g < signals.groups; g++) {
      JoinParts(from[g * signals.groupStride], to + g * SIGNALS);
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
    auto* row = reinterpret_cast<Pixel*>(pixels.origin + y * pixels.pitch);
    for (int64_t g = 0; g < signals.groups; g++) {
      const FourierElements& from = signals.elements[g * signals.groupStride + y];
      Pixel* to = row + g * SIGNALS;
#pragma GCC unroll 1
      for (int64_t s = 0; s < SIGNALS; s++) {
        const auto real = static_cast<double>(from.real[s]);
        const auto imaginary = static_cast<double>(from.imaginary[s]);
        to[s] = Limited<Pixel>(std::sqrt(real * real + imaginary * imaginary));
      }
    }
  }
}

// ---- butterflies

// As many 32-bit floats as there are doubles in a vector.
using HalfFloats = float __attribute__((vector_size(VECTOR_BYTES / 2)));

#if defined(ZEL_VECTORS)

ZEL_INLINE Doubles Widened(const float* from) {
  return WidenFloats(from);
}

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
  const Doubles real = twiddle.real - Doubles{};  // which a 0 with a sign keeps
  const Doubles imaginary = twiddle.imaginary - Doubles{};
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

void FirstStages(const FourierSignals& signals, FourierElements* elements, int64_t block) {
  const auto zero = static_cast<float>(signals.twiddles->imaginary);
  for (int64_t half = 1; half < block; half *= 2) {
    const int64_t stride = signals.length / (2 * half);
    for (int64_t first = 0; first < block; first += 2 * half) {
      ButterflyByOne(elements[first], elements[first + half], zero);
      Butterflies(elements + first + 1, half, signals.twiddles + stride, stride, half - 1);
    }
  }
}

void LastStages(const FourierSignals& signals, FourierElements* elements, int64_t block,
                int64_t begin) {
  for (int64_t half = block; half < signals.length; half *= 2) {
    const int64_t stride = signals.length / (2 * half);
    for (int64_t first = 0; first < signals.length; first += 2 * half) {
      for (int64_t t = begin; t < half; t += block) {
        Butterflies(elements + first + t, half, signals.twiddles + t * stride, stride, CHUNK);
      }
    }
  }
}

void Transform(const FourierSignals& signals) {
  const int64_t length = signals.length;
  const int64_t block = length < BLOCK ? length : BLOCK;
  for (int64_t g = 0; g < signals.groups; g++) {
    FourierElements* elements = signals.elements + g * signals.groupStride;
    for (int64_t begin = 0; begin < length; begin += block) {
      FirstStages(signals, elements + begin, block);
    }
    for (int64_t begin = 0; begin < block; begin += CHUNK) {
      LastStages(signals, elements, block, begin);
    }
  }
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
