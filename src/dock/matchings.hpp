/// Which atoms of rigid molecules may stand for each other.
#pragma once

#include <cstddef>
#include <vector>

#include "dravo/atoms.hpp"

namespace dravo {

/// Atoms and where they stand, as many of both.
struct LabelledAtoms {
  std::vector<Label> labels;
  std::vector<Vec3> positions;  ///< Angstrom
};

/// Atom i stands where atom `[i]` of another molecule stands.
using Matching = std::vector<std::size_t>;

/// All matchings by which a turn and a shift lay one molecule on the other, atoms of one element on
/// each other within `reach` Angstrom. None for different molecules and for mirror images.
std::vector<Matching> matchings(const LabelledAtoms& from, const LabelledAtoms& to, double reach);

}  // namespace dravo
