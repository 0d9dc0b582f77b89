// The row routines of correlation: sums of products of a template and the pixels under it, sums of
// these pixels' squares, and what becomes of both.
#pragma once

#include <cstdint>

#include "engine/levels.h"

namespace zel {

// Pixels are kept less 128, as numbers with a sign: so instructions take them beside the
// template's.
using CorrelationPixel = int8_t;
constexpr int32_t CORRELATION_BIAS = 128;

// Sums of products are computed for so many results at once. They may be of results that nobody
// asked for, so a source reaches beyond what is asked.
constexpr int32_t CORRELATION_TILE_ROWS = 4;
constexpr int32_t CORRELATION_TILE_COLUMNS = 64;

// The template, or a part of it, packed into weights: what stands for the pixels of some columns.
constexpr int32_t CORRELATION_MOST_COLUMNS = 4;  // of a weight
struct CorrelationTemplate {
  const uint32_t* weights;  // of the upper left pixels
  int64_t pitch;            // weights from one row to the next
  int64_t rowWeights;       // of a row, the last of which may stand for columns of 0
  int64_t rows;
};

// The pixels under the template, for the results of a tile.
struct CorrelationSource {
  const CorrelationPixel* pixels;
  int64_t pitch;
};

// To be added to rows of sums that lie `pitch` apart.
struct CorrelationSums {
  int32_t* sums;
  int64_t pitch;
};
using CorrelationProducts = void (*)(const CorrelationSource& source,
                                     const CorrelationTemplate& pattern,
                                     const CorrelationSums& results);

// Sums of the squares in a template's columns, which are kept from row to row, and of those in the
// template.
template <class Sum>
struct CorrelationEnergy {
  void (*add)(const CorrelationPixel* row, Sum* columnSums, int64_t count);
  void (*slide)(const CorrelationPixel* entering, const CorrelationPixel* leaving, Sum* columnSums,
                int64_t count);
  // `memory`: of three times as many sums as there are column sums.
  const Sum* (*windows)(const Sum* columnSums, Sum* memory, int64_t columns, int64_t width);
};

struct CorrelationRule {
  double templateRoot;  // T
  int64_t bias;         // what sums of products lack: the bias times the template's sum
  bool wraps;           // sums have 32 bits
};

struct CorrelationRows {
  int32_t weightColumns;  // that a weight stands for
  void (*bias)(const uint8_t* pixels, CorrelationPixel* to, int64_t count);
  void (*pack)(const uint8_t* pixels, int64_t columns, uint32_t* weights);

  // A whole tile: above and below the template's rows there are CORRELATION_TILE_ROWS - 1 rows of
  // weights of 0. Or a row of one, for any part of a template.
  CorrelationProducts tile, tileRow;

  CorrelationEnergy<uint32_t> energy;
  CorrelationEnergy<uint64_t> largeEnergy;

  // 255 C / (sqrt(E) T), for templates of at most CORRELATION_MOST_PIXELS and for others.
  void (*results)(const int32_t* products, const uint32_t* energies, uint8_t* to, int64_t count,
                  const CorrelationRule& rule);
  void (*largeResults)(const int64_t* products, const uint64_t* energies, uint8_t* to,
                       int64_t count, const CorrelationRule& rule);
};
ZEL_ROW_TABLE(CorrelationRows, correlationRows)

// Sums of so many products of bytes are below 2^31.
constexpr int64_t CORRELATION_MOST_PIXELS = INT32_MAX / (UINT8_MAX * UINT8_MAX);

}  // namespace zel
