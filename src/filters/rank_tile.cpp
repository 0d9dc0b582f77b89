// Rank filters of large windows on 16-bit and float pixels: the pixels of a tile are sorted once,
// and a window slides over their ranks.
#include <algorithm>
#include <cstring>
#include <utility>

#include "filters/rank_pass.h"
#include "filters/rank_tile_rows.h"

namespace zel {
namespace {

constexpr int32_t TILE_SIDE = 256;  // of source pixels, so that a tile stays in the second cache
constexpr int32_t DIGIT_BITS = 11;
constexpr int32_t DIGITS = 1 << DIGIT_BITS;
constexpr int32_t WORD_BITS = 64;

// A pixel of the tile. Unsigned keys are in the order of the pixels.
struct Key {
  uint32_t key;
  uint32_t place;  // in RankTile::ranks
};

// Output columns or rows of a tile: few enough for its source pixels to stay in a cache, but more
// than a part of the window, so that what is sorted is not mostly margin.
int32_t TileSteps(int32_t window, int32_t size) {
  return std::min(size, std::max(TILE_SIDE + 1 - window, window / 2));
}

struct TileLayout {
  int32_t columns, rows;  // of the output
  int64_t pixels;         // of the source
  int64_t keyBytes, memberBytes, foundBytes;

  int64_t TileBytes() const { return 2 * keyBytes + memberBytes + foundBytes; }
};

TileLayout LayoutOf(const PixelView& source, RankWindow window) {
  TileLayout layout{};
  layout.columns = TileSteps(window.width, source.width);
  layout.rows = TileSteps(window.height, source.height);
  layout.pixels = int64_t{layout.columns + window.width - 1} * (layout.rows + window.height - 1);
  layout.keyBytes = WholeVectors(layout.pixels * static_cast<int64_t>(sizeof(Key)));
  layout.memberBytes = WholeVectors((layout.pixels / WORD_BITS + 1) * WORD_BITS / 8);
  layout.foundBytes =
      int64_t{layout.columns} * layout.rows * static_cast<int64_t>(sizeof(uint32_t));
  return layout;
}

constexpr uint32_t SIGN = 0x80000000;

// Zeros are equal, whatever their sign.
uint32_t KeyOf(float pixel) {
  uint32_t bits;
  std::memcpy(&bits, &pixel, sizeof(bits));
  if (bits == SIGN) return SIGN;
  return bits & SIGN ? ~bits : bits | SIGN;
}

uint32_t KeyOf(int16_t pixel) {
  return static_cast<uint32_t>(pixel - INT16_MIN);
}

// Stable: equal pixels keep the order in which they came.
void SortByDigit(const Key* from, Key* to, int64_t count, int32_t shift) {
  uint32_t next[DIGITS] = {};
  for (int64_t i = 0; i < count; i++) next[from[i].key >> shift & (DIGITS - 1)]++;
  uint32_t sum = 0;
  for (uint32_t& digit : next) sum += std::exchange(digit, sum);
  for (int64_t i = 0; i < count; i++) to[next[from[i].key >> shift & (DIGITS - 1)]++] = from[i];
}

// A tile of one band: the output pixels from x and y on.
struct TilePass {
  const WindowViews& views;
  RankWindow window;
  int32_t x, y, columns, rows;
  bool linesAreColumns;  // of the source: the shorter side of the window lies along a line
  Key* sorted;
  Key* spare;  // as large; where the ranks are put in the end
  RankTile tile;

  int32_t SourceColumns() const { return columns + window.width - 1; }
  int32_t SourceRows() const { return rows + window.height - 1; }
  template <class T>
  const T* Source(int64_t column, int64_t row) const {
    return WindowCorner<T>(views, window, x + column, y + row);
  }
};

// Pixels in the order of the source's rows, which is that of windows too: equal ones keep it.
template <class T>
void GatherKeys(const TilePass& pass, Key* keys) {
  const int32_t columns = pass.SourceColumns();
  const int32_t rows = pass.SourceRows();
  for (int32_t row = 0; row < rows; row++) {
    const T* from = pass.Source<T>(0, row);
    for (int32_t column = 0; column < columns; column++) {
      const int64_t place =
          pass.linesAreColumns ? int64_t{column} * rows + row : int64_t{row} * columns + column;
      *keys++ = {KeyOf(from[column]), static_cast<uint32_t>(place)};
    }
  }
}

template <class T>
void RankPixels(const TilePass& pass) {
  constexpr int32_t keyBits = 8 * sizeof(T);
  constexpr int32_t passes = (keyBits + DIGIT_BITS - 1) / DIGIT_BITS;
  const int64_t count = int64_t{pass.SourceColumns()} * pass.SourceRows();
  Key* from = passes % 2 ? pass.spare : pass.sorted;
  Key* to = passes % 2 ? pass.sorted : pass.spare;
  GatherKeys<T>(pass, from);
  for (int32_t i = 0; i < passes; i++) {
    SortByDigit(from, to, count, i * DIGIT_BITS);
    std::swap(from, to);
  }
  auto* ranks = reinterpret_cast<uint32_t*>(pass.spare);
  for (int64_t i = 0; i < count; i++) ranks[pass.sorted[i].place] = static_cast<uint32_t>(i);
}

int16_t PixelOf(const TilePass&, const Key& key, int16_t) {
  return static_cast<int16_t>(static_cast<int32_t>(key.key) + INT16_MIN);
}

float PixelOf(const TilePass& pass, const Key& key, float) {
  if (key.key == SIGN) {
    const int32_t line = static_cast<int32_t>(key.place) / pass.tile.positions;
    const int32_t position = static_cast<int32_t>(key.place) % pass.tile.positions;
    return pass.linesAreColumns ? *pass.Source<float>(line, position)
                                : *pass.Source<float>(position, line);
  }
  const uint32_t bits = key.key & SIGN ? key.key & ~SIGN : ~key.key;
  float pixel;
  std::memcpy(&pixel, &bits, sizeof(pixel));
  return pixel;
}

// Rows of pixels are put over the spare keys, whose ranks have done their work.
template <class T>
void StoreResults(const TilePass& pass) {
  T* row = reinterpret_cast<T*>(pass.spare);
  for (int32_t y = 0; y < pass.rows; y++) {
    for (int32_t x = 0; x < pass.columns; x++) {
      const int64_t at =
          pass.linesAreColumns ? int64_t{y} * pass.columns + x : int64_t{x} * pass.rows + y;
      row[x] = PixelOf(pass, pass.sorted[pass.tile.found[at]], T{});
    }
    WindowStore(pass.views, pass.x, pass.y + y, pass.columns, row);
  }
}

template <class T>
void RunTile(const TileLayout& layout, TilePass* pass) {
  const RankWindow& window = pass->window;
  const bool columns = pass->linesAreColumns;
  pass->tile = {.ranks = reinterpret_cast<const uint32_t*>(pass->spare),
                .positions = columns ? pass->SourceRows() : pass->SourceColumns(),
                .windowLines = columns ? window.width : window.height,
                .breadth = columns ? window.height : window.width,
                .lineSteps = columns ? pass->columns : pass->rows,
                .positionSteps = columns ? pass->rows : pass->columns,
                .order = window.order,
                .members = pass->tile.members,
                .found = pass->tile.found};
  RankPixels<T>(*pass);
  std::memset(pass->tile.members, 0, static_cast<size_t>(layout.memberBytes));
  rankTileRows().slide(pass->tile);
  StoreResults<T>(*pass);
}

// Zeros have their place in the order of the window already.
void MendNan(const TilePass& pass, uint8_t* memory) {
  uint32_t marks = 0;
  for (int32_t row = 0; row < pass.SourceRows(); row++) {
    marks |= rankRows().floatMarks(pass.Source<float>(0, row), pass.SourceColumns());
  }
  RankFloatsMend(pass.window, pass.views,
                 {pass.x, pass.y, pass.columns, pass.rows, marks & FLOAT_HAS_NAN}, memory);
}

}  // namespace

int64_t RankTilesBytes(const PixelView& source, RankWindow window) {
  const TileLayout layout = LayoutOf(source, window);
  const int64_t floats = source.type == IMAGE_SGL ? RankFloatsBytes(window, layout.columns) : 0;
  return layout.TileBytes() + floats;
}

void RankTilesRun(RankWindow window, const WindowBand& band) {
  const WindowViews& views = band.views;
  const TileLayout layout = LayoutOf(views.source, window);
  TilePass pass{.views = views,
                .window = window,
                .x = 0,
                .y = 0,
                .columns = 0,
                .rows = 0,
                .linesAreColumns = window.height <= window.width,
                .sorted = reinterpret_cast<Key*>(band.memory),
                .spare = reinterpret_cast<Key*>(band.memory + layout.keyBytes),
                .tile = {}};
  uint8_t* members = band.memory + 2 * layout.keyBytes;
  pass.tile.members = reinterpret_cast<uint64_t*>(members);
  pass.tile.found = reinterpret_cast<uint32_t*>(members + layout.memberBytes);
  for (pass.y = band.begin; pass.y < band.end; pass.y += layout.rows) {
    pass.rows = std::min(layout.rows, band.end - pass.y);
    for (pass.x = 0; pass.x < views.source.width; pass.x += layout.columns) {
      pass.columns = std::min(layout.columns, views.source.width - pass.x);
      if (views.source.type == IMAGE_I16) {
        RunTile<int16_t>(layout, &pass);
      } else {
        RunTile<float>(layout, &pass);
        MendNan(pass, band.memory + layout.TileBytes());
      }
    }
  }
}

}  // namespace zel
