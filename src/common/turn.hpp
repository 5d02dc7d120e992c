#pragma once

#include <cmath>

namespace dravo {

/// The angle in degrees, from 0 to below 360.
inline double folded_turn(double degrees) {
  double folded = std::fmod(degrees, 360.0);
  if (folded < 0.0) folded += 360.0;
  return folded < 360.0 ? folded + 0.0 : 0.0;  // no negative zero
}

}  // namespace dravo
