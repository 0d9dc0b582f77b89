// Elementary passes planned: what they look at, and by which routines.
#include "morphology/pass.h"

#include <algorithm>
#include <bit>

#include "core/pixel_types.h"

namespace zel {
namespace {

int32_t DoublingsOf(int32_t length) {
  return static_cast<int32_t>(std::bit_width(static_cast<uint32_t>(length))) - 1;
}

// Spans of 2^doublings pixels and shorter ones that cover a run, with overlaps.
int64_t PlacesOf(const ElementRun& run, int32_t doublings) {
  const int32_t most = std::min(doublings, DoublingsOf(run.length));
  return (int64_t{run.length} + (1 << most) - 1) >> most;
}

// Making spans twice as long costs about two places for each pixel.
RunPlan PlanOf(const RunList& list) {
  constexpr int64_t placesOfADoubling = 2;
  int32_t longest = 1;
  for (int32_t i = 0; i < list.count; i++) longest = std::max(longest, list.runs[i].length);
  RunPlan best{list, 0, 0};
  int64_t leastCost = INT64_MAX;
  for (int32_t doublings = 0; doublings <= DoublingsOf(longest); doublings++) {
    int64_t places = 0;
    for (int32_t i = 0; i < list.count; i++) places += PlacesOf(list.runs[i], doublings);
    const int64_t cost = places + placesOfADoubling * doublings;
    if (cost >= leastCost) continue;
    leastCost = cost;
    best = {list, doublings, places};
  }
  return best;
}

void ReachExtend(const RunList& list, bool hexagonal, PassReach* reach) {
  for (int32_t i = 0; i < list.count; i++) {
    const ElementRun& run = list.runs[i];
    const int32_t shift = hexagonal ? run.row & 1 : 0;
    reach->top = std::min(reach->top, run.row);
    reach->bottom = std::max(reach->bottom, run.row);
    reach->left = std::min(reach->left, run.column);
    reach->right = std::max(reach->right, run.LastColumn() + shift);
  }
}

// Around the members alone, so that an element of one row or column is a rectangle of that size.
PassReach ReachOf(const RunList& list, bool hexagonal) {
  if (list.count == 0) return {};
  const ElementRun& run = list.runs[0];
  PassReach reach{run.row, run.row, run.column, run.column};
  ReachExtend(list, hexagonal, &reach);
  return reach;
}

// Runs are in the order of rows, and as long as they can be.
bool FillsItsReach(const RunList& list, const PassReach& reach) {
  if (list.count == 0 || list.count != reach.Rows()) return false;
  return std::all_of(list.runs, list.runs + list.count, [&](const ElementRun& run) {
    return run.column == reach.left && run.LastColumn() == reach.right;
  });
}

constexpr int64_t PLACES_OF_AN_EFFORT = 4;

}  // namespace

MorphologyPass ExtremePass(const ElementShape& shape, int32_t type, Extreme extreme,
                           Finish finish) {
  MorphologyPass pass{.type = type,
                      .pixelBytes = PixelBytesOf(type),
                      .hexagonal = shape.hexagonal(),
                      .reach = ReachOf(shape.members(), shape.hexagonal()),
                      .members = {},
                      .others = {},
                      .extremes = &morphologyRows().For(type, extreme),
                      .finish = finish};
  pass.isRectangle = !pass.hexagonal && FillsItsReach(shape.members(), pass.reach);
  if (!pass.isRectangle) pass.members = PlanOf(shape.members());
  const int64_t places = pass.isRectangle ? pass.reach.Rows() : pass.members.places;
  pass.effort = 1 + std::min<int64_t>(places, 1000) / PLACES_OF_AN_EFFORT;
  return pass;
}

MorphologyPass MatchPass(const ElementShape& shape, Finish finish) {
  MorphologyPass pass = ExtremePass(shape, IMAGE_U8, SMALLEST, finish);
  if (shape.others().count == 0) return pass;
  pass.isRectangle = false;
  pass.members = PlanOf(shape.members());
  pass.others = PlanOf(shape.others());
  pass.otherExtremes = &morphologyRows().For(IMAGE_U8, LARGEST);
  if (shape.members().count == 0) pass.reach = ReachOf(shape.others(), shape.hexagonal());
  ReachExtend(shape.others(), shape.hexagonal(), &pass.reach);
  const int64_t places = pass.members.places + pass.others.places;
  pass.effort = 1 + std::min<int64_t>(places, 1000) / PLACES_OF_AN_EFFORT;
  return pass;
}

}  // namespace zel
