/// Lines and arcs of a scene in pieces, as drawings of every kind have them.
#pragma once

#include <cmath>

#include "common/constants.hpp"
#include "common/vector.hpp"
#include "dravo/scene.hpp"

namespace dravo {

/// A dash with the gap behind it, Angstrom, and how much of that it is.
inline constexpr double kDash = 0.28, kDashPart = 0.55;

/// `part` counts from 0, where the arc begins, to 1.
inline Vec3 point_of(const Arc& arc, double part) {
  const double angle = kRadiansPerDegree * arc.degrees * part;
  return arc.centre + arc.radius * (std::cos(angle) * arc.start + std::sin(angle) * arc.across);
}

}  // namespace dravo
