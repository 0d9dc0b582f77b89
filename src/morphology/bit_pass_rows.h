// The row routines of skeletons and zones: passes over rows of bits.
#pragma once

#include <cstdint>

#include "engine/levels.h"

namespace zel {

// Bits of a neighbourhood, bottom to top in each column from left to right.
enum NeighbourBit : uint32_t {
  SOUTH_WEST = 256,
  WEST = 128,
  NORTH_WEST = 64,
  SOUTH = 32,
  CENTRE = 16,
  NORTH = 8,
  SOUTH_EAST = 4,
  EAST = 2,
  NORTH_EAST = 1
};

// A row of bits between its neighbours. One word before and one behind is read.
struct BitRows {
  const uint64_t* above;
  const uint64_t* row;
  const uint64_t* below;
};

// A pass writes a row's words, whole groups of them; it answers whether one differs from what the
// row was.
using BitPass = bool (*)(uint64_t* to, const BitRows& rows, int32_t words);

constexpr int32_t SKELETON_PASSES = 8;

struct BitPassRows {
  // Set pixels are cleared where a mask's pixels are as it says.
  BitPass setA[SKELETON_PASSES];
  BitPass setB[SKELETON_PASSES];
  // Set A, where also pixels with no neighbour, one, or two side by side are cleared.
  BitPass zones[SKELETON_PASSES];
  BitPass despeckle;  // clears lone pixels and sets those whose neighbours are all set
  BitPass outline;    // clears pixels whose neighbours are all set
  BitPass rim;        // sets pixels that are clear and have a neighbour that is set, no other
  // Leaves set pixels whose neighbours to the left and above are set too.
  BitPass shrink;
};
ZEL_ROW_TABLE(BitPassRows, bitPassRows)

}  // namespace zel
