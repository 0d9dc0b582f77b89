// Angles around the base of a meter.
#pragma once

#include "core/status.h"
#include "orlune_ptk.h"

namespace zel {

// Half a turn and a turn as an operation has them.
struct TurnConstants {
  double half, full;
};
// Calibrating and reading differ in the last digits, which is kept.
constexpr TurnConstants CALIBRATING_TURN{3.1415926, 6.2831852};
constexpr TurnConstants READING_TURN{3.1415925f, 6.283185f};

// The direction from the centre to another point, from 0, right, clockwise on the screen.
double DirectionAround(PointFloat point, PointFloat centre, const TurnConstants& turn);

// The angle from one direction to another, from 0 up to a turn.
float AngleBetween(double from, double to, const TurnConstants& turn);

// The angle from a to b around the centre. STATUS_TOO_FEW_POINTS when one of them is the centre.
Status AngleAround(PointFloat a, PointFloat b, PointFloat centre, const TurnConstants& turn,
                   float* angle);

}  // namespace zel
