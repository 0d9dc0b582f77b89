// Structuring elements as calls take them.
#pragma once

#include <algorithm>
#include <cstdint>

#include "harness/calls/draws.h"
#include "orlune_ptk.h"

namespace test::draw {

// Mostly sides that the borders of the playground serve, else some that no border does.
inline int32_t Side(Playground& play) {
  constexpr int32_t others[] = {INT32_MIN, -1, 1000000000, INT32_MAX};
  return Below<16>(play) == 0 ? others[Below<4>(play)] : Below<12>(play);
}

inline const StructuringElement* Element(Playground& play) {
  const struct { int32_t width, height, frame; } a{Side(play), Side(play), Below<4>(play)};
  constexpr int32_t frames[] = {0, 1, 0x10000, -1};
  const bool isServed = std::max(a.width, a.height) < 12;
  const size_t positions = isServed ? Held(a.width) * Held(a.height) : 0;
  auto* members = play.ArrayOf<int32_t>(positions);
  for (size_t i = 0; members && i < positions; i++) members[i] &= 1;
  play.model().Gives(members);
  auto* element = play.OutputOf<StructuringElement>(1);
  if (element) *element = {a.width, a.height, members, frames[a.frame]};
  play.model().Gives(element);
  return element;
}

}  // namespace test::draw
