// Passes over bits, 64 pixels a word.
#include "morphology/bit_pass_rows.h"

#include <cstring>

#include "core/numbers.h"
#include "engine/vectors.h"
#include "morphology/bit_plane.h"

namespace zel::ZEL_LEVEL {
namespace {

using Group [[gnu::vector_size(8 * BIT_GROUP_WORDS)]] = uint64_t;

// The pixels of a group of words, and their neighbours at the same places.
struct Neighbours {
  Group northWest, north, northEast, west, centre, east, southWest, south, southEast;
};

// Bits move towards the pixel that looks at them. Compilers make three instructions of a shift over
// two words, where there is one.
ZEL_INLINE void LoadRow(const uint64_t* words, Group* west, Group* self, Group* east) {
  std::memcpy(west, words - 1, sizeof *west);
  std::memcpy(self, words, sizeof *self);
  std::memcpy(east, words + 1, sizeof *east);
#if defined(ZEL_LEVEL_v4)
  *west = (Group)_mm512_shldi_epi64((__m512i)*self, (__m512i)*west, 1);
  *east = (Group)_mm512_shrdi_epi64((__m512i)*self, (__m512i)*east, 1);
#else
  *west = *self << 1 | *west >> 63;
  *east = *self >> 1 | *east << 63;
#endif
}

template <class Rule>
ZEL_INLINE bool Pass(uint64_t* to, const BitRows& of, int32_t words, Rule rule) {
  const BitRows rows = of;
  Group changes{};
  for (int32_t i = 0; i < words; i += BIT_GROUP_WORDS) {
    Neighbours around;
    LoadRow(rows.above + i, &around.northWest, &around.north, &around.northEast);
    LoadRow(rows.row + i, &around.west, &around.centre, &around.east);
    LoadRow(rows.below + i, &around.southWest, &around.south, &around.southEast);
    Group result;
    rule(around, &result);
    changes |= result ^ around.centre;
    std::memcpy(to + i, &result, sizeof result);
  }
  uint64_t any = 0;
  for (int32_t i = 0; i < BIT_GROUP_WORDS; i++) any |= changes[i];
  return any != 0;
}

// Keeps of `all` what is as a mask says it is at one place.
template <uint32_t hit, uint32_t miss, uint32_t bit>
ZEL_INLINE void Match(const Group& word, Group* all) {
  if constexpr ((hit & bit) != 0) *all &= word;
  if constexpr ((miss & bit) != 0) *all &= ~word;
}

// Where all pixels of `hit` are set and all of `miss` are clear.
template <uint32_t hit, uint32_t miss>
ZEL_INLINE void MaskMatch(const Neighbours& w, Group* matches) {
  *matches = ~Group{};
  Match<hit, miss, NORTH_WEST>(w.northWest, matches);
  Match<hit, miss, NORTH>(w.north, matches);
  Match<hit, miss, NORTH_EAST>(w.northEast, matches);
  Match<hit, miss, WEST>(w.west, matches);
  Match<hit, miss, CENTRE>(w.centre, matches);
  Match<hit, miss, EAST>(w.east, matches);
  Match<hit, miss, SOUTH_WEST>(w.southWest, matches);
  Match<hit, miss, SOUTH>(w.south, matches);
  Match<hit, miss, SOUTH_EAST>(w.southEast, matches);
}

template <uint32_t hit, uint32_t miss>
bool Thin(uint64_t* to, const BitRows& rows, int32_t words) {
  return Pass(to, rows, words, [](const Neighbours& w, Group* result) {
    Group matches;
    MaskMatch<hit, miss>(w, &matches);
    *result = w.centre & ~matches;
  });
}

// Adds where no neighbour is set but one, or two side by side: then all the six others are clear.
// `two` tells of two neighbours that follow each other around the pixel, `four` of four.
ZEL_INLINE void EndMatch(const Neighbours& w, Group* matches) {
  const Group ring[8] = {w.north, w.northEast, w.east, w.southEast,
                         w.south, w.southWest, w.west, w.northWest};
  Group two[8];
  Group four[8];
  for (int32_t i = 0; i < 8; i++) two[i] = ring[i] | ring[(i + 1) & 7];
  for (int32_t i = 0; i < 8; i++) four[i] = two[i] | two[(i + 2) & 7];
  for (int32_t i = 0; i < 8; i++) *matches |= ~(four[(i + 2) & 7] | two[(i + 6) & 7]);
}

template <uint32_t hit, uint32_t miss>
bool ThinZones(uint64_t* to, const BitRows& rows, int32_t words) {
  return Pass(to, rows, words, [](const Neighbours& w, Group* result) {
    Group matches;
    MaskMatch<hit, miss>(w, &matches);
    EndMatch(w, &matches);
    *result = w.centre & ~matches;
  });
}

constexpr uint32_t NEIGHBOURS = 511 - CENTRE;

bool Despeckle(uint64_t* to, const BitRows& rows, int32_t words) {
  return Pass(to, rows, words, [](const Neighbours& w, Group* result) {
    Group lone;
    Group enclosed;
    MaskMatch<0, NEIGHBOURS>(w, &lone);
    MaskMatch<NEIGHBOURS, 0>(w, &enclosed);
    *result = (w.centre & ~lone) | enclosed;
  });
}

bool Outline(uint64_t* to, const BitRows& rows, int32_t words) {
  return Thin<511, 0>(to, rows, words);
}

bool Rim(uint64_t* to, const BitRows& rows, int32_t words) {
  return Pass(to, rows, words, [](const Neighbours& w, Group* result) {
    *result = ~w.centre & (w.northWest | w.north | w.northEast | w.west | w.east | w.southWest |
                           w.south | w.southEast);
  });
}

bool Shrink(uint64_t* to, const BitRows& rows, int32_t words) {
  return Pass(to, rows, words, [](const Neighbours& w, Group* result) {
    *result = w.centre & w.northWest & w.north & w.northEast & w.west;
  });
}

}  // namespace

extern const BitPassRows bitPassRows = {
    .setA = {&Thin<308, 73>, &Thin<432, 11>, &Thin<464, 7>, &Thin<216, 38>, &Thin<89, 292>,
             &Thin<27, 416>, &Thin<23, 448>, &Thin<54, 200>},
    .setB = {&Thin<464, 2>, &Thin<216, 4>, &Thin<89, 32>, &Thin<27, 256>, &Thin<23, 128>,
             &Thin<54, 64>, &Thin<308, 8>, &Thin<432, 1>},
    .zones = {&ThinZones<308, 73>, &ThinZones<432, 11>, &ThinZones<464, 7>, &ThinZones<216, 38>,
              &ThinZones<89, 292>, &ThinZones<27, 416>, &ThinZones<23, 448>, &ThinZones<54, 200>},
    .despeckle = &Despeckle,
    .outline = &Outline,
    .rim = &Rim,
    .shrink = &Shrink};

}  // namespace zel::ZEL_LEVEL
