/// Two molecules as somebody gave them.
#pragma once

#include <vector>

#include "common/atom_table.hpp"

namespace dravo {

/// Molecule 1 first. Every label is the symbol of an element H to U in its usual spelling, every
/// coordinate is finite; at least 6 atoms, at least 3 of them molecule 1's and one molecule 2's.
struct Pair {
  MoleculeSplit split{};
  std::vector<Label> labels;
  std::vector<Vec3> positions;  ///< Angstrom
};

}  // namespace dravo
