// Row routines of correlation.
#include "filters/correlation_rows.h"

#include <cmath>
#include <cstddef>
#include <cstdint>

#include "core/numbers.h"
#include "engine/vectors.h"
#include "filters/window_sums.h"

namespace zel::ZEL_LEVEL {
namespace {

constexpr size_t TILE_ROWS = CORRELATION_TILE_ROWS;
[[maybe_unused]] constexpr int64_t TILE_COLUMNS = CORRELATION_TILE_COLUMNS;

void Bias(const uint8_t* pixels, CorrelationPixel* to, int64_t count) {
  for (int64_t x = 0; x < count; x++) {
    to[x] = static_cast<CorrelationPixel>(pixels[x] - CORRELATION_BIAS);
  }
}

ZEL_INLINE uint32_t SquareOf(CorrelationPixel pixel) {
  const int32_t value = pixel + CORRELATION_BIAS;
  return static_cast<uint32_t>(value * value);
}

template <class Sum>
void SquaresAdd(const CorrelationPixel* row, Sum* columnSums, int64_t count) {
  for (int64_t x = 0; x < count; x++) columnSums[x] += SquareOf(row[x]);
}

template <class Sum>
void SquaresSlide(const CorrelationPixel* entering, const CorrelationPixel* leaving,
                  Sum* columnSums, int64_t count) {
  for (int64_t x = 0; x < count; x++) {
    columnSums[x] += SquareOf(entering[x]) - Sum{SquareOf(leaving[x])};
  }
}

template <class Sum>
const Sum* WindowSumsOf(const Sum* columnSums, Sum* memory, int64_t columns, int64_t width) {
  return WindowSums(columnSums, memory, columns, width);
}

template <class Sum>
constexpr CorrelationEnergy<Sum> ENERGY = {
    .add = &SquaresAdd<Sum>,
    .slide = &SquaresSlide<Sum>,
    .windows = &WindowSumsOf<Sum>,
};

// ---- products

#if defined(ZEL_LEVEL_v4)

// A weight is four pixels of the template. Sums of every fourth column are side by side.
constexpr int32_t WEIGHT_COLUMNS = 4;

template <size_t rows>
struct TileSums {
  Ints ofRow[rows][4];
};

// What one row of pixels adds: it lies under row `row` of the template for the first row of
// results.
template <size_t rows>
ZEL_INLINE void RowAdd(const CorrelationSource& source, const CorrelationTemplate& pattern,
                       int64_t row, TileSums<rows>* sums) {
  const CorrelationPixel* pixels = source.pixels + row * source.pitch;
  const uint32_t* weights = pattern.weights + row * pattern.pitch;
  for (int64_t i = 0; i < pattern.rowWeights; i++, pixels += 4) {
    for (size_t phase = 0; phase < 4; phase++) {
      const auto values = Load<Bytes>(pixels + phase);
      for (size_t k = 0; k < rows; k++) {
        const uint32_t weight = weights[i - static_cast<int64_t>(k) * pattern.pitch];
        const auto weightOfAll = (Bytes)(Ints{} + static_cast<int32_t>(weight));
        sums->ofRow[k][phase] = AddDotProducts(sums->ofRow[k][phase], weightOfAll, values);
      }
    }
  }
}

ZEL_INLINE void SumsAdd(const Ints (&phases)[4], int32_t* to) {
  using Longs = int64_t __attribute__((vector_size(VECTOR_BYTES)));
  const auto low = [](Ints a, Ints b) {
    return (Longs)__builtin_shufflevector(a, b, 0, 16, 1, 17, 2, 18, 3, 19, 4, 20, 5, 21, 6, 22, 7,
                                          23);
  };
  const auto high = [](Ints a, Ints b) {
    return (Longs)__builtin_shufflevector(a, b, 8, 24, 9, 25, 10, 26, 11, 27, 12, 28, 13, 29, 14,
                                          30, 15, 31);
  };
  const auto store = [to](int64_t column, Longs first, Longs second) {
    const auto begin = (Ints)__builtin_shufflevector(first, second, 0, 8, 1, 9, 2, 10, 3, 11);
    const auto end = (Ints)__builtin_shufflevector(first, second, 4, 12, 5, 13, 6, 14, 7, 15);
    Store(to + column, Load<Ints>(to + column) + begin);
    Store(to + column + 16, Load<Ints>(to + column + 16) + end);
  };
  store(0, low(phases[0], phases[1]), low(phases[2], phases[3]));
  store(32, high(phases[0], phases[1]), high(phases[2], phases[3]));
}

template <size_t rows>
void Products(const CorrelationSource& source, const CorrelationTemplate& pattern,
              const CorrelationSums& results) {
  TileSums<rows> sums{};
  const int64_t count = pattern.rows + static_cast<int64_t>(rows) - 1;
  for (int64_t row = 0; row < count; row++) RowAdd(source, pattern, row, &sums);
  for (size_t k = 0; k < rows; k++) {
    SumsAdd(sums.ofRow[k], results.sums + static_cast<int64_t>(k) * results.pitch);
  }
}

#elif defined(ZEL_LEVEL_v3)

// A weight is two pixels of the template as words. Sums of even and of odd columns are apart.
constexpr int32_t WEIGHT_COLUMNS = 2;
constexpr int64_t COLUMNS = 16;

template <size_t rows>
struct TileSums {
  Ints even[rows], odd[rows];
};

// What one row of pixels adds: it lies under row `row` of the template for the first row of
// results.
template <size_t rows>
ZEL_INLINE void RowAdd(const CorrelationSource& source, const CorrelationTemplate& pattern,
                       int64_t row, TileSums<rows>* sums) {
  const CorrelationPixel* pixels = source.pixels + row * source.pitch;
  const uint32_t* weights = pattern.weights + row * pattern.pitch;
  for (int64_t i = 0; i < pattern.rowWeights; i++, pixels += 2) {
    const Words even = WidenBytes(pixels);
    const Words odd = WidenBytes(pixels + 1);
    for (size_t k = 0; k < rows; k++) {
      const uint32_t weight = weights[i - static_cast<int64_t>(k) * pattern.pitch];
      const auto weightOfAll = (Words)(Ints{} + static_cast<int32_t>(weight));
      sums->even[k] += PairSums(even, weightOfAll);
      sums->odd[k] += PairSums(odd, weightOfAll);
    }
  }
}

template <size_t rows>
void Products(const CorrelationSource& source, const CorrelationTemplate& pattern,
              const CorrelationSums& results) {
  const int64_t count = pattern.rows + static_cast<int64_t>(rows) - 1;
  for (int64_t x = 0; x < TILE_COLUMNS; x += COLUMNS) {
    TileSums<rows> sums{};
    for (int64_t row = 0; row < count; row++) {
      RowAdd({source.pixels + x, source.pitch}, pattern, row, &sums);
    }
    for (size_t k = 0; k < rows; k++) {
      int32_t* to = results.sums + static_cast<int64_t>(k) * results.pitch + x;
      const Ints even = sums.even[k];
      const Ints odd = sums.odd[k];
      const auto begin = __builtin_shufflevector(even, odd, 0, 8, 1, 9, 2, 10, 3, 11);
      const auto end = __builtin_shufflevector(even, odd, 4, 12, 5, 13, 6, 14, 7, 15);
      Store(to, Load<Ints>(to) + begin);
      Store(to + 8, Load<Ints>(to + 8) + end);
    }
  }
}

#else

constexpr int32_t WEIGHT_COLUMNS = 1;

template <size_t rows>
void Products(const CorrelationSource& source, const CorrelationTemplate& pattern,
              const CorrelationSums& results) {
  for (int64_t row = 0; row < static_cast<int64_t>(rows); row++) {
    int32_t sums[TILE_COLUMNS] = {};
    for (int64_t j = 0; j < pattern.rows; j++) {
      const CorrelationPixel* pixels = source.pixels + (row + j) * source.pitch;
      const uint32_t* weights = pattern.weights + j * pattern.pitch;
      for (int64_t i = 0; i < pattern.rowWeights; i++) {
        const auto weight = static_cast<int32_t>(weights[i]);
        for (int64_t x = 0; x < TILE_COLUMNS; x++) sums[x] += weight * pixels[i + x];
      }
    }
    int32_t* __restrict to = results.sums + row * results.pitch;
    for (int64_t x = 0; x < TILE_COLUMNS; x++) to[x] += sums[x];
  }
}

#endif

// Beyond the row there are pixels of 0.
void Pack(const uint8_t* pixels, int64_t columns, uint32_t* weights) {
  constexpr int64_t bits = 32 / WEIGHT_COLUMNS;
  for (int64_t first = 0; first < columns; first += WEIGHT_COLUMNS) {
    uint32_t weight = 0;
    for (int64_t i = 0; i < WEIGHT_COLUMNS && first + i < columns; i++) {
      weight |= uint32_t{pixels[first + i]} << (i * bits);
    }
    *weights++ = weight;
  }
}

// ---- results

// As it is stated.
ZEL_INLINE uint8_t Exactly(double products, double energy, double templateRoot) {
  const double result = products / (std::sqrt(energy) * templateRoot) * 255.0;
  const bool inRange = result > -2147483648.0 && result < 2147483648.0;
  return static_cast<uint8_t>(inRange ? static_cast<int32_t>(result) : 0);
}

constexpr int64_t BLOCK = 64;

// In single precision first: what that gives is less than 2^-21 of its size, and so less than
// DOUBT, away from the result in double precision, so that both have the same integer part unless a
// whole number is as near. Blocks with such a result are computed once more.
constexpr float DOUBT = 0x1p-12f;

void Results(const int32_t* products, const uint32_t* energies, uint8_t* to, int64_t count,
             const CorrelationRule& rule) {
  const auto bias = static_cast<int32_t>(rule.bias);
  const double templateRoot = rule.templateRoot;
  const auto scale = static_cast<float>(255.0 / templateRoot);
  uint8_t* __restrict results = to;
  for (int64_t first = 0; first < count; first += BLOCK) {
    const int64_t end = count - first < BLOCK ? count : first + BLOCK;
    int32_t doubts = 0;
    for (int64_t x = first; x < end; x++) {
      // Without energy there are no products.
      const auto energy = static_cast<int32_t>(energies[x]);
      const auto root = std::sqrt(static_cast<float>(energy > 0 ? energy : 1));
      const float result = static_cast<float>(products[x] + bias) * scale / root;
      const auto whole = static_cast<int32_t>(result + DOUBT);
      doubts |= static_cast<int32_t>(result - DOUBT) - whole;
      results[x] = static_cast<uint8_t>(whole);
    }
    if (doubts == 0) continue;
    for (int64_t x = first; x < end; x++) {
      results[x] = Exactly(products[x] + bias, energies[x], templateRoot);
    }
  }
}

void LargeResults(const int64_t* products, const uint64_t* energies, uint8_t* to, int64_t count,
                  const CorrelationRule& rule) {
  for (int64_t x = 0; x < count; x++) {
    const int64_t sum = products[x] + rule.bias;
    const auto energy = static_cast<int64_t>(energies[x]);
    const auto cut = [&](int64_t number) {
      const auto low = static_cast<int32_t>(static_cast<uint32_t>(static_cast<uint64_t>(number)));
      return static_cast<double>(rule.wraps ? low : number);
    };
    to[x] = Exactly(cut(sum), cut(energy), rule.templateRoot);
  }
}

}  // namespace

extern const CorrelationRows correlationRows = {
    .weightColumns = WEIGHT_COLUMNS,
    .bias = &Bias,
    .pack = &Pack,
    .tile = &Products<TILE_ROWS>,
    .tileRow = &Products<1>,
    .energy = ENERGY<uint32_t>,
    .largeEnergy = ENERGY<uint64_t>,
    .results = &Results,
    .largeResults = &LargeResults,
};

}  // namespace zel::ZEL_LEVEL
