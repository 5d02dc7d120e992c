#pragma once

#include "dravo/molecule.hpp"

namespace dravo {

/// As messages name the range.
inline constexpr auto kCoordinateRange = "from -99999 to 999999 Angstrom";

/// False for a not-a-number too.
constexpr bool is_coordinate(double angstrom) {
  return angstrom >= kLowestCoordinate && angstrom <= kHighestCoordinate;
}

}  // namespace dravo
