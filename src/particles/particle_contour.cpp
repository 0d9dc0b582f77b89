// The contour walk: along the set pixels around a particle or a hole, counting moves and turns.
#include "particles/particle_contour.h"

#include <array>
#include <cmath>
#include <cstring>

namespace zel {
namespace {

// Directions count clockwise; odd ones are along an axis.
enum Direction : uint8_t {
  NORTH_WEST,
  NORTH,
  NORTH_EAST,
  EAST,
  SOUTH_EAST,
  SOUTH,
  SOUTH_WEST,
  WEST,
  NO_DIRECTION,
};
constexpr int32_t DIRECTIONS = 8;
constexpr int32_t STEP_X[DIRECTIONS] = {-1, 0, 1, 1, 1, 0, -1, -1};
constexpr int32_t STEP_Y[DIRECTIONS] = {-1, -1, -1, 0, 1, 1, 1, 0};

// A neighbourhood is a number of nine bits, row after row from the north-west; its middle bit is
// the pixel itself.
constexpr uint32_t NEIGHBOURHOODS = 512;
constexpr uint32_t NeighbourBit(int32_t direction) {
  return 1u << ((STEP_Y[direction] + 1) * 3 + STEP_X[direction] + 1);
}
constexpr bool NeighbourSet(uint32_t neighbourhood, int32_t direction) {
  return (neighbourhood & NeighbourBit(direction % DIRECTIONS)) != 0;
}

// The next direction by neighbourhood and last direction.
using Moves = std::array<std::array<uint8_t, DIRECTIONS>, NEIGHBOURHOODS>;

// The background lies to the left of the walk: neighbours are tried clockwise from the first one
// that can be background. A walk that keeps to axes takes a diagonal only along a set pixel.
constexpr uint8_t NextDirection(uint32_t neighbourhood, int32_t last, bool keepToAxes) {
  const int32_t first = last + DIRECTIONS - (last % 2 != 0 ? 1 : 2);
  for (int32_t turn = 0; turn < DIRECTIONS; turn++) {
    const int32_t next = (first + turn) % DIRECTIONS;
    if (!NeighbourSet(neighbourhood, next)) continue;
    if (keepToAxes && next % 2 == 0 && !NeighbourSet(neighbourhood, next + DIRECTIONS - 1) &&
        !NeighbourSet(neighbourhood, next + 1)) {
      continue;
    }
    return static_cast<uint8_t>(next);
  }
  return NO_DIRECTION;
}

constexpr Moves MovesOf(bool keepToAxes) {
  Moves moves{};
  for (uint32_t code = 0; code < NEIGHBOURHOODS; code++) {
    for (int32_t last = 0; last < DIRECTIONS; last++) {
      moves[code][static_cast<size_t>(last)] = NextDirection(code, last, keepToAxes);
    }
  }
  return moves;
}

constexpr Moves AXIS_MOVES = MovesOf(true);
constexpr Moves ALL_MOVES = MovesOf(false);

// How sharp a turn is, by the difference of two directions modulo 8: 0 straight on to 4 back.
constexpr int32_t SHARPNESS[DIRECTIONS] = {0, 1, 2, 3, 4, 3, 2, 1};

// What makes up a contour's length.
class ContourCounts {
 public:
  void CountMove(uint8_t direction, int64_t times = 1) { moves_[direction] += times; }
  void CountTurn(uint8_t last, uint8_t direction, int64_t times = 1) {
    turns_[(direction - last) & 7] += times;
  }

  // The contour runs through pixel centres; its outside is half a pixel farther out all around,
  // and that of a hole half a pixel farther in. Corners are then taken off: a closed contour has
  // eight more turns of 45 degrees one way than the other, the rest are steps of slanting edges.
  double Perimeter(bool hole, double xStep, double yStep) const {
    int64_t turns[5] = {};
    for (size_t i = 0; i < DIRECTIONS; i++) turns[SHARPNESS[i]] += turns_[i];
    const int64_t across = moves_[EAST] + moves_[WEST];
    const int64_t down = moves_[NORTH] + moves_[SOUTH];
    const int64_t diagonal =
        moves_[NORTH_WEST] + moves_[NORTH_EAST] + moves_[SOUTH_EAST] + moves_[SOUTH_WEST];
    const int64_t outwards = hole ? -2 : 2;
    const double length = std::sqrt(xStep * xStep + yStep * yStep) * static_cast<double>(diagonal) +
                          static_cast<double>(across + outwards) * xStep +
                          static_cast<double>(down + outwards) * yStep;
    return length + CornerCorrection(turns) * (xStep + yStep) * -0.5;
  }

 private:
  static double CornerCorrection(const int64_t (&turns)[5]) {
    int64_t gentle = turns[1];
    int64_t square = turns[2];
    int64_t corners = 8;  // turns of 45 degrees that make the contour close
    if (turns[4] == 1) corners = 4;
    if (turns[4] <= 1 && corners > 3 * turns[3]) {
      corners -= 3 * turns[3];
      if (turns[2] != 0 && 2 * turns[2] >= corners) {
        square = turns[2] - (corners + 1) / 2;
      } else {
        square = 0;
        gentle = turns[1] > corners ? turns[1] - corners : 0;
      }
    }
    const auto damped = [](int64_t count) {
      return count == 0 ? 0.0 : std::pow(static_cast<double>(count), 0.97);
    };
    return damped(gentle) * 0.275 + damped(square) * 0.5;
  }

  int64_t moves_[DIRECTIONS] = {};  // by direction
  int64_t turns_[DIRECTIONS] = {};  // by difference of directions
};

class ContourWalk : public ContourCounts {
 public:
  ContourWalk(const PixelBits& bits, const Moves& moves)
      : bytes_(reinterpret_cast<const uint8_t*>(bits.Row(0))),
        rowBytes_(bits.pitch() * 8),
        nextMoves_(moves),
        longest_(8 * (int64_t{bits.width()} + 2) * (int64_t{bits.height()} + 2)) {
    for (size_t i = 0; i < DIRECTIONS; i++) steps_[i] = STEP_Y[i] * rowBytes_ * 8 + STEP_X[i];
  }

  uint32_t Neighbourhood(int64_t place) const {
    const int64_t northWest = place - rowBytes_ * 8 - 1;
    const uint8_t* byte = bytes_ + (northWest >> 3);
    const auto shift = static_cast<uint32_t>(northWest & 7);
    return Triple(byte, shift) | Triple(byte + rowBytes_, shift) << 3 |
           Triple(byte + 2 * rowBytes_, shift) << 6;
  }
  int64_t PlaceOf(int32_t x, int32_t y) const { return y * rowBytes_ * 8 + x; }
  int64_t Step(int64_t place, uint8_t direction) const { return place + steps_[direction]; }

  // From a pixel until the start is met again. False when a pixel has no way on.
  bool Walk(int64_t place, uint8_t last, int64_t start) {
    for (int64_t moves = 0; place != start; moves++) {
      const uint8_t next = nextMoves_[Neighbourhood(place)][last];
      if (next == NO_DIRECTION || moves > longest_) return false;
      CountTurn(last, next);
      CountMove(next);
      place = Step(place, next);
      last = next;
    }
    return true;
  }

 private:
  static uint32_t Triple(const uint8_t* byte, uint32_t shift) {
    uint16_t pair;
    std::memcpy(&pair, byte, sizeof pair);
    return (static_cast<uint32_t>(pair) >> shift) & 7;
  }

  const uint8_t* bytes_;
  int64_t rowBytes_;
  const Moves& nextMoves_;
  int64_t longest_;  // no contour has more moves: it would meet its start before
  int64_t steps_[DIRECTIONS];
};

double ParticlePerimeter(ContourWalk* walk, int64_t start, bool keepToAxes, double xStep,
                         double yStep) {
  const uint32_t neighbourhood = walk->Neighbourhood(start);
  const bool east = NeighbourSet(neighbourhood, EAST);
  const bool southEast = NeighbourSet(neighbourhood, SOUTH_EAST);
  const bool south = NeighbourSet(neighbourhood, SOUTH);
  const bool southWest = NeighbourSet(neighbourhood, SOUTH_WEST);
  // The way by which the walk will come back.
  const uint8_t last = southWest ? NORTH_EAST : south ? NORTH : southEast ? NORTH_WEST : WEST;
  uint8_t first = NO_DIRECTION;
  if (east) {
    first = EAST;
  } else if (keepToAxes && !south) {
    return 0.0;
  } else if (southEast) {
    first = SOUTH_EAST;
  } else if (south) {
    first = SOUTH;
  } else if (southWest) {
    first = SOUTH_WEST;
  } else {
    return 0.0;
  }
  walk->CountTurn(last, first);
  walk->CountMove(first);
  if (!walk->Walk(walk->Step(start, first), first, start)) return 0.0;
  // A start with set pixels south-west and east of a clear south is passed a second time. The move
  // there and its turn do not count.
  if (!keepToAxes && southWest && !south && (east || southEast)) {
    if (!walk->Walk(walk->Step(start, SOUTH_WEST), SOUTH_WEST, start)) return 0.0;
  }
  return walk->Perimeter(false, xStep, yStep);
}

double HolePerimeter(ContourWalk* walk, int64_t start, double xStep, double yStep) {
  const uint32_t neighbourhood = walk->Neighbourhood(start);
  uint8_t first = NORTH_EAST;
  for (const uint8_t direction : {SOUTH_EAST, SOUTH, SOUTH_WEST, WEST, NORTH_WEST, NORTH}) {
    if (!NeighbourSet(neighbourhood, direction)) continue;
    first = direction;
    break;
  }
  if (!NeighbourSet(neighbourhood, first)) return 0.0;
  walk->CountMove(first);
  if (!walk->Walk(walk->Step(start, first), first, start)) return 0.0;
  return walk->Perimeter(true, xStep, yStep);
}

}  // namespace

double ContourPerimeter(const PixelBits& bits, int32_t x, int32_t y, Contour contour, float xStep,
                        float yStep) {
  const bool keepToAxes = contour == Contour::Particle4;
  ContourWalk walk(bits, keepToAxes ? AXIS_MOVES : ALL_MOVES);
  const int64_t start = walk.PlaceOf(x, y);
  const auto stepX = static_cast<double>(xStep);
  const auto stepY = static_cast<double>(yStep);
  return contour == Contour::Hole ? HolePerimeter(&walk, start, stepX, stepY)
                                  : ParticlePerimeter(&walk, start, keepToAxes, stepX, stepY);
}

// The walk goes below the hole to its right end and above it back to its left end.
double GapPerimeter(int32_t width, float xStep, float yStep) {
  ContourCounts counts;
  for (const uint8_t corner : {SOUTH_EAST, NORTH_EAST, NORTH_WEST, SOUTH_WEST}) {
    counts.CountMove(corner);
  }
  counts.CountMove(EAST, width - 1);
  counts.CountMove(WEST, width - 1);
  counts.CountTurn(NORTH_EAST, NORTH_WEST);
  if (width == 1) {
    counts.CountTurn(SOUTH_EAST, NORTH_EAST);
    counts.CountTurn(NORTH_WEST, SOUTH_WEST);
  } else {
    counts.CountTurn(SOUTH_EAST, EAST);
    counts.CountTurn(EAST, EAST, width - 2);
    counts.CountTurn(EAST, NORTH_EAST);
    counts.CountTurn(NORTH_WEST, WEST);
    counts.CountTurn(WEST, WEST, width - 2);
    counts.CountTurn(WEST, SOUTH_WEST);
  }
  return counts.Perimeter(true, static_cast<double>(xStep), static_cast<double>(yStep));
}

}  // namespace zel
