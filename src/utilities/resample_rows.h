// Row routines of resampling: along rows first, then down columns.
#pragma once

#include <cstdint>

#include "engine/levels.h"
#include "utilities/copying_rows.h"

namespace zel {

// Rows are resampled in tiles of so many numbers (an IMAGE_RGB pixel has four of them).
constexpr int32_t TILE_NUMBERS = 1024;
constexpr int32_t TILE_SAMPLES = 3;  // that a method joins at most along an axis

// Where the results of a tile stand in a row: result i lies between the numbers index[0][i] and
// index[1][i], the part share[i] of the way behind the first. Indexes don't fall from pixel to
// pixel.
struct TileColumns {
  alignas(64) double share[TILE_NUMBERS];
  alignas(64) int32_t index[TILE_SAMPLES][TILE_NUMBERS];
  int32_t count;     // of results
  int32_t readable;  // numbers of a row, from its first one on

  // So many of the first results take a shortcut: estimates or pairs of rows in one pass, in place
  // of being joined along rows and then down columns in 64-bit floats.
  int32_t shortcuts;
  // The first of those that are joined along rows are taken vector by vector from numbers near each
  // other, and so are shortcuts: where in a row a vector starts, and the numbers behind that.
  int32_t windowed;
  int32_t start[TILE_NUMBERS];
  alignas(64) int32_t place[TILE_SAMPLES][TILE_NUMBERS];
  alignas(64) float shareEstimate[TILE_NUMBERS];
};

// Where the pixels of a tile are picked from a row. The first ones may be picked vector by vector:
// where in a row a vector starts, and the pixels behind that, in numbers of a pixel's size.
struct PickColumns {
  int32_t index[TILE_NUMBERS];
  int32_t count;
  int32_t readable;  // pixels of a row, from its first one on
  int32_t vectors;
  int32_t start[TILE_NUMBERS / 16];  // no vector has fewer pixels
  alignas(64) uint8_t places[TILE_NUMBERS * 4];
};
struct PickRoutines {
  void (*prepare)(PickColumns* columns);  // the vectors
  void (*pick)(const void* from, const PickColumns& columns, void* to);
};
// The first results whose samples of a row are near enough, for so many samples.
using PlaceWindows = void (*)(TileColumns* columns, int32_t samples);
// The numbers of a row joined along it, without rounding to their type. Those of shortcuts are left
// out.
using AlongRow = void (*)(const void* from, const TileColumns& columns, double* to);
// Rows of them joined, and then put into their type: cut toward zero to integers.
using DownRows = void (*)(const double* const* rows, double share, void* to, int32_t count);

// Bilinear results of bytes, estimated in 32-bit floats. Where an estimate is so near to a whole
// number that the stated numbers may lie on the other side of it, they are computed.
struct EstimatedRows {
  const uint8_t* from[2];  // the rows
  const float* joined[2];  // ... along themselves
  double share;
};
struct EstimateRows {
  // Finds out how many of the results may be estimated, and their places.
  void (*prepare)(TileColumns* columns);
  void (*along)(const uint8_t* from, const TileColumns& columns, float* to);
  void (*down)(const EstimatedRows& rows, const TileColumns& columns, uint8_t* to);
};

// Bilinear results of two rows in one pass, for rows that are not needed again.
struct RowPair {
  const void* from[2];
  const void* next[2];  // that the next row of results is joined from: fetched in the meantime
  double share;
};
struct PairRoutines {
  void (*prepare)(TileColumns* columns);  // how many of the results, and their places
  void (*join)(const RowPair& rows, const TileColumns& columns, void* to);
};

// How many numbers a method joins along an axis: 1 where the size does not change.
template <class Routine>
struct BySamples {
  Routine one, two, three;

  Routine For(int32_t samples) const { return samples == 1 ? one : samples == 2 ? two : three; }
};

// The routines for numbers of each kind; pixels of IMAGE_RGB are four bytes.
template <class Routine>
struct ByNumber {
  Routine u8, i16, sgl;

  Routine For(int32_t type) const { return type == IMAGE_I16 ? i16 : type == IMAGE_SGL ? sgl : u8; }
};

struct ResampleRows {
  ByPixelBytes<PickRoutines> pick;
  ByNumber<void (*)(const void* from, double* to, int32_t count)> widen;
  PlaceWindows placeWindows;  // nullptr where the processor cannot
  ByNumber<BySamples<AlongRow>> along;
  ByNumber<BySamples<DownRows>> down;
  EstimateRows estimate;
  ByNumber<PairRoutines> pairs;  // nullptr where the processor cannot
};
ZEL_ROW_TABLE(ResampleRows, resampleRows)

}  // namespace zel
