#pragma once

#include "molecules/covalent_radii.hpp"

namespace dravo {

/// Of an atom in a drawing, Angstrom: small enough for its bonds to be seen, and larger for larger
/// atoms.
inline double ball_radius(int atomic_number) {
  return 0.12 + 0.30 * covalent_radius(atomic_number);
}

}  // namespace dravo
