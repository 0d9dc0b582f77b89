// Angles around the base of a meter, by the arctangent of a quotient.
#include "dials/meter_angle.h"

#include <cmath>

namespace zel {
namespace {

bool IsSame(PointFloat a, PointFloat b) {
  return a.x == b.x && a.y == b.y;
}

}  // namespace

double DirectionAround(PointFloat point, PointFloat centre, const TurnConstants& turn) {
  const float dx = point.x - centre.x;
  const float dy = point.y - centre.y;
  if (dx == 0.0f) return dy > 0.0f ? 1.5707963 : 4.712389;
  const double direction = std::atan(static_cast<double>(dy) / static_cast<double>(dx));
  if (dx < 0.0f) return direction + turn.half;
  return dy < 0.0f ? direction + turn.full : direction;
}

float AngleBetween(double from, double to, const TurnConstants& turn) {
  const double angle = to - from;
  return static_cast<float>(angle < 0.0 ? angle + turn.full : angle);
}

Status AngleAround(PointFloat a, PointFloat b, PointFloat centre, const TurnConstants& turn,
                   float* angle) {
  if (IsSame(centre, a) || IsSame(centre, b)) return STATUS_TOO_FEW_POINTS;
  *angle = AngleBetween(DirectionAround(a, centre, turn), DirectionAround(b, centre, turn), turn);
  return STATUS_OK;
}

}  // namespace zel
