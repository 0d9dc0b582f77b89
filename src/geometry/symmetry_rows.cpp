// Row routines of mirrored and transposed images.
#include "geometry/symmetry_rows.h"

#include <utility>

#include "core/numbers.h"
#include "engine/vectors.h"

namespace zel::ZEL_LEVEL {
namespace {

template <class T>
void Reverse(const void* source, void* destination, int32_t count) {
  const T* from = static_cast<const T*>(source);
  T* __restrict to = static_cast<T*>(destination);
  const int64_t last = int64_t{count} - 1;
  for (int64_t x = 0; x <= last; x++) to[x] = from[last - x];
}

template <class T>
void TransposeEach(const TransposeBlock& block) {
  for (int64_t x = 0; x < block.width; x++) {
    T* to = reinterpret_cast<T*>(block.to + x * block.toPitch);
    for (int64_t y = 0; y < block.height; y++) {
      to[y] = reinterpret_cast<const T*>(block.from + y * block.fromPitch)[x];
    }
  }
}

#if defined(ZEL_VECTORS)

// Tiles of as many columns as pixels fit 16 bytes. A vector holds several such pieces, of rows that
// lie a tile apart, so that what it stores is one run.
constexpr int64_t PIECE_BYTES = 16;
constexpr int64_t PIECES = VECTOR_BYTES / PIECE_BYTES;
constexpr int64_t CACHE_LINE = 64;

template <class T>
struct Tile {
  static constexpr int64_t SIDE = PIECE_BYTES / static_cast<int64_t>(sizeof(T));
  static constexpr int64_t ROWS = SIDE * PIECES;
  typedef T Vector __attribute__((vector_size(VECTOR_BYTES)));  // NOLINT: no alias of T may be one

  // The lower or the upper halves of two vectors' pieces, pixel by pixel in turn.
  template <int64_t from, int64_t... lane>
  ZEL_INLINE static Vector Interleave(Vector a, Vector b, std::integer_sequence<int64_t, lane...>) {
    constexpr int64_t lanes = SIDE * PIECES;
    return __builtin_shufflevector(
        a, b, (lane / SIDE * SIDE + from + lane % SIDE / 2 + (lane & 1) * lanes)...);
  }

  // Each step doubles the pixels of one column that stand together.
  ZEL_INLINE static void Move(const TransposeBlock& block, int64_t x, int64_t y) {
    const uint8_t* from = block.from + y * block.fromPitch + x * static_cast<int64_t>(sizeof(T));
    uint8_t* to = block.to + x * block.toPitch + y * static_cast<int64_t>(sizeof(T));
    Vector rows[size_t{SIDE}];
    for (int64_t i = 0; i < SIDE; i++) {
      rows[i] = (Vector)LoadPieces(from + i * block.fromPitch, SIDE * block.fromPitch);
    }
    constexpr std::make_integer_sequence<int64_t, ROWS> lanes;
    for (int64_t together = 1; together < SIDE; together *= 2) {
      Vector next[size_t{SIDE}];
      for (int64_t i = 0; i < SIDE / 2; i++) {
        next[2 * i] = Interleave<0>(rows[i], rows[i + SIDE / 2], lanes);
        next[2 * i + 1] = Interleave<SIDE / 2>(rows[i], rows[i + SIDE / 2], lanes);
      }
      for (int64_t i = 0; i < SIDE; i++) rows[i] = next[i];
    }
    for (int64_t i = 0; i < SIDE; i++) Store(to + i * block.toPitch, rows[i]);
  }
};

// Fetches the next lines of a block downward: no two of them are neighbours, so that the processor
// does not do it by itself, and stores that wait for their lines cost most of the time else.
template <class T>
ZEL_INLINE void FetchBelow(const TransposeBlock& block, int64_t left, int64_t right, int64_t top) {
  constexpr auto bytes = static_cast<int64_t>(sizeof(T));
  if (top + Tile<T>::ROWS > block.height) return;
  for (int64_t y = top; y < top + Tile<T>::ROWS; y++) {
    __builtin_prefetch(block.from + y * block.fromPitch + left * bytes);
  }
  if (top * bytes % CACHE_LINE != 0) return;
  for (int64_t x = left; x < right; x++) {
    __builtin_prefetch(block.to + x * block.toPitch + top * bytes, 1);
  }
}

// In blocks of columns that fill a cache line. The last tile of a row or column overlaps the one
// before it.
template <class T>
void TransposePixels(const TransposeBlock& of) {
  using Tiles = Tile<T>;
  constexpr int64_t blockColumns = CACHE_LINE / static_cast<int64_t>(sizeof(T));
  const TransposeBlock block = of;
  const int64_t lastColumn = block.width - Tiles::SIDE;
  const int64_t lastRow = block.height - Tiles::ROWS;
  if (lastColumn < 0 || lastRow < 0) return TransposeEach<T>(block);
  for (int64_t left = 0; left < block.width; left += blockColumns) {
    const int64_t right = left + blockColumns < block.width ? left + blockColumns : block.width;
    for (int64_t y = 0; y < block.height; y += Tiles::ROWS) {
      FetchBelow<T>(block, left, right, y + Tiles::ROWS);
      for (int64_t x = left; x < right; x += Tiles::SIDE) {
        Tiles::Move(block, x < lastColumn ? x : lastColumn, y < lastRow ? y : lastRow);
      }
    }
  }
}

#else

template <class T>
void TransposePixels(const TransposeBlock& block) {
  TransposeEach<T>(block);
}

#endif

}  // namespace

extern const SymmetryRows symmetryRows = {
    .reverse = {.one = &Reverse<uint8_t>,
                .two = &Reverse<uint16_t>,
                .four = &Reverse<uint32_t>,
                .eight = &Reverse<uint64_t>},
    .transpose = {.one = &TransposePixels<uint8_t>,
                  .two = &TransposePixels<uint16_t>,
                  .four = &TransposePixels<uint32_t>,
                  .eight = &TransposePixels<uint64_t>},
};

}  // namespace zel::ZEL_LEVEL
