// Row routines of mirrored and transposed images.
#include "geometry/symmetry_rows.h"

#include <cstring>
#include <utility>

#include "core/cache_lines.h"
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

// Columns of the source at once whose pixels are held until they fill a cache line of their result.
constexpr int64_t HELD_COLUMNS = 96;
struct alignas(CACHE_LINE) HeldColumn {
  uint8_t before[CACHE_LINE];  // the line that was transposed before
  uint8_t last[CACHE_LINE];
};

template <class T>
TransposeBlock PartOf(const TransposeBlock& block, int64_t left, int64_t top, int64_t width,
                      int64_t height) {
  constexpr auto bytes = static_cast<int64_t>(sizeof(T));
  return {.from = block.from + top * block.fromPitch + left * bytes,
          .fromPitch = block.fromPitch,
          .to = block.to + left * block.toPitch + top * bytes,
          .toPitch = block.toPitch,
          .width = width,
          .height = height};
}

// Stores the last line of held pixels: what of it ends a cache line of the result goes there with
// what was left of the line before.
ZEL_INLINE void StreamHeld(HeldColumn* held, uint8_t* to, bool isFirst) {
  const auto left = static_cast<int64_t>(reinterpret_cast<uintptr_t>(to) % CACHE_LINE);
  const uint8_t* line = held->last - left;
  if (isFirst) {
    std::memcpy(to, held->last, static_cast<size_t>(CACHE_LINE - left));
  } else {
    for (int64_t at = 0; at < CACHE_LINE; at += VECTOR_BYTES) {
      Stream(to - left + at, Load<Bytes>(line + at));
    }
  }
  std::memcpy(held->before, held->last, sizeof held->before);
}

// Fetches rows of a block: processors foresee no runs that are as short as these.
template <class T>
ZEL_INLINE void FetchRows(const TransposeBlock& block) {
  const int64_t bytes = block.width * static_cast<int64_t>(sizeof(T));
  for (int64_t y = 0; y < block.height; y++) {
    const uint8_t* from = block.from + y * block.fromPitch;
    for (int64_t at = 0; at < bytes; at += CACHE_LINE) __builtin_prefetch(from + at, 0, 2);
    __builtin_prefetch(from + bytes - 1, 0, 2);
  }
}

// At most HELD_COLUMNS columns, in whole tiles, of rows that make whole lines.
template <class T>
void StreamColumns(const TransposeBlock& block) {
  using Tiles = Tile<T>;
  constexpr int64_t lineRows = CACHE_LINE / static_cast<int64_t>(sizeof(T));
  HeldColumn held[HELD_COLUMNS];
  for (int64_t y = 0; y < block.height; y += lineRows) {
    TransposeBlock rows = PartOf<T>(block, 0, y, block.width, lineRows);
    uint8_t* to = rows.to;
    rows.to = held[0].last;
    rows.toPitch = sizeof(HeldColumn);
    const int64_t next = y + lineRows;
    if (next < block.height) FetchRows<T>(PartOf<T>(block, 0, next, block.width, lineRows));
    for (int64_t x = 0; x < block.width; x += Tiles::SIDE) {
      for (int64_t top = 0; top < lineRows; top += Tiles::ROWS) Tiles::Move(rows, x, top);
    }
    for (int64_t x = 0; x < block.width; x++, to += block.toPitch) {
      StreamHeld(&held[x], to, y == 0);
    }
  }
  for (int64_t x = 0; x < block.width; x++) {
    uint8_t* end = block.to + x * block.toPitch + block.height * static_cast<int64_t>(sizeof(T));
    const size_t left = reinterpret_cast<uintptr_t>(end) % CACHE_LINE;
    std::memcpy(end - left, held[x].last + CACHE_LINE - left, left);
  }
}

template <class T>
void TransposeStreaming(const TransposeBlock& of) {
  constexpr int64_t lineRows = CACHE_LINE / static_cast<int64_t>(sizeof(T));
  const TransposeBlock block = of;
  const int64_t width = block.width / Tile<T>::SIDE * Tile<T>::SIDE;
  const int64_t height = block.height / lineRows * lineRows;
  if (height != 0) {
    for (int64_t left = 0; left < width; left += HELD_COLUMNS) {
      const int64_t columns = left + HELD_COLUMNS < width ? HELD_COLUMNS : width - left;
      StreamColumns<T>(PartOf<T>(block, left, 0, columns, height));
    }
    StreamEnd();
  }
  TransposeEach<T>(PartOf<T>(block, width, 0, block.width - width, height));
  TransposePixels<T>(PartOf<T>(block, 0, height, block.width, block.height - height));
}

#else

template <class T>
void TransposePixels(const TransposeBlock& block) {
  TransposeEach<T>(block);
}
template <class T>
void TransposeStreaming(const TransposeBlock& block) {
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
    .transposeStreaming = {.one = &TransposeStreaming<uint8_t>,
                           .two = &TransposeStreaming<uint16_t>,
                           .four = &TransposeStreaming<uint32_t>,
                           .eight = &TransposeStreaming<uint64_t>},
};

}  // namespace zel::ZEL_LEVEL
