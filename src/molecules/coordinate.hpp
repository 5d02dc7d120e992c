#pragma once

#include <cmath>

#include "dravo/molecule.hpp"

namespace dravo {

/// As messages name the range.
inline constexpr auto kCoordinateRange = "from -99999 to 999999 Angstrom";

/// False for a not-a-number too.
constexpr bool is_coordinate(double angstrom) {
  return angstrom >= kLowestCoordinate && angstrom <= kHighestCoordinate;
}

/// What eight decimals would show as -0.00000000 is zero.
inline double without_negative_zero(double coordinate) {
  constexpr double kSmallestWritten = 5e-9;
  return std::abs(coordinate) < kSmallestWritten ? 0.0 : coordinate;
}

}  // namespace dravo
